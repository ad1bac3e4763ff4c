// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The boot's repair of saved bridges: the cards' claims against the bridges' lists.

#include "LanriseWorld.h"

#include "Lanrise.h"

#include <cerrno>

using namespace fake;

namespace {

std::string Claim(const std::string& bridge)
{
    return Settings({"BRIDGEEDED = 1", "BRIDGENAME = " + bridge});
}

std::string Claimed(const std::string& bridge)
{
    return Settings({"BRIDGEEDED = 1", "BRIDGENAME = " + bridge, "WORKMODE = 3"});
}

const std::string kCleared = "BRIDGEEDED = 0\nBRIDGENAME = \n";

class CheckBridgeConfigTest : public World {
protected:
    /// Lists cards that claim a bridge.
    static void ListClaims(const std::vector<std::pair<std::string, std::string>>& claims)
    {
        std::vector<std::string> names;
        for (const auto& [card, bridge] : claims) {
            Put(CardFile(card), Claim(bridge));
            names.push_back(card);
        }
        List(names);
    }

    static void SaveList(const std::string& bridge, const std::string& list)
    {
        Put(CardFile(bridge), "HOSTIP = 10.0.0.2\nBRIDGEMEMBERS = " + list + "\n");
    }

    static std::string ListOf(const std::string& bridge)
    {
        const std::string text = Get(CardFile(bridge));
        const std::string key = "BRIDGEMEMBERS = ";
        const size_t begin = text.find(key);
        if (begin == std::string::npos) return text;
        return text.substr(begin + key.size(), text.find('\n', begin) - begin - key.size());
    }
};

TEST_F(CheckBridgeConfigTest, ABridgeInOrderIsLeftAloneWhateverItsOrder)
{
    SaveList("br0", "eth1,eth0");
    ListClaims({{"eth0", "br0"}, {"eth1", "br0"}});
    EXPECT_TRUE(CheckBridgeConfig());
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Get(CardFile("br0")), "HOSTIP = 10.0.0.2\nBRIDGEMEMBERS = eth1,eth0\n");
    EXPECT_EQ(Get(CardFile("eth0")), Claimed("br0"));
    EXPECT_EQ(Get(CardFile("eth1")), Claimed("br0"));
    EXPECT_EQ(TraceOf({"fopen /mnt/mtd/Config/networkbr0"}), std::vector<std::string>{});
}

TEST_F(CheckBridgeConfigTest, AListThatDiffersIsWrittenFromTheClaimsInTheirOrder)
{
    for (const char* list : {"eth1", "eth1,eth3", "eth1,eth0,eth3", "eth10,eth0"}) {
        SaveList("br0", list);
        InNewProcess([] {
            ListClaims({{"eth1", "br0"}, {"eth0", "br0"}});
            EXPECT_TRUE(CheckBridgeConfig());
            EXPECT_EQ(LogOf("CheckBridgeConfig"), LogLines{});
        });
        EXPECT_EQ(Get(CardFile("br0")), "HOSTIP = 10.0.0.2\nBRIDGEMEMBERS = eth1,eth0\n") << list;
    }
}

TEST_F(CheckBridgeConfigTest, ABridgeNeedNotBeThereToBeClaimed)
{
    ListClaims({{"eth0", "br7"}, {"eth1", "br7"}});
    EXPECT_TRUE(CheckBridgeConfig());
    EXPECT_EQ(Get(CardFile("br7")), "BRIDGEMEMBERS = eth0,eth1\n");
}

TEST_F(CheckBridgeConfigTest, TheFileOfABridgeThatNobodyClaimsIsRemoved)
{
    SaveList("br3", "eth0,eth1");
    SaveList("br31", "eth0,eth1");
    SaveList("br32", "eth0,eth1");
    List({"eth0"});
    EXPECT_TRUE(CheckBridgeConfig());
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_FALSE(Exists(CardFile("br3")));
    EXPECT_FALSE(Exists(CardFile("br31")));
    EXPECT_TRUE(Exists(CardFile("br32")));  // beyond the numbers looked at
    EXPECT_EQ(TraceOf({"remove"}),
              (std::vector<std::string>{"remove /mnt/mtd/Config/networkbr3",
                                        "remove /mnt/mtd/Config/networkbr31"}));
}

