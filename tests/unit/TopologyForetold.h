// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// A second opinion on what a boot makes of saved bonds and bridges. It shares nothing with the
// product: whole outcomes over maps of keys, instead of a walk that reads and writes files.

#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace foretold {

using Line = std::pair<std::string, std::string>;  // key and value
using File = std::vector<Line>;
using Disk = std::map<std::string, File>;  // by card, bond or bridge
using Names = std::vector<std::string>;
using Members = std::map<unsigned, Names>;  // by the number of the bond or bridge

struct Device {
    Names cards;  // in the order in which the kernel lists them
    Names bonds;
    Names bridges;
    std::set<std::string> switches;
};

/// A line that no release knows: it stays until the file is written, so it tells a write of what
/// stood there already from no write.
extern const Line kForeign;

/// The files as they lie in the folder of settings, by file name.
std::map<std::string, std::string> FileTexts(const Disk& disk);

std::string Text(const File& file);
std::string Join(const Names& names);
bool Holds(const std::string& name, const char* word);

/// True for a flag that is set.
bool Flag(const Disk& disk, const std::string& card, const std::string& key);

/// The number in a name, behind so many letters.
unsigned NumberBehind(const std::string& name, size_t letters);

/// The cards that belong to each bond, or bridge, by their own files.
Members BondMembers(const Device& device, const Disk& disk);
Members BridgeMembers(const Device& device, const Disk& disk);

/// True for a file of a release that kept no list of members.
bool IsOldBondFile(const Disk& disk, const std::string& bond);

/// What is saved after a boot.
Disk Boot(const Device& device, Disk disk);

}  // namespace foretold
