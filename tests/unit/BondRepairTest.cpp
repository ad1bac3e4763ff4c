// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The boot's repair of saved bonds: modes of old files, the cards' claims against the bonds' lists.

#include "LanriseWorld.h"

#include "Lanrise.h"

#include <algorithm>

using namespace fake;

namespace {

// ---- modes of old files

class CheckTrunkBondConfigTest : public World {};

TEST_F(CheckTrunkBondConfigTest, ConvertsTheModeOfAnOldFile)
{
    const std::vector<std::pair<int, int>> modes = {{1, 1}, {2, 0}, {3, 6}, {4, 5},
                                                    {5, 4}, {6, 2}, {7, 3}};
    List({"bond0"});
    for (const auto& [old, present] : modes) {
        ClearLog();
        Put(CardFile("bond0"), "BONDMODE = " + std::to_string(old) + "\n");
        EXPECT_TRUE(CheckTrunkBondConfig());
        EXPECT_EQ(LogOf("CheckTrunkBondConfig"),
                  (LogLines{Info("CheckTrunkBondConfig", "CheckTrunkBondConfig"),
                            Info("CheckTrunkBondConfig",
                                 "ifName: bond0, oldBondMode: " + std::to_string(old)),
                            Info("CheckTrunkBondConfig",
                                 "ifName: bond0, bondmode: " + std::to_string(present))}));
        EXPECT_EQ(Get(CardFile("bond0")), "BONDMODE = " + std::to_string(present) + "\n");
    }
}

TEST_F(CheckTrunkBondConfigTest, ANumberThatWasNoModeStays)
{
    List({"bond0", "bond1"});
    for (const char* old : {"0", "8", "9", "100"}) {
        ClearLog();
        const std::string file = "BONDMODE = " + std::string(old) + "\n";
        Put(CardFile("bond0"), file);
        Put(CardFile("bond1"), "BONDMODE = 2\n");
        EXPECT_TRUE(CheckTrunkBondConfig());
        EXPECT_EQ(LogOf("CheckTrunkBondConfig"),
                  (LogLines{Info("CheckTrunkBondConfig", "CheckTrunkBondConfig"),
                            Info("CheckTrunkBondConfig",
                                 "ifName: bond0, oldBondMode: " + std::string(old)),
                            Warn("CheckTrunkBondConfig", "Unknown mode: " + std::string(old)),
                            Info("CheckTrunkBondConfig", "ifName: bond1, oldBondMode: 2"),
                            Info("CheckTrunkBondConfig", "ifName: bond1, bondmode: 0")}));
        EXPECT_EQ(Get(CardFile("bond0")), file);
        EXPECT_EQ(Get(CardFile("bond1")), "BONDMODE = 0\n");
    }
}

TEST_F(CheckTrunkBondConfigTest, AFileWithAMemberListIsOfThisRelease)
{
    Put(CardFile("bond0"), "BONDMODE = 2\nBONDMEMBERS = \n");
    List({"bond0"});
    EXPECT_TRUE(CheckTrunkBondConfig());
    EXPECT_EQ(Log(), (LogLines{Info("CheckTrunkBondConfig", "CheckTrunkBondConfig"),
                               Info("IsTrunkBondConfig", "IsTrunkBondConfig ifName: bond0"),
                               Info("IsTrunkBondConfig", "Not Trunk config")}));
    EXPECT_EQ(Get(CardFile("bond0")), "BONDMODE = 2\nBONDMEMBERS = \n");
}

TEST_F(CheckTrunkBondConfigTest, WithoutAModeThereIsNothingToConvert)
{
    Put(CardFile("bond1"), "BONDMODE = x\n");
    List({"bond0", "bond1"});
    EXPECT_TRUE(CheckTrunkBondConfig());
    EXPECT_EQ(LogOf("CheckTrunkBondConfig"),
              LogLines{Info("CheckTrunkBondConfig", "CheckTrunkBondConfig")});
    EXPECT_EQ(Get(CardFile("bond0")), "");
    EXPECT_EQ(Get(CardFile("bond1")), "BONDMODE = x\n");
}

TEST_F(CheckTrunkBondConfigTest, AFileThatCannotBeReadIsPassedOver)
{
    Put(CardFile("bond1"), "BONDMODE = 2\n");
    List({"bond0", "bond1"});
    Remove(CardFile("bond0"));
    EXPECT_TRUE(CheckTrunkBondConfig());
    EXPECT_EQ(Get(CardFile("bond1")), "BONDMODE = 0\n");
}

TEST_F(CheckTrunkBondConfigTest, OnlyBondsAreLookedAt)
{
    Put(CardFile("eth0"), "BONDMODE = 2\n");
    Put(CardFile("br0"), "BONDMODE = 2\n");
    List({"eth0", "br0"});
    EXPECT_TRUE(CheckTrunkBondConfig());
    EXPECT_EQ(Log(), LogLines{Info("CheckTrunkBondConfig", "CheckTrunkBondConfig")});
    EXPECT_EQ(Get(CardFile("eth0")), "BONDMODE = 2\n");
}

TEST_F(CheckTrunkBondConfigTest, ConvertsOnce)
{
    Put(CardFile("bond0"), "BONDMODE = 2\n");
    for (const char* card : {"eth0", "eth1"}) {
        Put(CardFile(card), "BONDED = 1\nBONDNAME = bond0\n");
    }
    List({"eth0", "eth1", "bond0"});
    for (int boot = 0; boot < 2; ++boot) {
        CheckTrunkBondConfig();
        CheckBondConfig();
        EXPECT_EQ(Get(CardFile("bond0")), "BONDMODE = 0\nBONDMEMBERS = eth0,eth1\n");
    }
}

// ---- claims

std::string Claim(const std::string& bond)
{
    return Settings({"BONDED = 1", "BONDNAME = " + bond});
}

std::string Claimed(const std::string& bond)
{
    return Settings({"BONDED = 1", "BONDNAME = " + bond, "WORKMODE = 1"});
}

const std::string kCleared = "BONDED = 0\nBONDNAME = \n";
const std::string kDissolved = "BONDMODE = \nBONDMEMBERS = \n";

class CheckBondConfigTest : public World {
protected:
    /// Lists cards that claim a bond, and the bonds.
    static void ListClaims(const std::vector<std::pair<std::string, std::string>>& claims,
                           const std::vector<std::string>& bonds)
    {
        std::vector<std::string> names;
        for (const auto& [card, bond] : claims) {
            Put(CardFile(card), Claim(bond));
            names.push_back(card);
        }
        names.insert(names.end(), bonds.begin(), bonds.end());
        List(names);
    }
};

TEST_F(CheckBondConfigTest, ABondInOrderIsLeftAloneWhateverItsOrder)
{
    Put(CardFile("bond0"), "BONDMODE = 4\nBONDMEMBERS = eth1,eth0\n");
    ListClaims({{"eth0", "bond0"}, {"eth1", "bond0"}}, {"bond0"});
    EXPECT_TRUE(CheckBondConfig());
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Get(CardFile("bond0")), "BONDMODE = 4\nBONDMEMBERS = eth1,eth0\n");
    EXPECT_EQ(Get(CardFile("eth0")), Claimed("bond0"));
    EXPECT_EQ(Get(CardFile("eth1")), Claimed("bond0"));
    EXPECT_EQ(TraceOf({"fopen /mnt/mtd/Config/networkbond0 w"}), std::vector<std::string>{});
}

