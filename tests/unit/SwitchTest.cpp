// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The switch chip's driver: what each request carries, byte by byte, and what comes back.

#include "Switch.h"

#include "fake/World.h"

#include <cstring>
#include <functional>
#include <limits>

#include <net/if.h>

using namespace fake;

namespace {

struct SentRecord {
    int request;
    ifreq record;
};
std::vector<SentRecord> sent;  // as they were handed in

}  // namespace

extern "C" {

bool __real_NetIOCtrl(int cmd, void* ifr);

bool __wrap_NetIOCtrl(int cmd, void* ifr)
{
    sent.push_back({cmd, *static_cast<ifreq*>(ifr)});
    return __real_NetIOCtrl(cmd, ifr);
}

}  // extern "C"

namespace {

using Calls = std::vector<std::string>;
using Bytes = std::vector<int>;

constexpr int kInfo = 0x89F1;
constexpr int kMac = 0x89F2;
constexpr int kPort = 0x89F3;
constexpr int kEnable = 0x89F4;
constexpr int kIsolate = 0x89F8;

constexpr int kUntouched = -77;
constexpr size_t kBehindName = 16;

class SwitchTest : public World {
protected:
    void SetUp() override
    {
        World::SetUp();
        sent.clear();
        kernel.Add("eth1").chip = SwitchChip{{{true, "02:00:00:00:00:a1", false},
                                              {false, "02:00:00:00:00:a2", false},
                                              {true, "02:00:00:00:00:a3", false}}};
        kernel.Add("eth2").chip = SwitchChip{std::vector<SwitchPort>(8)};
        kernel.Add("eth3").driver = "sim";
    }

