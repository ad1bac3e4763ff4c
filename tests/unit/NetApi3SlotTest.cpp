// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The slots of an interface object that hand a call on: what they ask, and what their caller gets.

#include "NetApi3_0.h"

#include "NetApi3Below.h"
#include "fake/World.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

using namespace fake;

namespace {

using Slot = int (*)(const NetInterface& slots, NetInterface* thiz);

struct Row {
    const char* name;
    Slot call;
    std::string asks;
    int done = 0;
    int refused = -1;
    LogLines log = {};         // in any case
    LogLines refusalLog = {};  // and behind it when it is refused
};

// What the callers give, named for what is asked below.
char text[64];
char other[64];
int number;
int count;
NetDataStat stat;
SSHInfo ssh;
SwitchPortStatus ports[2];
NetWorkMode workMode;
NICBondMode bondMode;
NetTc limits[2];
QV_PAL_NetBondParams params;
const char* cards[] = {"eth1", "eth2"};

/// The slots that hand a call on; what makes up its mind first has tests of its own.
std::vector<Row> Rows()
{
    return {
        {"up", [](auto& o, auto* t) { return o.up(t); }, "NetInterfaceUp eth0"},
        {"down", [](auto& o, auto* t) { return o.down(t); }, "NetInterfaceDown eth0"},
        {"setHostIP",
         [](auto& o, auto* t) { return o.setHostIP(t, "10.0.0.2", "255.0.0.0"); },
         "NetSetIPByName eth0 10.0.0.2 255.0.0.0",
         0,
         -1,
         {Info("API3_NetSetHostIP", "SetIp name eth0 addr 10.0.0.2 mask 255.0.0.0")}},
        {"setGateway",
         [](auto& o, auto* t) { return o.setGateway(t, "10.0.0.1"); },
         "NetSetGatewaybyName eth0 10.0.0.1",
         0,
         -1,
         {Info("API3_NetSetGateway", "SetGw name eth0 gateway 10.0.0.1")}},
        {"getHostIP", [](auto& o, auto* t) { return o.getHostIP(t, text, 16, other, 16); },
         "NetGetIPbyName eth0 text other"},
        {"getGateway", [](auto& o, auto* t) { return o.getGateway(t, text, 16); },
         "NetGetGatewaybyName eth0 text"},
        {"getDataStat", [](auto& o, auto* t) { return o.getDataStat(t, &stat); },
         "NetGetDataStat eth0 stat"},
        {"configBeenReset", [](auto& o, auto* t) { return o.configBeenReset(t); },
         "NetCheckBeenReset", 1, 0},
        {"getMAC", [](auto& o, auto* t) { return o.getMAC(t, text, 18); },
         "NetGetMacbyName eth0 text"},
        {"setMAC", [](auto& o, auto* t) { return o.setMAC(t, "02:00:00:00:00:07"); },
         "NetSetMacbyName eth0 02:00:00:00:00:07"},
        {"getDNSAddress", [](auto& o, auto* t) { return o.getDNSAddress(t, text, 16, other, 16); },
         "GetIPv4DnsServer text other"},
        {"setDNSAddress", [](auto& o, auto* t) { return o.setDNSAddress(t, "8.8.8.8", "8.8.4.4"); },
         "SetIPv4DnsServer 8.8.8.8 8.8.4.4"},
        {"miiDiag", [](auto& o, auto* t) { return o.miiDiag(t); }, "NetMiiDiag eth0 true"},
        {"getMTU", [](auto& o, auto* t) { return o.getMTU(t, &number); },
         "NetGetMtubyName eth0 number"},
        {"setMTU", [](auto& o, auto* t) { return o.setMTU(t, -7); }, "NetSetMtubyName eth0 -7"},
        {"bond", [](auto& o, auto* t) { return o.bond(t, cards, 2, static_cast<NICBondMode>(-1)); },
         "Bond eth0 cards 2 -1"},
        {"unbond", [](auto& o, auto* t) { return o.unbond(t); }, "UnBond eth0"},
        {"setHostIpv6", [](auto& o, auto* t) { return o.setHostIpv6(t, "2001:db8::2", "64"); },
         "NetSetIPv6byName eth0 2001:db8::2 64"},
        {"getHostIpv6", [](auto& o, auto* t) { return o.getHostIpv6(t, text, 46, other, 4); },
         "NetGetIPv6byName eth0 text 46 other 4"},
        {"setGatewayIpv6", [](auto& o, auto* t) { return o.setGatewayIpv6(t, "2001:db8::1"); },
         "NetSetGatewayIPv6byName eth0 2001:db8::1"},
        {"getGatewayIpv6", [](auto& o, auto* t) { return o.getGatewayIpv6(t, text, 7); },
         "NetGetGatewayIPv6byName eth0 text 7"},
        {"setDNSAddressIpv6",
         [](auto& o, auto* t) { return o.setDNSAddressIpv6(t, "2001:db8::5", "2001:db8::6"); },
         "SetIPv6DnsServer 2001:db8::5 2001:db8::6"},
        {"getDNSAddressIpv6",
         [](auto& o, auto* t) { return o.getDNSAddressIpv6(t, text, 40, other, 46); },
         "GetIPv6DnsServer text other 40"},
        {"getDNSAddressIpv6, the other way round",
         [](auto& o, auto* t) { return o.getDNSAddressIpv6(t, text, 46, other, 39); },
         "GetIPv6DnsServer text other 39"},
        {"getLinkLocalAddressIpv6",
         [](auto& o, auto* t) { return o.getLinkLocalAddressIpv6(t, text, 50); },
         "NetGetLinkLocalAddressIpv6 eth0 text 50"},
        {"ping", [](auto& o, auto* t) { return o.ping(t, "10.0.0.9", 3, 0); },
         "NetPingCheck eth0 10.0.0.9 3"},
        {"getSwitchLinkMask", [](auto& o, auto* t) { return o.getSwitchLinkMask(t, &number); },
         "GetSwitchMask eth0 number"},
        {"addRouteIpv6", [](auto& o, auto* t) { return o.addRouteIpv6(t, "2001:db8:7::", 48); },
         "RouteAddIPv6 2001:db8:7:: 0:0:0::0 48 eth0"},
        {"addRouteIpv6, a prefix that does not fit",
         [](auto& o, auto* t) { return o.addRouteIpv6(t, "2001:db8:7::", 123456789); },
         "RouteAddIPv6 2001:db8:7:: 0:0:0::0 1234567 eth0"},
        {"addRouteIpv6, default",
         [](auto& o, auto* t) { return o.addRouteIpv6(t, "the default one", 48); },
         "RouteAddDefIPv6 eth0"},
        {"delRouteIpv6", [](auto& o, auto* t) { return o.delRouteIpv6(t, "2001:db8:7::", -1); },
         "RouteDelIPv6 2001:db8:7:: 0:0:0::0 -1 eth0"},
        {"delRouteIpv6, default", [](auto& o, auto* t) { return o.delRouteIpv6(t, "default", -1); },
         "RouteDelDefIPv6 eth0"},
        {"delRouteIpv6, a text with default in it",
         [](auto& o, auto* t) { return o.delRouteIpv6(t, "the default one", 0); },
         "RouteDelDefIPv6 eth0"},
        {"delRouteIpv6, all", [](auto& o, auto* t) { return o.delRouteIpv6(t, nullptr, -1); },
         "RouteDelAllIPv6 eth0"},
        {"getLinkSpeed", [](auto& o, auto* t) { return o.getLinkSpeed(t, &number); },
         "NetGetLinkSpeed eth0 number"},
        {"getSwitchPortNum", [](auto& o, auto* t) { return o.getSwitchPortNum(t, &number); },
         "GetSwitchPortNum eth0 number"},
        {"getSwitchPortStatus",
         [](auto& o, auto* t) { return o.getSwitchPortStatus(t, ports, &count); },
         "GetSwitchStatus eth0 ports count"},
        {"getBondMode", [](auto& o, auto* t) { return o.getBondMode(t, &bondMode); },
         "GetBondMode eth0 bondMode"},
        {"getEthWorkMode", [](auto& o, auto* t) { return o.getEthWorkMode(t, &workMode); },
         "NetGetEthWorkMode eth0 workMode"},
        {"setBandWidth", [](auto& o, auto* t) { return o.setBandWidth(t, limits, 2); },
         "TrafCtrlSetBand eth0 limits 2"},
        {"getBandWidth", [](auto& o, auto* t) { return o.getBandWidth(t, limits, &count); },
         "TrafCtrlGetBand eth0 limits count", 3},
        {"unsetBandWidth", [](auto& o, auto* t) { return o.unsetBandWidth(t, "10.0.0.9"); },
         "TrafCtrlUnSetBand eth0 10.0.0.9"},
        {"ipPortCtrl, close", [](auto& o, auto* t) { return o.ipPortCtrl(t, "10.0.0.9", 80, 0); },
         "PortCtrlDisablePort 10.0.0.9 80"},
        {"ipPortCtrl, close for nobody",
         [](auto& o, auto* t) { return o.ipPortCtrl(t, nullptr, 80, 0); },
         "PortCtrlDisablePort NULL 80"},
        {"ipPortCtrl, open for nobody",
         [](auto& o, auto* t) { return o.ipPortCtrl(t, nullptr, 80, 1); },
         "PortCtrlEnablePort NULL 80"},
        {"ipPortCtrl, open", [](auto& o, auto* t) { return o.ipPortCtrl(t, "10.0.0.9", 80, 1); },
         "PortCtrlEnablePort 10.0.0.9 80"},
        {"ipToMac", [](auto& o, auto* t) { return o.ipToMac(t, "10.0.0.9", text, 18); },
         "GetMacByIPFromARP 10.0.0.9 text"},
        {"getRealHostIP", [](auto& o, auto* t) { return o.getRealHostIP(t, text, 16, other, 16); },
         "NetGetIPbyName eth0 text other"},
        {"setMediumPrefer",
         [](auto& o, auto* t) { return o.setMediumPrefer(t, netCopperMediumPrefer); },
         "NetSetMediumPrefer eth0 1"},
        {"delIPaddressIpv6",
         [](auto& o, auto* t) { return o.delIPaddressIpv6(t, "2001:db8::2/64"); },
         "NetDelIPAddressIpv6 eth0 2001:db8::2/64"},
        {"setBondParams", [](auto& o, auto* t) { return o.setBondParams(t, params); },
         "SetBondHashPolicy eth0 200"},
        {"getBondParams", [](auto& o, auto* t) { return o.getBondParams(t, &params); },
         "GetBondHashPolicy eth0 params", 1, 0},
        {"miiDiagEx", [](auto& o, auto* t) { return o.miiDiagEx(t); }, "NetMiiDiag eth0 false"},
        {"getSystemHostIpv6",
         [](auto& o, auto* t) { return o.getSystemHostIpv6(t, text, 46, other, 4); },
         "NetGetSysIPv6byName eth0 text 46 other 4"},
        {"getSwitchPort",
         [](auto& o, auto* t) { return o.getSwitchPort(t, "02:00:00:00:00:09", 18); },
         "GetSwitchPortByMac eth0 02:00:00:00:00:09 (a place of its own)",
         5,
         -1,
         {},
         {Error("API3_GetSwitchPortByMAC", "GetSwitchPortByMac 02:00:00:00:00:09")}},
        {"API3_GetRealIP, in no slot",
         [](auto&, auto* t) { return API3_GetRealIP(t, text, 16, other, 16); },
         "NetGetIPbyName eth0 text other"},
    };
}

class SlotTest : public World {
protected:
    void SetUp() override
    {
        World::SetUp();
        kernel.Add("eth0");
        below::Reset();
        below::told.port = 5;
        below::doing["TrafCtrlGetBand"] = [] { count = 3; };
        below::places = {{text, "text"},     {other, "other"},        {&number, "number"},
                         {&count, "count"},  {&stat, "stat"},         {&ssh, "ssh"},
                         {ports, "ports"},   {&workMode, "workMode"}, {&bondMode, "bondMode"},
                         {limits, "limits"}, {&params, "params"},     {cards, "cards"}};
        params.lacp = 200;
        count = 7;
        NetInterfaceDesc desc{};
        desc.name = "eth0";
        ASSERT_EQ(createNetInterface(&desc, &card), 0);
        Begin();
    }

