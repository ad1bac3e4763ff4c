// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "NetApi2_0.h"

#include "Program.h"

#include <algorithm>
#include <climits>
#include <cstring>

#include <arpa/inet.h>

using namespace device;

namespace {

/// Three cards; eth0 and eth1 have saved addresses, and a gateway behind eth0 answers.
class NetApi2Test : public Device {
protected:
    void SetUp() override
    {
        Device::SetUp();
        AddCardWithGateway("eth0", "10.0.0.1/24");
        AddCard("eth1");
        AddCard("eth2");
        Must("ip link set eth0 up; ip link set eth1 up; ip link set eth2 up");
        Save("eth0", 0);
        Save("eth1", 1);
    }

    static std::string SysFile(const std::string& path)
    {
        const std::string text = Must("cat /sys/class/net/" + path);
        return text.substr(0, text.find('\n'));
    }
};

// ---- cards

TEST_F(NetApi2Test, TheCardsAreCountedAndListedAsTheKernelHasThem)
{
    NetCaps caps{};
    EXPECT_EQ(NetGetCaps(&caps), 0);
    EXPECT_EQ(caps.cardNum, 3);

    const Texts names = InKernelOrder({"eth0", "eth1", "eth2"});
    char joined[64] = {};
    int32_t unused = 0;
    EXPECT_EQ(NetGetEthName(joined, sizeof(joined), &unused), 0);
    EXPECT_EQ(joined, names[0] + "::" + names[1] + "::" + names[2] + "::");

    NetDevice devices[40];
    memset(devices, '#', sizeof(devices));
    ASSERT_EQ(NetGetAllEthDevice(devices, 40), 3);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(devices[i].name, names[static_cast<size_t>(i)]);
        EXPECT_EQ(devices[i].valid, 1);
        EXPECT_EQ(devices[i].trans_media, 0);
        EXPECT_EQ(std::to_string(devices[i].speed),
                  SysFile(names[static_cast<size_t>(i)] + "/speed"));
    }
    const NetDevice zero{};
    for (int i = 3; i < 40; ++i) EXPECT_EQ(memcmp(&devices[i], &zero, sizeof(zero)), 0) << i;
}

TEST_F(NetApi2Test, TheHiddenCardIsInOneListAlone)
{
    AddCard("eth16");
    NetDevice devices[32];
    EXPECT_EQ(NetGetAllEthDevice(devices, 32), 4);
    EXPECT_EQ(NetGetEthDevice(devices, 32), 3);
    EXPECT_EQ(NetGetDeviceName(devices, 32), 3);
    for (int i = 0; i < 3; ++i) EXPECT_STRNE(devices[i].name, "eth16");
    NetCaps caps{};
    EXPECT_EQ(NetGetCaps(&caps), 0);
    EXPECT_EQ(caps.cardNum, 4);
}

TEST_F(NetApi2Test, TheFirstCardsModeIsTheSavedOne)
{
    EXPECT_EQ(NetWorkGetMode(), En_Net_Multiple);
    EXPECT_EQ(Saved("eth0", "WORKMODE"), "0");
    Save("eth0", 0, {"WORKMODE = 3"});
    EXPECT_EQ(NetWorkGetMode(), En_Net_Bridge);
}

// ---- addresses

TEST_F(NetApi2Test, TheFirstCardsAddressReachesKernelAndFileAndComesBack)
{
    EXPECT_EQ(NetSetHostIP("10.0.0.77", "255.255.255.0"), 0);
    EXPECT_EQ(NetSetGateway("10.0.0.1"), 0);
    EXPECT_EQ(Addresses("eth0"), Texts{"10.0.0.77/24"});
    EXPECT_EQ(Addresses("eth1"), Texts{});
    EXPECT_EQ(Saved("eth0", "HOSTIP"), "10.0.0.77");
    EXPECT_EQ(Saved("eth0", "GATEWAYIP"), "10.0.0.1");

    char address[16] = {};
    char mask[16] = {};
    char gateway[16] = {};
    EXPECT_EQ(NetGetHostIP(address, sizeof(address), mask, sizeof(mask)), 0);
    EXPECT_EQ(NetGetGateway(gateway, sizeof(gateway)), 0);
    EXPECT_EQ((Texts{address, mask, gateway}), (Texts{"10.0.0.77", "255.255.255.0", "10.0.0.1"}));
}

