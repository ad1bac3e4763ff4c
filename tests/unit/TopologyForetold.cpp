// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "TopologyForetold.h"

#include <algorithm>
#include <cstdlib>
#include <sstream>

namespace foretold {

namespace {

std::string FileName(const std::string& name)
{
    if (name == "eth0") return "network";
    return "network" + (name == "eth1" ? "1" : name);
}

Names Split(const std::string& text)
{
    Names names;
    std::istringstream tokens(text);
    for (std::string name; std::getline(tokens, name, ',');) {
        if (!name.empty()) names.push_back(name);
    }
    return names;
}

bool Among(const Names& names, const std::string& name)
{
    return std::count(names.begin(), names.end(), name) != 0;
}

/// A value that can be read: not empty, and shorter than the reader's buffer.
std::optional<std::string> Value(const Disk& disk, const std::string& name, const std::string& key,
                                 size_t size)
{
    const auto file = disk.find(name);
    if (file == disk.end()) return std::nullopt;
    for (const auto& [present, value] : file->second) {
        if (present != key) continue;
        if (value.empty() || value.size() >= size) return std::nullopt;
        return value;
    }
    return std::nullopt;
}

void Save(Disk& disk, const std::string& name, const std::string& key, const std::string& value)
{
    File& file = disk[name];
    file.erase(std::remove(file.begin(), file.end(), kForeign), file.end());
    for (Line& line : file) {
        if (line.first != key) continue;
        line.second = value;
        return;
    }
    file.emplace_back(key, value);
}

/// Mode of a bond, when there is one that begins as a number.
std::optional<int> Mode(const Disk& disk, const std::string& bond)
{
    const auto value = Value(disk, bond, "BONDMODE", 16);
    if (!value || value->front() < '0' || value->front() > '9') return std::nullopt;
    return std::atoi(value->c_str());
}

bool InOrder(const std::optional<std::string>& list, const Names& members)
{
    if (!list) return false;
    const Names listed = Split(*list);
    return listed.size() == members.size() &&
           std::all_of(listed.begin(), listed.end(),
                       [&](const std::string& name) { return Among(members, name); });
}

/// The bond that a card belongs to by its own file: one that is listed.
std::optional<std::string> BondOf(const Device& device, const Disk& disk, const std::string& card)
{
    if (!Flag(disk, card, "BONDED")) return std::nullopt;
    const std::string name = Value(disk, card, "BONDNAME", 16).value_or("bond0");
    if (!Holds(name, "bond") || !Among(device.bonds, name)) return std::nullopt;
    return name;
}

/// The bridge that a card belongs to by its own file, listed or not.
std::optional<std::string> BridgeOf(const Disk& disk, const std::string& card)
{
    const auto name = Value(disk, card, "BRIDGENAME", 16);
    if (!Flag(disk, card, "BRIDGEEDED") || !name || !Holds(*name, "br")) return std::nullopt;
    return name;
}

void ConvertOldModes(const Device& device, Disk& disk)
{
    const std::map<int, int> present = {{1, 1}, {2, 0}, {3, 6}, {4, 5}, {5, 4}, {6, 2}, {7, 3}};
    for (const std::string& bond : device.bonds) {
        const auto old = Mode(disk, bond);
        if (!IsOldBondFile(disk, bond) || !old || present.count(*old) == 0) continue;
        Save(disk, bond, "BONDMODE", std::to_string(present.at(*old)));
    }
}

void SettleBonds(const Device& device, Disk& disk)
{
    constexpr unsigned kClaimable = 31;
    constexpr unsigned kRepairable = 15;
    Members members = BondMembers(device, disk);

    for (const std::string& card : device.cards) {
        const auto bond = BondOf(device, disk, card);
        const unsigned number = bond ? NumberBehind(*bond, 4) : 0;
        const bool alone = number <= kRepairable && members[number].size() == 1;
        const bool unnamed = !Value(disk, card, "BONDNAME", 16);
        if (bond && unnamed) Save(disk, card, "BONDNAME", *bond);
        if (bond) Save(disk, card, "WORKMODE", "1");
        if (bond && number <= kClaimable && !alone) continue;

        Save(disk, card, "BONDED", "0");
        Save(disk, card, "BONDNAME", "");
    }

    for (const std::string& bond : device.bonds) {
        const unsigned number = NumberBehind(bond, 4);
        if (number > kRepairable) continue;
        Names cards = members[number];
        const bool stands = cards.size() > 1;
        if (!stands || !Mode(disk, bond)) Save(disk, bond, "BONDMODE", stands ? "1" : "");
        if (stands && InOrder(Value(disk, bond, "BONDMEMBERS", 256), cards)) continue;

        const auto first = std::find(cards.begin(), cards.end(), "eth0");
        if (first != cards.end()) std::iter_swap(first, cards.begin());
        Save(disk, bond, "BONDMEMBERS", stands ? Join(cards) : "");
    }
}

/// Where the walk over the bridges ends: at the first one in order, else behind the last number.
unsigned LastBridgeLookedAt(const Device& device, const Disk& disk)
{
    for (const auto& [number, cards] : BridgeMembers(device, disk)) {
        const std::string bridge = "br" + std::to_string(number);
        if (number <= 31 && cards.size() > 1 &&
            InOrder(Value(disk, bridge, "BRIDGEMEMBERS", 240), cards)) {
            return number;
        }
    }
    return 32;
}

void SettleBridges(const Device& device, Disk& disk)
{
    Members members = BridgeMembers(device, disk);
    const unsigned last = LastBridgeLookedAt(device, disk);

    for (const std::string& card : device.cards) {
        const auto bridge = BridgeOf(disk, card);
        const unsigned number = bridge ? NumberBehind(*bridge, 2) : 0;
        if (bridge) Save(disk, card, "WORKMODE", "3");
        if (bridge && (number > 31 || number > last || members[number].size() > 1)) continue;

        Save(disk, card, "BRIDGEEDED", "0");
        Save(disk, card, "BRIDGENAME", "");
    }

    for (unsigned number = 0; number < last; ++number) {
        const std::string bridge = "br" + std::to_string(number);
        if (members[number].size() < 2) {
            disk.erase(bridge);
        } else {
            Save(disk, bridge, "BRIDGEMEMBERS", Join(members[number]));
        }
    }
}

/// False when a card had to leave both its bond and its bridge.
bool SettleWorkModes(const Device& device, Disk& disk)
{
    bool apart = true;
    for (const std::string& card : device.cards) {
        const bool bonded = Flag(disk, card, "BONDED");
        const bool bridged = Flag(disk, card, "BRIDGEEDED");
        const bool torn = bonded && bridged;
        if (torn) {
            for (const char* key : {"BRIDGEEDED", "BONDED"}) Save(disk, card, key, "0");
            for (const char* key : {"BRIDGENAME", "BONDNAME"}) Save(disk, card, key, "");
        }
        const char* alone = device.switches.count(card) != 0 ? "2" : "0";
        const char* mode = torn ? "0" : bonded ? "1" : bridged ? "3" : alone;
        Save(disk, card, "WORKMODE", mode);
        apart = apart && !torn;
    }
    return apart;
}

}  // namespace

const Line kForeign = {"remark", "by hand"};

std::map<std::string, std::string> FileTexts(const Disk& disk)
{
    std::map<std::string, std::string> texts;
    for (const auto& [name, file] : disk) texts[FileName(name)] = Text(file);
    return texts;
}

std::string Text(const File& file)
{
    std::string text;
    for (const auto& [key, value] : file) text += key + " = " + value + "\n";
    return text;
}

std::string Join(const Names& names)
{
    std::string text;
    for (const std::string& name : names) text += (text.empty() ? "" : ",") + name;
    return text;
}

bool Holds(const std::string& name, const char* word)
{
    return name.find(word) != std::string::npos;
}

bool Flag(const Disk& disk, const std::string& card, const std::string& key)
{
    const auto value = Value(disk, card, key, 8);
    return value && value->front() == '1';
}

unsigned NumberBehind(const std::string& name, size_t letters)
{
    return static_cast<unsigned>(std::atoi(name.c_str() + std::min(letters, name.size())));
}

Members BondMembers(const Device& device, const Disk& disk)
{
    Members members;
    for (const std::string& card : device.cards) {
        const auto bond = BondOf(device, disk, card);
        if (bond) members[NumberBehind(*bond, 4)].push_back(card);
    }
    return members;
}

Members BridgeMembers(const Device& device, const Disk& disk)
{
    Members members;
    for (const std::string& card : device.cards) {
        const auto bridge = BridgeOf(disk, card);
        if (bridge) members[NumberBehind(*bridge, 2)].push_back(card);
    }
    return members;
}

bool IsOldBondFile(const Disk& disk, const std::string& bond)
{
    const auto file = disk.find(bond);
    return file != disk.end() &&
           std::none_of(file->second.begin(), file->second.end(),
                        [](const Line& line) { return line.first == "BONDMEMBERS"; });
}

Disk Boot(const Device& device, Disk disk)
{
    ConvertOldModes(device, disk);
    for (int round = 0; round < 2; ++round) {
        SettleBonds(device, disk);
        SettleBridges(device, disk);
        if (SettleWorkModes(device, disk)) break;
    }
    return disk;
}

}  // namespace foretold
