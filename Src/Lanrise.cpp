// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Contents:
//   The module's state, and what several chapters ask
//   Program: entries, command forms, the order of a boot
//   PoE setting files: two names for one file
//   Saved bonds: modes of old files, the cards' claims against the bonds' lists
//   Saved bridges: the same for bridges
//   Work modes: what follows for each card
//   Live members: what the drivers say
//   Addresses: a usable address for every card, the default card, the resolvers
//   Bringing up: bonds, bridges, cards and routes
//
// Each chapter has its own helpers directly above its operations.

#include "Lanrise.h"

#include "Backup.h"
#include "Base.h"
#include "Bond.h"
#include "Bridge.h"
#include "CommonApi.h"
#include "Config.h"
#include "Dns.h"
#include "Route.h"
#include "Support/Handles.h"
#include "Support/KeyFile.h"
#include "Support/Log.h"
#include "Support/NameList.h"
#include "Support/Text.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <arpa/inet.h>
#include <dirent.h>
#include <unistd.h>

using namespace vorlix;

namespace {

// ---- state: filled by the program, read by all chapters, never reset between runs; unguarded

using Name = char[kNameSize];

Name ethNames[kMaxInterfaces] = {};
int32_t ethNum = kMaxInterfaces;  // capacity before a listing, number of names after it
char eths[256] = {};              // names without the switch interface, a comma behind each
Name switchitf = {};              // empty: the device has none

Name g_bondedEthNames[kMaxInterfaces] = {};
int32_t g_bondedListNum = kMaxInterfaces;
Name g_bridgedEthNames[kMaxInterfaces] = {};
int32_t g_bridgedListNum = kMaxInterfaces;

// ---- names

constexpr size_t kBridgeMemberSize = 33;  // entries of a bridge's list are not cut to a name's size

bool IsBond(const char* name)
{
    return Contains(name, "bond");
}

bool IsBridge(const char* name)
{
    return Contains(name, "br");
}

bool IsCard(const char* name)
{
    return !IsBond(name) && !IsBridge(name);
}

bool IsPresent(const char* name)
{
    return FindWordInLine(eths, name, ',') != nullptr;
}

// ---- saved addresses

/// An address, its mask and its gateway, network byte order.
struct Triple {
    uint32_t address = 0;
    uint32_t mask = 0;
    uint32_t gateway = 0;
};

struct TripleText {
    char address[kIPv4TextSize] = {};
    char mask[kIPv4TextSize] = {};
    char gateway[kIPv4TextSize] = {};
};

bool ReadTriple(const char* card, TripleText* text)
{
    return GetIPByConfig(card, text->address, text->mask) &&
           GetGatewayByConfig(card, text->gateway);
}

/// Stores what parses, in the order of the fields, up to the first text that does not.
bool ParseTriple(const TripleText& text, Triple* triple)
{
    return ParseIPv4(text.address, &triple->address) && ParseIPv4(text.mask, &triple->mask) &&
           ParseIPv4(text.gateway, &triple->gateway);
}

bool IsOneNet(const Triple& triple)
{
    return ((triple.address ^ triple.gateway) & triple.mask) == 0;
}

// ---- claims of the cards

/// The cards that say they are in one bond or bridge.
struct MemberSlot {
    int32_t num;
    Name names[kMaxInterfaces];
};
static_assert(sizeof(MemberSlot) == 516, "one fixed record for each bond or bridge");

/// The claims for all bonds, or for all bridges, by number. A slot is made when it is needed.
class Claims {
public:
    static constexpr uint32_t kSlots = 32;

    Claims() = default;
    ~Claims()
    {
        for (MemberSlot* slot : slots_) free(slot);
    }
    Claims(const Claims&) = delete;
    Claims& operator=(const Claims&) = delete;

    void Add(uint32_t number, const char* card)
    {
        MemberSlot*& slot = slots_[number];
        if (slot == nullptr) slot = static_cast<MemberSlot*>(calloc(1, sizeof(MemberSlot)));
        if (slot == nullptr) {
            complete_ = false;
            return;
        }
        CopyText(slot->names[slot->num], card);
        ++slot->num;
    }

    MemberSlot* Of(uint32_t number) const { return slots_[number]; }

    /// False when there was no memory for a claim: the lists are not judged by the others then.
    bool AreComplete() const { return complete_; }

private:
    MemberSlot* slots_[kSlots] = {};
    bool complete_ = true;
};

/// The number in a name, from that character on; a negative one counts as a large one.
uint32_t NumberFrom(const char* name, size_t place)
{
    return static_cast<uint32_t>(NumberOf(name + place));
}

bool HoldsAll(const MemberSlot& slot, const NameList& members)
{
    for (const char* member : members) {
        int32_t i = 0;
        while (i < slot.num && strncmp(slot.names[i], member, sizeof(Name)) != 0) ++i;
        if (i == slot.num) return false;
    }
    return true;
}

using ListWriter = bool (*)(const char* master, const char** members, int count);

void SaveMembers(const char* master, const MemberSlot& slot, ListWriter save)
{
    const char* members[kMaxInterfaces];
    for (int32_t i = 0; i < slot.num; ++i) members[i] = slot.names[i];
    (void)save(master, members, slot.num);
}

// ---- membership

/// What a card's file says of its bond, or of its bridge.
struct Membership {
    const char* flagName;
    bool (*getFlag)(const char* card, bool* flag);
    bool (*setFlag)(const char* card, bool flag);
    bool (*setName)(const char* card, const char* master);
};

constexpr Membership kInBond = {"IsBondedByConfig", GetEthIsBondedByConfig, SetEthIsBondedByConfig,
                                SetEthBondNameByConfig};
constexpr Membership kInBridge = {"IsBridgedByConfig", GetEthIsBridgedByConfig,
                                  SetEthIsBridgedByConfig, SetEthBridgeNameByConfig};

void Leave(const Membership& membership, const char* card)
{
    (void)membership.setFlag(card, false);
    (void)membership.setName(card, "");
}

}  // namespace

