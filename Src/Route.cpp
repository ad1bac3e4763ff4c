// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Chapters of the helpers: tables - records - requests - changes. The operations follow the header.

#include "Route.h"

#include "Network6.h"
#include "Support/Handles.h"
#include "Support/KeptTable.h"
#include "Support/Lines.h"
#include "Support/Log.h"
#include "Support/Sockets.h"
#include "Support/Text.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <arpa/inet.h>
#include <fcntl.h>
#include <linux/sockios.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace vorlix {

namespace {

// ---- texts and limits

constexpr char kIPv4Table[] = "/proc/net/route";
constexpr char kIPv6Table[] = "/proc/net/ipv6_route";
constexpr char kFlushFile[] = "/proc/sys/net/ipv4/route/flush";
constexpr char kFlushNow[] = {'-', '1'};

constexpr char kNoIPv4[] = "0.0.0.0";
constexpr char kNoIPv6[] = "::";

constexpr int kRowsLookedAt = 16;
constexpr size_t kIPv4RowSize = 128;  // the kernel fills its rows up with blanks
constexpr int kLongestPrefix = 128;
constexpr size_t kUnusedSize = 128;

// ---- tables

/// What so many rows and the titles of their columns take, up to a page: a reader asks for no more
/// at a time.
constexpr size_t BytesFor(int rows)
{
    constexpr int kRowsOfAPage = kPageSize / kIPv4RowSize - 1;
    return (static_cast<size_t>(std::clamp(rows, 0, kRowsOfAPage)) + 1) * kIPv4RowSize;
}
static_assert(BytesFor(1) == 2 * kIPv4RowSize && BytesFor(INT_MAX) == kPageSize,
              "no count of rows leaves a size_t, also where that has 32 bits");

/// Opens a table for its reader, who holds the lock: it is given back before a failure is told.
bool OpenForReader(const char* operation, KeptTable* table, MutexGuard* guard)
{
    if (OpenTable(table)) return true;

    guard->Release();
    LOG_ERROR_AS(operation, "Can not open %s", table->path);
    return false;
}

/// @param scan  stores a line as a row; false for a line that does not count
/// @return number of rows stored
template <class Row>
int ReadRows(LineReader* reader, bool (*scan)(const char* line, Row* row), Row* rows, int capacity)
{
    char line[kLineSize];
    int count = 0;
    while (count < capacity && reader->Next(line)) {
        if (scan(line, &rows[count])) ++count;
    }
    return count;
}

// What counts differs on purpose: IPv4 lines are told by their first character, IPv6 lines by "lo"
// and the cache flag.

/// Value of a digit as the kernel prints it, -1 for any other character.
int HexDigit(char character)
{
    if (IsDigit(character)) return character - '0';
    return character >= 'A' && character <= 'F' ? character - 'A' + 10 : -1;
}

/// Reads a column of one to eight digits and the tab behind it.
///
/// @return what follows; NULL when the column has another form, and for NULL
const char* TakeColumn(const char* text, uint32_t* value)
{
    if (text == nullptr) return nullptr;

    const char* end = text;
    for (*value = 0; HexDigit(*end) >= 0; ++end) {
        *value = *value << 4 | static_cast<uint32_t>(HexDigit(*end));
    }
    const bool isColumn = end > text && end - text <= 8 && *end == '\t';
    return isColumn ? end + 1 : nullptr;
}

/// The form that the kernel gives nearly every row: tabs between columns of at most eight digits.
/// Most of a table's reading time is its parsing, and this takes a fifth of what `sscanf` does.
///
/// @return false for a line of another form, with the row as it was
bool TakeIPv4Row(const char* line, IPv4Route* row)
{
    const size_t length = strcspn(line, " \t\n\v\f\r");
    if (length >= sizeof(row->viaDev) || line[length] != '\t') return false;

    IPv4Route taken{};
    uint32_t unused = 0;
    const char* rest = line + length + 1;
    for (uint32_t* column :
         {&taken.dst, &taken.gw, &unused, &unused, &unused, &unused, &taken.mask}) {
        rest = TakeColumn(rest, column);
    }
    if (rest == nullptr) return false;

    memcpy(taken.viaDev, line, length);
    *row = taken;
    return true;
}

/// Iface Destination Gateway Flags RefCnt Use Metric Mask MTU Window IRTT. A short line sets what
/// it holds, and a number of more than eight digits counts as two columns.
bool ScanIPv4Line(const char* line, IPv4Route* row)
{
    if (islower(static_cast<unsigned char>(line[0])) == 0) return false;
    if (TakeIPv4Row(line, row)) return true;

    uint32_t unused = 0;
    (void)sscanf(line, "%15s %8x %8x %8x %8x %8x %8x %8x %8x %8x %8x", row->viaDev, &row->dst,
                 &row->gw, &unused, &unused, &unused, &unused, &row->mask, &unused, &unused,
                 &unused);
    return true;
}

/// The words of an address are printed as numbers, most significant digit first.
void ToNetworkOrder(uint32_t (&words)[4])
{
    for (uint32_t& word : words) word = htonl(word);
}

/// Destination, its prefix, source, its prefix, next hop, metric, two counts, flags, card. A short
/// line leaves the rest zero.
bool ScanIPv6Line(const char* line, IPv6Route* row)
{
    if (Contains(line, "lo")) return false;  // everything but the card is hexadecimal

    IPv6Route scanned{};
    uint32_t flags = 0;
    char unused[kUnusedSize];
    (void)sscanf(line,
                 "%08x%08x%08x%08x %8x %127s %127s %08x%08x%08x%08x %127s %127s %127s %08x %15s",
                 &scanned.dst[0], &scanned.dst[1], &scanned.dst[2], &scanned.dst[3],
                 &scanned.perfix, unused, unused, &scanned.gw[0], &scanned.gw[1], &scanned.gw[2],
                 &scanned.gw[3], unused, unused, unused, &flags, scanned.viaDev);
    if ((flags & RTF_CACHE) != 0) return false;

    ToNetworkOrder(scanned.dst);
    ToNetworkOrder(scanned.gw);
    *row = scanned;
    return true;
}

// ---- records

/// Parses an address, in any form that `inet_aton` takes, into a field of the record.
bool StoreIPv4(const char* field, const char* text, sockaddr* stored)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    if (!ParseLooseIPv4(text, &address.sin_addr)) {
        LOG_ERROR_AS("Route_FillRtentry", "incorrect %s.[%s]", field, text);
        return false;
    }
    memcpy(stored, &address, sizeof(*stored));
    return true;
}

