// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

/// Typed settings of cards, bonds and bridges, on top of the setting files.
///
/// Each operation knows its key, its limits and its rule; a value that breaks the rule is refused
/// on the way out, and on the way in unless the operation takes any. No file is repaired here,
/// apart from a work mode that is missing or no number. A NULL argument gives false in silence, and
/// so does a key that is not saved, unless an operation says otherwise. An empty value fails the
/// read with a Warn line, one longer than its buffer with an Error line.
///
/// What is saved is for the next boot and for those who read it: nothing here changes the kernel,
/// and only the default card's VLAN asks it something. Every operation waits for the lock of its
/// file. Two values that belong together are read in one pass, but written one after the other,
/// each under a lock of its own: a failed second write leaves the first, and nothing over two
/// writes or two files is atomic as a whole.

#include "Support/KeyFile.h"
#include "Types.h"

#ifdef __cplusplus
extern "C" {
#endif

// ==== Settings of a card ====

/// Reads the saved IPv4 address and mask of a card.
///
/// @param ip    16 bytes; written as soon as it was read, even when the mask fails
/// @param mask  16 bytes; read only when the address was
/// @return true when both are saved and pass `inet_aton`
/// @errors a text that is no address: Error
VORLIX_API bool GetIPByConfig(const char* name, char* ip, char* mask);

/// Saves the IPv4 address and mask of a card. When both begin with "0.0.0.0" nothing is written and
/// the result is true: an empty address never overwrites a saved one.
///
/// @return false when a text does not pass `inet_aton`, or a write fails; the mask is not written
///         after a failed address, and the address stays before a failed mask
/// @errors a text that is no address: Error; an empty pair: Info
VORLIX_API bool SetIPByConfig(const char* name, const char* ip, const char* mask);

/// Reads the saved IPv4 gateway of a card.
///
/// @param gateway  16 bytes; written as soon as it was read
/// @errors a text that is no address: Error
VORLIX_API bool GetGatewayByConfig(const char* name, char* gateway);

/// Saves the IPv4 gateway of a card. A text that begins with "0.0.0.0" is not written, with the
/// result true, so a saved gateway cannot be cleared this way.
/// @errors a text that is no address: Error; an empty one: Info
VORLIX_API bool SetGatewayByConfig(const char* name, const char* gateway);

/// Reads the saved MTU of a card.
///
/// @param mtu  bytes; the number that was read, also when it is refused
/// @return false when nothing is saved, with `*mtu` untouched, and for a number below 1
/// @errors a number below 1: Error
VORLIX_API bool GetMtuByConfig(const char* name, int* mtu);

/// Saves the MTU of a card.
/// @param mtu  above 0, otherwise false in silence; what lies beyond seven digits is cut off
VORLIX_API bool SetMtuByConfig(const char* name, int mtu);

/// Reads the saved IPv6 address and prefix length of a card.
///
/// @param ip      `ipLen` bytes; written as soon as it was read
/// @param perFix  `perFixLen` bytes; decimal digits, without what stood behind them in the file
/// @errors a text that is no address, a prefix that does not begin with a digit: Error
VORLIX_API bool GetIPv6ByConfig(const char* name, char* ip, int ipLen, char* perFix, int perFixLen);

/// Saves the IPv6 address and prefix length of a card, both as they stand.
/// @errors as `GetIPv6ByConfig`; nothing is written then
VORLIX_API bool SetIPv6ByConfig(const char* name, const char* ip, const char* perFix);

/// Reads the saved IPv6 gateway of a card.
///
/// @param gateway  `len` bytes; written as soon as it was read
/// @errors a text that is no address: Error
VORLIX_API bool GetGatewayv6ByConfig(const char* name, char* gateway, int len);

/// Saves the IPv6 gateway of a card.
/// @errors a text that is no address: Error, nothing is written
VORLIX_API bool SetGatewayv6ByConfig(const char* name, const char* gateway);

/// Names the default card. The name saved in the file of eth0 goes first; a set of files that has
/// lost it is searched for the first one whose "PRIO" begins with "0". A VLAN sub-interface that
/// the kernel does not have falls back to its parent card, the part before the first dot.
///
/// @param name  `len` bytes
/// @errors none found: Error; a fall-back to the parent: Info
VORLIX_API bool GetDefaultEthByConfig(char* name, int len);

/// Makes a card the saved default one: its name goes to the file of eth0, then "PRIO" as "1" to
/// each of the first 32 setting files that are listed, then as "0" to the card's own. The files of
/// eth0 and of the card are created when they are missing. The default route stays as it is.
/// @return false when the settings folder cannot be listed, with the name saved; failed writes do
///         not count
/// @threads the name is there all the time; by "PRIO" alone a reader between the writes can see no
///          default card, and two callers at once can leave two
VORLIX_API bool SetDefaultEthByConfig(const char* name);

/// Saves the work mode of a card.
/// @param mode  0 to 3, otherwise false in silence
VORLIX_API bool SetWorkModeByConfig(const char* name, NetWorkMode mode);

/// Reads the work mode of a card. A card without one, or with a text that is no number, is saved as
/// `netModeMultiple` on the way, so that the result is true for every name.
///
/// @param mode  any number that stands in the file, 4 to 6 included
/// @errors nothing saved: Error; the repair: Info
VORLIX_API bool GetWorkModeByConfig(const char* name, NetWorkMode* mode);

/// Saves whether a card is a member of a bond.
VORLIX_API bool SetEthIsBondedByConfig(const char* name, const bool isBonded);

/// Reads whether a card is a member of a bond.
/// @return true when the flag is saved; `*isBonded` tells whether it begins with "1"
VORLIX_API bool GetEthIsBondedByConfig(const char* name, bool* isBonded);

/// Saves the name of the bond that a card is a member of.
VORLIX_API bool SetEthBondNameByConfig(const char* name, const char* bondName);

/// Reads the name of the bond that a card is a member of.
/// @param bondName  `len` bytes
VORLIX_API bool GetEthBondNameByConfig(const char* name, char* bondName, int len);

/// Saves whether a card is a member of a bridge.
VORLIX_API bool SetEthIsBridgedByConfig(const char* name, const bool isBridged);

/// Reads whether a card is a member of a bridge, as `GetEthIsBondedByConfig` does.
VORLIX_API bool GetEthIsBridgedByConfig(const char* name, bool* isBridged);

/// Saves the name of the bridge that a card is a member of.
VORLIX_API bool SetEthBridgeNameByConfig(const char* name, const char* bridgeName);

/// Reads the name of the bridge that a card is a member of.
/// @param bridgeName  `len` bytes
VORLIX_API bool GetEthBridgeNameByConfig(const char* name, char* bridgeName, int len);

/// Tells whether the setting file of a bond is of the old trunk kind, which has no member list.
///
/// @param name     is not written to
/// @param isTrunk  written only on success
/// @return false when the bond has no setting file
/// @errors two Info lines on success; no file: Info and Error
VORLIX_API bool IsTrunkBondConfig(char* name, bool* isTrunk);

// ==== Settings of a bond ====

/// Reads the saved mode of a bond.
///
/// @param bondMode  any number that stands in the file; -1, with the result false, for a text that
///                  is no number; untouched when nothing is saved
VORLIX_API bool GetBondModeByConfig(const char* bondname, NICBondMode* bondMode);

/// Saves the mode of a bond. A mode of -1 is saved as an empty value, which reads back as a
/// failure.
VORLIX_API bool SetBondModeByConfig(const char* bondname, const NICBondMode bondMode);

/// Reads the saved members of a bond. Empty names in the list are passed over.
///
/// @param bondMembers  `*num` pointers to buffers of 16 bytes; longer names are cut to 15
///                     characters
/// @param num          capacity on entry, number of members on return; untouched on failure, when
///                     buffers in front of a NULL among them have been written
VORLIX_API bool GetBondMemberByConfig(const char* bondname, char** bondMembers, int* num);

/// Saves the members of a bond, joined by commas. No members, or one empty name, save an empty
/// list, which reads back as a failure.
///
/// @param num  number of names; below 1 there are none
/// @return false when the names with a comma behind each make 255 characters or more
/// @errors too many characters: Error, nothing is written. What does not fit into a line of the
///         file is cut off there: 241 characters do.
VORLIX_API bool SetBondMemberByConfig(const char* bondname, const char** bondMembers,
                                      const int num);

/// Reads the saved hash policy of a bond.
/// @param lacp  the number, or 0 with the result false for a text that does not begin with "0" to
///              "4"; untouched when nothing is saved
VORLIX_API bool GetBondHashPolicyByConfig(const char* bondname, unsigned char* lacp);

/// Saves the hash policy of a bond, whatever the number.
VORLIX_API bool SetBondHashPolicyByConfig(const char* bondname, unsigned char lacp);

/// Saves the name of the primary member of a bond.
VORLIX_API bool SetPrimaryEthByConfig(const char* bondName, const char* name);

/// Reads the name of the primary member of a bond.
/// @param name  `len` bytes
VORLIX_API bool GetPrimaryEthByConfig(const char* bondName, char* name, int len);

// ==== Settings of a bridge ====

/// Reads the saved members of a bridge, as `GetBondMemberByConfig` does, with two differences: a
/// list of 240 characters or more is refused, and names may have 32 characters.
///
/// @param brMembers  `*num` pointers to zeroed buffers of 33 bytes or more: 32 bytes of each are
///                   written, and a name of 32 characters brings no terminator
VORLIX_API bool GetBridgeMemberByConfig(const char* brname, char** brMembers, int* num);

/// Saves the members of a bridge, as `SetBondMemberByConfig` does; 239 characters fit into a line.
VORLIX_API bool SetBridgeMemberByConfig(const char* brName, const char** brMembers, int num);

/// Adds a card to the saved edge ports of a bridge. The list belongs to the third character of the
/// bridge's name.
///
/// @return true also when the card is one already; a failed read counts as a list without ports
/// @errors one already: Warn; list and name of more than 253 characters together, also the name of
///         a first card: Error, nothing is written. What does not fit into a line of the file is
///         cut off there: 240 characters do.
/// @threads a read and a write under separate locks: of two calls at once one may be lost
VORLIX_API bool AddEdgePortByconfig(const char* brName, const char* ethName);

/// Removes a card from the saved edge ports of a bridge. A bridge that has none, and one whose list
/// cannot be read, gets an empty list.
///
/// @return true also when the card is none
/// @errors none: Warn
/// @threads as `AddEdgePortByconfig`
VORLIX_API bool DelEdgePortByconfig(const char* brName, const char* ethName);

/// True when the card is a saved edge port of the bridge.
VORLIX_API bool IsEdgePortByconfig(const char* brName, const char* ethName);

/// Saves the spanning-tree mode, one for all bridges. The text in the file is the number with the
/// letter "d" behind it.
VORLIX_API bool SetBridgeStpModeByConfig(const char* brName, const unsigned char mode);

/// Reads the saved spanning-tree mode, one for all bridges.
/// @errors nothing saved: Error
VORLIX_API bool GetBridgeStpModeByConfig(const char* brName, unsigned char* mode);

/// Saves the third character of the bridge's name as the letter of the bridge.
VORLIX_API bool SetBridgeIDByConfig(const char* brName);

/// Saves the ports of the bridge, joined by commas, one list for all bridges. What lies beyond 248
/// characters does not fit into a line of the file and is cut off. The line replaced is the first
/// one that holds "SSIF", which may be one of edge ports.
/// @param slavesNum  number of names; 0 gives false, a negative number saves an empty list
VORLIX_API bool SetBridgePortListByConfig(const char* brName, const char** slaves, int slavesNum);

#ifdef __cplusplus
}  // extern "C"
#endif
