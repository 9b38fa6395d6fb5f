#!/usr/bin/env bash
# Builds as shipped and measures: allocations per operation, and times and ratios over the documents of real servers.
# ./run.sh --growth measures how time grows with the input; --hostile [SHAPE] what inputs made to be expensive cost, for
# the shapes whose name contains the text, and fails when one is past its bounds; other arguments go to Google Benchmark.
# Wants a quiet machine.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd -P)
. "$root/Scripts/dependencies.sh"
. "$root/Scripts/build.sh"

require cmake ninja-build g++ ccache libbenchmark-dev libpugixml-dev libxml2-dev
build bench "$root/build/bench" all
if [ "${1-}" = --hostile ]; then exec "$root/build/bench/bin/HostileReport" "${@:2}"; fi
"$root/build/bench/bin/MemoryReport"
case ${1-} in
"") set -- --benchmark_filter='BM_(Parse|Write|Road|ChooseAmongMany|Pugixml.*|Libxml2.*)$' \
    --benchmark_repetitions=25 --benchmark_report_aggregates_only --benchmark_min_time=0.03 \
    --benchmark_enable_random_interleaving=true ;;
--growth) set -- --benchmark_filter='BM_(Growth|RoadOfResources)' --benchmark_min_time=0.1 ;;
esac
exec "$root/build/bench/bin/Benchmarks" "$@"
