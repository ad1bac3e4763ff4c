// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The IPv6 address and gateway of one card: the kernel first, its setting file second.

#include "CommonApi.h"

#include "MemberNames.h"
#include "fake/World.h"

#include <functional>

#include <linux/sockios.h>
#include <net/if.h>

using namespace fake;

namespace {

constexpr char kFile1[] = "/mnt/mtd/Config/networkip61";
constexpr char kNoAddress[] = "HOSTIP = 0:0:0::0\nSUBMASK = 64\n";
constexpr char kSaved[] = "HOSTIP = 2001:db8::1\nSUBMASK = 64\n";
constexpr char kDone[] = "delete eth1 old ipv6 addr success.";
constexpr char kAbsent[] = "get ipv6 addr failed, eth1 maybe has no ipv6 addr.";

/// Two cards; eth1 has a link-local address, as any card that is up, and one global address.
class IPv6World : public World {
protected:
    void SetUp() override
    {
        World::SetUp();
        kernel.Add("eth0");
        kernel.Add("eth1").addresses6 = {{"fe80::ff:fe00:1", 64, 0x20}, {"2001:db8::1", 64, 0}};
        Put(kFile1, kSaved);
    }

    static void WithoutAddress() { kernel.At("eth1").addresses6.clear(); }

    /// What the kernel was asked, apart from the drivers' names for the list of cards.
    static Lines Requests() { return TraceOf({"ioctl SIOC"}); }

