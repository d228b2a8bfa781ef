#!/usr/bin/env bash
# Builds the release preset and runs every benchmark: mean, median and deviation of five repetitions. It runs for about
# five minutes; results are only meaningful on a machine without other load.
#   bench/run.sh [FOLDER]      writes one text file per benchmark to FOLDER (default: build/bench)
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/../scripts/setup.sh"

folder="${1:-$KV_ROOT/build/bench}"
benchmarks=(align_bench call_bench clip_height_bench cut_bench cut_session_bench geometry_objects_bench grid_triangulation_bench hps_bench import_bench mouse_bench pcm_bench pick_bench plane_bench point_files_bench ply_bench points_bench render_bench save_bench screenshot_bench stl_bench)
install_missing "${KV_BUILD_PACKAGES[@]}" "${KV_TEST_PACKAGES[@]}"  # mouse_bench needs an X server
configure_preset release
build_preset release "${benchmarks[@]}" import_memory mesh_file_times points_memory
mkdir -p "$folder"
for name in "${benchmarks[@]}"; do
    say "$name"
    "$KV_ROOT/build/release/bin/$name" --benchmark_repetitions=5 --benchmark_report_aggregates_only=true |
        tee "$folder/$name.txt"
done
say "import_memory"
"$KV_ROOT/build/release/bin/import_memory" | tee "$folder/import_memory.txt"
say "points_memory"
"$KV_ROOT/build/release/bin/points_memory" | tee "$folder/points_memory.txt"
say "mesh_file_times"
"$KV_ROOT/build/release/bin/mesh_file_times" | tee "$folder/mesh_file_times.txt"
