// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "mutate/Mutate.h"

#include "Backup.h"

#include <algorithm>
#include <cstring>

namespace {

/// Lines of settings, and those that begin a file.
std::vector<const char*> Known()
{
    static const char* const files[] = {"@a", "@b", "@c", "@d", "@e", "@f", "@g", "@h", "@i", "@j",
                                        "@k", "@l", "@m", "@n", "@o", "@p", "@q", "@r", "@s", "@t"};
    static const char* const others[] = {"nameserver 8.8.8.8",
                                         "nameserver 2001:4860:4860::8888",
                                         "eth3 = 2",
                                         "eth3 = 1",
                                         "eth0 = 0",
                                         "BONDMEMBERS = eth1,eth2",
                                         "BRIDGEMEMBERS = eth1,eth2,eth3",
                                         "BRIDGEMEMBERS = eth1,eth2"};
    std::vector<const char*> lines = fuzz::kSettingLines;
    for (int times = 0; times < 3; ++times) {
        lines.insert(lines.end(), std::begin(files), std::end(files));
    }
    lines.insert(lines.end(), std::begin(others), std::end(others));
    return lines;
}

}  // namespace

size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t room, unsigned seed)
{
    // The cards, and the block of the backup memory behind its length.
    static const fuzz::LineFormat format = {[](const uint8_t* bytes, size_t count) {
                                                return count < 2
                                                           ? count
                                                           : 2 + std::min<size_t>(bytes[1], 16);
                                            },
                                            Known()};
    size = fuzz::ChangeLines({data, size, room}, seed, format);
    if (size >= 18 && data[1] >= 16 && seed % 4 != 0) {
        const uint32_t sum = CRCCalcu(data + 6, 12);
        memcpy(data + 2, &sum, sizeof(sum));
    }
    return size;
}
