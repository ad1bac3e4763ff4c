// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "CommonApi.h"

#include "Device.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace device;

namespace {

constexpr int kPort = 5000;
constexpr int kOtherPort = 5001;
constexpr int kAnswerTimeMs = 10000;  // far more than an answer takes

/// A socket address of either family.
struct Endpoint {
    Endpoint(const std::string& text, int port)
    {
        auto* v4 = reinterpret_cast<sockaddr_in*>(&storage);
        auto* v6 = reinterpret_cast<sockaddr_in6*>(&storage);
        if (text.find(':') == std::string::npos) {
            v4->sin_family = AF_INET;
            v4->sin_port = htons(static_cast<uint16_t>(port));
            EXPECT_EQ(inet_pton(AF_INET, text.c_str(), &v4->sin_addr), 1) << text;
            size = sizeof(*v4);
        } else {
            v6->sin6_family = AF_INET6;
            v6->sin6_port = htons(static_cast<uint16_t>(port));
            EXPECT_EQ(inet_pton(AF_INET6, text.c_str(), &v6->sin6_addr), 1) << text;
            size = sizeof(*v6);
        }
    }
    const sockaddr* Get() const { return reinterpret_cast<const sockaddr*>(&storage); }

    sockaddr_storage storage{};
    socklen_t size = 0;
};

class Socket {
public:
    Socket(int family, int type) : fd_(socket(family, type | SOCK_CLOEXEC, 0)) {}
    ~Socket() { close(fd_); }
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;
    int Get() const { return fd_; }

private:
    int fd_;
};

std::string Told(int error)
{
    return error == 0 ? "answered" : error == ECONNREFUSED ? "refused" : strerror(error);
}

/// What a client at the peer gets from a TCP server of this device. A refusal takes a second: the
/// first one comes while the client is still connecting, and counts when its second try is refused.
std::string Tcp(const std::string& address, int port)
{
    const Endpoint endpoint(address, port);
    const Socket server(endpoint.storage.ss_family, SOCK_STREAM);
    const int on = 1;
    EXPECT_EQ(setsockopt(server.Get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on)), 0);
    EXPECT_EQ(bind(server.Get(), endpoint.Get(), endpoint.size), 0) << address;
    EXPECT_EQ(listen(server.Get(), 1), 0);

    const AtMachine there("peer");
    const Socket client(endpoint.storage.ss_family, SOCK_STREAM);
    const timeval limit = {kAnswerTimeMs / 1000, 0};
    EXPECT_EQ(setsockopt(client.Get(), SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof(limit)), 0);
    return Told(connect(client.Get(), endpoint.Get(), endpoint.size) == 0 ? 0 : errno);
}

/// The same for UDP: the datagram comes in, or the refusal comes back.
std::string Udp(const std::string& address, int port)
{
    const Endpoint endpoint(address, port);
    const Socket server(endpoint.storage.ss_family, SOCK_DGRAM);
    EXPECT_EQ(bind(server.Get(), endpoint.Get(), endpoint.size), 0) << address;

    const AtMachine there("peer");
    const Socket client(endpoint.storage.ss_family, SOCK_DGRAM);
    EXPECT_EQ(connect(client.Get(), endpoint.Get(), endpoint.size), 0);
    EXPECT_EQ(send(client.Get(), "x", 1, 0), 1);
    pollfd either[] = {{server.Get(), POLLIN, 0}, {client.Get(), POLLIN, 0}};
    if (poll(either, 2, kAnswerTimeMs) <= 0) return "silence";
    if (either[0].revents != 0) return Told(0);

    char byte = 0;
    return Told(recv(client.Get(), &byte, 1, 0) < 0 ? errno : 0);
}

/// A device with the chain hooked into INPUT, as its start scripts leave it. Both makes of the
/// tools are shown: the older one and the one over nftables, which most distributions have now.
class PortTest : public Device, public testing::WithParamInterface<const char*> {
protected:
    void SetUp() override
    {
        Device::SetUp();
        ChooseTools();
        if (IsSkipped()) return;

        AddCards(2);
        Must("ip -n peer link add eth16 type veth peer name eth16 netns $$");
        Must("ip -n peer link set eth16 up");
        for (const char* number : {"0", "1", "16"}) {
            const std::string card = std::string("eth") + number;
            const std::string net = std::string("10.0.") + number;
            const std::string net6 = std::string("fd00:") + number;
            Must("ip link set " + card + " up");
            Must("ip addr add " + net + ".1/24 dev " + card);
            Must("ip addr add " + net6 + "::1/64 nodad dev " + card);
            Must("ip -n peer addr add " + net + ".2/24 dev " + card);
            Must("ip -n peer addr add " + net6 + "::2/64 nodad dev " + card);
        }
        // Each refusal is answered, however quickly they follow one another.
        Put("/proc/sys/net/ipv4/icmp_ratelimit", "0");
        Put("/proc/sys/net/ipv6/icmp/ratelimit", "0");
    }

