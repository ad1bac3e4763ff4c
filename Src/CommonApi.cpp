// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Contents:
//   Routes: routes by text or by record, the default card and its route
//   Virtual links: IPVLAN and MACVLAN links on a card
//   IPv4 operations: address, gateway, hardware address, link of one card
//   IPv6 operations: address and gateway of one card
//   Bonds: building and ending a bond, and putting a card's saved settings back
//   Bridges: building and ending a bridge, its edge ports and spanning tree
//   Interface list and MTU: what knows cards, bonds and bridges alike
//   Reachability probes: who else uses a card's address, and whether a host answers
//   Neighbours: addresses and hardware addresses of the kernel's neighbour table
//   Traffic shaping: limits on what a card sends to single peers
//   Port filtering: ports of one address or of all addresses, blocked and freed
//   Switch and PoE: ports of the switch chip, power on its ports
//
// Each chapter has its own helpers directly above its operations and calls only operations of the
// chapters before it. What several chapters need stands in front of them all.

#include "CommonApi.h"

#include "Arp_Ping.h"
#include "Backup.h"
#include "Base.h"
#include "Bond.h"
#include "Bridge.h"
#include "Config.h"
#include "Network.h"
#include "Network6.h"
#include "Other.h"
#include "PortControl.h"
#include "Route.h"
#include "Support/Handles.h"
#include "Support/Log.h"
#include "Support/NameList.h"
#include "Support/Text.h"
#include "Switch.h"
#include "TrafficControl.h"
#include "VirtInter.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>

#include <arpa/inet.h>
#include <linux/ethtool.h>
#include <netinet/in.h>

using namespace vorlix;

// ==== Shared ====

namespace {

// The default destination and its mask, all peers, all addresses.
constexpr char kAnyIPv4[] = "0.0.0.0";
constexpr char kAnyIPv6[] = "0:0:0::0";  // default destination, and a prefix length of 0 to `atoi`

constexpr size_t kIPv6TextSize = 48;
constexpr uint32_t kLongestPrefix = 128;
constexpr int kDefaultMtu = 1500;  // in the place of one that is refused

/// How the settings of a card tell that it is a member.
struct Membership {
    bool (*saveIsMember)(const char* card, bool isMember);
    bool (*saveMaster)(const char* card, const char* master);
    NetWorkMode mode;
};

/// Saves a card as a member of a bond or bridge, or of none for an empty name.
void SaveMaster(const Membership& membership, const char* card, const char* master)
{
    const bool isMember = master[0] != '\0';
    (void)membership.saveIsMember(card, isMember);
    (void)membership.saveMaster(card, master);
    (void)SetWorkModeByConfig(card, isMember ? membership.mode : netModeMultiple);
}

}  // namespace

// ==== Routes ====

namespace {

constexpr int kRouteRows = 16;
constexpr int kDefaultCardRows = 10;
constexpr uint8_t kIPv4Record = 0;
constexpr uint8_t kIPv6Record = 1;

std::atomic<int> s_disable{0};  // set once, never cleared

using ChangeRoute = bool (*)(const char* dst, const char* gw, const char* mask, const char* viaDev);

bool SavedGateway6(const char* name, char* gateway)
{
    return GetGatewayv6ByConfig(name, gateway, kIPv6TextSize);
}

/// What tells the two families apart.
template <class Row>
struct RouteFamily {
    bool (*read)(Row* rows, int* num);
    ChangeRoute remove;
    ChangeRoute addDefault;
    ChangeRoute removeUnlisted;  // a default route, when the table cannot be read
    bool (*savedGateway)(const char* name, char* gateway);
    const char* any;
    const char* noMemory;
    const char* noTable;
};
constexpr RouteFamily<IPv4Route> kIPv4 = {Route_GetIPv4Route,
                                          Route_DelIPv4Route,
                                          RouteAddIPv4,
                                          Route_DelIPv4Route,
                                          GetGatewayByConfig,
                                          kAnyIPv4,
                                          "malloc struct IPv4Route failed",
                                          "get IPv4 RouteTable fail!"};
/// An IPv6 default route is added whether it is there or not. Without a table nothing is deleted:
/// what is tried then is an IPv4 addition, which fails at the destination.
constexpr RouteFamily<IPv6Route> kIPv6 = {Route_GetIPv6Route,
                                          Route_DelIPv6Route,
                                          Route_AddIPv6Route,
                                          Route_AddIPv4Route,
                                          SavedGateway6,
                                          kAnyIPv6,
                                          "malloc struct IPv6Route failed",
                                          "get IPv6 RouteTable fail!"};

/// The rows of a kernel table that an operation looks at.
template <class Row, int capacity = kRouteRows>
struct RouteRows {
    Row rows[capacity] = {};
    int count = capacity;

