#!/usr/bin/env bash
# Builds and installs the checkout as shipped from two copies in folders of other names, and fails when a byte of what is
# installed differs.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd -P)
. "$root/Scripts/dependencies.sh"

# install_copy COPY: builds a copy of the checkout in the folder COPY and installs it into COPY.tree.
install_copy() {
    mkdir -p "$1"
    tar -C "$root" --exclude ./build --exclude ./.git -c . | tar -C "$1" -x
    quietly env -C "$1" CCACHE_DISABLE=1 cmake --preset release
    quietly env CCACHE_DISABLE=1 cmake --build "$1/build/release" --parallel "$(nproc)"
    quietly cmake --install "$1/build/release" --prefix "$1.tree"
}

require cmake ninja-build g++ libcli11-dev rapidjson-dev
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
install_copy "$folder/one"
install_copy "$folder/another one/that is deeper"
diff -r "$folder/one.tree" "$folder/another one/that is deeper.tree"
echo "two builds give the same $(find "$folder/one.tree" -type f | wc -l) files"
