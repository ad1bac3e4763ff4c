#!/bin/sh
# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# Runs a command as if on a device of its own: fresh network and mount namespaces with the loopback
# up, an empty settings folder in memory under /mnt, and a /sys that shows the new interfaces.
# Nothing done inside reaches the machine, and all of it is gone when the last process inside ends.
# Without root, a user namespace lends the rights.
#
#     tests/netns/enter.sh <command> [<argument>...]
set -eu

if [ $# -eq 0 ]; then
    echo "usage: $0 <command> [<argument>...]" >&2
    exit 2
fi
export PATH="$PATH:/usr/sbin:/sbin"

if [ "$1" != --inside ]; then
    rights=
    [ "$(id -u)" -eq 0 ] || rights=--map-root-user
    exec unshare $rights --net --mount --propagation private -- "$0" --inside "$@"
fi
shift

mount -t tmpfs -o mode=755 tmpfs /mnt # the device's flash
mount -t tmpfs -o mode=755 tmpfs /run # names of the namespaces that stand for other machines
mount -t sysfs sysfs /sys
mkdir -p /mnt/mtd/Config
ip link set lo up

# The kernel tests look for this, so that they enter once.
export VORLIX_NETNS=inside
exec "$@"
