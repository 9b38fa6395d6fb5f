#!/usr/bin/env bash
# Counts the instructions of each stage over the documents of real servers, as shipped, as ratios to pugixml's bare
# in-place parse of the same documents; the counts are the same on a busy machine. ./instructions.sh [STAGE...] (all).
# Fails when a stage passes its bound in instructions.txt by more than 10 %.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd -P)
. "$root/Scripts/dependencies.sh"
. "$root/Scripts/build.sh"
bounds=$root/Benchmarks/instructions.txt
stages=(parse write sendable selected choose thumbnail path list libxml2 pugixml-browse browse)

# count STAGE: a line with its name and the instructions of one pass over all documents.
count() {
    local log
    log=$(env LD_BIND_NOW=1 valgrind --tool=callgrind --toggle-collect=CountedCall --callgrind-out-file=/dev/null \
        "$root/build/bench/bin/Instructions" "$1" 2>&1 </dev/null) || { echo "$log" >&2; return 1; }
    sed -n "s/^==[0-9]*== Collected : \([0-9]*\)$/$1 \1/p" <<<"$log"
}

# report: reads counts; prints the table, and fails at a stage past its bound.
report() {
    awk -v documents="$(find "$root"/{Benchmarks/Data,Tests/Data/didl} -name '*.xml' | wc -l)" '
        NR == FNR { if ($0 !~ /^#/ && NF) bound[$1] = $2; next }
        $1 == "pugixml" { yardstick = $2 }
        { name[++rows] = $1; count[rows] = counts[$1] = $2 }
        END {
            if (!yardstick) { print "no yardstick" > "/dev/stderr"; exit 1 }
            printf "%-14s %22s %9s %7s\n", "stage", "instructions/document", "ratio", "bound"
            for (i = 1; i <= rows; ++i) {
                own = "pugixml-" name[i] # of a stage that does not run over the documents
                ratio = count[i] / (own in counts ? counts[own] : yardstick)
                over = name[i] in bound && ratio > 1.1 * bound[name[i]]
                printf "%-14s %22.0f %9.3f %7s%s\n", name[i], count[i] / documents, ratio, bound[name[i]],
                    over ? "  OVER ITS BOUND" : ""
                failed = failed || over
            }
            exit failed
        }' "$bounds" -
}

require cmake ninja-build g++ ccache libpugixml-dev libxml2-dev valgrind
build bench "$root/build/bench" Instructions
case " $* " in *" browse "*) set -- pugixml-browse "$@" ;; esac
for stage in pugixml "${@:-${stages[@]}}"; do
    count "$stage"
done | report
