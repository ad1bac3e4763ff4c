// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Answers that a kernel may give and rarely does: descriptor 0, a result above 0, half a datagram,
// a disk that takes a part, a file that grows while it is read, a table that changes between two
// readings. The whole ring runs with the first two as well (VORLIX_ODD_ANSWERS).

#include "LanriseWorld.h"
#include "Steps.h"
#include "fake/Odd.h"
#include "fake/Rtnetlink.h"

#include "Arp_Ping.h"
#include "Backup.h"
#include "Base.h"
#include "Bond.h"
#include "Bridge.h"
#include "CommonApi.h"
#include "Config.h"
#include "Dns.h"
#include "Lanrise.h"
#include "NetApi3_0.h"
#include "Netlink.h"
#include "Network.h"
#include "Network6.h"
#include "Other.h"
#include "Route.h"
#include "Support/KeyFile.h"
#include "Switch.h"
#include "TrafficControl.h"

#include <cerrno>
#include <netinet/in.h>

using namespace fake;

namespace {

class OddAnswerTest : public World {
protected:
    void SetUp() override
    {
        World::SetUp();
        kernel.Add("eth0").address = "10.0.0.2";
    }
};

// ---- descriptor 0

TEST_F(OddAnswerTest, DescriptorZeroIsAControlSocketLikeAnyOther)
{
    AnswerOddly(Odd::descriptors);
    EXPECT_TRUE(InterfaceUp("eth0"));
    EXPECT_TRUE(InterfaceDown("eth0"));
    EXPECT_EQ(TraceOf({"socket"}), Texts{"socket AF_INET"});
    EXPECT_EQ(OpenHandles(), Texts{"socket AF_INET 2 0"});
}

TEST_F(OddAnswerTest, DescriptorZeroIsARoutesSocketLikeAnyOther)
{
    AnswerOddly(Odd::descriptors);
    EXPECT_TRUE(Route_AddIPv4Route("10.1.0.0", "0.0.0.0", "255.255.0.0", "eth0"));
    EXPECT_TRUE(Route_DelIPv4Route("10.1.0.0", "0.0.0.0", "255.255.0.0", "eth0"));
    EXPECT_EQ(TraceOf({"socket"}), Texts{"socket AF_INET"});
}

TEST_F(OddAnswerTest, DescriptorZeroIsAKeptTableLikeAnyOther)
{
    AnswerOddly(Odd::files);
    kernel.routes = {{"10.1.0.0", "0.0.0.0", "255.255.0.0", "eth0"}};
    for (int i = 0; i < 3; ++i) {
        IPv4Route rows[4];
        int count = 4;
        EXPECT_TRUE(Route_GetIPv4Route(rows, &count));
        EXPECT_EQ(count, 1);
    }
    EXPECT_EQ(OpenHandles(), Texts{"open /proc/net/route O_RDONLY"});
}

TEST_F(OddAnswerTest, DescriptorZeroIsALockedFileLikeAnyOther)
{
    AnswerOddly(Odd::files);
    Put(CardFile("eth0"), "MTU = 1400\n");
    int mtu = 0;
    EXPECT_TRUE(GetMtuByConfig("eth0", &mtu));
    EXPECT_TRUE(SetMtuByConfig("eth0", 1300));
    EXPECT_EQ(mtu, 1400);
    EXPECT_EQ(Get(CardFile("eth0")), "MTU = 1300\n");
    EXPECT_EQ(OpenHandles(), Texts{});
    EXPECT_EQ(HeldMutexes(), 0);
}

TEST_F(OddAnswerTest, DescriptorZeroIsASyncedFileLikeAnyOther)
{
    AnswerOddly(Odd::files);
    EXPECT_TRUE(SetMtuByConfig("eth0", 1300));  // a first setting: nothing else is open
    EXPECT_EQ(TraceOf({"fsync"}), Texts{"fsync " + CardFile("eth0")});
    EXPECT_EQ(
        LogOf("SetValueByKey"),
        LogLines{Error("SetValueByKey", "cannot fopen for read.[No such file or directory]")});
}

TEST_F(OddAnswerTest, DescriptorZeroIsAProbesSocketLikeAnyOther)
{
    AnswerOddly(Odd::descriptors);
    EXPECT_EQ(
        Arp_Ckeck("eth0", "10.0.0.2", "02:00:00:00:00:01", "10.0.0.9", "ff:ff:ff:ff:ff:ff", 1), 0);
    EXPECT_EQ(wire.sent.size(), 3U);
    EXPECT_EQ(OpenHandles(), Texts{});
    EXPECT_EQ(LogOf("CreatPFRawSock"), LogLines{});
}

TEST_F(OddAnswerTest, DescriptorZeroIsAPowerSupplyLikeAnyOther)
{
    AnswerOddly(Odd::descriptors);
    Put("/dev/qv_poe", "");
    EXPECT_TRUE(PoE_SetPowerOn(1));
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(OpenHandles(), Texts{});
}

TEST_F(OddAnswerTest, DescriptorZeroIsABondsAttributeLikeAnyOther)
{
    AnswerOddly(Odd::files);
    kernel.Add("bond0");
    Put("/sys/class/net/bond0/bonding/xmit_hash_policy", "");
    EXPECT_TRUE(Bond_SetHashPolicy("bond0", 3));
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(TraceOf({"open /sys"}).size(), 1U);
}

TEST_F(OddAnswerTest, DescriptorZeroIsBoundLikeAnyOther)
{
    AnswerOddly(Odd::descriptors);
    EXPECT_FALSE(Ping_CheckAlive("eth0", "10.0.0.2", "10.0.0.9", 1));
    EXPECT_EQ(TraceOf({"setsockopt", "bind"}).size(), 2U);
    EXPECT_EQ(LogOf("ListenToSocket").size(), 1U);
    EXPECT_EQ(LogOf("CreatAFRawSock"), LogLines{});
}

TEST_F(OddAnswerTest, DescriptorZeroIsAnAttributeLikeAnyOther)
{
    AnswerOddly(Odd::files);
    const std::string folder = "/sys/class/net/bond0/bonding/";
    Put(folder + "slaves", "eth0\n");
    for (const char* attribute : {"active_slave", "primary", "xmit_hash_policy"}) {
        Put(folder + attribute, "eth0\n");
    }
    Put("/sys/class/net/br0/carrier", "1\n");
    MakeFolder("/sys/class/net/br0/brif");
    char name[16];
    EXPECT_TRUE(Bond_GetBondMembers("bond0", nullptr, nullptr));
    EXPECT_TRUE(Bond_HasMember("bond0", "eth0"));
    EXPECT_TRUE(Bond_GetActiveSlave("bond0", name, sizeof(name)));
    EXPECT_TRUE(Bond_SetPrimary("bond0", "eth0"));
    EXPECT_TRUE(Bond_SetHashPolicy("bond0", 1));
    EXPECT_TRUE(Bridge_IsBridgeExist("br0"));
    EXPECT_EQ(OpenHandles(), Texts{});
}

TEST_F(OddAnswerTest, DescriptorZeroIsATableLikeAnyOther)
{
    AnswerOddly(Odd::files);
    Put("/proc/net/arp", "titles\n10.0.0.9 0x1 0x6 02:aa:bb:cc:dd:ee * eth0\n");
    Put("/proc/net/if_inet6", "20010db8000000000000000000000001 02 40 00 80 eth0\n");
    Put("/mnt/mtd/Config/resolv.conf", "nameserver 10.0.0.7\nnameserver 10.0.0.8\n");
    Put("/proc/sys/net/ipv4/route/flush", "");
    NetARPEntry entry{};
    int count = 1;
    EXPECT_TRUE(arpGetAllStaticEntry(&entry, &count));
    EXPECT_EQ(count, 1);
    char first[64];
    char second[64];
    EXPECT_TRUE(Net6_GetIPv6byName("eth0", first, sizeof(first), second, sizeof(second)));
    EXPECT_TRUE(GetIPv4DnsServer(first, second));
    Route_Flush_Cache();
    EXPECT_EQ(Get("/proc/sys/net/ipv4/route/flush"), "-1");
    EXPECT_EQ(OpenHandles(), Texts{});
}

/// The backup of an address on the one device that there is.
void BackUpAndRestore(const std::string& device, bool (*reset)())
{
    AnswerOddly(Odd::files);
    Put(device, "");
    CheckDeviceType();
    EXPECT_TRUE(reset());
    EXPECT_TRUE(BackupIP("eth0", "10.0.0.3"));
    char address[16] = "";
    EXPECT_TRUE(RestoreIP("eth0", address));
    EXPECT_STREQ(address, "10.0.0.3");
    CheckDeviceType();
    EXPECT_EQ(TraceOf({"open " + device}).size(), 1U);
}

TEST_F(OddAnswerTest, DescriptorZeroIsAnSramLikeAnyOther)
{
    BackUpAndRestore("/dev/pdcSramFile", ResetSram);
}

TEST_F(OddAnswerTest, DescriptorZeroIsAnRtcLikeAnyOther)
{
    BackUpAndRestore("/dev/pdcRtc", ResetRTC);
}

/// The switch of the spanning tree, turned by an object of version 3.
int TurnTree()
{
    NetInterface card{};
    STPInfo info{};
    info.enable = 1;
    return API3_setSTP(&card, &info);
}

TEST_F(OddAnswerTest, DescriptorZeroIsTheTreesSwitchLikeAnyOther)
{
    AnswerOddly(Odd::files);
    Put("/proc/stp_ctrl", "");
    EXPECT_EQ(TurnTree(), 0);
    EXPECT_EQ(TurnTree(), 0);
    EXPECT_EQ(TraceOf({"open /proc/stp_ctrl"}).size(), 1U);
}

TEST_F(OddAnswerTest, ASwitchThatTakesAPartIsAFailure)
{
    Put("/proc/stp_ctrl", "");
    Shorten("write /proc/stp_ctrl", 1);
    EXPECT_EQ(TurnTree(), -1);
    EXPECT_EQ(TurnTree(), 0);
}

// ---- results above 0

TEST_F(OddAnswerTest, AResultAboveZeroIsASuccess)
{
    AnswerOddly(Odd::results);
    EXPECT_TRUE(InterfaceUp("eth0"));
    EXPECT_GE(Net6_GetInterfaceIndex("eth0"), 0);
    EXPECT_TRUE(InterfaceIpIsExist("eth0"));
    EXPECT_TRUE(InterfaceIsLink("eth0"));
    EXPECT_TRUE(Route_AddIPv4Route("10.1.0.0", "0.0.0.0", "255.255.0.0", "eth0"));
    EXPECT_TRUE(Route_DelIPv4Route("10.1.0.0", "0.0.0.0", "255.255.0.0", "eth0"));
    EXPECT_TRUE(Route_AddIPv6Route("2001:db8::", "fe80::1", "64", "eth0"));
    EXPECT_TRUE(BindToDevice(1, "eth0"));
    EXPECT_TRUE(BindIPPort(1, "10.0.0.2", 0));
    EXPECT_EQ(LogOf("InterfaceIsLink"), LogLines{});
    EXPECT_EQ(LogOf("NetIOCtrl"), LogLines{});
    EXPECT_EQ(LogOf("NetIOCtrlv6"), LogLines{});
    EXPECT_EQ(LogOf("Route_SetIPv4Route"), LogLines{});
    EXPECT_EQ(LogOf("Route_SetIPv6Route"), LogLines{});
}

// ---- parts

TEST_F(OddAnswerTest, AnAttributeThatTakesAPartIsAFailure)
{
    Put("/sys/class/net/bond0/bonding/xmit_hash_policy", "");
    for (const size_t part : {size_t{0}, size_t{1}}) {
        Shorten("write /sys/class/net/bond0/bonding/xmit_hash_policy", part);
        EXPECT_FALSE(Bond_SetHashPolicy("bond0", 3)) << part;
        EXPECT_EQ(OpenHandles(), Texts{});
    }
    EXPECT_TRUE(Bond_SetHashPolicy("bond0", 3));
}

TEST_F(OddAnswerTest, ASettingIsFoundHoweverSmallThePiecesAre)
{
    AnswerOddly(Odd::pieces);
    Put(CardFile("eth0"), Settings({"MTU = 1400", "HOSTIP = 10.0.0.7", "SUBMASK = 255.0.0.0",
                                    "GATEWAYIP = 10.0.0.1"}));
    char address[16] = {};
    char mask[16] = {};
    EXPECT_TRUE(GetIPByConfig("eth0", address, mask));
    EXPECT_STREQ(address, "10.0.0.7");
    EXPECT_STREQ(mask, "255.0.0.0");
}

TEST_F(OddAnswerTest, AReadThatIsInterruptedIsTakenUpAgain)
{
    Put(CardFile("eth0"), "MTU = 1400\n");
    for (int i = 0; i < 3; ++i) Fail("pread " + CardFile("eth0"), EINTR);
    int mtu = 0;
    EXPECT_TRUE(GetMtuByConfig("eth0", &mtu));
    EXPECT_EQ(mtu, 1400);
}

TEST_F(OddAnswerTest, AFileThatGrowsWhileItIsReadIsReadToItsNewEnd)
{
    AnswerOddly(Odd::pieces);
    Put("/mnt/mtd/Config/resolv.conf", "nameserver 10.0.0.7\n");
    Put("/mnt/mtd/Config/resolvip6.conf", "");
    OnCall("pread /mnt/mtd/Config/resolv.conf", [] {
        Put("/mnt/mtd/Config/resolv.conf", "nameserver 10.0.0.7\nnameserver 10.0.0.8\n");
    });
    char primary[16] = {};
    char secondary[16] = {};
    EXPECT_TRUE(GetIPv4DnsServer(primary, secondary));
    EXPECT_STREQ(secondary, "10.0.0.8");
}

TEST_F(OddAnswerTest, ATableThatShrinksBetweenTwoReadingsEndsThere)
{
    for (int i = 0; i < 8; ++i) {
        kernel.routes.push_back(
            {"10." + std::to_string(i) + ".0.0", "0.0.0.0", "255.255.0.0", "eth0"});
    }
    Put("/proc/net/route", "");
    OnCall("pread /proc/net/route", [] { Put("/proc/net/route", "Iface\tDestination\n"); });
    IPv4Route rows[4];
    int count = 4;
    EXPECT_TRUE(Route_GetIPv4Route(rows, &count));
    EXPECT_EQ(count, 0);
}

// ---- datagrams

TEST_F(OddAnswerTest, AnEmptyDatagramIsNoAnswerAndTheNextIsHeard)
{
    wire.arrivals = {{{}, "10.0.0.9"}, {{}, ""}, {Bytes(3, 0xff), "10.0.0.9"}};
    EXPECT_FALSE(Ping_CheckAlive("eth0", "10.0.0.2", "10.0.0.9", 1));
    EXPECT_TRUE(wire.arrivals.empty());
    EXPECT_EQ(OpenHandles(), Texts{});
}

TEST_F(OddAnswerTest, AnEmptyFrameIsNoConflict)
{
    wire.arrivals = {{{}, ""}, {Bytes(10, 0), ""}};
    EXPECT_EQ(
        Arp_Ckeck("eth0", "10.0.0.2", "02:00:00:00:00:01", "10.0.0.9", "ff:ff:ff:ff:ff:ff", 1), 0);
    EXPECT_TRUE(wire.arrivals.empty());
}

TEST_F(OddAnswerTest, AMessageThatIsSentInPartIsASentMessage)
{
    rtnl_handle handle{};
    ASSERT_EQ(rtnl_open(&handle), 0);
    struct {
        nlmsghdr header;
    } request{};
    request.header.nlmsg_len = sizeof(request);
    Shorten("sendmsg", 1);
    EXPECT_EQ(rtnl_talk(&handle, &request.header, 0, 0, nullptr, nullptr, nullptr), 0);
}

// ---- memory

TEST_F(OddAnswerTest, ClaimsAreGivenBack)
{
    Put(CardFile("eth1"), "BONDED = 1\nBONDNAME = bond0\nBRIDGEEDED = 1\nBRIDGENAME = br1\n");
    List({"eth1", "bond0"});
    EXPECT_TRUE(CheckBondConfig());
    EXPECT_TRUE(CheckBridgeConfig());
    EXPECT_EQ(TraceOf({"calloc", "malloc"}).size(), 2U);
    EXPECT_EQ(HeapBlocks(), 0U);
}

TEST_F(OddAnswerTest, AnAttributeListedOnTheHeapIsGivenBack)
{
    NetRouteTableInfo routes[4] = {};
    int count = 4;
    EXPECT_TRUE(RouteGetAllInfo(routes, &count));
    EXPECT_EQ(HeapBlocks(), 0U);
    Fail("open /proc/net/route", EIO);
    count = 4;
    (void)RouteGetAllInfo(routes, &count);
    EXPECT_EQ(HeapBlocks(), 0U);
}

}  // namespace
