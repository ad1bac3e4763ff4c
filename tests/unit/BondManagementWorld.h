// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// The device of the tests of bonds, as the common operations handle them.

#include "CommonApi.h"

#include "InterfaceWorld.h"

#include <net/if.h>

namespace fake {

constexpr char kBond[] = "bond0";
constexpr char kBondFile[] = "/mnt/mtd/Config/networkbond0";
inline const std::string kWritesBond = std::string("fopen ") + kBondFile + " w+";
inline const std::string kSlaves = "/sys/class/net/bond0/bonding/slaves";

inline const Lines kOwnSettings = {"HOSTIP = 10.2.0.2", "SUBMASK = 255.255.0.0",
                                   "GATEWAYIP = 10.2.0.1", "MTU = 1500"};

inline std::string Attribute(const std::string& name)
{
    return "/sys/class/net/bond0/bonding/" + name;
}

inline std::string Text(const std::string& file)
{
    return Get(CardFile(file));
}

/// Two cards and a bond with settings of their own each; the bond has no members.
class BondWorld : public InterfaceWorld {
protected:
    void SetUp() override
    {
        InterfaceWorld::SetUp();
        kernel.Add(kBond);
        for (const char* name : {"mode", "miimon", "primary", "xmit_hash_policy"}) {
            Put(Attribute(name), "as it was\n");
        }
        Put(Attribute("active_slave"), "eth1\n");
        Put(kSlaves, "");
        Put(kFile0, Settings({"HOSTIP = 10.0.0.2", "SUBMASK = 255.255.255.0",
                              "GATEWAYIP = 10.0.0.1", "MTU = 1500"}));
        Put(kFile1, Settings({"HOSTIP = 10.1.0.2", "SUBMASK = 255.255.255.0",
                              "GATEWAYIP = 10.1.0.1", "MTU = 1500"}));
        Put(kBondFile, Settings(kOwnSettings));
        OnCommand("ifenslave bond0", [](const std::string&) { Put(kSlaves, "eth1 eth0\n"); });
        OnCommand("ifenslave -d bond0", [](const std::string&) { Put(kSlaves, ""); });
        Begin();
    }

    /// Lets the bond run, as it is after `Bond`.
    static void Run(const std::string& mode)
    {
        Put(kSlaves, "eth1 eth0\n");
        for (const char* file : {kFile0, kFile1}) {
            Put(file, Get(file) + "BONDED = 1\nBONDNAME = bond0\nWORKMODE = 1\n");
        }
        Put(kBondFile,
            Settings(kOwnSettings) + "BONDMODE = " + mode + "\nBONDMEMBERS = eth1,eth0\n");
        Begin();
    }

    Members cards{{"eth1", "eth0"}};
};

/// Nothing was run, written or asked of the kernel but the list of cards.
inline void ExpectUntouched()
{
    EXPECT_EQ(Changes(), Lines{});
    EXPECT_EQ(Commands(), Lines{});
    EXPECT_EQ(TraceOf({"write"}), Lines{});
}

}  // namespace fake
