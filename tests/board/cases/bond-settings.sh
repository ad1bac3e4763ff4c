# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# wires: 2
# What is changed of a bond that runs or stands: primary, hash policy, MTU, a VLAN on it; and what is refused.

cards 2
modprobe bonding max_bonds=1
modprobe 8021q
settings network "HOSTIP = 192.168.0.108" "SUBMASK = 255.255.255.0" "GATEWAYIP = 192.168.0.1" \
    "MTU = 1500" "DEFAULT_ETH = bond0"
settings network1 "HOSTIP = 192.168.0.109" "SUBMASK = 255.255.255.0" "GATEWAYIP = 192.168.0.1" "MTU = 1500"
settings networkbond0 "HOSTIP = 10.9.0.1" "SUBMASK = 255.255.255.0" "GATEWAYIP = 10.9.0.2" "MTU = 1500"
bonding=/sys/class/net/bond0/bonding

succeeds "the hash policy is set before the bond is built" operation hash bond0 1
is "the driver has the policy" "$(cat $bonding/xmit_hash_policy)" "layer3+4 1"
is "the policy is saved" "$(setting networkbond0 LACP)" 1
fails "a policy that the driver does not know" operation hash bond0 9
is "what was refused is not saved" "$(setting networkbond0 LACP)" 1

succeeds "an active-backup bond is built" operation bond bond0 1 eth0 eth1
fails "a second build of a mode of no use" operation bond bond9 1 eth0 eth1
succeeds "building it again changes the primary" operation bond bond0 4 eth1 eth0
is "the driver has the primary" "$(cat $bonding/primary)" eth1
is "the primary is saved" "$(setting networkbond0 BONDPRIMARY)" eth1
is "the mode stays" "$(setting networkbond0 BONDMODE)" 1

succeeds "the MTU of a bond" operation mtu bond0 1400
is "the bond has it" "$(cat /sys/class/net/bond0/mtu)" 1400
is "the members follow" "$(cat /sys/class/net/eth0/mtu) $(cat /sys/class/net/eth1/mtu)" "1400 1400"
is "the MTU is saved" "$(setting networkbond0 MTU)" 1400
is "the bond is up again" "$(cut -c6 /sys/class/net/bond0/flags)" 3
succeeds "an MTU above the limit becomes 1500" operation mtu bond0 9000
is "the bond has 1500" "$(cat /sys/class/net/bond0/mtu)" 1500

ip link add link bond0 name bond0.5 type vlan id 5
settings networkbond0.5 "HOSTIP = 10.5.0.1" "SUBMASK = 255.255.255.0" "GATEWAYIP = 10.5.0.2" "MTU = 1500"
succeeds "a VLAN on the bond comes up with its address" operation recover bond0.5
is "its address" "$(address bond0.5)" 10.5.0.1/24
fails "a VLAN is no bond" operation bond bond0.5 1 eth0 eth1

succeeds "the bond is torn down" operation unbond bond0
fails "it cannot be torn down twice" operation unbond bond0
succeeds "round robin is built" operation bond bond0 0 eth0 eth1
fails "a running bond is never rebuilt" operation bond bond0 0 eth0 eth1
succeeds "it is torn down" operation unbond bond0
