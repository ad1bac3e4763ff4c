// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "mutate/Mutate.h"

size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t room, unsigned seed)
{
    // Nothing but the text.
    static const fuzz::LineFormat format = {
        [](const uint8_t* /*bytes*/, size_t /*count*/) { return size_t{0}; },
        {"192.168.1.20",
         "10.1",
         "0x7f.1",
         "010.1.2.3",
         "1.2.3.4 x",
         "255.255.255.255",
         "2001:db8::1",
         "::",
         "::1",
         "fe80::1%eth0",
         "::ffff:1.2.3.4",
         "1:2:3:4:5:6:7:8",
         "1::8",
         "02:00:00:0a:0b:0c",
         "2:0:0:a:b:c",
         "02:00:00:00:00:07:08",
         "ff:ff:ff:ff:ff:ff",
         "02-00-00-00-00-07",
         "02:00:00:00:00",
         ""}};
    return fuzz::ChangeLines({data, size, room}, seed, format);
}
