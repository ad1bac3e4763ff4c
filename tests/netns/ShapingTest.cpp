// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Arp_Ping.h"
#include "CommonApi.h"

#include "Device.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <sstream>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace device;

namespace {

using Seconds = std::chrono::duration<double>;
using Clock = std::chrono::steady_clock;

constexpr char kTc[] = "/usr/local/bin/tc";
constexpr char kPeer[] = "10.0.0.2";

NetTc Limit(const char* address, int mbit)
{
    NetTc limit{};
    strncpy(limit.ipAddr, address, sizeof(limit.ipAddr) - 1);
    limit.ipType = 4;
    limit.bandWidth = mbit;
    return limit;
}

bool Set(const char* card, const std::vector<NetTc>& limits)
{
    return TrafCtrlSetBand(card, limits.data(), static_cast<int>(limits.size()));
}

Texts LinesOf(const std::string& command)
{
    std::istringstream output(Must(command));
    Texts lines;
    for (std::string line; std::getline(output, line);) lines.push_back(line);
    std::sort(lines.begin(), lines.end());
    return lines;
}

// ---- what the kernel has, as tc tells it

/// "htb 1: default 0x10"; empty without a root of that kind.
std::string Root(const std::string& card)
{
    return Must(
        std::string(kTc) + " qdisc show dev " + card +
        " | sed -n 's/^qdisc \\(htb 1:\\) root .* \\(default [^ ]*\\) .*/\\1 \\2/p' | tr -d '\\n'");
}

/// "1:10 8Mbit"
Texts Classes(const std::string& card)
{
    return LinesOf(std::string(kTc) + " class show dev " + card +
                   " | sed -n 's/^class htb \\([^ ]*\\) root .*rate \\([^ ]*\\) ceil.*/\\1 \\2/p'");
}

/// "1:10 10.0.0.2/32"
Texts Filters(const std::string& card)
{
    return LinesOf(std::string(kTc) + " -p filter show dev " + card +
                   " | sed -n '/flowid/{s/.*flowid \\([^ ]*\\).*/\\1/;N;s/\\n.*dst / /;p}'");
}

/// "1:10 sfq 10: perturb 5sec"
Texts Leaves(const std::string& card)
{
    return LinesOf(std::string(kTc) + " qdisc show dev " + card +
                   " | sed -n 's/^qdisc \\(sfq [^ ]*\\) parent \\([^ ]*\\) .*\\(perturb [^ ]*\\).*/"
                   "\\2 \\1 \\3/p'");
}

/// Two cards, each with a peer on its cable, and tc where the device has it.
class ShapingTest : public Device {
protected:
    void SetUp() override
    {
        Device::SetUp();
        NEEDS_TOOL("tc");
        // Over the folder of this machine, in the mounts of this test alone.
        Must("cp \"$(command -v tc)\" /run/tc && mount -t tmpfs tmpfs /usr/local/bin && "
             "ln -s /run/tc /usr/local/bin/tc");
        AddCards(2);
        const Result htb = Try("tc qdisc add dev eth0 root htb && tc qdisc del dev eth0 root");
        if (htb.status != 0) GTEST_SKIP() << "this kernel has no htb: " << htb.output;

        for (const char* number : {"0", "1"}) {
            const std::string card = std::string("eth") + number;
            const std::string net = std::string("10.0.") + number;
            Must("ip link set " + card + " up; ip addr add " + net + ".1/24 dev " + card);
            Must("ip -n peer addr add " + net + ".2/24 dev " + card);
        }
    }

