// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Netlink.h"

#include "NetlinkWorld.h"

#include <cerrno>

#include <unistd.h>

using namespace fake;

namespace {

const char* const kRule = "Netlink_IPv4Rule";
const char* const kRoute = "Netlink_IPv4Route";

/// What both kinds of request do from the sending on, and the end of a success.
const Texts kOpening = {"socket AF_NETLINK", "fcntl F_SETFD", "bind AF_NETLINK 0 0",
                        "getsockname AF_NETLINK 12"};
const Texts kExchange = {"malloc", "sendmsg 0", "recvmsg 0"};
const Texts kFlush = {"open /proc/sys/net/ipv4/route/flush O_WRONLY",
                      "write /proc/sys/net/ipv4/route/flush",
                      "close /proc/sys/net/ipv4/route/flush"};
const Texts kEnd = {"close AF_NETLINK"};

Texts Joined(const std::vector<Texts>& parts)
{
    Texts all;
    for (const Texts& part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
}

class RouteRequestTest : public NetlinkWorld {
protected:
    void SetUp() override
    {
        NetlinkWorld::SetUp();
        Put(kFlushFile, "");
    }
};

// ---- rules

class RuleTest : public RouteRequestTest {
protected:
    static LogLine Does(const std::string& what) { return Info(kRule, "iprule " + what); }

    /// The request for a rule without attributes, by its `rtmsg`.
    static std::string Bare(const std::string& rtmsg, const std::string& typeAndFlags)
    {
        return Hex("1c000000" + typeAndFlags + "04030201 00000000" + rtmsg);
    }
};

TEST_F(RuleTest, ARuleIsAddedOnlyOnce)
{
    EXPECT_EQ(Netlink_IPv4Rule(RTM_NEWRULE, "10.0.0.2", 42, 1000), 0);
    EXPECT_EQ(SentBytes(), Hex("2c000000 2000 0506 04030201 00000000"  // EXCL, CREATE
                               "02 00 20 00  2a 03 00 01  00000000"  // /32, table 42, BOOT, UNICAST
                               "0800 0200 0a000002"                  // FRA_SRC
                               "0800 0600 e8030000"));               // FRA_PRIORITY
    EXPECT_EQ(Log(), LogLines{Does("add from 10.0.0.2 table 42")});
}

TEST_F(RuleTest, ADeletionNamesTheSameRule)
{
    EXPECT_EQ(Netlink_IPv4Rule(RTM_DELRULE, "10.0.0.2", 42, 1000), 0);
    EXPECT_EQ(SentBytes(), Hex("2c000000 2100 0500 04030201 00000000"
                               "02 00 20 00  2a 03 00 00  00000000"
                               "0800 0200 0a000002"
                               "0800 0600 e8030000"));
    EXPECT_EQ(Log(), LogLines{Does("del from 10.0.0.2 table 42")});
}

TEST_F(RuleTest, AnyOtherCommandCountsAsADeletion)
{
    EXPECT_EQ(Netlink_IPv4Rule(0x1223, nullptr, 0, 0), 0);
    EXPECT_EQ(SentBytes(), Bare("02 00 00 00  00 03 00 00  00000000", "2312 0500"));
    EXPECT_EQ(Log(), LogLines{Does("del from (null) table 0")});
}

TEST_F(RuleTest, WithoutATableAnAdditionMeansTheMainOne)
{
    EXPECT_EQ(Netlink_IPv4Rule(RTM_NEWRULE, nullptr, 0, 0), 0);
    EXPECT_EQ(SentBytes(), Bare("02 00 00 00  fe 03 00 01  00000000", "2000 0506"));
    EXPECT_EQ(Log(), LogLines{Does("add from (null) table 0")});
}

TEST_F(RuleTest, WithoutATableADeletionMeansAny)
{
    EXPECT_EQ(Netlink_IPv4Rule(RTM_DELRULE, nullptr, 0, 0), 0);
    EXPECT_EQ(SentBytes(), Bare("02 00 00 00  00 03 00 00  00000000", "2100 0500"));
}

TEST_F(RuleTest, ATableIsCutToItsLowByte)
{
    EXPECT_EQ(Netlink_IPv4Rule(RTM_NEWRULE, nullptr, 0xfffffe2c, 0), 0);
    EXPECT_EQ(SentBytes(), Bare("02 00 00 00  2c 03 00 01  00000000", "2000 0506"));
    EXPECT_EQ(Log(), LogLines{Does("add from (null) table -468")});  // printed as signed

    rtnetlink.requests.clear();
    EXPECT_EQ(Netlink_IPv4Rule(RTM_DELRULE, nullptr, 256, 0), 0);
    EXPECT_EQ(SentBytes(), Bare("02 00 00 00  00 03 00 00  00000000", "2100 0500"));
}

TEST_F(RuleTest, AHandleOnDescriptorZeroIsOpenedAnewWhileItHoldsTheNumber)
{
    AnswerOddly(Odd::nothing);
    {
        const OwnCalls making;
        close(STDIN_FILENO);
    }
    EXPECT_EQ(Netlink_IPv4Rule(RTM_NEWRULE, nullptr, 0, 0), 0);
    EXPECT_EQ(rtnetlink.requests.size(), 1U);
    EXPECT_EQ(
        TraceOf({"socket", "fcntl", "bind", "getsockname", "sendmsg", "close AF_NETLINK"}),
        Joined({{"socket AF_NETLINK", "fcntl F_SETFD"}, kOpening, kEnd, {"sendmsg 0"}, kEnd}));
    EXPECT_EQ(OpenHandles(), Texts{});
}

TEST_F(RuleTest, AnAddressThatDoesNotParseOpensNothing)
{
    for (const char* from : {"", "10.0.0", "10.0.0.2 ", "10.0.0.0/24", "0x0a.0.0.2", "::1"}) {
        ClearLog();
        EXPECT_EQ(Netlink_IPv4Rule(RTM_NEWRULE, from, 42, 0), -1);
        EXPECT_EQ(Log(), LogLines{Does(std::string("add from ") + from + " table 42")});
    }
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(RuleTest, ASuccessFlushesTheRouteCacheBeforeTheHandleIsClosed)
{
    EXPECT_EQ(Netlink_IPv4Rule(RTM_NEWRULE, "10.0.0.2", 42, 0), 0);
    EXPECT_EQ(Trace(), Joined({kOpening, kExchange, kFlush, kEnd}));
    EXPECT_EQ(Get(kFlushFile), "-1");
}

TEST_F(RuleTest, ARefusalIsAPositiveResultAndFlushesNothing)
{
    rtnetlink.refusal = EEXIST;
    EXPECT_EQ(Netlink_IPv4Rule(RTM_NEWRULE, "10.0.0.2", 42, 0), 2);
    EXPECT_EQ(Log(), (LogLines{Does("add from 10.0.0.2 table 42"), Answers(EEXIST),
                               Warn(kRule, "the rtnl_talk error:17, the err str:File exists")}));
    EXPECT_EQ(Trace(), Joined({kOpening, kExchange, kEnd}));
    EXPECT_EQ(Get(kFlushFile), "");
}

TEST_F(RuleTest, ARefusalIsToldBeforeTheHandleIsClosed)
{
    LogLines told;
    rtnetlink.refusal = EPERM;
    OnCall("close AF_NETLINK", [&] { told = Log(); });
    EXPECT_EQ(Netlink_IPv4Rule(RTM_DELRULE, "10.0.0.2", 42, 0), 2);
    EXPECT_EQ(told, Log());
    EXPECT_EQ(told.size(), 3U);
}

TEST_F(RuleTest, EachFailureIsToldAndLeavesNothingOpen)
{
    static int result;
    FailEachCall([] { result = Netlink_IPv4Rule(RTM_NEWRULE, "10.0.0.2", 42, 0); },
                 [](const std::string& failed) {
                     // A cache that is not flushed and a wait that goes on are no failures.
                     const bool flushFailed = failed.find(kFlushFile) != std::string::npos;
                     const bool goesOn = flushFailed || failed == "fcntl F_SETFD" ||
                                         failed.rfind("recvmsg", 0) == 0;
                     EXPECT_EQ(result, goesOn ? 0 : 2);
                     EXPECT_EQ(LogOf(kRule).size(), goesOn ? 1U : 2U);
                     EXPECT_EQ(Get(kFlushFile), goesOn && !flushFailed ? "-1" : "");
                 },
                 {});
}

// ---- routes

class TableRouteTest : public RouteRequestTest {
protected:
    static LogLine Does(const std::string& what) { return Info(kRoute, "iproute " + what); }
};

TEST_F(TableRouteTest, ARouteTakesThePlaceOfOneOfTheSameKey)
{
    EXPECT_EQ(
        Netlink_IPv4Route(RTM_NEWROUTE, 100, 24, "192.168.1.0", "10.0.0.2", "10.0.0.1", "eth0", 5),
        0);
    EXPECT_EQ(SentBytes(),
              Hex("44000000 1800 0505 04030201 00000000"  // REPLACE, CREATE
                  "02 18 00 00  64 02 00 01  00000000"    // /24, table 100, KERNEL, UNICAST
                  "0800 0700 0a000002"                    // RTA_PREFSRC
                  "0800 0500 0a000001"                    // RTA_GATEWAY
                  "0800 0100 c0a80100"                    // RTA_DST
                  "0800 0400 02000000"                    // RTA_OIF
                  "0800 0600 05000000"));                 // RTA_PRIORITY
    EXPECT_EQ(Log(), LogLines{Does("add 192.168.1.0 10.0.0.2 10.0.0.1 dev eth0 table 100")});
}

TEST_F(TableRouteTest, ADeletionNamesTheSameRoute)
{
    EXPECT_EQ(
        Netlink_IPv4Route(RTM_DELROUTE, 100, 24, "192.168.1.0", "10.0.0.2", "10.0.0.1", "eth0", 5),
        0);
    EXPECT_EQ(SentBytes(), Hex("44000000 1900 0500 04030201 00000000"
                               "02 18 00 00  64 00 ff 00  00000000"  // scope NOWHERE
                               "0800 0700 0a000002"
                               "0800 0500 0a000001"
                               "0800 0100 c0a80100"
                               "0800 0400 02000000"
                               "0800 0600 05000000"));
    EXPECT_EQ(Log(), LogLines{Does("del 192.168.1.0 10.0.0.2 10.0.0.1 dev eth0 table 100")});
}

TEST_F(TableRouteTest, ADeletionWithoutAGatewayHasTheSameScope)
{
    EXPECT_EQ(Netlink_IPv4Route(RTM_DELROUTE, 0, 24, "192.168.1.0", nullptr, nullptr, nullptr, 0),
              0);
    EXPECT_EQ(SentBytes(), Hex("24000000 1900 0500 04030201 00000000"
                               "02 18 00 00  fe 00 ff 00  00000000"
                               "0800 0100 c0a80100"));
    EXPECT_EQ(Log(), LogLines{Does("del 192.168.1.0 (null) (null) dev (null) table 0")});
}

TEST_F(TableRouteTest, AnyOtherCommandCountsAsAnAddition)
{
    EXPECT_EQ(Netlink_IPv4Route(0x121a, 0, 24, nullptr, nullptr, nullptr, nullptr, 0), 0);
    EXPECT_EQ(SentBytes(), Hex("1c000000 1a12 0505 04030201 00000000"
                               "02 00 00 00  fe 02 fd 01  00000000"));
    EXPECT_EQ(Log(), LogLines{Does("add (null) (null) (null) dev (null) table 0")});
}

TEST_F(TableRouteTest, TheDefaultDestinationHasNoAttribute)
{
    for (const char* route : {"default", "all", "any"}) {
        rtnetlink.requests.clear();
        EXPECT_EQ(Netlink_IPv4Route(RTM_NEWROUTE, 0, 24, route, nullptr, "10.0.0.1", nullptr, 0),
                  0);
        EXPECT_EQ(SentBytes(), Hex("24000000 1800 0505 04030201 00000000"
                                   "02 00 00 00  fe 02 00 01  00000000"  // /0, main table, UNIVERSE
                                   "0800 0500 0a000001"));
    }
    EXPECT_EQ(Netlink_IPv4Route(RTM_NEWROUTE, 0, 0, "Default", nullptr, nullptr, nullptr, 0), -1);
    EXPECT_EQ(Netlink_IPv4Route(RTM_NEWROUTE, 0, 0, "anything", nullptr, nullptr, nullptr, 0), -1);
}

TEST_F(TableRouteTest, WithoutADestinationTheLengthIsNotUsed)
{
    EXPECT_EQ(Netlink_IPv4Route(RTM_NEWROUTE, 0, 24, nullptr, nullptr, "10.0.0.1", nullptr, 0), 0);
    EXPECT_EQ(SentBytes(), Hex("24000000 1800 0505 04030201 00000000"
                               "02 00 00 00  fe 02 00 01  00000000"
                               "0800 0500 0a000001"));
}

TEST_F(TableRouteTest, ARouteWithoutAGatewayIsOnTheLink)
{
    EXPECT_EQ(Netlink_IPv4Route(RTM_NEWROUTE, 0, 16, "10.1.0.0", nullptr, nullptr, "eth0", 0), 0);
    EXPECT_EQ(SentBytes(), Hex("2c000000 1800 0505 04030201 00000000"
                               "02 10 00 00  fe 02 fd 01  00000000"
                               "0800 0100 0a010000"
                               "0800 0400 02000000"));
    EXPECT_EQ(Log(), LogLines{Does("add 10.1.0.0 (null) (null) dev eth0 table 0")});
}

TEST_F(TableRouteTest, TableAndLengthAreCutToTheirLowBytes)
{
    EXPECT_EQ(
        Netlink_IPv4Route(RTM_NEWROUTE, 300, 0x7f20, "10.1.2.3", nullptr, nullptr, nullptr, 0), 0);
    EXPECT_EQ(SentBytes(), Hex("24000000 1800 0505 04030201 00000000"
                               "02 20 00 00  2c 02 fd 01  00000000"
                               "0800 0100 0a010203"));
    EXPECT_EQ(Log(), LogLines{Does("add 10.1.2.3 (null) (null) dev (null) table 300")});

    rtnetlink.requests.clear();
    EXPECT_EQ(Netlink_IPv4Route(RTM_DELROUTE, -256, -1, "10.1.2.3", nullptr, nullptr, nullptr, 0),
              0);
    EXPECT_EQ(SentBytes(), Hex("24000000 1900 0500 04030201 00000000"
                               "02 ff 00 00  00 00 ff 00  00000000"
                               "0800 0100 0a010203"));
    EXPECT_EQ(Log().back(), Does("del 10.1.2.3 (null) (null) dev (null) table -256"));
}

TEST_F(TableRouteTest, AMetricOfFourBytesIsSent)
{
    EXPECT_EQ(
        Netlink_IPv4Route(RTM_NEWROUTE, 0, 0, nullptr, nullptr, "10.0.0.1", nullptr, 0x89abcdef),
        0);
    EXPECT_EQ(SentBytes(), Hex("2c000000 1800 0505 04030201 00000000"
                               "02 00 00 00  fe 02 00 01  00000000"
                               "0800 0500 0a000001"
                               "0800 0600 efcdab89"));
}

TEST_F(TableRouteTest, AddressesThatDoNotParseOpenNothing)
{
    EXPECT_EQ(Netlink_IPv4Route(RTM_NEWROUTE, 1, 24, "10.1.0.0", "10.0.0", "10.0.0.1", "eth0", 0),
              -1);
    EXPECT_EQ(Netlink_IPv4Route(RTM_NEWROUTE, 1, 24, "10.1.0.0", "10.0.0.2", "gw", "eth0", 0), -1);
    EXPECT_EQ(Netlink_IPv4Route(RTM_DELROUTE, 1, 24, "10.1/16", nullptr, nullptr, "eth9", 0), -1);
    EXPECT_EQ(Log(), (LogLines{Does("add 10.1.0.0 10.0.0 10.0.0.1 dev eth0 table 1"),
                               Does("add 10.1.0.0 10.0.0.2 gw dev eth0 table 1"),
                               Does("del 10.1/16 (null) (null) dev eth9 table 1")}));
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(TableRouteTest, TheHandleIsOpenedBeforeTheCardIsLookedUp)
{
    EXPECT_EQ(Netlink_IPv4Route(RTM_NEWROUTE, 0, 24, "10.1.0.0", nullptr, nullptr, "eth0", 0), 0);
    EXPECT_EQ(Trace(), Joined({kOpening,
                               {"socket AF_INET", "fcntl F_SETFD", "ioctl SIOCGIFINDEX eth0",
                                "close AF_INET"},
                               kExchange,
                               kFlush,
                               kEnd}));
    EXPECT_EQ(Get(kFlushFile), "-1");
}

TEST_F(TableRouteTest, ARefusalIsToldByTheExchangeAloneAndFlushesNothing)
{
    rtnetlink.refusal = ENETUNREACH;
    EXPECT_EQ(Netlink_IPv4Route(RTM_NEWROUTE, 0, 0, "any", nullptr, "10.0.0.1", nullptr, 0), -1);
    EXPECT_EQ(Log(),
              (LogLines{Does("add any (null) 10.0.0.1 dev (null) table 0"), Answers(ENETUNREACH)}));
    EXPECT_EQ(Trace(), Joined({kOpening, kExchange, kEnd}));
    EXPECT_EQ(Get(kFlushFile), "");
}

TEST_F(TableRouteTest, AnUnknownCardIsLeftToTheKernelToRefuse)
{
    rtnetlink.refusal = ENODEV;
    EXPECT_EQ(Netlink_IPv4Route(RTM_NEWROUTE, 0, 0, nullptr, nullptr, nullptr, "eth9", 0), -1);
    EXPECT_EQ(SentBytes(), Hex("24000000 1800 0505 04030201 00000000"
                               "02 00 00 00  fe 02 fd 01  00000000"
                               "0800 0400 00000000"));
    EXPECT_EQ(Log(), (LogLines{Does("add (null) (null) (null) dev eth9 table 0"), NoDevice("eth9"),
                               Answers(ENODEV)}));
}

TEST_F(TableRouteTest, AHandleThatIsClosedIsNotUsedAgain)
{
    Fail("getsockname", ENOBUFS);
    EXPECT_EQ(Netlink_IPv4Route(RTM_NEWROUTE, 0, 0, "any", nullptr, "10.0.0.1", nullptr, 0), -1);
    EXPECT_EQ(Trace(), Joined({kOpening, kEnd, {"malloc", "sendmsg 0"}}));
    EXPECT_EQ(Log(), (LogLines{Does("add any (null) 10.0.0.1 dev (null) table 0"),
                               Error("rtnl_open", "getsockname failed [No buffer space available]"),
                               Error("rtnl_talk", "can't talk to rtnetlink")}));
}

TEST_F(TableRouteTest, EachFailureIsToldAndLeavesNothingOpen)
{
    static int result;
    FailEachCall(
        [] {
            result =
                Netlink_IPv4Route(RTM_NEWROUTE, 7, 24, "10.1.0.0", nullptr, "10.0.0.1", "eth0", 0);
        },
        [](const std::string& failed) {
            const bool flushFailed = failed.find(kFlushFile) != std::string::npos;
            const bool goesOn = flushFailed || failed == "socket AF_INET" ||
                                failed == "fcntl F_SETFD" || failed.rfind("ioctl", 0) == 0 ||
                                failed.rfind("recvmsg", 0) == 0;
            EXPECT_EQ(result, goesOn ? 0 : -1);
            EXPECT_EQ(LogOf(kRoute).size(), 1U);
            EXPECT_EQ(Get(kFlushFile), goesOn && !flushFailed ? "-1" : "");
        },
        {});
}

}  // namespace
