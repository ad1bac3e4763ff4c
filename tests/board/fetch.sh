#!/bin/sh
# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# Fetches what a virtual board is made of: Debian's stock kernel with its modules, and the real tools, for
# one architecture. Nothing is installed. What was fetched is kept outside the repository, by the version
# of the kernel, and used again.
#
# usage: tests/board/fetch.sh amd64|arm64
# Prints the folder: boot/ (kernel), modules/ (with modules.dep), root/ (unpacked tools), headers/ (what a
# module of our own is built against).
set -eu

arch=$1
host=$(dpkg --print-architecture)
cache=${XDG_CACHE_HOME:-$HOME/.cache}/vorlix-board
state=$cache/apt-$arch
tools="busybox-static dash net-tools bridge-utils iproute2 iputils-ping iptables ifupdown ifenslave mtd-utils libc6"

# apt_of ARCHITECTURE COMMAND...: with lists of its own
apt_of()
{
    for_arch=$1
    shift
    "$@" -q -o APT::Architecture="$for_arch" -o APT::Architectures="$for_arch" \
        -o Dir::State="$cache/apt-$for_arch" -o Dir::State::status="$cache/apt-$for_arch/status" \
        -o Dir::Cache="$cache/apt-$for_arch/cache" -o APT::Sandbox::User=root \
        -o Debug::NoLocking=1 -o APT::Get::List-Cleanup=0
}
apt() { apt_of "$arch" "$@"; }

# The lists are asked for once a day: the kernel's package changes its name with each security update.
update()
{
    lists=$cache/apt-$1
    mkdir -p "$lists/lists/partial" "$lists/cache/archives/partial"
    : >"$lists/status"
    [ -n "$(find "$lists/updated" -mmin -1440 2>/dev/null)" ] && return
    apt_of "$1" apt-get update >"$lists/log" 2>&1 || { tail -n 5 "$lists/log" >&2; exit 1; }
    touch "$lists/updated"
}

mkdir -p "$state"
exec 9>"$state/lock"
flock 9
update "$arch"

kernel=$(apt apt-cache depends "linux-image-$arch" | sed -n 's/^ *Depends: \(linux-image-[0-9].*\)/\1/p' | head -n 1)
version=${kernel#linux-image-}
board=$cache/$version

# unpack FOLDER ARCHITECTURE PACKAGE...: unpacks packages, without what they depend on, into a folder.
unpack()
{
    into=$1
    package_arch=$2
    shift 2
    packages=$(mktemp -d "$cache/packages-XXXXXX")
    trap 'rm -rf "$packages"' EXIT
    mkdir -p "$into"
    (cd "$packages" && apt_of "$package_arch" apt-get download "$@") >"$state/log" 2>&1 ||
        { tail -n 5 "$state/log" >&2; exit 1; }
    for package in "$packages"/*.deb; do dpkg-deb -x "$package" "$into"; done
    rm -rf "$packages"
}

fetch_kernel()
{
    unpack "$board/kernel" "$arch" "$kernel"
    mkdir -p "$board/boot" "$board/modules/lib"
    mv "$board/kernel/boot/vmlinuz-$version" "$board/boot/vmlinuz"
    rm -rf "$board/modules/lib/modules"
    mv "$board/kernel/lib/modules" "$board/modules/lib/modules"
    rm -rf "$board/kernel"
    depmod -b "$board/modules" "$version"
    echo "$version" >"$board/version"
    if [ "$arch" = amd64 ]; then
        # Started as an ELF file the kernel need not unpack itself, which is most of an emulated boot.
        "$(dirname "$0")/extract-vmlinux" "$board/boot/vmlinuz" >"$board/boot/kernel.new"
    else
        cp "$board/boot/vmlinuz" "$board/boot/kernel.new"
    fi
    mv "$board/boot/kernel.new" "$board/boot/kernel"
}

# What was there before stays: another working copy may want other tools.
fetch_tools()
{
    # shellcheck disable=SC2086  # a list of words
    apt apt-get install -y --no-install-recommends --download-only $1 >"$state/log" 2>&1 ||
        { tail -n 5 "$state/log" >&2; exit 1; }
    mkdir -p "$board/root"
    for package in "$state"/cache/archives/*.deb; do dpkg-deb -x "$package" "$board/root"; done
    rm -f "$state"/cache/archives/*.deb
    echo "$had$1" | sed 's/^ *//' >"$board/complete"
}

# The packages' own folders side by side, and the tools of the build for this machine, whatever the board
# is. They name each other by one absolute path.
fetch_headers()
{
    if [ "$host" != "$arch" ]; then
        mkdir -p "$cache/apt-$host"
        exec 8>"$cache/apt-$host/lock"
        flock 8
        update "$host"
    fi
    rm -rf "$board/headers"
    unpack "$board/headers" "$arch" "linux-headers-$version" "linux-headers-${version%-*}-common"
    unpack "$board/headers" "$host" "linux-kbuild-$(echo "$version" | cut -d. -f1,2)"
    sed -i "s,^include /usr,include $board/headers/usr," \
        "$board/headers/usr/src/linux-headers-$version/Makefile"
    touch "$board/headers/complete"
}

[ -e "$board/boot/kernel" ] || fetch_kernel
had="$(cat "$board/complete" 2>/dev/null || true) "
missing=
for tool in $tools; do
    case " $had" in *" $tool "*) ;; *) missing="$missing$tool " ;; esac
done
[ -z "$missing" ] || fetch_tools "${missing% }"
[ -e "$board/headers/complete" ] || fetch_headers
echo "$board"