    static Texts Saved(const char* card)
    {
        NetTc limits[40] = {};
        int count = 40;
        Texts saved;
        if (!TrafCtrlGetBand(card, limits, &count)) return {"(none)"};
        for (int i = 0; i < count; ++i) {
            saved.push_back(std::string(limits[i].ipAddr) + " " +
                            std::to_string(limits[i].bandWidth));
        }
        return saved;
    }
};

TEST_F(ShapingTest, EachLimitIsAClassAndAFilterBelowTheCardsRoot)
{
    EXPECT_TRUE(Set("eth0", {Limit("10.0.0.2", 8), Limit("10.0.0.3", 20)}));
    EXPECT_TRUE(Set("eth1", {Limit("10.0.1.2", 3)}));
    EXPECT_EQ(Root("eth0"), "htb 1: default 0x10");
    EXPECT_EQ(Classes("eth0"), (Texts{"1:10 8Mbit", "1:20 20Mbit"}));
    EXPECT_EQ(Filters("eth0"), (Texts{"1:10 10.0.0.2/32", "1:20 10.0.0.3/32"}));
    EXPECT_EQ(Root("eth1"), "htb 1: default 0x10");
    EXPECT_EQ(Classes("eth1"), Texts{"1:30 3Mbit"});
    EXPECT_EQ(Filters("eth1"), Texts{"1:30 10.0.1.2/32"});
    EXPECT_EQ(Saved("eth0"), (Texts{"10.0.0.2 8", "10.0.0.3 20"}));
    EXPECT_EQ(Saved("eth1"), Texts{"10.0.1.2 3"});
}

TEST_F(ShapingTest, EachClassHasItsFairQueue)
{
    const Result sfq = Try("tc qdisc add dev eth1 root sfq && tc qdisc del dev eth1 root");
    if (sfq.status != 0) GTEST_SKIP() << "this kernel has no sfq; the board has: " << sfq.output;

    EXPECT_TRUE(Set("eth0", {Limit("10.0.0.2", 8), Limit("10.0.0.3", 20)}));
    EXPECT_EQ(Leaves("eth0"), (Texts{"1:10 sfq 10: perturb 5sec", "1:20 sfq 20: perturb 5sec"}));
}

TEST_F(ShapingTest, RemovingOnePeerBuildsTheOthersAgain)
{
    EXPECT_TRUE(Set("eth0", {Limit("10.0.0.2", 8), Limit("10.0.0.3", 9), Limit("10.0.0.4", 10)}));
    EXPECT_TRUE(Set("eth1", {Limit("10.0.1.2", 3)}));
    EXPECT_TRUE(TrafCtrlUnSetBand("eth0", "10.0.0.3"));
    EXPECT_EQ(Root("eth0"), "htb 1: default 0x10");
    EXPECT_EQ(Classes("eth0"), (Texts{"1:50 8Mbit", "1:60 10Mbit"}));
    EXPECT_EQ(Filters("eth0"), (Texts{"1:50 10.0.0.2/32", "1:60 10.0.0.4/32"}));
    EXPECT_EQ(Saved("eth0"), (Texts{"10.0.0.2 8", "10.0.0.4 10"}));
    EXPECT_EQ(Classes("eth1"), Texts{"1:40 3Mbit"});
}

TEST_F(ShapingTest, RemovingAllPeersLeavesNoRoot)
{
    EXPECT_TRUE(Set("eth0", {Limit("10.0.0.2", 8), Limit("10.0.0.3", 9)}));
    EXPECT_TRUE(TrafCtrlUnSetBand("eth0", "0.0.0.0"));
    EXPECT_EQ(Root("eth0"), "");
    EXPECT_EQ(Classes("eth0"), Texts{});
    EXPECT_EQ(Saved("eth0"), Texts{});
    EXPECT_EQ(Get("/mnt/mtd/Config/nettc_eth0"), "");
}

TEST_F(ShapingTest, WhatTcRefusesCountsAsSet)
{
    EXPECT_TRUE(Set("eth0", {Limit("nowhere", 8), Limit("10.0.0.3", 0), Limit("10.0.0.4", 9)}));
    EXPECT_EQ(Classes("eth0"), (Texts{"1:10 8Mbit", "1:30 9Mbit"}));
    EXPECT_EQ(Filters("eth0"), (Texts{"1:20 10.0.0.3/32", "1:30 10.0.0.4/32"}));
    EXPECT_EQ(Saved("eth0"), (Texts{"nowhere 8", "10.0.0.3 0", "10.0.0.4 9"}));
    EXPECT_EQ(LogOf("TrafCtrlSetBand"), LogLines{});
}

TEST_F(ShapingTest, TheLimitBehindTheLastNumberOfAProcessIsRefusedAndCountsAsSet)
{
    Must("mv /usr/local/bin/tc /run/real && ln -s \"$(command -v true)\" /usr/local/bin/tc");
    const std::vector<NetTc> many(997, Limit(kPeer, 8));
    EXPECT_TRUE(Set("eth1", many));
    Must("mv /run/real /usr/local/bin/tc");
    EXPECT_TRUE(Set("eth0", {Limit(kPeer, 8), Limit("10.0.0.3", 9), Limit("10.0.0.4", 10)}));
    EXPECT_EQ(Classes("eth0"), (Texts{"1:9980 8Mbit", "1:9990 9Mbit"}));
    EXPECT_EQ(Saved("eth0"), (Texts{"10.0.0.2 8", "10.0.0.3 9", "10.0.0.4 10"}));
}

TEST_F(ShapingTest, TrafficThatNoFilterMatchesSharesTheClassOfTheFirstLimitOnItsCardOnly)
{
    EXPECT_TRUE(Set("eth0", {Limit("10.0.0.9", 8)}));
    EXPECT_TRUE(Set("eth1", {Limit("10.0.1.9", 8)}));
    const auto sentIn = [](const std::string& card, const std::string& class_) {
        const std::string sent =
            Must(std::string(kTc) + " -s class show dev " + card + " | sed -n '/^class htb " +
                 class_ + " /{n;s/ Sent \\([0-9]*\\) .*/\\1/p}'");
        return std::stol(sent);
    };
    const long before = sentIn("eth0", "1:10");
    EXPECT_TRUE(Ping_CheckAlive(nullptr, nullptr, "10.0.0.2", 10));
    EXPECT_TRUE(Ping_CheckAlive(nullptr, nullptr, "10.0.1.2", 10));
    EXPECT_GT(sentIn("eth0", "1:10"), before);
    EXPECT_EQ(sentIn("eth1", "1:20"), 0);
}

TEST_F(ShapingTest, APeerRemovedFromACardWithoutAFileLeavesNoClass)
{
    EXPECT_TRUE(TrafCtrlUnSetBand("eth0", kPeer));
    EXPECT_EQ(Root("eth0"), "htb 1: default 0x10");
    EXPECT_EQ(Classes("eth0"), Texts{});
    EXPECT_EQ(Filters("eth0"), Texts{});
    EXPECT_EQ(Must("wc -l </mnt/mtd/Config/nettc_eth0"), "32\n");
    EXPECT_EQ(Saved("eth0"), Texts{});

    EXPECT_TRUE(Set("eth0", {Limit(kPeer, 8)}));
    EXPECT_EQ(Classes("eth0"), Texts{"1:330 8Mbit"});
    EXPECT_EQ(Saved("eth0"), Texts{"10.0.0.2 8"});
}

TEST_F(ShapingTest, TheNextProcessReplacesTheRootAndKeepsTheFile)
{
    Child before([] {
        EXPECT_TRUE(Set("eth0", {Limit("10.0.0.2", 8), Limit("10.0.0.3", 9)}));
        EXPECT_EQ(Classes("eth0").size(), 2U);
    });
    EXPECT_TRUE(before.Wait());
    EXPECT_TRUE(Set("eth0", {Limit("10.0.0.4", 10)}));
    EXPECT_EQ(Classes("eth0"), Texts{"1:10 10Mbit"});
    EXPECT_EQ(Saved("eth0"), (Texts{"10.0.0.2 8", "10.0.0.3 9", "10.0.0.4 10"}));

    EXPECT_TRUE(TrafCtrlUnSetBand("eth0", "10.0.0.4"));
    EXPECT_EQ(Classes("eth0"), (Texts{"1:20 8Mbit", "1:30 9Mbit"}));
}

TEST_F(ShapingTest, AFlashThatTakesNoLineChangesNoLimit)
{
    SettingsOfSize(4096);
    Put("/mnt/mtd/Config/nettc_eth0", "");
    Put("/mnt/mtd/Config/full", std::string(4096, 'x'));
    EXPECT_TRUE(Set("eth0", {Limit("10.0.0.2", 8)}));
    EXPECT_EQ(LogOf("TC_SaveToConfig"),
              LogLines{Error("TC_SaveToConfig", "write error.[No space left on device]")});
    EXPECT_EQ(Saved("eth0"), Texts{});

    SettingsReadOnly();
    EXPECT_TRUE(Set("eth0", {Limit("10.0.0.3", 9)}));
    EXPECT_EQ(LogOf("TC_SaveToConfig").back(),
              Error("TC_SaveToConfig", "open file eth0 error.[Read-only file system]"));
    EXPECT_EQ(Classes("eth0"), (Texts{"1:10 8Mbit", "1:20 9Mbit"}));
}

// ---- traffic

/// Sends to the peer as fast as the card takes it, until it is ended. The kernel holds some 90
/// datagrams of each sender and lets it wait then: so the stream does not dry up while this process
/// waits for the processor.
void Flood()
{
    sockaddr_in to{};
    to.sin_family = AF_INET;
    to.sin_port = htons(9);
    inet_pton(AF_INET, kPeer, &to.sin_addr);
    int senders[4];
    for (int& sender : senders) {
        sender = socket(AF_INET, SOCK_DGRAM, 0);
        ASSERT_EQ(connect(sender, reinterpret_cast<sockaddr*>(&to), sizeof(to)), 0);
    }
    const char datagram[1400] = {};
    const pid_t test = getppid();
    while (getppid() == test) {
        // The peer has no such service and says so: the error of one send belongs to another.
        for (const int sender : senders) (void)send(sender, datagram, sizeof(datagram), 0);
    }
}

struct Sample {
    Clock::time_point time;
    double bytes;
};

/// The far end of a cable, and what has come in there.
class FarEnd {
public:
    explicit FarEnd(const std::string& card) : card_(card)
    {
        const AtMachine there("peer");
        table_ = open("/proc/thread-self/net/dev", O_RDONLY | O_CLOEXEC);
        EXPECT_GE(table_, 0);
    }
    ~FarEnd() { close(table_); }
    FarEnd(const FarEnd&) = delete;
    FarEnd& operator=(const FarEnd&) = delete;

