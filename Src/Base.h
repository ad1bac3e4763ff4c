// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

/// The ground of all kernel access: which interfaces exist and what they are, the two control
/// sockets that every interface request goes through, the link flags, and the shell runner.
///
/// Interface kinds are told by substrings of the name; what the whole system takes for a card, a
/// switch port or a wireless card is decided here. The answers come from /proc/net/dev,
/// /proc/net/wireless, the driver's name and the saved switch modes.

#include "Types.h"

#ifdef __cplusplus
#include "Support/KeyFile.h"
#include "Support/Lines.h"
#include "Support/NameList.h"

#include <optional>

#include <net/if.h>
#include <pthread.h>

extern "C" {
#endif

/// Cuts the interface name out of a line of /proc/net/dev. The line must hold a colon.
///
/// @param name  `len` bytes; holds what was read so far after a failure, then without terminator
/// @return false for NULL, a `len` below 1, a name that does not end in a colon, and a name of
///         `len` characters or more
/// @errors a name of exactly `len` characters: Error; all others: silent
VORLIX_API bool getNetIfNameNoFilter(const char* line, char* name, int len);

/// The same, and the name must be of a kind that the device uses: it holds "eth", "wlan", "bond",
/// "br", "ppp", "lte", "apra" or "usb", and none of "veth", "br-" and "docker".
VORLIX_API bool getNetIfName(const char* line, char* name, int len);

/// Finds a whole word in a list kept as text.
///
/// @param line  not written; not `const` only so that the place found can be
/// @param ts    the separator: it stands before the word, unless the word begins the line, and
///              behind it, unless a newline or the end does
/// @return the place of the word in `line`, or NULL
/// @errors NULL, an empty word: silent; a word that is not there: Info
VORLIX_API char* FindWordInLine(char* line, const char* word, const char ts);

/// One request on the shared IPv4 control socket, which is opened on first use and never closed.
///
/// @param ifr  the request's record, at least 16 bytes, which begins with the interface name
/// @return true when the kernel accepted it
/// @errors NULL: silent; no socket: Error, and the next call tries again; a refusal: Error with the
///         text at the head of the record
VORLIX_API bool NetIOCtrl(int cmd, void* ifr);

/// The same on the shared IPv6 control socket, whose records do not begin with a name: the Error of
/// a refusal tells only the request.
VORLIX_API bool NetIOCtrlv6(int cmd, void* ifr);

/// True when the kernel has an IPv4 address for the interface. Uses a socket of its own.
/// @errors NULL, an interface without address or unknown: silent; no socket: a plain line on
///         standard error, outside the log
VORLIX_API bool InterfaceIpIsExist(const char* name);

/// True for the virtual PCIe card. The driver is asked once; the answer for the first "vnic" name
/// stands for all of them, since there is one such card.
VORLIX_API bool IsVirtPcie(const char* name);

/// True for the switch interface: "eth0:poe", or the first name whose driver calls itself a switch.
/// Names that hold "ppp", "lte", "bond" or "wlan" never are.
VORLIX_API bool IsSwitch(const char* name);

/// The switch mode of a card: a saved mode goes before the driver's name.
/// @return -1 for NULL, 0 an ordinary card, 1 a switch interface, 2 both
VORLIX_API int32_t isSwitchByName(const char* name);

/// Lists every interface whose name contains `specName`, without the filter of the normal lists.
///
/// @param names   32 entries of 16 bytes, all cleared first, whatever `*maxNum` says
/// @param maxNum  number wanted on entry, number listed on return
/// @return false when there is none, with `*maxNum` as it was
/// @errors NULL, a `*maxNum` of 0, a /proc/net/dev that cannot be opened, or not be read before the
///         list is full: Error; no such interface, a negative `*maxNum`: silent
VORLIX_API bool GetSpecifiedInterfaceInfo(char* specName, char (*names)[16], int* maxNum);

/// `GetSpecifiedInterfaceInfo` for "br", the bridges.
VORLIX_API bool GetBridgeInterfaceInfo(char (*names)[16], int* maxNum);

/// `GetSpecifiedInterfaceInfo` for "nbp", the internal bridge.
VORLIX_API bool GetNbpInterfaceInfo(char (*names)[16], int* maxNum);

/// `GetSpecifiedInterfaceInfo` for "vnic", the internal virtual cards.
VORLIX_API bool GetVnicInterfaceInfo(char (*names)[16], int* maxNum);

/// Lists the interfaces that pass the filter, with their counters.
///
/// @param interfaceInfo  `*maxNum` records, zeroed by the caller: what a line does not tell stays;
///                       `transmittedTxqueuelens` and `interfaceSpeed` are set to 0
/// @param maxNum         capacity on entry; number listed on return, unchanged when there are more
/// @return true also for an empty list; false after an error, with `*maxNum` as it was and the
///         records of the lines before it filled
/// @errors NULL in `maxNum`, a `*maxNum` of 0, a /proc/net/dev that cannot be opened, or not be
///         read before the list is full: Error; no records: silent
VORLIX_API bool GetNormalInterfaceInfo(struct InterfaceInfo* interfaceInfo, int* maxNum);

/// Lists the interfaces that pass the filter. A card that is a switch interface as well is followed
/// by a second entry of its name with ":poe" behind it.
///
/// @param names   32 entries of 16 bytes, all cleared first; the ":poe" entry of the last card
///                wanted stands behind the `*maxNum` entries asked for
/// @param maxNum  capacity on entry, of which at most 32 count; number listed on return
/// @return true also for an empty list; false after an error, with `*maxNum` as it was and the
///         names before it listed
/// @errors NULL, a `*maxNum` of 0, a /proc/net/dev that cannot be opened, or not be read before the
///         list is full: Error. A driver that does not answer counts as no switch, with an Error of
///         `NetIOCtrl` for each card.
VORLIX_API bool GetAllInterfaceInfo(char (*names)[16], int* maxNum);

/// Names the switch interface. The first answer is kept for the life of the process.
///
/// @param name  `len` bytes, zeroed by the caller: with 16 and more, byte 15 may be left as it was
/// @return false when the device has none
/// @errors NULL or a `len` below 1: Error; no listing: Warn; none: Info
VORLIX_API bool GetSwitchInterface(char* name, int len);

/// True when every listed interface exists. An alias is tested by what stands before its colon; a
/// name that begins with "br" always passes, since a bridge may be about to be made.
///
/// @param ethList  `num` names; the first is read even when `num` is 0, and when it holds "nbp" all
///                 are looked for among the internal bridges
/// @errors NULL, no listing: silent here; a name of more than 15 characters before its colon, a
///         name that is not listed: Error
VORLIX_API bool CheckEthExist(const char** ethList, int num);

/// True for a wireless card: a name in /proc/net/wireless, or else one that begins with "wlan".
///
/// The last name found in the table is kept: when only the kind is asked, it is not read again.
///
/// @param isConnect  NULL, or where it goes whether the card's status is 1; written only for a
///                   wireless card
/// @errors NULL: silent; a line without colon: Error, and not connected
VORLIX_API bool NetCardIsWifi(const char* name, bool* isConnect);

/// True when the driver of `name` reports a link. A card without ethtool reads as no link. Uses a
/// socket of its own.
/// @errors NULL: silent; no socket, a refusal: Error
VORLIX_API bool InterfaceIsLink(const char* name);

/// Sets the administrative state of an interface up, and no other flag. Not atomic: a caller that
/// needs the read and the write of the flags as a pair holds `upDownLock`.
/// @errors NULL: silent; an unknown name, a refusal: Error
VORLIX_API bool InterfaceUp(const char* name);

/// Sets the administrative state of an interface down, and no other flag. As `InterfaceUp`.
VORLIX_API bool InterfaceDown(const char* name);

/// Runs a command text through the shell and waits for it, as long as it takes.
///
/// Meanwhile SIGINT and SIGQUIT are ignored in the whole process, and SIGCHLD is blocked in the
/// calling thread; the command itself starts with the caller's signals. The shell is a child of the
/// process: where SIGCHLD is ignored, or another thread reaps every child there is, the command
/// runs and the result is false all the same.
///
/// @param command  handed to `sh -c` as it stands: the caller vouches for every text in it
/// @return true when a shell was started and reaped, whatever the command's own exit status
/// @errors NULL: Error, and nothing is changed. A signal that cannot be ignored or blocked: Error,
///         the command is not run, and the signals that were changed before stay so. No child, or
///         one that cannot be waited for: Error, and the signals are restored. A signal that cannot
///         be restored: Error, and those behind it stay changed.
/// @threads signal dispositions are the process's: two runs at once see each other's changes, and
///          the one that ends last may leave SIGINT and SIGQUIT ignored
VORLIX_API bool VorlixRunCmd(const char* command);

// Not exported.

/// True when the driver's name of `name` contains `drvname`.
bool CheckNetCardByDrvName(const char* name, const char* drvname);

#ifdef __cplusplus
}  // extern "C"

