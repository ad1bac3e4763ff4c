// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The saved settings of bridges, in the file that they share: edge ports, spanning tree, letter and
// ports.

#include "Config.h"

#include "NameTexts.h"
#include "SettingLog.h"
#include "SettingRows.h"

#include <array>
#include <climits>

using namespace fake;

namespace {

constexpr char kBridgeFile[] = "/mnt/mtd/Config/rsbridgeinit.conf";

constexpr int kLineLimit = 255;

LogLine NotIn(const std::string& word, const std::string& list)
{
    return Info("FindWordInLine", "can not find " + word + " in " + list);
}

std::string ReadStpMode()
{
    unsigned char mode = 77;
    const bool result = GetBridgeStpModeByConfig("br0", &mode);
    return (result ? "1 " : "0 ") + std::to_string(mode);
}

// ---- what all settings have in common

INSTANTIATE_TEST_SUITE_P(
    OfABridge, EverySavedSettingTest,
    testing::Values(
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

INSTANTIATE_TEST_SUITE_P(OfABridge, EveryReadSettingTest,
                         testing::Values(ReadSetting{
                             "EdgePort",
                             [] {
                                 return std::string(IsEdgePortByconfig("br0", "eth1") ? "1" : "0");
                             },
                             kBridgeFile,
                             {"SSIF_EDGE[0] = eth0,eth1"},
                             "1",
                             "0"}),
                         RowName<ReadSetting>);

class BridgeSettingsTest : public World {};

TEST_F(BridgeSettingsTest, NullIsRefusedBeforeAnythingIsTouched)
{
    unsigned char byte = 0;
    const char* names[] = {"eth0"};

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
    EXPECT_EQ(Log(), LogLines{EmptyValue("SSIF_EDGE[0]", kBridgeFile)});
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
    EXPECT_EQ(Log(), LogLines{EmptyValue("SSIF_EDGE[0]", kBridgeFile)});
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
    EXPECT_EQ(Log(), (LogLines{EmptyValue("stp_state", kBridgeFile), none}));
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

TEST_F(SetBridgePortListByConfigTest, AListWithoutOneOfItsNamesIsRefused)
{
    const char* names[] = {"eth0", nullptr, "eth1"};
    EXPECT_FALSE(SetBridgePortListByConfig("br0", names, 3));
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

TEST_F(SetBridgePortListByConfigTest, AListIsCutAt255CharactersAndLosesItsLast)
{
    std::string full;
    for (int i = 0; i < 16; ++i) full += "MTU = 1500\n";
    Put(kBridgeFile, full);
    const std::string name(260, 'e');
    EXPECT_FALSE(SavePorts({name}));
    EXPECT_EQ(Log().back().text, "can not set SSIF = " + name.substr(0, 254) +
                                     ", too many lines [16] max line num is 16");
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
