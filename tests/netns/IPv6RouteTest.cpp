// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "CommonApi.h"
#include "Net3.h"
#include "Route.h"

#include "Device.h"

#include <algorithm>
#include <cstring>

#include <arpa/inet.h>
#include <unistd.h>

using namespace device;

namespace {

std::string Text6(const uint32_t (&address)[4])
{
    char text[INET6_ADDRSTRLEN] = {};
    inet_ntop(AF_INET6, address, text, sizeof(text));
    return text;
}

/// The IPv6 table as the library reads it: "2001:db8::/64 via :: dev eth0".
Texts Listed6()
{
    std::vector<IPv6Route> rows(64);
    int count = 64;
    EXPECT_TRUE(Route_GetIPv6Route(rows.data(), &count));
    Texts texts;
    for (int i = 0; i < count; ++i) {
        texts.push_back(Text6(rows[i].dst) + "/" + std::to_string(rows[i].perfix) + " via " +
                        Text6(rows[i].gw) + " dev " + rows[i].viaDev);
    }
    return texts;
}

/// The nets among them: not what the kernel keeps for itself, and not the cards' own addresses.
Texts ListedNets6()
{
    Texts nets;
    for (const std::string& row : Listed6()) {
        if (row.rfind("2001:", 0) == 0 && row.find("/128 ") == std::string::npos) {
            nets.push_back(row);
        }
    }
    return nets;
}

class Route6Test : public Device {
protected:
    void SetUp() override
    {
        Device::SetUp();
        AddCards(2);
        Must("ip link set eth0 up; ip -6 addr add 2001:db8::2/64 dev eth0 nodad;"
             " ip link set eth1 up; ip -6 addr add 2001:db8:1::2/64 dev eth1 nodad");
    }

    const Texts own = {"2001:db8:1::/64 dev eth1", "2001:db8::/64 dev eth0"};
};

TEST_F(Route6Test, RoutesReachTheTableAndLeaveIt)
{
    EXPECT_TRUE(RouteAddIPv6("2001:db8:5::", "2001:db8::1", "48", "eth0"));
    EXPECT_TRUE(RouteAddIPv6("2001:db8:6::9", "::", "128", "eth0"));
    EXPECT_EQ(Routes6(),
              (Texts{"2001:db8:1::/64 dev eth1", "2001:db8:5::/48 via 2001:db8::1 dev eth0",
                     "2001:db8:6::9 dev eth0", "2001:db8::/64 dev eth0"}));
    EXPECT_TRUE(RouteDelIPv6("2001:db8:5::", "2001:db8::1", "48", "eth0"));
    EXPECT_TRUE(RouteDelIPv6("2001:db8:6::9", "::", "128", "eth0"));
    EXPECT_EQ(Routes6(), own);
}

TEST_F(Route6Test, RowsAreTheKernelsAndEveryReadIsFresh)
{
    const Texts rows = {"2001:db8::/64 via :: dev eth0", "2001:db8:1::/64 via :: dev eth1"};
    for (int round = 0; round < 3; ++round) {
        EXPECT_TRUE(RouteAddIPv6("2001:db8:5::", "2001:db8::1", "48", "eth0"));
        EXPECT_EQ(ListedNets6(),
                  (Texts{rows[0], rows[1], "2001:db8:5::/48 via 2001:db8::1 dev eth0"}));
        EXPECT_TRUE(RouteDelIPv6("2001:db8:5::", "2001:db8::1", "48", "eth0"));
        EXPECT_EQ(ListedNets6(), rows);
    }
}

TEST_F(Route6Test, ARouteThatIsThereIsASuccess)
{
    EXPECT_TRUE(RouteAddIPv6("2001:db8:5::", "2001:db8::1", "48", "eth0"));
    const Texts before = Routes6();
    EXPECT_TRUE(RouteAddIPv6("2001:db8:5::", "2001:db8::1", "48", "eth0"));
    EXPECT_EQ(Routes6(), before);
    EXPECT_EQ(LogOf("Route_SetIPv6Route"), LogLines{});
}

TEST_F(Route6Test, TheDefaultRouteMovesBetweenCards)
{
    Put(std::string(kConfig) + "/networkip6", Lines({"GATEWAYIP = 2001:db8::1"}));
    Put(std::string(kConfig) + "/networkip61", Lines({"GATEWAYIP = 2001:db8:1::1"}));
    EXPECT_TRUE(RouteAddDefIPv6("eth0"));
    EXPECT_EQ(Routes6().back(), "default via 2001:db8::1 dev eth0");
    EXPECT_TRUE(RouteAddDefIPv6("eth1"));
    EXPECT_EQ(Routes6().back(), "default via 2001:db8:1::1 dev eth1");
    EXPECT_TRUE(RouteDelDefIPv6(nullptr));
    EXPECT_EQ(Routes6(), own);
}

// ---- rows that no route request can change: the table lists every table of the kernel, and what
// the kernel keeps for a card's own addresses under the card's name

class ForeignRowTest : public Route6Test {
protected:
    static bool IsListed(const std::string& row)
    {
        const Texts rows = Listed6();
        return std::find(rows.begin(), rows.end(), row) != rows.end();
    }

