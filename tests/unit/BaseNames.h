// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// What the tests of the listings share.

#include "fake/World.h"

#include <cstring>

constexpr int kEntries = 32;
constexpr char kMarker = '#';

/// An array of names with one entry more than callers have, to see that it is never touched.
struct Names {
    char entries[kEntries + 1][16];

    Names() { memset(entries, kMarker, sizeof(entries)); }
    ~Names() { EXPECT_EQ(Bytes(kEntries), std::string(16, kMarker)) << "behind the array"; }
    Names(const Names&) = delete;
    Names& operator=(const Names&) = delete;

    std::string Bytes(int entry) const { return std::string(entries[entry], 16); }

    fake::Texts First(int count) const
    {
        fake::Texts names;
        for (int i = 0; i < count; ++i) names.emplace_back(entries[i]);
        return names;
    }

    bool AllClear(int from) const
    {
        for (int i = from; i < kEntries; ++i) {
            if (Bytes(i) != std::string(16, '\0')) return false;
        }
        return true;
    }

    bool Untouched() const
    {
        return std::string(entries[0], sizeof(entries)) == std::string(sizeof(entries), kMarker);
    }
};

inline void AddCards(const fake::Texts& names)
{
    for (const std::string& name : names) fake::kernel.Add(name);
}

/// Names "<kind>0" and so on.
inline fake::Texts Many(const std::string& kind, int count)
{
    fake::Texts names;
    for (int i = 0; i < count; ++i) names.push_back(kind + std::to_string(i));
    return names;
}
