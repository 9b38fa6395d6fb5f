# Running a script again in namespaces of its own; to be sourced.
# shellcheck shell=bash

# skip WHY: leaves out what can't be done here; status 77 stands for that.
skip() {
    echo "$0: skipped: $*" >&2
    exit 77
}

# require_namespaces [OPTION...]: skips where there are none to be had; the options are those of unshare.
require_namespaces() {
    [ "$(id -u)" -eq 0 ] || skip "needs root"
    unshare --mount-proc --pid --fork "$@" true 2>/dev/null || skip "needs namespaces of its own"
}

# in_namespaces [OPTION...] COMMAND...: runs it with processes and mounts of its own, which end with it. It ends with this
# script, however that is ended: the kernel sees to it.
in_namespaces() {
    trap '{ kill -KILL $!; wait $!; } 2>/dev/null; exit 130' INT TERM HUP
    setpriv --pdeathsig KILL unshare --mount-proc --pid --fork --kill-child "$@" &
    wait $!
}

# make_network NAME: gives a new network namespace a network of its own with one address, and multicast; both ends of the
# cable are in it.
make_network() {
    ip link set lo up
    echo 1 >/proc/sys/net/ipv6/conf/all/disable_ipv6
    ip link add "$1" type veth peer name "$1.end" || return
    ip link set "$1.end" up
    ip address add 10.77.0.2/24 dev "$1"
    ip link set "$1" multicast on up
    ip route add default dev "$1"
}
