// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Config.h"

#include "Base.h"
#include "Support/Log.h"
#include "Support/NameList.h"
#include "Support/Text.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <netinet/in.h>

namespace vorlix {

namespace {

// ---- texts and limits

constexpr char kBridgeFile[] = "/mnt/mtd/Config/rsbridgeinit.conf";
constexpr char kEmptyAddress[] = "0.0.0.0";

constexpr int kMaxFiles = 32;
constexpr int kFlagSize = 8;
constexpr int kMtuSize = 8;
constexpr int kWorkModeSize = 8;
constexpr int kPrioSize = 4;
constexpr int kNumberSize = 16;
constexpr int kListSize = 256;
constexpr size_t kListFull = 255;  // a list with its last comma stays below
constexpr int kEdgeKeySize = 32;

using Path = char[kPathSize];
using FileName = char[64];  // as the setting files are listed

/// Member lists of bonds and bridges differ in these numbers.
struct MemberList {
    KEYENUM key;
    int textSize;      // bytes that the list is read into
    size_t entrySize;  // bytes written of a caller's entry
    size_t nameLength;
};

constexpr MemberList kBondMembers = {HOST_BONDMEMBERS_KEY, kListSize, 16, 15};
constexpr MemberList kBridgeMembers = {HOST_BR_MEMBERS_KEY, 240, 32, 32};

// ---- one setting

/// `GetFileByName` or `GetFileByName6`.
using PathOf = bool (*)(const char* name, char* file, int len);

bool ReadSetting(const char* name, KEYENUM key, char* value, int len, PathOf pathOf = GetFileByName)
{
    Path path = {};
    return pathOf(name, path, sizeof(path)) && GetValueByKey(path, KeyText(key), value, len);
}

bool ReadPair(const char* name, const Wanted& first, const Wanted& second,
              PathOf pathOf = GetFileByName)
{
    Path path = {};
    return pathOf(name, path, sizeof(path)) && ReadTwoKeys(path, first, second);
}

bool WriteSetting(const char* name, KEYENUM key, const char* value, PathOf pathOf = GetFileByName)
{
    Path path = {};
    return pathOf(name, path, sizeof(path)) && SetValueByKey(path, KeyText(key), value);
}

bool ReadFlag(const char* name, KEYENUM key, bool* flag)
{
    char text[kFlagSize] = {};
    if (flag == nullptr || !ReadSetting(name, key, text, sizeof(text))) return false;

    *flag = text[0] == '1';
    return true;
}

/// Saves as many digits as fit into `size` bytes.
bool WriteNumber(const char* name, KEYENUM key, int number, size_t size = kNumberSize)
{
    char text[kNumberSize] = {};
    FormatText(text, size, "%d", number);
    return WriteSetting(name, key, text);
}

// ---- addresses

bool IsAddress(const char* text)
{
    in_addr address{};
    return ParseLooseIPv4(text, &address);
}

bool CheckAddressPair(const char* operation, const char* ip, const char* mask)
{
    if (IsAddress(ip) && IsAddress(mask)) return true;

    LOG_ERROR_AS(operation, "ip: %s mask %s error.", ip, mask);
    return false;
}

bool CheckGateway(const char* operation, const char* gateway)
{
    if (IsAddress(gateway)) return true;

    LOG_ERROR_AS(operation, "gateway: %s error.", gateway);
    return false;
}

bool CheckIPv6Pair(const char* operation, const char* ip, const char* perFix)
{
    in6_addr address{};
    if (!ParseIPv6(ip, &address)) {
        LOG_ERROR_AS(operation, "ip addr formate error %s.", ip);
        return false;
    }
    if (IsDigit(perFix[0])) return true;

    LOG_ERROR_AS(operation, "perfix %s error.", perFix);
    return false;
}

bool CheckIPv6Gateway(const char* operation, const char* gateway)
{
    in6_addr address{};
    if (ParseIPv6(gateway, &address)) return true;

    LOG_ERROR_AS(operation, "gateway addr formate error %s.", gateway);
    return false;
}

// ---- default card

bool HasInterface(char* card)
{
    char names[kMaxInterfaces][kNameSize];
    int count = kMaxInterfaces;
    return GetSpecifiedInterfaceInfo(card, names, &count);
}

/// A VLAN sub-interface that has gone is cut to the name of its parent card.
void UseParentOfLostVlan(char* card)
{
    char* dot = strchr(card, '.');
    if (dot == nullptr || HasInterface(card)) return;

    *dot = '\0';
    LOG_INFO_AS("GetDefaultEthByConfig", "default card force use %s", card);
}

bool IsPrioOfDefault(const char* file)
{
    Path path;
    FormListedPath(file, path);
    char prio[kPrioSize] = {};
    return GetValueByKey(path, KeyText(HOST_PRIO_KEY), prio, sizeof(prio)) && prio[0] == '0';
}

bool FindDefaultByPrio(char* name, int len)
{
    FileName files[kMaxFiles];
    int count = kMaxFiles;
    if (!GetAllNetworkFile(files, &count)) return false;

    for (int i = 0; i < count; ++i) {
        if (!IsPrioOfDefault(files[i])) continue;

        FileName card;
        CopyText(card, CardOfFile(files[i]));
        UseParentOfLostVlan(card);
        if (len < 1) return false;
        CopyText(name, static_cast<size_t>(len), card);
        return true;
    }
    LOG_ERROR_AS("GetDefaultEthByConfig", "can not find default eth in config");
    return false;
}

// ---- member lists

/// A bond's file is of the old kind when it has no member list. Looked for here and not by
/// `GetValueByKey`: that the key is missing is the answer, that the file is missing is none.
bool ReadIsTrunk(const char* path, bool* isTrunk)
{
    LockedLines file(path);
    if (!file.Ok()) {
        LOG_ERROR_AS("IsTrunkBondConfig", "cannot fopen [%s]", strerror(errno));
        return false;
    }
    char line[kLineSize];
    bool hasMembers = false;
    while (!hasMembers && file.Next(line)) {
        hasMembers = Contains(line, KeyText(HOST_BONDMEMBERS_KEY));
    }
    *isTrunk = !hasMembers;
    return true;
}

bool ReadNames(const char* name, const MemberList& list, char** members, int* num)
{
    if (members == nullptr || num == nullptr) return false;

    char text[kListSize] = {};
    if (!ReadSetting(name, list.key, text, list.textSize)) return false;

    int count = 0;
    const char* member = text + strspn(text, ",");
    while (*member != '\0' && count < *num) {
        if (members[count] == nullptr) return false;

        const size_t length = strcspn(member, ",");
        memset(members[count], 0, list.entrySize);
        memcpy(members[count], member, std::min(length, list.nameLength));
        ++count;
        member += length;
        member += strspn(member, ",");
    }
    *num = count;
    return true;
}

bool WriteNames(const char* operation, const char* name, const MemberList& list,
                const char** members, int num)
{
    if (name == nullptr || members == nullptr || NameList(members, num).HoldsNull()) return false;

    char text[kListSize] = {};
    size_t length = 0;  // of all names, with a comma behind each
    for (const char* member : NameList(members, num)) {
        if (length >= kListFull) break;
        FormatText(text + length, sizeof(text) - length, "%s,", member);
        length += strlen(member) + 1;
    }
    if (length >= kListFull) {
        LOG_ERROR_AS(operation, "to many eths in %s", name);
        return false;
    }
    if (length > 0) text[length - 1] = '\0';
    return WriteSetting(name, list.key, text);
}

// ---- bridges

/// The character that tells bridges apart in the shared file; NUL when the name is too short.
char BridgeLetter(const char* brName)
{
    return strnlen(brName, 2) < 2 ? '\0' : brName[2];
}

/// The edge ports of one bridge: the key of their line, and the list, empty when none was found.
struct EdgePorts {
    char* Find(const char* ethName) { return FindWordInLine(list, ethName, ','); }

