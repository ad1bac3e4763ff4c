// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Network6.h"

#include "fake/World.h"

#include <cstring>

#include <linux/sockios.h>

using namespace fake;

namespace {

using Calls = std::vector<std::string>;

constexpr char kTable[] = "/proc/net/if_inet6";
constexpr char kLongest[] = "1111:2222:3333:4444:5555:6666:7777:8888";  // 39 characters
constexpr unsigned kGlobal = 0;
constexpr unsigned kLinkLocal = 0x20;
constexpr unsigned kCompatible = 0x80;

class Network6Test : public World {
protected:
    void SetUp() override
    {
        World::SetUp();
        kernel.Add("eth0");
        kernel.Add("eth1");
    }

    static Card& Eth1() { return kernel.At("eth1"); }
};

void ExpectSilentAndUntouched()
{
    EXPECT_EQ(Trace(), Calls{});
    EXPECT_EQ(Log(), LogLines{});
}

/// Two texts to be filled, with a mark behind each that nobody may write.
struct Buffers {
    char addr[128];
    char perfix[16];

    Buffers()
    {
        memset(addr, '#', sizeof(addr));
        memset(perfix, '#', sizeof(perfix));
    }

    bool Untouched() const
    {
        const Buffers fresh;
        return memcmp(this, &fresh, sizeof(fresh)) == 0;
    }

