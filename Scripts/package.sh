#!/usr/bin/env bash
# Builds the Debian packages into build/package: the libraries, what it takes to build programs with them, the tool.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd -P)
. "$root/Scripts/dependencies.sh"
. "$root/Scripts/build.sh"

require cmake ninja-build g++ ccache libcli11-dev dpkg-dev
folder=$root/build/package
build release "$folder" all -DUPNP_BUILD_TESTS=OFF -DCMAKE_INSTALL_PREFIX=/usr -DCMAKE_SKIP_INSTALL_RPATH=ON
rm -f "$folder"/*.deb
quietly cpack --config "$folder/CPackConfig.cmake" -B "$folder"
ls "$folder"/*.deb
