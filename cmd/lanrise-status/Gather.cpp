// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Read.h"
#include "Support/Handles.h"
#include "Support/KeyFile.h"
#include "Support/Text.h"

#include <ctime>

#include <sys/stat.h>

using namespace vorlix;

namespace status {

namespace {

constexpr int kTries = 5;
constexpr long kPause = 20'000'000;  // ns: longer than a boot needs for a file

uint64_t Mixed(uint64_t stamp, uint64_t value)
{
    constexpr uint64_t kPrime = 0x100000001b3ULL;
    return (stamp ^ value) * kPrime;
}

const char* GatherOnce(Device* device)
{
    const char* failure = ReadKernel(device);
    if (failure != nullptr) return failure;

    ReadSettings(device);
    device->backup = ReadBackup();
    return nullptr;
}

}  // namespace

uint64_t StampOfSettings()
{
    uint64_t stamp = 0;
    const Directory folder(opendir(kConfigFolder));
    if (folder == nullptr) return stamp;

    while (const dirent* entry = readdir(folder.get())) {
        struct stat status {};
        if (fstatat(dirfd(folder.get()), entry->d_name, &status, 0) != 0) continue;
        uint64_t file = Mixed(status.st_ino, static_cast<uint64_t>(status.st_size));
        file = Mixed(file, static_cast<uint64_t>(status.st_mtim.tv_sec));
        stamp += Mixed(file, static_cast<uint64_t>(status.st_mtim.tv_nsec));
    }
    return stamp;
}

const Device& Gather(const char** failure)
{
    for (int i = 1;; ++i) {
        Device* device = Fresh<Device>();
        const uint64_t before = StampOfSettings();
        *failure = GatherOnce(device);
        if (*failure != nullptr || i == kTries || StampOfSettings() == before) return *device;

        const timespec pause = {0, kPause};
        (void)nanosleep(&pause, nullptr);  // somebody is saving: half a change is no news
    }
}

}  // namespace status
