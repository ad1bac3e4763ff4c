// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Application.h"

#include "Config.h"

#include <cstring>
#include <memory>
#include <mutex>

#include <arpa/inet.h>
#include <sys/mman.h>

namespace application {

using namespace device;

namespace {

// ---- duties: each has one thread, and its keys no other writer in the application
//
// They take turns at the version 2 function and the version 3 operation of one thing.

bool IsVersion2(int round)
{
    return round / kShared % 2 == 0;
}

std::string Shared(int round)
{
    return NameOf(round % kShared);
}

void SetMtu(Worker& worker, int round)
{
    const std::string card = Shared(round);
    const int mtu = 1300 + round;
    NetInterface* const object = worker.Object(card);
    EXPECT_EQ(IsVersion2(round) ? NetSetMTU(card.c_str(), mtu) : object->setMTU(object, mtu), 0);
    worker.Owns(CardFile(card), "MTU", std::to_string(mtu));
    int read = 0;
    EXPECT_EQ(IsVersion2(round) ? object->getMTU(object, &read) : NetGetMTU(card.c_str(), &read),
              0);
    if (worker.alone) {
        EXPECT_EQ(read, mtu);
    }
}

void SetHashPolicy(Worker& worker, int round)
{
    const std::string card = Shared(round);
    const auto policy = static_cast<unsigned char>(round % 5);
    EXPECT_TRUE(SetBondHashPolicyByConfig(card.c_str(), policy));
    worker.Owns(CardFile(card), "LACP", std::to_string(policy));
}

/// The hardware address is saved nowhere. The card goes down and up for it.
void SetPrimaryAndMac(Worker& worker, int round)
{
    const std::string card = Shared(round);
    const std::string primary = NameOf(round % kCards);
    EXPECT_TRUE(SetPrimaryEthByConfig(card.c_str(), primary.c_str()));
    worker.Owns(CardFile(card), "BONDPRIMARY", primary);
    if (card != NameOf(kShared - 1)) return;

    const std::string mac = "02:00:00:00:00:" + std::to_string(10 + round);
    NetInterface* const object = worker.Object(card);
    EXPECT_EQ(IsVersion2(round) ? NetSetMAC(card.c_str(), mac.c_str())
                                : object->setMAC(object, mac.c_str()),
              0);
    char read[18] = {};
    EXPECT_EQ(IsVersion2(round) ? object->getMAC(object, read, sizeof(read))
                                : NetGetMAC(card.c_str(), read, sizeof(read)),
              0);
    EXPECT_EQ(read, mac);
}

void SetBondMode(Worker& worker, int round)
{
    const std::string card = Shared(round);
    EXPECT_TRUE(SetBondModeByConfig(card.c_str(), static_cast<NICBondMode>(round % 7)));
    worker.Owns(CardFile(card), "BONDMODE", std::to_string(round % 7));
    if (card == "eth0" || !worker.alone) return;

    EXPECT_TRUE(SetWorkModeByConfig(card.c_str(), static_cast<NetWorkMode>(round % 4)));
    worker.Owns(CardFile(card), "WORKMODE", std::to_string(round % 4));
}

/// Address and gateway lie in one net under either mask, so that no boot ever finds them invalid.
/// The marks of a reset belong to this thread, with all else that is in the backup memory.
void SetAddress(Worker& worker, int round)
{
    const std::string card = Shared(round);
    const std::string net = "10.0." + std::to_string(round % kShared) + ".";
    const std::string address = net + std::to_string(100 + round);
    const std::string gateway = net + std::to_string(1 + round % 4);
    const char* const mask = round % 3 == 0 ? "255.255.0.0" : "255.255.255.0";
    NetInterface* const object = worker.Object(card);
    if (IsVersion2(round)) {
        EXPECT_EQ(NetSetHostIPEx(card.c_str(), address.c_str(), mask), 0);
        EXPECT_EQ(NetSetGatewayEx(card.c_str(), gateway.c_str()), 0);
    } else {
        EXPECT_EQ(object->setHostIP(object, address.c_str(), mask), 0);
        EXPECT_EQ(object->setGateway(object, gateway.c_str()), 0);
    }
    EXPECT_EQ(object->configBeenReset(object), 0);
    if (!worker.alone) return;

    worker.Owns(CardFile(card), "HOSTIP", address);
    worker.Owns(CardFile(card), "SUBMASK", mask);
    worker.Owns(CardFile(card), "GATEWAYIP", gateway);
}

/// Not on the last of the shared cards, which loses its IPv6 addresses with every new hardware
/// address.
void SetAddress6(Worker& worker, int round)
{
    const std::string card = NameOf(round % (kShared - 1));
    const std::string address = "2001:db8::" + std::to_string(100 + round);
    const std::string prefix = std::to_string(48 + round % 3 * 8);
    NetInterface* const object = worker.Object(card);
    EXPECT_EQ(IsVersion2(round) ? NetSetHostIPEx6(card.c_str(), address.c_str(), prefix.c_str())
                                : object->setHostIpv6(object, address.c_str(), prefix.c_str()),
              0);
    worker.Owns(CardFile6(card), "HOSTIP", address);
    worker.Owns(CardFile6(card), "SUBMASK", prefix);
}

void SetGateway6(Worker& worker, int round)
{
    const std::string card = Shared(round);
    const std::string gateway = "2001:db8::" + std::to_string(1 + round);
    NetInterface* const object = worker.Object(card);
    EXPECT_EQ(IsVersion2(round) ? NetSetGatewayEx6(card.c_str(), gateway.c_str())
                                : object->setGatewayIpv6(object, gateway.c_str()),
              0);
    worker.Owns(CardFile6(card), "GATEWAYIP", gateway);
}

/// Static neighbours of a card that stays as it is, and a bridge's saved mode.
void SetNeighbourAndStpMode(Worker& worker, int round)
{
    const std::string ip = "10.0.5." + std::to_string(100 + round);
    const std::string mac = "02:00:00:00:01:" + std::to_string(10 + round);
    NetARPEntry entry{};
    strcpy(entry.dev, kQuiet);
    strcpy(entry.ip, ip.c_str());
    strcpy(entry.mac, mac.c_str());
    EXPECT_EQ(NetAddStaticARPEntry(&entry), 0);
    NetARPEntry listed{};
    int count = 1;
    EXPECT_EQ(NetGetStaticARPInfoByIP(ip.c_str(), &listed, &count), 0);
    EXPECT_EQ(count, 1);
    EXPECT_STREQ(listed.mac, mac.c_str());
    char read[18] = {};
    NetInterface* const object = worker.Object(kQuiet);
    EXPECT_EQ(object->ipToMac(object, ip.c_str(), read, sizeof(read)), 0);
    EXPECT_EQ(read, mac);

    QV_PAL_NetControl* control = nullptr;
    ASSERT_EQ(createNetControl(nullptr, &control), 0);
    QV_PAL_ARPEntry twin;
    static_assert(sizeof(twin) == sizeof(entry), "one record under two names");
    memcpy(&twin, &entry, sizeof(twin));
    EXPECT_EQ(control->delArpStaticEntry(control, &twin), 0);
    EXPECT_EQ(control->release(control), 0);

    EXPECT_TRUE(SetBridgeStpModeByConfig("br0", static_cast<unsigned char>(round)));
    worker.Owns(kBridgeFile, "stp_state", std::to_string(round) + "d");
}

struct Duty {
    const char* name;
    void (*run)(Worker& worker, int round);
};

constexpr Duty kDuties[kThreads] = {
    {"sets an MTU", SetMtu},
    {"sets a hash policy", SetHashPolicy},
    {"sets a primary card and a hardware address", SetPrimaryAndMac},
    {"sets a bond's and a work mode", SetBondMode},
    {"sets an IPv4 address", SetAddress},
    {"sets an IPv6 address", SetAddress6},
    {"sets an IPv6 gateway", SetGateway6},
    {"sets a neighbour and the mode of a bridge", SetNeighbourAndStpMode},
};

// ---- visits: anybody makes them at any time

void GetAddress(Worker& worker)
{
    const int number = worker.Pick(kShared);
    const std::string card = NameOf(number);
    const std::string net = "10.0." + std::to_string(number) + ".";
    char address[16] = {};
    char mask[16] = {};
    char gateway[16] = {};
    if (worker.Pick(2) == 0) {
        EXPECT_EQ(NetGetHostIPEx(card.c_str(), address, 16, mask, 16), 0);
        EXPECT_EQ(NetGetGatewayEx(card.c_str(), gateway, 16), 0);
    } else {
        NetInterface* const object = worker.Object(card);
        EXPECT_EQ(object->getHostIP(object, address, 16, mask, 16), 0);
        EXPECT_EQ(object->getGateway(object, gateway, 16), 0);
    }
    EXPECT_TRUE(StartsWith(address, net)) << address;
    EXPECT_TRUE(StartsWith(mask, "255.255.")) << mask;
    EXPECT_TRUE(StartsWith(gateway, net)) << gateway;
}

void GetAddress6(Worker& worker)
{
    const std::string card = NameOf(worker.Pick(kShared));
    char address[46] = {};
    char prefix[8] = {};
    char gateway[46] = {};
    NetInterface* const object = worker.Object(card);
    if (worker.Pick(2) == 0) {
        EXPECT_EQ(NetGetHostIPEx6(card.c_str(), address, 46, prefix, 8), 0);
        EXPECT_EQ(NetGetGatewayEx6(card.c_str(), gateway, 46), 0);
    } else {
        EXPECT_EQ(object->getHostIpv6(object, address, 46, prefix, 8), 0);
        EXPECT_EQ(object->getGatewayIpv6(object, gateway, 46), 0);
    }
    EXPECT_TRUE(StartsWith(address, "2001:db8::")) << address;
    EXPECT_TRUE(StartsWith(gateway, "2001:db8::")) << gateway;
    (void)object->getSystemHostIpv6(object, address, 46, prefix, 8);  // it may just have none
    EXPECT_EQ(getScopeLinkAddr6(card.c_str(), address, 46), 0);
}

void GetMtuAndMode(Worker& worker)
{
    const std::string card = NameOf(worker.Pick(kShared));
    NetInterface* const object = worker.Object(card);
    int mtu = 0;
    EXPECT_EQ(worker.Pick(2) == 0 ? NetGetMTU(card.c_str(), &mtu) : object->getMTU(object, &mtu),
              0);
    EXPECT_TRUE(mtu == 1500 || (mtu >= 1300 && mtu < 1300 + kRounds)) << mtu;
    NetWorkMode mode = netModeInvalid;
    EXPECT_EQ(object->getEthWorkMode(object, &mode), 0);
    EXPECT_TRUE(mode >= netModeMultiple && mode <= netModeBridge) << mode;
    EXPECT_EQ(NetWorkGetMode(), En_Net_Multiple);
}

void GetStatistics(Worker& worker)
{
    const std::string card = NameOf(worker.Pick(kCards));
    struct NetStats stats {};
    EXPECT_EQ(NetGetStats(card.c_str(), &stats), 0);
    NetInterface* const object = worker.Object(card);
    NetDataStat stat{};
    EXPECT_EQ(object->getDataStat(object, &stat), 0);
    EXPECT_EQ(NetGetLinkStatus(kQuiet), 0);
    NetInterface* const quiet = worker.Object(kQuiet);
    EXPECT_EQ(quiet->miiDiag(quiet), 0);
}

void ListCards(Worker& worker)
{
    NetCaps caps{};
    EXPECT_EQ(NetGetCaps(&caps), 0);
    EXPECT_EQ(caps.cardNum, kCards);
    if (worker.Pick(2) == 0) {
        const auto devices = std::make_unique<NetDevice[]>(32);
        EXPECT_GE(NetGetAllEthDevice(devices.get(), 32), kCards);
        return;
    }
    const auto list = std::make_unique<NetInterfaceInfo[]>(32);
    int count = 32;
    EXPECT_EQ(getNetInterfaceList(list.get(), &count), 0);
    EXPECT_GE(count, kCards);
    for (int i = 0; i < count; ++i)
        EXPECT_TRUE(StartsWith(list[i].name, list[i].type == 3 ? "br" : "eth"));
}

/// Each thread has a network of its own over a card that stays as it is. lanrise takes all routes
/// away for a moment, whoever has added them.
void ChangeRoutes(Worker& worker)
{
    NetInterface* const object = worker.Object(kQuiet);
    const std::string net = "172.16." + std::to_string(worker.number) + ".0";
    int added = -1;
    int deleted = -1;
    if (worker.Pick(2) == 0) {
        added = object->addRoute(object, net.c_str(), "255.255.255.0");
        deleted = object->delRoute(object, net.c_str(), "255.255.255.0");
    } else {
        NetRouteTableInfo route{};
        route.dst.addrIPv4 = inet_addr(net.c_str());
        route.mask = inet_addr("255.255.255.0");
        strcpy(route.viaDev, kQuiet);
        added = NetAddRoute(&route);
        deleted = NetDelRoute(&route);
    }
    if (worker.alone) {
        EXPECT_EQ(added, 0);
        EXPECT_EQ(deleted, 0);
    }
}

/// There is one default card; all agree on it, so that each may set it. Whether its route could be
/// set is for the kernel to say, since others take it away and put it back.
void UseTheDefaultCard(Worker& worker)
{
    (void)(worker.Pick(2) == 0 ? NetSetDefaultEth("eth0") : setDefaultNetInterface("eth0"));
    char card[16] = {};
    EXPECT_EQ(worker.Pick(2) == 0 ? NetGetDefaultEth(card) : getDefaultNetInterface(card, 16), 0);
    EXPECT_STREQ(card, "eth0");
}

/// An object outlives its references: whoever asks for the card gets it again.
void HoldAnObject(Worker& worker)
{
    const std::string card = NameOf(worker.Pick(kCards));
    NetInterface* const object = worker.Object(card);
    EXPECT_EQ(object->addRef(object), 1);
    EXPECT_EQ(object->release(object), 1);
    EXPECT_EQ(worker.Object(card), object);
}

void UseAControl(Worker& worker)
{
    QV_PAL_NetControl* control = nullptr;
    ASSERT_EQ(createNetControl(nullptr, &control), 0);
    EXPECT_EQ(control->addRef(control), 2);
    QV_PAL_RouteTableInfo routes[16];
    memset(routes, 0, sizeof(routes));
    routes[0].type = static_cast<uint8_t>(worker.Pick(2));
    int count = 16;
    EXPECT_EQ(control->getAllRouteInfo(control, routes, &count), 0);
    QV_PAL_ARPEntry entries[4];
    count = 4;
    EXPECT_EQ(control->getAllArpStaticEntry(control, entries, &count), 0);
    EXPECT_LE(count, 1);
    EXPECT_EQ(control->release(control), 1);
    EXPECT_EQ(control->release(control), 0);
}

void GetResolvers(Worker& worker)
{
    NetInterface* const object = worker.Object(kQuiet);
    char first[46] = {};
    char second[46] = {};
    EXPECT_EQ(worker.Pick(2) == 0 ? NetGetDNSAddress(first, 16, second, 16)
                                  : object->getDNSAddress(object, first, 16, second, 16),
              0);
    ExpectOnePair(first, second);
    EXPECT_EQ(worker.Pick(2) == 0 ? NetGetDNSAddressip6(first, 46, second, 46)
                                  : object->getDNSAddressIpv6(object, first, 46, second, 46),
              0);
    ExpectOnePair(first, second);
}

void SetResolvers(Worker& worker)
{
    const std::lock_guard<BootTime> noBoot(worker.bootTime);
    NetInterface* const object = worker.Object(kQuiet);
    const std::string who = std::to_string(worker.number) + "." + std::to_string(worker.Pick(200));
    const std::string v4 = "9." + who + ".";
    EXPECT_EQ(worker.Pick(2) == 0
                  ? NetSetDNSAddress((v4 + "1").c_str(), (v4 + "2").c_str())
                  : object->setDNSAddress(object, (v4 + "1").c_str(), (v4 + "2").c_str()),
              0);
    const std::string v6 = "2001:db8:" + std::to_string(1 + worker.Pick(200)) + "::";
    EXPECT_EQ(worker.Pick(2) == 0
                  ? NetSetDNSAddressip6((v6 + "1").c_str(), (v6 + "2").c_str())
                  : object->setDNSAddressIpv6(object, (v6 + "1").c_str(), (v6 + "2").c_str()),
              0);
}

void SetDhcpRange(Worker& worker)
{
    EXPECT_EQ(WriteDhcpFile("10.0.5." + std::to_string(worker.number)), 0);
}

struct Visit {
    const char* name;
    void (*run)(Worker& worker);
};

constexpr Visit kVisitsToMake[] = {
    {"asks for addresses", GetAddress},
    {"asks for IPv6 addresses", GetAddress6},
    {"asks for MTU and mode", GetMtuAndMode},
    {"asks for counters and link", GetStatistics},
    {"lists the cards", ListCards},
    {"changes routes", ChangeRoutes},
    {"uses the default card", UseTheDefaultCard},
    {"holds an object", HoldAnObject},
    {"uses a control object", UseAControl},
    {"asks for the resolvers", GetResolvers},
    {"sets the resolvers", SetResolvers},
    {"writes the file of the DHCP server", SetDhcpRange},
};

}  // namespace

std::string NameOf(int card)
{
    return "eth" + std::to_string(card);
}

std::string CardFile6(const std::string& card)
{
    const std::string base = std::string(kConfig) + "/networkip6";
    if (card == "eth0") return base;
    if (card == "eth1") return base + "1";
    return base + card;
}

bool StartsWith(const std::string& text, const std::string& start)
{
    return text.rfind(start, 0) == 0;
}

BootTime::BootTime()
    : mutex_(static_cast<pthread_mutex_t*>(mmap(nullptr, sizeof(pthread_mutex_t),
                                                PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS,
                                                -1, 0)))
{
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED);
    pthread_mutex_init(mutex_, &attributes);
}

