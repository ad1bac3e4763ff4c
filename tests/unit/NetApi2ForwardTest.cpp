// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Version 2 functions that test sizes, call one operation below and translate its result.

#include "NetApi2_0.h"

#include "fake/World.h"

#include <cstring>
#include <functional>

using namespace fake;

namespace {

// ---- the operations below, which only note what they are asked

std::vector<std::string> asked;
bool answer = true;

// What the tests hand over to be written, told by its address.
char first[64];
char second[64];
char* list[4];
int32_t number;
PoeInfo_t poe;
NetRouteTableInfo route;
NetARPEntry entry;

std::string Told(const void* address)
{
    const std::vector<std::pair<const void*, std::string>> known = {
        {nullptr, "NULL"},    {first, "&first"}, {second, "&second"}, {list, "&list"},
        {&number, "&number"}, {&poe, "&poe"},    {&route, "&route"},  {&entry, "&entry"}};
    for (const auto& [where, name] : known) {
        if (where == address) return name;
    }
    return "";
}

std::string Told(const char* text)
{
    const std::string known = Told(static_cast<const void*>(text));
    return known.empty() ? text : known;
}

std::string Told(int value)
{
    return std::to_string(value);
}

std::string Told(uint32_t value)
{
    return std::to_string(value);
}

template <class... Arguments>
bool Ask(std::string call, Arguments... arguments)
{
    ((call += " " + Told(arguments)), ...);
    asked.push_back(call);
    return answer;
}

}  // namespace