TEST_F(NetApi2Test, ANamedCardsAddressReachesKernelAndFileAndComesBack)
{
    EXPECT_EQ(NetSetHostIPEx("eth1", "172.20.3.4", "255.255.0.0"), 0);
    EXPECT_EQ(NetSetGatewayEx("eth1", "172.20.0.1"), 0);
    EXPECT_EQ(Addresses("eth1"), Texts{"172.20.3.4/16"});
    EXPECT_EQ(Saved("eth1", "SUBMASK"), "255.255.0.0");

    char address[16] = {};
    char mask[16] = {};
    char gateway[16] = {};
    EXPECT_EQ(NetGetHostIPEx("eth1", address, 16, mask, 16), 0);
    EXPECT_EQ(NetGetGatewayEx("eth1", gateway, 16), 0);
    EXPECT_EQ((Texts{address, mask, gateway}), (Texts{"172.20.3.4", "255.255.0.0", "172.20.0.1"}));
}

TEST_F(NetApi2Test, AMaskThatTheKernelRefusesIsAFailureAndNotSaved)
{
    EXPECT_EQ(NetSetHostIPEx("eth1", "172.20.3.4", "255.0.255.0"), -1);
    EXPECT_EQ(Saved("eth1", "HOSTIP"), "10.0.1.10");
    EXPECT_EQ(LogOf("NetSetHostIPEx"), (LogLines{Error("NetSetHostIPEx", "failed")}));
    EXPECT_EQ(NetSetHostIPEx("eth9", "172.20.3.4", "255.255.0.0"), -1);
}

TEST_F(NetApi2Test, HardwareAddressAndMtuReachTheKernelAndComeBack)
{
    EXPECT_EQ(NetSetMAC("eth1", "02:00:00:00:12:34"), 0);
    EXPECT_EQ(Mac("eth1"), "02:00:00:00:12:34");
    char mac[18] = {};
    EXPECT_EQ(NetGetMAC("eth1", mac, sizeof(mac)), 0);
    EXPECT_STREQ(mac, "02:00:00:00:12:34");

    EXPECT_EQ(NetSetMTU("eth1", 1400), 0);
    EXPECT_EQ(Mtu("eth1"), 1400);
    EXPECT_EQ(Saved("eth1", "MTU"), "1400");
    int32_t mtu = 0;
    EXPECT_EQ(NetGetMTU("eth1", &mtu), 0);
    EXPECT_EQ(mtu, 1400);
    EXPECT_TRUE(IsUp("eth1"));
    EXPECT_EQ(NetSetMTU("eth1", 10), -1);
    EXPECT_EQ(Mtu("eth1"), 1400);
}

TEST_F(NetApi2Test, AnIPv6AddressReachesTheKernelAndLeavesIt)
{
    EXPECT_EQ(NetSetHostIPEx6("eth1", "2001:db8::10", "48"), 0);
    EXPECT_EQ(Addresses6("eth1"), Texts{"2001:db8::10/48"});
    char address[46] = {};
    char prefix[4] = {};
    EXPECT_EQ(NetGetHostIPEx6("eth1", address, sizeof(address), prefix, sizeof(prefix)), 0);
    EXPECT_STREQ(address, "2001:db8::10");
    EXPECT_STREQ(prefix, "48");
    char withPrefix[] = "2001:db8::10/48";
    EXPECT_EQ(NetIfDelIpv6Addr("eth1", withPrefix), 0);
    EXPECT_STREQ(withPrefix, "2001:db8::10");
    EXPECT_EQ(Addresses6("eth1"), Texts{});
}

TEST_F(NetApi2Test, TheLinkLocalAddressIsTheKernels)
{
    const std::string own = AwaitLinkLocal("eth1");
    char told[64] = {};
    EXPECT_EQ(getScopeLinkAddr6("eth1", told, sizeof(told)), 0);
    EXPECT_EQ(told, own);
    in6_addr address{};
    ASSERT_EQ(inet_pton(AF_INET6, own.substr(0, own.find('/')).c_str(), &address), 1);
    EXPECT_EQ(In6AddrType(&address), VORLIX_IPV6_ADDR_SCOPE_LINKLOCAL);
}

