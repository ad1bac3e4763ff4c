// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Chapters of the helpers: packets - probes. The operations follow the header: the two probes
// first, then their parts.

#include "Arp_Ping.h"

#include "Support/Handles.h"
#include "Support/Log.h"
#include "Support/Sockets.h"
#include "Support/Text.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <iterator>
#include <limits>

#include <arpa/inet.h>
#include <net/if.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace vorlix {

namespace {

// ---- texts and limits

constexpr int kSends = 3;

constexpr int kArpFrameSize = 60;  // the shortest frame on Ethernet, without its check sequence
constexpr int kLeastArpFrame = 42;
constexpr int kArpOnWire = 0x0608;  // protocol 0x0806 in network byte order

constexpr int kEchoSize = 40;
constexpr int kLeastEcho = 28;
constexpr int kAnswerSize = 64;  // its last byte stays zero

constexpr int64_t kMsPerSecond = 1000;

// ---- packets

using HardwareAddress = unsigned char[kMacSize];
using Address = unsigned char[4];

/// An ARP packet in its Ethernet frame, without the padding. Numbers are in network byte order.
struct ArpFrame {
    HardwareAddress frameTo;
    HardwareAddress frameFrom;
    unsigned char frameProtocol[2];
    unsigned char hardwareType[2];
    unsigned char protocolType[2];
    unsigned char hardwareSize;
    unsigned char protocolSize;
    unsigned char operation[2];
    HardwareAddress senderHardware;
    Address sender;
    HardwareAddress targetHardware;
    Address target;
};
static_assert(sizeof(ArpFrame) == kLeastArpFrame, "layout on the wire");

constexpr unsigned char kArp[2] = {0x08, 0x06};
constexpr unsigned char kEthernet[2] = {0, 1};
constexpr unsigned char kIPv4[2] = {0x08, 0x00};
constexpr unsigned char kRequest[2] = {0, 1};
constexpr unsigned char kReply[2] = {0, 2};

/// Head of an echo request or reply. Nobody but this process reads the two numbers, so they stand
/// in host order.
struct EchoHead {
    unsigned char type;
    unsigned char code;
    uint16_t checkSum;
    uint16_t identifier;
    uint16_t sequence;
};
static_assert(sizeof(EchoHead) == 8, "layout on the wire");

constexpr unsigned char kEchoRequest = 8;
constexpr unsigned char kEchoReply = 0;

uint16_t OurIdentifier()
{
    return static_cast<uint16_t>(getpid());
}

template <size_t size>
void Store(unsigned char (&field)[size], const unsigned char (&bytes)[size])
{
    std::copy(std::begin(bytes), std::end(bytes), field);
}

template <size_t size>
bool Same(const unsigned char (&left)[size], const unsigned char (&right)[size])
{
    return std::equal(std::begin(left), std::end(left), right);
}

bool IsZero(const HardwareAddress& address)
{
    return std::all_of(std::begin(address), std::end(address),
                       [](unsigned char byte) { return byte == 0; });
}

/// Any form that `inet_aton` takes.
bool ParseAddress(const char* text, Address& address)
{
    in_addr value{};
    if (!ParseLooseIPv4(text, &value)) return false;

    memcpy(address, &value, sizeof(address));
    return true;
}

// ---- probes

/// The seconds that a probe may still listen. It takes no account of how the clock was set
/// meanwhile.
class Budget {
public:
    explicit Budget(int seconds) : left_(seconds), lookedAt_(time(nullptr)) {}

    /// Takes off what has passed since the last look at the clock.
    void Update()
    {
        left_ += lookedAt_;
        lookedAt_ = time(nullptr);
        left_ -= lookedAt_;
    }

    bool IsUsedUp() const { return left_ <= 0; }