    bool Read(const RouteFamily<Row>& family) { return family.read(rows, &count); }
    const Row* begin() const { return rows; }
    const Row* end() const { return rows + count; }
};

bool PrintWords(const uint32_t (&words)[4], char (&text)[kIPv6TextSize])
{
    in6_addr address{};
    memcpy(&address, words, sizeof(address));
    return PrintIPv6(address, text, sizeof(text));
}

bool AnyNull(const char* dst, const char* gw, const char* mask, const char* viaDev)
{
    return dst == nullptr || gw == nullptr || mask == nullptr || viaDev == nullptr;
}

struct RouteTexts {
    char dst[kIPv6TextSize] = {};
    char gw[kIPv6TextSize] = {};
    char mask[kIPv4TextSize] = {};
};

RouteTexts TextsOf(const IPv4Route& row)
{
    RouteTexts texts;
    (void)PrintIPv4(row.gw, texts.gw);
    (void)PrintIPv4(row.mask, texts.mask);
    (void)PrintIPv4(row.dst, texts.dst);
    return texts;
}

RouteTexts TextsOf(const IPv6Route& row)
{
    RouteTexts texts;
    (void)PrintWords(row.gw, texts.gw);
    (void)PrintWords(row.dst, texts.dst);
    (void)FormatText(texts.mask, sizeof(texts.mask), "%d", static_cast<int>(row.perfix));
    return texts;
}

bool IsDefault(const IPv4Route& row)
{
    return row.dst == 0;
}

bool IsDefault(const IPv6Route& row)
{
    return std::all_of(row.dst, row.dst + 4, [](uint32_t word) { return word == 0; });
}

template <class Row>
bool DeleteRow(const char* operation, const RouteFamily<Row>& family, const Row& row)
{
    const RouteTexts texts = TextsOf(row);
    if (family.remove(texts.dst, texts.gw, texts.mask, row.viaDev)) return true;

    LOG_ERROR_AS(operation, "del def route dst:%s mask:%s gw:%s dev:%s error.", texts.dst,
                 texts.mask, texts.gw, row.viaDev);
    return false;
}

/// Deletes the listed default routes of a card, or of all cards for NULL, up to the first failure.
template <class Row>
bool DeleteListedDefaults(const char* operation, const RouteFamily<Row>& family,
                          const RouteRows<Row>& table, const char* name)
{
    for (const Row& row : table) {
        if (!IsDefault(row) || (name != nullptr && !Equal(row.viaDev, name))) continue;

        const RouteTexts texts = TextsOf(row);
        if (family.remove(family.any, texts.gw, family.any, row.viaDev)) continue;

        LOG_ERROR_AS(operation, "del def route %s %s error.", texts.gw, row.viaDev);
        return false;
    }
    return true;
}

template <class Row>
bool ReadSavedGateway(const char* operation, const RouteFamily<Row>& family, const char* name,
                      char (&gw)[kIPv6TextSize])
{
    if (family.savedGateway(name, gw)) return true;

    LOG_ERROR_AS(operation, "Can not get %s default gw.", name);
    return false;
}

/// Deletes the default routes of a card, or of all cards for NULL.
template <class Row>
bool DeleteDefaults(const char* operation, const RouteFamily<Row>& family, const char* name)
{
    RouteRows<Row> table;
    if (table.Read(family)) return DeleteListedDefaults(operation, family, table, name);

    LOG_ERROR_AS(operation, "get route item error.");
    char gw[kIPv6TextSize] = {};
    return name != nullptr && ReadSavedGateway(operation, family, name, gw) &&
           family.removeUnlisted(family.any, gw, family.any, name);
}

/// Puts a default route in the place of all that `removeDefaults` deletes. It is tried whatever is
/// left of them.
template <class Row>
bool ReplaceDefaults(const char* operation, const RouteFamily<Row>& family,
                     bool (*removeDefaults)(const char* name), const char* name)
{
    if (name == nullptr) return false;

    (void)removeDefaults(nullptr);
    char gw[kIPv6TextSize] = {};
    return ReadSavedGateway(operation, family, name, gw) &&
           family.addDefault(family.any, gw, family.any, name);
}

/// Deletes the routes of a card, save its default routes, up to the first failure.
template <class Row>
bool DeleteOthers(const char* operation, const RouteFamily<Row>& family, const char* name)
{
    if (name == nullptr) return false;

    RouteRows<Row> table;
    if (!table.Read(family)) {
        LOG_ERROR_AS(operation, "get route item error.");
        return false;
    }
    for (const Row& row : table) {
        if (IsDefault(row) || !Equal(row.viaDev, name)) continue;
        if (!DeleteRow(operation, family, row)) return false;
    }
    return true;
}

/// Puts the default route of the saved default card back. Only the name decides the result.
bool RecoverDefaultCard(char* name, int len)
{
    if (!GetDefaultEthByConfig(name, len)) return false;

    char gw[kIPv4TextSize] = {};
    if (!GetGatewayByConfig(name, gw)) {
        LOG_ERROR_AS("NetGetDefEth", "Get %s gateway by config error.", name);
        return false;
    }
    if (RouteAddIPv4(kAnyIPv4, gw, kAnyIPv4, name)) {
        LOG_INFO_AS("NetGetDefEth", "recover default route to dev %s gateway %s success.", name,
                    gw);
    } else {
        LOG_ERROR_AS("NetGetDefEth", "recover default route to dev %s gateway %s failed!!!", name,
                     gw);
    }
    return true;
}

void FillRecord(const IPv4Route& row, NetRouteTableInfo* record)
{
    record->type = kIPv4Record;
    record->dst.addrIPv4 = row.dst;
    record->gw.addrIPv4 = row.gw;
    record->mask = row.mask;
    CopyText(record->viaDev, row.viaDev);
}

void FillRecord(const IPv6Route& row, NetRouteTableInfo* record)
{
    record->type = kIPv6Record;
    memcpy(record->dst.addrIPv6, row.dst, sizeof(row.dst));
    memcpy(record->gw.addrIPv6, row.gw, sizeof(row.gw));
    record->mask = row.perfix;
    CopyText(record->viaDev, row.viaDev);
}

template <class Row>
bool ListRoutes(const RouteFamily<Row>& family, NetRouteTableInfo* routes, int* num)
{
    const HeapArray<Row> rows = ZeroedArray<Row>(*num);
    if (rows == nullptr) {
        LOG_ERROR_AS("RouteGetAllInfo", "%s", family.noMemory);
        return false;
    }
    if (!family.read(rows.get(), num)) {
        LOG_ERROR_AS("RouteGetAllInfo", "%s", family.noTable);
        return false;
    }
    const Row* row = rows.get();
    for (int i = 0; i < *num; ++i) FillRecord(row[i], &routes[i]);
    return true;
}

bool ChangeIPv4Record(const char* operation, ChangeRoute change, const NetRouteTableInfo& cmd,
                      const char* name)
{
    char dst[kIPv4TextSize];
    char gw[kIPv4TextSize];
    char mask[kIPv4TextSize];
    if (!PrintIPv4(cmd.dst.addrIPv4, dst) || !PrintIPv4(cmd.gw.addrIPv4, gw) ||
        !PrintIPv4(cmd.mask, mask)) {
        LOG_ERROR_AS(operation, "invalid addr!");
        return false;
    }
    LOG_INFO_AS(operation, "%s addr %s gw %s mask %s name %s", operation, dst, gw, mask, name);
    return change(dst, gw, mask, name);
}

bool ChangeIPv6Record(const char* operation, ChangeRoute change, const NetRouteTableInfo& cmd,
                      const char* name)
{
    char dst[kIPv6TextSize];
    char gw[kIPv6TextSize];
    if (!PrintWords(cmd.dst.addrIPv6, dst) || !PrintWords(cmd.gw.addrIPv6, gw) ||
        cmd.mask > kLongestPrefix) {
        LOG_ERROR_AS(operation, "invalid addr!");
        return false;
    }
    char mask[4];
    (void)FormatText(mask, sizeof(mask), "%d", static_cast<int>(cmd.mask));
    return change(dst, gw, mask, name);
}

bool ChangeByRecord(const char* operation, const NetRouteTableInfo& cmd, ChangeRoute ipv4,
                    ChangeRoute ipv6)
{
    char viaDev[sizeof(cmd.viaDev) + 1];  // the caller's text may fill its field to the end
    CopyText(viaDev, cmd.viaDev);
    if (!CardExists(viaDev)) return false;
    if (cmd.type == kIPv4Record) return ChangeIPv4Record(operation, ipv4, cmd, viaDev);
    if (cmd.type == kIPv6Record) return ChangeIPv6Record(operation, ipv6, cmd, viaDev);

    LOG_ERROR_AS(operation, "invalid param, need fill type, IPv4 or IPv6");
    return false;
}

}  // namespace

bool RouteAddIPv4(const char* dst, const char* gw, const char* mask, const char* viaDev)
{
    return !Route_IsExistInSys(dst, gw, mask, viaDev) && Route_AddIPv4Route(dst, gw, mask, viaDev);
}

bool RouteDelIPv4(const char* dst, const char* gw, const char* mask, const char* viaDev)
{
    return Route_DelIPv4Route(dst, gw, mask, viaDev);
}

bool RouteAddIPv6(const char* dst, const char* gw, const char* mask, const char* viaDev)
{
    if (AnyNull(dst, gw, mask, viaDev)) return false;

    LOG_INFO("ipv6routeAdd name:%s addr:%s gw:%s, mask:%s", viaDev, dst, gw, mask);
    IPv6Route wanted{};
    if (inet_pton(AF_INET6, dst, wanted.dst) != 1 || inet_pton(AF_INET6, gw, wanted.gw) != 1) {
        LOG_ERROR("addr error.[%s, %s, %s]", dst, gw, mask);
        return false;
    }
    wanted.perfix = static_cast<uint32_t>(NumberOf(mask));

    RouteRows<IPv6Route> table;
    if (!table.Read(kIPv6)) {
        LOG_WARN("get IPv6 route item error.");
        return Route_AddIPv6Route(dst, gw, mask, viaDev);
    }
    for (const IPv6Route& row : table) {
        if (memcmp(row.dst, wanted.dst, sizeof(row.dst)) != 0) continue;
        if (memcmp(row.gw, wanted.gw, sizeof(row.gw)) != 0) continue;
        if (strncmp(row.viaDev, viaDev, sizeof(row.viaDev)) != 0) continue;
        if (row.perfix != wanted.perfix) continue;

        LOG_INFO("this route is exist.[%s, %s, %s, %s]", dst, gw, mask, viaDev);
        return true;  // a failure in RouteAddIPv4; callers rely on both
    }
    return Route_AddIPv6Route(dst, gw, mask, viaDev);
}

bool RouteDelIPv6(const char* dst, const char* gw, const char* mask, const char* viaDev)
{
    if (AnyNull(dst, gw, mask, viaDev)) return false;

    LOG_INFO("ipv6routeDel name:%s addr:%s gw:%s, mask:%s", viaDev, dst, gw, mask);
    return Route_DelIPv6Route(dst, gw, mask, viaDev);
}

bool NetGetDefEth(char* name, int len)
{
    if (name == nullptr || len < 1) return false;

    RouteRows<IPv4Route, kDefaultCardRows> table;
    if (!table.Read(kIPv4)) {
        LOG_ERROR("get defualt eth from route table error");
        return GetDefaultEthByConfig(name, len);
    }
    for (const IPv4Route& row : table) {
        if (!IsDefault(row)) continue;

        CopyText(name, static_cast<size_t>(len), row.viaDev);
        return true;
    }
    LOG_ERROR("no default route in route table!");
    return RecoverDefaultCard(name, len);
}

