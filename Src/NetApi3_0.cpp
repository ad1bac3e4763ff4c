// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Contents:
//   Interface objects: forwarders, routes and switches of the device, the registry, the factory
//   Module: the list of interfaces, the default one, virtual ones
//   Control objects: power, routes and static ARP entries, counted
//   Bridge objects: one bridge each, counted
//
// Each chapter has its own helpers directly above its operations. What several chapters need stands
// in front of them all.

#include "NetApi3_0.h"

#include "Backup.h"
#include "Base.h"
#include "Bridge.h"
#include "CommonApi.h"
#include "Dns.h"
#include "Other.h"
#include "Support/Handles.h"
#include "Support/Log.h"
#include "Support/Text.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <type_traits>

#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace vorlix;

// ==== Shared ====

namespace {

/// What an object is made of, its table and its private part, both zeroed. `GiveTo` gives them away
/// as one; before that they end with the scope.
template <class Object, class Private>
struct NewObject {
    /// The name of the part that there is no room for, or NULL.
    const char* Allocate(const char* tableName, const char* ownName)
    {
        object.reset(static_cast<Object*>(calloc(1, sizeof(Object))));
        if (object == nullptr) return tableName;

        own.reset(static_cast<Private*>(calloc(1, sizeof(Private))));
        return own != nullptr ? nullptr : ownName;
    }

    void GiveTo(Object** place)
    {
        object->priv = own.release();
        // cppcheck-suppress AssignmentIntegerToAddress  ; the owner's release, not the slot
        *place = object.release();
    }

    void Free()
    {
        own.reset();
        object.reset();
    }

    std::unique_ptr<Object, FreeMemory> object;
    std::unique_ptr<Private, FreeMemory> own;
};

}  // namespace

// ==== Interface objects ====

