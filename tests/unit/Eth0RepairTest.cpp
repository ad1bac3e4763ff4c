// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The boot's repair of eth0: the check of the backup memory, what makes a saved triple valid, and
// which of file and backup wins.

#include "LanriseWorld.h"

#include "Lanrise.h"

using namespace fake;

namespace {

// ---- backup check

class CheckBackupTest : public World {};

TEST_F(CheckBackupTest, LeavesASoundBackupAlone)
{
    UseRtc("10.0.0.2", "255.0.0.0", "10.0.0.1");
    EXPECT_TRUE(CheckBackup());
    EXPECT_EQ(LogOf("CheckBackup"), LogLines{});
    EXPECT_EQ(RtcBlock(), "10.0.0.2 255.0.0.0 10.0.0.1");
}

TEST_F(CheckBackupTest, WipesACorruptBackup)
{
    UseRtc("10.0.0.2", "255.0.0.0", "10.0.0.1");
    kernel.rtc.bytes[45] ^= 1;
    EXPECT_TRUE(CheckBackup());
    EXPECT_EQ(LogOf("CheckBackup"), LogLines{Error("CheckBackup", "Backup crc check error!!!")});
    EXPECT_EQ(RtcBlock(), "0.0.0.0 0.0.0.0 0.0.0.0");
}

TEST_F(CheckBackupTest, IsTrueEvenWhenTheWipeFails)
{
    UseRtc("10.0.0.2", "255.0.0.0", "10.0.0.1");
    kernel.rtc.bytes[45] ^= 1;
    Fail("ioctl PDC_RTC_WRITESRAM", EIO);
    EXPECT_TRUE(CheckBackup());
    EXPECT_EQ(Log().back(), Error("RestBackup", "ResetRTC error ."));
}

// ---- one card

class CheckNetCardConfigTest : public World {};

TEST_F(CheckNetCardConfigTest, NoNameIsNoCard)
{
    EXPECT_FALSE(CheckNetCardConfig(nullptr));
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Trace(), std::vector<std::string>{});
}

struct CardCase {
    std::string name;
    std::vector<std::string> lines;
    bool valid;
    LogLines said;
};

LogLine ParseError(const std::string& texts)
{
    return Error("CheckNetCardConfig", "inet_pton failed! " + texts);
}

class CheckNetCardConfigRulesTest : public World, public testing::WithParamInterface<CardCase> {};

INSTANTIATE_TEST_SUITE_P(
    CheckNetCardConfig, CheckNetCardConfigRulesTest,
    testing::Values(
        CardCase{"Valid",
                 {"HOSTIP = 10.0.0.2", "SUBMASK = 255.0.0.0", "GATEWAYIP = 10.9.9.1"},
                 true,
                 {}},
        CardCase{"GatewayInAnotherNet",
                 {"HOSTIP = 10.0.0.2", "SUBMASK = 255.255.255.0", "GATEWAYIP = 10.0.1.1"},
                 false,
                 {}},
        CardCase{"NoMaskIsOneNet",
                 {"HOSTIP = 10.0.0.2", "SUBMASK = 0.0.0.0", "GATEWAYIP = 192.168.0.1"},
                 true,
                 {}},
        CardCase{"MaskWithHoles",
                 {"HOSTIP = 10.1.0.2", "SUBMASK = 255.0.255.0", "GATEWAYIP = 10.9.0.1"},
                 true,
                 {}},
        CardCase{"NoAddressThoughOneNet",
                 {"HOSTIP = 0.0.0.0", "SUBMASK = 255.0.0.0", "GATEWAYIP = 0.0.0.1"},
                 false,
                 {}},
        CardCase{"AddressMissing", {"SUBMASK = 255.0.0.0", "GATEWAYIP = 10.0.0.1"}, false, {}},
        CardCase{"MaskMissing", {"HOSTIP = 10.0.0.2", "GATEWAYIP = 10.0.0.1"}, false, {}},
        CardCase{"GatewayMissing", {"HOSTIP = 10.0.0.2", "SUBMASK = 255.0.0.0"}, false, {}},
        CardCase{"NotAnAddress",
                 {"HOSTIP = x", "SUBMASK = 255.0.0.0", "GATEWAYIP = 10.0.0.1"},
                 false,
                 {Error("GetIPByConfig", "ip: x mask 255.0.0.0 error.")}},
        // Short forms pass the reader and fail here; what was parsed before them is judged.
        CardCase{"ShortAddress",
                 {"HOSTIP = 10.2", "SUBMASK = 255.0.0.0", "GATEWAYIP = 10.0.0.1"},
                 false,
                 {ParseError("add: 10.2, mask: 255.0.0.0, gateway: 10.0.0.1")}},
        CardCase{"ShortMaskIsNone",
                 {"HOSTIP = 10.0.0.2", "SUBMASK = 255.255", "GATEWAYIP = 192.168.0.1"},
                 true,
                 {ParseError("add: 10.0.0.2, mask: 255.255, gateway: 192.168.0.1")}},
        CardCase{"ShortGatewayIsNone",
                 {"HOSTIP = 10.0.0.2", "SUBMASK = 255.0.0.0", "GATEWAYIP = 10.1"},
                 false,
                 {ParseError("add: 10.0.0.2, mask: 255.0.0.0, gateway: 10.1")}}),
    [](const auto& test) { return test.param.name; });

