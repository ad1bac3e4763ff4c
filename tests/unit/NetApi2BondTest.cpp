// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Version 2: bonds under their old numbers.

#include "NetApi2_0.h"

#include "CommonApi.h"
#include "InterfaceWorld.h"

#include <cstring>
#include <optional>

using namespace fake;

namespace {

/// What the operations below were asked, and what they tell instead of the truth.
Lines asked;
std::optional<NetWorkMode> toldUse;  // of a card
bool useIsTold = true;
std::optional<NICBondMode> toldMode;  // of a bond
std::string toldMaster;               // the bond that has the card; empty for the truth
bool bondIsReal = true;
bool bondAnswer = true;
LogLines saidBefore;                // `Bond` was called
const char* defaultCard = nullptr;  // the caller's place for it, shown when the mode is asked for

}  // namespace

extern "C" {

bool __real_Bond(const char* bondName, const char** ethList, const int ethNum, NICBondMode mode);

bool __wrap_Bond(const char* bondName, const char** ethList, const int ethNum, NICBondMode mode)
{
    std::string call = bondName != nullptr ? bondName : "NULL";
    for (int i = 0; i < ethNum; ++i) call += std::string(" ") + ethList[i];
    asked.push_back(call + " mode " + std::to_string(mode));
    saidBefore = Log();
    return bondIsReal ? __real_Bond(bondName, ethList, ethNum, mode) : bondAnswer;
}

bool __real_GetBondMode(const char* bondName, NICBondMode* mode);

bool __wrap_GetBondMode(const char* bondName, NICBondMode* mode)
{
    asked.push_back(std::string("mode of ") + bondName);
    if (defaultCard != nullptr) asked.back() += std::string(" with ") + defaultCard;
    if (!toldMode.has_value()) return __real_GetBondMode(bondName, mode);
    *mode = *toldMode;
    return true;
}

bool __real_NetGetEthWorkMode(const char* name, NetWorkMode* mode);

bool __wrap_NetGetEthWorkMode(const char* name, NetWorkMode* mode)
{
    if (!toldUse.has_value()) return __real_NetGetEthWorkMode(name, mode);
    *mode = *toldUse;
    return useIsTold;
}

bool __real_BondHasMember(const char* bondName, const char* ethName);

bool __wrap_BondHasMember(const char* bondName, const char* ethName)
{
    asked.push_back(std::string(bondName) + " has " + ethName);
    return toldMaster.empty() ? __real_BondHasMember(bondName, ethName) : toldMaster == bondName;
}

}  // extern "C"

namespace {

const std::string kSlaves = "/sys/class/net/bond0/bonding/slaves";

std::string Attribute(const std::string& bond, const std::string& name)
{
    return "/sys/class/net/" + bond + "/bonding/" + name;
}

/// A device with a bond that has no members yet.
class BondWorld : public InterfaceWorld {
protected:
    void SetUp() override
    {
        InterfaceWorld::SetUp();
        asked.clear();
        toldUse.reset();
        useIsTold = true;
        toldMode.reset();
        toldMaster.clear();
        bondIsReal = true;
        bondAnswer = true;
        defaultCard = nullptr;
        kernel.Add("bond0");
        for (const char* name : {"mode", "miimon", "primary", "xmit_hash_policy"}) {
            Put(Attribute("bond0", name), "");
        }
        Put(kSlaves, "");
        Put(kFile0, Settings({"GATEWAYIP = 10.0.0.1", "PRIO = 1"}));
        Put(kFile1, Settings({"GATEWAYIP = 10.1.0.1", "PRIO = 0"}));
        Put(CardFile("bond0"), Settings({"HOSTIP = 10.2.0.2", "SUBMASK = 255.255.0.0"}));
        OnCommand("ifenslave bond0", [](const std::string&) { Put(kSlaves, "eth1 eth0\n"); });
        OnCommand("ifenslave -d bond0", [](const std::string&) { Put(kSlaves, ""); });
        Begin();
    }

