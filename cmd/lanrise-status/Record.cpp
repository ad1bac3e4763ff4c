// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Record.h"

#include "Support/Text.h"

using namespace vorlix;

namespace status {

const Interface* Find(const Device& device, const char* name)
{
    for (int i = 0; i < device.count; ++i) {
        if (Equal(device.list[i].name, name)) return &device.list[i];
    }
    return nullptr;
}

const Interface* FindIndex(const Device& device, int index)
{
    for (int i = 0; i < device.count && index != 0; ++i) {
        if (device.list[i].live.index == index) return &device.list[i];
    }
    return nullptr;
}

Interface* Enter(Device* device, const char* name)
{
    const Interface* known = Find(*device, name);
    if (known != nullptr) return &device->list[known - device->list];
    if (device->count >= kMaxRows) {
        ++device->left;
        return nullptr;
    }
    Interface& entry = device->list[device->count++];
    CopyText(entry.name, name);
    if (Contains(name, "bond")) {
        entry.kind = Kind::Bond;
    } else if (Contains(name, "br")) {
        entry.kind = Kind::Bridge;
    }
    return &entry;
}

bool AreFilesHidden(const Device& device)
{
    if (device.isFolderForbidden) return true;

    for (int i = 0; i < device.count; ++i) {
        if (device.list[i].saved.file == FileState::Unreadable) return true;
    }
    return false;
}

bool IsWholeRead(const Device& device)
{
    return device.hasFolder && !AreFilesHidden(device) &&
           device.resolvers.file != FileState::Unreadable &&
           device.backup.state != MemoryState::Forbidden;
}

bool IsPresent(const Device& device, const char* name)
{
    // Not written; the search hands out places in the list.
    return FindWordInLine(const_cast<char*>(device.present), name, ',') != nullptr;
}

Members LiveMembers(const Device& device, const Interface& master)
{
    Members members;
    for (int i = 0; i < device.count && members.count < kMaxMembers; ++i) {
        const Interface& entry = device.list[i];
        if (master.live.index == 0 || entry.live.master != master.live.index) continue;
        CopyText(members.names[members.count++], entry.name);
    }
    return members;
}

}  // namespace status
