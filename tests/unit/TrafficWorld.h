// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// What the tests of limits share: records, the commands that set them, and the lines that save
// them.

#include "Types.h"

#include "fake/World.h"

#include <cstring>

namespace fake {

constexpr char kLimits0[] = "/mnt/mtd/Config/nettc_eth0";
constexpr int kRefused = 2 << 8;  // wait status of a command that tc did not take

inline NetTc Limit(const std::string& address, int mbit, int flags = 0, int type = 4)
{
    NetTc limit{};
    memcpy(limit.ipAddr, address.c_str(), std::min(address.size(), sizeof(limit.ipAddr)));
    limit.ipType = type;
    limit.bandWidth = mbit;
    limit.flags = flags;
    return limit;
}

/// Fields of a record as one text, for comparing whole lists.
inline std::string TextOf(const NetTc& limit)
{
    return std::string(limit.ipAddr) + " " + std::to_string(limit.ipType) + " " +
           std::to_string(limit.bandWidth) + " " + std::to_string(limit.flags);
}

inline std::string Padded(const std::string& text, size_t width)
{
    return text.size() < width ? std::string(width - text.size(), ' ') + text : text;
}

/// The saved form of a limit.
inline std::string Line(const std::string& card, const NetTc& limit)
{
    return "dev " + Padded(card, 15) + ", ip " + Padded(limit.ipAddr, 47) + ", type " +
           Padded(std::to_string(limit.ipType), 8) + ", bw " +
           Padded(std::to_string(limit.bandWidth), 8) + ", flag " +
           Padded(std::to_string(limit.flags), 8) + ",\n";
}

// ---- commands

inline std::string RemoveRoot(const std::string& card)
{
    return "/usr/local/bin/tc qdisc del dev " + card + " root";
}
inline std::string AddRoot(const std::string& card)
{
    return "/usr/local/bin/tc qdisc add dev " + card + " root handle 1: htb default 10";
}
inline std::string RemoveIngress(const std::string& card)
{
    return "/usr/local/bin/tc qdisc del dev " + card + " ingress";
}

inline Texts RootCommands(const std::string& card)
{
    return {RemoveRoot(card), AddRoot(card)};
}
inline Texts ClearCommands(const std::string& card)
{
    return {RemoveRoot(card), RemoveIngress(card)};
}
inline Texts LimitCommands(const std::string& card, const NetTc& limit, int number)
{
    const std::string id = std::to_string(number);
    return {"/usr/local/bin/tc class add dev " + card + " parent 1: classid 1:" + id +
                " htb rate " + std::to_string(limit.bandWidth) + "mbit",
            "/usr/local/bin/tc filter add dev " + card +
                " parent 1: protocol ip u32 match ip dst " + limit.ipAddr + " flowid 1:" + id,
            "/usr/local/bin/tc qdisc add dev " + card + " parent 1:" + id + " handle " + id +
                ": sfq perturb 5"};
}

inline Texts Join(const std::vector<Texts>& parts)
{
    Texts joined;
    for (const Texts& part : parts) joined.insert(joined.end(), part.begin(), part.end());
    return joined;
}

/// Commands that were run since the last question.
inline Texts NewCommands()
{
    static size_t told = 0;
    const Texts all = Commands();
    const size_t from = std::min(told, all.size());
    told = all.size();
    return Texts(all.begin() + static_cast<std::ptrdiff_t>(from), all.end());
}

// ---- log

inline LogLine Missing(const std::string& card, const std::string& list)
{
    return Info("FindWordInLine", "can not find " + card + " in " + list);
}

inline LogLine CommandFailed(const std::string& operation, const std::string& command)
{
    return Error(operation, "run cmd " + command + " fail\n");
}

inline LogLine CommandIgnored(const std::string& operation, const std::string& command)
{
    return Warn(operation, "run cmd " + command + " fail, ingore it\n");
}

}  // namespace fake
