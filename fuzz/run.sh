#!/bin/sh
# Usage: fuzz/run.sh SECONDS [HARNESS...]
# Builds the harnesses and runs each for SECONDS on a copy of its corpus. Fails on a finding, whose input is kept in
# build/fuzz/findings/. The environment variable KV_FUZZ_BUILD names another build folder.
set -eu
[ $# -ge 1 ] || { sed -n 2,4p "$0" >&2; exit 2; }
seconds=$1
shift
cd "$(dirname "$0")/.."
build=${KV_FUZZ_BUILD:-build/fuzz}
[ $# -gt 0 ] || set -- $(sed -n 's/^kv_fuzz(\([A-Za-z]*\) .*/\1/p' fuzz/CMakeLists.txt)
cmake --preset fuzz -B "$build" >/dev/null
cmake --build "$build" --target "$@"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$build/findings"
failed=0
for harness; do
    echo "fuzz: $harness for $seconds s"
    cp -r "fuzz/corpus/$harness" "$work/$harness"
    nice "$build/bin/$harness" -max_total_time="$seconds" -rss_limit_mb=2048 -timeout=10 -print_final_stats=1 \
        -artifact_prefix="$build/findings/$harness-" "$work/$harness" >"$work/log" 2>&1 || failed=1
    grep -E 'stat::|ERROR|SUMMARY|runtime error|Done' "$work/log" || tail -20 "$work/log"
done
exit $failed
