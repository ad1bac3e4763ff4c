# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# wires: 6
# The whole boot from settings that contradict each other: bonds and bridges told twice and differently, a
# card claimed by both, a file of an old release, a stale route. Then a second boot.

cards 6
modprobe bonding max_bonds=2
modprobe bridge
ip -n peer link add switch type bridge
# Not p3: with both cards of br0 in one switch frames would go round for ever.
for port in p0 p1 p2 p4 p5; do ip -n peer link set $port master switch; done
ip -n peer link set switch up
for net in 1 2 3; do ip -n peer addr add 10.$net.0.2/24 dev switch; done

address_of() { echo "HOSTIP = 10.$1.0.$2"; }
common() { echo "SUBMASK = 255.255.255.0"; }

# Both claim bond0, whose own list is stale and whose mode is of an old release.
settings network "$(address_of 4 108)" "$(common)" "GATEWAYIP = 10.4.0.2" "MTU = 1500" \
    "BONDED = 1" "BONDNAME = bond0" "DEFAULT_ETH = bond0"
settings network1 "$(address_of 5 108)" "$(common)" "GATEWAYIP = 10.5.0.2" "MTU = 1500" \
    "BONDED = 1" "BONDNAME = bond0" "WORKMODE = 0"
settings networkbond0 "$(address_of 1 1)" "$(common)" "GATEWAYIP = 10.1.0.2" "MTU = 1500" \
    "BONDMODE = 1" "BONDMEMBERS = eth1,eth5"
# Both claim br0, which has no file of its own.
settings networketh2 "$(address_of 6 108)" "$(common)" "GATEWAYIP = 10.6.0.2" "MTU = 1500" \
    "BRIDGEEDED = 1" "BRIDGENAME = br0"
settings networketh3 "$(address_of 7 108)" "$(common)" "GATEWAYIP = 10.7.0.2" "MTU = 1500" \
    "BRIDGEEDED = 1" "BRIDGENAME = br0"
# Claimed by a bond and a bridge at once, alone in both.
settings networketh4 "$(address_of 3 1)" "$(common)" "GATEWAYIP = 10.3.0.2" "MTU = 1500" \
    "BONDED = 1" "BONDNAME = bond1" "BRIDGEEDED = 1" "BRIDGENAME = br1" "WORKMODE = 3"
# A bridge that nobody claims.
settings networkbr7 "BRIDGEMEMBERS = eth4,eth5"
# eth5 has a damaged file.
settings networketh5 "HOSTIP = 300.1.1.1" "rubbish" "MTU"

ip link set eth5 up
ip addr add 172.16.0.1/24 dev eth5
ip route add 172.30.0.0/16 via 172.16.0.2 dev eth5

boot() { lanrise >/tmp/log 2>&1; }
saved_state() { cat /mnt/mtd/Config/* | md5sum; }
routes() { ip -4 route show | sed 's/ proto [a-z]*//; s/ scope [a-z]*//; s/ src [0-9.]*//; s/ linkdown//; s/ *$//' | sort; }

succeeds "the boot ends well" boot
is "bond0 runs with both cards" "$(members bond0)" "eth0 eth1"
is "bond0's list is mended" "$(setting networkbond0 BONDMEMBERS)" eth0,eth1
is "bond0 has its address" "$(address bond0)" 10.1.0.1/24
is "br0 has both cards" "$(ls /sys/class/net/br0/brif | tr '\n' ' ')" "eth2 eth3 "
is "br0's list is made" "$(setting networkbr0 BRIDGEMEMBERS)" eth2,eth3
is "eth4 stands alone" "$(setting networketh4 BONDED) $(setting networketh4 BRIDGEEDED) $(setting networketh4 WORKMODE)" "0 0 0"
is "eth4 has its address" "$(address eth4)" 10.3.0.1/24
fails "the bridge that nobody claims has lost its file" test -e /mnt/mtd/Config/networkbr7
is "eth5 got a factory address" "$(setting networketh5 HOSTIP)" 192.168.0.113
is "the damaged card is up" "$(cut -c6 /sys/class/net/eth5/flags)" 3
is "one default route, by bond0" "$(ip -4 route show default | sed 's/ *$//')" "default via 10.1.0.2 dev bond0"
is "the stale route is gone" "$(ip -4 route show 172.30.0.0/16)" ""
is "a member has no route of its own" "$(ip -4 route show dev eth0; ip -4 route show dev eth2)" ""
is "name servers are saved" "$(grep -c nameserver /mnt/mtd/Config/resolv.conf)" 4
succeeds "traffic over the bond" wait_for 8 ping -c 1 -W 1 10.1.0.2
succeeds "traffic of the card alone" wait_for 8 ping -c 1 -W 1 10.3.0.2

succeeds "a second boot ends well" boot
routes >/tmp/routes
saved=$(saved_state)
succeeds "a third boot ends well" boot
is "it changes no saved byte" "$(saved_state)" "$saved"
routes >/tmp/routes.again
succeeds "and ends with the same routes" cmp /tmp/routes /tmp/routes.again
is "the bond still runs" "$(members bond0)" "eth0 eth1"
is "the bridge still has its ports" "$(ls /sys/class/net/br0/brif | tr '\n' ' ')" "eth2 eth3 "
succeeds "traffic over the bond still" wait_for 8 ping -c 1 -W 1 10.1.0.2
