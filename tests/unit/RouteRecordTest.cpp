// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Routes by record: listing a table, adding and deleting.

#include "CommonApi.h"

#include "RouteWorld.h"

#include <cstring>

#include <arpa/inet.h>
#include <net/route.h>

using namespace fake;

namespace {

int failingPrint = 0;  // which print of an address from now shall fail; 0: none

}  // namespace

extern "C" {

const char* __real_inet_ntop(int family, const void* address, char* text, socklen_t size);

const char* __wrap_inet_ntop(int family, const void* address, char* text, socklen_t size)
{
    if (failingPrint > 0 && --failingPrint == 0) return nullptr;
    return __real_inet_ntop(family, address, text, size);
}

}  // extern "C"

namespace {

constexpr char kInvalidType[] = "invalid param, need fill type, IPv4 or IPv6";

const fake::Route kNet0{"192.168.1.0", "0.0.0.0", "255.255.255.0", "eth0"};
const fake::Route kNet1{"10.1.0.0", "192.168.1.9", "255.255.0.0", "eth1"};
const fake::Route kDefault0{"0.0.0.0", "192.168.1.1", "0.0.0.0", "eth0"};

const fake::Route6 kNet60{"2001:db8:1::", 64, "fe80::1", "eth0"};
const fake::Route6 kNet61{"2001:db8:2::", 48, "::", "eth1"};
const fake::Route6 kDefault60{"::", 0, "fe80::1", "eth0"};

// ---- listing

class RouteGetAllInfoTest : public RouteWorld {
protected:
    RouteGetAllInfoTest() { memset(routes, 0xEE, sizeof(routes)); }

    bool List(int type, int capacity)
    {
        routes[0].type = static_cast<uint8_t>(type);
        num = capacity;
        return RouteGetAllInfo(routes, &num);
    }

