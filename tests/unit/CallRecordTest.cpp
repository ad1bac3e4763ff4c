// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// What operations hand to the system's calls, to the last flag: the whole timeline of each.

#include "Steps.h"

#include "Arp_Ping.h"
#include "Backup.h"
#include "Base.h"
#include "Bond.h"
#include "CommonApi.h"
#include "Config.h"
#include "Dns.h"
#include "NetApi3_0.h"
#include "Netlink.h"
#include "Network.h"
#include "Network6.h"
#include "Other.h"
#include "Route.h"
#include "Switch.h"
#include "TrafficControl.h"

#include <algorithm>
#include <csignal>
#include <net/if.h>
#include <regex>

using namespace fake;

namespace {

struct Recorded {
    std::string name;
    std::function<void()> run;
    Texts timeline;
};

void PrintTo(const Recorded& recorded, std::ostream* out)
{
    *out << recorded.name;
}

class CallRecordTest : public World, public testing::WithParamInterface<Recorded> {
protected:
    void SetUp() override
    {
        World::SetUp();
        Card& card = kernel.Add("eth0");
        card.address = "10.0.0.2";
        card.mask = "255.0.0.0";
        card.mac = "02:13:57:9b:df:24";
        kernel.Add("eth1").settings = ethtool_cmd{};
        ClearTrace();
        ClearLog();
    }
};

/// The timeline but for how much is asked for at a time, which is the reader's own concern, for the
/// marks of sockets that are closed again, and for their numbers. Of the locks those have their
/// names that more than one operation takes.
Texts Told()
{
    static const Texts kNamed = {"net_config_Lock", "upDownLock", "DnsLock"};
    static const std::regex kNumber("socket \\d+ do not");
    const Texts entries = Timeline();
    const bool closes = std::find(entries.begin(), entries.end(), "close AF_INET") != entries.end();
    Texts told;
    for (const std::string& whole : entries) {
        if (whole.rfind("pread ", 0) == 0) continue;
        if (closes && whole == "fcntl F_SETFD FD_CLOEXEC AF_INET") continue;
        const std::string entry = std::regex_replace(whole, kNumber, "socket # do not");
        const bool lock = entry.rfind("mutex ", 0) == 0;
        const size_t name = entry.rfind(' ') + 1;
        const bool named =
            std::find(kNamed.begin(), kNamed.end(), entry.substr(name)) != kNamed.end();
        told.push_back(lock && !named ? entry.substr(0, name - 1) : entry);
    }
    return told;
}

TEST_P(CallRecordTest, IsWhole)
{
    GetParam().run();
    EXPECT_EQ(Told(), GetParam().timeline);
}

constexpr char kFile[] = "/mnt/mtd/Config/network";

INSTANTIATE_TEST_SUITE_P(
    Base, CallRecordTest,
    testing::Values(
        Recorded{"Command",
                 [] { (void)VorlixRunCmd("true"); },
                 {"sigaction SIGINT ignore, SIG_IGN flags 0x0 mask",
                  "sigaction SIGQUIT ignore, SIG_IGN flags 0x0 mask",
                  "sigprocmask SIG_BLOCK SIGCHLD", "vfork",
                  "child sigaction SIGINT restore, SIG_DFL flags 0x0 mask",
                  "child sigaction SIGQUIT restore, SIG_DFL flags 0x0 mask",
                  "child sigprocmask SIG_SETMASK", "child execlp sh sh -c true",
                  "waitpid the child, options 0", "command true",
                  "sigaction SIGINT restore, SIG_DFL flags 0x0 mask",
                  "sigaction SIGQUIT restore, SIG_DFL flags 0x0 mask", "sigprocmask SIG_SETMASK"}},
        Recorded{"CommandOfACallerWithSignalsOfItsOwn",
                 [] {
                     {
                         const OwnCalls preparing;
                         struct sigaction action {};
                         action.sa_handler = [](int) {};
                         action.sa_flags = SA_RESTART;
                         sigaddset(&action.sa_mask, SIGUSR1);
                         sigaction(SIGINT, &action, nullptr);
                         sigset_t mask;
                         sigemptyset(&mask);
                         sigaddset(&mask, SIGUSR2);
                         sigprocmask(SIG_SETMASK, &mask, nullptr);
                     }
                     (void)VorlixRunCmd("true");
                 },
                 {"sigaction SIGINT ignore, SIG_IGN flags 0x0 mask",
                  "sigaction SIGQUIT ignore, SIG_IGN flags 0x0 mask",
                  "sigprocmask SIG_BLOCK SIGCHLD", "vfork",
                  "child sigaction SIGINT restore, handler flags 0x10000000 mask SIGUSR1",
                  "child sigaction SIGQUIT restore, SIG_DFL flags 0x0 mask",
                  "child sigprocmask SIG_SETMASK SIGUSR2", "child execlp sh sh -c true",
                  "waitpid the child, options 0", "command true",
                  "sigaction SIGINT restore, handler flags 0x10000000 mask SIGUSR1",
                  "sigaction SIGQUIT restore, SIG_DFL flags 0x0 mask",
                  "sigprocmask SIG_SETMASK SIGUSR2"}},
        Recorded{"ControlSocket",
                 [] { (void)InterfaceUp("eth0"); },
                 {"socket AF_INET SOCK_DGRAM 0", "fcntl F_SETFD FD_CLOEXEC AF_INET",
                  "ioctl SIOCGIFFLAGS eth0 on AF_INET", "ioctl SIOCSIFFLAGS eth0 0x1 on AF_INET"}},
        Recorded{"ControlSocket6",
                 [] { (void)Net6_GetInterfaceIndex("eth0"); },
                 {"socket AF_INET6 SOCK_DGRAM 0", "fcntl F_SETFD FD_CLOEXEC AF_INET6",
                  "ioctl SIOCGIFINDEX eth0 on AF_INET6"}},
        Recorded{
            "AddressIsThere",
            [] { (void)InterfaceIpIsExist("eth0"); },
            {"socket AF_INET SOCK_DGRAM 0", "ioctl SIOCGIFADDR eth0 on AF_INET", "close AF_INET"}},
        Recorded{"Link",
                 [] { (void)InterfaceIsLink("eth0"); },
                 {"socket AF_INET SOCK_DGRAM 0", "ioctl ETHTOOL_GLINK eth0 on AF_INET",
                  "close AF_INET"}},
        Recorded{"Driver",
                 [] { (void)CheckNetCardByDrvName("eth0", "sim"); },
                 {"mutex lock upDownLock", "socket AF_INET SOCK_DGRAM 0",
                  "fcntl F_SETFD FD_CLOEXEC AF_INET", "ioctl ETHTOOL_GDRVINFO eth0 on AF_INET",
                  "mutex unlock upDownLock"}},
        Recorded{"Names",
                 [] {
                     char names[32][16];
                     int count = 32;
                     (void)GetVnicInterfaceInfo(names, &count);
                 },
                 {"open /proc/net/dev O_RDONLY", "close /proc/net/dev"}}),
    [](const auto& info) { return info.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Settings, CallRecordTest,
    testing::Values(
        Recorded{"Read",
                 [] {
                     Put(kFile, "MTU = 1500\n");
                     int mtu = 0;
                     (void)GetMtuByConfig("eth0", &mtu);
                 },
                 {"mutex lock net_config_Lock", "open /mnt/mtd/Config/network O_WRONLY|O_APPEND",
                  "fcntl F_SETLKW F_WRLCK /mnt/mtd/Config/network 0 0 0 own process",
                  "open /mnt/mtd/Config/network O_RDONLY",
                  "fcntl F_SETLKW F_UNLCK /mnt/mtd/Config/network 0 0 0 own process",
                  "close /mnt/mtd/Config/network", "close /mnt/mtd/Config/network",
                  "mutex unlock net_config_Lock"}},
        Recorded{"ReadOfNoFile",
                 [] {
                     int mtu = 0;
                     (void)GetMtuByConfig("eth0", &mtu);
                 },
                 {"mutex lock net_config_Lock", "open /mnt/mtd/Config/network O_WRONLY|O_APPEND",
                  "mutex unlock net_config_Lock"}},
        Recorded{"Write",
                 [] {
                     Put(kFile, "MTU = 1400\n");
                     (void)SetMtuByConfig("eth0", 1500);
                 },
                 {"mutex lock net_config_Lock", "open /mnt/mtd/Config/network O_WRONLY|O_APPEND",
                  "fcntl F_SETLKW F_WRLCK /mnt/mtd/Config/network 0 0 0 own process",
                  "fopen /mnt/mtd/Config/network r+", "fopen /mnt/mtd/Config/network w+",
                  "fflush /mnt/mtd/Config/network", "fileno /mnt/mtd/Config/network",
                  "fsync /mnt/mtd/Config/network", "fclose /mnt/mtd/Config/network",
                  "fclose /mnt/mtd/Config/network",
                  "fcntl F_SETLKW F_UNLCK /mnt/mtd/Config/network 0 0 0 own process",
                  "close /mnt/mtd/Config/network", "mutex unlock net_config_Lock"}},
        Recorded{"WriteOfNoFile",
                 [] { (void)SetMtuByConfig("eth0", 1500); },
                 {"mutex lock net_config_Lock", "open /mnt/mtd/Config/network O_WRONLY|O_APPEND",
                  "fopen /mnt/mtd/Config/network r+",
                  "Error|SetValueByKey|cannot fopen for read.[No such file or directory]",
                  "fopen /mnt/mtd/Config/network w+", "fflush /mnt/mtd/Config/network",
                  "fileno /mnt/mtd/Config/network", "fsync /mnt/mtd/Config/network",
                  "fclose /mnt/mtd/Config/network", "mutex unlock net_config_Lock"}},
        Recorded{"Create",
                 [] { (void)CreateConfigFile("eth0"); },
                 {"mutex lock net_config_Lock", "open /mnt/mtd/Config/network O_RDWR|O_CREAT 0644",
                  "close /mnt/mtd/Config/network", "mutex unlock net_config_Lock"}},
        Recorded{
            "Check", [] { (void)CheckConfigFile("eth0"); }, {"access /mnt/mtd/Config/network 0"}},
        Recorded{"Delete",
                 [] {
                     Put(kFile, "");
                     (void)DelConfigFile("eth0");
                 },
                 {"remove /mnt/mtd/Config/network"}},
        Recorded{"Servers",
                 [] { (void)SetIPv4DnsServer("10.0.0.7", "10.0.0.8"); },
                 {"mutex lock DnsLock", "open /mnt/mtd/Config/resolv.conf O_RDONLY",
                  "mutex unlock DnsLock",
                  "Error|Dns_GetDnsFileInfo|open /mnt/mtd/Config/resolv.conf failed",
                  "mutex lock DnsLock", "fopen /mnt/mtd/Config/resolv.conf w+",
                  "fopen /mnt/mtd/Config/resolvip6.conf w+",
                  "fclose /mnt/mtd/Config/resolvip6.conf", "fclose /mnt/mtd/Config/resolv.conf",
                  "mutex unlock DnsLock", "Error|Dns_SetDnsAddress|primary_6 addr.[]",
                  "Error|Dns_SetDnsAddress|srimary_6 addr.[]"}}),
    [](const auto& info) { return info.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Network, CallRecordTest,
    testing::Values(
        Recorded{"Address",
                 [] { (void)Net_SetIPbyName("eth0", "10.0.0.9", "255.255.0.0"); },
                 {"socket AF_INET SOCK_DGRAM 0", "fcntl F_SETFD FD_CLOEXEC AF_INET",
                  "ioctl SIOCSIFADDR eth0 10.0.0.9 family 2 on AF_INET",
                  "ioctl SIOCSIFNETMASK eth0 255.255.0.0 family 2 on AF_INET"}},
        Recorded{"HardwareAddress",
                 [] { (void)Net_SetMacbyName("eth0", "02:aa:bb:cc:dd:ee"); },
                 {"Warn |Net_SetMacbyName|mac addr will be modifyed![eth0]",
                  "socket AF_INET SOCK_DGRAM 0", "fcntl F_SETFD FD_CLOEXEC AF_INET",
                  "ioctl SIOCGIFFLAGS eth0 on AF_INET", "ioctl SIOCSIFFLAGS eth0 0x0 on AF_INET",
                  "ioctl SIOCSIFHWADDR eth0 02:aa:bb:cc:dd:ee family 1 on AF_INET",
                  "ioctl SIOCGIFFLAGS eth0 on AF_INET", "ioctl SIOCSIFFLAGS eth0 0x1 on AF_INET"}},
        Recorded{"Mtu",
                 [] { (void)Net_SetMtubyName("eth0", 1400); },
                 {"socket AF_INET SOCK_DGRAM 0", "fcntl F_SETFD FD_CLOEXEC AF_INET",
                  "ioctl SIOCSIFMTU eth0 1400 on AF_INET"}},
        Recorded{"MtuOfADriverThatRefusesARunningCard",
                 [] {
                     kernel.At("eth0").flags = IFF_UP | IFF_BROADCAST;
                     kernel.At("eth0").refusesMtuWhileUp = true;
                     (void)Net_SetMtubyName("eth0", 1400);
                 },
                 {"socket AF_INET SOCK_DGRAM 0", "fcntl F_SETFD FD_CLOEXEC AF_INET",
                  "ioctl SIOCSIFMTU eth0 1400 on AF_INET",
                  "Error|NetIOCtrl|cmd 35106 error.[Device or resource busy] eth0 ",
                  "ioctl SIOCGIFMTU eth0 on AF_INET", "mutex lock upDownLock",
                  "ioctl SIOCGIFFLAGS eth0 on AF_INET", "ioctl SIOCSIFFLAGS eth0 0x2 on AF_INET",
                  "ioctl SIOCSIFMTU eth0 1400 on AF_INET", "mutex unlock upDownLock",
                  "ioctl SIOCGIFFLAGS eth0 on AF_INET", "ioctl SIOCSIFFLAGS eth0 0x3 on AF_INET"}},
        Recorded{"Address6",
                 [] { (void)Net6_SetIPv6byName("eth0", "2001:db8::7", "56"); },
                 {"socket AF_INET6 SOCK_DGRAM 0", "fcntl F_SETFD FD_CLOEXEC AF_INET6",
                  "ioctl SIOCGIFINDEX eth0 on AF_INET6",
                  "ioctl SIOCSIFADDR 2001:db8::7/56 index 2 on AF_INET6",
                  "socket AF_INET SOCK_DGRAM 0", "fcntl F_SETFD FD_CLOEXEC AF_INET",
                  "ioctl SIOCGIFFLAGS eth0 on AF_INET", "ioctl SIOCSIFFLAGS eth0 0x1 on AF_INET"}},
        Recorded{
            "Route",
            [] { (void)Route_AddIPv4Route("10.9.0.0", "10.0.0.1", "255.255.0.0", "eth0"); },
            {"Info "
             "|Route_AddIPv4Route|10.9.0.0,10.0.0.1,255.255.0.0,eth0##########Route_AddIPv4Route###"
             "########",
             "socket AF_INET SOCK_DGRAM 0", "fcntl F_SETFD FD_CLOEXEC AF_INET",
             "ioctl SIOCADDRT 10.9.0.0 255.255.0.0 10.0.0.1 eth0 flags 0x3 metric 0 on AF_INET"}},
        Recorded{
            "HostRoute",
            [] { (void)Route_DelIPv4Route("10.9.0.7", "0.0.0.0", "255.255.255.255", "eth0"); },
            {"Info "
             "|Route_DelIPv4Route|10.9.0.7,0.0.0.0,255.255.255.255,eth0###########Route_"
             "DelIPv4Route##########",
             "socket AF_INET SOCK_DGRAM 0", "fcntl F_SETFD FD_CLOEXEC AF_INET",
             "ioctl SIOCDELRT 10.9.0.7 255.255.255.255 0.0.0.0 eth0 flags 0x5 metric 0 on AF_INET",
             "Error|Route_SetIPv4Route|iotcl failed.[No such process]",
             "Error|Route_DelIPv4Route|Route_SetIPv4Route error.dst:10.9.0.7 gw:0.0.0.0 "
             "mask:255.255.255.255 dev:eth0"}},
        Recorded{
            "Route6",
            [] { (void)Route_AddIPv6Route("2001:db8:1::", "fe80::1", "48", "eth0"); },
            {"socket AF_INET6 SOCK_DGRAM 0", "fcntl F_SETFD FD_CLOEXEC AF_INET6",
             "ioctl SIOCGIFINDEX eth0 on AF_INET6", "socket AF_INET6 SOCK_DGRAM 0",
             "fcntl F_SETFD FD_CLOEXEC AF_INET6",
             "ioctl SIOCADDRT 2001:db8:1::/48 fe80::1 index 2 flags 0x3 metric 0 on AF_INET6"}},
        Recorded{"Routes",
                 [] {
                     IPv4Route routes[4];
                     int count = 4;
                     (void)Route_GetIPv4Route(routes, &count);
                     count = 4;
                     (void)Route_GetIPv4Route(routes, &count);
                 },
                 {"mutex lock", "open /proc/net/route O_RDONLY",
                  "fcntl F_SETFD FD_CLOEXEC /proc/net/route", "mutex unlock", "mutex lock",
                  "mutex unlock"}},
        Recorded{
            "Flush", [] { Route_Flush_Cache(); }, {"open /proc/sys/net/ipv4/route/flush O_WRONLY"}},
        Recorded{"BondMode",
                 [] {
                     kernel.Add("bond0").flags = IFF_UP | IFF_BROADCAST;
                     Put("/sys/class/net/bond0/bonding/mode", "");
                     Put("/sys/class/net/bond0/bonding/miimon", "");
                     (void)Bond_SetBondMode("bond0", nicBondBalanceTLB);
                 },
                 {"open /sys/class/net/bond0/bonding/mode O_RDWR|O_TRUNC",
                  "socket AF_INET SOCK_DGRAM 0", "fcntl F_SETFD FD_CLOEXEC AF_INET",
                  "ioctl SIOCGIFFLAGS bond0 on AF_INET", "ioctl SIOCSIFFLAGS bond0 0x2 on AF_INET",
                  "write /sys/class/net/bond0/bonding/mode 12",
                  "close /sys/class/net/bond0/bonding/mode",
                  "open /sys/class/net/bond0/bonding/miimon O_RDWR|O_TRUNC",
                  "write /sys/class/net/bond0/bonding/miimon 4",
                  "close /sys/class/net/bond0/bonding/miimon",
                  "ioctl SIOCGIFFLAGS bond0 on AF_INET",
                  "ioctl SIOCSIFFLAGS bond0 0x3 on AF_INET"}},
        Recorded{"ArpProbe",
                 [] {
                     (void)Arp_Ckeck("eth0", "10.0.0.2", "02:13:57:9b:df:24", "10.0.0.9",
                                     "ff:ff:ff:ff:ff:ff", 1);
                 },
                 {"socket AF_INET SOCK_PACKET 1544", "sendto eth0 60 0", "sendto eth0 60 0",
                  "sendto eth0 60 0", "poll 1 1000",
                  "Warn |ListenToSocket|socket # do not recive any data in 1 second",
                  "Warn |Arp_Ckeck|pool error", "poll 1 0",
                  "Warn |ListenToSocket|socket # do not recive any data in 0 second",
                  "Warn |Arp_Ckeck|pool error", "close AF_INET"}},
        Recorded{"Echo",
                 [] { (void)Ping_CheckAlive("eth0", "10.0.0.2", "10.0.0.9", 1); },
                 {"socket AF_INET SOCK_RAW 1",
                  "setsockopt SO_BINDTODEVICE eth0 " + std::to_string(sizeof(ifreq)) +
                      " level 1 on AF_INET",
                  "bind 10.0.0.2 0 16", "sendto 10.0.0.9 40 0", "sendto 10.0.0.9 40 0",
                  "sendto 10.0.0.9 40 0", "poll 1 1000",
                  "Warn |ListenToSocket|socket # do not recive any data in 1 second",
                  "Warn |Ping_CheckAlive|pool error",
                  "Info |Ping_CheckAlive|device 10.0.0.9 is not alive", "close AF_INET"}},
        Recorded{"Neighbour",
                 [] {
                     Put("/proc/net/arp", "");
                     char mac[18] = {};
                     (void)Other_GetMacByIP("10.0.0.9", mac);
                 },
                 {"mutex lock", "open /proc/net/arp O_RDONLY",
                  "fcntl F_SETFD FD_CLOEXEC /proc/net/arp", "mutex unlock",
                  "Error|Other_GetMacByIP|can not find this mac by ip 10.0.0.9"}},
        Recorded{"Telnet",
                 [] {
                     Put("/tmp/telnet", "off");
                     NetInterface object{};
                     TelnetInfo wish{};
                     wish.enable = 1;
                     (void)API3_setTelnet(&object, &wish);
                 },
                 {"open /tmp/telnet O_RDWR|O_CREAT 0700", "fstat /tmp/telnet", "lstat /tmp/telnet",
                  "write /tmp/telnet 3", "close /tmp/telnet"}},
        Recorded{"SpanningTree",
                 [] {
                     Put("/proc/stp_ctrl", "");
                     NetInterface object{};
                     STPInfo info{};
                     (void)API3_setSTP(&object, &info);
                     (void)API3_setSTP(&object, &info);
                 },
                 {"open /proc/stp_ctrl O_RDWR", "fcntl F_SETFD FD_CLOEXEC /proc/stp_ctrl",
                  "write /proc/stp_ctrl 3", "write /proc/stp_ctrl 3"}},
        Recorded{
            "Power",
            [] {
                Put("/dev/qv_poe", "");
                (void)PoE_SetPowerOn(3);
            },
            {"open /dev/qv_poe O_RDWR", "ioctl 0x40045003 3 on /dev/qv_poe", "close /dev/qv_poe"}}),
    [](const auto& info) { return info.param.name; });

}  // namespace
