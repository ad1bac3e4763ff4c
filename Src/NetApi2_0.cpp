// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "NetApi2_0.h"

#include "Base.h"
#include "Bridge.h"
#include "CommonApi.h"
#include "Config.h"
#include "Dns.h"
#include "Network.h"
#include "Other.h"
#include "Support/Handles.h"
#include "Support/Log.h"
#include "Support/Text.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>

#include <arpa/inet.h>
#include <pthread.h>
#include <sys/time.h>

/// The whole body of a forward that names its failure: 0, or the message and -1. A macro, so that
/// the line carries the public function's name. A forward that leaves the messages to the operation
/// below it uses `Result`.
#define V2_RESULT(done, ...) ((done) ? 0 : (LOG_ERROR(__VA_ARGS__), -1))

using namespace vorlix;

namespace {

// ---- names and limits

constexpr char kHiddenCard[] = "eth16";
constexpr char kFirstBond[] = "bond0";
constexpr char kFirstBridge[] = "br0";

constexpr uint32_t kVersion = 6;

// ---- the caller's buffers

/// True when both buffers hold an IPv4 text. The operations below do not get their sizes.
bool HoldIPv4(int32_t length, int32_t otherLength)
{
    return length >= kIPv4TextSize && otherLength >= kIPv4TextSize;
}

/// Zeroes `count` entries of a caller's array; a negative count zeroes nothing.
template <class Record>
void Clear(Record* records, int32_t count)
{
    if (count > 0) memset(records, 0, static_cast<size_t>(count) * sizeof(Record));
}

}  // namespace

// ==== Identity ====

namespace {

bool IsNetworkCard(const char* name)
{
    return Contains(name, "eth") && !Contains(name, ":") && isSwitchByName(name) != 1;
}

}  // namespace

QV_API_VERSION_RET_E LibvorlixGetVersion(uint32_t* p32Version)
{
    if (p32Version == nullptr) {
        LOG_ERROR("LibvorlixGetVersion failed.");
        return QV_API_VERSION_RET_ERROR;
    }
    *p32Version = kVersion;
    return QV_API_VERSION_RET_SUCCESS;
}

int32_t NetGetCaps(NetCaps* pNetCaps)
{
    if (pNetCaps == nullptr) return -1;

    char names[kMaxInterfaces][kNameSize];
    int count = kMaxInterfaces;
    if (!GetAllInterfaceInfo(names, &count)) {
        LOG_ERROR("GetAllInterfaceInfo failed");
        return -1;
    }
    pNetCaps->cardNum = static_cast<int32_t>(std::count_if(names, names + count, IsNetworkCard));
    return 0;
}

int32_t NetSetDDNSConfig(NET_DDNS_CONFIG* /*pConfig*/)
{
    LOG_ERROR("unsupport!!!");
    return -1;
}

int32_t NetGetDDNSConfig(NET_DDNS_CONFIG* /*pConfig*/)
{
    LOG_ERROR("unsupport!!!");
    return -1;
}

// The next two report success, unlike the other features that are gone: applications rely on it.

int32_t NetSetDNSDomain(const char* pDomain)
{
    if (pDomain == nullptr) return -1;

    LOG_ERROR("unsupport");
    return 0;
}

int32_t NetSetDNSHostName(const char* pHostName)
{
    if (pHostName == nullptr) return -1;

    LOG_ERROR("unsupport");
    return 0;
}

int32_t NetSetUbootIP(const char* /*pHostIP*/, const char* /*pNetmask*/)
{
    LOG_ERROR("unsupport");
    return -1;
}

int32_t NetSetUbootGateway(const char* /*pGageway*/)
{
    LOG_ERROR("unsupport");
    return -1;
}

// ==== The first card ====

int32_t NetSetHostIP(const char* pHostIp, const char* pNetMask)
{
    if (pHostIp == nullptr || pNetMask == nullptr) return -1;

    return V2_RESULT(NetSetIPByName(kFirstCard, pHostIp, pNetMask),
                     "NetSetIPByName eth0 %s %s failed.", pHostIp, pNetMask);
}

int32_t NetSetGateway(const char* pGateway)
{
    if (pGateway == nullptr) return -1;

    return V2_RESULT(NetSetGatewaybyName(kFirstCard, pGateway),
                     "NetSetGatewaybyName eth0 %s failed.", pGateway);
}

int32_t NetGetHostIP(char* pHostIp, const int32_t iHLen, char* pNetMask, const int32_t iNLen)
{
    if (!HoldIPv4(iHLen, iNLen)) return -1;

    return V2_RESULT(NetGetIPbyName(kFirstCard, pHostIp, pNetMask), "failed.");
}

