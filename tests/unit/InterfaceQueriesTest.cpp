// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "CommonApi.h"
#include "Config.h"

#include "InterfaceWorld.h"

#include <linux/sockios.h>

using namespace fake;

namespace {

bool workModeIsRefused = false;

}  // namespace

extern "C" {

bool __real_GetWorkModeByConfig(const char* name, NetWorkMode* mode);

/// Fails only where a test asks for it: with a name, the real one never does.
bool __wrap_GetWorkModeByConfig(const char* name, NetWorkMode* mode)
{
    return !workModeIsRefused && __real_GetWorkModeByConfig(name, mode);
}

}  // extern "C"

namespace {

// ---- NetGetIPbyName

class NetGetIPbyNameTest : public InterfaceWorld {
protected:
    char address[16] = "untouched";
    char mask[16] = "untouched";
};

const LogLine kTriesSystem =
    Warn("NetGetIPbyName", "get eth0's ip mask from config failed. try sys.");
const LogLine kTriesBackup =
    Warn("NetGetIPbyName", "get eth0's ip mask from sys failed. try cmos or rtc.");
const LogLine kAddressLost = Error("NetGetIPbyName", "get eth0's ip mask from cmos or rtc failed.");
const LogLine kNoAddress = Warn("Net_GetIPbyName", "get IP from system failed.[eth0]");

TEST_F(NetGetIPbyNameTest, TheFileGoesBeforeTheKernel)
{
    Put(kFile0, Settings({"HOSTIP = 10.0.0.9", "SUBMASK = 255.0.0.0"}));
    kernel.At("eth0").address = "10.0.0.2";
    EXPECT_TRUE(NetGetIPbyName("eth0", address, mask));
    EXPECT_STREQ(address, "10.0.0.9");
    EXPECT_STREQ(mask, "255.0.0.0");
    EXPECT_EQ(TraceOf({"ioctl SIOCGIFADDR"}), Lines{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NetGetIPbyNameTest, TheKernelIsAskedNextAndTheFileIsNotRepaired)
{
    Put(kFile0, "");
    kernel.At("eth0").address = "10.0.0.2";
    kernel.At("eth0").mask = "255.255.0.0";
    KeepInBackup("10.0.0.8", "255.0.0.0", nullptr);
    EXPECT_TRUE(NetGetIPbyName("eth0", address, mask));
    EXPECT_STREQ(address, "10.0.0.2");
    EXPECT_STREQ(mask, "255.255.0.0");
    EXPECT_EQ(Get(kFile0), "");
    EXPECT_EQ(Changes(), Lines{});
    EXPECT_EQ(kernel.rtc.requests, Lines{});
    EXPECT_EQ(Log(), LogLines{kTriesSystem});
}

TEST_F(NetGetIPbyNameTest, TheBackupIsLastAndRepairsTheFile)
{
    Put(kFile0, "");
    KeepInBackup("10.0.0.8", "255.255.255.0", nullptr);
    EXPECT_TRUE(NetGetIPbyName("eth0", address, mask));
    EXPECT_STREQ(address, "10.0.0.8");
    EXPECT_STREQ(mask, "255.255.255.0");
    EXPECT_EQ(Get(kFile0), Settings({"HOSTIP = 10.0.0.8", "SUBMASK = 255.255.255.0"}));
    EXPECT_EQ(Changes(), (Lines{kWrites0, kWrites0}));
    EXPECT_EQ(Log(),
              (LogLines{kTriesSystem, Refused(SIOCGIFADDR, EADDRNOTAVAIL, "eth0"), kNoAddress,
                        kTriesBackup,
                        Warn("NetGetIPbyName", "restore ip mask from backup to configfile ")}));
}

TEST_F(NetGetIPbyNameTest, ARepairThatFailsIsNotReported)
{
    Put(kFile0, "");
    KeepInBackup("10.0.0.8", "255.255.255.0", nullptr);
    FailAll(kWrites0, EROFS);
    EXPECT_TRUE(NetGetIPbyName("eth0", address, mask));
    EXPECT_STREQ(address, "10.0.0.8");
}

TEST_F(NetGetIPbyNameTest, WithoutASourceThereIsNone)
{
    EXPECT_FALSE(NetGetIPbyName("eth0", address, mask));
    EXPECT_EQ(Log().back(), kAddressLost);
    EXPECT_EQ(LogOf("NetGetIPbyName"), (LogLines{kTriesSystem, kTriesBackup, kAddressLost}));
    EXPECT_FALSE(Exists(kFile0));
}

TEST_F(NetGetIPbyNameTest, TheMaskIsRestoredOnlyBehindTheAddress)
{
    KeepInBackup(nullptr, "255.0.0.0", nullptr);
    EXPECT_FALSE(NetGetIPbyName("eth0", address, mask));
    EXPECT_STREQ(mask, "untouched");
    EXPECT_EQ(LogOf("RestoreMask"), LogLines{});
    EXPECT_EQ(Log().back(), kAddressLost);
}

TEST_F(NetGetIPbyNameTest, AnAddressWithoutItsMaskIsNone)
{
    KeepInBackup("10.0.0.8", nullptr, nullptr);
    EXPECT_FALSE(NetGetIPbyName("eth0", address, mask));
    EXPECT_EQ(Log().back(), kAddressLost);
    EXPECT_EQ(TraceOf({"fopen"}), Lines{});
}

TEST_F(NetGetIPbyNameTest, AnyOtherCardHasNoBackup)
{
    KeepInBackup("10.0.0.8", "255.0.0.0", nullptr);
    EXPECT_FALSE(NetGetIPbyName("eth1", address, mask));
    EXPECT_EQ(Log().back(), Error("NetGetIPbyName", "get eth1's ip mask from cmos or rtc failed."));
}

TEST_F(NetGetIPbyNameTest, AFailureIsLoggedWhateverFails)
{
    static bool found;
    static char from[16];
    static char with[16];
    KeepInBackup("10.0.0.8", "255.0.0.0", nullptr);
    FailEachCall([] { found = NetGetIPbyName("eth0", from, with); },
                 [](const std::string&) {
                     const LogLines last = LogOf("NetGetIPbyName");
                     EXPECT_TRUE(found || last.empty() || last.back() == kAddressLost);
                     EXPECT_TRUE(!found || from == std::string("10.0.0.8"));
                 },
                 kMayStayOpen);
}

// ---- NetGetGatewaybyName

class NetGetGatewaybyNameTest : public InterfaceWorld {
protected:
    char gateway[16] = "untouched";
};

const LogLine kGatewayNotSaved =
    Warn("NetGetGatewaybyName", "get eth0's gateway from config failed. try cmos or rtc.");
const LogLine kGatewayLost =
    Error("NetGetGatewaybyName", "get eth0's gateway from cmos or rtc failed.");

TEST_F(NetGetGatewaybyNameTest, TheFileGoesFirst)
{
    Put(kFile0, Settings({"GATEWAYIP = 10.0.0.1"}));
    KeepInBackup(nullptr, nullptr, "10.0.0.9");
    EXPECT_TRUE(NetGetGatewaybyName("eth0", gateway));
    EXPECT_STREQ(gateway, "10.0.0.1");
    EXPECT_EQ(kernel.rtc.requests, Lines{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NetGetGatewaybyNameTest, TheBackupRepairsTheFileAndTheKernelIsNotAsked)
{
    Put(kFile0, "");
    kernel.routes = {{"0.0.0.0", "10.0.0.7", "0.0.0.0", "eth0"}};
    KeepInBackup(nullptr, nullptr, "10.0.0.9");
    EXPECT_TRUE(NetGetGatewaybyName("eth0", gateway));
    EXPECT_STREQ(gateway, "10.0.0.9");
    EXPECT_EQ(Get(kFile0), Settings({"GATEWAYIP = 10.0.0.9"}));
    EXPECT_EQ(TraceOf({"open /proc/net/route", "pread /proc/net/route"}), Lines{});
    EXPECT_EQ(Log(), LogLines{kGatewayNotSaved});
}

TEST_F(NetGetGatewaybyNameTest, ARepairThatFailsIsNotReported)
{
    Put(kFile0, "");
    KeepInBackup(nullptr, nullptr, "10.0.0.9");
    FailAll(kWrites0, EROFS);
    EXPECT_TRUE(NetGetGatewaybyName("eth0", gateway));
}

TEST_F(NetGetGatewaybyNameTest, WithoutASourceThereIsNone)
{
    KeepInBackup("10.0.0.8", nullptr, nullptr);
    EXPECT_FALSE(NetGetGatewaybyName("eth0", gateway));
    EXPECT_EQ(Log(),
              (LogLines{kGatewayNotSaved, Error("RestoreGateway", "gateway is 0."), kGatewayLost}));
    EXPECT_STREQ(gateway, "untouched");
    EXPECT_FALSE(Exists(kFile0));
}

TEST_F(NetGetGatewaybyNameTest, AFailureIsLoggedWhateverFails)
{
    static bool found;
    static char text[16];
    KeepInBackup(nullptr, nullptr, "10.0.0.9");
    FailEachCall([] { found = NetGetGatewaybyName("eth0", text); },
                 [](const std::string&) {
                     const LogLines last = LogOf("NetGetGatewaybyName");
                     EXPECT_TRUE(found || last.empty() || last.back() == kGatewayLost);
                 },
                 kMayStayOpen);
}

// ---- NetGetMtubyName

class NetGetMtubyNameTest : public InterfaceWorld {
protected:
    int mtu = 7;
};

TEST_F(NetGetMtubyNameTest, TheKernelGoesBeforeTheFile)
{
    Put(kFile1, Settings({"MTU = 1400"}));
    kernel.At("eth1").mtu = 1300;
    EXPECT_TRUE(NetGetMtubyName("eth1", &mtu));
    EXPECT_EQ(mtu, 1300);
    EXPECT_EQ(TraceOf({"open /mnt/mtd/Config/network1"}), Lines{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NetGetMtubyNameTest, TheFileIsAskedNext)
{
    Put(kFile1, Settings({"MTU = 1400"}));
    Fail("ioctl SIOCGIFMTU", EIO);
    EXPECT_TRUE(NetGetMtubyName("eth1", &mtu));
    EXPECT_EQ(mtu, 1400);
    EXPECT_EQ(LogOf("NetGetMtubyName"),
              (LogLines{Warn("NetGetMtubyName", "get eth1's mtu from sys failed. try config.")}));
}

TEST_F(NetGetMtubyNameTest, WithoutASourceThereIsNone)
{
    FailAll("ioctl SIOCGIFMTU", EIO);
    EXPECT_FALSE(NetGetMtubyName("eth1", &mtu));
    EXPECT_EQ(mtu, 7);
    EXPECT_EQ(Log(),
              (LogLines{Refused(SIOCGIFMTU, EIO, "eth1"),
                        Error("Net_GetMtubyName", "get mtu from system failed.[eth1]"),
                        Warn("NetGetMtubyName", "get eth1's mtu from sys failed. try config."),
                        Error("NetGetMtubyName", "get eth1's mtu from config failed.")}));
}

TEST_F(NetGetMtubyNameTest, AnswersFromOneOfTheTwoWhateverFails)
{
    static bool found;
    static int number;
    Put(kFile1, Settings({"MTU = 1500"}));
    FailEachCall([] { found = NetGetMtubyName("eth1", &number); },
                 [](const std::string& failed) {
                     const bool ofTheTest = failed.rfind("ioctl", 0) != 0 &&
                                            failed.rfind("socket", 0) != 0 &&
                                            failed.rfind("fcntl", 0) != 0;
                     EXPECT_TRUE(found || ofTheTest);
                     EXPECT_TRUE(!found || number == 1500);
                 },
                 kMayStayOpen);
}

// ---- NetGetEthWorkMode

class NetGetEthWorkModeTest : public InterfaceWorld {
protected:
    NetWorkMode mode = netModeVap;
};

TEST_F(NetGetEthWorkModeTest, WorksWithEthDevicesAlone)
{
    for (const std::string name : {"bond0", "wlan0", "br0", ""}) {
        ClearLog();
        EXPECT_FALSE(NetGetEthWorkMode(name.c_str(), &mode));
        EXPECT_EQ(Log(),
                  (LogLines{Error("NetGetEthWorkMode",
                                  "GetEthWorkMode can only work with eth device.[" + name + "]")}));
    }
    EXPECT_EQ(mode, netModeVap);
}

TEST_F(NetGetEthWorkModeTest, APoeNameIsASwitch)
{
    EXPECT_TRUE(NetGetEthWorkMode("eth0:poe", &mode));
    EXPECT_EQ(mode, netModeSwitch);
    EXPECT_EQ(TraceOf({"open /mnt/mtd/Config/networketh"}), Lines{});
}

TEST_F(NetGetEthWorkModeTest, OnlyAPureSwitchInterfaceIsASwitch)
{
    struct Case {
        const char* saved;
        NetWorkMode expected;
    };
    for (const Case& test :
         {Case{"0", netModeBridge}, Case{"1", netModeSwitch}, Case{"2", netModeBridge}}) {
        Put("/mnt/mtd/Config/poeMode.conf", std::string("eth1 = ") + test.saved + "\n");
        Put(kFile1, Settings({"WORKMODE = 3"}));
        EXPECT_TRUE(NetGetEthWorkMode("eth1", &mode));
        EXPECT_EQ(mode, test.expected) << test.saved;
    }
}

TEST_F(NetGetEthWorkModeTest, TellsTheSavedModeOfACardThatNeedNotExist)
{
    Put("/mnt/mtd/Config/networketh9", Settings({"WORKMODE = 1"}));
    EXPECT_TRUE(NetGetEthWorkMode("eth9", &mode));
    EXPECT_EQ(mode, netModeBond);
    EXPECT_EQ(LogOf("CheckEthExist"), LogLines{});
}

TEST_F(NetGetEthWorkModeTest, ACardWithoutASavedModeStandsAlone)
{
    Put(kFile1, "");
    EXPECT_TRUE(NetGetEthWorkMode("eth1", &mode));
    EXPECT_EQ(mode, netModeMultiple);
    EXPECT_EQ(Get(kFile1), Settings({"WORKMODE = 0"}));
}

TEST_F(NetGetEthWorkModeTest, AModeThatCannotBeReadIsStandingAlone)
{
    workModeIsRefused = true;
    EXPECT_TRUE(NetGetEthWorkMode("eth1", &mode));
    EXPECT_EQ(mode, netModeMultiple);
}

TEST_F(NetGetEthWorkModeTest, AnswersWhateverFails)
{
    static bool done;
    Put(kFile1, Settings({"WORKMODE = 3"}));
    FailEachCall(
        [] {
            NetWorkMode read = netModeInvalid;
            done = NetGetEthWorkMode("eth1", &read) &&
                   (read == netModeBridge || read == netModeMultiple);
        },
        [](const std::string&) { EXPECT_TRUE(done); }, kMayStayOpen);
}

// ---- NetMiiDiag

class NetMiiDiagTest : public InterfaceWorld {
protected:
    void SetUp() override
    {
        InterfaceWorld::SetUp();
        kernel.Add("bond0").link = 0;
        kernel.Add("br0").link = 0;
        Begin();
    }
};

const LogLine kNoMaster = Warn("NetMiiDiag", "get eth1 bond name failed.");

TEST_F(NetMiiDiagTest, APoeEntryIsAlwaysLinked)
{
    kernel.At("eth0").link = 0;
    EXPECT_TRUE(NetMiiDiag("eth0:poe", false));
    EXPECT_TRUE(NetMiiDiag("eth0:poe", true));
    EXPECT_EQ(TraceOf({"ioctl ETHTOOL_GLINK"}), Lines{});
}

TEST_F(NetMiiDiagTest, PoeAnywhereInTheNameOfAnInterfaceIsAlwaysLinked)
{
    kernel.Add("eth-poe0").link = 0;
    EXPECT_TRUE(NetMiiDiag("eth-poe0", false));
    EXPECT_EQ(TraceOf({"ioctl ETHTOOL_GLINK"}), Lines{});
}

TEST_F(NetMiiDiagTest, AMasterIsAskedWhetherItIsListedOrNot)
{
    Put(kFile1, Settings({"WORKMODE = 1", "BONDNAME = bond9"}));
    EXPECT_FALSE(NetMiiDiag("eth1", true));
    EXPECT_EQ(TraceOf({"ioctl ETHTOOL_GLINK"}), Lines{"ioctl ETHTOOL_GLINK bond9"});
}

TEST_F(NetMiiDiagTest, ACardIsJudgedByItsOwnLink)
{
    Put(kFile1, Settings({"WORKMODE = 1", "BONDNAME = bond0"}));
    EXPECT_TRUE(NetMiiDiag("eth1", false));
    kernel.At("eth1").link = 0;
    EXPECT_FALSE(NetMiiDiag("eth1", false));
    EXPECT_EQ(TraceOf({"open /mnt/mtd/Config/network1"}), Lines{});
}

TEST_F(NetMiiDiagTest, AMemberIsJudgedByItsMaster)
{
    struct Case {
        const char* settings;
        const char* judged;
    };
    const std::string names = "BONDNAME = bond0\nBRIDGENAME = br0\n";
    for (const Case& test : {Case{"WORKMODE = 1\n", "bond0"}, Case{"WORKMODE = 3\n", "br0"},
                             Case{"WORKMODE = 0\n", "eth1"}, Case{"WORKMODE = 2\n", "eth1"},
                             Case{"WORKMODE = 6\n", "eth1"}}) {
        SCOPED_TRACE(test.settings);
        Begin();
        Put(kFile1, test.settings + names);
        EXPECT_EQ(NetMiiDiag("eth1", true), test.judged == std::string("eth1"));
        EXPECT_EQ(TraceOf({"ioctl ETHTOOL_GLINK"}),
                  Lines{std::string("ioctl ETHTOOL_GLINK ") + test.judged});
        EXPECT_EQ(Log(), LogLines{});
    }
}

TEST_F(NetMiiDiagTest, WithoutTheMastersNameTheCardsOwnLinkCounts)
{
    for (const char* mode : {"1", "3"}) {
        Begin();
        Put(kFile1, Settings({std::string("WORKMODE = ") + mode}));
        EXPECT_TRUE(NetMiiDiag("eth1", true));
        EXPECT_EQ(Log(), LogLines{kNoMaster});
        EXPECT_EQ(TraceOf({"ioctl ETHTOOL_GLINK"}), Lines{"ioctl ETHTOOL_GLINK eth1"});
    }
}

TEST_F(NetMiiDiagTest, AMastersNameHasFifteenCharacters)
{
    kernel.Add("bond-abcdefghij").link = 0;
    Put(kFile1, Settings({"WORKMODE = 1", "BONDNAME = bond-abcdefghij"}));
    EXPECT_FALSE(NetMiiDiag("eth1", true));
    Put(kFile1, Settings({"WORKMODE = 1", "BONDNAME = bond-abcdefghijk"}));
    EXPECT_TRUE(NetMiiDiag("eth1", true));
    EXPECT_EQ(Log().back(), kNoMaster);
}

TEST_F(NetMiiDiagTest, AModeThatCannotBeReadLeavesTheCardsOwnLink)
{
    workModeIsRefused = true;
    EXPECT_TRUE(NetMiiDiag("eth1", true));
    EXPECT_EQ(Log(), (LogLines{Warn("NetMiiDiag", "can not know eth1 work mode.")}));
}

TEST_F(NetMiiDiagTest, AnswersAccordingToTheLinkWhateverFails)
{
    static bool linked;
    Put(kFile1, Settings({"WORKMODE = 1", "BONDNAME = bond0"}));
    kernel.At("bond0").link = 1;
    FailEachCall([] { linked = NetMiiDiag("eth1", true); },
                 [](const std::string& failed) {
                     EXPECT_TRUE(!linked || failed.find("GLINK") == std::string::npos);
                     EXPECT_TRUE(linked || failed.find("network1") == std::string::npos);
                 },
                 kMayStayOpen);
}

}  // namespace
