// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "CommonApi.h"

#include "InterfaceWorld.h"

#include <linux/sockios.h>
#include <net/if.h>

using namespace fake;

namespace {

constexpr char kBondFile[] = "/mnt/mtd/Config/networkbond0";
constexpr char kMembers[] = "/sys/class/net/bond0/bonding/slaves";

// ---- NetCardRecover

class NetCardRecoverTest : public InterfaceWorld {
protected:
    static void Save(const std::string& file, const Lines& lines)
    {
        Put(file, Settings(lines));
        Begin();
    }
};

LogLine Warns(const std::string& text)
{
    return Warn("NetCardRecover", text);
}

LogLine Fails(const std::string& text)
{
    return Error("NetCardRecover", text);
}

const Lines kSaved = {"HOSTIP = 10.0.0.2", "SUBMASK = 255.255.255.0", "GATEWAYIP = 10.0.0.1",
                      "MTU = 1400"};

TEST_F(NetCardRecoverTest, SetsFlagsAddressGatewayAndMtuFromTheFile)
{
    kernel.At("eth1").flags = IFF_BROADCAST;
    Save(kFile1, kSaved);
    EXPECT_TRUE(NetCardRecover("eth1"));
    const Card& card = kernel.At("eth1");
    EXPECT_EQ(card.flags, IFF_BROADCAST | IFF_UP);
    EXPECT_EQ(card.address, "10.0.0.2");
    EXPECT_EQ(card.mask, "255.255.255.0");
    EXPECT_EQ(card.mtu, 1400);
    EXPECT_EQ(Changes(), (Lines{"ioctl SIOCSIFFLAGS eth1", "ioctl SIOCSIFADDR eth1",
                                "ioctl SIOCSIFNETMASK eth1", kWrites1, kWrites1, kWrites1,
                                "ioctl SIOCSIFMTU eth1"}));
    EXPECT_EQ(Get(kFile1), Settings(kSaved));
    EXPECT_EQ(kernel.routes, std::vector<Route>{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NetCardRecoverTest, ComesUpBeforeAnythingIsRead)
{
    Save(kFile1, kSaved);
    OnCall("open /mnt/mtd/Config/network1", [] {
        EXPECT_EQ(kernel.At("eth1").flags, IFF_UP);
        EXPECT_EQ(kernel.At("eth1").address, "");
    });
    EXPECT_TRUE(NetCardRecover("eth1"));
}

TEST_F(NetCardRecoverTest, TheFirstCardIsBackedUpAgainWhenItIsSet)
{
    Save(kFile0, kSaved);
    EXPECT_TRUE(NetCardRecover("eth0"));
    EXPECT_EQ(Changes(), (Lines{"ioctl SIOCSIFFLAGS eth0", "ioctl SIOCSIFADDR eth0",
                                "ioctl SIOCSIFNETMASK eth0", kWrites0, kWrites0, kBacksUp, kBacksUp,
                                kWrites0, kBacksUp, "ioctl SIOCSIFMTU eth0"}));
    EXPECT_EQ(Backed(RestoreGateway), "10.0.0.1");
}

TEST_F(NetCardRecoverTest, AddressAndGatewayComeFromTheBackupWhenTheFileHasNone)
{
    KeepInBackup("10.0.0.8", "255.255.0.0", "10.0.0.9");
    Save(kFile0, {"MTU = 1400"});
    EXPECT_TRUE(NetCardRecover("eth0"));
    EXPECT_EQ(kernel.At("eth0").address, "10.0.0.8");
    EXPECT_EQ(kernel.At("eth0").mask, "255.255.0.0");
    EXPECT_EQ(kernel.At("eth0").mtu, 1400);
    EXPECT_EQ(Get(kFile0), Settings({"MTU = 1400", "HOSTIP = 10.0.0.8", "SUBMASK = 255.255.0.0",
                                     "GATEWAYIP = 10.0.0.9"}));
    EXPECT_EQ(Log(), (LogLines{Warns("get ip mask by config failed.[eth0]"),
                               Warns("get getway by config failed.[eth0]")}));
}

TEST_F(NetCardRecoverTest, WithoutFileAndBackupItStillComesUpAndTriesTheRest)
{
    EXPECT_FALSE(NetCardRecover("eth1"));
    EXPECT_EQ(kernel.At("eth1").flags, IFF_UP);
    EXPECT_EQ(Changes(), Lines{"ioctl SIOCSIFFLAGS eth1"});
    EXPECT_EQ(Log(), (LogLines{Warns("get ip mask by config failed.[eth1]"),
                               Fails("get ip mask from cmos  or rtc failed.[eth1]"),
                               Warns("get getway by config failed.[eth1]"),
                               Fails("get gateway from cmos  or rtc failed.[eth1]"),
                               Fails("get mtu from config failed.[eth1]")}));
}

TEST_F(NetCardRecoverTest, TheMaskIsRestoredOnlyBehindTheAddress)
{
    KeepInBackup(nullptr, "255.255.0.0", nullptr);
    EXPECT_FALSE(NetCardRecover("eth0"));
    EXPECT_EQ(LogOf("RestoreIP"), (LogLines{Error("RestoreIP", "ip is zero.")}));
    EXPECT_EQ(LogOf("RestoreMask"), LogLines{});
    EXPECT_EQ(kernel.rtc.requests.size(), 2U);  // address and gateway
    EXPECT_TRUE(Logged(Fails("get ip mask from cmos  or rtc failed.[eth0]")));
}

TEST_F(NetCardRecoverTest, AnAddressWithoutItsMaskIsNone)
{
    KeepInBackup("10.0.0.8", nullptr, "10.0.0.9");
    EXPECT_FALSE(NetCardRecover("eth0"));
    EXPECT_EQ(kernel.At("eth0").address, "");
    EXPECT_TRUE(Logged(Fails("get ip mask from cmos  or rtc failed.[eth0]")));
    EXPECT_EQ(Get(kFile0), Settings({"GATEWAYIP = 10.0.0.9"}));
}

TEST_F(NetCardRecoverTest, ALostAddressDoesNotStopGatewayAndMtu)
{
    Save(kFile1, {"GATEWAYIP = 10.0.0.1", "MTU = 1400"});
    EXPECT_FALSE(NetCardRecover("eth1"));
    EXPECT_EQ(Changes(), (Lines{"ioctl SIOCSIFFLAGS eth1", kWrites1, "ioctl SIOCSIFMTU eth1"}));
    EXPECT_EQ(kernel.At("eth1").mtu, 1400);
}

TEST_F(NetCardRecoverTest, AnAddressThatTheKernelRefusesCountsAsFound)
{
    Save(kFile1, kSaved);
    Fail("ioctl SIOCSIFADDR", EPERM);
    EXPECT_TRUE(NetCardRecover("eth1"));
    EXPECT_EQ(Log(),
              (LogLines{Refused(SIOCSIFADDR, EPERM, "eth1"),
                        Error("Net_SetIPbyName", "set eth1 ip 10.0.0.2 error"),
                        Fails("set ip[10.0.0.2] mask[255.255.255.0] to sys failed.[eth1]")}));
    EXPECT_EQ(kernel.At("eth1").mtu, 1400);
}

TEST_F(NetCardRecoverTest, AGatewayThatIsNotSavedIsReportedAndNoMore)
{
    Save(kFile1, {"HOSTIP = 0.0.0.0", "SUBMASK = 0.0.0.0", "GATEWAYIP = 10.0.0.1", "MTU = 1400"});
    Fail(kWrites1, EROFS);
    EXPECT_TRUE(NetCardRecover("eth1"));
    EXPECT_EQ(Log(), (LogLines{Info("SetIPByConfig", "ip: 0.0.0.0 mask 0.0.0.0 not save."),
                               Error("SetValueByKey", "cannot fopen [Read-only file system]"),
                               Error("NetSetGatewaybyName", "save eth1,10.0.0.1 to config failed"),
                               Fails("set gateway[10.0.0.1] to sys failed.[eth1]")}));
    EXPECT_EQ(kernel.At("eth1").mtu, 1400);
}

TEST_F(NetCardRecoverTest, ALostGatewayDoesNotStopTheMtu)
{
    Save(kFile1, {"HOSTIP = 10.0.0.2", "SUBMASK = 255.255.255.0", "MTU = 1400"});
    EXPECT_TRUE(NetCardRecover("eth1"));
    EXPECT_EQ(Log(), (LogLines{Warns("get getway by config failed.[eth1]"),
                               Fails("get gateway from cmos  or rtc failed.[eth1]")}));
    EXPECT_EQ(kernel.At("eth1").mtu, 1400);
}

TEST_F(NetCardRecoverTest, AnMtuThatTheKernelRefusesPlaysNoPart)
{
    Save(kFile1, kSaved);
    FailAll("ioctl SIOCSIFMTU", EINVAL);
    EXPECT_TRUE(NetCardRecover("eth1"));
    EXPECT_EQ(Log().back(), Error("Net_SetMtubyName", "set MTU failed.[eth1,1400]"));
}

TEST_F(NetCardRecoverTest, ACardThatDoesNotComeUpIsSetAllTheSame)
{
    Save(kFile1, kSaved);
    Fail("ioctl SIOCSIFFLAGS", EPERM);
    EXPECT_TRUE(NetCardRecover("eth1"));
    EXPECT_EQ(kernel.At("eth1").address, "10.0.0.2");
}

TEST_F(NetCardRecoverTest, ACardThatDoesNotExistHasASavedAddressAllTheSame)
{
    Put("/mnt/mtd/Config/networketh9", Settings(kSaved));
    EXPECT_TRUE(NetCardRecover("eth9"));
    EXPECT_EQ(LogOf("NetCardRecover"),
              (LogLines{Fails("set ip[10.0.0.2] mask[255.255.255.0] to sys failed.[eth9]"),
                        Fails("set gateway[10.0.0.1] to sys failed.[eth9]")}));
}

TEST_F(NetCardRecoverTest, ABondGetsItsMtuWithItsMembersDown)
{
    kernel.Add("mybond1");
    Put("/sys/class/net/mybond1/bonding/slaves", "eth0 eth1\n");
    Save("/mnt/mtd/Config/networkmybond1", kSaved);
    EXPECT_TRUE(NetCardRecover("mybond1"));
    EXPECT_EQ(TraceOf({"ioctl SIOCSIFFLAGS", "ioctl SIOCSIFMTU"}),
              (Lines{"ioctl SIOCSIFFLAGS mybond1", "ioctl SIOCSIFFLAGS mybond1",
                     "ioctl SIOCSIFFLAGS eth0", "ioctl SIOCSIFFLAGS eth1",
                     "ioctl SIOCSIFMTU mybond1", "ioctl SIOCSIFFLAGS eth0",
                     "ioctl SIOCSIFFLAGS eth1", "ioctl SIOCSIFFLAGS mybond1"}));
    EXPECT_EQ(kernel.At("mybond1").mtu, 1400);
}

TEST_F(NetCardRecoverTest, NullIsRefusedInSilence)
{
    EXPECT_FALSE(NetCardRecover(nullptr));
    EXPECT_EQ(TraceOf({"open", "fopen", "ioctl"}), Lines{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NetCardRecoverTest, TellsWhetherAnAddressWasFoundWhateverFails)
{
    static bool found;
    Save(kFile1, kSaved);
    FailEachCall([] { found = NetCardRecover("eth1"); },
                 [](const std::string&) {
                     EXPECT_EQ(found,
                               !Logged(Fails("get ip mask from cmos  or rtc failed.[eth1]")));
                 },
                 kMayStayOpen);
}

// ---- SetMtubyBondName

class SetMtubyBondNameTest : public InterfaceWorld {
protected:
    void SetUp() override
    {
        InterfaceWorld::SetUp();
        for (const char* name : {"bond0", "eth0", "eth1"}) {
            if (kernel.Find(name) == nullptr) kernel.Add(name);
            kernel.At(name).flags = IFF_UP;
        }
        Put(kMembers, "eth1 eth0\n");
        Begin();
    }
};

const Lines kDownSetUp = {"ioctl SIOCSIFFLAGS bond0", "ioctl SIOCSIFFLAGS eth1",
                          "ioctl SIOCSIFFLAGS eth0",  "ioctl SIOCSIFMTU bond0",
                          "ioctl SIOCSIFFLAGS eth1",  "ioctl SIOCSIFFLAGS eth0",
                          "ioctl SIOCSIFFLAGS bond0"};

TEST_F(SetMtubyBondNameTest, TakesTheBondThenItsMembersDownAndTheMembersFirstUp)
{
    OnCall("ioctl SIOCSIFMTU bond0", [] {
        for (const char* name : {"bond0", "eth0", "eth1"}) EXPECT_EQ(kernel.At(name).flags, 0);
    });
    EXPECT_TRUE(SetMtubyBondName("bond0", 7200));
    EXPECT_EQ(Changes(), kDownSetUp);
    EXPECT_EQ(kernel.At("bond0").mtu, 7200);
    EXPECT_EQ(kernel.At("eth0").mtu, 1500);
    for (const char* name : {"bond0", "eth0", "eth1"}) EXPECT_EQ(kernel.At(name).flags, IFF_UP);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(SetMtubyBondNameTest, TheMtuInForceTouchesNothing)
{
    kernel.At("bond0").mtu = 7200;
    EXPECT_TRUE(SetMtubyBondName("bond0", 7200));
    EXPECT_EQ(Changes(), Lines{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(SetMtubyBondNameTest, AboveTheLimit1500IsSetEvenWhenItIsInForce)
{
    for (const int mtu : {7201, -1, 65535}) {
        Begin();
        EXPECT_TRUE(SetMtubyBondName("bond0", mtu));
        EXPECT_EQ(Changes(), kDownSetUp);
        EXPECT_EQ(kernel.At("bond0").mtu, 1500);
        EXPECT_EQ(Log(), (LogLines{Warn("SetMtubyBondName", "mtu can not be set to " +
                                                                std::to_string(mtu) +
                                                                ", will be set to 1500")}));
    }
}

TEST_F(SetMtubyBondNameTest, ABondThatDoesNotRunIsASuccess)
{
    Put(kMembers, "");
    EXPECT_TRUE(SetMtubyBondName("bond0", 1400));
    EXPECT_EQ(Log(), (LogLines{Info("SetMtubyBondName",
                                    "bond0 is not bonded, just save mtu in config.")}));
    EXPECT_EQ(TraceOf({"ioctl"}), Lines{});
    EXPECT_FALSE(Exists(kBondFile));
}

TEST_F(SetMtubyBondNameTest, TheWarningComesBeforeTheBondIsLookedAt)
{
    Remove(kMembers);
    EXPECT_TRUE(SetMtubyBondName("bond0", 7201));
    EXPECT_EQ(
        Log(),
        (LogLines{Warn("SetMtubyBondName", "mtu can not be set to 7201, will be set to 1500"),
                  Error("Bond_GetBondMembers", std::string("open ") + kMembers + " failed\n"),
                  Info("SetMtubyBondName", "bond0 is not bonded, just save mtu in config.")}));
}

TEST_F(SetMtubyBondNameTest, AnMtuThatCannotBeReadCountsAsNone)
{
    Fail("ioctl SIOCGIFMTU", EIO);
    EXPECT_TRUE(SetMtubyBondName("bond0", 1400));
    EXPECT_EQ(Changes(), kDownSetUp);
    Fail("ioctl SIOCGIFMTU", EIO);
    Begin();
    EXPECT_TRUE(SetMtubyBondName("bond0", 0));
    EXPECT_EQ(Changes(), Lines{});
}

TEST_F(SetMtubyBondNameTest, ARefusalIsTheResultAndAllComeUpAgain)
{
    FailAll("ioctl SIOCSIFMTU", EINVAL);
    EXPECT_FALSE(SetMtubyBondName("bond0", 1400));
    for (const char* name : {"bond0", "eth0", "eth1"}) EXPECT_EQ(kernel.At(name).flags, IFF_UP);
    EXPECT_EQ(Log().back(), Error("Net_SetMtubyName", "set MTU failed.[bond0,1400]"));
}

TEST_F(SetMtubyBondNameTest, WhatBecomesOfTheFlagsPlaysNoPart)
{
    FailAll("ioctl SIOCGIFFLAGS", EIO);
    EXPECT_TRUE(SetMtubyBondName("bond0", 1400));
    EXPECT_EQ(kernel.At("bond0").mtu, 1400);
}

TEST_F(SetMtubyBondNameTest, ABondHas32MembersAtMost)
{
    std::string line;
    for (int i = 0; i < 40; ++i) line += "e" + std::to_string(i) + " ";
    Put(kMembers, line + "\n");
    EXPECT_TRUE(SetMtubyBondName("bond0", 1400));
    EXPECT_EQ(TraceOf({"ioctl SIOCGIFFLAGS e31"}).size(), 2U);
    EXPECT_EQ(TraceOf({"ioctl SIOCGIFFLAGS e32"}), Lines{});
}

TEST_F(SetMtubyBondNameTest, NullIsRefusedInSilence)
{
    EXPECT_FALSE(SetMtubyBondName(nullptr, 1400));
    EXPECT_EQ(TraceOf({"open", "ioctl"}), Lines{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(SetMtubyBondNameTest, TheResultIsTheKernelsWhateverFails)
{
    static bool done;
    FailEachCall([] { done = SetMtubyBondName("bond0", 1400); },
                 [](const std::string&) {
                     const bool notBonded = Logged(
                         Info("SetMtubyBondName", "bond0 is not bonded, just save mtu in config."));
                     EXPECT_EQ(done, notBonded || kernel.At("bond0").mtu == 1400);
                 },
                 kMayStayOpen);
}

}  // namespace
