#!/bin/sh
# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# What starts lanrise at boot: the init script on a device of its own, the unit as systemd reads it.
if [ -z "${VORLIX_NETNS-}" ]; then
    exec "$(dirname "$0")/../netns/enter.sh" "$0" "$@"
fi
# shellcheck source=tests/install/lib.sh
. "$(dirname "$0")/lib.sh"

# ---- the init script

script=$work/S39lanrise
sed "s%^program=.*%program=$tree/usr/sbin/lanrise%; s%^log=.*%log=$tree/usr/libexec/lanrise-log%" "$tree/etc/init.d/lanrise" >"$script"
ip link add eth0 type veth peer name p0
ip link set p0 up
printf 'HOSTIP = 10.1.0.10\nSUBMASK = 255.255.255.0\nGATEWAYIP = 10.1.0.1\nMTU = 1500\nPRIO = 0\n' \
    >/mnt/mtd/Config/network

shells='sh bash'
if command -v busybox >/dev/null; then shells="$shells busybox"; fi
for shell in $shells; do
    run=$shell
    [ "$shell" != busybox ] || run='busybox sh'
    ip addr flush dev eth0
    # shellcheck disable=SC2086  # a shell of two words
    succeeds "start by $shell" $run "$script" start
    is "address after the start by $shell" "$(ip -4 -o addr show dev eth0 | awk '{ print $4 }')" 10.1.0.10/24
    # shellcheck disable=SC2086
    succeeds "stop by $shell" $run "$script" stop
    is "address after the stop by $shell" "$(ip -4 -o addr show dev eth0 | awk '{ print $4 }')" 10.1.0.10/24
    # shellcheck disable=SC2086
    succeeds "a second start by $shell" $run "$script" restart
    # shellcheck disable=SC2086
    fails "an unknown word to $shell" $run "$script" status
done

ip addr flush dev eth0
sed "s%^log=.*%log=/nowhere%" "$script" >"$work/S39alone"
succeeds 'start without the filter of the log' sh "$work/S39alone" start
is 'address after the start without the filter' "$(ip -4 -o addr show dev eth0 | awk '{ print $4 }')" 10.1.0.10/24
sed 's%^program=.*%program=/bin/false%' "$script" >"$work/S39fails"
fails 'start of a program that fails' sh "$work/S39fails" start

ip addr flush dev eth0
mv /mnt/mtd/Config /mnt/mtd/Other
succeeds 'start without a settings folder' sh "$script" start
is 'address without a settings folder' "$(ip -4 -o addr show dev eth0)" ''
mv /mnt/mtd/Other /mnt/mtd/Config

# ---- the unit

command -v systemd-analyze >/dev/null || skip 'systemd-analyze is not installed; the init script was tried'
unit=$work/lanrise.service
sed "s%^ExecStart=.*%ExecStart=$tree/usr/libexec/lanrise-log journal $tree/usr/sbin/lanrise%; /^Documentation=/d" \
    "$tree/usr/lib/systemd/system/lanrise.service" >"$unit"
succeeds 'the unit as systemd reads it' systemd-analyze verify "$unit"
is 'what systemd says of the unit' "$(grep -F lanrise.service "$output")" ''
for line in Type=oneshot RemainAfterExit=yes Wants=network.target systemd-udev-trigger.service ConditionPathIsDirectory=/mnt/mtd/Config; do
    holds 'the unit' "$unit" "$line"
done
is 'the unit comes before the network' "$(sed -n 's/^Before=//p' "$unit" | cut -d ' ' -f 1)" network.target
is 'what the unit starts' "$(sed -n 's/^ExecStart=//p' "$tree/usr/lib/systemd/system/lanrise.service")" \
    '/usr/libexec/lanrise-log journal /usr/sbin/lanrise'
exit "$failed"
