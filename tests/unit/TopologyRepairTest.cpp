// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The boot's repair of what is saved about bonds and bridges, and the members that run.

#include "LanriseWorld.h"

#include "Lanrise.h"

#include <algorithm>

using namespace fake;

namespace {

// ---- work modes

struct ModeCase {
    std::string name;
    std::vector<std::string> lines;
    bool clear;
    std::vector<std::string> settled;
    LogLines said;
};

class CheckWorkmodeConfigRulesTest : public World, public testing::WithParamInterface<ModeCase> {};

const LogLine kNoBonded = Warn("CheckWorkmodeConfig", "Get eth1 IsBondedByConfig  failed");
const LogLine kNoBridged = Warn("CheckWorkmodeConfig", "Get eth1 IsBridgedByConfig  failed");

INSTANTIATE_TEST_SUITE_P(
    CheckWorkmodeConfig, CheckWorkmodeConfigRulesTest,
    testing::Values(
        ModeCase{"Alone",
                 {"BONDED = 0", "BRIDGEEDED = 0", "WORKMODE = 3"},
                 true,
                 {"BONDED = 0", "BRIDGEEDED = 0", "WORKMODE = 0"},
                 {}},
        ModeCase{"Bridged",
                 {"BONDED = 0", "BRIDGEEDED = 1", "BRIDGENAME = br0"},
                 true,
                 {"BONDED = 0", "BRIDGEEDED = 1", "BRIDGENAME = br0", "WORKMODE = 3"},
                 {}},
        ModeCase{"Bonded",
                 {"BONDED = 1", "BRIDGEEDED = 0", "BONDNAME = bond0"},
                 true,
                 {"BONDED = 1", "BRIDGEEDED = 0", "BONDNAME = bond0", "WORKMODE = 1"},
                 {}},
        ModeCase{"Both",
                 {"WORKMODE = 1", "BONDED = 1", "BONDNAME = bond0", "BRIDGEEDED = 1",
                  "BRIDGENAME = br0"},
                 false,
                 {"WORKMODE = 0", "BONDED = 0", "BONDNAME = ", "BRIDGEEDED = 0", "BRIDGENAME = "},
                 {Error("CheckWorkmodeConfig",
                        " cannot determine eth1 workmode.delete from both bond and bridge.")}},
        ModeCase{"NothingSaved",
                 {"MTU = 1400"},
                 true,
                 {"MTU = 1400", "BONDED = 0", "BRIDGEEDED = 0", "WORKMODE = 0"},
                 {kNoBonded, kNoBridged}},
        ModeCase{"NoBondedFlag",
                 {"BRIDGEEDED = 1"},
                 true,
                 {"BRIDGEEDED = 1", "BONDED = 0", "WORKMODE = 3"},
                 {kNoBonded}},
        ModeCase{"NoBridgedFlag",
                 {"BONDED = 1"},
                 true,
                 {"BONDED = 1", "BRIDGEEDED = 0", "WORKMODE = 1"},
                 {kNoBridged}}),
    [](const auto& test) { return test.param.name; });

TEST_P(CheckWorkmodeConfigRulesTest, SettlesTheCard)
{
    Put(CardFile("eth1"), Settings(GetParam().lines));
    List({"eth1"});
    EXPECT_EQ(CheckWorkmodeConfig(), GetParam().clear);
    EXPECT_EQ(LogOf("CheckWorkmodeConfig"), GetParam().said);
    EXPECT_EQ(Get(CardFile("eth1")), Settings(GetParam().settled));
}

TEST_P(CheckWorkmodeConfigRulesTest, ASecondLookFindsNothingWrong)
{
    Put(CardFile("eth1"), Settings(GetParam().lines));
    List({"eth1"});
    CheckWorkmodeConfig();
    ClearLog();
    EXPECT_TRUE(CheckWorkmodeConfig());
    EXPECT_EQ(LogOf("CheckWorkmodeConfig"), LogLines{});
    EXPECT_EQ(Get(CardFile("eth1")), Settings(GetParam().settled));
}

class CheckWorkmodeConfigTest : public World {};

TEST_F(CheckWorkmodeConfigTest, ASwitchInterfaceAloneIsASwitch)
{
    kernel.Add("eth0").driver = "rt Switch";  // a card as well: "eth0:poe" is listed behind it
    kernel.Add("eth1");
    List({});
    EXPECT_TRUE(CheckWorkmodeConfig());
    EXPECT_EQ(Get(CardFile("eth0")), "BONDED = 0\nBRIDGEEDED = 0\nWORKMODE = 0\n");
    EXPECT_EQ(Get(CardFile("eth0:poe")), "BONDED = 0\nBRIDGEEDED = 0\nWORKMODE = 2\n");
    EXPECT_EQ(Get(CardFile("eth1")), "BONDED = 0\nBRIDGEEDED = 0\nWORKMODE = 0\n");
}

TEST_F(CheckWorkmodeConfigTest, BondsAndBridgesHaveNone)
{
    List({"bond0", "br0", "bond0.5", "ethbr"});
    EXPECT_TRUE(CheckWorkmodeConfig());
    for (const auto& [file, text] : SavedFiles()) EXPECT_EQ(text, "") << file;
}

TEST_F(CheckWorkmodeConfigTest, TheWalkGoesOnBehindACardThatIsBoth)
{
    const std::string both = Settings({"BONDED = 1", "BRIDGEEDED = 1"});
    Put(CardFile("eth0"), both);
    Put(CardFile("eth1"), "BONDED = 0\nBRIDGEEDED = 0\n");
    Put(CardFile("eth2"), both);
    List({"eth0", "eth1", "eth2"});
    EXPECT_FALSE(CheckWorkmodeConfig());
    EXPECT_EQ(LogOf("CheckWorkmodeConfig").size(), 2U);
    EXPECT_EQ(Get(CardFile("eth1")), "BONDED = 0\nBRIDGEEDED = 0\nWORKMODE = 0\n");
    EXPECT_TRUE(CheckWorkmodeConfig());
}

TEST_F(CheckWorkmodeConfigTest, TheBridgeIsLeftBeforeTheBond)
{
    Put(CardFile("eth1"), Settings({"BONDED = 1", "BONDNAME = bond0", "BRIDGEEDED = 1",
                                    "BRIDGENAME = br0", "WORKMODE = 1"}));
    List({"eth1"});
    std::vector<std::string> texts;
    std::function<void()> note = [&] {
        texts.push_back(Get(CardFile("eth1")));
        OnCall("fopen /mnt/mtd/Config/network1 w+", note);
    };
    OnCall("fopen /mnt/mtd/Config/network1 w+", note);
    CheckWorkmodeConfig();
    EXPECT_EQ(texts,
              (std::vector<std::string>{
                  "BONDED = 1\nBONDNAME = bond0\nBRIDGEEDED = 1\nBRIDGENAME = br0\nWORKMODE = 1\n",
                  "BONDED = 1\nBONDNAME = bond0\nBRIDGEEDED = 0\nBRIDGENAME = br0\nWORKMODE = 1\n",
                  "BONDED = 1\nBONDNAME = bond0\nBRIDGEEDED = 0\nBRIDGENAME = \nWORKMODE = 1\n",
                  "BONDED = 0\nBONDNAME = bond0\nBRIDGEEDED = 0\nBRIDGENAME = \nWORKMODE = 1\n",
                  "BONDED = 0\nBONDNAME = \nBRIDGEEDED = 0\nBRIDGENAME = \nWORKMODE = 1\n"}));
}

TEST_F(CheckWorkmodeConfigTest, WithoutCardsThereIsNothingToDo)
{
    List({"lo"});
    EXPECT_TRUE(CheckWorkmodeConfig());
    EXPECT_EQ(Trace(), std::vector<std::string>{});
}

TEST_F(CheckWorkmodeConfigTest, WhateverFailsTheFilesStayWhole)
{
    Put(CardFile("eth0"), "BONDED = 1\nBRIDGEEDED = 1\n");
    List({"eth0", "eth1"});
    FailEachCall([] { CheckWorkmodeConfig(); },
                 [](const std::string&) { ExpectWellFormedFiles(); });
}

// ---- members that run, with a bonding driver that a test can replace

bool (*replacedBond)(const char* bond, char** members, int* count) = nullptr;

class GetAllBondOrBrSlaveTest : public World {
protected:
    /// Cards that get no net route of their own.
    static std::vector<std::string> Members(const std::vector<std::string>& cards)
    {
        for (const std::string& card : cards) {
            Put(CardFile(card),
                Settings({"HOSTIP = 10.0.0.2", "SUBMASK = 255.0.0.0", "GATEWAYIP = 10.0.0.1"}));
        }
        kernel.routes.clear();
        addAllCardNetRoute();
        std::vector<std::string> members;
        for (const std::string& card : cards) {
            if (std::find(kernel.routes.begin(), kernel.routes.end(),
                          Route{"10.0.0.0", "0.0.0.0", "255.0.0.0", card}) == kernel.routes.end()) {
                members.push_back(card);
            }
        }
        return members;
    }
};

}  // namespace