// ==== Program ====

namespace {

constexpr char kUsage[] = "-----------------------------------------------------------------\n"
                          "Usage:lanrise <ethname> <Ipaddress> <Netmask> <Gateway>\n"
                          "      lanrise setdef <ethname> -- change default card\n"
                          "Example:\n"
                          "eg.   lanrise eth0 192.168.1.100 255.255.0.0 192.168.1.1\n"
                          "eg.   lanrise setdef eth1 \n"
                          "-----------------------------------------------------------------\n";

// ---- common start

/// Gives a setting file of an old release its present name. The old name stays valid as a second
/// name of the same file, for a release that is put back.
void MigrateFile(const char* oldName, const char* newName)
{
    char oldPath[kPathSize];
    char newPath[kPathSize];
    FormListedPath(oldName, oldPath);
    FormListedPath(newName, newPath);
    if (!FileExists(oldPath) || FileExists(newPath)) return;

    if (rename(oldPath, newPath) != 0) {
        LOG_WARN_AS("CommonMain", "rename config file failed, (%s --> %s), [%s]", oldName, newName,
                    strerror(errno));
    }
    if (link(newPath, oldPath) != 0) {
        LOG_WARN_AS("CommonMain", "link config file failed, (%s --> %s), [%s]", newName, oldName,
                    strerror(errno));
    }
}

bool ListInterfaces()
{
    if (GetAllInterfaceInfo(ethNames, &ethNum)) return true;

    LOG_ERROR_AS("CommonMain", "can not get eth Names");
    return false;
}

void FindSwitch()
{
    if (GetSwitchInterface(switchitf, sizeof(switchitf))) return;

    LOG_INFO_AS("CommonMain", "no switch in this device");
    memset(switchitf, 0, sizeof(switchitf));
}

/// Gives the listed interfaces from `first` on their setting files, and all but the switch
/// interface their place in `eths`.
/// @return the index behind the last one
int32_t EnterInterfaces(int32_t first)
{
    int32_t i = first;
    for (; i < ethNum; ++i) {
        const char* name = ethNames[i];
        if (!CheckConfigFile(name)) {
            LOG_WARN_AS("CommonMain", "%s config file is not exit.", name);
            (void)CreateConfigFile(name);  // a card without file reads as one with an empty file
        }
        if (strncmp(name, switchitf, sizeof(switchitf)) == 0) continue;

        Strcat(eths, sizeof(eths), name, nullptr);
        Strcat(eths, sizeof(eths), ",", nullptr);
    }
    return i;
}

// ---- command forms

/// The phases in their order, results dropped: each repairs what it can, whatever became of the one
/// before.
void Boot(int32_t firstCount)
{
    (void)CheckTrunkBondConfig();
    (void)CheckBondConfig();
    (void)CheckBridgeConfig();
    if (!CheckWorkmodeConfig()) {
        // A card was taken out of both its bond and its bridge: their lists must lose it.
        (void)CheckBondConfig();
        (void)CheckBridgeConfig();
        (void)CheckWorkmodeConfig();
    }
    (void)CheckBackup();
    (void)CheckEth0Config();
    (void)CheckEthCardConfig();
    (void)CheckBondCardConfig();
    (void)CheckWlanCardConfig();
    (void)CheckDefSwitchConfig();
    (void)DoBondStuff();
    (void)DoBridgeStuff();

    ethNum = kMaxInterfaces;  // bonds and bridges exist now
    (void)ListInterfaces();
    memset(eths, 0, sizeof(eths));
    // Only what the first listing had not: the default card is looked for among the interfaces that
    // the boot itself has brought.
    (void)EnterInterfaces(firstCount);

    (void)RecoverOtherEth();
    (void)CheckDefaultEthConfig();
    (void)CheckDnsServer();
    removeAllRoute();
    addAllCardNetRoute();
    (void)setCmosVerifyFlag();
    LOG_INFO_AS("CommonMain", "lanrise is finished.");
}

bool CheckCard(const char* name)
{
    if (CheckEthExist(&name, 1)) return true;

    LOG_ERROR_AS("CommonMain", "%s not exist", name);
    return false;
}

bool SetDefaultCard(const char* word, const char* card)
{
    if (!Equal(word, "setdef")) {
        LOG_ERROR_AS("CommonMain", "error command, please input again.");
        return false;
    }
    if (!CheckCard(card)) return false;

    if (NetSetDefEth(card)) {
        LOG_INFO_AS("CommonMain", "set default card is %s", card);
    } else {
        LOG_ERROR_AS("CommonMain", "set %s default card failed!", card);
    }
    return true;  // also for a card that could not be set: start scripts rely on it
}

bool CheckAddresses(const char* address, const char* mask, const char* gateway)
{
    Triple triple;
    if (!ParseIPv4(address, &triple.address)) {
        LOG_ERROR_AS("CommonMain", "ip error %s", address);
        return false;
    }
    if (!ParseIPv4(mask, &triple.mask)) {
        LOG_ERROR_AS("CommonMain", "mask error %s", mask);
        return false;
    }
    if (!ParseIPv4(gateway, &triple.gateway)) {
        LOG_ERROR_AS("CommonMain", "gateway error %s", gateway);
        return false;
    }
    if (!IsOneNet(triple)) {
        LOG_ERROR_AS("CommonMain", "ip %s and gateway %s is not in same net", address, gateway);
        return false;
    }
    return true;
}

bool SetAddress(const char* card, const char* address, const char* mask, const char* gateway)
{
    (void)CheckCard(card);  // said, and no more: a card that is missing stops nothing
    if (!CheckAddresses(address, mask, gateway)) return false;

    if (!NetSetIPByName(card, address, mask)) {
        LOG_WARN_AS("CommonMain", "set %s's IP: %s, MASK: %s failed", card, address, mask);
    }
    if (!NetSetGatewaybyName(card, gateway)) {
        LOG_WARN_AS("CommonMain", "set %s's GATEWAY: %s failed", card, gateway);
    }
    removeAllRoute();
    addAllCardNetRoute();
    (void)setCmosVerifyFlag();
    LOG_INFO_AS("CommonMain", "lanrise for %s is finished.", card);
    return true;
}

}  // namespace

