#!/bin/sh
# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# A small Debian that boots, under systemd or under SysV init as the kernel's command line asks. Made once by
# mmdebstrap, kept outside the repository, and used again as long as this script stays the same.
#
# usage: boot/root.sh
# Prints the archive; status 77 when the packages cannot be had.
set -eu

packages=systemd,sysvinit-core,initscripts,udev,kmod,bridge-utils,iproute2,iputils-ping,net-tools,ifupdown
release=$(sed -n 's/^VERSION_CODENAME=//p' /etc/os-release)
cache=${XDG_CACHE_HOME:-$HOME/.cache}/vorlix-root
root=$cache/boot-$release-$(cksum <"$0" | cut -d ' ' -f 1).tar

mkdir -p "$cache"
exec 9>"$cache/boot.lock"
flock 9
if [ ! -e "$root" ]; then
    mmdebstrap --variant=minbase --include="$packages" "$release" "$root.new.tar" >"$cache/boot.log" 2>&1 || {
        tail -n 5 "$cache/boot.log" >&2
        rm -f "$root.new.tar"
        exit 77
    }
    rm -f "$cache/boot-$release-"*[0-9].tar # of an older list
    mv "$root.new.tar" "$root"
fi
echo "$root"
