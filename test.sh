#!/usr/bin/env bash
# Builds everything and runs the tests: ./test.sh [PRESET...] (dev), or ./test.sh --all
set -euo pipefail
root=$(cd "$(dirname "$0")" && pwd -P)
. "$root/CMake/dependencies.sh"
. "$root/CMake/build.sh"

presets=("${@:-dev}")
if [ "${1-}" = --all ]; then presets=(dev release asan asan-clang i386); fi

for preset in "${presets[@]}"; do
    packages=(cmake ninja-build g++ ccache googletest)
    case $preset in
    dev | release | asan) ;;
    asan-clang) packages+=(clang libclang-rt-14-dev) ;;
    i386) packages+=(g++-multilib) ;;
    *)
        echo "$0: no tests for a preset \"$preset\"; there are dev, release, asan, asan-clang, i386" >&2
        exit 2
        ;;
    esac
    require "${packages[@]}"
    build "$preset" "$root/build/$preset" all
    echo "Preset $preset"
    env -C "$root" ctest --preset "$preset" --parallel "$(nproc)"
done