TEST_P(CheckNetCardConfigRulesTest, JudgesTheSavedTriple)
{
    std::vector<std::string> lines = GetParam().lines;
    lines.push_back("MTU = 1400");
    Put(CardFile("eth1"), Settings(lines));
    EXPECT_EQ(CheckNetCardConfig("eth1"), GetParam().valid);
    EXPECT_EQ(Log(), GetParam().said);
    EXPECT_EQ(Get(CardFile("eth1")), Settings(lines));
}

TEST_P(CheckNetCardConfigRulesTest, SavesAMissingMtuWhateverTheRestIs)
{
    std::vector<std::string> lines = GetParam().lines;
    Put(CardFile("eth1"), Settings(lines));
    EXPECT_EQ(CheckNetCardConfig("eth1"), GetParam().valid);
    lines.push_back("MTU = 1500");
    EXPECT_EQ(Get(CardFile("eth1")), Settings(lines));
}

TEST_F(CheckNetCardConfigTest, ReplacesAnMtuThatIsNone)
{
    Put(CardFile("eth1"), "MTU = 0\n");
    EXPECT_FALSE(CheckNetCardConfig("eth1"));
    EXPECT_EQ(Get(CardFile("eth1")), "MTU = 1500\n");
}

// ---- eth0

std::string Eth0File(const std::string& address, const std::string& mask,
                     const std::string& gateway)
{
    return Settings(
        {"MTU = 1400", "HOSTIP = " + address, "SUBMASK = " + mask, "GATEWAYIP = " + gateway});
}

/// Requests that changed the backup memory.
std::vector<std::string> BackupWrites()
{
    std::vector<std::string> writes;
    for (const std::string& request : kernel.rtc.requests) {
        if (request.rfind("WRITE", 0) == 0) writes.push_back(request);
    }
    return writes;
}

const LogLine kResetWarning =
    Warn("CheckEth0Config", "eth0 in config and backup is not correct! set been reset flag, will "
                            "reboot with user config");

class CheckEth0ConfigTest : public World {
protected:
    void ListEth0(const std::string& file)
    {
        Put(CardFile("eth0"), file);
        List({"eth0"});
    }
};

TEST_F(CheckEth0ConfigTest, WithoutEth0NothingIsTouched)
{
    UseRtc("10.0.0.2", "255.0.0.0", "10.0.0.1");
    Put(CardFile("eth0"), "HOSTIP = x\n");
    List({"eth1", "eth01", "xeth0"});
    EXPECT_TRUE(CheckEth0Config());
    EXPECT_EQ(Log(), LogLines{Info("FindWordInLine", "can not find eth0 in eth1,eth01,xeth0,")});
    EXPECT_EQ(Trace(), std::vector<std::string>{});
    EXPECT_EQ(Get(CardFile("eth0")), "HOSTIP = x\n");
}

TEST_F(CheckEth0ConfigTest, SavesAMissingMtu)
{
    UseRtc("10.0.0.2", "255.0.0.0", "10.0.0.1");
    ListEth0("HOSTIP = 10.0.0.2\nSUBMASK = 255.0.0.0\nGATEWAYIP = 10.0.0.1\n");
    EXPECT_TRUE(CheckEth0Config());
    EXPECT_EQ(Get(CardFile("eth0")),
              "HOSTIP = 10.0.0.2\nSUBMASK = 255.0.0.0\nGATEWAYIP = 10.0.0.1\nMTU = 1500\n");
}

TEST_F(CheckEth0ConfigTest, EqualCopiesAreLeftAlone)
{
    UseRtc("10.0.0.2", "255.0.0.0", "10.0.0.1");
    ListEth0(Eth0File("10.0.0.2", "255.0.0.0", "10.0.0.1"));
    EXPECT_TRUE(CheckEth0Config());
    EXPECT_EQ(LogOf("CheckEth0Config"), LogLines{});
    EXPECT_EQ(FileWrites(), std::vector<std::string>{});
    EXPECT_EQ(BackupWrites(), std::vector<std::string>{});
}

