// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Routes of an interface object: what is asked of the operations below, by what the card is.

#include "NetApi3_0.h"

#include "NetApi3Below.h"
#include "fake/World.h"

using namespace fake;

namespace {

class RouteSlotTest : public World {
protected:
    void SetUp() override
    {
        World::SetUp();
        below::Reset();
        card = Object("eth0");
    }

    static NetInterface* Object(const char* name)
    {
        kernel.Add(name);
        NetInterfaceDesc desc{};
        desc.name = name;
        NetInterface* object = nullptr;
        EXPECT_EQ(createNetInterface(&desc, &object), 0);
        below::asked.clear();
        ClearLog();
        return object;
    }

    /// What is asked of the table, behind the questions for the card's own settings.
    static std::string LastAsked() { return below::asked.empty() ? "" : below::asked.back(); }

    static LogLine Malformed(const std::string& operation, const std::string& both)
    {
        return Error(operation, "addr error [" + both + "]");
    }

    NetInterface* card = nullptr;
};

// ---- addRoute

class AddRouteSlotTest : public RouteSlotTest {};

TEST_F(AddRouteSlotTest, ADefaultMakesTheCardTheDefaultOne)
{
    for (const char* address : {"default", "the default one"}) {
        below::asked.clear();
        EXPECT_EQ(card->addRoute(card, address, "no mask at all"), 0);
        EXPECT_EQ(below::asked, Texts{"RouteAddDefIPv4 eth0"});
    }
    below::refusing = {"RouteAddDefIPv4"};
    EXPECT_EQ(card->addRoute(card, "default", ""), -1);
}

TEST_F(AddRouteSlotTest, EveryCallIsLoggedFirst)
{
    EXPECT_EQ(card->addRoute(card, "default", ""), 0);
    EXPECT_EQ(card->addRoute(card, "10.7.0.0", "255.255.0.0"), 0);
    EXPECT_EQ(Log(), (LogLines{Info("API3_AddIPv4Route", "api3 add addr default mask  name eth0"),
                               Info("API3_AddIPv4Route",
                                    "api3 add addr 10.7.0.0 mask 255.255.0.0 name eth0")}));
}

TEST_F(AddRouteSlotTest, NullIsRefusedInSilence)
{
    EXPECT_EQ(card->addRoute(nullptr, "10.7.0.0", "255.255.0.0"), -1);
    EXPECT_EQ(card->addRoute(card, nullptr, "255.255.0.0"), -1);
    EXPECT_EQ(card->addRoute(card, "10.7.0.0", nullptr), -1);
    EXPECT_EQ(card->addRoute(card, "default", nullptr), -1);
    EXPECT_EQ(below::asked, Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(AddRouteSlotTest, TextsThatDoNotParseAreRefusedByName)
{
    const std::pair<const char*, const char*> wrong[] = {{"ten.seven", "255.255.0.0"},
                                                         {"10.7.0.0", "16"},
                                                         {"10.7", "255.255.0.0"},
                                                         {"", "255.255.0.0"},
                                                         {"10.7.0.0", ""}};
    for (const auto& [address, mask] : wrong) {
        const std::string both = std::string(address) + "," + mask;
        SCOPED_TRACE(both);
        ClearLog();
        EXPECT_EQ(card->addRoute(card, address, mask), -1);
        EXPECT_EQ(Log(),
                  (LogLines{Info("API3_AddIPv4Route", std::string("api3 add addr ") + address +
                                                          " mask " + mask + " name eth0"),
                            Malformed("API3_AddIPv4Route", both)}));
    }
    EXPECT_EQ(below::asked, Texts{});
}

TEST_F(AddRouteSlotTest, ACardWithoutAnAddressGetsADirectRoute)
{
    below::refusing = {"NetGetIPbyName"};
    EXPECT_EQ(card->addRoute(card, "10.7.0.9", "255.255.0.0"), 0);
    EXPECT_EQ(below::asked, (Texts{"NetGetIPbyName eth0 (a place of its own) (a place of its own)",
                                   "RouteAddIPv4 10.7.0.0 0.0.0.0 255.255.0.0 eth0"}));
}

TEST_F(AddRouteSlotTest, ACardWithoutAGatewayGetsADirectRoute)
{
    below::refusing = {"NetGetGatewaybyName"};
    EXPECT_EQ(card->addRoute(card, "10.7.0.9", "255.255.0.0"), 0);
    EXPECT_EQ(below::asked, (Texts{"NetGetIPbyName eth0 (a place of its own) (a place of its own)",
                                   "NetGetGatewaybyName eth0 (a place of its own)",
                                   "RouteAddIPv4 10.7.0.0 0.0.0.0 255.255.0.0 eth0"}));
}

TEST_F(AddRouteSlotTest, ACardsOwnTextsThatDoNotParseNameTheRequest)
{
    for (const bool address : {true, false}) {
        below::told = below::Told();
        (address ? below::told.address : below::told.mask) = "rubbish";
        ClearLog();
        below::asked.clear();
        EXPECT_EQ(card->addRoute(card, "10.7.0.9", "255.255.0.0"), -1);
        EXPECT_EQ(below::asked.size(), 2U);
        EXPECT_EQ(Log(), (LogLines{Info("API3_AddIPv4Route",
                                        "api3 add addr 10.7.0.9 mask 255.255.0.0 name eth0"),
                                   Malformed("API3_AddIPv4Route", "10.7.0.9,255.255.0.0")}));
    }
}

TEST_F(AddRouteSlotTest, TheResultIsThatOfTheTable)
{
    below::refusing = {"RouteAddIPv4"};
    EXPECT_EQ(card->addRoute(card, "10.7.0.9", "255.255.0.0"), -1);
    below::refusing = {"RouteAddIPv4", "NetGetIPbyName"};
    EXPECT_EQ(card->addRoute(card, "10.7.0.9", "255.255.0.0"), -1);
}

constexpr char kDirect[] = "0.0.0.0";
constexpr char kThrough[] = "10.0.0.1";

struct Decision {
    const char* why;
    const char* address;  // of the card, with the mask
    const char* mask;
    const char* wanted;
    const char* wantedMask;
    const char* net;  // of the route
    const char* gateway;
};

TEST_F(AddRouteSlotTest, TheGatewayIsTakenWhereTheCardDoesNotReachByItself)
{
    const Decision decisions[] = {
        {"in the card's own net", "10.0.0.2", "255.255.255.0", "10.0.0.77", "255.255.255.255",
         "10.0.0.77", kDirect},
        {"the card's own net", "10.0.0.2", "255.255.255.0", "10.0.0.9", "255.255.255.0", "10.0.0.0",
         kDirect},
        {"another net of the same width", "10.0.0.2", "255.255.255.0", "10.0.1.9", "255.255.255.0",
         "10.0.1.0", kThrough},
        {"a station elsewhere", "10.0.0.2", "255.255.255.0", "172.16.5.6", "255.255.255.255",
         "172.16.5.6", kThrough},
        {"a wider net around the card", "10.0.0.2", "255.255.255.0", "10.0.0.2", "255.255.0.0",
         "10.0.0.0", kThrough},
        {"everything", "10.0.0.2", "255.255.255.0", "10.0.0.2", "0.0.0.0", "0.0.0.0", kThrough},
        {"a part of the card's net", "10.1.2.3", "255.0.0.0", "10.9.0.1", "255.255.0.0", "10.9.0.0",
         kDirect},
        {"bits between the nets", "10.0.0.130", "255.255.255.128", "10.0.0.2", "255.255.255.128",
         "10.0.0.0", kThrough},
        // The bytes count as they lie in memory: the last one is the most significant.
        {"a last byte that outweighs the others", "10.0.0.0", "0.0.0.255", "10.0.0.2",
         "255.255.255.0", "10.0.0.0", kThrough},
        {"a last byte that is outweighed by none", "0.0.0.5", "255.255.255.0", "0.0.0.9",
         "0.0.0.255", "0.0.0.9", kDirect},
        {"first bytes alone differ", "10.0.0.2", "254.255.255.0", "10.0.0.2", "255.255.255.0",
         "10.0.0.0", kDirect},
    };
    for (const Decision& row : decisions) {
        SCOPED_TRACE(row.why);
        below::told.address = row.address;
        below::told.mask = row.mask;
        EXPECT_EQ(card->addRoute(card, row.wanted, row.wantedMask), 0);
        EXPECT_EQ(LastAsked(), std::string("RouteAddIPv4 ") + row.net + " " + row.gateway + " " +
                                   row.wantedMask + " eth0");
    }
}

TEST_F(AddRouteSlotTest, PointToPointLinksZeroToFourAreDirect)
{
    const struct {
        const char* name;
        const char* gateway;
    } rows[] = {{"ppp0", kDirect},  {"ppp3", kDirect},  {"ppp4", kDirect},   {"ppp5", kThrough},
                {"ppp7", kThrough}, {"ppp", kThrough},  {"ppp10", kThrough}, {"pppx", kThrough},
                {"xppp", kThrough}, {"eth3", kThrough}, {"ppp.", kThrough},  {"ppp-", kThrough},
                {"ppp/", kThrough}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        NetInterface* link = Object(row.name);
        EXPECT_EQ(link->addRoute(link, "172.16.5.6", "255.255.255.0"), 0);
        EXPECT_EQ(LastAsked(), std::string("RouteAddIPv4 172.16.5.0 ") + row.gateway +
                                   " 255.255.255.0 " + row.name);
    }
}

TEST_F(AddRouteSlotTest, AWiderNetOnAPointToPointLinkStillTakesTheGateway)
{
    NetInterface* link = Object("ppp3");
    EXPECT_EQ(link->addRoute(link, "172.16.0.0", "255.255.0.0"), 0);
    EXPECT_EQ(LastAsked(), "RouteAddIPv4 172.16.0.0 10.0.0.1 255.255.0.0 ppp3");
}

// ---- delRoute

class DelRouteSlotTest : public RouteSlotTest {};

TEST_F(DelRouteSlotTest, WithoutNetAndMaskAllOfTheCardsGo)
{
    EXPECT_EQ(card->delRoute(card, nullptr, nullptr), 0);
    EXPECT_EQ(below::asked, Texts{"RouteDelAllIPv4 eth0"});
    EXPECT_EQ(Log(),
              LogLines{Info("API3_DelIPv4Route", "api3 del addr (null) mask (null) name eth0")});
    below::refusing = {"RouteDelAllIPv4"};
    EXPECT_EQ(card->delRoute(card, nullptr, nullptr), -1);
}

TEST_F(DelRouteSlotTest, AMaskAloneIsRefused)
{
    EXPECT_EQ(card->delRoute(card, nullptr, "255.255.0.0"), -1);
    EXPECT_EQ(below::asked, Texts{});
    EXPECT_EQ(Log(), LogLines{Info("API3_DelIPv4Route",
                                   "api3 del addr (null) mask 255.255.0.0 name eth0")});
}

TEST_F(DelRouteSlotTest, ADefaultMeansTheCardsDefaultRoutes)
{
    EXPECT_EQ(card->delRoute(card, "default", nullptr), 0);
    EXPECT_EQ(card->delRoute(card, "the default one", "no mask at all"), 0);
    EXPECT_EQ(below::asked, (Texts{"RouteDelDefIPv4 eth0", "RouteDelDefIPv4 eth0"}));
    below::refusing = {"RouteDelDefIPv4"};
    EXPECT_EQ(card->delRoute(card, "default", nullptr), -1);
}

TEST_F(DelRouteSlotTest, ANetAloneIsRefused)
{
    EXPECT_EQ(card->delRoute(card, "10.7.0.0", nullptr), -1);
    EXPECT_EQ(below::asked, Texts{});
    EXPECT_EQ(Log(),
              LogLines{Info("API3_DelIPv4Route", "api3 del addr 10.7.0.0 mask (null) name eth0")});
}

TEST_F(DelRouteSlotTest, TextsThatDoNotParseAreRefusedByName)
{
    EXPECT_EQ(card->delRoute(card, "10.7", "255.255.0.0"), -1);
    EXPECT_EQ(card->delRoute(card, "10.7.0.0", "16"), -1);
    EXPECT_EQ(below::asked, Texts{});
    EXPECT_EQ(Log(),
              (LogLines{Info("API3_DelIPv4Route", "api3 del addr 10.7 mask 255.255.0.0 name eth0"),
                        Malformed("API3_DelIPv4Route", "10.7,255.255.0.0"),
                        Info("API3_DelIPv4Route", "api3 del addr 10.7.0.0 mask 16 name eth0"),
                        Malformed("API3_DelIPv4Route", "10.7.0.0,16")}));
}

TEST_F(DelRouteSlotTest, TheNetIsDeletedWithoutAGateway)
{
    EXPECT_EQ(card->delRoute(card, "10.7.0.9", "255.255.0.0"), 0);
    EXPECT_EQ(below::asked, Texts{"RouteDelIPv4 10.7.0.0 0.0.0.0 255.255.0.0 eth0"});
    below::refusing = {"RouteDelIPv4"};
    EXPECT_EQ(card->delRoute(card, "10.7.0.9", "255.255.0.0"), -1);
}

TEST_F(DelRouteSlotTest, NoObjectIsRefusedInSilence)
{
    EXPECT_EQ(card->delRoute(nullptr, "10.7.0.9", "255.255.0.0"), -1);
    EXPECT_EQ(below::asked, Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

}  // namespace
