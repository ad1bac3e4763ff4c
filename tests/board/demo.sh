# wires: 2
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

state() { [ -n "$(ip -o link show dev "$1" up)" ] && echo up || echo down; }
shown_address() { address "$1" | grep . || echo -; }
mode() { cut -d' ' -f1 /sys/class/net/bond0/bonding/mode; }
active() { operation active bond0 | tail -n 1; }
default_route() { ip -4 route show default | sed 's/^default //; s/ *$//' | grep . || echo none; }

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

# row CARD FILE WHAT_IT_SAYS
row()
{
    printf '  %-6s %-6s %-14s %-13s %s\n' "$1" "$(state "$1")" "$(shown_address "$1")" "$2" "$3"
}

# rows VERB REMARK: what the files of the two cards and the bond say of each other
rows()
{
    printf '  %-6s %-6s %-14s %-13s %s\n' Card State Address 'Setting file' 'What it says'
    row eth0 network "$1 $(setting network BONDNAME)"
    row eth1 network1 "$1 $(setting network1 BONDNAME)"
    row bond0 networkbond0 "members $(setting networkbond0 BONDMEMBERS)$2"
}

show_before()
{
    section 'Before the boot'
    rows 'claims to belong to' ": ${red}eth5 is no card, eth0 is missing$plain"
    fact 'Bond' "mode $(mode), members $(members bond0 | grep . || echo none)"
    fact 'Default route' "$(default_route)"
}

show_after()
{
    section 'After the boot'
    rows 'belongs to' ''
    fact 'Bond' "mode $(mode), members $(members bond0), sends over $(active)"
    fact 'Net route' "$(ip -4 route show dev bond0 scope link | cut -d' ' -f1) dev bond0"
    fact 'Default route' "$(default_route)"
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