    NetRouteTableInfo routes[40];
    int num = 0;
};

TEST_F(RouteGetAllInfoTest, ListsIPv4AndLeavesTheOtherFieldsAlone)
{
    kernel.routes = {kNet1, kDefault0};
    EXPECT_TRUE(List(0, 3));
    ASSERT_EQ(num, 2);
    NetRouteTableInfo expected;
    memset(&expected, 0xEE, sizeof(expected));
    expected.type = 0;
    expected.dst.addrIPv4 = inet_addr("10.1.0.0");
    expected.gw.addrIPv4 = inet_addr("192.168.1.9");
    expected.mask = inet_addr("255.255.0.0");
    memset(expected.viaDev, 0, sizeof(expected.viaDev));
    strcpy(expected.viaDev, "eth1");
    EXPECT_EQ(memcmp(&routes[0], &expected, sizeof(expected)), 0);
    EXPECT_EQ(routes[1].type, 0);
    EXPECT_EQ(routes[1].gw.addrIPv4, inet_addr("192.168.1.1"));
    EXPECT_STREQ(routes[1].viaDev, "eth0");
    EXPECT_EQ(routes[2].type, 0xEE);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(RouteGetAllInfoTest, ListsIPv6AndLeavesTheOtherFieldsAlone)
{
    kernel.routes6 = {kNet60, kDefault60};
    EXPECT_TRUE(List(1, 3));
    ASSERT_EQ(num, 2);
    NetRouteTableInfo expected;
    memset(&expected, 0xEE, sizeof(expected));
    expected.type = 1;
    inet_pton(AF_INET6, "2001:db8:1::", expected.dst.addrIPv6);
    inet_pton(AF_INET6, "fe80::1", expected.gw.addrIPv6);
    expected.mask = 64;
    memset(expected.viaDev, 0, sizeof(expected.viaDev));
    strcpy(expected.viaDev, "eth0");
    EXPECT_EQ(memcmp(&routes[0], &expected, sizeof(expected)), 0);
    EXPECT_EQ(routes[1].type, 1);
    EXPECT_EQ(routes[1].mask, 0U);
    EXPECT_EQ(routes[2].type, 0xEE);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(RouteGetAllInfoTest, ListsAsManyAsTheCallerAsksFor)
{
    kernel.routes.assign(45, kNet0);
    kernel.routes6.assign(45, kNet61);
    for (const int type : {0, 1}) {
        EXPECT_TRUE(List(type, 40));
        EXPECT_EQ(num, 40);
        EXPECT_EQ(routes[39].type, type);
        EXPECT_STREQ(routes[39].viaDev, type == 0 ? "eth0" : "eth1");
        EXPECT_TRUE(List(type, 1));
        EXPECT_EQ(num, 1);
    }
}

TEST_F(RouteGetAllInfoTest, EmptyTableGivesNone)
{
    for (const int type : {0, 1}) {
        EXPECT_TRUE(List(type, 40));
        EXPECT_EQ(num, 0);
    }
}

TEST_F(RouteGetAllInfoTest, NameOfFifteenCharactersEndsInItsField)
{
    kernel.Add("abcdefghijkmnop");
    kernel.routes = {{"10.1.0.0", "0.0.0.0", "255.255.0.0", "abcdefghijkmnop"}};
    kernel.routes6 = {{"2001:db8::", 64, "::", "abcdefghijkmnop"}};
    for (const int type : {0, 1}) {
        EXPECT_TRUE(List(type, 1));
        EXPECT_STREQ(routes[0].viaDev, "abcdefghijkmnop");
    }
}

TEST_F(RouteGetAllInfoTest, ShortLineHasNothingFromTheMemoryBehindIt)
{
    Put(kTable4, "titles\neth0\neth1\n");
    EXPECT_TRUE(List(0, 4));
    ASSERT_EQ(num, 2);
    for (int i = 0; i < num; ++i) {
        EXPECT_EQ(routes[i].dst.addrIPv4, 0U);
        EXPECT_EQ(routes[i].gw.addrIPv4, 0U);
        EXPECT_EQ(routes[i].mask, 0U);
    }
}

TEST_F(RouteGetAllInfoTest, MissingArgumentsAreRefusedInSilence)
{
    num = 1;
    EXPECT_FALSE(RouteGetAllInfo(nullptr, &num));
    EXPECT_FALSE(RouteGetAllInfo(routes, nullptr));
    EXPECT_FALSE(List(0, 0));
    EXPECT_EQ(Trace(), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(RouteGetAllInfoTest, OtherTypeIsRefusedBeforeAnythingIsAllocated)
{
    for (const int type : {2, 255}) {
        ClearLog();
        ClearTrace();
        EXPECT_FALSE(List(type, 4));
        EXPECT_EQ(num, 4);
        EXPECT_EQ(Trace(), Texts{});
        EXPECT_EQ(Log(), LogLines{Error("RouteGetAllInfo", kInvalidType)});
    }
}

TEST_F(RouteGetAllInfoTest, NoMemoryIsTold)
{
    const LogLine noMemory[] = {Error("RouteGetAllInfo", "malloc struct IPv4Route failed"),
                                Error("RouteGetAllInfo", "malloc struct IPv6Route failed")};
    for (const int type : {0, 1}) {
        Fail("calloc", ENOMEM);
        EXPECT_FALSE(List(type, 4));
        EXPECT_FALSE(List(type, -4));
        EXPECT_EQ(num, -4);
        EXPECT_EQ(Log(), (LogLines{noMemory[type], noMemory[type]}));
        ClearLog();
    }
    EXPECT_EQ(TraceOf({"open"}), Texts{});
}

TEST_F(RouteGetAllInfoTest, UnreadableTableIsTold)
{
    kernel.routes = {kNet0};
    kernel.routes6 = {kNet60};
    const LogLines unreadable[] = {
        {CanNotOpen4(), Error("RouteGetAllInfo", "get IPv4 RouteTable fail!")},
        {CanNotOpen6(), Error("RouteGetAllInfo", "get IPv6 RouteTable fail!")}};
    for (const int type : {0, 1}) {
        bool result = false;
        FailEachCall([&] { result = List(type, 4); },
                     [&](const std::string& failed) {
                         const bool opened = failed.rfind("open", 0) != 0;
                         EXPECT_EQ(result, opened && failed != "calloc");
                         if (opened) return;
                         EXPECT_EQ(num, 4);
                         EXPECT_EQ(Log(), unreadable[type]);
                     },
                     kKept);
    }
}

// ---- routes by record

NetRouteTableInfo Record(const fake::Route& route)
{
    NetRouteTableInfo record{};
    record.dst.addrIPv4 = inet_addr(route.destination.c_str());
    record.gw.addrIPv4 = inet_addr(route.gateway.c_str());
    record.mask = inet_addr(route.mask.c_str());
    route.card.copy(record.viaDev, sizeof(record.viaDev));
    return record;
}

NetRouteTableInfo Record(const fake::Route6& route)
{
    NetRouteTableInfo record{};
    record.type = 1;
    inet_pton(AF_INET6, route.destination.c_str(), record.dst.addrIPv6);
    inet_pton(AF_INET6, route.gateway.c_str(), record.gw.addrIPv6);
    record.mask = route.prefix;
    route.card.copy(record.viaDev, sizeof(record.viaDev));
    return record;
}

struct RecordChange {
    const char* operation;
    bool (*change)(NetRouteTableInfo* cmd);
};

std::ostream& operator<<(std::ostream& out, const RecordChange& change)
{
    return out << change.operation;
}

class RouteRecordTest : public RouteWorld, public testing::WithParamInterface<RecordChange> {
protected:
    bool Change(NetRouteTableInfo record) const { return GetParam().change(&record); }
};

TEST_P(RouteRecordTest, CardMustExist)
{
    EXPECT_FALSE(Change(Record({"10.1.0.0", "0.0.0.0", "255.255.0.0", "eth9"})));
    EXPECT_EQ(RouteRequests(), Texts{});
    EXPECT_EQ(Log(), UnknownCard("eth9"));
}

TEST_P(RouteRecordTest, CardIsAskedForBeforeTheType)
{
    NetRouteTableInfo record = Record({"10.1.0.0", "0.0.0.0", "255.255.0.0", "eth9"});
    record.type = 2;
    EXPECT_FALSE(Change(record));
    EXPECT_EQ(Log(), UnknownCard("eth9"));
}

TEST_P(RouteRecordTest, OtherTypeIsRefused)
{
    for (const int type : {2, 255}) {
        NetRouteTableInfo record = Record(kNet0);
        record.type = static_cast<uint8_t>(type);
        EXPECT_FALSE(Change(record));
        EXPECT_EQ(Log(), LogLines{Error(GetParam().operation, kInvalidType)});
        ClearLog();
    }
    EXPECT_EQ(RouteRequests(), Texts{});
}

TEST_P(RouteRecordTest, PrefixAbove128IsRefused)
{
    for (const uint32_t prefix : {129U, 0x80000000U, UINT32_MAX}) {
        EXPECT_FALSE(Change(Record({"2001:db8::", prefix, "::", "eth0"})));
        EXPECT_EQ(Log(), LogLines{Error(GetParam().operation, "invalid addr!")}) << prefix;
        ClearLog();
    }
    EXPECT_EQ(RouteRequests(), Texts{});
}

TEST_P(RouteRecordTest, AddressThatCannotBePrintedIsRefused)
{
    const struct {
        NetRouteTableInfo record;
        int prints;
    } cases[] = {{Record(kNet0), 3}, {Record(kNet60), 2}};
    for (const auto& refused : cases) {
        for (int print = 1; print <= refused.prints; ++print) {
            failingPrint = print;
            EXPECT_FALSE(Change(refused.record));
            EXPECT_EQ(failingPrint, 0);
            EXPECT_EQ(Log(), LogLines{Error(GetParam().operation, "invalid addr!")}) << print;
            ClearLog();
        }
    }
    EXPECT_EQ(RouteRequests(), Texts{});
}

TEST_P(RouteRecordTest, NameThatFillsItsFieldEndsThere)
{
    NetRouteTableInfo record = Record(kNet0);
    memset(record.viaDev, 'e', sizeof(record.viaDev));
    record.reserved[0] = 'x';
    EXPECT_FALSE(Change(record));
    EXPECT_EQ(Log().back(), Error("CheckEthExist", "can not find eeeeeeeeeeeeeeee in eth0,eth1,."));
}

TEST_P(RouteRecordTest, RecordIsNotWritten)
{
    for (const NetRouteTableInfo& given : {Record(kNet0), Record(kNet60)}) {
        NetRouteTableInfo record = given;
        GetParam().change(&record);
        EXPECT_EQ(memcmp(&record, &given, sizeof(given)), 0);
    }
}

INSTANTIATE_TEST_SUITE_P(Records, RouteRecordTest,
                         testing::Values(RecordChange{"RouteAdd", RouteAdd},
                                         RecordChange{"RouteDel", RouteDel}),
                         [](const auto& change) { return change.param.operation; });

class RouteAddTest : public RouteWorld {};

TEST_F(RouteAddTest, AddsAnIPv4Route)
{
    NetRouteTableInfo record = Record(kNet1);
    const LogLine asked =
        Info("RouteAdd", "RouteAdd addr 10.1.0.0 gw 192.168.1.9 mask 255.255.0.0 name eth1");
    EXPECT_TRUE(RouteAdd(&record));
    EXPECT_EQ(kernel.routes, Routes{kNet1});
    EXPECT_EQ(Log(), (LogLines{asked, Adds(kNet1)}));

    ClearLog();
    EXPECT_FALSE(RouteAdd(&record));
    EXPECT_EQ(kernel.routes, Routes{kNet1});
    EXPECT_EQ(Log(), (LogLines{asked, ::Exists(kNet1)}));
}

TEST_F(RouteAddTest, AddsAnIPv6Route)
{
    NetRouteTableInfo record = Record(kNet60);
    const LogLine asked =
        Info("RouteAddIPv6", "ipv6routeAdd name:eth0 addr:2001:db8:1:: gw:fe80::1, mask:64");
    EXPECT_TRUE(RouteAdd(&record));
    EXPECT_EQ(kernel.routes6, Routes6{kNet60});
    EXPECT_EQ(Log(), LogLines{asked});

    ClearLog();
    EXPECT_TRUE(RouteAdd(&record));
    EXPECT_EQ(kernel.routes6, Routes6{kNet60});
    EXPECT_EQ(Log(), (LogLines{asked, Info("RouteAddIPv6", "this route is exist.[2001:db8:1::, "
                                                           "fe80::1, 64, eth0]")}));
}

TEST_F(RouteAddTest, FullPrefixMakesAHostRoute)
{
    const fake::Route6 host{"2001:db8::1", 128, "::", "eth0"};
    NetRouteTableInfo record = Record(host);
    EXPECT_TRUE(RouteAdd(&record));
    EXPECT_EQ(kernel.routes6, Routes6{host});
    EXPECT_EQ(kernel.routes6[0].flags, static_cast<unsigned>(RTF_UP | RTF_HOST));
}

class RouteDelTest : public RouteWorld {};

TEST_F(RouteDelTest, DeletesAnIPv4RouteWithoutLookingAtTheTable)
{
    kernel.routes = {kNet1, kNet0};
    NetRouteTableInfo record = Record(kNet1);
    const LogLine asked =
        Info("RouteDel", "RouteDel addr 10.1.0.0 gw 192.168.1.9 mask 255.255.0.0 name eth1");
    EXPECT_TRUE(RouteDel(&record));
    EXPECT_EQ(kernel.routes, Routes{kNet0});
    EXPECT_EQ(TraceOf({kOpenTable4}), Texts{});
    EXPECT_EQ(Log(), (LogLines{asked, Deletes(kNet1)}));

    ClearLog();
    EXPECT_FALSE(RouteDel(&record));
    EXPECT_EQ(Log(),
              (LogLines{asked, Deletes(kNet1)} + Refused("Route_DelIPv4Route", ESRCH, kNet1)));
}

TEST_F(RouteDelTest, DeletesAnIPv6Route)
{
    kernel.routes6 = {kNet60, kNet61};
    NetRouteTableInfo record = Record(kNet61);
    EXPECT_TRUE(RouteDel(&record));
    EXPECT_EQ(kernel.routes6, Routes6{kNet60});
    EXPECT_EQ(Log(), LogLines{Info("RouteDelIPv6", "ipv6routeDel name:eth1 addr:2001:db8:2:: "
                                                   "gw:::, mask:48")});
}

TEST_F(RouteDelTest, FailedCallKeepsTheRouteOrSaysSo)
{
    kernel.routes = {kNet0};
    kernel.routes6 = {kNet60};
    for (const bool six : {false, true}) {
        NetRouteTableInfo record = six ? Record(kNet60) : Record(kNet0);
        bool result = false;
        FailEachCall([&] { result = RouteDel(&record); },
                     [&](const std::string&) {
                         EXPECT_EQ(result, six ? kernel.routes6.empty() : kernel.routes.empty());
                         if (!result) {
                             EXPECT_FALSE(Log().empty());
                         }
                     },
                     kKept);
    }
}

}  // namespace
