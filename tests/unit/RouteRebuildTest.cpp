// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Cards brought up and routes rebuilt at the end of a boot and of the address form.

#include "LanriseWorld.h"

#include "Lanrise.h"

#include <cstring>

#include <arpa/inet.h>

using namespace fake;

// ---- calls that a test can replace

namespace {

std::string unprintable;  // an address that cannot be turned into text
int32_t workMode = 0;     // what a card's saved work mode reads as, when `replacesWorkMode`
bool replacesWorkMode = false;

}  // namespace

extern "C" {

const char* __real_inet_ntop(int family, const void* address, char* text, socklen_t size);
bool __real_GetWorkModeByConfig(const char* name, NetWorkMode* mode);

const char* __wrap_inet_ntop(int family, const void* address, char* text, socklen_t size)
{
    const char* printed = __real_inet_ntop(family, address, text, size);
    if (printed == nullptr || printed != unprintable) return printed;
    memset(text, '?', 4);
    return nullptr;
}

bool __wrap_GetWorkModeByConfig(const char* name, NetWorkMode* mode)
{
    if (!replacesWorkMode) return __real_GetWorkModeByConfig(name, mode);
    EXPECT_EQ(*mode, netModeInvalid);
    *mode = static_cast<NetWorkMode>(workMode);
    return false;
}

}  // extern "C"

