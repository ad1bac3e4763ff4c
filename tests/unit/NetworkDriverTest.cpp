// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// What the driver of a card is asked: medium, speed, link, link modes; and the counters.

#include "Network.h"

#include "fake/World.h"

#include <cstring>

#include <linux/sockios.h>
#include <net/if.h>

using namespace fake;

namespace {

ifreq lastRecord{};  // the last record handed to NetIOCtrl, as it was then

}  // namespace

extern "C" {

bool __real_NetIOCtrl(int cmd, void* ifr);

bool __wrap_NetIOCtrl(int cmd, void* ifr)
{
    lastRecord = *static_cast<ifreq*>(ifr);
    return __real_NetIOCtrl(cmd, ifr);
}

}  // extern "C"

namespace {

using Calls = std::vector<std::string>;

constexpr int kMediumRequest = 0x89F2;
constexpr char kWireless[] = "/proc/net/wireless";
constexpr char kWirelessHead[] =
    "Inter-| sta-|   Quality        |   Discarded packets               | Missed | WE\n"
    " face | tus | link level noise |  nwid  crypt   frag  retry   misc | beacon | 22\n";

ethtool_cmd SpeedOf(uint16_t speed)
{
    ethtool_cmd settings{};
    settings.speed = speed;
    return settings;
}

class NetworkDriverTest : public World {
protected:
    void SetUp() override
    {
        World::SetUp();
        lastRecord = ifreq{};
        kernel.Add("eth0");
        kernel.Add("eth1");
    }

    static Card& Eth1() { return kernel.At("eth1"); }

