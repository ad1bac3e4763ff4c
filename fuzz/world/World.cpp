// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The product's variables lie in one piece (State.ld), which is kept as it was before the first
// input and put back before each.

#include "world/World.h"

#include "world/State.h"

#include <cstdint>
#include <cstring>
#include <iterator>

namespace fuzz {

namespace {

struct Block {
    uintptr_t words[8];
};

extern "C" Block fuzz_state_begin[];  // of the linker, as the end
extern "C" Block fuzz_state_end[];

/// Word by word: the places between variables are no memory to the sanitizers, and their `memcpy`
/// would say so, as which clang copies a whole block when it does not optimise.
void CopyBlocks(Block* to, const Block* from, size_t count)
{
    for (size_t i = 0; i < count; ++i) {
        for (size_t word = 0; word < std::size(to[i].words); ++word)
            to[i].words[word] = from[i].words[word];
        __asm__ volatile("" : : : "memory");  // or the compiler makes it a `memcpy`
    }
}

std::vector<Block> AtStart()
{
    std::vector<Block> blocks(static_cast<size_t>(fuzz_state_end - fuzz_state_begin));
    CopyBlocks(blocks.data(), fuzz_state_begin, blocks.size());
    return blocks;
}

fake::Kernel TwoCards()
{
    fake::Kernel kernel;
    for (const char* name : {"eth0", "eth1"}) kernel.Add(name);
    return kernel;
}

}  // namespace

void NextProcess()
{
    static const std::vector<Block> start = AtStart();
    CopyBlocks(fuzz_state_begin, start.data(), start.size());
    ResetCalls();
}

void FreshWorld()
{
    static const fake::Kernel kernel = TwoCards();
    static const fake::Rtnetlink rtnetlink;
    NextProcess();
    ResetFiles();
    ForgetRequests();
    fake::kernel = kernel;
    fake::rtnetlink = rtnetlink;
    SetClock(1000000);
    OnCommand(nullptr);
    FailRead(0, 0);
    RefuseToOpen("");
    FailReceive(0, 0);
    FailRequests(0);
    arrivals.clear();
}

}  // namespace fuzz

/// What leaks is told by the world (`HeapBlocks`). Memory that was given back is kept from use for
/// some inputs, not for a quarter of a gigabyte, which no cache holds. Where memory was taken is
/// told when the input is tried again with ASAN_OPTIONS=malloc_context_size=30.
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options()
{
    return "detect_leaks=0:quarantine_size_mb=1:thread_local_quarantine_size_kb=64:"
           "malloc_context_size=0:allocator_release_to_os_interval_ms=-1";
}
