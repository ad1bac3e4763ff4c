// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Arp_Ping.h"
#include "Base.h"
#include "CommonApi.h"
#include "Config.h"
#include "Dns.h"
#include "Net3.h"
#include "Netlink.h"
#include "Network.h"
#include "Network6.h"
#include "Other.h"
#include "Route.h"

#include "Device.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <functional>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <thread>

using namespace device;

namespace {

constexpr int kRounds = 40;

/// Runs all of them at once, from one starting shot, each `kRounds` times.
void AtOnce(const std::vector<std::function<void(int round)>>& works)
{
    std::atomic<size_t> ready{0};
    std::vector<std::thread> threads;
    for (const auto& work : works) {
        threads.emplace_back([&ready, &work, &works] {
            ++ready;
            while (ready < works.size()) std::this_thread::yield();
            for (int round = 0; round < kRounds; ++round) work(round);
        });
    }
    for (std::thread& thread : threads) thread.join();
}

/// The caught output, line by line: how often each message came in a whole frame, and the lines
/// that are none.
struct Frames {
    Frames()
    {
        static const std::regex kFrame(
            "\033\\[1;3[123];40m\\d\\d:\\d\\d:\\d\\d\\|Vorlix-111860\\|(Info |Warn "
            "|Error)\\|\\d+\\|"
            "([^\033]*)\\|Src/[A-Za-z0-9_/]+\\.cpp:\\d+\\|[A-Za-z0-9_]+\\(\\)\033\\[0m");
        std::istringstream output(output::Caught());
        std::smatch frame;
        for (std::string line; std::getline(output, line);) {
            if (std::regex_match(line, frame, kFrame)) {
                ++messages[frame[2]];
            } else {
                broken.push_back(line);
            }
        }
    }