TEST_F(NetApi2Test, ResolversAreWrittenForTheWholeDevice)
{
    EXPECT_EQ(NetSetDNSAddress("9.9.9.9", "149.112.112.112"), 0);
    EXPECT_EQ(NetSetDNSAddressip6("2620:fe::9", "2620:fe::fe"), 0);
    const std::string file = Get(std::string(kConfig) + "/resolv.conf");
    EXPECT_NE(file.find("nameserver 9.9.9.9\n"), std::string::npos) << file;
    EXPECT_NE(file.find("nameserver 149.112.112.112\n"), std::string::npos) << file;
    const std::string file6 = Get(std::string(kConfig) + "/resolvip6.conf");
    EXPECT_NE(file6.find("nameserver 2620:fe::9\n"), std::string::npos) << file6;
    EXPECT_NE(file6.find("nameserver 2620:fe::fe\n"), std::string::npos) << file6;

    char primary[46] = {};
    char secondary[46] = {};
    EXPECT_EQ(NetGetDNSAddress(primary, 16, secondary, 16), 0);
    EXPECT_EQ((Texts{primary, secondary}), (Texts{"9.9.9.9", "149.112.112.112"}));
    EXPECT_EQ(NetGetDNSAddressip6(primary, 46, secondary, 46), 0);
    EXPECT_EQ((Texts{primary, secondary}), (Texts{"2620:fe::9", "2620:fe::fe"}));
}

// ---- routes

TEST_F(NetApi2Test, ACardsOwnNetworkIsRoutedAndUnroutedWhileTheCardStaysUp)
{
    Must("ip addr add 10.0.1.10/24 dev eth1 noprefixroute");
    ASSERT_EQ(Routes(), Texts{});
    EXPECT_EQ(NetWorkSetEthStatus("eth1", 0), 0);
    EXPECT_EQ(Routes(), Texts{"10.0.1.0/24 dev eth1"});
    EXPECT_EQ(NetWorkSetEthStatus("eth1", 1), 0);
    EXPECT_EQ(Routes(), Texts{});
    EXPECT_EQ(NetRouteAddDelete(ADD_ROUTE, "eth1"), 0);
    EXPECT_EQ(Routes(), Texts{"10.0.1.0/24 dev eth1"});
    EXPECT_EQ(NetRouteAddDelete(DELETE_ROUTE, "eth1"), 0);
    EXPECT_EQ(Routes(), Texts{});
    EXPECT_TRUE(IsUp("eth1"));
    EXPECT_EQ(Addresses("eth1"), Texts{"10.0.1.10/24"});

    EXPECT_EQ(NetWorkSetEthStatus("eth1", 1), -1);
    EXPECT_EQ(LogOf("NetWorkSetEthStatus"),
              (LogLines{Error("NetWorkSetEthStatus", "route error.[eth1,1]")}));
}

TEST_F(NetApi2Test, ACardWithoutAddressHasNoNetworkToRoute)
{
    EXPECT_EQ(NetWorkSetEthStatus("eth2", 1), -1);
    EXPECT_EQ(LogOf("NetWorkSetEthStatus"),
              (LogLines{Error("NetWorkSetEthStatus", "get eth2 ip mask failed.")}));
}

NetRouteTableInfo Record(const char* dst, const char* gw, const char* mask, const char* card)
{
    NetRouteTableInfo record{};
    inet_pton(AF_INET, dst, &record.dst.addrIPv4);
    inet_pton(AF_INET, gw, &record.gw.addrIPv4);
    inet_pton(AF_INET, mask, &record.mask);
    strcpy(record.viaDev, card);
    return record;
}

TEST_F(NetApi2Test, RoutesAreAddedListedAndDeletedByRecord)
{
    Must("ip addr add 10.0.0.10/24 dev eth0");
    NetRouteTableInfo record = Record("172.16.0.0", "10.0.0.1", "255.255.0.0", "eth0");
    EXPECT_EQ(NetAddRoute(&record), 0);
    EXPECT_EQ(Routes(), (Texts{"10.0.0.0/24 dev eth0", "172.16.0.0/16 via 10.0.0.1 dev eth0"}));
    EXPECT_EQ(NetAddRoute(&record), -1);

    NetRouteTableInfo rows[8] = {};
    int32_t count = 8;
    EXPECT_EQ(NetGetAllRoute(rows, &count), 0);
    ASSERT_EQ(count, 2);
    const auto same = [&record](const NetRouteTableInfo& row) {
        return row.type == 0 && row.dst.addrIPv4 == record.dst.addrIPv4 &&
               row.gw.addrIPv4 == record.gw.addrIPv4 && row.mask == record.mask &&
               strcmp(row.viaDev, "eth0") == 0;
    };
    EXPECT_EQ(std::count_if(rows, rows + 2, same), 1);

    EXPECT_EQ(NetDelRoute(&record), 0);
    EXPECT_EQ(Routes(), Texts{"10.0.0.0/24 dev eth0"});
    EXPECT_EQ(NetDelRoute(&record), -1);
}

