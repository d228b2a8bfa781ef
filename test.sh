#!/usr/bin/env bash
# Installs what is missing, builds everything and runs all tests. Needs no display.
#   ./test.sh [PRESET] [ctest options...]      PRESET: release (the default), debug, asan, asan-viewer, tsan, coverage
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/scripts/setup.sh"

preset=release
if (($# > 0)) && [[ "$1" != -* ]]; then
    preset="$1"
    shift
fi
case "$preset" in
    release | debug | asan | asan-viewer | tsan | coverage) ;;
    *)
        complain "there is no preset '$preset' to test: release, debug, asan, asan-viewer, tsan, coverage"
        exit 2
        ;;
esac

install_missing "${KV_BUILD_PACKAGES[@]}" "${KV_TEST_PACKAGES[@]}"
configure_preset "$preset"
if [[ "$preset" == tsan ]]; then
    # Only tests with threads: the rest has nothing to show here, and drivers raise many reports that are not ours.
    build_preset tsan kv_thread_tests
    set -- -L tsan "$@"
else
    build_preset "$preset"
fi

say "testing build/$preset"
# The tests bring their own X server: no window may appear on the display of the user.
unset DISPLAY WAYLAND_DISPLAY
cd "$KV_ROOT"
exec ctest --preset "$preset" --parallel "$(nproc)" --no-tests=error "$@"