int32_t dvr_lanrise_main(int32_t argc, char** argv)
{
    (void)CommonMain(argc, argv);
    return 1;
}

int32_t PDI_lanriseMain(int32_t argc, char** argv)
{
    (void)CommonMain(argc, argv);
    return 1;
}

bool CommonMain(int32_t argc, char** argv)
{
    MigrateFile("network2", "networketh2");
    MigrateFile("networkip62", "networkip6eth2");
    PrintfHelp();
    if (!ListInterfaces()) return false;

    FindSwitch();
    const int32_t firstCount = EnterInterfaces(0);
    switch (argc) {
    case 1: Boot(firstCount); return true;
    case 3: return SetDefaultCard(argv[1], argv[2]);
    case 5: return SetAddress(argv[1], argv[2], argv[3], argv[4]);
    default: LOG_WARN("Please check your command for lanrise."); return true;
    }
}

void PrintfHelp(void)
{
    (void)fputs(kUsage, stdout);
}

// ==== PoE setting files ====

namespace {

constexpr char kPoeMark[] = ":poe";
constexpr char kCardStart[] = "networketh";
constexpr char kPoeStart[] = "networkpoe";
constexpr size_t kStartLength = sizeof(kCardStart) - 1;
static_assert(sizeof(kCardStart) == sizeof(kPoeStart), "both names are cut behind their start");

constexpr size_t kFrontSize = 64;
constexpr size_t kTargetSize = 63;

// Part of the printed lines, so fixed as these are.
constexpr int kPoeNameExists = 1419;
constexpr int kCardNameExists = 1441;

void LinkUnlessThere(const char* name, const char* target, int printed)
{
    if (FileExists(target)) {
        printf("%s exit at[%d]!\n", target, printed);
        return;
    }
    if (link(name, target) != 0) {
        printf("link config file failed, (%s --> %s), [%s]\n", name, target, strerror(errno));
    }
}

/// Stores what stands between the card's start and the mark of a PoE name.
bool CardOfPoeName(const char* name, char (&card)[kFrontSize])
{
    const char* mark = strstr(name, kPoeMark);
    if (mark == nullptr) return false;

    char front[kFrontSize];
    const auto length = static_cast<size_t>(mark - name);
    CopyText(front, length < sizeof(front) ? length + 1 : sizeof(front), name);
    if (!StartsWith(front, kCardStart)) return false;

    CopyText(card, front + kStartLength);
    return true;
}

void KeepInStep(const char* name)
{
    char target[kTargetSize];
    char card[kFrontSize];
    if (CardOfPoeName(name, card)) {
        FormatText(target, sizeof(target), "%s%s", kPoeStart, card);
        printf("backupName2: %s\n", target);
        LinkUnlessThere(name, target, kPoeNameExists);
        return;
    }
    if (!StartsWith(name, kPoeStart) || name[kStartLength] == '\0') return;

    FormatText(target, sizeof(target), "%s%s%s", kCardStart, name + kStartLength, kPoeMark);
    printf("backupName: %s\n", target);
    LinkUnlessThere(name, target, kCardNameExists);
}

}  // namespace

int BackupPoEConfig(void)
{
    const Directory folder(opendir("./"));
    if (folder == nullptr) {
        LOG_WARN("Can not opendir!");
        return -1;
    }
    while (const dirent* entry = readdir(folder.get())) {
        if (entry->d_type == DT_REG) KeepInStep(entry->d_name);
    }
    return 0;
}

// ==== Saved bonds ====

