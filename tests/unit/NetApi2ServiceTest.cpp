// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Version 2: probes, scopes of IPv6 addresses, the switch.

#include "NetApi2_0.h"

#include "CommonApi.h"
#include "fake/World.h"

#include <arpa/inet.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <functional>

using namespace fake;

namespace {

using Texts = std::vector<std::string>;

/// What the operations below were asked, and what they tell.
Texts asked;
bool answer = true;
int conflicts = 0;
std::function<void()> meanwhile;  // what happens during a ping

std::string switchName = "eth3";
bool switchIsThere = true;
int ports = 8;
bool portsAreTold = true;
unsigned mask = 0;
bool maskIsTold = true;
std::vector<SwitchPortStatus> statuses;
bool statusesAreTold = true;

}  // namespace

extern "C" {

int __wrap_NetArpCheck(const char* name)
{
    asked.push_back(std::string("arp ") + name);
    return conflicts;
}

bool __wrap_NetPingCheck(const char* name, const char* ip, int timeout)
{
    asked.push_back(std::string("ping ") + (name != nullptr ? name : "NULL") + " " + ip + " " +
                    std::to_string(timeout));
    if (meanwhile) meanwhile();
    return answer;
}

bool __wrap_GetSwitchInterface(char* name, int len)
{
    EXPECT_EQ(len, 16);
    EXPECT_EQ(std::string(name, 16), std::string(16, '\0'));  // its last byte is the caller's
    if (switchIsThere) switchName.copy(name, 15);
    return switchIsThere;
}

bool __wrap_GetSwitchPortNum(const char* name, int* num)
{
    asked.push_back(std::string("ports of ") + name);
    EXPECT_EQ(*num, 0);
    if (portsAreTold) *num = ports;
    return portsAreTold;
}

bool __wrap_GetSwitchMask(const char* name, int* linkMask)
{
    asked.push_back(std::string("mask of ") + name);
    *linkMask = static_cast<int>(mask);
    return maskIsTold;
}

bool __wrap_GetSwitchStatus(const char* name, SwitchPortStatus* status, int* num)
{
    asked.push_back(std::string("status of ") + name);
    EXPECT_EQ(*num, 16);
    const SwitchPortStatus zero{};
    for (int i = 0; i < 16; ++i) EXPECT_EQ(memcmp(&status[i], &zero, sizeof(zero)), 0);
    std::copy(statuses.begin(), statuses.end(), status);
    *num = static_cast<int>(statuses.size());
    return statusesAreTold;
}

}  // extern "C"

namespace {

class ServiceWorld : public World {
protected:
    void SetUp() override
    {
        World::SetUp();
        asked.clear();
        meanwhile = nullptr;
    }
};

// ---- ArpCheck

class ArpCheckTest : public ServiceWorld {};

TEST_F(ArpCheckTest, EveryResultButNoConflictIsAYes)
{
    const std::pair<int, int32_t> results[] = {{0, 0}, {1, 1}, {2, 1}, {3, 1}, {-1, 1}};
    for (const auto& [below, result] : results) {
        conflicts = below;
        char card[] = "eth1";
        EXPECT_EQ(ArpCheck(card), result);
    }
    EXPECT_EQ(asked, Texts(5, "arp eth1"));
    EXPECT_EQ(Log(), LogLines{});
}

// ---- NetWorkPing

class NetWorkPingTest : public ServiceWorld {
protected:
    void SetUp() override
    {
        ServiceWorld::SetUp();
        strcpy(ping.acFrom, "eth1");
        strcpy(ping.acTo, "10.0.0.9");
        ping.s32Len = 11;
        ping.s32Time = -7;
        ping.s32Ttl = 12;
        ping.pvoid = &ping;
    }

    /// Lets the ping take from one time to another.
    static void Takes(long seconds, long microseconds, long endSeconds, long endMicroseconds)
    {
        SetClock(seconds, microseconds);
        meanwhile = [=] { SetClock(endSeconds, endMicroseconds); };
    }

