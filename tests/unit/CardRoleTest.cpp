// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// What a card is for: the default card, its work mode, and the old kind of bond files.

#include "Config.h"

#include "SettingLog.h"

#include <cerrno>
#include <climits>
#include <cstring>

using namespace fake;

namespace {

constexpr char kFile[] = "/mnt/mtd/Config/network1";  // of eth1
constexpr char kDefaultFile[] = "/mnt/mtd/Config/network";
constexpr char kBondFile[] = "/mnt/mtd/Config/networkbond0";

const LogLine kNoneFound = Error("GetDefaultEthByConfig", "can not find default eth in config");
const LogLine kNoFileYet =
    Error("SetValueByKey", "cannot fopen for read.[No such file or directory]");

LogLine Forced(const std::string& card)
{
    return Info("GetDefaultEthByConfig", "default card force use " + card);
}

// ---- finding the default card

class GetDefaultEthByConfigTest : public World {
protected:
    /// The answer, or "(none)" with a buffer that was not touched.
    static std::string Default(int len = 16)
    {
        char name[64] = "before";
        const bool result = GetDefaultEthByConfig(name, len);
        if (result) return name;
        EXPECT_STREQ(name, "before");
        return "(none)";
    }

    static void SaveDefault(const std::string& card)
    {
        Put(kDefaultFile, "DEFAULT_ETH = " + card + "\n");
    }

