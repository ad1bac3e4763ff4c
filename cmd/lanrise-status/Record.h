// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

/// What is known of the device at one moment: for each interface what the kernel, the setting files
/// and the backup memory say, as plain values. It is gathered once, then judged and printed.

#include "Base.h"

#include <new>

#include <netinet/in.h>

namespace status {

using Name = char[vorlix::kNameSize];

constexpr int kMaxRows = 64;     // interfaces of the kernel, and those that only have a file
constexpr int kMaxMembers = 32;  // of one bond or bridge
constexpr int kMemberSize = 33;  // a bridge's list is not cut to the size of a name
constexpr int kMaxIPv6 = 8;      // addresses of one interface
constexpr int kMaxRoutes = 64;   // IPv4 routes of the main table
constexpr int kMaxIgnored = 16;  // names that do not count as interfaces of the device
constexpr int kServerSize = 64;  // text of a resolver
constexpr int kIPv6Size = 52;    // address, slash, prefix length
constexpr int kDriverSize = 32;

/// One store's word on an address: network byte order.
struct IPv4 {
    bool hasAddress = false;
    bool hasGateway = false;
    bool isUsable = false;  // what a boot takes as address, mask and gateway of one net
    uint32_t address = 0;
    uint32_t mask = 0;
    uint32_t gateway = 0;
};

/// Names of a bond's or bridge's members.
struct Members {
    int count = 0;
    char names[kMaxMembers][kMemberSize] = {};
};

enum class Kind : unsigned char { Card, Bond, Bridge };

/// What the kernel has.
struct Live {
    bool present = false;
    bool up = false;    // by its administrator
    bool link = false;  // and by its cable
    int index = 0;
    int master = 0;  // index of its bond or bridge, or 0
    int mtu = 0;
    int speed = 0;  // Mbit/s, 0: not known
    bool fullDuplex = false;
    char mac[18] = {};
    char driver[kDriverSize] = {};
    char kind[16] = {};  // "bond", "bridge", "veth", …; empty for a card
    IPv4 ipv4;
    int ipv4Count = 0;  // the first is in `ipv4`
    int ipv6Count = 0;
    char ipv6[kMaxIPv6][kIPv6Size] = {};
    int bondMode = -1;
    int activeSlave = 0;  // index
    int spanningTree = -1;
};

/// How a card's file ties it to a bond or bridge.
struct Claim {
    bool isMarked = false;
    bool hasName = false;
    Name name = {};
};

enum class FileState : unsigned char { Missing, Unreadable, Read };

/// What the setting files say.
struct Saved {
    FileState file = FileState::Missing;
    bool hasOldName = false;  // the file still has the name that an old release gave it
    IPv4 ipv4;
    int mtu = 0;        // 0: none that is usable
    int workMode = -1;  // -1: none
    Claim bond;
    Claim bridge;
    bool isTrunk = false;  // a bond's file of a release that kept no list of members
    int bondMode = -1;     // -1: none
    bool hasMembers = false;
    Members members;
    char ipv6[kIPv6Size] = {};
    char gateway6[kIPv6Size] = {};
};

struct Interface {
    Name name = {};
    Kind kind = Kind::Card;
    bool isCounted = false;  // among the 32 that the boot looks at
    bool isSwitch = false;
    int switchMode = 0;
    Live live;
    Saved saved;
};

struct Route {
    uint32_t net = 0;
    uint32_t mask = 0;
    uint32_t gateway = 0;
    uint32_t metric = 0;
    int index = 0;  // of the interface
};

enum class MemoryKind : unsigned char { None, Cmos, Rtc, Sram };
enum class MemoryState : unsigned char {
    Good,
    Corrupt,     // a boot wipes it
    Unflagged,   // CMOS that no program of this layout has written: a boot wipes it
    Failed,      // the device or provider does not answer
    Forbidden,   // not for this user
    NotLookedAt  // reading would change the driver's state
};

struct Backup {
    MemoryKind kind = MemoryKind::None;
    MemoryState state = MemoryState::Failed;
    IPv4 ipv4;  // of eth0, as it would be restored
    unsigned mark = 0;
};

struct Resolvers {
    FileState file = FileState::Missing;
    bool hasIPv4 = false;  // two of them, as a boot wants
    bool hasIPv6 = false;
    char servers[4][kServerSize] = {};
    bool isSystems = false;  // /etc/resolv.conf is a link to the saved file
};

struct Device {
    int count = 0;
    Interface list[kMaxRows];
    int left = 0;  // that had no room
    int ignoredCount = 0;
    Name ignored[kMaxIgnored] = {};
    int misnamedCount = 0;
    Name misnamed[kMaxIgnored] = {};  // cards with a file of a name that is not their file's

    bool hasFolder = false;
    bool isFolderForbidden = false;
    bool hasDefault = false;
    Name defaultCard = {};       // what the boot takes
    char savedDefault[64] = {};  // the text under DEFAULT_ETH; empty: none
    char present[256] = {};      // the boot's list of names, a comma behind each
    bool bridgeFile[kMaxMembers] = {};

    int routeCount = 0;
    Route routes[kMaxRoutes];
    bool areRoutesCut = false;

    Backup backup;
    Resolvers resolvers;
};

/// A record too large for the stack of a small device, made anew in the same place each time. It
/// takes no room in the program file.
template <class Large>
Large* Fresh()
{
    alignas(Large) static unsigned char place[sizeof(Large)];
    return new (place) Large();
}

/// The interface of that name, or NULL.
const Interface* Find(const Device& device, const char* name);

/// The interface of that index, or NULL.
const Interface* FindIndex(const Device& device, int index);

/// Adds a row for the name when there is none and there is room.
Interface* Enter(Device* device, const char* name);

/// True when a setting file, or the folder of them, may not be read by this user.
bool AreFilesHidden(const Device& device);

/// True when all that the judgement needs was there and open to this user.
bool IsWholeRead(const Device& device);

/// True when the interface is in the list of names that the boot walks.
bool IsPresent(const Device& device, const char* name);

/// Members that the kernel shows, in its order.
Members LiveMembers(const Device& device, const Interface& master);

}  // namespace status
