// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// What the setting files say, by the readers of the library itself, which take no lock and write
// nothing back here.

#include "Config.h"
#include "Dns.h"
#include "Read.h"
#include "Support/Handles.h"
#include "Support/Text.h"

#include <climits>
#include <cstdlib>

#include <sys/stat.h>

using namespace vorlix;

namespace status {

namespace {

constexpr char kResolverFile[] = "/mnt/mtd/Config/resolv.conf";
constexpr char kSystemsResolvers[] = "/etc/resolv.conf";
constexpr char kFileStart[] = "network";
constexpr char kOldNameOfEth2[] = "2";  // what stood behind "network" in old releases
constexpr int kServerTextSize = 46;

// ---- one interface

FileState StateOf(const char* path)
{
    if (access(path, F_OK) != 0 && errno == ENOENT) return FileState::Missing;
    return access(path, R_OK) == 0 ? FileState::Read : FileState::Unreadable;
}

FileState StateOfCard(const char* card)
{
    char path[kPathSize] = {};
    (void)GetFileByName(card, path, sizeof(path));
    return StateOf(path);
}

/// What the boot takes as usable: three texts that are there, of one net, with an address. What
/// stands behind a text that does not parse counts as 0.
bool IsUsable(const char* addressText, const char* maskText, const char* gatewayText)
{
    uint32_t address = 0;
    uint32_t mask = 0;
    uint32_t gateway = 0;
    (void)(ParseIPv4(addressText, &address) && ParseIPv4(maskText, &mask) &&
           ParseIPv4(gatewayText, &gateway));
    return address != 0 && ((address ^ gateway) & mask) == 0;
}

void ReadIPv4(const char* card, IPv4* ipv4)
{
    char address[kIPv4TextSize] = {};
    char mask[kIPv4TextSize] = {};
    char gateway[kIPv4TextSize] = {};
    const bool hasAddress = GetIPByConfig(card, address, mask);
    const bool hasGateway = GetGatewayByConfig(card, gateway);
    ipv4->hasAddress =
        hasAddress && ParseIPv4(address, &ipv4->address) && ParseIPv4(mask, &ipv4->mask);
    ipv4->hasGateway = hasGateway && ParseIPv4(gateway, &ipv4->gateway);
    ipv4->isUsable = hasAddress && hasGateway && IsUsable(address, mask, gateway);
}

void ReadIPv6(const char* card, Saved* saved)
{
    char address[kServerTextSize] = {};
    char prefix[8] = {};
    if (GetIPv6ByConfig(card, address, sizeof(address), prefix, sizeof(prefix))) {
        FormatText(saved->ipv6, sizeof(saved->ipv6), "%s/%s", address, prefix);
    }
    (void)GetGatewayv6ByConfig(card, saved->gateway6, kServerTextSize);
}

void ReadClaims(const char* card, Saved* saved)
{
    (void)GetEthIsBondedByConfig(card, &saved->bond.isMarked);
    (void)GetEthIsBridgedByConfig(card, &saved->bridge.isMarked);
    saved->bond.hasName = GetEthBondNameByConfig(card, saved->bond.name, sizeof(saved->bond.name));
    saved->bridge.hasName =
        GetEthBridgeNameByConfig(card, saved->bridge.name, sizeof(saved->bridge.name));
}

void ReadMembers(const char* master, Kind kind, Saved* saved)
{
    char* names[kMaxMembers];
    for (int i = 0; i < kMaxMembers; ++i) names[i] = saved->members.names[i];
    int count = kMaxMembers;
    saved->hasMembers = kind == Kind::Bond ? GetBondMemberByConfig(master, names, &count)
                                           : GetBridgeMemberByConfig(master, names, &count);
    saved->members.count = saved->hasMembers ? count : 0;
}

void ReadMaster(char* master, Kind kind, Saved* saved)
{
    ReadMembers(master, kind, saved);
    if (kind != Kind::Bond) return;

    NICBondMode mode{};
    if (GetBondModeByConfig(master, &mode)) saved->bondMode = mode;
    bool isTrunk = false;
    saved->isTrunk = IsTrunkBondConfig(master, &isTrunk) && isTrunk;
}

void ReadNumbers(const char* card, Saved* saved)
{
    int mtu = 0;
    if (GetMtuByConfig(card, &mtu)) saved->mtu = mtu;

    // The setting's own reader repairs a missing one: here it is only looked at.
    char path[kPathSize] = {};
    char mode[8] = {};
    (void)GetFileByName(card, path, sizeof(path));
    if (GetValueByKey(path, KeyText(HOST_WORKMODE_KEY), mode, sizeof(mode)) && IsDigit(mode[0])) {
        saved->workMode = atoi(mode);
    }
}

/// The file of eth2 as an old release named it, as long as the boot has not renamed it.
bool HasOldName(const char* name)
{
    return Equal(name, "eth2") && StateOfCard("eth2") == FileState::Missing &&
           StateOfCard(kOldNameOfEth2) != FileState::Missing;
}

void ReadFilesOf(Interface* entry)
{
    Saved& saved = entry->saved;
    saved.hasOldName = HasOldName(entry->name);
    Name file;
    CopyText(file, saved.hasOldName ? kOldNameOfEth2 : entry->name);
    saved.file = StateOfCard(file);
    if (saved.file == FileState::Read) {
        ReadIPv4(file, &saved.ipv4);
        ReadNumbers(file, &saved);
        if (entry->kind == Kind::Card) {
            ReadClaims(file, &saved);
        } else {
            ReadMaster(file, entry->kind, &saved);
        }
    }
    ReadIPv6(entry->name, &saved);
}

// ---- files without an interface

/// "networketh1" is a name that a hand may choose, and the settings of eth1 stand in "network1".
bool IsOthers(const char* file, const char* card)
{
    char path[kPathSize] = {};
    (void)GetFileByName(card, path, sizeof(path));
    const char* name = strrchr(path, '/');
    return name != nullptr && !Equal(name + 1, file);
}

void EnterMisnamed(Device* device, const char* card)
{
    if (device->misnamedCount == kMaxIgnored) return;
    CopyText(device->misnamed[device->misnamedCount++], card);
}

void EnterSaved(Device* device)
{
    char files[kMaxInterfaces][64];
    int count = kMaxInterfaces;
    if (!GetAllNetworkFile(files, &count)) return;

    for (int i = 0; i < count; ++i) {
        if (!StartsWith(files[i], kFileStart)) continue;
        const char* card = CardOfFile(files[i]);
        if (strlen(card) >= kNameSize) continue;
        if (IsOthers(files[i], card)) EnterMisnamed(device, card);
        (void)Enter(device, Equal(card, kOldNameOfEth2) ? "eth2" : card);
    }
}

// ---- what all share

void ReadDefault(Device* device)
{
    char path[kPathSize] = {};
    (void)GetFileByName(kFirstCard, path, sizeof(path));
    (void)GetValueByKey(path, KeyText(HOST_DEFAULT_ETH_KEY), device->savedDefault,
                        sizeof(device->savedDefault));
    device->hasDefault = GetDefaultEthByConfig(device->defaultCard, sizeof(device->defaultCard));
    if (!device->hasDefault) CopyText(device->defaultCard, "eth0");
}

bool IsSystems()
{
    char target[PATH_MAX];
    return realpath(kSystemsResolvers, target) != nullptr && Equal(target, kResolverFile);
}

Resolvers ReadResolvers()
{
    Resolvers resolvers;
    resolvers.file = StateOf(kResolverFile);
    resolvers.hasIPv4 = GetIPv4DnsServer(resolvers.servers[0], resolvers.servers[1]);
    resolvers.hasIPv6 =
        GetIPv6DnsServer(resolvers.servers[2], resolvers.servers[3], kServerTextSize);
    resolvers.isSystems = IsSystems();
    return resolvers;
}

void ReadFolder(Device* device)
{
    const FileState folder = StateOf(kConfigFolder);
    device->hasFolder = folder != FileState::Missing;
    device->isFolderForbidden = folder == FileState::Unreadable || access(kConfigFolder, X_OK) != 0;
    if (!device->hasFolder) device->isFolderForbidden = false;
    for (int number = 0; number < kMaxMembers; ++number) {
        Name bridge;
        FormatText(bridge, sizeof(bridge), "br%d", number);
        device->bridgeFile[number] = CheckConfigFile(bridge);
        if (device->bridgeFile[number]) (void)Enter(device, bridge);
    }
}

}  // namespace

void ReadSettings(Device* device)
{
    ReadFolder(device);
    EnterSaved(device);
    for (int i = 0; i < device->count; ++i) ReadFilesOf(&device->list[i]);
    ReadDefault(device);
    device->resolvers = ReadResolvers();
}

}  // namespace status
