// A device in use: eight threads of one application on both generations of the interface, all at
// once on the same cards and the same setting files, and the boot program beside them.
//
// What callers must keep apart is kept apart here as well:
// - limits of bandwidth: nobody sets any, since the list of limited cards has no lock;
// - the backup memory: one thread sets eth0's address and gateway and asks for the marks, and what
//   kind of memory the device has is found out before the threads start;
// - lanrise's own state: it runs as a process, never as a call of the application;
// - the count of a bridge object: one thread makes, holds and releases it;
// - a bridge, which is built and saved in many steps, and a boot, which builds what is saved: one
//   waits for the other, see `bootTime`;
// - the resolver files, which have no lock between processes, and a boot, which fills in what it
//   cannot read: likewise;
// - a value that lanrise reads and writes back later (address, gateway, flags): the application's
//   last word on it is looked for only where no lanrise runs.
//
// Nothing but the library may open a setting file while the threads run: closing any descriptor of
// a file takes the whole process's lock off it.

#include "Backup.h"
#include "Config.h"
#include "Net3.h"
#include "NetApi2_0.h"

#include "Program.h"

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <memory>
#include <mutex>
#include <random>
#include <set>
#include <sstream>
#include <thread>

#include <arpa/inet.h>
#include <pthread.h>
#include <sys/mman.h>
#include <unistd.h>

using namespace device;

namespace {

constexpr int kThreads = 8;
constexpr int kRounds = 48;         // of each thread
constexpr int kVisits = 5;          // of a round, to whatever chance picks
constexpr int kRunsOfLanrise = 24;  // half of them boots
constexpr int kBridgeEvery = 16;    // rounds
constexpr auto kPatience = std::chrono::seconds(50);

constexpr int kCards = 8;
constexpr int kShared = 5;          // eth0 to eth4: every thread changes their settings
const char* const kQuiet = "eth5";  // neither address nor flags of it change
const char* const kBridged[] = {"eth6", "eth7"};

std::string NameOf(int card)
{
    return "eth" + std::to_string(card);
}

std::string CardFile6(const std::string& card)
{
    return std::string(kConfig) + "/networkip6" +
           (card == "eth0"   ? ""
            : card == "eth1" ? "1"
                             : card);
}

const std::string kBridgeFile = std::string(kConfig) + "/rsbridgeinit.conf";

// ---- boots that others wait for

/// A lock that the application's threads and the process that starts lanrise share.
class BootTime {
public:
    BootTime()
        : mutex_(static_cast<pthread_mutex_t*>(mmap(nullptr, sizeof(pthread_mutex_t),
                                                    PROT_READ | PROT_WRITE,
                                                    MAP_SHARED | MAP_ANONYMOUS, -1, 0)))
    {
        pthread_mutexattr_t attributes;
        pthread_mutexattr_init(&attributes);
        pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED);
        pthread_mutex_init(mutex_, &attributes);
    }
    void lock() { pthread_mutex_lock(mutex_); }
    void unlock() { pthread_mutex_unlock(mutex_); }

private:
    pthread_mutex_t* mutex_;
};

// ---- a setting file, read by eye

using Settings = std::map<std::string, std::string>;

/// The settings in a file of whole lines `KEY = value`, each key once.
Settings WholeLines(const std::string& path)
{
    static const std::set<std::string> kKeys = {
        "HOSTIP",      "SUBMASK",    "GATEWAYIP",    "PRIO",          "WORKMODE", "BONDED",
        "BONDNAME",    "BONDMODE",   "ROUTE",        "BONDPRIMARY",   "MTU",      "ACTIVE_ETH",
        "DEFAULT_ETH", "BRIDGEEDED", "BRIDGENAME",   "BRIDGEMEMBERS", "LACP",     "stp_state",
        "BRIDGES",     "SSIF",       "bridgeprefix", "BONDMEMBERS"};
    const std::string text = Get(path);
    EXPECT_TRUE(text.empty() || text.back() == '\n') << path << "\n" << text;
    Settings settings;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        const size_t middle = line.find(" = ");
        const std::string key = line.substr(0, middle);
        EXPECT_TRUE(middle != std::string::npos && kKeys.count(key) != 0) << path << "\n" << text;
        if (middle == std::string::npos) continue;
        EXPECT_TRUE(settings.emplace(key, line.substr(middle + 3)).second) << path << "\n" << text;
    }
    return settings;
}

