// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The backup memory as lanrise-status reads it: found as the library finds it, and never changed.

#include "StatusWorld.h"

#include "Backup.h"

#include <arpa/inet.h>

using namespace fake;
using status::MemoryKind;
using status::MemoryState;

namespace {

uint32_t Word(const char* text)
{
    return inet_addr(text);
}

class ReadBackupTest : public World {
protected:
    /// Reading must leave the bytes of every memory, and send nothing but requests to read.
    static status::Backup Read()
    {
        const std::string rtc(reinterpret_cast<char*>(kernel.rtc.bytes), 256);
        const std::string sram(reinterpret_cast<char*>(kernel.sram.bytes), 256);
        const std::string chip(reinterpret_cast<char*>(cmos.bytes), 256);
        ClearTrace();
        const status::Backup backup = status::ReadBackup();
        EXPECT_EQ(rtc, std::string(reinterpret_cast<char*>(kernel.rtc.bytes), 256));
        EXPECT_EQ(sram, std::string(reinterpret_cast<char*>(kernel.sram.bytes), 256));
        EXPECT_EQ(chip, std::string(reinterpret_cast<char*>(cmos.bytes), 256));
        EXPECT_EQ(kernel.sram.requests, std::vector<std::string>{});
        EXPECT_EQ(TraceOf({"CMOSWrite", "write", "fwrite"}), std::vector<std::string>{});
        EXPECT_EQ(OpenHandles(), std::vector<std::string>{});
        return backup;
    }
};

TEST_F(ReadBackupTest, ADeviceWithoutAny)
{
    cmos.capsResult = -1;
    EXPECT_EQ(Read().kind, MemoryKind::None);
}

TEST_F(ReadBackupTest, AnRtc)
{
    UseRtc("10.0.0.10", "255.0.255.0", "10.0.0.1");
    kernel.rtc.bytes[39] = 102;
    const status::Backup backup = Read();
    EXPECT_EQ(backup.kind, MemoryKind::Rtc);
    EXPECT_EQ(backup.state, MemoryState::Good);
    EXPECT_EQ(backup.ipv4.address, Word("10.0.0.10"));
    EXPECT_EQ(backup.ipv4.mask, Word("255.0.255.0"));
    EXPECT_EQ(backup.ipv4.gateway, Word("10.0.0.1"));
    EXPECT_EQ(backup.mark, 102U);
    EXPECT_EQ(kernel.rtc.requests, (std::vector<std::string>{"READ 39 1", "READ 40 16"}));
    EXPECT_EQ(TraceOf({"open"}), std::vector<std::string>{"open /dev/pdcRtc O_RDONLY"});
}

TEST_F(ReadBackupTest, AnRtcWithAWrongCheckSum)
{
    UseRtc("10.0.0.10", "255.255.255.0", "10.0.0.1");
    kernel.rtc.bytes[45] ^= 4;
    const status::Backup backup = Read();
    EXPECT_EQ(backup.state, MemoryState::Corrupt);
    EXPECT_FALSE(backup.ipv4.hasAddress);
}

TEST_F(ReadBackupTest, AnRtcThatIsNotForThisUser)
{
    UseRtc("10.0.0.10", "255.255.255.0", "10.0.0.1");
    Put("/dev/pdcSramFile", "");
    FailAll("open /dev/pdcRtc", EACCES);
    const status::Backup backup = Read();
    EXPECT_EQ(backup.kind, MemoryKind::Rtc);
    EXPECT_EQ(backup.state, MemoryState::Forbidden);
}

TEST_F(ReadBackupTest, AnRtcThatRefusesToBeRead)
{
    UseRtc("10.0.0.10", "255.255.255.0", "10.0.0.1");
    FailAll("ioctl PDC_RTC_READSRAM", EIO);
    EXPECT_EQ(Read().state, MemoryState::Failed);
}

TEST_F(ReadBackupTest, AnSramIsNotMadeOnlyToBeLookedAt)
{
    Put("/dev/pdcSramFile", "");
    const status::Backup backup = Read();
    EXPECT_EQ(backup.kind, MemoryKind::Sram);
    EXPECT_EQ(backup.state, MemoryState::NotLookedAt);
}

TEST_F(ReadBackupTest, TheFileBehindAnSramIsBelievedByItsCheckSum)
{
    Put("/dev/pdcSramFile", "");
    UseRtc("10.0.0.10", "255.255.255.0", "10.0.0.1");
    Remove("/dev/pdcRtc");
    const std::string image(reinterpret_cast<char*>(kernel.rtc.bytes), 256);
    Put("/mnt/mtd/RtcSramFile", image);
    EXPECT_EQ(Read().ipv4.address, Word("10.0.0.10"));

    Put("/mnt/mtd/RtcSramFile", image.substr(0, 55));
    EXPECT_EQ(Read().state, MemoryState::NotLookedAt);
}

TEST_F(ReadBackupTest, AnRtcThatIsNotThereLeavesItToTheSram)
{
    Put("/dev/pdcRtc", "");
    Put("/dev/pdcSramFile", "");
    FailAll("open /dev/pdcRtc", ENXIO);
    EXPECT_EQ(Read().kind, MemoryKind::Sram);
}

TEST_F(ReadBackupTest, ACmos)
{
    UseCmos("10.0.0.10", 24, "10.0.0.1");
    const status::Backup backup = Read();
    EXPECT_EQ(backup.kind, MemoryKind::Cmos);
    EXPECT_EQ(backup.state, MemoryState::Good);
    EXPECT_EQ(backup.ipv4.mask, Word("255.255.255.0"));
    EXPECT_TRUE(backup.ipv4.isUsable);
}

TEST_F(ReadBackupTest, ACmosWithoutFlagOrWithAWrongCheckByte)
{
    UseCmos("10.0.0.10", 24, "10.0.0.1");
    CmosFlagByte() = 0x50;
    EXPECT_EQ(Read().state, MemoryState::Unflagged);
    CmosFlagByte() = 0xA0;
    cmos.bytes[cmos.networkStart] ^= 1;
    EXPECT_EQ(Read().state, MemoryState::Corrupt);
}

TEST_F(ReadBackupTest, MasksOfACmosAreRestoredAsTheLibraryDoes)
{
    UseCmos("10.0.0.10", 0, "10.0.0.10");
    EXPECT_EQ(Read().ipv4.mask, Word("255.255.255.255"));
    UseCmos("10.0.0.10", 33, "10.0.0.1");
    EXPECT_FALSE(Read().ipv4.hasAddress);
}

TEST_F(ReadBackupTest, ACmosWithoutRoomForTheNetwork)
{
    UseCmos("10.0.0.10", 24, "10.0.0.1");
    cmos.networkStart = 0;
    EXPECT_EQ(Read().kind, MemoryKind::None);
}

}  // namespace
