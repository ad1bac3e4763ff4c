// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// The device of the tests of bridges, whose tools do in its model what they say.

#include "InterfaceWorld.h"

namespace fake {

constexpr char kBridge[] = "br0";
constexpr char kTreeFile[] = "/mnt/mtd/Config/rsbridgeinit.conf";

inline const std::string kBridgeFile = CardFile(kBridge);
inline const std::string kWritesBridge = "fopen " + kBridgeFile + " w+";
inline const std::string kWritesTree = std::string("fopen ") + kTreeFile + " w+";

inline const Lines kOwnSettings = {"HOSTIP = 10.2.0.2", "SUBMASK = 255.255.0.0",
                                   "GATEWAYIP = 10.2.0.1", "MTU = 1400"};

inline LogLine NoBridge(const std::string& name)
{
    return Error("Bridge_IsBridgeExist", "bridge " + name + " is not exist.");
}

inline std::string PortsOf(const std::string& bridge)
{
    return "/sys/class/net/" + bridge + "/brif/";
}

inline void Make(const std::string& bridge)
{
    if (kernel.Find(bridge) == nullptr) kernel.Add(bridge);
    MakeFolder(PortsOf(bridge));
    Put("/sys/class/net/" + bridge + "/carrier", "1\n");
}

/// The tools do in the model what they say.
inline void ObeyCommands()
{
    OnCommand("brctl addbr ", [](const std::string& text) { Make(text.substr(12)); });
    OnCommand("brctl addif ", [](const std::string& text) {
        const size_t blank = text.find(' ', 12);
        Put(PortsOf(text.substr(12, blank - 12)) + text.substr(blank + 1), "");
    });
    OnCommand("brctl delbr ",
              [](const std::string& text) { Remove("/sys/class/net/" + text.substr(12)); });
}

/// Two cards with settings of their own, settings of a bridge, and no bridge yet.
class BridgeWorld : public InterfaceWorld {
protected:
    void SetUp() override
    {
        InterfaceWorld::SetUp();
        kernel.At("eth1").mac = "02:00:00:00:00:11";
        Put(kFile0, Settings({"HOSTIP = 10.0.0.2", "SUBMASK = 255.255.255.0",
                              "GATEWAYIP = 10.0.0.1", "MTU = 1500"}));
        Put(kFile1, Settings({"HOSTIP = 10.1.0.2", "SUBMASK = 255.255.255.0",
                              "GATEWAYIP = 10.1.0.1", "MTU = 1500"}));
        Put(kBridgeFile, Settings(kOwnSettings));
        ObeyCommands();
        Begin();
    }

    /// Lets the bridge exist, as it is after `Bridge`.
    static void Run()
    {
        Make(kBridge);
        for (const char* file : {kFile0, kFile1}) {
            Put(file, Get(file) + "BRIDGEEDED = 1\nBRIDGENAME = br0\nWORKMODE = 3\n");
        }
        Put(PortsOf(kBridge) + "eth1", "");
        Put(kBridgeFile, Settings(kOwnSettings) + "BRIDGEMEMBERS = eth1\n");
        Begin();
    }

    Members cards{{"eth1", "eth0"}};
};

/// Nothing was run, written or asked of the kernel but the list of cards.
inline void ExpectUntouched()
{
    EXPECT_EQ(Changes(), Lines{});
    EXPECT_EQ(Commands(), Lines{});
}

}  // namespace fake