    /// The tools of one make under their short names, ahead of all others, and the chain in both
    /// families.
    static void ChooseTools()
    {
        const std::string make = GetParam();
        Must("mkdir /run/tools");
        for (const char* tool : {"iptables", "ip6tables"}) {
            const std::string name = std::string(tool) + "-" + make;
            if (Try("command -v " + name).status != 0) GTEST_SKIP() << "not installed: " << name;

            Must("ln -s \"$(command -v " + name + ")\" /run/tools/" + tool);
        }
        setenv("PATH", ("/run/tools:" + std::string(getenv("PATH"))).c_str(), 1);
        for (const char* tool : {"iptables", "ip6tables"}) {
            const std::string name = tool;
            const Result made = Try(name + " -N PORTCHAIN && " + name + " -A INPUT -j PORTCHAIN");
            if (made.status != 0) GTEST_SKIP() << "no " << make << " here: " << made.output;
        }
    }

    /// The rules of the chain, as the tool tells them: "10.0.0.1/32 tcp 5000".
    static Texts Rules(const std::string& tool)
    {
        const std::string listed =
            Must(tool + " -S PORTCHAIN | sed -n 's/^-A PORTCHAIN -d \\([^ ]*\\) -p \\([a-z]*\\) " +
                 "-m [a-z]* --dport \\([0-9]*\\) -j REJECT .*/\\1 \\2 \\3/p'");
        EXPECT_EQ(Must(tool + " -S PORTCHAIN | grep -c '^-A' || true"),
                  std::to_string(std::count(listed.begin(), listed.end(), '\n')) + "\n");
        Texts rules;
        for (size_t from = 0, end = 0; (end = listed.find('\n', from)) != std::string::npos;
             from = end + 1) {
            rules.push_back(listed.substr(from, end - from));
        }
        return rules;
    }
};

INSTANTIATE_TEST_SUITE_P(Tools, PortTest, testing::Values("nft", "legacy"),
                         [](const auto& make) { return std::string(make.param); });

