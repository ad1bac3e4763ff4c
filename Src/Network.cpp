// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Network.h"

#include "Base.h"
#include "Support/Handles.h"
#include "Support/Log.h"
#include "Support/Text.h"

#include <cerrno>
#include <cstddef>
#include <cstring>

#include <linux/sockios.h>
#include <net/if_arp.h>
#include <netinet/in.h>

namespace vorlix {

namespace {

// ---- requests and records

constexpr int kMediumPreferRequest = SIOCDEVPRIVATE + 2;

static_assert(sizeof(ethtool_cmd) == 44 && offsetof(ethtool_cmd, speed) == 12 &&
                  sizeof(ethtool_cmd::speed) == 2 && offsetof(ethtool_cmd, maxrxpkt) == 24,
              "kernel layout");
static_assert(sizeof(ethtool_value) == 8 && offsetof(ethtool_value, data) == 4, "kernel layout");

// ---- addresses

/// The address texts go through `sockaddr`, the member that all address requests share.
void StoreAddress(sockaddr* place, uint32_t value)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = value;
    memcpy(place, &address, sizeof(address));
}

uint32_t AddressIn(const sockaddr& place)
{
    sockaddr_in address{};
    memcpy(&address, &place, sizeof(address));
    return address.sin_addr.s_addr;
}

bool SendAddress(int cmd, const char* name, uint32_t value)
{
    ifreq request = RequestFor(name);
    StoreAddress(&request.ifr_addr, value);
    return NetIOCtrl(cmd, &request);
}

bool AskAddress(int cmd, const char* name, uint32_t* value)
{
    ifreq request = RequestFor(name);
    StoreAddress(&request.ifr_addr, INADDR_ANY);
    if (!NetIOCtrl(cmd, &request)) return false;

    *value = AddressIn(request.ifr_addr);
    return true;
}

bool PrintAddress(uint32_t value, char* text)
{
    if (PrintIPv4(value, text)) return true;

    LOG_ERROR_AS("Net_GetIPbyName", "inet_ntop error.");
    return false;
}

// ---- MTU

bool SendMtu(const char* name, int mtu)
{
    ifreq request = RequestFor(name);
    request.ifr_mtu = mtu;
    return NetIOCtrl(SIOCSIFMTU, &request);
}

// ---- driver

/// One request of the ethtool interface; `record` begins with its command.
bool AskDriver(const char* name, void* record)
{
    ifreq request = DriverRequestFor(name, record);
    return NetIOCtrl(SIOCETHTOOL, &request);
}

}  // namespace

bool LinkSpeedOf(const char* name, int* speed, CardWalk& walk)
{
    if (walk.IsWifi(name)) return false;

    ethtool_cmd settings{};
    settings.cmd = ETHTOOL_GSET;
    if (!AskDriver(name, &settings)) {
        LOG_ERROR_AS("Net_GetLinkSpeed", "ETHTOOL_GSET get failed.[%s]", name);
        return false;
    }
    *speed = settings.speed;
    return true;
}

}  // namespace vorlix

using namespace vorlix;

bool Net_InterfaceUp(const char* name)
{
    return InterfaceUp(name);
}

bool Net_InterfaceDown(const char* name)
{
    return InterfaceDown(name);
}

bool Net_SetIPbyName(const char* name, const char* addr, const char* mask)
{
    if (name == nullptr || addr == nullptr || mask == nullptr) return false;

    uint32_t address = 0;
    if (!ParseIPv4(addr, &address)) {
        LOG_ERROR("addr %s error", addr);
        return false;
    }
    if (!SendAddress(SIOCSIFADDR, name, address)) {
        LOG_ERROR("set %s ip %s error", name, addr);
        return false;
    }
    if (address == INADDR_ANY) return true;

    uint32_t bits = 0;
    if (!ParseIPv4(mask, &bits)) {
        LOG_ERROR("mask %s error", mask);
        return false;
    }
    if (SendAddress(SIOCSIFNETMASK, name, bits)) return true;

    LOG_ERROR("set %s mask %s error", name, mask);
    return false;
}

bool Net_GetIPbyName(const char* name, char* addr, char* mask)
{
    if (name == nullptr || addr == nullptr || mask == nullptr) return false;

    uint32_t address = 0;
    if (!AskAddress(SIOCGIFADDR, name, &address)) {
        LOG_WARN("get IP from system failed.[%s]", name);
        return false;
    }
    if (!PrintAddress(address, addr)) return false;

    uint32_t bits = 0;
    if (!AskAddress(SIOCGIFNETMASK, name, &bits)) {
        LOG_WARN("get Mask from system failed.[%s]", name);
        return false;
    }
    return PrintAddress(bits, mask);
}

