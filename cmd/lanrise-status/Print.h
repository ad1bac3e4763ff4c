// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

/// The faces of the record. Each writes to a stream; whether all of it went through is asked there.

#include "Findings.h"

#include <cstdio>

namespace status {

/// What there is to show.
struct Report {
    const Device& device;
    const Findings& differences;
    const Findings& repairs;
    const Findings& remarks;
};

/// Where it is shown.
struct Screen {
    FILE* out;
    int columns;
    bool hasColour;
};

void PrintTable(const Report& report, const Screen& screen);
void PrintCard(const Report& report, const Interface& entry, const Screen& screen);
void PrintJson(const Report& report, FILE* out);

/// One line for each difference and each repair.
void PrintCheck(const Report& report, FILE* out);

// ---- for the faces

/// A text with a question mark in the place of each byte that a terminal might not take as a
/// letter.
struct Shown {
    explicit Shown(const char* from);
    char text[kFindingSize];
};

enum class Colour : unsigned char { Plain, Bold, Dim, Good, Bad };

void Begin(const Screen& screen, Colour colour);
void End(const Screen& screen, Colour colour);

/// A label, and behind it a text that is broken between words at the edge of the screen.
void PrintLine(const Screen& screen, const char* label, int indent, const char* text,
               Colour colour = Colour::Plain);

/// Sentences of one interface, or of all when `name` is NULL, under a heading. Nothing for none.
void PrintFindings(const Screen& screen, const char* heading, const Findings& findings,
                   const char* name);

/// "up", "no link", "down", "absent".
const char* StateOf(const Interface& entry);

/// "default", "bond", "in br0", "claims br0", …; empty for a card that is nothing of it.
constexpr size_t kRoleSize = 40;
void PrintRole(const Device& device, const Interface& entry, char (&text)[kRoleSize]);

/// "10.0.0.2/24", or a dash.
void PrintAddressOf(const IPv4& ipv4, char (&text)[kAddressSize]);
void PrintGatewayOf(const IPv4& ipv4, char (&text)[kAddressSize]);

bool IsDefault(const Device& device, const Interface& entry);

/// What the boot finds of the backup memory, in words.
const char* TextOf(const Backup& backup);

}  // namespace status
