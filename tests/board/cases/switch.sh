# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# wires: 1
# The switch chip behind an interface: its ports, what a driver refuses, and a card that is no switch.

cards 1
modprobe board with_switch=1
ip link set eth1 up

is "the switch interface is found by its driver" "$(told switch-name)" eth1
is "it has its ports" "$(told ports eth1)" 8
forget
is "the number is asked for once in a process" "$(told ports eth1 eth1 | tr '\n' ' ')" "8 8 "
is "in an empty record" "$(trace)" "switch 89f1 0000000000000000000000000000"
hardware link_mask 0x8005
is "links are the driver's" "$(told links eth1)" 0x8005
hardware link_mask 0x05
is "the PoE name of a card reaches the same driver" "$(told ports eth1:poe)" 8

forget
is "a hardware address is found" "$(told port-of eth1 02:00:00:00:f0:03)" 3
is "by its bytes" "$(trace)" "switch 89f3 0000000002000000f00300000000"
is "an unknown one is told as none" "$(told port-of eth1 02:00:00:00:f1:03)" -1
is "with the reason" "$(messages)" "Error: cmd 35315 error.[No such file or directory] eth1 
Error: get port error.[02:00:00:00:f1:03]"

forget
is "the ports are listed" "$(told status eth1 4)" "0 1 0.0.0.0 4 02:00:00:00:f0:00
1 0 0.0.0.0 4 
2 1 0.0.0.0 4 02:00:00:00:f0:02
3 0 0.0.0.0 4 "
is "with a warning when there are more" "$(messages)" \
    "Warn: too much Switch port number actually: portNum:[8],inputNum:[4]"
is "each was enabled on the way" "$(trace)" "switch 89f1 0000000000000000000000000000
switch 89f4 0000000000000000000001000000
switch 89f2 0000000000000000000000000000
switch 89f4 0000000100000000000001000000
switch 89f4 0000000200000000000001000000
switch 89f2 0000000200000000000000000000
switch 89f4 0000000300000000000001000000"
is "all of them fit" "$(told status eth1 16 | wc -l)" 8

hardware nobody_mask 0x04
is "an address of nobody is not told" "$(told status eth1 3 | tail -n 1)" "2 1 0.0.0.0 4 "
is "but reported" "$(messages Error)" "Error: Get port[2]' mac error ,BroadCastMac || AllZeroMac"
hardware nobody_mask 0

refuse 5
fails "a refused request fails" operation ports eth1
cp /tmp/output /tmp/log
is "with the kernel's reason" "$(messages)" "Error: cmd 35313 error.[Input/output error] eth1 
Error: get port num for eth1 error."
refuse 5
is "a driver that does not answer has no ports" "$(told status eth1 8)" ""
refuse 16 2
is "a port whose address is refused is listed" "$(told status eth1 2)" "0 1 0.0.0.0 4 
1 0 0.0.0.0 4 "
is "and told of twice" "$(messages Error | tail -n 2)" "Error: Get mac for port 1 failed.
Error: GetMacByPort 1 error."

forget
succeeds "isolation on" operation isolate eth1 1
succeeds "isolation off" operation isolate eth1 0
is "are the same request" "$(trace | uniq -c | sed 's/^ *//')" "2 switch 89f8 0000000000000000000000000000"

fails "a card is no switch" operation ports eth0
cp /tmp/output /tmp/log
is "and it is said so" "$(messages)" "Error: eth0 is not a switch"
settings poeMode.conf "eth0 = 1"
fails "a card that is saved as one does not know the requests" operation ports eth0
cp /tmp/output /tmp/log
is "in its own driver's words" "$(messages Error | head -n 1)" "Error: cmd 35313 error.[Operation not supported] eth0 "
rm /mnt/mtd/Config/poeMode.conf

lanrise >/tmp/log 2>&1
is "a boot gives the switch its own address" "$(address eth1) $(setting network1 GATEWAYIP)" "10.1.1.1/24 10.1.1.1"
