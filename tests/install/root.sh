#!/bin/sh
# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# A clean Debian root: the essential packages, and what the given packages depend on and recommend,
# fetched and unpacked but not installed. Kept outside the repository and used again as long as the list stays the same.
#
# usage: root.sh PACKAGE.deb...
# Prints the folder; status 77 when the packages cannot be had.
set -eu

cache=${XDG_CACHE_HOME:-$HOME/.cache}/vorlix-root
state=$cache/apt
essential="base-files base-passwd bash coreutils dash debianutils diffutils dpkg findutils grep gzip
init-system-helpers libc-bin mawk perl-base sed sysvinit-utils tar usr-is-merged util-linux"
recommended=
for package in "$@"; do
    recommended="$recommended $(dpkg-deb -f "$package" Recommends | tr -d ,)"
done

apt()
{
    "$@" -q -o Dir::State="$state" -o Dir::State::status="$state/status" -o Dir::Cache="$state/cache" \
        -o APT::Sandbox::User=root -o APT::Install-Recommends=0 -o Debug::NoLocking=1
}

give_up()
{
    tail -n 5 "$state/log" >&2
    exit 77
}

mkdir -p "$state/lists/partial" "$state/cache/archives/partial"
: >"$state/status"
exec 9>"$state/lock"
flock 9

# The lists are asked for once a week; older ones do when there is no net.
if [ -z "$(find "$state/updated" -mmin -10080 2>/dev/null)" ]; then
    if apt apt-get update --error-on=any >"$state/log" 2>&1; then
        touch "$state/updated"
    elif [ -z "$(find "$state/lists" -name '*_Packages*')" ]; then
        give_up
    fi
fi

# What apt would install beside the given packages, name and version.
# shellcheck disable=SC2086  # a list of words
apt apt-get install -s $essential $recommended "$@" >"$state/plan" 2>"$state/log" || give_up
for package in "$@"; do
    sed -i "/^Inst $(dpkg-deb -f "$package" Package) /d" "$state/plan"
done
sed -n 's/^Inst \([^ ]*\) (\([^ ]*\) .*/\1 \2/p' "$state/plan" | sort >"$state/list"
root=$cache/$(sha256sum <"$state/list" | cut -c 1-16)
if [ ! -e "$root" ]; then
    # shellcheck disable=SC2086
    apt apt-get install -y --download-only $essential $recommended "$@" >"$state/log" 2>&1 || give_up
    rm -rf "$root.new"
    mkdir -p "$root.new"
    # Debian's own folders first: /bin and its like are links into /usr.
    for folder in bin lib sbin lib64; do
        mkdir -p "$root.new/usr/$folder"
        ln -s "usr/$folder" "$root.new/$folder"
    done
    while read -r name package_version; do
        file=$(echo "${name%:*}_${package_version}_" | sed 's/:/%3a/g')
        # A package's own /bin would replace the link; its files go through it.
        dpkg-deb --fsys-tarfile "$state/cache/archives/$file"*.deb |
            tar -x --keep-directory-symlink -C "$root.new" >"$state/log" 2>&1 || give_up
    done <"$state/list"
    mv "$root.new" "$root"
    rm -rf "$state/cache/archives"
    # What an older list asked for.
    find "$cache" -maxdepth 1 -name '????????????????' ! -path "$root" -mtime +30 -exec rm -rf {} +
fi
echo "$root"
