#!/bin/sh
# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# Counts what a boot of other network managers writes below /etc and /var, where a device has its flash, and
# below /run, which is memory: of their calls, as strace sees them, and of lanrise the same below /mnt/mtd.
# Each is Debian's, as it is, and brings up four cards with an address each: once on files that were never
# used, and once more, as at each later boot. They are fetched and run in a root of their own, in a network
# namespace; nothing is installed.
#
# usage: tests/board/flashcost-managers.sh LANRISE [SECONDS]
# A manager goes on for so many seconds (30) after its cards are up.
set -eu

lanrise=$1
seconds=${2:-30}
cards=4
cache=${XDG_CACHE_HOME:-$HOME/.cache}/vorlix-bench/managers
root=/mnt/root

# ---- a root with the managers

fetch()
{
    [ ! -e "$cache/complete" ] || return 0
    rm -rf "$cache"
    mkdir -p "$cache/root" "$cache/state/cache/archives/partial"
    : >"$cache/state/status"
    apt-get install -y --download-only --no-install-recommends -o Dir::State::status="$cache/state/status" \
        -o Dir::Cache="$cache/state/cache" -o Debug::NoLocking=1 -o APT::Sandbox::User=root \
        network-manager systemd dbus ifupdown debianutils dash iproute2 strace >"$cache/log" 2>&1 ||
        { tail -n 5 "$cache/log" >&2; exit 1; }
    for package in "$cache"/state/cache/archives/*.deb; do
        dpkg-deb -x "$package" "$cache/root"
        dpkg-deb -f "$package" Package Version | paste -d ' ' - - >>"$cache/versions"
    done
    rm -rf "$cache/state"
    touch "$cache/complete"
}

# What the packages would do when installed; and the message bus lets everybody speak.
settle()
{
    printf '%s\n' root:x:0:0::/:/bin/sh messagebus:x:100:100::/:/bin/sh systemd-network:x:101:101::/:/bin/sh \
        >$root/etc/passwd
    printf '%s\n' root:x:0: messagebus:x:100: systemd-network:x:101: >$root/etc/group
    echo 0123456789abcdef0123456789abcdef >$root/etc/machine-id
    mkdir -p $root/run/dbus $root/run/network $root/run/systemd/netif $root/var/lib/dbus
    ln -sfn /run $root/var/run
    chown 101:101 $root/run/systemd/netif
    cat >$root/etc/bus.conf <<'END'
<busconfig><type>system</type><listen>unix:path=/run/dbus/system_bus_socket</listen>
<auth>EXTERNAL</auth><policy context="default"><allow user="*"/><allow own="*"/>
<allow send_destination="*"/><allow receive_sender="*"/></policy></busconfig>
END
}

# each_card COMMAND...: with the number of each card behind it
each_card()
{
    card=0
    while [ $card -lt $cards ]; do
        "$@" $card
        card=$((card + 1))
    done
}

# What each of them needs to know of a card.
lanrise_file()
{
    case $1 in
    0) file=network ;;
    1) file=network1 ;;
    *) file=networketh$1 ;;
    esac
    printf 'HOSTIP = 10.%d.0.5\nSUBMASK = 255.255.255.0\nGATEWAYIP = 10.%d.0.1\nMTU = 1500\n' "$1" "$1" \
        >"$root/mnt/mtd/Config/$file"
}

ifupdown_lines()
{
    printf 'auto eth%d\niface eth%d inet static\n  address 10.%d.0.5/24\n' "$1" "$1" "$1" \
        >>$root/etc/network/interfaces
}

networkd_file()
{
    printf '[Match]\nName=eth%d\n[Network]\nAddress=10.%d.0.5/24\n' "$1" "$1" \
        >"$root/etc/systemd/network/eth$1.network"
}

networkmanager_file()
{
    file=$root/etc/NetworkManager/system-connections/eth$1.nmconnection
    printf '[connection]\nid=eth%d\ntype=ethernet\ninterface-name=eth%d\n' "$1" "$1" >"$file"
    printf '[ipv4]\nmethod=manual\naddress1=10.%d.0.5/24\n[ipv6]\nmethod=link-local\n' "$1" >>"$file"
    chmod 600 "$file"
}

write_settings()
{
    mkdir -p $root/mnt/mtd/Config $root/etc/systemd/network $root/etc/NetworkManager/system-connections
    printf '[main]\nplugins=keyfile\nauth-polkit=false\n' >$root/etc/NetworkManager/NetworkManager.conf
    for file in lanrise_file ifupdown_lines networkd_file networkmanager_file; do each_card $file; done
}

# ---- a boot of one

make_card() { ip link add "eth$1" type veth peer name "p$1" && ip link set "p$1" up; }
remove_card() { ip link del "eth$1"; }

are_up() { [ "$(ip -4 -o addr show up | grep -c ' inet 10\.')" = $cards ]; }

# children PID: all that it has started
children()
{
    for child in $(ps -o pid= --ppid "$1"); do
        echo "$child"
        children "$child"
    done
}

cut_power()
{
    children $manager | xargs -r kill -9 2>/dev/null || true
    wait $manager 2>/dev/null || true
}

# boot COMMAND: with cards that nobody has touched and an empty /run, until all addresses are there and some
# time has passed; then the power fails
boot()
{
    each_card make_card
    rm -rf $root/run/network/* $root/run/systemd/netif/* $root/run/NetworkManager
    rm -f /mnt/trace.*
    strace -ff -qq -y -o /mnt/trace chroot $root "$@" >/mnt/log 2>&1 &
    manager=$!
    tries=0
    until are_up; do
        tries=$((tries + 1))
        [ $tries -lt 300 ] || { tail -n 5 /mnt/log >&2; echo "$1 brings no card up" >&2; cut_power; exit 1; }
        sleep 0.2
    done
    left=$seconds
    while [ "$left" -gt 0 ] && kill -0 $manager 2>/dev/null; do
        sleep 1
        left=$((left - 1))
    done
    cut_power
    each_card remove_card
}

# tell NAME BOOT: of the trace, the successful calls on files of the flash, and what goes to /run
tell()
{
    awk -v name="$1" -v boot="$2" -v root=$root '
    { gsub(root "/", "/") }
    / = -1 / { next }
    /^(write|pwrite64|writev|pwritev|sendfile)\([0-9]+<\/run\// { memory += $NF }
    /^(write|pwrite64|writev|pwritev|sendfile)\([0-9]+<\/(etc|var|mnt\/mtd)\// { bytes += $NF }
    /^f(data)?sync\([0-9]+<\/(etc|var|mnt\/mtd)\// || /^sync\(/ { syncs++ }
    END { printf "| %s | %s | %d | %d | %d |\n", name, boot, syncs, bytes, memory }' /mnt/trace.*
}

# manager NAME COMMAND...: its first boot, and a later one
manager()
{
    name=$1
    shift
    boot "$@"
    tell "$name" first
    boot "$@"
    tell "$name" later
}

if [ "${VORLIX_NETNS-}" != inside ]; then
    fetch
    exec "$(dirname "$0")/../netns/enter.sh" "$0" "$@"
fi
mkdir -p $root /mnt/upper /mnt/work
mount -t overlay -o lowerdir="$cache/root",upperdir=/mnt/upper,workdir=/mnt/work overlay $root
settle
write_settings
mkdir -p $root/dev $root/proc $root/sys
for device in null zero urandom random; do
    : >$root/dev/$device
    mount --bind /dev/$device $root/dev/$device
done
mount --rbind /proc $root/proc
# Without udev they wait for no card when they may not write to /sys.
mount -t sysfs -o ro sysfs $root/sys
cp "$lanrise" $root/sbin/lanrise
echo "| Manager | Boot | Syncs | Bytes to the flash | Bytes to /run |"
echo "|---|---|---:|---:|---:|"
manager lanrise /sbin/lanrise
manager ifupdown /sbin/ifup -a
manager systemd-networkd /lib/systemd/systemd-networkd
chroot $root /usr/bin/dbus-daemon --config-file=/etc/bus.conf --fork --print-pid=1 >/mnt/bus.pid
trap 'kill "$(cat /mnt/bus.pid)"' EXIT
manager NetworkManager /usr/sbin/NetworkManager --no-daemon
printf '\nOf Debian:\n'
sed -n 's/^Package: \(ifupdown\|systemd\|network-manager\) Version: /\1 /p' "$cache/versions"
