// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Backup.h"

#include "BackupRecorder.h"

#include <cerrno>
#include <cstddef>

using namespace fake;

namespace {

using Texts = std::vector<std::string>;

// ---- the record on the device

static_assert(sizeof(CmosData) == 12 && alignof(CmosData) == 1);
static_assert(offsetof(CmosData, uiIP) == 0 && offsetof(CmosData, uiGateway) == 4 &&
              offsetof(CmosData, NetMask) == 8 && offsetof(CmosData, reserved) == 10);

TEST(CmosData, SharesTheNinthByteFromItsLowestBitUp)
{
    CmosData record{};
    record.Prio = 1;
    EXPECT_EQ(Hex(&record, sizeof(record)), "000000000000000000010000");
    record = {};
    record.Mode = 7;
    EXPECT_EQ(Hex(&record, sizeof(record)), "0000000000000000000e0000");
    record = {};
    record.Flag = 0xA;
    EXPECT_EQ(Hex(&record, sizeof(record)), "000000000000000000a00000");
}

// ---- check byte

TEST(crc8, IsTheOneOfDallas)
{
    EXPECT_EQ(crc8(reinterpret_cast<const unsigned char*>("123456789"), 9), 0xA1);
    const unsigned char serial[] = {0x02, 0x1C, 0xB8, 0x01, 0x00, 0x00, 0x00};
    EXPECT_EQ(crc8(serial, 7), 0xA2);
}

TEST(crc8, OfNothingAndOfZeroesIsZero)
{
    const unsigned char bytes[9] = {};
    EXPECT_EQ(crc8(bytes, 9), 0);
    EXPECT_EQ(crc8(reinterpret_cast<const unsigned char*>("1"), 0), 0);
}

class Crc8Test : public World {};

TEST_F(Crc8Test, TellsOfAMissingBuffer)
{
    EXPECT_EQ(crc8(nullptr, 9), 0);
    EXPECT_EQ(Log(), LogLines{Error("crc8", "crc8 nvalid parameters\n")});
    EXPECT_EQ(Trace(), Texts{});  // no device is looked for
}

// ---- where the record lies

class CmosCapsTest : public RecorderTest {};

TEST_F(CmosCapsTest, NetworkGetsItsRangeAndAtMostARecord)
{
    struct Case {
        uint8_t start, end;
        int length;
    };
    for (const Case& range :
         {Case{10, 30, 12}, Case{10, 21, 12}, Case{10, 20, 11}, Case{10, 15, 6}, Case{10, 11, 2},
          Case{10, 10, 1}, Case{10, 9, 0}, Case{10, 8, 12}, Case{10, 0, 12}, Case{200, 255, 12},
          Case{0, 30, 12}, Case{255, 255, 1}}) {
        cmos.networkStart = range.start;
        cmos.networkEnd = range.end;
        ClearTrace();
        ClearLog();
        CheckDeviceType();
        EXPECT_EQ(Trace(), (Texts{"access /dev/pdcSramFile", "access /dev/pdcRtc", "CMOSGetCaps"}));
        EXPECT_EQ(Log(), (LogLines{Info("CheckDeviceType", " not exist. this is DVR."),
                                   Info("CheckDeviceType",
                                        "cmos offset is " + std::to_string(range.start) +
                                            ", len is " + std::to_string(range.length))}));
    }
}

TEST_F(CmosCapsTest, RecordIsReadWhereTheProviderSays)
{
    cmos.networkStart = 200;
    cmos.networkEnd = 255;
    OpenDevice();
    CmosData record{};
    (void)ReadFromCmos(&record);
    EXPECT_EQ(Trace(), Texts{"CMOSRead 200 12"});
}

TEST_F(CmosCapsTest, TableThatCannotBeReadRefusesEveryUse)
{
    Fail("CMOSGetCaps", EIO);
    CheckDeviceType();
    EXPECT_EQ(Log(), (LogLines{Info("CheckDeviceType", " not exist. this is DVR."),
                               Error("CheckDeviceType", "get cmos caps error!")}));
    ClearTrace();
    ClearLog();
    CmosData record{};
    EXPECT_FALSE(ReadFromCmos(&record));
    EXPECT_FALSE(WriteToCmos(&record));
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(CmosCapsTest, ZeroAndMoreIsAnAnswer)
{
    cmos.capsResult = 1;
    OpenDevice();
    CmosData record{};
    EXPECT_TRUE(ReadFromCmos(&record));
}

TEST_F(CmosCapsTest, RangeAtTheVeryStartIsNotUsable)
{
    cmos.networkStart = 0;
    OpenDevice();
    CmosData record{};
    EXPECT_FALSE(ReadFromCmos(&record));
    EXPECT_FALSE(WriteToCmos(&record));
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(CmosCapsTest, RangeOfOneByteOrNoneIsNotUsable)
{
    for (const int length : {1, 0}) {
        PutLength(length);
        OpenDevice();
        CmosData record{};
        EXPECT_FALSE(ReadFromCmos(&record));
        EXPECT_FALSE(WriteToCmos(&record));
        EXPECT_EQ(Log(), LogLines{});
        EXPECT_EQ(Trace(), Texts{});
    }
}

TEST_F(CmosCapsTest, TwoBytesAreEnoughToBeUsed)
{
    PutLength(2);
    OpenDevice();
    CmosData record{};
    EXPECT_TRUE(WriteToCmos(&record));
    EXPECT_EQ(Trace(), Texts{"CMOSWrite 10 2"});
}

TEST_F(CmosCapsTest, NothingIsUsableBeforeTheProviderWasAsked)
{
    CmosData record{};
    EXPECT_FALSE(ReadFromCmos(&record));
    EXPECT_FALSE(WriteToCmos(&record));
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Trace(), Texts{});
}

// ---- reading

class ReadFromCmosTest : public RecorderTest {};

TEST_F(ReadFromCmosTest, GivesTheWholeRecord)
{
    PutRecord(kFullRecord);
    OpenDevice();
    CmosData record{};
    EXPECT_TRUE(ReadFromCmos(&record));
    EXPECT_EQ(Hex(&record, sizeof(record)), kFullRecord);
    EXPECT_EQ(Trace(), Texts{"CMOSRead 10 12"});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(ReadFromCmosTest, RefusesNull)
{
    OpenDevice();
    EXPECT_FALSE(ReadFromCmos(nullptr));
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(ReadFromCmosTest, AnyOtherResultThanZeroIsAFailedRead)
{
    for (const int32_t refusal : {-1, 1}) {
        OpenDevice();
        cmos.refusal = refusal;
        Fail("CMOSRead", EIO);
        CmosData record{};
        EXPECT_FALSE(ReadFromCmos(&record));
        EXPECT_EQ(Log(), LogLines{Error("ReadFromCmos", "read from cmos error.")});
    }
}

TEST_F(ReadFromCmosTest, WantsTheFlagOfThisLayout)
{
    OpenDevice();
    for (unsigned flag = 0; flag < 16; ++flag) {
        PutRecord(kFullRecord);
        cmos.bytes[kStart + 9] = static_cast<uint8_t>(flag << 4 | 0x0A);
        ClearLog();
        CmosData record{};
        EXPECT_EQ(ReadFromCmos(&record), flag == 0xA);
        EXPECT_EQ(record.Flag, flag);
        EXPECT_EQ(Log(), flag == 0xA
                             ? LogLines{}
                             : LogLines{Error("ReadFromCmos",
                                              "cmos verify flag error. must update lanrise!!")});
    }
}

TEST_F(ReadFromCmosTest, TellsOfEveryWrongBitUnderTheCheckByte)
{
    OpenDevice();
    for (int bit = 0; bit < 96; ++bit) {
        const int byte = bit / 8;
        if (byte == 9 || byte == 11) continue;

        PutRecord(kFullRecord);
        cmos.bytes[kStart + byte] ^= static_cast<uint8_t>(1 << bit % 8);
        ClearLog();
        CmosData record{};
        EXPECT_FALSE(ReadFromCmos(&record)) << "bit " << bit;
        EXPECT_EQ(Log(), LogLines{Error("ReadFromCmos", "crc check error.")});
        EXPECT_EQ(Hex(&record, sizeof(record)), Record());  // what was read is there all the same
    }
}

TEST_F(ReadFromCmosTest, PriorityModeAndMarkLieOutsideTheCheckByte)
{
    OpenDevice();
    for (const char* record : {"c0a8006cc0a8000118afd500", "c0a8006cc0a8000118a0d5ff"}) {
        PutRecord(record);
        CmosData read{};
        EXPECT_TRUE(ReadFromCmos(&read));
        EXPECT_EQ(Hex(&read, sizeof(read)), record);
    }
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(ReadFromCmosTest, ShortCmosPassesOnTheFlagAlone)
{
    for (const int length : {10, 11}) {
        PutLength(length);
        PutRecord("c0a8006cc0a8000118a0aaaa");
        OpenDevice();
        CmosData record{};
        EXPECT_TRUE(ReadFromCmos(&record));
        EXPECT_EQ(Hex(&record, sizeof(record)),
                  length == 10 ? "c0a8006cc0a8000118a00000" : "c0a8006cc0a8000118a0aa00");
        EXPECT_EQ(Trace(), Texts{"CMOSRead 10 " + std::to_string(length)});
        EXPECT_EQ(Log(), LogLines{Info("ReadFromCmos", "Cmos size " + std::to_string(length) +
                                                           ", no crc check and reset flag")});
    }
}

TEST_F(ReadFromCmosTest, CmosWithoutRoomForTheFlagPassesOnTheCallers)
{
    PutLength(6);
    OpenDevice();
    CmosData record{};
    EXPECT_FALSE(ReadFromCmos(&record));
    EXPECT_EQ(Log(),
              LogLines{Error("ReadFromCmos", "cmos verify flag error. must update lanrise!!")});
    for (int time = 0; time < 2; ++time) {
        ClearLog();
        record.Flag = 0xA;
        EXPECT_TRUE(ReadFromCmos(&record));
        EXPECT_EQ(Log(),
                  LogLines{Info("ReadFromCmos", "Cmos size 6, no crc check and reset flag")});
    }
}

TEST_F(ReadFromCmosTest, LeavesTheCmosAloneWhateverFails)
{
    PutRecord(kFullRecord);
    static bool read;
    FailEachCall(
        [] {
            CheckDeviceType();
            CmosData record{};
            read = ReadFromCmos(&record);
        },
        [](const std::string& failed) {
            EXPECT_EQ(read, failed.rfind("access", 0) == 0) << failed;
            EXPECT_EQ(Image(), Image(kFullRecord));
        });
}

// ---- writing

class WriteToCmosTest : public RecorderTest {};

TEST_F(WriteToCmosTest, WritesTheRecordUnderANewCheckByte)
{
    OpenDevice();
    CmosData record{};
    PutHex("c0a8006cc0a8000118a5ff66", reinterpret_cast<uint8_t*>(&record));
    EXPECT_TRUE(WriteToCmos(&record));
    EXPECT_EQ(Image(), Image("c0a8006cc0a8000118a5d566"));
    EXPECT_EQ(Hex(&record, sizeof(record)), "c0a8006cc0a8000118a5d566");
    EXPECT_EQ(Trace(), Texts{"CMOSWrite 10 12"});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(WriteToCmosTest, LeavesTheFlagToItsCaller)
{
    OpenDevice();
    CmosData record{};
    EXPECT_TRUE(WriteToCmos(&record));
    EXPECT_EQ(Image(), Image("000000000000000000000000"));
}

TEST_F(WriteToCmosTest, WritesAsFarAsAShortCmosGoes)
{
    PutLength(6);
    OpenDevice();
    CmosData record{};
    PutHex(kFullRecord, reinterpret_cast<uint8_t*>(&record));
    EXPECT_TRUE(WriteToCmos(&record));
    EXPECT_EQ(Image(), Image("c0a8006cc0a8000000a00000"));
    EXPECT_EQ(Trace(), Texts{"CMOSWrite 10 6"});
}

TEST_F(WriteToCmosTest, RefusesNull)
{
    OpenDevice();
    EXPECT_FALSE(WriteToCmos(nullptr));
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(WriteToCmosTest, FailedWriteIsSilent)
{
    OpenDevice();
    CmosData record{};
    for (const int32_t refusal : {-1, 1}) {
        cmos.refusal = refusal;
        Fail("CMOSWrite", EIO);
        EXPECT_FALSE(WriteToCmos(&record));
    }
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Image(), Image(kZeroRecord));
}

// ---- whoever comes first

struct FirstUse {
    const char* name;
    void (*run)();
};

void PrintTo(const FirstUse& use, std::ostream* out)
{
    *out << use.name;
}

class FirstUseTest : public RecorderTest, public testing::WithParamInterface<FirstUse> {};

char eth0[] = "eth0";
char text[16];

INSTANTIATE_TEST_SUITE_P(
    Of, FirstUseTest,
    testing::Values(FirstUse{"BackupIP", [] { (void)BackupIP(nullptr, nullptr); }},
                    FirstUse{"RestoreIP", [] { (void)RestoreIP("eth1", text); }},
                    FirstUse{"BackupMask", [] { (void)BackupMask("eth0", "bad"); }},
                    FirstUse{"RestoreMask", [] { (void)RestoreMask("eth0", nullptr); }},
                    FirstUse{"BackupGateway", [] { (void)BackupGateway("eth0", "10.0.0.1"); }},
                    FirstUse{"RestoreGateway", [] { (void)RestoreGateway("eth0", text); }},
                    FirstUse{"BackupMode", [] { (void)BackupMode(eth0, 'x'); }},
                    FirstUse{"RestoreMode", [] { (void)RestoreMode(eth0, nullptr); }},
                    FirstUse{"BackupPrio", [] { (void)BackupPrio(nullptr, 1); }},
                    FirstUse{"RestorePrio", [] { (void)RestorePrio(nullptr, text); }},
                    FirstUse{"GetCmosResetMark", [] { (void)GetCmosResetMark(); }},
                    FirstUse{"SetCmosResetMark", [] { (void)SetCmosResetMark(0); }},
                    FirstUse{"setBeenResetFlag", [] { (void)setBeenResetFlag(); }},
                    FirstUse{"GetSramMark", [] { (void)GetSramMark(); }},
                    FirstUse{"GetRTCMark", [] { (void)GetRTCMark(); }},
                    FirstUse{"SetSramMark", [] { (void)SetSramMark(0); }},
                    FirstUse{"SetRTCMark", [] { (void)SetRTCMark(0); }},
                    FirstUse{"CheckBeenReset", [] { (void)CheckBeenReset(); }},
                    FirstUse{"NetCheckBeenReset", [] { (void)NetCheckBeenReset(); }},
                    FirstUse{"CheckCrc", [] { (void)CheckCrc(); }},
                    FirstUse{"RestBackup", [] { (void)RestBackup(); }},
                    FirstUse{"setCmosVerifyFlag", [] { (void)setCmosVerifyFlag(); }}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_P(FirstUseTest, DecidesWhatTheDeviceIsBeforeAnythingElseAndOnce)
{
    const Texts decision = {"access /dev/pdcSramFile", "access /dev/pdcRtc", "CMOSGetCaps"};
    GetParam().run();
    const Texts trace = Trace();
    ASSERT_GE(trace.size(), decision.size());
    EXPECT_EQ(Texts(trace.begin(), trace.begin() + 3), decision);

    ClearTrace();
    GetParam().run();
    EXPECT_EQ(TraceOf({"access", "CMOSGetCaps"}), Texts{});
}

// ---- for applications

class CmosForwardTest : public RecorderTest {};

TEST_F(CmosForwardTest, HandsOnArgumentsAndResult)
{
    uint8_t bytes[3] = {1, 2, 3};
    EXPECT_EQ(writeCmos(100, bytes, 3), 0);
    EXPECT_EQ(Hex(cmos.bytes + 99, 5), "ee010203ee");
    memset(bytes, 0, sizeof(bytes));
    EXPECT_EQ(readCmos(100, bytes, 2), 0);
    EXPECT_EQ(Hex(bytes, 3), "010200");

    CmosCaps caps{};
    cmos.capsResult = 5;
    EXPECT_EQ(getCmosCaps(&caps), 5);
    EXPECT_EQ(caps.UseTable[CMOS_USE_NETWORK_START], 10);
    EXPECT_EQ(caps.UseTable[CMOS_USE_NETWORK_END], 30);
    EXPECT_EQ(Trace(), (Texts{"CMOSWrite 100 3", "CMOSRead 100 2", "CMOSGetCaps"}));

    cmos.refusal = -7;
    FailAll("CMOS", EIO);
    EXPECT_EQ(writeCmos(100, bytes, 3), -7);
    EXPECT_EQ(readCmos(100, bytes, 3), -7);
    EXPECT_EQ(getCmosCaps(&caps), -7);
    EXPECT_EQ(Log(), LogLines{});
}

}  // namespace