extern "C" {

bool __wrap_NetSetIPByName(const char* name, const char* addr, const char* mask)
{
    return Ask("NetSetIPByName", name, addr, mask);
}

bool __wrap_NetSetGatewaybyName(const char* name, const char* addr)
{
    return Ask("NetSetGatewaybyName", name, addr);
}

bool __wrap_NetGetIPbyName(const char* name, char* addr, char* mask)
{
    return Ask("NetGetIPbyName", name, addr, mask);
}

bool __wrap_NetGetGatewaybyName(const char* name, char* addr)
{
    return Ask("NetGetGatewaybyName", name, addr);
}

bool __wrap_NetGetMacbyName(const char* name, char* addr)
{
    return Ask("NetGetMacbyName", name, addr);
}

bool __wrap_NetSetMacbyName(const char* name, const char* addr)
{
    return Ask("NetSetMacbyName", name, addr);
}

bool __wrap_NetSetMtubyName(const char* name, const int mtu)
{
    return Ask("NetSetMtubyName", name, mtu);
}

bool __wrap_NetGetMtubyName(const char* name, int* mtu)
{
    return Ask("NetGetMtubyName", name, mtu);
}

bool __wrap_GetMacByIPFromARP(const char* ip, char* mac)
{
    return Ask("GetMacByIPFromARP", ip, mac);
}

bool __wrap_GetIPv4DnsServer(char* primary, char* secondary)
{
    return Ask("GetIPv4DnsServer", primary, secondary);
}

bool __wrap_SetIPv4DnsServer(const char* primary, const char* secondary)
{
    return Ask("SetIPv4DnsServer", primary, secondary);
}

bool __wrap_GetIPv6DnsServer(char* primary, char* secondary, int len)
{
    return Ask("GetIPv6DnsServer", primary, secondary, len);
}

bool __wrap_SetIPv6DnsServer(const char* primary, const char* secondary)
{
    return Ask("SetIPv6DnsServer", primary, secondary);
}

bool __wrap_NetMiiDiag(const char* name, bool bcheckSlaves)
{
    return Ask("NetMiiDiag", name, bcheckSlaves ? "with its master" : "alone");
}

bool __wrap_Net_MiiDiag(const char* name)
{
    return Ask("Net_MiiDiag", name);
}

bool __wrap_NetGetDefEth(char* name, int len)
{
    return Ask("NetGetDefEth", name, len);
}

bool __wrap_NetSetDefEth(const char* name)
{
    return Ask("NetSetDefEth", name);
}

bool __wrap_UnBond(const char* bondName)
{
    return Ask("UnBond", bondName);
}

bool __wrap_GetBondMembers(const char* bondName, char** ethList, int* ethNum)
{
    return Ask("GetBondMembers", bondName, ethList, ethNum);
}

bool __wrap_NetDelIPAddressIpv6(const char* name, const char* addr)
{
    return Ask("NetDelIPAddressIpv6", name, addr);
}

bool __wrap_NetSetIPv6byName(const char* name, const char* addr, const char* perfix)
{
    return Ask("NetSetIPv6byName", name, addr, perfix);
}

bool __wrap_NetGetIPv6byName(const char* name, char* addr, int ipLen, char* perfix, int perFixLen)
{
    return Ask("NetGetIPv6byName", name, addr, ipLen, perfix, perFixLen);
}

bool __wrap_NetSetGatewayIPv6byName(const char* name, const char* addr)
{
    return Ask("NetSetGatewayIPv6byName", name, addr);
}

bool __wrap_NetGetGatewayIPv6byName(const char* name, char* addr, int len)
{
    return Ask("NetGetGatewayIPv6byName", name, addr, len);
}

bool __wrap_NetGetLinkLocalAddressIpv6(const char* name, char* addr, int ipLen)
{
    return Ask("NetGetLinkLocalAddressIpv6", name, addr, ipLen);
}

bool __wrap_GetSwitchInterface(char* name, int len)
{
    return Ask("GetSwitchInterface", name, len);
}

bool __wrap_GetPoEPowerInfo(PoeInfo_t* poe_info)
{
    return Ask("GetPoEPowerInfo", poe_info);
}

bool __wrap_SetPoEPowerOn(uint32_t portmask)
{
    return Ask("SetPoEPowerOn", portmask);
}

bool __wrap_SetPoEPowerOff(uint32_t portmask)
{
    return Ask("SetPoEPowerOff", portmask);
}

bool __wrap_SetPoETotalPower(uint32_t power)
{
    return Ask("SetPoETotalPower", power);
}

bool __wrap_RouteAdd(NetRouteTableInfo* cmd)
{
    return Ask("RouteAdd", cmd);
}

bool __wrap_RouteDel(NetRouteTableInfo* cmd)
{
    return Ask("RouteDel", cmd);
}

bool __wrap_RouteGetAllInfo(NetRouteTableInfo* routes, int* num)
{
    return Ask("RouteGetAllInfo", routes, num);
}

bool __wrap_Bridge(const char* brName, char** ethList, int ethNum)
{
    return Ask("Bridge", brName, ethList, ethNum);
}

bool __wrap_UnBridge(const char* brName)
{
    return Ask("UnBridge", brName);
}

bool __wrap_PortCtrlDisablePort(const char* ipAddr, int port)
{
    return Ask("PortCtrlDisablePort", ipAddr, port);
}

bool __wrap_PortCtrlEnablePort(const char* ipAddr, int port)
{
    return Ask("PortCtrlEnablePort", ipAddr, port);
}

bool __wrap_BridgeIsEdgePort(const char* brName, const char* ethName)
{
    return Ask("BridgeIsEdgePort", brName, ethName);
}

bool __wrap_BridgeDelEdgePort(const char* brName, const char* ethName)
{
    return Ask("BridgeDelEdgePort", brName, ethName);
}

bool __wrap_BridgeAddEdgePort(const char* brName, const char* ethName)
{
    return Ask("BridgeAddEdgePort", brName, ethName);
}

bool __wrap_TrafCtrlUnSetBand(const char* name, const char* ipAddr)
{
    return Ask("TrafCtrlUnSetBand", name, ipAddr);
}

bool __wrap_arpSetStaticEntry(const NetARPEntry* arpInfo)
{
    return Ask("arpSetStaticEntry", arpInfo);
}

bool __wrap_arpDelStaticEntry(const NetARPEntry* arpInfo)
{
    return Ask("arpDelStaticEntry", arpInfo);
}

bool __wrap_arpGetAllStaticEntry(NetARPEntry* arpInfo, int* num)
{
    return Ask("arpGetAllStaticEntry", arpInfo, num);
}

bool __wrap_arpGetARPStaticInfoByIP(const char* ip, NetARPEntry* arpInfo, int* num)
{
    return Ask("arpGetARPStaticInfoByIP", ip, arpInfo, num);
}

}  // extern "C"

