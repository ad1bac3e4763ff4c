// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The default routes of both families, replaced and deleted.

#include "DefaultRouteWorld.h"

using namespace fake;

namespace {

// ---- the IPv4 default route

class RouteAddDefIPv4Test : public DefaultRouteWorld {
protected:
    void SetUp() override
    {
        DefaultRouteWorld::SetUp();
        kernel.routes = {kDefault0, kNet0, kOtherDefault1};
    }
};

TEST_F(RouteAddDefIPv4Test, ReplacesTheDefaultRoutesOfAllCards)
{
    EXPECT_TRUE(RouteAddDefIPv4("eth1"));
    EXPECT_EQ(kernel.routes, (Routes{kNet0, kDefault1}));
    EXPECT_EQ(Log(), (LogLines{Deletes(kDefault0), Deletes(kOtherDefault1), Adds(kDefault1)}));
}

TEST_F(RouteAddDefIPv4Test, FailedDeletionDoesNotStopIt)
{
    Fail("ioctl SIOCDELRT", EPERM);
    EXPECT_TRUE(RouteAddDefIPv4("eth1"));
    EXPECT_EQ(kernel.routes, (Routes{kDefault0, kNet0, kOtherDefault1, kDefault1}));
}

TEST_F(RouteAddDefIPv4Test, RouteThatCouldNotBeDeletedIsNotAddedTwice)
{
    Fail("ioctl SIOCDELRT", EPERM);
    EXPECT_FALSE(RouteAddDefIPv4("eth0"));
    EXPECT_EQ(RouteRequests(), Texts{"ioctl SIOCDELRT"});
    EXPECT_EQ(Log().back(), ::Exists(kDefault0));
}

TEST_F(RouteAddDefIPv4Test, WithoutASavedGatewayNoDefaultRouteIsLeft)
{
    Put(CardFile("eth1"), "");
    EXPECT_FALSE(RouteAddDefIPv4("eth1"));
    EXPECT_EQ(kernel.routes, Routes{kNet0});
    EXPECT_EQ(Log(), (LogLines{Deletes(kDefault0), Deletes(kOtherDefault1),
                               Error("RouteAddDefIPv4", "Can not get eth1 default gw.")}));
}

TEST_F(RouteAddDefIPv4Test, NullIsRefusedInSilence)
{
    EXPECT_FALSE(RouteAddDefIPv4(nullptr));
    EXPECT_EQ(Trace(), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(RouteAddDefIPv4Test, SuccessMeansThatTheRouteIsThere)
{
    bool result = false;
    FailEachCall([&] { result = RouteAddDefIPv4("eth1"); },
                 [&](const std::string&) {
                     EXPECT_EQ(result, kernel.routes.back() == kDefault1);
                     if (!result) {
                         EXPECT_FALSE(Log().empty());
                     }
                 },
                 kKept);
}

class RouteDelDefIPv4Test : public DefaultRouteWorld {
protected:
    void SetUp() override
    {
        DefaultRouteWorld::SetUp();
        kernel.routes = {kDefault0, kNet0, kDefault1, kOtherDefault1};
    }
    const LogLine kNoTable = Error("RouteDelDefIPv4", "get route item error.");
};

TEST_F(RouteDelDefIPv4Test, DeletesThoseOfOneCard)
{
    EXPECT_TRUE(RouteDelDefIPv4("eth1"));
    EXPECT_EQ(kernel.routes, (Routes{kDefault0, kNet0}));
    EXPECT_EQ(Log(), (LogLines{Deletes(kDefault1), Deletes(kOtherDefault1)}));

    EXPECT_TRUE(RouteDelDefIPv4("eth"));
    EXPECT_TRUE(RouteDelDefIPv4("eth01"));
    EXPECT_EQ(kernel.routes, (Routes{kDefault0, kNet0}));
}

TEST_F(RouteDelDefIPv4Test, DeletesThoseOfAllCardsWithoutAName)
{
    EXPECT_TRUE(RouteDelDefIPv4(nullptr));
    EXPECT_EQ(kernel.routes, Routes{kNet0});
    EXPECT_EQ(Log(), (LogLines{Deletes(kDefault0), Deletes(kDefault1), Deletes(kOtherDefault1)}));
}

TEST_F(RouteDelDefIPv4Test, NothingToDeleteIsASuccess)
{
    kernel.routes = {};
    EXPECT_TRUE(RouteDelDefIPv4(nullptr));
    EXPECT_TRUE(RouteDelDefIPv4("eth0"));
    EXPECT_EQ(RouteRequests(), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(RouteDelDefIPv4Test, RouteWithoutAGatewayIsDeletedToo)
{
    const fake::Route direct{"0.0.0.0", "0.0.0.0", "0.0.0.0", "eth1"};
    kernel.routes = {direct};
    EXPECT_TRUE(RouteDelDefIPv4(nullptr));
    EXPECT_EQ(kernel.routes, Routes{});
    EXPECT_EQ(Log(), LogLines{Deletes(direct)});
}

TEST_F(RouteDelDefIPv4Test, StopsAtTheFirstFailure)
{
    Fail("ioctl SIOCDELRT", EPERM, 2);
    EXPECT_FALSE(RouteDelDefIPv4(nullptr));
    EXPECT_EQ(kernel.routes, (Routes{kNet0, kDefault1, kOtherDefault1}));
    EXPECT_EQ(Log(), (LogLines{Deletes(kDefault0), Deletes(kDefault1)} +
                      Refused("Route_DelIPv4Route", EPERM, kDefault1) +
                      LogLines{Error("RouteDelDefIPv4", "del def route 10.1.1.1 eth1 error.")}));
}

TEST_F(RouteDelDefIPv4Test, SixteenRowsAreLookedAt)
{
    kernel.routes = Nets(15);
    kernel.routes.push_back(kDefault0);
    kernel.routes.push_back(kDefault1);
    EXPECT_TRUE(RouteDelDefIPv4(nullptr));
    EXPECT_EQ(kernel.routes.size(), 16U);
    EXPECT_EQ(kernel.routes.back(), kDefault1);
}

TEST_F(RouteDelDefIPv4Test, UnreadableTableFailsForAllCardsWithoutTheSettings)
{
    Fail(kOpenTable4, EACCES);
    EXPECT_FALSE(RouteDelDefIPv4(nullptr));
    EXPECT_EQ(TraceOf({"open", "ioctl"}), Texts{kOpenTable4});
    EXPECT_EQ(Log(), (LogLines{CanNotOpen4(), kNoTable}));
}

TEST_F(RouteDelDefIPv4Test, UnreadableTableLeavesTheSavedRouteOfACard)
{
    Fail(kOpenTable4, EACCES);
    EXPECT_TRUE(RouteDelDefIPv4("eth1"));
    EXPECT_EQ(kernel.routes, (Routes{kDefault0, kNet0, kOtherDefault1}));
    EXPECT_EQ(Log(), (LogLines{CanNotOpen4(), kNoTable, Deletes(kDefault1)}));

    ClearLog();
    Fail(kOpenTable4, EACCES);
    EXPECT_FALSE(RouteDelDefIPv4("eth1"));
    EXPECT_EQ(Log(), (LogLines{CanNotOpen4(), kNoTable, Deletes(kDefault1)} +
                      Refused("Route_DelIPv4Route", ESRCH, kDefault1)));
}

TEST_F(RouteDelDefIPv4Test, UnreadableTableWithoutASavedGatewayFails)
{
    Put(CardFile("eth1"), "");
    Fail(kOpenTable4, EACCES);
    EXPECT_FALSE(RouteDelDefIPv4("eth1"));
    EXPECT_EQ(RouteRequests(), Texts{});
    EXPECT_EQ(Log(), (LogLines{CanNotOpen4(), kNoTable,
                               Error("RouteDelDefIPv4", "Can not get eth1 default gw.")}));
}

TEST_F(RouteDelDefIPv4Test, FailureIsAlwaysTold)
{
    bool result = false;
    FailEachCall([&] { result = RouteDelDefIPv4(nullptr); },
                 [&](const std::string& failed) {
                     const bool fatal = failed.rfind("open", 0) == 0 ||
                                        failed.rfind("socket", 0) == 0 ||
                                        failed.rfind("ioctl", 0) == 0;
                     EXPECT_EQ(result, !fatal);
                     EXPECT_EQ(LogOf("RouteDelDefIPv4").size(), fatal ? 1U : 0U);
                 },
                 kKept);
}

// ---- the IPv6 default route

class RouteAddDefIPv6Test : public DefaultRouteWorld {
protected:
    void SetUp() override
    {
        DefaultRouteWorld::SetUp();
        kernel.routes6 = {kDefault60, kNet6};
    }
};

TEST_F(RouteAddDefIPv6Test, ReplacesTheDefaultRoutesOfAllCards)
{
    EXPECT_TRUE(RouteAddDefIPv6("eth1"));
    EXPECT_EQ(kernel.routes6, (Routes6{kNet6, kDefault61}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(RouteAddDefIPv6Test, DoesNotLookForTheRouteFirst)
{
    Fail("ioctl SIOCDELRT", EPERM);
    EXPECT_FALSE(RouteAddDefIPv6("eth0"));
    EXPECT_EQ(RouteRequests(), (Texts{"ioctl SIOCDELRT", "ioctl SIOCADDRT"}));
    EXPECT_EQ(kernel.routes6, (Routes6{kDefault60, kNet6}));
    EXPECT_EQ(Log(), (Refused("Route_DelIPv6Route", EPERM, "Route_SetIPv6Route", kTexts60) +
                      LogLines{Error("RouteDelDefIPv6", "del def route fe80::1 eth0 error.")} +
                      Refused("Route_AddIPv6Route", EEXIST, "Route_SetIPv4Route", kTexts60)));
}

TEST_F(RouteAddDefIPv6Test, FailedDeletionDoesNotStopIt)
{
    Fail("ioctl SIOCDELRT", EPERM);
    EXPECT_TRUE(RouteAddDefIPv6("eth1"));
    EXPECT_EQ(kernel.routes6, (Routes6{kDefault60, kNet6, kDefault61}));
}

TEST_F(RouteAddDefIPv6Test, WithoutASavedGatewayNoDefaultRouteIsLeft)
{
    Remove(kFile61);
    EXPECT_FALSE(RouteAddDefIPv6("eth1"));
    EXPECT_EQ(kernel.routes6, Routes6{kNet6});
    EXPECT_EQ(Log(), LogLines{Error("RouteAddDefIPv6", "Can not get eth1 default gw.")});
}

TEST_F(RouteAddDefIPv6Test, ASavedTextOf47CharactersIsReadAndOneOf48IsNot)
{
    const std::string text(47, 'f');
    Put(kFile61, "GATEWAYIP = " + text + "\n");
    EXPECT_FALSE(RouteAddDefIPv6("eth1"));
    EXPECT_TRUE(Logged(Error("GetGatewayv6ByConfig", "gateway addr formate error " + text + ".")));
    Put(kFile61, "GATEWAYIP = f" + text + "\n");
    EXPECT_FALSE(RouteAddDefIPv6("eth1"));
    EXPECT_TRUE(
        Logged(Error("GetValueByKey", "value len is too small.[len:48,value:f" + text + "]")));
}

TEST_F(RouteAddDefIPv6Test, LongestGatewayFits)
{
    const std::string longest = "fe80:1111:2222:3333:4444:5555:192.168.111.222";
    Put(kFile61, Settings({"GATEWAYIP = " + longest}));
    EXPECT_TRUE(RouteAddDefIPv6("eth1"));
    EXPECT_EQ(kernel.routes6.back().gateway, "fe80:1111:2222:3333:4444:5555:c0a8:6fde");
}

TEST_F(RouteAddDefIPv6Test, NullIsRefusedInSilence)
{
    EXPECT_FALSE(RouteAddDefIPv6(nullptr));
    EXPECT_EQ(Trace(), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(RouteAddDefIPv6Test, SuccessMeansThatTheRouteIsThere)
{
    bool result = false;
    FailEachCall([&] { result = RouteAddDefIPv6("eth1"); },
                 [&](const std::string&) {
                     EXPECT_EQ(result, kernel.routes6.back() == kDefault61);
                     if (!result) {
                         EXPECT_FALSE(Log().empty());
                     }
                 },
                 kKept);
}

class RouteDelDefIPv6Test : public DefaultRouteWorld {
protected:
    void SetUp() override
    {
        DefaultRouteWorld::SetUp();
        kernel.routes6 = {kDefault60, kNet6, kDefault61};
    }
    const LogLine kNoTable = Error("RouteDelDefIPv6", "get route item error.");
};

TEST_F(RouteDelDefIPv6Test, DeletesThoseOfOneCard)
{
    EXPECT_TRUE(RouteDelDefIPv6("eth0"));
    EXPECT_EQ(kernel.routes6, (Routes6{kNet6, kDefault61}));
    EXPECT_EQ(Log(), LogLines{});

    EXPECT_TRUE(RouteDelDefIPv6("eth"));
    EXPECT_TRUE(RouteDelDefIPv6("eth01"));
    EXPECT_EQ(kernel.routes6, (Routes6{kNet6, kDefault61}));
}

TEST_F(RouteDelDefIPv6Test, DeletesThoseOfAllCardsWithoutAName)
{
    EXPECT_TRUE(RouteDelDefIPv6(nullptr));
    EXPECT_EQ(kernel.routes6, Routes6{kNet6});
}

TEST_F(RouteDelDefIPv6Test, AllWordsOfTheDestinationMustBeZero)
{
    const Routes6 others = {{"2001::", 16, "::", "eth0"},
                            {"0:0:1::", 48, "::", "eth0"},
                            {"::1:0:0:0", 80, "::", "eth0"},
                            {"::1", 128, "::", "eth0"}};
    kernel.routes6 = others;
    EXPECT_TRUE(RouteDelDefIPv6(nullptr));
    EXPECT_EQ(kernel.routes6, others);
}

TEST_F(RouteDelDefIPv6Test, NothingToDeleteIsASuccess)
{
    kernel.routes6 = {};
    EXPECT_TRUE(RouteDelDefIPv6(nullptr));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(RouteDelDefIPv6Test, StopsAtTheFirstFailure)
{
    Fail("ioctl SIOCDELRT", EPERM);
    EXPECT_FALSE(RouteDelDefIPv6(nullptr));
    EXPECT_EQ(kernel.routes6, (Routes6{kDefault60, kNet6, kDefault61}));
    EXPECT_EQ(RouteRequests(), Texts{"ioctl SIOCDELRT"});
    EXPECT_EQ(Log(), (Refused("Route_DelIPv6Route", EPERM, "Route_SetIPv6Route", kTexts60) +
                      LogLines{Error("RouteDelDefIPv6", "del def route fe80::1 eth0 error.")}));
}

TEST_F(RouteDelDefIPv6Test, SixteenRowsAreLookedAt)
{
    kernel.routes6.assign(15, kNet6);
    kernel.routes6.push_back(kDefault60);
    kernel.routes6.push_back(kDefault61);
    EXPECT_TRUE(RouteDelDefIPv6(nullptr));
    EXPECT_EQ(kernel.routes6.size(), 16U);
    EXPECT_EQ(kernel.routes6.back(), kDefault61);
}

TEST_F(RouteDelDefIPv6Test, UnreadableTableFailsForAllCards)
{
    Fail(kOpenTable6, EACCES);
    EXPECT_FALSE(RouteDelDefIPv6(nullptr));
    EXPECT_EQ(TraceOf({"open", "ioctl"}), Texts{kOpenTable6});
    EXPECT_EQ(Log(), (LogLines{CanNotOpen6(), kNoTable}));
}

TEST_F(RouteDelDefIPv6Test, UnreadableTableEndsInAnIPv4AdditionThatCannotParse)
{
    Fail(kOpenTable6, EACCES);
    EXPECT_FALSE(RouteDelDefIPv6("eth0"));
    EXPECT_EQ(RouteRequests(), Texts{});
    EXPECT_EQ(kernel.routes, Routes{});
    EXPECT_EQ(kernel.routes6, (Routes6{kDefault60, kNet6, kDefault61}));
    EXPECT_EQ(
        Log(),
        (LogLines{CanNotOpen6(), kNoTable, Adds({"0:0:0::0", "fe80::1", "0:0:0::0", "eth0"}),
                  Error("Route_FillRtentry", "incorrect addr.[0:0:0::0]"),
                  Error("Route_AddIPv4Route", "Route_FillRtentry error.dst:0:0:0::0 gw:fe80::1 "
                                              "mask:0:0:0::0 dev:eth0")}));
}

TEST_F(RouteDelDefIPv6Test, UnreadableTableWithoutASavedGatewayFails)
{
    Remove(kFile60);
    Fail(kOpenTable6, EACCES);
    EXPECT_FALSE(RouteDelDefIPv6("eth0"));
    EXPECT_EQ(Log(), (LogLines{CanNotOpen6(), kNoTable,
                               Error("RouteDelDefIPv6", "Can not get eth0 default gw.")}));
}

TEST_F(RouteDelDefIPv6Test, FailureIsAlwaysTold)
{
    bool result = false;
    FailEachCall([&] { result = RouteDelDefIPv6(nullptr); },
                 [&](const std::string& failed) {
                     const bool fatal = failed.rfind("open", 0) == 0 ||
                                        failed.rfind("socket", 0) == 0 ||
                                        failed.rfind("ioctl", 0) == 0;
                     EXPECT_EQ(result, !fatal);
                     EXPECT_EQ(LogOf("RouteDelDefIPv6").size(), fatal ? 1U : 0U);
                 },
                 kKept);
}

}  // namespace
