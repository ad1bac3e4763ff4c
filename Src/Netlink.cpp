// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Chapters of the helpers: one exchange - what all requests share - links - rules and routes. The
// operations follow the header: the client, attributes, the requests.

#include "Netlink.h"

#include "Route.h"
#include "Support/Handles.h"
#include "Support/Log.h"
#include "Support/Sockets.h"
#include "Support/Text.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include <linux/fib_rules.h>
#include <linux/if_link.h>
#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace vorlix {

namespace {

// ---- texts and limits

constexpr size_t kReceiveSize = 8192;
constexpr int64_t kHeaderSize = sizeof(nlmsghdr);
constexpr int64_t kErrorSize = sizeof(nlmsgerr);
constexpr size_t kAttributesSize = 1024;
constexpr size_t kSpareSize = 16;

constexpr char kIpVlan[] = "ipvlan";
constexpr char kMacVlan[] = "macvlan";

constexpr int kBadArguments = -1;
constexpr int kLinkRefused = -2;
constexpr int kRuleRefused = 2;

// ---- kernel records

/// A request with room for its attributes.
template <class Family>
struct Request {
    nlmsghdr header;
    Family family;
    char attributes[kAttributesSize];
    char spare[kSpareSize];  // the end of a nest that did not fit is written here
};

using LinkRequest = Request<ifinfomsg>;
using RouteRequest = Request<rtmsg>;

constexpr int32_t kLinkSize = offsetof(LinkRequest, spare);
constexpr int32_t kRouteSize = offsetof(RouteRequest, spare);

static_assert(offsetof(LinkRequest, family) == 16 && offsetof(LinkRequest, attributes) == 32 &&
                  kLinkSize == 1056,
              "kernel layout");
static_assert(offsetof(RouteRequest, family) == 16 && offsetof(RouteRequest, attributes) == 28 &&
                  kRouteSize == 1052,
              "kernel layout");
static_assert(sizeof(rtnl_handle) == 36 && offsetof(rtnl_handle, seq) == 28, "handed to callers");
static_assert(RTA_ALIGNTO == 4 && NLMSG_ALIGNTO == 4, "one padding for messages and attributes");

/// Rounds up to a multiple of 4.
constexpr int64_t Padded(int64_t length)
{
    return (length + NLMSG_ALIGNTO - 1) & ~int64_t{NLMSG_ALIGNTO - 1};
}

/// Where the next attribute goes.
char* EndOf(nlmsghdr* message)
{
    return reinterpret_cast<char*>(message) + Padded(message->nlmsg_len);
}

sockaddr* Address(sockaddr_nl* address)
{
    return reinterpret_cast<sockaddr*>(address);
}

// ---- one exchange

/// Closes a handle whose socket could not be given its address. The field keeps the number.
void CloseUnaddressed(const rtnl_handle& handle)
{
    Fd(handle.fd).Close();
}

bool Send(const rtnl_handle& handle, nlmsghdr* request, uint32_t peer, uint32_t groups)
{
    sockaddr_nl receiver{};
    receiver.nl_family = AF_NETLINK;
    receiver.nl_pid = peer;
    receiver.nl_groups = groups;
    iovec piece = {request, request->nlmsg_len};
    msghdr message{};
    message.msg_name = &receiver;
    message.msg_namelen = sizeof(receiver);
    message.msg_iov = &piece;
    message.msg_iovlen = 1;
    if (sendmsg(handle.fd, &message, 0) >= 0) return true;

    LOG_ERROR_AS("rtnl_talk", "can't talk to rtnetlink");
    return false;
}

/// What came in one piece: a row of messages.
struct Datagram {
    const char* bytes;
    int64_t length;
    uint32_t sender;
    bool truncated;
};

/// Waits for the next datagram, into `kReceiveSize` bytes. Errors are tried again without end.
/// @return false when the other end is gone
bool Receive(const rtnl_handle& handle, char* buffer, Datagram* datagram)
{
    sockaddr_nl sender{};
    iovec piece = {buffer, kReceiveSize};
    msghdr message{};
    message.msg_iov = &piece;
    message.msg_iovlen = 1;
    ssize_t received = -1;
    while (received < 0) {
        message.msg_name = &sender;
        message.msg_namelen = sizeof(sender);
        received = recvmsg(handle.fd, &message, 0);
        if (received < 0 && errno != EINTR) LOG_ERROR_AS("rtnl_talk", "OVERRUN");
    }
    if (received == 0) {
        LOG_ERROR_AS("rtnl_talk", "EOF on netlink");
        return false;
    }
    if (message.msg_namelen != sizeof(sender)) {
        LOG_ERROR_AS("rtnl_talk", "sender address length == %u", message.msg_namelen);
    }
    *datagram = {buffer, received, sender.nl_pid, (message.msg_flags & MSG_TRUNC) != 0};
    return true;
}

/// What an exchange ends with.
enum class Outcome { Open, Done, Failed };

/// The word behind an acknowledgement's header: 0, or the negative of the reason, which is left in
/// `errno`.
Outcome Judge(const char* word)
{
    int32_t error = 0;
    memcpy(&error, word, sizeof(error));
    const auto reason = static_cast<int>(0U - static_cast<uint32_t>(error));
    if (reason != 0) LOG_WARN_AS("rtnl_talk", "RTNETLINK answers: %s", strerror(reason));
    errno = reason;
    return reason == 0 ? Outcome::Done : Outcome::Failed;
}

/// Looks for the acknowledgement. Lengths are the sender's word: no byte is read that was not
/// received, and no step leads back.
Outcome Walk(const rtnl_handle& handle, uint32_t peer, const Datagram& datagram)
{
    int64_t left = datagram.length;
    while (left >= kHeaderSize) {
        const char* place = datagram.bytes + (datagram.length - left);
        nlmsghdr header;
        memcpy(&header, place, sizeof(header));
        const auto length = static_cast<int32_t>(header.nlmsg_len);
        const int64_t payload = length - kHeaderSize;
        if (payload < 0 || length > left) {
            if (datagram.truncated) {
                LOG_ERROR_AS("rtnl_talk", "truncated message");
                return Outcome::Failed;
            }
            LOG_ERROR_AS("rtnl_talk", "malformed message: len=%d!", length);
        }
        if (datagram.sender != peer || header.nlmsg_pid != handle.local.nl_pid ||
            header.nlmsg_seq != handle.seq) {
            // A stray is looked at again without end. A loop without any effect may be taken out by
            // a compiler, and the stray for ours: hence the call.
            (void)sched_yield();
            continue;
        }
        if (header.nlmsg_type == NLMSG_ERROR) {
            if (payload >= kErrorSize && left >= kHeaderSize + int64_t{sizeof(int32_t)}) {
                return Judge(place + kHeaderSize);
            }
            LOG_ERROR_AS("rtnl_talk", "ERROR truncated");
            return Outcome::Failed;
        }
        LOG_ERROR_AS("rtnl_talk", "unexpected reply!");
        left -= std::max(Padded(length), int64_t{0});
    }
    if (datagram.truncated) {
        LOG_ERROR_AS("rtnl_talk", "message truncated");
    } else if (left > 0) {
        LOG_ERROR_AS("rtnl_talk", "remnant of size %d!", static_cast<int>(left));
    }
    return Outcome::Open;
}

Outcome Await(const rtnl_handle& handle, uint32_t peer, char* buffer)
{
    Outcome outcome = Outcome::Open;
    while (outcome == Outcome::Open) {
        Datagram datagram;
        if (!Receive(handle, buffer, &datagram)) return Outcome::Failed;

        outcome = Walk(handle, peer, datagram);
    }
    return outcome;
}

/// A handle for one request, closed at the end of its scope.
class Handle {
public:
    Handle() { Open(); }
    ~Handle() { Fd(handle_.fd).Close(); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    bool Talk(nlmsghdr* request)
    {
        return rtnl_talk(&handle_, request, 0, 0, nullptr, nullptr, nullptr) >= 0;
    }

private:
    /// The numbers of the standard streams are free where an application has closed them, and do
    /// not do: `rtnl_open` gives a handle on 0 no address, and the log would be printed into one on
    /// 1. While such a handle is held, the kernel gives the next one a higher number.
    void Open()
    {
        if (rtnl_open(&handle_) < 0) {
            // Another thread may have got the number of the closed descriptor: it is not kept.
            // Sending fails all the same.
            handle_.fd = -1;
            return;
        }
        if (handle_.fd > STDERR_FILENO) return;

        const Fd low(handle_.fd);
        Open();
    }

    rtnl_handle handle_;
};

/// Sends a request and tells of a refusal in the words that links and rules share.
bool CarryOut(const char* operation, Handle* handle, nlmsghdr* request)
{
    if (handle->Talk(request)) return true;

    LOG_WARN_AS(operation, "the rtnl_talk error:%d, the err str:%s", errno, strerror(errno));
    return false;
}

// ---- what all requests share

/// For the log.
const char* Verb(bool adds)
{
    return adds ? "add" : "del";
}

uint16_t Low16(uint32_t value)
{
    return static_cast<uint16_t>(value);
}

int AddText(LinkRequest* request, int32_t type, const char* text)
{
    return addattr_l(&request->header, kLinkSize, type, text,
                     static_cast<int32_t>(strlen(text) + 1));
}

/// An address of an IPv4 request. False, silently, when it does not parse.
bool AddAddress(RouteRequest* request, int32_t type, const char* text)
{
    uint32_t address = 0;
    if (!ParseIPv4(text, &address)) return false;

    (void)addattr_l(&request->header, kRouteSize, type, &address, sizeof(address));
    return true;
}

// ---- links

bool RequireNames(const char* operation, const char* host, const char* virt)
{
    if (host != nullptr && virt != nullptr) return true;

    LOG_ERROR_AS(operation, "invalid host %s virt %s", Shown(host), Shown(virt));
    return false;
}

/// The two nests around the attributes of a link's own kind.
struct Nests {
    rtattr* info;
    rtattr* data;
};

/// Fills in what all links begin with. A new link comes up at once; a deletion names the host and
/// the kind as well, and the link is found by its name.
Nests BeginLink(LinkRequest* request, int32_t cmd, const char* host, const char* virt,
                const char* kind)
{
    nlmsghdr* header = &request->header;
    header->nlmsg_len = NLMSG_LENGTH(sizeof(ifinfomsg));
    header->nlmsg_type = Low16(static_cast<uint32_t>(cmd));
    header->nlmsg_flags = NLM_F_REQUEST;
    request->family.ifi_change = IFF_UP;
    if (cmd == RTM_NEWLINK) {
        header->nlmsg_flags |= NLM_F_CREATE;
        request->family.ifi_flags = IFF_UP;
    }
    const auto hostIndex = static_cast<uint32_t>(xll_name_to_index(host));
    (void)addattr32(header, kLinkSize, IFLA_LINK, hostIndex);
    (void)AddText(request, IFLA_IFNAME, virt);
    rtattr* info = addattr_nest(header, kLinkSize, IFLA_LINKINFO);
    (void)AddText(request, IFLA_INFO_KIND, kind);
    return {info, addattr_nest(header, kLinkSize, IFLA_INFO_DATA)};
}

/// Closes the nests and sends the request.
int FinishLink(const char* operation, LinkRequest* request, const Nests& nests)
{
    (void)addattr_nest_end(&request->header, nests.data);
    (void)addattr_nest_end(&request->header, nests.info);
    Handle handle;
    return CarryOut(operation, &handle, &request->header) ? 0 : kLinkRefused;
}

bool IsSource(uint32_t mode)
{
    return mode == MACVLAN_MODE_SOURCE;
}

bool HoldsMac(const char* addr)
{
    constexpr char kNone[kMacSize] = {};
    return addr != nullptr && memcmp(addr, kNone, kMacSize) != 0;
}

/// What source mode does with its list of addresses: add or delete one, make it the only one, or
/// drop them all.
void AddSource(LinkRequest* request, uint32_t addrMode, const char* addr)
{
    nlmsghdr* header = &request->header;
    unsigned char mac[kMacSize];
    memcpy(mac, addr, sizeof(mac));
    LOG_INFO_AS("Netlink_Ipv4Link_MacVlan", "macvlan mac[%02x:%02x:%02x:%02x:%02x:%02x]", mac[0],
                mac[1], mac[2], mac[3], mac[4], mac[5]);
    (void)addattr32(header, kLinkSize, IFLA_MACVLAN_MACADDR_MODE, addrMode);
    if (addrMode == MACVLAN_MACADDR_ADD || addrMode == MACVLAN_MACADDR_DEL) {
        (void)addattr_l(header, kLinkSize, IFLA_MACVLAN_MACADDR, mac, sizeof(mac));
    } else if (addrMode == MACVLAN_MACADDR_SET) {
        rtattr* list = addattr_nest(header, kLinkSize, IFLA_MACVLAN_MACADDR_DATA);
        (void)addattr_l(header, kLinkSize, IFLA_MACVLAN_MACADDR, mac, sizeof(mac));
        (void)addattr_nest_end(header, list);
    }
}

// ---- rules and routes

/// The header of a rule or route request; more is added for an addition.
void BeginRoute(RouteRequest* request, int32_t cmd, uint16_t flags)
{
    request->header.nlmsg_len = NLMSG_LENGTH(sizeof(rtmsg));
    request->header.nlmsg_type = Low16(static_cast<uint32_t>(cmd));
    request->header.nlmsg_flags = flags;
    request->family.rtm_family = AF_INET;
}

/// The texts of the default destination, which has no attribute of its own.
bool IsDefault(const char* route)
{
    return Equal(route, "default") || Equal(route, "all") || Equal(route, "any");
}

bool AddDestination(RouteRequest* request, const char* route, int32_t bitlen)
{
    if (IsDefault(route)) return true;

    request->family.rtm_dst_len = static_cast<uint8_t>(bitlen);
    return AddAddress(request, RTA_DST, route);
}

/// There is no wider table attribute: what lies above the low byte is cut off.
uint8_t TableByte(uint32_t table)
{
    return static_cast<uint8_t>(table);
}

}  // namespace

}  // namespace vorlix

