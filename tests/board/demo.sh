# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# wires: 2
# time: real
# The show of ./demo --board: two cards claimed by a bond whose own list is stale, the boot, and the
# active link cut. Their peer is a switch, which learns where the bond is.
# shellcheck shell=sh

bold=$(printf '\033[1m') dim=$(printf '\033[2m') plain=$(printf '\033[0m')
green=$(printf '\033[32m') red=$(printf '\033[31m')
gateway=10.1.0.1

# ---- the device

cards 2
modprobe bonding max_bonds=1
ip -n peer link add switch type bridge
for port in p0 p1; do ip -n peer link set $port master switch; done
ip -n peer link set switch up
ip -n peer addr add $gateway/24 dev switch

settings network "HOSTIP = 192.168.0.108" "SUBMASK = 255.255.255.0" "GATEWAYIP = 192.168.0.1" \
    "MTU = 1500" "BONDED = 1" "BONDNAME = bond0" "DEFAULT_ETH = bond0"
settings network1 "HOSTIP = 192.168.0.109" "SUBMASK = 255.255.255.0" "GATEWAYIP = 192.168.0.1" \
    "MTU = 1500" "BONDED = 1" "BONDNAME = bond0"
settings networkbond0 "HOSTIP = 10.1.0.10" "SUBMASK = 255.255.255.0" "GATEWAYIP = $gateway" \
    "MTU = 1500" "BONDMODE = 1" "BONDMEMBERS = eth1,eth5"

# ---- what there is to see

section() { printf '\n%s%s%s\n' "$bold" "$1" "$plain"; }
fact() { printf '  %-13s %s\n' "$1" "$2"; }
good() { ok=$((ok + 1)) && echo "$green$1$plain"; }
wrong() { bad=$((bad + 1)) && echo "$red$1$plain"; }

active() { operation active bond0 | tail -n 1; }

reaches_gateway()
{
    printf '  %-13s %s ' Ping $gateway
    if ping -n -c 1 -w 8 $gateway >/tmp/ping 2>&1; then
        good "answers in $(sed -n 's/.*time=//p' /tmp/ping)"
    else
        wrong 'no answer'
    fi
}

# boot: lanrise, and how it went
boot()
{
    read -r start _ </proc/uptime
    lanrise >/tmp/log 2>&1
    status=$?
    read -r end _ </proc/uptime
    printf '\n  %s$ %-53s%s %sexit status %d, %s s%s\n' "$bold" lanrise "$plain" "$dim" $status \
        "$(echo "$start $end" | awk '{ printf "%.1f", $2 - $1 }')" "$plain"
    [ $status = 0 ] || wrong '    the status should be 0'
}

# look [INTERFACE]: what lanrise-status shows; the guest's console is its terminal
look()
{
    printf '  %s$ lanrise-status %s%s\n\n' "$bold" "$*" "$plain"
    lanrise-status "$@" || wrong 'lanrise-status cannot look'
}

show_before()
{
    section 'Before the boot'
    look
}

show_after()
{
    section 'After the boot'
    look
    echo
    reaches_gateway
    [ "$(members bond0) $(setting networkbond0 BONDMEMBERS)" = 'eth0 eth1 eth0,eth1' ] ||
        wrong '  bond0 should have eth0 and eth1'
}

sends_over() { [ "$(active)" = "$1" ]; }

# moves_to CARD FROM: the bond sends over this card now
moves_to()
{
    printf '  %-13s %s  ->  ' 'Sends over' "$2"
    if wait_for 8 sends_over "$1"; then good "$1"; else wrong "$(active)"; fi
}

# Pings sent all the while tell how long the device was off the network.
show_failover()
{
    section 'The link of eth0 is cut'
    ping -n -i 0.2 -c 20 $gateway >/tmp/stream 2>&1 &
    sleep 1.5
    host "link eth0 off"
    moves_to eth1 eth0
    wait
    echo
    look bond0
    echo
    fact Meanwhile \
        "$(awk '/packets transmitted/ { print $4 " of " $1 " pings answered" }' /tmp/stream)"
    reaches_gateway
}

snapshot()
{
    (cd /mnt/mtd/Config && grep . ./* | grep -v BONDPRIMARY)
    ip -4 route show | sed 's/ linkdown//'
}

# A bond that runs is not built again: the boot only makes its first member the preferred one.
show_second_boot()
{
    section 'A second boot, with that link still cut'
    primary=$(setting networkbond0 BONDPRIMARY | grep . || echo none)
    snapshot >/tmp/before
    boot
    snapshot >/tmp/now
    printf '    %-14s %s  ->  ' 'Preferred card' "$primary"
    if [ "$(setting networkbond0 BONDPRIMARY)" = eth0 ]; then good eth0; else wrong none; fi
    if cmp -s /tmp/before /tmp/now; then
        good '    no other saved byte and no route has changed'
    else
        wrong '    something else has changed:'
        diff /tmp/before /tmp/now
    fi
}

show_return()
{
    section 'The link of eth0 is back'
    host "link eth0 on"
    moves_to eth0 eth1
    reaches_gateway
}

echo SHOW
show_before
boot
show_after
show_failover
show_second_boot
show_return
