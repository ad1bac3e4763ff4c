// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The saved settings of a card: what is true of all of them, its flags and its names.

#include "Config.h"

#include "CardSettings.h"
#include "SettingRows.h"

#include <climits>

using namespace fake;

namespace {

constexpr char kDefaultFile[] = "/mnt/mtd/Config/network";

std::string ReadFlag(bool (*get)(const char*, bool*), const char* card, bool before)
{
    bool flag = before;
    const bool result = get(card, &flag);
    return Shown(result, flag ? 1 : 0);
}

std::string ReadName(bool (*get)(const char*, char*, int), const char* card, int len = 16)
{
    Text name;
    const bool result = get(card, name, len);
    return Shown(result, {name.bytes});
}

// ---- what all settings have in common

INSTANTIATE_TEST_SUITE_P(
    OfACard, EverySavedSettingTest,
    testing::Values(
        SavedSetting{"Address",
                     [] { return SetIPByConfig("eth1", "10.0.0.2", "255.0.0.0"); },
                     kFile,
                     {"HOSTIP = 10.0.0.2", "SUBMASK = 255.0.0.0"}},
        SavedSetting{"AddressOfEth0",
                     [] { return SetIPByConfig("eth0", "10.0.0.2", "255.0.0.0"); },
                     kDefaultFile,
                     {"HOSTIP = 10.0.0.2", "SUBMASK = 255.0.0.0"}},
        SavedSetting{"AddressOfABond",
                     [] { return SetIPByConfig("bond0", "10.0.0.2", "255.0.0.0"); },
                     "/mnt/mtd/Config/networkbond0",
                     {"HOSTIP = 10.0.0.2", "SUBMASK = 255.0.0.0"}},
        SavedSetting{"Gateway",
                     [] { return SetGatewayByConfig("eth1", "10.0.0.1"); },
                     kFile,
                     {"GATEWAYIP = 10.0.0.1"}},
        SavedSetting{"Mtu", [] { return SetMtuByConfig("eth1", 1400); }, kFile, {"MTU = 1400"}},
        SavedSetting{"IPv6Address",
                     [] { return SetIPv6ByConfig("eth1", "fd00::2", "64"); },
                     kFile6,
                     {"HOSTIP = fd00::2", "SUBMASK = 64"}},
        SavedSetting{"IPv6AddressOfEth0",
                     [] { return SetIPv6ByConfig("eth0", "fd00::2", "64"); },
                     "/mnt/mtd/Config/networkip6",
                     {"HOSTIP = fd00::2", "SUBMASK = 64"}},
        SavedSetting{"IPv6Gateway",
                     [] { return SetGatewayv6ByConfig("eth1", "fd00::1"); },
                     kFile6,
                     {"GATEWAYIP = fd00::1"}},
        SavedSetting{"WorkMode",
                     [] { return SetWorkModeByConfig("eth1", netModeBridge); },
                     kFile,
                     {"WORKMODE = 3"}},
        SavedSetting{
            "Bonded", [] { return SetEthIsBondedByConfig("eth1", true); }, kFile, {"BONDED = 1"}},
        SavedSetting{"NotBonded",
                     [] { return SetEthIsBondedByConfig("eth1", false); },
                     kFile,
                     {"BONDED = 0"}},
        SavedSetting{"BondName",
                     [] { return SetEthBondNameByConfig("eth1", "bond0"); },
                     kFile,
                     {"BONDNAME = bond0"}},
        SavedSetting{"Bridged",
                     [] { return SetEthIsBridgedByConfig("eth1", true); },
                     kFile,
                     {"BRIDGEEDED = 1"}},
        SavedSetting{"NotBridged",
                     [] { return SetEthIsBridgedByConfig("eth1", false); },
                     kFile,
                     {"BRIDGEEDED = 0"}},
        SavedSetting{"BridgeName",
                     [] { return SetEthBridgeNameByConfig("eth1", "br0"); },
                     kFile,
                     {"BRIDGENAME = br0"}}),
    RowName<SavedSetting>);

INSTANTIATE_TEST_SUITE_P(
    OfACard, EveryReadSettingTest,
    testing::Values(
        ReadSetting{"Address",
                    [] { return ReadIP("eth1"); },
                    kFile,
                    {"HOSTIP = 10.0.0.2", "SUBMASK = 255.0.0.0"},
                    "1 10.0.0.2 255.0.0.0",
                    "0 before before"},
        ReadSetting{"AddressOfEth0",
                    [] { return ReadIP("eth0"); },
                    kDefaultFile,
                    {"HOSTIP = 10.0.0.2", "SUBMASK = 255.0.0.0"},
                    "1 10.0.0.2 255.0.0.0",
                    "0 before before"},
        ReadSetting{"Gateway",
                    [] { return ReadGateway("eth1"); },
                    kFile,
                    {"GATEWAYIP = 10.0.0.1"},
                    "1 10.0.0.1",
                    "0 before"},
        ReadSetting{"Mtu", [] { return ReadMtu("eth1"); }, kFile, {"MTU = 1400"}, "1 1400", "0 77"},
        ReadSetting{"IPv6Address",
                    [] { return ReadIPv6("eth1"); },
                    kFile6,
                    {"HOSTIP = fd00::2", "SUBMASK = 64"},
                    "1 fd00::2 64",
                    "0 before before"},
        ReadSetting{"IPv6AddressOfABridge",
                    [] { return ReadIPv6("br0"); },
                    "/mnt/mtd/Config/networkip6br0",
                    {"HOSTIP = fd00::2", "SUBMASK = 64"},
                    "1 fd00::2 64",
                    "0 before before"},
        ReadSetting{"IPv6Gateway",
                    [] { return ReadGatewayv6("eth1"); },
                    kFile6,
                    {"GATEWAYIP = fd00::1"},
                    "1 fd00::1",
                    "0 before"},
        ReadSetting{"Bonded",
                    [] { return ReadFlag(GetEthIsBondedByConfig, "eth1", false); },
                    kFile,
                    {"BONDED = 1"},
                    "1 1",
                    "0 0"},
        ReadSetting{"NotBonded",
                    [] { return ReadFlag(GetEthIsBondedByConfig, "eth1", true); },
                    kFile,
                    {"BONDED = 0"},
                    "1 0",
                    "0 1"},
        ReadSetting{"BondName",
                    [] { return ReadName(GetEthBondNameByConfig, "eth1"); },
                    kFile,
                    {"BONDNAME = bond0"},
                    "1 bond0",
                    "0 before"},
        ReadSetting{"Bridged",
                    [] { return ReadFlag(GetEthIsBridgedByConfig, "eth1", false); },
                    kFile,
                    {"BRIDGEEDED = 1"},
                    "1 1",
                    "0 0"},
        ReadSetting{"NotBridged",
                    [] { return ReadFlag(GetEthIsBridgedByConfig, "eth1", true); },
                    kFile,
                    {"BRIDGEEDED = 0"},
                    "1 0",
                    "0 1"},
        ReadSetting{"BridgeName",
                    [] { return ReadName(GetEthBridgeNameByConfig, "eth1"); },
                    kFile,
                    {"BRIDGENAME = br0"},
                    "1 br0",
                    "0 before"}),
    RowName<ReadSetting>);

class CardSettingsTest : public World {};

TEST_F(CardSettingsTest, NullIsRefusedBeforeAnythingIsTouched)
{
    Text text;
    int number = 0;
    bool flag = false;
    NetWorkMode mode = netModeMultiple;
    Put(kFile, "MTU = 1500\n");

    EXPECT_FALSE(GetIPByConfig(nullptr, text, text));
    EXPECT_FALSE(GetIPByConfig("eth1", nullptr, text));
    EXPECT_FALSE(GetIPByConfig("eth1", text, nullptr));
    EXPECT_FALSE(SetIPByConfig(nullptr, "10.0.0.2", "255.0.0.0"));
    EXPECT_FALSE(SetIPByConfig("eth1", nullptr, "255.0.0.0"));
    EXPECT_FALSE(SetIPByConfig("eth1", "10.0.0.2", nullptr));
    EXPECT_FALSE(SetIPByConfig(nullptr, "0.0.0.0", "0.0.0.0"));
    EXPECT_FALSE(SetIPByConfig(nullptr, "x", "y"));
    EXPECT_FALSE(GetGatewayByConfig(nullptr, text));
    EXPECT_FALSE(GetGatewayByConfig("eth1", nullptr));
    EXPECT_FALSE(SetGatewayByConfig(nullptr, "0.0.0.0"));
    EXPECT_FALSE(SetGatewayByConfig(nullptr, "x"));
    EXPECT_FALSE(SetGatewayByConfig("eth1", nullptr));
    EXPECT_FALSE(GetMtuByConfig(nullptr, &number));
    EXPECT_FALSE(GetMtuByConfig("eth1", nullptr));
    EXPECT_FALSE(SetMtuByConfig(nullptr, 1500));
    EXPECT_FALSE(GetIPv6ByConfig(nullptr, text, 48, text, 8));
    EXPECT_FALSE(GetIPv6ByConfig("eth1", nullptr, 48, text, 8));
    EXPECT_FALSE(GetIPv6ByConfig("eth1", text, 48, nullptr, 8));
    EXPECT_FALSE(SetIPv6ByConfig(nullptr, "x", "y"));
    EXPECT_FALSE(SetIPv6ByConfig("eth1", nullptr, "64"));
    EXPECT_FALSE(SetIPv6ByConfig("eth1", "fd00::2", nullptr));
    EXPECT_FALSE(GetGatewayv6ByConfig(nullptr, text, 48));
    EXPECT_FALSE(GetGatewayv6ByConfig("eth1", nullptr, 48));
    EXPECT_FALSE(SetGatewayv6ByConfig(nullptr, "x"));
    EXPECT_FALSE(SetGatewayv6ByConfig("eth1", nullptr));
    EXPECT_FALSE(GetDefaultEthByConfig(nullptr, 16));
    EXPECT_FALSE(SetDefaultEthByConfig(nullptr));
    EXPECT_FALSE(SetWorkModeByConfig(nullptr, netModeBond));
    EXPECT_FALSE(GetWorkModeByConfig(nullptr, &mode));
    EXPECT_FALSE(SetEthIsBondedByConfig(nullptr, true));
    EXPECT_FALSE(GetEthIsBondedByConfig(nullptr, &flag));
    EXPECT_FALSE(GetEthIsBondedByConfig("eth1", nullptr));
    EXPECT_FALSE(SetEthBondNameByConfig(nullptr, "bond0"));
    EXPECT_FALSE(SetEthBondNameByConfig("eth1", nullptr));
    EXPECT_FALSE(GetEthBondNameByConfig(nullptr, text, 16));
    EXPECT_FALSE(GetEthBondNameByConfig("eth1", nullptr, 16));
    EXPECT_FALSE(SetEthIsBridgedByConfig(nullptr, true));
    EXPECT_FALSE(GetEthIsBridgedByConfig(nullptr, &flag));
    EXPECT_FALSE(GetEthIsBridgedByConfig("eth1", nullptr));
    EXPECT_FALSE(SetEthBridgeNameByConfig(nullptr, "br0"));
    EXPECT_FALSE(SetEthBridgeNameByConfig("eth1", nullptr));
    EXPECT_FALSE(GetEthBridgeNameByConfig(nullptr, text, 16));
    EXPECT_FALSE(GetEthBridgeNameByConfig("eth1", nullptr, 16));
    EXPECT_FALSE(IsTrunkBondConfig(nullptr, &flag));
    char bond[] = "bond0";
    EXPECT_FALSE(IsTrunkBondConfig(bond, nullptr));

    EXPECT_EQ(Trace(), kNothing);
    EXPECT_EQ(Log(), kSilence);
}

TEST_F(CardSettingsTest, BothNamesGoBehindTheirOwnKey)
{
    EXPECT_TRUE(SetEthBondNameByConfig("eth1", "bond0"));
    EXPECT_TRUE(SetEthBridgeNameByConfig("eth1", "br0"));
    EXPECT_EQ(ReadName(GetEthBondNameByConfig, "eth1"), "1 bond0");
    EXPECT_EQ(ReadName(GetEthBridgeNameByConfig, "eth1"), "1 br0");
}

TEST_F(CardSettingsTest, ANameFillsItsBufferToTheLastByte)
{
    Put(kFile, Settings({"BONDNAME = bond0", "BRIDGENAME = br0"}));
    EXPECT_EQ(ReadName(GetEthBondNameByConfig, "eth1", 6), "1 bond0");
    EXPECT_EQ(ReadName(GetEthBridgeNameByConfig, "eth1", 4), "1 br0");
    EXPECT_EQ(Log(), kSilence);
}

TEST_F(CardSettingsTest, ANameLongerThanItsBufferIsRefused)
{
    Put(kFile, Settings({"BONDNAME = bond0", "BRIDGENAME = br0"}));
    EXPECT_EQ(ReadName(GetEthBondNameByConfig, "eth1", 5), "0 before");
    EXPECT_EQ(ReadName(GetEthBridgeNameByConfig, "eth1", 3), "0 before");
    EXPECT_EQ(Log(), (LogLines{TooLong("bond0"), TooLong("br0")}));
}

TEST_F(CardSettingsTest, ABufferWithoutASizeIsNotTouched)
{
    Put(kFile, "BONDNAME = bond0\n");
    for (const int len : {0, -1, INT_MIN}) {
        EXPECT_EQ(ReadName(GetEthBondNameByConfig, "eth1", len), "0 before") << len;
    }
    EXPECT_EQ(Log(), (LogLines{TooLong("bond0"), TooLong("bond0"), TooLong("bond0")}));
}

TEST_F(CardSettingsTest, AFlagIsTrueForWhateverBeginsWithOne)
{
    Put(kFile, Settings({"BONDED = 12", "BRIDGEEDED = 1x"}));
    EXPECT_EQ(ReadFlag(GetEthIsBondedByConfig, "eth1", false), "1 1");
    EXPECT_EQ(ReadFlag(GetEthIsBridgedByConfig, "eth1", false), "1 1");
    Put(kFile, Settings({"BONDED = 01", "BRIDGEEDED = yes"}));
    EXPECT_EQ(ReadFlag(GetEthIsBondedByConfig, "eth1", true), "1 0");
    EXPECT_EQ(ReadFlag(GetEthIsBridgedByConfig, "eth1", true), "1 0");
    EXPECT_EQ(Log(), kSilence);
}

TEST_F(CardSettingsTest, AFlagHasAtMostSevenCharacters)
{
    Put(kFile, Settings({"BONDED = 1234567", "BRIDGEEDED = 12345678"}));
    EXPECT_EQ(ReadFlag(GetEthIsBondedByConfig, "eth1", false), "1 1");
    EXPECT_EQ(ReadFlag(GetEthIsBridgedByConfig, "eth1", false), "0 0");
    EXPECT_EQ(Log(), LogLines{TooLong("12345678")});
}

TEST_F(CardSettingsTest, AnEmptyValueIsToldAndRefused)
{
    Put(kFile, Settings({"BONDED =", "BONDNAME = \t ", "MTU ="}));
    EXPECT_EQ(ReadFlag(GetEthIsBondedByConfig, "eth1", true), "0 1");
    EXPECT_EQ(ReadName(GetEthBondNameByConfig, "eth1"), "0 before");
    EXPECT_EQ(ReadMtu("eth1"), "0 77");
    const std::string of = std::string(" from ") + kFile + " is empty.";
    EXPECT_EQ(Log(), (LogLines{Warn("GetValueByKey", "the BONDED" + of),
                               Warn("GetValueByKey", "the BONDNAME" + of),
                               Warn("GetValueByKey", "the MTU" + of)}));
}

TEST_F(CardSettingsTest, ANulByteEndsItsLine)
{
    Put(kFile, std::string("HOSTIP = 10.0.0.2\0.9.9\nSUBMASK = 255.0.0.0\n", 43));
    EXPECT_EQ(ReadIP("eth1"), "1 10.0.0.2 255.0.0.0");
    EXPECT_EQ(Log(), kSilence);
}

TEST_F(CardSettingsTest, AnOverlongNameLosesItsTailInTheFile)
{
    Put(kFile, "MTU = 1500\n");
    EXPECT_TRUE(SetEthBondNameByConfig("eth1", std::string(1000, 'b').c_str()));
    const std::string line = "BONDNAME = " + std::string(244, 'b');  // 255 characters
    EXPECT_EQ(Get(kFile), "MTU = 1500\n" + line);
    EXPECT_EQ(ReadName(GetEthBondNameByConfig, "eth1"), "0 before");
    EXPECT_EQ(Log(), LogLines{TooLong(std::string(244, 'b'))});
}

TEST_F(CardSettingsTest, ThePathOfAnOverlongCardNameIsCut)
{
    const std::string card(1000, 'c');
    EXPECT_TRUE(SetMtuByConfig(card.c_str(), 1400));
    EXPECT_EQ(ReadMtu(card.c_str()), "1 1400");
    const std::string path = std::string("/mnt/mtd/Config/network") + std::string(40, 'c');
    EXPECT_EQ(path.size(), 63U);
    EXPECT_EQ(Get(path), "MTU = 1400\n");
}

}  // namespace