    static void SavePrio(const std::string& file, const std::string& prio)
    {
        Put("/mnt/mtd/Config/" + file, "PRIO = " + prio + "\n");
    }
};

TEST_F(GetDefaultEthByConfigTest, TheSavedNameWins)
{
    SaveDefault("bond0");
    SavePrio("network1", "0");
    EXPECT_EQ(Default(), "bond0");
    EXPECT_EQ(Log(), kSilence);
    EXPECT_EQ(TraceOf({"opendir", "open /proc"}), kNothing);
}

TEST_F(GetDefaultEthByConfigTest, TheSavedNameNeedsNoInterface)
{
    kernel.Add("eth0");
    SaveDefault("eth7");
    EXPECT_EQ(Default(), "eth7");
}

TEST_F(GetDefaultEthByConfigTest, TheSavedNameFillsItsBufferToTheLastByte)
{
    SaveDefault("bond0");
    EXPECT_EQ(Default(6), "bond0");
    SaveDefault("a-name-beyond-any-card");
    EXPECT_EQ(Default(23), "a-name-beyond-any-card");
    EXPECT_EQ(Log(), kSilence);
}

TEST_F(GetDefaultEthByConfigTest, ASavedNameThatDoesNotFitFallsToTheSearch)
{
    SaveDefault("bond0");
    SavePrio("network1", "0");
    EXPECT_EQ(Default(5), "eth1");
    EXPECT_EQ(Log(), LogLines{TooLong("bond0")});
}

TEST_F(GetDefaultEthByConfigTest, AnEmptySavedNameFallsToTheSearch)
{
    SaveDefault("");
    SavePrio("network1", "0");
    EXPECT_EQ(Default(), "eth1");
    EXPECT_EQ(Log(), LogLines{Warn("GetValueByKey", std::string("the DEFAULT_ETH from ") +
                                                        kDefaultFile + " is empty.")});
}

TEST_F(GetDefaultEthByConfigTest, ABufferWithoutASizeIsNotTouched)
{
    SaveDefault("bond0");
    SavePrio("network1", "0");
    for (const int len : {0, -1, INT_MIN}) {
        ClearLog();
        EXPECT_EQ(Default(len), "(none)");
        EXPECT_EQ(Log(), LogLines{TooLong("bond0")});
    }
}

TEST_F(GetDefaultEthByConfigTest, AVlanThatIsThereIsKept)
{
    kernel.Add("eth0");
    kernel.Add("eth1.100");
    SaveDefault("eth1.100");
    EXPECT_EQ(Default(), "eth1.100");
    EXPECT_EQ(Log(), kSilence);
}

TEST_F(GetDefaultEthByConfigTest, AVlanIsFoundInsideALongerName)
{
    kernel.Add("eth1.1000");
    SaveDefault("eth1.100");
    EXPECT_EQ(Default(), "eth1.100");
}

TEST_F(GetDefaultEthByConfigTest, TheParentStandsInForAVlanThatHasGone)
{
    kernel.Add("eth1");
    SaveDefault("eth1.100");
    EXPECT_EQ(Default(), "eth1");
    EXPECT_EQ(Log(), LogLines{Forced("eth1")});
    EXPECT_EQ(Get(kDefaultFile), "DEFAULT_ETH = eth1.100\n");
}

TEST_F(GetDefaultEthByConfigTest, TheParentEndsAtTheFirstDot)
{
    SaveDefault("eth1.100.2");
    EXPECT_EQ(Default(), "eth1");
    SaveDefault(".100");
    EXPECT_EQ(Default(), "");
    EXPECT_EQ(Log(), (LogLines{Forced("eth1"), Forced("")}));
}

TEST_F(GetDefaultEthByConfigTest, AnUnreadableInterfaceTableCountsAsGone)
{
    kernel.Add("eth1.100");
    SaveDefault("eth1.100");
    Fail("open /proc/net/dev", EACCES);
    EXPECT_EQ(Default(), "eth1");
    EXPECT_EQ(Log(),
              (LogLines{Error("GetSpecifiedInterfaceInfo", "Open file /proc/net/dev failed!"),
                        Forced("eth1")}));
}

TEST_F(GetDefaultEthByConfigTest, AFileTellsItsCard)
{
    const std::vector<std::pair<std::string, std::string>> cards = {
        {"network", "eth0"},       {"network1", "eth1"},  {"networketh2", "eth2"},
        {"networkbond0", "bond0"}, {"networkbr0", "br0"}, {"networkwlan0", "wlan0"},
        {"network10", "10"},       {"network2", "2"}};
    for (const auto& [file, card] : cards) {
        SavePrio(file, "0");
        EXPECT_EQ(Default(), card) << file;
        Remove("/mnt/mtd/Config/" + file);
    }
    EXPECT_EQ(Log(), kSilence);
}

TEST_F(GetDefaultEthByConfigTest, OnlyTheFirstCharacterOfThePrioCounts)
{
    SavePrio("network1", "10");
    EXPECT_EQ(Default(), "(none)");
    SavePrio("network1", "01");
    EXPECT_EQ(Default(), "eth1");
    SavePrio("network1", "0no");
    EXPECT_EQ(Default(), "eth1");
    EXPECT_EQ(Log(), LogLines{kNoneFound});
}

TEST_F(GetDefaultEthByConfigTest, APrioOfMoreThanThreeCharactersIsPassedOver)
{
    SavePrio("network1", "0000");
    EXPECT_EQ(Default(), "(none)");
    EXPECT_EQ(Log(), (LogLines{TooLong("0000"), kNoneFound}));
}

TEST_F(GetDefaultEthByConfigTest, FilesWithoutThePrioArePassedOver)
{
    Put(kDefaultFile, "MTU = 1500\n");
    Put(kFile, "");
    SavePrio("networkbond0", "1");
    EXPECT_EQ(Default(), "(none)");
    SavePrio("networkbond1", "0");
    EXPECT_EQ(Default(), "bond1");
    EXPECT_EQ(Log(), LogLines{kNoneFound});
}

TEST_F(GetDefaultEthByConfigTest, TheFirstListedFileWins)
{
    for (const char* file : {"networkbond0", "networkbond1", "networkbond2", "networkbond3"}) {
        SavePrio(file, "0");
    }
    char files[32][64];
    int count = 32;
    ASSERT_TRUE(GetAllNetworkFile(files, &count));
    EXPECT_EQ(Default(), std::string(files[0]).substr(strlen("network")));
    SavePrio(files[0], "1");
    EXPECT_EQ(Default(), std::string(files[1]).substr(strlen("network")));
}

TEST_F(GetDefaultEthByConfigTest, TheIPv6FilesAreNotSearched)
{
    SavePrio("networkip6", "0");
    SavePrio("networkip61", "0");
    EXPECT_EQ(Default(), "(none)");
}

TEST_F(GetDefaultEthByConfigTest, AFoundVlanThatHasGoneIsCutToo)
{
    SavePrio("networketh1.100", "0");
    EXPECT_EQ(Default(), "eth1");
    EXPECT_EQ(Log(), LogLines{Forced("eth1")});
    ClearLog();
    kernel.Add("eth1.100");
    EXPECT_EQ(Default(), "eth1.100");
    EXPECT_EQ(Log(), kSilence);
}

TEST_F(GetDefaultEthByConfigTest, AFoundNameIsCutToItsBuffer)
{
    SavePrio("networkbond0", "0");
    char name[8];
    memset(name, '#', sizeof(name));
    EXPECT_TRUE(GetDefaultEthByConfig(name, 4));
    EXPECT_STREQ(name, "bon");
    EXPECT_EQ(name[4], '#');
    EXPECT_TRUE(GetDefaultEthByConfig(name, 1));
    EXPECT_STREQ(name, "");
    EXPECT_EQ(name[1], 'o');
    EXPECT_TRUE(GetDefaultEthByConfig(name, 6));
    EXPECT_STREQ(name, "bond0");
}

TEST_F(GetDefaultEthByConfigTest, AFileWithAnOldNameIsFoundUnderItsPresentOne)
{
    SavePrio("networketh2", "0");
    SavePrio("network2", "0");
    EXPECT_EQ(Default(), "eth2");
    Remove("/mnt/mtd/Config/networketh2");
    SavePrio("networketh2", "0");  // now the later one of the two
    EXPECT_EQ(Default(), "eth2");
    EXPECT_EQ(Log(), kSilence);
}

TEST_F(GetDefaultEthByConfigTest, AFoundNameNeedsABuffer)
{
    SavePrio("networkbond0", "0");
    for (const int len : {0, -1, INT_MIN}) EXPECT_EQ(Default(len), "(none)") << len;
    EXPECT_EQ(Log(), kSilence);
}

TEST_F(GetDefaultEthByConfigTest, ThirtyTwoFilesAreSearched)
{
    for (int i = 0; i < 31; ++i) SavePrio("networkbond" + std::to_string(i), "1");
    SavePrio("networkwlan0", "0");
    EXPECT_EQ(Default(), "wlan0");
    for (int i = 31; i < 64; ++i) SavePrio("networkbond" + std::to_string(i), "1");
    char files[33][64];
    int count = 33;
    ASSERT_TRUE(GetAllNetworkFile(files, &count));
    for (int i = 0; i < 32; ++i) SavePrio(files[i], "1");
    SavePrio(files[32], "0");
    EXPECT_EQ(Default(), "(none)");
    EXPECT_EQ(Log(), LogLines{kNoneFound});
}

TEST_F(GetDefaultEthByConfigTest, FailsWithoutTheFolder)
{
    Remove("/mnt/mtd/Config");
    EXPECT_EQ(Default(), "(none)");
    EXPECT_EQ(Log(), LogLines{Error("GetAllNetworkFile", "can not open /mnt/mtd/Config")});
}

TEST_F(GetDefaultEthByConfigTest, FindsACardUnlessItsReadFails)
{
    kernel.Add("eth1.100");
    Put(kFile, Settings({"PRIO = 0"}));
    Put(kDefaultFile, Settings({"DEFAULT_ETH = eth1.100", "PRIO = 1"}));
    std::string found;
    FailEachCall([&] { found = Default(); },
                 [&](const std::string& failed) {
                     const bool nameUnread =
                         failed == std::string("open ") + kDefaultFile + " O_RDONLY" ||
                         failed == std::string("pread ") + kDefaultFile;
                     const bool tableUnread = failed == "open /proc/net/dev O_RDONLY";
                     if (failed == "pread /proc/net/dev") return;  // behind the card or before it
                     EXPECT_EQ(found, nameUnread || tableUnread ? "eth1" : "eth1.100");
                 });
}

TEST_F(GetDefaultEthByConfigTest, TheSearchHoldsNothingWhateverFails)
{
    SavePrio("networkbond0", "0");
    const std::string file = kBondFile;
    std::string found;
    FailEachCall([&] { found = Default(); },
                 [&](const std::string& failed) {
                     const bool unlisted = failed == "opendir /mnt/mtd/Config" ||
                                           failed == "readdir" || failed == "stat " + file;
                     const bool unread =
                         failed == "open " + file + " O_RDONLY" || failed == "pread " + file;
                     // One of the entries that cannot be read may be "." or "..".
                     if (failed == "readdir") return;
                     EXPECT_EQ(found, unlisted || unread ? "(none)" : "bond0");
                 });
}

// ---- saving the default card

class SetDefaultEthByConfigTest : public World {};

TEST_F(SetDefaultEthByConfigTest, OneCardIsTheDefaultAndAllOthersAreNot)
{
    Put(kDefaultFile, Settings({"HOSTIP = 10.0.0.2", "DEFAULT_ETH = eth0", "PRIO = 0"}));
    Put(kFile, Settings({"PRIO = 1", "MTU = 1500"}));
    Put(kBondFile, Settings({"BONDMODE = 1"}));
    EXPECT_TRUE(SetDefaultEthByConfig("eth1"));
    EXPECT_EQ(Get(kDefaultFile), Settings({"HOSTIP = 10.0.0.2", "DEFAULT_ETH = eth1", "PRIO = 1"}));
    EXPECT_EQ(Get(kFile), Settings({"PRIO = 0", "MTU = 1500"}));
    EXPECT_EQ(Get(kBondFile), Settings({"BONDMODE = 1", "PRIO = 1"}));
    EXPECT_EQ(Log(), kSilence);
}

TEST_F(SetDefaultEthByConfigTest, Eth0CanBeTheDefault)
{
    Put(kDefaultFile, Settings({"DEFAULT_ETH = eth1", "PRIO = 1"}));
    Put(kFile, "PRIO = 0\n");
    EXPECT_TRUE(SetDefaultEthByConfig("eth0"));
    EXPECT_EQ(Get(kDefaultFile), Settings({"DEFAULT_ETH = eth0", "PRIO = 0"}));
    EXPECT_EQ(Get(kFile), "PRIO = 1\n");
}

TEST_F(SetDefaultEthByConfigTest, TheNameIsWrittenFirstAndTheCardsOwnFileLast)
{
    Put(kDefaultFile, "PRIO = 0\n");
    Put(kFile, "PRIO = 1\n");
    ClearTrace();
    EXPECT_TRUE(SetDefaultEthByConfig("eth1"));
    char files[32][64];
    int count = 32;
    const auto writes = TraceOf({std::string("fopen ") + kDefaultFile + " w+",
                                 std::string("fopen ") + kFile + " w+", "opendir"});
    ASSERT_TRUE(GetAllNetworkFile(files, &count));
    ASSERT_EQ(count, 2);
    const std::string folder = "/mnt/mtd/Config/";
    EXPECT_EQ(writes, (std::vector<std::string>{std::string("fopen ") + kDefaultFile + " w+",
                                                "opendir /mnt/mtd/Config",
                                                "fopen " + folder + files[0] + " w+",
                                                "fopen " + folder + files[1] + " w+",
                                                std::string("fopen ") + kFile + " w+"}));
}

TEST_F(SetDefaultEthByConfigTest, ACardWithoutAFileGetsOne)
{
    Put(kDefaultFile, "PRIO = 0\n");
    EXPECT_TRUE(SetDefaultEthByConfig("bond0"));
    EXPECT_EQ(Get(kDefaultFile), Settings({"PRIO = 1", "DEFAULT_ETH = bond0"}));
    EXPECT_EQ(Get(kBondFile), "PRIO = 0\n");
    EXPECT_EQ(Log(), LogLines{kNoFileYet});
}

TEST_F(SetDefaultEthByConfigTest, TheFileOfEth0IsCreatedForTheName)
{
    Put(kFile, "PRIO = 0\n");
    EXPECT_TRUE(SetDefaultEthByConfig("eth1"));
    EXPECT_EQ(Get(kDefaultFile), Settings({"DEFAULT_ETH = eth1", "PRIO = 1"}));
    EXPECT_EQ(Get(kFile), "PRIO = 0\n");
    EXPECT_EQ(Log(), LogLines{kNoFileYet});
}

TEST_F(SetDefaultEthByConfigTest, TheIPv6FilesAreLeftAlone)
{
    Put(kDefaultFile, "");
    Put("/mnt/mtd/Config/networkip6", "HOSTIP = fd00::2\n");
    Put("/mnt/mtd/Config/resolv.conf", "nameserver 8.8.8.8\n");
    EXPECT_TRUE(SetDefaultEthByConfig("eth0"));
    EXPECT_EQ(Get("/mnt/mtd/Config/networkip6"), "HOSTIP = fd00::2\n");
    EXPECT_EQ(Get("/mnt/mtd/Config/resolv.conf"), "nameserver 8.8.8.8\n");
}

TEST_F(SetDefaultEthByConfigTest, ThirtyTwoFilesGetThePrio)
{
    Put(kDefaultFile, "");
    for (int i = 0; i < 39; ++i) Put("/mnt/mtd/Config/networkbond" + std::to_string(i), "");
    EXPECT_TRUE(SetDefaultEthByConfig("eth1"));
    int others = 0;
    for (int i = 0; i < 39; ++i) {
        if (Get("/mnt/mtd/Config/networkbond" + std::to_string(i)) == "PRIO = 1\n") ++others;
    }
    if (Get(kDefaultFile) == Settings({"DEFAULT_ETH = eth1", "PRIO = 1"})) ++others;
    EXPECT_EQ(others, 32);
    EXPECT_EQ(Get(kFile), "PRIO = 0\n");
}

TEST_F(SetDefaultEthByConfigTest, FailsWhenTheFolderCannotBeListed)
{
    Put(kDefaultFile, "PRIO = 0\n");
    Fail("opendir", EACCES);
    EXPECT_FALSE(SetDefaultEthByConfig("eth1"));
    EXPECT_EQ(Get(kDefaultFile), Settings({"PRIO = 0", "DEFAULT_ETH = eth1"}));
    EXPECT_FALSE(Exists(kFile));
    EXPECT_EQ(Log(), LogLines{Error("GetAllNetworkFile", "can not open /mnt/mtd/Config")});
}

TEST_F(SetDefaultEthByConfigTest, FailedWritesDoNotCount)
{
    Put(kDefaultFile, "PRIO = 0\n");
    FailAll(std::string("fopen ") + kDefaultFile + " w+", EROFS);
    FailAll(std::string("fopen ") + kFile + " w+", EROFS);
    EXPECT_TRUE(SetDefaultEthByConfig("eth1"));
    EXPECT_EQ(Get(kDefaultFile), "PRIO = 0\n");
    const LogLine refused = Error("SetValueByKey", "cannot fopen [Read-only file system]");
    EXPECT_EQ(Log(), (LogLines{refused, refused, kNoFileYet, refused}));
}

TEST_F(SetDefaultEthByConfigTest, GoesOnWhateverFailsButTheListing)
{
    Put(kDefaultFile, "PRIO = 0\n");
    Put(kFile, "PRIO = 1\n");
    bool saved = false;
    FailEachCall(
        [&] { saved = SetDefaultEthByConfig("eth1"); },
        [&](const std::string& failed) { EXPECT_EQ(saved, failed != "opendir /mnt/mtd/Config"); });
}

// ---- work mode

class GetWorkModeByConfigTest : public World {
protected:
    static int Mode(const char* card = "eth1")
    {
        NetWorkMode mode = netModeInvalid;
        EXPECT_TRUE(GetWorkModeByConfig(card, &mode));
        return mode;
    }