namespace {

// ---- modes of old bond files

/// Numbers of the bond modes before the member list was saved with them.
enum TrunkBondMode : int32_t {
    nicTrunkBondActiveBackup = 1,
    nicTrunkBondBalanceRR = 2,
    nicTrunkBondBalanceALB = 3,
    nicTrunkBondBalanceTLB = 4,
    nicTrunkBond802_3ad = 5,
    nicTrunkBondBalanceXOR = 6,
    nicTrunkBondBroadcast = 7
};

struct TrunkMode {
    TrunkBondMode old;
    NICBondMode present;
};

constexpr TrunkMode kTrunkModes[] = {
    {nicTrunkBondActiveBackup, nicBondActiveBackup}, {nicTrunkBondBalanceRR, nicBondBalanceRR},
    {nicTrunkBondBalanceALB, nicBondBalanceALB},     {nicTrunkBondBalanceTLB, nicBondBalanceTLB},
    {nicTrunkBond802_3ad, nicBond802_3ad},           {nicTrunkBondBalanceXOR, nicBondBalanceXOR},
    {nicTrunkBondBroadcast, nicBondBroadcast}};

void ConvertTrunkMode(char* bond)
{
    constexpr char kOperation[] = "CheckTrunkBondConfig";
    bool isTrunk = false;
    if (!IsTrunkBondConfig(bond, &isTrunk) || !isTrunk) return;

    NICBondMode saved{};
    if (!GetBondModeByConfig(bond, &saved)) return;

    const auto old = static_cast<int32_t>(saved);
    LOG_INFO_AS(kOperation, "ifName: %s, oldBondMode: %d", bond, old);
    for (const TrunkMode& mode : kTrunkModes) {
        if (mode.old != old) continue;

        LOG_INFO_AS(kOperation, "ifName: %s, bondmode: %d", bond, static_cast<int>(mode.present));
        (void)SetBondModeByConfig(bond, mode.present);
        return;
    }
    LOG_WARN_AS(kOperation, "Unknown mode: %d", old);
}

// ---- claims and lists

constexpr char kFirstBond[] = "bond0";
constexpr size_t kBondNumberPlace = 4;
constexpr uint32_t kLastSettledBond = 15;  // claims are taken up to 31, and stay unseen from 16 on
constexpr auto kNoBondMode = static_cast<NICBondMode>(-1);

/// The bond that a card's file says it is in: the first one when it does not say which.
/// @return false for a card that is in none, or in one that is not there
bool ReadBondClaim(const char* card, Name& bond, bool* isNamed)
{
    bool bonded = false;
    if (!GetEthIsBondedByConfig(card, &bonded) || !bonded) return false;

    *isNamed = GetEthBondNameByConfig(card, bond, sizeof(bond));
    if (!*isNamed) CopyText(bond, kFirstBond);
    return IsBond(bond) && IsPresent(bond);
}

void ClaimBond(const char* card, Claims* claims)
{
    Name bond = {};
    bool isNamed = false;
    if (!ReadBondClaim(card, bond, &isNamed)) {
        Leave(kInBond, card);
        return;
    }
    if (!isNamed) (void)SetEthBondNameByConfig(card, bond);
    (void)SetWorkModeByConfig(card, netModeBond);
    const uint32_t number = NumberFrom(bond, kBondNumberPlace);
    if (number < Claims::kSlots) {
        claims->Add(number, card);
        return;
    }
    LOG_ERROR_AS("CheckBondConfig", "can not handle %s", bond);
    Leave(kInBond, card);  // its work mode is mended by CheckWorkmodeConfig
}

/// @return false, and told of, when the bond's list is not what the cards claim
bool CheckBondList(const char* bond, const MemberSlot& slot)
{
    NameTable<kMaxInterfaces, kNameSize> members;
    if (!members.Read(GetBondMemberByConfig, bond)) {
        LOG_WARN_AS("CheckBondConfig", "can not get bond member from config.");
        return false;
    }
    if (members.Count() == slot.num && HoldsAll(slot, members.All())) return true;

    LOG_WARN_AS("CheckBondConfig", "config from bondmember is different from eth config");
    return false;
}

/// A bond of no card or one: no mode, no members, and the card stands alone.
void DissolveBond(const char* bond, const MemberSlot* slot)
{
    const char* nobody[] = {""};
    (void)SetBondModeByConfig(bond, kNoBondMode);
    (void)SetBondMemberByConfig(bond, nobody, 1);
    if (slot == nullptr) return;

    Leave(kInBond, slot->names[0]);
    LOG_WARN_AS("CheckBondConfig", "the %s's member[%s] from eth config is 1", bond,
                slot->names[0]);
}

void PutFirstCardInFront(MemberSlot* slot)
{
    for (int32_t i = 0; i < slot->num; ++i) {
        if (Equal(slot->names[i], kFirstCard)) std::swap(slot->names[i], slot->names[0]);
    }
}

void SettleBond(const char* bond, MemberSlot* slot)
{
    if (slot == nullptr || slot->num < 2) {
        DissolveBond(bond, slot);
        return;
    }
    NICBondMode mode{};
    if (!GetBondModeByConfig(bond, &mode)) {
        LOG_WARN_AS("CheckBondConfig", "%s bond  mode is unknow, set default to activebackup",
                    bond);
        (void)SetBondModeByConfig(bond, nicBondActiveBackup);
    }
    if (CheckBondList(bond, *slot)) return;

    PutFirstCardInFront(slot);
    SaveMembers(bond, *slot, SetBondMemberByConfig);
}

}  // namespace

bool CheckTrunkBondConfig(void)
{
    LOG_INFO("CheckTrunkBondConfig");
    for (int32_t i = 0; i < ethNum; ++i) {
        if (IsBond(ethNames[i])) ConvertTrunkMode(ethNames[i]);
    }
    return true;
}

bool CheckBondConfig(void)
{
    Claims claims;
    for (int32_t i = 0; i < ethNum; ++i) {
        if (IsCard(ethNames[i])) ClaimBond(ethNames[i], &claims);
    }
    for (int32_t i = 0; i < ethNum && claims.AreComplete(); ++i) {
        if (!IsBond(ethNames[i])) continue;

        const uint32_t number = NumberFrom(ethNames[i], kBondNumberPlace);
        if (number <= kLastSettledBond) SettleBond(ethNames[i], claims.Of(number));
    }
    return true;
}

// ==== Saved bridges ====

