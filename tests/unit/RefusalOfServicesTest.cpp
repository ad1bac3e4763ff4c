// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Two refusals at once, in every pair: settings, the backup memory, routing sockets, neighbours,
// shaping, the switch and the power supply.

#include "RefusalWorld.h"

#include "Backup.h"
#include "Bridge.h"
#include "CommonApi.h"
#include "Config.h"
#include "Netlink.h"
#include "Other.h"
#include "Switch.h"
#include "TrafficControl.h"
#include "VirtInter.h"

#include "fake/Cmos.h"
#include "fake/Rtnetlink.h"

#include <linux/if_link.h>

using namespace fake;

namespace {

const Refusal kNoValue = {"a value that is not there", [](Call&) { Remove(CardFile("eth0")); }};

Refusal Unwritable(const std::string& path)
{
    return {"a file that cannot be written",
            [path](Call&) { FailAll("fopen " + path + " w+", EROFS); }};
}

const Refusal kReadOnly = Unwritable(CardFile("eth0"));
const Refusal kBadAddress = {"a bad address", [](Call& call) { call.address = "10.0.0.256"; }};

/// Takes a setting out of the file of eth0, where there is one.
void CutLine(const std::string& key)
{
    if (!Exists(CardFile("eth0"))) return;
    std::string text = Get(CardFile("eth0"));
    const size_t begin = text.find(key + " ");
    if (begin == std::string::npos) return;
    Put(CardFile("eth0"), text.erase(begin, text.find('\n', begin) + 1 - begin));
}

// ---- settings

INSTANTIATE_TEST_SUITE_P(
    Settings, RefusalOrderTest,
    testing::Values(
        Operation{"GetIPByConfig",
                  nullptr,
                  [](Call& call) {
                      char address[16];
                      char mask[16];
                      return GetIPByConfig(call.Name(), call.addressed ? address : nullptr, mask);
                  },
                  {kNoAddress,
                   kNoName,
                   kNoValue,
                   {"no address in the file", [](Call&) { CutLine("HOSTIP"); }},
                   {"no mask in the file", [](Call&) { CutLine("SUBMASK"); }}}},
        Operation{"SetIPByConfig",
                  nullptr,
                  [](Call& call) {
                      return SetIPByConfig(call.Name(), call.Address(), call.mask.c_str());
                  },
                  {kNoName, kNoAddress, kBadAddress, kReadOnly}},
        Operation{"SetGatewayByConfig",
                  nullptr,
                  [](Call& call) { return SetGatewayByConfig(call.Name(), call.Address()); },
                  {kNoName, kNoAddress, kBadAddress, kReadOnly}},
        Operation{"SetIPv6ByConfig",
                  [](Call& call) {
                      call.address = "2001:db8::9";
                      call.mask = "64";
                  },
                  [](Call& call) {
                      return SetIPv6ByConfig(call.Name(), call.Address(), call.mask.c_str());
                  },
                  {kNoName,
                   kNoAddress,
                   {"a bad address", [](Call& call) { call.address = "2001:db8:::9"; }},
                   {"a prefix that is no number", [](Call& call) { call.mask = "long"; }},
                   Unwritable("/mnt/mtd/Config/networkip6")}},
        Operation{"SetMtuByConfig",
                  [](Call& call) { call.number = 1400; },
                  [](Call& call) { return SetMtuByConfig(call.Name(), call.number); },
                  {{"a size of zero", [](Call& call) { call.number = 0; }}, kNoName, kReadOnly}},
        Operation{"GetMtuByConfig",
                  nullptr,
                  [](Call& call) {
                      int mtu = 0;
                      return GetMtuByConfig(call.Name(), call.addressed ? &mtu : nullptr);
                  },
                  {kNoAddress, kNoName, kNoValue}},
        Operation{
            "SetWorkModeByConfig",
            nullptr,
            [](Call& call) {
                return SetWorkModeByConfig(call.Name(), static_cast<NetWorkMode>(call.number));
            },
            {{"a mode that is none", [](Call& call) { call.number = 4; }}, kNoName, kReadOnly}},
        Operation{"IsTrunkBondConfig",
                  nullptr,
                  [](Call& call) {
                      bool isTrunk = false;
                      return IsTrunkBondConfig(call.named ? call.name.data() : nullptr,
                                               call.addressed ? &isTrunk : nullptr);
                  },
                  {kNoName, kNoAddress, kNoValue}},
        Operation{"GetBondModeByConfig",
                  [](Call&) { Put(CardFile("eth0"), "BONDMODE = 1\n"); },
                  [](Call& call) {
                      NICBondMode mode{};
                      return GetBondModeByConfig(call.Name(), call.addressed ? &mode : nullptr);
                  },
                  {kNoAddress, kNoName, kNoValue}},
        Operation{"SetBondMemberByConfig",
                  nullptr,
                  [](Call& call) {
                      Members members(call.cards);
                      if (!call.addressed) members.Const()[1] = nullptr;
                      return SetBondMemberByConfig(call.Name(), members.Const(), members.Count());
                  },
                  {kNoName,
                   {"a card without name", [](Call& call) { call.addressed = false; }},
                   {"names of 255 characters",
                    [](Call& call) {
                        call.cards = Lines(16, "eth0abcdefghijk");
                        call.cards.emplace_back("x");
                    }},
                   kReadOnly}},
        Operation{"AddEdgePortByconfig",
                  [](Call& call) {
                      call.name = "br0";
                      call.address = "eth1";
                      Put("/mnt/mtd/Config/rsbridgeinit.conf", "SSIF_EDGE[0] = eth2\n");
                  },
                  [](Call& call) { return AddEdgePortByconfig(call.Name(), call.Address()); },
                  {kNoName,
                   kNoAddress,
                   {"a list that is full",
                    [](Call& call) {
                        call.address = std::string(40, 'x');
                        Put("/mnt/mtd/Config/rsbridgeinit.conf",
                            "SSIF_EDGE[0] = " + std::string(230, 'e') + "\n");
                    }},
                   Unwritable("/mnt/mtd/Config/rsbridgeinit.conf")}},
        Operation{"SetBridgePortListByConfig",
                  [](Call& call) {
                      call.name = "br0";
                      call.number = 2;
                  },
                  [](Call& call) {
                      Members members(call.cards);
                      if (!call.addressed) members.Const()[1] = nullptr;
                      return SetBridgePortListByConfig(call.Name(), members.Const(), call.number);
                  },
                  {kNoName,
                   {"no cards", [](Call& call) { call.number = 0; }},
                   {"a card without name", [](Call& call) { call.addressed = false; }},
                   Unwritable("/mnt/mtd/Config/rsbridgeinit.conf")}}),
    Name);

// ---- the backup memory

void OnRtc(Call&)
{
    UseRtc("10.0.0.3", "255.0.0.0", "10.0.0.1");
    CheckDeviceType();
}

void OnCmos(Call&)
{
    UseCmos("10.0.0.3", 8, "10.0.0.1");
    CheckDeviceType();
}

const Refusal kAnotherCard = {"another card", [](Call& call) { call.name = "eth1"; }};
const Refusal kWrongSum = {"a wrong sum", [](Call&) {
                               OnCall("ioctl PDC_RTC_READSRAM",
                                      [] { kernel.rtc.bytes[RTC_SRAM_ETHCRC] ^= 1; });
                           }};
const Refusal kNoFlag = {"a record without its flag", [](Call&) { CmosFlagByte() = 0; }};
const Refusal kNoAddressSaved = {"no address in the memory",
                                 [](Call&) { UseRtc("0.0.0.0", "255.0.0.0", "10.0.0.1"); }};

INSTANTIATE_TEST_SUITE_P(
    Backup, RefusalOrderTest,
    testing::Values(Operation{"BackupIP",
                              OnRtc,
                              [](Call& call) { return BackupIP(call.Name(), call.Address()); },
                              {kNoName, kNoAddress, kAnotherCard, kBadAddress,
                               Failing("ioctl PDC_RTC_READSRAM"), kWrongSum,
                               Failing("ioctl PDC_RTC_WRITESRAM")}},
                    Operation{"RestoreIP",
                              OnRtc,
                              [](Call& call) {
                                  char address[16];
                                  return RestoreIP(call.Name(), call.addressed ? address : nullptr);
                              },
                              {kNoName, kNoAddress, kAnotherCard, Failing("ioctl PDC_RTC_READSRAM"),
                               kWrongSum, kNoAddressSaved}},
                    Operation{"BackupMaskOnCmos",
                              OnCmos,
                              [](Call& call) { return BackupMask(call.Name(), call.Address()); },
                              {kNoName, kNoAddress, kAnotherCard, kBadAddress, Failing("CMOSRead"),
                               kNoFlag, Failing("CMOSWrite")}},
                    Operation{"RestoreGatewayOnCmos",
                              OnCmos,
                              [](Call& call) {
                                  char address[16];
                                  return RestoreGateway(call.Name(),
                                                        call.addressed ? address : nullptr);
                              },
                              {kNoName, kNoAddress, kAnotherCard, Failing("CMOSRead"), kNoFlag}},
                    Operation{"BackupModeOnCmos",
                              OnCmos,
                              [](Call& call) {
                                  return BackupMode(call.named ? call.name.data() : nullptr,
                                                    static_cast<char>('0' + call.number));
                              },
                              {kNoName,
                               {"a mode that is no digit", [](Call& call) { call.number = 10; }},
                               Failing("CMOSRead"),
                               kNoFlag,
                               Failing("CMOSWrite")}},
                    Operation{"CheckCrcOnCmos",
                              OnCmos,
                              [](Call&) { return CheckCrc(); },
                              {Failing("CMOSRead"), kNoFlag}},
                    Operation{"setCmosVerifyFlag",
                              OnCmos,
                              [](Call&) { return setCmosVerifyFlag(); },
                              {Failing("CMOSRead"), Failing("CMOSWrite")}}),
    Name);

// ---- routing sockets

const Refusal kRefusedByTheKernel = {"the kernel refuses",
                                     [](Call&) { rtnetlink.refusal = EEXIST; }};

void OnHost(Call& call)
{
    call.address = "ipv0";
}

INSTANTIATE_TEST_SUITE_P(
    Netlink, RefusalOrderTest,
    testing::Values(
        Operation{"VirtInter_IpVlanAdd",
                  OnHost,
                  [](Call& call) {
                      return VirtInter_IpVlanAdd(call.named ? call.name.data() : nullptr,
                                                 call.address.data(), 0, 0) == 0;
                  },
                  {kNoName, Failing("sendmsg"), kRefusedByTheKernel}},
        Operation{"VirtInter_IpVlanAddWithoutASocket",
                  OnHost,
                  [](Call& call) {
                      return VirtInter_IpVlanAdd(call.named ? call.name.data() : nullptr,
                                                 call.address.data(), 0, 0) == 0;
                  },
                  {kNoName, Failing("socket AF_NETLINK"), Failing("bind"), Failing("getsockname"),
                   kRefusedByTheKernel}},
        Operation{"VirtInter_MacVlanAdd",
                  OnHost,
                  [](Call& call) {
                      char mac[6] = {2, 0, 0, 0, 0, 9};
                      return VirtInter_MacVlanAdd(call.named ? call.name.data() : nullptr,
                                                  call.address.data(), MACVLAN_MODE_SOURCE, 0, 0,
                                                  call.number == 1 ? mac : nullptr) == 0;
                  },
                  {kNoName,
                   {"no hardware address", [](Call& call) { call.number = 0; }},
                   Failing("sendmsg"),
                   kRefusedByTheKernel}},
        Operation{
            "Netlink_IPv4Rule",
            nullptr,
            [](Call& call) { return Netlink_IPv4Rule(RTM_NEWRULE, call.Address(), 100, 1) == 0; },
            {kBadAddress, Failing("sendmsg"), kRefusedByTheKernel}},
        Operation{"rtnl_open",
                  nullptr,
                  [](Call& call) {
                      rtnl_handle handle{};
                      return rtnl_open(call.addressed ? &handle : nullptr) == 0;
                  },
                  {kNoAddress, Failing("socket"), Failing("bind"), Failing("getsockname")}},
        Operation{"rtnl_talk",
                  nullptr,
                  [](Call& call) {
                      rtnl_handle handle{};
                      (void)rtnl_open(&handle);
                      nlmsghdr request{};
                      request.nlmsg_len = sizeof(request);
                      return rtnl_talk(call.addressed ? &handle : nullptr, &request, 0, 0, nullptr,
                                       nullptr, nullptr) == 0;
                  },
                  {kNoAddress, Failing("malloc"), Failing("sendmsg"), kRefusedByTheKernel}}),
    Name);

// ---- neighbours

NetARPEntry Neighbour(const Call& call)
{
    NetARPEntry entry{};
    snprintf(entry.ip, sizeof(entry.ip), "%s", call.address.c_str());
    snprintf(entry.mac, sizeof(entry.mac), "%s", call.gateway.c_str());
    return entry;
}

void OnNeighbour(Call& call)
{
    call.gateway = "02:00:00:00:00:09";
    kernel.neighbours = {{"10.0.0.9", "02:00:00:00:00:09", "eth0", 6}};
}

const Refusal kBadMac = {"a bad hardware address", [](Call& call) { call.gateway = "02:00"; }};

INSTANTIATE_TEST_SUITE_P(
    Neighbours, RefusalOrderTest,
    testing::Values(Operation{"arpSetStaticEntry",
                              OnNeighbour,
                              [](Call& call) {
                                  const NetARPEntry entry = Neighbour(call);
                                  return arpSetStaticEntry(call.addressed ? &entry : nullptr);
                              },
                              {kNoAddress, kBadMac, kBadAddress, Failing("ioctl SIOCSARP")}},
                    Operation{"arpDelStaticEntry",
                              OnNeighbour,
                              [](Call& call) {
                                  const NetARPEntry entry = Neighbour(call);
                                  return arpDelStaticEntry(call.addressed ? &entry : nullptr);
                              },
                              {kNoAddress, kBadAddress, Failing("ioctl SIOCDARP")}},
                    Operation{"Other_GetMacByIP",
                              OnNeighbour,
                              [](Call& call) {
                                  char mac[18];
                                  return Other_GetMacByIP(call.Address(), mac);
                              },
                              {kNoAddress,
                               kBadAddress,
                               Failing("open /proc/net/arp"),
                               {"an unknown address", [](Call&) { kernel.neighbours.clear(); }}}},
                    Operation{"arpGetAllStaticEntry",
                              OnNeighbour,
                              [](Call& call) {
                                  NetARPEntry entries[2];
                                  return arpGetAllStaticEntry(call.addressed ? entries : nullptr,
                                                              &call.number);
                              },
                              {kNoAddress,
                               {"room for none", [](Call& call) { call.number = 0; }},
                               Failing("open /proc/net/arp")}}),
    Name);

// ---- shaping

NetTc Limit()
{
    NetTc limit{};
    snprintf(limit.ipAddr, sizeof(limit.ipAddr), "10.0.0.7");
    limit.bandWidth = 100;
    return limit;
}

INSTANTIATE_TEST_SUITE_P(
    Shaping, RefusalOrderTest,
    testing::Values(
        Operation{"TC_SetSendBand",
                  nullptr,
                  [](Call& call) { return TC_SetSendBand(call.Name(), Limit()); },
                  {kNoName,
                   {"a list that is full", [](Call& call) { call.name = std::string(255, 'e'); }},
                   Failing("vfork")}},
        Operation{"TC_SaveToConfig",
                  nullptr,
                  [](Call& call) { return TC_SaveToConfig(call.Name(), Limit()); },
                  {kNoName, Failing("fopen"), Failing("fwrite")}},
        Operation{"TrafCtrlGetBand",
                  [](Call&) { (void)TC_SaveToConfig("eth0", Limit()); },
                  [](Call& call) {
                      NetTc limits[2];
                      return TrafCtrlGetBand(call.Name(), call.addressed ? limits : nullptr,
                                             &call.number);
                  },
                  {kNoName, kNoAddress, kMissing, Failing("fopen /mnt/mtd/Config/nettc_eth0")}}),
    Name);

// ---- switch and power supply

void OnSwitch(Call& call)
{
    call.name = "eth3";
    kernel.Add("eth3").driver = "sim Switch drv";
    kernel.At("eth3").chip = SwitchChip{std::vector<SwitchPort>(3)};
}

const Refusal kNoSwitch = {"a card that is no switch",
                           [](Call&) { kernel.At("eth3").driver = "sim"; }};

INSTANTIATE_TEST_SUITE_P(
    SwitchAndPower, RefusalOrderTest,
    testing::Values(
        Operation{"GetSwitchPortNum",
                  OnSwitch,
                  [](Call& call) {
                      int count = 0;
                      return GetSwitchPortNum(call.Name(), call.addressed ? &count : nullptr);
                  },
                  {kNoName, kNoAddress, kNoSwitch, Failing("ioctl 0x89F1")}},
        Operation{"GetSwitchMask",
                  OnSwitch,
                  [](Call& call) {
                      int mask = 0;
                      return GetSwitchMask(call.Name(), call.addressed ? &mask : nullptr);
                  },
                  {kNoName, kNoAddress, kNoSwitch, Failing("ioctl 0x89F1")}},
        Operation{"GetSwitchPortByMac",
                  OnSwitch,
                  [](Call& call) {
                      int port = 0;
                      return GetSwitchPortByMac(call.Name(), call.addressed ? "02:00" : nullptr,
                                                &port);
                  },
                  {kNoName, kNoAddress, kNoSwitch}},
        Operation{"GetSwitchStatus",
                  OnSwitch,
                  [](Call& call) {
                      SwitchPortStatus status[2];
                      return GetSwitchStatus(call.Name(), call.addressed ? status : nullptr,
                                             &call.number);
                  },
                  {kNoName, kNoAddress, kNoSwitch}},
        Operation{"PoE_GetPowerInfo",
                  [](Call&) { Put("/dev/qv_poe", ""); },
                  [](Call& call) {
                      PoeInfo_t info;
                      return PoE_GetPowerInfo(call.addressed ? &info : nullptr);
                  },
                  {kNoAddress, Failing("open /dev/qv_poe"), Failing("ioctl 0x81005001")}},
        Operation{"PoE_SetPowerOn",
                  [](Call&) { Put("/dev/qv_poe", ""); },
                  [](Call&) { return PoE_SetPowerOn(1); },
                  {Failing("open /dev/qv_poe"), Failing("ioctl 0x40045003")}}),
    Name);

}  // namespace
