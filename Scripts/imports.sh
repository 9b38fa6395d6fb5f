#!/usr/bin/env bash
# Compares the functions that Docs/Porting.md says a device has to have with the undefined symbols of the product, built
# where none of the others is: ./imports.sh LIBRARY PORTING.MD
set -euo pipefail
export LC_ALL=C

# The symbols of the C and C++ libraries have a version.
called() { nm --dynamic --undefined-only "$1" | sed -n 's/^ *U \([^@]*\)$/\1/p' | c++filt | sed 's/(.*//' | sort -u; }

# The second column of the table of headers.
# shellcheck disable=SC2016 # backquotes of the page
listed() { sed -n '/^| Header |/,/^$/s/^|[^|]*|\([^|]*\)|.*/\1/p' "$1" | grep -o '`[^`]*`' | tr -d '`' | sort -u; }

diff -u --label "called by the product" <(called "$1") --label "listed in $(basename "$2")" <(listed "$2")
echo "$(listed "$2" | wc -l) functions are listed"
