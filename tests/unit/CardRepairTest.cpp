// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The boot's repair of the cards without a backup: their factory addresses.

#include "LanriseWorld.h"

#include "Lanrise.h"

#include <arpa/inet.h>

using namespace fake;

// ---- a parser that a test can make fail

namespace {

std::string unparsable;

}  // namespace

extern "C" {

int __real_inet_pton(int family, const char* text, void* address);

int __wrap_inet_pton(int family, const char* text, void* address)
{
    return text == unparsable ? 0 : __real_inet_pton(family, text, address);
}

}  // extern "C"

namespace {

// ---- the other cards

std::string FactoryFile(const std::string& address, const std::string& gateway)
{
    return Settings(
        {"MTU = 1500", "HOSTIP = " + address, "SUBMASK = 255.255.255.0", "GATEWAYIP = " + gateway});
}

const std::string kValidFile =
    Settings({"MTU = 1400", "HOSTIP = 10.0.0.2", "SUBMASK = 255.0.0.0", "GATEWAYIP = 10.0.0.1"});

class CheckEthCardConfigTest : public World {};

TEST_F(CheckEthCardConfigTest, EachCardGetsTheAddressOfItsNumber)
{
    std::vector<std::string> cards;
    for (int i = 0; i < 32; ++i) cards.push_back("eth" + std::to_string(i));
    List(cards);
    EXPECT_TRUE(CheckEthCardConfig());
    EXPECT_EQ(Get(CardFile("eth0")), "");  // has a repair of its own
    for (int i = 1; i < 32; ++i) {
        EXPECT_EQ(Get(CardFile(cards[static_cast<size_t>(i)])),
                  FactoryFile("192.168.0." + std::to_string(108 + i), "192.168.0.1"));
    }
}

TEST_F(CheckEthCardConfigTest, AGapDoesNotEndTheWalk)
{
    Put(CardFile("eth2"), "");
    List({"eth0", "eth3"});
    EXPECT_TRUE(CheckEthCardConfig());
    EXPECT_EQ(SavedFiles(), (std::map<std::string, std::string>{
                                {"network", ""},
                                {"networketh2", ""},
                                {"networketh3", FactoryFile("192.168.0.111", "192.168.0.1")}}));
    LogLines misses;
    for (int i = 1; i < 32; ++i) {
        if (i == 3) continue;
        misses.push_back(
            Info("FindWordInLine", "can not find eth" + std::to_string(i) + " in eth0,eth3,"));
    }
    EXPECT_EQ(LogOf("FindWordInLine"), misses);
}

TEST_F(CheckEthCardConfigTest, AValidFileStays)
{
    Put(CardFile("eth1"), kValidFile);
    List({"eth1", "eth32"});
    EXPECT_TRUE(CheckEthCardConfig());
    EXPECT_EQ(Get(CardFile("eth1")), kValidFile);
    EXPECT_EQ(Get(CardFile("eth32")), "");
}

TEST_F(CheckEthCardConfigTest, WhateverFailsTheFilesStayWhole)
{
    Put(CardFile("eth1"), "HOSTIP = 10.0.0.2\n");
    List({"eth1"});
    FailEachCall([] { CheckEthCardConfig(); }, [](const std::string&) { ExpectWellFormedFiles(); });
}

TEST_F(CheckEthCardConfigTest, WithoutItsBaseAddressNoCardIsRepaired)
{
    List({"eth1"});
    unparsable = "192.168.0.108";
    EXPECT_FALSE(CheckEthCardConfig());
    EXPECT_EQ(Log(), LogLines{Error("CheckEthCardConfig", "inet_pton failed!")});
    EXPECT_EQ(Get(CardFile("eth1")), "");
}

struct Family {
    std::string kind;
    std::string net;
    bool (*check)(void);
    std::string operation;
};

class NumberedCardsTest : public World, public testing::WithParamInterface<Family> {
protected:
    static std::string Name(int number) { return GetParam().kind + std::to_string(number); }
    static std::string Factory(int number)
    {
        return FactoryFile(GetParam().net + std::to_string(108 + number), GetParam().net + "1");
    }
};

INSTANTIATE_TEST_SUITE_P(
    Boot, NumberedCardsTest,
    testing::Values(Family{"bond", "192.168.2.", CheckBondCardConfig, "CheckBondCardConfig"},
                    Family{"wlan", "192.168.1.", CheckWlanCardConfig, "CheckWlanCardConfig"}),
    [](const auto& test) { return test.param.operation; });

TEST_P(NumberedCardsTest, EachGetsTheAddressOfItsNumber)
{
    List({"eth0", "eth1", Name(0), Name(1), Name(2)});
    EXPECT_TRUE(GetParam().check());
    EXPECT_EQ(LogOf(GetParam().operation), LogLines{});
    for (int i = 0; i < 3; ++i) EXPECT_EQ(Get(CardFile(Name(i))), Factory(i));
    EXPECT_EQ(Get(CardFile("eth0")), "");
    EXPECT_EQ(Get(CardFile("eth1")), "");
}

TEST_P(NumberedCardsTest, TheFirstGapEndsTheWalk)
{
    List({"eth0", Name(1)});
    EXPECT_TRUE(GetParam().check());
    EXPECT_EQ(Log(), LogLines{Info("FindWordInLine",
                                   "can not find " + Name(0) + " in eth0," + Name(1) + ",")});
    EXPECT_EQ(Get(CardFile(Name(1))), "");
}

TEST_P(NumberedCardsTest, MoreThanEightAreTooMany)
{
    std::vector<std::string> cards;
    for (int i = 0; i < 9; ++i) cards.push_back(Name(i));
    List(cards);
    EXPECT_TRUE(GetParam().check());
    for (int i = 0; i < 8; ++i) EXPECT_EQ(Get(CardFile(Name(i))), Factory(i));
    EXPECT_EQ(Get(CardFile(Name(8))), "");
    EXPECT_EQ(LogOf(GetParam().operation),
              LogLines{Warn(GetParam().operation,
                            "the " + GetParam().kind + " num we can handle is too small 8")});
}

TEST_P(NumberedCardsTest, EightAreToldAsTooManyToo)
{
    std::vector<std::string> cards;
    for (int i = 0; i < 8; ++i) cards.push_back(Name(i));
    List(cards);
    EXPECT_TRUE(GetParam().check());
    EXPECT_EQ(LogOf(GetParam().operation).size(), 1U);
}

TEST_P(NumberedCardsTest, AnAddressThatCannotBeSavedDoesNotKeepTheGatewayBack)
{
    List({Name(0)});
    Put(CardFile(Name(0)), "MTU = 1500\n");
    Fail("fopen " + CardFile(Name(0)) + " w+", EIO);
    EXPECT_TRUE(GetParam().check());
    EXPECT_EQ(Get(CardFile(Name(0))).find("HOSTIP = "), std::string::npos);
    EXPECT_NE(Get(CardFile(Name(0))).find("GATEWAYIP = "), std::string::npos);
}

TEST_P(NumberedCardsTest, SevenAreNot)
{
    std::vector<std::string> cards;
    for (int i = 0; i < 7; ++i) cards.push_back(Name(i));
    List(cards);
    EXPECT_TRUE(GetParam().check());
    EXPECT_EQ(LogOf(GetParam().operation), LogLines{});
}

TEST_P(NumberedCardsTest, AValidFileStays)
{
    Put(CardFile(Name(0)), kValidFile);
    List({Name(0), Name(1)});
    EXPECT_TRUE(GetParam().check());
    EXPECT_EQ(Get(CardFile(Name(0))), kValidFile);
    EXPECT_EQ(Get(CardFile(Name(1))), Factory(1));
}

TEST_P(NumberedCardsTest, WithoutItsBaseAddressNoneIsRepaired)
{
    List({Name(0)});
    unparsable = GetParam().net + "108";
    EXPECT_FALSE(GetParam().check());
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Get(CardFile(Name(0))), "");
}

