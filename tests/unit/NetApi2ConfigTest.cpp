// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Version 2: limits of bandwidth, and the file of the DHCP server.

#include "NetApi2_0.h"

#include "CommonApi.h"
#include "fake/World.h"

#include <algorithm>
#include <climits>
#include <cstring>

using namespace fake;

namespace {

using Texts = std::vector<std::string>;

Texts asked;
bool answer = true;
std::vector<NetTc> given;  // to `TrafCtrlSetBand`
std::vector<NetTc> saved;  // told by `TrafCtrlGetBand`

}  // namespace

extern "C" {

bool __wrap_TrafCtrlSetBand(const char* name, const NetTc* tc, int num)
{
    asked.push_back(std::string("set ") + name + " " + std::to_string(num));
    given.assign(tc, tc + num);
    return answer;
}

bool __wrap_TrafCtrlGetBand(const char* name, NetTc* tc, int* num)
{
    asked.push_back(std::string("get ") + name + " " + std::to_string(*num));
    const NetTc zero{};
    for (int i = 0; i < *num; ++i) EXPECT_EQ(memcmp(&tc[i], &zero, sizeof(zero)), 0);
    *num = std::min(*num, static_cast<int>(saved.size()));
    std::copy_n(saved.begin(), *num, tc);
    return answer;
}

}  // extern "C"

