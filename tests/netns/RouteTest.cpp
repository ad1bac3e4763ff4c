// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Route.h"
#include "CommonApi.h"

#include "Device.h"

#include <algorithm>

#include <arpa/inet.h>

using namespace device;

namespace {

std::string Dotted(uint32_t address)
{
    char text[INET_ADDRSTRLEN] = {};
    inet_ntop(AF_INET, &address, text, sizeof(text));
    return text;
}

/// The IPv4 table as the library reads it: "10.0.0.0/255.255.255.0 via 0.0.0.0 dev eth0".
Texts Listed(int capacity = 64)
{
    std::vector<IPv4Route> rows(64);
    int count = capacity;
    EXPECT_TRUE(Route_GetIPv4Route(rows.data(), &count));
    Texts texts;
    for (int i = 0; i < count; ++i) {
        texts.push_back(Dotted(rows[i].dst) + "/" + Dotted(rows[i].mask) + " via " +
                        Dotted(rows[i].gw) + " dev " + rows[i].viaDev);
    }
    return texts;
}

/// Two cards with an address each, so that gateways behind them can be reached.
class RouteTest : public Device {
protected:
    void SetUp() override
    {
        Device::SetUp();
        AddCards(2);
        Must("ip link set eth0 up; ip addr add 10.0.0.2/24 dev eth0;"
             " ip link set eth1 up; ip addr add 10.0.1.2/24 dev eth1");
    }

    static void AddNets(int count)
    {
        std::string commands;
        for (int i = 0; i < count; ++i) {
            commands += "ip route add 172.16." + std::to_string(i) + ".0/24 dev eth1;";
        }
        Must(commands);
    }

    const Texts own = {"10.0.0.0/24 dev eth0", "10.0.1.0/24 dev eth1"};

