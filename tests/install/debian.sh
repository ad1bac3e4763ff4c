#!/bin/sh
# The Debian packages: what they ask for; and in a clean root that holds just that, how they install,
# how the examples run that were built with them, how they start the device, and what they leave behind.
# shellcheck source=tests/install/lib.sh
. "$(dirname "$0")/lib.sh"

packages=$build/packages
debian=$work/debian
root=$debian/root
soversion=${version%%.*}

# ---- inside: the root, with its own network and mounts

inside() { chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin DEBIAN_FRONTEND=noninteractive "$@"; }

enter_root()
{
    mount -t tmpfs tmpfs "$root"
    cp -a "$1/." "$root"
    mkdir -p "$root/proc" "$root/sys" "$root/dev" "$root/tmp" "$root/mnt/mtd/Config" "$root/packages" \
        "$root/var/lib/dpkg/updates" "$root/var/lib/dpkg/info"
    mount -t proc proc "$root/proc"
    mount -t sysfs sysfs "$root/sys"
    for node in null zero random urandom; do
        : >"$root/dev/$node"
        mount --bind "/dev/$node" "$root/dev/$node"
    done
    : >>"$root/var/lib/dpkg/status"
    ip link set lo up
    cp "$packages"/*.deb "$root/packages"
    cp -r "$debian/examples" "$here/device.sh" "$root/tmp"
    inside ldconfig
}

# files_of: all that the root holds, but for what every installation writes
files_of()
{
    (cd "$root" && find . -xdev ! -type d ! -path './proc/*' ! -path './sys/*' ! -path './var/lib/dpkg/*' \
        ! -path './var/log/*' ! -path './etc/ld.so.cache' ! -path './var/cache/*' | sort)
}

try_packages()
{
    files_of >"$debian/before"
    # The root holds what they ask for, unpacked; dpkg knows of none of it.
    succeeds 'installation' inside sh -c 'dpkg --force-depends --install /packages/*.deb'
    # shellcheck disable=SC2016  # dpkg's variables
    is 'state of the packages' "$(inside dpkg-query -W -f '${Package} ${Status}\n' | sort | paste -sd ,)" \
        "lanrise install ok installed,libvorlix-dev install ok installed,libvorlix$soversion install ok installed"
    is 'files that differ from the packages' "$(inside dpkg --verify)" ''
    is 'links of the init script' "$(cd "$root/etc" && echo rc*.d/*lanrise)" rcS.d/S01lanrise
    is 'links of the unit' "$(cd "$root/etc/systemd/system" && find . -name lanrise.service)" \
        ./multi-user.target.wants/lanrise.service
    rm "$root/etc/systemd/system/multi-user.target.wants/lanrise.service" # as `systemctl disable` does
    succeeds 'installation over it' inside sh -c 'dpkg --force-depends --install /packages/lanrise_*'
    is 'a start that was disabled' "$(cd "$root/etc/systemd/system" && find . -name lanrise.service)" ''
    is 'settings after the installation' "$(ls "$root/mnt/mtd/Config")" ''
    for page in 3/vorlix.3 5/lanrise.5 8/lanrise.8; do
        succeeds "page $page" gzip -t "$root/usr/share/man/man$page.gz"
    done

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

    succeeds 'removal' inside dpkg --purge lanrise libvorlix-dev "libvorlix$soversion"
    is 'settings after the removal' "$(ls "$root/mnt/mtd/Config")" "$(cat "$debian/settings")"
    rm -rf "$root/mnt/mtd/Config"
    files_of >"$debian/after"
    succeeds 'what is left after the removal' diff "$debian/before" "$debian/after"
}

if [ "${2-}" = --inside ]; then
    enter_root "$3"
    try_packages
    exit "$failed"
fi

# ---- outside: the packages, the root, and the examples built with the packages

for tool in dpkg-deb dpkg-shlibdeps file; do
    command -v $tool >/dev/null || skip "$tool is not installed"
done
rm -rf "$packages" "$debian"
mkdir -p "$root" "$debian/sysroot" "$debian/examples"
export SOURCE_DATE_EPOCH=1700000000
succeeds 'packing' sh -c "cd '$build' && cpack"
succeeds 'packing again' sh -c "cd '$build' && cpack -B '$debian/again'"
is 'packages packed again' "$(cd "$debian/again" && sha256sum ./*.deb)" "$(cd "$packages" && sha256sum ./*.deb)"

relations_of "$packages"/*.deb >"$debian/relations"
succeeds 'relations of the packages' diff -u "$here/debian.list" "$debian/relations"
for package in "$packages"/*.deb; do
    dpkg-deb -x "$package" "$debian/sysroot"
done
is 'files of the packages' \
    "$(cd "$debian/sysroot" && find usr/share/doc -name copyright -o -name changelog.gz -o -name README.Debian -o -name ifenslave | sort | paste -sd ' ')" \
    "usr/share/doc/lanrise/README.Debian usr/share/doc/lanrise/changelog.gz usr/share/doc/lanrise/copyright usr/share/doc/lanrise/examples/ifenslave usr/share/doc/libvorlix-dev/changelog.gz usr/share/doc/libvorlix-dev/copyright usr/share/doc/libvorlix$soversion/changelog.gz usr/share/doc/libvorlix$soversion/copyright"

[ "$(id -u)" = 0 ] || skip 'a root to install into needs root; the packages themselves were looked at'
clean=$("$here/root.sh" "$packages"/*.deb) || skip 'no clean root: its packages cannot be had'

cp "$debian/sysroot/usr/share/doc/libvorlix-dev/examples"/* "$debian/examples"
folder=$(dirname "$debian"/sysroot/usr/lib/*/libvorlix.so)
# The root has no C++ of its own: an application brings what it needs.
succeeds 'examples with the packages' env PKG_CONFIG_LIBDIR="$folder/pkgconfig" \
    PKG_CONFIG_SYSROOT_DIR="$debian/sysroot" make -C "$debian/examples" LDFLAGS=-static-libstdc++

[ "$failed" = 0 ] || exit 1
exec unshare --mount --net --propagation private "$0" "$build" --inside "$clean"
