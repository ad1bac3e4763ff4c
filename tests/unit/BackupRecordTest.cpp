// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Backup.h"

#include "BackupRecorder.h"
#include "BackupTwins.h"

#include <cerrno>

#include <arpa/inet.h>

using namespace fake;

namespace {

bool printFails = false;

}  // namespace

extern "C" {

const char* __real_inet_ntop(int, const void*, char*, socklen_t);

const char* __wrap_inet_ntop(int family, const void* address, char* text, socklen_t size)
{
    return printFails ? nullptr : __real_inet_ntop(family, address, text, size);
}
}

namespace {

using Texts = std::vector<std::string>;

char eth0[] = "eth0";

// ---- what the operations of the three values share

struct Value {
    const char* name;  // in the names of its operations
    bool (*backup)(const char* name, const char* addr);
    bool (*restore)(const char* name, char* addr);
    const char* text;  // in a full record
    unsigned place;    // in the memory of a camera
    const char* isZero;
    const char* record;  // one that holds this value and no other
};

constexpr Value kValues[] = {
    {"IP", BackupIP, RestoreIP, "192.168.0.108", 44, "ip is zero.", "c0a8006c0000000000a0d900"},
    {"Mask", BackupMask, RestoreMask, "255.255.255.0", 48, "mask is 0.",
     "000000000000000018a05f00"},
    {"Gateway", BackupGateway, RestoreGateway, "192.168.0.1", 52, "gateway is 0.",
     "00000000c0a8000100a05300"}};

std::string BackupName(const Value& value)
{
    return std::string("Backup") + value.name;
}

std::string RestoreName(const Value& value)
{
    return std::string("Restore") + value.name;
}

constexpr const char* kOtherCards[] = {"eth1", "eth", "eth00", "eth0 ", "eth0:1", "Eth0", ""};

/// Everything that must be refused without a word.
void ExpectNoValueForOthers()
{
    for (const Value& value : kValues) {
        char text[16] = "-";
        for (const char* card : kOtherCards) {
            EXPECT_FALSE(value.backup(card, value.text)) << value.name << " of " << card;
            EXPECT_FALSE(value.backup(card, "bad")) << value.name << " of " << card;
            EXPECT_FALSE(value.restore(card, text)) << value.name << " of " << card;
        }
        EXPECT_FALSE(value.backup(nullptr, value.text));
        EXPECT_FALSE(value.backup("eth0", nullptr));
        EXPECT_FALSE(value.restore(nullptr, text));
        EXPECT_FALSE(value.restore("eth0", nullptr));
        EXPECT_STREQ(text, "-");
    }
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Trace(), Texts{});
}

void ExpectNoBadTexts()
{
    for (const Value& value : kValues) {
        for (const std::string text : {"", "eth0", "1.2.3.256", "1.2.3.4.5", "1.2.3.4x", "::1"}) {
            ClearLog();
            EXPECT_FALSE(value.backup("eth0", text.c_str()));
            EXPECT_EQ(Log(),
                      LogLines{Error(BackupName(value), "addr[" + text + "] is not correct.")});
        }
    }
    EXPECT_EQ(Trace(), Texts{});
}

// ---- on a camera

class CameraValueTest : public TwinTest {};
EACH_TWIN(CameraValueTest);