TEST_P(PortTest, ABlockedPortIsRefusedAndAFreedOneAnswersAgain)
{
    EXPECT_EQ(Tcp("10.0.0.1", kPort), "answered");
    EXPECT_EQ(Udp("10.0.0.1", kPort), "answered");

    EXPECT_TRUE(PortCtrlDisablePort("10.0.0.1", kPort));
    EXPECT_EQ(Tcp("10.0.0.1", kPort), "refused");
    EXPECT_EQ(Udp("10.0.0.1", kPort), "refused");
    EXPECT_EQ(Tcp("10.0.0.1", kOtherPort), "answered");
    EXPECT_EQ(Udp("10.0.0.1", kOtherPort), "answered");
    EXPECT_EQ(Tcp("10.0.1.1", kPort), "answered");
    EXPECT_EQ(Udp("10.0.1.1", kPort), "answered");

    EXPECT_TRUE(PortCtrlEnablePort("10.0.0.1", kPort));
    EXPECT_EQ(Tcp("10.0.0.1", kPort), "answered");
    EXPECT_EQ(Udp("10.0.0.1", kPort), "answered");
    EXPECT_EQ(Rules("iptables"), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_P(PortTest, BlockingTwiceLeavesOnePairOfRules)
{
    EXPECT_TRUE(PortCtrlDisablePort("10.0.0.1", kPort));
    EXPECT_TRUE(PortCtrlDisablePort("10.0.0.1", kOtherPort));
    EXPECT_TRUE(PortCtrlDisablePort("10.0.0.1", kPort));
    EXPECT_EQ(Rules("iptables"), (Texts{"10.0.0.1/32 tcp 5001", "10.0.0.1/32 udp 5001",
                                        "10.0.0.1/32 tcp 5000", "10.0.0.1/32 udp 5000"}));
    EXPECT_TRUE(PortCtrlEnablePort("10.0.0.1", kPort));
    EXPECT_EQ(Rules("iptables"), (Texts{"10.0.0.1/32 tcp 5001", "10.0.0.1/32 udp 5001"}));
}

TEST_P(PortTest, OfAnIPv6PortOnlyTheTcpHalfIsBlocked)
{
    EXPECT_EQ(Tcp("fd00:0::1", kPort), "answered");
    EXPECT_TRUE(PortCtrlDisablePort("fd00:0::1", kPort));
    EXPECT_TRUE(PortCtrlDisablePort("fd00:0::1", kPort));
    EXPECT_EQ(Rules("ip6tables"), Texts{"fd00::1/128 tcp 5000"});
    EXPECT_EQ(Rules("iptables"), Texts{});
    EXPECT_EQ(Tcp("fd00:0::1", kPort), "refused");
    EXPECT_EQ(Udp("fd00:0::1", kPort), "answered");

    EXPECT_TRUE(PortCtrlEnablePort("fd00:0::1", kPort));
    EXPECT_EQ(Tcp("fd00:0::1", kPort), "answered");
    EXPECT_EQ(Rules("ip6tables"), Texts{});
}

TEST_P(PortTest, AllAddressesOfTheMomentAreBlockedAndTheChainIsFlushedToFreeThem)
{
    EXPECT_TRUE(PortCtrlDisablePort("0.0.0.0", kPort));
    EXPECT_TRUE(PortCtrlDisablePort("0.0.0.0", kPort));
    Texts rules = Rules("iptables");
    std::sort(rules.begin(), rules.end());  // the order is the kernel's list of cards
    EXPECT_EQ(rules, (Texts{"10.0.0.1/32 tcp 5000", "10.0.0.1/32 udp 5000", "10.0.1.1/32 tcp 5000",
                            "10.0.1.1/32 udp 5000"}));
    rules = Rules("ip6tables");
    std::sort(rules.begin(), rules.end());
    EXPECT_EQ(rules, (Texts{"fd00:1::1/128 tcp 5000", "fd00::1/128 tcp 5000"}));
    EXPECT_EQ(Udp("10.0.0.1", kPort), "refused");
    EXPECT_EQ(Udp("10.0.1.1", kPort), "refused");
    EXPECT_EQ(Tcp("10.0.1.1", kPort), "refused");
    EXPECT_EQ(Tcp("10.0.16.1", kPort), "answered");

    Must("ip addr add 10.0.0.3/24 dev eth0");
    EXPECT_EQ(Tcp("10.0.0.3", kPort), "answered");

    EXPECT_TRUE(PortCtrlDisablePort("10.0.0.3", kOtherPort));
    EXPECT_TRUE(PortCtrlEnablePort("0.0.0.0", kPort));
    EXPECT_EQ(Rules("iptables"), Texts{});
    EXPECT_EQ(Rules("ip6tables"), Texts{});
    EXPECT_EQ(Tcp("10.0.0.1", kPort), "answered");
    EXPECT_EQ(Udp("10.0.1.1", kPort), "answered");
    EXPECT_EQ(Tcp("10.0.0.3", kOtherPort), "answered");
    EXPECT_EQ(Tcp("fd00:1::1", kPort), "answered");
    EXPECT_EQ(Log(), LogLines{});
}

TEST_P(PortTest, ACardWithoutAnAddressHidesNoOther)
{
    Must("ip addr flush dev eth0");
    EXPECT_TRUE(PortCtrlDisablePort("0.0.0.0", kPort));
    EXPECT_EQ(Rules("iptables"), (Texts{"10.0.1.1/32 tcp 5000", "10.0.1.1/32 udp 5000"}));
    EXPECT_EQ(Rules("ip6tables"), Texts{"fd00:1::1/128 tcp 5000"});
    EXPECT_EQ(LogOf("PortCtrlDisablePort"),
              (LogLines{Error("PortCtrlDisablePort", "get eth0's ip from sys failed."),
                        Error("PortCtrlDisablePort", "get eth0's ipv6 from sys failed.")}));
}

TEST_P(PortTest, WithoutTheChainNothingIsBlockedAndNobodyIsTold)
{
    Must("iptables -F INPUT; iptables -X PORTCHAIN");
    EXPECT_TRUE(PortCtrlDisablePort("10.0.0.1", kPort));
    EXPECT_EQ(Tcp("10.0.0.1", kPort), "answered");
    EXPECT_TRUE(PortCtrlEnablePort("10.0.0.1", kPort));
    EXPECT_TRUE(PortCtrlEnablePort("0.0.0.0", kPort));
    EXPECT_EQ(Log(), LogLines{});
}

}  // namespace
