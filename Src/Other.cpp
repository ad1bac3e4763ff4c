// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Other.h"

#include "Base.h"
#include "Support/Handles.h"
#include "Support/KeptTable.h"
#include "Support/Lines.h"
#include "Support/Log.h"
#include "Support/Text.h"

#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <linux/sockios.h>
#include <net/if_arp.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace vorlix {

namespace {

// ---- texts and limits

constexpr char kNeighbourTable[] = "/proc/net/arp";
constexpr unsigned kStatic = ATF_COM | ATF_PERM;
constexpr size_t kMacTextLength = kMacTextSize - 1;

constexpr char kStartDaemon[] =
    "start-stop-daemon --start --quiet --pidfile /var/run/sshd.pid --exec /usr/sbin/sshd -- -f "
    "/etc/ssh/sshd_config";
constexpr char kStopDaemon[] =
    "start-stop-daemon --stop --quiet --oknodo --pidfile /var/run/sshd.pid";

// ---- lookups

/// The first and the fourth column. A short line sets what it holds.
struct Neighbour {
    char ip[kIPv4TextSize] = {};
    char mac[kMacTextSize] = {};
};

Neighbour ScanNeighbour(const char* line)
{
    Neighbour row;
    char unused[kMacTextSize];
    (void)sscanf(line, "%15s %17s %7s %17s %17s %17s", row.ip, unused, unused, row.mac, unused,
                 unused);
    return row;
}

// ---- changes

/// A caller's entry as texts with an end: a field may be filled up without one.
struct EntryTexts {
    char dev[sizeof(NetARPEntry::dev)];
    char ip[sizeof(NetARPEntry::ip) + 1];
    char mac[sizeof(NetARPEntry::mac) + 1];
};

template <size_t size, size_t room>
void CopyField(char (&text)[size], const char (&field)[room])
{
    static_assert(size <= room + 1, "no byte behind the field is read");
    CopyText(text, field);
}

EntryTexts TextsOf(const NetARPEntry& entry)
{
    EntryTexts texts;
    CopyField(texts.dev, entry.dev);
    CopyField(texts.ip, entry.ip);
    CopyField(texts.mac, entry.mac);
    return texts;
}

/// Reads six fields with nothing behind them.
bool StoreMac(const char* operation, const char* text, sockaddr* stored)
{
    unsigned char mac[kMacSize] = {};
    char behind[2];
    if (sscanf(text, "%02hhx:%02hhx:%02hhx:%02hhx:%02hhx:%02hhx%1s", &mac[0], &mac[1], &mac[2],
               &mac[3], &mac[4], &mac[5], behind) != kMacSize) {
        LOG_ERROR_AS(operation, "mac error");
        return false;
    }
    stored->sa_family = ARPHRD_ETHER;
    memcpy(stored->sa_data, mac, sizeof(mac));
    return true;
}

bool StoreIP(const char* operation, const char* text, sockaddr* stored)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    if (!ParseIPv4(text, &address.sin_addr.s_addr)) {
        LOG_ERROR_AS(operation, "addr error");
        return false;
    }
    memcpy(stored, &address, sizeof(*stored));
    return true;
}

/// What an addition and a deletion have in common, and the words that tell them apart.
struct Change {
    const char* operation;
    const char* verb;    // in front of a card that is named
    const char* failed;  // in front of an entry that the kernel refused
    int request;
};
constexpr Change kAddition = {"arpSetStaticEntry", "add", "Add", SIOCSARP};
constexpr Change kDeletion = {"arpDelStaticEntry", "del", "del", SIOCDARP};

bool Perform(const Change& change, const EntryTexts& texts, arpreq* request)
{
    if (texts.dev[0] != '\0') {
        CopyText(request->arp_dev, texts.dev);
        LOG_WARN_AS(change.operation, "%s with dev name:[%s]", change.verb, texts.dev);
    }
    if (NetIOCtrl(change.request, request)) return true;

    LOG_ERROR_AS(change.operation, "%s Static ARPEntry failed [%s][%s]", change.failed, texts.ip,
                 texts.mac);
    return false;
}

// ---- listings

using ScanLine = void (*)(const char* line, NetARPEntry* entry, unsigned* flags);

// The two scans differ only in the width of the first column. A short line sets what it holds; the
// rest stays as the lines before it have left it.

void ScanAnyLine(const char* line, NetARPEntry* entry, unsigned* flags)
{
    char ip[sizeof(entry->ip) + 1];  // the column may be wider than the field
    CopyText(ip, entry->ip);
    char unused[kMacTextSize];
    (void)sscanf(line, "%16s %17s %6x %17s %17s %15s", ip, unused, flags, entry->mac, unused,
                 entry->dev);
    CopyText(entry->ip, ip);
}

