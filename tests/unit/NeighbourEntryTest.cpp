// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Static entries of the kernel's neighbour table: setting, deleting and listing them.

#include "Other.h"

#include "NeighbourWorld.h"

#include <cerrno>

namespace {

/// A request as it came to the control socket.
struct Seen {
    int request;
    fake::Bytes record;
};
std::vector<Seen> seen;

}  // namespace

extern "C" {

bool __real_NetIOCtrl(int cmd, void* ifr);

bool __wrap_NetIOCtrl(int cmd, void* ifr)
{
    constexpr size_t kRecordSize = 68;
    const auto* bytes = static_cast<const uint8_t*>(ifr);
    seen.push_back({cmd, fake::Bytes(bytes, bytes + kRecordSize)});
    return __real_NetIOCtrl(cmd, ifr);
}

}  // extern "C"

using namespace fake;

namespace {

constexpr unsigned kStaticFlags = 6;

NetARPEntry Entry(const std::string& ip, const std::string& mac, const std::string& dev = "")
{
    NetARPEntry entry{};
    strcpy(entry.ip, ip.c_str());
    strcpy(entry.mac, mac.c_str());
    strcpy(entry.dev, dev.c_str());
    return entry;
}

/// An entry whose fields are full to the last byte, with no terminator.
NetARPEntry FullEntry(const char (&ip)[17], const char (&mac)[19], const char (&dev)[17])
{
    NetARPEntry entry{};
    memcpy(entry.ip, ip, sizeof(entry.ip));
    memcpy(entry.mac, mac, sizeof(entry.mac));
    memcpy(entry.dev, dev, sizeof(entry.dev));
    memset(entry.reserved, 'r', sizeof(entry.reserved));
    return entry;
}

Bytes Text(const std::string& text, size_t size)
{
    Bytes bytes(text.begin(), text.end());
    bytes.resize(size);
    return bytes;
}

Bytes operator+(Bytes left, const Bytes& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

const Bytes kAddressPart = {2, 0, 0, 0, 10, 0, 0, 7, 0, 0, 0, 0, 0, 0, 0, 0};
const Bytes kHardwarePart = {1, 0, 0, 0x11, 0x22, 0x33, 0x44, 0x55, 0, 0, 0, 0, 0, 0, 0, 0};
const Bytes kFlagsAndMask = {6, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};

// ---- arpSetStaticEntry

class SetStaticEntryTest : public NeighbourWorld {
protected:
    static bool Set(const NetARPEntry& entry) { return arpSetStaticEntry(&entry); }
};

TEST_F(SetStaticEntryTest, HandsAPermanentEntryToTheKernelByteByByte)
{
    EXPECT_TRUE(Set(Entry("10.0.0.7", kMac1)));
    ASSERT_EQ(seen.size(), 1U);
    EXPECT_EQ(seen[0].request, 0x8955);
    EXPECT_EQ(seen[0].record, kAddressPart + kHardwarePart + kFlagsAndMask + Bytes(16));
    EXPECT_EQ(kernel.neighbours, (Neighbours{{"10.0.0.7", kMac1, "eth0", kStaticFlags}}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(SetStaticEntryTest, ANamedCardIsAWarningOnTheNormalPath)
{
    EXPECT_TRUE(Set(Entry("10.0.0.7", kMac1, "eth1")));
    ASSERT_EQ(seen.size(), 1U);
    EXPECT_EQ(seen[0].record, kAddressPart + kHardwarePart + kFlagsAndMask + Text("eth1", 16));
    EXPECT_EQ(kernel.neighbours, (Neighbours{{"10.0.0.7", kMac1, "eth1", kStaticFlags}}));
    EXPECT_EQ(Log(), (LogLines{Warn("arpSetStaticEntry", "add with dev name:[eth1]")}));
}

TEST_F(SetStaticEntryTest, ReplacesAnEntry)
{
    kernel.neighbours = {{"10.0.0.7", kMac2, "eth0", 2}};
    EXPECT_TRUE(Set(Entry("10.0.0.7", kMac1)));
    EXPECT_EQ(kernel.neighbours, (Neighbours{{"10.0.0.7", kMac1, "eth0", kStaticFlags}}));
}

TEST_F(SetStaticEntryTest, TakesFieldsOfOneDigitAndUpperCase)
{
    EXPECT_TRUE(Set(Entry("10.0.0.7", "0:11:22:33:44:5A")));
    EXPECT_EQ(kernel.neighbours,
              (Neighbours{{"10.0.0.7", "00:11:22:33:44:5a", "eth0", kStaticFlags}}));
}

TEST_F(SetStaticEntryTest, RefusesAHardwareAddressThatIsNoneOrMore)
{
    for (const char* mac :
         {"", "00:11:22:33:44", "00:11:22:33:44:", "00-11-22-33-44-55", "00:11:22:33:44:5g",
          "00:11:22:33:44:5:", "0:11:22:33:44:55x", "0:11:22:33:4:55 x", "0:1:2:3:4:5:6"}) {
        ClearLog();
        EXPECT_FALSE(Set(Entry("10.0.0.7", mac))) << mac;
        EXPECT_EQ(Log(), (LogLines{Error("arpSetStaticEntry", "mac error")})) << mac;
    }
    EXPECT_TRUE(seen.empty());
}

TEST_F(SetStaticEntryTest, OneMoreCharacterInAFullFieldIsRefused)
{
    EXPECT_FALSE(Set(FullEntry("10.0.0.7\0#######", "00:11:22:33:44:557", "eth0\0###########")));
    EXPECT_EQ(Log(), (LogLines{Error("arpSetStaticEntry", "mac error")}));
}

TEST_F(SetStaticEntryTest, BlanksBehindAHardwareAddressAreNothing)
{
    EXPECT_TRUE(Set(Entry("10.0.0.7", "0:11:22:33:44:55 ")));
}

TEST_F(SetStaticEntryTest, RefusesAnAddressThatDoesNotParse)
{
    for (const char* ip : {"", "10.0.0", "10.0.0.256", "10.0.0.7 ", "eth0"}) {
        ClearLog();
        EXPECT_FALSE(Set(Entry(ip, kMac1))) << ip;
        EXPECT_EQ(Log(), (LogLines{Error("arpSetStaticEntry", "addr error")})) << ip;
    }
    EXPECT_TRUE(seen.empty());
}

TEST_F(SetStaticEntryTest, TheHardwareAddressIsLookedAtFirst)
{
    EXPECT_FALSE(Set(Entry("no", "no")));
    EXPECT_EQ(Log(), (LogLines{Error("arpSetStaticEntry", "mac error")}));
}

TEST_F(SetStaticEntryTest, ARefusalIsLoggedWithTheEntry)
{
    EXPECT_FALSE(Set(Entry("10.0.0.7", kMac1, "eth9")));
    EXPECT_EQ(Log(), (LogLines{Warn("arpSetStaticEntry", "add with dev name:[eth9]"),
                               Refused(0x8955, ENODEV, "\x02"),
                               Error("arpSetStaticEntry",
                                     "Add Static ARPEntry failed [10.0.0.7][00:11:22:33:44:55]")}));
    EXPECT_EQ(kernel.neighbours, Neighbours{});
}

TEST_F(SetStaticEntryTest, FieldsMayBeFullWithoutATerminator)
{
    kernel.Add("abcdefghijklmno");
    EXPECT_TRUE(Set(FullEntry("10.0.0.7\0#######", "00:11:22:33:44:55 ", "abcdefghijklmnop")));
    ASSERT_EQ(seen.size(), 1U);
    EXPECT_EQ(seen[0].record,
              kAddressPart + kHardwarePart + kFlagsAndMask + Text("abcdefghijklmno", 16));
    EXPECT_EQ(Log(), (LogLines{Warn("arpSetStaticEntry", "add with dev name:[abcdefghijklmno]")}));

    EXPECT_FALSE(Set(FullEntry("192.168.100.2001", "00:11:22:33:44:55 ", "eth0\0###########")));
    EXPECT_EQ(Log().back(), Error("arpSetStaticEntry", "addr error"));
}

TEST_F(SetStaticEntryTest, NullIsSilent)
{
    EXPECT_FALSE(arpSetStaticEntry(nullptr));
    EXPECT_TRUE(seen.empty());
    EXPECT_EQ(Log(), LogLines{});
}

// ---- arpDelStaticEntry

class DelStaticEntryTest : public NeighbourWorld {
protected:
    static bool Del(const NetARPEntry& entry) { return arpDelStaticEntry(&entry); }
};

TEST_F(DelStaticEntryTest, NamesTheAddressAlone)
{
    kernel.neighbours = {{"10.0.0.7", kMac1, "eth1", 6}, {"10.0.0.7", kMac1, "eth0", 6}};
    EXPECT_TRUE(Del(Entry("10.0.0.7", kMac1)));
    ASSERT_EQ(seen.size(), 1U);
    EXPECT_EQ(seen[0].request, 0x8953);
    EXPECT_EQ(seen[0].record, kAddressPart + Bytes(52));
    EXPECT_EQ(kernel.neighbours, (Neighbours{{"10.0.0.7", kMac1, "eth1", 6}}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(DelStaticEntryTest, ANamedCardIsAWarningOnTheNormalPath)
{
    kernel.neighbours = {{"10.0.0.7", kMac1, "eth0", 6}, {"10.0.0.7", kMac1, "eth1", 6}};
    EXPECT_TRUE(Del(Entry("10.0.0.7", kMac1, "eth1")));
    ASSERT_EQ(seen.size(), 1U);
    EXPECT_EQ(seen[0].record, kAddressPart + Bytes(36) + Text("eth1", 16));
    EXPECT_EQ(kernel.neighbours, (Neighbours{{"10.0.0.7", kMac1, "eth0", 6}}));
    EXPECT_EQ(Log(), (LogLines{Warn("arpDelStaticEntry", "del with dev name:[eth1]")}));
}

TEST_F(DelStaticEntryTest, AMalformedHardwareAddressDoesNoHarm)
{
    kernel.neighbours = {{"10.0.0.7", kMac1, "eth0", 6}};
    EXPECT_TRUE(Del(Entry("10.0.0.7", "no")));
    EXPECT_EQ(kernel.neighbours, Neighbours{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(DelStaticEntryTest, ARefusalIsLoggedWithTheEntryAsItStands)
{
    EXPECT_FALSE(Del(Entry("10.0.0.7", "no")));
    EXPECT_EQ(Log(),
              (LogLines{Refused(0x8953, ENXIO, "\x02"),
                        Error("arpDelStaticEntry", "del Static ARPEntry failed [10.0.0.7][no]")}));
}

TEST_F(DelStaticEntryTest, RefusesAnAddressThatDoesNotParse)
{
    for (const char* ip : {"", "10.0.0", "10.0.0.7x"}) {
        ClearLog();
        EXPECT_FALSE(Del(Entry(ip, kMac1))) << ip;
        EXPECT_EQ(Log(), (LogLines{Error("arpDelStaticEntry", "addr error")})) << ip;
    }
    EXPECT_TRUE(seen.empty());
}

TEST_F(DelStaticEntryTest, FieldsMayBeFullWithoutATerminator)
{
    kernel.Add("abcdefghijklmno");
    EXPECT_FALSE(Del(FullEntry("10.0.0.7\0#######", "00:11:22:33:44:55X", "abcdefghijklmnop")));
    EXPECT_EQ(Log(),
              (LogLines{Warn("arpDelStaticEntry", "del with dev name:[abcdefghijklmno]"),
                        Refused(0x8953, ENXIO, "\x02"),
                        Error("arpDelStaticEntry",
                              "del Static ARPEntry failed [10.0.0.7][00:11:22:33:44:55X]")}));
    EXPECT_FALSE(Del(FullEntry("10.0.0.100000000", "00:11:22:33:44:55X", "abcdefghijklmnop")));
    EXPECT_EQ(Log().back(), Error("arpDelStaticEntry", "addr error"));
}

TEST_F(DelStaticEntryTest, NullIsSilent)
{
    EXPECT_FALSE(arpDelStaticEntry(nullptr));
    EXPECT_TRUE(seen.empty());
    EXPECT_EQ(Log(), LogLines{});
}

class ChangeOfEntryTest : public NeighbourWorld {};

TEST_F(ChangeOfEntryTest, EveryFailureIsToldAndLeavesTheTable)
{
    static bool done = false;
    static bool (*change)(const NetARPEntry*) = nullptr;
    for (const auto operation : {arpSetStaticEntry, arpDelStaticEntry}) {
        change = operation;
        kernel.neighbours = {{"10.0.0.7", kMac2, "eth0", 2}};
        FailEachCall(
            [] {
                const NetARPEntry entry = Entry("10.0.0.7", kMac1);
                done = change(&entry);
            },
            [](const std::string& failed) {
                const bool harmless = failed == "fcntl F_SETFD";
                EXPECT_EQ(done, harmless);
                EXPECT_EQ(kernel.neighbours == (Neighbours{{"10.0.0.7", kMac2, "eth0", 2}}),
                          !harmless);
                EXPECT_EQ(Log().size(), harmless ? 0U : 2U);
            });
    }
}

// ---- the two listings

struct Listing {
    const char* operation;
    bool (*list)(NetARPEntry* entries, int* num);
};

/// Both are asked for what the tests put there: entries of 10.0.0.7.
const Listing kAll = {"arpGetAllStaticEntry", arpGetAllStaticEntry};
const Listing kOfAddress = {"arpGetARPStaticInfoByIP", [](NetARPEntry* entries, int* num) {
                                return arpGetARPStaticInfoByIP("10.0.0.7", entries, num);
                            }};

std::ostream& operator<<(std::ostream& out, const Listing& listing)
{
    return out << listing.operation;
}

std::string TextOf(const NetARPEntry& entry)
{
    return std::string(entry.ip) + " " + entry.mac + " " + entry.dev;
}

class StaticListingTest : public NeighbourWorld, public testing::WithParamInterface<Listing> {
protected:
    /// Lists into marked records, as texts.
    bool List(int capacity)
    {
        memset(entries, '#', sizeof(entries));
        num = capacity;
        listed.clear();
        const bool done = GetParam().list(entries, &num);
        for (int i = 0; done && i < num; ++i) listed.push_back(TextOf(entries[i]));
        return done;
    }

    bool IsMarked(int first) const
    {
        const auto* bytes = reinterpret_cast<const char*>(&entries[first]);
        const size_t size = sizeof(entries) - static_cast<size_t>(first) * sizeof(entries[0]);
        return std::string(bytes, size) == std::string(size, '#');
    }

    NetARPEntry entries[8];
    int num = 0;
    Texts listed;
};

TEST_P(StaticListingTest, ListsStaticEntriesInTheirOrder)
{
    kernel.neighbours = {{"10.0.0.7", kMac1, "eth1", 6}, {"10.0.0.7", kMac2, "eth0", 6}};
    EXPECT_TRUE(List(8));
    EXPECT_EQ(listed,
              (Texts{"10.0.0.7 00:11:22:33:44:55 eth1", "10.0.0.7 aa:bb:cc:dd:ee:ff eth0"}));
    EXPECT_EQ(std::string(entries[0].reserved, sizeof(entries[0].reserved)), std::string(14, '\0'));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_P(StaticListingTest, AnyOtherFlagsArePassedOver)
{
    kernel.neighbours.clear();
    for (unsigned flags = 0; flags <= 0x20; ++flags) {
        kernel.neighbours.push_back({"10.0.0.7", kMac1, "dev" + std::to_string(flags), flags});
    }
    EXPECT_TRUE(List(8));
    EXPECT_EQ(listed, (Texts{"10.0.0.7 00:11:22:33:44:55 dev6"}));
}

TEST_P(StaticListingTest, StopsWhenTheRecordsAreFull)
{
    kernel.neighbours = {{"10.0.0.7", kMac1, "eth0", 6},
                         {"10.0.0.7", kMac1, "eth1", 6},
                         {"10.0.0.7", kMac1, "eth2", 6}};
    for (const int capacity : {1, 2}) {
        EXPECT_TRUE(List(capacity));
        EXPECT_EQ(num, capacity);
        EXPECT_TRUE(IsMarked(capacity));
        EXPECT_EQ(listed.back(), "10.0.0.7 00:11:22:33:44:55 eth" + std::to_string(capacity - 1));
    }
}

TEST_P(StaticListingTest, NoneIsASuccess)
{
    kernel.neighbours = {{"10.0.0.7", kMac1, "eth0", 2}};
    EXPECT_TRUE(List(8));
    EXPECT_EQ(num, 0);
    Put(kTable, "");
    EXPECT_TRUE(List(8));
    EXPECT_EQ(num, 0);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_P(StaticListingTest, NoRoomIsSilent)
{
    for (const int capacity : {0, -1, -1000000}) {
        EXPECT_FALSE(List(capacity));
        EXPECT_EQ(num, capacity);
        EXPECT_TRUE(IsMarked(0));
    }
    num = 8;
    EXPECT_FALSE(GetParam().list(nullptr, &num));
    EXPECT_FALSE(GetParam().list(entries, nullptr));
    EXPECT_EQ(num, 8);
    EXPECT_EQ(Trace(), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_P(StaticListingTest, NoTableIsAnError)
{
    Fail(kOpenTable, ENOENT);
    EXPECT_FALSE(List(8));
    EXPECT_EQ(num, 8);
    EXPECT_EQ(Log(), (LogLines{Error(GetParam().operation, "Can not open /proc/net/arp")}));
}

TEST_P(StaticListingTest, OpensAndClosesTheTableEachTime)
{
    for (int i = 0; i < 2; ++i) {
        ClearTrace();
        EXPECT_TRUE(List(8));
        EXPECT_EQ(TraceOf({"open", "close", "mutex"}), (Texts{kOpenTable, "close /proc/net/arp"}));
    }
    EXPECT_EQ(OpenHandles(), Texts{});
}

TEST_P(StaticListingTest, EveryFailureClosesTheTable)
{
    static bool done = false;
    static Listing listing;
    static int count = 0;
    listing = GetParam();
    kernel.neighbours = {{"10.0.0.7", kMac1, "eth0", 6}};
    FailEachCall(
        [] {
            NetARPEntry entry;
            count = 1;
            done = listing.list(&entry, &count);
        },
        [](const std::string& failed) {
            EXPECT_EQ(done, failed != kOpenTable);
            // The end of the table is looked for only while there is room.
            EXPECT_EQ(count, failed == kOpenTable ? 1 : 0);
        },
        {"nothing"});
}

TEST_P(StaticListingTest, ColumnsAreCutToTheirFields)
{
    PutTable({"10.0.0.7 0x20 0x6 80:00:00:48:fe:80:00:00:00:00 * ib0",
              std::string("10.0.0.7 0x1 0x6 ") + kMac1 + " * abcdefghijklmnopqrst"});
    EXPECT_TRUE(List(8));
    EXPECT_EQ(listed, (Texts{"10.0.0.7 80:00:00:48:fe:80 *",
                             "10.0.0.7 00:11:22:33:44:55 abcdefghijklmno"}));
}

TEST_P(StaticListingTest, FlagsAreHexadecimalWithOrWithoutTheirSign)
{
    PutTable({std::string("10.0.0.7 0x1 6 ") + kMac1 + " * eth0",
              std::string("10.0.0.7 0x1 0X6 ") + kMac1 + " * eth1",
              std::string("10.0.0.7 0x1 0x0006 ") + kMac1 + " * eth2",
              std::string("10.0.0.7 0x1 0x16 ") + kMac1 + " * eth3",
              std::string("10.0.0.7 0x1 six ") + kMac1 + " * eth4"});
    EXPECT_TRUE(List(8));
    EXPECT_EQ(num, 3);
}

TEST_P(StaticListingTest, WhatAShortLineDoesNotHoldIsOfTheLineBefore)
{
    PutTable({std::string("10.0.0.1 0x1 0x2 ") + kMac1 + " * eth0", "10.0.0.7 0x1 0x6", "",
              "10.0.0.7 0x1", "10.0.0.7 0x1 0x6 x"});
    EXPECT_TRUE(List(8));
    EXPECT_EQ(listed, (Texts{"10.0.0.7 00:11:22:33:44:55 eth0", "10.0.0.7 x eth0"}));
}

TEST_P(StaticListingTest, ALongTableIsReadToItsEnd)
{
    kernel.neighbours.clear();
    for (int i = 0; i < 3000; ++i) kernel.neighbours.push_back({"10.0.0.7", kMac2, "eth0", 2});
    kernel.neighbours.push_back({"10.0.0.7", kMac1, "eth1", 6});
    EXPECT_TRUE(List(8));
    EXPECT_EQ(listed, (Texts{"10.0.0.7 00:11:22:33:44:55 eth1"}));
}

INSTANTIATE_TEST_SUITE_P(Both, StaticListingTest, testing::Values(kAll, kOfAddress));

// ---- where the two differ

class AllStaticEntriesTest : public NeighbourWorld {};

TEST_F(AllStaticEntriesTest, EveryAddressIsListed)
{
    kernel.neighbours = {{"10.0.0.7", kMac1, "eth1", 6}, {"192.168.100.200", kMac2, "eth0", 6}};
    NetARPEntry entries[4];
    int num = 4;
    EXPECT_TRUE(arpGetAllStaticEntry(entries, &num));
    ASSERT_EQ(num, 2);
    EXPECT_EQ(TextOf(entries[0]), "10.0.0.7 00:11:22:33:44:55 eth1");
    EXPECT_EQ(TextOf(entries[1]), "192.168.100.200 aa:bb:cc:dd:ee:ff eth0");
}

TEST_F(AllStaticEntriesTest, AllRecordsAreZeroedFirst)
{
    NetARPEntry entries[3];
    memset(entries, '#', sizeof(entries));
    int num = 2;
    Fail(kOpenTable, ENOENT);
    EXPECT_FALSE(arpGetAllStaticEntry(entries, &num));
    const auto* bytes = reinterpret_cast<const char*>(entries);
    EXPECT_EQ(std::string(bytes, 128), std::string(128, '\0'));
    EXPECT_EQ(std::string(bytes + 128, 64), std::string(64, '#'));
}

TEST_F(AllStaticEntriesTest, AnAddressOfSixteenCharactersIsCutByOne)
{
    PutTable({std::string("192.168.100.2001 0x1 0x6 ") + kMac1 + " * eth0",
              std::string("192.168.100.20012 0x1 0x6 ") + kMac1 + " * eth0"});
    NetARPEntry entries[4];
    int num = 4;
    EXPECT_TRUE(arpGetAllStaticEntry(entries, &num));
    ASSERT_EQ(num, 1);  // the second one's columns move on
    EXPECT_EQ(TextOf(entries[0]), "192.168.100.200 00:11:22:33:44:55 eth0");
}

class StaticEntriesOfAddressTest : public NeighbourWorld {
protected:
    bool List(const char* ip)
    {
        memset(entries, '#', sizeof(entries));
        num = 4;
        return arpGetARPStaticInfoByIP(ip, entries, &num);
    }

    NetARPEntry entries[4];
    int num = 0;
};

TEST_F(StaticEntriesOfAddressTest, OnlyTheWholeAddressMatches)
{
    kernel.neighbours = {{"10.0.0.70", kMac1, "eth0", 6},
                         {"10.0.0.7", kMac1, "eth1", 6},
                         {"110.0.0.7", kMac1, "eth0", 6},
                         {"10.0.0.7", kMac2, "eth0", 6}};
    EXPECT_TRUE(List("10.0.0.7"));
    ASSERT_EQ(num, 2);
    EXPECT_EQ(TextOf(entries[0]), "10.0.0.7 00:11:22:33:44:55 eth1");
    EXPECT_EQ(TextOf(entries[1]), "10.0.0.7 aa:bb:cc:dd:ee:ff eth0");
}

TEST_F(StaticEntriesOfAddressTest, RecordsBehindTheCountStayAsTheyWere)
{
    kernel.neighbours = {{"10.0.0.7", kMac1, "eth1", 6}};
    EXPECT_TRUE(List("10.0.0.7"));
    EXPECT_EQ(num, 1);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(&entries[1]), 64), std::string(64, '#'));
}

TEST_F(StaticEntriesOfAddressTest, TheTextIsComparedAsItStands)
{
    kernel.neighbours = {{"10.0.0.7", kMac1, "eth1", 6}};
    for (const char* ip : {"", "10.0.0.07", "10.7", "no", "10.0.0.7 "}) {
        EXPECT_TRUE(List(ip)) << ip;
        EXPECT_EQ(num, 0) << ip;
    }
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(StaticEntriesOfAddressTest, AnAddressOfSixteenCharactersMovesTheColumns)
{
    PutTable({std::string("192.168.100.2001 0x1 0x6 ") + kMac1 + " * eth0"});
    EXPECT_TRUE(List("192.168.100.200"));
    EXPECT_EQ(num, 0);
}

TEST_F(StaticEntriesOfAddressTest, NullIsSilent)
{
    EXPECT_FALSE(List(nullptr));
    EXPECT_EQ(num, 4);
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(StaticEntriesOfAddressTest, FlagsOfAnotherAddressStayForAShortLine)
{
    PutTable({std::string("10.0.0.1 0x1 0x6 ") + kMac1 + " * eth0", "10.0.0.7"});
    EXPECT_TRUE(List("10.0.0.7"));
    ASSERT_EQ(num, 1);
    EXPECT_EQ(TextOf(entries[0]), "10.0.0.7 00:11:22:33:44:55 eth0");
}

}  // namespace
