// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "CommonApi.h"

#include "Base.h"

#include "InterfaceWorld.h"

#include <linux/sockios.h>
#include <net/if.h>

#include <cstddef>
#include <cstring>

using namespace fake;

namespace {

/// A name that the listing is to tell alone, though it would refuse it; empty for the real listing.
std::string toldName;

}  // namespace

extern "C" {

// `ListCards`, by the name that the linker knows it by.
bool __real__ZN6vorlix9ListCardsEPA16_cPiRNS_8CardWalkE(char (*names)[16], int* maxNum,
                                                        vorlix::CardWalk& walk);

bool __wrap__ZN6vorlix9ListCardsEPA16_cPiRNS_8CardWalkE(char (*names)[16], int* maxNum,
                                                        vorlix::CardWalk& walk)
{
    if (toldName.empty()) {
        return __real__ZN6vorlix9ListCardsEPA16_cPiRNS_8CardWalkE(names, maxNum, walk);
    }
    memset(names, 0, 32 * sizeof(*names));
    toldName.copy(names[0], 15);
    *maxNum = 1;
    return true;
}

}  // extern "C"

namespace {

/// What a driver answers: port, supported modes and speed in Mbit/s.
ethtool_cmd Driver(uint8_t port, uint32_t supported, uint16_t speed = 100)
{
    ethtool_cmd settings{};
    settings.port = port;
    settings.supported = supported;
    settings.speed = speed;
    return settings;
}

// ---- the record

TEST(NetInterfaceInfoTest, KeepsItsPublicLayout)
{
    EXPECT_EQ(sizeof(NetInterfaceInfo), 128U);
    EXPECT_EQ(alignof(NetInterfaceInfo), 4U);
    EXPECT_EQ(offsetof(NetInterfaceInfo, speed), 36U);
    EXPECT_EQ(offsetof(NetInterfaceInfo, stpcap), 44U);
    EXPECT_EQ(offsetof(NetInterfaceInfo, usage), 48U);
    EXPECT_EQ(offsetof(NetInterfaceInfo, reserved), 52U);

    NetInterfaceInfo info{};
    info.valid = 1;
    info.media = NetInterfaceFiber;
    info.type = 3;
    info.bond = nicBond802_3ad;
    info.working = 5;
    info.hasWps = 6;
    info.longPOE = 7;
    info.reserved_bits = 8;
    unsigned char bytes[sizeof(info)];
    memcpy(bytes, &info, sizeof(info));
    const unsigned char kinds[] = {1, 2, 3, 4};
    const unsigned char states[] = {5, 6, 7, 8};
    EXPECT_EQ(memcmp(bytes + 32, kinds, sizeof(kinds)), 0);
    EXPECT_EQ(memcmp(bytes + 40, states, sizeof(states)), 0);
}

// ---- NetSetMtubyName

class NetSetMtubyNameTest : public InterfaceWorld {
protected:
    void SetUp() override
    {
        InterfaceWorld::SetUp();
        Put(kFile0, Settings({"GATEWAYIP = 10.0.0.1", "PRIO = 1"}));
        Put(kFile1, Settings({"GATEWAYIP = 10.1.0.1", "PRIO = 0"}));
        kernel.At("eth1").flags = IFF_UP;
        kernel.At("eth1").refusesMtuWhileUp = true;
        kernel.routes = {kDefault1};
        Begin();
    }

