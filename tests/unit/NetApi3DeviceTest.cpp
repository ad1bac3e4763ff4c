// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Switches of the whole device behind an interface object: two files for outside readers.

#include "NetApi3_0.h"

#include "fake/World.h"

#include <algorithm>
#include <cstring>
#include <filesystem>

#include <sys/stat.h>
#include <unistd.h>

using namespace fake;
using namespace std::string_literals;

namespace {

class DeviceSwitchTest : public World {
protected:
    void SetUp() override
    {
        World::SetUp();
        kernel.Add("eth0");
        NetInterfaceDesc desc{};
        desc.name = "eth0";
        ASSERT_EQ(createNetInterface(&desc, &card), 0);
        ClearTrace();
        ClearLog();
    }

    /// What is open beside the control socket, which the making of the object has left.
    static Texts StillOpen()
    {
        Texts open = OpenHandles();
        open.erase(std::remove(open.begin(), open.end(), "socket AF_INET 2 0"), open.end());
        return open;
    }

    static NetInterface* card;
};

NetInterface* DeviceSwitchTest::card = nullptr;

// ---- setTelnet

constexpr char kTelnet[] = "/tmp/telnet";

class SetTelnetTest : public DeviceSwitchTest {
protected:
    void SetUp() override
    {
        DeviceSwitchTest::SetUp();
        MakeFolder("/tmp/telnet");
        Remove(kTelnet);
        umask(0);
    }

    static int Set(unsigned char enable)
    {
        TelnetInfo info{};
        info.enable = enable & 1U;
        return card->setTelnet(card, &info);
    }

