# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# wires: 3
# Bonds that spread over all cards: two and three of them against a bond of the same mode.

cards 3
modprobe bonding max_bonds=1
for number in 0 1 2; do
    settings "network$(test $number = 0 || { test $number = 1 && echo 1; } || echo eth2)" \
        "HOSTIP = 192.168.$number.108" "SUBMASK = 255.255.255.0" "GATEWAYIP = 192.168.$number.1" \
        "MTU = 1500" "WORKMODE = 0"
done
settings networkbond0 "HOSTIP = 10.9.0.1" "SUBMASK = 255.255.255.0" "GATEWAYIP = 10.9.0.2" "MTU = 1500"

reaches_peer() { wait_for 10 ping -c 1 -W 1 10.9.0.2; }

# peer_bond MODE CARD...
peer_bond()
{
    mode=$1
    shift
    ip -n peer link add far type bond mode "$mode" miimon 100
    for card; do
        ip -n peer link set "$card" down
        ip -n peer link set "$card" master far
    done
    ip -n peer link set far up
    ip -n peer addr add 10.9.0.2/24 dev far
}

for mode in 0 2 3 4; do
    peer_bond "$mode" p0 p1
    succeeds "mode $mode: a bond of two cards is built" operation bond bond0 "$mode" eth0 eth1
    is "mode $mode: the driver runs it" "$(cut -d' ' -f2 /sys/class/net/bond0/bonding/mode)" "$mode"
    is "mode $mode: the bond has its saved address" "$(address bond0)" 10.9.0.1/24
    succeeds "mode $mode: traffic to the peer" reaches_peer
    host "link eth0 off"
    host "link p0 off"
    succeeds "mode $mode: traffic goes on with a link cut" reaches_peer
    host "link eth0 on"
    host "link p0 on"
    succeeds "mode $mode: the bond is torn down" operation unbond bond0
    is "mode $mode: eth1 has its own address again" "$(address eth1)" 192.168.1.108/24
    ip -n peer link del far
done

peer_bond 0 p0 p1 p2
succeeds "three cards: the bond is built" operation bond bond0 0 eth0 eth1 eth2
is "three cards: its members" "$(members bond0)" "eth0 eth1 eth2"
succeeds "three cards: traffic to the peer" reaches_peer
succeeds "three cards: the bond is torn down" operation unbond bond0
is "three cards: eth2 has its own address again" "$(address eth2)" 192.168.2.108/24