    std::map<std::string, int> messages;
    Texts broken;
};

class ThreadsTest : public Device {};

TEST_F(ThreadsTest, LogLinesNeverMix)
{
    constexpr int kThreads = 8;
    constexpr int kLines = 25;  // a round
    std::vector<std::function<void(int)>> works;
    std::map<std::string, int> expected;
    for (int i = 0; i < kThreads; ++i) {
        const std::string word = "word" + std::to_string(i);
        const std::string text(20, static_cast<char>('a' + i));
        works.emplace_back([word, text](int) {
            std::string line = text;
            for (int j = 0; j < kLines; ++j) {
                EXPECT_EQ(FindWordInLine(line.data(), word.c_str(), ','), nullptr);
            }
        });
        expected["can not find " + word + " in " + text] = kRounds * kLines;
    }
    AtOnce(works);

    const Frames frames;
    EXPECT_EQ(frames.broken, Texts{});
    EXPECT_EQ(frames.messages, expected);
}

TEST_F(ThreadsTest, DifferentKeysOfOneFileAreAllKept)
{
    const char* const card = "eth2";
    Put(CardFile(card), "");
    std::vector<std::function<void(int)>> works;
    const char* const keys[] = {"HOSTIP", "MTU", "GATEWAYIP", "WORKMODE", "BONDNAME", "PRIO"};
    for (const char* key : keys) {
        works.emplace_back([key, card](int round) {
            const std::string path = CardFile(card);
            const std::string value = std::to_string(round);
            char read[32] = {};
            EXPECT_TRUE(SetValueByKey(path.c_str(), key, value.c_str()));
            EXPECT_TRUE(GetValueByKey(path.c_str(), key, read, sizeof(read)));
            EXPECT_EQ(read, value);
        });
    }
    AtOnce(works);
    const std::string text = Get(CardFile(card));
    for (const char* key : keys) {
        const std::string line = std::string(key) + " = " + std::to_string(kRounds - 1) + "\n";
        EXPECT_NE(text.find(line), std::string::npos) << text;
    }
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(ThreadsTest, ResolverFilesAreNeverSeenHalfWritten)
{
    const auto write = [](int) {
        EXPECT_TRUE(Dns_SetDnsAddress("10.0.0.1", "10.0.0.2", "2001:db8::1", "2001:db8::2"));
    };
    const auto read = [](int) {
        char primary[16] = {};
        char secondary[16] = {};
        char primary6[64] = {};
        char secondary6[64] = {};
        EXPECT_TRUE(Dns_GetDnsFileInfo(primary, secondary, primary6, secondary6, 64));
        EXPECT_STREQ(secondary6, "2001:db8::2");
    };
    write(0);
    AtOnce({write, read, write, read});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(ThreadsTest, TheFirstUseOfEverythingMayComeFromAllAtOnce)
{
    AddCards(2);
    Must("ip neigh add 10.0.0.7 lladdr 02:00:00:00:00:07 dev eth0 nud permanent");
    std::vector<std::function<void(int)>> works;
    for (int i = 0; i < 6; ++i) {
        works.emplace_back([](int) {
            int mtu = 0;
            EXPECT_TRUE(Net_GetMtubyName("eth0", &mtu));
            EXPECT_EQ(mtu, 1500);
            EXPECT_NE(Net6_GetInterfaceIndex("eth1"), -1);
            IPv4Route routes[4] = {};
            int count = 4;
            EXPECT_TRUE(Route_GetIPv4Route(routes, &count));
            IPv6Route routes6[4] = {};
            count = 4;
            EXPECT_TRUE(Route_GetIPv6Route(routes6, &count));
            EXPECT_FALSE(IsSwitch("eth0"));
            EXPECT_FALSE(IsVirtPcie("vnic0"));
            EXPECT_TRUE(NetCardIsWifi("wlan0", nullptr));
            char ip[16] = "";
            EXPECT_TRUE(Other_GetIPByMac("02:00:00:00:00:07", ip));
            EXPECT_STREQ(ip, "10.0.0.7");
            char mac[18] = "";
            EXPECT_TRUE(Other_GetMacByIP("10.0.0.7", mac));
            EXPECT_STREQ(mac, "02:00:00:00:00:07");
        });
    }
    AtOnce(works);
}

TEST_F(ThreadsTest, AllThreadsGetOneObjectForOneName)
{
    constexpr int kCards = 6;
    AddCards(kCards);
    std::atomic<NetInterface*> objects[kCards] = {};
    std::vector<std::function<void(int)>> works;
    for (int i = 0; i < 8; ++i) {
        works.emplace_back([i, &objects](int round) {
            const int number = (i + round) % kCards;
            const std::string name = "eth" + std::to_string(number);
            NetInterfaceDesc desc{};
            desc.name = name.c_str();
            NetInterface* object = nullptr;
            EXPECT_EQ(createNetInterface(&desc, &object), 0);
            NetInterface* first = nullptr;
            EXPECT_TRUE(objects[number].compare_exchange_strong(first, object) || first == object);
            int mtu = 0;
            EXPECT_EQ(object->getMTU(object, &mtu), 0);
        });
    }
    AtOnce(works);
    const std::set<NetInterface*> different(std::begin(objects), std::end(objects));
    EXPECT_EQ(different.size(), static_cast<size_t>(kCards));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(ThreadsTest, ReferencesOfAControlObjectAreAllCounted)
{
    QV_PAL_NetControl* control = nullptr;
    ASSERT_EQ(createNetControl(nullptr, &control), 0);
    const auto hold = [control](int) { EXPECT_GT(control->addRef(control), 1); };
    const auto holdAndRelease = [control](int) {
        EXPECT_GT(control->addRef(control), 1);
        EXPECT_GT(control->release(control), 0);
    };
    AtOnce(
        {hold, hold, hold, hold, holdAndRelease, holdAndRelease, holdAndRelease, holdAndRelease});
    for (int left = 4 * kRounds; left >= 0; --left) EXPECT_EQ(control->release(control), left);
}

/// What an application's threads do beside each other, each with a card or a key of its own.
class EverythingAtOnceTest : public Device {
protected:
    void SetUp() override
    {
        Device::SetUp();
        AddCards(6);
        for (int i = 0; i < 6; ++i) {
            const std::string number = std::to_string(i);
            Must("ip link set eth" + number + " up; ip addr add 10.0." + number + ".2/24 dev eth" +
                 number);
        }
        Put(std::string(kConfig) + "/resolv.conf", "");
        Put(std::string(kConfig) + "/resolvip6.conf", "");
    }

    static void Discover(int)
    {
        char names[32][16];
        int count = 32;
        EXPECT_TRUE(GetAllInterfaceInfo(names, &count));
        EXPECT_EQ(count, 6);
        const char* cards[] = {"eth0", "eth5"};
        EXPECT_TRUE(CheckEthExist(cards, 2));
        InterfaceInfo info[8] = {};
        count = 8;
        EXPECT_TRUE(GetNormalInterfaceInfo(info, &count));
        EXPECT_EQ(count, 6);
        char name[16] = {};
        EXPECT_FALSE(GetSwitchInterface(name, sizeof(name)));
        EXPECT_FALSE(NetCardIsWifi("eth0", nullptr));
    }

    static void ChangeFlags(int)
    {
        EXPECT_TRUE(NetInterfaceDown("eth1"));
        EXPECT_FALSE(InterfaceIsLink("eth1"));
        EXPECT_TRUE(NetInterfaceUp("eth1"));
    }

    static void ChangeMtu(int round)
    {
        EXPECT_TRUE(Net_SetMtubyName("eth2", 1400 + round));
        int mtu = 0;
        EXPECT_TRUE(NetGetMtubyName("eth2", &mtu));
        EXPECT_EQ(mtu, 1400 + round);
        EXPECT_FALSE(Net_SetMtubyName("eth2", 70000));  // takes the card down and up
    }

    static void ChangeAddress(int round)
    {
        const std::string address = "10.0.3." + std::to_string(10 + round);
        EXPECT_TRUE(NetSetIPByName("eth3", address.c_str(), "255.255.255.0"));
        char read[16] = {};
        char mask[16] = {};
        EXPECT_TRUE(NetGetIPbyName("eth3", read, mask));
        EXPECT_EQ(read, address);
        EXPECT_TRUE(NetGetRealIPByName("eth3", read, mask));
        EXPECT_EQ(read, address);
    }

    static void ChangeRoutes(const char* card, const char* net)
    {
        EXPECT_TRUE(RouteAddIPv4(net, "0.0.0.0", "255.255.255.0", card)) << card;
        EXPECT_TRUE(Route_IsExistInSys(net, "0.0.0.0", "255.255.255.0", card)) << card;
        EXPECT_TRUE(RouteDelIPv4(net, "0.0.0.0", "255.255.255.0", card)) << card;
    }

    static void ChangeSettings(int round)
    {
        EXPECT_TRUE(SetMtuByConfig("eth5", 1400 + round));
        EXPECT_TRUE(SetWorkModeByConfig("eth5", netModeMultiple));
        int mtu = 0;
        EXPECT_TRUE(GetMtuByConfig("eth5", &mtu));
        EXPECT_EQ(mtu, 1400 + round);
    }

    static void ChangeResolvers(int)
    {
        EXPECT_TRUE(SetIPv4DnsServer("10.0.0.1", "10.0.0.2"));
        char primary[16] = {};
        char secondary[16] = {};
        EXPECT_TRUE(GetIPv4DnsServer(primary, secondary));
        EXPECT_STREQ(primary, "10.0.0.1");
    }

    /// Two threads change neighbours of one card, each its own.
    static void ChangeNeighbours(const std::string& number)
    {
        NetARPEntry entry{};
        strcpy(entry.ip, ("10.0.0.1" + number).c_str());
        strcpy(entry.mac, ("02:00:00:00:00:0" + number).c_str());
        EXPECT_TRUE(arpSetStaticEntry(&entry));
        char text[18] = "";
        EXPECT_TRUE(GetMacByIPFromARP(entry.ip, text));
        EXPECT_STREQ(text, entry.mac);
        EXPECT_TRUE(GetIPByMacFromARP(entry.mac, text));
        EXPECT_STREQ(text, entry.ip);
        NetARPEntry listed{};
        int count = 1;
        EXPECT_TRUE(arpGetARPStaticInfoByIP(entry.ip, &listed, &count));
        EXPECT_EQ(count, 1);
        EXPECT_TRUE(arpDelStaticEntry(&entry));
    }

    /// Threads of one process take each other's answers.
    static void AskForEcho(int)
    {
        constexpr int kLong = 30;  // seconds that nobody waits for
        EXPECT_TRUE(Ping_CheckAlive(nullptr, nullptr, "127.0.0.1", kLong));
    }

    static void RunCommands(int round)
    {
        const std::string command = "exit " + std::to_string(round);
        EXPECT_TRUE(VorlixRunCmd(command.c_str()));
    }
};

TEST_F(EverythingAtOnceTest, EachThreadGetsItsOwnAnswers)
{
    AtOnce({Discover, ChangeFlags, ChangeMtu, ChangeAddress,
            [](int) { ChangeRoutes("eth0", "172.16.0.0"); },
            [](int) { ChangeRoutes("eth4", "172.17.0.0"); }, ChangeSettings, ChangeResolvers,
            [](int) { ChangeNeighbours("7"); }, [](int) { ChangeNeighbours("8"); }, AskForEcho,
            AskForEcho, RunCommands, RunCommands});

    EXPECT_EQ(Frames().broken, Texts{});
    for (int i = 0; i < 6; ++i) EXPECT_TRUE(IsUp("eth" + std::to_string(i)));
    EXPECT_EQ(Mtu("eth2"), 1400 + kRounds - 1);
    EXPECT_EQ(Addresses("eth3"), Texts{"10.0.3." + std::to_string(9 + kRounds) + "/24"});
    EXPECT_EQ(Get(std::string(kConfig) + "/resolv.conf"),
              "nameserver 10.0.0.1\nnameserver 10.0.0.2\n");
}

TEST_F(ThreadsTest, EachRequestGetsItsOwnAnswer)
{
    std::vector<std::function<void(int)>> works;
    for (uint32_t i = 0; i < 4; ++i) {
        works.emplace_back([i](int) {
            const std::string from = "10.0.0." + std::to_string(i);
            EXPECT_EQ(Netlink_IPv4Rule(RTM_NEWRULE, from.c_str(), 42, 1000 + i), 0);
            EXPECT_EQ(Netlink_IPv4Rule(RTM_NEWRULE, from.c_str(), 42, 1000 + i), 2);
            EXPECT_EQ(Netlink_IPv4Rule(RTM_DELRULE, from.c_str(), 42, 1000 + i), 0);
        });
    }
    AtOnce(works);
    const Frames frames;
    EXPECT_EQ(frames.broken, Texts{});
    EXPECT_EQ(frames.messages.at("RTNETLINK answers: File exists"), 4 * kRounds);
    EXPECT_EQ(frames.messages.size(), 4 * 2 + 2U);  // two a rule, and two of a refusal
    EXPECT_EQ(Ip("-4 rule").size(), 3U);            // those that each device has
}

}  // namespace
