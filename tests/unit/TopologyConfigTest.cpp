// The saved settings of bonds and bridges.

#include "Config.h"

#include "SettingRows.h"

#include <array>
#include <climits>
#include <cstring>

using namespace fake;

namespace {

constexpr char kBondFile[] = "/mnt/mtd/Config/networkbond0";
constexpr char kBrFile[] = "/mnt/mtd/Config/networkbr0";
constexpr char kBridgeFile[] = "/mnt/mtd/Config/rsbridgeinit.conf";

constexpr int kLineLimit = 255;

const LogLines kSilence;
const std::vector<std::string> kNothing;

using Texts = std::vector<std::string>;

LogLine TooLong(const std::string& value)
{
    return Error("GetValueByKey", "value len is too small.[len:" + std::to_string(value.size()) +
                                      ",value:" + value + "]");
}

LogLine Empty(const std::string& key, const std::string& file)
{
    return Warn("GetValueByKey", "the " + key + " from " + file + " is empty.");
}

LogLine NotIn(const std::string& word, const std::string& list)
{
    return Info("FindWordInLine", "can not find " + word + " in " + list);
}

/// Pointers to the texts, as the operations take them.
std::vector<const char*> Pointers(const Texts& texts)
{
    std::vector<const char*> pointers;
    for (const std::string& text : texts) pointers.push_back(text.c_str());
    pointers.push_back(nullptr);  // never asked for
    return pointers;
}

std::string Join(const Texts& texts)
{
    std::string joined;
    for (const std::string& text : texts) joined += (joined.empty() ? "" : ",") + text;
    return joined;
}

/// Names that make a list of `length` characters when they are joined by commas.
Texts NamesOfLength(size_t length)
{
    Texts names;
    for (size_t rest = length; rest > 0;) {
        const size_t size = rest > 16 ? 10 : rest;
        names.emplace_back(size, static_cast<char>('a' + names.size() % 26));
        rest -= rest > 16 ? size + 1 : size;
    }
    return names;
}

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

std::string ReadBondMode()
{
    auto mode = static_cast<NICBondMode>(77);
    const bool result = GetBondModeByConfig("bond0", &mode);
    return (result ? "1 " : "0 ") + std::to_string(static_cast<int>(mode));
}

std::string ReadHashPolicy()
{
    unsigned char lacp = 77;
    const bool result = GetBondHashPolicyByConfig("bond0", &lacp);
    return (result ? "1 " : "0 ") + std::to_string(lacp);
}

std::string ReadPrimary(int len = 16)
{
    char name[16] = "before";
    const bool result = GetPrimaryEthByConfig("bond0", name, len);
    return (result ? "1 " : "0 ") + std::string(name);
}

std::string ReadStpMode()
{
    unsigned char mode = 77;
    const bool result = GetBridgeStpModeByConfig("br0", &mode);
    return (result ? "1 " : "0 ") + std::to_string(mode);
}

// ---- what all settings have in common

INSTANTIATE_TEST_SUITE_P(
    OfAMaster, EverySavedSettingTest,
    testing::Values(
        SavedSetting{"BondMode",
                     [] { return SetBondModeByConfig("bond0", nicBond802_3ad); },
                     kBondFile,
                     {"BONDMODE = 4"}},
        SavedSetting{"NoBondMode",
                     [] { return SetBondModeByConfig("bond0", static_cast<NICBondMode>(-1)); },
                     kBondFile,
                     {"BONDMODE = "}},
        SavedSetting{"BondMembers",
                     [] {
                         return SaveMembers(kBond, {"eth0", "eth1"});
                     },
                     kBondFile,
                     {"BONDMEMBERS = eth0,eth1"}},
        SavedSetting{"HashPolicy",
                     [] { return SetBondHashPolicyByConfig("bond0", 2); },
                     kBondFile,
                     {"LACP = 2"}},
        SavedSetting{"Primary",
                     [] { return SetPrimaryEthByConfig("bond0", "eth1"); },
                     kBondFile,
                     {"BONDPRIMARY = eth1"}},
        SavedSetting{"BridgeMembers",
                     [] {
                         return SaveMembers(kBridge, {"eth0", "eth1"});
                     },
                     kBrFile,
                     {"BRIDGEMEMBERS = eth0,eth1"}},
        SavedSetting{"NoEdgePort",
                     [] { return DelEdgePortByconfig("br0", "eth1"); },
                     kBridgeFile,
                     {"SSIF_EDGE[0] = "}},
        SavedSetting{"StpMode",
                     [] { return SetBridgeStpModeByConfig("br0", 2); },
                     kBridgeFile,
                     {"stp_state = 2d"}},
        SavedSetting{
            "BridgeID", [] { return SetBridgeIDByConfig("br3"); }, kBridgeFile, {"BRIDGES = 3"}},
        SavedSetting{
            "PortList",
            [] {
                return SetBridgePortListByConfig("br0", Pointers({"eth0", "eth1"}).data(), 2);
            },
            kBridgeFile,
            {"SSIF = eth0,eth1"}}),
    RowName<SavedSetting>);

INSTANTIATE_TEST_SUITE_P(
    OfAMaster, EveryReadSettingTest,
    testing::Values(
        ReadSetting{"BondMode", ReadBondMode, kBondFile, {"BONDMODE = 4"}, "1 4", "0 77"},
        ReadSetting{"BondMembers",
                    [] { return ReadMembers(kBond); },
                    kBondFile,
                    {"BONDMEMBERS = eth0,eth1"},
                    "1 2 eth0 eth1",
                    "0 32"},
        ReadSetting{"HashPolicy", ReadHashPolicy, kBondFile, {"LACP = 2"}, "1 2", "0 77"},
        ReadSetting{"Primary",
                    [] { return ReadPrimary(); },
                    kBondFile,
                    {"BONDPRIMARY = eth1"},
                    "1 eth1",
                    "0 before"},
        ReadSetting{"BridgeMembers",
                    [] { return ReadMembers(kBridge); },
                    kBrFile,
                    {"BRIDGEMEMBERS = eth0,eth1"},
                    "1 2 eth0 eth1",
                    "0 32"},
        ReadSetting{"EdgePort",
                    [] { return std::string(IsEdgePortByconfig("br0", "eth1") ? "1" : "0"); },
                    kBridgeFile,
                    {"SSIF_EDGE[0] = eth0,eth1"},
                    "1",
                    "0"}),
    RowName<ReadSetting>);

class MasterSettingsTest : public World {};

TEST_F(MasterSettingsTest, NullIsRefusedBeforeAnythingIsTouched)
{
    NICBondMode mode = nicBondBalanceRR;
    unsigned char byte = 0;
    int num = 1;
    char name[33] = "eth0";
    char* entries[] = {name};
    const char* names[] = {name};

    EXPECT_FALSE(GetBondModeByConfig(nullptr, &mode));
    EXPECT_FALSE(GetBondModeByConfig("bond0", nullptr));
    EXPECT_FALSE(SetBondModeByConfig(nullptr, nicBondBalanceRR));
    EXPECT_FALSE(SetBondModeByConfig(nullptr, static_cast<NICBondMode>(-1)));
    EXPECT_FALSE(GetBondMemberByConfig(nullptr, entries, &num));
    EXPECT_FALSE(GetBondMemberByConfig("bond0", nullptr, &num));
    EXPECT_FALSE(GetBondMemberByConfig("bond0", entries, nullptr));
    EXPECT_FALSE(SetBondMemberByConfig(nullptr, names, 1));
    EXPECT_FALSE(SetBondMemberByConfig("bond0", nullptr, 0));
    EXPECT_FALSE(GetBondHashPolicyByConfig(nullptr, &byte));
    EXPECT_FALSE(GetBondHashPolicyByConfig("bond0", nullptr));
    EXPECT_FALSE(SetBondHashPolicyByConfig(nullptr, 1));
    EXPECT_FALSE(SetPrimaryEthByConfig(nullptr, "eth0"));
    EXPECT_FALSE(SetPrimaryEthByConfig("bond0", nullptr));
    EXPECT_FALSE(GetPrimaryEthByConfig(nullptr, name, 16));
    EXPECT_FALSE(GetPrimaryEthByConfig("bond0", nullptr, 16));
    EXPECT_FALSE(GetBridgeMemberByConfig(nullptr, entries, &num));
    EXPECT_FALSE(GetBridgeMemberByConfig("br0", nullptr, &num));
    EXPECT_FALSE(GetBridgeMemberByConfig("br0", entries, nullptr));
    EXPECT_FALSE(SetBridgeMemberByConfig(nullptr, names, 1));
    EXPECT_FALSE(SetBridgeMemberByConfig("br0", nullptr, 0));
    EXPECT_FALSE(AddEdgePortByconfig(nullptr, "eth0"));
    EXPECT_FALSE(AddEdgePortByconfig("br0", nullptr));
    EXPECT_FALSE(DelEdgePortByconfig(nullptr, "eth0"));
    EXPECT_FALSE(DelEdgePortByconfig("br0", nullptr));
    EXPECT_FALSE(IsEdgePortByconfig(nullptr, "eth0"));
    EXPECT_FALSE(IsEdgePortByconfig("br0", nullptr));
    EXPECT_FALSE(SetBridgeStpModeByConfig(nullptr, 1));
    EXPECT_FALSE(GetBridgeStpModeByConfig(nullptr, &byte));
    EXPECT_FALSE(SetBridgeIDByConfig(nullptr));
    EXPECT_FALSE(SetBridgePortListByConfig(nullptr, names, 1));
    EXPECT_FALSE(SetBridgePortListByConfig("br0", nullptr, 1));

    EXPECT_EQ(Trace(), kNothing);
    EXPECT_EQ(Log(), kSilence);
    EXPECT_EQ(num, 1);
}

TEST_F(MasterSettingsTest, AListWithoutOneOfItsNamesIsRefused)
{
    const char* names[] = {"eth0", nullptr, "eth1"};
    EXPECT_FALSE(SetBondMemberByConfig("bond0", names, 3));
    EXPECT_FALSE(SetBridgeMemberByConfig("br0", names, 3));
    EXPECT_FALSE(SetBridgePortListByConfig("br0", names, 3));
    EXPECT_EQ(Trace(), kNothing);
    EXPECT_EQ(Log(), kSilence);
}

// ---- bond mode

class GetBondModeByConfigTest : public World {};

TEST_F(GetBondModeByConfigTest, EveryNumberOfTheFileIsHandedOut)
{
    const std::vector<std::pair<std::string, int>> numbers = {
        {"0", 0}, {"6", 6}, {"7", 7}, {"4d", 4}, {"012", 12}, {"999999999", 999999999}};
    for (const auto& [text, number] : numbers) {
        Put(kBondFile, "BONDMODE = " + text + "\n");
        EXPECT_EQ(ReadBondMode(), "1 " + std::to_string(number));
    }
    EXPECT_EQ(Log(), kSilence);
}

TEST_F(GetBondModeByConfigTest, WhatIsNoNumberIsNone)
{
    for (const char* text : {"x", "-1", "-4", "balance-rr"}) {
        Put(kBondFile, std::string("BONDMODE = ") + text + "\n");
        EXPECT_EQ(ReadBondMode(), "0 -1") << text;
    }
    EXPECT_EQ(Log(), kSilence);
}

TEST_F(GetBondModeByConfigTest, HasAtMostFifteenCharacters)
{
    Put(kBondFile, "BONDMODE = 000000000000004\n");
    EXPECT_EQ(ReadBondMode(), "1 4");
    Put(kBondFile, "BONDMODE = 0000000000000004\n");
    EXPECT_EQ(ReadBondMode(), "0 77");
    EXPECT_EQ(Log(), LogLines{TooLong("0000000000000004")});
}

class SetBondModeByConfigTest : public World {};

TEST_F(SetBondModeByConfigTest, NoneIsAnEmptyValueThatReadsAsAFailure)
{
    Put(kBondFile, "BONDMODE = 1\n");
    EXPECT_TRUE(SetBondModeByConfig("bond0", static_cast<NICBondMode>(-1)));
    EXPECT_EQ(Get(kBondFile), "BONDMODE = \n");
    EXPECT_EQ(Log(), kSilence);
    EXPECT_EQ(ReadBondMode(), "0 77");
    EXPECT_EQ(Log(), LogLines{Empty("BONDMODE", kBondFile)});
}

TEST_F(SetBondModeByConfigTest, EveryOtherNumberIsSavedWhole)
{
    Put(kBondFile, "");
    for (const int mode : {0, 1, 2, 3, 4, 5, 6, 7, -2, INT_MAX, INT_MIN}) {
        EXPECT_TRUE(SetBondModeByConfig("bond0", static_cast<NICBondMode>(mode)));
        EXPECT_EQ(Get(kBondFile), "BONDMODE = " + std::to_string(mode) + "\n");
    }
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
        EXPECT_EQ(Log(), LogLines{Empty(key, GetParam().file)});
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

// ---- hash policy

class BondHashPolicyByConfigTest : public World {};

TEST_F(BondHashPolicyByConfigTest, WhatBeginsWithZeroToFourIsRead)
{
    const std::vector<std::pair<std::string, int>> numbers = {{"0", 0},  {"1", 1},   {"4", 4},
                                                              {"4x", 4}, {"47", 47}, {"300", 44}};
    for (const auto& [text, number] : numbers) {
        Put(kBondFile, "LACP = " + text + "\n");
        EXPECT_EQ(ReadHashPolicy(), "1 " + std::to_string(number));
    }
    EXPECT_EQ(Log(), kSilence);
}

TEST_F(BondHashPolicyByConfigTest, WhatDoesNotIsZero)
{
    for (const char* text : {"5", "7", "9", "/", "-1", "x"}) {
        Put(kBondFile, std::string("LACP = ") + text + "\n");
        EXPECT_EQ(ReadHashPolicy(), "0 0") << text;
    }
    EXPECT_EQ(Log(), kSilence);
}

TEST_F(BondHashPolicyByConfigTest, HasAtMostFifteenCharacters)
{
    Put(kBondFile, "LACP = 000000000000002\n");
    EXPECT_EQ(ReadHashPolicy(), "1 2");
    Put(kBondFile, "LACP = 0000000000000002\n");
    EXPECT_EQ(ReadHashPolicy(), "0 77");
    EXPECT_EQ(Log(), LogLines{TooLong("0000000000000002")});
}

TEST_F(BondHashPolicyByConfigTest, EveryByteIsSaved)
{
    Put(kBondFile, "");
    for (const int lacp : {0, 4, 7, 128, 255}) {
        EXPECT_TRUE(SetBondHashPolicyByConfig("bond0", static_cast<unsigned char>(lacp)));
        EXPECT_EQ(Get(kBondFile), "LACP = " + std::to_string(lacp) + "\n");
    }
}

// ---- primary member

class PrimaryEthByConfigTest : public World {};

TEST_F(PrimaryEthByConfigTest, FillsItsBufferToTheLastByte)
{
    Put(kBondFile, "BONDPRIMARY = eth1\n");
    EXPECT_EQ(ReadPrimary(5), "1 eth1");
    EXPECT_EQ(Log(), kSilence);
    EXPECT_EQ(ReadPrimary(4), "0 before");
    EXPECT_EQ(ReadPrimary(0), "0 before");
    EXPECT_EQ(ReadPrimary(INT_MIN), "0 before");
    EXPECT_EQ(Log(), (LogLines{TooLong("eth1"), TooLong("eth1"), TooLong("eth1")}));
}

// ---- edge ports

class AddEdgePortByconfigTest : public World {};

TEST_F(AddEdgePortByconfigTest, TheFirstIsTheWholeList)
{
    Put(kBridgeFile, "stp_state = 1d\n");
    EXPECT_TRUE(AddEdgePortByconfig("br0", "eth1"));
    EXPECT_EQ(Get(kBridgeFile), Settings({"stp_state = 1d", "SSIF_EDGE[0] = eth1"}));
    EXPECT_EQ(Log(), kSilence);
}

TEST_F(AddEdgePortByconfigTest, OthersAreAppendedInPlace)
{
    Put(kBridgeFile, Settings({"SSIF_EDGE[0] = eth1", "SSIF_EDGE[1] = eth5"}));
    EXPECT_TRUE(AddEdgePortByconfig("br0", "eth2"));
    EXPECT_EQ(Get(kBridgeFile), Settings({"SSIF_EDGE[0] = eth1,eth2", "SSIF_EDGE[1] = eth5"}));
    EXPECT_EQ(Log(), LogLines{NotIn("eth2", "eth1")});
}

TEST_F(AddEdgePortByconfigTest, ABridgeHasItsOwnList)
{
    Put(kBridgeFile, "SSIF_EDGE[0] = eth1\n");
    EXPECT_TRUE(AddEdgePortByconfig("br1", "eth1"));
    EXPECT_TRUE(AddEdgePortByconfig("nbp0", "eth1"));
    EXPECT_EQ(Get(kBridgeFile),
              Settings({"SSIF_EDGE[0] = eth1", "SSIF_EDGE[1] = eth1", "SSIF_EDGE[p] = eth1"}));
}

TEST_F(AddEdgePortByconfigTest, AnEmptyListIsAsGoodAsNone)
{
    Put(kBridgeFile, "SSIF_EDGE[0] = \n");
    EXPECT_TRUE(AddEdgePortByconfig("br0", "eth1"));
    EXPECT_EQ(Get(kBridgeFile), "SSIF_EDGE[0] = eth1\n");
    EXPECT_EQ(Log(), LogLines{Empty("SSIF_EDGE[0]", kBridgeFile)});
}

TEST_F(AddEdgePortByconfigTest, ACardIsNotAddedTwice)
{
    Put(kBridgeFile, "SSIF_EDGE[0] = eth1,eth2\n");
    for (const char* card : {"eth1", "eth2"}) {
        ClearLog();
        EXPECT_TRUE(AddEdgePortByconfig("br0", card));
        EXPECT_EQ(Log(), LogLines{Warn("AddEdgePortByconfig",
                                       card + std::string(" is already the edgeport of br0"))});
    }
    EXPECT_EQ(Get(kBridgeFile), "SSIF_EDGE[0] = eth1,eth2\n");
    EXPECT_EQ(TraceOf({"fopen"}), kNothing);
}

TEST_F(AddEdgePortByconfigTest, OnlyAWholeNameIsTheCard)
{
    Put(kBridgeFile, "SSIF_EDGE[0] = eth10,xeth1\n");
    EXPECT_TRUE(AddEdgePortByconfig("br0", "eth1"));
    EXPECT_EQ(Get(kBridgeFile), "SSIF_EDGE[0] = eth10,xeth1,eth1\n");
}

TEST_F(AddEdgePortByconfigTest, TwoHundredAndFiftyFiveCharactersAreTheLimit)
{
    const std::string list(240, 'x');
    const std::string line = "SSIF_EDGE[0] = " + list;  // as many characters as a line has
    Put(kBridgeFile, line);
    const std::string last(13, 'y');
    EXPECT_TRUE(AddEdgePortByconfig("br0", last.c_str()));
    EXPECT_EQ(Get(kBridgeFile), line);  // the limit of the line comes first
    EXPECT_EQ(Log(), LogLines{NotIn(last, list)});

    ClearLog();
    ClearTrace();
    const std::string beyond(14, 'y');
    EXPECT_FALSE(AddEdgePortByconfig("br0", beyond.c_str()));
    EXPECT_EQ(TraceOf({"fopen"}), kNothing);
    EXPECT_EQ(Log(), (LogLines{NotIn(beyond, list),
                               Error("AddEdgePortByconfig",
                                     "value is too long " + list + ".[br0," + beyond + "]")}));
}

TEST_F(AddEdgePortByconfigTest, TheLimitHoldsForAFirstNameToo)
{
    Put(kBridgeFile, "stp_state = 1d\n");
    const std::string longest(253, 'x');
    const std::string beyond = longest + "x";
    EXPECT_FALSE(AddEdgePortByconfig("br0", beyond.c_str()));
    EXPECT_EQ(TraceOf({"fopen"}), kNothing);
    EXPECT_EQ(Log(),
              LogLines{Error("AddEdgePortByconfig", "value is too long .[br0," + beyond + "]")});

    ClearLog();
    EXPECT_TRUE(AddEdgePortByconfig("br0", longest.c_str()));
    EXPECT_EQ(Get(kBridgeFile), "stp_state = 1d\nSSIF_EDGE[0] = " + std::string(240, 'x'));
    EXPECT_EQ(Log(), kSilence);
}

TEST_F(AddEdgePortByconfigTest, AnEmptyNameIsAppendedToo)
{
    Put(kBridgeFile, "SSIF_EDGE[0] = eth1\n");
    EXPECT_TRUE(AddEdgePortByconfig("br0", ""));
    EXPECT_EQ(Get(kBridgeFile), "SSIF_EDGE[0] = eth1,\n");
    EXPECT_EQ(Log(), kSilence);
}

TEST_F(AddEdgePortByconfigTest, ANameWithoutAThirdCharacterLeavesItsPlaceEmpty)
{
    // Buffers of the exact size: nothing behind the terminator is looked at.
    const char two[] = "br";
    const char one[] = "b";
    const char none[] = "";
    for (const char* name : {two, one, none}) {
        Put(kBridgeFile, "");
        EXPECT_TRUE(AddEdgePortByconfig(name, "eth1"));
        EXPECT_EQ(Get(kBridgeFile), "SSIF_EDGE[ = eth1\n");
        EXPECT_TRUE(IsEdgePortByconfig(name, "eth1"));
    }
}

TEST_F(AddEdgePortByconfigTest, TellsAWriteThatFails)
{
    Put(kBridgeFile, "SSIF_EDGE[0] = eth1\n");
    bool added = false;
    FailEachCall([&] { added = AddEdgePortByconfig("br0", "eth2"); },
                 [&](const std::string& failed) {
                     const std::string file = kBridgeFile;
                     EXPECT_EQ(added, failed != "fopen " + file + " w+");
                     const bool unread =
                         failed == "open " + file + " O_RDONLY" || failed == "pread " + file;
                     if (failed == "fflush " + file) return;  // never came to the disk
                     EXPECT_EQ(Get(file), unread  ? "SSIF_EDGE[0] = eth2\n"
                                          : added ? "SSIF_EDGE[0] = eth1,eth2\n"
                                                  : "SSIF_EDGE[0] = eth1\n");
                 });
}

class DelEdgePortByconfigTest : public World {};

TEST_F(DelEdgePortByconfigTest, ACardGoesWithOneComma)
{
    const std::vector<std::array<std::string, 3>> removals = {
        {"eth1,eth2,eth3", "eth1", "eth2,eth3"},
        {"eth1,eth2,eth3", "eth2", "eth1,eth3"},
        {"eth1,eth2,eth3", "eth3", "eth1,eth2"},
        {"eth1,eth2", "eth1", "eth2"},
        {"eth1,eth2", "eth2", "eth1"},
        {"eth1", "eth1", ""},
        {"eth10,eth1", "eth1", "eth10"},
        {"eth1,eth1", "eth1", "eth1"},
        {"eth1,", "eth1", ""},
        {",eth1", "eth1", ""}};
    for (const auto& [list, card, rest] : removals) {
        Put(kBridgeFile, Settings({"SSIF_EDGE[0] = " + list, "SSIF_EDGE[1] = eth1"}));
        EXPECT_TRUE(DelEdgePortByconfig("br0", card.c_str()));
        EXPECT_EQ(Get(kBridgeFile), Settings({"SSIF_EDGE[0] = " + rest, "SSIF_EDGE[1] = eth1"}));
    }
    EXPECT_EQ(Log(), kSilence);
}

TEST_F(DelEdgePortByconfigTest, TheLastCardLeavesAnEmptyListThatHasNone)
{
    Put(kBridgeFile, "SSIF_EDGE[0] = eth1\n");
    EXPECT_TRUE(DelEdgePortByconfig("br0", "eth1"));
    EXPECT_EQ(Get(kBridgeFile), "SSIF_EDGE[0] = \n");
    EXPECT_FALSE(IsEdgePortByconfig("br0", "eth1"));
    EXPECT_EQ(Log(), LogLines{Empty("SSIF_EDGE[0]", kBridgeFile)});
}

TEST_F(DelEdgePortByconfigTest, ABridgeWithoutAListGetsAnEmptyOne)
{
    EXPECT_TRUE(DelEdgePortByconfig("br0", "eth1"));
    EXPECT_EQ(Get(kBridgeFile), "SSIF_EDGE[0] = \n");
    EXPECT_EQ(Log(), LogLines{Error("SetValueByKey",
                                    "cannot fopen for read.[No such file or directory]")});
}

TEST_F(DelEdgePortByconfigTest, ACardThatIsNoneChangesNothing)
{
    Put(kBridgeFile, "SSIF_EDGE[0] = eth10,eth2\n");
    EXPECT_TRUE(DelEdgePortByconfig("br0", "eth1"));
    EXPECT_EQ(Get(kBridgeFile), "SSIF_EDGE[0] = eth10,eth2\n");
    EXPECT_EQ(TraceOf({"fopen"}), kNothing);
    EXPECT_EQ(Log(), (LogLines{NotIn("eth1", "eth10,eth2"),
                               Warn("DelEdgePortByconfig", "eth1 is not the edgeport of br0")}));
}

TEST_F(DelEdgePortByconfigTest, AnEmptyNameIsNoEdgePort)
{
    Put(kBridgeFile, "SSIF_EDGE[0] = eth1,,eth2\n");
    EXPECT_TRUE(DelEdgePortByconfig("br0", ""));
    EXPECT_EQ(Get(kBridgeFile), "SSIF_EDGE[0] = eth1,,eth2\n");
    EXPECT_EQ(Log(), LogLines{Warn("DelEdgePortByconfig", " is not the edgeport of br0")});
}

TEST_F(DelEdgePortByconfigTest, TellsAWriteThatFails)
{
    Put(kBridgeFile, "SSIF_EDGE[0] = eth1,eth2\n");
    bool removed = false;
    FailEachCall([&] { removed = DelEdgePortByconfig("br0", "eth1"); },
                 [&](const std::string& failed) {
                     const std::string file = kBridgeFile;
                     EXPECT_EQ(removed, failed != "fopen " + file + " w+");
                     const bool unread =
                         failed == "open " + file + " O_RDONLY" || failed == "pread " + file;
                     if (failed == "fflush " + file) return;  // never came to the disk
                     EXPECT_EQ(Get(file), unread    ? "SSIF_EDGE[0] = \n"
                                          : removed ? "SSIF_EDGE[0] = eth2\n"
                                                    : "SSIF_EDGE[0] = eth1,eth2\n");
                 });
}

class IsEdgePortByconfigTest : public World {};

TEST_F(IsEdgePortByconfigTest, OnlyAWholeNameOfThatBridgeIs)
{
    Put(kBridgeFile, Settings({"SSIF_EDGE[0] = eth10,eth2", "SSIF_EDGE[1] = eth1"}));
    EXPECT_TRUE(IsEdgePortByconfig("br0", "eth10"));
    EXPECT_TRUE(IsEdgePortByconfig("br0", "eth2"));
    EXPECT_TRUE(IsEdgePortByconfig("br1", "eth1"));
    EXPECT_EQ(Log(), kSilence);
    EXPECT_FALSE(IsEdgePortByconfig("br0", "eth1"));
    EXPECT_FALSE(IsEdgePortByconfig("br1", "eth2"));
    EXPECT_EQ(Log(), (LogLines{NotIn("eth1", "eth10,eth2"), NotIn("eth2", "eth1")}));
    EXPECT_FALSE(IsEdgePortByconfig("br2", "eth1"));
}

// ---- spanning tree

class BridgeStpModeByConfigTest : public World {};

TEST_F(BridgeStpModeByConfigTest, IsSavedWithTheLetterDBehindIt)
{
    Put(kBridgeFile, "");
    for (const int mode : {0, 1, 2, 255}) {
        EXPECT_TRUE(SetBridgeStpModeByConfig("br0", static_cast<unsigned char>(mode)));
        EXPECT_EQ(Get(kBridgeFile), "stp_state = " + std::to_string(mode) + "d\n");
        EXPECT_EQ(ReadStpMode(), "1 " + std::to_string(mode));
    }
    EXPECT_EQ(Log(), kSilence);
}

TEST_F(BridgeStpModeByConfigTest, IsOneForAllBridges)
{
    Put(kBridgeFile, "");
    EXPECT_TRUE(SetBridgeStpModeByConfig("br0", 1));
    EXPECT_TRUE(SetBridgeStpModeByConfig("br1", 2));
    EXPECT_EQ(Get(kBridgeFile), "stp_state = 2d\n");
    EXPECT_EQ(ReadStpMode(), "1 2");
}

TEST_F(BridgeStpModeByConfigTest, IsTheLowByteOfWhateverStandsThere)
{
    const std::vector<std::pair<std::string, int>> numbers = {
        {"2", 2}, {"257", 1}, {"-1", 255}, {"on", 0}, {std::string(200, '0') + "3d", 3}};
    for (const auto& [text, number] : numbers) {
        Put(kBridgeFile, "stp_state = " + text + "\n");
        EXPECT_EQ(ReadStpMode(), "1 " + std::to_string(number));
    }
    EXPECT_EQ(Log(), kSilence);
}

TEST_F(BridgeStpModeByConfigTest, TellsThatNoneIsSaved)
{
    const LogLine none = Error("GetBridgeStpModeByConfig", "get stp_state faild.");
    EXPECT_EQ(ReadStpMode(), "0 77");
    EXPECT_EQ(Log(), LogLines{none});
    ClearLog();
    Put(kBridgeFile, "stp_state = \n");
    EXPECT_EQ(ReadStpMode(), "0 77");
    EXPECT_EQ(Log(), (LogLines{Empty("stp_state", kBridgeFile), none}));
}

TEST_F(BridgeStpModeByConfigTest, NeedsAPlaceOnlyToStoreIt)
{
    EXPECT_FALSE(GetBridgeStpModeByConfig("br0", nullptr));
    EXPECT_EQ(Log(), LogLines{Error("GetBridgeStpModeByConfig", "get stp_state faild.")});
    ClearLog();
    Put(kBridgeFile, "stp_state = 1d\n");
    EXPECT_FALSE(GetBridgeStpModeByConfig("br0", nullptr));
    EXPECT_EQ(Log(), kSilence);
}

TEST_F(BridgeStpModeByConfigTest, FailsOnlyWithItsRead)
{
    Put(kBridgeFile, "stp_state = 1d\n");
    std::string mode;
    FailEachCall([&] { mode = ReadStpMode(); },
                 [&](const std::string& failed) {
                     const std::string file = kBridgeFile;
                     const bool unread =
                         failed == "open " + file + " O_RDONLY" || failed == "pread " + file;
                     EXPECT_EQ(mode, unread ? "0 77" : "1 1");
                 });
}

// ---- letter and ports

class SetBridgeIDByConfigTest : public World {};

TEST_F(SetBridgeIDByConfigTest, IsTheThirdCharacterOfTheName)
{
    const char two[] = "br";
    const char one[] = "b";
    const char none[] = "";
    const std::vector<std::pair<const char*, std::string>> letters = {
        {"br0", "0"}, {"br12", "1"}, {"nbp0", "p"}, {two, ""}, {one, ""}, {none, ""}};
    Put(kBridgeFile, "");
    for (const auto& [name, letter] : letters) {
        EXPECT_TRUE(SetBridgeIDByConfig(name));
        EXPECT_EQ(Get(kBridgeFile), "BRIDGES = " + letter + "\n");
    }
    EXPECT_EQ(Log(), kSilence);
}

class SetBridgePortListByConfigTest : public World {
protected:
    static bool SavePorts(const Texts& names)
    {
        return SetBridgePortListByConfig("br0", Pointers(names).data(),
                                         static_cast<int>(names.size()));
    }
};

TEST_F(SetBridgePortListByConfigTest, NoNumberIsRefused)
{
    EXPECT_FALSE(SavePorts({}));
    EXPECT_EQ(Trace(), kNothing);
    EXPECT_EQ(Log(), kSilence);
}

TEST_F(SetBridgePortListByConfigTest, ANegativeNumberIsAnEmptyList)
{
    Put(kBridgeFile, "SSIF = eth0\n");
    for (const int num : {-1, INT_MIN}) {
        EXPECT_TRUE(SetBridgePortListByConfig("br0", Pointers({}).data(), num));
        EXPECT_EQ(Get(kBridgeFile), "SSIF = \n");
    }
}

TEST_F(SetBridgePortListByConfigTest, NamesAreJoinedAsTheyAre)
{
    Put(kBridgeFile, "");
    EXPECT_TRUE(SavePorts({"eth1"}));
    EXPECT_EQ(Get(kBridgeFile), "SSIF = eth1\n");
    EXPECT_TRUE(SavePorts({"eth1", "", "eth0"}));
    EXPECT_EQ(Get(kBridgeFile), "SSIF = eth1,,eth0\n");
    EXPECT_TRUE(SavePorts({""}));
    EXPECT_EQ(Get(kBridgeFile), "SSIF = \n");
}

TEST_F(SetBridgePortListByConfigTest, WhatDoesNotFitIsCut)
{
    constexpr size_t kRoom = kLineLimit - 7;  // behind "SSIF = "
    for (const size_t length :
         {kRoom - 1, kRoom, kRoom + 1, size_t{254}, size_t{255}, size_t{256}, size_t{5000}}) {
        Put(kBridgeFile, "");
        const Texts names = NamesOfLength(length);
        EXPECT_TRUE(SavePorts(names));
        EXPECT_EQ(Get(kBridgeFile), ("SSIF = " + Join(names) + "\n").substr(0, kLineLimit));
    }
    EXPECT_EQ(Log(), kSilence);
}

TEST_F(SetBridgePortListByConfigTest, ReplacesTheFirstLineThatHoldsTheKey)
{
    Put(kBridgeFile, Settings({"stp_state = 1d", "SSIF_EDGE[0] = eth1", "SSIF = eth0"}));
    EXPECT_TRUE(SavePorts({"eth2", "eth3"}));
    EXPECT_EQ(Get(kBridgeFile), Settings({"stp_state = 1d", "SSIF = eth2,eth3", "SSIF = eth0"}));
}

}  // namespace