using namespace vorlix;

int rtnl_open(struct rtnl_handle* rth)
{
    if (rth == nullptr) return -1;

    *rth = {};
    rth->fd = OpenSocket(AF_NETLINK, SOCK_RAW, 0);
    if (rth->fd < 0) {
        LOG_ERROR("socket failed");
        return -1;
    }
    rth->local.nl_family = AF_NETLINK;
    if (rth->fd != 0 && bind(rth->fd, Address(&rth->local), sizeof(rth->local)) < 0) {
        LOG_ERROR("bind failed");
        CloseUnaddressed(*rth);
        return -1;
    }
    socklen_t length = sizeof(rth->local);
    if (rth->fd > 0 && getsockname(rth->fd, Address(&rth->local), &length) < 0) {
        LOG_ERROR("getsockname failed [%s]", strerror(errno));
        CloseUnaddressed(*rth);
        return -1;
    }
    rth->seq = static_cast<uint32_t>(time(nullptr));
    return 0;
}

int rtnl_talk(struct rtnl_handle* rtnl, struct nlmsghdr* n, pid_t peer, unsigned int groups,
              struct nlmsghdr* /*answer*/,
              int (* /*junk*/)(struct sockaddr_nl*, struct nlmsghdr*, void*), const void* /*jarg*/)
{
    if (rtnl == nullptr || n == nullptr) return -1;

    HeapArray<char> buffer(static_cast<char*>(malloc(kReceiveSize)));
    if (buffer == nullptr) {
        LOG_ERROR("malloc faliled!");
        return -1;
    }
    n->nlmsg_seq = ++rtnl->seq;
    n->nlmsg_flags |= NLM_F_ACK;
    const auto port = static_cast<uint32_t>(peer);
    const bool done =
        Send(*rtnl, n, port, groups) && Await(*rtnl, port, buffer.get()) == Outcome::Done;
    const int reason = errno;
    buffer.reset();
    errno = reason;  // the kernel's answer, for the caller's message
    return done ? 0 : -1;
}