int32_t NetGetGateway(char* pGateway, const int32_t iGLen)
{
    if (iGLen < kIPv4TextSize) return -1;

    return V2_RESULT(NetGetGatewaybyName(kFirstCard, pGateway), "failed");
}

// ==== A named card ====

int32_t NetSetHostIPEx(const char* pEthName, const char* pHostIp, const char* pNetmask)
{
    return V2_RESULT(NetSetIPByName(pEthName, pHostIp, pNetmask), "failed");
}

int32_t NetSetGatewayEx(const char* pEthName, const char* pGateway)
{
    return V2_RESULT(NetSetGatewaybyName(pEthName, pGateway), "failed");
}

int32_t NetGetHostIPEx(const char* pEthName, char* pHostIp, const int32_t iHLen, char* pNetmask,
                       const int32_t iNLen)
{
    if (!HoldIPv4(iHLen, iNLen)) return -1;

    return V2_RESULT(NetGetIPbyName(pEthName, pHostIp, pNetmask), "failed");
}

int32_t NetGetGatewayEx(const char* pEthName, char* pGateway, const int32_t iGLen)
{
    if (iGLen < kIPv4TextSize) return -1;

    return V2_RESULT(NetGetGatewaybyName(pEthName, pGateway), "failed");
}

int32_t NetGetMAC(const char* pEthName, char* pEthMac, const int32_t iEthMacLen)
{
    if (iEthMacLen < kMacTextSize) return -1;

    return V2_RESULT(NetGetMacbyName(pEthName, pEthMac), "failed");
}

int32_t NetSetMAC(const char* pEthName, const char* pEthMac)
{
    return V2_RESULT(NetSetMacbyName(pEthName, pEthMac), "failed");
}

int32_t NetSetMTU(const char* pEthName, const int32_t mtu)
{
    return V2_RESULT(NetSetMtubyName(pEthName, mtu), "failed");
}

int32_t NetGetMTU(const char* pEthName, int32_t* mtu)
{
    return V2_RESULT(NetGetMtubyName(pEthName, mtu), "failed");
}

int32_t NetWorkGetMac(const char* pIp, char* pMac)
{
    return V2_RESULT(GetMacByIPFromARP(pIp, pMac), "failed");
}

// ==== IPv6 ====

namespace {

/// fe80::/10 and fec0::/10.
IPV6_ADDR_SCOPE_TYPE_E UnicastScope(const uint8_t* bytes)
{
    switch (bytes[1] & 0xC0) {
    case 0x80: return VORLIX_IPV6_ADDR_SCOPE_LINKLOCAL;
    case 0xC0: return VORLIX_IPV6_ADDR_SCOPE_SITELOCAL;
    default: return VORLIX_IPV6_ADDR_SCOPE_GLOBAL;
    }
}

/// ff00::/8 carries its scope; the wider ones all count as global.
IPV6_ADDR_SCOPE_TYPE_E MulticastScope(const uint8_t* bytes)
{
    switch (bytes[1] & 0x0F) {
    case 1: return VORLIX_IPV6_ADDR_SCOPE_NODELOCAL;
    case 2: return VORLIX_IPV6_ADDR_SCOPE_LINKLOCAL;
    case 5: return VORLIX_IPV6_ADDR_SCOPE_SITELOCAL;
    default: return VORLIX_IPV6_ADDR_SCOPE_GLOBAL;
    }
}

/// The loopback address and the unspecified one.
IPV6_ADDR_SCOPE_TYPE_E ReservedScope(const uint8_t* bytes)
{
    constexpr int kLast = sizeof(in6_addr) - 1;
    const bool reserved = std::all_of(bytes, bytes + kLast, [](uint8_t byte) { return byte == 0; });
    if (reserved && bytes[kLast] == 1) return VORLIX_IPV6_ADDR_SCOPE_NODELOCAL;
    if (reserved && bytes[kLast] == 0) return VORLIX_IPV6_ADDR_SCOPE_LINKLOCAL;
    return VORLIX_IPV6_ADDR_SCOPE_GLOBAL;
}

}  // namespace

int32_t NetSetHostIPEx6(const char* pEthName, const char* pHostIp, const char* pRefixlen)
{
    return V2_RESULT(NetSetIPv6byName(pEthName, pHostIp, pRefixlen), "failed.");
}