bool NetSetDefEth(const char* name)
{
    if (!CardExists(name)) return false;

    const bool saved = SetDefaultEthByConfig(name);
    if (!saved) LOG_ERROR("save default eth %s to config failed.", name);
    if (s_disable.load(std::memory_order_relaxed) != 0) return saved;

    // Asked before anything is deleted: a card without a gateway leaves the present route alone.
    char gw[kIPv4TextSize] = {};
    if (!GetGatewayByConfig(name, gw)) {
        LOG_ERROR("Get %s gateway by config error.", name);
        return false;
    }
    return RouteAddDefIPv4(name);
}

bool RouteAddDefIPv4(const char* name)
{
    return ReplaceDefaults(__func__, kIPv4, RouteDelDefIPv4, name);
}

bool RouteDelDefIPv4(const char* name)
{
    return DeleteDefaults(__func__, kIPv4, name);
}

bool RouteAddDefIPv6(const char* name)
{
    return ReplaceDefaults(__func__, kIPv6, RouteDelDefIPv6, name);
}

bool RouteDelDefIPv6(const char* name)
{
    return DeleteDefaults(__func__, kIPv6, name);
}

bool RouteDelAllRoute(void)
{
    RouteRows<IPv4Route> table;
    if (!table.Read(kIPv4)) {
        LOG_ERROR("get route item error.");
        return false;
    }
    for (const IPv4Route& row : table) {
        if (!DeleteRow(__func__, kIPv4, row)) return false;
    }
    return true;
}

bool RouteDelAllIPv4(const char* name)
{
    return DeleteOthers(__func__, kIPv4, name);
}

bool RouteDelAllIPv6(const char* name)
{
    return DeleteOthers(__func__, kIPv6, name);
}

bool RouteControl(int disable)
{
    if (disable == 1) s_disable.store(1, std::memory_order_relaxed);
    return true;
}

bool RouteGetAllInfo(NetRouteTableInfo* routes, int* num)
{
    if (routes == nullptr || num == nullptr || *num == 0) return false;
    if (routes[0].type == kIPv4Record) return ListRoutes(kIPv4, routes, num);
    if (routes[0].type == kIPv6Record) return ListRoutes(kIPv6, routes, num);

    LOG_ERROR("invalid param, need fill type, IPv4 or IPv6");
    return false;
}

bool RouteAdd(NetRouteTableInfo* cmd)
{
    return ChangeByRecord(__func__, *cmd, RouteAddIPv4, RouteAddIPv6);
}

bool RouteDel(NetRouteTableInfo* cmd)
{
    return ChangeByRecord(__func__, *cmd, Route_DelIPv4Route, RouteDelIPv6);
}

// ==== Virtual links ====

namespace {

/// The names of a record, which may fill their fields, as texts.
struct LinkNames {
    explicit LinkNames(const NetVirtInterName& names)
    {
        CopyText(host, names.hostName);
        CopyText(virt, names.virtName);
    }
    char host[sizeof(NetVirtInterName::hostName) + 1];
    char virt[sizeof(NetVirtInterName::virtName) + 1];
};

/// Tells of a type that nothing is made of. Always false.
bool RefuseType(const char* operation, const LinkNames& names, NetVirtInterType type)
{
    LOG_ERROR_AS(operation, "[%s:%s]invalid type %d", names.host, names.virt, type);
    return false;
}

bool AddIpVlan(LinkNames* names, const NetIpVlanAttr& attributes)
{
    return VirtInter_IpVlanAdd(names->host, names->virt, static_cast<uint32_t>(attributes.eMode),
                               static_cast<uint32_t>(attributes.eFlag)) == 0;
}

bool AddMacVlan(LinkNames* names, NetMacVlanAttr* attributes)
{
    return VirtInter_MacVlanAdd(names->host, names->virt, static_cast<uint32_t>(attributes->eMode),
                                static_cast<uint32_t>(attributes->eFlag),
                                static_cast<uint32_t>(attributes->eAddrMode),
                                attributes->macAddr) == 0;
}

}  // namespace

// Each request is told of at Error level, not only a refused one.

bool NetVirtInterAdd(NetVirtInterInfo* pstInterInfo)
{
    if (pstInterInfo == nullptr) return false;

    LinkNames names(pstInterInfo->interName);
    const NetVirtInterType type = pstInterInfo->interName.eType;
    LOG_ERROR("[%s:%s] add virt interface type %d", names.host, names.virt, type);
    switch (type) {
    case virtTypeIpVlan: return AddIpVlan(&names, pstInterInfo->interParam.ipVlAttr);
    case virtTypeMacVlan: return AddMacVlan(&names, &pstInterInfo->interParam.macVlAttr);
    default: return RefuseType(__func__, names, type);
    }
}

bool NetVirtInterDel(NetVirtInterName* pstInterName)
{
    if (pstInterName == nullptr) return false;

    LinkNames names(*pstInterName);
    const NetVirtInterType type = pstInterName->eType;
    LOG_ERROR("[%s:%s] del virt interface type %d", names.host, names.virt, type);
    switch (type) {
    case virtTypeIpVlan: return VirtInter_IpVlanDel(names.host, names.virt) == 0;
    case virtTypeMacVlan: return VirtInter_MacVlanDel(names.host, names.virt) == 0;
    default: return RefuseType(__func__, names, type);
    }
}

// ==== IPv4 operations ====

namespace {

/// The bond or bridge that a card is saved as a member of. False for a card that stands alone.
bool FindMaster(const char* card, char (&master)[kNameSize])
{
    NetWorkMode mode = netModeInvalid;
    if (!GetWorkModeByConfig(card, &mode)) {
        LOG_WARN_AS("NetMiiDiag", "can not know %s work mode.", card);
        return false;
    }
    if (mode != netModeBond && mode != netModeBridge) return false;

    const auto getMaster = mode == netModeBond ? GetEthBondNameByConfig : GetEthBridgeNameByConfig;
    if (getMaster(card, master, sizeof(master))) return true;

    LOG_WARN_AS("NetMiiDiag", "get %s bond name failed.", card);  // a bridge's name as well
    return false;
}

}  // namespace

bool NetInterfaceUp(const char* name)
{
    return CardExists(name) && Net_InterfaceUp(name);
}

bool NetInterfaceDown(const char* name)
{
    return CardExists(name) && Net_InterfaceDown(name);
}

bool NetSetIPByName(const char* name, const char* addr, const char* mask)
{
    if (addr == nullptr || mask == nullptr || !CardExists(name)) return false;
    if (!Net_SetIPbyName(name, addr, mask)) return false;

    // The address is in force: a file or a backup that lags is repaired at boot.
    (void)SetIPByConfig(name, addr, mask);
    (void)BackupIP(name, addr);
    (void)BackupMask(name, mask);
    return true;
}

bool NetSetGatewaybyName(const char* name, const char* addr)
{
    if (addr == nullptr || !CardExists(name)) return false;

    const bool saved = SetGatewayByConfig(name, addr);
    if (!saved) LOG_ERROR("save %s,%s to config failed", name, addr);
    if (Equal(name, kFirstCard)) (void)BackupGateway(name, addr);
    return saved;
}

bool NetSetMacbyName(const char* name, const char* addr)
{
    if (addr == nullptr || !CardExists(name)) return false;

    char defaultCard[kNameSize] = {};
    (void)NetGetDefEth(defaultCard, sizeof(defaultCard));
    const bool done = Net_SetMacbyName(name, addr);
    (void)NetSetDefEth(defaultCard);  // the card's routes went with its flags
    return done;
}

bool NetSetMediumPrefer(const char* name, NetMediumPrefer medium)
{
    return CardExists(name) && Net_SetMediumPrefer(name, medium);
}