int addattr_l(struct nlmsghdr* n, int32_t maxlen, int32_t type, const void* data, int32_t alen)
{
    if (n == nullptr || alen < 0 || (data == nullptr && alen > 0)) return -1;

    const int64_t size = int64_t{sizeof(rtattr)} + alen;
    const int64_t length = Padded(n->nlmsg_len) + Padded(size);
    if (length > maxlen) return -1;

    rtattr attribute;
    attribute.rta_len = static_cast<uint16_t>(size);
    attribute.rta_type = static_cast<uint16_t>(type);
    char* end = EndOf(n);
    memcpy(end, &attribute, sizeof(attribute));
    if (alen > 0) memcpy(end + sizeof(attribute), data, static_cast<size_t>(alen));
    n->nlmsg_len = static_cast<uint32_t>(length);
    return 0;
}

int addattr(struct nlmsghdr* n, int32_t maxlen, int32_t type)
{
    return addattr_l(n, maxlen, type, nullptr, 0);
}

int addattr8(struct nlmsghdr* n, int32_t maxlen, int32_t type, __u8 data)
{
    return addattr_l(n, maxlen, type, &data, sizeof(data));
}

int addattr16(struct nlmsghdr* n, int32_t maxlen, int32_t type, __u16 data)
{
    return addattr_l(n, maxlen, type, &data, sizeof(data));
}