namespace {

// ---- texts and limits

constexpr size_t kPrefixTextSize = 8;

constexpr char kNoGateway6[] = "0:0:0::0";
constexpr char kDefaultRoute[] = "default";

constexpr char kTreeSwitch[] = "/proc/stp_ctrl";
constexpr char kTelnetWish[] = "/tmp/telnet";

// ---- records

/// Private part of an interface object. The name stands first, so that it can be handed on as one.
struct NetIfPri {
    char name[kNameSize];
    int ref;                 // declared, never counted
    pthread_mutex_t ifLock;  // declared, never taken
};
static_assert(offsetof(NetIfPri, name) == 0, "the private part is handed on as the name");

struct ifNode {
    char CardName[kNameSize];  // empty: the entry is free
    NetInterface* pNetInterface;
};

// ---- state

ifNode g_ifNodeArray[kMaxInterfaces];                        // nothing is ever taken out
pthread_mutex_t g_apiMutexLock = PTHREAD_MUTEX_INITIALIZER;  // guards it from find to insert

// ---- forwarding

const char* NameOf(const NetInterface* thiz)
{
    return static_cast<const char*>(thiz->priv);
}

/// Calls a common operation with the object's name.
template <class... Taken, class... Given>
int Forward(const NetInterface* thiz, bool (*operation)(const char* name, Taken...), Given... given)
{
    return Result(thiz != nullptr && operation(NameOf(thiz), given...));
}

/// Calls a common operation of the whole device, for which the object has only to be there.
template <class... Taken, class... Given>
int ForwardGlobal(const NetInterface* thiz, bool (*operation)(Taken...), Given... given)
{
    return Result(thiz != nullptr && operation(given...));
}

// ---- routes

/// A net in its binary form, network byte order, without host bits.
struct Net {
    uint32_t address;
    uint32_t mask;
};

bool ParseNet(const char* address, const char* netmask, Net* net)
{
    if (!ParseIPv4(address, &net->address) || !ParseIPv4(netmask, &net->mask)) return false;

    net->address &= net->mask;
    return true;
}

/// Tells of a request whose addresses, or those of its card, do not parse. Always -1.
int RefuseAddresses(const char* operation, const char* address, const char* netmask)
{
    LOG_ERROR_AS(operation, "addr error [%s,%s]", address, netmask);
    return -1;
}

/// What a card's own settings say about where its routes lead.
struct CardTexts {
    char address[kIPv4TextSize];
    char mask[kIPv4TextSize];
    char gateway[kIPv4TextSize];
};

bool ReadCard(const char* card, CardTexts* texts)
{
    return NetGetIPbyName(card, texts->address, texts->mask) &&
           NetGetGatewaybyName(card, texts->gateway);
}

/// ppp0 to ppp4 are point-to-point links without a station to pass through.
bool IsDirectLink(const char* card)
{
    return Contains(card, "ppp") && strlen(card) == 4 && card[3] >= '0' && card[3] <= '4';
}

/// True when a route to a net leads through the card's gateway.
bool LeadsThroughGateway(const char* card, const Net& own, const Net& wanted)
{
    // Compared as the numbers that the four bytes make where they lie, not by their lengths.
    if (own.mask > wanted.mask) return true;
    if ((wanted.address & own.mask) == own.address) return false;
    return !IsDirectLink(card);
}

/// Deletes the default routes of a card. To the common operations no name means all cards; here it
/// means that the object is none.
int DeleteDefault(const NetInterface* thiz, bool (*operation)(const char* name))
{
    return Result(NameOf(thiz) != nullptr && operation(NameOf(thiz)));
}

void FormPrefix(int length, char (&text)[kPrefixTextSize])
{
    FormatText(text, sizeof(text), "%d", length);
}

// ---- switches of the device

/// The file behind the spanning-tree switch, opened by the first call that can. Two first calls may
/// each open it: at worst one descriptor too many stays open.
int TreeSwitch()
{
    static std::atomic<int> shared{-1};  // never closed

    int file = shared.load(std::memory_order_relaxed);
    if (file >= 0) return file;

    file = open(kTreeSwitch, O_RDWR);
    if (file < 0) return file;

    KeepFromChildren(file);
    shared.store(file, std::memory_order_relaxed);
    return file;
}

bool WriteText(int file, const char* text, size_t size)
{
    return write(file, text, size) == static_cast<ssize_t>(size);
}

/// True when the path shows the opened file itself, and a regular one. The file lies in a folder
/// that everybody can write: a link that was put there must not lead the write elsewhere.
bool IsOpenedFile(int file, const char* path)
{
    struct stat opened {};
    struct stat shown {};
    return fstat(file, &opened) == 0 && lstat(path, &shown) == 0 && S_ISREG(shown.st_mode) &&
           opened.st_dev == shown.st_dev && opened.st_ino == shown.st_ino;
}

// ---- table

constexpr NetInterface MakeInterfaceTable()
{
    NetInterface table{};  // a slot without a line here stays NULL
    table.addRef = API3_AddRef;
    table.release = API3_DelRef;
    table.up = API3_NetInterfaceUp;
    table.down = API3_NetInterfaceDown;
    table.setHostIP = API3_NetSetHostIP;
    table.setGateway = API3_NetSetGateway;
    table.getHostIP = API3_NetGetHostIP;
    table.getGateway = API3_NetGetGateway;
    table.getDataStat = API3_NetGetDataStat;
    table.configBeenReset = API3_GetBeenReset;
    table.getMAC = API3_GetMAC;
    table.setMAC = API3_SetMAC;
    table.getDNSAddress = API3_GetIPv4DNS;
    table.setDNSAddress = API3_SetIPv4DNS;
    table.miiDiag = API3_NetMiiDiag;
    table.arpCheck = API3_ArpCheck;
    table.getMTU = API3_NetGetMtu;
    table.setMTU = API3_NetSetMtu;
    table.getBondMembers = API3_GetBondMember;
    table.bond = API3_Bond;
    table.unbond = API3_UnBond;
    table.addRoute = API3_AddIPv4Route;
    table.delRoute = API3_DelIPv4Route;
    table.setHostIpv6 = API3_NetSetIPv6Addr;
    table.getHostIpv6 = API3_NetGetIPv6Addr;
    table.setGatewayIpv6 = API3_NetSetIPv6Gateway;
    table.getGatewayIpv6 = API3_NetGetIPv6Gateway;
    table.setDNSAddressIpv6 = API3_SetIPv6DNS;
    table.getDNSAddressIpv6 = API3_GetIPv6DNS;
    table.getLinkLocalAddressIpv6 = API3_GetLinkLocalAddress;
    table.ping = API3_Ping;
    table.getSwitchPort = API3_GetSwitchPortByMAC;
    table.getSwitchLinkMask = API3_GetSwitchMask;
    table.setSTP = API3_setSTP;
    table.addRouteIpv6 = API3_AddRouteIPv6;
    table.delRouteIpv6 = API3_DelRouteIPv6;
    table.getLinkSpeed = API3_NetGetLinkSpeed;
    table.getSwitchPortNum = API3_GetSwitchPortNum;
    table.getSwitchPortStatus = API3_GetSwitchStatus;
    table.getBondMode = API3_GetBondMode;
    table.getEthWorkMode = API3_GetEthWorkMode;
    table.setBandWidth = API3_SetBandWidth;
    table.getBandWidth = API3_GetBandWidth;
    table.unsetBandWidth = API3_UnSetBandWidth;
    table.ipPortCtrl = API3_IPPortControl;
    table.setTelnet = API3_setTelnet;
    table.ipToMac = API3_GetMacByIPWithARP;
    table.getRealHostIP = API3_NetGetHostIP;
    table.setMediumPrefer = API3_SetMediumPrefer;
    table.delIPaddressIpv6 = API3_DelIPv6Address;
    table.setSSH = API3_setSSH;
    table.setBondParams = API3_setBondParams;
    table.getBondParams = API3_getBondParams;
    table.miiDiagEx = API3_miiDiagEx;
    table.getSystemHostIpv6 = API3_NetGetSysIPv6Addr;
    return table;
}

constexpr NetInterface kInterfaceTable = MakeInterfaceTable();

// Applications were built against these places, each as wide as a pointer.
static_assert(offsetof(NetInterface, addRef) == 1 * sizeof(void*) &&
                  offsetof(NetInterface, setHostIP) == 5 * sizeof(void*) &&
                  offsetof(NetInterface, getMTU) == 20 * sizeof(void*) &&
                  offsetof(NetInterface, addRoute) == 25 * sizeof(void*) &&
                  offsetof(NetInterface, setSTP) == 37 * sizeof(void*) &&
                  offsetof(NetInterface, setTelnet) == 49 * sizeof(void*) &&
                  offsetof(NetInterface, getPhyExceptionInfo) == 63 * sizeof(void*) &&
                  offsetof(NetInterface, reserved) == 64 * sizeof(void*) &&
                  sizeof(NetInterface) == 128 * sizeof(void*),
              "order of the slots is fixed");

}  // namespace

int API3_AddRef(NetInterface* thiz)
{
    return thiz != nullptr && thiz->priv != nullptr ? 1 : -1;
}

int API3_DelRef(NetInterface* thiz)
{
    return thiz != nullptr ? 1 : -1;
}

int API3_NetInterfaceUp(NetInterface* thiz)
{
    return Forward(thiz, NetInterfaceUp);
}

int API3_NetInterfaceDown(NetInterface* thiz)
{
    return Forward(thiz, NetInterfaceDown);
}

int API3_NetSetHostIP(NetInterface* thiz, const char* hostIP, const char* netmask)
{
    if (thiz == nullptr || hostIP == nullptr || netmask == nullptr) return -1;

    LOG_INFO("SetIp name %s addr %s mask %s", Shown(NameOf(thiz)), hostIP, netmask);
    return Forward(thiz, NetSetIPByName, hostIP, netmask);
}

