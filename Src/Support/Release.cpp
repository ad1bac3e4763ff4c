// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Says in the file itself which release it is: `readelf --notes` answers for a program or a library
// that was found on a device. It is linked into each of them, not into the archive.

#include <Pal/Version.h>

#include <elf.h>

namespace {

constexpr char kOwner[] = "Vorlix";
constexpr char kRelease[] = VORLIX_VERSION;

constexpr unsigned Padded(unsigned size)
{
    return (size + 3) & ~3U;
}

/// The record that `readelf` knows; owner and text are padded to words.
struct ReleaseNote {
    Elf32_Nhdr head;
    char owner[Padded(sizeof(kOwner))];
    char release[Padded(sizeof(kRelease))];
};

[[gnu::used, gnu::section(".note.vorlix.release"), gnu::aligned(4)]] constexpr ReleaseNote kNote = {
    {sizeof(kOwner), sizeof(kRelease), 1}, "Vorlix", VORLIX_VERSION};

}  // namespace
