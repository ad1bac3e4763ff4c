// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Bonds and bridges built from their files.

#include "LanriseWorld.h"

#include "Lanrise.h"

#include <algorithm>
#include <cstring>
#include <filesystem>

using namespace fake;

namespace {

// ---- bonds

class DoBondStuffTest : public World {
protected:
    /// A bond's device whose driver takes everything; no members yet.
    static void AddBondDevice(const std::string& bond)
    {
        for (const char* attribute : {"slaves", "mode", "miimon", "xmit_hash_policy", "primary"}) {
            Put("/sys/class/net/" + bond + "/bonding/" + attribute, "");
        }
    }

    static std::string Attribute(const std::string& bond, const std::string& attribute)
    {
        const std::string text = Get("/sys/class/net/" + bond + "/bonding/" + attribute);
        return text.substr(0, text.find('\0'));
    }

    static void SaveBond(const std::string& bond, const std::vector<std::string>& lines)
    {
        Put(CardFile(bond), Settings(lines));
    }
};

TEST_F(DoBondStuffTest, BuildsABondFromItsFile)
{
    AddBondDevice("bond0");
    SaveBond("bond0", {"BONDMODE = 1", "BONDMEMBERS = eth1,eth2", "HOSTIP = 10.0.0.2",
                       "SUBMASK = 255.0.0.0", "GATEWAYIP = 10.0.0.1", "MTU = 1500"});
    List({"eth1", "eth2", "bond0"});
    EXPECT_TRUE(DoBondStuff());
    EXPECT_EQ(LogOf("DoBondStuff"), LogLines{});
    EXPECT_EQ(Commands(),
              (std::vector<std::string>{"ifconfig eth1 down", "ifconfig eth2 down",
                                        "ifconfig eth1 0.0.0.0 up", "ifconfig eth2 0.0.0.0 up",
                                        "ifenslave bond0 eth1 eth2"}));
    EXPECT_EQ(Attribute("bond0", "mode"), "active-backup");
    EXPECT_EQ(kernel.At("bond0").address, "10.0.0.2");
    EXPECT_EQ(Get(CardFile("eth1")), "BONDED = 1\nBONDNAME = bond0\nWORKMODE = 1\n");
    EXPECT_EQ(TraceOf({"sleep"}), std::vector<std::string>{"sleep 2"});
    EXPECT_EQ(TraceOf({"open /sys/class/net/bond0/bonding/xmit"}), std::vector<std::string>{});
}

TEST_F(DoBondStuffTest, ModesThatSpreadByAHashGetTheirPolicyBeforeTheBondIsBuilt)
{
    for (int mode = 0; mode < 7; ++mode) {
        ClearTrace();
        AddBondDevice("bond0");
        SaveBond("bond0",
                 {"BONDMODE = " + std::to_string(mode), "BONDMEMBERS = eth1,eth2", "LACP = 3"});
        InNewProcess([mode] {
            const bool hashes = mode == 2 || mode == 4 || mode == 5;
            List({"eth1", "eth2", "bond0"});
            EXPECT_TRUE(DoBondStuff());
            EXPECT_EQ(Attribute("bond0", "xmit_hash_policy"), hashes ? "3" : "") << mode;
            const auto opened = TraceOf({"open /sys/class/net/bond0/bonding/xmit_hash_policy",
                                         "open /sys/class/net/bond0/bonding/mode"});
            ASSERT_EQ(opened.size(), hashes ? 2U : 1U) << mode;
            EXPECT_EQ(opened.back(), "open /sys/class/net/bond0/bonding/mode O_RDWR|O_TRUNC");
        });
    }
}

TEST_F(DoBondStuffTest, WithoutAGoodPolicyNoneIsSet)
{
    AddBondDevice("bond0");
    AddBondDevice("bond1");
    SaveBond("bond0", {"BONDMODE = 4", "BONDMEMBERS = eth1,eth2"});
    SaveBond("bond1", {"BONDMODE = 4", "BONDMEMBERS = eth3,eth4", "LACP = 7"});
    List({"eth1", "eth2", "eth3", "eth4", "bond0", "bond1"});
    EXPECT_TRUE(DoBondStuff());
    EXPECT_EQ(TraceOf({"open /sys/class/net/bond0/bonding/xmit",
                       "open /sys/class/net/bond1/bonding/xmit"}),
              std::vector<std::string>{});
    EXPECT_EQ(Attribute("bond1", "mode"), "802.3ad");
}

TEST_F(DoBondStuffTest, ABondWhosePolicyIsRefusedIsBuiltAllTheSame)
{
    AddBondDevice("bond0");
    SaveBond("bond0", {"BONDMODE = 4", "BONDMEMBERS = eth1,eth2", "LACP = 1"});
    List({"eth1", "eth2", "bond0"});
    Fail("write /sys/class/net/bond0/bonding/xmit_hash_policy", EINVAL);
    EXPECT_TRUE(DoBondStuff());
    EXPECT_EQ(TraceOf({"sleep", "command ifenslave"}),
              (std::vector<std::string>{"command ifenslave bond0 eth1 eth2", "sleep 2"}));
}

TEST_F(DoBondStuffTest, ABondWithoutModeIsPassedOverInSilence)
{
    AddBondDevice("bond0");
    AddBondDevice("bond1");
    SaveBond("bond0", {"BONDMEMBERS = eth1,eth2"});
    SaveBond("bond1", {"BONDMODE = x", "BONDMEMBERS = eth1,eth2"});
    List({"eth1", "eth2", "bond0", "bond1"});
    EXPECT_TRUE(DoBondStuff());
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(TraceOf({"sleep", "vfork", "open /sys"}), std::vector<std::string>{});
}

TEST_F(DoBondStuffTest, ABondWithoutListIsAnErrorAndNoPause)
{
    AddBondDevice("bond0");
    SaveBond("bond0", {"BONDMODE = 1"});
    List({"bond0"});
    EXPECT_TRUE(DoBondStuff());
    EXPECT_EQ(Log(), LogLines{Error("DoBondStuff", "GetBondMemberByConfig failed.[bond0]")});
    EXPECT_EQ(TraceOf({"sleep", "vfork"}), std::vector<std::string>{});
}

TEST_F(DoBondStuffTest, ABondOfOneIsNotBuiltButPausedFor)
{
    AddBondDevice("bond0");
    AddBondDevice("bond1");
    SaveBond("bond0", {"BONDMODE = 1", "BONDMEMBERS = eth1"});
    SaveBond("bond1", {"BONDMODE = 1", "BONDMEMBERS = ,"});
    List({"eth1", "bond0", "bond1"});
    EXPECT_TRUE(DoBondStuff());
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(TraceOf({"sleep", "vfork"}), (std::vector<std::string>{"sleep 2", "sleep 2"}));
}

TEST_F(DoBondStuffTest, TheSecondEntryOfABondThatIsASwitchTooIsBuiltFromItsOwnFile)
{
    Put("/mnt/mtd/Config/poeMode.conf", "bond0 = 2\n");
    SaveBond("bond0:poe", {"BONDMODE = 1", "BONDMEMBERS = eth1"});
    List({"bond0"});
    EXPECT_TRUE(DoBondStuff());
    EXPECT_EQ(TraceOf({"sleep"}), std::vector<std::string>{"sleep 2"});
}

TEST_F(DoBondStuffTest, ABondThatCannotBeBuiltIsAWarningAndPausedFor)
{
    AddBondDevice("bond1");
    SaveBond("bond0", {"BONDMODE = 1", "BONDMEMBERS = eth1,eth2"});  // no device
    SaveBond("bond1", {"BONDMODE = 1", "BONDMEMBERS = eth3,eth4"});
    List({"eth1", "eth2", "eth3", "eth4", "bond0", "bond1"});
    EXPECT_TRUE(DoBondStuff());
    EXPECT_EQ(LogOf("DoBondStuff"), LogLines{Warn("DoBondStuff", "bond failed!")});
    EXPECT_EQ(
        TraceOf({"sleep", "command ifenslave"}),
        (std::vector<std::string>{"sleep 2", "command ifenslave bond1 eth3 eth4", "sleep 2"}));
}

TEST_F(DoBondStuffTest, VlansOnBondsAndOtherNamesAreNotBuilt)
{
    for (const char* name : {"bond0.5", "eth0", "br0"}) {
        SaveBond(name, {"BONDMODE = 1", "BONDMEMBERS = eth1,eth2"});
    }
    List({"eth0", "br0", "bond0.5"});
    EXPECT_TRUE(DoBondStuff());
    EXPECT_EQ(Trace(), std::vector<std::string>{});
}

TEST_F(DoBondStuffTest, AnUnlistedBondIsNotBuilt)
{
    AddBondDevice("bond0");
    SaveBond("bond0", {"BONDMODE = 1", "BONDMEMBERS = eth1,eth2"});
    List({"eth1", "eth2"});
    EXPECT_TRUE(DoBondStuff());
    EXPECT_EQ(Trace(), std::vector<std::string>{});
}

TEST_F(DoBondStuffTest, WhateverFailsTheFilesStayWhole)
{
    // Down to the transaction, which a card that is missing refuses: it has a sweep of its own.
    AddBondDevice("bond0");
    SaveBond("bond0", {"BONDMODE = 4", "BONDMEMBERS = eth1,eth9", "LACP = 1"});
    List({"eth1", "bond0"});
    FailEachCall([] { DoBondStuff(); }, [](const std::string&) { ExpectWellFormedFiles(); });
}

// ---- bridges

class DoBridgeStuffTest : public World {
protected:
    static void SaveBridge(const std::string& bridge, const std::string& list)
    {
        Put(CardFile(bridge), "BRIDGEMEMBERS = " + list + "\n");
    }

