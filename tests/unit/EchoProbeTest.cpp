// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The check whether a host answers.

#include "Arp_Ping.h"
#include "CommonApi.h"

#include "ProbeWorld.h"

#include <cerrno>
#include <climits>

using namespace fake;

namespace {

constexpr char kHost[] = "10.0.0.2";
const Bytes kToHost = {2, 0, 0, 0, 10, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0};

const Texts kSends = {"sendto 10.0.0.2 40 0", "sendto 10.0.0.2 40 0", "sendto 10.0.0.2 40 0"};
const LogLine kAlive = Info("Ping_CheckAlive", "device 10.0.0.2 is alive");
const LogLine kNotAlive = Info("Ping_CheckAlive", "device 10.0.0.2 is not alive");
const LogLine kPoolError = Warn("Ping_CheckAlive", "pool error");
const LogLine kReciveError = Warn("Ping_CheckAlive", "recive error");

class PingTest : public ProbeWorld {
protected:
    static void Arrive(const Bytes& datagram, const char* from = kHost, int after = 0)
    {
        wire.arrivals.push_back({datagram, from, after});
    }

    /// What the probe itself logs, without the waits below it.
    static LogLines Own() { return LogOf("Ping_CheckAlive"); }
};

// ---- sending

TEST_F(PingTest, SendsThreeEqualRequestsToTheHost)
{
    EXPECT_FALSE(Ping_CheckAlive(nullptr, nullptr, kHost, 0));
    const Sent request = {EchoRequest(), kToHost};
    EXPECT_EQ(wire.sent, (std::vector<Sent>{request, request, request}));
}

TEST_F(PingTest, WithoutABudgetTheHostIsNotAliveAtOnce)
{
    for (const int timeout : {0, -1, INT_MIN}) {
        ClearTrace();
        ClearLog();
        Arrive(EchoReply());
        EXPECT_FALSE(Ping_CheckAlive(nullptr, nullptr, kHost, timeout));
        EXPECT_EQ(WireCalls(), (Texts{"socket AF_INET", "fcntl F_SETFD", kSends[0], kSends[1],
                                      kSends[2], "close AF_INET"}))
            << timeout;
        EXPECT_EQ(Log(), (LogLines{kNotAlive}));
    }
}

TEST_F(PingTest, UsesARawIcmpSocket)
{
    Texts open;
    OnCall("sendto", [&] { open = OpenHandles(); });
    EXPECT_FALSE(Ping_CheckAlive(nullptr, nullptr, kHost, 0));
    EXPECT_EQ(open, (Texts{"socket AF_INET 3 1"}));
    EXPECT_EQ(OpenHandles(), Texts{});
}

TEST_F(PingTest, BindsTheCardAndThenItsAddress)
{
    Arrive(EchoReply());
    EXPECT_TRUE(Ping_CheckAlive("eth0", kOurIP, kHost, 3));
    EXPECT_EQ(WireCalls(), (Texts{"socket AF_INET", "fcntl F_SETFD", BindsTo("eth0"),
                                  "bind 10.0.0.1 0 16", kSends[0], kSends[1], kSends[2],
                                  "poll 1 3000", "recvfrom 63 0 16", "close AF_INET"}));
    EXPECT_EQ(Log(), (LogLines{kAlive}));
}

TEST_F(PingTest, BindsWhatIsGivenAlone)
{
    EXPECT_FALSE(Ping_CheckAlive("eth0", nullptr, kHost, 0));
    EXPECT_FALSE(Ping_CheckAlive(nullptr, kOurIP, kHost, 0));
    EXPECT_EQ(TraceOf({"setsockopt", "bind"}), (Texts{BindsTo("eth0"), "bind 10.0.0.1 0 16"}));
}

TEST_F(PingTest, GoesOnWhenNothingCanBeBound)
{
    Arrive(EchoReply());
    EXPECT_TRUE(Ping_CheckAlive("eth9", "10.0.0.99", kHost, 1));
    EXPECT_EQ(Log(), (LogLines{Error("BindToDevice", "set socket SO_BINDTODEVICE failed"),
                               Error("BindIPPort", "bind failed:Cannot assign requested address"),
                               kAlive}));
}

TEST_F(PingTest, GoesOnWithASourceThatDoesNotParse)
{
    Arrive(EchoReply());
    errno = 0;
    EXPECT_TRUE(Ping_CheckAlive(nullptr, "10.0.0", kHost, 1));
    EXPECT_EQ(Log(), (LogLines{Error("BindIPPort", "inet_pton failed:Success"), kAlive}));
}

TEST_F(PingTest, ARequestThatCannotBeSentDoesNotKeepTheNext)
{
    for (int nth = 1; nth <= 3; ++nth) {
        wire.sent.clear();
        ClearLog();
        ClearTrace();
        Fail("sendto", ENETUNREACH, nth);
        EXPECT_FALSE(Ping_CheckAlive(nullptr, nullptr, kHost, 0));
        EXPECT_EQ(TraceOf({"sendto"}), kSends);
        EXPECT_EQ(wire.sent.size(), 2U);
        EXPECT_EQ(Log(), (LogLines{Error("Ping_CheckAlive", "send error [Network is unreachable]"),
                                   kNotAlive}));
    }
}

TEST_F(PingTest, ARequestThatIsSentInPartHasFailed)
{
    wire.room = 39;
    EXPECT_FALSE(Ping_CheckAlive(nullptr, nullptr, kHost, 0));
    EXPECT_EQ(Own().size(), 4U);
    EXPECT_EQ(wire.sent.size(), 3U);
}

// ---- preparation

TEST_F(PingTest, NoHostIsAFailureWithoutASound)
{
    EXPECT_FALSE(Ping_CheckAlive("eth0", kOurIP, nullptr, 1));
    EXPECT_EQ(Trace(), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(PingTest, NoSocketIsAFailure)
{
    FailAll("socket", EPERM);
    EXPECT_FALSE(Ping_CheckAlive("eth0", kOurIP, kHost, 1));
    EXPECT_EQ(Log(), (LogLines{Error("CreatAFRawSock",
                                     "can not creat AF raw socket[Operation not permitted]."),
                               Error("Ping_CheckAlive", "CreatAFRawSock failed")}));
    EXPECT_EQ(WireCalls(), (Texts{"socket AF_INET"}));
}

TEST_F(PingTest, AHostThatDoesNotParseIsProbedAndNeverAlive)
{
    for (const std::string host : {"", "10.0.0", "10.0.0.256", "010.0.0.2", "10.0.0.2 ", "host"}) {
        ClearTrace();
        ClearLog();
        wire = Wire();
        Arrive(EchoReply(), "0.0.0.0");
        Arrive(EchoReply(), kHost);
        EXPECT_FALSE(Ping_CheckAlive(nullptr, nullptr, host.c_str(), 2)) << host;
        const Sent request = {EchoRequest(), {2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}};
        EXPECT_EQ(wire.sent, (std::vector<Sent>{request, request, request}));
        EXPECT_EQ(Own(), (LogLines{Error("Ping_CheckAlive", "inet_pton failed"), kPoolError,
                                   Info("Ping_CheckAlive", "device " + host + " is not alive")}));
        EXPECT_EQ(TraceOf({"recvfrom"}).size(), 2U);
    }
}

TEST_F(PingTest, TheHostIsLookedAtBehindWhatIsBound)
{
    EXPECT_FALSE(Ping_CheckAlive("eth9", "10.0.0", "host", 0));
    EXPECT_EQ(Log(), (LogLines{Error("BindToDevice", "set socket SO_BINDTODEVICE failed"),
                               Error("BindIPPort", "inet_pton failed:No such device"),
                               Error("Ping_CheckAlive", "inet_pton failed"),
                               Info("Ping_CheckAlive", "device host is not alive")}));
}

// ---- listening

TEST_F(PingTest, ASilentHostUsesTheBudgetOnce)
{
    EXPECT_FALSE(Ping_CheckAlive(nullptr, nullptr, kHost, 3));
    EXPECT_EQ(TraceOf({"poll", "recv"}), (Texts{"poll 1 3000"}));
    LogLines expected = HeardNothing("Ping_CheckAlive", 3);
    expected.push_back(kNotAlive);
    EXPECT_EQ(Log(), expected);
}

TEST_F(PingTest, TheBudgetBeginsBehindTheSends)
{
    OnCall("sendto", [] { SetClock(1000000 + 100); });
    OnCall("sendto", [] { SetClock(1000000 + 200); });
    OnCall("sendto", [] { SetClock(1000000 + 300); });
    EXPECT_FALSE(Ping_CheckAlive(nullptr, nullptr, kHost, 3));
    EXPECT_EQ(TraceOf({"poll"}), (Texts{"poll 1 3000"}));
}

TEST_F(PingTest, TheOutcomeIsToldBeforeTheSocketIsClosed)
{
    for (const LogLine& outcome : {kNotAlive, kAlive}) {
        ClearLog();
        LogLines told;
        OnCall("close AF_INET", [&] { told = Log(); });
        if (outcome == kAlive) Arrive(EchoReply());
        EXPECT_EQ(Ping_CheckAlive(nullptr, nullptr, kHost, 1), outcome == kAlive);
        ASSERT_FALSE(told.empty());
        EXPECT_EQ(told.back(), outcome);
    }
}

TEST_F(PingTest, TheFirstAnswerEndsTheProbe)
{
    Arrive(EchoReply(), kHost, 2);
    Arrive(EchoReply(), kHost, 0);
    EXPECT_TRUE(Ping_CheckAlive(nullptr, nullptr, kHost, 3));
    EXPECT_EQ(TraceOf({"poll", "recv"}), (Texts{"poll 1 3000", "recvfrom 63 0 16"}));
    EXPECT_EQ(Log(), (LogLines{kAlive}));
}

struct Foreign {
    const char* what;
    Bytes datagram;
    const char* from;
};

class ForeignDatagram : public PingTest, public testing::WithParamInterface<int> {};

/// Made in the test: the identifier is that of its process.
std::vector<Foreign> ForeignDatagrams()
{
    const auto ours = OurIdentifier();
    const auto neverOurs = static_cast<uint8_t>(~ours & 0xFF);
    return {{"another host", EchoReply(), "10.0.0.3"},
            {"another process", IPHeader() + Icmp(0, static_cast<uint16_t>(ours ^ 0x0100)), kHost},
            {"our own request", IPHeader() + Icmp(8, ours), kHost},
            {"unreachable", IPHeader() + Icmp(3, ours), kHost},
            {"an end before the identifier", IPHeader() + Bytes{0, 0, 0, 0, neverOurs}, kHost},
            {"28 bytes do not remain", IPHeader(40) + Icmp(0, ours), kHost},
            {"the longest header", IPHeader(60) + Icmp(0, ours), kHost}};
}
constexpr int kForeignDatagrams = 7;

TEST_P(ForeignDatagram, IsPassedOverWithoutAWord)
{
    const Foreign foreign = ForeignDatagrams().at(static_cast<size_t>(GetParam()));
    Arrive(foreign.datagram, foreign.from, 1);
    Arrive(EchoReply(), kHost, 1);
    EXPECT_TRUE(Ping_CheckAlive(nullptr, nullptr, kHost, 3)) << foreign.what;
    EXPECT_EQ(TraceOf({"poll", "recv"}),
              (Texts{"poll 1 3000", "recvfrom 63 0 16", "poll 1 2000", "recvfrom 63 0 16"}));
    EXPECT_EQ(Log(), (LogLines{kAlive}));
}

TEST_P(ForeignDatagram, UsesUpTheBudget)
{
    const Foreign foreign = ForeignDatagrams().at(static_cast<size_t>(GetParam()));
    for (int i = 0; i < 4; ++i) Arrive(foreign.datagram, foreign.from, 1);
    EXPECT_FALSE(Ping_CheckAlive(nullptr, nullptr, kHost, 3)) << foreign.what;
    EXPECT_EQ(TraceOf({"poll"}), (Texts{"poll 1 3000", "poll 1 2000", "poll 1 1000"}));
    EXPECT_EQ(Log(), (LogLines{kNotAlive}));
}

INSTANTIATE_TEST_SUITE_P(Datagrams, ForeignDatagram, testing::Range(0, kForeignDatagrams));

TEST_F(PingTest, AnswersBehindIPOptionsCountAsLongAs28BytesRemain)
{
    for (const uint8_t header : {24, 32, 36}) {
        ClearLog();
        Arrive(IPHeader(header) + Icmp(0, OurIdentifier()));
        EXPECT_TRUE(Ping_CheckAlive(nullptr, nullptr, kHost, 1)) << int{header};
        EXPECT_EQ(Log(), (LogLines{kAlive}));
    }
}

TEST_F(PingTest, TheHeadersSizeIsItsLowFourBits)
{
    Bytes reply = EchoReply();
    reply[0] = 0xF5;
    Arrive(reply);
    EXPECT_TRUE(Ping_CheckAlive(nullptr, nullptr, kHost, 1));
}

TEST_F(PingTest, AShortAnswerIsFilledUpWithZeros)
{
    const Bytes reply = EchoReply();
    Arrive(Bytes(reply.begin(), reply.begin() + 26));  // as far as the identifier
    EXPECT_TRUE(Ping_CheckAlive(nullptr, nullptr, kHost, 1));
}

TEST_F(PingTest, NothingOfTheDatagramBeforeIsLeftForOneThatHoldsNothing)
{
    Arrive(EchoReply(), "10.0.0.3");
    Arrive({});
    Arrive(IPHeader() + Icmp(8, OurIdentifier()));
    Arrive(EchoReply(), "");  // the kernel tells no sender: not that of the one before
    EXPECT_FALSE(Ping_CheckAlive(nullptr, nullptr, kHost, 1));
    EXPECT_EQ(TraceOf({"recvfrom"}).size(), 4U);
    EXPECT_EQ(Own(), (LogLines{kPoolError, kNotAlive}));  // an empty one is no failure
}

TEST_F(PingTest, NothingOfTheDatagramBeforeIsLeft)
{
    const Bytes reply = EchoReply();
    Arrive(reply, "10.0.0.3");
    Bytes cut(reply.begin(), reply.begin() + 25);
    cut[24] = static_cast<uint8_t>(~reply[24]);
    Arrive(cut);
    EXPECT_FALSE(Ping_CheckAlive(nullptr, nullptr, kHost, 1));
}

TEST_F(PingTest, ALongAnswerIsCut)
{
    Arrive(EchoReply() + Bytes(1400, 0xEE));
    EXPECT_TRUE(Ping_CheckAlive(nullptr, nullptr, kHost, 1));
}

TEST_F(PingTest, AFailedWaitIsTriedAgain)
{
    Fail("poll", EINTR);
    wire.arrivals.push_back({{}, kHost, 0, POLLERR});
    Arrive(EchoReply());
    EXPECT_TRUE(Ping_CheckAlive(nullptr, nullptr, kHost, 1));
    EXPECT_EQ(Own(), (LogLines{kPoolError, kPoolError, kAlive}));
    EXPECT_EQ(LogOf("ListenToSocket").size(), 2U);
}

TEST_F(PingTest, AFailedReceiveIsPassedOver)
{
    for (const int reason : {EHOSTUNREACH, ECONNREFUSED, EINTR, EAGAIN, ENETDOWN}) {
        ClearLog();
        ClearTrace();
        Fail("recvfrom", reason);
        Arrive(EchoReply());
        EXPECT_TRUE(Ping_CheckAlive(nullptr, nullptr, kHost, 1));
        EXPECT_EQ(Log(), (LogLines{kReciveError, kAlive}));
        EXPECT_EQ(TraceOf({"recvfrom"}).size(), 2U);
    }
}

TEST_F(PingTest, AClockThatIsSetBackLengthensTheProbe)
{
    OnCall("poll", [] { SetClock(1000000 - 103); });
    EXPECT_FALSE(Ping_CheckAlive(nullptr, nullptr, kHost, 3));
    EXPECT_EQ(TraceOf({"poll"}), (Texts{"poll 1 3000", "poll 1 103000"}));
}

TEST_F(PingTest, AClockThatIsSetForwardEndsTheProbe)
{
    OnCall("poll", [] { SetClock(1000000 + 3); });
    Arrive(Bytes(40));
    Arrive(EchoReply());
    EXPECT_FALSE(Ping_CheckAlive(nullptr, nullptr, kHost, 3));
    EXPECT_EQ(TraceOf({"poll"}), (Texts{"poll 1 3000"}));
}

TEST_F(PingTest, EveryFailureLeavesNoSocketOpen)
{
    static bool alive = false;
    FailEachCall(
        [] {
            wire.arrivals = {{EchoReply(), "10.0.0.3", 1}, {EchoReply(), kHost, 0}};
            alive = Ping_CheckAlive("eth0", kOurIP, kHost, 2);
        },
        [](const std::string& failed) { EXPECT_EQ(alive, failed != "socket AF_INET"); },
        {"nothing"});
}

// ---- NetPingCheck

class NetPingCheckTest : public PingTest {};

TEST_F(NetPingCheckTest, AsksFromTheCardWithItsAddress)
{
    Arrive(EchoReply(), kHost, 2);
    EXPECT_TRUE(NetPingCheck("eth0", kHost, 2));
    EXPECT_EQ(TraceOf({"setsockopt", "bind", "poll"}),
              (Texts{BindsTo("eth0"), "bind 10.0.0.1 0 16", "poll 1 2000"}));
}

TEST_F(NetPingCheckTest, WithoutACardTheKernelPicksTheWay)
{
    Arrive(EchoReply());
    EXPECT_TRUE(NetPingCheck(nullptr, kHost, 1));
    EXPECT_EQ(WireCalls(), (Texts{"socket AF_INET", "fcntl F_SETFD", kSends[0], kSends[1],
                                  kSends[2], "poll 1 1000", "recvfrom 63 0 16", "close AF_INET"}));
    EXPECT_EQ(Log(), (LogLines{kAlive}));
}

TEST_F(NetPingCheckTest, WithoutAnAddressTheHostIsAskedAllTheSame)
{
    kernel.At("eth0").address = "";
    Arrive(EchoReply());
    EXPECT_TRUE(NetPingCheck("eth0", kHost, 1));
    EXPECT_EQ(TraceOf({"setsockopt", "bind"}), Texts{});
    EXPECT_EQ(LogOf("NetPingCheck"), (LogLines{Error("NetPingCheck", "NetGetIPbyName failed")}));
    EXPECT_EQ(Log().back(), kAlive);
}

TEST_F(NetPingCheckTest, AnUnknownCardIsAsOneWithoutAddress)
{
    for (const char* name : {"eth9", ""}) {
        ClearLog();
        wire.sent.clear();
        EXPECT_FALSE(NetPingCheck(name, kHost, 0));
        EXPECT_EQ(TraceOf({"setsockopt", "bind"}), Texts{});
        EXPECT_EQ(LogOf("NetPingCheck"),
                  (LogLines{Error("NetPingCheck", "NetGetIPbyName failed")}));
        EXPECT_EQ(wire.sent.size(), 3U);
    }
}

TEST_F(NetPingCheckTest, NoHostIsAFailureWithoutASound)
{
    EXPECT_FALSE(NetPingCheck("eth0", nullptr, 1));
    EXPECT_FALSE(NetPingCheck(nullptr, nullptr, 1));
    EXPECT_EQ(Trace(), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NetPingCheckTest, EveryFailureLeavesNoRawSocketOpen)
{
    static bool alive = false;
    FailEachCall(
        [] {
            wire.arrivals = {{EchoReply(), kHost, 1}};
            alive = NetPingCheck("eth0", kHost, 2);
        },
        [](const std::string&) {
            EXPECT_EQ(alive, !Logged(Error("Ping_CheckAlive", "CreatAFRawSock failed")));
        },
        {"socket AF_INET 2 0"});
}

}  // namespace
