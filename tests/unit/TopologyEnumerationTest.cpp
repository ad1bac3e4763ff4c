// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The boot's repair of saved bonds and bridges, over enumerated topologies. What the files say
// after a boot is foretold by a second opinion. Every file is compared byte by byte, then the unit
// boots once more. Where all combinations are too many, the rows behind them (lists, modes) wander
// with the count, and each two properties meet in all their pairs.

#include "AllPairs.h"
#include "LanriseWorld.h"
#include "TopologyForetold.h"

#include "Lanrise.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <optional>

#include <unistd.h>

using namespace fake;
using namespace foretold;

namespace {

// ---- one topology

void BootOnce()
{
    CheckTrunkBondConfig();
    CheckBondConfig();
    CheckBridgeConfig();
    if (CheckWorkmodeConfig()) return;

    CheckBondConfig();
    CheckBridgeConfig();
    EXPECT_TRUE(CheckWorkmodeConfig());
}

constexpr char kFolder[] = "/mnt/mtd/Config/";

void Write(const std::map<std::string, std::string>& texts)
{
    for (const auto& entry : std::filesystem::directory_iterator(Mapped(kFolder))) {
        if (texts.count(entry.path().filename()) == 0) std::filesystem::remove(entry.path());
    }
    for (const auto& [name, text] : texts) {
        std::ofstream(Mapped(kFolder) + name, std::ios::binary) << text;
    }
}

/// Log and trace begin anew with each topology, else they would grow without end.
void ForgetOutput()
{
    fflush(stdout);
    ASSERT_EQ(ftruncate(STDOUT_FILENO, 0), 0);
    lseek(STDOUT_FILENO, 0, SEEK_SET);
    ClearTrace();
}

std::map<std::string, std::string> AllTexts(const Device& device, const Disk& disk)
{
    std::map<std::string, std::string> texts = FileTexts(disk);
    for (const std::string& card : device.switches) texts["poeMode.conf"] += card + " = 1\n";
    return texts;
}

std::string Told(const Device& device, const Disk& disk)
{
    std::string text = "cards " + Join(device.cards) + ", bonds " + Join(device.bonds) +
                       ", bridges " + Join(device.bridges) + "\n";
    for (const auto& [name, file] : disk) text += "[" + name + "]\n" + Text(file);
    return text;
}

/// One boot is enough: no card is left in a bond and a bridge at once, as the second round took
/// them apart, and the list that each bond up to 15 has got keeps its mode from a second
/// conversion.
void ExpectSettled(const Device& device, const Disk& disk)
{
    for (const std::string& card : device.cards) {
        EXPECT_FALSE(Flag(disk, card, "BONDED") && Flag(disk, card, "BRIDGEEDED")) << card;
    }
    for (const std::string& bond : device.bonds) {
        EXPECT_FALSE(NumberBehind(bond, 4) <= 15 && IsOldBondFile(disk, bond)) << bond;
    }
}

/// Boots twice with these files. The device and its common start are there already.
void Check(const Device& device, const Disk& disk)
{
    if (testing::Test::HasFailure()) return;
    ForgetOutput();
    Write(AllTexts(device, disk));

    BootOnce();
    const Disk once = foretold::Boot(device, disk);
    EXPECT_EQ(SavedFiles(), AllTexts(device, once)) << "saved before:\n" << Told(device, disk);
    ExpectSettled(device, once);

    BootOnce();
    const Disk twice = foretold::Boot(device, once);
    EXPECT_EQ(SavedFiles(), AllTexts(device, twice)) << "second boot of:\n" << Told(device, disk);
    // The mode of an old bond above 15 alone changes again: nothing gives such a bond a list. Even
    // a bridge behind one in order stays, for the walk ends at the same place in each boot.
    for (const auto& [name, file] : once) {
        const bool convertedAgain =
            Holds(name, "bond") && NumberBehind(name, 4) > 15 && IsOldBondFile(once, name);
        EXPECT_TRUE(convertedAgain || twice.at(name) == file) << Told(device, disk);
    }
    EXPECT_EQ(twice.size(), once.size()) << Told(device, disk);
}

// ---- what a topology is made of

/// What a card's file says of its bond.
const std::vector<File> kBondClaims = {
    {},
    {{"BONDED", "0"}, {"BONDNAME", "bond0"}},
    {{"BONDED", "1"}},
    {{"BONDED", "1"}, {"BONDNAME", "bond0"}},
    {{"BONDED", "1"}, {"BONDNAME", "bond1"}},
    {{"BONDED", "1"}, {"BONDNAME", "bond7"}},
    {{"BONDED", "1"}, {"BONDNAME", "lan0"}},
    {{"BONDED", "1"}, {"BONDNAME", "bond1-is-too-long"}},
    {{"BONDED", ""}, {"BONDNAME", "bond0"}},
};

/// And of its bridge.
const std::vector<File> kBridgeClaims = {
    {},
    {{"BRIDGEEDED", "0"}, {"BRIDGENAME", "br0"}},
    {{"BRIDGEEDED", "1"}, {"BRIDGENAME", "br0"}},
    {{"BRIDGEEDED", "1"}, {"BRIDGENAME", "br1"}},
    {{"BRIDGEEDED", "1"}, {"BRIDGENAME", "lan0"}},
    {{"BRIDGEEDED", "1"}},
    {{"BRIDGEEDED", "1"}, {"BRIDGENAME", "br1-is-much-too-long"}},
};

const std::vector<std::string> kBondModes = {"none", "", "4", "9", "x", "0"};

/// A member list, told by what it has to do with the claims. In order are `kRight`, `kTurned`, and
/// `kRepeated` when there are two or more claims: as many names as cards, each a card's.
enum ListKind {
    kRight,
    kTurned,
    kStale,
    kOneTooMany,
    kNoKey,
    kRepeated,
    kOneTooFew,
    kEmpty,
    kNoFile
};
constexpr int kListKinds = kNoFile + 1;

std::optional<std::string> ListOf(ListKind kind, Names cards)
{
    switch (kind) {
    case kTurned: std::reverse(cards.begin(), cards.end()); break;
    case kStale:
        if (!cards.empty()) cards.pop_back();
        cards.emplace_back("eth9");
        break;
    case kOneTooMany: cards.emplace_back("eth9"); break;
    case kOneTooFew:
        if (!cards.empty()) cards.pop_back();
        break;
    case kRepeated:
        if (!cards.empty()) cards.back() = cards.front();
        break;
    case kEmpty: return "";
    case kNoKey:
    case kNoFile: return std::nullopt;
    case kRight: break;
    }
    return Join(cards);
}

/// Adds the file of a bond or bridge whose claims stand in `disk` already.
void AddMaster(Disk& disk, const std::string& name, ListKind kind, const Names& cards,
               const std::string& mode)
{
    if (kind == kNoFile) return;
    File& file = disk[name];
    file.push_back(kForeign);
    file.emplace_back("MTU", "1500");
    if (mode != "none") file.emplace_back("BONDMODE", mode);
    const auto list = ListOf(kind, cards);
    if (list) file.emplace_back(Holds(name, "bond") ? "BONDMEMBERS" : "BRIDGEMEMBERS", *list);
}

struct Saved {
    std::vector<size_t> bondClaims;    // of each card; of no claim when there are fewer
    std::vector<size_t> bridgeClaims;  // than cards
    std::array<int, 2> bondLists{kNoFile, kNoFile};
    std::array<size_t, 2> bondModes{};
    std::array<int, 2> bridgeLists{kNoFile, kNoFile};
};

Disk DiskOf(const Device& device, const Saved& saved)
{
    Disk disk;
    for (size_t i = 0; i < device.cards.size(); ++i) {
        const std::string card = "eth" + std::to_string(i);
        File& file = disk[card];
        file = {kForeign, {"HOSTIP", "10.0.0.1"}};
        const auto add = [&](const File& claim) {
            file.insert(file.end(), claim.begin(), claim.end());
        };
        if (i < saved.bondClaims.size()) add(kBondClaims[saved.bondClaims[i]]);
        if (i < saved.bridgeClaims.size()) add(kBridgeClaims[saved.bridgeClaims[i]]);
    }
    Members inBonds = BondMembers(device, disk);
    Members inBridges = BridgeMembers(device, disk);
    for (unsigned n = 0; n < 2; ++n) {
        const std::string number = std::to_string(n);
        AddMaster(disk, "bond" + number, static_cast<ListKind>(saved.bondLists[n]), inBonds[n],
                  kBondModes[saved.bondModes[n]]);
        AddMaster(disk, "br" + number, static_cast<ListKind>(saved.bridgeLists[n]), inBridges[n],
                  "none");
    }
    return disk;
}

// ---- selections

/// All rows over the sizes: row number `index` of them.
Row RowAt(size_t index, const std::vector<size_t>& sizes)
{
    Row row;
    for (const size_t size : sizes) {
        row.push_back(index % size);
        index /= size;
    }
    return row;
}

size_t CountOf(const std::vector<size_t>& sizes)
{
    size_t count = 1;
    for (const size_t size : sizes) count *= size;
    return count;
}

const std::vector<Names> kOrders = {
    {"eth0", "eth1", "eth2"}, {"eth1", "eth2", "eth0"}, {"eth2", "eth0", "eth1"}};
const std::vector<Names> kListedBonds = {{"bond0", "bond1"}, {"bond0"}, {"bond1"}, {}};

class SavedTopologyTest : public World {
protected:
    /// Checks topologies of one device, in a process of its own: it lists its cards once.
    void CheckAll(const Device& device, const std::vector<Disk>& disks)
    {
        if (HasFailure()) return;
        Names names = device.cards;
        names.insert(names.end(), device.bonds.begin(), device.bonds.end());
        names.insert(names.end(), device.bridges.begin(), device.bridges.end());
        Remove("/proc/net/dev");  // a table that another process printed is no longer ours
        InNewProcess([&] {
            Write(AllTexts(device, {}));
            List(names);
            for (const Disk& disk : disks) Check(device, disk);
        });
        checked_ += disks.size();
    }

