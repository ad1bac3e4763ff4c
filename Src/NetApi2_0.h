/* SPDX-FileCopyrightText: 2026 the Vorlix network layer authors */
/* SPDX-License-Identifier: MIT */

#ifndef NETAPI2_0_H
#define NETAPI2_0_H

/// Version 2 of the public API: plain functions over the common operations.
///
/// Contents:
///   Identity: version, capabilities, features that are gone
///   The first card: IPv4 address and gateway of "eth0"
///   A named card: IPv4 address, gateway, hardware address, MTU
///   IPv6: addresses and gateway of a named card
///   DNS: the resolvers, which belong to no card
///   Probes: link, address conflict, ping
///   Devices: names and records of the cards, counters
///   Routes: default card, routes by card and by record
///   Bonds: building and ending a bond, modes by their old numbers
///   Bridges: building and ending a bridge, its cards, edge ports
///   Switch: ports of the switch chip
///   PoE: power over Ethernet
///   Static ARP: fixed entries of the neighbour table
///   Ports and bandwidth: port filter, limits of bandwidth
///   DHCP: configuration of the DHCP server
///
/// Results. Unless a function says otherwise it returns 0 for success and -1 for failure. Where a
/// failure has changed what a pointer leads to, the function says what stands there. NULL for a
/// needed pointer fails, in most functions in silence. The API logs one Error for a failure of the
/// operation below it, behind that operation's own lines; functions that say "logs nothing" leave
/// it at the latter.
///
/// Texts. The caller owns every buffer. An IPv4 address is dotted text in 16 bytes, an IPv6 address
/// takes 46 bytes, a hardware address is six hexadecimal bytes with colons in 18 bytes, an
/// interface name takes 16 bytes; all end in NUL. Address texts, names that begin with "br", and
/// what stands behind a ":" in any name end in commands for the shell as they stand, so the caller
/// vouches for them: the test whether a card exists looks at neither.
///
/// Rights. The kernel asks for CAP_NET_ADMIN where it is changed, and for CAP_NET_RAW in the
/// probes; what is saved needs the right to write in /mnt/mtd/Config.
///
/// Threads. The functions may be entered from several threads, and beside callers of version 3.
/// Nothing is kept here between calls. Changes of one bond or bridge, of the limits of bandwidth,
/// and of the address and gateway of eth0, whose backup memory has no lock, are not atomic; callers
/// keep them apart. What the process owes the library stands at the head of Types.h.

#include "Types.h"

#include <netinet/in.h>