    Texts With(const std::string& route) const
    {
        Texts all = own;
        all.push_back(route);
        std::sort(all.begin(), all.end());
        return all;
    }
};

TEST_F(RouteTest, NetHostAndGatewayRoutesReachTheTableAndLeaveIt)
{
    const struct {
        const char *dst, *gw, *mask, *expected;
    } rows[] = {
        {"172.16.0.0", "0.0.0.0", "255.255.0.0", "172.16.0.0/16 dev eth0"},
        {"172.16.0.0", "10.0.0.1", "255.255.0.0", "172.16.0.0/16 via 10.0.0.1 dev eth0"},
        {"172.16.0.9", "0.0.0.0", "255.255.255.255", "172.16.0.9 dev eth0"},
        {"0.0.0.0", "10.0.0.1", "0.0.0.0", "default via 10.0.0.1 dev eth0"},
    };
    for (const auto& row : rows) {
        EXPECT_TRUE(Route_AddIPv4Route(row.dst, row.gw, row.mask, "eth0"));
        EXPECT_EQ(Routes(), With(row.expected));
        EXPECT_TRUE(Route_DelIPv4Route(row.dst, row.gw, row.mask, "eth0"));
        EXPECT_EQ(Routes(), own);
    }
}

TEST_F(RouteTest, WhatTheKernelRefusesIsSaidWithItsReason)
{
    EXPECT_FALSE(Route_AddIPv4Route("172.16.0.1", "0.0.0.0", "255.255.0.0", "eth0"));
    EXPECT_FALSE(Route_AddIPv4Route("172.16.0.0", "10.0.9.1", "255.255.0.0", "eth0"));
    EXPECT_FALSE(Route_AddIPv4Route("172.16.0.0", "0.0.0.0", "255.255.0.0", "eth7"));
    EXPECT_FALSE(Route_DelIPv4Route("172.16.0.0", "0.0.0.0", "255.255.0.0", "eth0"));
    EXPECT_EQ(Routes(), own);
    EXPECT_EQ(LogOf("Route_SetIPv4Route"),
              (LogLines{Error("Route_SetIPv4Route", "iotcl failed.[Invalid argument]"),
                        Error("Route_SetIPv4Route", "iotcl failed.[Network is unreachable]"),
                        Error("Route_SetIPv4Route", "iotcl failed.[No such device]"),
                        Error("Route_SetIPv4Route", "iotcl failed.[No such process]")}));
}

TEST_F(RouteTest, RowsAreTheKernels)
{
    Must("ip route add default via 10.0.1.1; ip route add 172.16.0.9 via 10.0.0.1");
    EXPECT_EQ(Listed(), (Texts{"0.0.0.0/0.0.0.0 via 10.0.1.1 dev eth1",
                               "10.0.0.0/255.255.255.0 via 0.0.0.0 dev eth0",
                               "10.0.1.0/255.255.255.0 via 0.0.0.0 dev eth1",
                               "172.16.0.9/255.255.255.255 via 10.0.0.1 dev eth0"}));
}

TEST_F(RouteTest, EveryReadIsFresh)
{
    for (int round = 0; round < 5; ++round) {
        ASSERT_EQ(Listed(1).size(), 1U);  // stops early, which must not keep the rest for later
        Must("ip route add 172.16.0.0/16 dev eth0");
        EXPECT_EQ(Listed().size(), 3U);
        EXPECT_TRUE(Route_IsExistInSys("172.16.5.5", "0.0.0.0", "255.255.0.0", "eth0"));
        Must("ip route del 172.16.0.0/16");
        EXPECT_EQ(Listed().size(), 2U);
        EXPECT_FALSE(Route_IsExistInSys("172.16.5.5", "0.0.0.0", "255.255.0.0", "eth0"));
    }
}

TEST_F(RouteTest, ALongTableIsReadWholeAndCutAtTheCapacity)
{
    AddNets(60);
    const Texts all = Listed();
    EXPECT_EQ(all.size(), 62U);
    EXPECT_EQ(all.back(), "172.16.59.0/255.255.255.0 via 0.0.0.0 dev eth1");
    EXPECT_EQ(Listed(32), Texts(all.begin(), all.begin() + 32));
    EXPECT_EQ(Listed(0), Texts{});
}

TEST_F(RouteTest, OnlyTheFirstSixteenRowsCountAsThere)
{
    AddNets(20);
    ASSERT_EQ(Listed()[15], "172.16.13.0/255.255.255.0 via 0.0.0.0 dev eth1");
    EXPECT_TRUE(Route_IsExistInSys("172.16.13.0", "0.0.0.0", "255.255.255.0", "eth1"));
    EXPECT_FALSE(Route_IsExistInSys("172.16.14.0", "0.0.0.0", "255.255.255.0", "eth1"));
    // The kernel knows better than the short look.
    EXPECT_FALSE(RouteAddIPv4("172.16.14.0", "0.0.0.0", "255.255.255.0", "eth1"));
    EXPECT_EQ(LogOf("Route_SetIPv4Route"),
              LogLines{Error("Route_SetIPv4Route", "iotcl failed.[File exists]")});
}

TEST_F(RouteTest, AnIPv4RouteThatIsThereIsAFailedAddition)
{
    EXPECT_TRUE(RouteAddIPv4("172.16.0.0", "0.0.0.0", "255.255.0.0", "eth0"));
    EXPECT_FALSE(RouteAddIPv4("172.16.0.0", "0.0.0.0", "255.255.0.0", "eth0"));
    EXPECT_TRUE(RouteAddIPv4("172.16.0.0", "0.0.0.0", "255.255.0.0", "eth1"));
    EXPECT_EQ(LogOf("Route_SetIPv4Route"), LogLines{});
    Texts expected = With("172.16.0.0/16 dev eth0");
    expected.emplace_back("172.16.0.0/16 dev eth1");
    EXPECT_EQ(Routes(), expected);
}

TEST_F(RouteTest, DefaultRoutesGoAllOrOfOneCard)
{
    Must("ip route add default via 10.0.0.1; ip route append default via 10.0.1.1");
    EXPECT_TRUE(RouteDelDefIPv4("eth1"));
    EXPECT_EQ(Routes(), With("default via 10.0.0.1 dev eth0"));
    Must("ip route append default via 10.0.1.1");
    EXPECT_TRUE(RouteDelDefIPv4(nullptr));
    EXPECT_EQ(Routes(), own);
    EXPECT_TRUE(RouteDelDefIPv4(nullptr));
}

TEST_F(RouteTest, RoutesOfACardGoAndItsDefaultRouteStays)
{
    Must("ip route add default via 10.0.1.1; ip route add 172.16.0.0/16 via 10.0.1.9");
    EXPECT_TRUE(RouteDelAllIPv4("eth1"));
    EXPECT_EQ(Routes(), (Texts{"10.0.0.0/24 dev eth0", "default via 10.0.1.1 dev eth1"}));
}

TEST_F(RouteTest, AllRoutesGoWithoutRegardToTheCard)
{
    Must("ip route add default via 10.0.1.1");
    EXPECT_TRUE(RouteDelAllRoute());
    EXPECT_EQ(Routes(), Texts{});
}

class DefaultCardTest : public RouteTest {
protected:
    void SetUp() override
    {
        RouteTest::SetUp();
        Put(CardFile("eth0"), Lines({"GATEWAYIP = 10.0.0.1", "DEFAULT_ETH = eth0", "PRIO = 0"}));
        Put(CardFile("eth1"), Lines({"GATEWAYIP = 10.0.1.1", "PRIO = 1"}));
    }

