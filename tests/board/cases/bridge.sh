# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# wires: 4
# A bridge beside a bond, with traffic through it and the spanning tree on.

cards 4
modprobe bonding max_bonds=1
modprobe bridge
for number in 0 1 2 3; do
    case $number in 0) file=network ;; 1) file=network1 ;; *) file=networketh$number ;; esac
    settings $file "HOSTIP = 192.168.$number.108" "SUBMASK = 255.255.255.0" \
        "GATEWAYIP = 192.168.$number.1" "MTU = 1500" "WORKMODE = 0"
done
settings networkbond0 "HOSTIP = 10.9.0.1" "SUBMASK = 255.255.255.0" "GATEWAYIP = 10.9.0.2" "MTU = 1500"
settings networkbr0 "HOSTIP = 10.8.0.1" "SUBMASK = 255.255.255.0" "GATEWAYIP = 10.8.0.2" "MTU = 1500"
ip -n peer addr add 10.8.0.2/24 dev p2
ip netns add third
ip -n peer link set p3 netns third
ip -n third link set p3 up
ip -n third addr add 10.8.0.3/24 dev p3

succeeds "a bond of eth0 and eth1" operation bond bond0 1 eth0 eth1
succeeds "a bridge of its neighbours" operation bridge br0 eth2 eth3
is "the bridge has the first card's address" "$(cat /sys/class/net/br0/address)" "$(cat /sys/class/net/eth2/address)"
is "its ports" "$(ls /sys/class/net/br0/brif | tr '\n' ' ')" "eth2 eth3 "
is "it has its saved address" "$(address br0)" 10.8.0.1/24
is "the ports are saved" "$(setting networkbr0 BRIDGEMEMBERS)" eth2,eth3
is "the card's claim is saved" "$(setting networketh2 BRIDGEEDED) $(setting networketh2 BRIDGENAME) $(setting networketh2 WORKMODE)" "1 br0 3"
succeeds "traffic to a host behind a port" wait_for 40 ping -c 1 -W 1 10.8.0.2
succeeds "traffic through the bridge" wait_for 10 in_peer ping -c 1 -W 1 10.8.0.3
is "the bond beside it is untouched" "$(members bond0) $(address bond0)" "eth0 eth1 10.9.0.1/24"

succeeds "the spanning tree is turned on" operation tree br0 0 1
is "the kernel has it" "$(cat /sys/class/net/br0/bridge/stp_state)" 1
is "a port forwards after 2 seconds each" "$(cat /sys/class/net/br0/bridge/forward_delay)" 200
is "the mode is saved" "$(setting rsbridgeinit.conf stp_state)" 0d
succeeds "the spanning tree is turned off" operation tree br0 0 0
is "the kernel has it off" "$(cat /sys/class/net/br0/bridge/stp_state)" 0
fails "the third kind of tree is refused" operation tree br0 2 1

succeeds "the bridge is torn down" operation unbridge br0
fails "there is no bridge left" test -e /sys/class/net/br0
is "eth2 has its own address again" "$(address eth2)" 192.168.2.108/24
is "the claim is gone" "$(setting networketh2 BRIDGEEDED) $(setting networketh2 WORKMODE)" "0 0"
fails "a name that is no bridge" operation bridge bra eth2 eth3
