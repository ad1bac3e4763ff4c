// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Interface objects above the untouched layers: what each failure on the way down leaves behind.

#include "NetApi3_0.h"

#include "InterfaceWorld.h"

#include <cstring>
#include <functional>

using namespace fake;

namespace {

constexpr char kSlaves[] = "/sys/class/net/bond0/bonding/slaves";

/// A card with an address and a gateway, and a bond of two.
class LayersTest : public InterfaceWorld {
protected:
    void SetUp() override
    {
        InterfaceWorld::SetUp();
        kernel.Add("bond0");
        Put(kSlaves, "eth1 eth0\n");
        Put(CardFile("bond0"), "BONDMODE = 4\n");
        Put(kFile0,
            Settings({"HOSTIP = 10.0.0.2", "SUBMASK = 255.255.255.0", "GATEWAYIP = 10.0.0.1"}));
        card = Object("eth0");
        bond = Object("bond0");
        Begin();
    }

    static NetInterface* Object(const char* name)
    {
        NetInterfaceDesc desc{};
        desc.name = name;
        NetInterface* object = nullptr;
        EXPECT_EQ(createNetInterface(&desc, &object), 0);
        return object;
    }

    static NetInterface* card;
    static NetInterface* bond;
};

NetInterface* LayersTest::card = nullptr;
NetInterface* LayersTest::bond = nullptr;

const std::vector<std::string> kMayStay = {"socket", "open /dev/pdc", "open /proc/net/route"};

// ---- members of a bond

class BondMembersLayersTest : public LayersTest {};

TEST_F(BondMembersLayersTest, NamesComeFromTheDriverAndTheModeFromTheFile)
{
    NetInterfaceInfo list[2];
    int num = 2;
    EXPECT_EQ(bond->getBondMembers(bond, list, &num), 0);
    ASSERT_EQ(num, 2);
    EXPECT_STREQ(list[0].name, "eth1");
    EXPECT_STREQ(list[1].name, "eth0");
    EXPECT_EQ(list[0].bond, nicBond802_3ad);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(BondMembersLayersTest, ASavedModeThatIsNoneIsToldAsActiveBackup)
{
    Put(CardFile("bond0"), "BONDMODE = \n");
    NetInterfaceInfo list[2];
    int num = 2;
    EXPECT_EQ(bond->getBondMembers(bond, list, &num), 0);
    EXPECT_EQ(list[1].bond, nicBondActiveBackup);
    EXPECT_EQ(Log().back(), Warn("API3_GetBondMember", "bond mode error"));
}

TEST_F(BondMembersLayersTest, NoRoomAtAllIsASuccessWithoutNames)
{
    NetInterfaceInfo none;
    int num = 0;
    EXPECT_EQ(bond->getBondMembers(bond, &none, &num), 0);
    EXPECT_EQ(num, 0);
    EXPECT_EQ(Log(), LogLines{Warn("API3_GetBondMember", "NetInterfaceInfo list is too small")});
}

TEST_F(BondMembersLayersTest, WhateverNumberIsSavedIsTold)
{
    for (const auto& [saved, mode] : {std::pair{"7", 7}, {"99", 99}, {"4294967295", -1}}) {
        Put(CardFile("bond0"), "BONDMODE = " + std::string(saved) + "\n");
        NetInterfaceInfo list[2];
        int num = 2;
        EXPECT_EQ(bond->getBondMembers(bond, list, &num), 0);
        EXPECT_EQ(list[0].bond, mode) << saved;
    }
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(BondMembersLayersTest, EachFailureIsToldAndOnlyTheModeIsGuessed)
{
    static NetInterfaceInfo list[2];
    static int num;
    static int result;
    FailEachCall(
        [] {
            memset(list, '#', sizeof(list));
            num = 2;
            result = bond->getBondMembers(bond, list, &num);
        },
        [](const std::string&) {
            EXPECT_EQ(num, 2);
            if (result != 0) {
                EXPECT_EQ(list[0].name[0], '#');
                EXPECT_EQ(Log().back(), Error("API3_GetBondMember", "GetBondMembers error."));
                return;
            }
            EXPECT_STREQ(list[1].name, "eth0");
            EXPECT_TRUE(list[1].bond == nicBond802_3ad ||
                        Log().back() == Warn("API3_GetBondMember", "bond mode error"));
        },
        kMayStay);
}

// ---- routes

class RouteLayersTest : public LayersTest {};

TEST_F(RouteLayersTest, ARouteLeadsThroughTheSavedGateway)
{
    EXPECT_EQ(card->addRoute(card, "172.16.5.6", "255.255.255.0"), 0);
    EXPECT_EQ(card->addRoute(card, "10.0.0.77", "255.255.255.255"), 0);
    EXPECT_EQ(kernel.routes,
              (std::vector<Route>{{"172.16.5.0", "10.0.0.1", "255.255.255.0", "eth0"},
                                  {"10.0.0.77", "0.0.0.0", "255.255.255.255", "eth0"}}));
    EXPECT_EQ(card->delRoute(card, nullptr, nullptr), 0);
    EXPECT_EQ(kernel.routes, std::vector<Route>{});
}

TEST_F(RouteLayersTest, EachFailureOfAnAdditionLeavesOneRouteOrNone)
{
    static int result;
    FailEachCall(
        [] {
            kernel.routes.clear();
            result = card->addRoute(card, "172.16.5.6", "255.255.255.0");
        },
        [](const std::string&) {
            EXPECT_EQ(kernel.routes.size(), result == 0 ? 1U : 0U);
            EXPECT_TRUE(result == 0 || Log().size() > 1);
        },
        kMayStay);
}

TEST_F(RouteLayersTest, EachFailureOfADeletionLeavesTheRouteOrNone)
{
    static int result;
    FailEachCall(
        [] {
            kernel.routes = {{"172.16.5.0", "0.0.0.0", "255.255.255.0", "eth0"}};
            result = card->delRoute(card, "172.16.5.6", "255.255.255.0");
        },
        [](const std::string&) { EXPECT_EQ(kernel.routes.size(), result == 0 ? 0U : 1U); },
        kMayStay);
}

// ---- getters, whose places stay as they were when nothing is told

struct Getter {
    const char* name;
    int (*get)(NetInterface* card);
};

char text[64];
char other[64];
int number;
NetDataStat stat;

const Getter kGetters[] = {
    {"getHostIP", [](auto* c) { return c->getHostIP(c, text, 16, other, 16); }},
    {"getGateway", [](auto* c) { return c->getGateway(c, text, 16); }},
    {"getMAC", [](auto* c) { return c->getMAC(c, text, 18); }},
    {"getMTU", [](auto* c) { return c->getMTU(c, &number); }},
    {"getDataStat", [](auto* c) { return c->getDataStat(c, &stat); }},
    {"getLinkSpeed", [](auto* c) { return c->getLinkSpeed(c, &number); }},
};

class GetterLayersTest : public LayersTest {};

TEST_F(GetterLayersTest, ACardThatHasGoneIsToldAndLeavesThePlacesAsTheyWere)
{
    kernel.cards.pop_front();
    for (const Getter& getter : kGetters) {
        SCOPED_TRACE(getter.name);
        ClearLog();
        strcpy(text, "before");
        strcpy(other, "before");
        number = 7;
        EXPECT_EQ(getter.get(card), -1);
        EXPECT_STREQ(text, "before");
        EXPECT_STREQ(other, "before");
        EXPECT_EQ(number, 7);
        EXPECT_EQ(Log().back().operation, "CheckEthExist");
    }
}

TEST_F(GetterLayersTest, EachFailureGivesAnAnswerOrSaysWhyNot)
{
    static const Getter* getter;
    static int result;
    for (const Getter& candidate : kGetters) {
        getter = &candidate;
        FailEachCall([] { result = getter->get(card); },
                     [](const std::string& failed) {
                         EXPECT_TRUE(result == 0 || result == -1) << getter->name;
                         EXPECT_TRUE(result == 0 || !Log().empty()) << getter->name << failed;
                     },
                     kMayStay);
    }
}

}  // namespace
