// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Netlink.h"
#include "Base.h"
#include "CommonApi.h"
#include "VirtInter.h"

#include "Device.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <sstream>

#include <unistd.h>

using namespace device;

namespace {

/// Blanks, and how many of them, are iproute2's own: words with one blank between them.
std::string Words(const std::string& text)
{
    std::istringstream words(text);
    std::string joined;
    for (std::string word; words >> word;) joined += (joined.empty() ? "" : " ") + word;
    return joined;
}

LogLine Answers(int error)
{
    return Warn("rtnl_talk", std::string("RTNETLINK answers: ") + strerror(error));
}

LogLine TalkError(const std::string& operation, int error)
{
    return Warn(operation, "the rtnl_talk error:" + std::to_string(error) +
                               ", the err str:" + strerror(error));
}

/// One card, up, with an address and a neighbour's net.
class NetlinkTest : public Device {
protected:
    void SetUp() override
    {
        Device::SetUp();
        AddCards(1);
        Must("ip link set eth0 up; ip addr add 10.0.0.2/24 dev eth0");
    }
};

TEST_F(NetlinkTest, AToolGetsNoSocketOfARequest)
{
    rtnl_handle handle;
    EXPECT_EQ(rtnl_open(&handle), 0);
    EXPECT_TRUE(VorlixRunCmd("ls -l /proc/self/fd | grep socket >/run/sockets"));
    close(handle.fd);
    EXPECT_EQ(Get("/run/sockets"), "");
}

// ---- rules

class RuleTest : public NetlinkTest {
protected:
    /// The rules beside those that each device has: "1000: from 10.0.0.2 lookup 42".
    static Texts Rules()
    {
        std::istringstream lines(Must("ip -4 rule"));
        Texts rules;
        for (std::string line; std::getline(lines, line);) {
            const std::string rule = Words(line);
            if (rule != "0: from all lookup local" && rule != "32766: from all lookup main" &&
                rule != "32767: from all lookup default") {
                rules.push_back(rule);
            }
        }
        return rules;
    }
};

TEST_F(RuleTest, ARuleComesAndGoes)
{
    EXPECT_EQ(Netlink_IPv4Rule(RTM_NEWRULE, "10.0.0.2", 42, 1000), 0);
    EXPECT_EQ(Netlink_IPv4Rule(RTM_NEWRULE, "10.0.0.3", 43, 1001), 0);
    EXPECT_EQ(Rules(), (Texts{"1000: from 10.0.0.2 lookup 42", "1001: from 10.0.0.3 lookup 43"}));
    EXPECT_EQ(Netlink_IPv4Rule(RTM_DELRULE, "10.0.0.2", 42, 1000), 0);
    EXPECT_EQ(Rules(), Texts{"1001: from 10.0.0.3 lookup 43"});
    EXPECT_EQ(Log().size(), 3U);  // one line each, and the cache is flushed in silence
}

TEST_F(RuleTest, WithoutTableAndPriorityItIsTheMainTableAtAPlaceOfTheKernel)
{
    EXPECT_EQ(Netlink_IPv4Rule(RTM_NEWRULE, "10.0.0.2", 0, 0), 0);
    EXPECT_EQ(Rules(), Texts{"32765: from 10.0.0.2 lookup main"});
    EXPECT_EQ(Netlink_IPv4Rule(RTM_DELRULE, "10.0.0.2", 0, 0), 0);
    EXPECT_EQ(Rules(), Texts{});
}

TEST_F(RuleTest, ATableAboveAByteIsCut)
{
    EXPECT_EQ(Netlink_IPv4Rule(RTM_NEWRULE, "10.0.0.2", 300, 1000), 0);
    EXPECT_EQ(Rules(), Texts{"1000: from 10.0.0.2 lookup 44"});
}

TEST_F(RuleTest, ARuleThatIsAlreadyThereIsRefused)
{
    EXPECT_EQ(Netlink_IPv4Rule(RTM_NEWRULE, "10.0.0.2", 42, 1000), 0);
    EXPECT_EQ(Netlink_IPv4Rule(RTM_NEWRULE, "10.0.0.2", 42, 1000), 2);
    EXPECT_EQ(Rules().size(), 1U);
    const LogLine adds = Info("Netlink_IPv4Rule", "iprule add from 10.0.0.2 table 42");
    EXPECT_EQ(Log(),
              (LogLines{adds, adds, Answers(EEXIST), TalkError("Netlink_IPv4Rule", EEXIST)}));
}

TEST_F(RuleTest, ARuleThatIsNotThereCannotBeDeleted)
{
    EXPECT_EQ(Netlink_IPv4Rule(RTM_DELRULE, "10.0.0.2", 42, 1000), 2);
    EXPECT_EQ(Log(), (LogLines{Info("Netlink_IPv4Rule", "iprule del from 10.0.0.2 table 42"),
                               Answers(ENOENT), TalkError("Netlink_IPv4Rule", ENOENT)}));
}

// ---- routes in tables

class TableRouteTest : public NetlinkTest {
protected:
    static std::string Table(const char* table)
    {
        return Words(Must("ip -4 route show table " + std::string(table)));
    }

