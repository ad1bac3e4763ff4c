// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Backup.h"

#include "BackupTwins.h"

#include <cerrno>
#include <cstddef>

#include <sys/ioctl.h>

using namespace fake;

namespace {

using Texts = std::vector<std::string>;

// ---- what the drivers and the providers were built with

static_assert(DEVICETYPE_UNKNOW == 0 && DEVICETYPE_IPC == 1 && DEVICETYPE_DVR == 2);
static_assert(CMOS_USE_APP_START == 0 && CMOS_USE_APP_END == 1 && CMOS_USE_NETWORK_START == 2 &&
              CMOS_USE_NETWORK_END == 3 && CMOS_USE_BUT == 4);
static_assert(CMOS_USE_SYS_APP_START == 0 && CMOS_USE_SYS_APP_END == 1 &&
              CMOS_USE_SYS_NETWORK_START == 2 && CMOS_USE_SYS_NETWORK_END == 3 &&
              CMOS_USE_SYS_BUT == 4);
static_assert(RTC_SRAM_IPRESET == 39 && RTC_SRAM_ETHCRC == 40 && RTC_SRAM_ETHIP == 44 &&
              RTC_SRAM_ETHMASK == 48 && RTC_SRAM_ETHGATEWAY == 52 &&
              RTC_SRAM_EXITTIME_WFREQ == 300000 && RTC_SRAM_SIZE_MAX == 256 &&
              RTC_SRAM_MARK_LEN == 1 && PDI_SRAM_FILE_DDR == 0);

constexpr unsigned Request(unsigned type, unsigned number)
{
    return _IOC(_IOC_READ | _IOC_WRITE, type, number, 8U);
}
static_assert(PDC_SRAMFILE_BASE_CMD == 81 && PDC_RTC_BASE_CMD == 82);
static_assert(PDC_SRAMFILE_CREATE == 0xC0085100U &&
              PDC_SRAMFILE_CREATE == Request(PDC_SRAMFILE_BASE_CMD, 0));
static_assert(PDC_SRAMFILE_DELETE == Request(PDC_SRAMFILE_BASE_CMD, 1));
static_assert(PDC_SRAMFILE_READ == Request(PDC_SRAMFILE_BASE_CMD, 2));
static_assert(PDC_SRAMFILE_WRITE == Request(PDC_SRAMFILE_BASE_CMD, 3));
static_assert(PDC_RTC_READSRAM == 0xC0085200U && PDC_RTC_READSRAM == Request(PDC_RTC_BASE_CMD, 0));
static_assert(PDC_RTC_WRITESRAM == Request(PDC_RTC_BASE_CMD, 1));

constexpr size_t Width(size_t wide, size_t narrow)
{
    return sizeof(void*) == 8 ? wide : narrow;
}
static_assert(sizeof(SramFileParam) == Width(32, 24) && offsetof(SramFileParam, sramHandle) == 0 &&
              offsetof(SramFileParam, fileName) == Width(8, 4) &&
              offsetof(SramFileParam, period) == Width(16, 8) &&
              offsetof(SramFileParam, mode) == Width(20, 12) &&
              offsetof(SramFileParam, markLen) == Width(24, 16) &&
              offsetof(SramFileParam, totalLen) == Width(28, 20));
static_assert(sizeof(SramFileData) == Width(40, 28) && offsetof(SramFileData, sramHandle) == 0 &&
              offsetof(SramFileData, pDatabuf) == Width(8, 4) &&
              offsetof(SramFileData, dataLen) == Width(16, 8) &&
              offsetof(SramFileData, offset) == Width(20, 12) &&
              offsetof(SramFileData, reserved) == Width(24, 16));
static_assert(sizeof(RTCData) == Width(16, 12) && offsetof(RTCData, addr) == 0 &&
              offsetof(RTCData, len) == 4 && offsetof(RTCData, pBuf) == 8);
static_assert(sizeof(CmosCaps) == 16 && alignof(CmosCaps) == 4 &&
              offsetof(CmosCaps, CmosSize) == 0 && offsetof(CmosCaps, UseTable) == 4 &&
              offsetof(CmosCaps, resv) == 8);
static_assert(sizeof(CmosCaps_Sys_t) == 16 && alignof(CmosCaps_Sys_t) == 4 &&
              offsetof(CmosCaps_Sys_t, CmosSize) == 0 && offsetof(CmosCaps_Sys_t, UseTable) == 4 &&
              offsetof(CmosCaps_Sys_t, resv) == 8);

// ---- detection

const LogLine kIsCamera =
    Info("CheckDeviceType", "/dev/pdcSramFile  or /dev/pdcRtc exist. this is IPC.");
const LogLine kUsesRtc = Info("CheckDeviceType", "RTC exist, use RTC to backup.");

class CheckDeviceTypeTest : public World {
protected:
    static void PutRtc() { Put(kRtcTwin.node, ""); }
    static void PutSram() { Put(kSramTwin.node, ""); }
};

TEST_F(CheckDeviceTypeTest, RtcGoesBeforeSramWhenBothAreThere)
{
    PutRtc();
    PutSram();
    CheckDeviceType();
    EXPECT_EQ(Trace(), (Texts{"access /dev/pdcSramFile", "access /dev/pdcRtc",
                              "open /dev/pdcRtc O_RDWR", "fcntl F_SETFD"}));
    EXPECT_EQ(Log(), (LogLines{kIsCamera, kUsesRtc}));
    EXPECT_EQ(kernel.sram.requests, Texts{});
}

TEST_F(CheckDeviceTypeTest, RtcAloneMakesACamera)
{
    PutRtc();
    CheckDeviceType();
    EXPECT_EQ(Trace(), (Texts{"access /dev/pdcSramFile", "access /dev/pdcRtc", "access /dev/pdcRtc",
                              "open /dev/pdcRtc O_RDWR", "fcntl F_SETFD"}));
    EXPECT_EQ(Log(), (LogLines{kIsCamera, kUsesRtc}));
}

TEST_F(CheckDeviceTypeTest, SramAloneGetsItsFileCreated)
{
    PutSram();
    CheckDeviceType();
    EXPECT_EQ(Trace(), (Texts{"access /dev/pdcSramFile", "access /dev/pdcRtc",
                              "open /dev/pdcSramFile O_RDWR", "fcntl F_SETFD",
                              "ioctl PDC_SRAMFILE_CREATE"}));
    EXPECT_EQ(Log(), LogLines{kIsCamera});
    EXPECT_EQ(kernel.sram.requests, Texts{"CREATE"});
    EXPECT_EQ(kernel.sram.created, "/mnt/mtd/RtcSramFile 300000 0 1 251");
}

TEST_F(CheckDeviceTypeTest, DeviceStaysOpenAndIsNotHandedToTools)
{
    PutRtc();
    CheckDeviceType();
    EXPECT_EQ(OpenHandles(), Texts{"open /dev/pdcRtc O_RDWR"});
    EXPECT_EQ(TraceOf({"fcntl", "close"}), Texts{"fcntl F_SETFD"});
}

TEST_F(CheckDeviceTypeTest, SramTakesOverFromAnRtcThatCannotBeOpened)
{
    PutRtc();
    PutSram();
    Fail("open /dev/pdcRtc", EIO);
    CheckDeviceType();
    EXPECT_EQ(Log(), (LogLines{kIsCamera, kUsesRtc,
                               Error("CheckDeviceType", "can not open /dev/pdcRtc")}));
    EXPECT_EQ(kernel.sram.requests, Texts{"CREATE"});

    // What is stored now goes to the SRAM.
    ASSERT_TRUE(ResetSram());
    EXPECT_TRUE(BackupIP("eth0", "192.168.0.108"));
    EXPECT_EQ(Hex(kernel.sram.bytes + 44, 4), "c0a8006c");
    EXPECT_EQ(kernel.rtc.requests, Texts{});
}

TEST_F(CheckDeviceTypeTest, CameraWithoutAnOpenDeviceRefusesFromThenOn)
{
    PutRtc();
    Fail("open /dev/pdcRtc", EIO);
    CheckDeviceType();
    EXPECT_EQ(Log(),
              (LogLines{kIsCamera, kUsesRtc, Error("CheckDeviceType", "can not open /dev/pdcRtc"),
                        Error("CheckDeviceType", "can not open /dev/pdcSramFile ")}));
    EXPECT_EQ(OpenHandles(), Texts{});

    ClearTrace();
    ClearLog();
    uint8_t block[16];
    EXPECT_EQ(ReadFromRTC(block, 40, 16), -1);
    EXPECT_EQ(ReadFromSram(block, 40, 16), -1);
    EXPECT_FALSE(WriteToRTC(block, 44, 4));
    EXPECT_FALSE(WriteToSram(block, 44, 4));
    EXPECT_FALSE(ResetRTC());
    EXPECT_FALSE(ResetSram());
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Trace(), Texts{});

