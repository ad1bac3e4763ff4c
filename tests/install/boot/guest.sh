#!/bin/sh
# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# In the machine: the first boot does what the page for new users tells and restarts, the others look what has
# come of it; then those of systemd make ready for the next init. Started as the last of all that init starts.
exec </dev/null >/dev/console 2>&1
cd / || exit
export PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root
# shellcheck source=tests/board/lib.sh
. /case/lib.sh
init=$(sed 's/.* case=\([a-z]*\).*/\1/' /proc/cmdline)

# the last word of a boot, and what comes after it
ends_by()
{
    tell_result
    sync
    exec "$@"
}

# ---- the first boot

# do_steps FOLDER
do_steps()
{
    for step in "$1"/??; do
        succeeds "$(cat "$step.name")" sh -e "$step"
    done
}

do_first()
{
    # Nobody has made the settings folder yet.
    is 'addresses of a machine that is no device of ours' "$(ip -4 -o addr show scope global)" ''
    do_steps /case/first
}

# ---- the boots after it

is_up() { is "address of $1" "$(address "$1")" "$2"; }

see_device()
{
    is_up bond0 10.1.0.20/24
    is_up br0 10.2.0.10/24
    is 'the members' "$(members bond0)" 'eth0 eth1'
    is 'the ports' "$(cd /sys/class/net/br0/brif && echo *)" 'eth2 eth3'
    succeeds 'all agree' lanrise-status --check
    succeeds 'the gateway of the bond answers' ping -c 1 -w 30 10.1.0.1
    succeeds 'the gateway of the bridge answers' ping -c 1 -w 60 10.2.0.1
    # What asks for the network finds it, without naming lanrise.
    is 'addresses that a service behind the network saw' "$(cat /run/network-seen)" '10.1.0.20 10.2.0.10'
}

kept() { journalctl -b -q --no-pager -o cat -u lanrise "$@"; }
# lines LEVEL: how many the log has in the frames of this level
lines() { kept | grep -c "|$1|"; }
when() { systemctl show --value -p "$2" "$1"; }

see_systemd()
{
    is 'the unit' "$(systemctl is-enabled lanrise)-$(systemctl is-active lanrise)" enabled-active
    is 'how it ended' "$(when lanrise ExecMainStatus)" 0
    is 'others that are off' "$(systemctl is-active NetworkManager systemd-networkd networking | sort -u)" inactive
    if [ "$(when lanrise ActiveEnterTimestampMonotonic)" -le "$(when network-online.target ActiveEnterTimestampMonotonic)" ]; then
        order=before
    fi
    is 'lanrise and network-online.target' "${order-behind}" before
    is 'orders that contradict each other' "$(journalctl -b -q | grep -c 'ordering cycle')" 0
    is 'a boot has errors' "$([ "$(lines Error)" -gt 5 ] && echo yes)" yes
    is 'errors of the journal' "$(kept -p err | wc -l)" "$(lines Error)"
    is 'errors that are none' "$(kept -p err | grep -vc '|Error|')" 0
    is 'a known error' "$(kept -p err | grep -c 'bridge nbp0 is not exist')" 1
    is 'warnings of the journal' "$(kept -p warning..warning | grep -c '|Warn |')" "$(lines 'Warn ')"
    is 'lines of other levels' "$(kept -p warning..warning | grep -vc '|Warn |')" 0
}

see_sysv() { is 'first process' "$(readlink /proc/1/exe)" /usr/sbin/init; }

see_busybox()
{
    errors=$(logread | grep -c '|Error|')
    is 'a boot has errors' "$([ "$errors" -gt 5 ] && echo yes)" yes
    is 'errors of the log' "$(logread | grep -c 'daemon\.err lanrise: .*|Error|')" "$errors"
    is 'a known error' "$(logread | grep -c 'daemon\.err lanrise: .*bridge nbp0 is not exist')" 1
    is 'warnings of the log' "$(logread | grep -c 'daemon\.warn lanrise: .*|Warn |')" "$(logread | grep -c '|Warn |')"
}

if [ ! -e /case/done ]; then
    : >/case/done
    do_first
    ends_by reboot -f
fi
see_device
"see_$init"
[ "$init" != systemd ] || do_steps /case/later
ends_by poweroff -f
