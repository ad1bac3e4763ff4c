// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "CommonApi.h"

#include "Device.h"

#include <cerrno>
#include <cstring>

using namespace device;

namespace {

const std::string kFile = std::string(kConfig) + "/networkip6";
const std::string kNone = Lines({"HOSTIP = 0:0:0::0", "SUBMASK = 64"});

std::string Saved(const std::string& address, const std::string& prefix)
{
    return Lines({"HOSTIP = " + address, "SUBMASK = " + prefix});
}

/// "address/prefix" as a getter tells it; "(none)" when it fails.
std::string Told(bool (*get)(const char*, char*, int, char*, int))
{
    char address[64] = {};
    char prefix[8] = {};
    if (!get("eth0", address, sizeof(address), prefix, sizeof(prefix))) return "(none)";
    return std::string(address) + "/" + prefix;
}

class IPv6Test : public Device {
protected:
    void SetUp() override
    {
        Device::SetUp();
        AddCards(2);
    }
};

TEST_F(IPv6Test, AnAddressReachesTheKernelAndTheFile)
{
    EXPECT_TRUE(NetSetIPv6byName("eth0", "2001:db8::10", "48"));
    EXPECT_EQ(Addresses6("eth0"), Texts{"2001:db8::10/48"});
    EXPECT_EQ(Addresses6("eth1"), Texts{});
    EXPECT_TRUE(IsUp("eth0"));
    EXPECT_EQ(Get(kFile), Saved("2001:db8::10", "48"));
    EXPECT_EQ(Told(NetGetIPv6byName), "2001:db8::10/48");
    EXPECT_EQ(Told(NetGetSysIPv6byName), "2001:db8::10/48");
}

TEST_F(IPv6Test, ANewAddressTakesThePlaceOfTheOld)
{
    EXPECT_TRUE(NetSetIPv6byName("eth0", "2001:db8::10", "48"));
    EXPECT_TRUE(NetSetIPv6byName("eth0", "2001:db8:1::11", "128"));
    EXPECT_EQ(Addresses6("eth0"), Texts{"2001:db8:1::11/128"});
    EXPECT_EQ(Get(kFile), Saved("2001:db8:1::11", "128"));
}

TEST_F(IPv6Test, AnotherPrefixReplacesTheSameAddress)
{
    EXPECT_TRUE(NetSetIPv6byName("eth0", "2001:db8::10", "48"));
    EXPECT_TRUE(NetSetIPv6byName("eth0", "2001:db8::10", "64"));
    EXPECT_EQ(Addresses6("eth0"), Texts{"2001:db8::10/64"});
}

TEST_F(IPv6Test, TheSameAddressAgainLeavesTheFileAlone)
{
    EXPECT_TRUE(NetSetIPv6byName("eth0", "2001:db8::10", "48"));
    Put(kFile, Saved("2001:db8::99", "56"));
    EXPECT_TRUE(NetSetIPv6byName("eth0", "2001:DB8::10", "48"));
    EXPECT_EQ(Addresses6("eth0"), Texts{"2001:db8::10/48"});
    EXPECT_EQ(Get(kFile), Saved("2001:db8::99", "56"));
}

TEST_F(IPv6Test, ARefusedAddressLosesTheOldOneAndKeepsTheFile)
{
    EXPECT_TRUE(NetSetIPv6byName("eth0", "2001:db8::10", "48"));
    EXPECT_FALSE(NetSetIPv6byName("eth0", "ff02::1", "64"));  // no card may have a group's
    EXPECT_EQ(Addresses6("eth0"), Texts{});
    EXPECT_EQ(Get(kFile), Saved("2001:db8::10", "48"));
    EXPECT_EQ(LogOf("Net6_SetIPv6byName"),
              LogLines{Error("Net6_SetIPv6byName", "Set ip failed eth0:ff02::1")});
    EXPECT_EQ(Told(NetGetSysIPv6byName), "(none)");
    EXPECT_EQ(Told(NetGetIPv6byName), "2001:db8::10/48");
}

TEST_F(IPv6Test, AnEmptyAddressTakesItAwayInBothStores)
{
    EXPECT_TRUE(NetSetIPv6byName("eth0", "2001:db8::10", "48"));
    EXPECT_TRUE(NetSetIPv6byName("eth0", "", "48"));
    EXPECT_EQ(Addresses6("eth0"), Texts{});
    EXPECT_EQ(Get(kFile), kNone);
    EXPECT_EQ(Told(NetGetIPv6byName), "0:0:0::0/64");
}

TEST_F(IPv6Test, DeletingTakesTheAddressGivenWithItsPrefix)
{
    Must("ip -6 addr add 2001:db8::1/64 dev eth0; ip -6 addr add 2001:db8:1::2/48 dev eth0");
    Put(kFile, Saved("2001:db8::1", "64"));
    const bool firstIsShort = Told(NetGetSysIPv6byName) == "2001:db8::1/64";
    char other[32];
    strcpy(other, firstIsShort ? "2001:db8:1::2/48" : "2001:db8::1/64");
    EXPECT_TRUE(NetDelIPAddressIpv6("eth0", other));
    EXPECT_STREQ(other, firstIsShort ? "2001:db8:1::2" : "2001:db8::1");
    EXPECT_EQ(Addresses6("eth0"), Texts{firstIsShort ? "2001:db8::1/64" : "2001:db8:1::2/48"});
    EXPECT_EQ(Get(kFile), kNone);
}

TEST_F(IPv6Test, DeletingOneThatIsNotThereChangesNothing)
{
    EXPECT_TRUE(NetSetIPv6byName("eth0", "2001:db8::10", "64"));
    EXPECT_FALSE(NetDelIPAddressIpv6("eth0", "2001:db8::77"));
    EXPECT_EQ(Addresses6("eth0"), Texts{"2001:db8::10/64"});
    EXPECT_EQ(Get(kFile), Saved("2001:db8::10", "64"));
}

TEST_F(IPv6Test, DeletingFromACardWithoutAnAddressClearsItsFile)
{
    Put(kFile, Saved("2001:db8::10", "64"));
    EXPECT_TRUE(NetDelIPAddressIpv6("eth0", "2001:db8::10"));
    EXPECT_EQ(Get(kFile), kNone);
}

TEST_F(IPv6Test, ALinkLocalAddressIsTheKernelsOrTheHardwareAddresss)
{
    Must("echo 0 > /proc/sys/net/ipv6/conf/eth0/addr_gen_mode");
    char derived[64] = {};
    EXPECT_TRUE(NetGetLinkLocalAddressIpv6("eth0", derived, sizeof(derived)));
    Must("ip link set eth0 up");
    const std::string local = AwaitLinkLocal("eth0");
    EXPECT_EQ(std::string(derived) + "/64", local);
    char text[64] = {};
    EXPECT_TRUE(NetGetLinkLocalAddressIpv6("eth0", text, sizeof(text)));
    EXPECT_EQ(text, local);
    // It does not stand in the way of an address, nor is it taken away with one.
    EXPECT_TRUE(NetSetIPv6byName("eth0", "2001:db8::10", "64"));
    EXPECT_TRUE(NetDelIPAddressIpv6("eth0", "2001:db8::10"));
    EXPECT_EQ(AwaitLinkLocal("eth0"), local);
}

TEST_F(IPv6Test, AGatewayIsSavedAndBecomesARouteOnlyWhenApplied)
{
    EXPECT_TRUE(NetSetIPv6byName("eth0", "2001:db8::10", "64"));
    EXPECT_TRUE(NetSetGatewayIPv6byName("eth0", "2001:db8::1"));
    EXPECT_EQ(Get(kFile), Saved("2001:db8::10", "64") + "GATEWAYIP = 2001:db8::1\n");
    EXPECT_EQ(Routes6(), Texts{"2001:db8::/64 dev eth0"});
    char gateway[64] = {};
    EXPECT_TRUE(NetGetGatewayIPv6byName("eth0", gateway, sizeof(gateway)));
    EXPECT_STREQ(gateway, "2001:db8::1");
    EXPECT_TRUE(RouteAddDefIPv6("eth0"));
    EXPECT_EQ(Routes6(), (Texts{"2001:db8::/64 dev eth0", "default via 2001:db8::1 dev eth0"}));
}

TEST_F(IPv6Test, AddressesOfSeveralCardsStandBesideEachOther)
{
    EXPECT_TRUE(NetSetIPv6byName("eth0", "2001:db8::10", "64"));
    EXPECT_TRUE(NetSetIPv6byName("eth1", "2001:db8:1::10", "64"));
    EXPECT_TRUE(NetDelIPAddressIpv6("eth0", "2001:db8::10"));
    EXPECT_EQ(Addresses6("eth0"), Texts{});
    EXPECT_EQ(Addresses6("eth1"), Texts{"2001:db8:1::10/64"});
    EXPECT_EQ(Get(std::string(kConfig) + "/networkip61"), Saved("2001:db8:1::10", "64"));
}

TEST_F(IPv6Test, AFullFlashCostsTheFileAlone)
{
    Put(kFile, Saved("2001:db8::10", "64"));
    SettingsReadOnly();
    EXPECT_TRUE(NetSetIPv6byName("eth0", "2001:db8::11", "64"));
    EXPECT_EQ(Addresses6("eth0"), Texts{"2001:db8::11/64"});
    EXPECT_EQ(Get(kFile), Saved("2001:db8::10", "64"));
    EXPECT_FALSE(NetSetIPv6byName("eth0", "", "64"));
    EXPECT_EQ(Addresses6("eth0"), Texts{});
}

}  // namespace