    // It is still a camera: no mode is kept, and nothing is looked for again.
    char name[] = "eth0";
    EXPECT_FALSE(BackupMode(name, '1'));
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(CheckDeviceTypeTest, SramThatCannotBeOpenedIsNotCreated)
{
    PutSram();
    Fail("open /dev/pdcSramFile", EIO);
    CheckDeviceType();
    EXPECT_EQ(Log(),
              (LogLines{kIsCamera, Error("CheckDeviceType", "can not open /dev/pdcSramFile ")}));
    EXPECT_EQ(TraceOf({"fcntl", "ioctl"}), Texts{});
}

TEST_F(CheckDeviceTypeTest, RefusedCreationRefusesEveryUseOfTheSram)
{
    PutSram();
    Fail("ioctl PDC_SRAMFILE_CREATE", EIO);
    CheckDeviceType();
    EXPECT_EQ(Log(), (LogLines{kIsCamera, Error("CheckDeviceType", "creat sramfile failed")}));

    ClearTrace();
    ClearLog();
    uint8_t block[16] = {};
    EXPECT_EQ(ReadFromSram(block, 40, 16), -1);
    EXPECT_FALSE(WriteToSram(block, 44, 4));
    EXPECT_FALSE(ResetSram());
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Trace(), Texts{});
    EXPECT_EQ(OpenHandles(), Texts{"open /dev/pdcSramFile O_RDWR"});
}