    /// Puts a wireless card in the kernel's table, with its status.
    static void PutWireless(const std::string& name, int status)
    {
        Put(kWireless, kWirelessHead + name + ": " + std::to_string(status) + "   0.  0.  0.\n");
    }
};

/// A record as an operation has to hand it in, apart from the pointer to the driver's record.
void ExpectNamedRecord(const std::string& name)
{
    ifreq record{};
    name.copy(record.ifr_name, IFNAMSIZ - 1);
    record.ifr_data = lastRecord.ifr_data;
    EXPECT_EQ(memcmp(&lastRecord, &record, sizeof(record)), 0);
}

void ExpectSilentAndUntouched()
{
    EXPECT_EQ(Trace(), Calls{});
    EXPECT_EQ(Log(), LogLines{});
}

// ==== Medium

class Net_SetMediumPreferTest : public NetworkDriverTest {};

TEST_F(Net_SetMediumPreferTest, SendsTheMediumToTheDriver)
{
    const NetMediumPrefer media[] = {netFiberMediumPrefer, netCopperMediumPrefer, netNoMediumPrefer,
                                     netMediumPreferMax, static_cast<NetMediumPrefer>(-1)};
    for (const NetMediumPrefer medium : media) {
        SCOPED_TRACE(medium);
        ClearLog();
        ClearTrace();
        EXPECT_TRUE(Net_SetMediumPrefer("eth1", medium));
        EXPECT_EQ(TraceOf({"ioctl"}), (Calls{"ioctl 0x89F2 eth1"}));
        EXPECT_EQ(lastRecord.ifr_ifru.ifru_ivalue, medium);
        EXPECT_EQ(Log(), (LogLines{Info("Net_SetMediumPrefer",
                                        "SetMediumPrefer is called. eth1 will be set to " +
                                            std::to_string(medium))}));
    }
}

TEST_F(Net_SetMediumPreferTest, TheRecordIsZeroedAroundTheMedium)
{
    EXPECT_TRUE(Net_SetMediumPrefer("eth1", netCopperMediumPrefer));
    ifreq record{};
    strcpy(record.ifr_name, "eth1");
    record.ifr_ifru.ifru_ivalue = 1;
    EXPECT_EQ(memcmp(&lastRecord, &record, sizeof(record)), 0);
}

TEST_F(Net_SetMediumPreferTest, FailsWhenTheDriverRefuses)
{
    Fail("ioctl 0x89F2", EOPNOTSUPP);
    EXPECT_FALSE(Net_SetMediumPrefer("eth1", netCopperMediumPrefer));
    EXPECT_EQ(Log(), (LogLines{Info("Net_SetMediumPrefer",
                                    "SetMediumPrefer is called. eth1 will be set to 1"),
                               Refused(kMediumRequest, EOPNOTSUPP, "eth1"),
                               Error("Net_SetMediumPrefer", "SetMediumPrefer failed.[eth1,1]")}));
}

TEST_F(Net_SetMediumPreferTest, ANullNameIsNotEvenAnnounced)
{
    EXPECT_FALSE(Net_SetMediumPrefer(nullptr, netCopperMediumPrefer));
    ExpectSilentAndUntouched();
}

TEST_F(Net_SetMediumPreferTest, EveryFailedRequestIsAFailure)
{
    bool set = false;
    FailEachCall([&] { set = Net_SetMediumPrefer("eth1", netFiberMediumPrefer); },
                 [&](const std::string& failed) { EXPECT_EQ(set, failed == "fcntl F_SETFD"); });
}

// ==== Speed

class Net_GetLinkSpeedTest : public NetworkDriverTest {
protected:
    int speed_ = -7;
};

TEST_F(Net_GetLinkSpeedTest, ReadsTheSpeedOfTheDriver)
{
    Eth1().settings = SpeedOf(1000);
    EXPECT_TRUE(Net_GetLinkSpeed("eth1", &speed_));
    EXPECT_EQ(speed_, 1000);
    EXPECT_EQ(TraceOf({"ioctl"}), (Calls{"ioctl ETHTOOL_GSET eth1"}));
    ExpectNamedRecord("eth1");
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Net_GetLinkSpeedTest, TheSpeedIsSixteenBitsWithoutSign)
{
    Eth1().settings = SpeedOf(0xffff);
    Eth1().settings->speed_hi = 1;
    EXPECT_TRUE(Net_GetLinkSpeed("eth1", &speed_));
    EXPECT_EQ(speed_, 65535);
}

TEST_F(Net_GetLinkSpeedTest, ACardWithoutEthtoolHasNone)
{
    EXPECT_FALSE(Net_GetLinkSpeed("eth1", &speed_));
    EXPECT_EQ(speed_, -7);
    EXPECT_EQ(Log(), (LogLines{Refused(SIOCETHTOOL, EOPNOTSUPP, "eth1"),
                               Error("Net_GetLinkSpeed", "ETHTOOL_GSET get failed.[eth1]")}));
}

TEST_F(Net_GetLinkSpeedTest, AWirelessCardIsNotAsked)
{
    kernel.Add("wlan0").settings = SpeedOf(54);
    kernel.Add("ra0").settings = SpeedOf(54);
    PutWireless("ra0", 1);
    EXPECT_FALSE(Net_GetLinkSpeed("wlan0", &speed_));
    EXPECT_FALSE(Net_GetLinkSpeed("ra0", &speed_));
    EXPECT_EQ(speed_, -7);
    EXPECT_EQ(TraceOf({"ioctl"}), Calls{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Net_GetLinkSpeedTest, ANullIsSilent)
{
    EXPECT_FALSE(Net_GetLinkSpeed(nullptr, &speed_));
    EXPECT_FALSE(Net_GetLinkSpeed("eth1", nullptr));
    EXPECT_FALSE(Net_GetLinkSpeed("wlan0", nullptr));
    EXPECT_EQ(speed_, -7);
    ExpectSilentAndUntouched();
}

TEST_F(Net_GetLinkSpeedTest, AFailedRequestIsAFailureWithTheNumberAsItWas)
{
    Eth1().settings = SpeedOf(1000);
    bool read = false;
    FailEachCall([&] { read = Net_GetLinkSpeed("eth1", &speed_); },
                 [&](const std::string&) { EXPECT_EQ(read, speed_ == 1000); });
}

// ==== Counters

class Net_GetDataStatTest : public NetworkDriverTest {
protected:
    void SetUp() override
    {
        NetworkDriverTest::SetUp();
        memset(&stat_, 0x5a, sizeof(stat_));
        Eth1().settings = SpeedOf(100);
    }

    void ExpectUntouched() const
    {
        NetDataStat untouched;
        memset(&untouched, 0x5a, sizeof(untouched));
        EXPECT_EQ(memcmp(&stat_, &untouched, sizeof(stat_)), 0);
    }

    NetDataStat stat_;
};

TEST_F(Net_GetDataStatTest, ReadsTheCountersOfTheCardAndItsSpeed)
{
    kernel.At("eth0").counters = "9 9 9 9 9 9 9 9 9 9 9 9 9 9 9 9";
    Eth1().counters = "5000000001 5000000002 3 4 5 6 7 8 5000000009 5000000010 11 12 13 14 15 16";
    EXPECT_TRUE(Net_GetDataStat("eth1", &stat_));

    NetDataStat expected{};
    expected.receivedBytes = 5000000001;
    expected.receivedPackets = 5000000002;
    expected.receivedErrors = 3;
    expected.receivedDroped = 4;
    expected.receivedOverruns = 5;
    expected.receivedFrame = 6;
    expected.transmittedBytes = 5000000009;
    expected.transmittedPackets = 5000000010;
    expected.transmittedErrors = 11;
    expected.transmittedDroped = 12;
    expected.transmittedOverruns = 13;
    expected.transmittedCollisions = 14;
    expected.transmittedCarrier = 15;
    expected.interfaceSpeed = 100;
    EXPECT_EQ(memcmp(&stat_, &expected, sizeof(stat_)), 0);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Net_GetDataStatTest, ACardWhoseDriverTellsNoSpeedHasSpeedZero)
{
    Eth1().settings.reset();
    EXPECT_TRUE(Net_GetDataStat("eth1", &stat_));
    EXPECT_EQ(stat_.interfaceSpeed, 0U);
    EXPECT_EQ(Log(), (LogLines{Refused(SIOCETHTOOL, EOPNOTSUPP, "eth1"),
                               Error("Net_GetLinkSpeed", "ETHTOOL_GSET get failed.[eth1]")}));
}

TEST_F(Net_GetDataStatTest, AWirelessCardHasSpeedZeroInSilence)
{
    Card& card = kernel.Add("wlan0");
    card.counters = "77 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0";
    card.settings = SpeedOf(54);
    EXPECT_TRUE(Net_GetDataStat("wlan0", &stat_));
    EXPECT_EQ(stat_.receivedBytes, 77U);
    EXPECT_EQ(stat_.interfaceSpeed, 0U);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Net_GetDataStatTest, CardsAreToldApartByTheirWholeNames)
{
    kernel.Add("eth10").counters = "10 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0";
    kernel.Add("eth012345678901").counters = "15 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0";
    EXPECT_TRUE(Net_GetDataStat("eth10", &stat_));
    EXPECT_EQ(stat_.receivedBytes, 10U);
    EXPECT_TRUE(Net_GetDataStat("eth012345678901", &stat_));
    EXPECT_EQ(stat_.receivedBytes, 15U);
}

TEST_F(Net_GetDataStatTest, WhatIsNoCardOfTheDeviceHasNoCounters)
{
    kernel.Add("lo");  // its name is left in the slot behind the last card
    for (const char* name : {"lo", "eth7", "eth", "eth10", "", "eth1 ", "eth1:1"}) {
        SCOPED_TRACE(name);
        ClearLog();
        EXPECT_FALSE(Net_GetDataStat(name, &stat_));
        EXPECT_EQ(Log(),
                  (LogLines{Error("Net_GetDataStat", "can not find " + std::string(name) + ".")}));
    }
    ExpectUntouched();
}

TEST_F(Net_GetDataStatTest, TheFirstThirtyTwoCardsAreLookedAt)
{
    for (int number = 2; number < 33; ++number) kernel.Add("eth" + std::to_string(number));
    EXPECT_TRUE(Net_GetDataStat("eth31", &stat_));
    EXPECT_FALSE(Net_GetDataStat("eth32", &stat_));
    EXPECT_TRUE(Logged(Error("Net_GetDataStat", "can not find eth32.")));
}

TEST_F(Net_GetDataStatTest, FailsWithoutTheTable)
{
    Fail("open /proc/net/dev", ENOENT);
    EXPECT_FALSE(Net_GetDataStat("eth1", &stat_));
    ExpectUntouched();
    EXPECT_EQ(Log(), (LogLines{Error("GetNormalInterfaceInfo", "Open file /proc/net/dev failed!\n"),
                               Error("Net_GetDataStat", "GetNormalInterfaceInfo error")}));
}

TEST_F(Net_GetDataStatTest, ANullIsSilent)
{
    EXPECT_FALSE(Net_GetDataStat(nullptr, &stat_));
    EXPECT_FALSE(Net_GetDataStat("eth1", nullptr));
    ExpectUntouched();
    ExpectSilentAndUntouched();
}

TEST_F(Net_GetDataStatTest, AFailedCallCostsTheSpeedAtMostOnceTheTableIsRead)
{
    Eth1().counters = "77 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0";
    bool read = false;
    FailEachCall([&] { read = Net_GetDataStat("eth1", &stat_); },
                 [&](const std::string& failed) {
                     if (read) {
                         EXPECT_EQ(stat_.receivedBytes, 77U);
                     } else {
                         EXPECT_NE(failed.find("/proc/net/dev"), std::string::npos);
                         ExpectUntouched();
                     }
                 });
}

// ==== Link

class Net_MiiDiagTest : public NetworkDriverTest {};

TEST_F(Net_MiiDiagTest, TheDriverTellsTheLink)
{
    for (const uint32_t link : {0U, 1U, 2U}) {
        SCOPED_TRACE(link);
        Eth1().link = link;
        ClearTrace();
        EXPECT_EQ(Net_MiiDiag("eth1"), link != 0);
        EXPECT_EQ(TraceOf({"ioctl", "open"}), (Calls{"ioctl ETHTOOL_GLINK eth1"}));
    }
    ExpectNamedRecord("eth1");
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Net_MiiDiagTest, ACardWithoutEthtoolHasNoLink)
{
    Eth1().link.reset();
    EXPECT_FALSE(Net_MiiDiag("eth1"));
    EXPECT_EQ(Log(), (LogLines{Refused(SIOCETHTOOL, EOPNOTSUPP, "eth1"),
                               Error("Net_MiiDiag", "get ETHTOOL_GLINK error.[eth1]")}));
}

TEST_F(Net_MiiDiagTest, AModemLineAlwaysHasALinkAndNothingIsAsked)
{
    EXPECT_TRUE(Net_MiiDiag("ppp0"));
    EXPECT_TRUE(Net_MiiDiag("xppp"));
    EXPECT_TRUE(Net_MiiDiag("wlan0ppp"));
    EXPECT_TRUE(Net_MiiDiag("eth2ppp"));
    ExpectSilentAndUntouched();
}

TEST_F(Net_MiiDiagTest, AWirelessCardHasALinkWhenItIsConnected)
{
    for (const char* name : {"wlan0", "eth2", "eth20", "mywlan"}) {
        SCOPED_TRACE(name);
        kernel.Add(name).link = 0;
        PutWireless(name, 1);
        EXPECT_TRUE(Net_MiiDiag(name));
        PutWireless(name, 0);
        kernel.At(name).link = 1;
        EXPECT_FALSE(Net_MiiDiag(name));
    }
    EXPECT_EQ(TraceOf({"ioctl"}), Calls{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Net_MiiDiagTest, AWirelessNameOutsideTheTableIsNotConnected)
{
    kernel.Add("wlan0").link = 1;
    EXPECT_FALSE(Net_MiiDiag("wlan0"));
    EXPECT_EQ(TraceOf({"ioctl"}), Calls{});
}

TEST_F(Net_MiiDiagTest, ANameThatMayBeWirelessButIsNotAsksTheDriver)
{
    kernel.Add("eth2").link = 1;
    kernel.Add("mywlan").link = 0;
    EXPECT_TRUE(Net_MiiDiag("eth2"));
    EXPECT_FALSE(Net_MiiDiag("mywlan"));
    EXPECT_EQ(TraceOf({"ioctl"}),
              (Calls{"ioctl ETHTOOL_GLINK eth2", "ioctl ETHTOOL_GLINK mywlan"}));
}

TEST_F(Net_MiiDiagTest, OtherNamesAreNotLookedUpAmongTheWirelessCards)
{
    PutWireless("eth1", 0);
    Eth1().link = 1;
    EXPECT_TRUE(Net_MiiDiag("eth1"));
    EXPECT_EQ(TraceOf({"open", "ioctl"}), (Calls{"ioctl ETHTOOL_GLINK eth1"}));
}

TEST_F(Net_MiiDiagTest, ANullNameIsSilent)
{
    EXPECT_FALSE(Net_MiiDiag(nullptr));
    ExpectSilentAndUntouched();
}

TEST_F(Net_MiiDiagTest, AFailedRequestIsNoLink)
{
    kernel.Add("eth2").link = 1;
    bool up = false;
    FailEachCall([&] { up = Net_MiiDiag("eth2"); },
                 [&](const std::string& failed) {
                     const bool driver =
                         failed == "socket AF_INET" || failed == "ioctl ETHTOOL_GLINK eth2";
                     EXPECT_EQ(up, !driver);
                 });
}

// ==== Link modes

class Net_GetEthtoolInfoTest : public NetworkDriverTest {
protected:
    void SetUp() override
    {
        NetworkDriverTest::SetUp();
        memset(&settings_, 0x5a, sizeof(settings_));
    }

    ethtool_cmd settings_;
};

TEST_F(Net_GetEthtoolInfoTest, TheDriverFillsTheCallersRecord)
{
    ethtool_cmd told = SpeedOf(1000);
    told.cmd = ETHTOOL_GSET;
    told.supported = SUPPORTED_FIBRE | SUPPORTED_1000baseT_Full;
    told.port = PORT_FIBRE;
    Eth1().settings = told;
    EXPECT_TRUE(Net_GetEthtoolInfo("eth1", &settings_));
    EXPECT_EQ(memcmp(&settings_, &told, sizeof(told)), 0);
    EXPECT_EQ(TraceOf({"ioctl", "open"}), (Calls{"ioctl ETHTOOL_GSET eth1"}));
    EXPECT_EQ(reinterpret_cast<ethtool_cmd*>(lastRecord.ifr_data), &settings_);
    ExpectNamedRecord("eth1");
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Net_GetEthtoolInfoTest, AFailureLeavesAllButTheCommandAsItWas)
{
    ethtool_cmd expected = settings_;
    expected.cmd = 1;
    EXPECT_FALSE(Net_GetEthtoolInfo("eth1", &settings_));
    EXPECT_EQ(memcmp(&settings_, &expected, sizeof(expected)), 0);
    EXPECT_EQ(Log(), (LogLines{Refused(SIOCETHTOOL, EOPNOTSUPP, "eth1"),
                               Error("Net_GetEthtoolInfo", "get ETHTOOL_GSET error.[eth1]")}));
}

TEST_F(Net_GetEthtoolInfoTest, NothingToAskIsSilent)
{
    const ethtool_cmd before = settings_;
    EXPECT_FALSE(Net_GetEthtoolInfo(nullptr, &settings_));
    EXPECT_FALSE(Net_GetEthtoolInfo("", &settings_));
    EXPECT_FALSE(Net_GetEthtoolInfo("eth1", nullptr));
    EXPECT_EQ(memcmp(&settings_, &before, sizeof(before)), 0);
    ExpectSilentAndUntouched();
}

TEST_F(Net_GetEthtoolInfoTest, EveryFailedRequestIsAFailure)
{
    Eth1().settings = SpeedOf(1000);
    bool read = false;
    FailEachCall([&] { read = Net_GetEthtoolInfo("eth1", &settings_); },
                 [&](const std::string& failed) { EXPECT_EQ(read, failed == "fcntl F_SETFD"); });
}

// ==== Usage

TEST(Net_GetUsage, TwoCardsAreSetAside)
{
    EXPECT_EQ(Net_GetUsage("eth16"), netDeviceUsageDCFunc);
    EXPECT_EQ(Net_GetUsage("eth17"), netDeviceUsageWeb);
    for (const char* name : {"eth0", "eth160", "eth1", "eth18", "xeth16", "eth16:1", "ETH16", ""}) {
        EXPECT_EQ(Net_GetUsage(name), netDeviceUsageCommon) << name;
    }
    EXPECT_EQ(Net_GetUsage(nullptr), netDeviceUsageMax);
}

}  // namespace
