// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Version 2: the device's cards, their counters and their use.

#include "NetApi2_0.h"

#include "Base.h"
#include "CommonApi.h"

#include "fake/World.h"

#include <algorithm>
#include <cstring>

using namespace fake;

namespace {

using Names = std::vector<std::string>;

/// Names that the listing is to tell alone; none for the real listing.
Names toldNames;

/// The same for the records, with the capacity that was asked for.
std::vector<NetInterfaceInfo> toldCards;
int32_t askedFor = 0;

constexpr int32_t kReal = INT32_MAX;

/// What every card's kind is told to be, and the mode of "eth0" with the success of asking for it.
int32_t toldKind = kReal;
Names askedForKind;
int32_t toldMode = kReal;
bool modeIsTold = true;

}  // namespace

extern "C" {

bool __real_GetAllInterfaceInfo(char (*names)[16], int* maxNum);

bool __wrap_GetAllInterfaceInfo(char (*names)[16], int* maxNum)
{
    if (toldNames.empty()) return __real_GetAllInterfaceInfo(names, maxNum);
    EXPECT_EQ(*maxNum, 32);
    memset(names, 0, 32 * sizeof(*names));
    for (size_t i = 0; i < toldNames.size(); ++i) toldNames[i].copy(names[i], 15);
    *maxNum = static_cast<int>(toldNames.size());
    return true;
}

bool __real_NetGetAllInterface(NetInterfaceInfo* list, int32_t* num);

bool __wrap_NetGetAllInterface(NetInterfaceInfo* list, int32_t* num)
{
    askedFor = *num;
    if (toldCards.empty()) return __real_NetGetAllInterface(list, num);
    *num = std::min(*num, static_cast<int32_t>(toldCards.size()));
    std::copy_n(toldCards.begin(), *num, list);
    return true;
}

int32_t __real_isSwitchByName(const char* name);

int32_t __wrap_isSwitchByName(const char* name)
{
    askedForKind.emplace_back(name);
    return toldKind == kReal ? __real_isSwitchByName(name) : toldKind;
}

bool __real_NetGetEthWorkMode(const char* name, NetWorkMode* mode);

bool __wrap_NetGetEthWorkMode(const char* name, NetWorkMode* mode)
{
    if (toldMode == kReal) return __real_NetGetEthWorkMode(name, mode);
    EXPECT_STREQ(name, "eth0");
    *mode = static_cast<NetWorkMode>(toldMode);
    return modeIsTold;
}

}  // extern "C"

namespace {

constexpr char kSwitchDriver[] = "sim Switch drv";

/// A recorder with two cards, and no listing told.
class DeviceWorld : public World {
protected:
    void SetUp() override
    {
        World::SetUp();
        toldNames.clear();
        toldCards.clear();
        toldKind = kReal;
        askedForKind.clear();
        toldMode = kReal;
        modeIsTold = true;
        kernel.Add("lo");
        kernel.Add("eth0");
        kernel.Add("eth1");
    }

    static void LoseTheListing() { FailAll("open /proc/net/dev", ENOENT); }

