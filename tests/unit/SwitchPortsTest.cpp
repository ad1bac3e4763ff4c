// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The ports of a switch as an application sees them.

#include "CommonApi.h"

#include "fake/World.h"

#include <cstring>
#include <functional>

#include <net/if.h>

using namespace fake;

namespace {

using Calls = std::vector<std::string>;

constexpr int kInfo = 0x89F1;
constexpr int kMac = 0x89F2;
constexpr int kPort = 0x89F3;
constexpr int kEnable = 0x89F4;
constexpr int kUntouched = -77;
constexpr char kModes[] = "/mnt/mtd/Config/poeMode.conf";

/// eth1 is a switch of three ports by its driver; eth2 one of eight by its saved mode.
class SwitchPortsTest : public World {
protected:
    void SetUp() override
    {
        World::SetUp();
        kernel.Add("eth0");
        kernel.Add("eth1").driver = "sim Switch drv";
        kernel.At("eth1").chip = SwitchChip{{{true, "02:00:00:00:00:a1", false},
                                             {false, "02:00:00:00:00:a2", false},
                                             {true, "02:00:00:00:00:A3", false}}};
        kernel.Add("eth2").chip = SwitchChip{std::vector<SwitchPort>(8)};
        Put(kModes, "eth2 = 1\neth3 = 2\n");
        kernel.Add("eth3").chip = SwitchChip{std::vector<SwitchPort>(4)};
        EXPECT_EQ(isSwitch("eth1"), 0);  // learns the driver's name
        ClearLog();
        ClearTrace();
    }

    static int isSwitch(const char* name)
    {
        int num = 0;
        return GetSwitchPortNum(name, &num) ? 0 : -1;
    }

    static SwitchChip& Chip() { return *kernel.At("eth1").chip; }

