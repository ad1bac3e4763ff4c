// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Answers of whole messages, whose lengths agree with what is there, or nearly.

#include "mutate/Mutate.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <linux/netlink.h>
#include <linux/rtnetlink.h>

namespace {

using Bytes = std::string;

constexpr size_t kLongest = 255;

Bytes Message(fuzz::Random& random)
{
    constexpr uint16_t kTypes[] = {NLMSG_ERROR, NLMSG_ERROR,   NLMSG_ERROR, NLMSG_NOOP,
                                   NLMSG_DONE,  NLMSG_OVERRUN, RTM_NEWLINK, RTM_NEWROUTE};
    constexpr int32_t kErrors[] = {0, -EEXIST, -EPERM, -ENODEV, EINVAL, INT32_MIN, 1 << 30};
    constexpr size_t kPayloads[] = {20, 20, 20, 20, 0, 3, 4, 16, 19, 21, 24, 40};
    nlmsghdr header{};
    header.nlmsg_type = kTypes[fuzz::Below(random, std::size(kTypes))];
    const size_t payload = kPayloads[fuzz::Below(random, std::size(kPayloads))];
    header.nlmsg_len = static_cast<uint32_t>(sizeof(header) + payload);
    if (fuzz::OneIn(random, 6)) {
        constexpr uint32_t kOdd[] = {0, 15, 16, 17, 0x7fffffff, 0x80000000, 0xffffffff};
        header.nlmsg_len = fuzz::OneIn(random, 2)
                               ? header.nlmsg_len + static_cast<uint32_t>(random() % 9) - 4
                               : kOdd[fuzz::Below(random, std::size(kOdd))];
    }
    Bytes bytes(reinterpret_cast<const char*>(&header), sizeof(header));
    Bytes body(payload, '\0');
    const int32_t error = kErrors[fuzz::Below(random, std::size(kErrors))];
    memcpy(body.data(), &error, std::min(sizeof(error), payload));
    bytes += body;
    bytes.resize((bytes.size() + 3) & ~size_t{3});
    return bytes;
}

struct Datagram {
    uint8_t flags;
    Bytes bytes;
};

std::vector<Datagram> Taken(const uint8_t* data, size_t size)
{
    std::vector<Datagram> datagrams;
    for (size_t at = 0; at + 2 <= size;) {
        const size_t length = std::min<size_t>(data[at + 1], size - at - 2);
        if (length == 0) break;
        datagrams.push_back(
            {data[at], Bytes(reinterpret_cast<const char*>(data) + at + 2, length)});
        at += 2 + length;
    }
    return datagrams;
}

}  // namespace

size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t room, unsigned seed)
{
    fuzz::Random random(seed + 1);
    if (fuzz::OneIn(random, 4)) return fuzz::ChangeBytes(data, size, room);

    std::vector<Datagram> datagrams = Taken(data, size);
    const size_t place = fuzz::Below(random, datagrams.size() + 1);
    if (place == datagrams.size() || fuzz::OneIn(random, 3)) {
        const auto flags = static_cast<uint8_t>(fuzz::OneIn(random, 2) ? random() >> 8U : 0);
        datagrams.insert(datagrams.begin() + static_cast<ptrdiff_t>(place),
                         {flags, Message(random)});
    } else {
        Bytes& bytes = datagrams[place].bytes;
        switch (fuzz::Below(random, 4)) {
        case 0: bytes += Message(random); break;
        case 1: bytes = Message(random) + bytes; break;
        case 2: bytes = fuzz::Changed(bytes, kLongest); break;
        default: bytes.resize(fuzz::Below(random, bytes.size() + 1)); break;
        }
    }
    Bytes text;
    for (const Datagram& datagram : datagrams) {
        const size_t length = std::min(datagram.bytes.size(), kLongest);
        if (length == 0 && (datagram.flags & 8U) == 0) continue;
        text += static_cast<char>(datagram.flags);
        text += static_cast<char>(length);
        text.append(datagram.bytes, 0, length);
    }
    return fuzz::Store({data, size, room}, 0, text);
}
