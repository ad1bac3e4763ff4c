# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# wires: 1
# The first card's address outlives the loss of its settings, in the memory of an RTC chip and in one behind
# a file; a damaged or refusing memory; the mark of a reset.

cards 1
boot() { lanrise >/tmp/log 2>&1; }

# value FIRST COUNT: bytes of the memory
value() { dd if="$node" bs=1 skip="$1" count="$2" 2>/dev/null | od -An -tx1 | sed 's/^ //'; }
# patch PLACE BYTE: in octal
patch() { printf '%b' "\\0$2" | dd of="$node" bs=1 seek="$1" conv=notrunc 2>/dev/null; }

saved() { echo "$(setting network HOSTIP) $(setting network SUBMASK) $(setting network GATEWAYIP)"; }

# use DEVICE TAG REQUESTS MESSAGE: everything that a memory is for. A process makes so many requests before
# its first read; MESSAGE is for a mark that cannot be read.
use()
{
    node=/dev/$1
    tag=$2
    before=$3
    rm -f /mnt/mtd/Config/*
    settings network "HOSTIP = 10.1.2.3" "SUBMASK = 255.255.254.0" "GATEWAYIP = 10.1.2.1" "MTU = 1500"
    succeeds "$tag: a boot with a new memory" boot
    is "$tag: the reason is told" "$(messages Error | grep -c '^Error: crc ')" 2
    is "$tag: the memory is wiped" "$(messages Warn | head -n 1)" \
        "Warn: try to reset the backup memory! All the backup info will lost."
    is "$tag: and takes the address over" "$(value 44 12)" "0a 01 02 03 ff ff fe 00 0a 01 02 01"

    rm /mnt/mtd/Config/network*
    ip addr flush dev eth0
    succeeds "$tag: a boot after the loss of all settings" boot
    is "$tag: the card has its address" "$(address eth0)" 10.1.2.3/23
    is "$tag: the settings are back" "$(saved)" "10.1.2.3 255.255.254.0 10.1.2.1"
    is "$tag: with the default route" "$(ip -4 route show default | sed 's/ *$//')" "default via 10.1.2.1 dev eth0"

    patch 45 377
    succeeds "$tag: a boot with a damaged memory" boot
    is "$tag: takes it from the settings again" "$(value 44 12) $(address eth0)" \
        "0a 01 02 03 ff ff fe 00 0a 01 02 01 10.1.2.3/23"

    kept=$(value 40 16)
    refuse 5 "$before"
    succeeds "$tag: a boot with a memory that refuses its test" boot
    is "$tag: is told" "$(messages Error | head -n 1)" "Error: $tag read failed,[offset:52,len:4]"
    is "$tag: and wipes nothing" "$(value 40 16)" "$kept"

    patch 39 146
    succeeds "$tag: a reset is told" operation been-reset
    fails "$tag: once" operation been-reset
    patch 39 7
    fails "$tag: a lost memory is no reset while settings stand" operation been-reset
    cp /tmp/output /tmp/log
    is "$tag: but a warning" "$(messages Warn)" "Warn: CMOS has no electric"
    is "$tag: and is forgotten" "$(value 39 1)" 00
    rm /mnt/mtd/Config/network
    patch 39 7
    succeeds "$tag: without settings it is a new flash" operation been-reset
    patch 39 146
    refuse 5 "$before"
    fails "$tag: a mark that cannot be read is none" operation been-reset
    cp /tmp/output /tmp/log
    is "$tag: as it is told" "$(messages Error)" "Error: $4"
    refuse 5 $((before + 1))
    succeeds "$tag: a mark that cannot be cleared is a reset" operation been-reset
    succeeds "$tag: which is told again" operation been-reset
}

modprobe board with_rtc=1
use pdcRtc rtc 0 "get mark from rtc error."
rmmod board

modprobe board with_sram=1
use pdcSramFile sram 1 "get mark from sram error"
forget
operation been-reset >/dev/null
is "sram: a file is made of it first" "$(trace)" "sram create /mnt/mtd/RtcSramFile 300000 0 1 251
sram read 39 1"
refuse 5
fails "sram: a file that cannot be made is no memory" operation been-reset
cp /tmp/output /tmp/log
is "sram: as it is told" "$(messages Error | head -n 1)" "Error: creat sramfile failed"
rmmod board

modprobe board with_rtc=1 with_sram=1
operation been-reset >/dev/null
is "of both, the RTC is used" "$(trace)" "rtc read 39 1"

# A node that cannot be opened.
rm /dev/pdcRtc
mkdir /dev/pdcRtc
forget
operation been-reset >/tmp/log
is "an RTC that cannot be opened gives way to the file" "$(trace | head -n 1)" \
    "sram create /mnt/mtd/RtcSramFile 300000 0 1 251"
is "as it is told" "$(messages Error)" "Error: can not open /dev/pdcRtc"
rmdir /dev/pdcRtc
rmmod board
