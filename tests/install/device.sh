#!/bin/sh
# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# The examples on a device of its own: two cards with a machine behind the first. Runs inside network
# and mount namespaces of its own (tests/netns/enter.sh), here or in a root of its own.
#
# usage: device.sh FOLDER_OF_THE_EXAMPLES
set -eu

cd "$1"
config=/mnt/mtd/Config
failed=0

# says COMMAND TEXT [COMMAND]: the text is in one line of the output
says()
{
    status=0
    # shellcheck disable=SC2086  # a command of words
    output=$($1 2>&1) || status=$?
    if [ "$status" != 0 ] || ! printf '%s\n' "$output" | grep -qE -- "$2"; then
        printf '%s: status %s, and no line with\n  %s\nin\n%s\n' "$1" "$status" "$2" "$output"
        failed=1
    fi
}

refuses()
{
    status=0
    # shellcheck disable=SC2086
    $2 >/dev/null 2>&1 || status=$?
    [ "$status" = "$1" ] || { echo "$2: status $status, not $1"; failed=1; }
}

for card in eth0 eth1; do
    ip link add "$card" type veth peer name "p$card"
    ip link set "p$card" up
    ip link set "$card" up
done
for file in network network1 networkpeth0 networkpeth1; do
    echo 'WORKMODE = 0' >$config/$file # as a boot leaves them
done
printf 'HOSTIP = 10.1.0.10\nSUBMASK = 255.255.255.0\nGATEWAYIP = 10.1.0.1\nMTU = 1500\n' >>$config/network
sum=$(sha256sum $config/*)

# Listing changes nothing.
says ./interfaces '^eth0 +link 10\.1\.0\.10 +255\.255\.255\.0 .*received [0-9]+  sent [0-9]+$'
says ./interfaces '^eth1 +link - '
says ./status '^interface 6, 4 network cards$'
says ./status '^eth0 +link 10\.1\.0\.10 +255\.255\.255\.0 +[0-9a-fA-F:]{17} mtu 1500 '
ip addr add 10.1.0.10/24 dev eth0
ip route add default via 10.1.0.1
says ./mixed '^0\.0\.0\.0 mask 0\.0\.0\.0 gateway 10\.1\.0\.1 over eth0$'
says ./mixed '^10\.1\.0\.0 mask 255\.255\.255\.0 gateway 0\.0\.0\.0 over eth0$'
[ "$(sha256sum $config/*)" = "$sum" ] || { echo 'listing has changed a setting file'; failed=1; }

# Setting changes kernel and file, and either generation reads it back.
says './interfaces eth1 10.2.0.20 255.255.255.0' 'SetIp name eth1 addr 10\.2\.0\.20 mask 255\.255\.255\.0'
says 'ip -4 -o addr show dev eth1' '10\.2\.0\.20/24'
says "cat $config/network1" '^HOSTIP = 10\.2\.0\.20$'
says ./status '^eth1 +link 10\.2\.0\.20 '
says './mixed eth1 10.2.0.1' '^the gateway of eth1 is 10\.2\.0\.1$'
says "cat $config/network1" '^GATEWAYIP = 10\.2\.0\.1$'

refuses 1 './interfaces eth7 10.2.0.20 255.255.255.0'
refuses 1 './mixed eth7 10.2.0.1'
refuses 2 './interfaces what'
refuses 2 './mixed what'

# A bridge lives as long as its object.
if ip link add probe0 type bridge 2>/dev/null && command -v brctl >/dev/null; then
    ip link del probe0
    says './interfaces bridge br0 eth0 eth1' '^br0 has eth1$'
    [ ! -e /sys/class/net/br0 ] || { echo 'the bridge has outlived its object'; failed=1; }
    says "cat $config/network1" '^BRIDGEEDED = 0$'
else
    echo 'left out: no bridges in this kernel, or no brctl'
fi
exit "$failed"