bool NetGetIPbyName(const char* name, char* addr, char* mask)
{
    if (addr == nullptr || mask == nullptr || !CardExists(name)) return false;
    if (GetIPByConfig(name, addr, mask)) return true;

    LOG_WARN("get %s's ip mask from config failed. try sys.", name);
    if (Net_GetIPbyName(name, addr, mask)) return true;

    LOG_WARN("get %s's ip mask from sys failed. try cmos or rtc.", name);
    if (RestoreIP(name, addr) && RestoreMask(name, mask)) {
        LOG_WARN("restore ip mask from backup to configfile ");
        (void)SetIPByConfig(name, addr, mask);
        return true;
    }
    LOG_ERROR("get %s's ip mask from cmos or rtc failed.", name);
    return false;
}

bool NetGetGatewaybyName(const char* name, char* addr)
{
    if (addr == nullptr || !CardExists(name)) return false;
    if (GetGatewayByConfig(name, addr)) return true;

    LOG_WARN("get %s's gateway from config failed. try cmos or rtc.", name);
    if (RestoreGateway(name, addr)) {
        (void)SetGatewayByConfig(name, addr);
        return true;
    }
    LOG_ERROR("get %s's gateway from cmos or rtc failed.", name);
    return false;
}

bool NetGetMtubyName(const char* name, int* mtu)
{
    if (mtu == nullptr || !CardExists(name)) return false;
    if (Net_GetMtubyName(name, mtu)) return true;

    LOG_WARN("get %s's mtu from sys failed. try config.", name);
    if (GetMtuByConfig(name, mtu)) return true;

    LOG_ERROR("get %s's mtu from config failed.", name);
    return false;
}

bool NetGetMacbyName(const char* name, char* addr)
{
    return addr != nullptr && CardExists(name) && Net_GetMacbyName(name, addr);
}

bool NetGetLinkSpeed(const char* name, int* speed)
{
    return speed != nullptr && CardExists(name) && Net_GetLinkSpeed(name, speed);
}

bool NetGetDataStat(const char* name, NetDataStat* dataStat)
{
    return dataStat != nullptr && CardExists(name) && Net_GetDataStat(name, dataStat);
}

bool NetGetRealIPByName(const char* name, char* addr, char* mask)
{
    return Net_GetIPbyName(name, addr, mask);
}

bool NetGetEthWorkMode(const char* name, NetWorkMode* mode)
{
    if (name == nullptr || mode == nullptr) return false;
    if (!Contains(name, "eth")) {
        LOG_ERROR("GetEthWorkMode can only work with eth device.[%s]", name);
        return false;
    }
    if (isSwitchByName(name) == 1) {
        *mode = netModeSwitch;
        return true;
    }
    *mode = netModeMultiple;
    (void)GetWorkModeByConfig(name, mode);  // fails only for NULL
    return true;
}

bool NetMiiDiag(const char* name, bool bcheckSlaves)
{
    if (!CardExists(name)) return false;
    if (Contains(name, "poe")) return true;

    char master[kNameSize];
    const bool isMember = bcheckSlaves && FindMaster(name, master);
    return Net_MiiDiag(isMember ? master : name);
}

// ==== IPv6 operations ====

namespace {

constexpr char kDefaultPrefix[] = "64";

/// A negative number is taken as unsigned, and so is too long.
bool IsPrefixLength(const char* text)
{
    return static_cast<uint32_t>(NumberOf(text)) <= kLongestPrefix;
}

/// Saves that a card has no address. A file without an address would say nothing of that.
bool SaveNoIPv6(const char* name)
{
    return SetIPv6ByConfig(name, kAnyIPv6, kDefaultPrefix);
}

void RemoveOldIPv6(const char* name)
{
    if (Net6_DelIPAddressIpv6(name, nullptr, nullptr)) {
        LOG_INFO_AS("NetSetIPv6byName", "delete %s old ipv6 addr success.", name);
    } else {
        LOG_WARN_AS("NetSetIPv6byName", "delete %s old ipv6 addr failed.", name);
    }
}

/// Cuts the form address/prefix in two, in the caller's text: what stands behind the "/", or NULL
/// for a text without one, which is not written.
const char* CutPrefix(const char* addr)
{
    const char* slash = strchr(addr, '/');
    if (slash == nullptr) return nullptr;

    // `const` only by its declaration: who passes this form gets the text back cut.
    *const_cast<char*>(slash) = '\0';
    return slash + 1;
}

}  // namespace

bool NetSetIPv6byName(const char* name, const char* addr, const char* perfix)
{
    if (name == nullptr || addr == nullptr || perfix == nullptr) return false;

    LOG_INFO("ipv6addrSet name:%s addr:%s perfix:%s", name, addr, perfix);
    if (!CardExists(name)) return false;
    if (!IsPrefixLength(perfix)) {
        LOG_ERROR("invalid pagram of perfix!");
        return false;
    }
    if (Net6_IsIPAddressIpv6Exist(name, addr, perfix)) return true;

    RemoveOldIPv6(name);
    if (addr[0] == '\0') {
        LOG_WARN("addr is empty.");
        return SaveNoIPv6(name);
    }
    if (!Net6_SetIPv6byName(name, addr, perfix)) return false;

    (void)SetIPv6ByConfig(name, addr, perfix);  // the address is in force
    return true;
}

bool NetDelIPAddressIpv6(const char* name, const char* addr)
{
    if (name == nullptr || addr == nullptr) return false;

    LOG_INFO("ipv6addrDel name:%s addr:%s", name, addr);
    if (!CardExists(name)) return false;

    const char* prefix = CutPrefix(addr);
    if (prefix != nullptr && !IsPrefixLength(prefix)) {
        LOG_ERROR("error prefix %s", addr);
        return false;
    }
    if (!Net6_DelIPAddressIpv6(name, addr, prefix)) return false;

    (void)SaveNoIPv6(name);  // the address is gone
    return true;
}

bool NetGetIPv6byName(const char* name, char* addr, int ipLen, char* perfix, int perFixLen)
{
    if (addr == nullptr || perfix == nullptr || !CardExists(name)) return false;
    if (Net6_GetIPv6byName(name, addr, ipLen, perfix, perFixLen)) return true;
    if (GetIPv6ByConfig(name, addr, ipLen, perfix, perFixLen)) return true;

    LOG_ERROR("get %s ipv6 addr from config failed.", name);
    return false;
}

bool NetGetSysIPv6byName(const char* name, char* addr, int ipLen, char* perfix, int perFixLen)
{
    if (addr == nullptr || perfix == nullptr || !CardExists(name)) return false;
    if (Net6_GetIPv6byName(name, addr, ipLen, perfix, perFixLen)) return true;

    LOG_WARN("get %s ipv6 addr from sys failed.", name);
    return false;
}

bool NetGetLinkLocalAddressIpv6(const char* name, char* addr, int ipLen)
{
    if (addr == nullptr || !CardExists(name)) return false;
    if (Net6_GetLinkLocalAddressIpv6(name, addr, ipLen)) return true;

    char mac[kMacTextSize] = {};
    return Net_GetMacbyName(name, mac) && Net6_GetLinkLocalFromMac(addr, ipLen, mac);
}

bool NetSetGatewayIPv6byName(const char* name, const char* addr)
{
    if (name == nullptr || addr == nullptr) return false;

    LOG_INFO("ipv6gwAdd name:%s addr:%s", name, addr);
    if (!CardExists(name)) return false;
    if (SetGatewayv6ByConfig(name, addr)) return true;

    LOG_ERROR("set %s default gateway failed.", name);
    return false;
}

bool NetGetGatewayIPv6byName(const char* name, char* addr, int len)
{
    if (addr == nullptr || !CardExists(name)) return false;
    if (GetGatewayv6ByConfig(name, addr, len)) return true;

    LOG_ERROR("get %s default gateway failed.", name);
    return false;
}

// ==== Bonds ====

