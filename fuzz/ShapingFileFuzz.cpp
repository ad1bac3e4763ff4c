// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// A card's file of bandwidth limits of any content: limits stay within their records, and one that
// is added is listed behind what was listed before.

#include "Fuzz.h"

#include "TrafficControl.h"

#include <cstring>
#include <memory>

namespace {

constexpr int kRoom = 64;

struct Listing {
    int count = 0;
    std::unique_ptr<NetTc[]> limits;  // exactly as many as asked for
};

Listing List(int room)
{
    Listing listing;
    listing.count = room;
    listing.limits = std::make_unique<NetTc[]>(static_cast<size_t>(room));
    HOLDS(TC_GetFromConfig("eth0", listing.limits.get(), &listing.count));
    HOLDS(listing.count >= 0 && listing.count <= room);
    for (int i = 0; i < listing.count; ++i) {
        const char* address = listing.limits[static_cast<size_t>(i)].ipAddr;
        HOLDS(strnlen(address, sizeof(NetTc::ipAddr)) < sizeof(NetTc::ipAddr));
        HOLDS(strchr(address, ',') == nullptr);
    }
    return listing;
}

/// A caller's mistakes: each is refused. Asked once, by the empty input.
void RefusesMistakes()
{
    NetTc limit{};
    int count = 1;
    HOLDS(!TC_GetFromConfig(nullptr, &limit, &count));
    HOLDS(!TC_GetFromConfig("eth0", nullptr, &count));
    HOLDS(!TC_GetFromConfig("eth0", &limit, nullptr));
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzz::Input input(data, size);
    NetTc added{};
    const std::string address = "1" + input.Text(46, "0123456789.:abcdef");
    memcpy(added.ipAddr, address.c_str(), address.size());
    added.bandWidth = input.Byte() * 390001 - 100;  // eight characters, as wide as the column
    added.ipType = input.Byte();
    const std::string content = input.Rest();
    fuzz::FreshWorld();
    if (size == 0) RefusesMistakes();
    if (size > 0 && data[0] >= 250) {  // no file yet
        Listing none;
        none.limits = std::make_unique<NetTc[]>(1);
        none.count = 1;
        HOLDS(!TC_GetFromConfig("eth0", none.limits.get(), &none.count));
        return 0;
    }
    fuzz::Put("/mnt/mtd/Config/nettc_eth0", content);

    (void)List(1);
    const Listing before = List(kRoom);
    HOLDS(TC_SaveToConfig("eth0", added));
    const bool ended = content.empty() || content.back() == '\n';
    if (ended && before.count < kRoom) {
        const Listing after = List(kRoom);
        HOLDS(after.count == before.count + 1);
        const NetTc& last = after.limits[static_cast<size_t>(before.count)];
        HOLDS(last.ipAddr == address);
        HOLDS(last.bandWidth == added.bandWidth && last.ipType == added.ipType);
        HOLDS(memcmp(after.limits.get(), before.limits.get(),
                     sizeof(NetTc) * static_cast<size_t>(before.count)) == 0);
    }
    HOLDS(fuzz::OpenHandles() == 0);
    HOLDS(fuzz::HeapBlocks() == 0);
    return 0;
}
