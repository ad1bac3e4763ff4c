#!/bin/sh
# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# Fetches the network managers that `boot` is measured against, without installing them: ifupdown and
# ifupdown-ng exclude each other on one machine. Kept outside the repository and used again.
#
# usage: bench/peers.sh    prints the folder
set -eu

peers=${XDG_CACHE_HOME:-$HOME/.cache}/vorlix-bench/peers
if [ ! -e "$peers/complete" ]; then
    rm -rf "$peers"
    mkdir -p "$peers/packages"
    cd "$peers/packages"
    apt-get download -qq ifupdown ifupdown-ng busybox-static systemd libsystemd-shared connman \
        dbus-daemon libdbus-1-3 >&2
    for package in *.deb; do
        case $package in
        ifupdown-ng_*) dpkg-deb -x "$package" "$peers/ifupdown-ng" ;;
        ifupdown_*) dpkg-deb -x "$package" "$peers/ifupdown" ;;
        *) dpkg-deb -x "$package" "$peers" ;;
        esac
    done
    touch "$peers/complete"
fi
echo "$peers"