    /// The requests of the switch itself.
    static Calls Asked() { return TraceOf({"ioctl 0x"}); }
};

// ---- what all of them share

struct Operation {
    const char* name;
    std::function<bool(const char*)> run;
};

int answer;
SwitchPortStatus statusOfAll[4];

std::vector<Operation> Operations()
{
    return {
        {"GetSwitchPortByMac",
         [](auto card) { return GetSwitchPortByMac(card, "02:00:00:00:00:a1", &answer); }},
        {"GetSwitchPortNum", [](auto card) { return GetSwitchPortNum(card, &answer); }},
        {"GetSwitchMask", [](auto card) { return GetSwitchMask(card, &answer); }},
        {"GetSwitchStatus", [](auto card) { return GetSwitchStatus(card, statusOfAll, &answer); }},
    };
}

TEST_F(SwitchPortsTest, ANameThatIsNoSwitchIsRefusedAndNothingIsTouched)
{
    memset(statusOfAll, 'x', sizeof(statusOfAll));
    for (const Operation& operation : Operations()) {
        // An ordinary card, one that is a card as well as a switch, and none at all.
        for (const std::string name : {"eth0", "eth3", "eth9"}) {
            SCOPED_TRACE(operation.name + (" " + name));
            ClearLog();
            ClearTrace();
            answer = kUntouched;
            EXPECT_FALSE(operation.run(name.c_str()));
            EXPECT_EQ(answer, kUntouched);
            EXPECT_EQ(LogOf(operation.name),
                      (LogLines{Error(operation.name, name + " is not a switch")}));
            EXPECT_EQ(Asked(), Calls{});
        }
    }
    EXPECT_EQ(statusOfAll[0].ip[0], 'x');
}

TEST_F(SwitchPortsTest, ANullIsRefusedInSilence)
{
    SwitchPortStatus status;
    int number = kUntouched;
    for (const Operation& operation : Operations()) EXPECT_FALSE(operation.run(nullptr));
    EXPECT_FALSE(GetSwitchPortByMac("eth1", nullptr, &number));
    EXPECT_FALSE(GetSwitchPortByMac("eth1", "02:00:00:00:00:a1", nullptr));
    EXPECT_FALSE(GetSwitchPortNum("eth1", nullptr));
    EXPECT_FALSE(GetSwitchMask("eth1", nullptr));
    EXPECT_FALSE(GetSwitchStatus("eth1", nullptr, &number));
    EXPECT_FALSE(GetSwitchStatus("eth1", &status, nullptr));
    EXPECT_EQ(number, kUntouched);
    EXPECT_EQ(Trace(), Calls{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(SwitchPortsTest, ThePoePartOfACardIsASwitch)
{
    kernel.Add("eth0:poe").chip = SwitchChip{std::vector<SwitchPort>(5)};
    int number = 0;
    EXPECT_TRUE(GetSwitchPortNum("eth0:poe", &number));
    EXPECT_EQ(number, 5);
    EXPECT_EQ(Asked(), Calls{"ioctl 0x89F1 eth0:poe"});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(SwitchPortsTest, HoldsNothingAndTellsNoHalfAnswersWhateverFails)
{
    static bool done;
    kernel.At("eth2").chip->ports[1] = {true, "02:00:00:00:00:a1", false};
    const int answers[] = {1, 8, 2};  // port, number, links
    for (size_t i = 0; i < std::size(answers); ++i) {
        const Operation operation = Operations()[i];
        const int wanted = answers[i];
        FailEachCall(
            [&] {
                answer = kUntouched;
                done = operation.run("eth2");
            },
            [&](const std::string&) {
                // An address that could not be asked for counts as unknown.
                const bool unknown = i == 0 && done && answer == -1;
                EXPECT_TRUE(unknown || answer == (done ? wanted : kUntouched)) << operation.name;
            },
            {"socket"});
    }
}

// ---- GetSwitchPortNum, GetSwitchMask

class GetSwitchPortNumTest : public SwitchPortsTest {};

TEST_F(GetSwitchPortNumTest, ASecondQuestionNeedsNoDriver)
{
    int number = 0;
    EXPECT_TRUE(GetSwitchPortNum("eth1", &number));
    EXPECT_EQ(number, 3);
    EXPECT_EQ(Asked(), Calls{});
    EXPECT_TRUE(GetSwitchPortNum("eth2", &number));
    EXPECT_EQ(number, 8);
    EXPECT_TRUE(GetSwitchPortNum("eth1", &number));
    EXPECT_EQ(number, 3);
    EXPECT_EQ(Asked(), (Calls{"ioctl 0x89F1 eth2", "ioctl 0x89F1 eth1"}));
}

TEST_F(GetSwitchPortNumTest, FailsWithTheDriver)
{
    Fail("ioctl 0x89F1", EIO);
    int number = kUntouched;
    EXPECT_FALSE(GetSwitchPortNum("eth2", &number));
    EXPECT_EQ(number, kUntouched);
    EXPECT_EQ(Log(), (LogLines{Refused(kInfo, EIO, "eth2"),
                               Error("Switch_GetSwitchPortInfo", "get port num for eth2 error.")}));
}

class GetSwitchMaskTest : public SwitchPortsTest {};

TEST_F(GetSwitchMaskTest, IsTheDriversBeyondTheNumberOfPortsToo)
{
    Chip().ports.resize(256 + 3);  // the record has a byte for their number
    for (const size_t port : {4U, 8U, 15U}) Chip().ports[port].link = true;
    int number = 0;
    int mask = 0;
    EXPECT_TRUE(GetSwitchPortNum("eth1", &number));
    EXPECT_TRUE(GetSwitchMask("eth1", &mask));
    EXPECT_EQ(number, 3);
    EXPECT_EQ(mask, 0x8115);
}

TEST_F(GetSwitchMaskTest, AlwaysAsksTheDriver)
{
    int mask = 0;
    EXPECT_TRUE(GetSwitchMask("eth1", &mask));
    EXPECT_EQ(mask, 5);
    Chip().ports[0].link = false;
    EXPECT_TRUE(GetSwitchMask("eth1", &mask));
    EXPECT_EQ(mask, 4);
    EXPECT_EQ(Asked(), (Calls{"ioctl 0x89F1 eth1", "ioctl 0x89F1 eth1"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(GetSwitchMaskTest, FailsWithTheDriverAndLeavesTheMask)
{
    Fail("ioctl 0x89F1", EIO);
    int mask = kUntouched;
    EXPECT_FALSE(GetSwitchMask("eth1", &mask));
    EXPECT_EQ(mask, kUntouched);
    EXPECT_EQ(Log(), (LogLines{Refused(kInfo, EIO, "eth1"),
                               Error("Switch_GetSwitchPortInfo", "get port num for eth1 error.")}));
}

// ---- GetSwitchPortByMac

class GetSwitchPortByMacTest : public SwitchPortsTest {};

TEST_F(GetSwitchPortByMacTest, FindsThePort)
{
    Chip().ports[2].mac = "0a:ff:00:10:0b:0c";
    for (const char* mac :
         {"0a:ff:00:10:0b:0c", "0A:FF:00:10:0B:0C", "a:ff:0:10:b:c", "0a:ff:00:10:0b:0c:99"}) {
        SCOPED_TRACE(mac);
        int port = kUntouched;
        EXPECT_TRUE(GetSwitchPortByMac("eth1", mac, &port));
        EXPECT_EQ(port, 2);
    }
    EXPECT_EQ(Asked(), Calls(4, "ioctl 0x89F3 eth1"));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(GetSwitchPortByMacTest, AnUnknownAddressIsNoFailure)
{
    int port = kUntouched;
    EXPECT_TRUE(GetSwitchPortByMac("eth1", "02:00:00:00:00:0e", &port));
    EXPECT_EQ(port, -1);
    EXPECT_EQ(Log(),
              (LogLines{Refused(kPort, ENOENT, "eth1"),
                        Error("Switch_GetPortBymac", "get port error.[02:00:00:00:00:0e]")}));
}

TEST_F(GetSwitchPortByMacTest, MissingBytesCountAsZero)
{
    const struct {
        const char* text;
        const char* asked;
    } rows[] = {{"", "00:00:00:00:00:00"},
                {"02:03", "02:03:00:00:00:00"},
                {"02:03:zz:04:05:06", "02:03:00:00:00:00"},
                {"02-03", "02:00:00:00:00:00"},
                {"123:4", "12:00:00:00:00:00"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        ClearLog();
        int port = kUntouched;
        EXPECT_TRUE(GetSwitchPortByMac("eth1", row.text, &port));
        EXPECT_EQ(port, -1);
        EXPECT_EQ(LogOf("Switch_GetPortBymac"),
                  (LogLines{Error("Switch_GetPortBymac",
                                  "get port error.[" + std::string(row.asked) + "]")}));
    }
}

// ---- GetSwitchStatus

class GetSwitchStatusTest : public SwitchPortsTest {
protected:
    void SetUp() override
    {
        SwitchPortsTest::SetUp();
        memset(status_, 'x', sizeof(status_));
    }

    /// A record with nothing but these values in it.
    static SwitchPortStatus Record(int port, bool link, const char* mac)
    {
        SwitchPortStatus record{};
        strcpy(record.ip, "0.0.0.0");
        strcpy(record.mac, mac);
        record.link = link ? 1 : 0;
        record.port = static_cast<unsigned char>(port);
        record.ipType = 4;
        return record;
    }

    void ExpectRecord(int place, const SwitchPortStatus& wanted) const
    {
        EXPECT_EQ(memcmp(&status_[place], &wanted, sizeof(wanted)), 0) << "record " << place;
    }

    void ExpectUntouchedFrom(size_t place) const
    {
        for (size_t i = place; i < std::size(status_); ++i) {
            SwitchPortStatus wanted;
            memset(&wanted, 'x', sizeof(wanted));
            EXPECT_EQ(memcmp(&status_[i], &wanted, sizeof(wanted)), 0) << "record " << i;
        }
    }

    SwitchPortStatus status_[6];
};

TEST_F(GetSwitchStatusTest, ListsThePortsAndEnablesEach)
{
    int num = 5;
    EXPECT_TRUE(GetSwitchStatus("eth1", status_, &num));
    EXPECT_EQ(num, 3);
    ExpectRecord(0, Record(0, true, "02:00:00:00:00:a1"));
    ExpectRecord(1, Record(1, false, ""));
    ExpectRecord(3, SwitchPortStatus{});
    ExpectRecord(4, SwitchPortStatus{});
    ExpectUntouchedFrom(5);
    EXPECT_EQ(Asked(), (Calls{"ioctl 0x89F1 eth1", "ioctl 0x89F4 eth1", "ioctl 0x89F2 eth1",
                              "ioctl 0x89F4 eth1", "ioctl 0x89F4 eth1", "ioctl 0x89F2 eth1"}));
    for (const SwitchPort& port : Chip().ports) EXPECT_TRUE(port.enabled);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(GetSwitchStatusTest, WritesAddressesInLowerCase)
{
    Chip().ports[0].mac = "0A:FF:00:10:0B:0C";
    int num = 3;
    EXPECT_TRUE(GetSwitchStatus("eth1", status_, &num));
    ExpectRecord(0, Record(0, true, "0a:ff:00:10:0b:0c"));
    ExpectRecord(2, Record(2, true, "02:00:00:00:00:a3"));
}

TEST_F(GetSwitchStatusTest, AnswersForEachPortAreItsOwn)
{
    Fail("ioctl 0x89F2", EIO);
    int num = 3;
    EXPECT_TRUE(GetSwitchStatus("eth1", status_, &num));
    EXPECT_EQ(num, 3);
    ExpectRecord(0, Record(0, true, ""));
    ExpectRecord(1, Record(1, false, ""));
    ExpectRecord(2, Record(2, true, "02:00:00:00:00:a3"));
    EXPECT_EQ(Log(), (LogLines{Refused(kMac, EIO, "eth1"),
                               Error("Switch_GetMacByPort", "Get mac for port 1 failed."),
                               Error("GetSwitchStatus", "GetMacByPort 1 error.")}));
}

TEST_F(GetSwitchStatusTest, APortWithoutAnAnswerDoesNotGetTheAddressBefore)
{
    Fail("ioctl 0x89F2", EIO, 2);
    int num = 3;
    EXPECT_TRUE(GetSwitchStatus("eth1", status_, &num));
    ExpectRecord(0, Record(0, true, "02:00:00:00:00:a1"));
    ExpectRecord(2, Record(2, true, ""));
    EXPECT_EQ(Log().back(), Error("GetSwitchStatus", "GetMacByPort 3 error."));
}

TEST_F(GetSwitchStatusTest, AnAddressOfNobodyIsNotTold)
{
    Chip().ports = {{true, "ff:ff:ff:ff:ff:ff", false},
                    {true, "00:00:00:00:00:00", false},
                    {true, "ff:ff:ff:ff:ff:fe", false},
                    {true, "00:00:00:00:00:01", false}};
    int num = 4;
    EXPECT_TRUE(GetSwitchStatus("eth1", status_, &num));
    EXPECT_EQ(num, 4);
    ExpectRecord(0, Record(0, true, ""));
    ExpectRecord(1, Record(1, true, ""));
    ExpectRecord(2, Record(2, true, "ff:ff:ff:ff:ff:fe"));
    ExpectRecord(3, Record(3, true, "00:00:00:00:00:01"));
    EXPECT_EQ(
        Log(),
        (LogLines{Error("GetSwitchStatus", "Get port[0]' mac error ,BroadCastMac || AllZeroMac"),
                  Error("GetSwitchStatus", "Get port[1]' mac error ,BroadCastMac || AllZeroMac")}));
}

TEST_F(GetSwitchStatusTest, APortThatCannotBeEnabledIsListed)
{
    FailAll("ioctl 0x89F4", EIO);
    int num = 3;
    EXPECT_TRUE(GetSwitchStatus("eth1", status_, &num));
    EXPECT_EQ(num, 3);
    ExpectRecord(0, Record(0, true, "02:00:00:00:00:a1"));
    ExpectRecord(1, Record(1, false, ""));
    LogLines wanted;
    for (int i = 0; i < 3; ++i) {
        wanted.push_back(Refused(kEnable, EIO, "eth1"));
        wanted.push_back(Error("Switch_PortIsOk", "set port enble failed."));
    }
    EXPECT_EQ(Log(), wanted);
}

TEST_F(GetSwitchStatusTest, TooFewRecordsAreFilledAndTheRestIsToldOf)
{
    int num = 4;
    EXPECT_TRUE(GetSwitchStatus("eth2", status_, &num));
    EXPECT_EQ(num, 4);
    for (int i = 0; i < 4; ++i) ExpectRecord(i, Record(i, false, ""));
    ExpectUntouchedFrom(4);
    EXPECT_EQ(Asked().size(), 5U);
    EXPECT_EQ(Log(), (LogLines{Warn("GetSwitchStatus", "too much Switch port number actually: "
                                                       "portNum:[8],inputNum:[4]")}));
}

TEST_F(GetSwitchStatusTest, AsManyRecordsAsPortsAreEnough)
{
    int num = 3;
    EXPECT_TRUE(GetSwitchStatus("eth1", status_, &num));
    EXPECT_EQ(num, 3);
    ExpectUntouchedFrom(3);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(GetSwitchStatusTest, NoRecordsAtAllAreNone)
{
    for (const int capacity : {0, -1, -1000000}) {
        SCOPED_TRACE(capacity);
        ClearLog();
        int num = capacity;
        EXPECT_TRUE(GetSwitchStatus("eth1", status_, &num));
        EXPECT_EQ(num, 0);
        ExpectUntouchedFrom(0);
        EXPECT_EQ(Log(), (LogLines{Warn("GetSwitchStatus", "too much Switch port number actually: "
                                                           "portNum:[3],inputNum:[0]")}));
    }
}

TEST_F(GetSwitchStatusTest, ADriverThatDoesNotAnswerHasNoPorts)
{
    Fail("ioctl 0x89F1", EIO);
    int num = 4;
    EXPECT_TRUE(GetSwitchStatus("eth1", status_, &num));
    EXPECT_EQ(num, 0);
    for (int i = 0; i < 4; ++i) ExpectRecord(i, SwitchPortStatus{});
    ExpectUntouchedFrom(4);
    EXPECT_EQ(Log(), (LogLines{Refused(kInfo, EIO, "eth1"),
                               Error("Switch_GetSwitchPortInfo", "get port num for eth1 error.")}));
}

TEST_F(GetSwitchStatusTest, PortsBeyondTheMaskHaveNoLink)
{
    kernel.At("eth2").chip->ports.assign(255, SwitchPort{true, "02:00:00:00:00:01", false});
    std::vector<SwitchPortStatus> status(255);
    int num = 255;
    EXPECT_TRUE(GetSwitchStatus("eth2", status.data(), &num));
    EXPECT_EQ(num, 255);
    for (size_t i = 0; i < status.size(); ++i) {
        EXPECT_EQ(status[i].link, i < 16 ? 1 : 0) << i;
        EXPECT_EQ(status[i].port, i);
    }
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(GetSwitchStatusTest, HoldsNothingWhateverFails)
{
    static SwitchPortStatus status[3];
    static int num;
    static bool done;
    FailEachCall(
        [] {
            num = 3;
            done = GetSwitchStatus("eth1", status, &num);
        },
        [](const std::string& failed) {
            EXPECT_TRUE(done);
            EXPECT_EQ(num, failed == "ioctl 0x89F1 eth1" ? 0 : 3);
            for (int i = 0; i < num; ++i) {
                EXPECT_EQ(status[i].port, i);
                EXPECT_EQ(status[i].link, i == 1 ? 0 : 1);
            }
        },
        {"socket"});
}

}  // namespace
