#!/usr/bin/env bash
# Builds the Debian packages into build/package: the libraries, what it takes to build programs with them, the tool, and the
# symbols for debuggers. Who answers for them is told by DEBFULLNAME and DEBEMAIL, as for Debian's own tools, or else is who
# wrote the last commit.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd -P)
. "$root/Scripts/dependencies.sh"

last_commit() { git -c safe.directory="$root" -C "$root" log -1 --format="$1" 2>/dev/null; }

contact() {
    if [ -n "${DEBEMAIL-}" ]; then
        echo "${DEBFULLNAME:-$(id -un)} <$DEBEMAIL>"
    else
        last_commit '%an <%ae>'
    fi
}

# fill FILE: FILE.in with its variables filled in.
fill() {
    sed -e "s/@CONTACT@/$contact/" -e "s/@DATE@/$date/" -e "s/@VERSION@/$version/" -e "s/@INTERFACE@/$interface/" \
        "$1.in" >"$1"
    rm "$1.in"
}

require cmake ninja-build g++ libcli11-dev rapidjson-dev debhelper
if ! contact=$(contact); then
    echo "$0: without commits, DEBFULLNAME and DEBEMAIL have to say who answers for the packages" >&2
    exit 2
fi
date=$(last_commit %cD || date -R)
version=$(sed -n 's/^ *VERSION \([0-9.]*\)$/\1/p' "$root/CMakeLists.txt")
case $version in
0.*) interface=${version%.*} ;;
*) interface=${version%%.*} ;;
esac

folder=$root/build/package
source=$folder/upnputilities-$version
rm -rf "$folder"
mkdir -p "$source"
tar -C "$root" --exclude ./build --exclude ./.git -c . | tar -C "$source" -x
mv "$source/Scripts/debian" "$source/debian"
mv "$source/debian/libupnputilities.install" "$source/debian/libupnputilities$interface.install"
fill "$source/debian/control"
fill "$source/debian/changelog"
quietly env -C "$source" dpkg-buildpackage --build=binary --no-sign
rm -rf "$source"
ls "$folder"/*.deb
