// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

#include <algorithm>
#include <cstddef>

namespace vorlix {

/// A caller's array of names, walked in its order. A count below 1 is an empty list.
class NameList {
public:
    NameList(const char* const* names, int count) : names_(names), count_(count < 0 ? 0 : count) {}

    const char* const* begin() const { return names_; }
    const char* const* end() const { return names_ + count_; }
    bool HoldsNull() const { return std::find(begin(), end(), nullptr) != end(); }

private:
    const char* const* names_;
    int count_;
};

/// Room for names, with the table of pointers to it that the member operations fill, and how many
/// they have filled.
template <int kCount, size_t kSize>
class NameTable {
public:
    NameTable()
    {
        for (int i = 0; i < kCount; ++i) pointers_[i] = names_[i];
    }
    NameTable(const NameTable&) = delete;
    NameTable& operator=(const NameTable&) = delete;

    auto Names() -> char (*)[kSize] { return names_; }
    char** Pointers() { return pointers_; }
    NameList First(int count) const { return {pointers_, count}; }

    /// Fills the table by an operation that lists the members of `master`.
    bool Read(bool (*list)(const char* master, char** names, int* count), const char* master,
              int capacity = kCount)
    {
        count_ = capacity;
        return list(master, pointers_, &count_);
    }

    /// Fills it by an operation that lists interfaces.
    bool Read(bool (*list)(char (*names)[kSize], int* count))
    {
        count_ = kCount;
        return list(names_, &count_);
    }

    /// What the last `Read` has filled.
    int Count() const { return count_; }
    NameList All() const { return First(count_); }

private:
    char names_[kCount][kSize] = {};
    char* pointers_[kCount];
    int count_ = 0;
};

}  // namespace vorlix