int addattr32(struct nlmsghdr* n, int32_t maxlen, int32_t type, __u32 data)
{
    return addattr_l(n, maxlen, type, &data, sizeof(data));
}

int addattr64(struct nlmsghdr* n, int32_t maxlen, int32_t type, __u64 data)
{
    return addattr_l(n, maxlen, type, &data, sizeof(data));
}

struct rtattr* addattr_nest(struct nlmsghdr* n, int32_t maxlen, int32_t type)
{
    if (n == nullptr) return nullptr;

    auto* nest = reinterpret_cast<rtattr*>(EndOf(n));
    (void)addattr(n, maxlen, type);
    return nest;
}

int addattr_nest_end(struct nlmsghdr* n, struct rtattr* nest)
{
    if (n == nullptr || nest == nullptr) return -1;

    const auto length = static_cast<uint16_t>(EndOf(n) - reinterpret_cast<char*>(nest));
    memcpy(&nest->rta_len, &length, sizeof(length));
    return static_cast<int>(n->nlmsg_len);
}

int xll_name_to_index(const char* name)
{
    if (name == nullptr) return 0;

    ifreq request{};
    CopyText(request.ifr_name, name);
    request.ifr_ifindex = -1;
    int index = 0;
    Fd control(OpenSocket(AF_INET, SOCK_DGRAM, 0));
    if (control.Ok() && ioctl(control.Get(), SIOCGIFINDEX, &request) >= 0) {
        index = request.ifr_ifindex;
    }
    control.Close();
    if (index <= 0) LOG_ERROR("can't find device '%s' ", name);
    return index;
}

