// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "mutate/Mutate.h"

#include <algorithm>

size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t room, unsigned seed)
{
    // The name of a port behind its length.
    static const fuzz::LineFormat format = {
        [](const uint8_t* bytes, size_t count) {
            return count < 1 ? count : 1 + std::min<size_t>(bytes[0], 40);
        },
        {"eth0 eth1", "eth0 eth1 eth2 eth3 eth4 eth5", "eth0123456789abcdef eth1", "  eth0\\teth1",
         "active-backup 1", "balance-rr 0", "balance-xor 2", "broadcast 3", "802.3ad 4",
         "balance-tlb 5", "balance-alb 6", "balance-x 7", "layer2 0", "layer3+4 1", "layer2+3 2",
         "100", "0", "eth0", ""}};
    return fuzz::ChangeLines({data, size, room}, seed, format);
}