TEST_F(CheckBridgeConfigTest, AFolderThatCannotBeReadToItsEndHidesNoFile)
{
    SaveList("br3", "eth0,eth1");
    List({"eth0", "eth1"});
    Fail("readdir", EIO);
    EXPECT_TRUE(CheckBridgeConfig());
    EXPECT_FALSE(Exists(CardFile("br3")));
}

TEST_F(CheckBridgeConfigTest, ABridgeOfOneCardIsRemovedAndTheCardStandsAlone)
{
    SaveList("br3", "eth0,eth1");
    ListClaims({{"eth1", "br3"}});
    EXPECT_TRUE(CheckBridgeConfig());
    EXPECT_EQ(Log(),
              LogLines{Warn("CheckBridgeConfig", "the br3's member[eth1] from eth config is 1")});
    EXPECT_FALSE(Exists(CardFile("br3")));
    EXPECT_EQ(Get(CardFile("eth1")), kCleared + "WORKMODE = 3\n");
}

TEST_F(CheckBridgeConfigTest, TheFirstBridgeInOrderEndsTheWalk)
{
    SaveList("br0", "eth0,eth1");
    SaveList("br1", "eth9");
    SaveList("br2", "eth9");
    ListClaims({{"eth0", "br0"}, {"eth1", "br0"}, {"eth2", "br1"}, {"eth3", "br1"}});
    EXPECT_TRUE(CheckBridgeConfig());
    EXPECT_EQ(ListOf("br1"), "eth9");
    EXPECT_EQ(ListOf("br2"), "eth9");
}

TEST_F(CheckBridgeConfigTest, BridgesThatDifferDoNotEndTheWalk)
{
    SaveList("br0", "eth9");
    SaveList("br1", "eth9");
    SaveList("br2", "eth4,eth5");
    SaveList("br3", "eth9");
    ListClaims({{"eth0", "br0"},
                {"eth1", "br0"},
                {"eth2", "br1"},
                {"eth3", "br1"},
                {"eth4", "br2"},
                {"eth5", "br2"}});
    EXPECT_TRUE(CheckBridgeConfig());
    EXPECT_EQ(ListOf("br0"), "eth0,eth1");
    EXPECT_EQ(ListOf("br1"), "eth2,eth3");
    EXPECT_EQ(ListOf("br2"), "eth4,eth5");
    EXPECT_EQ(ListOf("br3"), "eth9");  // behind the one in order
}

TEST_F(CheckBridgeConfigTest, ACardThatClaimsNothingIsCleared)
{
    Put(CardFile("eth0"), "BRIDGEEDED = 0\nBRIDGENAME = br0\n");
    Put(CardFile("eth1"), "BRIDGENAME = br0\n");
    Put(CardFile("eth2"), "BRIDGEEDED = 1\n");
    Put(CardFile("eth3"), "BRIDGEEDED = 1\nBRIDGENAME = bond0\n");
    Put(CardFile("eth4"), "BRIDGEEDED = 1\nBRIDGENAME = \n");
    List({"eth0", "eth1", "eth2", "eth3", "eth4"});
    EXPECT_TRUE(CheckBridgeConfig());
    EXPECT_EQ(Get(CardFile("eth0")), kCleared);
    EXPECT_EQ(Get(CardFile("eth1")), "BRIDGENAME = \nBRIDGEEDED = 0\n");
    for (const char* card : {"eth2", "eth3", "eth4"}) EXPECT_EQ(Get(CardFile(card)), kCleared);
    // Both settings are asked for every card: an empty name is told also of a card that is in none.
    EXPECT_EQ(LogOf("GetValueByKey").size(), 1U);
}

TEST_F(CheckBridgeConfigTest, TheNameIsAskedAlsoOfACardThatIsNotMarked)
{
    Put(CardFile("eth0"), "BRIDGEEDED = 0\nBRIDGENAME = \n");
    List({"eth0"});
    EXPECT_TRUE(CheckBridgeConfig());
    EXPECT_EQ(Log(), LogLines{Warn("GetValueByKey",
                                   "the BRIDGENAME from /mnt/mtd/Config/network is empty.")});
}