TEST_F(NetApi2Test, TheDefaultCardTakesTheDefaultRouteUntilRoutingIsLatched)
{
    Must("ip addr add 10.0.0.10/24 dev eth0; ip addr add 10.0.1.10/24 dev eth1");
    EXPECT_EQ(NetSetDefaultEth("eth0"), 0);
    EXPECT_EQ(Routes(), (Texts{"10.0.0.0/24 dev eth0", "10.0.1.0/24 dev eth1",
                               "default via 10.0.0.1 dev eth0"}));
    char card[16] = {};
    EXPECT_EQ(NetGetDefaultEth(card), 0);
    EXPECT_STREQ(card, "eth0");

    EXPECT_EQ(NetRouteSetStyle(ROUTESTYLE_SYS), 0);
    EXPECT_EQ(NetSetDefaultEth("eth1"), 0);
    EXPECT_EQ(Saved("eth0", "DEFAULT_ETH"), "eth1");
    EXPECT_EQ(Routes().back(), "default via 10.0.0.1 dev eth0");
}

// ---- link, traffic, neighbours

TEST_F(NetApi2Test, TheLinkIsThatOfTheCable)
{
    char card[] = "eth1";
    EXPECT_EQ(NetGetLinkStatus(card), 0);
    EXPECT_EQ(mii_diag(card), 0);
    Must("ip -n peer link set eth1 down");
    EXPECT_EQ(NetGetLinkStatus(card), -1);
    EXPECT_EQ(mii_diag(card), -1);
}

TEST_F(NetApi2Test, APingIsAnsweredTimedAndCounted)
{
    EXPECT_EQ(NetSetHostIP("10.0.0.10", "255.255.255.0"), 0);
    PING_S ping{};
    strcpy(ping.acFrom, "eth0");
    strcpy(ping.acTo, "10.0.0.1");
    ping.s32Time = -7;
    EXPECT_EQ(NetWorkPing(&ping), 0);
    EXPECT_GE(ping.s32Time, 0);
    EXPECT_EQ(network_alive("10.0.0.1"), 0);

    char mac[18] = {};
    EXPECT_EQ(NetWorkGetMac("10.0.0.1", mac), 0);
    const std::string known = Must("ip neigh show 10.0.0.1 dev eth0");
    EXPECT_NE(known.find(mac), std::string::npos) << known;

    Must("ip link set eth0 down");  // so that the counters stand still
    NetStats stats{};
    EXPECT_EQ(NetGetStats("eth0", &stats), 0);
    EXPECT_EQ(std::to_string(stats.rx_bytes), SysFile("eth0/statistics/rx_bytes"));
    EXPECT_EQ(std::to_string(stats.tx_bytes), SysFile("eth0/statistics/tx_bytes"));
    EXPECT_GE(stats.rx_bytes, 2U * (14 + 20 + 40));  // two answers at least
}

NetARPEntry Entry(const char* card, const char* ip, const char* mac)
{
    NetARPEntry entry{};
    strcpy(entry.dev, card);
    strcpy(entry.ip, ip);
    strcpy(entry.mac, mac);
    return entry;
}

