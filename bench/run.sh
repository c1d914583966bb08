#!/usr/bin/env bash
# Runs all benchmarks of a build and prints the table of the ratios.
#
#   run.sh FOLDER [ARGS...]
#
# FOLDER holds the built programs and receives their results; ARGS go to those that measure times.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
folder=$1
shift

# The sizes take turns, so that a machine that gets slower meanwhile disturbs no ratio.
turns=(--benchmark_repetitions=5 --benchmark_min_time=0.1 --benchmark_enable_random_interleaving=true
    --benchmark_report_aggregates_only=true)
results=()
for name in reading readers pins; do
    results+=("$folder/$name.json")
    "$folder/${name}_bench" "${turns[@]}" --benchmark_out="$folder/$name.json" \
        --benchmark_out_format=json "$@"
done
"$folder/hostile_bench"
"$folder/board_bench"
python3 "$here/summary.py" "${results[@]}"
