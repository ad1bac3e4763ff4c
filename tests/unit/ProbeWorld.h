// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// A card with an address, and frames as they stand on the wire: for the tests of the probes.

#include "fake/Odd.h"
#include "fake/World.h"

#include <net/if.h>
#include <unistd.h>

using fake::Bytes;
using fake::Texts;

constexpr char kOurIP[] = "10.0.0.1";
constexpr char kOurMac[] = "02:00:00:00:00:01";
constexpr char kBroadcastMac[] = "ff:ff:ff:ff:ff:ff";

inline const Bytes kOurIPBytes = {10, 0, 0, 1};
inline const Bytes kOurMacBytes = {2, 0, 0, 0, 0, 1};
inline const Bytes kOtherIPBytes = {10, 0, 0, 200};
inline const Bytes kOtherMacBytes = {2, 0, 0, 0xFE, 0xDC, 0xBA};
inline const Bytes kNobody = {0, 0, 0, 0, 0, 0};

inline Bytes operator+(Bytes left, const Bytes& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

inline Bytes Zeros(size_t count)
{
    return Bytes(count);
}

/// An ARP packet of another host in its frame, with padding as a card sends it.
inline Bytes ArpPacket(uint8_t operation, const Bytes& senderMac, const Bytes& senderIP,
                       const Bytes& targetMac, const Bytes& targetIP = kOurIPBytes)
{
    return kOurMacBytes + senderMac + Bytes{0x08, 0x06, 0, 1, 0x08, 0, 6, 4, 0, operation} +
           senderMac + senderIP + targetMac + targetIP + Zeros(18);
}

inline Bytes ArpReply(const Bytes& senderMac, const Bytes& senderIP,
                      const Bytes& targetMac = kOurMacBytes)
{
    return ArpPacket(2, senderMac, senderIP, targetMac);
}

/// The frame that asks for our own address by broadcast, written out.
inline const Bytes kArpProbe = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,  // to everybody
                                2,    0,    0,    0,    0,    1,     // from us
                                0x08, 0x06,                          // ARP
                                0,    1,    0x08, 0,    6,    4,     // Ethernet, IPv4, sizes
                                0,    1,                             // request
                                2,    0,    0,    0,    0,    1,     // sender: our hardware address
                                10,   0,    0,    1,                 // sender: our address
                                0,    0,    0,    0,    0,    0,     // target: not known
                                10,   0,    0,    1,                 // target: our address
                                0,    0,    0,    0,    0,    0,    0, 0, 0,  // padding
                                0,    0,    0,    0,    0,    0,    0, 0, 0};

/// Where a packet socket is told to send: no family, the card's name, zeros.
inline const Bytes kToEth0 = {0, 0, 'e', 't', 'h', '0', 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};

inline uint16_t OurIdentifier()
{
    return static_cast<uint16_t>(getpid() & 0xFFFF);
}

inline Bytes InHostOrder(uint16_t word)
{
    return {static_cast<uint8_t>(word & 0xFF), static_cast<uint8_t>(word >> 8)};
}

/// The echo request of this process: all is zero but type, identifier and their checksum.
inline Bytes EchoRequest(size_t size = 40)
{
    const uint32_t sum = uint32_t{8} + OurIdentifier();
    const auto checkSum = static_cast<uint16_t>(~((sum & 0xFFFF) + (sum >> 16)));
    return Bytes{8, 0} + InHostOrder(checkSum) + InHostOrder(OurIdentifier()) + Zeros(size - 6);
}

/// An ICMP packet as a host answers: code, checksum, sequence and payload are its own.
inline Bytes Icmp(uint8_t type, uint16_t identifier)
{
    return Bytes{type, 3, 0xBA, 0xD0} + InHostOrder(identifier) + Bytes{7, 7} + Bytes(32, 0x55);
}

/// The IP header in front of it, with options when it is longer than 20 bytes.
inline Bytes IPHeader(uint8_t size = 20)
{
    Bytes header(size, 1);
    header[0] = static_cast<uint8_t>(0x40 | (size / 4));
    return header;
}

inline Bytes EchoReply()
{
    return IPHeader() + Icmp(0, OurIdentifier());
}

/// How a socket is bound to a card: by a record of the kernel's, whose size is the target's.
inline std::string BindsTo(const std::string& card)
{
    return "setsockopt SO_BINDTODEVICE " + card + " " + std::to_string(sizeof(ifreq));
}

class ProbeWorld : public fake::World {
protected:
    void SetUp() override
    {
        World::SetUp();
        fake::Card& card = fake::kernel.Add("eth0");
        card.address = kOurIP;
        card.mac = kOurMac;
        socketNumber = fake::NextSocket(AF_INET);
    }

    /// What is logged of a wait in vain.
    fake::LogLines HeardNothing(const std::string& operation, int seconds) const
    {
        return {fake::Warn("ListenToSocket", "socket " + std::to_string(socketNumber) +
                                                 " do not recive any data in " +
                                                 std::to_string(seconds) + " second"),
                fake::Warn(operation, "pool error")};
    }

    int socketNumber = -1;  // of a probe

    /// What a probe does on the wire, in its order.
    static Texts WireCalls()
    {
        return fake::TraceOf(
            {"socket", "fcntl", "setsockopt", "bind", "sendto", "poll", "recv", "close"});
    }
};
