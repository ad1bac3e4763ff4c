# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# wires: 2
# lanrise-status on a board with a bond: before the boot, after it, and when a link is cut.
# shellcheck shell=sh

cards 2
modprobe bonding max_bonds=1
in_peer ip link add switch type bridge
for port in p0 p1; do ip -n peer link set $port master switch; done
ip -n peer link set switch up
settings network "HOSTIP = 192.168.0.108" "SUBMASK = 255.255.255.0" "GATEWAYIP = 192.168.0.1" \
    "MTU = 1500" "BONDED = 1" "BONDNAME = bond0" "DEFAULT_ETH = bond0"
settings network1 "HOSTIP = 192.168.0.109" "SUBMASK = 255.255.255.0" "GATEWAYIP = 192.168.0.1" \
    "MTU = 1500" "BONDED = 1" "BONDNAME = bond0"
settings networkbond0 "HOSTIP = 10.1.0.10" "SUBMASK = 255.255.255.0" "GATEWAYIP = 10.1.0.1" \
    "MTU = 1500" "BONDMEMBERS = eth1,eth5"
printf 'nameserver 10.1.0.%s\n' 1 2 >/mnt/mtd/Config/resolv.conf
printf 'nameserver 2001:db8::%s\n' 1 2 >>/mnt/mtd/Config/resolv.conf

# finds WHAT LINE: the check tells it
finds() { is "$1" "$(lanrise-status --check | grep -cxF "$2")" 1; }
# shows WHAT WORDS...: a line of the view has these words behind each other
shows()
{
    name=$1
    shift
    is "$name" "$(lanrise-status | tr -s ' ' | grep -cF "$*")" 1
}

finds 'a bond without mode' 'bond0: next boot: no mode is saved: active-backup'
finds 'a list of members that is stale' \
    "bond0: next boot: the saved members eth1,eth5 become eth0,eth1, as the cards' files say"
finds 'a card that is no member yet' 'eth0: its file says member of bond0, the kernel has it alone'
fails 'the check before the boot' lanrise-status --check
is 'cards that claim a bond' "$(lanrise-status | grep -cF 'claims bond0')" 2

lanrise >/tmp/log 2>&1
succeeds 'the check after the boot' lanrise-status --check
is 'its members' "$(lanrise-status | grep -cF 'in bond0')" 2
shows 'the bond' 'Bond bond0 active-backup; members eth0,eth1; active link eth'
shows 'the default route' 'Default route via 10.1.0.1 over bond0'

active=$(operation active bond0 | tail -n 1)
other=eth0
[ "$active" = eth1 ] || other=eth1
host "link $active off"
follows() { lanrise-status bond0 | tr -s ' ' | grep -qF "Active link $other"; }
succeeds 'the active link after a cut' wait_for 8 follows
shows 'a card without link' "$active no link"
host "link $active on"

# The library and the program agree on what they see.
is 'the mode as the driver tells it' "$(lanrise-status bond0 | tr -s ' ' | sed -n 's/^Mode kernel //p')" \
    "$(cut -d' ' -f1 /sys/class/net/bond0/bonding/mode)"

# A device whose cards have a name of another kind is told so.
ip link set eth1 down
ip link set eth1 nomaster
ip link set eth1 name enp3s0
shows 'a card whose name does not count' 'enp3s0 a name that does not count as a card of the device'
