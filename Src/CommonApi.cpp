// Contents:
//   Routes: routes by text or by record, the default card and its route
//   IPv4 operations: address, gateway, hardware address, link of one card
//   Bonds: building and ending a bond, and putting a card's saved settings back
//
// Each chapter has its own helpers directly above its operations and calls only operations of the
// chapters before it.

#include "CommonApi.h"

#include "Backup.h"
#include "Base.h"
#include "Bond.h"
#include "Config.h"
#include "Network.h"
#include "Route.h"
#include "Support/Handles.h"
#include "Support/Log.h"
#include "Support/NameList.h"
#include "Support/Text.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>

#include <arpa/inet.h>

using namespace vorlix;

// ==== Routes ====

namespace vorlix {

namespace {

constexpr char kAnyIPv4[] = "0.0.0.0";   // default destination and its mask
constexpr char kAnyIPv6[] = "0:0:0::0";  // default destination, and a prefix length of 0 to `atoi`

constexpr int kRouteRows = 16;
constexpr int kDefaultCardRows = 10;
constexpr size_t kIPv6TextSize = 48;
constexpr uint8_t kIPv4Record = 0;
constexpr uint8_t kIPv6Record = 1;
constexpr uint32_t kLongestPrefix = 128;

std::atomic<int> s_disable{0};  // set once, never cleared

using ChangeRoute = bool (*)(const char* dst, const char* gw, const char* mask, const char* viaDev);

/// What tells the two families apart.
template <class Row>
struct RouteFamily {
    bool (*read)(Row* rows, int* num);
    ChangeRoute remove;
    const char* any;
    const char* noMemory;
    const char* noTable;
};
constexpr RouteFamily<IPv4Route> kIPv4 = {Route_GetIPv4Route, Route_DelIPv4Route, kAnyIPv4,
                                          "malloc struct IPv4Route failed",
                                          "get IPv4 RouteTable fail!"};
constexpr RouteFamily<IPv6Route> kIPv6 = {Route_GetIPv6Route, Route_DelIPv6Route, kAnyIPv6,
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

/// Deletes the default routes of a card, or of all cards for NULL, up to the first failure.
template <class Row>
bool DeleteDefaults(const char* operation, const RouteFamily<Row>& family,
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

}  // namespace vorlix

bool RouteAddIPv4(const char* dst, const char* gw, const char* mask, const char* viaDev)
{
    if (dst == nullptr || gw == nullptr || mask == nullptr || viaDev == nullptr) return false;

    return !Route_IsExistInSys(dst, gw, mask, viaDev) && Route_AddIPv4Route(dst, gw, mask, viaDev);
}

bool RouteDelIPv4(const char* dst, const char* gw, const char* mask, const char* viaDev)
{
    return Route_DelIPv4Route(dst, gw, mask, viaDev);
}

bool RouteAddIPv6(const char* dst, const char* gw, const char* mask, const char* viaDev)
{
    if (dst == nullptr || gw == nullptr || mask == nullptr || viaDev == nullptr) return false;

    LOG_INFO("ipv6routeAdd name:%s addr:%s gw:%s, mask:%s", viaDev, dst, gw, mask);
    IPv6Route wanted{};
    if (inet_pton(AF_INET6, dst, wanted.dst) != 1 || inet_pton(AF_INET6, gw, wanted.gw) != 1) {
        LOG_ERROR("addr error.[%s, %s, %s]", dst, gw, mask);
        return false;
    }
    wanted.perfix = static_cast<uint32_t>(atoi(mask));

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
    if (dst == nullptr || gw == nullptr || mask == nullptr || viaDev == nullptr) return false;

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
    if (name == nullptr) return false;

    (void)RouteDelDefIPv4(nullptr);  // the new route is tried whatever is left of the old ones
    char gw[kIPv4TextSize] = {};
    if (!GetGatewayByConfig(name, gw)) {
        LOG_ERROR("Can not get %s default gw.", name);
        return false;
    }
    return RouteAddIPv4(kAnyIPv4, gw, kAnyIPv4, name);
}

bool RouteDelDefIPv4(const char* name)
{
    RouteRows<IPv4Route> table;
    if (table.Read(kIPv4)) return DeleteDefaults(__func__, kIPv4, table, name);

    LOG_ERROR("get route item error.");
    if (name == nullptr) return false;

    char gw[kIPv4TextSize] = {};
    if (!GetGatewayByConfig(name, gw)) {
        LOG_ERROR("Can not get %s default gw.", name);
        return false;
    }
    return Route_DelIPv4Route(kAnyIPv4, gw, kAnyIPv4, name);
}

bool RouteAddDefIPv6(const char* name)
{
    if (name == nullptr) return false;

    (void)RouteDelDefIPv6(nullptr);  // the new route is tried whatever is left of the old ones
    char gw[kIPv6TextSize] = {};
    if (!GetGatewayv6ByConfig(name, gw, sizeof(gw))) {
        LOG_ERROR("Can not get %s default gw.", name);
        return false;
    }
    return Route_AddIPv6Route(kAnyIPv6, gw, kAnyIPv6, name);
}

bool RouteDelDefIPv6(const char* name)
{
    RouteRows<IPv6Route> table;
    if (table.Read(kIPv6)) return DeleteDefaults(__func__, kIPv6, table, name);

    LOG_ERROR("get route item error.");
    if (name == nullptr) return false;

    char gw[kIPv6TextSize] = {};
    if (!GetGatewayv6ByConfig(name, gw, sizeof(gw))) {
        LOG_ERROR("Can not get %s default gw.", name);
        return false;
    }
    // An IPv4 addition, which fails at the destination: without a table nothing is deleted here.
    return Route_AddIPv4Route(kAnyIPv6, gw, kAnyIPv6, name);
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

// ==== IPv4 operations ====

namespace vorlix {

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

}  // namespace vorlix

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
    if (Equal(name, "eth0")) (void)BackupGateway(name, addr);
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
    (void)GetWorkModeByConfig(name, mode);  // fails for NULL alone
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

// ==== Bonds ====

namespace vorlix {

namespace {

constexpr unsigned kHighestBondMtu = 7200;
constexpr int kFallBackMtu = 1500;

using MemberTable = NameTable<kMaxInterfaces, kNameSize>;
using AddressText = char[kIPv4TextSize];

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

}  // namespace vorlix

bool SetMtubyBondName(const char* bondName, const int mtu)
{
    if (bondName == nullptr) return false;

    const bool allowed = static_cast<unsigned>(mtu) <= kHighestBondMtu;
    if (!allowed) LOG_WARN("mtu can not be set to %d, will be set to 1500", mtu);
    const int wanted = allowed ? mtu : kFallBackMtu;

    MemberTable table;
    int count = kMaxInterfaces;
    if (!Bond_GetBondMembers(bondName, table.Pointers(), &count)) {
        LOG_INFO("%s is not bonded, just save mtu in config.", bondName);
        return true;
    }
    int present = 0;
    (void)Net_GetMtubyName(bondName, &present);
    if (present == wanted && allowed) return true;

    const NameList members = table.First(count);
    (void)Net_InterfaceDown(bondName);
    for (const char* member : members) (void)Net_InterfaceDown(member);
    const bool done = Net_SetMtubyName(bondName, wanted);  // the driver hands it to the members
    for (const char* member : members) (void)Net_InterfaceUp(member);
    (void)Net_InterfaceUp(bondName);
    return done;
}

bool NetCardRecover(const char* name)
{
    return name != nullptr && RecoverCard(name);
}
