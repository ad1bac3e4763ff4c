// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "CommonApi.h"

#include "BridgeWorld.h"

using namespace fake;

namespace {

/// The number of virtual cards that a test lets the listing tell; -1 for the real one.
int toldCards = -1;

}  // namespace

extern "C" {

bool __real_GetVnicInterfaceInfo(char (*names)[16], int* maxNum);

bool __wrap_GetVnicInterfaceInfo(char (*names)[16], int* maxNum)
{
    if (toldCards < 0) return __real_GetVnicInterfaceInfo(names, maxNum);
    *maxNum = toldCards;
    return true;
}

}  // extern "C"

namespace {

// ---- BridgeByInterNic

const std::string kInternalFile = CardFile("nbp0");

class BridgeByInterNicTest : public BridgeWorld {
protected:
    void SetUp() override
    {
        BridgeWorld::SetUp();
        toldCards = -1;
        kernel.Add("vnic0").driver = "pcit virt nic";
        kernel.Add("vnic1").driver = "something else";
        Begin();
    }

    static void ExpectNotNeeded(const std::string& warning)
    {
        EXPECT_FALSE(BridgeByInterNic(nullptr));
        EXPECT_EQ(Log(),
                  (LogLines{NoBridge("nbp0"), Warn("Bridge_needBridgeByInterNic", warning)}));
        ExpectUntouched();
        EXPECT_FALSE(Exists(kInternalFile));
    }
};

const Lines kInternalBuilding = {"brctl addbr nbp0",
                                 "brctl addif nbp0 vnic0",
                                 "ifconfig nbp0 hw ether 02:00:00:00:00:01",
                                 "brctl addif nbp0 vnic1",
                                 "ifconfig vnic0 down",
                                 "ifconfig vnic1 down",
                                 "ifconfig vnic0 0.0.0.0 up",
                                 "ifconfig vnic1 0.0.0.0 up",
                                 "ifconfig nbp0 up"};

TEST_F(BridgeByInterNicTest, BuildsTheBridgeUnderItsFixedAddress)
{
    EXPECT_TRUE(BridgeByInterNic(nullptr));
    EXPECT_EQ(Commands(), kInternalBuilding);
    EXPECT_EQ(kernel.At("nbp0").mtu, 65535);
    EXPECT_EQ(kernel.At("nbp0").address, "10.201.156.254");
    EXPECT_EQ(kernel.At("nbp0").mask, "255.255.254.0");
    EXPECT_EQ(Get(kInternalFile), Settings({"BRIDGEMEMBERS = vnic0,vnic1", "MTU = 65535",
                                            "HOSTIP = 10.201.156.254", "SUBMASK = 255.255.254.0"}));
    const std::string writes = "fopen " + kInternalFile + " w+";
    EXPECT_EQ(Changes(), (Lines{"ioctl SIOCSIFMTU nbp0", writes, "ioctl SIOCSIFFLAGS nbp0", writes,
                                writes, writes, "ioctl SIOCSIFADDR nbp0",
                                "ioctl SIOCSIFNETMASK nbp0", writes, writes}));
    EXPECT_EQ(LogOf("BridgeByInterNic"), LogLines{});
    EXPECT_EQ(Log().front(), NoBridge("nbp0"));
}

TEST_F(BridgeByInterNicTest, WritesNothingIntoTheCardsOwnSettings)
{
    EXPECT_TRUE(BridgeByInterNic(nullptr));
    EXPECT_FALSE(Exists(CardFile("vnic0")));
    EXPECT_FALSE(Exists(CardFile("vnic1")));
}

TEST_F(BridgeByInterNicTest, ASavedAddressWins)
{
    const Lines saved = {"HOSTIP = 10.3.0.2", "SUBMASK = 255.255.0.0", "GATEWAYIP = 10.3.0.1",
                         "MTU = 9000"};
    Put(kInternalFile, Settings(saved));
    EXPECT_TRUE(BridgeByInterNic(nullptr));
    EXPECT_EQ(kernel.At("nbp0").address, "10.3.0.2");
    EXPECT_EQ(kernel.At("nbp0").mtu, 9000);
    EXPECT_EQ(Get(kInternalFile), Settings(saved) + "BRIDGEMEMBERS = vnic0,vnic1\n");
    EXPECT_EQ(LogOf("NetCardRecover"), LogLines{});
}

TEST_F(BridgeByInterNicTest, ASavedAddressThatTheKernelRefusesWinsToo)
{
    Put(kInternalFile, Settings({"HOSTIP = 10.3.0.2", "SUBMASK = 255.255.0.0"}));
    FailAll("ioctl SIOCSIFADDR", EPERM);
    EXPECT_TRUE(BridgeByInterNic(nullptr));
    EXPECT_EQ(LogOf("BridgeByInterNic"), LogLines{});
    EXPECT_EQ(Get(kInternalFile).find("10.201"), std::string::npos);
}

TEST_F(BridgeByInterNicTest, AFixedAddressThatCannotBeSetIsReportedAndSavedAllTheSame)
{
    FailAll("ioctl SIOCSIFADDR", EPERM);
    EXPECT_TRUE(BridgeByInterNic("nbp1"));
    EXPECT_EQ(Log().back(), Warn("BridgeByInterNic",
                                 "set nbp1's IP: 10.201.156.254, MASK: 255.255.254.0 failed"));
    EXPECT_EQ(Get(CardFile("nbp1")),
              Settings({"BRIDGEMEMBERS = vnic0,vnic1", "MTU = 65535", "HOSTIP = 10.201.156.254",
                        "SUBMASK = 255.255.254.0"}));
}

TEST_F(BridgeByInterNicTest, KeepsFifteenCharactersOfTheName)
{
    EXPECT_TRUE(BridgeByInterNic("nbp-abcdefghijklmn"));
    EXPECT_EQ(Commands().front(), "brctl addbr nbp-abcdefghijk");
    EXPECT_TRUE(Exists(CardFile("nbp-abcdefghijk")));
}

TEST_F(BridgeByInterNicTest, ABridgeThatExistsIsLeftAlone)
{
    Make("nbp0");
    Begin();
    EXPECT_FALSE(BridgeByInterNic(nullptr));
    EXPECT_EQ(Log(), LogLines{});
    ExpectUntouched();
}

TEST_F(BridgeByInterNicTest, WithoutVirtualCardsItIsNotNeeded)
{
    kernel.cards.remove_if([](const Card& card) { return card.name.rfind("vnic", 0) == 0; });
    ExpectNotNeeded("get vnic interface failed");
}

TEST_F(BridgeByInterNicTest, ANumberOfCardsThatCannotBeIsNotBelieved)
{
    for (const int number : {0, 33}) {
        ClearLog();
        toldCards = number;
        ExpectNotNeeded("get vnic interface num(" + std::to_string(number) + ") err");
    }
}

TEST_F(BridgeByInterNicTest, AFirstCardOfAnotherDriverIsNotUsed)
{
    kernel.At("vnic0").driver = "e1000";
    ExpectNotNeeded("get vnic0 interface check err");
}

TEST_F(BridgeByInterNicTest, AFirstCardWithAnAddressIsNotUsed)
{
    kernel.At("vnic0").address = "10.9.0.1";
    ExpectNotNeeded("get vnic0 interface check err");
}

TEST_F(BridgeByInterNicTest, OnlyTheFirstCardIsLookedAt)
{
    kernel.At("vnic1").address = "10.9.0.1";
    EXPECT_TRUE(BridgeByInterNic(nullptr));
    EXPECT_EQ(Commands(), kInternalBuilding);
}

TEST_F(BridgeByInterNicTest, AFailedBuildingSavesNothing)
{
    Fail("vfork", EAGAIN, 9);
    EXPECT_FALSE(BridgeByInterNic(nullptr));
    EXPECT_EQ(Log().back(), Error("BridgeByInterNic", "Bridge failed.[nbp0]"));
    EXPECT_EQ(Changes(), Lines{});
    EXPECT_FALSE(Exists(kInternalFile));
}

TEST_F(BridgeByInterNicTest, AnMtuThatCannotBeSetIsNotReported)
{
    FailAll("ioctl SIOCSIFMTU", EINVAL);
    EXPECT_TRUE(BridgeByInterNic(nullptr));
    EXPECT_EQ(kernel.At("nbp0").address, "10.201.156.254");
}

TEST_F(BridgeByInterNicTest, NothingIsSavedUnlessItWasBuilt)
{
    static bool done;
    FailEachCall(
        [] { done = BridgeByInterNic(nullptr); },
        [](const std::string& failed) { EXPECT_TRUE(done || !Exists(kInternalFile)) << failed; },
        kMayStayOpen);
}

}  // namespace