namespace {

const std::string kAddressFile =
    Settings({"HOSTIP = 10.0.0.2", "SUBMASK = 255.0.0.0", "GATEWAYIP = 10.0.0.1"});

Route NetRoute(const std::string& card)
{
    return {"10.0.0.0", "0.0.0.0", "255.0.0.0", card};
}

// ---- routes taken away

class RemoveAllRouteTest : public World {};

TEST_F(RemoveAllRouteTest, TakesTheRoutesOverTheKindsOfTheDevice)
{
    const std::vector<std::string> device = {"eth0", "wlan0", "bond0", "br0",     "ppp0",
                                             "lte0", "apra0", "usb0",  "xbridge", "veth1"};
    const std::vector<std::string> others = {"lo", "tun0", "vnic0", "nbp0", "rmnet"};
    for (const auto& names : {device, others}) {
        for (const std::string& name : names) {
            kernel.Add(name);
            kernel.routes.push_back({"10.0.0.0", "0.0.0.0", "255.0.0.0", name});
            kernel.routes.push_back({"0.0.0.0", "10.0.0.1", "0.0.0.0", name});
        }
    }
    removeAllRoute();
    LogLines ignored;
    std::vector<Route> left;
    for (const std::string& name : others) {
        for (int i = 0; i < 2; ++i) {
            ignored.push_back(Info("removeAllRoute", "ignore [" + name + "] route\n"));
        }
        left.push_back({"10.0.0.0", "0.0.0.0", "255.0.0.0", name});
        left.push_back({"0.0.0.0", "10.0.0.1", "0.0.0.0", name});
    }
    EXPECT_EQ(LogOf("removeAllRoute"), ignored);
    EXPECT_EQ(kernel.routes, left);
}

TEST_F(RemoveAllRouteTest, TakesRoutesOverInterfacesThatAreNotListedButHoldAKind)
{
    std::vector<Route> left;
    for (const auto& [name, taken] : {std::pair{"br-77", true}, std::pair{"dockereth", true},
                                      std::pair{"veth-x", true}, std::pair{"docker0", false}}) {
        kernel.Add(name);
        kernel.routes.push_back({"10.0.0.0", "0.0.0.0", "255.0.0.0", name});
        if (!taken) left.push_back(kernel.routes.back());
    }
    removeAllRoute();
    EXPECT_EQ(kernel.routes, left);
}

TEST_F(RemoveAllRouteTest, LooksAtThirtyTwoRoutes)
{
    kernel.Add("eth0");
    for (int i = 0; i < 40; ++i) {
        kernel.routes.push_back(
            {"10.0." + std::to_string(i) + ".0", "0.0.0.0", "255.255.255.0", "eth0"});
    }
    const std::vector<Route> last(kernel.routes.begin() + 32, kernel.routes.end());
    removeAllRoute();
    EXPECT_EQ(kernel.routes, last);
}

TEST_F(RemoveAllRouteTest, ATableThatCannotBeReadIsLeftAlone)
{
    Fail("open /proc/net/route", EACCES);
    removeAllRoute();
    EXPECT_EQ(LogOf("removeAllRoute"),
              LogLines{Info("removeAllRoute", "Route_GetIPv4Route failed\n")});
    EXPECT_EQ(TraceOf({"ioctl"}), std::vector<std::string>{});
}

TEST_F(RemoveAllRouteTest, ARouteThatStaysIsAnErrorAndTheNextIsTaken)
{
    kernel.Add("eth0");
    kernel.routes = {{"10.1.0.0", "10.0.0.1", "255.255.0.0", "eth0"}, NetRoute("eth0")};
    Fail("ioctl SIOCDELRT", EPERM);
    removeAllRoute();
    // Mask before gateway in the message, gateway before mask in the request.
    EXPECT_EQ(
        Log(),
        (LogLines{
            Info("Route_DelIPv4Route",
                 "10.1.0.0,10.0.0.1,255.255.0.0,eth0###########Route_DelIPv4Route##########"),
            Error("Route_SetIPv4Route", "iotcl failed.[Operation not permitted]"),
            Error("Route_DelIPv4Route", "Route_SetIPv4Route error.dst:10.1.0.0 gw:10.0.0.1 "
                                        "mask:255.255.0.0 dev:eth0"),
            Error("removeAllRoute", "del eth0 route [10.1.0.0,255.255.0.0,10.0.0.1] failed\n"),
            Info("Route_DelIPv4Route",
                 "10.0.0.0,0.0.0.0,255.0.0.0,eth0###########Route_DelIPv4Route##########")}));
    EXPECT_EQ(kernel.routes, (std::vector<Route>{{"10.1.0.0", "10.0.0.1", "255.255.0.0", "eth0"}}));
}

TEST_F(RemoveAllRouteTest, ARouteWithoutTextIsPassedOver)
{
    kernel.Add("eth0");
    const struct {
        std::string address;
        std::string said;
    } cases[] = {
        {"10.0.0.0", "addr inet_ntop error[10]\n"},
        {"255.0.0.0", "mask inet_ntop error[255]\n"},
        {"0.0.0.0", "gateway inet_ntop error[0]\n"},
        {"255.255.255.255", ""},
    };
    for (const auto& [address, said] : cases) {
        ClearLog();
        kernel.routes = {NetRoute("eth0"), {"11.0.0.0", "11.0.0.1", "254.0.0.0", "eth0"}};
        unprintable = address;
        removeAllRoute();
        unprintable.clear();
        if (said.empty()) {
            EXPECT_EQ(kernel.routes, std::vector<Route>{});
        } else {
            EXPECT_EQ(LogOf("removeAllRoute"), LogLines{Info("removeAllRoute", said)});
            EXPECT_EQ(kernel.routes, std::vector<Route>{NetRoute("eth0")});
        }
    }
}

TEST_F(RemoveAllRouteTest, AValueIsToldAsASignedNumber)
{
    kernel.Add("eth0");
    kernel.routes = {{"10.0.0.0", "0.0.0.0", "255.255.255.254", "eth0"}};
    unprintable = "255.255.255.254";
    removeAllRoute();
    EXPECT_EQ(LogOf("removeAllRoute"),
              LogLines{Info("removeAllRoute", "mask inet_ntop error[-16777217]\n")});
}

// ---- one net route

class AddRouteByNameTest : public World {
protected:
    void SetUp() override
    {
        World::SetUp();
        kernel.Add("eth1");
    }
};

TEST_F(AddRouteByNameTest, AddsTheRouteToTheCardsNet)
{
    Put(CardFile("eth1"),
        Settings({"HOSTIP = 10.1.2.3", "SUBMASK = 255.255.0.0", "GATEWAYIP = 192.168.9.9"}));
    addRouteByName("eth1");
    EXPECT_EQ(Log(), LogLines{Info("Route_AddIPv4Route", "10.1.0.0,0.0.0.0,255.255.0.0,eth1#######"
                                                         "###Route_AddIPv4Route###########")});
    EXPECT_EQ(kernel.routes, (std::vector<Route>{{"10.1.0.0", "0.0.0.0", "255.255.0.0", "eth1"}}));
}

TEST_F(AddRouteByNameTest, NoNameIsNoRoute)
{
    addRouteByName("");
    addRouteByName(nullptr);
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Trace(), std::vector<std::string>{});
}

