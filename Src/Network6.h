// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

/// IPv6 addresses of an interface: what the kernel lists, and how one is added and removed. A card
/// has one address of interest, the first one listed with the wanted scope.
///
/// A NULL name, text or output gives false in silence, unless an operation says what it stands for.
/// Outputs are written only on success. A text that does not fit its buffer is never written
/// beyond it, and a buffer of less than one byte gives false.

#include "Types.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Index of an interface.
/// @return -1 for NULL and for an unknown name; the latter is logged as an Error
/// @source ioctl SIOCGIFINDEX
VORLIX_API int Net6_GetInterfaceIndex(const char* name);

/// Reads the first address of an interface that has the scope `addrType`.
///
/// @param addr       `ipLen` bytes, for the shortened form, which takes up to 40; empty when the
///                   text does not fit
/// @param perfix     `perFixLen` bytes, for the prefix length in decimal, cut when it does not fit
/// @param addrType   scope as the kernel lists it: 0 global, 32 link-local, 128 IPv4-compatible;
///                   any other gives false, in silence
/// @return false when there is none, in silence
/// @errors no list: Error
/// @source /proc/net/if_inet6, opened anew each time; an interface with an index above 255 is not
///         found in it
VORLIX_API bool Net6_GetAddressInfo(const char* name, char* addr, int ipLen, char* perfix,
                                    int perFixLen, int addrType);

/// The same for the address that the interface is reached at: a global one, or else an
/// IPv4-compatible one. A card with link-local addresses only counts as one without.
VORLIX_API bool Net6_GetIPv6byName(const char* name, char* addr, int ipLen, char* perfix,
                                   int perFixLen);

/// Adds an address to an interface and takes the interface up.
///
/// @param addr    address text without prefix; the all-zero address changes nothing and gives true
/// @param perfix  prefix length in decimal; NULL stands for 64, with a Warn
/// @return true when the address is set, also when the interface could not be taken up
/// @errors unknown name, a text that does not parse, a refusal: Error
/// @source ioctl SIOCSIFADDR
VORLIX_API bool Net6_SetIPv6byName(const char* name, const char* addr, const char* perfix);

/// True when address and prefix length of the interface are these. Both are compared as texts,
/// without regard to case: another spelling of an address is another address.
VORLIX_API bool Net6_IsIPAddressIpv6Exist(const char* name, const char* addr, const char* prefix);

/// Removes an address from an interface that has one of interest (`Net6_GetIPv6byName`). Where it
/// has none, as with link-local addresses only, nothing is removed: a link-local address that is
/// asked for stays, and the result is true.
///
/// @param addr    NULL: the present address with its own prefix length
/// @param prefix  used only when `addr` is not the present address, at most 7 characters of it;
///                NULL: the present one
/// @return true when the kernel removed the address, or the interface had none of interest
/// @errors none of interest: Info; an address that is not the present one: Warn; the rest: Error
/// @source ioctl SIOCDIFADDR
VORLIX_API bool Net6_DelIPAddressIpv6(const char* name, const char* addr, const char* prefix);

/// Reads the link-local address with its prefix length behind a "/".
///
/// @param addr  `ipLen` bytes; a text that needs more is cut
/// @errors none: Error
VORLIX_API bool Net6_GetLinkLocalAddressIpv6(const char* name, char* addr, int ipLen);

/// Forms the link-local address that belongs to a hardware address (modified EUI-64), without a
/// prefix length.
///
/// @param addr  `ipLen` bytes; a text that needs more is cut
/// @param mac   six hexadecimal bytes with colons between them; text behind them is ignored
/// @errors a text of another form: Error
VORLIX_API bool Net6_GetLinkLocalFromMac(char* addr, int ipLen, const char* mac);

#ifdef __cplusplus
}  // extern "C"
#endif
