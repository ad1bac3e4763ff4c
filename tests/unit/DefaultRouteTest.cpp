// The default card, and how its route is found, moved, put back and deleted.

#include "CommonApi.h"

#include "RouteWorld.h"

#include <cstring>

using namespace fake;

namespace {

const fake::Route kNet0{"192.168.1.0", "0.0.0.0", "255.255.255.0", "eth0"};
const fake::Route kNet1{"10.1.1.0", "0.0.0.0", "255.255.255.0", "eth1"};
const fake::Route kDefault0{"0.0.0.0", "192.168.1.1", "0.0.0.0", "eth0"};
const fake::Route kDefault1{"0.0.0.0", "10.1.1.1", "0.0.0.0", "eth1"};
const fake::Route kOtherDefault1{"0.0.0.0", "10.1.1.9", "0.0.0.0", "eth1"};

const fake::Route6 kNet6{"2001:db8::", 64, "::", "eth0"};
const fake::Route6 kDefault60{"::", 0, "fe80::1", "eth0"};
const fake::Route6 kDefault61{"::", 0, "fe80::2", "eth1"};

const std::string kFile60 = "/mnt/mtd/Config/networkip6";
const std::string kFile61 = "/mnt/mtd/Config/networkip61";

const Texts kTexts60 = {"0:0:0::0", "fe80::1", "0:0:0::0", "eth0"};

/// Two cards with saved gateways of both families; eth0 is the saved default card.
class DefaultRouteWorld : public RouteWorld {
protected:
    void SetUp() override
    {
        RouteWorld::SetUp();
        Put(CardFile("eth0"), Settings({"GATEWAYIP = 192.168.1.1", "DEFAULT_ETH = eth0"}));
        Put(CardFile("eth1"), Settings({"GATEWAYIP = 10.1.1.1"}));
        Put(kFile60, Settings({"GATEWAYIP = fe80::1"}));
        Put(kFile61, Settings({"GATEWAYIP = fe80::2"}));
    }