    void TearDown() override
    {
        World::TearDown();
        std::cout << "[ topology ] " << checked_ << " topologies, each booted twice\n";
    }

    size_t checked_ = 0;
};

/// Four cards in two groups of two.
const std::vector<std::array<size_t, 4>> kHalves = {{0, 0, 1, 1}, {1, 0, 1, 0}, {0, 1, 1, 0}};

const Device kFourCards = {{"eth2", "eth0", "eth3", "eth1"}, {"bond0", "bond1"}, {}, {}};

}  // namespace

TEST_F(SavedTopologyTest, EveryCombinationOfClaimsToBonds)
{
    const std::vector<size_t> sizes(3, 7);
    size_t turn = 0;
    for (const Names& listed : {kListedBonds[0], kListedBonds[1]}) {
        const Device device = {kOrders[turn % 3], listed, {}, {}};
        std::vector<Disk> disks;
        for (size_t i = 0; i < CountOf(sizes); ++i, ++turn) {
            Saved saved{RowAt(i, sizes), {}};
            saved.bondLists = {static_cast<int>(turn % 9), static_cast<int>(turn / 9 % 9)};
            saved.bondModes = {turn % 6, turn / 6 % 6};
            disks.push_back(DiskOf(device, saved));
        }
        CheckAll(device, disks);
    }
}

