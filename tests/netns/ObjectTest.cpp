// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Version 3 objects on real cards: what a caller does through them, read back with other tools.

#include "Net3.h"

#include "Device.h"

#include <algorithm>
#include <cstring>

#include <arpa/inet.h>

using namespace device;

namespace {

NetInterface* Object(const char* name)
{
    NetInterfaceDesc desc{};
    desc.name = name;
    NetInterface* object = nullptr;
    EXPECT_EQ(createNetInterface(&desc, &object), 0) << name;
    return object;
}

uint32_t Binary(const char* text)
{
    in_addr address{};
    EXPECT_EQ(inet_pton(AF_INET, text, &address), 1);
    return address.s_addr;
}

std::string Dotted(uint32_t address)
{
    char text[INET_ADDRSTRLEN] = {};
    inet_ntop(AF_INET, &address, text, sizeof(text));
    return text;
}

// ---- one object a card

class CardObjectTest : public Device {
protected:
    void SetUp() override
    {
        Device::SetUp();
        AddCards(2);
        card = Object("eth0");
        ASSERT_NE(card, nullptr);
    }

    NetInterface* card = nullptr;
};

TEST_F(CardObjectTest, EachListedCardHasAnObjectOfItsOwn)
{
    NetInterfaceInfo list[32];
    int num = 0;
    ASSERT_EQ(getNetInterfaceMaxNum(&num), 0);
    ASSERT_EQ(getNetInterfaceList(list, &num), 0);
    Texts names;
    for (int i = 0; i < num; ++i) names.emplace_back(list[i].name);
    EXPECT_EQ(names, InKernelOrder({"eth0", "eth1"}));
    EXPECT_EQ(Object("eth0"), card);
    EXPECT_NE(Object("eth1"), card);
    EXPECT_NE(Object("eth1"), nullptr);
}

TEST_F(CardObjectTest, ACardGoesUpAndDown)
{
    EXPECT_EQ(card->up(card), 0);
    EXPECT_TRUE(IsUp("eth0"));
    EXPECT_FALSE(IsUp("eth1"));
    EXPECT_EQ(card->down(card), 0);
    EXPECT_FALSE(IsUp("eth0"));
}

TEST_F(CardObjectTest, AnObjectFollowsNoCardAndServesTheNextOfItsName)
{
    Must("ip link del eth0");
    EXPECT_EQ(card->up(card), -1);
    NetInterfaceDesc desc{};
    desc.name = "eth0";
    NetInterface* object = nullptr;
    EXPECT_EQ(createNetInterface(&desc, &object), -1);
    EXPECT_EQ(object, nullptr);
    AddCard("eth0");
    EXPECT_EQ(Object("eth0"), card);
    EXPECT_EQ(card->up(card), 0);
    EXPECT_TRUE(IsUp("eth0"));
}

TEST_F(CardObjectTest, AddressAndMaskReachTheKernelAndTheFile)
{
    EXPECT_EQ(card->setHostIP(card, "10.1.2.3", "255.255.240.0"), 0);
    EXPECT_EQ(Addresses("eth0"), Texts{"10.1.2.3/20"});
    EXPECT_EQ(Get(CardFile("eth0")), Lines({"HOSTIP = 10.1.2.3", "SUBMASK = 255.255.240.0"}));
    for (const auto get : {card->getHostIP, card->getRealHostIP}) {
        char address[16] = {};
        char mask[16] = {};
        EXPECT_EQ(get(card, address, 16, mask, 16), 0);
        EXPECT_STREQ(address, "10.1.2.3");
        EXPECT_STREQ(mask, "255.255.240.0");
    }
    EXPECT_EQ(card->setHostIP(card, "10.1.2.300", "255.255.240.0"), -1);
    EXPECT_EQ(Addresses("eth0"), Texts{"10.1.2.3/20"});
}

TEST_F(CardObjectTest, HardwareAddressAndMtuReachTheKernel)
{
    EXPECT_EQ(card->setMAC(card, "02:11:22:33:44:55"), 0);
    EXPECT_EQ(Mac("eth0"), "02:11:22:33:44:55");
    char mac[18] = {};
    EXPECT_EQ(card->getMAC(card, mac, sizeof(mac)), 0);
    EXPECT_STREQ(mac, "02:11:22:33:44:55");

    EXPECT_EQ(card->setMTU(card, 1400), 0);
    EXPECT_EQ(Mtu("eth0"), 1400);
    int mtu = 0;
    EXPECT_EQ(card->getMTU(card, &mtu), 0);
    EXPECT_EQ(mtu, 1400);
    EXPECT_EQ(card->setMTU(card, 70000), -1);
    EXPECT_EQ(Mtu("eth0"), 1400);
}

TEST_F(CardObjectTest, ServersOfBothFamiliesShareTheResolversFile)
{
    const std::string file = std::string(kConfig) + "/resolv.conf";
    Put(file, "");
    Put(std::string(kConfig) + "/resolvip6.conf", "");
    EXPECT_EQ(card->setDNSAddress(card, "8.8.8.8", "8.8.4.4"), 0);
    EXPECT_EQ(card->setDNSAddressIpv6(card, "2001:db8::5", "2001:db8::6"), 0);
    EXPECT_EQ(Must("grep -c '^nameserver ' " + file), "4\n");
    EXPECT_EQ(Must("sed -n 1,2p " + file), "nameserver 8.8.8.8\nnameserver 8.8.4.4\n");

    char primary[46] = {};
    char secondary[46] = {};
    NetInterface* const other = Object("eth1");  // they are the device's, not a card's
    EXPECT_EQ(other->getDNSAddress(other, primary, 16, secondary, 16), 0);
    EXPECT_STREQ(primary, "8.8.8.8");
    EXPECT_STREQ(secondary, "8.8.4.4");
    EXPECT_EQ(other->getDNSAddressIpv6(other, primary, 46, secondary, 46), 0);
    EXPECT_STREQ(primary, "2001:db8::5");
    EXPECT_STREQ(secondary, "2001:db8::6");
}

TEST_F(CardObjectTest, TheLinkIsThatOfTheCable)
{
    EXPECT_EQ(card->up(card), 0);
    Must("while [ \"$(cat /sys/class/net/eth0/carrier)\" != 1 ]; do :; done");
    EXPECT_EQ(card->miiDiag(card), 0);
    EXPECT_EQ(card->miiDiagEx(card), 0);
    Must("ip -n peer link set eth0 down");
    Must("while [ \"$(cat /sys/class/net/eth0/carrier)\" != 0 ]; do :; done");
    EXPECT_EQ(card->miiDiag(card), -1);
    EXPECT_EQ(card->miiDiagEx(card), -1);
}

TEST_F(CardObjectTest, AnIPv6AddressReachesTheKernelAndLeavesIt)
{
    EXPECT_EQ(card->setHostIpv6(card, "2001:db8::10", "48"), 0);
    EXPECT_EQ(Addresses6("eth0"), Texts{"2001:db8::10/48"});
    char address[64] = {};
    char prefix[8] = {};
    EXPECT_EQ(card->getSystemHostIpv6(card, address, 64, prefix, 8), 0);
    EXPECT_STREQ(address, "2001:db8::10");
    EXPECT_STREQ(prefix, "48");
    char own[] = "2001:db8::10/48";
    EXPECT_EQ(card->delIPaddressIpv6(card, own), 0);
    EXPECT_EQ(Addresses6("eth0"), Texts{});
}

// ---- a card with a gateway

class GatewayObjectTest : public Device {
protected:
    void SetUp() override
    {
        Device::SetUp();
        AddCardWithGateway("eth0", "10.0.0.1/24");
        card = Object("eth0");
        ASSERT_NE(card, nullptr);
        ASSERT_EQ(card->up(card), 0);
        ASSERT_EQ(card->setHostIP(card, "10.0.0.2", "255.255.255.0"), 0);
        ASSERT_EQ(card->setGateway(card, "10.0.0.1"), 0);
    }

