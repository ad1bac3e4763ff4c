// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// What the kernel has: three tables over rtnetlink, and what drivers say.

#include "Read.h"
#include "Support/Handles.h"
#include "Support/Text.h"

#include <cstdio>

#include <arpa/inet.h>
#include <linux/ethtool.h>
#include <linux/if_addr.h>
#include <linux/if_link.h>
#include <linux/rtnetlink.h>
#include <linux/sockios.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

using namespace vorlix;

namespace status {

namespace {

constexpr size_t kPieceSize = 32768;
constexpr int kTries = 5;               // of a table that changes while the kernel prints it
constexpr unsigned kLowerUp = 0x10000;  // IFF_LOWER_UP, in a header that does not go with net/if.h
constexpr uint32_t kUnknownSpeed = 0xffffffffU;

// ---- messages

/// The attributes behind a header: a walk over what the kernel sent.
class Attributes {
public:
    Attributes(const char* from, int64_t length) : at_(from), left_(length) {}

    const rtattr* Next()
    {
        if (left_ < int64_t{sizeof(rtattr)}) return nullptr;
        const auto* attribute = reinterpret_cast<const rtattr*>(at_);
        const int64_t length = attribute->rta_len;
        if (length < int64_t{sizeof(rtattr)} || length > left_) return nullptr;

        const int64_t step = (length + 3) & ~int64_t{3};
        at_ += step;
        left_ -= step;
        return attribute;
    }

private:
    const char* at_;
    int64_t left_;
};

const char* Value(const rtattr* attribute)
{
    return reinterpret_cast<const char*>(attribute + 1);
}

size_t LengthOf(const rtattr* attribute)
{
    return attribute->rta_len - sizeof(rtattr);
}

int TypeOf(const rtattr* attribute)
{
    return attribute->rta_type & NLA_TYPE_MASK;
}

Attributes Nested(const rtattr* attribute)
{
    return {Value(attribute), static_cast<int64_t>(LengthOf(attribute))};
}

static_assert(sizeof(nlmsghdr) == 16, "a record stands behind it without padding");

template <class Header>
const Header* HeaderOf(const nlmsghdr& message)
{
    return reinterpret_cast<const Header*>(&message + 1);
}

template <class Header>
Attributes Behind(const Header* header, const nlmsghdr& message)
{
    const char* from = reinterpret_cast<const char*>(header) + ((sizeof(Header) + 3) & ~size_t{3});
    const char* end = reinterpret_cast<const char*>(&message) + message.nlmsg_len;
    return {from, end - from};
}

uint32_t Number(const rtattr* attribute)
{
    uint32_t number = 0;
    memcpy(&number, Value(attribute), std::min(LengthOf(attribute), sizeof(number)));
    return number;
}

template <size_t size>
void TakeText(const rtattr* attribute, char (&text)[size])
{
    CopyText(text, std::min(LengthOf(attribute) + 1, size), Value(attribute));
}

// ---- tables

enum class Answer { Whole, Changed, Refused };

/// Hands out the messages of one datagram.
/// @return false when the table ends here
template <class Take>
bool HandOut(const char* bytes, int64_t length, Answer* answer, Take take)
{
    while (length >= int64_t{sizeof(nlmsghdr)}) {
        const auto* message = reinterpret_cast<const nlmsghdr*>(bytes);
        const int64_t size = message->nlmsg_len;
        if (size < int64_t{sizeof(nlmsghdr)} || size > length) break;

        if ((message->nlmsg_flags & NLM_F_DUMP_INTR) != 0) *answer = Answer::Changed;
        if (message->nlmsg_type == NLMSG_DONE) return false;
        if (message->nlmsg_type == NLMSG_ERROR) {
            *answer = Answer::Refused;
            return false;
        }
        take(*message);
        const int64_t step = (size + 3) & ~int64_t{3};
        bytes += step;
        length -= step;
    }
    return true;
}

/// Asks for a whole table once.
template <class Header, class Take>
Answer AskFor(int type, const Header& header, Take take)
{
    const Fd netlink(socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE));
    if (!netlink.Ok()) return Answer::Refused;

    struct {
        nlmsghdr message;
        Header header;
    } request = {};
    request.message.nlmsg_len = sizeof(request);
    request.message.nlmsg_type = static_cast<uint16_t>(type);
    request.message.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
    request.header = header;
    if (send(netlink.Get(), &request, sizeof(request), 0) < 0) return Answer::Refused;