    char key[kEdgeKeySize] = {};
    char list[kListSize] = {};
    bool found = false;
};

EdgePorts ReadEdgePorts(const char* brName)
{
    EdgePorts ports;
    FormatText(ports.key, sizeof(ports.key), "%s[%c]", KeyText(HOST_BR_EDGE_KEY),
               BridgeLetter(brName));
    ports.found = GetValueByKey(kBridgeFile, ports.key, ports.list, sizeof(ports.list));
    return ports;
}

bool SaveEdgePorts(const EdgePorts& ports)
{
    return SetValueByKey(kBridgeFile, ports.key, ports.list);
}

/// Removes a word with the comma before it, or, from the start of the list, with the one behind.
void CutWord(char* list, char* word, size_t length)
{
    char* behind = word + length;
    if (word != list) {
        --word;
    } else if (*behind == ',') {
        ++behind;
    }
    memmove(word, behind, strlen(behind) + 1);
}

}  // namespace

}  // namespace vorlix

using namespace vorlix;

// ==== Settings of a card ====

bool GetIPByConfig(const char* name, char* ip, char* mask)
{
    if (ip == nullptr || mask == nullptr) return false;

    return ReadPair(name, {HOST_IP_KEY, ip, kIPv4TextSize},
                    {HOST_SUBMASK_KEY, mask, kIPv4TextSize}) &&
           CheckAddressPair(__func__, ip, mask);
}

