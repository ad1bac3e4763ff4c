// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "mutate/Mutate.h"

#include <algorithm>

size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t room, unsigned seed)
{
    // An address behind its length, a bandwidth and a kind.
    static const fuzz::LineFormat format = {
        [](const uint8_t* bytes, size_t count) {
            return count < 1 ? count : 3 + std::min<size_t>(bytes[0], 46);
        },
        {"dev            eth0, ip                                        10.0.0.1, type        4, "
         "bw      "
         "  8, flag        0,",
         "dev            eth0, ip                                     2001:db8::1, type        6, "
         "bw      "
         "100, flag        1,",
         "dev            eth0, ip                                                , type        0, "
         "bw      "
         "  0, flag        0,",
         "dev eth0, ip 10.0.0.9, type 4, bw 5, flag 0",
         "dev eth1, ip 10.0.0.9, type -4, bw 99999999999, flag x,", "dev eth0 ip 10.0.0.1 type 4",
         "dev , ip , type , bw , flag ,", ""}};
    return fuzz::ChangeLines({data, size, room}, seed, format);
}
