// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The limits of what a boot keeps in tables and fields, each at its place of use: one below, at and
// one above.

#include "LanriseWorld.h"
#include "Steps.h"

#include "Lanrise.h"

#include <algorithm>

using namespace fake;

namespace {

using Cards = std::vector<std::string>;

Cards Numbered(const std::string& kind, int first, int count)
{
    Cards cards;
    for (int i = 0; i < count; ++i) cards.push_back(kind + std::to_string(first + i));
    return cards;
}

std::string Joined(const Cards& cards)
{
    std::string text;
    for (const std::string& card : cards) text += (text.empty() ? "" : ",") + card;
    return text;
}

void Save(const Cards& cards, const Texts& lines)
{
    for (const std::string& card : cards) Put(CardFile(card), Settings(lines));
}

// ---- as many cards as a table holds

/// A bond is one of the 32 interfaces itself: at most 31 cards can be in it.
class BondOfManyTest : public World, public testing::WithParamInterface<int> {
protected:
    void SetUp() override
    {
        World::SetUp();
        cards = Numbered("eth", 1, GetParam());
        Save(cards, {"BONDED = 1", "BONDNAME = bond0"});
        Cards listed = cards;
        listed.emplace_back("bond0");
        List(listed);
    }

    Cards cards;
};

INSTANTIATE_TEST_SUITE_P(Cards, BondOfManyTest, testing::Values(29, 30, 31));

TEST_P(BondOfManyTest, AListInOrderStays)
{
    std::rotate(cards.begin(), cards.begin() + 1, cards.end());
    Save({"bond0"}, {"BONDMODE = 1", "BONDMEMBERS = " + Joined(cards)});
    EXPECT_TRUE(CheckBondConfig());
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(StepsOf({"write networkbond0"}), Texts{});
}

TEST_P(BondOfManyTest, AListThatLacksTheLastCardGetsAllOfThem)
{
    const Cards all = cards;
    cards.pop_back();
    Save({"bond0"}, {"BONDMODE = 1", "BONDMEMBERS = " + Joined(cards)});
    EXPECT_TRUE(CheckBondConfig());
    EXPECT_EQ(Get(CardFile("bond0")), Settings({"BONDMODE = 1", "BONDMEMBERS = " + Joined(all)}));
}

TEST_P(BondOfManyTest, IsBuiltOfAllOfThem)
{
    for (const char* attribute : {"slaves", "mode", "miimon"}) {
        Put("/sys/class/net/bond0/bonding/" + std::string(attribute), "");
    }
    Save({"bond0"}, {"BONDMODE = 1", "BONDMEMBERS = " + Joined(cards)});
    EXPECT_TRUE(DoBondStuff());
    EXPECT_EQ(Commands().size(), 2 * cards.size() + 1);
    EXPECT_EQ(Commands().back(), "ifenslave bond0 " + Replaced(Joined(cards), ",", " "));
}

TEST_P(BondOfManyTest, AListThatNamesACardTwiceIsWrittenAnew)
{
    Cards listed = cards;
    listed.push_back(cards[0]);
    Save({"bond0"}, {"BONDMODE = 1", "BONDMEMBERS = " + Joined(listed)});
    EXPECT_TRUE(CheckBondConfig());
    EXPECT_EQ(Get(CardFile("bond0")), Settings({"BONDMODE = 1", "BONDMEMBERS = " + Joined(cards)}));
}

/// A bridge need not be there yet: all 32 interfaces can be in it.
class BridgeOfManyTest : public World, public testing::WithParamInterface<int> {
protected:
    void SetUp() override
    {
        World::SetUp();
        cards = Numbered("eth", 0, GetParam());
        Save(cards, {"BRIDGEEDED = 1", "BRIDGENAME = br0"});
        List(cards);
    }

