// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Listings of one kind of interface, and the listing with counters.

#include "Base.h"

#include "BaseNames.h"
#include "fake/World.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>

using namespace fake;

namespace {

constexpr char kTable[] = "/proc/net/dev";
constexpr char kHeader[] =
    "Inter-|   Receive                            |  Transmit\n"
    " face |bytes    packets errs drop fifo frame compressed multicast|bytes\n";

// ---- lists by name

class GetSpecifiedInterfaceInfoTest : public World {
protected:
    static bool List(const std::string& part, Names& names, int* count)
    {
        std::string text = part;
        return GetSpecifiedInterfaceInfo(text.data(), names.entries, count);
    }

    static Texts List(const std::string& part)
    {
        Names names;
        int count = kEntries;
        return List(part, names, &count) ? names.First(count) : Texts{"(false)"};
    }
};

TEST_F(GetSpecifiedInterfaceInfoTest, FindsThePartAnywhereInAnUnfilteredName)
{
    AddCards({"lo", "veth0", "br-1234", "docker0", "eth0", "bond0", "br0", "vnic0", "abra"});
    EXPECT_EQ(List("br"), (Texts{"br-1234", "br0", "abra"}));
    EXPECT_EQ(List("eth"), (Texts{"veth0", "eth0"}));
    EXPECT_EQ(List("lo"), (Texts{"lo"}));
    EXPECT_EQ(List("0"), (Texts{"veth0", "docker0", "eth0", "bond0", "br0", "vnic0"}));
    EXPECT_EQ(List("").size(), 9U);
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(TraceOf({"ioctl", "open /mnt", "open /proc/net/wireless"}), Texts{});
}

TEST_F(GetSpecifiedInterfaceInfoTest, NoneIsAFailureInSilence)
{
    AddCards({"eth0"});
    Names names;
    int count = 7;
    EXPECT_FALSE(List("bond", names, &count));
    EXPECT_EQ(count, 7);
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(OpenHandles(), Texts{});
}

TEST_F(GetSpecifiedInterfaceInfoTest, ListsNoMoreThanWanted)
{
    AddCards(Many("br", 40));
    for (const int capacity : {1, 31, 32, 33, INT_MAX}) {
        Names names;
        int count = capacity;
        EXPECT_TRUE(List("br", names, &count));
        EXPECT_EQ(count, std::min(capacity, 32));
        EXPECT_EQ(names.First(count), Many("br", count));
        EXPECT_TRUE(names.AllClear(count));
    }
}

TEST_F(GetSpecifiedInterfaceInfoTest, ANegativeCapacityListsNothing)
{
    AddCards(Many("br", 3));
    Names names;
    int count = -1;
    EXPECT_FALSE(List("br", names, &count));
    EXPECT_EQ(count, -1);
    EXPECT_TRUE(names.AllClear(0));
}

TEST_F(GetSpecifiedInterfaceInfoTest, PassesOverNamesThatAreTooLongAndLinesWithoutColon)
{
    Put(kTable, std::string(kHeader) + "br-fifteen-abcd: 0\nbr-sixteen-abcde: 0\n"
                                       "br-seventeen-abcd: 0\nbr1 : 0\nbr2\nbr3:");
    EXPECT_EQ(List("br"), (Texts{"br-fifteen-abcd", "br3"}));
    EXPECT_EQ(Log(), (LogLines{Error("getNetIfNameNoFilter",
                                     "eth name too long. br-sixteen-abcde: 0\n")}));
}

/// Each line is read into the next free entry: what no later name covers stays there.
TEST_F(GetSpecifiedInterfaceInfoTest, ANameOfAnotherKindStaysInTheNextEntry)
{
    AddCards({"abcdefghijklmno", "br0", "eth-ten-ab"});
    Names names;
    int count = kEntries;
    EXPECT_TRUE(List("br", names, &count));
    EXPECT_EQ(count, 1);
    EXPECT_EQ(names.Bytes(0), std::string("br0\0efghijklmno\0", 16));
    EXPECT_EQ(names.Bytes(1), std::string("eth-ten-ab\0\0\0\0\0\0", 16));
    EXPECT_TRUE(names.AllClear(2));
}

TEST_F(GetSpecifiedInterfaceInfoTest, AMissingTableIsAnError)
{
    Fail("open /proc/net/dev", ENOENT);
    Names names;
    int count = 7;
    EXPECT_FALSE(List("br", names, &count));
    EXPECT_EQ(count, 7);
    EXPECT_TRUE(names.AllClear(0));
    EXPECT_EQ(Log(),
              (LogLines{Error("GetSpecifiedInterfaceInfo", "Open file /proc/net/dev failed!")}));
}

TEST_F(GetSpecifiedInterfaceInfoTest, RefusesNullAndACapacityOf0)
{
    Names names;
    int count = 0;
    char part[] = "br";
    EXPECT_FALSE(GetSpecifiedInterfaceInfo(part, names.entries, &count));
    count = 3;
    EXPECT_FALSE(GetSpecifiedInterfaceInfo(nullptr, names.entries, &count));
    EXPECT_FALSE(GetSpecifiedInterfaceInfo(part, nullptr, &count));
    EXPECT_FALSE(GetSpecifiedInterfaceInfo(part, names.entries, nullptr));
    EXPECT_TRUE(names.Untouched());
    EXPECT_EQ(Log(), LogLines(4, Error("GetSpecifiedInterfaceInfo", "params error!")));
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(GetSpecifiedInterfaceInfoTest, APartOfTheTableIsNoList)
{
    AddCards(Many("br", 3));
    Fail("pread /proc/net/dev", EIO, 2);  // behind its text, where the end would be
    Names names;
    int count = 4;
    EXPECT_FALSE(List("br", names, &count));
    EXPECT_EQ(count, 4);
    EXPECT_EQ(Log(),
              (LogLines{Error("GetSpecifiedInterfaceInfo", "Read file /proc/net/dev failed!\n")}));
}

TEST_F(GetSpecifiedInterfaceInfoTest, APartWithoutTheKindIsToldAsAPartAndNotAsAnEmptyList)
{
    AddCards(Many("eth", 3));
    for (const int failing : {1, 2}) {
        ClearLog();
        Fail("pread /proc/net/dev", EIO, failing);
        Names names;
        int count = 4;
        EXPECT_FALSE(List("br", names, &count));
        EXPECT_EQ(count, 4);
        EXPECT_EQ(Log(), (LogLines{Error("GetSpecifiedInterfaceInfo",
                                         "Read file /proc/net/dev failed!\n")}));
    }
}

TEST_F(GetSpecifiedInterfaceInfoTest, AFullListStandsWhateverBecomesOfTheRestOfTheTable)
{
    AddCards(Many("br", 3));
    Fail("pread /proc/net/dev", EIO, 2);
    Names names;
    int count = 3;
    EXPECT_TRUE(List("br", names, &count));
    EXPECT_EQ(count, 3);
    EXPECT_EQ(names.First(3), Many("br", 3));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(GetSpecifiedInterfaceInfoTest, NothingIsLeftOpenWhateverFails)
{
    AddCards(Many("br", 3));
    static Texts listed;
    FailEachCall([] { listed = List("br"); },
                 [](const std::string&) {
                     EXPECT_EQ(OpenHandles(), Texts{});
                     EXPECT_EQ(listed, Texts{"(false)"});
                 });
}

// ---- lists of a kind

struct Kind {
    const char* operation;
    bool (*list)(char (*)[16], int*);
    const char* part;
};

void PrintTo(const Kind& kind, std::ostream* out)
{
    *out << kind.operation;
}

class ListOfAKindTest : public World, public testing::WithParamInterface<Kind> {};

TEST_P(ListOfAKindTest, ListsTheNamesOfItsKind)
{
    const std::string part = GetParam().part;
    AddCards({"eth0", "x" + part, "lo", part + "-7", "bond0", part});
    Names names;
    int count = kEntries;
    EXPECT_TRUE(GetParam().list(names.entries, &count));
    EXPECT_EQ(names.First(count), (Texts{"x" + part, part + "-7", part}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_P(ListOfAKindTest, NoneIsAFailureInSilence)
{
    AddCards({"eth0"});
    Names names;
    int count = 5;
    EXPECT_FALSE(GetParam().list(names.entries, &count));
    EXPECT_EQ(count, 5);
    EXPECT_TRUE(names.AllClear(1));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_P(ListOfAKindTest, RefusesNullAndACapacityOf0UnderItsOwnName)
{
    Names names;
    int count = 0;
    EXPECT_FALSE(GetParam().list(names.entries, &count));
    count = 5;
    EXPECT_FALSE(GetParam().list(nullptr, &count));
    EXPECT_FALSE(GetParam().list(names.entries, nullptr));
    EXPECT_TRUE(names.Untouched());
    EXPECT_EQ(Log(), LogLines(3, Error(GetParam().operation, "params error!")));
}

TEST_P(ListOfAKindTest, ANegativeCapacityListsNothingInSilence)
{
    AddCards({GetParam().part + std::string("0")});
    Names names;
    int count = -1;
    EXPECT_FALSE(GetParam().list(names.entries, &count));
    EXPECT_EQ(count, -1);
    EXPECT_TRUE(names.AllClear(0));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_P(ListOfAKindTest, AMissingTableIsToldByTheListing)
{
    Fail("open /proc/net/dev", ENOENT);
    Names names;
    int count = 5;
    EXPECT_FALSE(GetParam().list(names.entries, &count));
    EXPECT_EQ(Log(),
              (LogLines{Error("GetSpecifiedInterfaceInfo", "Open file /proc/net/dev failed!")}));
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, ListOfAKindTest,
    testing::Values(Kind{"GetBridgeInterfaceInfo", GetBridgeInterfaceInfo, "br"},
                    Kind{"GetNbpInterfaceInfo", GetNbpInterfaceInfo, "nbp"},
                    Kind{"GetVnicInterfaceInfo", GetVnicInterfaceInfo, "vnic"}),
    [](const auto& kind) { return std::string(kind.param.operation); });

// ---- GetNormalInterfaceInfo

class GetNormalInterfaceInfoTest : public World {
protected:
    static constexpr int kRecords = 40;
    struct InterfaceInfo records[kRecords];

    void SetUp() override
    {
        World::SetUp();
        memset(static_cast<void*>(records), 0, sizeof(records));
    }

    /// The counters of the one card of a line.
    const NetDataStat& Counters(const std::string& line)
    {
        Put(kTable, kHeader + line);
        int count = kRecords;
        EXPECT_TRUE(GetNormalInterfaceInfo(records, &count));
        EXPECT_EQ(count, 1);
        return records[0].netDatastat;
    }

    Texts NamesOf(int count)
    {
        Texts names;
        for (int i = 0; i < count; ++i) names.emplace_back(records[i].name);
        return names;
    }
};

TEST_F(GetNormalInterfaceInfoTest, StoresEachColumnInItsField)
{
    const NetDataStat& stat =
        Counters("  eth0: 101 102 103 104 105 106 107 108 109 110 111 112 113 114 115 116\n");
    EXPECT_STREQ(records[0].name, "eth0");
    EXPECT_EQ(stat.receivedBytes, 101U);
    EXPECT_EQ(stat.receivedPackets, 102U);
    EXPECT_EQ(stat.receivedErrors, 103U);
    EXPECT_EQ(stat.receivedDroped, 104U);
    EXPECT_EQ(stat.receivedOverruns, 105U);
    EXPECT_EQ(stat.receivedFrame, 106U);
    EXPECT_EQ(stat.transmittedBytes, 109U);
    EXPECT_EQ(stat.transmittedPackets, 110U);
    EXPECT_EQ(stat.transmittedErrors, 111U);
    EXPECT_EQ(stat.transmittedDroped, 112U);
    EXPECT_EQ(stat.transmittedOverruns, 113U);
    EXPECT_EQ(stat.transmittedCollisions, 114U);
    EXPECT_EQ(stat.transmittedCarrier, 115U);
    EXPECT_EQ(stat.transmittedTxqueuelens, 0U);
    EXPECT_EQ(stat.interfaceSpeed, 0U);
    EXPECT_EQ(std::string(stat.reserved, sizeof(stat.reserved)), std::string(52, '\0'));
}

TEST_F(GetNormalInterfaceInfoTest, ASmallFieldTakesTheLow32Bits)
{
    const NetDataStat& stat = Counters("eth0: 18446744073709551615 4294967296 4294967297 "
                                       "8589934590 0 0 0 0 9999999999 0\n");
    EXPECT_EQ(stat.receivedBytes, UINT64_MAX);
    EXPECT_EQ(stat.receivedPackets, 4294967296U);
    EXPECT_EQ(stat.receivedErrors, 1U);
    EXPECT_EQ(stat.receivedDroped, 4294967294U);
    EXPECT_EQ(stat.transmittedBytes, 9999999999U);
}

TEST_F(GetNormalInterfaceInfoTest, LooksAt17Tokens)
{
    const NetDataStat& stat =
        Counters("eth0: 0 0 0 0 0 0 0 0 0 0 0 0 0 0 115 116 117 118 119 120\n");
    EXPECT_EQ(stat.transmittedCarrier, 115U);
    EXPECT_EQ(stat.transmittedCollisions, 0U);
}

TEST_F(GetNormalInterfaceInfoTest, WhatALineDoesNotTellStays)
{
    memset(static_cast<void*>(records), 0x55, sizeof(records));
    const NetDataStat& stat = Counters("eth0: 1 2\n");
    EXPECT_EQ(stat.receivedBytes, 1U);
    EXPECT_EQ(stat.receivedPackets, 2U);
    EXPECT_EQ(stat.receivedErrors, 0x55555555U);
    EXPECT_EQ(stat.transmittedBytes, 0x5555555555555555U);
    EXPECT_EQ(stat.transmittedCarrier, 0x55555555U);
    EXPECT_EQ(stat.transmittedTxqueuelens, 0U);
    EXPECT_EQ(stat.interfaceSpeed, 0U);
    EXPECT_EQ(std::string(stat.reserved, sizeof(stat.reserved)), std::string(52, '\x55'));
}

TEST_F(GetNormalInterfaceInfoTest, ALineOfTheNameAloneIsListed)
{
    const NetDataStat& stat = Counters("eth0:");
    EXPECT_STREQ(records[0].name, "eth0");
    EXPECT_EQ(stat.receivedBytes, 0U);
}

TEST_F(GetNormalInterfaceInfoTest, AnyWhiteSpaceParts)
{
    const NetDataStat& stat = Counters(" \t eth0:\v1\f2\r3\t 4 \n");
    EXPECT_EQ(stat.receivedBytes, 1U);
    EXPECT_EQ(stat.receivedPackets, 2U);
    EXPECT_EQ(stat.receivedErrors, 3U);
    EXPECT_EQ(stat.receivedDroped, 4U);
}

TEST_F(GetNormalInterfaceInfoTest, ATokenIsItsFirst31Characters)
{
    const std::string zeros(30, '0');
    const NetDataStat& stat = Counters("eth0: " + zeros + "7 " + zeros + "78 x9 9x 0x10 -1\n");
    EXPECT_EQ(stat.receivedBytes, 7U);
    EXPECT_EQ(stat.receivedPackets, 7U);
    EXPECT_EQ(stat.receivedErrors, 0U);  // no number
    EXPECT_EQ(stat.receivedDroped, 9U);
    EXPECT_EQ(stat.receivedOverruns, 0U);  // decimal alone
    EXPECT_EQ(stat.receivedFrame, UINT32_MAX);
}

TEST_F(GetNormalInterfaceInfoTest, ListsTheFilteredKindsInTheirOrder)
{
    AddCards({"veth0", "br-1234", "docker0", "lo", "eth0", "bond0", "br0", "vnic0", "usb0"});
    kernel.At("bond0").counters = "7 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0";
    int count = kRecords;
    EXPECT_TRUE(GetNormalInterfaceInfo(records, &count));
    EXPECT_EQ(NamesOf(count), (Texts{"eth0", "bond0", "br0", "usb0"}));
    EXPECT_EQ(records[1].netDatastat.receivedBytes, 7U);
    EXPECT_EQ(records[0].netDatastat.receivedBytes, 0U);
    EXPECT_EQ(TraceOf({"ioctl", "open /mnt", "open /proc/net/wireless"}), Texts{});
    EXPECT_EQ(OpenHandles(), Texts{});
}

TEST_F(GetNormalInterfaceInfoTest, FillsAsManyRecordsAsTheCallerHas)
{
    AddCards(Many("eth", 50));
    for (const int capacity : {1, 32, 40}) {
        memset(static_cast<void*>(records), 0, sizeof(records));
        int count = capacity;
        EXPECT_TRUE(GetNormalInterfaceInfo(records, &count));
        EXPECT_EQ(count, capacity);
        EXPECT_EQ(NamesOf(capacity), Many("eth", capacity));
        if (capacity < kRecords) {
            EXPECT_STREQ(records[capacity].name, "");
        }
    }
}

TEST_F(GetNormalInterfaceInfoTest, StoresTheNumberListed)
{
    AddCards(Many("eth", 3));
    int count = 4;
    EXPECT_TRUE(GetNormalInterfaceInfo(records, &count));
    EXPECT_EQ(count, 3);
    EXPECT_TRUE(GetNormalInterfaceInfo(records, &count));
    EXPECT_EQ(count, 3);
}

TEST_F(GetNormalInterfaceInfoTest, ADeviceWithoutCardsHasAnEmptyList)
{
    for (const Texts& others : {Texts{}, Texts{"lo", "sit0"}}) {
        AddCards(others);
        int count = 4;
        EXPECT_TRUE(GetNormalInterfaceInfo(records, &count));
        EXPECT_EQ(count, 0);
    }
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(GetNormalInterfaceInfoTest, ANegativeCapacityListsNothing)
{
    AddCards(Many("eth", 3));
    int count = -1;
    EXPECT_TRUE(GetNormalInterfaceInfo(records, &count));
    EXPECT_EQ(count, -1);
    EXPECT_STREQ(records[0].name, "");
}

TEST_F(GetNormalInterfaceInfoTest, RefusesNullAndACapacityOf0)
{
    AddCards(Many("eth", 3));
    int count = 0;
    EXPECT_FALSE(GetNormalInterfaceInfo(records, &count));
    EXPECT_FALSE(GetNormalInterfaceInfo(records, nullptr));
    EXPECT_EQ(Log(), LogLines(2, Error("GetNormalInterfaceInfo", "params error!")));
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(GetNormalInterfaceInfoTest, NoRecordsFailInSilence)
{
    AddCards(Many("eth", 3));
    int count = 3;
    EXPECT_FALSE(GetNormalInterfaceInfo(nullptr, &count));
    EXPECT_EQ(count, 3);
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(OpenHandles(), Texts{});
}

TEST_F(GetNormalInterfaceInfoTest, AMissingTableIsAnError)
{
    Fail("open /proc/net/dev", ENOENT);
    int count = 3;
    EXPECT_FALSE(GetNormalInterfaceInfo(records, &count));
    EXPECT_EQ(count, 3);
    EXPECT_EQ(Log(),
              (LogLines{Error("GetNormalInterfaceInfo", "Open file /proc/net/dev failed!\n")}));
}

TEST_F(GetNormalInterfaceInfoTest, PassesOverNamesThatAreTooLong)
{
    Put(kTable, "eth-fifteen-abc: 1\neth-sixteen-abcd: 2\neth-seventeen-abc: 3\neth0: 4\n");
    int count = kRecords;
    EXPECT_TRUE(GetNormalInterfaceInfo(records, &count));
    EXPECT_EQ(NamesOf(count), (Texts{"eth-fifteen-abc", "eth0"}));
    EXPECT_EQ(records[1].netDatastat.receivedBytes, 4U);
    EXPECT_EQ(Log(), (LogLines{Error("getNetIfNameNoFilter",
                                     "eth name too long. eth-sixteen-abcd: 2\n")}));
}

TEST_F(GetNormalInterfaceInfoTest, APartOfTheTableIsNoList)
{
    AddCards({"eth0", "eth1"});
    Fail("pread /proc/net/dev", EIO, 2);  // behind its text, where the end would be
    int count = 3;
    EXPECT_FALSE(GetNormalInterfaceInfo(records, &count));
    EXPECT_EQ(count, 3);
    EXPECT_EQ(Log(),
              (LogLines{Error("GetNormalInterfaceInfo", "Read file /proc/net/dev failed!\n")}));
}

TEST_F(GetNormalInterfaceInfoTest, AFullListStandsWhateverBecomesOfTheRestOfTheTable)
{
    AddCards({"eth0", "eth1"});
    Fail("pread /proc/net/dev", EIO, 2);
    int count = 2;
    EXPECT_TRUE(GetNormalInterfaceInfo(records, &count));
    EXPECT_EQ(count, 2);
    EXPECT_STREQ(records[1].name, "eth1");
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(GetNormalInterfaceInfoTest, NothingIsLeftOpenWhateverFails)
{
    AddCards(Many("eth", 3));
    static bool done = true;
    FailEachCall(
        [this] {
            int count = kRecords;
            done = GetNormalInterfaceInfo(records, &count);
        },
        [](const std::string&) {
            EXPECT_FALSE(done);  // not even with a part of the table
            EXPECT_EQ(OpenHandles(), Texts{});
        });
}

}  // namespace