    static std::string DefaultCard()
    {
        char name[16] = {};
        return NetGetDefEth(name, sizeof(name)) ? name : "(none)";
    }
};

TEST_F(DefaultCardTest, IsTheOneOfTheKernelsDefaultRoute)
{
    Must("ip route add default via 10.0.1.1");
    EXPECT_EQ(DefaultCard(), "eth1");
}

TEST_F(DefaultCardTest, AskingForItHealsALostDefaultRoute)
{
    EXPECT_EQ(DefaultCard(), "eth0");
    EXPECT_EQ(Routes(), With("default via 10.0.0.1 dev eth0"));
    EXPECT_EQ(LogOf("NetGetDefEth"),
              (LogLines{Error("NetGetDefEth", "no default route in route table!"),
                        Info("NetGetDefEth",
                             "recover default route to dev eth0 gateway 10.0.0.1 success.")}));
}

TEST_F(DefaultCardTest, MovesWithItsRouteAndIsSaved)
{
    Must("ip route add default via 10.0.0.1");
    EXPECT_TRUE(NetSetDefEth("eth1"));
    EXPECT_EQ(Routes(), With("default via 10.0.1.1 dev eth1"));
    EXPECT_EQ(DefaultCard(), "eth1");
    EXPECT_EQ(Get(CardFile("eth0")),
              Lines({"GATEWAYIP = 10.0.0.1", "DEFAULT_ETH = eth1", "PRIO = 1"}));
    EXPECT_EQ(Get(CardFile("eth1")), Lines({"GATEWAYIP = 10.0.1.1", "PRIO = 0"}));
}

TEST_F(DefaultCardTest, WithoutASavedGatewayThePresentRouteStays)
{
    Must("ip route add default via 10.0.0.1");
    Put(CardFile("eth1"), "");
    EXPECT_FALSE(NetSetDefEth("eth1"));
    EXPECT_EQ(Routes(), With("default via 10.0.0.1 dev eth0"));
}

TEST_F(DefaultCardTest, AGatewayOutOfReachLeavesNoDefaultRouteAndTheNextQuestionHealsIt)
{
    Must("ip route add default via 10.0.0.1");
    Put(CardFile("eth1"), Lines({"GATEWAYIP = 10.9.9.9"}));
    EXPECT_FALSE(NetSetDefEth("eth1"));
    EXPECT_EQ(Routes(), own);
    Put(CardFile("eth1"), Lines({"GATEWAYIP = 10.0.1.1"}));
    EXPECT_EQ(DefaultCard(), "eth1");
    EXPECT_EQ(Routes(), With("default via 10.0.1.1 dev eth1"));
}

class RouteRecordTest : public RouteTest {};

TEST_F(RouteRecordTest, ARecordAddsListsAndDeletes)
{
    NetRouteTableInfo route{};
    inet_pton(AF_INET, "172.16.0.0", &route.dst.addrIPv4);
    inet_pton(AF_INET, "10.0.0.1", &route.gw.addrIPv4);
    inet_pton(AF_INET, "255.255.0.0", &route.mask);
    snprintf(route.viaDev, sizeof(route.viaDev), "eth0");
    EXPECT_TRUE(RouteAdd(&route));
    EXPECT_EQ(Routes(), With("172.16.0.0/16 via 10.0.0.1 dev eth0"));

    NetRouteTableInfo rows[8] = {};
    int count = 8;
    EXPECT_TRUE(RouteGetAllInfo(rows, &count));
    ASSERT_EQ(count, 3);
    EXPECT_EQ(rows[2].dst.addrIPv4, route.dst.addrIPv4);
    EXPECT_EQ(rows[2].gw.addrIPv4, route.gw.addrIPv4);
    EXPECT_EQ(rows[2].mask, route.mask);
    EXPECT_STREQ(rows[2].viaDev, "eth0");

    EXPECT_TRUE(RouteDel(&route));
    EXPECT_EQ(Routes(), own);
}

}  // namespace
