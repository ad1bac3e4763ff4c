// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Dns.h"

#include "Support/Handles.h"
#include "Support/Lines.h"
#include "Support/Log.h"
#include "Support/Text.h"

#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <pthread.h>

namespace vorlix {

namespace {

// ---- texts and limits

constexpr char kServerFile[] = "/mnt/mtd/Config/resolv.conf";      // for the system's resolver
constexpr char kServerFile6[] = "/mnt/mtd/Config/resolvip6.conf";  // the IPv6 servers again
constexpr char kServerWord[] = "nameserver";
constexpr char kServerLine[] = "nameserver %s\n";

constexpr int kServerLines = 32;  // looked at
constexpr int kSavedSize = 256;
constexpr int kRefusedSize = 16 + 1;  // what a message shows of a text that is no address

// ---- state

pthread_mutex_t DnsLock = PTHREAD_MUTEX_INITIALIZER;  // each whole read or rewrite of the files

// ---- addresses

bool IsIPv4(const char* text)
{
    uint32_t ignored = 0;
    return ParseIPv4(text, &ignored);
}

bool IsIPv6(const char* text)
{
    in6_addr ignored{};
    return ParseIPv6(text, &ignored);
}

// ---- reading

/// Where one server goes.
struct Slot {
    char* text = nullptr;  // NULL: not wanted
    int size = 0;
    bool filled = false;

    bool IsMissing() const { return text != nullptr && !filled; }
};

/// The servers of one kind, in their order.
struct Pair {
    Slot primary;
    Slot secondary;

    bool IsComplete() const { return !primary.IsMissing() && !secondary.IsMissing(); }
    bool IsWhollyMissing() const { return primary.IsMissing() && secondary.IsMissing(); }
};

void FillIPv4(Slot* slot, const char* server)
{
    uint32_t address = 0;
    if (!ParseIPv4(server, &address)) {
        LOG_ERROR_AS("Dns_GetDnsFileInfo", " error ipv4 addr.[%s]", server);
        return;
    }
    slot->filled = PrintIPv4(address, slot->text);
}

void FillIPv6(Slot* slot, const char* server)
{
    in6_addr address{};
    if (!ParseIPv6(server, &address)) {
        LOG_ERROR_AS("Dns_GetDnsFileInfo", " error ipv6 addr.[%s]", server);
        return;
    }
    slot->filled = PrintIPv6(address, slot->text, slot->size);
}

/// Offers a server to the first slot that still waits for one. A bad text leaves the slot to the
/// next line.
void FillNext(Pair* pair, void (*fill)(Slot* slot, const char* server), const char* server)
{
    if (pair->primary.IsMissing()) {
        fill(&pair->primary, server);
    } else if (pair->secondary.IsMissing()) {
        fill(&pair->secondary, server);
    }
}

/// The text behind "nameserver", without the blanks around it. NULL when the word is missing.
const char* ServerIn(char* line)
{
    char* server = strstr(line, kServerWord);
    if (server == nullptr) return nullptr;

    server += strlen(kServerWord);
    while (*server == ' ') ++server;
    size_t length = strlen(server);
    while (length > 0 && (server[length - 1] == ' ' || server[length - 1] == '\n')) --length;
    server[length] = '\0';
    return server;
}

bool ReadServers(const char* path, Pair* ipv4, Pair* ipv6)
{
    const Fd file(open(path, O_RDONLY));
    if (!file.Ok()) return false;

    LineReader reader(file.Get());
    char line[kLineSize];
    for (int i = 0; i < kServerLines && reader.Next(line); ++i) {
        const char* server = ServerIn(line);
        if (server == nullptr) break;

        const bool isIPv6 = strchr(line, ':') != nullptr;  // anywhere, in front of the word too
        FillNext(isIPv6 ? ipv6 : ipv4, isIPv6 ? FillIPv6 : FillIPv4, server);
    }
    return true;
}

/// Returns the file that could not be opened, or NULL.
const char* ReadFiles(Pair* ipv4, Pair* ipv6)
{
    const MutexGuard guard(DnsLock);
    if (!ReadServers(kServerFile, ipv4, ipv6)) return kServerFile;
    if (!ipv6->IsWhollyMissing()) return nullptr;

    Pair none;
    return ReadServers(kServerFile6, &none, ipv6) ? nullptr : kServerFile6;
}

// ---- writing

/// One of the four servers to write.
struct Server {
    const char* name;
    const char* text;  // NULL: left out
    bool (*isValid)(const char* text);
    bool inBothFiles;
    bool isRefused = false;
    char refused[kRefusedSize] = {};
};

void WriteServer(Server* server, FILE* file, FILE* file6)
{
    if (server->text == nullptr) return;

    if (!server->isValid(server->text)) {
        server->isRefused = true;
        CopyText(server->refused, server->text);
        return;
    }
    (void)fprintf(file, kServerLine, server->text);
    if (server->inBothFiles) (void)fprintf(file6, kServerLine, server->text);
}

/// Returns the file that could not be opened, or NULL.
template <size_t count>
const char* RewriteFiles(Server (&servers)[count])
{
    const MutexGuard guard(DnsLock);
    const Stream file(fopen(kServerFile, "w+"));
    if (file == nullptr) return kServerFile;

    const Stream file6(fopen(kServerFile6, "w+"));
    if (file6 == nullptr) return kServerFile6;

    for (Server& server : servers) WriteServer(&server, file.get(), file6.get());
    return nullptr;
}

}  // namespace

}  // namespace vorlix