TEST_F(CheckBridgeConfigTest, ABridgeOutsideTheNumbersKeepsItsCards)
{
    SaveList("br32", "eth9");
    ListClaims({{"eth0", "br32"}, {"eth1", "br32"}, {"eth2", "br-1"}});
    EXPECT_TRUE(CheckBridgeConfig());
    EXPECT_EQ(Get(CardFile("eth0")), Claimed("br32"));
    EXPECT_EQ(Get(CardFile("eth2")), Claimed("br-1"));
    EXPECT_EQ(ListOf("br32"), "eth9");
}

TEST_F(CheckBridgeConfigTest, TheNumberStandsFromTheThirdCharacterOn)
{
    ListClaims({{"eth0", "br"}, {"eth1", "xbr5"}});  // both read as number 0
    EXPECT_TRUE(CheckBridgeConfig());
    EXPECT_EQ(Get(CardFile("br0")), "BRIDGEMEMBERS = eth0,eth1\n");
}

TEST_F(CheckBridgeConfigTest, Eth0HasNoPlaceOfItsOwn)
{
    ListClaims({{"eth1", "br0"}, {"eth0", "br0"}});
    EXPECT_TRUE(CheckBridgeConfig());
    EXPECT_EQ(ListOf("br0"), "eth1,eth0");
}

TEST_F(CheckBridgeConfigTest, BondsAndBridgesClaimNothing)
{
    for (const char* name : {"bond0", "br1", "bond0.5"}) Put(CardFile(name), Claim("br0"));
    List({"bond0", "br1", "bond0.5"});
    EXPECT_TRUE(CheckBridgeConfig());
    EXPECT_EQ(Get(CardFile("bond0")), Claim("br0"));
    EXPECT_EQ(Get(CardFile("bond0.5")), Claim("br0"));
    EXPECT_FALSE(Exists(CardFile("br1")));
    EXPECT_FALSE(Exists(CardFile("br0")));
}

TEST_F(CheckBridgeConfigTest, MembersWithLongNamesInTheListAreNotThoseOfTheClaims)
{
    const std::string longName = "ethernetcard0011";  // one character more than a name has
    SaveList("br0", longName + ",eth1");
    ListClaims({{"ethernetcard001", "br0"}, {"eth1", "br0"}});
    EXPECT_TRUE(CheckBridgeConfig());
    EXPECT_EQ(ListOf("br0"), "ethernetcard001,eth1");
}

TEST_F(CheckBridgeConfigTest, WithoutMemoryForAClaimNoListIsJudged)
{
    SaveList("br0", "eth0,eth1");
    SaveList("br1", "eth9");
    ListClaims({{"eth0", "br0"}, {"eth1", "br0"}});
    FailAll("calloc", ENOMEM);
    EXPECT_TRUE(CheckBridgeConfig());
    EXPECT_EQ(ListOf("br0"), "eth0,eth1");
    EXPECT_EQ(ListOf("br1"), "eth9");
}

TEST_F(CheckBridgeConfigTest, WithoutInterfacesTheBridgesFilesGoAllTheSame)
{
    SaveList("br0", "eth0,eth1");
    SaveList("br9", "eth0,eth1");
    Put(CardFile("eth0"), Claim("br0"));
    List({"lo"});
    EXPECT_TRUE(CheckBridgeConfig());
    EXPECT_EQ(SavedFiles(), (std::map<std::string, std::string>{{"network", Claim("br0")}}));
}

TEST_F(CheckBridgeConfigTest, NeverTouchesTheKernel)
{
    SaveList("br0", "eth9");
    ListClaims({{"eth0", "br0"}, {"eth1", "br0"}, {"eth2", "br1"}});
    CheckBridgeConfig();
    EXPECT_EQ(TraceOf({"ioctl", "vfork", "socket", "open /sys", "open /proc"}),
              std::vector<std::string>{});
}

TEST_F(CheckBridgeConfigTest, WhateverFailsTheFilesStayWhole)
{
    SaveList("br0", "eth9");
    ListClaims({{"eth0", "br0"}, {"eth1", "br0"}, {"eth2", "br1"}});
    FailEachCall([] { CheckBridgeConfig(); }, [](const std::string&) { ExpectWellFormedFiles(); });
}

}  // namespace
