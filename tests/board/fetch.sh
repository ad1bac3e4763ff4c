#!/bin/sh
# Fetches what a virtual board is made of: Debian's stock kernel with its modules, and the real tools, for
# one architecture. Nothing is installed. What was fetched is kept outside the repository, by the version
# of the kernel, and used again.
#
# usage: tests/board/fetch.sh amd64|arm64
# Prints the folder: boot/ (kernel), modules/ (with modules.dep), root/ (unpacked tools).
set -eu

arch=$1
cache=${XDG_CACHE_HOME:-$HOME/.cache}/vorlix-board
state=$cache/apt-$arch
tools="busybox-static dash net-tools bridge-utils iproute2 iputils-ping ifupdown ifenslave libc6"

apt()
{
    "$@" -q -o APT::Architecture="$arch" -o APT::Architectures="$arch" \
        -o Dir::State="$state" -o Dir::State::status="$state/status" \
        -o Dir::Cache="$state/cache" -o APT::Sandbox::User=root \
        -o Debug::NoLocking=1 -o APT::Get::List-Cleanup=0
}

mkdir -p "$state/lists/partial" "$state/cache/archives/partial"
: >"$state/status"
exec 9>"$state/lock"
flock 9

# The lists are asked for once a day: the kernel's package changes its name with each security update.
if [ -z "$(find "$state/updated" -mmin -1440 2>/dev/null)" ]; then
    apt apt-get update >"$state/log" 2>&1 || { tail -n 5 "$state/log" >&2; exit 1; }
    touch "$state/updated"
fi
kernel=$(apt apt-cache depends "linux-image-$arch" | sed -n 's/^ *Depends: \(linux-image-[0-9].*\)/\1/p' | head -n 1)
version=${kernel#linux-image-}
board=$cache/$version
# A list of tools that has changed is fetched anew.
if [ "$(cat "$board/complete" 2>/dev/null)" = "$tools" ]; then
    echo "$board"
    exit 0
fi

rm -rf "$board"
mkdir -p "$board/root" "$board/boot" "$board/kernel"
# shellcheck disable=SC2086  # a list of words
apt apt-get install -y --no-install-recommends --download-only $tools >"$state/log" 2>&1 ||
    { tail -n 5 "$state/log" >&2; exit 1; }
(cd "$state/cache/archives" && apt apt-get download "$kernel") >"$state/log" 2>&1 ||
    { tail -n 5 "$state/log" >&2; exit 1; }
for package in "$state"/cache/archives/*.deb; do
    case $package in
    */linux-image-*) dpkg-deb -x "$package" "$board/kernel" ;;
    *) dpkg-deb -x "$package" "$board/root" ;;
    esac
done
rm -rf "$state/cache/archives"

mv "$board/kernel/boot/vmlinuz-$version" "$board/boot/vmlinuz"
mkdir -p "$board/modules/lib"
mv "$board/kernel/lib/modules" "$board/modules/lib/modules"
rm -rf "$board/kernel"
depmod -b "$board/modules" "$version"
echo "$version" >"$board/version"
if [ "$arch" = amd64 ]; then
    # Started as an ELF file the kernel need not unpack itself, which is most of an emulated boot.
    "$(dirname "$0")/extract-vmlinux" "$board/boot/vmlinuz" >"$board/boot/kernel"
else
    mv "$board/boot/vmlinuz" "$board/boot/kernel"
fi
echo "$tools" >"$board/complete"
echo "$board"
