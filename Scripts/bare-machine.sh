#!/usr/bin/env bash
# Does what a new user does, in a Debian 12 root with nothing in it but a clone: the commands of the README, a first and
# a second time, as root and as another user, and ./test.sh devices, for which it takes root. Needs root, debootstrap and a
# Debian mirror among apt's sources.
#   Scripts/bare-machine.sh [COMMIT]   (HEAD)
# The root is made in build/bare, where packages are kept, so that a second run does not fetch them again.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd -P)
. "$root/Scripts/namespaces.sh"
bare=$root/build/bare/root
user=visitor
moment=5 # seconds within which a command is done that has nothing to do

fail() {
    echo "$0: $*" >&2
    exit 1
}

# ---- The root ----

# apt's sources of Debian 12, its updates and its security updates: "MIRROR SUITE".
sources() {
    # shellcheck disable=SC2016 # apt-get's variables
    apt-get indextargets --format '$(REPO_URI) $(RELEASE)' "Created-By: Packages" "Origin: Debian" |
        grep -E ' bookworm(-updates|-security)?$' | sort -u
}

mirror() { sources | sed -n 's/ bookworm$//p' | head -n 1; }

make_root() {
    mount --bind "$bare" "$bare" # what is mounted can be the root of namespaces
    debootstrap --variant=minbase --cache-dir="$root/build/bare/archives" bookworm "$bare" "$(mirror)" >"$bare.log" 2>&1 ||
        fail "debootstrap failed: $(tail -n 5 "$bare.log")"
    sources | sed 's/.*/deb & main/' >"$bare/etc/apt/sources.list"
    apt-config dump --no-empty Acquire >"$bare/etc/apt/apt.conf.d/90host"
    cp -L /etc/resolv.conf /etc/hosts "$bare/etc/"
    mount -t proc proc "$bare/proc"
    mount -t devpts -o newinstance,ptmxmode=0666,gid=5,mode=620 devpts "$bare/dev/pts"
    mount --bind "$root/build/bare/archives" "$bare/var/cache/apt/archives"
    chroot "$bare" useradd --create-home "$user"
}

# ---- What is done in it ----

# within NAME COMMAND...: runs it in the clone in the root, as NAME.
within() {
    local name=$1
    shift
    env -i PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 \
        HOME="$(chroot "$bare" sh -c "echo ~$name")" chroot --userspec="$name:$name" "$bare" \
        env -C "/home/$user/clone" "$@"
}

# check LIMIT NAME COMMAND...: it succeeds, within LIMIT seconds.
check() {
    local limit=$1 name=$2 start=$SECONDS status=0
    shift 2
    within "$name" "$@" >"$bare.log" 2>&1 </dev/null || status=$?
    printf '%5d s  %s: %s\n' $((SECONDS - start)) "$name" "$*"
    if [ "$status" -eq 77 ]; then
        tail -n 1 "$bare.log"
    elif [ "$status" -ne 0 ]; then
        cat "$bare.log"
        fail "\"$*\" ended with status $status"
    fi
    [ $((SECONDS - start)) -le "$limit" ] || fail "\"$*\" took more than $limit s"
}

check_refusal() {
    local status=0
    within "$user" ./run.sh >"$bare.log" 2>&1 || status=$?
    if [ "$status" -ne 3 ] || ! grep -q 'apt-get install .*cmake' "$bare.log"; then
        fail "without packages, ./run.sh ends with status $status and says: $(cat "$bare.log")"
    fi
}

# The commands of one user; the tests themselves take their time the second time, too.
check_commands() {
    check 900 "$1" script -qec ./run.sh /dev/null
    grep -q $'\r\e\\[K\\[[0-9]*/[0-9]*\\] ' "$bare.log" || fail "on a terminal ./run.sh shows no progress: $(cat "$bare.log")"
    check "$moment" "$1" ./run.sh
    grep -qx 'choice: 0' "$bare.log" || fail "./run.sh makes no choice: $(cat "$bare.log")"
    check 900 "$1" Scripts/pages.sh README.md # with what ./run.sh has installed alone
    check 900 "$1" ./test.sh
    check 120 "$1" ./test.sh
    grep -q '100% tests passed' "$bare.log" || fail "./test.sh runs no tests: $(cat "$bare.log")"
}

run_all() {
    local start=$SECONDS
    make_root
    echo "$((SECONDS - start)) s to make the root"
    git -c safe.directory='*' clone -q --no-local "$root" "$bare/home/$user/clone"
    git -C "$bare/home/$user/clone" -c advice.detachedHead=false checkout -q "$commit"
    check_refusal
    check_commands root
    check 2000 root ./test.sh devices # which takes long when devices hang
    rm -rf "$bare/home/$user/clone/build"
    # The compiler's results are handed on: what is tried now is who needs which rights.
    mv "$bare/root/.cache" "$bare/home/$user/"
    chroot "$bare" chown -R "$user:$user" "/home/$user"
    check_commands "$user"
    echo "$((SECONDS - start)) s in all"
}

# ---- The way there and back ----

if [ "${1-}" = --in-namespace ]; then
    commit=$2
    run_all
    exit
fi

require_namespaces --mount
command -v debootstrap >/dev/null || skip "needs debootstrap"
if ! command -v apt-get >/dev/null || [ -z "$(mirror)" ]; then
    skip "needs Debian 12 (bookworm) among apt's sources"
fi
commit=$(git -c safe.directory='*' -C "$root" rev-parse --verify "${1-HEAD}^{commit}") || skip "needs a git checkout"

rm -rf --one-file-system "$bare" # of a run that was killed
mkdir -p "$bare" "$root/build/bare/archives"
trap 'rm -rf --one-file-system "$bare" "$bare.log"' EXIT
in_namespaces "$0" --in-namespace "$commit"