    static LogLines OfTheApi()
    {
        LogLines lines;
        for (const LogLine& line : Log()) {
            if (line.operation != "GetAllInterfaceInfo") lines.push_back(line);
        }
        return lines;
    }
};

// ---- NetGetCaps

class NetGetCapsTest : public DeviceWorld {
protected:
    static int32_t Cards()
    {
        NetCaps caps{};
        caps.cardNum = -7;
        EXPECT_EQ(NetGetCaps(&caps), 0);
        return caps.cardNum;
    }
};

TEST_F(NetGetCapsTest, CountsTheCards)
{
    EXPECT_EQ(Cards(), 2);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NetGetCapsTest, AliasesAndOtherInterfacesAreNoCards)
{
    toldNames = {"eth0", "eth1", "eth0:1", "lo", "bond0", "br0", "eth1:poe"};
    EXPECT_EQ(Cards(), 2);
    EXPECT_EQ(askedForKind, (Names{"eth0", "eth1"}));  // the drivers of the others are left alone
}

TEST_F(NetGetCapsTest, EthMayStandAnywhereInTheName)
{
    toldNames = {"veth3", "xeth", "et", "Eth0"};
    EXPECT_EQ(Cards(), 2);
}

TEST_F(NetGetCapsTest, TheSwitchIsNoCard)
{
    kernel.At("eth1").driver = kSwitchDriver;
    EXPECT_EQ(Cards(), 1);
}

TEST_F(NetGetCapsTest, OnlyASwitchInterfaceIsNoCard)
{
    for (const int32_t kind : {-1, 0, 1, 2}) {
        toldKind = kind;
        EXPECT_EQ(Cards(), kind == 1 ? 0 : 2) << kind;
    }
}

TEST_F(NetGetCapsTest, ADeviceWithoutCardsCountsNone)
{
    toldNames = {"lo", "wlan0"};
    EXPECT_EQ(Cards(), 0);
}

TEST_F(NetGetCapsTest, TheReserveIsLeftAlone)
{
    NetCaps caps;
    memset(&caps, '#', sizeof(caps));
    NetCaps expected = caps;
    expected.cardNum = 2;
    EXPECT_EQ(NetGetCaps(&caps), 0);
    EXPECT_EQ(memcmp(&caps, &expected, sizeof(caps)), 0);
}

TEST_F(NetGetCapsTest, AFailedListingLeavesTheCountAlone)
{
    LoseTheListing();
    NetCaps caps{};
    caps.cardNum = -7;
    EXPECT_EQ(NetGetCaps(&caps), -1);
    EXPECT_EQ(caps.cardNum, -7);
    EXPECT_EQ(OfTheApi(), (LogLines{Error("NetGetCaps", "GetAllInterfaceInfo failed")}));
}

TEST_F(NetGetCapsTest, NullIsRefusedInSilence)
{
    EXPECT_EQ(NetGetCaps(nullptr), -1);
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(TraceOf({"open"}), Names{});
}

TEST_F(NetGetCapsTest, OnlyTheListingDecides)
{
    static int32_t result;
    static int32_t cards;
    FailEachCall(
        [] {
            NetCaps caps{};
            caps.cardNum = -7;
            result = NetGetCaps(&caps);
            cards = caps.cardNum;
        },
        [](const std::string& failed) {
            const bool listed =
                failed != "open /proc/net/dev O_RDONLY" && failed != "pread /proc/net/dev";
            EXPECT_EQ(result, listed ? 0 : -1) << failed;
            EXPECT_EQ(cards, listed ? 2 : -7) << failed;
        });
}

// ---- NetGetEthName

class NetGetEthNameTest : public DeviceWorld {
protected:
    void SetUp() override
    {
        DeviceWorld::SetUp();
        memset(names, '#', sizeof(names));
    }

    /// What stands behind the text and must not be written.
    bool UntouchedFrom(size_t place) const
    {
        return std::all_of(names + place, names + sizeof(names), [](char c) { return c == '#'; });
    }

