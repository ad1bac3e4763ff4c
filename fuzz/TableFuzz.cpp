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

#include <cerrno>
#include <cstring>
#include <iterator>
#include <memory>

namespace {

constexpr int kRooms[] = {0, 1, 3, 32};

// ---- readers, each with room for so many rows

template <class Row>
std::unique_ptr<Row[]> Rows(int room)
{
    return std::make_unique<Row[]>(static_cast<size_t>(room));
}

/// A listing of names. All entries are cleared, whatever the room.
template <bool (*list)(char (*)[16], int*)>
void ListNames(int room)
{
    const fuzz::Buffer names(size_t{32} * 16);
    auto* rows = reinterpret_cast<char(*)[16]>(names.Get());
    int count = room;
    if (!list(rows, &count)) return;
    HOLDS(count >= 0 && count <= room);
    for (int i = 0; i < count; ++i) HOLDS(strnlen(rows[i], 16) < 16);
}

/// A listing of records.
template <class Row, bool (*list)(Row*, int*)>
void ListRows(int room)
{
    auto rows = Rows<Row>(room);
    int count = room;
    if (list(rows.get(), &count)) HOLDS(count >= 0 && count <= room);
}

/// Both families in one record; the first entry says which.
template <uint8_t type>
void ListAllRoutes(int room)
{
    auto all = Rows<NetRouteTableInfo>(room + 1);
    all[0].type = type;
    int count = room;
    if (RouteGetAllInfo(all.get(), &count)) HOLDS(count >= 0 && count <= room);
}

std::string content;  // of the table

/// The name in front of a colon, of a line that need not have one.
void CutName()
{
    const fuzz::Buffer name(16);
    const char* line = content.c_str();
    HOLDS(!getNetIfName(line, name.Get(), 16) || (name.IsText() && strchr(line, ':') != nullptr));
    HOLDS(!getNetIfNameNoFilter(line, name.Get(), 4) || strlen(name.Get()) < 4);
}

void FindCard(int /*room*/)
{
    CutName();
    int none = 3;
    (void)GetNormalInterfaceInfo(nullptr, &none);
    HOLDS(none == 3 || none == 0);  // a table without cards has none
    NetDataStat state{};
    (void)Net_GetDataStat("eth0", &state);
    const char* name = "eth0";
    (void)CheckEthExist(&name, 1);
}

void FindRoute(int /*room*/)
{
    (void)Route_IsExistInSys("10.0.0.0", "0.0.0.0", "255.0.0.0", "eth0");
    HOLDS(!Route_IsExistInSys("x", "0.0.0.0", "255.0.0.0", "eth0"));
    HOLDS(!Route_IsExistInSys("10.0.0.0", "x", "255.0.0.0", "eth0"));
    HOLDS(!Route_IsExistInSys("10.0.0.0", "0.0.0.0", "x", "eth0"));
    char card[16] = {};
    HOLDS(!NetGetDefEth(card, sizeof(card)) || strnlen(card, sizeof(card)) < sizeof(card));
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
}

void FindNeighbour(int room)
{
    auto entries = Rows<NetARPEntry>(room);
    int count = room;
    if (arpGetARPStaticInfoByIP("10.0.0.1", entries.get(), &count)) {
        HOLDS(count >= 0 && count <= room);
    }
    const fuzz::Buffer ip(16);
    HOLDS(!Other_GetIPByMac("02:00:00:00:00:07", ip.Get()) || ip.IsText());
    const fuzz::Buffer mac(18);
    HOLDS(!Other_GetMacByIP("10.0.0.1", mac.Get()) || mac.IsText());
    HOLDS(!Other_GetMacByIP("10.0.0", mac.Get()));
}

void FindAddress6(int /*room*/)
{
    const fuzz::Buffer ip6(46);
    const fuzz::Buffer prefix(8);
    if (Net6_GetIPv6byName("eth0", ip6.Get(), 46, prefix.Get(), 8)) {
        HOLDS(ip6.IsText() && prefix.IsText());
    }
    (void)Net6_GetInterfaceIndex("eth0");
    (void)Net6_GetLinkLocalAddressIpv6("eth0", ip6.Get(), 46);
}

void FindWifi(int /*room*/)
{
    bool connected = false;
    (void)NetCardIsWifi("eth2", &connected);
}

// ---- tables

struct Table {
    const char* path;
    const char* usual;
};

constexpr Table kCards = {
    "/proc/net/dev", "Inter-|   Receive\n face |bytes\n  eth0: 1 2 3 4 5 6 7 8 9 10 11 12 13 14\n"};
constexpr Table kRoutes = {
    "/proc/net/route", "Iface\tDestination\neth0\t0000000A\t00000000\t0001\t0\t0\t0\t000000FF\n"};
constexpr Table kRoutes6 = {"/proc/net/ipv6_route", ""};
constexpr Table kAddresses6 = {"/proc/net/if_inet6",
                               "fe80000000000000020000fffe000001 02 40 20 80     eth0\n"};
constexpr Table kNeighbours = {"/proc/net/arp",
                               "IP address\n10.0.0.1 0x1 0x6 02:00:00:00:00:07 * eth0\n"};
constexpr Table kWireless = {"/proc/net/wireless", ""};

struct Reader {
    const Table* table;
    void (*read)(int room);
};

constexpr Reader kReaders[] = {
    {&kCards, ListNames<GetAllInterfaceInfo>},
    {&kCards, ListNames<GetBridgeInterfaceInfo>},
    {&kCards, ListNames<GetNbpInterfaceInfo>},
    {&kCards, ListNames<GetVnicInterfaceInfo>},
    {&kCards, ListRows<InterfaceInfo, GetNormalInterfaceInfo>},
    {&kCards, ListRows<NetInterfaceInfo, NetGetAllInterface>},
    {&kCards, FindCard},
    {&kRoutes, ListRows<IPv4Route, Route_GetIPv4Route>},
    {&kRoutes, ListAllRoutes<0>},
    {&kRoutes, FindRoute},
    {&kRoutes6, ListRows<IPv6Route, Route_GetIPv6Route>},
    {&kRoutes6, ListAllRoutes<1>},
    {&kAddresses6, FindAddress6},
    {&kNeighbours, ListNeighbours},
    {&kNeighbours, FindNeighbour},
    {&kWireless, FindWifi},
    {&kWireless, ListRows<NetInterfaceInfo, NetGetAllInterface>},
};
constexpr int kReaderCount = static_cast<int>(std::size(kReaders));

/// A table that could not be opened is opened by the next call.
void FoundAgain(const Reader& reader, int room)
{
    fuzz::RefuseToOpen("");
    reader.read(room);
    HOLDS(fuzz::HeldMutexes() == 0);
}

/// A caller's mistakes: each is refused. Asked once, by the empty input.
void RefusesMistakes()
{
    char text[18];
    char names[2][16];
    NetARPEntry entry{};
    IPv4Route row{};
    IPv6Route row6{};
    int count = 1;
    HOLDS(!Other_GetIPByMac(nullptr, text));
    HOLDS(!Other_GetIPByMac("02:00:00:00:00:07", nullptr));
    HOLDS(!Other_GetIPByMac("02", text));
    HOLDS(!Other_GetMacByIP(nullptr, text));
    HOLDS(!Other_GetMacByIP("10.0.0.1", nullptr));
    HOLDS(!arpGetAllStaticEntry(nullptr, &count));
    HOLDS(!arpGetAllStaticEntry(&entry, nullptr));
    HOLDS(!arpGetARPStaticInfoByIP(nullptr, &entry, &count));
    HOLDS(!arpGetARPStaticInfoByIP("10.0.0.1", nullptr, &count));
    HOLDS(!arpGetARPStaticInfoByIP("10.0.0.1", &entry, nullptr));
    HOLDS(!getNetIfName(nullptr, text, 16));
    HOLDS(!getNetIfName("eth0:", nullptr, 16));
    HOLDS(!getNetIfName("eth0:", text, 0));
    HOLDS(!GetAllInterfaceInfo(nullptr, &count));
    HOLDS(!GetAllInterfaceInfo(names, nullptr));
    HOLDS(!GetVnicInterfaceInfo(nullptr, &count));
    HOLDS(!GetVnicInterfaceInfo(names, nullptr));
    HOLDS(!GetNormalInterfaceInfo(nullptr, nullptr));
    HOLDS(!Route_GetIPv4Route(nullptr, &count));
    HOLDS(!Route_GetIPv4Route(&row, nullptr));
    HOLDS(!Route_GetIPv6Route(nullptr, &count));
    HOLDS(!Route_GetIPv6Route(&row6, nullptr));
    HOLDS(!Route_IsExistInSys(nullptr, "0.0.0.0", "255.0.0.0", "eth0"));
    HOLDS(!Route_IsExistInSys("10.0.0.0", nullptr, "255.0.0.0", "eth0"));
    HOLDS(!Route_IsExistInSys("10.0.0.0", "0.0.0.0", nullptr, "eth0"));
    HOLDS(!Route_IsExistInSys("10.0.0.0", "0.0.0.0", "255.0.0.0", nullptr));
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzz::Input input(data, size);
    const uint8_t choice = input.Byte();
    const Reader& reader = kReaders[choice % kReaderCount];
    const int trouble = choice / kReaderCount;  // from 10 on: no table, or a read that fails
    const uint8_t rooms = input.Byte();
    const int room = kRooms[rooms % 4];
    content = input.Rest();
    fuzz::FreshWorld();
    if (size == 0) RefusesMistakes();
    for (const Table* table :
         {&kCards, &kRoutes, &kRoutes6, &kAddresses6, &kNeighbours, &kWireless}) {
        fuzz::Put(table->path, table->usual);
    }
    fuzz::Put(reader.table->path, content);
    if (rooms >= 240) fuzz::Put("/mnt/mtd/Config/poeMode.conf", "eth0 = 2\n");
    if (trouble == 10) fuzz::RefuseToOpen(reader.table->path);
    if (trouble > 10) fuzz::FailRead((trouble - 11) / 2, trouble % 2 == 0 ? EIO : EINTR);
    reader.read(room);
    if (trouble == 10) FoundAgain(reader, room);
    HOLDS(fuzz::HeldMutexes() == 0);
    HOLDS(fuzz::HeapBlocks() == 0);
    return 0;
}
