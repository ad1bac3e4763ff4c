// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "CommonApi.h"
#include "Netlink.h"
#include "VirtInter.h"

#include "NetlinkWorld.h"

#include <cerrno>

using namespace fake;

namespace {

const char* const kIpVlan = "Netlink_Ipv4Link_IpVlan";
const char* const kMacVlan = "Netlink_Ipv4Link_MacVlan";

// A name of 5 characters on eth0: what all requests for a link begin with behind their header.
const std::string kUp = "00 00 0000 00000000 01000000 01000000";    // IFF_UP, and it counts
const std::string kDown = "00 00 0000 00000000 00000000 01000000";  // not IFF_UP, and it counts
const std::string kNames = "0800 0500 02000000"                     // IFLA_LINK
                           "0a00 0300 6970766c3000 0000";           // IFLA_IFNAME "ipvl0"
const std::string kIpVlanKind = "0b00 0100 6970766c616e00 00";      // IFLA_INFO_KIND "ipvlan"
const std::string kMacVlanKind = "0c00 0100 6d6163766c616e00";      // "macvlan"

/// The parts of a MACVLAN in source mode, without flags, with what stands behind them.
std::string Source(const std::string& length, const std::string& infoLength,
                   const std::string& dataLength, const std::string& behind)
{
    return Hex(length + "1000 0504 04030201 00000000" + kUp + kNames + infoLength + "1200" +
               kMacVlanKind + dataLength + "0200" + "0800 0100 10000000" + "0600 0200 0000 0000" +
               behind);
}

class LinkRequestTest : public NetlinkWorld {
protected:
    static int IpVlan(int32_t cmd, uint32_t mode = 0, uint32_t flag = 0)
    {
        char host[] = "eth0";
        char virt[] = "ipvl0";
        return Netlink_Ipv4Link_IpVlan(cmd, host, virt, mode, flag);
    }

    static int MacVlan(int32_t cmd, uint32_t mode, uint32_t flag = 0, uint32_t addrMode = 0,
                       const char* addr = nullptr)
    {
        char host[] = "eth0";
        char virt[] = "ipvl0";
        char bytes[6] = {};
        if (addr != nullptr) memcpy(bytes, addr, sizeof(bytes));
        return Netlink_Ipv4Link_MacVlan(cmd, host, virt, mode, flag, addrMode,
                                        addr != nullptr ? bytes : nullptr);
    }

