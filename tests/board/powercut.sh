# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# wires: 4
# The guest of powercut.py: all that needs no settings comes first; then it does what the host says. A
# board that was just started pays much for each program, so there are few of them.
# shellcheck shell=sh

Config=/mnt/mtd/Config
parameters=/sys/module/board/parameters

mount_flash() { mount -t jffs2 mtd0 /mnt/mtd; }

# boot: what the start script runs
boot() { lanrise >/tmp/log 2>&1; }

# arm BYTES: the power fails after so many more bytes of the flash; 0 only counts them
arm()
{
    echo 0 >$parameters/flash_bytes
    echo 0 >$parameters/flash_erasures
    echo "$1" >$parameters/cut_after
}

# spent: the bytes and the erasures since
spent()
{
    read -r bytes <$parameters/flash_bytes
    read -r erasures <$parameters/flash_erasures
    echo "$bytes $erasures"
}

# wear: years of use. Some files change often and some never, so each sector holds both, and sectors must be
# cleared for what comes.
wear()
{
    round=0
    while [ $round -lt 120 ]; do
        dd if=/bin/busybox of="/mnt/mtd/use$((round * round % 41))" bs=3000 count=1 skip=$round 2>/dev/null
        round=$((round + 1))
    done
}

# memory: address, mask and gateway in the backup memory
memory() { od -An -tu1 -j44 -N12 /dev/pdcRtc; }

# files: the inodes of the setting files, and the lines of each; what does not end in a newline is torn
files()
{
    ls -1i $Config
    for file in "$Config"/*; do
        [ -e "$file" ] || continue
        echo "FILE ${file##*/}"
        while IFS= read -r line; do echo "|$line"; done <"$file"
        [ -z "$line" ] || echo "|$line (torn)"
    done
}

# network: the cards' addresses, the members of bonds and bridges, the routes
network()
{
    busybox ip -4 -o addr show
    for list in /sys/class/net/*/bonding/slaves /sys/class/net/*/brif; do
        [ -e "$list" ] || continue
        master=${list#/sys/class/net/}
        members=
        if [ -d "$list" ]; then
            for member in "$list"/*; do members="$members ${member##*/}"; done
        else
            read -r members <"$list"
        fi
        echo "MASTER ${master%%/*} $members"
    done
    busybox ip -4 route show
}

cards 4
modprobe bonding max_bonds=1
modprobe bridge
modprobe jffs2
needs modprobe board with_flash=1 with_rtc=1
obey
