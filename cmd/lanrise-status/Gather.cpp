// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Read.h"
#include "Support/Handles.h"
#include "Support/KeyFile.h"
#include "Support/Text.h"

#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>

using namespace vorlix;

namespace status {

namespace {

constexpr int kTries = 250;
constexpr timespec kPause = {0, 20'000'000};  // longer than a boot needs for a file

/// The setting files at one moment.
struct Moment {
    uint64_t stamp = 0;  // changes with every change of a file
    bool isSaving = false;
};

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

/// Asks for the lock that whoever saves a setting holds, and takes none.
bool IsLocked(int folder, const char* name)
{
    const Fd file(openat(folder, name, O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct flock holder {};
    holder.l_type = F_RDLCK;
    holder.l_whence = SEEK_SET;
    return file.Ok() && fcntl(file.Get(), F_GETLK, &holder) == 0 && holder.l_type != F_UNLCK;
}

Moment LookAtSettings()
{
    Moment moment;
    const Directory folder(opendir(kConfigFolder));
    if (folder == nullptr) return moment;

    const int descriptor = dirfd(folder.get());
    while (const dirent* entry = readdir(folder.get())) {
        struct stat status {};
        if (fstatat(descriptor, entry->d_name, &status, 0) != 0) continue;
        uint64_t file = Mixed(status.st_ino, static_cast<uint64_t>(status.st_size));
        file = Mixed(file, static_cast<uint64_t>(status.st_mtim.tv_sec));
        moment.stamp += Mixed(file, static_cast<uint64_t>(status.st_mtim.tv_nsec));
        // Between its old and its new text a file is empty, and locked.
        const bool isEmpty = S_ISREG(status.st_mode) && status.st_size == 0;
        if (isEmpty && IsLocked(descriptor, entry->d_name)) moment.isSaving = true;
    }
    return moment;
}

}  // namespace

const Device& Gather(const char** failure)
{
    for (int i = 1;; ++i) {
        const Moment before = LookAtSettings();
        if (!before.isSaving || i == kTries) {
            Device* device = Fresh<Device>();
            *failure = GatherOnce(device);
            const Moment after = LookAtSettings();
            const bool isSettled = !after.isSaving && after.stamp == before.stamp;
            if (*failure != nullptr || isSettled || i == kTries) return *device;
        }
        (void)nanosleep(&kPause, nullptr);  // half a change is no news
    }
}

}  // namespace status