    char names[64];
    int32_t count = -7;
};

TEST_F(NetGetEthNameTest, JoinsTheNames)
{
    toldNames = {"eth0", "bond0", "eth1:poe"};
    EXPECT_EQ(NetGetEthName(names, sizeof(names), &count), 0);
    EXPECT_STREQ(names, "eth0::bond0::eth1:poe::");
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NetGetEthNameTest, WithoutANameNothingIsWritten)
{
    kernel.cards.clear();
    EXPECT_EQ(NetGetEthName(names, sizeof(names), &count), 0);
    EXPECT_TRUE(UntouchedFrom(0));
}

TEST_F(NetGetEthNameTest, TheCountIsNotWritten)
{
    EXPECT_EQ(NetGetEthName(names, sizeof(names), &count), 0);
    EXPECT_EQ(count, -7);
}

TEST_F(NetGetEthNameTest, OneByteMoreThanTheTextIsNeeded)
{
    toldNames = {"eth0", "eth1"};  // "eth0::eth1::" has 12 characters
    EXPECT_EQ(NetGetEthName(names, 13, &count), 0);
    EXPECT_STREQ(names, "eth0::eth1::");
    EXPECT_TRUE(UntouchedFrom(13));
}

TEST_F(NetGetEthNameTest, ATextThatFitsToItsLastCharacterIsTooLong)
{
    toldNames = {"eth0", "eth1"};
    EXPECT_EQ(NetGetEthName(names, 12, &count), -1);
    EXPECT_STREQ(names, "eth0::eth1:");  // what fitted
    EXPECT_TRUE(UntouchedFrom(12));
    EXPECT_EQ(count, -7);
    EXPECT_EQ(Log(), (LogLines{Error("NetGetEthName", "pEthName is too short.")}));
}

TEST_F(NetGetEthNameTest, StopsAtTheFirstNameThatDoesNotFit)
{
    toldNames = {"eth0", "eth1", "eth2"};
    EXPECT_EQ(NetGetEthName(names, 6, &count), -1);
    EXPECT_STREQ(names, "eth0:");
    EXPECT_TRUE(UntouchedFrom(6));
    EXPECT_EQ(Log(), (LogLines{Error("NetGetEthName", "pEthName is too short.")}));
}

TEST_F(NetGetEthNameTest, WithoutRoomNothingIsWritten)
{
    for (const int32_t length : {0, -1, INT32_MIN}) {
        ClearLog();
        EXPECT_EQ(NetGetEthName(names, length, &count), -1);
        EXPECT_TRUE(UntouchedFrom(0));
        EXPECT_EQ(Log(), (LogLines{Error("NetGetEthName", "pEthName is too short.")}));
    }
}

TEST_F(NetGetEthNameTest, AFailedListingHasAMessageOfItsOwn)
{
    LoseTheListing();
    EXPECT_EQ(NetGetEthName(names, sizeof(names), &count), -1);
    EXPECT_TRUE(UntouchedFrom(0));
    EXPECT_EQ(OfTheApi(), (LogLines{Error("NetGetEthName", "GetAllInterfaceInfo failed.")}));
}

TEST_F(NetGetEthNameTest, NullIsRefusedInSilence)
{
    EXPECT_EQ(NetGetEthName(nullptr, 64, &count), -1);
    EXPECT_EQ(NetGetEthName(names, 64, nullptr), -1);
    EXPECT_EQ(Log(), LogLines{});
}

// ---- NetGetDeviceName

/// Records that the tests hand over, each filled with '#'.
struct Devices {
    Devices() { memset(records, '#', sizeof(records)); }

    Names First(int32_t count) const
    {
        Names names;
        for (int32_t i = 0; i < count; ++i) names.emplace_back(records[i].name);
        return names;
    }

    /// True when each byte from the record on is still '#', or is `filler`.
    bool AllFrom(int32_t place, char filler = '#') const
    {
        const char* bytes = reinterpret_cast<const char*>(records);
        return std::all_of(bytes + static_cast<size_t>(place) * sizeof(NetDevice),
                           bytes + sizeof(records), [filler](char c) { return c == filler; });
    }

