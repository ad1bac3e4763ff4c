// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Kinds of interfaces are told by a word in the name: at its start, in its middle, at its end, with
// a point, with a colon, beside a second word. A new kind or form is one row.

#include "InterfaceWorld.h"
#include "Steps.h"

#include "Base.h"
#include "Bond.h"
#include "CommonApi.h"
#include "Network.h"

#include <linux/ethtool.h>

using namespace fake;

namespace {

class NameKindTest : public InterfaceWorld {
protected:
    static void Add(const std::string& name)
    {
        if (kernel.Find(name) == nullptr) kernel.Add(name);
    }
};

// ---- the listing

TEST_F(NameKindTest, OnlyTheDevicesOwnKindsAreListed)
{
    const std::vector<std::pair<std::string, bool>> rows = {
        {"eth7", true},       {"xeth", true},        {"abcdefghijkleth", true},
        {"eth0.5", true},     {"eth0.100", true},    {"wlan3", true},
        {"xwlan", true},      {"bond0", true},       {"xbond0", true},
        {"bond0.5", true},    {"br0", true},         {"xbr", true},
        {"br", true},         {"ppp0", true},        {"xppp", true},
        {"lte0", true},       {"apra0", true},       {"usb0", true},
        {"ethwlan0", true},   {"veth2", false},      {"xveth", false},
        {"br-1234", false},   {"xbr-1", false},      {"docker0", false},
        {"ethdocker", false}, {"veth-bond0", false}, {"lo", false},
        {"tun0", false},      {"vnic0", false},      {"nbp0", false},
        {"et", false},        {"bon", false},        {"ETH0", false},
    };
    for (const auto& [name, listed] : rows) {
        char found[16] = "untouched";
        const std::string line = "  " + name + ": 1 2 3";
        EXPECT_EQ(getNetIfName(line.c_str(), found, sizeof(found)), listed) << name;
    }
}

TEST_F(NameKindTest, ALineWithoutAColonIsReadToItsEndAndNotBeyond)
{
    char found[16] = "untouched";
    for (const char* bytes : {"eth0\0: 1 2 3", "\0eth0: 1", "  \0eth0:", "eth0\0 :"}) {
        EXPECT_FALSE(getNetIfNameNoFilter(bytes, found, sizeof(found))) << bytes;
        EXPECT_FALSE(getNetIfName(bytes, found, sizeof(found))) << bytes;
    }
}

// ---- presence

TEST_F(NameKindTest, WhatBeginsWithBrPassesAsPresentAndNothingElse)
{
    for (const char* name : {"br0", "br", "br9", "bridge", "br-77", "br0:1", "br:x", "br0.5"}) {
        EXPECT_TRUE(CheckEthExist(&name, 1)) << name;
    }
    for (const char* name : {"xbr0", "xbr-1", "abr", "Br0", "b", "eth7:br0", ":br0"}) {
        EXPECT_FALSE(CheckEthExist(&name, 1)) << name;
    }
}

TEST_F(NameKindTest, AnEntryIsPresentWithItsCard)
{
    for (const char* name : {"eth0:1", "eth0:", "eth0:poe", "eth1:abcdefghijklmnop"}) {
        EXPECT_TRUE(CheckEthExist(&name, 1)) << name;
    }
    for (const char* name : {"eth7:1", "eth:0", "eth", "th0", "eth0.5", "eth00"}) {
        EXPECT_FALSE(CheckEthExist(&name, 1)) << name;
    }
}

TEST_F(NameKindTest, NamesOfNbpAreLookedForAmongTheirs)
{
    Add("nbp0");
    Add("xnbp1");
    for (const char* name : {"nbp0", "xnbp1"}) EXPECT_TRUE(CheckEthExist(&name, 1)) << name;
    const char* both[] = {"nbp0", "eth0"};
    EXPECT_FALSE(CheckEthExist(both, 2));
    const char* other[] = {"eth0", "nbp0"};
    EXPECT_FALSE(CheckEthExist(other, 2));
}

// ---- bonds

struct BondName {
    const char* name;
    bool builds;  // `Bond` takes it as a bond
    bool ends;    // `UnBond` and the hash policy do
};

TEST_F(NameKindTest, ABondIsWhatHoldsTheWordAndToBuildItNoPoint)
{
    const BondName rows[] = {
        {"bond0", true, true},           {"xbond0", true, true},     {"mybond1", true, true},
        {"abcdefghijkbond", true, true}, {"bond", true, true},       {"brbond0", true, true},
        {"bond0.5", false, true},        {"bo.nd0", false, false},   {"lan0", false, false},
        {"bon0", false, false},          {"ethbond.1", false, true}, {".bond0", false, true},
        {"e.bond0", false, true},        {"bond.0", false, true},
    };
    for (const BondName& row : rows) {
        const std::string folder = "/sys/class/net/" + std::string(row.name) + "/bonding/";
        Add(row.name);
        for (const char* attribute : {"slaves", "mode", "miimon", "xmit_hash_policy"}) {
            Put(folder + attribute, "");
        }
        Members cards({"eth0", "eth1"});
        ClearTrace();
        EXPECT_EQ(Bond(row.name, cards.Const(), 2, nicBondActiveBackup), row.builds) << row.name;
        EXPECT_EQ(SetBondHashPolicy(row.name, 2), row.ends) << row.name;
        Put(folder + "slaves", "eth0 eth1\n");
        const bool runs = std::string(row.name).find('.') == std::string::npos;
        EXPECT_EQ(UnBond(row.name), row.ends && runs) << row.name;  // a VLAN on a bond is none
        kernel.cards.pop_back();
    }
}

TEST_F(NameKindTest, AMemberMayHaveAnyName)
{
    Put("/sys/class/net/bond0/bonding/slaves", "eth0 bond0.5 eth1:poe abcdefghijklmno br0\n");
    for (const char* name : {"eth0", "bond0.5", "eth1:poe", "abcdefghijklmno", "br0"}) {
        EXPECT_TRUE(Bond_HasMember("bond0", name)) << name;
        EXPECT_TRUE(BondHasMember("bond0", name)) << name;
    }
    for (const char* name : {"eth", "bond0", "eth1", "poe", "abcdefghijklmn", ""}) {
        EXPECT_FALSE(BondHasMember("bond0", name)) << name;
    }
}

TEST_F(NameKindTest, AMemberIsAskedForThoughNothingIsListed)
{
    Put("/sys/class/net/bond7/bonding/slaves", "eth9\n");
    EXPECT_TRUE(BondHasMember("bond7", "eth9"));
    EXPECT_EQ(TraceOf({"open"}), Texts{"open /sys/class/net/bond7/bonding/slaves O_RDONLY"});
}

// ---- bridges

TEST_F(NameKindTest, ABridgeBeginsWithBrAndADigit)
{
    const std::vector<std::pair<const char*, bool>> rows = {
        {"br0", true},   {"br9", true},  {"br1x", true},  {"br0.5", true}, {"br5:1", true},
        {"br", false},   {"bra", false}, {"br:", false},  {"br/", false},  {"br-0", false},
        {"xbr0", false}, {"Br0", false}, {"br 0", false}, {"", false},     {"b0", false}};
    for (const auto& [name, good] : rows) {
        Members cards({"eth0", "eth1"});
        ClearLog();
        EXPECT_EQ(Bridge(name, cards.Get(), 2), good) << name;
        EXPECT_EQ(Logged(Error("Bridge", "Bridge name error.[" + std::string(name) + "]")), !good)
            << name;
    }
}

// ---- links

TEST_F(NameKindTest, AnyNameWithPoeCountsAsLinkedWithoutAQuestion)
{
    for (const char* name : {"eth0:poe", "ethpoe0", "ethxpoe"}) {
        Add(name);
        ClearTrace();
        EXPECT_TRUE(NetMiiDiag(name, true)) << name;
        EXPECT_EQ(TraceOf({"ioctl ETHTOOL_GLINK"}), Texts{}) << name;
    }
    // "poe0" is no kind of its own, but an entry of a bridge may hold the word.
    EXPECT_TRUE(NetMiiDiag("br:poe", false));
    EXPECT_TRUE(NetMiiDiag("brpoe", false));
}

TEST_F(NameKindTest, WirelessIsAskedOfNamesThatHoldEth2OrWlan)
{
    Put("/proc/net/wireless", "");
    const std::vector<std::pair<const char*, bool>> rows = {
        {"eth2", true},  {"veth2", true}, {"xeth2y", true}, {"eth20", true}, {"wlan0", true},
        {"xwlan", true}, {"eth1", false}, {"eth", false},   {"2eth", false}, {"wla", false}};
    for (const auto& [name, asked] : rows) {
        Add(name);
        ClearTrace();
        (void)Net_MiiDiag(name);
        EXPECT_EQ(TraceOf({"open /proc/net/wireless"}).size(), asked ? 1U : 0U) << name;
    }
    for (const char* name : {"ppp0", "xppp", "pppoe"}) {
        ClearTrace();
        EXPECT_TRUE(Net_MiiDiag(name)) << name;
        EXPECT_EQ(Trace(), Texts{}) << name;
    }
}

TEST_F(NameKindTest, AMemberOfAMasterThatIsNotListedIsJudgedByItAllTheSame)
{
    Put(kFile0, Settings({"WORKMODE = 1", "BONDNAME = bond9"}));
    Put(kFile1, Settings({"WORKMODE = 3", "BRIDGENAME = br9"}));
    EXPECT_FALSE(NetMiiDiag("eth0", true));
    EXPECT_FALSE(NetMiiDiag("eth1", true));
    EXPECT_EQ(TraceOf({"ioctl ETHTOOL_GLINK"}),
              (Texts{"ioctl ETHTOOL_GLINK bond9", "ioctl ETHTOOL_GLINK br9"}));
    EXPECT_EQ(TraceOf({"open /proc/net/dev"}).size(), 2U);  // one question each: the card's
    Put(kFile0, Settings({"WORKMODE = 1", "BONDNAME = lan7"}));
    Put(kFile1, Settings({"WORKMODE = 3", "BRIDGENAME = lan8"}));
    ClearTrace();
    EXPECT_FALSE(NetMiiDiag("eth0", true));
    EXPECT_FALSE(NetMiiDiag("eth1", true));
    EXPECT_EQ(TraceOf({"ioctl ETHTOOL_GLINK"}),
              (Texts{"ioctl ETHTOOL_GLINK lan7", "ioctl ETHTOOL_GLINK lan8"}));
}

// ---- the list with media and types

struct Entry {
    const char* name;
    int valid;
    int media;
    int type;
    bool asksDriver;
};

TEST_F(NameKindTest, TheFirstKindOfANameDecides)
{
    const Entry rows[] = {
        {"ethwlan0", 1, 0, 0, true},  {"wlaneth0", 1, 0, 0, true}, {"ethbond0", 1, 0, 0, true},
        {"ethbr0", 1, 0, 0, true},    {"usbpoe", 1, 0, 0, true},   {"wlanbond0", 0, 1, 0, false},
        {"bondwlan", 0, 1, 0, false}, {"bondbr0", 1, 0, 1, false}, {"brbond0", 1, 0, 1, false},
        {"bondppp", 1, 0, 1, false},  {"brppp0", 1, 0, 3, false},  {"brusb", 1, 0, 3, false},
        {"ppplte", 1, 1, 0, false},   {"lteapra", 1, 1, 0, false}, {"apralte", 1, 1, 0, false},
        {"apra0", 0, 1, 0, false},    {"aprausb", 1, 1, 0, false}, {"br0.5", 1, 0, 3, false},
        {"bond0.5", 1, 0, 1, false},  {"eth0.5", 1, 0, 0, true},
    };
    for (const Entry& row : rows) {
        kernel.cards.clear();
        Add(row.name);
        ClearTrace();
        NetInterfaceInfo entry{};
        int32_t count = 1;
        ASSERT_TRUE(NetGetAllInterface(&entry, &count)) << row.name;
        EXPECT_STREQ(entry.name, row.name);
        EXPECT_EQ(entry.valid, row.valid) << row.name;
        EXPECT_EQ(static_cast<int>(entry.media), row.media) << row.name;
        EXPECT_EQ(entry.type, row.type) << row.name;
        EXPECT_EQ(!TraceOf({"ioctl ETHTOOL_GSET"}).empty(), row.asksDriver) << row.name;
    }
}

TEST_F(NameKindTest, OfCardsEth2AloneIsAskedWhetherItIsWireless)
{
    Put("/proc/net/wireless", " eth2: 1\n eth20: 1\n xeth2: 1\n eth3: 1\n");
    const std::vector<std::pair<const char*, int>> rows = {
        {"eth2", 1}, {"eth20", 0}, {"xeth2", 0}, {"eth3", 0}};
    for (const auto& [name, media] : rows) {
        kernel.cards.clear();
        kernel.Add(name).driver = "sim Switch drv";
        NetInterfaceInfo entry{};
        int32_t count = 1;
        ASSERT_TRUE(NetGetAllInterface(&entry, &count)) << name;
        EXPECT_EQ(static_cast<int>(entry.media), media) << name;
        EXPECT_EQ(entry.valid, media == 1 ? 0 : 1) << name;
        EXPECT_EQ(entry.type, media == 1 ? 0 : isSwitchByName(name) == 1 ? 2 : 0) << name;
    }
}

TEST_F(NameKindTest, ASwitchInterfaceIsToldByTheWordBehindAColon)
{
    for (const char* name : {"eth0:poe", "xx:poe1", ":poe"}) EXPECT_EQ(isSwitchByName(name), 1);
    for (const char* name : {"poe0", "ethpoe", "eth0.poe", "eth0:po", "eth0: poe"}) {
        EXPECT_EQ(isSwitchByName(name), 0) << name;
    }
    kernel.cards.clear();
    Add("ethpoe");
    NetInterfaceInfo entry{};
    int32_t count = 1;
    ASSERT_TRUE(NetGetAllInterface(&entry, &count));
    EXPECT_EQ(entry.type, netModeMultiple);
}

TEST_F(NameKindTest, AWorkModeIsThatOfAnyNameThatHoldsEth)
{
    const std::vector<std::pair<const char*, bool>> rows = {
        {"eth0", true}, {"xeth0", true}, {"veth2", true}, {"wlaneth", true}, {"bondeth0", true},
        {"eth", true},  {"et", false},   {"poe0", false}, {"e.th0", false},  {"ETH0", false}};
    for (const auto& [name, works] : rows) {
        NetWorkMode mode = netModeInvalid;
        EXPECT_EQ(NetGetEthWorkMode(name, &mode), works) << name;
        EXPECT_EQ(mode, works ? netModeMultiple : netModeInvalid) << name;
    }
}

TEST_F(NameKindTest, TheUseOfAnEntryIsThatOfItsWholeName)
{
    const std::vector<std::pair<const char*, NetDeviceUsage>> rows = {
        {"eth16", netDeviceUsageDCFunc},     {"eth17", netDeviceUsageWeb},
        {"eth0", netDeviceUsageCommon},      {"eth16:poe", netDeviceUsageCommon},
        {"eth17:poe", netDeviceUsageCommon}, {"eth0:poe", netDeviceUsageCommon},
        {"eth161", netDeviceUsageCommon},    {"xeth17", netDeviceUsageCommon}};
    for (const auto& [name, use] : rows) {
        EXPECT_EQ(Net_GetUsage(name), use) << name;
    }
    // In the list, the entry of a card that is a switch too.
    kernel.cards.clear();
    kernel.Add("eth0").driver = "sim Switch drv";
    Put("/mnt/mtd/Config/poeMode.conf", "eth0 = 2\n");
    NetInterfaceInfo entries[2] = {};
    int32_t count = 2;
    ASSERT_TRUE(NetGetAllInterface(entries, &count));
    ASSERT_EQ(count, 2);
    EXPECT_STREQ(entries[1].name, "eth0:poe");
    EXPECT_EQ(entries[0].usage, netDeviceUsageCommon);
    EXPECT_EQ(entries[1].usage, netDeviceUsageCommon);
}

}  // namespace