    /// The line of an addition in source mode.
    static LogLine Adds(uint32_t addrMode)
    {
        return Info(kMacVlan, "iplink add macvlan [eth0 : ipvl0] mode 16 flag 0 addrmode " +
                                  std::to_string(addrMode));
    }
};

constexpr char kMac[] = "\x02\x03\x04\x05\x06\xf7";

// ---- IPVLAN

TEST_F(LinkRequestTest, AnIpVlanIsAskedForUp)
{
    EXPECT_EQ(IpVlan(RTM_NEWLINK, ipVlanModeL3S, ipVlanVepa), 0);
    EXPECT_EQ(SentBytes(), Hex("58000000 1000 0504 04030201 00000000" + kUp + kNames + "2400 1200" +
                               kIpVlanKind +             // IFLA_LINKINFO
                               "1400 0200"               // IFLA_INFO_DATA
                               "0600 0100 0200 0000"     // IFLA_IPVLAN_MODE
                               "0600 0200 0200 0000"));  // IFLA_IPVLAN_FLAGS
    EXPECT_EQ(Log(), (LogLines{Info(kIpVlan, "iplink add ipvlan [eth0 : ipvl0] mode 2 flag 2")}));
}

TEST_F(LinkRequestTest, TheHostIsLookedUpBeforeTheHandleIsOpened)
{
    EXPECT_EQ(IpVlan(RTM_NEWLINK), 0);
    EXPECT_EQ(Trace(), (Texts{"socket AF_INET", "fcntl F_SETFD", "ioctl SIOCGIFINDEX eth0",
                              "close AF_INET", "socket AF_NETLINK", "fcntl F_SETFD",
                              "bind AF_NETLINK 0 0", "getsockname AF_NETLINK 12", "malloc",
                              "sendmsg 0", "recvmsg 0", "close AF_NETLINK"}));
    EXPECT_EQ(rtnetlink.peers[0].nl_pid, 0U);
    EXPECT_EQ(rtnetlink.peers[0].nl_groups, 0U);
}

TEST_F(LinkRequestTest, ADeletionHasTheSameAttributesAndAsksForDown)
{
    EXPECT_EQ(IpVlan(RTM_DELLINK), 0);
    EXPECT_EQ(SentBytes(),
              Hex("58000000 1100 0500 04030201 00000000" + kDown + kNames + "2400 1200" +
                  kIpVlanKind + "1400 0200" + "0600 0100 0000 0000" + "0600 0200 0000 0000"));
    EXPECT_EQ(Log(), (LogLines{Info(kIpVlan, "iplink del ipvlan [eth0 : ipvl0] mode 0 flag 0")}));
}

TEST_F(LinkRequestTest, AnyOtherCommandCountsAsADeletion)
{
    EXPECT_EQ(IpVlan(0x1213, 1, 1), 0);
    EXPECT_EQ(SentBytes(),
              Hex("58000000 1312 0500 04030201 00000000" + kDown + kNames + "2400 1200" +
                  kIpVlanKind + "1400 0200" + "0600 0100 0100 0000" + "0600 0200 0100 0000"));
    EXPECT_EQ(Log(), (LogLines{Info(kIpVlan, "iplink del ipvlan [eth0 : ipvl0] mode 1 flag 1")}));
}

TEST_F(LinkRequestTest, ModeAndFlagOfAnIpVlanAreCutToSixteenBits)
{
    EXPECT_EQ(IpVlan(RTM_NEWLINK, 0x89ab0001, 0xffff0102), 0);
    EXPECT_EQ(SentBytes(),
              Hex("58000000 1000 0504 04030201 00000000" + kUp + kNames + "2400 1200" +
                  kIpVlanKind + "1400 0200" + "0600 0100 0100 0000" + "0600 0200 0201 0000"));
    EXPECT_EQ(Log(), (LogLines{Info(kIpVlan, "iplink add ipvlan [eth0 : ipvl0] mode 2309685249 "
                                             "flag 4294902018")}));
}

// ---- MACVLAN

TEST_F(LinkRequestTest, AMacVlanIsAskedForUp)
{
    EXPECT_EQ(MacVlan(RTM_NEWLINK, macVlanModeBridge, macVlanNoPromisc, macVlanAddrFlush), 0);
    EXPECT_EQ(SentBytes(), Hex("58000000 1000 0504 04030201 00000000" + kUp + kNames + "2400 1200" +
                               kMacVlanKind +            // IFLA_LINKINFO
                               "1400 0200"               // IFLA_INFO_DATA
                               "0800 0100 04000000"      // IFLA_MACVLAN_MODE
                               "0600 0200 0100 0000"));  // IFLA_MACVLAN_FLAGS
    EXPECT_EQ(Log(), (LogLines{Info(kMacVlan, "iplink add macvlan [eth0 : ipvl0] mode 4 flag 1 "
                                              "addrmode 2")}));
}

TEST_F(LinkRequestTest, ADeletionOfAMacVlanAsksForDown)
{
    EXPECT_EQ(MacVlan(RTM_DELLINK, 0), 0);
    EXPECT_EQ(SentBytes(),
              Hex("58000000 1100 0500 04030201 00000000" + kDown + kNames + "2400 1200" +
                  kMacVlanKind + "1400 0200" + "0800 0100 00000000" + "0600 0200 0000 0000"));
    EXPECT_EQ(Log(), (LogLines{Info(kMacVlan, "iplink del macvlan [eth0 : ipvl0] mode 0 flag 0 "
                                              "addrmode 0")}));
}

TEST_F(LinkRequestTest, OnlyTheFlagsOfAMacVlanAreCutToSixteenBits)
{
    EXPECT_EQ(MacVlan(RTM_NEWLINK, 0x12340010, 0x56780003), 0);
    EXPECT_EQ(SentBytes(),
              Hex("58000000 1000 0504 04030201 00000000" + kUp + kNames + "2400 1200" +
                  kMacVlanKind + "1400 0200" + "0800 0100 10003412" + "0600 0200 0300 0000"));
}

TEST_F(LinkRequestTest, OutsideSourceModeTheAddressIsIgnored)
{
    EXPECT_EQ(MacVlan(RTM_NEWLINK, macVlanModeBridge, 0, macVlanAddrSet, kMac), 0);
    EXPECT_EQ(MacVlan(RTM_NEWLINK, macVlanModeBridge, 0, macVlanAddrSet, "\0\0\0\0\0\0"), 0);
    const std::string request =
        Hex("58000000 1000 0504 04030201 00000000" + kUp + kNames + "2400 1200" + kMacVlanKind +
            "1400 0200" + "0800 0100 04000000" + "0600 0200 0000 0000");
    EXPECT_EQ(Hex(rtnetlink.requests[0]), request);
    EXPECT_EQ(Hex(rtnetlink.requests[1]), request);
    EXPECT_EQ(Log().size(), 2U);
}

// ---- source mode

TEST_F(LinkRequestTest, AnAddressIsAddedOrDeletedByItself)
{
    for (const auto mode : {macVlanAddrAdd, macVlanAddrDel}) {
        rtnetlink.requests.clear();
        ClearLog();
        const auto number = static_cast<uint32_t>(mode);
        EXPECT_EQ(MacVlan(RTM_NEWLINK, macVlanModeSource, 0, number, kMac), 0);
        EXPECT_EQ(SentBytes(), Source("6c000000", "3800", "2800",
                                      "0800 0300 0" + std::to_string(number) +
                                          "000000"                          // ..._MODE
                                          "0a00 0400 0203040506f7 0000"));  // ..._MACADDR
        EXPECT_EQ(Log(),
                  (LogLines{Adds(number), Info(kMacVlan, "macvlan mac[02:03:04:05:06:f7]")}));
    }
}

TEST_F(LinkRequestTest, AnAddressThatIsToBeTheOnlyOneStandsInAList)
{
    EXPECT_EQ(MacVlan(RTM_NEWLINK, macVlanModeSource, 0, macVlanAddrSet, kMac), 0);
    EXPECT_EQ(SentBytes(),
              Source("70000000", "3c00", "2c00",
                     "0800 0300 03000000"
                     "1000 0500 0a00 0400 0203040506f7 0000"));  // IFLA_MACVLAN_MACADDR_DATA
    EXPECT_EQ(Log(), (LogLines{Adds(3), Info(kMacVlan, "macvlan mac[02:03:04:05:06:f7]")}));
}

TEST_F(LinkRequestTest, AFlushAndAnythingAboveSendNoAddress)
{
    EXPECT_EQ(MacVlan(RTM_NEWLINK, macVlanModeSource, 0, macVlanAddrFlush, kMac), 0);
    EXPECT_EQ(SentBytes(), Source("60000000", "2c00", "1c00", "0800 0300 02000000"));
    EXPECT_EQ(Log(), (LogLines{Adds(2), Info(kMacVlan, "macvlan mac[02:03:04:05:06:f7]")}));

    rtnetlink.requests.clear();
    EXPECT_EQ(MacVlan(RTM_NEWLINK, macVlanModeSource, 0, 0x01000004, kMac), 0);
    EXPECT_EQ(SentBytes(), Source("60000000", "2c00", "1c00", "0800 0300 04000001"));
}

TEST_F(LinkRequestTest, SourceModeWithoutAnAddressSendsNothing)
{
    for (const char* addr : {static_cast<const char*>(nullptr), "\0\0\0\0\0\0"}) {
        for (const uint32_t addrMode : {0U, 1U, 2U, 3U}) {
            ClearLog();
            EXPECT_EQ(MacVlan(RTM_NEWLINK, macVlanModeSource, 0, addrMode, addr), -1);
            EXPECT_EQ(Log(), (LogLines{Adds(addrMode),
                                       Error(kMacVlan, "macvlan invalid mac address !!!")}));
        }
    }
    EXPECT_EQ(Trace(), Texts{});  // not even a socket
}

TEST_F(LinkRequestTest, AnAddressNeedsNoMoreThanOneByteThatIsNotZero)
{
    EXPECT_EQ(MacVlan(RTM_NEWLINK, macVlanModeSource, 0, macVlanAddrFlush, "\0\0\0\0\0\x01"), 0);
    EXPECT_EQ(MacVlan(RTM_NEWLINK, macVlanModeSource, 0, macVlanAddrFlush, "\x80\0\0\0\0\0"), 0);
    EXPECT_TRUE(Logged(Info(kMacVlan, "macvlan mac[00:00:00:00:00:01]")));
    EXPECT_TRUE(Logged(Info(kMacVlan, "macvlan mac[80:00:00:00:00:00]")));
}

TEST_F(LinkRequestTest, ADeletionInSourceModeNeedsAnAddressToo)
{
    EXPECT_EQ(MacVlan(RTM_DELLINK, macVlanModeSource), -1);
    EXPECT_EQ(Log(), (LogLines{Info(kMacVlan, "iplink del macvlan [eth0 : ipvl0] mode 16 flag 0 "
                                              "addrmode 0"),
                               Error(kMacVlan, "macvlan invalid mac address !!!")}));
}

// ---- names

TEST_F(LinkRequestTest, BothNamesAreNeeded)
{
    char host[] = "eth0";
    char virt[] = "ipvl0";
    char mac[] = "\x02\x03\x04\x05\x06\xf7";
    EXPECT_EQ(Netlink_Ipv4Link_IpVlan(RTM_NEWLINK, nullptr, virt, 0, 0), -1);
    EXPECT_EQ(Netlink_Ipv4Link_IpVlan(RTM_NEWLINK, host, nullptr, 0, 0), -1);
    EXPECT_EQ(Netlink_Ipv4Link_MacVlan(RTM_DELLINK, nullptr, nullptr, 16, 0, 0, mac), -1);
    EXPECT_EQ(Log(), (LogLines{Error(kIpVlan, "invalid host (null) virt ipvl0"),
                               Error(kIpVlan, "invalid host eth0 virt (null)"),
                               Error(kMacVlan, "invalid host (null) virt (null)")}));
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(LinkRequestTest, AnUnknownHostIsLeftToTheKernelToRefuse)
{
    char host[] = "eth9";
    char virt[] = "ipvl0";
    rtnetlink.refusal = ENODEV;
    EXPECT_EQ(Netlink_Ipv4Link_IpVlan(RTM_NEWLINK, host, virt, 0, 0), -2);
    EXPECT_EQ(SentBytes(),
              Hex("58000000 1000 0504 04030201 00000000" + kUp +
                  "0800 0500 00000000 0a00 0300 6970766c3000 0000 2400 1200" + kIpVlanKind +
                  "1400 0200" + "0600 0100 0000 0000" + "0600 0200 0000 0000"));
    EXPECT_EQ(Log(), (LogLines{Info(kIpVlan, "iplink add ipvlan [eth9 : ipvl0] mode 0 flag 0"),
                               NoDevice("eth9"), Answers(ENODEV), TalkError(kIpVlan, ENODEV)}));
}

TEST_F(LinkRequestTest, TheIndexOfAFailedLookUpIsSentAsItIs)
{
    kernel.At("eth0").index = -3;
    EXPECT_EQ(IpVlan(RTM_DELLINK), 0);
    EXPECT_EQ(SentBytes(),
              Hex("58000000 1100 0500 04030201 00000000" + kDown +
                  "0800 0500 fdffffff 0a00 0300 6970766c3000 0000 2400 1200" + kIpVlanKind +
                  "1400 0200" + "0600 0100 0000 0000" + "0600 0200 0000 0000"));
}

TEST_F(LinkRequestTest, ANameThatDoesNotFitTheRequestIsMissingFromIt)
{
    char host[] = "eth0";
    std::string virt(1012, 'v');  // one too many
    EXPECT_EQ(Netlink_Ipv4Link_IpVlan(RTM_NEWLINK, host, virt.data(), 0, 0), 0);
    EXPECT_EQ(SentBytes(), Hex("4c000000 1000 0504 04030201 00000000" + kUp + "0800 0500 02000000" +
                               "2400 1200" + kIpVlanKind + "1400 0200" + "0600 0100 0000 0000" +
                               "0600 0200 0000 0000"));
}

TEST_F(LinkRequestTest, ANameMayLeaveNoRoomForTheRest)
{
    char host[] = "eth0";
    std::string virt(1011, 'v');
    std::string name;
    for (int i = 0; i < 1011; ++i) name += "76";
    EXPECT_EQ(Netlink_Ipv4Link_MacVlan(RTM_NEWLINK, host, virt.data(), 4, 0, 0, nullptr), 0);
    EXPECT_EQ(SentBytes(), Hex("20040000 1000 0504 04030201 00000000" + kUp + "0800 0500 02000000" +
                               "f803 0300" + name + "00"));
}

// ---- refusals

TEST_F(LinkRequestTest, ALinkThatIsAlreadyThereIsRefused)
{
    rtnetlink.refusal = EEXIST;
    EXPECT_EQ(MacVlan(RTM_NEWLINK, macVlanModeVepa), -2);
    EXPECT_EQ(Log(), (LogLines{Info(kMacVlan, "iplink add macvlan [eth0 : ipvl0] mode 2 flag 0 "
                                              "addrmode 0"),
                               Answers(EEXIST),
                               Warn(kMacVlan, "the rtnl_talk error:17, the err str:File exists")}));
    EXPECT_EQ(TraceOf({"close AF_NETLINK"}).size(), 1U);
    EXPECT_EQ(OpenHandles(), Texts{});
}

TEST_F(LinkRequestTest, ARefusalIsToldBeforeTheHandleIsClosed)
{
    LogLines told;
    rtnetlink.refusal = EPERM;
    OnCall("close AF_NETLINK", [&] { told = Log(); });
    EXPECT_EQ(IpVlan(RTM_NEWLINK), -2);
    EXPECT_EQ(told, Log());
    EXPECT_EQ(told.size(), 3U);
}

TEST_F(LinkRequestTest, ALinkThatIsNotThereCannotBeDeleted)
{
    rtnetlink.refusal = ENODEV;
    EXPECT_EQ(IpVlan(RTM_DELLINK), -2);
    EXPECT_EQ(
        Log(),
        (LogLines{Info(kIpVlan, "iplink del ipvlan [eth0 : ipvl0] mode 0 flag 0"), Answers(ENODEV),
                  Warn(kIpVlan, "the rtnl_talk error:19, the err str:No such device")}));
}

TEST_F(LinkRequestTest, AHandleThatIsClosedIsNotUsedAgain)
{
    Fail("bind", EADDRINUSE);
    EXPECT_EQ(IpVlan(RTM_NEWLINK), -2);
    EXPECT_EQ(Log(),
              (LogLines{Info(kIpVlan, "iplink add ipvlan [eth0 : ipvl0] mode 0 flag 0"),
                        Error("rtnl_open", "bind failed"),
                        Error("rtnl_talk", "can't talk to rtnetlink"), TalkError(kIpVlan, EBADF)}));
    EXPECT_EQ(TraceOf({"close"}), (Texts{"close AF_INET", "close AF_NETLINK"}));
    EXPECT_EQ(rtnetlink.requests.size(), 0U);
}

TEST_F(LinkRequestTest, EachFailureIsToldAndLeavesNothingOpen)
{
    static int result;
    FailEachCall([] { result = MacVlan(RTM_NEWLINK, macVlanModeSource, 0, macVlanAddrSet, kMac); },
                 [](const std::string& failed) {
                     // A host that is not found and a wait that goes on do not end the request.
                     const bool goesOn = failed == "socket AF_INET" || failed == "fcntl F_SETFD" ||
                                         failed.rfind("ioctl", 0) == 0 ||
                                         failed.rfind("recvmsg", 0) == 0;
                     EXPECT_EQ(result, goesOn ? 0 : -2);
                     const size_t closed = failed == "socket AF_NETLINK" ? 0 : 1;
                     EXPECT_EQ(TraceOf({"close AF_NETLINK"}).size(), closed);
                     EXPECT_EQ(LogOf(kMacVlan).size(), goesOn ? 2U : 3U);
                 },
                 {});
}

// ---- forwarders

class VirtInterTest : public NetlinkWorld {
protected:
    char host[5] = "eth0";
    char virt[6] = "ipvl0";
    char mac[7] = "\x02\x03\x04\x05\x06\xf7";
};

TEST_F(VirtInterTest, IpVlansAreAddedAndDeleted)
{
    EXPECT_EQ(VirtInter_IpVlanAdd(host, virt, 1, 2), 0);
    EXPECT_EQ(VirtInter_IpVlanDel(host, virt), 0);
    EXPECT_EQ(Hex(rtnetlink.requests[0]),
              Hex("58000000 1000 0504 04030201 00000000" + kUp + kNames + "2400 1200" +
                  kIpVlanKind + "1400 0200" + "0600 0100 0100 0000" + "0600 0200 0200 0000"));
    EXPECT_EQ(Hex(rtnetlink.requests[1]),
              Hex("58000000 1100 0500 04030201 00000000" + kDown + kNames + "2400 1200" +
                  kIpVlanKind + "1400 0200" + "0600 0100 0000 0000" + "0600 0200 0000 0000"));
    EXPECT_EQ(Log(), (LogLines{Info(kIpVlan, "iplink add ipvlan [eth0 : ipvl0] mode 1 flag 2"),
                               Info(kIpVlan, "iplink del ipvlan [eth0 : ipvl0] mode 0 flag 0")}));
}

TEST_F(VirtInterTest, EveryModeAndFlagIsHandedOnWhole)
{
    EXPECT_EQ(VirtInter_IpVlanAdd(host, virt, 0x89ab00ff, 0xffff0fff), 0);
    EXPECT_EQ(VirtInter_MacVlanAdd(host, virt, 0x89ab0f00, 0xffff0fff, 0x80000001, nullptr), 0);
    EXPECT_EQ(Log(), (LogLines{Info(kIpVlan, "iplink add ipvlan [eth0 : ipvl0] mode 2309685503 "
                                             "flag 4294905855"),
                               Info(kMacVlan, "iplink add macvlan [eth0 : ipvl0] mode 2309689088 "
                                              "flag 4294905855 addrmode 2147483649")}));
}

TEST_F(VirtInterTest, MacVlansAreAddedAndDeleted)
{
    EXPECT_EQ(VirtInter_MacVlanAdd(host, virt, 16, 0, 3, mac), 0);
    EXPECT_EQ(VirtInter_MacVlanDel(host, virt), 0);
    EXPECT_EQ(Hex(rtnetlink.requests[0]),
              Source("70000000", "3c00", "2c00",
                     "0800 0300 03000000 1000 0500 0a00 0400 0203040506f7 0000"));
    EXPECT_EQ(Hex(rtnetlink.requests[1]),
              Hex("58000000 1100 0500 04030201 00000000" + kDown + kNames + "2400 1200" +
                  kMacVlanKind + "1400 0200" + "0800 0100 00000000" + "0600 0200 0000 0000"));
    EXPECT_EQ(Log().back(), Info(kMacVlan, "iplink del macvlan [eth0 : ipvl0] mode 0 flag 0 "
                                           "addrmode 0"));
}

TEST_F(VirtInterTest, ResultsAreHandedOn)
{
    EXPECT_EQ(VirtInter_IpVlanAdd(nullptr, virt, 0, 0), -1);
    EXPECT_EQ(VirtInter_IpVlanDel(host, nullptr), -1);
    EXPECT_EQ(VirtInter_MacVlanAdd(host, virt, 16, 0, 0, nullptr), -1);
    rtnetlink.refusal = EPERM;
    EXPECT_EQ(VirtInter_IpVlanAdd(host, virt, 0, 0), -2);
    EXPECT_EQ(VirtInter_IpVlanDel(host, virt), -2);
    EXPECT_EQ(VirtInter_MacVlanAdd(host, virt, 1, 0, 0, nullptr), -2);
    EXPECT_EQ(VirtInter_MacVlanDel(host, virt), -2);
}

// ---- records

class NetVirtInterTest : public NetlinkWorld {
protected:
    static NetVirtInterInfo Record(NetVirtInterType type)
    {
        NetVirtInterInfo info{};
        info.interName.eType = type;
        strcpy(info.interName.hostName, "eth0");
        strcpy(info.interName.virtName, "ipvl0");
        return info;
    }
};

TEST_F(NetVirtInterTest, AnIpVlanIsAddedWithItsOwnParameters)
{
    NetVirtInterInfo info = Record(virtTypeIpVlan);
    info.interParam.ipVlAttr.eMode = ipVlanModeL3;
    info.interParam.ipVlAttr.eFlag = ipVlanPrivate;
    EXPECT_TRUE(NetVirtInterAdd(&info));
    EXPECT_EQ(SentBytes(),
              Hex("58000000 1000 0504 04030201 00000000" + kUp + kNames + "2400 1200" +
                  kIpVlanKind + "1400 0200" + "0600 0100 0100 0000" + "0600 0200 0100 0000"));
    EXPECT_EQ(Log(), (LogLines{Error("NetVirtInterAdd", "[eth0:ipvl0] add virt interface type 2"),
                               Info(kIpVlan, "iplink add ipvlan [eth0 : ipvl0] mode 1 flag 1")}));
}

TEST_F(NetVirtInterTest, AMacVlanIsAddedWithItsOwnParameters)
{
    NetVirtInterInfo info = Record(virtTypeMacVlan);
    NetMacVlanAttr& attributes = info.interParam.macVlAttr;
    attributes.eMode = macVlanModeSource;
    attributes.eFlag = macVlanNoDst;
    attributes.eAddrMode = macVlanAddrSet;
    memcpy(attributes.macAddr, kMac, 6);
    EXPECT_TRUE(NetVirtInterAdd(&info));
    EXPECT_EQ(SentBytes(),
              Hex("70000000 1000 0504 04030201 00000000" + kUp + kNames + "3c00 1200" +
                  kMacVlanKind + "2c00 0200" + "0800 0100 10000000" + "0600 0200 0200 0000" +
                  "0800 0300 03000000" + "1000 0500 0a00 0400 0203040506f7 0000"));
    EXPECT_EQ(Log(), (LogLines{Error("NetVirtInterAdd", "[eth0:ipvl0] add virt interface type 3"),
                               Info(kMacVlan, "iplink add macvlan [eth0 : ipvl0] mode 16 flag 2 "
                                              "addrmode 3"),
                               Info(kMacVlan, "macvlan mac[02:03:04:05:06:f7]")}));
}

TEST_F(NetVirtInterTest, LinksAreDeletedByTheirNames)
{
    NetVirtInterName name = Record(virtTypeIpVlan).interName;
    EXPECT_TRUE(NetVirtInterDel(&name));
    EXPECT_EQ(SentBytes(),
              Hex("58000000 1100 0500 04030201 00000000" + kDown + kNames + "2400 1200" +
                  kIpVlanKind + "1400 0200" + "0600 0100 0000 0000" + "0600 0200 0000 0000"));
    EXPECT_EQ(Log(), (LogLines{Error("NetVirtInterDel", "[eth0:ipvl0] del virt interface type 2"),
                               Info(kIpVlan, "iplink del ipvlan [eth0 : ipvl0] mode 0 flag 0")}));

    name.eType = virtTypeMacVlan;
    rtnetlink.requests.clear();
    ClearLog();
    EXPECT_TRUE(NetVirtInterDel(&name));
    EXPECT_EQ(SentBytes(),
              Hex("58000000 1100 0500 04030201 00000000" + kDown + kNames + "2400 1200" +
                  kMacVlanKind + "1400 0200" + "0800 0100 00000000" + "0600 0200 0000 0000"));
    EXPECT_EQ(Log(), (LogLines{Error("NetVirtInterDel", "[eth0:ipvl0] del virt interface type 3"),
                               Info(kMacVlan, "iplink del macvlan [eth0 : ipvl0] mode 0 flag 0 "
                                              "addrmode 0")}));
}

TEST_F(NetVirtInterTest, OtherTypesAreToldAndRefused)
{
    for (const int type : {0, 1, 4, 5, 6, 7, 8, -1, 99}) {
        NetVirtInterInfo info = Record(static_cast<NetVirtInterType>(type));
        ClearLog();
        EXPECT_FALSE(NetVirtInterAdd(&info));
        EXPECT_FALSE(NetVirtInterDel(&info.interName));
        const std::string number = std::to_string(type);
        EXPECT_EQ(
            Log(),
            (LogLines{Error("NetVirtInterAdd", "[eth0:ipvl0] add virt interface type " + number),
                      Error("NetVirtInterAdd", "[eth0:ipvl0]invalid type " + number),
                      Error("NetVirtInterDel", "[eth0:ipvl0] del virt interface type " + number),
                      Error("NetVirtInterDel", "[eth0:ipvl0]invalid type " + number)}));
    }
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(NetVirtInterTest, NoRecordIsRefusedInSilence)
{
    EXPECT_FALSE(NetVirtInterAdd(nullptr));
    EXPECT_FALSE(NetVirtInterDel(nullptr));
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(NetVirtInterTest, ARefusalAndBadArgumentsAreNoSuccess)
{
    NetVirtInterInfo source = Record(virtTypeMacVlan);
    source.interParam.macVlAttr.eMode = macVlanModeSource;
    EXPECT_FALSE(NetVirtInterAdd(&source));
    EXPECT_EQ(Log().back(), Error(kMacVlan, "macvlan invalid mac address !!!"));

    rtnetlink.refusal = EEXIST;
    for (const auto type : {virtTypeIpVlan, virtTypeMacVlan}) {
        NetVirtInterInfo info = Record(type);
        EXPECT_FALSE(NetVirtInterAdd(&info));
        EXPECT_FALSE(NetVirtInterDel(&info.interName));
    }
}

TEST_F(NetVirtInterTest, NamesMayFillTheirFields)
{
    NetVirtInterInfo info = Record(virtTypeIpVlan);
    memset(info.interName.hostName, 'h', sizeof(info.interName.hostName));
    memset(info.interName.virtName, 'v', sizeof(info.interName.virtName));
    info.interName.enable = 'x';  // what stands behind is no part of a name
    const NetVirtInterInfo before = info;
    EXPECT_TRUE(NetVirtInterAdd(&info));
    EXPECT_TRUE(NetVirtInterDel(&info.interName));
    EXPECT_EQ(memcmp(&info, &before, sizeof(info)), 0);

    const std::string names = "[" + std::string(128, 'h') + ":" + std::string(128, 'v') + "]";
    EXPECT_EQ(LogOf("NetVirtInterAdd"),
              (LogLines{Error("NetVirtInterAdd", names + " add virt interface type 2")}));
    EXPECT_EQ(LogOf("NetVirtInterDel"),
              (LogLines{Error("NetVirtInterDel", names + " del virt interface type 2")}));
    std::string name;
    for (int i = 0; i < 128; ++i) name += "76";
    EXPECT_EQ(Hex(rtnetlink.requests[0]),
              Hex("d4000000 1000 0504 04030201 00000000" + kUp + "0800 0500 00000000" +
                  "8500 0300" + name + "00 000000" + "2400 1200" + kIpVlanKind + "1400 0200" +
                  "0600 0100 0000 0000" + "0600 0200 0000 0000"));
}

TEST_F(NetVirtInterTest, EachFailureIsNoSuccessUnlessTheRequestGoesOn)
{
    static bool done;
    FailEachCall(
        [] {
            NetVirtInterInfo info = Record(virtTypeIpVlan);
            done = NetVirtInterAdd(&info);
        },
        [](const std::string& failed) {
            const bool goesOn = failed == "socket AF_INET" || failed == "fcntl F_SETFD" ||
                                failed.rfind("ioctl", 0) == 0 || failed.rfind("recvmsg", 0) == 0;
            EXPECT_EQ(done, goesOn);
        },
        {});
}

}  // namespace
