#include "PortControl.h"

#include "Base.h"

namespace vorlix {

namespace {

// In the texts for IPv6 the UDP rule goes to the IPv4 tool: devices in the field run exactly this.
constexpr char kIPv4Delete[] = "iptables -D PORTCHAIN -p tcp -d %s --dport %d -j REJECT;"
                               "iptables -D PORTCHAIN -p udp -d %s --dport %d -j REJECT";
constexpr char kIPv4Append[] = "iptables -A PORTCHAIN -p tcp -d %s --dport %d -j REJECT;"
                               "iptables -A PORTCHAIN -p udp -d %s --dport %d -j REJECT";
constexpr char kIPv6Delete[] = "ip6tables -D PORTCHAIN -p tcp -d %s --dport %d -j REJECT;"
                               "iptables -D PORTCHAIN -p udp -d %s --dport %d -j REJECT";
constexpr char kIPv6Append[] = "ip6tables -A PORTCHAIN -p tcp -d %s --dport %d -j REJECT;"
                               "iptables -A PORTCHAIN -p udp -d %s --dport %d -j REJECT";
constexpr char kFlush[] = "iptables -F PORTCHAIN;ip6tables -F PORTCHAIN";

}  // namespace

}  // namespace vorlix

using namespace vorlix;

bool PortCtrl_EnableIPv4Port(const char* ipAddr, int port)
{
    if (ipAddr == nullptr) return false;

    return RunCommand(kIPv4Delete, ipAddr, port, ipAddr, port);
}

bool PortCtrl_DisableIPv4Port(const char* ipAddr, int port)
{
    if (ipAddr == nullptr) return false;

    (void)RunCommand(kIPv4Delete, ipAddr, port, ipAddr, port);  // blocking twice leaves one pair
    return RunCommand(kIPv4Append, ipAddr, port, ipAddr, port);
}

bool PortCtrl_EnableIPv6Port(const char* ipAddr, int port)
{
    if (ipAddr == nullptr) return false;

    return RunCommand(kIPv6Delete, ipAddr, port, ipAddr, port);
}

bool PortCtrl_DisableIPv6Port(const char* ipAddr, int port)
{
    if (ipAddr == nullptr) return false;

    (void)RunCommand(kIPv6Delete, ipAddr, port, ipAddr, port);  // blocking twice leaves one rule
    return RunCommand(kIPv6Append, ipAddr, port, ipAddr, port);
}

bool PortCtrl_EnableAllIPPort()
{
    return VorlixRunCmd(kFlush);
}
