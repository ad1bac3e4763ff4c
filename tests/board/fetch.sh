#!/bin/sh
# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# Fetches what a virtual board is made of: the stock kernel of a Debian release with its modules, and the
# real tools, for one architecture. Nothing is installed. What was fetched is kept outside the repository,
# by the version of the kernel, and used again.
#
# usage: tests/board/fetch.sh amd64|arm64|armhf [bullseye|bookworm|trixie]
# Prints the folder: boot/ (kernel), modules/ (with modules.dep), headers/ (what a module of our own is built
# against), tools/ (unpacked).
set -eu

arch=$1
release=${2:-bookworm}
host=$(dpkg --print-architecture)
cache=${XDG_CACHE_HOME:-$HOME/.cache}/vorlix-board
mirror=http://deb.debian.org
keys=/usr/share/keyrings/debian-archive-keyring.gpg
tools="busybox-static dash net-tools bridge-utils iproute2 iputils-ping iptables ifupdown ifenslave mtd-utils libc6"

# What is tested was built against the C library of this machine, which the board must have too. On a machine
# that is none of these, the newest.
# shellcheck disable=SC1091  # of this machine
case $(. /etc/os-release && echo "${VERSION_CODENAME-}") in
bookworm) tools_release=bookworm ;;
*) tools_release=trixie ;;
esac

case $arch in
armhf) flavour=armmp ;;
*) flavour=$arch ;;
esac

# apt_of RELEASE ARCHITECTURE COMMAND...: with sources and lists of its own
apt_of()
{
    own=$cache/apt-$1-$2
    for_arch=$2
    shift 2
    "$@" -q -o APT::Architecture="$for_arch" -o APT::Architectures="$for_arch" \
        -o Dir::State="$own" -o Dir::State::status="$own/status" -o Dir::Cache="$own/cache" \
        -o Dir::Etc::sourcelist="$own/sources.list" -o Dir::Etc::sourceparts=- \
        -o APT::Sandbox::User=root -o Debug::NoLocking=1 -o APT::Get::List-Cleanup=0
}

fail()
{
    tail -n 5 "$1" >&2
    exit 1
}

# versions: of the kernels that the release has, newest first; its updates and what it came with
versions()
{
    apt_of "$release" "$arch" apt-cache show "linux-image-$flavour" 2>/dev/null |
        sed -n 's/^Depends: linux-image-\([0-9][^ ,]*\).*/\1/p'
}

# with_lists RELEASE ARCHITECTURE: they are asked for once a day: the kernel's package changes its name with
# each security update. Where only a part answers, such as the release without its updates, that part does.
with_lists()
{
    lists=$cache/apt-$1-$2
    mkdir -p "$lists/lists/partial" "$lists/cache/archives/partial"
    [ -n "$(find "$lists/updated" -mmin -1440 2>/dev/null)" ] && return
    : >"$lists/status"
    printf 'deb [signed-by=%s] %s main\n' "$keys" "$mirror/debian $1" "$keys" "$mirror/debian-security $1-security" \
        >"$lists/sources.list"
    apt_of "$1" "$2" apt-get update >"$lists/log" 2>&1 ||
        apt_of "$1" "$2" apt-cache show linux-base >/dev/null 2>&1 || fail "$lists/log"
    touch "$lists/updated"
    rm -f "$lists/board"
}