    bool UntouchedFrom(size_t addrBytes, size_t perfixBytes) const
    {
        const Buffers fresh;
        return memcmp(addr + addrBytes, fresh.addr, sizeof(addr) - addrBytes) == 0 &&
               memcmp(perfix + perfixBytes, fresh.perfix, sizeof(perfix) - perfixBytes) == 0;
    }
};

// ==== Index

class Net6_GetInterfaceIndexTest : public Network6Test {};

TEST_F(Net6_GetInterfaceIndexTest, AsksTheIPv6Socket)
{
    Eth1().index = 300;
    EXPECT_EQ(Net6_GetInterfaceIndex("eth1"), 300);
    EXPECT_EQ(Trace(), (Calls{"socket AF_INET6", "fcntl F_SETFD", "ioctl SIOCGIFINDEX eth1"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Net6_GetInterfaceIndexTest, CutsALongNameAtFifteenCharacters)
{
    kernel.Add("eth0123456789ab").index = 9;
    EXPECT_EQ(Net6_GetInterfaceIndex("eth0123456789abcdef"), 9);
}

TEST_F(Net6_GetInterfaceIndexTest, AnUnknownInterfaceHasNone)
{
    EXPECT_EQ(Net6_GetInterfaceIndex("eth7"), -1);
    EXPECT_EQ(Log(), (LogLines{Refused6(SIOCGIFINDEX, ENODEV),
                               Error("Net6_GetInterfaceIndex", "get eth7 index failed.")}));
}

TEST_F(Net6_GetInterfaceIndexTest, ANullNameIsSilent)
{
    EXPECT_EQ(Net6_GetInterfaceIndex(nullptr), -1);
    ExpectSilentAndUntouched();
}

TEST_F(Net6_GetInterfaceIndexTest, EveryFailedRequestIsAFailure)
{
    int index = 0;
    FailEachCall(
        [&] { index = Net6_GetInterfaceIndex("eth1"); },
        [&](const std::string& failed) { EXPECT_EQ(index, failed == "fcntl F_SETFD" ? 3 : -1); });
}

// ==== The address table

class Net6_GetAddressInfoTest : public Network6Test {
protected:
    bool Read(const char* name, int addrType)
    {
        out_ = Buffers();
        return Net6_GetAddressInfo(name, out_.addr, sizeof(out_.addr), out_.perfix,
                                   sizeof(out_.perfix), addrType);
    }

    Buffers out_;
};

TEST_F(Net6_GetAddressInfoTest, ReadsTheShortenedFormAndTheDecimalPrefix)
{
    Eth1().addresses6 = {{"2001:db8:0:0:1:0:0:1", 64, kGlobal}};
    EXPECT_TRUE(Read("eth1", 0));
    EXPECT_STREQ(out_.addr, "2001:db8::1:0:0:1");
    EXPECT_STREQ(out_.perfix, "64");
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(OpenHandles(), Calls{});
}

TEST_F(Net6_GetAddressInfoTest, ReadsTheKernelsOwnLines)
{
    Put(kTable, "fe800000000000000211 22fffe334455 02 40 20 80     eth1\n"
                "00000000000000000000000000000001 01 80 10 80       lo\n"
                "20010db8000000000000000000000abc 02 80 00 00     eth1\n");
    EXPECT_TRUE(Read("eth1", 0));
    EXPECT_STREQ(out_.addr, "2001:db8::abc");
    EXPECT_STREQ(out_.perfix, "128");
}

TEST_F(Net6_GetAddressInfoTest, TheScopeDecides)
{
    Eth1().addresses6 = {
        {"fe80::1", 10, kLinkLocal}, {"::10.0.0.2", 96, kCompatible}, {"2001:db8::1", 48, kGlobal}};
    EXPECT_TRUE(Read("eth1", 0));
    EXPECT_STREQ(out_.addr, "2001:db8::1");
    EXPECT_STREQ(out_.perfix, "48");
    EXPECT_TRUE(Read("eth1", 32));
    EXPECT_STREQ(out_.addr, "fe80::1");
    EXPECT_STREQ(out_.perfix, "10");
    EXPECT_TRUE(Read("eth1", 128));
    EXPECT_STREQ(out_.addr, "::10.0.0.2");
    EXPECT_STREQ(out_.perfix, "96");
}

TEST_F(Net6_GetAddressInfoTest, OtherScopesAreRefusedBeforeTheTableIsOpened)
{
    for (const int scope : {64, 1, 16, 31, 33, 127, 129, 255, 256, 288, -1}) {
        EXPECT_FALSE(Read("eth1", scope)) << scope;
        EXPECT_TRUE(out_.Untouched()) << scope;
    }
    ExpectSilentAndUntouched();
}

TEST_F(Net6_GetAddressInfoTest, TheFirstLineOfTheCardWins)
{
    kernel.At("eth0").addresses6 = {{"2001:db8::5", 64, kGlobal}};
    Eth1().addresses6 = {{"2001:db8::2", 64, kGlobal}, {"2001:db8::1", 56, kGlobal}};
    EXPECT_TRUE(Read("eth1", 0));
    EXPECT_STREQ(out_.addr, "2001:db8::2");
    EXPECT_STREQ(out_.perfix, "64");
}

TEST_F(Net6_GetAddressInfoTest, CardsAreToldApartByTheirWholeNames)
{
    kernel.Add("eth10").addresses6 = {{"2001:db8::10", 64, kGlobal}};
    kernel.Add("et").addresses6 = {{"2001:db8::e", 64, kGlobal}};
    EXPECT_FALSE(Read("eth1", 0));
    EXPECT_FALSE(Read("eth", 0));
    EXPECT_FALSE(Read("", 0));
    EXPECT_TRUE(Read("eth10", 0));
    EXPECT_STREQ(out_.addr, "2001:db8::10");
}

TEST_F(Net6_GetAddressInfoTest, ACardsNameMayHaveNineteenCharacters)
{
    const std::string name = "abcdefghijklmnopqrs";
    for (const char* more : {"", "t", "tu"}) {
        Put(kTable, "20010db8000000000000000000000001 02 40 00 80 " + name + more + "\n");
        EXPECT_TRUE(Read(name.c_str(), kGlobal)) << more;
        EXPECT_FALSE(Read((name + "t").c_str(), kGlobal)) << more;
    }
}

TEST_F(Net6_GetAddressInfoTest, AnEmptyNameIsLookedForAsAnyOther)
{
    EXPECT_FALSE(Read("", kGlobal));
    EXPECT_EQ(TraceOf({"open"}), (Calls{std::string("open ") + kTable + " O_RDONLY"}));
}

TEST_F(Net6_GetAddressInfoTest, ACardWithoutAddressIsSilent)
{
    kernel.At("eth0").addresses6 = {{"2001:db8::5", 64, kGlobal}};
    EXPECT_FALSE(Read("eth1", 0));
    EXPECT_TRUE(out_.Untouched());
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(OpenHandles(), Calls{});
}

TEST_F(Net6_GetAddressInfoTest, AMissingTableIsAnError)
{
    Fail(std::string("open ") + kTable, ENOENT);
    EXPECT_FALSE(Read("eth1", 0));
    EXPECT_TRUE(out_.Untouched());
    EXPECT_EQ(Log(), (LogLines{Error("Net6_GetAddressInfo", "can not open /proc/net/if_inet6")}));
}

TEST_F(Net6_GetAddressInfoTest, TheTableIsReadAfreshEachTime)
{
    Eth1().addresses6 = {{"2001:db8::1", 64, kGlobal}};
    EXPECT_TRUE(Read("eth1", 0));
    Eth1().addresses6 = {{"2001:db8::2", 64, kGlobal}};
    EXPECT_TRUE(Read("eth1", 0));
    EXPECT_STREQ(out_.addr, "2001:db8::2");
    EXPECT_EQ(TraceOf({"open", "close"}),
              (Calls{"open /proc/net/if_inet6 O_RDONLY", "close /proc/net/if_inet6",
                     "open /proc/net/if_inet6 O_RDONLY", "close /proc/net/if_inet6"}));
}

TEST_F(Net6_GetAddressInfoTest, ATableOfManyPagesIsReadToItsEnd)
{
    for (int number = 0; number < 300; ++number) {
        kernel.At("eth0").addresses6.push_back(
            {"2001:db8::" + std::to_string(number), 64, kGlobal});
    }
    Eth1().addresses6 = {{"2001:db8:1::1", 64, kGlobal}};
    EXPECT_TRUE(Read("eth1", 0));
    EXPECT_STREQ(out_.addr, "2001:db8:1::1");
}

TEST_F(Net6_GetAddressInfoTest, AnIndexAbove255ShiftsTheColumnsOfItsOwnLineAlone)
{
    Eth1().index = 255;
    Eth1().addresses6 = {{"2001:db8::1", 64, kGlobal}};
    EXPECT_TRUE(Read("eth1", 0));

    Eth1().index = 256;
    Card& other = kernel.Add("eth2");
    other.index = 4;
    other.addresses6 = {{"2001:db8::2", 64, kGlobal}};
    EXPECT_FALSE(Read("eth1", 0));
    EXPECT_TRUE(Read("eth2", 0));
    EXPECT_STREQ(out_.addr, "2001:db8::2");
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Net6_GetAddressInfoTest, MalformedLinesAreNoEntries)
{
    const std::string good = "20010db8000000000000000000000002 03 40 00 80 eth1\n";
    const char* const malformed[] = {
        "\n",
        "   \n",
        "eth1\n",
        "20010db8000000000000000000000001\n",
        "20010db8000000000000000000000001 03 40 00 80\n",  // without a card
        "20010db8000000000000000000000001 03 40 00 eth1\n",
        "20010db8000000000000000000000001 zz 40 00 80 eth1\n",
        "20010db8000000000000000000000001 03 zz 00 80 eth1\n",
        "20010db8000000000000000000000001 03 40 zz 80 eth1\n",
        "20010db8000000000000000000000001 03 40 00 zz eth1\n",
        "20010db800000000000000000000000100 03 40 00 80 eth1\n",
    };
    for (const char* line : malformed) {
        SCOPED_TRACE(line);
        Put(kTable, line);
        EXPECT_FALSE(Read("eth1", 0));
        Put(kTable, line + good);
        EXPECT_TRUE(Read("eth1", 0));
        EXPECT_STREQ(out_.addr, "2001:db8::2");
    }
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Net6_GetAddressInfoTest, NothingOfALineIsLeftForTheNext)
{
    Put(kTable, "fe800000000000000000000000000001 03 40 20 80 eth1\n"
                "20010db8000000000000000000000001 03 40 00 80\n");
    EXPECT_FALSE(Read("eth1", 0));
}

TEST_F(Net6_GetAddressInfoTest, ALastLineWithoutNewlineIsAnEntry)
{
    Put(kTable, "20010db8000000000000000000000001 03 40 00 80 eth1");
    EXPECT_TRUE(Read("eth1", 0));
    EXPECT_STREQ(out_.addr, "2001:db8::1");
}

TEST_F(Net6_GetAddressInfoTest, AnAddressThatIsNoneReadsAsAllZero)
{
    Put(kTable, "2001zzzz000000000000000000000001 03 40 00 80 eth1\n");
    EXPECT_TRUE(Read("eth1", 0));
    EXPECT_STREQ(out_.addr, "::");
    EXPECT_STREQ(out_.perfix, "64");
    EXPECT_EQ(Log(), (LogLines{Error("Net6_GetAddressInfo", "IPv6 addr invalid")}));
}

TEST_F(Net6_GetAddressInfoTest, AnAddressThatDoesNotFitLeavesAnEmptyTextAndStillSucceeds)
{
    struct {
        const char* address;
        int ipLen;
        const char* text;
    } const cases[] = {
        {kLongest, 128, kLongest},
        {kLongest, 41, kLongest},
        {kLongest, 40, kLongest},
        {kLongest, 39, ""},
        {kLongest, 1, ""},
        {"2001:db8::1", 12, "2001:db8::1"},
        {"2001:db8::1", 11, ""},
        {"::", 3, "::"},
        {"::", 2, ""},
        {"::", 1, ""},
    };
    for (const auto& [address, ipLen, text] : cases) {
        SCOPED_TRACE(std::string(address) + " in " + std::to_string(ipLen));
        Eth1().addresses6 = {{address, 64, kGlobal}};
        Buffers out;
        EXPECT_TRUE(Net6_GetAddressInfo("eth1", out.addr, ipLen, out.perfix, 16, 0));
        EXPECT_STREQ(out.addr, text);
        EXPECT_EQ(out.addr[ipLen - 1], '\0');
        EXPECT_TRUE(out.UntouchedFrom(static_cast<size_t>(ipLen), sizeof(out.perfix)));
        EXPECT_STREQ(out.perfix, "64");
    }
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Net6_GetAddressInfoTest, APrefixThatDoesNotFitIsCut)
{
    Eth1().addresses6 = {{"2001:db8::1", 128, kGlobal}};
    const char* const texts[] = {"", "1", "12", "128", "128"};
    for (int perFixLen = 1; perFixLen <= 5; ++perFixLen) {
        SCOPED_TRACE(perFixLen);
        Buffers out;
        EXPECT_TRUE(Net6_GetAddressInfo("eth1", out.addr, 128, out.perfix, perFixLen, 0));
        EXPECT_STREQ(out.perfix, texts[perFixLen - 1]);
        EXPECT_TRUE(out.UntouchedFrom(sizeof(out.addr), static_cast<size_t>(perFixLen)));
    }
}

TEST_F(Net6_GetAddressInfoTest, ABufferOfNoBytesIsRefusedBeforeTheTableIsOpened)
{
    Eth1().addresses6 = {{"2001:db8::1", 64, kGlobal}};
    for (const int length : {0, -1, -2147483647 - 1}) {
        Buffers out;
        EXPECT_FALSE(Net6_GetAddressInfo("eth1", out.addr, length, out.perfix, 16, 0));
        EXPECT_FALSE(Net6_GetAddressInfo("eth1", out.addr, 128, out.perfix, length, 0));
        EXPECT_TRUE(out.Untouched());
    }
    ExpectSilentAndUntouched();
}

TEST_F(Net6_GetAddressInfoTest, ANullIsSilent)
{
    EXPECT_FALSE(Net6_GetAddressInfo(nullptr, out_.addr, 128, out_.perfix, 16, 0));
    EXPECT_FALSE(Net6_GetAddressInfo("eth1", nullptr, 128, out_.perfix, 16, 0));
    EXPECT_FALSE(Net6_GetAddressInfo("eth1", out_.addr, 128, nullptr, 16, 0));
    EXPECT_TRUE(out_.Untouched());
    ExpectSilentAndUntouched();
}

TEST_F(Net6_GetAddressInfoTest, AFailedCallIsNoAddressOrTheWholeOne)
{
    Eth1().addresses6 = {{"2001:db8::1", 64, kGlobal}};
    bool read = false;
    FailEachCall([&] { read = Read("eth1", 0); },
                 [&](const std::string&) { EXPECT_EQ(read, !out_.Untouched()); });
}

class Net6_GetIPv6byNameTest : public Network6Test {
protected:
    bool Read(const char* name)
    {
        out_ = Buffers();
        return Net6_GetIPv6byName(name, out_.addr, sizeof(out_.addr), out_.perfix,
                                  sizeof(out_.perfix));
    }

    Buffers out_;
};

TEST_F(Net6_GetIPv6byNameTest, AGlobalAddressGoesBeforeACompatibleOne)
{
    Eth1().addresses6 = {{"::10.0.0.2", 96, kCompatible}, {"2001:db8::1", 64, kGlobal}};
    EXPECT_TRUE(Read("eth1"));
    EXPECT_STREQ(out_.addr, "2001:db8::1");
    EXPECT_STREQ(out_.perfix, "64");
}

TEST_F(Net6_GetIPv6byNameTest, ACompatibleAddressWillDo)
{
    Eth1().addresses6 = {{"fe80::1", 64, kLinkLocal}, {"::10.0.0.2", 96, kCompatible}};
    EXPECT_TRUE(Read("eth1"));
    EXPECT_STREQ(out_.addr, "::10.0.0.2");
    EXPECT_STREQ(out_.perfix, "96");
}

TEST_F(Net6_GetIPv6byNameTest, ALinkLocalAddressAloneIsNone)
{
    Eth1().addresses6 = {{"fe80::1", 64, kLinkLocal}};
    EXPECT_FALSE(Read("eth1"));
    EXPECT_TRUE(out_.Untouched());
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Net6_GetIPv6byNameTest, TheFirstOfTwoGlobalAddressesIsReported)
{
    Eth1().addresses6 = {{"2001:db8::2", 64, kGlobal}, {"2001:db8::1", 64, kGlobal}};
    EXPECT_TRUE(Read("eth1"));
    EXPECT_STREQ(out_.addr, "2001:db8::2");
}

TEST_F(Net6_GetIPv6byNameTest, AMissingTableIsTriedForBothScopes)
{
    FailAll(std::string("open ") + kTable, ENOENT);
    EXPECT_FALSE(Read("eth1"));
    const LogLine line = Error("Net6_GetAddressInfo", "can not open /proc/net/if_inet6");
    EXPECT_EQ(Log(), (LogLines{line, line}));
}

TEST_F(Net6_GetIPv6byNameTest, ANullIsSilent)
{
    EXPECT_FALSE(Net6_GetIPv6byName(nullptr, out_.addr, 128, out_.perfix, 16));
    EXPECT_FALSE(Net6_GetIPv6byName("eth1", nullptr, 128, out_.perfix, 16));
    EXPECT_FALSE(Net6_GetIPv6byName("eth1", out_.addr, 128, nullptr, 16));
    EXPECT_TRUE(out_.Untouched());
    ExpectSilentAndUntouched();
}

// ==== Link-local addresses

class Net6_GetLinkLocalAddressIpv6Test : public Network6Test {
protected:
    void SetUp() override
    {
        Network6Test::SetUp();
        Eth1().addresses6 = {{"2001:db8::1", 48, kGlobal}, {"fe80::1", 64, kLinkLocal}};
    }
};

TEST_F(Net6_GetLinkLocalAddressIpv6Test, ReadsTheAddressWithItsPrefix)
{
    char addr[64];
    EXPECT_TRUE(Net6_GetLinkLocalAddressIpv6("eth1", addr, sizeof(addr)));
    EXPECT_STREQ(addr, "fe80::1/64");
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Net6_GetLinkLocalAddressIpv6Test, NothingIsWrittenBeyondTheBuffer)
{
    const char* const texts[] = {"/",  // 2 bytes: the address does not fit, its prefix is cut
                                 "/6",      "/64",      "/64",       "/64",       "/64",
                                 "fe80::1", "fe80::1/", "fe80::1/6", "fe80::1/64"};
    for (int ipLen = 2; ipLen <= 11; ++ipLen) {
        SCOPED_TRACE(ipLen);
        Buffers out;
        EXPECT_TRUE(Net6_GetLinkLocalAddressIpv6("eth1", out.addr, ipLen));
        EXPECT_STREQ(out.addr, texts[ipLen - 2]);
        EXPECT_TRUE(out.UntouchedFrom(static_cast<size_t>(ipLen), 0));
    }
    Buffers out;
    EXPECT_TRUE(Net6_GetLinkLocalAddressIpv6("eth1", out.addr, 1));
    EXPECT_STREQ(out.addr, "");
    EXPECT_TRUE(out.UntouchedFrom(1, 0));
}

TEST_F(Net6_GetLinkLocalAddressIpv6Test, ABufferOfNoBytesIsAFailure)
{
    Buffers out;
    EXPECT_FALSE(Net6_GetLinkLocalAddressIpv6("eth1", out.addr, 0));
    EXPECT_FALSE(Net6_GetLinkLocalAddressIpv6("eth1", out.addr, -1));
    EXPECT_TRUE(out.Untouched());
    EXPECT_EQ(Trace(), Calls{});
}

TEST_F(Net6_GetLinkLocalAddressIpv6Test, AGlobalAddressIsNotOne)
{
    Eth1().addresses6.pop_back();
    Buffers out;
    EXPECT_FALSE(Net6_GetLinkLocalAddressIpv6("eth1", out.addr, sizeof(out.addr)));
    EXPECT_TRUE(out.Untouched());
    EXPECT_EQ(Log(),
              (LogLines{Error("Net6_GetLinkLocalAddressIpv6", "get IPv6 LinkLocalAddress false")}));
}

TEST_F(Net6_GetLinkLocalAddressIpv6Test, ANullIsSilent)
{
    Buffers out;
    EXPECT_FALSE(Net6_GetLinkLocalAddressIpv6(nullptr, out.addr, sizeof(out.addr)));
    EXPECT_FALSE(Net6_GetLinkLocalAddressIpv6("eth1", nullptr, sizeof(out.addr)));
    EXPECT_TRUE(out.Untouched());
    ExpectSilentAndUntouched();
}

TEST_F(Net6_GetLinkLocalAddressIpv6Test, AFailedCallIsToldOrHarmless)
{
    bool read = false;
    Buffers out;
    FailEachCall([&] { read = Net6_GetLinkLocalAddressIpv6("eth1", out.addr, sizeof(out.addr)); },
                 [&](const std::string&) {
                     EXPECT_EQ(read, !out.Untouched());
                     EXPECT_EQ(read, LogOf("Net6_GetLinkLocalAddressIpv6").empty());
                 });
}

class Net6_GetLinkLocalFromMacTest : public Network6Test {};

TEST_F(Net6_GetLinkLocalFromMacTest, FormsTheModifiedInterfaceIdentifier)
{
    struct {
        const char* mac;
        const char* text;
    } const cases[] = {
        {"00:11:22:33:44:55", "fe80::211:22ff:fe33:4455"},
        {"02:11:22:33:44:55", "fe80::11:22ff:fe33:4455"},  // the bit is flipped, not set
        {"ff:ff:ff:ff:ff:ff", "fe80::fdff:ffff:feff:ffff"},
        {"02:00:00:00:00:00", "fe80::0:ff:fe00:0"},
        {"AC:DE:48:00:0F:80", "fe80::aede:48ff:fe00:f80"},
        {"0:1:2:3:4:5", "fe80::201:2ff:fe03:405"},
        {"00:11:22:33:44:55:66", "fe80::211:22ff:fe33:4455"},
        {"00:11:22:33:44:55 eth1", "fe80::211:22ff:fe33:4455"},
        {"00:11:22:33:44:556", "fe80::211:22ff:fe33:4455"},
    };
    for (const auto& [mac, text] : cases) {
        Buffers out;
        EXPECT_TRUE(Net6_GetLinkLocalFromMac(out.addr, sizeof(out.addr), mac)) << mac;
        EXPECT_STREQ(out.addr, text) << mac;
    }
    ExpectSilentAndUntouched();
}

TEST_F(Net6_GetLinkLocalFromMacTest, RefusesATextThatIsNoHardwareAddress)
{
    for (const char* mac : {"", "eth1", "00:11:22:33:44", "00:11:22:33:44:", "00:11:22:33:44:zz",
                            "00-11-22-33-44-55", "001122334455", "000:11:22:33:44:55"}) {
        SCOPED_TRACE(mac);
        ClearLog();
        Buffers out;
        EXPECT_FALSE(Net6_GetLinkLocalFromMac(out.addr, sizeof(out.addr), mac));
        EXPECT_TRUE(out.Untouched());
        EXPECT_EQ(Log(), (LogLines{Error("Net6_GetLinkLocalFromMac", "mac error")}));
    }
}

TEST_F(Net6_GetLinkLocalFromMacTest, ATextThatDoesNotFitIsCut)
{
    const std::string whole = "fe80::211:22ff:fe33:4455";
    for (int ipLen = 1; ipLen <= 26; ++ipLen) {
        SCOPED_TRACE(ipLen);
        const auto size = static_cast<size_t>(ipLen);
        Buffers out;
        EXPECT_TRUE(Net6_GetLinkLocalFromMac(out.addr, ipLen, "00:11:22:33:44:55"));
        EXPECT_EQ(out.addr, whole.substr(0, size - 1));
        EXPECT_TRUE(out.UntouchedFrom(size, 0));
    }
}

TEST_F(Net6_GetLinkLocalFromMacTest, NothingToFillOrToReadIsSilent)
{
    Buffers out;
    EXPECT_FALSE(Net6_GetLinkLocalFromMac(nullptr, 128, "00:11:22:33:44:55"));
    EXPECT_FALSE(Net6_GetLinkLocalFromMac(out.addr, 128, nullptr));
    EXPECT_FALSE(Net6_GetLinkLocalFromMac(out.addr, 0, "00:11:22:33:44:55"));
    EXPECT_FALSE(Net6_GetLinkLocalFromMac(out.addr, -1, "no hardware address"));
    EXPECT_TRUE(out.Untouched());
    ExpectSilentAndUntouched();
}

}  // namespace
