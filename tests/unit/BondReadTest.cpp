// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// What a bond tells of itself: its members and the active one.

#include "Bond.h"

#include "BondWorld.h"
#include "MemberNames.h"

#include <cstring>

using namespace fake;
using namespace std::string_literals;

namespace {

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
    table.pointers[1] = nullptr;
    EXPECT_FALSE(Bond_GetBondMembers(kBond, table.pointers, &count));
    EXPECT_EQ(table.names[0][0], '#');
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

}  // namespace