# unpack FOLDER RELEASE ARCHITECTURE PACKAGE...: packages without what they depend on
unpack()
{
    into=$1
    from=$2
    package_arch=$3
    shift 3
    packages=$(mktemp -d "$cache/packages-XXXXXX")
    trap 'rm -rf "$packages"' EXIT
    mkdir -p "$into"
    (cd "$packages" && apt_of "$from" "$package_arch" apt-get download "$@") >"$packages/log" 2>&1 ||
        fail "$packages/log"
    for package in "$packages"/*.deb; do dpkg-deb -x "$package" "$into"; done
    rm -rf "$packages"
}

# unpack_all FOLDER RELEASE ARCHITECTURE PACKAGE...: packages with all that they depend on
unpack_all()
{
    into=$1
    from=$2
    package_arch=$3
    shift 3
    archives=$cache/apt-$from-$package_arch/cache/archives
    log=$cache/apt-$from-$package_arch/log
    apt_of "$from" "$package_arch" apt-get install -y --no-install-recommends --download-only "$@" \
        >"$log" 2>&1 || fail "$log"
    mkdir -p "$into"
    for package in "$archives"/*.deb; do dpkg-deb -x "$package" "$into"; done
    rm -f "$archives"/*.deb
}

# No board has any of these, and they are most of a kernel.
unneeded="sound drivers/gpu drivers/media drivers/infiniband drivers/staging drivers/iio drivers/usb drivers/scsi
    drivers/net/ethernet drivers/net/wireless"

# Started as an ELF file an x86 kernel need not unpack itself, which is most of an emulated boot.
fetch_kernel()
{
    unpack "$board/kernel" "$release" "$arch" "linux-image-$version"
    mkdir -p "$board/boot" "$board/modules/lib"
    mv "$board/kernel/boot/vmlinuz-$version" "$board/boot/vmlinuz"
    rm -rf "$board/modules/lib/modules"
    for folder in "$board/kernel/lib" "$board/kernel/usr/lib"; do
        [ ! -d "$folder/modules" ] || mv "$folder/modules" "$board/modules/lib/modules"
    done
    rm -rf "$board/kernel"
    for folder in $unneeded; do rm -rf "$board/modules/lib/modules/$version/kernel/$folder"; done
    depmod -b "$board/modules" "$version"
    echo "$version" >"$board/version"
    cp "$board/boot/vmlinuz" "$board/boot/kernel.new"
    [ "$arch" != amd64 ] || "$here/extract-vmlinux" "$board/boot/vmlinuz" >"$board/boot/kernel.new"
    mv "$board/boot/kernel.new" "$board/boot/kernel"
}

# The packages' own folders side by side, and the tools of the build for this machine, whatever the board
# is. They name each other by one absolute path.
fetch_headers()
{
    rm -rf "$board/headers"
    unpack "$board/headers" "$release" "$arch" "linux-headers-$version" "linux-headers-${version%-*}-common"
    kbuild=$(apt_of "$release" "$arch" apt-cache depends "linux-headers-$version" |
        sed -n 's/^ *Depends: \(linux-kbuild-.*\)/\1/p')
    with_lists "$release" "$host"
    unpack "$board/headers" "$release" "$host" "$kbuild"
    find "$board/headers/usr/lib/" -type f -perm -100 -exec grep -la '^.ELF' {} + | while read -r tool; do
        if ldd "$tool" 2>&1 | grep -q 'not found'; then echo "$tool"; fi
    done >"$board/headers/foreign"
    [ ! -s "$board/headers/foreign" ] || wrap_tools
    sed -i "s,^include /usr,include $board/headers/usr," \
        "$board/headers/usr/src/linux-headers-$version/Makefile"
    touch "$board/headers/complete"
}

# The tools of a release that is newer than this machine run with the libraries of that release.
wrap_tools()
{
    unpack_all "$board/headers/host" "$release" "$host" "$kbuild"
    loader=$(find "$board/headers/host" -name 'ld-linux*.so*' | head -n 1)
    folders=$(find "$board/headers/host" -name '*.so*' -printf '%h\n' | sort -u | paste -sd :)
    while read -r tool; do
        mv "$tool" "$tool.elf"
        printf '#!/bin/sh\nexec %s --library-path %s %s "$@"\n' "$loader" "$folders" "$tool.elf" >"$tool"
        chmod +x "$tool"
    done <"$board/headers/foreign"
}

# What was there before stays: another working copy may want other tools.
fetch_tools()
{
    folder=$cache/tools-$tools_release-$arch
    with_lists "$tools_release" "$arch"
    had="$(cat "$folder/complete" 2>/dev/null || true) "
    missing=
    for tool in $tools; do
        case " $had" in *" $tool "*) ;; *) missing="$missing$tool " ;; esac
    done
    if [ -n "$missing" ]; then
        # shellcheck disable=SC2086  # a list of words
        unpack_all "$folder" "$tools_release" "$arch" $missing
        echo "$had$missing" | sed 's/^ *//; s/ *$//' >"$folder/complete"
    fi
    ln -sfn "$folder" "$board/tools"
}

# choose: the newest kernel that can be had; a mirror may lack what it lists
choose()
{
    for version in $(versions); do
        board=$cache/$version
        set +e
        (
            set -e
            [ -e "$board/boot/kernel" ] || fetch_kernel
            [ -e "$board/headers/complete" ] || fetch_headers
        )
        status=$?
        set -e
        [ $status = 0 ] || continue
        echo "$board" >"$chosen"
        return
    done
    echo "no kernel for $arch in $release" >&2
    exit 1
}

here=$(cd "$(dirname "$0")" && pwd)
mkdir -p "$cache"
# One at a time: the cases of one board start together.
exec 9>"$cache/lock"
flock 9
with_lists "$release" "$arch"
chosen=$cache/apt-$release-$arch/board
[ -e "$chosen" ] || choose
board=$(cat "$chosen")
fetch_tools
echo "$board"
