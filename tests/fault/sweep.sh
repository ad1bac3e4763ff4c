#!/bin/sh
# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# Tries every point of the fault ring, where the ordinary run takes a sample.
#
#     tests/fault/sweep.sh [KillTest|FailTest|ConcurrentTest]...
set -u
cd "$(dirname "$0")/../.." || exit 1

export VORLIX_FAULT_STRIDE=1
[ $# -gt 0 ] || set -- KillTest FailTest ConcurrentTest
cmake --preset debug && cmake --build build/debug || exit 1

failed=0
for program in "$@"; do
    # One process a test: each wants namespaces of its own.
    for test in $("build/debug/tests/fault/$program" --gtest_list_tests | awk '
        /^[^ ]/ { suite = $1 } /^ / { print suite $1 }'); do
        "build/debug/tests/fault/$program" --gtest_brief=1 --gtest_filter="$test" || failed=1
    done
done
exit $failed