namespace {

using Call = std::function<int32_t()>;

/// The list that an operation reads is the caller's own.
const char** Cards()
{
    return const_cast<const char**>(list);
}

class ForwardWorld : public World {
protected:
    void SetUp() override
    {
        World::SetUp();
        asked.clear();
        answer = true;
        number = 1;
    }
};

// ---- forwards

constexpr char kSilent[] = "";

struct Forward {
    std::string name;
    Call call;
    std::string asks;
    std::string message;  // of a failure, at Error; `kSilent`: none here
};

const Forward kForwards[] = {
    // the first card
    {"NetSetHostIP", [] { return NetSetHostIP("10.0.0.2", "255.0.0.0"); },
     "NetSetIPByName eth0 10.0.0.2 255.0.0.0", "NetSetIPByName eth0 10.0.0.2 255.0.0.0 failed."},
    {"NetSetGateway", [] { return NetSetGateway("10.0.0.1"); }, "NetSetGatewaybyName eth0 10.0.0.1",
     "NetSetGatewaybyName eth0 10.0.0.1 failed."},
    {"NetGetHostIP", [] { return NetGetHostIP(first, 16, second, 16); },
     "NetGetIPbyName eth0 &first &second", "failed."},
    {"NetGetGateway", [] { return NetGetGateway(first, 16); }, "NetGetGatewaybyName eth0 &first",
     "failed"},
    // a named card
    {"NetSetHostIPEx", [] { return NetSetHostIPEx("eth1", "10.0.0.2", "255.0.0.0"); },
     "NetSetIPByName eth1 10.0.0.2 255.0.0.0", "failed"},
    {"NetSetGatewayEx", [] { return NetSetGatewayEx("eth1", "10.0.0.1"); },
     "NetSetGatewaybyName eth1 10.0.0.1", "failed"},
    {"NetGetHostIPEx", [] { return NetGetHostIPEx("eth1", first, 16, second, 16); },
     "NetGetIPbyName eth1 &first &second", "failed"},
    {"NetGetGatewayEx", [] { return NetGetGatewayEx("eth1", first, 16); },
     "NetGetGatewaybyName eth1 &first", "failed"},
    {"NetGetMAC", [] { return NetGetMAC("eth1", first, 18); }, "NetGetMacbyName eth1 &first",
     "failed"},
    {"NetSetMAC", [] { return NetSetMAC("eth1", "02:00:00:00:00:0a"); },
     "NetSetMacbyName eth1 02:00:00:00:00:0a", "failed"},
    {"NetSetMTU", [] { return NetSetMTU("eth1", -9); }, "NetSetMtubyName eth1 -9", "failed"},
    {"NetGetMTU", [] { return NetGetMTU("eth1", &number); }, "NetGetMtubyName eth1 &number",
     "failed"},
    {"NetWorkGetMac", [] { return NetWorkGetMac("10.0.0.9", first); },
     "GetMacByIPFromARP 10.0.0.9 &first", "failed"},
    // DNS
    {"NetGetDNSAddress", [] { return NetGetDNSAddress(first, 16, second, 16); },
     "GetIPv4DnsServer &first &second", "failed"},
    {"NetSetDNSAddress", [] { return NetSetDNSAddress("8.8.8.8", "8.8.4.4"); },
     "SetIPv4DnsServer 8.8.8.8 8.8.4.4", "failed"},
    {"NetGetDNSAddressip6", [] { return NetGetDNSAddressip6(first, 46, second, 46); },
     "GetIPv6DnsServer &first &second 46", "failed"},
    {"NetSetDNSAddressip6", [] { return NetSetDNSAddressip6("2001::8", "2001::4"); },
     "SetIPv6DnsServer 2001::8 2001::4", "failed"},
    // link
    {"mii_diag", [] { return mii_diag(first); }, "NetMiiDiag &first with its master", kSilent},
    {"NetGetLinkStatus", [] { return NetGetLinkStatus("eth1"); }, "Net_MiiDiag eth1", kSilent},
    // default card
    {"NetGetDefaultEth", [] { return NetGetDefaultEth(first); }, "NetGetDefEth &first 16",
     "failed"},
    {"NetSetDefaultEth", [] { return NetSetDefaultEth("eth1"); }, "NetSetDefEth eth1", "failed"},
    // bonds
    {"NetWorkUnBondEx", [] { return NetWorkUnBondEx("bond1"); }, "UnBond bond1", "unbond error."},
    {"NetGetBondSlaves", [] { return NetGetBondSlaves("bond1", list, &number); },
     "GetBondMembers bond1 &list &number", kSilent},
    // IPv6
    {"NetIfDelIpv6Addr", [] { return NetIfDelIpv6Addr("eth1", first); },
     "NetDelIPAddressIpv6 eth1 &first", "failed."},
    {"NetSetHostIPEx6", [] { return NetSetHostIPEx6("eth1", "fd00::2", "64"); },
     "NetSetIPv6byName eth1 fd00::2 64", "failed."},
    {"NetGetHostIPEx6", [] { return NetGetHostIPEx6("eth1", first, 46, second, 4); },
     "NetGetIPv6byName eth1 &first 46 &second 4", "failed."},
    {"NetSetGatewayEx6", [] { return NetSetGatewayEx6("eth1", "fd00::1"); },
     "NetSetGatewayIPv6byName eth1 fd00::1", "failed."},
    {"NetGetGatewayEx6", [] { return NetGetGatewayEx6("eth1", first, 46); },
     "NetGetGatewayIPv6byName eth1 &first 46", "failed."},
    {"getScopeLinkAddr6", [] { return getScopeLinkAddr6("eth1", first, 50); },
     "NetGetLinkLocalAddressIpv6 eth1 &first 50", "failed."},
    // switch and PoE
    {"SwitchGetName", [] { return SwitchGetName(first); }, "GetSwitchInterface &first 16",
     "SwitchGetName failed."},
    {"SwitchGetNameEx", [] { return SwitchGetNameEx(first, 1); }, "GetSwitchInterface &first 1",
     kSilent},
    {"PoEGetPowerInfo", [] { return PoEGetPowerInfo(&poe); }, "GetPoEPowerInfo &poe", "failed"},
    {"PoESetPowerOn", [] { return PoESetPowerOn(0x80000001U); }, "SetPoEPowerOn 2147483649",
     "failed"},
    {"PoESetPowerOff", [] { return PoESetPowerOff(6); }, "SetPoEPowerOff 6", "failed"},
    {"PoESetTotalPower", [] { return PoESetTotalPower(120); }, "SetPoETotalPower 120", "failed"},
    // routes
    {"NetAddRoute", [] { return NetAddRoute(&route); }, "RouteAdd &route", kSilent},
    {"NetDelRoute", [] { return NetDelRoute(&route); }, "RouteDel &route", kSilent},
    {"NetGetAllRoute", [] { return NetGetAllRoute(&route, &number); },
     "RouteGetAllInfo &route &number", kSilent},
    // bridges
    {"CreateNetWorkBridge", [] { return CreateNetWorkBridge("br1", Cards(), 2); },
     "Bridge br1 &list 2", "failed"},
    {"DestoryNetWorkBridge", [] { return DestoryNetWorkBridge("br1"); }, "UnBridge br1", "failed"},
    {"NetIsEdgePort", [] { return NetIsEdgePort("eth1"); }, "BridgeIsEdgePort br0 eth1", "failed"},
    {"NetUnsetEdgePort", [] { return NetUnsetEdgePort("eth1"); }, "BridgeDelEdgePort br0 eth1",
     "failed"},
    {"NetSetEdgePort", [] { return NetSetEdgePort("eth1"); }, "BridgeAddEdgePort br0 eth1",
     "failed"},
    // ports and bandwidth
    {"NetDisableIpPort", [] { return NetDisableIpPort("10.0.0.9", 80); },
     "PortCtrlDisablePort 10.0.0.9 80", "failed"},
    {"NetEnableIpPort", [] { return NetEnableIpPort("10.0.0.9", 80); },
     "PortCtrlEnablePort 10.0.0.9 80", "failed"},
    {"NetUnSetBandWidth", [] { return NetUnSetBandWidth("eth1", "10.0.0.9"); },
     "TrafCtrlUnSetBand eth1 10.0.0.9", "failed"},
    // static ARP
    {"NetAddStaticARPEntry", [] { return NetAddStaticARPEntry(&entry); },
     "arpSetStaticEntry &entry", kSilent},
    {"NetDelStaticARPEntry", [] { return NetDelStaticARPEntry(&entry); },
     "arpDelStaticEntry &entry", kSilent},
    {"NetGetAllStaticARPEntry", [] { return NetGetAllStaticARPEntry(&entry, &number); },
     "arpGetAllStaticEntry &entry &number", kSilent},
    {"NetGetStaticARPInfoByIP", [] { return NetGetStaticARPInfoByIP("10.0.0.9", &entry, &number); },
     "arpGetARPStaticInfoByIP 10.0.0.9 &entry &number", kSilent},
};

class NetApi2ForwardTest : public ForwardWorld, public testing::WithParamInterface<Forward> {};

TEST_P(NetApi2ForwardTest, HandsItsArgumentsDownAndSucceedsInSilence)
{
    EXPECT_EQ(GetParam().call(), 0);
    EXPECT_EQ(asked, std::vector<std::string>{GetParam().asks});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_P(NetApi2ForwardTest, FailsWithItsMessageAfterOneTry)
{
    answer = false;
    const Forward& forward = GetParam();
    EXPECT_EQ(forward.call(), -1);
    EXPECT_EQ(asked, std::vector<std::string>{forward.asks});
    EXPECT_EQ(Log(), forward.message == kSilent ? LogLines{}
                                                : (LogLines{Error(forward.name, forward.message)}));
}

INSTANTIATE_TEST_SUITE_P(Each, NetApi2ForwardTest, testing::ValuesIn(kForwards),
                         [](const auto& row) { return row.param.name; });

// ---- what is tested first

struct Check {
    std::string name;
    std::vector<Call> refused;
};

Call WithNumber(int32_t value, const Call& call)
{
    return [value, call] {
        number = value;
        return call();
    };
}

const Call kAllRoutes = [] { return NetGetAllRoute(&route, &number); };
const Call kAllEntries = [] { return NetGetAllStaticARPEntry(&entry, &number); };
const Call kEntriesByIP = [] { return NetGetStaticARPInfoByIP("10.0.0.9", &entry, &number); };

const Check kChecks[] = {
    {"NetSetHostIP",
     {[] { return NetSetHostIP(nullptr, "255.0.0.0"); },
      [] { return NetSetHostIP("10.0.0.2", nullptr); }}},
    {"NetSetGateway", {[] { return NetSetGateway(nullptr); }}},
    {"NetGetHostIP",
     {[] { return NetGetHostIP(first, 15, second, 16); },
      [] { return NetGetHostIP(first, 16, second, 15); },
      [] { return NetGetHostIP(first, -1, second, 16); },
      [] { return NetGetHostIP(first, 16, second, INT32_MIN); }}},
    {"NetGetGateway",
     {[] { return NetGetGateway(first, 15); }, [] { return NetGetGateway(first, -1); }}},
    {"NetGetHostIPEx",
     {[] { return NetGetHostIPEx("eth1", first, 15, second, 16); },
      [] { return NetGetHostIPEx("eth1", first, 16, second, 15); },
      [] { return NetGetHostIPEx("eth1", first, -16, second, -16); }}},
    {"NetGetGatewayEx",
     {[] { return NetGetGatewayEx("eth1", first, 15); },
      [] { return NetGetGatewayEx("eth1", first, 0); }}},
    {"NetGetMAC",
     {[] { return NetGetMAC("eth1", first, 17); }, [] { return NetGetMAC("eth1", first, -18); }}},
    {"NetGetDNSAddress",
     {[] { return NetGetDNSAddress(first, 15, second, 16); },
      [] { return NetGetDNSAddress(first, 16, second, 15); },
      [] { return NetGetDNSAddress(first, 16, second, -16); }}},
    {"ArpCheck", {[] { return ArpCheck(nullptr); }}},
    {"SwitchGetNameEx",
     {[] { return SwitchGetNameEx(first, 0); }, [] { return SwitchGetNameEx(first, -1); }}},
    {"PoEGetPowerInfo", {[] { return PoEGetPowerInfo(nullptr); }}},
    {"NetAddRoute", {[] { return NetAddRoute(nullptr); }}},
    {"NetDelRoute", {[] { return NetDelRoute(nullptr); }}},
    {"NetGetAllRoute",
     {[] { return NetGetAllRoute(nullptr, &number); },
      [] { return NetGetAllRoute(&route, nullptr); }, WithNumber(0, kAllRoutes)}},
    {"NetAddStaticARPEntry", {[] { return NetAddStaticARPEntry(nullptr); }}},
    {"NetDelStaticARPEntry", {[] { return NetDelStaticARPEntry(nullptr); }}},
    {"NetGetAllStaticARPEntry",
     {[] { return NetGetAllStaticARPEntry(nullptr, &number); },
      [] { return NetGetAllStaticARPEntry(&entry, nullptr); }, WithNumber(0, kAllEntries),
      WithNumber(-1, kAllEntries)}},
    {"NetGetStaticARPInfoByIP",
     {[] { return NetGetStaticARPInfoByIP(nullptr, &entry, &number); },
      [] { return NetGetStaticARPInfoByIP("10.0.0.9", nullptr, &number); },
      [] { return NetGetStaticARPInfoByIP("10.0.0.9", &entry, nullptr); },
      WithNumber(0, kEntriesByIP), WithNumber(-1, kEntriesByIP)}},
};

class NetApi2CheckTest : public ForwardWorld, public testing::WithParamInterface<Check> {};

TEST_P(NetApi2CheckTest, RefusesInSilenceAndAsksNobody)
{
    for (const Call& call : GetParam().refused) EXPECT_EQ(call(), -1);
    EXPECT_EQ(asked, std::vector<std::string>{});
    EXPECT_EQ(Log(), LogLines{});
}

INSTANTIATE_TEST_SUITE_P(Each, NetApi2CheckTest, testing::ValuesIn(kChecks),
                         [](const auto& row) { return row.param.name; });

// ---- what is not tested here

class NetApi2LeftTest : public ForwardWorld {};

TEST_F(NetApi2LeftTest, PointersWithoutATestHereAreLeftToTheOperationBelow)
{
    answer = false;
    const std::pair<Call, std::string> calls[] = {
        {[] { return NetGetHostIP(nullptr, 16, nullptr, 16); }, "NetGetIPbyName eth0 NULL NULL"},
        {[] { return NetGetGateway(nullptr, 16); }, "NetGetGatewaybyName eth0 NULL"},
        {[] { return NetSetHostIPEx(nullptr, nullptr, nullptr); }, "NetSetIPByName NULL NULL NULL"},
        {[] { return NetSetGatewayEx(nullptr, nullptr); }, "NetSetGatewaybyName NULL NULL"},
        {[] { return NetGetHostIPEx(nullptr, nullptr, 16, nullptr, 16); },
         "NetGetIPbyName NULL NULL NULL"},
        {[] { return NetGetGatewayEx(nullptr, nullptr, 16); }, "NetGetGatewaybyName NULL NULL"},
        {[] { return NetGetMAC(nullptr, nullptr, 18); }, "NetGetMacbyName NULL NULL"},
        {[] { return NetSetMAC(nullptr, nullptr); }, "NetSetMacbyName NULL NULL"},
        {[] { return NetSetMTU(nullptr, 0); }, "NetSetMtubyName NULL 0"},
        {[] { return NetGetMTU(nullptr, nullptr); }, "NetGetMtubyName NULL NULL"},
        {[] { return NetWorkGetMac(nullptr, nullptr); }, "GetMacByIPFromARP NULL NULL"},
        {[] { return NetGetDNSAddress(nullptr, 16, nullptr, 16); }, "GetIPv4DnsServer NULL NULL"},
        {[] { return NetSetDNSAddress(nullptr, nullptr); }, "SetIPv4DnsServer NULL NULL"},
        {[] { return NetSetDNSAddressip6(nullptr, nullptr); }, "SetIPv6DnsServer NULL NULL"},
        {[] { return mii_diag(nullptr); }, "NetMiiDiag NULL with its master"},
        {[] { return NetGetLinkStatus(nullptr); }, "Net_MiiDiag NULL"},
        {[] { return NetGetDefaultEth(nullptr); }, "NetGetDefEth NULL 16"},
        {[] { return NetSetDefaultEth(nullptr); }, "NetSetDefEth NULL"},
        {[] { return NetWorkUnBondEx(nullptr); }, "UnBond NULL"},
        {[] { return NetGetBondSlaves(nullptr, nullptr, nullptr); },
         "GetBondMembers NULL NULL NULL"},
        {[] { return NetIfDelIpv6Addr(nullptr, nullptr); }, "NetDelIPAddressIpv6 NULL NULL"},
        {[] { return NetSetHostIPEx6(nullptr, nullptr, nullptr); },
         "NetSetIPv6byName NULL NULL NULL"},
        {[] { return NetGetHostIPEx6(nullptr, nullptr, -1, nullptr, 0); },
         "NetGetIPv6byName NULL NULL -1 NULL 0"},
        {[] { return NetSetGatewayEx6(nullptr, nullptr); }, "NetSetGatewayIPv6byName NULL NULL"},
        {[] { return NetGetGatewayEx6(nullptr, nullptr, -1); },
         "NetGetGatewayIPv6byName NULL NULL -1"},
        {[] { return getScopeLinkAddr6(nullptr, nullptr, 0); },
         "NetGetLinkLocalAddressIpv6 NULL NULL 0"},
        {[] { return SwitchGetName(nullptr); }, "GetSwitchInterface NULL 16"},
        {[] { return SwitchGetNameEx(nullptr, 1); }, "GetSwitchInterface NULL 1"},
        {[] { return CreateNetWorkBridge(nullptr, nullptr, -1); }, "Bridge NULL NULL -1"},
        {[] { return DestoryNetWorkBridge(nullptr); }, "UnBridge NULL"},
        {[] { return NetDisableIpPort(nullptr, -1); }, "PortCtrlDisablePort NULL -1"},
        {[] { return NetEnableIpPort(nullptr, -1); }, "PortCtrlEnablePort NULL -1"},
        {[] { return NetIsEdgePort(nullptr); }, "BridgeIsEdgePort br0 NULL"},
        {[] { return NetUnsetEdgePort(nullptr); }, "BridgeDelEdgePort br0 NULL"},
        {[] { return NetSetEdgePort(nullptr); }, "BridgeAddEdgePort br0 NULL"},
        {[] { return NetUnSetBandWidth(nullptr, nullptr); }, "TrafCtrlUnSetBand NULL NULL"},
    };
    for (const auto& [call, asks] : calls) {
        asked.clear();
        EXPECT_EQ(call(), -1) << asks;
        EXPECT_EQ(asked, std::vector<std::string>{asks});
    }
}

class NetGetAllRouteTest : public ForwardWorld {};

TEST_F(NetGetAllRouteTest, ANegativeNumberOfRoutesIsLeftToTheOperationBelow)
{
    EXPECT_EQ(WithNumber(-1, kAllRoutes)(), 0);
    EXPECT_EQ(asked, std::vector<std::string>{"RouteGetAllInfo &route &number"});
}

class NetGetDNSAddressip6Test : public ForwardWorld {};

TEST_F(NetGetDNSAddressip6Test, TheSmallerBufferTellsTheLength)
{
    EXPECT_EQ(NetGetDNSAddressip6(first, 64, second, 40), 0);
    EXPECT_EQ(NetGetDNSAddressip6(first, 40, second, 64), 0);
    EXPECT_EQ(NetGetDNSAddressip6(nullptr, -1, nullptr, 64), 0);
    EXPECT_EQ(asked, (std::vector<std::string>{"GetIPv6DnsServer &first &second 40",
                                               "GetIPv6DnsServer &first &second 40",
                                               "GetIPv6DnsServer NULL NULL -1"}));
}

// ---- the fixed bond

class NetWorkUnBondTest : public ForwardWorld {};

TEST_F(NetWorkUnBondTest, EndsTheFirstBond)
{
    EXPECT_EQ(NetWorkUnBond(), 0);
    answer = false;
    EXPECT_EQ(NetWorkUnBond(), -1);
    EXPECT_EQ(asked, (std::vector<std::string>{"UnBond bond0", "UnBond bond0"}));
    EXPECT_EQ(Log(), (LogLines{Error("NetWorkUnBondEx", "unbond error.")}));
}

// ---- version, and features that are gone

class LibvorlixGetVersionTest : public World {};

TEST_F(LibvorlixGetVersionTest, TellsSix)
{
    uint32_t version = 0;
    EXPECT_EQ(LibvorlixGetVersion(&version), QV_API_VERSION_RET_SUCCESS);
    EXPECT_EQ(version, 6U);
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Trace(), std::vector<std::string>{});  // nothing is read for it
}

TEST_F(LibvorlixGetVersionTest, NullHasAResultOfItsOwn)
{
    EXPECT_EQ(LibvorlixGetVersion(nullptr), QV_API_VERSION_RET_ERROR);
    EXPECT_EQ(static_cast<int32_t>(QV_API_VERSION_RET_ERROR), -2);
    EXPECT_EQ(Log(), (LogLines{Error("LibvorlixGetVersion", "LibvorlixGetVersion failed.")}));
}

struct Gone {
    std::string name;
    Call call;
    int32_t result;
    std::string message;
};

class NetApi2GoneTest : public ForwardWorld {};

NET_DDNS_CONFIG ddns;

const Gone kGone[] = {
    {"NetSetDDNSConfig", [] { return NetSetDDNSConfig(&ddns); }, -1, "unsupport!!!"},
    {"NetSetDDNSConfig", [] { return NetSetDDNSConfig(nullptr); }, -1, "unsupport!!!"},
    {"NetGetDDNSConfig", [] { return NetGetDDNSConfig(&ddns); }, -1, "unsupport!!!"},
    {"NetGetDDNSConfig", [] { return NetGetDDNSConfig(nullptr); }, -1, "unsupport!!!"},
    {"NetSetDNSDomain", [] { return NetSetDNSDomain("here.example"); }, 0, "unsupport"},
    {"NetSetDNSDomain", [] { return NetSetDNSDomain(nullptr); }, -1, kSilent},
    {"NetSetDNSHostName", [] { return NetSetDNSHostName("recorder"); }, 0, "unsupport"},
    {"NetSetDNSHostName", [] { return NetSetDNSHostName(nullptr); }, -1, kSilent},
    {"NetSetUbootIP", [] { return NetSetUbootIP("10.0.0.2", "255.0.0.0"); }, -1, "unsupport"},
    {"NetSetUbootIP", [] { return NetSetUbootIP(nullptr, nullptr); }, -1, "unsupport"},
    {"NetSetUbootGateway", [] { return NetSetUbootGateway("10.0.0.1"); }, -1, "unsupport"},
    {"NetSetUbootGateway", [] { return NetSetUbootGateway(nullptr); }, -1, "unsupport"},
    {"NetRouteGetText", [] { return NetRouteGetText("eth0", first, &number); }, -1, "unsupport."},
    {"NetRouteGetText", [] { return NetRouteGetText(nullptr, nullptr, nullptr); }, -1,
     "unsupport."},
    {"PoESetPortLinkFlagDown", [] { return PoESetPortLinkFlagDown(3); }, 0, kSilent},
    {"PoESetPortLinkFlagDown", [] { return PoESetPortLinkFlagDown(-1); }, 0, kSilent},
};

TEST_F(NetApi2GoneTest, OnlyTheMessageIsLeft)
{
    NET_DDNS_CONFIG before;
    memset(&before, '#', sizeof(before));
    ddns = before;
    for (const Gone& gone : kGone) {
        ClearLog();
        EXPECT_EQ(gone.call(), gone.result) << gone.name;
        EXPECT_EQ(Log(), gone.message == kSilent ? LogLines{}
                                                 : (LogLines{Error(gone.name, gone.message)}));
    }
    EXPECT_EQ(memcmp(&ddns, &before, sizeof(before)), 0);
    EXPECT_EQ(number, 1);
    EXPECT_EQ(asked, std::vector<std::string>{});
    EXPECT_EQ(TraceOf({"open", "fopen", "ioctl", "vfork"}), std::vector<std::string>{});
}

}  // namespace
