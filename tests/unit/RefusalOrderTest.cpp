// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Two refusals at once, in every pair: bonds, bridges, cards and routes.

#include "RefusalWorld.h"

#include "Bond.h"
#include "Bridge.h"
#include "CommonApi.h"
#include "Config.h"
#include "NetApi2_0.h"
#include "Network.h"
#include "Network6.h"
#include "Route.h"
#include "TrafficControl.h"

#include <net/if.h>

using namespace fake;

namespace {

// ---- bonds

void OnBond(Call& call)
{
    call.name = "bond0";
}

void OnRunningBond(Call& call)
{
    call.name = "bond0";
    Put("/sys/class/net/bond0/bonding/slaves", "eth1 eth2\n");
    Put(CardFile("bond0"), "BONDMODE = 1\n");
}

const Refusal kNotABond = {"a name without the word",
                           [](Call& call) { call.name = Replaced(call.name, "bond", "lan"); }};
const Refusal kVlan = {"a name with a point", [](Call& call) { call.name += ".5"; }};
const Refusal kBadMode = {"a mode above 6", [](Call& call) { call.number = 7; }};

INSTANTIATE_TEST_SUITE_P(
    Bonds, RefusalOrderTest,
    testing::Values(Operation{"Bond",
                              OnBond,
                              [](Call& call) {
                                  Members members(call.cards);
                                  return Bond(call.Name(), members.Const(), members.Count(),
                                              static_cast<NICBondMode>(call.number));
                              },
                              {kNoName, kBadMode, kNotABond, kVlan, kMissing, kMissingCard,
                               Failing("open /sys/class/net/bond0/bonding/mode")}},
                    Operation{"BondThatRuns",
                              OnRunningBond,
                              [](Call& call) {
                                  Members members(call.cards);
                                  return Bond(call.Name(), members.Const(), members.Count(),
                                              static_cast<NICBondMode>(call.number));
                              },
                              {kNoName,
                               kBadMode,
                               kNotABond,
                               kVlan,
                               kMissing,
                               kMissingCard,
                               {"another mode is saved",
                                [](Call&) { Put(CardFile("bond0"), "BONDMODE = 0\n"); }},
                               Failing("open /sys/class/net/bond0/bonding/primary")}},
                    Operation{"UnBond",
                              OnRunningBond,
                              [](Call& call) { return UnBond(call.Name()); },
                              {kNoName, kNotABond, kMissing,
                               Failing("open /sys/class/net/bond0/bonding/slaves")}},
                    Operation{"SetBondHashPolicy",
                              OnBond,
                              [](Call& call) { return SetBondHashPolicy(call.Name(), 2); },
                              {kNoName, kNotABond, kMissing,
                               Failing("open /sys/class/net/bond0/bonding/xmit_hash_policy")}},
                    Operation{"GetBondHashPolicy",
                              [](Call& call) {
                                  OnBond(call);
                                  Put(CardFile("bond0"), "LACP = 2\n");
                              },
                              [](Call& call) {
                                  unsigned char policy = 0;
                                  return GetBondHashPolicy(call.Name(),
                                                           call.addressed ? &policy : nullptr);
                              },
                              {kNoAddress,
                               kNoName,
                               kMissing,
                               {"no policy is saved", [](Call&) { Put(CardFile("bond0"), ""); }}}},
                    Operation{"GetBondMode",
                              OnRunningBond,
                              [](Call& call) {
                                  NICBondMode mode{};
                                  return GetBondMode(call.Name(), call.addressed ? &mode : nullptr);
                              },
                              {kNoAddress,
                               kNoName,
                               Failing("open /sys/class/net/bond0/bonding/slaves"),
                               {"no mode is saved", [](Call&) { Put(CardFile("bond0"), ""); }}}}),
    Name);

// ---- bridges

void OnBridge(Call& call)
{
    call.name = "br0";
}

void OnRunningBridge(Call& call)
{
    call.name = "br0";
    call.address = "eth1";
    SetBridgePorts("br0", {"eth1", "eth2"});
}

const Refusal kNoBridge = {"no such bridge", [](Call&) { Remove("/sys/class/net/br0"); }};
const Refusal kNotAPort = {"a card that is no port", [](Call& call) { call.address = "eth0"; }};

INSTANTIATE_TEST_SUITE_P(
    Bridges, RefusalOrderTest,
    testing::Values(
        Operation{"Bridge",
                  OnBridge,
                  [](Call& call) {
                      Members members(call.cards);
                      return Bridge(call.Name(), members.Get(), members.Count());
                  },
                  {kNoName,
                   {"a name of another form", [](Call& call) { call.name = "bra"; }},
                   kMissingCard,
                   Failing("vfork")}},
        Operation{"UnBridge",
                  OnRunningBridge,
                  [](Call& call) { return UnBridge(call.Name()); },
                  {kNoName, kNoBridge, Failing("opendir"), Failing("vfork")}},
        Operation{"BridgeAddEdgePort",
                  OnRunningBridge,
                  [](Call& call) { return BridgeAddEdgePort(call.Name(), call.Address()); },
                  {kNoName, kNoBridge, Failing("opendir"), kNotAPort, Failing("vfork")}},
        Operation{"BridgeDelEdgePort",
                  OnRunningBridge,
                  [](Call& call) { return BridgeDelEdgePort(call.Name(), call.Address()); },
                  {kNoAddress, kNoBridge, Failing("opendir"), kNotAPort, Failing("vfork")}},
        Operation{"BridgeControl",
                  OnRunningBridge,
                  [](Call& call) {
                      STPInfo stp{};
                      stp.mode = static_cast<uint8_t>(call.number - 1);
                      return BridgeControl(call.Name(), call.addressed ? &stp : nullptr);
                  },
                  {kNoAddress,
                   kNoName,
                   kNoBridge,
                   {"a mode that is not supported", [](Call& call) { call.number = 3; }}}}),
    Name);

// ---- addresses of a card

INSTANTIATE_TEST_SUITE_P(
    Cards, RefusalOrderTest,
    testing::Values(
        Operation{"NetSetIPByName",
                  nullptr,
                  [](Call& call) {
                      return NetSetIPByName(call.Name(), call.Address(), call.mask.c_str());
                  },
                  {kNoAddress,
                   kNoName,
                   kMissing,
                   {"a bad address", [](Call& call) { call.address = "10.0.0"; }},
                   Failing("ioctl SIOCSIFADDR"),
                   {"a bad mask", [](Call& call) { call.mask = "255.0"; }},
                   Failing("ioctl SIOCSIFNETMASK")}},
        Operation{
            "Net_GetIPbyName",
            nullptr,
            [](Call& call) {
                char address[16];
                char mask[16];
                return Net_GetIPbyName(call.Name(), call.addressed ? address : nullptr, mask);
            },
            {kNoName, kNoAddress, Failing("ioctl SIOCGIFADDR"), Failing("ioctl SIOCGIFNETMASK")}},
        Operation{"Net_SetMacbyName",
                  [](Call& call) { call.address = "02:00:00:00:00:09"; },
                  [](Call& call) { return Net_SetMacbyName(call.Name(), call.Address()); },
                  {kNoName,
                   kNoAddress,
                   {"a bad hardware address", [](Call& call) { call.address = "02:00"; }},
                   Failing("ioctl SIOCSIFHWADDR")}},
        Operation{"NetSetGatewaybyName",
                  nullptr,
                  [](Call& call) { return NetSetGatewaybyName(call.Name(), call.Address()); },
                  {kNoAddress,
                   kNoName,
                   kMissing,
                   {"a file that cannot be written",
                    [](Call& call) { FailAll("fopen " + CardFile(call.name) + " w+", EROFS); }}}},
        Operation{
            "NetSetDefEth",
            nullptr,
            [](Call& call) { return NetSetDefEth(call.Name()); },
            {kNoName,
             kMissing,
             {"no gateway is saved",
              [](Call&) { Put(CardFile("eth0"), "HOSTIP = 10.0.0.2\nSUBMASK = 255.0.0.0\n"); }},
             Failing("ioctl SIOCADDRT")}},
        Operation{"NetGetEthWorkMode",
                  nullptr,
                  [](Call& call) {
                      NetWorkMode mode{};
                      return NetGetEthWorkMode(call.Name(), call.addressed ? &mode : nullptr);
                  },
                  {kNoAddress,
                   kNoName,
                   {"a name without the word", [](Call& call) { call.name = "lan0"; }}}},
        Operation{"NetMiiDiag",
                  nullptr,
                  [](Call& call) { return NetMiiDiag(call.Name(), false); },
                  {kNoName, kMissing, Failing("ioctl ETHTOOL_GLINK")}},
        Operation{"NetGetLinkSpeed",
                  nullptr,
                  [](Call& call) {
                      int speed = 0;
                      return NetGetLinkSpeed(call.Name(), call.addressed ? &speed : nullptr);
                  },
                  {kNoAddress, kNoName, kMissing, Failing("ioctl ETHTOOL_GSET")}},
        Operation{"NetGetDataStat",
                  nullptr,
                  [](Call& call) {
                      NetDataStat stat{};
                      return NetGetDataStat(call.Name(), call.addressed ? &stat : nullptr);
                  },
                  {kNoAddress, kNoName, kMissing}}),
    Name);

// ---- IPv6

void OnAddress6(Call& call)
{
    call.address = "2001:db8::9";
    call.mask = "64";
    kernel.At("eth0").addresses6 = {{"2001:db8::2", 64, 0}};
}

const Refusal kBadAddress6 = {"a bad address", [](Call& call) { call.address = "2001:db8:::9"; }};

INSTANTIATE_TEST_SUITE_P(
    IPv6, RefusalOrderTest,
    testing::Values(
        Operation{"NetSetIPv6byName",
                  OnAddress6,
                  [](Call& call) {
                      return NetSetIPv6byName(call.Name(), call.Address(), call.mask.c_str());
                  },
                  {kNoName, kMissing, {"a long prefix", [](Call& call) { call.mask = "129"; }}}},
        Operation{"NetDelIPAddressIpv6",
                  [](Call& call) {
                      OnAddress6(call);
                      call.address = "2001:db8::2/64";
                  },
                  [](Call& call) {
                      return NetDelIPAddressIpv6(call.Name(),
                                                 call.addressed ? call.address.data() : nullptr);
                  },
                  {kNoAddress,
                   kMissing,
                   {"a long prefix", [](Call& call) { call.address = "2001:db8::2/200"; }}}},
        Operation{"Net6_SetIPv6byName",
                  OnAddress6,
                  [](Call& call) {
                      return Net6_SetIPv6byName(call.Name(), call.Address(), call.mask.c_str());
                  },
                  {kNoName, kNoAddress, Failing("ioctl SIOCGIFINDEX"), kBadAddress6,
                   Failing("ioctl SIOCSIFADDR")}},
        Operation{
            "Net6_DelIPAddressIpv6",
            [](Call& call) {
                OnAddress6(call);
                kernel.At("eth0").addresses6.push_back({"2001:db8::9", 64, 0});
            },
            [](Call& call) { return Net6_DelIPAddressIpv6(call.Name(), call.Address(), "64"); },
            {kNoName, Failing("ioctl SIOCGIFINDEX"), kBadAddress6, Failing("ioctl SIOCDIFADDR")}},
        Operation{"RouteAddIPv6",
                  [](Call& call) {
                      call.address = "2001:db8:1::";
                      call.gateway = "fe80::1";
                      call.mask = "48";
                  },
                  [](Call& call) {
                      return RouteAddIPv6(call.Address(), call.gateway.c_str(), call.mask.c_str(),
                                          call.Name());
                  },
                  {kNoName,
                   {"a bad gateway", [](Call& call) { call.gateway = "fe80:::1"; }},
                   Failing("ioctl SIOCADDRT")}}),
    Name);

// ---- routes

void OnRecord(Call& call)
{
    call.type = 1;
    call.number = 64;
}

bool AddRecord(Call& call)
{
    NetRouteTableInfo record{};
    record.type = call.type;
    record.mask = static_cast<uint32_t>(call.number);
    record.dst.addrIPv6[0] = 0x2001;
    snprintf(record.viaDev, sizeof(record.viaDev), "%s", call.name.c_str());
    return RouteAdd(&record);
}

INSTANTIATE_TEST_SUITE_P(
    Routes, RefusalOrderTest,
    testing::Values(
        Operation{"RouteAdd",
                  OnRecord,
                  AddRecord,
                  {kMissing,
                   {"a type that is none", [](Call& call) { call.type = 2; }},
                   {"a long prefix", [](Call& call) { call.number = 129; }}}},
        Operation{"RouteAddIPv4",
                  [](Call& call) { call.mask = "255.255.0.0"; },
                  [](Call& call) {
                      return RouteAddIPv4("10.9.0.0", call.gateway.c_str(), call.mask.c_str(),
                                          call.Name());
                  },
                  {kNoName,
                   {"a route that is there",
                    [](Call& call) {
                        kernel.routes.push_back({"10.9.0.0", call.gateway, call.mask, call.name});
                    }},
                   Failing("ioctl SIOCADDRT")}},
        Operation{"RouteAddDefIPv4",
                  nullptr,
                  [](Call& call) { return RouteAddDefIPv4(call.Name()); },
                  {kNoName,
                   {"no gateway is saved", [](Call&) { Put(CardFile("eth0"), ""); }},
                   Failing("ioctl SIOCADDRT")}},
        Operation{"TrafCtrlSetBand",
                  nullptr,
                  [](Call& call) {
                      NetTc limit{};
                      snprintf(limit.ipAddr, sizeof(limit.ipAddr), "10.0.0.7");
                      limit.ipType = 4;
                      limit.bandWidth = 100;
                      return TrafCtrlSetBand(call.Name(), call.addressed ? &limit : nullptr, 1);
                  },
                  {kNoName, kNoAddress, kMissing}}),
    Name);

}  // namespace