TEST_F(CheckDeviceTypeTest, AnyOtherResultThanZeroRefusesTheCreation)
{
    PutSram();
    kernel.sram.result = 1;
    CheckDeviceType();
    EXPECT_EQ(Log(), (LogLines{kIsCamera, Error("CheckDeviceType", "creat sramfile failed")}));

    uint8_t block[16];
    EXPECT_EQ(ReadFromSram(block, 40, 16), -1);
}

TEST_F(CheckDeviceTypeTest, RunsAgainWhenCalledAgainAndKeepsTheOpenDevice)
{
    PutSram();
    CheckDeviceType();
    ClearTrace();
    CheckDeviceType();
    EXPECT_EQ(Trace(), (Texts{"access /dev/pdcSramFile", "access /dev/pdcRtc",
                              "ioctl PDC_SRAMFILE_CREATE"}));

    PutRtc();
    ClearTrace();
    CheckDeviceType();
    EXPECT_EQ(Trace(), (Texts{"access /dev/pdcSramFile", "access /dev/pdcRtc"}));
    EXPECT_EQ(OpenHandles(), Texts{"open /dev/pdcSramFile O_RDWR"});
}

TEST_F(CheckDeviceTypeTest, NoNodeMakesARecorder)
{
    CheckDeviceType();
    EXPECT_EQ(Trace(), (Texts{"access /dev/pdcSramFile", "access /dev/pdcRtc"}));
    EXPECT_EQ(Log(),
              (LogLines{Info("CheckDeviceType", " not exist. this is DVR."),
                        Error("CMOSGetCaps",
                              "Linked in week function!!! __attribute__((weak)) CMOSGetCaps"),
                        Error("CheckDeviceType", "get cmos caps error!")}));
}