TEST_F(CheckBondConfigTest, AListThatDiffersIsWrittenFromTheClaims)
{
    for (const char* list : {"eth1", "eth1,eth3", "eth1,eth2,eth3", "eth10,eth2"}) {
        ClearLog();
        Put(CardFile("bond0"), "BONDMODE = 4\nBONDMEMBERS = " + std::string(list) + "\n");
        InNewProcess([] {
            ListClaims({{"eth1", "bond0"}, {"eth2", "bond0"}}, {"bond0"});
            EXPECT_TRUE(CheckBondConfig());
            EXPECT_EQ(Log(), LogLines{Warn("CheckBondConfig",
                                           "config from bondmember is different from eth config")});
        });
        EXPECT_EQ(Get(CardFile("bond0")), "BONDMODE = 4\nBONDMEMBERS = eth1,eth2\n") << list;
    }
}

TEST_F(CheckBondConfigTest, AListCountsAsInOrderWhenEachMemberIsClaimed)
{
    Put(CardFile("bond0"), "BONDMODE = 4\nBONDMEMBERS = eth1,eth1\n");
    ListClaims({{"eth1", "bond0"}, {"eth2", "bond0"}}, {"bond0"});
    EXPECT_TRUE(CheckBondConfig());
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Get(CardFile("bond0")), "BONDMODE = 4\nBONDMEMBERS = eth1,eth1\n");
}