// ---- one thread of the application

class Worker {
public:
    Worker(int number, std::array<std::atomic<NetInterface*>, kCards>& objects, BootTime& bootTime,
           bool alone)
        : bootTime(bootTime),
          alone(alone),
          number(number),
          objects_(objects),
          random_(static_cast<unsigned>(number))
    {
    }

    /// Says what comes now, for who waits for it in vain.
    void Now(const char* what, int round)
    {
        what_ = what;
        round_ = round;
    }

    std::string Says() const
    {
        return std::to_string(number) + ": " + what_.load() + " in round " +
               std::to_string(round_.load());
    }

    int Pick(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }

    /// The one object of a card, found or made.
    NetInterface* Object(const std::string& card)
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

    /// Notes a value that this thread alone writes, and looks whether it is there.
    void Owns(const std::string& path, const std::string& key, const std::string& value)
    {
        char read[64] = {};
        EXPECT_TRUE(GetValueByKey(path.c_str(), key.c_str(), read, sizeof(read))) << path << key;
        EXPECT_EQ(read, value) << path << " " << key;
        owned[path][key] = value;
    }

    BootTime& bootTime;
    const bool alone;  // no lanrise beside
    const int number;
    int visits = 0;
    std::map<std::string, Settings> owned;

private:
    std::array<std::atomic<NetInterface*>, kCards>& objects_;
    std::mt19937 random_;
    std::atomic<const char*> what_{"waits for the others"};
    std::atomic<int> round_{0};
};

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

bool StartsWith(const std::string& text, const std::string& start)
{
    return text.rfind(start, 0) == 0;
}

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

/// The two servers of one writer: "9.<thread>.<number>.1" and ".2".
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

int WriteDhcpFile(const std::string& net)
{
    return NetSetDhcpIPRange(kQuiet, (net + "1").c_str(), (net + "9").c_str(), "600");
}

void SetDhcpRange(Worker& worker)
{
    EXPECT_EQ(WriteDhcpFile("10.0.5." + std::to_string(worker.number)), 0);
}

struct Visit {
    const char* name;
    void (*run)(Worker& worker);
};

