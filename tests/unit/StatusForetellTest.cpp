// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// What lanrise-status says that the next boot repairs, against what the boot then does.

#include "StatusWorld.h"

#include "Lanrise.h"

#include <algorithm>
#include <random>

using namespace fake;

namespace {

/// A device that a boot leaves as it is: eth0 the default card.
class ForetellTest : public World {
protected:
    void SetUp() override
    {
        World::SetUp();
        cmos.capsResult = -1;  // no backup memory, unless a test brings one
        PutHealthyResolvers();
        Put(CardFile("eth0"), Settings(Healthy(0, {"DEFAULT_ETH = eth0"})));
        for (int i = 1; i < 4; ++i) PutCard("eth" + std::to_string(i), {});
    }

    static void PutCard(const std::string& card, const std::vector<std::string>& lines)
    {
        Put(CardFile(card), Settings(Healthy(card.back() - '0', lines)));
    }

    static std::vector<std::string> Bonded(const std::string& bond)
    {
        return {"BONDED = 1", "BONDNAME = " + bond, "WORKMODE = 1"};
    }

    static std::vector<std::string> Bridged(const std::string& bridge)
    {
        return {"BRIDGEEDED = 1", "BRIDGENAME = " + bridge, "WORKMODE = 3"};
    }

    static Sentences RepairsOf(const std::vector<std::string>& names)
    {
        return Repairs(*Look(names));
    }
};

TEST_F(ForetellTest, NothingForADeviceInOrder)
{
    EXPECT_EQ(RepairsOf({"eth0", "eth1"}), Sentences{});
}

TEST_F(ForetellTest, AListThatNamesACardThatIsGone)
{
    PutCard("eth1", Bridged("br0"));
    PutCard("eth2", Bridged("br0"));
    PutCard("br0", {"BRIDGEMEMBERS = eth1,eth9"});
    EXPECT_EQ(
        RepairsOf({"eth0", "eth1", "eth2"}),
        Sentences{"br0: the saved ports eth1,eth9 become eth1,eth2, as the cards' files say"});
}

TEST_F(ForetellTest, TheBridgesBehindOneInOrderAreNotLookedAt)
{
    PutCard("eth1", Bridged("br0"));
    PutCard("eth2", Bridged("br0"));
    PutCard("br0", {"BRIDGEMEMBERS = eth2,eth1"});
    PutCard("br3", {"BRIDGEMEMBERS = eth7,eth8"});
    EXPECT_EQ(RepairsOf({"eth0", "eth1", "eth2"}), Sentences{});
}

TEST_F(ForetellTest, ABridgeThatNobodyClaimsLosesItsFile)
{
    PutCard("br3", {"BRIDGEMEMBERS = eth1,eth2"});
    EXPECT_EQ(RepairsOf({"eth0"}),
              Sentences{"br3: fewer than two cards claim it: its file is removed"});
}

TEST_F(ForetellTest, ALoneMemberWillStandAlone)
{
    PutCard("eth1", Bonded("bond0"));
    PutCard("bond0", {"BONDMODE = 1", "BONDMEMBERS = eth1,eth2"});
    EXPECT_EQ(
        RepairsOf({"eth0", "eth1", "eth2", "bond0"}),
        (Sentences{"eth1: it is the only card that claims bond0: it will stand alone",
                   "bond0: fewer than two cards claim it: its saved mode and members are emptied",
                   "eth1: the saved work mode 1 becomes 0"}));
}

TEST_F(ForetellTest, AClaimOfABondThatIsNotThere)
{
    PutCard("eth1", Bonded("bond3"));
    EXPECT_EQ(RepairsOf({"eth0", "eth1"}),
              (Sentences{"eth1: it claims the bond bond3, which is not there: it will stand alone",
                         "eth1: the saved work mode 1 becomes 0"}));
}

TEST_F(ForetellTest, ABondWithoutAMode)
{
    PutCard("eth1", Bonded("bond0"));
    PutCard("eth2", Bonded("bond0"));
    PutCard("bond0", {"BONDMEMBERS = eth1,eth2"});
    EXPECT_EQ(RepairsOf({"eth0", "eth1", "eth2", "bond0"}),
              Sentences{"bond0: no mode is saved: active-backup"});
}

TEST_F(ForetellTest, TheModeOfAnOldRelease)
{
    PutCard("eth1", Bonded("bond0"));
    PutCard("eth2", Bonded("bond0"));
    PutCard("bond0", {"BONDMODE = 2"});
    EXPECT_EQ(
        RepairsOf({"eth0", "eth1", "eth2", "bond0"}),
        (Sentences{"bond0: mode 2 of an old release becomes 0, balance-rr",
                   "bond0: the saved members none become eth1,eth2, as the cards' files say"}));
}

TEST_F(ForetellTest, ACardInABondAndABridgeLeavesBoth)
{
    PutCard("eth1", {"BONDED = 1", "BONDNAME = bond0", "BRIDGEEDED = 1", "BRIDGENAME = br0"});
    PutCard("eth2", Bonded("bond0"));
    PutCard("eth3", Bonded("bond0"));
    PutCard("bond0", {"BONDMODE = 1", "BONDMEMBERS = eth1,eth2,eth3"});
    PutCard("eth0", {"DEFAULT_ETH = eth0", "BRIDGEEDED = 1", "BRIDGENAME = br0", "WORKMODE = 3"});
    PutCard("br0", {"BRIDGEMEMBERS = eth0,eth1"});
    EXPECT_EQ(
        RepairsOf({"eth0", "eth1", "eth2", "eth3", "bond0"}),
        (Sentences{
            "eth1: it claims bond0 and br0 at once: it leaves both and will stand alone",
            "bond0: the saved members eth1,eth2,eth3 become eth2,eth3, as the cards' files say",
            "eth0: it is the only card that claims br0: it will stand alone",
            "br0: fewer than two cards claim it: its file is removed",
            "eth0: the saved work mode 3 becomes 0"}));
}

TEST_F(ForetellTest, AddressesThatAreReplaced)
{
    Put(CardFile("eth1"), Settings({"HOSTIP = 10.0.1.10", "SUBMASK = 255.255.255.0",
                                    "GATEWAYIP = 10.9.9.1", "MTU = 1400"}));
    Put(CardFile("eth3"), "HOSTIP = 10.0.3.10\nSUBM\x01\xff");
    PutCard("wlan1", {});
    EXPECT_EQ(RepairsOf({"eth0", "eth1", "eth3", "wlan1"}),
              (Sentences{"eth1: no usable address is saved: 192.168.0.109/24",
                         "eth3: no MTU is saved: 1500",
                         "eth3: no usable address is saved: 192.168.0.111/24"}));
}

TEST_F(ForetellTest, ADefaultCardThatIsGone)
{
    PutCard("eth0", {"DEFAULT_ETH = eth1.100"});
    EXPECT_EQ(RepairsOf({"eth0"}),
              Sentences{"device: the default card eth1.100 is gone: eth1 takes its place"});
}

TEST_F(ForetellTest, AFileWithTheNameOfAnOldRelease)
{
    Put("/mnt/mtd/Config/network2", Settings(Healthy(2)));
    Remove(CardFile("eth2"));
    const auto device = Look({"eth0", "eth2"});
    EXPECT_EQ(Repairs(*device),
              Sentences{"eth2: the file network2 of an old release gets the name networketh2"});
    EXPECT_TRUE(status::Find(*device, "eth2")->saved.ipv4.isUsable);
}

TEST_F(ForetellTest, ResolversThatAreTooFew)
{
    Put("/mnt/mtd/Config/resolv.conf", "nameserver 10.0.0.1\n");
    EXPECT_EQ(RepairsOf({"eth0"}),
              (Sentences{"device: fewer than two IPv4 resolvers are saved: 8.8.8.8 and 8.8.4.4",
                         "device: fewer than two IPv6 resolvers are saved: 2001:4860:4860::8888 "
                         "and 2001:4860:4860::8844"}));
}

TEST_F(ForetellTest, NothingWhereAFileIsHidden)
{
    const auto device = Look({"eth0", "eth1"});
    device->list[1].saved = {};
    device->list[1].saved.file = status::FileState::Unreadable;
    EXPECT_EQ(Repairs(*device), Sentences{});
}

// ---- eth0 and the backup memory

TEST_F(ForetellTest, TheBackupMemoryWins)
{
    UseRtc("10.0.0.77", "255.255.255.0", "10.0.0.1");
    EXPECT_EQ(RepairsOf({"eth0"}), Sentences{"eth0: the backup memory wins over the file: "
                                             "10.0.0.77/24, gateway 10.0.0.1 is saved"});
}

TEST_F(ForetellTest, TheBackupMemoryBringsTheAddressBack)
{
    Put(CardFile("eth0"), Settings({"DEFAULT_ETH = eth0", "MTU = 1500"}));
    UseRtc("10.0.0.77", "255.255.255.0", "10.0.0.1");
    EXPECT_EQ(RepairsOf({"eth0"}),
              Sentences{"eth0: no usable address is saved, the backup memory has one: "
                        "10.0.0.77/24, gateway 10.0.0.1 is saved"});
}

TEST_F(ForetellTest, TheFactoryAddressWhenBothAreLost)
{
    Put(CardFile("eth0"), Settings({"DEFAULT_ETH = eth0", "MTU = 1500"}));
    EXPECT_EQ(RepairsOf({"eth0"}), Sentences{"eth0: no usable address is saved: 192.168.0.108/24"});
}

TEST_F(ForetellTest, AnEmptyBackupMemoryIsFilled)
{
    UseRtc("0.0.0.0", "0.0.0.0", "0.0.0.0");
    EXPECT_EQ(RepairsOf({"eth0"}),
              Sentences{"eth0: the backup memory is empty: it is filled from the file"});
}

TEST_F(ForetellTest, ABackupMemoryWithAWrongCheckSumIsWiped)
{
    UseRtc("10.0.0.10", "255.255.255.0", "10.0.0.1");
    kernel.rtc.bytes[46] ^= 1;
    EXPECT_EQ(RepairsOf({"eth0"}),
              Sentences{"device: the backup memory is wiped: its check sum is wrong"});
}

// ---- against the boot itself

/// What is saved of one interface, as far as a repair has a sentence for it. A work mode that was
/// not saved before is written without one.
std::string OwnMeaning(const status::Device& device, const std::string& name,
                       const status::Device& before)
{
    const auto claim = [](const status::Claim& of) {
        return of.isMarked ? std::string(" ") + (of.hasName ? of.name : "?") : " -";
    };
    const status::Saved& saved = status::Find(device, name.c_str())->saved;
    const bool hadMode = status::Find(before, name.c_str())->saved.workMode >= 0;
    return name + claim(saved.bond) + claim(saved.bridge) + " mode " +
           std::to_string(saved.bondMode) + " work " +
           std::to_string(hadMode ? saved.workMode : -1) + " mtu " + std::to_string(saved.mtu) +
           " at " + std::to_string(saved.ipv4.address) + "\n";
}

/// The lists of members, in any order, and which bridges have a file.
std::string Lists(const status::Device& device)
{
    std::string text;
    for (int i = 0; i < device.count; ++i) {
        const status::Members& members = device.list[i].saved.members;
        std::vector<std::string> names(members.names, members.names + members.count);
        std::sort(names.begin(), names.end());
        if (names.empty()) continue;
        text += device.list[i].name;
        for (const std::string& name : names) text += " " + name;
        text += "\n";
    }
    for (int number = 0; number < 8; ++number) text += device.bridgeFile[number] ? "b" : "-";
    return text;
}

std::string Meaning(const status::Device& device, const std::vector<std::string>& names,
                    const status::Device& before)
{
    std::string text;
    for (const std::string& name : names) text += OwnMeaning(device, name, before);
    return text + Lists(device);
}

/// The phases of a boot that repair what is saved.
void RepairPhases()
{
    CheckTrunkBondConfig();
    CheckBondConfig();
    CheckBridgeConfig();
    if (!CheckWorkmodeConfig()) {
        CheckBondConfig();
        CheckBridgeConfig();
        CheckWorkmodeConfig();
    }
    CheckEth0Config();
    CheckEthCardConfig();
    CheckBondCardConfig();
    CheckDefaultEthConfig();
}

class ForetoldBootTest : public World, public testing::WithParamInterface<unsigned> {
protected:
    const std::vector<std::string> names_ = {"eth0", "eth1", "eth2", "eth3", "bond0", "bond1"};