int API3_NetSetGateway(NetInterface* thiz, const char* gateway)
{
    if (thiz == nullptr || gateway == nullptr) return -1;

    LOG_INFO("SetGw name %s gateway %s", Shown(NameOf(thiz)), gateway);
    return Forward(thiz, NetSetGatewaybyName, gateway);
}

int API3_NetGetHostIP(NetInterface* thiz, char* hostIP, const int hlen, char* netmask,
                      const int nlen)
{
    if (hlen < kIPv4TextSize || nlen < kIPv4TextSize) return -1;

    return Forward(thiz, NetGetIPbyName, hostIP, netmask);
}

int API3_NetGetGateway(NetInterface* thiz, char* gateway, const int iGLen)
{
    if (iGLen < kIPv4TextSize) return -1;

    return Forward(thiz, NetGetGatewaybyName, gateway);
}

int API3_NetGetDataStat(NetInterface* thiz, NetDataStat* state)
{
    return Forward(thiz, NetGetDataStat, state);
}

int API3_GetBeenReset(NetInterface* thiz)
{
    if (thiz == nullptr) return -1;

    return NetCheckBeenReset() ? 1 : 0;
}

int API3_GetMAC(NetInterface* thiz, char* mac, const int iEthMacLen)
{
    if (iEthMacLen < kMacTextSize) return -1;

    return Forward(thiz, NetGetMacbyName, mac);
}

int API3_SetMAC(NetInterface* thiz, const char* mac)
{
    return Forward(thiz, NetSetMacbyName, mac);
}

int API3_GetIPv4DNS(NetInterface* thiz, char* primary, const int plen, char* secondary,
                    const int slen)
{
    if (plen < kIPv4TextSize || slen < kIPv4TextSize) return -1;

    return ForwardGlobal(thiz, GetIPv4DnsServer, primary, secondary);
}

int API3_SetIPv4DNS(NetInterface* thiz, const char* primary, const char* secondary)
{
    return ForwardGlobal(thiz, SetIPv4DnsServer, primary, secondary);
}

int API3_NetMiiDiag(NetInterface* thiz)
{
    return Forward(thiz, NetMiiDiag, true);
}

int API3_ArpCheck(NetInterface* thiz)
{
    return thiz != nullptr ? NetArpCheck(NameOf(thiz)) : -1;
}

int API3_NetGetMtu(NetInterface* thiz, int* size)
{
    return Forward(thiz, NetGetMtubyName, size);
}

int API3_NetSetMtu(NetInterface* thiz, int size)
{
    return Forward(thiz, NetSetMtubyName, size);
}

int API3_GetBondMember(NetInterface* thiz, NetInterfaceInfo* list, int* num)
{
    if (thiz == nullptr || list == nullptr || num == nullptr || *num < 0) return -1;

    MemberTable members;
    if (!members.Read(GetBondMembers, NameOf(thiz))) {
        LOG_ERROR("GetBondMembers error.");
        return -1;
    }
    if (*num < members.Count()) {
        LOG_WARN("NetInterfaceInfo list is too small");
    } else {
        *num = members.Count();
    }
    NICBondMode mode = nicBondActiveBackup;
    std::fill_n(list, *num, NetInterfaceInfo{});
    if (!GetBondMode(NameOf(thiz), &mode)) {
        LOG_WARN("bond mode error");
        mode = nicBondActiveBackup;
    }
    for (const char* member : members.First(*num)) {
        CopyText(list->name, member);
        list->bond = mode;
        ++list;
    }
    return 0;
}

int API3_Bond(NetInterface* thiz, const char** listname, const int number, NICBondMode mode)
{
    return Forward(thiz, Bond, listname, number, mode);
}

int API3_UnBond(NetInterface* thiz)
{
    return Forward(thiz, UnBond);
}

int API3_AddIPv4Route(NetInterface* thiz, const char* address, const char* netmask)
{
    if (thiz == nullptr || address == nullptr || netmask == nullptr) return -1;

    const char* card = NameOf(thiz);
    LOG_INFO("api3 add addr %s mask %s name %s", address, netmask, Shown(card));
    if (Contains(address, kDefaultRoute)) return Result(RouteAddDefIPv4(card));

    Net wanted{};
    if (!ParseNet(address, netmask, &wanted)) return RefuseAddresses(__func__, address, netmask);

    CardTexts own{};
    bool through = false;
    if (ReadCard(card, &own)) {
        Net home{};
        if (!ParseNet(own.address, own.mask, &home)) {
            return RefuseAddresses(__func__, address, netmask);
        }
        through = LeadsThroughGateway(card, home, wanted);
    }
    char net[kIPv4TextSize] = {};
    (void)PrintIPv4(wanted.address, net);
    return Result(RouteAddIPv4(net, through ? own.gateway : kNoGateway, netmask, card));
}

int API3_DelIPv4Route(NetInterface* thiz, const char* address, const char* netmask)
{
    if (thiz == nullptr) return -1;

    const char* card = NameOf(thiz);
    LOG_INFO("api3 del addr %s mask %s name %s", Shown(address), Shown(netmask), Shown(card));
    if (address == nullptr && netmask == nullptr) return Result(RouteDelAllIPv4(card));
    if (address == nullptr) return -1;
    if (Contains(address, kDefaultRoute)) return DeleteDefault(thiz, RouteDelDefIPv4);
    if (netmask == nullptr) return -1;

    Net wanted{};
    if (!ParseNet(address, netmask, &wanted)) return RefuseAddresses(__func__, address, netmask);

    char net[kIPv4TextSize] = {};
    (void)PrintIPv4(wanted.address, net);
    return Result(RouteDelIPv4(net, kNoGateway, netmask, card));
}

int API3_NetSetIPv6Addr(NetInterface* thiz, const char* hostip, const char* prefixLen)
{
    return Forward(thiz, NetSetIPv6byName, hostip, prefixLen);
}