TEST_P(CameraValueTest, AreStoredAtTheirPlacesInNetworkOrder)
{
    OpenDevice();
    PutMark(7);
    EXPECT_TRUE(BackupIP("eth0", "192.168.0.108"));
    EXPECT_EQ(Image(), Image(7, "c23798dac0a8006c0000000000000000"));
    EXPECT_TRUE(BackupMask("eth0", "255.255.255.0"));
    EXPECT_EQ(Image(), Image(7, "d8d0218ac0a8006cffffff0000000000"));
    EXPECT_TRUE(BackupGateway("eth0", "192.168.0.1"));
    EXPECT_EQ(Image(), Image(7, kFullBlock));
    EXPECT_EQ(Requests(), (Texts{"READ 40 16", "WRITE 40 16", "READ 40 16", "WRITE 40 16",
                                 "READ 40 16", "WRITE 40 16"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_P(CameraValueTest, ComeBackAsText)
{
    OpenDevice();
    PutBlock(kFullBlock);
    for (const Value& value : kValues) {
        char text[16] = "-";
        EXPECT_TRUE(value.restore("eth0", text));
        EXPECT_STREQ(text, value.text);
    }
    EXPECT_EQ(Requests(), (Texts{"READ 40 16", "READ 40 16", "READ 40 16"}));
    EXPECT_EQ(Image(), Image(0, kFullBlock));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_P(CameraValueTest, LongestTextFitsSixteenBytes)
{
    OpenDevice();
    for (const Value& value : kValues) {
        char text[16] = {};
        EXPECT_TRUE(value.backup("eth0", "255.255.255.254"));
        EXPECT_TRUE(value.restore("eth0", text));
        EXPECT_STREQ(text, "255.255.255.254");
    }
}

TEST_P(CameraValueTest, MaskTravelsWhole)
{
    OpenDevice();
    char text[16] = {};
    EXPECT_TRUE(BackupMask("eth0", "255.0.255.0"));
    EXPECT_TRUE(RestoreMask("eth0", text));
    EXPECT_STREQ(text, "255.0.255.0");
}

TEST_P(CameraValueTest, ShortFormsOfAnAddressPass)
{
    OpenDevice();
    EXPECT_TRUE(BackupIP("eth0", "10.1"));
    EXPECT_TRUE(BackupMask("eth0", "255.255"));
    EXPECT_TRUE(BackupGateway("eth0", "0xa.0.0.010"));
    EXPECT_EQ(Block().substr(8), "0a000001"
                                 "ff0000ff"
                                 "0a000008");
}

TEST_P(CameraValueTest, OnlyEth0HasABackup)
{
    OpenDevice();
    PutBlock(kFullBlock);
    ExpectNoValueForOthers();
    EXPECT_EQ(Image(), Image(0, kFullBlock));
}

TEST_P(CameraValueTest, TextsThatAreNoAddressAreRefusedByName)
{
    OpenDevice();
    ExpectNoBadTexts();
    EXPECT_EQ(Image(), Image(0, kZeroBlock));
}

TEST_P(CameraValueTest, ZeroIsNoValue)
{
    OpenDevice();
    for (const Value& value : kValues) {
        ClearLog();
        char text[16] = "-";
        EXPECT_FALSE(value.restore("eth0", text));
        EXPECT_STREQ(text, "-");
        EXPECT_EQ(Log(), LogLines{Error(RestoreName(value), value.isZero)});
    }
    // Not even when it was stored by name.
    EXPECT_TRUE(BackupMask("eth0", "0.0.0.0"));
    char text[16] = "-";
    EXPECT_FALSE(RestoreMask("eth0", text));
}

TEST_P(CameraValueTest, AMemoryThatCannotBeReadGivesNothing)
{
    OpenDevice();
    const std::string tag = GetParam().tag;
    const std::string reader = GetParam().Operation("ReadFrom");
    for (const Value& value : kValues) {
        ClearLog();
        char text[16] = "-";
        Fail(GetParam().readRequest, EIO);
        EXPECT_FALSE(value.restore("eth0", text));
        EXPECT_STREQ(text, "-");
        EXPECT_EQ(Log(), (LogLines{Error(reader, tag + " read failed,[offset:" +
                                                     std::to_string(value.place) + ",len:4]"),
                                   Error(RestoreName(value), "read from " + tag + " error")}));
    }
    Memory().bytes[44] ^= 1;
    for (const Value& value : kValues) {
        ClearLog();
        char text[16] = "-";
        EXPECT_FALSE(value.restore("eth0", text));
        EXPECT_STREQ(text, "-");
        EXPECT_EQ(Log(), (LogLines{Error(reader, "crc check failed!"),
                                   Error(RestoreName(value), "read from " + tag + " error")}));
    }
}

TEST_P(CameraValueTest, AMemoryThatRefusesKeepsWhatItHas)
{
    OpenDevice();
    PutBlock(kFullBlock);
    const std::string tag = GetParam().tag;
    const std::string writer = GetParam().Operation("WriteTo");
    for (const Value& value : kValues) {
        ClearLog();
        Fail(GetParam().writeRequest, EIO);
        EXPECT_FALSE(value.backup("eth0", "10.0.0.1"));
        EXPECT_EQ(Log(), LogLines{Error(writer, tag + " write failed,[offset:" +
                                                    std::to_string(value.place) + ",len:4]")});
    }
    EXPECT_EQ(Image(), Image(0, kFullBlock));
}

TEST_P(CameraValueTest, AnAddressThatCannotBePrintedIsTold)
{
    OpenDevice();
    PutBlock(kFullBlock);
    printFails = true;
    for (const Value& value : kValues) {
        ClearLog();
        char text[16] = "-";
        EXPECT_FALSE(value.restore("eth0", text));
        EXPECT_STREQ(text, "-");
        EXPECT_EQ(Log(), LogLines{Error(RestoreName(value), "inet_ntop error.")});
    }
}

TEST_P(CameraValueTest, TheDeviceIsLookedForOnceAndBeforeTheArguments)
{
    EXPECT_FALSE(BackupIP(nullptr, nullptr));
    EXPECT_EQ(TraceOf({"open"}), Texts{std::string("open ") + GetParam().node + " O_RDWR"});
    ClearTrace();
    EXPECT_FALSE(RestoreIP(nullptr, nullptr));
    EXPECT_TRUE(BackupIP("eth0", "10.0.0.1"));
    EXPECT_EQ(Trace(), (Texts{GetParam().readRequest, GetParam().writeRequest}));
}

TEST_P(CameraValueTest, ADeviceThatCouldNotBeOpenedIsNotTriedAgain)
{
    FailAll("open ", EIO);
    char text[16] = "-";
    EXPECT_FALSE(RestoreIP("eth0", text));
    FailNothing();
    ClearTrace();
    ClearLog();
    EXPECT_FALSE(BackupIP("eth0", "10.0.0.1"));
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_FALSE(RestoreIP("eth0", text));
    EXPECT_EQ(Trace(), Texts{});
    // A device that cannot be opened at all is taken for the SRAM.
    EXPECT_EQ(Log(), LogLines{Error("RestoreIP", "read from sram error")});
}

TEST_P(CameraValueTest, ModeAndPriorityAreNotKept)
{
    OpenDevice();
    char kept = 'x';
    EXPECT_FALSE(BackupMode(eth0, '1'));
    EXPECT_FALSE(RestoreMode(eth0, &kept));
    EXPECT_FALSE(BackupPrio(eth0, 1));
    EXPECT_FALSE(RestorePrio(eth0, &kept));
    EXPECT_EQ(kept, 'x');
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Trace(), Texts{});
}

TEST_P(CameraValueTest, TheBlockIsTheOldOrTheNewOneWhateverFails)
{
    PutBlock(kFullBlock);
    static bool stored;
    static char text[16];
    FailEachCall(
        [] {
            strcpy(text, "-");
            stored = BackupIP("eth0", "10.0.0.2");
            (void)RestoreIP("eth0", text);
        },
        [](const std::string& failed) {
            if (!stored) {
                EXPECT_EQ(Image(), Image(0, kFullBlock)) << failed;
            }
            const std::string given = text;
            EXPECT_TRUE(given == "-" || given == "10.0.0.2" || given == "192.168.0.108") << given;
            uint8_t block[16];
            PutHex(Block(), block);
            uint32_t sum = 0;
            memcpy(&sum, block, sizeof(sum));
            EXPECT_EQ(sum, CRCCalcu(block + 4, 12));
        },
        {"open /dev/pdc"});
}

// ---- on a recorder

class RecorderValueTest : public RecorderTest {};

TEST_F(RecorderValueTest, EachGoesToItsFieldOfTheRecord)
{
    OpenDevice();
    for (const Value& value : kValues) {
        PutRecord(kZeroRecord);
        ClearTrace();
        EXPECT_TRUE(value.backup("eth0", value.text));
        EXPECT_EQ(Image(), Image(value.record)) << value.name;
        EXPECT_EQ(Trace(), (Texts{"CMOSRead 10 12", "CMOSWrite 10 12"}));
    }
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(RecorderValueTest, OtherFieldsStayAsTheyWere)
{
    PutRecord("0102030405060708"
              "10"
              "ad"
              "9a"
              "66");
    cmos.bytes[kStart + 10] = crc8(cmos.bytes + kStart, 9);
    OpenDevice();
    for (const Value& value : kValues) EXPECT_TRUE(value.backup("eth0", value.text));
    EXPECT_EQ(Image(), Image("c0a8006cc0a8000118add566"));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(RecorderValueTest, ComeBackAsText)
{
    PutRecord(kFullRecord);
    OpenDevice();
    for (const Value& value : kValues) {
        char text[16] = "-";
        ClearTrace();
        EXPECT_TRUE(value.restore("eth0", text));
        EXPECT_STREQ(text, value.text);
        EXPECT_EQ(Trace(), Texts{"CMOSRead 10 12"});
    }
    EXPECT_EQ(Image(), Image(kFullRecord));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(RecorderValueTest, MaskTravelsAsTheNumberOfItsBits)
{
    OpenDevice();
    struct Case {
        const char* stored;
        int bits;
        const char* restored;
    };
    for (const Case& mask :
         {Case{"255.255.255.0", 24, "255.255.255.0"}, Case{"255.0.255.0", 16, "255.255.0.0"},
          Case{"255.255.255.255", 32, "255.255.255.255"}, Case{"0.0.0.0", 0, "255.255.255.255"},
          Case{"128.0.0.0", 1, "128.0.0.0"}, Case{"0.0.0.1", 1, "128.0.0.0"},
          Case{"255.255.255.254", 31, "255.255.255.254"}}) {
        char text[16] = "-";
        EXPECT_TRUE(BackupMask("eth0", mask.stored));
        EXPECT_EQ(cmos.bytes[kStart + 8], mask.bits);
        EXPECT_TRUE(RestoreMask("eth0", text));
        EXPECT_STREQ(text, mask.restored) << "of " << mask.stored;
    }
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(RecorderValueTest, MoreThan32MaskBitsAreRefused)
{
    OpenDevice();
    for (const uint8_t bits : {uint8_t{33}, uint8_t{64}, uint8_t{255}}) {
        cmos.bytes[kStart + 8] = bits;
        cmos.bytes[kStart + 10] = crc8(cmos.bytes + kStart, 9);
        ClearLog();
        char text[16] = "-";
        EXPECT_FALSE(RestoreMask("eth0", text));
        EXPECT_STREQ(text, "-");
        EXPECT_EQ(Log(), LogLines{Error("RestoreMask", "NetMask > 32")});
    }
}

TEST_F(RecorderValueTest, ZeroIsNoAddressAndNoGateway)
{
    OpenDevice();
    char text[16] = "-";
    EXPECT_FALSE(RestoreIP("eth0", text));
    EXPECT_FALSE(RestoreGateway("eth0", text));
    EXPECT_STREQ(text, "-");
    EXPECT_EQ(Log(), (LogLines{Error("RestoreIP", "ip is zero."),
                               Error("RestoreGateway", "gateway is 0.")}));
}

TEST_F(RecorderValueTest, OnlyEth0HasABackup)
{
    OpenDevice();
    ExpectNoValueForOthers();
    EXPECT_EQ(Image(), Image(kZeroRecord));
}

TEST_F(RecorderValueTest, TextsThatAreNoAddressAreRefusedByName)
{
    OpenDevice();
    ExpectNoBadTexts();
    EXPECT_EQ(Image(), Image(kZeroRecord));
}

/// Runs every operation that reads the record first, and gives their names.
Texts RunAllOnRecord()
{
    Texts names;
    for (const Value& value : kValues) {
        char text[16] = "-";
        EXPECT_FALSE(value.backup("eth0", value.text));
        EXPECT_FALSE(value.restore("eth0", text));
        EXPECT_STREQ(text, "-");
        names.push_back(BackupName(value));
        names.push_back(RestoreName(value));
    }
    char kept = 'x';
    EXPECT_FALSE(BackupMode(eth0, '1'));
    EXPECT_FALSE(RestoreMode(eth0, &kept));
    EXPECT_FALSE(BackupPrio(eth0, 1));
    EXPECT_FALSE(RestorePrio(eth0, &kept));
    EXPECT_EQ(kept, 'x');
    names.insert(names.end(), {"BackupMode", "RestoreMode", "BackupPrio", "RestorePrio"});
    return names;
}

TEST_F(RecorderValueTest, ARecordThatCannotBeReadIsNeitherGivenNorChanged)
{
    PutRecord("c0a8006cc0a800011800d500");
    OpenDevice();
    LogLines expected;
    for (const std::string& name : RunAllOnRecord()) {
        expected.push_back(Error("ReadFromCmos", "cmos verify flag error. must update lanrise!!"));
        expected.push_back(Error(name, "read from cmoe error."));
    }
    EXPECT_EQ(Log(), expected);
    EXPECT_EQ(Image(), Image("c0a8006cc0a800011800d500"));
}

TEST_F(RecorderValueTest, ACmosThatIsNotUsableIsOneThatCannotBeRead)
{
    cmos.networkStart = 0;
    OpenDevice();
    LogLines expected;
    for (const std::string& name : RunAllOnRecord()) {
        expected.push_back(Error(name, "read from cmoe error."));
    }
    EXPECT_EQ(Log(), expected);
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(RecorderValueTest, AFailedWriteIsSilent)
{
    OpenDevice();
    FailAll("CMOSWrite", EIO);
    for (const Value& value : kValues) EXPECT_FALSE(value.backup("eth0", value.text));
    EXPECT_FALSE(BackupMode(eth0, '1'));
    EXPECT_FALSE(BackupPrio(eth0, 1));
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Image(), Image(kZeroRecord));
}

TEST_F(RecorderValueTest, ShortCmosKeepsTheValuesThatFit)
{
    PutLength(10);
    OpenDevice();
    for (const Value& value : kValues) EXPECT_TRUE(value.backup("eth0", value.text));
    EXPECT_EQ(Image(), Image("c0a8006cc0a8000118a00000"));
    for (const Value& value : kValues) {
        char text[16] = "-";
        EXPECT_TRUE(value.restore("eth0", text));
        EXPECT_STREQ(text, value.text);
    }
    EXPECT_EQ(Log(),
              LogLines(6, Info("ReadFromCmos", "Cmos size 10, no crc check and reset flag")));
}

TEST_F(RecorderValueTest, TheProviderIsAskedOnceAndBeforeTheArguments)
{
    EXPECT_FALSE(RestoreMask(nullptr, nullptr));
    EXPECT_EQ(TraceOf({"CMOS"}), Texts{"CMOSGetCaps"});
    EXPECT_FALSE(BackupMask(nullptr, nullptr));
    EXPECT_FALSE(BackupMode(nullptr, 'x'));
    EXPECT_EQ(TraceOf({"CMOS"}), Texts{"CMOSGetCaps"});
}

TEST_F(RecorderValueTest, TheRecordIsTheOldOrTheNewOneWhateverFails)
{
    PutRecord(kFullRecord);
    static bool stored;
    FailEachCall([] { stored = BackupGateway("eth0", "192.168.0.2"); },
                 [](const std::string& failed) {
                     EXPECT_EQ(stored, failed.rfind("access", 0) == 0) << failed;
                     if (!stored) {
                         EXPECT_EQ(Image(), Image(kFullRecord)) << failed;
                     }
                 },
                 {});
}

// ---- mode and priority

class RecorderModeTest : public RecorderTest {};

TEST_F(RecorderModeTest, KeepsThreeBitsOfTheDigit)
{
    PutRecord("c0a8006cc0a8000118a1d566");
    OpenDevice();
    const std::string restored = "0123456701";
    for (char digit = '0'; digit <= '9'; ++digit) {
        const int bits = (digit - '0') % 8;
        EXPECT_TRUE(BackupMode(eth0, digit));
        EXPECT_EQ(cmos.bytes[kStart + 9], 0xA1 | bits << 1);
        char mode = 'x';
        EXPECT_TRUE(RestoreMode(eth0, &mode));
        EXPECT_EQ(mode, restored[static_cast<size_t>(digit - '0')]);
    }
    EXPECT_EQ(Image(), Image("c0a8006cc0a8000118a3d566"));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(RecorderModeTest, TakesNothingButADigit)
{
    OpenDevice();
    for (const char mode : {'/', ':', 'a', '\0', '\1', ' ', static_cast<char>(-1)}) {
        EXPECT_FALSE(BackupMode(eth0, mode));
    }
    EXPECT_FALSE(BackupMode(nullptr, '1'));
    char mode = 'x';
    EXPECT_FALSE(RestoreMode(nullptr, &mode));
    EXPECT_FALSE(RestoreMode(eth0, nullptr));
    EXPECT_EQ(mode, 'x');
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(RecorderModeTest, AnyCardsModeIsTheOne)
{
    OpenDevice();
    char wlan0[] = "wlan0";
    char none[] = "";
    char mode = 'x';
    EXPECT_TRUE(BackupMode(wlan0, '5'));
    EXPECT_TRUE(RestoreMode(none, &mode));
    EXPECT_EQ(mode, '5');
    char prio = 'x';
    EXPECT_TRUE(BackupPrio(wlan0, 1));
    EXPECT_TRUE(RestorePrio(none, &prio));
    EXPECT_EQ(prio, 1);
}

TEST_F(RecorderModeTest, PriorityIsOneForAnythingButZero)
{
    PutRecord("c0a8006cc0a8000118ae"
              "d566");
    OpenDevice();
    for (const char prio : {'\1', '\0', '\2', '0', static_cast<char>(-1), '\0'}) {
        const int expected = prio == 0 ? 0 : 1;
        EXPECT_TRUE(BackupPrio(eth0, prio));
        EXPECT_EQ(cmos.bytes[kStart + 9], 0xAE | expected);
        char restored = 'x';
        EXPECT_TRUE(RestorePrio(eth0, &restored));
        EXPECT_EQ(restored, expected);
    }
    EXPECT_EQ(Image(), Image("c0a8006cc0a8000118aed566"));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(RecorderModeTest, PriorityRefusesNull)
{
    OpenDevice();
    char prio = 'x';
    EXPECT_FALSE(BackupPrio(nullptr, 1));
    EXPECT_FALSE(RestorePrio(nullptr, &prio));
    EXPECT_FALSE(RestorePrio(eth0, nullptr));
    EXPECT_EQ(prio, 'x');
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Trace(), Texts{});
}

}  // namespace