bool StoreIPv6(const char* field, const char* text, in6_addr* stored)
{
    if (ParseIPv6(text, stored)) return true;

    LOG_ERROR_AS("Route_FillIn6_rtmsg", "incorrect %s.[%s]", field, text);
    return false;
}

bool IsHostMask(const sockaddr& mask)
{
    sockaddr_in address{};
    memcpy(&address, &mask, sizeof(address));
    return address.sin_addr.s_addr == INADDR_NONE;
}

// ---- requests

/// Performs a route request on the socket of a family.
bool Perform(const char* operation, KeptSocket& shared, int cmd, void* record)
{
    if ((cmd != SIOCADDRT && cmd != SIOCDELRT) || record == nullptr) return false;

    const int control = shared.Get();
    if (control < 0) {
        LOG_ERROR_AS(operation, "open socket error.[%s]", strerror(errno));
        return false;
    }
    if (ioctl(control, static_cast<unsigned>(cmd), record) >= 0) return true;

    LOG_ERROR_AS(operation, "iotcl failed.[%s]", strerror(errno));
    return false;
}

// ---- changes

/// A route as its caller gives it. All four are needed.
struct RouteTexts {
    const char* dst;
    const char* gw;
    const char* mask;
    const char* viaDev;

    bool HoldsNull() const
    {
        return dst == nullptr || gw == nullptr || mask == nullptr || viaDev == nullptr;
    }
};

