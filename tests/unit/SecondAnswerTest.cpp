// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// A second question with another answer, and what the first one left behind.

#include "LanriseWorld.h"
#include "Steps.h"

#include "Base.h"
#include "Lanrise.h"
#include "Network.h"
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
