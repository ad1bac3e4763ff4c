#!/bin/sh
# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# A machine that boots: an emulated one with four cards, on which somebody does what docs/bring-up.md tells, word
# for word, and restarts it. It is a Debian that has the package, under systemd and then once more under SysV
# init, or BusyBox on a root with little else.
#
# usage: boot.sh BUILD_FOLDER debian|busybox
kind=$2
# shellcheck source=tests/install/lib.sh
. "$(dirname "$0")/lib.sh"
machine=$work/boot-$kind
root=$machine/root
output=$work/boot-$kind.log

# steps FOLDER WORD...: the page's boxes of these kinds ("plain" has no word), each under a number and with the
# heading that it stands under
steps()
{
    folder=$root/case/$1
    shift
    mkdir -p "$folder"
    awk -v kinds=" $* " -v folder="$folder" '
        /^## / { heading = substr($0, 4) }
        /^```$/ { open = 0 }
        open { print >file }
        /^```sh/ && index(kinds, " " ($2 == "" ? "plain" : $2) " ") {
            file = sprintf("%s/%02d", folder, ++count)
            print heading >(file ".name")
            open = 1
        }
    ' "$top/docs/bring-up.md"
    [ -e "$folder/01" ] || is "steps for $*" none some
}

# ---- the roots

# shellcheck disable=SC2317  # called by `succeeds`
inside() { unshare --net chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin DEBIAN_FRONTEND=noninteractive "$@"; }

debian_root()
{
    [ -e "$work/debian/packages/lanrise_${version}_amd64.deb" ] || skip 'there are no packages (debian.sh makes them)'
    base=$("$here/boot/root.sh") || skip 'no Debian that boots: its packages cannot be had'
    tar -x -C "$root" --exclude='./dev/*' -f "$base"
    cp "$work/debian/packages/lanrise_${version}_amd64.deb" "$root/tmp/lanrise.deb"
    succeeds 'installation of the package' inside dpkg --install /tmp/lanrise.deb
    echo board >"$root/etc/hostname"
    echo 0123456789abcdef0123456789abcdef >"$root/etc/machine-id"
    # What takes long and is not looked at.
    for unit in getty.target systemd-timesyncd.service timers.target; do
        ln -sf /dev/null "$root/etc/systemd/system/$unit"
    done
    cp "$here/boot"/*.service "$root/etc/systemd/system"
    succeeds 'units of the test' inside systemctl enable case.service network-seen.service
    install -m 755 "$here/boot/network-seen" "$root/etc/init.d"
    succeeds 'script of the test' inside update-rc.d network-seen defaults
    sed -i /getty/d "$root/etc/inittab"
    echo 'case:2:wait:/case/guest.sh' >>"$root/etc/inittab"
}

busybox_root()
{
    command -v busybox >/dev/null || skip 'BusyBox is not installed'
    for folder in bin sbin proc sys dev tmp run mnt lib lib64 etc/init.d usr/sbin usr/bin usr/libexec; do
        mkdir -p "$root/$folder"
    done
    for applet in $(busybox --list); do ln -sf busybox "$root/bin/$applet"; done
    rm -f "$root/bin/busybox"
    cp "$(command -v busybox)" "$root/bin/busybox"
    ln -s ../bin/busybox "$root/sbin/init"
    ln -s ../bin/busybox "$root/sbin/modprobe" # where the kernel looks for it
    install -m 755 "$top/tests/board/tools/ifenslave" "$tree/usr/sbin/lanrise" "$tree/usr/sbin/lanrise-status" \
        "$root/usr/sbin"
    cp "$tree/usr/libexec/lanrise-log" "$root/usr/libexec"
    cp "$tree/etc/init.d/lanrise" "$root/etc/init.d"
    for library in $(ldd "$tree/usr/sbin/lanrise" | sed -n 's/[^/]*\(\/[^ ]*\) .*/\1/p'); do
        mkdir -p "$root/$(dirname "$library")"
        cp "$library" "$root/$library"
    done
    cp "$here/boot/inittab" "$root/etc"
    for script in rcS S01syslogd; do install -m 755 "$here/boot/$script" "$root/etc/init.d"; done
    install -m 755 "$here/boot/network-seen" "$root/etc/init.d/S50network-seen"
}

# ---- the machine

