#!/bin/sh
# Usage: fuzz/run.sh SECONDS [HARNESS...]
# Builds the harnesses and runs each for SECONDS over a copy of its corpus, as many at once as there are cores; fails on
# a finding, which stays in build/fuzz/findings/. KV_FUZZ_BUILD names another build folder.
set -eu
[ $# -ge 1 ] || { sed -n 2,4p "$0" >&2; exit 2; }
seconds=$1
shift
cd "$(dirname "$0")/.."
build=${KV_FUZZ_BUILD:-build/fuzz}
# shellcheck disable=SC2046 # one word per harness
[ $# -gt 0 ] || set -- $(sed -n 's/^kv_fuzz(\([A-Za-z]*\) .*/\1/p' fuzz/CMakeLists.txt)
[ -f "$build/build.ninja" ] || cmake --preset fuzz -B "$build" >/dev/null
cmake --build "$build" --target "$@"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$build/findings"
export seconds build work
# The harnesses write the inputs that they keep into the copy of the corpus.
if printf '%s\n' "$@" | xargs -P "$(nproc)" -I{} sh -c '
    harness=$1
    cp -r "fuzz/corpus/$harness" "$work/$harness"
    nice "$build/bin/$harness" -max_total_time="$seconds" -rss_limit_mb=2048 -timeout=10 -print_final_stats=1 \
        -artifact_prefix="$build/findings/$harness-" "$work/$harness" >"$work/$harness.log" 2>&1
    status=$?
    {
        echo "fuzz: $harness for $seconds s, exit status $status"
        grep -E "stat::|ERROR|SUMMARY|runtime error|Done" "$work/$harness.log" || tail -20 "$work/$harness.log"
    } >"$work/$harness.report"
    cat "$work/$harness.report"
    exit "$status"' harness {}; then
    echo "fuzz: $# harnesses ran for $seconds s each, no findings"
else
    echo "fuzz: findings, see above and $build/findings/"
    exit 1
fi
