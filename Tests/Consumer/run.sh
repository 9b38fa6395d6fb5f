#!/bin/sh
# Tries the library as programs find it that are not part of the project.
#   run.sh install BUILD TREE        installs the build folder BUILD, and moves what came out to TREE
#   run.sh cmake TREE VERSION        the consumers, built by CMake against TREE
#   run.sh pkg-config TREE VERSION   the same by pkg-config
#   run.sh meson TREE VERSION        the same by Meson
#   run.sh subproject TREE VERSION   the library as a part of the consumers' project, shared and as archives; installed with
#                                    them, and the archives found from outside
#   run.sh tool TREE VERSION         versions, and the tool with its manual page and its completion
# CMAKE, CC, CXX and PKG_CONFIG name the programs to use. Everything is written next to TREE.
set -eu
export PKG_CONFIG_PATH
here=$(cd "$(dirname "$0")" && pwd -P)

fail() {
    echo "$*" >&2
    exit 1
}

# expect WHAT EXPECTED ACTUAL
expect() {
    [ "$2" = "$3" ] || fail "$1: \"$3\" instead of \"$2\""
    echo "$1: $3" | tr '\n' ' ' && echo
}

# folder TREE NAME: that of a file which may lie at several depths.
folder() {
    found=$(find "$1" -name "$2" | head -n 1)
    [ -n "$found" ] || fail "$1: no $2"
    dirname "$found"
}

# quietly LOG COMMAND...: what it prints is shown when it fails.
quietly() {
    log=$1
    shift
    "$@" >"$log" 2>&1 || { cat "$log" && exit 1; }
}

run_install() {
    first=$2.first
    rm -rf "$2" "$first"
    mkdir -p "$(dirname "$2")"
    quietly "$2.log" "$CMAKE" --install "$1" --prefix "$first"
    mv "$first" "$2"
    expect "fixed to one place" "" "$(grep -rlF "$first" "$2" || true)"
    expect "private headers" "" "$(cd "$2/include/upnputilities" && find . -path '*/*/*/*/*' ! -path './UPnP/ControlPoint/Stack/*' -o -path '*/Shared/*')"
    expect "in include" upnputilities "$(ls "$2/include")"
}

# write_headers TREE FOLDER: a source for each installed header, which includes nothing else.
write_headers() {
    rm -rf "$2" && mkdir "$2"
    (cd "$1/include/upnputilities" && find . -name '*.h') | sed 's|^\./||' | while read -r header; do
        echo "#include <$header>" >"$2/$(echo "$header" | tr / _).cpp"
    done
}

# expect_programs FOLDER VERSION
expect_programs() {
    expect "C" "$2: Salt & Honey, 00:03:35.000" "$("$1/consumer-c")"
    expect "C++" "$2: http://10.0.0.2/1.mp3, 3, written" "$("$1/consumer-cpp")"
}

run_cmake() {
    build=$1.cmake
    rm -rf "$build"
    write_headers "$1" "$1.headers"
    quietly "$build.log" "$CMAKE" -S "$here" -B "$build" -DCMAKE_PREFIX_PATH="$1" -DEXPECTED_VERSION="$2" \
        -DCMAKE_CXX_FLAGS="-Wall -Wextra -Werror" -DHEADERS="$(find "$1.headers" -name '*.cpp' | tr '\n' ';')"
    quietly "$build.log" "$CMAKE" --build "$build" --parallel 2
    expect_programs "$build" "$2"
}

# run_pkg_config TREE VERSION [--static]
run_pkg_config() {
    build=$1.pkg-config
    rm -rf "$build" && mkdir "$build"
    PKG_CONFIG_PATH=$(folder "$1" upnputilities.pc)
    expect "pkg-config" "$2" "$("$PKG_CONFIG" --modversion upnputilities)"
    flags=$("$PKG_CONFIG" ${3:+"$3"} --cflags --libs upnputilities)
    if [ -z "${3-}" ]; then flags="$flags -Wl,-rpath,$(folder "$1" libUPnPUtilities.so)"; fi
    # shellcheck disable=SC2086 # several words
    "$CC" "$here/Consumer.c" -o "$build/consumer-c" $flags
    # shellcheck disable=SC2086
    "$CXX" -std=c++17 "$here/Consumer.cpp" -o "$build/consumer-cpp" $flags
    expect_programs "$build" "$2"
}

run_meson() {
    build=$1.meson
    rm -rf "$build"
    PKG_CONFIG_PATH=$(folder "$1" upnputilities.pc)
    quietly "$build.log" meson setup "$build" "$here" -Dexpected_version="= $2"
    quietly "$build.log" meson compile -C "$build"
    expect_programs "$build" "$2"
}

