#!/bin/bash
# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# What bash offers behind `lanrise`, on a device of its own with two cards.
if [ -z "${VORLIX_NETNS-}" ]; then
    exec "$(dirname "$0")/../netns/enter.sh" "$0" "$@"
fi
# shellcheck source=tests/install/lib.sh
. "$(dirname "$0")/lib.sh"

ip link add eth0 type veth peer name eth7
printf 'HOSTIP = 10.1.0.10\nSUBMASK = 255.255.255.0\nGATEWAYIP = 10.1.0.1\n' >/mnt/mtd/Config/network
printf 'HOSTIP = *\nSUBMASK = 255.0.0.0\n' >/mnt/mtd/Config/networketh7
# shellcheck source=packaging/completion/lanrise
. "$tree/usr/share/bash-completion/completions/lanrise"

# offers WORD...: what is offered for the last word, sorted
offers()
{
    COMP_WORDS=(lanrise "$@")
    COMP_CWORD=$#
    "$completer"
    printf '%s\n' "${COMPREPLY[@]}" | sort | paste -sd ' '
}

completer=$(complete -p lanrise | sed 's/.*-F \([^ ]*\).*/\1/')
cd / # where a star would stand for many names
is 'first word' "$(offers '')" 'eth0 eth7 setdef'
is 'first word, begun' "$(offers e)" 'eth0 eth7'
is 'first word, nothing fits' "$(offers x)" ''
is 'the new default card' "$(offers setdef '')" 'eth0 eth7'
is 'behind the new default card' "$(offers setdef eth0 '')" ''
is 'the saved address' "$(offers eth0 '')" 10.1.0.10
is 'a saved address that is a pattern' "$(offers eth7 '')" '*'
is 'masks, the saved one once' "$(offers eth0 10.1.0.9 '')" '255.0.0.0 255.255.0.0 255.255.255.0'
is 'the saved gateway' "$(offers eth0 10.1.0.9 255.255.255.0 '')" 10.1.0.1
is 'a card without a file' "$(offers eth9 '')" ''
is 'one word too many' "$(offers eth0 10.1.0.9 255.255.255.0 10.1.0.1 '')" ''

# shellcheck source=packaging/completion/lanrise-status
. "$tree/usr/share/bash-completion/completions/lanrise-status"
completer=$(complete -p lanrise-status | sed 's/.*-F \([^ ]*\).*/\1/')
PATH=$tree/usr/sbin:$PATH
is 'what can be looked at' "$(offers '')" '--check --help --json --version eth0 eth7'
is 'what can be looked at, begun' "$(offers --j)" --json
is 'a second thing to look at' "$(offers eth0 '')" ''
exit "$failed"
