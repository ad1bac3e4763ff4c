// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The kernel's tables under /proc/net, one of them of any content: readers keep to the rows and the
// columns of their callers.

#include "Fuzz.h"

#include "Base.h"
#include "CommonApi.h"
#include "Network.h"
#include "Network6.h"
#include "Other.h"
#include "Route.h"

#include <cstring>
#include <memory>

namespace {

constexpr int kRooms[] = {0, 1, 3, 32};

using Lister = bool (*)(char (*)[16], int*);
constexpr Lister kListers[] = {GetAllInterfaceInfo, GetBridgeInterfaceInfo, GetNbpInterfaceInfo,
                               GetVnicInterfaceInfo};

template <class Row>
std::unique_ptr<Row[]> Rows(int room)
{
    return std::make_unique<Row[]>(static_cast<size_t>(room));
}

void ListNames(int room)
{
    for (const Lister list : kListers) {
        const fuzz::Buffer names(size_t{32} * 16);  // all are cleared, whatever the room
        auto* rows = reinterpret_cast<char(*)[16]>(names.Get());
        int count = room;
        if (!list(rows, &count)) continue;
        HOLDS(count >= 0 && count <= room);
        for (int i = 0; i < count; ++i) HOLDS(strnlen(rows[i], 16) < 16);
    }
    auto cards = Rows<InterfaceInfo>(room);
    int count = room;
    if (GetNormalInterfaceInfo(cards.get(), &count)) HOLDS(count >= 0 && count <= room);
    auto list = Rows<NetInterfaceInfo>(room);
    count = room;
    if (NetGetAllInterface(list.get(), &count)) HOLDS(count >= 0 && count <= room);
}

void ListRoutes(int room)
{
    auto routes = Rows<IPv4Route>(room);
    int count = room;
    if (Route_GetIPv4Route(routes.get(), &count)) HOLDS(count >= 0 && count <= room);
    (void)Route_IsExistInSys("10.0.0.0", "0.0.0.0", "255.0.0.0", "eth0");
    for (const uint8_t type : {0, 1}) {
        auto all = Rows<NetRouteTableInfo>(room + 1);
        all[0].type = type;
        count = room;
        if (RouteGetAllInfo(all.get(), &count)) HOLDS(count >= 0 && count <= room);
    }
}

void ListNeighbours(int room)
{
    auto entries = Rows<NetARPEntry>(room);
    int count = room;
    if (arpGetAllStaticEntry(entries.get(), &count)) HOLDS(count >= 0 && count <= room);
    for (int i = 0; room > 0 && i < count && i < room; ++i) {
        const NetARPEntry& entry = entries[static_cast<size_t>(i)];
        HOLDS(strnlen(entry.dev, sizeof(entry.dev)) < sizeof(entry.dev));
        HOLDS(strnlen(entry.mac, sizeof(entry.mac)) < sizeof(entry.mac));
    }
    count = room;
    if (arpGetARPStaticInfoByIP("10.0.0.1", entries.get(), &count)) {
        HOLDS(count >= 0 && count <= room);
    }
}

void ListRoutes6(int room)
{
    auto routes = Rows<IPv6Route>(room);
    int count = room;
    if (Route_GetIPv6Route(routes.get(), &count)) HOLDS(count >= 0 && count <= room);
}

void AskForCard(int room)
{
    ListNames(room);
    NetDataStat state{};
    (void)Net_GetDataStat("eth0", &state);
    const char* name = "eth0";
    (void)CheckEthExist(&name, 1);
}

void AskForNeighbour(int room)
{
    ListNeighbours(room);
    const fuzz::Buffer ip(16);
    HOLDS(!Other_GetIPByMac("02:00:00:00:00:07", ip.Get()) || ip.IsText());
    const fuzz::Buffer mac(18);
    HOLDS(!Other_GetMacByIP("10.0.0.1", mac.Get()) || mac.IsText());
}

void AskForAddress6(int /*room*/)
{
    const fuzz::Buffer ip6(46);
    const fuzz::Buffer prefix(8);
    if (Net6_GetIPv6byName("eth0", ip6.Get(), 46, prefix.Get(), 8)) {
        HOLDS(ip6.IsText() && prefix.IsText());
    }
    (void)Net6_GetInterfaceIndex("eth0");
    (void)Net6_GetLinkLocalAddressIpv6("eth0", ip6.Get(), 46);
}

void AskForWifi(int room)
{
    bool connected = false;
    (void)NetCardIsWifi("eth2", &connected);
    auto list = Rows<NetInterfaceInfo>(room);
    int count = room;
    if (NetGetAllInterface(list.get(), &count)) HOLDS(count >= 0 && count <= room);
}

// ---- tables

struct Table {
    const char* path;
    const char* usual;
    void (*readers)(int room);
};

constexpr Table kTables[] = {
    {"/proc/net/dev", "Inter-|   Receive\n face |bytes\n  eth0: 1 2 3 4 5 6 7 8 9 10 11 12 13 14\n",
     AskForCard},
    {"/proc/net/route", "Iface\tDestination\neth0\t0000000A\t00000000\t0001\t0\t0\t0\t000000FF\n",
     ListRoutes},
    {"/proc/net/ipv6_route", "", ListRoutes6},
    {"/proc/net/if_inet6", "fe80000000000000020000fffe000001 02 40 20 80     eth0\n",
     AskForAddress6},
    {"/proc/net/arp", "IP address\n10.0.0.1 0x1 0x6 02:00:00:00:00:07 * eth0\n", AskForNeighbour},
    {"/proc/net/wireless", "", AskForWifi},
};

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzz::Input input(data, size);
    const Table* chosen = &kTables[input.Below(6)];
    const int room = kRooms[input.Below(4)];
    const std::string content = input.Rest();
    fuzz::FreshWorld();
    for (const Table& table : kTables) {
        fuzz::Put(table.path, &table == chosen ? content : table.usual);
    }
    chosen->readers(room);
    return 0;
}
