// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// What changes the IPv6 addresses of an interface, and what is asked before.

#include "Network6.h"

#include "fake/World.h"

#include <linux/sockios.h>
#include <net/if.h>

using namespace fake;

namespace {

using Calls = std::vector<std::string>;

constexpr char kTable[] = "/proc/net/if_inet6";
constexpr char kLongest[] = "1111:2222:3333:4444:5555:6666:7777:8888";  // 39 characters
constexpr unsigned kGlobal = 0;
constexpr unsigned kLinkLocal = 0x20;
constexpr unsigned kCompatible = 0x80;

class Network6ChangeTest : public World {
protected:
    void SetUp() override
    {
        World::SetUp();
        kernel.Add("eth0");
        kernel.Add("eth1");
    }

    static Card& Eth1() { return kernel.At("eth1"); }
};

/// Addresses of eth1 as "text/prefix".
Calls AddressesOfEth1()
{
    Calls texts;
    for (const Address6& address : kernel.At("eth1").addresses6) {
        texts.push_back(address.text + "/" + std::to_string(address.prefix));
    }
    return texts;
}

void ExpectSilentAndUntouched()
{
    EXPECT_EQ(Trace(), Calls{});
    EXPECT_EQ(Log(), LogLines{});
}

// ==== Setting an address

class Net6_SetIPv6byNameTest : public Network6ChangeTest {};

TEST_F(Net6_SetIPv6byNameTest, AddsTheAddressAndTakesTheInterfaceUp)
{
    EXPECT_TRUE(Net6_SetIPv6byName("eth1", "2001:DB8::1", "48"));
    EXPECT_EQ(TraceOf({"ioctl", "mutex", "open"}),
              (Calls{"ioctl SIOCGIFINDEX eth1", "ioctl SIOCSIFADDR", "ioctl SIOCGIFFLAGS eth1",
                     "ioctl SIOCSIFFLAGS eth1"}));
    EXPECT_EQ(AddressesOfEth1(), (Calls{"2001:db8::1/48"}));
    EXPECT_EQ(Eth1().flags, IFF_UP);
    EXPECT_EQ(kernel.At("eth0").addresses6.size(), 0U);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Net6_SetIPv6byNameTest, StopsAtAnUnknownInterface)
{
    EXPECT_FALSE(Net6_SetIPv6byName("eth7", "no address", "64"));
    EXPECT_EQ(TraceOf({"ioctl"}), (Calls{"ioctl SIOCGIFINDEX eth7"}));
    EXPECT_EQ(Log(), (LogLines{Refused6(SIOCGIFINDEX, ENODEV),
                               Error("Net6_GetInterfaceIndex", "get eth7 index failed."),
                               Error("Net6_SetIPv6byName", "get index error.")}));
}

TEST_F(Net6_SetIPv6byNameTest, RefusesATextThatIsNoAddress)
{
    for (const char* text : {"", ":", "2001:db8::1/64", "fe80::1%eth1", "10.0.0.1", " 2001:db8::1",
                             "2001:db8::12345", "1:2:3:4:5:6:7", "::1::"}) {
        SCOPED_TRACE(text);
        ClearLog();
        ClearTrace();
        EXPECT_FALSE(Net6_SetIPv6byName("eth1", text, nullptr));
        EXPECT_EQ(TraceOf({"ioctl"}), (Calls{"ioctl SIOCGIFINDEX eth1"}));
        EXPECT_EQ(Log(), (LogLines{Error("Net6_SetIPv6byName",
                                         "address format error or inet_pton failed[" +
                                             std::string(text) + "]")}));
    }
}

TEST_F(Net6_SetIPv6byNameTest, TheZeroAddressChangesNothing)
{
    for (const char* text : {"::", "0:0:0:0:0:0:0:0", "::0.0.0.0"}) {
        SCOPED_TRACE(text);
        ClearTrace();
        EXPECT_TRUE(Net6_SetIPv6byName("eth1", text, nullptr));
        EXPECT_EQ(TraceOf({"ioctl"}), (Calls{"ioctl SIOCGIFINDEX eth1"}));
    }
    EXPECT_EQ(AddressesOfEth1(), Calls{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Net6_SetIPv6byNameTest, NoPrefixMeans64)
{
    EXPECT_TRUE(Net6_SetIPv6byName("eth1", "2001:db8::1", nullptr));
    EXPECT_EQ(AddressesOfEth1(), (Calls{"2001:db8::1/64"}));
    EXPECT_EQ(Log(), (LogLines{Warn("Net6_SetIPv6byName",
                                    "perfix is NULL use 64 for default.[eth1,2001:db8::1]")}));
}

TEST_F(Net6_SetIPv6byNameTest, ThePrefixIsReadAsFarAsItIsANumber)
{
    struct {
        const char* text;
        unsigned prefix;
    } const cases[] = {{"128", 128}, {"0", 0},  {" 48", 48},         {"56x", 56},
                       {"064", 64},  {"", 0},   {"abc", 0},          {"0x40", 0},
                       {"-1", ~0U},  {"+7", 7}, {"4294967360", 64U}, {"300", 300}};
    for (const auto& [text, prefix] : cases) {
        SCOPED_TRACE(text);
        Eth1().addresses6.clear();
        EXPECT_TRUE(Net6_SetIPv6byName("eth1", "2001:db8::1", text));
        EXPECT_EQ(AddressesOfEth1(), (Calls{"2001:db8::1/" + std::to_string(prefix)}));
    }
}

TEST_F(Net6_SetIPv6byNameTest, ARefusedAddressLeavesTheLinkAlone)
{
    Fail("ioctl SIOCSIFADDR", EACCES);
    EXPECT_FALSE(Net6_SetIPv6byName("eth1", "2001:db8::1", "64"));
    EXPECT_EQ(TraceOf({"ioctl"}), (Calls{"ioctl SIOCGIFINDEX eth1", "ioctl SIOCSIFADDR"}));
    EXPECT_EQ(Log(), (LogLines{Refused6(SIOCSIFADDR, EACCES),
                               Error("Net6_SetIPv6byName", "Set ip failed eth1:2001:db8::1")}));
}

TEST_F(Net6_SetIPv6byNameTest, TheAddressIsSetAlsoWhenTheLinkStaysDown)
{
    Fail("ioctl SIOCSIFFLAGS", EPERM);
    EXPECT_TRUE(Net6_SetIPv6byName("eth1", "2001:db8::1", "64"));
    EXPECT_EQ(AddressesOfEth1(), (Calls{"2001:db8::1/64"}));
    EXPECT_EQ(Log(), (LogLines{Refused(SIOCSIFFLAGS, EPERM, "eth1"),
                               Error("InterfaceUp", "up eth1 failed,setflags error."),
                               Warn("Net6_SetIPv6byName", "up eth1 failed.[2001:db8::1]")}));
}

TEST_F(Net6_SetIPv6byNameTest, ANullIsSilent)
{
    EXPECT_FALSE(Net6_SetIPv6byName(nullptr, "2001:db8::1", "64"));
    EXPECT_FALSE(Net6_SetIPv6byName("eth1", nullptr, "64"));
    ExpectSilentAndUntouched();
}

TEST_F(Net6_SetIPv6byNameTest, TheResultSaysWhetherTheAddressIsSet)
{
    bool set = false;
    FailEachCall([&] { set = Net6_SetIPv6byName("eth1", "2001:db8::1", "64"); },
                 [&](const std::string&) {
                     EXPECT_EQ(AddressesOfEth1(), set ? Calls{"2001:db8::1/64"} : Calls{});
                 });
}

// ==== Comparing

class Net6_IsIPAddressIpv6ExistTest : public Network6ChangeTest {};

TEST_F(Net6_IsIPAddressIpv6ExistTest, ComparesTextsWithoutRegardToCase)
{
    Eth1().addresses6 = {{"2001:db8::abcd", 64, kGlobal}, {"2001:db8::2", 64, kGlobal}};
    EXPECT_TRUE(Net6_IsIPAddressIpv6Exist("eth1", "2001:db8::abcd", "64"));
    EXPECT_TRUE(Net6_IsIPAddressIpv6Exist("eth1", "2001:DB8::AbCd", "64"));

    EXPECT_FALSE(Net6_IsIPAddressIpv6Exist("eth1", "2001:db8:0::abcd", "64"));
    EXPECT_FALSE(Net6_IsIPAddressIpv6Exist("eth1", "2001:db8::abcd ", "64"));
    EXPECT_FALSE(Net6_IsIPAddressIpv6Exist("eth1", "2001:db8::abc", "64"));
    EXPECT_FALSE(Net6_IsIPAddressIpv6Exist("eth1", "2001:db8::abcd", "064"));
    EXPECT_FALSE(Net6_IsIPAddressIpv6Exist("eth1", "2001:db8::abcd", "6"));
    EXPECT_FALSE(Net6_IsIPAddressIpv6Exist("eth1", "2001:db8::abcd", ""));
    EXPECT_FALSE(Net6_IsIPAddressIpv6Exist("eth1", "2001:db8::2", "64"));  // only the first counts
    EXPECT_FALSE(Net6_IsIPAddressIpv6Exist("eth0", "2001:db8::abcd", "64"));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Net6_IsIPAddressIpv6ExistTest, TheLongestAddressIsComparedWhole)
{
    Eth1().addresses6 = {{kLongest, 128, kGlobal}};
    EXPECT_TRUE(Net6_IsIPAddressIpv6Exist("eth1", kLongest, "128"));
}

TEST_F(Net6_IsIPAddressIpv6ExistTest, ACompatibleAddressCountsAndALinkLocalOneDoesNot)
{
    Eth1().addresses6 = {{"fe80::1", 64, kLinkLocal}, {"::10.0.0.2", 96, kCompatible}};
    EXPECT_TRUE(Net6_IsIPAddressIpv6Exist("eth1", "::10.0.0.2", "96"));
    EXPECT_FALSE(Net6_IsIPAddressIpv6Exist("eth1", "fe80::1", "64"));
}

TEST_F(Net6_IsIPAddressIpv6ExistTest, NoAddressEqualsNone)
{
    EXPECT_FALSE(Net6_IsIPAddressIpv6Exist("eth1", "", "64"));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Net6_IsIPAddressIpv6ExistTest, ANullIsSilent)
{
    EXPECT_FALSE(Net6_IsIPAddressIpv6Exist(nullptr, "2001:db8::1", "64"));
    EXPECT_FALSE(Net6_IsIPAddressIpv6Exist("eth1", nullptr, "64"));
    EXPECT_FALSE(Net6_IsIPAddressIpv6Exist("eth1", "2001:db8::1", nullptr));
    ExpectSilentAndUntouched();
}

TEST_F(Net6_IsIPAddressIpv6ExistTest, ATableThatCannotBeReadHoldsNothing)
{
    Eth1().addresses6 = {{"2001:db8::1", 64, kGlobal}};
    FailAll("open", EIO);
    EXPECT_FALSE(Net6_IsIPAddressIpv6Exist("eth1", "2001:db8::1", "64"));
}

// ==== Removing an address

class Net6_DelIPAddressIpv6Test : public Network6ChangeTest {
protected:
    void SetUp() override
    {
        Network6ChangeTest::SetUp();
        Eth1().addresses6 = {{"2001:db8::1", 48, kGlobal}, {"2001:db8::2", 56, kGlobal}};
    }

    static LogLine Differs(const std::string& addr)
    {
        return Warn("Net6_DelIPAddressIpv6",
                    "the ipv6 addr in config is 2001:db8::1 ,different with params:" + addr +
                        ".[eth1]");
    }
};

TEST_F(Net6_DelIPAddressIpv6Test, WithoutAddressTheCurrentOneGoesWithItsOwnPrefix)
{
    EXPECT_TRUE(Net6_DelIPAddressIpv6("eth1", nullptr, "64"));
    EXPECT_EQ(AddressesOfEth1(), (Calls{"2001:db8::2/56"}));
    EXPECT_EQ(TraceOf({"ioctl", "open"}), (Calls{"open /proc/net/if_inet6 O_RDONLY",
                                                 "ioctl SIOCGIFINDEX eth1", "ioctl SIOCDIFADDR"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Net6_DelIPAddressIpv6Test, TheCurrentAddressKeepsItsPrefixWhateverIsGiven)
{
    EXPECT_TRUE(Net6_DelIPAddressIpv6("eth1", "2001:db8::1", "64"));
    EXPECT_EQ(AddressesOfEth1(), (Calls{"2001:db8::2/56"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Net6_DelIPAddressIpv6Test, AnotherAddressTakesTheGivenPrefix)
{
    EXPECT_TRUE(Net6_DelIPAddressIpv6("eth1", "2001:db8::2", "56"));
    EXPECT_EQ(AddressesOfEth1(), (Calls{"2001:db8::1/48"}));
    EXPECT_EQ(Log(), (LogLines{Differs("2001:db8::2")}));
}

TEST_F(Net6_DelIPAddressIpv6Test, AnotherAddressWithoutPrefixTakesTheCurrentOne)
{
    EXPECT_FALSE(Net6_DelIPAddressIpv6("eth1", "2001:db8::2", nullptr));
    EXPECT_EQ(Log(), (LogLines{Differs("2001:db8::2"), Refused6(SIOCDIFADDR, EADDRNOTAVAIL),
                               Error("Net6_DelIPAddressIpv6",
                                     "del ip[2001:db8::2/48] failed:error Cannot assign requested "
                                     "address")}));
    EXPECT_EQ(AddressesOfEth1(), (Calls{"2001:db8::1/48", "2001:db8::2/56"}));

    Eth1().addresses6[1].prefix = 48;
    EXPECT_TRUE(Net6_DelIPAddressIpv6("eth1", "2001:db8::2", nullptr));
    EXPECT_EQ(AddressesOfEth1(), (Calls{"2001:db8::1/48"}));
}

TEST_F(Net6_DelIPAddressIpv6Test, SevenCharactersOfTheGivenPrefixCount)
{
    EXPECT_TRUE(Net6_DelIPAddressIpv6("eth1", "2001:db8::2", "00000561"));
    EXPECT_EQ(AddressesOfEth1(), (Calls{"2001:db8::1/48"}));
    EXPECT_FALSE(Net6_DelIPAddressIpv6("eth1", "x", "123456789"));
    EXPECT_TRUE(Logged(
        Error("Net6_DelIPAddressIpv6", "address format error or inet_pton failed[x/1234567]")));
}

TEST_F(Net6_DelIPAddressIpv6Test, AnotherSpellingIsAnotherAddress)
{
    EXPECT_TRUE(Net6_DelIPAddressIpv6("eth1", "2001:DB8::1", "48"));
    EXPECT_EQ(AddressesOfEth1(), (Calls{"2001:db8::2/56"}));
    EXPECT_EQ(Log(), (LogLines{Differs("2001:DB8::1")}));
}

TEST_F(Net6_DelIPAddressIpv6Test, RefusesATextThatIsNoAddress)
{
    for (const char* text : {"", "2001:db8::1/48", "2001:db8::1 ", "10.0.0.2"}) {
        SCOPED_TRACE(text);
        ClearLog();
        ClearTrace();
        EXPECT_FALSE(Net6_DelIPAddressIpv6("eth1", text, nullptr));
        EXPECT_EQ(TraceOf({"ioctl"}), (Calls{"ioctl SIOCGIFINDEX eth1"}));
        EXPECT_EQ(Log(),
                  (LogLines{Differs(text), Error("Net6_DelIPAddressIpv6",
                                                 "address format error or inet_pton failed[" +
                                                     std::string(text) + "/48]")}));
    }
}

TEST_F(Net6_DelIPAddressIpv6Test, ACardWithoutAddressHasNothingToRemove)
{
    Eth1().addresses6 = {{"fe80::1", 64, kLinkLocal}};
    EXPECT_TRUE(Net6_DelIPAddressIpv6("eth1", "fe80::1", "64"));
    EXPECT_TRUE(Net6_DelIPAddressIpv6("eth1", nullptr, nullptr));
    const LogLine line =
        Info("Net6_DelIPAddressIpv6", "get ipv6 addr failed, eth1 maybe has no ipv6 addr.");
    EXPECT_EQ(Log(), (LogLines{line, line}));
    EXPECT_EQ(TraceOf({"ioctl"}), Calls{});
    EXPECT_EQ(AddressesOfEth1(), (Calls{"fe80::1/64"}));
}

TEST_F(Net6_DelIPAddressIpv6Test, StopsWhenTheInterfaceHasNoIndex)
{
    Fail("ioctl SIOCGIFINDEX", ENODEV);
    EXPECT_FALSE(Net6_DelIPAddressIpv6("eth1", "2001:db8::2", "56"));
    EXPECT_EQ(Log(), (LogLines{Refused6(SIOCGIFINDEX, ENODEV),
                               Error("Net6_GetInterfaceIndex", "get eth1 index failed."),
                               Error("Net6_DelIPAddressIpv6", "get index error.")}));
    EXPECT_EQ(AddressesOfEth1(), (Calls{"2001:db8::1/48", "2001:db8::2/56"}));
}

TEST_F(Net6_DelIPAddressIpv6Test, TheReasonOfARefusalIsTold)
{
    Fail("ioctl SIOCDIFADDR", EPERM);
    EXPECT_FALSE(Net6_DelIPAddressIpv6("eth1", nullptr, nullptr));
    EXPECT_EQ(Log(),
              (LogLines{Refused6(SIOCDIFADDR, EPERM),
                        Error("Net6_DelIPAddressIpv6",
                              "del ip[2001:db8::1/48] failed:error Operation not permitted")}));
}

TEST_F(Net6_DelIPAddressIpv6Test, ANullNameIsSilent)
{
    EXPECT_FALSE(Net6_DelIPAddressIpv6(nullptr, "2001:db8::1", "48"));
    ExpectSilentAndUntouched();
}

TEST_F(Net6_DelIPAddressIpv6Test, ASuccessMeansGoneOrUnreadable)
{
    bool removed = false;
    FailEachCall([&] { removed = Net6_DelIPAddressIpv6("eth1", nullptr, nullptr); },
                 [&](const std::string& failed) {
                     const bool unread = failed.find(kTable) != std::string::npos;
                     const bool gone = AddressesOfEth1() == Calls{"2001:db8::2/56"};
                     EXPECT_EQ(removed, gone || unread);
                 });
}

}  // namespace
