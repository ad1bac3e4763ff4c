# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# wires: 1
# Virtual links on a card: IPVLAN in each of its modes with traffic through it, and a MACVLAN.

cards 1
ip link set eth0 up
ip -n peer addr add 10.7.0.1/24 dev p0

# kind_of LINK: as iproute2 tells it, such as "ipvlan mode l2 bridge"
kind_of()
{
    ip -d link show dev "$1" | tr -s ' ' '\n' |
        sed -n '/^\(ip\|mac\)vlan$/,/^\(addrgenmode\|bcqueuelen\)$/p' | sed '$d' | tr '\n' ' '
}
is_up() { ip link show dev "$1" | grep -q '[<,]UP[,>]'; }

# Each by its number, with what iproute2 calls it.
for mode in "0 l2" "1 l3" "2 l3s"; do
    succeeds "an IPVLAN of mode $mode" operation addlink 2 eth0 ipvl0 "${mode% *}" 0
    is "its mode" "$(kind_of ipvl0)" "ipvlan mode ${mode#* } bridge "
    succeeds "it is up" is_up ipvl0
    if [ "$mode" = "0 l2" ]; then
        ip addr add 10.7.0.2/24 dev ipvl0
        succeeds "traffic through it" wait_for 5 ping -c 1 -W 1 -I ipvl0 10.7.0.1
    fi
    succeeds "it is deleted" operation dellink 2 eth0 ipvl0
    fails "there is no link left" test -e /sys/class/net/ipvl0
done

succeeds "a private IPVLAN" operation addlink 2 eth0 ipvl0 0 1
is "its flag" "$(kind_of ipvl0)" "ipvlan mode l2 private "
succeeds "a second one beside it" operation addlink 2 eth0 ipvl1 0 1
succeeds "the first is deleted" operation dellink 2 eth0 ipvl0
succeeds "the second stays" is_up ipvl1
succeeds "the second is deleted" operation dellink 2 eth0 ipvl1

succeeds "a MACVLAN bridge" operation addlink 3 eth0 mac0 4 0
is "its mode" "$(kind_of mac0)" "macvlan mode bridge "
ip addr add 10.7.0.3/24 dev mac0
succeeds "traffic through it" wait_for 5 ping -c 1 -W 1 -I mac0 10.7.0.1
fails "an IPVLAN beside it on the same card" operation addlink 2 eth0 ipvl0 0 0
succeeds "it is deleted" operation dellink 3 eth0 mac0

fails "a link that is not there" operation dellink 2 eth0 ipvl0
is "the kernel's reason is told" "$(grep -c 'the rtnl_talk error:19, the err str:No such device' /tmp/output)" 1
fails "an unknown card" operation addlink 2 eth9 ipvl0 0 0
is "the card is named" "$(grep -c "can't find device 'eth9' " /tmp/output)" 1
fails "a kind that is not made" operation addlink 7 eth0 veth0 0 0