int32_t NetGetHostIPEx6(const char* pEthName, char* pHostIP, const int32_t iHLen, char* pNetmask,
                        const int32_t iNLen)
{
    return V2_RESULT(NetGetIPv6byName(pEthName, pHostIP, iHLen, pNetmask, iNLen), "failed.");
}

int32_t NetSetGatewayEx6(const char* pEthName, const char* pGateway)
{
    return V2_RESULT(NetSetGatewayIPv6byName(pEthName, pGateway), "failed.");
}

int32_t NetGetGatewayEx6(const char* pEthName, char* pGateway, const int32_t iGLen)
{
    return V2_RESULT(NetGetGatewayIPv6byName(pEthName, pGateway, iGLen), "failed.");
}

int32_t NetIfDelIpv6Addr(const char* pEthName, const char* hostIP)
{
    return V2_RESULT(NetDelIPAddressIpv6(pEthName, hostIP), "failed.");
}

int32_t getScopeLinkAddr6(const char* Ethname, char* linklocal, int32_t length)
{
    return V2_RESULT(NetGetLinkLocalAddressIpv6(Ethname, linklocal, length), "failed.");
}

IPV6_ADDR_SCOPE_TYPE_E In6AddrType(struct in6_addr* addr)
{
    if (addr == nullptr) return VORLIX_IPV6_ADDR_SCOPE_GLOBAL;

    const uint8_t* bytes = addr->s6_addr;
    switch (bytes[0]) {
    case 0xFE: return UnicastScope(bytes);
    case 0xFF: return MulticastScope(bytes);
    default: return ReservedScope(bytes);
    }
}

// ==== DNS ====

int32_t NetGetDNSAddress(char* pprimary, const int32_t iPlen, char* psecondary, const int32_t iSlen)
{
    if (!HoldIPv4(iPlen, iSlen)) return -1;

    return V2_RESULT(GetIPv4DnsServer(pprimary, psecondary), "failed");
}

int32_t NetSetDNSAddress(const char* pPrimary, const char* pSecondary)
{
    return V2_RESULT(SetIPv4DnsServer(pPrimary, pSecondary), "failed");
}

int32_t NetGetDNSAddressip6(char* pPrimary, const int32_t iPlen, char* pSecondary,
                            const int32_t iSlen)
{
    return V2_RESULT(GetIPv6DnsServer(pPrimary, pSecondary, std::min(iPlen, iSlen)), "failed");
}

int32_t NetSetDNSAddressip6(const char* pPrimary, const char* pSecondary)
{
    return V2_RESULT(SetIPv6DnsServer(pPrimary, pSecondary), "failed");
}

// ==== Probes ====

namespace {

constexpr int kPingSeconds = 3;
constexpr int kAliveSeconds = 2;

/// Microseconds from one time to another, as far as they go into 32 bits.
int32_t Elapsed(const timeval& start, const timeval& end)
{
    const uint32_t seconds =
        static_cast<uint32_t>(end.tv_sec) - static_cast<uint32_t>(start.tv_sec);
    return static_cast<int32_t>(seconds * 1000000U - static_cast<uint32_t>(start.tv_usec) +
                                static_cast<uint32_t>(end.tv_usec));
}

}  // namespace

int32_t mii_diag(char* ethname)
{
    return Result(NetMiiDiag(ethname, true));
}

int32_t NetGetLinkStatus(const char* ethname)
{
    return Result(Net_MiiDiag(ethname));
}

int32_t ArpCheck(char* pEthName)
{
    if (pEthName == nullptr) return -1;

    return NetArpCheck(pEthName) != 0 ? 1 : 0;
}

int32_t NetWorkPing(PING_S* pstPing)
{
    if (pstPing == nullptr) return -1;

    // The caller's texts may fill their fields to the last byte.
    char from[sizeof(pstPing->acFrom) + 1];
    char to[sizeof(pstPing->acTo) + 1];
    CopyText(from, pstPing->acFrom);
    CopyText(to, pstPing->acTo);

    timeval start{};
    gettimeofday(&start, nullptr);
    if (!NetPingCheck(from, to, kPingSeconds)) {
        LOG_ERROR("ping %s failed", to);
        return -1;
    }
    timeval end{};
    gettimeofday(&end, nullptr);
    pstPing->s32Time = Elapsed(start, end);
    if (pstPing->s32Time >= 0) return 0;

    LOG_ERROR("time jump back, start[%lds:%ldms],end[%lds:%ldms]", static_cast<long>(start.tv_sec),
              static_cast<long>(start.tv_usec), static_cast<long>(end.tv_sec),
              static_cast<long>(end.tv_usec));
    return -1;
}

