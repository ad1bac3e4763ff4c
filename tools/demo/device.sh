# The device of ./demo, inside network and mount namespaces of its own: what is made, what lanrise
# does with it, and what there is to see. Sourced by ./demo, never run.
# shellcheck shell=bash

section() { printf '\n%s%s%s\n' "$bold" "$1" "$plain"; }
# A thing that went wrong ends the demo with status 1, after the rest has been shown.
wrong() { echo "$1" | tee -a /run/wrong; }

# ---- the device

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

# ---- what there is to see

state_of() {
    if [ ! -e "/sys/class/net/$1" ]; then
        echo none
    else
        [ -n "$(ip -br link show dev "$1" up)" ] && echo up || echo down
    fi
}
address_of() { ip -4 -o addr show dev "$1" 2>/dev/null | awk '{ print $4 }' | grep . || echo -; }
default_route() {
    ip route show default | sed 's/^default //; s/ *$//' | paste -sd ';' | grep . || echo none
}
saved() { sed -n "s/^$2 = //p" "$config/$1" 2>/dev/null | tr -cd '[:print:]'; }
net_of() { ip route show dev "$1" scope link | awk '{ print $1; exit }'; }
says() { echo "$(saved "$1" HOSTIP), gateway $(saved "$1" GATEWAYIP)"; }
ports_of() { (cd "/sys/class/net/$1/brif" && ls) | paste -sd ,; }
# A bridge that was just built notices its carrier a moment later.
snapshot() { (cd "$config" && sha256sum -- *) && ip -o -4 addr && ip route | sed 's/ linkdown//'; }

# reaches <ping>...: one answer to this command
reaches() {
    local answer
    if answer=$("$@" -n -c 1 -w 5 2>&1); then
        echo "${green}answers in $(sed -n 's/.*time=\(.*\)/\1/p' <<<"$answer")$plain"
    else
        wrong "${red}no answer$plain"
    fi
}

# run_lanrise <expected status> <argument>...: into the log; prints how it went
run_lanrise() {
    local expected=$1 start=$EPOCHREALTIME status=0
    shift
    printf '\n==== lanrise %s\n' "$*" >>"$log"
    "./$lanrise" "$@" >/run/output 2>>"$log" || status=$?
    local end=$EPOCHREALTIME
    cat /run/output >>"$log"
    printf '\n  %s$ %-53s%s %sexit status %d, %d ms%s\n' "$bold" "lanrise $*" "$plain" \
        "$dim" "$status" $(((${end/./} - ${start/./}) / 1000)) "$plain"
    [ "$status" -eq "$expected" ] || wrong "    ${red}the status should be $expected$plain"
}

logged() { grep -qF -- "$1" /run/output; }

show_before() {
    local format='  %-6s %-6s %-14s %-13s %s\n' card file says
    section 'Before the boot'
    # shellcheck disable=SC2059  # one format for all rows
    printf "$format" Card State Address 'Setting file' 'What it says'
    while read -r card file says; do
        # shellcheck disable=SC2059
        printf "$format" "$card" "$(state_of "$card")" "$(address_of "$card")" "$file" "$says"
    done < <(rows_before)
    printf '  %-13s %s\n' 'Default card' "$(saved network DEFAULT_ETH), a card that is gone" \
        'Default route' "$(default_route)" \
        'Stale route' "$(ip route show 172.16.0.0/16 | sed 's/ *$//')" \
        'Resolvers' "$([ -e $config/resolv.conf ] && echo saved || echo 'no file')"
}

rows_before() {
    cat <<END
eth0 network     $(says network)
eth1 network1    $(says network1)
eth2 network2    $(says network2); name of an old release
eth3 networketh3 ${red}damaged: $(tr -c '[:print:]' . <"$config/networketh3" | cut -c 1-38)$plain
END
    has_bridge || return 0
    cat <<END
eth4 networketh4 claims to be a port of $(saved networketh4 BRIDGENAME)
eth5 networketh5 claims to be a port of $(saved networketh5 BRIDGENAME)
br0  networkbr0  $(says networkbr0); ports ${red}$(saved networkbr0 BRIDGEMEMBERS)$plain
END
}

