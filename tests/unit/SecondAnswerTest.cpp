// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// A second question with another answer, and what the first one left behind.

#include "LanriseWorld.h"
#include "Steps.h"

#include "Backup.h"
#include "Base.h"
#include "CommonApi.h"
#include "Dns.h"
#include "Lanrise.h"
#include "Network.h"
#include "Other.h"
#include "Route.h"

#include <cstring>

using namespace fake;

// ---- work modes that cannot be read

namespace {

std::map<std::string, int32_t> workModes;  // of the cards whose mode is known; empty: as saved

}  // namespace

extern "C" {

bool __real_GetWorkModeByConfig(const char* name, NetWorkMode* mode);

bool __wrap_GetWorkModeByConfig(const char* name, NetWorkMode* mode)
{
    if (workModes.empty()) return __real_GetWorkModeByConfig(name, mode);
    const auto known = workModes.find(name);
    if (known == workModes.end()) return false;  // with the value as it was
    *mode = static_cast<NetWorkMode>(known->second);
    return true;
}

}  // extern "C"

namespace {

/// The internal bridge is looked for once the saved ones are built, before the second listing.
constexpr char kBehindTheBridges[] = "stat /sys/class/net/nbp0";

class SecondAnswerTest : public World {};

TEST_F(SecondAnswerTest, EachCardsWorkModeIsItsOwn)
{
    List({"eth1", "eth2", "eth3", "eth4"});
    workModes = {{"eth1", 1}, {"eth3", 0}};
    EXPECT_TRUE(RecoverOtherEth());
    EXPECT_EQ(
        TimelineOf({"Warn |RecoverOtherEth", "ioctl SIOCSIFFLAGS"}),
        (Texts{"Warn |RecoverOtherEth|eth2 work mode is unknow!!!",
               "ioctl SIOCSIFFLAGS eth2 0x1 on AF_INET", "ioctl SIOCSIFFLAGS eth3 0x1 on AF_INET",
               "Warn |RecoverOtherEth|eth4 work mode is unknow!!!",
               "ioctl SIOCSIFFLAGS eth4 0x1 on AF_INET"}));
}

// ---- listings

TEST_F(SecondAnswerTest, OneListingFindsWirelessCardsInAnyOrder)
{
    Put("/proc/net/wireless", "header\n wlan1: 0000\n eth5: 0000\n eth3: 0000\n");
    for (const char* card : {"eth3", "eth5", "eth3.1", "wlan1"}) {
        kernel.Add(card).driver = "sim Switch drv";
    }
    // A wireless card is never asked whether it is a switch.
    char names[32][16];
    int count = 32;
    EXPECT_TRUE(GetAllInterfaceInfo(names, &count));
    EXPECT_EQ(count, 4);
    EXPECT_EQ(TraceOf({"ioctl ETHTOOL_GDRVINFO"}), Texts{"ioctl ETHTOOL_GDRVINFO eth3.1"});
    EXPECT_EQ(TraceOf({"open /proc/net/wireless"}).size(), 1U);
}

TEST_F(SecondAnswerTest, TheSwitchInterfaceIsKnownInTheSecondListingToo)
{
    kernel.Add("eth0");
    kernel.Add("eth1").driver = "sim Switch drv";
    Put("/mnt/mtd/Config/poeMode.conf", "eth1 = 1\n");
    Put(CardFile("eth0"), "DEFAULT_ETH = eth1\n");
    OnCall(kBehindTheBridges, [] {
        // A bond has come between the two cards: the switch interface is now beyond the first
        // count.
        Card bond;
        bond.name = "bond0";
        bond.index = 9;
        kernel.cards.insert(std::next(kernel.cards.begin()), bond);
    });
    EXPECT_TRUE(Lanrise({}));
    EXPECT_EQ(LogOf("GetSwitchInterface"), LogLines{});
    Texts looked;
    for (const LogLine& line : LogOf("FindWordInLine")) {
        if (line.text.find("can not find eth1 in") == 0) looked.push_back(line.text);
    }
    EXPECT_EQ(looked, (Texts{"can not find eth1 in eth0,", "can not find eth1 in ",
                             "can not find eth1 in "}));
}

/// A device with a switch interface, whose table of interfaces cannot be read again from the
/// building of the bridges on.
class SecondListingTest : public World {
protected:
    static void Boot(const std::function<void()>& meanwhile)
    {
        kernel.Add("eth0");
        kernel.Add("eth1").driver = "sim Switch drv";
        for (const char* card : {"eth0", "eth1"}) Put(CardFile(card), "");
        OnCall(kBehindTheBridges, [meanwhile] {
            FailAll("open /proc/net/dev", EIO);
            if (meanwhile) meanwhile();
        });
        EXPECT_TRUE(Lanrise({}));
        EXPECT_TRUE(Logged(Error("CommonMain", "can not get eth Names")));
        EXPECT_EQ(Log().back(), Info("CommonMain", "lanrise is finished."));
    }