TEST_F(CheckEth0ConfigTest, OfTwoValidCopiesTheBackupWins)
{
    const std::vector<std::string> files = {
        Eth0File("10.0.0.3", "255.0.0.0", "10.0.0.1"),  // address alone
        Eth0File("10.0.0.2", "255.0.255.0", "10.0.0.1"),
        Eth0File("10.0.0.2", "255.0.0.0", "10.0.0.9"),
        Eth0File("192.168.0.108", "255.255.255.0", "192.168.0.1"),
        Eth0File("10.0.0.2", "255.255", "10.0.0.1"),  // a mask that reads as none
    };
    UseRtc("10.0.0.2", "255.0.0.0", "10.0.0.1");
    ListEth0("");
    for (const std::string& file : files) {
        Put(CardFile("eth0"), file);
        EXPECT_TRUE(CheckEth0Config());
        EXPECT_EQ(Get(CardFile("eth0")), Eth0File("10.0.0.2", "255.0.0.0", "10.0.0.1")) << file;
    }
    EXPECT_EQ(BackupWrites(), std::vector<std::string>{});
}

TEST_F(CheckEth0ConfigTest, AFileThatWasLostSinceIsNotTakenForTheOneBefore)
{
    const std::string file = Eth0File("10.0.0.2", "255.0.0.0", "10.0.0.1");
    UseRtc("10.0.0.2", "255.0.0.0", "10.0.0.1");
    ListEth0(file);
    EXPECT_TRUE(CheckEth0Config());
    Put(CardFile("eth0"), "MTU = 1500\n");
    EXPECT_TRUE(CheckEth0Config());
    EXPECT_EQ(Get(CardFile("eth0")),
              "MTU = 1500\nHOSTIP = 10.0.0.2\nSUBMASK = 255.0.0.0\nGATEWAYIP = 10.0.0.1\n");
}

TEST_F(CheckEth0ConfigTest, ABackupOfAnAddressAloneDiffersByItsGateway)
{
    // With a mask of no bits every gateway is in the same net. A zero is not saved.
    UseRtc("10.0.0.2", "0.0.0.0", "0.0.0.0");
    ListEth0(Eth0File("10.0.0.2", "0.0.0.0", "10.0.0.1"));
    EXPECT_TRUE(CheckEth0Config());
    EXPECT_TRUE(Logged(Info("SetGatewayByConfig", "gateway: 0.0.0.0 not save.")));
    EXPECT_EQ(Get(CardFile("eth0")), Eth0File("10.0.0.2", "0.0.0.0", "10.0.0.1"));
    EXPECT_EQ(BackupWrites(), std::vector<std::string>{});
}

TEST_F(CheckEth0ConfigTest, AValidBackupReplacesAnInvalidFile)
{
    const std::vector<std::string> files = {
        Eth0File("10.0.0.2", "255.255.255.0", "10.0.1.1"),  // gateway in another net
        Eth0File("0.0.0.0", "255.0.0.0", "0.0.0.1"),
        Eth0File("x", "255.0.0.0", "10.0.0.1"),
        Eth0File("10.0.0.2", "255.0.0.0", "x"),
        Eth0File("10.2", "255.0.0.0", "10.0.0.1"),
    };
    UseRtc("10.0.0.2", "255.0.0.0", "10.0.0.1");
    ListEth0("");
    for (const std::string& file : files) {
        Put(CardFile("eth0"), file);
        EXPECT_TRUE(CheckEth0Config());
        EXPECT_EQ(Get(CardFile("eth0")), Eth0File("10.0.0.2", "255.0.0.0", "10.0.0.1")) << file;
    }
    EXPECT_EQ(BackupWrites(), std::vector<std::string>{});
}

TEST_F(CheckEth0ConfigTest, AnEmptyFileIsFilledFromTheBackup)
{
    UseRtc("10.0.0.2", "255.0.0.0", "10.0.0.1");
    ListEth0("");
    EXPECT_TRUE(CheckEth0Config());
    EXPECT_EQ(LogOf("CheckEth0Config"), LogLines{});
    EXPECT_EQ(Get(CardFile("eth0")),
              "MTU = 1500\nHOSTIP = 10.0.0.2\nSUBMASK = 255.0.0.0\nGATEWAYIP = 10.0.0.1\n");
}