    PING_S ping = {};
};

TEST_F(NetWorkPingTest, TellsTheTimeInMicroseconds)
{
    Takes(1000, 900000, 1002, 123);
    EXPECT_EQ(NetWorkPing(&ping), 0);
    EXPECT_EQ(ping.s32Time, 1100123);
    EXPECT_EQ(asked, Texts{"ping eth1 10.0.0.9 3"});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NetWorkPingTest, NothingElseOfTheRecordIsUsed)
{
    Takes(1000, 0, 1000, 0);
    EXPECT_EQ(NetWorkPing(&ping), 0);
    EXPECT_EQ(ping.s32Time, 0);
    EXPECT_EQ(ping.s32Len, 11);
    EXPECT_EQ(ping.s32Ttl, 12);
    EXPECT_EQ(ping.pvoid, &ping);
    EXPECT_STREQ(ping.acFrom, "eth1");
    EXPECT_STREQ(ping.acTo, "10.0.0.9");
}

TEST_F(NetWorkPingTest, NoAnswerLeavesTheTimeAlone)
{
    answer = false;
    EXPECT_EQ(NetWorkPing(&ping), -1);
    EXPECT_EQ(ping.s32Time, -7);
    EXPECT_EQ(Log(), (LogLines{Error("NetWorkPing", "ping 10.0.0.9 failed")}));
}

TEST_F(NetWorkPingTest, AClockThatGoesBackIsAFailure)
{
    Takes(1000, 5, 998, 250000);
    EXPECT_EQ(NetWorkPing(&ping), -1);
    EXPECT_EQ(ping.s32Time, -1750005);
    EXPECT_EQ(Log(), (LogLines{Error("NetWorkPing",
                                     "time jump back, start[1000s:5ms],end[998s:250000ms]")}));
}

TEST_F(NetWorkPingTest, OneMicrosecondBackIsEnough)
{
    Takes(1000, 5, 1000, 4);
    EXPECT_EQ(NetWorkPing(&ping), -1);
    EXPECT_EQ(ping.s32Time, -1);
}

TEST_F(NetWorkPingTest, TheTimeIsKeptInThirtyTwoBits)
{
    Takes(0, 0, 2147, 483647);
    EXPECT_EQ(NetWorkPing(&ping), 0);
    EXPECT_EQ(ping.s32Time, INT32_MAX);
    Takes(0, 0, 2147, 483648);  // one microsecond more reads as a clock that went back
    EXPECT_EQ(NetWorkPing(&ping), -1);
    EXPECT_EQ(ping.s32Time, INT32_MIN);
    Takes(0, 0, 4294, 967300);  // and this as four microseconds
    EXPECT_EQ(NetWorkPing(&ping), 0);
    EXPECT_EQ(ping.s32Time, 4);
}

TEST_F(NetWorkPingTest, TextsMayFillTheirFields)
{
    memset(ping.acFrom, 'a', sizeof(ping.acFrom));
    memset(ping.acTo, 'b', sizeof(ping.acTo));
    answer = false;
    EXPECT_EQ(NetWorkPing(&ping), -1);
    const std::string from(40, 'a');
    const std::string to(40, 'b');
    EXPECT_EQ(asked, Texts{"ping " + from + " " + to + " 3"});
    EXPECT_EQ(Log(), (LogLines{Error("NetWorkPing", "ping " + to + " failed")}));
}

TEST_F(NetWorkPingTest, AnEmptyCardIsHandedDownAsItIs)
{
    ping.acFrom[0] = '\0';
    EXPECT_EQ(NetWorkPing(&ping), 0);
    EXPECT_EQ(asked, Texts{"ping  10.0.0.9 3"});
}

TEST_F(NetWorkPingTest, NullIsRefusedInSilence)
{
    EXPECT_EQ(NetWorkPing(nullptr), -1);
    EXPECT_EQ(asked, Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

// ---- network_alive

class network_aliveTest : public ServiceWorld {};

TEST_F(network_aliveTest, PingsOverWhicheverCardLeadsThere)
{
    EXPECT_EQ(network_alive("10.0.0.9"), 0);
    EXPECT_EQ(asked, Texts{"ping NULL 10.0.0.9 2"});
    answer = false;
    EXPECT_EQ(network_alive("10.0.0.9"), -2);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(network_aliveTest, NullHasAResultOfItsOwn)
{
    EXPECT_EQ(network_alive(nullptr), -1);
    EXPECT_EQ(asked, Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

// ---- In6AddrType

IPV6_ADDR_SCOPE_TYPE_E Scope(const std::string& text)
{
    in6_addr address{};
    EXPECT_EQ(inet_pton(AF_INET6, text.c_str(), &address), 1) << text;
    return In6AddrType(&address);
}

constexpr IPV6_ADDR_SCOPE_TYPE_E kNode = VORLIX_IPV6_ADDR_SCOPE_NODELOCAL;
constexpr IPV6_ADDR_SCOPE_TYPE_E kLink = VORLIX_IPV6_ADDR_SCOPE_LINKLOCAL;
constexpr IPV6_ADDR_SCOPE_TYPE_E kSite = VORLIX_IPV6_ADDR_SCOPE_SITELOCAL;
constexpr IPV6_ADDR_SCOPE_TYPE_E kGlobal = VORLIX_IPV6_ADDR_SCOPE_GLOBAL;

TEST(In6AddrType, TwoBitsTellTheScopeBehindFE)
{
    EXPECT_EQ(Scope("fe80::1"), kLink);
    EXPECT_EQ(Scope("febf::1"), kLink);
    EXPECT_EQ(Scope("fec0::1"), kSite);
    EXPECT_EQ(Scope("feff::1"), kSite);
    EXPECT_EQ(Scope("fe00::1"), kGlobal);
    EXPECT_EQ(Scope("fe7f::1"), kGlobal);
}

TEST(In6AddrType, FourBitsTellTheScopeOfAMulticastAddress)
{
    const IPV6_ADDR_SCOPE_TYPE_E scopes[16] = {kGlobal, kNode,   kLink,   kGlobal, kGlobal, kSite,
                                               kGlobal, kGlobal, kGlobal, kGlobal, kGlobal, kGlobal,
                                               kGlobal, kGlobal, kGlobal, kGlobal};
    for (unsigned flags = 0; flags < 16; ++flags) {
        for (unsigned scope = 0; scope < 16; ++scope) {
            in6_addr address{};
            address.s6_addr[0] = 0xFF;
            address.s6_addr[1] = static_cast<uint8_t>(flags << 4 | scope);
            EXPECT_EQ(In6AddrType(&address), scopes[scope]) << scope;
        }
    }
}

TEST(In6AddrType, LoopbackIsOfTheNodeAndTheUnspecifiedAddressOfTheLink)
{
    EXPECT_EQ(Scope("::1"), kNode);
    EXPECT_EQ(Scope("::"), kLink);
    EXPECT_EQ(Scope("::2"), kGlobal);
    EXPECT_EQ(Scope("::ff"), kGlobal);
}

TEST(In6AddrType, AnyOtherByteMakesItGlobal)
{
    for (int i = 0; i < 15; ++i) {
        for (const uint8_t last : {0, 1}) {
            in6_addr address{};
            address.s6_addr[i] = 0x20;
            address.s6_addr[15] = last;
            EXPECT_EQ(In6AddrType(&address), kGlobal) << i;
        }
    }
    EXPECT_EQ(Scope("fd00::1"), kGlobal);
    EXPECT_EQ(Scope("2001:db8::1"), kGlobal);
}

TEST(In6AddrType, NullCountsAsGlobal)
{
    EXPECT_EQ(In6AddrType(nullptr), kGlobal);
}

// ---- SwitchGetPortNum

class SwitchWorld : public ServiceWorld {
protected:
    void SetUp() override
    {
        ServiceWorld::SetUp();
        switchName = "eth3";
        switchIsThere = portsAreTold = maskIsTold = statusesAreTold = true;
        ports = 8;
        mask = 0;
        statuses.clear();
    }
};

class SwitchGetPortNumTest : public SwitchWorld {};

TEST_F(SwitchGetPortNumTest, CountsThePortsOfTheSwitch)
{
    switchName = "a-fifteen-chars";
    EXPECT_EQ(SwitchGetPortNum(), 8);
    EXPECT_EQ(asked, Texts{"ports of a-fifteen-chars"});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(SwitchGetPortNumTest, ASwitchMayHaveNoPort)
{
    ports = 0;
    EXPECT_EQ(SwitchGetPortNum(), 0);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(SwitchGetPortNumTest, WithoutASwitchItFails)
{
    switchIsThere = false;
    EXPECT_EQ(SwitchGetPortNum(), -1);
    EXPECT_EQ(asked, Texts{});
    EXPECT_EQ(Log(), (LogLines{Error("SwitchGetPortNum", "failed.")}));
}

TEST_F(SwitchGetPortNumTest, WithoutItsDriverItFails)
{
    portsAreTold = false;
    EXPECT_EQ(SwitchGetPortNum(), -1);
    EXPECT_EQ(Log(), (LogLines{Error("SwitchGetPortNum", "failed.")}));
}

// ---- SwitchGetPortStatus

class SwitchGetPortStatusTest : public SwitchWorld {
protected:
    void SetUp() override
    {
        SwitchWorld::SetUp();
        memset(infos, '#', sizeof(infos));
        for (int i = 0; i < 3; ++i) {
            SwitchPortStatus status{};
            strcpy(status.ip, ("10.1.2." + std::to_string(i)).c_str());
            memset(status.mac, 'a' + i, sizeof(status.mac));  // to its last byte
            status.port = static_cast<unsigned char>(i);
            status.link = static_cast<char>(i - 1);
            status.ipType = 4;
            statuses.push_back(status);
        }
    }

    bool UntouchedFrom(int place) const
    {
        const char* bytes = reinterpret_cast<const char*>(infos + place);
        return std::all_of(bytes, reinterpret_cast<const char*>(infos + 20),
                           [](char c) { return c == '#'; });
    }

    SwitchPortInfo infos[20];
};

TEST_F(SwitchGetPortStatusTest, ConvertsEachPort)
{
    EXPECT_EQ(SwitchGetPortStatus(infos, 20), 0);
    for (int i = 0; i < 3; ++i) {
        SwitchPortInfo expected{};
        expected.link = static_cast<int16_t>(i - 1);  // the sign is kept
        expected.port = static_cast<int16_t>(i + 1);  // counted from 1
        const unsigned char address[] = {10, 1, 2, static_cast<unsigned char>(i)};
        memcpy(&expected.ip, address, sizeof(address));  // network byte order
        memset(expected.mac, 'a' + i, sizeof(expected.mac));
        EXPECT_EQ(memcmp(&infos[i], &expected, sizeof(expected)), 0) << i;
    }
    EXPECT_TRUE(UntouchedFrom(3));
    EXPECT_EQ(asked, Texts{"status of eth3"});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(SwitchGetPortStatusTest, HighPortNumbersStayPositive)
{
    statuses[0].port = 255;
    statuses[0].link = static_cast<char>(-128);
    EXPECT_EQ(SwitchGetPortStatus(infos, 1), 0);
    EXPECT_EQ(infos[0].port, 256);
    EXPECT_EQ(infos[0].link, -128);
}

TEST_F(SwitchGetPortStatusTest, ATextThatIsNoAddressIsAllOnes)
{
    strcpy(statuses[0].ip, "nobody");
    EXPECT_EQ(SwitchGetPortStatus(infos, 1), 0);
    EXPECT_EQ(infos[0].ip, INADDR_NONE);
}

TEST_F(SwitchGetPortStatusTest, TheCallersRecordsAreTheLimit)
{
    EXPECT_EQ(SwitchGetPortStatus(infos, 2), 0);
    EXPECT_EQ(infos[1].port, 2);
    EXPECT_TRUE(UntouchedFrom(2));
}

TEST_F(SwitchGetPortStatusTest, NoRoomIsASuccessAllTheSame)
{
    for (const int32_t count : {0, -1, INT32_MIN}) EXPECT_EQ(SwitchGetPortStatus(infos, count), 0);
    EXPECT_TRUE(UntouchedFrom(0));
}

TEST_F(SwitchGetPortStatusTest, WithoutASwitchItFails)
{
    switchIsThere = false;
    EXPECT_EQ(SwitchGetPortStatus(infos, 20), -1);
    EXPECT_TRUE(UntouchedFrom(0));
    EXPECT_EQ(asked, Texts{});
    EXPECT_EQ(Log(), (LogLines{Error("SwitchGetPortStatus", "failed.")}));
}

TEST_F(SwitchGetPortStatusTest, WithoutItsDriverItFails)
{
    statusesAreTold = false;
    EXPECT_EQ(SwitchGetPortStatus(infos, 20), -1);
    EXPECT_TRUE(UntouchedFrom(0));
    EXPECT_EQ(Log(), (LogLines{Error("SwitchGetPortStatus", "GetSwitchStatus failed.")}));
}

TEST_F(SwitchGetPortStatusTest, NullIsRefusedInSilence)
{
    EXPECT_EQ(SwitchGetPortStatus(nullptr, 20), -1);
    EXPECT_EQ(asked, Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

// ---- NetGetSwitchLinkStatus

class NetGetSwitchLinkStatusTest : public SwitchWorld {
protected:
    void SetUp() override
    {
        SwitchWorld::SetUp();
        memset(links, '#', sizeof(links));
    }

    /// The bytes as characters: '0', '1', or '#' for one that was not written.
    std::string Links() const
    {
        std::string text;
        for (const unsigned char link : links) {
            text += link == '#' ? '#' : static_cast<char>('0' + link);
        }
        return text;
    }

    unsigned char links[40];
    int32_t count = 10;
};

TEST_F(NetGetSwitchLinkStatusTest, TellsEachPort)
{
    mask = 0x85;
    EXPECT_EQ(NetGetSwitchLinkStatus("eth5", links, &count), 0);
    EXPECT_EQ(Links(), "1010000100" + std::string(30, '#'));
    EXPECT_EQ(count, 8);
    EXPECT_EQ(asked, (Texts{"ports of eth5", "mask of eth5"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NetGetSwitchLinkStatusTest, BitsBehindThePortsAreNotTold)
{
    mask = 0xFF00;
    EXPECT_EQ(NetGetSwitchLinkStatus("eth5", links, &count), 0);
    EXPECT_EQ(Links(), "0000000000" + std::string(30, '#'));
}

TEST_F(NetGetSwitchLinkStatusTest, ACapacityThatIsNotAboveThePortsIsWarnedOfAndStays)
{
    mask = 0xFF;
    for (const int32_t capacity : {8, 3}) {
        ClearLog();
        memset(links, '#', sizeof(links));
        count = capacity;
        EXPECT_EQ(NetGetSwitchLinkStatus("eth5", links, &count), 0);
        EXPECT_EQ(count, capacity);
        const auto told = static_cast<size_t>(capacity);
        EXPECT_EQ(Links(), std::string(told, '1') + std::string(40 - told, '#'));
        EXPECT_EQ(Log(), (LogLines{Warn("NetGetSwitchLinkStatus", "portnum is too small")}));
    }
}

TEST_F(NetGetSwitchLinkStatusTest, OnlyTheMasksThirtyTwoPortsCanHaveALink)
{
    ports = 64;
    mask = 0x80000001U;
    count = 40;
    EXPECT_EQ(NetGetSwitchLinkStatus("eth5", links, &count), 0);
    EXPECT_EQ(Links(), "1" + std::string(30, '0') + "1" + std::string(8, '0'));
    EXPECT_EQ(count, 40);
}

TEST_F(NetGetSwitchLinkStatusTest, WithoutRoomNothingIsWritten)
{
    mask = 0xFF;
    for (const int32_t capacity : {0, -1, INT32_MIN}) {
        count = capacity;
        EXPECT_EQ(NetGetSwitchLinkStatus("eth5", links, &count), 0);
        EXPECT_EQ(count, capacity);
        EXPECT_EQ(Links(), std::string(40, '#'));
    }
}

TEST_F(NetGetSwitchLinkStatusTest, WithoutPortsOnlyTheBytesAreCleared)
{
    portsAreTold = false;
    mask = 0xFF;
    EXPECT_EQ(NetGetSwitchLinkStatus("eth5", links, &count), -1);
    EXPECT_EQ(Links(), "0000000000" + std::string(30, '#'));
    EXPECT_EQ(count, 10);
    EXPECT_EQ(asked, Texts{"ports of eth5"});
    EXPECT_EQ(Log(), (LogLines{Error("NetGetSwitchLinkStatus", "get port num failed")}));
}

TEST_F(NetGetSwitchLinkStatusTest, WithoutTheMaskThePortsAreCountedAllTheSame)
{
    maskIsTold = false;
    mask = 0xFF;
    EXPECT_EQ(NetGetSwitchLinkStatus("eth5", links, &count), -1);
    EXPECT_EQ(Links(), "0000000000" + std::string(30, '#'));
    EXPECT_EQ(count, 8);
    EXPECT_EQ(Log(), (LogLines{Error("NetGetSwitchLinkStatus", "get port mask failed")}));
}

TEST_F(NetGetSwitchLinkStatusTest, ACapacityThatIsTooSmallIsWarnedOfBeforeTheMaskIsAsked)
{
    maskIsTold = false;
    count = 3;
    EXPECT_EQ(NetGetSwitchLinkStatus("eth5", links, &count), -1);
    EXPECT_EQ(count, 3);
    EXPECT_EQ(Log(), (LogLines{Warn("NetGetSwitchLinkStatus", "portnum is too small"),
                               Error("NetGetSwitchLinkStatus", "get port mask failed")}));
}

TEST_F(NetGetSwitchLinkStatusTest, NullIsRefusedInSilence)
{
    EXPECT_EQ(NetGetSwitchLinkStatus(nullptr, links, &count), -1);
    EXPECT_EQ(NetGetSwitchLinkStatus("eth5", nullptr, &count), -1);
    EXPECT_EQ(NetGetSwitchLinkStatus("eth5", links, nullptr), -1);
    EXPECT_EQ(Links(), std::string(40, '#'));
    EXPECT_EQ(asked, Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

}  // namespace
