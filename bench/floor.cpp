// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The floor of a boot: makes the kernel calls that a boot is made of, from the list that bench/boot
// has taken down, and nothing else.
//
// usage: floor LIST
//
// The exit status is 1 when a call went another way than the one that was taken down.

#include "replay.h"

#include <fcntl.h>

namespace {

constexpr size_t kMostBytes = size_t{1} << 20;

alignas(8) char list[kMostBytes];

}  // namespace

int main(int argc, char** argv)
{
    const int file = argc == 2 ? open(argv[1], O_RDONLY) : -1;
    const ssize_t size = file >= 0 ? read(file, list, sizeof(list)) : -1;
    if (size <= 0 || size == sizeof(list)) return 2;
    close(file);

    record::Replay replay(list);
    return replay.Run() ? 0 : 1;
}
