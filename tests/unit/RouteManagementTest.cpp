// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Adding and deleting routes, one by one and many at once.

#include "CommonApi.h"

#include "RouteWorld.h"

using namespace fake;

namespace {

const fake::Route kNet0{"192.168.1.0", "0.0.0.0", "255.255.255.0", "eth0"};
const fake::Route kNet1{"10.1.0.0", "192.168.1.9", "255.255.0.0", "eth1"};
const fake::Route kDefault0{"0.0.0.0", "192.168.1.1", "0.0.0.0", "eth0"};

const fake::Route6 kNet60{"2001:db8:1::", 64, "fe80::1", "eth0"};
const fake::Route6 kNet61{"2001:db8:2::", 48, "::", "eth1"};
const fake::Route6 kDefault60{"::", 0, "fe80::1", "eth0"};

Texts TextsOf(const fake::Route& route)
{
    return {route.destination, route.gateway, route.mask, route.card};
}

Texts TextsOf(const fake::Route6& route)
{
    return {route.destination, route.gateway, std::to_string(route.prefix), route.card};
}

using Change = bool (*)(const char* dst, const char* gw, const char* mask, const char* viaDev);

bool Apply(Change change, const Texts& texts)
{
    return change(texts[0].c_str(), texts[1].c_str(), texts[2].c_str(), texts[3].c_str());
}

/// The operation refuses each of its four texts as NULL before it does or says anything.
void ExpectNullIsRefusedInSilence(Change change)
{
    for (int missing = 0; missing < 4; ++missing) {
        const char* texts[4];
        for (int i = 0; i < 4; ++i) texts[i] = i == missing ? nullptr : "0";
        EXPECT_FALSE(change(texts[0], texts[1], texts[2], texts[3])) << missing;
    }
    EXPECT_EQ(Trace(), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

// ---- one IPv4 route

class RouteAddIPv4Test : public RouteWorld {};

TEST_F(RouteAddIPv4Test, AddsARouteThatIsNotThere)
{
    kernel.routes = {kDefault0};
    EXPECT_TRUE(Apply(RouteAddIPv4, TextsOf(kNet1)));
    EXPECT_EQ(kernel.routes, (Routes{kDefault0, kNet1}));
    EXPECT_EQ(Log(), LogLines{Adds(kNet1)});
}

TEST_F(RouteAddIPv4Test, RouteThatIsThereIsAFailure)
{
    kernel.routes = {kNet0};
    EXPECT_FALSE(Apply(RouteAddIPv4, TextsOf(kNet0)));
    EXPECT_EQ(RouteRequests(), Texts{});
    EXPECT_EQ(Log(), LogLines{::Exists(kNet0)});
}

TEST_F(RouteAddIPv4Test, AddressInsideAListedNetIsThere)
{
    kernel.routes = {kNet0};
    EXPECT_FALSE(RouteAddIPv4("192.168.1.5", "0.0.0.0", "255.255.255.0", "eth0"));
    EXPECT_EQ(RouteRequests(), Texts{});
}

TEST_F(RouteAddIPv4Test, UnreadableTableDoesNotStopIt)
{
    Fail(kOpenTable4, EACCES);
    EXPECT_TRUE(Apply(RouteAddIPv4, TextsOf(kNet1)));
    EXPECT_EQ(kernel.routes, Routes{kNet1});
    EXPECT_EQ(Log(), (LogLines{CanNotOpen4(), Warn("Route_IsExistInSys", "get route item error."),
                               Adds(kNet1)}));
}

TEST_F(RouteAddIPv4Test, RefusalOfTheKernelIsItsResult)
{
    Fail("ioctl SIOCADDRT", ENETUNREACH);
    EXPECT_FALSE(Apply(RouteAddIPv4, TextsOf(kNet1)));
    EXPECT_EQ(Log(), LogLines{Adds(kNet1)} + Refused("Route_AddIPv4Route", ENETUNREACH, kNet1));
}

TEST_F(RouteAddIPv4Test, NullIsRefusedInSilence)
{
    ExpectNullIsRefusedInSilence(RouteAddIPv4);
}

class RouteDelIPv4Test : public RouteWorld {};

TEST_F(RouteDelIPv4Test, DeletesWithoutLookingAtTheTable)
{
    kernel.routes = {kNet0, kNet1};
    EXPECT_TRUE(Apply(RouteDelIPv4, TextsOf(kNet0)));
    EXPECT_EQ(kernel.routes, Routes{kNet1});
    EXPECT_EQ(TraceOf({"open"}), Texts{});

    ClearLog();
    EXPECT_FALSE(Apply(RouteDelIPv4, TextsOf(kNet0)));
    EXPECT_EQ(Log(), LogLines{Deletes(kNet0)} + Refused("Route_DelIPv4Route", ESRCH, kNet0));
}

TEST_F(RouteDelIPv4Test, NullIsRefusedInSilence)
{
    ExpectNullIsRefusedInSilence(RouteDelIPv4);
}

// ---- one IPv6 route

class RouteAddIPv6Test : public RouteWorld {
protected:
    static LogLine Asked(const Texts& texts)
    {
        return Info("RouteAddIPv6", "ipv6routeAdd name:" + texts[3] + " addr:" + texts[0] +
                                        " gw:" + texts[1] + ", mask:" + texts[2]);
    }
};

TEST_F(RouteAddIPv6Test, AddsARouteThatIsNotThere)
{
    kernel.routes6 = {kDefault60};
    EXPECT_TRUE(Apply(RouteAddIPv6, TextsOf(kNet61)));
    EXPECT_EQ(kernel.routes6, (Routes6{kDefault60, kNet61}));
    EXPECT_EQ(Log(), LogLines{Asked(TextsOf(kNet61))});
}

TEST_F(RouteAddIPv6Test, RouteThatIsThereIsASuccessWithoutARequest)
{
    kernel.routes6 = {kNet61, kNet60};
    EXPECT_TRUE(Apply(RouteAddIPv6, TextsOf(kNet60)));
    EXPECT_EQ(TraceOf({"ioctl", "socket"}), Texts{});
    EXPECT_EQ(Log(), (LogLines{Asked(TextsOf(kNet60)),
                               Info("RouteAddIPv6",
                                    "this route is exist.[2001:db8:1::, fe80::1, 64, eth0]")}));
}

TEST_F(RouteAddIPv6Test, AllFourPartsMustBeTheSame)
{
    kernel.routes6 = {kNet60};
    const fake::Route6 others[] = {{"2001:db8:1:1::", 64, "fe80::1", "eth0"},
                                   {"2001:db8:1::", 64, "fe80::2", "eth0"},
                                   {"2001:db8:1::", 63, "fe80::1", "eth0"},
                                   {"2001:db8:1::", 64, "fe80::1", "eth1"}};
    for (const auto& other : others) {
        EXPECT_TRUE(Apply(RouteAddIPv6, TextsOf(other)));
        EXPECT_EQ(kernel.routes6.back(), other);
    }
    EXPECT_EQ(LogOf("RouteAddIPv6").size(), 4U);
}

TEST_F(RouteAddIPv6Test, DestinationIsNotMasked)
{
    kernel.routes6 = {kNet60};
    EXPECT_TRUE(RouteAddIPv6("2001:db8:1::5", "fe80::1", "64", "eth0"));
    EXPECT_EQ(RouteRequests(), Texts{"ioctl SIOCADDRT"});
}

TEST_F(RouteAddIPv6Test, TextsMayHaveOtherFormsThanTheTable)
{
    kernel.routes6 = {kDefault60, kNet60};
    EXPECT_TRUE(RouteAddIPv6("0:0:0::0", "fe80::1", "0:0:0::0", "eth0"));
    EXPECT_TRUE(RouteAddIPv6("2001:DB8:1:0::", "fe80:0::1", "64 bits", "eth0"));
    EXPECT_EQ(RouteRequests(), Texts{});
}

TEST_F(RouteAddIPv6Test, TextThatIsNoAddressIsRefused)
{
    EXPECT_FALSE(RouteAddIPv6("10.0.0.1", "fe80::1", "64", "eth0"));
    EXPECT_FALSE(RouteAddIPv6("2001:db8::", "0.0.0.0", "64", "eth0"));
    EXPECT_EQ(TraceOf({"open", "ioctl"}), Texts{});
    EXPECT_EQ(Log(), (LogLines{Asked({"10.0.0.1", "fe80::1", "64", "eth0"}),
                               Error("RouteAddIPv6", "addr error.[10.0.0.1, fe80::1, 64]"),
                               Asked({"2001:db8::", "0.0.0.0", "64", "eth0"}),
                               Error("RouteAddIPv6", "addr error.[2001:db8::, 0.0.0.0, 64]")}));
}

TEST_F(RouteAddIPv6Test, SixteenRowsAreLookedAt)
{
    kernel.routes6.assign(15, kNet61);
    kernel.routes6.push_back(kNet60);
    EXPECT_TRUE(Apply(RouteAddIPv6, TextsOf(kNet60)));
    EXPECT_EQ(RouteRequests(), Texts{});

    kernel.routes6.insert(kernel.routes6.begin(), kNet61);
    ClearLog();
    EXPECT_FALSE(Apply(RouteAddIPv6, TextsOf(kNet60)));
    EXPECT_EQ(Log(),
              LogLines{Asked(TextsOf(kNet60))} +
                  Refused("Route_AddIPv6Route", EEXIST, "Route_SetIPv4Route", TextsOf(kNet60)));
}

TEST_F(RouteAddIPv6Test, UnreadableTableDoesNotStopIt)
{
    Fail(kOpenTable6, EACCES);
    EXPECT_TRUE(Apply(RouteAddIPv6, TextsOf(kNet60)));
    EXPECT_EQ(kernel.routes6, Routes6{kNet60});
    EXPECT_EQ(Log(), (LogLines{Asked(TextsOf(kNet60)), CanNotOpen6(),
                               Warn("RouteAddIPv6", "get IPv6 route item error.")}));

    ClearLog();
    FailAll("ioctl SIOCADDRT", ENETUNREACH);
    Fail(kOpenTable6, EACCES);
    kernel.routes6 = {};
    EXPECT_FALSE(Apply(RouteAddIPv6, TextsOf(kNet60)));
}

TEST_F(RouteAddIPv6Test, NullIsRefusedInSilence)
{
    ExpectNullIsRefusedInSilence(RouteAddIPv6);
}

class RouteDelIPv6Test : public RouteWorld {};

TEST_F(RouteDelIPv6Test, DeletesWithoutLookingAtTheTable)
{
    kernel.routes6 = {kNet60, kNet61};
    const LogLine asked =
        Info("RouteDelIPv6", "ipv6routeDel name:eth0 addr:2001:db8:1:: gw:fe80::1, mask:64");
    EXPECT_TRUE(Apply(RouteDelIPv6, TextsOf(kNet60)));
    EXPECT_EQ(kernel.routes6, Routes6{kNet61});
    EXPECT_EQ(TraceOf({"open"}), Texts{});
    EXPECT_EQ(Log(), LogLines{asked});

    ClearLog();
    EXPECT_FALSE(Apply(RouteDelIPv6, TextsOf(kNet60)));
    EXPECT_EQ(Log(), LogLines{asked} + Refused("Route_DelIPv6Route", ESRCH, "Route_SetIPv6Route",
                                               TextsOf(kNet60)));
}

TEST_F(RouteDelIPv6Test, NullIsRefusedInSilence)
{
    ExpectNullIsRefusedInSilence(RouteDelIPv6);
}

struct SweptChange {
    const char* operation;
    Change change;
    bool adds;
    bool six;
};

std::ostream& operator<<(std::ostream& out, const SweptChange& swept)
{
    return out << swept.operation;
}

class RouteChangeSweepTest : public RouteWorld, public testing::WithParamInterface<SweptChange> {};

TEST_P(RouteChangeSweepTest, ResultSaysWhetherTheKernelHasChanged)
{
    const SweptChange& swept = GetParam();
    if (!swept.adds) {
        kernel.routes = {kNet1};
        kernel.routes6 = {kNet60};
    }
    bool result = false;
    FailEachCall(
        [&] { result = Apply(swept.change, swept.six ? TextsOf(kNet60) : TextsOf(kNet1)); },
        [&](const std::string& failed) {
            const size_t there = swept.six ? kernel.routes6.size() : kernel.routes.size();
            EXPECT_EQ(result, there == (swept.adds ? 1U : 0U));
            const bool harmless = failed.rfind("fcntl F_SETFD", 0) == 0 ||
                                  failed.rfind("pread", 0) == 0 || failed.rfind("open", 0) == 0;
            EXPECT_EQ(result, harmless);
        },
        kKept);
}

INSTANTIATE_TEST_SUITE_P(Routes, RouteChangeSweepTest,
                         testing::Values(SweptChange{"RouteAddIPv4", RouteAddIPv4, true, false},
                                         SweptChange{"RouteDelIPv4", RouteDelIPv4, false, false},
                                         SweptChange{"RouteAddIPv6", RouteAddIPv6, true, true},
                                         SweptChange{"RouteDelIPv6", RouteDelIPv6, false, true}),
                         [](const auto& swept) { return swept.param.operation; });

// ---- many routes

class RouteDelAllRouteTest : public RouteWorld {};

TEST_F(RouteDelAllRouteTest, DeletesEveryRouteInTheOrderOfTheTable)
{
    kernel.routes = {kNet0, kDefault0, kNet1};
    EXPECT_TRUE(RouteDelAllRoute());
    EXPECT_EQ(kernel.routes, Routes{});
    EXPECT_EQ(Log(), (LogLines{Deletes(kNet0), Deletes(kDefault0), Deletes(kNet1)}));
}

TEST_F(RouteDelAllRouteTest, EmptyTableIsASuccess)
{
    EXPECT_TRUE(RouteDelAllRoute());
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(RouteDelAllRouteTest, StopsAtTheFirstFailure)
{
    kernel.routes = {kNet0, kNet1, kDefault0};
    Fail("ioctl SIOCDELRT", EPERM, 2);
    EXPECT_FALSE(RouteDelAllRoute());
    EXPECT_EQ(kernel.routes, (Routes{kNet1, kDefault0}));
    EXPECT_EQ(Log(),
              (LogLines{Deletes(kNet0), Deletes(kNet1)} +
               Refused("Route_DelIPv4Route", EPERM, kNet1) +
               LogLines{Error("RouteDelAllRoute", "del def route dst:10.1.0.0 mask:255.255.0.0 "
                                                  "gw:192.168.1.9 dev:eth1 error.")}));
}

TEST_F(RouteDelAllRouteTest, SixteenRowsAreLookedAt)
{
    kernel.routes.assign(16, kNet0);
    kernel.routes.push_back(kNet1);
    EXPECT_TRUE(RouteDelAllRoute());
    EXPECT_EQ(kernel.routes, Routes{kNet1});
}

TEST_F(RouteDelAllRouteTest, FailureIsAlwaysTold)
{
    kernel.routes = {kNet0, kNet1};
    bool result = false;
    FailEachCall([&] { result = RouteDelAllRoute(); },
                 [&](const std::string& failed) {
                     const bool harmless =
                         failed.rfind("fcntl F_SETFD", 0) == 0 || failed.rfind("pread", 0) == 0;
                     EXPECT_EQ(result, harmless);
                     if (failed == kOpenTable4) {
                         EXPECT_EQ(Log(), (LogLines{CanNotOpen4(),
                                                    Error("RouteDelAllRoute", "get route item "
                                                                              "error.")}));
                     }
                     EXPECT_EQ(LogOf("RouteDelAllRoute").size(), harmless ? 0U : 1U);
                 },
                 kKept);
}

class RouteDelAllIPv4Test : public RouteWorld {};

TEST_F(RouteDelAllIPv4Test, DeletesTheRoutesOfTheCardSaveItsDefaultRoutes)
{
    const fake::Route alike{"10.2.0.0", "0.0.0.0", "255.255.0.0", "eth01"};
    const fake::Route second{"10.3.0.0", "192.168.1.2", "255.255.255.255", "eth0"};
    kernel.routes = {kNet0, kDefault0, kNet1, alike, second};
    EXPECT_TRUE(RouteDelAllIPv4("eth0"));
    EXPECT_EQ(kernel.routes, (Routes{kDefault0, kNet1, alike}));
    EXPECT_EQ(Log(), (LogLines{Deletes(kNet0), Deletes(second)}));
}

TEST_F(RouteDelAllIPv4Test, NothingToDeleteIsASuccess)
{
    kernel.routes = {kDefault0, kNet1};
    EXPECT_TRUE(RouteDelAllIPv4("eth0"));
    EXPECT_EQ(RouteRequests(), Texts{});
}

TEST_F(RouteDelAllIPv4Test, StopsAtTheFirstFailure)
{
    kernel.routes = {kNet0, {"10.3.0.0", "192.168.1.2", "255.255.0.0", "eth0"}};
    const Routes before = kernel.routes;
    Fail("ioctl SIOCDELRT", EPERM);
    EXPECT_FALSE(RouteDelAllIPv4("eth0"));
    EXPECT_EQ(kernel.routes, before);
    EXPECT_EQ(Log(), (LogLines{Deletes(kNet0)} + Refused("Route_DelIPv4Route", EPERM, kNet0) +
                      LogLines{Error("RouteDelAllIPv4", "del def route dst:192.168.1.0 "
                                                        "mask:255.255.255.0 gw:0.0.0.0 dev:eth0 "
                                                        "error.")}));
}

TEST_F(RouteDelAllIPv4Test, SixteenRowsAreLookedAt)
{
    kernel.routes.assign(16, kNet1);
    kernel.routes.push_back(kNet0);
    EXPECT_TRUE(RouteDelAllIPv4("eth0"));
    EXPECT_EQ(kernel.routes.size(), 17U);
    kernel.routes.erase(kernel.routes.begin());
    EXPECT_TRUE(RouteDelAllIPv4("eth0"));
    EXPECT_EQ(kernel.routes.size(), 15U);
}

TEST_F(RouteDelAllIPv4Test, UnreadableTableIsAFailure)
{
    Fail(kOpenTable4, EACCES);
    EXPECT_FALSE(RouteDelAllIPv4("eth0"));
    EXPECT_EQ(Log(), (LogLines{CanNotOpen4(), Error("RouteDelAllIPv4", "get route item error.")}));
}

TEST_F(RouteDelAllIPv4Test, NullIsRefusedInSilence)
{
    EXPECT_FALSE(RouteDelAllIPv4(nullptr));
    EXPECT_EQ(Trace(), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

class RouteDelAllIPv6Test : public RouteWorld {};

TEST_F(RouteDelAllIPv6Test, DeletesTheRoutesOfTheCardSaveItsDefaultRoutes)
{
    const fake::Route6 alike{"2001:db8:3::", 48, "::", "eth01"};
    const fake::Route6 host{"::9", 128, "fe80::3", "eth0"};
    kernel.routes6 = {kNet60, kDefault60, kNet61, alike, host};
    EXPECT_TRUE(RouteDelAllIPv6("eth0"));
    EXPECT_EQ(kernel.routes6, (Routes6{kDefault60, kNet61, alike}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(RouteDelAllIPv6Test, StopsAtTheFirstFailure)
{
    kernel.routes6 = {kNet60, {"2001:db8:5::", 64, "::", "eth0"}};
    const Routes6 before = kernel.routes6;
    Fail("ioctl SIOCDELRT", EPERM);
    EXPECT_FALSE(RouteDelAllIPv6("eth0"));
    EXPECT_EQ(kernel.routes6, before);
    EXPECT_EQ(RouteRequests(), Texts{"ioctl SIOCDELRT"});
    EXPECT_EQ(Log(), (Refused("Route_DelIPv6Route", EPERM, "Route_SetIPv6Route", TextsOf(kNet60)) +
                      LogLines{Error("RouteDelAllIPv6", "del def route dst:2001:db8:1:: mask:64 "
                                                        "gw:fe80::1 dev:eth0 error.")}));
}

TEST_F(RouteDelAllIPv6Test, SixteenRowsAreLookedAt)
{
    kernel.routes6.assign(16, kNet61);
    kernel.routes6.push_back(kNet60);
    EXPECT_TRUE(RouteDelAllIPv6("eth0"));
    EXPECT_EQ(kernel.routes6.size(), 17U);
    kernel.routes6.erase(kernel.routes6.begin());
    EXPECT_TRUE(RouteDelAllIPv6("eth0"));
    EXPECT_EQ(kernel.routes6.size(), 15U);
}

TEST_F(RouteDelAllIPv6Test, NullIsRefusedInSilence)
{
    EXPECT_FALSE(RouteDelAllIPv6(nullptr));
    EXPECT_EQ(Trace(), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(RouteDelAllIPv6Test, FailureIsAlwaysTold)
{
    kernel.routes6 = {kNet60};
    bool result = false;
    FailEachCall(
        [&] { result = RouteDelAllIPv6("eth0"); },
        [&](const std::string& failed) {
            const bool harmless =
                failed.rfind("fcntl F_SETFD", 0) == 0 || failed.rfind("pread", 0) == 0;
            EXPECT_EQ(result, harmless);
            if (failed == kOpenTable6) {
                EXPECT_EQ(Log(), (LogLines{CanNotOpen6(), Error("RouteDelAllIPv6", "get route item "
                                                                                   "error.")}));
            }
            EXPECT_EQ(LogOf("RouteDelAllIPv6").size(), harmless ? 0U : 1U);
        },
        kKept);
}

}  // namespace