int32_t network_alive(const char* pHostIP)
{
    if (pHostIP == nullptr) return -1;

    return NetPingCheck(nullptr, pHostIP, kAliveSeconds) ? 0 : -2;
}

// ==== Devices ====

namespace {

void Convert(const NetInterfaceInfo& card, NetDevice& device)
{
    device.valid = static_cast<char>(card.valid);
    device.trans_media = static_cast<char>(card.media);
    device.usage = static_cast<uint8_t>(card.usage);
    device.speed = card.speed;
    CopyText(device.name, card.name);
    device.max_speed = static_cast<uint32_t>(card.reserved[0]);
}

/// The body of the two listings: all interfaces, or all but the one named `hidden`.
int32_t ListDevices(const char* operation, NetDevice* devices, int32_t capacity, const char* hidden)
{
    if (devices == nullptr) return 0;

    Clear(devices, capacity);
    if (capacity > kMaxInterfaces) {
        LOG_WARN_AS(operation, "can not support so many device");
        capacity = kMaxInterfaces;
    }
    NetInterfaceInfo cards[kMaxInterfaces];
    int32_t count = capacity;
    if (!NetGetAllInterface(cards, &count)) {
        LOG_ERROR_AS(operation, "NetGetAllInterface failed");
        return 0;
    }
    int32_t listed = 0;
    for (int32_t i = 0; i < count; ++i) {
        if (hidden == nullptr || !Equal(cards[i].name, hidden)) {
            Convert(cards[i], devices[listed++]);
        }
    }
    return listed;
}

}  // namespace

int32_t NetGetEthName(char* pEthName, int32_t len_EthName, int32_t* iEthnum)
{
    if (pEthName == nullptr || iEthnum == nullptr) return -1;

    char names[kMaxInterfaces][kNameSize];
    int count = kMaxInterfaces;
    if (!GetAllInterfaceInfo(names, &count)) {
        LOG_ERROR("GetAllInterfaceInfo failed.");
        return -1;
    }
    int32_t offset = 0;
    for (int i = 0; i < count; ++i) {
        const int32_t room = std::max(len_EthName - offset, 0);
        offset += FormatText(pEthName + offset, static_cast<size_t>(room), "%s::", names[i]);
        if (offset >= len_EthName) {
            LOG_ERROR("pEthName is too short.");
            return -1;
        }
    }
    return 0;
}

int32_t NetGetDeviceName(NetDevice* pNetDev, int32_t iMax)
{
    if (pNetDev == nullptr) return -1;

    if (iMax > kMaxInterfaces) {
        LOG_WARN("can not support so many device %d.", iMax);
        iMax = kMaxInterfaces;
    }
    char names[kMaxInterfaces][kNameSize];
    int count = kMaxInterfaces;
    if (!GetAllInterfaceInfo(names, &count)) {
        LOG_ERROR("GetAllInterfaceInfo failed");
        return -1;
    }
    int32_t taken = 0;
    for (int i = 0; i < count && taken < iMax; ++i) {
        if (!Equal(names[i], kHiddenCard)) CopyText(pNetDev[taken++].name, names[i]);
    }
    return taken;
}

int32_t NetGetAllEthDevice(NetDevice* pNetDev, int32_t iMax)
{
    return ListDevices(__func__, pNetDev, iMax, nullptr);
}

int32_t NetGetEthDevice(NetDevice* pNetDev, int32_t iMax)
{
    return ListDevices(__func__, pNetDev, iMax, kHiddenCard);
}

int32_t NetGetStats(const char* pEthname, struct NetStats* stat)
{
    if (pEthname == nullptr || stat == nullptr) return -1;

    NetDataStat counters{};
    if (!NetGetDataStat(pEthname, &counters)) {
        LOG_ERROR("failed");
        return -1;
    }
    stat->rx_bytes = counters.receivedBytes;
    stat->tx_bytes = counters.transmittedBytes;
    return 0;
}

NetWorkMode_E NetWorkGetMode(void)
{
    NetWorkMode mode = netModeInvalid;
    if (!NetGetEthWorkMode(kFirstCard, &mode)) {
        LOG_ERROR("failed.");
        return En_Net_Invalid;
    }
    switch (mode) {
    case netModeMultiple: return En_Net_Multiple;
    case netModeBridge: return En_Net_Bridge;
    case netModeBond: return En_Net_Bond;
    default: LOG_ERROR("invalid net work mode %d", mode); return En_Net_Invalid;
    }
}

// ==== Routes ====

