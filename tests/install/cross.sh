#!/bin/sh
# The packages for 64-bit ARM, built on this machine.
# shellcheck source=tests/install/lib.sh
. "$(dirname "$0")/lib.sh"

for tool in aarch64-linux-gnu-g++ dpkg-deb file; do
    command -v "$tool" >/dev/null || skip "$tool is not installed"
done
[ "$(uname -m)" != aarch64 ] || skip 'this machine is one'

cross=$work/cross
rm -rf "$cross"
mkdir -p "$cross"
succeeds 'configuration' sh -c "cd '$top' && cmake --preset package-aarch64 -B '$cross'"
succeeds 'build' cmake --build "$cross"
succeeds 'packing' sh -c "cd '$cross' && cpack"

relations_of "$cross"/packages/*_arm64.deb >"$cross/relations"
succeeds 'relations of the packages' diff -u "$here/debian.list" "$cross/relations"
for package in "$cross"/packages/*.deb; do
    is "architecture of $(basename "$package")" "$(dpkg-deb -f "$package" Architecture)" arm64
    dpkg-deb -x "$package" "$cross/root"
done
for file in usr/sbin/lanrise "usr/lib/aarch64-linux-gnu/libvorlix.so.$version"; do
    is "machine of $file" "$(readelf -h "$cross/root/$file" | sed -n 's/ *Machine: *//p')" AArch64
    newest=$(readelf -W --dyn-syms "$cross/root/$file" | grep -o 'GLIBC_[0-9.]*' | sort -uV | tail -n 1)
    is "newest libc that $file needs, of that and 2.34" \
        "$(printf '%s\nGLIBC_2.34\n' "$newest" | sort -V | tail -n 1)" GLIBC_2.34
done
exit "$failed"
