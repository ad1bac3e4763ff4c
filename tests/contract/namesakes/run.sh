#!/bin/sh
# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# The examples on a device of their own, as applications that have functions of the library's names.
#
# usage: run.sh NM FOLDER_OF_THE_EXAMPLES
set -eu

top=$(cd "$(dirname "$0")/../../.." && pwd)

# The library could find them: all but the few that an example asks for, and the board's CMOS.
for example in interfaces status mixed; do
    found=$("$1" -D --defined-only "$2/$example" | awk '{ print $3 }' |
        grep -c -x -F -f "$top/packaging/exports.list")
    [ "$found" -gt 500 ] || { echo "$example has $found of the library's names"; exit 1; }
done
exec "$top/tests/netns/enter.sh" "$top/tests/install/device.sh" "$2"
