# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# wires: 2
# Blocked ports: what a peer gets, and the rules that the kernel has.

cards 2
for module in iptable_filter ip6table_filter; do modprobe $module; done
for number in 0 1; do
    ip link set "eth$number" up
    ip addr add "10.0.$number.1/24" dev "eth$number"
    ip addr add "fd00:$number::1/64" dev "eth$number" nodad
    ip -n peer addr add "10.0.$number.2/24" dev "p$number"
    ip -n peer addr add "fd00:$number::2/64" dev "p$number" nodad
done
for tool in iptables ip6tables; do
    $tool -N PORTCHAIN
    $tool -A INPUT -j PORTCHAIN
done
mkdir /tmp/files
echo page >/tmp/files/index.html
httpd -h /tmp/files -p 80
httpd -h /tmp/files -p 81

# rules TOOL: "10.0.0.1/32 tcp 80;" for each rule of the chain
rules()
{
    $1 -S PORTCHAIN |
        sed -n 's/^-A PORTCHAIN -d \([^ ]*\) -p \([a-z]*\) -m [a-z]* --dport \([0-9]*\) -j REJECT .*/\1 \2 \3/p' |
        tr '\n' ';'
}
page() { in_peer timeout 10 wget -q -O - "http://$1/"; }

succeeds "the page is there" wait_for 10 page 10.0.0.1
succeeds "port 80 of eth0 is blocked" operation block 10.0.0.1 80
succeeds "and once more" operation block 10.0.0.1 80
is "one pair of rules stands" "$(rules iptables)" "10.0.0.1/32 tcp 80;10.0.0.1/32 udp 80;"
fails "the peer is refused" page 10.0.0.1
succeeds "but not at the other port" page 10.0.0.1:81
succeeds "nor at the other card" page 10.0.1.1
succeeds "port 80 is freed" operation free 10.0.0.1 80
is "no rule is left" "$(rules iptables)" ""
succeeds "the peer has its page" page 10.0.0.1

succeeds "the page is there over IPv6" page "[fd00:1::1]"
succeeds "port 80 of an IPv6 address is blocked" operation block fd00:1::1 80
is "its TCP half stands, its UDP half is nowhere" "$(rules ip6tables)$(rules iptables)" "fd00:1::1/128 tcp 80;"
fails "the peer is refused there" page "[fd00:1::1]"

succeeds "port 81 of all addresses is blocked" operation block 0.0.0.0 81
is "by a pair for each" "$(rules iptables)" \
    "10.0.0.1/32 tcp 81;10.0.0.1/32 udp 81;10.0.1.1/32 tcp 81;10.0.1.1/32 udp 81;"
is "in both families" "$(rules ip6tables)" "fd00:1::1/128 tcp 80;fd00::1/128 tcp 81;fd00:1::1/128 tcp 81;"
fails "the peer is refused at one card" page 10.0.0.1:81
fails "and at the other" page 10.0.1.1:81
succeeds "to free all addresses frees every port" operation free 0.0.0.0 9999
is "no rule is left in either family" "$(rules iptables)$(rules ip6tables)" ""
succeeds "the peer has all its pages" page 10.0.1.1:81
