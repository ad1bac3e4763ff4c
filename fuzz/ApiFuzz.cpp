// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The public interface as a machine of states: operations of both generations in any order, with
// restarts of the application and runs of the boot program between them. After each one the kernel
// and what both generations tell are what a model of the device foretells.

#include "Fuzz.h"

#include "Lanrise.h"
#include "Net3.h"
#include "NetApi2_0.h"
#include "world/Tools.h"

#include <algorithm>
#include <cstring>
#include <map>

#include <net/if.h>

namespace {

// ---- the model

struct Card {
    std::string address;  // in the kernel; empty: none
    std::string saved;
    std::string mask;
    std::string gateway;
    std::string mac;
    int mtu = 1500;
    std::string master;
};

constexpr const char* kCards[] = {"eth0", "eth1", "eth2", "eth3"};
constexpr int kCardCount = 4;
constexpr char kBond[] = "bond0";
constexpr char kBridge[] = "br0";

std::map<std::string, Card> model;

void Start()
{
    model.clear();
    fuzz::FreshWorld();
    fuzz::HaveTools();
    for (const char* name : {"eth2", "eth3"}) fake::kernel.Add(name);
    fuzz::AddBond(kBond);
    for (int i = 0; i < kCardCount; ++i) {
        const std::string name = kCards[i];
        const std::string net = "10." + std::to_string(i) + ".0.";
        Card& card = model[name];
        card.address = card.saved = net + "2";
        card.mask = "255.255.255.0";
        card.gateway = net + "1";
        fake::Card& live = fake::kernel.At(name);
        live.address = card.address;
        live.mask = card.mask;
        live.flags = IFF_UP;
        card.mac = live.mac;
        const std::string file = i == 0 ? "" : i == 1 ? "1" : name;
        fuzz::Put("/mnt/mtd/Config/network" + file,
                  "HOSTIP = " + card.saved + "\nSUBMASK = " + card.mask +
                      "\nGATEWAYIP = " + card.gateway + "\nMTU = 1500\n");
    }
}

// ---- the two generations

NetInterface* Object(const char* name)
{
    NetInterfaceDesc desc{};
    desc.name = name;
    NetInterface* object = nullptr;
    HOLDS(createNetInterface(&desc, &object) == 0);
    return object;
}

void CompareCard(const std::string& name, const Card& card)
{
    const fake::Card& live = fake::kernel.At(name);
    HOLDS(fuzz::Same(name + " " + live.address + "\n", name + " " + card.address + "\n"));
    HOLDS(live.address.empty() || live.mask == card.mask);
    HOLDS(live.mtu == card.mtu);
    HOLDS(live.mac == card.mac);
    HOLDS(fuzz::Same(fuzz::MasterOf(name) + "\n", card.master + "\n"));

    char address[2][16] = {};
    char mask[2][16] = {};
    char gateway[2][16] = {};
    NetInterface* object = Object(name.c_str());
    HOLDS(NetGetHostIPEx(name.c_str(), address[0], 16, mask[0], 16) == 0);
    HOLDS(object->getHostIP(object, address[1], 16, mask[1], 16) == 0);
    HOLDS(NetGetGatewayEx(name.c_str(), gateway[0], 16) == 0);
    HOLDS(object->getGateway(object, gateway[1], 16) == 0);
    for (int generation = 0; generation < 2; ++generation) {
        HOLDS(address[generation] == card.saved);
        HOLDS(mask[generation] == card.mask);
        HOLDS(gateway[generation] == card.gateway);
    }
}

void Compare(const std::string& name)
{
    CompareCard(name, model.at(name));
    for (const auto& [other, card] : model) {
        HOLDS(fake::kernel.At(other).address == card.address);
        HOLDS(fuzz::MasterOf(other) == card.master);
    }
    HOLDS(fuzz::HeldMutexes() == 0);
    HOLDS(fuzz::OpenHandles() - fuzz::OpenSockets() <= 4);  // kept tables and the memory
}

// ---- operations

struct Call {
    fuzz::Input& input;
    std::string name;
    bool third;  // generation
    Card& card;
};

void SetAddress(Call& call)
{
    const std::string address = fuzz::Address(call.input);
    const char* mask = call.input.Below(2) == 0 ? "255.255.255.0" : "255.255.0.0";
    const int result =
        call.third
            ? Object(call.name.c_str())->setHostIP(Object(call.name.c_str()), address.c_str(), mask)
            : NetSetHostIPEx(call.name.c_str(), address.c_str(), mask);
    HOLDS(result == 0);
    call.card.address = call.card.saved = address;
    call.card.mask = mask;
}

void SetBadAddress(Call& call)
{
    constexpr const char* kBad[] = {"", "x", "1.2.3.4.5", "256.1.1.1", "::1"};
    const char* text = kBad[call.input.Below(5)];
    NetInterface* object = Object(call.name.c_str());
    HOLDS(call.third ? object->setHostIP(object, text, "255.0.0.0") == -1
                     : NetSetHostIPEx(call.name.c_str(), text, "255.0.0.0") == -1);
}

void SetGateway(Call& call)
{
    const std::string gateway = fuzz::Address(call.input);
    NetInterface* object = Object(call.name.c_str());
    HOLDS((call.third ? object->setGateway(object, gateway.c_str())
                      : NetSetGatewayEx(call.name.c_str(), gateway.c_str())) == 0);
    call.card.gateway = gateway;
}

void SetMtu(Call& call)
{
    constexpr int kSizes[] = {67, 68, 576, 1400, 1500, 7200, 7201, 65535, -1};
    const int size = kSizes[call.input.Below(9)];
    NetInterface* object = Object(call.name.c_str());
    const int result =
        call.third ? object->setMTU(object, size) : NetSetMTU(call.name.c_str(), size);
    HOLDS(result == (size == 67 ? -1 : 0));
    if (result == 0) call.card.mtu = size < 0 ? 1500 : size;
    int told = 0;
    HOLDS(NetGetMTU(call.name.c_str(), &told) == 0 && told == call.card.mtu);
    HOLDS(object->getMTU(object, &told) == 0 && told == call.card.mtu);
}

void SetMac(Call& call)
{
    char mac[18];
    snprintf(mac, sizeof(mac), "02:00:00:00:00:%02x", call.input.Byte());
    NetInterface* object = Object(call.name.c_str());
    HOLDS((call.third ? object->setMAC(object, mac) : NetSetMAC(call.name.c_str(), mac)) == 0);
    call.card.mac = mac;
    char told[18] = {};
    HOLDS(NetGetMAC(call.name.c_str(), told, sizeof(told)) == 0 && told == call.card.mac);
}

void SetServers(Call& call)
{
    const std::string first = fuzz::Address(call.input);
    const std::string second = fuzz::Address(call.input);
    NetInterface* object = Object(call.name.c_str());
    HOLDS((call.third ? object->setDNSAddress(object, first.c_str(), second.c_str())
                      : NetSetDNSAddress(first.c_str(), second.c_str())) == 0);
    char told[2][16] = {};
    HOLDS((call.third ? NetGetDNSAddress(told[0], 16, told[1], 16)
                      : object->getDNSAddress(object, told[0], 16, told[1], 16)) == 0);
    HOLDS(told[0] == first && told[1] == second);
}

void SetDefault(Call& call)
{
    const int result = call.third ? setDefaultNetInterface(call.name.c_str())
                                  : NetSetDefaultEth(call.name.c_str());
    HOLDS(result == 0);
    char told[2][16] = {};
    HOLDS(NetGetDefaultEth(told[0]) == 0 && getDefaultNetInterface(told[1], 16) == 0);
    HOLDS(told[0] == call.name && told[1] == call.name);
    const auto& routes = fake::kernel.routes;
    HOLDS(std::count(routes.begin(), routes.end(),
                     fake::Route{"0.0.0.0", call.card.gateway, "0.0.0.0", call.name}) == 1);
}

/// Cards that are joined, at least two: from the named one on.
std::vector<const char*> Row(const Call& call)
{
    std::vector<const char*> row;
    const int first = call.name[3] - '0';
    const int count = 2 + call.input.Below(3);
    for (int i = 0; i < count; ++i) row.push_back(kCards[(first + i) % kCardCount]);
    return row;
}

bool HasMembers(const std::string& master)
{
    return std::any_of(model.begin(), model.end(),
                       [&](const auto& entry) { return entry.second.master == master; });
}

/// Joined cards lose their addresses; those that are in another one stay there.
void Joined(const std::vector<const char*>& row, const char* master)
{
    for (const char* name : row) {
        Card& card = model.at(name);
        card.address.clear();
        if (card.master.empty()) card.master = master;
    }
}

void Freed(const char* master)
{
    for (auto& [name, card] : model) {
        if (card.master != master) continue;
        card.master.clear();
        card.address = card.saved;
    }
}

void JoinBond(Call& call)
{
    std::vector<const char*> row = Row(call);
    const auto count = static_cast<int>(row.size());
    const bool running = HasMembers(kBond);
    NetInterface* object = Object(kBond);
    const int result = call.third ? object->bond(object, row.data(), count, nicBondActiveBackup)
                                  : NetWorkBondEx(kBond, row.data(), count, 1);
    HOLDS(result == 0);
    if (!running) Joined(row, kBond);
}

void EndBond(Call& call)
{
    NetInterface* object = Object(kBond);
    const int result = call.third ? object->unbond(object) : NetWorkUnBondEx(kBond);
    if (result == 0) Freed(kBond);
    HOLDS(result == 0 || !HasMembers(kBond));
}

void JoinBridge(Call& call)
{
    std::vector<const char*> row = Row(call);
    HOLDS(CreateNetWorkBridge(kBridge, row.data(), static_cast<int32_t>(row.size())) == 0);
    Joined(row, kBridge);
}

void EndBridge(Call& /*call*/)
{
    const int result = DestoryNetWorkBridge(kBridge);
    if (result == 0) Freed(kBridge);
    HOLDS(result == 0 || !HasMembers(kBridge));
}

void ChangeRoute(Call& call)
{
    NetRouteTableInfo route{};
    route.dst.addrIPv4 = 0x0005a8c0U + (static_cast<uint32_t>(call.input.Byte()) << 16U);
    route.mask = 0x00ffffffU;
    call.name.copy(route.viaDev, sizeof(route.viaDev) - 1);
    const size_t before = fake::kernel.routes.size();
    const bool added = NetAddRoute(&route) == 0;
    HOLDS(fake::kernel.routes.size() == before + (added ? 1 : 0));
    if (call.third) return;
    HOLDS(NetDelRoute(&route) == 0);
    HOLDS(fake::kernel.routes.size() == before - (added ? 0 : 1));
}

/// The application ends and begins again.
void Restart(Call& /*call*/)
{
    fuzz::NextProcess();
}

void UpDown(Call& call)
{
    NetInterface* object = Object(call.name.c_str());
    HOLDS(object->down(object) == 0);
    HOLDS((fake::kernel.At(call.name).flags & IFF_UP) == 0);
    HOLDS(object->up(object) == 0);
    HOLDS((fake::kernel.At(call.name).flags & IFF_UP) != 0);
}

void Lists(Call& /*call*/)
{
    NetDevice second[32] = {};
    NetInterfaceInfo third[32] = {};
    const int count = NetGetAllEthDevice(second, 32);
    int number = 32;
    HOLDS(getNetInterfaceList(third, &number) == 0);
    HOLDS(count <= number);
}

struct Operation {
    const char* name;
    void (*run)(Call&);
};
constexpr Operation kOperations[] = {{"SetAddress", SetAddress},
                                     {"SetBadAddress", SetBadAddress},
                                     {"SetGateway", SetGateway},
                                     {"SetMtu", SetMtu},
                                     {"SetMac", SetMac},
                                     {"SetServers", SetServers},
                                     {"SetDefault", SetDefault},
                                     {"JoinBond", JoinBond},
                                     {"EndBond", EndBond},
                                     {"JoinBridge", JoinBridge},
                                     {"EndBridge", EndBridge},
                                     {"ChangeRoute", ChangeRoute},
                                     {"Restart", Restart},
                                     {"UpDown", UpDown},
                                     {"Lists", Lists}};
constexpr int kOperationCount = static_cast<int>(std::size(kOperations));
constexpr int kMostOperations = 12;

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzz::Input input(data, size);
    Start();
    fuzz::notes.clear();
    const int count = input.Below(kMostOperations);
    for (int i = 0; i < count; ++i) {
        const Operation& operation = kOperations[input.Below(kOperationCount)];
        const uint8_t which = input.Byte();
        const std::string name = kCards[which % kCardCount];
        Call call = {input, name, (which & 128U) != 0, model.at(name)};
        fuzz::notes +=
            std::string(operation.name) + " " + name + (call.third ? " (3)\n" : " (2)\n");
        operation.run(call);
        Compare(name);
    }
    return 0;
}