int Netlink_Ipv4Link_IpVlan(int32_t cmd, char* host, char* virt, uint32_t mode, uint32_t flag)
{
    if (!RequireNames(__func__, host, virt)) return kBadArguments;

    LOG_INFO("iplink %s ipvlan [%s : %s] mode %u flag %u", Verb(cmd == RTM_NEWLINK), host, virt,
             mode, flag);
    LinkRequest request{};
    const Nests nests = BeginLink(&request, cmd, host, virt, kIpVlan);
    (void)addattr16(&request.header, kLinkSize, IFLA_IPVLAN_MODE, Low16(mode));
    (void)addattr16(&request.header, kLinkSize, IFLA_IPVLAN_FLAGS, Low16(flag));
    return FinishLink(__func__, &request, nests);
}

int Netlink_Ipv4Link_MacVlan(int32_t cmd, char* host, char* virt, uint32_t mode, uint32_t flag,
                             uint32_t addrMode, char* addr)
{
    if (!RequireNames(__func__, host, virt)) return kBadArguments;

    LOG_INFO("iplink %s macvlan [%s : %s] mode %u flag %u addrmode %u", Verb(cmd == RTM_NEWLINK),
             host, virt, mode, flag, addrMode);
    if (IsSource(mode) && !HoldsMac(addr)) {
        LOG_ERROR("macvlan invalid mac address !!!");
        return kBadArguments;
    }
    LinkRequest request{};
    const Nests nests = BeginLink(&request, cmd, host, virt, kMacVlan);
    (void)addattr32(&request.header, kLinkSize, IFLA_MACVLAN_MODE, mode);
    (void)addattr16(&request.header, kLinkSize, IFLA_MACVLAN_FLAGS, Low16(flag));
    if (IsSource(mode)) AddSource(&request, addrMode, addr);
    return FinishLink(__func__, &request, nests);
}