    std::string OneOf(const std::vector<std::string>& choices)
    {
        return choices[random_() % choices.size()];
    }

    bool Seldom() { return random_() % 6 == 0; }

    std::vector<std::string> AddressLines(int net)
    {
        auto lines = Healthy(net);
        if (Seldom()) lines.erase(lines.begin() + static_cast<long>(random_() % 4));
        return lines;
    }

    void PutRandom()
    {
        cmos.capsResult = -1;
        PutHealthyResolvers();
        for (int i = 0; i < 4; ++i) {
            auto lines = AddressLines(i);
            if (i == 0) lines.emplace_back("DEFAULT_ETH = eth0");
            lines.push_back("BONDED = " + OneOf({"0", "1", "1"}));
            if (!Seldom())
                lines.push_back("BONDNAME = " +
                                OneOf({"bond0", "bond0", "bond1", "", "bond9", "x"}));
            lines.push_back("BRIDGEEDED = " + OneOf({"0", "0", "1"}));
            if (!Seldom()) lines.push_back("BRIDGENAME = " + OneOf({"br0", "br0", "br1", "", "x"}));
            if (!Seldom()) lines.push_back("WORKMODE = " + OneOf({"0", "1", "3"}));
            if (random_() % 12 != 0) Put(CardFile("eth" + std::to_string(i)), Settings(lines));
        }
        const std::vector<std::string> lists = {
            "eth0,eth1", "eth2,eth3", "eth0,eth1,eth2", "eth1", "eth0,eth1,eth2,eth3", ""};
        for (const char* bond : {"bond0", "bond1"}) {
            auto lines = AddressLines(7);
            if (!Seldom()) lines.push_back("BONDMODE = " + OneOf({"0", "1", "2", "5", "", "9"}));
            if (!Seldom()) lines.push_back("BONDMEMBERS = " + OneOf(lists));
            Put(CardFile(bond), Settings(lines));
        }
        for (const char* bridge : {"br0", "br1", "br5"}) {
            if (random_() % 2 == 0) continue;
            Put(CardFile(bridge), Settings({"BRIDGEMEMBERS = " + OneOf(lists)}));
        }
    }

