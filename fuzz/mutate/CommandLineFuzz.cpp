// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "mutate/Mutate.h"

size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t room, unsigned seed)
{
    // Nothing but the words, one a line.
    static const fuzz::LineFormat format = {
        [](const uint8_t* /*bytes*/, size_t /*count*/) { return size_t{0}; },
        {"eth0",      "eth1",      "eth9",     "bond0",         "br0",          "lo",
         "setdef",    "10.0.0.9",  "10.0.0.1", "255.255.255.0", "0.0.0.0",      "255.0.255.0",
         "256.1.1.1", "10.1",      "1.2.3.4 ", "2001:db8::1",   "192.168.1.20", "192.168.1.1",
         "-h",        "eth0,eth1", ""}};
    return fuzz::ChangeLines({data, size, room}, seed, format);
}