namespace {

constexpr size_t kBridgeNumberPlace = 2;
constexpr size_t kBridgeNameSize = 6;

/// Unlike a bond, a bridge need not be present to be claimed: it is made later. One whose number
/// has no slot keeps its card and is not looked at.
void ClaimBridge(const char* card, Claims* claims)
{
    bool bridged = false;
    Name bridge = {};
    const bool hasFlag = GetEthIsBridgedByConfig(card, &bridged);
    const bool hasName = GetEthBridgeNameByConfig(card, bridge, sizeof(bridge));
    if (!hasFlag || !hasName || !bridged || !IsBridge(bridge)) {
        Leave(kInBridge, card);
        return;
    }
    (void)SetWorkModeByConfig(card, netModeBridge);
    const uint32_t number = NumberFrom(bridge, kBridgeNumberPlace);
    if (number < Claims::kSlots) claims->Add(number, card);
}

constexpr char kBridgeFileStart[] = "networkbr";

/// Which bridges may have a setting file: one pass over the folder at the first question, in the
/// place of a question for each of 32 names.
class BridgeFiles {
public:
    bool MayHold(uint32_t number)
    {
        if (!read_) Read();
        return (numbers_ >> number & 1U) != 0;
    }

private:
    void Read();

    bool read_ = false;
    uint32_t numbers_ = UINT32_MAX;  // all of them, where the folder cannot be read to its end
};

/// NULL at the end of the folder, with 0 in `errno`, and when it cannot be read on.
const dirent* NextEntry(DIR* folder)
{
    errno = 0;
    return readdir(folder);
}

void BridgeFiles::Read()
{
    read_ = true;
    const Directory folder(opendir(kConfigFolder));
    if (folder == nullptr) return;

    uint32_t found = 0;
    while (const dirent* entry = NextEntry(folder.get())) {
        if (!StartsWith(entry->d_name, kBridgeFileStart)) continue;

        const uint32_t number = NumberFrom(entry->d_name, sizeof(kBridgeFileStart) - 1);
        if (number < Claims::kSlots) found |= 1U << number;
    }
    if (errno == 0) numbers_ = found;
}

bool IsBridgeInOrder(const char* bridge, const MemberSlot& slot)
{
    NameTable<kMaxInterfaces, kBridgeMemberSize> members;
    return members.Read(GetBridgeMemberByConfig, bridge) && members.Count() == slot.num &&
           HoldsAll(slot, members.All());
}

/// @return true when the list was in order as it stood
bool SettleBridge(const char* bridge, const MemberSlot* slot)
{
    if (slot == nullptr) {
        if (CheckConfigFile(bridge)) (void)DelConfigFile(bridge);
        return false;
    }
    if (slot->num < 2) {
        (void)DelConfigFile(bridge);
        Leave(kInBridge, slot->names[0]);
        LOG_WARN_AS("CheckBridgeConfig", "the %s's member[%s] from eth config is 1", bridge,
                    slot->names[0]);
        return false;
    }
    if (IsBridgeInOrder(bridge, *slot)) return true;

    SaveMembers(bridge, *slot, SetBridgeMemberByConfig);
    return false;
}

}  // namespace

bool CheckBridgeConfig(void)
{
    Claims claims;
    for (int32_t i = 0; i < ethNum; ++i) {
        if (IsCard(ethNames[i])) ClaimBridge(ethNames[i], &claims);
    }
    // Over the numbers, since a bridge need not be there yet. The first one in order ends the walk:
    // those behind it are not looked at in this boot. The walk itself touches the files of bridges
    // that are claimed, and those without a claim are the ones that the folder is asked for.
    BridgeFiles files;
    for (uint32_t number = 0; number < Claims::kSlots && claims.AreComplete(); ++number) {
        if (claims.Of(number) == nullptr && !files.MayHold(number)) continue;

        char bridge[kBridgeNameSize];
        FormatText(bridge, sizeof(bridge), "br%u", number);
        if (SettleBridge(bridge, claims.Of(number))) break;
    }
    return true;
}

// ==== Work modes ====

namespace {

/// Reads a card's flag. One that cannot be read is saved as not set.
bool SettleFlag(const Membership& membership, const char* card)
{
    bool flag = false;
    if (!membership.getFlag(card, &flag)) {
        LOG_WARN_AS("CheckWorkmodeConfig", "Get %s %s  failed", card, membership.flagName);
        (void)membership.setFlag(card, false);
    }
    return flag;
}

NetWorkMode ModeOf(const char* card, bool bonded, bool bridged)
{
    if (bonded) return netModeBond;
    if (bridged) return netModeBridge;
    return isSwitchByName(card) == 1 ? netModeSwitch : netModeMultiple;
}

/// @return false when the card was marked both ways
bool SettleWorkMode(const char* card)
{
    const bool bonded = SettleFlag(kInBond, card);
    const bool bridged = SettleFlag(kInBridge, card);
    if (!bonded || !bridged) {
        (void)SetWorkModeByConfig(card, ModeOf(card, bonded, bridged));
        return true;
    }
    LOG_ERROR_AS("CheckWorkmodeConfig",
                 " cannot determine %s workmode.delete from both bond and bridge.", card);
    Leave(kInBridge, card);
    Leave(kInBond, card);
    (void)SetWorkModeByConfig(card, netModeMultiple);
    return false;
}

}  // namespace

bool CheckWorkmodeConfig(void)
{
    bool clear = true;
    for (int32_t i = 0; i < ethNum; ++i) {
        if (IsCard(ethNames[i]) && !SettleWorkMode(ethNames[i])) clear = false;
    }
    return clear;
}

// ==== Live members ====

namespace {

using MemberQuery = bool (*)(const char* master, char** members, int* count);

/// Adds the live members of a bond or bridge behind the `count` names collected so far. One that
/// cannot be asked has none.
/// @return false when the names are more than the table holds
bool AddMembers(MemberQuery query, const char* master, char** names, int32_t* count)
{
    int found = kMaxInterfaces - *count;
    if (!query(master, names + *count, &found)) return true;

    *count += found;
    if (*count <= kMaxInterfaces) return true;

    LOG_ERROR_AS("getAllBondOrBrSlave", "the bonded eth over %d", kMaxInterfaces);
    return false;
}

}  // namespace