TEST_F(SavedTopologyTest, EveryCombinationOfClaimsToBridges)
{
    const std::vector<size_t> sizes(3, kBridgeClaims.size());
    const Device device = {kOrders[1], {}, {"br0"}, {"eth2"}};
    std::vector<Disk> disks;
    size_t turn = 0;
    for (size_t i = 0; i < CountOf(sizes); ++i) {
        for (int lists = 0; lists < 2; ++lists, ++turn) {
            Saved saved{{}, RowAt(i, sizes)};
            saved.bridgeLists = {static_cast<int>(turn % 9), static_cast<int>(turn / 9 % 9)};
            disks.push_back(DiskOf(device, saved));
        }
    }
    CheckAll(device, disks);
}

TEST_F(SavedTopologyTest, EveryMixOfABondAndABridge)
{
    const std::vector<size_t> bonds = {0, 3, 4};
    const std::vector<size_t> bridges = {0, 2, 3};
    const std::vector<size_t> sizes(6, 3);
    const Device device = {kOrders[2], {"bond0", "bond1"}, {}, {"eth1"}};
    std::vector<Disk> disks;
    for (size_t i = 0; i < CountOf(sizes); ++i) {
        const Row row = RowAt(i, sizes);
        Saved saved{{bonds[row[0]], bonds[row[1]], bonds[row[2]]},
                    {bridges[row[3]], bridges[row[4]], bridges[row[5]]}};
        saved.bondLists = {static_cast<int>(i % 9), static_cast<int>(i / 9 % 9)};
        saved.bondModes = {i % 6, i / 6 % 6};
        saved.bridgeLists = {static_cast<int>(i / 2 % 9), static_cast<int>(i / 5 % 9)};
        disks.push_back(DiskOf(device, saved));
    }
    CheckAll(device, disks);
}

