#include "Config.h"

#include "SettingRows.h"

#include <climits>

using namespace fake;

namespace {

constexpr char kFile[] = "/mnt/mtd/Config/network1";  // of eth1
constexpr char kFile6[] = "/mnt/mtd/Config/networkip61";
constexpr char kDefaultFile[] = "/mnt/mtd/Config/network";

const LogLines kSilence;
const std::vector<std::string> kNothing;

LogLine TooLong(const std::string& value)
{
    return Error("GetValueByKey", "value len is too small.[len:" + std::to_string(value.size()) +
                                      ",value:" + value + "]");
}

/// A buffer that shows whether it was written to.
struct Text {
    char bytes[64] = "before";
    operator char*() { return bytes; }
};

std::string Shown(bool result, const std::vector<std::string>& texts)
{
    std::string shown = result ? "1" : "0";
    for (const std::string& text : texts) shown += " " + text;
    return shown;
}

std::string Shown(bool result, int number)
{
    return Shown(result, {std::to_string(number)});
}

std::string ReadIP(const char* card)
{
    Text ip;
    Text mask;
    const bool result = GetIPByConfig(card, ip, mask);
    return Shown(result, {ip.bytes, mask.bytes});
}

std::string ReadGateway(const char* card)
{
    Text gateway;
    const bool result = GetGatewayByConfig(card, gateway);
    return Shown(result, {gateway.bytes});
}

std::string ReadMtu(const char* card)
{
    int mtu = 77;
    const bool result = GetMtuByConfig(card, &mtu);
    return Shown(result, mtu);
}

std::string ReadIPv6(const char* card, int ipLen = 48, int perFixLen = 8)
{
    Text ip;
    Text perFix;
    const bool result = GetIPv6ByConfig(card, ip, ipLen, perFix, perFixLen);
    return Shown(result, {ip.bytes, perFix.bytes});
}

std::string ReadGatewayv6(const char* card, int len = 48)
{
    Text gateway;
    const bool result = GetGatewayv6ByConfig(card, gateway, len);
    return Shown(result, {gateway.bytes});
}

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

// ---- address

class GetIPByConfigTest : public World {};

TEST_F(GetIPByConfigTest, SixteenCharactersAreTooMany)
{
    Put(kFile, Settings({"HOSTIP = 192.168.100.1000", "SUBMASK = 255.255.255.0"}));
    Text ip;
    Text mask;
    EXPECT_FALSE(GetIPByConfig("eth1", ip, mask));
    EXPECT_STREQ(ip, "before");
    EXPECT_STREQ(mask, "before");
    EXPECT_EQ(Log(), LogLines{TooLong("192.168.100.1000")});
}

TEST_F(GetIPByConfigTest, FifteenCharactersFit)
{
    Put(kFile, Settings({"HOSTIP = 192.168.100.100", "SUBMASK = 255.255.255.252"}));
    char ip[16];
    char mask[16];
    EXPECT_TRUE(GetIPByConfig("eth1", ip, mask));
    EXPECT_STREQ(ip, "192.168.100.100");
    EXPECT_STREQ(mask, "255.255.255.252");
}

TEST_F(GetIPByConfigTest, TheMaskIsReadOnlyBehindAnAddress)
{
    Put(kFile, "SUBMASK = 255.255.255.0\n");
    EXPECT_EQ(ReadIP("eth1"), "0 before before");
    EXPECT_EQ(TraceOf({std::string("open ") + kFile + " O_RDONLY"}).size(), 1U);
    EXPECT_EQ(Log(), kSilence);
}

TEST_F(GetIPByConfigTest, AnAddressWithoutMaskIsNone)
{
    Put(kFile, "HOSTIP = 10.0.0.2\n");
    EXPECT_EQ(ReadIP("eth1"), "0 10.0.0.2 before");
    EXPECT_EQ(Log(), kSilence);
}

TEST_F(GetIPByConfigTest, BothMustBeAddresses)
{
    Put(kFile, Settings({"HOSTIP = 10.0.0.256", "SUBMASK = 255.0.0.0"}));
    EXPECT_EQ(ReadIP("eth1"), "0 10.0.0.256 255.0.0.0");
    Put(kFile, Settings({"HOSTIP = 10.0.0.2", "SUBMASK = no"}));
    EXPECT_EQ(ReadIP("eth1"), "0 10.0.0.2 no");
    EXPECT_EQ(Log(), (LogLines{Error("GetIPByConfig", "ip: 10.0.0.256 mask 255.0.0.0 error."),
                               Error("GetIPByConfig", "ip: 10.0.0.2 mask no error.")}));
}

TEST_F(GetIPByConfigTest, ShortFormsOfAnAddressPass)
{
    Put(kFile, Settings({"HOSTIP = 10.2", "SUBMASK = 255.255"}));
    EXPECT_EQ(ReadIP("eth1"), "1 10.2 255.255");
    EXPECT_EQ(Log(), kSilence);
}

class SetIPByConfigTest : public World {};

TEST_F(SetIPByConfigTest, AnEmptyPairNeverOverwritesASavedOne)
{
    const std::string saved = Settings({"HOSTIP = 10.0.0.2", "SUBMASK = 255.0.0.0"});
    Put(kFile, saved);
    EXPECT_TRUE(SetIPByConfig("eth1", "0.0.0.0", "0.0.0.0"));
    EXPECT_EQ(Get(kFile), saved);
    EXPECT_EQ(Trace(), kNothing);
    EXPECT_EQ(Log(), LogLines{Info("SetIPByConfig", "ip: 0.0.0.0 mask 0.0.0.0 not save.")});
}

TEST_F(SetIPByConfigTest, SevenCharactersTellAnEmptyPair)
{
    EXPECT_TRUE(SetIPByConfig("eth1", "0.0.0.01", "0.0.0.077"));
    EXPECT_FALSE(Exists(kFile));
    EXPECT_EQ(Log(), LogLines{Info("SetIPByConfig", "ip: 0.0.0.01 mask 0.0.0.077 not save.")});
}

TEST_F(SetIPByConfigTest, HalfAnEmptyPairIsSaved)
{
    Put(kFile, "");
    EXPECT_TRUE(SetIPByConfig("eth1", "0.0.0.0", "255.255.255.0"));
    EXPECT_EQ(Get(kFile), Settings({"HOSTIP = 0.0.0.0", "SUBMASK = 255.255.255.0"}));
    EXPECT_TRUE(SetIPByConfig("eth1", "10.0.0.2", "0.0.0.0"));
    EXPECT_EQ(Get(kFile), Settings({"HOSTIP = 10.0.0.2", "SUBMASK = 0.0.0.0"}));
    EXPECT_EQ(Log(), kSilence);
}

TEST_F(SetIPByConfigTest, TheEmptyAddressInAShortFormIsSaved)
{
    Put(kFile, "");
    EXPECT_TRUE(SetIPByConfig("eth1", "0", "0.0"));
    EXPECT_EQ(Get(kFile), Settings({"HOSTIP = 0", "SUBMASK = 0.0"}));
}

TEST_F(SetIPByConfigTest, WhatIsNoAddressDoesNotReachTheFile)
{
    EXPECT_FALSE(SetIPByConfig("eth1", "10.0.0.256", "255.0.0.0"));
    EXPECT_FALSE(SetIPByConfig("eth1", "10.0.0.2", "mask"));
    EXPECT_FALSE(SetIPByConfig("eth1", "", "255.0.0.0"));
    EXPECT_FALSE(SetIPByConfig("eth1", "0.0.0.0x", "0.0.0.0"));
    EXPECT_EQ(Trace(), kNothing);
    EXPECT_EQ(Log(), (LogLines{Error("SetIPByConfig", "ip: 10.0.0.256 mask 255.0.0.0 error."),
                               Error("SetIPByConfig", "ip: 10.0.0.2 mask mask error."),
                               Error("SetIPByConfig", "ip:  mask 255.0.0.0 error."),
                               Error("SetIPByConfig", "ip: 0.0.0.0x mask 0.0.0.0 error.")}));
}

TEST_F(SetIPByConfigTest, TheMaskIsNotTouchedBehindAFailedAddress)
{
    const std::string saved = Settings({"HOSTIP = 10.0.0.2", "SUBMASK = 255.0.0.0"});
    Put(kFile, saved);
    Fail(std::string("fopen ") + kFile + " w+", ENOSPC);
    EXPECT_FALSE(SetIPByConfig("eth1", "10.0.0.3", "255.255.0.0"));
    EXPECT_EQ(Get(kFile), saved);
    EXPECT_EQ(TraceOf({std::string("fopen ") + kFile + " w+"}).size(), 1U);
}

TEST_F(SetIPByConfigTest, TheAddressStaysBeforeAFailedMask)
{
    Put(kFile, Settings({"HOSTIP = 10.0.0.2", "SUBMASK = 255.0.0.0"}));
    Fail(std::string("fopen ") + kFile + " w+", ENOSPC, 2);
    EXPECT_FALSE(SetIPByConfig("eth1", "10.0.0.3", "255.255.0.0"));
    EXPECT_EQ(Get(kFile), Settings({"HOSTIP = 10.0.0.3", "SUBMASK = 255.0.0.0"}));
    EXPECT_EQ(Log(), LogLines{Error("SetValueByKey", "cannot fopen [No space left on device]")});
}

// ---- gateway

class GetGatewayByConfigTest : public World {};

TEST_F(GetGatewayByConfigTest, MustBeAnAddress)
{
    Put(kFile, "GATEWAYIP = 10.0.0.x\n");
    EXPECT_EQ(ReadGateway("eth1"), "0 10.0.0.x");
    EXPECT_EQ(Log(), LogLines{Error("GetGatewayByConfig", "gateway: 10.0.0.x error.")});
}

TEST_F(GetGatewayByConfigTest, HasAtMostFifteenCharacters)
{
    Put(kFile, "GATEWAYIP = 192.168.100.100\n");
    EXPECT_EQ(ReadGateway("eth1"), "1 192.168.100.100");
    Put(kFile, "GATEWAYIP = 192.168.100.1000\n");
    EXPECT_EQ(ReadGateway("eth1"), "0 before");
    EXPECT_EQ(Log(), LogLines{TooLong("192.168.100.1000")});
}

class SetGatewayByConfigTest : public World {};

TEST_F(SetGatewayByConfigTest, ASavedGatewayCannotBeCleared)
{
    Put(kFile, "GATEWAYIP = 10.0.0.1\n");
    EXPECT_TRUE(SetGatewayByConfig("eth1", "0.0.0.0"));
    EXPECT_TRUE(SetGatewayByConfig("eth1", "0.0.0.01"));
    EXPECT_EQ(Get(kFile), "GATEWAYIP = 10.0.0.1\n");
    EXPECT_EQ(Trace(), kNothing);
    EXPECT_EQ(Log(), (LogLines{Info("SetGatewayByConfig", "gateway: 0.0.0.0 not save."),
                               Info("SetGatewayByConfig", "gateway: 0.0.0.01 not save.")}));
}

TEST_F(SetGatewayByConfigTest, WhatIsNoAddressDoesNotReachTheFile)
{
    EXPECT_FALSE(SetGatewayByConfig("eth1", "fd00::1"));
    EXPECT_FALSE(SetGatewayByConfig("eth1", "0.0.0.0x"));
    EXPECT_EQ(Trace(), kNothing);
    EXPECT_EQ(Log(), (LogLines{Error("SetGatewayByConfig", "gateway: fd00::1 error."),
                               Error("SetGatewayByConfig", "gateway: 0.0.0.0x error.")}));
}

// ---- MTU

class GetMtuByConfigTest : public World {};

TEST_F(GetMtuByConfigTest, ARefusedNumberIsHandedOutAllTheSame)
{
    const std::vector<std::pair<std::string, int>> refused = {
        {"0", 0}, {"-5", -5}, {"auto", 0}, {"x1500", 0}};
    for (const auto& [text, number] : refused) {
        ClearLog();
        Put(kFile, "MTU = " + text + "\n");
        EXPECT_EQ(ReadMtu("eth1"), Shown(false, number));
        EXPECT_EQ(Log(),
                  LogLines{Error("GetMtuByConfig", "eth1 mtu in config file is " + text + ".")});
    }
}

TEST_F(GetMtuByConfigTest, StopsBehindTheDigits)
{
    Put(kFile, "MTU = 1400d\n");
    EXPECT_EQ(ReadMtu("eth1"), "1 1400");
}

TEST_F(GetMtuByConfigTest, HasAtMostSevenCharacters)
{
    Put(kFile, "MTU = 1234567\n");
    EXPECT_EQ(ReadMtu("eth1"), "1 1234567");
    Put(kFile, "MTU = 12345678\n");
    EXPECT_EQ(ReadMtu("eth1"), "0 77");
    EXPECT_EQ(Log(), LogLines{TooLong("12345678")});
}

class SetMtuByConfigTest : public World {};

TEST_F(SetMtuByConfigTest, MustBeAboveZero)
{
    for (const int mtu : {0, -1, INT_MIN}) EXPECT_FALSE(SetMtuByConfig("eth1", mtu)) << mtu;
    EXPECT_EQ(Trace(), kNothing);
    EXPECT_EQ(Log(), kSilence);
}

TEST_F(SetMtuByConfigTest, SevenDigitsAreKept)
{
    Put(kFile, "");
    EXPECT_TRUE(SetMtuByConfig("eth1", 1));
    EXPECT_EQ(Get(kFile), "MTU = 1\n");
    EXPECT_TRUE(SetMtuByConfig("eth1", INT_MAX));
    EXPECT_EQ(Get(kFile), "MTU = 2147483\n");
}

// ---- IPv6

class GetIPv6ByConfigTest : public World {};

TEST_F(GetIPv6ByConfigTest, DropsWhatStandsBehindTheDigitsOfThePrefix)
{
    const std::vector<std::pair<std::string, std::string>> prefixes = {
        {"64", "64"}, {"64abc", "64"}, {"064", "64"}, {"0", "0"}, {"999", "999"}, {"6 4", "6"}};
    for (const auto& [saved, prefix] : prefixes) {
        Put(kFile6, Settings({"HOSTIP = fd00::2", "SUBMASK = " + saved}));
        EXPECT_EQ(ReadIPv6("eth1"), "1 fd00::2 " + prefix);
    }
    EXPECT_EQ(Log(), kSilence);
}

TEST_F(GetIPv6ByConfigTest, ARewrittenPrefixStaysInItsBuffer)
{
    Put(kFile6, Settings({"HOSTIP = fd00::2", "SUBMASK = 2147483648"}));
    char ip[48];
    char perFix[12];
    memset(perFix, '#', sizeof(perFix));
    EXPECT_TRUE(GetIPv6ByConfig("eth1", ip, sizeof(ip), perFix, 11));
    EXPECT_STREQ(perFix, "-214748364");  // the number that the digits overflow to, cut
    EXPECT_EQ(perFix[11], '#');
}

TEST_F(GetIPv6ByConfigTest, BothMustFitTheirBuffers)
{
    Put(kFile6, Settings({"HOSTIP = fd00::2", "SUBMASK = 64"}));
    EXPECT_EQ(ReadIPv6("eth1", 8, 3), "1 fd00::2 64");
    EXPECT_EQ(Log(), kSilence);
    EXPECT_EQ(ReadIPv6("eth1", 7, 3), "0 before before");
    EXPECT_EQ(ReadIPv6("eth1", 0, 3), "0 before before");
    EXPECT_EQ(ReadIPv6("eth1", 8, 2), "0 fd00::2 before");
    EXPECT_EQ(ReadIPv6("eth1", 8, INT_MIN), "0 fd00::2 before");
    EXPECT_EQ(Log(),
              (LogLines{TooLong("fd00::2"), TooLong("fd00::2"), TooLong("64"), TooLong("64")}));
}

TEST_F(GetIPv6ByConfigTest, ThePrefixIsReadOnlyBehindAnAddress)
{
    Put(kFile6, "SUBMASK = 64\n");
    EXPECT_EQ(ReadIPv6("eth1"), "0 before before");
    EXPECT_EQ(TraceOf({std::string("open ") + kFile6 + " O_RDONLY"}).size(), 1U);
    Put(kFile6, "HOSTIP = fd00::2\n");
    EXPECT_EQ(ReadIPv6("eth1"), "0 fd00::2 before");
    EXPECT_EQ(Log(), kSilence);
}

TEST_F(GetIPv6ByConfigTest, TheAddressIsTestedBeforeThePrefix)
{
    Put(kFile6, Settings({"HOSTIP = 10.0.0.2", "SUBMASK = x"}));
    EXPECT_EQ(ReadIPv6("eth1"), "0 10.0.0.2 x");
    Put(kFile6, Settings({"HOSTIP = fd00::2", "SUBMASK = -64"}));
    EXPECT_EQ(ReadIPv6("eth1"), "0 fd00::2 -64");
    EXPECT_EQ(Log(), (LogLines{Error("GetIPv6ByConfig", "ip addr formate error 10.0.0.2."),
                               Error("GetIPv6ByConfig", "perfix -64 error.")}));
}

TEST_F(GetIPv6ByConfigTest, TheIPv4FileIsNotLookedAt)
{
    Put(kFile, Settings({"HOSTIP = fd00::2", "SUBMASK = 64", "GATEWAYIP = fd00::1"}));
    EXPECT_EQ(ReadIPv6("eth1"), "0 before before");
    EXPECT_EQ(ReadGatewayv6("eth1"), "0 before");
}

class SetIPv6ByConfigTest : public World {};

TEST_F(SetIPv6ByConfigTest, ThePrefixIsStoredAsItStands)
{
    Put(kFile6, "");
    EXPECT_TRUE(SetIPv6ByConfig("eth1", "fd00::2", "64abc"));
    EXPECT_EQ(Get(kFile6), Settings({"HOSTIP = fd00::2", "SUBMASK = 64abc"}));
    EXPECT_FALSE(Exists(kFile));
}

TEST_F(SetIPv6ByConfigTest, AnEmptyAddressOverwritesASavedOne)
{
    Put(kFile6, Settings({"HOSTIP = fd00::2", "SUBMASK = 64"}));
    EXPECT_TRUE(SetIPv6ByConfig("eth1", "0:0:0::0", "0"));
    EXPECT_EQ(Get(kFile6), Settings({"HOSTIP = 0:0:0::0", "SUBMASK = 0"}));
    EXPECT_EQ(Log(), kSilence);
}

TEST_F(SetIPv6ByConfigTest, WhatIsNoAddressDoesNotReachTheFile)
{
    EXPECT_FALSE(SetIPv6ByConfig("eth1", "10.0.0.2", "x"));
    EXPECT_FALSE(SetIPv6ByConfig("eth1", "fd00::2", "x64"));
    EXPECT_FALSE(SetIPv6ByConfig("eth1", "fd00::2", ""));
    EXPECT_EQ(Trace(), kNothing);
    EXPECT_EQ(Log(), (LogLines{Error("SetIPv6ByConfig", "ip addr formate error 10.0.0.2."),
                               Error("SetIPv6ByConfig", "perfix x64 error."),
                               Error("SetIPv6ByConfig", "perfix  error.")}));
}

TEST_F(SetIPv6ByConfigTest, ThePrefixIsNotTouchedBehindAFailedAddress)
{
    Put(kFile6, Settings({"HOSTIP = fd00::2", "SUBMASK = 64"}));
    Fail(std::string("fopen ") + kFile6 + " w+", ENOSPC);
    EXPECT_FALSE(SetIPv6ByConfig("eth1", "fd00::3", "48"));
    EXPECT_EQ(Get(kFile6), Settings({"HOSTIP = fd00::2", "SUBMASK = 64"}));
    EXPECT_EQ(TraceOf({std::string("fopen ") + kFile6 + " w+"}).size(), 1U);
}

class Gatewayv6ByConfigTest : public World {};

TEST_F(Gatewayv6ByConfigTest, MustBeAnAddressOnTheWayOut)
{
    Put(kFile6, "GATEWAYIP = 10.0.0.1\n");
    EXPECT_EQ(ReadGatewayv6("eth1"), "0 10.0.0.1");
    EXPECT_EQ(Log(),
              LogLines{Error("GetGatewayv6ByConfig", "gateway addr formate error 10.0.0.1.")});
}

TEST_F(Gatewayv6ByConfigTest, MustBeAnAddressOnTheWayIn)
{
    EXPECT_FALSE(SetGatewayv6ByConfig("eth1", "fd00::1/64"));
    EXPECT_EQ(Trace(), kNothing);
    EXPECT_EQ(Log(),
              LogLines{Error("SetGatewayv6ByConfig", "gateway addr formate error fd00::1/64.")});
}

TEST_F(Gatewayv6ByConfigTest, AnEmptyOneIsSaved)
{
    Put(kFile6, "GATEWAYIP = fd00::1\n");
    EXPECT_TRUE(SetGatewayv6ByConfig("eth1", "::"));
    EXPECT_EQ(Get(kFile6), "GATEWAYIP = ::\n");
}

TEST_F(Gatewayv6ByConfigTest, FillsItsBufferToTheLastByte)
{
    Put(kFile6, "GATEWAYIP = fd00::1\n");
    EXPECT_EQ(ReadGatewayv6("eth1", 8), "1 fd00::1");
    EXPECT_EQ(ReadGatewayv6("eth1", 7), "0 before");
    EXPECT_EQ(ReadGatewayv6("eth1", -1), "0 before");
    EXPECT_EQ(Log(), (LogLines{TooLong("fd00::1"), TooLong("fd00::1")}));
}

}  // namespace