    static int Add(int32_t table, int32_t bitlen, const char* route, const char* via)
    {
        return Netlink_IPv4Route(RTM_NEWROUTE, table, bitlen, route, nullptr, via, "eth0", 0);
    }
};

TEST_F(TableRouteTest, ARouteComesAndGoesInItsTable)
{
    EXPECT_EQ(Add(100, 24, "172.16.1.0", "10.0.0.1"), 0);
    EXPECT_EQ(Table("100"), "172.16.1.0/24 via 10.0.0.1 dev eth0 proto kernel");
    EXPECT_EQ(Routes(), Texts{"10.0.0.0/24 dev eth0"});
    EXPECT_EQ(
        Netlink_IPv4Route(RTM_DELROUTE, 100, 24, "172.16.1.0", nullptr, "10.0.0.1", "eth0", 0), 0);
    // The kernel drops an empty table after a while, and tells so.
    EXPECT_EQ(Words(Try("ip -4 route show table 100 2>/dev/null").output), "");
    EXPECT_EQ(Log().size(), 2U);
}

TEST_F(TableRouteTest, AnotherGatewayTakesThePlaceOfTheFirst)
{
    EXPECT_EQ(Add(100, 24, "172.16.1.0", "10.0.0.1"), 0);
    EXPECT_EQ(Add(100, 24, "172.16.1.0", "10.0.0.9"), 0);
    EXPECT_EQ(Table("100"), "172.16.1.0/24 via 10.0.0.9 dev eth0 proto kernel");
}

TEST_F(TableRouteTest, WithoutAGatewayTheNetIsOnTheLink)
{
    EXPECT_EQ(Netlink_IPv4Route(RTM_NEWROUTE, 100, 16, "10.5.0.0", "10.0.0.2", nullptr, "eth0", 7),
              0);
    EXPECT_EQ(Table("100"), "10.5.0.0/16 dev eth0 proto kernel scope link src 10.0.0.2 metric 7");
}

TEST_F(TableRouteTest, TheDefaultRouteOfTheMainTable)
{
    EXPECT_EQ(Add(0, 24, "default", "10.0.0.1"), 0);
    EXPECT_EQ(Routes(), (Texts{"10.0.0.0/24 dev eth0", "default via 10.0.0.1 dev eth0"}));
    EXPECT_EQ(Netlink_IPv4Route(RTM_DELROUTE, 0, 24, "any", nullptr, nullptr, nullptr, 0), 0);
    EXPECT_EQ(Routes(), Texts{"10.0.0.0/24 dev eth0"});
}

TEST_F(TableRouteTest, ATableAboveAByteIsCut)
{
    EXPECT_EQ(Add(300, 24, "172.16.1.0", "10.0.0.1"), 0);
    EXPECT_EQ(Table("44"), "172.16.1.0/24 via 10.0.0.1 dev eth0 proto kernel");
}

TEST_F(TableRouteTest, ARuleLeadsItsAddressToItsTable)
{
    EXPECT_EQ(Add(42, 0, "default", "10.0.0.7"), 0);
    EXPECT_EQ(Netlink_IPv4Rule(RTM_NEWRULE, "10.0.0.2", 42, 1000), 0);
    EXPECT_EQ(Words(Must("ip route get 192.0.2.1 from 10.0.0.2")),
              "192.0.2.1 from 10.0.0.2 via 10.0.0.7 dev eth0 table 42 uid 0 cache");
}

TEST_F(TableRouteTest, AGatewayThatCannotBeReachedIsRefused)
{
    EXPECT_EQ(Add(100, 24, "172.16.1.0", "192.168.7.1"), -1);
    EXPECT_EQ(Log(), (LogLines{Info("Netlink_IPv4Route",
                                    "iproute add 172.16.1.0 (null) 192.168.7.1 dev eth0 table 100"),
                               Answers(ENETUNREACH)}));
}

TEST_F(TableRouteTest, ARouteThatIsNotThereCannotBeDeleted)
{
    EXPECT_EQ(Netlink_IPv4Route(RTM_DELROUTE, 0, 24, "172.16.1.0", nullptr, nullptr, nullptr, 0),
              -1);
    EXPECT_EQ(Log(), (LogLines{Info("Netlink_IPv4Route",
                                    "iproute del 172.16.1.0 (null) (null) dev (null) table 0"),
                               Answers(ESRCH)}));
}

TEST_F(TableRouteTest, AnUnknownCardIsRefusedByTheKernel)
{
    EXPECT_EQ(Netlink_IPv4Route(RTM_NEWROUTE, 100, 24, "172.16.1.0", nullptr, nullptr, "eth9", 0),
              -1);
    EXPECT_EQ(Log(),
              (LogLines{Info("Netlink_IPv4Route",
                             "iproute add 172.16.1.0 (null) (null) dev eth9 table 100"),
                        Error("xll_name_to_index", "can't find device 'eth9' "), Answers(ENODEV)}));
}

// ---- virtual links

/// What iproute2 tells of a link's own kind ("macvlan mode bridge"), without its queues.
std::string Detail(const std::string& link)
{
    const std::string text =
        Words(Must("ip -d link show dev " + link +
                   " | sed 's/ \\(used\\)\\{0,1\\}bcqueuelen [0-9]*//g; s/ addrgenmode.*//'"));
    const size_t begin = text.find("vlan mode ");
    if (begin == std::string::npos) return "(no virtual link) " + text;
    return text.substr(text.rfind(' ', begin) + 1);
}

bool Exists(const std::string& link)
{
    return Try("ip link show dev " + link).status == 0;
}

/// The probe must go again: a link that takes its host for itself suffers no other beside it.
#define NEEDS_KIND(kind)                                                                           \
    do {                                                                                           \
        NEEDS_LINK("probe0 link eth0 type " kind);                                                 \
        Must("ip link del probe0");                                                                \
    } while (false)

class MacVlanTest : public NetlinkTest {
protected:
    static int Add(uint32_t mode, uint32_t flag = 0, uint32_t addrMode = 0,
                   const char* mac = nullptr)
    {
        char host[] = "eth0";
        char virt[] = "mac0";
        char bytes[7] = {};
        if (mac != nullptr) memcpy(bytes, mac, 6);
        return VirtInter_MacVlanAdd(host, virt, mode, flag, addrMode, bytes);
    }

