// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The kernel calls of a program, as they were made: taken down by bench/boot, made again by
// bench/floor. A boot makes few different calls many times, so each is kept once, and the list of
// them is short: who makes them again pays for the calls, not for reading what they are.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace record {

/// Places of a call whose value is not the same in another process.
enum Place : int8_t { kNowhere = -1 };

/// A call that is none: a shell that runs the command in the data, and is waited for.
constexpr int32_t kShell = -1;

/// A program that asks whether this is there begins its list again: what was before is not meant.
constexpr char kFromHere[] = "/from-here";

/// The list begins with this. Behind it stand the places of the calls in the order in which they
/// are made, each a `uint32_t` that counts bytes from the list's begin, and then the calls.
struct Head {
    uint32_t calls;   // how many are made
    uint32_t unused;  // what follows is aligned
};

/// One call, with `size` bytes of data behind it, filled up to a multiple of 8. What another
/// process has elsewhere is 0.
struct Call {
    int32_t number;
    int32_t result;     // of one that opens, the descriptor; else 0, or -1 for a failure
    int8_t descriptor;  // which argument is one
    int8_t data;        // which argument points to the data
    int8_t room;        // which argument points to where the kernel writes
    int8_t opens;       // 1: the result is a new descriptor
    int16_t pointer;    // where the data point to their own second part, or -1
    int16_t firstPart;  // bytes of the first part
    uint32_t size;
    uint64_t arguments[4];  // no call that is kept has more
};
static_assert(sizeof(Call) % 8 == 0 && alignof(Call) == 8, "calls and data lie in one array");

constexpr size_t Padded(size_t size)
{
    return (size + 7) & ~size_t{7};
}

/// What a run of a program asked of the kernel.
struct Run {
    int calls = 0;       // all of them, from its start
    std::string replay;  // those that its task is made of, as a list
    int kept = 0;        // number of these
    std::string shells;  // the shells among them alone
    int children = 0;    // processes started
    long peakKb = 0;     // most memory it had
};

/// Runs a command under trace.
Run Take(const std::vector<std::string>& command);

}  // namespace record