namespace {

constexpr unsigned kHighestBondMode = nicBondBalanceALB;
constexpr auto kNoBondMode = static_cast<NICBondMode>(-1);
constexpr unsigned kHighestBondMtu = 7200;
constexpr Membership kOfBond = {SetEthIsBondedByConfig, SetEthBondNameByConfig, netModeBond};

using AddressText = char[kIPv4TextSize];

bool IsBondRunning(const char* bond)
{
    return Bond_GetBondMembers(bond, nullptr, nullptr);
}

/// A running bond is never rebuilt: an active-backup one changes its primary, any other refuses.
bool ChangePrimary(const char* bond, const char* card)
{
    NICBondMode mode = kNoBondMode;
    if (!GetBondMode(bond, &mode) || mode != nicBondActiveBackup) {
        LOG_ERROR_AS("Bond", "need unbond first.[%s]", bond);
        return false;
    }
    if (!Bond_SetPrimary(bond, card)) {
        LOG_ERROR_AS("Bond", "%s change primary to %s failed.", bond, card);
        return false;
    }
    (void)SetPrimaryEthByConfig(bond, card);
    return true;
}

// ---- the steps of a recovery; their lines carry the name of the whole

constexpr char kRecovery[] = "NetCardRecover";

bool FindAddress(const char* card, AddressText& address, AddressText& mask)
{
    if (GetIPByConfig(card, address, mask)) return true;

    LOG_WARN_AS(kRecovery, "get ip mask by config failed.[%s]", card);
    if (RestoreIP(card, address) && RestoreMask(card, mask)) return true;

    LOG_ERROR_AS(kRecovery, "get ip mask from cmos  or rtc failed.[%s]", card);
    return false;
}

/// True when there is an address to set; that the kernel refuses it does not count.
bool RecoverAddress(const char* card)
{
    AddressText address = {};
    AddressText mask = {};
    if (!FindAddress(card, address, mask)) return false;
    if (!NetSetIPByName(card, address, mask)) {
        LOG_ERROR_AS(kRecovery, "set ip[%s] mask[%s] to sys failed.[%s]", address, mask, card);
    }
    return true;
}

bool FindGateway(const char* card, AddressText& gateway)
{
    if (GetGatewayByConfig(card, gateway)) return true;

    LOG_WARN_AS(kRecovery, "get getway by config failed.[%s]", card);
    if (RestoreGateway(card, gateway)) return true;

    LOG_ERROR_AS(kRecovery, "get gateway from cmos  or rtc failed.[%s]", card);
    return false;
}

void RecoverGateway(const char* card)
{
    AddressText gateway = {};
    if (FindGateway(card, gateway) && !NetSetGatewaybyName(card, gateway)) {
        LOG_ERROR_AS(kRecovery, "set gateway[%s] to sys failed.[%s]", gateway, card);
    }
}

void RecoverMtu(const char* card)
{
    int mtu = 0;
    if (!GetMtuByConfig(card, &mtu)) {
        LOG_ERROR_AS(kRecovery, "get mtu from config failed.[%s]", card);
        return;
    }
    (void)(Contains(card, "bond") ? SetMtubyBondName(card, mtu) : Net_SetMtubyName(card, mtu));
}

bool RecoverCard(const char* card)
{
    (void)InterfaceUp(card);
    const bool found = RecoverAddress(card);
    RecoverGateway(card);
    RecoverMtu(card);
    return found;
}

}  // namespace

bool GetBondMode(const char* bondName, NICBondMode* mode)
{
    if (bondName == nullptr || mode == nullptr || !IsBondRunning(bondName)) return false;
    if (GetBondModeByConfig(bondName, mode)) return true;

    LOG_ERROR("get %s bondmode by config failed.", bondName);
    return false;
}

bool BondHasMember(const char* bondName, const char* ethName)
{
    return bondName != nullptr && ethName != nullptr && Bond_HasMember(bondName, ethName);
}

bool GetBondActiveSlave(const char* bondName, char* ethName, int len)
{
    return bondName != nullptr && ethName != nullptr && Bond_GetActiveSlave(bondName, ethName, len);
}

bool GetBondMembers(const char* bondName, char** ethList, int* ethNum)
{
    if (ethList == nullptr || ethNum == nullptr) return false;
    if (NameList(ethList, *ethNum).HoldsNull() || !CardExists(bondName)) return false;

    return Bond_GetBondMembers(bondName, ethList, ethNum);
}

bool SetMtubyBondName(const char* bondName, const int mtu)
{
    if (bondName == nullptr) return false;

    const bool allowed = static_cast<unsigned>(mtu) <= kHighestBondMtu;
    if (!allowed) LOG_WARN("mtu can not be set to %d, will be set to 1500", mtu);
    const int wanted = allowed ? mtu : kDefaultMtu;

    MemberTable members;
    if (!members.Read(Bond_GetBondMembers, bondName)) {
        LOG_INFO("%s is not bonded, just save mtu in config.", bondName);
        return true;
    }
    int present = 0;
    (void)Net_GetMtubyName(bondName, &present);
    if (present == wanted && allowed) return true;

    (void)Net_InterfaceDown(bondName);
    for (const char* member : members.All()) (void)Net_InterfaceDown(member);
    const bool done = Net_SetMtubyName(bondName, wanted);  // the driver hands it to the members
    for (const char* member : members.All()) (void)Net_InterfaceUp(member);
    (void)Net_InterfaceUp(bondName);
    return done;
}

bool NetCardRecover(const char* name)
{
    return name != nullptr && RecoverCard(name);
}

bool Bond(const char* bondName, const char** ethList, const int ethNum, NICBondMode mode)
{
    if (bondName == nullptr || ethList == nullptr) return false;
    if (static_cast<unsigned>(mode) > kHighestBondMode) {
        LOG_ERROR("invalided param, mode: %d\n", static_cast<int>(mode));
        return false;
    }
    if (!Contains(bondName, "bond")) {
        LOG_ERROR("bond net card is not valid.[%s]", bondName);
        return false;
    }
    if (Contains(bondName, ".") || !CardExists(bondName)) return false;
    if (!CheckEthExist(ethList, ethNum)) return false;
    if (IsBondRunning(bondName)) return ChangePrimary(bondName, ethList[0]);
    if (!Bond_SetBondMode(bondName, mode)) return false;

    const NameList members(ethList, ethNum);
    if (!Bond_Bond(bondName, ethList, ethNum)) {
        for (const char* member : members) {
            (void)NetCardRecover(member);
            LOG_ERROR("Bond [%s] failed, do recover for [%s].", bondName, member);
        }
        return false;
    }
    for (const char* member : members) SaveMaster(kOfBond, member, bondName);
    (void)SetBondModeByConfig(bondName, mode);
    (void)SetBondMemberByConfig(bondName, ethList, ethNum);
    (void)NetCardRecover(bondName);
    return true;
}

bool UnBond(const char* bondName)
{
    if (bondName == nullptr || !Contains(bondName, "bond") || !CardExists(bondName)) return false;

    MemberTable members;
    if (!members.Read(Bond_GetBondMembers, bondName)) {
        LOG_ERROR("get %s member failed.", bondName);
        return false;
    }
    if (!Bond_Unbond(bondName, const_cast<const char**>(members.Pointers()), members.Count())) {
        LOG_ERROR("unbond failed");
        return false;
    }
    const char* none = "";
    (void)SetBondModeByConfig(bondName, kNoBondMode);
    (void)SetBondMemberByConfig(bondName, &none, 1);
    for (const char* member : members.All()) {
        SaveMaster(kOfBond, member, none);
        (void)NetCardRecover(member);
    }
    return true;
}

bool SetBondHashPolicy(const char* bondName, unsigned char lacp)
{
    if (bondName == nullptr) return false;
    if (!Contains(bondName, "bond")) {
        LOG_WARN("bond net card is not valid.[%s]", bondName);
        return false;
    }
    if (!CardExists(bondName)) return false;

    (void)Net_InterfaceDown(bondName);  // older drivers take a policy only while the bond is down
    const bool done = Bond_SetHashPolicy(bondName, lacp);
    (void)Net_InterfaceUp(bondName);
    if (done) (void)SetBondHashPolicyByConfig(bondName, lacp);
    return done;
}

bool GetBondHashPolicy(const char* bondName, unsigned char* lacp)
{
    return lacp != nullptr && CardExists(bondName) && GetBondHashPolicyByConfig(bondName, lacp);
}

// ==== Bridges ====