    Texts With(const std::string& route) const
    {
        Texts all = own;
        all.push_back(route);
        std::sort(all.begin(), all.end());
        return all;
    }

    const Texts own = {"10.0.0.0/24 dev eth0"};
    NetInterface* card = nullptr;
};

TEST_F(GatewayObjectTest, TheGatewayIsSavedAndMovesTheDefaultRouteWhenAsked)
{
    char gateway[16] = {};
    EXPECT_EQ(card->getGateway(card, gateway, sizeof(gateway)), 0);
    EXPECT_STREQ(gateway, "10.0.0.1");
    EXPECT_EQ(Routes(), own);
    EXPECT_EQ(setDefaultNetInterface("eth0"), 0);
    EXPECT_EQ(Routes(), With("default via 10.0.0.1 dev eth0"));
    char name[16] = {};
    EXPECT_EQ(getDefaultNetInterface(name, sizeof(name)), 0);
    EXPECT_STREQ(name, "eth0");
}

TEST_F(GatewayObjectTest, RoutesAreDirectInTheCardsNetAndThroughTheGatewayElsewhere)
{
    const struct {
        const char *address, *mask, *expected;
    } rows[] = {
        {"10.0.0.77", "255.255.255.255", "10.0.0.77 dev eth0"},
        {"172.16.5.6", "255.255.255.0", "172.16.5.0/24 via 10.0.0.1 dev eth0"},
        {"10.0.0.0", "255.255.0.0", "10.0.0.0/16 via 10.0.0.1 dev eth0"},
        {"default", "", "default via 10.0.0.1 dev eth0"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.expected);
        EXPECT_EQ(card->addRoute(card, row.address, row.mask), 0);
        EXPECT_EQ(Routes(), With(row.expected));
        EXPECT_EQ(card->delRoute(card, row.address, row.mask), 0);
        EXPECT_EQ(Routes(), own);
    }
}

TEST_F(GatewayObjectTest, AllRoutesOfTheCardGoButItsDefaultOne)
{
    EXPECT_EQ(card->addRoute(card, "default", ""), 0);
    EXPECT_EQ(card->addRoute(card, "172.16.0.0", "255.255.255.0"), 0);
    EXPECT_EQ(card->delRoute(card, nullptr, nullptr), 0);
    EXPECT_EQ(Routes(), Texts{"default via 10.0.0.1 dev eth0"});
}

TEST_F(GatewayObjectTest, AnIPv6RouteThatIsThereIsASuccessAndGoes)
{
    Must("ip -6 route add 2001:db8:7::/48 dev eth0; ip -6 route add 2001:db8:8::/48 dev eth0");
    EXPECT_EQ(card->addRouteIpv6(card, "2001:db8:7::", 48), 0);
    EXPECT_EQ(card->delRouteIpv6(card, "2001:db8:7::", 48), 0);
    EXPECT_EQ(Routes6(), Texts{"2001:db8:8::/48 dev eth0"});
}

TEST_F(GatewayObjectTest, ANewIPv6RouteIsRefusedByTheKernel)
{
    EXPECT_EQ(card->addRouteIpv6(card, "2001:db8:7::", 48), -1);
    EXPECT_EQ(Routes6(), Texts{});
    EXPECT_EQ(LogOf("Route_SetIPv6Route"),
              LogLines{Error("Route_SetIPv6Route", "iotcl failed.[Invalid argument]")});
}

TEST_F(GatewayObjectTest, TheIPv6DefaultRouteLeadsToTheSavedGateway)
{
    ASSERT_EQ(card->setHostIpv6(card, "2001:db8::2", "64"), 0);
    ASSERT_EQ(card->setGatewayIpv6(card, "2001:db8::1"), 0);
    EXPECT_EQ(card->addRouteIpv6(card, "default", 0), 0);
    EXPECT_EQ(Routes6(), (Texts{"2001:db8::/64 dev eth0", "default via 2001:db8::1 dev eth0"}));
    EXPECT_EQ(card->delRouteIpv6(card, "default", 0), 0);
    EXPECT_EQ(Routes6(), Texts{"2001:db8::/64 dev eth0"});
}

TEST_F(GatewayObjectTest, TrafficIsCountedAsTheKernelCountsIt)
{
    Must("while [ \"$(cat /sys/class/net/eth0/carrier)\" != 1 ]; do :; done");
    ASSERT_EQ(card->ping(card, "10.0.0.1", 5, 0), 0);
    const auto count = [] {
        return Must("cd /sys/class/net/eth0/statistics; cat tx_bytes rx_bytes "
                    "tx_packets rx_packets");
    };
    std::string before;
    NetDataStat stat;
    do {  // until nothing came between the two looks
        before = count();
        stat = NetDataStat{};
        ASSERT_EQ(card->getDataStat(card, &stat), 0);
    } while (before != count());
    EXPECT_EQ(before, std::to_string(stat.transmittedBytes) + "\n" +
                          std::to_string(stat.receivedBytes) + "\n" +
                          std::to_string(stat.transmittedPackets) + "\n" +
                          std::to_string(stat.receivedPackets) + "\n");
    EXPECT_GT(stat.transmittedPackets, 0U);
    EXPECT_GT(stat.receivedPackets, 0U);
}

// ---- a control object

class ControlObjectTest : public Device {
protected:
    void SetUp() override
    {
        Device::SetUp();
        AddCards(2);
        Must("ip link set eth0 up; ip addr add 10.0.0.2/24 dev eth0;"
             " ip link set eth1 up; ip addr add 10.0.1.2/24 dev eth1");
        ASSERT_EQ(createNetControl(nullptr, &control), 0);
    }