namespace {

/// The network that a card lies in.
struct CardNetwork {
    char address[kIPv4TextSize];
    char mask[kIPv4TextSize];
};

/// Saved texts have passed `inet_aton`; one that does not counts as 0.
in_addr_t AddressOf(const char* text)
{
    in_addr address{};
    return ParseLooseIPv4(text, &address) ? address.s_addr : 0;
}

/// Reads the network of a card's configured address. A failure is logged.
bool ReadNetwork(const char* operation, const char* card, CardNetwork& network)
{
    char host[kIPv4TextSize] = {};
    network = {};
    if (!NetGetIPbyName(card, host, network.mask)) {
        LOG_ERROR_AS(operation, "get %s ip mask failed.", card);
        return false;
    }
    (void)PrintIPv4(AddressOf(host) & AddressOf(network.mask), network.address);
    return true;
}

bool AddNetwork(const CardNetwork& network, const char* card)
{
    return RouteAddIPv4(network.address, kNoGateway, network.mask, card);
}

bool DeleteNetwork(const CardNetwork& network, const char* card)
{
    return RouteDelIPv4(network.address, kNoGateway, network.mask, card);
}

}  // namespace

int32_t NetGetDefaultEth(char* pEthName)
{
    return V2_RESULT(NetGetDefEth(pEthName, kNameSize), "failed");
}

int32_t NetSetDefaultEth(const char* pEthName)
{
    return V2_RESULT(NetSetDefEth(pEthName), "failed");
}

int32_t NetWorkSetEthStatus(const char* EthName_p, int32_t status)
{
    if (EthName_p == nullptr) return -1;

    CardNetwork network;
    if (!ReadNetwork(__func__, EthName_p, network)) return -1;

    const bool done =
        status == 0 ? AddNetwork(network, EthName_p) : DeleteNetwork(network, EthName_p);
    return V2_RESULT(done, "route error.[%s,%d]", EthName_p, status);
}

int32_t NetRouteAddDelete(NetRouteOperate cmd, const char* pEthName)
{
    if (pEthName == nullptr) return -1;

    CardNetwork network;
    if (!ReadNetwork(__func__, pEthName, network)) return -1;

    if (cmd == ADD_ROUTE) return V2_RESULT(AddNetwork(network, pEthName), "RouteAddIPv4 failed.");
    return V2_RESULT(DeleteNetwork(network, pEthName), "RouteDelIPv4 failed.");
}

int32_t NetRouteSetStyle(NetRouteStyleType cmd)
{
    // Only 1 changes anything, so that both styles leave the default route alone from here on.
    if (cmd == ROUTESTYLE_SYS) (void)RouteControl(0);
    (void)RouteControl(1);
    return 0;
}

int32_t NetRouteGetText(const char* /*pEthName*/, char* /*buffer*/, int32_t* /*max_len*/)
{
    LOG_ERROR("unsupport.");
    return -1;
}

int32_t NetAddRoute(NetRouteTableInfo* routeCmd)
{
    return Result(routeCmd != nullptr && RouteAdd(routeCmd));
}

int32_t NetDelRoute(NetRouteTableInfo* routeCmd)
{
    return Result(routeCmd != nullptr && RouteDel(routeCmd));
}

int32_t NetGetAllRoute(NetRouteTableInfo* routes, int32_t* num)
{
    if (routes == nullptr || num == nullptr || *num == 0) return -1;

    return Result(RouteGetAllInfo(routes, num));
}

// ==== Bonds ====

namespace {

/// The driver's modes in the order of their numbers here, which start at 1.
constexpr std::array<NICBondMode, 7> kBondModes = {
    nicBondActiveBackup, nicBondBalanceRR,  nicBondBalanceALB, nicBondBalanceTLB,
    nicBond802_3ad,      nicBondBalanceXOR, nicBondBroadcast};

/// The bonds that are asked for a member.
constexpr std::array<const char*, 4> kMasters = {"bond0", "bond1", "bond2", "bond3"};

}  // namespace

int32_t NetWorkBond(const char** dev, int32_t num, int32_t mode)
{
    return NetWorkBondEx(kFirstBond, dev, num, mode);
}

int32_t NetWorkUnBond(void)
{
    return NetWorkUnBondEx(kFirstBond);
}

int32_t NetWorkGetBondMode(int32_t* mode, char* default_dev)
{
    return NetWorkGetBondModeEx(kFirstBond, mode, default_dev);
}

char* NetWorkGetActiveSlave(void)
{
    static char name[kNameSize];  // shared by all callers, who keep apart

    return NetWorkGetActiveSlaveEx(kFirstBond, name, sizeof(name));
}