    const Route kDefault1 = {"0.0.0.0", "10.1.0.1", "0.0.0.0", "eth1"};
};

TEST_F(NetSetMtubyNameTest, SetsTheKernelThenTheDefaultCardThenTheFile)
{
    OnCall("ioctl SIOCSIFFLAGS eth1", [] { kernel.routes.clear(); });  // they go with the flags
    EXPECT_TRUE(NetSetMtubyName("eth1", 1400));
    EXPECT_EQ(kernel.At("eth1").mtu, 1400);
    EXPECT_EQ(kernel.routes, std::vector<Route>{kDefault1});
    EXPECT_EQ(ChangesSortedAt(5),
              (Lines{"ioctl SIOCSIFMTU eth1", "ioctl SIOCSIFFLAGS eth1", "ioctl SIOCSIFMTU eth1",
                     "ioctl SIOCSIFFLAGS eth1", kWrites0, kWrites0, kWrites1, kWrites1,
                     "ioctl SIOCADDRT", kWrites1}));
    EXPECT_EQ(Get(kFile1), Settings({"GATEWAYIP = 10.1.0.1", "PRIO = 0", "MTU = 1400"}));
    EXPECT_EQ(kernel.rtc.requests, Lines{});
}

TEST_F(NetSetMtubyNameTest, AsksForTheDefaultCardBeforeTheKernelIsChanged)
{
    EXPECT_TRUE(NetSetMtubyName("eth0", 1400));
    const Lines calls = TraceOf({"pread /proc/net/route", "ioctl SIOCSIF"});
    EXPECT_EQ(calls.front(), "pread /proc/net/route");
}

TEST_F(NetSetMtubyNameTest, RefusesAnUnknownCardBeforeAnythingIsAsked)
{
    EXPECT_FALSE(NetSetMtubyName("eth9", -1));
    EXPECT_EQ(TraceOf({"pread /proc/net/route", "ioctl SIOC"}), Lines{});
    EXPECT_EQ(LogOf("NetSetMtubyName"), LogLines{}) << "the MTU is not looked at either";
}

TEST_F(NetSetMtubyNameTest, ANegativeMtuIsToldBeforeTheDefaultCardIsAskedFor)
{
    static LogLines told;
    OnCall("pread /proc/net/route", [] {
        if (told.empty()) told = Log();
    });
    EXPECT_TRUE(NetSetMtubyName("eth1", -1));
    EXPECT_EQ(told, (LogLines{Warn("NetSetMtubyName", " mtu can not be set to -1")}));
}

TEST_F(NetSetMtubyNameTest, ANegativeMtuBecomes1500AndIsSavedAsThat)
{
    EXPECT_TRUE(NetSetMtubyName("eth0", -1));
    EXPECT_EQ(kernel.At("eth0").mtu, 1500);
    EXPECT_NE(Get(kFile0).find("MTU = 1500\n"), std::string::npos);
    EXPECT_EQ(Log().front(), Warn("NetSetMtubyName", " mtu can not be set to -1"));
}

TEST_F(NetSetMtubyNameTest, ZeroGoesToTheKernelAsItIs)
{
    kernel.At("eth0").mtu = 0;  // a kernel that takes it
    EXPECT_TRUE(NetSetMtubyName("eth0", 0));
    EXPECT_EQ(LogOf("NetSetMtubyName"), LogLines{});
    EXPECT_EQ(Get(kFile0).find("MTU"), std::string::npos);  // the setting refuses it
    kernel.At("eth0").mtu = 1500;
    EXPECT_FALSE(NetSetMtubyName("eth0", 0));
    EXPECT_TRUE(Logged(Error("Net_SetMtubyName", "set MTU failed.[eth0,0]")));
}

TEST_F(NetSetMtubyNameTest, ARefusalIsTheResultAndNotSaved)
{
    OnCall("ioctl SIOCSIFMTU eth1", [] { kernel.routes.clear(); });
    EXPECT_FALSE(NetSetMtubyName("eth1", 10));
    EXPECT_EQ(Get(kFile1), Settings({"GATEWAYIP = 10.1.0.1", "PRIO = 0"}));
    EXPECT_EQ(kernel.routes, std::vector<Route>{kDefault1});
}

TEST_F(NetSetMtubyNameTest, WhatCannotBeSavedIsNotReported)
{
    FailAll(kWrites1, EROFS);
    EXPECT_TRUE(NetSetMtubyName("eth1", 1400));
}

TEST_F(NetSetMtubyNameTest, WithoutADefaultCardAnEmptyNameIsRefused)
{
    kernel.routes.clear();
    Put(kFile1, "");
    EXPECT_TRUE(NetSetMtubyName("eth0", 1400));
    EXPECT_EQ(Log().back(), Error("CheckEthExist", "can not find  in eth0,eth1,wlan0,."));
    EXPECT_NE(Get(kFile0).find("MTU = 1400\n"), std::string::npos);
}

TEST_F(NetSetMtubyNameTest, ABondIsSetThroughItsMembers)
{
    kernel.Add("mybond1");
    Put("/sys/class/net/mybond1/bonding/slaves", "eth0\n");
    Begin();
    EXPECT_TRUE(NetSetMtubyName("mybond1", 7000));
    EXPECT_EQ(
        TraceOf({"ioctl SIOCSIFFLAGS", "ioctl SIOCSIFMTU"}),
        (Lines{"ioctl SIOCSIFFLAGS mybond1", "ioctl SIOCSIFFLAGS eth0", "ioctl SIOCSIFMTU mybond1",
               "ioctl SIOCSIFFLAGS eth0", "ioctl SIOCSIFFLAGS mybond1"}));
    EXPECT_EQ(Get(CardFile("mybond1")), "MTU = 7000\n");
}

TEST_F(NetSetMtubyNameTest, ABondAboveItsLimitSavesWhatWasAskedFor)
{
    kernel.Add("bond0");
    Put("/sys/class/net/bond0/bonding/slaves", "eth0\n");
    EXPECT_TRUE(NetSetMtubyName("bond0", 9000));
    EXPECT_EQ(kernel.At("bond0").mtu, 1500);
    EXPECT_EQ(Get(CardFile("bond0")), "MTU = 9000\n");
}

TEST_F(NetSetMtubyNameTest, ABondThatDoesNotRunIsJustSaved)
{
    kernel.Add("bond0").mtu = 1300;
    EXPECT_TRUE(NetSetMtubyName("bond0", 1400));
    EXPECT_EQ(kernel.At("bond0").mtu, 1300);
    EXPECT_EQ(Get(CardFile("bond0")), "MTU = 1400\n");
    EXPECT_TRUE(Logged(Info("SetMtubyBondName", "bond0 is not bonded, just save mtu in config.")));
}

TEST_F(NetSetMtubyNameTest, AVlanOnABondIsJustSavedToo)
{
    kernel.Add("bond0.5").mtu = 1300;
    EXPECT_TRUE(NetSetMtubyName("bond0.5", 9000));
    EXPECT_EQ(kernel.At("bond0.5").mtu, 1300);
    EXPECT_EQ(Get(CardFile("bond0.5")), "MTU = 9000\n");
}

TEST_F(NetSetMtubyNameTest, UnknownNamesAreRefused)
{
    EXPECT_FALSE(NetSetMtubyName(nullptr, 1400));
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_FALSE(NetSetMtubyName("eth9", -1));
    EXPECT_EQ(LogOf("NetSetMtubyName"), LogLines{});
    EXPECT_EQ(Log().back(), Error("CheckEthExist", "can not find eth9 in eth0,eth1,wlan0,."));
    EXPECT_EQ(Changes(), Lines{});
}

TEST_F(NetSetMtubyNameTest, IsSavedOnlyWhenTheKernelTookItWhateverFails)
{
    static bool done;
    FailEachCall([] { done = NetSetMtubyName("eth1", 1400); },
                 [](const std::string& failed) {
                     EXPECT_EQ(done, kernel.At("eth1").mtu == 1400) << failed;
                     EXPECT_TRUE(done || Get(kFile1).find("MTU") == std::string::npos);
                 },
                 kMayStayOpen);
}

// ---- NetGetBondOrBrCardTransmedia

class NetGetBondOrBrCardTransmediaTest : public InterfaceWorld {
protected:
    void SetUp() override
    {
        InterfaceWorld::SetUp();
        kernel.At("eth0").settings = Driver(PORT_TP, 0);
        kernel.At("eth1").settings = Driver(PORT_FIBRE, 0);
        Put("/sys/class/net/bond0/bonding/slaves", "eth0 eth1\n");
        Put("/sys/class/net/br0/brif/eth1", "");
        Begin();
    }
};

TEST_F(NetGetBondOrBrCardTransmediaTest, OneMemberOfFibreIsEnough)
{
    EXPECT_EQ(NetGetBondOrBrCardTransmedia("bond0", false), 2);
    EXPECT_EQ(NetGetBondOrBrCardTransmedia("br0", true), 2);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NetGetBondOrBrCardTransmediaTest, OnlyTheFibrePortCounts)
{
    for (const uint8_t port : {PORT_TP, PORT_OTHER, PORT_NONE}) {
        kernel.At("eth1").settings = Driver(port, SUPPORTED_FIBRE);
        EXPECT_EQ(NetGetBondOrBrCardTransmedia("bond0", false), 0);
    }
}

TEST_F(NetGetBondOrBrCardTransmediaTest, AMemberThatDoesNotAnswerIsPassedOver)
{
    Fail("ioctl ETHTOOL_GSET", EOPNOTSUPP);
    EXPECT_EQ(NetGetBondOrBrCardTransmedia("bond0", false), 2);
    FailAll("ioctl ETHTOOL_GSET", EOPNOTSUPP);
    EXPECT_EQ(NetGetBondOrBrCardTransmedia("bond0", false), 0);
}

TEST_F(NetGetBondOrBrCardTransmediaTest, TheKindDecidesWhoIsAsked)
{
    EXPECT_EQ(NetGetBondOrBrCardTransmedia("bond0", true), 0);
    EXPECT_EQ(Log(), (LogLines{Error("Bridge_GetBridgeMembers",
                                     "Open /sys/class/net/bond0/brif/ failed\n")}));
    ClearLog();
    EXPECT_EQ(NetGetBondOrBrCardTransmedia("br0", false), 0);
    EXPECT_EQ(Log(), (LogLines{Error("Bond_GetBondMembers",
                                     "open /sys/class/net/br0/bonding/slaves failed\n")}));
}

TEST_F(NetGetBondOrBrCardTransmediaTest, SixteenMembersAreAsked)
{
    std::string line;
    for (int i = 0; i < 15; ++i) line += "e" + std::to_string(i) + " ";
    Put("/sys/class/net/bond0/bonding/slaves", line + "eth1\n");
    EXPECT_EQ(NetGetBondOrBrCardTransmedia("bond0", false), 2);
    Put("/sys/class/net/bond0/bonding/slaves", line + "e15 eth1\n");
    EXPECT_EQ(NetGetBondOrBrCardTransmedia("bond0", false), 0);
}

TEST_F(NetGetBondOrBrCardTransmediaTest, NoNameIsWired)
{
    for (const char* name : {"", static_cast<const char*>(nullptr)}) {
        EXPECT_EQ(NetGetBondOrBrCardTransmedia(name, false), 0);
        EXPECT_EQ(NetGetBondOrBrCardTransmedia(name, true), 0);
    }
    EXPECT_EQ(TraceOf({"open"}), Lines{});
    EXPECT_EQ(Log(), LogLines{});
}

// ---- NetGetAllInterface

class NetGetAllInterfaceTest : public InterfaceWorld {
protected:
    void SetUp() override
    {
        InterfaceWorld::SetUp();
        for (const char* name : {"eth0", "eth1"}) kernel.At(name).settings = Driver(PORT_TP, 0x20);
        memset(list, '#', sizeof(list));
        toldName.clear();
        Begin();
    }

