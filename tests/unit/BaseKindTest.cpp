// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// What a card is: virtual, switch interface, wireless.

#include "Base.h"

#include "fake/World.h"

#include <cerrno>
#include <climits>
#include <cstring>
#include <sys/wait.h>
#include <unistd.h>

using namespace fake;
using namespace std::string_literals;

namespace {

constexpr char kModeFile[] = "/mnt/mtd/Config/poeMode.conf";
constexpr char kWireless[] = "/proc/net/wireless";
constexpr char kWirelessHeader[] =
    "Inter-| sta-|   Quality        |   Discarded packets               | Missed | WE\n"
    " face | tus | link level noise |  nwid  crypt   frag  retry   misc | beacon | 22\n";
constexpr char kSwitchDriver[] = "sim Switch drv";

void AddCard(const std::string& name, const std::string& driver = "sim")
{
    kernel.Add(name).driver = driver;
}

Texts Queries()
{
    return TraceOf({"ioctl"});
}

// ---- CheckNetCardByDrvName

class CheckNetCardByDrvNameTest : public World {};

TEST_F(CheckNetCardByDrvNameTest, FindsThePartInTheDriversName)
{
    AddCard("eth0", "my Switch driver");
    EXPECT_TRUE(CheckNetCardByDrvName("eth0", "Switch"));
    EXPECT_TRUE(CheckNetCardByDrvName("eth0", "my Switch driver"));
    EXPECT_TRUE(CheckNetCardByDrvName("eth0", ""));
    EXPECT_FALSE(CheckNetCardByDrvName("eth0", "switch"));
    EXPECT_FALSE(CheckNetCardByDrvName("eth0", "my Switch driver "));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(CheckNetCardByDrvNameTest, AsksUnderTheLock)
{
    AddCard("eth0");
    int held = 0;
    OnCall("ioctl", [&] { held = HeldMutexes(); });
    EXPECT_FALSE(CheckNetCardByDrvName("eth0", "Switch"));
    EXPECT_EQ(held, 1);
    EXPECT_EQ(Trace(), (Texts{"mutex lock", "socket AF_INET", "fcntl F_SETFD",
                              "ioctl ETHTOOL_GDRVINFO eth0", "mutex unlock"}));
}

TEST_F(CheckNetCardByDrvNameTest, TheLockIsTheOneOfTheMtuChange)
{
    AddCard("eth0");
    bool free = true;
    OnCall("ioctl", [&] {
        free = pthread_mutex_trylock(&vorlix::upDownLock) == 0;
        if (free) pthread_mutex_unlock(&vorlix::upDownLock);
    });
    EXPECT_FALSE(CheckNetCardByDrvName("eth0", "Switch"));
    EXPECT_FALSE(free);
}

TEST_F(CheckNetCardByDrvNameTest, AFailedQueryIsAnotherDriver)
{
    EXPECT_FALSE(CheckNetCardByDrvName("eth0", ""));
    EXPECT_EQ(Log(), (LogLines{Error("NetIOCtrl", "cmd 35142 error.[No such device] eth0 ")}));
    EXPECT_EQ(HeldMutexes(), 0);
}

TEST_F(CheckNetCardByDrvNameTest, AsksFor15CharactersOfTheName)
{
    AddCard("eth-fifteen-abc", kSwitchDriver);
    EXPECT_TRUE(CheckNetCardByDrvName("eth-fifteen-abcde", "Switch"));
    EXPECT_EQ(Queries(), (Texts{"ioctl ETHTOOL_GDRVINFO eth-fifteen-abc"}));
}

TEST_F(CheckNetCardByDrvNameTest, ANameThatFillsItsFieldIsSearchedToItsLastCharacter)
{
    AddCard("eth0", std::string(26, 'x') + "Switch");
    EXPECT_TRUE(CheckNetCardByDrvName("eth0", "Switch"));
}

TEST_F(CheckNetCardByDrvNameTest, WhatStandsBehindTheNamesFieldIsNotPartOfIt)
{
    AddCard("eth0", std::string(28, 'x') + "Swit");
    kernel.At("eth0").driverVersion = "ch 2";
    EXPECT_FALSE(CheckNetCardByDrvName("eth0", "Switch"));
    EXPECT_TRUE(CheckNetCardByDrvName("eth0", "xxSwit"));
}

// ---- IsVirtPcie

class IsVirtPcieTest : public World {};

TEST_F(IsVirtPcieTest, IsToldByTheDriver)
{
    AddCard("vnic0", "pcit virt nic");
    EXPECT_TRUE(IsVirtPcie("vnic0"));
    EXPECT_EQ(Queries(), (Texts{"ioctl ETHTOOL_GDRVINFO vnic0"}));
}

TEST_F(IsVirtPcieTest, OtherNamesAreNotAskedFor)
{
    AddCard("eth0", "pcit virt nic");
    for (const char* name : {"eth0", "VNIC0", "vni", ""}) EXPECT_FALSE(IsVirtPcie(name)) << name;
    EXPECT_FALSE(IsVirtPcie(nullptr));
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(IsVirtPcieTest, TheFirstAnswerStandsForAllNames)
{
    AddCard("vnic0", "pcit virt nic 2");
    AddCard("vnic1", "sim");
    EXPECT_TRUE(IsVirtPcie("vnic0"));
    EXPECT_TRUE(IsVirtPcie("vnic1"));
    EXPECT_TRUE(IsVirtPcie("x-vnic-none"));
    EXPECT_FALSE(IsVirtPcie("eth0"));
    EXPECT_EQ(Queries().size(), 1U);
}

TEST_F(IsVirtPcieTest, IsToldByTheWholeText)
{
    AddCard("vnic0");
    for (const char* driver : {"pcit virt", "virt nic", "pcit", "pcit virt ni", "PCIT virt nic"}) {
        kernel.At("vnic0").driver = driver;
        const pid_t child = fork();  // the answer is kept for the life of a process
        if (child == 0) _exit(IsVirtPcie("vnic0") ? 1 : 0);
        int status = -1;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, 0) << driver;
    }
}

TEST_F(IsVirtPcieTest, SoDoesANegativeOne)
{
    AddCard("vnic0", "pcit virt nic");
    EXPECT_FALSE(IsVirtPcie("vnic9"));
    EXPECT_FALSE(IsVirtPcie("vnic0"));
    EXPECT_EQ(Queries().size(), 1U);
    EXPECT_EQ(Log().size(), 1U);
}

// ---- IsSwitch

class IsSwitchTest : public World {};

TEST_F(IsSwitchTest, IsToldByTheDriver)
{
    AddCard("eth0");
    AddCard("eth1", kSwitchDriver);
    EXPECT_FALSE(IsSwitch("eth0"));
    EXPECT_TRUE(IsSwitch("eth1"));
}

TEST_F(IsSwitchTest, SomeKindsNeverAre)
{
    for (const char* name : {"ppp0", "lte0", "bond0", "wlan0", "xppp", "eth-bond", "wlan0:poe"}) {
        AddCard(name, kSwitchDriver);
        EXPECT_FALSE(IsSwitch(name)) << name;
    }
    EXPECT_FALSE(IsSwitch(nullptr));
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(IsSwitchTest, TheSecondEntryOfEth0AlwaysIs)
{
    EXPECT_TRUE(IsSwitch("eth0:poe"));
    EXPECT_EQ(Queries(), Texts{});
    AddCard("eth1", kSwitchDriver);
    EXPECT_TRUE(IsSwitch("eth1"));  // nothing was kept before
    EXPECT_TRUE(IsSwitch("eth0:poe"));
    EXPECT_FALSE(IsSwitch("eth1:poe"));
    EXPECT_FALSE(IsSwitch("eth0:po"));
    EXPECT_FALSE(IsSwitch("eth0:poe1"));
    EXPECT_FALSE(IsSwitch("eth0:poe "));
    EXPECT_FALSE(IsSwitch("xeth0:poe"));
}

TEST_F(IsSwitchTest, TheFirstFoundIsTheOnlyOne)
{
    AddCard("eth0");
    AddCard("eth1", kSwitchDriver);
    AddCard("eth2", kSwitchDriver);
    EXPECT_FALSE(IsSwitch("eth0"));
    EXPECT_TRUE(IsSwitch("eth1"));
    ClearTrace();
    EXPECT_FALSE(IsSwitch("eth2"));
    EXPECT_FALSE(IsSwitch("eth0"));
    EXPECT_FALSE(IsSwitch("eth"));
    EXPECT_FALSE(IsSwitch("eth10"));
    EXPECT_TRUE(IsSwitch("eth1"));
    kernel.At("eth1").driver = "sim";  // a later change is not seen
    EXPECT_TRUE(IsSwitch("eth1"));
    EXPECT_EQ(Queries(), Texts{});
}

TEST_F(IsSwitchTest, ANegativeAnswerIsAskedAgain)
{
    AddCard("eth0");
    EXPECT_FALSE(IsSwitch("eth0"));
    kernel.At("eth0").driver = kSwitchDriver;
    EXPECT_TRUE(IsSwitch("eth0"));
    EXPECT_EQ(Queries().size(), 2U);
}

TEST_F(IsSwitchTest, ANameOf15CharactersIsKeptWhole)
{
    AddCard("eth-fifteen-abc", kSwitchDriver);
    EXPECT_TRUE(IsSwitch("eth-fifteen-abc"));
    EXPECT_TRUE(IsSwitch("eth-fifteen-abc"));
    EXPECT_FALSE(IsSwitch("eth-fifteen-abcd"));
    EXPECT_EQ(Queries().size(), 1U);
}

TEST_F(IsSwitchTest, ALongerNameIsKeptCutAndNotFoundAgain)
{
    AddCard("eth-fifteen-abc", kSwitchDriver);
    EXPECT_TRUE(IsSwitch("eth-fifteen-abcd"));
    EXPECT_FALSE(IsSwitch("eth-fifteen-abcd"));
    EXPECT_TRUE(IsSwitch("eth-fifteen-abc"));
}

TEST_F(IsSwitchTest, AFailedQueryIsNoSwitchAndIsAskedAgain)
{
    AddCard("eth0", kSwitchDriver);
    Fail("ioctl", EIO);
    EXPECT_FALSE(IsSwitch("eth0"));
    EXPECT_EQ(Log(), (LogLines{Error("NetIOCtrl", "cmd 35142 error.[Input/output error] eth0 ")}));
    EXPECT_TRUE(IsSwitch("eth0"));
}

// ---- isSwitchByName

class SwitchByNameTest : public World {};

TEST_F(SwitchByNameTest, NoNameHasNoMode)
{
    EXPECT_EQ(isSwitchByName(nullptr), -1);
    EXPECT_EQ(Trace(), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(SwitchByNameTest, TheMarkMakesASwitchInterfaceWhateverIsSaved)
{
    Put(kModeFile, "eth0 = 0\n:poe = 2\n");
    EXPECT_EQ(isSwitchByName("eth0:poe"), 1);
    EXPECT_EQ(isSwitchByName("x:poex"), 1);
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(SwitchByNameTest, ASavedModeGoesBeforeTheDriver)
{
    AddCard("eth0", kSwitchDriver);
    for (const int mode : {0, 1, 2}) {
        Put(kModeFile, "eth0 = " + std::to_string(mode) + "\n");
        EXPECT_EQ(isSwitchByName("eth0"), mode);
    }
    EXPECT_EQ(Queries(), Texts{});
}

TEST_F(SwitchByNameTest, WithoutOneTheDriverTells)
{
    AddCard("eth0");
    AddCard("eth1", kSwitchDriver);
    EXPECT_EQ(isSwitchByName("eth0"), 0);
    EXPECT_EQ(isSwitchByName("eth1"), 1);
    EXPECT_EQ(isSwitchByName("eth2"), 0);
}

TEST_F(SwitchByNameTest, Eth0IsBoth)
{
    AddCard("eth0", kSwitchDriver);
    EXPECT_EQ(isSwitchByName("eth0"), 2);
}

TEST_F(SwitchByNameTest, ANameThatBeginsLikeEth0IsNot)
{
    for (const char* name : {"eth00", "eth0.5", "eth01", "xeth0"}) {
        AddCard(name, kSwitchDriver);
        const pid_t child = fork();  // a switch that was found is kept for the life of a process
        if (child == 0) _exit(isSwitchByName(name));
        int status = -1;
        waitpid(child, &status, 0);
        EXPECT_EQ(WEXITSTATUS(status), 1) << name;
    }
}

TEST_F(SwitchByNameTest, ABadSavedModeIsToldAndTheDriverAsked)
{
    AddCard("eth0", kSwitchDriver);
    Put(kModeFile, "eth0 = 3\n");
    EXPECT_EQ(isSwitchByName("eth0"), 2);
    EXPECT_EQ(Log(), (LogLines{Error("NetSwitch_GetNetCardMode", "mode error 3 3")}));
}

TEST_F(SwitchByNameTest, NothingIsLeftHeldWhateverFails)
{
    AddCard("eth1", kSwitchDriver);
    Put(kModeFile, "eth1 = 1\n");
    FailEachCall([] { isSwitchByName("eth1"); });
}

// ---- GetSwitchInterface

class GetSwitchInterfaceTest : public World {
protected:
    char name[20];

    void SetUp() override
    {
        World::SetUp();
        memset(name, '#', sizeof(name));
    }

    /// What the call leaves in a buffer of `#`.
    std::string Ask(int len)
    {
        memset(name, '#', sizeof(name));
        EXPECT_TRUE(GetSwitchInterface(name, len));
        return std::string(name, sizeof(name));
    }
};

TEST_F(GetSwitchInterfaceTest, NamesTheFirstSwitchInterface)
{
    AddCard("eth0");
    AddCard("eth1", kSwitchDriver);
    EXPECT_EQ(Ask(20), "eth1" + std::string(11, '\0') + "#####");
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(GetSwitchInterfaceTest, ACardThatIsBothIsNamedWithItsMark)
{
    AddCard("eth0", kSwitchDriver);
    EXPECT_EQ(Ask(16), "eth0:poe" + std::string(7, '\0') + "#####");
}

TEST_F(GetSwitchInterfaceTest, ASavedModeNamesIt)
{
    AddCard("eth0");
    AddCard("eth1");
    Put(kModeFile, "eth1 = 1\n");
    EXPECT_EQ(Ask(16).substr(0, 5), "eth1\0"s);
    EXPECT_EQ(Queries(), (Texts{"ioctl ETHTOOL_GDRVINFO eth0", "ioctl ETHTOOL_GDRVINFO eth0"}));
}

TEST_F(GetSwitchInterfaceTest, TheFirstAnswerLeavesByte15AndTerminatesASmallerBuffer)
{
    struct Case {
        int len;
        std::string buffer;
    };
    const Case cases[] = {
        {17, "eth-fifteen-abc#####"},   {16, "eth-fifteen-abc#####"},
        {15, "eth-fifteen-ab\0#####"s}, {5, "eth-\0###############"s},
        {1, "\0###################"s},
    };
    AddCard("eth-fifteen-abc", kSwitchDriver);
    for (const Case& expected : cases) {
        const pid_t child = fork();  // the answer is kept for the life of a process
        if (child == 0) _exit(Ask(expected.len) == expected.buffer && !HasFailure() ? 0 : 1);
        int status = -1;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, 0) << expected.len;
    }
}

TEST_F(GetSwitchInterfaceTest, TheKeptAnswerIsTerminatedAndZeroed)
{
    AddCard("eth-fifteen-abc", kSwitchDriver);
    Ask(20);
    ClearTrace();
    EXPECT_EQ(Ask(20), "eth-fifteen-abc" + std::string(5, '\0'));
    EXPECT_EQ(Ask(16), "eth-fifteen-abc\0####"s);
    EXPECT_EQ(Ask(15), "eth-fifteen-ab\0#####"s);
    EXPECT_EQ(Ask(4), "eth\0################"s);
    EXPECT_EQ(Ask(1), "\0###################"s);
    EXPECT_EQ(TraceOf({"open", "ioctl"}), Texts{});
}

TEST_F(GetSwitchInterfaceTest, TheKeptAnswerOutlivesItsCard)
{
    AddCard("eth1", kSwitchDriver);
    Ask(16);
    kernel.cards.clear();
    EXPECT_EQ(Ask(16).substr(0, 5), "eth1\0"s);
}

TEST_F(GetSwitchInterfaceTest, NoByteOfARefusedNameIsHandedOut)
{
    AddCard("docker-longer-n");
    AddCard("eth1", kSwitchDriver);
    EXPECT_EQ(Ask(20), "eth1" + std::string(11, '\0') + "#####");
}

TEST_F(GetSwitchInterfaceTest, NoneIsToldAndNotKept)
{
    AddCard("eth0");
    EXPECT_FALSE(GetSwitchInterface(name, 16));
    EXPECT_EQ(name[0], '#');
    EXPECT_EQ(Log(), (LogLines{Info("GetSwitchInterface", "can no find switch.")}));
    kernel.At("eth0").driver = kSwitchDriver;
    EXPECT_EQ(Ask(16).substr(0, 9), "eth0:poe\0"s);
}

TEST_F(GetSwitchInterfaceTest, NoListingIsAWarning)
{
    Fail("open /proc/net/dev", ENOENT);
    EXPECT_FALSE(GetSwitchInterface(name, 16));
    EXPECT_EQ(name[0], '#');
    EXPECT_EQ(Log(), (LogLines{Error("GetAllInterfaceInfo", "Open file /proc/net/dev failed!\n"),
                               Warn("GetSwitchInterface", "GetAllInterfaceInfo failed!")}));
}

TEST_F(GetSwitchInterfaceTest, RefusesNullAndNoRoom)
{
    AddCard("eth1", kSwitchDriver);
    for (int kept = 0; kept < 2; ++kept) {
        ClearLog();
        ClearTrace();
        memset(name, '#', sizeof(name));
        EXPECT_FALSE(GetSwitchInterface(nullptr, 16));
        for (const int len : {0, -1, INT_MIN}) EXPECT_FALSE(GetSwitchInterface(name, len));
        EXPECT_EQ(name[0], '#');
        EXPECT_EQ(Log(), LogLines(4, Error("GetSwitchInterface", "params error!")));
        EXPECT_EQ(Trace(), Texts{});
        Ask(16);
    }
}

TEST_F(GetSwitchInterfaceTest, NothingIsLeftHeldWhateverFails)
{
    AddCard("eth0");
    AddCard("eth1", kSwitchDriver);
    static std::string found;
    FailEachCall(
        [] {
            char text[16] = {};
            found = GetSwitchInterface(text, sizeof(text)) ? text : "";
        },
        [](const std::string&) { EXPECT_TRUE(found.empty() || found == "eth1") << found; });
}

// ---- NetCardIsWifi

class NetCardIsWifiTest : public World {
protected:
    static void PutLines(const std::string& lines) { Put(kWireless, kWirelessHeader + lines); }

    /// "no", "connected" or "not connected".
    static std::string Ask(const std::string& name)
    {
        for (const bool before : {false, true}) {  // the answer does not lean on what was there
            bool connected = before;
            if (!NetCardIsWifi(name.c_str(), &connected)) {
                EXPECT_EQ(connected, before);
                return "no";
            }
            if (before == connected && before) return "connected";
        }
        return "not connected";
    }
};

TEST_F(NetCardIsWifiTest, WithoutATableTheNameTells)
{
    for (const char* name : {"wlan0", "wlan", "wlan-x", "wlanbond"}) {
        EXPECT_EQ(Ask(name), "not connected") << name;
        EXPECT_TRUE(NetCardIsWifi(name, nullptr));
    }
    for (const char* name : {"ra0", "xwlan0", "wla", "WLAN0", "eth0", ""}) {
        EXPECT_EQ(Ask(name), "no") << name;
        EXPECT_FALSE(NetCardIsWifi(name, nullptr));
    }
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NetCardIsWifiTest, WithoutALineTheNameTellsToo)
{
    PutLines(" wlan7: 1\n");
    EXPECT_EQ(Ask("wlan0"), "not connected");
    EXPECT_EQ(Ask("eth0"), "no");
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NetCardIsWifiTest, AStatusOf1IsConnected)
{
    struct Case {
        const char* line;
        const char* answer;
    };
    const Case cases[] = {
        {" ra0: 1   70.  -40.  -256        0      0      0      0      0        0\n", "connected"},
        {" ra0: 0   70.  -40.  -256        0\n", "not connected"},
        {" ra0: 0001   70.  -40.\n", "connected"},
        {" ra0: 0000   70.  -40.\n", "not connected"},
        {" ra0:1", "connected"},
        {" ra0:\t+1", "connected"},
        {" ra0: 1.", "connected"},
        {" ra0: 11", "not connected"},
        {" ra0: -1", "not connected"},
        {" ra0: 0x1", "not connected"},
        {" ra0: up 1", "not connected"},
        {" ra0:", "not connected"},
        {" ra0 x:1 y:0", "connected"},
    };
    for (const Case& expected : cases) {
        PutLines(expected.line);
        EXPECT_EQ(Ask("ra0"), expected.answer) << expected.line;
    }
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NetCardIsWifiTest, ADigitBehindTheNameIsAnotherCard)
{
    PutLines("wlan10: 1\n");
    EXPECT_EQ(Ask("wlan1"), "not connected");  // by its name alone
    PutLines("ra10: 1\n");
    EXPECT_EQ(Ask("ra1"), "no");
    PutLines("ra10: 1\nra1: 1\n");
    EXPECT_EQ(Ask("ra1"), "connected");
    EXPECT_EQ(Ask("ra10"), "connected");
}

TEST_F(NetCardIsWifiTest, OnlyTheFirstPlaceInALineCounts)
{
    PutLines("ra10 ra1: 1\n");
    EXPECT_EQ(Ask("ra1"), "no");
}

TEST_F(NetCardIsWifiTest, TheNameMayStandAnywhereInTheLine)
{
    PutLines("xrq0x: 1\n");
    EXPECT_EQ(Ask("rq0"), "connected");
    EXPECT_EQ(Ask("rq"), "no");  // a digit behind it
    EXPECT_EQ(Ask("x"), "connected");
    for (const char* behind : {"a", "f", "F", "-", ".", "|", " ", "\t"}) {
        PutLines("rq0"s + behind + ": 1\n");
        EXPECT_EQ(Ask("rq0"), "connected") << behind;
    }
}

TEST_F(NetCardIsWifiTest, TheFirstLineThatMatchesCounts)
{
    PutLines("ra0: 0\nra0: 1\n");
    EXPECT_EQ(Ask("ra0"), "not connected");
}

TEST_F(NetCardIsWifiTest, ALineWithoutColonIsAnErrorAndNotConnected)
{
    PutLines("ra0 1\n");
    bool connected = true;
    EXPECT_TRUE(NetCardIsWifi("ra0", &connected));
    EXPECT_FALSE(connected);
    EXPECT_EQ(Log(), (LogLines{Error("NetCardIsWifi", "can not find ':' in ra0 1\n")}));
}

TEST_F(NetCardIsWifiTest, NobodyLooksForTheColonWhenTheKindAloneIsAsked)
{
    PutLines("ra0 1\n");
    EXPECT_TRUE(NetCardIsWifi("ra0", nullptr));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NetCardIsWifiTest, AnEmptyNameIsInTheFirstLine)
{
    PutLines("");
    bool connected = true;
    EXPECT_TRUE(NetCardIsWifi("", &connected));
    EXPECT_FALSE(connected);
    EXPECT_EQ(Log().size(), 1U);  // the header has no colon
}

TEST_F(NetCardIsWifiTest, LooksAtEveryLineHoweverManyThereAre)
{
    PutLines(std::string(1024 * 1024, 'x') + "\nra0: 1");
    EXPECT_EQ(Ask("ra0"), "connected");
}

TEST_F(NetCardIsWifiTest, ANulHidesTheRestOfALine)
{
    PutLines("x\0 ra0: 1\n"s);
    EXPECT_EQ(Ask("ra0"), "no");
}

TEST_F(NetCardIsWifiTest, AFolderInTheTablesPlaceHasNoLine)
{
    MakeFolder(kWireless);
    EXPECT_EQ(Ask("wlan0"), "not connected");
    EXPECT_EQ(Ask("ra0"), "no");
}

TEST_F(NetCardIsWifiTest, ANameFoundIsNotReadAgainForItsKind)
{
    PutLines("ra0: 1\n");
    EXPECT_TRUE(NetCardIsWifi("ra0", nullptr));
    Remove(kWireless);
    ClearTrace();
    EXPECT_TRUE(NetCardIsWifi("ra0", nullptr));
    EXPECT_EQ(TraceOf({"open"}), Texts{});
    EXPECT_FALSE(NetCardIsWifi("ra", nullptr));
    EXPECT_FALSE(NetCardIsWifi("ra00", nullptr));
    EXPECT_FALSE(NetCardIsWifi("", nullptr));
}

TEST_F(NetCardIsWifiTest, TheStateIsAlwaysReadAgain)
{
    PutLines("ra0: 1\n");
    EXPECT_EQ(Ask("ra0"), "connected");
    PutLines("ra0: 0\n");
    EXPECT_EQ(Ask("ra0"), "not connected");
    PutLines("ra0: 1\n");
    EXPECT_EQ(Ask("ra0"), "connected");
    PutLines("ra0: up\n");  // no number is 0, whatever the last one was
    EXPECT_EQ(Ask("ra0"), "not connected");
    Remove(kWireless);
    EXPECT_EQ(Ask("ra0"), "no");
}

TEST_F(NetCardIsWifiTest, AnAnswerWithStateIsKeptToo)
{
    PutLines("ra0: 0\n");
    EXPECT_EQ(Ask("ra0"), "not connected");
    Remove(kWireless);
    EXPECT_TRUE(NetCardIsWifi("ra0", nullptr));
}

TEST_F(NetCardIsWifiTest, TheLastNameFoundIsKept)
{
    PutLines("ra0: 1\nra1: 1\n");
    EXPECT_TRUE(NetCardIsWifi("ra0", nullptr));
    EXPECT_TRUE(NetCardIsWifi("ra1", nullptr));
    Remove(kWireless);
    EXPECT_FALSE(NetCardIsWifi("ra0", nullptr));
    EXPECT_TRUE(NetCardIsWifi("ra1", nullptr));
}

TEST_F(NetCardIsWifiTest, ANameToldByItselfIsNotKept)
{
    PutLines("ra0: 1\n");
    EXPECT_TRUE(NetCardIsWifi("ra0", nullptr));
    EXPECT_TRUE(NetCardIsWifi("wlan0", nullptr));
    ClearTrace();
    EXPECT_TRUE(NetCardIsWifi("ra0", nullptr));
    EXPECT_EQ(TraceOf({"open"}), Texts{});
    EXPECT_TRUE(NetCardIsWifi("wlan0", nullptr));
    EXPECT_EQ(TraceOf({"open"}), (Texts{"open /proc/net/wireless O_RDONLY"}));
}

TEST_F(NetCardIsWifiTest, ALongNameIsKeptCutAndReadAgain)
{
    PutLines("ra-fifteen-abcde: 1\n");  // 16 characters
    EXPECT_TRUE(NetCardIsWifi("ra-fifteen-abcde", nullptr));
    Remove(kWireless);
    EXPECT_FALSE(NetCardIsWifi("ra-fifteen-abcde", nullptr));
    EXPECT_TRUE(NetCardIsWifi("ra-fifteen-abcd", nullptr));
}

TEST_F(NetCardIsWifiTest, RefusesNull)
{
    bool connected = true;
    EXPECT_FALSE(NetCardIsWifi(nullptr, nullptr));
    EXPECT_FALSE(NetCardIsWifi(nullptr, &connected));
    EXPECT_TRUE(connected);
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(NetCardIsWifiTest, NothingIsLeftOpenWhateverFails)
{
    PutLines("ra0: 1\n");
    static std::string answer;
    FailEachCall([] { answer = Ask("ra0"); },
                 [](const std::string&) { EXPECT_EQ(OpenHandles(), Texts{}); });
}

}  // namespace