bool SetIPByConfig(const char* name, const char* ip, const char* mask)
{
    if (name == nullptr || ip == nullptr || mask == nullptr) return false;
    if (!CheckAddressPair(__func__, ip, mask)) return false;

    if (StartsWith(ip, kEmptyAddress) && StartsWith(mask, kEmptyAddress)) {
        LOG_INFO("ip: %s mask %s not save.", ip, mask);
        return true;
    }
    return WriteSetting(name, HOST_IP_KEY, ip) && WriteSetting(name, HOST_SUBMASK_KEY, mask);
}

bool GetGatewayByConfig(const char* name, char* gateway)
{
    return ReadSetting(name, HOST_GATEWAY_KEY, gateway, kIPv4TextSize) &&
           CheckGateway(__func__, gateway);
}

bool SetGatewayByConfig(const char* name, const char* gateway)
{
    if (name == nullptr || gateway == nullptr || !CheckGateway(__func__, gateway)) return false;

    if (StartsWith(gateway, kEmptyAddress)) {
        LOG_INFO("gateway: %s not save.", gateway);
        return true;
    }
    return WriteSetting(name, HOST_GATEWAY_KEY, gateway);
}

bool GetMtuByConfig(const char* name, int* mtu)
{
    char text[kMtuSize] = {};
    if (mtu == nullptr || !ReadSetting(name, HOST_MTU_KEY, text, sizeof(text))) return false;

    *mtu = NumberOf(text);  // callers see a refused number too
    if (*mtu > 0) return true;

    LOG_ERROR("%s mtu in config file is %s.", name, text);
    return false;
}

bool SetMtuByConfig(const char* name, int mtu)
{
    return mtu > 0 && WriteNumber(name, HOST_MTU_KEY, mtu, kMtuSize);
}

bool GetIPv6ByConfig(const char* name, char* ip, int ipLen, char* perFix, int perFixLen)
{
    if (ip == nullptr || perFix == nullptr) return false;
    if (!ReadPair(name, {HOST_IP_KEY, ip, ipLen}, {HOST_SUBMASK_KEY, perFix, perFixLen},
                  GetFileByName6)) {
        return false;
    }
    if (!CheckIPv6Pair(__func__, ip, perFix)) return false;

    FormatText(perFix, static_cast<size_t>(perFixLen), "%d", NumberOf(perFix));
    return true;
}

bool SetIPv6ByConfig(const char* name, const char* ip, const char* perFix)
{
    if (name == nullptr || ip == nullptr || perFix == nullptr) return false;

    return CheckIPv6Pair(__func__, ip, perFix) &&
           WriteSetting(name, HOST_IP_KEY, ip, GetFileByName6) &&
           WriteSetting(name, HOST_SUBMASK_KEY, perFix, GetFileByName6);
}

bool GetGatewayv6ByConfig(const char* name, char* gateway, int len)
{
    return ReadSetting(name, HOST_GATEWAY_KEY, gateway, len, GetFileByName6) &&
           CheckIPv6Gateway(__func__, gateway);
}

bool SetGatewayv6ByConfig(const char* name, const char* gateway)
{
    if (name == nullptr || gateway == nullptr) return false;

    return CheckIPv6Gateway(__func__, gateway) &&
           WriteSetting(name, HOST_GATEWAY_KEY, gateway, GetFileByName6);
}

bool GetDefaultEthByConfig(char* name, int len)
{
    if (name == nullptr) return false;
    if (!ReadSetting(kFirstCard, HOST_DEFAULT_ETH_KEY, name, len)) {
        return FindDefaultByPrio(name, len);
    }
    UseParentOfLostVlan(name);
    return true;
}

bool SetDefaultEthByConfig(const char* name)
{
    if (name == nullptr) return false;

    (void)WriteSetting(kFirstCard, HOST_DEFAULT_ETH_KEY, name);  // "PRIO" still tells the card
    FileName files[kMaxFiles];
    int count = kMaxFiles;
    if (!GetAllNetworkFile(files, &count)) return false;

    for (int i = 0; i < count; ++i) {
        Path path;
        FormListedPath(files[i], path);
        (void)SetValueByKey(path, KeyText(HOST_PRIO_KEY), "1");
    }
    (void)WriteSetting(name, HOST_PRIO_KEY, "0");  // the saved name still tells the card
    return true;
}

