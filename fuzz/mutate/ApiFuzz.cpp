// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Rows of operations: bytes are all that there is to change.

#include "mutate/Mutate.h"

size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t room, unsigned seed)
{
    fuzz::Random random(seed + 1);
    constexpr size_t kLongest = 128;
    size = fuzz::ChangeBytes(data, size, room < kLongest ? room : kLongest);
    if (size > 2 && fuzz::OneIn(random, 4)) data[0] = static_cast<uint8_t>(8 + size % 4);
    return size;
}
