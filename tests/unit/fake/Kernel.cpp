// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "fake/Kernel.h"

#include "fake/Odd.h"
#include "fake/World.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <map>

#include <arpa/inet.h>
#include <linux/sockios.h>
#include <net/if.h>
#include <net/if_arp.h>
#include <net/route.h>

namespace fake {

Kernel kernel;

namespace {

struct Request6 {  // the kernel's in6_ifreq
    in6_addr address;
    uint32_t prefix;
    int32_t index;
};

struct RtcRecord {
    uint32_t offset;
    uint32_t length;
    uint8_t* bytes;
};

struct SwitchRecord {
    uint16_t links;
    uint8_t ports;
    uint8_t port;
    uint8_t mac[6];
    uint16_t enable;
    uint16_t isolation;
};

struct SramFile {
    void* handle;
    const char* name;
    uint32_t period;
    uint32_t mode;
    uint32_t markLength;
    uint32_t totalLength;
};

struct SramRecord {
    void* handle;
    uint8_t* bytes;
    uint32_t length;
    uint32_t offset;
    uint32_t reserved[3];
};

constexpr unsigned long kSramCreate = 0xC0085100U;
constexpr unsigned long kSramRead = 0xC0085102U;
constexpr unsigned long kSramWrite = 0xC0085103U;
constexpr unsigned long kRtcRead = 0xC0085200U;
constexpr unsigned long kRtcWrite = 0xC0085201U;
constexpr unsigned long kSwitchInfo = 0x89F1;
constexpr unsigned long kSwitchMac = 0x89F2;  // without a chip: the medium a card prefers
constexpr unsigned long kSwitchPort = 0x89F3;
constexpr unsigned long kSwitchEnable = 0x89F4;
constexpr unsigned long kSwitchIsolate = 0x89F8;
constexpr unsigned long kPowerInfo = 0x81005001U;
constexpr unsigned long kPowerOff = 0x40045002U;
constexpr unsigned long kPowerOn = 0x40045003U;
constexpr unsigned long kPowerTotal = 0x40045005U;

const std::map<unsigned long, std::string> kRequestNames = {{SIOCADDRT, "SIOCADDRT"},
                                                            {SIOCDELRT, "SIOCDELRT"},
                                                            {SIOCGIFFLAGS, "SIOCGIFFLAGS"},
                                                            {SIOCSIFFLAGS, "SIOCSIFFLAGS"},
                                                            {SIOCGIFADDR, "SIOCGIFADDR"},
                                                            {SIOCSIFADDR, "SIOCSIFADDR"},
                                                            {SIOCDIFADDR, "SIOCDIFADDR"},
                                                            {SIOCGIFNETMASK, "SIOCGIFNETMASK"},
                                                            {SIOCSIFNETMASK, "SIOCSIFNETMASK"},
                                                            {SIOCGIFMTU, "SIOCGIFMTU"},
                                                            {SIOCSIFMTU, "SIOCSIFMTU"},
                                                            {SIOCGIFHWADDR, "SIOCGIFHWADDR"},
                                                            {SIOCSIFHWADDR, "SIOCSIFHWADDR"},
                                                            {SIOCGIFINDEX, "SIOCGIFINDEX"},
                                                            {kSwitchInfo, "0x89F1"},
                                                            {kSwitchMac, "0x89F2"},
                                                            {kSwitchPort, "0x89F3"},
                                                            {kSwitchEnable, "0x89F4"},
                                                            {kSwitchIsolate, "0x89F8"},
                                                            {kSramCreate, "PDC_SRAMFILE_CREATE"},
                                                            {kSramRead, "PDC_SRAMFILE_READ"},
                                                            {kSramWrite, "PDC_SRAMFILE_WRITE"},
                                                            {kRtcRead, "PDC_RTC_READSRAM"},
                                                            {kRtcWrite, "PDC_RTC_WRITESRAM"}};

std::string Text4(const sockaddr& address)
{
    char text[INET_ADDRSTRLEN];
    const auto& in = reinterpret_cast<const sockaddr_in&>(address);
    return inet_ntop(AF_INET, &in.sin_addr, text, sizeof(text));
}

std::string Text6(const in6_addr& address)
{
    char text[INET6_ADDRSTRLEN];
    return inet_ntop(AF_INET6, &address, text, sizeof(text));
}

void Store4(sockaddr* address, const std::string& text)
{
    auto* in = reinterpret_cast<sockaddr_in*>(address);
    in->sin_family = AF_INET;
    inet_pton(AF_INET, text.c_str(), &in->sin_addr);
}

Card* CardOf(int index)
{
    for (Card& card : kernel.cards) {
        if (card.index == index) return &card;
    }
    return nullptr;
}

std::string NameIn(const void* record)
{
    const auto* name = static_cast<const char*>(record);
    return std::string(name, strnlen(name, IFNAMSIZ));
}

// ---- requests on a card

int Ethtool(Card& card, void* record)
{
    uint32_t command = 0;
    memcpy(&command, record, sizeof(command));
    if (command == ETHTOOL_GDRVINFO) {
        if (card.driver.empty()) return EOPNOTSUPP;
        auto* info = static_cast<ethtool_drvinfo*>(record);
        // A driver may fill its fields to the last byte.
        card.driver.copy(info->driver, sizeof(info->driver));
        card.driverVersion.copy(info->version, sizeof(info->version));
        return 0;
    }
    if (command == ETHTOOL_GLINK) {
        if (!card.link) return EOPNOTSUPP;
        static_cast<ethtool_value*>(record)->data = *card.link;
        return 0;
    }
    if (command == ETHTOOL_GSET) {
        if (!card.settings) return EOPNOTSUPP;
        *static_cast<ethtool_cmd*>(record) = *card.settings;
        return 0;
    }
    return EOPNOTSUPP;
}

int SetMtu(Card& card, int mtu)
{
    if (card.refusesMtuWhileUp && (card.flags & IFF_UP) != 0) return EBUSY;
    if (mtu < 68) return EINVAL;
    card.mtu = mtu;
    return 0;
}

int SetAddress(Card& card, const sockaddr& address)
{
    const std::string text = Text4(address);
    card.address = text == "0.0.0.0" ? "" : text;
    return 0;
}

void StoreMac(sockaddr* address, const std::string& mac)
{
    auto* bytes = reinterpret_cast<unsigned char*>(address->sa_data);
    sscanf(mac.c_str(), "%02hhx:%02hhx:%02hhx:%02hhx:%02hhx:%02hhx", bytes, bytes + 1, bytes + 2,
           bytes + 3, bytes + 4, bytes + 5);
}

std::string MacIn(const sockaddr& address)
{
    const auto* bytes = reinterpret_cast<const unsigned char*>(address.sa_data);
    char text[18];
    snprintf(text, sizeof(text), "%02x:%02x:%02x:%02x:%02x:%02x", bytes[0], bytes[1], bytes[2],
             bytes[3], bytes[4], bytes[5]);
    return text;
}

// ---- requests on the switch chip of a card

int OnPort(SwitchChip& chip, unsigned long request, SwitchRecord* record)
{
    if (record->port >= chip.ports.size()) return EINVAL;
    SwitchPort& port = chip.ports[record->port];
    if (request == kSwitchEnable) {
        port.enabled = record->enable != 0;
        return 0;
    }
    sscanf(port.mac.c_str(), "%02hhx:%02hhx:%02hhx:%02hhx:%02hhx:%02hhx", record->mac,
           record->mac + 1, record->mac + 2, record->mac + 3, record->mac + 4, record->mac + 5);
    return 0;
}

int FindPort(const SwitchChip& chip, SwitchRecord* record)
{
    char mac[18];
    snprintf(mac, sizeof(mac), "%02x:%02x:%02x:%02x:%02x:%02x", record->mac[0], record->mac[1],
             record->mac[2], record->mac[3], record->mac[4], record->mac[5]);
    for (size_t i = 0; i < chip.ports.size(); ++i) {
        if (chip.ports[i].mac != mac) continue;
        record->port = static_cast<uint8_t>(i);
        return 0;
    }
    return ENOENT;
}

void DescribeChip(const SwitchChip& chip, SwitchRecord* record)
{
    record->ports = static_cast<uint8_t>(chip.ports.size());
    record->links = 0;
    for (size_t i = 0; i < chip.ports.size() && i < 16; ++i) {
        if (chip.ports[i].link) record->links = static_cast<uint16_t>(record->links | 1U << i);
    }
}

int OnChip(SwitchChip& chip, unsigned long request, void* behindName)
{
    SwitchRecord record{};
    memcpy(&record, behindName, sizeof(record));
    int error = 0;
    switch (request) {
    case kSwitchInfo: DescribeChip(chip, &record); break;
    case kSwitchMac:
    case kSwitchEnable: error = OnPort(chip, request, &record); break;
    case kSwitchPort: error = FindPort(chip, &record); break;
    default: ++chip.isolations; break;
    }
    memcpy(behindName, &record, sizeof(record));
    return error;
}

int OnPrivate(Card& card, unsigned long request, ifreq* record)
{
    if (card.chip) return OnChip(*card.chip, request, &record->ifr_ifru);
    return request == kSwitchMac ? 0 : EOPNOTSUPP;
}

int OnCard(unsigned long request, ifreq* record)
{
    Card* card = kernel.Find(NameIn(record));
    if (card == nullptr) return ENODEV;

    switch (request) {
    case SIOCGIFFLAGS: record->ifr_flags = card->flags; return 0;
    case SIOCSIFFLAGS: card->flags = record->ifr_flags; return 0;
    case SIOCGIFADDR:
        if (card->address.empty()) return EADDRNOTAVAIL;
        Store4(&record->ifr_addr, card->address);
        return 0;
    case SIOCSIFADDR: return SetAddress(*card, record->ifr_addr);
    case SIOCGIFNETMASK:
        if (card->address.empty()) return EADDRNOTAVAIL;
        Store4(&record->ifr_netmask, card->mask);
        return 0;
    case SIOCSIFNETMASK: card->mask = Text4(record->ifr_netmask); return 0;
    case SIOCGIFMTU: record->ifr_mtu = card->mtu; return 0;
    case SIOCSIFMTU: return SetMtu(*card, record->ifr_mtu);
    case SIOCGIFHWADDR: StoreMac(&record->ifr_hwaddr, card->mac); return 0;
    case SIOCSIFHWADDR: card->mac = MacIn(record->ifr_hwaddr); return 0;
    case SIOCGIFINDEX:
        if (card->index != 0) record->ifr_ifindex = card->index;
        return 0;
    case SIOCETHTOOL: return Ethtool(*card, record->ifr_data);
    case kSwitchInfo:
    case kSwitchMac:
    case kSwitchPort:
    case kSwitchEnable:
    case kSwitchIsolate: return OnPrivate(*card, request, record);
    default: return ENOTTY;
    }
}

// ---- routes

int OnRoute(unsigned long request, const rtentry& record)
{
    const Route route = {Text4(record.rt_dst), Text4(record.rt_gateway), Text4(record.rt_genmask),
                         record.rt_dev == nullptr ? "" : record.rt_dev};
    if (kernel.Find(route.card) == nullptr) return ENODEV;

    auto found = kernel.routes.begin();
    while (found != kernel.routes.end() && !(*found == route)) ++found;
    if (request == SIOCADDRT) {
        if (found != kernel.routes.end()) return EEXIST;
        kernel.routes.push_back(route);
        return 0;
    }
    if (found == kernel.routes.end()) return ESRCH;
    kernel.routes.erase(found);
    return 0;
}

int OnRoute6(unsigned long request, const in6_rtmsg& record)
{
    const Card* card = CardOf(record.rtmsg_ifindex);
    if (card == nullptr) return ENODEV;

    const Route6 route = {Text6(record.rtmsg_dst), record.rtmsg_dst_len,
                          Text6(record.rtmsg_gateway), card->name, record.rtmsg_flags};
    auto found = kernel.routes6.begin();
    while (found != kernel.routes6.end() && !(*found == route)) ++found;
    if (request == SIOCADDRT) {
        if (found != kernel.routes6.end()) return EEXIST;
        kernel.routes6.push_back(route);
        return 0;
    }
    if (found == kernel.routes6.end()) return ESRCH;
    kernel.routes6.erase(found);
    return 0;
}

int OnAddress6(unsigned long request, const Request6& record)
{
    Card* card = CardOf(record.index);
    if (card == nullptr) return ENODEV;

    const std::string text = Text6(record.address);
    auto& addresses = card->addresses6;
    auto found = addresses.begin();
    while (found != addresses.end() && (found->text != text || found->prefix != record.prefix)) {
        ++found;
    }
    if (request == SIOCSIFADDR) {
        if (found != addresses.end()) return EEXIST;
        addresses.push_back({text, record.prefix, text.rfind("fe80", 0) == 0 ? 0x20U : 0U});
        return 0;
    }
    if (found == addresses.end()) return EADDRNOTAVAIL;
    addresses.erase(found);
    return 0;
}

// ---- neighbours

/// A request without a card is for the one that the routes name, here the first.
int OnNeighbour(unsigned long request, const arpreq& record)
{
    const std::string named(record.arp_dev, strnlen(record.arp_dev, sizeof(record.arp_dev)));
    const Card* card = !named.empty()         ? kernel.Find(named)
                       : kernel.cards.empty() ? nullptr
                                              : &kernel.cards.front();
    if (record.arp_pa.sa_family != AF_INET) return EPFNOSUPPORT;
    if (card == nullptr) return ENODEV;

    const std::string ip = Text4(record.arp_pa);
    auto found = kernel.neighbours.begin();
    while (found != kernel.neighbours.end() && (found->ip != ip || found->card != card->name)) {
        ++found;
    }
    if (request == SIOCDARP) {
        if (found == kernel.neighbours.end()) return ENXIO;
        kernel.neighbours.erase(found);
        return 0;
    }
    if (record.arp_ha.sa_family != ARPHRD_ETHER) return EINVAL;
    if (found != kernel.neighbours.end()) kernel.neighbours.erase(found);
    kernel.neighbours.push_back(
        {ip, MacIn(record.arp_ha), card->name, static_cast<unsigned>(record.arp_flags)});
    return 0;
}

// ---- backup devices

int Move(BackupMemory& memory, const char* verb, uint32_t offset, uint32_t length, uint8_t* bytes)
{
    memory.requests.push_back(std::string(verb) + " " + std::to_string(offset) + " " +
                              std::to_string(length));
    if (offset + length > sizeof(memory.bytes)) return EINVAL;
    if (verb[0] == 'R') {
        memcpy(bytes, memory.bytes + offset, length);
    } else {
        memcpy(memory.bytes + offset, bytes, length);
    }
    return 0;
}

int CreateSram(SramFile* file)
{
    if (file->handle != nullptr) return EINVAL;

    kernel.sram.requests.emplace_back("CREATE");
    kernel.sram.created = std::string(file->name) + " " + std::to_string(file->period) + " " +
                          std::to_string(file->mode) + " " + std::to_string(file->markLength) +
                          " " + std::to_string(file->totalLength);
    file->handle = &kernel.sram;
    return 0;
}

int OnSram(unsigned long request, const SramRecord& data)
{
    if (data.handle != &kernel.sram) return EBADF;
    if (data.reserved[0] != 0 || data.reserved[1] != 0 || data.reserved[2] != 0) return EINVAL;

    return Move(kernel.sram, request == kSramRead ? "READ" : "WRITE", data.offset, data.length,
                data.bytes);
}

int OnBackup(unsigned long request, void* record)
{
    if (request == kSramCreate) return CreateSram(static_cast<SramFile*>(record));
    if (request == kSramRead || request == kSramWrite) {
        return OnSram(request, *static_cast<SramRecord*>(record));
    }
    const auto* data = static_cast<RtcRecord*>(record);
    return Move(kernel.rtc, request == kRtcRead ? "READ" : "WRITE", data->offset, data->length,
                data->bytes);
}

// ---- the power supply

bool IsOfPower(unsigned long request)
{
    return request == kPowerInfo || request == kPowerOff || request == kPowerOn ||
           request == kPowerTotal;
}

/// Its requests carry a value in the place of a record, except the one for its state.
int OnPower(unsigned long request, void* argument)
{
    PowerSupply& power = kernel.power;
    const auto value = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(argument));
    switch (request) {
    case kPowerInfo: memcpy(argument, power.info, sizeof(power.info)); return 0;
    case kPowerOff: power.on &= ~value; return 0;
    case kPowerOn: power.on |= value; return 0;
    default: power.total = value; return 0;
    }
}

std::string PowerText(unsigned long request, const void* argument)
{
    char text[64];
    if (request == kPowerInfo) return "0x81005001";
    snprintf(text, sizeof(text), "0x%lx %lu", request, reinterpret_cast<unsigned long>(argument));
    return text;
}

// ---- what requests are given

std::string Hex(unsigned long value)
{
    char text[32];
    snprintf(text, sizeof(text), "0x%lx", value);
    return text;
}

std::string CardDetail(unsigned long request, const ifreq& record)
{
    switch (request) {
    case SIOCSIFFLAGS: return " " + Hex(static_cast<unsigned short>(record.ifr_flags));
    case SIOCSIFMTU: return " " + std::to_string(record.ifr_mtu);
    case SIOCSIFHWADDR:
        return " " + MacIn(record.ifr_hwaddr) + " family " +
               std::to_string(record.ifr_hwaddr.sa_family);
    case SIOCSIFADDR:
    case SIOCSIFNETMASK:
        return " " + Text4(record.ifr_addr) + " family " +
               std::to_string(record.ifr_addr.sa_family);
    default: return "";
    }
}

std::string RouteDetail(const rtentry& record)
{
    return " " + Text4(record.rt_dst) + " " + Text4(record.rt_genmask) + " " +
           Text4(record.rt_gateway) + " " + (record.rt_dev == nullptr ? "no card" : record.rt_dev) +
           " flags " + Hex(record.rt_flags) + " metric " + std::to_string(record.rt_metric);
}

std::string Route6Detail(const in6_rtmsg& record)
{
    return " " + Text6(record.rtmsg_dst) + "/" + std::to_string(record.rtmsg_dst_len) + " " +
           Text6(record.rtmsg_gateway) + " index " + std::to_string(record.rtmsg_ifindex) +
           " flags " + Hex(record.rtmsg_flags) + " metric " + std::to_string(record.rtmsg_metric);
}

std::string NeighbourDetail(const arpreq& record)
{
    return " " + MacIn(record.arp_ha) + " " + NameIn(record.arp_dev) + " flags " +
           Hex(static_cast<unsigned>(record.arp_flags));
}

// ---- tables

std::string DevTable()
{
    std::string text = "Inter-|   Receive                            |  Transmit\n"
                       " face |bytes    packets errs drop fifo frame compressed multicast|bytes"
                       "    packets errs drop fifo colls carrier compressed\n";
    for (const Card& card : kernel.cards) text += "  " + card.name + ": " + card.counters + "\n";
    return text;
}

uint32_t Word(const std::string& address)
{
    in_addr value{};
    inet_pton(AF_INET, address.c_str(), &value);
    return value.s_addr;
}

std::string RouteTable()
{
    std::string text =
        "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\t\tMTU\tWindow\t"
        "IRTT                                                       \n";
    for (const Route& route : kernel.routes) {
        char line[256];
        snprintf(line, sizeof(line), "%s\t%08X\t%08X\t%04X\t0\t0\t0\t%08X\t0\t0\t0\n",
                 route.card.c_str(), Word(route.destination), Word(route.gateway),
                 route.gateway == "0.0.0.0" ? 1 : 3, Word(route.mask));
        text += line;
    }
    return text;
}

std::string Hex6(const std::string& address)
{
    in6_addr value{};
    inet_pton(AF_INET6, address.c_str(), &value);
    std::string text;
    for (const uint8_t byte : value.s6_addr) {
        char pair[3];
        snprintf(pair, sizeof(pair), "%02x", byte);
        text += pair;
    }
    return text;
}

std::string Route6Table()
{
    std::string text;
    for (const Route6& route : kernel.routes6) {
        char tail[128];
        snprintf(tail, sizeof(tail), " 00000400 00000001 00000000 %08x %8s\n", route.flags,
                 route.card.c_str());
        char prefix[16];
        snprintf(prefix, sizeof(prefix), " %02x ", route.prefix);
        text += Hex6(route.destination) + prefix + std::string(32, '0') + " 00 " +
                Hex6(route.gateway) + tail;
    }
    return text;
}

std::string NeighbourTable()
{
    std::string text =
        "IP address       HW type     Flags       HW address            Mask     Device\n";
    for (const Neighbour& neighbour : kernel.neighbours) {
        char line[256];
        snprintf(line, sizeof(line), "%-16s 0x%-10x0x%-10x%s     *        %s\n",
                 neighbour.ip.c_str(), ARPHRD_ETHER, neighbour.flags, neighbour.mac.c_str(),
                 neighbour.card.c_str());
        text += line;
    }
    return text;
}

std::string Address6Table()
{
    std::string text;
    for (const Card& card : kernel.cards) {
        for (const Address6& address : card.addresses6) {
            char line[128];
            snprintf(line, sizeof(line), "%s %02x %02x %02x 80 %8s\n", Hex6(address.text).c_str(),
                     static_cast<unsigned>(card.index), address.prefix, address.scope,
                     card.name.c_str());
            text += line;
        }
    }
    return text;
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const Route& route)
{
    return out << route.destination << "/" << route.mask << " via " << route.gateway << " dev "
               << route.card;
}

std::ostream& operator<<(std::ostream& out, const Route6& route)
{
    return out << route.destination << "/" << route.prefix << " via " << route.gateway << " dev "
               << route.card;
}

std::ostream& operator<<(std::ostream& out, const Neighbour& neighbour)
{
    return out << neighbour.ip << " is " << neighbour.mac << " dev " << neighbour.card << " flags "
               << neighbour.flags;
}

Card& Kernel::Add(const std::string& name)
{
    Card card;
    card.name = name;
    card.index = static_cast<int>(cards.size()) + 2;
    cards.push_back(card);
    return cards.back();
}

Card* Kernel::Find(const std::string& name)
{
    for (Card& card : cards) {
        if (card.name == name) return &card;
    }
    return nullptr;
}

Card& Kernel::At(const std::string& name)
{
    Card* card = Find(name);
    if (card == nullptr) {
        ADD_FAILURE() << "no card " << name;
        return Add(name);
    }
    return *card;
}

void ResetKernel()
{
    kernel = Kernel();
}

std::optional<std::string> TableText(const std::string& path)
{
    if (path == "/proc/net/dev") return DevTable();
    if (path == "/proc/net/route") return RouteTable();
    if (path == "/proc/net/ipv6_route") return Route6Table();
    if (path == "/proc/net/if_inet6") return Address6Table();
    if (path == "/proc/net/arp") return NeighbourTable();
    return std::nullopt;
}

std::string RequestText(unsigned long request, const void* record, int family)
{
    if (request == SIOCETHTOOL) {
        uint32_t command = 0;
        memcpy(&command, static_cast<const ifreq*>(record)->ifr_data, sizeof(command));
        const char* name = command == ETHTOOL_GDRVINFO ? "ETHTOOL_GDRVINFO "
                           : command == ETHTOOL_GLINK  ? "ETHTOOL_GLINK "
                           : command == ETHTOOL_GSET   ? "ETHTOOL_GSET "
                                                       : "ETHTOOL ";
        return name + NameIn(record);
    }
    if (IsOfPower(request)) return PowerText(request, record);
    if (request == SIOCSARP || request == SIOCDARP) {
        return (request == SIOCSARP ? "SIOCSARP " : "SIOCDARP ") +
               Text4(static_cast<const arpreq*>(record)->arp_pa);
    }
    const auto known = kRequestNames.find(request);
    if (known == kRequestNames.end()) return std::to_string(request);
    const bool named = request >= SIOCGIFNAME && request < 0x8a00 &&
                       (family != AF_INET6 || request == SIOCGIFINDEX);
    return named ? known->second + " " + NameIn(record) : known->second;
}

std::string RequestDetail(unsigned long request, const void* record, int family)
{
    const bool six = family == AF_INET6;
    if (request == SIOCADDRT || request == SIOCDELRT) {
        return six ? Route6Detail(*static_cast<const in6_rtmsg*>(record))
                   : RouteDetail(*static_cast<const rtentry*>(record));
    }
    if (six && (request == SIOCSIFADDR || request == SIOCDIFADDR)) {
        const auto& address = *static_cast<const Request6*>(record);
        return " " + Text6(address.address) + "/" + std::to_string(address.prefix) + " index " +
               std::to_string(address.index);
    }
    if (request == SIOCSARP || request == SIOCDARP) {
        return NeighbourDetail(*static_cast<const arpreq*>(record));
    }
    return CardDetail(request, *static_cast<const ifreq*>(record));
}

int Perform(unsigned long request, void* record, int family)
{
    if (request >= 0xC0000000U) return OnBackup(request, record);
    if (IsOfPower(request)) return OnPower(request, record);

    const bool six = family == AF_INET6;
    if (request == SIOCSARP || request == SIOCDARP) {
        return OnNeighbour(request, *static_cast<arpreq*>(record));
    }
    if (request == SIOCADDRT || request == SIOCDELRT) {
        return six ? OnRoute6(request, *static_cast<in6_rtmsg*>(record))
                   : OnRoute(request, *static_cast<rtentry*>(record));
    }
    if (six && (request == SIOCSIFADDR || request == SIOCDIFADDR)) {
        return OnAddress6(request, *static_cast<Request6*>(record));
    }
    return OnCard(request, static_cast<ifreq*>(record));
}

int ResultOf(unsigned long request)
{
    const int odd = OddAnswers() == Odd::results ? 1 : 0;
    switch (request) {
    case kSramCreate:
    case kSramRead:
    case kSramWrite: return kernel.sram.result;
    case kRtcRead:
    case kRtcWrite: return kernel.rtc.result;
    default: break;
    }
    const int plain = IsOfPower(request) ? kernel.power.result : 0;
    return plain == 0 ? odd : plain;
}

}  // namespace fake