TEST_F(CheckEth0ConfigTest, AWipedBackupIsFilledFromTheFile)
{
    UseRtc("0.0.0.0", "0.0.0.0", "0.0.0.0");
    ListEth0(Eth0File("10.0.0.2", "255.0.0.0", "10.0.0.1"));
    EXPECT_TRUE(CheckEth0Config());
    EXPECT_EQ(
        Log(),
        (LogLines{Info("CheckDeviceType", "/dev/pdcSramFile  or /dev/pdcRtc exist. this is IPC."),
                  Info("CheckDeviceType", "RTC exist, use RTC to backup."),
                  Error("RestoreIP", "ip is zero."),
                  Warn("CheckEth0Config", "Restore eth0's IP failed"),
                  Error("RestoreMask", "mask is 0."),
                  Warn("CheckEth0Config", "Restore eht0's mask failed"),
                  Error("RestoreGateway", "gateway is 0."),
                  Warn("CheckEth0Config", "Restore eth0's gateway failed"),
                  Error("CheckEth0Config", "addr[] or mask[] or gateway[] invalid!")}));
    EXPECT_EQ(RtcBlock(), "10.0.0.2 255.0.0.0 10.0.0.1");
    // Address, gateway, mask: each patch writes the whole block.
    EXPECT_EQ(BackupWrites(),
              (std::vector<std::string>{"WRITE 40 16", "WRITE 40 16", "WRITE 40 16"}));
    EXPECT_EQ(FileWrites(), std::vector<std::string>{});
}

TEST_F(CheckEth0ConfigTest, TheBackupIsWrittenInTheOrderAddressGatewayMask)
{
    UseRtc("0.0.0.0", "0.0.0.0", "0.0.0.0");
    ListEth0(Eth0File("10.0.0.2", "255.0.0.0", "10.0.0.1"));
    std::vector<std::string> blocks;
    std::function<void()> note = [&] {
        blocks.push_back(RtcBlock());
        OnCall("ioctl PDC_RTC_WRITESRAM", note);
    };
    OnCall("ioctl PDC_RTC_WRITESRAM", note);
    CheckEth0Config();
    EXPECT_EQ(blocks,
              (std::vector<std::string>{"0.0.0.0 0.0.0.0 0.0.0.0", "10.0.0.2 0.0.0.0 0.0.0.0",
                                        "10.0.0.2 0.0.0.0 10.0.0.1"}));
}

TEST_F(CheckEth0ConfigTest, AnInvalidBackupIsReplacedByTheFile)
{
    UseRtc("10.0.0.2", "255.255.255.0", "10.0.1.1");
    ListEth0(Eth0File("10.0.0.9", "255.0.0.0", "10.0.0.1"));
    EXPECT_TRUE(CheckEth0Config());
    EXPECT_EQ(LogOf("CheckEth0Config"), LogLines{});
    EXPECT_EQ(RtcBlock(), "10.0.0.9 255.0.0.0 10.0.0.1");
}

TEST_F(CheckEth0ConfigTest, WhatIsWrittenIsWhatWasParsed)
{
    UseRtc("0.0.0.0", "0.0.0.0", "0.0.0.0");
    ListEth0(Eth0File("10.0.0.2", "255.255", "10.0.0.1"));
    EXPECT_TRUE(CheckEth0Config());
    EXPECT_TRUE(Logged(
        Error("CheckEth0Config", "addr[10.0.0.2] or mask[255.255] or gateway[10.0.0.1] invalid!")));
    EXPECT_EQ(RtcBlock(), "10.0.0.2 0.0.0.0 0.0.0.0");
}

TEST_F(CheckEth0ConfigTest, WithoutAnyValidCopyBothGetTheFactoryValues)
{
    UseRtc("10.0.0.2", "255.255.255.0", "10.0.1.1");
    kernel.rtc.bytes[39] = 7;
    ListEth0(Eth0File("0.0.0.0", "255.0.0.0", "10.0.0.1"));
    EXPECT_FALSE(CheckEth0Config());
    EXPECT_EQ(LogOf("CheckEth0Config"), LogLines{kResetWarning});
    EXPECT_EQ(Get(CardFile("eth0")), Eth0File("192.168.0.108", "255.255.255.0", "192.168.0.1"));
    EXPECT_EQ(RtcBlock(), "192.168.0.108 255.255.255.0 192.168.0.1");
    EXPECT_EQ(kernel.rtc.bytes[39], 7);  // the mark of an RTC is not this system's to set
}

