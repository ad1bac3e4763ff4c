// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// A card and a clock for the tests of rtnetlink, and messages written by hand, byte by byte.

#include "fake/Odd.h"
#include "fake/Rtnetlink.h"
#include "fake/World.h"

#include <cctype>
#include <cstdio>
#include <cstring>

using fake::Bytes;
using Texts = std::vector<std::string>;

constexpr char kFlushFile[] = "/proc/sys/net/ipv4/route/flush";

// The sequence number of a handle's first request is one more: 04 03 02 01 on the wire.
constexpr long kNow = 0x01020303;

class NetlinkWorld : public fake::World {
protected:
    void SetUp() override
    {
        World::SetUp();
        fake::SetClock(kNow);
        fake::kernel.Add("eth0");  // index 2
    }
};

/// Bytes from hexadecimal digits; blanks do not count.
inline Bytes FromHex(const std::string& text)
{
    std::string digits;
    for (const char digit : text) {
        if (isxdigit(static_cast<unsigned char>(digit)) != 0) digits += digit;
    }
    Bytes bytes;
    for (size_t i = 0; i + 1 < digits.size(); i += 2) {
        bytes.push_back(static_cast<uint8_t>(std::stoul(digits.substr(i, 2), nullptr, 16)));
    }
    return bytes;
}

/// Four bytes a line, so that a difference shows its place.
inline std::string Hex(const Bytes& bytes)
{
    std::string text;
    for (size_t i = 0; i < bytes.size(); ++i) {
        char digits[8];
        snprintf(digits, sizeof(digits), "%02x%s", bytes[i], i % 4 == 3 ? "\n" : " ");
        text += digits;
    }
    return text;
}

inline std::string Hex(const std::string& text)
{
    return Hex(FromHex(text));
}

/// The one request that was sent.
inline std::string SentBytes()
{
    if (fake::rtnetlink.requests.size() == 1) return Hex(fake::rtnetlink.requests[0]);
    return std::to_string(fake::rtnetlink.requests.size()) + " requests";
}

/// What the exchange says of a refusal, and what links and rules add to it.
inline fake::LogLine Answers(int error)
{
    return fake::Warn("rtnl_talk", std::string("RTNETLINK answers: ") + strerror(error));
}

inline fake::LogLine TalkError(const std::string& operation, int error)
{
    return fake::Warn(operation, "the rtnl_talk error:" + std::to_string(error) +
                                     ", the err str:" + strerror(error));
}

inline fake::LogLine NoDevice(const std::string& name)
{
    return fake::Error("xll_name_to_index", "can't find device '" + name + "' ");
}
