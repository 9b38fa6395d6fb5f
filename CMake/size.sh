#!/usr/bin/env bash
# Measures the library as it goes onto a device, stripped, and fails when it has become too large. What is there of the
# builds as shipped is measured, the host's always. ./size.sh --largest also lists the largest functions and tables.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd -P)
. "$root/CMake/dependencies.sh"
. "$root/CMake/build.sh"
library=lib/libUPnPUtilities.so

# list_largest NM LIBRARY: sizes, kinds (t a function, d or r a table) and names. A function that the library itself calls
# has a second name.
list_largest() {
    "$1" --demangle --print-size --size-sort --reverse-sort --radix=d "$2" | grep -v localalias | cut -d ' ' -f 2- |
        sed -n '1,25s/^0*//p'
}

# measure PRESET PREFIX KIB: 1 when the stripped library is larger.
measure() {
    local built=$root/build/$1/$library stripped size
    stripped=$(mktemp)
    "$2strip" --strip-all -o "$stripped" "$built"
    size=$(stat -c %s "$stripped")
    rm -f "$stripped"
    echo "$1: $size bytes, $(($3 * 1024)) are allowed"
    if [ -n "$largest" ]; then list_largest "$2nm" "$built"; fi
    [ "$size" -le $(($3 * 1024)) ]
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
require cmake ninja-build g++ ccache
build release "$root/build/release" UPnPUtilities
status=0
if [ "$(uname -m)" = x86_64 ]; then measure release "" 96 || status=1; fi
if [ -e "$root/build/armhf/$library" ]; then measure armhf arm-linux-gnueabihf- 80 || status=1; fi
if [ $status -ne 0 ]; then echo "$0: too large" >&2; fi
exit $status