TEST_F(AddRouteByNameTest, ATextThatDoesNotParseIsNoRoute)
{
    const std::vector<std::vector<std::string>> triples = {
        {"10.2", "255.0.0.0", "10.0.0.1"},
        {"10.0.0.2", "255.0", "10.0.0.1"},
        {"10.0.0.2", "255.0.0.0", "10.1"},
    };
    for (const auto& triple : triples) {
        ClearLog();
        Put(CardFile("eth1"), Settings({"HOSTIP = " + triple[0], "SUBMASK = " + triple[1],
                                        "GATEWAYIP = " + triple[2]}));
        addRouteByName("eth1");
        EXPECT_EQ(Log(), LogLines{Info("addRouteByName", "addr error [" + triple[0] + "," +
                                                             triple[1] + "," + triple[2] + "]\n")});
    }
    EXPECT_TRUE(kernel.routes.empty());
}

TEST_F(AddRouteByNameTest, WithoutAddressItIsARouteToNothing)
{
    addRouteByName("eth1");
    EXPECT_EQ(
        LogOf("Route_AddIPv4Route")[0],
        Info("Route_AddIPv4Route", "0.0.0.0,0.0.0.0,,eth1##########Route_AddIPv4Route###########"));
    EXPECT_EQ(LogOf("addRouteByName"), LogLines{});
    EXPECT_TRUE(kernel.routes.empty());  // a mask without text is refused below
}

TEST_F(AddRouteByNameTest, WithoutGatewayItIsARouteToNothingWithTheMaskThatWasRead)
{
    Put(CardFile("eth1"), "HOSTIP = 10.0.0.2\nSUBMASK = 255.0.0.0\n");
    addRouteByName("eth1");
    EXPECT_EQ(kernel.routes, (std::vector<Route>{{"0.0.0.0", "0.0.0.0", "255.0.0.0", "eth1"}}));
}

TEST_F(AddRouteByNameTest, ANetWithoutTextIsNoRoute)
{
    Put(CardFile("eth1"), kAddressFile);
    unprintable = "10.0.0.0";
    addRouteByName("eth1");
    EXPECT_EQ(Log(), LogLines{Info("addRouteByName", "addr inet_ntop error[10]\n")});
    EXPECT_TRUE(kernel.routes.empty());
}

TEST_F(AddRouteByNameTest, ARouteThatIsThereStays)
{
    Put(CardFile("eth1"), kAddressFile);
    kernel.routes = {NetRoute("eth1")};
    addRouteByName("eth1");
    EXPECT_EQ(kernel.routes, std::vector<Route>{NetRoute("eth1")});
}

// ---- all routes

class AddAllCardNetRouteTest : public World {
protected:
    /// Lists the cards, each with an address in its file, and rebuilds.
    static void Rebuild(const std::vector<std::string>& cards)
    {
        for (const std::string& card : cards) Put(CardFile(card), kAddressFile);
        List(cards);
        addAllCardNetRoute();
    }
};

TEST_F(AddAllCardNetRouteTest, EveryCardGetsItsNetRoute)
{
    Rebuild({"eth0", "wlan0", "usb0"});
    EXPECT_EQ(kernel.routes,
              (std::vector<Route>{NetRoute("eth0"), NetRoute("wlan0"), NetRoute("usb0")}));
}

TEST_F(AddAllCardNetRouteTest, WithoutADefaultCardThereAreNetRoutesAlone)
{
    Rebuild({"eth0"});
    EXPECT_EQ(LogOf("addDefRoute"),
              LogLines{Warn("addDefRoute", "get default eth failed. will not add default route")});
    EXPECT_EQ(kernel.routes, std::vector<Route>{NetRoute("eth0")});
}

TEST_F(AddAllCardNetRouteTest, AMemberHasNoneButItsBondHas)
{
    SetBondMembers("bond0", "eth1 eth2\n");
    Rebuild({"eth0", "eth1", "eth2", "eth10", "bond0"});
    EXPECT_EQ(kernel.routes,
              (std::vector<Route>{NetRoute("eth0"), NetRoute("eth10"), NetRoute("bond0")}));
}

