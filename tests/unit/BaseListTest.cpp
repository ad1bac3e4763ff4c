// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Reading interface names, and the listings made of them.

#include "Base.h"

#include "BaseNames.h"
#include "fake/World.h"

#include <cerrno>
#include <climits>
#include <cstring>
#include <functional>

using namespace fake;
using namespace std::string_literals;

namespace {

constexpr char kTable[] = "/proc/net/dev";
constexpr char kModeFile[] = "/mnt/mtd/Config/poeMode.conf";
constexpr char kHeader[] =
    "Inter-|   Receive                            |  Transmit\n"
    " face |bytes    packets errs drop fifo frame compressed multicast|bytes\n";

// ---- getNetIfNameNoFilter

class GetNetIfNameTest : public World {};

TEST_F(GetNetIfNameTest, TakesWhatStandsBeforeTheColon)
{
    struct Case {
        const char* line;
        const char* name;
    };
    const Case cases[] = {
        {"eth0: 0 0\n", "eth0"},
        {"  eth0: 0 0\n", "eth0"},
        {" \t \tlo:", "lo"},
        {"eth0.100:1 2", "eth0.100"},
        {"eth0:1: 0", "eth0"},
        {"eth0|bond\r:", "eth0|bond\r"},
        {":", ""},
        {"  : 0", ""},
        {"fifteen-letters: 0", "fifteen-letters"},
    };
    for (const Case& expected : cases) {
        char name[16] = {};
        EXPECT_TRUE(getNetIfNameNoFilter(expected.line, name, sizeof(name))) << expected.line;
        EXPECT_STREQ(name, expected.name);
    }
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(GetNetIfNameTest, ABlankOrTabInTheNameIsNoName)
{
    for (const char* line : {"eth0 : 0", "eth0\t: 0", " face |bytes: 0", "et\th0: 0"}) {
        char name[16] = {};
        EXPECT_FALSE(getNetIfNameNoFilter(line, name, sizeof(name))) << line;
    }
    EXPECT_EQ(Log(), LogLines{});
}

/// What stands in the buffer is what was read; behind it, nothing was touched.
TEST_F(GetNetIfNameTest, ARefusedLineLeavesWhatWasReadOfItWithoutAnEnd)
{
    struct Case {
        const char* line;
        std::string buffer;
    };
    const Case cases[] = {
        {"et\th0: 0", "et##############"},
        {"eth0 : 0", "eth0############"},
        {"eth0", "eth0############"},
        {" sixteen-letters0 : 1", "sixteen-letters0"},   // ends without a colon, so no word
        {" sixteen-letters0\t: 1", "sixteen-letters0"},  // of its length is lost
    };
    for (const Case& expected : cases) {
        char name[16];
        memset(name, kMarker, sizeof(name));
        EXPECT_FALSE(getNetIfNameNoFilter(expected.line, name, sizeof(name))) << expected.line;
        EXPECT_EQ(std::string(name, sizeof(name)), expected.buffer) << expected.line;
    }
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(GetNetIfNameTest, OnlyBlanksAndTabsInFrontArePassedOver)
{
    for (const char* white : {"\n", "\v", "\f", "\r"}) {
        char name[16] = {};
        EXPECT_TRUE(getNetIfNameNoFilter((white + "eth0: 0"s).c_str(), name, sizeof(name)));
        EXPECT_EQ(name, white + "eth0"s);
    }
}

TEST_F(GetNetIfNameTest, ANameThatFillsTheBufferIsTold)
{
    char name[16] = {};
    EXPECT_FALSE(getNetIfNameNoFilter("  sixteen-letters0: 1 2\n", name, sizeof(name)));
    EXPECT_EQ(Log(), (LogLines{Error("getNetIfNameNoFilter",
                                     "eth name too long.   sixteen-letters0: 1 2\n")}));
    EXPECT_EQ(std::string(name, 16), "sixteen-letters0");
}

TEST_F(GetNetIfNameTest, ALongerNameFailsInSilence)
{
    for (const size_t length : {17U, 18U, 200U}) {
        char name[16] = {};
        const std::string line = std::string(length, 'e') + ": 1 2\n";
        EXPECT_FALSE(getNetIfNameNoFilter(line.c_str(), name, sizeof(name)));
        EXPECT_EQ(std::string(name, 16), std::string(16, 'e'));
    }
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(GetNetIfNameTest, TheSizeIsTheCallers)
{
    char name[16];
    memset(name, kMarker, sizeof(name));
    EXPECT_TRUE(getNetIfNameNoFilter("eth0: 0", name, 5));
    EXPECT_EQ(std::string(name, 6), "eth0\0#"s);
    EXPECT_FALSE(getNetIfNameNoFilter("eth1: 0", name, 4));
    EXPECT_EQ(std::string(name, 6), "eth1\0#"s);
    EXPECT_EQ(Log(), (LogLines{Error("getNetIfNameNoFilter", "eth name too long. eth1: 0")}));
}

TEST_F(GetNetIfNameTest, RefusesNullAndNoRoom)
{
    char name[16] = "as it was";
    EXPECT_FALSE(getNetIfNameNoFilter(nullptr, name, sizeof(name)));
    EXPECT_FALSE(getNetIfNameNoFilter("eth0:", nullptr, sizeof(name)));
    for (const int len : {0, -1, INT_MIN}) EXPECT_FALSE(getNetIfNameNoFilter("eth0:", name, len));
    EXPECT_STREQ(name, "as it was");
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(GetNetIfNameTest, ALineWithoutColonEndsAtItsEnd)
{
    char name[16] = {};
    EXPECT_FALSE(getNetIfNameNoFilter("eth0", name, sizeof(name)));
    EXPECT_FALSE(getNetIfNameNoFilter("", name, sizeof(name)));
    EXPECT_FALSE(getNetIfNameNoFilter("   ", name, sizeof(name)));
}

// ---- getNetIfName

TEST_F(GetNetIfNameTest, TheFilterKeepsTheKindsOfADevice)
{
    for (const char* accepted :
         {"eth0", "wlan0", "bond0", "br0", "ppp0", "lte0", "apra0", "usb0", "xeth", "mybr1",
          "enxusb", "bridge", "abra", "eth0.100", "rename-wlan"}) {
        char name[16] = {};
        EXPECT_TRUE(getNetIfName((accepted + ": 0"s).c_str(), name, sizeof(name))) << accepted;
        EXPECT_STREQ(name, accepted);
    }
    for (const char* refused :
         {"lo", "tun0", "sit0", "vnic0", "nbp0", "dummy0", "ETH0", "et", "veth0", "br-1234",
          "docker0", "veth-bond0", "eth-docker", "xbr-eth0", "wlanveth1", ""}) {
        char name[16] = {};
        EXPECT_FALSE(getNetIfName((refused + ": 0"s).c_str(), name, sizeof(name))) << refused;
        EXPECT_STREQ(name, refused);  // stays in the buffer
    }
}

TEST_F(GetNetIfNameTest, TheFilterComesBehindTheForm)
{
    char name[16] = {};
    EXPECT_FALSE(getNetIfName("eth0 : 0", name, sizeof(name)));
    EXPECT_FALSE(getNetIfName("sixteen-letters0: 0", name, sizeof(name)));
    EXPECT_FALSE(getNetIfName(nullptr, name, sizeof(name)));
    EXPECT_FALSE(getNetIfName("eth0:", nullptr, sizeof(name)));
    EXPECT_FALSE(getNetIfName("eth0:", name, 0));
    EXPECT_EQ(LogOf("getNetIfNameNoFilter").size(), 1U);
}

// ---- GetAllInterfaceInfo

class GetAllInterfaceInfoTest : public World {
protected:
    /// The listing of the whole device.
    static Texts List()
    {
        Names names;
        int count = kEntries;
        EXPECT_TRUE(GetAllInterfaceInfo(names.entries, &count));
        return names.First(count);
    }

    /// Puts a table of the test's own behind the header.
    static void PutTable(const std::string& lines) { Put(kTable, kHeader + lines); }
};

TEST_F(GetAllInterfaceInfoTest, KeepsTheKindsOfADeviceInTheirOrder)
{
    AddCards({"veth0", "br-1234", "docker0", "lo", "eth0", "bond0", "br0", "vnic0", "usb0"});
    EXPECT_EQ(List(), (Texts{"eth0", "bond0", "br0", "usb0"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(GetAllInterfaceInfoTest, StoresTheNumberListed)
{
    AddCards(Many("eth", 3));
    Names names;
    int count = 4;
    EXPECT_TRUE(GetAllInterfaceInfo(names.entries, &count));
    EXPECT_EQ(count, 3);
    EXPECT_TRUE(names.AllClear(3));
}

TEST_F(GetAllInterfaceInfoTest, KeepsTheCapacityWhenThereAreMore)
{
    AddCards(Many("eth", 5));
    Names names;
    int count = 1;
    EXPECT_TRUE(GetAllInterfaceInfo(names.entries, &count));
    EXPECT_EQ(count, 1);
    EXPECT_EQ(names.First(1), (Texts{"eth0"}));
    EXPECT_TRUE(names.AllClear(1));
}

TEST_F(GetAllInterfaceInfoTest, KeepsTheCapacityWhenThereAreAsMany)
{
    AddCards(Many("eth", 3));
    Names names;
    int count = 3;
    EXPECT_TRUE(GetAllInterfaceInfo(names.entries, &count));
    EXPECT_EQ(count, 3);
    EXPECT_EQ(names.First(3), Many("eth", 3));
}

TEST_F(GetAllInterfaceInfoTest, ADeviceWithoutCardsHasAnEmptyList)
{
    EXPECT_EQ(List(), Texts{});
    AddCards({"lo", "sit0"});
    EXPECT_EQ(List(), Texts{});
    Put(kTable, "");
    EXPECT_EQ(List(), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(GetAllInterfaceInfoTest, ListsAtMost32)
{
    AddCards(Many("eth", 40));
    for (const int capacity : {32, 33, 40, INT_MAX}) {
        Names names;
        int count = capacity;
        EXPECT_TRUE(GetAllInterfaceInfo(names.entries, &count));
        EXPECT_EQ(count, 32);
        EXPECT_EQ(names.First(32), Many("eth", 32));
    }
}

TEST_F(GetAllInterfaceInfoTest, Lists32OfACapacityBeyond)
{
    AddCards(Many("eth", 32));
    Names names;
    int count = 40;
    EXPECT_TRUE(GetAllInterfaceInfo(names.entries, &count));
    EXPECT_EQ(count, 32);
    EXPECT_EQ(names.First(32), Many("eth", 32));
}

TEST_F(GetAllInterfaceInfoTest, ANegativeCapacityListsNothing)
{
    AddCards(Many("eth", 3));
    for (const int capacity : {-1, INT_MIN}) {
        Names names;
        int count = capacity;
        EXPECT_TRUE(GetAllInterfaceInfo(names.entries, &count));
        EXPECT_EQ(count, capacity);
        EXPECT_TRUE(names.AllClear(0));
    }
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(GetAllInterfaceInfoTest, RefusesNullAndACapacityOf0)
{
    AddCards(Many("eth", 3));
    Names names;
    int count = 0;
    EXPECT_FALSE(GetAllInterfaceInfo(names.entries, &count));
    count = 3;
    EXPECT_FALSE(GetAllInterfaceInfo(nullptr, &count));
    EXPECT_FALSE(GetAllInterfaceInfo(names.entries, nullptr));
    EXPECT_EQ(count, 3);
    EXPECT_TRUE(names.Untouched());
    EXPECT_EQ(Log(), LogLines(3, Error("GetAllInterfaceInfo", "params error!")));
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(GetAllInterfaceInfoTest, AMissingTableIsAnError)
{
    AddCards(Many("eth", 3));
    Fail("open /proc/net/dev", ENOENT);
    Names names;
    int count = 7;
    EXPECT_FALSE(GetAllInterfaceInfo(names.entries, &count));
    EXPECT_EQ(count, 7);
    EXPECT_TRUE(names.AllClear(0));
    EXPECT_EQ(Log(), (LogLines{Error("GetAllInterfaceInfo", "Open file /proc/net/dev failed!\n")}));
}

// ---- what may stand in the table

TEST_F(GetAllInterfaceInfoTest, PassesOverLinesOfABadForm)
{
    AddCards({"eth2", "eth|5", "eth4"});
    PutTable("eth0 : 0\n"
             "no colon here eth1\n"
             "\n"
             ":\n"
             "\teth2: 0\n"
             "et\th3: 0\n"
             "eth|5: 0\n"  // titles are told by their missing colon, not by their bars
             "eth4:0 0");
    EXPECT_EQ(List(), (Texts{"eth2", "eth|5", "eth4"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(GetAllInterfaceInfoTest, PassesOverNamesThatAreTooLong)
{
    AddCards({"eth-fifteen-abc", "eth9"});
    PutTable("eth-fifteen-abc: 0\n"    // 15 characters
             "eth-sixteen-abcd: 0\n"   // 16
             "eth-seventeen-abc: 0\n"  // 17
             "eth-of-a-name-that-does-not-end-for-long: 0\n"
             "eth9: 0\n");
    Names names;
    int count = kEntries;
    EXPECT_TRUE(GetAllInterfaceInfo(names.entries, &count));
    EXPECT_EQ(names.First(count), (Texts{"eth-fifteen-abc", "eth9"}));
    EXPECT_EQ(Log(), (LogLines{Error("getNetIfNameNoFilter",
                                     "eth name too long. eth-sixteen-abcd: 0\n")}));
}

TEST_F(GetAllInterfaceInfoTest, TheRestOfALongLineIsALineOfItsOwn)
{
    PutTable("eth0:" + std::string(250, '0') + "  eth7: 0\neth1: 0\n");
    EXPECT_EQ(List(), (Texts{"eth0", "eth7", "eth1"}));
}

TEST_F(GetAllInterfaceInfoTest, ANulEndsALineAsATextEnds)
{
    PutTable("eth0\0: 0\neth1:\0 0\n\0eth2: 0\neth3: 0\n"s);
    EXPECT_EQ(List(), (Texts{"eth1", "eth3"}));
}

TEST_F(GetAllInterfaceInfoTest, ReadsATableOfAMegabyte)
{
    PutTable(std::string(1024 * 1024, 'x') + "\neth0: 0\n");
    EXPECT_EQ(List(), (Texts{"eth0"}));
}

TEST_F(GetAllInterfaceInfoTest, AnUnreadableTableIsNoList)
{
    MakeFolder(kTable);
    Names names;
    int count = kEntries;
    EXPECT_FALSE(GetAllInterfaceInfo(names.entries, &count));
    EXPECT_EQ(count, kEntries);
    EXPECT_EQ(Log(), (LogLines{Error("GetAllInterfaceInfo", "Read file /proc/net/dev failed!\n")}));
}

TEST_F(GetAllInterfaceInfoTest, AnAliasIsListedAsItsCard)
{
    PutTable("eth0: 0\neth0:1: 0\n");
    EXPECT_EQ(List(), (Texts{"eth0", "eth0"}));
}

// ---- the second entry of a card that is a switch interface as well

TEST_F(GetAllInterfaceInfoTest, ACardThatIsBothHasASecondEntry)
{
    AddCards({"eth0", "eth1"});
    kernel.At("eth0").driver = "sim Switch drv";
    EXPECT_EQ(List(), (Texts{"eth0", "eth0:poe", "eth1"}));
}

TEST_F(GetAllInterfaceInfoTest, ASwitchInterfaceAloneHasNone)
{
    AddCards({"eth0", "eth1"});
    kernel.At("eth1").driver = "sim Switch drv";
    EXPECT_EQ(List(), (Texts{"eth0", "eth1"}));
}

TEST_F(GetAllInterfaceInfoTest, ASavedModeGoesBeforeTheDriver)
{
    AddCards({"eth0", "eth1"});
    kernel.At("eth0").driver = "sim Switch drv";
    Put(kModeFile, "eth0 = 0\n");
    EXPECT_EQ(List(), (Texts{"eth0", "eth1"}));
    Put(kModeFile, "eth0 = 1\n");
    EXPECT_EQ(List(), (Texts{"eth0", "eth1"}));
    Put(kModeFile, "eth1 = 2\n");
    EXPECT_EQ(List(), (Texts{"eth0", "eth0:poe", "eth1", "eth1:poe"}));
}

TEST_F(GetAllInterfaceInfoTest, ABadSavedModeIsToldAndTheDriverAsked)
{
    AddCards({"eth0"});
    kernel.At("eth0").driver = "sim Switch drv";
    Put(kModeFile, "eth0 = 3\n");
    EXPECT_EQ(List(), (Texts{"eth0", "eth0:poe"}));
    EXPECT_EQ(Log(), (LogLines{Error("NetSwitch_GetNetCardMode", "mode error 3 3")}));
}

TEST_F(GetAllInterfaceInfoTest, ACardOfAnyKindMayHaveASecondEntry)
{
    const Texts cards = {"eth0.5", "bond0", "br0", "usb0", "ppp0", "xlte"};
    AddCards(cards);
    std::string modes;
    Texts both;
    for (const std::string& card : cards) {
        modes += card + " = 2\n";
        both.insert(both.end(), {card, card + ":poe"});
    }
    Put(kModeFile, modes);
    EXPECT_EQ(List(), both);
}

TEST_F(GetAllInterfaceInfoTest, TheSecondEntryIsBoundedBy16Bytes)
{
    const Texts cards = {"eth-eleven1", "eth-twelve-1", "eth-fourteen-a", "eth-fifteen-abc"};
    AddCards(cards);
    std::string modes;
    for (const std::string& card : cards) modes += card + " = 2\n";
    Put(kModeFile, modes);
    EXPECT_EQ(List(),
              (Texts{"eth-eleven1", "eth-eleven1:poe", "eth-twelve-1", "eth-twelve-1:po",
                     "eth-fourteen-a", "eth-fourteen-a:", "eth-fifteen-abc", "eth-fifteen-abc"}));
}

TEST_F(GetAllInterfaceInfoTest, TheSecondEntryOfTheLastCardWantedStandsBehindTheRest)
{
    AddCards({"eth0", "eth1"});
    kernel.At("eth0").driver = "sim Switch drv";
    Names names;
    int count = 1;
    EXPECT_TRUE(GetAllInterfaceInfo(names.entries, &count));
    EXPECT_EQ(count, 1);
    EXPECT_EQ(names.First(2), (Texts{"eth0", "eth0:poe"}));
    EXPECT_TRUE(names.AllClear(2));
}

TEST_F(GetAllInterfaceInfoTest, SoItDoesAtTheEndOfTheTable)
{
    AddCards({"eth1", "eth0"});
    kernel.At("eth0").driver = "sim Switch drv";
    Names names;
    int count = 2;
    EXPECT_TRUE(GetAllInterfaceInfo(names.entries, &count));
    EXPECT_EQ(count, 2);
    EXPECT_EQ(names.First(3), (Texts{"eth1", "eth0", "eth0:poe"}));
}

TEST_F(GetAllInterfaceInfoTest, TheSecondEntryOfThe32ndCardHasNoPlace)
{
    AddCards(Many("eth", 31));
    AddCards({"bond0"});
    Put(kModeFile, "bond0 = 2\n");
    for (const int more : {0, 1}) {  // the end of the table, and a further line
        Names names;
        int count = kEntries;
        EXPECT_TRUE(GetAllInterfaceInfo(names.entries, &count));
        EXPECT_EQ(count, 32);
        EXPECT_EQ(names.First(32).back(), "bond0");
        if (more == 0) AddCards({"eth99"});
    }
    EXPECT_EQ(Log(), LogLines{});
}

// ---- cost

TEST_F(GetAllInterfaceInfoTest, ReadsEachTableOnceAndAsksEachDriver)
{
    AddCards({"eth0", "eth1", "eth2", "wlan0", "br0"});
    Put("/proc/net/wireless", "header\nheader\n wlan0: 1 0\n");
    Put(kModeFile, "eth7 = 1\n");
    EXPECT_EQ(List(), (Texts{"eth0", "eth1", "eth2", "wlan0", "br0"}));
    EXPECT_EQ(TraceOf({"open"}),
              (Texts{"open /proc/net/dev O_RDONLY", "open /proc/net/wireless O_RDONLY",
                     "open /mnt/mtd/Config/poeMode.conf O_WRONLY|O_APPEND",
                     "open /mnt/mtd/Config/poeMode.conf O_RDONLY"}));
    EXPECT_EQ(TraceOf({"pread /proc/net/wireless"}).size(), 2U);  // its text, and its end
    EXPECT_EQ(TraceOf({"ioctl"}),
              (Texts{"ioctl ETHTOOL_GDRVINFO eth0", "ioctl ETHTOOL_GDRVINFO eth1",
                     "ioctl ETHTOOL_GDRVINFO eth2", "ioctl ETHTOOL_GDRVINFO br0"}));
    EXPECT_EQ(OpenHandles(), (Texts{"socket AF_INET 2 0"}));
    EXPECT_EQ(HeldMutexes(), 0);
}

TEST_F(GetAllInterfaceInfoTest, EachRefusedQueryLeavesItsLine)
{
    AddCards({"eth0", "eth1"});
    kernel.At("eth0").driver = "";
    kernel.At("eth1").driver = "";
    EXPECT_EQ(List(), (Texts{"eth0", "eth1"}));
    EXPECT_EQ(Log(),
              (LogLines{Error("NetIOCtrl", "cmd 35142 error.[Operation not supported] eth0 "),
                        Error("NetIOCtrl", "cmd 35142 error.[Operation not supported] eth1 ")}));
}

TEST_F(GetAllInterfaceInfoTest, SeesTheSavedModesOfEachListing)
{
    AddCards({"eth0"});
    EXPECT_EQ(List(), (Texts{"eth0"}));
    Put(kModeFile, "eth0 = 2\n");
    EXPECT_EQ(List(), (Texts{"eth0", "eth0:poe"}));
}

TEST_F(GetAllInterfaceInfoTest, ACardAmongTheWirelessIsNotAskedForASwitch)
{
    AddCards({"eth5"});
    Put(kModeFile, "eth5 = 2\n");
    Put("/proc/net/wireless", " eth5: 1\n");
    EXPECT_EQ(List(), (Texts{"eth5"}));
    EXPECT_EQ(TraceOf({"ioctl", "open /mnt"}), Texts{});
}

TEST_F(GetAllInterfaceInfoTest, RemembersTheWirelessCardItFound)
{
    AddCards({"eth5"});
    Put("/proc/net/wireless", " eth5: 1\n");
    EXPECT_EQ(List(), (Texts{"eth5"}));
    ClearTrace();
    EXPECT_TRUE(NetCardIsWifi("eth5", nullptr));
    EXPECT_EQ(TraceOf({"open"}), Texts{});
}

TEST_F(GetAllInterfaceInfoTest, APartOfTheTableIsNoList)
{
    AddCards({"eth0", "eth1"});
    Fail("pread /proc/net/dev", EIO, 2);  // behind its text, where the end would be
    Names names;
    int count = kEntries;
    EXPECT_FALSE(GetAllInterfaceInfo(names.entries, &count));
    EXPECT_EQ(count, kEntries);
    EXPECT_EQ(Log(), (LogLines{Error("GetAllInterfaceInfo", "Read file /proc/net/dev failed!\n")}));
}

TEST_F(GetAllInterfaceInfoTest, AFullListStandsWhateverBecomesOfTheRestOfTheTable)
{
    AddCards({"eth0", "eth1"});
    Fail("pread /proc/net/dev", EIO, 2);
    Names names;
    int count = 2;
    EXPECT_TRUE(GetAllInterfaceInfo(names.entries, &count));
    EXPECT_EQ(count, 2);
    EXPECT_EQ(names.First(2), (Texts{"eth0", "eth1"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(GetAllInterfaceInfoTest, ListsCardsOrNothingWhateverFails)
{
    AddCards({"eth0", "wlan0", "eth1"});
    kernel.At("eth0").driver = "sim Switch drv";
    Put("/proc/net/wireless", " wlan0: 1\n");
    Put(kModeFile, "eth1 = 0\n");
    static bool done = false;
    static Texts listed;
    FailEachCall(
        [] {
            Names names;
            int count = kEntries;
            done = GetAllInterfaceInfo(names.entries, &count);
            listed = done ? names.First(count) : Texts{};
        },
        [](const std::string& failed) {
            EXPECT_EQ(done,
                      failed != "open /proc/net/dev O_RDONLY" && failed != "pread /proc/net/dev");
            if (failed.rfind("ioctl", 0) == 0 || failed.rfind("socket", 0) == 0) {
                EXPECT_EQ(LogOf("NetIOCtrl").size(), 1U);
            }
            if (done) {
                EXPECT_GE(listed.size(), 3U);
                EXPECT_EQ(listed.front(), "eth0");
                EXPECT_EQ(listed.back(), "eth1");
            }
        });
}

}  // namespace
