# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# What the cases of the board are written with: sourced in the guest.
# shellcheck shell=sh

ok=0
bad=0

# is NAME GOT WANTED: one check
is()
{
    if [ "$2" = "$3" ]; then
        ok=$((ok + 1))
        echo "ok - $1"
    else
        bad=$((bad + 1))
        echo "not ok - $1: got [$2], wanted [$3]"
    fi
}

# succeeds NAME COMMAND... / fails NAME COMMAND...: one check of an exit status
succeeds()
{
    name=$1
    shift
    if "$@" >/tmp/output 2>&1; then
        ok=$((ok + 1))
        echo "ok - $name"
    else
        bad=$((bad + 1))
        echo "not ok - $name"
        sed 's/^/    /' /tmp/output
    fi
}

fails()
{
    name=$1
    shift
    if "$@" >/tmp/output 2>&1; then
        bad=$((bad + 1))
        echo "not ok - $name: succeeded"
    else
        ok=$((ok + 1))
        echo "ok - $name"
    fi
}

# host COMMAND: asks the machine around the board, such as "link eth1 off", and waits for its answer. The time of
# a board that does nothing runs ahead, so it keeps itself busy meanwhile.
host()
{
    while :; do :; done &
    busy=$!
    echo "HOST $1"
    read -r _ </dev/console
    kill $busy
}

# wait_for SECONDS COMMAND...: until the command succeeds
wait_for()
{
    left=$(($1 * 10))
    shift
    while [ $left -gt 0 ]; do
        "$@" >/dev/null 2>&1 && return 0
        sleep 0.1
        left=$((left - 1))
    done
    return 1
}

# cards COUNT: eth0 to eth<COUNT-1> on the board, and the far ends of their wires, p0 and so on, in the
# namespace `peer`
cards()
{
    ip netns add peer
    number=0
    while [ $number -lt "$1" ]; do
        ip link set "eth$((number + $1))" netns peer
        ip -n peer link set "eth$((number + $1))" name "p$number"
        ip -n peer link set "p$number" up
        number=$((number + 1))
    done
}

# in_peer COMMAND...
in_peer() { ip netns exec peer "$@"; }

# settings FILE LINE...: writes a setting file
settings()
{
    file=/mnt/mtd/Config/$1
    shift
    : >"$file"
    for line; do echo "$line" >>"$file"; done
}

# setting FILE KEY
setting() { sed -n "s/^$2 = //p" "/mnt/mtd/Config/$1"; }

# address CARD: its IPv4 address with prefix length
address() { ip -4 -o addr show dev "$1" | sed -n 's/.* inet \([0-9./]*\) .*/\1/p'; }

# members BOND
members() { cat "/sys/class/net/$1/bonding/slaves"; }

# told OPERATION ARGUMENT...: what it tells; its log is kept for `messages`
told() { operation "$@" 2>&1 >/tmp/log; }

# messages [LEVEL]: the log that was kept, without frames
messages()
{
    sed -n 's/^[^|]*|[^|]*|\([A-Z][a-z]*\) *|[^|]*|\(.*\)|[^|]*|[^|]*$/\1: \2/p' /tmp/log | grep "^${1:-}"
}

# ---- the device's own hardware, put in by `modprobe board with_...=1`

trace() { cat /proc/board_trace; }
forget() { echo >/proc/board_trace; }

# hardware PARAMETER VALUE: changes it while it is in
hardware() { echo "$2" >"/sys/module/board/parameters/$1"; }

# refuse ERRNO [AFTER]: the next request, or a later one
refuse()
{
    hardware fail_after "${2:-0}"
    hardware fail_next "$1"
}

# ---- guests that take orders

# needs COMMAND...: what the guest is of no use without. Where that fails, it tells so, with the beginning of
# what the kernel said meanwhile, and ends.
needs()
{
    dmesg -c >/dev/null
    "$@" >/tmp/output 2>&1 && return
    echo "NOT READY: $*, status $?"
    cat /tmp/output
    dmesg | head -n 10
    poweroff -f
}

# obey: from here on the guest does what the host says, one line at a time, and tells the status of each
obey()
{
    stty -echo </dev/console
    exec 3</dev/console
    echo READY
    while read -r order <&3; do
        eval "$order"
        echo "DONE $?"
    done
}

tell_result() { echo "BOARD $ok ok, $bad failed"; }