    alignas(nlmsghdr) static char piece[kPieceSize];
    Answer answer = Answer::Whole;
    while (true) {
        const ssize_t length = recv(netlink.Get(), piece, sizeof(piece), 0);
        if (length < 0 && errno == EINTR) continue;
        if (length <= 0) return Answer::Refused;
        if (!HandOut(piece, length, &answer, take)) return answer;
    }
}

/// The same until the table held still.
template <class Header, class Reset, class Take>
bool ReadTable(int type, const Header& header, Reset reset, Take take)
{
    for (int i = 0; i < kTries; ++i) {
        reset();
        const Answer answer = AskFor(type, header, take);
        if (answer == Answer::Refused) return false;
        if (answer == Answer::Whole) return true;
    }
    return true;  // it never does: the last look stands
}

// ---- links

struct Link {
    char name[kNameSize] = {};
    unsigned flags = 0;
    Live live;
};

void TakeBond(const rtattr* data, Live* live)
{
    Attributes attributes = Nested(data);
    while (const rtattr* attribute = attributes.Next()) {
        if (TypeOf(attribute) == IFLA_BOND_MODE)
            live->bondMode = static_cast<uint8_t>(*Value(attribute));
        if (TypeOf(attribute) == IFLA_BOND_ACTIVE_SLAVE) {
            live->activeSlave = static_cast<int>(Number(attribute));
        }
    }
}

void TakeBridge(const rtattr* data, Live* live)
{
    Attributes attributes = Nested(data);
    while (const rtattr* attribute = attributes.Next()) {
        if (TypeOf(attribute) == IFLA_BR_STP_STATE) {
            live->spanningTree = static_cast<int>(Number(attribute));
        }
    }
}

void TakeKind(const rtattr* info, Live* live)
{
    const rtattr* data = nullptr;
    Attributes attributes = Nested(info);
    while (const rtattr* attribute = attributes.Next()) {
        if (TypeOf(attribute) == IFLA_INFO_KIND) TakeText(attribute, live->kind);
        if (TypeOf(attribute) == IFLA_INFO_DATA) data = attribute;
    }
    if (data == nullptr) return;
    if (Equal(live->kind, "bond")) TakeBond(data, live);
    if (Equal(live->kind, "bridge")) TakeBridge(data, live);
}

void TakeLinkPart(const rtattr* attribute, Link* link)
{
    switch (TypeOf(attribute)) {
    case IFLA_IFNAME: TakeText(attribute, link->name); break;
    case IFLA_MTU: link->live.mtu = static_cast<int>(Number(attribute)); break;
    case IFLA_MASTER: link->live.master = static_cast<int>(Number(attribute)); break;
    case IFLA_LINKINFO: TakeKind(attribute, &link->live); break;
    case IFLA_ADDRESS:
        if (LengthOf(attribute) == kMacSize) {
            PrintMac(reinterpret_cast<const unsigned char*>(Value(attribute)), link->live.mac);
        }
        break;
    default: break;
    }
}

Link ParseLink(const nlmsghdr& message)
{
    const auto* header = HeaderOf<ifinfomsg>(message);
    Link link;
    link.flags = header->ifi_flags;
    link.live.present = true;
    link.live.index = header->ifi_index;
    link.live.up = (header->ifi_flags & IFF_UP) != 0;
    link.live.link = link.live.up && (header->ifi_flags & kLowerUp) != 0;
    Attributes attributes = Behind(header, message);
    while (const rtattr* attribute = attributes.Next()) TakeLinkPart(attribute, &link);
    return link;
}

/// Names that lie beside the device's kinds: worth a word, since a card may be among them.
void Ignore(Device* device, const Link& link)
{
    if ((link.flags & IFF_LOOPBACK) != 0 || link.live.kind[0] != '\0') return;
    if (device->ignoredCount < kMaxIgnored) {
        CopyText(device->ignored[device->ignoredCount], link.name);
    }
    ++device->ignoredCount;
}

bool IsOfDevice(const char* name)
{
    char line[kNameSize + 1];
    char found[kNameSize];
    FormatText(line, sizeof(line), "%s:", name);
    return getNetIfName(line, found, sizeof(found));
}

void EnterLink(Device* device, const Link& link)
{
    if (!IsOfDevice(link.name)) {
        Ignore(device, link);
        return;
    }
    Interface* entry = Enter(device, link.name);
    if (entry != nullptr) entry->live = link.live;
}

/// The second name that a card has as a switch: it is there and up when the card is.
void LendLinks(Device* device)
{
    for (int i = 0; i < device->count; ++i) {
        Interface& entry = device->list[i];
        const char* colon = strchr(entry.name, ':');
        if (colon == nullptr) continue;

        Name card = {};
        CopyText(card, static_cast<size_t>(colon - entry.name) + 1, entry.name);
        const Interface* owner = Find(*device, card);
        if (owner == nullptr) continue;
        entry.live.present = owner->live.present;
        entry.live.up = owner->live.up;
        entry.live.link = owner->live.link;
        entry.live.mtu = owner->live.mtu;
    }
}

bool ReadLinks(Device* device)
{
    const int counted = device->count;
    const auto reset = [device, counted] {
        device->count = counted;
        device->left = 0;
        device->ignoredCount = 0;
        for (Interface& entry : device->list) entry.live = Live{};
    };
    return ReadTable(RTM_GETLINK, ifinfomsg{}, reset, [device](const nlmsghdr& message) {
        if (message.nlmsg_type == RTM_NEWLINK) EnterLink(device, ParseLink(message));
    });
}

// ---- addresses

Live* LiveOf(Device* device, int index)
{
    const Interface* entry = FindIndex(*device, index);
    return entry == nullptr ? nullptr : &device->list[entry - device->list].live;
}

uint32_t MaskOf(unsigned bits)
{
    return bits == 0 ? 0 : htonl(~uint32_t{0} << (32U - bits));
}

/// The address of an interface is the first under its own name, which is the one that the requests
/// of the library see; the name may be that of an alias.
void TakeIPv4(Device* device, const nlmsghdr& message)
{
    const auto* header = HeaderOf<ifaddrmsg>(message);
    Live* live = LiveOf(device, static_cast<int>(header->ifa_index));
    if (live == nullptr || message.nlmsg_type != RTM_NEWADDR) return;

    uint32_t address = 0;
    Name label = {};
    Attributes attributes = Behind(header, message);
    while (const rtattr* attribute = attributes.Next()) {
        if (TypeOf(attribute) == IFA_LOCAL) address = Number(attribute);
        if (TypeOf(attribute) == IFA_LABEL) TakeText(attribute, label);
    }
    ++live->ipv4Count;
    const Interface* entry = Find(*device, label);
    if (entry == nullptr || entry->live.ipv4.hasAddress) return;
    IPv4& ipv4 = device->list[entry - device->list].live.ipv4;
    ipv4.hasAddress = true;
    ipv4.address = address;
    ipv4.mask = MaskOf(header->ifa_prefixlen);
}

void TakeIPv6(Device* device, const nlmsghdr& message)
{
    const auto* header = HeaderOf<ifaddrmsg>(message);
    Live* live = LiveOf(device, static_cast<int>(header->ifa_index));
    if (live == nullptr || message.nlmsg_type != RTM_NEWADDR) return;

    Attributes attributes = Behind(header, message);
    while (const rtattr* attribute = attributes.Next()) {
        in6_addr address{};
        char text[INET6_ADDRSTRLEN];
        if (TypeOf(attribute) != IFA_ADDRESS || LengthOf(attribute) != sizeof(address)) continue;
        memcpy(&address, Value(attribute), sizeof(address));
        if (live->ipv6Count >= kMaxIPv6 || !PrintIPv6(address, text, sizeof(text))) continue;
        FormatText(live->ipv6[live->ipv6Count++], kIPv6Size, "%s/%u", text,
                   static_cast<unsigned>(header->ifa_prefixlen));
    }
}

bool ReadAddresses(Device* device, int family)
{
    ifaddrmsg header{};
    header.ifa_family = static_cast<uint8_t>(family);
    const auto reset = [device, family] {
        for (Interface& entry : device->list) {
            if (family == AF_INET6) entry.live.ipv6Count = 0;
            if (family == AF_INET) entry.live.ipv4Count = 0;
            if (family == AF_INET) entry.live.ipv4 = IPv4{};
        }
    };
    return ReadTable(RTM_GETADDR, header, reset, [device, family](const nlmsghdr& message) {
        family == AF_INET ? TakeIPv4(device, message) : TakeIPv6(device, message);
    });
}

// ---- routes

void TakeRoute(Device* device, const nlmsghdr& message)
{
    const auto* header = HeaderOf<rtmsg>(message);
    if (message.nlmsg_type != RTM_NEWROUTE || header->rtm_type != RTN_UNICAST ||
        header->rtm_table != RT_TABLE_MAIN) {
        return;
    }
    Route route;
    route.mask = MaskOf(header->rtm_dst_len);
    Attributes attributes = Behind(header, message);
    while (const rtattr* attribute = attributes.Next()) {
        switch (TypeOf(attribute)) {
        case RTA_DST: route.net = Number(attribute); break;
        case RTA_GATEWAY: route.gateway = Number(attribute); break;
        case RTA_OIF: route.index = static_cast<int>(Number(attribute)); break;
        case RTA_PRIORITY: route.metric = Number(attribute); break;
        default: break;
        }
    }
    if (FindIndex(*device, route.index) == nullptr) return;
    device->areRoutesCut = device->routeCount >= kMaxRoutes;
    if (!device->areRoutesCut) device->routes[device->routeCount++] = route;
}

bool ReadRoutes(Device* device)
{
    rtmsg header{};
    header.rtm_family = AF_INET;
    const auto reset = [device] { device->routeCount = 0; };
    return ReadTable(RTM_GETROUTE, header, reset,
                     [device](const nlmsghdr& message) { TakeRoute(device, message); });
}

/// A gateway belongs to an interface when the default route leads over it.
void GiveGateways(Device* device)
{
    for (int i = device->routeCount - 1; i >= 0; --i) {
        const Route& route = device->routes[i];
        Live* live = LiveOf(device, route.index);
        if (live == nullptr || route.mask != 0 || route.gateway == 0) continue;
        live->ipv4.hasGateway = true;
        live->ipv4.gateway = route.gateway;
    }
}

// ---- drivers

bool AskDriver(int control, const char* name, void* record)
{
    ifreq request = RequestFor(name);
    request.ifr_data = static_cast<char*>(record);
    return ioctl(control, SIOCETHTOOL, &request) == 0;
}

void ReadDriver(int control, Interface* entry)
{
    ethtool_drvinfo driver{};
    driver.cmd = ETHTOOL_GDRVINFO;
    if (AskDriver(control, entry->name, &driver)) CopyText(entry->live.driver, driver.driver);

    ethtool_cmd settings{};
    settings.cmd = ETHTOOL_GSET;
    if (!AskDriver(control, entry->name, &settings)) return;
    const uint32_t speed = uint32_t{settings.speed_hi} << 16U | settings.speed;
    // A driver that does not know says so in all bits, older ones in the lower half alone.
    if (speed != kUnknownSpeed && speed != 0xffffU) entry->live.speed = static_cast<int>(speed);
    entry->live.fullDuplex = settings.duplex == DUPLEX_FULL;
}

// ---- names

/// The names in the order and number in which the boot sees them. A second name for the switch of
/// a card stands among them.
bool EnterCounted(Device* device)
{
    char names[kMaxInterfaces][kNameSize];
    int count = kMaxInterfaces;
    if (!GetAllInterfaceInfo(names, &count)) return false;

    Name switchName = {};
    (void)GetSwitchInterface(switchName, sizeof(switchName));
    for (int i = 0; i < count; ++i) {
        Interface* entry = Enter(device, names[i]);
        if (entry == nullptr) continue;
        entry->isCounted = true;
        entry->isSwitch = Equal(names[i], switchName);
        entry->switchMode = isSwitchByName(names[i]);
        if (entry->isSwitch) continue;
        Strcat(device->present, sizeof(device->present), names[i], nullptr);
        Strcat(device->present, sizeof(device->present), ",", nullptr);
    }
    return true;
}

}  // namespace

const char* ReadKernel(Device* device)
{
    if (!EnterCounted(device)) return "the kernel does not list its interfaces in /proc/net/dev";
    if (!ReadLinks(device)) return "the kernel does not answer questions over rtnetlink";
    LendLinks(device);
    if (!ReadAddresses(device, AF_INET) || !ReadRoutes(device)) {
        return "the kernel does not tell its addresses and routes";
    }
    (void)ReadAddresses(device, AF_INET6);  // a kernel without IPv6 has none
    GiveGateways(device);

    const Fd control(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    for (int i = 0; i < device->count && control.Ok(); ++i) {
        if (device->list[i].live.present) ReadDriver(control.Get(), &device->list[i]);
    }
    return nullptr;
}

}  // namespace status
