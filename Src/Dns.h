#pragma once

/// The DNS servers of the device, in two plain text files of lines "nameserver <address>":
/// "/mnt/mtd/Config/resolv.conf" for the system's resolver, with all servers, and
/// "/mnt/mtd/Config/resolvip6.conf" with the IPv6 ones. Each write rebuilds both.
///
/// A whole read or rewrite of the files excludes the other threads of this process, not other
/// processes.

#include "Types.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Reads the first two servers of each kind, as far as they are asked for. A line with a ":" is
/// taken for an IPv6 one. The walk ends behind 32 lines and at the first line without "nameserver".
/// The IPv6 pair comes from the second file when the first one has none at all.
///
/// @param primary_4, secondary_4  NULL, or 16 bytes
/// @param primary_6, secondary_6  NULL, or `len_6` bytes; an address that does not fit leaves its
///                                slot as it was
/// @return true when every slot asked for was filled; those found are filled in any case
/// @errors a file that cannot be opened, a text that is no address: Error
VORLIX_API bool Dns_GetDnsFileInfo(char* primary_4, char* secondary_4, char* primary_6,
                                   char* secondary_6, int len_6);

/// Rewrites both files. NULL leaves a server out, and so does a text that is no address.
///
/// @return false when a file cannot be opened, with the first one emptied when it is the second
/// @errors a file that cannot be opened, a text that is no address: Error
VORLIX_API bool Dns_SetDnsAddress(const char* primary_4, const char* secondary_4,
                                  const char* primary_6, const char* secondary_6);

/// Sets the IPv4 pair and keeps the IPv6 pair that is saved. Each IPv6 server that is not saved
/// costs an Error line. A change by another thread between the read and the write is lost.
///
/// @return false with nothing changed for NULL, silent, and for a text that is no address, Error
VORLIX_API bool Dns_SetDnsServerIPv4(const char* primary, const char* secondary);

/// Sets the IPv6 pair and keeps the IPv4 pair, as `Dns_SetDnsServerIPv4`.
VORLIX_API bool Dns_SetDnsServerIPv6(const char* primary, const char* secondary);

/// Reads the IPv4 pair.
///
/// @param primary, secondary  16 bytes; NULL gives false
/// @return false when one of the two is missing; the other is stored all the same
VORLIX_API bool Dns_GetDnsServerIPv4(char* primary, char* secondary);

/// Reads the IPv6 pair, into `len` bytes each, as `Dns_GetDnsServerIPv4`.
VORLIX_API bool Dns_GetDnsServerIPv6(char* primary, char* secondary, int len);

/// `Dns_SetDnsServerIPv4`, for applications.
VORLIX_API bool SetIPv4DnsServer(const char* primary, const char* secondary);

/// `Dns_GetDnsServerIPv4`, for applications.
VORLIX_API bool GetIPv4DnsServer(char* primary, char* secondary);

/// `Dns_SetDnsServerIPv6`, for applications.
VORLIX_API bool SetIPv6DnsServer(const char* primary, const char* secondary);

/// `Dns_GetDnsServerIPv6`, for applications.
VORLIX_API bool GetIPv6DnsServer(char* primary, char* secondary, int len);

#ifdef __cplusplus
}  // extern "C"
#endif
