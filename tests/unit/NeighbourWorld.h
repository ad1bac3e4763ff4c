// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// Two cards, and the kernel's neighbour table as text: for the tests of the operations on it.

#include "fake/World.h"

#include <cstring>

using fake::Texts;
using Neighbours = std::vector<fake::Neighbour>;

constexpr char kTable[] = "/proc/net/arp";
constexpr char kOpenTable[] = "open /proc/net/arp O_RDONLY";
constexpr char kTitles[] =
    "IP address       HW type     Flags       HW address            Mask     Device\n";

constexpr char kMac1[] = "00:11:22:33:44:55";
constexpr char kMac2[] = "aa:bb:cc:dd:ee:ff";

/// Puts a table of these lines, without their newlines, behind the titles.
inline void PutTable(const Texts& lines)
{
    std::string text = kTitles;
    for (const std::string& line : lines) text += line + "\n";
    fake::Put(kTable, text);
}

class NeighbourWorld : public fake::World {
protected:
    void SetUp() override
    {
        World::SetUp();
        fake::kernel.Add("eth0");
        fake::kernel.Add("eth1");
    }
};