    int Seconds() const
    {
        using Limits = std::numeric_limits<int>;
        return static_cast<int>(std::clamp(left_, int64_t{Limits::min()}, int64_t{Limits::max()}));
    }

private:
    int64_t left_;
    int64_t lookedAt_;
};

/// Sends a packet three times. One that fails does not keep the next from its turn.
template <class SocketAddress>
void SendAll(const char* operation, const char* failed, int fd, const void* packet, size_t size,
             const SocketAddress& to)
{
    static_assert(sizeof(to) == sizeof(sockaddr), "length that is handed over");
    const auto* address = reinterpret_cast<const sockaddr*>(&to);
    for (int i = 0; i < kSends; ++i) {
        if (sendto(fd, packet, size, 0, address, sizeof(to)) == static_cast<ssize_t>(size)) {
            continue;
        }
        LOG_ERROR_AS(operation, "%s [%s]", failed, strerror(errno));
    }
}

bool WaitForReply(const char* operation, int fd, const Budget& budget)
{
    if (ListenToSocket(fd, budget.Seconds())) return true;

    LOG_WARN_AS(operation, "pool error");
    return false;
}

/// Hears a frame into the buffer: a shorter one than that leaves the rest as it was.
bool ReceiveFrame(int fd, char (&frame)[kArpFrameSize])
{
    if (recv(fd, frame, sizeof(frame), 0) >= 0) return true;

    LOG_WARN_AS("Arp_Ckeck", "recive error");
    return false;
}

/// Listens until the budget is used up, and joins the conflicts of all replies. The last wait may
/// be for no time at all: the clock is looked at behind the test.
int32_t HearConflicts(int fd, char (&frame)[kArpFrameSize], const char* srcIP, const char* srcMac,
                      int timeout)
{
    int32_t conflicts = 0;
    Budget budget(timeout);
    while (!budget.IsUsedUp()) {
        budget.Update();
        if (!WaitForReply("Arp_Ckeck", fd, budget) || !ReceiveFrame(fd, frame)) continue;

        const int32_t conflict = ParseArpPacket(frame, sizeof(frame), srcIP, srcMac);
        if (conflict > 0) conflicts |= conflict;
    }
    return conflicts;
}

/// Compares texts: a host that did not parse has no address.
bool IsFrom(const sockaddr_in& sender, const char* host)
{
    char text[kIPv4TextSize] = {};
    return PrintIPv4(sender.sin_addr.s_addr, text) && Equal(text, host);
}

/// True when the next datagram is our answer.
bool ReceiveAnswer(int fd, const char* host)
{
    unsigned char answer[kAnswerSize] = {};
    sockaddr_in sender{};
    socklen_t size = sizeof(sender);
    if (recvfrom(fd, answer, sizeof(answer) - 1, 0, reinterpret_cast<sockaddr*>(&sender), &size) <
        0) {
        LOG_WARN_AS("Ping_CheckAlive", "recive error");
        return false;
    }
    if (!IsFrom(sender, host)) return false;

    const int header = (answer[0] & 0x0F) * 4;
    return ParseICMPPacket(answer + header, kAnswerSize - header);
}

/// Listens until the host has answered, or until the budget is used up. Here the clock is looked at
/// before the test.
bool AwaitAnswer(int fd, const char* host, int timeout)
{
    Budget budget(timeout);
    for (budget.Update(); !budget.IsUsedUp(); budget.Update()) {
        if (WaitForReply("Ping_CheckAlive", fd, budget) && ReceiveAnswer(fd, host)) return true;
    }
    return false;
}

int OpenRawSocket(const char* operation, int kind, int protocol)
{
    const int fd = OpenSocket(AF_INET, kind, protocol);
    if (fd < 0) LOG_ERROR_AS(operation, "can not creat AF raw socket[%s].", strerror(errno));
    return fd;
}

}  // namespace

}  // namespace vorlix

using namespace vorlix;