#ifdef __cplusplus
extern "C" {
#endif

// ==== Identity ====

/// Tells the version of this API: the constant 6.
/// @return `QV_API_VERSION_RET_SUCCESS`, or `QV_API_VERSION_RET_ERROR` for NULL, with an Error
VORLIX_API QV_API_VERSION_RET_E LibvorlixGetVersion(uint32_t* p32Version);

/// Counts the device's network cards: interfaces with "eth" in their name, without names of an
/// alias, which hold ":", and without the switch interface.
///
/// @param pNetCaps  `cardNum` is written, `Reverse` is left as it is
/// @source  /proc/net/dev
VORLIX_API int32_t NetGetCaps(NetCaps* pNetCaps);

/// Not supported any more.
/// @return always -1, with an Error
VORLIX_API int32_t NetSetDDNSConfig(NET_DDNS_CONFIG* pConfig);

/// Not supported any more.
/// @return always -1, with an Error
VORLIX_API int32_t NetGetDDNSConfig(NET_DDNS_CONFIG* pConfig);

/// Not supported any more.
/// @return 0 all the same, with an Error; -1 for NULL
VORLIX_API int32_t NetSetDNSDomain(const char* pDomain);

/// Not supported any more.
/// @return 0 all the same, with an Error; -1 for NULL
VORLIX_API int32_t NetSetDNSHostName(const char* pHostName);

/// Not supported any more.
/// @return always -1, with an Error
VORLIX_API int32_t NetSetUbootIP(const char* pHostIP, const char* pNetmask);

/// Not supported any more.
/// @return always -1, with an Error
VORLIX_API int32_t NetSetUbootGateway(const char* pGageway);

// ==== The first card ====
//
// "eth0", whatever the default card is.

/// `NetSetHostIPEx` of "eth0".
VORLIX_API int32_t NetSetHostIP(const char* pHostIp, const char* pNetMask);

/// `NetSetGatewayEx` of "eth0".
VORLIX_API int32_t NetSetGateway(const char* pGateway);

/// `NetGetHostIPEx` of "eth0".
VORLIX_API int32_t NetGetHostIP(char* pHostIp, const int32_t iHLen, char* pNetMask,
                                const int32_t iNLen);

/// `NetGetGatewayEx` of "eth0".
VORLIX_API int32_t NetGetGateway(char* pGateway, const int32_t iGLen);

// ==== A named card ====
//
// A buffer shorter than needed gives -1 in silence, before the card is looked at.

/// Sets address and mask: in the kernel, then in the setting file, and for eth0 in the backup
/// memory.
///
/// @param pHostIp   dotted text; "0.0.0.0" takes the address away
/// @param pNetmask  same form; "0.0.0.0" for both leaves the setting file as it is, and zeroes the
///                  backup memory
/// @return 0, or -1 when the kernel refuses, with nothing saved; it has the new address when it
///         refuses the mask alone. What becomes of file and backup memory is not told
VORLIX_API int32_t NetSetHostIPEx(const char* pEthName, const char* pHostIp, const char* pNetmask);

/// Saves the gateway. No route is changed: `NetSetDefaultEth` applies it.
///
/// @param pGateway  dotted text; "0.0.0.0" leaves the setting file as it is, with success, and
///                  zeroes eth0's backup memory
/// @return 0, or -1 when the file could not be written; the backup memory is written all the same
VORLIX_API int32_t NetSetGatewayEx(const char* pEthName, const char* pGateway);

/// Tells the configured address and mask: saved, else the kernel's, else from the backup memory,
/// which is then saved.
///
/// @param iHLen  bytes of `pHostIp`, at least 16
/// @param iNLen  bytes of `pNetmask`, at least 16
/// @return 0, or -1, which may leave what one of the sources gave: an address without its mask, or
///         saved texts that are none
VORLIX_API int32_t NetGetHostIPEx(const char* pEthName, char* pHostIp, const int32_t iHLen,
                                  char* pNetmask, const int32_t iNLen);

/// Tells the saved gateway, else the one in the backup memory, which is then saved. The kernel is
/// not asked.
///
/// @param iGLen  bytes of `pGateway`, at least 16
/// @return 0, or -1, which may leave a saved text that is no address
VORLIX_API int32_t NetGetGatewayEx(const char* pEthName, char* pGateway, const int32_t iGLen);

/// Tells the hardware address.
///
/// @param iEthMacLen  bytes of `pEthMac`, at least 18
VORLIX_API int32_t NetGetMAC(const char* pEthName, char* pEthMac, const int32_t iEthMacLen);

/// Sets the hardware address, which is kept nowhere. The card goes down and up for it, and the
/// default route is set again.
VORLIX_API int32_t NetSetMAC(const char* pEthName, const char* pEthMac);

/// Sets the MTU in the kernel and then saves it. A card whose driver refuses it goes down and up
/// for a second try; a bond goes down and up with its members. The default route is set again. A
/// bond that does not run, and a name such as "bond0.5", which counts as one, are only saved for.
///
/// @param mtu  bytes; a negative one sets and saves 1500, 0 is not saved. A bond gets 1500 for more
///             than 7200, while the number that was asked for is saved
VORLIX_API int32_t NetSetMTU(const char* pEthName, const int32_t mtu);

/// Tells the MTU in bytes: the kernel's, else the saved one.
/// @return 0, or -1, which may leave a saved number that is no MTU
VORLIX_API int32_t NetGetMTU(const char* pEthName, int32_t* mtu);

/// Tells the hardware address of another machine of the network.
///
/// @param pIp   dotted text of an address that the kernel has in its neighbour table
/// @param pMac  18 bytes
/// @return 0, or -1, which leaves `pMac` zeroed when the table has no such neighbour
/// @source  /proc/net/arp
VORLIX_API int32_t NetWorkGetMac(const char* pIp, char* pMac);

// ==== IPv6 ====
//
// Prefix lengths are decimal text, 0 to 128.

/// Replaces the address of a card: in the kernel, then in the setting file. An empty address takes
/// it away, and "0:0:0::0" and "64" are saved. An address that the card has already with this very
/// prefix text is left alone, and so is the file.
///
/// @param pRefixlen  one without a number in it counts as 0; one that does not begin with a digit
///                   is set and not saved
/// @return 0, or -1, which may leave the card without an address, with the old one still saved
VORLIX_API int32_t NetSetHostIPEx6(const char* pEthName, const char* pHostIp,
                                   const char* pRefixlen);

/// Tells address and prefix length: the kernel's, else the saved ones.
///
/// @param iHLen  bytes of `pHostIP`; an address of the kernel that does not fit is told as an empty
///               text, with success
/// @param iNLen  bytes of `pNetmask`, which takes the prefix length
/// @return 0, or -1, which may leave saved texts that are none, or one without the other
VORLIX_API int32_t NetGetHostIPEx6(const char* pEthName, char* pHostIP, const int32_t iHLen,
                                   char* pNetmask, const int32_t iNLen);

/// Saves the gateway. No route is changed.
VORLIX_API int32_t NetSetGatewayEx6(const char* pEthName, const char* pGateway);

/// Tells the saved gateway. The kernel is not asked.
///
/// @param iGLen  bytes of `pGateway`
/// @return 0, or -1, which may leave a saved text that is no address
VORLIX_API int32_t NetGetGatewayEx6(const char* pEthName, char* pGateway, const int32_t iGLen);

/// Takes an address off a card, and what is saved of it. A card that has no address, or link-local
/// ones alone, gives 0 and keeps what it has; what is saved goes.
///
/// @param hostIP  "address" or "address/prefix"; the latter must be writable, since the text is cut
///                at its "/", also when -1 follows
VORLIX_API int32_t NetIfDelIpv6Addr(const char* pEthName, const char* hostIP);

/// Tells the link-local address: the kernel's as "address/prefix", else the one that follows from
/// the hardware address, without a prefix.
///
/// @param length  bytes of `linklocal`
VORLIX_API int32_t getScopeLinkAddr6(const char* Ethname, char* linklocal, int32_t length);

/// Classifies an IPv6 address by its first bytes. The loopback address is node-local, the
/// unspecified one link-local; `VORLIX_IPV6_ADDR_SCOPE_ORGLOCAL` is never the answer.
///
/// @param addr  network byte order; NULL counts as global
VORLIX_API IPV6_ADDR_SCOPE_TYPE_E In6AddrType(struct in6_addr* addr);

// ==== DNS ====

/// Tells the saved IPv4 resolvers.
///
/// @param iPlen  bytes of `pprimary`, at least 16
/// @param iSlen  bytes of `psecondary`, at least 16
/// @return 0, or -1, which may have filled `pprimary`
VORLIX_API int32_t NetGetDNSAddress(char* pprimary, const int32_t iPlen, char* psecondary,
                                    const int32_t iSlen);

/// Saves the IPv4 resolvers.
VORLIX_API int32_t NetSetDNSAddress(const char* pPrimary, const char* pSecondary);

/// Tells the saved IPv6 resolvers.
///
/// @param iPlen  bytes of `pPrimary`
/// @param iSlen  bytes of `pSecondary`; both addresses must fit the smaller of the two
/// @return 0, or -1, which may have filled `pPrimary`
VORLIX_API int32_t NetGetDNSAddressip6(char* pPrimary, const int32_t iPlen, char* pSecondary,
                                       const int32_t iSlen);

/// Saves the IPv6 resolvers.
VORLIX_API int32_t NetSetDNSAddressip6(const char* pPrimary, const char* pSecondary);

// ==== Probes ====

/// Tells whether a card has a link; for a member of a bond or bridge, whether its master has.
/// @return 0 with a link, -1 without; logs nothing
VORLIX_API int32_t mii_diag(char* ethname);

/// Tells whether a card itself has a link.
/// @return 0 with a link, -1 without; logs nothing
VORLIX_API int32_t NetGetLinkStatus(const char* ethname);

/// Asks the network whether another machine uses the card's configured address. Listens for 3
/// seconds, whatever comes, and needs the right to open packet sockets.
///
/// @return 1 when there is a conflict or the question could not be asked, 0 when there is none, -1
///         for NULL; logs nothing
VORLIX_API int32_t ArpCheck(char* pEthName);

/// Pings another machine, for up to 3 seconds, and times that. A card without a configured address
/// asks over whichever card leads there. Needs the right to open raw sockets.
///
/// @param pstPing  `acFrom` names the card, `acTo` the other machine; `s32Time` gets the elapsed
///                 time in microseconds, also when a clock that was put back makes it negative and
///                 the result -1
VORLIX_API int32_t NetWorkPing(PING_S* pstPing);

/// Pings another machine over whichever card leads there, for up to 2 seconds. Needs the right to
/// open raw sockets.
/// @return 0 when it answers, -2 when it does not, -1 for NULL; logs nothing
VORLIX_API int32_t network_alive(const char* pHostIP);

// ==== Devices ====
//
// Names and records come in the order of /proc/net/dev. At most 32 interfaces are seen.

/// Joins the names of all interfaces, each with "::" behind it.
///
/// @param len_EthName  bytes of `pEthName`, at least one more than the text has. When it is less,
///                     the buffer holds what fitted
/// @param iEthnum      not NULL, and never written
/// @return 0 without an interface too, with nothing written, not even an end of text
VORLIX_API int32_t NetGetEthName(char* pEthName, int32_t len_EthName, int32_t* iEthnum);

/// Lists the names of all interfaces but "eth16".
///
/// @param pNetDev  `iMax` records, of which only `name` is written
/// @param iMax     above 32: Warn, and 32 counts
/// @return the number of names, or -1
VORLIX_API int32_t NetGetDeviceName(NetDevice* pNetDev, int32_t iMax);

/// Lists all interfaces with medium, usage and speeds. Speeds have 16 bits: 65535 when the driver
/// knows none, and what is above is cut, so that 100 Gbit/s read 34464.
///
/// @param pNetDev  `iMax` records, all zeroed first, also those behind the 32nd
/// @param iMax     above 32: Warn, and 32 counts
/// @return the number of records; 0 for a failure
VORLIX_API int32_t NetGetAllEthDevice(NetDevice* pNetDev, int32_t iMax);

/// Lists as `NetGetAllEthDevice` does, but leaves out "eth16".
VORLIX_API int32_t NetGetEthDevice(NetDevice* pNetDev, int32_t iMax);

/// Tells how many bytes an interface has received and sent.
VORLIX_API int32_t NetGetStats(const char* pEthname, struct NetStats* stat);

/// Tells what "eth0" is for.
/// @return `En_Net_Multiple`, `En_Net_Bridge` or `En_Net_Bond`; `En_Net_Invalid` for a failure and
///         for any other use, that as switch interface included, with an Error
VORLIX_API NetWorkMode_E NetWorkGetMode(void);

// ==== Routes ====

/// Tells the default card: the one of the default route, else the saved one, whose default route is
/// put back then.
///
/// @param pEthName  16 bytes
/// @return 0 when a name was obtained, whatever became of the route; -1 without one, and, with the
///         saved name in `pEthName`, when no gateway is saved for it
VORLIX_API int32_t NetGetDefaultEth(char* pEthName);

/// Makes a card the default card, and moves the default route to its saved gateway.
/// @return 0; -1 for one that does not exist or has no saved gateway, with the route as it was; -1
///         also when the kernel refuses the new route: no default route is left then
VORLIX_API int32_t NetSetDefaultEth(const char* pEthName);

/// Adds (`status` 0) or deletes (any other) the route to the network that a card's configured
/// address lies in. The card is neither brought up nor taken down.
VORLIX_API int32_t NetWorkSetEthStatus(const char* EthName_p, int32_t status);

/// Adds or deletes the route to the network that a card's configured address lies in.
///
/// @param cmd  `ADD_ROUTE` adds, any other value deletes
VORLIX_API int32_t NetRouteAddDelete(NetRouteOperate cmd, const char* pEthName);

/// Latches, for the life of the process, that `NetSetDefaultEth` only saves and leaves the default
/// route alone; both styles do.
/// @return always 0
VORLIX_API int32_t NetRouteSetStyle(NetRouteStyleType cmd);

/// Not supported any more.
/// @return always -1, with an Error
VORLIX_API int32_t NetRouteGetText(const char* pEthName, char* buffer, int32_t* max_len);

/// Adds the route of a record, over a card that exists; logs nothing.
VORLIX_API int32_t NetAddRoute(NetRouteTableInfo* routeCmd);

/// Deletes the route of a record, over a card that exists; logs nothing.
VORLIX_API int32_t NetDelRoute(NetRouteTableInfo* routeCmd);

/// Lists one family's routes: over IPv4 those of the main table, over IPv6 those of all tables,
/// with the rows of the cards' own addresses. Logs nothing.
///
/// @param routes  `*num` records; `type` of the first tells the family
/// @param num     capacity on entry, not 0; number of routes on return
VORLIX_API int32_t NetGetAllRoute(NetRouteTableInfo* routes, int32_t* num);

// ==== Bonds ====
//
// Modes have numbers of their own here, from 1: 1 active-backup, 2 balance-rr, 3 balance-alb,
// 4 balance-tlb, 5 802.3ad, 6 balance-xor, 7 broadcast. The forms without "Ex" work on "bond0".

/// `NetWorkBondEx` of "bond0".
VORLIX_API int32_t NetWorkBond(const char** dev, int32_t num, int32_t mode);

/// `NetWorkUnBondEx` of "bond0".
VORLIX_API int32_t NetWorkUnBond(void);

/// `NetWorkGetBondModeEx` of "bond0".
VORLIX_API int32_t NetWorkGetBondMode(int32_t* mode, char* default_dev);

/// `NetWorkGetActiveSlaveEx` of "bond0", into a buffer of 16 bytes that all callers share.
/// @return the same pointer each time, or NULL
VORLIX_API char* NetWorkGetActiveSlave(void);

/// Builds a bond from cards and saves it. When it runs already in mode 1, the first card becomes
/// its primary instead.
///
/// @param bonddev  holds "bond" and no "."
/// @param dev      `num` names; the first is read even when there are none. A NULL among them
///                 gives -1 before anything is done
/// @param mode     1 to 7, as above
/// @errors  another mode: Error
VORLIX_API int32_t NetWorkBondEx(const char* bonddev, const char** dev, int32_t num, int32_t mode);

/// Ends a bond, saves that, and gives its cards their own settings back.
VORLIX_API int32_t NetWorkUnBondEx(const char* bonddev);

/// Tells the saved mode of a bond, and the default card.
///
/// @param mode         a number as above; 0, with success, for a bond that does not run or has no
///                     saved mode; -1 leaves it as it was
/// @param default_dev  16 bytes, filled as by `NetGetDefaultEth`, whatever the result is
VORLIX_API int32_t NetWorkGetBondModeEx(const char* bonddev, int32_t* mode, char* default_dev);

/// Tells the active member of a bond.
///
/// @param buf  `len` bytes; at most `len` - 2 characters, and the name may end in a newline
/// @return `buf`, or NULL
VORLIX_API char* NetWorkGetActiveSlaveEx(const char* bonddev, char* buf, int32_t len);

/// Lists the members of a bond; logs nothing.
///
/// @param slaves  `*num` pointers to 16 bytes each; a NULL among them gives -1
/// @param num     capacity on entry, number of members on return; -1 leaves 0 there when the name
///                holds a "."
VORLIX_API int32_t NetGetBondSlaves(const char* bondDev, char** slaves, int32_t* num);

/// Tells whether a card is saved as a member of a bond, and of which of "bond0" to "bond3".
///
/// @param masterName  `len` bytes, at least 1, or NULL; empty when none of the four has the card
/// @return 1 for a member, otherwise 0
/// @errors  a card that is no member: Error
VORLIX_API int32_t NetIsBondingSlave(const char* ethName, char* masterName, int32_t len);

// ==== Bridges ====

/// Builds a bridge from cards and saves it.
///
/// @param bridge  "br" and a digit, and whatever follows
/// @param dev     `num` names; the first is read even when there are none. A NULL among them gives
///                -1 before anything is done
VORLIX_API int32_t CreateNetWorkBridge(const char* bridge, const char** dev, int32_t num);

/// Ends a bridge, saves that, and gives its cards their own settings back.
VORLIX_API int32_t DestoryNetWorkBridge(const char* bridge);

/// Tells the cards of a bridge as a bit mask: bit n for "eth<n>". Only one digit of a name is read,
/// so eth12 has the bit of eth1.
///
/// @return the mask; 0 for NULL, an empty bridge and one that cannot be read, the last with an
///         Error
/// @errors  a member that is no "eth" card: Warn, and it has no bit
/// @source  the directory /sys/class/net/<bridge>/brif
VORLIX_API uint32_t getBridgeDevicesInfo(const char* bridge);

/// Tells the masks of the bridges "br0", "br1" and so on, up to the first that is 0.
///
/// @param bridge  `num` masks, as `getBridgeDevicesInfo` tells them; that first 0 is stored too
/// @return the number of masks before the first 0, or -1 for NULL
VORLIX_API int32_t NetWorkGetBridgeInfo(uint32_t* bridge, int32_t num);

/// Tells whether a card is saved as an edge port of "br0": 0 when it is.
/// @errors  it is not: Error
VORLIX_API int32_t NetIsEdgePort(const char* dev);

/// Takes the mark of an edge port off a member of "br0".
VORLIX_API int32_t NetUnsetEdgePort(const char* dev);

/// Marks a member of "br0" as a port that leads to no other bridge.
VORLIX_API int32_t NetSetEdgePort(const char* dev);

// ==== Switch ====

/// Tells the name of the switch interface.
///
/// @param name  16 bytes, zeroed by the caller: the first answer of a process leaves the last alone
VORLIX_API int32_t SwitchGetName(char* name);

/// Tells the name of the switch interface; logs nothing.
///
/// @param len  bytes of `name`, at least 1; a longer name is cut
VORLIX_API int32_t SwitchGetNameEx(char* name, int len);

/// Counts the ports of the device's switch.
/// @return the number of ports, or -1
VORLIX_API int32_t SwitchGetPortNum(void);

/// Tells link and neighbour of each port of the device's switch. The caller zeroes the records
/// first, since how many were filled is not told.
///
/// @param port_info  `len` records, of which at most 16 are filled
VORLIX_API int32_t SwitchGetPortStatus(struct SwitchPortInfo* port_info, int32_t len);

/// Tells which ports of a switch have a link.
///
/// @param portstatus  `*portnum` bytes, 1 for a port with a link, 0 for any other
/// @param portnum     capacity on entry, which must be above the number of ports; that number on
///                    return. Otherwise it stays, with a Warn
/// @return 0, or -1, which leaves `portstatus` zeroed; when the links alone could not be read,
///         `portnum` may hold the number of ports
VORLIX_API int32_t NetGetSwitchLinkStatus(const char* ethname, unsigned char* portstatus,
                                          int32_t* portnum);

// ==== PoE ====
//
// A mask has one bit for each port. Units of power are the driver's.

/// Reads the state of all ports.
/// @return 0, or -1, which leaves the record zeroed when the device was there and did not answer
/// @source  /dev/qv_poe
VORLIX_API int32_t PoEGetPowerInfo(PoeInfo_t* pPoe_info);

/// Turns the power of ports on.
VORLIX_API int32_t PoESetPowerOn(uint32_t portMask);

/// Turns the power of ports off.
VORLIX_API int32_t PoESetPowerOff(uint32_t portMask);

/// Sets the power of all ports together.
VORLIX_API int32_t PoESetTotalPower(uint32_t power);

/// Does nothing.
/// @return always 0
VORLIX_API int32_t PoESetPortLinkFlagDown(int portIndex);

// ==== Static ARP ====

/// Adds a fixed entry to the neighbour table; logs nothing.
VORLIX_API int32_t NetAddStaticARPEntry(const NetARPEntry* arpInfo);

/// Deletes an entry of the neighbour table, found by `ip` and `dev`; logs nothing.
VORLIX_API int32_t NetDelStaticARPEntry(const NetARPEntry* arpInfo);

/// Lists the fixed entries of the neighbour table; logs nothing.
///
/// @param arpInfo  `*num` records
/// @param num      capacity on entry, above 0; number of entries on return
/// @return 0, or -1, which leaves the records zeroed when the table could not be read
/// @source  /proc/net/arp
VORLIX_API int32_t NetGetAllStaticARPEntry(NetARPEntry* arpInfo, int* num);

/// Lists the fixed entries of one address; otherwise as `NetGetAllStaticARPEntry`, but nothing is
/// zeroed.
VORLIX_API int32_t NetGetStaticARPInfoByIP(const char* ip, NetARPEntry* arpInfo, int* num);

// ==== Ports and bandwidth ====

/// Blocks a port of one of the device's addresses, or with "0.0.0.0" of each address that its
/// interfaces have now.
VORLIX_API int32_t NetDisableIpPort(const char* ipAddr, int32_t portNumber);

/// Frees a port of one address. With "0.0.0.0" every port of every address is freed.
VORLIX_API int32_t NetEnableIpPort(const char* ipAddr, int32_t portNumber);

/// Limits what is sent over a card to each of some addresses, and saves the limits. The next one
/// follows when one cannot be applied. What `tc` itself refuses counts as applied.
///
/// The first limit of a card, also one that fails by its `flags`, puts a root of its own in the
/// place of what shapes the card. The class of the first limit of the process takes all else that
/// its card sends as well. A process can set 999 limits: `tc` refuses the class numbers behind
/// them. Nothing is put back after a restart.
///
/// @param pTc  `num` limits; `ipAddr` is cut to 47 characters, `bandWidth` is in Mbit/s, `flags` is
///             0 (receive limits, any other value, fail), `prio` and `resv` play no part
/// @errors  no memory, which a negative `num` counts as: Error
VORLIX_API int32_t NetSetBandWidth(const char* pDev, const NetTc_2* pTc, int32_t num);

/// Lists the saved limits of a card.
///
/// @param pTc  `max` records; `prio` is set to 0, `resv` is left as it is
/// @return the number of limits, or -1
/// @errors  no memory, which a negative `max` counts as: Error
VORLIX_API int32_t NetGetBandWidth(const char* pDev, NetTc_2* pTc, int32_t max);

/// Takes the limit of an address away, or all limits of the card for "0.0.0.0". The other limits,
/// of which 32 survive, are set anew for that: they are gone meanwhile, and each uses up one of the
/// numbers that `NetSetBandWidth` tells of.
/// @return 0 for every card that exists
VORLIX_API int32_t NetUnSetBandWidth(const char* pDev, const char* ipAddr);

// ==== DHCP ====

/// Writes /mnt/mtd/Config/udhcpd.conf anew for a card whose address, mask and gateway are saved.
/// The server is neither started nor told.
///
/// @param pSwitchName    the card that the server listens on
/// @param pDhcpIPStart   first address to hand out
/// @param pDhcpIPEnd     last address to hand out
/// @param pDhcplease     length of a lease, in the server's form
/// @errors  NULL, nothing saved, a file that cannot be opened: Error, and a file from earlier stays
/// @threads  one writer at a time
VORLIX_API int32_t NetSetDhcpIPRange(const char* pSwitchName, const char* pDhcpIPStart,
                                     const char* pDhcpIPEnd, const char* pDhcplease);

#ifdef __cplusplus
}
#endif
#endif