int32_t NetWorkBondEx(const char* bonddev, const char** dev, int32_t num, int32_t mode)
{
    if (mode < 1 || mode > static_cast<int32_t>(kBondModes.size())) {
        LOG_ERROR("this mode is not support.[%d]", mode);
        return -1;
    }
    const NICBondMode bondMode = kBondModes[static_cast<size_t>(mode - 1)];
    LOG_INFO("mode 2.0 %d is convert to %d mode3.0", mode, bondMode);
    return V2_RESULT(Bond(bonddev, dev, num, bondMode), "bond error.");
}

int32_t NetWorkUnBondEx(const char* bonddev)
{
    return V2_RESULT(UnBond(bonddev), "unbond error.");
}

int32_t NetWorkGetBondModeEx(const char* bonddev, int32_t* mode, char* default_dev)
{
    if (bonddev == nullptr || mode == nullptr || default_dev == nullptr) return -1;

    (void)NetGetDefEth(default_dev, kNameSize);  // the caller gets it by the way, if there is one

    NICBondMode bondMode = nicBondBalanceRR;
    if (!GetBondMode(bonddev, &bondMode)) {
        *mode = 0;
        return 0;
    }
    const auto* const found = std::find(kBondModes.begin(), kBondModes.end(), bondMode);
    if (found == kBondModes.end()) {
        LOG_ERROR("this mode is not support.[%d]", bondMode);
        return -1;
    }
    *mode = static_cast<int32_t>(found - kBondModes.begin()) + 1;
    return 0;
}

char* NetWorkGetActiveSlaveEx(const char* bonddev, char* buf, int32_t len)
{
    if (GetBondActiveSlave(bonddev, buf, len)) return buf;

    LOG_ERROR("GetBondActiveSlave failed");
    return nullptr;
}

int32_t NetGetBondSlaves(const char* bondDev, char** slaves, int32_t* num)
{
    return Result(GetBondMembers(bondDev, slaves, num));
}

int32_t NetIsBondingSlave(const char* ethName, char* masterName, int32_t len)
{
    if (ethName == nullptr) return 0;

    NetWorkMode mode = netModeInvalid;
    if (!NetGetEthWorkMode(ethName, &mode)) {
        LOG_ERROR("NetGetEthWorkMode failed.");
        return 0;
    }
    if (mode != netModeBond) {
        LOG_ERROR("%s not in bond mode", ethName);
        return 0;
    }
    if (masterName == nullptr) return 1;
    if (len < 1) return 0;

    Clear(masterName, len);
    const auto* const master =
        std::find_if(kMasters.begin(), kMasters.end(),
                     [ethName](const char* bond) { return BondHasMember(bond, ethName); });
    if (master != kMasters.end()) CopyText(masterName, static_cast<size_t>(len), *master);
    return 1;
}

// ==== Bridges ====

namespace {

/// The body of `getBridgeDevicesInfo`, under whose name it logs.
uint32_t MaskOfBridge(const char* bridge)
{
    constexpr char kOperation[] = "getBridgeDevicesInfo";

    MemberTable members;
    if (!members.Read(Bridge_GetBridgeMembers, bridge)) {
        LOG_ERROR_AS(kOperation, "get %s bridge menber failed.", bridge);
        return 0;
    }
    return BridgeMemberMask(kOperation, members.All());
}

}  // namespace

int32_t CreateNetWorkBridge(const char* bridge, const char** dev, int32_t num)
{
    return V2_RESULT(Bridge(bridge, const_cast<char**>(dev), num), "failed");  // it only reads them
}

int32_t DestoryNetWorkBridge(const char* bridge)
{
    return V2_RESULT(UnBridge(bridge), "failed");
}

uint32_t getBridgeDevicesInfo(const char* bridge)
{
    return bridge != nullptr ? MaskOfBridge(bridge) : 0;
}

int32_t NetWorkGetBridgeInfo(uint32_t* bridge, int32_t num)
{
    if (bridge == nullptr) return -1;

    char name[] = "br0";
    for (int32_t i = 0; i < num; ++i) {
        name[2] = static_cast<char>('0' + i);
        bridge[i] = MaskOfBridge(name);
        if (bridge[i] == 0) return i;
    }
    return std::max(num, 0);
}

int32_t NetIsEdgePort(const char* dev)
{
    return V2_RESULT(BridgeIsEdgePort(kFirstBridge, dev), "failed");
}

