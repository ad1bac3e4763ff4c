// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Arp_Ping.h"
#include "Base.h"
#include "CommonApi.h"

#include "Device.h"

#include <algorithm>
#include <ctime>
#include <thread>

#include <arpa/inet.h>
#include <fcntl.h>
#include <linux/if_packet.h>
#include <net/ethernet.h>
#include <net/if.h>
#include <sched.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace device;

namespace {

/// How often the probes see the clock stand still before their budget is over; below 0 they see the
/// real one. A test that knows how many replies come in so waits for them and no longer.
int looksAtTheClock = -1;

}  // namespace

extern "C" {

time_t __real_time(time_t* now);

time_t __wrap_time(time_t* now)
{
    constexpr time_t kMuchLater = 1000;
    if (looksAtTheClock < 0) return __real_time(now);
    if (looksAtTheClock == 0) return kMuchLater;

    --looksAtTheClock;
    return 0;
}

}  // extern "C"

namespace {

using Bytes = std::vector<uint8_t>;

constexpr char kOurIP[] = "10.0.0.1";
constexpr char kOurMac[] = "02:00:00:00:00:01";
constexpr char kPeerIP[] = "10.0.0.2";
constexpr char kBroadcast[] = "ff:ff:ff:ff:ff:ff";
constexpr int kLong = 30;  // seconds that no test waits for

const Bytes kOurMacBytes = {2, 0, 0, 0, 0, 1};
const Bytes kPeerMacBytes = {2, 0, 0, 0, 0, 2};
const Bytes kOurIPBytes = {10, 0, 0, 1};
const Bytes kPeerIPBytes = {10, 0, 0, 2};
const Bytes kThirdIPBytes = {10, 0, 0, 3};

Bytes operator+(Bytes left, const Bytes& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

/// A socket that hears and sends whole frames at the peer's end of eth0.
int PeerSocket(uint16_t protocol)
{
    const int home = open("/proc/self/ns/net", O_RDONLY | O_CLOEXEC);
    const int peer = open("/run/netns/peer", O_RDONLY | O_CLOEXEC);
    EXPECT_EQ(setns(peer, CLONE_NEWNET), 0);
    const int fd = socket(AF_PACKET, SOCK_RAW | SOCK_CLOEXEC, htons(protocol));
    sockaddr_ll place{};
    place.sll_family = AF_PACKET;
    place.sll_protocol = htons(protocol);
    place.sll_ifindex = static_cast<int>(if_nametoindex("eth0"));
    EXPECT_EQ(bind(fd, reinterpret_cast<const sockaddr*>(&place), sizeof(place)), 0);
    EXPECT_EQ(setns(home, CLONE_NEWNET), 0);
    close(home);
    close(peer);
    return fd;
}

/// The next frame that came from us; waits for it.
Bytes NextFrame(int fd)
{
    for (;;) {
        Bytes frame(2048);
        const ssize_t size = recv(fd, frame.data(), frame.size(), 0);
        EXPECT_GT(size, 0);
        if (size <= 0) return {};
        frame.resize(static_cast<size_t>(size));
        if (std::equal(kOurMacBytes.begin(), kOurMacBytes.end(), frame.begin() + 6)) return frame;
    }
}

/// Another machine that hears one probe and then sends what it likes.
Child Responder(int fd, const std::vector<Bytes>& frames)
{
    return Child([=] {
        NextFrame(fd);
        for (const Bytes& frame : frames) {
            EXPECT_EQ(send(fd, frame.data(), frame.size(), 0), static_cast<ssize_t>(frame.size()));
        }
    });
}

class ProbeTest : public Device {
protected:
    void SetUp() override
    {
        Device::SetUp();
        AddCard("eth0");
        Must("ip -n peer link set eth0 address 02:00:00:00:00:02");
        Must("ip link set eth0 address " + std::string(kOurMac) + " up");
        Must("ip addr add 10.0.0.1/24 dev eth0");
    }

    /// Nobody answers at the peer's end, but we know where to send.
    static void KnowPeer() { Must("ip neigh replace 10.0.0.2 lladdr 02:00:00:00:00:02 dev eth0"); }
};

// ---- what tools see of a probe

/// The sockets among the descriptors that a tool gets when another thread starts it while a probe
/// listens.
template <class Probe>
std::string SocketsOfATool(int peer, Probe probe)
{
    std::thread prober(probe);
    NextFrame(peer);  // it is on its way
    EXPECT_TRUE(VorlixRunCmd("ls -l /proc/self/fd | grep socket >/run/sockets"));
    prober.join();
    return Get("/run/sockets");
}

TEST_F(ProbeTest, AToolGetsNoSocketOfAnArpProbeThatListens)
{
    const auto probe = [] { Arp_Ckeck("eth0", kOurIP, kOurMac, kPeerIP, kBroadcast, 1); };
    EXPECT_EQ(SocketsOfATool(PeerSocket(ETH_P_ARP), probe), "");
}

TEST_F(ProbeTest, AToolGetsNoSocketOfAnEchoProbeThatListens)
{
    KnowPeer();
    const auto probe = [] { Ping_CheckAlive("eth0", kOurIP, kPeerIP, 1); };
    EXPECT_EQ(SocketsOfATool(PeerSocket(ETH_P_IP), probe), "");
}

// ---- ARP

class ArpProbeTest : public ProbeTest {
protected:
    static int32_t Probe(const char* wanted, int timeout)
    {
        return Arp_Ckeck("eth0", kOurIP, kOurMac, wanted, kBroadcast, timeout);
    }

    static Bytes Packet(uint8_t operation, const Bytes& senderMac, const Bytes& senderIP,
                        const Bytes& targetMac)
    {
        return kOurMacBytes + kPeerMacBytes + Bytes{8, 6, 0, 1, 8, 0, 6, 4, 0, operation} +
               senderMac + senderIP + targetMac + kOurIPBytes;
    }
};

TEST_F(ArpProbeTest, ThreeFramesReachTheOtherMachineByteByByte)
{
    const int peer = PeerSocket(ETH_P_ARP);
    EXPECT_EQ(Probe(kOurIP, 0), 0);
    const Bytes probe = Bytes(6, 0xFF) + kOurMacBytes +
                        Bytes{0x08, 0x06, 0, 1, 0x08, 0, 6, 4, 0, 1} + kOurMacBytes + kOurIPBytes +
                        Bytes(6) + kOurIPBytes + Bytes(18);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(NextFrame(peer), probe);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(ArpProbeTest, ASilentSegmentTakesTheWholeBudget)
{
    const time_t begin = __real_time(nullptr);
    EXPECT_EQ(Probe(kOurIP, 1), 0);
    EXPECT_GE(__real_time(nullptr), begin + 1);
    EXPECT_EQ(LogOf("Arp_Ckeck").back(), Warn("Arp_Ckeck", "pool error"));
}

TEST_F(ArpProbeTest, AKernelWithOurAddressIsAConflict)
{
    // A kernel answers a probe from its own address only when it is told to take such packets.
    Put("/proc/sys/net/ipv4/conf/all/rp_filter", "0");
    Must("ip netns exec peer sh -c 'echo 1 >/proc/sys/net/ipv4/conf/eth0/accept_local'");
    Must("ip -n peer addr add 10.0.0.1/24 dev eth0");
    looksAtTheClock = 1 + 3;  // the start, and a wait for each of three answers
    EXPECT_EQ(Probe(kOurIP, kLong), 2);
    const LogLine conflict = Warn("ParseArpPacket", "ip is confilct with mac 02:00:00:00:00:01");
    EXPECT_EQ(LogOf("ParseArpPacket"), (LogLines{conflict, conflict, conflict}));
}

TEST_F(ArpProbeTest, AKernelWithOurHardwareAddressIsAConflict)
{
    Must("ip -n peer link set eth0 address " + std::string(kOurMac));
    Must("ip -n peer addr add 10.0.0.2/24 dev eth0");
    looksAtTheClock = 1 + 3;
    EXPECT_EQ(Probe(kPeerIP, kLong), 1);
    EXPECT_EQ(LogOf("ParseArpPacket").front(),
              Warn("ParseArpPacket", "mac is confilct with addr 10.0.0.2"));
}

TEST_F(ArpProbeTest, AKernelWithAnotherAddressIsNone)
{
    Must("ip -n peer addr add 10.0.0.2/24 dev eth0");
    looksAtTheClock = 1 + 3;
    EXPECT_EQ(Probe(kPeerIP, kLong), 0);
    EXPECT_EQ(LogOf("ParseArpPacket"), LogLines{});
    EXPECT_EQ(LogOf("Arp_Ckeck"), (LogLines{Warn("Arp_Ckeck", "pool error")}));  // at the end
}

TEST_F(ArpProbeTest, BothKindsOfAnswersAreJoinedAndOthersPassedOver)
{
    const Bytes nobody(6);
    Child other = Responder(PeerSocket(ETH_P_ARP),
                            {Packet(1, kPeerMacBytes, kOurIPBytes, nobody),         // a request
                             Packet(2, kPeerMacBytes, kOurIPBytes, kPeerMacBytes),  // to another
                             Packet(2, kPeerMacBytes, kOurIPBytes, kOurMacBytes),
                             Packet(2, kPeerMacBytes, kOurIPBytes, kOurMacBytes),  // twice
                             Packet(2, kOurMacBytes, kPeerIPBytes, nobody)});
    looksAtTheClock = 1 + 5;
    EXPECT_EQ(Probe(kOurIP, kLong), 3);
    EXPECT_TRUE(other.Wait());
    const LogLine ip = Warn("ParseArpPacket", "ip is confilct with mac 02:00:00:00:00:01");
    EXPECT_EQ(LogOf("ParseArpPacket"),
              (LogLines{ip, ip, Warn("ParseArpPacket", "mac is confilct with addr 10.0.0.2")}));
}

TEST_F(ArpProbeTest, TheCardIsAskedForItsOwnAddress)
{
    Child other =
        Responder(PeerSocket(ETH_P_ARP), {Packet(2, kPeerMacBytes, kOurIPBytes, kOurMacBytes)});
    looksAtTheClock = 1 + 1;
    EXPECT_EQ(NetArpCheck("eth0"), 2);
    EXPECT_TRUE(other.Wait());
}

TEST_F(ArpProbeTest, ACardThatCannotSendIsTold)
{
    Must("ip link set eth0 down");
    const LogLine down = Error("Arp_Ckeck", "send arp packet failed [Network is down]");
    EXPECT_EQ(Probe(kOurIP, 0), 0);
    EXPECT_EQ(Log(), (LogLines{down, down, down}));
}

TEST_F(ArpProbeTest, ALongNameOfACardIsCut)
{
    Must("ip link add abcdefghijklm type veth peer name other");
    Must("ip link set abcdefghijklm up; ip link set other up");
    EXPECT_EQ(Arp_Ckeck("abcdefghijklmno", kOurIP, kOurMac, kOurIP, kBroadcast, 0), 0);
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Arp_Ckeck("eth9", kOurIP, kOurMac, kOurIP, kBroadcast, 0), 0);
    const LogLine unknown = Error("Arp_Ckeck", "send arp packet failed [No such device]");
    EXPECT_EQ(Log(), (LogLines{unknown, unknown, unknown}));
}

// ---- echo

class EchoProbeTest : public ProbeTest {
protected:
    static uint16_t Sum(const Bytes& bytes)
    {
        uint32_t sum = 0;
        for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
            sum += static_cast<uint32_t>(bytes[i] << 8 | bytes[i + 1]);
        }
        sum = (sum >> 16) + (sum & 0xFFFF);
        return static_cast<uint16_t>(~(sum + (sum >> 16)));
    }

    static void StoreSum(Bytes* bytes, size_t at)
    {
        const uint16_t sum = Sum(*bytes);
        (*bytes)[at] = static_cast<uint8_t>(sum >> 8);
        (*bytes)[at + 1] = static_cast<uint8_t>(sum & 0xFF);
    }

    static Bytes Identifier(int pid)
    {
        return {static_cast<uint8_t>(pid & 0xFF), static_cast<uint8_t>(pid >> 8 & 0xFF)};
    }

    /// An echo reply in its frame, behind an IP header with so many bytes of options.
    static Bytes Reply(const Bytes& from, int pid, uint8_t options = 0)
    {
        Bytes icmp = Bytes{0, 0, 0, 0} + Identifier(pid) + Bytes(34);
        StoreSum(&icmp, 2);
        const auto size = static_cast<uint8_t>(20 + options + icmp.size());
        Bytes header =
            Bytes{static_cast<uint8_t>(0x45 + options / 4), 0, 0, size, 0, 1, 0, 0, 64, 1, 0, 0} +
            from + kOurIPBytes + Bytes(options, 1);
        StoreSum(&header, 10);
        return kOurMacBytes + kPeerMacBytes + Bytes{8, 0} + header + icmp;
    }

    static LogLine Alive(const std::string& host)
    {
        return Info("Ping_CheckAlive", "device " + host + " is alive");
    }
    static LogLine NotAlive(const std::string& host)
    {
        return Info("Ping_CheckAlive", "device " + host + " is not alive");
    }
};

TEST_F(EchoProbeTest, ThreeRequestsReachTheOtherMachineByteByByte)
{
    KnowPeer();
    const int peer = PeerSocket(ETH_P_IP);
    EXPECT_FALSE(Ping_CheckAlive("eth0", kOurIP, kPeerIP, 0));
    Bytes request = Bytes{8, 0, 0, 0} + Identifier(getpid()) + Bytes(34);
    StoreSum(&request, 2);
    for (int i = 0; i < 3; ++i) {
        const Bytes frame = NextFrame(peer);
        ASSERT_EQ(frame.size(), 14U + 20U + 40U);
        EXPECT_EQ(Bytes(frame.begin(), frame.begin() + 6), kPeerMacBytes);
        EXPECT_EQ(Bytes(frame.begin() + 26, frame.begin() + 34), kOurIPBytes + kPeerIPBytes);
        EXPECT_EQ(Bytes(frame.begin() + 34, frame.end()), request);
    }
    EXPECT_EQ(Log(), (LogLines{NotAlive(kPeerIP)}));
}

TEST_F(EchoProbeTest, AKernelAnswers)
{
    Must("ip -n peer addr add 10.0.0.2/24 dev eth0");
    EXPECT_TRUE(Ping_CheckAlive("eth0", kOurIP, kPeerIP, kLong));
    EXPECT_TRUE(Ping_CheckAlive(nullptr, nullptr, kPeerIP, kLong));
    EXPECT_TRUE(NetPingCheck("eth0", kPeerIP, kLong));
    EXPECT_TRUE(NetPingCheck(nullptr, kPeerIP, kLong));
    EXPECT_EQ(LogOf("Ping_CheckAlive"), (LogLines(4, Alive(kPeerIP))));
}

TEST_F(EchoProbeTest, OurOwnRequestsAreNoAnswers)
{
    EXPECT_TRUE(Ping_CheckAlive(nullptr, nullptr, "127.0.0.1", kLong));
    EXPECT_EQ(Log(), (LogLines{Alive("127.0.0.1")}));
}

TEST_F(EchoProbeTest, ASilentHostIsNotAlive)
{
    KnowPeer();
    EXPECT_FALSE(Ping_CheckAlive("eth0", kOurIP, kPeerIP, 1));
    EXPECT_EQ(LogOf("Ping_CheckAlive"),
              (LogLines{Warn("Ping_CheckAlive", "pool error"), NotAlive(kPeerIP)}));
}

TEST_F(EchoProbeTest, AnswersForOthersArePassedOverUntilOursComes)
{
    KnowPeer();
    const int pid = getpid();
    Child other = Responder(PeerSocket(ETH_P_IP),
                            {Reply(kPeerIPBytes, pid ^ 1), Reply(kThirdIPBytes, pid),
                             Reply(kPeerIPBytes, pid, 20),  // the identifier lies too far behind
                             Reply(kPeerIPBytes, pid, 16)});
    EXPECT_TRUE(Ping_CheckAlive("eth0", kOurIP, kPeerIP, kLong));
    EXPECT_TRUE(other.Wait());
    EXPECT_EQ(Log(), (LogLines{Alive(kPeerIP)}));
}

TEST_F(EchoProbeTest, AnswersForOthersAloneUseUpTheBudget)
{
    KnowPeer();
    const int pid = getpid();
    Child other =
        Responder(PeerSocket(ETH_P_IP), {Reply(kPeerIPBytes, pid ^ 1), Reply(kThirdIPBytes, pid)});
    looksAtTheClock = 1 + 2;
    EXPECT_FALSE(Ping_CheckAlive("eth0", kOurIP, kPeerIP, kLong));
    EXPECT_TRUE(other.Wait());
    EXPECT_EQ(Log(), (LogLines{NotAlive(kPeerIP)}));
}

TEST_F(EchoProbeTest, WhatCannotBeBoundOrSentIsTold)
{
    const LogLine noWay = Error("Ping_CheckAlive", "send error [Network is unreachable]");
    EXPECT_FALSE(Ping_CheckAlive("eth9", "10.9.9.9", "192.0.2.1", 0));
    EXPECT_EQ(Log(), (LogLines{Error("BindToDevice", "set socket SO_BINDTODEVICE failed"),
                               Error("BindIPPort", "bind failed:Cannot assign requested address"),
                               noWay, noWay, noWay, NotAlive("192.0.2.1")}));
}

TEST_F(EchoProbeTest, ACardHoldsTheProbeToItself)
{
    // The other machine is reached over eth0 alone.
    Must("ip -n peer addr add 10.0.0.2/24 dev eth0");
    AddCard("eth1");
    Must("ip link set eth1 up");
    EXPECT_FALSE(Ping_CheckAlive("eth1", nullptr, kPeerIP, 0));
    EXPECT_TRUE(Ping_CheckAlive("eth0", nullptr, kPeerIP, kLong));
    EXPECT_EQ(LogOf("Ping_CheckAlive").back(), Alive(kPeerIP));
}

}  // namespace