TEST_F(AddAllCardNetRouteTest, AMemberHasNoneButItsBridgeHas)
{
    SetBridgePorts("br0", {"eth1"});
    Rebuild({"eth0", "eth1", "br0"});
    EXPECT_EQ(kernel.routes, (std::vector<Route>{NetRoute("eth0"), NetRoute("br0")}));
}

TEST_F(AddAllCardNetRouteTest, ABondWithoutMembersHasNone)
{
    SetBondMembers("bond0", "");
    Rebuild({"eth0", "bond0", "bond1"});
    EXPECT_EQ(kernel.routes, std::vector<Route>{NetRoute("eth0")});
}

TEST_F(AddAllCardNetRouteTest, AVlanOnABondHasOne)
{
    Rebuild({"bond0.5", "bond1"});
    EXPECT_EQ(kernel.routes, std::vector<Route>{NetRoute("bond0.5")});
}

TEST_F(AddAllCardNetRouteTest, ABridgeThatDoesNotExistHasNone)
{
    SetBridgePorts("br1", {});
    Rebuild({"br0", "br1", "br1.5"});
    EXPECT_EQ(kernel.routes, std::vector<Route>{NetRoute("br1")});
    EXPECT_EQ(LogOf("Bridge_IsBridgeExist"),
              (LogLines{Error("Bridge_IsBridgeExist", "bridge br0 is not exist."),
                        Error("Bridge_IsBridgeExist", "bridge br1.5 is not exist.")}));
}

TEST_F(AddAllCardNetRouteTest, ABondIsNotAskedWhetherItIsABridge)
{
    SetBondMembers("brbond", "eth1\n");
    Rebuild({"brbond"});
    EXPECT_EQ(kernel.routes, std::vector<Route>{NetRoute("brbond")});
    EXPECT_EQ(LogOf("Bridge_IsBridgeExist"), LogLines{});
}

TEST_F(AddAllCardNetRouteTest, TheDefaultCardGetsTheDefaultRouteLast)
{
    for (const char* card : {"eth0", "eth1", "eth2"}) Put(CardFile(card), kAddressFile);
    Put(CardFile("eth0"), kAddressFile + "DEFAULT_ETH = eth1\n");
    List({"eth0", "eth1", "eth2"});
    kernel.routes = {{"0.0.0.0", "9.9.9.9", "0.0.0.0", "eth2"}};
    addAllCardNetRoute();
    EXPECT_EQ(kernel.routes, (std::vector<Route>{NetRoute("eth0"),
                                                 NetRoute("eth1"),
                                                 NetRoute("eth2"),
                                                 {"0.0.0.0", "10.0.0.1", "0.0.0.0", "eth1"}}));
    // Its net route is asked for a second time, and is there.
    EXPECT_EQ(
        LogOf("Route_IsExistInSys"),
        LogLines{Info("Route_IsExistInSys", "this route st.[10.0.0.0,0.0.0.0,255.0.0.0,eth1]")});
}

TEST_F(AddAllCardNetRouteTest, TheDefaultCardGetsItsRoutesThoughItIsAMember)
{
    for (const char* card : {"eth1", "bond0"}) Put(CardFile(card), kAddressFile);
    Put(CardFile("eth0"), "DEFAULT_ETH = eth1\n");
    SetBondMembers("bond0", "eth1\n");
    List({"eth1", "bond0"});
    addAllCardNetRoute();
    EXPECT_EQ(kernel.routes, (std::vector<Route>{NetRoute("bond0"),
                                                 NetRoute("eth1"),
                                                 {"0.0.0.0", "10.0.0.1", "0.0.0.0", "eth1"}}));
}

TEST_F(AddAllCardNetRouteTest, WithoutAListedCardTheDefaultCardIsServedAllTheSame)
{
    Put(CardFile("eth0"), kAddressFile + "DEFAULT_ETH = eth0\n");
    List({"lo"});
    kernel.Add("eth0");
    addAllCardNetRoute();
    EXPECT_EQ(kernel.routes,
              (std::vector<Route>{NetRoute("eth0"), {"0.0.0.0", "10.0.0.1", "0.0.0.0", "eth0"}}));
}

