// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The two lookups in the kernel's neighbour table: an address by its hardware address, and the
// other way round.

#include "CommonApi.h"
#include "Other.h"

#include "NeighbourWorld.h"

#include <cerrno>
#include <fcntl.h>

using namespace fake;

namespace {

// ---- what both lookups have in common

struct Lookup {
    const char* operation;
    bool (*find)(const char* wanted, char* found);
    const char* wanted;  // what eth0's second neighbour is looked up by
    const char* found;
    const char* unknown;
    const char* notFound;
};

const Lookup kIPByMac = {
    "Other_GetIPByMac", Other_GetIPByMac,    kMac2,
    "10.0.0.2",         "02:00:00:00:00:99", "can not find this ip by mac 02:00:00:00:00:99"};
const Lookup kMacByIP = {"Other_GetMacByIP", Other_GetMacByIP,
                         "10.0.0.2",         kMac2,
                         "10.0.0.99",        "can not find this mac by ip 10.0.0.99"};

std::ostream& operator<<(std::ostream& out, const Lookup& lookup)
{
    return out << lookup.operation;
}

class NeighbourLookupTest : public NeighbourWorld, public testing::WithParamInterface<Lookup> {
protected:
    void SetUp() override
    {
        NeighbourWorld::SetUp();
        kernel.neighbours = {{"10.0.0.1", kMac1, "eth0"}, {"10.0.0.2", kMac2, "eth0"}};
    }

    bool Find(const char* wanted)
    {
        strcpy(found, "untouched");
        return GetParam().find(wanted, found);
    }

    LogLine NotFound() const { return Error(GetParam().operation, GetParam().notFound); }