int32_t NetUnsetEdgePort(const char* dev)
{
    return V2_RESULT(BridgeDelEdgePort(kFirstBridge, dev), "failed");
}

int32_t NetSetEdgePort(const char* dev)
{
    return V2_RESULT(BridgeAddEdgePort(kFirstBridge, dev), "failed");
}

// ==== Switch ====

namespace {

constexpr int kMaxPorts = 16;
constexpr int kMaskBits = 32;

void Convert(const SwitchPortStatus& status, SwitchPortInfo& info)
{
    // NOLINTNEXTLINE(bugprone-signed-char-misuse): the sign is kept, also where `char` has none
    info.link = static_cast<int16_t>(static_cast<signed char>(status.link));
    info.port = static_cast<int16_t>(status.port + 1);
    info.ip = inet_addr(status.ip);
    memcpy(info.mac, status.mac, sizeof(info.mac));
}

}  // namespace

int32_t SwitchGetName(char* name)
{
    return V2_RESULT(GetSwitchInterface(name, kNameSize), "SwitchGetName failed.");
}

int32_t SwitchGetNameEx(char* name, int len)
{
    return Result(len >= 1 && GetSwitchInterface(name, len));
}

int32_t SwitchGetPortNum(void)
{
    char name[kNameSize] = {};
    int count = 0;
    if (!GetSwitchInterface(name, sizeof(name)) || !GetSwitchPortNum(name, &count)) {
        LOG_ERROR("failed.");
        return -1;
    }
    return count;
}

int32_t SwitchGetPortStatus(struct SwitchPortInfo* port_info, int32_t len)
{
    if (port_info == nullptr) return -1;

    char name[kNameSize] = {};
    if (!GetSwitchInterface(name, sizeof(name))) {
        LOG_ERROR("failed.");
        return -1;
    }
    SwitchPortStatus ports[kMaxPorts] = {};
    int count = kMaxPorts;
    if (!GetSwitchStatus(name, ports, &count)) {
        LOG_ERROR("GetSwitchStatus failed.");
        return -1;
    }
    for (int i = 0; i < std::min(count, len); ++i) Convert(ports[i], port_info[i]);
    return 0;
}

int32_t NetGetSwitchLinkStatus(const char* ethname, unsigned char* portstatus, int32_t* portnum)
{
    if (ethname == nullptr || portstatus == nullptr || portnum == nullptr) return -1;

    Clear(portstatus, *portnum);
    int count = 0;
    if (!GetSwitchPortNum(ethname, &count)) {
        LOG_ERROR("get port num failed");
        return -1;
    }
    if (*portnum > count) {
        *portnum = count;
    } else {
        LOG_WARN("portnum is too small");  // also when they are equal
    }
    int mask = 0;
    if (!GetSwitchMask(ethname, &mask)) {
        LOG_ERROR("get port mask failed");
        return -1;
    }
    for (int32_t i = 0; i < std::min(*portnum, kMaskBits); ++i) {
        if ((static_cast<uint32_t>(mask) >> i & 1U) != 0) portstatus[i] = 1;
    }
    return 0;
}

// ==== PoE ====

int32_t PoEGetPowerInfo(PoeInfo_t* pPoe_info)
{
    if (pPoe_info == nullptr) return -1;

    return V2_RESULT(GetPoEPowerInfo(pPoe_info), "failed");
}

int32_t PoESetPowerOn(uint32_t portMask)
{
    return V2_RESULT(SetPoEPowerOn(portMask), "failed");
}

int32_t PoESetPowerOff(uint32_t portMask)
{
    return V2_RESULT(SetPoEPowerOff(portMask), "failed");
}

int32_t PoESetTotalPower(uint32_t power)
{
    return V2_RESULT(SetPoETotalPower(power), "failed");
}

int32_t PoESetPortLinkFlagDown(int /*portIndex*/)
{
    return 0;
}

// ==== Static ARP ====

int32_t NetAddStaticARPEntry(const NetARPEntry* arpInfo)
{
    return Result(arpInfo != nullptr && arpSetStaticEntry(arpInfo));
}

int32_t NetDelStaticARPEntry(const NetARPEntry* arpInfo)
{
    return Result(arpInfo != nullptr && arpDelStaticEntry(arpInfo));
}

int32_t NetGetAllStaticARPEntry(NetARPEntry* arpInfo, int* num)
{
    if (arpInfo == nullptr || num == nullptr || *num < 1) return -1;

    return Result(arpGetAllStaticEntry(arpInfo, num));
}

