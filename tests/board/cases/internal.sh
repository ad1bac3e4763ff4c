# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# wires: 1
# The internal virtual card and its bridge, and the switch of the spanning tree.

cards 1
modprobe bridge
fails "without the internal card there is no bridge" operation internal
cp /tmp/output /tmp/log
is "it is not needed" "$(messages Warn)" "Warn: get vnic interface failed"

modprobe board with_vnic=1 with_stp=1
ip addr add 10.201.156.1/23 dev vnic0
fails "a card with an address needs none" operation internal
ip addr flush dev vnic0
succeeds "the bridge is built" operation internal
is "over the internal card" "$(ls /sys/class/net/nbp0/brif)" vnic0
is "with its fixed address" "$(address nbp0)" 10.201.156.254/23
is "which is saved" "$(setting networknbp0 HOSTIP) $(setting networknbp0 SUBMASK) $(setting networknbp0 MTU)" \
    "10.201.156.254 255.255.254.0 65535"
is "the card's own settings are not written" "$(ls /mnt/mtd/Config/networkvnic0 2>/dev/null)" ""
fails "it is built once" operation internal
succeeds "and ended" operation uninternal nbp0
fails "it is gone" test -e /sys/class/net/nbp0
settings networknbp0 "HOSTIP = 10.201.156.7" "SUBMASK = 255.255.254.0" "GATEWAYIP = 10.201.156.1" "MTU = 1500"
succeeds "it is built again" operation internal
is "with its saved address" "$(address nbp0)" 10.201.156.7/23

forget
succeeds "the spanning tree is switched on" operation tree-switch eth0 1
is "for the kernel to read" "$(cat /proc/stp_ctrl)" on
succeeds "and off, as with any other value" operation tree-switch eth0 2
is "for the kernel to read" "$(cat /proc/stp_ctrl)" off
is "in one word each" "$(trace)" "stp on
stp off"
refuse 5
fails "a refused word fails" operation tree-switch eth0 1
cp /tmp/output /tmp/log
is "and is told" "$(messages Error)" "Error: write to file error"
operation uninternal nbp0 >/dev/null
rmmod board
fails "without the kernel's side it fails" operation tree-switch eth0 1
cp /tmp/output /tmp/log
is "and is told" "$(messages Error)" "Error: can not open /proc/stp_ctrl"
