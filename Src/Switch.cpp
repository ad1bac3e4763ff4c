// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Switch.h"

#include "Base.h"
#include "Support/Handles.h"
#include "Support/Log.h"
#include "Support/Text.h"

#include <cerrno>
#include <cstddef>
#include <cstring>

#include <fcntl.h>
#include <net/if.h>
#include <pthread.h>
#include <sys/ioctl.h>

namespace vorlix {

namespace {

// ---- texts and limits

constexpr char kPowerDevice[] = "/dev/qv_poe";
constexpr char kEnableFailed[] = "set port enble failed.";  // of the isolation as well

constexpr uint16_t kEnable = 1;
constexpr int kNoPort = -1;

// ---- records and requests of the drivers

static_assert(sizeof(SwitchToolInfo) == 14 && offsetof(SwitchToolInfo, u8PortNum) == 2 &&
                  offsetof(SwitchToolInfo, u8PortIndex) == 3 &&
                  offsetof(SwitchToolInfo, u8MacAddr) == 4 &&
                  offsetof(SwitchToolInfo, u16enable) == 10 &&
                  offsetof(SwitchToolInfo, u16port_isolation) == 12,
              "layout of the switch driver");
static_assert(offsetof(ifreq, ifr_ifru) == 16 && sizeof(ifreq) >= 16 + sizeof(SwitchToolInfo),
              "the switch record lies behind the name");
static_assert(sizeof(PoeInfo_t) == 256 && offsetof(PoeInfo_t, power) == 12 &&
                  offsetof(PoeInfo_t, powerOff) == 76 && offsetof(PoeInfo_t, reserved) == 104,
              "layout of the power supply's driver");

constexpr int kGetPortInfo = 0x89F1;
constexpr int kGetMacByPort = 0x89F2;
constexpr int kGetPortByMac = 0x89F3;
constexpr int kEnablePort = 0x89F4;
constexpr int kIsolatePorts = 0x89F8;

constexpr uint32_t kGetPowerInfo = 0x81005001U;
constexpr uint32_t kPowerOff = 0x40045002U;
constexpr uint32_t kPowerOn = 0x40045003U;
constexpr uint32_t kTotalPower = 0x40045005U;

// ---- the switch

/// The number of ports of the switch asked last. Constant-initialised; the lock is held over no
/// call.
class PortCount {
public:
    constexpr PortCount() = default;

    /// False when nothing is known of this switch. A name beyond 15 characters never is.
    bool Tell(const char* name, int* num)
    {
        const MutexGuard guard(lock_);
        if (count_ <= 0 || strncmp(name_, name, sizeof(name_)) != 0) return false;

        *num = count_;
        return true;
    }

    void Keep(const char* name, int count)
    {
        const MutexGuard guard(lock_);
        CopyText(name_, name);
        count_ = count;
    }

private:
    pthread_mutex_t lock_ = PTHREAD_MUTEX_INITIALIZER;
    char name_[kNameSize] = {};
    int count_ = 0;
};

/// One request to the driver of a switch. The record lies in the request itself and is copied
/// there and back, so that nothing rests on the alignment of the union.
bool AskSwitch(int request, const char* name, SwitchToolInfo* info)
{
    ifreq record = RequestFor(name);
    memcpy(&record.ifr_ifru, info, sizeof(*info));
    if (!NetIOCtrl(request, &record)) return false;

    memcpy(info, &record.ifr_ifru, sizeof(*info));
    return true;
}

int FindPort(const char* name, const unsigned char (&mac)[kMacSize])
{
    SwitchToolInfo info{};
    memcpy(info.u8MacAddr, mac, sizeof(info.u8MacAddr));
    if (AskSwitch(kGetPortByMac, name, &info)) return info.u8PortIndex;

    LOG_ERROR_AS("Switch_GetPortBymac", "get port error.[%02x:%02x:%02x:%02x:%02x:%02x]", mac[0],
                 mac[1], mac[2], mac[3], mac[4], mac[5]);
    return kNoPort;
}

// ---- the power supply

int OpenPowerSupply(const char* operation)
{
    const int device = open(kPowerDevice, O_RDWR);
    if (device < 0) LOG_ERROR_AS(operation, "open %s failed.[%s]", kPowerDevice, strerror(errno));
    return device;
}

template <class Argument>
bool AskPowerSupply(const char* operation, const Fd& device, uint32_t request, Argument argument)
{
    if (ioctl(device.Get(), request, argument) >= 0) return true;

    LOG_ERROR_AS(operation, "cmd %u error.[%s]", request, strerror(errno));
    return false;
}

/// The driver takes the value itself, not the place where it lies.
bool SetPower(const char* operation, uint32_t request, uint32_t value)
{
    const Fd device(OpenPowerSupply(operation));
    return device.Ok() &&
           AskPowerSupply(operation, device, request, static_cast<unsigned long>(value));
}

}  // namespace

}  // namespace vorlix