/// Tells which step of a change has failed.
void TellFailure(const char* operation, const char* step, const RouteTexts& route)
{
    LOG_ERROR_AS(operation, "%s error.dst:%s gw:%s mask:%s dev:%s", step, route.dst, route.gw,
                 route.mask, route.viaDev);
}

bool ChangeIPv4(const char* operation, int cmd, const RouteTexts& route)
{
    rtentry record;
    if (!Route_FillRtentry(route.dst, route.gw, route.mask, route.viaDev, &record)) {
        TellFailure(operation, "Route_FillRtentry", route);
        return false;
    }
    if (Route_SetIPv4Route(cmd, &record)) return true;

    TellFailure(operation, "Route_SetIPv4Route", route);
    return false;
}

/// @param refused  the word for a refusal; an addition has the one of IPv4
bool ChangeIPv6(const char* operation, int cmd, const char* refused, const RouteTexts& route)
{
    if (route.HoldsNull()) return false;

    in6_rtmsg record;
    if (!Route_FillIn6_rtmsg(route.dst, route.gw, NumberOf(route.mask), route.viaDev, &record)) {
        TellFailure(operation, "Route_FillRtentry", route);
        return false;
    }
    if (Route_SetIPv6Route(cmd, &record)) return true;

    TellFailure(operation, refused, route);
    return false;
}

}  // namespace

}  // namespace vorlix

using namespace vorlix;

bool Route_GetIPv4Route(IPv4Route* routes, int* num)
{
    static KeptTable table{kIPv4Table};

    if (routes == nullptr || num == nullptr) return false;

    MutexGuard guard(table.routeLock);
    if (!OpenForReader(__func__, &table, &guard)) return false;

    LineReader reader(table.fd, BytesFor(*num));
    char titles[kLineSize];  // of the columns
    (void)reader.Next(titles);
    const int count = ReadRows(&reader, ScanIPv4Line, routes, *num);
    guard.Release();
    *num = count;
    return true;
}

bool Route_GetIPv6Route(IPv6Route* routes, int* num)
{
    static KeptTable table{kIPv6Table};

    if (routes == nullptr || num == nullptr) return false;

    MutexGuard guard(table.routeLock);
    if (!OpenForReader(__func__, &table, &guard)) return false;

    LineReader reader(table.fd);
    const int count = ReadRows(&reader, ScanIPv6Line, routes, *num);
    guard.Release();
    *num = count;
    return true;
}

bool Route_AddIPv4Route(const char* dst, const char* gw, const char* mask, const char* viaDev)
{
    const RouteTexts route{dst, gw, mask, viaDev};
    if (route.HoldsNull()) return false;

    LOG_INFO("%s,%s,%s,%s##########Route_AddIPv4Route###########", dst, gw, mask, viaDev);
    return ChangeIPv4(__func__, SIOCADDRT, route);
}

bool Route_DelIPv4Route(const char* dst, const char* gw, const char* mask, const char* viaDev)
{
    const RouteTexts route{dst, gw, mask, viaDev};
    if (route.HoldsNull()) return false;

    LOG_INFO("%s,%s,%s,%s###########Route_DelIPv4Route##########", dst, gw, mask, viaDev);
    return ChangeIPv4(__func__, SIOCDELRT, route);
}

bool Route_AddIPv6Route(const char* dst, const char* gw, const char* mask, const char* viaDev)
{
    return ChangeIPv6(__func__, SIOCADDRT, "Route_SetIPv4Route", {dst, gw, mask, viaDev});
}

bool Route_DelIPv6Route(const char* dst, const char* gw, const char* mask, const char* viaDev)
{
    return ChangeIPv6(__func__, SIOCDELRT, "Route_SetIPv6Route", {dst, gw, mask, viaDev});
}

