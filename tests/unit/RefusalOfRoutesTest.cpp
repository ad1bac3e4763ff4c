// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Two refusals at once, in every pair: IPv6 addresses, route tables, routing sockets and the files
// of limits.

#include "RefusalWorld.h"

#include "CommonApi.h"
#include "Netlink.h"
#include "Network6.h"
#include "Route.h"
#include "TrafficControl.h"

#include "fake/Rtnetlink.h"

#include <linux/sockios.h>

using namespace fake;

namespace {

void OnMac(Call& call)
{
    call.address = "02:00:00:00:00:09";
}

// ---- IPv6 addresses

constexpr char kAddresses6[] = "open /proc/net/if_inet6";

void OnAddress6(Call&)
{
    kernel.At("eth0").addresses6 = {{"2001:db8::2", 64, 0}, {"fe80::2", 64, 32}};
    Put("/mnt/mtd/Config/networkip6", "GATEWAYIP6 = fe80::1\n");
}

INSTANTIATE_TEST_SUITE_P(
    Addresses6, RefusalOrderTest,
    testing::Values(
        Operation{"Net6_GetAddressInfo",
                  OnAddress6,
                  [](Call& call) {
                      char address[48];
                      char prefix[8];
                      return Net6_GetAddressInfo(call.Name(), call.addressed ? address : nullptr,
                                                 48, prefix, 8, call.number - 1);
                  },
                  {kNoName,
                   kNoAddress,
                   {"a scope that is none", [](Call& call) { call.number = 65; }},
                   Failing(kAddresses6),
                   {"no address", [](Call&) { kernel.At("eth0").addresses6.clear(); }}}},
        Operation{"Net6_GetLinkLocalAddressIpv6",
                  OnAddress6,
                  [](Call& call) {
                      char address[64];
                      return Net6_GetLinkLocalAddressIpv6(call.Name(),
                                                          call.addressed ? address : nullptr, 64);
                  },
                  {kNoName, kNoAddress, Failing(kAddresses6)}},
        Operation{
            "Net6_GetLinkLocalFromMac",
            OnMac,
            [](Call& call) {
                char address[64];
                return Net6_GetLinkLocalFromMac(call.addressed ? address : nullptr, 64,
                                                call.address.c_str());
            },
            {kNoAddress, {"a bad hardware address", [](Call& call) { call.address = "02:00"; }}}},
        Operation{"NetGetIPv6byName",
                  OnAddress6,
                  [](Call& call) {
                      char address[48];
                      char prefix[8];
                      return NetGetIPv6byName(call.Name(), call.addressed ? address : nullptr, 48,
                                              prefix, 8);
                  },
                  {kNoAddress, kNoName, kMissing, Failing(kAddresses6)}},
        Operation{"NetGetSysIPv6byName",
                  OnAddress6,
                  [](Call& call) {
                      char address[48];
                      char prefix[8];
                      return NetGetSysIPv6byName(call.Name(), call.addressed ? address : nullptr,
                                                 48, prefix, 8);
                  },
                  {kNoAddress, kNoName, kMissing, Failing(kAddresses6)}},
        Operation{"NetGetLinkLocalAddressIpv6",
                  [](Call&) { kernel.At("eth0").mac = "02:00:00:00:00:09"; },
                  [](Call& call) {
                      char address[64];
                      return NetGetLinkLocalAddressIpv6(call.Name(),
                                                        call.addressed ? address : nullptr, 64);
                  },
                  {kNoAddress, kNoName, kMissing, Failing("ioctl SIOCGIFHWADDR")}},
        Operation{"NetSetGatewayIPv6byName",
                  [](Call& call) { call.address = "fe80::1"; },
                  [](Call& call) { return NetSetGatewayIPv6byName(call.Name(), call.Address()); },
                  {kNoName,
                   kNoAddress,
                   kMissing,
                   {"a file that cannot be written",
                    [](Call&) { FailAll("fopen /mnt/mtd/Config/networkip6 w+", EROFS); }}}},
        Operation{"NetGetGatewayIPv6byName",
                  OnAddress6,
                  [](Call& call) {
                      char gateway[48];
                      return NetGetGatewayIPv6byName(call.Name(),
                                                     call.addressed ? gateway : nullptr, 48);
                  },
                  {kNoAddress,
                   kNoName,
                   kMissing,
                   {"nothing is saved", [](Call&) { Remove("/mnt/mtd/Config/networkip6"); }}}}),
    Name);

// ---- route tables

const Refusal kBadDestination = {"a bad destination",
                                 [](Call& call) { call.address = "10.0.0.256"; }};
const Refusal kBadGateway = {"a bad gateway", [](Call& call) { call.gateway = "10.0.0.x"; }};
const Refusal kBadMask = {"a bad mask", [](Call& call) { call.mask = "255.0.0.x"; }};

void OnRoute6(Call& call)
{
    call.address = "2001:db8:1::";
    call.gateway = "fe80::1";
    call.mask = "48";
}

const Refusal kLongPrefix = {"a long prefix", [](Call& call) { call.mask = "129"; }};
const Refusal kBadDestination6 = {"a bad destination",
                                  [](Call& call) { call.address = "2001:db8:::"; }};
const Refusal kBadGateway6 = {"a bad gateway", [](Call& call) { call.gateway = "fe80:::1"; }};

/// A change of one route, with its refusals in their order.
Operation Change(const char* name,
                 bool (*change)(const char*, const char*, const char*, const char*), bool isThere,
                 const char* request)
{
    return {name,
            [isThere](Call& call) {
                if (isThere) kernel.routes = {{call.address, call.gateway, call.mask, call.name}};
            },
            [change](Call& call) {
                return change(call.Address(), call.gateway.c_str(), call.mask.c_str(), call.Name());
            },
            {kNoAddress, kNoName, kBadDestination, kBadGateway, kBadMask, Failing("socket AF_INET"),
             Failing(request)}};
}

Operation Change6(const char* name,
                  bool (*change)(const char*, const char*, const char*, const char*), bool isThere,
                  const char* request)
{
    return {name,
            [isThere](Call& call) {
                OnRoute6(call);
                if (isThere) kernel.routes6 = {{call.address, 48, call.gateway, call.name}};
            },
            [change](Call& call) {
                return change(call.Address(), call.gateway.c_str(), call.mask.c_str(), call.Name());
            },
            {kNoAddress, kNoName, kLongPrefix, kBadDestination6, kBadGateway6, Failing(request)}};
}

const Refusal kNoTable = Failing("open /proc/net/route");
const Refusal kNoTable6 = Failing("open /proc/net/ipv6_route");
const Refusal kKept = Failing("ioctl SIOCDELRT");

void OnRoutes(Call&)
{
    kernel.routes = {{"0.0.0.0", "10.0.0.1", "0.0.0.0", "eth0"},
                     {"10.9.0.0", "0.0.0.0", "255.255.0.0", "eth0"}};
    kernel.routes6 = {{"::", 0, "fe80::1", "eth0"}, {"2001:db8:1::", 48, "::", "eth0"}};
}

/// What deletes the listed routes of a card.
Operation Deletion(const char* name, bool (*remove)(const char*), const Refusal& noTable)
{
    return {name,
            OnRoutes,
            [remove](Call& call) { return remove(call.Name()); },
            {kNoName, noTable, kKept}};
}

INSTANTIATE_TEST_SUITE_P(
    RouteTables, RefusalOrderTest,
    testing::Values(
        Change("Route_AddIPv4Route", Route_AddIPv4Route, false, "ioctl SIOCADDRT"),
        Change("Route_DelIPv4Route", Route_DelIPv4Route, true, "ioctl SIOCDELRT"),
        Change6("Route_AddIPv6Route", Route_AddIPv6Route, false, "ioctl SIOCADDRT"),
        Change6("Route_DelIPv6Route", Route_DelIPv6Route, true, "ioctl SIOCDELRT"),
        Change6("RouteDelIPv6", RouteDelIPv6, true, "ioctl SIOCDELRT"),
        Deletion("RouteDelAllIPv4", RouteDelAllIPv4, kNoTable),
        Deletion("RouteDelAllIPv6", RouteDelAllIPv6, kNoTable6),
        Operation{"Route_IsExistInSys",
                  [](Call& call) {
                      kernel.routes = {{"10.0.0.0", "10.0.0.1", "255.0.0.0", "eth0"}};
                      call.address = "10.0.0.9";
                  },
                  [](Call& call) {
                      return Route_IsExistInSys(call.Address(), call.gateway.c_str(),
                                                call.mask.c_str(), call.Name());
                  },
                  {kNoName, kBadGateway, kNoTable}},
        Operation{"Route_SetIPv4Route",
                  nullptr,
                  [](Call& call) {
                      rtentry record{};
                      (void)Route_FillRtentry("10.9.0.0", "0.0.0.0", "255.255.0.0", "eth0",
                                              &record);
                      return Route_SetIPv4Route(call.number == 1 ? SIOCADDRT : SIOCGIFADDR,
                                                call.addressed ? &record : nullptr);
                  },
                  {{"a request that is none", [](Call& call) { call.number = 0; }},
                   kNoAddress,
                   Failing("socket AF_INET"),
                   Failing("ioctl SIOCADDRT")}},
        Operation{"RouteDelDefIPv4",
                  OnRoutes,
                  [](Call& call) { return RouteDelDefIPv4(call.Name()); },
                  {{"no table and no name",
                    [](Call& call) {
                        call.named = false;
                        FailAll("open /proc/net/route", EIO);
                    }},
                   {"no table and no gateway",
                    [](Call&) {
                        Remove(CardFile("eth0"));
                        FailAll("open /proc/net/route", EIO);
                    }},
                   kKept}},
        Operation{"RouteAddDefIPv6",
                  [](Call& call) {
                      OnRoutes(call);
                      Put("/mnt/mtd/Config/networkip6", "GATEWAYIP6 = fe80::1\n");
                  },
                  [](Call& call) { return RouteAddDefIPv6(call.Name()); },
                  {kNoName,
                   {"no gateway is saved", [](Call&) { Remove("/mnt/mtd/Config/networkip6"); }},
                   Failing("ioctl SIOCADDRT")}},
        Operation{"RouteDelByRecord",
                  [](Call& call) {
                      call.number = 64;
                      call.type = 1;
                      kernel.routes6 = {{"120::", 64, "::", call.name}};
                  },
                  [](Call& call) {
                      NetRouteTableInfo record{};
                      record.type = call.type;
                      record.mask = static_cast<uint32_t>(call.number);
                      record.dst.addrIPv6[0] = 0x2001;
                      snprintf(record.viaDev, sizeof(record.viaDev), "%s", call.name.c_str());
                      return RouteDel(&record);
                  },
                  {kMissing,
                   {"a type that is none", [](Call& call) { call.type = 2; }},
                   {"a long prefix", [](Call& call) { call.number = 129; }},
                   Failing("ioctl SIOCDELRT")}},
        Operation{"RouteGetAllInfo",
                  OnRoutes,
                  [](Call& call) {
                      NetRouteTableInfo routes[4] = {};
                      routes[0].type = call.type;
                      int count = call.number == 1 ? 4 : 0;
                      return RouteGetAllInfo(call.addressed ? routes : nullptr, &count);
                  },
                  {kNoAddress,
                   {"room for none", [](Call& call) { call.number = 0; }},
                   {"a type that is none", [](Call& call) { call.type = 2; }},
                   Failing("calloc"),
                   kNoTable}},
        Operation{
            "NetGetDefEth",
            [](Call&) { Put(CardFile("eth0"), "DEFAULT_ETH = eth0\nGATEWAYIP = 10.0.0.1\n"); },
            [](Call& call) {
                char card[16];
                return NetGetDefEth(call.addressed ? card : nullptr, 16);
            },
            {kNoAddress, {"no default card is saved", [](Call&) { Put(CardFile("eth0"), ""); }}}}),
    Name);

// ---- routing sockets

const Refusal kRefusedByTheKernel = {"the kernel refuses",
                                     [](Call&) { rtnetlink.refusal = EEXIST; }};

int AddRoute(Call& call)
{
    return Netlink_IPv4Route(RTM_NEWROUTE, 100, 16, call.Address(), call.gateway.c_str(),
                             call.mask.c_str(), call.name.c_str(), 1);
}

void OnRequest(Call& call)
{
    call.address = "10.9.0.0";
    call.mask = "10.0.0.3";
}

const Refusal kBadRequestSource{"a bad source", [](Call& call) { call.gateway = "10.0.0.a"; }};
const Refusal kBadRequestGateway{"a bad gateway", [](Call& call) { call.mask = "10.0.0.b"; }};
const Refusal kBadRequestDestination{"a bad destination",
                                     [](Call& call) { call.address = "10.9.0"; }};

INSTANTIATE_TEST_SUITE_P(
    RoutingSockets, RefusalOrderTest,
    testing::Values(
        Operation{"Netlink_IPv4Route",
                  OnRequest,
                  [](Call& call) { return AddRoute(call) == 0; },
                  {kBadRequestSource, kBadRequestGateway, kBadRequestDestination,
                   Failing("socket AF_NETLINK"), Failing("bind"), Failing("getsockname")}},
        Operation{"Netlink_IPv4RouteThatIsSent",
                  OnRequest,
                  [](Call& call) { return AddRoute(call) == 0; },
                  {kBadRequestSource, kBadRequestGateway, kBadRequestDestination, Failing("malloc"),
                   Failing("sendmsg"), kRefusedByTheKernel}},
        Operation{
            "Netlink_IPv4RuleWithoutASocket",
            nullptr,
            [](Call& call) { return Netlink_IPv4Rule(RTM_NEWRULE, call.Address(), 100, 1) == 0; },
            {kBadRequestDestination, Failing("socket AF_NETLINK"), Failing("bind"),
             Failing("getsockname"), kRefusedByTheKernel}},
        Operation{"NetVirtInterAdd",
                  nullptr,
                  [](Call& call) {
                      NetVirtInterInfo info{};
                      info.interName.eType = call.number == 1 ? virtTypeIpVlan : virtTypeVeth;
                      snprintf(info.interName.hostName, sizeof(info.interName.hostName), "%s",
                               call.name.c_str());
                      return NetVirtInterAdd(call.addressed ? &info : nullptr);
                  },
                  {kNoAddress,
                   {"a kind that is none", [](Call& call) { call.number = 0; }},
                   kRefusedByTheKernel}},
        Operation{"NetVirtInterDel",
                  nullptr,
                  [](Call& call) {
                      NetVirtInterName names{};
                      names.eType = call.number == 1 ? virtTypeMacVlan : virtTypeVeth;
                      snprintf(names.hostName, sizeof(names.hostName), "%s", call.name.c_str());
                      return NetVirtInterDel(call.addressed ? &names : nullptr);
                  },
                  {kNoAddress,
                   {"a kind that is none", [](Call& call) { call.number = 0; }},
                   kRefusedByTheKernel}}),
    Name);

// ---- shaping

NetTc Limit()
{
    NetTc limit{};
    snprintf(limit.ipAddr, sizeof(limit.ipAddr), "10.0.0.7");
    return limit;
}

constexpr char kLimits[] = "/mnt/mtd/Config/nettc_eth0";

INSTANTIATE_TEST_SUITE_P(
    ShapingFiles, RefusalOrderTest,
    testing::Values(Operation{"TC_GetFromConfig",
                              [](Call&) { (void)TC_SaveToConfig("eth0", Limit()); },
                              [](Call& call) {
                                  NetTc limits[2];
                                  return TC_GetFromConfig(
                                      call.Name(), call.addressed ? limits : nullptr, &call.number);
                              },
                              {kNoName, kNoAddress, Failing("fopen " + std::string(kLimits))}},
                    Operation{"TC_DelConfig",
                              nullptr,
                              [](Call& call) { return TC_DelConfig(call.Name()); },
                              {kNoName, Failing("fopen " + std::string(kLimits))}},
                    Operation{"TC_DeinitDev",
                              [](Call&) { (void)TC_InitDev("eth0"); },
                              [](Call& call) { return TC_DeinitDev(call.Name()); },
                              {kNoName, Failing("vfork")}},
                    Operation{
                        "TrafCtrlUnSetBand",
                        nullptr,
                        [](Call& call) { return TrafCtrlUnSetBand(call.Name(), call.Address()); },
                        {kNoName, kNoAddress, kMissing}}),
    Name);

}  // namespace
