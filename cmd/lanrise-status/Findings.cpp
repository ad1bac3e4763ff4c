// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Findings.h"

#include "Support/Text.h"

#include <cstdarg>
#include <cstdio>

#include <arpa/inet.h>

using namespace vorlix;

namespace status {

namespace {

constexpr const char* kModes[] = {"balance-rr", "active-backup", "balance-xor", "broadcast",
                                  "802.3ad",    "balance-tlb",   "balance-alb"};

bool Holds(const Members& members, const char* name)
{
    for (int i = 0; i < members.count; ++i) {
        if (Equal(members.names[i], name)) return true;
    }
    return false;
}

bool HoldsAll(const Members& members, const Members& others)
{
    for (int i = 0; i < others.count; ++i) {
        if (!Holds(members, others.names[i])) return false;
    }
    return true;
}

}  // namespace

void Findings::Add(const char* name, const char* format, ...)
{
    if (count >= kMaxFindings) return;

    Finding& finding = list[count++];
    CopyText(finding.name, name);
    va_list arguments;
    va_start(arguments, format);
    (void)vsnprintf(finding.text, sizeof(finding.text), format, arguments);
    va_end(arguments);
}

void PrintAddress(uint32_t address, uint32_t mask, char (&text)[kAddressSize])
{
    char dotted[kIPv4TextSize] = {};
    char dottedMask[kIPv4TextSize] = {};
    (void)PrintIPv4(address, dotted);
    (void)PrintIPv4(mask, dottedMask);
    const int bits = __builtin_popcount(mask);
    const uint32_t row = bits == 0 ? 0 : htonl(~uint32_t{0} << static_cast<unsigned>(32 - bits));
    if (row == mask) {
        FormatText(text, sizeof(text), "%s/%d", dotted, bits);
    } else {
        FormatText(text, sizeof(text), "%s/%s", dotted, dottedMask);
    }
}

void Join(const Members& members, char (&text)[kJoinedSize])
{
    text[0] = '\0';
    for (int i = 0; i < members.count; ++i) {
        const char* name = members.names[i];
        if (strlen(text) + strlen(name) + sizeof(",...") > sizeof(text)) {
            Strcat(text, sizeof(text), "...", nullptr);
            return;
        }
        Strcat(text, sizeof(text), name, nullptr);
        if (i + 1 < members.count) Strcat(text, sizeof(text), ",", nullptr);
    }
    if (members.count == 0) CopyText(text, "none");
}

void PrintMode(int mode, char (&text)[kModeSize])
{
    constexpr int kCount = sizeof(kModes) / sizeof(kModes[0]);
    if (mode >= 0 && mode < kCount) {
        CopyText(text, kModes[mode]);
    } else {
        FormatText(text, sizeof(text), "mode %d", mode);
    }
}

const char* TextOf(MemoryKind kind)
{
    switch (kind) {
    case MemoryKind::Cmos: return "CMOS";
    case MemoryKind::Rtc: return "RTC";
    case MemoryKind::Sram: return "SRAM";
    default: return "none";
    }
}

bool HoldSame(const Members& left, const Members& right)
{
    return HoldsAll(left, right) && HoldsAll(right, left);
}

}  // namespace status