extern "C" {

bool __real_Bond_GetBondMembers(const char* bond, char** members, int* count);

bool __wrap_Bond_GetBondMembers(const char* bond, char** members, int* count)
{
    return replacedBond != nullptr ? replacedBond(bond, members, count)
                                   : __real_Bond_GetBondMembers(bond, members, count);
}

}  // extern "C"

namespace {

TEST_F(GetAllBondOrBrSlaveTest, CollectsTheMembersOfAllBondsAndBridges)
{
    SetBondMembers("bond0", "eth1 eth2\n");
    SetBondMembers("bond1", "eth4\n");
    SetBridgePorts("br0", {"eth5"});
    SetBridgePorts("br1", {"eth6", "eth7"});
    List({"eth0", "eth1", "eth2", "eth3", "eth4", "eth5", "eth6", "eth7", "eth10", "bond0", "bond1",
          "br0", "br1"});
    EXPECT_TRUE(getAllBondOrBrSlave());
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Members({"eth0", "eth1", "eth2", "eth3", "eth4", "eth5", "eth6", "eth7", "eth10"}),
              (std::vector<std::string>{"eth1", "eth2", "eth4", "eth5", "eth6", "eth7"}));
}

TEST_F(GetAllBondOrBrSlaveTest, ANameThatHoldsBothIsABond)
{
    SetBondMembers("brbond", "eth1\n");
    SetBridgePorts("brbond", {"eth2"});
    List({"eth1", "eth2", "brbond"});
    EXPECT_TRUE(getAllBondOrBrSlave());
    EXPECT_EQ(Members({"eth1", "eth2"}), std::vector<std::string>{"eth1"});
}

