// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

/// What follows from the record: where the stores differ, and what a boot would repair now.

#include "Record.h"

namespace status {

constexpr int kMaxFindings = 160;
constexpr size_t kFindingSize = 200;

struct Finding {
    Name name = {};  // of the interface; empty: the device's
    char text[kFindingSize] = {};
};

/// A list of sentences. What has no room is counted.
struct Findings {
    int count = 0;
    Finding list[kMaxFindings];

    __attribute__((format(printf, 3, 4))) void Add(const char* name, const char* format, ...);
};

/// Where kernel, setting files and backup memory differ.
void Compare(const Device& device, Findings* findings);

/// What `lanrise` would repair in the setting files, the backup memory and the routes if it ran
/// now.
void Foretell(const Device& device, Findings* findings);

/// What could not be looked at.
void TellHidden(const Device& device, Findings* findings);

/// The same, and what is no difference, but worth a word: interfaces that are not
/// looked at, a system that asks other resolvers.
void Remark(const Device& device, Findings* findings);

/// "10.0.0.2/24", or with the mask in full when its bits are not in one row. `text` holds 34 bytes.
constexpr size_t kAddressSize = 34;
void PrintAddress(uint32_t address, uint32_t mask, char (&text)[kAddressSize]);

/// "eth0,eth1". Cut with "..." when it does not fit.
constexpr size_t kJoinedSize = 96;
void Join(const Members& members, char (&text)[kJoinedSize]);

/// "balance-rr", or "mode 9" for a number that has no name.
constexpr size_t kModeSize = 20;
void PrintMode(int mode, char (&text)[kModeSize]);

/// "CMOS", "RTC", "SRAM", "none".
const char* TextOf(MemoryKind kind);

/// True when both lists hold the same names, in any order.
bool HoldSame(const Members& left, const Members& right);

}  // namespace status
