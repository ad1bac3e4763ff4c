#!/bin/sh
# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# What cannot be built says so in one line, before anything is compiled.
# shellcheck disable=SC2317  # functions that are called by name
# shellcheck source=tests/install/lib.sh
. "$(dirname "$0")/lib.sh"

# refused NAME LINE COMMAND...: fails, and says the line, a basic expression, from its first word to its last
refused()
{
    name=$1
    line=$2
    shift 2
    rm -rf "$work/refused"
    fails "$name" "$@"
    grep -q "^ *$line\$" "$output" && return 0
    printf '%s: no line\n  %s\nin\n' "$name" "$line"
    tail -n 30 "$output"
    failed=1
}

plain() { cmake -S "$top" -B "$work/refused" "$@"; }

refused 'another system' 'vorlix is made for Linux; this build is for FreeBSD' \
    plain -DCMAKE_SYSTEM_NAME=FreeBSD
refused 'rings that are wanted, without GoogleTest' 'VORLIX_TESTS is ON and there is no GoogleTest (Debian: libgtest-dev)' \
    plain -DVORLIX_TESTS=ON -DCMAKE_DISABLE_FIND_PACKAGE_GTest=ON

# A compiler of before C++17, as far as CMake can tell.
printf '#!/bin/sh\nexec c++ -U__GNUC__ -D__GNUC__=4 -U__GNUC_MINOR__ -D__GNUC_MINOR__=9 "$@"\n' >"$work/old-c++"
chmod +x "$work/old-c++"
refused 'a compiler without C++17' \
    "vorlix is written in C++17, which $work/old-c++ (GNU 4[0-9.]*) does not know" plain -DCMAKE_CXX_COMPILER="$work/old-c++"
# One that finds no headers of C++.
printf '#!/bin/sh\nexec c++ -nostdinc++ "$@"\n' >"$work/bare-c++"
chmod +x "$work/bare-c++"
refused 'a compiler without headers of C++' \
    "vorlix needs the headers of a C++17 library (not the library), which $work/bare-c++ (GNU [0-9.]*) lacks" \
    plain -DCMAKE_CXX_COMPILER="$work/bare-c++"

if command -v clang >/dev/null; then
    for target in s390x-linux-gnu armeb-linux-gnueabi mips-linux-gnu; do
        refused "target $target" \
            "vorlix is made for little-endian targets; $(command -v clang++) (Clang [0-9.]*) builds for a big-endian one" plain \
            -DCMAKE_TRY_COMPILE_TARGET_TYPE=STATIC_LIBRARY -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
            -DCMAKE_C_COMPILER_TARGET=$target -DCMAKE_CXX_COMPILER_TARGET=$target
    done
else
    echo 'left out: clang is not installed, no big-endian target was tried'
fi
refused 'a target that no compiler here knows' 'nowhere-linux-gnu  *nowhere-linux-gnu-g++ is not installed (Debian: g++-nowhere-linux-gnu)' \
    "$top/tools/cross-build" nowhere-linux-gnu

# The presets want a newer cmake than the build does.
mkdir -p "$work/old"
printf '#!/bin/sh\necho "cmake version 3.18.4"\n' >"$work/old/cmake"
chmod +x "$work/old/cmake"
refused 'an old cmake' 'cmake 3.21 or newer reads the presets; this one is 3.18.4 (without presets 3.16 builds the product)' \
    env PATH="$work/old:$PATH" sh -c ". '$top/tools/lib.sh'; configure release"
# Who has no rights may not look into root's home, should this tree lie there: the words come as input.
tool_is_wanted()
{
    rights=
    [ "$(id -u)" != 0 ] || rights='setpriv --reuid 65534 --clear-groups'
    # shellcheck disable=SC2086  # a list of words
    (cat "$top/tools/lib.sh" && echo 'install_missing a-tool-that-is-nowhere=a-package-of-it') | $rights sh
}
refused 'no tool and no right to install it' 'missing packages: a-package-of-it (run as root, or install them first)' tool_is_wanted
exit "$failed"
