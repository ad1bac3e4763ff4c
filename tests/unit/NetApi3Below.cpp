// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "NetApi3Below.h"

#include <cstdio>

namespace below {

fake::Texts asked;
std::set<std::string> refusing;
std::map<const void*, std::string> places;
std::map<std::string, std::function<void()>> doing;
Told told;

void Reset()
{
    asked.clear();
    refusing.clear();
    places.clear();
    doing.clear();
    told = Told();
}

namespace {

std::string Text(const void* place)
{
    if (place == nullptr) return "NULL";
    const auto known = places.find(place);
    return known != places.end() ? known->second : "(a place of its own)";
}

std::string Text(const char* text)
{
    return text != nullptr ? text : "NULL";
}

std::string Text(char* place)
{
    return Text(static_cast<const void*>(place));
}

std::string Text(int number)
{
    return std::to_string(number);
}

std::string Text(bool flag)
{
    return flag ? "true" : "false";
}

template <class... Given>
bool Ask(const std::string& operation, Given... given)
{
    std::string call = operation;
    ((call += " " + Text(given)), ...);
    asked.push_back(call);
    if (refusing.count("all") > 0 || refusing.count(operation) > 0) return false;

    const auto act = doing.find(operation);
    if (act != doing.end()) act->second();
    return true;
}

void Tell(char* place, size_t size, const std::string& text)
{
    snprintf(place, size, "%s", text.c_str());
}

}  // namespace

}  // namespace below

using namespace below;