TEST_F(NetApi2Test, StaticNeighboursAreThoseOfTheKernel)
{
    Must("ip addr add 10.0.1.10/24 dev eth1; ip addr add 10.0.2.10/24 dev eth2");
    const NetARPEntry first = Entry("eth1", "10.0.1.9", "02:00:00:00:00:09");
    const NetARPEntry second = Entry("eth2", "10.0.2.9", "02:00:00:00:00:0a");
    EXPECT_EQ(NetAddStaticARPEntry(&first), 0);
    EXPECT_EQ(NetAddStaticARPEntry(&second), 0);
    Must("ip neigh replace 10.0.1.8 lladdr 02:00:00:00:00:08 dev eth1 nud stale");
    EXPECT_EQ(Must("ip neigh show nud permanent dev eth1"),
              "10.0.1.9 lladdr 02:00:00:00:00:09 PERMANENT \n");

    NetARPEntry entries[4] = {};
    int count = 4;
    EXPECT_EQ(NetGetAllStaticARPEntry(entries, &count), 0);
    EXPECT_EQ(count, 2);  // the one that was learnt is none
    count = 4;
    EXPECT_EQ(NetGetStaticARPInfoByIP("10.0.2.9", entries, &count), 0);
    ASSERT_EQ(count, 1);
    EXPECT_EQ(memcmp(&entries[0], &second, sizeof(second)), 0);

    EXPECT_EQ(NetDelStaticARPEntry(&first), 0);
    EXPECT_EQ(Must("ip neigh show nud permanent dev eth1"), "");
    count = 4;
    EXPECT_EQ(NetGetAllStaticARPEntry(entries, &count), 0);
    EXPECT_EQ(count, 1);
}

// ---- bridges

class NetApi2BridgeTest : public NetApi2Test {
protected:
    void SetUp() override
    {
        NetApi2Test::SetUp();
        NEEDS_TOOL("brctl");
        NEEDS_TOOL("ifconfig");
        NEEDS_LINK("br31 type bridge");
        Must("ip link del br31");
        Save("br0", 9);
    }
};

TEST_F(NetApi2BridgeTest, ABridgeIsBuiltReadBackAsAMaskAndEnded)
{
    Save("eth2", 2);
    const char* cards[] = {"eth1", "eth2"};
    ASSERT_EQ(CreateNetWorkBridge("br0", cards, 2), 0);
    EXPECT_EQ(Must("ip -o link show master br0 | wc -l"), "2\n");
    EXPECT_EQ(getBridgeDevicesInfo("br0"), 6U);
    uint32_t masks[4] = {9, 9, 9, 9};
    EXPECT_EQ(NetWorkGetBridgeInfo(masks, 4), 1);
    EXPECT_EQ(masks[0], 6U);
    EXPECT_EQ(masks[1], 0U);
    EXPECT_EQ(masks[2], 9U);

    ASSERT_EQ(DestoryNetWorkBridge("br0"), 0);
    EXPECT_NE(Try("ip link show dev br0").status, 0);
    EXPECT_EQ(getBridgeDevicesInfo("br0"), 0U);
    EXPECT_EQ(DestoryNetWorkBridge("br0"), -1);
}

TEST_F(NetApi2BridgeTest, AMemberOfAnotherKindIsNamedAndHasNoBit)
{
    Must("ip link add br0 type bridge; ip link add lan0 type veth peer name lan1");
    for (const char* card : {"eth0", "eth2", "lan0"}) {
        Must(std::string("ip link set master br0 dev ") + card);
    }
    EXPECT_EQ(getBridgeDevicesInfo("br0"), 5U);
    EXPECT_EQ(LogOf("getBridgeDevicesInfo"),
              (LogLines{Warn("getBridgeDevicesInfo", "lan0 is in Bridge.can not handle.")}));
}

// ---- files

TEST_F(NetApi2Test, TheDhcpServersFileIsWrittenFromTheSavedSettings)
{
    const std::string file = std::string(kConfig) + "/udhcpd.conf";
    EXPECT_EQ(NetSetDhcpIPRange("eth2", "10.0.2.20", "10.0.2.40", "3600"), -1);
    EXPECT_EQ(Get(file), "(no file)");
    EXPECT_EQ(NetSetDhcpIPRange("eth1", "10.0.1.20", "10.0.1.40", "3600"), 0);
    const std::string written = "start 10.0.1.20\nend 10.0.1.40\ninterface eth1\n"
                                "option  subnet 255.255.255.0\nopt router 10.0.1.1\n"
                                "option lease 3600\n";
    EXPECT_EQ(Get(file), written);

    SettingsReadOnly();
    EXPECT_EQ(NetSetDhcpIPRange("eth1", "1.1.1.1", "1.1.1.2", "1"), -1);
    EXPECT_EQ(Get(file), written);
    EXPECT_EQ(LogOf("NetSetDhcpIPRange").back(),
              Error("NetSetDhcpIPRange", "cannot fopen DHCP_CONF.[Read-only file system]"));
}

}  // namespace
