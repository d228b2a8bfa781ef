#!/bin/sh
# Random calls by id under the address sanitizer, compared with a model: random_calls.sh [CALLS] [SEED]
# A failure names the run that repeats it: KV_RANDOM_SEED=S KV_RANDOM_RUN=R scripts/random_calls.sh 1000
# With KV_RANDOM_TRACE=1 each call is printed.
set -eu
cd "$(dirname "$0")/.."
export KV_RANDOM_CALLS="${1:-1000000}"
export KV_RANDOM_SEED="${2:-${KV_RANDOM_SEED:-1}}"
cmake --preset asan > /dev/null
cmake --build --preset asan --target random_calls_tests
export LSAN_OPTIONS="suppressions=$PWD/cmake/lsan.supp:print_suppressions=0" UBSAN_OPTIONS=print_stacktrace=1
exec env -u DISPLAY build/asan/bin/random_calls_tests --gtest_filter='RandomCalls.*:WildCalls.*'
