// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "PortControl.h"

#include "Base.h"

namespace vorlix {

namespace {

// The family's tool gets the TCP rule. The UDP rule goes to the IPv4 tool in both families: the
// header tells callers what that means for IPv6.
constexpr char kDelete[] = "%s -D PORTCHAIN -p tcp -d %s --dport %d -j REJECT;"
                           "iptables -D PORTCHAIN -p udp -d %s --dport %d -j REJECT";
constexpr char kAppend[] = "%s -A PORTCHAIN -p tcp -d %s --dport %d -j REJECT;"
                           "iptables -A PORTCHAIN -p udp -d %s --dport %d -j REJECT";
constexpr char kFlush[] = "iptables -F PORTCHAIN;ip6tables -F PORTCHAIN";

constexpr char kIPv4Tool[] = "iptables";
constexpr char kIPv6Tool[] = "ip6tables";

bool FreePort(const char* tool, const char* ipAddr, int port)
{
    return ipAddr != nullptr && RunCommand(kDelete, tool, ipAddr, port, ipAddr, port);
}

/// Blocking twice leaves one pair of rules.
bool BlockPort(const char* tool, const char* ipAddr, int port)
{
    if (ipAddr == nullptr) return false;

    (void)FreePort(tool, ipAddr, port);
    return RunCommand(kAppend, tool, ipAddr, port, ipAddr, port);
}

}  // namespace

}  // namespace vorlix

using namespace vorlix;

bool PortCtrl_EnableIPv4Port(const char* ipAddr, int port)
{
    return FreePort(kIPv4Tool, ipAddr, port);
}

bool PortCtrl_DisableIPv4Port(const char* ipAddr, int port)
{
    return BlockPort(kIPv4Tool, ipAddr, port);
}

bool PortCtrl_EnableIPv6Port(const char* ipAddr, int port)
{
    return FreePort(kIPv6Tool, ipAddr, port);
}

bool PortCtrl_DisableIPv6Port(const char* ipAddr, int port)
{
    return BlockPort(kIPv6Tool, ipAddr, port);
}

bool PortCtrl_EnableAllIPPort()
{
    return VorlixRunCmd(kFlush);
}
