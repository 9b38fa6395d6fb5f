#!/usr/bin/env bash
# Builds the fuzz targets and runs each for SECONDS, as many at a time as there are processors:
# ./run.sh SECONDS [TARGET...]. Prints for each its executions, the edges of the code that it reached, and the seconds of
# processor time that it had, which are fewer on a machine that is busy otherwise. What it finds is
# in build/fuzz/found/TARGET; the inputs in "new" there are where the next run goes on.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd -P)
. "$root/Scripts/dependencies.sh"
. "$root/Scripts/build.sh"

usage() {
    echo "usage: $0 SECONDS [TARGET...]; a target is one of ${all[*]}" >&2
    exit 2
}

# The last number that follows a word in a log.
number_after() { sed -n "s/.*$1 *\([0-9][0-9]*\).*/\1/p" "$2" | tail -n 1; }

# seeds TARGET: the folders that it begins with: its own, and those of the documents for targets that parse them.
seeds() {
    local folder
    case $1 in
    ParseWriteFuzz | BrowseResultFuzz | ErrorFuzz | RecordFuzz | SendableFuzz)
        for folder in didl didl-odd didl-multi; do echo "$root/Tests/Data/$folder"; done
        ;;
    esac
    if [ -d "$root/Fuzz/Corpus/$1" ]; then echo "$root/Fuzz/Corpus/$1"; fi
}

# run TARGET: one line about it; the log's end when it found something.
run() {
    local found=$root/build/fuzz/found/$1 status=0 used folders TIMEFORMAT='%U %S'
    mapfile -t folders < <(seeds "$1")
    mkdir -p "$found/new"
    used=$({ time "$root/build/fuzz/bin/$1" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=1024 -print_final_stats=1 \
        -artifact_prefix="$found/" -dict="$root/Fuzz/DIDLLite.dict" "$found/new" "${folders[@]}" \
        >"$found/log" 2>&1 </dev/null; } 2>&1) || status=$?
    printf '%-22s %10s executions, %6s of %6s edges, %7s s, %s\n' "$1" \
        "$(number_after number_of_executed_units: "$found/log")" "$(number_after cov: "$found/log")" \
        "$(sed -n 's/.*Loaded .*(\([0-9]*\) inline.*/\1/p' "$found/log")" "$(awk '{ print $1 + $2 }' <<<"$used")" \
        "$([ $status -eq 0 ] && echo "nothing found" || echo "FAILED: $found")"
    if [ $status -ne 0 ]; then tail -n 60 "$found/log" >&2; fi
    return $status
}

all=()
for source in "$root"/Fuzz/*Fuzz.cpp; do
    all+=("$(basename "$source" .cpp)")
done
seconds=${1-}
case $seconds in "" | *[!0-9]*) usage ;; esac
shift
for target in "$@"; do
    [ -e "$root/Fuzz/$target.cpp" ] || usage
done

require cmake ninja-build clang libclang-rt-14-dev ccache libexpat1-dev libxml2-dev
build fuzz "$root/build/fuzz" all
export root seconds
export -f run seeds number_after
printf '%s\n' "${@:-${all[@]}}" | xargs -P "$(nproc)" -I '{}' bash -c 'run {}'