    /// What changes a store, in order.
    static Lines Changes()
    {
        Lines changes;
        for (const std::string& call : TraceOf({"ioctl", "fopen"})) {
            if (call == "ioctl SIOCSIFADDR" || call == "ioctl SIOCDIFADDR" ||
                call.find(" w+") != std::string::npos) {
                changes.push_back(call);
            }
        }
        return changes;
    }
};

Lines Addresses(const std::string& card = "eth1")
{
    Lines texts;
    for (const Address6& address : kernel.At(card).addresses6) {
        if (address.scope == 0)
            texts.push_back(address.text + "/" + std::to_string(address.prefix));
    }
    return texts;
}

const std::string kWrites1 = std::string("fopen ") + kFile1 + " w+";

LogLine Began(const std::string& addr, const std::string& prefix)
{
    return Info("NetSetIPv6byName", "ipv6addrSet name:eth1 addr:" + addr + " perfix:" + prefix);
}

LogLine Deletes(const std::string& addr)
{
    return Info("NetDelIPAddressIpv6", "ipv6addrDel name:eth1 addr:" + addr);
}

// ---- what all of them share

class IPv6OperationTest : public IPv6World {};

struct Operation {
    std::string name;
    std::function<bool(const char*)> run;
    std::string announced;  // for the card eth9; empty when nothing is
};

std::vector<Operation> Operations()
{
    static char text[64];
    static char other[8];
    return {
        {"NetSetIPv6byName", [](auto card) { return NetSetIPv6byName(card, "2001:db8::2", "129"); },
         "ipv6addrSet name:eth9 addr:2001:db8::2 perfix:129"},
        {"NetDelIPAddressIpv6", [](auto card) { return NetDelIPAddressIpv6(card, "2001:db8::1"); },
         "ipv6addrDel name:eth9 addr:2001:db8::1"},
        {"NetGetIPv6byName",
         [](auto card) { return NetGetIPv6byName(card, text, sizeof(text), other, sizeof(other)); },
         ""},
        {"NetGetSysIPv6byName",
         [](auto card) {
             return NetGetSysIPv6byName(card, text, sizeof(text), other, sizeof(other));
         },
         ""},
        {"NetGetLinkLocalAddressIpv6",
         [](auto card) { return NetGetLinkLocalAddressIpv6(card, text, sizeof(text)); }, ""},
        {"NetSetGatewayIPv6byName",
         [](auto card) { return NetSetGatewayIPv6byName(card, "2001:db8::ff"); },
         "ipv6gwAdd name:eth9 addr:2001:db8::ff"},
        {"NetGetGatewayIPv6byName",
         [](auto card) { return NetGetGatewayIPv6byName(card, text, sizeof(text)); }, ""},
    };
}

TEST_F(IPv6OperationTest, AnUnknownCardIsRefusedBeforeAnythingElse)
{
    for (const Operation& operation : Operations()) {
        SCOPED_TRACE(operation.name);
        ClearLog();
        ClearTrace();
        EXPECT_FALSE(operation.run("eth9"));
        LogLines wanted = {Info("FindWordInLine", "can not find eth9 in eth0,eth1,"),
                           Error("CheckEthExist", "can not find eth9 in eth0,eth1,.")};
        if (!operation.announced.empty()) {
            wanted.insert(wanted.begin(), Info(operation.name, operation.announced));
        }
        EXPECT_EQ(Log(), wanted);
        EXPECT_EQ(TraceOf({"ioctl SIOC", "fopen", "open /mnt/mtd/Config/networkip6"}), Lines{});
    }
}

TEST_F(IPv6OperationTest, ANullIsRefusedInSilence)
{
    char text[64];
    for (const Operation& operation : Operations()) {
        EXPECT_FALSE(operation.run(nullptr)) << operation.name;
    }
    EXPECT_FALSE(NetSetIPv6byName("eth1", nullptr, "64"));
    EXPECT_FALSE(NetSetIPv6byName("eth1", "2001:db8::2", nullptr));
    EXPECT_FALSE(NetDelIPAddressIpv6("eth1", nullptr));
    EXPECT_FALSE(NetGetIPv6byName("eth1", nullptr, 64, text, 64));
    EXPECT_FALSE(NetGetIPv6byName("eth1", text, 64, nullptr, 64));
    EXPECT_FALSE(NetGetSysIPv6byName("eth1", nullptr, 64, text, 64));
    EXPECT_FALSE(NetGetSysIPv6byName("eth1", text, 64, nullptr, 64));
    EXPECT_FALSE(NetGetLinkLocalAddressIpv6("eth1", nullptr, 64));
    EXPECT_FALSE(NetSetGatewayIPv6byName("eth1", nullptr));
    EXPECT_FALSE(NetGetGatewayIPv6byName("eth1", nullptr, 64));
    EXPECT_EQ(Trace(), Lines{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(IPv6OperationTest, ATextOfNoSizeIsNeverWritten)
{
    Put(kFile1, std::string(kSaved) + "GATEWAYIP = 2001:db8::ff\n");
    const auto addresses = kernel.At("eth1").addresses6;
    for (const int size : {0, -1}) {
        kernel.At("eth1").addresses6 = addresses;
        char text[64] = "untouched";
        char prefix[] = "none";
        EXPECT_FALSE(NetGetSysIPv6byName("eth1", text, size, prefix, sizeof(prefix))) << size;
        EXPECT_FALSE(NetGetSysIPv6byName("eth1", text, sizeof(text), prefix, size)) << size;
        EXPECT_STREQ(prefix, "none");
        EXPECT_FALSE(NetGetGatewayIPv6byName("eth1", text, size)) << size;
        EXPECT_FALSE(NetGetLinkLocalAddressIpv6("eth1", text, size)) << size;
        WithoutAddress();
        EXPECT_FALSE(NetGetLinkLocalAddressIpv6("eth1", text, size)) << size;
        EXPECT_STREQ(text, "untouched");
    }
}

// ---- NetSetIPv6byName

class NetSetIPv6byNameTest : public IPv6World {};

TEST_F(NetSetIPv6byNameTest, ReplacesTheAddressInTheKernelAndThenInTheFile)
{
    EXPECT_TRUE(NetSetIPv6byName("eth1", "2001:db8::2", "48"));
    EXPECT_EQ(Addresses(), Lines{"2001:db8::2/48"});
    EXPECT_EQ(Get(kFile1), "HOSTIP = 2001:db8::2\nSUBMASK = 48\n");
    EXPECT_EQ(Changes(), (Lines{"ioctl SIOCDIFADDR", "ioctl SIOCSIFADDR", kWrites1, kWrites1}));
    EXPECT_EQ(Log(), (LogLines{Began("2001:db8::2", "48"), Info("NetSetIPv6byName", kDone)}));
}

TEST_F(NetSetIPv6byNameTest, GivesACardItsFirstAddress)
{
    WithoutAddress();
    Remove(kFile1);
    EXPECT_TRUE(NetSetIPv6byName("eth1", "2001:db8::2", "64"));
    EXPECT_EQ(Addresses(), Lines{"2001:db8::2/64"});
    EXPECT_EQ(Get(kFile1), "HOSTIP = 2001:db8::2\nSUBMASK = 64\n");
    const LogLines log = Log();
    ASSERT_GE(log.size(), 3U);
    EXPECT_EQ(log[0], Began("2001:db8::2", "64"));
    EXPECT_EQ(log[1], Info("Net6_DelIPAddressIpv6", kAbsent));
    EXPECT_EQ(log[2], Info("NetSetIPv6byName", kDone));
}

TEST_F(NetSetIPv6byNameTest, WhatTheCardHasAlreadyIsLeftAlone)
{
    Put(kFile1, "HOSTIP = 2001:db8::9\nSUBMASK = 48\n");
    EXPECT_TRUE(NetSetIPv6byName("eth1", "2001:DB8::1", "64"));
    EXPECT_EQ(Get(kFile1), "HOSTIP = 2001:db8::9\nSUBMASK = 48\n");
    EXPECT_EQ(TraceOf({"ioctl SIOC", "fopen"}), Lines{});
    EXPECT_EQ(Log(), LogLines{Began("2001:DB8::1", "64")});
}

TEST_F(NetSetIPv6byNameTest, AnotherPrefixIsAnotherAddress)
{
    EXPECT_TRUE(NetSetIPv6byName("eth1", "2001:db8::1", "65"));
    EXPECT_EQ(Addresses(), Lines{"2001:db8::1/65"});
}

TEST_F(NetSetIPv6byNameTest, APrefixAbove128OrBelowZeroIsRefusedBeforeAnyChange)
{
    for (const char* prefix : {"129", "-1", "2147483647", "-2147483648"}) {
        SCOPED_TRACE(prefix);
        ClearLog();
        EXPECT_FALSE(NetSetIPv6byName("eth1", "2001:db8::2", prefix));
        EXPECT_EQ(Log(), (LogLines{Began("2001:db8::2", prefix),
                                   Error("NetSetIPv6byName", "invalid pagram of perfix!")}));
    }
    EXPECT_EQ(TraceOf({"open /proc/net/if_inet6"}), Lines{});
    EXPECT_EQ(Changes(), Lines{});
    EXPECT_EQ(Addresses(), Lines{"2001:db8::1/64"});
    EXPECT_EQ(Get(kFile1), kSaved);
}

TEST_F(NetSetIPv6byNameTest, APrefixWithoutADigitInFrontIsSetAndNotSaved)
{
    struct Case {
        const char* prefix;
        const char* inForce;
    };
    for (const Case& test : {Case{"", "/0"}, Case{"x", "/0"}, Case{" 48", "/48"}}) {
        SCOPED_TRACE(test.prefix);
        EXPECT_TRUE(NetSetIPv6byName("eth1", "2001:db8::2", test.prefix));
        EXPECT_EQ(Addresses(), Lines{std::string("2001:db8::2") + test.inForce});
        EXPECT_EQ(Get(kFile1), kSaved);
    }
}

TEST_F(NetSetIPv6byNameTest, APrefixOfUpTo128Passes)
{
    for (const std::string prefix : {"128", "0", "1"}) {
        SCOPED_TRACE(prefix);
        EXPECT_TRUE(NetSetIPv6byName("eth1", "2001:db8::2", prefix.c_str()));
        EXPECT_EQ(Addresses(), Lines{"2001:db8::2/" + prefix});
        EXPECT_EQ(Get(kFile1), "HOSTIP = 2001:db8::2\nSUBMASK = " + prefix + "\n");
    }
}

TEST_F(NetSetIPv6byNameTest, AnEmptyAddressTakesItAwayInBothStores)
{
    EXPECT_TRUE(NetSetIPv6byName("eth1", "", "48"));
    EXPECT_EQ(Addresses(), Lines{});
    EXPECT_EQ(Get(kFile1), kNoAddress);
    EXPECT_EQ(Changes(), (Lines{"ioctl SIOCDIFADDR", kWrites1, kWrites1}));
    EXPECT_EQ(Log(), (LogLines{Began("", "48"), Info("NetSetIPv6byName", kDone),
                               Warn("NetSetIPv6byName", "addr is empty.")}));
}

TEST_F(NetSetIPv6byNameTest, AnEmptyAddressNeedsAPrefixThatHolds)
{
    EXPECT_FALSE(NetSetIPv6byName("eth1", "", "129"));
    EXPECT_EQ(Addresses(), Lines{"2001:db8::1/64"});
    EXPECT_EQ(Get(kFile1), kSaved);
    EXPECT_EQ(Log(),
              (LogLines{Began("", "129"), Error("NetSetIPv6byName", "invalid pagram of perfix!")}));
}

TEST_F(NetSetIPv6byNameTest, AnEmptyAddressThatCannotBeSavedFails)
{
    FailAll(kWrites1, EROFS);
    EXPECT_FALSE(NetSetIPv6byName("eth1", "", "64"));
    EXPECT_EQ(Addresses(), Lines{});
    EXPECT_EQ(Get(kFile1), kSaved);
}

TEST_F(NetSetIPv6byNameTest, GoesOnWhenTheOldAddressStays)
{
    Fail("ioctl SIOCDIFADDR", EPERM);
    EXPECT_TRUE(NetSetIPv6byName("eth1", "2001:db8::2", "64"));
    EXPECT_EQ(Addresses(), (Lines{"2001:db8::1/64", "2001:db8::2/64"}));
    EXPECT_EQ(Get(kFile1), "HOSTIP = 2001:db8::2\nSUBMASK = 64\n");
    EXPECT_EQ(Log(), (LogLines{Began("2001:db8::2", "64"), Refused6(SIOCDIFADDR, EPERM),
                               Error("Net6_DelIPAddressIpv6",
                                     "del ip[2001:db8::1/64] failed:error Operation not permitted"),
                               Warn("NetSetIPv6byName", "delete eth1 old ipv6 addr failed.")}));
}

TEST_F(NetSetIPv6byNameTest, ARefusedAddressLeavesTheFileAndNoAddress)
{
    Fail("ioctl SIOCSIFADDR", EACCES);
    EXPECT_FALSE(NetSetIPv6byName("eth1", "2001:db8::2", "64"));
    EXPECT_EQ(Addresses(), Lines{});
    EXPECT_EQ(Get(kFile1), kSaved);
    EXPECT_EQ(Changes(), (Lines{"ioctl SIOCDIFADDR", "ioctl SIOCSIFADDR"}));
    EXPECT_EQ(Log(), (LogLines{Began("2001:db8::2", "64"), Info("NetSetIPv6byName", kDone),
                               Refused6(SIOCSIFADDR, EACCES),
                               Error("Net6_SetIPv6byName", "Set ip failed eth1:2001:db8::2")}));
}

TEST_F(NetSetIPv6byNameTest, ATextThatIsNoAddressLosesTheOldOne)
{
    EXPECT_FALSE(NetSetIPv6byName("eth1", "10.0.0.1", "64"));
    EXPECT_EQ(Addresses(), Lines{});
    EXPECT_EQ(Get(kFile1), kSaved);
}

TEST_F(NetSetIPv6byNameTest, AFileThatLagsIsNoFailure)
{
    FailAll(kWrites1, EROFS);
    EXPECT_TRUE(NetSetIPv6byName("eth1", "2001:db8::2", "64"));
    EXPECT_EQ(Addresses(), Lines{"2001:db8::2/64"});
    EXPECT_EQ(Get(kFile1), kSaved);
}

TEST_F(NetSetIPv6byNameTest, TellsWhatTheKernelDidWhateverFails)
{
    static bool done;
    FailEachCall([] { done = NetSetIPv6byName("eth1", "2001:db8::2", "48"); },
                 [](const std::string&) {
                     const Lines addresses = Addresses();
                     const bool has = !addresses.empty() && addresses.back() == "2001:db8::2/48";
                     EXPECT_EQ(done, has);
                     EXPECT_TRUE(done || Get(kFile1) == kSaved);
                 });
}

// ---- NetDelIPAddressIpv6

class NetDelIPAddressIpv6Test : public IPv6World {};

TEST_F(NetDelIPAddressIpv6Test, ALinkLocalAddressAloneStays)
{
    kernel.At("eth1").addresses6.pop_back();
    EXPECT_TRUE(NetDelIPAddressIpv6("eth1", "fe80::ff:fe00:1"));
    EXPECT_EQ(kernel.At("eth1").addresses6.size(), 1U);
    EXPECT_EQ(Get(kFile1), kNoAddress);
}

TEST_F(NetDelIPAddressIpv6Test, TakesTheAddressAwayInBothStores)
{
    EXPECT_TRUE(NetDelIPAddressIpv6("eth1", "2001:db8::1"));
    EXPECT_EQ(Addresses(), Lines{});
    EXPECT_EQ(Get(kFile1), kNoAddress);
    EXPECT_EQ(Changes(), (Lines{"ioctl SIOCDIFADDR", kWrites1, kWrites1}));
    EXPECT_EQ(Log(), LogLines{Deletes("2001:db8::1")});
}

TEST_F(NetDelIPAddressIpv6Test, CutsThePrefixOffTheCallersText)
{
    char text[] = "2001:db8::1/64";
    EXPECT_TRUE(NetDelIPAddressIpv6("eth1", text));
    EXPECT_EQ(std::string(text, sizeof(text)), std::string("2001:db8::1\00064\0", 15));
    EXPECT_EQ(Addresses(), Lines{});
    EXPECT_EQ(Log(), LogLines{Deletes("2001:db8::1/64")});
}

TEST_F(NetDelIPAddressIpv6Test, ThePrefixTellsApartAnAddressThatIsNotTheFirst)
{
    kernel.At("eth1").addresses6.push_back({"2001:db8::5", 48, 0});
    char text[] = "2001:db8::5/48";
    EXPECT_TRUE(NetDelIPAddressIpv6("eth1", text));
    EXPECT_EQ(Addresses(), Lines{"2001:db8::1/64"});
    EXPECT_EQ(Get(kFile1), kNoAddress);
    EXPECT_EQ(Log(), (LogLines{Deletes("2001:db8::5/48"),
                               Warn("Net6_DelIPAddressIpv6",
                                    "the ipv6 addr in config is 2001:db8::1 ,different with "
                                    "params:2001:db8::5.[eth1]")}));
}

TEST_F(NetDelIPAddressIpv6Test, WithoutAPrefixThatOfTheFirstAddressCounts)
{
    kernel.At("eth1").addresses6.push_back({"2001:db8::5", 48, 0});
    EXPECT_FALSE(NetDelIPAddressIpv6("eth1", "2001:db8::5"));
    EXPECT_EQ(Addresses().size(), 2U);
    EXPECT_EQ(Get(kFile1), kSaved);
    EXPECT_EQ(LogOf("Net6_DelIPAddressIpv6").back(),
              Error("Net6_DelIPAddressIpv6",
                    "del ip[2001:db8::5/64] failed:error Cannot assign requested address"));
}

TEST_F(NetDelIPAddressIpv6Test, APrefixAbove128OrBelowZeroIsRefusedButTheTextIsCut)
{
    for (const std::string prefix : {"200", "129", "-1"}) {
        SCOPED_TRACE(prefix);
        ClearLog();
        char text[32];
        snprintf(text, sizeof(text), "2001:db8::1/%s", prefix.c_str());
        EXPECT_FALSE(NetDelIPAddressIpv6("eth1", text));
        EXPECT_STREQ(text, "2001:db8::1");
        EXPECT_EQ(Log(), (LogLines{Deletes("2001:db8::1/" + prefix),
                                   Error("NetDelIPAddressIpv6", "error prefix 2001:db8::1")}));
    }
    EXPECT_EQ(Changes(), Lines{});
    EXPECT_EQ(Addresses(), Lines{"2001:db8::1/64"});
}

TEST_F(NetDelIPAddressIpv6Test, APrefixOf128Passes)
{
    kernel.At("eth1").addresses6 = {{"2001:db8::1", 128, 0}};
    char text[] = "2001:db8::1/128";
    EXPECT_TRUE(NetDelIPAddressIpv6("eth1", text));
    EXPECT_EQ(Addresses(), Lines{});
}

TEST_F(NetDelIPAddressIpv6Test, AnUnknownCardLeavesTheTextWhole)
{
    char text[] = "2001:db8::1/64";
    EXPECT_FALSE(NetDelIPAddressIpv6("eth9", text));
    EXPECT_STREQ(text, "2001:db8::1/64");
}

TEST_F(NetDelIPAddressIpv6Test, OnlyTheFirstSlashCuts)
{
    char text[] = "2001:db8::1/64/48";
    EXPECT_TRUE(NetDelIPAddressIpv6("eth1", text));
    EXPECT_EQ(std::string(text, sizeof(text)), std::string("2001:db8::1\00064/48\0", 18));
}

TEST_F(NetDelIPAddressIpv6Test, ACardWithoutAddressLosesItsSavedOne)
{
    WithoutAddress();
    EXPECT_TRUE(NetDelIPAddressIpv6("eth1", "2001:db8::1"));
    EXPECT_EQ(Get(kFile1), kNoAddress);
    EXPECT_EQ(Changes(), (Lines{kWrites1, kWrites1}));
    EXPECT_EQ(Log(), (LogLines{Deletes("2001:db8::1"), Info("Net6_DelIPAddressIpv6", kAbsent)}));
}

TEST_F(NetDelIPAddressIpv6Test, AFileThatLagsIsNoFailure)
{
    FailAll(kWrites1, EROFS);
    EXPECT_TRUE(NetDelIPAddressIpv6("eth1", "2001:db8::1"));
    EXPECT_EQ(Addresses(), Lines{});
    EXPECT_EQ(Get(kFile1), kSaved);
}

TEST_F(NetDelIPAddressIpv6Test, ARefusalLeavesTheFile)
{
    Fail("ioctl SIOCDIFADDR", EPERM);
    EXPECT_FALSE(NetDelIPAddressIpv6("eth1", "2001:db8::1"));
    EXPECT_EQ(Get(kFile1), kSaved);
    EXPECT_EQ(Changes(), Lines{"ioctl SIOCDIFADDR"});
}

TEST_F(NetDelIPAddressIpv6Test, OnlyASuccessSavesThatThereIsNone)
{
    static bool done;
    FailEachCall([] { done = NetDelIPAddressIpv6("eth1", "2001:db8::1"); },
                 [](const std::string& failed) {
                     EXPECT_TRUE(done || Get(kFile1) == kSaved);
                     // A table that cannot be read counts as a card without an address.
                     const bool ofTheTable = failed.find("if_inet6") != std::string::npos;
                     EXPECT_EQ(done && !ofTheTable, Addresses().empty());
                 });
}

// ---- NetGetIPv6byName, NetGetSysIPv6byName

/// What a getter of an address gave.
struct Answer {
    bool found;
    std::string text;  // "address/prefix"
};

using Getter = bool (*)(const char*, char*, int, char*, int);

Answer Ask(Getter get, int size = 64, int prefixSize = 8)
{
    char addr[64] = "untouched";
    char prefix[8] = "none";
    const bool found = get("eth1", addr, size, prefix, prefixSize);
    return {found, std::string(addr) + "/" + prefix};
}

class NetGetIPv6byNameTest : public IPv6World {};

TEST_F(NetGetIPv6byNameTest, AsksTheKernelFirst)
{
    Put(kFile1, "HOSTIP = 2001:db8::9\nSUBMASK = 48\n");
    const Answer answer = Ask(NetGetIPv6byName);
    EXPECT_TRUE(answer.found);
    EXPECT_EQ(answer.text, "2001:db8::1/64");
    EXPECT_EQ(TraceOf({"open /mnt/mtd/Config/networkip6"}), Lines{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NetGetIPv6byNameTest, AsksTheFileWhenTheKernelHasNone)
{
    WithoutAddress();
    for (const std::string address : {"2001:db8::9", "0:0:0::0"}) {
        Put(kFile1, Settings({"HOSTIP = " + address, "SUBMASK = 64"}));
        ClearLog();
        const Answer answer = Ask(NetGetIPv6byName);
        EXPECT_TRUE(answer.found);
        EXPECT_EQ(answer.text, address + "/64");
        EXPECT_EQ(Log(), LogLines{});
    }
}

TEST_F(NetGetIPv6byNameTest, ALinkLocalAddressAloneIsNone)
{
    kernel.At("eth1").addresses6.pop_back();
    Remove(kFile1);
    const Answer answer = Ask(NetGetIPv6byName);
    EXPECT_FALSE(answer.found);
    EXPECT_EQ(Log(),
              (LogLines{Error("NetGetIPv6byName", "get eth1 ipv6 addr from config failed.")}));
}

TEST_F(NetGetIPv6byNameTest, ABufferOfNoSizeIsNeverWritten)
{
    for (const int size : {0, -1}) {
        SCOPED_TRACE(size);
        char addr[] = "untouched";
        char prefix[] = "none";
        EXPECT_FALSE(NetGetIPv6byName("eth1", addr, size, prefix, sizeof(prefix)));
        EXPECT_STREQ(addr, "untouched");
        EXPECT_FALSE(NetGetIPv6byName("eth1", addr, sizeof(addr), prefix, size));
        EXPECT_STREQ(prefix, "none");
    }
}

TEST_F(NetGetIPv6byNameTest, HoldsNothingWhateverFails)
{
    static Answer answer;
    WithoutAddress();
    FailEachCall(
        [] { answer = Ask(NetGetIPv6byName); },
        [](const std::string&) { EXPECT_EQ(answer.found, answer.text == "2001:db8::1/64"); });
}

class NetGetSysIPv6byNameTest : public IPv6World {};

TEST_F(NetGetSysIPv6byNameTest, AsksTheKernelAlone)
{
    EXPECT_EQ(Ask(NetGetSysIPv6byName).text, "2001:db8::1/64");
    EXPECT_EQ(Log(), LogLines{});
    WithoutAddress();
    EXPECT_FALSE(Ask(NetGetSysIPv6byName).found);
    EXPECT_EQ(Log(),
              (LogLines{Warn("NetGetSysIPv6byName", "get eth1 ipv6 addr from sys failed.")}));
    EXPECT_EQ(TraceOf({"open /mnt/mtd/Config/networkip6"}), Lines{});
}

TEST_F(NetGetSysIPv6byNameTest, HoldsNothingWhateverFails)
{
    static Answer answer;
    FailEachCall([] { answer = Ask(NetGetSysIPv6byName); },
                 [](const std::string&) {
                     EXPECT_EQ(answer.text, answer.found ? "2001:db8::1/64" : "untouched/none");
                 });
}

// ---- NetGetLinkLocalAddressIpv6

class NetGetLinkLocalAddressIpv6Test : public IPv6World {};

TEST_F(NetGetLinkLocalAddressIpv6Test, TellsTheKernelsWithItsPrefix)
{
    char text[64] = "";
    EXPECT_TRUE(NetGetLinkLocalAddressIpv6("eth1", text, sizeof(text)));
    EXPECT_STREQ(text, "fe80::ff:fe00:1/64");
    EXPECT_EQ(Requests(), Lines{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NetGetLinkLocalAddressIpv6Test, FormsItFromTheHardwareAddressWithoutAPrefix)
{
    WithoutAddress();
    kernel.At("eth1").mac = "00:11:22:33:44:55";
    char text[64] = "";
    EXPECT_TRUE(NetGetLinkLocalAddressIpv6("eth1", text, sizeof(text)));
    EXPECT_STREQ(text, "fe80::211:22ff:fe33:4455");
    EXPECT_EQ(Requests(), Lines{"ioctl SIOCGIFHWADDR eth1"});
    EXPECT_EQ(Log(),
              (LogLines{Error("Net6_GetLinkLocalAddressIpv6", "get IPv6 LinkLocalAddress false")}));
}

TEST_F(NetGetLinkLocalAddressIpv6Test, FailsWithoutEither)
{
    WithoutAddress();
    FailAll("ioctl SIOCGIFHWADDR", ENODEV);
    char text[64] = "untouched";
    EXPECT_FALSE(NetGetLinkLocalAddressIpv6("eth1", text, sizeof(text)));
    EXPECT_STREQ(text, "untouched");
}

TEST_F(NetGetLinkLocalAddressIpv6Test, CutsToTheBuffer)
{
    WithoutAddress();
    kernel.At("eth1").mac = "f8:11:22:33:44:55";
    char text[8] = "";
    EXPECT_TRUE(NetGetLinkLocalAddressIpv6("eth1", text, sizeof(text)));
    EXPECT_STREQ(text, "fe80::f");
}

TEST_F(NetGetLinkLocalAddressIpv6Test, HoldsNothingWhateverFails)
{
    static std::string text;
    static bool done;
    FailEachCall(
        [] {
            char buffer[64] = "";
            done = NetGetLinkLocalAddressIpv6("eth1", buffer, sizeof(buffer));
            text = buffer;
        },
        [](const std::string&) {
            const bool kernels = text == "fe80::ff:fe00:1/64";
            EXPECT_EQ(done, kernels || text == "fe80::0:ff:fe00:1");
        });
}

// ---- gateway

class IPv6GatewayTest : public IPv6World {};

TEST_F(IPv6GatewayTest, IsSavedWithoutARoute)
{
    EXPECT_TRUE(NetSetGatewayIPv6byName("eth1", "2001:db8::ff"));
    EXPECT_EQ(Get(kFile1), std::string(kSaved) + "GATEWAYIP = 2001:db8::ff\n");
    EXPECT_EQ(Requests(), Lines{});
    EXPECT_EQ(kernel.routes6.size(), 0U);
    EXPECT_EQ(Log(),
              (LogLines{Info("NetSetGatewayIPv6byName", "ipv6gwAdd name:eth1 addr:2001:db8::ff")}));
}

TEST_F(IPv6GatewayTest, ATextThatIsNoAddressIsNotSaved)
{
    EXPECT_FALSE(NetSetGatewayIPv6byName("eth1", "10.0.0.1"));
    EXPECT_EQ(Get(kFile1), kSaved);
    EXPECT_EQ(Log(),
              (LogLines{Info("NetSetGatewayIPv6byName", "ipv6gwAdd name:eth1 addr:10.0.0.1"),
                        Error("SetGatewayv6ByConfig", "gateway addr formate error 10.0.0.1."),
                        Error("NetSetGatewayIPv6byName", "set eth1 default gateway failed.")}));
}

TEST_F(IPv6GatewayTest, IsToldFromTheFileAlone)
{
    Put(kFile1, "GATEWAYIP = 2001:db8::ff\n");
    kernel.routes6 = {{"::", 0, "2001:db8::ee", "eth1", 3}};
    char text[64] = "";
    EXPECT_TRUE(NetGetGatewayIPv6byName("eth1", text, sizeof(text)));
    EXPECT_STREQ(text, "2001:db8::ff");
    EXPECT_EQ(TraceOf({"ioctl SIOC", "open /proc/net/ipv6_route"}), Lines{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(IPv6GatewayTest, ACardWithoutOneSaysSo)
{
    char text[64] = "untouched";
    EXPECT_FALSE(NetGetGatewayIPv6byName("eth1", text, sizeof(text)));
    EXPECT_STREQ(text, "untouched");
    EXPECT_EQ(Log(),
              (LogLines{Error("NetGetGatewayIPv6byName", "get eth1 default gateway failed.")}));
}

TEST_F(IPv6GatewayTest, IsNotToldInHalvesWhateverFails)
{
    static bool done;
    static std::string text;
    Put(kFile1, "GATEWAYIP = 2001:db8::ff\n");
    FailEachCall(
        [] {
            char gateway[64] = "untouched";
            done = NetGetGatewayIPv6byName("eth1", gateway, sizeof(gateway));
            text = gateway;
        },
        [](const std::string&) { EXPECT_EQ(text, done ? "2001:db8::ff" : "untouched"); });
}

TEST_F(IPv6GatewayTest, TheFirstCardHasAFileOfItsOwnName)
{
    EXPECT_TRUE(NetSetGatewayIPv6byName("eth0", "2001:db8::ff"));
    EXPECT_EQ(Get("/mnt/mtd/Config/networkip6"), "GATEWAYIP = 2001:db8::ff\n");
}

TEST_F(IPv6GatewayTest, HoldsNothingWhateverFails)
{
    static bool done;
    FailEachCall([] { done = NetSetGatewayIPv6byName("eth1", "2001:db8::ff"); },
                 [](const std::string& failed) {
                     const bool saved = Get(kFile1).find("GATEWAYIP") != std::string::npos;
                     // What a full disk did not take is not seen.
                     EXPECT_EQ(done, saved || failed.rfind("fflush", 0) == 0);
                 });
}

}  // namespace