int API3_NetGetIPv6Addr(NetInterface* thiz, char* host, int hostLen, char* netmask, int maskLen)
{
    return Forward(thiz, NetGetIPv6byName, host, hostLen, netmask, maskLen);
}

int API3_NetSetIPv6Gateway(NetInterface* thiz, const char* gateway)
{
    return Forward(thiz, NetSetGatewayIPv6byName, gateway);
}

int API3_NetGetIPv6Gateway(NetInterface* thiz, char* gateway, int len)
{
    return Forward(thiz, NetGetGatewayIPv6byName, gateway, len);
}

int API3_SetIPv6DNS(NetInterface* thiz, const char* primary, const char* secondary)
{
    return ForwardGlobal(thiz, SetIPv6DnsServer, primary, secondary);
}

int API3_GetIPv6DNS(NetInterface* thiz, char* primary, const int plen, char* secondary,
                    const int slen)
{
    return ForwardGlobal(thiz, GetIPv6DnsServer, primary, secondary, std::min(plen, slen));
}

int API3_GetLinkLocalAddress(NetInterface* thiz, char* linklocal, int len)
{
    return Forward(thiz, NetGetLinkLocalAddressIpv6, linklocal, len);
}

int API3_Ping(NetInterface* thiz, const char* dstHost, int timeout, int IpType)
{
    if (thiz == nullptr || dstHost == nullptr) return -1;
    if (IpType != 0) {
        LOG_ERROR("IpType %d not support", IpType);
        return -1;
    }
    return Forward(thiz, NetPingCheck, dstHost, timeout);
}

int API3_GetSwitchPortByMAC(NetInterface* thiz, const char* ethMac, const int ethMacLen)
{
    if (thiz == nullptr || ethMacLen < kMacTextSize) return -1;

    int port = -1;
    if (GetSwitchPortByMac(NameOf(thiz), ethMac, &port)) return port;

    LOG_ERROR("GetSwitchPortByMac %s", Shown(ethMac));
    return -1;
}

int API3_GetSwitchMask(NetInterface* thiz, int* linkMask)
{
    return Forward(thiz, GetSwitchMask, linkMask);
}

int API3_setSTP(NetInterface* thiz, STPInfo* stpInfo)
{
    if (thiz == nullptr || stpInfo == nullptr) {
        LOG_ERROR("params error");
        return -1;
    }
    const int file = TreeSwitch();
    if (file < 0) {
        LOG_ERROR("can not open %s", kTreeSwitch);
        return -1;
    }
    const char* text = stpInfo->enable == 1 ? "on" : "off";
    if (WriteText(file, text, strlen(text))) return 0;

    LOG_ERROR("write to file error");
    return -1;
}

int API3_AddRouteIPv6(NetInterface* thiz, const char* pAddress, const int preFixLen)
{
    if (thiz == nullptr || pAddress == nullptr) return -1;
    if (Contains(pAddress, kDefaultRoute)) return Forward(thiz, RouteAddDefIPv6);

    char prefix[kPrefixTextSize];
    FormPrefix(preFixLen, prefix);
    return Result(RouteAddIPv6(pAddress, kNoGateway6, prefix, NameOf(thiz)));
}

int API3_DelRouteIPv6(NetInterface* thiz, const char* pAddress, const int preFixLen)
{
    if (thiz == nullptr) return -1;
    if (pAddress == nullptr && preFixLen == -1) return Forward(thiz, RouteDelAllIPv6);
    if (pAddress == nullptr) return -1;
    if (Contains(pAddress, kDefaultRoute)) return DeleteDefault(thiz, RouteDelDefIPv6);

    char prefix[kPrefixTextSize];
    FormPrefix(preFixLen, prefix);
    return Result(RouteDelIPv6(pAddress, kNoGateway6, prefix, NameOf(thiz)));
}

int API3_NetGetLinkSpeed(NetInterface* thiz, int* speed)
{
    return Forward(thiz, NetGetLinkSpeed, speed);
}

int API3_GetSwitchPortNum(NetInterface* thiz, int* portNum)
{
    return Forward(thiz, GetSwitchPortNum, portNum);
}

int API3_GetSwitchStatus(NetInterface* thiz, struct SwitchPortStatus* portStatus, int* len)
{
    return Forward(thiz, GetSwitchStatus, portStatus, len);
}

int API3_GetBondMode(NetInterface* thiz, NICBondMode* mode)
{
    return Forward(thiz, GetBondMode, mode);
}

int API3_GetEthWorkMode(NetInterface* thiz, NetWorkMode* mode)
{
    return Forward(thiz, NetGetEthWorkMode, mode);
}

int API3_SetBandWidth(NetInterface* thiz, const NetTc* pTc, int num)
{
    return Forward(thiz, TrafCtrlSetBand, pTc, num);
}

int API3_GetBandWidth(NetInterface* thiz, NetTc* pTc, int* num)
{
    return Forward(thiz, TrafCtrlGetBand, pTc, num) == 0 ? *num : -1;
}

int API3_UnSetBandWidth(NetInterface* thiz, const char* ipAddr)
{
    return Forward(thiz, TrafCtrlUnSetBand, ipAddr);
}

int API3_IPPortControl(NetInterface* thiz, const char* ipAddr, int portNumber, int ctrl)
{
    if (thiz == nullptr) return -1;

    switch (ctrl) {
    case 0: return Result(PortCtrlDisablePort(ipAddr, portNumber));
    case 1: return Result(PortCtrlEnablePort(ipAddr, portNumber));
    default: LOG_ERROR("unknow cmd"); return -1;
    }
}

