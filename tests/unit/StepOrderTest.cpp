// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The order of an operation's steps with what it says between them.

#include "InterfaceWorld.h"
#include "Steps.h"

#include "Bridge.h"
#include "CommonApi.h"
#include "Network.h"
#include "Network6.h"
#include "Route.h"

#include <net/if.h>

using namespace fake;

namespace {

class StepOrderTest : public InterfaceWorld {
protected:
    /// A bridge of no ports.
    static void SetBridge(const std::string& name)
    {
        MakeFolder("/sys/class/net/" + name + "/brif");
        Put("/sys/class/net/" + name + "/carrier", "1\n");
    }
};

TEST_F(StepOrderTest, AnUnknownCardsMtuAsksNothingButTheList)
{
    kernel.routes = {{"0.0.0.0", "10.0.0.1", "0.0.0.0", "eth1"}};
    EXPECT_FALSE(NetSetMtubyName("eth7", -1));
    EXPECT_EQ(TraceOf({"open /proc/net/route", "ioctl SIOC"}), Texts{});
    EXPECT_EQ(Log(), (LogLines{Info("FindWordInLine", "can not find eth7 in eth0,eth1,wlan0,"),
                               Error("CheckEthExist", "can not find eth7 in eth0,eth1,wlan0,.")}));
}

TEST_F(StepOrderTest, ANegativeMtuIsToldBeforeTheDefaultCardIsAsked)
{
    kernel.routes = {{"0.0.0.0", "10.0.0.1", "0.0.0.0", "eth1"}};
    EXPECT_TRUE(NetSetMtubyName("eth0", -5));
    EXPECT_EQ(StepsOf({"Warn |NetSetMtubyName", "open /proc/net/route", "ioctl SIOCSIFMTU"}),
              (Texts{"Warn |NetSetMtubyName| mtu can not be set to -5",
                     "open /proc/net/route O_RDONLY", "ioctl SIOCSIFMTU eth0 1500 on AF_INET"}));
}

TEST_F(StepOrderTest, ARefusedHardwareAddressIsToldBeforeTheCardComesUpAgain)
{
    Fail("ioctl SIOCSIFHWADDR", EBUSY);
    EXPECT_FALSE(Net_SetMacbyName("eth0", "02:13:57:9b:df:24"));
    EXPECT_EQ(
        StepsOf({"ioctl", "Error", "Warn"}),
        (Texts{"Warn |Net_SetMacbyName|mac addr will be modifyed![eth0]",
               "ioctl SIOCGIFFLAGS eth0 on AF_INET", "ioctl SIOCSIFFLAGS eth0 0x0 on AF_INET",
               "ioctl SIOCSIFHWADDR eth0 02:13:57:9b:df:24 family 1 on AF_INET",
               "Error|NetIOCtrl|cmd 35108 error.[Device or resource busy] eth0 ",
               "Error|Net_SetMacbyName|set mac failed.[eth0:Device or resource busy]",
               "ioctl SIOCGIFFLAGS eth0 on AF_INET", "ioctl SIOCSIFFLAGS eth0 0x1 on AF_INET"}));
}

TEST_F(StepOrderTest, AnMtuBeyondSixteenBitsGoesToTheKernel)
{
    EXPECT_TRUE(Net_SetMtubyName("eth0", 70000));
    EXPECT_EQ(kernel.At("eth0").mtu, 70000);
}

TEST_F(StepOrderTest, ANegativeMtuGoesToTheKernel)
{
    EXPECT_FALSE(Net_SetMtubyName("eth0", -5));
    EXPECT_EQ(TimelineOf({"ioctl SIOCSIFMTU", "Error|Net_Set"}),
              (Texts{"ioctl SIOCSIFMTU eth0 -5 on AF_INET", "ioctl SIOCSIFMTU eth0 -5 on AF_INET",
                     "Error|Net_SetMtubyName|set MTU failed.[eth0,-5]"}));
}

TEST_F(StepOrderTest, AnAddressThatIsThereIsNotAskedForWithABadPrefix)
{
    kernel.At("eth0").addresses6 = {{"2001:db8::2", 129, 0}};
    EXPECT_FALSE(NetSetIPv6byName("eth0", "2001:db8::2", "129"));
    EXPECT_EQ(TraceOf({"open /proc/net/if_inet6"}), Texts{});
}

TEST_F(StepOrderTest, AnEmptyPrefixIsNoPrefixAndNotTheKernels)
{
    kernel.At("eth0").addresses6 = {{"2001:db8::2", 56, 0}, {"2001:db8::7", 0, 0}};
    EXPECT_TRUE(Net6_DelIPAddressIpv6("eth0", "2001:db8::7", ""));
    ASSERT_EQ(kernel.At("eth0").addresses6.size(), 1U);
    EXPECT_EQ(kernel.At("eth0").addresses6[0].text, "2001:db8::2");
}

TEST_F(StepOrderTest, AnInterfaceOfIndexZeroIsOne)
{
    // The model leaves the record of the request as it was for index 0, which is zeroed.
    kernel.At("eth0").index = 0;
    EXPECT_EQ(Net6_GetInterfaceIndex("eth0"), 0);
    EXPECT_TRUE(Net6_SetIPv6byName("eth0", "2001:db8::2", "64"));
    EXPECT_EQ(TimelineOf({"ioctl SIOCSIFADDR"}),
              Texts{"ioctl SIOCSIFADDR 2001:db8::2/64 index 0 on AF_INET6"});
}

TEST_F(StepOrderTest, TheCommandsOfALongBridgeNameAreCutAt255Characters)
{
    const std::string bridge = "br" + std::string(238, '0');
    Members cards({"eth0"});
    (void)Bridge_Bridge(bridge.c_str(), cards.Get(), 1);
    const std::string whole = "ifconfig " + bridge + " hw ether " + kernel.At("eth0").mac;
    ASSERT_GT(whole.size(), 255U);
    ASSERT_GE(Commands().size(), 3U);
    EXPECT_EQ(Commands()[2], whole.substr(0, 255));
    EXPECT_EQ(LogOf("Bridge_Bridge")[2].text, whole.substr(0, 255) + "\n");
}

TEST_F(StepOrderTest, ABridgeIsToldByItsPortsAndThenByItsCarrier)
{
    SetBridge("br0");
    EXPECT_TRUE(Bridge_IsBridgeExist("br0"));
    EXPECT_EQ(TraceOf({"stat", "open"}),
              (Texts{"stat /sys/class/net/br0/brif/", "open /sys/class/net/br0/carrier O_RDONLY"}));
    ClearTrace();
    EXPECT_FALSE(Bridge_IsBridgeExist("eth0"));
    EXPECT_EQ(TraceOf({"stat", "open"}), Texts{"stat /sys/class/net/eth0/brif/"});
}

TEST_F(StepOrderTest, AnAddressFromTheBackupIsToldBeforeItIsSaved)
{
    Put(kFile0, "MTU = 1500\n");
    KeepInBackup("10.0.0.3", "255.0.0.0", nullptr);
    char address[16];
    char mask[16];
    EXPECT_TRUE(NetGetIPbyName("eth0", address, mask));
    EXPECT_EQ(
        StepsOf({"Warn |NetGet", "write", "ioctl PDC"}),
        (Texts{"Warn |NetGetIPbyName|get eth0's ip mask from config failed. try sys.",
               "Warn |NetGetIPbyName|get eth0's ip mask from sys failed. try cmos or rtc.",
               "ioctl PDC_RTC_READSRAM on /dev/pdcRtc", "ioctl PDC_RTC_READSRAM on /dev/pdcRtc",
               "Warn |NetGetIPbyName|restore ip mask from backup to configfile ", "write network",
               "write network"}));
}

TEST_F(StepOrderTest, ATableThatCannotBeOpenedIsToldWhenItsLockIsFree)
{
    IPv4Route row;
    int count = 1;
    FailAll("open /proc/net/route", EMFILE);
    EXPECT_FALSE(Route_GetIPv4Route(&row, &count));
    const Texts steps = StepsOf({"mutex", "open", "Error"});
    ASSERT_EQ(steps.size(), 4U);
    EXPECT_EQ(steps[0].substr(0, 10), "mutex lock");
    EXPECT_EQ(steps[1], "open /proc/net/route O_RDONLY");
    EXPECT_EQ(steps[2].substr(0, 12), "mutex unlock");
    EXPECT_EQ(steps[3], "Error|Route_GetIPv4Route|Can not open /proc/net/route");
}

}  // namespace