bool getAllBondOrBrSlave(void)
{
    char* bonded[kMaxInterfaces];
    char* bridged[kMaxInterfaces];
    for (int i = 0; i < kMaxInterfaces; ++i) {
        bonded[i] = g_bondedEthNames[i];
        bridged[i] = g_bridgedEthNames[i];
    }
    int32_t bondedCount = 0;
    int32_t bridgedCount = 0;
    for (int32_t i = 0; i < ethNum; ++i) {
        const char* name = ethNames[i];
        if (IsBond(name)) {
            if (!AddMembers(Bond_GetBondMembers, name, bonded, &bondedCount)) return false;
        } else if (IsBridge(name)) {
            if (!AddMembers(Bridge_GetBridgeMembers, name, bridged, &bridgedCount)) return false;
        }
    }
    g_bondedListNum = bondedCount;
    g_bridgedListNum = bridgedCount;
    return true;
}

// ==== Addresses ====

namespace {

// ---- factory values

constexpr char kEthBase[] = "192.168.0.108";
constexpr char kEthGateway[] = "192.168.0.1";
constexpr char kBondBase[] = "192.168.2.108";
constexpr char kBondGateway[] = "192.168.2.1";
constexpr char kWlanBase[] = "192.168.1.108";
constexpr char kWlanGateway[] = "192.168.1.1";
constexpr char kSwitchAddress[] = "10.1.1.1";  // its own gateway
constexpr char kMask[] = "255.255.255.0";

constexpr char kDns[] = "8.8.8.8";
constexpr char kSecondDns[] = "8.8.4.4";
constexpr char kDns6[] = "2001:4860:4860::8888";
constexpr char kSecondDns6[] = "2001:4860:4860::8844";
constexpr int kDns6Size = 64;

constexpr int kDefaultMtu = 1500;
constexpr int kEthCards = 32;
constexpr int kNumberedCards = 8;

constexpr const char* kDefaultCards[] = {kFirstCard, "eth1", "eth2"};

// ---- triples

TripleText TextOf(const Triple& triple)
{
    TripleText text;
    (void)PrintIPv4(triple.address, text.address);
    (void)PrintIPv4(triple.mask, text.mask);
    (void)PrintIPv4(triple.gateway, text.gateway);
    return text;
}

bool IsValid(const Triple& triple)
{
    return triple.address != 0 && IsOneNet(triple);
}

bool AreEqual(const Triple& left, const Triple& right)
{
    return left.address == right.address && left.mask == right.mask &&
           left.gateway == right.gateway;
}

void SaveTriple(const char* card, const char* address, const char* mask, const char* gateway)
{
    (void)SetIPByConfig(card, address, mask);
    (void)SetGatewayByConfig(card, gateway);
}

void EnsureMtu(const char* card)
{
    int mtu = 0;
    if (!GetMtuByConfig(card, &mtu)) (void)SetMtuByConfig(card, kDefaultMtu);
}

// ---- eth0 and its backup

void ParseEth0(const TripleText& text, Triple* triple)
{
    if (ParseTriple(text, triple)) return;

    LOG_ERROR_AS("CheckEth0Config", "addr[%s] or mask[%s] or gateway[%s] invalid!", text.address,
                 text.mask, text.gateway);
}

Triple RestoreEth0()
{
    TripleText text;
    if (!RestoreIP(kFirstCard, text.address)) {
        LOG_WARN_AS("CheckEth0Config", "Restore eth0's IP failed");
    }
    if (!RestoreMask(kFirstCard, text.mask)) {
        LOG_WARN_AS("CheckEth0Config", "Restore eht0's mask failed");
    }
    if (!RestoreGateway(kFirstCard, text.gateway)) {
        LOG_WARN_AS("CheckEth0Config", "Restore eth0's gateway failed");
    }
    Triple backup;
    ParseEth0(text, &backup);
    return backup;
}

Triple ReadEth0()
{
    TripleText text;
    Triple saved;
    if (ReadTriple(kFirstCard, &text)) ParseEth0(text, &saved);
    return saved;
}

void BackupEth0(const char* address, const char* mask, const char* gateway)
{
    (void)BackupIP(kFirstCard, address);
    (void)BackupGateway(kFirstCard, gateway);
    (void)BackupMask(kFirstCard, mask);
}

void SaveEth0(const Triple& triple)
{
    const TripleText text = TextOf(triple);
    SaveTriple(kFirstCard, text.address, text.mask, text.gateway);
}

void BackupEth0(const Triple& triple)
{
    const TripleText text = TextOf(triple);
    BackupEth0(text.address, text.mask, text.gateway);
}

void ResetEth0()
{
    LOG_WARN_AS("CheckEth0Config", "eth0 in config and backup is not correct! set been reset flag, "
                                   "will reboot with user config");
    (void)setBeenResetFlag();
    SaveTriple(kFirstCard, kEthBase, kMask, kEthGateway);
    BackupEth0(kEthBase, kMask, kEthGateway);
}

// ---- cards without backup

/// Gives a card whose file has no valid triple the factory address of its number: `base`, network
/// byte order, plus the number.
void RepairCard(const char* card, uint32_t base, int number, const char* gateway)
{
    if (CheckNetCardConfig(card)) return;

    char address[kIPv4TextSize] = {};
    (void)PrintIPv4(htonl(ntohl(base) + static_cast<uint32_t>(number)), address);
    SaveTriple(card, address, kMask, gateway);
}

/// Bonds and wireless cards: unlike the other cards they are numbered without gaps.
bool RepairNumberedCards(const char* operation, const char* kind, const char* baseText,
                         const char* gateway)
{
    uint32_t base = 0;
    if (!ParseIPv4(baseText, &base)) return false;

    for (int number = 0; number < kNumberedCards; ++number) {
        Name card;
        FormatText(card, sizeof(card), "%s%d", kind, number);
        if (!IsPresent(card)) return true;
        RepairCard(card, base, number, gateway);
    }
    LOG_WARN_AS(operation, "the %s num we can handle is too small %d", kind, kNumberedCards);
    return true;
}

// ---- default card

/// Replaces a name that is not present by the first usual default card that is.
void PreferPresent(Name& card)
{
    if (IsPresent(card)) return;

    for (const char* usual : kDefaultCards) {
        if (!IsPresent(usual)) continue;
        CopyText(card, usual);
        return;
    }
}

}  // namespace

