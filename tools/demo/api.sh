# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# ./demo --api: an application on the device of ./demo. An example is built against the library as it is
# installed, and reads and changes the network through it. Sourced by ./demo, never run.
# shellcheck shell=bash

readonly installed=$PWD/build/demo-api
readonly example=$installed/example/interfaces

# The library installed into a folder, and the example built with nothing but what lies there.
build_example() {
    rm -rf "$installed"
    mkdir -p "${example%/*}"
    cp examples/Makefile "examples/${example##*/}.c" "${example%/*}"
    echo "Building examples/${example##*/}.c against the installed library ..."
    {
        cmake --install $build --prefix "$installed"
        PKG_CONFIG_PATH=$installed/lib/pkgconfig:$installed/lib64/pkgconfig \
            make -C "${example%/*}" "${example##*/}"
    } >>"$log" 2>&1 || {
        tail -n 20 "$log" >&2
        fail "the example cannot be built, see $log"
    }
}

# run_example <expected status> <argument>...: its own lines; those of the library go to the log
run_example() {
    local expected=$1 status=0
    shift
    printf '\n  %s$ %s%s\n' "$bold" "${example##*/} $*" "$plain"
    printf '\n==== %s\n' "${example##*/} $*" >>"$log"
    LD_LIBRARY_PATH=$installed/lib:$installed/lib64 "$example" "$@" >/run/output 2>&1 || status=$?
    cat /run/output >>"$log"
    grep -v -e '|Vorlix-[0-9]*|' -e '^|' /run/output | sed 's/^/  /' || true
    [ "$status" -eq "$expected" ] || wrong "    ${red}the status is $status and should be $expected$plain"
}

show_api() {
    make_device
    section 'The device boots'
    run_lanrise 0
    echo
    run_status

    section 'An application lists the interfaces, by version 3'
    run_example 0

    section 'It sets an address, in the kernel and in the setting file'
    local address
    address=$(address_of eth2)
    run_example 0 eth2 10.3.0.77 255.255.255.0
    change eth2 "$address" "$(address_of eth2)"
    echo
    run_status eth2
    echo
    printf '    %-14s %s\n' Gateway "$(reaches ping -I eth2 10.3.0.1)"

    snapshot >/run/before
    run_example 1 eth9 10.3.0.99 255.255.255.0
    printf '    %-14s %s\n' Refused "$(sed -n 's/.*|\(invalid name: eth9\).*/\1/p' /run/output)"
    expect_same

    if has_bridge; then
        section 'It makes a bridge of two cards, and its object ends it again'
        address=$(address_of eth2)
        run_example 0 bridge br1 eth2 eth3
        change eth2 "$address" "$(address_of eth2)"
    fi

    section 'The next boot brings the address back'
    ip addr flush dev eth2
    address=$(address_of eth2)
    run_lanrise 0
    change eth2 "$address" "$(address_of eth2)"
    [ ! -e /run/wrong ]
}