TEST_F(CheckBondConfigTest, ARewriteSwapsEth0ToTheFront)
{
    Put(CardFile("bond0"), "BONDMODE = 4\nBONDMEMBERS = eth9\n");
    ListClaims({{"eth1", "bond0"}, {"eth2", "bond0"}, {"eth0", "bond0"}}, {"bond0"});
    EXPECT_TRUE(CheckBondConfig());
    EXPECT_EQ(Get(CardFile("bond0")), "BONDMODE = 4\nBONDMEMBERS = eth0,eth2,eth1\n");
}

TEST_F(CheckBondConfigTest, OnlyExactlyEth0GoesToTheFront)
{
    Put(CardFile("bond0"), "BONDMODE = 4\nBONDMEMBERS = eth9\n");
    ListClaims({{"eth1", "bond0"}, {"eth01", "bond0"}, {"xeth0", "bond0"}}, {"bond0"});
    EXPECT_TRUE(CheckBondConfig());
    EXPECT_EQ(Get(CardFile("bond0")), "BONDMODE = 4\nBONDMEMBERS = eth1,eth01,xeth0\n");
}

TEST_F(CheckBondConfigTest, ABondWithoutFileGetsModeAndMembers)
{
    ListClaims({{"eth0", "bond0"}, {"eth1", "bond0"}}, {"bond0"});
    EXPECT_TRUE(CheckBondConfig());
    EXPECT_EQ(LogOf("CheckBondConfig"),
              (LogLines{Warn("CheckBondConfig",
                             "bond0 bond  mode is unknow, set default to activebackup"),
                        Warn("CheckBondConfig", "can not get bond member from config.")}));
    EXPECT_EQ(Get(CardFile("bond0")), "BONDMODE = 1\nBONDMEMBERS = eth0,eth1\n");
}

TEST_F(CheckBondConfigTest, ABondThatNobodyClaimsIsDissolved)
{
    Put(CardFile("bond0"), "BONDMODE = 4\nBONDMEMBERS = eth0,eth1\n");
    Put(CardFile("eth0"), "BONDED = 0\nBONDNAME = bond0\n");
    List({"eth0", "eth1", "bond0"});
    EXPECT_TRUE(CheckBondConfig());
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Get(CardFile("bond0")), kDissolved);
    EXPECT_EQ(Get(CardFile("eth0")), kCleared);
    EXPECT_EQ(Get(CardFile("eth1")), kCleared);
}

TEST_F(CheckBondConfigTest, ABondOfOneCardIsDissolvedAndTheCardStandsAlone)
{
    Put(CardFile("bond0"), "BONDMODE = 4\nBONDMEMBERS = eth0,eth1\n");
    ListClaims({{"eth1", "bond0"}}, {"bond0"});
    EXPECT_TRUE(CheckBondConfig());
    EXPECT_EQ(Log(),
              LogLines{Warn("CheckBondConfig", "the bond0's member[eth1] from eth config is 1")});
    EXPECT_EQ(Get(CardFile("bond0")), kDissolved);
    EXPECT_EQ(Get(CardFile("eth1")), kCleared + "WORKMODE = 1\n");
    CheckWorkmodeConfig();
    EXPECT_EQ(Get(CardFile("eth1")), kCleared + "WORKMODE = 0\nBRIDGEEDED = 0\n");
}

