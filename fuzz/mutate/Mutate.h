// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// Changes of inputs that keep to their format, for searching: libFuzzer's own change bytes, and
// most of what they make is refused at the door.

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace fuzz {

using Random = std::minstd_rand;

/// An input while it is changed.
struct Draft {
    uint8_t* data;
    size_t size;
    size_t room;
};

/// A change by libFuzzer, of bytes alone. Returns the new size.
size_t ChangeBytes(uint8_t* data, size_t size, size_t room);

/// The same for a text, which gets at most `longest` bytes.
std::string Changed(std::string_view text, size_t longest);

/// True once in so many times.
bool OneIn(Random& random, unsigned times);

size_t Below(Random& random, size_t count);

/// Puts a text back into the input, behind the first `head` bytes. Returns the new size.
size_t Store(const Draft& draft, size_t head, std::string_view text);

/// Files of lines: what stands in front of them in an input, and lines that their readers know.
struct LineFormat {
    /// Bytes in front of the lines.
    size_t (*head)(const uint8_t* data, size_t size);
    std::vector<const char*> lines;
};

/// Adds, drops, moves and changes lines. Returns the new size.
size_t ChangeLines(const Draft& draft, unsigned seed, const LineFormat& format);

/// Lines of setting files, for all that read them.
extern const std::vector<const char*> kSettingLines;

}  // namespace fuzz

extern "C" size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t room);
extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t room, unsigned seed);
