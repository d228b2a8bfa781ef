#!/usr/bin/env bash
# Runs the tests that draw on Mesa's drivers that need no graphics card, and prints a table of drivers by test programs.
#   scripts/drivers.sh [--no-build] [PRESET] [DRIVER...]
#     PRESET   release (the default) or debug; with --no-build any folder below build/ that is built
#     DRIVER   llvmpipe, softpipe, zink, virgl; all four by default
# Exit status 1 when a test failed. The output of the tests is in build/PRESET/drivers/DRIVER.log.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

# The programs whose tests draw. Not control_tests: they request versions and samples that only some drivers have.
readonly PROGRAMS=(render_tests render_control_tests reference_picture_tests clip_control_tests markers_control_tests
    view_control_tests platform_tests align_pick_tests)
readonly DRIVERS=(llvmpipe softpipe zink virgl)
# These tests are of X windows, not of pictures. zink shows a frame a moment after the call that they check returned; zink and
# virgl end the process, or hang, when the window or its server is gone, and virgl keeps memory of every context.
declare -rA LEFT_OUT=([zink]="platform_tests" [virgl]="platform_tests")
# The same of single suites, as an expression on the names that ctest lists.
readonly WINDOW_SUITES='^align_pick_tests/PickPoints(UnderThePointer|Cursor)$'
declare -rA SUITES_LEFT_OUT=([zink]="$WINDOW_SUITES" [virgl]="$WINDOW_SUITES")

build=1
preset=release
drivers=()
for argument in "$@"; do
    case "$argument" in
        --no-build) build=0 ;;
        llvmpipe | softpipe | zink | virgl) drivers+=("$argument") ;;
        -*)
            sed -n '2,/^set /s/^# \?//p' "$0" >&2
            exit 2
            ;;
        *) preset="$argument" ;;
    esac
done
((${#drivers[@]} > 0)) || drivers=("${DRIVERS[@]}")
folder="$KV_ROOT/build/$preset"

install_missing "${KV_BUILD_PACKAGES[@]}" "${KV_TEST_PACKAGES[@]}"
if ((build == 1)); then
    configure_preset "$preset"
    build_preset "$preset" "${PROGRAMS[@]}" kv_virgl_socket KV_ScenePane
fi

# count_by_program LOG FAILED: a line "program passed failed skipped seconds" for each test program in ctest's records. A
# process that ended before it could count its cases is one failed case.
count_by_program() {
    awk '
        FILENAME ~ /LastTestsFailed/ { sub(/^[0-9]+:/, ""); bad[$0]; next }
        /^[0-9]+\/[0-9]+ Testing: / { test = $0; sub(/^[^:]*: /, "", test); program = test; sub(/\/.*/, "", program); p = f = s = 0 }
        /^\[  PASSED  \] [0-9]+ tests?\.$/ { p = $4 }
        /^\[  FAILED  \] [0-9]+ tests?, listed below:$/ { f = $4 }
        /^\[  SKIPPED \] [0-9]+ tests?, listed below:$/ { s = $4 }
        /^Test time = / { seconds[program] += $4 }
        /^Test (Passed|Failed)\.$/ {
            if (test in bad) f += (f == 0); else if (p + s == 0) p = 1
            passed[program] += p; failed[program] += f; skipped[program] += s
        }
        END { for (program in passed) print program, passed[program], failed[program], skipped[program], seconds[program] }
    ' "$2" "$1" | sort
}

preload="$folder/lib/libkv_virgl_socket.so"
mkdir -p "$folder/drivers"
unset DISPLAY WAYLAND_DISPLAY
any_failed=0
table=("$(printf '%-9s %-26s %7s %7s %8s %8s' driver program passed failed skipped seconds)")
for driver in "${drivers[@]}"; do
    say "testing build/$preset on $driver"
    log="$folder/drivers/$driver.log" output="$folder/drivers/$driver.output"
    records="$folder/Testing/Temporary"
    rm -f "$records/LastTest.log" "$records/LastTestsFailed.log"
    status=0
    names=""
    for program in "${PROGRAMS[@]}"; do
        if [[ " ${LEFT_OUT[$driver]:-} " == *" $program "* ]]; then
            table+=("$(printf '%-9s %-26s left out' "$driver" "$program")")
        else
            names+="${names:+|}$program"
        fi
    done
    KV_REQUIRE_DRIVERS=ON KV_VIRGL_PRELOAD="$preload" "$KV_ROOT/scripts/with_driver.sh" "$driver" \
        ctest --test-dir "$folder" --parallel "$(nproc)" --no-tests=error -R "^($names)/" \
        ${SUITES_LEFT_OUT[$driver]:+-E "${SUITES_LEFT_OUT[$driver]}"} >"$output" 2>&1 || status=$?
    tail -1 "$output"
    touch "$records/LastTest.log" "$records/LastTestsFailed.log"
    cp "$records/LastTest.log" "$log"
    while read -r program passed failed skipped seconds; do
        table+=("$(printf '%-9s %-26s %7d %7d %8d %8.1f' "$driver" "$program" "$passed" "$failed" "$skipped" "$seconds")")
    done < <(count_by_program "$log" "$records/LastTestsFailed.log")
    if ((status != 0)); then
        any_failed=1
        say "failed on $driver; see $log"
        grep -E '^\[  FAILED  \] .* \([0-9]+ ms\)$' "$log" || true
        cat "$records/LastTestsFailed.log"
    fi
done

say "drivers"
printf '%s\n' "${table[@]}"
exit "$any_failed"
