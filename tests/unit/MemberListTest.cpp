// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The saved member lists of bonds and bridges.

#include "Config.h"

#include "NameTexts.h"
#include "SettingLog.h"
#include "SettingRows.h"

#include <climits>
#include <cstring>

using namespace fake;

namespace {

constexpr char kBondFile[] = "/mnt/mtd/Config/networkbond0";
constexpr char kBrFile[] = "/mnt/mtd/Config/networkbr0";

constexpr int kLineLimit = 255;

/// Bonds and bridges save their members under their own key and name, in the same way.
struct Master {
    const char* operation;
    const char* name;
    std::string file;
    std::string start;  // of the line
    bool (*get)(const char*, char**, int*);
    bool (*set)(const char*, const char**, int);
};

const Master kBond = {
    "SetBondMemberByConfig", "bond0", kBondFile, "BONDMEMBERS = ", GetBondMemberByConfig,
    SetBondMemberByConfig};
const Master kBridge = {
    "SetBridgeMemberByConfig", "br0", kBrFile, "BRIDGEMEMBERS = ", GetBridgeMemberByConfig,
    SetBridgeMemberByConfig};

/// A caller's table of entries, which shows what was written to it.
template <size_t kSize>
struct Table {
    explicit Table(int count) : entries(static_cast<size_t>(count))
    {
        for (auto& entry : entries) {
            memset(entry.bytes, '#', sizeof(entry.bytes));
            pointers.push_back(entry.bytes);
        }
    }

