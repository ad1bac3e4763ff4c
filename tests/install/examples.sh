#!/bin/sh
# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# The examples build against what was installed, each way that an application may choose, and work on
# real cards.
# shellcheck source=tests/install/lib.sh
. "$(dirname "$0")/lib.sh"

library=$(echo "$tree"/usr/lib/*/libvorlix.so)
folder=${library%/*}
strict='-Wall -Wextra -Wpedantic -Wconversion -Werror'

# runs NAME FOLDER: the built examples on a device of their own
runs()
{
    succeeds "$1: on a device" env LD_LIBRARY_PATH="$folder" \
        "$top/tests/netns/enter.sh" "$here/device.sh" "$2"
    [ "$(id -u)" = 0 ] || return 0 # it was without rights already
    # Who has no rights may not look into root's home, should this tree lie there.
    for example in interfaces status mixed; do
        succeeds "$1: $example without rights" "$top/tests/netns/enter.sh" sh -c \
            "ip link add eth0 type veth peer name p0 && cp -r $2/$example $folder/. /mnt &&
                LD_LIBRARY_PATH=/mnt setpriv --reuid 65534 --clear-groups --inh-caps=-all /mnt/$example"
    done
}

# ---- pkg-config

rm -rf "$work/pkg-config" "$work"/cmake-*
mkdir -p "$work/pkg-config"
cp "$top"/examples/* "$work/pkg-config"
export PKG_CONFIG_LIBDIR="$folder/pkgconfig" PKG_CONFIG_SYSROOT_DIR="$tree"
is 'version by pkg-config' "$(pkg-config --modversion vorlix)" "$version"
succeeds 'examples by pkg-config' make -C "$work/pkg-config" \
    CFLAGS="-std=c11 -O2 $strict" CXXFLAGS="-std=c++17 -O2 $strict"
runs pkg-config "$work/pkg-config"

# So do the programs that the page for users shows.
awk -v folder="$work/pkg-config" '
    /^```$/ { program = 0 }
    program { print >(folder "/page" program ".c") }
    /^```c$/ { program = ++count }' "$top/docs/using.md"
for program in 1 2; do
    # shellcheck disable=SC2046,SC2086  # lists of words
    succeeds "program $program of the page for users" cc -std=c11 $strict "$work/pkg-config/page$program.c" \
        -o "$work/pkg-config/page$program" $(pkg-config --cflags --libs vorlix)
done
unset PKG_CONFIG_LIBDIR PKG_CONFIG_SYSROOT_DIR

# ---- CMake, both libraries

for static in OFF ON; do
    there=$work/cmake-$static
    succeeds "examples by CMake, static $static" cmake -S "$top/examples" -B "$there" \
        -DCMAKE_PREFIX_PATH="$tree/usr" -DEXAMPLES_STATIC=$static \
        -DCMAKE_C_FLAGS=-Werror -DCMAKE_CXX_FLAGS=-Werror
    succeeds "examples by CMake, static $static" cmake --build "$there"
    # A C program stays one: no C++ run-time comes in with the library.
    needs=$(readelf -d "$there/interfaces" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' | paste -sd ' ')
    if [ $static = ON ]; then
        is 'what interfaces needs with the library inside' "$needs" libc.so.6
        folder=$work/nothing
        mkdir -p "$folder"
    else
        is 'what interfaces needs' "$needs" "libvorlix.so.${version%%.*} libc.so.6"
    fi
    runs "CMake, static $static" "$there"
done

# A release of another generation is not taken for this one.
mkdir -p "$work/cmake-old"
for wanted in 2 3.0 "${version%%.*}.99" 4; do
    cat >"$work/cmake-old/CMakeLists.txt" <<END
cmake_minimum_required(VERSION 3.16)
project(wanted LANGUAGES C)
find_package(Vorlix $wanted REQUIRED)
END
    how=fails
    [ "$wanted" != 3.0 ] || how=succeeds
    $how "find_package(Vorlix $wanted)" cmake -S "$work/cmake-old" -B "$work/cmake-old/build" \
        -DCMAKE_PREFIX_PATH="$tree/usr"
done
exit "$failed"
