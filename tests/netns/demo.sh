#!/bin/bash
# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# The device of ./demo, as lanrise-status shows it: each thing that is wrong before the boot, and none after.
#
# usage: tests/netns/demo.sh LANRISE LANRISE_STATUS
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
if [ -z "${VORLIX_NETNS-}" ]; then
    exec "$here/enter.sh" "$0" "$@"
fi
export PATH="$PATH:/usr/sbin:/sbin"
lanrise=$1
look=$2
config=/mnt/mtd/Config
# shellcheck source=tools/demo/device.sh
. "$here/../../tools/demo/device.sh"

# expect <what> <status> <expected lines>
expect() {
    local status=0 said
    said=$("$look" --check) || status=$?
    if [ "$status" != "$2" ] || [ "$said" != "$3" ]; then
        printf '%s: status %s, wanted %s\n' "$1" "$status" "$2"
        diff <(echo "$3") <(echo "$said")
        exit 1
    fi
}

make_device
has_bridge || {
    echo "skipped: this kernel has no bridges"
    exit 77
}
expect 'before the boot' 1 "$(
    cat <<'END'
eth1: it is down; the kernel has no address, the file 10.2.0.10/24
eth2: it is down; the kernel has no address, the file 10.3.0.10/24
eth4: its file says member of br0, the kernel has it alone
eth5: its file says member of br0, the kernel has it alone
br0: it is saved with eth4,eth9 and not there
device: there is no default route; the default card is eth1
eth2: next boot: the file network2 of an old release gets the name networketh2
device: next boot: the default card eth1.100 is gone: eth1 takes its place
br0: next boot: the saved ports eth4,eth9 become eth4,eth5, as the cards' files say
eth3: next boot: no MTU is saved: 1500
eth3: next boot: no usable address is saved: 192.168.0.111/24
device: next boot: fewer than two IPv4 resolvers are saved: 8.8.8.8 and 8.8.4.4
device: next boot: fewer than two IPv6 resolvers are saved: 2001:4860:4860::8888 and 2001:4860:4860::8844
eth0: next boot: the route to 172.16.0.0/16 via 10.1.0.254 is not saved: it is removed
END
)"
"$lanrise" >/dev/null
expect 'after the boot' 0 ''
"$lanrise" >/dev/null
expect 'after a second boot' 0 ''
