// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Bond.h"

#include "Base.h"
#include "Support/Handles.h"
#include "Support/Lines.h"
#include "Support/Log.h"
#include "Support/NameList.h"
#include "Support/Text.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace vorlix {

namespace {

// ---- texts and limits

constexpr size_t kTextSize = 256;  // of a path and of a command
constexpr int kPolicyTextSize = 7;

constexpr char kMonitorInterval[] = "100";  // milliseconds

/// What the driver's `mode` takes, by NICBondMode.
constexpr std::array<const char*, 7> kModeText = {"balance-rr", "active-backup", "balance-xor",
                                                  "broadcast",  "802.3ad",       "balance-tlb",
                                                  "balance-alb"};

using Path = char[kTextSize];
using Command = char[kTextSize];

// ---- attribute files

void FormPath(const char* bond, const char* attribute, Path& path)
{
    FormatText(path, sizeof(path), "/sys/class/net/%s/bonding/%s", bond, attribute);
}

/// Reads the first line of an attribute. An empty one leaves `line` as it was; after half a line
/// that an error cut off, that half is in it.
bool ReadLine(const Fd& file, char (&line)[kLineSize])
{
    LineReader reader(file.Get());
    return reader.Next(line);
}

/// Reads the members' line. A bond without members has none.
bool ReadMembers(const char* operation, const char* bond, char (&line)[kLineSize])
{
    Path path;
    FormPath(bond, "slaves", path);
    const Fd file(open(path, O_RDONLY));
    if (file.Ok()) return ReadLine(file, line);

    LOG_ERROR_AS(operation, "open %s failed\n", path);
    return false;
}

int OpenToWrite(const char* operation, const Path& path)
{
    const int file = open(path, O_RDWR | O_TRUNC);
    if (file < 0) LOG_ERROR_AS(operation, "open %s failed.[%s]", path, strerror(errno));
    return file;
}

/// Writes a text with its NUL. A failure is logged with `shown` in the place of the file.
bool WriteText(const char* operation, const Fd& file, const char* text, const char* shown)
{
    const size_t size = strlen(text) + 1;
    if (write(file.Get(), text, size) == static_cast<ssize_t>(size)) return true;

    LOG_ERROR_AS(operation, "write %s failed.[%s]", shown, strerror(errno));
    return false;
}

bool WriteAttribute(const char* operation, const char* bond, const char* attribute,
                    const char* text)
{
    Path path;
    FormPath(bond, attribute, path);
    const Fd file(OpenToWrite(operation, path));
    return file.Ok() && WriteText(operation, file, text, path);
}

// ---- commands

/// Appends the members to a command, each behind a blank.
bool AppendMembers(const char* operation, Command& command, const NameList& members)
{
    for (const char* member : members) {
        if (strlen(command) + strlen(member) + 2 > sizeof(command)) {
            LOG_ERROR_AS(operation, "cmd is too long.[%s]", command);
            return false;
        }
        Strcat(command, sizeof(command), " ", nullptr);
        Strcat(command, sizeof(command), member, nullptr);
    }
    return true;
}

}  // namespace

}  // namespace vorlix

using namespace vorlix;

bool Bond_HasMember(const char* bondName, const char* ethName)
{
    if (bondName == nullptr || ethName == nullptr) return false;

    char line[kLineSize];
    return ReadMembers(__func__, bondName, line) && FindWordInLine(line, ethName, ' ') != nullptr;
}

bool Bond_GetActiveSlave(const char* bondName, char* ethName, int len)
{
    if (bondName == nullptr || ethName == nullptr || len < 1) return false;

    // One buffer for the path and the line: the message of a missing line shows the path.
    char text[kTextSize];
    FormPath(bondName, "active_slave", text);
    const Fd file(open(text, O_RDONLY));
    if (!file.Ok()) {
        LOG_ERROR("open %s failed[%s]", text, strerror(errno));
        return false;
    }
    const char* name = ReadLine(file, text) ? strstr(text, "eth") : nullptr;
    if (name == nullptr) {
        LOG_ERROR("can not find eth device in %s[%s]", text, bondName);
        return false;
    }
    FormatText(ethName, static_cast<size_t>(len - 1), "%s", name);
    ethName[len - 1] = '\0';
    return true;
}

bool Bond_SetHashPolicy(const char* bondName, int lacp)
{
    if (bondName == nullptr || lacp < 0) return false;

    Path path;
    FormPath(bondName, "xmit_hash_policy", path);
    const Fd file(OpenToWrite(__func__, path));
    if (!file.Ok()) return false;

    char policy[kPolicyTextSize];
    FormatText(policy, sizeof(policy), "%d", lacp);
    return WriteText(__func__, file, policy, policy);
}

bool Bond_GetBondMembers(const char* bondName, char** ethList, int* ethNum)
{
    if (bondName == nullptr) return false;
    if (ethList != nullptr && ethNum != nullptr && NameList(ethList, *ethNum).HoldsNull()) {
        return false;
    }
    if (Contains(bondName, ".")) {
        if (ethNum != nullptr) *ethNum = 0;
        return false;
    }
    char line[kLineSize];
    if (!ReadMembers(__func__, bondName, line)) return false;
    if (ethList == nullptr) return true;
    if (ethNum == nullptr) return false;

    int count = 0;
    for (const char* rest = line; count < *ethNum; ++count) {
        char* member = ethList[count];
        if (sscanf(rest, "%15s", member) != 1) break;
        rest = strstr(rest, member) + strlen(member);
    }
    *ethNum = count;
    return true;
}

bool Bond_SetPrimary(const char* bondName, const char* name)
{
    if (bondName == nullptr || name == nullptr) return false;

    return WriteAttribute(__func__, bondName, "primary", name);
}

bool Bond_SetBondMode(const char* bondName, NICBondMode mode)
{
    if (bondName == nullptr) return false;

    const auto index = static_cast<uint32_t>(mode);
    if (index >= kModeText.size()) {
        LOG_ERROR("Unknown mode %d\n", static_cast<int>(mode));
        return false;
    }
    Path path;
    FormPath(bondName, "mode", path);
    Fd file(OpenToWrite(__func__, path));
    if (!file.Ok()) return false;

    (void)InterfaceDown(bondName);  // the driver refuses a mode while the bond is up
    bool done = WriteText(__func__, file, kModeText[index], path);
    file.Close();
    done = done && WriteAttribute(__func__, bondName, "miimon", kMonitorInterval);
    (void)InterfaceUp(bondName);
    return done;
}

bool Bond_Bond(const char* bondName, const char** ethList, int ethNum)
{
    if (bondName == nullptr || ethList == nullptr) return false;

    const NameList members(ethList, ethNum);
    if (members.HoldsNull()) return false;

    for (const char* member : members) (void)RunCommand("ifconfig %s down", member);
    for (const char* member : members) (void)RunCommand("ifconfig %s 0.0.0.0 up", member);
    if (!InterfaceUp(bondName)) return false;

    Command command;
    FormatText(command, sizeof(command), "ifenslave %s", bondName);
    return AppendMembers(__func__, command, members) && VorlixRunCmd(command);
}

bool Bond_Unbond(const char* bondName, const char** ethList, int32_t ethNum)
{
    if (bondName == nullptr || ethList == nullptr) return false;

    const NameList members(ethList, ethNum);
    if (members.HoldsNull()) return false;

    Command command;
    FormatText(command, sizeof(command), "ifenslave -d %s", bondName);
    if (!AppendMembers(__func__, command, members)) return false;

    (void)VorlixRunCmd(command);
    (void)RunCommand("ifconfig %s 0.0.0.0 down", bondName);
    return true;
}