int API3_setTelnet(NetInterface* thiz, TelnetInfo* telnetInfo)
{
    if (thiz == nullptr || telnetInfo == nullptr) {
        LOG_ERROR("telnet set fail");
        return -1;
    }
    Fd file(open(kTelnetWish, O_RDWR | O_CREAT, 0700));  // what is there stays
    if (!file.Ok() || !IsOpenedFile(file.Get(), kTelnetWish)) {
        file.Close();
        LOG_ERROR("open %s failed", kTelnetWish);
        return -1;
    }
    const char* text = telnetInfo->enable != 0 ? "on" : "off";
    const bool written = WriteText(file.Get(), text, strlen(text) + 1);
    file.Close();
    if (written) return 0;

    LOG_ERROR("write file failed");
    return -1;
}

int API3_GetMacByIPWithARP(NetInterface* thiz, const char* ipAddr, char* mac, const int len)
{
    if (len < kMacTextSize) return -1;

    return ForwardGlobal(thiz, GetMacByIPFromARP, ipAddr, mac);
}

int API3_GetRealIP(NetInterface* thiz, char* hostIP, const int hlen, char* netmask, const int nlen)
{
    return API3_NetGetHostIP(thiz, hostIP, hlen, netmask, nlen);
}

int API3_SetMediumPrefer(NetInterface* thiz, NetMediumPrefer medium)
{
    return Forward(thiz, NetSetMediumPrefer, medium);
}

int API3_NetSetModeAndSpeed(NetInterface* thiz, int /*modeAndSpeed*/)
{
    if (thiz == nullptr) return -1;

    LOG_ERROR("not support");
    return -1;
}

int API3_DelIPv6Address(NetInterface* thiz, const char* hostIP)
{
    return Forward(thiz, NetDelIPAddressIpv6, hostIP);
}

int API3_setSSH(NetInterface* thiz, SSHInfo* sshInfo)
{
    if (thiz == nullptr || sshInfo == nullptr) {
        LOG_ERROR("Set SSH failed!\n");
        return -1;
    }
    return SetSSHStatus(sshInfo);
}

// cppcheck-suppress passedByValue  ; as the slot takes it
int API3_setBondParams(NetInterface* thiz, const QV_PAL_NetBondParams params)
{
    return Forward(thiz, SetBondHashPolicy, params.lacp);
}

int API3_getBondParams(NetInterface* thiz, QV_PAL_NetBondParams* params)
{
    if (thiz == nullptr || params == nullptr) return -1;

    return GetBondHashPolicy(NameOf(thiz), &params->lacp) ? 1 : 0;  // unlike its neighbours
}

int API3_miiDiagEx(NetInterface* thiz)
{
    return Forward(thiz, NetMiiDiag, false);
}

int API3_NetGetSysIPv6Addr(NetInterface* thiz, char* host, int hostLen, char* netmask, int maskLen)
{
    return Forward(thiz, NetGetSysIPv6byName, host, hostLen, netmask, maskLen);
}

int findNode(const char* name, NetInterface** pout)
{
    if (name == nullptr) return -1;

    for (int i = 0; i < kMaxInterfaces; ++i) {
        ifNode& node = g_ifNodeArray[i];
        if (node.CardName[0] == '\0' || strncmp(node.CardName, name, kNameSize) != 0) continue;
        if (node.pNetInterface == nullptr) {
            node.CardName[0] = '\0';
            continue;
        }
        if (pout != nullptr) *pout = node.pNetInterface;
        return i;
    }
    return -1;
}

int insertNode(const char* name, NetInterface* pIf)
{
    if (name == nullptr || pIf == nullptr) return -1;

    for (int i = 0; i < kMaxInterfaces; ++i) {
        ifNode& node = g_ifNodeArray[i];
        if (node.CardName[0] != '\0') continue;

        CopyText(node.CardName, name);
        node.pNetInterface = pIf;
        return i;
    }
    LOG_ERROR("static ifNodeArray is full, support %d items!", kMaxInterfaces);
    return -1;
}

int createNetInterface(NetInterfaceDesc* desc, NetInterface** netInterface)
{
    if (desc == nullptr || netInterface == nullptr) return -1;
    if (!CardExists(desc->name)) {
        LOG_ERROR("invalid name: %s\n", Shown(desc->name));
        return -1;
    }
    MutexGuard lock(g_apiMutexLock);
    if (findNode(desc->name, netInterface) >= 0) return 0;

    NewObject<NetInterface, NetIfPri> made;
    const char* missing = made.Allocate("NetInterface", "NetIfPri");
    if (missing == nullptr && insertNode(desc->name, made.object.get()) >= 0) {
        CopyText(made.own->name, desc->name);
        *made.object = kInterfaceTable;
        made.GiveTo(netInterface);  // it lives as long as the process
        return 0;
    }
    made.Free();
    lock.Release();
    if (missing != nullptr) {
        LOG_ERROR("malloc %s error", missing);
    } else {
        LOG_ERROR("createNetInterface for %s failed!", desc->name);
    }
    return -1;
}

// ==== Module ====

int getNetInterfaceList(NetInterfaceInfo* list, int* num)
{
    return Result(NetGetAllInterface(list, num));
}

int getNetInterfaceMaxNum(int* num)
{
    if (num == nullptr) return -1;

    *num = kMaxInterfaces;
    return 0;
}

int getDefaultNetInterface(char* name, const int len)
{
    return Result(NetGetDefEth(name, len));
}

int setDefaultNetInterface(const char* name)
{
    return Result(NetSetDefEth(name));
}

int disableRoute(int disable)
{
    return Result(RouteControl(disable));
}

int addNetVirtInterface(NetVirtInterInfo* virtInterInfo)
{
    return Result(NetVirtInterAdd(virtInterInfo));
}

int delNetVirtInterface(NetVirtInterName* virtInterName)
{
    return Result(NetVirtInterDel(virtInterName));
}

// ==== Control objects ====

