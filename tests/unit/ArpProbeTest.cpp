// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The check whether anybody else uses a card's addresses.

#include "Arp_Ping.h"
#include "CommonApi.h"

#include "ProbeWorld.h"

#include <algorithm>
#include <cerrno>
#include <climits>

using namespace fake;

namespace {

/// Asks for our own address, as the device does.
int32_t Probe(int timeout, const char* name = "eth0")
{
    return Arp_Ckeck(name, kOurIP, kOurMac, kOurIP, kBroadcastMac, timeout);
}

LogLines Joined(std::initializer_list<LogLines> parts)
{
    LogLines all;
    for (const LogLines& part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
}

const LogLine kIPConflict = Warn("ParseArpPacket", "ip is confilct with mac 02:00:00:00:00:01");
const LogLine kMacConflict = Warn("ParseArpPacket", "mac is confilct with addr 10.0.0.200");
const LogLine kPoolError = Warn("Arp_Ckeck", "pool error");

const Texts kSends = {"sendto eth0 60 0", "sendto eth0 60 0", "sendto eth0 60 0"};

class ArpCheckTest : public ProbeWorld {
protected:
    LogLines HeardNothing(int seconds) const
    {
        return ProbeWorld::HeardNothing("Arp_Ckeck", seconds);
    }

    static void Arrive(const Bytes& frame, int after = 0)
    {
        wire.arrivals.push_back({frame, "", after});
    }
};

// ---- sending

TEST_F(ArpCheckTest, SendsThreeEqualFramesToTheCard)
{
    EXPECT_EQ(Probe(0), 0);
    const Sent probe = {kArpProbe, kToEth0};
    EXPECT_EQ(wire.sent, (std::vector<Sent>{probe, probe, probe}));
}

TEST_F(ArpCheckTest, WithoutABudgetItDoesNotListen)
{
    for (const int timeout : {0, -1, INT_MIN}) {
        ClearTrace();
        EXPECT_EQ(Probe(timeout), 0);
        EXPECT_EQ(WireCalls(), (Texts{"socket AF_INET", "fcntl F_SETFD", kSends[0], kSends[1],
                                      kSends[2], "close AF_INET"}))
            << timeout;
    }
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(ArpCheckTest, UsesAPacketSocketForArpAlone)
{
    Texts open;
    OnCall("sendto", [&] { open = OpenHandles(); });
    EXPECT_EQ(Probe(0), 0);
    EXPECT_EQ(open, (Texts{"socket AF_INET 10 1544"}));
    EXPECT_EQ(OpenHandles(), Texts{});
}

TEST_F(ArpCheckTest, AsksForWhatItIsTold)
{
    EXPECT_EQ(Arp_Ckeck("eth0", "10.1", "2:0:0:0:0:1", "10.0.0.77", "02:00:00:11:22:33", 0), 0);
    Bytes frame = kArpProbe;
    std::copy_n(Bytes{2, 0, 0, 0x11, 0x22, 0x33}.begin(), 6, frame.begin());
    frame[41] = 77;
    ASSERT_EQ(wire.sent.size(), 3U);
    EXPECT_EQ(wire.sent[0], (Sent{frame, kToEth0}));
}

TEST_F(ArpCheckTest, CutsALongName)
{
    kernel.Add("abcdefghijklm");
    EXPECT_EQ(Probe(0, "abcdefghijklmnop"), 0);
    ASSERT_EQ(wire.sent.size(), 3U);
    EXPECT_EQ(wire.sent[0].address,
              (Bytes{0, 0, 'a', 'b', 'c', 'd', 'e', 'f', 'g', 'h', 'i', 'j', 'k', 'l', 'm', 0}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(ArpCheckTest, AFrameThatCannotBeSentDoesNotKeepTheNext)
{
    for (int nth = 1; nth <= 3; ++nth) {
        wire.sent.clear();
        ClearLog();
        ClearTrace();
        Fail("sendto", ENETDOWN, nth);
        EXPECT_EQ(Probe(0), 0);
        EXPECT_EQ(TraceOf({"sendto"}), kSends);
        EXPECT_EQ(wire.sent.size(), 2U);
        EXPECT_EQ(Log(),
                  (LogLines{Error("Arp_Ckeck", "send arp packet failed [Network is down]")}));
    }
}

TEST_F(ArpCheckTest, AnUnknownCardIsToldThreeTimesAndTheProbeGoesOn)
{
    const LogLine refused = Error("Arp_Ckeck", "send arp packet failed [No such device]");
    EXPECT_EQ(Probe(0, "eth9"), 0);
    EXPECT_EQ(Log(), (LogLines{refused, refused, refused}));
}

TEST_F(ArpCheckTest, AFrameThatIsSentInPartHasFailed)
{
    wire.room = 59;
    errno = 0;
    EXPECT_EQ(Probe(0), 0);
    EXPECT_EQ(LogOf("Arp_Ckeck").size(), 3U);
    EXPECT_EQ(wire.sent.size(), 3U);
}

// ---- preparation

TEST_F(ArpCheckTest, NullIsAFailureWithoutASound)
{
    EXPECT_EQ(Arp_Ckeck(nullptr, kOurIP, kOurMac, kOurIP, kBroadcastMac, 1), -1);
    EXPECT_EQ(Arp_Ckeck("eth0", nullptr, kOurMac, kOurIP, kBroadcastMac, 1), -1);
    EXPECT_EQ(Arp_Ckeck("eth0", kOurIP, nullptr, kOurIP, kBroadcastMac, 1), -1);
    EXPECT_EQ(Arp_Ckeck("eth0", kOurIP, kOurMac, nullptr, kBroadcastMac, 1), -1);
    EXPECT_EQ(Arp_Ckeck("eth0", kOurIP, kOurMac, kOurIP, nullptr, 1), -1);
    EXPECT_EQ(Trace(), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(ArpCheckTest, NoSocketIsAFailure)
{
    FailAll("socket", EPERM);
    EXPECT_EQ(Probe(1), -1);
    EXPECT_EQ(Log(), (LogLines{Error("CreatPFRawSock",
                                     "can not creat AF raw socket[Operation not permitted]."),
                               Error("Arp_Ckeck", "CreatPFRawSock error.")}));
    EXPECT_EQ(WireCalls(), (Texts{"socket AF_INET"}));
}

TEST_F(ArpCheckTest, TextsThatDoNotParseAreAFailureAndNothingIsSent)
{
    EXPECT_EQ(Arp_Ckeck("eth0", kOurIP, kOurMac, "10.0.0.x", kBroadcastMac, 1), -1);
    EXPECT_EQ(Arp_Ckeck("eth0", kOurIP, "no", kOurIP, kBroadcastMac, 1), -1);
    EXPECT_EQ(Log(), (LogLines{Error("CreatArpPacket", "addr error[10.0.0.1,10.0.0.x]"),
                               Error("Arp_Ckeck", "CreatArpPacket error."),
                               Error("CreatArpPacket", "mac error[no,ff:ff:ff:ff:ff:ff]"),
                               Error("Arp_Ckeck", "CreatArpPacket error.")}));
    EXPECT_EQ(WireCalls(), (Texts{"socket AF_INET", "fcntl F_SETFD", "close AF_INET",
                                  "socket AF_INET", "fcntl F_SETFD", "close AF_INET"}));
}

TEST_F(ArpCheckTest, TextsThatDoNotParseAreToldBeforeTheSocketIsClosed)
{
    size_t told = 0;
    OnCall("close AF_INET", [&] { told = Log().size(); });
    EXPECT_EQ(Arp_Ckeck("eth0", kOurIP, kOurMac, "10.0.0.x", kBroadcastMac, 1), -1);
    EXPECT_EQ(told, 2U);
}

// ---- listening

TEST_F(ArpCheckTest, ASilentSegmentUsesTheWholeBudget)
{
    EXPECT_EQ(Probe(3), 0);
    EXPECT_EQ(WireCalls(), (Texts{"socket AF_INET", "fcntl F_SETFD", kSends[0], kSends[1],
                                  kSends[2], "poll 1 3000", "poll 1 0", "close AF_INET"}));
    EXPECT_EQ(Log(), Joined({HeardNothing(3), HeardNothing(0)}));
}

TEST_F(ArpCheckTest, TheBudgetBeginsBehindTheSends)
{
    OnCall("sendto", [] { SetClock(1000000 + 100); });
    OnCall("sendto", [] { SetClock(1000000 + 200); });
    OnCall("sendto", [] { SetClock(1000000 + 300); });
    EXPECT_EQ(Probe(3), 0);
    EXPECT_EQ(TraceOf({"poll"}), (Texts{"poll 1 3000", "poll 1 0"}));
}

TEST_F(ArpCheckTest, AConflictDoesNotEndTheProbe)
{
    Arrive(ArpReply(kOtherMacBytes, kOurIPBytes), 1);
    EXPECT_EQ(Probe(3), 2);
    EXPECT_EQ(TraceOf({"poll", "recv"}),
              (Texts{"poll 1 3000", "recv 60 0", "poll 1 2000", "poll 1 0"}));
    EXPECT_EQ(Log(), Joined({{kIPConflict}, HeardNothing(2), HeardNothing(0)}));
}

TEST_F(ArpCheckTest, OurHardwareAddressElsewhereIsOne)
{
    Arrive(ArpReply(kOurMacBytes, kOtherIPBytes));
    EXPECT_EQ(Probe(1), 1);
}

TEST_F(ArpCheckTest, BothKindsAreJoined)
{
    Arrive(ArpReply(kOtherMacBytes, kOurIPBytes));
    Arrive(ArpReply(kOurMacBytes, kOtherIPBytes), 1);
    Arrive(ArpReply(kOtherMacBytes, kOurIPBytes));
    EXPECT_EQ(Probe(2), 3);
    EXPECT_EQ(LogOf("ParseArpPacket"), (LogLines{kIPConflict, kMacConflict, kIPConflict}));
}

TEST_F(ArpCheckTest, WhatIsNoReplyToUsIsNoConflict)
{
    Arrive(ArpPacket(1, kOtherMacBytes, kOurIPBytes, kNobody));     // a request with our address
    Arrive(ArpReply(kOtherMacBytes, kOurIPBytes, kOtherMacBytes));  // to a third party
    Arrive(ArpReply(kOurMacBytes, kOurIPBytes));                    // our own, looped back
    Arrive(ArpReply(kOtherMacBytes, kOtherIPBytes));                // of a stranger
    EXPECT_EQ(Probe(1), 0);
    EXPECT_EQ(LogOf("ParseArpPacket"), LogLines{});
    EXPECT_EQ(TraceOf({"recv"}).size(), 4U);
}

TEST_F(ArpCheckTest, AReplyWhenTheBudgetIsUsedUpIsStillHeard)
{
    Arrive(ArpReply(kOurMacBytes, kOtherIPBytes), 2);
    Arrive(ArpReply(kOtherMacBytes, kOurIPBytes));
    EXPECT_EQ(Probe(2), 3);
    EXPECT_EQ(TraceOf({"poll"}), (Texts{"poll 1 2000", "poll 1 0"}));
}

TEST_F(ArpCheckTest, TheRestOfAnOverdueBudgetIsNotWaitedFor)
{
    OnCall("poll", [] { SetClock(1000000 + 9); });
    EXPECT_EQ(Probe(3), 0);
    EXPECT_EQ(TraceOf({"poll"}), (Texts{"poll 1 3000", "poll 1 0"}));
    EXPECT_EQ(Log(), Joined({HeardNothing(3), HeardNothing(-9)}));
}

TEST_F(ArpCheckTest, AClockThatIsSetBackLengthensTheProbe)
{
    OnCall("poll", [] { SetClock(1000000 - 103); });
    EXPECT_EQ(Probe(3), 0);
    EXPECT_EQ(TraceOf({"poll"}), (Texts{"poll 1 3000", "poll 1 103000", "poll 1 0"}));
}

TEST_F(ArpCheckTest, ABudgetBeyondCountingIsCutForTheWaitAlone)
{
    OnCall("poll", [] { SetClock(1000000 - 5); });
    Arrive(Bytes(60));
    OnCall("recv", [] { SetClock(1000000 - 5); });
    Arrive(Bytes(60), 1);
    OnCall("recv", [] { SetClock(time_t{1000000} + INT_MAX); });
    EXPECT_EQ(Probe(INT_MAX), 0);
    EXPECT_EQ(TraceOf({"poll"}), (Texts{"poll 1 2147483647", "poll 1 2147483647", "poll 1 0"}));
}

TEST_F(ArpCheckTest, AFailedWaitIsTriedAgain)
{
    Fail("poll", EINTR);
    Arrive(ArpReply(kOtherMacBytes, kOurIPBytes));
    EXPECT_EQ(Probe(1), 2);
    const LogLines log = Log();
    ASSERT_GE(log.size(), 3U);
    EXPECT_EQ(log[0].operation, "ListenToSocket");
    EXPECT_NE(log[0].text.find("error[Interrupted system call]"), std::string::npos);
    EXPECT_EQ(log[1], kPoolError);
    EXPECT_EQ(log[2], kIPConflict);
}

TEST_F(ArpCheckTest, AnotherEventIsPassedOver)
{
    wire.arrivals.push_back({{}, "", 0, POLLERR});
    Arrive(ArpReply(kOtherMacBytes, kOurIPBytes));
    EXPECT_EQ(Probe(1), 2);
    EXPECT_EQ(Log(), Joined({{Error("ListenToSocket", "Not in event"), kPoolError, kIPConflict},
                             HeardNothing(1),
                             HeardNothing(0)}));
}

TEST_F(ArpCheckTest, AFailedReceiveIsPassedOver)
{
    Fail("recv ", ENETDOWN);
    Arrive(ArpReply(kOtherMacBytes, kOurIPBytes));
    EXPECT_EQ(Probe(1), 2);
    EXPECT_EQ(Log(), Joined({{Warn("Arp_Ckeck", "recive error"), kIPConflict},
                             HeardNothing(1),
                             HeardNothing(0)}));
}

TEST_F(ArpCheckTest, AShortFrameLeavesTheRestOfTheOneBefore)
{
    Arrive(ArpReply(kOtherMacBytes, kOurIPBytes));
    Arrive({});  // the same again
    const Bytes stranger = ArpReply(kOurMacBytes, kOtherIPBytes);
    Arrive(Bytes(stranger.begin(), stranger.begin() + 32));  // as far as its sender
    EXPECT_EQ(Probe(1), 3);
    EXPECT_EQ(LogOf("ParseArpPacket"), (LogLines{kIPConflict, kIPConflict, kMacConflict}));
}

TEST_F(ArpCheckTest, AShortFrameInFrontLeavesOurOwn)
{
    Bytes head = kArpProbe;
    head[21] = 2;
    Arrive(Bytes(head.begin(), head.begin() + 22));  // a reply that ends before its addresses
    EXPECT_EQ(Probe(1), 0);
    EXPECT_EQ(LogOf("ParseArpPacket"), LogLines{});
}

TEST_F(ArpCheckTest, ALongFrameIsCut)
{
    Arrive(ArpReply(kOtherMacBytes, kOurIPBytes) + Bytes(1454, 0xEE));
    EXPECT_EQ(Probe(1), 2);
}

TEST_F(ArpCheckTest, EveryFailureLeavesNoSocketOpen)
{
    static int32_t result = 0;
    FailEachCall(
        [] {
            wire.arrivals = {{ArpReply(kOtherMacBytes, kOurIPBytes), "", 1},
                             {ArpReply(kOurMacBytes, kOtherIPBytes), "", 0}};
            result = Probe(2);
        },
        [](const std::string& failed) {
            // A frame that could not be read is still there for the next turn.
            EXPECT_EQ(result, failed == "socket AF_INET" ? -1 : 3);
        },
        {"nothing"});
}

// ---- NetArpCheck

class NetArpCheckTest : public ProbeWorld {};

TEST_F(NetArpCheckTest, AsksForTheCardsOwnAddressAndListensForThreeSeconds)
{
    EXPECT_EQ(NetArpCheck("eth0"), 0);
    const Sent probe = {kArpProbe, kToEth0};
    EXPECT_EQ(wire.sent, (std::vector<Sent>{probe, probe, probe}));
    EXPECT_EQ(TraceOf({"poll"}), (Texts{"poll 1 3000", "poll 1 0"}));
}

TEST_F(NetArpCheckTest, TheSavedAddressGoesFirst)
{
    Put(CardFile("eth0"), Settings({"HOSTIP = 10.0.0.9", "SUBMASK = 255.0.0.0"}));
    EXPECT_EQ(NetArpCheck("eth0"), 0);
    ASSERT_EQ(wire.sent.size(), 3U);
    EXPECT_EQ(wire.sent[0].packet[31], 9);
    EXPECT_EQ(wire.sent[0].packet[41], 9);
}

TEST_F(NetArpCheckTest, ASavedAddressOfZerosIsAskedForLikeAnyOther)
{
    Put(CardFile("eth0"), Settings({"HOSTIP = 0.0.0.0", "SUBMASK = 0.0.0.0"}));
    EXPECT_EQ(NetArpCheck("eth0"), 0);
    ASSERT_EQ(wire.sent.size(), 3U);
    const Bytes& packet = wire.sent[0].packet;
    EXPECT_EQ(Bytes(packet.begin() + 28, packet.begin() + 32), Bytes(4, 0));
    EXPECT_EQ(Bytes(packet.begin() + 38, packet.begin() + 42), Bytes(4, 0));
}

TEST_F(NetArpCheckTest, TellsWhatWasHeard)
{
    kernel.At("eth0").mac = "aa:bb:cc:dd:ee:ff";  // as long as a text can be
    const Bytes mac = {0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF};
    wire.arrivals = {{ArpReply(kOtherMacBytes, kOurIPBytes, mac), "", 1}};
    EXPECT_EQ(NetArpCheck("eth0"), 2);
    ASSERT_EQ(wire.sent.size(), 3U);
    EXPECT_EQ(Bytes(wire.sent[0].packet.begin() + 22, wire.sent[0].packet.begin() + 28), mac);
}

TEST_F(NetArpCheckTest, NullIsAFailureWithoutASound)
{
    EXPECT_EQ(NetArpCheck(nullptr), -1);
    EXPECT_EQ(Trace(), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NetArpCheckTest, WithoutAnAddressThereIsNothingToAskFor)
{
    kernel.At("eth0").address = "";
    EXPECT_EQ(NetArpCheck("eth0"), -1);
    const LogLines log = Log();
    ASSERT_FALSE(log.empty());
    EXPECT_EQ(log.back(), Error("NetArpCheck", "NetGetIPbyName failed"));
    EXPECT_EQ(LogOf("NetArpCheck").size(), 1U);
    EXPECT_EQ(wire.sent, std::vector<Sent>{});
}

TEST_F(NetArpCheckTest, AnAddressThatIsGoneIsNotAskedForAgain)
{
    EXPECT_GE(NetArpCheck("eth0"), 0);
    wire.sent.clear();
    kernel.At("eth0").address = "";
    EXPECT_EQ(NetArpCheck("eth0"), -1);
    EXPECT_EQ(wire.sent, std::vector<Sent>{});
}

TEST_F(NetArpCheckTest, WithoutAHardwareAddressThereIsNobodyToAsk)
{
    FailAll("ioctl SIOCGIFHWADDR", EPERM);
    EXPECT_EQ(NetArpCheck("eth0"), -1);
    EXPECT_EQ(LogOf("NetArpCheck"), (LogLines{Error("NetArpCheck", "NetGetMacbyName failed")}));
    EXPECT_EQ(wire.sent, std::vector<Sent>{});
}

TEST_F(NetArpCheckTest, WithoutASocketItIsAFailure)
{
    FailAll("socket AF_INET", EPERM);
    Put(CardFile("eth0"), Settings({"HOSTIP = 10.0.0.9", "SUBMASK = 255.0.0.0"}));
    EXPECT_EQ(NetArpCheck("eth0"), -1);
}

TEST_F(NetArpCheckTest, EveryFailureIsToldAndLeavesNoRawSocketOpen)
{
    static int result = 0;
    FailEachCall(
        [] {
            wire.arrivals = {{ArpReply(kOtherMacBytes, kOurIPBytes), "", 1}};
            result = NetArpCheck("eth0");
        },
        [](const std::string&) {
            const bool told = !LogOf("NetArpCheck").empty() ||
                              Logged(Error("Arp_Ckeck", "CreatPFRawSock error."));
            EXPECT_EQ(result, told ? -1 : 2);
        },
        {"socket AF_INET 2 0"});
}

}  // namespace