bool SetWorkModeByConfig(const char* name, NetWorkMode mode)
{
    if (mode < netModeMultiple || mode > netModeBridge) return false;

    return WriteNumber(name, HOST_WORKMODE_KEY, mode);
}

bool GetWorkModeByConfig(const char* name, NetWorkMode* mode)
{
    if (name == nullptr) return false;

    char text[kWorkModeSize] = {};
    if (!ReadSetting(name, HOST_WORKMODE_KEY, text, sizeof(text))) {
        LOG_ERROR("get %s's workMode failed", name);
    }
    if (mode == nullptr) return false;
    if (IsDigit(text[0])) {
        *mode = static_cast<NetWorkMode>(NumberOf(text));
        return true;
    }
    LOG_INFO("set %s work mode to netModeMultiple", name);
    (void)SetWorkModeByConfig(name, netModeMultiple);  // the next read repairs what fails now
    *mode = netModeMultiple;
    return true;
}

bool SetEthIsBondedByConfig(const char* name, const bool isBonded)
{
    return WriteSetting(name, HOST_BONDED_KEY, isBonded ? "1" : "0");
}

bool GetEthIsBondedByConfig(const char* name, bool* isBonded)
{
    return ReadFlag(name, HOST_BONDED_KEY, isBonded);
}

bool SetEthBondNameByConfig(const char* name, const char* bondName)
{
    return WriteSetting(name, HOST_BONDNAME_KEY, bondName);
}

bool GetEthBondNameByConfig(const char* name, char* bondName, int len)
{
    return ReadSetting(name, HOST_BONDNAME_KEY, bondName, len);
}

bool SetEthIsBridgedByConfig(const char* name, const bool isBridged)
{
    return WriteSetting(name, HOST_BRIDGEEDED_KEY, isBridged ? "1" : "0");
}

bool GetEthIsBridgedByConfig(const char* name, bool* isBridged)
{
    return ReadFlag(name, HOST_BRIDGEEDED_KEY, isBridged);
}

bool SetEthBridgeNameByConfig(const char* name, const char* bridgeName)
{
    return WriteSetting(name, HOST_BRIDGENAME_KEY, bridgeName);
}

bool GetEthBridgeNameByConfig(const char* name, char* bridgeName, int len)
{
    return ReadSetting(name, HOST_BRIDGENAME_KEY, bridgeName, len);
}

bool IsTrunkBondConfig(char* name, bool* isTrunk)
{
    if (name == nullptr || isTrunk == nullptr) return false;

    LOG_INFO("IsTrunkBondConfig ifName: %s", name);
    Path path = {};
    (void)GetFileByName(name, path, sizeof(path));
    if (!ReadIsTrunk(path, isTrunk)) return false;

    LOG_INFO("%s", *isTrunk ? "Is Trunk config" : "Not Trunk config");
    return true;
}

// ==== Settings of a bond ====

bool GetBondModeByConfig(const char* bondname, NICBondMode* bondMode)
{
    char text[kNumberSize] = {};
    if (bondMode == nullptr) return false;
    if (!ReadSetting(bondname, HOST_BONDMODE_KEY, text, sizeof(text))) return false;

    const bool isNumber = IsDigit(text[0]);
    *bondMode = static_cast<NICBondMode>(isNumber ? NumberOf(text) : -1);
    return isNumber;
}

bool SetBondModeByConfig(const char* bondname, const NICBondMode bondMode)
{
    if (bondMode == -1) return WriteSetting(bondname, HOST_BONDMODE_KEY, "");

    return WriteNumber(bondname, HOST_BONDMODE_KEY, bondMode);
}

bool GetBondMemberByConfig(const char* bondname, char** bondMembers, int* num)
{
    return ReadNames(bondname, kBondMembers, bondMembers, num);
}

bool SetBondMemberByConfig(const char* bondname, const char** bondMembers, const int num)
{
    return WriteNames(__func__, bondname, kBondMembers, bondMembers, num);
}

bool GetBondHashPolicyByConfig(const char* bondname, unsigned char* lacp)
{
    char text[kNumberSize] = {};
    if (lacp == nullptr) return false;
    if (!ReadSetting(bondname, HOST_BONDHASH_KEY, text, sizeof(text))) return false;

    const bool isPolicy = text[0] >= '0' && text[0] <= '4';
    *lacp = static_cast<unsigned char>(isPolicy ? NumberOf(text) : 0);
    return isPolicy;
}