    /// The kernel makes a card's own rows when it has seen the link come up, which on a busy
    /// machine is after `ip` has ended.
    static void AwaitRow(const std::string& row)
    {
        while (!IsListed(row)) usleep(10'000);
    }

    void SetUp() override
    {
        Route6Test::SetUp();
        for (const char* row :
             {"2001:db8::2/128 via :: dev eth0", "2001:db8:1::2/128 via :: dev eth1",
              "ff00::/8 via :: dev eth0", "ff00::/8 via :: dev eth1"}) {
            AwaitRow(row);
        }
    }

    static LogLine CannotDelete(const std::string& route)
    {
        return Error("RouteDelAllIPv6", "del def route " + route + " error.");
    }

    /// The default routes of the main table.
    static Texts Defaults()
    {
        Texts defaults;
        for (const std::string& route : Routes6()) {
            if (route.rfind("default", 0) == 0) defaults.push_back(route);
        }
        return defaults;
    }
};

TEST_F(ForeignRowTest, RowsOfOtherTablesAreListed)
{
    Must("ip -6 route add 2001:db8:9::/48 dev eth0 table 100");
    EXPECT_TRUE(IsListed("2001:db8:9::/48 via :: dev eth0"));
    EXPECT_EQ(Routes6(), own);
}

TEST_F(ForeignRowTest, ACardsOwnAddressesAndGroupsAreListedUnderItsName)
{
    EXPECT_TRUE(IsListed("2001:db8::2/128 via :: dev eth0"));
    EXPECT_TRUE(IsListed("ff00::/8 via :: dev eth0"));
    EXPECT_TRUE(IsListed("2001:db8:1::2/128 via :: dev eth1"));
}

TEST_F(ForeignRowTest, RoutesOfACardGoButItsOwnAddressesStopTheDeletion)
{
    Must("ip -6 route add default via 2001:db8:1::1; ip -6 route add 2001:db8:7::/48 dev eth1");
    EXPECT_FALSE(RouteDelAllIPv6("eth1"));
    EXPECT_EQ(Routes6(), (Texts{"2001:db8::/64 dev eth0", "default via 2001:db8:1::1 dev eth1"}));
    EXPECT_EQ(Addresses6("eth1"), Texts{"2001:db8:1::2/64"});
    EXPECT_EQ(LogOf("RouteDelAllIPv6"),
              LogLines{CannotDelete("dst:2001:db8:1::2 mask:128 gw::: dev:eth1")});
}

TEST_F(ForeignRowTest, TheSlotThatDeletesAllRoutesOfACardFailsTheSameWay)
{
    char name[] = "eth1";
    NetInterfaceDesc desc{};
    desc.name = name;
    NetInterface* card = nullptr;
    ASSERT_EQ(createNetInterface(&desc, &card), 0);
    EXPECT_EQ(card->delRouteIpv6(card, nullptr, -1), -1);
    EXPECT_EQ(Routes6(), Texts{"2001:db8::/64 dev eth0"});
}

TEST_F(ForeignRowTest, ACardThatIsDownHasNoneAndItsDeletionIsASuccess)
{
    Must("ip link set eth1 down");
    EXPECT_TRUE(RouteDelAllIPv6("eth1"));
    EXPECT_EQ(Routes6(), Texts{"2001:db8::/64 dev eth0"});
}

TEST_F(ForeignRowTest, ARouteOfAnotherTableStopsTheDeletionBeforeTheMainTable)
{
    Must("ip -6 route add 2001:db8:9::/48 dev eth1 table 100");
    EXPECT_FALSE(RouteDelAllIPv6("eth1"));
    EXPECT_EQ(Routes6(), own);
    EXPECT_EQ(LogOf("RouteDelAllIPv6"),
              LogLines{CannotDelete("dst:2001:db8:9:: mask:48 gw::: dev:eth1")});
}

TEST_F(ForeignRowTest, ADefaultRouteOfAnotherTableStopsTheDeletionOfDefaultRoutes)
{
    Must("ip -6 route add default via 2001:db8::1; "
         "ip -6 route add default via 2001:db8::9 dev eth0 table 100");
    EXPECT_FALSE(RouteDelDefIPv6(nullptr));
    EXPECT_EQ(Defaults(), Texts{"default via 2001:db8::1 dev eth0"});
    EXPECT_EQ(LogOf("RouteDelDefIPv6"),
              LogLines{Error("RouteDelDefIPv6", "del def route 2001:db8::9 eth0 error.")});
    EXPECT_TRUE(RouteDelDefIPv6("eth1"));  // its rows alone are looked at
}

TEST_F(ForeignRowTest, ADefaultRouteOfAnotherTableLeavesTheOldOneBesideTheNew)
{
    Put(std::string(kConfig) + "/networkip61", Lines({"GATEWAYIP = 2001:db8:1::1"}));
    Must("ip -6 route add default via 2001:db8::1 metric 2048; "
         "ip -6 route add default via 2001:db8::9 dev eth0 table 100");
    EXPECT_TRUE(RouteAddDefIPv6("eth1"));
    EXPECT_EQ(Defaults(),
              (Texts{"default via 2001:db8:1::1 dev eth1", "default via 2001:db8::1 dev eth0"}));
}

}  // namespace
