// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Reading one key, and the saved switch modes.

#include "Support/KeyFile.h"

#include "fake/World.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <filesystem>

using namespace fake;
using namespace std::string_literals;

namespace {

constexpr char kFile[] = "/mnt/mtd/Config/network1";
constexpr char kModeFile[] = "/mnt/mtd/Config/poeMode.conf";

class GetValueByKeyTest : public World {
protected:
    /// The value of a key as callers read it; "(false)" when there is none, and then the buffer is
    /// as it was.
    static std::string Read(const std::string& key, int len = 16)
    {
        char value[300];
        memset(value, '#', sizeof(value));
        if (GetValueByKey(kFile, key.c_str(), value, len)) return value;
        EXPECT_EQ(std::string(value, sizeof(value)), std::string(sizeof(value), '#'));
        return "(false)";
    }
};

TEST_F(GetValueByKeyTest, ReadsTheValueOfAKey)
{
    Put(kFile, "HOSTIP = 192.168.0.108\nMTU = 1500\n");
    EXPECT_EQ(Read("HOSTIP"), "192.168.0.108");
    EXPECT_EQ(Read("MTU"), "1500");
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(GetValueByKeyTest, ZeroesTheRestOfTheBufferAndNothingBehind)
{
    Put(kFile, "MTU = 1500\n");
    char value[16];
    memset(value, '#', sizeof(value));
    ASSERT_TRUE(GetValueByKey(kFile, "MTU", value, 8));
    EXPECT_EQ(std::string(value, sizeof(value)), "1500\0\0\0\0########"s);
}

// ---- what a value is

TEST_F(GetValueByKeyTest, TrimsBlanksTabsAndNewlinesAndNothingElse)
{
    struct Case {
        std::string line;
        std::string value;
    };
    const Case cases[] = {
        {"MTU=1500", "1500"},
        {"MTU=1500\n", "1500"},
        {"MTU \t= \t 1500 \t \n", "1500"},
        {"  MTU = 1500\n", "1500"},
        {"MTU = 15 00\n", "15 00"},
        {"MTU = a = b\n", "a = b"},
        {"MTU == 1500\n", "= 1500"},
        {"MTU = 1500\r\n", "1500\r"},
        {"MTU = \v1500\f\n", "\v1500\f"},
        {"MTU = \"1500\" # note\n", "\"1500\" # note"},
        {"MTU = 1500\0 hidden\n"s, "1500"},
        {"\xff\xfeMTU = 1500\n", "1500"},
    };
    for (const Case& expected : cases) {
        Put(kFile, expected.line);
        EXPECT_EQ(Read("MTU"), expected.value) << expected.line;
    }
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(GetValueByKeyTest, ALineWithoutEqualsSignIsAnError)
{
    Put(kFile, "PRIO = 0\nMTU 1500\nMTU = 1400\n");
    EXPECT_EQ(Read("MTU"), "(false)");
    EXPECT_EQ(Log(), (LogLines{Error("GetValueByKey",
                                     "file formate error![file:/mnt/mtd/Config/network1,context:"
                                     "MTU 1500\n]")}));
}

TEST_F(GetValueByKeyTest, AnEqualsSignBehindANulIsNotThere)
{
    Put(kFile, "MTU\0 = 1500\n"s);
    EXPECT_EQ(Read("MTU"), "(false)");
    EXPECT_EQ(Log(), (LogLines{Error("GetValueByKey",
                                     "file formate error![file:/mnt/mtd/Config/network1,context:"
                                     "MTU]")}));
}

TEST_F(GetValueByKeyTest, NothingBehindTheEqualsSignIsAWarning)
{
    for (const char* line : {"MTU =", "MTU =\n", "MTU = \t \n", "MTU="}) {
        Put(kFile, line);
        ClearLog();
        EXPECT_EQ(Read("MTU"), "(false)");
        EXPECT_EQ(Log(), (LogLines{Warn("GetValueByKey",
                                        "the MTU from /mnt/mtd/Config/network1 is empty.")}))
            << line;
    }
}

TEST_F(GetValueByKeyTest, AValueMustFitWithItsTerminator)
{
    Put(kFile, "HOSTIP = 192.168.100.200\n");
    EXPECT_EQ(Read("HOSTIP", 16), "192.168.100.200");
    EXPECT_EQ(Log(), LogLines{});

    Put(kFile, "HOSTIP = 192.168.100.2000 \n");
    EXPECT_EQ(Read("HOSTIP", 16), "(false)");
    EXPECT_EQ(Log(), (LogLines{Error("GetValueByKey", "value len is too small.[len:16,value:"
                                                      "192.168.100.2000]")}));
}

TEST_F(GetValueByKeyTest, NoRoomFitsNoValue)
{
    Put(kFile, "MTU = 1\n");
    for (const int len : {1, 0, -1, INT_MIN}) {
        ClearLog();
        EXPECT_EQ(Read("MTU", len), "(false)") << len;
        EXPECT_EQ(Log(),
                  (LogLines{Error("GetValueByKey", "value len is too small.[len:1,value:1]")}));
    }
}

TEST_F(GetValueByKeyTest, AnEmptyValueIsToldBeforeItsRoom)
{
    Put(kFile, "MTU = \n");
    for (const int len : {1, 0, -1, INT_MIN}) {
        ClearLog();
        EXPECT_EQ(Read("MTU", len), "(false)") << len;
        EXPECT_EQ(Log(), (LogLines{Warn("GetValueByKey",
                                        "the MTU from /mnt/mtd/Config/network1 is empty.")}));
    }
}

// ---- which line

TEST_F(GetValueByKeyTest, TheFirstLineThatContainsTheKeyWins)
{
    Put(kFile, "SSIF_EDGE1 = eth4\nSSIF = eth1,eth2\n");
    EXPECT_EQ(Read("SSIF"), "eth4");
    Put(kFile, "HOSTIP = MTU\nMTU = 1500\n");
    EXPECT_EQ(Read("MTU"), "MTU");
    Put(kFile, "MTU = 1\nMTU = 2\n");
    EXPECT_EQ(Read("MTU"), "1");
    Put(kFile, "mtu = 1\nMTU = 2\n");
    EXPECT_EQ(Read("MTU"), "2");
}

TEST_F(GetValueByKeyTest, AnEmptyKeyIsInTheFirstLine)
{
    Put(kFile, "HOSTIP = 1.2.3.4\nMTU = 1500\n");
    EXPECT_EQ(Read(""), "1.2.3.4");
}

TEST_F(GetValueByKeyTest, LooksAt32Lines)
{
    std::string text;
    for (int i = 1; i < 32; ++i) text += "line " + std::to_string(i) + "\n";
    Put(kFile, text + "MTU = 1500\n");
    EXPECT_EQ(Read("MTU"), "1500");
    Put(kFile, text + "line 32\nMTU = 1500\n");
    EXPECT_EQ(Read("MTU"), "(false)");
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(GetValueByKeyTest, PiecesOfALongLineCountAsLines)
{
    std::string text = std::string(255 * 31 - 1, 'x') + "\n";  // 31 pieces
    Put(kFile, text + "MTU = 1500\n");
    EXPECT_EQ(Read("MTU"), "1500");
    Put(kFile, "x" + text + "MTU = 1500\n");
    EXPECT_EQ(Read("MTU"), "(false)");
}

TEST_F(GetValueByKeyTest, AKeyCutByTheEndOfAPieceIsNotFound)
{
    Put(kFile, std::string(253, 'x') + "MTU = 1500\n");
    EXPECT_EQ(Read("MTU"), "(false)");
    Put(kFile, std::string(255, 'x') + "MTU = 1500\n");
    EXPECT_EQ(Read("MTU"), "1500");
}

TEST_F(GetValueByKeyTest, AValueEndsWithItsPiece)
{
    const std::string value(249, 'v');
    Put(kFile, "MTU = " + value + "w\n");
    EXPECT_EQ(Read("MTU", 300), value);
}

// ---- files

TEST_F(GetValueByKeyTest, AMissingFileAndAMissingKeyAreOrdinaryAnswers)
{
    EXPECT_EQ(Read("MTU"), "(false)");
    Put(kFile, "");
    EXPECT_EQ(Read("MTU"), "(false)");
    Put(kFile, "HOSTIP = 10.0.0.2\n");
    EXPECT_EQ(Read("MTU"), "(false)");
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(OpenHandles(), Texts{});
    EXPECT_EQ(HeldMutexes(), 0);
}

TEST_F(GetValueByKeyTest, WhatIsNoFileHasNoKey)
{
    MakeFolder(kFile);
    EXPECT_EQ(Read("MTU"), "(false)");
    Remove(kFile);
    std::filesystem::create_symlink("nowhere", Mapped(kFile));
    EXPECT_EQ(Read("MTU"), "(false)");
    EXPECT_FALSE(Exists("/mnt/mtd/Config/nowhere"));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(GetValueByKeyTest, AMegabyteOfRubbishHasNoKey)
{
    Put(kFile, std::string(1024 * 1024, 'x') + "\nMTU = 1500\n");
    EXPECT_EQ(Read("MTU"), "(false)");
    Put(kFile, std::string(1024 * 1024, '\0') + "\nMTU = 1500\n");
    EXPECT_EQ(Read("MTU"), "(false)");
    Put(kFile, "MTU = 1500\n" + std::string(1024 * 1024, 'x'));
    EXPECT_EQ(Read("MTU"), "1500");
}

TEST_F(GetValueByKeyTest, RefusesNullInSilence)
{
    Put(kFile, "MTU = 1500\n");
    char value[16] = "as it was";
    EXPECT_FALSE(GetValueByKey(nullptr, "MTU", value, sizeof(value)));
    EXPECT_FALSE(GetValueByKey(kFile, nullptr, value, sizeof(value)));
    EXPECT_FALSE(GetValueByKey(kFile, "MTU", nullptr, sizeof(value)));
    EXPECT_STREQ(value, "as it was");
    EXPECT_EQ(Trace(), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

// ---- locks

TEST_F(GetValueByKeyTest, UnlocksFirstAndClosesThen)
{
    Put(kFile, "MTU = 1500\n");
    for (const char* key : {"MTU", "PRIO"}) {  // a match, and none
        ClearTrace();
        Read(key);
        Texts calls = Trace();
        calls.erase(std::remove(calls.begin(), calls.end(), "pread /mnt/mtd/Config/network1"),
                    calls.end());
        EXPECT_EQ(calls, (Texts{"mutex lock", "open /mnt/mtd/Config/network1 O_WRONLY|O_APPEND",
                                "fcntl F_SETLKW F_WRLCK /mnt/mtd/Config/network1",
                                "open /mnt/mtd/Config/network1 O_RDONLY",
                                "fcntl F_SETLKW F_UNLCK /mnt/mtd/Config/network1",
                                "close /mnt/mtd/Config/network1", "close /mnt/mtd/Config/network1",
                                "mutex unlock"}))
            << key;
    }
}

/// A descriptor closed later would take away the lock that the next thread has got by then, and
/// another process would write beside it: one of the two writes would be lost, or most of the file.
TEST_F(GetValueByKeyTest, ThreadsGetInWhenNothingOfTheFileIsOpenAnyMore)
{
    Put(kFile, "MTU = 1500\n");
    Texts open = {"never asked"};
    OnCall("mutex unlock", [&] { open = OpenHandles(); });
    EXPECT_EQ(Read("MTU"), "1500");
    EXPECT_EQ(open, Texts{});
}

TEST_F(GetValueByKeyTest, OtherProcessesGetInFirst)
{
    Put(kFile, "MTU = 1500\n");
    bool locked = true;
    OnCall("mutex unlock", [&] { locked = LockedForOthers(kFile); });
    EXPECT_EQ(Read("MTU"), "1500");
    EXPECT_FALSE(locked);
}

TEST_F(GetValueByKeyTest, AMissingFileIsAskedForOnce)
{
    EXPECT_EQ(Read("MTU"), "(false)");
    EXPECT_EQ(Trace(), (Texts{"mutex lock", "open /mnt/mtd/Config/network1 O_WRONLY|O_APPEND",
                              "mutex unlock"}));
    Put(kFile, "MTU = 1500\n");
    EXPECT_EQ(Read("MTU"), "1500");
}

TEST_F(GetValueByKeyTest, AFileThatCannotBeReadIsUnlockedToo)
{
    Put(kFile, "MTU = 1500\n");
    Fail("open /mnt/mtd/Config/network1 O_RDONLY", EMFILE);
    EXPECT_EQ(Read("MTU"), "(false)");
    EXPECT_EQ(HeldMutexes(), 0);
    EXPECT_EQ(OpenHandles(), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(GetValueByKeyTest, HoldsTheLockWhileItReads)
{
    Put(kFile, "MTU = 1500\n");
    bool locked = false;
    OnCall("pread", [&] { locked = LockedForOthers(kFile); });
    EXPECT_EQ(Read("MTU"), "1500");
    EXPECT_TRUE(locked);
    EXPECT_FALSE(LockedForOthers(kFile));
}

TEST_F(GetValueByKeyTest, ReadsAFileThatCannotBeWritten)
{
    Put(kFile, "MTU = 1500\n");
    FailAll("open /mnt/mtd/Config/network1 O_WRONLY", EROFS);
    EXPECT_EQ(Read("MTU"), "1500");
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(GetValueByKeyTest, ReadsOnWithoutALock)
{
    Put(kFile, "MTU = 1500\n");
    Fail("fcntl F_SETLKW F_WRLCK", ENOLCK);
    EXPECT_EQ(Read("MTU"), "1500");
    EXPECT_EQ(Log().size(), 1U);
}

TEST_F(GetValueByKeyTest, GivesAWholeValueOrNoneWhateverFails)
{
    Put(kFile, "HOSTIP = 10.0.0.2\nMTU = 1500\n");
    static std::string value;
    FailEachCall([] { value = Read("MTU"); },
                 [](const std::string& failed) {
                     const bool harmless = failed.rfind("fcntl", 0) == 0 ||
                                           failed.find("O_WRONLY") != std::string::npos;
                     EXPECT_EQ(value, harmless ? "1500" : "(false)");
                     EXPECT_EQ(Log().size(), failed.rfind("fcntl", 0) == 0 ? 1U : 0U);
                     EXPECT_EQ(OpenHandles(), Texts{});
                 });
}

// ---- two keys in one pass

class ReadTwoKeysTest : public World {
protected:
    struct Answer {
        bool done;
        std::string ip;
        std::string mask;
        LogLines lines;
    };

    static Answer InOnePass(int ipLen, int maskLen)
    {
        char ip[64] = "as it was";
        char mask[64] = "as it was";
        ClearLog();
        const bool done =
            vorlix::ReadTwoKeys(kFile, {HOST_IP_KEY, ip, ipLen}, {HOST_SUBMASK_KEY, mask, maskLen});
        return {done, ip, mask, Log()};
    }

    static Answer OneByOne(int ipLen, int maskLen)
    {
        char ip[64] = "as it was";
        char mask[64] = "as it was";
        ClearLog();
        const bool done = GetValueByKey(kFile, "HOSTIP", ip, ipLen) &&
                          GetValueByKey(kFile, "SUBMASK", mask, maskLen);
        return {done, ip, mask, Log()};
    }
};

TEST_F(ReadTwoKeysTest, AnswersAsTwoReadsDo)
{
    const std::string far(255 * 31, 'x');
    for (const std::string& text :
         {""s, "HOSTIP = 10.0.0.2\nSUBMASK = 255.0.0.0\n"s,
          "SUBMASK = 255.0.0.0\nnote\nHOSTIP = 10.0.0.2"s, "HOSTIP = 10.0.0.2\n"s,
          "SUBMASK = 255.0.0.0\n"s, "HOSTIP = SUBMASK\nSUBMASK = 255.0.0.0\n"s,
          "HOSTIP =\nSUBMASK =\n"s, "HOSTIP\nSUBMASK\n"s, "HOSTIP = 1\nSUBMASK\n"s,
          "HOSTIP = 1\nHOSTIP = 2\nSUBMASK = 3\nSUBMASK = 4\n"s,
          "HOSTIP = 1\n" + far + "SUBMASK = 2\n", "SUBMASK = 1\n" + far + "HOSTIP = 2\n",
          "HOSTIP = 1\0SUBMASK = 2\n"s}) {
        for (const int len : {16, 9, 2, 0}) {
            SCOPED_TRACE(text.substr(0, 40) + " in " + std::to_string(len));
            Put(kFile, text);
            const Answer expected = OneByOne(16, len);
            const Answer answer = InOnePass(16, len);
            EXPECT_EQ(answer.done, expected.done);
            EXPECT_EQ(answer.ip, expected.ip);
            EXPECT_EQ(answer.mask, expected.mask);
            EXPECT_EQ(answer.lines, expected.lines);
        }
    }
}

TEST_F(ReadTwoKeysTest, TakesTheFileOnce)
{
    Put(kFile, "HOSTIP = 10.0.0.2\nSUBMASK = 255.0.0.0\n");
    EXPECT_TRUE(InOnePass(16, 16).done);
    EXPECT_EQ(
        Trace(),
        (Texts{"mutex lock", "open /mnt/mtd/Config/network1 O_WRONLY|O_APPEND",
               "fcntl F_SETLKW F_WRLCK /mnt/mtd/Config/network1",
               "open /mnt/mtd/Config/network1 O_RDONLY", "pread /mnt/mtd/Config/network1",
               "fcntl F_SETLKW F_UNLCK /mnt/mtd/Config/network1", "close /mnt/mtd/Config/network1",
               "close /mnt/mtd/Config/network1", "mutex unlock"}));
}

// ---- switch modes

class NetSwitchGetNetCardModeTest : public World {};

TEST_F(NetSwitchGetNetCardModeTest, ReadsASavedMode)
{
    for (const int saved : {0, 1, 2}) {
        Put(kModeFile, "eth0 = " + std::to_string(saved) + "\n");
        int32_t mode = 77;
        EXPECT_EQ(NetSwitch_GetNetCardMode("eth0", &mode), 0);
        EXPECT_EQ(mode, saved);
    }
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NetSwitchGetNetCardModeTest, RefusesAModeOutOfRangeAndStores0)
{
    struct Case {
        const char* text;
        const char* message;
    };
    const Case cases[] = {
        {"3", "mode error 3 3"},
        {"-1", "mode error -1 -1"},
        {"2147483647", "mode error 2147483647 2147483647"},
        {"17 cards", "mode error 17 cards 17"},
    };
    for (const Case& bad : cases) {
        Put(kModeFile, std::string("eth0 = ") + bad.text + "\n");
        ClearLog();
        int32_t mode = 77;
        EXPECT_EQ(NetSwitch_GetNetCardMode("eth0", &mode), -1);
        EXPECT_EQ(mode, 0);
        EXPECT_EQ(Log(), (LogLines{Error("NetSwitch_GetNetCardMode", bad.message)}));
    }
}

TEST_F(NetSwitchGetNetCardModeTest, TakesATextWithoutNumberAs0)
{
    Put(kModeFile, "eth0 = both\n");
    int32_t mode = 77;
    EXPECT_EQ(NetSwitch_GetNetCardMode("eth0", &mode), 0);
    EXPECT_EQ(mode, 0);
}

TEST_F(NetSwitchGetNetCardModeTest, LeavesTheModeWhenNoneIsSaved)
{
    int32_t mode = 77;
    EXPECT_EQ(NetSwitch_GetNetCardMode("eth0", &mode), -1);
    Put(kModeFile, "eth1 = 1\n");
    EXPECT_EQ(NetSwitch_GetNetCardMode("eth0", &mode), -1);
    EXPECT_EQ(Log(), LogLines{});
    Put(kModeFile, "eth0 =\n");
    EXPECT_EQ(NetSwitch_GetNetCardMode("eth0", &mode), -1);
    EXPECT_EQ(Log(), (LogLines{Warn("GetValueByKey",
                                    "the eth0 from /mnt/mtd/Config/poeMode.conf is empty.")}));
    EXPECT_EQ(mode, 77);
}

TEST_F(NetSwitchGetNetCardModeTest, AValueOf30CharactersIsTheLongest)
{
    Put(kModeFile, "eth0 = " + std::string(29, '0') + "1\n");
    int32_t mode = 77;
    EXPECT_EQ(NetSwitch_GetNetCardMode("eth0", &mode), 0);
    EXPECT_EQ(mode, 1);
    Put(kModeFile, "eth0 = " + std::string(30, '0') + "2\n");
    EXPECT_EQ(NetSwitch_GetNetCardMode("eth0", &mode), -1);
    EXPECT_EQ(mode, 1);
    EXPECT_EQ(Log(), (LogLines{Error("GetValueByKey", "value len is too small.[len:31,value:" +
                                                          std::string(30, '0') + "2]")}));
}

TEST_F(NetSwitchGetNetCardModeTest, ALineOfALongerNameMatches)
{
    Put(kModeFile, "eth10 = 2\n");
    int32_t mode = 77;
    EXPECT_EQ(NetSwitch_GetNetCardMode("eth1", &mode), 0);
    EXPECT_EQ(mode, 2);
}

TEST_F(NetSwitchGetNetCardModeTest, RefusesNull)
{
    Put(kModeFile, "eth0 = 1\n");
    int32_t mode = 77;
    EXPECT_EQ(NetSwitch_GetNetCardMode(nullptr, &mode), -1);
    EXPECT_EQ(mode, 77);
    EXPECT_EQ(Log(), (LogLines{Error("NetSwitch_GetNetCardMode", "eth name  is null")}));
    ClearLog();
    EXPECT_EQ(NetSwitch_GetNetCardMode("eth0", nullptr), -1);
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Trace(), Texts{});
}

class SwitchModesTest : public World {};

TEST_F(SwitchModesTest, AnswersAsTheOperationDoes)
{
    const std::string wide(40, '1');
    const std::string longest = std::string(29, '0') + "1";
    for (const std::string& text :
         {""s, "eth0 = 0\n"s, "eth0 = 1"s, "eth0 = 2\neth0 = 1\n"s, "eth0 = 3\n"s, "eth0 =\n"s,
          "eth0\n"s, "eth1 = 1\n"s, "eth0 = " + wide + "\n", "a\0eth0 = 1\n"s,
          "xeth0 = 2\neth0 = 1\n"s, "eth0\neth0 = 1\n"s, "eth0 =\neth0 = 1\n"s,
          "eth0 = 7\neth0 = 1\n"s, "eth0 = " + longest, "eth0 = 0" + longest + "\neth0 = 1\n",
          std::string(255 * 31, 'x') + "eth0 = 1\n", std::string(255 * 32, 'x') + "eth0 = 1\n"}) {
        SCOPED_TRACE(text.substr(0, 40));
        Put(kModeFile, text);
        ClearLog();
        int32_t expected = 77;
        const int32_t result = NetSwitch_GetNetCardMode("eth0", &expected);
        const LogLines lines = Log();
        ClearLog();
        vorlix::SwitchModes modes;
        int32_t mode = 77;
        EXPECT_EQ(modes.Get("eth0", &mode), result);
        EXPECT_EQ(mode, expected);
        EXPECT_EQ(Log(), lines);
    }
}

TEST_F(SwitchModesTest, ReadsTheFileOnceAndWhenItIsAsked)
{
    Put(kModeFile, "eth0 = 0\neth1 = 1\neth2 = 2\n");
    vorlix::SwitchModes modes;
    EXPECT_EQ(Trace(), Texts{});
    for (const int32_t card : {2, 0, 1, 2}) {
        int32_t mode = 77;
        EXPECT_EQ(modes.Get(("eth" + std::to_string(card)).c_str(), &mode), 0);
        EXPECT_EQ(mode, card);
    }
    EXPECT_EQ(Trace(),
              (Texts{"mutex lock", "open /mnt/mtd/Config/poeMode.conf O_WRONLY|O_APPEND",
                     "fcntl F_SETLKW F_WRLCK /mnt/mtd/Config/poeMode.conf",
                     "open /mnt/mtd/Config/poeMode.conf O_RDONLY",
                     "pread /mnt/mtd/Config/poeMode.conf", "pread /mnt/mtd/Config/poeMode.conf",
                     "fcntl F_SETLKW F_UNLCK /mnt/mtd/Config/poeMode.conf",
                     "close /mnt/mtd/Config/poeMode.conf", "close /mnt/mtd/Config/poeMode.conf",
                     "mutex unlock"}));
}

TEST_F(SwitchModesTest, AMissingFileIsNotLookedForAgain)
{
    vorlix::SwitchModes modes;
    int32_t mode = 77;
    EXPECT_EQ(modes.Get("eth0", &mode), -1);
    EXPECT_EQ(modes.Get("eth1", &mode), -1);
    EXPECT_EQ(mode, 77);
    EXPECT_EQ(TraceOf({"open"}), (Texts{"open /mnt/mtd/Config/poeMode.conf O_WRONLY|O_APPEND"}));
}

TEST_F(SwitchModesTest, NothingIsLeftHeldWhateverFails)
{
    Put(kModeFile, "eth0 = 1\n");
    FailEachCall([] {
        vorlix::SwitchModes modes;
        int32_t mode = 77;
        modes.Get("eth0", &mode);
    });
}

}  // namespace