    /// The bridges made, in any order: directories have none.
    static std::vector<std::string> Made()
    {
        std::vector<std::string> made = TraceOf({"command brctl addbr"});
        std::sort(made.begin(), made.end());
        for (std::string& command : made) command = command.substr(strlen("command brctl addbr "));
        return made;
    }
};

TEST_F(DoBridgeStuffTest, BuildsABridgeFromItsFileThoughItIsNotListed)
{
    SaveBridge("br0", "eth1,eth2");
    List({"eth1", "eth2"});
    EXPECT_TRUE(DoBridgeStuff());
    EXPECT_EQ(LogOf("DoBridgeStuff"), LogLines{});
    EXPECT_EQ(Commands(),
              (std::vector<std::string>{"brctl addbr br0", "brctl addif br0 eth1",
                                        "ifconfig br0 hw ether 02:00:00:00:00:01",
                                        "brctl addif br0 eth2", "ifconfig eth1 down",
                                        "ifconfig eth2 down", "ifconfig eth1 0.0.0.0 up",
                                        "ifconfig eth2 0.0.0.0 up", "ifconfig br0 up"}));
    EXPECT_EQ(Get(CardFile("eth1")), "BRIDGEEDED = 1\nBRIDGENAME = br0\nWORKMODE = 3\n");
}

TEST_F(DoBridgeStuffTest, EveryBridgesFileIsLookedAt)
{
    SaveBridge("br0", "eth1,eth2");
    SaveBridge("br7", "eth3,eth4");
    SaveBridge("br1", "eth5");
    SaveBridge("br2", ",");
    Put(CardFile("br3"), "");
    List({"eth1", "eth2", "eth3", "eth4", "eth5"});
    EXPECT_TRUE(DoBridgeStuff());
    EXPECT_EQ(Made(), (std::vector<std::string>{"br0", "br7"}));
}

TEST_F(DoBridgeStuffTest, OnlyRegularFilesOfBridgesCount)
{
    const std::string list = "BRIDGEMEMBERS = eth1,eth2\n";
    Put("/mnt/mtd/real", list);
    MakeFolder(CardFile("br1"));
    std::filesystem::create_symlink(Mapped("/mnt/mtd/real"), Mapped(CardFile("br2").c_str()));
    Put(CardFile("bond0"), list);
    Put("/mnt/mtd/Config/networkb", list);
    Put("/mnt/mtd/Config/networkip6br5", list);
    Put("/mnt/mtd/Config/old.networkbr6", list);  // names no bridge
    List({"eth1", "eth2"});
    EXPECT_TRUE(DoBridgeStuff());
    EXPECT_EQ(Commands(), std::vector<std::string>{});
    EXPECT_EQ(LogOf("DoBridgeStuff"), LogLines{});  // nor was one tried
}

TEST_F(DoBridgeStuffTest, APortsNameOf32CharactersIsHandedOnWhole)
{
    const std::string port = "eth0abcdefghijk" + std::string(17, 'l');
    SaveBridge("br0", port + ",eth1");
    List({port.substr(0, 15), "eth1"});
    EXPECT_TRUE(DoBridgeStuff());
    EXPECT_EQ(Commands()[1], "brctl addif br0 " + port);
    EXPECT_EQ(Commands()[3], "brctl addif br0 eth1");
}

TEST_F(DoBridgeStuffTest, EntriesWithoutATypeArePassedOver)
{
    SaveBridge("br0", "eth1,eth2");
    List({"eth1", "eth2"});
    TellNoEntryTypes();
    EXPECT_TRUE(DoBridgeStuff());
    EXPECT_EQ(Commands(), std::vector<std::string>{});
    EXPECT_EQ(LogOf("DoBridgeStuff"), LogLines{});
}

TEST_F(DoBridgeStuffTest, ABridgeThatCannotBeBuiltIsAWarning)
{
    SaveBridge("br0", "eth1,eth9");
    List({"eth1"});
    EXPECT_TRUE(DoBridgeStuff());
    EXPECT_EQ(LogOf("DoBridgeStuff"), LogLines{Warn("DoBridgeStuff", "Bridge failed")});
}

TEST_F(DoBridgeStuffTest, TheInternalBridgeComesLast)
{
    SaveBridge("br0", "eth1,eth2");
    kernel.Add("vnic0").driver = "pcit virt nic";
    List({"eth1", "eth2"});
    EXPECT_TRUE(DoBridgeStuff());
    EXPECT_EQ(TraceOf({"command brctl addbr", "closedir"}),
              (std::vector<std::string>{"command brctl addbr br0", "closedir /mnt/mtd/Config",
                                        "command brctl addbr nbp0"}));
}

TEST_F(DoBridgeStuffTest, WithoutTheFolderNothingIsBuilt)
{
    kernel.Add("vnic0").driver = "pcit virt nic";
    List({"eth1"});
    Fail("opendir /mnt/mtd/Config", EACCES);
    EXPECT_FALSE(DoBridgeStuff());
    EXPECT_EQ(Log(), LogLines{Error("DoBridgeStuff", "can not open /mnt/mtd/Config")});
    EXPECT_EQ(Commands(), std::vector<std::string>{});
}

TEST_F(DoBridgeStuffTest, WhateverFailsTheFilesStayWhole)
{
    // Down to the transaction, which a card that is missing refuses: it has a sweep of its own.
    SaveBridge("br0", "eth1,eth9");
    List({"eth1"});
    FailEachCall([] { DoBridgeStuff(); }, [](const std::string&) { ExpectWellFormedFiles(); });
}

}  // namespace
