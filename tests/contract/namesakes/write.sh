#!/bin/sh
# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# Writes an application's own functions: one for each name that libvorlix.so exports, but for those that
# the application's object file asks the library for, and the board's CMOS, which is there to be replaced.
# Each ends the process.
#
# usage: write.sh NM EXPORTS.LIST OBJECT_FILE >NAMESAKES.C
set -eu

nm=$1
exports=$2
object=$3

cat <<'END'
#include <stdio.h>
#include <unistd.h>

static void Called(const char* name)
{
    fprintf(stderr, "the library has called the application's %s\n", name);
    _exit(99);
}

END
asked=$("$nm" -u "$object" | awk '{ print $NF }')
sed -n '/^[A-Za-z]/p' "$exports" | grep -v '^CMOS' | grep -v -x -F "$asked" |
    while read -r name; do
        printf 'void %s(void);\nvoid %s(void) { Called("%s"); }\n' "$name" "$name" "$name"
    done