namespace {

/// Private part of a control object.
struct NetCtrlPri {
    int resv[32];  // the descriptor, kept
    int ref;
    pthread_mutex_t netCtrlLock;  // guards the count
};

NetCtrlPri* PrivateOf(const QV_PAL_NetControl* thiz)
{
    return thiz != nullptr ? static_cast<NetCtrlPri*>(thiz->priv) : nullptr;
}

/// The record of a common operation and its public twin are the same bytes.
template <class To, class From>
void CopyTwins(To* to, const From* from, int count)
{
    static_assert(sizeof(To) == sizeof(From), "twins are copied byte for byte");
    static_assert(std::is_trivially_copyable_v<To> && std::is_trivially_copyable_v<From>);
    if (count > 0) memcpy(to, from, static_cast<size_t>(count) * sizeof(To));
}

/// Hands a copy of a caller's record to a common operation.
template <class Record, class Public>
int ForwardCopy(const QV_PAL_NetControl* thiz, bool (*operation)(Record*), const Public* given)
{
    if (thiz == nullptr || given == nullptr) return -1;

    std::remove_const_t<Record> record;
    CopyTwins(&record, given, 1);
    return Result(operation(&record));
}

/// Lists static ARP entries, which `list` does, into a table of the library's own record.
template <class List>
int ListArpEntries(const char* operation, QV_PAL_ARPEntry* arpInfo, int* num, List list,
                   const char* failure)
{
    const auto entries = ZeroedArray<NetARPEntry>(*num);
    if (entries == nullptr) {
        LOG_ERROR_AS(operation, "malloc NetARPEntry failed");
        return -1;
    }
    if (!list(entries.get())) {
        LOG_ERROR_AS(operation, "%s", failure);
        return -1;
    }
    CopyTwins(arpInfo, entries.get(), *num);
    return 0;
}

constexpr QV_PAL_NetControl MakeControlTable()
{
    QV_PAL_NetControl table{};  // a slot without a line here stays NULL
    table.addRef = NetCtrl_AddRef;
    table.release = NetCtrl_DelRef;
    table.getPoEPowerInfo = NetCtrl_GetPoEPowerInfo;
    table.setPoEPowerOn = NetCtrl_SetPoEPowerOn;
    table.setPoEPowerOff = NetCtrl_SetPoEPowerOff;
    table.getAllRouteInfo = NetCtrl_GetAllRouteInfo;
    table.addRoute = NetCtrl_AddRoute;
    table.delRoute = NetCtrl_DelRoute;
    table.addArpStaticEntry = NetCtrl_arpAddStaticEntry;
    table.delArpStaticEntry = NetCtrl_arpDelStaticEntry;
    table.getAllArpStaticEntry = NetCtrl_arpGetAllStaticEntry;
    table.getArpStaticInfoByIp = NetCtrl_arpGetStaticInfoByIp;
    table.setPoETotalPower = NetCtrl_SetPoETotalPower;
    return table;
}

constexpr QV_PAL_NetControl kControlTable = MakeControlTable();

static_assert(offsetof(QV_PAL_NetControl, getAllRouteInfo) == 6 * sizeof(void*) &&
                  offsetof(QV_PAL_NetControl, setPhyWolMode) == 14 * sizeof(void*) &&
                  offsetof(QV_PAL_NetControl, reserved) == 15 * sizeof(void*) &&
                  sizeof(QV_PAL_NetControl) == 128 * sizeof(void*),
              "order of the slots is fixed");

#define SAME_PLACE(Public, Own, publicField, ownField)                                             \
    static_assert(offsetof(Public, publicField) == offsetof(Own, ownField), "twins")
SAME_PLACE(QV_PAL_RouteTableInfo, NetRouteTableInfo, type, type);
SAME_PLACE(QV_PAL_RouteTableInfo, NetRouteTableInfo, userFlag, userFlag);
SAME_PLACE(QV_PAL_RouteTableInfo, NetRouteTableInfo, dst.IPv4addr, dst.addrIPv4);
SAME_PLACE(QV_PAL_RouteTableInfo, NetRouteTableInfo, dst.IPv6addr, dst.addrIPv6);
SAME_PLACE(QV_PAL_RouteTableInfo, NetRouteTableInfo, gw.IPv4addr, gw.addrIPv4);
SAME_PLACE(QV_PAL_RouteTableInfo, NetRouteTableInfo, mask, mask);
SAME_PLACE(QV_PAL_RouteTableInfo, NetRouteTableInfo, viaDev, viaDev);
SAME_PLACE(QV_PAL_RouteTableInfo, NetRouteTableInfo, reserved, reserved);
SAME_PLACE(QV_PAL_ARPEntry, NetARPEntry, ip, ip);
SAME_PLACE(QV_PAL_ARPEntry, NetARPEntry, mac, mac);
SAME_PLACE(QV_PAL_ARPEntry, NetARPEntry, reserved, reserved);
SAME_PLACE(QV_PAL_PoeInfo, PoeInfo_t, powerFlag, powerFlag);
SAME_PLACE(QV_PAL_PoeInfo, PoeInfo_t, totalPower, totalPower);
SAME_PLACE(QV_PAL_PoeInfo, PoeInfo_t, power, power);
SAME_PLACE(QV_PAL_PoeInfo, PoeInfo_t, powerOff, powerOff);
SAME_PLACE(QV_PAL_PoeInfo, PoeInfo_t, powerFail, powerFail);
SAME_PLACE(QV_PAL_PoeInfo, PoeInfo_t, powerOnMask, powerOnMask);
SAME_PLACE(QV_PAL_PoeInfo, PoeInfo_t, powerOffMask, powerOffMask);
SAME_PLACE(QV_PAL_PoeInfo, PoeInfo_t, ratePower, ratePower);
SAME_PLACE(QV_PAL_PoeInfo, PoeInfo_t, availablePower, availablePower);
SAME_PLACE(QV_PAL_PoeInfo, PoeInfo_t, averagePower, averagePower);
SAME_PLACE(QV_PAL_PoeInfo, PoeInfo_t, reserved, reserved);
#undef SAME_PLACE

}  // namespace

