#!/usr/bin/env bash
# Line coverage of src/ and libs/ by the tests: builds build/coverage, runs the tests, prints a table per file and the sum.
#   scripts/coverage.sh [ctest options...]      for one module: scripts/coverage.sh -L io
# The report as pages: build/coverage/report/index.html
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"
cd "$KV_ROOT"

install_missing "${KV_COVERAGE_PACKAGES[@]}"
# Counts of an earlier run would be added to these.
[[ ! -d build/coverage ]] || find build/coverage -name '*.gcda' -delete
status=0
./test.sh coverage "$@" || status=$?
mkdir -p build/coverage/report
gcovr --root . --object-directory build/coverage --filter 'src/' --filter 'libs/' --exclude-unreachable-branches \
    --exclude-throw-branches -j "$(nproc)" --html-details build/coverage/report/index.html --print-summary --txt -
exit "$status"
