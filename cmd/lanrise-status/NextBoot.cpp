// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// What a boot would repair now: its walks over saved bonds, bridges, work modes and addresses, in
// their order, over a copy of what the files say. Nothing is told of what is written back as it
// was.

#include "Findings.h"
#include "Support/Text.h"

#include <cstdlib>

#include <arpa/inet.h>

using namespace vorlix;

namespace status {

namespace {

// ---- names and numbers of the boot

constexpr char kFirstBond[] = "bond0";
constexpr uint32_t kSlots = 32;
constexpr uint32_t kLastSettledBond = 15;
constexpr int kNumberedCards = 8;
constexpr int kEthCards = 32;
constexpr int kDefaultMtu = 1500;

constexpr char kFactoryEth0[] = "192.168.0.108/24";
constexpr uint32_t kFactoryEth = 0xc0a8006c;   // 192.168.0.108
constexpr uint32_t kFactoryWlan = 0xc0a8016c;  // 192.168.1.108
constexpr uint32_t kFactoryBond = 0xc0a8026c;  // 192.168.2.108
constexpr uint32_t kMask24 = 0xffffff00;

/// Modes of old bond files, by their number.
constexpr int kPresentMode[] = {-1, 1, 0, 6, 5, 4, 2, 3};

uint32_t NumberIn(const char* name, size_t place)
{
    return static_cast<uint32_t>(atoi(name + place));
}

// ---- the copy that the walks work on

struct Card {
    const Interface* interface = nullptr;
    Claim bond;
    Claim bridge;
};

struct Master {
    int mode = -1;
    bool hasMembers = false;
    bool hasFile = false;
    Members members;
};

/// The files as they change while the phases run.
struct Draft {
    int cardCount = 0;
    Card cards[kMaxRows];
    Master bonds[kMaxRows];  // by row of the record
    Master bridges[kSlots];  // by number
};

bool IsWalked(const Interface& entry, Kind kind)
{
    return entry.isCounted && entry.kind == kind;
}

void CopyMaster(const Interface& entry, Master* master)
{
    master->mode = entry.saved.bondMode;
    master->hasMembers = entry.saved.hasMembers;
    master->members = entry.saved.members;
    master->hasFile = entry.saved.file != FileState::Missing;
}

void Begin(const Device& device, Draft* draft)
{
    for (int i = 0; i < device.count; ++i) {
        const Interface& entry = device.list[i];
        if (IsWalked(entry, Kind::Card)) {
            draft->cards[draft->cardCount++] = {&entry, entry.saved.bond, entry.saved.bridge};
        }
        if (IsWalked(entry, Kind::Bond)) CopyMaster(entry, &draft->bonds[i]);
    }
    for (uint32_t number = 0; number < kSlots; ++number) {
        Name bridge;
        FormatText(bridge, sizeof(bridge), "br%u", number);
        const Interface* entry = Find(device, bridge);
        if (entry != nullptr) CopyMaster(*entry, &draft->bridges[number]);
        draft->bridges[number].hasFile = device.bridgeFile[number];
    }
}

// ---- claims

/// The cards that claim one bond or bridge, as places in the draft.
struct Slot {
    int count = 0;
    Card* cards[kMaxRows] = {};

    bool Holds(const char* name) const
    {
        for (int i = 0; i < count; ++i) {
            if (strncmp(cards[i]->interface->name, name, kNameSize) == 0) return true;
        }
        return false;
    }
};

struct Claims {
    Slot slots[kSlots];

