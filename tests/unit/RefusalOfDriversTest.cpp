// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Two refusals at once, in every pair: the bonding driver, the bridge driver and links.

#include "RefusalWorld.h"

#include "Bond.h"
#include "Bridge.h"
#include "CommonApi.h"
#include "Network.h"

using namespace fake;

namespace {

constexpr char kBonding[] = "/sys/class/net/bond0/bonding/";

Refusal FailingOpen(const std::string& attribute)
{
    return Failing("open " + (kBonding + attribute));
}

Refusal FailingWrite(const std::string& attribute)
{
    return Failing("write " + (kBonding + attribute));
}

const Refusal kNoList = {"no list", [](Call& call) { call.addressed = false; }};
const Refusal kNoCount = {"no count", [](Call& call) { call.type = 1; }};
const Refusal kNullEntry = {"an entry that is missing", [](Call& call) { call.cards.pop_back(); }};

/// The list of a call, with NULL in the place of the second card where that is missing.
class List {
public:
    explicit List(Call& call) : members_(call.cards), count_(2)
    {
        for (int i = 0; i < members_.Count(); ++i) names_[i] = members_.Get()[i];
        given_ = call.addressed;
        counted_ = call.type == 0;
    }
    char** Names() { return given_ ? names_ : nullptr; }
    int* Count() { return counted_ ? &count_ : nullptr; }

private:
    Members members_;
    char* names_[2] = {};
    int count_;
    bool given_;
    bool counted_;
};

// ---- bonding driver

void OnDriver(Call& call)
{
    call.name = "bond0";
    call.cards = {"eth1xxxxxxxxxxx", "eth2xxxxxxxxxxx"};
    Put(kBonding + std::string("slaves"), "eth1 eth2\n");
    Put(kBonding + std::string("active_slave"), "eth1\n");
}

const Refusal kVlan = {"a name with a point", [](Call& call) { call.name += ".5"; }};
const Refusal kNoMembers = {"a line that is empty",
                            [](Call&) { Put(kBonding + std::string("slaves"), ""); }};
const Refusal kLongNames = {"names beyond the command",
                            [](Call& call) { call.cards.front() = std::string(250, 'e'); }};

INSTANTIATE_TEST_SUITE_P(
    BondingDriver, RefusalOrderTest,
    testing::Values(
        Operation{"Bond_HasMember",
                  [](Call& call) {
                      OnDriver(call);
                      call.address = "eth2";
                  },
                  [](Call& call) { return Bond_HasMember(call.Name(), call.Address()); },
                  {kNoName, kNoAddress, FailingOpen("slaves"), kNoMembers}},
        Operation{
            "Bond_GetActiveSlave",
            OnDriver,
            [](Call& call) {
                char card[16];
                return Bond_GetActiveSlave(call.Name(), call.addressed ? card : nullptr,
                                           call.number == 1 ? 16 : 0);
            },
            {kNoName,
             kNoAddress,
             {"room for nothing", [](Call& call) { call.number = 0; }},
             FailingOpen("active_slave"),
             {"no active card", [](Call&) { Put(kBonding + std::string("active_slave"), "\n"); }}}},
        Operation{"Bond_SetHashPolicy",
                  OnDriver,
                  [](Call& call) { return Bond_SetHashPolicy(call.Name(), call.number); },
                  {kNoName,
                   {"less than none", [](Call& call) { call.number = -1; }},
                   FailingOpen("xmit_hash_policy"),
                   FailingWrite("xmit_hash_policy")}},
        Operation{"Bond_GetBondMembers",
                  OnDriver,
                  [](Call& call) {
                      List list(call);
                      return Bond_GetBondMembers(call.Name(), list.Names(), list.Count());
                  },
                  {kNoName, kNullEntry, kVlan, FailingOpen("slaves"), kNoMembers}},
        Operation{"Bond_GetBondMembersWithoutACount",
                  OnDriver,
                  [](Call& call) {
                      List list(call);
                      return Bond_GetBondMembers(call.Name(), list.Names(), list.Count());
                  },
                  {kNoName, kVlan, FailingOpen("slaves"), kNoMembers, kNoCount}},
        Operation{"Bond_SetPrimary",
                  OnDriver,
                  [](Call& call) { return Bond_SetPrimary(call.Name(), call.Address()); },
                  {kNoName, kNoAddress, FailingOpen("primary"), FailingWrite("primary")}},
        Operation{"Bond_SetBondMode",
                  OnDriver,
                  [](Call& call) {
                      return Bond_SetBondMode(call.Name(), static_cast<NICBondMode>(call.number));
                  },
                  {kNoName,
                   {"a mode above 6", [](Call& call) { call.number = 7; }},
                   FailingOpen("mode"),
                   FailingWrite("mode"),
                   FailingOpen("miimon"),
                   FailingWrite("miimon")}},
        Operation{"Bond_Bond",
                  OnDriver,
                  [](Call& call) {
                      List list(call);
                      return Bond_Bond(call.Name(), const_cast<const char**>(list.Names()), 2);
                  },
                  {kNoName, kNoList, kNullEntry, Failing("ioctl SIOCSIFFLAGS bond0")}},
        Operation{"Bond_BondOfLongNames",
                  OnDriver,
                  [](Call& call) {
                      List list(call);
                      return Bond_Bond(call.Name(), const_cast<const char**>(list.Names()), 2);
                  },
                  {kNoName, kNullEntry, kLongNames}},
        Operation{"Bond_Unbond",
                  OnDriver,
                  [](Call& call) {
                      List list(call);
                      return Bond_Unbond(call.Name(), const_cast<const char**>(list.Names()), 2);
                  },
                  {kNoName, kNoList, kNullEntry, kLongNames}},
        Operation{"GetBondMembers",
                  OnDriver,
                  [](Call& call) {
                      List list(call);
                      return GetBondMembers(call.Name(), list.Names(), list.Count());
                  },
                  {kNoList, kNoCount, kNoName, kMissing, FailingOpen("slaves"), kNoMembers}},
        Operation{"GetBondActiveSlave",
                  OnDriver,
                  [](Call& call) {
                      char card[16];
                      return GetBondActiveSlave(call.Name(), call.addressed ? card : nullptr, 16);
                  },
                  {kNoName, kNoAddress, FailingOpen("active_slave")}}),
    Name);

// ---- bridge driver

void OnBridge(Call& call)
{
    call.name = "br0";
    call.address = "eth1";
    SetBridgePorts("br0", {"eth1", "eth2"});
    Put("/mnt/mtd/Config/rsbridgeinit.conf", "SSIF_EDGE[0] = eth1\nstp_state = 1\n");
}

const Refusal kNoBridge = {"no such bridge", [](Call&) { Remove("/sys/class/net/br0"); }};
const Refusal kNothingSaved = {"nothing is saved",
                               [](Call&) { Remove("/mnt/mtd/Config/rsbridgeinit.conf"); }};
const Refusal kReadOnly = {"a file that cannot be written", [](Call&) {
                               FailAll("fopen /mnt/mtd/Config/rsbridgeinit.conf w+", EROFS);
                           }};

INSTANTIATE_TEST_SUITE_P(
    BridgeDriver, RefusalOrderTest,
    testing::Values(
        Operation{"Bridge_GetBridgeMembers",
                  OnBridge,
                  [](Call& call) {
                      List list(call);
                      return Bridge_GetBridgeMembers(call.Name(), list.Names(), list.Count());
                  },
                  {kNoName, kNoList, kNoCount, kNullEntry, Failing("opendir")}},
        Operation{"GetBridgeMenbers",
                  OnBridge,
                  [](Call& call) {
                      List list(call);
                      return GetBridgeMenbers(call.Name(), list.Names(), list.Count());
                  },
                  {kNoName, kNoList, kNoCount, kNullEntry, kNoBridge}},
        Operation{"GetBridgeMenbersOfAFolderThatCannotBeRead",
                  OnBridge,
                  [](Call& call) {
                      List list(call);
                      return GetBridgeMenbers(call.Name(), list.Names(), list.Count());
                  },
                  {kNullEntry, kNoBridge, Failing("opendir")}},
        Operation{"Bridge_BridgeCtrl",
                  OnBridge,
                  [](Call& call) {
                      STPInfo stp{};
                      stp.mode = static_cast<uint8_t>(call.number - 1);
                      return Bridge_BridgeCtrl(call.Name(), call.addressed ? &stp : nullptr);
                  },
                  {kNoName,
                   kNoAddress,
                   {"a mode that is not supported", [](Call& call) { call.number = 3; }},
                   Failing("vfork")}},
        Operation{"BridgeIsEdgePort",
                  OnBridge,
                  [](Call& call) { return BridgeIsEdgePort(call.Name(), call.Address()); },
                  {kNoName, kNoAddress, kNoBridge, kNothingSaved}},
        Operation{"BridgeGetStpInfo",
                  OnBridge,
                  [](Call& call) {
                      STPInfo stp{};
                      return BridgeGetStpInfo(call.Name(), call.addressed ? &stp : nullptr);
                  },
                  {kNoName, kNoAddress, kNoBridge, kNothingSaved}},
        Operation{"BridgeUpdatePortListByConfig",
                  OnBridge,
                  [](Call& call) {
                      List list(call);
                      return BridgeUpdatePortListByConfig(
                          call.Name(), const_cast<const char**>(list.Names()), call.number);
                  },
                  {kNoList,
                   {"no ports", [](Call& call) { call.number = 0; }},
                   kNoName,
                   kNoBridge,
                   kReadOnly}},
        Operation{"BridgeUpdateBrIDByConfig",
                  OnBridge,
                  [](Call& call) { return BridgeUpdateBrIDByConfig(call.Name()); },
                  {kNoName, kNoBridge, kReadOnly}},
        Operation{"UnBridgeByInterNic",
                  OnBridge,
                  [](Call& call) { return UnBridgeByInterNic(call.Name()); },
                  {kNoName, kNoBridge, Failing("opendir"), Failing("vfork")}},
        Operation{"BridgeByInterNic",
                  [](Call& call) {
                      call.name = "nbp0";
                      kernel.Add("vnic0").driver = "pcit virt nic";
                  },
                  [](Call&) { return BridgeByInterNic(nullptr); },
                  {{"a bridge that is there", [](Call&) { SetBridgePorts("nbp0", {}); }},
                   Failing("open /proc/net/dev"),
                   {"no virtual cards",
                    [](Call&) {
                        kernel.cards.remove_if(
                            [](const Card& card) { return card.name == "vnic0"; });
                    }}}},
        Operation{
            "BridgeByInterNicOverACardWithAnAddress",
            [](Call& call) {
                call.name = "nbp0";
                kernel.Add("vnic0").driver = "pcit virt nic";
            },
            [](Call&) { return BridgeByInterNic(nullptr); },
            {{"a bridge that is there", [](Call&) { SetBridgePorts("nbp0", {}); }},
             {"an address of its own", [](Call&) { kernel.At("vnic0").address = "10.0.0.7"; }},
             Failing("vfork")}}),
    Name);

// ---- links

void OnMac(Call& call)
{
    call.address = "02:00:00:00:00:09";
}

INSTANTIATE_TEST_SUITE_P(
    Links, RefusalOrderTest,
    testing::Values(
        Operation{"Net_GetMacbyName",
                  nullptr,
                  [](Call& call) {
                      char mac[18];
                      return Net_GetMacbyName(call.Name(), call.addressed ? mac : nullptr);
                  },
                  {kNoName, kNoAddress, Failing("ioctl SIOCGIFHWADDR")}},
        Operation{"Net_GetDataStat",
                  nullptr,
                  [](Call& call) {
                      NetDataStat stat{};
                      return Net_GetDataStat(call.Name(), call.addressed ? &stat : nullptr);
                  },
                  {kNoName, kNoAddress, Failing("open /proc/net/dev"), kMissing}},
        Operation{"Net_GetLinkSpeed",
                  nullptr,
                  [](Call& call) {
                      int speed = 0;
                      return Net_GetLinkSpeed(call.Name(), call.addressed ? &speed : nullptr);
                  },
                  {kNoName,
                   kNoAddress,
                   {"a card without wires",
                    [](Call& call) { Put("/proc/net/wireless", " " + call.name + ": 0\n"); }},
                   Failing("ioctl ETHTOOL_GSET")}},
        Operation{"Net_GetEthtoolInfo",
                  nullptr,
                  [](Call& call) {
                      ethtool_cmd settings{};
                      return Net_GetEthtoolInfo(call.Name(), call.addressed ? &settings : nullptr);
                  },
                  {kNoName, kNoAddress, Failing("ioctl ETHTOOL_GSET")}},
        Operation{"NetSetMacbyName",
                  OnMac,
                  [](Call& call) { return NetSetMacbyName(call.Name(), call.Address()); },
                  {kNoAddress, kNoName, kMissing}},
        Operation{
            "NetSetMtubyName",
            [](Call& call) { call.number = 1400; },
            [](Call& call) { return NetSetMtubyName(call.Name(), call.number); },
            {kNoName,
             kMissing,
             {"a size that the card refuses", [](Call&) { FailAll("ioctl SIOCSIFMTU", EINVAL); }}}},
        Operation{"NetSetMediumPrefer",
                  nullptr,
                  [](Call& call) { return NetSetMediumPrefer(call.Name(), netFiberMediumPrefer); },
                  {kNoName, kMissing, Failing("ioctl 0x89F2")}},
        Operation{"NetGetMacbyName",
                  nullptr,
                  [](Call& call) {
                      char mac[18];
                      return NetGetMacbyName(call.Name(), call.addressed ? mac : nullptr);
                  },
                  {kNoAddress, kNoName, kMissing, Failing("ioctl SIOCGIFHWADDR")}},
        Operation{"NetGetMtubyName",
                  [](Call&) { FailAll("ioctl SIOCGIFMTU", EIO); },
                  [](Call& call) {
                      int mtu = 0;
                      return NetGetMtubyName(call.Name(), call.addressed ? &mtu : nullptr);
                  },
                  {kNoAddress,
                   kNoName,
                   kMissing,
                   {"no size is saved", [](Call&) { Remove(CardFile("eth0")); }}}},
        Operation{"NetGetIPbyName",
                  [](Call& call) {
                      Remove(CardFile("eth0"));
                      kernel.At(call.name).address = "10.0.0.2";
                  },
                  [](Call& call) {
                      char address[16];
                      char mask[16];
                      return NetGetIPbyName(call.Name(), call.addressed ? address : nullptr, mask);
                  },
                  {kNoAddress, kNoName, kMissing, Failing("ioctl SIOCGIFADDR")}},
        Operation{"NetGetGatewaybyName",
                  nullptr,
                  [](Call& call) {
                      char gateway[16];
                      return NetGetGatewaybyName(call.Name(), call.addressed ? gateway : nullptr);
                  },
                  {kNoAddress,
                   kNoName,
                   kMissing,
                   {"no gateway is saved", [](Call&) { Remove(CardFile("eth0")); }}}},
        Operation{
            "NetInterfaceUp",
            nullptr,
            [](Call& call) { return NetInterfaceUp(call.Name()); },
            {kNoName, kMissing, Failing("ioctl SIOCGIFFLAGS"), Failing("ioctl SIOCSIFFLAGS")}},
        Operation{"NetGetAllInterface",
                  nullptr,
                  [](Call& call) {
                      NetInterfaceInfo list[2];
                      return NetGetAllInterface(call.addressed ? list : nullptr, &call.number);
                  },
                  {kNoAddress, Failing("open /proc/net/dev")}}),
    Name);

}  // namespace
