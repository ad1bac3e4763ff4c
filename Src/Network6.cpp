// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Network6.h"

#include "Base.h"
#include "Support/Lines.h"
#include "Support/Log.h"
#include "Support/Text.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <linux/sockios.h>
#include <netinet/in.h>
#include <strings.h>

namespace vorlix {

namespace {

// ---- texts and limits

constexpr char kAddressTable[] = "/proc/net/if_inet6";
constexpr char kDefaultPrefix[] = "64";
constexpr int kDefaultPrefixLength = 64;

// Scopes as the table prints them.
constexpr int kGlobalScope = 0;
constexpr int kLinkLocalScope = 32;
constexpr int kCompatibleScope = 128;

constexpr int kGroups = 8;
constexpr int kEntryFields = 13;
constexpr int kAddressTextSize = 40;  // eight groups of four digits: no address takes more
constexpr size_t kCurrentAddressSize = 128;
constexpr size_t kPrefixTextSize = 8;
constexpr size_t kLinkLocalPrefixSize = 256;

// ---- records

/// The kernel's record of the address requests. Its header does not go together with those of the C
/// library.
struct in6_ifreq {
    in6_addr ifr6_addr;
    uint32_t ifr6_prefixlen;
    int32_t ifr6_ifindex;
};
static_assert(sizeof(in6_ifreq) == 24 && offsetof(in6_ifreq, ifr6_prefixlen) == 16 &&
                  offsetof(in6_ifreq, ifr6_ifindex) == 20,
              "kernel layout");

/// One line of the address table.
struct Entry {
    char groups[kGroups][5];
    unsigned index;
    unsigned prefix;
    unsigned scope;
    unsigned flags;
    char card[20];
};

// ---- the address table

/// Lines of any other form are no entries. So is the line of a card with an index above 255: its
/// three digits do not fit the column and shift the rest.
bool ParseEntry(const char* line, Entry* entry)
{
    auto& group = entry->groups;
    return sscanf(line, "%4s%4s%4s%4s%4s%4s%4s%4s %02x %02x %02x %02x %19s", group[0], group[1],
                  group[2], group[3], group[4], group[5], group[6], group[7], &entry->index,
                  &entry->prefix, &entry->scope, &entry->flags, entry->card) == kEntryFields;
}

bool FindEntry(LineReader& table, const char* name, unsigned scope, Entry* entry)
{
    char line[kLineSize];
    while (table.Next(line)) {
        if (ParseEntry(line, entry) && Equal(entry->card, name) && entry->scope == scope) {
            return true;
        }
    }
    return false;
}

/// The table writes the eight groups without separators.
in6_addr AddressOf(const Entry& entry)
{
    const auto& group = entry.groups;
    char text[kAddressTextSize];
    FormatText(text, sizeof(text), "%s:%s:%s:%s:%s:%s:%s:%s", group[0], group[1], group[2],
               group[3], group[4], group[5], group[6], group[7]);
    in6_addr address{};
    if (!ParseIPv6(text, &address)) LOG_ERROR_AS("Net6_GetAddressInfo", "IPv6 addr invalid");
    return address;
}

/// Writes the shortened form, or an empty text when that does not fit.
void PrintOrEmpty(const in6_addr& address, char* text, int size)
{
    char whole[kAddressTextSize] = {};
    (void)PrintIPv6(address, whole, std::min(size, kAddressTextSize));
    CopyText(text, static_cast<size_t>(size), whole);
}

// ---- addresses of a card

/// The address of interest with its prefix length.
struct Current {
    char address[kCurrentAddressSize];
    char prefix[kPrefixTextSize];
};

bool ReadCurrent(const char* name, Current* current)
{
    CopyText(current->address, "");
    CopyText(current->prefix, kDefaultPrefix);
    return Net6_GetIPv6byName(name, current->address, sizeof(current->address), current->prefix,
                              sizeof(current->prefix));
}

/// Index for a change of address, -1 with a message of the operation.
int IndexFor(const char* operation, const char* name)
{
    const int index = Net6_GetInterfaceIndex(name);
    if (index < 0) LOG_ERROR_AS(operation, "get index error.");
    return index;
}

uint32_t PrefixLength(const char* text)
{
    return static_cast<uint32_t>(NumberOf(text));
}

}  // namespace

}  // namespace vorlix

using namespace vorlix;

int Net6_GetInterfaceIndex(const char* name)
{
    if (name == nullptr) return -1;

    ifreq request = RequestFor(name);
    if (!NetIOCtrlv6(SIOCGIFINDEX, &request)) {
        LOG_ERROR("get %s index failed.", name);
        return -1;
    }
    return request.ifr_ifindex;
}

