# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# What ./demo shows on its device. Sourced by ./demo, never run.
# shellcheck shell=bash

section() { printf '\n%s%s%s\n' "$bold" "$1" "$plain"; }
# A thing that went wrong ends the demo with status 1, after the rest has been shown.
wrong() { echo "$1" | tee -a /run/wrong; }

# ---- what there is to see

address_of() { ip -4 -o addr show dev "$1" 2>/dev/null | awk '{ print $4 }' | grep . || echo -; }
default_route() {
    ip route show default | sed 's/^default //; s/ *$//' | paste -sd ';' | grep . || echo none
}
saved() { sed -n "s/^$2 = //p" "$config/$1" 2>/dev/null | tr -cd '[:print:]'; }
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

# run_status <argument>...: as it stands on the terminal
run_status() {
    printf '\n  %s$ %s%s\n\n' "$bold" "lanrise-status${1+ $1}" "$plain"
    "./$look" "$@" || wrong "${red}lanrise-status cannot look$plain"
}

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

# ---- the show

# What the check found before the boot and no longer finds.
show_repaired() {
    "./$look" --check >/run/check-now || true
    while IFS=: read -r name text; do
        printf '  %-9s%s\n' "$name" "${text# }"
    done < <(grep -vxFf /run/check-now /run/check-before | sed 's/: next boot: /: /')
    [ ! -s /run/check-now ] || wrong "$red$(cat /run/check-now)$plain"
    printf '  %s%-8s %s%s\n' "$dim" Log "$(grep -c '|Info |' /run/output) Info, \
$(grep -c '|Warn |' /run/output) Warn, $(grep -c '|Error|' /run/output) Error" "$plain"
}

show_pings() {
    local card
    for card in eth0 eth1 eth2 eth3 br0; do
        [ -e "/sys/class/net/$card" ] || continue
        printf '  %-8s gateway %-12s %s\n' "$card" "$(gateway_of "$card")" \
            "$(reaches ping -I "$card" "$(gateway_of "$card")")"
    done
    has_bridge || return 0
    printf '  %-8s %s %s\n' br0 '10.5.0.1 behind eth4 pings 10.5.0.2 behind eth5, which' \
        "$(reaches ip netns exec behind-eth4 ping 10.5.0.2)"
}

gateway_of() {
    case $1 in
    eth0) saved network GATEWAYIP ;;
    eth1) saved network1 GATEWAYIP ;;
    *) saved "network$1" GATEWAYIP ;;
    esac
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
    section 'Before the boot'
    "./$look" --check >/run/check-before || true
    run_status
    section 'The device boots'
    run_lanrise 0
    section 'After the boot'
    run_status
    section 'Repaired'
    show_repaired
    section 'Who answers'
    show_pings
    section 'A second boot, and the two other command forms'
    show_second_boot
    show_address_form
    show_setdef_form
    section 'One card'
    run_status eth0
    [ ! -e /run/wrong ]
}
