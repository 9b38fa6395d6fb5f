#!/usr/bin/env bash
# Counts the instructions of each stage over the documents of real servers, as shipped, as ratios to pugixml's bare
# in-place parse of the same documents; the counts are the same on a busy machine. ./instructions.sh [STAGE...] (all).
# Fails when a stage passes its bound in instructions.txt by more than 10 %.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd -P)
scripts=$(dirname "$(ls "$root"/{Scripts,CMake}/build.sh 2>/dev/null | head -n 1)")
. "$scripts/dependencies.sh"
. "$scripts/build.sh"
bounds=$root/Benchmarks/instructions.txt

# counts FOLDER: a line a stage, its name and its instructions, from what callgrind left in the folder.
counts() {
    sed -n -e 's/^desc: Trigger: Client Request: //p' -e 's/^totals: //p' $(ls -v "$1"/callgrind.*) |
        sed -n '/^[a-z]/{N;s/\n/ /;p}'
}

# report: reads counts; prints the table, and fails at a stage past its bound.
report() {
    awk -v documents="$(ls "$root"/{Benchmarks/Data,Tests/Data/didl}/*.xml | wc -l)" '
        NR == FNR { if ($0 !~ /^#/ && NF) bound[$1] = $2; next }
        $1 == "pugixml" { yardstick = $2 }
        { name[++stages] = $1; count[stages] = $2 }
        END {
            if (!yardstick) { print "no yardstick" > "/dev/stderr"; exit 1 }
            printf "%-10s %22s %9s %7s\n", "stage", "instructions/document", "ratio", "bound"
            for (i = 1; i <= stages; ++i) {
                ratio = count[i] / yardstick
                past = name[i] in bound && ratio > 1.1 * bound[name[i]]
                printf "%-10s %22.0f %9.3f %7s%s\n", name[i], count[i] / documents, ratio, bound[name[i]],
                    past ? "  PASSED" : ""
                failed = failed || past
            }
            exit failed
        }' "$bounds" -
}

require cmake ninja-build g++ ccache libpugixml-dev libxml2-dev valgrind
build bench "$root/build/bench" Instructions
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
if [ $# -gt 0 ]; then set -- pugixml "$@"; fi
quietly env LD_BIND_NOW=1 valgrind --tool=callgrind --collect-atstart=no --callgrind-out-file="$folder/callgrind" \
    "$root/build/bench/bin/Instructions" "$@"
counts "$folder" | report