    Members cards{{"eth1", "eth0"}};
};

struct Mode {
    int32_t number;
    NICBondMode driver;
    const char* text;  // as the driver is told
};

const Mode kModes[] = {
    {1, nicBondActiveBackup, "active-backup"},
    {2, nicBondBalanceRR, "balance-rr"},
    {3, nicBondBalanceALB, "balance-alb"},
    {4, nicBondBalanceTLB, "balance-tlb"},
    {5, nicBond802_3ad, "802.3ad"},
    {6, nicBondBalanceXOR, "balance-xor"},
    {7, nicBondBroadcast, "broadcast"},
};

// ---- NetWorkBondEx, NetWorkBond

class NetWorkBondExTest : public BondWorld {};

TEST_F(NetWorkBondExTest, EachNumberHasItsModeOfTheDriver)
{
    bondIsReal = false;
    for (const Mode& mode : kModes) {
        asked.clear();
        ClearLog();
        EXPECT_EQ(NetWorkBondEx("bond1", cards.Const(), 2, mode.number), 0);
        const std::string driver = std::to_string(mode.driver);
        EXPECT_EQ(asked, Lines{"bond1 eth1 eth0 mode " + driver});
        EXPECT_EQ(Log(),
                  (LogLines{Info("NetWorkBondEx", "mode 2.0 " + std::to_string(mode.number) +
                                                      " is convert to " + driver + " mode3.0")}));
        EXPECT_EQ(saidBefore, Log());
    }
}

TEST_F(NetWorkBondExTest, OtherNumbersAreRefused)
{
    for (const int32_t number : {0, 8, -1, 9, INT32_MIN, INT32_MAX}) {
        ClearLog();
        EXPECT_EQ(NetWorkBondEx("bond0", cards.Const(), 2, number), -1);
        EXPECT_EQ(Log(), (LogLines{Error("NetWorkBondEx", "this mode is not support.[" +
                                                              std::to_string(number) + "]")}));
    }
    EXPECT_EQ(asked, Lines{});
}

TEST_F(NetWorkBondExTest, AFailureHasItsMessageBehindTheConversion)
{
    bondIsReal = false;
    bondAnswer = false;
    EXPECT_EQ(NetWorkBondEx("bond1", cards.Const(), 2, 5), -1);
    EXPECT_EQ(Log(), (LogLines{Info("NetWorkBondEx", "mode 2.0 5 is convert to 4 mode3.0"),
                               Error("NetWorkBondEx", "bond error.")}));
}

TEST_F(NetWorkBondExTest, NullIsLeftToTheOperationBelow)
{
    EXPECT_EQ(NetWorkBondEx(nullptr, nullptr, 0, 1), -1);
    EXPECT_EQ(asked, Lines{"NULL mode 1"});
    EXPECT_EQ(Log(), (LogLines{Info("NetWorkBondEx", "mode 2.0 1 is convert to 1 mode3.0"),
                               Error("NetWorkBondEx", "bond error.")}));
}

class NetWorkBondTest : public BondWorld {};

TEST_F(NetWorkBondTest, BuildsTheFirstBond)
{
    bondIsReal = false;
    EXPECT_EQ(NetWorkBond(cards.Const(), 2, 7), 0);
    EXPECT_EQ(asked, Lines{"bond0 eth1 eth0 mode 3"});
    bondAnswer = false;
    EXPECT_EQ(NetWorkBond(cards.Const(), 1, 1), -1);
    EXPECT_EQ(Log().back(), Error("NetWorkBondEx", "bond error."));
    EXPECT_EQ(NetWorkBond(cards.Const(), 1, 8), -1);
    EXPECT_EQ(Log().back(), Error("NetWorkBondEx", "this mode is not support.[8]"));
}

TEST_F(NetWorkBondTest, ABondReadsBackUnderTheNumberItWasBuiltWith)
{
    for (const Mode& mode : kModes) {
        Put(kSlaves, "");
        EXPECT_EQ(NetWorkBond(cards.Const(), 2, mode.number), 0);
        EXPECT_STREQ(Get(Attribute("bond0", "mode")).c_str(), mode.text);
        int32_t number = -7;
        char card[16] = "";
        EXPECT_EQ(NetWorkGetBondMode(&number, card), 0);
        EXPECT_EQ(number, mode.number);
        EXPECT_EQ(NetWorkUnBond(), 0);
    }
}

// ---- NetWorkGetBondModeEx, NetWorkGetBondMode

class NetWorkGetBondModeExTest : public BondWorld {
protected:
    int32_t number = -7;
    char card[16] = "#";
};

TEST_F(NetWorkGetBondModeExTest, EachModeOfTheDriverHasItsNumber)
{
    for (const Mode& mode : kModes) {
        toldMode = mode.driver;
        EXPECT_EQ(NetWorkGetBondModeEx("bond3", &number, card), 0);
        EXPECT_EQ(number, mode.number);
        EXPECT_EQ(asked.back(), "mode of bond3");
    }
    EXPECT_EQ(LogOf("NetWorkGetBondModeEx"), LogLines{});
}

TEST_F(NetWorkGetBondModeExTest, OtherModesAreRefused)
{
    for (const int mode : {-1, 7, 255}) {
        toldMode = static_cast<NICBondMode>(mode);
        EXPECT_EQ(NetWorkGetBondModeEx("bond0", &number, card), -1);
        EXPECT_EQ(LogOf("NetWorkGetBondModeEx").back(),
                  Error("NetWorkGetBondModeEx",
                        "this mode is not support.[" + std::to_string(mode) + "]"));
    }
    EXPECT_EQ(number, -7);
    EXPECT_EQ(LogOf("NetWorkGetBondModeEx").size(), 3U);
}

TEST_F(NetWorkGetBondModeExTest, TellsTheDefaultCardByTheWay)
{
    toldMode = nicBondBalanceRR;
    kernel.routes = {{"0.0.0.0", "10.1.0.1", "0.0.0.0", "eth1"}};
    EXPECT_EQ(NetWorkGetBondModeEx("bond0", &number, card), 0);
    EXPECT_STREQ(card, "eth1");
}

TEST_F(NetWorkGetBondModeExTest, TheDefaultCardIsToldFirstAndWhateverTheModeIs)
{
    const std::string name = "eth-long-name-5";  // as long as a name can be
    kernel.Add(name);
    kernel.routes = {{"0.0.0.0", "10.1.0.1", "0.0.0.0", name}};
    toldMode = static_cast<NICBondMode>(7);
    char place[20] = "###################";
    defaultCard = place;
    EXPECT_EQ(NetWorkGetBondModeEx("bond0", &number, place), -1);
    EXPECT_EQ(asked, Lines{"mode of bond0 with " + name});
    EXPECT_EQ(std::string(place + 16, 3), "###");
}

TEST_F(NetWorkGetBondModeExTest, ABondThatDoesNotRunHasModeZero)
{
    kernel.routes = {{"0.0.0.0", "10.1.0.1", "0.0.0.0", "eth1"}};
    EXPECT_EQ(NetWorkGetBondModeEx("bond0", &number, card), 0);
    EXPECT_EQ(number, 0);
    EXPECT_STREQ(card, "eth1");
    EXPECT_EQ(LogOf("NetWorkGetBondModeEx"), LogLines{});
}

TEST_F(NetWorkGetBondModeExTest, WithoutADefaultCardTheModeIsToldAllTheSame)
{
    toldMode = nicBond802_3ad;
    Remove(kFile0);
    Remove(kFile1);
    EXPECT_EQ(NetWorkGetBondModeEx("bond0", &number, card), 0);
    EXPECT_EQ(number, 5);
    EXPECT_EQ(LogOf("NetWorkGetBondModeEx"), LogLines{});
}

TEST_F(NetWorkGetBondModeExTest, NullIsRefusedInSilence)
{
    EXPECT_EQ(NetWorkGetBondModeEx(nullptr, &number, card), -1);
    EXPECT_EQ(NetWorkGetBondModeEx("bond0", nullptr, card), -1);
    EXPECT_EQ(NetWorkGetBondModeEx("bond0", &number, nullptr), -1);
    EXPECT_EQ(NetWorkGetBondMode(nullptr, card), -1);
    EXPECT_EQ(NetWorkGetBondMode(&number, nullptr), -1);
    EXPECT_EQ(number, -7);
    EXPECT_STREQ(card, "#");
    EXPECT_EQ(asked, Lines{});
    EXPECT_EQ(Log(), LogLines{});
}

class NetWorkGetBondModeTest : public BondWorld {};

TEST_F(NetWorkGetBondModeTest, AsksTheFirstBond)
{
    toldMode = nicBondBroadcast;
    int32_t number = -7;
    char card[16] = "#";
    EXPECT_EQ(NetWorkGetBondMode(&number, card), 0);
    EXPECT_EQ(number, 7);
    EXPECT_EQ(asked, Lines{"mode of bond0"});
}

// ---- NetWorkGetActiveSlaveEx, NetWorkGetActiveSlave

class NetWorkGetActiveSlaveExTest : public BondWorld {};

TEST_F(NetWorkGetActiveSlaveExTest, GivesTheBufferBack)
{
    Put(Attribute("bond1", "active_slave"), "eth1");
    char name[16] = "";
    EXPECT_EQ(NetWorkGetActiveSlaveEx("bond1", name, sizeof(name)), name);
    EXPECT_STREQ(name, "eth1");
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NetWorkGetActiveSlaveExTest, TheBuffersLengthCounts)
{
    Put(Attribute("bond1", "active_slave"), "eth1");
    char name[] = "##########";
    EXPECT_EQ(NetWorkGetActiveSlaveEx("bond1", name, 5), name);
    EXPECT_STREQ(name, "eth");
    EXPECT_STREQ(name + 5, "#####");
}

TEST_F(NetWorkGetActiveSlaveExTest, AFailureGivesNull)
{
    char name[16] = "#";
    EXPECT_EQ(NetWorkGetActiveSlaveEx("bond7", name, sizeof(name)), nullptr);
    EXPECT_STREQ(name, "#");
    EXPECT_EQ(Log().back(), Error("NetWorkGetActiveSlaveEx", "GetBondActiveSlave failed"));
    EXPECT_EQ(LogOf("NetWorkGetActiveSlaveEx").size(), 1U);
}

TEST_F(NetWorkGetActiveSlaveExTest, NullIsAFailureWithItsMessage)
{
    char name[16] = "#";
    EXPECT_EQ(NetWorkGetActiveSlaveEx(nullptr, name, sizeof(name)), nullptr);
    EXPECT_EQ(NetWorkGetActiveSlaveEx("bond0", nullptr, 16), nullptr);
    EXPECT_EQ(NetWorkGetActiveSlaveEx("bond0", name, 0), nullptr);
    const LogLine message = Error("NetWorkGetActiveSlaveEx", "GetBondActiveSlave failed");
    EXPECT_EQ(Log(), (LogLines{message, message, message}));
    EXPECT_STREQ(name, "#");
}

class NetWorkGetActiveSlaveTest : public BondWorld {};

TEST_F(NetWorkGetActiveSlaveTest, AFailureLeavesTheTextThatWasGivenBefore)
{
    Put(Attribute("bond0", "active_slave"), "eth1");
    const char* name = NetWorkGetActiveSlave();
    ASSERT_NE(name, nullptr);
    Put(Attribute("bond0", "active_slave"), "");
    EXPECT_EQ(NetWorkGetActiveSlave(), nullptr);
    EXPECT_STREQ(name, "eth1");
}

TEST_F(NetWorkGetActiveSlaveTest, AllCallersShareOneBuffer)
{
    Put(Attribute("bond0", "active_slave"), "eth1");
    const char* const first = NetWorkGetActiveSlave();
    ASSERT_NE(first, nullptr);
    EXPECT_STREQ(first, "eth1");
    Put(Attribute("bond0", "active_slave"), "eth0-with-a-long-name");
    EXPECT_EQ(NetWorkGetActiveSlave(), first);
    EXPECT_STREQ(first, "eth0-with-a-lo");  // 16 bytes hold 14 characters of it
}

TEST_F(NetWorkGetActiveSlaveTest, WithoutAnActiveMemberThereIsNone)
{
    EXPECT_EQ(NetWorkGetActiveSlave(), nullptr);
    EXPECT_EQ(Log().back(), Error("NetWorkGetActiveSlaveEx", "GetBondActiveSlave failed"));
}

// ---- NetIsBondingSlave

class NetIsBondingSlaveTest : public BondWorld {
protected:
    void SetUp() override
    {
        BondWorld::SetUp();
        memset(master, '#', sizeof(master));
        toldUse = netModeBond;
    }

