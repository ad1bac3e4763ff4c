// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Reading the kernel's two route tables, and what is told from them.

#include "Route.h"

#include "fake/World.h"

#include <climits>
#include <cstring>
#include <functional>

#include <arpa/inet.h>

using namespace fake;

namespace {

using Texts = std::vector<std::string>;

constexpr char kTable4[] = "/proc/net/route";
constexpr char kTable6[] = "/proc/net/ipv6_route";
constexpr char kTitles[] = "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\t\tMTU\t"
                           "Window\tIRTT                                                       \n";
constexpr char kZeros[] = "00000000000000000000000000000000";

std::string Text4(uint32_t word)
{
    char text[INET_ADDRSTRLEN];
    return inet_ntop(AF_INET, &word, text, sizeof(text));
}

std::string Text6(const uint32_t (&words)[4])
{
    char text[INET6_ADDRSTRLEN];
    return inet_ntop(AF_INET6, words, text, sizeof(text));
}

/// A line of the IPv4 table, as wide as the kernel prints it.
std::string Line4(const std::string& card, const std::string& columns)
{
    std::string line = card + "\t" + columns;
    line.resize(127, ' ');
    return line + "\n";
}

/// A line of the IPv6 table.
std::string Line6(const std::string& destination, const std::string& prefix, const std::string& hop,
                  const std::string& flags, const std::string& card)
{
    return destination + " " + prefix + " " + kZeros + " 00 " + hop +
           " 00000400 00000001 00000000 " + flags + " " + card + "\n";
}

/// Rows as a caller prepares them: zeroed, with one more behind to see what is written there.
template <class Row, bool (*read)(Row*, int*)>
struct Rows {
    static constexpr int kMost = 64;
    Row row[kMost] = {};
    int count = 0;
    bool read_ = false;

    explicit Rows(int capacity) : count(capacity) { read_ = read(row, &count); }

    Texts Cards() const
    {
        Texts cards;
        for (int i = 0; i < count; ++i) cards.emplace_back(row[i].viaDev);
        return cards;
    }
};
using Rows4 = Rows<IPv4Route, Route_GetIPv4Route>;
using Rows6 = Rows<IPv6Route, Route_GetIPv6Route>;

// ---- what both readers have in common

struct Reader {
    const char* operation;
    const char* path;
    const char* titles;
    std::string line;  // of one row of eth0

    /// Reads into rows of its own: the result, `*num` on return, and the cards found.
    std::function<bool(int* num, Texts* cards)> read;
    std::function<bool(bool rows, int* num)> readNull;
};

std::ostream& operator<<(std::ostream& out, const Reader& reader)
{
    return out << reader.operation;
}

template <class Row, bool (*read)(Row*, int*)>
bool ReadCards(int* num, Texts* cards)
{
    const Rows<Row, read> rows(*num);
    *num = rows.count;
    if (rows.read_) *cards = rows.Cards();
    return rows.read_;
}

const Reader kReader4 = {"Route_GetIPv4Route",
                         kTable4,
                         kTitles,
                         Line4("eth0", "0001A8C0\t00000000\t0001\t0\t0\t0\t00FFFFFF\t0\t0\t0"),
                         ReadCards<IPv4Route, Route_GetIPv4Route>,
                         [](bool rows, int* num) {
                             IPv4Route row{};
                             return Route_GetIPv4Route(rows ? &row : nullptr, num);
                         }};
const Reader kReader6 = {
    "Route_GetIPv6Route",
    kTable6,
    "",
    Line6("20010db8000000000000000000000000", "40", kZeros, "00000001", "eth0"),
    ReadCards<IPv6Route, Route_GetIPv6Route>,
    [](bool rows, int* num) {
        IPv6Route row{};
        return Route_GetIPv6Route(rows ? &row : nullptr, num);
    }};

class RouteReaderTest : public World, public testing::WithParamInterface<Reader> {
protected:
    /// Puts a table of one row for each card there.
    void PutCards(const Texts& cards)
    {
        std::string text = GetParam().titles;
        for (const std::string& card : cards) {
            std::string line = GetParam().line;
            text += line.replace(line.find("eth0"), 4, card);
        }
        Put(GetParam().path, text);
    }

