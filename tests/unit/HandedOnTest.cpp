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
#include "CommonApi.h"
#include "Config.h"
#include "NetApi3_0.h"
#include "Netlink.h"
#include "Other.h"
#include "Switch.h"
#include "TrafficControl.h"

#include <cerrno>
#include <cstring>

#include <linux/rtnetlink.h>

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
    for (const char* word : {"defaults", "default ", "anyone", "al", "DEFAULT"}) {
        EXPECT_EQ(Netlink_IPv4Route(RTM_NEWROUTE, 0, 0, word, nullptr, nullptr, "eth0", 0), -1);
    }
    EXPECT_TRUE(rtnetlink.requests.empty());
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

TEST_F(HandedOnTest, LessThanNoPortsAreAnEmptyList)
{
    MakeFolder("/sys/class/net/br0/brif");
    Put("/sys/class/net/br0/carrier", "1\n");
    const char* ports[] = {"eth0"};
    EXPECT_TRUE(BridgeUpdatePortListByConfig("br0", ports, -1));
    EXPECT_EQ(Get("/mnt/mtd/Config/rsbridgeinit.conf"), "SSIF = \n");
    EXPECT_FALSE(BridgeUpdatePortListByConfig("br0", ports, 0));
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