Worker::Worker(int number, Objects& objects, BootTime& bootTime, bool alone)
    : bootTime(bootTime),
      alone(alone),
      number(number),
      objects_(objects),
      random_(static_cast<unsigned>(number))
{
}

void Worker::Now(const char* what, int round)
{
    what_ = what;
    round_ = round;
}

std::string Worker::Says() const
{
    return std::to_string(number) + ": " + what_.load() + " in round " +
           std::to_string(round_.load());
}

NetInterface* Worker::Object(const std::string& card)
{
    NetInterfaceDesc desc{};
    desc.name = card.c_str();
    NetInterface* object = nullptr;
    EXPECT_EQ(createNetInterface(&desc, &object), 0);
    NetInterface* first = nullptr;
    auto& known = objects_[static_cast<size_t>(card.back() - '0')];
    EXPECT_TRUE(known.compare_exchange_strong(first, object) || first == object) << card;
    return object;
}

void Worker::Owns(const std::string& path, const std::string& key, const std::string& value)
{
    char read[64] = {};
    EXPECT_TRUE(GetValueByKey(path.c_str(), key.c_str(), read, sizeof(read))) << path << key;
    EXPECT_EQ(read, value) << path << " " << key;
    owned[path][key] = value;
}

void DoDuty(Worker& worker, int round)
{
    const Duty& duty = kDuties[worker.number];
    worker.Now(duty.name, round);
    duty.run(worker, round);
}