TEST_F(CheckDeviceTypeTest, RecorderWithoutAProviderRefusesSilently)
{
    CheckDeviceType();
    ClearLog();
    CmosData record{};
    EXPECT_FALSE(ReadFromCmos(&record));
    EXPECT_FALSE(WriteToCmos(&record));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(CheckDeviceTypeTest, NothingButTheDeviceStaysOpenWhateverFails)
{
    PutRtc();
    PutSram();
    FailEachCall([] { CheckDeviceType(); }, nullptr, {"open /dev/pdc"});
}

// ---- stand-ins for a board's provider

class CmosStandInTest : public World {
protected:
    static LogLine Missing(const std::string& operation)
    {
        return Error(operation, "Linked in week function!!! __attribute__((weak)) " + operation);
    }
};

TEST_F(CmosStandInTest, EachTellsItsNameAndFails)
{
    CmosCaps caps{};
    CmosCaps_Sys_t systemCaps{};
    uint8_t byte = 7;
    EXPECT_EQ(CMOSRead(10, &byte, 1), -1);
    EXPECT_EQ(CMOSWrite(10, &byte, 1), -1);
    EXPECT_EQ(CMOSGetCaps(&caps), -1);
    EXPECT_EQ(CMOSRead_SYS(10, &byte, 1), -1);
    EXPECT_EQ(CMOSWrite_SYS(10, &byte, 1), -1);
    EXPECT_EQ(CMOSGetCaps_SYS(&systemCaps), -1);
    EXPECT_EQ(byte, 7);
    EXPECT_EQ(Log(), (LogLines{Missing("CMOSRead"), Missing("CMOSWrite"), Missing("CMOSGetCaps"),
                               Missing("CMOSRead_SYS"), Missing("CMOSWrite_SYS"),
                               Missing("CMOSGetCaps_SYS")}));
}

TEST_F(CmosStandInTest, ForwardsOfTheApplicationEndThereToo)
{
    CmosCaps caps{};
    uint8_t byte = 7;
    EXPECT_EQ(readCmos(10, &byte, 1), -1);
    EXPECT_EQ(writeCmos(10, &byte, 1), -1);
    EXPECT_EQ(getCmosCaps(&caps), -1);
    EXPECT_EQ(Log(), (LogLines{Missing("CMOSRead"), Missing("CMOSWrite"), Missing("CMOSGetCaps")}));
}

// ---- reading a block

struct Range {
    uint32_t offset;
    uint32_t len;
};

constexpr uint32_t kHuge = 0xffffffff;

class ReadFromTwinTest : public TwinTest {};
EACH_TWIN(ReadFromTwinTest);

TEST_P(ReadFromTwinTest, GivesAnyPartOfTheBlock)
{
    OpenDevice();
    PutBlock(kFullBlock);
    const std::string block = kFullBlock;
    for (const Range part : {Range{40, 16}, Range{40, 1}, Range{44, 4}, Range{44, 12}, Range{47, 9},
                             Range{48, 4}, Range{52, 4}, Range{52, 1}}) {
        uint8_t data[17];
        memset(data, 0x11, sizeof(data));
        EXPECT_EQ(GetParam().read(data, part.offset, part.len), 0);
        EXPECT_EQ(Hex(data, part.len), block.substr(2 * (part.offset - 40), 2 * part.len));
        EXPECT_EQ(data[part.len], 0x11) << "behind " << part.len << " bytes";
    }
    EXPECT_EQ(Log(), LogLines{});
}

TEST_P(ReadFromTwinTest, AlwaysTransfersTheWholeBlock)
{
    OpenDevice();
    uint8_t data[4];
    EXPECT_EQ(GetParam().read(data, 52, 4), 0);
    EXPECT_EQ(Requests(), Texts{"READ 40 16"});
    EXPECT_EQ(Trace(), Texts{GetParam().readRequest});
}

TEST_P(ReadFromTwinTest, RefusesWhatDoesNotLieInTheBlock)
{
    OpenDevice();
    uint8_t data[32] = {};
    for (const Range part :
         {Range{39, 1}, Range{0, 4}, Range{53, 1}, Range{56, 1}, Range{40, 17}, Range{52, 5},
          Range{44, 13}, Range{44, 0}, Range{40, kHuge}, Range{44, kHuge - 43}, Range{kHuge, 1}}) {
        EXPECT_EQ(GetParam().read(data, part.offset, part.len), -1)
            << part.len << " at " << part.offset;
    }
    EXPECT_EQ(GetParam().read(nullptr, 44, 4), -1);
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Requests(), Texts{});
}

