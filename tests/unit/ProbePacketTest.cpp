// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The packets of the probes: how they are written, and how what comes back is judged.

#include "Arp_Ping.h"

#include "ProbeWorld.h"

#include <climits>
#include <cstring>
#include <functional>
#include <sys/wait.h>

using namespace fake;

namespace {

// ---- CheckSum

uint16_t SumOf(const Bytes& bytes)
{
    // A copy of exactly this size at an odd address.
    Bytes buffer(bytes.size() + 1);
    std::copy(bytes.begin(), bytes.end(), buffer.begin() + 1);
    return CheckSum(reinterpret_cast<uint16_t*>(buffer.data() + 1),
                    static_cast<int32_t>(bytes.size()));
}

class CheckSumTest : public World {};

TEST_F(CheckSumTest, AddsNativeWordsAndInverts)
{
    EXPECT_EQ(SumOf({0x00, 0x01, 0xF2, 0x03, 0xF4, 0xF5, 0xF6, 0xF7}), 0x0D22);
    EXPECT_EQ(SumOf({0x34, 0x12}), static_cast<uint16_t>(~0x1234));
    EXPECT_EQ(SumOf({0, 0, 0, 0}), 0xFFFF);
}

TEST_F(CheckSumTest, AnOddByteIsALowHalf)
{
    EXPECT_EQ(SumOf({0x01}), static_cast<uint16_t>(~0x0001));
    EXPECT_EQ(SumOf({0x12, 0x34, 0x56}), static_cast<uint16_t>(~(0x3412 + 0x0056)));
    for (const uint8_t last : {0x7F, 0x80, 0xFF}) {
        EXPECT_EQ(SumOf({0x12, 0x34, last}), static_cast<uint16_t>(~(0x3412 + last))) << int{last};
    }
}

TEST_F(CheckSumTest, FoldsACarryIn)
{
    EXPECT_EQ(SumOf({0xFF, 0xFF, 0x01, 0x00}), static_cast<uint16_t>(~0x0001));
}

TEST_F(CheckSumTest, FoldsTheCarryOfTheFirstFoldIn)
{
    EXPECT_EQ(SumOf({0xFF, 0xFF, 0xFF, 0xFF, 0x01, 0x00}), static_cast<uint16_t>(~0x0001));
}

TEST_F(CheckSumTest, NoBytesAddNothing)
{
    uint16_t word = 0x1234;
    EXPECT_EQ(CheckSum(&word, 0), 0xFFFF);
    EXPECT_EQ(CheckSum(&word, -1), 0xFFFF);
    EXPECT_EQ(CheckSum(&word, INT_MIN), 0xFFFF);
    EXPECT_EQ(CheckSum(nullptr, 8), 0xFFFF);
}

// ---- CreateICMPPacket

class CreateICMPPacketTest : public World {};

TEST_F(CreateICMPPacketTest, WritesAnEchoRequestOfThisProcess)
{
    for (const size_t size : {size_t{28}, size_t{29}, size_t{40}, size_t{1500}}) {
        Bytes packet(size, 0xAA);
        EXPECT_TRUE(CreateICMPPacket(packet.data(), static_cast<int>(size)));
        EXPECT_EQ(packet, EchoRequest(size));
    }
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(CreateICMPPacketTest, AChildAsksUnderItsOwnNumber)
{
    Bytes packet(28);
    EXPECT_TRUE(CreateICMPPacket(packet.data(), 28));
    const pid_t child = fork();
    if (child == 0) {
        const bool made = CreateICMPPacket(packet.data(), 28);
        _exit(made && packet == EchoRequest(28) ? 0 : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
}

TEST_F(CreateICMPPacketTest, ItsCheckSumHolds)
{
    uint16_t packet[20];
    ASSERT_TRUE(CreateICMPPacket(packet, sizeof(packet)));
    EXPECT_EQ(CheckSum(packet, sizeof(packet)), 0);
}

TEST_F(CreateICMPPacketTest, MayLieAnywhere)
{
    Bytes bytes(41, 0xAA);
    EXPECT_TRUE(CreateICMPPacket(bytes.data() + 1, 40));
    EXPECT_EQ(bytes, Bytes{0xAA} + EchoRequest());
}

TEST_F(CreateICMPPacketTest, WritesNothingWithoutRoom)
{
    for (const int size : {27, 1, 0, -1, INT_MIN}) {
        Bytes packet(64, 0xAA);
        EXPECT_FALSE(CreateICMPPacket(packet.data(), size)) << size;
        EXPECT_EQ(packet, Bytes(64, 0xAA)) << size;
    }
    EXPECT_FALSE(CreateICMPPacket(nullptr, 40));
    EXPECT_EQ(Log(), LogLines{});
}

// ---- ParseICMPPacket

bool IsOurs(Bytes packet, int size)
{
    return ParseICMPPacket(packet.data(), size);
}

class ParseICMPPacketTest : public World {};

TEST_F(ParseICMPPacketTest, TakesAReplyToThisProcess)
{
    EXPECT_TRUE(IsOurs(Icmp(0, OurIdentifier()), 40));
}

TEST_F(ParseICMPPacketTest, CodeCheckSumAndSequencePlayNoPart)
{
    Bytes packet = Zeros(28);
    const Bytes identifier = InHostOrder(OurIdentifier());
    std::copy(identifier.begin(), identifier.end(), packet.begin() + 4);
    EXPECT_TRUE(IsOurs(packet, 28));
    for (const size_t at : {size_t{1}, size_t{2}, size_t{3}, size_t{6}, size_t{7}, size_t{27}}) {
        packet[at] = 0xFF;
        EXPECT_TRUE(IsOurs(packet, 28)) << at;
    }
}

TEST_F(ParseICMPPacketTest, RefusesAnyOtherType)
{
    for (int type = 1; type <= 0xFF; ++type) {
        EXPECT_FALSE(IsOurs(Icmp(static_cast<uint8_t>(type), OurIdentifier()), 40)) << type;
    }
}

TEST_F(ParseICMPPacketTest, RefusesAReplyToAnotherProcess)
{
    for (int bit = 0; bit < 16; ++bit) {
        const auto other = static_cast<uint16_t>(OurIdentifier() ^ (1U << bit));
        EXPECT_FALSE(IsOurs(Icmp(0, other), 40)) << bit;
    }
}

TEST_F(ParseICMPPacketTest, RefusesAShortPacketButNotANegativeSize)
{
    const Bytes packet = Icmp(0, OurIdentifier());
    EXPECT_FALSE(IsOurs(packet, 27));
    EXPECT_FALSE(IsOurs(packet, 0));
    EXPECT_TRUE(IsOurs(packet, 28));
    EXPECT_TRUE(IsOurs(packet, -1));
    EXPECT_TRUE(IsOurs(packet, INT_MIN));
    EXPECT_FALSE(ParseICMPPacket(nullptr, 40));
    EXPECT_FALSE(ParseICMPPacket(nullptr, -1));
}

TEST_F(ParseICMPPacketTest, ReadsNoMoreThanTheIdentifier)
{
    Bytes packet = Icmp(0, OurIdentifier());
    packet.resize(6);
    packet.shrink_to_fit();
    EXPECT_TRUE(ParseICMPPacket(packet.data(), -1));
}

TEST_F(ParseICMPPacketTest, MayLieAnywhere)
{
    Bytes bytes = Bytes{0xAA} + Icmp(0, OurIdentifier());
    EXPECT_TRUE(ParseICMPPacket(bytes.data() + 1, 40));
}

// ---- CreatArpPacket

struct ArpTexts {
    const char* srcIP = kOurIP;
    const char* srcMac = kOurMac;
    const char* dstIP = kOurIP;
    const char* dstMac = kBroadcastMac;
};

bool Create(Bytes& packet, int size, const ArpTexts& texts)
{
    return CreatArpPacket(packet.data(), size, texts.srcIP, texts.srcMac, texts.dstIP,
                          texts.dstMac);
}

class CreatArpPacketTest : public World {};

TEST_F(CreatArpPacketTest, WritesARequestByteByByte)
{
    Bytes packet(60, 0xAA);
    EXPECT_TRUE(Create(packet, 60, {}));
    EXPECT_EQ(packet, kArpProbe);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(CreatArpPacketTest, EachTextHasItsPlace)
{
    Bytes packet(60, 0xAA);
    EXPECT_TRUE(
        Create(packet, 60, {"192.168.1.2", "a0:B1:c2:D3:e4:F5", "172.16.254.3", "1:2:3:4:5:6"}));
    EXPECT_EQ(packet, (Bytes{1,    2,    3,    4,    5,    6,     //
                             0xA0, 0xB1, 0xC2, 0xD3, 0xE4, 0xF5,  //
                             0x08, 0x06, 0,    1,    0x08, 0,    6,    4,
                             0,    1,    0xA0, 0xB1, 0xC2, 0xD3, 0xE4, 0xF5,  //
                             192,  168,  1,    2,                             //
                             0,    0,    0,    0,    0,    0,                 //
                             172,  16,   254,  3} +
                       Zeros(18)));
}

TEST_F(CreatArpPacketTest, FortyTwoBytesAreEnough)
{
    Bytes packet(42, 0xAA);
    EXPECT_TRUE(Create(packet, 42, {}));
    EXPECT_EQ(packet, Bytes(kArpProbe.begin(), kArpProbe.begin() + 42));
}

TEST_F(CreatArpPacketTest, MoreIsFilledWithZeros)
{
    Bytes packet(200, 0xAA);
    EXPECT_TRUE(Create(packet, 200, {}));
    EXPECT_EQ(packet, kArpProbe + Zeros(140));
}

TEST_F(CreatArpPacketTest, AddressesMayBeShort)
{
    Bytes packet(60);
    EXPECT_TRUE(Create(packet, 60, {"10.1", kOurMac, "0x0a000001", kBroadcastMac}));
    EXPECT_EQ(Bytes(packet.begin() + 28, packet.begin() + 32), (Bytes{10, 0, 0, 1}));
    EXPECT_EQ(Bytes(packet.begin() + 38, packet.begin() + 42), (Bytes{10, 0, 0, 1}));
}

TEST_F(CreatArpPacketTest, WhatStandsBehindAHardwareAddressIsIgnored)
{
    Bytes packet(60);
    EXPECT_TRUE(
        Create(packet, 60, {kOurIP, "02:00:00:00:00:01:07", kOurIP, "ff:ff:ff:ff:ff:ff eth0"}));
    EXPECT_EQ(packet, kArpProbe);
}

TEST_F(CreatArpPacketTest, WritesNothingWithoutRoom)
{
    for (const int size : {41, 1, 0, -1, INT_MIN}) {
        Bytes packet(64, 0xAA);
        EXPECT_FALSE(Create(packet, size, {})) << size;
        EXPECT_EQ(packet, Bytes(64, 0xAA)) << size;
    }
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(CreatArpPacketTest, WritesNothingForNull)
{
    for (const ArpTexts& texts : {ArpTexts{nullptr, kOurMac, kOurIP, kBroadcastMac},
                                  ArpTexts{kOurIP, nullptr, kOurIP, kBroadcastMac},
                                  ArpTexts{kOurIP, kOurMac, nullptr, kBroadcastMac},
                                  ArpTexts{kOurIP, kOurMac, kOurIP, nullptr}}) {
        Bytes packet(60, 0xAA);
        EXPECT_FALSE(Create(packet, 60, texts));
        EXPECT_EQ(packet, Bytes(60, 0xAA));
    }
    EXPECT_FALSE(CreatArpPacket(nullptr, 60, kOurIP, kOurMac, kOurIP, kBroadcastMac));
    EXPECT_EQ(Log(), LogLines{});
}

struct BadArpTexts {
    ArpTexts texts;
    const char* message;
};

class CreatArpPacketRefusal : public World, public testing::WithParamInterface<BadArpTexts> {};

TEST_P(CreatArpPacketRefusal, SaysWhichPairDoesNotParseAndLeavesZeros)
{
    Bytes packet(60, 0xAA);
    EXPECT_FALSE(Create(packet, 60, GetParam().texts));
    EXPECT_EQ(packet, Zeros(60));
    EXPECT_EQ(Log(), (LogLines{Error("CreatArpPacket", GetParam().message)}));
}

INSTANTIATE_TEST_SUITE_P(
    Texts, CreatArpPacketRefusal,
    testing::Values(BadArpTexts{{"10.0.0.256", kOurMac, kOurIP, kBroadcastMac},
                                "addr error[10.0.0.256,10.0.0.1]"},
                    BadArpTexts{{kOurIP, kOurMac, "", kBroadcastMac}, "addr error[10.0.0.1,]"},
                    BadArpTexts{{kOurIP, "02:00:00:00:00", kOurIP, kBroadcastMac},
                                "mac error[02:00:00:00:00,ff:ff:ff:ff:ff:ff]"},
                    BadArpTexts{{kOurIP, kOurMac, kOurIP, "ff-ff-ff-ff-ff-ff"},
                                "mac error[02:00:00:00:00:01,ff-ff-ff-ff-ff-ff]"},
                    BadArpTexts{{"no", "no", kOurIP, kBroadcastMac}, "addr error[no,10.0.0.1]"}));

// ---- ParseArpPacket

/// The frame in exactly the 42 bytes that may be read.
int32_t Judge(Bytes frame, const char* srcIP = kOurIP, const char* srcMac = kOurMac)
{
    frame.resize(42);
    frame.shrink_to_fit();
    return ParseArpPacket(reinterpret_cast<const char*>(frame.data()), 42, srcIP, srcMac);
}

LogLine MacConflict(const std::string& address)
{
    return Warn("ParseArpPacket", "mac is confilct with addr " + address);
}

LogLine IPConflict(const std::string& receiver)
{
    return Warn("ParseArpPacket", "ip is confilct with mac " + receiver);
}

class ParseArpPacketTest : public World {};

TEST_F(ParseArpPacketTest, OurOwnReplyIsNoConflict)
{
    EXPECT_EQ(Judge(ArpReply(kOurMacBytes, kOurIPBytes)), 0);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(ParseArpPacketTest, AReplyOfAStrangerIsNoConflict)
{
    EXPECT_EQ(Judge(ArpReply(kOtherMacBytes, kOtherIPBytes)), 0);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(ParseArpPacketTest, OurHardwareAddressWithAnotherAddress)
{
    EXPECT_EQ(Judge(ArpReply(kOurMacBytes, kOtherIPBytes)), 1);
    EXPECT_EQ(Log(), (LogLines{MacConflict("10.0.0.200")}));
}

TEST_F(ParseArpPacketTest, OurAddressAtAnotherCardShowsTheReceiver)
{
    EXPECT_EQ(Judge(ArpReply(kOtherMacBytes, kOurIPBytes)), 2);
    EXPECT_EQ(Log(), (LogLines{IPConflict("02:00:00:00:00:01")}));
}

TEST_F(ParseArpPacketTest, EachByteOfTheReceiverIsShownInItsPlace)
{
    const Bytes ours = {0x02, 0x1a, 0xb0, 0x03, 0xff, 0x9e};
    EXPECT_EQ(Judge(ArpReply(kOtherMacBytes, kOurIPBytes, ours), kOurIP, "02:1a:b0:03:ff:9e"), 2);
    EXPECT_EQ(Log(), (LogLines{IPConflict("02:1a:b0:03:ff:9e")}));
}

TEST_F(ParseArpPacketTest, AReplyToNobodyCounts)
{
    EXPECT_EQ(Judge(ArpReply(kOurMacBytes, kOurIPBytes, kNobody)), 0);
    EXPECT_EQ(Judge(ArpReply(kOtherMacBytes, kOtherIPBytes, kNobody)), 0);
    EXPECT_EQ(Judge(ArpReply(kOurMacBytes, kOtherIPBytes, kNobody)), 1);
    EXPECT_EQ(Judge(ArpReply(kOtherMacBytes, kOurIPBytes, kNobody)), 2);
    EXPECT_EQ(Log(), (LogLines{MacConflict("10.0.0.200"), IPConflict("00:00:00:00:00:00")}));
}

TEST_F(ParseArpPacketTest, AReplyToAThirdPartyNeverCounts)
{
    const Bytes everybody(6, 0xFF);
    for (const Bytes& receiver : {kOtherMacBytes, everybody, Bytes{0, 0, 0, 0, 0, 1}}) {
        EXPECT_EQ(Judge(ArpReply(kOtherMacBytes, kOurIPBytes, receiver)), 0);
        EXPECT_EQ(Judge(ArpReply(kOurMacBytes, kOtherIPBytes, receiver)), 0);
    }
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(ParseArpPacketTest, OnlyRepliesAreLookedAt)
{
    for (const uint8_t operation : {0, 1, 3, 4, 0xFF}) {
        EXPECT_EQ(Judge(ArpPacket(operation, kOtherMacBytes, kOurIPBytes, kOurMacBytes)), 0);
    }
    Bytes swapped = ArpReply(kOtherMacBytes, kOurIPBytes);
    std::swap(swapped[20], swapped[21]);
    EXPECT_EQ(Judge(swapped), 0);
    swapped[21] = 2;  // both bytes
    EXPECT_EQ(Judge(swapped), 0);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(ParseArpPacketTest, HeadOfTheFrameAndTargetAddressPlayNoPart)
{
    Bytes frame = ArpPacket(2, kOtherMacBytes, kOurIPBytes, kOurMacBytes, {9, 9, 9, 9});
    std::fill(frame.begin(), frame.begin() + 20, uint8_t{0x77});
    EXPECT_EQ(Judge(frame), 2);
}

TEST_F(ParseArpPacketTest, EveryByteOfAnAddressIsCompared)
{
    for (size_t i = 0; i < 4; ++i) {
        Bytes other = kOurIPBytes;
        other[i] ^= 0x80;
        EXPECT_EQ(Judge(ArpReply(kOurMacBytes, other)), 1) << i;
    }
    for (size_t i = 0; i < 6; ++i) {
        Bytes other = kOurMacBytes;
        other[i] ^= 0x80;
        EXPECT_EQ(Judge(ArpReply(other, kOurIPBytes)), 2) << i;
    }
}

TEST_F(ParseArpPacketTest, TheLengthIsNotUsed)
{
    const Bytes frame = ArpReply(kOtherMacBytes, kOurIPBytes);
    for (const int32_t length : {0, -1, 60, INT_MIN, INT_MAX}) {
        EXPECT_EQ(
            ParseArpPacket(reinterpret_cast<const char*>(frame.data()), length, kOurIP, kOurMac),
            2);
    }
}

TEST_F(ParseArpPacketTest, OurTextsMayBeInAnyFormThatParses)
{
    EXPECT_EQ(Judge(ArpReply(kOtherMacBytes, kOurIPBytes), "10.1", "2:0:0:0:0:1 and more"), 2);
}

TEST_F(ParseArpPacketTest, NullIsAFailure)
{
    const Bytes frame = ArpReply(kOtherMacBytes, kOurIPBytes);
    EXPECT_EQ(ParseArpPacket(nullptr, 60, kOurIP, kOurMac), -1);
    EXPECT_EQ(Judge(frame, nullptr, kOurMac), -1);
    EXPECT_EQ(Judge(frame, kOurIP, nullptr), -1);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(ParseArpPacketTest, TextsThatDoNotParseAreAFailure)
{
    const Bytes frame = ArpReply(kOtherMacBytes, kOurIPBytes);
    EXPECT_EQ(Judge(frame, "10.0.0.x", "no"), -1);
    EXPECT_EQ(Judge(frame, kOurIP, "02:00:00:00:00:"), -1);
    EXPECT_EQ(Log(), (LogLines{Error("ParseArpPacket", "IP addr error[10.0.0.x]."),
                               Error("ParseArpPacket", "mac error[02:00:00:00:00:]")}));
}

TEST_F(ParseArpPacketTest, OurTextsAreReadForRepliesAlone)
{
    EXPECT_EQ(Judge(ArpPacket(1, kOtherMacBytes, kOurIPBytes, kOurMacBytes), "no", "no"), 0);
    EXPECT_EQ(Judge(ArpPacket(1, kOtherMacBytes, kOurIPBytes, kOurMacBytes), nullptr, "no"), -1);
    EXPECT_EQ(Log(), LogLines{});
}

}  // namespace
