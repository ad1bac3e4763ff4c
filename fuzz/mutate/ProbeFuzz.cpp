// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Frames and datagrams that are nearly the answer that a probe waits for.

#include "mutate/Mutate.h"

#include "world/World.h"

#include <algorithm>

namespace {

using Bytes = std::string;

Bytes Frame(fuzz::Random& random)
{
    const Bytes ours("\x02\x00\x00\x0a\x0b\x0c", 6);
    const Bytes macs[] = {ours, Bytes(6, '\0'), Bytes("\x02\x00\x00\x0a\x0b\x0d", 6)};
    const Bytes addresses[] = {Bytes("\x0a\x01\x02\x03", 4), Bytes("\x0a\x01\x02\x04", 4)};
    const auto mac = [&] { return macs[fuzz::Below(random, 3)]; };
    const auto address = [&] { return addresses[fuzz::Below(random, 2)]; };
    const Bytes operation("\x00\x02", 2);
    return mac() + mac() + Bytes("\x08\x06\x00\x01\x08\x00\x06\x04", 8) + operation + mac() +
           address() + mac() + address();
}

Bytes Answer(fuzz::Random& random)
{
    const Bytes senders[] = {Bytes("\x0a\x01\x02\x04", 4), Bytes("\x0a\x01\x02\x05", 4)};
    const size_t words = fuzz::OneIn(random, 3) ? fuzz::Below(random, 16) : 5;
    Bytes bytes(4 * words, '\0');
    bytes += Bytes(40, '\0');
    bytes[0] = static_cast<char>(0x40U | words);
    bytes[4 * words] = static_cast<char>(fuzz::OneIn(random, 4) ? 8 : 0);
    bytes[4 * words + 4] = static_cast<char>(fuzz::kProcess & 0xff);
    bytes[4 * words + 5] = static_cast<char>(fuzz::kProcess >> 8);
    return senders[fuzz::Below(random, 2)] + bytes;
}

}  // namespace

size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t room, unsigned seed)
{
    fuzz::Random random(seed + 1);
    if (fuzz::OneIn(random, 2)) return fuzz::ChangeBytes(data, size, room);

    const auto kind = static_cast<uint8_t>(fuzz::Below(random, 8));
    Bytes text(1, static_cast<char>(kind));
    if ((kind & 2U) == 0) {
        text += fuzz::Changed(Frame(random), 64);
        return fuzz::Store({data, size, room}, 0, text);
    }
    const size_t packets = 1 + fuzz::Below(random, 5);
    text += static_cast<char>(packets);
    for (size_t i = 0; i < packets; ++i) {
        Bytes packet = (kind & 4U) != 0 ? Frame(random) : Answer(random);
        if (fuzz::OneIn(random, 4)) packet.resize(fuzz::Below(random, packet.size() + 1));
        if (fuzz::OneIn(random, 4)) packet = fuzz::Changed(packet, 80);
        packet.resize(std::min<size_t>(packet.size(), 80));
        text += static_cast<char>(packet.size()) + packet;
    }
    return fuzz::Store({data, size, room}, 0, text);
}