bool Net_SetMacbyName(const char* name, const char* addr)
{
    if (name == nullptr || addr == nullptr) return false;

    LOG_WARN("mac addr will be modifyed![%s]", name);
    unsigned char mac[kMacSize] = {};
    if (!ParseMac(addr, mac)) {
        LOG_ERROR("mac %s error", addr);
        return false;
    }
    ifreq request = RequestFor(name);
    request.ifr_hwaddr.sa_family = ARPHRD_ETHER;
    memcpy(request.ifr_hwaddr.sa_data, mac, sizeof(mac));
    (void)InterfaceDown(name);  // a driver may take the address of a running card as well
    const bool changed = NetIOCtrl(SIOCSIFHWADDR, &request);
    if (!changed) LOG_ERROR("set mac failed.[%s:%s]", name, strerror(errno));
    (void)InterfaceUp(name);  // the result is that of the change
    return changed;
}

bool Net_GetMacbyName(const char* name, char* addr)
{
    if (name == nullptr || addr == nullptr) return false;

    ifreq request = RequestFor(name);
    if (!NetIOCtrl(SIOCGIFHWADDR, &request)) {
        LOG_ERROR("get %s mac error.", name);
        return false;
    }
    unsigned char mac[kMacSize];
    memcpy(mac, request.ifr_hwaddr.sa_data, sizeof(mac));
    PrintMac(mac, addr);
    return true;
}

bool Net_SetMtubyName(const char* name, const int mtu)
{
    if (name == nullptr) return false;
    if (SendMtu(name, mtu)) return true;

    int current = 0;
    if (Net_GetMtubyName(name, &current) && current == mtu) return true;

    // Some drivers refuse a running card.
    MutexGuard guard(upDownLock);
    (void)InterfaceDown(name);
    const bool changed = SendMtu(name, mtu);
    guard.Release();
    (void)InterfaceUp(name);
    if (!changed) LOG_ERROR("set MTU failed.[%s,%d]", name, mtu);
    return changed;
}

bool Net_GetMtubyName(const char* name, int* mtu)
{
    if (name == nullptr) return false;

    ifreq request = RequestFor(name);
    if (!NetIOCtrl(SIOCGIFMTU, &request)) {
        LOG_ERROR("get mtu from system failed.[%s]", name);
        return false;
    }
    if (mtu == nullptr) return false;

    *mtu = request.ifr_mtu;
    return true;
}

bool Net_SetMediumPrefer(const char* name, NetMediumPrefer medium)
{
    if (name == nullptr) return false;

    LOG_INFO("SetMediumPrefer is called. %s will be set to %d", name, medium);
    ifreq request = RequestFor(name);
    request.ifr_ifru.ifru_ivalue = medium;
    if (NetIOCtrl(kMediumPreferRequest, &request)) return true;

    LOG_ERROR("SetMediumPrefer failed.[%s,%d]", name, medium);
    return false;
}

bool Net_GetLinkSpeed(const char* name, int* speed)
{
    if (name == nullptr || speed == nullptr) return false;

    CardWalk walk;
    return LinkSpeedOf(name, speed, walk);
}

bool Net_GetDataStat(const char* name, NetDataStat* dataStat)
{
    if (name == nullptr || dataStat == nullptr) return false;

    InterfaceInfo table[kMaxInterfaces] = {};
    int count = kMaxInterfaces;
    if (!GetNormalInterfaceInfo(table, &count)) {
        LOG_ERROR("GetNormalInterfaceInfo error");
        return false;
    }
    for (int i = 0; i < count; ++i) {
        const InterfaceInfo& entry = table[i];
        if (strncmp(entry.name, name, sizeof(entry.name)) != 0) continue;

        *dataStat = entry.netDatastat;
        int speed = 0;
        (void)Net_GetLinkSpeed(name, &speed);  // a card that tells none has speed 0
        dataStat->interfaceSpeed = static_cast<uint32_t>(speed);
        return true;
    }
    LOG_ERROR("can not find %s.", name);
    return false;
}

bool Net_MiiDiag(const char* name)
{
    if (name == nullptr) return false;
    if (Contains(name, "ppp")) return true;
    if (Contains(name, "eth2") || Contains(name, "wlan")) {
        bool isConnect = false;
        if (NetCardIsWifi(name, &isConnect)) return isConnect;
    }
    ethtool_value link{ETHTOOL_GLINK, 0};
    if (!AskDriver(name, &link)) {
        LOG_ERROR("get ETHTOOL_GLINK error.[%s]", name);
        return false;
    }
    return link.data != 0;
}

bool Net_GetEthtoolInfo(const char* name, struct ethtool_cmd* cmd)
{
    if (name == nullptr || name[0] == '\0' || cmd == nullptr) return false;

    cmd->cmd = ETHTOOL_GSET;
    if (AskDriver(name, cmd)) return true;

    LOG_ERROR("get ETHTOOL_GSET error.[%s]", name);
    return false;
}

NetDeviceUsage Net_GetUsage(const char* name)
{
    if (name == nullptr) return netDeviceUsageMax;
    if (Equal(name, "eth16")) return netDeviceUsageDCFunc;
    if (Equal(name, "eth17")) return netDeviceUsageWeb;
    return netDeviceUsageCommon;
}
