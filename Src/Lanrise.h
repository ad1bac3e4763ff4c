// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

/// The start-up initialiser: the program that brings the network up at every boot, and that an
/// operator or a start script runs to change one card's address or the default card.
///
/// At boot nothing is fatal: every phase repairs what it can, logs, and the next one runs. The
/// phases share the module's state (the listed interfaces, the switch interface, the live members
/// of bonds and bridges), which `CommonMain` fills and which carries over to a later call in the
/// same process. Nothing here is locked: one thread runs it, and runs it once at a time.
///
/// Contents:
///   Program: entries, command forms, the order of a boot
///   PoE setting files: two names for one file
///   Saved bonds, saved bridges, work modes: which card belongs where
///   Live members: what the drivers say
///   Addresses: a usable address for every card, the default card, the resolvers
///   Bringing up: bonds, bridges, cards and routes

#include "Types.h"

#ifdef __cplusplus
extern "C" {
#endif

// ==== Program ====

/// Entry for a host application: runs `CommonMain` and drops its result. A boot takes as long as
/// its tools, its locks and the 2 seconds for each bond take, and the calling thread waits.
/// @return always 1
VORLIX_API int32_t dvr_lanrise_main(int32_t argc, char** argv);

/// Second name of `dvr_lanrise_main`.
VORLIX_API int32_t PDI_lanriseMain(int32_t argc, char** argv);

/// Runs the program. The number of arguments selects the form, whatever they are:
///
///   1  the boot: repairs the saved settings, brings up the cards, rebuilds the routes
///   3  "setdef <ethname>": changes the default card
///   5  "<ethname> <Ipaddress> <Netmask> <Gateway>": sets one card's address, rebuilds the routes
///
/// Every form first gives two files of an old release their present names, prints the usage text,
/// lists the interfaces and creates the setting files that are missing. Needs the rights to change
/// the network and to write the setting files; without them each step says so and the next one
/// runs.
///
/// @return false when no interface can be listed, the third word is not "setdef", its card does not
///         exist, or the addresses do not parse or do not share a net; true otherwise, also for a
///         card that could not be set and for any other number of arguments
VORLIX_API bool CommonMain(int32_t argc, char** argv);

/// Prints the usage text to standard output, without the frame of the log.
VORLIX_API void PrintfHelp(void);

// ==== PoE setting files ====

/// Keeps the two names of a PoE card's setting file, "networketh<n>:poe" and "networkpoe<n>", in
/// step: whichever is missing in the current directory becomes a hard link to the other. Prints
/// what it does to standard output, without the frame of the log. Nothing at boot calls it.
///
/// @return 0, or -1 when the directory cannot be opened
VORLIX_API int BackupPoEConfig(void);

// ==== Saved bonds ====
//
// What belongs together is saved twice: each card's file names its bond or bridge, and the file of
// each bond or bridge lists its members. The cards' files are the authority; nothing here asks or
// changes the kernel. Names that hold "bond" are bonds, names that hold "br" are bridges, all
// others are cards.

/// Converts the bond modes of old releases, told by a bond's file without member list.
/// @return always true
/// @errors a number that was no mode: Warn, and the file stays
VORLIX_API bool CheckTrunkBondConfig(void);

/// Makes the bonds' files agree with the cards' claims. A claim for a bond that is not listed is
/// dropped, a bond of fewer than two cards is dissolved, and a list that differs is written anew,
/// with eth0 in front. Bonds above 15 are passed over.
/// @return always true
VORLIX_API bool CheckBondConfig(void);

// ==== Saved bridges ====

/// Makes the files of br0 to br31 agree with the cards' claims. A bridge need not be listed to be
/// claimed; the file of one with fewer than two cards is removed. The first bridge whose list is
/// in order ends the walk: those behind it are not looked at in this boot.
/// @return always true
VORLIX_API bool CheckBridgeConfig(void);

// ==== Work modes ====

/// Derives each card's work mode from its bond and bridge flags, and saves it.
///
/// @return false when a card was marked as member of both a bond and a bridge; it has been taken
///         out of both, and the member lists want another look
/// @errors a flag that cannot be read: Warn, and it is saved as not set; both flags: Error
VORLIX_API bool CheckWorkmodeConfig(void);

// ==== Live members ====

/// Collects the live members of all listed bonds and bridges, from the kernel, for
/// `addAllCardNetRoute`.
///
/// @return false when there are more than 32 of a kind; the counts then stay as they were
VORLIX_API bool getAllBondOrBrSlave(void);

// ==== Addresses ====
//
// Setting files and backup memory: nothing here changes the kernel. An interface is there when the
// last listing of the program entered it. A triple of address, mask and gateway is valid when its
// texts parse, the address is not 0, and address and gateway lie in one net; a mask of 0 makes one
// net of everything.

/// Wipes the backup memory when its check fails.
/// @return always true
/// @errors a failed check: Error
VORLIX_API bool CheckBackup(void);

/// Tells whether the card's file holds a valid triple, and saves the default MTU when the file has
/// none, valid or not.
/// @return false for NULL, a missing value or an invalid triple
/// @errors a text that does not parse: Error, and what was parsed before it is judged
VORLIX_API bool CheckNetCardConfig(const char* name);

/// Reconciles eth0's file with the backup memory: the one that is valid wins, the backup when both
/// are. With neither valid, the reset mark is set and both get the factory values.
/// @return false when neither was valid
VORLIX_API bool CheckEth0Config(void);

/// Gives eth1 to eth31, as far as they are there, their factory triple when their file has no valid
/// one: the address of their number, one mask and one gateway for all. A missing MTU is saved
/// whether the triple is valid or not. What cannot be written stays as it was.
/// @return true; false when the factory address itself cannot be parsed, Error
VORLIX_API bool CheckEthCardConfig(void);

/// The same for bond0 to bond7, without the Error. The first number that is not there ends the
/// walk.
/// @errors eight bonds: Warn, since a ninth would not be looked at
VORLIX_API bool CheckBondCardConfig(void);

/// The same for wlan0 to wlan7, as `CheckBondCardConfig`.
VORLIX_API bool CheckWlanCardConfig(void);

/// The same for the switch interface, if there is one.
/// @return always true
VORLIX_API bool CheckDefSwitchConfig(void);

/// Settles the default card: the saved one, or else the first of eth0, eth1 and eth2 among the
/// interfaces that the second listing of a boot added. It is saved again, changed or not.
/// @return false when it could not be saved
VORLIX_API bool CheckDefaultEthConfig(void);

/// Writes the default resolvers of each family whose pair cannot be read.
/// @return always true
/// @errors defaults that cannot be written: Warn
VORLIX_API bool CheckDnsServer(void);

// ==== Bringing up ====

/// Deletes the IPv4 routes over the device's interfaces. Looks at the first 32 routes of the table;
/// routes over other interfaces, such as the loopback, stay.
/// @errors a table that cannot be read, a route that stays: Info; one that the kernel keeps: Error
VORLIX_API void removeAllRoute(void);

/// Adds the direct route to the net that the card's file tells, for which address, mask and gateway
/// must be saved, though no gateway is used. When one of them is missing, a route to "0.0.0.0" is
/// asked for instead, under the mask as far as it was read: without a mask none is added. When one
/// does not parse, no route is added.
/// @errors a text that does not parse: Info; what `RouteAddIPv4` logs
VORLIX_API void addRouteByName(const char* ifname);

/// Adds the net route of every listed interface that has one of its own, which members of bonds and
/// bridges have not, then the net route of the default card and the default route.
VORLIX_API void addAllCardNetRoute(void);

/// Builds every listed bond from its file: hash policy where its mode takes one, then the bond,
/// when it has two members or more. Pauses for 2 seconds behind each bond whose list could be read.
/// @return always true
/// @errors no member list: Error; a bond that cannot be built: Warn
VORLIX_API bool DoBondStuff(void);

/// Builds every bridge that has a setting file listing two members or more, in the directory's
/// order, then the internal bridge.
/// @return false when the directory cannot be opened; nothing is built then
/// @errors no directory: Error; a bridge that cannot be built: Warn
VORLIX_API bool DoBridgeStuff(void);

/// Puts the saved settings back on every card that is in neither a bond nor a bridge by its saved
/// work mode.
/// @return always true
VORLIX_API bool RecoverOtherEth(void);

#ifdef __cplusplus
}  // extern "C"
#endif
