// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

/// What the kernel knows about an IPv4 interface: address and mask, hardware address, MTU, link,
/// speed and counters. Only the kernel is asked and changed here; the setting files are kept in
/// step by the layers above.
///
/// A NULL name, text or output gives false in silence. A name takes part with at most 15
/// characters. Outputs are written only on success, unless an operation says otherwise.

#include "Types.h"

#include <linux/ethtool.h>

#ifdef __cplusplus
extern "C" {
#endif

/// `InterfaceUp`.
VORLIX_API bool Net_InterfaceUp(const char* name);

/// `InterfaceDown`.
VORLIX_API bool Net_InterfaceDown(const char* name);

/// Sets address and mask of an interface.
///
/// @param addr  dotted text in its strict form; "0.0.0.0" takes the address away, and the mask is
///              then not looked at
/// @param mask  same form; never NULL
/// @return true when the kernel took both
/// @errors a text that does not parse, a refusal: Error. A failure of the mask leaves the address
///         set.
/// @source ioctl SIOCSIFADDR, SIOCSIFNETMASK
VORLIX_API bool Net_SetIPbyName(const char* name, const char* addr, const char* mask);

/// Reads address and mask of an interface.
///
/// @param addr  16 bytes; written also when the mask fails
/// @param mask  16 bytes
/// @errors no address: Warn
/// @source ioctl SIOCGIFADDR, SIOCGIFNETMASK
VORLIX_API bool Net_GetIPbyName(const char* name, char* addr, char* mask);

/// Sets the hardware address. The interface goes down for it and always comes up again, which drops
/// its routes: the caller restores what it needs.
///
/// @param addr  six hexadecimal bytes with colons between them; text behind them is ignored
/// @return true when the kernel took the address
/// @errors every change: Warn. A text of another form, with the interface untouched; a refusal:
///         Error
/// @source ioctl SIOCSIFHWADDR
VORLIX_API bool Net_SetMacbyName(const char* name, const char* addr);

/// Reads the hardware address in lower case.
///
/// @param addr  18 bytes
/// @source ioctl SIOCGIFHWADDR
VORLIX_API bool Net_GetMacbyName(const char* name, char* addr);

/// Sets the MTU. The running interface is tried first; when its driver refuses, and the MTU is not
/// the one in force, the interface goes down for a second try and up again.
///
/// @return true when the interface has the MTU now
/// @source ioctl SIOCSIFMTU
/// @threads the down-change step of the second try holds `upDownLock`
VORLIX_API bool Net_SetMtubyName(const char* name, const int mtu);

/// Reads the MTU.
/// @source ioctl SIOCGIFMTU
VORLIX_API bool Net_GetMtubyName(const char* name, int* mtu);

/// Tells the driver of a card that has both which medium to prefer.
/// @source the driver's private ioctl 0x89F2
VORLIX_API bool Net_SetMediumPrefer(const char* name, NetMediumPrefer medium);

/// Reads the speed in Mbit/s as the driver reports it in 16 bits: a card that knows no speed, as
/// one without a link, reads as 65535, and of a speed above that the low 16 bits are left (34464
/// for 100 Gbit/s).
/// @return false for a wireless card, in silence, and for a driver that does not answer
/// @source ioctl SIOCETHTOOL, ETHTOOL_GSET
VORLIX_API bool Net_GetLinkSpeed(const char* name, int* speed);

/// Reads the counters of an interface, and its speed as `Net_GetLinkSpeed` tells it: 0 for a
/// wireless card and where the driver does not answer, 65535 where it knows none.
/// @return false for an interface that is not among the first 32 of the device's cards: `lo` never
///         is
/// @source /proc/net/dev; `Net_GetLinkSpeed`
VORLIX_API bool Net_GetDataStat(const char* name, NetDataStat* dataStat);

/// True when the link is up. A name that holds "ppp" always has a link; a wireless card has one
/// when it is connected.
/// @source `NetCardIsWifi` for names that hold "eth2" or "wlan"; ioctl SIOCETHTOOL, ETHTOOL_GLINK
VORLIX_API bool Net_MiiDiag(const char* name);

/// Fills the driver's record of link modes.
///
/// @param cmd  its `cmd` is set here, also when the driver refuses; what the driver does not fill
///             stays the caller's
/// @return false for an empty name, in silence
/// @source ioctl SIOCETHTOOL, ETHTOOL_GSET
VORLIX_API bool Net_GetEthtoolInfo(const char* name, struct ethtool_cmd* cmd);

/// What a card is for: two names are set aside, all others are common.
/// @return `netDeviceUsageMax` for NULL
VORLIX_API NetDeviceUsage Net_GetUsage(const char* name);

#ifdef __cplusplus
}  // extern "C"

namespace vorlix {

class CardWalk;

/// `Net_GetLinkSpeed` for a card of a walk. Neither may be NULL.
bool LinkSpeedOf(const char* name, int* speed, CardWalk& walk);

}  // namespace vorlix
#endif
