// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Answers to the probes, of any bytes, in buffers of the sizes that the probes receive into.

#include "Fuzz.h"

#include "Arp_Ping.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr char kOurIP[] = "10.1.2.3";
constexpr char kOurMac[] = "02:00:00:0a:0b:0c";
constexpr unsigned char kIP[4] = {10, 1, 2, 3};
constexpr unsigned char kMac[6] = {2, 0, 0, 0x0a, 0x0b, 0x0c};
constexpr unsigned char kNobody[6] = {};

/// A conflict, told from the frame's layout alone: 1 on the hardware address, 2 on the IP address.
int Foretold(const unsigned char* frame)
{
    if (frame[20] != 0 || frame[21] != 2) return 0;
    if (memcmp(frame + 32, kMac, 6) != 0 && memcmp(frame + 32, kNobody, 6) != 0) return 0;
    const bool ourMac = memcmp(frame + 22, kMac, 6) == 0;
    const bool ourIP = memcmp(frame + 28, kIP, 4) == 0;
    return ourMac == ourIP ? 0 : ourMac ? 1 : 2;
}

void CheckFrame(const std::string& bytes)
{
    const fuzz::Buffer frame(60);
    memset(frame.Get(), 0, 60);
    memcpy(frame.Get(), bytes.data(), std::min(bytes.size(), size_t{60}));
    const auto* raw = reinterpret_cast<const unsigned char*>(frame.Get());
    HOLDS(ParseArpPacket(frame.Get(), 60, kOurIP, kOurMac) == Foretold(raw));
    const bool isReply = raw[20] == 0 && raw[21] == 2;
    HOLDS(ParseArpPacket(frame.Get(), 60, "10.1.2.", kOurMac) == (isReply ? -1 : 0));
    HOLDS(ParseArpPacket(frame.Get(), 60, kOurIP, "02:00") == (isReply ? -1 : 0));
}

void CheckEcho(const std::string& bytes)
{
    const auto size = static_cast<int>(std::min(bytes.size(), size_t{64}));
    const fuzz::Buffer echo(static_cast<size_t>(size) + 1);
    memcpy(echo.Get(), bytes.data(), static_cast<size_t>(size));
    const auto us = static_cast<uint16_t>(fuzz::kProcess);
    uint16_t id = 0;
    if (size >= 6) memcpy(&id, echo.Get() + 4, sizeof(id));
    const bool ours = size >= 28 && echo.Get()[0] == 0 && id == us;
    HOLDS(ParseICMPPacket(echo.Get(), size) == ours);
}

/// All that comes in while a probe listens: a shorter frame leaves the rest of the one before.
void HearFrames(const std::vector<std::string>& packets)
{
    char frame[60] = {};
    HOLDS(CreatArpPacket(frame, sizeof(frame), kOurIP, kOurMac, "10.1.2.3", "ff:ff:ff:ff:ff:ff"));
    int expected = 0;
    fuzz::arrivals.clear();
    for (const std::string& packet : packets) {
        fuzz::arrivals.push_back(packet);
        if (packet.empty() || packet == fuzz::kBadPacket) continue;
        memcpy(frame, packet.data(), std::min(packet.size(), sizeof(frame)));
        expected |= Foretold(reinterpret_cast<const unsigned char*>(frame));
    }
    const auto waits = std::count(packets.begin(), packets.end(), "");
    const int seconds = static_cast<int>(waits) + 1;
    const int heard = Arp_Ckeck("eth0", kOurIP, kOurMac, "10.1.2.3", "ff:ff:ff:ff:ff:ff", seconds);
    HOLDS((heard & ~expected) == 0);
    HOLDS(heard == expected || waits > 0);
    HOLDS(fuzz::OpenHandles() == 0);
}

/// What an echo's answer must be, told from the datagram alone. Its first four bytes are its
/// sender here.
bool IsAnswer(const std::string& packet)
{
    if (packet.compare(0, 4, std::string("\x0a\x01\x02\x04", 4)) != 0) return false;
    unsigned char answer[64] = {};
    memcpy(answer, packet.data() + 4, std::min(packet.size() - 4, sizeof(answer) - 1));
    const size_t header = size_t{4} * (answer[0] & 0x0FU);
    uint16_t id = 0;
    if (64 - header < 28) return false;
    memcpy(&id, answer + header + 4, sizeof(id));
    return answer[header] == 0 && id == fuzz::kProcess;
}

void HearAnswers(const std::vector<std::string>& packets)
{
    fuzz::arrivals.assign(packets.begin(), packets.end());
    const bool expected = std::any_of(packets.begin(), packets.end(), IsAnswer);
    const bool alive = Ping_CheckAlive("eth0", kOurIP, "10.1.2.4", 1);
    const bool waits = std::count(packets.begin(), packets.end(), "") > 0;
    HOLDS(alive == expected || (waits && !alive));
    HOLDS(fuzz::OpenHandles() == 0);
}

std::vector<std::string> Packets(fuzz::Input& input)
{
    std::vector<std::string> packets;
    for (int left = input.Below(6); left > 0; --left) packets.push_back(input.Bytes(80));
    return packets;
}

/// A checksum that is put into its own sum makes the sum zero.
void CheckSumOf(const std::string& bytes)
{
    const size_t even = std::min(bytes.size(), size_t{64}) & ~size_t{1};
    uint16_t words[33] = {};
    memcpy(words, bytes.data(), even);
    words[even / 2] = CheckSum(words, static_cast<int32_t>(even));
    const uint16_t whole = CheckSum(words, static_cast<int32_t>(even + 2));
    HOLDS(whole == 0 || whole == 0xffff);
    HOLDS(CheckSum(nullptr, static_cast<int32_t>(even)) == CheckSum(words, 0));
    if (even == 0) return;
    words[even / 2 - 1] &= 0xff;  // an odd byte counts as one with a zero behind it
    HOLDS(CheckSum(words, static_cast<int32_t>(even - 1)) ==
          CheckSum(words, static_cast<int32_t>(even)));
}

/// A caller's mistakes: each is refused. Asked once, by the empty input.
void RefusesMistakes()
{
    char frame[60] = {};
    HOLDS(ParseArpPacket(nullptr, 60, kOurIP, kOurMac) == -1);
    HOLDS(ParseArpPacket(frame, 60, nullptr, kOurMac) == -1);
    HOLDS(ParseArpPacket(frame, 60, kOurIP, nullptr) == -1);
    HOLDS(!ParseICMPPacket(nullptr, 64));
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzz::Input input(data, size);
    fuzz::FreshWorld();
    if (size == 0) RefusesMistakes();
    const uint8_t kind = input.Byte();
    if ((kind & 2) != 0) {
        const std::vector<std::string> packets = Packets(input);
        if ((kind & 4) != 0) {
            HearFrames(packets);
        } else {
            HearAnswers(packets);
        }
        return 0;
    }
    std::string bytes = input.Rest();
    CheckFrame(bytes);
    CheckSumOf(bytes);
    if ((kind & 1) != 0 && bytes.size() >= 6) {
        const auto us = static_cast<uint16_t>(fuzz::kProcess);
        memcpy(bytes.data() + 4, &us, sizeof(us));
    }
    CheckEcho(bytes);
    return 0;
}
