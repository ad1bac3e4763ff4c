// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// A walk over many cards: the same answers as the single questions, from files read once.

#include "Base.h"
#include "Network.h"

#include "BaseNames.h"
#include "fake/World.h"

#include <cerrno>

using namespace fake;
using vorlix::CardWalk;

namespace {

constexpr char kWireless[] = "/proc/net/wireless";
constexpr char kModes[] = "/mnt/mtd/Config/poeMode.conf";
constexpr char kSwitchDriver[] = "sim Switch drv";

class CardWalkTest : public World {
protected:
    static Texts Opened() { return TraceOf({"open /proc", "open /mnt"}); }
};

TEST_F(CardWalkTest, ReadsEachFileOnceForAllCards)
{
    AddCards({"eth0", "eth1", "wlan0"});
    Put(kWireless, " wlan0: 1\n");
    Put(kModes, "eth1 = 1\n");
    CardWalk walk;
    for (int round = 0; round < 3; ++round) {
        for (const char* name : {"eth0", "eth1", "wlan0"}) {
            (void)walk.IsWifi(name);
            (void)walk.SwitchMode(name);
        }
    }
    EXPECT_EQ(TraceOf({"open /proc/net/wireless"}).size(), 1U);
    EXPECT_EQ(TraceOf({"pread /mnt/mtd/Config/poeMode.conf"}).size(), 2U);  // the text, and its end
    EXPECT_EQ(OpenHandles(), (Texts{"open /proc/net/wireless O_RDONLY", "socket AF_INET 2 0"}));
}

TEST_F(CardWalkTest, AWalkThatAsksNothingReadsNothing)
{
    [[maybe_unused]] CardWalk walk;
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(CardWalkTest, FindsWirelessCardsInAnyOrder)
{
    AddCards({"ra0", "ra1", "eth0"});
    Put(kWireless, " ra0: 1\n ra1: 0\n ra10: 1\n");
    CardWalk walk;
    EXPECT_TRUE(walk.IsWifi("ra1"));
    EXPECT_TRUE(walk.IsWifi("ra0"));
    EXPECT_FALSE(walk.IsWifi("eth0"));
    EXPECT_TRUE(walk.IsWifi("ra10"));
    EXPECT_TRUE(walk.IsWifi("ra0"));
    EXPECT_TRUE(walk.IsWifi("wlan7")) << "told by its name alone";
}

TEST_F(CardWalkTest, AnswersAsTheSingleQuestions)
{
    AddCards({"eth0", "eth1", "eth2", "ppp0"});
    for (const char* name : {"eth0", "eth1", "eth2"}) kernel.At(name).driver = kSwitchDriver;
    const std::string longest = std::string(29, '0') + "1";  // that is read, and one more
    Put(kModes, "eth1 = 0\neth2 = 9\neth0:poe = 9\neth3\neth3 = 2\nxeth4 = 2\neth4 = 1\neth5 = " +
                    longest + "\neth6 = 0" + longest + "\neth7 = \neth7 = 2\n");
    for (const char* name : {"eth0", "eth1", "eth2", "ppp0", "eth0:poe", "eth3", "eth4", "eth5",
                             "eth6", "eth7", "eth8", "x"}) {
        SCOPED_TRACE(name);
        ClearLog();
        const int32_t single = isSwitchByName(name);
        const LogLines said = Log();
        ClearLog();
        CardWalk walk;
        EXPECT_EQ(walk.SwitchMode(name), single);
        EXPECT_EQ(Log(), said);
    }
}

TEST_F(CardWalkTest, AListingIsThePartThatTheWalkBeginsWith)
{
    AddCards({"eth0", "wlan0", "eth1"});
    kernel.At("eth0").driver = kSwitchDriver;
    Put(kWireless, " wlan0: 1\n");
    Put(kModes, "eth1 = 1\n");
    Names names;
    int count = kEntries;
    CardWalk walk;
    ASSERT_TRUE(ListCards(names.entries, &count, walk));
    EXPECT_EQ(names.First(count), (Texts{"eth0", "eth0:poe", "wlan0", "eth1"}));
    ClearTrace();
    EXPECT_EQ(walk.SwitchMode("eth1"), 1);
    EXPECT_FALSE(walk.IsWifi("eth1"));
    EXPECT_EQ(Opened(), Texts{});
}

TEST_F(CardWalkTest, AMissingTableIsLookedForOnce)
{
    AddCards({"eth0", "wlan0"});
    Fail("open /proc/net/wireless", ENOENT);
    CardWalk walk;
    EXPECT_FALSE(walk.IsWifi("eth0"));
    EXPECT_TRUE(walk.IsWifi("wlan0"));
    EXPECT_EQ(TraceOf({"open /proc/net/wireless"}).size(), 1U);
}

// ---- speed of a card of a walk

TEST_F(CardWalkTest, TellsTheSpeedWithoutReadingAgain)
{
    AddCards({"eth0", "eth1"});
    Put(kWireless, " eth1: 1\n");
    ethtool_cmd settings{};
    settings.speed = 1000;
    kernel.At("eth0").settings = settings;
    CardWalk walk;
    ASSERT_FALSE(walk.IsWifi("eth0"));
    ClearTrace();
    int speed = 7;
    EXPECT_TRUE(vorlix::LinkSpeedOf("eth0", &speed, walk));
    EXPECT_EQ(speed, 1000);
    EXPECT_EQ(Opened(), Texts{});
    EXPECT_FALSE(vorlix::LinkSpeedOf("eth1", &speed, walk)) << "a wireless card tells none";
    EXPECT_EQ(speed, 1000);
    EXPECT_EQ(Log(), LogLines{});
}

}  // namespace
