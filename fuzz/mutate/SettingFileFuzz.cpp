// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "mutate/Mutate.h"

#include <algorithm>

size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t room, unsigned seed)
{
    // The key, and a value behind its length.
    static const fuzz::LineFormat format = {[](const uint8_t* bytes, size_t count) {
                                                return count < 2
                                                           ? count
                                                           : 2 + std::min<size_t>(bytes[1], 60);
                                            },
                                            fuzz::kSettingLines};
    return fuzz::ChangeLines({data, size, room}, seed, format);
}
