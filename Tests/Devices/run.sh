#!/usr/bin/env bash
# Tries the library against the media servers and renderers that Debian has, with media that it makes itself: what servers
# answer is read, what is written is read by others and played, and an upload is made. It all happens in a network
# namespace of its own, so that nothing listens on the machine's interfaces, and ends with it. Needs root; where it can't
# be done, it says so and ends with status 77, which stands for a skip.
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd -P)
. "$root/Scripts/dependencies.sh"
. "$root/Scripts/build.sh"
packages=(
    minidlna gerbera rygel rygel-playbin gmediarender gstreamer1.0-plugins-good gstreamer1.0-plugins-bad gstreamer1.0-libav
    dbus-daemon ffmpeg imagemagick iproute2 python3-gi python3-lxml gir1.2-gupnp-1.6 gir1.2-gupnp-av-1.0
)

skip() {
    echo "$0: skipped: $*" >&2
    exit 77
}

# require_stopped PACKAGE...: as require, and keeps the services among them from starting, now and when the machine does.
require_stopped() {
    local policy=/usr/sbin/policy-rc.d status=0 service
    if [ -e "$policy" ]; then policy=; else printf '#!/bin/sh\nexit 101\n' >"$policy" && chmod +x "$policy"; fi
    require "$@" || status=$?
    if [ -n "$policy" ]; then rm "$policy"; fi
    for service in "$@"; do update-rc.d "$service" disable >/dev/null 2>&1 || true; done
    return $status
}

# A network with one address, and multicast; both ends of the cable are in it.
make_network() {
    ip link set lo up
    echo 1 >/proc/sys/net/ipv6/conf/all/disable_ipv6
    ip link add dev0 type veth peer name dev1 || return
    ip link set dev1 up
    ip address add 10.77.0.2/24 dev dev0
    ip link set dev0 multicast on up
    ip route add default dev dev0
    mount -t proc proc /proc
}

if [ "${1-}" = --in-namespace ]; then
    make_network || skip "no network of its own can be made"
    export UPNPUTILITIES_LIBRARY=$root/build/run/lib/libUPnPUtilities.so
    exec /usr/bin/python3 -B "$root/Tests/Devices/devices.py" "$root/build/run/bin/upnputil" "$2"
fi

[ "$(id -u)" -eq 0 ] || skip "needs root"
unshare --net --mount --pid --fork true 2>/dev/null || skip "needs namespaces of its own"
missing=()
for package in "${packages[@]}"; do has_package "$package" || missing+=("$package"); done
if [ ${#missing[@]} -gt 0 ]; then
    can_install || skip "missing; on Debian: apt-get install ${missing[*]}"
    require_stopped "${missing[@]}"
fi
"$root/run.sh" --version >/dev/null # builds the tool and the library
folder=$(mktemp -d)
# Mounts and processes end with their namespaces, so that only files are left to remove.
trap 'rm -rf --one-file-system "$folder"' EXIT
trap 'exit 130' INT TERM HUP
unshare --net --mount --propagation private --pid --fork --kill-child "$0" --in-namespace "$folder"
