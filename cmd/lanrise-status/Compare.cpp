// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Findings.h"
#include "Support/KeyFile.h"
#include "Support/Text.h"

#include <arpa/inet.h>

using namespace vorlix;

namespace status {

namespace {

// ---- one card

const char* MasterOf(const Device& device, const Interface& entry)
{
    const Interface* master = FindIndex(device, entry.live.master);
    return master == nullptr ? "" : master->name;
}

/// The bond or bridge that the card's file names; empty: none.
const char* ClaimedMaster(const Saved& saved)
{
    if (saved.bond.isMarked && saved.bond.hasName) return saved.bond.name;
    return saved.bridge.isMarked && saved.bridge.hasName ? saved.bridge.name : "";
}

void CompareMaster(const Device& device, const Interface& entry, Findings* findings)
{
    const char* live = MasterOf(device, entry);
    const char* saved = ClaimedMaster(entry.saved);
    if (entry.kind != Kind::Card || Equal(live, saved)) return;

    if (live[0] == '\0') {
        findings->Add(entry.name, "its file says member of %s, the kernel has it alone", saved);
    } else {
        findings->Add(entry.name, "the kernel has it in %s, its file says %s", live,
                      saved[0] == '\0' ? "that it stands alone" : saved);
    }
}

bool SameAddress(const IPv4& left, const IPv4& right)
{
    return left.hasAddress == right.hasAddress && left.address == right.address &&
           left.mask == right.mask;
}

void CompareAddress(const Interface& entry, Findings* findings)
{
    const IPv4& live = entry.live.ipv4;
    const IPv4& saved = entry.saved.ipv4;
    const bool isDown = !entry.live.up && saved.hasAddress;
    if (SameAddress(live, saved)) {
        if (isDown) findings->Add(entry.name, "it is down");
        return;
    }
    char liveText[kAddressSize] = "no address";
    char savedText[kAddressSize] = "none";
    if (live.hasAddress) PrintAddress(live.address, live.mask, liveText);
    if (saved.hasAddress) PrintAddress(saved.address, saved.mask, savedText);
    findings->Add(entry.name, "%sthe kernel has %s, the file %s", isDown ? "it is down; " : "",
                  liveText, savedText);
}

void CompareMtu(const Interface& entry, Findings* findings)
{
    if (entry.saved.mtu > 0 && entry.live.mtu != entry.saved.mtu) {
        findings->Add(entry.name, "the kernel has an MTU of %d, the file %d", entry.live.mtu,
                      entry.saved.mtu);
    }
}

void CompareBackup(const Interface& entry, const Backup& backup, Findings* findings)
{
    const IPv4& saved = entry.saved.ipv4;
    const IPv4& kept = backup.ipv4;
    if (backup.state != MemoryState::Good || !saved.isUsable) return;
    if (!kept.isUsable) {
        findings->Add(entry.name, "the file has an address, the backup memory none");
        return;
    }
    if (saved.address != kept.address || saved.mask != kept.mask) {
        char savedText[kAddressSize];
        char keptText[kAddressSize];
        PrintAddress(saved.address, saved.mask, savedText);
        PrintAddress(kept.address, kept.mask, keptText);
        findings->Add(entry.name, "the file has %s, the backup memory %s", savedText, keptText);
    }
    if (saved.gateway != kept.gateway) {
        char savedText[kIPv4TextSize] = {};
        char keptText[kIPv4TextSize] = {};
        (void)PrintIPv4(saved.gateway, savedText);
        (void)PrintIPv4(kept.gateway, keptText);
        findings->Add(entry.name, "the file has the gateway %s, the backup memory %s", savedText,
                      keptText);
    }
}

// ---- bonds and bridges

void CompareMembers(const Device& device, const Interface& entry, const char* what,
                    Findings* findings)
{
    const Members live = LiveMembers(device, entry);
    if (!entry.saved.hasMembers || HoldSame(live, entry.saved.members)) return;

    char liveText[kJoinedSize];
    char savedText[kJoinedSize];
    Join(live, liveText);
    Join(entry.saved.members, savedText);
    findings->Add(entry.name, "the kernel has the %s %s, the file %s", what, liveText, savedText);
}

void CompareBond(const Device& device, const Interface& entry, Findings* findings)
{
    CompareMembers(device, entry, "members", findings);
    const Saved& saved = entry.saved;
    if (saved.bondMode < 0 || entry.live.bondMode < 0 || saved.bondMode == entry.live.bondMode) {
        return;
    }
    char live[kModeSize];
    char file[kModeSize];
    PrintMode(entry.live.bondMode, live);
    PrintMode(saved.bondMode, file);
    findings->Add(entry.name, "the kernel has the mode %s, the file %s", live, file);
}

/// One that is saved with members and is not there.
void CompareMissing(const Interface& entry, Findings* findings)
{
    if (entry.saved.members.count < 2) return;

    char members[kJoinedSize];
    Join(entry.saved.members, members);
    findings->Add(entry.name, "it is saved with %s and not there", members);
}

void CompareInterface(const Device& device, const Interface& entry, Findings* findings)
{
    if (entry.saved.file == FileState::Unreadable) return;
    if (!entry.live.present) {
        CompareMissing(entry, findings);
        return;
    }
    if (!entry.isCounted) return;

    CompareMaster(device, entry, findings);
    // What is saved of a member rests while its bond or bridge has the network.
    if (entry.live.master == 0 && ClaimedMaster(entry.saved)[0] == '\0') {
        CompareAddress(entry, findings);
        CompareMtu(entry, findings);
    }
    if (entry.kind == Kind::Bond) CompareBond(device, entry, findings);
    if (entry.kind == Kind::Bridge) CompareMembers(device, entry, "ports", findings);
    if (Equal(entry.name, "eth0")) CompareBackup(entry, device.backup, findings);
}

// ---- the default route

const Route* DefaultRoute(const Device& device)
{
    for (int i = 0; i < device.routeCount; ++i) {
        if (device.routes[i].mask == 0) return &device.routes[i];
    }
    return nullptr;
}

void CompareDefault(const Device& device, Findings* findings)
{
    const Interface* card = Find(device, device.defaultCard);
    const bool isWanted =
        device.hasDefault && card != nullptr && card->saved.ipv4.hasGateway && card->live.present;
    const Route* route = DefaultRoute(device);
    if (route == nullptr) {
        if (isWanted) {
            findings->Add("", "there is no default route; the default card is %s",
                          device.defaultCard);
        }
        return;
    }
    const Interface* over = FindIndex(device, route->index);
    if (over != card) {
        findings->Add("", "the default route leads over %s, the default card is %s", over->name,
                      device.hasDefault ? device.defaultCard : "not saved");
    } else if (isWanted && route->gateway != card->saved.ipv4.gateway) {
        char live[kIPv4TextSize] = {};
        char saved[kIPv4TextSize] = {};
        (void)PrintIPv4(route->gateway, live);
        (void)PrintIPv4(card->saved.ipv4.gateway, saved);
        findings->Add("", "the default route leads to %s, the file says %s", live, saved);
    }
}

// ---- remarks

void RemarkIgnored(const Device& device, Findings* findings)
{
    const int told = device.ignoredCount < kMaxIgnored ? device.ignoredCount : kMaxIgnored;
    for (int i = 0; i < told; ++i) {
        findings->Add(device.ignored[i], "a name that does not count as a card of the device");
    }
    if (device.ignoredCount > told) {
        findings->Add("", "%d more names do not count as cards of the device",
                      device.ignoredCount - told);
    }
}

void RemarkMisnamed(const Device& device, Findings* findings)
{
    for (int i = 0; i < device.misnamedCount; ++i) {
        const char* card = device.misnamed[i];
        char path[kPathSize] = {};
        (void)GetFileByName(card, path, sizeof(path));
        findings->Add(card, "its settings stand in %s, not in network%s", path, card);
    }
}

void RemarkUncounted(const Device& device, Findings* findings)
{
    for (int i = 0; i < device.count; ++i) {
        const Interface& entry = device.list[i];
        if (!entry.live.present || entry.isCounted) continue;
        findings->Add(entry.name, "beyond the 32 interfaces that the boot looks at");
    }
    if (device.left > 0) findings->Add("", "%d more interfaces have no room here", device.left);
}

}  // namespace

void Compare(const Device& device, Findings* findings)
{
    if (!device.hasFolder || device.isFolderForbidden) return;

    for (int i = 0; i < device.count; ++i) CompareInterface(device, device.list[i], findings);
    if (!AreFilesHidden(device)) CompareDefault(device, findings);
}

void TellHidden(const Device& device, Findings* findings)
{
    if (!device.hasFolder) findings->Add("", "the folder /mnt/mtd/Config is missing");
    if (device.isFolderForbidden) {
        findings->Add("", "this user may not read the folder /mnt/mtd/Config");
    }
    for (int i = 0; i < device.count && !device.isFolderForbidden; ++i) {
        if (device.list[i].saved.file != FileState::Unreadable) continue;
        findings->Add(device.list[i].name, "this user may not read its setting file");
    }
    if (device.resolvers.file == FileState::Unreadable && !device.isFolderForbidden) {
        findings->Add("", "this user may not read the saved resolvers");
    }
    if (device.backup.state == MemoryState::Forbidden) {
        findings->Add("", "this user may not read the backup memory");
    }
}

void Remark(const Device& device, Findings* findings)
{
    TellHidden(device, findings);
    if (device.backup.state == MemoryState::NotLookedAt) {
        findings->Add("", "the SRAM is not looked at: its driver gives it only to one who makes a "
                          "file in it, and the file behind it is not good");
    }
    RemarkMisnamed(device, findings);
    RemarkUncounted(device, findings);
    RemarkIgnored(device, findings);
    if (IsWholeRead(device) && !device.resolvers.isSystems) {
        findings->Add("", "the system does not ask the saved resolvers: /etc/resolv.conf is no "
                          "link to /mnt/mtd/Config/resolv.conf");
    }
}

}  // namespace status
