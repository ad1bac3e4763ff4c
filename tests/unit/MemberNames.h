// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// Lists of members in the forms that the operations on bonds and bridges take.

#include <cstring>
#include <string>
#include <vector>

namespace fake {

using Lines = std::vector<std::string>;

/// A caller's list.
class Members {
public:
    explicit Members(Lines names) : names_(std::move(names))
    {
        for (std::string& name : names_) pointers_.push_back(name.data());
    }
    char** Get() { return pointers_.data(); }
    const char** Const() { return const_cast<const char**>(pointers_.data()); }
    int Count() const { return static_cast<int>(names_.size()); }

private:
    Lines names_;
    std::vector<char*> pointers_;
};

/// A caller's buffers, each filled with '#' until an operation writes it.
struct Table {
    Table()
    {
        memset(names, '#', sizeof(names));
        for (int i = 0; i < 32; ++i) pointers[i] = names[i];
    }
    Lines First(int count) const { return Lines(pointers, pointers + count); }

    char names[32][16];
    char* pointers[32];
};

}  // namespace fake