    /// The addresses that mac0 listens to, sorted: the kernel keeps them by a hash.
    static Texts Sources()
    {
        const std::string detail = Detail("mac0");
        const std::string mark = "macvlan mode source remotes ";
        EXPECT_EQ(detail.substr(0, mark.size()), mark);
        std::istringstream words(detail.substr(std::min(mark.size(), detail.size())));
        Texts sources;
        std::string word;
        words >> word;  // how many
        while (words >> word) sources.push_back(word);
        std::sort(sources.begin(), sources.end());
        return sources;
    }

    static int Delete()
    {
        char host[] = "eth0";
        char virt[] = "mac0";
        return VirtInter_MacVlanDel(host, virt);
    }
};

TEST_F(MacVlanTest, EachModeComesUpAtOnceAndGoes)
{
    NEEDS_KIND("macvlan");
    const std::pair<uint32_t, const char*> modes[] = {
        {macVlanModePrivate, "macvlan mode private"},
        {macVlanModeVepa, "macvlan mode vepa"},
        {macVlanModeBridge, "macvlan mode bridge"},
        {macVlanModePassthru, "macvlan mode passthru"}};
    for (const auto& [mode, told] : modes) {
        EXPECT_EQ(Add(mode), 0);
        EXPECT_EQ(Detail("mac0"), told);
        EXPECT_TRUE(IsUp("mac0"));
        EXPECT_EQ(Delete(), 0);
        EXPECT_FALSE(Exists("mac0"));
    }
    EXPECT_EQ(LogOf("rtnl_talk"), LogLines{});
    EXPECT_TRUE(IsUp("eth0"));
}

TEST_F(MacVlanTest, FlagsReachTheKernel)
{
    NEEDS_KIND("macvlan");
    EXPECT_EQ(Add(macVlanModePassthru, macVlanNoPromisc), 0);
    EXPECT_EQ(Detail("mac0"), "macvlan mode passthru nopromisc");
}

TEST_F(MacVlanTest, SourceModeKeepsTheListOfAddresses)
{
    NEEDS_KIND("macvlan");
    const char first[] = "\x02\x00\x00\x00\x00\x01";
    const char second[] = "\x02\x00\x00\x00\x00\x02";
    const char third[] = "\x02\x00\x00\x00\x00\x03";

    EXPECT_EQ(Add(macVlanModeSource, 0, macVlanAddrAdd, first), 0);
    EXPECT_EQ(Sources(), Texts{"02:00:00:00:00:01"});
    EXPECT_EQ(Add(macVlanModeSource, 0, macVlanAddrAdd, second), 0);
    EXPECT_EQ(Sources(), (Texts{"02:00:00:00:00:01", "02:00:00:00:00:02"}));
    EXPECT_EQ(Add(macVlanModeSource, 0, macVlanAddrDel, first), 0);
    EXPECT_EQ(Sources(), Texts{"02:00:00:00:00:02"});
    EXPECT_EQ(Add(macVlanModeSource, 0, macVlanAddrSet, third), 0);
    EXPECT_EQ(Sources(), Texts{"02:00:00:00:00:03"});
    EXPECT_EQ(Add(macVlanModeSource, 0, macVlanAddrFlush, first), 0);
    EXPECT_EQ(Sources(), Texts{});
    EXPECT_EQ(LogOf("rtnl_talk"), LogLines{});
}

TEST_F(MacVlanTest, ALinkThatIsNotThereCannotBeDeleted)
{
    NEEDS_KIND("macvlan");
    EXPECT_EQ(Delete(), -2);
    EXPECT_EQ(Log(), (LogLines{Info("Netlink_Ipv4Link_MacVlan",
                                    "iplink del macvlan [eth0 : mac0] mode 0 flag 0 addrmode 0"),
                               Answers(ENODEV), TalkError("Netlink_Ipv4Link_MacVlan", ENODEV)}));
}

TEST_F(MacVlanTest, AnUnknownHostIsRefusedByTheKernel)
{
    NEEDS_KIND("macvlan");
    char host[] = "eth9";
    char virt[] = "mac0";
    EXPECT_EQ(VirtInter_MacVlanAdd(host, virt, macVlanModeBridge, 0, 0, nullptr), -2);
    const LogLines log = Log();
    ASSERT_EQ(log.size(), 4U);
    EXPECT_EQ(log[1], Error("xll_name_to_index", "can't find device 'eth9' "));
    // Which error it is has changed with kernels.
    EXPECT_TRUE(
        (log[2] == Answers(ENODEV) && log[3] == TalkError("Netlink_Ipv4Link_MacVlan", ENODEV)) ||
        (log[2] == Answers(EINVAL) && log[3] == TalkError("Netlink_Ipv4Link_MacVlan", EINVAL)))
        << log[2] << "\n"
        << log[3];
    EXPECT_FALSE(Exists("mac0"));
}

TEST_F(MacVlanTest, ANameThatTheKernelCannotHoldIsRefused)
{
    NEEDS_KIND("macvlan");
    char host[] = "eth0";
    char virt[] = "mac0-of-sixteen-";
    EXPECT_EQ(VirtInter_MacVlanAdd(host, virt, macVlanModeBridge, 0, 0, nullptr), -2);
    EXPECT_EQ(LogOf("rtnl_talk"), LogLines{Answers(ERANGE)});
}

TEST_F(MacVlanTest, ARecordMakesALinkAndItsNameDeletesIt)
{
    NEEDS_KIND("macvlan");
    NetVirtInterInfo info{};
    info.interName.eType = virtTypeMacVlan;
    strcpy(info.interName.hostName, "eth0");
    strcpy(info.interName.virtName, "mac0");
    info.interParam.macVlAttr.eMode = macVlanModeBridge;
    EXPECT_TRUE(NetVirtInterAdd(&info));
    EXPECT_EQ(Detail("mac0"), "macvlan mode bridge");
    EXPECT_TRUE(NetVirtInterDel(&info.interName));
    EXPECT_FALSE(Exists("mac0"));
    EXPECT_FALSE(NetVirtInterDel(&info.interName));
}

TEST_F(NetlinkTest, AnIpVlanOfEachModeComesUpAndGoes)
{
    NEEDS_KIND("ipvlan");
    char host[] = "eth0";
    char virt[] = "ipvl0";
    const std::pair<uint32_t, const char*> modes[] = {{ipVlanModeL2, "ipvlan mode l2 bridge"},
                                                      {ipVlanModeL3, "ipvlan mode l3 bridge"},
                                                      {ipVlanModeL3S, "ipvlan mode l3s bridge"}};
    for (const auto& [mode, told] : modes) {
        EXPECT_EQ(VirtInter_IpVlanAdd(host, virt, mode, ipVlanBridge), 0);
        EXPECT_EQ(Detail("ipvl0"), told);
        EXPECT_TRUE(IsUp("ipvl0"));
        EXPECT_EQ(VirtInter_IpVlanDel(host, virt), 0);
        EXPECT_FALSE(Exists("ipvl0"));
    }
}

}  // namespace
