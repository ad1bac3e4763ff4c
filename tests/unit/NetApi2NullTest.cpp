// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Version 2: every pointer may be NULL and every number absurd, through all layers below.

#include "NetApi2_0.h"

#include "fake/World.h"

#include <climits>
#include <functional>

using namespace fake;

namespace {

struct Call {
    const char* name;
    std::function<int64_t()> call;
    int64_t result;
};

constexpr int32_t kMost = INT32_MAX;
constexpr int32_t kLeast = INT32_MIN;

const Call kCalls[] = {
    {"LibvorlixGetVersion", [] { return LibvorlixGetVersion(nullptr); }, -2},
    {"NetGetCaps", [] { return NetGetCaps(nullptr); }, -1},
    {"NetSetHostIP", [] { return NetSetHostIP(nullptr, nullptr); }, -1},
    {"NetSetGateway", [] { return NetSetGateway(nullptr); }, -1},
    {"NetGetHostIP", [] { return NetGetHostIP(nullptr, kMost, nullptr, kMost); }, -1},
    {"NetGetGateway", [] { return NetGetGateway(nullptr, kMost); }, -1},
    {"NetSetHostIPEx", [] { return NetSetHostIPEx(nullptr, nullptr, nullptr); }, -1},
    {"NetSetHostIPEx", [] { return NetSetHostIPEx("eth0", nullptr, nullptr); }, -1},
    {"NetSetHostIPEx", [] { return NetSetHostIPEx("eth0", "10.0.0.2", nullptr); }, -1},
    {"NetSetGatewayEx", [] { return NetSetGatewayEx("eth0", nullptr); }, -1},
    {"NetGetHostIPEx", [] { return NetGetHostIPEx("eth0", nullptr, kMost, nullptr, kMost); }, -1},
    {"NetGetGatewayEx", [] { return NetGetGatewayEx("eth0", nullptr, kMost); }, -1},
    {"NetGetMAC", [] { return NetGetMAC("eth0", nullptr, kMost); }, -1},
    {"NetSetMAC", [] { return NetSetMAC("eth0", nullptr); }, -1},
    {"NetSetMTU", [] { return NetSetMTU(nullptr, kLeast); }, -1},
    {"NetGetMTU", [] { return NetGetMTU("eth0", nullptr); }, -1},
    {"NetWorkGetMac", [] { return NetWorkGetMac("10.0.0.2", nullptr); }, -1},
    {"NetSetHostIPEx6", [] { return NetSetHostIPEx6("eth0", nullptr, nullptr); }, -1},
    {"NetGetHostIPEx6", [] { return NetGetHostIPEx6("eth0", nullptr, kMost, nullptr, kMost); }, -1},
    {"NetSetGatewayEx6", [] { return NetSetGatewayEx6("eth0", nullptr); }, -1},
    {"NetGetGatewayEx6", [] { return NetGetGatewayEx6("eth0", nullptr, kMost); }, -1},
    {"NetIfDelIpv6Addr", [] { return NetIfDelIpv6Addr("eth0", nullptr); }, -1},
    {"getScopeLinkAddr6", [] { return getScopeLinkAddr6("eth0", nullptr, kMost); }, -1},
    {"NetGetDNSAddress", [] { return NetGetDNSAddress(nullptr, kMost, nullptr, kMost); }, -1},
    {"NetSetDNSAddress", [] { return NetSetDNSAddress(nullptr, nullptr); }, -1},
    {"NetGetDNSAddressip6", [] { return NetGetDNSAddressip6(nullptr, kMost, nullptr, kLeast); },
     -1},
    {"NetSetDNSAddressip6", [] { return NetSetDNSAddressip6(nullptr, nullptr); }, -1},
    {"mii_diag", [] { return mii_diag(nullptr); }, -1},
    {"NetGetLinkStatus", [] { return NetGetLinkStatus(nullptr); }, -1},
    {"ArpCheck", [] { return ArpCheck(nullptr); }, -1},
    {"NetWorkPing", [] { return NetWorkPing(nullptr); }, -1},
    {"network_alive", [] { return network_alive(nullptr); }, -1},
    {"NetGetEthName", [] { return NetGetEthName(nullptr, kMost, nullptr); }, -1},
    {"NetGetDeviceName", [] { return NetGetDeviceName(nullptr, kMost); }, -1},
    {"NetGetAllEthDevice", [] { return NetGetAllEthDevice(nullptr, kMost); }, 0},
    {"NetGetEthDevice", [] { return NetGetEthDevice(nullptr, kMost); }, 0},
    {"NetGetStats", [] { return NetGetStats(nullptr, nullptr); }, -1},
    {"NetGetDefaultEth", [] { return NetGetDefaultEth(nullptr); }, -1},
    {"NetSetDefaultEth", [] { return NetSetDefaultEth(nullptr); }, -1},
    {"NetWorkSetEthStatus", [] { return NetWorkSetEthStatus(nullptr, kLeast); }, -1},
    {"NetRouteAddDelete",
     [] { return NetRouteAddDelete(static_cast<NetRouteOperate>(kLeast), nullptr); }, -1},
    {"NetRouteGetText", [] { return NetRouteGetText(nullptr, nullptr, nullptr); }, -1},
    {"NetAddRoute", [] { return NetAddRoute(nullptr); }, -1},
    {"NetDelRoute", [] { return NetDelRoute(nullptr); }, -1},
    {"NetGetAllRoute", [] { return NetGetAllRoute(nullptr, nullptr); }, -1},
    {"NetWorkBond", [] { return NetWorkBond(nullptr, kMost, 1); }, -1},
    {"NetWorkBondEx", [] { return NetWorkBondEx("bond0", nullptr, kLeast, 7); }, -1},
    {"NetWorkUnBondEx", [] { return NetWorkUnBondEx(nullptr); }, -1},
    {"NetWorkGetBondMode", [] { return NetWorkGetBondMode(nullptr, nullptr); }, -1},
    {"NetGetBondSlaves", [] { return NetGetBondSlaves("bond0", nullptr, nullptr); }, -1},
    {"NetIsBondingSlave", [] { return NetIsBondingSlave(nullptr, nullptr, kLeast); }, 0},
    {"CreateNetWorkBridge", [] { return CreateNetWorkBridge("br0", nullptr, kMost); }, -1},
    {"DestoryNetWorkBridge", [] { return DestoryNetWorkBridge(nullptr); }, -1},
    {"getBridgeDevicesInfo", [] { return getBridgeDevicesInfo(nullptr); }, 0},
    {"NetWorkGetBridgeInfo", [] { return NetWorkGetBridgeInfo(nullptr, kMost); }, -1},
    {"NetIsEdgePort", [] { return NetIsEdgePort(nullptr); }, -1},
    {"NetUnsetEdgePort", [] { return NetUnsetEdgePort(nullptr); }, -1},
    {"NetSetEdgePort", [] { return NetSetEdgePort(nullptr); }, -1},
    {"SwitchGetName", [] { return SwitchGetName(nullptr); }, -1},
    {"SwitchGetNameEx", [] { return SwitchGetNameEx(nullptr, kMost); }, -1},
    {"SwitchGetPortStatus", [] { return SwitchGetPortStatus(nullptr, kMost); }, -1},
    {"NetGetSwitchLinkStatus", [] { return NetGetSwitchLinkStatus(nullptr, nullptr, nullptr); },
     -1},
    {"PoEGetPowerInfo", [] { return PoEGetPowerInfo(nullptr); }, -1},
    {"NetAddStaticARPEntry", [] { return NetAddStaticARPEntry(nullptr); }, -1},
    {"NetDelStaticARPEntry", [] { return NetDelStaticARPEntry(nullptr); }, -1},
    {"NetGetAllStaticARPEntry", [] { return NetGetAllStaticARPEntry(nullptr, nullptr); }, -1},
    {"NetGetStaticARPInfoByIP", [] { return NetGetStaticARPInfoByIP(nullptr, nullptr, nullptr); },
     -1},
    {"NetDisableIpPort", [] { return NetDisableIpPort(nullptr, kLeast); }, -1},
    {"NetEnableIpPort", [] { return NetEnableIpPort(nullptr, kMost); }, -1},
    {"NetSetBandWidth", [] { return NetSetBandWidth(nullptr, nullptr, kMost); }, -1},
    {"NetGetBandWidth", [] { return NetGetBandWidth(nullptr, nullptr, kMost); }, -1},
    {"NetUnSetBandWidth", [] { return NetUnSetBandWidth(nullptr, nullptr); }, -1},
    {"NetSetDhcpIPRange", [] { return NetSetDhcpIPRange(nullptr, nullptr, nullptr, nullptr); }, -1},
};

class NetApi2NullTest : public World {
protected:
    void SetUp() override
    {
        World::SetUp();
        kernel.Add("eth0");
        kernel.Add("bond0");
        Put("/sys/class/net/bond0/bonding/slaves", "");
    }
};

TEST_F(NetApi2NullTest, IsAFailureThatChangesNothing)
{
    for (const Call& call : kCalls) {
        ClearTrace();
        EXPECT_EQ(call.call(), call.result) << call.name;
        EXPECT_EQ(TraceOf({"ioctl SIOCS", "ioctl SIOCADD", "ioctl SIOCDEL", "vfork", "sendto"}),
                  Texts{})
            << call.name;
    }
    EXPECT_EQ(HeldMutexes(), 0);
}

TEST_F(NetApi2NullTest, NoBufferIsWrittenBeyondASizeBelowOne)
{
    for (const int32_t size : {0, -1, kLeast}) {
        char byte = '#';
        char other = '#';
        EXPECT_EQ(NetGetHostIPEx6("eth0", &byte, size, &other, size), -1);
        EXPECT_EQ(NetGetGatewayEx6("eth0", &byte, size), -1);
        EXPECT_EQ(getScopeLinkAddr6("eth0", &byte, size), -1);
        EXPECT_EQ(NetGetDNSAddressip6(&byte, size, &other, 46), -1);
        EXPECT_EQ(SwitchGetNameEx(&byte, size), -1);
        EXPECT_EQ(NetWorkGetActiveSlaveEx("bond0", &byte, size), nullptr);
        EXPECT_EQ(byte, '#') << size;
        EXPECT_EQ(other, '#') << size;
    }
}

}  // namespace
