#!/usr/bin/env bash
# Tries the library against the media servers and renderers that Debian has, with media that it makes itself: what servers
# answer is read, what is written is read by others and played, and an upload is made. It all happens in a network
# namespace of its own, so that nothing listens on the machine's interfaces, and ends with it. Needs root.
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd -P)
. "$root/Scripts/dependencies.sh"
. "$root/Scripts/namespaces.sh"
packages=(
    minidlna gerbera rygel rygel-playbin gmediarender gstreamer1.0-plugins-good gstreamer1.0-plugins-bad gstreamer1.0-libav
    dbus-daemon ffmpeg imagemagick iproute2 python3-gi python3-lxml gir1.2-gupnp-1.6 gir1.2-gupnp-av-1.0
)

if [ "${1-}" = --in-namespace ]; then
    make_network dev0 || skip "no network of its own can be made"
    mount -t tmpfs tmpfs /run
    mkdir /run/gerbera /run/upload
    sed 's|/var/lib/gerbera|/run/gerbera|; s|extend="no"|extend="yes"|' /etc/gerbera/config.xml >/run/gerbera.xml
    printf '%s\n' media_dir=/run/media {db,log}_dir=/run/minidlna friendly_name=minidlna inotify=no >/run/minidlna.conf
    printf '%s\n' '[general]' allow-{upload,deletion}=true {video,music,picture}-upload-folder=/run/upload \
        '[MediaExport]' title=rygel 'uris=/run/media/whole;/run/upload' monitor-grace-timeout=1 \
        '[Playbin]' title=playbin {audio,video}-sink='fakesink sync=true' >/run/rygel.conf # which ends when media are broken
    export HOME=/run XDG_RUNTIME_DIR=/run XDG_CONFIG_HOME=/run LC_ALL=C.UTF-8
    export PYTHONPATH=$root/Examples/ControlPoint UPNPUTILITIES_LIBRARY=$root/build/run/lib/libUPnPUtilities.so
    exec timeout 1800 /usr/bin/python3 -B "$root/Tests/Devices/devices.py" "$root" /run
fi
require_namespaces --net
require_stopped "${packages[@]}" || { can_install && exit 3; } || skip "these packages are missing"
"$root/run.sh" --version >/dev/null # builds the tool and the library
in_namespaces --net "$0" --in-namespace