    static void Begin()
    {
        below::asked.clear();
        ClearTrace();
        ClearLog();
    }

    NetInterface* card = nullptr;
};

LogLines Both(LogLines lines, const LogLines& others)
{
    lines.insert(lines.end(), others.begin(), others.end());
    return lines;
}

TEST_F(SlotTest, ArgumentsAreHandedOnAndSuccessIsTold)
{
    for (const Row& row : Rows()) {
        SCOPED_TRACE(row.name);
        Begin();
        EXPECT_EQ(row.call(*card, card), row.done);
        EXPECT_EQ(below::asked, Texts{row.asks});
        EXPECT_EQ(Log(), row.log);
    }
}

TEST_F(SlotTest, ARefusalIsTold)
{
    below::refusing = {"all"};
    for (const Row& row : Rows()) {
        SCOPED_TRACE(row.name);
        Begin();
        EXPECT_EQ(row.call(*card, card), row.refused);
        EXPECT_EQ(below::asked, Texts{row.asks});
        EXPECT_EQ(Log(), Both(row.log, row.refusalLog));
    }
    EXPECT_EQ(count, 7);
}

TEST_F(SlotTest, NoObjectIsRefusedInSilence)
{
    for (const Row& row : Rows()) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.call(*card, nullptr), -1);
    }
    EXPECT_EQ(card->addRef(nullptr), -1);
    EXPECT_EQ(card->release(nullptr), -1);
    EXPECT_EQ(card->arpCheck(nullptr), -1);
    EXPECT_EQ(card->getBondMembers(nullptr, nullptr, nullptr), -1);
    EXPECT_EQ(card->addRoute(nullptr, "10.0.0.0", "255.0.0.0"), -1);
    EXPECT_EQ(card->delRoute(nullptr, nullptr, nullptr), -1);
    EXPECT_EQ(card->ipPortCtrl(nullptr, "10.0.0.9", 80, 2), -1);
    EXPECT_EQ(card->ping(nullptr, "10.0.0.9", 3, 1), -1);
    EXPECT_EQ(API3_NetSetModeAndSpeed(nullptr, 1), -1);
    EXPECT_EQ(below::asked, Texts{});
    EXPECT_EQ(TraceOf({"open", "socket", "ioctl", "calloc"}), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

/// Where the name of eth0 stands in what is asked, no name stands for an object without one.
TEST_F(SlotTest, AnObjectWithoutANameAsksWithNone)
{
    below::refusing = {"all"};
    NetInterface nameless = *card;
    nameless.priv = nullptr;
    for (const Row& row : Rows()) {
        SCOPED_TRACE(row.name);
        Begin();
        std::string asks = row.asks;
        const size_t name = asks.find(" eth0");
        if (name != std::string::npos) asks.replace(name, 5, " NULL");
        EXPECT_EQ(row.call(*card, &nameless), row.refused);
        const bool ofAllCards = row.asks.rfind("RouteDelDef", 0) == 0;  // what no name means there
        EXPECT_EQ(below::asked, ofAllCards ? Texts{} : Texts{asks});
    }
}

TEST_F(SlotTest, AnObjectWithoutANameIsLoggedAsSuch)
{
    below::refusing = {"all"};
    NetInterface nameless = *card;
    nameless.priv = nullptr;
    EXPECT_EQ(card->setHostIP(&nameless, "10.0.0.2", "255.0.0.0"), -1);
    EXPECT_EQ(card->setGateway(&nameless, "10.0.0.1"), -1);
    EXPECT_EQ(card->addRoute(&nameless, "default", "255.0.0.0"), -1);
    EXPECT_EQ(card->delRoute(&nameless, "default", nullptr), -1);
    EXPECT_EQ(
        Log(),
        (LogLines{Info("API3_NetSetHostIP", "SetIp name (null) addr 10.0.0.2 mask 255.0.0.0"),
                  Info("API3_NetSetGateway", "SetGw name (null) gateway 10.0.0.1"),
                  Info("API3_AddIPv4Route", "api3 add addr default mask 255.0.0.0 name (null)"),
                  Info("API3_DelIPv4Route", "api3 del addr default mask (null) name (null)")}));
    EXPECT_EQ(below::asked, (Texts{"NetSetIPByName NULL 10.0.0.2 255.0.0.0",
                                   "NetSetGatewaybyName NULL 10.0.0.1", "RouteAddDefIPv4 NULL"}));
}

TEST_F(SlotTest, AMissingTextIsRefusedBeforeItIsLogged)
{
    EXPECT_EQ(card->setHostIP(card, nullptr, "255.0.0.0"), -1);
    EXPECT_EQ(card->setHostIP(card, "10.0.0.2", nullptr), -1);
    EXPECT_EQ(card->setGateway(card, nullptr), -1);
    EXPECT_EQ(card->ping(card, nullptr, 3, 0), -1);
    EXPECT_EQ(card->ping(card, nullptr, 3, 1), -1);
    EXPECT_EQ(card->addRouteIpv6(card, nullptr, 48), -1);
    EXPECT_EQ(card->delRouteIpv6(card, nullptr, 48), -1);
    EXPECT_EQ(card->delRouteIpv6(card, nullptr, -2), -1);
    EXPECT_EQ(card->getBondParams(card, nullptr), -1);
    EXPECT_EQ(below::asked, Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(SlotTest, WhatIsWantedIsLoggedBeforeItIsDone)
{
    static LogLines said;
    for (const char* operation : {"NetSetIPByName", "NetSetGatewaybyName", "RouteAddDefIPv4",
                                  "RouteDelDefIPv4", "RouteDelAllIPv4"}) {
        below::doing[operation] = [] { said = Log(); };
    }
    int (*const calls[])(NetInterface*) = {
        [](auto* c) { return c->setHostIP(c, "10.0.0.2", "255.0.0.0"); },
        [](auto* c) { return c->setGateway(c, "10.0.0.1"); },
        [](auto* c) { return c->addRoute(c, "default", ""); },
        [](auto* c) { return c->delRoute(c, "default", ""); },
        [](auto* c) { return c->delRoute(c, nullptr, nullptr); }};
    for (const auto& call : calls) {
        Begin();
        said.clear();
        EXPECT_EQ(call(card), 0);
        EXPECT_EQ(said.size(), 1U) << testing::PrintToString(below::asked);
        EXPECT_EQ(said, Log());
    }
}

// ---- sizes

struct SizedSlot {
    const char* name;
    int needed;
    int (*call)(NetInterface* card, int size);
};

const SizedSlot kSized[] = {
    {"getHostIP, address", 16,
     [](auto* c, int size) { return c->getHostIP(c, text, size, other, 16); }},
    {"getHostIP, mask", 16,
     [](auto* c, int size) { return c->getHostIP(c, text, 16, other, size); }},
    {"getRealHostIP, address", 16,
     [](auto* c, int size) { return c->getRealHostIP(c, text, size, other, 16); }},
    {"getRealHostIP, mask", 16,
     [](auto* c, int size) { return c->getRealHostIP(c, text, 16, other, size); }},
    {"getGateway", 16, [](auto* c, int size) { return c->getGateway(c, text, size); }},
    {"getMAC", 18, [](auto* c, int size) { return c->getMAC(c, text, size); }},
    {"getDNSAddress, first", 16,
     [](auto* c, int size) { return c->getDNSAddress(c, text, size, other, 16); }},
    {"getDNSAddress, second", 16,
     [](auto* c, int size) { return c->getDNSAddress(c, text, 16, other, size); }},
    {"getSwitchPort", 18,
     [](auto* c, int size) { return c->getSwitchPort(c, "02:00:00:00:00:09", size); }},
    {"ipToMac", 18, [](auto* c, int size) { return c->ipToMac(c, "10.0.0.9", text, size); }},
};

TEST_F(SlotTest, APlaceThatIsTooSmallIsRefusedInSilence)
{
    for (const SizedSlot& slot : kSized) {
        for (const int size : {slot.needed - 1, 0, -1}) {
            SCOPED_TRACE(testing::Message() << slot.name << " " << size);
            EXPECT_EQ(slot.call(card, size), -1);
        }
    }
    EXPECT_EQ(below::asked, Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(SlotTest, APlaceThatJustFitsIsTaken)
{
    for (const SizedSlot& slot : kSized) {
        SCOPED_TRACE(slot.name);
        Begin();
        EXPECT_NE(slot.call(card, slot.needed), -1);
        EXPECT_EQ(below::asked.size(), 1U);
    }
}

// ---- slots with rules of their own

class ArpCheckSlotTest : public SlotTest {};

TEST_F(ArpCheckSlotTest, TheAnswerIsHandedOnAsItIs)
{
    for (const int answer : {0, 1, 2, 3, -1}) {
        below::told.number = answer;
        below::asked.clear();
        EXPECT_EQ(card->arpCheck(card), answer);
        EXPECT_EQ(below::asked, Texts{"NetArpCheck eth0"});
    }
    EXPECT_EQ(Log(), LogLines{});
}

class PingSlotTest : public SlotTest {};

TEST_F(PingSlotTest, AnotherFamilyIsRefusedByName)
{
    EXPECT_EQ(card->ping(card, "10.0.0.9", 3, 1), -1);
    EXPECT_EQ(card->ping(card, "10.0.0.9", 3, -1), -1);
    EXPECT_EQ(below::asked, Texts{});
    EXPECT_EQ(Log(), (LogLines{Error("API3_Ping", "IpType 1 not support"),
                               Error("API3_Ping", "IpType -1 not support")}));
}

class GetSwitchPortSlotTest : public SlotTest {};

TEST_F(GetSwitchPortSlotTest, ThePortIsTheResult)
{
    for (const int port : {0, 7, 255, -1}) {
        below::told.port = port;
        EXPECT_EQ(card->getSwitchPort(card, "02:00:00:00:00:09", 18), port);
    }
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(GetSwitchPortSlotTest, AMissingAddressIsNamedAsSuch)
{
    below::refusing = {"GetSwitchPortByMac"};
    EXPECT_EQ(card->getSwitchPort(card, nullptr, 18), -1);
    EXPECT_EQ(Log(), LogLines{Error("API3_GetSwitchPortByMAC", "GetSwitchPortByMac (null)")});
}

class GetBandWidthSlotTest : public SlotTest {};

TEST_F(GetBandWidthSlotTest, TheNumberOfEntriesIsTheResult)
{
    for (const int entries : {0, 3}) {
        below::doing["TrafCtrlGetBand"] = [entries] { count = entries; };
        EXPECT_EQ(card->getBandWidth(card, limits, &count), entries);
    }
}

TEST_F(GetBandWidthSlotTest, AMissingPlaceIsRefused)
{
    below::refusing = {"TrafCtrlGetBand"};
    EXPECT_EQ(card->getBandWidth(card, limits, nullptr), -1);
    EXPECT_EQ(below::asked, Texts{"TrafCtrlGetBand eth0 limits NULL"});
}

class IpPortCtrlSlotTest : public SlotTest {};

TEST_F(IpPortCtrlSlotTest, AnotherWishIsRefusedByName)
{
    for (const int ctrl : {2, -1}) {
        ClearLog();
        EXPECT_EQ(card->ipPortCtrl(card, "10.0.0.9", 80, ctrl), -1);
        EXPECT_EQ(Log(), LogLines{Error("API3_IPPortControl", "unknow cmd")});
    }
    EXPECT_EQ(below::asked, Texts{});
}

class SetSshSlotTest : public SlotTest {};

TEST_F(SetSshSlotTest, TheAnswerIsHandedOnAsItIs)
{
    for (const int answer : {0, -1, 3}) {
        below::told.number = answer;
        below::asked.clear();
        EXPECT_EQ(card->setSSH(card, &ssh), answer);
        EXPECT_EQ(below::asked, Texts{"SetSSHStatus ssh"});
    }
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(SetSshSlotTest, NullIsToldInTheLog)
{
    const LogLines said = {Error("API3_setSSH", "Set SSH failed!\n")};
    EXPECT_EQ(card->setSSH(nullptr, &ssh), -1);
    EXPECT_EQ(Log(), said);
    ClearLog();
    EXPECT_EQ(card->setSSH(card, nullptr), -1);
    EXPECT_EQ(Log(), said);
    EXPECT_EQ(below::asked, Texts{});
}

class GetBondParamsSlotTest : public SlotTest {};

TEST_F(GetBondParamsSlotTest, FillsThePolicyAlone)
{
    memset(&params, '#', sizeof(params));
    below::places = {{&params.lacp, "lacp"}};
    below::doing["GetBondHashPolicy"] = [] { params.lacp = 2; };
    EXPECT_EQ(card->getBondParams(card, &params), 1);
    EXPECT_EQ(below::asked, Texts{"GetBondHashPolicy eth0 lacp"});
    EXPECT_EQ(params.lacp, 2);
    EXPECT_EQ(std::string(params.reserved, sizeof(params.reserved)),
              std::string(sizeof(params.reserved), '#'));
}

class SetModeAndSpeedTest : public SlotTest {};

TEST_F(SetModeAndSpeedTest, IsNotSupported)
{
    EXPECT_EQ(API3_NetSetModeAndSpeed(card, 1), -1);
    EXPECT_EQ(Log(), LogLines{Error("API3_NetSetModeAndSpeed", "not support")});
}

// ---- members of a bond

class GetBondMembersSlotTest : public SlotTest {
protected:
    void SetUp() override
    {
        SlotTest::SetUp();
        below::told.members = {"eth1", "a-long-name-015"};
        below::told.mode = nicBond802_3ad;
        memset(list, '#', sizeof(list));
    }

    /// Asks for `capacity` members. Whatever lies behind those told stays as it was.
    int Ask(int capacity)
    {
        num = capacity;
        const int result = card->getBondMembers(card, list, &num);
        const auto* end = reinterpret_cast<const char*>(list + 3);
        const auto* begin = reinterpret_cast<const char*>(list + (result == 0 ? num : 0));
        EXPECT_TRUE(std::all_of(begin, end, [](char byte) { return byte == '#'; }));
        return result;
    }

    /// True when the record holds the name, the mode, and nothing else.
    static bool Is(const NetInterfaceInfo& record, const std::string& name, NICBondMode mode)
    {
        NetInterfaceInfo expected;
        memset(&expected, 0, sizeof(expected));
        snprintf(expected.name, sizeof(expected.name), "%s", name.c_str());
        expected.bond = mode;
        return memcmp(&record, &expected, sizeof(expected)) == 0;
    }

    const Texts kAsks = {"GetBondMembers eth0 (a place of its own) 32",
                         "GetBondMode eth0 (a place of its own)"};
    NetInterfaceInfo list[3];
    int num = 0;
};

TEST_F(GetBondMembersSlotTest, TellsNamesAndModeAndNothingElse)
{
    EXPECT_EQ(Ask(3), 0);
    EXPECT_EQ(num, 2);
    EXPECT_TRUE(Is(list[0], "eth1", nicBond802_3ad));
    EXPECT_TRUE(Is(list[1], "a-long-name-015", nicBond802_3ad));
    EXPECT_EQ(below::asked, kAsks);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(GetBondMembersSlotTest, AListThatJustFitsIsEnough)
{
    EXPECT_EQ(Ask(2), 0);
    EXPECT_EQ(num, 2);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(GetBondMembersSlotTest, AListThatIsTooSmallIsFilledAsFarAsItGoes)
{
    for (const int capacity : {1, 0}) {
        ClearLog();
        memset(list, '#', sizeof(list));
        EXPECT_EQ(Ask(capacity), 0);
        EXPECT_EQ(num, capacity);
        EXPECT_EQ(Log(),
                  LogLines{Warn("API3_GetBondMember", "NetInterfaceInfo list is too small")});
        EXPECT_TRUE(capacity == 0 || Is(list[0], "eth1", nicBond802_3ad));
    }
}

TEST_F(GetBondMembersSlotTest, ABondWithoutMembersIsAnEmptyList)
{
    below::told.members = {};
    EXPECT_EQ(Ask(3), 0);
    EXPECT_EQ(num, 0);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(GetBondMembersSlotTest, AModeThatCannotBeReadCountsAsActiveBackup)
{
    below::refusing = {"GetBondMode"};
    EXPECT_EQ(Ask(3), 0);
    EXPECT_TRUE(Is(list[0], "eth1", nicBondActiveBackup));
    EXPECT_TRUE(Is(list[1], "a-long-name-015", nicBondActiveBackup));
    EXPECT_EQ(Log(), LogLines{Warn("API3_GetBondMember", "bond mode error")});
}

TEST_F(GetBondMembersSlotTest, TheListIsJudgedBeforeTheModeIsRead)
{
    below::refusing = {"GetBondMode"};
    EXPECT_EQ(Ask(1), 0);
    EXPECT_EQ(num, 1);
    EXPECT_TRUE(Is(list[0], "eth1", nicBondActiveBackup));
    EXPECT_EQ(Log(), (LogLines{Warn("API3_GetBondMember", "NetInterfaceInfo list is too small"),
                               Warn("API3_GetBondMember", "bond mode error")}));
}

TEST_F(GetBondMembersSlotTest, AnUnreadableBondChangesNothing)
{
    below::refusing = {"GetBondMembers"};
    EXPECT_EQ(Ask(3), -1);
    EXPECT_EQ(num, 3);
    EXPECT_EQ(below::asked, Texts{kAsks[0]});
    EXPECT_EQ(Log(), LogLines{Error("API3_GetBondMember", "GetBondMembers error.")});
}

TEST_F(GetBondMembersSlotTest, NullAndANegativeCountAreRefusedInSilence)
{
    num = 3;
    EXPECT_EQ(card->getBondMembers(nullptr, list, &num), -1);
    EXPECT_EQ(card->getBondMembers(card, nullptr, &num), -1);
    EXPECT_EQ(card->getBondMembers(card, list, nullptr), -1);
    EXPECT_EQ(Ask(-1), -1);
    EXPECT_EQ(num, -1);
    EXPECT_EQ(below::asked, Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

// ---- the module

class NetApi3ModuleTest : public SlotTest {};

TEST_F(NetApi3ModuleTest, OperationsHandOnAndTranslate)
{
    static char name[16];
    static NetInterfaceInfo list[2];
    static NetVirtInterInfo virtInfo;
    static NetVirtInterName virtName;
    below::places = {{name, "name"},
                     {list, "list"},
                     {&number, "number"},
                     {&virtInfo, "virtInfo"},
                     {&virtName, "virtName"}};
    const struct {
        int (*call)();
        const char* asks;
    } rows[] = {
        {[] { return getNetInterfaceList(list, &number); }, "NetGetAllInterface list number"},
        {[] { return getDefaultNetInterface(name, 16); }, "NetGetDefEth name 16"},
        {[] { return setDefaultNetInterface("eth1"); }, "NetSetDefEth eth1"},
        {[] { return disableRoute(7); }, "RouteControl 7"},
        {[] { return addNetVirtInterface(&virtInfo); }, "NetVirtInterAdd virtInfo"},
        {[] { return delNetVirtInterface(&virtName); }, "NetVirtInterDel virtName"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.asks);
        below::asked.clear();
        below::refusing = {};
        EXPECT_EQ(row.call(), 0);
        below::refusing = {"all"};
        EXPECT_EQ(row.call(), -1);
        EXPECT_EQ(below::asked, (Texts{row.asks, row.asks}));
    }
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NetApi3ModuleTest, ThirtyTwoInterfacesAtMost)
{
    number = 0;
    EXPECT_EQ(getNetInterfaceMaxNum(&number), 0);
    EXPECT_EQ(number, 32);
    EXPECT_EQ(getNetInterfaceMaxNum(nullptr), -1);
    EXPECT_EQ(below::asked, Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

}  // namespace