void ScanLineOfAddress(const char* line, NetARPEntry* entry, unsigned* flags)
{
    char unused[kMacTextSize];
    (void)sscanf(line, "%15s %17s %6x %17s %17s %15s", entry->ip, unused, flags, entry->mac, unused,
                 entry->dev);
}

/// @param ip  of the entries that are wanted, or NULL for all
bool ListStatic(const char* operation, ScanLine scan, const char* ip, NetARPEntry* entries,
                int* num)
{
    const Fd table(open(kNeighbourTable, O_RDONLY));
    if (!table.Ok()) {
        LOG_ERROR_AS(operation, "Can not open %s", kNeighbourTable);
        return false;
    }
    LineReader reader(table.Get());
    char line[kLineSize];
    NetARPEntry entry{};
    unsigned flags = 0;
    int count = 0;
    while (count < *num && reader.Next(line)) {
        scan(line, &entry, &flags);
        if (flags != kStatic || (ip != nullptr && !Equal(entry.ip, ip))) continue;

        flags = 0;
        entries[count] = entry;
        ++count;
    }
    *num = count;
    return true;
}

}  // namespace

}  // namespace vorlix

using namespace vorlix;

bool Other_GetIPByMac(const char* mac, char* ip)
{
    static KeptTable table{kNeighbourTable};

    if (mac == nullptr || ip == nullptr || strlen(mac) != kMacTextLength) return false;

    MutexGuard guard(table.routeLock);
    if (!OpenTable(&table)) return false;

    LineReader reader(table.fd);
    char line[kLineSize];
    while (reader.Next(line)) {
        if (!Contains(line, mac)) continue;

        (void)sscanf(line, "%15s", ip);
        return true;
    }
    guard.Release();
    LOG_ERROR("can not find this ip by mac %s", mac);
    return false;
}

bool Other_GetMacByIP(const char* ip, char* mac)
{
    static KeptTable table{kNeighbourTable};

    if (ip == nullptr || mac == nullptr) return false;

    uint32_t address = 0;
    if (!ParseIPv4(ip, &address)) {
        LOG_ERROR("ip %s error", ip);
        return false;
    }
    MutexGuard guard(table.routeLock);
    if (!OpenTable(&table)) return false;

    memset(mac, 0, kMacTextSize);
    LineReader reader(table.fd);
    char line[kLineSize];
    while (reader.Next(line)) {
        if (!Contains(line, ip)) continue;  // most lines need no scan

        const Neighbour row = ScanNeighbour(line);
        if (!Equal(row.ip, ip)) continue;

        CopyText(mac, kMacTextSize, row.mac);
        return true;
    }
    guard.Release();
    LOG_ERROR("can not find this mac by ip %s", ip);
    return false;
}

bool arpSetStaticEntry(const NetARPEntry* arpInfo)
{
    if (arpInfo == nullptr) return false;

    const EntryTexts texts = TextsOf(*arpInfo);
    arpreq request{};
    if (!StoreMac(__func__, texts.mac, &request.arp_ha) ||
        !StoreIP(__func__, texts.ip, &request.arp_pa)) {
        return false;
    }
    request.arp_flags = kStatic;
    return Perform(kAddition, texts, &request);
}

bool arpDelStaticEntry(const NetARPEntry* arpInfo)
{
    if (arpInfo == nullptr) return false;

    const EntryTexts texts = TextsOf(*arpInfo);
    arpreq request{};
    if (!StoreIP(__func__, texts.ip, &request.arp_pa)) return false;

    return Perform(kDeletion, texts, &request);
}

bool arpGetAllStaticEntry(NetARPEntry* arpInfo, int* num)
{
    if (arpInfo == nullptr || num == nullptr || *num < 1) return false;

    memset(arpInfo, 0, static_cast<size_t>(*num) * sizeof(*arpInfo));
    return ListStatic(__func__, ScanAnyLine, nullptr, arpInfo, num);
}

bool arpGetARPStaticInfoByIP(const char* ip, NetARPEntry* arpInfo, int* num)
{
    if (ip == nullptr || arpInfo == nullptr || num == nullptr || *num < 1) return false;

    return ListStatic(__func__, ScanLineOfAddress, ip, arpInfo, num);
}

int SetSSHStatus(SSHInfo* sshInfo)
{
    if (sshInfo == nullptr) {
        LOG_ERROR("Set SSH failed!\n");
        return -1;
    }
    const bool start = sshInfo->enable != 0;
    if (VorlixRunCmd(start ? kStartDaemon : kStopDaemon)) return 0;

    // The script in the message plays no part.
    LOG_ERROR("run cmd /etc/init.d/sshd %s fail!\n", start ? "start" : "stop");
    return -1;
}