    void Add(uint32_t number, Card* card) { slots[number].cards[slots[number].count++] = card; }
};

bool IsInOrder(const Master& master, const Slot& slot)
{
    if (!master.hasMembers || master.members.count != slot.count) return false;
    for (int i = 0; i < master.members.count; ++i) {
        if (!slot.Holds(master.members.names[i])) return false;
    }
    return true;
}

void TakeMembers(const Slot& slot, Master* master)
{
    master->hasMembers = true;
    master->members.count = slot.count;
    for (int i = 0; i < slot.count; ++i) {
        CopyText(master->members.names[i], slot.cards[i]->interface->name);
    }
}

void TellList(const char* master, const char* what, const Master& before, const Slot& slot,
              Findings* findings)
{
    Master after;
    TakeMembers(slot, &after);
    char old[kJoinedSize];
    char next[kJoinedSize];
    Join(before.members, old);
    Join(after.members, next);
    findings->Add(master, "the saved %s %s become %s, as the cards' files say", what, old, next);
}

// ---- bonds

void ConvertMode(const Interface& entry, Master* bond, Findings* findings)
{
    if (!entry.saved.isTrunk || bond->mode < 1 || bond->mode > 7) return;

    const int present = kPresentMode[bond->mode];
    char text[kModeSize];
    PrintMode(present, text);
    if (present != bond->mode) {
        findings->Add(entry.name, "mode %d of an old release becomes %d, %s", bond->mode, present,
                      text);
    }
    bond->mode = present;
}

/// @return false when the card leaves
bool SettleBondName(const Device& device, Card* card, Findings* findings)
{
    const char* name = card->interface->name;
    if (card->bond.hasName) {
        if (Contains(card->bond.name, "bond") && IsPresent(device, card->bond.name)) return true;
        findings->Add(name, "it claims the bond %s, which is not there: it will stand alone",
                      card->bond.name);
        return false;
    }
    if (!IsPresent(device, kFirstBond)) {
        findings->Add(name, "it is marked as bonded, but no bond is there: it will stand alone");
        return false;
    }
    findings->Add(name, "it is marked as bonded without a name: %s takes it", kFirstBond);
    card->bond.hasName = true;
    CopyText(card->bond.name, kFirstBond);
    return true;
}

void ClaimBond(const Device& device, Card* card, Claims* claims, Findings* findings)
{
    if (!card->bond.isMarked || !SettleBondName(device, card, findings)) {
        card->bond = Claim{};
        return;
    }
    const uint32_t number = NumberIn(card->bond.name, 4);
    if (number < kSlots) {
        claims->Add(number, card);
        return;
    }
    findings->Add(card->interface->name, "it claims %s, a number too high: it will stand alone",
                  card->bond.name);
    card->bond = Claim{};
}

void DissolveBond(const char* name, const Slot& slot, Master* bond, Findings* findings)
{
    if (slot.count == 1) {
        findings->Add(slot.cards[0]->interface->name,
                      "it is the only card that claims %s: it will stand alone", name);
        slot.cards[0]->bond = Claim{};
    }
    if (bond->members.count > 0 || bond->mode >= 0) {
        findings->Add(name,
                      "fewer than two cards claim it: its saved mode and members are emptied");
    }
    *bond = Master{};
}

void SettleBond(const char* name, const Slot& slot, Master* bond, Findings* findings)
{
    if (slot.count < 2) {
        DissolveBond(name, slot, bond, findings);
        return;
    }
    if (bond->mode < 0) {
        findings->Add(name, "no mode is saved: active-backup");
        bond->mode = 1;
    }
    if (IsInOrder(*bond, slot)) return;

    TellList(name, "members", *bond, slot, findings);
    TakeMembers(slot, bond);
}

void SettleBonds(const Device& device, Draft* draft, Findings* findings)
{
    Claims claims;
    for (int i = 0; i < draft->cardCount; ++i) {
        ClaimBond(device, &draft->cards[i], &claims, findings);
    }
    for (int i = 0; i < device.count; ++i) {
        const Interface& entry = device.list[i];
        if (!IsWalked(entry, Kind::Bond)) continue;
        const uint32_t number = NumberIn(entry.name, 4);
        if (number > kLastSettledBond) continue;
        SettleBond(entry.name, claims.slots[number], &draft->bonds[i], findings);
    }
}

// ---- bridges

void ClaimBridge(Card* card, Claims* claims, Findings* findings)
{
    Claim& claim = card->bridge;
    if (!claim.isMarked || !claim.hasName || !Contains(claim.name, "br")) {
        if (claim.isMarked) {
            findings->Add(card->interface->name,
                          "it is marked as bridged without a bridge: it will stand alone");
        }
        claim = Claim{};
        return;
    }
    const uint32_t number = NumberIn(claim.name, 2);
    if (number < kSlots) claims->Add(number, card);
}

/// @return true when the list was in order: the walk ends there
bool SettleBridge(const char* name, const Slot& slot, Master* bridge, Findings* findings)
{
    if (slot.count >= 2) {
        if (IsInOrder(*bridge, slot)) return true;
        TellList(name, "ports", *bridge, slot, findings);
        TakeMembers(slot, bridge);
        bridge->hasFile = true;
        return false;
    }
    if (slot.count == 1) {
        findings->Add(slot.cards[0]->interface->name,
                      "it is the only card that claims %s: it will stand alone", name);
        slot.cards[0]->bridge = Claim{};
    }
    if (bridge->hasFile) findings->Add(name, "fewer than two cards claim it: its file is removed");
    *bridge = Master{};
    return false;
}

void SettleBridges(Draft* draft, Findings* findings)
{
    Claims claims;
    for (int i = 0; i < draft->cardCount; ++i) ClaimBridge(&draft->cards[i], &claims, findings);
    for (uint32_t number = 0; number < kSlots; ++number) {
        Name bridge;
        FormatText(bridge, sizeof(bridge), "br%u", number);
        if (SettleBridge(bridge, claims.slots[number], &draft->bridges[number], findings)) return;
    }
}

// ---- work modes

int WorkModeOf(const Card& card)
{
    if (card.bond.isMarked) return netModeBond;
    if (card.bridge.isMarked) return netModeBridge;
    return card.interface->switchMode == 1 ? netModeSwitch : netModeMultiple;
}

/// @return false when a card was in a bond and in a bridge
bool TakeApart(Draft* draft, Findings* findings)
{
    bool clear = true;
    for (int i = 0; i < draft->cardCount; ++i) {
        Card& card = draft->cards[i];
        if (!card.bond.isMarked || !card.bridge.isMarked) continue;
        findings->Add(card.interface->name,
                      "it claims %s and %s at once: it leaves both and will stand alone",
                      card.bond.name, card.bridge.name);
        card.bond = Claim{};
        card.bridge = Claim{};
        clear = false;
    }
    return clear;
}

void TellWorkModes(const Draft& draft, Findings* findings)
{
    for (int i = 0; i < draft.cardCount; ++i) {
        const Card& card = draft.cards[i];
        const int saved = card.interface->saved.workMode;
        const int next = WorkModeOf(card);
        if (saved < 0 || saved == next) continue;
        findings->Add(card.interface->name, "the saved work mode %d becomes %d", saved, next);
    }
}

void ForetellTopology(const Device& device, Findings* findings)
{
    Draft& draft = *Fresh<Draft>();
    Begin(device, &draft);
    for (int i = 0; i < device.count; ++i) {
        const Interface& entry = device.list[i];
        if (IsWalked(entry, Kind::Bond)) ConvertMode(entry, &draft.bonds[i], findings);
    }
    SettleBonds(device, &draft, findings);
    SettleBridges(&draft, findings);
    if (!TakeApart(&draft, findings)) {
        SettleBonds(device, &draft, findings);
        SettleBridges(&draft, findings);
    }
    TellWorkModes(draft, findings);
}

// ---- addresses

void ForetellMtu(const Interface& entry, Findings* findings)
{
    if (entry.saved.mtu <= 0) findings->Add(entry.name, "no MTU is saved: %d", kDefaultMtu);
}

void TellSaved(const char* reason, const IPv4& ipv4, Findings* findings)
{
    char address[kAddressSize];
    char gateway[kIPv4TextSize] = {};
    PrintAddress(ipv4.address, ipv4.mask, address);
    (void)PrintIPv4(ipv4.gateway, gateway);
    findings->Add("eth0", "%s: %s, gateway %s is saved", reason, address, gateway);
}

bool AreEqual(const IPv4& left, const IPv4& right)
{
    return left.address == right.address && left.mask == right.mask &&
           left.gateway == right.gateway;
}

void ForetellWipe(const Backup& backup, Findings* findings)
{
    const char* why = nullptr;
    if (backup.state == MemoryState::Corrupt) why = "its check sum is wrong";
    if (backup.state == MemoryState::Unflagged) why = "no program of this layout has written it";
    if (why != nullptr) findings->Add("", "the backup memory is wiped: %s", why);
}

void ForetellEth0(const Device& device, const Interface& entry, Findings* findings)
{
    const IPv4& saved = entry.saved.ipv4;
    const Backup& memory = device.backup;
    const bool isUnknown =
        memory.state == MemoryState::Forbidden || memory.state == MemoryState::NotLookedAt;
    const bool isGood = memory.state == MemoryState::Good && memory.ipv4.isUsable;
    ForetellMtu(entry, findings);
    if (isGood && !saved.isUsable) {
        TellSaved("no usable address is saved, the backup memory has one", memory.ipv4, findings);
    } else if (isGood && !AreEqual(saved, memory.ipv4)) {
        TellSaved("the backup memory wins over the file", memory.ipv4, findings);
    } else if (!isGood && !saved.isUsable) {
        findings->Add(entry.name, "no usable address is saved: %s%s",
                      isUnknown ? "the backup memory's or " : "", kFactoryEth0);
    } else if (!isGood && memory.state == MemoryState::Good) {
        findings->Add(entry.name, "the backup memory is empty: it is filled from the file");
    }
}

void ForetellCard(const Device& device, const char* name, uint32_t factory, uint32_t number,
                  Findings* findings)
{
    const Interface* entry = Find(device, name);
    if (entry == nullptr) return;

    ForetellMtu(*entry, findings);
    if (entry->saved.ipv4.isUsable) return;
    char address[kAddressSize];
    PrintAddress(htonl(factory + number), htonl(kMask24), address);
    findings->Add(name, "no usable address is saved: %s", address);
}

/// Bonds and wireless cards are numbered without gaps: the first that is missing ends the walk.
void ForetellNumbered(const Device& device, const char* kind, uint32_t factory, Findings* findings)
{
    for (int number = 0; number < kNumberedCards; ++number) {
        Name name;
        FormatText(name, sizeof(name), "%s%d", kind, number);
        if (!IsPresent(device, name)) return;
        ForetellCard(device, name, factory, static_cast<uint32_t>(number), findings);
    }
}

void ForetellSwitch(const Device& device, Findings* findings)
{
    for (int i = 0; i < device.count; ++i) {
        const Interface& entry = device.list[i];
        if (!entry.isSwitch) continue;
        ForetellMtu(entry, findings);
        if (!entry.saved.ipv4.isUsable) {
            findings->Add(entry.name, "no usable address is saved: 10.1.1.1/24");
        }
    }
}

void ForetellAddresses(const Device& device, Findings* findings)
{
    ForetellWipe(device.backup, findings);
    const Interface* first = Find(device, "eth0");
    if (first != nullptr && IsPresent(device, "eth0")) ForetellEth0(device, *first, findings);
    for (int number = 1; number < kEthCards; ++number) {
        Name name;
        FormatText(name, sizeof(name), "eth%d", number);
        if (!IsPresent(device, name)) continue;
        ForetellCard(device, name, kFactoryEth, static_cast<uint32_t>(number), findings);
    }
    ForetellNumbered(device, "bond", kFactoryBond, findings);
    ForetellNumbered(device, "wlan", kFactoryWlan, findings);
    ForetellSwitch(device, findings);
}

// ---- what all share

void ForetellNames(const Device& device, Findings* findings)
{
    const Interface* second = Find(device, "eth2");
    if (second != nullptr && second->saved.hasOldName) {
        findings->Add("eth2", "the file network2 of an old release gets the name networketh2");
    }
    if (!device.hasDefault) {
        findings->Add("", "no default card is saved: eth0");
    } else if (device.savedDefault[0] == '\0') {
        findings->Add("", "the default card is marked but not named: %s is saved",
                      device.defaultCard);
    } else if (!Equal(device.savedDefault, device.defaultCard)) {
        findings->Add("", "the default card %s is gone: %s takes its place", device.savedDefault,
                      device.defaultCard);
    }
}

void ForetellResolvers(const Resolvers& resolvers, Findings* findings)
{
    if (resolvers.file == FileState::Unreadable) return;
    if (!resolvers.hasIPv4) {
        findings->Add("", "fewer than two IPv4 resolvers are saved: 8.8.8.8 and 8.8.4.4");
    }
    if (!resolvers.hasIPv6) {
        findings->Add("", "fewer than two IPv6 resolvers are saved: 2001:4860:4860::8888 and "
                          "2001:4860:4860::8844");
    }
}

/// A route that no setting asks for goes with the next boot; one over a gateway that is none of the
/// default card's as well.
bool IsSaved(const Device& device, const Route& route, const Interface& entry)
{
    if (route.mask == 0) {
        return Equal(entry.name, device.defaultCard) &&
               (!entry.saved.ipv4.hasGateway || route.gateway == entry.saved.ipv4.gateway);
    }
    // A member has no routes of its own, unless it is the default card.
    if (entry.live.master != 0 && !Equal(entry.name, device.defaultCard)) return false;

    const IPv4& saved = entry.saved.ipv4;
    const IPv4& live = entry.live.ipv4;
    const bool isOwn = (saved.hasAddress && route.net == (saved.address & saved.mask)) ||
                       (live.hasAddress && route.net == (live.address & live.mask));
    return isOwn && route.gateway == 0;
}

void ForetellRoutes(const Device& device, Findings* findings)
{
    for (int i = 0; i < device.routeCount; ++i) {
        const Route& route = device.routes[i];
        const Interface* entry = FindIndex(device, route.index);
        if (entry == nullptr || IsSaved(device, route, *entry)) continue;
        char net[kAddressSize];
        char gateway[kIPv4TextSize] = {};
        PrintAddress(route.net, route.mask, net);
        (void)PrintIPv4(route.gateway, gateway);
        findings->Add(entry->name, "the route to %s%s%s is not saved: it is removed",
                      route.mask == 0 ? "everywhere" : net, route.gateway == 0 ? "" : " via ",
                      route.gateway == 0 ? "" : gateway);
    }
}

}  // namespace

void Foretell(const Device& device, Findings* findings)
{
    if (!device.hasFolder || AreFilesHidden(device)) return;

    ForetellNames(device, findings);
    ForetellTopology(device, findings);
    ForetellAddresses(device, findings);
    ForetellResolvers(device.resolvers, findings);
    ForetellRoutes(device, findings);
}

}  // namespace status