namespace {

class BandWorld : public World {
protected:
    void SetUp() override
    {
        World::SetUp();
        asked.clear();
        answer = true;
        given.clear();
        saved.clear();
    }
};

NetTc_2 Limit(const std::string& address, int32_t bandWidth, int32_t flags)
{
    NetTc_2 limit;
    memset(&limit, '#', sizeof(limit));
    memcpy(limit.ipAddr, address.c_str(), std::min(address.size() + 1, sizeof(limit.ipAddr)));
    limit.bandWidth = bandWidth;
    limit.flags = flags;
    limit.prio = 9;
    return limit;
}

NetTc Below(const std::string& address, int type, int bandWidth, int flags)
{
    NetTc limit{};
    address.copy(limit.ipAddr, 47);
    limit.ipType = type;
    limit.bandWidth = bandWidth;
    limit.flags = flags;
    return limit;
}

bool Same(const NetTc& left, const NetTc& right)
{
    return memcmp(&left, &right, sizeof(left)) == 0;
}

// ---- NetSetBandWidth

class NetSetBandWidthTest : public BandWorld {};

TEST_F(NetSetBandWidthTest, ConvertsEachLimit)
{
    const NetTc_2 limits[] = {Limit("10.0.0.9", 20, 1), Limit("fd00::9", -3, 0)};
    EXPECT_EQ(NetSetBandWidth("eth1", limits, 2), 0);
    EXPECT_EQ(asked, Texts{"set eth1 2"});
    EXPECT_TRUE(Same(given[0], Below("10.0.0.9", 4, 20, 1)));
    EXPECT_TRUE(Same(given[1], Below("fd00::9", 6, -3, 0)));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NetSetBandWidthTest, APointTellsTheFamily)
{
    const std::pair<const char*, int> rows[] = {
        {"10.0.0.9", 4}, {"fd00::9", 6}, {"::ffff:10.0.0.9", 4}, {"", 6}, {"0:0:0::0", 6}};
    for (const auto& [address, type] : rows) {
        const NetTc_2 limit = Limit(address, 1, 0);
        EXPECT_EQ(NetSetBandWidth("eth1", &limit, 1), 0);
        EXPECT_EQ(given[0].ipType, type) << address;
    }
}

TEST_F(NetSetBandWidthTest, AnAddressIsCutTo47Characters)
{
    const NetTc_2 limit = Limit(std::string(47, 'a') + ".", 1, 0);  // fills its field
    EXPECT_EQ(NetSetBandWidth("eth1", &limit, 1), 0);
    EXPECT_TRUE(Same(given[0], Below(std::string(47, 'a'), 6, 1, 0)));
}

TEST_F(NetSetBandWidthTest, AFailureHasItsMessage)
{
    answer = false;
    const NetTc_2 limit = Limit("10.0.0.9", 1, 0);
    EXPECT_EQ(NetSetBandWidth("eth1", &limit, 1), -1);
    EXPECT_EQ(Log(), (LogLines{Error("NetSetBandWidth", "failed")}));
}

TEST_F(NetSetBandWidthTest, NoLimitsAreHandedDownToo)
{
    const NetTc_2 limit = Limit("10.0.0.9", 1, 0);
    EXPECT_EQ(NetSetBandWidth("eth1", &limit, 0), 0);
    EXPECT_EQ(asked, Texts{"set eth1 0"});
}

TEST_F(NetSetBandWidthTest, WithoutMemoryNothingIsDone)
{
    const NetTc_2 limit = Limit("10.0.0.9", 1, 0);
    Fail("calloc", ENOMEM);
    EXPECT_EQ(NetSetBandWidth("eth1", &limit, 1), -1);
    EXPECT_EQ(NetSetBandWidth("eth1", &limit, -1), -1);
    EXPECT_EQ(NetSetBandWidth("eth1", &limit, INT32_MIN), -1);
    const LogLine message = Error("NetSetBandWidth", "malloc tc failed");
    EXPECT_EQ(Log(), (LogLines{message, message, message}));
    EXPECT_EQ(asked, Texts{});
}

TEST_F(NetSetBandWidthTest, NullIsRefusedInSilence)
{
    const NetTc_2 limit = Limit("10.0.0.9", 1, 0);
    EXPECT_EQ(NetSetBandWidth(nullptr, &limit, 1), -1);
    EXPECT_EQ(NetSetBandWidth("eth1", nullptr, 1), -1);
    EXPECT_EQ(asked, Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

// ---- NetGetBandWidth

class NetGetBandWidthTest : public BandWorld {
protected:
    void SetUp() override
    {
        BandWorld::SetUp();
        memset(limits, '#', sizeof(limits));
    }

    bool UntouchedFrom(int place) const
    {
        const char* bytes = reinterpret_cast<const char*>(limits + place);
        return std::all_of(bytes, reinterpret_cast<const char*>(limits + 4),
                           [](char c) { return c == '#'; });
    }

    NetTc_2 limits[4];
};

TEST_F(NetGetBandWidthTest, ConvertsEachLimit)
{
    saved = {Below("10.0.0.9", 4, 20, 1), Below("fd00::9", 6, -3, 0)};
    EXPECT_EQ(NetGetBandWidth("eth1", limits, 4), 2);
    EXPECT_EQ(asked, Texts{"get eth1 4"});

    NetTc_2 expected;
    memset(&expected, '#', sizeof(expected));  // `resv` stays as it was
    memset(expected.ipAddr, 0, sizeof(expected.ipAddr));
    memcpy(expected.ipAddr, "10.0.0.9", 8);
    expected.bandWidth = 20;
    expected.flags = 1;
    expected.prio = 0;
    EXPECT_EQ(memcmp(&limits[0], &expected, sizeof(expected)), 0);
    EXPECT_STREQ(limits[1].ipAddr, "fd00::9");
    EXPECT_EQ(limits[1].bandWidth, -3);
    EXPECT_TRUE(UntouchedFrom(2));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NetGetBandWidthTest, TheCallersRecordsAreTheLimit)
{
    saved = std::vector<NetTc>(3, Below("10.0.0.9", 4, 20, 1));
    EXPECT_EQ(NetGetBandWidth("eth1", limits, 2), 2);
    EXPECT_TRUE(UntouchedFrom(2));
    EXPECT_EQ(NetGetBandWidth("eth1", limits + 2, 0), 0);
    EXPECT_TRUE(UntouchedFrom(2));
}

TEST_F(NetGetBandWidthTest, AnAddressIsCutTo47Characters)
{
    saved = {Below("", 4, 20, 1)};
    memset(saved[0].ipAddr, 'a', sizeof(saved[0].ipAddr));
    EXPECT_EQ(NetGetBandWidth("eth1", limits, 1), 1);
    EXPECT_EQ(std::string(limits[0].ipAddr), std::string(47, 'a'));
}

TEST_F(NetGetBandWidthTest, AFailureLeavesTheRecordsAlone)
{
    answer = false;
    saved = {Below("10.0.0.9", 4, 20, 1)};
    EXPECT_EQ(NetGetBandWidth("eth1", limits, 4), -1);
    EXPECT_TRUE(UntouchedFrom(0));
    EXPECT_EQ(Log(), (LogLines{Error("NetGetBandWidth", "failed")}));
}

TEST_F(NetGetBandWidthTest, WithoutMemoryNothingIsDone)
{
    Fail("calloc", ENOMEM);
    EXPECT_EQ(NetGetBandWidth("eth1", limits, 4), -1);
    EXPECT_EQ(NetGetBandWidth("eth1", limits, -1), -1);
    const LogLine message = Error("NetGetBandWidth", "malloc tc failed");
    EXPECT_EQ(Log(), (LogLines{message, message}));
    EXPECT_EQ(asked, Texts{});
    EXPECT_TRUE(UntouchedFrom(0));
}

TEST_F(NetGetBandWidthTest, NullIsRefusedInSilence)
{
    EXPECT_EQ(NetGetBandWidth(nullptr, limits, 4), -1);
    EXPECT_EQ(NetGetBandWidth("eth1", nullptr, 4), -1);
    EXPECT_EQ(asked, Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

// ---- NetSetDhcpIPRange

constexpr char kDhcpFile[] = "/mnt/mtd/Config/udhcpd.conf";
constexpr char kOld[] = "start 1.2.3.4\nand a long rest of an older file, which is to go\n";

const std::string kCard = CardFile("eth3");

class NetSetDhcpIPRangeTest : public World {
protected:
    void SetUp() override
    {
        World::SetUp();
        kernel.Add("eth3").address = "10.9.9.9";  // plays no part
        Put(kCard,
            Settings({"HOSTIP = 10.1.1.1", "SUBMASK = 255.255.0.0", "GATEWAYIP = 10.1.1.254"}));
        Put(kDhcpFile, kOld);
        ClearTrace();
        ClearLog();
    }

    static int32_t Write() { return NetSetDhcpIPRange("eth3", "10.1.1.10", "10.1.1.20", "7200"); }

    static void ExpectRefused(const std::string& message)
    {
        EXPECT_EQ(LogOf("NetSetDhcpIPRange"), (LogLines{Error("NetSetDhcpIPRange", message)}));
        EXPECT_EQ(Get(kDhcpFile), kOld);
        EXPECT_EQ(HeldMutexes(), 0);
    }
};

constexpr char kWritten[] = "start 10.1.1.10\n"
                            "end 10.1.1.20\n"
                            "interface eth3\n"
                            "option  subnet 255.255.0.0\n"
                            "opt router 10.1.1.254\n"
                            "option lease 7200\n";

TEST_F(NetSetDhcpIPRangeTest, WritesTheServersFileAnew)
{
    EXPECT_EQ(Write(), 0);
    EXPECT_EQ(Get(kDhcpFile), kWritten);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NetSetDhcpIPRangeTest, AMissingFileIsMade)
{
    Remove(kDhcpFile);
    EXPECT_EQ(Write(), 0);
    EXPECT_EQ(Get(kDhcpFile), kWritten);
}

TEST_F(NetSetDhcpIPRangeTest, ArgumentsAreWrittenAsTheyStand)
{
    const std::string lease(2000, '9');
    EXPECT_EQ(NetSetDhcpIPRange("eth3", "from", "", lease.c_str()), 0);
    EXPECT_EQ(Get(kDhcpFile), "start from\nend \ninterface eth3\noption  subnet 255.255.0.0\n"
                              "opt router 10.1.1.254\noption lease " +
                                  lease + "\n");
}

TEST_F(NetSetDhcpIPRangeTest, TheFileIsWrittenAndClosedUnderTheLock)
{
    const std::string opening = std::string("fopen ") + kDhcpFile + " w+";
    static int heldAtOpening;
    static int heldAtClosing;
    OnCall(opening, [] { heldAtOpening = HeldMutexes(); });
    OnCall(std::string("fclose ") + kDhcpFile, [] { heldAtClosing = HeldMutexes(); });
    EXPECT_EQ(Write(), 0);
    EXPECT_EQ(heldAtOpening, 1);
    EXPECT_EQ(heldAtClosing, 1);
    EXPECT_EQ(HeldMutexes(), 0);
    EXPECT_EQ(OpenHandles(), Texts{});
}

TEST_F(NetSetDhcpIPRangeTest, TheLockIsFreeWhileTheSettingsAreRead)
{
    EXPECT_EQ(Write(), 0);
    const Texts locks = TraceOf({"mutex", "fopen " + std::string(kDhcpFile)});
    ASSERT_GE(locks.size(), 3U);
    for (size_t i = 0; i + 3 < locks.size(); ++i) {
        EXPECT_EQ(locks[i], i % 2 == 0 ? "mutex lock" : "mutex unlock") << i;
    }
    EXPECT_EQ(Texts(locks.end() - 3, locks.end()),
              (Texts{"mutex lock", std::string("fopen ") + kDhcpFile + " w+", "mutex unlock"}));
}

TEST_F(NetSetDhcpIPRangeTest, TheAddressIsAskedForBeforeTheGateway)
{
    Put(kCard, "");
    EXPECT_EQ(Write(), -1);
    ExpectRefused("Get ip mask failed.");
    EXPECT_EQ(TraceOf({std::string("fopen ") + kDhcpFile}), Texts{});
}

TEST_F(NetSetDhcpIPRangeTest, WithoutASavedAddressTheFileStays)
{
    Put(kCard, Settings({"SUBMASK = 255.255.0.0", "GATEWAYIP = 10.1.1.254"}));
    EXPECT_EQ(Write(), -1);
    ExpectRefused("Get ip mask failed.");
}

TEST_F(NetSetDhcpIPRangeTest, WithoutASavedMaskTheFileStays)
{
    Put(kCard, Settings({"HOSTIP = 10.1.1.1", "GATEWAYIP = 10.1.1.254"}));
    EXPECT_EQ(Write(), -1);
    ExpectRefused("Get ip mask failed.");
}

TEST_F(NetSetDhcpIPRangeTest, WithoutASavedGatewayTheFileStays)
{
    Put(kCard, Settings({"HOSTIP = 10.1.1.1", "SUBMASK = 255.255.0.0"}));
    EXPECT_EQ(Write(), -1);
    ExpectRefused("Get gateway failed.");
}

TEST_F(NetSetDhcpIPRangeTest, AFileThatCannotBeOpenedIsAnError)
{
    Fail(std::string("fopen ") + kDhcpFile, EROFS);
    EXPECT_EQ(Write(), -1);
    ExpectRefused("cannot fopen DHCP_CONF.[Read-only file system]");
    EXPECT_EQ(Write(), 0);  // the lock is free again
}

TEST_F(NetSetDhcpIPRangeTest, EachNullHasTheMessage)
{
    EXPECT_EQ(NetSetDhcpIPRange(nullptr, "a", "b", "c"), -1);
    EXPECT_EQ(NetSetDhcpIPRange("eth3", nullptr, "b", "c"), -1);
    EXPECT_EQ(NetSetDhcpIPRange("eth3", "a", nullptr, "c"), -1);
    EXPECT_EQ(NetSetDhcpIPRange("eth3", "a", "b", nullptr), -1);
    EXPECT_EQ(Log(), LogLines(4, Error("NetSetDhcpIPRange", "Get parameter failed.")));
    EXPECT_EQ(Get(kDhcpFile), kOld);
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(NetSetDhcpIPRangeTest, AFailureLeavesTheOldFileWhole)
{
    static int32_t result;
    FailEachCall([] { result = Write(); },
                 [](const std::string& failed) {
                     const std::string text = Get(kDhcpFile);
                     if (result == -1) {
                         EXPECT_EQ(text, kOld) << failed;
                     } else if (failed != std::string("fclose ") + kDhcpFile) {
                         EXPECT_EQ(text, kWritten) << failed;
                     }
                     EXPECT_EQ(LogOf("NetSetDhcpIPRange").size(), result == 0 ? 0U : 1U) << failed;
                 },
                 {});
}

}  // namespace