    NetDevice records[40];
};

class NetGetDeviceNameTest : public DeviceWorld {
protected:
    Devices devices;
};

TEST_F(NetGetDeviceNameTest, ListsTheNamesInTheKernelsOrder)
{
    kernel.Add("bond0");
    EXPECT_EQ(NetGetDeviceName(devices.records, 32), 3);
    EXPECT_EQ(devices.First(3), (Names{"eth0", "eth1", "bond0"}));
    EXPECT_TRUE(devices.AllFrom(3));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NetGetDeviceNameTest, OnlyTheNameIsWritten)
{
    toldNames = {"abcdefghijklmno"};
    EXPECT_EQ(NetGetDeviceName(devices.records, 1), 1);
    NetDevice expected;
    memset(&expected, '#', sizeof(expected));
    memcpy(expected.name, "abcdefghijklmno", 16);
    EXPECT_EQ(memcmp(&devices.records[0], &expected, sizeof(expected)), 0);
}

TEST_F(NetGetDeviceNameTest, TheSixteenthCardIsHidden)
{
    toldNames = {"eth0", "eth16", "eth1", "eth160", "xeth16"};
    EXPECT_EQ(NetGetDeviceName(devices.records, 32), 4);
    EXPECT_EQ(devices.First(4), (Names{"eth0", "eth1", "eth160", "xeth16"}));
}

TEST_F(NetGetDeviceNameTest, AHiddenNameTakesNoPlace)
{
    toldNames = {"eth16", "eth0", "eth1"};
    EXPECT_EQ(NetGetDeviceName(devices.records, 2), 2);
    EXPECT_EQ(devices.First(2), (Names{"eth0", "eth1"}));
    EXPECT_TRUE(devices.AllFrom(2));
}

TEST_F(NetGetDeviceNameTest, StopsWhenTheRecordsAreFull)
{
    EXPECT_EQ(NetGetDeviceName(devices.records, 1), 1);
    EXPECT_EQ(devices.First(1), Names{"eth0"});
    EXPECT_TRUE(devices.AllFrom(1));
}

TEST_F(NetGetDeviceNameTest, MoreThan32AreNotServed)
{
    toldNames = {"eth0", "eth1", "eth2"};
    EXPECT_EQ(NetGetDeviceName(devices.records, 40), 3);
    EXPECT_EQ(Log(), (LogLines{Warn("NetGetDeviceName", "can not support so many device 40.")}));
    ClearLog();
    EXPECT_EQ(NetGetDeviceName(devices.records, 32), 3);
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(NetGetDeviceName(devices.records, 33), 3);
    EXPECT_EQ(Log(), (LogLines{Warn("NetGetDeviceName", "can not support so many device 33.")}));
}

TEST_F(NetGetDeviceNameTest, AllOf32AreListed)
{
    for (int i = 0; i < 32; ++i) toldNames.push_back("lan" + std::to_string(i));
    EXPECT_EQ(NetGetDeviceName(devices.records, 40), 32);
    EXPECT_EQ(devices.First(32), toldNames);
    EXPECT_TRUE(devices.AllFrom(32));
}

TEST_F(NetGetDeviceNameTest, NoRoomTakesNone)
{
    EXPECT_EQ(NetGetDeviceName(devices.records, 0), 0);
    EXPECT_EQ(NetGetDeviceName(devices.records, -1), 0);
    EXPECT_TRUE(devices.AllFrom(0));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NetGetDeviceNameTest, AFailedListingIsAnError)
{
    LoseTheListing();
    EXPECT_EQ(NetGetDeviceName(devices.records, 32), -1);
    EXPECT_TRUE(devices.AllFrom(0));
    EXPECT_EQ(OfTheApi(), (LogLines{Error("NetGetDeviceName", "GetAllInterfaceInfo failed")}));
    ClearLog();
    EXPECT_EQ(NetGetDeviceName(devices.records, 40), -1);
    EXPECT_EQ(OfTheApi(), (LogLines{Warn("NetGetDeviceName", "can not support so many device 40."),
                                    Error("NetGetDeviceName", "GetAllInterfaceInfo failed")}));
}

TEST_F(NetGetDeviceNameTest, NullIsRefusedInSilence)
{
    EXPECT_EQ(NetGetDeviceName(nullptr, 40), -1);
    EXPECT_EQ(Log(), LogLines{});
}

// ---- NetGetAllEthDevice, NetGetEthDevice

struct Listing {
    std::string name;
    int32_t (*list)(NetDevice*, int32_t);
    bool hides;  // "eth16"
};

class NetGetEthDeviceTest : public DeviceWorld, public testing::WithParamInterface<Listing> {
protected:
    static int32_t List(NetDevice* records, int32_t count)
    {
        return GetParam().list(records, count);
    }

    static NetInterfaceInfo Card(const std::string& name)
    {
        NetInterfaceInfo card{};
        name.copy(card.name, 31);
        return card;
    }