    /// As many rows as asked for, none of them a default route.
    static Routes Nets(int count)
    {
        Routes nets;
        for (int i = 1; i <= count; ++i) {
            nets.push_back(
                {"172.16." + std::to_string(i) + ".0", "0.0.0.0", "255.255.255.0", "eth1"});
        }
        return nets;
    }
};

// ---- which card is it?

class NetGetDefEthTest : public DefaultRouteWorld {
protected:
    const LogLine kNone = Error("NetGetDefEth", "no default route in route table!");
    char name[16] = {};
};

TEST_F(NetGetDefEthTest, CardOfTheFirstRowWithDestinationZero)
{
    kernel.routes = {kNet1, {"0.0.0.0", "0.0.0.0", "128.0.0.0", "eth1"}, kDefault0};
    EXPECT_TRUE(NetGetDefEth(name, sizeof(name)));
    EXPECT_STREQ(name, "eth1");
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(RouteRequests(), Texts{});
}

TEST_F(NetGetDefEthTest, NameIsCutToItsBuffer)
{
    kernel.routes = {kDefault1};
    char text[8] = "xxxxxxx";
    EXPECT_TRUE(NetGetDefEth(text, 4));
    EXPECT_STREQ(text, "eth");
    EXPECT_STREQ(text + 4, "xxx");

    EXPECT_TRUE(NetGetDefEth(text, 1));
    EXPECT_STREQ(text, "");
    EXPECT_STREQ(text + 1, "th");

    EXPECT_TRUE(NetGetDefEth(text, sizeof(text)));
    EXPECT_STREQ(text, "eth1");
}

TEST_F(NetGetDefEthTest, NothingIsWrittenWithoutRoom)
{
    kernel.routes = {kDefault1};
    char text[8] = "xxxxxxx";
    EXPECT_FALSE(NetGetDefEth(text, 0));
    EXPECT_FALSE(NetGetDefEth(text, -5));
    EXPECT_FALSE(NetGetDefEth(nullptr, 16));
    EXPECT_STREQ(text, "xxxxxxx");
    EXPECT_EQ(Trace(), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NetGetDefEthTest, TenthRowIsSeen)
{
    kernel.routes = Nets(9);
    kernel.routes.push_back(kDefault1);
    EXPECT_TRUE(NetGetDefEth(name, sizeof(name)));
    EXPECT_STREQ(name, "eth1");
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NetGetDefEthTest, EleventhRowCountsAsMissingAndFailsItsRepair)
{
    kernel.routes = Nets(10);
    kernel.routes.push_back(kDefault0);
    EXPECT_TRUE(NetGetDefEth(name, sizeof(name)));
    EXPECT_STREQ(name, "eth0");
    EXPECT_EQ(RouteRequests(), Texts{});
    EXPECT_EQ(Log(), (LogLines{kNone, ::Exists(kDefault0),
                               Error("NetGetDefEth",
                                     "recover default route to dev eth0 gateway 192.168.1.1 "
                                     "failed!!!")}));
}

TEST_F(NetGetDefEthTest, AskingPutsALostRouteBack)
{
    kernel.routes = {kNet0};
    EXPECT_TRUE(NetGetDefEth(name, sizeof(name)));
    EXPECT_STREQ(name, "eth0");
    EXPECT_EQ(kernel.routes, (Routes{kNet0, kDefault0}));
    EXPECT_EQ(Log(), (LogLines{kNone, Adds(kDefault0),
                               Info("NetGetDefEth", "recover default route to dev eth0 gateway "
                                                    "192.168.1.1 success.")}));

    ClearLog();
    EXPECT_TRUE(NetGetDefEth(name, sizeof(name)));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NetGetDefEthTest, NameIsGivenAlsoWhenTheKernelRefusesTheRoute)
{
    Fail("ioctl SIOCADDRT", ENETUNREACH);
    EXPECT_TRUE(NetGetDefEth(name, sizeof(name)));
    EXPECT_STREQ(name, "eth0");
    EXPECT_EQ(kernel.routes, Routes{});
    EXPECT_EQ(Log(), (LogLines{kNone, Adds(kDefault0)} +
                      Refused("Route_AddIPv4Route", ENETUNREACH, kDefault0) +
                      LogLines{Error("NetGetDefEth", "recover default route to dev eth0 gateway "
                                                     "192.168.1.1 failed!!!")}));
}

TEST_F(NetGetDefEthTest, WithoutASavedCardThereIsNoName)
{
    Put(CardFile("eth0"), Settings({"GATEWAYIP = 192.168.1.1"}));
    EXPECT_FALSE(NetGetDefEth(name, sizeof(name)));
    EXPECT_EQ(RouteRequests(), Texts{});
    EXPECT_EQ(Log(), (LogLines{kNone, Error("GetDefaultEthByConfig",
                                            "can not find default eth in config")}));
}

TEST_F(NetGetDefEthTest, WithoutASavedGatewayItFails)
{
    Put(CardFile("eth0"), Settings({"DEFAULT_ETH = eth0"}));
    EXPECT_FALSE(NetGetDefEth(name, sizeof(name)));
    EXPECT_EQ(RouteRequests(), Texts{});
    EXPECT_EQ(Log(), (LogLines{kNone, Error("NetGetDefEth", "Get eth0 gateway by config error.")}));
}

TEST_F(NetGetDefEthTest, UnreadableTableGivesTheSavedCardAndRepairsNothing)
{
    const LogLines unreadable = {CanNotOpen4(),
                                 Error("NetGetDefEth", "get defualt eth from route table error")};
    Fail(kOpenTable4, EACCES);
    EXPECT_TRUE(NetGetDefEth(name, sizeof(name)));
    EXPECT_STREQ(name, "eth0");
    EXPECT_EQ(RouteRequests(), Texts{});
    EXPECT_EQ(Log(), unreadable);

    ClearLog();
    Put(CardFile("eth0"), "");
    Fail(kOpenTable4, EACCES);
    EXPECT_FALSE(NetGetDefEth(name, sizeof(name)));
    EXPECT_EQ(Log(), unreadable + LogLines{Error("GetDefaultEthByConfig",
                                                 "can not find default eth in config")});
}

TEST_F(NetGetDefEthTest, ResultSaysOnlyThatThereIsAName)
{
    bool result = false;
    FailEachCall(
        [&] {
            memset(name, 0, sizeof(name));
            result = NetGetDefEth(name, sizeof(name));
        },
        [&](const std::string& failed) {
            const bool kernelCall =
                failed.rfind("socket", 0) == 0 || failed.rfind("ioctl", 0) == 0 ||
                failed.rfind("fcntl F_SETFD", 0) == 0 || failed.rfind("open /proc", 0) == 0;
            if (kernelCall) {
                EXPECT_TRUE(result);
            }
            if (result) {
                EXPECT_STREQ(name, "eth0");
            }
            const bool added = kernel.routes == Routes{kDefault0};
            EXPECT_EQ(added,
                      Logged(Info("NetGetDefEth", "recover default route to dev eth0 gateway "
                                                  "192.168.1.1 success.")));
        },
        kKept);
}

// ---- making a card the default card

class NetSetDefEthTest : public DefaultRouteWorld {
protected:
    void SetUp() override
    {
        DefaultRouteWorld::SetUp();
        kernel.routes = {kNet0, kDefault0, kOtherDefault1, kNet1};
    }

    /// What is saved once eth1 is the default card.
    static void ExpectSaved()
    {
        EXPECT_EQ(Get(CardFile("eth0")),
                  Settings({"GATEWAYIP = 192.168.1.1", "DEFAULT_ETH = eth1", "PRIO = 1"}));
        EXPECT_EQ(Get(CardFile("eth1")), Settings({"GATEWAYIP = 10.1.1.1", "PRIO = 0"}));
    }
};

TEST_F(NetSetDefEthTest, SavesTheCardAndMovesTheRoute)
{
    EXPECT_TRUE(NetSetDefEth("eth1"));
    ExpectSaved();
    EXPECT_EQ(kernel.routes, (Routes{kNet0, kNet1, kDefault1}));
    EXPECT_EQ(Log(), (LogLines{Deletes(kDefault0), Deletes(kOtherDefault1), Adds(kDefault1)}));
}

TEST_F(NetSetDefEthTest, SavesBeforeTheKernelIsTouched)
{
    OnCall("ioctl SIOCDELRT", [] { ExpectSaved(); });
    EXPECT_TRUE(NetSetDefEth("eth1"));
    EXPECT_EQ(RouteRequests(), (Texts{"ioctl SIOCDELRT", "ioctl SIOCDELRT", "ioctl SIOCADDRT"}));
}

TEST_F(NetSetDefEthTest, UnknownCardChangesNothing)
{
    EXPECT_FALSE(NetSetDefEth("eth9"));
    EXPECT_FALSE(NetSetDefEth(nullptr));
    EXPECT_EQ(Get(CardFile("eth0")), Settings({"GATEWAYIP = 192.168.1.1", "DEFAULT_ETH = eth0"}));
    EXPECT_EQ(RouteRequests(), Texts{});
    EXPECT_EQ(Log(), UnknownCard("eth9"));
}

TEST_F(NetSetDefEthTest, FailedSaveDoesNotStopTheRoute)
{
    Fail("opendir", EACCES);
    EXPECT_TRUE(NetSetDefEth("eth1"));
    EXPECT_EQ(kernel.routes, (Routes{kNet0, kNet1, kDefault1}));
    EXPECT_EQ(Log(), (LogLines{Error("GetAllNetworkFile", "can not open /mnt/mtd/Config"),
                               Error("NetSetDefEth", "save default eth eth1 to config failed."),
                               Deletes(kDefault0), Deletes(kOtherDefault1), Adds(kDefault1)}));
}

TEST_F(NetSetDefEthTest, WithoutASavedGatewayThePresentRouteStays)
{
    Put(CardFile("eth1"), "");
    const Routes before = kernel.routes;
    EXPECT_FALSE(NetSetDefEth("eth1"));
    EXPECT_EQ(kernel.routes, before);
    EXPECT_EQ(Get(CardFile("eth1")), Settings({"PRIO = 0"}));
    EXPECT_EQ(Log(), LogLines{Error("NetSetDefEth", "Get eth1 gateway by config error.")});
}

TEST_F(NetSetDefEthTest, RefusedRouteFailsAndNothingIsTakenBack)
{
    Fail("ioctl SIOCADDRT", ENETUNREACH);
    EXPECT_FALSE(NetSetDefEth("eth1"));
    ExpectSaved();
    EXPECT_EQ(kernel.routes, (Routes{kNet0, kNet1}));
}

TEST_F(NetSetDefEthTest, OnlySavesOnceTheRouteIsTakenAway)
{
    EXPECT_TRUE(RouteControl(1));
    const Routes before = kernel.routes;
    EXPECT_TRUE(NetSetDefEth("eth1"));
    ExpectSaved();
    EXPECT_EQ(kernel.routes, before);
    EXPECT_EQ(RouteRequests(), Texts{});
    EXPECT_EQ(Log(), LogLines{});

    Put(CardFile("eth1"), "");  // a gateway is not asked for
    EXPECT_TRUE(NetSetDefEth("eth1"));
    EXPECT_EQ(Log(), LogLines{});

    Fail("opendir", EACCES);
    EXPECT_FALSE(NetSetDefEth("eth1"));
    EXPECT_EQ(LogOf("NetSetDefEth"),
              LogLines{Error("NetSetDefEth", "save default eth eth1 to config failed.")});
    EXPECT_EQ(kernel.routes, before);
}

TEST_F(NetSetDefEthTest, SuccessMeansThatTheRouteIsThere)
{
    bool result = false;
    FailEachCall([&] { result = NetSetDefEth("eth1"); },
                 [&](const std::string&) {
                     Routes defaults;
                     for (const auto& route : kernel.routes) {
                         if (route.destination == "0.0.0.0") defaults.push_back(route);
                     }
                     const bool moved = !defaults.empty() && defaults.back() == kDefault1;
                     EXPECT_EQ(result, moved);
                 },
                 kKept);
}

class RouteControlTest : public DefaultRouteWorld {};

TEST_F(RouteControlTest, OnlyOneTakesTheRouteAway)
{
    for (const int disable : {0, 2, -1}) EXPECT_TRUE(RouteControl(disable));
    EXPECT_TRUE(NetSetDefEth("eth1"));
    EXPECT_EQ(kernel.routes, Routes{kDefault1});
}

TEST_F(RouteControlTest, NothingGivesItBack)
{
    EXPECT_TRUE(RouteControl(1));
    for (const int disable : {0, 2, -1, 1}) EXPECT_TRUE(RouteControl(disable));
    EXPECT_TRUE(NetSetDefEth("eth1"));
    EXPECT_EQ(kernel.routes, Routes{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(RouteControlTest, OtherOperationsDoNotObey)
{
    EXPECT_TRUE(RouteControl(1));
    EXPECT_TRUE(RouteAddDefIPv4("eth1"));
    EXPECT_EQ(kernel.routes, Routes{kDefault1});
    EXPECT_TRUE(RouteDelDefIPv4("eth1"));
    EXPECT_EQ(kernel.routes, Routes{});
    char name[16];
    EXPECT_TRUE(NetGetDefEth(name, sizeof(name)));
    EXPECT_EQ(kernel.routes, Routes{kDefault0});
}

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