    /// Bytes received so far, and when that was: asked again when the asking took its time.
    Sample Received() const
    {
        constexpr auto kAtOnce = std::chrono::milliseconds(20);
        for (;;) {
            const auto before = Clock::now();
            const double bytes = Bytes();
            const auto after = Clock::now();
            if (after - before < kAtOnce) return {before + (after - before) / 2, bytes};
        }
    }

    /// Waits until so many more have come in.
    void Await(double bytes) const
    {
        const double wanted = Received().bytes + bytes;
        while (Received().bytes < wanted) usleep(1000);
    }

private:
    double Bytes() const
    {
        char text[4096] = {};
        EXPECT_GT(pread(table_, text, sizeof(text) - 1, 0), 0);
        const char* found = strstr(text, (card_ + ":").c_str());
        return found == nullptr ? 0 : strtod(found + card_.size() + 1, nullptr);
    }

    std::string card_;
    int table_ = -1;
};

/// Mbit/s that come in, over the first two seconds in which that is between the limits. A busy
/// machine may keep sender or receiver waiting for longer; a stream with another limit gets there
/// never.
double RateBetween(double least, double most, const FarEnd& peer)
{
    constexpr unsigned kIntervalUs = 2000000;
    double rate = 0;
    for (int tries = 0; tries < 30 && !(least < rate && rate < most); ++tries) {
        const Sample first = peer.Received();
        usleep(kIntervalUs);
        const Sample last = peer.Received();
        rate = 8e-6 * (last.bytes - first.bytes) / Seconds(last.time - first.time).count();
    }
    return rate;
}

TEST_F(ShapingTest, AStreamKeepsToItsLimitUntilItIsRemoved)
{
    constexpr int kMbit = 2;
    EXPECT_TRUE(Set("eth0", {Limit(kPeer, kMbit)}));
    Child sender(Flood);
    const FarEnd peer("eth0");
    peer.Await(10000);
    EXPECT_NEAR(RateBetween(0.85 * kMbit, 1.15 * kMbit, peer), kMbit, 0.15 * kMbit);

    EXPECT_TRUE(TrafCtrlUnSetBand("eth0", "0.0.0.0"));
    EXPECT_GT(RateBetween(2 * kMbit, 1e6, peer), 2 * kMbit);
    sender.Kill();
}

}  // namespace