void MakeVisit(Worker& worker, int round)
{
    const Visit& visit = kVisitsToMake[worker.Pick(std::size(kVisitsToMake))];
    worker.Now(visit.name, round);
    visit.run(worker);
    ++worker.visits;
}

void UseABridge(Worker& worker, int round)
{
    worker.Now("uses a bridge object", round);
    const std::lock_guard<BootTime> noBoot(worker.bootTime);
    const char* cards[] = {"eth6", "eth7"};
    NetBrDesc desc{};
    desc.name = "br0";
    desc.subDev = cards;
    desc.num = 2;
    NetBridge* bridge = nullptr;
    ASSERT_EQ(createNetBridge(&desc, &bridge), 0);
    unsigned mask = 0;
    EXPECT_EQ(bridge->getBridgeDevicesInfo(bridge, &mask), 0);
    EXPECT_EQ(mask, 0xC0U);
    QV_PAL_NetBrDevice ports[4];
    int count = 4;
    EXPECT_EQ(bridge->getBridgeDevices(bridge, ports, &count), 0);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(bridge->addRef(bridge), 0);
    EXPECT_EQ(bridge->release(bridge), 1);
    EXPECT_EQ(bridge->release(bridge), 0);
    worker.Owns(kBridgeFile, "BRIDGES", "0");
    worker.Owns(kBridgeFile, "SSIF", "eth6,eth7");
}

void ExpectOnePair(std::string primary, std::string secondary)
{
    ASSERT_GT(primary.size(), 1U);
    ASSERT_GT(secondary.size(), 1U);
    EXPECT_EQ(primary.back(), '1');
    EXPECT_EQ(secondary.back(), '2');
    primary.pop_back();
    secondary.pop_back();
    EXPECT_EQ(primary, secondary);
}

int WriteDhcpFile(const std::string& net)
{
    return NetSetDhcpIPRange(kQuiet, (net + "1").c_str(), (net + "9").c_str(), "600");
}

}  // namespace application
