# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# wires: 2
# Bonds that send over one card at a time: built, the active link cut, torn down.
# Their peer is a switch, which learns where the bond is.

cards 2
modprobe bonding max_bonds=1
ip -n peer link add switch type bridge
ip -n peer link set p0 master switch
ip -n peer link set p1 master switch
ip -n peer link set switch up
ip -n peer addr add 10.9.0.2/24 dev switch

settings network "HOSTIP = 192.168.0.108" "SUBMASK = 255.255.255.0" "GATEWAYIP = 192.168.0.1" \
    "MTU = 1500" "WORKMODE = 0"
settings network1 "HOSTIP = 192.168.0.109" "SUBMASK = 255.255.255.0" "GATEWAYIP = 192.168.0.1" \
    "MTU = 1500" "WORKMODE = 0"
settings networkbond0 "HOSTIP = 10.9.0.1" "SUBMASK = 255.255.255.0" "GATEWAYIP = 10.9.0.2" "MTU = 1500"

reaches_peer() { wait_for 8 ping -c 1 -W 1 10.9.0.2; }
has_active() { operation active bond0; }
active_is_not() { [ "$(operation active bond0 | tail -n 1)" != "$1" ]; }

for mode in 1 5 6; do
    succeeds "mode $mode: the bond is built" operation bond bond0 "$mode" eth0 eth1
    is "mode $mode: the driver runs it" "$(cut -d' ' -f2 /sys/class/net/bond0/bonding/mode)" "$mode"
    is "mode $mode: its members" "$(members bond0)" "eth0 eth1"
    is "mode $mode: the link is watched" "$(cat /sys/class/net/bond0/bonding/miimon)" 100
    is "mode $mode: the bond has its saved address" "$(address bond0)" 10.9.0.1/24
    is "mode $mode: a member has none" "$(address eth0)" ""
    is "mode $mode: the mode is saved" "$(setting networkbond0 BONDMODE)" "$mode"
    is "mode $mode: the members are saved" "$(setting networkbond0 BONDMEMBERS)" eth0,eth1
    is "mode $mode: the claim is saved" "$(setting network BONDED) $(setting network BONDNAME)" "1 bond0"
    succeeds "mode $mode: traffic to the peer" reaches_peer
    wait_for 5 has_active
    active=$(operation active bond0 | tail -n 1)
    host "link $active off"
    succeeds "mode $mode: another card takes over" wait_for 5 active_is_not "$active"
    succeeds "mode $mode: traffic goes on with the active link cut" reaches_peer
    host "link $active on"
    succeeds "mode $mode: the bond is torn down" operation unbond bond0
    is "mode $mode: no members are left" "$(members bond0)" ""
    is "mode $mode: eth0 has its own address again" "$(address eth0)" 192.168.0.108/24
    is "mode $mode: eth1 has its own address again" "$(address eth1)" 192.168.0.109/24
    is "mode $mode: the claim is gone" "$(setting network BONDED) $(setting network WORKMODE)" "0 0"
done
