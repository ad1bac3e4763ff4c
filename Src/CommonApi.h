#pragma once

/// What the device does with its network: operations that join the kernel, the saved settings and
/// the backup memory. Both generations of the public API and the boot program stand on these.
///
/// Contents:
///   Routes: routes by text or by record, the default card and its route

#include "Types.h"

#ifdef __cplusplus
extern "C" {
#endif

// ==== Routes ====
//
// Addresses are text: dotted IPv4 in 16 bytes, IPv6 in 48. "0.0.0.0" is the IPv4 default
// destination, mask and "no gateway"; "0:0:0::0" is the IPv6 default destination. A route operation
// looks at the first 16 rows of a kernel table (`NetGetDefEth` at 10): what lies beyond counts as
// absent. Nothing is retried or rolled back; a batch of deletions stops at its first failure.

/// Adds an IPv4 route that is not there yet.
/// @return false when the route is already there, in silence; otherwise as `Route_AddIPv4Route`
VORLIX_API bool RouteAddIPv4(const char* dst, const char* gw, const char* mask, const char* viaDev);

/// Deletes an IPv4 route, without looking at the table first.
VORLIX_API bool RouteDelIPv4(const char* dst, const char* gw, const char* mask, const char* viaDev);

/// Adds an IPv6 route that is not there yet. Unlike IPv4, a route that is already there is a
/// success, and the destination is compared as it stands, not masked.
///
/// @param mask  prefix length as decimal text
/// @errors a text that does not parse: Error; a table that cannot be read: Warn, and the route is
///         added all the same
VORLIX_API bool RouteAddIPv6(const char* dst, const char* gw, const char* mask, const char* viaDev);

/// Deletes an IPv6 route, without looking at the table first.
VORLIX_API bool RouteDelIPv6(const char* dst, const char* gw, const char* mask, const char* viaDev);

/// Names the default card: the one of the first default route, or else the saved one, whose default
/// route is then put back. Asking is what heals a lost default route.
///
/// @param name  `len` bytes
/// @return true when a name was obtained, whatever became of the route
/// @errors no table, no default route, no saved gateway, a recovery that fails: Error
VORLIX_API bool NetGetDefEth(char* name, int len);

/// Makes `name` the default card: saves it, then moves the default route to its saved gateway.
/// After `RouteControl(1)` it only saves.
///
/// @return false for an unknown card or one without a saved gateway; the present default route then
///         stays
/// @errors a failed save: Error, and the route moves all the same
VORLIX_API bool NetSetDefEth(const char* name);

/// Replaces all IPv4 default routes by one over `name` to its saved gateway.
/// @return false without a saved gateway or when the addition fails; no default route is left then
VORLIX_API bool RouteAddDefIPv4(const char* name);

/// Deletes the IPv4 default routes of `name`, or of all cards for NULL.
/// @return true also when there was none
/// @errors no table: Error, and the route to the saved gateway of `name` is tried
VORLIX_API bool RouteDelDefIPv4(const char* name);

/// Replaces all IPv6 default routes by one over `name` to its saved gateway.
VORLIX_API bool RouteAddDefIPv6(const char* name);

/// Deletes the IPv6 default routes of `name`, or of all cards for NULL.
/// @return true also when there was none; false when the table cannot be read
VORLIX_API bool RouteDelDefIPv6(const char* name);

/// Deletes every listed IPv4 route, default and directly connected ones included.
VORLIX_API bool RouteDelAllRoute(void);

/// Deletes the IPv4 routes of `name`, save its default routes.
VORLIX_API bool RouteDelAllIPv4(const char* name);

/// Deletes the IPv6 routes of `name`, save its default routes.
VORLIX_API bool RouteDelAllIPv6(const char* name);

/// Takes the default route out of the hands of `NetSetDefEth`: 1 latches it for the life of the
/// process, any other value changes nothing.
/// @return always true
VORLIX_API bool RouteControl(int disable);

/// Lists one family's table.
///
/// @param routes  `*num` records; `type` of the first tells the family. `userFlag`, `resv` and
///                `reserved` are left as they are
/// @param num     capacity on entry, number of rows on return
/// @errors another `type`, no memory, no table: Error
VORLIX_API bool RouteGetAllInfo(NetRouteTableInfo* routes, int* num);

/// Adds the route of a record, not NULL, over a card that exists.
/// @errors another `type`, an IPv6 prefix above 128: Error
VORLIX_API bool RouteAdd(NetRouteTableInfo* cmd);

/// Deletes the route of a record, not NULL, over a card that exists.
VORLIX_API bool RouteDel(NetRouteTableInfo* cmd);

#ifdef __cplusplus
}  // extern "C"
#endif