TEST_F(SavedTopologyTest, EveryPairOfListsOfTwoBonds)
{
    std::vector<Disk> disks;
    for (const auto& halves : kHalves) {
        for (int lists = 0; lists < kListKinds * kListKinds; ++lists) {
            Saved saved;
            for (const size_t half : halves) saved.bondClaims.push_back(3 + half);
            saved.bondLists = {lists % kListKinds, lists / kListKinds};
            saved.bondModes = {disks.size() % 6, disks.size() / 6 % 6};
            disks.push_back(DiskOf(kFourCards, saved));
        }
    }
    CheckAll(kFourCards, disks);
}

TEST_F(SavedTopologyTest, EveryPairOfListsOfTwoBridges)
{
    std::vector<Disk> disks;
    for (const auto& halves : kHalves) {
        for (int lists = 0; lists < kListKinds * kListKinds; ++lists) {
            Saved saved;
            for (const size_t half : halves) saved.bridgeClaims.push_back(2 + half);
            saved.bridgeLists = {lists % kListKinds, lists / kListKinds};
            disks.push_back(DiskOf(kFourCards, saved));
        }
    }
    CheckAll(kFourCards, disks);
}

TEST_F(SavedTopologyTest, EveryModeWithEveryListOfOneBond)
{
    const Device device = {kOrders[1], {"bond0"}, {}, {}};
    std::vector<Disk> disks;
    for (size_t cards = 0; cards <= 3; ++cards) {
        for (size_t i = 0; i < kBondModes.size() * kListKinds; ++i) {
            Saved saved{std::vector<size_t>(cards, 3), {}};
            saved.bondLists[0] = static_cast<int>(i / kBondModes.size());
            saved.bondModes[0] = i % kBondModes.size();
            disks.push_back(DiskOf(device, saved));
        }
    }
    CheckAll(device, disks);
}

TEST_F(SavedTopologyTest, NumbersAtTheLimitsOfBonds)
{
    const Names bonds = {"bond15", "bond16", "bond31", "bond32"};
    const Device device = {kOrders[1], bonds, {}, {}};
    const std::vector<size_t> sizes(3, bonds.size());
    std::vector<Disk> disks;
    for (size_t i = 0; i < 2 * CountOf(sizes); ++i) {
        const Row row = RowAt(i, sizes);
        Disk disk;
        for (size_t card = 0; card < row.size(); ++card) {
            disk["eth" + std::to_string(card)] = {{"BONDED", "1"}, {"BONDNAME", bonds[row[card]]}};
        }
        Members members = BondMembers(device, disk);
        for (size_t n = 0; n < bonds.size(); ++n) {
            const auto kind = static_cast<ListKind>((i + 4 * n) % kListKinds);
            AddMaster(disk, bonds[n], kind, members[NumberBehind(bonds[n], 4)],
                      kBondModes[(i + n) % kBondModes.size()]);
        }
        disks.push_back(disk);
    }
    CheckAll(device, disks);
}