TEST_P(ReadFromTwinTest, RefusesBeforeTheDeviceIsOpen)
{
    uint8_t data[4];
    EXPECT_EQ(GetParam().read(data, 44, 4), -1);
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Trace(), Texts{});
}

TEST_P(ReadFromTwinTest, TellsOfADriverThatRefuses)
{
    OpenDevice();
    const LogLine refused = Error(GetParam().Operation("ReadFrom"),
                                  std::string(GetParam().tag) + " read failed,[offset:44,len:8]");
    uint8_t data[8];
    memset(data, 0x11, sizeof(data));
    Fail(GetParam().readRequest, EIO);
    EXPECT_EQ(GetParam().read(data, 44, 8), -2);
    Memory().result = 1;
    EXPECT_EQ(GetParam().read(data, 44, 8), -2);
    EXPECT_EQ(Hex(data, 8), "1111111111111111");
    EXPECT_EQ(Log(), (LogLines{refused, refused}));
}

TEST_P(ReadFromTwinTest, TellsOfEverySingleWrongBit)
{
    OpenDevice();
    const LogLine corrupt = Error(GetParam().Operation("ReadFrom"), "crc check failed!");
    for (int bit = 0; bit < 128; ++bit) {
        PutBlock(kFullBlock);
        Memory().bytes[40 + bit / 8] ^= static_cast<uint8_t>(1 << bit % 8);
        ClearLog();
        uint8_t data[4] = {1, 2, 3, 4};
        EXPECT_EQ(GetParam().read(data, 44, 4), -3) << "bit " << bit;
        EXPECT_EQ(Hex(data, 4), "01020304");
        EXPECT_EQ(Log(), LogLines{corrupt});
    }
}

TEST_P(ReadFromTwinTest, LeavesTheMemoryAndItsCallerAloneWhateverFails)
{
    PutBlock(kFullBlock);
    static int result;
    static uint8_t data[4];
    FailEachCall(
        [] {
            CheckDeviceType();
            memset(data, 0x11, sizeof(data));
            result = GetParam().read(data, 44, 4);
        },
        [](const std::string& failed) {
            EXPECT_EQ(Hex(data, 4), result == 0 ? "c0a8006c" : "11111111");
            if (failed == GetParam().readRequest) {
                EXPECT_EQ(result, -2);
            }
            EXPECT_EQ(Image(), Image(0, kFullBlock));
        },
        {"open /dev/pdc"});
}

// ---- patching a block

class WriteToTwinTest : public TwinTest {};
EACH_TWIN(WriteToTwinTest);

TEST_P(WriteToTwinTest, PatchesTheBlockAndRenewsItsSum)
{
    OpenDevice();
    PutMark(7);
    const uint8_t address[] = {192, 168, 0, 108};
    const uint8_t mask[] = {255, 255, 255, 0};
    const uint8_t gateway[] = {192, 168, 0, 1};
    EXPECT_TRUE(GetParam().write(address, 44, 4));
    EXPECT_EQ(Image(), Image(7, "c23798dac0a8006c0000000000000000"));
    EXPECT_TRUE(GetParam().write(mask, 48, 4));
    EXPECT_EQ(Image(), Image(7, "d8d0218ac0a8006cffffff0000000000"));
    EXPECT_TRUE(GetParam().write(gateway, 52, 4));
    EXPECT_EQ(Image(), Image(7, kFullBlock));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_P(WriteToTwinTest, ReadsAndWritesTheWholeBlock)
{
    OpenDevice();
    const uint8_t byte = 1;
    EXPECT_TRUE(GetParam().write(&byte, 50, 1));
    EXPECT_EQ(Requests(), (Texts{"READ 40 16", "WRITE 40 16"}));
    EXPECT_EQ(Trace(), (Texts{GetParam().readRequest, GetParam().writeRequest}));
}

TEST_P(WriteToTwinTest, TakesAllThreeValuesAtOnce)
{
    OpenDevice();
    uint8_t values[12];
    PutHex(std::string(kFullBlock).substr(8), values);
    EXPECT_TRUE(GetParam().write(values, 44, 12));
    EXPECT_EQ(Image(), Image(0, kFullBlock));
}

TEST_P(WriteToTwinTest, RefusesTheSumAndWhatDoesNotLieInTheBlock)
{
    OpenDevice();
    const uint8_t data[32] = {};
    for (const Range part :
         {Range{40, 4}, Range{40, 16}, Range{43, 1}, Range{39, 1}, Range{53, 1}, Range{56, 1},
          Range{52, 5}, Range{44, 13}, Range{44, 0}, Range{44, kHuge - 43}, Range{kHuge, 1}}) {
        EXPECT_FALSE(GetParam().write(data, part.offset, part.len))
            << part.len << " at " << part.offset;
    }
    EXPECT_FALSE(GetParam().write(nullptr, 44, 4));
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Requests(), Texts{});
}