    void TearDown() override
    {
        EXPECT_EQ(control->release(control), 0);
        Device::TearDown();
    }

    /// The entry that iproute2 tells for an address.
    static std::string Neighbour(const std::string& address)
    {
        for (const auto& entry : Ip("neigh show " + address)) {
            return entry.at("dev") + " " + entry.at("lladdr") +
                   (Must("ip neigh show " + address).find("PERMANENT") != std::string::npos
                        ? " permanent"
                        : "");
        }
        return "";
    }

    static QV_PAL_ARPEntry Entry(const char* card, const char* address)
    {
        QV_PAL_ARPEntry entry{};
        strcpy(entry.dev, card);
        strcpy(entry.ip, address);
        strcpy(entry.mac, "02:00:00:00:00:09");
        return entry;
    }

    QV_PAL_NetControl* control = nullptr;
};

TEST_F(ControlObjectTest, AStaticEntryIsSetListedAndDeleted)
{
    QV_PAL_ARPEntry first = Entry("eth0", "10.0.0.9");
    QV_PAL_ARPEntry second = Entry("eth1", "10.0.1.9");
    EXPECT_EQ(control->addArpStaticEntry(control, &first), 0);
    EXPECT_EQ(control->addArpStaticEntry(control, &second), 0);
    EXPECT_EQ(Neighbour("10.0.0.9"), "eth0 02:00:00:00:00:09 permanent");
    EXPECT_EQ(Neighbour("10.0.1.9"), "eth1 02:00:00:00:00:09 permanent");
    Must("ip neigh add 10.0.0.7 lladdr 02:00:00:00:00:07 dev eth0 nud reachable");

    QV_PAL_ARPEntry entries[4];
    int num = 4;
    EXPECT_EQ(control->getAllArpStaticEntry(control, entries, &num), 0);
    Texts told;
    for (int i = 0; i < num; ++i) {
        told.push_back(std::string(entries[i].ip) + " " + entries[i].mac + " " + entries[i].dev);
    }
    std::sort(told.begin(), told.end());
    EXPECT_EQ(told, (Texts{"10.0.0.9 02:00:00:00:00:09 eth0", "10.0.1.9 02:00:00:00:00:09 eth1"}));

    num = 4;
    EXPECT_EQ(control->getArpStaticInfoByIp(control, "10.0.1.9", entries, &num), 0);
    ASSERT_EQ(num, 1);
    EXPECT_STREQ(entries[0].dev, "eth1");

    NetInterface* const card = Object("eth0");
    char mac[18] = {};
    EXPECT_EQ(card->ipToMac(card, "10.0.0.9", mac, sizeof(mac)), 0);
    EXPECT_STREQ(mac, "02:00:00:00:00:09");

    EXPECT_EQ(control->delArpStaticEntry(control, &first), 0);
    num = 4;
    EXPECT_EQ(control->getAllArpStaticEntry(control, entries, &num), 0);
    ASSERT_EQ(num, 1);
    EXPECT_STREQ(entries[0].ip, "10.0.1.9");
}

TEST_F(ControlObjectTest, RoutesAreSetListedAndDeletedByRecord)
{
    QV_PAL_RouteTableInfo route{};
    route.dst.IPv4addr = Binary("172.16.0.0");
    route.mask = Binary("255.255.0.0");
    route.gw.IPv4addr = Binary("10.0.1.1");
    strcpy(route.viaDev, "eth1");
    EXPECT_EQ(control->addRoute(control, &route), 0);
    const Texts own = {"10.0.0.0/24 dev eth0", "10.0.1.0/24 dev eth1"};
    Texts with = own;
    with.emplace_back("172.16.0.0/16 via 10.0.1.1 dev eth1");
    EXPECT_EQ(Routes(), with);

    QV_PAL_RouteTableInfo routes[8];
    memset(routes, 0, sizeof(routes));
    int num = 8;
    EXPECT_EQ(control->getAllRouteInfo(control, routes, &num), 0);
    Texts told;
    for (int i = 0; i < num; ++i) {
        told.push_back(Dotted(routes[i].dst.IPv4addr) + " " + Dotted(routes[i].mask) + " " +
                       Dotted(routes[i].gw.IPv4addr) + " " + routes[i].viaDev);
    }
    EXPECT_EQ(told,
              (Texts{"10.0.0.0 255.255.255.0 0.0.0.0 eth0", "10.0.1.0 255.255.255.0 0.0.0.0 eth1",
                     "172.16.0.0 255.255.0.0 10.0.1.1 eth1"}));

    EXPECT_EQ(control->delRoute(control, &route), 0);
    EXPECT_EQ(Routes(), own);
}

// ---- a bridge object

class BridgeObjectTest : public Device {
protected:
    void SetUp() override
    {
        Device::SetUp();
        NEEDS_TOOL("brctl");
        NEEDS_TOOL("ifconfig");
        NEEDS_LINK("br31 type bridge");
        Must("ip link del br31");
        AddCards(3);
    }