int32_t NetGetStaticARPInfoByIP(const char* ip, NetARPEntry* arpInfo, int* num)
{
    if (ip == nullptr || arpInfo == nullptr || num == nullptr || *num < 1) return -1;

    return Result(arpGetARPStaticInfoByIP(ip, arpInfo, num));
}

// ==== Ports and bandwidth ====

namespace {

constexpr int kIPv4 = 4;
constexpr int kIPv6 = 6;

void Convert(const NetTc_2& limit, NetTc& converted)
{
    CopyText(converted.ipAddr, limit.ipAddr);
    converted.ipType = Contains(converted.ipAddr, ".") ? kIPv4 : kIPv6;
    converted.bandWidth = limit.bandWidth;
    converted.flags = limit.flags;
}

void Convert(const NetTc& limit, NetTc_2& converted)
{
    CopyText(converted.ipAddr, limit.ipAddr);
    converted.bandWidth = limit.bandWidth;
    converted.flags = limit.flags;
    converted.prio = 0;
}

}  // namespace

int32_t NetDisableIpPort(const char* ipAddr, int32_t portNumber)
{
    return V2_RESULT(PortCtrlDisablePort(ipAddr, portNumber), "failed");
}

int32_t NetEnableIpPort(const char* ipAddr, int32_t portNumber)
{
    return V2_RESULT(PortCtrlEnablePort(ipAddr, portNumber), "failed");
}

int32_t NetSetBandWidth(const char* pDev, const NetTc_2* pTc, int32_t num)
{
    if (pDev == nullptr || pTc == nullptr) return -1;

    const HeapArray<NetTc> limits = ZeroedArray<NetTc>(num);
    if (limits == nullptr) {
        LOG_ERROR("malloc tc failed");
        return -1;
    }
    for (int32_t i = 0; i < num; ++i) Convert(pTc[i], limits[static_cast<size_t>(i)]);
    return V2_RESULT(TrafCtrlSetBand(pDev, limits.get(), num), "failed");
}

int32_t NetGetBandWidth(const char* pDev, NetTc_2* pTc, int32_t max)
{
    if (pDev == nullptr || pTc == nullptr) return -1;

    const HeapArray<NetTc> limits = ZeroedArray<NetTc>(max);
    if (limits == nullptr) {
        LOG_ERROR("malloc tc failed");
        return -1;
    }
    int count = max;
    if (!TrafCtrlGetBand(pDev, limits.get(), &count)) {
        LOG_ERROR("failed");
        return -1;
    }
    for (int i = 0; i < count; ++i) Convert(limits[static_cast<size_t>(i)], pTc[i]);
    return count;
}

int32_t NetUnSetBandWidth(const char* pDev, const char* ipAddr)
{
    return V2_RESULT(TrafCtrlUnSetBand(pDev, ipAddr), "failed");
}

// ==== DHCP ====

namespace {

constexpr char kDhcpFile[] = "/mnt/mtd/Config/udhcpd.conf";

/// The server's file as it reads it, the two blanks and the short "opt" included.
constexpr char kDhcpText[] = "start %s\n"
                             "end %s\n"
                             "interface %s\n"
                             "option  subnet %s\n"
                             "opt router %s\n"
                             "option lease %s\n";

pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;  // over the writing of the DHCP file

}  // namespace

int32_t NetSetDhcpIPRange(const char* pSwitchName, const char* pDhcpIPStart, const char* pDhcpIPEnd,
                          const char* pDhcplease)
{
    if (pSwitchName == nullptr || pDhcpIPStart == nullptr || pDhcpIPEnd == nullptr ||
        pDhcplease == nullptr) {
        LOG_ERROR("Get parameter failed.");
        return -1;
    }
    char address[kIPv4TextSize] = {};  // must be saved, and is not written
    char mask[kIPv4TextSize] = {};
    if (!GetIPByConfig(pSwitchName, address, mask)) {
        LOG_ERROR("Get ip mask failed.");
        return -1;
    }
    char gateway[kIPv4TextSize] = {};
    if (!GetGatewayByConfig(pSwitchName, gateway)) {
        LOG_ERROR("Get gateway failed.");
        return -1;
    }
    const MutexGuard writing(mutex);
    const Stream file(fopen(kDhcpFile, "w+"));
    if (file == nullptr) {
        LOG_ERROR("cannot fopen DHCP_CONF.[%s]", strerror(errno));
        return -1;
    }
    fprintf(file.get(), kDhcpText, pDhcpIPStart, pDhcpIPEnd, pSwitchName, mask, gateway,
            pDhcplease);
    return 0;
}