    Cards cards;
};

INSTANTIATE_TEST_SUITE_P(Cards, BridgeOfManyTest, testing::Values(30, 31, 32));

TEST_P(BridgeOfManyTest, AListInOrderStays)
{
    std::rotate(cards.begin(), cards.begin() + 1, cards.end());
    Save({"br0"}, {"BRIDGEMEMBERS = " + Joined(cards)});
    EXPECT_TRUE(CheckBridgeConfig());
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(StepsOf({"write networkbr0", "remove"}), Texts{});
}

TEST_P(BridgeOfManyTest, AListThatLacksTheLastCardGetsAllOfThem)
{
    const Cards all = cards;
    cards.pop_back();
    Save({"br0"}, {"BRIDGEMEMBERS = " + Joined(cards)});
    EXPECT_TRUE(CheckBridgeConfig());
    EXPECT_EQ(Get(CardFile("br0")), Settings({"BRIDGEMEMBERS = " + Joined(all)}));
}

TEST_P(BridgeOfManyTest, IsBuiltOfAllOfThem)
{
    Save({"br0"}, {"BRIDGEMEMBERS = " + Joined(cards)});
    EXPECT_TRUE(DoBridgeStuff());
    Texts added = TraceOf({"command brctl addif br0 "});
    for (std::string& command : added) command = command.substr(24);
    EXPECT_EQ(added, cards);
    EXPECT_EQ(Get(CardFile("br0")), Settings({"BRIDGEMEMBERS = " + Joined(cards)}));
}

TEST_P(BridgeOfManyTest, AListThatNamesACardTwiceIsWrittenAnew)
{
    Cards listed = cards;
    listed[1] = listed[0];
    Save({"br0"}, {"BRIDGEMEMBERS = " + Joined(listed)});
    EXPECT_TRUE(CheckBridgeConfig());
    const std::string saved = Get(CardFile("br0"));
    EXPECT_EQ(StepsOf({"write networkbr0"}).size(), 0U);  // as many, and each of them claims it
    EXPECT_EQ(saved, Settings({"BRIDGEMEMBERS = " + Joined(listed)}));
}

// ---- names that fill their field

class LongNameTest : public World {
protected:
    const std::string bond = "bond0abcdefghij";    // 15 characters
    const std::string bridge = "br0abcdefghijkl";  // 15 characters
    const Cards cards = {"eth1", "eth2"};
};

TEST_F(LongNameTest, ABondNameOfFifteenCharactersIsAClaim)
{
    Save(cards, {"BONDED = 1", "BONDNAME = " + bond});
    List({"eth1", "eth2", bond});
    EXPECT_TRUE(CheckBondConfig());
    EXPECT_EQ(Get(CardFile("eth1")),
              Settings({"BONDED = 1", "BONDNAME = " + bond, "WORKMODE = 1"}));
    EXPECT_EQ(Get(CardFile(bond)), Settings({"BONDMODE = 1", "BONDMEMBERS = eth1,eth2"}));
}

TEST_F(LongNameTest, ABondNameOfSixteenCharactersCannotBeReadAndCountsAsTheFirstBond)
{
    Save({"eth1"}, {"BONDED = 1", "BONDNAME = " + bond + "k"});
    List({"eth1", bond});
    EXPECT_TRUE(CheckBondConfig());
    EXPECT_EQ(
        LogOf("GetValueByKey"),
        LogLines{Error("GetValueByKey", "value len is too small.[len:16,value:" + bond + "k]")});
    EXPECT_EQ(Get(CardFile("eth1")), Settings({"BONDED = 0", "BONDNAME = "}));  // no bond0
}

TEST_F(LongNameTest, ABridgeNameOfFifteenCharactersIsAClaim)
{
    Save(cards, {"BRIDGEEDED = 1", "BRIDGENAME = " + bridge});
    List(cards);
    EXPECT_TRUE(CheckBridgeConfig());
    EXPECT_EQ(Get(CardFile("eth1")),
              Settings({"BRIDGEEDED = 1", "BRIDGENAME = " + bridge, "WORKMODE = 3"}));
    EXPECT_EQ(Get(CardFile("br0")), Settings({"BRIDGEMEMBERS = eth1,eth2"}));
}

TEST_F(LongNameTest, ABridgeNameOfSixteenCharactersIsNoClaim)
{
    Save({"eth1"}, {"BRIDGEEDED = 1", "BRIDGENAME = " + bridge + "m"});
    List({"eth1"});
    EXPECT_TRUE(CheckBridgeConfig());
    EXPECT_EQ(Get(CardFile("eth1")), Settings({"BRIDGEEDED = 0", "BRIDGENAME = "}));
}

TEST_F(LongNameTest, ABridgeIsReadOutOfItsFileNameAsFarAsANameGoes)
{
    List({});
    const std::vector<std::pair<std::string, std::string>> files = {
        {"networkbr0", "read networkbr0"},
        {"network" + bridge, "read network" + bridge},
        {"network" + bridge + "m", "read network" + bridge + " (missing)"},
        {"network" + bridge + "mnopqrstuvw", "read network" + bridge + " (missing)"},
        {"networkbr0 old", "read networkbr0 (missing)"},
        {"networkbr0\told", "read networkbr0 (missing)"},
        {"networketh1networkbr0", "read networketh1networkbr0"}};
    for (const auto& [file, step] : files) {
        Put("/mnt/mtd/Config/" + file, "");
        ClearTrace();
        EXPECT_TRUE(DoBridgeStuff());
        EXPECT_EQ(StepsOf({"read network"}), Texts{step}) << file;
        Remove("/mnt/mtd/Config/" + file);
    }
}

TEST_F(LongNameTest, AFileThatOnlyHoldsTheWordIsNoBridges)
{
    List({});
    for (const char* file : {"xnetworkbr0", "oldnetworkbr1", "network xbr0"}) {
        Put(std::string("/mnt/mtd/Config/") + file, "");
        ClearTrace();
        EXPECT_TRUE(DoBridgeStuff());
        EXPECT_EQ(StepsOf({"read network"}), Texts{}) << file;
        Remove(std::string("/mnt/mtd/Config/") + file);
    }
}

TEST_F(LongNameTest, ADefaultCardOfFifteenCharactersIsFoundAndWrittenBack)
{
    const std::string card = "eth0abcdefghijk";
    ASSERT_EQ(card.size(), 15U);
    Save({"eth0"}, {"DEFAULT_ETH = " + card});
    List({"eth0", card});
    EXPECT_TRUE(CheckDefaultEthConfig());
    EXPECT_EQ(LogOf("CheckDefaultEthConfig"),
              LogLines{Info("CheckDefaultEthConfig", "default eth is " + card + ".")});
    Save({card}, {"HOSTIP = 10.0.0.2", "SUBMASK = 255.0.0.0", "GATEWAYIP = 10.0.0.1"});
    ClearLog();
    addAllCardNetRoute();
    const LogLines added = LogOf("Route_AddIPv4Route");
    ASSERT_FALSE(added.empty());
    EXPECT_NE(added.back().text.find("10.0.0.1,0.0.0.0," + card + "#"), std::string::npos);
}

TEST_F(LongNameTest, ACardIsNoBondForAnotherCard)
{
    Save({"eth1"}, {"BONDED = 1", "BONDNAME = eth2"});
    List({"eth1", "eth2"});
    EXPECT_TRUE(CheckBondConfig());
    EXPECT_EQ(Get(CardFile("eth1")), Settings({"BONDED = 0", "BONDNAME = "}));
}

// ---- numbers

TEST_F(LongNameTest, ACardOfAHigherNumberDoesNotStandForALower)
{
    Save({"eth10", "bond10", "wlan10"}, {"MTU = 1500"});
    List({"eth10", "bond10", "wlan10"});
    EXPECT_TRUE(CheckEthCardConfig());
    EXPECT_TRUE(CheckBondCardConfig());
    EXPECT_TRUE(CheckWlanCardConfig());
    EXPECT_EQ(StepsOf({"write"}),
              (Texts{"write networketh10", "write networketh10", "write networketh10"}));
    EXPECT_FALSE(Exists(CardFile("eth1")));
}

}  // namespace
