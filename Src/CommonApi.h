// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

/// What the device does with its network: operations that join the kernel, the saved settings and
/// the backup memory. Both generations of the public API and the boot program stand on these.
///
/// Contents:
///   Routes: routes by text or by record, the default card and its route
///   Virtual links: IPVLAN and MACVLAN links on a card
///   IPv4 operations: address, gateway, hardware address, link of one card
///   IPv6 operations: address and gateway of one card
///   Bonds: building and ending a bond, and putting a card's saved settings back
///   Bridges: building and ending a bridge, its edge ports and spanning tree
///   Interface list and MTU: what knows cards, bonds and bridges alike
///   Reachability probes: who else uses a card's address, and whether a host answers
///   Neighbours: addresses and hardware addresses of the kernel's neighbour table
///   Traffic shaping: limits on what a card sends to single peers
///   Port filtering: ports of one address or of all addresses, blocked and freed
///   Switch and PoE: ports of the switch chip, power on its ports

#include "Types.h"

#ifdef __cplusplus
extern "C" {
#endif

// ==== Routes ====
//
// Addresses are text: dotted IPv4 in 16 bytes, IPv6 in 48. "0.0.0.0" is the IPv4 default
// destination, mask and "no gateway"; "0:0:0::0" is the IPv6 default destination. A route operation
// looks at the first 16 rows of a kernel table (`NetGetDefEth` at 10, `RouteGetAllInfo` at as many
// as its caller has room for): what lies beyond counts as absent. Nothing is retried or rolled
// back; a batch of deletions stops at its first failure.
//
// The IPv4 table is the kernel's main table. The IPv6 one lists the rows of every table, and since
// Linux 4.14 or so also those of a card's own addresses, of anycast and of multicast, which cannot
// be deleted here: a batch of IPv6 deletions ends with false at the first of them.

/// Adds an IPv4 route that is not there yet. The destination is masked before it is looked for.
/// @return false also when the route is already there
/// @errors NULL: silent; a route that is there: Info; a table that cannot be read: Warn, and the
///         route is added all the same; otherwise as `Route_AddIPv4Route`
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
/// @return true when a name was obtained, whatever became of the route. False also when no gateway
///         is saved for the saved card: its name stands in `name` then
/// @errors no table, no default route, no saved gateway, a recovery that fails: Error
VORLIX_API bool NetGetDefEth(char* name, int len);

/// Makes `name` the default card: saves it, then moves the default route to its saved gateway.
/// After `RouteControl(1)` it only saves.
///
/// @return false for an unknown card or one without a saved gateway; the present default route then
///         stays. False also when the kernel refuses the new route: no default route is left then.
///         After `RouteControl(1)` the result of the saving
/// @errors a failed save: Error, and the route moves all the same
VORLIX_API bool NetSetDefEth(const char* name);

/// Replaces all IPv4 default routes by one over `name` to its saved gateway.
/// @return false without a saved gateway or when the addition fails; no default route is left then
VORLIX_API bool RouteAddDefIPv4(const char* name);

/// Deletes the IPv4 default routes of `name`, or of all cards for NULL.
/// @return true also when there was none
/// @errors no table: Error, and the route to the saved gateway of `name` is tried
VORLIX_API bool RouteDelDefIPv4(const char* name);

/// Replaces all IPv6 default routes by one over `name` to its saved gateway. What the kernel does
/// not delete stays, and the new route is tried all the same.
/// @return false without a saved gateway or when the addition fails, with the others gone
VORLIX_API bool RouteAddDefIPv6(const char* name);

/// Deletes the IPv6 default routes of `name`, or of all cards for NULL.
/// @return true also when there was none; false when the table cannot be read, and at a default
///         route of another table
VORLIX_API bool RouteDelDefIPv6(const char* name);

/// Deletes every listed IPv4 route, default and directly connected ones included.
VORLIX_API bool RouteDelAllRoute(void);

/// Deletes the IPv4 routes of `name`, save its default routes.
VORLIX_API bool RouteDelAllIPv4(const char* name);

/// Deletes the IPv6 routes of `name`, save its default routes.
/// @return false for every card that has an IPv6 address, whose own rows the kernel does not
///         delete: those before them are gone then
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

// ==== Virtual links ====

/// Creates an IPVLAN or MACVLAN link on a card; it comes up at once. Nothing is saved. Waits for
/// the kernel's answer without a limit.
///
/// @param pstInterInfo  names, which may fill their fields, and the parameters of the type's own
///                      member of the union
/// @return true when the kernel made the link
/// @errors NULL: silent; another type, and every request as such: Error; a refusal: Warn
/// @source rtnetlink, RTM_NEWLINK
VORLIX_API bool NetVirtInterAdd(NetVirtInterInfo* pstInterInfo);

/// Deletes a virtual link by its name; whether it is of the kind told is not tested. Messages as
/// above.
VORLIX_API bool NetVirtInterDel(NetVirtInterName* pstInterName);

// ==== IPv4 operations ====
//
// A card's values live in up to three stores: the kernel, its setting file, and for eth0 the backup
// memory. Each value has its own order of stores, in writing and in asking. A card that does not
// exist gives false, with the Error of `CheckEthExist`. Nothing is retried.

/// `Net_InterfaceUp` on a card that exists.
VORLIX_API bool NetInterfaceUp(const char* name);

/// `Net_InterfaceDown` on a card that exists.
VORLIX_API bool NetInterfaceDown(const char* name);

/// Sets address and mask: in the kernel, then in the setting file, then in the backup memory.
///
/// @param addr  dotted text; "0.0.0.0" takes the address away
/// @param mask  same form; "0.0.0.0" for both leaves the file as it is, and zeroes eth0's backup
/// @return true when the kernel took both, whatever became of the other stores; false with neither
///         of these written. A kernel that refuses the mask has the new address by then
VORLIX_API bool NetSetIPByName(const char* name, const char* addr, const char* mask);

/// Saves the gateway in the setting file, and for eth0 in the backup memory. No route is changed:
/// `NetSetDefEth` applies the gateway.
///
/// @param addr  dotted text; "0.0.0.0" leaves the file as it is, which counts as saved, and zeroes
///              eth0's backup
/// @return result of the setting file; the backup is written also when that failed
/// @errors a failed save: Error
VORLIX_API bool NetSetGatewaybyName(const char* name, const char* addr);

/// Sets the hardware address, which is kept nowhere. The card goes down and up for it, so the
/// default card and its route are set again afterwards.
///
/// @param addr  six hexadecimal bytes with colons between them
/// @return result of the kernel
VORLIX_API bool NetSetMacbyName(const char* name, const char* addr);

/// `Net_SetMediumPrefer` on a card that exists.
VORLIX_API bool NetSetMediumPrefer(const char* name, NetMediumPrefer medium);

/// Tells the configured address and mask: from the setting file, else from the kernel, else from
/// the backup memory. What the backup gave is saved in the file; what the kernel gave is not.
///
/// @param addr  16 bytes
/// @param mask  16 bytes
/// @return false, which may leave what one of the sources gave: an address without its mask, or
///         saved texts that are none
/// @errors each source that fails: Warn; the last: Error
VORLIX_API bool NetGetIPbyName(const char* name, char* addr, char* mask);

/// Tells the gateway: from the setting file, else from the backup memory, which is then saved in
/// the file. The kernel is not asked.
///
/// @param addr  16 bytes
/// @return false, which may leave a saved text that is no address
/// @errors each source that fails: Warn; the last: Error
VORLIX_API bool NetGetGatewaybyName(const char* name, char* addr);

/// Tells the MTU: from the kernel, else from the setting file.
/// @return false, which may leave a saved number that is no MTU
/// @errors each source that fails: Warn; the last: Error
VORLIX_API bool NetGetMtubyName(const char* name, int* mtu);

/// `Net_GetMacbyName` on a card that exists.
///
/// @param addr  18 bytes
VORLIX_API bool NetGetMacbyName(const char* name, char* addr);

/// `Net_GetLinkSpeed` on a card that exists.
///
/// @param speed  Mbit/s, in 16 bits: 65535 when the driver knows none, and 100 Gbit/s are cut
VORLIX_API bool NetGetLinkSpeed(const char* name, int* speed);

/// `Net_GetDataStat` on a card that exists.
VORLIX_API bool NetGetDataStat(const char* name, NetDataStat* dataStat);

/// `Net_GetIPbyName`: what the kernel has now, with no other source and no test of the name.
///
/// @param addr  16 bytes
/// @param mask  16 bytes
VORLIX_API bool NetGetRealIPByName(const char* name, char* addr, char* mask);

/// Tells what a card is for: a switch interface, or else its saved work mode. A card without a
/// saved mode gets `netModeMultiple` saved.
///
/// @errors a name without "eth": Error. Whether the card exists is not tested.
VORLIX_API bool NetGetEthWorkMode(const char* name, NetWorkMode* mode);

/// True when the card has a link. A name with "poe" always has.
///
/// @param bcheckSlaves  judge a member of a bond or bridge by the link of its master
/// @errors a master whose name is not saved: Warn, and the card's own link counts
VORLIX_API bool NetMiiDiag(const char* name, bool bcheckSlaves);

// ==== IPv6 operations ====
//
// A card's values live in the kernel and in its IPv6 setting file; the backup memory holds none. A
// card that does not exist gives false, with the Error of `CheckEthExist`. Nothing is retried.

/// Replaces the address of a card: in the kernel, then in the setting file. The card has none in
/// between. An address that the card has already with this prefix is left alone, and so is the
/// file.
///
/// @param addr    address text without prefix; an empty text takes the address away and saves
///                "0:0:0::0" and "64"
/// @param perfix  prefix length in decimal, up to 128. One without a number in it counts as 0; one
///                that does not begin with a digit is set and not saved
/// @return result of the kernel, or of the setting file for an empty address. After false from the
///         kernel the old address is gone there, and still stands in the file
/// @errors another prefix length: Error; an old address that cannot be removed, an empty address:
///         Warn
VORLIX_API bool NetSetIPv6byName(const char* name, const char* addr, const char* perfix);

/// Takes the address of a card away: from the kernel, then from the setting file, where "0:0:0::0"
/// and "64" stand for none.
///
/// @param addr  address text, alone or as address/prefix. The latter must be writable: it is cut at
///              the "/" in place
/// @return result of the kernel; true for a card that has no address, or only link-local ones,
///         which stay
/// @errors a prefix length above 128: Error, with nothing removed
VORLIX_API bool NetDelIPAddressIpv6(const char* name, const char* addr);

/// Tells the address: from the kernel, else from the setting file.
///
/// @param addr    `ipLen` bytes; the shortened form takes up to 40. One of the kernel that does not
///                fit is told as an empty text, with true
/// @param perfix  `perFixLen` bytes
/// @return false, which may leave saved texts that are none, or one without the other
/// @errors neither has one: Error
VORLIX_API bool NetGetIPv6byName(const char* name, char* addr, int ipLen, char* perfix,
                                 int perFixLen);

/// The same, only from the kernel.
/// @errors it has none: Warn
VORLIX_API bool NetGetSysIPv6byName(const char* name, char* addr, int ipLen, char* perfix,
                                    int perFixLen);

/// Tells the link-local address: the one that the kernel has, as address/prefix, or else the one
/// that belongs to the hardware address, without a prefix.
///
/// @param addr  `ipLen` bytes; a text that needs more is cut
VORLIX_API bool NetGetLinkLocalAddressIpv6(const char* name, char* addr, int ipLen);

/// Saves the gateway in the setting file. No route is changed: `RouteAddDefIPv6` applies it.
/// @errors a failed save: Error
VORLIX_API bool NetSetGatewayIPv6byName(const char* name, const char* addr);

/// Tells the saved gateway. The kernel is not asked.
///
/// @param addr  `len` bytes
/// @return false, which may leave a saved text that is no address
/// @errors none: Error
VORLIX_API bool NetGetGatewayIPv6byName(const char* name, char* addr, int len);

// ==== Bonds ====
//
// A bond's device has "bond" in its name. It runs when `Bond_GetBondMembers` can read its members.
// Saved settings change only after the driver has done its part. Nothing is atomic: callers keep
// changes of one bond apart.

/// Tells the saved mode of a bond that runs. The driver's is never asked.
/// @return false, which leaves -1 in `mode` when what is saved is no number
/// @errors  no bond, no saved mode: Error
VORLIX_API bool GetBondMode(const char* bondName, NICBondMode* mode);

/// `Bond_HasMember`.
VORLIX_API bool BondHasMember(const char* bondName, const char* ethName);

/// `Bond_GetActiveSlave`.
///
/// @param ethName  `len` bytes; the name may end in a newline
VORLIX_API bool GetBondActiveSlave(const char* bondName, char* ethName, int len);

/// `Bond_GetBondMembers` of a bond whose device exists.
///
/// @param ethList  `*ethNum` pointers to 16 bytes each; a NULL among them is refused silently
/// @param ethNum   capacity on entry, number of members on return; 0 also for a name with a ".",
///                 which is refused
VORLIX_API bool GetBondMembers(const char* bondName, char** ethList, int* ethNum);

/// Sets the MTU of a running bond, with the bond and its members taken down for it. Nothing is
/// saved.
///
/// @param mtu  up to 7200; above that, or negative, 1500 is set instead
/// @return result of the kernel; true also for a bond that does not run, and for one that has this
///         MTU already
/// @errors a replaced MTU: Warn; no bond: Info
VORLIX_API bool SetMtubyBondName(const char* bondName, const int mtu);

/// Puts a card's saved settings back: brings it up and sets address, gateway and MTU from its
/// setting file. Address and gateway may come from the backup memory instead.
///
/// @return whether an address and a mask were found; what the kernel said to them plays no part
/// @errors a source that fails: Warn when another follows, else Error; a refusal: Error
VORLIX_API bool NetCardRecover(const char* name);

/// Builds a bond from cards and saves it; the bond takes address, gateway and MTU from its own
/// setting file. When the bond runs already and its saved mode is active-backup, the first card
/// becomes its primary instead, and list and `mode` play no other part.
///
/// @param bondName  holds "bond" and no "."
/// @param ethList   `ethNum` cards; the first is read even when there are none. A NULL among them
///                  is refused before anything is done, a name that begins with "br" passes as a
///                  card without being there
/// @return true when the driver's part was done; false with nothing saved, and with the cards
///         recovered when they could not be joined
/// @errors  mode outside 0 to 6, another name, a bond that must be ended first, a primary or a
///          joining that fails: Error
VORLIX_API bool Bond(const char* bondName, const char** ethList, const int ethNum,
                     NICBondMode mode);

/// Ends a bond, saves that, and recovers each member it had. Its own address, gateway and MTU stay
/// saved. What the tools refuse is not seen.
///
/// @param bondName  holds "bond"
/// @errors  another name: silent; no such bond, members that cannot be read, a command that grows
///          too long: Error, with nothing saved
VORLIX_API bool UnBond(const char* bondName);

/// Sets the transmit hash policy, with the bond taken down for it, and saves it.
///
/// @param bondName  holds "bond"; another name: Warn
/// @param lacp      as the bonding driver numbers it; 5, which newer drivers take, is saved too,
///                  and not told by `GetBondHashPolicy`
/// @return result of the driver; false with nothing saved
VORLIX_API bool SetBondHashPolicy(const char* bondName, unsigned char lacp);

/// Tells the saved hash policy, 0 to 4. The driver is never asked.
/// @return false, which leaves 0 in `lacp` when what is saved is another
VORLIX_API bool GetBondHashPolicy(const char* bondName, unsigned char* lacp);

// ==== Bridges ====
//
// Saved settings change only after the tools have been run. A bridge that must exist and does not
// gives false, with the Error of `Bridge_IsBridgeExist`.

/// `Bridge_IsBridgeExist`.
VORLIX_API bool BridgeCheckExist(const char* brName);

/// Builds the bridge over the internal virtual cards, when it does not exist and is needed: when
/// there are such cards and the first of them has no address of its own. It gets its saved address,
/// or else a fixed one, which is then saved.
///
/// @param brName  at most 15 characters count; NULL means "nbp0"
/// @return true when the bridge was built, whether its address could be set or not
/// @errors  not needed, an address that cannot be set: Warn; a failed building: Error
VORLIX_API bool BridgeByInterNic(const char* brName);

/// Builds a bridge from cards and saves it; the bridge takes address, gateway and MTU from its own
/// setting file. A bridge that exists already takes the same steps.
///
/// @param brName   "br" and a digit, and whatever follows
/// @param ethList  `ethNum` cards, not written to; the first is read even when there are none. A
///                 NULL among them is refused before anything is done, a name that begins with "br"
///                 passes as a card without being there
/// @return true when the tools were run
/// @errors  another name, a failed building: Error, with nothing saved and no card recovered
VORLIX_API bool Bridge(const char* brName, char** ethList, int ethNum);

/// Ends the bridge over the internal virtual cards. What is saved of the cards stays.
/// @errors  as for `UnBridge`
VORLIX_API bool UnBridgeByInterNic(const char* brName);

/// Ends a bridge, saves that, and recovers each card it had.
/// @errors  members that cannot be read, tools that cannot be run: Error, with nothing saved
VORLIX_API bool UnBridge(const char* brName);

/// `Bridge_GetBridgeMembers` of a bridge that exists.
///
/// @param ethList  `*ethNum` pointers to 16 bytes each; a NULL among them is refused silently
/// @param ethNum   capacity on entry, number of members on return
VORLIX_API bool GetBridgeMenbers(const char* brName, char** ethList, int* ethNum);

/// Marks a member of a bridge as edge port and saves that.
/// @errors  no member, a tool that cannot be run: Error, with nothing saved
VORLIX_API bool BridgeAddEdgePort(const char* brName, const char* ethName);

/// Takes the mark of an edge port off a member of a bridge and saves that.
/// @errors  as for `BridgeAddEdgePort`
VORLIX_API bool BridgeDelEdgePort(const char* brName, const char* ethName);

/// True when a card is saved as an edge port of a bridge that exists. No tool is asked.
VORLIX_API bool BridgeIsEdgePort(const char* brName, const char* ethName);

/// Turns the spanning tree of a bridge on or off and saves its mode. That it is on or off is not
/// saved.
/// @errors  a mode that is not supported, a tool that cannot be run: Error
VORLIX_API bool BridgeControl(const char* brName, const STPInfo* stp);

/// Tells the saved spanning-tree mode of a bridge that exists.
///
/// @param stp  `mode` is written; `enable` and the rest are left as they are
VORLIX_API bool BridgeGetStpInfo(const char* brName, STPInfo* stp);

/// Saves the ports of a bridge that exists.
///
/// @param num  below 0 empties the saved list
/// @return false for 0 ports, otherwise the result of the saving
VORLIX_API bool BridgeUpdatePortListByConfig(const char* brName, const char** portList, int num);

/// Saves the identification of a bridge that exists.
VORLIX_API bool BridgeUpdateBrIDByConfig(const char* brName);

// ==== Interface list and MTU ====

/// Sets the MTU of a card or bond in the kernel and then saves it. A card whose driver refuses it
/// goes down and up for a second try, so the default card and its route are set again afterwards.
///
/// A name that holds "bond" goes to `SetMtubyBondName`, and what was asked for is saved: above 7200
/// that is not what the bond has, and for a bond that does not run, or a name such as "bond0.5",
/// the saving is all that is done.
///
/// @param mtu  negative: Warn, and 1500 is set; 0 is not saved
/// @return result of the kernel
VORLIX_API bool NetSetMtubyName(const char* name, const int mtu);

/// Lists the interfaces of the device with medium, type and speed.
///
/// @param list  `*num` records, all cleared first
/// @param num   capacity on entry, below 1 counts as none; number of records on return
/// @errors  a card whose driver cannot be asked: Warn; a kind that is not known: Error; both stay
///          in the list
VORLIX_API bool NetGetAllInterface(NetInterfaceInfo* list, int32_t* num);

/// Tells the medium of a bond or bridge: fibre when one of its first 16 members is fibre.
///
/// @param isBr  a bridge, otherwise a bond
/// @return 2 for fibre, 0 for everything else
/// @errors  NULL, an empty name: silent; members that cannot be read, a member whose driver cannot
///          be asked: Error
VORLIX_API int NetGetBondOrBrCardTransmedia(const char* ifname, bool isBr);

// ==== Reachability probes ====

/// `Arp_Ckeck` for a card's own address: asks for it by broadcast and listens for 3 seconds.
///
/// @return -1 when the check could not be run; otherwise 0, or a sum of 1 (the card's hardware
///         address is used with another address) and 2 (its address is used by another card)
/// @errors  NULL: silent; no address, no hardware address: Error
VORLIX_API int NetArpCheck(const char* name);

/// `Ping_CheckAlive` from a card with its address.
///
/// @param name     NULL, and a card without address: whichever way the kernel picks
/// @param ip       host, dotted text
/// @param timeout  seconds
/// @return true when the host answered
/// @errors  a NULL `ip`: silent; no address: Error, and the host is asked all the same
VORLIX_API bool NetPingCheck(const char* name, const char* ip, int timeout);

// ==== Neighbours ====

/// `Other_GetIPByMac`.
///
/// @param mac  17 characters in lower case
/// @param ip   16 bytes
VORLIX_API bool GetIPByMacFromARP(const char* mac, char* ip);

/// `Other_GetMacByIP`.
///
/// @param ip   dotted text
/// @param mac  18 bytes
VORLIX_API bool GetMacByIPFromARP(const char* ip, char* mac);

// ==== Traffic shaping ====
//
// What is applied is told only by the shell runner: a limit that `tc` refuses is applied and saved
// like any other. The saved limits are not put back at a start. Callers keep apart.

/// Sets limits on a card that exists, in the order of the records, and saves each behind those that
/// are saved already. A limit that cannot be applied is not saved, and the next one follows.
///
/// On the card of the process's first limit all other traffic shares that limit's class. Behind 999
/// limits of a process `tc` refuses the class numbers, which nobody sees.
///
/// @param tc   `num` records; `flags` 0 is a send limit, any other a receive limit, which fails and
///             leaves the card with a root
/// @param num  below 1: nothing is done
/// @return true when all were applied, whether or not they could be saved
/// @errors a limit that was not applied: Error
VORLIX_API bool TrafCtrlSetBand(const char* name, const NetTc* tc, int num);

/// Lists the saved limits of a card that exists, as `TC_GetFromConfig`.
///
/// @param tc   `*num` records
/// @param num  capacity on entry, number of limits on return; unchanged on failure
VORLIX_API bool TrafCtrlGetBand(const char* name, NetTc* tc, int* num);

/// Removes the limits of one peer of a card that exists, or all limits for the exact text
/// "0.0.0.0".
///
/// One peer's are removed by building the card's set again without them: the others are unshaped
/// meanwhile, get new class numbers, and are saved again as far as they could be applied. At most
/// 32 of them survive that. A card without a file gets 32 records without an address in a new one,
/// which `TrafCtrlGetBand` does not list.
///
/// @return true for every card that exists
/// @errors a limit that was not applied: Error
VORLIX_API bool TrafCtrlUnSetBand(const char* name, const char* ipAddr);

// ==== Port filtering ====
//
// The exact text "0.0.0.0" stands for all addresses. Any other with a dot in it is an IPv4 address,
// everything else an IPv6 address.

/// Frees a port of one address. For all addresses every port is freed: the chain is flushed.
VORLIX_API bool PortCtrlEnablePort(const char* ipAddr, int port);

/// Blocks a port of one address, or of each address that the listed interfaces have now, save those
/// of "eth16". An address that comes later is not blocked.
///
/// @return for one address whether the rules could be run; for all of them true, once the
///         interfaces could be listed
/// @errors no list, an interface without an address of one of the families: Error
VORLIX_API bool PortCtrlDisablePort(const char* ipAddr, int port);

// ==== Switch and PoE ====
//
// A switch is an interface for which `isSwitchByName` gives 1; any other name is refused with an
// Error. Nothing is saved here.

/// Finds the port behind which a hardware address was seen.
///
/// @param mac   six hexadecimal bytes with colons between them; bytes that are missing count as 0
/// @param port  counted from 0; -1 when the switch does not know the address
/// @return true also when the switch does not know the address
/// @errors as `Switch_GetPortBymac`
VORLIX_API bool GetSwitchPortByMac(const char* name, const char* mac, int* port);

/// Tells the number of ports. The driver is asked once for the same switch.
VORLIX_API bool GetSwitchPortNum(const char* name, int* num);

/// Tells which ports have a link: bit n for port n.
VORLIX_API bool GetSwitchMask(const char* name, int* mask);

/// Lists the ports with their link and the hardware address behind each. Every port listed is
/// enabled on the way.
///
/// @param status  `*num` records, all cleared first. `ip` is always "0.0.0.0" and `ipType` 4; `mac`
///                is empty for a port without link or with no address to tell
/// @param num     capacity on entry, below 1 counts as none; number of records on return
/// @return true also when the driver told of no port
/// @errors more ports than records: Warn; a port whose address cannot be read, or is all zeros or
///         all ones: Error, and the rest follow
VORLIX_API bool GetSwitchStatus(const char* name, SwitchPortStatus* status, int* num);

/// `PoE_GetPowerInfo`.
VORLIX_API bool GetPoEPowerInfo(PoeInfo_t* poe_info);

/// `PoE_SetPowerOn`.
VORLIX_API bool SetPoEPowerOn(uint32_t portmask);

/// `PoE_SetPowerOff`.
VORLIX_API bool SetPoEPowerOff(uint32_t portmask);

/// `PoE_SetTotalPower`.
VORLIX_API bool SetPoETotalPower(uint32_t power);

#ifdef __cplusplus
}  // extern "C"

namespace vorlix {

/// What both generations of the public API make of an answer.
inline int32_t Result(bool done)
{
    return done ? 0 : -1;
}

constexpr char kNoGateway[] = "0.0.0.0";  // of a route that leads to a net directly

}  // namespace vorlix
#endif