    Devices devices;
};

TEST_P(NetGetEthDeviceTest, ConvertsEachField)
{
    NetInterfaceInfo card = Card("a-name-of-more-than-15");
    card.valid = 1;
    card.media = NetInterfaceFiber;
    card.type = 3;
    card.usage = 0x1FE;
    card.speed = 1000;
    card.working = 7;
    card.reserved[0] = 10000;
    card.reserved[1] = 99;
    toldCards = {card};
    EXPECT_EQ(List(devices.records, 1), 1);

    NetDevice expected{};
    expected.valid = 1;
    expected.trans_media = 2;
    expected.usage = 0xFE;  // cut to a byte
    expected.speed = 1000;
    memcpy(expected.name, "a-name-of-more-", 16);
    expected.max_speed = 10000;
    EXPECT_EQ(memcmp(&devices.records[0], &expected, sizeof(expected)), 0);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_P(NetGetEthDeviceTest, NegativeValuesKeepTheirBits)
{
    NetInterfaceInfo card = Card("eth0");
    card.valid = -1;
    card.speed = -1;
    card.usage = -1;
    card.reserved[0] = -1;
    toldCards = {card};
    EXPECT_EQ(List(devices.records, 1), 1);
    EXPECT_EQ(static_cast<signed char>(devices.records[0].valid), -1);
    EXPECT_EQ(devices.records[0].speed, -1);
    EXPECT_EQ(devices.records[0].usage, 255);
    EXPECT_EQ(devices.records[0].max_speed, UINT32_MAX);
}

TEST_P(NetGetEthDeviceTest, OneListingHidesTheSixteenthCard)
{
    toldCards = {Card("eth0"), Card("eth16"), Card("eth160"), Card("eth1")};
    const Names names = GetParam().hides ? Names{"eth0", "eth160", "eth1"}
                                         : Names{"eth0", "eth16", "eth160", "eth1"};
    EXPECT_EQ(List(devices.records, 32), static_cast<int32_t>(names.size()));
    EXPECT_EQ(devices.First(static_cast<int32_t>(names.size())), names);
}

TEST_P(NetGetEthDeviceTest, AHiddenCardCountsForTheCapacity)
{
    toldCards = {Card("eth0"), Card("eth16"), Card("eth1")};
    EXPECT_EQ(List(devices.records, 2), GetParam().hides ? 1 : 2);
    EXPECT_EQ(askedFor, 2);
}

TEST_P(NetGetEthDeviceTest, AllRecordsAreZeroedFirst)
{
    toldCards = {Card("eth0")};
    EXPECT_EQ(List(devices.records, 3), 1);
    const NetDevice zero{};
    EXPECT_EQ(memcmp(&devices.records[1], &zero, sizeof(zero)), 0);
    EXPECT_EQ(memcmp(&devices.records[2], &zero, sizeof(zero)), 0);
    EXPECT_TRUE(devices.AllFrom(3));
}

TEST_P(NetGetEthDeviceTest, MoreThan32AreZeroedAndNotServed)
{
    toldCards = {Card("eth0")};
    EXPECT_EQ(List(devices.records, 40), 1);
    EXPECT_EQ(askedFor, 32);
    EXPECT_TRUE(devices.AllFrom(1, '\0'));
    EXPECT_EQ(Log(), (LogLines{Warn(GetParam().name, "can not support so many device")}));
    ClearLog();
    EXPECT_EQ(List(devices.records, 32), 1);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_P(NetGetEthDeviceTest, NoRoomListsNone)
{
    EXPECT_EQ(List(devices.records, 0), 0);
    EXPECT_EQ(List(devices.records, -1), 0);
    EXPECT_EQ(List(devices.records, INT32_MIN), 0);
    EXPECT_TRUE(devices.AllFrom(0));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_P(NetGetEthDeviceTest, AFailedListingGivesNoneAndZeroedRecords)
{
    LoseTheListing();
    EXPECT_EQ(List(devices.records, 40), 0);
    EXPECT_TRUE(devices.AllFrom(0, '\0'));
    EXPECT_EQ(OfTheApi(), (LogLines{Warn(GetParam().name, "can not support so many device"),
                                    Error(GetParam().name, "NetGetAllInterface failed")}));
}

TEST_P(NetGetEthDeviceTest, NullGivesNoneInSilence)
{
    EXPECT_EQ(List(nullptr, 40), 0);
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(TraceOf({"open"}), Names{});
}

TEST_P(NetGetEthDeviceTest, TellsTheCardsOfTheDevice)
{
    kernel.Add("eth16");
    ethtool_cmd settings{};
    settings.port = PORT_FIBRE;
    settings.supported = SUPPORTED_10000baseT_Full;
    settings.speed = 1000;
    kernel.At("eth1").settings = settings;
    EXPECT_EQ(List(devices.records, 32), GetParam().hides ? 2 : 3);
    const NetDevice& card = devices.records[1];
    EXPECT_STREQ(card.name, "eth1");
    EXPECT_EQ(card.valid, 1);
    EXPECT_EQ(card.trans_media, 2);
    EXPECT_EQ(card.speed, 1000);
    EXPECT_EQ(card.max_speed, 10000U);
}

INSTANTIATE_TEST_SUITE_P(Each, NetGetEthDeviceTest,
                         testing::Values(Listing{"NetGetAllEthDevice", NetGetAllEthDevice, false},
                                         Listing{"NetGetEthDevice", NetGetEthDevice, true}),
                         [](const auto& row) { return row.param.name; });

// ---- NetGetStats

class NetGetStatsTest : public DeviceWorld {
protected:
    NetStats stat = {7, 8};
};

TEST_F(NetGetStatsTest, TellsTheBytesOfBothDirections)
{
    kernel.At("eth1").counters = "9876543210 2 3 4 5 6 7 8 1234567890123 10 11 12 13 14 15 16";
    EXPECT_EQ(NetGetStats("eth1", &stat), 0);
    EXPECT_EQ(stat.rx_bytes, 9876543210U);
    EXPECT_EQ(stat.tx_bytes, 1234567890123U);
    EXPECT_EQ(LogOf("NetGetStats"), LogLines{});
}

TEST_F(NetGetStatsTest, AnUnknownCardLeavesTheRecordAlone)
{
    EXPECT_EQ(NetGetStats("eth7", &stat), -1);
    EXPECT_EQ(stat.rx_bytes, 7U);
    EXPECT_EQ(stat.tx_bytes, 8U);
    EXPECT_EQ(Log().back(), Error("NetGetStats", "failed"));
}

TEST_F(NetGetStatsTest, NullIsRefusedInSilence)
{
    EXPECT_EQ(NetGetStats(nullptr, &stat), -1);
    EXPECT_EQ(NetGetStats("eth0", nullptr), -1);
    EXPECT_EQ(Log(), LogLines{});
}

// ---- NetWorkGetMode

class NetWorkGetModeTest : public DeviceWorld {
protected:
    static void Save(int mode)
    {
        Put(CardFile("eth0"), Settings({"WORKMODE = " + std::to_string(mode)}));
    }
};

TEST_F(NetWorkGetModeTest, TellsWhatTheFirstCardIsFor)
{
    Put(CardFile("eth1"), Settings({"WORKMODE = 1"}));  // another card's plays no part
    const std::pair<int, NetWorkMode_E> modes[] = {{netModeMultiple, En_Net_Multiple},
                                                   {netModeBond, En_Net_Bond},
                                                   {netModeBridge, En_Net_Bridge}};
    for (const auto& [saved, mode] : modes) {
        Save(saved);
        EXPECT_EQ(NetWorkGetMode(), mode);
    }
    EXPECT_EQ(LogOf("NetWorkGetMode"), LogLines{});
}

TEST_F(NetWorkGetModeTest, ASwitchIsAnError)
{
    Put("/mnt/mtd/Config/poeMode.conf", "eth0 = 1\n");
    EXPECT_EQ(NetWorkGetMode(), En_Net_Invalid);
    EXPECT_EQ(Log(), (LogLines{Error("NetWorkGetMode", "invalid net work mode 2")}));
}

TEST_F(NetWorkGetModeTest, OnlyThreeModesHaveANameHere)
{
    for (const int mode : {-1, 2, 4, 5, 6, 7}) {
        ClearLog();
        toldMode = mode;
        EXPECT_EQ(NetWorkGetMode(), En_Net_Invalid);
        EXPECT_EQ(Log(), (LogLines{Error("NetWorkGetMode",
                                         "invalid net work mode " + std::to_string(mode))}));
    }
}

TEST_F(NetWorkGetModeTest, AModeThatIsNotToldIsAFailure)
{
    toldMode = netModeBond;
    modeIsTold = false;
    EXPECT_EQ(NetWorkGetMode(), En_Net_Invalid);
    EXPECT_EQ(static_cast<int32_t>(En_Net_Invalid), -1);
    EXPECT_EQ(Log(), (LogLines{Error("NetWorkGetMode", "failed.")}));
}

}  // namespace