    char found[18] = "";
};

TEST_P(NeighbourLookupTest, FindsANeighbour)
{
    EXPECT_TRUE(Find(GetParam().wanted));
    EXPECT_STREQ(found, GetParam().found);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_P(NeighbourLookupTest, SaysThatThereIsNone)
{
    EXPECT_FALSE(Find(GetParam().unknown));
    EXPECT_EQ(Log(), (LogLines{NotFound()}));
    EXPECT_EQ(HeldMutexes(), 0);
}

TEST_P(NeighbourLookupTest, SaysSoOnceTheLockIsReleased)
{
    size_t told = 1;
    OnCall("mutex unlock", [&] { told = Log().size(); });
    EXPECT_FALSE(Find(GetParam().unknown));
    EXPECT_EQ(told, 0U);
    EXPECT_EQ(Log().size(), 1U);
}

TEST_P(NeighbourLookupTest, AnEmptyTableHoldsNone)
{
    for (const char* table : {kTitles, ""}) {
        ClearLog();
        Put(kTable, table);
        EXPECT_FALSE(Find(GetParam().unknown));
        EXPECT_EQ(Log(), (LogLines{NotFound()}));
    }
}

TEST_P(NeighbourLookupTest, NullIsSilent)
{
    char mac[18];
    EXPECT_FALSE(GetParam().find(nullptr, mac));
    EXPECT_FALSE(GetParam().find(GetParam().wanted, nullptr));
    EXPECT_EQ(Trace(), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_P(NeighbourLookupTest, NoTableIsSilentAndTriedAgain)
{
    Fail(kOpenTable, ENOENT);
    EXPECT_FALSE(Find(GetParam().wanted));
    EXPECT_STREQ(found, "untouched");
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(HeldMutexes(), 0);
    EXPECT_TRUE(Find(GetParam().wanted));
    EXPECT_STREQ(found, GetParam().found);
}

TEST_P(NeighbourLookupTest, OpensTheTableOnceAndKeepsItFromChildren)
{
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(Find(GetParam().wanted));
    EXPECT_EQ(TraceOf({"open", "fcntl", "close"}), (Texts{kOpenTable, "fcntl F_SETFD"}));
    EXPECT_EQ(OpenHandles(), (Texts{kOpenTable}));
}

TEST_P(NeighbourLookupTest, EachLookupReadsTheTableAfresh)
{
    EXPECT_TRUE(Find(GetParam().wanted));
    kernel.neighbours.pop_back();
    EXPECT_FALSE(Find(GetParam().wanted));
    kernel.neighbours.insert(kernel.neighbours.begin(), {"10.0.0.2", kMac2, "eth1"});
    EXPECT_TRUE(Find(GetParam().wanted));
    EXPECT_STREQ(found, GetParam().found);
}

TEST_P(NeighbourLookupTest, ReadsUnderItsLock)
{
    int held = 0;
    OnCall("pread", [&] { held = HeldMutexes(); });
    EXPECT_TRUE(Find(GetParam().wanted));
    EXPECT_EQ(held, 1);
    EXPECT_EQ(Trace().front(), "mutex lock");
    EXPECT_EQ(Trace().back(), "mutex unlock");
}

TEST_P(NeighbourLookupTest, FindsTheLastOfThousands)
{
    kernel.neighbours.clear();
    for (int i = 0; i < 3000; ++i) {
        char mac[18];
        snprintf(mac, sizeof(mac), "06:00:00:00:%02x:%02x", i / 256, i % 256);
        const std::string ip = "10.1." + std::to_string(i / 256) + "." + std::to_string(i % 256);
        kernel.neighbours.push_back({ip, mac, "eth0"});
    }
    kernel.neighbours.push_back({"10.0.0.2", kMac2, "eth0"});
    EXPECT_TRUE(Find(GetParam().wanted));
    EXPECT_STREQ(found, GetParam().found);
    EXPECT_FALSE(Find(GetParam().unknown));
}

TEST_P(NeighbourLookupTest, ATableThatCannotBeReadHoldsNone)
{
    Fail("pread", EIO);
    EXPECT_FALSE(Find(GetParam().unknown));
    EXPECT_EQ(Log(), (LogLines{NotFound()}));
    EXPECT_TRUE(Find(GetParam().wanted));
}

TEST_P(NeighbourLookupTest, EveryFailureLeavesNoLockHeld)
{
    static bool done = false;
    static Lookup lookup;
    lookup = GetParam();
    FailEachCall(
        [] {
            char text[18];
            done = lookup.find(lookup.wanted, text);
        },
        [](const std::string& failed) {
            EXPECT_EQ(done, failed == "fcntl F_SETFD");
            EXPECT_EQ(Log().size(), failed == "pread /proc/net/arp" ? 1U : 0U);
        },
        {kOpenTable});
}

INSTANTIATE_TEST_SUITE_P(Both, NeighbourLookupTest, testing::Values(kIPByMac, kMacByIP));

class NeighbourStreamsTest : public NeighbourWorld {};

TEST_F(NeighbourStreamsTest, EachLookupHasItsOwn)
{
    kernel.neighbours = {{"10.0.0.1", kMac1, "eth0"}};
    char text[18];
    EXPECT_TRUE(Other_GetIPByMac(kMac1, text));
    EXPECT_TRUE(Other_GetMacByIP("10.0.0.1", text));
    EXPECT_EQ(OpenHandles(), (Texts{kOpenTable, kOpenTable}));
}

// ---- Other_GetIPByMac

class IPByMacTest : public NeighbourWorld {
protected:
    bool Find(const char* mac)
    {
        strcpy(ip, "untouched");
        return Other_GetIPByMac(mac, ip);
    }

    char ip[16] = "";
};

TEST_F(IPByMacTest, TheFirstLineWins)
{
    kernel.neighbours = {
        {"10.0.0.3", kMac2, "eth0"}, {"10.0.0.1", kMac1, "eth0"}, {"10.0.0.2", kMac1, "eth1"}};
    EXPECT_TRUE(Find(kMac1));
    EXPECT_STREQ(ip, "10.0.0.1");
}

TEST_F(IPByMacTest, NothingBehindTheTextIsTouched)
{
    kernel.neighbours = {{"10.0.0.3", kMac2, "eth0"}};
    memset(ip, '#', sizeof(ip));
    EXPECT_TRUE(Other_GetIPByMac(kMac2, ip));
    EXPECT_EQ(std::string(ip, sizeof(ip)), std::string("10.0.0.3\0#######", 16));
}

TEST_F(IPByMacTest, UpperCaseFindsNothing)
{
    kernel.neighbours = {{"10.0.0.2", kMac2, "eth0"}};
    EXPECT_FALSE(Find("AA:BB:CC:DD:EE:FF"));
    EXPECT_STREQ(ip, "untouched");
    EXPECT_EQ(Log(), (LogLines{Error("Other_GetIPByMac",
                                     "can not find this ip by mac AA:BB:CC:DD:EE:FF")}));
}

TEST_F(IPByMacTest, AnotherLengthIsSilent)
{
    kernel.neighbours = {{"10.0.0.1", kMac1, "eth0"}};
    for (const char* mac : {"", "00:11:22:33:44:5", "00:11:22:33:44:555", "0"}) {
        EXPECT_FALSE(Find(mac)) << mac;
        EXPECT_STREQ(ip, "untouched");
    }
    EXPECT_EQ(Trace(), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(IPByMacTest, ATextAnywhereInALineCounts)
{
    PutTable({"10.0.0.1         0x20        0x2         80:00:11:22:33:44:55:66     *        ib0"});
    EXPECT_TRUE(Find(kMac1));
    EXPECT_STREQ(ip, "10.0.0.1");
    EXPECT_TRUE(Find("HW type     Flags"));  // of the titles
    EXPECT_STREQ(ip, "IP");
}

TEST_F(IPByMacTest, AnOverlongAddressIsCut)
{
    PutTable({std::string("   192.168.100.200.300 0x1 0x2 ") + kMac1 + " * eth0"});
    EXPECT_TRUE(Find(kMac1));
    EXPECT_STREQ(ip, "192.168.100.200");
}

TEST_F(IPByMacTest, OverlongLinesCountInPieces)
{
    PutTable({std::string(255, 'x') + "10.0.0.7 " + kMac1});
    EXPECT_TRUE(Find(kMac1));
    EXPECT_STREQ(ip, "10.0.0.7");
}

// ---- Other_GetMacByIP

class MacByIPTest : public NeighbourWorld {
protected:
    bool Find(const char* ip)
    {
        memset(mac, '#', sizeof(mac));
        return Other_GetMacByIP(ip, mac);
    }

    char mac[18] = "";
};

TEST_F(MacByIPTest, TheFirstOfTwoCardsWins)
{
    kernel.neighbours = {{"10.0.0.1", kMac1, "eth1"}, {"10.0.0.1", kMac2, "eth0"}};
    EXPECT_TRUE(Find("10.0.0.1"));
    EXPECT_STREQ(mac, kMac1);
}

TEST_F(MacByIPTest, TheWholeAddressCounts)
{
    kernel.neighbours = {{"10.0.0.10", kMac1, "eth0"},
                         {"110.0.0.1", kMac1, "eth0"},
                         {"10.0.0.1", kMac2, "eth0"},
                         {"192.168.100.200", kMac1, "eth0"}};
    EXPECT_TRUE(Find("10.0.0.1"));
    EXPECT_STREQ(mac, kMac2);
    EXPECT_TRUE(Find("192.168.100.200"));
    EXPECT_STREQ(mac, kMac1);
    EXPECT_FALSE(Find("192.168.100.20"));
    EXPECT_FALSE(Find("0.0.0.1"));
}

TEST_F(MacByIPTest, AnIncompleteEntryIsTakenLikeAnyOther)
{
    kernel.neighbours = {{"10.0.0.1", "00:00:00:00:00:00", "eth0", 0}};
    EXPECT_TRUE(Find("10.0.0.1"));
    EXPECT_STREQ(mac, "00:00:00:00:00:00");
}

TEST_F(MacByIPTest, ZeroesTheTextBeforeTheSearch)
{
    EXPECT_FALSE(Find("10.0.0.1"));
    EXPECT_EQ(std::string(mac, sizeof(mac)), std::string(18, '\0'));
}

TEST_F(MacByIPTest, AnAddressThatDoesNotParseIsAnError)
{
    kernel.neighbours = {{"10.0.0.1", kMac1, "eth0"}};
    for (const std::string ip : {"", "10.0.0", "10.0.0.256", "10.0.0.01", "10.0.0.1 ", "::1"}) {
        ClearLog();
        EXPECT_FALSE(Find(ip.c_str())) << ip;
        EXPECT_EQ(Log(), (LogLines{Error("Other_GetMacByIP", "ip " + ip + " error")}));
        EXPECT_EQ(std::string(mac, sizeof(mac)), std::string(18, '#'));
    }
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(MacByIPTest, LinesMayBeginWithBlanks)
{
    PutTable({std::string(" \t10.0.0.1 0x1 0x2 ") + kMac1 + " * eth0"});
    EXPECT_TRUE(Find("10.0.0.1"));
    EXPECT_STREQ(mac, kMac1);
}

TEST_F(MacByIPTest, OverlongColumnsAreCut)
{
    PutTable({"10.0.0.1 0x20 0x2 80:00:00:48:fe:80:00:00:00:00 * ib0",
              std::string("192.168.100.200garbage 0x1 0x2 ") + kMac1 + " * eth0"});
    EXPECT_TRUE(Find("10.0.0.1"));
    EXPECT_STREQ(mac, "80:00:00:48:fe:80");
    EXPECT_TRUE(Find("192.168.100.200"));  // what was cut off moves the columns on
    EXPECT_STREQ(mac, "0x2");
}

TEST_F(MacByIPTest, TheColumnOfFlagsHasSevenCharacters)
{
    PutTable({std::string("10.0.0.1 0x1 0x00002 ") + kMac1 + " * eth0",
              std::string("10.0.0.2 0x1 0x000002 ") + kMac1 + " * eth0",
              std::string("10.0.0.3 0x000000000000001 0x2 ") + kMac1 + " * eth0",
              std::string("10.0.0.4 0x0000000000000001 0x2 ") + kMac1 + " * eth0"});
    const std::pair<const char*, const char*> rows[] = {
        {"10.0.0.1", kMac1}, {"10.0.0.2", "2"}, {"10.0.0.3", kMac1}, {"10.0.0.4", "0x2"}};
    for (const auto& [address, text] : rows) {
        EXPECT_TRUE(Find(address));
        EXPECT_STREQ(mac, text) << address;
    }
}

TEST_F(MacByIPTest, AShortLineHasNoHardwareAddress)
{
    PutTable({std::string("10.0.0.1 0x1 0x2 ") + kMac1 + " * eth0", "", "10.0.0.2"});
    EXPECT_TRUE(Find("10.0.0.2"));
    EXPECT_EQ(std::string(mac, sizeof(mac)), std::string(18, '\0'));
}

// ---- the common operations

class NeighbourCommonTest : public NeighbourWorld {
protected:
    void SetUp() override
    {
        NeighbourWorld::SetUp();
        kernel.neighbours = {{"10.0.0.1", kMac1, "eth0"}};
    }

    char text[18] = "untouched";
};

TEST_F(NeighbourCommonTest, LooksUpBothWays)
{
    EXPECT_TRUE(GetIPByMacFromARP(kMac1, text));
    EXPECT_STREQ(text, "10.0.0.1");
    EXPECT_TRUE(GetMacByIPFromARP("10.0.0.1", text));
    EXPECT_STREQ(text, kMac1);
}

TEST_F(NeighbourCommonTest, TellsThatThereIsNone)
{
    EXPECT_FALSE(GetIPByMacFromARP("00:11:22:33:44:AA", text));
    EXPECT_FALSE(GetMacByIPFromARP("10.0.0.2", text));
    EXPECT_EQ(Log(),
              (LogLines{Error("Other_GetIPByMac", "can not find this ip by mac 00:11:22:33:44:AA"),
                        Error("Other_GetMacByIP", "can not find this mac by ip 10.0.0.2")}));
}

TEST_F(NeighbourCommonTest, NullIsSilent)
{
    EXPECT_FALSE(GetIPByMacFromARP(nullptr, text));
    EXPECT_FALSE(GetIPByMacFromARP(kMac1, nullptr));
    EXPECT_FALSE(GetMacByIPFromARP(nullptr, text));
    EXPECT_FALSE(GetMacByIPFromARP("10.0.0.1", nullptr));
    EXPECT_STREQ(text, "untouched");
    EXPECT_EQ(Trace(), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

}  // namespace