    std::mt19937 random_{GetParam()};
};

TEST_P(ForetoldBootTest, SaysSomethingJustWhenTheBootChangesSomething)
{
    PutRandom();
    List(names_);
    for (const std::string& name : names_) {
        if (!Exists(CardFile(name))) Put(CardFile(name), "");
    }
    const auto before = Look(names_);
    const Sentences repairs = Repairs(*before);
    RepairPhases();
    const auto after = Look(names_);
    std::string all;
    for (const std::string& repair : repairs) all += repair + "\n";
    EXPECT_EQ(!repairs.empty(),
              Meaning(*before, names_, *before) != Meaning(*after, names_, *before))
        << all << Meaning(*before, names_, *before) << "\n"
        << Meaning(*after, names_, *before);
}

TEST_P(ForetoldBootTest, NamesEachInterfaceThatTheBootChanges)
{
    PutRandom();
    List(names_);
    const auto before = Look(names_);
    const Sentences repairs = Repairs(*before);
    RepairPhases();
    const auto after = Look(names_);
    for (const std::string& name : names_) {
        const std::string old = OwnMeaning(*before, name, *before);
        const std::string next = OwnMeaning(*after, name, *before);
        if (old == next) continue;
        const bool said = std::any_of(repairs.begin(), repairs.end(), [&name](const auto& repair) {
            return repair.rfind(name + ": ", 0) == 0;
        });
        EXPECT_TRUE(said) << old << next;
    }
}

TEST_P(ForetoldBootTest, HasNothingLeftToSayAfterTheBoot)
{
    PutRandom();
    List(names_);
    RepairPhases();
    // The walk over the bridges ends at the first in order: what lies behind it waits for the boot
    // after, as it does in the boot itself.
    std::string first;
    for (int i = 0; i < 3; ++i) {
        RepairPhases();
        first.clear();
        for (const std::string& repair : Repairs(*Look(names_))) first += repair + "\n";
    }
    EXPECT_EQ(first, "");
}

INSTANTIATE_TEST_SUITE_P(Seeds, ForetoldBootTest, testing::Range(0U, 40U));

}  // namespace
