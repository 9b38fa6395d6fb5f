#!/usr/bin/env bash
# Measures the library as it goes onto a device, stripped, for the processors that have a bound, and fails when it has
# become too large. ./size.sh --largest also lists the largest functions and tables.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd -P)
. "$root/Scripts/dependencies.sh"
. "$root/Scripts/build.sh"
library=lib/libUPnPUtilities.so

# list_largest NM LIBRARY: sizes, kinds (t a function, d or r a table) and names. A function that the library itself calls
# has a second name.
list_largest() {
    "$1" --demangle --print-size --size-sort --reverse-sort --radix=d "$2" | grep -v localalias | cut -d ' ' -f 2- |
        sed -n '1,25s/^0*//p'
}

# within BOUND SIZE WHAT: 1 when SIZE is larger than BOUND KiB.
within() {
    echo "$3: $2 bytes, $(($1 * 1024)) are allowed"
    [ "$2" -le $(($1 * 1024)) ]
}

# measure PRESET PREFIX KIB [CODE_KIB]: builds the library; 1 when it is larger stripped, or its code and constants.
measure() {
    local built=$root/build/$1/$library stripped size code
    build "$1" "$root/build/$1" UPnPUtilities
    stripped=$(mktemp)
    "$2strip" --strip-all -o "$stripped" "$built"
    size=$(stat -c %s "$stripped")
    code=$("$2size" -A "$stripped" | awk '$1 == ".text" || $1 == ".rodata" { sum += $2 } END { print sum }')
    rm -f "$stripped"
    if [ -n "$largest" ]; then list_largest "$2nm" "$built"; fi
    within "$3" "$size" "$1, stripped" && within "${4-$3}" "$code" "$1, code and constants"
}

largest=
case ${1-} in
"") ;;
--largest) largest=1 ;;
*)
    echo "usage: $0 [--largest]" >&2
    exit 2
    ;;
esac
require cmake ninja-build g++ g++-arm-linux-gnueabihf googletest libcli11-dev rapidjson-dev ccache
status=0
if [ "$(uname -m)" = x86_64 ]; then measure release "" 160 84 || status=1; fi
measure armhf arm-linux-gnueabihf- 108 || status=1
if [ $status -ne 0 ]; then echo "$0: too large" >&2; fi
exit $status
