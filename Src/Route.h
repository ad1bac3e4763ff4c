// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

/// The kernel's route tables: reading them from /proc, and adding or deleting single routes of the
/// main table by the route ioctls. Addresses are taken as text; no route is remembered here.
///
/// The control sockets and the tables are opened by the first call that needs them and stay open
/// for the life of the process. A failed open is tried again by the next call.

#include "Types.h"

#include <net/route.h>

#ifdef __cplusplus
extern "C" {
#endif

/// One row of the kernel's IPv4 table.
typedef struct IPv4Route {
    uint32_t dst;     ///< network byte order
    uint32_t mask;    ///< network byte order
    uint32_t gw;      ///< network byte order; 0 for a direct route
    char viaDev[16];  ///< card
} IPv4Route;

/// One row of the kernel's IPv6 table.
typedef struct IPv6Route {
    uint32_t dst[4];  ///< the bytes of an in6_addr
    uint32_t perfix;  ///< prefix length
    uint32_t gw[4];   ///< the bytes of an in6_addr; zero for a direct route
    char viaDev[16];  ///< card
} IPv6Route;

/// Reads the IPv4 rows of the main table in the kernel's order. Listed are the rows whose card
/// begins with a lower-case letter, the loopback card's among them.
///
/// @param routes  `*num` rows, zeroed by the caller: a short line sets only what it holds
/// @param num     capacity on entry (0 and below store none), number of rows on return
/// @return false for NULL, or when the table cannot be opened, with `*num` as it was; a table that
///         cannot be read on counts as ended there
/// @errors  NULL: silent; a table that cannot be opened: Error
/// @source  /proc/net/route
/// @threads any; readers take turns
VORLIX_API bool Route_GetIPv4Route(IPv4Route* routes, int* num);

/// Reads the IPv6 rows of all tables in the kernel's order; no row tells its table. Kernels from
/// 4.14 or so on also list, under the card's own name, what they keep for its addresses (local and
/// anycast rows, prefix length 128) and groups (ff00::/8). `Route_DelIPv6Route` deletes in the main
/// table only, so none of these can be deleted.
///
/// Rows of the kernel's route cache are left out, and so is every card whose name contains "lo".
///
/// @param routes  `*num` rows
/// @param num     as above
/// @return as above
/// @errors  as above
/// @source  /proc/net/ipv6_route
/// @threads any; readers take turns
VORLIX_API bool Route_GetIPv6Route(IPv6Route* routes, int* num);

/// Adds one IPv4 route to the kernel's main table.
///
/// @param dst     destination, dotted text
/// @param gw      gateway, dotted text; exactly "0.0.0.0" for a direct route
/// @param mask    netmask, dotted text; all 32 bits set makes it a host route
/// @param viaDev  card; what lies beyond 15 characters is cut off
/// @return true when the kernel took the route; false otherwise, with the table unchanged
/// @errors  NULL: silent; a text that does not parse, a refusal: Error
VORLIX_API bool Route_AddIPv4Route(const char* dst, const char* gw, const char* mask,
                                   const char* viaDev);

/// Deletes one IPv4 route from the kernel's main table; arguments, result and errors as above. A
/// route that is not there is refused.
VORLIX_API bool Route_DelIPv4Route(const char* dst, const char* gw, const char* mask,
                                   const char* viaDev);

/// Adds one IPv6 route to the kernel's main table; result and errors as above.
///
/// @param gw      gateway; exactly "::" for a direct route
/// @param mask    prefix length as decimal text, 0 to 128; a text without a number is 0
/// @param viaDev  card; an unknown one is refused by the kernel
VORLIX_API bool Route_AddIPv6Route(const char* dst, const char* gw, const char* mask,
                                   const char* viaDev);

/// Deletes one IPv6 route from the kernel's main table; arguments, result and errors as above.
VORLIX_API bool Route_DelIPv6Route(const char* dst, const char* gw, const char* mask,
                                   const char* viaDev);

/// True when the first 16 rows of the IPv4 table hold this very route. `dst` is masked first, so an
/// address inside a listed net finds its net.
///
/// @param dst     address of the destination, strict dotted text, as `gw` and `mask`
/// @param viaDev  card, compared over 16 characters
/// @errors NULL: silent; a text that does not parse: Error; no table: Warn; found: Info
VORLIX_API bool Route_IsExistInSys(const char* dst, const char* gw, const char* mask,
                                   const char* viaDev);

/// Asks the kernel to drop its IPv4 route cache.
/// @errors no such file: silent; a short write: Error
VORLIX_API void Route_Flush_Cache(void);

/// Builds the record of an IPv4 route.
///
/// @param rt  zeroed first; filled as far as the texts parsed. Its `rt_dev` points at a buffer of
///            the calling thread, which the thread's next call overwrites
/// @errors  NULL: silent; a text that does not parse: Error
VORLIX_API bool Route_FillRtentry(const char* dst, const char* gw, const char* mask,
                                  const char* viaDev, struct rtentry* rt);

/// Builds the record of an IPv6 route.
///
/// @param perfix  prefix length, 0 to 128; 128 makes it a host route
/// @param rt      zeroed first; filled as far as the texts parsed. An unknown card gives -1 for its
///                index, which the kernel refuses
/// @errors  NULL, a prefix out of range: silent; a text that does not parse: Error
VORLIX_API bool Route_FillIn6_rtmsg(const char* dst, const char* gw, const int perfix,
                                    const char* viaDev, struct in6_rtmsg* rt);

/// Performs SIOCADDRT or SIOCDELRT on the IPv4 control socket.
/// @return true when the kernel has done it
/// @errors any other request, NULL: silent; no socket, a refusal: Error
VORLIX_API bool Route_SetIPv4Route(int cmd, struct rtentry* rt);

/// The same on the IPv6 control socket.
VORLIX_API bool Route_SetIPv6Route(int cmd, struct in6_rtmsg* rt);

#ifdef __cplusplus
}  // extern "C"
#endif
