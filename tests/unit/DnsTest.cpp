// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Dns.h"

#include "fake/World.h"

#include <cerrno>

using namespace fake;

namespace {

using Texts = std::vector<std::string>;

constexpr char kFile[] = "/mnt/mtd/Config/resolv.conf";
constexpr char kFile6[] = "/mnt/mtd/Config/resolvip6.conf";

std::string Servers(const Texts& addresses)
{
    std::string text;
    for (const std::string& address : addresses) text += "nameserver " + address + "\n";
    return text;
}

LogLine ReadError(const std::string& text)
{
    return Error("Dns_GetDnsFileInfo", text);
}

LogLine WriteError(const std::string& text)
{
    return Error("Dns_SetDnsAddress", text);
}

/// What a read found, slot by slot; "-" for one that was left alone.
struct Found {
    char primary4[16] = "-";
    char secondary4[16] = "-";
    char primary6[46] = "-";
    char secondary6[46] = "-";
    bool result = false;

    Texts All() const { return {primary4, secondary4, primary6, secondary6}; }
    Texts IPv4() const { return {primary4, secondary4}; }
    Texts IPv6() const { return {primary6, secondary6}; }
};

Found ReadAll()
{
    Found found;
    found.result = Dns_GetDnsFileInfo(found.primary4, found.secondary4, found.primary6,
                                      found.secondary6, sizeof(found.primary6));
    return found;
}

Found ReadIPv4()
{
    Found found;
    found.result = Dns_GetDnsServerIPv4(found.primary4, found.secondary4);
    return found;
}

Found ReadIPv6()
{
    Found found;
    found.result = Dns_GetDnsServerIPv6(found.primary6, found.secondary6, sizeof(found.primary6));
    return found;
}

// ---- reading

class DnsGetDnsFileInfoTest : public World {};

TEST_F(DnsGetDnsFileInfoTest, ReadsEachKindInItsOwnOrder)
{
    for (const Texts& order : {Texts{"8.8.8.8", "8.8.4.4", "fe80::1", "fe80::2"},
                               Texts{"fe80::1", "8.8.8.8", "fe80::2", "8.8.4.4"},
                               Texts{"fe80::1", "fe80::2", "8.8.8.8", "8.8.4.4"}}) {
        Put(kFile, Servers(order));
        const Found found = ReadAll();
        EXPECT_TRUE(found.result);
        EXPECT_EQ(found.All(), (Texts{"8.8.8.8", "8.8.4.4", "fe80::1", "fe80::2"}));
    }
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(DnsGetDnsFileInfoTest, HoldsTheLockForTheWholeReadOfBothFiles)
{
    Put(kFile, Servers({"8.8.8.8", "8.8.4.4"}));
    Put(kFile6, Servers({"fe80::1", "fe80::2"}));
    EXPECT_TRUE(ReadAll().result);
    EXPECT_EQ(TraceOf({"mutex", "open", "close"}),
              (Texts{"mutex lock", std::string("open ") + kFile + " O_RDONLY",
                     std::string("close ") + kFile, std::string("open ") + kFile6 + " O_RDONLY",
                     std::string("close ") + kFile6, "mutex unlock"}));
}

TEST_F(DnsGetDnsFileInfoTest, TheEmptyAddressIsAServerLikeAnyOther)
{
    Put(kFile, Servers({"0.0.0.0", "255.255.255.255", "::", "ff02::1"}));
    const Found found = ReadAll();
    EXPECT_TRUE(found.result);
    EXPECT_EQ(found.All(), (Texts{"0.0.0.0", "255.255.255.255", "::", "ff02::1"}));
}

TEST_F(DnsGetDnsFileInfoTest, PassesOverAThirdServer)
{
    Put(kFile, Servers({"8.8.8.8", "8.8.4.4", "1.1.1.1", "fe80::1", "fe80::2", "fe80::3"}));
    EXPECT_EQ(ReadAll().All(), (Texts{"8.8.8.8", "8.8.4.4", "fe80::1", "fe80::2"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(DnsGetDnsFileInfoTest, OneServerIsStoredAlthoughTheOtherIsMissing)
{
    Put(kFile, Servers({"8.8.8.8"}));
    const Found found = ReadIPv4();
    EXPECT_FALSE(found.result);
    EXPECT_EQ(found.IPv4(), (Texts{"8.8.8.8", "-"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(DnsGetDnsFileInfoTest, ASlotThatIsNotWantedLeavesItsServerToTheOther)
{
    Put(kFile, Servers({"8.8.8.8", "fe80::1"}));
    Found found;
    EXPECT_TRUE(Dns_GetDnsFileInfo(nullptr, found.secondary4, nullptr, nullptr, 0));
    EXPECT_TRUE(Dns_GetDnsFileInfo(nullptr, nullptr, nullptr, found.secondary6, 46));
    EXPECT_EQ(found.All(), (Texts{"-", "8.8.8.8", "-", "fe80::1"}));
}

TEST_F(DnsGetDnsFileInfoTest, WantsNothingAndGetsIt)
{
    Put(kFile, "");
    EXPECT_TRUE(Dns_GetDnsFileInfo(nullptr, nullptr, nullptr, nullptr, 0));
    EXPECT_EQ(TraceOf({"open"}), Texts{std::string("open ") + kFile + " O_RDONLY"});
}

TEST_F(DnsGetDnsFileInfoTest, MissingFileFailsEveryReadAndSaysSo)
{
    Put(kFile6, Servers({"fe80::1", "fe80::2"}));
    Found found;
    EXPECT_FALSE(ReadAll().result);
    EXPECT_FALSE(Dns_GetDnsServerIPv4(found.primary4, found.secondary4));
    EXPECT_FALSE(Dns_GetDnsServerIPv6(found.primary6, found.secondary6, 46));
    EXPECT_FALSE(GetIPv4DnsServer(found.primary4, found.secondary4));
    EXPECT_FALSE(GetIPv6DnsServer(found.primary6, found.secondary6, 46));
    EXPECT_EQ(found.All(), (Texts{"-", "-", "-", "-"}));
    EXPECT_EQ(Log(), LogLines(5, ReadError("open /mnt/mtd/Config/resolv.conf failed")));
    EXPECT_EQ(HeldMutexes(), 0);
}

TEST_F(DnsGetDnsFileInfoTest, AForeignLineHidesEverythingBehindIt)
{
    Put(kFile, "# servers\n" + Servers({"8.8.8.8", "8.8.4.4"}));
    EXPECT_FALSE(ReadIPv4().result);
    EXPECT_EQ(ReadIPv4().IPv4(), (Texts{"-", "-"}));

    Put(kFile, Servers({"8.8.8.8"}) + "\n" + Servers({"8.8.4.4"}));
    EXPECT_EQ(ReadIPv4().IPv4(), (Texts{"8.8.8.8", "-"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(DnsGetDnsFileInfoTest, ABadAddressLeavesItsSlotToTheNextLine)
{
    Put(kFile, Servers({"8.8.8", "8.8.8.8", "256.1.1.1", "8.8.4.4", "fe80::g", "fe80::1",
                        "fe80:", "fe80::2"}));
    const Found found = ReadAll();
    EXPECT_TRUE(found.result);
    EXPECT_EQ(found.All(), (Texts{"8.8.8.8", "8.8.4.4", "fe80::1", "fe80::2"}));
    EXPECT_EQ(
        Log(),
        (LogLines{ReadError(" error ipv4 addr.[8.8.8]"), ReadError(" error ipv4 addr.[256.1.1.1]"),
                  ReadError(" error ipv6 addr.[fe80::g]"), ReadError(" error ipv6 addr.[fe80:]")}));
}

TEST_F(DnsGetDnsFileInfoTest, ABadAddressThatNobodyWaitsForIsNotLookedAt)
{
    Put(kFile, Servers({"8.8.8.8", "8.8.4.4", "bad", "fe80:bad"}));
    EXPECT_TRUE(ReadIPv4().result);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(DnsGetDnsFileInfoTest, CutsSpacesAroundTheAddress)
{
    Put(kFile, "nameserver    8.8.8.8   \nnameserver8.8.4.4\n");
    EXPECT_EQ(ReadIPv4().IPv4(), (Texts{"8.8.8.8", "8.8.4.4"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(DnsGetDnsFileInfoTest, CutsNothingButSpacesAndNewlines)
{
    Put(kFile, "nameserver\t8.8.8.8\nnameserver 8.8.8.8\t\nnameserver 8.8.8.8\r\nnameserver \n");
    EXPECT_FALSE(ReadIPv4().result);
    EXPECT_EQ(Log(), (LogLines{ReadError(" error ipv4 addr.[\t8.8.8.8]"),
                               ReadError(" error ipv4 addr.[8.8.8.8\t]"),
                               ReadError(" error ipv4 addr.[8.8.8.8\r]"),
                               ReadError(" error ipv4 addr.[]")}));
}

TEST_F(DnsGetDnsFileInfoTest, TheWordMayStandAnywhereAndItsFirstPlaceCounts)
{
    Put(kFile, "#nameserver 8.8.8.8\nnameserver nameserver 1.1.1.1\n;old nameserver 8.8.4.4\n");
    EXPECT_EQ(ReadIPv4().IPv4(), (Texts{"8.8.8.8", "8.8.4.4"}));
    EXPECT_EQ(Log(), LogLines{ReadError(" error ipv4 addr.[nameserver 1.1.1.1]")});
}

TEST_F(DnsGetDnsFileInfoTest, AColonAnywhereMakesAnIPv6Line)
{
    Put(kFile, "dns: nameserver 8.8.8.8\n");
    EXPECT_FALSE(ReadAll().result);
    EXPECT_EQ(Log(), (LogLines{ReadError(" error ipv6 addr.[8.8.8.8]"),
                               ReadError("open /mnt/mtd/Config/resolvip6.conf failed")}));
}

TEST_F(DnsGetDnsFileInfoTest, GivesAddressesInTheirCanonicalForm)
{
    Put(kFile, Servers({"2001:0DB8:0:0:0::1", "0:0:0:0:0:ffff:8.8.8.8"}));
    EXPECT_EQ(ReadIPv6().IPv6(), (Texts{"2001:db8::1", "::ffff:8.8.8.8"}));
}

TEST_F(DnsGetDnsFileInfoTest, ReadsALastLineWithoutNewline)
{
    Put(kFile, "nameserver 8.8.8.8\nnameserver 8.8.4.4");
    EXPECT_TRUE(ReadIPv4().result);
}

TEST_F(DnsGetDnsFileInfoTest, Reads32LinesAndNoMore)
{
    const Texts others(31, "fe80::1");
    Put(kFile, Servers(others) + Servers({"8.8.8.8", "8.8.4.4"}));
    EXPECT_EQ(ReadIPv4().IPv4(), (Texts{"8.8.8.8", "-"}));
}

TEST_F(DnsGetDnsFileInfoTest, TheRestOfALongLineIsALineOfItsOwn)
{
    const std::string blanks(300, ' ');
    Put(kFile, "nameserver 8.8.8.8" + blanks + "\n" + Servers({"8.8.4.4"}));
    EXPECT_EQ(ReadIPv4().IPv4(), (Texts{"8.8.8.8", "-"}));

    Put(kFile, "nameserver 8.8.8.8" + blanks + Servers({"8.8.4.4"}));
    EXPECT_EQ(ReadIPv4().IPv4(), (Texts{"8.8.8.8", "8.8.4.4"}));
}

TEST_F(DnsGetDnsFileInfoTest, ATextThatDoesNotFitLeavesItsSlotAlone)
{
    Put(kFile, Servers({"8.8.8.8", "8.8.4.4", "2001:db8::1", "2001:db8::2"}));
    Put(kFile6, "");
    for (const int len : {11, 1, 0, -1}) {
        Found found;
        EXPECT_FALSE(Dns_GetDnsFileInfo(found.primary4, found.secondary4, found.primary6,
                                        found.secondary6, len));
        EXPECT_EQ(found.All(), (Texts{"8.8.8.8", "8.8.4.4", "-", "-"})) << len;
    }
    Found found;
    EXPECT_TRUE(Dns_GetDnsServerIPv6(found.primary6, found.secondary6, 12));
    EXPECT_EQ(found.IPv6(), (Texts{"2001:db8::1", "2001:db8::2"}));
    EXPECT_EQ(Log(), LogLines{});
}

// ---- the second file

TEST_F(DnsGetDnsFileInfoTest, IPv6PairComesFromTheSecondFileWhenTheFirstHasNone)
{
    Put(kFile, Servers({"8.8.8.8", "8.8.4.4"}));
    Put(kFile6, Servers({"fe80::1", "fe80::2", "fe80::3"}));
    const Found found = ReadIPv6();
    EXPECT_TRUE(found.result);
    EXPECT_EQ(found.IPv6(), (Texts{"fe80::1", "fe80::2"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(DnsGetDnsFileInfoTest, OneServerInTheFirstFileHidesTheSecondFile)
{
    Put(kFile, Servers({"fe80::9"}));
    Put(kFile6, Servers({"fe80::1", "fe80::2"}));
    const Found found = ReadIPv6();
    EXPECT_FALSE(found.result);
    EXPECT_EQ(found.IPv6(), (Texts{"fe80::9", "-"}));
    EXPECT_EQ(TraceOf({"open"}), Texts{std::string("open ") + kFile + " O_RDONLY"});
}

TEST_F(DnsGetDnsFileInfoTest, ABadServerInTheFirstFileDoesNotHideTheSecond)
{
    Put(kFile, Servers({"fe80:bad"}));
    Put(kFile6, Servers({"fe80::1", "fe80::2"}));
    EXPECT_TRUE(ReadIPv6().result);
    EXPECT_EQ(Log(), LogLines{ReadError(" error ipv6 addr.[fe80:bad]")});
}

TEST_F(DnsGetDnsFileInfoTest, TheSecondFileIsForThePairAlone)
{
    Put(kFile, Servers({"8.8.8.8", "8.8.4.4"}));
    Put(kFile6, Servers({"fe80::1", "fe80::2"}));
    Found found;
    EXPECT_FALSE(Dns_GetDnsFileInfo(nullptr, nullptr, found.primary6, nullptr, 46));
    EXPECT_FALSE(Dns_GetDnsFileInfo(nullptr, nullptr, nullptr, found.secondary6, 46));
    EXPECT_TRUE(Dns_GetDnsFileInfo(found.primary4, found.secondary4, nullptr, nullptr, 0));
    EXPECT_EQ(found.All(), (Texts{"8.8.8.8", "8.8.4.4", "-", "-"}));
    EXPECT_EQ(TraceOf({"open"}), Texts(3, std::string("open ") + kFile + " O_RDONLY"));
}

TEST_F(DnsGetDnsFileInfoTest, AMissingSecondFileFailsTheReadAndSaysSo)
{
    Put(kFile, Servers({"8.8.8.8", "8.8.4.4"}));
    const Found found = ReadAll();
    EXPECT_FALSE(found.result);
    EXPECT_EQ(found.All(), (Texts{"8.8.8.8", "8.8.4.4", "-", "-"}));
    EXPECT_EQ(Log(), LogLines{ReadError("open /mnt/mtd/Config/resolvip6.conf failed")});
    EXPECT_EQ(HeldMutexes(), 0);
}

TEST_F(DnsGetDnsFileInfoTest, IPv4LinesOfTheSecondFileArePassedOver)
{
    Put(kFile, "");
    Put(kFile6, Servers({"1.1.1.1", "bad", "fe80::1", "1.0.0.1", "fe80::2"}));
    const Found found = ReadAll();
    EXPECT_FALSE(found.result);
    EXPECT_EQ(found.All(), (Texts{"-", "-", "fe80::1", "fe80::2"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(DnsGetDnsFileInfoTest, TheSecondFileHasTheSameLimits)
{
    Put(kFile, "");
    Put(kFile6, Servers({"fe80::1"}) + "# old\n" + Servers({"fe80::2"}));
    EXPECT_EQ(ReadIPv6().IPv6(), (Texts{"fe80::1", "-"}));

    Put(kFile6, Servers(Texts(31, "1.1.1.1")) + Servers({"fe80::1", "fe80::2"}));
    EXPECT_EQ(ReadIPv6().IPv6(), (Texts{"fe80::1", "-"}));
    EXPECT_EQ(Log(), LogLines{});

    Put(kFile6, Servers({"fe80:bad", "fe80::1", "fe80::2"}));
    EXPECT_TRUE(ReadIPv6().result);
    EXPECT_EQ(Log(), LogLines{ReadError(" error ipv6 addr.[fe80:bad]")});
}

TEST_F(DnsGetDnsFileInfoTest, FilesAreOnlyReadWhateverFails)
{
    Put(kFile, Servers({"8.8.8.8", "8.8.4.4"}));
    Put(kFile6, Servers({"fe80::1", "fe80::2"}));
    static Found found;
    FailEachCall(
        [] { found = ReadAll(); },
        [](const std::string& failed) {
            const bool complete = found.All() == Texts{"8.8.8.8", "8.8.4.4", "fe80::1", "fe80::2"};
            EXPECT_EQ(found.result, complete) << failed;
            if (failed.rfind("open", 0) == 0) {
                EXPECT_FALSE(found.result) << failed;
            }
            EXPECT_EQ(Get(kFile), Servers({"8.8.8.8", "8.8.4.4"}));
            EXPECT_EQ(Get(kFile6), Servers({"fe80::1", "fe80::2"}));
        },
        {});
}

// ---- the pairs

class DnsGetDnsServerTest : public World {};

TEST_F(DnsGetDnsServerTest, EveryGetterGivesItsPair)
{
    Put(kFile, Servers({"8.8.8.8", "fe80::1", "8.8.4.4", "fe80::2"}));
    Found inner;
    EXPECT_TRUE(Dns_GetDnsServerIPv4(inner.primary4, inner.secondary4));
    EXPECT_TRUE(Dns_GetDnsServerIPv6(inner.primary6, inner.secondary6, 46));
    Found outer;
    EXPECT_TRUE(GetIPv4DnsServer(outer.primary4, outer.secondary4));
    EXPECT_TRUE(GetIPv6DnsServer(outer.primary6, outer.secondary6, 46));
    EXPECT_EQ(inner.All(), (Texts{"8.8.8.8", "8.8.4.4", "fe80::1", "fe80::2"}));
    EXPECT_EQ(outer.All(), inner.All());
}

TEST_F(DnsGetDnsServerTest, NullIsRefusedBeforeAnyFileIsOpened)
{
    Put(kFile, Servers({"8.8.8.8", "fe80::1", "8.8.4.4", "fe80::2"}));
    char text[46] = "-";
    EXPECT_FALSE(Dns_GetDnsServerIPv4(nullptr, text));
    EXPECT_FALSE(Dns_GetDnsServerIPv4(text, nullptr));
    EXPECT_FALSE(Dns_GetDnsServerIPv6(nullptr, text, 46));
    EXPECT_FALSE(Dns_GetDnsServerIPv6(text, nullptr, 46));
    EXPECT_FALSE(GetIPv4DnsServer(nullptr, text));
    EXPECT_FALSE(GetIPv4DnsServer(text, nullptr));
    EXPECT_FALSE(GetIPv6DnsServer(nullptr, text, 46));
    EXPECT_FALSE(GetIPv6DnsServer(text, nullptr, 46));
    EXPECT_STREQ(text, "-");
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Trace(), Texts{});
}

// ---- writing

class DnsSetDnsAddressTest : public World {
protected:
    void SetUp() override
    {
        World::SetUp();
        Put(kFile, Servers({"1.1.1.1"}));
        Put(kFile6, Servers({"fe80::99"}));
    }
};

TEST_F(DnsSetDnsAddressTest, WritesAllServersAndTheIPv6OnesAgain)
{
    EXPECT_TRUE(Dns_SetDnsAddress("8.8.8.8", "8.8.4.4", "fe80::1", "fe80::2"));
    EXPECT_EQ(Get(kFile), Servers({"8.8.8.8", "8.8.4.4", "fe80::1", "fe80::2"}));
    EXPECT_EQ(Get(kFile6), Servers({"fe80::1", "fe80::2"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(DnsSetDnsAddressTest, HoldsTheLockForTheWholeRewrite)
{
    EXPECT_TRUE(Dns_SetDnsAddress("8.8.8.8", "8.8.4.4", "fe80::1", "fe80::2"));
    Texts trace = Trace();
    ASSERT_EQ(trace.size(), 6U);
    EXPECT_EQ((Texts{trace[0], trace[1], trace[2], trace[5]}),
              (Texts{"mutex lock", std::string("fopen ") + kFile + " w+",
                     std::string("fopen ") + kFile6 + " w+", "mutex unlock"}));
}

TEST_F(DnsSetDnsAddressTest, NullLeavesItsLineOut)
{
    EXPECT_TRUE(Dns_SetDnsAddress(nullptr, "8.8.4.4", nullptr, "fe80::2"));
    EXPECT_EQ(Get(kFile), Servers({"8.8.4.4", "fe80::2"}));
    EXPECT_EQ(Get(kFile6), Servers({"fe80::2"}));

    EXPECT_TRUE(Dns_SetDnsAddress("8.8.8.8", nullptr, "fe80::1", nullptr));
    EXPECT_EQ(Get(kFile), Servers({"8.8.8.8", "fe80::1"}));
    EXPECT_EQ(Get(kFile6), Servers({"fe80::1"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(DnsSetDnsAddressTest, FourNullsEmptyBothFiles)
{
    EXPECT_TRUE(Dns_SetDnsAddress(nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(Get(kFile), "");
    EXPECT_EQ(Get(kFile6), "");
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(DnsSetDnsAddressTest, CreatesMissingFiles)
{
    Remove(kFile);
    Remove(kFile6);
    EXPECT_TRUE(Dns_SetDnsAddress("8.8.8.8", nullptr, nullptr, nullptr));
    EXPECT_EQ(Get(kFile), Servers({"8.8.8.8"}));
    EXPECT_EQ(Get(kFile6), "");
}

TEST_F(DnsSetDnsAddressTest, WritesTheTextsAsTheyWereGiven)
{
    EXPECT_TRUE(Dns_SetDnsAddress(nullptr, nullptr, "2001:0DB8:0:0::1", nullptr));
    EXPECT_EQ(Get(kFile), Servers({"2001:0DB8:0:0::1"}));
    EXPECT_EQ(Get(kFile6), Servers({"2001:0DB8:0:0::1"}));
}

TEST_F(DnsSetDnsAddressTest, LeavesBadTextsOutAndNamesThemInTheEnd)
{
    EXPECT_TRUE(Dns_SetDnsAddress("8.8.8", "", "fe80::g", "8.8.8.8"));
    EXPECT_EQ(Get(kFile), "");
    EXPECT_EQ(Get(kFile6), "");
    EXPECT_EQ(
        Log(),
        (LogLines{WriteError("primary_4 addr.[8.8.8]"), WriteError("srimary_4 addr.[]"),
                  WriteError("primary_6 addr.[fe80::g]"), WriteError("srimary_6 addr.[8.8.8.8]")}));
    EXPECT_EQ(HeldMutexes(), 0);
}

TEST_F(DnsSetDnsAddressTest, ABadTextDoesNotKeepTheOthersOut)
{
    EXPECT_TRUE(Dns_SetDnsAddress("fe80::1", "8.8.4.4", "fe80::1", "bad"));
    EXPECT_EQ(Get(kFile), Servers({"8.8.4.4", "fe80::1"}));
    EXPECT_EQ(Get(kFile6), Servers({"fe80::1"}));
    EXPECT_EQ(Log(), (LogLines{WriteError("primary_4 addr.[fe80::1]"),
                               WriteError("srimary_6 addr.[bad]")}));
}

TEST_F(DnsSetDnsAddressTest, ShowsTheFirst16BytesOfABadText)
{
    EXPECT_TRUE(Dns_SetDnsAddress("0123456789abcdef", "0123456789abcdefg", nullptr,
                                  "a very long text that is no address at all"));
    EXPECT_EQ(Log(), (LogLines{WriteError("primary_4 addr.[0123456789abcdef]"),
                               WriteError("srimary_4 addr.[0123456789abcdef]"),
                               WriteError("srimary_6 addr.[a very long text]")}));
}

TEST_F(DnsSetDnsAddressTest, AFirstFileThatCannotBeOpenedLeavesBothAlone)
{
    Fail(std::string("fopen ") + kFile, EACCES);
    EXPECT_FALSE(Dns_SetDnsAddress("8.8.8.8", "8.8.4.4", "bad", nullptr));
    EXPECT_EQ(Get(kFile), Servers({"1.1.1.1"}));
    EXPECT_EQ(Get(kFile6), Servers({"fe80::99"}));
    EXPECT_EQ(Log(), LogLines{WriteError("Can not open /mnt/mtd/Config/resolv.conf")});
    EXPECT_EQ(Trace(),
              (Texts{"mutex lock", std::string("fopen ") + kFile + " w+", "mutex unlock"}));
}

TEST_F(DnsSetDnsAddressTest, ASecondFileThatCannotBeOpenedLeavesTheFirstEmpty)
{
    Fail(std::string("fopen ") + kFile6, EACCES);
    EXPECT_FALSE(Dns_SetDnsAddress("8.8.8.8", "8.8.4.4", "bad", nullptr));
    EXPECT_EQ(Get(kFile), "");
    EXPECT_EQ(Get(kFile6), Servers({"fe80::99"}));
    EXPECT_EQ(Log(), LogLines{WriteError("Can not open /mnt/mtd/Config/resolvip6.conf")});
    EXPECT_EQ(Trace(), (Texts{"mutex lock", std::string("fopen ") + kFile + " w+",
                              std::string("fopen ") + kFile6 + " w+",
                              std::string("fclose ") + kFile, "mutex unlock"}));
}

TEST_F(DnsSetDnsAddressTest, NothingIsLeftHeldWhateverFails)
{
    static bool result;
    FailEachCall([] { result = Dns_SetDnsAddress("8.8.8.8", nullptr, nullptr, nullptr); },
                 [](const std::string& failed) { EXPECT_FALSE(result) << failed; }, {});
}

// ---- setting one pair

class DnsSetDnsServerTest : public World {};

TEST_F(DnsSetDnsServerTest, EachPairIsSetAndTheOtherKept)
{
    Put(kFile, Servers({"1.1.1.1", "1.0.0.1", "fe80::1", "fe80::2"}));
    EXPECT_TRUE(Dns_SetDnsServerIPv4("8.8.8.8", "8.8.4.4"));
    EXPECT_EQ(Get(kFile), Servers({"8.8.8.8", "8.8.4.4", "fe80::1", "fe80::2"}));
    EXPECT_EQ(Get(kFile6), Servers({"fe80::1", "fe80::2"}));

    EXPECT_TRUE(Dns_SetDnsServerIPv6("fe80::3", "fe80::4"));
    EXPECT_EQ(Get(kFile), Servers({"8.8.8.8", "8.8.4.4", "fe80::3", "fe80::4"}));
    EXPECT_EQ(Get(kFile6), Servers({"fe80::3", "fe80::4"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(DnsSetDnsServerTest, PublicSettersDoTheSame)
{
    Put(kFile, Servers({"1.1.1.1", "1.0.0.1", "fe80::1", "fe80::2"}));
    EXPECT_TRUE(SetIPv4DnsServer("8.8.8.8", "8.8.4.4"));
    EXPECT_TRUE(SetIPv6DnsServer("fe80::3", "fe80::4"));
    EXPECT_EQ(Get(kFile), Servers({"8.8.8.8", "8.8.4.4", "fe80::3", "fe80::4"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(DnsSetDnsServerTest, ReadsAndWritesUnderTwoHoldsOfTheLock)
{
    Put(kFile, Servers({"fe80::1", "fe80::2"}));
    EXPECT_TRUE(Dns_SetDnsServerIPv4("8.8.8.8", "8.8.4.4"));
    EXPECT_EQ(TraceOf({"mutex", "open", "fopen"}),
              (Texts{"mutex lock", std::string("open ") + kFile + " O_RDONLY", "mutex unlock",
                     "mutex lock", std::string("fopen ") + kFile + " w+",
                     std::string("fopen ") + kFile6 + " w+", "mutex unlock"}));
}

TEST_F(DnsSetDnsServerTest, IPv6PairOfTheSecondFileIsKeptToo)
{
    Put(kFile, Servers({"1.1.1.1"}));
    Put(kFile6, Servers({"fe80::1", "fe80::2"}));
    EXPECT_TRUE(Dns_SetDnsServerIPv4("8.8.8.8", "8.8.4.4"));
    EXPECT_EQ(Get(kFile), Servers({"8.8.8.8", "8.8.4.4", "fe80::1", "fe80::2"}));
}

TEST_F(DnsSetDnsServerTest, TheSecondFileIsNotReadForTheIPv4Pair)
{
    Put(kFile, Servers({"1.1.1.1", "1.0.0.1"}));
    EXPECT_TRUE(Dns_SetDnsServerIPv6("fe80::1", "fe80::2"));
    EXPECT_EQ(TraceOf({"open"}), Texts{std::string("open ") + kFile + " O_RDONLY"});
    EXPECT_EQ(Get(kFile), Servers({"1.1.1.1", "1.0.0.1", "fe80::1", "fe80::2"}));
}

TEST_F(DnsSetDnsServerTest, ServersThatAreNotSavedAreNamedAsBadOnes)
{
    Put(kFile, Servers({"fe80::1"}));
    EXPECT_TRUE(Dns_SetDnsServerIPv4("8.8.8.8", "8.8.4.4"));
    EXPECT_EQ(Get(kFile), Servers({"8.8.8.8", "8.8.4.4", "fe80::1"}));
    EXPECT_EQ(Log(), LogLines{WriteError("srimary_6 addr.[]")});
}

TEST_F(DnsSetDnsServerTest, FirstIPv4PairOfADeviceNamesBothIPv6Servers)
{
    EXPECT_TRUE(Dns_SetDnsServerIPv4("8.8.8.8", "8.8.4.4"));
    EXPECT_EQ(Get(kFile), Servers({"8.8.8.8", "8.8.4.4"}));
    EXPECT_EQ(Get(kFile6), "");
    EXPECT_EQ(Log(), (LogLines{ReadError("open /mnt/mtd/Config/resolv.conf failed"),
                               WriteError("primary_6 addr.[]"), WriteError("srimary_6 addr.[]")}));
}

TEST_F(DnsSetDnsServerTest, FirstIPv6PairOfADeviceNamesBothIPv4Servers)
{
    EXPECT_TRUE(Dns_SetDnsServerIPv6("fe80::1", "fe80::2"));
    EXPECT_EQ(Get(kFile), Servers({"fe80::1", "fe80::2"}));
    EXPECT_EQ(Get(kFile6), Servers({"fe80::1", "fe80::2"}));
    EXPECT_EQ(Log(), (LogLines{ReadError("open /mnt/mtd/Config/resolv.conf failed"),
                               WriteError("primary_4 addr.[]"), WriteError("srimary_4 addr.[]")}));
}

TEST_F(DnsSetDnsServerTest, LongestAddressesAreKept)
{
    const std::string longest = "ffff:eeee:dddd:cccc:bbbb:aaaa:9999:8888";
    Put(kFile, Servers({"255.255.255.254", "255.255.255.253", longest, longest}));
    EXPECT_TRUE(Dns_SetDnsServerIPv4("8.8.8.8", "8.8.4.4"));
    EXPECT_EQ(Get(kFile), Servers({"8.8.8.8", "8.8.4.4", longest, longest}));
    Put(kFile, Servers({"255.255.255.254", "255.255.255.253"}));
    EXPECT_TRUE(Dns_SetDnsServerIPv6(longest.c_str(), "fe80::1"));
    EXPECT_EQ(Get(kFile), Servers({"255.255.255.254", "255.255.255.253", longest, "fe80::1"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(DnsSetDnsServerTest, ABadTextChangesNothing)
{
    const std::string before = Servers({"1.1.1.1", "1.0.0.1", "fe80::1", "fe80::2"});
    Put(kFile, before);
    EXPECT_FALSE(SetIPv4DnsServer("8.8.8.8", "8.8.4"));
    EXPECT_FALSE(Dns_SetDnsServerIPv4("bad", "8.8.4.4"));
    EXPECT_FALSE(SetIPv6DnsServer("fe80::1", "8.8.8.8"));
    EXPECT_FALSE(Dns_SetDnsServerIPv6("", "fe80::1"));
    EXPECT_FALSE(Dns_SetDnsServerIPv4("8.8.8.8", ""));
    EXPECT_FALSE(Dns_SetDnsServerIPv6("fe80::1", ""));
    EXPECT_EQ(Get(kFile), before);
    EXPECT_FALSE(Exists(kFile6));
    EXPECT_EQ(Trace(), Texts{});
    EXPECT_EQ(Log(), (LogLines{Error("Dns_SetDnsServerIPv4", "address error.[8.8.8.8][8.8.4]"),
                               Error("Dns_SetDnsServerIPv4", "address error.[bad][8.8.4.4]"),
                               Error("Dns_SetDnsServerIPv6", "address error.[fe80::1][8.8.8.8]"),
                               Error("Dns_SetDnsServerIPv6", "address error.[][fe80::1]"),
                               Error("Dns_SetDnsServerIPv4", "address error.[8.8.8.8][]"),
                               Error("Dns_SetDnsServerIPv6", "address error.[fe80::1][]")}));
}

TEST_F(DnsSetDnsServerTest, NullIsRefusedSilently)
{
    EXPECT_FALSE(Dns_SetDnsServerIPv4(nullptr, "8.8.4.4"));
    EXPECT_FALSE(Dns_SetDnsServerIPv4("8.8.8.8", nullptr));
    EXPECT_FALSE(Dns_SetDnsServerIPv6(nullptr, "fe80::1"));
    EXPECT_FALSE(Dns_SetDnsServerIPv6("fe80::1", nullptr));
    EXPECT_FALSE(SetIPv4DnsServer(nullptr, "8.8.4.4"));
    EXPECT_FALSE(SetIPv4DnsServer("8.8.8.8", nullptr));
    EXPECT_FALSE(SetIPv6DnsServer(nullptr, "fe80::1"));
    EXPECT_FALSE(SetIPv6DnsServer("fe80::1", nullptr));
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(DnsSetDnsServerTest, FailsWithTheWrite)
{
    FailAll("fopen", EROFS);
    EXPECT_FALSE(Dns_SetDnsServerIPv4("8.8.8.8", "8.8.4.4"));
    EXPECT_FALSE(Dns_SetDnsServerIPv6("fe80::1", "fe80::2"));
}

TEST_F(DnsSetDnsServerTest, NothingIsLeftHeldWhateverFails)
{
    Put(kFile, Servers({"1.1.1.1", "1.0.0.1"}));
    Put(kFile6, Servers({"fe80::1", "fe80::2"}));
    static bool result;
    FailEachCall([] { result = Dns_SetDnsServerIPv4("8.8.8.8", "8.8.4.4"); },
                 [](const std::string& failed) {
                     EXPECT_EQ(result, failed.rfind("fopen", 0) != 0) << failed;
                 },
                 {});
    FailEachCall([] { result = Dns_SetDnsServerIPv6("fe80::3", "fe80::4"); },
                 [](const std::string& failed) {
                     EXPECT_EQ(result, failed.rfind("fopen", 0) != 0) << failed;
                 },
                 {});
}

}  // namespace
