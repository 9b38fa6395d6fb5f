# What the scripts need beyond the checkout; to be sourced. Debian's package names stand for the things themselves.
# shellcheck shell=bash

can_install() { [ "$(id -u)" -eq 0 ] && command -v apt-get >/dev/null; }

has_package() {
    case $1 in
    cmake | clang-format | clang-tidy | codespell | debootstrap | doxygen | lintian | mandoc | meson | mypy | shellcheck | valgrind)
        command -v "$1"
        ;;
    ccache) command -v ccache || ! can_install ;; # builds go without it, too
    debhelper) command -v dh && command -v dpkg-buildpackage ;;
    ninja-build) command -v ninja ;;
    pkg-config) command -v pkg-config || ! can_install ;; # one test less without it
    gnuplot-nox) command -v gnuplot ;;
    g++) command -v g++ && command -v gcc ;;
    g++-12-multilib) [ "$(g++ -m32 -print-file-name=libstdc++.a)" != "$(g++ -print-file-name=libstdc++.a)" ] ;;
    g++-arm-linux-gnueabihf | g++-mips-linux-gnu) command -v "${1#g++-}-g++" ;;
    qemu-user) command -v qemu-arm && command -v qemu-mips ;;
    libcli11-dev) [ -e /usr/include/CLI/CLI.hpp ] ;;
    python3-jsonschema) python3 -c 'import jsonschema' ;;
    rapidjson-dev) [ -e /usr/include/rapidjson/rapidjson.h ] ;;
    googletest) [ -e /usr/src/googletest/googletest/include/gtest/gtest.h ] ;;
    libbenchmark-dev) [ -e /usr/include/benchmark/benchmark.h ] ;;
    libpugixml-dev) [ -e /usr/include/pugixml.hpp ] ;;
    libexpat1-dev) [ -e /usr/include/expat.h ] ;;
    libxml2-dev) [ -e /usr/include/libxml2/libxml/parser.h ] ;;
    clang) command -v clang && command -v clang++ ;;
    libclang-rt-14-dev) compgen -G '/usr/lib/llvm-*/lib/clang/*/lib/linux/libclang_rt.fuzzer-*.a' ;;
    *) dpkg-query -W -f '${Status}' "$1" | grep -q ' installed$' ;;
    esac >/dev/null 2>&1
}

# require PACKAGE...: installs those that are missing, as root on Debian; otherwise says which they are, and fails.
require() {
    local package missing=()
    for package in "$@"; do
        has_package "$package" || missing+=("$package")
    done
    if [ ${#missing[@]} -eq 0 ]; then return 0; fi
    if ! can_install; then
        echo "$0: missing; on Debian: apt-get install ${missing[*]}" >&2
        return 3
    fi
    export DEBIAN_FRONTEND=noninteractive
    stage "Installing ${missing[*]}" apt-get update
    quietly apt-get install -y --no-install-recommends "${missing[@]}"
}

# require_stopped PACKAGE...: as require, as root, and keeps the services among them from starting, now and with the machine.
require_stopped() {
    # shellcheck disable=SC2016 # expanded by the shell within
    unshare --mount bash -euo pipefail -c 'mount --bind /bin/true /usr/sbin/invoke-rc.d && mount --bind /bin/true /usr/bin/deb-systemd-invoke
        script=$0 && . "$1" && shift && require "$@"' "$0" "${BASH_SOURCE[0]}" "$@" || return
    local service
    for service in "$@"; do update-rc.d "$service" disable >/dev/null 2>&1 || true; done
}

# quietly COMMAND...: what it prints is shown, on standard error, when it fails; on a terminal, its last line meanwhile.
quietly() { stage "" "$@"; }

# stage NAME COMMAND...: as quietly, and says NAME once the command has something to do.
stage() {
    local name=$1 log status=0
    shift
    log=$(mktemp)
    "$@" </dev/null 2>&1 | tee "$log" | show_progress "$name" || status=3
    if [ $status -ne 0 ]; then
        echo "$0: failed: $*" >&2
        tail -n 200 "$log" >&2
    fi
    rm -f "$log"
    return $status
}

# show_progress NAME: says NAME when lines come that tell of work; on a terminal, shows the lines one over the other.
show_progress() {
    local name=$1 line width clear=
    if [ -t 2 ]; then
        clear=$'\r\e[K'
        width=$(tput cols 2>/dev/null) || width=80
    fi
    while IFS= read -r line || [ -n "$line" ]; do
        line=${line##*$'\r'}
        case $line in "" | *"globbed directories..." | "ninja: no work to do.") continue ;; esac
        if [ -n "$name" ]; then
            echo "$name" >&2
            name=
        fi
        if [ -n "$clear" ]; then printf '%s%s' "$clear" "${line:0:width-1}" >&2; fi
    done
    printf '%s' "$clear" >&2
}