    static void ExpectRefused()
    {
        ClearLog();
        EXPECT_EQ(Set(1), -1);
        EXPECT_EQ(Log(), LogLines{Error("API3_setTelnet", "open /tmp/telnet failed")});
        EXPECT_EQ(TraceOf({"write"}), Texts{});
        EXPECT_EQ(StillOpen(), Texts{});
    }
};

TEST_F(SetTelnetTest, WritesTheWishWithItsTerminator)
{
    EXPECT_EQ(Set(1), 0);
    EXPECT_EQ(Get(kTelnet), "on\0"s);
    EXPECT_EQ(Trace(), (Texts{"open /tmp/telnet O_RDWR|O_CREAT", "fstat /tmp/telnet",
                              "lstat /tmp/telnet", "write /tmp/telnet", "close /tmp/telnet"}));
    EXPECT_EQ(Set(0), 0);
    EXPECT_EQ(Get(kTelnet), "off\0"s);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(SetTelnetTest, AFileThatIsNotOursIsClosedBeforeItIsToldOf)
{
    Put("/tmp/elsewhere", "");
    std::filesystem::create_symlink("elsewhere", Mapped(kTelnet));
    ExpectRefused();
    EXPECT_EQ(TimelineOf({"close", "Error"}),
              (Texts{"close /tmp/telnet", "Error|API3_setTelnet|open /tmp/telnet failed"}));
}

TEST_F(SetTelnetTest, ANewFileIsItsOwnersAlone)
{
    EXPECT_EQ(Set(1), 0);
    struct stat status {};
    ASSERT_EQ(stat(Mapped(kTelnet).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode, static_cast<mode_t>(S_IFREG | 0700));
}

TEST_F(SetTelnetTest, AShorterWishLeavesTheTailOfTheOldOne)
{
    EXPECT_EQ(Set(0), 0);
    EXPECT_EQ(Set(1), 0);
    EXPECT_EQ(Get(kTelnet), "on\0\0"s);
    Put(kTelnet, "0123456789");
    EXPECT_EQ(Set(0), 0);
    EXPECT_EQ(Get(kTelnet), "off\0"s + "456789");
}

TEST_F(SetTelnetTest, OnlyTheFirstBitCounts)
{
    TelnetInfo info;
    memset(&info, 0xFE, sizeof(info));
    EXPECT_EQ(card->setTelnet(card, &info), 0);
    EXPECT_EQ(Get(kTelnet), "off\0"s);
    memset(&info, 0x01, sizeof(info));
    EXPECT_EQ(card->setTelnet(card, &info), 0);
    EXPECT_EQ(Get(kTelnet), "on\0\0"s);
}

TEST_F(SetTelnetTest, NullIsToldInTheLog)
{
    TelnetInfo info{};
    const LogLines said = {Error("API3_setTelnet", "telnet set fail")};
    EXPECT_EQ(card->setTelnet(nullptr, &info), -1);
    EXPECT_EQ(Log(), said);
    ClearLog();
    EXPECT_EQ(card->setTelnet(card, nullptr), -1);
    EXPECT_EQ(Log(), said);
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(SetTelnetTest, AFileThatCannotBeOpenedIsToldInTheLog)
{
    Fail("open /tmp/telnet", EACCES);
    ExpectRefused();
    EXPECT_FALSE(Exists(kTelnet));
}

TEST_F(SetTelnetTest, ALinkIsNotFollowedByTheWrite)
{
    Put("/mnt/mtd/Config/network", "HOSTIP = 10.0.0.2\n");
    ASSERT_EQ(symlink(Mapped("/mnt/mtd/Config/network").c_str(), Mapped(kTelnet).c_str()), 0);
    ExpectRefused();
    EXPECT_EQ(Get("/mnt/mtd/Config/network"), "HOSTIP = 10.0.0.2\n");
}

TEST_F(SetTelnetTest, AFileThatTookTheOthersPlaceIsLeftAlone)
{
    Put(kTelnet, "old");
    OnCall("lstat", [] {
        rename(Mapped(kTelnet).c_str(), (Mapped(kTelnet) + ".moved").c_str());
        Put(kTelnet, "new");
    });
    ExpectRefused();
    EXPECT_EQ(Get(kTelnet), "new");
    EXPECT_EQ(Get("/tmp/telnet.moved"), "old");
}

TEST_F(SetTelnetTest, WhatIsNoRegularFileIsRefused)
{
    ASSERT_EQ(mkfifo(Mapped(kTelnet).c_str(), 0700), 0);
    ExpectRefused();
}

TEST_F(SetTelnetTest, AFailedWriteIsToldBehindTheClose)
{
    Put(kTelnet, "off");
    Fail("write /tmp/telnet", ENOSPC);
    EXPECT_EQ(Set(1), -1);
    EXPECT_EQ(Log(), LogLines{Error("API3_setTelnet", "write file failed")});
    EXPECT_EQ(Get(kTelnet), "off");
    EXPECT_EQ(StillOpen(), Texts{});
}

TEST_F(SetTelnetTest, EachFailureIsToldAndLeavesNothingOpen)
{
    static int result;
    FailEachCall(
        [] { result = Set(1); },
        [](const std::string& failed) {
            EXPECT_EQ(result, -1);
            const bool opened = failed.rfind("write", 0) == 0;
            EXPECT_EQ(Log(), LogLines{Error("API3_setTelnet", opened ? "write file failed"
                                                                     : "open /tmp/telnet failed")});
            EXPECT_EQ(Get(kTelnet), failed.rfind("open", 0) == 0 ? "(no file)" : "");
        });
}

// ---- setSTP

constexpr char kTree[] = "/proc/stp_ctrl";

class SetStpTest : public DeviceSwitchTest {
protected:
    void SetUp() override
    {
        DeviceSwitchTest::SetUp();
        Put(kTree, "");
    }

    static int Set(uint8_t enable)
    {
        STPInfo info{};
        info.enable = enable;
        return card->setSTP(card, &info);
    }

    static std::string OpensOnce() { return std::string("open ") + kTree + " O_RDWR"; }
};

TEST_F(SetStpTest, WritesOnWithoutATerminatorAndStaysOpen)
{
    EXPECT_EQ(Set(1), 0);
    EXPECT_EQ(Get(kTree), "on");
    EXPECT_EQ(Trace(), (Texts{OpensOnce(), "fcntl F_SETFD", "write /proc/stp_ctrl"}));
    EXPECT_EQ(StillOpen(), Texts{OpensOnce()});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(SetStpTest, WritesOffForEverythingButOne)
{
    for (const uint8_t enable : {0, 2, 255}) {
        Put(kTree, "");
        ClearTrace();
        EXPECT_EQ(Set(enable), 0);
        EXPECT_EQ(TraceOf({"write"}), Texts{"write /proc/stp_ctrl"});
    }
    EXPECT_EQ(Get(kTree).substr(Get(kTree).size() - 3), "off");
}

TEST_F(SetStpTest, TheFileIsOpenedOnce)
{
    EXPECT_EQ(Set(0), 0);
    EXPECT_EQ(Set(1), 0);
    EXPECT_EQ(Get(kTree), "offon");
    EXPECT_EQ(TraceOf({"open", "close"}), Texts{OpensOnce()});
}

TEST_F(SetStpTest, AMissingFileIsToldAndTriedAgain)
{
    Remove(kTree);
    for (int i = 0; i < 2; ++i) {
        ClearLog();
        EXPECT_EQ(Set(1), -1);
        EXPECT_EQ(Log(), LogLines{Error("API3_setSTP", "can not open /proc/stp_ctrl")});
        EXPECT_EQ(TraceOf({"fcntl", "write"}), Texts{});
    }
    EXPECT_FALSE(Exists(kTree));
    Put(kTree, "");
    EXPECT_EQ(Set(1), 0);
    EXPECT_EQ(Get(kTree), "on");
}

TEST_F(SetStpTest, AFailedWriteIsToldAndTheFileStaysOpen)
{
    Fail("write /proc/stp_ctrl", EIO);
    EXPECT_EQ(Set(1), -1);
    EXPECT_EQ(Log(), LogLines{Error("API3_setSTP", "write to file error")});
    EXPECT_EQ(StillOpen(), Texts{OpensOnce()});
    EXPECT_EQ(Set(1), 0);
    EXPECT_EQ(TraceOf({"open"}), Texts{OpensOnce()});
}

TEST_F(SetStpTest, NullIsToldInTheLog)
{
    STPInfo info{};
    const LogLines said = {Error("API3_setSTP", "params error")};
    EXPECT_EQ(card->setSTP(nullptr, &info), -1);
    EXPECT_EQ(Log(), said);
    ClearLog();
    EXPECT_EQ(card->setSTP(card, nullptr), -1);
    EXPECT_EQ(Log(), said);
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(SetStpTest, EachFailureIsTold)
{
    static int result;
    FailEachCall([] { result = Set(1); },
                 [](const std::string& failed) {
                     const bool harmless = failed == "fcntl F_SETFD";
                     EXPECT_EQ(result, harmless ? 0 : -1);
                     EXPECT_EQ(Log().size(), harmless ? 0U : 1U);
                     EXPECT_EQ(Get(kTree), harmless ? "on" : "");
                 },
                 {OpensOnce(), "socket"});
}

}  // namespace