TEST_P(WriteToTwinTest, RefusesBeforeTheDeviceIsOpen)
{
    const uint8_t data[4] = {};
    EXPECT_FALSE(GetParam().write(data, 44, 4));
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Trace(), Texts{});
}

TEST_P(WriteToTwinTest, WritesNothingWhenTheBlockCannotBeRead)
{
    OpenDevice();
    Fail(GetParam().readRequest, EIO);
    const uint8_t data[4] = {1, 2, 3, 4};
    EXPECT_FALSE(GetParam().write(data, 52, 4));
    EXPECT_EQ(Image(), Image(0, kZeroBlock));
    EXPECT_EQ(Trace(), Texts{GetParam().readRequest});
    const std::string tag = GetParam().tag;
    EXPECT_EQ(Log(), (LogLines{Error(GetParam().Operation("ReadFrom"),
                                     tag + " read failed,[offset:40,len:16]"),
                               Error(GetParam().Operation("WriteTo"), "read " + tag + " error.")}));
}

TEST_P(WriteToTwinTest, DoesNotPatchACorruptBlockUntilItIsReset)
{
    OpenDevice();
    PutBlock(kFullBlock);
    Memory().bytes[50] ^= 0x10;
    const std::string before = Image();
    const uint8_t address[] = {192, 168, 0, 108};
    EXPECT_FALSE(GetParam().write(address, 44, 4));
    EXPECT_EQ(Image(), before);
    EXPECT_EQ(Log(), (LogLines{Error(GetParam().Operation("ReadFrom"), "crc check failed!"),
                               Error(GetParam().Operation("WriteTo"),
                                     std::string("read ") + GetParam().tag + " error.")}));

    EXPECT_TRUE(GetParam().reset());
    EXPECT_TRUE(GetParam().write(address, 44, 4));
    EXPECT_EQ(Image(), Image(0, "c23798dac0a8006c0000000000000000"));
}

TEST_P(WriteToTwinTest, TellsOfADriverThatRefuses)
{
    OpenDevice();
    Fail(GetParam().writeRequest, EIO);
    const uint8_t data[8] = {1, 2, 3, 4};
    EXPECT_FALSE(GetParam().write(data, 48, 8));
    EXPECT_EQ(Image(), Image(0, kZeroBlock));
    EXPECT_EQ(Log(),
              LogLines{Error(GetParam().Operation("WriteTo"),
                             std::string(GetParam().tag) + " write failed,[offset:48,len:8]")});
}

TEST_P(WriteToTwinTest, TheBlockIsTheOldOrTheNewOneWhateverFails)
{
    PutBlock(kFullBlock);
    static bool written;
    FailEachCall(
        [] {
            CheckDeviceType();
            const uint8_t address[] = {10, 0, 0, 2};
            written = GetParam().write(address, 44, 4);
        },
        [](const std::string&) {
            if (!written) {
                EXPECT_EQ(Image(), Image(0, kFullBlock));
                return;
            }
            uint8_t address[4];
            EXPECT_EQ(GetParam().read(address, 44, 4), 0);
            EXPECT_EQ(Hex(address, 4), "0a000002");
        },
        {"open /dev/pdc"});
}