bool Net6_GetAddressInfo(const char* name, char* addr, int ipLen, char* perfix, int perFixLen,
                         int addrType)
{
    if (name == nullptr || addr == nullptr || perfix == nullptr) return false;
    if (ipLen < 1 || perFixLen < 1) return false;
    if (addrType != kGlobalScope && addrType != kLinkLocalScope && addrType != kCompatibleScope) {
        return false;
    }
    LineFile table(kAddressTable);
    if (!table.Ok()) {
        LOG_ERROR("can not open %s", kAddressTable);
        return false;
    }
    Entry entry{};
    if (!FindEntry(table.Lines(), name, static_cast<unsigned>(addrType), &entry)) return false;

    PrintOrEmpty(AddressOf(entry), addr, ipLen);
    FormatText(perfix, static_cast<size_t>(perFixLen), "%d", static_cast<int>(entry.prefix));
    return true;
}

bool Net6_GetIPv6byName(const char* name, char* addr, int ipLen, char* perfix, int perFixLen)
{
    return Net6_GetAddressInfo(name, addr, ipLen, perfix, perFixLen, kGlobalScope) ||
           Net6_GetAddressInfo(name, addr, ipLen, perfix, perFixLen, kCompatibleScope);
}

bool Net6_SetIPv6byName(const char* name, const char* addr, const char* perfix)
{
    if (name == nullptr || addr == nullptr) return false;

    const int index = IndexFor(__func__, name);
    if (index < 0) return false;

    in6_ifreq request{};
    if (!ParseIPv6(addr, &request.ifr6_addr)) {
        LOG_ERROR("address format error or inet_pton failed[%s]", addr);
        return false;
    }
    if (IN6_IS_ADDR_UNSPECIFIED(&request.ifr6_addr)) return true;

    if (perfix == nullptr) {
        LOG_WARN("perfix is NULL use 64 for default.[%s,%s]", name, addr);
        request.ifr6_prefixlen = kDefaultPrefixLength;
    } else {
        request.ifr6_prefixlen = PrefixLength(perfix);
    }
    request.ifr6_ifindex = index;
    if (!NetIOCtrlv6(SIOCSIFADDR, &request)) {
        LOG_ERROR("Set ip failed %s:%s", name, addr);
        return false;
    }
    // The address is set, whatever becomes of the link.
    if (!InterfaceUp(name)) LOG_WARN("up %s failed.[%s]", name, addr);
    return true;
}

bool Net6_IsIPAddressIpv6Exist(const char* name, const char* addr, const char* prefix)
{
    if (name == nullptr || addr == nullptr || prefix == nullptr) return false;

    Current current;
    return ReadCurrent(name, &current) && strcasecmp(current.address, addr) == 0 &&
           strcasecmp(current.prefix, prefix) == 0;
}

bool Net6_DelIPAddressIpv6(const char* name, const char* addr, const char* prefix)
{
    if (name == nullptr) return false;

    Current current;
    if (!ReadCurrent(name, &current)) {
        LOG_INFO("get ipv6 addr failed, %s maybe has no ipv6 addr.", name);
        return true;
    }
    const int index = IndexFor(__func__, name);
    if (index < 0) return false;

    const char* address = current.address;
    if (addr != nullptr && strncmp(current.address, addr, sizeof(current.address)) != 0) {
        LOG_WARN("the ipv6 addr in config is %s ,different with params:%s.[%s]", current.address,
                 addr, name);
        address = addr;
        if (prefix != nullptr) CopyText(current.prefix, prefix);
    }
    in6_ifreq request{};
    if (!ParseIPv6(address, &request.ifr6_addr)) {
        LOG_ERROR("address format error or inet_pton failed[%s/%s]", address, current.prefix);
        return false;
    }
    request.ifr6_prefixlen = PrefixLength(current.prefix);
    request.ifr6_ifindex = index;
    if (NetIOCtrlv6(SIOCDIFADDR, &request)) return true;

    LOG_ERROR("del ip[%s/%s] failed:error %s", address, current.prefix, strerror(errno));
    return false;
}

bool Net6_GetLinkLocalAddressIpv6(const char* name, char* addr, int ipLen)
{
    if (name == nullptr || addr == nullptr) return false;

    char prefix[kLinkLocalPrefixSize];
    if (!Net6_GetAddressInfo(name, addr, ipLen, prefix, sizeof(prefix), kLinkLocalScope)) {
        LOG_ERROR("get IPv6 LinkLocalAddress false");
        return false;
    }
    Strcat(addr, static_cast<size_t>(ipLen), "/", nullptr);
    Strcat(addr, static_cast<size_t>(ipLen), prefix, nullptr);
    return true;
}

bool Net6_GetLinkLocalFromMac(char* addr, int ipLen, const char* mac)
{
    if (addr == nullptr || mac == nullptr || ipLen < 1) return false;

    unsigned char m[kMacSize] = {};
    if (!ParseMac(mac, m)) {
        LOG_ERROR("mac error");
        return false;
    }
    constexpr unsigned kUniversalBit = 0x02;
    const unsigned first = m[0] ^ kUniversalBit;
    FormatText(addr, static_cast<size_t>(ipLen), "fe80::%x:%x:%x:%x", first << 8 | m[1],
               static_cast<unsigned>(m[2]) << 8 | 0xff, 0xfe00U | m[3],
               static_cast<unsigned>(m[4]) << 8 | m[5]);
    return true;
}