TEST_F(CheckBondConfigTest, AClaimForABondThatIsNotThereIsDropped)
{
    ListClaims({{"eth0", "bond1"}, {"eth1", "bond"}, {"eth2", "trunk0"}}, {"bond0", "bond10"});
    EXPECT_TRUE(CheckBondConfig());
    for (const char* card : {"eth0", "eth1", "eth2"}) EXPECT_EQ(Get(CardFile(card)), kCleared);
}

TEST_F(CheckBondConfigTest, AMarkedCardWithoutBondNameBelongsToTheFirstBond)
{
    Put(CardFile("bond0"), "BONDMODE = 4\nBONDMEMBERS = eth0,eth1\n");
    Put(CardFile("eth0"), "BONDED = 1\n");
    Put(CardFile("eth1"), "BONDED = 1\nBONDNAME = \n");
    List({"eth0", "eth1", "bond0"});
    EXPECT_TRUE(CheckBondConfig());
    EXPECT_EQ(Get(CardFile("eth0")), Claimed("bond0"));
    EXPECT_EQ(Get(CardFile("eth1")), Claimed("bond0"));
    EXPECT_EQ(Get(CardFile("bond0")), "BONDMODE = 4\nBONDMEMBERS = eth0,eth1\n");
}

TEST_F(CheckBondConfigTest, AMarkedCardWithoutBondNameIsClearedWhenThereIsNoFirstBond)
{
    Put(CardFile("eth0"), "BONDED = 1\n");
    List({"eth0", "bond1"});
    EXPECT_TRUE(CheckBondConfig());
    EXPECT_EQ(Get(CardFile("eth0")), kCleared);
}

TEST_F(CheckBondConfigTest, ABondNumberAbove31IsTooMuch)
{
    ListClaims({{"eth0", "bond32"}, {"eth1", "bond-1"}, {"eth2", "bond31"}},
               {"bond31", "bond32", "bond-1"});
    EXPECT_TRUE(CheckBondConfig());
    EXPECT_EQ(LogOf("CheckBondConfig"),
              (LogLines{Error("CheckBondConfig", "can not handle bond32"),
                        Error("CheckBondConfig", "can not handle bond-1")}));
    // The work mode stays for CheckWorkmodeConfig to mend.
    EXPECT_EQ(Get(CardFile("eth0")), kCleared + "WORKMODE = 1\n");
    EXPECT_EQ(Get(CardFile("eth1")), kCleared + "WORKMODE = 1\n");
    EXPECT_EQ(Get(CardFile("eth2")), Claimed("bond31"));
    for (const char* bond : {"bond31", "bond32", "bond-1"}) EXPECT_EQ(Get(CardFile(bond)), "");
}

TEST_F(CheckBondConfigTest, BondsFrom16OnKeepTheirClaimsAndTheirFile)
{
    Put(CardFile("bond16"), "BONDMODE = 4\nBONDMEMBERS = eth9\n");
    ListClaims({{"eth0", "bond16"}, {"eth1", "bond15"}}, {"bond15", "bond16"});
    EXPECT_TRUE(CheckBondConfig());
    EXPECT_EQ(Get(CardFile("bond16")), "BONDMODE = 4\nBONDMEMBERS = eth9\n");
    EXPECT_EQ(Get(CardFile("eth0")), Claimed("bond16"));
    EXPECT_EQ(Get(CardFile("bond15")), kDissolved);
    EXPECT_EQ(Get(CardFile("eth1")), kCleared + "WORKMODE = 1\n");
}

TEST_F(CheckBondConfigTest, TheNumberStandsFromTheFifthCharacterOn)
{
    // "xbond3" reads as number 0, and shares the claims of bond0 and of its VLAN.
    Put(CardFile("bond0"), "BONDMODE = 4\n");
    Put(CardFile("bond0.100"), "BONDMODE = 4\n");
    Put(CardFile("xbond3"), "BONDMODE = 4\n");
    ListClaims({{"eth1", "xbond3"}, {"eth2", "bond0"}}, {"bond0", "bond0.100", "xbond3"});
    EXPECT_TRUE(CheckBondConfig());
    for (const char* bond : {"bond0", "bond0.100", "xbond3"}) {
        EXPECT_EQ(Get(CardFile(bond)), "BONDMODE = 4\nBONDMEMBERS = eth1,eth2\n");
    }
}