show_after() {
    local format='  %-6s %-6s %-18s %-16s %-13s %s\n' card file gateway
    section 'After the boot'
    # shellcheck disable=SC2059
    printf "$format" Card State Address 'Net route' Gateway Ping
    while read -r card file; do
        gateway=$(saved "$file" GATEWAYIP)
        # shellcheck disable=SC2059
        printf "$format" "$card" "$(state_of "$card")" "$(address_of "$card")" "$(net_of "$card")" \
            "$gateway" "$(reaches ping -I "$card" "$gateway")"
    done < <(rows_after)
    if has_bridge; then
        printf '  %-13s %s\n' 'Ports of br0' "$(ports_of br0)" \
            'Through br0' "10.5.0.1 behind eth4 pings 10.5.0.2 behind eth5, which \
$(reaches ip netns exec behind-eth4 ping 10.5.0.2)"
    fi
    printf '  %-13s %s\n' 'Default card' "$(saved network DEFAULT_ETH)" \
        'Default route' "$(default_route)"
}

rows_after() {
    printf '%s\n' 'eth0 network' 'eth1 network1' 'eth2 networketh2' 'eth3 networketh3'
    if has_bridge; then echo 'br0 networkbr0'; fi
}

# Each line stands only when the log or the files tell that it happened.
show_repairs() {
    section 'Repaired'
    if [ $config/networketh2 -ef $config/network2 ]; then
        repaired eth2 'file of the old release renamed to networketh2; both names stay valid'
    fi
    if [ -n "$(saved networketh3 GATEWAYIP)" ]; then
        repaired eth3 "damaged settings replaced by the factory address $(saved networketh3 HOSTIP)"
    fi
    if [ "$(saved networkbr0 BRIDGEMEMBERS)" = eth4,eth5 ]; then
        repaired br0 'eth9 is gone and eth5 claims br0: the saved ports are now eth4,eth5'
    fi
    if logged 'default card force use eth1'; then
        repaired 'Default card' 'eth1.100 is gone, so its parent eth1 took over and is saved'
    fi
    if logged '172.16.0.0,10.1.0.254,255.255.0.0,eth0' &&
        [ -z "$(ip route show 172.16.0.0/16)" ]; then
        repaired Routes 'the stale one is gone; one net route a card and one default route'
    fi
    if [ -e $config/resolv.conf ]; then
        repaired Resolvers "$(awk '{ print $2 }' $config/resolv.conf | paste -sd ' ')"
    fi
    printf '  %s%-14s %s%s\n' "$dim" 'Log lines' "$(grep -c '|Info |' /run/output) Info, \
$(grep -c '|Warn |' /run/output) Warn, $(grep -c '|Error|' /run/output) Error" "$plain"
}

repaired() { printf '  %-14s %s\n' "$1" "$2"; }

# change <what> <before> <after>
change() {
    if [ "$2" = "$3" ]; then
        printf '    %-14s %s\n' "$1" "$2 (unchanged)"
    else
        printf '    %-14s %s  ->  %s%s%s\n' "$1" "$2" "$green" "$3" "$plain"
    fi
}

expect_same() {
    if snapshot | cmp -s - /run/before; then
        echo "    ${green}no saved byte, address or route has changed$plain"
    else
        wrong "    ${red}something has changed:$plain"
        snapshot | diff /run/before - || true
    fi
}

show_second_boot() {
    snapshot >/run/before
    run_lanrise 0
    expect_same
}

show_address_form() {
    local address route file
    address=$(address_of eth2) route=$(default_route) file=$(saved networketh2 HOSTIP)
    run_lanrise 0 eth2 10.3.0.77 255.255.255.0 10.3.0.1
    change eth2 "$address" "$(address_of eth2)"
    change networketh2 "HOSTIP = $file" "HOSTIP = $(saved networketh2 HOSTIP)"
    change 'Default route' "$route" "$(default_route)"
    printf '    %-14s %s\n' 'Gateway' "$(reaches ping -I eth2 10.3.0.1)"

    snapshot >/run/before
    run_lanrise 255 eth2 10.3.0.99 255.255.255.0 10.9.0.1
    printf '    %-14s %s\n' 'Refused' \
        "$(sed -n 's/.*|\(ip .* is not in same net\)|.*/\1/p' /run/output)"
    expect_same
}

show_setdef_form() {
    local card route
    card=$(saved network DEFAULT_ETH) route=$(default_route)
    run_lanrise 0 setdef eth0
    change 'Default card' "$card" "$(saved network DEFAULT_ETH)"
    change 'Default route' "$route" "$(default_route)"
}

show_device() {
    make_device
    show_before
    run_lanrise 0
    show_after
    show_repairs
    section 'A second boot, and the two other command forms'
    show_second_boot
    show_address_form
    show_setdef_form
    [ ! -e /run/wrong ]
}