    static SwitchChip& Chip() { return *kernel.At("eth1").chip; }
};

/// One request with a whole record: the name, then these bytes, then zeros.
void ExpectRecord(const SentRecord& got, int request, const std::string& name, const Bytes& bytes)
{
    ifreq wanted{};
    name.copy(wanted.ifr_name, IFNAMSIZ - 1);
    auto* place = reinterpret_cast<unsigned char*>(&wanted) + kBehindName;
    for (const int byte : bytes) *place++ = static_cast<unsigned char>(byte);
    EXPECT_EQ(got.request, request);
    EXPECT_EQ(memcmp(&got.record, &wanted, sizeof(wanted)), 0);
}

void ExpectOneRecord(int request, const std::string& name, const Bytes& bytes)
{
    ASSERT_EQ(sent.size(), 1U);
    ExpectRecord(sent[0], request, name, bytes);
}

// ---- what all of them share

struct Operation {
    const char* name;
    std::function<bool(const char*)> run;
};

std::vector<Operation> Operations()
{
    static int number;
    static unsigned mask;
    static unsigned char macs[1][6];
    static char mac[6];
    return {
        {"Switch_GetSwitchPortInfo",
         [](auto card) { return Switch_GetSwitchPortInfo(card, &number, &mask); }},
        {"Switch_GetPortBymac",
         [](auto card) { return Switch_GetPortBymac(card, macs, &number, 1); }},
        {"Switch_GetMacByPort", [](auto card) { return Switch_GetMacByPort(card, 0, mac); }},
        {"Switch_PortIsOk", [](auto card) { return Switch_PortIsOk(card, 0); }},
        {"NetSwitch_SetPortIsolation",
         [](auto card) { return NetSwitch_SetPortIsolation(card, 1) == 0; }},
    };
}

TEST_F(SwitchTest, ANullNameIsRefusedInSilence)
{
    for (const Operation& operation : Operations()) {
        SCOPED_TRACE(operation.name);
        EXPECT_FALSE(operation.run(nullptr));
    }
    EXPECT_EQ(TraceOf({"socket", "ioctl"}), Calls{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(SwitchTest, NamesCountWithFifteenCharacters)
{
    for (const Operation& operation : Operations()) {
        SCOPED_TRACE(operation.name);
        sent.clear();
        (void)operation.run("a-card-of-seventeen");
        ASSERT_EQ(sent.size(), 1U);
        EXPECT_EQ(std::string(sent[0].record.ifr_name, 16),
                  std::string("a-card-of-sevent", 15) + '\0');
    }
}

TEST_F(SwitchTest, FailsWithTheDriverAndLeavesNothingOpen)
{
    static bool done;
    for (const Operation& operation : Operations()) {
        if (operation.name == std::string("Switch_GetPortBymac")) continue;  // goes on, see below
        FailEachCall([&] { done = operation.run("eth1"); },
                     [&](const std::string& failed) {
                         const bool ofTheSocket = failed.rfind("fcntl", 0) == 0;
                         EXPECT_EQ(done, ofTheSocket) << operation.name;
                     });
    }
}

// ---- Switch_GetSwitchPortInfo

class Switch_GetSwitchPortInfoTest : public SwitchTest {};

TEST_F(Switch_GetSwitchPortInfoTest, TellsNumberAndLinks)
{
    int num = kUntouched;
    unsigned mask = 0;
    EXPECT_TRUE(Switch_GetSwitchPortInfo("eth1", &num, &mask));
    EXPECT_EQ(num, 3);
    EXPECT_EQ(mask, 5U);
    ExpectOneRecord(kInfo, "eth1", {});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Switch_GetSwitchPortInfoTest, TellsAllSixteenLinksAndUpTo255Ports)
{
    kernel.At("eth2").chip->ports.assign(255, SwitchPort{true, "02:00:00:00:00:01", false});
    int num = 0;
    unsigned mask = 0;
    EXPECT_TRUE(Switch_GetSwitchPortInfo("eth2", &num, &mask));
    EXPECT_EQ(num, 255);
    EXPECT_EQ(mask, 0xFFFFU);
}

TEST_F(Switch_GetSwitchPortInfoTest, EitherAnswerMayBeUnwanted)
{
    unsigned mask = 0;
    EXPECT_TRUE(Switch_GetSwitchPortInfo("eth1", nullptr, &mask));
    EXPECT_EQ(mask, 5U);
    EXPECT_TRUE(Switch_GetSwitchPortInfo("eth1", nullptr, nullptr));
    EXPECT_EQ(sent.size(), 2U);
}

TEST_F(Switch_GetSwitchPortInfoTest, TheNumberAloneIsAskedOnce)
{
    int num = 0;
    EXPECT_TRUE(Switch_GetSwitchPortInfo("eth1", &num, nullptr));
    Chip().ports.pop_back();
    num = 0;
    EXPECT_TRUE(Switch_GetSwitchPortInfo("eth1", &num, nullptr));
    EXPECT_EQ(num, 3);
    EXPECT_EQ(TraceOf({"ioctl"}), (Calls{"ioctl 0x89F1 eth1"}));
}

TEST_F(Switch_GetSwitchPortInfoTest, EveryOtherQuestionGoesToTheDriver)
{
    int num = 0;
    unsigned mask = 0;
    EXPECT_TRUE(Switch_GetSwitchPortInfo("eth1", &num, nullptr));
    Chip().ports[1].link = true;
    EXPECT_TRUE(Switch_GetSwitchPortInfo("eth1", nullptr, &mask));
    EXPECT_EQ(mask, 7U);
    EXPECT_TRUE(Switch_GetSwitchPortInfo("eth1", &num, &mask));
    EXPECT_TRUE(Switch_GetSwitchPortInfo("eth1", nullptr, nullptr));
    EXPECT_EQ(sent.size(), 4U);
}

TEST_F(Switch_GetSwitchPortInfoTest, AnyAnsweredQuestionLeavesTheNumber)
{
    unsigned mask = 0;
    int num = 0;
    EXPECT_TRUE(Switch_GetSwitchPortInfo("eth1", nullptr, &mask));
    EXPECT_TRUE(Switch_GetSwitchPortInfo("eth1", &num, nullptr));
    EXPECT_EQ(num, 3);
    EXPECT_EQ(sent.size(), 1U);
}

TEST_F(Switch_GetSwitchPortInfoTest, AnotherSwitchReplacesTheNumber)
{
    int num = 0;
    EXPECT_TRUE(Switch_GetSwitchPortInfo("eth1", &num, nullptr));
    EXPECT_TRUE(Switch_GetSwitchPortInfo("eth2", &num, nullptr));
    EXPECT_EQ(num, 8);
    EXPECT_TRUE(Switch_GetSwitchPortInfo("eth2", &num, nullptr));
    EXPECT_TRUE(Switch_GetSwitchPortInfo("eth1", &num, nullptr));
    EXPECT_EQ(num, 3);
    EXPECT_EQ(TraceOf({"ioctl"}),
              (Calls{"ioctl 0x89F1 eth1", "ioctl 0x89F1 eth2", "ioctl 0x89F1 eth1"}));
}

TEST_F(Switch_GetSwitchPortInfoTest, NoPortsAreAskedForAgain)
{
    kernel.At("eth2").chip->ports.clear();
    int num = kUntouched;
    EXPECT_TRUE(Switch_GetSwitchPortInfo("eth2", &num, nullptr));
    EXPECT_EQ(num, 0);
    kernel.At("eth2").chip->ports.resize(2);
    EXPECT_TRUE(Switch_GetSwitchPortInfo("eth2", &num, nullptr));
    EXPECT_EQ(num, 2);
    EXPECT_EQ(sent.size(), 2U);
}

TEST_F(Switch_GetSwitchPortInfoTest, ASwitchWithoutPortsReplacesTheNumberOfAnother)
{
    kernel.At("eth2").chip->ports.clear();
    int num = kUntouched;
    EXPECT_TRUE(Switch_GetSwitchPortInfo("eth1", &num, nullptr));
    EXPECT_TRUE(Switch_GetSwitchPortInfo("eth2", &num, nullptr));
    EXPECT_EQ(num, 0);
    EXPECT_TRUE(Switch_GetSwitchPortInfo("eth1", &num, nullptr));
    EXPECT_EQ(num, 3);
    EXPECT_EQ(sent.size(), 3U);
}

TEST_F(Switch_GetSwitchPortInfoTest, ALongerNameIsNotTheOneThatWasKept)
{
    kernel.Add("fifteen-letters").chip = SwitchChip{std::vector<SwitchPort>(4)};
    int num = 0;
    EXPECT_TRUE(Switch_GetSwitchPortInfo("fifteen-letters", &num, nullptr));
    EXPECT_TRUE(Switch_GetSwitchPortInfo("fifteen-letters-and-more", &num, nullptr));
    EXPECT_EQ(sent.size(), 2U);
    EXPECT_TRUE(Switch_GetSwitchPortInfo("fifteen-letters", &num, nullptr));
    EXPECT_EQ(sent.size(), 2U);
}

TEST_F(Switch_GetSwitchPortInfoTest, ARefusalLeavesTheAnswersAndTheNumberKept)
{
    int num = 0;
    EXPECT_TRUE(Switch_GetSwitchPortInfo("eth1", &num, nullptr));
    num = kUntouched;
    unsigned mask = 0xABCD;
    EXPECT_FALSE(Switch_GetSwitchPortInfo("eth3", &num, &mask));
    EXPECT_EQ(num, kUntouched);
    EXPECT_EQ(mask, 0xABCDU);
    EXPECT_EQ(Log(), (LogLines{Refused(kInfo, EOPNOTSUPP, "eth3"),
                               Error("Switch_GetSwitchPortInfo", "get port num for eth3 error.")}));
    EXPECT_TRUE(Switch_GetSwitchPortInfo("eth1", &num, nullptr));
    EXPECT_EQ(num, 3);
    EXPECT_EQ(sent.size(), 2U);
}

// ---- Switch_GetPortBymac

class Switch_GetPortBymacTest : public SwitchTest {
protected:
    unsigned char macs_[3][6] = {
        {2, 0, 0, 0, 0, 0xa3}, {2, 0x1a, 0xb0, 3, 0xF, 0xff}, {2, 0, 0, 0, 0, 0xa1}};
    int ports_[3] = {kUntouched, kUntouched, kUntouched};
};

TEST_F(Switch_GetPortBymacTest, AsksForEachAddressInARecordOfItsOwn)
{
    EXPECT_TRUE(Switch_GetPortBymac("eth1", macs_, ports_, 3));
    EXPECT_EQ(ports_[0], 2);
    EXPECT_EQ(ports_[1], -1);
    EXPECT_EQ(ports_[2], 0);
    ASSERT_EQ(sent.size(), 3U);
    ExpectRecord(sent[0], kPort, "eth1", {0, 0, 0, 0, 2, 0, 0, 0, 0, 0xa3});
    ExpectRecord(sent[1], kPort, "eth1", {0, 0, 0, 0, 2, 0x1a, 0xb0, 3, 0xF, 0xff});
    ExpectRecord(sent[2], kPort, "eth1", {0, 0, 0, 0, 2, 0, 0, 0, 0, 0xa1});
    EXPECT_EQ(Log(),
              (LogLines{Refused(kPort, ENOENT, "eth1"),
                        Error("Switch_GetPortBymac", "get port error.[02:1a:b0:03:0f:ff]")}));
}

TEST_F(Switch_GetPortBymacTest, SucceedsWhenNoneWasFound)
{
    EXPECT_TRUE(Switch_GetPortBymac("eth3", macs_, ports_, 2));
    EXPECT_EQ(ports_[0], -1);
    EXPECT_EQ(ports_[1], -1);
    EXPECT_EQ(ports_[2], kUntouched);
}

TEST_F(Switch_GetPortBymacTest, NoAddressesSendNothing)
{
    for (const int num : {0, -1}) {
        EXPECT_TRUE(Switch_GetPortBymac("eth1", macs_, ports_, num));
    }
    EXPECT_EQ(sent.size(), 0U);
    EXPECT_EQ(ports_[0], kUntouched);
}

TEST_F(Switch_GetPortBymacTest, ANullIsRefusedInSilence)
{
    EXPECT_FALSE(Switch_GetPortBymac("eth1", nullptr, ports_, 0));
    EXPECT_FALSE(Switch_GetPortBymac("eth1", macs_, nullptr, 0));
    EXPECT_EQ(sent.size(), 0U);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Switch_GetPortBymacTest, GoesOnBehindAnyFailure)
{
    static int ports[3];
    static bool done;
    FailEachCall([this] { done = Switch_GetPortBymac("eth1", macs_, ports, 3); },
                 [](const std::string& failed) {
                     EXPECT_TRUE(done);
                     const bool asked = failed.rfind("fcntl", 0) == 0;
                     const int found = (ports[0] == 2 ? 1 : 0) + (ports[2] == 0 ? 1 : 0);
                     EXPECT_EQ(ports[1], -1);
                     // A socket that could not be opened is opened for the next one.
                     EXPECT_GE(found, asked ? 2 : 1);
                 });
}

// ---- Switch_GetMacByPort

class Switch_GetMacByPortTest : public SwitchTest {};

TEST_F(Switch_GetMacByPortTest, GivesSixBytes)
{
    char mac[8] = {'x', 'x', 'x', 'x', 'x', 'x', 'x', 'x'};
    EXPECT_TRUE(Switch_GetMacByPort("eth1", 2, mac));
    EXPECT_EQ(memcmp(mac, "\x02\0\0\0\0\xa3xx", 8), 0);
    ExpectOneRecord(kMac, "eth1", {0, 0, 0, 2});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Switch_GetMacByPortTest, AFailureTellsThePortCountedFromOne)
{
    char mac[6] = {'x', 'x', 'x', 'x', 'x', 'x'};
    EXPECT_FALSE(Switch_GetMacByPort("eth1", 3, mac));
    EXPECT_EQ(std::string(mac, 6), "xxxxxx");
    EXPECT_EQ(Log(), (LogLines{Refused(kMac, EINVAL, "eth1"),
                               Error("Switch_GetMacByPort", "Get mac for port 4 failed.")}));
}

TEST_F(Switch_GetMacByPortTest, ThePortTravelsAsAByte)
{
    char mac[6];
    const struct {
        int port;
        int byte;
        const char* told;
    } rows[] = {
        {255, 255, "256"}, {-1, 255, "0"}, {std::numeric_limits<int>::max(), 255, "-2147483648"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.port);
        sent.clear();
        ClearLog();
        EXPECT_FALSE(Switch_GetMacByPort("eth1", row.port, mac));
        ExpectOneRecord(kMac, "eth1", {0, 0, 0, row.byte});
        EXPECT_EQ(LogOf("Switch_GetMacByPort"),
                  (LogLines{Error("Switch_GetMacByPort",
                                  "Get mac for port " + std::string(row.told) + " failed.")}));
    }
}

TEST_F(Switch_GetMacByPortTest, NoPlaceForTheAddressIsRefusedInSilence)
{
    EXPECT_FALSE(Switch_GetMacByPort("eth1", 0, nullptr));
    EXPECT_EQ(sent.size(), 0U);
    EXPECT_EQ(Log(), LogLines{});
}

// ---- Switch_PortIsOk, NetSwitch_SetPortIsolation

class Switch_PortIsOkTest : public SwitchTest {};

TEST_F(Switch_PortIsOkTest, EnablesThePort)
{
    EXPECT_TRUE(Switch_PortIsOk("eth1", 1));
    EXPECT_TRUE(Chip().ports[1].enabled);
    EXPECT_FALSE(Chip().ports[0].enabled);
    ExpectOneRecord(kEnable, "eth1", {0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 1, 0});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Switch_PortIsOkTest, TellsOfARefusal)
{
    EXPECT_FALSE(Switch_PortIsOk("eth1", 3));
    EXPECT_EQ(Log(), (LogLines{Refused(kEnable, EINVAL, "eth1"),
                               Error("Switch_PortIsOk", "set port enble failed.")}));
}

class NetSwitch_SetPortIsolationTest : public SwitchTest {};

TEST_F(NetSwitch_SetPortIsolationTest, SendsTheSameEmptyRecordForOnAndOff)
{
    for (const int enable : {0, 1, -1}) {
        SCOPED_TRACE(enable);
        sent.clear();
        EXPECT_EQ(NetSwitch_SetPortIsolation("eth1", enable), 0);
        ExpectOneRecord(kIsolate, "eth1", {});
    }
    EXPECT_EQ(Chip().isolations, 3);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NetSwitch_SetPortIsolationTest, TellsOfARefusal)
{
    EXPECT_EQ(NetSwitch_SetPortIsolation("eth3", 1), -1);
    EXPECT_EQ(NetSwitch_SetPortIsolation(nullptr, 1), -1);
    EXPECT_EQ(Log(), (LogLines{Refused(kIsolate, EOPNOTSUPP, "eth3"),
                               Error("NetSwitch_SetPortIsolation", "set port enble failed.")}));
}

}  // namespace