int NetCtrl_AddRef(QV_PAL_NetControl* thiz)
{
    NetCtrlPri* own = PrivateOf(thiz);
    if (own == nullptr) return -1;

    const MutexGuard lock(own->netCtrlLock);
    return ++own->ref;
}

int NetCtrl_DelRef(QV_PAL_NetControl* thiz)
{
    NetCtrlPri* own = PrivateOf(thiz);
    if (own == nullptr) return -1;

    MutexGuard lock(own->netCtrlLock);
    const int count = --own->ref;
    lock.Release();
    if (count == 0) {
        free(own);
        free(thiz);
    }
    return count;
}

int NetCtrl_GetPoEPowerInfo(QV_PAL_NetControl* thiz, QV_PAL_PoeInfo* pPoe_info)
{
    if (thiz == nullptr) return -1;

    PoeInfo_t info{};
    if (!GetPoEPowerInfo(&info)) {
        LOG_ERROR("Get PoE Power info error!");
        return -1;
    }
    if (pPoe_info == nullptr) return -1;  // the device has been asked, as for every caller

    CopyTwins(pPoe_info, &info, 1);
    return 0;
}

int NetCtrl_SetPoEPowerOn(QV_PAL_NetControl* /*thiz*/, uint32_t portMask)
{
    return Result(SetPoEPowerOn(portMask));
}

int NetCtrl_SetPoEPowerOff(QV_PAL_NetControl* /*thiz*/, uint32_t portMask)
{
    return Result(SetPoEPowerOff(portMask));
}

int NetCtrl_GetAllRouteInfo(QV_PAL_NetControl* thiz, QV_PAL_RouteTableInfo* routes, int* num)
{
    if (thiz == nullptr || routes == nullptr || num == nullptr || *num == 0) return -1;

    const auto table = ZeroedArray<NetRouteTableInfo>(*num);
    NetRouteTableInfo* const rows = table.get();
    if (rows == nullptr) {
        LOG_ERROR("malloc NetRouteTableInfo failed");
        return -1;
    }
    for (int i = 0; i < *num; ++i) rows[i].type = routes[0].type;
    if (!RouteGetAllInfo(rows, num)) {
        LOG_ERROR("get all IPv4 route fail!");
        return -1;
    }
    CopyTwins(routes, rows, *num);
    return 0;
}

int NetCtrl_AddRoute(QV_PAL_NetControl* thiz, QV_PAL_RouteTableInfo* cmd)
{
    return ForwardCopy(thiz, RouteAdd, cmd);
}

int NetCtrl_DelRoute(QV_PAL_NetControl* thiz, QV_PAL_RouteTableInfo* cmd)
{
    return ForwardCopy(thiz, RouteDel, cmd);
}

int NetCtrl_arpAddStaticEntry(QV_PAL_NetControl* thiz, QV_PAL_ARPEntry* arpInfo)
{
    return ForwardCopy(thiz, arpSetStaticEntry, arpInfo);
}

int NetCtrl_arpDelStaticEntry(QV_PAL_NetControl* thiz, QV_PAL_ARPEntry* arpInfo)
{
    return ForwardCopy(thiz, arpDelStaticEntry, arpInfo);
}

int NetCtrl_arpGetAllStaticEntry(QV_PAL_NetControl* thiz, QV_PAL_ARPEntry* arpInfo, int* num)
{
    if (thiz == nullptr || arpInfo == nullptr || num == nullptr || *num < 1) return -1;

    const auto list = [num](NetARPEntry* entries) { return arpGetAllStaticEntry(entries, num); };
    return ListArpEntries(__func__, arpInfo, num, list, "get all ARP info failed");
}

int NetCtrl_arpGetStaticInfoByIp(QV_PAL_NetControl* thiz, const char* ip, QV_PAL_ARPEntry* arpInfo,
                                 int* num)
{
    if (thiz == nullptr || ip == nullptr || arpInfo == nullptr || num == nullptr || *num < 1) {
        return -1;
    }
    const auto list = [ip, num](NetARPEntry* entries) {
        return arpGetARPStaticInfoByIP(ip, entries, num);
    };
    return ListArpEntries(__func__, arpInfo, num, list, "get ARP info by IP failed");
}

int NetCtrl_SetPoETotalPower(QV_PAL_NetControl* /*thiz*/, uint32_t power)
{
    return Result(SetPoETotalPower(power));
}

int createNetControl(QV_PAL_NetControlDesc* desc, QV_PAL_NetControl** netCtrl)
{
    if (netCtrl == nullptr) return -1;

    NewObject<QV_PAL_NetControl, NetCtrlPri> made;
    const char* missing = made.Allocate("QV_PAL_NetControl", "netPri");
    if (missing != nullptr) {
        LOG_ERROR("malloc %s error!", missing);
        return -1;
    }
    NetCtrlPri& own = *made.own;
    if (desc != nullptr) memcpy(own.resv, desc->resv, sizeof(own.resv));
    (void)pthread_mutex_init(&own.netCtrlLock, nullptr);  // cannot fail with default attributes
    own.ref = 1;
    *made.object = kControlTable;
    made.GiveTo(netCtrl);
    return 0;
}

// ==== Bridge objects ====

