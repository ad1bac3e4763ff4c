// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Names and texts that fill their fields, or are a character longer, wherever a field is compared,
// copied or cut. A new field is one test of a few lines.

#include "InterfaceWorld.h"
#include "Steps.h"

#include "Base.h"
#include "Bond.h"
#include "Bridge.h"
#include "CommonApi.h"
#include "Config.h"
#include "Network6.h"
#include "Route.h"

#include <cstring>

using namespace fake;

namespace {

const std::string kName15 = "eth0abcdefghijk";
const std::string kName16 = kName15 + "l";

class NameFieldTest : public InterfaceWorld {};

// ---- rows of the route tables

TEST_F(NameFieldTest, ARouteIsOverTheWholeNameOfItsCard)
{
    kernel.routes = {{"10.1.0.0", "0.0.0.0", "255.255.0.0", kName15}};
    EXPECT_TRUE(Route_IsExistInSys("10.1.0.0", "0.0.0.0", "255.255.0.0", kName15.c_str()));
    for (const std::string& other : {kName16, kName15.substr(0, 14)}) {
        EXPECT_FALSE(Route_IsExistInSys("10.1.0.0", "0.0.0.0", "255.255.0.0", other.c_str()));
    }
}

TEST_F(NameFieldTest, ANameBeyondTheFieldOfARowIsCutThereAndEndsTheRow)
{
    Put("/proc/net/route", "Iface\tDestination\n" + kName16 +
                               "\t0000010A\t00000000\t0001\t0\t0\t0\t0000FFFF\t0\t0\t0\n");
    IPv4Route row;
    memset(&row, '#', sizeof(row));
    const IPv4Route before = row;
    int count = 1;
    EXPECT_TRUE(Route_GetIPv4Route(&row, &count));
    EXPECT_EQ(count, 1);
    EXPECT_EQ(std::string(row.viaDev, 16), kName15 + std::string(1, '\0'));
    EXPECT_EQ(row.dst, before.dst);
    EXPECT_EQ(row.mask, before.mask);
}

TEST_F(NameFieldTest, ANameThatFillsTheFieldOfARowIsWhole)
{
    kernel.routes = {{"10.1.0.0", "0.0.0.0", "255.255.0.0", kName15}};
    IPv4Route row;
    memset(&row, '#', sizeof(row));
    int count = 1;
    EXPECT_TRUE(Route_GetIPv4Route(&row, &count));
    EXPECT_STREQ(row.viaDev, kName15.c_str());
    EXPECT_EQ(row.dst, 0x0000010aU);
}

TEST_F(NameFieldTest, AnIPv6RouteIsOverTheWholeNameOfItsCard)
{
    kernel.Add(kName15);
    kernel.routes6 = {{"2001:db8:1::", 48, "fe80::1", kName15}};
    EXPECT_TRUE(RouteAddIPv6("2001:db8:1::", "fe80::1", "48", kName15.c_str()));
    EXPECT_EQ(TraceOf({"ioctl SIOCADDRT"}), Texts{});
    (void)RouteAddIPv6("2001:db8:1::", "fe80::1", "48", kName16.c_str());
    EXPECT_EQ(TraceOf({"ioctl SIOCADDRT"}).size(), 1U);
}

TEST_F(NameFieldTest, TheDefaultCardIsLookedForInTenRows)
{
    for (const int before : {8, 9, 10}) {
        kernel.routes.clear();
        for (int i = 0; i < before; ++i) {
            kernel.routes.push_back(
                {"10." + std::to_string(i) + ".0.0", "0.0.0.0", "255.255.0.0", "eth0"});
        }
        kernel.routes.push_back({"0.0.0.0", "10.0.0.1", "0.0.0.0", "eth1"});
        char card[16] = "";
        EXPECT_EQ(NetGetDefEth(card, sizeof(card)), before < 10) << before;
        EXPECT_STREQ(card, before < 10 ? "eth1" : "") << before;
    }
}

// ---- rows of other tables

TEST_F(NameFieldTest, AnAddressIsThatOfTheWholeName)
{
    kernel.Add(kName15).addresses6 = {{"2001:db8::7", 64, 0}};
    char address[46];
    char prefix[8];
    EXPECT_TRUE(Net6_GetIPv6byName(kName15.c_str(), address, 46, prefix, 8));
    for (const std::string& other : {kName16, kName15.substr(0, 14)}) {
        EXPECT_FALSE(Net6_GetIPv6byName(other.c_str(), address, 46, prefix, 8)) << other;
    }
}

// ---- paths and commands of 256 bytes, paths of settings of 64

std::string Attribute(const std::string& card, const std::string& name)
{
    return "/sys/class/net/" + card + "/" + name;
}

TEST_F(NameFieldTest, ThePathsOfALongBondNameAreCutAt255Characters)
{
    const std::string bond = "bond" + std::string(240, '0');
    char card[16];
    EXPECT_FALSE(Bond_GetActiveSlave(bond.c_str(), card, sizeof(card)));
    const std::string path = Attribute(bond, "bonding/active_slave").substr(0, 255);
    EXPECT_EQ(Log().back().text, "open " + path + " failed[" + strerror(ENOENT) + "]");
}

TEST_F(NameFieldTest, TheCommandsOfALongBondNameAreCutAt255Characters)
{
    const std::string bond = "bond" + std::string(246, '0');
    kernel.Add(bond.substr(0, 15));
    const char* nobody[] = {""};
    EXPECT_TRUE(Bond_Bond(bond.c_str(), nobody, 0));
    EXPECT_EQ(Commands(), Texts{("ifenslave " + bond).substr(0, 255)});
}

TEST_F(NameFieldTest, ThePathsOfALongBridgeNameAreCutAt255Characters)
{
    std::string bridge = "br" + std::string(240, '0');
    vorlix::MemberTable members;
    EXPECT_FALSE(members.Read(Bridge_GetBridgeMembers, bridge.c_str()));
    EXPECT_EQ(Log().back().text, "Open " + Attribute(bridge, "brif/").substr(0, 255) + " failed\n");

    bridge = "br" + std::string(231, '0');
    MakeFolder(Attribute(bridge, "brif"));
    EXPECT_FALSE(Bridge_IsBridgeExist(bridge.c_str()));
    EXPECT_EQ(TraceOf({"open"}).back(),
              "open " + Attribute(bridge, "carrie") + " O_RDONLY");  // the last letter is cut off
}

TEST_F(NameFieldTest, ThePathOfASettingFileIsCutAt63Characters)
{
    const std::string card = "bond" + std::string(37, '0');
    const std::string path = CardFile(card).substr(0, 63);
    ASSERT_EQ(CardFile(card).size(), 64U);
    Put(path, Settings({"HOSTIP = 10.0.0.2", "SUBMASK = 255.0.0.0", "BONDMEMBERS = eth1"}));
    char address[16];
    char mask[16];
    EXPECT_TRUE(GetIPByConfig(card.c_str(), address, mask));
    EXPECT_STREQ(address, "10.0.0.2");
    bool isTrunk = false;
    std::string name = card;
    EXPECT_TRUE(IsTrunkBondConfig(name.data(), &isTrunk));
}

}  // namespace
