#!/bin/sh
# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# The packages for other machines, built on this one: 64-bit and 32-bit ARM.
# shellcheck source=tests/install/lib.sh
. "$(dirname "$0")/lib.sh"

for tool in dpkg-buildpackage dh; do
    command -v $tool >/dev/null || skip "$tool is not installed"
done

# builds ARCHITECTURE TRIPLET MACHINE, as readelf calls it
builds()
{
    command -v "$2-g++" >/dev/null || skip "$2-g++ is not installed"
    cross=$work/cross-$1
    rm -rf "$cross"
    succeeds "$1: packing" "$top/tools/debian-packages" "$1" "$cross"
    main=$(find "$cross" -name '*.deb' ! -name '*-dbgsym_*' | sort)
    # shellcheck disable=SC2086  # a list of files
    relations_of $main >"$cross/relations"
    # The reference is the same for all, and made for none but the machine's own.
    awk 'BEGIN { RS = ""; ORS = "\n\n" } !/^Package: libvorlix-doc/' "$here/debian.list" >"$cross/debian.list"
    succeeds "$1: relations of the packages" diff -u "$cross/debian.list" "$cross/relations"
    for package in $main; do
        is "$1: architecture of $(basename "$package")" "$(dpkg-deb -f "$package" Architecture)" "$1"
        dpkg-deb -x "$package" "$cross/root"
    done
    for file in usr/sbin/lanrise "usr/lib/$2/libvorlix.so.$version"; do
        is "$1: machine of $file" "$(readelf -h "$cross/root/$file" | sed -n 's/ *Machine: *//p')" "$3"
        # Whoever builds with a newer libc asks for that.
        [ "$(getconf GNU_LIBC_VERSION)" = 'glibc 2.36' ] || continue
        newest=$(readelf -W --dyn-syms "$cross/root/$file" | grep -o 'GLIBC_[0-9.]*' | sort -uV | tail -n 1)
        is "$1: newest libc that $file needs, of that and 2.34" \
            "$(printf '%s\nGLIBC_2.34\n' "$newest" | sort -V | tail -n 1)" GLIBC_2.34
    done
}

builds arm64 aarch64-linux-gnu AArch64
builds armhf arm-linux-gnueabihf ARM
exit "$failed"
