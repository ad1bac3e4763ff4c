#!/bin/sh
# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# The Debian packages: what they ask for and what lintian says of them; and in a clean root that holds
# just that, how they install and replace those of an older release, how the examples run that were
# built with them, how they start the device, and what they leave behind.
# shellcheck source=tests/install/lib.sh
. "$(dirname "$0")/lib.sh"

debian=$work/debian
packages=$debian/packages
older=$debian/older
root=$debian/root
soversion=${version%%.*}
library=libvorlix$soversion

# ---- inside: the root, with its own network and mounts

inside() { chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin DEBIAN_FRONTEND=noninteractive "$@"; }

enter_root()
{
    mount -t tmpfs tmpfs "$root"
    cp -a "$1/." "$root"
    mkdir -p "$root/proc" "$root/sys" "$root/dev" "$root/tmp" "$root/mnt/mtd/Config" "$root/packages" \
        "$root/older" "$root/var/lib/dpkg/updates" "$root/var/lib/dpkg/info"
    mount -t proc proc "$root/proc"
    mount -t sysfs sysfs "$root/sys"
    for node in null zero random urandom; do
        : >"$root/dev/$node"
        mount --bind "/dev/$node" "$root/dev/$node"
    done
    : >>"$root/var/lib/dpkg/status"
    ip link set lo up
    cp "$packages"/*.deb "$root/packages"
    cp "$older"/*.deb "$root/older"
    cp -r "$debian/examples" "$here/device.sh" "$root/tmp"
    inside ldconfig
}

# files_of: all that the root holds, but for what every installation writes
files_of()
{
    (cd "$root" && find . -xdev ! -type d ! -path './proc/*' ! -path './sys/*' ! -path './var/lib/dpkg/*' \
        ! -path './var/log/*' ! -path './etc/ld.so.cache' ! -path './var/cache/*' | sort)
}

# The root holds what they ask for, unpacked; dpkg knows of none of it.
# installs NAME FOLDER_IN_THE_ROOT
installs() { succeeds "$1" inside sh -c "dpkg --force-depends --install $2/*.deb"; }

units() { (cd "$root/etc/systemd/system" && find . -name lanrise.service); }

# stands NAME VERSION: the packages of that version, and the start that they enable
stands()
{
    reference=
    [ "$2" != "$version" ] || reference=",libvorlix-doc $2 install ok installed"
    # shellcheck disable=SC2016  # dpkg's variables
    is "$1: state of the packages" \
        "$(inside dpkg-query -W -f '${Package} ${Version} ${Status}\n' 'l*' |
            grep ' installed$' | grep -v dbgsym | sort | paste -sd ,)" \
        "lanrise $2 install ok installed,libvorlix-dev $2 install ok installed$reference,$library $2 install ok installed"
    is "$1: files that differ from the packages" "$(inside dpkg --verify)" ''
    is "$1: links of the init script" "$(cd "$root/etc" && echo rc*.d/*lanrise)" rcS.d/S01lanrise
    is "$1: settings" "$(ls "$root/mnt/mtd/Config")" ''
    [ -e "$root/usr/lib/systemd/system/lanrise.service" ] || is "$1: unit" gone there
}

try_packages()
{
    files_of >"$debian/before"
    installs 'installation' /packages
    stands 'installation' "$version"
    is 'links of the unit' "$(units)" ./multi-user.target.wants/lanrise.service
    rm "$root/etc/systemd/system/multi-user.target.wants/lanrise.service" # as `systemctl disable` does
    succeeds 'installation over it' inside sh -c 'dpkg --force-depends --install /packages/lanrise_*'
    is 'a start that was disabled' "$(units)" ''
    for page in 3/vorlix.3 5/lanrise.5 8/lanrise.8 8/lanrise-status.8; do
        succeeds "page $page" gzip -t "$root/usr/share/man/man$page.gz"
    done
    holds 'first page of the reference' "$root/usr/share/doc/libvorlix-doc/html/index.html" 'Rules of results'
    [ -e "$root/usr/share/doc/libvorlix-doc/html/search/search.js" ] || is 'search of the reference' gone there
    [ -x "$root/etc/init.d/lanrise" ] || is 'mode of the init script' 'not executable' executable

    for example in interfaces status mixed; do
        inside ldd "/tmp/examples/$example" >"$debian/needs"
        holds "library of $example" "$debian/needs" "libvorlix.so.$soversion => /lib/"
    done
    succeeds 'the examples in the root' inside /tmp/device.sh /tmp/examples

    ip addr flush dev eth0
    succeeds 'the start at boot' inside /etc/init.d/lanrise start
    is 'address after the start' "$(ip -4 -o addr show dev eth0 | awk '{ print $4 }')" 10.1.0.10/24
    ls "$root/mnt/mtd/Config" >"$debian/settings"
    holds 'settings after the start' "$debian/settings" network1

    purge
    is 'settings after the removal' "$(ls "$root/mnt/mtd/Config")" "$(cat "$debian/settings")"
    rm -rf "$root/mnt/mtd/Config"
    nothing_left 'the removal'
}

purge() { succeeds 'removal' inside dpkg --purge lanrise lanrise-dbgsym libvorlix-dev libvorlix-doc "$library" "$library-dbgsym"; }

nothing_left()
{
    files_of >"$debian/after"
    succeeds "what is left after $1" diff "$debian/before" "$debian/after"
}

try_upgrade()
{
    mkdir -p "$root/mnt/mtd/Config"
    installs 'the older release' /older
    stands 'the older release' 3.0.0
    installs 'upgrade' /packages
    stands 'upgrade' "$version"
    is 'links of the unit after the upgrade' "$(units)" ./multi-user.target.wants/lanrise.service
    purge

    installs 'the older release again' /older
    rm "$root/etc/systemd/system/multi-user.target.wants/lanrise.service"
    installs 'upgrade with a disabled start' /packages
    is 'a start that was disabled before the upgrade' "$(units)" ''
    purge
    rm -rf "$root/mnt/mtd/Config"
    nothing_left 'upgrade and removal'
}

if [ "${2-}" = --inside ]; then
    enter_root "$3"
    try_packages
    try_upgrade
    exit "$failed"
fi

# ---- outside: the packages, the root, and the examples built with the packages

# older_package PACKAGE: as release 3.0.0 packed it: its own maintainer scripts, its unit below /usr
older_package()
{
    there=$older/$1
    mkdir -p "$there/DEBIAN"
    dpkg-deb -x "$packages/$1_${version}_"*.deb "$there"
    if [ -d "$there/lib" ]; then
        mkdir -p "$there/usr/lib/systemd"
        mv "$there/lib/systemd/system" "$there/usr/lib/systemd/system"
        rm -r "${there:?}/lib"
    fi
    find "$there" -depth -name "*$version*" | while read -r file; do
        mv "$file" "$(echo "$file" | sed "s/$version/3.0.0/")"
    done
    link=$(find "$there" -name "libvorlix.so.$soversion")
    [ -z "$link" ] || ln -sf libvorlix.so.3.0.0 "$link"
    {
        dpkg-deb -f "$packages/$1_${version}_"*.deb Package Architecture Maintainer Description
        echo 'Version: 3.0.0'
    } >"$there/DEBIAN/control"
    case $1 in
    lanrise) cp "$here/release-3.0.0/postinst" "$here/release-3.0.0/postrm" "$here/release-3.0.0/conffiles" "$there/DEBIAN" ;;
    libvorlix?) cp "$here/release-3.0.0/triggers" "$there/DEBIAN" ;;
    esac
    succeeds "$1 of the older release" dpkg-deb --root-owner-group -b "$there" "$older"
}

for tool in dpkg-buildpackage dh doxygen; do
    command -v $tool >/dev/null || skip "$tool is not installed"
done
rm -rf "$debian"
mkdir -p "$root" "$debian/sysroot" "$debian/examples" "$older"
export SOURCE_DATE_EPOCH=1700000000
succeeds 'packing' "$top/tools/debian-packages" "$(dpkg --print-architecture)" "$packages"
succeeds 'packing again' "$top/tools/debian-packages" "$(dpkg --print-architecture)" "$debian/again"
is 'packages packed again' "$(cd "$debian/again" && sha256sum ./*.deb)" "$(cd "$packages" && sha256sum ./*.deb)"

main=$(find "$packages" -name '*.deb' ! -name '*-dbgsym_*' | sort)
# shellcheck disable=SC2086  # a list of files
relations_of $main >"$debian/relations"
succeeds 'relations of the packages' diff -u "$here/debian.list" "$debian/relations"
for symbols in lanrise "$library"; do
    is "debug symbols of $symbols" "$(find "$packages" -name "$symbols-dbgsym_*" | wc -l)" 1
done
if command -v lintian >/dev/null; then
    # Now and then it leaves tables of its own behind.
    mkdir "$debian/temporary"
    # The project has no mail domain; who distributes the packages puts an address of theirs.
    succeeds 'what lintian says' env TMPDIR="$debian/temporary" lintian --allow-root --fail-on error,warning \
        --suppress-tags bogus-mail-host,bogus-mail-host-in-debian-changelog "$packages"/*.deb
    rm -rf "$debian/temporary"
else
    echo 'left out: lintian is not installed'
fi
for package in $main; do
    dpkg-deb -x "$package" "$debian/sysroot"
done
is 'symbols that have no release' \
    "$(dpkg-deb -I "$packages/${library}_${version}_"*.deb symbols | grep -c '@VORLIX_3 ')" \
    "$(($(grep -c '^[A-Za-z]' "$top/packaging/exports.list") + 1))"
is 'files of the packages' \
    "$(cd "$debian/sysroot" && find usr/share/doc -name copyright -o -name changelog.gz -o -name 'README.Debian*' -o -name ifenslave | sort | paste -sd ' ')" \
    "usr/share/doc/lanrise/README.Debian usr/share/doc/lanrise/changelog.gz usr/share/doc/lanrise/copyright usr/share/doc/lanrise/examples/ifenslave usr/share/doc/libvorlix-dev/changelog.gz usr/share/doc/libvorlix-dev/copyright usr/share/doc/libvorlix-doc/changelog.gz usr/share/doc/libvorlix-doc/copyright usr/share/doc/$library/changelog.gz usr/share/doc/$library/copyright"

[ "$(id -u)" = 0 ] || skip 'a root to install into needs root; the packages themselves were looked at'
# shellcheck disable=SC2086
clean=$("$here/root.sh" $main) || skip 'no clean root: its packages cannot be had'
for package in lanrise "$library" libvorlix-dev; do older_package "$package"; done

cp "$debian/sysroot/usr/share/doc/libvorlix-dev/examples"/* "$debian/examples"
folder=$(dirname "$debian"/sysroot/usr/lib/*/libvorlix.so)
# The root has no C++ of its own: an application brings what it needs.
succeeds 'examples with the packages' env PKG_CONFIG_LIBDIR="$folder/pkgconfig" \
    PKG_CONFIG_SYSROOT_DIR="$debian/sysroot" make -C "$debian/examples" LDFLAGS=-static-libstdc++

[ "$failed" = 0 ] || exit 1
exec unshare --mount --net --propagation private "$0" "$build" --inside "$clean"