using namespace vorlix;

bool Dns_GetDnsFileInfo(char* primary_4, char* secondary_4, char* primary_6, char* secondary_6,
                        int len_6)
{
    Pair ipv4 = {{primary_4, kIPv4TextSize}, {secondary_4, kIPv4TextSize}};
    Pair ipv6 = {{primary_6, len_6}, {secondary_6, len_6}};
    const char* unopened = ReadFiles(&ipv4, &ipv6);
    if (unopened != nullptr) {
        LOG_ERROR("open %s failed", unopened);
        return false;
    }
    return ipv4.IsComplete() && ipv6.IsComplete();
}

bool Dns_SetDnsAddress(const char* primary_4, const char* secondary_4, const char* primary_6,
                       const char* secondary_6)
{
    Server servers[] = {{"primary_4", primary_4, IsIPv4, false},
                        {"srimary_4", secondary_4, IsIPv4, false},
                        {"primary_6", primary_6, IsIPv6, true},
                        {"srimary_6", secondary_6, IsIPv6, true}};
    const char* unopened = RewriteFiles(servers);
    if (unopened != nullptr) {
        LOG_ERROR("Can not open %s", unopened);
        return false;
    }
    for (const Server& server : servers) {
        if (server.isRefused) LOG_ERROR("%s addr.[%s]", server.name, server.refused);
    }
    return true;
}

bool Dns_SetDnsServerIPv4(const char* primary, const char* secondary)
{
    if (primary == nullptr || secondary == nullptr) return false;

    if (!IsIPv4(primary) || !IsIPv4(secondary)) {
        LOG_ERROR("address error.[%s][%s]", primary, secondary);
        return false;
    }
    char primary_6[kSavedSize] = {};
    char secondary_6[kSavedSize] = {};
    // A server that is not saved stays an empty text, which the write below refuses by name.
    (void)Dns_GetDnsFileInfo(nullptr, nullptr, primary_6, secondary_6, kSavedSize);
    return Dns_SetDnsAddress(primary, secondary, primary_6, secondary_6);
}

bool Dns_SetDnsServerIPv6(const char* primary, const char* secondary)
{
    if (primary == nullptr || secondary == nullptr) return false;

    if (!IsIPv6(primary) || !IsIPv6(secondary)) {
        LOG_ERROR("address error.[%s][%s]", primary, secondary);
        return false;
    }
    char primary_4[kSavedSize] = {};
    char secondary_4[kSavedSize] = {};
    (void)Dns_GetDnsFileInfo(primary_4, secondary_4, nullptr, nullptr, 0);
    return Dns_SetDnsAddress(primary_4, secondary_4, primary, secondary);
}

bool Dns_GetDnsServerIPv4(char* primary, char* secondary)
{
    if (primary == nullptr || secondary == nullptr) return false;

    return Dns_GetDnsFileInfo(primary, secondary, nullptr, nullptr, 0);
}

bool Dns_GetDnsServerIPv6(char* primary, char* secondary, int len)
{
    if (primary == nullptr || secondary == nullptr) return false;

    return Dns_GetDnsFileInfo(nullptr, nullptr, primary, secondary, len);
}

// For applications: what they must not pass is refused one step below.

bool SetIPv4DnsServer(const char* primary, const char* secondary)
{
    return Dns_SetDnsServerIPv4(primary, secondary);
}

bool GetIPv4DnsServer(char* primary, char* secondary)
{
    return Dns_GetDnsServerIPv4(primary, secondary);
}

bool SetIPv6DnsServer(const char* primary, const char* secondary)
{
    return Dns_SetDnsServerIPv6(primary, secondary);
}

bool GetIPv6DnsServer(char* primary, char* secondary, int len)
{
    return Dns_GetDnsServerIPv6(primary, secondary, len);
}