using namespace vorlix;

bool Switch_GetSwitchPortInfo(const char* name, int* num, unsigned int* mask)
{
    static PortCount known;

    if (name == nullptr) return false;
    if (num != nullptr && mask == nullptr && known.Tell(name, num)) return true;

    SwitchToolInfo info{};
    if (!AskSwitch(kGetPortInfo, name, &info)) {
        LOG_ERROR("get port num for %s error.", name);
        return false;
    }
    if (num != nullptr) *num = info.u8PortNum;
    if (mask != nullptr) *mask = info.u16LinkMask;
    known.Keep(name, info.u8PortNum);
    return true;
}

bool Switch_GetPortBymac(const char* name, unsigned char (*mac)[6], int* port, int num)
{
    if (name == nullptr || mac == nullptr || port == nullptr) return false;

    for (int i = 0; i < num; ++i) port[i] = FindPort(name, mac[i]);
    return true;
}

bool Switch_GetMacByPort(const char* name, int port, char* mac)
{
    if (name == nullptr || mac == nullptr) return false;

    SwitchToolInfo info{};
    info.u8PortIndex = static_cast<uint8_t>(port);
    if (!AskSwitch(kGetMacByPort, name, &info)) {
        const auto countedFromOne = static_cast<unsigned>(port) + 1;  // any number may come in
        LOG_ERROR("Get mac for port %d failed.", static_cast<int>(countedFromOne));
        return false;
    }
    memcpy(mac, info.u8MacAddr, sizeof(info.u8MacAddr));
    return true;
}

bool Switch_PortIsOk(const char* name, int port)
{
    if (name == nullptr) return false;

    SwitchToolInfo info{};
    info.u8PortIndex = static_cast<uint8_t>(port);
    info.u16enable = kEnable;
    if (AskSwitch(kEnablePort, name, &info)) return true;

    LOG_ERROR("%s", kEnableFailed);
    return false;
}

int32_t NetSwitch_SetPortIsolation(const char* name, int32_t /*enable*/)
{
    if (name == nullptr) return -1;

    SwitchToolInfo info{};
    if (AskSwitch(kIsolatePorts, name, &info)) return 0;

    LOG_ERROR("%s", kEnableFailed);
    return -1;
}

bool PoE_GetPowerInfo(PoeInfo_t* poe_info)
{
    if (poe_info == nullptr) return false;

    const Fd device(OpenPowerSupply(__func__));
    if (!device.Ok()) return false;

    memset(poe_info, 0, sizeof(*poe_info));
    return AskPowerSupply(__func__, device, kGetPowerInfo, poe_info);
}

bool PoE_SetPowerOn(uint32_t portMask)
{
    return SetPower(__func__, kPowerOn, portMask);
}

bool PoE_SetPowerOff(uint32_t portMask)
{
    return SetPower(__func__, kPowerOff, portMask);
}

bool PoE_SetTotalPower(uint32_t power)
{
    return SetPower(__func__, kTotalPower, power);
}
