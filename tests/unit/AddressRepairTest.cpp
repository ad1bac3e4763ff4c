// The boot's repair of saved addresses: eth0 and its backup, the factory addresses of the other
// cards, the default card, the resolvers.

#include "LanriseWorld.h"

#include "Lanrise.h"

#include <cstring>

#include <arpa/inet.h>

using namespace fake;

// ---- a parser that a test can make fail

namespace {

std::string unparsable;

}  // namespace

extern "C" {

int __real_inet_pton(int family, const char* text, void* address);

int __wrap_inet_pton(int family, const char* text, void* address)
{
    return text == unparsable ? 0 : __real_inet_pton(family, text, address);
}

}  // extern "C"

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

std::vector<std::string> FileWrites()
{
    std::vector<std::string> writes;
    for (const std::string& call : TraceOf({"fopen /mnt/mtd/Config"})) {
        if (call.substr(call.size() - 2) == "w+") writes.push_back(call);
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

// ---- the other cards

std::string FactoryFile(const std::string& address, const std::string& gateway)
{
    return Settings(
        {"MTU = 1500", "HOSTIP = " + address, "SUBMASK = 255.255.255.0", "GATEWAYIP = " + gateway});
}

const std::string kValidFile =
    Settings({"MTU = 1400", "HOSTIP = 10.0.0.2", "SUBMASK = 255.0.0.0", "GATEWAYIP = 10.0.0.1"});

class CheckEthCardConfigTest : public World {};

TEST_F(CheckEthCardConfigTest, EachCardGetsTheAddressOfItsNumber)
{
    std::vector<std::string> cards;
    for (int i = 0; i < 32; ++i) cards.push_back("eth" + std::to_string(i));
    List(cards);
    EXPECT_TRUE(CheckEthCardConfig());
    EXPECT_EQ(Get(CardFile("eth0")), "");  // has a repair of its own
    for (int i = 1; i < 32; ++i) {
        EXPECT_EQ(Get(CardFile(cards[static_cast<size_t>(i)])),
                  FactoryFile("192.168.0." + std::to_string(108 + i), "192.168.0.1"));
    }
}

TEST_F(CheckEthCardConfigTest, AGapDoesNotEndTheWalk)
{
    Put(CardFile("eth2"), "");
    List({"eth0", "eth3"});
    EXPECT_TRUE(CheckEthCardConfig());
    EXPECT_EQ(SavedFiles(), (std::map<std::string, std::string>{
                                {"network", ""},
                                {"networketh2", ""},
                                {"networketh3", FactoryFile("192.168.0.111", "192.168.0.1")}}));
    LogLines misses;
    for (int i = 1; i < 32; ++i) {
        if (i == 3) continue;
        misses.push_back(
            Info("FindWordInLine", "can not find eth" + std::to_string(i) + " in eth0,eth3,"));
    }
    EXPECT_EQ(LogOf("FindWordInLine"), misses);
}

TEST_F(CheckEthCardConfigTest, AValidFileStays)
{
    Put(CardFile("eth1"), kValidFile);
    List({"eth1", "eth32"});
    EXPECT_TRUE(CheckEthCardConfig());
    EXPECT_EQ(Get(CardFile("eth1")), kValidFile);
    EXPECT_EQ(Get(CardFile("eth32")), "");
}

TEST_F(CheckEthCardConfigTest, WhateverFailsTheFilesStayWhole)
{
    Put(CardFile("eth1"), "HOSTIP = 10.0.0.2\n");
    List({"eth1"});
    FailEachCall([] { CheckEthCardConfig(); }, [](const std::string&) { ExpectWellFormedFiles(); });
}

TEST_F(CheckEthCardConfigTest, WithoutItsBaseAddressNoCardIsRepaired)
{
    List({"eth1"});
    unparsable = "192.168.0.108";
    EXPECT_FALSE(CheckEthCardConfig());
    EXPECT_EQ(Log(), LogLines{Error("CheckEthCardConfig", "inet_pton failed!")});
    EXPECT_EQ(Get(CardFile("eth1")), "");
}

struct Family {
    std::string kind;
    std::string net;
    bool (*check)(void);
    std::string operation;
};

class NumberedCardsTest : public World, public testing::WithParamInterface<Family> {
protected:
    static std::string Name(int number) { return GetParam().kind + std::to_string(number); }
    static std::string Factory(int number)
    {
        return FactoryFile(GetParam().net + std::to_string(108 + number), GetParam().net + "1");
    }
};

INSTANTIATE_TEST_SUITE_P(
    Boot, NumberedCardsTest,
    testing::Values(Family{"bond", "192.168.2.", CheckBondCardConfig, "CheckBondCardConfig"},
                    Family{"wlan", "192.168.1.", CheckWlanCardConfig, "CheckWlanCardConfig"}),
    [](const auto& test) { return test.param.operation; });

TEST_P(NumberedCardsTest, EachGetsTheAddressOfItsNumber)
{
    List({"eth0", "eth1", Name(0), Name(1), Name(2)});
    EXPECT_TRUE(GetParam().check());
    EXPECT_EQ(LogOf(GetParam().operation), LogLines{});
    for (int i = 0; i < 3; ++i) EXPECT_EQ(Get(CardFile(Name(i))), Factory(i));
    EXPECT_EQ(Get(CardFile("eth0")), "");
    EXPECT_EQ(Get(CardFile("eth1")), "");
}

TEST_P(NumberedCardsTest, TheFirstGapEndsTheWalk)
{
    List({"eth0", Name(1)});
    EXPECT_TRUE(GetParam().check());
    EXPECT_EQ(Log(), LogLines{Info("FindWordInLine",
                                   "can not find " + Name(0) + " in eth0," + Name(1) + ",")});
    EXPECT_EQ(Get(CardFile(Name(1))), "");
}

TEST_P(NumberedCardsTest, MoreThanEightAreTooMany)
{
    std::vector<std::string> cards;
    for (int i = 0; i < 9; ++i) cards.push_back(Name(i));
    List(cards);
    EXPECT_TRUE(GetParam().check());
    for (int i = 0; i < 8; ++i) EXPECT_EQ(Get(CardFile(Name(i))), Factory(i));
    EXPECT_EQ(Get(CardFile(Name(8))), "");
    EXPECT_EQ(LogOf(GetParam().operation),
              LogLines{Warn(GetParam().operation,
                            "the " + GetParam().kind + " num we can handle is too small 8")});
}

TEST_P(NumberedCardsTest, SevenAreNot)
{
    std::vector<std::string> cards;
    for (int i = 0; i < 7; ++i) cards.push_back(Name(i));
    List(cards);
    EXPECT_TRUE(GetParam().check());
    EXPECT_EQ(LogOf(GetParam().operation), LogLines{});
}

TEST_P(NumberedCardsTest, AValidFileStays)
{
    Put(CardFile(Name(0)), kValidFile);
    List({Name(0), Name(1)});
    EXPECT_TRUE(GetParam().check());
    EXPECT_EQ(Get(CardFile(Name(0))), kValidFile);
    EXPECT_EQ(Get(CardFile(Name(1))), Factory(1));
}

TEST_P(NumberedCardsTest, WithoutItsBaseAddressNoneIsRepaired)
{
    List({Name(0)});
    unparsable = GetParam().net + "108";
    EXPECT_FALSE(GetParam().check());
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Get(CardFile(Name(0))), "");
}

// ---- switch interface

class CheckDefSwitchConfigTest : public World {
protected:
    static void ListSwitch()
    {
        kernel.Add("eth0");
        kernel.Add("eth1").driver = "rt Switch";
        List({});
    }
};

TEST_F(CheckDefSwitchConfigTest, WithoutASwitchThereIsNothingToDo)
{
    List({"eth0"});
    EXPECT_TRUE(CheckDefSwitchConfig());
    EXPECT_EQ(Trace(), std::vector<std::string>{});
}

TEST_F(CheckDefSwitchConfigTest, AValidFileStays)
{
    Put(CardFile("eth1"), kValidFile);
    ListSwitch();
    EXPECT_TRUE(CheckDefSwitchConfig());
    EXPECT_EQ(Get(CardFile("eth1")), kValidFile);
}

TEST_F(CheckDefSwitchConfigTest, TheSwitchIsItsOwnGateway)
{
    Put(CardFile("eth1"), "HOSTIP = 0.0.0.0\n");
    ListSwitch();
    EXPECT_TRUE(CheckDefSwitchConfig());
    EXPECT_EQ(Get(CardFile("eth1")),
              "HOSTIP = 10.1.1.1\nMTU = 1500\nSUBMASK = 255.255.255.0\nGATEWAYIP = 10.1.1.1\n");
}

TEST_F(CheckDefSwitchConfigTest, NoOtherRepairSeesTheSwitch)
{
    ListSwitch();
    CheckEthCardConfig();
    EXPECT_EQ(Get(CardFile("eth1")), "");
}

// ---- default card

struct DefaultCase {
    std::string name;
    std::string saved;
    std::vector<std::string> cards;
    std::string settled;
};

class CheckDefaultEthConfigTest : public World, public testing::WithParamInterface<DefaultCase> {};

INSTANTIATE_TEST_SUITE_P(
    Boot, CheckDefaultEthConfigTest,
    testing::Values(DefaultCase{"PresentStays", "eth3", {"eth0", "eth3"}, "eth3"},
                    DefaultCase{"Eth0First", "eth9", {"eth2", "eth1", "eth0"}, "eth0"},
                    DefaultCase{"Eth1Next", "eth9", {"eth3", "eth2", "eth1"}, "eth1"},
                    DefaultCase{"Eth2Last", "eth9", {"eth3", "eth2"}, "eth2"},
                    DefaultCase{"NoneOfTheThree", "eth9", {"eth3", "eth4"}, "eth9"},
                    DefaultCase{"WholeNamesOnly", "eth1", {"eth10", "eth11"}, "eth1"},
                    DefaultCase{"NoCards", "eth9", {"lo"}, "eth9"}),
    [](const auto& test) { return test.param.name; });

TEST_P(CheckDefaultEthConfigTest, SettlesOnACardThatIsThere)
{
    Put(CardFile("eth0"), "DEFAULT_ETH = " + GetParam().saved + "\n");
    List(GetParam().cards);
    EXPECT_TRUE(CheckDefaultEthConfig());
    EXPECT_EQ(
        LogOf("CheckDefaultEthConfig"),
        LogLines{Info("CheckDefaultEthConfig", "default eth is " + GetParam().settled + ".")});
    for (const auto& [file, text] : SavedFiles()) {
        const std::string path = "/mnt/mtd/Config/" + file;
        const std::string prio = path == CardFile(GetParam().settled) ? "PRIO = 0\n" : "PRIO = 1\n";
        const std::string name =
            file == "network" ? "DEFAULT_ETH = " + GetParam().settled + "\n" : "";
        EXPECT_EQ(text, name + prio) << file;
    }
}

class DefaultCardTest : public World {};

TEST_F(DefaultCardTest, IsSavedAgainThoughUnchanged)
{
    Put(CardFile("eth0"), "DEFAULT_ETH = eth0\nPRIO = 0\n");
    List({"eth0"});
    EXPECT_TRUE(CheckDefaultEthConfig());
    EXPECT_EQ(Get(CardFile("eth0")), "DEFAULT_ETH = eth0\nPRIO = 0\n");
    EXPECT_EQ(FileWrites(), (std::vector<std::string>{3, "fopen /mnt/mtd/Config/network w+"}));
}

TEST_F(DefaultCardTest, IsEth0WhenNoneIsSaved)
{
    List({"eth0", "eth1"});
    EXPECT_TRUE(CheckDefaultEthConfig());
    EXPECT_EQ(LogOf("CheckDefaultEthConfig"),
              (LogLines{Warn("CheckDefaultEthConfig", "get default eth failed."),
                        Info("CheckDefaultEthConfig", "default eth is eth0.")}));
    EXPECT_EQ(Get(CardFile("eth0")), "DEFAULT_ETH = eth0\nPRIO = 0\n");
    EXPECT_EQ(Get(CardFile("eth1")), "PRIO = 1\n");
}

TEST_F(DefaultCardTest, IsAnotherWhenNoneIsSavedAndEth0IsNotThere)
{
    List({"eth1"});
    EXPECT_TRUE(CheckDefaultEthConfig());
    EXPECT_TRUE(Logged(Info("CheckDefaultEthConfig", "default eth is eth1.")));
}

TEST_F(DefaultCardTest, ThatCannotBeSavedIsAWarningAndTheResult)
{
    Put(CardFile("eth0"), "DEFAULT_ETH = eth0\n");
    List({"eth0"});
    Fail("opendir", EMFILE);
    EXPECT_FALSE(CheckDefaultEthConfig());
    EXPECT_EQ(LogOf("CheckDefaultEthConfig"),
              (LogLines{Info("CheckDefaultEthConfig", "default eth is eth0."),
                        Warn("CheckDefaultEthConfig", "set def to config failed.")}));
}

TEST_F(DefaultCardTest, WhateverFailsTheFilesStayWhole)
{
    Put(CardFile("eth0"), "DEFAULT_ETH = eth1\nPRIO = 1\n");
    Put(CardFile("eth1"), "PRIO = 0\n");
    List({"eth0", "eth1"});
    FailEachCall([] { CheckDefaultEthConfig(); },
                 [](const std::string&) { ExpectWellFormedFiles(); });
}

// ---- resolvers

constexpr char kResolv[] = "/mnt/mtd/Config/resolv.conf";
constexpr char kResolv6[] = "/mnt/mtd/Config/resolvip6.conf";

const std::string kDefault4 = "nameserver 8.8.8.8\nnameserver 8.8.4.4\n";
const std::string kDefault6 = "nameserver 2001:4860:4860::8888\nnameserver 2001:4860:4860::8844\n";

class CheckDnsServerTest : public World {};

TEST_F(CheckDnsServerTest, MissingFilesGetTheDefaults)
{
    EXPECT_TRUE(CheckDnsServer());
    EXPECT_EQ(Get(kResolv), kDefault4 + kDefault6);
    EXPECT_EQ(Get(kResolv6), kDefault6);
    EXPECT_EQ(LogOf("CheckDnsServer"), LogLines{});
}

TEST_F(CheckDnsServerTest, ServersThatAreThereStay)
{
    const std::string own4 = "nameserver 10.0.0.53\nnameserver 10.0.0.54\n";
    const std::string own6 = "nameserver fd00::53\nnameserver fd00::54\n";
    Put(kResolv, own4 + own6);
    Put(kResolv6, own6);
    EXPECT_TRUE(CheckDnsServer());
    EXPECT_EQ(Get(kResolv), own4 + own6);
    EXPECT_EQ(Get(kResolv6), own6);
    EXPECT_EQ(FileWrites(), std::vector<std::string>{});
}

TEST_F(CheckDnsServerTest, OneServerOfAFamilyIsNotEnough)
{
    const std::string own6 = "nameserver fd00::53\nnameserver fd00::54\n";
    Put(kResolv, "nameserver 10.0.0.53\n" + own6);
    EXPECT_TRUE(CheckDnsServer());
    EXPECT_EQ(Get(kResolv), kDefault4 + own6);

    const std::string own4 = "nameserver 10.0.0.53\nnameserver 10.0.0.54\n";
    Put(kResolv, own4 + "nameserver fd00::53\n");
    EXPECT_TRUE(CheckDnsServer());
    EXPECT_EQ(Get(kResolv), own4 + kDefault6);
}

TEST_F(CheckDnsServerTest, TheIPv6DefaultsAreTriedAlsoAfterIPv4HasFailed)
{
    Fail("fopen /mnt/mtd/Config/resolv.conf w+", ENOSPC);
    EXPECT_TRUE(CheckDnsServer());
    EXPECT_EQ(LogOf("CheckDnsServer"),
              LogLines{Warn("CheckDnsServer", "recover IPv4 default DNS server failed")});
    EXPECT_EQ(Get(kResolv), kDefault6);
    EXPECT_EQ(Get(kResolv6), kDefault6);
}

TEST_F(CheckDnsServerTest, EachFamilyThatCannotBeWrittenIsAWarning)
{
    FailAll("fopen /mnt/mtd/Config/resolv.conf w+", ENOSPC);
    EXPECT_TRUE(CheckDnsServer());
    EXPECT_EQ(LogOf("CheckDnsServer"),
              (LogLines{Warn("CheckDnsServer", "recover IPv4 default DNS server failed"),
                        Warn("CheckDnsServer", "recover IPv6 default DNS server failed")}));
}

TEST_F(CheckDnsServerTest, WhateverFailsTheFilesStayWhole)
{
    Put(kResolv, "nameserver 10.0.0.53\n");
    FailEachCall([] { CheckDnsServer(); }, [](const std::string&) { ExpectWellFormedFiles(); });
}

}  // namespace
