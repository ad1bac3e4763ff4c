// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "mutate/Mutate.h"

size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t room, unsigned seed)
{
    // The part that is looked at, and two addresses.
    static const fuzz::LineFormat format = {
        [](const uint8_t* /*bytes*/, size_t /*count*/) { return size_t{9}; }, fuzz::kSettingLines};
    return fuzz::ChangeLines({data, size, room}, seed, format);
}
