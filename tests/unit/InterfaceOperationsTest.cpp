// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "CommonApi.h"

#include "InterfaceWorld.h"

#include <linux/sockios.h>
#include <net/if.h>

#include <functional>

using namespace fake;

namespace {

Lines backedUp;  // what the backup was asked to keep, whether it wanted it or not

}  // namespace

extern "C" {

bool __real_BackupIP(const char* name, const char* addr);
bool __real_BackupMask(const char* name, const char* addr);
bool __real_BackupGateway(const char* name, const char* addr);

bool __wrap_BackupIP(const char* name, const char* addr)
{
    backedUp.push_back(std::string("address of ") + name);
    return __real_BackupIP(name, addr);
}

bool __wrap_BackupMask(const char* name, const char* addr)
{
    backedUp.push_back(std::string("mask of ") + name);
    return __real_BackupMask(name, addr);
}

bool __wrap_BackupGateway(const char* name, const char* addr)
{
    backedUp.push_back(std::string("gateway of ") + name);
    return __real_BackupGateway(name, addr);
}

}  // extern "C"

namespace {

constexpr char kNotListed[] = "can not find eth9 in eth0,eth1,wlan0,.";

// ---- what all of them share

class InterfaceOperationTest : public InterfaceWorld {};

struct Operation {
    const char* name;
    std::function<bool(const char*)> run;
};

std::vector<Operation> OperationsOnACard()
{
    static char text[18];
    static char other[18];
    static int number;
    static NetDataStat stat;
    return {
        {"NetInterfaceUp", [](auto card) { return NetInterfaceUp(card); }},
        {"NetInterfaceDown", [](auto card) { return NetInterfaceDown(card); }},
        {"NetSetIPByName", [](auto card) { return NetSetIPByName(card, "10.0.0.2", "255.0.0.0"); }},
        {"NetSetGatewaybyName", [](auto card) { return NetSetGatewaybyName(card, "10.0.0.1"); }},
        {"NetSetMacbyName", [](auto card) { return NetSetMacbyName(card, "02:00:00:00:00:07"); }},
        {"NetSetMediumPrefer",
         [](auto card) { return NetSetMediumPrefer(card, netFiberMediumPrefer); }},
        {"NetGetIPbyName", [](auto card) { return NetGetIPbyName(card, text, other); }},
        {"NetGetGatewaybyName", [](auto card) { return NetGetGatewaybyName(card, text); }},
        {"NetGetMtubyName", [](auto card) { return NetGetMtubyName(card, &number); }},
        {"NetGetMacbyName", [](auto card) { return NetGetMacbyName(card, text); }},
        {"NetGetLinkSpeed", [](auto card) { return NetGetLinkSpeed(card, &number); }},
        {"NetGetDataStat", [](auto card) { return NetGetDataStat(card, &stat); }},
        {"NetMiiDiag", [](auto card) { return NetMiiDiag(card, true); }},
    };
}

TEST_F(InterfaceOperationTest, AnUnknownCardIsRefusedBeforeAnythingElse)
{
    for (const Operation& operation : OperationsOnACard()) {
        SCOPED_TRACE(operation.name);
        Begin();
        EXPECT_FALSE(operation.run("eth9"));
        EXPECT_EQ(Log(), (LogLines{Info("FindWordInLine", "can not find eth9 in eth0,eth1,wlan0,"),
                                   Error("CheckEthExist", kNotListed)}));
        EXPECT_EQ(Changes(), Lines{});
        EXPECT_EQ(TraceOf({"open /mnt/mtd/Config/network"}), Lines{});
    }
}

TEST_F(InterfaceOperationTest, ANullNameIsRefusedInSilence)
{
    std::vector<Operation> operations = OperationsOnACard();
    operations.push_back({"NetGetRealIPByName", [](auto card) {
                              char text[16];
                              return NetGetRealIPByName(card, text, text);
                          }});
    operations.push_back({"NetGetEthWorkMode", [](auto card) {
                              NetWorkMode mode;
                              return NetGetEthWorkMode(card, &mode);
                          }});
    for (const Operation& operation : operations) {
        SCOPED_TRACE(operation.name);
        EXPECT_FALSE(operation.run(nullptr));
    }
    EXPECT_EQ(TraceOf({"open", "fopen", "ioctl"}), Lines{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(InterfaceOperationTest, AnyOtherNullIsRefusedInSilence)
{
    char text[18];
    EXPECT_FALSE(NetSetIPByName("eth0", nullptr, "255.0.0.0"));
    EXPECT_FALSE(NetSetIPByName("eth0", "10.0.0.2", nullptr));
    EXPECT_FALSE(NetSetGatewaybyName("eth0", nullptr));
    EXPECT_FALSE(NetSetMacbyName("eth0", nullptr));
    EXPECT_FALSE(NetGetIPbyName("eth0", nullptr, text));
    EXPECT_FALSE(NetGetIPbyName("eth0", text, nullptr));
    EXPECT_FALSE(NetGetGatewaybyName("eth0", nullptr));
    EXPECT_FALSE(NetGetMtubyName("eth0", nullptr));
    EXPECT_FALSE(NetGetMacbyName("eth0", nullptr));
    EXPECT_FALSE(NetGetLinkSpeed("eth0", nullptr));
    EXPECT_FALSE(NetGetDataStat("eth0", nullptr));
    EXPECT_FALSE(NetGetRealIPByName("eth0", nullptr, text));
    EXPECT_FALSE(NetGetRealIPByName("eth0", text, nullptr));
    EXPECT_FALSE(NetGetEthWorkMode("eth0", nullptr));
    EXPECT_EQ(TraceOf({"open", "fopen", "ioctl"}), Lines{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(InterfaceOperationTest, AnAliasIsTestedByItsCard)
{
    kernel.Add("eth0:1");
    Begin();
    EXPECT_TRUE(NetInterfaceUp("eth0:1"));
    EXPECT_EQ(Changes(), Lines{"ioctl SIOCSIFFLAGS eth0:1"});
}

// ---- what goes straight to the kernel

class NetInterfaceUpTest : public InterfaceWorld {};

TEST_F(NetInterfaceUpTest, ChangesOnlyTheUpFlag)
{
    kernel.At("eth1").flags = IFF_BROADCAST;
    EXPECT_TRUE(NetInterfaceUp("eth1"));
    EXPECT_EQ(kernel.At("eth1").flags, IFF_BROADCAST | IFF_UP);
    EXPECT_TRUE(NetInterfaceDown("eth1"));
    EXPECT_EQ(kernel.At("eth1").flags, IFF_BROADCAST);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NetInterfaceUpTest, HandsOnARefusal)
{
    FailAll("ioctl SIOCSIFFLAGS", EPERM);
    EXPECT_FALSE(NetInterfaceUp("eth1"));
    EXPECT_FALSE(NetInterfaceDown("eth1"));
}

class NetSetMediumPreferTest : public InterfaceWorld {};

TEST_F(NetSetMediumPreferTest, TellsTheDriver)
{
    EXPECT_TRUE(NetSetMediumPrefer("eth1", netCopperMediumPrefer));
    EXPECT_EQ(Log(), (LogLines{Info("Net_SetMediumPrefer",
                                    "SetMediumPrefer is called. eth1 will be set to 1")}));
    Fail("ioctl 0x89F2", EOPNOTSUPP);
    EXPECT_FALSE(NetSetMediumPrefer("eth1", netCopperMediumPrefer));
}

class NetGetMacbyNameTest : public InterfaceWorld {};

TEST_F(NetGetMacbyNameTest, AsksTheKernel)
{
    kernel.At("eth1").mac = "02:00:00:00:0a:bc";
    char mac[18];
    EXPECT_TRUE(NetGetMacbyName("eth1", mac));
    EXPECT_STREQ(mac, "02:00:00:00:0a:bc");
    Fail("ioctl SIOCGIFHWADDR", EIO);
    EXPECT_FALSE(NetGetMacbyName("eth1", mac));
}

class NetGetLinkSpeedTest : public InterfaceWorld {};

TEST_F(NetGetLinkSpeedTest, AsksTheDriver)
{
    ethtool_cmd settings{};
    settings.speed = 1000;
    kernel.At("eth1").settings = settings;
    int speed = 7;
    EXPECT_TRUE(NetGetLinkSpeed("eth1", &speed));
    EXPECT_EQ(speed, 1000);
    speed = 7;
    EXPECT_FALSE(NetGetLinkSpeed("wlan0", &speed));
    EXPECT_EQ(speed, 7);
}

class NetGetDataStatTest : public InterfaceWorld {};

TEST_F(NetGetDataStatTest, TakesTheCountersOfTheCard)
{
    kernel.At("eth1").counters = "11 12 13 14 15 16 17 18 19 20 21 22 23 24 25 26";
    kernel.At("eth1").settings = ethtool_cmd{};
    NetDataStat stat{};
    EXPECT_TRUE(NetGetDataStat("eth1", &stat));
    EXPECT_EQ(stat.receivedBytes, 11U);
    EXPECT_EQ(stat.transmittedBytes, 19U);
    EXPECT_EQ(Log(), LogLines{});
}

class NetGetRealIPByNameTest : public InterfaceWorld {};

TEST_F(NetGetRealIPByNameTest, TellsWhatTheKernelHasWhateverIsSaved)
{
    Put(kFile1, Settings({"HOSTIP = 10.0.0.9", "SUBMASK = 255.0.0.0"}));
    kernel.At("eth1").address = "10.0.0.2";
    kernel.At("eth1").mask = "255.255.0.0";
    char address[16];
    char mask[16];
    EXPECT_TRUE(NetGetRealIPByName("eth1", address, mask));
    EXPECT_STREQ(address, "10.0.0.2");
    EXPECT_STREQ(mask, "255.255.0.0");
    EXPECT_EQ(TraceOf({"open"}), Lines{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NetGetRealIPByNameTest, HasNoOtherSourceAndTestsNoName)
{
    Put(kFile1, Settings({"HOSTIP = 10.0.0.9", "SUBMASK = 255.0.0.0"}));
    char address[16] = "kept";
    char mask[16] = "kept";
    for (const char* name : {"eth1", "eth9"}) {
        ClearLog();
        EXPECT_FALSE(NetGetRealIPByName(name, address, mask));
        const int error = std::string(name) == "eth1" ? EADDRNOTAVAIL : ENODEV;
        EXPECT_EQ(Log(),
                  (LogLines{Refused(SIOCGIFADDR, error, name),
                            Warn("Net_GetIPbyName",
                                 std::string("get IP from system failed.") + "[" + name + "]")}));
    }
    EXPECT_STREQ(address, "kept");
    EXPECT_STREQ(mask, "kept");
}

// ---- NetSetIPByName

class NetSetIPByNameTest : public InterfaceWorld {};

TEST_F(NetSetIPByNameTest, WritesKernelThenFileThenBackup)
{
    Put(kFile0, Settings({"MTU = 1500"}));
    EXPECT_TRUE(NetSetIPByName("eth0", "10.0.0.2", "255.255.255.0"));
    EXPECT_EQ(Changes(), (Lines{"ioctl SIOCSIFADDR eth0", "ioctl SIOCSIFNETMASK eth0", kWrites0,
                                kWrites0, kBacksUp, kBacksUp}));
    EXPECT_EQ(kernel.At("eth0").address, "10.0.0.2");
    EXPECT_EQ(kernel.At("eth0").mask, "255.255.255.0");
    EXPECT_EQ(Get(kFile0),
              Settings({"MTU = 1500", "HOSTIP = 10.0.0.2", "SUBMASK = 255.255.255.0"}));
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Backed(RestoreIP), "10.0.0.2");
    EXPECT_EQ(Backed(RestoreMask), "255.255.255.0");
}

TEST_F(NetSetIPByNameTest, TheAddressIsBackedUpBeforeTheMask)
{
    Put(kFile0, "");
    OnCall(kBacksUp, [] { EXPECT_EQ(Backed(RestoreIP), "(none)"); });
    OnCall(kBacksUp, [] {
        EXPECT_EQ(Backed(RestoreIP), "10.0.0.2");
        EXPECT_EQ(Backed(RestoreMask), "(none)");
    });
    EXPECT_TRUE(NetSetIPByName("eth0", "10.0.0.2", "255.255.255.0"));
}

TEST_F(NetSetIPByNameTest, WhichCardIsBackedUpIsForTheBackupToSay)
{
    Put(kFile1, "");
    backedUp.clear();
    EXPECT_TRUE(NetSetIPByName("eth1", "10.0.0.2", "255.255.255.0"));
    EXPECT_EQ(backedUp, (Lines{"address of eth1", "mask of eth1"}));
    EXPECT_EQ(kernel.rtc.requests, Lines{});
    EXPECT_EQ(Get(kFile1), Settings({"HOSTIP = 10.0.0.2", "SUBMASK = 255.255.255.0"}));
}

TEST_F(NetSetIPByNameTest, ARefusedAddressIsKeptNowhere)
{
    const std::string before = Settings({"HOSTIP = 10.0.0.9", "SUBMASK = 255.0.0.0"});
    Put(kFile0, before);
    EXPECT_FALSE(NetSetIPByName("eth0", "10.0.0.256", "255.255.255.0"));
    Fail("ioctl SIOCSIFADDR", EPERM);
    EXPECT_FALSE(NetSetIPByName("eth0", "10.0.0.2", "255.255.255.0"));
    Fail("ioctl SIOCSIFNETMASK", EINVAL);
    EXPECT_FALSE(NetSetIPByName("eth0", "10.0.0.2", "255.255.255.0"));
    EXPECT_EQ(Get(kFile0), before);
    EXPECT_EQ(kernel.rtc.requests, Lines{});
    EXPECT_EQ(TraceOf({"fopen"}), Lines{});
}

TEST_F(NetSetIPByNameTest, TheEmptyAddressIsTakenFromTheKernelAndBackedUpButNotSaved)
{
    const std::string before = Settings({"HOSTIP = 10.0.0.9", "SUBMASK = 255.0.0.0"});
    Put(kFile0, before);
    kernel.At("eth0").address = "10.0.0.9";
    KeepInBackup("10.0.0.9", "255.0.0.0", nullptr);
    EXPECT_TRUE(NetSetIPByName("eth0", "0.0.0.0", "0.0.0.0"));
    EXPECT_EQ(kernel.At("eth0").address, "");
    EXPECT_EQ(Get(kFile0), before);
    EXPECT_EQ(Changes(), (Lines{"ioctl SIOCSIFADDR eth0", kBacksUp, kBacksUp}));
    EXPECT_EQ(Log(), (LogLines{Info("SetIPByConfig", "ip: 0.0.0.0 mask 0.0.0.0 not save.")}));
    EXPECT_EQ(Backed(RestoreIP), "(none)");
}

TEST_F(NetSetIPByNameTest, AFileThatCannotBeWrittenIsNotReported)
{
    Put(kFile0, "");
    FailAll(kWrites0, EROFS);
    EXPECT_TRUE(NetSetIPByName("eth0", "10.0.0.2", "255.255.255.0"));
    EXPECT_EQ(Get(kFile0), "");
    EXPECT_EQ(Backed(RestoreIP), "10.0.0.2");
    EXPECT_EQ(Backed(RestoreMask), "255.255.255.0");
}

TEST_F(NetSetIPByNameTest, ABackupThatCannotBeWrittenIsNotReported)
{
    Put(kFile0, "");
    Fail(kBacksUp, EIO);
    EXPECT_TRUE(NetSetIPByName("eth0", "10.0.0.2", "255.255.255.0"));
    EXPECT_EQ(Backed(RestoreIP), "(none)");
    EXPECT_EQ(Backed(RestoreMask), "255.255.255.0");
}

TEST_F(NetSetIPByNameTest, NothingIsSavedUnlessTheKernelTookBoth)
{
    static const std::string before = Settings({"HOSTIP = 10.0.0.9", "SUBMASK = 255.0.0.0"});
    static bool done;
    Put(kFile0, before);
    FailEachCall([] { done = NetSetIPByName("eth0", "10.0.0.2", "255.255.255.0"); },
                 [](const std::string&) {
                     const Card& card = kernel.At("eth0");
                     EXPECT_EQ(done, card.address == "10.0.0.2" && card.mask == "255.255.255.0");
                     if (done) return;
                     EXPECT_EQ(Get(kFile0), before);
                     EXPECT_EQ(kernel.rtc.requests, Lines{});
                 },
                 kMayStayOpen);
}

// ---- NetSetGatewaybyName

class NetSetGatewaybyNameTest : public InterfaceWorld {};

TEST_F(NetSetGatewaybyNameTest, WritesFileThenBackupAndNoRoute)
{
    Put(kFile0, Settings({"MTU = 1500"}));
    EXPECT_TRUE(NetSetGatewaybyName("eth0", "10.0.0.1"));
    EXPECT_EQ(Changes(), (Lines{kWrites0, kBacksUp}));
    EXPECT_EQ(Get(kFile0), Settings({"MTU = 1500", "GATEWAYIP = 10.0.0.1"}));
    EXPECT_EQ(kernel.routes, std::vector<Route>{});
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Backed(RestoreGateway), "10.0.0.1");
}

TEST_F(NetSetGatewaybyNameTest, OnlyTheExactNameOfTheFirstCardIsBackedUp)
{
    kernel.Add("eth0.5");
    Begin();
    backedUp.clear();
    for (const char* card : {"eth1", "eth0.5", "eth0:1"}) {
        EXPECT_TRUE(NetSetGatewaybyName(card, "10.0.0.1"));
    }
    EXPECT_EQ(backedUp, Lines{});
}

TEST_F(NetSetGatewaybyNameTest, AFailedSaveIsTheResultAndTheBackupIsWrittenAllTheSame)
{
    Put(kFile0, "");
    Fail(kWrites0, EROFS);
    EXPECT_FALSE(NetSetGatewaybyName("eth0", "10.0.0.1"));
    EXPECT_EQ(Log(),
              (LogLines{Error("SetValueByKey", "cannot fopen [Read-only file system]"),
                        Error("NetSetGatewaybyName", "save eth0,10.0.0.1 to config failed")}));
    EXPECT_EQ(Backed(RestoreGateway), "10.0.0.1");
}

TEST_F(NetSetGatewaybyNameTest, TheEmptyGatewayIsBackedUpButNotSaved)
{
    const std::string before = Settings({"GATEWAYIP = 10.0.0.9"});
    Put(kFile0, before);
    KeepInBackup(nullptr, nullptr, "10.0.0.9");
    EXPECT_TRUE(NetSetGatewaybyName("eth0", "0.0.0.0"));
    EXPECT_EQ(Get(kFile0), before);
    EXPECT_EQ(Changes(), Lines{kBacksUp});
    EXPECT_EQ(Backed(RestoreGateway), "(none)");
}

TEST_F(NetSetGatewaybyNameTest, ATextThatIsNoAddressFails)
{
    Put(kFile1, "");
    EXPECT_FALSE(NetSetGatewaybyName("eth1", "gateway"));
    EXPECT_EQ(Log(),
              (LogLines{Error("SetGatewayByConfig", "gateway: gateway error."),
                        Error("NetSetGatewaybyName", "save eth1,gateway to config failed")}));
    EXPECT_EQ(Get(kFile1), "");
}

TEST_F(NetSetGatewaybyNameTest, ABackupThatCannotBeWrittenIsNotReported)
{
    Put(kFile0, "");
    Fail(kBacksUp, EIO);
    EXPECT_TRUE(NetSetGatewaybyName("eth0", "10.0.0.1"));
}

TEST_F(NetSetGatewaybyNameTest, TheResultIsThatOfTheFileWhateverFails)
{
    static bool done;
    Put(kFile0, "MTU = 1500\n");
    FailEachCall([] { done = NetSetGatewaybyName("eth0", "10.0.0.1"); },
                 [](const std::string& failed) {
                     const bool saved =
                         Get(kFile0).find("GATEWAYIP = 10.0.0.1\n") != std::string::npos;
                     // What a full disk did not take is not seen.
                     EXPECT_EQ(done, saved || failed.rfind("fflush", 0) == 0);
                 },
                 kMayStayOpen);
}

// ---- NetSetMacbyName

class NetSetMacbyNameTest : public InterfaceWorld {
protected:
    void SetUp() override
    {
        InterfaceWorld::SetUp();
        Put(kFile0, Settings({"GATEWAYIP = 10.0.0.1", "PRIO = 0"}));
        Put(kFile1, Settings({"GATEWAYIP = 10.1.0.1", "PRIO = 1"}));
        kernel.At("eth1").flags = IFF_UP;
        kernel.routes = {kDefault1};
        Begin();
    }

    const Route kDefault1 = {"0.0.0.0", "10.1.0.1", "0.0.0.0", "eth1"};
};

TEST_F(NetSetMacbyNameTest, SetsTheDefaultCardOfBeforeAgain)
{
    // The card's routes go with its flags.
    OnCall("ioctl SIOCSIFHWADDR eth1", [] { kernel.routes.clear(); });
    EXPECT_TRUE(NetSetMacbyName("eth1", "02:00:00:00:00:07"));
    EXPECT_EQ(kernel.At("eth1").mac, "02:00:00:00:00:07");
    EXPECT_EQ(kernel.At("eth1").flags, IFF_UP);
    EXPECT_EQ(kernel.routes, std::vector<Route>{kDefault1});
    EXPECT_EQ(Get(kFile0), Settings({"GATEWAYIP = 10.0.0.1", "PRIO = 1", "DEFAULT_ETH = eth1"}));
    EXPECT_EQ(ChangesSortedAt(4), (Lines{"ioctl SIOCSIFFLAGS eth1", "ioctl SIOCSIFHWADDR eth1",
                                         "ioctl SIOCSIFFLAGS eth1", kWrites0, kWrites0, kWrites1,
                                         kWrites1, "ioctl SIOCADDRT"}));
    EXPECT_EQ(Log(), (LogLines{Warn("Net_SetMacbyName", "mac addr will be modifyed![eth1]"),
                               Info("Route_AddIPv4Route",
                                    "0.0.0.0,10.1.0.1,0.0.0.0,eth1##########Route_AddIPv4Route##"
                                    "#########")}));
}

TEST_F(NetSetMacbyNameTest, AsksForTheDefaultCardBeforeTheFlagsChange)
{
    EXPECT_TRUE(NetSetMacbyName("eth0", "02:00:00:00:00:07"));
    const Lines calls = TraceOf({"pread /proc/net/route", "ioctl SIOCSIF"});
    EXPECT_EQ(calls.front(), "pread /proc/net/route");
    EXPECT_EQ(kernel.routes, std::vector<Route>{kDefault1});
}

TEST_F(NetSetMacbyNameTest, ARefusalIsTheResultAndTheDefaultCardIsSetAllTheSame)
{
    Fail("ioctl SIOCSIFHWADDR", EBUSY);
    OnCall("ioctl SIOCSIFHWADDR eth1", [] { kernel.routes.clear(); });
    EXPECT_FALSE(NetSetMacbyName("eth1", "02:00:00:00:00:07"));
    EXPECT_EQ(kernel.routes, std::vector<Route>{kDefault1});
}

TEST_F(NetSetMacbyNameTest, ADefaultCardThatCannotBeSetIsNotReported)
{
    OnCall("ioctl SIOCSIFHWADDR eth1", [] { kernel.routes.clear(); });
    FailAll("ioctl SIOCADDRT", ENETUNREACH);
    EXPECT_TRUE(NetSetMacbyName("eth1", "02:00:00:00:00:07"));
}

TEST_F(NetSetMacbyNameTest, WithoutADefaultCardAnEmptyNameIsRefused)
{
    kernel.routes.clear();
    Put(kFile0, Settings({"PRIO = 1"}));
    EXPECT_TRUE(NetSetMacbyName("eth1", "02:00:00:00:00:07"));
    EXPECT_EQ(Log(), (LogLines{Error("NetGetDefEth", "no default route in route table!"),
                               Error("GetDefaultEthByConfig", "can not find default eth in config"),
                               Warn("Net_SetMacbyName", "mac addr will be modifyed![eth1]"),
                               Error("CheckEthExist", "can not find  in eth0,eth1,wlan0,.")}));
    EXPECT_EQ(TraceOf({"fopen"}), Lines{});
}

TEST_F(NetSetMacbyNameTest, EndsUpWhateverFails)
{
    static bool done;
    FailEachCall([] { done = NetSetMacbyName("eth1", "02:00:00:00:00:07"); },
                 [](const std::string& failed) {
                     const Card& card = kernel.At("eth1");
                     EXPECT_EQ(done, card.mac == "02:00:00:00:00:07");
                     const bool ofTheFlags = failed.find("FLAGS") != std::string::npos;
                     EXPECT_TRUE(ofTheFlags || card.flags == IFF_UP);
                 },
                 kMayStayOpen);
}

}  // namespace