namespace {

/// Private part of a bridge object. The name stands first, so that it can be handed on as one.
struct NetBrPriv {
    char name[32];
    uint32_t refcnt;  // unguarded, callers keep apart
    uint8_t type;
    uint8_t enabled;  // told by `getInfo`, and never set
};
static_assert(offsetof(NetBrPriv, name) == 0 && sizeof(NetBrPriv) == 40,
              "the private part is handed on as the name");

NetBrPriv* PrivateOf(const NetBridge* thiz)
{
    return thiz != nullptr ? static_cast<NetBrPriv*>(thiz->priv) : nullptr;
}

constexpr NetBridge MakeBridgeTable()
{
    NetBridge table{};
    table.addRef = BrAddRef;
    table.release = BrDelRef;
    table.getBridgeDevicesInfo = BrGetBridgeDevicesInfo;
    table.isEdgePort = BrIsEdgePort;
    table.edgePortCtrl = BrEdgePortCtrl;
    table.getInfo = BrGetInfo;
    table.bridgeCtrl = BridgeCtrl;
    table.getBridgeDevices = BrGetBridgeDevices;
    return table;
}

constexpr NetBridge kBridgeTable = MakeBridgeTable();

static_assert(offsetof(NetBridge, getBridgeDevicesInfo) == 3 * sizeof(void*) &&
                  offsetof(NetBridge, getBridgeDevices) == 8 * sizeof(void*) &&
                  offsetof(NetBridge, reserved) == 9 * sizeof(void*) &&
                  sizeof(NetBridge) == 32 * sizeof(void*),
              "order of the slots is fixed");

/// Makes the bridge of a new object, unless there is one.
bool ProvideBridge(const NetBrDesc& desc)
{
    if (BridgeCheckExist(desc.name)) return true;

    LOG_INFO_AS("createNetBridge", "bridge %s is not created, now create it", Shown(desc.name));
    if (Bridge(desc.name, const_cast<char**>(desc.subDev), desc.num)) return true;  // only read

    LOG_ERROR_AS("createNetBridge", "create Bridge fail!");
    return false;
}

}  // namespace

int BrAddRef(NetBridge* thiz)
{
    NetBrPriv* own = PrivateOf(thiz);
    if (own == nullptr) {
        LOG_ERROR("invalid param.");
        return -1;
    }
    ++own->refcnt;
    return 0;
}

int BrDelRef(NetBridge* thiz)
{
    NetBrPriv* own = PrivateOf(thiz);
    if (own == nullptr) {
        LOG_ERROR("invalid param.");
        return -1;
    }
    if (own->refcnt == 0) {
        LOG_WARN("NetBridge has been released");
        return 0;
    }
    --own->refcnt;
    if (own->refcnt != 0) return static_cast<int>(own->refcnt);

    (void)UnBridge(own->name);  // the object goes in any case
    free(own);
    free(thiz);
    return 0;
}

int BrGetBridgeDevicesInfo(NetBridge* thiz, unsigned int* slave)
{
    const NetBrPriv* own = PrivateOf(thiz);
    if (own == nullptr || slave == nullptr) {
        LOG_ERROR("invalid param");
        return -1;
    }
    MemberTable ports;
    if (!ports.Read(Bridge_GetBridgeMembers, own->name)) {
        LOG_ERROR("get %s bridge member failed.", own->name);
        return -1;
    }
    *slave = BridgeMemberMask(__func__, ports.All());
    return 0;
}

int BrIsEdgePort(NetBridge* thiz, const char* dev)
{
    const NetBrPriv* own = PrivateOf(thiz);
    if (own == nullptr || dev == nullptr) {
        LOG_ERROR("invalid param");
        return -1;
    }
    return Result(BridgeIsEdgePort(own->name, dev));
}

int BrEdgePortCtrl(NetBridge* thiz, const char* dev, int ctrl)
{
    const NetBrPriv* own = PrivateOf(thiz);
    if (own == nullptr || dev == nullptr) {
        LOG_ERROR("invalid param");
        return -1;
    }
    switch (ctrl) {
    case 0: return Result(BridgeAddEdgePort(own->name, dev));
    case 1: return Result(BridgeDelEdgePort(own->name, dev));
    default: LOG_ERROR("invalid option for Edge Port Ctrl"); return -1;
    }
}

int BrGetInfo(NetBridge* thiz, STPInfo* info)
{
    const NetBrPriv* own = PrivateOf(thiz);
    if (own == nullptr || info == nullptr) {
        LOG_ERROR("invalid param");
        return -1;
    }
    if (!BridgeGetStpInfo(own->name, info)) {
        LOG_ERROR("Get Bridge StpInfo failed");
        return -1;
    }
    info->enable = own->enabled;
    return 0;
}

int BridgeCtrl(NetBridge* thiz, const STPInfo* info)
{
    const NetBrPriv* own = PrivateOf(thiz);
    if (own == nullptr || info == nullptr) {
        LOG_ERROR("invalid param");
        return -1;
    }
    return Result(BridgeControl(own->name, info));
}

int BrGetBridgeDevices(NetBridge* thiz, QV_PAL_NetBrDevice* device, int* num)
{
    const NetBrPriv* own = PrivateOf(thiz);
    if (own == nullptr || num == nullptr || *num <= 0) {
        LOG_ERROR("invalid param");
        return -1;
    }
    *num = std::min(*num, kMaxInterfaces);
    MemberTable ports;
    if (!ports.Read(Bridge_GetBridgeMembers, own->name, *num)) {
        LOG_ERROR("get %s bridge member failed.", own->name);
        return -1;
    }
    *num = ports.Count();
    for (const char* port : ports.All()) {
        if (device == nullptr) return -1;  // needed only where there is a port

        CopyText(device->name, port);
        ++device;
    }
    return 0;
}

int createNetBridge(NetBrDesc* desc, NetBridge** nbr)
{
    if (desc == nullptr || nbr == nullptr) {
        LOG_ERROR("invalid param!");
        return -1;
    }
    NewObject<NetBridge, NetBrPriv> made;
    const char* missing = made.Allocate("NetBridge", "NetBrPriv");
    if (missing != nullptr) {
        LOG_ERROR("malloc %s failed!", missing);
        return -1;
    }
    if (!ProvideBridge(*desc)) return -1;

    CopyText(made.own->name, desc->name);
    made.own->refcnt = 1;
    *made.object = kBridgeTable;
    made.GiveTo(nbr);
    if (!BridgeUpdateBrIDByConfig(desc->name)) LOG_WARN("save BRIDGES config failed");
    if (!BridgeUpdatePortListByConfig(desc->name, desc->subDev, desc->num)) {
        LOG_WARN("save SSIF config failed");
    }
    return 0;
}
