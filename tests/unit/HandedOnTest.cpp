// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// What a caller, a file or the kernel gives is handed on as it is: not masked, not refused, not
// taken for something else. Values here are those that a test would not take by itself: beyond a
// byte, beyond a sign, with a word around them.

#include "InterfaceWorld.h"
#include "ProbeWorld.h"
#include "Steps.h"
#include "fake/Cmos.h"
#include "fake/Rtnetlink.h"

#include "Arp_Ping.h"
#include "Bond.h"
#include "Bridge.h"
#include "CommonApi.h"
#include "Config.h"
#include "NetApi2_0.h"
#include "NetApi3_0.h"
#include "Netlink.h"
#include "Network.h"
#include "Network6.h"
#include "Other.h"
#include "Route.h"
#include "Switch.h"
#include "TrafficControl.h"

#include <cerrno>
#include <cstring>

#include <linux/rtnetlink.h>
#include <net/if.h>
#include <unistd.h>

using namespace fake;

namespace {

class HandedOnTest : public InterfaceWorld {};

// ---- settings

TEST_F(HandedOnTest, ALostSubInterfaceMayHaveAnyNameBehindItsPoint)
{
    for (const char* lost : {"eth0.5", "eth0.lan", "eth0."}) {
        Put(kFile0, "DEFAULT_ETH = " + std::string(lost) + "\n");
        kernel.cards.remove_if([](const Card& card) { return card.name.find('.') == 4; });
        char card[16];
        EXPECT_TRUE(GetDefaultEthByConfig(card, sizeof(card)));
        EXPECT_STREQ(card, "eth0") << lost;
    }
}

// ---- routing sockets

rtmsg LastRoute()
{
    rtmsg route{};
    memcpy(&route, rtnetlink.requests.back().data() + sizeof(nlmsghdr), sizeof(route));
    return route;
}

TEST_F(HandedOnTest, ALengthBeyondAnAddressIsTheKernelsToRefuse)
{
    EXPECT_EQ(Netlink_IPv4Route(RTM_NEWROUTE, 0, 40, "10.9.0.0", nullptr, nullptr, "eth0", 0), 0);
    EXPECT_EQ(LastRoute().rtm_dst_len, 40);
}

TEST_F(HandedOnTest, TheDefaultDestinationIsOneOfThreeWholeWords)
{
    for (const char* word : {"defaults", "default ", "anyone", "al", "DEFAULT", ""}) {
        EXPECT_EQ(Netlink_IPv4Route(RTM_NEWROUTE, 0, 0, word, nullptr, nullptr, "eth0", 0), -1);
    }
    EXPECT_TRUE(rtnetlink.requests.empty());
}

TEST_F(HandedOnTest, AnAddressOfZerosIsADestinationAndAGatewayLikeAnyOther)
{
    EXPECT_EQ(Netlink_IPv4Route(RTM_NEWROUTE, 0, 0, "0.0.0.0", nullptr, "0.0.0.0", "eth0", 0), 0);
    EXPECT_EQ(LastRoute().rtm_scope, RT_SCOPE_UNIVERSE);
    // The header, the route and three attributes of one word each: gateway, destination, card.
    EXPECT_EQ(rtnetlink.requests.back().size(), 28U + 3 * 8);
}

TEST_F(HandedOnTest, EmptyAndLongNamesAreTheKernelsToRefuse)
{
    std::string host = "eth0";
    for (std::string name : {std::string(), std::string(16, 'v'), std::string(40, 'v')}) {
        EXPECT_EQ(Netlink_Ipv4Link_IpVlan(RTM_NEWLINK, host.data(), name.data(), 0, 0), 0);
        EXPECT_EQ(Netlink_Ipv4Link_MacVlan(RTM_DELLINK, host.data(), name.data(), 1, 0, 0, nullptr),
                  0);
    }
    EXPECT_EQ(rtnetlink.requests.size(), 6U);
    ClearLog();
    EXPECT_EQ(Netlink_IPv4Route(RTM_NEWROUTE, 0, 0, "all", nullptr, nullptr, "", 0), 0);
    EXPECT_TRUE(Logged(Error("xll_name_to_index", "can't find device '' ")));
}

TEST_F(HandedOnTest, TheTypeOfAnAttributeHasSixteenBits)
{
    for (const int32_t type : {0x3fff, 0x4001, 0x8001, 0xffff}) {
        uint32_t message[8] = {sizeof(nlmsghdr)};
        EXPECT_EQ(addattr8(reinterpret_cast<nlmsghdr*>(message), sizeof(message), type, 1), 0);
        rtattr attribute{};
        memcpy(&attribute, message + 4, sizeof(attribute));
        EXPECT_EQ(attribute.rta_type, type);
        EXPECT_EQ(attribute.rta_len, 5);
    }
}

TEST_F(HandedOnTest, AnIndexIsHandedOnWholeAndByWhateverResult)
{
    AnswerOddly(Odd::results);
    kernel.At("eth0").index = 70000;
    EXPECT_EQ(xll_name_to_index("eth0"), 70000);
    EXPECT_EQ(Net6_GetInterfaceIndex("eth0"), 70000);
}

TEST_F(HandedOnTest, AnIndexIsAskedForOnDescriptor0Too)
{
    AnswerOddly(Odd::descriptors);
    EXPECT_GT(xll_name_to_index("eth0"), 0);
}

TEST_F(HandedOnTest, ARequestKeepsOffTheStandardStreams)
{
    AnswerOddly(Odd::nothing);  // which numbers are free is said here
    for (const int stream : {STDIN_FILENO, STDERR_FILENO}) {
        const int kept = dup(stream);
        close(stream);
        ClearTrace();
        EXPECT_EQ(Netlink_IPv4Rule(RTM_NEWRULE, "10.0.0.9", 100, 0), 0);
        EXPECT_EQ(TraceOf({"socket AF_NETLINK"}).size(), 2U) << stream;
        dup2(kept, stream);
        close(kept);
    }
}

/// An exchange on a handle of its own.
int Talk()
{
    rtnl_handle handle{};
    EXPECT_EQ(rtnl_open(&handle), 0);
    nlmsghdr request{};
    request.nlmsg_len = sizeof(request);
    return rtnl_talk(&handle, &request, 0, 0, nullptr, nullptr, nullptr);
}

TEST_F(HandedOnTest, EveryErrorOfAReceiveButAnInterruptionIsTold)
{
    for (const int error : {EAGAIN, ENOBUFS, EINTR, ENOMEM}) Fail("recvmsg", error);
    EXPECT_EQ(Talk(), 0);
    EXPECT_EQ(LogOf("rtnl_talk"), LogLines(3, Error("rtnl_talk", "OVERRUN")));
}

TEST_F(HandedOnTest, AMessageThatWasSentToNoLengthIsASentMessage)
{
    Shorten("sendmsg", 0);
    EXPECT_EQ(Talk(), 0);
}

TEST_F(HandedOnTest, ASequenceBeginsBehindAClockBeyondItsSign)
{
    SetClock(0xF0000000L);
    EXPECT_EQ(Talk(), 0);
    nlmsghdr sent{};
    memcpy(&sent, rtnetlink.requests.back().data(), sizeof(sent));
    EXPECT_EQ(sent.nlmsg_seq, 0xF0000001U);
    EXPECT_EQ(sent.nlmsg_flags, NLM_F_ACK);
}

// ---- neighbours

TEST_F(HandedOnTest, AnAddressOfZerosIsLookedForLikeAnyOther)
{
    kernel.neighbours = {{"10.0.0.9", "00:00:00:00:00:00", "eth0", 0}};
    char ip[16] = "";
    EXPECT_TRUE(Other_GetIPByMac("00:00:00:00:00:00", ip));
    EXPECT_STREQ(ip, "10.0.0.9");
}

// ---- routes

TEST_F(HandedOnTest, ALengthIsComparedWholeAndNotByItsLowByte)
{
    kernel.routes6 = {{"2001:db8:1::", 48, "fe80::1", "eth0"}};
    EXPECT_TRUE(RouteAddIPv6("2001:db8:1::", "fe80::1", "48", "eth0"));
    EXPECT_EQ(LogOf("RouteAddIPv6").size(), 2U);  // it is there
    EXPECT_FALSE(RouteAddIPv6("2001:db8:1::", "fe80::1", "304", "eth0"));
}

TEST_F(HandedOnTest, ALengthBeyondAnAddressIsRefusedByTheRecordAndNotBefore)
{
    kernel.routes6 = {{"2001:db8:1::", 48, "fe80::1", "eth0"}};
    for (const char* length : {"304", "129", "-1", "-208"}) {
        ClearLog();
        EXPECT_FALSE(RouteAddIPv6("2001:db8:2::", "fe80::1", length, "eth0")) << length;
        EXPECT_EQ(LogOf("Route_AddIPv6Route").size(), 1U) << length;
        EXPECT_FALSE(Route_DelIPv6Route("2001:db8:1::", "fe80::1", length, "eth0")) << length;
    }
    EXPECT_EQ(TraceOf({"ioctl SIOCADDRT", "ioctl SIOCDELRT"}), Texts{});
}

TEST_F(HandedOnTest, ARowIsListedWithItsWholeLength)
{
    const std::string zeros(32, '0');
    Put("/proc/net/ipv6_route", "20010db8000000000000000000000000 130 " + zeros + " 00 " + zeros +
                                    " 00000400 00000000 00000000 00000001     eth0\n");
    NetRouteTableInfo route{};
    route.type = 1;
    int count = 1;
    ASSERT_TRUE(RouteGetAllInfo(&route, &count));
    ASSERT_EQ(count, 1);
    EXPECT_EQ(route.mask, 0x130U);
}

TEST_F(HandedOnTest, ADestinationOfZerosIsADefaultOfWhateverLength)
{
    kernel.routes = {{"0.0.0.0", "10.0.0.1", "128.0.0.0", "eth0"}};
    kernel.routes6 = {{"::", 96, "fe80::1", "eth0"}};
    EXPECT_TRUE(RouteDelAllIPv4("eth0"));
    EXPECT_TRUE(RouteDelAllIPv6("eth0"));
    EXPECT_EQ(TraceOf({"ioctl SIOCDELRT"}), Texts{});
    (void)RouteDelDefIPv4("eth0");
    (void)RouteDelDefIPv6("eth0");
    EXPECT_EQ(TraceOf({"ioctl SIOCDELRT"}).size(), 2U);
}

TEST_F(HandedOnTest, AGatewayOfZerosIsSetLikeAnyOther)
{
    Put(kFile0, "GATEWAYIP = 0.0.0.0\n");
    (void)NetSetDefEth("eth0");
    EXPECT_EQ(TraceOf({"ioctl SIOCADDRT"}).size(), 1U);
}

TEST_F(HandedOnTest, OnlyTheVeryTextIsNoGateway)
{
    for (const char* gateway : {"::5", "::0", "0::", "0:0:0::0"}) {
        in6_rtmsg record{};
        EXPECT_TRUE(Route_FillIn6_rtmsg("2001:db8::", gateway, 64, "eth0", &record)) << gateway;
        EXPECT_EQ(record.rtmsg_flags, uint32_t{RTF_UP | RTF_GATEWAY}) << gateway;
    }
    for (const char* zeros : {"0", "0.0", "00.0.0.0", "0.0.0.00"}) {
        rtentry record{};
        EXPECT_TRUE(Route_FillRtentry("10.9.0.0", zeros, zeros, "eth0", &record)) << zeros;
        EXPECT_EQ(record.rt_flags, RTF_UP | RTF_GATEWAY) << zeros;
        EXPECT_EQ(record.rt_gateway.sa_family, AF_INET) << zeros;
        EXPECT_EQ(record.rt_genmask.sa_family, AF_INET) << zeros;
    }
}

TEST_F(HandedOnTest, AnEmptyNameIsAskedForItsGateway)
{
    FailAll("open /proc/net/route", EIO);
    EXPECT_FALSE(RouteDelDefIPv4(""));
    EXPECT_TRUE(Logged(Error("RouteDelDefIPv4", "Can not get  default gw.")));
}

TEST_F(HandedOnTest, ARowIsComparedAsItIsListed)
{
    kernel.routes = {{"10.0.0.5", "0.0.0.0", "255.0.0.0", "eth0"}};
    EXPECT_FALSE(Route_IsExistInSys("10.0.0.5", "0.0.0.0", "255.0.0.0", "eth0"));
    kernel.routes = {{"10.0.0.0", "10.0.0.1", "255.0.0.0", "eth0"}};
    EXPECT_FALSE(Route_IsExistInSys("10.0.0.5", "0.0.0.0", "255.0.0.0", "eth0"));
    EXPECT_TRUE(Route_IsExistInSys("10.0.0.5", "10.0.0.1", "255.0.0.0", "eth0"));
}

TEST_F(HandedOnTest, ADigitIsOneOfSixteen)
{
    for (const char* digit : {"G", "g", "@", ":", "/", "`", "Z"}) {
        Put("/proc/net/route", "Iface\tDestination\tGateway\neth0\t0000000" + std::string(digit) +
                                   "\t0100000A\t0003\t0\t0\t0\t000000FF\t0\t0\t0\n");
        IPv4Route row{};
        row.gw = 7;
        int count = 1;
        EXPECT_TRUE(Route_GetIPv4Route(&row, &count));
        EXPECT_EQ(count, 1);
        EXPECT_EQ(row.dst, 0U) << digit;
        EXPECT_EQ(row.gw, 7U) << digit;  // the line ends there
    }
}

TEST_F(HandedOnTest, TheRoutesAreFlushedOnDescriptor0Too)
{
    Put("/proc/sys/net/ipv4/route/flush", "");
    AnswerOddly(Odd::files);
    Route_Flush_Cache();
    EXPECT_EQ(Get("/proc/sys/net/ipv4/route/flush"), "-1");
}

// ---- links and addresses of a card

TEST_F(HandedOnTest, WhatACardIsSetToGoesOutAsItStands)
{
    EXPECT_TRUE(Net_SetMacbyName("eth0", "01:00:5e:00:00:09"));
    EXPECT_EQ(kernel.At("eth0").mac, "01:00:5e:00:00:09");
    EXPECT_TRUE(Net_SetIPbyName("eth0", "10.0.0.2", "0.0.0.0"));
    EXPECT_EQ(TraceOf({"ioctl SIOCSIFNETMASK"}).size(), 1U);
    EXPECT_EQ(kernel.At("eth0").mask, "0.0.0.0");
    for (const char* address : {"0.0.0.1", "0.1.0.0", "1.0.0.0"}) {
        EXPECT_TRUE(Net_SetIPbyName("eth0", address, "255.0.0.0"));
        EXPECT_EQ(kernel.At("eth0").mask, "255.0.0.0") << address;
        kernel.At("eth0").mask = "";
    }
    for (const char* address : {"1::", "0:0:1::", "0:0:0:0:1::", "::1"}) {
        ClearTrace();
        EXPECT_TRUE(Net6_SetIPv6byName("eth0", address, "64"));
        EXPECT_EQ(TraceOf({"ioctl SIOCSIFADDR"}).size(), 1U) << address;
    }
}

TEST_F(HandedOnTest, WhatTheKernelTellsOfACardIsToldAsItStands)
{
    Card& card = kernel.At("eth0");
    card.address = "0.0.0.0";
    card.mask = "0.0.0.0";
    char address[16] = "";
    char mask[16] = "";
    EXPECT_TRUE(Net_GetIPbyName("eth0", address, mask));
    EXPECT_STREQ(address, "0.0.0.0");
    EXPECT_STREQ(mask, "0.0.0.0");
    for (const int size : {65536, 0x7fffffff, 0, -1}) {
        card.mtu = size;
        int mtu = 1234;
        EXPECT_TRUE(Net_GetMtubyName("eth0", &mtu));
        EXPECT_EQ(mtu, size);
    }
    for (const uint32_t link : {1U, 2U, 0x100U, 0x80000000U, 0xffffffffU}) {
        card.link = link;
        EXPECT_TRUE(Net_MiiDiag("eth0")) << link;
    }
}

TEST_F(HandedOnTest, AnEmptyNameIsAskedFor)
{
    int speed = 0;
    EXPECT_FALSE(Net_GetLinkSpeed("", &speed));
    EXPECT_TRUE(Logged(Error("Net_GetLinkSpeed", "ETHTOOL_GSET get failed.[]")));
    NetDataStat stat{};
    EXPECT_FALSE(Net_GetDataStat("", &stat));
    EXPECT_TRUE(Logged(Error("Net_GetDataStat", "can not find .")));
    EXPECT_FALSE(BridgeByInterNic(""));
    EXPECT_TRUE(Logged(Error("Bridge_IsBridgeExist", "bridge  is not exist.")));
}

TEST_F(HandedOnTest, AnAddressCountsWhateverItsFlags)
{
    for (const char* flags : {"01", "02", "08", "20", "40", "80", "c8"}) {
        Put("/proc/net/if_inet6",
            "20010db8000000000000000000000002 02 40 00 " + std::string(flags) + "     eth0\n");
        char address[48] = "";
        char prefix[8] = "";
        EXPECT_TRUE(Net6_GetIPv6byName("eth0", address, 48, prefix, 8)) << flags;
        EXPECT_STREQ(address, "2001:db8::2") << flags;
    }
}

TEST_F(HandedOnTest, AnAddressCountsWhateverItsPrefix)
{
    for (const auto& [digits, text] :
         {std::pair{"00", "0"}, {"7f", "127"}, {"80", "128"}, {"c8", "200"}, {"ff", "255"}}) {
        Put("/proc/net/if_inet6",
            "20010db8000000000000000000000002 02 " + std::string(digits) + " 00 80     eth0\n");
        char address[48] = "";
        char prefix[8] = "";
        EXPECT_TRUE(Net6_GetIPv6byName("eth0", address, 48, prefix, 8)) << digits;
        EXPECT_STREQ(prefix, text);
    }
}

TEST_F(HandedOnTest, AnAddressOfAnotherScopeOrAnotherCardIsNone)
{
    const auto line = [](const char* scope, const char* card) {
        return "20010db8000000000000000000000002 02 40 " + std::string(scope) + " 80     " + card +
               "\n";
    };
    char address[48] = "";
    char prefix[8] = "";
    for (const char* scope : {"01", "05", "0f", "10", "40", "21", "a0"}) {
        Put("/proc/net/if_inet6", line(scope, "eth0"));
        EXPECT_FALSE(Net6_GetIPv6byName("eth0", address, 48, prefix, 8)) << scope;
        EXPECT_FALSE(Net6_GetAddressInfo("eth0", address, 48, prefix, 8, 32)) << scope;
    }
    for (const char* card : {"ETH0", "eth", "eth00", "xeth0"}) {
        Put("/proc/net/if_inet6", line("00", card));
        EXPECT_FALSE(Net6_GetIPv6byName("eth0", address, 48, prefix, 8)) << card;
    }
}

TEST_F(HandedOnTest, EveryRefusalOfAnAddressIsOne)
{
    for (const int error : {EEXIST, EACCES, EADDRNOTAVAIL, EINVAL}) {
        Fail("ioctl SIOCSIFADDR", error);
        EXPECT_FALSE(Net6_SetIPv6byName("eth0", "2001:db8::2", "64")) << error;
    }
    EXPECT_EQ(LogOf("Net6_SetIPv6byName"),
              LogLines(4, Error("Net6_SetIPv6byName", "Set ip failed eth0:2001:db8::2")));
}

TEST_F(HandedOnTest, APrefixIsHandedOnBeyondAByte)
{
    kernel.At("eth0").addresses6 = {{"2001:db8::2", 64, 0}, {"2001:db8::9", 44, 0}};
    EXPECT_FALSE(Net6_DelIPAddressIpv6("eth0", "2001:db8::9", "300"));
    EXPECT_EQ(kernel.At("eth0").addresses6.size(), 2U);
}

TEST_F(HandedOnTest, LessThanNoPortsAreAnEmptyList)
{
    MakeFolder("/sys/class/net/br0/brif");
    Put("/sys/class/net/br0/carrier", "1\n");
    const char* ports[] = {"eth0"};
    EXPECT_TRUE(BridgeUpdatePortListByConfig("br0", ports, -1));
    EXPECT_EQ(Get("/mnt/mtd/Config/rsbridgeinit.conf"), "SSIF = \n");
    EXPECT_FALSE(BridgeUpdatePortListByConfig("br0", ports, 0));
}

TEST_F(HandedOnTest, AModeIsLookedAtWhole)
{
    for (const int mode : {7, 255, 256, 262, 0x10000, -1}) {
        EXPECT_FALSE(Bond_SetBondMode("bond0", static_cast<NICBondMode>(mode)));
        EXPECT_EQ(Log().back(),
                  Error("Bond_SetBondMode", "Unknown mode " + std::to_string(mode) + "\n"));
    }
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(HandedOnTest, AnEmptyMemberIsGivenToTheToolsLikeAnyOther)
{
    kernel.Add("bond0");
    const char* cards[] = {"eth1", "", "eth0"};
    EXPECT_TRUE(Bond_Bond("bond0", cards, 3));
    EXPECT_EQ(Commands().back(), "ifenslave bond0 eth1  eth0");
    EXPECT_TRUE(Bond_Unbond("bond0", cards, 3));
    EXPECT_EQ(Commands()[Commands().size() - 2], "ifenslave -d bond0 eth1  eth0");
}

TEST_F(HandedOnTest, AnyNameIsLookedForAmongTheMembers)
{
    Put("/sys/class/net/bond0/bonding/slaves", "eth1\n");
    EXPECT_FALSE(Bond_HasMember("bond0", ""));
    EXPECT_EQ(TraceOf({"open /sys/class/net/bond0/bonding/slaves"}).size(), 1U);
    Put("/sys/class/net/a/b/bonding/slaves", "eth1\n");
    EXPECT_TRUE(Bond_GetBondMembers("a/b", nullptr, nullptr));
}

TEST_F(HandedOnTest, ANameWithAPointHasNoMembersWithOrWithoutAList)
{
    for (const char* bond : {"bond0.5", ".bond0", "bond0.", "."}) {
        ClearTrace();
        int count = 3;
        EXPECT_FALSE(Bond_GetBondMembers(bond, nullptr, &count)) << bond;
        EXPECT_EQ(count, 0) << bond;
        EXPECT_FALSE(Bond_GetBondMembers(bond, nullptr, nullptr)) << bond;
        EXPECT_EQ(Trace(), Texts{}) << bond;
    }
}

TEST_F(HandedOnTest, AMemberOfMoreCharactersStaysInItsBuffer)
{
    Put("/sys/class/net/bond0/bonding/slaves", "eth0123456789abcd\n");
    char buffer[17];
    memset(buffer, '#', sizeof(buffer));
    char* members[] = {buffer};
    int count = 1;
    EXPECT_TRUE(Bond_GetBondMembers("bond0", members, &count));
    EXPECT_STREQ(buffer, "eth0123456789ab");
    EXPECT_EQ(buffer[16], '#');
}

TEST_F(HandedOnTest, APortIsToldByItsWholeName)
{
    Put("/sys/class/net/br0/brif/eth1", "");
    Put("/sys/class/net/br0/carrier", "1\n");
    for (const char* port : {"eth10", "eth", "th1", "eth1 ", ""}) {
        EXPECT_FALSE(BridgeAddEdgePort("br0", port)) << port;
        EXPECT_FALSE(BridgeDelEdgePort("br0", port)) << port;
    }
    EXPECT_EQ(Commands(), Texts{});
    EXPECT_TRUE(BridgeAddEdgePort("br0", "eth1"));
}

TEST_F(HandedOnTest, AMissingEntryIsLookedForBeforeAPointInTheName)
{
    char name[16];
    char* members[] = {name, nullptr};
    int count = 2;
    EXPECT_FALSE(Bond_GetBondMembers("bond0.5", members, &count));
    EXPECT_EQ(count, 2);
    members[1] = name;
    EXPECT_FALSE(Bond_GetBondMembers("bond0.5", members, &count));
    EXPECT_EQ(count, 0);
}

// ---- names and texts

TEST_F(HandedOnTest, APortOfTheSwitchHasALinkOnlyWhenItIsThere)
{
    kernel.Add("eth0:poe");
    EXPECT_FALSE(NetMiiDiag("poe7", false));
    EXPECT_TRUE(NetMiiDiag("eth0:poe", false));
}

TEST_F(HandedOnTest, ABlankIsNoEmptyAddress)
{
    EXPECT_FALSE(NetSetIPv6byName("eth0", " ", "64"));
    EXPECT_FALSE(Exists("/mnt/mtd/Config/networkip6"));
}

TEST_F(HandedOnTest, APrefixOfNoLengthIsCutOffAllTheSame)
{
    char text[] = "2001:db8::2/";
    (void)NetDelIPAddressIpv6("eth0", text);
    EXPECT_STREQ(text, "2001:db8::2");
}

TEST_F(HandedOnTest, TheDefaultRouteIsLeftAloneForGood)
{
    Put(kFile0, "GATEWAYIP = 10.0.0.1\n");
    EXPECT_TRUE(RouteControl(1));
    for (const int style : {0, 2, -1}) EXPECT_TRUE(RouteControl(style));
    EXPECT_TRUE(NetSetDefEth("eth0"));
    EXPECT_EQ(TraceOf({"ioctl SIOCADDRT"}), Texts{});
}

TEST_F(HandedOnTest, AsManyVirtualCardsAsAreListedAreBridged)
{
    for (const int count : {31, 32, 33}) {
        kernel.cards.clear();
        for (int i = 0; i < count; ++i) {
            kernel.Add("vnic" + std::to_string(i)).driver = "pcit virt nic";
        }
        ClearTrace();
        EXPECT_TRUE(BridgeByInterNic(nullptr)) << count;
        EXPECT_EQ(TraceOf({"command brctl addif"}).size(),
                  static_cast<size_t>(std::min(count, 32)));
    }
}

// ---- drivers

TEST_F(HandedOnTest, APortBeyondASignIsAPort)
{
    kernel.Add("eth3").chip = SwitchChip{std::vector<SwitchPort>(200)};
    kernel.At("eth3").chip->ports[199].mac = "02:13:57:9b:df:24";
    const unsigned char mac[6] = {2, 0x13, 0x57, 0x9b, 0xdf, 0x24};
    unsigned char asked[1][6];
    memcpy(asked[0], mac, sizeof(mac));
    int port = 0;
    EXPECT_TRUE(Switch_GetPortBymac("eth3", asked, &port, 1));
    EXPECT_EQ(port, 199);
}

TEST_F(HandedOnTest, EveryLinkOfTheMaskIsTold)
{
    kernel.Add("eth3").driver = "sim Switch drv";
    kernel.At("eth3").chip = SwitchChip{std::vector<SwitchPort>(16)};
    for (const int port : {0, 7, 8, 15}) {
        kernel.At("eth3").chip->ports[static_cast<size_t>(port)].link = true;
    }
    int mask = 0;
    EXPECT_TRUE(GetSwitchMask("eth3", &mask));
    EXPECT_EQ(mask, 0x8181);
}

TEST_F(HandedOnTest, OnlyAPortOfNoKindOfItsOwnIsAskedForFibre)
{
    struct Kind {
        uint8_t port;
        bool fibre;
    };
    const Kind kinds[] = {{PORT_TP, false},   {PORT_AUI, false}, {PORT_MII, false},
                          {PORT_FIBRE, true}, {PORT_BNC, false}, {PORT_DA, false},
                          {PORT_NONE, false}, {PORT_OTHER, true}};
    for (const Kind& kind : kinds) {
        ethtool_cmd settings{};
        settings.port = kind.port;
        settings.supported = SUPPORTED_FIBRE;
        kernel.At("eth0").settings = settings;
        NetInterfaceInfo list[8];
        int32_t count = 8;
        ASSERT_EQ(getNetInterfaceList(list, &count), 0);
        EXPECT_EQ(list[0].media == NetInterfaceFiber, kind.fibre) << int{kind.port};
    }
}

TEST_F(HandedOnTest, ABondWhoseModeIsNoNumberIsListedAsActiveBackup)
{
    kernel.Add("bond0");
    Put("/sys/class/net/bond0/bonding/slaves", "eth0\n");
    Put(CardFile("bond0"), "BONDMODE = none\n");
    NetInterfaceDesc desc{};
    desc.name = "bond0";
    NetInterface* bond = nullptr;
    ASSERT_EQ(createNetInterface(&desc, &bond), 0);
    NetInterfaceInfo list[2];
    int count = 2;
    EXPECT_EQ(bond->getBondMembers(bond, list, &count), 0);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(list[0].bond, nicBondActiveBackup);
}

// ---- backup memory and shaping

/// A recorder board whose network has so many bytes of CMOS.
void UseCmosOf(int bytes)
{
    Remove("/dev/pdcRtc");
    cmos.networkStart = 10;
    cmos.networkEnd = static_cast<uint8_t>(10 + bytes - 1);
    CheckDeviceType();
}

TEST_F(HandedOnTest, ARecordThatIsCutGetsItsSumAllTheSame)
{
    UseCmosOf(8);
    CmosData record{};
    record.uiIP = 0x0300000a;
    EXPECT_TRUE(WriteToCmos(&record));
    EXPECT_EQ(record.reserved[0], crc8(reinterpret_cast<const unsigned char*>(&record), 9));
    EXPECT_NE(record.reserved[0], 0);
}

TEST_F(HandedOnTest, AnAddressIsRestoredBesideAMaskOfTooManyBits)
{
    UseCmosOf(12);
    CmosData record{};
    record.uiIP = 0x0300000a;
    record.NetMask = 40;
    record.Flag = 0xA;
    EXPECT_TRUE(WriteToCmos(&record));
    char address[16] = "";
    EXPECT_TRUE(RestoreIP("eth0", address));
    EXPECT_STREQ(address, "10.0.0.3");
    EXPECT_FALSE(RestoreMask("eth0", address));
}

TEST_F(HandedOnTest, AnEmptyNameIsGivenToTheTool)
{
    EXPECT_TRUE(TC_InitDev(""));
    EXPECT_EQ(Commands(),
              (Texts{"/usr/local/bin/tc qdisc del dev  root",
                     "/usr/local/bin/tc qdisc add dev  root handle 1: htb default 10"}));
}

TEST_F(HandedOnTest, EveryFlagButZeroIsAReceiveLimit)
{
    for (const int flags : {1, 2, 255, 256, 0x10000, -1}) {
        NetTc limit{};
        strcpy(limit.ipAddr, "10.0.0.7");
        limit.flags = flags;
        EXPECT_FALSE(TrafCtrlSetBand("eth0", &limit, 1)) << flags;
    }
    EXPECT_EQ(
        LogOf("TrafCtrlSetBand"),
        LogLines(6, Error("TrafCtrlSetBand", "set rcv band faild.dev eth0,ip 10.0.0.7,band 0")));
}

// ---- empty texts of version 2

TEST_F(HandedOnTest, AnEmptyTextIsNotAMissingOne)
{
    EXPECT_EQ(NetSetHostIP("", "255.0.0.0"), -1);
    EXPECT_TRUE(Logged(Error("NetSetHostIP", "NetSetIPByName eth0  255.0.0.0 failed.")));
    EXPECT_EQ(NetSetGateway(""), -1);
    EXPECT_TRUE(Logged(Error("NetSetGateway", "NetSetGatewaybyName eth0  failed.")));
    EXPECT_EQ(NetSetDNSDomain(""), 0);
    EXPECT_EQ(NetSetDNSHostName(""), 0);
    EXPECT_EQ(network_alive(""), -2);
    Put(kFile0, "HOSTIP = 10.0.0.2\nSUBMASK = 255.0.0.0\nGATEWAYIP = 0.0.0.0\n");
    EXPECT_EQ(NetSetDhcpIPRange("eth0", "", "", ""), 0);
    EXPECT_EQ(Get("/mnt/mtd/Config/udhcpd.conf"),
              "start \nend \ninterface eth0\noption  subnet 255.0.0.0\nopt router 0.0.0.0\n"
              "option lease \n");
}

// ---- probes

TEST_F(HandedOnTest, AnAnswerOfNobodyIsNoneOfTheHosts)
{
    kernel.At("eth0").address = "10.0.0.2";
    wire.arrivals = {{EchoReply(), ""}};
    EXPECT_FALSE(Ping_CheckAlive("eth0", "10.0.0.2", "10.0.0.9", 1));
    EXPECT_TRUE(wire.arrivals.empty());
}

TEST_F(HandedOnTest, AnAnswerTellsByItselfWhereItsHeaderEnds)
{
    // A header of no length: the answer begins with its first byte.
    wire.arrivals = {{Icmp(0, OurIdentifier()), "10.0.0.9"}};
    EXPECT_TRUE(Ping_CheckAlive("eth0", "10.0.0.2", "10.0.0.9", 1));
}

}  // namespace
