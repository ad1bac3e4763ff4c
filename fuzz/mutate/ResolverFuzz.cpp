// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "mutate/Mutate.h"

#include <algorithm>

size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t room, unsigned seed)
{
    // Two addresses, and the other file behind its length.
    static const fuzz::LineFormat format = {
        [](const uint8_t* bytes, size_t count) {
            return count < 9 ? count : 9 + std::min<size_t>(bytes[8], 200);
        },
        {"nameserver 8.8.8.8", "nameserver 1.1.1.1 ", "nameserver  2001:4860:4860::8888",
         "nameserver ::1", "nameserver fe80::1%eth0", "nameserver ::ffff:1.2.3.4", "nameserver",
         "nameserver x", "nameserver 1.2.3", "nameserver 256.1.1.1", ": nameserver 1.1.1.1",
         "search lan", "# nameserver 9.9.9.9", "options timeout:1", "nameserver 8.8.8.8\\r", ""}};
    return fuzz::ChangeLines({data, size, room}, seed, format);
}
