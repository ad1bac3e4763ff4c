// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Bonds: building one, changing its primary, ending it.

#include "BondManagementWorld.h"

using namespace fake;
using namespace std::string_literals;

namespace {

// ---- Bond: what is refused

class BondRefusalTest : public BondWorld {};

TEST_F(BondRefusalTest, NullIsRefusedInSilence)
{
    EXPECT_FALSE(Bond(nullptr, cards.Const(), 2, nicBondBalanceRR));
    EXPECT_FALSE(Bond(kBond, nullptr, 2, nicBondBalanceRR));
    EXPECT_FALSE(Bond(nullptr, cards.Const(), 2, static_cast<NICBondMode>(7)));
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(TraceOf({"open"}), Lines{});
}

TEST_F(BondRefusalTest, TheModeIsLookedAtBeforeTheName)
{
    for (const int mode : {7, -1}) {
        for (const char* name : {kBond, "lan0"}) {
            ClearLog();
            EXPECT_FALSE(Bond(name, cards.Const(), 2, static_cast<NICBondMode>(mode)));
            EXPECT_EQ(
                Log(),
                (LogLines{Error("Bond", "invalided param, mode: " + std::to_string(mode) + "\n")}));
        }
    }
    ExpectUntouched();
}

TEST_F(BondRefusalTest, TheNameMustHoldBond)
{
    kernel.Add("lan0-eth");
    EXPECT_FALSE(Bond("lan0-eth", cards.Const(), 2, nicBondBalanceRR));
    EXPECT_EQ(Log(), (LogLines{Error("Bond", "bond net card is not valid.[lan0-eth]")}));
    ExpectUntouched();
}

TEST_F(BondRefusalTest, ANameWithAPointIsRefusedInSilence)
{
    kernel.Add("bond0.1");
    EXPECT_FALSE(Bond("bond0.1", cards.Const(), 2, nicBondBalanceRR));
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(TraceOf({"open"}), Lines{});
}

TEST_F(BondRefusalTest, TheBondMustExist)
{
    EXPECT_FALSE(Bond("bond9", cards.Const(), 2, nicBondBalanceRR));
    EXPECT_EQ(Log(),
              (LogLines{Info("FindWordInLine", "can not find bond9 in eth0,eth1,wlan0,bond0,"),
                        Error("CheckEthExist", "can not find bond9 in eth0,eth1,wlan0,bond0,.")}));
    ExpectUntouched();
}

TEST_F(BondRefusalTest, TheBondIsLookedForBeforeItsCards)
{
    Members unknown({"eth0", "eth7"});
    EXPECT_FALSE(Bond("bond9", unknown.Const(), 2, nicBondBalanceRR));
    EXPECT_EQ(Log(),
              (LogLines{Info("FindWordInLine", "can not find bond9 in eth0,eth1,wlan0,bond0,"),
                        Error("CheckEthExist", "can not find bond9 in eth0,eth1,wlan0,bond0,.")}));
}

TEST_F(BondRefusalTest, ANullAmongTheCardsIsRefusedBeforeAnythingIsDone)
{
    for (const bool running : {false, true}) {
        if (running) Run("1");
        for (const int place : {0, 1, 2}) {
            Members listed({"eth1", "eth0", "br7"});  // the last is taken as it is
            listed.Const()[place] = nullptr;
            EXPECT_FALSE(Bond(kBond, listed.Const(), 3, nicBondBalanceRR)) << place;
        }
        EXPECT_EQ(LogOf("Bond"), LogLines{});
        ExpectUntouched();
    }
}

TEST_F(BondRefusalTest, EachMemberMustExist)
{
    Members unknown({"eth0", "eth7"});
    EXPECT_FALSE(Bond(kBond, unknown.Const(), 2, nicBondBalanceRR));
    EXPECT_EQ(Log().back(), Error("CheckEthExist", "can not find eth7 in eth0,eth1,wlan0,bond0,."));
    Members none({"eth0", "eth1"});
    none.Const()[1] = nullptr;
    EXPECT_FALSE(Bond(kBond, none.Const(), 2, nicBondBalanceRR));
    EXPECT_EQ(TraceOf({"open " + kSlaves}), Lines{});
    ExpectUntouched();
}

TEST_F(BondRefusalTest, ABondThatRunsMustBeEndedFirst)
{
    for (const char* mode : {"0", "2", "3", "4", "5", "6"}) {
        Run(mode);
        EXPECT_FALSE(Bond(kBond, cards.Const(), 2, static_cast<NICBondMode>(mode[0] - '0')));
        EXPECT_EQ(Log(), (LogLines{Error("Bond", "need unbond first.[bond0]")}));
        ExpectUntouched();
    }
}

TEST_F(BondRefusalTest, ABondThatRunsWithoutASavedModeToo)
{
    Run("");
    EXPECT_FALSE(Bond(kBond, cards.Const(), 2, nicBondActiveBackup));
    EXPECT_EQ(LogOf("GetBondMode"),
              (LogLines{Error("GetBondMode", "get bond0 bondmode by config failed.")}));
    EXPECT_EQ(Log().back(), Error("Bond", "need unbond first.[bond0]"));
    ExpectUntouched();
}

// ---- Bond: a primary for a running bond

class BondPrimaryTest : public BondWorld {};

TEST_F(BondPrimaryTest, TheFirstCardBecomesPrimaryWhateverModeIsAskedFor)
{
    Run("1");
    const std::string bond = Get(kBondFile);
    const std::string first = Get(kFile0);
    for (const int mode : {1, 4, 0}) {
        Begin();
        EXPECT_TRUE(Bond(kBond, cards.Const(), 2, static_cast<NICBondMode>(mode)));
        EXPECT_EQ(Get(Attribute("primary")), "eth1\0"s);
        EXPECT_EQ(Changes(), Lines{kWritesBond});
        EXPECT_EQ(Log(), LogLines{});
    }
    EXPECT_EQ(Get(kBondFile), bond + "BONDPRIMARY = eth1\n");
    EXPECT_EQ(Get(kFile0), first);
    EXPECT_EQ(Commands(), Lines{});
    EXPECT_EQ(Get(Attribute("mode")), "as it was\n");
}

TEST_F(BondPrimaryTest, ItNeedNotBeAMember)
{
    Run("1");
    Put(kSlaves, "eth0\n");
    EXPECT_TRUE(Bond(kBond, cards.Const(), 2, nicBondActiveBackup));
    EXPECT_EQ(Get(Attribute("primary")), "eth1\0"s);
}

TEST_F(BondPrimaryTest, AnEmptyListHasAFirstCardAllTheSame)
{
    Run("1");
    EXPECT_TRUE(Bond(kBond, cards.Const(), 0, nicBondActiveBackup));
    EXPECT_EQ(Get(Attribute("primary")), "eth1\0"s);
}

TEST_F(BondPrimaryTest, ThePrimaryIsWrittenBeforeItIsSaved)
{
    Run("1");
    OnCall("fopen "s + kBondFile, [] { EXPECT_EQ(Get(Attribute("primary")), "eth1\0"s); });
    EXPECT_TRUE(Bond(kBond, cards.Const(), 2, nicBondActiveBackup));
}

TEST_F(BondPrimaryTest, ARefusalIsReportedAndNotSaved)
{
    Run("1");
    const std::string before = Get(kBondFile);
    Fail("write " + Attribute("primary"), EINVAL);
    EXPECT_FALSE(Bond(kBond, cards.Const(), 2, nicBondActiveBackup));
    EXPECT_EQ(Log(), (LogLines{Error("Bond_SetPrimary", "write " + Attribute("primary") +
                                                            " failed.[Invalid argument]"),
                               Error("Bond", "bond0 change primary to eth1 failed.")}));
    EXPECT_EQ(Get(kBondFile), before);
    EXPECT_EQ(Changes(), Lines{});
}

TEST_F(BondPrimaryTest, APrimaryThatIsNotSavedIsASuccess)
{
    Run("1");
    FailAll(kWritesBond, EROFS);
    EXPECT_TRUE(Bond(kBond, cards.Const(), 2, nicBondActiveBackup));
}

// ---- Bond: building

class BondTest : public BondWorld {};

TEST_F(BondTest, BuildsThenSavesMembersThenTheBondThenRecoversIt)
{
    EXPECT_TRUE(Bond(kBond, cards.Const(), 2, nicBondBalanceXOR));
    EXPECT_EQ(TraceOf({"write", "command", "ioctl SIOCSI", "fopen " + CardFile("eth0") + " w+",
                       kWrites1, kWritesBond}),
              (Lines{"ioctl SIOCSIFFLAGS bond0",
                     "write " + Attribute("mode"),
                     "write " + Attribute("miimon"),
                     "ioctl SIOCSIFFLAGS bond0",
                     "command ifconfig eth1 down",
                     "command ifconfig eth0 down",
                     "command ifconfig eth1 0.0.0.0 up",
                     "command ifconfig eth0 0.0.0.0 up",
                     "ioctl SIOCSIFFLAGS bond0",
                     "command ifenslave bond0 eth1 eth0",
                     kWrites1,
                     kWrites1,
                     kWrites1,
                     kWrites0,
                     kWrites0,
                     kWrites0,
                     kWritesBond,
                     kWritesBond,
                     "ioctl SIOCSIFFLAGS bond0",
                     "ioctl SIOCSIFADDR bond0",
                     "ioctl SIOCSIFNETMASK bond0",
                     kWritesBond,
                     kWritesBond,
                     kWritesBond}));
    EXPECT_EQ(Get(Attribute("mode")), "balance-xor\0"s);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(BondTest, SavesMembershipBesideTheCardsOwnSettings)
{
    const Lines before = {Get(kFile0), Get(kFile1)};
    EXPECT_TRUE(Bond(kBond, cards.Const(), 2, nicBondBalanceTLB));
    const std::string membership = "BONDED = 1\nBONDNAME = bond0\nWORKMODE = 1\n";
    EXPECT_EQ(Get(kFile0), before[0] + membership);
    EXPECT_EQ(Get(kFile1), before[1] + membership);
    EXPECT_EQ(Get(kBondFile), Settings(kOwnSettings) + "BONDMODE = 5\nBONDMEMBERS = eth1,eth0\n");
}

TEST_F(BondTest, TheBondTakesItsOwnSettings)
{
    EXPECT_TRUE(Bond(kBond, cards.Const(), 2, nicBondBalanceRR));
    const Card& bond = kernel.At(kBond);
    EXPECT_EQ(bond.address, "10.2.0.2");
    EXPECT_EQ(bond.mask, "255.255.0.0");
    EXPECT_EQ(bond.flags, IFF_UP);
    EXPECT_EQ(kernel.At("eth0").address, "");
}

TEST_F(BondTest, AnyNameThatHoldsBondWillDo)
{
    kernel.Add("mybond1");
    for (const char* name : {"mode", "miimon"}) {
        Put("/sys/class/net/mybond1/bonding/"s + name, "");
    }
    Put("/sys/class/net/mybond1/bonding/slaves", "");
    EXPECT_TRUE(Bond("mybond1", cards.Const(), 2, nicBondBalanceALB));
    EXPECT_EQ(Commands().back(), "ifenslave mybond1 eth1 eth0");
}

TEST_F(BondTest, AnEmptyListMakesABondOfNone)
{
    EXPECT_TRUE(Bond(kBond, cards.Const(), 0, nicBondBalanceRR));
    EXPECT_EQ(Commands(), Lines{"ifenslave bond0"});
    EXPECT_NE(Get(kBondFile).find("BONDMEMBERS = \n"), std::string::npos);
}

TEST_F(BondTest, AModeThatCannotBeSetTouchesNoMemberAndSavesNothing)
{
    const Lines before = {Get(kFile0), Get(kFile1), Get(kBondFile)};
    Fail("write " + Attribute("mode"), EBUSY);
    EXPECT_FALSE(Bond(kBond, cards.Const(), 2, nicBondBalanceRR));
    EXPECT_EQ(Log(),
              (LogLines{Error("Bond_SetBondMode", "write " + Attribute("mode") +
                                                      " failed.[Device or resource busy]")}));
    EXPECT_EQ(Commands(), Lines{});
    EXPECT_EQ((Lines{Get(kFile0), Get(kFile1), Get(kBondFile)}), before);
    EXPECT_EQ(kernel.At(kBond).flags, IFF_UP);
}

TEST_F(BondTest, CardsThatCannotBeJoinedAreRecoveredOneByOne)
{
    // The third change of the bond's flags is the one of the joining.
    Fail("ioctl SIOCSIFFLAGS bond0", EPERM, 3);
    const LogLine forTheFirst = Error("Bond", "Bond [bond0] failed, do recover for [eth1].");
    const LogLine forTheSecond = Error("Bond", "Bond [bond0] failed, do recover for [eth0].");
    OnCall("ioctl SIOCSIFFLAGS eth1", [=] { EXPECT_FALSE(Logged(forTheFirst)); });
    OnCall("ioctl SIOCSIFFLAGS eth0", [=] {
        EXPECT_TRUE(Logged(forTheFirst));
        EXPECT_FALSE(Logged(forTheSecond));
    });
    EXPECT_FALSE(Bond(kBond, cards.Const(), 2, nicBondBalanceRR));
    EXPECT_EQ(LogOf("Bond"), (LogLines{forTheFirst, forTheSecond}));
    EXPECT_EQ(kernel.At("eth0").address, "10.0.0.2");
    EXPECT_EQ(kernel.At("eth1").address, "10.1.0.2");
    EXPECT_EQ(kernel.At(kBond).address, "");
    for (const char* card : {"eth0", "eth1", kBond}) {
        EXPECT_EQ(Text(card).find("BOND"), std::string::npos) << card;
        EXPECT_EQ(Text(card).find("WORKMODE"), std::string::npos) << card;
    }
}

TEST_F(BondTest, CardsWithoutAnAddressAreRecoveredOneByOneToo)
{
    for (const char* file : {kFile0, kFile1}) Put(file, "MTU = 1500\n");
    Fail("ioctl SIOCSIFFLAGS bond0", EPERM, 3);
    EXPECT_FALSE(Bond(kBond, cards.Const(), 2, nicBondBalanceRR));
    EXPECT_EQ(LogOf("Bond"),
              (LogLines{Error("Bond", "Bond [bond0] failed, do recover for [eth1]."),
                        Error("Bond", "Bond [bond0] failed, do recover for [eth0].")}));
}

TEST_F(BondTest, WhatCannotBeSavedOrRecoveredIsNotReported)
{
    for (const std::string& file : {kWrites0, kWrites1, kWritesBond}) FailAll(file, EROFS);
    FailAll("ioctl SIOCSIFADDR", EPERM);
    EXPECT_TRUE(Bond(kBond, cards.Const(), 2, nicBondBalanceRR));
}

TEST_F(BondTest, NothingIsSavedUnlessTheDriverDidItsPart)
{
    static bool done;
    FailEachCall(
        [] {
            done = Bond(kBond, Members({"eth1", "eth0"}).Const(), 2, nicBondBalanceRR);
        },
        [](const std::string& failed) {
            const bool saved = Get(kFile1).find("BONDED = 1\n") != std::string::npos ||
                               Get(kFile0).find("BONDED = 1\n") != std::string::npos ||
                               Get(kBondFile).find("BONDMODE = 0\n") != std::string::npos;
            EXPECT_EQ(saved, done) << failed;
        },
        kMayStayOpen);
}

// ---- UnBond

class UnBondTest : public BondWorld {
protected:
    void SetUp() override
    {
        BondWorld::SetUp();
        Run("2");
    }
};

TEST_F(UnBondTest, ReleasesThenSavesTheBondThenEachMemberInTurn)
{
    EXPECT_TRUE(UnBond(kBond));
    EXPECT_EQ(TraceOf({"command", "ioctl SIOCSI", "fopen " + CardFile("eth0") + " w+", kWrites1,
                       kWritesBond}),
              (Lines{"command ifenslave -d bond0 eth1 eth0",
                     "command ifconfig bond0 0.0.0.0 down",
                     kWritesBond,
                     kWritesBond,
                     kWrites1,
                     kWrites1,
                     kWrites1,
                     "ioctl SIOCSIFFLAGS eth1",
                     "ioctl SIOCSIFADDR eth1",
                     "ioctl SIOCSIFNETMASK eth1",
                     kWrites1,
                     kWrites1,
                     kWrites1,
                     "ioctl SIOCSIFMTU eth1",
                     kWrites0,
                     kWrites0,
                     kWrites0,
                     "ioctl SIOCSIFFLAGS eth0",
                     "ioctl SIOCSIFADDR eth0",
                     "ioctl SIOCSIFNETMASK eth0",
                     kWrites0,
                     kWrites0,
                     kWrites0,
                     "ioctl SIOCSIFMTU eth0"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(UnBondTest, SavesThatNoneIsAMemberAndKeepsTheBondsAddress)
{
    EXPECT_TRUE(UnBond(kBond));
    const std::string none = "BONDED = 0\nBONDNAME = \nWORKMODE = 0\n";
    EXPECT_EQ(Get(kFile0).substr(Get(kFile0).find("BONDED")), none);
    EXPECT_EQ(Get(kFile1).substr(Get(kFile1).find("BONDED")), none);
    EXPECT_EQ(Get(kBondFile), Settings(kOwnSettings) + "BONDMODE = \nBONDMEMBERS = \n");
}

TEST_F(UnBondTest, RecoversTheMembersTheBondHadAndNotTheSavedOnes)
{
    Put(kSlaves, "eth1\n");
    EXPECT_TRUE(UnBond(kBond));
    EXPECT_EQ(kernel.At("eth1").address, "10.1.0.2");
    EXPECT_EQ(kernel.At("eth0").address, "");
    EXPECT_NE(Get(kFile0).find("BONDED = 1\n"), std::string::npos);
}

TEST_F(UnBondTest, ABondWhoseLineIsBlankHasNoCardToRecover)
{
    Put(kSlaves, "\n");
    EXPECT_TRUE(UnBond(kBond));
    EXPECT_EQ(Commands(), (Lines{"ifenslave -d bond0", "ifconfig bond0 0.0.0.0 down"}));
    EXPECT_EQ(Changes(), (Lines{kWritesBond, kWritesBond}));
}

TEST_F(UnBondTest, ReportsMembersThatCannotBeRead)
{
    Put(kSlaves, "");
    EXPECT_FALSE(UnBond(kBond));
    EXPECT_EQ(Log(), (LogLines{Error("UnBond", "get bond0 member failed.")}));
    ExpectUntouched();
}

TEST_F(UnBondTest, ReportsADriverThatCannotBeAsked)
{
    // 254 characters of names: with the command's own they do not fit.
    std::string line;
    for (char last = 'a'; last < 'a' + 16; ++last) line += "eth-long-name-"s + last + " ";
    Put(kSlaves, line + "\n");
    const std::string before = Get(kBondFile);
    EXPECT_FALSE(UnBond(kBond));
    EXPECT_EQ(Log().back(), Error("UnBond", "unbond failed"));
    EXPECT_EQ(Get(kBondFile), before);
    ExpectUntouched();
}

TEST_F(UnBondTest, BondMayStandAnywhereInTheName)
{
    kernel.Add("eth-bond1");
    Put("/sys/class/net/eth-bond1/bonding/slaves", "eth1\n");
    EXPECT_TRUE(UnBond("eth-bond1"));
    EXPECT_EQ(Commands(),
              (Lines{"ifenslave -d eth-bond1 eth1", "ifconfig eth-bond1 0.0.0.0 down"}));
}

TEST_F(UnBondTest, OtherNamesAreRefusedInSilence)
{
    EXPECT_FALSE(UnBond(nullptr));
    EXPECT_FALSE(UnBond("eth0"));
    EXPECT_EQ(TraceOf({"open"}), Lines{});
    EXPECT_EQ(Log(), LogLines{});

    EXPECT_FALSE(UnBond("bond9"));
    EXPECT_EQ(LogOf("UnBond"), LogLines{});
    EXPECT_EQ(Log().back(),
              Error("CheckEthExist", "can not find bond9 in eth0,eth1,wlan0,bond0,."));
    ExpectUntouched();
}

TEST_F(UnBondTest, ToolsThatFailAndSettingsThatCannotBeSavedAreNotReported)
{
    OnCommand("ifenslave", nullptr, 1 << 8);
    for (const std::string& file : {kWrites0, kWrites1, kWritesBond}) FailAll(file, EROFS);
    EXPECT_TRUE(UnBond(kBond));
    EXPECT_EQ(kernel.At("eth1").address, "10.1.0.2");
    EXPECT_EQ(kernel.At("eth0").address, "10.0.0.2");
}

TEST_F(UnBondTest, NothingIsSavedUnlessTheMembersWereRead)
{
    static bool done;
    FailEachCall([] { done = UnBond(kBond); },
                 [](const std::string& failed) {
                     const bool released = Get(kFile1).find("BONDED = 0\n") != std::string::npos ||
                                           Get(kFile0).find("BONDED = 0\n") != std::string::npos;
                     EXPECT_EQ(released, done) << failed;
                 },
                 kMayStayOpen);
}

}  // namespace
