#!/bin/bash
# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# The errors of a healthy boot are those that docs/troubleshooting.md shows, in their order: 16 without
# backup memory, and one with it.
#
# usage: tests/netns/messages.sh LANRISE LANRISE_WITH_BACKUP
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
if [ -z "${VORLIX_NETNS-}" ]; then
    exec "$here/enter.sh" "$0" "$@"
fi
export PATH="$PATH:/usr/sbin:/sbin"
page=$here/../../docs/troubleshooting.md

for number in 0 1 2; do
    ip link add "eth$number" type veth peer name "behind$number"
    ip link set "behind$number" up
done

# boot <program>: after a cold start
boot() {
    for number in 0 1 2; do
        ip addr flush dev "eth$number"
        ip link set "eth$number" down
    done
    "$1"
}

# errors: message and operation of each Error line, as the page has them
errors() { sed -n 's/^[^|]*|[^|]*|Error|[0-9]*|\(.*\)|[^|]*|\([^|]*\)().*$/\1\t\2/p'; }

# expect <what> <got> <wanted>
expect() {
    [ "$2" != "$3" ] || return 0
    echo "$1:"
    diff <(echo "$3") <(echo "$2")
    exit 1
}

shown=$(sed -n '/^Linked in week function/,/^```/s/^\(.*[^ ]\)  \+\([^ ]*\)$/\1\t\2/p' "$page")
expect 'number of lines in the page' "$(echo "$shown" | wc -l)" 16
first=$(boot "$1" | errors)
expect 'errors of the first boot, counted' "$(echo "$first" | wc -l)" 24
log=$(boot "$1")
expect 'errors of a boot without backup memory' "$(errors <<<"$log")" "$shown"
expect 'warnings of a boot without backup memory, counted' "$(grep -c '|Warn |' <<<"$log")" 8

rm -r /mnt/mtd/Config/*
head -c 64 /dev/zero >/mnt/cmos
boot "$2" >/dev/null
boot "$2" >/dev/null
expect 'errors of a boot with backup memory' "$(boot "$2" | errors)" \
    $'bridge nbp0 is not exist.\tBridge_IsBridgeExist'
