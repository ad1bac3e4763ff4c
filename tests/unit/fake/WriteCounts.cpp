// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Beside the product where it is counted what the tests reach: a shared library has counts of its
// own.

extern "C" {

void __gcov_dump();
void WriteCounts();

void WriteCounts()
{
    __gcov_dump();
}

}  // extern "C"
