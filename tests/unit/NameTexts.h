// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// Lists of names, as tests write them and as the operations on settings take them.

#include <string>
#include <vector>

namespace fake {

using Texts = std::vector<std::string>;

/// Pointers to the texts, as the operations take them.
inline std::vector<const char*> Pointers(const Texts& texts)
{
    std::vector<const char*> pointers;
    for (const std::string& text : texts) pointers.push_back(text.c_str());
    pointers.push_back(nullptr);  // never asked for
    return pointers;
}

inline std::string Join(const Texts& texts)
{
    std::string joined;
    for (const std::string& text : texts) joined += (joined.empty() ? "" : ",") + text;
    return joined;
}

/// Names that make a list of `length` characters when they are joined by commas.
inline Texts NamesOfLength(size_t length)
{
    Texts names;
    for (size_t rest = length; rest > 0;) {
        const size_t size = rest > 16 ? 10 : rest;
        names.emplace_back(size, static_cast<char>('a' + names.size() % 26));
        rest -= rest > 16 ? size + 1 : size;
    }
    return names;
}

}  // namespace fake
