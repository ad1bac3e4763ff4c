# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# wires: 2
# Limits on what is sent to single peers, with all their parts in the kernel, and a file that takes its time.

cards 2
for number in 0 1; do
    ip link set "eth$number" up
    ip addr add "10.0.$number.1/24" dev "eth$number"
    ip -n peer addr add "10.0.$number.2/24" dev "p$number"
    ip -n peer addr add "10.0.$number.3/24" dev "p$number"
done

# What the kernel has of a card's limits, each list on one line.
root() { tc qdisc show dev "$1" | sed -n 's/^qdisc \(htb 1:\) root .* \(default [^ ]*\) .*/\1 \2/p'; }
# The leaf's own number stands in `leaves`: tc of 32-bit Debian 13 tells another one here each time.
classes()
{
    tc class show dev "$1" | sed -n 's/^class htb \([^ ]*\) root leaf [^ ]* .*rate \([^ ]*\) ceil.*/\1 \2/p' |
        sort | tr '\n' ';'
}
filters()
{
    tc -p filter show dev "$1" | sed -n '/flowid/{s/.*flowid \([^ ]*\).*/\1/;N;s/\n.*dst / /;p}' | sort | tr '\n' ';'
}
leaves()
{
    tc qdisc show dev "$1" |
        sed -n 's/^qdisc \(sfq [^ ]*\) parent \([^ ]*\) .*\(perturb [^ ]*\).*/\2 \1 \3/p' | sort | tr '\n' ';'
}
saved() { operation limits "$1" 2>&1 >/dev/null | tr '\n' ';'; }

# hundredths COMMAND...: how long it takes, in hundredths of a second
hundredths()
{
    from=$(sed 's/\([0-9]*\)\.\([0-9]*\) .*/\1\2/' /proc/uptime)
    "$@"
    echo $(($(sed 's/\([0-9]*\)\.\([0-9]*\) .*/\1\2/' /proc/uptime) - from))
}

succeeds "two limits on eth0" operation limit eth0 10.0.0.2 2 0 10.0.0.3 20 0
is "the root, whose default is the first limit" "$(root eth0)" "htb 1: default 0x10"
is "a class for each, with a leaf" "$(classes eth0)" "1:10 2Mbit;1:20 20Mbit;"
is "a filter for each" "$(filters eth0)" "1:10 10.0.0.2/32;1:20 10.0.0.3/32;"
is "the leaves are fair queues" "$(leaves eth0)" "1:10 sfq 10: perturb 5sec;1:20 sfq 20: perturb 5sec;"
is "both are saved" "$(saved eth0)" "10.0.0.2 2;10.0.0.3 20;"
is "eth1 has none" "$(root eth1)$(classes eth1)" ""

mkdir /tmp/files
dd if=/dev/zero of=/tmp/files/quarter bs=1024 count=256 2>/dev/null
httpd -h /tmp/files
fetch() { in_peer wget -q -O /tmp/fetched http://10.0.0.1/quarter; }
ip -n peer route add 10.0.0.1/32 dev p0 src 10.0.0.2
succeeds "the board is reached" wait_for 10 in_peer ping -c 1 -W 1 10.0.0.1
limited=$(hundredths fetch)
is "256 kB at 2 mbit take a second" "$((limited >= 95))" 1
is "and come whole" "$(cmp /tmp/files/quarter /tmp/fetched && echo yes)" yes

succeeds "one peer is taken off" operation unlimit eth0 10.0.0.2
is "the other one is built again" "$(classes eth0)$(filters eth0)" "1:10 20Mbit;1:10 10.0.0.3/32;"
is "with its leaf" "$(leaves eth0)" "1:10 sfq 10: perturb 5sec;"
is "and saved" "$(saved eth0)" "10.0.0.3 20;"

fails "a receive limit between two others" operation limit eth1 10.0.1.2 3 0 10.0.1.4 4 1 10.0.1.3 5 0
is "the others are set" "$(classes eth1)$(leaves eth1)" \
    "1:10 3Mbit;1:20 5Mbit;1:10 sfq 10: perturb 5sec;1:20 sfq 20: perturb 5sec;"
is "and saved" "$(saved eth1)" "10.0.1.2 3;10.0.1.3 5;"

succeeds "all peers are taken off by the process that set none" operation unlimit eth0 0.0.0.0
is "the file is empty, the old root stays until the next limit" "$(saved eth0)$(root eth0)" "htb 1: default 0x10"
succeeds "the next limit" operation limit eth0 10.0.0.3 30 0
is "has a root of its own" "$(classes eth0)$(leaves eth0)" "1:10 30Mbit;1:10 sfq 10: perturb 5sec;"

tc qdisc del dev eth0 root
free=$(hundredths fetch)
is "without a limit the file takes less" "$((free < limited))" 1
fails "a card that is not there" operation limit eth9 10.0.0.2 2 0
