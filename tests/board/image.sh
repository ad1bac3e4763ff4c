#!/bin/sh
# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# Makes the base image of a board: busybox, the real tools ahead of it, their libraries, the modules of the
# kernel, and the device's own drivers, built for it. What a case brings is put behind it in an archive of
# its own.
#
# usage: tests/board/image.sh BOARD_FOLDER
# Prints the image; it is made anew when anything in this folder that goes into it has changed.
set -eu

board=$1
here=$(cd "$(dirname "$0")" && pwd)
version=$(cat "$board/version")
modules="virtio_pci virtio_net bonding bridge 8021q dummy veth macvlan ipvlan
    sch_htb sch_sfq sch_ingress cls_u32 iptable_filter ip6table_filter ipt_REJECT ip6t_REJECT xt_tcpudp
    jffs2"
tools="dash ifconfig route brctl ip tc ping ifup"

# One at a time: the cases of one board start together.
exec 9>"$board/image.lock"
flock 9
sum=$( (readlink "$board/tools"; cat "$here/image.sh" "$here/kernel-cc" "$here/init" "$here"/tools/* "$here"/devices/*) |
    cksum | cut -d' ' -f1)
image=$board/base-$sum.cpio
if [ -e "$image" ]; then
    echo "$image"
    exit 0
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
root=$work/root
mkdir -p "$root/bin" "$root/sbin" "$root/dev" "$root/proc" "$root/sys" "$root/tmp" "$root/run" \
    "$root/mnt/mtd/Config" "$root/case" "$root/lib" "$root/lib64" "$root/etc"

# program NAME: where the packages have it
program()
{
    for folder in bin sbin usr/bin usr/sbin; do
        if [ -f "$board/tools/$folder/$1" ] && [ ! -L "$board/tools/$folder/$1" ]; then
            echo "$board/tools/$folder/$1"
            return
        fi
    done
    echo "image.sh: no $1" >&2
    exit 1
}

# provide FILE: a program or library with the libraries that it needs, each once
provide()
{
    readelf -d "$1" 2>/dev/null | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' >"$work/needed"
    readelf -l "$1" 2>/dev/null | sed -n 's/.*interpreter: \(.*\)\]/\1/p' >>"$work/needed"
    # shellcheck disable=SC2013  # names, one a line
    for name in $(cat "$work/needed"); do
        library=$(basename "$name")
        [ -e "$root/lib/$library" ] && continue
        found=$(find "$board/tools/lib" "$board/tools/usr/lib" -name "$library" 2>/dev/null | head -n 1)
        [ -n "$found" ] || { echo "image.sh: no $library" >&2; exit 1; }
        cp -L "$found" "$root/lib/$library"
        provide "$found"
    done
}

for tool in $tools; do
    file=$(program "$tool")
    cp "$file" "$root/sbin/$tool"
    provide "$file"
done
[ -e "$root/lib/ld-linux-x86-64.so.2" ] && cp "$root/lib/ld-linux-x86-64.so.2" "$root/lib64/"

# Where devices have their tc, and the packet filter with what it loads for each word of a rule. It is the
# older make, which needs fewer drivers.
mkdir -p "$root/usr/local/bin"
ln -s /sbin/tc "$root/usr/local/bin/tc"
cp "$(program xtables-legacy-multi)" "$root/sbin/"
provide "$root/sbin/xtables-legacy-multi"
for tool in iptables ip6tables; do ln -s xtables-legacy-multi "$root/sbin/$tool"; done
for word in libxt_standard libxt_tcp libxt_udp libipt_REJECT libip6t_REJECT; do
    file=$(cd "$board/tools" && find usr/lib -name "$word.so")
    mkdir -p "$root/$(dirname "$file")"
    cp "$board/tools/$file" "$root/$file"
done

# What ifup runs for a bond.
mkdir -p "$root/run/network"
for script in "$board"/tools/etc/network/if-*.d/ifenslave; do
    folder=$root/etc/network/$(basename "$(dirname "$script")")
    mkdir -p "$folder"
    cp "$script" "$folder/"
done

cp "$(program busybox)" "$root/bin/busybox"
# The shell is dash: busybox's own would run its own applets before the tools on PATH.
ln -s ../sbin/dash "$root/bin/sh"
# The kernel loads what a request needs by this name.
ln -s ../bin/busybox "$root/sbin/modprobe"
cp "$here/init" "$root/init"
cp "$here"/tools/* "$root/sbin/"
chmod +x "$root/init" "$root"/sbin/*

mkdir -p "$root/lib/modules/$version"
for module in $modules; do
    line=$(grep -E "/$module\.ko(\.xz)?:" "$board/modules/lib/modules/$version/modules.dep" || true)
    [ -n "$line" ] || continue # built into this kernel
    for file in $(echo "$line" | tr -d ':'); do
        mkdir -p "$root/lib/modules/$version/$(dirname "$file")"
        cp "$board/modules/lib/modules/$version/$file" "$root/lib/modules/$version/$file"
    done
done
# Newer kernels pack their modules.
find "$root/lib/modules" -name '*.ko.xz' -exec xz -d {} +
# A kernel need not see signatures, but it checks those that are there: two seconds of an emulated processor.
find "$root/lib/modules" -name '*.ko' -exec perl -0777 -pi -e \
    's/~Module signature appended~\n\z// and substr($_, -12 - unpack("N", substr($_, -4))) = ""' {} +

case $version in
*-amd64) arch=amd64 triplet=x86_64-linux-gnu ;;
*-arm64) arch=arm64 triplet=aarch64-linux-gnu ;;
*-armmp) arch=armhf triplet=arm-linux-gnueabihf ;;
esac
cross=$triplet-
[ "$arch" != "$(dpkg --print-architecture)" ] || cross=
cp -r "$here/devices" "$work/devices"
# Without the types of the kernel's own debugger: they take a tool that nothing else here needs.
make -s -C "$board/headers/usr/src/linux-headers-$version" M="$work/devices" CROSS_COMPILE="$cross" \
    CC="$here/kernel-cc ${cross}gcc" CONFIG_DEBUG_INFO_BTF_MODULES= modules >"$work/log" 2>&1 ||
    { cat "$work/log" >&2; exit 1; }
mkdir -p "$root/lib/modules/$version/extra"
"${cross}strip" --strip-debug -o "$root/lib/modules/$version/extra/board.ko" "$work/devices/board.ko"
depmod -b "$root" "$version" 2>/dev/null

(cd "$root" && find . | cpio -o -H newc -R 0:0 --quiet) >"$image.new"
mv "$image.new" "$image"
echo "$image"
