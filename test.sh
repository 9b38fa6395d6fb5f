#!/usr/bin/env bash
# Builds everything and runs the tests: ./test.sh [PRESET...] (dev), ./test.sh --all for all presets that run here at
# speed, ./test.sh --all-targets for the other processors, under emulation, or ./test.sh devices against media servers
# and renderers of others.
set -euo pipefail
root=$(cd "$(dirname "$0")" && pwd -P)
. "$root/Scripts/dependencies.sh"
. "$root/Scripts/build.sh"

presets=("${@:-dev}")
case ${1-} in
-h | --help)
    sed -n '2,4s/^# //p' "$0"
    exit
    ;;
--all) presets=(dev release-tests platform asan asan-clang tsan i386) ;;
--all-targets) presets=(i386 armhf mips) ;;
esac

for preset in "${presets[@]}"; do
    if [ "$preset" = devices ]; then
        "$root/Tests/Devices/run.sh"
        continue
    fi
    packages=(cmake ninja-build g++ ccache libcli11-dev rapidjson-dev googletest pkg-config)
    case $preset in
    dev | release-tests | platform | asan | tsan) ;;
    asan-clang) packages+=(clang libclang-rt-14-dev) ;;
    i386) packages+=(g++-12-multilib) ;;
    valgrind) packages+=(valgrind) ;;
    armhf) packages+=(g++-arm-linux-gnueabihf qemu-user) ;;
    mips) packages+=(g++-mips-linux-gnu qemu-user) ;;
    *)
        echo "$0: no tests for a preset \"$preset\"; there are dev, release-tests, platform, asan, asan-clang, tsan," \
            "valgrind, i386, armhf, mips, devices" >&2
        exit 2
        ;;
    esac
    require "${packages[@]}"
    build "$preset" "$root/build/$preset" all
    echo "Preset $preset"
    env -C "$root" ctest --preset "$preset" --parallel "$(nproc)"
done
