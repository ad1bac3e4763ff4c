// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

/// The kernel's bonding driver: its attribute files below /sys/class/net/<bond>/bonding/, and the
/// tools `ifconfig` and `ifenslave`.
///
/// A bond's device must already exist; nothing here creates one. Nothing is saved here and nothing
/// is rolled back: a failure leaves the bond as the steps before it made it. Names go into commands
/// for the shell as they stand, so the caller vouches for them. Changes need the rights of root;
/// the caller waits for the tools.

#include "Types.h"

#ifdef __cplusplus
extern "C" {
#endif

/// True when the card is a member of the bond, by its whole name.
/// @errors  NULL: silent; no such bond: Error; not a member: Info
/// @source  the first line of `slaves`
VORLIX_API bool Bond_HasMember(const char* bondName, const char* ethName);

/// Copies the name of the active member: what stands from the first "eth" of the driver's line on,
/// with the line's newline when it fits.
///
/// @param ethName  `len` bytes; at most `len` - 2 characters are stored, the last byte is zero
/// @return false for NULL, a `len` below 1, and a bond without an active "eth" member
/// @errors  no such bond, no "eth" in the line: Error; NULL, no room: silent
/// @source  the first line of `active_slave`
VORLIX_API bool Bond_GetActiveSlave(const char* bondName, char* ethName, int len);

/// Writes the transmit hash policy. Older drivers take it only while the bond is down, newer ones
/// also while it is up; the bond's flags are not changed here.
///
/// @param lacp  number of the policy, written as decimal text; a negative one gives false, silently
/// @errors  no such bond, refused by the driver: Error
VORLIX_API bool Bond_SetHashPolicy(const char* bondName, int lacp);

/// Lists the members of a bond in the driver's order; with `ethList` NULL it only tests whether the
/// bond runs.
///
/// @param ethList  `*ethNum` pointers to 16 bytes each, or NULL; a NULL among them is refused
///                 silently before anything is done
/// @param ethNum   capacity on entry, number of members on return; not needed without a list
/// @return true when the driver's line could be read, even when no member stands in it; a bond
///         without members has no line
/// @errors  a name with "." is refused silently, with `*ethNum` 0; no such bond: Error
/// @source  the first line of `slaves`
VORLIX_API bool Bond_GetBondMembers(const char* bondName, char** ethList, int* ethNum);

/// Writes the primary member.
/// @errors  no such bond, refused by the driver: Error
VORLIX_API bool Bond_SetPrimary(const char* bondName, const char* name);

/// Writes the mode and a link-monitoring interval of 100 ms, with the bond taken down for it.
///
/// A bond whose `mode` cannot be opened is not taken down; once taken down it is always brought up
/// again.
///
/// @errors  mode outside 0 to 6, no such bond, refused by the driver: Error
VORLIX_API bool Bond_SetBondMode(const char* bondName, NICBondMode mode);

/// Makes cards members of the bond, with one `ifenslave` for all. Each is taken down and brought up
/// without an address first.
///
/// @param ethList  `ethNum` names; the command that holds them all must fit 255 characters
/// @return false for NULL, for a bond that cannot be brought up, for a command that is too long
///         (Error), and for a shell that cannot be run; true does not say that the driver agreed
VORLIX_API bool Bond_Bond(const char* bondName, const char** ethList, int ethNum);

/// Releases cards from the bond and takes the bond down. Bringing the cards back is the caller's.
///
/// @return false only for NULL and for a command that is too long (Error), which changes nothing
VORLIX_API bool Bond_Unbond(const char* bondName, const char** ethList, int32_t ethNum);

#ifdef __cplusplus
}
#endif
