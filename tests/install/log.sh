#!/bin/sh
# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# The log is kept with its levels: what stands beside unit and init script, tried by each shell, and in front
# of the journal and of BusyBox's syslogd, both real and with nobody else's messages.
# shellcheck disable=SC2016  # what stands in single quotes is for the shells inside
if [ -z "${VORLIX_NETNS-}" ]; then
    exec "$(dirname "$0")/../netns/enter.sh" unshare --ipc "$0" "$@"
fi
# shellcheck source=tests/install/lib.sh
. "$(dirname "$0")/lib.sh"

filter=$tree/usr/libexec/lanrise-log
got=$work/log.got
escape=$(printf '\033')

# frame COLOUR LEVEL MESSAGE: a line as the program prints it
frame() { printf '\033[1;%s;40m02:37:10|Vorlix-111860|%s|412|%s|Src/Bond.cpp:1|Bond()\033[0m\n' "$1" "$2" "$3"; }

{
    echo 'Usage:lanrise'
    frame 32 'Info ' fine
    frame 33 'Warn ' '-t looks like an option'
    frame 31 Error 'bridge br0 is not exist.'
    echo 'words of a tool'
    frame 31 Error 'two
lines'
    frame 32 'Info ' '  |Vorlix-111860|Error|1|named in a message \n %s'
    printf 'no end'
} >"$work/log.lines"

wanted='<6>Usage:lanrise
<6>02:37:10|Vorlix-111860|Info |412|fine|Src/Bond.cpp:1|Bond()
<4>02:37:10|Vorlix-111860|Warn |412|-t looks like an option|Src/Bond.cpp:1|Bond()
<3>02:37:10|Vorlix-111860|Error|412|bridge br0 is not exist.|Src/Bond.cpp:1|Bond()
<6>words of a tool
<3>02:37:10|Vorlix-111860|Error|412|two
<3>lines|Src/Bond.cpp:1|Bond()
<6>02:37:10|Vorlix-111860|Info |412|  |Vorlix-111860|Error|1|named in a message \n %s|Src/Bond.cpp:1|Bond()
<6>no end'

# status_of COMMAND...
status_of()
{
    code=0
    "$@" >/dev/null 2>&1 || code=$?
    echo "$code"
}

# end_of COMMAND...: the signal that has ended it
end_of()
{
    python3 -c 'import signal, subprocess, sys
print(signal.Signals(-subprocess.run(sys.argv[1:], stderr=subprocess.DEVNULL).returncode).name)' "$@"
}

shells='sh bash'
if command -v busybox >/dev/null; then shells="$shells busybox"; fi
for shell in $shells; do
    run=$shell
    [ "$shell" != busybox ] || run='busybox sh'
    # journal COMMAND...
    # shellcheck disable=SC2086  # a shell of two words
    journal() { $run "$filter" journal "$@"; }

    is "lines by $shell" "$(journal cat "$work/log.lines")" "$wanted"
    is "nothing by $shell" "$(journal true)" ''
    for status in 0 1 127 128 193 255; do
        is "status by $shell" "$(status_of journal sh -c "exit $status")" "$status"
    done
    is "a program that is not there, by $shell" "$(status_of journal /nowhere)" 127
    for signal in SEGV TERM KILL; do
        # shellcheck disable=SC2086
        is "end by SIG$signal, by $shell" "$(end_of $run "$filter" journal sh -c "kill -$signal \$\$")" "SIG$signal"
    done
    # shellcheck disable=SC2086
    is "no form, by $shell" "$(status_of $run "$filter" printer true)-$(status_of $run "$filter" journal)" 2-2

    # The program waits until its line was seen: nothing is kept back.
    rm -f "$work/log.seen"
    : >"$got"
    journal sh -c 'echo first; n=0; until [ -e "$1" ]; do sleep 0.1; n=$((n + 1)); [ $n -lt 100 ] || exit 9; done' \
        sh "$work/log.seen" >"$got" &
    waiting=$!
    n=0
    until [ -s "$got" ] || [ $n -ge 50 ]; do
        sleep 0.1
        n=$((n + 1))
    done
    is "the line of a program that runs, by $shell" "$(cat "$got")" '<6>first'
    : >"$work/log.seen"
    wait $waiting || is "the program that was waited for, by $shell" "$?" 0

    # Somebody who outlives the program and holds its output is not waited for.
    began=$(date +%s)
    is "status beside a survivor, by $shell" "$(status_of journal sh -c 'sleep 20 & echo $! >"$1"; exit 7' sh "$work/log.pid")" 7
    kill "$(cat "$work/log.pid")"
    [ $(($(date +%s) - began)) -lt 15 ] || is "a survivor, by $shell" 'waited for' 'left behind'

    # A log that nobody takes does not change the end. The program outlives it by itself.
    is "a full output, by $shell" "$(journal sh -c 'echo line; exit 5' >/dev/full 2>/dev/null || echo $?)" 5
    is "a closed output, by $shell" "$(journal sh -c 'exit 6' >&- 2>/dev/null || echo $?)" 6
    is "a reader that is gone, by $shell" \
        "$( (journal sh -c 'trap "" PIPE; for i in 1 2 3 4 5 6 7 8 9; do echo $i; sleep 0.02; done 2>/dev/null; exit 8' || echo $? >"$got") | head -n 1 >/dev/null; cat "$got")" 8

    # shellcheck disable=SC2086
    $run "$filter" syslog sh -c 'cat "$1"; exit 4' sh "$work/log.lines" >"$got" || is "status without syslogd, by $shell" "$?" 4
    cmp -s "$got" "$work/log.lines" || is "lines without syslogd, by $shell" other same
