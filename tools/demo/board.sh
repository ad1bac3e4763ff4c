# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# The virtual board of ./demo --board, as tests/board/demo.sh shows it from inside. Sourced by
# ./demo, never run.
# shellcheck shell=bash

# The show lies between two lines of the guest. The emulator and the kernel speak in between, and
# the guest's terminal echoes the answer to a request.
only_the_show() {
    local colours='' # kept on a terminal
    [ -n "$plain" ] || colours=$'s/\e\\[[0-9;]*m//g'
    sed -un "/^SHOW\$/,/^BOARD /{
        /^SHOW\$\|^BOARD \|^done\$\|^qemu-system\|^\[ *[0-9]*\.[0-9]*\] /d
        $colours
        p
    }"
}

show_board() {
    [ "$(uname -m)" = x86_64 ] || fail 'the board needs an x86-64 machine'
    prepare qemu-system-x86_64=qemu-system-x86 cpio=cpio depmod=kmod make=make gcc=gcc \
        python3=python3 xz=xz-utils readelf=binutils flock=util-linux
    build_targets lanrise lanrise-status operation
    echo 'Fetching the board (once a kernel version) ...'
    tests/board/fetch.sh amd64 >>"$log" 2>&1 || fail "the board cannot be fetched, see $log"
    echo 'Starting the board, an emulated machine ...'
    tests/board/run.py amd64 $build tests/board/demo.sh 2>&1 | tee -a "$log" | only_the_show ||
        fail "the board's show went wrong, see $log"
}
