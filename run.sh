#!/usr/bin/env bash
# Installs what is missing, builds, and shows the scans that are named, or a simulated set.
#   ./run.sh [FILE...]      in a window where there is a display, otherwise as scene.png
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/scripts/setup.sh"

install_missing "${KV_BUILD_PACKAGES[@]}"
configure_preset release
build_preset release scenepane simulate-scans
bin="$KV_ROOT/build/release/bin"

files=("$@")
if ((${#files[@]} == 0)); then
    demo="$KV_ROOT/demo"
    # The description is written last: where it exists, the set is complete.
    if [[ ! -f "$demo/bust.json" ]]; then
        say "simulating scans into $demo"
        "$bin/simulate-scans" --shape bust --scans 8 --size 640x480 --format pcm --seed 1 --out "$demo"
    fi
    files=("$demo"/bust_*.pcm)
fi

if [[ -n "${DISPLAY:-}" ]]; then
    say "showing ${#files[@]} file(s) in the window"
    exec "$bin/scenepane" -- "${files[@]}"
fi
picture="$KV_ROOT/scene.png"
say "no display: rendering ${#files[@]} file(s)"
status=0
rm -f "$picture"
"$bin/scenepane" --screenshot "$picture" -- "${files[@]}" || status=$?
[[ -f "$picture" ]] && printf '%s\n' "$picture"
exit "$status"
