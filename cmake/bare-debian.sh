#!/usr/bin/env bash
# Proves the package lists of `dev`: makes a bare Debian 12 (minbase, git, ca-certificates) below FOLDER, clones the
# repository into it and runs every command of `dev` inside, each in a root of its own, since each must work as the
# first command. Needs root, debootstrap and overlayfs, takes the mirror and the proxy from this system's apt,
# and undoes its mounts on exit. Commits only: what is not committed is not cloned.
#
# usage: cmake/bare-debian.sh FOLDER [COMMAND]    COMMAND runs in place of all, in the clone: './dev docs'
set -euo pipefail
repository=$(dirname "$(dirname "$(readlink -f "$0")")")

fail() { printf 'bare-debian: %s\n' "$*" >&2; exit 1; }
[ $# -ge 1 ] && [ $# -le 2 ] || fail "usage: cmake/bare-debian.sh FOLDER [COMMAND]"
[ "$(id -u)" -eq 0 ] || fail "run this as root: it makes a root file system and mounts into it"
command -v debootstrap >/dev/null || fail "install the package debootstrap first"
mkdir -p "$1"
folder=$(readlink -f "$1")
base=$folder/base

unmount_all() {
    local root place
    for root in "$folder"/run-*/root; do
        [ -d "$root" ] || continue
        for place in /proc /dev/shm /dev/pts ""; do
            ! mountpoint -q "$root$place" || umount "$root$place"
        done
    done
}
trap unmount_all EXIT

# The mirror and the proxy that apt uses here.
mirror=$(apt-get indextargets --format '$(REPO_URI) $(CODENAME) $(COMPONENT)' 'Created-By: Packages' |
    awk '$2 == "bookworm" && $3 == "main" { print $1; exit }')
[ -n "$mirror" ] || fail "apt knows no mirror of bookworm main on this system"
eval "$(apt-config shell http_proxy Acquire::http::Proxy https_proxy Acquire::https::Proxy)"
export http_proxy="${http_proxy:-}" https_proxy="${https_proxy:-}"

if [ ! -e "$folder/base.done" ]; then
    rm -rf "$base"
    debootstrap --variant=minbase --include=git,ca-certificates bookworm "$base" "$mirror" >"$folder/debootstrap.log" ||
        fail "debootstrap failed; see $folder/debootstrap.log"
    apt-config dump --format '%F "%v";%n' Acquire::http Acquire::https Acquire::Retries |
        grep -v ' "";$' >"$base/etc/apt/apt.conf.d/90host" || true
    cp -L /etc/resolv.conf /etc/hosts "$base/etc/"
    touch "$folder/base.done"
fi

# run_in_fresh_root NAME COMMAND: an overlay over the base, so that no run sees what another installed.
run_in_fresh_root() {
    local run=$folder/run-$1
    unmount_all
    rm -rf "$run"
    mkdir -p "$run/root" "$run/layer" "$run/work"
    mount -t overlay overlay -o "lowerdir=$base,upperdir=$run/layer,workdir=$run/work" "$run/root"
    mount -t proc proc "$run/root/proc"
    mkdir -p "$run/root/dev/shm" "$run/root/dev/pts"
    mount -t tmpfs tmpfs "$run/root/dev/shm"
    mount -t devpts devpts "$run/root/dev/pts"
    git clone --quiet --no-hardlinks "$repository" "$run/root/root/OrvaneVeldris"
    printf '== %s\n' "$2"
    env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LANG=C.UTF-8 \
        chroot "$run/root" bash -c "cd ~/OrvaneVeldris && time $2"
}

if [ $# -eq 2 ]; then
    run_in_fresh_root command "$2"
else
    run_in_fresh_root demo './dev demo && ./dev demo'
    run_in_fresh_root test './dev test'
    run_in_fresh_root bench './dev bench'
    run_in_fresh_root docs './dev docs'
    run_in_fresh_root lint './dev lint'
    run_in_fresh_root fuzz './dev fuzz 5'
fi