// ---- wiping a block

class ResetTwinTest : public TwinTest {};
EACH_TWIN(ResetTwinTest);

TEST_P(ResetTwinTest, ZeroesTheValuesUnderTheirSumAndKeepsTheMark)
{
    OpenDevice();
    PutMark(0x66);
    PutBlock(kFullBlock);
    EXPECT_TRUE(GetParam().reset());
    EXPECT_EQ(Image(), Image(0x66, kZeroBlock));
    EXPECT_EQ(Requests(), Texts{"WRITE 40 16"});
    EXPECT_EQ(Trace(), Texts{GetParam().writeRequest});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_P(ResetTwinTest, TellsOfADriverThatRefuses)
{
    OpenDevice();
    PutBlock(kFullBlock);
    Fail(GetParam().writeRequest, EIO);
    EXPECT_FALSE(GetParam().reset());
    EXPECT_EQ(Image(), Image(0, kFullBlock));
    EXPECT_EQ(Log(), LogLines{Error(GetParam().Operation("Reset"), GetParam().resetFailed)});
}

TEST_P(ResetTwinTest, AnyOtherResultThanZeroIsARefusal)
{
    OpenDevice();
    Memory().result = 1;
    EXPECT_FALSE(GetParam().reset());
    EXPECT_EQ(Log(), LogLines{Error(GetParam().Operation("Reset"), GetParam().resetFailed)});
}

TEST_P(ResetTwinTest, RefusesBeforeTheDeviceIsOpen)
{
    EXPECT_FALSE(GetParam().reset());
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Trace(), Texts{});
}

TEST_P(ResetTwinTest, TheBlockIsTheOldOrTheWipedOneWhateverFails)
{
    PutBlock(kFullBlock);
    static bool wiped;
    FailEachCall(
        [] {
            CheckDeviceType();
            wiped = GetParam().reset();
        },
        [](const std::string&) { EXPECT_EQ(Image(), Image(0, wiped ? kZeroBlock : kFullBlock)); },
        {"open /dev/pdc"});
}

// ---- check sums

TEST(CRCCalcu, IsTheOneOfEthernet)
{
    EXPECT_EQ(CRCCalcu("123456789", 9), 0xCBF43926U);
    EXPECT_EQ(CRCCalcu("a", 1), 0xE8B7BE43U);
    EXPECT_EQ(CRCCalcu("The quick brown fox jumps over the lazy dog", 43), 0x414FA339U);
}

TEST(CRCCalcu, OfTwelveZeroBytesIsThatOfAWipedBlock)
{
    const uint8_t zeros[12] = {};
    EXPECT_EQ(CRCCalcu(zeros, 12), 0x7BD5C66FU);
}

TEST(CRCCalcu, OfNothingIsZero)
{
    EXPECT_EQ(CRCCalcu("123456789", 0), 0U);
    EXPECT_EQ(CRCCalcu(nullptr, 9), 0U);
}

TEST(CRCCalcu, TakesBytesFromAnyPlaceAndOfAnyNumber)
{
    // Each byte by itself, eight bits one after the other.
    const auto slowly = [](const uint8_t* bytes, uint32_t len) {
        uint32_t value = 0xFFFFFFFFU;
        for (uint32_t i = 0; i < len; ++i) {
            value ^= bytes[i];
            for (int bit = 0; bit < 8; ++bit) {
                value = (value & 1) != 0 ? (value >> 1) ^ 0xEDB88320U : value >> 1;
            }
        }
        return ~value;
    };
    uint8_t bytes[600];
    for (size_t i = 0; i < sizeof(bytes); ++i) bytes[i] = static_cast<uint8_t>(i * 7 + i / 256);
    for (uint32_t start = 0; start < 8; ++start) {
        for (const uint32_t len : {1U, 7U, 8U, 9U, 15U, 16U, 17U, 256U, 592U}) {
            EXPECT_EQ(CRCCalcu(bytes + start, len), slowly(bytes + start, len))
                << len << " bytes at " << start;
        }
    }
}

}  // namespace
