#!/bin/sh
# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# What cannot be built says so in one line, before anything is compiled.
# shellcheck disable=SC2317  # functions that are called by name
# shellcheck source=tests/install/lib.sh
. "$(dirname "$0")/lib.sh"

# refused NAME LINE COMMAND...: fails, and says the line
refused()
{
    name=$1
    line=$2
    shift 2
    rm -rf "$work/refused"
    fails "$name" "$@"
    holds "$name" "$output" "$line"
}

plain() { cmake -S "$top" -B "$work/refused" "$@"; }

refused 'another system' 'vorlix is made for Linux; this build is for FreeBSD' \
    plain -DCMAKE_SYSTEM_NAME=FreeBSD
refused 'rings that are wanted, without GoogleTest' 'VORLIX_TESTS is ON and there is no GoogleTest' \
    plain -DVORLIX_TESTS=ON -DCMAKE_DISABLE_FIND_PACKAGE_GTest=ON

# A compiler of before C++17, as far as CMake can tell.
printf '#!/bin/sh\nexec c++ -U__GNUC__ -D__GNUC__=4 -U__GNUC_MINOR__ -D__GNUC_MINOR__=9 "$@"\n' >"$work/old-c++"
chmod +x "$work/old-c++"
refused 'a compiler without C++17' 'vorlix is written in C++17, which' plain -DCMAKE_CXX_COMPILER="$work/old-c++"
# One that finds no headers of C++.
printf '#!/bin/sh\nexec c++ -nostdinc++ "$@"\n' >"$work/bare-c++"
chmod +x "$work/bare-c++"
refused 'a compiler without headers of C++' 'vorlix needs the headers of a C++17 library' \
    plain -DCMAKE_CXX_COMPILER="$work/bare-c++"

if command -v clang >/dev/null; then
    for target in s390x-linux-gnu armeb-linux-gnueabi mips-linux-gnu; do
        refused "target $target" 'vorlix is made for little-endian targets' plain \
            -DCMAKE_TRY_COMPILE_TARGET_TYPE=STATIC_LIBRARY -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
            -DCMAKE_C_COMPILER_TARGET=$target -DCMAKE_CXX_COMPILER_TARGET=$target
    done
else
    echo 'left out: clang is not installed, no big-endian target was tried'
fi

# The presets want a newer cmake than the build does.
mkdir -p "$work/old"
printf '#!/bin/sh\necho "cmake version 3.18.4"\n' >"$work/old/cmake"
chmod +x "$work/old/cmake"
refused 'an old cmake' 'cmake 3.21 or newer reads the presets; this one is 3.18.4' \
    env PATH="$work/old:$PATH" sh -c ". '$top/tools/lib.sh'; configure release"
tool_is_wanted()
{
    rights=
    [ "$(id -u)" != 0 ] || rights='setpriv --reuid 65534 --clear-groups'
    # shellcheck disable=SC2086  # a list of words
    $rights sh -c ". '$top/tools/lib.sh'; install_missing a-tool-that-is-nowhere=a-package-of-it"
}
refused 'no tool and no right to install it' 'missing packages: a-package-of-it' tool_is_wanted
exit "$failed"
