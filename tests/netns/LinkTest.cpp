// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Base.h"
#include "Network.h"
#include "Network6.h"

#include "Device.h"

#include <cerrno>

#include <linux/sockios.h>
#include <net/if.h>

using namespace device;
using output::Refused;

namespace {

constexpr char kOwnMac[] = "02:11:22:33:44:55";

class AddressTest : public Device {
protected:
    void SetUp() override
    {
        Device::SetUp();
        AddCards(2);
    }

    static Texts ReadBack(const char* card)
    {
        char address[16] = {};
        char mask[16] = {};
        if (!Net_GetIPbyName(card, address, mask)) return {};
        return {address, mask};
    }
};

TEST_F(AddressTest, AddressAndMaskReachTheKernelAndComeBack)
{
    EXPECT_TRUE(Net_SetIPbyName("eth0", "10.1.2.3", "255.255.240.0"));
    EXPECT_EQ(Addresses("eth0"), Texts{"10.1.2.3/20"});
    EXPECT_EQ(Addresses("eth1"), Texts{});
    EXPECT_EQ(ReadBack("eth0"), (Texts{"10.1.2.3", "255.255.240.0"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(AddressTest, ANewAddressTakesThePlaceOfTheOld)
{
    EXPECT_TRUE(Net_SetIPbyName("eth0", "10.1.2.3", "255.0.0.0"));
    EXPECT_TRUE(Net_SetIPbyName("eth0", "192.168.7.8", "255.255.255.0"));
    EXPECT_EQ(Addresses("eth0"), Texts{"192.168.7.8/24"});
}

TEST_F(AddressTest, EveryMaskFromHostToNoneIsTaken)
{
    const std::pair<const char*, const char*> masks[] = {
        {"255.255.255.255", "/32"}, {"255.255.255.252", "/30"}, {"255.128.0.0", "/9"}};
    for (const auto& [mask, prefix] : masks) {
        EXPECT_TRUE(Net_SetIPbyName("eth0", "10.1.2.3", mask));
        EXPECT_EQ(Addresses("eth0"), Texts{std::string("10.1.2.3") + prefix});
    }
}

TEST_F(AddressTest, TheZeroAddressTakesTheAddressAwayWhateverTheMask)
{
    EXPECT_TRUE(Net_SetIPbyName("eth0", "10.1.2.3", "255.0.0.0"));
    EXPECT_TRUE(Net_SetIPbyName("eth0", "0.0.0.0", "no mask"));
    EXPECT_EQ(Addresses("eth0"), Texts{});
    EXPECT_EQ(ReadBack("eth0"), Texts{});
    EXPECT_EQ(Log(), (LogLines{Refused(SIOCGIFADDR, EADDRNOTAVAIL, "eth0"),
                               Warn("Net_GetIPbyName", "get IP from system failed.[eth0]")}));
}

TEST_F(AddressTest, AMaskThatTheKernelRefusesLeavesTheAddressSet)
{
    EXPECT_FALSE(Net_SetIPbyName("eth0", "10.1.2.3", "255.0.255.0"));
    EXPECT_EQ(Addresses("eth0"), Texts{"10.1.2.3/8"});
    EXPECT_EQ(Log(), (LogLines{Refused(SIOCSIFNETMASK, EINVAL, "eth0"),
                               Error("Net_SetIPbyName", "set eth0 mask 255.0.255.0 error")}));
}

TEST_F(AddressTest, AMalformedAddressChangesNothing)
{
    EXPECT_TRUE(Net_SetIPbyName("eth0", "10.1.2.3", "255.0.0.0"));
    EXPECT_FALSE(Net_SetIPbyName("eth0", "10.1.2", "255.0.0.0"));
    EXPECT_EQ(Addresses("eth0"), Texts{"10.1.2.3/8"});
}

TEST_F(AddressTest, ACardThatIsGoneIsAnErrorWithTheKernelsReason)
{
    EXPECT_FALSE(Net_SetIPbyName("eth7", "10.1.2.3", "255.0.0.0"));
    EXPECT_EQ(Log(), (LogLines{Refused(SIOCSIFADDR, ENODEV, "eth7"),
                               Error("Net_SetIPbyName", "set eth7 ip 10.1.2.3 error")}));
}

TEST_F(AddressTest, AnAliasHasAnAddressOfItsOwn)
{
    EXPECT_TRUE(Net_SetIPbyName("eth0", "10.1.2.3", "255.0.0.0"));
    EXPECT_TRUE(Net_SetIPbyName("eth0:1", "172.16.0.1", "255.255.0.0"));
    EXPECT_EQ(Addresses("eth0"), (Texts{"10.1.2.3/8", "172.16.0.1/16"}));
    EXPECT_EQ(ReadBack("eth0"), (Texts{"10.1.2.3", "255.0.0.0"}));
    EXPECT_EQ(ReadBack("eth0:1"), (Texts{"172.16.0.1", "255.255.0.0"}));
}

class HardwareAddressTest : public AddressTest {};

TEST_F(HardwareAddressTest, ReachesTheKernelAndComesBackInLowerCase)
{
    EXPECT_TRUE(Net_SetMacbyName("eth0", "02:AB:cd:00:01:FF"));
    EXPECT_EQ(Mac("eth0"), "02:ab:cd:00:01:ff");
    char mac[18] = {};
    EXPECT_TRUE(Net_GetMacbyName("eth0", mac));
    EXPECT_STREQ(mac, "02:ab:cd:00:01:ff");
    EXPECT_TRUE(IsUp("eth0"));
}

TEST_F(HardwareAddressTest, TheCardIsTakenDownSoItsRoutesAreGone)
{
    Must("ip addr add 10.0.0.2/24 dev eth0 && ip link set eth0 up");
    Must("ip route add 172.16.0.0/16 dev eth0");
    EXPECT_TRUE(Net_SetMacbyName("eth0", kOwnMac));
    EXPECT_EQ(Routes(), Texts{"10.0.0.0/24 dev eth0"});
    EXPECT_EQ(Addresses("eth0"), Texts{"10.0.0.2/24"});
}

TEST_F(HardwareAddressTest, OneThatTheKernelRefusesLeavesTheOldOneAndTheCardUp)
{
    Must(std::string("ip link set eth0 address ") + kOwnMac);
    EXPECT_FALSE(Net_SetMacbyName("eth0", "01:00:5e:00:00:01"));  // a group address
    EXPECT_EQ(Mac("eth0"), kOwnMac);
    EXPECT_TRUE(IsUp("eth0"));
    EXPECT_EQ(Log(), (LogLines{Warn("Net_SetMacbyName", "mac addr will be modifyed![eth0]"),
                               Refused(SIOCSIFHWADDR, EADDRNOTAVAIL, "eth0"),
                               Error("Net_SetMacbyName",
                                     "set mac failed.[eth0:Cannot assign requested address]")}));
}

TEST_F(HardwareAddressTest, AMalformedOneDoesNotTouchTheCard)
{
    Must("ip link set eth0 up && ip addr add 10.0.0.2/24 dev eth0");
    Must("ip route add 172.16.0.0/16 dev eth0");
    EXPECT_FALSE(Net_SetMacbyName("eth0", "02:00:00:00:00"));
    EXPECT_EQ(Routes(), (Texts{"10.0.0.0/24 dev eth0", "172.16.0.0/16 dev eth0"}));
}

class MtuTest : public AddressTest {};

TEST_F(MtuTest, ReachesARunningCardWithoutTakingItDown)
{
    Must("ip link set eth0 up && ip addr add 10.0.0.2/24 dev eth0");
    Must("ip route add 172.16.0.0/16 dev eth0");
    EXPECT_TRUE(Net_SetMtubyName("eth0", 1400));
    EXPECT_EQ(Mtu("eth0"), 1400);
    EXPECT_EQ(Mtu("eth1"), 1500);
    int mtu = 0;
    EXPECT_TRUE(Net_GetMtubyName("eth0", &mtu));
    EXPECT_EQ(mtu, 1400);
    EXPECT_EQ(Routes(), (Texts{"10.0.0.0/24 dev eth0", "172.16.0.0/16 dev eth0"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(MtuTest, OneThatTheKernelRefusesTwiceIsSaidAndTheCardEndsUp)
{
    Must("ip link set eth0 up");
    EXPECT_FALSE(Net_SetMtubyName("eth0", 70000));
    EXPECT_EQ(Mtu("eth0"), 1500);
    EXPECT_TRUE(IsUp("eth0"));
    EXPECT_EQ(Log(),
              (LogLines{Refused(SIOCSIFMTU, EINVAL, "eth0"), Refused(SIOCSIFMTU, EINVAL, "eth0"),
                        Error("Net_SetMtubyName", "set MTU failed.[eth0,70000]")}));
}

class DriverTest : public AddressTest {};

TEST_F(DriverTest, SpeedIsWhatTheDriverSays)
{
    Must("ip link set eth0 up");  // /sys tells it of a running card alone
    int speed = 0;
    EXPECT_TRUE(Net_GetLinkSpeed("eth0", &speed));
    EXPECT_EQ(std::to_string(speed) + "\n", Get("/sys/class/net/eth0/speed"));
}

TEST_F(DriverTest, LinkIsWhatTheDriverSays)
{
    EXPECT_FALSE(Net_MiiDiag("eth0"));
    Must("ip link set eth0 up");
    EXPECT_TRUE(Net_MiiDiag("eth0"));
    Must("ip -n peer link set eth0 down");
    EXPECT_FALSE(Net_MiiDiag("eth0"));
}

TEST_F(DriverTest, ADriverWithoutSpeedFailsWithItsReason)
{
    int speed = 7;
    EXPECT_FALSE(Net_GetLinkSpeed("lo", &speed));
    EXPECT_EQ(speed, 7);
    EXPECT_EQ(Log(), (LogLines{Refused(SIOCETHTOOL, EOPNOTSUPP, "lo"),
                               Error("Net_GetLinkSpeed", "ETHTOOL_GSET get failed.[lo]")}));
}

TEST_F(DriverTest, CountersComeWithTheSpeed)
{
    Must("ip link set eth1 up");
    NetDataStat stat{};
    EXPECT_TRUE(Net_GetDataStat("eth1", &stat));
    EXPECT_EQ(std::to_string(stat.interfaceSpeed) + "\n", Get("/sys/class/net/eth1/speed"));
    EXPECT_FALSE(Net_GetDataStat("lo", &stat));
    EXPECT_EQ(LogOf("Net_GetDataStat"), LogLines{Error("Net_GetDataStat", "can not find lo.")});
}

class Address6Test : public AddressTest {
protected:
    static std::string ReadBack6(const char* card)
    {
        char address[64] = {};
        char prefix[8] = {};
        if (!Net6_GetIPv6byName(card, address, sizeof(address), prefix, sizeof(prefix))) return "";
        return std::string(address) + "/" + prefix;
    }
};

TEST_F(Address6Test, ReachesTheKernelBringsTheCardUpAndComesBackShortened)
{
    EXPECT_TRUE(Net6_SetIPv6byName("eth0", "2001:0db8:0:0::0010", "48"));
    EXPECT_EQ(Addresses6("eth0"), Texts{"2001:db8::10/48"});
    EXPECT_TRUE(IsUp("eth0"));
    EXPECT_EQ(ReadBack6("eth0"), "2001:db8::10/48");
    EXPECT_EQ(ReadBack6("eth1"), "");
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Address6Test, WithoutAPrefixItIsSixtyFour)
{
    EXPECT_TRUE(Net6_SetIPv6byName("eth0", "2001:db8::10", nullptr));
    EXPECT_EQ(Addresses6("eth0"), Texts{"2001:db8::10/64"});
}

TEST_F(Address6Test, TheFirstListedOfTwoIsTheOneReported)
{
    EXPECT_TRUE(Net6_SetIPv6byName("eth0", "2001:db8::1", "64"));
    EXPECT_TRUE(Net6_SetIPv6byName("eth0", "2001:db8::2", "64"));
    EXPECT_EQ(Addresses6("eth0").size(), 2U);
    const std::string first =
        Must("awk '$4 == \"00\" && $6 == \"eth0\" { print $1; exit }' /proc/net/if_inet6");
    const std::string reported = ReadBack6("eth0");
    EXPECT_EQ(reported, std::string("2001:db8::") + first[31] + "/64");
}

TEST_F(Address6Test, ALinkLocalAddressAloneIsNoAddress)
{
    Must("ip link set eth0 up");
    const std::string local = AwaitLinkLocal("eth0");
    EXPECT_EQ(ReadBack6("eth0"), "");
    char text[64] = {};
    EXPECT_TRUE(Net6_GetLinkLocalAddressIpv6("eth0", text, sizeof(text)));
    EXPECT_EQ(text, local);
}

TEST_F(Address6Test, TheLinkLocalAddressOfAHardwareAddressIsTheKernelsOwn)
{
    Must("echo 0 > /proc/sys/net/ipv6/conf/eth0/addr_gen_mode");
    Must(std::string("ip link set eth0 up address ") + kOwnMac);
    char derived[64] = {};
    EXPECT_TRUE(Net6_GetLinkLocalFromMac(derived, sizeof(derived), kOwnMac));
    EXPECT_EQ(std::string(derived) + "/64", AwaitLinkLocal("eth0"));
}

TEST_F(Address6Test, DeletingTakesTheCurrentOneOrTheOneGiven)
{
    EXPECT_TRUE(Net6_SetIPv6byName("eth0", "2001:db8::1", "64"));
    EXPECT_TRUE(Net6_DelIPAddressIpv6("eth0", nullptr, nullptr));
    EXPECT_EQ(Addresses6("eth0"), Texts{});

    Must("ip -6 addr add 2001:db8::1/64 dev eth0; ip -6 addr add 2001:db8:1::2/48 dev eth0");
    const bool firstIsShort = ReadBack6("eth0") == "2001:db8::1/64";
    const char* other = firstIsShort ? "2001:db8:1::2" : "2001:db8::1";
    EXPECT_TRUE(Net6_DelIPAddressIpv6("eth0", other, firstIsShort ? "48" : "64"));
    EXPECT_EQ(Addresses6("eth0"), Texts{ReadBack6("eth0")});
}

TEST_F(Address6Test, OneThatIsNotThereIsRefusedByTheKernel)
{
    EXPECT_TRUE(Net6_SetIPv6byName("eth0", "2001:db8::1", "64"));
    EXPECT_FALSE(Net6_DelIPAddressIpv6("eth0", "2001:db8::2", "64"));
    EXPECT_EQ(Addresses6("eth0"), Texts{"2001:db8::1/64"});
    EXPECT_EQ(LogOf("Net6_DelIPAddressIpv6").back(),
              Error("Net6_DelIPAddressIpv6", "del ip[2001:db8::2/64] failed:error Cannot assign "
                                             "requested address"));
}

TEST_F(Address6Test, IndexIsTheKernels)
{
    EXPECT_EQ(Net6_GetInterfaceIndex("eth1"), static_cast<int>(if_nametoindex("eth1")));
    EXPECT_EQ(Net6_GetInterfaceIndex("eth9"), -1);
}

}  // namespace