TEST_F(CheckEth0ConfigTest, OnCmosAResetIsMarked)
{
    UseCmos("0.0.0.0", 0, "0.0.0.0");
    ListEth0("");
    EXPECT_FALSE(CheckEth0Config());
    EXPECT_EQ(LogOf("CheckEth0Config").back(), kResetWarning);
    EXPECT_EQ(CmosRecord(), "192.168.0.108/24 192.168.0.1 flag 10 mark 102");
    EXPECT_EQ(Get(CardFile("eth0")), "MTU = 1500\nHOSTIP = 192.168.0.108\n"
                                     "SUBMASK = 255.255.255.0\nGATEWAYIP = 192.168.0.1\n");
}

TEST_F(CheckEth0ConfigTest, TheResetIsMarkedBeforeAnythingIsReplaced)
{
    UseCmos("0.0.0.0", 0, "0.0.0.0");
    ListEth0("MTU = 1400\n");
    OnCall("CMOSWrite", [] { EXPECT_EQ(Get(CardFile("eth0")), "MTU = 1400\n"); });
    OnCall("fopen /mnt/mtd/Config/network w+",
           [] { EXPECT_EQ(CmosRecord(), "0.0.0.0/0 0.0.0.0 flag 10 mark 102"); });
    EXPECT_FALSE(CheckEth0Config());
}

TEST_F(CheckEth0ConfigTest, AMaskOfNoBitsOnCmosIsAFullOne)
{
    UseCmos("10.0.0.2", 0, "10.0.0.1");
    ListEth0(Eth0File("10.0.0.9", "255.0.0.0", "10.0.0.1"));
    EXPECT_TRUE(CheckEth0Config());
    EXPECT_EQ(CmosRecord(), "10.0.0.9/8 10.0.0.1 flag 10 mark 0");  // was invalid
}

TEST_F(CheckEth0ConfigTest, AMaskOfNoBitsOnCmosSuitsACardThatIsItsOwnGateway)
{
    UseCmos("10.0.0.2", 0, "10.0.0.2");
    ListEth0(Eth0File("10.0.0.9", "255.0.0.0", "10.0.0.1"));
    EXPECT_TRUE(CheckEth0Config());
    EXPECT_EQ(Get(CardFile("eth0")), Eth0File("10.0.0.2", "255.255.255.255", "10.0.0.2"));
}

TEST_F(CheckEth0ConfigTest, ABackupThatCannotBeWrittenCatchesUpAtTheNextBoot)
{
    UseCmos("0.0.0.0", 0, "0.0.0.0");
    CmosFlagByte() = 0;  // a new board: nothing is read before the flag is set
    ListEth0(Eth0File("10.0.0.2", "255.0.0.0", "10.0.0.1"));
    EXPECT_TRUE(CheckEth0Config());
    EXPECT_EQ(CmosRecord(), "0.0.0.0/0 0.0.0.0 flag 0 mark 0");
    EXPECT_EQ(Get(CardFile("eth0")), Eth0File("10.0.0.2", "255.0.0.0", "10.0.0.1"));

    CmosFlagByte() = 0xA0;
    EXPECT_TRUE(CheckEth0Config());
    EXPECT_EQ(CmosRecord(), "10.0.0.2/8 10.0.0.1 flag 10 mark 0");
}

TEST_F(CheckEth0ConfigTest, WithoutAnyBackupDeviceTheFileStands)
{
    FailAll("CMOS", ENODEV);
    ListEth0(Eth0File("10.0.0.2", "255.0.0.0", "10.0.0.1"));
    EXPECT_TRUE(CheckEth0Config());
    EXPECT_EQ(LogOf("CheckEth0Config"),
              (LogLines{Warn("CheckEth0Config", "Restore eth0's IP failed"),
                        Warn("CheckEth0Config", "Restore eht0's mask failed"),
                        Warn("CheckEth0Config", "Restore eth0's gateway failed"),
                        Error("CheckEth0Config", "addr[] or mask[] or gateway[] invalid!")}));
    EXPECT_EQ(Get(CardFile("eth0")), Eth0File("10.0.0.2", "255.0.0.0", "10.0.0.1"));
}

TEST_F(CheckEth0ConfigTest, WhateverFailsTheFileStaysWhole)
{
    UseRtc("10.0.0.2", "255.0.0.0", "10.0.0.1");
    ListEth0(Eth0File("10.0.0.9", "255.0.0.0", "10.0.0.1"));
    FailEachCall([] { CheckEth0Config(); }, [](const std::string&) { ExpectWellFormedFiles(); },
                 {"socket", "open /dev/pdcRtc"});
}

}  // namespace
