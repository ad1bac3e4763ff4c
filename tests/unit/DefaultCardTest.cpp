// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The default card: how it is found and changed, and its route put back.

#include "DefaultRouteWorld.h"

using namespace fake;

namespace {

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

}  // namespace
