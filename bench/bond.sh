# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# wires: 2
# time: real
# How long a boot takes that builds a bond of two cards, beside a shell script with `ip` and beside
# `ifup -a` of ifupdown. Runs in the guest of a virtual board, whose kernel has the driver.
#
# The contenders take turns in the same rounds; between two runs the bond loses its members and all
# cards are taken down, outside of the measured time; after each run the end state is looked at.
#
# usage: tests/board/run.py amd64 build/release bench/bond.sh
# shellcheck shell=sh

rounds=9
pause=2000 # milliseconds that a boot waits for a bond, as devices expect it

cards 2
modprobe bonding max_bonds=1
ip -n peer link add switch type bridge
for port in p0 p1; do ip -n peer link set $port master switch; done
ip -n peer link set switch up
ip -n peer addr add 10.1.0.1/24 dev switch
ln -s ifup /sbin/ifquery

settings network "HOSTIP = 192.168.0.108" "SUBMASK = 255.255.255.0" "GATEWAYIP = 192.168.0.1" \
    "MTU = 1500" "WORKMODE = 1" "BONDED = 1" "BONDNAME = bond0" "DEFAULT_ETH = bond0"
settings network1 "HOSTIP = 192.168.0.109" "SUBMASK = 255.255.255.0" "GATEWAYIP = 192.168.0.1" \
    "MTU = 1500" "WORKMODE = 1" "BONDED = 1" "BONDNAME = bond0"
settings networkbond0 "HOSTIP = 10.1.0.10" "SUBMASK = 255.255.255.0" "GATEWAYIP = 10.1.0.1" \
    "MTU = 1500" "BONDMODE = 1" "BONDMEMBERS = eth0,eth1"

cat >/tmp/script <<'SCRIPT'
#!/bin/sh -e
ip link set bond0 down
echo active-backup >/sys/class/net/bond0/bonding/mode
echo 100 >/sys/class/net/bond0/bonding/miimon
for card in eth0 eth1; do
    ip link set $card down
    ip link set $card master bond0
done
ip addr add 10.1.0.10/24 dev bond0
ip link set bond0 up
ip route add default via 10.1.0.1
SCRIPT
chmod +x /tmp/script

cat >/etc/network/interfaces <<'INTERFACES'
auto bond0
iface bond0 inet static
    address 10.1.0.10/24
    gateway 10.1.0.1
    bond-slaves eth0 eth1
    bond-mode active-backup
    bond-miimon 100
INTERFACES

by_lanrise() { lanrise; }
by_script() { /tmp/script; }
by_ifup() { ifup -a; }

take_down()
{
    for card in eth0 eth1; do
        if grep -q $card /sys/class/net/bond0/bonding/slaves; then
            echo -$card >/sys/class/net/bond0/bonding/slaves
        fi
        ip addr flush dev $card
        ip link set $card down
    done
    ip addr flush dev bond0
    ip link set bond0 down
    rm -f /run/network/*
}

end_state()
{
    echo "$(members bond0) $(address bond0) $(cut -d' ' -f1 /sys/class/net/bond0/bonding/mode)" \
        "$(ip -4 route show default | cut -d' ' -f3)"
}

# Milliseconds, in steps of ten.
now() { sed 's/ .*/0/; s/\.//' /proc/uptime; }

# measure WHO: one run; its milliseconds go to /tmp/WHO
measure()
{
    take_down
    begin=$(now)
    "by_$1" >/tmp/output 2>&1
    end=$(now)
    echo $((end - begin)) >>"/tmp/times-$1"
    is "$1 brings up the bond" "$(end_state)" 'eth0 eth1 10.1.0.10/24 active-backup 10.1.0.1' >/tmp/check ||
        true
    grep -v '^ok' /tmp/check && cat /tmp/output
}

median() { sort -n "/tmp/times-$1" | sed -n "$(((rounds + 1) / 2))p"; }

# show WHO WHAT MILLISECONDS
show() { echo "$1 $2 $3" | awk '{ printf "%-10s %6d ms   lanrise / this %.2f\n", $1, $2, $3 / $2 }'; }

by_lanrise >/tmp/first 2>&1 # repairs what there is to repair, once
round=0
while [ $round -lt $rounds ]; do
    for who in lanrise script ifup; do measure $who; done
    round=$((round + 1))
done

whole=$(median lanrise)
own=$((whole - pause))
echo "medians of $rounds rounds; lanrise took $whole ms, of which it waited $pause ms"
show lanrise $own $own
show script "$(median script)" $own
show ifup "$(median ifup)" $own
