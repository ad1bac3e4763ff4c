// Contents:
//   Routes: routes by text or by record, the default card and its route
//
// Each chapter has its own helpers directly above its operations and calls only operations of the
// chapters before it.

#include "CommonApi.h"

#include "Base.h"
#include "Config.h"
#include "Route.h"
#include "Support/Handles.h"
#include "Support/Log.h"
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
