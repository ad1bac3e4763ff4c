// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Writing one key.

#include "Support/KeyFile.h"

#include "fake/World.h"

#include <cerrno>
#include <climits>
#include <filesystem>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace fake;
using namespace std::string_literals;

namespace {

constexpr char kFile[] = "/mnt/mtd/Config/network1";
constexpr char kModeFile[] = "/mnt/mtd/Config/poeMode.conf";

const LogLine kNoFileYet =
    Error("SetValueByKey", "cannot fopen for read.[No such file or directory]");

/// Sixteen lines of known keys, each a different one.
Texts SixteenKeys()
{
    Texts lines;
    for (int key = 0; key < 16; ++key) {
        lines.push_back(std::string(vorlix::KeyText(static_cast<KEYENUM>(key))) + " = " +
                        std::to_string(key));
    }
    return lines;
}

class SetValueByKeyTest : public World {
protected:
    /// What becomes of a file when a key is written to it.
    static std::string Written(const std::string& before, const std::string& key,
                               const std::string& value)
    {
        Put(kFile, before);
        EXPECT_TRUE(SetValueByKey(kFile, key.c_str(), value.c_str()));
        return Get(kFile);
    }
};

// ---- which place

TEST_F(SetValueByKeyTest, CreatesAMissingFileAndSaysSo)
{
    EXPECT_TRUE(SetValueByKey(kFile, "MTU", "1500"));
    EXPECT_EQ(Get(kFile), "MTU = 1500\n");
    EXPECT_EQ(Log(), (LogLines{kNoFileYet}));
}

TEST_F(SetValueByKeyTest, FillsAnEmptyFileInSilence)
{
    EXPECT_EQ(Written("", "MTU", "1500"), "MTU = 1500\n");
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(SetValueByKeyTest, ReplacesALineWhereItStood)
{
    EXPECT_EQ(Written("MTU = 1500\nHOSTIP = 10.0.0.2\nPRIO = 0\n", "HOSTIP", "10.0.0.3"),
              "MTU = 1500\nHOSTIP = 10.0.0.3\nPRIO = 0\n");
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(SetValueByKeyTest, PutsANewLineBehindTheLast)
{
    EXPECT_EQ(Written("MTU = 1500\n", "PRIO", "1"), "MTU = 1500\nPRIO = 1\n");
}

TEST_F(SetValueByKeyTest, RewritesAValueThatIsSavedAlready)
{
    EXPECT_EQ(Written("MTU = 1500\n", "MTU", "1500"), "MTU = 1500\n");
    EXPECT_EQ(TraceOf({"fopen", "fsync"}),
              (Texts{"fopen /mnt/mtd/Config/network1 r+", "fopen /mnt/mtd/Config/network1 w+",
                     "fsync /mnt/mtd/Config/network1"}));
}

TEST_F(SetValueByKeyTest, ReplacesTheFirstLineThatContainsTheKey)
{
    EXPECT_EQ(Written("SSIF_EDGE1 = eth4\nSSIF = eth1\n", "SSIF", "eth2"),
              "SSIF = eth2\nSSIF = eth1\n");
    EXPECT_EQ(Written("HOSTIP = MTU\nMTU = 1500\n", "MTU", "1400"), "MTU = 1400\nMTU = 1500\n");
    EXPECT_EQ(Written("MTU = 1\nMTU = 2\n", "MTU", "3"), "MTU = 3\nMTU = 2\n");
}

TEST_F(SetValueByKeyTest, AnEmptyKeyReplacesTheFirstLine)
{
    EXPECT_EQ(Written("MTU = 1\nPRIO = 0\n", "", "x"), " = x\nPRIO = 0\n");
}

// ---- which lines are kept

TEST_F(SetValueByKeyTest, DropsLinesWithoutAKnownKey)
{
    EXPECT_EQ(Written("# note\nMTU = 1500\nUNKNOWN = 1\n\nHOSTIP = 10.0.0.2\nmtu = 2\n", "HOSTIP",
                      "10.0.0.3"),
              "MTU = 1500\nHOSTIP = 10.0.0.3\n");
}

TEST_F(SetValueByKeyTest, KeepsEveryKnownKey)
{
    for (int key = 0; key < HOST_NET_END; ++key) {
        const std::string line =
            "x" + std::string(vorlix::KeyText(static_cast<KEYENUM>(key))) + "y no value";
        EXPECT_EQ(Written(line + "\n", "card", "1"), line + "\ncard = 1\n");
    }
}

TEST_F(SetValueByKeyTest, KeepsALineWhoseValueHoldsAKnownKey)
{
    EXPECT_EQ(Written("note = MTU\n", "PRIO", "1"), "note = MTU\nPRIO = 1\n");
}

TEST_F(SetValueByKeyTest, TheNextWriteDropsAnUnknownKey)
{
    EXPECT_EQ(Written("", "eth0", "1"), "eth0 = 1\n");
    EXPECT_TRUE(SetValueByKey(kFile, "eth1", "2"));
    EXPECT_EQ(Get(kFile), "eth1 = 2\n");
}

TEST_F(SetValueByKeyTest, ADroppedLineDoesNotCountAmongTheKept)
{
    Texts lines;
    for (const std::string& line : SixteenKeys()) {
        lines.emplace_back("# note");
        lines.push_back(line);
    }
    ASSERT_EQ(lines.size(), 32U);
    Texts kept = SixteenKeys();
    kept[0] = "HOSTIP = new";
    EXPECT_EQ(Written(Settings(lines), "HOSTIP", "new"), Settings(kept));
}

TEST_F(SetValueByKeyTest, ScansAsFarAs32Lines)
{
    Texts lines(31, "# note");
    lines.emplace_back("MTU = 1500");
    EXPECT_EQ(Written(Settings(lines), "PRIO", "0"), "MTU = 1500\nPRIO = 0\n");
    lines.insert(lines.begin(), "# note");
    EXPECT_EQ(Written(Settings(lines), "PRIO", "0"), "PRIO = 0\n");
}

TEST_F(SetValueByKeyTest, LosesEverythingFromThe17thKeptLineOn)
{
    Texts lines = SixteenKeys();
    while (lines.size() < 40) lines.push_back("MTU" + std::to_string(lines.size()) + " = 1");
    Texts kept = SixteenKeys();
    kept[3] = "PRIO = 1";
    EXPECT_EQ(Written(Settings(lines), "PRIO", "1"), Settings(kept));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(SetValueByKeyTest, Refuses17Lines)
{
    Put(kFile, Settings(SixteenKeys()));
    EXPECT_FALSE(SetValueByKey(kFile, "LACP", "1"));
    EXPECT_EQ(Get(kFile), Settings(SixteenKeys()));
    EXPECT_EQ(Log(), (LogLines{Error("SetValueByKey", "can not set LACP = 1, too many lines [16] "
                                                      "max line num is 16")}));
    EXPECT_EQ(TraceOf({"fopen"}), (Texts{"fopen /mnt/mtd/Config/network1 r+"}));
    EXPECT_EQ(OpenHandles(), Texts{});
    EXPECT_EQ(HeldMutexes(), 0);
}

TEST_F(SetValueByKeyTest, TheSixteenthLineHasAPlace)
{
    Texts lines = SixteenKeys();
    lines.pop_back();
    Texts kept = lines;
    kept.emplace_back("LACP = 1");
    EXPECT_EQ(Written(Settings(lines), "LACP", "1"), Settings(kept));
}

// ---- form of the lines

TEST_F(SetValueByKeyTest, KeepsALineAsItStands)
{
    EXPECT_EQ(Written("  MTU=1500 \t\r\n", "PRIO", "0"), "  MTU=1500 \t\r\nPRIO = 0\n");
}

TEST_F(SetValueByKeyTest, ALastLineWithoutNewlineDoesNotSwallowTheNext)
{
    EXPECT_EQ(Written("MTU = 1500", "PRIO", "0"), "MTU = 1500\nPRIO = 0\n");
    EXPECT_EQ(Written("PRIO = 1\nMTU = 1500", "PRIO", "0"), "PRIO = 0\nMTU = 1500\n");
}

TEST_F(SetValueByKeyTest, ALastLineOf254CharactersHasRoomForItsNewline)
{
    for (const size_t length : {253U, 254U, 255U}) {  // of the line; the last of them has no room
        const std::string last = "MTU = " + std::string(length - 6, 'x');
        EXPECT_EQ(Written(last, "PRIO", "0"), last + (length < 255 ? "\n" : "") + "PRIO = 0\n");
    }
}

TEST_F(SetValueByKeyTest, ALineCutByANulDoesNotSwallowTheNext)
{
    EXPECT_EQ(Written("MTU = 15\0garbage\nHOSTIP = 10.0.0.2\n"s, "PRIO", "0"),
              "MTU = 15\nHOSTIP = 10.0.0.2\nPRIO = 0\n");
}

TEST_F(SetValueByKeyTest, AKeyBehindANulIsNotKnown)
{
    EXPECT_EQ(Written("\0MTU = 1500\n"s, "PRIO", "0"), "PRIO = 0\n");
}

TEST_F(SetValueByKeyTest, ALongLineIsKeptAsTheSeveralItIsReadAs)
{
    const std::string head = "MTU = " + std::string(249, 'x');
    EXPECT_EQ(Written(head + "PRIO = 1\n", "ROUTE", "r"), head + "PRIO = 1\nROUTE = r\n");
    EXPECT_EQ(Written(head + "lost\n", "ROUTE", "r"), head + "ROUTE = r\n");
}

TEST_F(SetValueByKeyTest, ALineMayBe254CharactersLong)
{
    const std::string value(248, 'v');
    EXPECT_EQ(Written("PRIO = 0\n", "MTU", value), "PRIO = 0\nMTU = " + value + "\n");
}

TEST_F(SetValueByKeyTest, AValueTooLongLosesItsTailAndItsNewline)
{
    const std::string value(300, 'v');
    EXPECT_EQ(Written("", "MTU", value), "MTU = " + value.substr(0, 249));
    EXPECT_EQ(Written("", "MTU", value.substr(0, 249)), "MTU = " + value.substr(0, 249));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(SetValueByKeyTest, AnEmptyValueIsWritten)
{
    EXPECT_EQ(Written("BONDMODE = 1\n", "BONDMODE", ""), "BONDMODE = \n");
}

TEST_F(SetValueByKeyTest, PercentSignsAreText)
{
    EXPECT_EQ(Written("", "MTU", "%s%n"), "MTU = %s%n\n");
}

TEST_F(SetValueByKeyTest, WhatIsWrittenIsReadBack)
{
    Put(kFile, "");
    for (const std::string& line : SixteenKeys()) {
        const std::string key = line.substr(0, line.find(' '));
        EXPECT_TRUE(SetValueByKey(kFile, key.c_str(), "some value"));
        char value[16] = {};
        EXPECT_TRUE(GetValueByKey(kFile, key.c_str(), value, sizeof(value)));
        EXPECT_STREQ(value, "some value");
    }
}

// ---- order

TEST_F(SetValueByKeyTest, ClosesBothStreamsAndUnlocksThen)
{
    EXPECT_EQ(Written("MTU = 1500\n", "MTU", "1400"), "MTU = 1400\n");
    EXPECT_EQ(Trace(),
              (Texts{"mutex lock", "open /mnt/mtd/Config/network1 O_WRONLY|O_APPEND",
                     "fcntl F_SETLKW F_WRLCK /mnt/mtd/Config/network1",
                     "fopen /mnt/mtd/Config/network1 r+", "fopen /mnt/mtd/Config/network1 w+",
                     "fflush /mnt/mtd/Config/network1", "fileno", "fsync /mnt/mtd/Config/network1",
                     "fclose /mnt/mtd/Config/network1", "fclose /mnt/mtd/Config/network1",
                     "fcntl F_SETLKW F_UNLCK /mnt/mtd/Config/network1",
                     "close /mnt/mtd/Config/network1", "mutex unlock"}));
}

TEST_F(SetValueByKeyTest, NoOtherProcessComesInBetweenScanAndSync)
{
    for (const char* moment :
         {"fopen /mnt/mtd/Config/network1 r+", "fopen /mnt/mtd/Config/network1 w+", "fflush",
          "fileno", "fsync", "fclose /mnt/mtd/Config/network1"}) {
        Put(kFile, "MTU = 1500\n");
        bool locked = false;
        OnCall(moment, [&] { locked = LockedForOthers(kFile); });
        EXPECT_TRUE(SetValueByKey(kFile, "MTU", "1400"));
        EXPECT_TRUE(locked) << moment;
        EXPECT_FALSE(LockedForOthers(kFile));
    }
}

TEST_F(SetValueByKeyTest, ClosesTheWrittenStreamFirst)
{
    Put(kFile, "MTU = 1500\n");
    Texts open;
    OnCall("fclose", [&] { OnCall("fclose", [&] { open = OpenHandles(); }); });
    EXPECT_TRUE(SetValueByKey(kFile, "MTU", "1400"));
    EXPECT_EQ(open, (Texts{"open /mnt/mtd/Config/network1 O_WRONLY|O_APPEND",
                           "fopen /mnt/mtd/Config/network1 r+"}));
}

TEST_F(SetValueByKeyTest, IsWholeWhenItIsSynced)
{
    Put(kFile, "MTU = 1500\nPRIO = 0\n");
    std::string synced;
    OnCall("fsync", [&] { synced = Get(kFile); });
    EXPECT_TRUE(SetValueByKey(kFile, "MTU", "1400"));
    EXPECT_EQ(synced, "MTU = 1400\nPRIO = 0\n");
}

TEST_F(SetValueByKeyTest, RewritesInPlaceSoThatASecondNameFollows)
{
    Put(kFile, "MTU = 1500\n");
    std::filesystem::create_hard_link(Mapped(kFile), Mapped("/mnt/mtd/Config/network2"));
    EXPECT_TRUE(SetValueByKey(kFile, "MTU", "1400"));
    EXPECT_TRUE(SameFile(kFile, "/mnt/mtd/Config/network2"));
    EXPECT_EQ(Get("/mnt/mtd/Config/network2"), "MTU = 1400\n");
}

// ---- what may be in the way

TEST_F(SetValueByKeyTest, RefusesNullInSilence)
{
    Put(kFile, "MTU = 1500\n");
    EXPECT_FALSE(SetValueByKey(nullptr, "MTU", "1"));
    EXPECT_FALSE(SetValueByKey(kFile, nullptr, "1"));
    EXPECT_FALSE(SetValueByKey(kFile, "MTU", nullptr));
    EXPECT_EQ(Get(kFile), "MTU = 1500\n");
    EXPECT_EQ(Trace(), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(SetValueByKeyTest, AFolderInTheFilesPlaceIsAnError)
{
    MakeFolder(kFile);
    EXPECT_FALSE(SetValueByKey(kFile, "MTU", "1500"));
    EXPECT_EQ(Log(), (LogLines{Error("SetValueByKey", "cannot fopen for read.[Is a directory]"),
                               Error("SetValueByKey", "cannot fopen [Is a directory]")}));
    EXPECT_EQ(OpenHandles(), Texts{});
    EXPECT_EQ(HeldMutexes(), 0);
}

TEST_F(SetValueByKeyTest, AMissingFolderIsAnError)
{
    Remove("/mnt/mtd/Config");
    EXPECT_FALSE(SetValueByKey(kFile, "MTU", "1500"));
    EXPECT_EQ(Log(), (LogLines{kNoFileYet, Error("SetValueByKey",
                                                 "cannot fopen [No such file or directory]")}));
}

TEST_F(SetValueByKeyTest, ADanglingLinkGetsItsFile)
{
    std::filesystem::create_symlink("elsewhere", Mapped(kFile));
    EXPECT_TRUE(SetValueByKey(kFile, "MTU", "1500"));
    EXPECT_EQ(Get("/mnt/mtd/Config/elsewhere"), "MTU = 1500\n");
    EXPECT_EQ(Log(), (LogLines{kNoFileYet}));
}

TEST_F(SetValueByKeyTest, AReadOnlyPlaceKeepsItsFile)
{
    Put(kFile, "MTU = 1500\n");
    FailAll("open /mnt/mtd/Config/network1 O_WRONLY", EROFS);
    FailAll("fopen", EROFS);
    EXPECT_FALSE(SetValueByKey(kFile, "MTU", "1400"));
    EXPECT_EQ(Get(kFile), "MTU = 1500\n");
    EXPECT_EQ(Log(),
              (LogLines{Error("SetValueByKey", "cannot fopen for read.[Read-only file system]"),
                        Error("SetValueByKey", "cannot fopen [Read-only file system]")}));
}

TEST_F(SetValueByKeyTest, AFileThatCannotBeEmptiedStaysAsItWas)
{
    Put(kFile, "MTU = 1500\nnote\n");
    Fail("fopen /mnt/mtd/Config/network1 w+", EACCES);
    EXPECT_FALSE(SetValueByKey(kFile, "MTU", "1400"));
    EXPECT_EQ(Get(kFile), "MTU = 1500\nnote\n");
    EXPECT_EQ(Log(), (LogLines{Error("SetValueByKey", "cannot fopen [Permission denied]")}));
    EXPECT_EQ(OpenHandles(), Texts{});
    EXPECT_EQ(HeldMutexes(), 0);
}

TEST_F(SetValueByKeyTest, AFileThatCannotBeScannedIsWrittenAnew)
{
    Put(kFile, "MTU = 1500\nPRIO = 0\n");
    Fail("fopen /mnt/mtd/Config/network1 r+", EMFILE);
    EXPECT_TRUE(SetValueByKey(kFile, "MTU", "1400"));
    EXPECT_EQ(Get(kFile), "MTU = 1400\n");
    EXPECT_EQ(Log(),
              (LogLines{Error("SetValueByKey", "cannot fopen for read.[Too many open files]")}));
}

TEST_F(SetValueByKeyTest, AFileThatCannotBeReadToItsEndIsNotReplaced)
{
    // The kernel's own bad sector: it opens, and its first page cannot be read.
    std::filesystem::create_symlink("/proc/self/mem", Mapped(kFile));
    EXPECT_FALSE(SetValueByKey(kFile, "MTU", "1400"));
    EXPECT_EQ(TraceOf({"fopen"}), (Texts{"fopen /mnt/mtd/Config/network1 r+"}));
    EXPECT_EQ(Log(),
              (LogLines{Error("SetValueByKey",
                              "cannot read /mnt/mtd/Config/network1.[Input/output error]")}));
    EXPECT_EQ(OpenHandles(), Texts{});
    EXPECT_EQ(HeldMutexes(), 0);
}

TEST_F(SetValueByKeyTest, TheLastLineKeptMayNeedItsNewlineAtItsVeryEnd)
{
    std::string lines;
    for (int i = 0; i < 15; ++i) lines += "MTU = 1500\n";
    const std::string last = "ROUTE = " + std::string(246, 'r');  // 254 characters
    Put(kFile, lines + last);
    EXPECT_TRUE(SetValueByKey(kFile, "ROUTE", "none"));
    EXPECT_EQ(Get(kFile), lines + "ROUTE = none\n");
    Put(kFile, lines + last);
    EXPECT_TRUE(SetValueByKey(kFile, "MTU", "1500"));
    EXPECT_EQ(Get(kFile), lines + last + "\n");
}

TEST_F(SetValueByKeyTest, AFullDiskIsNotSeenAtTheFlush)
{
    Put(kFile, "MTU = 1500\n");
    Fail("fflush", ENOSPC);
    EXPECT_TRUE(SetValueByKey(kFile, "MTU", "1400"));
    EXPECT_EQ(Get(kFile), "");
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(TraceOf({"fsync"}), (Texts{"fsync /mnt/mtd/Config/network1"}));
}

TEST_F(SetValueByKeyTest, AFailedSyncIsAWarning)
{
    Put(kFile, "MTU = 1500\n");
    Fail("fsync", ENOSPC);
    EXPECT_TRUE(SetValueByKey(kFile, "MTU", "1400"));
    EXPECT_EQ(Get(kFile), "MTU = 1400\n");
    EXPECT_EQ(Log(), (LogLines{Warn("SetValueByKey", "fsync:No space left on device\n")}));
}

TEST_F(SetValueByKeyTest, AStreamWithoutDescriptorIsAWarning)
{
    Put(kFile, "MTU = 1500\n");
    Fail("fileno", EBADF);
    EXPECT_TRUE(SetValueByKey(kFile, "MTU", "1400"));
    EXPECT_EQ(Get(kFile), "MTU = 1400\n");
    EXPECT_EQ(Log(), (LogLines{Warn("SetValueByKey", "fileno:Bad file descriptor\n")}));
    EXPECT_EQ(TraceOf({"fsync"}), Texts{});
}

TEST_F(SetValueByKeyTest, WritesOnWithoutALock)
{
    Put(kFile, "MTU = 1500\n");
    Fail("fcntl F_SETLKW F_WRLCK", ENOLCK);
    Fail("fcntl F_SETLKW F_UNLCK", ENOLCK);
    EXPECT_TRUE(SetValueByKey(kFile, "MTU", "1400"));
    EXPECT_EQ(Get(kFile), "MTU = 1400\n");
    EXPECT_EQ(LogOf("FileLock").size(), 2U);
    EXPECT_EQ(Log().size(), 2U);
}

TEST_F(SetValueByKeyTest, AMegabyteOfRubbishIsCleanedUp)
{
    EXPECT_EQ(Written(std::string(1024 * 1024, 'x') + "\nPRIO = 0\n", "MTU", "1500"),
              "MTU = 1500\n");
    EXPECT_EQ(Written(std::string(1024 * 1024, '\0'), "MTU", "1500"), "MTU = 1500\n");
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(SetValueByKeyTest, TheFileIsOldOrNewOrEmptyWhateverFails)
{
    Put(kFile, Settings({"MTU = 1500", "HOSTIP = 10.0.0.2"}));
    static bool done = false;
    FailEachCall([] { done = SetValueByKey(kFile, "MTU", "1400"); },
                 [](const std::string& failed) {
                     const bool notOpened = failed == "fopen /mnt/mtd/Config/network1 w+";
                     const bool notScanned = failed == "fopen /mnt/mtd/Config/network1 r+";
                     const bool notFlushed = failed.rfind("fflush", 0) == 0;
                     EXPECT_EQ(done, !notOpened);
                     EXPECT_EQ(Get(kFile), notOpened    ? "MTU = 1500\nHOSTIP = 10.0.0.2\n"
                                           : notScanned ? "MTU = 1400\n"
                                           : notFlushed ? ""
                                                        : "MTU = 1400\nHOSTIP = 10.0.0.2\n");
                     const bool silent = notFlushed || failed.find("O_WRONLY") != std::string::npos;
                     EXPECT_EQ(Log().size(), silent ? 0U : 1U);
                     EXPECT_EQ(OpenHandles(), Texts{});
                 });
}

// ---- many writers

/// Writes one key again and again.
void WriteOften(const char* key)
{
    for (int i = 0; i < 50; ++i) SetValueByKey(kFile, key, std::to_string(i).c_str());
}

TEST_F(SetValueByKeyTest, ThreadsDoNotLoseEachOthersKeys)
{
    Put(kFile, "");
    const Texts keys = {"MTU", "PRIO", "ROUTE", "LACP"};
    std::vector<std::thread> threads;
    for (const std::string& key : keys) threads.emplace_back([&key] { WriteOften(key.c_str()); });
    for (std::thread& thread : threads) thread.join();
    for (const std::string& key : keys) {
        char value[16] = {};
        EXPECT_TRUE(GetValueByKey(kFile, key.c_str(), value, sizeof(value))) << key;
        EXPECT_STREQ(value, "49");
    }
}

TEST_F(SetValueByKeyTest, ProcessesDoNotLoseEachOthersKeys)
{
    Put(kFile, "");
    const Texts keys = {"MTU", "PRIO", "ROUTE", "LACP"};
    std::vector<pid_t> writers;
    for (const std::string& key : keys) {
        const pid_t writer = fork();
        if (writer == 0) {
            WriteOften(key.c_str());
            _exit(0);
        }
        writers.push_back(writer);
    }
    for (const pid_t writer : writers) waitpid(writer, nullptr, 0);
    for (const std::string& key : keys) {
        char value[16] = {};
        EXPECT_TRUE(GetValueByKey(kFile, key.c_str(), value, sizeof(value))) << key;
        EXPECT_STREQ(value, "49");
    }
}

// ---- switch modes

class NetSwitchSetNetCardModeTest : public World {};

TEST_F(NetSwitchSetNetCardModeTest, SavesTheModeOfOneCardAtATime)
{
    EXPECT_EQ(NetSwitch_SetNetCardMode("eth0", 2), 0);
    EXPECT_EQ(Get(kModeFile), "eth0 = 2\n");
    EXPECT_EQ(NetSwitch_SetNetCardMode("eth1", 1), 0);
    EXPECT_EQ(Get(kModeFile), "eth1 = 1\n");
    EXPECT_EQ(Log(), (LogLines{kNoFileYet}));
}

TEST_F(NetSwitchSetNetCardModeTest, TakesAnyNumber)
{
    for (const int32_t mode : {0, 3, -1, INT32_MAX, INT32_MIN}) {
        EXPECT_EQ(NetSwitch_SetNetCardMode("eth0", mode), 0);
        EXPECT_EQ(Get(kModeFile), "eth0 = " + std::to_string(mode) + "\n");
    }
}

TEST_F(NetSwitchSetNetCardModeTest, IsReadBack)
{
    EXPECT_EQ(NetSwitch_SetNetCardMode("eth0", 1), 0);
    int32_t mode = 77;
    EXPECT_EQ(NetSwitch_GetNetCardMode("eth0", &mode), 0);
    EXPECT_EQ(mode, 1);
}

TEST_F(NetSwitchSetNetCardModeTest, RefusesNoName)
{
    EXPECT_EQ(NetSwitch_SetNetCardMode(nullptr, 1), -1);
    EXPECT_EQ(NetSwitch_SetNetCardMode("", 1), -1);
    EXPECT_EQ(Log(), (LogLines{Error("NetSwitch_SetNetCardMode", "eth name  is null"),
                               Error("NetSwitch_SetNetCardMode", "eth name  is null")}));
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(NetSwitchSetNetCardModeTest, AFailedWriteIsAFailure)
{
    Fail("fopen /mnt/mtd/Config/poeMode.conf w+", EROFS);
    EXPECT_EQ(NetSwitch_SetNetCardMode("eth0", 1), -1);
    EXPECT_EQ(Log(), (LogLines{kNoFileYet,
                               Error("SetValueByKey", "cannot fopen [Read-only file system]")}));
}

}  // namespace