    static int Create(NetBridge** bridge)
    {
        static const char* cards[] = {"eth1", "eth2"};
        NetBrDesc desc{};
        desc.name = "br0";
        desc.subDev = cards;
        desc.num = 2;
        return createNetBridge(&desc, bridge);
    }

    static Texts Ports()
    {
        Texts ports;
        for (const auto& record : Ip("link show master br0")) {
            if (record.count("ifname") != 0) ports.push_back(record.at("ifname"));
        }
        std::sort(ports.begin(), ports.end());
        return ports;
    }

    static bool Exists() { return Try("ip link show dev br0").status == 0; }
};

TEST_F(BridgeObjectTest, ABridgeComesWithItsObjectAndGoesWithTheLastReference)
{
    NetBridge* bridge = nullptr;
    ASSERT_EQ(Create(&bridge), 0);
    EXPECT_EQ(Ports(), (Texts{"eth1", "eth2"}));
    EXPECT_EQ(Mac("br0"), Mac("eth1"));
    EXPECT_EQ(Get(std::string(kConfig) + "/rsbridgeinit.conf"),
              Lines({"BRIDGES = 0", "SSIF = eth1,eth2"}));

    unsigned mask = 0;
    EXPECT_EQ(bridge->getBridgeDevicesInfo(bridge, &mask), 0);
    EXPECT_EQ(mask, 6U);
    QV_PAL_NetBrDevice ports[4];
    int num = 4;
    EXPECT_EQ(bridge->getBridgeDevices(bridge, ports, &num), 0);
    EXPECT_EQ(num, 2);

    EXPECT_EQ(bridge->addRef(bridge), 0);
    EXPECT_EQ(bridge->release(bridge), 1);
    EXPECT_TRUE(Exists());
    EXPECT_EQ(bridge->release(bridge), 0);
    EXPECT_FALSE(Exists());
}

TEST_F(BridgeObjectTest, ABridgeThatExistsIsTakenAsItIs)
{
    Must("ip link add br0 type bridge; ip link set eth0 master br0; ip link set br0 up");
    NetBridge* bridge = nullptr;
    ASSERT_EQ(Create(&bridge), 0);
    EXPECT_EQ(Ports(), Texts{"eth0"});
    EXPECT_EQ(bridge->release(bridge), 0);
    EXPECT_FALSE(Exists());
}

TEST_F(BridgeObjectTest, SpanningTreeGoesOnAndItsModeIsTold)
{
    NetBridge* bridge = nullptr;
    ASSERT_EQ(Create(&bridge), 0);
    STPInfo info{};
    info.enable = 1;
    EXPECT_EQ(bridge->bridgeCtrl(bridge, &info), 0);
    EXPECT_EQ(Get("/sys/class/net/br0/bridge/stp_state"), "1\n");
    info.mode = 7;
    EXPECT_EQ(bridge->getInfo(bridge, &info), 0);
    EXPECT_EQ(info.enable, 0);
    EXPECT_EQ(info.mode, 0);
    EXPECT_EQ(bridge->release(bridge), 0);
}

// ---- switches of the device

class DeviceSwitchTest : public CardObjectTest {};

TEST_F(DeviceSwitchTest, TheWishForTelnetIsLeftForItsReader)
{
    Must("mount -t tmpfs tmpfs /tmp");
    TelnetInfo info{};
    info.enable = 1;
    EXPECT_EQ(card->setTelnet(card, &info), 0);
    EXPECT_EQ(Get("/tmp/telnet"), std::string("on\0", 3));
    info.enable = 0;
    EXPECT_EQ(card->setTelnet(card, &info), 0);
    EXPECT_EQ(Get("/tmp/telnet"), std::string("off\0", 4));
    EXPECT_EQ(Must("stat -c '%a %F' /tmp/telnet"), "700 regular file\n");
    Must("rm /tmp/telnet; mkfifo /tmp/telnet");
    EXPECT_EQ(card->setTelnet(card, &info), -1);
}

TEST_F(DeviceSwitchTest, ADeviceWithoutTheSwitchSaysSo)
{
    STPInfo info{};
    EXPECT_EQ(card->setSTP(card, &info), -1);
    EXPECT_EQ(Log(), LogLines{Error("API3_setSTP", "can not open /proc/stp_ctrl")});
}

}  // namespace
