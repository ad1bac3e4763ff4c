# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# The guest of flashcost.py: puts the settings on a kind of flash and does what the host says, while the
# kernel counts what reaches the flash.
# shellcheck shell=sh

Config=/mnt/mtd/Config
tracing=/sys/kernel/tracing

# count EVENT KEYS: the kernel sums up an event from now on
count() { echo "hist:$2" >"$tracing/events/$1/trigger"; }

# probe NAME PLACE KEYS: and so the calls of a function of the kernel
probe()
{
    echo "p:$1 $2" >>$tracing/kprobe_events &&
        count "kprobes/$1" "$3"
}

# count_flash WRITE_END WRITE: what programs hand to files of the file system, in bytes, what the flash is
# given, and where it is erased
count_flash()
{
    probe filed "$1 bytes=\$arg5:u32" keys=common_type:vals=bytes &&
        probe written "$2 bytes=\$arg3:u64" keys=common_type:vals=bytes &&
        probe erased "mtd_erase place=+0(\$arg2):u64" keys=place
}

# counted: all sums so far
counted()
{
    for event in kprobes/filed kprobes/written kprobes/erased syscalls/sys_enter_fsync \
        syscalls/sys_enter_fdatasync syscalls/sys_enter_sync; do
        echo "EVENT ${event##*/}"
        sed -n '/^{/p' "$tracing/events/$event/hist"
    done
}

# load: the drivers that only this guest has, in the order in which they need each other; the flash is there
# before what is put on it
load()
{
    while read -r module; do
        case $module in
        nandsim.ko) set -- id_bytes=0xec,0xa1,0x00,0x15 parts=64 ;;
        ubi.ko) set -- mtd=0 ;;
        *) set -- ;;
        esac
        [ -e "/sys/module/${module%.ko}" ] || insmod "/flash/$module" "$@" || return
    done </flash/order
}

# nor: jffs2 on the flash of the board
nor()
{
    modprobe board with_flash=1 with_rtc=1 flash_sector=65536 && modprobe jffs2 || return
    count_flash jffs2_write_end board:flash_write || return
    mount_again() { mount -t jffs2 mtd0 /mnt/mtd; }
    mount_again
}

# nand: UBIFS on a simulated chip of 128 MiB, pages of 2 KiB in blocks of 128 KiB, of which 64 are ours
nand()
{
    modprobe board with_rtc=1 && load || return
    count_flash ubifs_write_end mtd_write || return
    /flash/ubimkvol /dev/ubi0 -N settings -m >/dev/null || return
    mount_again() { mount -t ubifs ubi0:settings /mnt/mtd; }
    mount_again
}

free_kib() { df -k /mnt/mtd | awk 'END { print $4 }'; }

random() { dd if=/dev/urandom of="/mnt/mtd/$1" bs=1024 count="$2" 2>/dev/null; }

# age PERCENT: as after years. So much of the room is held by what never changes, and the rest has been
# written over.
age()
{
    random still $(($(free_kib) * $1 / 100))
    for _ in 1 2 3 4 5 6 7 8; do
        random passing $(($(free_kib) / 2))
        rm /mnt/mtd/passing
        sync
    done
    sleep 60
}

# rest: until the file system has written what it keeps back, and has tidied up. The machine's time runs by
# instructions, so this is short.
rest() { sleep 10; }

# addresses CARDS: each card in a net of its own
addresses()
{
    number=0
    while [ $number -lt "$1" ]; do
        change $number 5
        number=$((number + 1))
    done
}

change() { lanrise "eth$1" "10.$1.0.$2" 255.255.255.0 "10.$1.0.1" >/tmp/log 2>&1; }

boot() { lanrise >/tmp/log 2>&1; }

# repeated TIMES COMMAND
repeated()
{
    turns=$1
    shift
    while [ "$turns" -gt 0 ]; do
        "$@" || return
        rest
        turns=$((turns - 1))
    done
}

boots() { repeated "$1" boot; }

# changes TIMES: each to another address
changes() { repeated "$1" one_change; }
one_change() { change 0 $((turns % 200 + 10)); }

mounts() { repeated "$1" one_mount; }
one_mount() { umount /mnt/mtd && mount_again; }

# settings_hash: one word for all that is saved
settings_hash() { (cd $Config && cat ./* | md5sum | cut -c1-32); }

mount -t tracefs tracefs $tracing
for call in fsync fdatasync sync; do count "syscalls/sys_enter_$call" keys=common_type; done
modprobe bonding max_bonds=1
modprobe bridge
obey