TEST_F(AddAllCardNetRouteTest, WhateverFailsNothingStaysOpen)
{
    SetBondMembers("bond0", "eth1\n");
    SetBridgePorts("br0", {"eth2"});
    for (const char* card : {"eth1", "eth2", "bond0", "br0"}) Put(CardFile(card), kAddressFile);
    Put(CardFile("eth0"), kAddressFile + "DEFAULT_ETH = eth0\n");
    List({"eth0", "eth1", "eth2", "bond0", "br0"});
    kernel.routes = {NetRoute("eth1"), {"0.0.0.0", "10.0.0.1", "0.0.0.0", "eth1"}};
    FailEachCall(
        [] {
            removeAllRoute();
            addAllCardNetRoute();
        },
        [](const std::string&) { ExpectWellFormedFiles(); }, {"socket", "open /proc/net/route"});
}

// ---- cards

class RecoverOtherEthTest : public World {
protected:
    /// The cards that were brought up.
    static std::vector<std::string> Recovered()
    {
        std::vector<std::string> cards;
        for (const std::string& call : TraceOf({"ioctl SIOCSIFFLAGS "})) {
            cards.push_back(call.substr(strlen("ioctl SIOCSIFFLAGS ")));
        }
        return cards;
    }
};

TEST_F(RecoverOtherEthTest, PutsTheSavedSettingsBack)
{
    Put(CardFile("eth1"), kAddressFile + "MTU = 1400\nWORKMODE = 0\n");
    List({"eth1"});
    EXPECT_TRUE(RecoverOtherEth());
    EXPECT_EQ(kernel.At("eth1").address, "10.0.0.2");
    EXPECT_EQ(kernel.At("eth1").mask, "255.0.0.0");
    EXPECT_EQ(kernel.At("eth1").mtu, 1400);
    EXPECT_EQ(LogOf("RecoverOtherEth"), LogLines{});
}

TEST_F(RecoverOtherEthTest, TakesTheCardsThatAreInNeitherABondNorABridge)
{
    for (int mode = 0; mode < 7; ++mode) {
        Put(CardFile("eth" + std::to_string(mode)), "WORKMODE = " + std::to_string(mode) + "\n");
    }
    List({"eth0", "eth1", "eth2", "eth3", "eth4", "eth5", "eth6"});
    EXPECT_TRUE(RecoverOtherEth());
    EXPECT_EQ(Recovered(), (std::vector<std::string>{"eth0", "eth2"}));
}

TEST_F(RecoverOtherEthTest, ACardWithoutWorkModeStandsAlone)
{
    List({"eth0"});
    EXPECT_TRUE(RecoverOtherEth());
    EXPECT_EQ(Recovered(), std::vector<std::string>{"eth0"});
    EXPECT_EQ(LogOf("RecoverOtherEth"), LogLines{});
}

TEST_F(RecoverOtherEthTest, BondsAndBridgesAreNotItsBusiness)
{
    List({"bond0", "br0", "bond0.5", "xbr"});
    EXPECT_TRUE(RecoverOtherEth());
    EXPECT_EQ(Trace(), std::vector<std::string>{});
}

TEST_F(RecoverOtherEthTest, AnUnknownWorkModeIsAWarningAndTheCardIsRecovered)
{
    List({"eth0", "eth1"});
    replacesWorkMode = true;
    workMode = netModeInvalid;
    EXPECT_TRUE(RecoverOtherEth());
    EXPECT_EQ(LogOf("RecoverOtherEth"),
              (LogLines{Warn("RecoverOtherEth", "eth0 work mode is unknow!!!"),
                        Warn("RecoverOtherEth", "eth1 work mode is unknow!!!")}));
    EXPECT_EQ(Recovered(), (std::vector<std::string>{"eth0", "eth1"}));
}

TEST_F(RecoverOtherEthTest, WhatTheReadStoredCountsNotItsResult)
{
    List({"eth0"});
    replacesWorkMode = true;
    workMode = netModeBond;
    EXPECT_TRUE(RecoverOtherEth());
    EXPECT_EQ(Recovered(), std::vector<std::string>{});
}

TEST_F(RecoverOtherEthTest, WhateverFailsTheFilesStayWhole)
{
    Put(CardFile("eth0"), kAddressFile + "MTU = 1400\n");
    List({"eth0", "eth1"});
    FailEachCall([] { RecoverOtherEth(); }, [](const std::string&) { ExpectWellFormedFiles(); });
}

}  // namespace