TEST_F(CheckBondConfigTest, BondsAndBridgesClaimNothing)
{
    ListClaims({{"bond1", "bond0"}, {"br0", "bond0"}}, {"bond0"});
    EXPECT_TRUE(CheckBondConfig());
    EXPECT_EQ(Get(CardFile("br0")), Claim("bond0"));
    EXPECT_EQ(Get(CardFile("bond1")), Claim("bond0") + kDissolved);
    EXPECT_EQ(Get(CardFile("bond0")), kDissolved);
}

TEST_F(CheckBondConfigTest, EveryBondIsLookedAt)
{
    Put(CardFile("bond0"), "BONDMODE = 4\nBONDMEMBERS = eth0,eth1\n");
    Put(CardFile("bond1"), "BONDMODE = 4\nBONDMEMBERS = eth9\n");
    ListClaims({{"eth0", "bond0"}, {"eth1", "bond0"}, {"eth2", "bond1"}, {"eth3", "bond1"}},
               {"bond0", "bond1", "bond2"});
    EXPECT_TRUE(CheckBondConfig());
    EXPECT_EQ(Get(CardFile("bond0")), "BONDMODE = 4\nBONDMEMBERS = eth0,eth1\n");
    EXPECT_EQ(Get(CardFile("bond1")), "BONDMODE = 4\nBONDMEMBERS = eth2,eth3\n");
    EXPECT_EQ(Get(CardFile("bond2")), kDissolved);
}

TEST_F(CheckBondConfigTest, LongNamesOfCardsCompareWhole)
{
    Put(CardFile("bond0"), "BONDMODE = 4\nBONDMEMBERS = ethernetcard001,ethernetcard002\n");
    ListClaims({{"ethernetcard001", "bond0"}, {"ethernetcard002", "bond0"}}, {"bond0"});
    EXPECT_TRUE(CheckBondConfig());
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(CheckBondConfigTest, WithoutMemoryForAClaimNoListIsJudged)
{
    Put(CardFile("bond0"), "BONDMODE = 4\nBONDMEMBERS = eth0,eth1\n");
    Put(CardFile("bond1"), "BONDMODE = 4\nBONDMEMBERS = eth9\n");
    ListClaims({{"eth0", "bond0"}, {"eth1", "bond0"}}, {"bond0", "bond1"});
    Fail("calloc", ENOMEM);
    EXPECT_TRUE(CheckBondConfig());
    EXPECT_EQ(Get(CardFile("bond0")), "BONDMODE = 4\nBONDMEMBERS = eth0,eth1\n");
    EXPECT_EQ(Get(CardFile("bond1")), "BONDMODE = 4\nBONDMEMBERS = eth9\n");
}

TEST_F(CheckBondConfigTest, WithoutInterfacesThereIsNothingToDo)
{
    List({"lo"});
    EXPECT_TRUE(CheckBondConfig());
    EXPECT_EQ(Trace(), std::vector<std::string>{});
}

TEST_F(CheckBondConfigTest, NeverTouchesTheKernel)
{
    Put(CardFile("bond0"), "BONDMODE = 4\nBONDMEMBERS = eth9\n");
    ListClaims({{"eth0", "bond0"}, {"eth1", "bond0"}, {"eth2", "bond9"}}, {"bond0", "bond1"});
    CheckTrunkBondConfig();
    CheckBondConfig();
    EXPECT_EQ(TraceOf({"ioctl", "vfork", "socket", "open /sys", "open /proc"}),
              std::vector<std::string>{});
}

TEST_F(CheckBondConfigTest, WhateverFailsTheFilesStayWhole)
{
    Put(CardFile("bond0"), "BONDMODE = 2\n");
    ListClaims({{"eth0", "bond0"}, {"eth1", "bond0"}, {"eth2", "bond1"}}, {"bond0", "bond1"});
    FailEachCall(
        [] {
            CheckTrunkBondConfig();
            CheckBondConfig();
        },
        [](const std::string&) { ExpectWellFormedFiles(); });
}

}  // namespace
