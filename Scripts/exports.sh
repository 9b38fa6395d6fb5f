#!/usr/bin/env bash
# Compares what the libraries export with the lists in Libs/exports, so that the interface changes on purpose only:
# ./exports.sh, or ./exports.sh --update, which writes the lists. A line is the kind of a symbol (T a function, D or B
# data) and its name. Weak symbols are left out: they are templates of the standard library, as the compiler likes.
# The linker goes by the lists, too; therefore the libraries are looked at as the code alone would have them, and as shipped.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd -P)
. "$root/Scripts/dependencies.sh"
. "$root/Scripts/build.sh"
lists=$root/Libs/exports

exports() {
    nm --dynamic --defined-only --demangle --no-weak "$1" | sed 's/^[0-9a-f]* //; /^A /d; s/@@.*//' | LC_ALL=C sort -u
}

# compare LIBRARY: 1 when its list is another one.
compare() {
    local name
    name=$(basename "$1" .so)
    diff -u --label "Libs/exports/$name.txt" "$lists/$name.txt" --label "exported by $name.so" <(exports "$1") >&2
}

case ${1-} in
"" | --update) ;;
*)
    echo "usage: $0 [--update]" >&2
    exit 2
    ;;
esac
require cmake ninja-build g++ ccache libcli11-dev rapidjson-dev
bare=$root/build/exports
shipped=$root/build/release
build release "$bare" UPnPUtilities -DUPNP_SYMBOL_VERSIONS=OFF
if [ "${1-}" = --update ]; then
    rm -rf "$lists" && mkdir "$lists"
    for library in "$bare"/lib/lib*.so; do
        exports "$library" >"$lists/$(basename "$library" .so).txt"
    done
    exit 0
fi

build release "$shipped" UPnPUtilities
libraries=("$bare"/lib/lib*.so "$shipped"/lib/lib*.so)
changed=
for library in "${libraries[@]}"; do
    compare "$library" || changed=1
done
for list in "$lists"/*.txt; do
    if [ ! -e "$bare/lib/$(basename "$list" .txt).so" ]; then
        echo "there is no library for $list" >&2
        changed=1
    fi
done
if [ -n "$changed" ]; then
    echo "$0: the libraries export something else than Libs/exports lists; if that is meant: Scripts/exports.sh --update" >&2
    exit 1
fi
echo "$((${#libraries[@]} / 2)) libraries export what is listed"