    const LogLine kNotRead = Error("GetWorkModeByConfig", "get eth1's workMode failed");
    const LogLine kRepaired = Info("GetWorkModeByConfig", "set eth1 work mode to netModeMultiple");
};

TEST_F(GetWorkModeByConfigTest, EveryNumberOfTheFileIsHandedOut)
{
    const std::vector<std::pair<std::string, int>> numbers = {
        {"0", 0}, {"1", 1}, {"3", 3}, {"4", 4}, {"6", 6}, {"3abc", 3}, {"9999999", 9999999}};
    for (const auto& [text, number] : numbers) {
        Put(kFile, "WORKMODE = " + text + "\n");
        EXPECT_EQ(Mode(), number);
        EXPECT_EQ(Get(kFile), "WORKMODE = " + text + "\n");
    }
    EXPECT_EQ(Log(), kSilence);
}

TEST_F(GetWorkModeByConfigTest, WhatIsNoNumberIsReplacedWhereItStood)
{
    for (const char* text : {"x", "-1", "x1"}) {
        ClearLog();
        Put(kFile, Settings({"MTU = 1500", std::string("WORKMODE = ") + text, "BONDED = 0"}));
        EXPECT_EQ(Mode(), netModeMultiple);
        EXPECT_EQ(Get(kFile), Settings({"MTU = 1500", "WORKMODE = 0", "BONDED = 0"}));
        EXPECT_EQ(Log(), LogLines{kRepaired});
    }
}

TEST_F(GetWorkModeByConfigTest, AMissingModeIsWrittenByItsFirstRead)
{
    Put(kFile, "MTU = 1500\n");
    EXPECT_EQ(Mode(), netModeMultiple);
    EXPECT_EQ(Get(kFile), Settings({"MTU = 1500", "WORKMODE = 0"}));
    EXPECT_EQ(Log(), (LogLines{kNotRead, kRepaired}));
    ClearLog();
    EXPECT_EQ(Mode(), netModeMultiple);
    EXPECT_EQ(Log(), kSilence);
}

TEST_F(GetWorkModeByConfigTest, ACardWithoutAFileGetsOne)
{
    EXPECT_EQ(Mode(), netModeMultiple);
    EXPECT_EQ(Get(kFile), "WORKMODE = 0\n");
    EXPECT_EQ(Log(), (LogLines{kNotRead, kRepaired, kNoFileYet}));
}

TEST_F(GetWorkModeByConfigTest, ATextOfMoreThanSevenCharactersIsReplaced)
{
    for (const char* text : {"12345678", "4294967294", "4294967299", "18446744073709551619"}) {
        ClearLog();
        Put(kFile, std::string("WORKMODE = ") + text + "\n");
        EXPECT_EQ(Mode(), netModeMultiple);
        EXPECT_EQ(Get(kFile), "WORKMODE = 0\n");
        EXPECT_EQ(Log(), (LogLines{TooLong(text), kNotRead, kRepaired}));
    }
}

TEST_F(GetWorkModeByConfigTest, NeverFailsForAName)
{
    Put(kFile, "WORKMODE = x\n");
    int mode = netModeInvalid;
    FailEachCall([&] { mode = Mode(); },
                 [&](const std::string&) { EXPECT_EQ(mode, netModeMultiple); });
}

TEST_F(GetWorkModeByConfigTest, WithoutAPlaceForItTheModeIsReadAndNotRepaired)
{
    Put(kFile, "WORKMODE = 1\n");
    EXPECT_FALSE(GetWorkModeByConfig("eth1", nullptr));
    EXPECT_EQ(Log(), kSilence);
    Put(kFile, "MTU = 1500\n");
    EXPECT_FALSE(GetWorkModeByConfig("eth1", nullptr));
    EXPECT_EQ(Get(kFile), "MTU = 1500\n");
    EXPECT_EQ(Log(), LogLines{kNotRead});
}

class SetWorkModeByConfigTest : public World {};

TEST_F(SetWorkModeByConfigTest, ZeroToThreeAreSaved)
{
    Put(kFile, "");
    for (const NetWorkMode mode : {netModeMultiple, netModeBond, netModeSwitch, netModeBridge}) {
        EXPECT_TRUE(SetWorkModeByConfig("eth1", mode));
        EXPECT_EQ(Get(kFile), "WORKMODE = " + std::to_string(mode) + "\n");
    }
    EXPECT_EQ(Log(), kSilence);
}

TEST_F(SetWorkModeByConfigTest, OtherModesAreRefusedInSilence)
{
    for (const int mode :
         {INT_MIN, static_cast<int>(netModeInvalid), static_cast<int>(netModeVlan),
          static_cast<int>(netModeVap), static_cast<int>(netModePhysical), 7, INT_MAX}) {
        EXPECT_FALSE(SetWorkModeByConfig("eth1", static_cast<NetWorkMode>(mode))) << mode;
    }
    EXPECT_EQ(Trace(), kNothing);
    EXPECT_EQ(Log(), kSilence);
}

// ---- old bond files

class IsTrunkBondConfigTest : public World {
protected:
    /// "trunk", "bond" or "(no)"; the latter with the flag untouched either way.
    static std::string Kind()
    {
        char bond[] = "bond0";
        bool fromTrue = true;
        bool fromFalse = false;
        if (!IsTrunkBondConfig(bond, &fromTrue)) {
            EXPECT_TRUE(fromTrue);
            EXPECT_FALSE(IsTrunkBondConfig(bond, &fromFalse));
            EXPECT_FALSE(fromFalse);
            return "(no)";
        }
        return fromTrue ? "trunk" : "bond";
    }

