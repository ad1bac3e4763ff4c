# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# Shared by the scripts of this folder: sourced with the build folder as the only argument.
# shellcheck shell=sh
# shellcheck disable=SC2034  # what the others use
set -eu

here=$(cd "$(dirname "$0")" && pwd)
top=$(cd "$here/../.." && pwd)
build=$1
work=$build/tests/install
tree=$work/tree # where tree.sh installs
version=$(sed -n 's/^project(vorlix VERSION \([0-9.]*\) .*/\1/p' "$top/CMakeLists.txt")
output=$work/$(basename "$0").log # of the last command
failed=0
mkdir -p "$work"
export PATH="$PATH:/usr/sbin:/sbin"

# is NAME GOT WANTED
is()
{
    [ "$2" = "$3" ] && return 0
    printf '%s:\n  is     %s\n  wanted %s\n' "$1" "$2" "$3"
    failed=1
}

# succeeds NAME COMMAND...: its output is shown when it fails
succeeds()
{
    name=$1
    shift
    "$@" >"$output" 2>&1 && return 0
    echo "$name: failed"
    tail -n 30 "$output"
    failed=1
}

# fails NAME COMMAND...
fails()
{
    name=$1
    shift
    "$@" >"$output" 2>&1 || return 0
    echo "$name: should have failed"
    failed=1
}

# holds NAME FILE TEXT: a line of the file has the text
holds()
{
    grep -qF -- "$3" "$2" && return 0
    printf '%s: no line with\n  %s\nin\n' "$1" "$3"
    tail -n 30 "$2"
    failed=1
}

# skip WHY: what was tried until then counts
skip()
{
    [ "$failed" = 0 ] || exit 1
    echo "skipped: $1"
    exit 77
}

# relations_of PACKAGE.deb...: what they say of themselves; the version of libc is the machine's
relations_of()
{
    for package in "$@"; do
        dpkg-deb -f "$package" Package Version Section Depends Recommends Suggests |
            sed 's/libc6\(:[a-z0-9]*\)\{0,1\} (>= [^)]*)/libc6/'
        echo
    done
}