// ---- switch interface

class CheckDefSwitchConfigTest : public World {
protected:
    static void ListSwitch()
    {
        kernel.Add("eth0");
        kernel.Add("eth1").driver = "rt Switch";
        List({});
    }
};

TEST_F(CheckDefSwitchConfigTest, WithoutASwitchThereIsNothingToDo)
{
    List({"eth0"});
    EXPECT_TRUE(CheckDefSwitchConfig());
    EXPECT_EQ(Trace(), std::vector<std::string>{});
}

TEST_F(CheckDefSwitchConfigTest, AValidFileStays)
{
    Put(CardFile("eth1"), kValidFile);
    ListSwitch();
    EXPECT_TRUE(CheckDefSwitchConfig());
    EXPECT_EQ(Get(CardFile("eth1")), kValidFile);
}

TEST_F(CheckDefSwitchConfigTest, TheSwitchIsItsOwnGateway)
{
    Put(CardFile("eth1"), "HOSTIP = 0.0.0.0\n");
    ListSwitch();
    EXPECT_TRUE(CheckDefSwitchConfig());
    EXPECT_EQ(Get(CardFile("eth1")),
              "HOSTIP = 10.1.1.1\nMTU = 1500\nSUBMASK = 255.255.255.0\nGATEWAYIP = 10.1.1.1\n");
}

TEST_F(CheckDefSwitchConfigTest, NoOtherRepairSeesTheSwitch)
{
    ListSwitch();
    CheckEthCardConfig();
    EXPECT_EQ(Get(CardFile("eth1")), "");
}

}  // namespace
