// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "TrafficControl.h"

#include "Base.h"
#include "Support/Handles.h"
#include "Support/KeyFile.h"
#include "Support/Log.h"
#include "Support/Text.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace vorlix {

namespace {

// ---- texts and limits

constexpr char kRemoveRoot[] = "/usr/local/bin/tc qdisc del dev %s root";
constexpr char kAddRoot[] = "/usr/local/bin/tc qdisc add dev %s root handle 1: htb default 10";
constexpr char kRemoveIngress[] = "/usr/local/bin/tc qdisc del dev %s ingress";
constexpr char kAddClass[] =
    "/usr/local/bin/tc class add dev %s parent 1: classid 1:%d htb rate %dmbit";
constexpr char kAddFilter[] = "/usr/local/bin/tc filter add dev %s parent 1: protocol ip u32 "
                              "match ip dst %s flowid 1:%d";
constexpr char kAddLeaf[] =
    "/usr/local/bin/tc qdisc add dev %s parent 1:%d handle %d: sfq perturb 5";

constexpr char kConfigFile[] = "/mnt/mtd/Config/nettc_%s";
constexpr char kWrittenLine[] = "dev %15s, ip %47s, type %8d, bw %8d, flag %8d,\n";
constexpr char kReadLine[] = "dev %15[^,], ip %47[^,], type %8d, bw %8d, flag %8d,\n";
constexpr int kFields = 5;

constexpr size_t kTextSize = 256;  // of a path and of a line
constexpr size_t kCommandSize = 255;
constexpr size_t kAddressSize = sizeof(NetTc::ipAddr);
constexpr char kSeparator = ',';
constexpr int kFirstClass = 10;  // the roots' default class too
constexpr int kClassStep = 10;

// ---- state

// The cards that have a root from this process, each with a comma before it. Unguarded.
char devHaveInited[256] = {};

// ---- commands

struct Command {
    char text[kCommandSize];
};

__attribute__((format(printf, 1, 2))) Command FormCommand(const char* format, ...)
{
    Command command;
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(command.text, sizeof(command.text), format, arguments);
    va_end(arguments);
    return command;
}

bool Run(const char* operation, const Command& command)
{
    if (VorlixRunCmd(command.text)) return true;

    LOG_ERROR_AS(operation, "run cmd %s fail\n", command.text);
    return false;
}

/// Takes away the root of a card, whoever has made it.
bool RemoveRoot(const char* operation, const char* name)
{
    const Command command = FormCommand(kRemoveRoot, name);
    if (VorlixRunCmd(command.text)) return true;

    LOG_WARN_AS(operation, "run cmd %s fail, ingore it\n", command.text);
    return false;
}

// ---- the list of cards

/// The card's name in the list; NULL when the card has no root from this process.
char* FindCard(const char* name)
{
    return FindWordInLine(devHaveInited, name, kSeparator);
}

bool FitsList(const char* name)
{
    return strlen(devHaveInited) + strlen(name) + 1 < sizeof(devHaveInited);
}

void AddCard(const char* name)
{
    (void)Strcat(devHaveInited, sizeof(devHaveInited), ",", nullptr);
    (void)Strcat(devHaveInited, sizeof(devHaveInited), name, nullptr);
}

/// Takes the name that was found out of the list, with the comma before it.
void CutCard(char* found, const char* name)
{
    char* entry = found == devHaveInited ? found : found - 1;  // a name may bring its own comma
    const char* behind = found + strlen(name);
    memmove(entry, behind, strlen(behind) + 1);
}

// ---- the file

void FormPath(const char* name, char (&path)[kTextSize])
{
    FormatText(path, sizeof(path), kConfigFile, name);
}

/// Reads one line. What does not fit a field makes the line none, like a field that is missing.
bool ParseLine(const char* line, NetTc* tc)
{
    char device[16];  // the name of the file decides, not this column
    char address[kAddressSize];
    int type = 0;
    int bandWidth = 0;
    int flags = 0;
    if (sscanf(line, kReadLine, device, address, &type, &bandWidth, &flags) != kFields) {
        return false;
    }
    CopyText(tc->ipAddr, address);
    tc->ipType = type;
    tc->bandWidth = bandWidth;
    tc->flags = flags;
    return true;
}

/// The line is handed to the kernel here, not at the closing, so that a full flash is noticed.
bool WriteLine(FILE* file, const char* line)
{
    const size_t length = strlen(line);
    return fwrite(line, 1, length, file) == length && fflush(file) == 0;
}

}  // namespace

}  // namespace vorlix

