// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// What a boot settles for the whole device: the default card and the resolvers.

#include "LanriseWorld.h"

#include "Lanrise.h"

using namespace fake;

namespace {

// ---- default card

struct DefaultCase {
    std::string name;
    std::string saved;
    std::vector<std::string> cards;
    std::string settled;
};

class CheckDefaultEthConfigTest : public World, public testing::WithParamInterface<DefaultCase> {};

INSTANTIATE_TEST_SUITE_P(
    Boot, CheckDefaultEthConfigTest,
    testing::Values(DefaultCase{"PresentStays", "eth3", {"eth0", "eth3"}, "eth3"},
                    DefaultCase{"Eth0First", "eth9", {"eth2", "eth1", "eth0"}, "eth0"},
                    DefaultCase{"Eth1Next", "eth9", {"eth3", "eth2", "eth1"}, "eth1"},
                    DefaultCase{"Eth2Last", "eth9", {"eth3", "eth2"}, "eth2"},
                    DefaultCase{"NoneOfTheThree", "eth9", {"eth3", "eth4"}, "eth9"},
                    DefaultCase{"WholeNamesOnly", "eth1", {"eth10", "eth11"}, "eth1"},
                    DefaultCase{"NoCards", "eth9", {"lo"}, "eth9"}),
    [](const auto& test) { return test.param.name; });

TEST_P(CheckDefaultEthConfigTest, SettlesOnACardThatIsThere)
{
    Put(CardFile("eth0"), "DEFAULT_ETH = " + GetParam().saved + "\n");
    List(GetParam().cards);
    EXPECT_TRUE(CheckDefaultEthConfig());
    EXPECT_EQ(
        LogOf("CheckDefaultEthConfig"),
        LogLines{Info("CheckDefaultEthConfig", "default eth is " + GetParam().settled + ".")});
    for (const auto& [file, text] : SavedFiles()) {
        const std::string path = "/mnt/mtd/Config/" + file;
        const std::string prio = path == CardFile(GetParam().settled) ? "PRIO = 0\n" : "PRIO = 1\n";
        const std::string name =
            file == "network" ? "DEFAULT_ETH = " + GetParam().settled + "\n" : "";
        EXPECT_EQ(text, name + prio) << file;
    }
}

class DefaultCardTest : public World {};

TEST_F(DefaultCardTest, IsSavedAgainThoughUnchanged)
{
    Put(CardFile("eth0"), "DEFAULT_ETH = eth0\nPRIO = 0\n");
    List({"eth0"});
    EXPECT_TRUE(CheckDefaultEthConfig());
    EXPECT_EQ(Get(CardFile("eth0")), "DEFAULT_ETH = eth0\nPRIO = 0\n");
    EXPECT_EQ(FileWrites(), (std::vector<std::string>{3, "fopen /mnt/mtd/Config/network w+"}));
}

TEST_F(DefaultCardTest, IsEth0WhenNoneIsSaved)
{
    List({"eth0", "eth1"});
    EXPECT_TRUE(CheckDefaultEthConfig());
    EXPECT_EQ(LogOf("CheckDefaultEthConfig"),
              (LogLines{Warn("CheckDefaultEthConfig", "get default eth failed."),
                        Info("CheckDefaultEthConfig", "default eth is eth0.")}));
    EXPECT_EQ(Get(CardFile("eth0")), "DEFAULT_ETH = eth0\nPRIO = 0\n");
    EXPECT_EQ(Get(CardFile("eth1")), "PRIO = 1\n");
}

TEST_F(DefaultCardTest, IsAnotherWhenNoneIsSavedAndEth0IsNotThere)
{
    List({"eth1"});
    EXPECT_TRUE(CheckDefaultEthConfig());
    EXPECT_TRUE(Logged(Info("CheckDefaultEthConfig", "default eth is eth1.")));
}

TEST_F(DefaultCardTest, ThatCannotBeSavedIsAWarningAndTheResult)
{
    Put(CardFile("eth0"), "DEFAULT_ETH = eth0\n");
    List({"eth0"});
    Fail("opendir", EMFILE);
    EXPECT_FALSE(CheckDefaultEthConfig());
    EXPECT_EQ(LogOf("CheckDefaultEthConfig"),
              (LogLines{Info("CheckDefaultEthConfig", "default eth is eth0."),
                        Warn("CheckDefaultEthConfig", "set def to config failed.")}));
}

TEST_F(DefaultCardTest, WhateverFailsTheFilesStayWhole)
{
    Put(CardFile("eth0"), "DEFAULT_ETH = eth1\nPRIO = 1\n");
    Put(CardFile("eth1"), "PRIO = 0\n");
    List({"eth0", "eth1"});
    FailEachCall([] { CheckDefaultEthConfig(); },
                 [](const std::string&) { ExpectWellFormedFiles(); });
}

// ---- resolvers

constexpr char kResolv[] = "/mnt/mtd/Config/resolv.conf";
constexpr char kResolv6[] = "/mnt/mtd/Config/resolvip6.conf";

const std::string kDefault4 = "nameserver 8.8.8.8\nnameserver 8.8.4.4\n";
const std::string kDefault6 = "nameserver 2001:4860:4860::8888\nnameserver 2001:4860:4860::8844\n";

class CheckDnsServerTest : public World {};

TEST_F(CheckDnsServerTest, MissingFilesGetTheDefaults)
{
    EXPECT_TRUE(CheckDnsServer());
    EXPECT_EQ(Get(kResolv), kDefault4 + kDefault6);
    EXPECT_EQ(Get(kResolv6), kDefault6);
    EXPECT_EQ(LogOf("CheckDnsServer"), LogLines{});
}

TEST_F(CheckDnsServerTest, ServersThatAreThereStay)
{
    const std::string own4 = "nameserver 10.0.0.53\nnameserver 10.0.0.54\n";
    const std::string own6 = "nameserver fd00::53\nnameserver fd00::54\n";
    Put(kResolv, own4 + own6);
    Put(kResolv6, own6);
    EXPECT_TRUE(CheckDnsServer());
    EXPECT_EQ(Get(kResolv), own4 + own6);
    EXPECT_EQ(Get(kResolv6), own6);
    EXPECT_EQ(FileWrites(), std::vector<std::string>{});
}

TEST_F(CheckDnsServerTest, OneServerOfAFamilyIsNotEnough)
{
    const std::string own6 = "nameserver fd00::53\nnameserver fd00::54\n";
    Put(kResolv, "nameserver 10.0.0.53\n" + own6);
    EXPECT_TRUE(CheckDnsServer());
    EXPECT_EQ(Get(kResolv), kDefault4 + own6);

    const std::string own4 = "nameserver 10.0.0.53\nnameserver 10.0.0.54\n";
    Put(kResolv, own4 + "nameserver fd00::53\n");
    EXPECT_TRUE(CheckDnsServer());
    EXPECT_EQ(Get(kResolv), own4 + kDefault6);
}

TEST_F(CheckDnsServerTest, TheIPv6DefaultsAreTriedAlsoAfterIPv4HasFailed)
{
    Fail("fopen /mnt/mtd/Config/resolv.conf w+", ENOSPC);
    EXPECT_TRUE(CheckDnsServer());
    EXPECT_EQ(LogOf("CheckDnsServer"),
              LogLines{Warn("CheckDnsServer", "recover IPv4 default DNS server failed")});
    EXPECT_EQ(Get(kResolv), kDefault6);
    EXPECT_EQ(Get(kResolv6), kDefault6);
}

TEST_F(CheckDnsServerTest, EachFamilyThatCannotBeWrittenIsAWarning)
{
    FailAll("fopen /mnt/mtd/Config/resolv.conf w+", ENOSPC);
    EXPECT_TRUE(CheckDnsServer());
    EXPECT_EQ(LogOf("CheckDnsServer"),
              (LogLines{Warn("CheckDnsServer", "recover IPv4 default DNS server failed"),
                        Warn("CheckDnsServer", "recover IPv6 default DNS server failed")}));
}

TEST_F(CheckDnsServerTest, WhateverFailsTheFilesStayWhole)
{
    Put(kResolv, "nameserver 10.0.0.53\n");
    FailEachCall([] { CheckDnsServer(); }, [](const std::string&) { ExpectWellFormedFiles(); });
}

}  // namespace