    bool Untouched() const { return std::string(master, sizeof(master)) == std::string(16, '#'); }

    char master[16];
};

const Lines kAll = {"bond0 has eth1", "bond1 has eth1", "bond2 has eth1", "bond3 has eth1"};

TEST_F(NetIsBondingSlaveTest, NamesTheFirstOfFourBondsThatHasTheCard)
{
    for (size_t i = 0; i < 4; ++i) {
        asked.clear();
        toldMaster = "bond" + std::to_string(i);
        EXPECT_EQ(NetIsBondingSlave("eth1", master, sizeof(master)), 1);
        EXPECT_STREQ(master, toldMaster.c_str());
        EXPECT_EQ(asked, Lines(kAll.begin(), kAll.begin() + static_cast<std::ptrdiff_t>(i) + 1));
    }
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NetIsBondingSlaveTest, OtherBondsAreNotLookedAt)
{
    toldMaster = "bond7";
    EXPECT_EQ(NetIsBondingSlave("eth1", master, sizeof(master)), 1);
    EXPECT_EQ(std::string(master, sizeof(master)), std::string(16, '\0'));
    EXPECT_EQ(asked, kAll);
}

TEST_F(NetIsBondingSlaveTest, TheNameIsCutToTheBuffer)
{
    toldMaster = "bond2";
    EXPECT_EQ(NetIsBondingSlave("eth1", master, 5), 1);
    EXPECT_STREQ(master, "bond");
    EXPECT_EQ(std::string(master + 5, 11), std::string(11, '#'));
    memset(master, '#', sizeof(master));
    EXPECT_EQ(NetIsBondingSlave("eth1", master, 1), 1);
    EXPECT_STREQ(master, "");
    EXPECT_EQ(std::string(master + 1, 15), std::string(15, '#'));
}

TEST_F(NetIsBondingSlaveTest, TheWholeBufferIsCleared)
{
    toldMaster = "bond1";
    EXPECT_EQ(NetIsBondingSlave("eth1", master, 12), 1);
    EXPECT_EQ(std::string(master, 12), std::string("bond1") + std::string(7, '\0'));
    EXPECT_EQ(std::string(master + 12, 4), "####");
}

TEST_F(NetIsBondingSlaveTest, WithoutABufferTheMasterIsNotAskedFor)
{
    EXPECT_EQ(NetIsBondingSlave("eth1", nullptr, 16), 1);
    EXPECT_EQ(NetIsBondingSlave("eth1", nullptr, -1), 1);
    EXPECT_EQ(asked, Lines{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NetIsBondingSlaveTest, ABufferWithoutRoomIsAFailure)
{
    for (const int32_t length : {0, -1, INT32_MIN}) {
        EXPECT_EQ(NetIsBondingSlave("eth1", master, length), 0);
    }
    EXPECT_TRUE(Untouched());
    EXPECT_EQ(asked, Lines{});
}

TEST_F(NetIsBondingSlaveTest, ACardInAnyOtherModeIsNone)
{
    for (const int mode : {-1, 0, 2, 3, 4}) {
        ClearLog();
        toldUse = static_cast<NetWorkMode>(mode);
        EXPECT_EQ(NetIsBondingSlave("eth1", master, sizeof(master)), 0);
        EXPECT_EQ(Log(), (LogLines{Error("NetIsBondingSlave", "eth1 not in bond mode")}));
    }
    EXPECT_TRUE(Untouched());
    EXPECT_EQ(asked, Lines{});
}

TEST_F(NetIsBondingSlaveTest, AModeThatIsNotToldIsAFailure)
{
    useIsTold = false;
    EXPECT_EQ(NetIsBondingSlave("eth1", master, sizeof(master)), 0);
    EXPECT_EQ(Log(), (LogLines{Error("NetIsBondingSlave", "NetGetEthWorkMode failed.")}));
    EXPECT_TRUE(Untouched());
}

TEST_F(NetIsBondingSlaveTest, NullIsNoMember)
{
    EXPECT_EQ(NetIsBondingSlave(nullptr, master, sizeof(master)), 0);
    EXPECT_TRUE(Untouched());
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NetIsBondingSlaveTest, ACardOfARunningBondIsFoundInIt)
{
    toldUse.reset();
    EXPECT_EQ(NetWorkBond(cards.Const(), 2, 1), 0);
    ClearLog();
    EXPECT_EQ(NetIsBondingSlave("eth0", master, sizeof(master)), 1);
    EXPECT_STREQ(master, "bond0");
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(NetIsBondingSlave("eth7", master, sizeof(master)), 0);
    EXPECT_EQ(NetIsBondingSlave("wlan0", master, sizeof(master)), 0);
    EXPECT_EQ(Log().back(), Error("NetIsBondingSlave", "NetGetEthWorkMode failed."));
    EXPECT_STREQ(master, "bond0");
}

}  // namespace
