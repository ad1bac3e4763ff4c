// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// How a bond is changed: the driver's attributes, and the cards that come and go.

#include "Bond.h"

#include "BondWorld.h"
#include "MemberNames.h"

using namespace fake;
using namespace std::string_literals;

namespace {

// ---- Bond_SetHashPolicy

class Bond_SetHashPolicyTest : public BondWorld {};

TEST_F(Bond_SetHashPolicyTest, WritesTheNumberWithItsNul)
{
    EXPECT_TRUE(Bond_SetHashPolicy(kBond, 2));
    EXPECT_EQ(Get(Attribute("xmit_hash_policy")), "2\0"s);
    EXPECT_EQ(Trace(), (Lines{"open " + Attribute("xmit_hash_policy") + " O_RDWR|O_TRUNC",
                              "write " + Attribute("xmit_hash_policy"),
                              "close " + Attribute("xmit_hash_policy")}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Bond_SetHashPolicyTest, KeepsSixDigits)
{
    EXPECT_TRUE(Bond_SetHashPolicy(kBond, 1234567));
    EXPECT_EQ(Get(Attribute("xmit_hash_policy")), "123456\0"s);
}

TEST_F(Bond_SetHashPolicyTest, ANegativePolicyOpensNothing)
{
    EXPECT_FALSE(Bond_SetHashPolicy(kBond, -1));
    EXPECT_EQ(Touched(), Lines{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Bond_SetHashPolicyTest, ZeroIsAPolicy)
{
    EXPECT_TRUE(Bond_SetHashPolicy(kBond, 0));
    EXPECT_EQ(Get(Attribute("xmit_hash_policy")), "0\0"s);
}

TEST_F(Bond_SetHashPolicyTest, ReportsThePathThatCannotBeOpened)
{
    EXPECT_FALSE(Bond_SetHashPolicy("bond9", 1));
    EXPECT_EQ(Log(), (LogLines{Error("Bond_SetHashPolicy",
                                     "open " + Attribute("xmit_hash_policy", "bond9") +
                                         " failed.[No such file or directory]")}));
}

TEST_F(Bond_SetHashPolicyTest, ReportsTheValueThatCannotBeWritten)
{
    Fail("write", EINVAL);
    EXPECT_FALSE(Bond_SetHashPolicy(kBond, 3));
    EXPECT_EQ(Log(), (LogLines{Error("Bond_SetHashPolicy", "write 3 failed.[Invalid argument]")}));
    EXPECT_EQ(OpenHandles(), Lines{});
}

TEST_F(Bond_SetHashPolicyTest, NullIsRefusedInSilence)
{
    EXPECT_FALSE(Bond_SetHashPolicy(nullptr, 1));
    EXPECT_EQ(Touched(), Lines{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Bond_SetHashPolicyTest, NothingIsLeftOpenWhateverFails)
{
    static bool done;
    FailEachCall([] { done = Bond_SetHashPolicy(kBond, 1); },
                 [](const std::string&) { EXPECT_FALSE(done); });
}

// ---- Bond_SetPrimary

class Bond_SetPrimaryTest : public BondWorld {};

TEST_F(Bond_SetPrimaryTest, WritesTheNameWithItsNul)
{
    EXPECT_TRUE(Bond_SetPrimary(kBond, "eth1"));
    EXPECT_EQ(Get(Attribute("primary")), "eth1\0"s);
    EXPECT_EQ(Trace(), (Lines{"open " + Attribute("primary") + " O_RDWR|O_TRUNC",
                              "write " + Attribute("primary"), "close " + Attribute("primary")}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Bond_SetPrimaryTest, AnEmptyNameIsTheDriversToRefuse)
{
    EXPECT_TRUE(Bond_SetPrimary(kBond, ""));
    EXPECT_EQ(Get(Attribute("primary")), "\0"s);
}

TEST_F(Bond_SetPrimaryTest, ReportsThePathThatCannotBeOpened)
{
    EXPECT_FALSE(Bond_SetPrimary("bond9", "eth1"));
    EXPECT_EQ(Log(),
              (LogLines{Error("Bond_SetPrimary", "open " + Attribute("primary", "bond9") +
                                                     " failed.[No such file or directory]")}));
}

TEST_F(Bond_SetPrimaryTest, ReportsThePathThatCannotBeWritten)
{
    Fail("write", EINVAL);
    EXPECT_FALSE(Bond_SetPrimary(kBond, "eth1"));
    EXPECT_EQ(Log(), (LogLines{Error("Bond_SetPrimary", "write " + Attribute("primary") +
                                                            " failed.[Invalid argument]")}));
    EXPECT_EQ(OpenHandles(), Lines{});
}

TEST_F(Bond_SetPrimaryTest, NullIsRefusedInSilence)
{
    EXPECT_FALSE(Bond_SetPrimary(nullptr, "eth1"));
    EXPECT_FALSE(Bond_SetPrimary(kBond, nullptr));
    EXPECT_EQ(Touched(), Lines{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Bond_SetPrimaryTest, NothingIsLeftOpenWhateverFails)
{
    static bool done;
    FailEachCall([] { done = Bond_SetPrimary(kBond, "eth1"); },
                 [](const std::string&) { EXPECT_FALSE(done); });
}

// ---- Bond_SetBondMode

class Bond_SetBondModeTest : public BondWorld {};

const Lines kDown = {"ioctl SIOCGIFFLAGS bond0", "ioctl SIOCSIFFLAGS bond0"};

TEST_F(Bond_SetBondModeTest, WritesTheDriversNameOfEachMode)
{
    const char* const names[] = {"balance-rr", "active-backup", "balance-xor", "broadcast",
                                 "802.3ad",    "balance-tlb",   "balance-alb"};
    for (int mode = 0; mode < 7; ++mode) {
        EXPECT_TRUE(Bond_SetBondMode(kBond, static_cast<NICBondMode>(mode)));
        EXPECT_EQ(Get(Attribute("mode")), names[mode] + "\0"s);
        EXPECT_EQ(Get(Attribute("miimon")), "100\0"s);
    }
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Bond_SetBondModeTest, TakesTheBondDownOnlyWhenItsModeIsOpen)
{
    EXPECT_TRUE(Bond_SetBondMode(kBond, nicBondActiveBackup));
    EXPECT_EQ(
        TraceOf({"open", "ioctl", "write", "close"}),
        (Lines{"open " + Attribute("mode") + " O_RDWR|O_TRUNC", kDown[0], kDown[1],
               "write " + Attribute("mode"), "close " + Attribute("mode"),
               "open " + Attribute("miimon") + " O_RDWR|O_TRUNC", "write " + Attribute("miimon"),
               "close " + Attribute("miimon"), kDown[0], kDown[1]}));
    EXPECT_EQ(kernel.At(kBond).flags, IFF_UP | IFF_BROADCAST);
}

TEST_F(Bond_SetBondModeTest, IsDownWhileItsAttributesAreWritten)
{
    for (const char* attribute : {"mode", "miimon"}) {
        OnCall("write " + Attribute(attribute), [] { EXPECT_FALSE(IsUp()); });
    }
    EXPECT_TRUE(Bond_SetBondMode(kBond, nicBondActiveBackup));
    EXPECT_TRUE(IsUp());
}

TEST_F(Bond_SetBondModeTest, AModeOutsideTheTableTouchesNothing)
{
    for (const int mode : {7, -1}) {
        ClearLog();
        EXPECT_FALSE(Bond_SetBondMode(kBond, static_cast<NICBondMode>(mode)));
        EXPECT_EQ(Log(), (LogLines{Error("Bond_SetBondMode",
                                         "Unknown mode " + std::to_string(mode) + "\n")}));
        EXPECT_EQ(Touched(), Lines{});
    }
}

TEST_F(Bond_SetBondModeTest, ABondWhoseModeCannotBeOpenedStaysUp)
{
    Fail("open " + Attribute("mode"), EACCES);
    EXPECT_FALSE(Bond_SetBondMode(kBond, nicBondBalanceRR));
    EXPECT_EQ(Log(), (LogLines{Error("Bond_SetBondMode", "open " + Attribute("mode") +
                                                             " failed.[Permission denied]")}));
    EXPECT_EQ(TraceOf({"ioctl"}), Lines{});
}

TEST_F(Bond_SetBondModeTest, ComesUpAgainWhenTheModeIsRefused)
{
    Fail("write " + Attribute("mode"), EBUSY);
    EXPECT_FALSE(Bond_SetBondMode(kBond, nicBondBalanceRR));
    EXPECT_EQ(Log(),
              (LogLines{Error("Bond_SetBondMode", "write " + Attribute("mode") +
                                                      " failed.[Device or resource busy]")}));
    EXPECT_EQ(
        TraceOf({"open", "ioctl", "write", "close"}),
        (Lines{"open " + Attribute("mode") + " O_RDWR|O_TRUNC", kDown[0], kDown[1],
               "write " + Attribute("mode"), "close " + Attribute("mode"), kDown[0], kDown[1]}));
    EXPECT_TRUE(IsUp());
}

TEST_F(Bond_SetBondModeTest, ComesUpAgainWhenTheIntervalCannotBeOpened)
{
    Fail("open " + Attribute("miimon"), EACCES);
    EXPECT_FALSE(Bond_SetBondMode(kBond, nicBondBalanceRR));
    EXPECT_EQ(Log(), (LogLines{Error("Bond_SetBondMode", "open " + Attribute("miimon") +
                                                             " failed.[Permission denied]")}));
    EXPECT_TRUE(IsUp());
}

TEST_F(Bond_SetBondModeTest, ComesUpAgainWhenTheIntervalIsRefused)
{
    Fail("write " + Attribute("miimon"), EPERM);
    EXPECT_FALSE(Bond_SetBondMode(kBond, nicBondBalanceRR));
    EXPECT_EQ(Log(),
              (LogLines{Error("Bond_SetBondMode", "write " + Attribute("miimon") +
                                                      " failed.[Operation not permitted]")}));
    EXPECT_EQ(TraceOf({"close", "ioctl"}),
              (Lines{kDown[0], kDown[1], "close " + Attribute("mode"),
                     "close " + Attribute("miimon"), kDown[0], kDown[1]}));
    EXPECT_TRUE(IsUp());
}

TEST_F(Bond_SetBondModeTest, WhatBecomesOfTheFlagsPlaysNoPart)
{
    FailAll("ioctl", EPERM);
    EXPECT_TRUE(Bond_SetBondMode(kBond, nicBond802_3ad));
    EXPECT_EQ(Get(Attribute("mode")), "802.3ad\0"s);
    EXPECT_EQ(LogOf("InterfaceDown"),
              (LogLines{Error("InterfaceDown", "down bond0 failed,getflags error.")}));
    EXPECT_EQ(LogOf("InterfaceUp"),
              (LogLines{Error("InterfaceUp", "up bond0 failed,getflags error.")}));
}

TEST_F(Bond_SetBondModeTest, NullIsRefusedInSilence)
{
    EXPECT_FALSE(Bond_SetBondMode(nullptr, nicBondBalanceRR));
    EXPECT_EQ(Touched(), Lines{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Bond_SetBondModeTest, EndsUpAndClosedWhateverFails)
{
    static bool done;
    FailEachCall([] { done = Bond_SetBondMode(kBond, nicBondBalanceRR); },
                 [](const std::string& failed) {
                     const bool ofAFile =
                         failed.rfind("open", 0) == 0 || failed.rfind("write", 0) == 0;
                     EXPECT_EQ(done, !ofAFile);
                     EXPECT_TRUE(IsUp() || !ofAFile);
                 });
}

// ---- commands

/// 15 names of 15 characters: with the 15 characters of "ifenslave bond0" they fill a command.
Lines LongNames()
{
    Lines names;
    for (char last = 'a'; last < 'a' + 15; ++last) names.push_back("eth-long-name-"s + last);
    return names;
}

std::string Joined(const std::string& start, const Lines& names)
{
    std::string text = start;
    for (const std::string& name : names) text += " " + name;
    return text;
}

// ---- Bond_Bond

class Bond_BondTest : public BondWorld {};

TEST_F(Bond_BondTest, PreparesEachMemberAndEnslavesThemTogether)
{
    Members members({"eth2", "eth0"});
    EXPECT_TRUE(Bond_Bond(kBond, members.Const(), members.Count()));
    EXPECT_EQ(TraceOf({"command", "ioctl"}),
              (Lines{"command ifconfig eth2 down", "command ifconfig eth0 down",
                     "command ifconfig eth2 0.0.0.0 up", "command ifconfig eth0 0.0.0.0 up",
                     "ioctl SIOCGIFFLAGS bond0", "ioctl SIOCSIFFLAGS bond0",
                     "command ifenslave bond0 eth2 eth0"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Bond_BondTest, ACommandThatCannotBeRunDoesNotStopThePasses)
{
    Fail("vfork", EAGAIN, 1);
    Fail("vfork", EAGAIN, 2);
    Members members({"eth0", "eth1"});
    EXPECT_TRUE(Bond_Bond(kBond, members.Const(), members.Count()));
    EXPECT_EQ(Commands(), (Lines{"ifconfig eth1 down", "ifconfig eth1 0.0.0.0 up",
                                 "ifenslave bond0 eth0 eth1"}));
}

TEST_F(Bond_BondTest, ABondThatDoesNotComeUpGetsNoMembers)
{
    Fail("ioctl SIOCSIFFLAGS bond0", EPERM);
    Members members({"eth0"});
    EXPECT_FALSE(Bond_Bond(kBond, members.Const(), members.Count()));
    EXPECT_EQ(Commands(), (Lines{"ifconfig eth0 down", "ifconfig eth0 0.0.0.0 up"}));
    EXPECT_EQ(LogOf("Bond_Bond"), LogLines{});
}

TEST_F(Bond_BondTest, AToolThatFailsCountsAsDone)
{
    OnCommand("ifenslave", nullptr, 1 << 8);
    Members members({"eth0"});
    EXPECT_TRUE(Bond_Bond(kBond, members.Const(), members.Count()));
}

TEST_F(Bond_BondTest, AShellThatDoesNotStartIsAFailure)
{
    Fail("vfork", EAGAIN, 3);
    Members members({"eth0"});
    EXPECT_FALSE(Bond_Bond(kBond, members.Const(), members.Count()));
}

TEST_F(Bond_BondTest, TheCommandHolds255Characters)
{
    Members members(LongNames());
    EXPECT_TRUE(Bond_Bond(kBond, members.Const(), members.Count()));
    EXPECT_EQ(Commands().back(), Joined("ifenslave bond0", LongNames()));
    EXPECT_EQ(Commands().back().size(), 255U);
}

TEST_F(Bond_BondTest, OneCharacterMoreRunsNothingBehindThePasses)
{
    kernel.Add("bond10");
    Members members(LongNames());
    EXPECT_FALSE(Bond_Bond("bond10", members.Const(), members.Count()));

    Lines fitting = LongNames();
    fitting.pop_back();
    EXPECT_EQ(Log(), (LogLines{Error("Bond_Bond", "cmd is too long.[" +
                                                      Joined("ifenslave bond10", fitting) + "]")}));
    EXPECT_EQ(Commands().size(), 30U);
    EXPECT_EQ(Commands().back(), "ifconfig eth-long-name-o 0.0.0.0 up");
    EXPECT_EQ(kernel.At("bond10").flags, IFF_UP);
}

TEST_F(Bond_BondTest, ABondOfNoMembersIsJustNamed)
{
    for (const int count : {0, -1}) {
        Members members({"eth0"});
        EXPECT_TRUE(Bond_Bond(kBond, members.Const(), count));
    }
    EXPECT_EQ(Commands(), (Lines{"ifenslave bond0", "ifenslave bond0"}));
}

TEST_F(Bond_BondTest, NullIsRefusedInSilence)
{
    Members members({"eth0"});
    EXPECT_FALSE(Bond_Bond(nullptr, members.Const(), 1));
    EXPECT_FALSE(Bond_Bond(kBond, nullptr, 1));
    members.Const()[0] = nullptr;
    EXPECT_FALSE(Bond_Bond(kBond, members.Const(), 1));
    EXPECT_EQ(Touched(), Lines{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Bond_BondTest, OnlyTheBondAndTheLastCommandDecide)
{
    static bool done;
    FailEachCall(
        [] {
            Members members({"eth0"});
            done = Bond_Bond(kBond, members.Const(), members.Count());
        },
        [](const std::string& failed) {
            const bool ofTheBond = failed.rfind("ioctl", 0) == 0 || failed.rfind("socket", 0) == 0;
            if (ofTheBond) {
                EXPECT_FALSE(done);
                EXPECT_EQ(Commands().size(), 2U);
            } else {
                EXPECT_GE(Commands().size(), 2U);
                EXPECT_TRUE(IsUp());
            }
        });
}

// ---- Bond_Unbond

class Bond_UnbondTest : public BondWorld {};

TEST_F(Bond_UnbondTest, ReleasesTheMembersAndTakesTheBondDown)
{
    Members members({"eth2", "eth0"});
    EXPECT_TRUE(Bond_Unbond(kBond, members.Const(), members.Count()));
    EXPECT_EQ(Commands(), (Lines{"ifenslave -d bond0 eth2 eth0", "ifconfig bond0 0.0.0.0 down"}));
    EXPECT_EQ(TraceOf({"ioctl"}), Lines{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Bond_UnbondTest, SucceedsWhateverBecomesOfTheCommands)
{
    FailAll("vfork", EAGAIN);
    Members members({"eth0"});
    EXPECT_TRUE(Bond_Unbond(kBond, members.Const(), members.Count()));
    EXPECT_EQ(TraceOf({"vfork"}).size(), 2U);
}

TEST_F(Bond_UnbondTest, SucceedsWhenTheToolFails)
{
    OnCommand("ifenslave", nullptr, 1 << 8);
    Members members({"eth0"});
    EXPECT_TRUE(Bond_Unbond(kBond, members.Const(), members.Count()));
    EXPECT_EQ(Commands().size(), 2U);
}

TEST_F(Bond_UnbondTest, TheCommandHolds255Characters)
{
    // 18 characters of "ifenslave -d bond0", 14 names of 16 with their blanks, one of 12 and a
    // blank.
    Lines names = LongNames();
    names.back().resize(12);
    Members fitting(names);
    EXPECT_TRUE(Bond_Unbond(kBond, fitting.Const(), fitting.Count()));
    EXPECT_EQ(Commands().front(), Joined("ifenslave -d bond0", names));
    EXPECT_EQ(Commands().front().size(), 255U);
}

TEST_F(Bond_UnbondTest, OneCharacterMoreRunsNothing)
{
    Lines names = LongNames();
    names.back().resize(13);
    Members members(names);
    EXPECT_FALSE(Bond_Unbond(kBond, members.Const(), members.Count()));
    names.pop_back();
    EXPECT_EQ(Log(),
              (LogLines{Error("Bond_Unbond",
                              "cmd is too long.[" + Joined("ifenslave -d bond0", names) + "]")}));
    EXPECT_EQ(Touched(), Lines{});
}

TEST_F(Bond_UnbondTest, ABondOfNoMembersIsJustNamed)
{
    Members members({"eth0"});
    EXPECT_TRUE(Bond_Unbond(kBond, members.Const(), 0));
    EXPECT_TRUE(Bond_Unbond(kBond, members.Const(), -1));
    EXPECT_EQ(Commands()[0], "ifenslave -d bond0");
    EXPECT_EQ(Commands()[2], "ifenslave -d bond0");
}

TEST_F(Bond_UnbondTest, NullIsRefusedInSilence)
{
    Members members({"eth0"});
    EXPECT_FALSE(Bond_Unbond(nullptr, members.Const(), 1));
    EXPECT_FALSE(Bond_Unbond(kBond, nullptr, 1));
    members.Const()[0] = nullptr;
    EXPECT_FALSE(Bond_Unbond(kBond, members.Const(), 1));
    EXPECT_EQ(Touched(), Lines{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Bond_UnbondTest, SucceedsWhateverFails)
{
    static bool done;
    FailEachCall(
        [] {
            Members members({"eth0"});
            done = Bond_Unbond(kBond, members.Const(), members.Count());
        },
        [](const std::string&) { EXPECT_TRUE(done); });
}

}  // namespace