int32_t Arp_Ckeck(const char* name, const char* srcIP, const char* srcMac, const char* dstIP,
                  const char* dstMac, int timeout)
{
    if (name == nullptr || srcIP == nullptr || srcMac == nullptr || dstIP == nullptr ||
        dstMac == nullptr) {
        return -1;
    }
    const Fd probe(CreatPFRawSock(kArpOnWire));
    if (!probe.Ok()) {
        LOG_ERROR("CreatPFRawSock error.");
        return -1;
    }
    char frame[kArpFrameSize] = {};
    if (!CreatArpPacket(frame, sizeof(frame), srcIP, srcMac, dstIP, dstMac)) {
        LOG_ERROR("CreatArpPacket error.");
        return -1;
    }
    sockaddr device{};  // a packet socket is told the card in the place of an address
    CopyText(device.sa_data, name);
    SendAll(__func__, "send arp packet failed", probe.Get(), frame, sizeof(frame), device);
    return HearConflicts(probe.Get(), frame, srcIP, srcMac, timeout);
}

bool Ping_CheckAlive(const char* name, const char* srcIP, const char* dstIP, int timeout)
{
    if (dstIP == nullptr) return false;

    const Fd probe(CreatAFRawSock(IPPROTO_ICMP));
    if (!probe.Ok()) {
        LOG_ERROR("CreatAFRawSock failed");
        return false;
    }
    char packet[kEchoSize];
    (void)CreateICMPPacket(packet, sizeof(packet));
    if (name != nullptr) (void)BindToDevice(probe.Get(), name);
    if (srcIP != nullptr) (void)BindIPPort(probe.Get(), srcIP, 0);

    sockaddr_in host{};
    host.sin_family = AF_INET;
    if (!ParseIPv4(dstIP, &host.sin_addr.s_addr)) LOG_ERROR("inet_pton failed");
    SendAll(__func__, "send error", probe.Get(), packet, sizeof(packet), host);

    if (!AwaitAnswer(probe.Get(), dstIP, timeout)) {
        LOG_INFO("device %s is not alive", dstIP);
        return false;
    }
    LOG_INFO("device %s is alive", dstIP);
    return true;
}

int CreatAFRawSock(int type)
{
    return OpenRawSocket(__func__, SOCK_RAW, type);
}

int CreatPFRawSock(int type)
{
    return OpenRawSocket(__func__, SOCK_PACKET, type);
}

bool BindToDevice(int32_t fd, const char* name)
{
    if (name == nullptr || fd < 0) return false;

    ifreq request{};
    CopyText(request.ifr_name, name);
    if (setsockopt(fd, SOL_SOCKET, SO_BINDTODEVICE, &request, sizeof(request)) >= 0) return true;

    LOG_ERROR("set socket SO_BINDTODEVICE failed");
    return false;
}

bool BindIPPort(int32_t fd, const char* ip, uint16_t port)
{
    if (ip == nullptr || fd < 0) return false;

    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = port;
    if (!ParseIPv4(ip, &address.sin_addr.s_addr)) {
        LOG_ERROR("inet_pton failed:%s", strerror(errno));
        return false;
    }
    if (bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) >= 0) return true;

    LOG_ERROR("bind failed:%s", strerror(errno));
    return false;
}

uint16_t CheckSum(uint16_t* buf, int32_t sz)
{
    if (buf == nullptr) sz = 0;

    const auto* bytes = reinterpret_cast<const unsigned char*>(buf);
    uint32_t sum = 0;
    for (; sz > 1; sz -= 2, bytes += 2) {
        uint16_t word = 0;
        memcpy(&word, bytes, sizeof(word));
        sum += word;
    }
    if (sz == 1) sum += *bytes;
    sum = (sum >> 16) + (sum & 0xFFFF);
    sum += sum >> 16;
    return static_cast<uint16_t>(~sum);
}

bool CreateICMPPacket(void* packet, int len)
{
    if (packet == nullptr || len < kLeastEcho) return false;

    memset(packet, 0, static_cast<size_t>(len));
    EchoHead head{};
    head.type = kEchoRequest;
    head.identifier = OurIdentifier();
    memcpy(packet, &head, sizeof(head));
    head.checkSum = CheckSum(static_cast<uint16_t*>(packet), len);
    memcpy(packet, &head, sizeof(head));
    return true;
}