int Netlink_IPv4Rule(int32_t cmd, const char* from, uint32_t table, uint32_t prefer)
{
    const bool adds = cmd == RTM_NEWRULE;
    LOG_INFO("iprule %s from %s table %d", Verb(adds), Shown(from), static_cast<int>(table));
    RouteRequest request{};
    BeginRoute(&request, cmd, adds ? NLM_F_REQUEST | NLM_F_EXCL | NLM_F_CREATE : NLM_F_REQUEST);
    request.family.rtm_protocol = RTPROT_BOOT;
    if (adds) request.family.rtm_type = RTN_UNICAST;
    if (from != nullptr) {
        request.family.rtm_src_len = 32;
        if (!AddAddress(&request, FRA_SRC, from)) return kBadArguments;
    }
    if (table != 0) {
        request.family.rtm_table = TableByte(table);
    } else if (adds) {
        request.family.rtm_table = RT_TABLE_MAIN;
    }
    if (prefer != 0) (void)addattr32(&request.header, kRouteSize, FRA_PRIORITY, prefer);

    Handle handle;
    if (!CarryOut(__func__, &handle, &request.header)) return kRuleRefused;

    Route_Flush_Cache();
    return 0;
}

int Netlink_IPv4Route(int32_t cmd, int32_t table, int32_t bitlen, const char* route,
                      const char* src, const char* via, const char* dev, uint32_t metric)
{
    const bool adds = cmd != RTM_DELROUTE;
    LOG_INFO("iproute %s %s %s %s dev %s table %d", Verb(adds), Shown(route), Shown(src),
             Shown(via), Shown(dev), table);
    RouteRequest request{};
    BeginRoute(&request, cmd, adds ? NLM_F_REQUEST | NLM_F_REPLACE | NLM_F_CREATE : NLM_F_REQUEST);
    request.family.rtm_table = RT_TABLE_MAIN;
    request.family.rtm_scope = RT_SCOPE_NOWHERE;
    if (adds) {
        request.family.rtm_protocol = RTPROT_KERNEL;
        request.family.rtm_type = RTN_UNICAST;
        // Without a gateway the destination is on the link itself.
        request.family.rtm_scope = via != nullptr ? RT_SCOPE_UNIVERSE : RT_SCOPE_LINK;
    }
    if (src != nullptr && !AddAddress(&request, RTA_PREFSRC, src)) return -1;
    if (via != nullptr && !AddAddress(&request, RTA_GATEWAY, via)) return -1;
    if (route != nullptr && !AddDestination(&request, route, bitlen)) return -1;
    if (table != 0) request.family.rtm_table = TableByte(static_cast<uint32_t>(table));

    Handle handle;  // opened before the device is looked up
    if (dev != nullptr) {
        (void)addattr32(&request.header, kRouteSize, RTA_OIF,
                        static_cast<uint32_t>(xll_name_to_index(dev)));
    }
    if (metric != 0) (void)addattr32(&request.header, kRouteSize, RTA_PRIORITY, metric);
    if (!handle.Talk(&request.header)) return -1;

    Route_Flush_Cache();
    return 0;
}