TEST_F(GetAllBondOrBrSlaveTest, OneThatCannotBeAskedHasNoMembers)
{
    SetBondMembers("bond1", "eth1\n");
    SetBridgePorts("br1", {"eth2"});
    List({"eth1", "eth2", "bond0", "bond1", "br0", "br1"});
    EXPECT_TRUE(getAllBondOrBrSlave());
    EXPECT_EQ(
        Log(),
        (LogLines{Error("Bond_GetBondMembers", "open /sys/class/net/bond0/bonding/slaves failed\n"),
                  Error("Bridge_GetBridgeMembers", "Open /sys/class/net/br0/brif/ failed\n")}));
    EXPECT_EQ(Members({"eth1", "eth2"}), (std::vector<std::string>{"eth1", "eth2"}));
}

TEST_F(GetAllBondOrBrSlaveTest, AsksForNoMoreThanThereIsRoomFor)
{
    static std::vector<int> asked;
    replacedBond = [](const char*, char** members, int* count) {
        if (members == nullptr) return false;
        asked.push_back(*count);
        *count = 15;
        return true;
    };
    List({"bond0", "bond1", "bond2"});
    EXPECT_FALSE(getAllBondOrBrSlave());
    EXPECT_EQ(asked, (std::vector<int>{32, 17, 2}));
}

TEST_F(GetAllBondOrBrSlaveTest, ThirtyTwoMembersAreNotTooMany)
{
    std::string first, second;
    for (int i = 0; i < 16; ++i) first += "eth" + std::to_string(i) + " ";
    for (int i = 16; i < 40; ++i) second += "eth" + std::to_string(i) + " ";
    SetBondMembers("bond0", first + "\n");
    SetBondMembers("bond1", second + "\n");
    SetBondMembers("bond2", "eth40\n");
    List({"eth31", "eth32", "eth40", "bond0", "bond1", "bond2"});
    EXPECT_TRUE(getAllBondOrBrSlave());
    EXPECT_EQ(Members({"eth31", "eth32", "eth40"}), std::vector<std::string>{"eth31"});
}

TEST_F(GetAllBondOrBrSlaveTest, WithTooManyNoCardCountsAsMember)
{
    SetBridgePorts("br0", {"eth2"});
    SetBondMembers("bond0", "eth1\n");
    List({"eth1", "eth2", "br0", "bond0"});
    EXPECT_EQ(Members({"eth1", "eth2"}), (std::vector<std::string>{"eth1", "eth2"}));

    replacedBond = [](const char*, char** members, int* count) {
        if (members != nullptr) *count = 33;
        return true;
    };
    ClearLog();
    EXPECT_FALSE(getAllBondOrBrSlave());
    EXPECT_EQ(Log(), LogLines{Error("getAllBondOrBrSlave", "the bonded eth over 32")});
    EXPECT_EQ(Members({"eth1", "eth2"}), std::vector<std::string>{});
}

}  // namespace