bool ParseICMPPacket(void* packet, int len)
{
    if (packet == nullptr || static_cast<unsigned>(len) < kLeastEcho) return false;

    EchoHead head{};
    memcpy(&head, packet, offsetof(EchoHead, sequence));
    return head.type == kEchoReply && head.identifier == OurIdentifier();
}

bool CreatArpPacket(void* packet, int len, const char* srcIP, const char* srcMac, const char* dstIP,
                    const char* dstMac)
{
    if (packet == nullptr || srcIP == nullptr || srcMac == nullptr || dstIP == nullptr ||
        dstMac == nullptr || len < kLeastArpFrame) {
        return false;
    }
    memset(packet, 0, static_cast<size_t>(len));
    ArpFrame frame{};
    if (!ParseAddress(srcIP, frame.sender) || !ParseAddress(dstIP, frame.target)) {
        LOG_ERROR("addr error[%s,%s]", srcIP, dstIP);
        return false;
    }
    if (!ParseMac(srcMac, frame.frameFrom) || !ParseMac(dstMac, frame.frameTo)) {
        LOG_ERROR("mac error[%s,%s]", srcMac, dstMac);
        return false;
    }
    Store(frame.frameProtocol, kArp);
    Store(frame.hardwareType, kEthernet);
    Store(frame.protocolType, kIPv4);
    frame.hardwareSize = sizeof(frame.senderHardware);
    frame.protocolSize = sizeof(frame.sender);
    Store(frame.operation, kRequest);
    Store(frame.senderHardware, frame.frameFrom);
    memcpy(packet, &frame, sizeof(frame));
    return true;
}

int32_t ParseArpPacket(const char* frame, int32_t /*len*/, const char* srcIP, const char* srcMac)
{
    if (frame == nullptr || srcIP == nullptr || srcMac == nullptr) return -1;

    ArpFrame heard;
    memcpy(&heard, frame, sizeof(heard));
    if (!Same(heard.operation, kReply)) return 0;

    Address ourAddress{};
    if (!ParseAddress(srcIP, ourAddress)) {
        LOG_ERROR("IP addr error[%s].", srcIP);
        return -1;
    }
    HardwareAddress ourHardware{};
    if (!ParseMac(srcMac, ourHardware)) {
        LOG_ERROR("mac error[%s]", srcMac);
        return -1;
    }
    const HardwareAddress& receiver = heard.targetHardware;
    if (!Same(receiver, ourHardware) && !IsZero(receiver)) return 0;

    const bool sameHardware = Same(heard.senderHardware, ourHardware);
    const bool sameAddress = Same(heard.sender, ourAddress);
    if (sameHardware == sameAddress) return 0;

    if (sameHardware) {
        const Address& other = heard.sender;
        LOG_WARN("mac is confilct with addr %d.%d.%d.%d", other[0], other[1], other[2], other[3]);
        return 1;
    }
    // The receiver is printed, not the offender: that is how this line is read.
    LOG_WARN("ip is confilct with mac %02x:%02x:%02x:%02x:%02x:%02x", receiver[0], receiver[1],
             receiver[2], receiver[3], receiver[4], receiver[5]);
    return 2;
}

bool ListenToSocket(int fd, int timeout)
{
    if (fd < 0) return false;

    const int64_t wait =
        std::clamp(timeout * kMsPerSecond, int64_t{0}, int64_t{std::numeric_limits<int>::max()});
    pollfd waited{fd, POLLIN, 0};
    const int ready = poll(&waited, 1, static_cast<int>(wait));
    if (ready == 0) {
        LOG_WARN("socket %d do not recive any data in %d second", fd, timeout);
        return false;
    }
    if (ready < 0) {
        LOG_ERROR("poll socket %d error[%s]", fd, strerror(errno));
        return false;
    }
    if (waited.revents == POLLIN) return true;

    LOG_ERROR("Not in event");
    return false;
}