    std::string Open() const { return std::string("open ") + GetParam().path + " O_RDONLY"; }
    std::string Pread() const { return std::string("pread ") + GetParam().path; }
    LogLine CanNotOpen() const
    {
        return Error(GetParam().operation, std::string("Can not open ") + GetParam().path);
    }
};

TEST_P(RouteReaderTest, ListsTheRowsInTheirOrder)
{
    PutCards({"eth1", "bond0", "eth0", "eth1"});
    int num = 16;
    Texts cards;
    EXPECT_TRUE(GetParam().read(&num, &cards));
    EXPECT_EQ(num, 4);
    EXPECT_EQ(cards, (Texts{"eth1", "bond0", "eth0", "eth1"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_P(RouteReaderTest, StopsAtTheCapacity)
{
    PutCards({"eth1", "eth2", "eth3", "eth4"});
    int num = 3;
    Texts cards;
    EXPECT_TRUE(GetParam().read(&num, &cards));
    EXPECT_EQ(num, 3);
    EXPECT_EQ(cards, (Texts{"eth1", "eth2", "eth3"}));
}

TEST_P(RouteReaderTest, CapacityThatIsJustReachedListsAll)
{
    PutCards({"eth1", "eth2"});
    int num = 2;
    Texts cards;
    EXPECT_TRUE(GetParam().read(&num, &cards));
    EXPECT_EQ(cards, (Texts{"eth1", "eth2"}));
}

TEST_P(RouteReaderTest, CapacityOfZeroAndBelowStoresNothing)
{
    PutCards({"eth1", "eth2"});
    for (const int capacity : {0, -1, -100}) {
        int num = capacity;
        Texts cards;
        EXPECT_TRUE(GetParam().read(&num, &cards)) << capacity;
        EXPECT_EQ(num, 0) << capacity;
        EXPECT_EQ(cards, Texts{}) << capacity;
    }
    EXPECT_LE(TraceOf({"pread"}).size(), 3U);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_P(RouteReaderTest, EmptyTableGivesNoRows)
{
    for (const char* text : {GetParam().titles, ""}) {
        Put(GetParam().path, text);
        int num = 16;
        Texts cards;
        EXPECT_TRUE(GetParam().read(&num, &cards));
        EXPECT_EQ(num, 0);
    }
}

TEST_P(RouteReaderTest, NullIsRefusedInSilence)
{
    PutCards({"eth1"});
    int num = 1;
    EXPECT_FALSE(GetParam().readNull(true, nullptr));
    EXPECT_FALSE(GetParam().readNull(false, &num));
    EXPECT_EQ(num, 1);
    EXPECT_EQ(Trace(), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_P(RouteReaderTest, TableThatCannotBeOpenedLeavesTheNumberAndIsTriedAgain)
{
    PutCards({"eth1"});
    Fail(Open(), EACCES);
    int num = 7;
    Texts cards;
    EXPECT_FALSE(GetParam().read(&num, &cards));
    EXPECT_EQ(num, 7);
    EXPECT_EQ(HeldMutexes(), 0);
    EXPECT_EQ(Log(), LogLines{CanNotOpen()});

    EXPECT_TRUE(GetParam().read(&num, &cards));
    EXPECT_EQ(cards, Texts{"eth1"});
}

TEST_P(RouteReaderTest, TableIsOpenedOnceUnderTheLockAndKeptFromChildren)
{
    PutCards({"eth1"});
    int num = 1;
    Texts cards;
    EXPECT_TRUE(GetParam().read(&num, &cards));
    EXPECT_EQ(Trace(), (Texts{"mutex lock", Open(), "fcntl F_SETFD", Pread(), "mutex unlock"}));

    ClearTrace();
    EXPECT_TRUE(GetParam().read(&num, &cards));
    EXPECT_EQ(Trace(), (Texts{"mutex lock", Pread(), "mutex unlock"}));
    EXPECT_EQ(OpenHandles(), Texts{Open()});
}

TEST_P(RouteReaderTest, EachReadSeesTheTableOfItsMoment)
{
    PutCards({"eth1", "eth2", "eth3"});
    int num = 16;
    Texts cards;
    EXPECT_TRUE(GetParam().read(&num, &cards));
    EXPECT_EQ(cards, (Texts{"eth1", "eth2", "eth3"}));

    PutCards({"eth4"});
    num = 16;
    EXPECT_TRUE(GetParam().read(&num, &cards));
    EXPECT_EQ(cards, Texts{"eth4"});

    Put(GetParam().path, GetParam().titles);
    num = 16;
    EXPECT_TRUE(GetParam().read(&num, &cards));
    EXPECT_EQ(cards, Texts{});
}

TEST_P(RouteReaderTest, ReadThatStoppedEarlyLeavesNothingOldBehind)
{
    PutCards({"eth1", "eth2", "eth3"});
    int num = 1;
    Texts cards;
    EXPECT_TRUE(GetParam().read(&num, &cards));
    EXPECT_EQ(cards, Texts{"eth1"});

    PutCards({"eth5", "eth6"});
    for (const int capacity : {1, 16}) {
        num = capacity;
        EXPECT_TRUE(GetParam().read(&num, &cards));
        EXPECT_EQ(cards, capacity == 1 ? Texts{"eth5"} : (Texts{"eth5", "eth6"}));
    }
}

TEST_P(RouteReaderTest, LongTableIsReadNoFurtherThanItsFirstRows)
{
    PutCards(Texts(10000, "eth1"));
    int num = 16;
    Texts cards;
    EXPECT_TRUE(GetParam().read(&num, &cards));
    EXPECT_EQ(cards, Texts(16, "eth1"));
    EXPECT_EQ(TraceOf({"pread"}), Texts{Pread()});
}

// Counts whose rows fill 32 bits, to the last one and beyond.
TEST_P(RouteReaderTest, AHugeCapacityListsAll)
{
    PutCards({"eth1", "eth2"});
    for (const int capacity : {(1 << 25) - 2, (1 << 25) - 1, 1 << 25, INT_MAX - 1, INT_MAX}) {
        int num = capacity;
        Texts cards;
        EXPECT_TRUE(GetParam().read(&num, &cards)) << capacity;
        EXPECT_EQ(cards, (Texts{"eth1", "eth2"})) << capacity;
    }
}

TEST_P(RouteReaderTest, CardNamesHaveUpToFifteenCharacters)
{
    PutCards({"abcdefghijkmnop"});
    int num = 1;
    Texts cards;
    EXPECT_TRUE(GetParam().read(&num, &cards));
    EXPECT_EQ(cards, Texts{"abcdefghijkmnop"});
}

TEST_P(RouteReaderTest, EveryCallMayFail)
{
    PutCards({"eth1"});
    bool result = false;
    int num = 0;
    Texts cards;
    FailEachCall(
        [&] {
            num = 1;
            cards.clear();
            result = GetParam().read(&num, &cards);
        },
        [&](const std::string& failed) {
            const bool opened = failed != Open();
            const bool hasRow = opened && failed != Pread();
            EXPECT_EQ(result, opened);
            EXPECT_EQ(num, hasRow || !opened ? 1 : 0);
            EXPECT_EQ(cards, hasRow ? Texts{"eth1"} : Texts{});
            if (opened) {
                EXPECT_EQ(Log(), LogLines{});
            } else {
                EXPECT_EQ(Log(), LogLines{CanNotOpen()});
            }
        },
        {Open()});
}

INSTANTIATE_TEST_SUITE_P(Tables, RouteReaderTest, testing::Values(kReader4, kReader6),
                         [](const auto& reader) { return reader.param.operation; });

// ---- IPv4

class Route_GetIPv4RouteTest : public World {};

TEST_F(Route_GetIPv4RouteTest, StoresCardDestinationGatewayAndMask)
{
    Put(kTable4, std::string(kTitles) +
                     Line4("eth1", "0002A8C0\tFE02A8C0\t0003\t7\t9\t100\t00F0FFFF\t5\t6\t8"));
    const Rows4 rows(2);
    EXPECT_TRUE(rows.read_);
    ASSERT_EQ(rows.count, 1);
    EXPECT_STREQ(rows.row[0].viaDev, "eth1");
    EXPECT_EQ(Text4(rows.row[0].dst), "192.168.2.0");
    EXPECT_EQ(Text4(rows.row[0].gw), "192.168.2.254");
    EXPECT_EQ(Text4(rows.row[0].mask), "255.255.240.0");
}

TEST_F(Route_GetIPv4RouteTest, FirstLineIsNoRowWhateverItHolds)
{
    Put(kTable4, Line4("eth1", "0001A8C0\t00000000\t0001\t0\t0\t0\t00FFFFFF\t0\t0\t0") +
                     Line4("eth2", "0002A8C0\t00000000\t0001\t0\t0\t0\t00FFFFFF\t0\t0\t0"));
    EXPECT_EQ(Rows4(16).Cards(), Texts{"eth2"});
}

TEST_F(Route_GetIPv4RouteTest, LinesThatDoNotBeginWithALowerCaseLetterDoNotCount)
{
    std::string text = kTitles;
    for (const char* card : {"Eth0", "eth1", "9eth", "_eth", " eth9", "*", "lo", "wlan0"}) {
        text += Line4(card, "0001A8C0\t00000000\t0001\t0\t0\t0\t00FFFFFF\t0\t0\t0");
    }
    text += "\n\xe4"
            "eth0\n";
    Put(kTable4, text);
    EXPECT_EQ(Rows4(3).Cards(), (Texts{"eth1", "lo", "wlan0"}));
    EXPECT_EQ(Rows4(16).Cards(), (Texts{"eth1", "lo", "wlan0"}));
}

TEST_F(Route_GetIPv4RouteTest, ShortLineCountsAndSetsOnlyWhatItHolds)
{
    Put(kTable4, std::string(kTitles) + "eth1\n" + "eth2\t0002A8C0\n" +
                     "eth3\t0003A8C0\t0103A8C0\t0003\n" + "eth4\tnothing\n");
    IPv4Route routes[5];
    memset(routes, 0xEE, sizeof(routes));
    int count = 5;
    EXPECT_TRUE(Route_GetIPv4Route(routes, &count));
    ASSERT_EQ(count, 4);
    EXPECT_STREQ(routes[0].viaDev, "eth1");
    EXPECT_EQ(routes[0].dst, 0xEEEEEEEEU);
    EXPECT_STREQ(routes[1].viaDev, "eth2");
    EXPECT_EQ(Text4(routes[1].dst), "192.168.2.0");
    EXPECT_EQ(routes[1].gw, 0xEEEEEEEEU);
    EXPECT_EQ(Text4(routes[2].gw), "192.168.3.1");
    EXPECT_EQ(routes[2].mask, 0xEEEEEEEEU);
    EXPECT_STREQ(routes[3].viaDev, "eth4");
    EXPECT_EQ(routes[3].dst, 0xEEEEEEEEU);
    EXPECT_EQ(routes[4].dst, 0xEEEEEEEEU);
    EXPECT_EQ(Log(), LogLines{});
}

/// Rows of this table as scanning them column by column reads them: the kernel's usual form is read
/// by a shorter way, which must give the very same.
TEST_F(Route_GetIPv4RouteTest, UnusualColumnsAreReadAsNumbersOfAtMostEightCharacters)
{
    struct Case {
        const char* columns;
        uint32_t dst;
        uint32_t gw;
        uint32_t mask;
    };
    constexpr uint32_t kUntouched = 0xEEEEEEEE;
    constexpr Case kCases[] = {
        {"1\t2\t3\t4\t5\t6\t7\t8\t9\tA", 1, 2, 7},
        {"0a0b0c0d\tABCDEF01\t0001\t0\t0\t0\t00FFFFFF\t0\t0\t0", 0x0A0B0C0D, 0xABCDEF01, 0xFFFFFF},
        {"0A000000\t00000000\t0001\t0\t0\t99999999\t00FFFFFF\t0\t0\t0", 0x0A000000, 0, 0xFFFFFF},
        {"0A000000\t00000000\t0001\t0\t0\t4294967295\t00FFFFFF\t0\t0\t0", 0x0A000000, 0, 0x95},
        {"0A000000\t00000000\t0001\t0\t0\t-1\t00FFFFFF\t0\t0\t0", 0x0A000000, 0, 0xFFFFFF},
        {"0x1A\t+2\t0001\t0\t0\t0\t-1", 0x1A, 2, 0xFFFFFFFF},
        {"0A000000 00000001  0001 0 0 0 00FFFFFF", 0x0A000000, 1, 0xFFFFFF},
        {"0A000000\t\t00000001\t0001\t0\t0\t0\t00FFFFFF\t0", 0x0A000000, 1, 0xFFFFFF},
        {"0A000000\t00000001\t0001\t0\t0\t0\t00FFFFFF", 0x0A000000, 1, 0xFFFFFF},
        {"0A000000\t00000001\t0001\t0\tuse\t0\t00FFFFFF\t0", 0x0A000000, 1, kUntouched},
        {"123456789\t0\t1\t0\t0\t0\t00FFFFFF\t0\t0\t0", 0x12345678, 9, 0},
    };
    for (const Case& row : kCases) {
        SCOPED_TRACE(row.columns);
        Put(kTable4, std::string(kTitles) + "eth1\t" + row.columns + "\n");
        IPv4Route route;
        memset(&route, 0xEE, sizeof(route));
        int count = 1;
        EXPECT_TRUE(Route_GetIPv4Route(&route, &count));
        EXPECT_EQ(count, 1);
        EXPECT_STREQ(route.viaDev, "eth1");
        EXPECT_EQ(route.dst, row.dst);
        EXPECT_EQ(route.gw, row.gw);
        EXPECT_EQ(route.mask, row.mask);
    }
}

TEST_F(Route_GetIPv4RouteTest, RestOfALongLineIsALineOfItsOwn)
{
    std::string first = "eth1\t0001A8C0\t00000000\t0001\t0\t0\t0\t00FFFFFF\t0\t0\t0";
    first.resize(255, ' ');
    Put(kTable4, kTitles + first + Line4("eth2", "0002A8C0\t0\t1\t0\t0\t0\t00FFFFFF\t0\t0\t0"));
    EXPECT_EQ(Rows4(16).Cards(), (Texts{"eth1", "eth2"}));
}

TEST_F(Route_GetIPv4RouteTest, NamesBeyondFifteenCharactersAreCut)
{
    Put(kTable4, std::string(kTitles) + "abcdefghijklmnopqrs\t0001A8C0\n");
    const Rows4 rows(1);
    EXPECT_STREQ(rows.row[0].viaDev, "abcdefghijklmno");
    EXPECT_EQ(rows.row[0].dst, 0U);
}

// ---- IPv6

class Route_GetIPv6RouteTest : public World {};

TEST_F(Route_GetIPv6RouteTest, StoresCardDestinationPrefixAndNextHop)
{
    Put(kTable6, Line6("20010db8000100020003000400050006", "70", "fe800000000000000211223344556677",
                       "00000003", "eth1"));
    const Rows6 rows(2);
    EXPECT_TRUE(rows.read_);
    ASSERT_EQ(rows.count, 1);
    EXPECT_STREQ(rows.row[0].viaDev, "eth1");
    EXPECT_EQ(Text6(rows.row[0].dst), "2001:db8:1:2:3:4:5:6");
    EXPECT_EQ(rows.row[0].perfix, 112U);
    EXPECT_EQ(Text6(rows.row[0].gw), "fe80::211:2233:4455:6677");
}

TEST_F(Route_GetIPv6RouteTest, CardMayBeginWithAnyCharacter)
{
    std::string text;
    for (const char* card : {"Eth0", "9eth", "_eth"}) {
        text += Line6(kZeros, "00", kZeros, "00000001", card);
    }
    Put(kTable6, text);
    EXPECT_EQ(Rows6(16).Cards(), (Texts{"Eth0", "9eth", "_eth"}));
}

TEST_F(Route_GetIPv6RouteTest, LinesThatHoldTheTwoLettersOfTheLoopbackAreHidden)
{
    std::string text;
    for (const char* card : {"lo", "eth1", "blo0", "wlo", "eth2"}) {
        text += Line6(kZeros, "00", kZeros, "00000001", card);
    }
    text += Line6("lo010db8000000000000000000000000", "40", kZeros, "00000001", "eth3");
    Put(kTable6, text);
    EXPECT_EQ(Rows6(2).Cards(), (Texts{"eth1", "eth2"}));
    EXPECT_EQ(Rows6(16).Cards(), (Texts{"eth1", "eth2"}));
}

TEST_F(Route_GetIPv6RouteTest, CachedRoutesAreLeftOut)
{
    Put(kTable6, Line6(kZeros, "80", kZeros, "01000000", "eth1") +
                     Line6(kZeros, "80", kZeros, "00ffffff", "eth2") +
                     Line6(kZeros, "80", kZeros, "01400003", "eth3") +
                     Line6(kZeros, "80", kZeros, "feffffff", "eth4"));
    EXPECT_EQ(Rows6(2).Cards(), (Texts{"eth2", "eth4"}));
    EXPECT_EQ(Rows6(16).Cards(), (Texts{"eth2", "eth4"}));
}

TEST_F(Route_GetIPv6RouteTest, ShortLineCountsWithZerosForWhatItLacks)
{
    Put(kTable6, std::string("20010db8000000000000000000000000 40\n") + "\n" +
                     Line6(kZeros, "00", kZeros, "00000001", "eth1"));
    IPv6Route routes[4];
    memset(routes, 0xEE, sizeof(routes));
    int count = 4;
    EXPECT_TRUE(Route_GetIPv6Route(routes, &count));
    ASSERT_EQ(count, 3);
    EXPECT_EQ(Text6(routes[0].dst), "2001:db8::");
    EXPECT_EQ(routes[0].perfix, 64U);
    EXPECT_EQ(Text6(routes[0].gw), "::");
    EXPECT_STREQ(routes[0].viaDev, "");
    const IPv6Route none{};
    EXPECT_EQ(memcmp(&routes[1], &none, sizeof(none)), 0);
    EXPECT_STREQ(routes[2].viaDev, "eth1");
    EXPECT_EQ(routes[3].perfix, 0xEEEEEEEEU);
}

TEST_F(Route_GetIPv6RouteTest, LeftOutLinesDoNotTouchTheRows)
{
    Put(kTable6, Line6("20010db8000000000000000000000000", "80", kZeros, "01000001", "eth1"));
    IPv6Route route;
    memset(&route, 0xEE, sizeof(route));
    int count = 1;
    EXPECT_TRUE(Route_GetIPv6Route(&route, &count));
    EXPECT_EQ(count, 0);
    EXPECT_EQ(route.dst[0], 0xEEEEEEEEU);
}

// ---- is it there?

class Route_IsExistInSysTest : public World {
protected:
    void SetUp() override
    {
        World::SetUp();
        kernel.routes = {{"192.168.1.0", "0.0.0.0", "255.255.255.0", "eth0"},
                         {"0.0.0.0", "192.168.1.1", "0.0.0.0", "eth0"}};
    }
};

TEST_F(Route_IsExistInSysTest, FindsTheVeryRoute)
{
    EXPECT_TRUE(Route_IsExistInSys("0.0.0.0", "192.168.1.1", "0.0.0.0", "eth0"));
    EXPECT_EQ(Log(), LogLines{Info("Route_IsExistInSys",
                                   "this route st.[0.0.0.0,192.168.1.1,0.0.0.0,eth0]")});
}

TEST_F(Route_IsExistInSysTest, DestinationIsMaskedFirst)
{
    EXPECT_TRUE(Route_IsExistInSys("192.168.1.5", "0.0.0.0", "255.255.255.0", "eth0"));
    EXPECT_EQ(Log(), LogLines{Info("Route_IsExistInSys",
                                   "this route st.[192.168.1.5,0.0.0.0,255.255.255.0,eth0]")});
}

TEST_F(Route_IsExistInSysTest, AllFourPartsMustBeTheSame)
{
    EXPECT_FALSE(Route_IsExistInSys("192.168.2.0", "0.0.0.0", "255.255.255.0", "eth0"));
    EXPECT_FALSE(Route_IsExistInSys("192.168.1.0", "192.168.1.1", "255.255.255.0", "eth0"));
    EXPECT_FALSE(Route_IsExistInSys("192.168.1.0", "0.0.0.0", "255.255.255.128", "eth0"));
    EXPECT_FALSE(Route_IsExistInSys("192.168.1.0", "0.0.0.0", "255.255.255.0", "eth1"));
    EXPECT_FALSE(Route_IsExistInSys("192.168.1.0", "0.0.0.0", "255.255.255.0", "eth"));
    EXPECT_FALSE(Route_IsExistInSys("192.168.1.0", "0.0.0.0", "255.255.255.0", "eth01"));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Route_IsExistInSysTest, SixteenRowsAreLookedAt)
{
    kernel.routes.clear();
    for (int i = 1; i <= 17; ++i) {
        kernel.routes.push_back(
            {"10.0." + std::to_string(i) + ".0", "0.0.0.0", "255.255.255.0", "eth0"});
    }
    EXPECT_TRUE(Route_IsExistInSys("10.0.16.0", "0.0.0.0", "255.255.255.0", "eth0"));
    EXPECT_FALSE(Route_IsExistInSys("10.0.17.0", "0.0.0.0", "255.255.255.0", "eth0"));
}

TEST_F(Route_IsExistInSysTest, TextsMustBeFullDottedAddresses)
{
    EXPECT_FALSE(Route_IsExistInSys("192.168.1", "0.0.0.0", "255.255.255.0", "eth0"));
    EXPECT_FALSE(Route_IsExistInSys("192.168.1.0", "::", "255.255.255.0", "eth0"));
    EXPECT_FALSE(Route_IsExistInSys("192.168.1.0", "0.0.0.0", "24", "eth0"));
    EXPECT_EQ(Trace(), Texts{});
    EXPECT_EQ(Log(),
              (LogLines{Error("Route_IsExistInSys", "addr error.[192.168.1,0.0.0.0,255.255.255.0]"),
                        Error("Route_IsExistInSys", "addr error.[192.168.1.0,::,255.255.255.0]"),
                        Error("Route_IsExistInSys", "addr error.[192.168.1.0,0.0.0.0,24]")}));
}

TEST_F(Route_IsExistInSysTest, NullIsRefusedInSilence)
{
    EXPECT_FALSE(Route_IsExistInSys(nullptr, "0.0.0.0", "255.255.255.0", "eth0"));
    EXPECT_FALSE(Route_IsExistInSys("192.168.1.0", nullptr, "255.255.255.0", "eth0"));
    EXPECT_FALSE(Route_IsExistInSys("192.168.1.0", "0.0.0.0", nullptr, "eth0"));
    EXPECT_FALSE(Route_IsExistInSys("192.168.1.0", "0.0.0.0", "255.255.255.0", nullptr));
    EXPECT_EQ(Trace(), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Route_IsExistInSysTest, ShortRowHasNothingFromTheMemoryBehindIt)
{
    Put(kTable4, std::string(kTitles) + "eth7\n");
    EXPECT_TRUE(Route_IsExistInSys("0.0.0.0", "0.0.0.0", "0.0.0.0", "eth7"));
}

TEST_F(Route_IsExistInSysTest, TableThatCannotBeReadIsAWarning)
{
    bool result = true;
    FailEachCall(
        [&] { result = Route_IsExistInSys("0.0.0.0", "192.168.1.1", "0.0.0.0", "eth0"); },
        [&](const std::string& failed) {
            const bool opened = failed.rfind("open", 0) != 0;
            const bool hasRows =
                opened && (failed.rfind("pread", 0) != 0 || TraceOf({"pread"}).size() > 1);
            EXPECT_EQ(result, hasRows);
            if (opened) return;
            EXPECT_EQ(Log(), (LogLines{Error("Route_GetIPv4Route", "Can not open /proc/net/route"),
                                       Warn("Route_IsExistInSys", "get route item error.")}));
        },
        {"open /proc/net/route"});
}

}  // namespace