bool CheckBackup(void)
{
    if (CheckCrc()) return true;

    LOG_ERROR("Backup crc check error!!!");
    (void)RestBackup();
    return true;
}

bool CheckNetCardConfig(const char* name)
{
    if (name == nullptr) return false;

    EnsureMtu(name);
    TripleText text;
    if (!ReadTriple(name, &text)) return false;

    Triple triple;
    if (!ParseTriple(text, &triple)) {
        LOG_ERROR("inet_pton failed! add: %s, mask: %s, gateway: %s", text.address, text.mask,
                  text.gateway);
    }
    return IsValid(triple);
}

bool CheckEth0Config(void)
{
    if (!IsPresent(kFirstCard)) return true;

    EnsureMtu(kFirstCard);
    const Triple backup = RestoreEth0();
    const Triple saved = ReadEth0();
    if (!IsValid(saved) && !IsValid(backup)) {
        ResetEth0();
        return false;
    }
    if (!IsValid(backup)) {
        BackupEth0(saved);
    } else if (!IsValid(saved) || !AreEqual(saved, backup)) {
        SaveEth0(backup);
    }
    return true;
}

bool CheckEthCardConfig(void)
{
    uint32_t base = 0;
    if (!ParseIPv4(kEthBase, &base)) {
        LOG_ERROR("inet_pton failed!");
        return false;
    }
    for (int number = 1; number < kEthCards; ++number) {
        Name card;
        FormatText(card, sizeof(card), "eth%d", number);
        if (IsPresent(card)) RepairCard(card, base, number, kEthGateway);
    }
    return true;
}

bool CheckBondCardConfig(void)
{
    return RepairNumberedCards(__func__, "bond", kBondBase, kBondGateway);
}

bool CheckWlanCardConfig(void)
{
    return RepairNumberedCards(__func__, "wlan", kWlanBase, kWlanGateway);
}

bool CheckDefSwitchConfig(void)
{
    if (switchitf[0] == '\0' || CheckNetCardConfig(switchitf)) return true;

    SaveTriple(switchitf, kSwitchAddress, kMask, kSwitchAddress);
    return true;
}

bool CheckDefaultEthConfig(void)
{
    Name card = {};
    if (!GetDefaultEthByConfig(card, sizeof(card))) {
        LOG_WARN("get default eth failed.");
        CopyText(card, kFirstCard);
    }
    PreferPresent(card);
    LOG_INFO("default eth is %s.", card);
    if (SetDefaultEthByConfig(card)) return true;

    LOG_WARN("set def to config failed.");
    return false;
}

bool CheckDnsServer(void)
{
    char primary[kIPv4TextSize] = {};
    char secondary[kIPv4TextSize] = {};
    if (!GetIPv4DnsServer(primary, secondary) && !SetIPv4DnsServer(kDns, kSecondDns)) {
        LOG_WARN("recover IPv4 default DNS server failed");
    }
    char primary6[kDns6Size] = {};
    char secondary6[kDns6Size] = {};
    if (!GetIPv6DnsServer(primary6, secondary6, kDns6Size) &&
        !SetIPv6DnsServer(kDns6, kSecondDns6)) {
        LOG_WARN("recover IPv6 default DNS server failed");
    }
    return true;
}

// ==== Bringing up ====