namespace {

// ---- the bridge over the internal virtual cards

constexpr char kInternalBridge[] = "nbp0";
constexpr char kInternalAddress[] = "10.201.156.254";
constexpr char kInternalMask[] = "255.255.254.0";
constexpr int kInternalMtu = 65535;

/// Lists the virtual cards. Only the first of them is looked at.
bool Bridge_needBridgeByInterNic(MemberTable& cards)
{
    if (!cards.Read(GetVnicInterfaceInfo)) {
        LOG_WARN("get vnic interface failed");
        return false;
    }
    if (cards.Count() < 1 || cards.Count() > kMaxInterfaces) {
        LOG_WARN("get vnic interface num(%d) err", cards.Count());
        return false;
    }
    const char* first = *cards.All().begin();
    if (IsVirtPcie(first) && !InterfaceIpIsExist(first)) return true;

    LOG_WARN("get %s interface check err", first);
    return false;
}

void SetInternalAddress(const char* bridge)
{
    (void)SetMtuByConfig(bridge, kInternalMtu);
    (void)SetIPByConfig(bridge, kInternalAddress, kInternalMask);
    if (NetSetIPByName(bridge, kInternalAddress, kInternalMask)) return;

    LOG_WARN_AS("BridgeByInterNic", "set %s's IP: %s, MASK: %s failed", bridge, kInternalAddress,
                kInternalMask);
}

// ---- members

constexpr Membership kOfBridge = {SetEthIsBridgedByConfig, SetEthBridgeNameByConfig, netModeBridge};

bool IsBridgeName(const char* name)
{
    return StartsWith(name, "br") && IsDigit(name[2]);
}

/// The bridge operations take names that they do not write.
bool SaveMembers(const char* bridge, char** members, int count)
{
    return SetBridgeMemberByConfig(bridge, const_cast<const char**>(members), count);
}

/// Ends a bridge and saves it without members. Lists those it had.
bool EndBridge(const char* operation, const char* bridge, MemberTable& members)
{
    if (!BridgeCheckExist(bridge)) return false;
    if (!members.Read(Bridge_GetBridgeMembers, bridge)) {
        LOG_ERROR_AS(operation, "get %s bridge menber failed.", bridge);
        return false;
    }
    if (!Bridge_UnBridge(bridge, members.Pointers(), members.Count())) {
        LOG_ERROR_AS(operation, "UnBridge failed.[%s]", bridge);
        return false;
    }
    const char* none = "";
    (void)SetBridgeMemberByConfig(bridge, &none, 1);
    return true;
}

// ---- edge ports

/// Marking a port and taking the mark off, in the words of the message.
struct EdgePortChange {
    const char* verb;
    const char* preposition;
    bool (*change)(const char* bridge, const char* port);
    bool (*save)(const char* bridge, const char* port);
};
constexpr EdgePortChange kMarking = {"set", "to", Bridge_AddEdgePort, AddEdgePortByconfig};
constexpr EdgePortChange kUnmarking = {"del", "from", Bridge_DelEdgePort, DelEdgePortByconfig};

/// Refuses what is no port of a bridge that exists.
bool RequirePort(const char* operation, const char* bridge, const char* port)
{
    if (bridge == nullptr || port == nullptr || !Bridge_IsBridgeExist(bridge)) return false;

    MemberTable ports;
    if (!ports.Read(Bridge_GetBridgeMembers, bridge)) return false;
    for (const char* one : ports.All()) {
        if (Equal(one, port)) return true;
    }
    LOG_ERROR_AS(operation, "%s is not a membe of %s.", port, bridge);
    return false;
}

bool ChangeEdgePort(const char* operation, const EdgePortChange& edge, const char* bridge,
                    const char* port)
{
    if (!RequirePort(operation, bridge, port)) return false;
    if (!edge.change(bridge, port)) {
        LOG_ERROR_AS(operation, "can not %s %s %s %s's edge port.", edge.verb, port,
                     edge.preposition, bridge);
        return false;
    }
    (void)edge.save(bridge, port);
    return true;
}

}  // namespace

bool BridgeCheckExist(const char* brName)
{
    return brName != nullptr && Bridge_IsBridgeExist(brName);
}

bool BridgeByInterNic(const char* brName)
{
    char bridge[kNameSize];
    CopyText(bridge, brName == nullptr ? kInternalBridge : brName);
    if (Bridge_IsBridgeExist(bridge)) return false;

    MemberTable cards;
    if (!Bridge_needBridgeByInterNic(cards)) return false;
    if (!Bridge_Bridge(bridge, cards.Pointers(), cards.Count())) {
        LOG_ERROR("Bridge failed.[%s]", bridge);
        return false;
    }
    (void)Net_SetMtubyName(bridge, kInternalMtu);
    (void)SaveMembers(bridge, cards.Pointers(), cards.Count());
    if (!RecoverCard(bridge)) SetInternalAddress(bridge);  // a saved address wins
    return true;
}

bool Bridge(const char* brName, char** ethList, int ethNum)
{
    if (brName == nullptr || ethList == nullptr) return false;
    if (!IsBridgeName(brName)) {
        LOG_ERROR("Bridge name error.[%s]", brName);
        return false;
    }
    if (!CheckEthExist(const_cast<const char**>(ethList), ethNum)) return false;
    if (!Bridge_Bridge(brName, ethList, ethNum)) {
        LOG_ERROR("Bridge failed.[%s]", brName);
        return false;
    }
    (void)SaveMembers(brName, ethList, ethNum);
    for (const char* member : NameList(ethList, ethNum)) SaveMaster(kOfBridge, member, brName);
    (void)NetCardRecover(brName);
    return true;
}

bool UnBridgeByInterNic(const char* brName)
{
    MemberTable cards;
    return EndBridge(__func__, brName, cards);
}

bool UnBridge(const char* brName)
{
    MemberTable members;
    if (!EndBridge(__func__, brName, members)) return false;

    for (const char* member : members.All()) {
        SaveMaster(kOfBridge, member, "");
        (void)NetCardRecover(member);
    }
    return true;
}

bool GetBridgeMenbers(const char* brName, char** ethList, int* ethNum)
{
    if (brName == nullptr || ethList == nullptr || ethNum == nullptr) return false;
    if (NameList(ethList, *ethNum).HoldsNull()) return false;

    return Bridge_IsBridgeExist(brName) && Bridge_GetBridgeMembers(brName, ethList, ethNum);
}

bool BridgeAddEdgePort(const char* brName, const char* ethName)
{
    return ChangeEdgePort(__func__, kMarking, brName, ethName);
}

bool BridgeDelEdgePort(const char* brName, const char* ethName)
{
    return ChangeEdgePort(__func__, kUnmarking, brName, ethName);
}

bool BridgeIsEdgePort(const char* brName, const char* ethName)
{
    if (brName == nullptr || ethName == nullptr) return false;

    return Bridge_IsBridgeExist(brName) && IsEdgePortByconfig(brName, ethName);
}

bool BridgeControl(const char* brName, const STPInfo* stp)
{
    if (brName == nullptr || stp == nullptr || !Bridge_IsBridgeExist(brName)) return false;
    if (!Bridge_BridgeCtrl(brName, stp)) {
        LOG_ERROR("%s Bridge_BridgeCtrl error.", brName);
        return false;
    }
    (void)SetBridgeStpModeByConfig(brName, stp->mode);
    return true;
}

bool BridgeGetStpInfo(const char* brName, STPInfo* stp)
{
    if (brName == nullptr || stp == nullptr || !Bridge_IsBridgeExist(brName)) return false;

    return GetBridgeStpModeByConfig(brName, &stp->mode);
}

bool BridgeUpdatePortListByConfig(const char* brName, const char** portList, int num)
{
    if (portList == nullptr || num == 0 || brName == nullptr) return false;

    return Bridge_IsBridgeExist(brName) && SetBridgePortListByConfig(brName, portList, num);
}

bool BridgeUpdateBrIDByConfig(const char* brName)
{
    return brName != nullptr && Bridge_IsBridgeExist(brName) && SetBridgeIDByConfig(brName);
}

// ==== Interface list and MTU ====