TEST_F(SavedTopologyTest, NumbersAtTheLimitsOfBridges)
{
    const Names bridges = {"br2", "br30", "br31", "br32"};
    const Device device = {kOrders[0], {}, {"br32"}, {}};
    const std::vector<size_t> sizes(3, bridges.size());
    std::vector<Disk> disks;
    for (size_t i = 0; i < 2 * CountOf(sizes); ++i) {
        const Row row = RowAt(i, sizes);
        Disk disk;
        for (size_t card = 0; card < row.size(); ++card) {
            disk["eth" + std::to_string(card)] = {{"BRIDGEEDED", "1"},
                                                  {"BRIDGENAME", bridges[row[card]]}};
        }
        Members members = BridgeMembers(device, disk);
        for (size_t n = 0; n < bridges.size(); ++n) {
            const auto kind = static_cast<ListKind>((i + 4 * n) % kListKinds);
            AddMaster(disk, bridges[n], kind, members[NumberBehind(bridges[n], 2)], "none");
        }
        disks.push_back(disk);
    }
    CheckAll(device, disks);
}

TEST_F(SavedTopologyTest, ABridgeBehindOneInOrderIsMendedWhenThatOneFallsOutOfOrder)
{
    const Names cards = {"eth0", "eth1", "eth2", "eth3"};
    const auto kinds = {kStale, kOneTooMany, kNoKey, kOneTooFew, kEmpty, kNoFile};
    InNewProcess([&] {
        List(cards);
        for (const ListKind kind : kinds) {
            Saved saved{{}, {2, 2, 3, 3}};
            saved.bridgeLists = {kTurned, kind};
            Write(FileTexts(DiskOf({cards, {}, {}, {}}, saved)));
            const std::string left = Get(CardFile("br1"));
            BootOnce();
            EXPECT_EQ(Get(CardFile("br1")), left);

            Put(CardFile("br0"), "BRIDGEMEMBERS = eth1,eth2\n");
            BootOnce();
            EXPECT_EQ(Get(CardFile("br0")), "BRIDGEMEMBERS = eth0,eth1\n");
            const std::string kept = kind == kNoFile ? "" : "MTU = 1500\n";
            EXPECT_EQ(Get(CardFile("br1")), kept + "BRIDGEMEMBERS = eth2,eth3\n");
        }
    });
    checked_ += kinds.size();
}

TEST_F(SavedTopologyTest, EachTwoPropertiesInAllTheirPairs)
{
    enum { kOrder, kListed, kSwitch, kBridgeListed, kDeviceEnd };
    const size_t bond = kBondClaims.size();
    const size_t bridge = kBridgeClaims.size();
    const size_t mode = kBondModes.size();
    const size_t list = kListKinds;
    std::map<Row, std::vector<Row>> byDevice;
    for (const Row& row : AllPairs({3, 4, 2, 2, bond, bond, bond, bridge, bridge, bridge, list,
                                    list, mode, mode, list, list})
                              .Rows()) {
        const auto end = row.begin() + kDeviceEnd;
        byDevice[Row(row.begin(), end)].push_back(Row(end, row.end()));
    }
    for (const auto& [of, rows] : byDevice) {
        Device device = {kOrders[of[kOrder]], kListedBonds[of[kListed]], {}, {}};
        if (of[kSwitch] == 1) device.switches = {"eth2"};
        if (of[kBridgeListed] == 1) device.bridges = {"br0"};
        std::vector<Disk> disks;
        for (const Row& row : rows) {
            Saved saved{{row[0], row[1], row[2]}, {row[3], row[4], row[5]}};
            saved.bondLists = {static_cast<int>(row[6]), static_cast<int>(row[7])};
            saved.bondModes = {row[8], row[9]};
            saved.bridgeLists = {static_cast<int>(row[10]), static_cast<int>(row[11])};
            disks.push_back(DiskOf(device, saved));
        }
        CheckAll(device, disks);
    }
}