run_subproject() {
    parent=$1.subproject
    for shared in ON OFF; do
        rm -rf "$parent" "$parent.tree"
        quietly "$parent.log" "$CMAKE" -S "$here" -B "$parent" -DUPNP_SOURCE="$(cd "$here/../.." && pwd -P)" \
            -DUPNP_INSTALL=ON -DBUILD_SHARED_LIBS=$shared -DCMAKE_INSTALL_PREFIX="$parent.tree"
        quietly "$parent.log" "$CMAKE" --build "$parent" --parallel 2
        quietly "$parent.log" "$CMAKE" --install "$parent"
        rm -rf "$parent"
        expect_programs "$parent.tree/bin" "$2"
    done
    run_cmake "$parent.tree" "$2"
    if [ -n "$PKG_CONFIG" ]; then run_pkg_config "$parent.tree" "$2" --static; fi
}

# help_rows PATTERN SUBCOMMAND...: what stands first in those lines of a help text that PATTERN describes.
help_rows() {
    pattern=$1
    shift
    upnputil "$@" --help | sed -n "s/^  \($pattern\) .*/\1/p" | sort
}

# offered WORD...: what is offered for the last one.
offered() { bash "$here/complete.bash" "$completion" "$@" | sort; }

# expect_help SUBCOMMAND...: the manual page and the completion know what the help text lists.
expect_help() {
    choices=$(help_rows "[a-z][a-z-]*" "$@")
    if [ -n "$choices" ]; then
        expect "completion of upnputil $*" "$choices" "$(offered upnputil "$@" "")"
        for choice in $choices; do
            (expect_help "$@" "$choice")
        done
        return
    fi
    options=$(help_rows "--[a-z-]*" "$@")
    expect "completion of upnputil $*" "$options" "$(offered upnputil "$@" --)"
    section=$(sed -n "/^\.SS $*\$/,/^\.S[SH]/p" "$page" | sed 's/\\-/-/g')
    [ -n "$section" ] || fail "the manual page lacks $*"
    for option in $(echo "$options" | grep -vxE -e '--help|--json(-lines)?'); do
        echo "$section" | grep -q -e "$option\b" || fail "the manual page lacks $option of $*"
    done
}

# The names of features and properties, and files, which help texts tell apart by what they call a value.
expect_names() {
    expect "completion of a feature" "TimeSeek" "$(offered upnputil describe --feature Time)"
    expect "completion of a property" "PlayModeList= PlaySpeedList=" "$(offered upnputil hook --property=Play | xargs)"
    expect "completion of a record" "SSDP" "$(offered upnputil config --record SS)"
    expect "completion of a file after a value" "$page" "$(offered upnputil select --object 1 "${page%.*}")"
    expect "completion of a file" "$page" "$(offered upnputil describe --part ":nexturi=${page%.*}")"
    printf '[A b]\n[C]\n' >"$1.conf"
    expect "completion of a section" 'A\ b C' "$(offered upnputil config "$1.conf" "" | xargs -d '\n')"
    expect "completion of an option that names one" C "$(offered upnputil monitor --config "$1.conf" --section C)"
    expect "completion of what help is wanted for" item "$(offered upnputil help create it)"
    expect "completion of a number" "" "$(offered upnputil hook --count "")"
    for name in $(offered upnputil describe --feature "") $(offered upnputil describe --property "" | tr -d =) \
        $(offered upnputil config --record ""); do
        grep -q "\b$name\b" "$page" || fail "the manual page lacks $name"
    done
}

run_tool() {
    libraries=$(folder "$1" libUPnPUtilities.so)
    page=$1/share/man/man1/upnputil.1
    completion=$1/share/bash-completion/completions/upnputil
    PATH=$1/bin:$PATH
    expect "tool" "upnputil $2" "$(upnputil --version)"
    expect "SONAME" "libUPnPUtilities.so.${2%.*}" \
        "$(objdump -p "$libraries/libUPnPUtilities.so" | sed -n 's/^ *SONAME *//p')"
    expect "file" "libUPnPUtilities.so.$2" "$(basename "$(readlink -f "$libraries/libUPnPUtilities.so")")"
    expect "change log" "## [$2]" "$(grep -o -m 1 '^## \[[0-9.]*\]' "$1/share/doc/upnputilities/CHANGELOG.md")"
    expect "manual page" "upnputil $2" "$(sed -n 's/^\.TH.*"\(upnputil [0-9.]*\)".*/\1/p' "$page")"
    if command -v mandoc >/dev/null; then expect "lint of the manual page" "" "$(mandoc -T lint "$page")"; fi
    if command -v man >/dev/null; then
        expect "faults of the manual page" "" "$(LC_ALL=C MANWIDTH=80 man --warnings -l "$page" 2>&1 >/dev/null)"
    fi
    [ -n "$(help_rows "[a-z]*")" ] || fail "upnputil --help lists no subcommand"
    expect_help
    expect_names "$1"
}

command=$1
shift
"run_$(echo "$command" | tr - _)" "$@"