namespace {

constexpr int kMembersAsked = 16;
constexpr size_t kMemberNameSize = 32;

/// What an interface counts as whose name holds `part`.
struct Kind {
    const char* part;
    bool valid;
    NetInterfaceMedia media;
    int type : 8;  // a NetWorkMode value, as wide as where it goes
};

constexpr Kind kWireless = {"wlan", false, NetInterfaceWireless, netModeMultiple};
constexpr Kind kUnknown = {"", true, NetInterfaceWired, netModeMultiple};

/// The first kind whose part the name holds counts; cards with "eth" or "poe" go before all.
constexpr Kind kKinds[] = {
    kWireless,
    {"bond", true, NetInterfaceWired, netModeBond},
    {"br", true, NetInterfaceWired, netModeBridge},
    {"ppp", true, NetInterfaceWireless, netModeMultiple},
    {"lte", true, NetInterfaceWireless, netModeMultiple},
    {"usb", true, NetInterfaceWireless, netModeMultiple},
    {"apra", false, NetInterfaceWireless, netModeMultiple},
};

bool SupportsOneOf(const ethtool_cmd& settings, uint32_t modes)
{
    return (settings.supported & modes) != 0;
}

bool IsFibre(const ethtool_cmd& settings)
{
    return settings.port == PORT_FIBRE ||
           (settings.port == PORT_OTHER && SupportsOneOf(settings, SUPPORTED_FIBRE));
}

int TopSpeed(const ethtool_cmd& settings)
{
    if (SupportsOneOf(settings, SUPPORTED_10000baseT_Full)) return 10000;
    if (SupportsOneOf(settings, SUPPORTED_1000baseT_Half | SUPPORTED_1000baseT_Full)) return 1000;
    if (SupportsOneOf(settings, SUPPORTED_100baseT_Half | SUPPORTED_100baseT_Full)) return 100;
    if (SupportsOneOf(settings, SUPPORTED_10baseT_Half | SUPPORTED_10baseT_Full)) return 10;
    return 0;
}

void SetKind(NetInterfaceInfo* entry, const Kind& kind)
{
    entry->valid = kind.valid ? 1 : 0;
    entry->media = kind.media;
    entry->type = kind.type;
}

/// A card with a driver to ask. One that does not answer stays in the list with zeros.
void DescribeCard(NetInterfaceInfo* entry, CardWalk& walk)
{
    const char* name = entry->name;
    ethtool_cmd settings{};
    if (!Net_GetEthtoolInfo(name, &settings)) {
        LOG_WARN_AS("NetGetAllInterface", "get %s ethtool info error", name);
    }
    entry->valid = 1;
    entry->media = IsFibre(settings) ? NetInterfaceFiber : NetInterfaceWired;
    entry->type = walk.SwitchMode(name) == 1 ? netModeSwitch : netModeMultiple;
    entry->reserved[0] = TopSpeed(settings);
    (void)LinkSpeedOf(name, &entry->speed, walk);
    entry->usage = Net_GetUsage(name);
}

const Kind& KindOf(const char* name)
{
    for (const Kind& kind : kKinds) {
        if (Contains(name, kind.part)) return kind;
    }
    LOG_ERROR_AS("NetGetAllInterface", "network card %s can not recognize", name);
    return kUnknown;
}

bool IsWirelessCard(const char* name, CardWalk& walk)
{
    return Equal(name, "eth2") && walk.IsWifi(name);
}

void Describe(NetInterfaceInfo* entry, CardWalk& walk)
{
    const char* name = entry->name;
    if (Contains(name, "eth") || Contains(name, "poe")) {
        if (IsWirelessCard(name, walk)) {
            SetKind(entry, kWireless);
        } else {
            DescribeCard(entry, walk);
        }
        return;
    }
    const Kind& kind = KindOf(name);
    SetKind(entry, kind);
    if (kind.type == netModeMultiple) return;

    // A bond or bridge has the medium of its members.
    const bool isBridge = kind.type == netModeBridge;
    entry->media = static_cast<NetInterfaceMedia>(NetGetBondOrBrCardTransmedia(name, isBridge));
}

}  // namespace

bool NetSetMtubyName(const char* name, const int mtu)
{
    if (!CardExists(name)) return false;

    int wanted = mtu;
    if (mtu < 0) {
        LOG_WARN(" mtu can not be set to %d", mtu);
        wanted = kDefaultMtu;
    }
    char defaultCard[kNameSize] = {};
    (void)NetGetDefEth(defaultCard, sizeof(defaultCard));
    const bool done =
        Contains(name, "bond") ? SetMtubyBondName(name, wanted) : Net_SetMtubyName(name, wanted);
    (void)NetSetDefEth(defaultCard);  // the card's routes went with its flags
    if (done) (void)SetMtuByConfig(name, wanted);
    return done;
}

bool NetGetAllInterface(NetInterfaceInfo* list, int32_t* num)
{
    if (list == nullptr || num == nullptr) return false;

    CardWalk walk;  // the listing asks the same files as the description of what is listed
    char names[kMaxInterfaces][kNameSize];
    int listed = kMaxInterfaces;
    if (!ListCards(names, &listed, walk)) return false;

    const int capacity = std::max(*num, 0);
    memset(list, 0, static_cast<size_t>(capacity) * sizeof(*list));
    const int count = std::min(listed, capacity);
    for (int i = 0; i < count; ++i) {
        CopyText(list[i].name, names[i]);
        Describe(&list[i], walk);
    }
    *num = count;
    return true;
}

int NetGetBondOrBrCardTransmedia(const char* ifname, bool isBr)
{
    if (ifname == nullptr || ifname[0] == '\0') return NetInterfaceWired;

    NameTable<kMembersAsked, kMemberNameSize> members;
    if (!members.Read(isBr ? Bridge_GetBridgeMembers : Bond_GetBondMembers, ifname)) {
        return NetInterfaceWired;
    }
    for (const char* member : members.All()) {
        ethtool_cmd settings{};
        if (Net_GetEthtoolInfo(member, &settings) && settings.port == PORT_FIBRE) {
            return NetInterfaceFiber;
        }
    }
    return NetInterfaceWired;
}

// ==== Reachability probes ====

namespace {

constexpr char kBroadcast[] = "ff:ff:ff:ff:ff:ff";
constexpr int kListenSeconds = 3;

}  // namespace

int NetArpCheck(const char* name)
{
    if (name == nullptr) return -1;

    char ip[kIPv4TextSize] = {};
    char unusedMask[kIPv4TextSize] = {};
    if (!NetGetIPbyName(name, ip, unusedMask)) {
        LOG_ERROR("NetGetIPbyName failed");
        return -1;
    }
    char mac[kMacTextSize] = {};
    if (!NetGetMacbyName(name, mac)) {
        LOG_ERROR("NetGetMacbyName failed");
        return -1;
    }
    return Arp_Ckeck(name, ip, mac, ip, kBroadcast, kListenSeconds);
}

bool NetPingCheck(const char* name, const char* ip, int timeout)
{
    if (ip == nullptr) return false;
    if (name == nullptr) return Ping_CheckAlive(nullptr, nullptr, ip, timeout);

    char ours[kIPv4TextSize] = {};
    char unusedMask[kIPv4TextSize] = {};
    if (!NetGetIPbyName(name, ours, unusedMask)) {
        LOG_ERROR("NetGetIPbyName failed");
        return Ping_CheckAlive(nullptr, nullptr, ip, timeout);
    }
    return Ping_CheckAlive(name, ours, ip, timeout);
}

// ==== Neighbours ====

bool GetIPByMacFromARP(const char* mac, char* ip)
{
    return mac != nullptr && ip != nullptr && Other_GetIPByMac(mac, ip);
}

bool GetMacByIPFromARP(const char* ip, char* mac)
{
    return ip != nullptr && mac != nullptr && Other_GetMacByIP(ip, mac);
}

// ==== Traffic shaping ====

namespace {

constexpr int kLimitsKept = 32;  // by a rebuild

/// Applies one limit and saves it when that succeeded.
bool SetLimit(const char* operation, const char* name, const NetTc& limit)
{
    const bool send = limit.flags == 0;
    if (send ? TC_SetSendBand(name, limit) : TC_SetRcvBand(name, limit)) {
        (void)TC_SaveToConfig(name, limit);  // it is in force, saved or not
        return true;
    }
    char address[sizeof(limit.ipAddr)];
    CopyText(address, limit.ipAddr);  // a record may fill its field
    LOG_ERROR_AS(operation, "set %s band faild.dev %s,ip %s,band %d", send ? "send" : "rcv", name,
                 address, limit.bandWidth);
    return false;
}

void ClearLimits(const char* name)
{
    (void)TC_DeinitDev(name);
    (void)TC_DelConfig(name);
}

}  // namespace

