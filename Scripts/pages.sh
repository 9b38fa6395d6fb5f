#!/usr/bin/env bash
# Runs what README.md, Examples/README.md and the pages of Docs say to type, and compares what comes out with what they
# show: Scripts/pages.sh [PAGE...]. A block "sh" is run in the repository's root, all blocks of a page by one shell; a
# block "text" right after it is what it prints, where " ..." stands for the rest of a line. A comment in front of a
# block, "<!-- needs: PROGRAM -->" or "<!-- not run: WHY -->", keeps it from being run where there is no such program,
# or everywhere.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd -P)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

# blocks PAGE: writes its block N to N.sh, which leaves its exit status in $status, what that prints to N.text, and the
# place in the page to N.where.
blocks() {
    awk -v folder="$folder/" '
        inside && /^```/ {
            inside = 0
            after = file ~ /sh$/
            if (after) { print "status=$?" >file }
            if (file != "") { close(file) }
            next
        }
        inside { if (file != "") { print >file }; next }
        /^<!-- not run: / { kept = 1; next }
        /^<!-- needs: / { kept = system("command -v " $3 " >/dev/null") != 0; next }
        /^```/ {
            inside = 1
            file = ""
            if ($0 == "```sh" && kept) { print FILENAME ":" NR ": not run" }
            if ($0 == "```sh" && !kept) {
                count += 1
                file = folder count ".sh"
                print FILENAME ":" NR >(folder count ".where")
            }
            if ($0 == "```text" && after) { file = folder count ".text" }
            if (file != "") { printf "" >file }
        }
        /./ { kept = 0; after = 0 }' "$1"
}

# same EXPECTED ACTUAL: whether two files have the same lines, but for what " ..." stands for.
same() {
    awk 'FILENAME == ARGV[1] { expected[++count] = $0; next }
        { line = expected[++seen] }
        sub(/ \.\.\.$/, " ", line) { $0 = substr($0, 1, length(line)) }
        $0 != line || seen > count { differs = 1 }
        END { exit differs || seen != count }' "$1" "$2"
}

# run_page PAGE: in a shell of its own.
run_page() {
    local block number status
    rm -f "$folder"/*
    blocks "$1"
    for block in $(cd "$folder" && find . -name '*.where' | sort -V); do
        number=$folder/$(basename "$block" .where)
        # shellcheck disable=SC1090
        . "$number.sh" >"$number.out" 2>"$number.log" </dev/null # sets status
        [ "$PWD" = "$root" ] || fail "$number" "leaves the repository's root"
        if [ -e "$number.text" ]; then
            same "$number.text" "$number.out" || fail "$number" "prints: $(diff "$number.text" "$number.out")"
        elif [ "$status" -ne 0 ]; then
            fail "$number" "ends with status $status"
        fi
        echo "$(cat "$number.where"): $(grep -m 1 . "$number.sh")"
    done
}

fail() {
    echo "$(cat "$1.where"): $2" >&2
    cat "$1.log" >&2
    exit 1
}

cd "$root"
export CMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER-$(command -v ccache || true)}
if [ $# -eq 0 ]; then set -- README.md Examples/README.md Docs/*.md; fi
for page in "$@"; do
    (set +eu && run_page "$page")
done
