# Building, for the scripts; to be sourced when root is the path of the checkout.
# shellcheck shell=bash

# build PRESET FOLDER TARGET [OPTION...]: configures FOLDER if that is due, and builds TARGET. Two at a time in one
# folder wait for each other.
build() {
    if ! mkdir -p "$2" || [ ! -w "$2" ]; then
        echo "$0: no right to write to $2; use a clone of your own" >&2
        return 3
    fi
    (
        if command -v flock >/dev/null; then flock 9; fi
        build_unlocked "$@"
    ) 9>"$2/.lock"
}

build_unlocked() {
    local preset=$1 folder=$2 target=$3 fresh=
    shift 3
    if command -v ccache >/dev/null; then export CMAKE_C_COMPILER_LAUNCHER=ccache CMAKE_CXX_COMPILER_LAUNCHER=ccache; fi
    if ! grep -qsxF "CMAKE_HOME_DIRECTORY:INTERNAL=${root:?}" "$folder/CMakeCache.txt"; then fresh=--fresh; fi
    if [ -n "$fresh" ] || [ ! -e "$folder/build.ninja" ] || [ "$root/CMakePresets.json" -nt "$folder/build.ninja" ]; then
        stage "Configuring (preset $preset)" env -C "$root" cmake --preset "$preset" -B "$folder" $fresh "$@" || return
    fi
    stage "Building $target (preset $preset)" cmake --build "$folder" --parallel "$(nproc)" --target "$target"
}
