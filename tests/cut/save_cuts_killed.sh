#!/usr/bin/env bash
# Kills scenepane --save-cuts at each of its calls that change files: every file is the old or the new one, whole, and the next run
# writes all.
#   save_cuts_killed.sh SCENEPANE SIMULATE_SCANS FILE_FAULTS [STEP]
# FILE_FAULTS is the library to preload (tests/support/FileFaults.h), with those that must be loaded before it.
# STEP: only every STEP-th of these calls, for programs that are slow to start.
set -u
scenepane=$1 simulate=$2 faults=$3 step=${4:-1}
unset DISPLAY
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1

save() { "$scenepane" --save-cuts --cut 'inside:0.3,0.3;0.6,0.3;0.6,0.6;0.3,0.6' a.pcm b.pcm c.pcm >out.txt 2>err.txt; }
restore() { for name in a b c; do cp old "$name.pcm"; done; }
fail() {
    echo "$*"
    cat out.txt err.txt
    exit 1
}

"$simulate" --scans 1 --size 160x120 --out . >out.txt 2>err.txt || fail 'there is no scan'
mv ./*_001.pcm old
restore
save || fail 'the run without faults failed'
for name in a b c; do
    cmp -s old "$name.pcm" && fail "the lasso removed nothing from $name.pcm"
    cp "$name.pcm" "new-$name"
done

kinds=(kill half after)
parts=0 runs=0
for ((call = 1; ; call += step)); do
    kind=${kinds[runs % 3]}
    restore
    (LD_PRELOAD=$faults KV_FILE_FAULT_CALL=$call KV_FILE_FAULT_KIND=$kind save) 2>killed.txt
    status=$?
    [ "$status" = 137 ] || [ "$status" = 0 ] || fail "$kind at call $call: status $status"
    written=0
    for name in a b c; do
        cmp -s old "$name.pcm" && continue
        cmp -s "new-$name" "$name.pcm" || fail "$kind at call $call: $name.pcm is neither the old nor the new file"
        written=$((written + 1))
    done
    [ "$status" = 0 ] && break  # it makes fewer calls
    runs=$((runs + 1))
    [ "$written" = 1 ] || [ "$written" = 2 ] && parts=$((parts + 1))
    [ $((runs % 8)) = 0 ] || continue
    save || fail "the run after a kill at call $call failed"
    for name in a b c; do cmp -s "new-$name" "$name.pcm" || fail "the run after a kill at call $call: $name.pcm"; done
done
[ "$written" = 3 ] || fail "the run with fewer than $call calls wrote $written files"
[ "$call" -gt 20 ] || fail "only $call calls"
[ "$parts" -ge 1 ] || fail 'no run was killed between two files'
echo "$runs runs were killed, $parts of them between two files"