bool TrafCtrlSetBand(const char* name, const NetTc* tc, int num)
{
    if (name == nullptr || tc == nullptr || !CardExists(name)) return false;

    bool done = true;
    for (int i = 0; i < num; ++i) {
        if (!SetLimit(__func__, name, tc[i])) done = false;
    }
    return done;
}

bool TrafCtrlGetBand(const char* name, NetTc* tc, int* num)
{
    if (name == nullptr || tc == nullptr || num == nullptr || !CardExists(name)) return false;

    return TC_GetFromConfig(name, tc, num);
}

bool TrafCtrlUnSetBand(const char* name, const char* ipAddr)
{
    if (name == nullptr || ipAddr == nullptr || !CardExists(name)) return false;
    if (Equal(ipAddr, kAnyIPv4)) {
        ClearLimits(name);
        return true;
    }
    NetTc limits[kLimitsKept] = {};
    int count = kLimitsKept;
    (void)TC_GetFromConfig(name, limits, &count);  // without a file all 32 empty limits are set
    ClearLimits(name);
    for (int i = 0; i < count; ++i) {
        if (!Equal(limits[i].ipAddr, ipAddr)) (void)SetLimit(__func__, name, limits[i]);
    }
    return true;
}

// ==== Port filtering ====

namespace {

constexpr char kUnfilteredCard[] = "eth16";
constexpr int kPortTextSize = 256;

bool IsIPv4Text(const char* address)
{
    return Contains(address, ".");
}

/// Blocks a port of the addresses that a card has now, one of each family.
void DisablePortOf(const char* card, int port)
{
    char address[kPortTextSize] = {};
    char mask[kPortTextSize] = {};
    if (Net_GetIPbyName(card, address, mask)) {
        (void)PortCtrl_DisableIPv4Port(address, port);
    } else {
        LOG_ERROR_AS("PortCtrlDisablePort", "get %s's ip from sys failed.", card);
    }
    if (Net6_GetIPv6byName(card, address, sizeof(address), mask, sizeof(mask))) {
        (void)PortCtrl_DisableIPv6Port(address, port);
    } else {
        LOG_ERROR_AS("PortCtrlDisablePort", "get %s's ipv6 from sys failed.", card);
    }
}

}  // namespace

bool PortCtrlEnablePort(const char* ipAddr, int port)
{
    if (ipAddr == nullptr) return false;
    if (Equal(ipAddr, kAnyIPv4)) return PortCtrl_EnableAllIPPort();

    return IsIPv4Text(ipAddr) ? PortCtrl_EnableIPv4Port(ipAddr, port)
                              : PortCtrl_EnableIPv6Port(ipAddr, port);
}

bool PortCtrlDisablePort(const char* ipAddr, int port)
{
    if (ipAddr == nullptr) return false;
    if (!Equal(ipAddr, kAnyIPv4)) {
        return IsIPv4Text(ipAddr) ? PortCtrl_DisableIPv4Port(ipAddr, port)
                                  : PortCtrl_DisableIPv6Port(ipAddr, port);
    }
    char names[kMaxInterfaces][kNameSize];
    int count = kMaxInterfaces;
    if (!GetAllInterfaceInfo(names, &count)) {
        LOG_ERROR("GetAllInterfaceInfo failed");
        return false;
    }
    for (int i = 0; i < count; ++i) {
        if (!Equal(names[i], kUnfilteredCard)) DisablePortOf(names[i], port);
    }
    return true;
}

// ==== Switch and PoE ====

namespace {

constexpr unsigned char BroadCastMac[kMacSize] = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
constexpr unsigned char AllZeroMac[kMacSize] = {};
constexpr char kIPv4Type = 4;
constexpr int kMaskWidth = 32;

/// Refuses what is no switch: only what is nothing but a switch interface is one here.
bool RequireSwitch(const char* operation, const char* name)
{
    if (isSwitchByName(name) == 1) return true;

    LOG_ERROR_AS(operation, "%s is not a switch", name);
    return false;
}

bool HasLink(unsigned mask, int port)
{
    return port < kMaskWidth && (mask >> static_cast<unsigned>(port) & 1U) != 0;
}

bool IsNobodysMac(const unsigned char* mac)
{
    return memcmp(mac, BroadCastMac, kMacSize) == 0 || memcmp(mac, AllZeroMac, kMacSize) == 0;
}

/// Writes the hardware address behind a port, or leaves the text empty. The two messages count
/// ports from 1 and from 0.
void DescribeMac(const char* name, int port, SwitchPortStatus* status)
{
    unsigned char mac[kMacSize] = {};
    if (!Switch_GetMacByPort(name, port, reinterpret_cast<char*>(mac))) {
        LOG_ERROR_AS("GetSwitchStatus", "GetMacByPort %d error.", port + 1);
        return;
    }
    if (IsNobodysMac(mac)) {
        LOG_ERROR_AS("GetSwitchStatus", "Get port[%d]' mac error ,BroadCastMac || AllZeroMac",
                     port);
        return;
    }
    PrintMac(mac, status->mac);
}

void DescribePort(const char* name, int port, bool hasLink, SwitchPortStatus* status)
{
    (void)Switch_PortIsOk(name, port);  // a port that stays closed is listed all the same
    status->port = static_cast<unsigned char>(port);
    status->ipType = kIPv4Type;
    status->link = hasLink ? 1 : 0;
    CopyText(status->ip, kAnyIPv4);
    if (hasLink) DescribeMac(name, port, status);
}

}  // namespace

bool GetSwitchPortByMac(const char* name, const char* mac, int* port)
{
    if (name == nullptr || mac == nullptr || port == nullptr) return false;
    if (!RequireSwitch(__func__, name)) return false;

    unsigned char wanted[1][kMacSize] = {};
    (void)ParseMac(mac, wanted[0]);  // bytes that are missing count as 0
    return Switch_GetPortBymac(name, wanted, port, 1);
}

bool GetSwitchPortNum(const char* name, int* num)
{
    if (name == nullptr || num == nullptr) return false;

    return RequireSwitch(__func__, name) && Switch_GetSwitchPortInfo(name, num, nullptr);
}

bool GetSwitchMask(const char* name, int* mask)
{
    if (name == nullptr || mask == nullptr || !RequireSwitch(__func__, name)) return false;

    unsigned links = 0;
    if (!Switch_GetSwitchPortInfo(name, nullptr, &links)) return false;

    *mask = static_cast<int>(links);
    return true;
}

bool GetSwitchStatus(const char* name, SwitchPortStatus* status, int* num)
{
    if (name == nullptr || status == nullptr || num == nullptr) return false;
    if (!RequireSwitch(__func__, name)) return false;

    const int capacity = std::max(*num, 0);
    memset(status, 0, static_cast<size_t>(capacity) * sizeof(*status));
    int count = 0;
    unsigned mask = 0;
    (void)Switch_GetSwitchPortInfo(name, &count, &mask);  // no answer, no ports
    if (capacity < count) {
        LOG_WARN("too much Switch port number actually: portNum:[%d],inputNum:[%d]", count,
                 capacity);
        count = capacity;
    }
    for (int port = 0; port < count; ++port) {
        DescribePort(name, port, HasLink(mask, port), &status[port]);
    }
    *num = count;
    return true;
}

bool GetPoEPowerInfo(PoeInfo_t* poe_info)
{
    return PoE_GetPowerInfo(poe_info);
}

bool SetPoEPowerOn(uint32_t portmask)
{
    return PoE_SetPowerOn(portmask);
}

bool SetPoEPowerOff(uint32_t portmask)
{
    return PoE_SetPowerOff(portmask);
}

bool SetPoETotalPower(uint32_t power)
{
    return PoE_SetTotalPower(power);
}
