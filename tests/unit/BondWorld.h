// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// A bond that is up, with the attribute files of its driver, and what an operation does to it.

#include "fake/World.h"

#include <net/if.h>

namespace fake {

constexpr char kBond[] = "bond0";

inline std::string Attribute(const std::string& name, const std::string& bond = kBond)
{
    return "/sys/class/net/" + bond + "/bonding/" + name;
}

class BondWorld : public World {
protected:
    void SetUp() override
    {
        World::SetUp();
        kernel.Add(kBond).flags = IFF_UP | IFF_BROADCAST;
        Put(Attribute("slaves"), "eth0 eth1\n");
        for (const char* name : {"active_slave", "xmit_hash_policy", "primary", "mode", "miimon"}) {
            Put(Attribute(name), "as it was\n");
        }
    }

    static bool IsUp() { return (kernel.At(kBond).flags & IFF_UP) != 0; }

    /// What the operation did outside: files, requests, commands.
    static Texts Touched()
    {
        return TraceOf({"open", "write", "close", "socket", "ioctl", "vfork"});
    }
};

}  // namespace fake
