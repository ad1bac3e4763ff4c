// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Bridge.h"

#include "Base.h"
#include "Network.h"
#include "Support/Handles.h"
#include "Support/Log.h"
#include "Support/NameList.h"
#include "Support/Text.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

namespace vorlix {

namespace {

// ---- texts and limits

constexpr size_t kTextSize = 256;  // of a path and of a command

constexpr uint8_t kKernelTree = 0;
constexpr uint8_t kRapidTree = 1;
constexpr uint8_t kMultipleTrees = 2;

// ---- commands

/// Gives the bridge the hardware address of a card. Without it the bridge would change its address
/// with its ports.
void TakeAddressOf(const char* bridge, const char* card)
{
    char mac[kMacTextSize] = {};
    (void)Net_GetMacbyName(card, mac);  // the command is run without an address just the same

    char command[kTextSize];
    FormatText(command, sizeof(command), "ifconfig %s hw ether %s", bridge, mac);
    (void)VorlixRunCmd(command);
    LOG_INFO_AS("Bridge_Bridge", "%s\n", command);  // this one is logged behind its run
}

// ---- ports

void FormPortsPath(const char* bridge, char (&path)[kTextSize])
{
    FormatText(path, sizeof(path), "/sys/class/net/%s/brif/", bridge);
}

bool IsPort(const char* entry)
{
    return entry[0] != '.' || (entry[1] != '\0' && entry[1] != '.');
}

bool IsDirectory(const char* path)
{
    struct stat status {};
    return stat(path, &status) == 0 && S_ISDIR(status.st_mode);
}

bool OpensForReading(const char* path)
{
    const Fd file(open(path, O_RDONLY));
    return file.Ok();
}

// ---- spanning tree

bool ControlKernelTree(const char* bridge, bool enable)
{
    const bool done = RunCommand("brctl stp %s %s", bridge, enable ? "on" : "off");
    if (enable) (void)RunCommand("brctl setfd %s 2", bridge);
    return done;
}

bool ControlRapidTree(const char* bridge, bool enable)
{
    (void)RunCommand("echo %d > /sys/class/net/%s/bridge/stp_state", enable ? 2 : 0, bridge);
    if (!enable) return VorlixRunCmd("bridge stop");

    (void)RunCommand("ifconfig %s up", bridge);
    return VorlixRunCmd("bridge start");
}

}  // namespace

uint32_t BridgeMemberMask(const char* operation, const NameList& members)
{
    uint32_t mask = 0;
    for (const char* member : members) {
        if (!StartsWith(member, "eth")) {
            LOG_WARN_AS(operation, "%s is in Bridge.can not handle.", member);
            continue;
        }
        const int number = member[3] - '0';
        if (number >= 0 && number < 32) mask |= 1U << number;
    }
    return mask;
}

}  // namespace vorlix

using namespace vorlix;

bool Bridge_Bridge(const char* brName, char** ethList, int ethNum)
{
    if (brName == nullptr || ethList == nullptr) return false;

    const NameList members(ethList, ethNum);
    if (members.HoldsNull()) return false;

    (void)RunLogged(__func__, "brctl addbr %s", brName);
    for (auto member = members.begin(); member != members.end(); ++member) {
        (void)RunLogged(__func__, "brctl addif %s %s", brName, *member);
        if (member == members.begin()) TakeAddressOf(brName, *member);
    }
    for (const char* member : members) (void)RunLogged(__func__, "ifconfig %s down", member);
    for (const char* member : members) (void)RunLogged(__func__, "ifconfig %s 0.0.0.0 up", member);
    return RunLogged(__func__, "ifconfig %s up", brName);
}

bool Bridge_UnBridge(const char* brName, char** ethList, int ethNum)
{
    if (brName == nullptr || ethList == nullptr) return false;

    const NameList members(ethList, ethNum);
    if (members.HoldsNull()) return false;

    (void)RunCommand("ifconfig %s down", brName);
    for (const char* member : members) (void)RunCommand("brctl delif %s %s", brName, member);
    (void)RunCommand("brctl stp %s off", brName);
    return RunCommand("brctl delbr %s", brName);
}

bool Bridge_GetBridgeMembers(const char* brName, char** ethList, int* ethNum)
{
    if (brName == nullptr || ethList == nullptr || ethNum == nullptr) return false;
    if (NameList(ethList, *ethNum).HoldsNull()) return false;

    char path[kTextSize];
    FormPortsPath(brName, path);
    const Directory ports(opendir(path));
    if (ports == nullptr) {
        LOG_ERROR("Open %s failed\n", path);
        return false;
    }
    int count = 0;
    while (count < *ethNum) {
        const dirent* entry = readdir(ports.get());
        if (entry == nullptr) break;
        if (!IsPort(entry->d_name)) continue;

        CopyText(ethList[count], kNameSize, entry->d_name);
        ++count;
    }
    *ethNum = count;
    return true;
}

bool Bridge_IsBridgeExist(const char* brName)
{
    if (brName == nullptr) return false;

    char ports[kTextSize];
    FormPortsPath(brName, ports);
    char carrier[kTextSize];
    FormatText(carrier, sizeof(carrier), "/sys/class/net/%s/carrier", brName);
    if (IsDirectory(ports) && OpensForReading(carrier)) return true;

    LOG_ERROR("bridge %s is not exist.", brName);
    return false;
}

bool Bridge_AddEdgePort(const char* brName, const char* ethName)
{
    if (brName == nullptr || ethName == nullptr) return false;

    return RunCommand("rstpctl setportedge %s %s yes", brName, ethName);
}

bool Bridge_DelEdgePort(const char* brName, const char* ethName)
{
    if (brName == nullptr || ethName == nullptr) return false;

    return RunCommand("rstpctl setportedge %s %s no", brName, ethName);
}

bool Bridge_BridgeCtrl(const char* brName, const STPInfo* stp)
{
    if (brName == nullptr || stp == nullptr) return false;

    const bool enable = stp->enable == 1;
    switch (stp->mode) {
    case kKernelTree: return ControlKernelTree(brName, enable);
    case kRapidTree: return ControlRapidTree(brName, enable);
    case kMultipleTrees: LOG_ERROR("NOT SUPPORT mode 2\n"); return false;
    default: LOG_ERROR("unknonw mode %d\n", stp->mode); return false;
    }
}
