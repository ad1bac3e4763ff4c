// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// The settings of eth1 as their callers read them: the result, then what the caller got.

#include "Config.h"

#include "SettingLog.h"

#include <string>
#include <vector>

namespace fake {

constexpr char kFile[] = "/mnt/mtd/Config/network1";
constexpr char kFile6[] = "/mnt/mtd/Config/networkip61";

/// A buffer that shows whether it was written to.
struct Text {
    char bytes[64] = "before";
    operator char*() { return bytes; }
};

inline std::string Shown(bool result, const std::vector<std::string>& texts)
{
    std::string shown = result ? "1" : "0";
    for (const std::string& text : texts) shown += " " + text;
    return shown;
}

inline std::string Shown(bool result, int number)
{
    return Shown(result, {std::to_string(number)});
}

inline std::string ReadIP(const char* card)
{
    Text ip;
    Text mask;
    const bool result = GetIPByConfig(card, ip, mask);
    return Shown(result, {ip.bytes, mask.bytes});
}

inline std::string ReadGateway(const char* card)
{
    Text gateway;
    const bool result = GetGatewayByConfig(card, gateway);
    return Shown(result, {gateway.bytes});
}

inline std::string ReadMtu(const char* card)
{
    int mtu = 77;
    const bool result = GetMtuByConfig(card, &mtu);
    return Shown(result, mtu);
}

inline std::string ReadIPv6(const char* card, int ipLen = 48, int perFixLen = 8)
{
    Text ip;
    Text perFix;
    const bool result = GetIPv6ByConfig(card, ip, ipLen, perFix, perFixLen);
    return Shown(result, {ip.bytes, perFix.bytes});
}

inline std::string ReadGatewayv6(const char* card, int len = 48)
{
    Text gateway;
    const bool result = GetGatewayv6ByConfig(card, gateway, len);
    return Shown(result, {gateway.bytes});
}

}  // namespace fake