constexpr Visit kVisitsToPick[] = {
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

// ---- bridges: one thread makes them

void UseABridge(Worker& worker)
{
    const std::lock_guard<BootTime> noBoot(worker.bootTime);
    const char* cards[] = {kBridged[0], kBridged[1]};
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

// ---- the soak

struct Course {
    bool besideLanrise;
    bool withBridges;
};

class SoakTest : public Device {
protected:
    void SetUp() override
    {
        Device::SetUp();
        AddCardWithGateway("eth0", "10.0.0.1/24");
        for (int card = 1; card < kCards; ++card) AddCard(NameOf(card));
        for (int card = 0; card < kCards; ++card) {
            const std::string name = NameOf(card);
            const std::string number = std::to_string(card);
            Must("ip link set " + name + " up; ip addr add 10.0." + number + ".10/24 dev " + name);
            Texts lines = {"PRIO = 1",     "WORKMODE = 0",      "BONDED = 0",
                           "BONDNAME = ",  "BRIDGEEDED = 0",    "BRIDGENAME = ",
                           "ROUTE = kept", "ACTIVE_ETH = kept", "BONDPRIMARY = none",
                           "LACP = 9",     "BONDMODE = 9"};
            if (card == 0) lines.emplace_back("DEFAULT_ETH = eth0");  // with it the file is full
            Save(name, card, lines);
            Put(CardFile6(name),
                Lines({"HOSTIP = 2001:db8::" + number, "ROUTE = kept", "SUBMASK = 64",
                       "ACTIVE_ETH = kept", "GATEWAYIP = 2001:db8::ff"}));
        }
        Put(kBridgeFile, Lines({"bridgeprefix = kept", "stp_state = 0d", "BRIDGES = 0",
                                "SSIF = eth6,eth7", "ROUTE = kept"}));
        const Texts servers = {"nameserver 9.0.0.1", "nameserver 9.0.0.2",
                               "nameserver 2001:db8:1::1", "nameserver 2001:db8:1::2"};
        Put(std::string(kConfig) + "/resolv.conf", Lines(servers));
        Put(std::string(kConfig) + "/resolvip6.conf", Lines({servers[2], servers[3]}));
        CheckDeviceType();
        AwaitLinkLocal(kQuiet);  // so that its link is seen
        for (const auto& file : SavedFiles()) {
            const std::string path = std::string(kConfig) + "/" + file.first;
            if (StartsWith(file.first, "resolv")) continue;
            before_[path] = WholeLines(path);
        }
    }

    void Soak(const Course& course)
    {
        std::unique_ptr<Child> booting;
        if (course.besideLanrise) booting = std::make_unique<Child>([this] { RunLanrise(); });
        for (int i = 0; i < kThreads; ++i) {
            workers_[i] = std::make_unique<Worker>(i, objects_, bootTime_, !course.besideLanrise);
            threads_[i] = std::thread([this, i, course] { Work(*workers_[i], course); });
        }
        AwaitAll(booting == nullptr ? 0 : booting->Id());
        if (booting != nullptr) {
            EXPECT_TRUE(booting->Wait());
        }

        ExpectAllWorkDone(course);
        ExpectWholeLog();
        ExpectWholeSettings(course);
        ExpectWholeResolvers();
        ExpectWholeDhcpFile();
    }

private:
    /// Boots, and addresses for one card after the other, but not for eth0.
    void RunLanrise()
    {
        setpgid(0, 0);
        for (int run = 0; run < kRunsOfLanrise; ++run) {
            const std::string number = std::to_string(1 + run % (kShared - 1));
            Outcome outcome;
            if (run % 2 == 0) {
                const std::lock_guard<BootTime> boots(bootTime_);
                outcome = Lanrise();
            } else {
                outcome =
                    Lanrise("eth" + number + " 10.0." + number + "." + std::to_string(50 + run) +
                            " 255.255.255.0 10.0." + number + ".1");
            }
            EXPECT_EQ(outcome.status, 0);
            EXPECT_TRUE(outcome.Finished());
        }
    }

    void Work(Worker& worker, const Course& course)
    {
        ++started_;
        while (started_ < kThreads) std::this_thread::yield();
        const Duty& duty = kDuties[worker.number];
        for (int round = 0; round < kRounds; ++round) {
            worker.Now(duty.name, round);
            duty.run(worker, round);
            for (int i = 0; i < kVisits; ++i) {
                const Visit& visit = kVisitsToPick[worker.Pick(std::size(kVisitsToPick))];
                worker.Now(visit.name, round);
                visit.run(worker);
                ++worker.visits;
            }
            if (course.withBridges && worker.number == 0 && round % kBridgeEvery == 0) {
                worker.Now("uses a bridge object", round);
                UseABridge(worker);
            }
        }
        worker.Now("has ended", kRounds);
        const std::lock_guard<std::mutex> guard(ending_);
        ++ended_;
        oneEnded_.notify_one();
    }

    /// Ends the test at once, with what each thread is at, when they hang.
    void AwaitAll(pid_t booting)
    {
        std::unique_lock<std::mutex> guard(ending_);
        const bool all =
            oneEnded_.wait_for(guard, kPatience, [this] { return ended_ == kThreads; });
        if (!all) {
            for (const auto& worker : workers_) fprintf(stderr, "%s\n", worker->Says().c_str());
            fprintf(stderr, "the threads hang\n");
            if (booting > 0) kill(-booting, SIGKILL);
            _exit(EXIT_FAILURE);
        }
        guard.unlock();
        for (std::thread& thread : threads_) thread.join();
    }

    void ExpectAllWorkDone(const Course& course) const
    {
        for (const auto& worker : workers_) {
            EXPECT_EQ(worker->visits, kRounds * kVisits);
            EXPECT_EQ(worker->owned.empty(), worker->number == 4 && course.besideLanrise);
        }
        for (const auto& object : objects_) EXPECT_NE(object, nullptr);
    }

    static void ExpectWholeLog()
    {
        const std::string log = output::Caught();
        const std::string end = "()\033[0m\n";
        size_t place = 0;
        while (place < log.size()) {
            const size_t behind = log.find(end, place);
            const size_t colour = log.find('\033', place + 1);
            ASSERT_TRUE(StartsWith(log.substr(place, 4), "\033[1;") &&
                        behind != std::string::npos && colour == behind + 2)
                << log.substr(place, 512);
            place = behind + end.size();
        }
    }

    /// Each key holds the last word of the thread that owns it, or what it held before.
    void ExpectWholeSettings(const Course& course) const
    {
        std::map<std::string, Settings> expected = before_;
        for (const auto& worker : workers_) {
            for (const auto& [path, settings] : worker->owned) {
                for (const auto& [key, value] : settings) expected[path][key] = value;
            }
        }
        expected[CardFile("eth0")]["PRIO"] = "0";
        for (auto& [path, settings] : expected) {
            Settings now = WholeLines(path);
            for (int card = 0; course.besideLanrise && card < kShared; ++card) {
                if (path == CardFile(NameOf(card))) LeaveOutAddress(card, &settings, &now);
            }
            EXPECT_EQ(now, settings) << path;
        }
        if (course.withBridges) (void)WholeLines(CardFile("br0"));
    }

    /// lanrise reads and writes these too: they hold what one of the writers has written.
    static void LeaveOutAddress(int card, Settings* expected, Settings* now)
    {
        const std::string net = "10.0." + std::to_string(card) + ".";
        EXPECT_TRUE(StartsWith((*now)["HOSTIP"], net)) << (*now)["HOSTIP"];
        EXPECT_TRUE(StartsWith((*now)["GATEWAYIP"], net)) << (*now)["GATEWAYIP"];
        EXPECT_TRUE((*now)["SUBMASK"] == "255.255.255.0" || (*now)["SUBMASK"] == "255.255.0.0");
        for (const char* key : {"HOSTIP", "SUBMASK", "GATEWAYIP"}) {
            expected->erase(key);
            now->erase(key);
        }
    }

    static void ExpectWholeResolvers()
    {
        std::istringstream file(Get(std::string(kConfig) + "/resolv.conf"));
        Texts lines;
        for (std::string line; std::getline(file, line);) lines.push_back(line);
        ASSERT_EQ(lines.size(), 4U);
        EXPECT_TRUE(StartsWith(lines[0], "nameserver 9.")) << lines[0];
        EXPECT_TRUE(StartsWith(lines[2], "nameserver 2001:db8:")) << lines[2];
        ExpectOnePair(lines[0], lines[1]);
        ExpectOnePair(lines[2], lines[3]);
        EXPECT_EQ(Get(std::string(kConfig) + "/resolvip6.conf"), Lines({lines[2], lines[3]}));
    }

    /// The file of one writer: the same as when that one writes it again.
    static void ExpectWholeDhcpFile()
    {
        const std::string path = std::string(kConfig) + "/udhcpd.conf";
        const std::string text = Get(path);
        const std::string start = "10.0.5.";
        const std::string net = text.substr(text.find(start), start.size() + 1);
        ASSERT_EQ(WriteDhcpFile(net), 0);
        EXPECT_EQ(text, Get(path));
    }

    BootTime bootTime_;
    std::array<std::atomic<NetInterface*>, kCards> objects_{};
    std::array<std::unique_ptr<Worker>, kThreads> workers_;
    std::array<std::thread, kThreads> threads_;
    std::map<std::string, Settings> before_;
    std::atomic<int> started_{0};
    std::mutex ending_;
    std::condition_variable oneEnded_;
    int ended_ = 0;
};

TEST_F(SoakTest, ThreadsOfAnApplicationLoseNothingOfEachOther)
{
    Soak({false, false});
}

TEST_F(SoakTest, NorDoTheyWithTheBootProgramBesideThem)
{
    Soak({true, false});
}

TEST_F(SoakTest, NorWithBridgesThatComeAndGo)
{
    NEEDS_TOOL("brctl");
    NEEDS_TOOL("ifconfig");
    NEEDS_LINK("br31 type bridge");
    Must("ip link del br31");
    Soak({true, true});
}

}  // namespace