    const LogLine kAsked = Info("IsTrunkBondConfig", "IsTrunkBondConfig ifName: bond0");
};

TEST_F(IsTrunkBondConfigTest, AMemberListMakesABondOfToday)
{
    Put(kBondFile, Settings({"BONDMODE = 1", "BONDMEMBERS = eth0,eth1"}));
    EXPECT_EQ(Kind(), "bond");
    EXPECT_EQ(Log(), (LogLines{kAsked, Info("IsTrunkBondConfig", "Not Trunk config")}));
}

TEST_F(IsTrunkBondConfigTest, WithoutAMemberListItIsAnOldOne)
{
    Put(kBondFile, Settings({"BONDMODE = 1", "BONDNAME = bond0"}));
    EXPECT_EQ(Kind(), "trunk");
    EXPECT_EQ(Log(), (LogLines{kAsked, Info("IsTrunkBondConfig", "Is Trunk config")}));
}

TEST_F(IsTrunkBondConfigTest, TheKeyAloneCountsWhereverItStands)
{
    for (const char* text : {"BONDMEMBERS =\n", "xBONDMEMBERSx", "MTU = BONDMEMBERS\n",
                             "\nBONDMEMBERS = eth0\n", "# note\n\n \n\tBONDMEMBERS"}) {
        Put(kBondFile, text);
        EXPECT_EQ(Kind(), "bond") << text;
    }
}

TEST_F(IsTrunkBondConfigTest, AnEmptyFileIsAnOldOne)
{
    Put(kBondFile, "");
    EXPECT_EQ(Kind(), "trunk");
}

TEST_F(IsTrunkBondConfigTest, ThirtyTwoLinesAreLookedAt)
{
    std::string text;
    for (int i = 0; i < 31; ++i) text += "line\n";
    Put(kBondFile, text + "BONDMEMBERS = eth0\n");
    EXPECT_EQ(Kind(), "bond");
    Put(kBondFile, text + "line\nBONDMEMBERS = eth0\n");
    EXPECT_EQ(Kind(), "trunk");
}

TEST_F(IsTrunkBondConfigTest, ALongLineIsReadInPieces)
{
    Put(kBondFile, std::string(250, 'x') + "BONDMEMBERS = eth0\n");
    EXPECT_EQ(Kind(), "trunk");  // the key is torn
    Put(kBondFile, std::string(255, 'x') + "BONDMEMBERS = eth0\n");
    EXPECT_EQ(Kind(), "bond");
    Put(kBondFile, std::string(255 * 32, 'x') + "BONDMEMBERS = eth0\n");
    EXPECT_EQ(Kind(), "trunk");
}

TEST_F(IsTrunkBondConfigTest, ABondWithoutAFileIsNeither)
{
    EXPECT_EQ(Kind(), "(no)");
    const LogLine refused = Error("IsTrunkBondConfig", "cannot fopen [No such file or directory]");
    EXPECT_EQ(Log(), (LogLines{kAsked, refused, kAsked, refused}));
}

TEST_F(IsTrunkBondConfigTest, AFileThatCannotBeOpenedIsToldWithItsReason)
{
    Put(kBondFile, "BONDMEMBERS = eth0\n");
    for (const int reason : {EACCES, EMFILE, EIO, ENOENT}) {
        ClearLog();
        FailAll(std::string("open ") + kBondFile + " O_RDONLY", reason);
        EXPECT_EQ(Kind(), "(no)");
        FailNothing();
        const LogLine refused =
            Error("IsTrunkBondConfig", "cannot fopen [" + std::string(strerror(reason)) + "]");
        EXPECT_EQ(Log(), (LogLines{kAsked, refused, kAsked, refused}));
        EXPECT_EQ(HeldMutexes(), 0);
    }
}

/// It opens, and no line of it holds the key.
TEST_F(IsTrunkBondConfigTest, AFolderInTheFilesPlaceIsAnOldOne)
{
    MakeFolder(kBondFile);
    EXPECT_EQ(Kind(), "trunk");
    EXPECT_EQ(Log(), (LogLines{kAsked, Info("IsTrunkBondConfig", "Is Trunk config")}));
}

TEST_F(IsTrunkBondConfigTest, TheFileIsReadUnderItsLock)
{
    Put(kBondFile, "BONDMEMBERS = eth0\n");
    EXPECT_EQ(Kind(), "bond");
    const std::string file = kBondFile;
    EXPECT_EQ(Trace(), (std::vector<std::string>{
                           "mutex lock", "open " + file + " O_WRONLY|O_APPEND",
                           "fcntl F_SETLKW F_WRLCK " + file, "open " + file + " O_RDONLY",
                           "pread " + file, "fcntl F_SETLKW F_UNLCK " + file, "close " + file,
                           "close " + file, "mutex unlock"}));
}

TEST_F(IsTrunkBondConfigTest, FailsOnlyWhenTheFileCannotBeOpened)
{
    Put(kBondFile, "BONDMEMBERS = eth0\n");
    std::string kind;
    FailEachCall(
        [&] {
            char bond[] = "bond0";
            bool isTrunk = false;
            kind = !IsTrunkBondConfig(bond, &isTrunk) ? "(no)" : isTrunk ? "trunk" : "bond";
        },
        [&](const std::string& failed) {
            const std::string file = kBondFile;
            const std::string expected = failed == "open " + file + " O_RDONLY" ? "(no)"
                                         : failed == "pread " + file            ? "trunk"
                                                                                : "bond";
            EXPECT_EQ(kind, expected);
        });
}

}  // namespace