bool Route_IsExistInSys(const char* dst, const char* gw, const char* mask, const char* viaDev)
{
    if (RouteTexts{dst, gw, mask, viaDev}.HoldsNull()) return false;

    IPv4Route wanted{};
    if (!ParseIPv4(dst, &wanted.dst) || !ParseIPv4(gw, &wanted.gw) ||
        !ParseIPv4(mask, &wanted.mask)) {
        LOG_ERROR("addr error.[%s,%s,%s]", dst, gw, mask);
        return false;
    }
    wanted.dst &= wanted.mask;

    IPv4Route routes[kRowsLookedAt] = {};
    int count = kRowsLookedAt;
    if (!Route_GetIPv4Route(routes, &count)) {
        LOG_WARN("get route item error.");
        return false;
    }
    for (int i = 0; i < count; ++i) {
        const IPv4Route& row = routes[i];
        if (row.dst != wanted.dst || row.gw != wanted.gw || row.mask != wanted.mask) continue;
        if (strncmp(row.viaDev, viaDev, sizeof(row.viaDev)) != 0) continue;

        LOG_INFO("this route st.[%s,%s,%s,%s]", dst, gw, mask, viaDev);
        return true;
    }
    return false;
}

void Route_Flush_Cache(void)
{
    Fd file(open(kFlushFile, O_WRONLY));
    if (!file.Ok()) return;

    const ssize_t written = write(file.Get(), kFlushNow, sizeof(kFlushNow));
    file.Close();
    if (written < static_cast<ssize_t>(sizeof(kFlushNow))) {
        LOG_ERROR("can't flush routing cache");
    }
}

bool Route_FillRtentry(const char* dst, const char* gw, const char* mask, const char* viaDev,
                       struct rtentry* rt)
{
    // One a thread: the record points at it. Its place is fixed when the process starts, so that
    // no helper of the dynamic loader is needed to find it.
    [[gnu::tls_model("initial-exec")]] static thread_local char dev[IFNAMSIZ];

    if (rt == nullptr || RouteTexts{dst, gw, mask, viaDev}.HoldsNull()) return false;

    *rt = {};
    rt->rt_flags = RTF_UP;
    if (!StoreIPv4("addr", dst, &rt->rt_dst)) return false;

    // "Nothing" is told by the very text: another form of zero is an address like any other.
    if (!Equal(gw, kNoIPv4)) {
        if (!StoreIPv4("gw", gw, &rt->rt_gateway)) return false;
        rt->rt_flags |= RTF_GATEWAY;
    }
    if (!Equal(mask, kNoIPv4)) {
        if (!StoreIPv4("mask", mask, &rt->rt_genmask)) return false;
        if (IsHostMask(rt->rt_genmask)) rt->rt_flags |= RTF_HOST;
    }
    CopyText(dev, viaDev);
    rt->rt_dev = dev;
    return true;
}

bool Route_FillIn6_rtmsg(const char* dst, const char* gw, const int perfix, const char* viaDev,
                         struct in6_rtmsg* rt)
{
    if (dst == nullptr || gw == nullptr || viaDev == nullptr || rt == nullptr) return false;
    if (perfix < 0 || perfix > kLongestPrefix) return false;

    *rt = {};
    rt->rtmsg_dst_len = static_cast<uint16_t>(perfix);
    rt->rtmsg_flags = perfix == kLongestPrefix ? RTF_UP | RTF_HOST : RTF_UP;
    if (!StoreIPv6("addr", dst, &rt->rtmsg_dst)) return false;

    if (!Equal(gw, kNoIPv6)) {
        if (!StoreIPv6("gw", gw, &rt->rtmsg_gateway)) return false;
        rt->rtmsg_flags |= RTF_GATEWAY;
    }
    rt->rtmsg_ifindex = Net6_GetInterfaceIndex(viaDev);
    return true;
}

bool Route_SetIPv4Route(int cmd, struct rtentry* rt)
{
    static KeptSocket fd{AF_INET};

    return Perform(__func__, fd, cmd, rt);
}

bool Route_SetIPv6Route(int cmd, struct in6_rtmsg* rt)
{
    static KeptSocket fd{AF_INET6};

    return Perform(__func__, fd, cmd, rt);
}