    /// The only interface that is listed.
    NetInterfaceInfo Only(const std::string& name)
    {
        kernel.cards.remove_if([&](const Card& card) { return card.name != name; });
        if (kernel.cards.empty()) kernel.Add(name);
        Begin();
        int32_t count = 32;
        EXPECT_TRUE(NetGetAllInterface(list, &count));
        EXPECT_GE(count, 1);
        return list[0];
    }

    NetInterfaceInfo list[33];
};

TEST_F(NetGetAllInterfaceTest, TellsTheKindByTheFirstPartOfTheName)
{
    struct Case {
        const char* name;
        int valid;
        int media;
        int type;
    };
    for (const Case& test :
         {Case{"wlan0", 0, 1, 0}, Case{"bond0", 1, 0, 1}, Case{"br0", 1, 0, 3},
          Case{"ppp0", 1, 1, 0}, Case{"lte0", 1, 1, 0}, Case{"usb0", 1, 1, 0},
          Case{"apra0", 0, 1, 0}, Case{"wlan-bond-br", 0, 1, 0}, Case{"bond-br0", 1, 0, 1},
          Case{"pppbr", 1, 0, 3}, Case{"usb-apra", 1, 1, 0}}) {
        SCOPED_TRACE(test.name);
        const NetInterfaceInfo info = Only(test.name);
        EXPECT_STREQ(info.name, test.name);
        EXPECT_EQ(info.valid, test.valid);
        EXPECT_EQ(info.media, test.media);
        EXPECT_EQ(info.type, test.type);
        EXPECT_EQ(info.speed, 0);
        EXPECT_EQ(info.usage, 0);
        EXPECT_EQ(info.reserved[0], 0);
        EXPECT_EQ(TraceOf({"ioctl ETHTOOL_GSET"}), Lines{});
    }
}

TEST_F(NetGetAllInterfaceTest, AnUnknownKindIsReportedAndStaysInTheList)
{
    toldName = "tun0";
    int32_t count = 32;
    EXPECT_TRUE(NetGetAllInterface(list, &count));
    ASSERT_EQ(count, 1);
    EXPECT_STREQ(list[0].name, "tun0");
    EXPECT_EQ(list[0].valid, 1);
    EXPECT_EQ(list[0].media, NetInterfaceWired);
    EXPECT_EQ(list[0].type, netModeMultiple);
    EXPECT_EQ(Log(),
              (LogLines{Error("NetGetAllInterface", "network card tun0 can not recognize")}));
}

TEST_F(NetGetAllInterfaceTest, APoeNameIsACardOfItsOwn)
{
    toldName = "poe0";
    kernel.Add("poe0").settings = Driver(PORT_TP, SUPPORTED_10baseT_Half);
    int32_t count = 32;
    EXPECT_TRUE(NetGetAllInterface(list, &count));
    EXPECT_EQ(list[0].valid, 1);
    EXPECT_EQ(list[0].reserved[0], 10);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NetGetAllInterfaceTest, ABondAndABridgeHaveTheMediumOfTheirMembers)
{
    Put("/sys/class/net/bond0/bonding/slaves", "eth8\n");
    Put("/sys/class/net/br0/brif/eth8", "");
    kernel.Add("eth8").settings = Driver(PORT_FIBRE, 0);
    kernel.Add("bond0");
    kernel.Add("br0");
    int32_t count = 32;
    EXPECT_TRUE(NetGetAllInterface(list, &count));
    ASSERT_EQ(count, 6);
    EXPECT_STREQ(list[4].name, "bond0");
    EXPECT_EQ(list[4].media, NetInterfaceFiber);
    EXPECT_STREQ(list[5].name, "br0");
    EXPECT_EQ(list[5].media, NetInterfaceFiber);
}

TEST_F(NetGetAllInterfaceTest, ACardIsDescribedByItsDriver)
{
    kernel.At("eth1").settings = Driver(PORT_FIBRE, SUPPORTED_1000baseT_Full, 1000);
    kernel.Add("eth16").settings = Driver(PORT_TP, SUPPORTED_100baseT_Full, 10);
    int32_t count = 32;
    EXPECT_TRUE(NetGetAllInterface(list, &count));
    ASSERT_EQ(count, 4);
    EXPECT_STREQ(list[1].name, "eth1");
    EXPECT_EQ(list[1].valid, 1);
    EXPECT_EQ(list[1].media, NetInterfaceFiber);
    EXPECT_EQ(list[1].type, netModeMultiple);
    EXPECT_EQ(list[1].speed, 1000);
    EXPECT_EQ(list[1].usage, netDeviceUsageCommon);
    EXPECT_EQ(list[1].reserved[0], 1000);
    EXPECT_STREQ(list[3].name, "eth16");
    EXPECT_EQ(list[3].speed, 10);
    EXPECT_EQ(list[3].usage, netDeviceUsageDCFunc);
    EXPECT_EQ(list[3].reserved[0], 100);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NetGetAllInterfaceTest, FibreIsItsPortOrAnotherPortThatSupportsIt)
{
    struct Case {
        uint8_t port;
        uint32_t supported;
        int media;
    };
    for (const Case& test : {Case{3, 0, 2}, Case{255, 1U << 10, 2}, Case{255, 0, 0},
                             Case{0, 1U << 10, 0}, Case{0, 0, 0}, Case{255, 1U << 11, 0}}) {
        kernel.At("eth0").settings = Driver(test.port, test.supported);
        EXPECT_EQ(Only("eth0").media, test.media) << +test.port << " " << test.supported;
    }
}

TEST_F(NetGetAllInterfaceTest, TheTopSpeedIsTheHighestThatIsSupported)
{
    struct Case {
        uint32_t supported;
        int speed;
    };
    for (const Case& test :
         {Case{0, 0}, Case{1U << 0, 10}, Case{1U << 1, 10}, Case{1U << 2, 100}, Case{1U << 3, 100},
          Case{1U << 4, 1000}, Case{1U << 5, 1000}, Case{1U << 12, 10000}, Case{0x3F, 1000},
          Case{0x0F, 100}, Case{0x103F, 10000}, Case{1U << 6, 0}, Case{1U << 15, 0}}) {
        kernel.At("eth0").settings = Driver(PORT_TP, test.supported);
        EXPECT_EQ(Only("eth0").reserved[0], test.speed) << test.supported;
    }
}

TEST_F(NetGetAllInterfaceTest, ACardThatDoesNotAnswerStaysInTheList)
{
    kernel.At("eth0").settings.reset();
    const NetInterfaceInfo info = Only("eth0");
    EXPECT_EQ(info.valid, 1);
    EXPECT_EQ(info.media, 0);
    EXPECT_EQ(info.speed, 0);
    EXPECT_EQ(info.reserved[0], 0);
    EXPECT_EQ(LogOf("NetGetAllInterface"),
              (LogLines{Warn("NetGetAllInterface", "get eth0 ethtool info error")}));
}

TEST_F(NetGetAllInterfaceTest, ACardThatDoesNotAnswerIsNotAsTheOneBefore)
{
    kernel.cards.clear();
    kernel.Add("eth0").settings = Driver(PORT_FIBRE, 0x103F, 1000);
    kernel.Add("eth1").settings.reset();
    NetInterfaceInfo entries[2] = {};
    int32_t count = 2;
    ASSERT_TRUE(NetGetAllInterface(entries, &count));
    EXPECT_EQ(entries[0].media, NetInterfaceFiber);
    EXPECT_EQ(entries[0].reserved[0], 10000);
    EXPECT_EQ(entries[1].media, NetInterfaceWired);
    EXPECT_EQ(entries[1].reserved[0], 0);
    EXPECT_EQ(entries[1].speed, 0);
}

TEST_F(NetGetAllInterfaceTest, ACardThatDoesNotAnswerHasItsUseAllTheSame)
{
    kernel.Add("eth16").settings.reset();
    EXPECT_EQ(Only("eth16").usage, netDeviceUsageDCFunc);
}

TEST_F(NetGetAllInterfaceTest, OnlyAPureSwitchInterfaceHasThatType)
{
    Put("/mnt/mtd/Config/poeMode.conf", "eth0 = 1\n");
    EXPECT_EQ(Only("eth0").type, netModeSwitch);
    Put("/mnt/mtd/Config/poeMode.conf", "eth0 = 2\n");
    kernel.At("eth0").driver = "Switch";
    EXPECT_EQ(Only("eth0").type, netModeMultiple);
    EXPECT_STREQ(list[1].name, "eth0:poe");
    EXPECT_EQ(list[1].valid, 1);
    EXPECT_EQ(list[1].type, netModeSwitch);
}

TEST_F(NetGetAllInterfaceTest, AWirelessEth2IsNoCardOfItsOwn)
{
    kernel.Add("eth2").settings = Driver(PORT_TP, 0x20);
    Put("/proc/net/wireless", "  eth2: 1\n  eth22: 1\n");
    const NetInterfaceInfo wireless = Only("eth2");
    EXPECT_EQ(wireless.valid, 0);
    EXPECT_EQ(wireless.media, NetInterfaceWireless);
    EXPECT_EQ(wireless.type, 0);
    EXPECT_EQ(wireless.reserved[0], 0);

    kernel.Add("eth22").settings = Driver(PORT_TP, 0x20);
    EXPECT_EQ(Only("eth22").valid, 1);
}

TEST_F(NetGetAllInterfaceTest, AWiredEth2IsAnOrdinaryCard)
{
    kernel.Add("eth2").settings = Driver(PORT_TP, 0x20);
    EXPECT_EQ(Only("eth2").valid, 1);
    EXPECT_EQ(list[0].reserved[0], 1000);
}

TEST_F(NetGetAllInterfaceTest, AWirelessEth2IsNoSwitchEvenWithTheDriverOfOne)
{
    kernel.Add("eth2").driver = "Switch";
    Put("/proc/net/wireless", "  eth2: 1\n");
    EXPECT_EQ(Only("eth2").type, netModeMultiple);
    EXPECT_EQ(list[0].valid, 0);
}

TEST_F(NetGetAllInterfaceTest, EthInANameGoesBeforeEveryOtherPart)
{
    kernel.Add("ethwlan0").settings = Driver(PORT_TP, 0x20);
    EXPECT_EQ(Only("ethwlan0").valid, 1);
    EXPECT_EQ(list[0].reserved[0], 1000);
    kernel.Add("brpoe0").settings = Driver(PORT_TP, 0x20);
    EXPECT_EQ(Only("brpoe0").type, netModeMultiple);
}

TEST_F(NetGetAllInterfaceTest, ASwitchEntryBesideItsCardIsOfCommonUse)
{
    Put("/mnt/mtd/Config/poeMode.conf", "eth0 = 2\n");
    kernel.At("eth0").driver = "Switch";
    EXPECT_EQ(Only("eth0").usage, netDeviceUsageCommon);
    EXPECT_STREQ(list[1].name, "eth0:poe");
    EXPECT_EQ(list[1].usage, netDeviceUsageCommon);
}

TEST_F(NetGetAllInterfaceTest, ReadsWhatIsAskedOfEachCardOnceForAll)
{
    kernel.Add("eth2").settings = Driver(PORT_TP, 0x20);
    kernel.Add("eth3").settings = Driver(PORT_TP, 0x20);
    Put("/proc/net/wireless", "  eth2: 1\n");
    Put("/mnt/mtd/Config/poeMode.conf", "eth1 = 1\n");
    Begin();
    int32_t count = 32;
    EXPECT_TRUE(NetGetAllInterface(list, &count));
    EXPECT_EQ(count, 5);
    EXPECT_EQ(TraceOf({"open /proc/net/wireless"}).size(), 1U);
    EXPECT_EQ(TraceOf({"open /mnt/mtd/Config/poeMode.conf O_RDONLY"}).size(), 1U);
}

TEST_F(NetGetAllInterfaceTest, CapacityLimitsTheList)
{
    kernel.Add("eth3").settings = Driver(PORT_TP, 0x20);
    int32_t count = 2;
    EXPECT_TRUE(NetGetAllInterface(list, &count));
    EXPECT_EQ(count, 2);
    EXPECT_STREQ(list[0].name, "eth0");
    EXPECT_STREQ(list[1].name, "eth1");
    EXPECT_EQ(list[2].name[0], '#');
}

TEST_F(NetGetAllInterfaceTest, AllRecordsAreClearedAndNotOneMore)
{
    int32_t count = 32;
    EXPECT_TRUE(NetGetAllInterface(list, &count));
    EXPECT_EQ(count, 3);
    const NetInterfaceInfo none{};
    EXPECT_EQ(memcmp(&list[3], &none, sizeof(none)), 0);
    EXPECT_EQ(memcmp(&list[31], &none, sizeof(none)), 0);
    EXPECT_EQ(list[32].name[0], '#');
    for (int i = 0; i < count; ++i) {
        EXPECT_EQ(list[i].bond, 0);
        EXPECT_EQ(list[i].working, 0);
        EXPECT_EQ(list[i].hasWps, 0);
        EXPECT_EQ(list[i].longPOE, 0);
        EXPECT_EQ(list[i].reserved_bits, 0);
        EXPECT_EQ(list[i].stpcap, 0);
        for (int word = 1; word < 19; ++word) EXPECT_EQ(list[i].reserved[word], 0);
    }
}

TEST_F(NetGetAllInterfaceTest, ACapacityBelowOneGivesNone)
{
    for (int32_t count : {0, -1}) {
        EXPECT_TRUE(NetGetAllInterface(list, &count));
        EXPECT_EQ(count, 0);
        EXPECT_EQ(list[0].name[0], '#');
    }
}

TEST_F(NetGetAllInterfaceTest, WithoutAListingThereIsNone)
{
    Fail("open /proc/net/dev", EMFILE);
    int32_t count = 32;
    EXPECT_FALSE(NetGetAllInterface(list, &count));
    EXPECT_EQ(count, 32);
    EXPECT_EQ(list[0].name[0], '#');
}

TEST_F(NetGetAllInterfaceTest, NullIsRefusedInSilence)
{
    int32_t count = 32;
    EXPECT_FALSE(NetGetAllInterface(nullptr, &count));
    EXPECT_FALSE(NetGetAllInterface(list, nullptr));
    EXPECT_EQ(TraceOf({"open"}), Lines{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NetGetAllInterfaceTest, ListsEachCardWhateverADriverAnswers)
{
    static NetInterfaceInfo records[32];
    static int32_t count;
    static bool done;
    FailEachCall(
        [] {
            count = 32;
            done = NetGetAllInterface(records, &count);
        },
        [](const std::string& failed) {
            const bool ofTheListing = failed.find("/proc/net/dev") != std::string::npos;
            EXPECT_TRUE(ofTheListing || (done && count == 3)) << failed;
        },
        kMayStayOpen);
}

}  // namespace
