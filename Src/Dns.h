// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

/// The DNS servers of the device, in two plain text files of lines "nameserver <address>":
/// "/mnt/mtd/Config/resolv.conf" for the system's resolver, with all servers, and
/// "/mnt/mtd/Config/resolvip6.conf" with the IPv6 ones. Each write rebuilds both.
///
/// A whole read or rewrite of the files excludes the other threads of this process, not other
/// processes. A rewrite empties the files first and is not synced: a power cut soon after it can
/// leave them empty, and the next boot gives a family without two servers its default ones.

#include "Types.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Reads the first two servers of each kind, as far as they are asked for. A line with a ":" is
/// taken for an IPv6 one; one of more than 255 characters counts as several. The walk ends behind
/// 32 lines and at the first line without "nameserver". Of an IPv6 pair of which the first file has
/// none, both come from the second file.
///
/// @param primary_4, secondary_4  NULL, or 16 bytes
/// @param primary_6, secondary_6  NULL, or `len_6` bytes; an address that does not fit leaves its
///                                slot as it was
/// @return true when every slot asked for was filled; those found are filled in any case
/// @errors a file that cannot be opened, a text that is no address: Error; one that cannot be read
///         to its end: silent
VORLIX_API bool Dns_GetDnsFileInfo(char* primary_4, char* secondary_4, char* primary_6,
                                   char* secondary_6, int len_6);

/// Rewrites both files. NULL leaves a server out, and so does a text that is no address.
///
/// @return false when a file cannot be opened, with the first one emptied when it is the second;
///         otherwise true, also when servers were left out or the disk is full
/// @errors a file that cannot be opened, a text that is no address: Error
VORLIX_API bool Dns_SetDnsAddress(const char* primary_4, const char* secondary_4,
                                  const char* primary_6, const char* secondary_6);

/// Sets the IPv4 pair and keeps the IPv6 pair that is saved. Each IPv6 server that is not saved, or
/// cannot be read, costs an Error line and is left out. A change by another thread between the read
/// and the write is lost.
///
/// @return false with nothing changed for NULL, silent, and for a text that is no address, Error;
///         else as `Dns_SetDnsAddress`
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
