#!/bin/sh
# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# Installs into a folder: exactly the files of tree.list, each naming the place where it is to lie.
# shellcheck source=tests/install/lib.sh
. "$(dirname "$0")/lib.sh"

# tree_of FOLDER: its files, with the library folder of this machine called lib
tree_of() { (cd "$1" && find . ! -type d | sed -E 's%^\./%%; s%/lib/[a-z0-9_]+-linux-[a-z]+/%/lib/%' | sort); }

rm -rf "$tree" "$work/elsewhere"
succeeds 'installation' env DESTDIR="$tree" cmake --install "$build"
tree_of "$tree" >"$work/tree.list"
succeeds 'the installed files' diff -u "$here/tree.list" "$work/tree.list"

is 'mode of the program' "$(stat -c %a "$tree/usr/sbin/lanrise")" 755
is 'mode of the init script' "$(stat -c %a "$tree/etc/init.d/lanrise")" 755
is 'mode of the filter of its log' "$(stat -c %a "$tree/usr/libexec/lanrise-log")" 755
is 'library behind its name' "$(readlink -f "$tree"/usr/lib/*/libvorlix.so)" \
    "$(echo "$tree"/usr/lib/*/"libvorlix.so.$version")"
is 'the build folder is nowhere named' \
    "$(grep -rlF -e "$build" -e "$top" "$tree" | sed "s%^$tree/%%")" ''

# What names its place follows the prefix that the installation chooses.
succeeds 'installation elsewhere' env DESTDIR="$work/elsewhere" cmake --install "$build" --prefix /opt/vorlix
follows()
{
    is "${1#"$tree"/} under another prefix" "$(cat "$2")" \
        "$(sed 's%/usr/\(sbin\|lib\|include\)%/opt/vorlix/\1%g; s%^prefix=/usr$%prefix=/opt/vorlix%' "$1")"
}
there=$work/elsewhere
for pc in "$tree"/usr/lib/*/pkgconfig/vorlix.pc; do
    follows "$pc" "$there/opt/vorlix/${pc#"$tree"/usr/}"
done
follows "$tree/usr/lib/systemd/system/lanrise.service" "$there/opt/vorlix/lib/systemd/system/lanrise.service"
follows "$tree/etc/init.d/lanrise" "$there/opt/vorlix/etc/init.d/lanrise"
is 'mode of the init script under another prefix' "$(stat -c %a "$there/opt/vorlix/etc/init.d/lanrise")" 755
is 'files outside the other prefix' "$(cd "$there" && find . ! -type d ! -path './opt/vorlix/*')" ''

# One component at a time.
rm -rf "$work/component"
for component in program library development; do
    succeeds "component $component" env DESTDIR="$work/component/$component" \
        cmake --install "$build" --component "$component"
done
# What Debian wants beside them is theirs alone.
parts_of() { tree_of "$work/component/$1" | grep -v -e '/copyright$' -e '/changelog$' -e '/README.Debian$' -e '/ifenslave$'; }
is 'files of the library alone' "$(parts_of library | paste -sd ' ')" \
    "usr/lib/libvorlix.so.${version%%.*} usr/lib/libvorlix.so.$version"
for component in program library development; do parts_of $component; done | sort >"$work/parts.list"
succeeds 'the components make the whole' diff -u "$work/tree.list" "$work/parts.list"
exit "$failed"
