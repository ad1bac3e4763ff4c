// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// What an operation of many steps asks, changes, runs and says, from its first step to its last: in
// Transactions.txt, one section an operation. With VORLIX_TELL_STEPS in the environment a test
// prints its section as it is now.

#include "BondManagementWorld.h"
#include "LanriseWorld.h"
#include "Steps.h"
#include "fake/Rtnetlink.h"
#include "fake/Synced.h"

#include "Arp_Ping.h"
#include "Bond.h"
#include "Bridge.h"
#include "Config.h"
#include "Dns.h"
#include "Lanrise.h"
#include "NetApi2_0.h"
#include "NetApi3_0.h"
#include "Netlink.h"
#include "Network.h"
#include "Network6.h"
#include "TrafficControl.h"
#include "VirtInter.h"

#include <cctype>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <regex>

#include <net/if.h>

using namespace fake;

namespace {

struct Transaction {
    std::string name;
    std::function<void()> prepare;
    std::function<int64_t()> run;
};

void PrintTo(const Transaction& transaction, std::ostream* out)
{
    *out << transaction.name;
}

/// The sections of the file by their names.
std::map<std::string, Texts> Sections()
{
    std::map<std::string, Texts> sections;
    std::ifstream file(VORLIX_TRANSACTIONS);
    std::string name;
    for (std::string line; std::getline(file, line);) {
        if (line.rfind("== ", 0) == 0) {
            name = line.substr(3);
        } else if (!line.empty() && !name.empty()) {
            sections[name].push_back(line);
        }
    }
    return sections;
}

/// The steps, each in one line. Of a command the shell's own are left out, a listing of the cards
/// is one step, a file that was written is told with what stands in it, and that a folder's entries
/// are looked at is nobody's concern.
Texts Told(int64_t result)
{
    static const Texts kOfAShell = {"sigaction", "sigprocmask", "vfork",
                                    "child ",    "waitpid",     "stat network"};
    Texts told;
    auto synced = Synced().begin();
    bool isListing = false;
    for (const std::string& step : Steps()) {
        const bool untold =
            std::any_of(kOfAShell.begin(), kOfAShell.end(),
                        [&](const std::string& start) { return step.rfind(start, 0) == 0; });
        if (step.rfind("open /proc/net/dev", 0) == 0) isListing = true;
        if (!untold && !isListing) told.push_back(Replaced(step, "\n", "\\n"));
        if (step.rfind("write network", 0) == 0 && synced != Synced().end()) {
            told.back() += ": " + Replaced(*synced++, "\n", "; ");
        }
        if (step != "close /proc/net/dev") continue;
        told.emplace_back("list the cards");
        isListing = false;
    }
    told.push_back("result " + std::to_string(result));
    static const std::regex kNumber(
        "socket \\d+ do not");  // it is the process's, not the product's
    const std::string request = " " + std::to_string(sizeof(ifreq)) + " level";  // the target's
    for (std::string& step : told) {
        step = std::regex_replace(step, kNumber, "socket # do not");
        step = Replaced(step, request, " ifreq level");
        step.erase(step.find_last_not_of(' ') + 1);
    }
    // A folder has no order that is promised: neither have the files that lose the default card.
    const auto losesDefault = [](const std::string& step) {
        return step.find("PRIO = 1;") != std::string::npos;
    };
    for (auto begin = told.begin(); begin != told.end();) {
        begin = std::find_if(begin, told.end(), losesDefault);
        const auto end = std::find_if_not(begin, told.end(), losesDefault);
        std::sort(begin, end);
        begin = end;
    }
    return told;
}

class TransactionTest : public BondWorld, public testing::WithParamInterface<Transaction> {
protected:
    void SetUp() override
    {
        BondWorld::SetUp();
        SetBridgePorts("br0", {});
        kernel.At("eth0").settings = ethtool_cmd{};
        kernel.At("eth1").mac = "02:13:57:9b:df:24";
    }
};

TEST_P(TransactionTest, IsWhole)
{
    const Transaction& transaction = GetParam();
    if (transaction.prepare) transaction.prepare();
    Begin();
    const int64_t result = transaction.run();
    const Texts told = Told(result);
    if (getenv("VORLIX_TELL_STEPS") != nullptr) {
        fprintf(stderr, "== %s\n", transaction.name.c_str());
        for (const std::string& step : told) fprintf(stderr, "%s\n", step.c_str());
    }
    EXPECT_EQ(told, Sections()[transaction.name]);
}

/// The name without what the framework takes in none.
std::string Name(const testing::TestParamInfo<Transaction>& info)
{
    std::string name;
    for (const char character : info.param.name) {
        if (isalnum(static_cast<unsigned char>(character)) != 0) name += character;
        if (character == ' ') name += '_';
    }
    return name;
}

// ---- bonds and bridges

const char* kTwoCards[] = {"eth1", "eth0"};
char** const kTwoPorts = const_cast<char**>(kTwoCards);

void RunBond(const char* mode)
{
    Put(kSlaves, "eth1 eth0\n");
    Put(kBondFile, Settings(kOwnSettings) + "BONDMODE = " + mode + "\nBONDMEMBERS = eth1,eth0\n");
}

void RunBridge()
{
    SetBridgePorts("br0", {"eth1"});
    Put(CardFile("br0"), Settings({"HOSTIP = 10.3.0.2", "SUBMASK = 255.255.0.0", "MTU = 1400"}));
}

INSTANTIATE_TEST_SUITE_P(
    Masters, TransactionTest,
    testing::Values(
        Transaction{"Bond", nullptr, [] { return Bond("bond0", kTwoCards, 2, nicBondBalanceXOR); }},
        Transaction{"Bond, no shell", [] { FailAll("vfork", EAGAIN); },
                    [] { return Bond("bond0", kTwoCards, 2, nicBondBalanceXOR); }},
        Transaction{"Bond, the mode is refused",
                    [] { FailAll("write /sys/class/net/bond0/bonding/mode", EPERM); },
                    [] { return Bond("bond0", kTwoCards, 2, nicBondBalanceXOR); }},
        Transaction{"Bond, one runs", [] { RunBond("1"); },
                    [] { return Bond("bond0", kTwoCards, 2, nicBondActiveBackup); }},
        Transaction{"Bond, one runs in another mode", [] { RunBond("2"); },
                    [] { return Bond("bond0", kTwoCards, 2, nicBondActiveBackup); }},
        Transaction{"Bond, of no cards", nullptr,
                    [] { return Bond("bond0", kTwoCards, 0, nicBondActiveBackup); }},
        Transaction{"UnBond", [] { RunBond("1"); }, [] { return UnBond("bond0"); }},
        Transaction{"SetMtubyBondName", [] { RunBond("1"); },
                    [] { return SetMtubyBondName("bond0", 1400); }},
        Transaction{"SetMtubyBondName, too large", [] { RunBond("1"); },
                    [] { return SetMtubyBondName("bond0", 7201); }},
        Transaction{"SetMtubyBondName, it has it", [] { RunBond("1"); },
                    [] { return SetMtubyBondName("bond0", 1500); }},
        Transaction{"SetMtubyBondName, none runs", [] { Remove(kSlaves); },
                    [] { return SetMtubyBondName("bond0", 9000); }},
        Transaction{"SetBondHashPolicy", nullptr, [] { return SetBondHashPolicy("bond0", 2); }},
        Transaction{"SetBondHashPolicy, refused",
                    [] { FailAll("write /sys/class/net/bond0/bonding/xmit", EPERM); },
                    [] { return SetBondHashPolicy("bond0", 2); }},
        Transaction{"Bond_SetBondMode", nullptr,
                    [] { return Bond_SetBondMode("bond0", nicBond802_3ad); }},
        Transaction{"Bond_Unbond", nullptr, [] { return Bond_Unbond("bond0", kTwoCards, 2); }},
        Transaction{"Bridge", nullptr, [] { return Bridge("br0", kTwoPorts, 2); }},
        Transaction{"Bridge, of no cards", nullptr, [] { return Bridge("br0", kTwoPorts, 0); }},
        Transaction{"UnBridge", RunBridge, [] { return UnBridge("br0"); }},
        Transaction{"UnBridgeByInterNic", RunBridge, [] { return UnBridgeByInterNic("br0"); }},
        Transaction{"BridgeByInterNic", [] { kernel.Add("vnic0").driver = "pcit virt nic"; },
                    [] { return BridgeByInterNic(nullptr); }},
        Transaction{"BridgeByInterNic, an address is saved",
                    [] {
                        kernel.Add("vnic0").driver = "pcit virt nic";
                        Put(CardFile("nbp0"), Settings(kOwnSettings));
                    },
                    [] { return BridgeByInterNic(nullptr); }},
        Transaction{"BridgeByInterNic, the card has an address",
                    [] {
                        kernel.Add("vnic0").driver = "pcit virt nic";
                        kernel.At("vnic0").address = "10.0.0.7";
                    },
                    [] { return BridgeByInterNic(nullptr); }},
        Transaction{"BridgeByInterNic, another driver", [] { kernel.Add("vnic0"); },
                    [] { return BridgeByInterNic(nullptr); }},
        Transaction{"BridgeAddEdgePort", RunBridge,
                    [] { return BridgeAddEdgePort("br0", "eth1"); }},
        Transaction{"BridgeDelEdgePort", RunBridge,
                    [] { return BridgeDelEdgePort("br0", "eth1"); }},
        Transaction{"BridgeControl", RunBridge,
                    [] {
                        STPInfo stp{};
                        stp.enable = 1;
                        return BridgeControl("br0", &stp);
                    }},
        Transaction{"BridgeControl, mode 1", RunBridge,
                    [] {
                        STPInfo stp{};
                        stp.mode = 1;
                        return BridgeControl("br0", &stp);
                    }},
        Transaction{"createNetBridge", [] { Remove("/sys/class/net/br0"); },
                    [] {
                        NetBrDesc desc{};
                        desc.name = "br0";
                        desc.subDev = kTwoCards;
                        desc.num = 2;
                        static NetBridge* made;  // its end would be steps of its own
                        return createNetBridge(&desc, &made);
                    }}),
    Name);

// ---- one card

void NoSettings()
{
    Put(kFile0, "MTU = 1500\n");
}

void OnlyABackup()
{
    NoSettings();
    EXPECT_TRUE(BackupIP("eth0", "10.0.0.3"));
    EXPECT_TRUE(BackupMask("eth0", "255.0.0.0"));
    EXPECT_TRUE(BackupGateway("eth0", "10.0.0.1"));
}

char text[64];
char other[64];

INSTANTIATE_TEST_SUITE_P(
    Cards, TransactionTest,
    testing::Values(
        Transaction{"NetCardRecover", nullptr, [] { return NetCardRecover("eth0"); }},
        Transaction{"NetCardRecover, from the backup", OnlyABackup,
                    [] { return NetCardRecover("eth0"); }},
        Transaction{"NetCardRecover, from nothing", [] { Remove(kFile1); },
                    [] { return NetCardRecover("eth1"); }},
        Transaction{"NetCardRecover, the kernel refuses",
                    [] { FailAll("ioctl SIOCSIFADDR", EPERM); },
                    [] { return NetCardRecover("eth0"); }},
        Transaction{"NetSetIPByName", nullptr,
                    [] { return NetSetIPByName("eth0", "10.0.0.9", "255.0.0.0"); }},
        Transaction{"NetSetIPByName, of a card without backup", nullptr,
                    [] { return NetSetIPByName("eth1", "10.0.0.9", "255.0.0.0"); }},
        Transaction{"NetSetGatewaybyName", nullptr,
                    [] { return NetSetGatewaybyName("eth0", "10.0.0.9"); }},
        Transaction{"NetSetGatewaybyName, a file that cannot be written",
                    [] { FailAll("fopen /mnt/mtd/Config/network w+", EROFS); },
                    [] { return NetSetGatewaybyName("eth0", "10.0.0.9"); }},
        Transaction{"NetSetMacbyName",
                    [] {
                        kernel.routes = {{"0.0.0.0", "10.0.0.1", "0.0.0.0", "eth0"}};
                    },
                    [] { return NetSetMacbyName("eth0", "02:13:57:9b:df:24"); }},
        Transaction{"NetSetMacbyName, refused",
                    [] {
                        kernel.routes = {{"0.0.0.0", "10.0.0.1", "0.0.0.0", "eth0"}};
                        FailAll("ioctl SIOCSIFHWADDR", EBUSY);
                    },
                    [] { return NetSetMacbyName("eth0", "02:13:57:9b:df:24"); }},
        Transaction{"NetSetMtubyName",
                    [] {
                        kernel.routes = {{"0.0.0.0", "10.0.0.1", "0.0.0.0", "eth0"}};
                    },
                    [] { return NetSetMtubyName("eth0", -1); }},
        Transaction{"Net_SetMtubyName, refused while up",
                    [] {
                        kernel.At("eth0").refusesMtuWhileUp = true;
                        kernel.At("eth0").flags = IFF_UP;
                    },
                    [] { return Net_SetMtubyName("eth0", 1400); }},
        Transaction{"Net_SetMtubyName, refused", [] { FailAll("ioctl SIOCSIFMTU", EINVAL); },
                    [] { return Net_SetMtubyName("eth0", 1400); }},
        Transaction{"NetGetIPbyName, from the backup", OnlyABackup,
                    [] { return NetGetIPbyName("eth0", text, other); }},
        Transaction{"NetGetIPbyName, from nothing", NoSettings,
                    [] { return NetGetIPbyName("eth0", text, other); }},
        Transaction{"NetGetGatewaybyName, from the backup", OnlyABackup,
                    [] { return NetGetGatewaybyName("eth0", text); }},
        Transaction{"NetSetIPv6byName",
                    [] {
                        kernel.At("eth0").addresses6 = {{"2001:db8::2", 64, 0}};
                    },
                    [] { return NetSetIPv6byName("eth0", "2001:db8::9", "48"); }},
        Transaction{"NetSetIPv6byName, none",
                    [] {
                        kernel.At("eth0").addresses6 = {{"2001:db8::2", 64, 0}};
                    },
                    [] { return NetSetIPv6byName("eth0", "", "48"); }},
        Transaction{"NetDelIPAddressIpv6",
                    [] {
                        kernel.At("eth0").addresses6 = {{"2001:db8::2", 64, 0}};
                    },
                    [] {
                        strcpy(text, "2001:db8::2/64");
                        return NetDelIPAddressIpv6("eth0", text);
                    }},
        Transaction{"NetDelIPAddressIpv6, another",
                    [] {
                        kernel.At("eth0").addresses6 = {{"2001:db8::2", 64, 0}};
                    },
                    [] {
                        strcpy(text, "2001:db8::3/64");
                        return NetDelIPAddressIpv6("eth0", text);
                    }},
        Transaction{"NetGetLinkLocalAddressIpv6", nullptr,
                    [] { return NetGetLinkLocalAddressIpv6("eth0", text, sizeof(text)); }},
        Transaction{"NetSetDefEth",
                    [] {
                        kernel.routes = {{"0.0.0.0", "10.1.0.1", "0.0.0.0", "eth1"},
                                         {"10.1.0.0", "0.0.0.0", "255.255.0.0", "eth1"},
                                         {"0.0.0.0", "10.0.0.7", "0.0.0.0", "eth0"}};
                    },
                    [] { return NetSetDefEth("eth0"); }},
        Transaction{"NetGetDefEth, from the file",
                    [] { Put(kFile0, Get(kFile0) + "DEFAULT_ETH = eth1\n"); },
                    [] { return NetGetDefEth(text, 16); }},
        Transaction{"RouteDelDefIPv4, no table", [] { FailAll("open /proc/net/route", EMFILE); },
                    [] { return RouteDelDefIPv4("eth0"); }},
        Transaction{"RouteDelDefIPv6, no table",
                    [] { FailAll("open /proc/net/ipv6_route", EMFILE); },
                    [] {
                        Put("/mnt/mtd/Config/networkip6", "GATEWAYIP = fe80::1\n");
                        return RouteDelDefIPv6("eth0");
                    }},
        Transaction{"NetArpCheck", nullptr, [] { return NetArpCheck("eth0"); }},
        Transaction{"NetPingCheck", nullptr, [] { return NetPingCheck("eth0", "10.0.0.7", 1); }},
        Transaction{"NetPingCheck, no address", NoSettings,
                    [] { return NetPingCheck("eth0", "10.0.0.7", 1); }},
        Transaction{"NetGetAllInterface", nullptr,
                    [] {
                        NetInterfaceInfo list[8];
                        int32_t count = 8;
                        return NetGetAllInterface(list, &count) ? count : -1;
                    }}),
    Name);

// ---- the device

NetTc Limit(const char* address)
{
    NetTc limit{};
    strcpy(limit.ipAddr, address);
    limit.ipType = 4;
    limit.bandWidth = 10;
    return limit;
}

INSTANTIATE_TEST_SUITE_P(
    Device, TransactionTest,
    testing::Values(
        Transaction{"TrafCtrlSetBand", nullptr,
                    [] {
                        const NetTc limits[] = {Limit("10.0.0.7"), Limit("10.0.0.8")};
                        return TrafCtrlSetBand("eth0", limits, 2);
                    }},
        Transaction{"TrafCtrlUnSetBand",
                    [] {
                        const NetTc limits[] = {Limit("10.0.0.7"), Limit("10.0.0.8")};
                        EXPECT_TRUE(TrafCtrlSetBand("eth0", limits, 2));
                    },
                    [] { return TrafCtrlUnSetBand("eth0", "10.0.0.7"); }},
        Transaction{"PortCtrlDisablePort",
                    [] {
                        kernel.cards.resize(2);
                        kernel.At("eth0").address = "10.0.0.2";
                        kernel.At("eth0").addresses6 = {{"2001:db8::2", 64, 0}};
                    },
                    [] { return PortCtrlDisablePort("0.0.0.0", 80); }},
        Transaction{"Dns_SetDnsServerIPv4",
                    [] { Put("/mnt/mtd/Config/resolv.conf", "nameserver 2001:db8::5\n"); },
                    [] { return Dns_SetDnsServerIPv4("10.0.0.5", "10.0.0.6"); }},
        Transaction{"Dns_GetDnsServerIPv6",
                    [] {
                        Put("/mnt/mtd/Config/resolv.conf", "nameserver 10.0.0.5\n");
                        Put("/mnt/mtd/Config/resolvip6.conf", "nameserver 2001:db8::5\n");
                    },
                    [] { return Dns_GetDnsServerIPv6(text, other, 46); }},
        Transaction{"VirtInter_IpVlanAdd", nullptr,
                    [] {
                        char host[] = "eth0";
                        char virt[] = "ipv0";
                        return VirtInter_IpVlanAdd(host, virt, 1, 0);
                    }},
        Transaction{"Netlink_IPv4Route", [] { Put("/proc/sys/net/ipv4/route/flush", ""); },
                    [] {
                        return Netlink_IPv4Route(RTM_NEWROUTE, 100, 24, "10.9.0.0", nullptr,
                                                 "10.0.0.1", "eth0", 7);
                    }},
        Transaction{"Netlink_IPv4Rule, refused", [] { rtnetlink.refusal = EEXIST; },
                    [] { return Netlink_IPv4Rule(RTM_NEWRULE, "10.0.0.2", 100, 1); }},
        Transaction{"CheckBeenReset", [] { kernel.rtc.bytes[RTC_SRAM_IPRESET] = 0x66; },
                    [] { return CheckBeenReset(); }},
        Transaction{"CheckBeenReset, another mark",
                    [] { kernel.rtc.bytes[RTC_SRAM_IPRESET] = 0x11; },
                    [] { return CheckBeenReset(); }},
        Transaction{"RestBackup", nullptr, [] { return RestBackup(); }},
        Transaction{"NetSetDhcpIPRange", nullptr,
                    [] { return NetSetDhcpIPRange("eth0", "10.0.0.10", "10.0.0.20", "600"); }},
        Transaction{"lanrise setdef", nullptr,
                    [] {
                        return Lanrise({"setdef", "eth1"});
                    }},
        Transaction{"lanrise with an address",
                    [] {
                        kernel.routes = {{"0.0.0.0", "10.0.0.1", "0.0.0.0", "eth0"},
                                         {"10.7.0.0", "0.0.0.0", "255.255.0.0", "tun0"}};
                    },
                    [] {
                        return Lanrise({"eth1", "10.1.0.9", "255.255.0.0", "10.1.0.1"});
                    }},
        Transaction{"lanrise with an address, of a card that is missing", nullptr,
                    [] {
                        return Lanrise({"eth7", "10.1.0.9", "255.255.0.0", "10.1.300.1"});
                    }},
        Transaction{"lanrise", nullptr, [] { return Lanrise({}); }}),
    Name);

}  // namespace
