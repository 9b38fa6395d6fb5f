#!/usr/bin/env bash
# Builds as shipped and measures: allocations per operation, and times and ratios over the documents of real servers.
# ./run.sh --growth measures how time grows with the input; --hostile [SHAPE] what inputs made to be expensive cost, for
# the shapes whose name contains the text, and fails when one is past its bounds; --plot draws the pictures of
# Docs/Plots and writes the figures in them next to them; other arguments go to Google Benchmark.
# Wants a quiet machine.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd -P)
. "$root/Scripts/dependencies.sh"
. "$root/Scripts/build.sh"

# measure FILE ARGUMENT...: runs the benchmarks several times and writes name and nanoseconds of processor time of each,
# the median.
measure() {
    local file=$1
    shift
    "$root/build/bench/bin/Benchmarks" --benchmark_out="$file.csv" --benchmark_out_format=csv \
        --benchmark_report_aggregates_only "$@" >"$file.log" 2>&1 || {
        cat "$file.log" >&2
        return 1
    }
    awk -F, -v machine="$(sed -n 's/^model name[^:]*: //p;T;q' /proc/cpuinfo)" -v compiler="$(c++ --version | head -n 1)" \
        -v date="$(date -u +%F)" '
        BEGIN { printf "# nanoseconds of processor time; %s; %s; %s\n", machine, compiler, date }
        /^"BM_.*_median"/ { gsub(/"/, ""); sub(/_median$/, "", $1); print $1, $4 }
        ' "$file.csv" >"$file"
}

# has_figures FILE NAME...: fails when the file lacks one, so that no picture is drawn with a bar or a line missing.
has_figures() {
    local file=$1 name
    shift
    for name in "$@"; do
        grep -qE "^$name(/[0-9]+)? [0-9]" "$file" || {
            echo "$0: no figures of $name" >&2
            return 1
        }
    done
}

# The pictures and their figures replace those in Docs/Plots when all of them are there.
plot() {
    local drawn=$root/build/bench/plots script=$root/Benchmarks/plot.gp bars series
    require gnuplot-nox
    rm -rf "$drawn"
    mkdir -p "$drawn" "$root/Docs/Plots"
    read -ra series < <(sed -n 's/^series = "\(.*\)"$/\1/p' "$script")
    mapfile -t bars < <(grep -oE 'BM_[A-Z][A-Za-z0-9]+' "$script" | sort -u)
    measure "$drawn/comparison.txt" --benchmark_filter='BM_(Parse.*|Write|Path|Pugixml.*|Libxml2.*)$' \
        --benchmark_repetitions=15 --benchmark_min_time=0.02 --benchmark_enable_random_interleaving=true
    has_figures "$drawn/comparison.txt" "${bars[@]}"
    measure "$drawn/growth.txt" --benchmark_filter="BM_($(IFS='|' && echo "${series[*]}"))/" \
        --benchmark_repetitions=5 --benchmark_min_time=0.02
    has_figures "$drawn/growth.txt" "${series[@]/#/BM_}"
    env -C "$drawn" gnuplot "$script"
    cp "$drawn"/{comparison,growth}.{txt,svg} "$root/Docs/Plots"
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
