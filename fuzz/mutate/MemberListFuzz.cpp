// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "mutate/Mutate.h"

#include <algorithm>

size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t room, unsigned seed)
{
    // What is done, and as many names behind their lengths as the second byte says.
    static const fuzz::LineFormat format = {[](const uint8_t* bytes, size_t count) {
                                                size_t head = 2;
                                                for (int names = count < 2 ? 0 : 1 + bytes[1] % 8;
                                                     names > 0 && head < count; --names) {
                                                    head += 1 + std::min<size_t>(bytes[head], 14);
                                                }
                                                return head;
                                            },
                                            fuzz::kSettingLines};
    return fuzz::ChangeLines({data, size, room}, seed, format);
}
