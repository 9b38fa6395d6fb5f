#!/usr/bin/env bash
# Builds upnputil as it is shipped and runs it with the arguments given; without any, on the example: which resource of
# a photo does a television show best?
set -euo pipefail
root=$(cd "$(dirname "$0")" && pwd -P)
. "$root/Scripts/dependencies.sh"
. "$root/Scripts/build.sh"

require cmake ninja-build g++ ccache libcli11-dev rapidjson-dev
build release "$root/build/run" upnputil -DUPNP_BUILD_TESTS=OFF
if [ $# -eq 0 ]; then
    set -- select "$root/Examples/photo.xml" --sink-file "$root/Examples/television.txt" --target 10.77.0.9
fi
exec "$root/build/run/bin/upnputil" "$@"
