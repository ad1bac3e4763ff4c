#!/bin/bash
# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# Whether another build of lanrise leaves the same device: state, files and log, line for line. Tried with
# the devices of tests/golden and with that of ./demo, in all command forms.
#
# usage: alike.sh LANRISE OTHER_LANRISE...
# shellcheck disable=SC2317  # functions that are called by name
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
readonly config=/mnt/mtd/Config

# run <program> <argument>...: how it ended and what it said, without time and process; what it has left
run() {
    local status=0
    echo "---- lanrise ${*:2}"
    "$@" >/run/said 2>&1 || status=$?
    sed -E 's/[0-9]{2}:[0-9]{2}:[0-9]{2}\|Vorlix-[0-9]+\|(.....)\|[0-9]+\|/\1|/' /run/said
    echo "---- status $status, then files, cards and routes"
    (cd "$config" && for file in *; do echo "== $file" && od -An -c "$file"; done)
    # A carrier that comes up a moment later is not the program's.
    ip -o link | sed -E 's/@[^:]*:/:/; s/(NO-CARRIER|LOWER_UP),?//g; s/ state [A-Z]+//; s/link\/.*//; s/^[0-9]+: //'
    ip -4 -o addr | sed 's/^[0-9]*: //'
    ip route | sed 's/ linkdown//'
}

old_device() {
    local card
    ip netns add behind
    while read -r card; do
        [ -e "/sys/class/net/$card" ] && continue
        ip link add "$card" type veth peer name "$card" netns behind
        ip -n behind link set "$card" up
    done < <(tr ' ' '\n' <"$2/cards")
    cp "$2"/before/* "$config"
    run "$1"
    run "$1"
}

demo_device() {
    # shellcheck source=tools/demo/device.sh
    . tools/demo/device.sh
    make_device
    local number
    for number in 0 1 2 3 4 5; do  # an address of hardware is in the log
        [ ! -e "/sys/class/net/eth$number" ] || ip link set "eth$number" address "02:00:00:00:00:0$number"
    done
    run "$1"
    run "$1"
    run "$1" eth2 10.3.0.77 255.255.255.0 10.3.0.1
    run "$1" eth2 10.3.0.99 255.255.255.0 10.9.0.1
    run "$1" setdef eth0
    run "$1" setdef
}

if [ "$1" = --inside ]; then
    shift
    "$@"
    exit
fi

lines=0
failed=0
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
for device in demo tests/golden/*/; do
    how=(old_device)
    [ "$device" != demo ] || how=(demo_device)
    number=0
    for program; do
        tests/netns/enter.sh "$0" --inside "${how[@]}" "$(realpath "$program")" "$device" >"$work/$number"
        sed -i "s%$(realpath "$program")%lanrise%g" "$work/$number"
        diff -u --label "$1" --label "$program" "$work/0" "$work/$number" || failed=1
        number=$((number + 1))
    done
    lines=$((lines + $(wc -l <"$work/0")))
done
[ "$lines" -gt 1000 ] || { echo "only $lines lines were compared" && failed=1; }
echo "$lines lines, $((number - 1)) builds beside the first: $([ $failed = 0 ] && echo alike || echo different)"
exit $failed