# modules FOLDER: what the machine and its cards, bonds and bridges need of the kernel
modules()
{
    from=$board/modules/lib/modules/$release
    mkdir -p "$1/lib/modules/$release"
    for module in virtio_pci virtio_blk virtio_net ext4 crc32c_generic bonding bridge; do
        sed -n "/\/$module\.ko:/s/://p" "$from/modules.dep"
    done | tr ' ' '\n' | sort -u >"$machine/modules"
    (cd "$from" && xargs cp --parents -t "$1/lib/modules/$release") <"$machine/modules"
    cp "$from/modules.order" "$from/modules.builtin" "$from/modules.builtin.modinfo" "$1/lib/modules/$release"
    depmod -b "$1" "$release"
}

first_root()
{
    mkdir -p "$machine/first/bin" "$machine/first/dev" "$machine/first/proc" "$machine/first/sys" "$machine/first/root"
    modules "$machine/first"
    cp "$(command -v busybox)" "$machine/first/bin/busybox"
    ln -s busybox "$machine/first/bin/sh"
    install -m 755 "$here/boot/init" "$machine/first/init"
    (cd "$machine/first" && find . | cpio -o -H newc -R 0:0 --quiet) >"$machine/first.cpio"
}

# Two cards on one wire with the gateway of the bond, one on a wire with the gateway of the bridge, one on another. The
# gateways are QEMU's own, which lets nothing out.
cards()
{
    for wire in 0 1 2; do
        net=10.$((wire + 1)).0
        echo -netdev "user,id=net$wire,net=$net.0/24,host=$net.1,restrict=on" \
            -netdev "hubport,id=gate$wire,hubid=$wire,netdev=net$wire"
    done
    card=0
    for wire in 0 0 1 2; do
        echo -netdev "hubport,id=eth$card,hubid=$wire" \
            -device "virtio-net-pci,netdev=eth$card,romfile=,mac=02:00:00:00:00:0$card"
        card=$((card + 1))
    done
}

# start_machine INIT: until it restarts or switches itself off; the limit is for one that hangs
start_machine()
{
    case $1 in
    systemd) program=/lib/systemd/systemd ;;
    *) program=/sbin/init ;;
    esac
    # shellcheck disable=SC2046  # words
    timeout 1800 qemu-system-x86_64 -M q35 -accel tcg -icount shift=1,sleep=off -m 512 -smp 1 -display none -nodefaults -vga none \
        -no-reboot -serial stdio -kernel "$board/boot/kernel" -initrd "$machine/first.cpio" \
        -drive "file=$machine/disk,format=raw,if=none,id=disk,cache=unsafe" -device virtio-blk-pci,drive=disk \
        -append "console=ttyS0 quiet panic=-1 no_timer_check mitigations=off net.ifnames=0 case=$1 first=$program" \
        $(cards) </dev/null 2>&1 | sed -u 's/\r//g'
}

for tool in qemu-system-x86_64 cpio depmod mke2fs; do
    command -v $tool >/dev/null || skip "$tool is not installed"
done
[ "$(id -u)" = 0 ] || skip 'a root file system needs root'
board=$("$top/tests/board/fetch.sh" amd64) || skip 'the kernel of the machine cannot be had'
release=$(cat "$board/version")
rm -rf "$machine"
mkdir -p "$root/case"
case $kind in
debian)
    boots='systemd systemd sysv'
    debian_root
    steps first plain debian systemd
    steps later sysv
    ;;
busybox)
    boots='busybox busybox'
    busybox_root
    steps first plain busybox
    ;;
esac
install -m 755 "$here/boot/guest.sh" "$here/boot/network-seen" "$root/case"
cp "$top/tests/board/lib.sh" "$root/case"
modules "$root"
first_root
succeeds 'the disk' mke2fs -q -t ext4 -d "$root" "$machine/disk" 700M
rm -rf "$root" "$machine/first"
[ "$failed" = 0 ] || exit 1

for init in $boots; do
    echo "== a boot by $init"
    start_machine "$init"
done | tee "$machine/console"
is 'boots that have ended well' "$(grep -c '^BOARD [1-9][0-9]* ok, 0 failed' "$machine/console")" "$(echo "$boots" | wc -w)"
rm -f "$machine/disk"
exit "$failed"