bool SetBondHashPolicyByConfig(const char* bondname, unsigned char lacp)
{
    return WriteNumber(bondname, HOST_BONDHASH_KEY, lacp);
}

bool SetPrimaryEthByConfig(const char* bondName, const char* name)
{
    return WriteSetting(bondName, HOST_BONDPRIMARY_KEY, name);
}

bool GetPrimaryEthByConfig(const char* bondName, char* name, int len)
{
    return ReadSetting(bondName, HOST_BONDPRIMARY_KEY, name, len);
}

// ==== Settings of a bridge ====

bool GetBridgeMemberByConfig(const char* brname, char** brMembers, int* num)
{
    return ReadNames(brname, kBridgeMembers, brMembers, num);
}

bool SetBridgeMemberByConfig(const char* brName, const char** brMembers, int num)
{
    return WriteNames(__func__, brName, kBridgeMembers, brMembers, num);
}

bool AddEdgePortByconfig(const char* brName, const char* ethName)
{
    if (brName == nullptr || ethName == nullptr) return false;

    EdgePorts ports = ReadEdgePorts(brName);
    if (ports.found && ports.Find(ethName) != nullptr) {
        LOG_WARN("%s is already the edgeport of %s", ethName, brName);
        return true;
    }
    if (strlen(ports.list) + strlen(ethName) + 2 > kListSize - 1) {
        LOG_ERROR("value is too long %s.[%s,%s]", ports.list, brName, ethName);
        return false;
    }
    if (ports.found) Strcat(ports.list, sizeof(ports.list), ",", nullptr);
    Strcat(ports.list, sizeof(ports.list), ethName, nullptr);
    return SaveEdgePorts(ports);
}

bool DelEdgePortByconfig(const char* brName, const char* ethName)
{
    if (brName == nullptr || ethName == nullptr) return false;

    EdgePorts ports = ReadEdgePorts(brName);
    if (!ports.found) return SaveEdgePorts(ports);

    char* word = ports.Find(ethName);
    if (word == nullptr) {
        LOG_WARN("%s is not the edgeport of %s", ethName, brName);
        return true;
    }
    CutWord(ports.list, word, strlen(ethName));
    return SaveEdgePorts(ports);
}

bool IsEdgePortByconfig(const char* brName, const char* ethName)
{
    if (brName == nullptr || ethName == nullptr) return false;

    EdgePorts ports = ReadEdgePorts(brName);
    return ports.found && ports.Find(ethName) != nullptr;
}

bool SetBridgeStpModeByConfig(const char* brName, const unsigned char mode)
{
    if (brName == nullptr) return false;

    char text[kNumberSize] = {};
    // A number and the letter d: the file's established form, which every reader stops at.
    FormatText(text, sizeof(text), "%ud", static_cast<unsigned>(mode));
    return SetValueByKey(kBridgeFile, KeyText(HOST_BR_STATE_KEY), text);
}

bool GetBridgeStpModeByConfig(const char* brName, unsigned char* mode)
{
    if (brName == nullptr) return false;

    const char* key = KeyText(HOST_BR_STATE_KEY);
    char text[kListSize] = {};
    if (!GetValueByKey(kBridgeFile, key, text, sizeof(text))) {
        LOG_ERROR("get %s faild.", key);
        return false;
    }
    if (mode == nullptr) return false;

    *mode = static_cast<unsigned char>(NumberOf(text));
    return true;
}

bool SetBridgeIDByConfig(const char* brName)
{
    if (brName == nullptr) return false;

    const char letter[] = {BridgeLetter(brName), '\0'};
    return SetValueByKey(kBridgeFile, KeyText(HOST_BR_BRIDGE_KEY), letter);
}

bool SetBridgePortListByConfig(const char* brName, const char** slaves, int slavesNum)
{
    if (brName == nullptr || slaves == nullptr || slavesNum == 0) return false;
    if (NameList(slaves, slavesNum).HoldsNull()) return false;

    char text[kListSize] = {};
    for (const char* slave : NameList(slaves, slavesNum)) {
        Strcat(text, sizeof(text), slave, nullptr);
        Strcat(text, sizeof(text), ",", nullptr);
    }
    const size_t length = strlen(text);
    if (length > 0) text[length - 1] = '\0';  // a comma, or the last letter of a list that was cut
    return SetValueByKey(kBridgeFile, KeyText(HOST_BR_SSIF_KEY), text);
}
