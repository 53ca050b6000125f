#!/usr/bin/env bash
# make bench: builds the optimised preset and runs every benchmark program (bench/<area>/), one
# after the other. Extra arguments go to each program (e.g. --benchmark_filter=Zoom).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh
cmake --preset release >/dev/null
cmake --build --preset release
for b in build/release/bench/*/bench_*; do
  [ -x "$b" ] || continue
  echo "=== $b"
  "$b" --benchmark_repetitions=3 --benchmark_report_aggregates_only=true "$@"
done