using namespace vorlix;

bool TC_InitDev(const char* name)
{
    if (name == nullptr) return false;
    if (FindCard(name) != nullptr) return true;
    if (!FitsList(name)) {
        LOG_ERROR("too many dev has been init.[%s,%s]", name, devHaveInited);
        return false;
    }
    (void)RemoveRoot(__func__, name);  // there is none, most of the time
    if (!Run(__func__, FormCommand(kAddRoot, name))) return false;

    AddCard(name);
    return true;
}

bool TC_DeinitDev(const char* name)
{
    if (name == nullptr) return false;

    char* found = FindCard(name);
    if (found == nullptr) return true;

    const bool rootRemoved = RemoveRoot(__func__, name);
    const bool ingressRemoved = Run(__func__, FormCommand(kRemoveIngress, name));
    CutCard(found, name);
    return rootRemoved && ingressRemoved;
}

// cppcheck-suppress passedByValue  ; the record is handed over by value, to C callers too
bool TC_SetSendBand(const char* name, const NetTc tc)
{
    static int classId = kFirstClass;

    if (!TC_InitDev(name)) return false;

    char address[kAddressSize];
    CopyText(address, tc.ipAddr);  // a record may fill its field
    if (!Run(__func__, FormCommand(kAddClass, name, classId, tc.bandWidth))) return false;
    if (!Run(__func__, FormCommand(kAddFilter, name, address, classId))) return false;
    if (!Run(__func__, FormCommand(kAddLeaf, name, classId, classId))) return false;

    classId += kClassStep;
    return true;
}

bool TC_SetRcvBand(const char* name, const NetTc /*tc*/)
{
    if (!TC_InitDev(name)) return false;

    LOG_ERROR("mei shixian");
    return false;
}

// cppcheck-suppress passedByValue  ; the record is handed over by value, to C callers too
bool TC_SaveToConfig(const char* name, const NetTc tc)
{
    if (name == nullptr) return false;

    char path[kTextSize];
    FormPath(name, path);
    const ConfigLock lock(path);
    const Stream file(fopen(path, "a"));
    if (file == nullptr) {
        LOG_ERROR("open file %s error.[%s]", name, strerror(errno));
        return false;
    }
    char address[kAddressSize];
    CopyText(address, tc.ipAddr);
    char line[kTextSize];
    FormatText(line, sizeof(line), kWrittenLine, name, address, tc.ipType, tc.bandWidth, tc.flags);
    if (!WriteLine(file.get(), line)) {
        LOG_ERROR("write error.[%s]", strerror(errno));
        return false;
    }
    return true;
}

bool TC_GetFromConfig(const char* name, NetTc* tc, int* tcNum)
{
    if (name == nullptr || tc == nullptr || tcNum == nullptr) return false;

    char path[kTextSize];
    FormPath(name, path);
    ConfigLock lock(path);
    const Stream file(fopen(path, "r"));
    if (file == nullptr) {
        LOG_ERROR("cannot fopen %s.[%s]", name, strerror(errno));
        return false;
    }
    char line[kTextSize];
    int count = 0;
    while (count < *tcNum && fgets(line, sizeof(line), file.get()) != nullptr) {
        if (ParseLine(line, &tc[count])) ++count;
    }
    *tcNum = count;
    lock.ReleaseFile();  // a reader unlocks first and closes then
    return true;
}

bool TC_DelConfig(const char* name)
{
    if (name == nullptr) return false;

    char path[kTextSize];
    FormPath(name, path);
    const ConfigLock lock(path);
    const Stream file(fopen(path, "w+"));  // opening empties it
    if (file != nullptr) return true;

    LOG_ERROR("open file %s error.[%s]", name, strerror(errno));
    return false;
}
