# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# The device of ./demo, inside network and mount namespaces of its own: what is plugged in, and what ten
# years have made of its settings. Sourced, never run; `config` is the folder of settings.
# shellcheck shell=bash

# plug_in <card> <address of the machine behind it>
plug_in() {
    ip netns add "behind-$1"
    ip link add "$1" type veth peer name eth0 netns "behind-$1"
    ip -n "behind-$1" addr add "$2/24" dev eth0
    ip -n "behind-$1" link set eth0 up
}

# save <file> <address> <gateway>: settings of a card as an earlier run left them
save() {
    printf 'HOSTIP = %s\nSUBMASK = 255.255.255.0\nGATEWAYIP = %s\nMTU = 1500\nPRIO = 1\n' \
        "$2" "$3" >"$config/$1"
}

make_device() {
    plug_in eth0 10.1.0.1
    plug_in eth1 10.2.0.1
    plug_in eth2 10.3.0.1
    plug_in eth3 192.168.0.1

    save network 10.1.0.10 10.1.0.1
    echo 'DEFAULT_ETH = eth1.100' >>"$config/network"
    save network1 10.2.0.10 10.2.0.1
    save network2 10.3.0.10 10.3.0.1
    printf 'HOSTIP = 10.4.0.10\nSUBM\001\377\000\000\000TU = 15' >"$config/networketh3"

    # What is left of a run before: the first card is up, with a route that nobody saved.
    ip addr add 10.1.0.10/24 dev eth0
    ip link set eth0 up
    ip route add 172.16.0.0/16 via 10.1.0.254 dev eth0

    if ip link add br0 type bridge 2>/dev/null; then
        ip link del br0
        make_ports
    else
        echo 'The kernel of this machine has no bridges: br0 and its ports are left out.'
    fi
}

# Two cards that claim br0, whose own list names a card that is gone. Each has a machine behind it.
make_ports() {
    local number
    for number in 4 5; do
        plug_in eth$number 10.5.0.$((number - 3))
        save networketh$number 192.168.$number.10 192.168.$number.1
        printf 'BRIDGEEDED = 1\nBRIDGENAME = br0\n' >>"$config/networketh$number"
    done
    save networkbr0 10.5.0.10 10.5.0.1
    echo 'BRIDGEMEMBERS = eth4,eth9' >>"$config/networkbr0"
}

has_bridge() { [ -e "$config/networkbr0" ]; }
