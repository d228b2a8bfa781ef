#!/usr/bin/env bash
# Pictures with less and less memory: a run that does not write its picture says why in one line. The driver may end the program by a
# signal: its own code is not made for that.
#   scenepane_low_memory.sh SCENEPANE SIMULATE_SCANS
set -u
scenepane=$1 simulate=$2
unset DISPLAY
ulimit -c 0
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
fail() {
    echo "$*"
    cat error.txt
    exit 1
}

"$simulate" --scans 1 --size 160x120 --out . >error.txt 2>&1 || fail 'there is no scan'
"$scenepane" --screenshot out.png ./*_001.pcm 2>error.txt || fail 'the run without a limit failed'
reasons=0 signals=0 pictures=0
for ((megabytes = 60; megabytes <= 1000; megabytes += 20)); do
    rm -f out.png
    (ulimit -v $((megabytes * 1024)) && exec "$scenepane" --screenshot out.png ./*_001.pcm) >error.txt 2>&1
    status=$?
    case $status in
        0)
            [ -s out.png ] || fail "$megabytes MB: no picture"
            pictures=$((pictures + 1))
            ;;
        1)
            [ -e out.png ] && fail "$megabytes MB: a picture in spite of status 1"
            grep -q '^scenepane: ' error.txt || fail "$megabytes MB: status 1 without a reason"
            grep -q 'bad_alloc' error.txt && fail "$megabytes MB: the name of a class is no reason"
            reasons=$((reasons + 1))
            ;;
        127) ;;  # too little to load the libraries
        *)
            [ "$status" -gt 128 ] || fail "$megabytes MB: status $status"
            signals=$((signals + 1))
            ;;
    esac
done 2>/dev/null
[ "$reasons" -ge 1 ] || fail "no run ended with a reason"
echo "$pictures pictures, $reasons reasons, $signals ends by a signal"
