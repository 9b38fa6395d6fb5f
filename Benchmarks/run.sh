#!/usr/bin/env bash
# Builds as shipped and measures: allocations per operation, times and ratios, and how time grows. Arguments go to Google
# Benchmark; without any, the ratios alone are measured, with repetitions.
set -euo pipefail
cd "$(dirname "$0")/.."
cmake --preset bench >/dev/null
cmake --build --preset bench --target Benchmarks MemoryReport >/dev/null
build/bench/bin/MemoryReport
if [ $# -gt 0 ]; then
    exec build/bench/bin/Benchmarks "$@"
fi
exec build/bench/bin/Benchmarks --benchmark_filter='BM_(Parse|Road|Write|PugixmlParse|PugixmlParseAndCopy|Libxml2Parse)$' \
    --benchmark_repetitions=15 --benchmark_report_aggregates_only --benchmark_enable_random_interleaving=true \
    --benchmark_min_time=0.05
