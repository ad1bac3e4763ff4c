// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Backup.h"

#include "BackupRecorder.h"
#include "BackupTwins.h"

#include <cerrno>

using namespace fake;

namespace {

using Texts = std::vector<std::string>;

constexpr uint8_t kReset = 102;
constexpr char kFirstCardFile[] = "/mnt/mtd/Config/network";

const LogLine kWrongFlag = Error("ReadFromCmos", "cmos verify flag error. must update lanrise!!");

// ---- the mark in a camera's memory

class CameraMarkTest : public TwinTest {
protected:
    static LogLine GetFailed()
    {
        return Error(std::string("Get") + GetParam().name + "Mark", GetParam().getMarkFailed);
    }
    static LogLine SetFailed()
    {
        return Error(std::string("Set") + GetParam().name + "Mark", GetParam().setMarkFailed);
    }
};
EACH_TWIN(CameraMarkTest);

TEST_P(CameraMarkTest, IsOneByteThatNoSumCovers)
{
    OpenDevice();
    PutBlock(kFullBlock);
    EXPECT_TRUE(GetParam().setMark(0xA5));
    EXPECT_EQ(Image(), Image(0xA5, kFullBlock));
    EXPECT_EQ(GetParam().getMark(), 0xA5);
    EXPECT_EQ(Requests(), (Texts{"WRITE 39 1", "READ 39 1"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_P(CameraMarkTest, IsReadOfACorruptBlockToo)
{
    OpenDevice();
    PutMark(kReset);
    Memory().bytes[40] ^= 1;
    EXPECT_EQ(GetParam().getMark(), kReset);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_P(CameraMarkTest, ThatCannotBeReadIsZero)
{
    OpenDevice();
    PutMark(kReset);
    Fail(GetParam().readRequest, EIO);
    EXPECT_EQ(GetParam().getMark(), 0);
    Memory().result = 1;
    EXPECT_EQ(GetParam().getMark(), 0);
    EXPECT_EQ(Log(), (LogLines{GetFailed(), GetFailed()}));
}

TEST_P(CameraMarkTest, ThatCannotBeWrittenIsTold)
{
    OpenDevice();
    Fail(GetParam().writeRequest, EIO);
    EXPECT_FALSE(GetParam().setMark(1));
    EXPECT_EQ(Image(), Image(0, kZeroBlock));
    Memory().result = 1;
    EXPECT_FALSE(GetParam().setMark(1));
    EXPECT_EQ(Log(), (LogLines{SetFailed(), SetFailed()}));
}

TEST_P(CameraMarkTest, LooksForTheDeviceFirst)
{
    PutMark(kReset);
    EXPECT_EQ(GetParam().getMark(), kReset);
    EXPECT_TRUE(GetParam().setMark(0));
    EXPECT_EQ(TraceOf({"open"}), Texts{std::string("open ") + GetParam().node + " O_RDWR"});
}

TEST_P(CameraMarkTest, IsAskedForAlsoWithoutAnOpenDevice)
{
    FailAll("open ", EIO);
    OpenDevice();
    EXPECT_EQ(GetParam().getMark(), 0);
    EXPECT_FALSE(GetParam().setMark(1));
    EXPECT_EQ(Log(), (LogLines{GetFailed(), SetFailed()}));
    EXPECT_EQ(Trace(), (Texts{GetParam().readRequest, GetParam().writeRequest}));
}

// ---- the question, on a camera

class CameraResetTest : public TwinTest {
protected:
    static void PutSettings() { Put(kFirstCardFile, ""); }

    static Texts WithMarkCleared() { return {GetParam().readRequest, GetParam().writeRequest}; }
};
EACH_TWIN(CameraResetTest);

TEST_P(CameraResetTest, NoMarkIsNoReset)
{
    OpenDevice();
    EXPECT_FALSE(CheckBeenReset());
    EXPECT_EQ(Trace(), Texts{GetParam().readRequest});
    EXPECT_EQ(Requests(), Texts{"READ 39 1"});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_P(CameraResetTest, AnAnnouncedResetIsToldOnce)
{
    OpenDevice();
    PutSettings();
    PutMark(kReset);
    PutBlock(kFullBlock);
    EXPECT_TRUE(CheckBeenReset());
    EXPECT_EQ(Image(), Image(0, kFullBlock));
    EXPECT_EQ(Trace(), WithMarkCleared());
    EXPECT_EQ(Requests(), (Texts{"READ 39 1", "WRITE 39 1"}));
    EXPECT_FALSE(CheckBeenReset());
    EXPECT_EQ(Log(), LogLines{});
}

TEST_P(CameraResetTest, AnyOtherMarkIsAMemoryWithoutPowerWhileTheSettingsStand)
{
    OpenDevice();
    PutSettings();
    for (const uint8_t mark : {uint8_t{7}, uint8_t{1}, uint8_t{101}, uint8_t{103}, uint8_t{255}}) {
        PutMark(mark);
        ClearLog();
        EXPECT_FALSE(CheckBeenReset());
        EXPECT_EQ(Image(), Image(0, kZeroBlock));
        EXPECT_EQ(Log(), LogLines{Warn("CheckBeenReset", "CMOS has no electric")});
    }
}

TEST_P(CameraResetTest, AnyOtherMarkIsANewFlashWhenThereAreNoSettings)
{
    OpenDevice();
    PutMark(7);
    EXPECT_TRUE(CheckBeenReset());
    EXPECT_EQ(Image(), Image(0, kZeroBlock));
    EXPECT_EQ(Log(), LogLines{Info("CheckBeenReset", "May be the first burn flash")});
    EXPECT_EQ(Trace(), (Texts{GetParam().readRequest, std::string("access ") + kFirstCardFile,
                              GetParam().writeRequest}));
    EXPECT_FALSE(CheckBeenReset());
}

TEST_P(CameraResetTest, AMarkThatCannotBeReadIsNoReset)
{
    OpenDevice();
    PutMark(kReset);
    Fail(GetParam().readRequest, EIO);
    EXPECT_FALSE(CheckBeenReset());
    EXPECT_EQ(Image(), Image(kReset, kZeroBlock));
    EXPECT_EQ(Log(), LogLines{Error(std::string("Get") + GetParam().name + "Mark",
                                    GetParam().getMarkFailed)});
}

TEST_P(CameraResetTest, AMarkThatCannotBeClearedIsToldAgain)
{
    OpenDevice();
    PutMark(kReset);
    FailAll(GetParam().writeRequest, EIO);
    EXPECT_TRUE(CheckBeenReset());
    EXPECT_TRUE(CheckBeenReset());
    EXPECT_EQ(Log(), LogLines(2, Error(std::string("Set") + GetParam().name + "Mark",
                                       GetParam().setMarkFailed)));
}

TEST_P(CameraResetTest, ThePublicQuestionIsTheSame)
{
    PutMark(kReset);
    EXPECT_TRUE(NetCheckBeenReset());
    EXPECT_FALSE(NetCheckBeenReset());
    EXPECT_EQ(Image(), Image(0, kZeroBlock));
}

TEST_P(CameraResetTest, NothingIsAnnouncedByThisSystem)
{
    EXPECT_TRUE(setBeenResetFlag());
    EXPECT_TRUE(setCmosVerifyFlag());
    EXPECT_EQ(TraceOf({"open"}), Texts{std::string("open ") + GetParam().node + " O_RDWR"});
    EXPECT_EQ(TraceOf({GetParam().readRequest, GetParam().writeRequest, "CMOS"}), Texts{});
    EXPECT_EQ(Image(), Image(0, kZeroBlock));
}

TEST_P(CameraResetTest, TheMarkIsTheOldOneOrClearedWhateverFails)
{
    PutMark(kReset);
    PutBlock(kFullBlock);
    FailEachCall([] { (void)CheckBeenReset(); },
                 [](const std::string& failed) {
                     const uint8_t mark = Memory().bytes[39];
                     EXPECT_TRUE(mark == 0 || mark == kReset) << failed;
                     EXPECT_EQ(Image(), Image(mark, kFullBlock)) << failed;
                 },
                 {"open /dev/pdc"});
}

// ---- check and wipe of a camera's memory

class CameraCheckTest : public TwinTest {};
EACH_TWIN(CameraCheckTest);

TEST_P(CameraCheckTest, PassesWithARightSum)
{
    PutBlock(kFullBlock);
    OpenDevice();
    EXPECT_TRUE(CheckCrc());
    EXPECT_EQ(Requests(), Texts{"READ 40 16"});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_P(CameraCheckTest, FailsWithACorruptByte)
{
    PutBlock(kFullBlock);
    Memory().bytes[45] = 1;
    OpenDevice();
    EXPECT_FALSE(CheckCrc());
    EXPECT_EQ(Log(), (LogLines{Error(GetParam().Operation("ReadFrom"), "crc check failed!"),
                               Error("CheckCrc", "crc error .")}));
}

TEST_P(CameraCheckTest, PassesWhenTheDriverRefuses)
{
    OpenDevice();
    FailAll(GetParam().readRequest, EIO);
    EXPECT_TRUE(CheckCrc());
    EXPECT_EQ(Log(),
              LogLines{Error(GetParam().Operation("ReadFrom"),
                             std::string(GetParam().tag) + " read failed,[offset:52,len:4]")});
}

TEST_P(CameraCheckTest, PassesWithoutAnOpenDevice)
{
    FailAll("open ", EIO);
    EXPECT_TRUE(CheckCrc());
    EXPECT_EQ(LogOf("CheckCrc"), LogLines{});
    EXPECT_EQ(TraceOf({"ioctl"}), Texts{});
}

class CameraWipeTest : public TwinTest {
protected:
    static LogLine Announced()
    {
        return Warn("RestBackup", "try to reset the backup memory! All the backup info will lost.");
    }
};
EACH_TWIN(CameraWipeTest);

TEST_P(CameraWipeTest, ZeroesTheValuesAndKeepsTheMark)
{
    PutMark(kReset);
    PutBlock(kFullBlock);
    OpenDevice();
    EXPECT_TRUE(RestBackup());
    EXPECT_EQ(Image(), Image(kReset, kZeroBlock));
    EXPECT_EQ(Requests(), Texts{"WRITE 40 16"});
    EXPECT_EQ(Log(), LogLines{Announced()});
}

TEST_P(CameraWipeTest, MendsACorruptBlock)
{
    PutBlock(kFullBlock);
    Memory().bytes[45] ^= 1;
    EXPECT_FALSE(CheckCrc());
    EXPECT_TRUE(RestBackup());
    EXPECT_TRUE(CheckCrc());
    EXPECT_TRUE(BackupIP("eth0", "192.168.0.108"));
}

TEST_P(CameraWipeTest, TellsOfADriverThatRefuses)
{
    PutBlock(kFullBlock);
    OpenDevice();
    FailAll(GetParam().writeRequest, EIO);
    EXPECT_FALSE(RestBackup());
    EXPECT_EQ(Image(), Image(0, kFullBlock));
    EXPECT_EQ(Log(),
              (LogLines{Announced(), Error(GetParam().Operation("Reset"), GetParam().resetFailed),
                        Error("RestBackup", GetParam().Operation("Reset") + " error .")}));
}

TEST_P(CameraWipeTest, LooksForTheDeviceBeforeItWarns)
{
    EXPECT_TRUE(RestBackup());
    const LogLines log = Log();
    EXPECT_EQ(log.front().operation, "CheckDeviceType");
    EXPECT_EQ(log.back(), Announced());
}

TEST_P(CameraWipeTest, TheBlockIsTheOldOrTheWipedOneWhateverFails)
{
    PutBlock(kFullBlock);
    static bool wiped;
    FailEachCall([] { wiped = RestBackup(); },
                 [](const std::string& failed) {
                     if (!wiped) {
                         EXPECT_EQ(Image(), Image(0, kFullBlock)) << failed;
                     } else if (failed.rfind("access", 0) != 0) {
                         EXPECT_EQ(Image(), Image(0, kZeroBlock)) << failed;
                     }
                 },
                 {"open /dev/pdc"});
}

class ClosedCameraTest : public World {};

TEST_F(ClosedCameraTest, FailsTheWipeInTheSramsName)
{
    Put(kSramTwin.node, "");
    Fail("open ", EIO);
    EXPECT_FALSE(RestBackup());
    EXPECT_EQ(LogOf("ResetSram"), LogLines{});
    EXPECT_TRUE(Logged(Error("RestBackup", "ResetSram error .")));
}

// ---- the mark on CMOS

class RecorderMarkTest : public RecorderTest {};

TEST_F(RecorderMarkTest, IsTheLastByteOfTheRecord)
{
    PutRecord(kFullRecord);
    OpenDevice();
    EXPECT_TRUE(SetCmosResetMark(0xA5));
    EXPECT_EQ(Image(), Image("c0a8006cc0a8000118a0d5a5"));
    EXPECT_EQ(GetCmosResetMark(), 0xA5);
    EXPECT_EQ(Trace(), (Texts{"CMOSRead 10 12", "CMOSWrite 10 12", "CMOSRead 10 12"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(RecorderMarkTest, AsksTheProviderFirst)
{
    PutRecord("000000000000000000a00066");
    EXPECT_EQ(GetCmosResetMark(), kReset);
    EXPECT_TRUE(SetCmosResetMark(1));
    EXPECT_EQ(TraceOf({"CMOSGetCaps"}), Texts{"CMOSGetCaps"});
}

TEST_F(RecorderMarkTest, OfARecordThatFailsItsCheckIsGivenAllTheSame)
{
    PutRecord("c0a8006cc0a800011800d566");
    OpenDevice();
    EXPECT_EQ(GetCmosResetMark(), kReset);
    EXPECT_EQ(Log(), LogLines{kWrongFlag});
}

TEST_F(RecorderMarkTest, ThatCannotBeReadIsZero)
{
    PutRecord("000000000000000000a00066");
    OpenDevice();
    Fail("CMOSRead", EIO);
    EXPECT_EQ(GetCmosResetMark(), 0);
    EXPECT_EQ(Log(), LogLines{Error("ReadFromCmos", "read from cmos error.")});
}

TEST_F(RecorderMarkTest, IsWrittenIntoARecordThatFailsItsCheckToo)
{
    PutRecord("c0a8006cc0a800011805ff00");
    OpenDevice();
    EXPECT_TRUE(SetCmosResetMark(kReset));
    EXPECT_EQ(Image(), Image("c0a8006cc0a800011805d566"));
    EXPECT_EQ(Log(), (LogLines{kWrongFlag, Error("SetCmosResetMark",
                                                 "read from cmos for reset flag failed.")}));
}

TEST_F(RecorderMarkTest, IsWrittenIntoAnEmptyRecordWhenNoneCanBeRead)
{
    PutRecord(kFullRecord);
    OpenDevice();
    Fail("CMOSRead", EIO);
    EXPECT_TRUE(SetCmosResetMark(kReset));
    EXPECT_EQ(Image(), Image("000000000000000000000066"));
    EXPECT_EQ(Log(),
              (LogLines{Error("ReadFromCmos", "read from cmos error."),
                        Error("SetCmosResetMark", "read from cmos for reset flag failed.")}));
}

TEST_F(RecorderMarkTest, ThatCannotBeWrittenIsTold)
{
    PutRecord(kFullRecord);
    OpenDevice();
    Fail("CMOSWrite", EIO);
    EXPECT_FALSE(SetCmosResetMark(kReset));
    EXPECT_EQ(Image(), Image(kFullRecord));
    EXPECT_EQ(Log(), LogLines{Error("SetCmosResetMark", "write cmos reset flag failed!")});
}

// ---- announcement and question, on a recorder

class RecorderResetTest : public RecorderTest {};

TEST_F(RecorderResetTest, AnAnnouncedResetIsToldOnce)
{
    PutRecord(kFullRecord);
    OpenDevice();
    EXPECT_FALSE(CheckBeenReset());
    EXPECT_TRUE(setBeenResetFlag());
    EXPECT_EQ(Image(), Image("c0a8006cc0a8000118a0d566"));
    ClearTrace();
    EXPECT_TRUE(CheckBeenReset());
    EXPECT_EQ(Trace(), (Texts{"CMOSRead 10 12", "CMOSRead 10 12", "CMOSWrite 10 12"}));
    EXPECT_EQ(Image(), Image(kFullRecord));
    EXPECT_FALSE(NetCheckBeenReset());
    EXPECT_EQ(Log(), LogLines{Info("CheckBeenReset", "read from cmos reset flag 66, reset net.")});
}

TEST_F(RecorderResetTest, AnyOtherMarkIsLeftAlone)
{
    for (const char* record :
         {"c0a8006cc0a8000118a0d507", "c0a8006cc0a8000118a0d5ff", "c0a8006cc0a8000118a0d565"}) {
        PutRecord(record);
        OpenDevice();
        EXPECT_FALSE(CheckBeenReset());
        EXPECT_EQ(Image(), Image(record));
        EXPECT_EQ(Trace(), Texts{"CMOSRead 10 12"});
        EXPECT_EQ(Log(), LogLines{});
    }
}

TEST_F(RecorderResetTest, AMarkThatCannotBeClearedIsToldAgain)
{
    PutRecord("c0a8006cc0a8000118a0d566");
    OpenDevice();
    FailAll("CMOSWrite", EIO);
    EXPECT_TRUE(CheckBeenReset());
    EXPECT_TRUE(CheckBeenReset());
}

TEST_F(RecorderResetTest, AShortCmosHasNoMark)
{
    PutLength(10);
    PutRecord("c0a8006cc0a8000118a0d566");
    OpenDevice();
    EXPECT_FALSE(CheckBeenReset());
    EXPECT_EQ(Trace(), Texts{"CMOSRead 10 10"});
    EXPECT_EQ(Image(), Image("c0a8006cc0a8000118a0d566"));
    EXPECT_EQ(Log(), LogLines{Info("ReadFromCmos", "Cmos size 10, no crc check and reset flag")});
}

TEST_F(RecorderResetTest, AnAnnouncementThatCannotBeWrittenIsTold)
{
    OpenDevice();
    Fail("CMOSWrite", EIO);
    EXPECT_FALSE(setBeenResetFlag());
    EXPECT_EQ(Log(), (LogLines{Error("SetCmosResetMark", "write cmos reset flag failed!"),
                               Error("setBeenResetFlag", "set been reset flag failed.")}));
}

TEST_F(RecorderResetTest, TheRecordIsTheOldOrTheNewOneWhateverFails)
{
    PutRecord("c0a8006cc0a8000118a0d566");
    FailEachCall([] { (void)CheckBeenReset(); },
                 [](const std::string& failed) {
                     const std::string record = Record();
                     EXPECT_TRUE(record == "c0a8006cc0a8000118a0d566" || record == kFullRecord ||
                                 record == "000000000000000000000000")
                         << failed << " " << record;
                     EXPECT_EQ(Image(), Image(record));
                 },
                 {});
}

// ---- check, wipe and verify flag of the record on CMOS

class RecorderCheckTest : public RecorderTest {
protected:
    static LogLine Announced()
    {
        return Warn("RestBackup", "try to reset the backup memory! All the backup info will lost.");
    }
};

TEST_F(RecorderCheckTest, AnyFailedReadIsAFailedCheck)
{
    PutRecord(kFullRecord);
    OpenDevice();
    EXPECT_TRUE(CheckCrc());
    EXPECT_EQ(Log(), LogLines{});
    Fail("CMOSRead", EIO);
    EXPECT_FALSE(CheckCrc());
    PutRecord("c0a8006cc0a800011800d500");
    EXPECT_FALSE(CheckCrc());
    PutRecord("c0a8006cc0a8000118a0d400");
    EXPECT_FALSE(CheckCrc());
    EXPECT_EQ(Log(), (LogLines{Error("ReadFromCmos", "read from cmos error."), kWrongFlag,
                               Error("ReadFromCmos", "crc check error.")}));
}

TEST_F(RecorderCheckTest, ACmosThatIsNotUsableFailsSilently)
{
    cmos.networkStart = 0;
    OpenDevice();
    EXPECT_FALSE(CheckCrc());
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(RecorderCheckTest, AWipeTakesTheFlagToo)
{
    PutRecord("c0a8006cc0a8000118afd566");
    OpenDevice();
    EXPECT_TRUE(RestBackup());
    EXPECT_EQ(Image(), Image("000000000000000000000000"));
    EXPECT_EQ(Trace(), Texts{"CMOSWrite 10 12"});
    EXPECT_EQ(Log(), LogLines{Announced()});
    ClearLog();
    EXPECT_FALSE(CheckCrc());
    EXPECT_EQ(Log(), LogLines{kWrongFlag});
}

TEST_F(RecorderCheckTest, AWipeThatFailsSaysNoMore)
{
    PutRecord(kFullRecord);
    OpenDevice();
    Fail("CMOSWrite", EIO);
    EXPECT_FALSE(RestBackup());
    EXPECT_EQ(Image(), Image(kFullRecord));
    EXPECT_EQ(Log(), LogLines{Announced()});
}

class SetCmosVerifyFlagTest : public RecorderTest {};

TEST_F(SetCmosVerifyFlagTest, SetsTheFlagAndNothingElse)
{
    struct Case {
        const char* before;
        const char* after;
    };
    for (const Case& record : {Case{"000000000000000000000000", "000000000000000000a00000"},
                               Case{"c0a8006cc0a800011855d566", "c0a8006cc0a8000118a5d566"},
                               Case{"c0a8006cc0a8000118ff2a66", "c0a8006cc0a8000118af2a66"},
                               Case{kFullRecord, kFullRecord}}) {
        PutRecord(record.before);
        OpenDevice();
        EXPECT_TRUE(setCmosVerifyFlag());
        EXPECT_EQ(Image(), Image(record.after));
        EXPECT_EQ(Trace(), (Texts{"CMOSRead 10 12", "CMOSWrite 10 12"}));
        EXPECT_EQ(Log(), LogLines{});
    }
}

TEST_F(SetCmosVerifyFlagTest, DoesNotMendAWrongCheckByte)
{
    PutRecord("c0a8006cc0a8000118002a00");
    OpenDevice();
    EXPECT_TRUE(setCmosVerifyFlag());
    EXPECT_EQ(Image(), Image("c0a8006cc0a8000118a02a00"));
    EXPECT_FALSE(CheckCrc());
    EXPECT_EQ(Log(), LogLines{Error("ReadFromCmos", "crc check error.")});
}

TEST_F(SetCmosVerifyFlagTest, TellsOfAReadThatFails)
{
    OpenDevice();
    for (const int32_t refusal : {-1, 1}) {
        cmos.refusal = refusal;
        ClearLog();
        ClearTrace();
        Fail("CMOSRead", EIO);
        EXPECT_FALSE(setCmosVerifyFlag());
        EXPECT_EQ(Trace(), Texts{"CMOSRead 10 12"});
        EXPECT_EQ(Log(),
                  LogLines{Error("setCmosVerifyFlag", "read original cmos massage failed.")});
    }
}

TEST_F(SetCmosVerifyFlagTest, TellsOfAWriteThatFails)
{
    PutRecord("000000000000000000000000");
    OpenDevice();
    for (const int32_t refusal : {-1, 1}) {
        cmos.refusal = refusal;
        ClearLog();
        Fail("CMOSWrite", EIO);
        EXPECT_FALSE(setCmosVerifyFlag());
        EXPECT_EQ(Image(), Image("000000000000000000000000"));
        EXPECT_EQ(Log(), LogLines{Error("setCmosVerifyFlag", "write cmos reset flag failed!")});
    }
}

TEST_F(SetCmosVerifyFlagTest, ReachesAsFarAsTheCmosGoes)
{
    PutLength(9);
    OpenDevice();
    EXPECT_TRUE(setCmosVerifyFlag());
    EXPECT_EQ(Trace(), (Texts{"CMOSRead 10 9", "CMOSWrite 10 9"}));
}

TEST_F(SetCmosVerifyFlagTest, AsksTheProviderEvenWithoutARangeOfItsOwn)
{
    Fail("CMOSGetCaps", EIO);
    EXPECT_TRUE(setCmosVerifyFlag());
    EXPECT_EQ(TraceOf({"CMOS"}), (Texts{"CMOSGetCaps", "CMOSRead 0 0", "CMOSWrite 0 0"}));
}

TEST_F(SetCmosVerifyFlagTest, ANewBoardKeepsItsValuesFromTheSecondStartOn)
{
    PutRecord("ffffffffffffffffffffffff");
    // First start: the record is not of this layout, and is wiped.
    EXPECT_FALSE(CheckCrc());
    EXPECT_TRUE(RestBackup());
    EXPECT_FALSE(BackupIP("eth0", "192.168.0.108"));
    EXPECT_TRUE(setCmosVerifyFlag());
    EXPECT_EQ(Image(), Image(kZeroRecord));

    // Second start: it passes, but holds nothing yet.
    EXPECT_TRUE(CheckCrc());
    ClearLog();
    char text[16] = "-";
    EXPECT_FALSE(RestoreIP("eth0", text));
    EXPECT_EQ(Log(), LogLines{Error("RestoreIP", "ip is zero.")});
    EXPECT_TRUE(BackupIP("eth0", "192.168.0.108"));
    EXPECT_TRUE(setCmosVerifyFlag());
    EXPECT_TRUE(RestoreIP("eth0", text));
    EXPECT_STREQ(text, "192.168.0.108");
}

TEST_F(SetCmosVerifyFlagTest, TheRecordIsTheOldOrTheNewOneWhateverFails)
{
    PutRecord("c0a8006cc0a800011805d566");
    static bool set;
    FailEachCall(
        [] { set = setCmosVerifyFlag(); },
        [](const std::string& failed) {
            EXPECT_EQ(set, failed.rfind("CMOSRead", 0) != 0 && failed.rfind("CMOSWrite", 0) != 0)
                << failed;
            const bool reached = set && failed != "CMOSGetCaps";
            EXPECT_EQ(Image(),
                      Image(reached ? "c0a8006cc0a8000118a5d566" : "c0a8006cc0a800011805d566"))
                << failed;
        },
        {});
}

}  // namespace
