#!/bin/sh
# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# Fetches Debian's SSH server for the test of remote login, with what it needs and the machine lacks.
# Nothing is installed, so that no daemon is started on the machine; root is not needed. What was
# fetched is kept outside the repository and used again.
#
# usage: tests/netns/fetch-sshd.sh
# Prints the folder of the unpacked files.
set -eu

cache=${XDG_CACHE_HOME:-$HOME/.cache}/vorlix-sshd
state=$cache/apt

apt()
{
    "$@" -q -o Dir::State="$state" -o Dir::State::status=/var/lib/dpkg/status -o Dir::Cache="$state/cache" \
        -o APT::Sandbox::User=root -o Debug::NoLocking=1
}

mkdir -p "$state/lists/partial" "$state/cache/archives/partial"
exec 9>"$state/lock"
flock 9
if [ ! -e "$cache/root/usr/sbin/sshd" ]; then
    rm -rf "$cache/root" "$cache/new"
    mkdir "$cache/new"
    if ! {
        apt apt-get update &&
            apt apt-get install -y --no-install-recommends --download-only openssh-server
    } >"$state/log" 2>&1; then
        tail -n 5 "$state/log" >&2
        exit 1
    fi
    for package in "$state"/cache/archives/*.deb; do dpkg-deb -x "$package" "$cache/new"; done
    rm -rf "$state/cache/archives"
    mv "$cache/new" "$cache/root"
fi
echo "$cache/root"
