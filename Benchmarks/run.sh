#!/usr/bin/env bash
# Builds as shipped and measures: allocations per operation, and times and ratios over the documents of real servers.
# ./run.sh --growth measures how time grows with the input; --hostile [SHAPE] what inputs made to be expensive cost, for
# the shapes whose name contains the text, and fails when one is past its bounds; --plot draws the pictures of
# Docs/Plots and writes the figures in them beside them; other arguments go to Google Benchmark.
# Wants a quiet machine.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd -P)
. "$root/Scripts/dependencies.sh"
. "$root/Scripts/build.sh"

# measure FILE ARGUMENT...: runs the benchmarks and writes name and nanoseconds of processor time of each, the median when
# there is one.
measure() {
    local file=$1 table
    shift
    table=$(mktemp)
    "$root/build/bench/bin/Benchmarks" --benchmark_out="$table" --benchmark_out_format=csv "$@" >/dev/null 2>&1
    awk -F, -v machine="$(sed -n 's/^model name[^:]*: //p;T;q' /proc/cpuinfo)" -v compiler="$(c++ --version | head -n 1)" \
        -v date="$(date -u +%F)" '
        BEGIN { printf "# nanoseconds of processor time; %s; %s; %s\n", machine, compiler, date }
        /^"BM_/ { gsub(/"/, ""); if ($1 !~ /_(mean|stddev|cv|BigO|RMS)$/) { sub(/_median$/, "", $1); print $1, $4 } }
        ' "$table" >"$file"
    rm -f "$table"
}

plot() {
    local plots=$root/Docs/Plots
    require gnuplot-nox
    mkdir -p "$plots"
    measure "$plots/comparison.txt" --benchmark_filter='BM_(Parse.*|Write|Path|Pugixml.*|Libxml2.*)$' \
        --benchmark_repetitions=15 --benchmark_report_aggregates_only --benchmark_min_time=0.02 \
        --benchmark_enable_random_interleaving=true
    measure "$plots/growth.txt" --benchmark_min_time=0.05 \
        --benchmark_filter='BM_(Growth/(Resources|ExtraInfo|AlbumArt|Namespaces|NestedStored|GroupSlavesRead|ConfigLoad)|GrowthOfBrowseResult|PathOfResources)/'
    env -C "$plots" gnuplot "$root/Benchmarks/plot.gp"
}

require cmake ninja-build g++ ccache libbenchmark-dev libpugixml-dev libxml2-dev
build bench "$root/build/bench" all
case ${1-} in
--hostile)
    require valgrind
    exec "$root/build/bench/bin/HostileReport" "${@:2}"
    ;;
--plot)
    plot
    exit
    ;;
esac
"$root/build/bench/bin/MemoryReport"
case ${1-} in
"") set -- --benchmark_filter='BM_(Parse.*|Write|Path|ChooseAmongMany|Pugixml.*|Libxml2.*)$' \
    --benchmark_repetitions=25 --benchmark_report_aggregates_only --benchmark_min_time=0.03 \
    --benchmark_enable_random_interleaving=true ;;
--growth) set -- --benchmark_filter='BM_(Growth|PathOfResources)' --benchmark_min_time=0.1 ;;
esac
exec "$root/build/bench/bin/Benchmarks" "$@"
