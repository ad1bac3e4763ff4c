#include "Bond.h"

#include "MemberNames.h"
#include "fake/World.h"

#include <net/if.h>

#include <cstring>

using namespace fake;
using namespace std::string_literals;

namespace {

constexpr char kBond[] = "bond0";

std::string Attribute(const std::string& name, const std::string& bond = kBond)
{
    return "/sys/class/net/" + bond + "/bonding/" + name;
}

/// A bond that is up, with the attribute files of its driver.
class BondWorld : public World {
protected:
    void SetUp() override
    {
        World::SetUp();
        kernel.Add(kBond).flags = IFF_UP | IFF_BROADCAST;
        Put(Attribute("slaves"), "eth0 eth1\n");
        for (const char* name : {"active_slave", "xmit_hash_policy", "primary", "mode", "miimon"}) {
            Put(Attribute(name), "as it was\n");
        }
    }

    static bool IsUp() { return (kernel.At(kBond).flags & IFF_UP) != 0; }
};

/// What the operation did outside: files, requests, commands.
Lines Touched()
{
    return TraceOf({"open", "write", "close", "socket", "ioctl", "vfork"});
}

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

// ---- Bond_HasMember

class Bond_HasMemberTest : public BondWorld {};

TEST_F(Bond_HasMemberTest, ComparesWholeWords)
{
    struct Case {
        const char* line;
        bool expected;
    };
    for (const Case& test :
         {Case{"eth10 eth2\n", false}, Case{"eth2 eth1\n", true}, Case{"eth1 eth2\n", true},
          Case{"eth2 eth1 eth3\n", true}, Case{"eth1\n", true}, Case{"veth1 eth2\n", false}}) {
        SCOPED_TRACE(test.line);
        Put(Attribute("slaves"), test.line);
        EXPECT_EQ(Bond_HasMember(kBond, "eth1"), test.expected);
    }
}

TEST_F(Bond_HasMemberTest, LogsAMissAtInfo)
{
    EXPECT_FALSE(Bond_HasMember(kBond, "eth2"));
    EXPECT_EQ(Log(), (LogLines{Info("FindWordInLine", "can not find eth2 in eth0 eth1\n")}));
}

TEST_F(Bond_HasMemberTest, IsSilentWhenTheMemberIsFound)
{
    EXPECT_TRUE(Bond_HasMember(kBond, "eth1"));
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(OpenHandles(), Lines{});
}

TEST_F(Bond_HasMemberTest, ReportsABondThatCannotBeOpened)
{
    EXPECT_FALSE(Bond_HasMember("bond9", "eth1"));
    EXPECT_EQ(Log(), (LogLines{Error("Bond_HasMember",
                                     "open " + Attribute("slaves", "bond9") + " failed\n")}));
}

TEST_F(Bond_HasMemberTest, ABondWithoutALineHasNoMember)
{
    Put(Attribute("slaves"), "");
    EXPECT_FALSE(Bond_HasMember(kBond, "eth1"));
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(OpenHandles(), Lines{});
}

TEST_F(Bond_HasMemberTest, NullIsRefusedInSilence)
{
    EXPECT_FALSE(Bond_HasMember(nullptr, "eth1"));
    EXPECT_FALSE(Bond_HasMember(kBond, nullptr));
    EXPECT_EQ(Touched(), Lines{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Bond_HasMemberTest, NothingIsLeftOpenWhateverFails)
{
    static bool found;
    FailEachCall([] { found = Bond_HasMember(kBond, "eth1"); },
                 [](const std::string&) { EXPECT_FALSE(found); });
}

// ---- Bond_GetActiveSlave

class Bond_GetActiveSlaveTest : public BondWorld {};

TEST_F(Bond_GetActiveSlaveTest, KeepsTheNewlineOfTheLine)
{
    Put(Attribute("active_slave"), "eth1\n");
    char name[16];
    EXPECT_TRUE(Bond_GetActiveSlave(kBond, name, sizeof(name)));
    EXPECT_STREQ(name, "eth1\n");
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(OpenHandles(), Lines{});
}

TEST_F(Bond_GetActiveSlaveTest, TheNameBeginsAtTheFirstEth)
{
    Put(Attribute("active_slave"), "veth3.eth4\n");
    char name[16];
    EXPECT_TRUE(Bond_GetActiveSlave(kBond, name, sizeof(name)));
    EXPECT_STREQ(name, "eth3.eth4\n");
}

TEST_F(Bond_GetActiveSlaveTest, StoresTwoCharactersLessThanTheLength)
{
    struct Case {
        int len;
        const char* expected;
    };
    Put(Attribute("active_slave"), "eth10\n");
    for (const Case& test : {Case{1, ""}, Case{2, ""}, Case{3, "e"}, Case{6, "eth1"},
                             Case{7, "eth10"}, Case{8, "eth10\n"}}) {
        SCOPED_TRACE(test.len);
        char name[16];
        memset(name, '#', sizeof(name));
        EXPECT_TRUE(Bond_GetActiveSlave(kBond, name, test.len));
        EXPECT_STREQ(name, test.expected);
        EXPECT_EQ(name[test.len - 1], '\0');
        EXPECT_EQ(name[test.len], '#');
    }
}

TEST_F(Bond_GetActiveSlaveTest, ALengthBelowOneTouchesNothing)
{
    for (const int len : {0, -1}) {
        char name[4] = "###";
        EXPECT_FALSE(Bond_GetActiveSlave(kBond, name, len));
        EXPECT_STREQ(name, "###");
    }
    EXPECT_EQ(Touched(), Lines{});
}

TEST_F(Bond_GetActiveSlaveTest, ShowsTheLineThatHoldsNoEth)
{
    for (const std::string& line : {"wlan0\n"s, "\n"s}) {
        ClearLog();
        Put(Attribute("active_slave"), line);
        char name[16] = "untouched";
        EXPECT_FALSE(Bond_GetActiveSlave(kBond, name, sizeof(name)));
        EXPECT_STREQ(name, "untouched");
        EXPECT_EQ(Log(), (LogLines{Error("Bond_GetActiveSlave",
                                         "can not find eth device in " + line + "[bond0]")}));
        EXPECT_EQ(OpenHandles(), Lines{});
    }
}

TEST_F(Bond_GetActiveSlaveTest, ShowsThePathWhenThereIsNoLine)
{
    Put(Attribute("active_slave"), "");
    char name[16];
    EXPECT_FALSE(Bond_GetActiveSlave(kBond, name, sizeof(name)));
    EXPECT_EQ(Log(),
              (LogLines{Error("Bond_GetActiveSlave", "can not find eth device in " +
                                                         Attribute("active_slave") + "[bond0]")}));
    EXPECT_EQ(OpenHandles(), Lines{});
}

TEST_F(Bond_GetActiveSlaveTest, ReportsABondThatCannotBeOpened)
{
    char name[16];
    EXPECT_FALSE(Bond_GetActiveSlave("bond9", name, sizeof(name)));
    EXPECT_EQ(Log(),
              (LogLines{Error("Bond_GetActiveSlave", "open " + Attribute("active_slave", "bond9") +
                                                         " failed[No such file or directory]")}));
}

TEST_F(Bond_GetActiveSlaveTest, NullIsRefusedInSilence)
{
    char name[16];
    EXPECT_FALSE(Bond_GetActiveSlave(nullptr, name, sizeof(name)));
    EXPECT_FALSE(Bond_GetActiveSlave(kBond, nullptr, 16));
    EXPECT_EQ(Touched(), Lines{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Bond_GetActiveSlaveTest, NothingIsStoredOrLeftOpenWhateverFails)
{
    static bool found;
    static char name[16] = "untouched";
    Put(Attribute("active_slave"), "eth1\n");
    FailEachCall([] { found = Bond_GetActiveSlave(kBond, name, sizeof(name)); },
                 [](const std::string&) {
                     EXPECT_FALSE(found);
                     EXPECT_STREQ(name, "untouched");
                 });
}

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

// ---- Bond_GetBondMembers

class Bond_GetBondMembersTest : public BondWorld {};

TEST_F(Bond_GetBondMembersTest, ListsTheMembersInTheDriversOrder)
{
    Put(Attribute("slaves"), "eth2 eth0 wlan1\n");
    Table table;
    int count = 32;
    EXPECT_TRUE(Bond_GetBondMembers(kBond, table.pointers, &count));
    ASSERT_EQ(count, 3);
    EXPECT_STREQ(table.names[0], "eth2");
    EXPECT_STREQ(table.names[1], "eth0");
    EXPECT_STREQ(table.names[2], "wlan1");
    EXPECT_EQ(table.names[3][0], '#');
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(OpenHandles(), Lines{});
}

TEST_F(Bond_GetBondMembersTest, MembersAboveTheCapacityAreLeftOut)
{
    Put(Attribute("slaves"), "eth0 eth1 eth2 eth3\n");
    Table table;
    int count = 2;
    EXPECT_TRUE(Bond_GetBondMembers(kBond, table.pointers, &count));
    EXPECT_EQ(count, 2);
    EXPECT_STREQ(table.names[1], "eth1");
    EXPECT_EQ(table.names[2][0], '#');
}

TEST_F(Bond_GetBondMembersTest, ACapacityOfNoneOrLessGivesNone)
{
    for (int capacity : {0, -1}) {
        Table table;
        EXPECT_TRUE(Bond_GetBondMembers(kBond, table.pointers, &capacity));
        EXPECT_EQ(capacity, 0);
        EXPECT_EQ(table.names[0][0], '#');
    }
}

TEST_F(Bond_GetBondMembersTest, AWordBehindTheFifteenthCharacterCountsAsTheNext)
{
    Put(Attribute("slaves"), "eth-abcdefghijklmn eth1\n");
    Table table;
    int count = 32;
    EXPECT_TRUE(Bond_GetBondMembers(kBond, table.pointers, &count));
    ASSERT_EQ(count, 3);
    EXPECT_STREQ(table.names[0], "eth-abcdefghijk");
    EXPECT_STREQ(table.names[1], "lmn");
    EXPECT_STREQ(table.names[2], "eth1");
}

TEST_F(Bond_GetBondMembersTest, ReadsOneLineOf255Characters)
{
    Put(Attribute("slaves"), std::string(250, ' ') + "eth0 eth1\n");
    Table table;
    int count = 32;
    EXPECT_TRUE(Bond_GetBondMembers(kBond, table.pointers, &count));
    ASSERT_EQ(count, 1);
    EXPECT_STREQ(table.names[0], "eth0");

    Put(Attribute("slaves"), "eth0\neth1\n");
    count = 32;
    EXPECT_TRUE(Bond_GetBondMembers(kBond, table.pointers, &count));
    EXPECT_EQ(count, 1);
}

TEST_F(Bond_GetBondMembersTest, ABlankLineIsABondOfNoMembers)
{
    Put(Attribute("slaves"), "\n");
    Table table;
    int count = 32;
    EXPECT_TRUE(Bond_GetBondMembers(kBond, table.pointers, &count));
    EXPECT_EQ(count, 0);
    EXPECT_TRUE(Bond_GetBondMembers(kBond, nullptr, nullptr));
}

TEST_F(Bond_GetBondMembersTest, ABondWithoutALineDoesNotRun)
{
    Put(Attribute("slaves"), "");
    Table table;
    int count = 32;
    EXPECT_FALSE(Bond_GetBondMembers(kBond, table.pointers, &count));
    EXPECT_EQ(count, 32);
    EXPECT_FALSE(Bond_GetBondMembers(kBond, nullptr, nullptr));
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(OpenHandles(), Lines{});
}

TEST_F(Bond_GetBondMembersTest, WithoutAListItTellsWhetherTheBondRuns)
{
    EXPECT_TRUE(Bond_GetBondMembers(kBond, nullptr, nullptr));
    int count = 7;
    EXPECT_TRUE(Bond_GetBondMembers(kBond, nullptr, &count));
    EXPECT_EQ(count, 7);
}

TEST_F(Bond_GetBondMembersTest, AListWithoutACountIsRefusedBehindTheReading)
{
    Table table;
    EXPECT_FALSE(Bond_GetBondMembers(kBond, table.pointers, nullptr));
    EXPECT_EQ(table.names[0][0], '#');
    EXPECT_EQ(TraceOf({"open", "close"}),
              (Lines{"open " + Attribute("slaves") + " O_RDONLY", "close " + Attribute("slaves")}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Bond_GetBondMembersTest, ANameWithAPointOpensNoFile)
{
    Put(Attribute("slaves", "bond0.5"), "eth0\n");
    Table table;
    int count = 32;
    EXPECT_FALSE(Bond_GetBondMembers("bond0.5", table.pointers, &count));
    EXPECT_EQ(count, 0);
    EXPECT_FALSE(Bond_GetBondMembers("bond0.5", nullptr, nullptr));
    EXPECT_EQ(Touched(), Lines{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Bond_GetBondMembersTest, ReportsABondThatIsNotThereAtEachQuery)
{
    int count = 32;
    EXPECT_FALSE(Bond_GetBondMembers("bond9", nullptr, &count));
    EXPECT_FALSE(Bond_GetBondMembers("bond9", nullptr, &count));
    EXPECT_EQ(count, 32);
    const LogLine line =
        Error("Bond_GetBondMembers", "open " + Attribute("slaves", "bond9") + " failed\n");
    EXPECT_EQ(Log(), (LogLines{line, line}));
}

TEST_F(Bond_GetBondMembersTest, NullIsRefusedInSilence)
{
    Table table;
    int count = 32;
    EXPECT_FALSE(Bond_GetBondMembers(nullptr, table.pointers, &count));
    EXPECT_EQ(count, 32);
    EXPECT_EQ(Touched(), Lines{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Bond_GetBondMembersTest, NothingIsStoredOrLeftOpenWhateverFails)
{
    static Table table;
    static int count = 32;
    static bool done;
    FailEachCall([] { done = Bond_GetBondMembers(kBond, table.pointers, &count); },
                 [](const std::string&) {
                     EXPECT_FALSE(done);
                     EXPECT_EQ(count, 32);
                     EXPECT_EQ(table.names[0][0], '#');
                 });
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
