// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Two refusals at once, in every pair: the functions of version 2 and the objects of version 3.

#include "RefusalWorld.h"

#include "NetApi2_0.h"
#include "NetApi3_0.h"

using namespace fake;

namespace {

/// How long the caller's buffers are: `number` is 1 where they hold what is asked for.
int Length(const Call& call, int enough)
{
    return call.number == 1 ? enough : enough - 1;
}

const Refusal kShort = {"buffers that are too short", [](Call& call) { call.number = 0; }};
const Refusal kNoFile = {"nothing is saved", [](Call&) { Remove(CardFile("eth0")); }};
const Refusal kNoList = Failing("open /proc/net/dev");
const Refusal kBadAddress = {"a bad address", [](Call& call) { call.address = "10.0.0.256"; }};

/// An operation of version 2: 0 is a success.
Operation Version2(const char* name, std::function<void(Call&)> prepare,
                   std::function<int32_t(Call&)> run, std::vector<Refusal> refusals)
{
    return {name, std::move(prepare), [run = std::move(run)](Call& call) { return run(call) == 0; },
            std::move(refusals)};
}

// ---- version 2

INSTANTIATE_TEST_SUITE_P(
    Addresses2, RefusalOrderTest,
    testing::Values(
        Version2("NetGetCaps", nullptr,
                 [](Call& call) {
                     NetCaps caps;
                     return NetGetCaps(call.addressed ? &caps : nullptr);
                 },
                 {kNoAddress, kNoList}),
        Version2("NetSetHostIP", nullptr,
                 [](Call& call) { return NetSetHostIP(call.Address(), call.mask.c_str()); },
                 {kNoAddress, kNoList, Failing("ioctl SIOCSIFADDR")}),
        Version2("NetGetHostIPEx", nullptr,
                 [](Call& call) {
                     char ip[16];
                     char mask[16];
                     return NetGetHostIPEx(call.Name(), call.addressed ? ip : nullptr,
                                           Length(call, 16), mask, 16);
                 },
                 {kShort, kNoAddress, kNoName, kMissing}),
        Version2("NetGetGatewayEx", nullptr,
                 [](Call& call) {
                     char gateway[16];
                     return NetGetGatewayEx(call.Name(), call.addressed ? gateway : nullptr,
                                            Length(call, 16));
                 },
                 {kShort, kNoAddress, kNoName, kMissing, kNoFile}),
        Version2("NetGetMAC", nullptr,
                 [](Call& call) {
                     char mac[18];
                     return NetGetMAC(call.Name(), call.addressed ? mac : nullptr,
                                      Length(call, 18));
                 },
                 {kShort, kNoAddress, kNoName, kMissing, Failing("ioctl SIOCGIFHWADDR")}),
        Version2("NetGetMTU", nullptr,
                 [](Call& call) {
                     int32_t mtu = 0;
                     return NetGetMTU(call.Name(), call.addressed ? &mtu : nullptr);
                 },
                 {kNoAddress, kNoName, kMissing}),
        Version2(
            "NetGetDNSAddress",
            [](Call&) {
                Put("/mnt/mtd/Config/resolv.conf", "nameserver 10.0.0.5\nnameserver 10.0.0.6\n");
                Put("/mnt/mtd/Config/resolvip6.conf", "");
            },
            [](Call& call) {
                char primary[16];
                char secondary[16];
                return NetGetDNSAddress(call.addressed ? primary : nullptr, Length(call, 16),
                                        secondary, 16);
            },
            {kShort, kNoAddress, Failing("open /mnt/mtd/Config/resolv.conf")}),
        Version2("NetSetDNSAddress", nullptr,
                 [](Call& call) { return NetSetDNSAddress(call.Address(), "10.0.0.6"); },
                 {kNoAddress, kBadAddress, Failing("fopen /mnt/mtd/Config/resolv.conf w+"),
                  Failing("fopen /mnt/mtd/Config/resolvip6.conf w+")}),
        Version2(
            "NetWorkGetMac",
            [](Call&) {
                kernel.neighbours = {{"10.0.0.9", "02:00:00:00:00:09", "eth0", 2}};
            },
            [](Call& call) {
                char mac[18];
                return NetWorkGetMac(call.Address(), mac);
            },
            {kNoAddress, kBadAddress, Failing("open /proc/net/arp")})),
    Name);

void OnRecords(Call& call)
{
    call.number = 4;
    kernel.routes = {{"10.0.0.0", "0.0.0.0", "255.0.0.0", "eth0"}};
}

const Refusal kRoomForNone = {"room for none", [](Call& call) { call.number = 0; }};

void OnSwitch(Call& call)
{
    call.name = "eth3";
    call.number = 4;
    kernel.Add("eth3").driver = "sim Switch drv";
    kernel.At("eth3").chip = SwitchChip{std::vector<SwitchPort>(3)};
}

const Refusal kNoSwitch = {"a card that is no switch",
                           [](Call&) { kernel.At("eth3").driver = "sim"; }};

INSTANTIATE_TEST_SUITE_P(
    Devices2, RefusalOrderTest,
    testing::Values(
        Version2("NetGetEthName", nullptr,
                 [](Call& call) {
                     char names[64];
                     int32_t count = 0;
                     return NetGetEthName(call.addressed ? names : nullptr,
                                          call.number == 1 ? 64 : 8, &count);
                 },
                 {kNoAddress, kNoList, kShort}),
        Version2("NetGetStats", nullptr,
                 [](Call& call) {
                     NetStats stats;
                     return NetGetStats(call.Name(), call.addressed ? &stats : nullptr);
                 },
                 {kNoName, kNoAddress, kMissing}),
        Version2("NetWorkSetEthStatus", nullptr,
                 [](Call& call) { return NetWorkSetEthStatus(call.Name(), 0); },
                 {kNoName, kMissing, Failing("ioctl SIOCADDRT")}),
        Version2("NetRouteAddDelete", nullptr,
                 [](Call& call) { return NetRouteAddDelete(ADD_ROUTE, call.Name()); },
                 {kNoName, kMissing, Failing("ioctl SIOCADDRT")}),
        Version2("NetGetAllRoute", OnRecords,
                 [](Call& call) {
                     NetRouteTableInfo routes[4] = {};
                     routes[0].type = call.type;
                     return NetGetAllRoute(call.addressed ? routes : nullptr, &call.number);
                 },
                 {kNoAddress,
                  kRoomForNone,
                  {"a type that is none", [](Call& call) { call.type = 2; }},
                  Failing("calloc"),
                  Failing("open /proc/net/route")}),
        Version2(
            "NetWorkBondEx",
            [](Call& call) {
                call.name = "bond0";
                for (const char* attribute : {"mode", "miimon"}) {
                    Put("/sys/class/net/bond0/bonding/" + std::string(attribute), "");
                }
                Remove("/sys/class/net/bond0/bonding/slaves");
            },
            [](Call& call) {
                Members members(call.cards);
                return NetWorkBondEx(call.Name(), members.Const(), members.Count(), call.number);
            },
            {{"a mode that is none", [](Call& call) { call.number = 8; }},
             kNoName,
             {"a name without the word", [](Call& call) { call.name = "lan0"; }},
             kMissing,
             kMissingCard}),
        Version2("NetGetSwitchLinkStatus", OnSwitch,
                 [](Call& call) {
                     unsigned char links[4];
                     return NetGetSwitchLinkStatus(call.Name(), call.addressed ? links : nullptr,
                                                   &call.number);
                 },
                 {kNoName, kNoAddress, kNoSwitch, Failing("ioctl 0x89F1")}),
        Version2("SwitchGetPortStatus", OnSwitch,
                 [](Call& call) {
                     SwitchPortInfo ports[4];
                     return SwitchGetPortStatus(call.addressed ? ports : nullptr, 4);
                 },
                 {kNoAddress, kNoList, kNoSwitch}),
        Version2("NetSetBandWidth", nullptr,
                 [](Call& call) {
                     NetTc_2 limit{};
                     strcpy(limit.ipAddr, "10.0.0.7");
                     return NetSetBandWidth(call.Name(), call.addressed ? &limit : nullptr,
                                            call.number);
                 },
                 {kNoName,
                  kNoAddress,
                  {"less than none", [](Call& call) { call.number = -1; }},
                  kMissing,
                  Failing("vfork")}),
        Version2("NetSetDhcpIPRange", nullptr,
                 [](Call& call) {
                     return NetSetDhcpIPRange(call.Name(), call.Address(), "10.0.0.20", "600");
                 },
                 {kNoName,
                  kNoAddress,
                  {"no address is saved", [](Call&) { Put(CardFile("eth0"), "MTU = 1500\n"); }},
                  {"no gateway is saved",
                   [](Call&) {
                       if (Get(CardFile("eth0")).find("HOSTIP") == std::string::npos) return;
                       Put(CardFile("eth0"), "HOSTIP = 10.0.0.2\nSUBMASK = 255.0.0.0\n");
                   }},
                  Failing("fopen /mnt/mtd/Config/udhcpd.conf")})),
    Name);

// ---- version 3

/// The object of a card, made when it is asked for: NULL for a call without name.
NetInterface* Object(const Call& call)
{
    if (!call.named) return nullptr;
    static NetInterface object;
    static char priv[32];
    strcpy(priv, call.name.c_str());
    object = {};
    object.priv = priv;
    return &object;
}

QV_PAL_NetControl* Control(const Call& call)
{
    static QV_PAL_NetControl* control = nullptr;
    if (control == nullptr) (void)createNetControl(nullptr, &control);
    return call.named ? control : nullptr;
}

NetBridge* BridgeOf(const Call& call)
{
    static NetBridge object;
    static char priv[40];
    strcpy(priv, "br0");
    object.priv = priv;
    return call.named ? &object : nullptr;
}

void OnBridge(Call& call)
{
    call.address = "eth1";
    SetBridgePorts("br0", {"eth1", "eth2"});
    Put("/mnt/mtd/Config/rsbridgeinit.conf", "SSIF_EDGE[0] = eth1\nstp_state = 1\n");
}

const Refusal kNoBridge = {"no such bridge", [](Call&) { Remove("/sys/class/net/br0"); }};

INSTANTIATE_TEST_SUITE_P(
    Objects3, RefusalOrderTest,
    testing::Values(
        Version2("API3_NetSetHostIP", nullptr,
                 [](Call& call) {
                     return API3_NetSetHostIP(Object(call), call.Address(), call.mask.c_str());
                 },
                 {kNoName, kNoAddress, kMissing, kBadAddress}),
        Version2("API3_NetGetHostIP", nullptr,
                 [](Call& call) {
                     char ip[16];
                     char mask[16];
                     return API3_NetGetHostIP(Object(call), call.addressed ? ip : nullptr, 16, mask,
                                              Length(call, 16));
                 },
                 {kShort, kNoName, kNoAddress, kMissing}),
        Version2("API3_GetMAC", nullptr,
                 [](Call& call) {
                     char mac[18];
                     return API3_GetMAC(Object(call), call.addressed ? mac : nullptr,
                                        Length(call, 18));
                 },
                 {kShort, kNoName, kNoAddress, kMissing, Failing("ioctl SIOCGIFHWADDR")}),
        Version2("API3_AddIPv4Route", nullptr,
                 [](Call& call) {
                     return API3_AddIPv4Route(Object(call), call.Address(), "255.255.255.255");
                 },
                 {kNoName, kNoAddress, kBadAddress, Failing("ioctl SIOCADDRT")}),
        Version2(
            "API3_Ping", [](Call& call) { call.number = 0; },
            [](Call& call) {
                return API3_Ping(Object(call), call.Address(), 1, call.number) == -1 &&
                               call.number == 0 && call.named && call.addressed
                           ? 0
                           : -1;
            },
            {kNoName, kNoAddress, {"a type that is none", [](Call& call) { call.number = 1; }}}),
        Version2(
            "API3_setTelnet", [](Call&) { Put("/tmp/telnet", ""); },
            [](Call& call) {
                TelnetInfo info{};
                return API3_setTelnet(Object(call), call.addressed ? &info : nullptr);
            },
            {kNoName, kNoAddress, Failing("open /tmp/telnet"), Failing("fstat"),
             Failing("write /tmp/telnet")}),
        Version2(
            "API3_setSTP", [](Call&) { Put("/proc/stp_ctrl", ""); },
            [](Call& call) {
                STPInfo info{};
                return API3_setSTP(Object(call), call.addressed ? &info : nullptr);
            },
            {kNoName, kNoAddress, Failing("open /proc/stp_ctrl"), Failing("write /proc/stp_ctrl")}),
        Version2("createNetInterface", nullptr,
                 [](Call& call) {
                     NetInterfaceDesc desc{};
                     desc.name = call.Name();
                     NetInterface* made = nullptr;
                     return createNetInterface(call.addressed ? &desc : nullptr, &made);
                 },
                 {kNoAddress, kNoName, kMissing, Failing("calloc")}),
        Version2(
            "NetCtrl_GetPoEPowerInfo",
            [](Call& call) {
                Put("/dev/qv_poe", "");
                (void)Control(call);
            },
            [](Call& call) {
                QV_PAL_PoeInfo info;
                return NetCtrl_GetPoEPowerInfo(Control(call), call.addressed ? &info : nullptr);
            },
            {kNoName, Failing("open /dev/qv_poe"), Failing("ioctl 0x81005001"), kNoAddress}),
        Version2(
            "NetCtrl_GetAllRouteInfo",
            [](Call& call) {
                OnRecords(call);
                (void)Control(call);
            },
            [](Call& call) {
                QV_PAL_RouteTableInfo routes[4] = {};
                routes[0].type = call.type;
                return NetCtrl_GetAllRouteInfo(Control(call), call.addressed ? routes : nullptr,
                                               &call.number);
            },
            {kNoName,
             kNoAddress,
             kRoomForNone,
             Failing("calloc"),
             {"a type that is none", [](Call& call) { call.type = 2; }},
             Failing("open /proc/net/route")}),
        Version2(
            "NetCtrl_arpGetStaticInfoByIp",
            [](Call& call) {
                OnRecords(call);
                (void)Control(call);
            },
            [](Call& call) {
                QV_PAL_ARPEntry entries[4];
                return NetCtrl_arpGetStaticInfoByIp(Control(call), call.Address(), entries,
                                                    &call.number);
            },
            {kNoName, kNoAddress, kRoomForNone, Failing("calloc"), Failing("open /proc/net/arp")}),
        Version2("BrIsEdgePort", OnBridge,
                 [](Call& call) { return BrIsEdgePort(BridgeOf(call), call.Address()); },
                 {kNoName,
                  kNoBridge,
                  {"a card that is none", [](Call& call) { call.address = "eth0"; }}}),
        Version2("BrEdgePortCtrl", OnBridge,
                 [](Call& call) {
                     return BrEdgePortCtrl(BridgeOf(call), call.Address(), call.number - 1);
                 },
                 {kNoName,
                  {"an option that is none", [](Call& call) { call.number = 3; }},
                  kNoBridge,
                  Failing("opendir"),
                  {"a card that is none", [](Call& call) { call.address = "eth0"; }},
                  Failing("vfork")}),
        Version2("BrGetInfo", OnBridge,
                 [](Call& call) {
                     STPInfo info;
                     return BrGetInfo(BridgeOf(call), call.addressed ? &info : nullptr);
                 },
                 {kNoName,
                  kNoBridge,
                  {"no state is saved",
                   [](Call&) { Remove("/mnt/mtd/Config/rsbridgeinit.conf"); }}}),
        Version2("BrGetBridgeDevices", OnBridge,
                 [](Call& call) {
                     QV_PAL_NetBrDevice ports[2];
                     return BrGetBridgeDevices(BridgeOf(call), call.addressed ? ports : nullptr,
                                               &call.number);
                 },
                 {kNoName, kRoomForNone, kNoBridge, kNoAddress})),
    Name);

}  // namespace