    /// The last list of cards that a name was looked for in.
    static std::string Listed()
    {
        const LogLines looked = LogOf("FindWordInLine");
        if (looked.empty()) return "(nothing was looked for)";
        return looked.back().text.substr(looked.back().text.find(" in ") + 4);
    }
};

TEST_F(SecondListingTest, ThatFailsLeaves30NamesWithoutText)
{
    Boot(nullptr);
    EXPECT_EQ(Listed(), std::string(30, ','));
}

TEST_F(SecondListingTest, ThatFailsLeavesNamesWhoseFileIsTheFirstCards)
{
    Boot(nullptr);
    for (const auto& check : {CheckBondConfig, CheckBridgeConfig}) {
        Put(CardFile("eth0"),
            Settings({"BONDED = 1", "BONDNAME = bond9", "BRIDGEEDED = 1", "BRIDGENAME = lan"}));
        EXPECT_TRUE(check());
        const bool bonds = check == CheckBondConfig;
        EXPECT_EQ(
            Get(CardFile("eth0")),
            bonds
                ? Settings({"BONDED = 0", "BONDNAME = ", "BRIDGEEDED = 1", "BRIDGENAME = lan"})
                : Settings({"BONDED = 1", "BONDNAME = bond9", "BRIDGEEDED = 0", "BRIDGENAME = "}));
    }
}

TEST_F(SecondListingTest, ThatFailsCreatesTheFirstCardsFileAgain)
{
    Boot([] { Remove(CardFile("eth0")); });
    EXPECT_TRUE(Logged(Warn("CommonMain", " config file is not exit.")));
    EXPECT_EQ(LogOf("CommonMain").size(), 3U);
}

// ---- names that were refused

TEST_F(SecondAnswerTest, ARefusedNameStaysInTheNextRecord)
{
    Put("/proc/net/dev", "  eth0: 1 2\n  veth-abcdefghijkl: 3 4\n  lo: 5 6\n");
    InterfaceInfo records[3];
    memset(records, '#', sizeof(records));
    int count = 3;
    EXPECT_TRUE(GetNormalInterfaceInfo(records, &count));
    EXPECT_EQ(count, 1);
    EXPECT_STREQ(records[0].name, "eth0");
    EXPECT_STREQ(records[1].name, "lo");
    EXPECT_EQ(records[1].name[3], 'h');  // of the refused name that was there before
    EXPECT_EQ(records[2].name[0], '#');
}

TEST_F(SecondAnswerTest, ADriversTextMayFillItsField)
{
    kernel.Add("eth0").driver = std::string(26, 'x') + "Switch";  // 32 bytes, no terminator
    kernel.Add("eth1").driver = std::string(27, 'x') + "Switch";
    EXPECT_TRUE(CheckNetCardByDrvName("eth0", "Switch"));
    EXPECT_FALSE(CheckNetCardByDrvName("eth1", "Switch"));
    EXPECT_TRUE(CheckNetCardByDrvName("eth1", "Switc"));
}

// ---- the kernel's tables

TEST_F(SecondAnswerTest, AKeptRouteTableIsReadAfresh)
{
    kernel.Add("eth0");
    IPv4Route rows[4];
    for (int i = 1; i <= 3; ++i) {
        kernel.routes.push_back(
            {"10." + std::to_string(i) + ".0.0", "0.0.0.0", "255.255.0.0", "eth0"});
        int count = 4;
        EXPECT_TRUE(Route_GetIPv4Route(rows, &count));
        EXPECT_EQ(count, i);
    }
    kernel.routes.clear();
    int count = 4;
    EXPECT_TRUE(Route_GetIPv4Route(rows, &count));
    EXPECT_EQ(count, 0);
    EXPECT_EQ(TraceOf({"open /proc/net/route"}).size(), 1U);
}

TEST_F(SecondAnswerTest, AMarkThatCannotBeReadIsNone)
{
    UseCmos("10.0.0.3", 8, "10.0.0.1");
    EXPECT_TRUE(SetCmosResetMark(0x66));
    EXPECT_EQ(GetCmosResetMark(), 0x66);
    Fail("CMOSRead", EIO);
    EXPECT_EQ(GetCmosResetMark(), 0);
}

TEST_F(SecondAnswerTest, ServersThatAreNoLongerSavedAreNotWrittenAgain)
{
    const auto lose = [] {
        Remove("/mnt/mtd/Config/resolv.conf");
        Remove("/mnt/mtd/Config/resolvip6.conf");
    };
    const std::string ipv4 = "nameserver 10.0.0.7\nnameserver 10.0.0.8\n";
    const std::string ipv6 = "nameserver fd00::7\nnameserver fd00::8\n";
    EXPECT_TRUE(SetIPv6DnsServer("fd00::7", "fd00::8"));
    EXPECT_TRUE(SetIPv4DnsServer("10.0.0.7", "10.0.0.8"));
    EXPECT_TRUE(SetIPv6DnsServer("fd00::7", "fd00::8"));
    EXPECT_EQ(Get("/mnt/mtd/Config/resolv.conf"), ipv4 + ipv6);
    lose();
    EXPECT_TRUE(SetIPv4DnsServer("10.0.0.7", "10.0.0.8"));
    EXPECT_EQ(Get("/mnt/mtd/Config/resolv.conf"), ipv4);
    lose();
    EXPECT_TRUE(SetIPv6DnsServer("fd00::7", "fd00::8"));
    EXPECT_EQ(Get("/mnt/mtd/Config/resolv.conf"), ipv6);
}

TEST_F(SecondAnswerTest, AShortLineOfANeighbourIsNotFilledUpFromAnEarlierQuestion)
{
    const std::string whole = "10.0.0.9 0x1 0x6 02:aa:bb:cc:dd:ee * eth0\n";
    const auto table = [](const std::string& line) {
        Put("/proc/net/arp", "IP address  HW type  Flags  HW address  Mask  Device\n" + line);
    };
    NetARPEntry entries[2] = {};
    char mac[18];
    for (const std::string& line : {whole, std::string("10.0.0.9 0x1 0x6\n")}) {
        const bool isWhole = line == whole;
        table(line);
        EXPECT_TRUE(Other_GetMacByIP("10.0.0.9", mac));
        EXPECT_STREQ(mac, isWhole ? "02:aa:bb:cc:dd:ee" : "");
        int count = 2;
        EXPECT_TRUE(arpGetAllStaticEntry(entries, &count));
        ASSERT_EQ(count, 1);
        EXPECT_EQ(entries[0].mac[0], isWhole ? '0' : '\0');
        EXPECT_EQ(std::string(entries[0].dev), isWhole ? "eth0" : "");
        count = 2;
        EXPECT_TRUE(arpGetARPStaticInfoByIP("10.0.0.9", entries, &count));
        ASSERT_EQ(count, 1);
        EXPECT_EQ(entries[0].mac[0], isWhole ? '0' : '\0');
        EXPECT_EQ(std::string(entries[0].dev), isWhole ? "eth0" : "");
    }
}

TEST_F(SecondAnswerTest, LimitsThatAreNoLongerSavedAreNotSetAgain)
{
    kernel.Add("eth0");
    NetTc limits[2] = {};
    strcpy(limits[0].ipAddr, "10.0.0.7");
    strcpy(limits[1].ipAddr, "10.0.0.8");
    EXPECT_TRUE(TrafCtrlSetBand("eth0", limits, 2));
    EXPECT_TRUE(TrafCtrlUnSetBand("eth0", "10.0.0.9"));
    Remove("/mnt/mtd/Config/nettc_eth0");
    ClearTrace();
    EXPECT_TRUE(TrafCtrlUnSetBand("eth0", "10.0.0.9"));
    for (const std::string& command : TraceOf({"command /usr/local/bin/tc filter"})) {
        EXPECT_EQ(command.find("10.0.0."), std::string::npos) << command;
    }
}

TEST_F(SecondAnswerTest, AShortLineOfARouteIsNotFilledUpFromAnEarlierQuestion)
{
    const std::string titles = "Iface\tDestination\tGateway\n";
    Put("/proc/net/route", titles + "eth0\t0000090A\t0100000A\t0003\t0\t0\t0\t0000FFFF\t0\t0\t0\n");
    const auto isThere = [] {
        return Route_IsExistInSys("10.9.0.0", "10.0.0.1", "255.255.0.0", "eth0");
    };
    EXPECT_TRUE(isThere());
    for (const char* line : {"eth0\n", "eth0\t0000090A\n", "eth0\t0000090A\t0100000A\t0003\n"}) {
        Put("/proc/net/route", titles + line);
        EXPECT_FALSE(isThere()) << line;
    }
}

TEST_F(SecondAnswerTest, AShortLineOfCountersIsNotFilledUpFromAnEarlierQuestion)
{
    kernel.Add("eth0");
    NetDataStat stat{};
    Put("/proc/net/dev", " eth0: 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16\n");
    EXPECT_TRUE(Net_GetDataStat("eth0", &stat));
    EXPECT_EQ(stat.transmittedCarrier, 15U);
    Put("/proc/net/dev", " eth0: 21 22\n eth0: 31 32\n");
    EXPECT_TRUE(Net_GetDataStat("eth0", &stat));
    EXPECT_EQ(stat.receivedBytes, 21U);  // the first line of the name
    EXPECT_EQ(stat.receivedPackets, 22U);
    EXPECT_EQ(stat.receivedErrors, 0U);
    EXPECT_EQ(stat.transmittedBytes, 0U);
    EXPECT_EQ(stat.transmittedCarrier, 0U);
}

TEST_F(SecondAnswerTest, CountersAreThoseOfTheWholeName)
{
    // The kernel's names have 15 characters; what is beyond the field of a record is refused, and
    // 15 of a longer one are no match.
    const std::string name = "eth0abcdefghijk";
    kernel.Add(name).counters = "7 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0";
    NetDataStat stat{};
    EXPECT_TRUE(Net_GetDataStat(name.c_str(), &stat));
    EXPECT_EQ(stat.receivedBytes, 7U);
    stat = {};
    EXPECT_FALSE(Net_GetDataStat((name + "x").c_str(), &stat));
    EXPECT_FALSE(Net_GetDataStat(name.substr(0, 14).c_str(), &stat));
    EXPECT_EQ(stat.receivedBytes, 0U);
}

}  // namespace
