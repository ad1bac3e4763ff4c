#!/bin/sh
# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# What a packager chooses: a plain build that knows no preset, without GoogleTest, and either library.
# shellcheck source=tests/install/lib.sh
. "$(dirname "$0")/lib.sh"

plain=$work/plain
rm -rf "$plain" "$work"/prefix-*

# configured SWITCH...: what the configuration says is in $output
configured() { succeeds "configuration with $*" cmake -S "$top" -B "$plain" "$@"; }

# installs FOLDER: its files, without the folder of this machine's libraries
installs()
{
    succeeds "installation to $1" cmake --install "$plain" --prefix "$work/$1"
    (cd "$work/$1" && find . ! -type d | sed -E 's%/lib/[a-z0-9_]+-linux-[a-z]+/%/lib/%' | sort) >"$work/$1.list"
}

# GoogleTest may be here: the build is told not to look.
configured -DCMAKE_DISABLE_FIND_PACKAGE_GTest=ON
holds 'what is left out' "$output" 'No GoogleTest: the unit, kernel and fault rings are left out'
is 'warnings that are errors' "$(grep -c -e -Werror "$plain/compile_commands.json")" 0
succeeds 'build' cmake --build "$plain" --parallel 2
for file in cmd/lanrise/lanrise "Src/libvorlix.so.$version"; do
    is "a function that a debugger finds in $file" "$(nm "$plain/$file" | sed -n 's/.* [Tt] GetValueByKey.*/yes/p' | head -n 1)" yes
done
installs prefix-both
sed -E 's%^(usr/|)%./%; s%minsizerel%release%; s%doc/libvorlix-dev%doc/vorlix%' "$here/tree.list" | sort >"$work/both.list"
succeeds 'files below a prefix' diff "$work/both.list" "$work/prefix-both.list"

configured -DVORLIX_SHARED=OFF
succeeds 'build of the static library alone' cmake --build "$plain"
installs prefix-static
is 'files without the shared library' "$(diff "$work/prefix-both.list" "$work/prefix-static.list" | sed -n 's/^[<>] //p' | paste -sd ' ')" \
    "./lib/libvorlix.so ./lib/libvorlix.so.${version%%.*} ./lib/libvorlix.so.$version"
succeeds 'an application with it' cmake -S "$top/examples" -B "$work/prefix-static/build" \
    -DCMAKE_PREFIX_PATH="$work/prefix-static"
succeeds 'an application with it' cmake --build "$work/prefix-static/build"

configured -DVORLIX_SHARED=ON -DVORLIX_STATIC=OFF
succeeds 'build of the shared library alone' cmake --build "$plain"
installs prefix-shared
is 'files without the static library' "$(diff "$work/prefix-both.list" "$work/prefix-shared.list" | sed -n 's/^[<>] //p' | paste -sd ' ')" \
    ./lib/libvorlix.a
succeeds 'an application with it' cmake -S "$top/examples" -B "$work/prefix-shared/build" \
    -DCMAKE_PREFIX_PATH="$work/prefix-shared"
succeeds 'an application with it' cmake --build "$work/prefix-shared/build"

configured -DVORLIX_SHARED=OFF -DVORLIX_STATIC=OFF
succeeds 'build of the program alone' cmake --build "$plain"
installs prefix-program
is 'libraries and headers beside the program alone' "$(grep -e vorlix -e examples "$work/prefix-program.list")" ''
exit "$failed"
