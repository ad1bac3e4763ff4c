// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// What the fuzz targets share: the bytes of an input taken apart, the world beneath the product,
// and properties that end the run when they do not hold.
//
// A target defines `LLVMFuzzerTestOneInput`. It is linked with libFuzzer to search, and with
// Replay.cpp to go through the kept inputs among the other tests.

#include "world/World.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace fuzz {

/// The bytes of one input, taken from the front. What is not there reads as 0 or as empty.
class Input {
public:
    Input(const uint8_t* data, size_t size) : data_(data), size_(size) {}

    uint8_t Byte();

    /// A number from 0 to `count` - 1.
    int Below(int count) { return Byte() % count; }

    /// At most `longest` bytes; the first one of them tells how many.
    std::string Bytes(size_t longest);

    /// As `Bytes`, each one turned into a character of `alphabet`: a text that may be saved.
    std::string Text(size_t longest, std::string_view alphabet);

    /// All that is left.
    std::string Rest();

private:
    const uint8_t* data_;
    size_t size_;
};

/// A dotted address that is never 0.0.0.0.
std::string Address(Input& input);

/// What is shown beside a property that does not hold. A target clears it for each input.
extern std::string notes;

/// Ends the run with the property's text.
[[noreturn]] void Broken(const char* property, const char* file, int line);

/// Lines as `fgets` gives them with a buffer of 256 bytes, each cut at its first NUL as a
/// string is. They last as long as the content.
std::vector<std::string_view> Lines(std::string_view content);

/// How many lines these are.
size_t CountLines(std::string_view content);

/// Whether two texts are the same; shows both when they are not.
bool Same(const std::string& now, const std::string& before);

/// A buffer of exactly `size` bytes on the heap, where a byte too far is seen, filled with 0x5a.
class Buffer {
public:
    explicit Buffer(size_t size);
    ~Buffer();
    Buffer(const Buffer&) = delete;
    Buffer& operator=(const Buffer&) = delete;

    char* Get() const { return bytes_; }

    /// True when a NUL stands within it.
    bool IsText() const;

    /// True when it was never written to.
    bool IsUntouched() const;

private:
    size_t size_;
    char* bytes_;
};

}  // namespace fuzz

#define HOLDS(property)                                                                            \
    ((property) ? static_cast<void>(0) : fuzz::Broken(#property, __FILE__, __LINE__))

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);
