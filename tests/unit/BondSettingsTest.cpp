// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// What a bond tells of itself, and its hash policy.

#include "BondManagementWorld.h"

using namespace fake;
using namespace std::string_literals;

namespace {

// ---- GetBondMode

class GetBondModeTest : public BondWorld {
protected:
    NICBondMode mode = nicBondBroadcast;
};

TEST_F(GetBondModeTest, TellsTheSavedModeAndNeverTheDrivers)
{
    Run("4");
    EXPECT_TRUE(GetBondMode(kBond, &mode));
    EXPECT_EQ(mode, nicBond802_3ad);
    EXPECT_EQ(TraceOf({"open " + Attribute("mode")}), Lines{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(GetBondModeTest, ABondThatDoesNotRunHasNone)
{
    Run("4");
    Put(kSlaves, "");
    EXPECT_FALSE(GetBondMode(kBond, &mode));
    EXPECT_EQ(mode, nicBondBroadcast);
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(TraceOf({"open /mnt/mtd"}), Lines{});
}

TEST_F(GetBondModeTest, ReportsAModeThatIsNotSaved)
{
    Run("4");
    Put(kBondFile, "");
    EXPECT_FALSE(GetBondMode(kBond, &mode));
    EXPECT_EQ(Log(), (LogLines{Error("GetBondMode", "get bond0 bondmode by config failed.")}));
}

TEST_F(GetBondModeTest, NullIsRefusedInSilence)
{
    EXPECT_FALSE(GetBondMode(nullptr, &mode));
    EXPECT_FALSE(GetBondMode(kBond, nullptr));
    EXPECT_EQ(TraceOf({"open"}), Lines{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(GetBondModeTest, AnyFailureOfAReadIsAFailure)
{
    static bool done;
    Run("4");
    FailEachCall(
        [] {
            NICBondMode read = nicBondBalanceRR;
            done = GetBondMode(kBond, &read) && read == nicBond802_3ad;
        },
        [](const std::string& failed) {
            const bool ofTheLock =
                failed.find("O_APPEND") != std::string::npos || failed.rfind("fcntl", 0) == 0;
            EXPECT_EQ(done, ofTheLock);
        },
        kMayStayOpen);
}

// ---- questions that go to the driver

class BondHasMemberTest : public BondWorld {};

TEST_F(BondHasMemberTest, AsksTheDriver)
{
    Run("1");
    EXPECT_TRUE(BondHasMember(kBond, "eth0"));
    EXPECT_FALSE(BondHasMember(kBond, "eth2"));
    EXPECT_FALSE(BondHasMember(nullptr, "eth0"));
    EXPECT_FALSE(BondHasMember(kBond, nullptr));
}

TEST_F(BondHasMemberTest, AsksForNothingThatTheListOfCardsHolds)
{
    Put("/sys/class/net/bond7/bonding/slaves", "eth8 eth9\n");
    EXPECT_TRUE(BondHasMember("bond7", "eth9"));
    EXPECT_EQ(TraceOf({"open /proc/net/dev"}), Lines{});
    EXPECT_EQ(Log(), LogLines{});
}

class GetBondActiveSlaveTest : public BondWorld {};

TEST_F(GetBondActiveSlaveTest, AsksTheDriver)
{
    char name[16] = "";
    EXPECT_TRUE(GetBondActiveSlave(kBond, name, sizeof(name)));
    EXPECT_STREQ(name, "eth1\n");
    EXPECT_TRUE(GetBondActiveSlave(kBond, name, 6));
    EXPECT_STREQ(name, "eth1");
    EXPECT_FALSE(GetBondActiveSlave(nullptr, name, sizeof(name)));
    EXPECT_FALSE(GetBondActiveSlave(kBond, nullptr, sizeof(name)));
}

class GetBondMembersTest : public BondWorld {
protected:
    Table table;
    int count = 32;
};

TEST_F(GetBondMembersTest, ListsTheMembers)
{
    Run("1");
    EXPECT_TRUE(GetBondMembers(kBond, table.pointers, &count));
    EXPECT_EQ(table.First(count), (Lines{"eth1", "eth0"}));
}

TEST_F(GetBondMembersTest, TheBondMustExist)
{
    Put("/sys/class/net/bond9/bonding/slaves", "eth0\n");
    EXPECT_FALSE(GetBondMembers("bond9", table.pointers, &count));
    EXPECT_EQ(Log().back(),
              Error("CheckEthExist", "can not find bond9 in eth0,eth1,wlan0,bond0,."));
    EXPECT_EQ(TraceOf({"open /sys"}), Lines{});
}

TEST_F(GetBondMembersTest, NullIsRefusedInSilence)
{
    EXPECT_FALSE(GetBondMembers(nullptr, table.pointers, &count));
    EXPECT_FALSE(GetBondMembers(kBond, nullptr, &count));
    EXPECT_FALSE(GetBondMembers(kBond, table.pointers, nullptr));
    table.pointers[1] = nullptr;
    EXPECT_FALSE(GetBondMembers(kBond, table.pointers, &count));
    EXPECT_EQ(table.names[0][0], '#');
    EXPECT_EQ(TraceOf({"open"}), Lines{});
    EXPECT_EQ(Log(), LogLines{});
}

// ---- SetBondHashPolicy, GetBondHashPolicy

class SetBondHashPolicyTest : public BondWorld {
protected:
    void SetUp() override
    {
        BondWorld::SetUp();
        kernel.At(kBond).flags = IFF_UP;
    }
};

TEST_F(SetBondHashPolicyTest, IsWrittenWhileTheBondIsDownAndSavedBehind)
{
    OnCall("write", [] { EXPECT_EQ(kernel.At(kBond).flags, 0); });
    EXPECT_TRUE(SetBondHashPolicy(kBond, 2));
    EXPECT_EQ(TraceOf({"ioctl SIOCS", "write", kWritesBond}),
              (Lines{"ioctl SIOCSIFFLAGS bond0", "write " + Attribute("xmit_hash_policy"),
                     "ioctl SIOCSIFFLAGS bond0", kWritesBond}));
    EXPECT_EQ(Get(Attribute("xmit_hash_policy")), "2\0"s);
    EXPECT_EQ(Get(kBondFile), Settings(kOwnSettings) + "LACP = 2\n");
    EXPECT_EQ(kernel.At(kBond).flags, IFF_UP);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(SetBondHashPolicyTest, ARefusedPolicyIsNotSavedAndTheBondIsUpAgain)
{
    Fail("write", EINVAL);
    EXPECT_FALSE(SetBondHashPolicy(kBond, 2));
    EXPECT_EQ(Get(kBondFile), Settings(kOwnSettings));
    EXPECT_EQ(kernel.At(kBond).flags, IFF_UP);
}

TEST_F(SetBondHashPolicyTest, ABondWhoseFlagsCannotBeChangedGetsItsPolicyAllTheSame)
{
    FailAll("ioctl SIOCSIFFLAGS", EPERM);
    EXPECT_TRUE(SetBondHashPolicy(kBond, 3));
    EXPECT_EQ(Get(Attribute("xmit_hash_policy")), "3\0"s);
    EXPECT_EQ(Get(kBondFile), Settings(kOwnSettings) + "LACP = 3\n");
}

TEST_F(SetBondHashPolicyTest, APolicyThatIsNotSavedIsASuccess)
{
    FailAll(kWritesBond, EROFS);
    EXPECT_TRUE(SetBondHashPolicy(kBond, 2));
}

TEST_F(SetBondHashPolicyTest, OtherNamesAreRefused)
{
    EXPECT_FALSE(SetBondHashPolicy(nullptr, 1));
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_FALSE(SetBondHashPolicy("eth0", 1));
    EXPECT_EQ(Log(), (LogLines{Warn("SetBondHashPolicy", "bond net card is not valid.[eth0]")}));
    EXPECT_EQ(TraceOf({"open"}), Lines{});
    EXPECT_FALSE(SetBondHashPolicy("bond9", 1));
    EXPECT_EQ(Log().back(),
              Error("CheckEthExist", "can not find bond9 in eth0,eth1,wlan0,bond0,."));
    ExpectUntouched();
}

TEST_F(SetBondHashPolicyTest, BondMayStandAnywhereInTheName)
{
    kernel.Add("eth-bond1");
    Put("/sys/class/net/eth-bond1/bonding/xmit_hash_policy", "0\n");
    EXPECT_TRUE(SetBondHashPolicy("eth-bond1", 1));
    EXPECT_EQ(Get("/sys/class/net/eth-bond1/bonding/xmit_hash_policy"), "1\0"s);
}

TEST_F(SetBondHashPolicyTest, IsSavedOnlyWhenTheDriverTookItWhateverFails)
{
    static bool done;
    FailEachCall([] { done = SetBondHashPolicy(kBond, 3); },
                 [](const std::string& failed) {
                     const bool written = Get(Attribute("xmit_hash_policy")) == "3\0"s;
                     EXPECT_EQ(done, written) << failed;
                     EXPECT_TRUE(done || Get(kBondFile) == Settings(kOwnSettings));
                 },
                 kMayStayOpen);
}

class GetBondHashPolicyTest : public BondWorld {
protected:
    unsigned char policy = 9;
};

TEST_F(GetBondHashPolicyTest, TellsTheSavedPolicyAndNeverTheDrivers)
{
    Put(kBondFile, "LACP = 3\n");
    EXPECT_TRUE(GetBondHashPolicy(kBond, &policy));
    EXPECT_EQ(policy, 3);
    EXPECT_EQ(TraceOf({"open /sys"}), Lines{});
}

TEST_F(GetBondHashPolicyTest, WithoutASavedPolicyItFailsAsTheSettingDoes)
{
    EXPECT_FALSE(GetBondHashPolicy(kBond, &policy));
    EXPECT_EQ(policy, 9);
    Put(kBondFile, "LACP = 7\n");
    EXPECT_FALSE(GetBondHashPolicy(kBond, &policy));
    EXPECT_EQ(policy, 0);
    EXPECT_EQ(TraceOf({"open /sys"}), Lines{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(GetBondHashPolicyTest, TheBondMustExist)
{
    EXPECT_FALSE(GetBondHashPolicy(nullptr, &policy));
    EXPECT_FALSE(GetBondHashPolicy(kBond, nullptr));
    EXPECT_EQ(TraceOf({"open"}), Lines{});
    Put("/mnt/mtd/Config/networkbond9", "LACP = 3\n");
    EXPECT_FALSE(GetBondHashPolicy("bond9", &policy));
    EXPECT_EQ(policy, 9);
}

}  // namespace