    struct Entry {
        char bytes[kSize + 1];
    };
    std::vector<Entry> entries;
    std::vector<char*> pointers;
};

/// The members that are read, with the result and the count before them.
std::string ReadMembers(const Master& master, int num = 32)
{
    Table<33> table(32);
    for (auto& entry : table.entries) memset(entry.bytes, 0, sizeof(entry.bytes));
    int count = num;
    const bool result = master.get(master.name, table.pointers.data(), &count);
    std::string shown = (result ? "1 " : "0 ") + std::to_string(count);
    for (int i = 0; result && i < count; ++i) {
        shown += " " + std::string(table.pointers[static_cast<size_t>(i)]);
    }
    return shown;
}

bool SaveMembers(const Master& master, const Texts& names)
{
    return master.set(master.name, Pointers(names).data(), static_cast<int>(names.size()));
}

// ---- what all settings have in common

INSTANTIATE_TEST_SUITE_P(
    OfAMaster, EverySavedSettingTest,
    testing::Values(SavedSetting{"BondMembers",
                                 [] {
                                     return SaveMembers(kBond, {"eth0", "eth1"});
                                 },
                                 kBondFile,
                                 {"BONDMEMBERS = eth0,eth1"}},
                    SavedSetting{"BridgeMembers",
                                 [] {
                                     return SaveMembers(kBridge, {"eth0", "eth1"});
                                 },
                                 kBrFile,
                                 {"BRIDGEMEMBERS = eth0,eth1"}}),
    RowName<SavedSetting>);

INSTANTIATE_TEST_SUITE_P(OfAMaster, EveryReadSettingTest,
                         testing::Values(ReadSetting{"BondMembers",
                                                     [] { return ReadMembers(kBond); },
                                                     kBondFile,
                                                     {"BONDMEMBERS = eth0,eth1"},
                                                     "1 2 eth0 eth1",
                                                     "0 32"},
                                         ReadSetting{"BridgeMembers",
                                                     [] { return ReadMembers(kBridge); },
                                                     kBrFile,
                                                     {"BRIDGEMEMBERS = eth0,eth1"},
                                                     "1 2 eth0 eth1",
                                                     "0 32"}),
                         RowName<ReadSetting>);

class MemberListTest : public World {};

TEST_F(MemberListTest, NullIsRefusedBeforeAnythingIsTouched)
{
    int num = 1;
    char name[33] = "eth0";
    char* entries[] = {name};
    const char* names[] = {name};

    EXPECT_FALSE(GetBondMemberByConfig(nullptr, entries, &num));
    EXPECT_FALSE(GetBondMemberByConfig("bond0", nullptr, &num));
    EXPECT_FALSE(GetBondMemberByConfig("bond0", entries, nullptr));
    EXPECT_FALSE(SetBondMemberByConfig(nullptr, names, 1));
    EXPECT_FALSE(SetBondMemberByConfig("bond0", nullptr, 0));
    EXPECT_FALSE(GetBridgeMemberByConfig(nullptr, entries, &num));
    EXPECT_FALSE(GetBridgeMemberByConfig("br0", nullptr, &num));
    EXPECT_FALSE(GetBridgeMemberByConfig("br0", entries, nullptr));
    EXPECT_FALSE(SetBridgeMemberByConfig(nullptr, names, 1));
    EXPECT_FALSE(SetBridgeMemberByConfig("br0", nullptr, 0));
    EXPECT_EQ(Trace(), kNothing);
    EXPECT_EQ(Log(), kSilence);
    EXPECT_EQ(num, 1);
}

TEST_F(MemberListTest, AListWithoutOneOfItsNamesIsRefused)
{
    const char* names[] = {"eth0", nullptr, "eth1"};
    EXPECT_FALSE(SetBondMemberByConfig("bond0", names, 3));
    EXPECT_FALSE(SetBridgeMemberByConfig("br0", names, 3));
    EXPECT_EQ(Trace(), kNothing);
    EXPECT_EQ(Log(), kSilence);
}

// ---- members, of bonds and of bridges

class MembersTest : public World, public testing::WithParamInterface<Master> {
protected:
    static std::string Line(const std::string& value) { return GetParam().start + value; }
    static void Save(const std::string& value) { Put(GetParam().file, Line(value) + "\n"); }
    /// Characters of a list that a line of the file takes.
    static size_t Room() { return kLineLimit - GetParam().start.size(); }
};

INSTANTIATE_TEST_SUITE_P(Of, MembersTest, testing::Values(kBond, kBridge),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_P(MembersTest, EmptyNamesArePassedOver)
{
    const std::vector<std::pair<std::string, std::string>> lists = {
        {"a,,b", "1 2 a b"}, {"a,b,", "1 2 a b"}, {",a,b", "1 2 a b"}, {",,,a,,,b,,", "1 2 a b"},
        {"a", "1 1 a"},      {",", "1 0"},        {",,,", "1 0"}};
    for (const auto& [list, members] : lists) {
        Save(list);
        EXPECT_EQ(ReadMembers(GetParam()), members) << list;
    }
    EXPECT_EQ(Log(), kSilence);
}

TEST_P(MembersTest, OnlyCommasSplitAList)
{
    Save("eth0, eth1;eth2");
    EXPECT_EQ(ReadMembers(GetParam()), "1 2 eth0  eth1;eth2");
    Save(", eth0 ,\teth1,eth2 ");
    EXPECT_EQ(ReadMembers(GetParam()), "1 3  eth0  \teth1 eth2");
}

TEST_P(MembersTest, NoMoreAreReadThanWereAskedFor)
{
    Save("eth0,eth1,eth2");
    EXPECT_EQ(ReadMembers(GetParam(), 1), "1 1 eth0");
    EXPECT_EQ(ReadMembers(GetParam(), 2), "1 2 eth0 eth1");
    EXPECT_EQ(ReadMembers(GetParam(), 3), "1 3 eth0 eth1 eth2");
    EXPECT_EQ(ReadMembers(GetParam(), 0), "1 0");
    EXPECT_EQ(ReadMembers(GetParam(), -1), "1 0");
    EXPECT_EQ(ReadMembers(GetParam(), INT_MIN), "1 0");
}

TEST_P(MembersTest, EntriesBehindTheCountAreNotTouched)
{
    Save("eth0,eth1,eth2");
    Table<33> table(3);
    int count = 2;
    EXPECT_TRUE(GetParam().get(GetParam().name, table.pointers.data(), &count));
    EXPECT_EQ(std::string(table.entries[2].bytes, 34), std::string(34, '#'));
}

TEST_P(MembersTest, ThirtyThreeMembersFillThirtyTwoEntries)
{
    Texts names;
    for (int i = 0; i < 33; ++i) names.push_back("e" + std::to_string(i));
    Save(Join(names));
    names.pop_back();
    std::string members = "1 32";
    for (const std::string& name : names) members += " " + name;
    EXPECT_EQ(ReadMembers(GetParam()), members);
}

TEST_P(MembersTest, AMissingEntryIsRefusedWithTheCountAsItWas)
{
    Save("eth0,eth1");
    char first[33] = {};
    char* entries[] = {first, nullptr};
    int count = 2;
    EXPECT_FALSE(GetParam().get(GetParam().name, entries, &count));
    EXPECT_EQ(count, 2);
    Save("eth0");
    EXPECT_TRUE(GetParam().get(GetParam().name, entries, &count));
    EXPECT_EQ(count, 1);
}

TEST_P(MembersTest, ANulByteEndsTheList)
{
    Put(GetParam().file, Line("eth0,e") + std::string("\0th1,eth2\n", 10));
    EXPECT_EQ(ReadMembers(GetParam()), "1 2 eth0 e");
}

TEST_P(MembersTest, AreSavedInTheirOrderAndAsTheyAre)
{
    Put(GetParam().file, "");
    const std::string longName(40, 'x');
    EXPECT_TRUE(SaveMembers(GetParam(), {"eth1", longName, "eth0", "", "eth0"}));
    EXPECT_EQ(Get(GetParam().file), Line("eth1," + longName + ",eth0,,eth0\n"));
    EXPECT_EQ(Log(), kSilence);
}

TEST_P(MembersTest, NoneAreAnEmptyValueThatReadsAsAFailure)
{
    const std::string key = GetParam().start.substr(0, GetParam().start.size() - 3);
    for (const int num : {0, -1, INT_MIN}) {
        ClearLog();
        Save("eth0,eth1");
        EXPECT_TRUE(GetParam().set(GetParam().name, Pointers({}).data(), num));
        EXPECT_EQ(Get(GetParam().file), Line("\n"));
        EXPECT_EQ(Log(), kSilence);
        EXPECT_EQ(ReadMembers(GetParam()), "0 32");
        EXPECT_EQ(Log(), LogLines{EmptyValue(key, GetParam().file)});
    }
}

TEST_P(MembersTest, OneEmptyNameIsAnEmptyValueToo)
{
    Save("eth0,eth1");
    EXPECT_TRUE(SaveMembers(GetParam(), {""}));
    EXPECT_EQ(Get(GetParam().file), Line("\n"));
}

TEST_P(MembersTest, TwoHundredAndFiftyFourCharactersWithTheLastCommaAreTaken)
{
    for (const Texts& names :
         {NamesOfLength(253), Texts{std::string(253, 'x')}, Texts{std::string(252, 'x'), ""}}) {
        Save("eth0");
        EXPECT_TRUE(SaveMembers(GetParam(), names));
        EXPECT_EQ(Get(GetParam().file), Line(Join(names).substr(0, Room())));
    }
    EXPECT_EQ(Log(), kSilence);
}

TEST_P(MembersTest, TwoHundredAndFiftyFiveAreRefused)
{
    for (const Texts& names :
         {NamesOfLength(254), NamesOfLength(255), Texts{std::string(254, 'x')},
          Texts{std::string(253, 'x'), ""}, Texts{std::string(254, 'x'), "eth1", "eth2"},
          Texts{"eth0", std::string(100000, 'x')}, NamesOfLength(4000)}) {
        ClearLog();
        EXPECT_FALSE(SaveMembers(GetParam(), names));
        EXPECT_EQ(Log(), LogLines{Error(GetParam().operation,
                                        std::string("to many eths in ") + GetParam().name)});
    }
    EXPECT_EQ(TraceOf({"mutex", "open", "fopen"}), kNothing);
    EXPECT_FALSE(Exists(GetParam().file));
}

TEST_P(MembersTest, AListFillsItsLineInTheFile)
{
    Put(GetParam().file, "");
    const Texts whole = NamesOfLength(Room() - 1);
    EXPECT_TRUE(SaveMembers(GetParam(), whole));
    EXPECT_EQ(Get(GetParam().file), Line(Join(whole) + "\n"));
    const Texts full = NamesOfLength(Room());
    EXPECT_TRUE(SaveMembers(GetParam(), full));
    EXPECT_EQ(Get(GetParam().file), Line(Join(full)));
    EXPECT_TRUE(SaveMembers(GetParam(), NamesOfLength(Room() + 1)));
    EXPECT_EQ(Get(GetParam().file), Line(Join(NamesOfLength(Room() + 1)).substr(0, Room())));
}

TEST_P(MembersTest, AFullLineDoesNotHideTheOneBehindIt)
{
    Put(GetParam().file, "");
    EXPECT_TRUE(SaveMembers(GetParam(), NamesOfLength(253)));
    EXPECT_TRUE(SetMtuByConfig(GetParam().name, 1400));
    int mtu = 0;
    EXPECT_TRUE(GetMtuByConfig(GetParam().name, &mtu));
    EXPECT_EQ(mtu, 1400);
    EXPECT_EQ(ReadMembers(GetParam(), 1), "1 1 " + NamesOfLength(253)[0]);
}

// ---- members of a bond alone

class GetBondMemberByConfigTest : public World {};

TEST_F(GetBondMemberByConfigTest, ALongNameIsCutToFifteenCharacters)
{
    Put(kBondFile, "BONDMEMBERS = 123456789012345,1234567890123456,e\n");
    Table<16> table(3);
    int count = 3;
    ASSERT_TRUE(GetBondMemberByConfig("bond0", table.pointers.data(), &count));
    EXPECT_EQ(count, 3);
    const std::string cut = std::string("123456789012345\0#", 17);
    EXPECT_EQ(std::string(table.entries[0].bytes, 17), cut);
    EXPECT_EQ(std::string(table.entries[1].bytes, 17), cut);
    EXPECT_EQ(std::string(table.entries[2].bytes, 17), "e" + std::string(15, '\0') + "#");
}

TEST_F(GetBondMemberByConfigTest, EveryListThatFitsALineIsRead)
{
    const std::string list = Join(NamesOfLength(243));
    Put(kBondFile, "BONDMEMBERS=" + list + "\n");
    EXPECT_EQ(ReadMembers(kBond, 1), "1 1 aaaaaaaaaa");
    EXPECT_EQ(Log(), kSilence);
}

// ---- members of a bridge alone

class GetBridgeMemberByConfigTest : public World {};

TEST_F(GetBridgeMemberByConfigTest, ALongNameIsCutToThirtyTwoCharactersWithoutATerminator)
{
    const std::string name = "12345678901234567890123456789012";
    Put(kBrFile, "BRIDGEMEMBERS = " + name + "," + name + "3,e\n");
    Table<33> table(3);
    int count = 3;
    ASSERT_TRUE(GetBridgeMemberByConfig("br0", table.pointers.data(), &count));
    EXPECT_EQ(count, 3);
    EXPECT_EQ(std::string(table.entries[0].bytes, 34), name + "##");
    EXPECT_EQ(std::string(table.entries[1].bytes, 34), name + "##");
    EXPECT_EQ(std::string(table.entries[2].bytes, 34), "e" + std::string(31, '\0') + "##");
}

TEST_F(GetBridgeMemberByConfigTest, TwoHundredAndFortyCharactersAreTooMany)
{
    Put(kBrFile, "BRIDGEMEMBERS=" + Join(NamesOfLength(239)) + "\n");
    EXPECT_EQ(ReadMembers(kBridge, 1), "1 1 aaaaaaaaaa");
    EXPECT_EQ(Log(), kSilence);
    const std::string list = Join(NamesOfLength(240));
    Put(kBrFile, "BRIDGEMEMBERS=" + list + "\n");
    EXPECT_EQ(ReadMembers(kBridge, 1), "0 1");
    EXPECT_EQ(Log(), LogLines{TooLong(list)});
}

}  // namespace