#define BELOW_1(operation, A)                                                                      \
    bool __wrap_##operation(A a)                                                                   \
    {                                                                                              \
        return Ask(#operation, a);                                                                 \
    }
#define BELOW_2(operation, A, B)                                                                   \
    bool __wrap_##operation(A a, B b)                                                              \
    {                                                                                              \
        return Ask(#operation, a, b);                                                              \
    }
#define BELOW_3(operation, A, B, C)                                                                \
    bool __wrap_##operation(A a, B b, C c)                                                         \
    {                                                                                              \
        return Ask(#operation, a, b, c);                                                           \
    }
#define BELOW_4(operation, A, B, C, D)                                                             \
    bool __wrap_##operation(A a, B b, C c, D d)                                                    \
    {                                                                                              \
        return Ask(#operation, a, b, c, d);                                                        \
    }
#define BELOW_5(operation, A, B, C, D, E)                                                          \
    bool __wrap_##operation(A a, B b, C c, D d, E e)                                               \
    {                                                                                              \
        return Ask(#operation, a, b, c, d, e);                                                     \
    }

extern "C" {

BELOW_1(NetInterfaceUp, const char*)
BELOW_1(NetInterfaceDown, const char*)
BELOW_1(UnBond, const char*)
BELOW_1(RouteAddDefIPv4, const char*)
BELOW_1(RouteDelDefIPv4, const char*)
BELOW_1(RouteDelAllIPv4, const char*)
BELOW_1(RouteAddDefIPv6, const char*)
BELOW_1(RouteDelDefIPv6, const char*)
BELOW_1(RouteDelAllIPv6, const char*)
BELOW_2(NetSetGatewaybyName, const char*, const char*)
BELOW_2(NetGetDataStat, const char*, NetDataStat*)
BELOW_2(NetGetMacbyName, const char*, char*)
BELOW_2(NetSetMacbyName, const char*, const char*)
BELOW_2(GetIPv4DnsServer, char*, char*)
BELOW_2(SetIPv4DnsServer, const char*, const char*)
BELOW_2(NetMiiDiag, const char*, bool)
BELOW_2(NetGetMtubyName, const char*, int*)
BELOW_2(NetSetMtubyName, const char*, int)
BELOW_2(NetSetGatewayIPv6byName, const char*, const char*)
BELOW_2(SetIPv6DnsServer, const char*, const char*)
BELOW_2(GetSwitchMask, const char*, int*)
BELOW_2(NetGetLinkSpeed, const char*, int*)
BELOW_2(GetSwitchPortNum, const char*, int*)
BELOW_2(NetGetEthWorkMode, const char*, NetWorkMode*)
BELOW_2(TrafCtrlUnSetBand, const char*, const char*)
BELOW_2(PortCtrlEnablePort, const char*, int)
BELOW_2(PortCtrlDisablePort, const char*, int)
BELOW_2(GetMacByIPFromARP, const char*, char*)
BELOW_2(NetSetMediumPrefer, const char*, NetMediumPrefer)
BELOW_2(NetDelIPAddressIpv6, const char*, const char*)
BELOW_2(SetBondHashPolicy, const char*, unsigned char)
BELOW_2(GetBondHashPolicy, const char*, unsigned char*)
BELOW_3(NetSetIPByName, const char*, const char*, const char*)
BELOW_3(NetSetIPv6byName, const char*, const char*, const char*)
BELOW_3(NetGetGatewayIPv6byName, const char*, char*, int)
BELOW_3(GetIPv6DnsServer, char*, char*, int)
BELOW_3(NetGetLinkLocalAddressIpv6, const char*, char*, int)
BELOW_3(NetPingCheck, const char*, const char*, int)
BELOW_3(GetSwitchStatus, const char*, SwitchPortStatus*, int*)
BELOW_3(TrafCtrlSetBand, const char*, const NetTc*, int)
BELOW_3(TrafCtrlGetBand, const char*, NetTc*, int*)
BELOW_4(Bond, const char*, const char**, int, NICBondMode)
BELOW_4(RouteAddIPv4, const char*, const char*, const char*, const char*)
BELOW_4(RouteDelIPv4, const char*, const char*, const char*, const char*)
BELOW_4(RouteAddIPv6, const char*, const char*, const char*, const char*)
BELOW_4(RouteDelIPv6, const char*, const char*, const char*, const char*)
BELOW_5(NetGetIPv6byName, const char*, char*, int, char*, int)
BELOW_5(NetGetSysIPv6byName, const char*, char*, int, char*, int)
BELOW_2(NetGetAllInterface, NetInterfaceInfo*, int32_t*)
BELOW_2(NetGetDefEth, char*, int)
BELOW_1(NetSetDefEth, const char*)
BELOW_1(RouteControl, int)
BELOW_1(NetVirtInterAdd, NetVirtInterInfo*)
BELOW_1(NetVirtInterDel, NetVirtInterName*)

bool __wrap_NetCheckBeenReset()
{
    return Ask("NetCheckBeenReset");
}

int __wrap_NetArpCheck(const char* name)
{
    (void)Ask("NetArpCheck", name);
    return told.number;
}

int __wrap_SetSSHStatus(SSHInfo* info)
{
    (void)Ask("SetSSHStatus", info);
    return told.number;
}

bool __wrap_NetGetIPbyName(const char* name, char* address, char* mask)
{
    if (!Ask("NetGetIPbyName", name, address, mask)) return false;

    Tell(address, 16, told.address);
    Tell(mask, 16, told.mask);
    return true;
}

bool __wrap_NetGetGatewaybyName(const char* name, char* gateway)
{
    if (!Ask("NetGetGatewaybyName", name, gateway)) return false;

    Tell(gateway, 16, told.gateway);
    return true;
}

bool __wrap_GetBondMembers(const char* name, char** members, int* count)
{
    if (!Ask("GetBondMembers", name, members, *count)) return false;

    *count = 0;
    for (const std::string& member : told.members) Tell(members[(*count)++], 16, member);
    return true;
}

bool __wrap_GetBondMode(const char* name, NICBondMode* mode)
{
    if (!Ask("GetBondMode", name, mode)) return false;

    *mode = told.mode;
    return true;
}

bool __wrap_GetSwitchPortByMac(const char* name, const char* mac, int* port)
{
    if (!Ask("GetSwitchPortByMac", name, mac, port)) return false;

    *port = told.port;
    return true;
}

}  // extern "C"
