// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

/// Services that drive the kernel or a tool by themselves: the kernel's IPv4 neighbour table, and
/// the daemon for remote login.
///
/// The neighbour table is read from /proc/net/arp and changed by the ARP ioctls. Nothing of it is
/// saved: a static entry is gone after a restart of the device. The two lookups and the two
/// listings have rules of their own each. A table that cannot be read on counts as ended there.

#include "Types.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Tells the address of the first neighbour whose line holds `mac` as it stands. The kernel prints
/// lower case, so another one is not found.
///
/// @param mac  17 characters
/// @param ip   16 bytes, written only on success
/// @errors  NULL, another length, no table: silent; none found: Error
/// @threads any; readers take turns
VORLIX_API bool Other_GetIPByMac(const char* mac, char* ip);

/// Tells the hardware address of the first neighbour with this address; an incomplete entry, with
/// nothing but zeros, is taken like any other.
///
/// @param ip   dotted text
/// @param mac  18 bytes, zeroed before the search, and still so after one in vain
/// @errors  NULL, no table: silent; a text that does not parse, none found: Error
/// @threads any; readers take turns
VORLIX_API bool Other_GetMacByIP(const char* ip, char* mac);

/// Adds or replaces a static entry.
///
/// @param arpInfo  `mac` is six hexadecimal fields with colons and nothing behind them; an empty
///                 `dev` lets the kernel pick the card by its routes. Text fields may fill their
///                 room without a terminator; of `dev` 15 characters count
/// @return true when the kernel took it
/// @errors  NULL: silent; a text that does not parse, a refusal: Error; a named card: Warn
VORLIX_API bool arpSetStaticEntry(const NetARPEntry* arpInfo);

/// Deletes an entry, static or not.
///
/// @param arpInfo  `mac` serves only the message of a refusal, the rest is as above
/// @return true when the kernel took it
/// @errors  as above
VORLIX_API bool arpDelStaticEntry(const NetARPEntry* arpInfo);

/// Lists the static entries: complete and permanent, with no other flag such as "published".
///
/// @param arpInfo  `*num` records, all zeroed first, also when there is no table
/// @param num      capacity on entry, 1 or more; number listed on return
/// @return true also when there is none
/// @errors  NULL, no room: silent; no table: Error, with `*num` as it was
VORLIX_API bool arpGetAllStaticEntry(NetARPEntry* arpInfo, int* num);

/// Lists the static entries of one address: the kernel keeps one for each card.
///
/// @param ip       compared as text
/// @param arpInfo  `*num` records, written as far as entries were found
/// @param num      as above
VORLIX_API bool arpGetARPStaticInfoByIP(const char* ip, NetARPEntry* arpInfo, int* num);

/// Starts or stops the daemon for remote login, whose settings are those of /etc/ssh/sshd_config.
/// Waits for the tool that does it. Nothing is saved.
///
/// @param sshInfo  only `enable` is looked at
/// @return 0 when a shell was run, whatever became of the daemon, otherwise -1
/// @errors  NULL, no shell: Error
VORLIX_API int SetSSHStatus(SSHInfo* sshInfo);

#ifdef __cplusplus
}  // extern "C"
#endif