done

# ---- a healthy boot of one card, in front of the real ones

ip link add eth0 type veth peer name p0
ip link set p0 up
"$tree/usr/sbin/lanrise" >"$got" # the first boot has other errors
errors=$("$tree/usr/sbin/lanrise" | tee "$work/log.boot" | grep -c '|Error|')
is 'errors of the boot' "$errors" 16
messages() { sed -n 's/.*|Error|[0-9]*|\(.*\)/\1/p' | sed "s/$escape.*//"; }

syslog_busybox()
{
    mkdir -p "$work/dev" "$work/applets"
    mount -t tmpfs tmpfs "$work/dev"
    for node in null full urandom; do
        : >"$work/dev/$node"
        mount --bind "/dev/$node" "$work/dev/$node"
    done
    for applet in syslogd logger logread; do ln -sf "$(command -v busybox)" "$work/applets/$applet"; done
    mount --rbind "$work/dev" /dev
    PATH=$work/applets:$PATH

    syslogd -n -C64 &
    daemon=$!
    until [ -S /dev/log ]; do sleep 0.1; done
    sed "s%^program=.*%program=$tree/usr/sbin/lanrise%; s%^log=.*%log=$filter%" "$tree/etc/init.d/lanrise" >"$work/S39lanrise"
    busybox sh "$work/S39lanrise" start >"$got" || is 'start in front of syslogd' "$?" 0
    is 'lines that the start prints beside' "$(messages <"$got")" "$(messages <"$work/log.boot")"
    sleep 0.3
    logread >"$work/log.read"
    is 'errors that logread shows' "$(grep 'daemon\.err lanrise: ' "$work/log.read" | messages)" \
        "$(messages <"$work/log.boot")"
    is 'lines that logread shows' "$(grep -c ' lanrise: ' "$work/log.read")" "$(wc -l <"$work/log.boot")"
    is 'warnings that logread shows' "$(grep -c 'daemon\.warn lanrise: ' "$work/log.read")" "$(grep -c '|Warn |' "$work/log.boot")"
    is 'colours that logread shows' "$(grep -c "$escape" "$work/log.read")" 0
    kill $daemon
    umount -l /dev "$work/dev"
}

# as_unit COMMAND...: with its output where systemd leads that of lanrise.service
as_unit()
{
    python3 -c 'import os, socket, sys
stream = socket.socket(socket.AF_UNIX)
stream.connect("/run/systemd/journal/stdout")
stream.sendall(b"lanrise\nlanrise.service\n6\n1\n0\n0\n0\n")
os.dup2(stream.fileno(), 1)
os.execvp(sys.argv[1], sys.argv[1:])' "$@"
}

journal_real()
{
    mount -t cgroup2 cgroup2 /sys/fs/cgroup
    mkdir -p /run/systemd/journald.conf.d /run/log/journal
    printf '[Journal]\nStorage=volatile\nReadKMsg=no\nAudit=no\nForwardToWall=no\n' >/run/systemd/journald.conf.d/test.conf
    /lib/systemd/systemd-journald 2>/dev/null &
    daemon=$!
    n=0
    until [ -S /run/systemd/journal/stdout ] && [ -d "/run/log/journal/$(cat /etc/machine-id)" ]; do
        sleep 0.1
        n=$((n + 1))
        [ $n -lt 50 ] || skip 'the journal does not start here; the rest was tried'
    done
    start=$(sed -n "s%^ExecStart=\(/usr/[^ ]*\) journal /usr/%$tree\1 journal $tree/usr/%p" \
        "$tree/usr/lib/systemd/system/lanrise.service")
    # shellcheck disable=SC2086  # the words of the unit
    as_unit $start || is 'start in front of the journal' "$?" 0
    sleep 0.3
    kept() { journalctl -D "/run/log/journal/$(cat /etc/machine-id)" -q --no-pager -o cat -u lanrise "$@"; }
    is 'errors that the journal shows' "$(kept -p err | messages)" "$(messages <"$work/log.boot")"
    is 'warnings that the journal shows' "$(kept -p warning..warning | wc -l)" "$(grep -c '|Warn |' "$work/log.boot")"
    is 'lines that the journal shows' "$(kept | wc -l)" "$(grep -c . "$work/log.boot")"
    is 'colours that the journal shows' "$(kept -o json | grep -c 'MESSAGE":\[27')" 0
    kill $daemon
}

if command -v busybox >/dev/null && busybox --list | grep -qx syslogd; then
    syslog_busybox
else
    echo 'left out: no BusyBox with a syslogd'
fi
if [ -x /lib/systemd/systemd-journald ] && [ -s /etc/machine-id ]; then
    journal_real
else
    skip 'systemd-journald is not installed; the rest was tried'
fi
exit "$failed"
