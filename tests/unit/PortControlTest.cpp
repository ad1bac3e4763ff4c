// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "PortControl.h"

#include "CommonApi.h"

#include "fake/World.h"

#include <cerrno>
#include <climits>

using namespace fake;

namespace {

constexpr int kRefused = 2 << 8;  // wait status of a rule that the tool did not take

/// Both rules of a port, deleted ("-D") or appended ("-A"). The UDP rule always goes to the IPv4
/// tool.
std::string Rules(const std::string& tool, const std::string& change, const std::string& address,
                  int port)
{
    const std::string rest = " -d " + address + " --dport " + std::to_string(port) + " -j REJECT";
    return tool + " " + change + " PORTCHAIN -p tcp" + rest + ";iptables " + change +
           " PORTCHAIN -p udp" + rest;
}

Texts Blocking4(const std::string& address, int port)
{
    return {Rules("iptables", "-D", address, port), Rules("iptables", "-A", address, port)};
}

Texts Blocking6(const std::string& address, int port)
{
    return {Rules("ip6tables", "-D", address, port), Rules("ip6tables", "-A", address, port)};
}

Texts Join(Texts first, const Texts& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

// ---- PortCtrl_*

class PortCtrlTest : public World {};

TEST_F(PortCtrlTest, AnIPv4PortIsFreedByDeletingBothRules)
{
    EXPECT_TRUE(PortCtrl_EnableIPv4Port("10.0.0.2", 80));
    EXPECT_EQ(Commands(), Texts{"iptables -D PORTCHAIN -p tcp -d 10.0.0.2 --dport 80 -j REJECT;"
                                "iptables -D PORTCHAIN -p udp -d 10.0.0.2 --dport 80 -j REJECT"});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(PortCtrlTest, AnIPv4PortIsBlockedByReplacingBothRules)
{
    EXPECT_TRUE(PortCtrl_DisableIPv4Port("10.0.0.2", 80));
    EXPECT_EQ(Commands(), (Texts{"iptables -D PORTCHAIN -p tcp -d 10.0.0.2 --dport 80 -j REJECT;"
                                 "iptables -D PORTCHAIN -p udp -d 10.0.0.2 --dport 80 -j REJECT",
                                 "iptables -A PORTCHAIN -p tcp -d 10.0.0.2 --dport 80 -j REJECT;"
                                 "iptables -A PORTCHAIN -p udp -d 10.0.0.2 --dport 80 -j REJECT"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(PortCtrlTest, AnIPv6PortIsFreedWithItsUdpRuleAtTheIPv4Tool)
{
    EXPECT_TRUE(PortCtrl_EnableIPv6Port("fd00::2", 80));
    EXPECT_EQ(Commands(), Texts{"ip6tables -D PORTCHAIN -p tcp -d fd00::2 --dport 80 -j REJECT;"
                                "iptables -D PORTCHAIN -p udp -d fd00::2 --dport 80 -j REJECT"});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(PortCtrlTest, AnIPv6PortIsBlockedWithItsUdpRuleAtTheIPv4Tool)
{
    EXPECT_TRUE(PortCtrl_DisableIPv6Port("fd00::2", 80));
    EXPECT_EQ(Commands(), (Texts{"ip6tables -D PORTCHAIN -p tcp -d fd00::2 --dport 80 -j REJECT;"
                                 "iptables -D PORTCHAIN -p udp -d fd00::2 --dport 80 -j REJECT",
                                 "ip6tables -A PORTCHAIN -p tcp -d fd00::2 --dport 80 -j REJECT;"
                                 "iptables -A PORTCHAIN -p udp -d fd00::2 --dport 80 -j REJECT"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(PortCtrlTest, AllPortsAreFreedByFlushingTheChainOfBothFamilies)
{
    EXPECT_TRUE(PortCtrl_EnableAllIPPort());
    EXPECT_EQ(Commands(), Texts{"iptables -F PORTCHAIN;ip6tables -F PORTCHAIN"});
    EXPECT_EQ(Log(), LogLines{});
}

struct FreeOrBlock {
    bool (*run)(const char* ipAddr, int port);
    const char* tool;
    bool blocks;
};

const FreeOrBlock kOperations[] = {{PortCtrl_EnableIPv4Port, "iptables", false},
                                   {PortCtrl_DisableIPv4Port, "iptables", true},
                                   {PortCtrl_EnableIPv6Port, "ip6tables", false},
                                   {PortCtrl_DisableIPv6Port, "ip6tables", true}};

TEST_F(PortCtrlTest, AddressAndPortGoOutAsTheyStand)
{
    for (const FreeOrBlock& operation : kOperations) {
        for (const int port : {0, -1, 65536, INT_MAX, INT_MIN}) {
            EXPECT_TRUE(operation.run("any 'text'", port));
            EXPECT_EQ(Commands().back(),
                      Rules(operation.tool, operation.blocks ? "-A" : "-D", "any 'text'", port));
        }
    }
    EXPECT_EQ(Commands().size(), 30U);
}

TEST_F(PortCtrlTest, ACommandIsCutAt255Characters)
{
    const std::string address(80, 'a');
    for (const FreeOrBlock& operation : kOperations) {
        EXPECT_TRUE(operation.run(address.c_str(), 80));
        const std::string whole =
            Rules(operation.tool, operation.blocks ? "-A" : "-D", address, 80);
        EXPECT_GT(whole.size(), 255U);
        EXPECT_EQ(Commands().back(), whole.substr(0, 255));
    }
}

TEST_F(PortCtrlTest, NullIsRefusedInSilence)
{
    for (const FreeOrBlock& operation : kOperations) EXPECT_FALSE(operation.run(nullptr, 80));
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(PortCtrlTest, WhatTheToolsRefuseIsNotNoticed)
{
    OnCommand("", nullptr, kRefused);
    for (const FreeOrBlock& operation : kOperations) EXPECT_TRUE(operation.run("10.0.0.2", 80));
    EXPECT_TRUE(PortCtrl_EnableAllIPPort());
    EXPECT_EQ(Commands().size(), 7U);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(PortCtrlTest, TheLastCommandDecides)
{
    for (const FreeOrBlock& operation : kOperations) {
        const int last = operation.blocks ? 2 : 1;
        Fail("vfork", EAGAIN, last);
        EXPECT_FALSE(operation.run("10.0.0.2", 80));
        if (!operation.blocks) continue;

        Fail("vfork", EAGAIN, 1);
        EXPECT_TRUE(operation.run("10.0.0.2", 80));
        EXPECT_EQ(Commands().back(), Rules(operation.tool, "-A", "10.0.0.2", 80));
    }
    Fail("vfork", EAGAIN);
    EXPECT_FALSE(PortCtrl_EnableAllIPPort());
}

TEST_F(PortCtrlTest, AFailureOfAnyCallLeavesNothingBehind)
{
    FailEachCall([] { PortCtrl_DisableIPv4Port("10.0.0.2", 80); });
    FailEachCall([] { PortCtrl_EnableAllIPPort(); });
}

// ---- PortCtrlEnablePort

class PortCtrlEnablePortTest : public World {};

TEST_F(PortCtrlEnablePortTest, ADotMakesAnIPv4Address)
{
    for (const char* address : {"10.0.0.2", "::ffff:10.0.0.2", ".", "0.0.0.00", "0.0.0.0 ", "0.0.0",
                                "00.0.0.0", "0x0.0.0.0", " 0.0.0.0", "::0.0.0.0"}) {
        EXPECT_TRUE(PortCtrlEnablePort(address, 80));
        EXPECT_EQ(Commands().back(), Rules("iptables", "-D", address, 80));
    }
    EXPECT_EQ(Commands().size(), 10U);
}

TEST_F(PortCtrlEnablePortTest, EverythingElseIsIPv6)
{
    for (const char* address : {"fd00::2", "::", "", "10", "0:0:0::0", "0", "0x0"}) {
        EXPECT_TRUE(PortCtrlEnablePort(address, 80));
        EXPECT_EQ(Commands().back(), Rules("ip6tables", "-D", address, 80));
    }
    EXPECT_EQ(Commands().size(), 7U);
}

TEST_F(PortCtrlEnablePortTest, AllAddressesFreeEveryPort)
{
    EXPECT_TRUE(PortCtrlEnablePort("0.0.0.0", 80));
    EXPECT_EQ(Commands(), Texts{"iptables -F PORTCHAIN;ip6tables -F PORTCHAIN"});
    for (const int port : {0, -1, 65536}) EXPECT_TRUE(PortCtrlEnablePort("0.0.0.0", port));
    EXPECT_EQ(Commands().size(), 4U);  // the port plays no part
    Fail("vfork", EAGAIN);
    EXPECT_FALSE(PortCtrlEnablePort("0.0.0.0", 80));
}

TEST_F(PortCtrlEnablePortTest, ACommandThatCouldNotBeRunIsAFailure)
{
    FailAll("vfork", EAGAIN);
    EXPECT_FALSE(PortCtrlEnablePort("10.0.0.2", 80));
    EXPECT_FALSE(PortCtrlEnablePort("fd00::2", 80));
}

TEST_F(PortCtrlEnablePortTest, NullIsRefusedInSilence)
{
    EXPECT_FALSE(PortCtrlEnablePort(nullptr, 80));
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Trace(), Texts{});
}

// ---- PortCtrlDisablePort

/// A device whose cards have an address of each family.
class PortCtrlDisablePortTest : public World {
protected:
    static void Plug(const std::string& name, const std::string& address,
                     const std::string& address6)
    {
        Card& card = kernel.Add(name);
        card.address = address;
        if (!address6.empty()) card.addresses6 = {{address6, 64, 0}};
    }

    static LogLine No4(const std::string& card)
    {
        return Error("PortCtrlDisablePort", "get " + card + "'s ip from sys failed.");
    }

    static LogLine No6(const std::string& card)
    {
        return Error("PortCtrlDisablePort", "get " + card + "'s ipv6 from sys failed.");
    }
};

TEST_F(PortCtrlDisablePortTest, ADotMakesAnIPv4Address)
{
    for (const char* address : {"10.0.0.2", "::ffff:10.0.0.2", ".", "0.0.0.00", "0.0.0.0 ", "0.0.0",
                                "00.0.0.0", "0x0.0.0.0", " 0.0.0.0", "::0.0.0.0"}) {
        const size_t before = Commands().size();
        EXPECT_TRUE(PortCtrlDisablePort(address, 80));
        EXPECT_EQ(Texts(Commands().end() - 2, Commands().end()), Blocking4(address, 80));
        EXPECT_EQ(Commands().size(), before + 2);
    }
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(PortCtrlDisablePortTest, EverythingElseIsIPv6)
{
    for (const char* address : {"fd00::2", "::", "", "10", "0:0:0::0", "0", "0x0"}) {
        EXPECT_TRUE(PortCtrlDisablePort(address, 80));
        EXPECT_EQ(Texts(Commands().end() - 2, Commands().end()), Blocking6(address, 80));
    }
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(PortCtrlDisablePortTest, AllAddressesAreThoseOfEachInterfaceButEth16)
{
    Plug("eth0", "10.0.0.2", "fd00:0000:0000:0000:0000:0000:0000:0002");
    Plug("eth16", "10.0.16.2", "fd00:0000:0000:0000:0000:0000:0000:0016");
    Plug("eth160", "10.0.160.2", "fd00:0000:0000:0000:0000:0000:0000:0160");
    Plug("bond0", "10.0.1.2", "fd00:0000:0000:0000:0000:0000:0000:0003");
    EXPECT_TRUE(PortCtrlDisablePort("0.0.0.0", 80));
    Texts wanted = Join(Blocking4("10.0.0.2", 80), Blocking6("fd00::2", 80));
    wanted = Join(Join(wanted, Blocking4("10.0.160.2", 80)), Blocking6("fd00::160", 80));
    wanted = Join(Join(wanted, Blocking4("10.0.1.2", 80)), Blocking6("fd00::3", 80));
    EXPECT_EQ(Commands(), wanted);
    EXPECT_EQ(LogOf("PortCtrlDisablePort"), LogLines{});
}

TEST_F(PortCtrlDisablePortTest, AnInterfaceWithoutAnAddressIsToldAndTheNextFollows)
{
    Plug("eth0", "10.0.0.2", "");
    Plug("eth1", "", "fd00:0000:0000:0000:0000:0000:0000:0003");
    Plug("eth2", "", "");
    Plug("eth3", "10.0.3.2", "");
    EXPECT_TRUE(PortCtrlDisablePort("0.0.0.0", 443));
    EXPECT_EQ(Commands(), Join(Join(Blocking4("10.0.0.2", 443), Blocking6("fd00::3", 443)),
                               Blocking4("10.0.3.2", 443)));
    EXPECT_EQ(LogOf("PortCtrlDisablePort"),
              (LogLines{No6("eth0"), No4("eth1"), No4("eth2"), No6("eth2"), No6("eth3")}));
}

TEST_F(PortCtrlDisablePortTest, EachAddressIsBlockedBeforeTheNextIsAsked)
{
    Plug("eth0", "10.0.0.2", "fd00:0000:0000:0000:0000:0000:0000:0002");
    Plug("eth1", "10.0.1.2", "");
    EXPECT_TRUE(PortCtrlDisablePort("0.0.0.0", 80));
    const Texts block4 = Blocking4("10.0.0.2", 80);
    const Texts block6 = Blocking6("fd00::2", 80);
    const Texts next4 = Blocking4("10.0.1.2", 80);
    const std::string table = "open /proc/net/if_inet6 O_RDONLY";
    Texts calls;
    for (const std::string& call : TraceOf({"command", "ioctl SIOCGIFADDR", table})) {
        if (calls.empty() || calls.back() != call) calls.push_back(call);  // looked for twice
    }
    EXPECT_EQ(calls, (Texts{"ioctl SIOCGIFADDR eth0", "command " + block4[0],
                            "command " + block4[1], table, "command " + block6[0],
                            "command " + block6[1], "ioctl SIOCGIFADDR eth1", "command " + next4[0],
                            "command " + next4[1], table}));
}

TEST_F(PortCtrlDisablePortTest, UpTo32InterfacesTakePart)
{
    Texts wanted;
    for (int i = 20; i < 53; ++i) {
        const std::string number = std::to_string(i);
        Plug("eth" + number, "10.0.0." + number, "");
        if (i < 52) wanted = Join(wanted, Blocking4("10.0.0." + number, 80));
    }
    EXPECT_TRUE(PortCtrlDisablePort("0.0.0.0", 80));
    EXPECT_EQ(Commands(), wanted);
}

TEST_F(PortCtrlDisablePortTest, WithoutAListNothingIsBlocked)
{
    Plug("eth0", "10.0.0.2", "");
    Fail("open /proc/net/dev", EMFILE);
    EXPECT_FALSE(PortCtrlDisablePort("0.0.0.0", 80));
    EXPECT_EQ(Commands(), Texts{});
    EXPECT_EQ(Log(), (LogLines{Error("GetAllInterfaceInfo", "Open file /proc/net/dev failed!\n"),
                               Error("PortCtrlDisablePort", "GetAllInterfaceInfo failed")}));
}

TEST_F(PortCtrlDisablePortTest, WithoutInterfacesThereIsNothingToBlock)
{
    EXPECT_TRUE(PortCtrlDisablePort("0.0.0.0", 80));
    EXPECT_EQ(Commands(), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(PortCtrlDisablePortTest, CommandsThatCouldNotBeRunCountForOneAddressOnly)
{
    Plug("eth0", "10.0.0.2", "fd00:0000:0000:0000:0000:0000:0000:0002");
    FailAll("vfork", EAGAIN);
    EXPECT_TRUE(PortCtrlDisablePort("0.0.0.0", 80));
    EXPECT_EQ(LogOf("PortCtrlDisablePort"), LogLines{});
    EXPECT_FALSE(PortCtrlDisablePort("10.0.0.2", 80));
    EXPECT_FALSE(PortCtrlDisablePort("fd00::2", 80));
}

TEST_F(PortCtrlDisablePortTest, NullIsRefusedInSilence)
{
    EXPECT_FALSE(PortCtrlDisablePort(nullptr, 80));
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(PortCtrlDisablePortTest, AFailureOfAnyCallEndsNoWalk)
{
    Plug("eth0", "10.0.0.2", "fd00:0000:0000:0000:0000:0000:0000:0002");
    Plug("eth1", "10.0.1.2", "");
    static bool done;
    FailEachCall([] { done = PortCtrlDisablePort("0.0.0.0", 80); },
                 [](const std::string& failed) {
                     const bool listed =
                         !Logged(Error("PortCtrlDisablePort", "GetAllInterfaceInfo failed"));
                     EXPECT_EQ(done, listed);
                     // Of three addresses at most one is missed, when there are names at all.
                     const bool named = listed && failed != "pread /proc/net/dev";
                     EXPECT_GE(Commands().size(), named ? 4U : 0U);
                 });
}

}  // namespace
