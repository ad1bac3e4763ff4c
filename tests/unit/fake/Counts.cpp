// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Where it is counted what the tests reach: many of them run an operation in a child, and one that
// ends by `_exit` would leave its counts out.

#include "fake/Calls.h"

extern "C" {

void WriteCounts();
[[noreturn]] void __real__exit(int status);

[[noreturn]] void __wrap__exit(int status)
{
    const fake::OwnCalls writing;
    WriteCounts();
    __real__exit(status);
}

}  // extern "C"