namespace vorlix {

/// Serialises the driver query with the down-change-up step of an MTU change.
extern pthread_mutex_t upDownLock;  // NOLINT(bugprone-dynamic-static-initializers): constant

/// Entries of every array of interface names, and bytes of one.
constexpr int kMaxInterfaces = 32;
constexpr int kNameSize = IFNAMSIZ;

/// The members of a bond or bridge.
using MemberTable = NameTable<kMaxInterfaces, kNameSize>;

/// `CheckEthExist` for one name. NULL gives false, silently.
inline bool CardExists(const char* name)
{
    return CheckEthExist(&name, 1);
}

/// /proc/net/wireless, opened when the first name is looked for.
class WirelessTable {
public:
    /// Stores the line of `name`: the first one in which the character behind the name's first
    /// occurrence is no digit, so that wlan1 is not found in the line of wlan10.
    bool FindLine(const char* name, char (&line)[kLineSize]);

private:
    std::optional<LineFile> table_;
};

/// A walk over many cards that asks what each of them is. The table of wireless cards and the saved
/// switch modes are read when the first card needs them, and once; drivers are asked each time,
/// since a refusal is logged. No name may be NULL.
class CardWalk {
public:
    /// `NetCardIsWifi` when only the kind is asked.
    bool IsWifi(const char* name);

    /// `isSwitchByName`.
    int32_t SwitchMode(const char* name);

private:
    WirelessTable wireless_;
    SwitchModes modes_;
};

/// `GetAllInterfaceInfo` as the first part of a walk that goes on.
bool ListCards(char (*names)[kNameSize], int* maxNum, CardWalk& walk);

/// A zeroed request for one interface, with at most 15 characters of its name.
ifreq RequestFor(const char* name);

/// The same for the driver: the request points at `record`, of the ethtool interface, which begins
/// with its command.
ifreq DriverRequestFor(const char* name, void* record);

/// `VorlixRunCmd` on a command formed here; what lies beyond 255 characters is cut off.
__attribute__((format(printf, 1, 2))) bool RunCommand(const char* format, ...);

/// The same for a command that is logged as an Info of `operation` before it runs.
__attribute__((format(printf, 2, 3))) bool RunLogged(const char* operation, const char* format,
                                                     ...);

}  // namespace vorlix
#endif
