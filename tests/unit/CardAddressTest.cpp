// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The saved addresses, gateways and MTU of a card.

#include "Config.h"

#include "CardSettings.h"

#include <climits>
#include <cstring>

using namespace fake;

namespace {

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

/// A card without a name has a file like any other: the one that eth0 has.
TEST_F(GetIPByConfigTest, ACardWithoutANameReadsTheFileOfEth0)
{
    Put("/mnt/mtd/Config/network",
        Settings({"HOSTIP = 10.0.0.2", "SUBMASK = 255.0.0.0", "GATEWAYIP = 10.0.0.1"}));
    Put("/mnt/mtd/Config/networkip6",
        Settings({"HOSTIP = fd00::2", "SUBMASK = 64", "GATEWAYIP = fd00::1"}));
    EXPECT_EQ(ReadIP(""), "1 10.0.0.2 255.0.0.0");
    EXPECT_EQ(ReadGateway(""), "1 10.0.0.1");
    EXPECT_EQ(ReadIPv6(""), "1 fd00::2 64");
    EXPECT_EQ(ReadGatewayv6(""), "1 fd00::1");
    EXPECT_TRUE(SetMtuByConfig("", 1400));
    EXPECT_EQ(ReadMtu("eth0"), "1 1400");
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
    EXPECT_TRUE(SetIPByConfig("eth1", "10.0.0.0", "0.0.0.0"));  // the empty one stands in it
    EXPECT_EQ(ReadIP("eth1"), "1 10.0.0.0 0.0.0.0");
    EXPECT_TRUE(SetIPByConfig("eth1", "0.0.0.0", "240.0.0.0"));
    EXPECT_EQ(ReadIP("eth1"), "1 0.0.0.0 240.0.0.0");
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
    for (const char* address : {"0", "0.0.0", "00.0.0.0", "0x0.0.0.0", "0.0.00.0"}) {
        EXPECT_TRUE(SetIPByConfig("eth1", address, "0.0.0.0")) << address;
        EXPECT_EQ(ReadIP("eth1"), "1 " + std::string(address) + " 0.0.0.0");
        EXPECT_TRUE(SetIPByConfig("eth1", "0.0.0.0", address)) << address;
        EXPECT_EQ(ReadIP("eth1"), "1 0.0.0.0 " + std::string(address));
        EXPECT_TRUE(SetGatewayByConfig("eth1", address)) << address;
        EXPECT_EQ(ReadGateway("eth1"), "1 " + std::string(address));
    }
    EXPECT_EQ(Log(), kSilence);
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
    EXPECT_FALSE(SetIPv6ByConfig("eth1", "fd00::2", " 64"));
    EXPECT_FALSE(SetIPv6ByConfig("eth1", "fd00::2", "+64"));
    EXPECT_EQ(Trace(), kNothing);
    EXPECT_EQ(Log(), (LogLines{Error("SetIPv6ByConfig", "ip addr formate error 10.0.0.2."),
                               Error("SetIPv6ByConfig", "perfix x64 error."),
                               Error("SetIPv6ByConfig", "perfix  error."),
                               Error("SetIPv6ByConfig", "perfix  64 error."),
                               Error("SetIPv6ByConfig", "perfix +64 error.")}));
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