namespace {

constexpr char kNoAddress[] = "0.0.0.0";

constexpr const char* kDeviceKinds[] = {"eth", "wlan", "bond", "br", "ppp", "lte", "apra", "usb"};

constexpr int kRoutesLookedAt = 32;

// ---- bonds and bridges

constexpr unsigned kBondPause = 2;  // seconds that a bond gets to settle

bool TakesHashPolicy(NICBondMode mode)
{
    return mode == nicBondBalanceXOR || mode == nicBond802_3ad || mode == nicBondBalanceTLB;
}

void BuildBond(const char* bond)
{
    NICBondMode mode = nicBondActiveBackup;
    if (!GetBondModeByConfig(bond, &mode)) return;

    unsigned char policy = 0;
    if (TakesHashPolicy(mode) && GetBondHashPolicyByConfig(bond, &policy)) {
        (void)Bond_SetHashPolicy(bond, policy);
    }
    NameTable<kMaxInterfaces, kNameSize> members;
    if (!members.Read(GetBondMemberByConfig, bond)) {
        LOG_ERROR_AS("DoBondStuff", "GetBondMemberByConfig failed.[%s]", bond);
        return;
    }
    const auto cards = const_cast<const char**>(members.Pointers());
    if (members.Count() > 1 && !Bond(bond, cards, members.Count(), mode)) {
        LOG_WARN_AS("DoBondStuff", "bond failed!");
    }
    (void)sleep(kBondPause);  // built or not
}

void BuildBridge(const char* file)
{
    Name bridge = {};
    if (!Contains(file, kBridgeFileStart) || sscanf(file, "network%15s", bridge) != 1) return;

    NameTable<kMaxInterfaces, kBridgeMemberSize> members;
    if (!members.Read(GetBridgeMemberByConfig, bridge) || members.Count() < 2) return;

    if (!Bridge(bridge, members.Pointers(), members.Count())) {
        LOG_WARN_AS("DoBridgeStuff", "Bridge failed");
    }
}

// ---- routes taken away

bool IsOverDevice(const IPv4Route& route)
{
    for (const char* kind : kDeviceKinds) {
        if (Contains(route.viaDev, kind)) return true;
    }
    return false;
}

bool PrintPart(const char* operation, const char* part, uint32_t value, char* text)
{
    if (PrintIPv4(value, text)) return true;

    LOG_INFO_AS(operation, "%s inet_ntop error[%d]\n", part, static_cast<int>(value));
    return false;
}

void RemoveRoute(const IPv4Route& route)
{
    constexpr char kOperation[] = "removeAllRoute";
    if (!IsOverDevice(route)) {
        LOG_INFO_AS(kOperation, "ignore [%s] route\n", route.viaDev);
        return;
    }
    char net[kIPv4TextSize];
    char mask[kIPv4TextSize];
    char gateway[kIPv4TextSize];
    if (!PrintPart(kOperation, "addr", route.dst, net)) return;
    if (!PrintPart(kOperation, "mask", route.mask, mask)) return;
    if (!PrintPart(kOperation, "gateway", route.gw, gateway)) return;

    if (!RouteDelIPv4(net, gateway, mask, route.viaDev)) {
        LOG_ERROR_AS(kOperation, "del %s route [%s,%s,%s] failed\n", route.viaDev, net, mask,
                     gateway);
    }
}

// ---- routes added

bool IsListed(const char* name, const Name* names, int32_t count)
{
    for (int32_t i = 0; i < count; ++i) {
        if (Equal(name, names[i])) return true;
    }
    return false;
}

bool IsMember(const char* name)
{
    return IsListed(name, g_bondedEthNames, g_bondedListNum) ||
           IsListed(name, g_bridgedEthNames, g_bridgedListNum);
}

/// A bond that runs, a VLAN on a bond, a bridge that exists, and every card.
bool HasNetRoute(const char* name)
{
    if (IsBond(name)) return Bond_GetBondMembers(name, nullptr, nullptr) || Contains(name, ".");
    if (IsBridge(name)) return Bridge_IsBridgeExist(name);
    return true;
}

/// The default card gets its net route here even when it is a member or has been given one before.
void addDefRoute()
{
    Name card = {};
    if (!GetDefaultEthByConfig(card, sizeof(card))) {
        LOG_WARN("get default eth failed. will not add default route");
        return;
    }
    addRouteByName(card);
    (void)RouteAddDefIPv4(card);
}

}  // namespace

void removeAllRoute(void)
{
    IPv4Route routes[kRoutesLookedAt] = {};
    int count = kRoutesLookedAt;
    if (!Route_GetIPv4Route(routes, &count)) {
        LOG_INFO("Route_GetIPv4Route failed\n");
        return;
    }
    for (int i = 0; i < count; ++i) RemoveRoute(routes[i]);
}

void addRouteByName(const char* ifname)
{
    if (ifname == nullptr || ifname[0] == '\0') return;

    TripleText text;
    Triple triple;
    if (ReadTriple(ifname, &text) && !ParseTriple(text, &triple)) {
        // Also for the gateway, though the route does not use it.
        LOG_INFO("addr error [%s,%s,%s]\n", text.address, text.mask, text.gateway);
        return;
    }
    // A card without address goes on with 0 and with the mask text as far as it was read.
    if (!PrintPart(__func__, "addr", triple.address & triple.mask, text.address)) return;

    (void)RouteAddIPv4(text.address, kNoAddress, text.mask, ifname);
}

void addAllCardNetRoute(void)
{
    if (!getAllBondOrBrSlave()) {
        g_bondedListNum = 0;
        g_bridgedListNum = 0;
    }
    for (int32_t i = 0; i < ethNum; ++i) {
        const char* name = ethNames[i];
        if (name[0] != '\0' && !IsMember(name) && HasNetRoute(name)) addRouteByName(name);
    }
    addDefRoute();
}

bool DoBondStuff(void)
{
    for (int32_t i = 0; i < ethNum; ++i) {
        const char* name = ethNames[i];
        if (IsBond(name) && !Contains(name, ".")) BuildBond(name);
    }
    return true;
}

bool DoBridgeStuff(void)
{
    Directory folder(opendir(kConfigFolder));
    if (folder == nullptr) {
        LOG_ERROR("can not open %s", kConfigFolder);
        return false;
    }
    while (const dirent* entry = readdir(folder.get())) {
        if (entry->d_type == DT_REG) BuildBridge(entry->d_name);
    }
    folder.reset();
    (void)BridgeByInterNic(nullptr);
    return true;
}

bool RecoverOtherEth(void)
{
    for (int32_t i = 0; i < ethNum; ++i) {
        const char* name = ethNames[i];
        if (!IsCard(name)) continue;

        NetWorkMode mode = netModeInvalid;
        (void)GetWorkModeByConfig(name, &mode);
        if (mode == netModeInvalid) LOG_WARN("%s work mode is unknow!!!", name);
        if (mode == netModeMultiple || mode == netModeSwitch || mode == netModeInvalid) {
            (void)NetCardRecover(name);
        }
    }
    return true;
}
