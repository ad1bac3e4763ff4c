/* SPDX-FileCopyrightText: 2026 the Vorlix network layer authors */
/* SPDX-License-Identifier: MIT */

/**
 * Version 3 of the library's interface: objects with tables of operations.
 *
 * An application gets an object from a factory at the end of this file and calls what lies in its
 * slots, the object itself first:
 *
 *     NetInterfaceDesc desc = { .name = "eth0" };
 *     NetInterface* card = NULL;
 *     if (createNetInterface(&desc, &card) == 0) card->up(card);
 *
 * Order and offsets of the slots are fixed; a slot that this release does not fill is NULL, and the
 * application tests it first. The tables are only read once they are made.
 *
 * Results: 0 is success and -1 failure, unless a slot says otherwise. What went wrong stands in the
 * log, on standard output. A NULL object gives -1, in silence unless a slot says otherwise, and so
 * does NULL for a text or a place that an operation needs. Where the places for results are not as
 * they were after a failure, the slot says what they hold. Texts are NUL-terminated; IPv4 addresses
 * and masks are dotted text in 16 bytes, hardware addresses "02:00:00:00:00:01" in 18.
 *
 * Rights: the kernel asks for CAP_NET_ADMIN where it is changed, and for CAP_NET_RAW in `arpCheck`
 * and `ping`; what is saved needs the right to write in /mnt/mtd/Config.
 *
 * Threads: any operation may be called from any thread. Changes of one bond or bridge, of the
 * traffic limits, of eth0's address and gateway, whose backup memory has no lock, and of one bridge
 * object's count are for the callers to keep apart. What reads or writes settings waits for other
 * threads and processes that have the same file. Some operations run outside tools and wait for
 * them. What the process owes the library meanwhile, and before, stands at the head of Types.h.
 *
 * Texts that end up in a tool's command line are not quoted: the caller vouches for addresses to
 * `setBandWidth`, `unsetBandWidth` and `ipPortCtrl`, for names that begin with "br", and for what
 * stands behind a ":" in any name. The test whether a card exists looks at neither.
 *
 * Clean C11 and C++17: nothing of the kernel is included. Where a 32-bit target differs, its sizes
 * and offsets stand behind those of a 64-bit one: pointers take 4 bytes there, and every slot and
 * record that holds pointers shrinks with them. Fields, their order and the number of slots are the
 * same. Big-endian targets are refused.
 */
#ifndef PAL_NET3_H
#define PAL_NET3_H

#include "Types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- records of interface objects; offsets in front of the fields as in Types.h ---- */

/** Which interface an object is for; size 136, alignment 8 (32 bits: size 128, alignment 4). */
typedef struct NetInterfaceDesc {
    /* 0 */ const char* name; /**< of an interface that exists, at most 15 characters; copied */
    /* 8, 4 */ int reserved[31];
} NetInterfaceDesc;

/** The wish for remote login by Telnet; size 64, alignment 1. */
__extension__ typedef struct TelnetInfo {
    /* 0.0 */ unsigned char enable : 1; /**< 1 on, 0 off */
    /* 1 */ char reserved[63];
} TelnetInfo;

/** Parameters of a bond; size 64, alignment 1. */
typedef struct QV_PAL_NetBondParams {
    /* 0 */ unsigned char lacp; /**< transmit hash policy, as the bonding driver numbers it */
    /* 1 */ char reserved[63];
} QV_PAL_NetBondParams;

/* clang-format off */

/** Encryption of a wireless network. */
typedef VORLIX_ENUM(WLanEncryption) {
    wlanEncryptionOff = 0,
    wlanEncryptionOn = 1,
    wlanEncryptionWEB64 = 2,
    wlanEncryptionWEB128 = 3,
    wlanEncryptionTKIP = 4,
    wlanEncryptionAES = 5
} WLanEncryption;

/* clang-format on */

/**
 * Settings of a wireless card, for slots that are empty; size 256, alignment 4. Behind a
 * bit-field's offset stands its first bit.
 */
__extension__ typedef struct WLanConfig {
    /* 0.0 */ int enable : 8;
    /* 1.0 */ int linkMode : 8;
    /* 2.0 */ WLanEncryption encryption : 8;
    /* 3 */ char ssid[36];
    /* 39.0 */ int keyType : 8;
    /* 40.0 */ int keyID : 8;
    /* 41.0 */ int keyFlag : 8;
    /* 42 */ char keys[128];
    /* 172 */ int reserved[21];
} WLanConfig;

/** A wireless network in reach, for a slot that is empty; size 124, alignment 4. */
__extension__ typedef struct WLanAccessPoint {
    /* 0 */ char ssid[36];
    /* 36.0 */ int linkMode : 8;
    /* 37.0 */ WLanEncryption encryption : 8;
    /* 40 */ int reserved[21];
} WLanAccessPoint;

/** Which IPv6 neighbours are asked for, for a slot that is empty; size 128, alignment 1. */
typedef struct QV_PAL_NetIPv6InfoFilter {
    /* 0 */ char ipAddr[40];
    /* 40 */ char reserved[88];
} QV_PAL_NetIPv6InfoFilter;

/** An IPv6 neighbour, for a slot that is empty; size 128, alignment 1. */
typedef struct QV_PAL_NetIPv6Info {
    /* 0 */ char ipAddr[40];
    /* 40 */ char ethName[16];
    /* 56 */ char macAddr[18];
    /* 74 */ char reserved[54];
} QV_PAL_NetIPv6Info;

/* ---- interface objects ---- */

/**
 * One network interface; size 1024, alignment 8 (32 bits: size 512, alignment 4).
 *
 * An object lives until the process ends, and all callers of one name share it. It does not follow
 * the interface: when the card is gone its operations fail, and they work again when a card of that
 * name is back.
 */
typedef struct NetInterface NetInterface;
struct NetInterface {
    /* 0 */ void* priv; /**< the library's own */

    /**
     * Formal: counts nothing.
     *
     * @return 1, or -1 for NULL
     */
    /* 8, 4 */ int (*addRef)(NetInterface* thiz);

    /**
     * Formal: frees nothing, and the object stays usable.
     *
     * @return 1, or -1 for NULL
     */
    /* 16, 8 */ int (*release)(NetInterface* thiz);

    /** Brings the interface up. Source: SIOCSIFFLAGS. */
    /* 24, 12 */ int (*up)(NetInterface* thiz);

    /** Takes the interface down. Source: SIOCSIFFLAGS. */
    /* 32, 16 */ int (*down)(NetInterface* thiz);

    /**
     * Sets address and mask: in the kernel, in the setting file and, for eth0, in the backup
     * memory. "0.0.0.0" takes the address away: with "0.0.0.0" for the mask too the file keeps what
     * it has, while the backup memory is zeroed. Each call is logged at Info.
     *
     * -1 when the kernel refuses, with nothing saved; where it refuses the mask alone, the card has
     * the new address. What becomes of file and backup memory is not told.
     */
    /* 40, 20 */ int (*setHostIP)(NetInterface* thiz, const char* hostIP, const char* netmask);

    /**
     * Saves the gateway in the setting file and, for eth0, in the backup memory. "0.0.0.0" leaves
     * the file as it is, with success, and zeroes the backup memory. No route changes:
     * `setDefaultNetInterface` applies the gateway. Each call is logged at Info.
     *
     * -1 when the file could not be written; the backup memory is written all the same.
     */
    /* 48, 24 */ int (*setGateway)(NetInterface* thiz, const char* gateway);

    /**
     * Tells the configured address and mask: from the setting file, else from the kernel, else from
     * the backup memory, which is then saved. `hlen` and `nlen` are the bytes of the two, 16 at
     * least, else -1. -1 may leave there what one of the sources gave: an address without its mask,
     * or saved texts that are none.
     */
    /* 56, 28 */ int (*getHostIP)(NetInterface* thiz, char* hostIP, const int hlen, char* netmask,
                                  const int nlen);

    /**
     * Tells the saved gateway, or else the one in the backup memory, which is then saved. `iGLen`
     * is the bytes of `gateway`, 16 at least, else -1. -1 may leave there a saved text that is no
     * address.
     */
    /* 64, 32 */ int (*getGateway)(NetInterface* thiz, char* gateway, const int iGLen);

    /**
     * Reads the counters. Source: /proc/net/dev, and the driver for the speed, which is 0 when it
     * tells none and else as `getLinkSpeed` says.
     */
    /* 72, 36 */ int (*getDataStat)(NetInterface* thiz, NetDataStat* state);

    /**
     * Tells whether the network was reset since the last question, and clears the mark. Of the
     * whole device; the interface plays no part. Source: the backup memory.
     *
     * @return 1 when it was, 0 when not, -1 for a NULL object
     */
    /* 80, 40 */ int (*configBeenReset)(NetInterface* thiz);

    /** Reads the hardware address. `iEthMacLen` is the bytes of `mac`, 18 at least, else -1. */
    /* 88, 44 */ int (*getMAC)(NetInterface* thiz, char* mac, const int iEthMacLen);

    /**
     * Sets the hardware address, which is saved nowhere. The interface goes down and up for it, and
     * the default route is set again.
     */
    /* 96, 48 */ int (*setMAC)(NetInterface* thiz, const char* mac);

    /**
     * Tells the device's two IPv4 DNS servers; the interface plays no part. `plen` and `slen` are
     * the bytes of the two, 16 at least, else -1. -1 may have filled `primary`.
     */
    /* 104, 52 */ int (*getDNSAddress)(NetInterface* thiz, char* primary, const int plen,
                                       char* secondary, const int slen);

    /** Sets the device's two IPv4 DNS servers; the interface plays no part. */
    /* 112, 56 */ int (*setDNSAddress)(NetInterface* thiz, const char* primary,
                                       const char* secondary);

    /** Empty. */
    /* 120, 60 */ int (*getWLanConfig)(NetInterface* thiz, WLanConfig* config);

    /** Empty. */
    /* 128, 64 */ int (*setWLanConfig)(NetInterface* thiz, const WLanConfig* config);

    /** Empty. */
    /* 136, 68 */ int (*scanWLanAccessPoint)(NetInterface* thiz, WLanAccessPoint* list, int* num);

    /**
     * Tells whether there is a link; a member of a bond or bridge is judged by its master.
     *
     * @return 0 with a link, -1 without one and for a NULL object
     */
    /* 144, 72 */ int (*miiDiag)(NetInterface* thiz);

    /**
     * Asks by ARP whether another station uses this card's configured address, and listens for
     * answers for 3 seconds, whatever comes. Needs the rights for a raw socket.
     *
     * @return 0 for none; otherwise a sum of 1 (one with its hardware address) and 2 (one with its
     *         IPv4 address); -1 at once when the question could not be asked
     */
    /* 152, 76 */ int (*arpCheck)(NetInterface* thiz);

    /**
     * Tells the MTU in bytes: the kernel's, else the saved one. -1 may leave in `size` a saved
     * number that is no MTU.
     */
    /* 160, 80 */ int (*getMTU)(NetInterface* thiz, int* size);

    /**
     * Sets the MTU in bytes, in the kernel and then in the setting file; below 0 sets and saves
     * 1500, and 0 is never saved. A card whose driver refuses it goes down and up for a second try.
     * The default route is set again, whatever came of it.
     *
     * A bond goes down and up with its members. Above 7200 it gets 1500, while the number that was
     * asked for is saved. For a bond that does not run, and for a name such as "bond0.5", which
     * counts as one, nothing but the saving is done, with success.
     *
     * -1 when the kernel refuses, with nothing saved.
     */
    /* 168, 84 */ int (*setMTU)(NetInterface* thiz, int size);

    /**
     * Lists the members of this bond. Fills `name` and `bond`, the saved mode or else 1, and zeroes
     * the rest.
     *
     * @param list  `*num` records
     * @param num   capacity on entry, 0 and more; number of members on return, or unchanged, with a
     *              Warn, when there are more and the first of them are listed
     */
    /* 176, 88 */ int (*getBondMembers)(NetInterface* thiz, NetInterfaceInfo* list, int* num);

    /**
     * Builds this bond from cards and saves it. A running active-backup bond takes the first card
     * as its primary instead; any other running bond is refused. When the cards cannot be joined
     * they get their own settings back.
     *
     * Runs tools and waits for them. What `ifenslave` refuses is not seen.
     *
     * @param listname  `number` names; the first is read even when there are none. A NULL among
     *                  them gives -1 before anything is done
     */
    /* 184, 92 */ int (*bond)(NetInterface* thiz, const char** listname, const int number,
                              NICBondMode mode);

    /** Ends this bond, saves that, and gives each member its own settings back. */
    /* 192, 96 */ int (*unbond)(NetInterface* thiz);

    /**
     * Adds an IPv4 route over this card and decides whether it leads through the card's gateway.
     *
     * Direct: the card has no address or no gateway; the destination lies in the card's own net; or
     * the card is one of ppp0 to ppp4. Through the gateway: everything else, and each net that is
     * wider than the card's, where the masks are compared as numbers of the host made of their
     * bytes as they lie in memory. Each call is logged at Info. -1 also when the route is there
     * already.
     *
     * @param address  destination; host bits are masked off. A text with "default" in it makes this
     *                 the card of the only default route, to its saved gateway
     * @param netmask  not looked at for "default", yet not NULL
     */
    /* 200, 100 */ int (*addRoute)(NetInterface* thiz, const char* address, const char* netmask);

    /**
     * Deletes an IPv4 route of this card. Each call is logged at Info.
     *
     * @param address  destination; host bits are masked off. A text with "default" in it means the
     *                 card's default routes; NULL, with `netmask` NULL, all its other routes
     * @param netmask  not looked at for "default"
     */
    /* 208, 104 */ int (*delRoute)(NetInterface* thiz, const char* address, const char* netmask);

    /**
     * Replaces the IPv6 address, in the kernel and then in its setting file. An address that the
     * card has already with this very prefix text is left alone, and so is the file. An empty
     * `hostip` takes the address away, and "0:0:0::0" and "64" are saved. -1 may leave the card
     * without an address, with the old one still saved.
     *
     * @param prefixLen  decimal text, 0 to 128. One without a number in it counts as 0; one that
     *                   does not begin with a digit is set and not saved
     */
    /* 216, 108 */ int (*setHostIpv6)(NetInterface* thiz, const char* hostip,
                                      const char* prefixLen);

    /**
     * Tells the IPv6 address and its prefix length, the kernel's or else the saved one. `hostLen`
     * and `maskLen` are the bytes of the two; 46 and 4 hold every answer. An address of the kernel
     * that does not fit is told as an empty text, with success. -1 may leave there saved texts that
     * are none, or one without the other.
     */
    /* 224, 112 */ int (*getHostIpv6)(NetInterface* thiz, char* host, int hostLen, char* netmask,
                                      int maskLen);

    /** Saves the IPv6 gateway. No route changes. */
    /* 232, 116 */ int (*setGatewayIpv6)(NetInterface* thiz, const char* gateway);

    /**
     * Tells the saved IPv6 gateway. `len` is the bytes of `gateway`; 46 hold every answer. -1 may
     * leave there a saved text that is no address.
     */
    /* 240, 120 */ int (*getGatewayIpv6)(NetInterface* thiz, char* gateway, int len);

    /** Sets the device's two IPv6 DNS servers; the interface plays no part. */
    /* 248, 124 */ int (*setDNSAddressIpv6)(NetInterface* thiz, const char* primary,
                                            const char* secondary);

    /**
     * Tells the device's two IPv6 DNS servers; the interface plays no part. The smaller of `plen`
     * and `slen` counts as the bytes of both; 46 hold every address. -1 may have filled `primary`.
     */
    /* 256, 128 */ int (*getDNSAddressIpv6)(NetInterface* thiz, char* primary, const int plen,
                                            char* secondary, const int slen);

    /**
     * Tells the link-local address: the kernel's, as address/prefix, or else the one made from the
     * hardware address, with no prefix. `len` is the bytes of `linklocal`.
     */
    /* 264, 132 */ int (*getLinkLocalAddressIpv6)(NetInterface* thiz, char* linklocal, int len);

    /**
     * Asks an IPv4 station for an echo over this card, and waits up to `timeout` seconds. A card
     * without a configured address asks over whichever card leads there, with an Error. `IpType` is
     * 0; any other is refused with an Error. Needs the rights for a raw socket.
     */
    /* 272, 136 */ int (*ping)(NetInterface* thiz, const char* dstHost, int timeout, int IpType);

    /**
     * Tells the switch port behind which a station is. `ethMacLen` is 18 at least, else -1. Source:
     * the switch driver.
     *
     * @return the port, counted from 0; -1 when the switch does not know the station, and with an
     *         Error on failure
     */
    /* 280, 140 */ int (*getSwitchPort)(NetInterface* thiz, const char* ethMac,
                                        const int ethMacLen);

    /** Tells which switch ports have a link: bit n is port n. Source: the switch driver. */
    /* 288, 144 */ int (*getSwitchLinkMask)(NetInterface* thiz, int* linkMask);

    /**
     * Writes "on" (`enable` 1) or "off" to /proc/stp_ctrl, which stays open from the first call
     * on. Of the whole device: neither the interface nor a bridge plays a part, nor does `mode`.
     * NULL for either: Error. Two first calls at the same time may each open the file.
     */
    /* 296, 148 */ int (*setSTP)(NetInterface* thiz, STPInfo* stpInfo);

    /**
     * Adds an IPv6 route over this card. One that is there already is a success. A new one goes to
     * the kernel with the gateway "0:0:0::0", which Linux takes for no station and refuses.
     *
     * @param pAddress  destination. A text with "default" in it makes this the card of the only
     *                  IPv6 default route, to its saved gateway
     */
    /* 304, 152 */ int (*addRouteIpv6)(NetInterface* thiz, const char* pAddress,
                                       const int preFixLen);

    /**
     * Deletes an IPv6 route of this card, in the main table.
     *
     * A deletion of several walks the first 16 rows of /proc/net/ipv6_route and ends with -1 at the
     * first row that the kernel does not delete; what was deleted before stays so. Linux lists
     * there the rows of all tables, and since 4.14 or so also those of the card's own addresses, of
     * anycast and of multicast, which cannot be deleted so: all routes of a card that has an IPv6
     * address end in -1, and so does a default route of another table.
     *
     * @param pAddress   destination; a text with "default" in it means the card's default routes
     * @param preFixLen  -1, with `pAddress` NULL, means all its other routes
     */
    /* 312, 156 */ int (*delRouteIpv6)(NetInterface* thiz, const char* pAddress,
                                       const int preFixLen);

    /**
     * Tells the link's speed in Mbit/s, in 16 bits. 65535 when the driver knows none; what is above
     * that is cut, so that 100 Gbit/s read 34464. -1 for a wireless card. Source: the driver.
     */
    /* 320, 160 */ int (*getLinkSpeed)(NetInterface* thiz, int* speed);

    /** Tells the number of ports of the switch. Source: the switch driver. */
    /* 328, 164 */ int (*getSwitchPortNum)(NetInterface* thiz, int* portNum);

    /**
     * Lists the ports of the switch, with their link and the station behind each. Switches each
     * port on. Source: the switch driver.
     *
     * @param portStatus  `*len` records, all zeroed first
     * @param len         capacity on entry, with a Warn when it is too small; number of records on
     *                    return
     */
    /* 336, 168 */ int (*getSwitchPortStatus)(NetInterface* thiz,
                                              struct SwitchPortStatus* portStatus, int* len);

    /**
     * Tells the saved mode of this bond, which must run. -1 leaves -1 in `mode` when what is saved
     * is no number.
     */
    /* 344, 172 */ int (*getBondMode)(NetInterface* thiz, NICBondMode* mode);

    /** Tells what the card is for; one without a saved mode is saved as standing alone. */
    /* 352, 176 */ int (*getEthWorkMode)(NetInterface* thiz, NetWorkMode* mode);

    /**
     * Limits what is sent to `num` stations, and saves each limit that was applied. A limit that is
     * not one of sending (`flags` 0) always fails; the others are applied all the same. What the
     * tool itself refuses is not seen: it counts as applied. Source: the tool `tc`.
     *
     * The first limit of a card, also one that fails by its `flags`, puts a root of its own in the
     * place of what shapes the card. The class of the first limit of the process takes all else
     * that its card sends as well. A process can set 999 limits: `tc` refuses the class numbers
     * behind them. A removal uses up a number for each limit that it sets anew. Nothing is put back
     * after a restart.
     */
    /* 360, 180 */ int (*setBandWidth)(NetInterface* thiz, const NetTc* pTc, int num);

    /**
     * Lists the saved limits.
     *
     * @param pTc  `*num` records
     * @param num  capacity on entry, number of records on return
     * @return that number, 0 included, or -1
     */
    /* 368, 184 */ int (*getBandWidth)(NetInterface* thiz, NetTc* pTc, int* num);

    /**
     * Lifts the limit of a station and sets the others anew, of which 32 survive; "0.0.0.0" lifts
     * all. Meanwhile the other stations are without a limit. 0 for every card that exists.
     */
    /* 376, 188 */ int (*unsetBandWidth)(NetInterface* thiz, const char* ipAddr);

    /**
     * Closes (`ctrl` 0) or opens (1) a TCP and UDP port of an address; any other `ctrl` is refused
     * with an Error. "0.0.0.0" closes it for all addresses of the device, and opens all ports. The
     * interface plays no part. Source: the chain PORTCHAIN of `iptables` and `ip6tables`.
     */
    /* 384, 192 */ int (*ipPortCtrl)(NetInterface* thiz, const char* ipAddr, int portNumber,
                                     int ctrl);

    /**
     * Leaves the wish in /tmp/telnet, for whoever starts and stops the service: "on" or "off" with
     * its terminating zero, over the start of what is there. Of the whole device. NULL for either,
     * a file that cannot be opened or is not a regular one, a failed write: Error.
     */
    /* 392, 196 */ int (*setTelnet)(NetInterface* thiz, TelnetInfo* telnetInfo);

    /**
     * Tells the hardware address of a neighbour of the device. `len` is the bytes of `mac`, 18 at
     * least, else -1. -1 leaves `mac` zeroed when the table has no such neighbour. Source: the
     * kernel's ARP table.
     */
    /* 400, 200 */ int (*ipToMac)(NetInterface* thiz, const char* ipAddr, char* mac, const int len);

    /** The same function as in `getHostIP`: the configured address, not what the kernel has. */
    /* 408, 204 */ int (*getRealHostIP)(NetInterface* thiz, char* hostIP, const int hlen,
                                        char* netmask, const int nlen);

    /** Chooses between the fibre and the copper port of a card. Source: the card's driver. */
    /* 416, 208 */ int (*setMediumPrefer)(NetInterface* thiz, NetMediumPrefer medium);

    /** Empty. */
    /* 424, 212 */ int (*setNetModeAndSpeed)(NetInterface* thiz, int modeAndSpeed);

    /**
     * Takes an IPv6 address away, and the saved one with it. With "/<prefix>" behind it the text
     * must be writable: it is cut at the "/", also when -1 follows. A card that has no address, or
     * link-local ones alone, gives 0 and keeps what it has; what is saved goes.
     */
    /* 432, 216 */ int (*delIPaddressIpv6)(NetInterface* thiz, const char* hostIP);

    /** Empty. */
    /* 440, 220 */ int (*getIPv6NeighborTableInfo)(NetInterface* thiz,
                                                   const QV_PAL_NetIPv6InfoFilter filter,
                                                   QV_PAL_NetIPv6Info* list, int* num);

    /**
     * Starts or stops remote login by SSH, of the whole device; `port` and `openDuration` play no
     * part. Whether the service obeyed is not seen. NULL for either: Error.
     */
    /* 448, 224 */ int (*setSSH)(NetInterface* thiz, SSHInfo* sshInfo);

    /** Empty. */
    /* 456, 228 */ int (*getNetLinkCaps)(NetInterface* thiz, unsigned int* caps);

    /**
     * Sets the transmit hash policy of this bond, which goes down and up for it, and saves it. What
     * the driver takes is saved: 5 too, which `getBondParams` then does not tell.
     */
    /* 464, 232 */ int (*setBondParams)(NetInterface* thiz, const QV_PAL_NetBondParams params);

    /**
     * Tells the saved hash policy, 0 to 4. A saved value that is none of them is a failure that
     * leaves 0 in `lacp`.
     *
     * @return 1 for success, 0 for failure, unlike its neighbours; -1 for NULL
     */
    /* 472, 236 */ int (*getBondParams)(NetInterface* thiz, QV_PAL_NetBondParams* params);

    /**
     * Tells whether this card itself has a link, whatever it is a member of.
     *
     * @return 0 with a link, -1 without one and for a NULL object
     */
    /* 480, 240 */ int (*miiDiagEx)(NetInterface* thiz);

    /** `getHostIpv6`, from the kernel only. */
    /* 488, 244 */ int (*getSystemHostIpv6)(NetInterface* thiz, char* host, int hostLen,
                                            char* netmask, int maskLen);

    /** Empty. */
    /* 496, 248 */ int (*getNetPortState)(NetInterface* thiz, int* state);

    /** Empty. */
    /* 504, 252 */ int (*getPhyExceptionInfo)(NetInterface* thiz, int* info);

    /* 512, 256 */ void* reserved[64]; /**< NULL */
};

/* ---- records of control objects ---- */

/** An address of either family, in network byte order; size 16, alignment 4. */
typedef union QV_PAL_RouteAddr {
    /* 0 */ uint32_t IPv4addr;
    /* 0 */ uint32_t IPv6addr[4];
} QV_PAL_RouteAddr;

/** `NetRouteTableInfo`, byte for byte; size 128, alignment 4. */
typedef struct QV_PAL_RouteTableInfo {
    /* 0 */ uint8_t type;     /**< 0 IPv4, 1 IPv6 */
    /* 1 */ uint8_t userFlag; /**< the caller's */
    /* 2 */ uint8_t resv[2];
    /* 4 */ union QV_PAL_RouteAddr dst; /**< destination */
    /* 20 */ union QV_PAL_RouteAddr gw; /**< gateway */
    /* 36 */ uint32_t mask;   /**< IPv4: netmask in network byte order; IPv6: prefix length */
    /* 40 */ char viaDev[16]; /**< interface name */
    /* 56 */ char reserved[72];
} QV_PAL_RouteTableInfo;

/** `NetARPEntry`, byte for byte; size 64, alignment 1. */
typedef struct QV_PAL_ARPEntry {
    /* 0 */ char dev[16]; /**< interface name; empty lets the kernel find it */
    /* 16 */ char ip[16];
    /* 32 */ char mac[18];
    /* 50 */ char reserved[14];
} QV_PAL_ARPEntry;

/** `PoeInfo_t`, byte for byte; the fields are told there; size 256, alignment 4. */
typedef struct QV_PAL_PoeInfo {
    /* 0 */ uint32_t detFlag;
    /* 4 */ uint32_t powerFlag;
    /* 8 */ uint32_t totalPower;
    /* 12 */ uint16_t power[32];
    /* 76 */ uint32_t powerOff;
    /* 80 */ uint32_t powerFail;
    /* 84 */ uint32_t powerOnMask;
    /* 88 */ uint32_t powerOffMask;
    /* 92 */ uint32_t ratePower;
    /* 96 */ uint32_t availablePower;
    /* 100 */ uint32_t averagePower;
    /* 104 */ uint32_t reserved[38];
} QV_PAL_PoeInfo;

/** What a control object is created with; size 128, alignment 4. */
typedef struct QV_PAL_NetControlDesc {
    /* 0 */ int resv[32]; /**< kept, not read */
} QV_PAL_NetControlDesc;

/* ---- control objects ---- */

/**
 * What belongs to no interface: power over Ethernet, all routes, static ARP entries; size 1024,
 * alignment 8 (32 bits: size 512, alignment 4).
 *
 * Each object is counted and freed by its last `release`; behind that its pointer is dead.
 */
typedef struct QV_PAL_NetControl QV_PAL_NetControl;
struct QV_PAL_NetControl {
    /* 0 */ void* priv; /**< the library's own */

    /**
     * Adds a reference.
     *
     * @return the new count, or -1 for NULL
     */
    /* 8, 4 */ int (*addRef)(QV_PAL_NetControl* thiz);

    /**
     * Takes a reference off, and at 0 frees the object.
     *
     * @return the new count, or -1 for NULL
     */
    /* 16, 8 */ int (*release)(QV_PAL_NetControl* thiz);

    /** Reads the state of power over Ethernet. Source: /dev/qv_poe. */
    /* 24, 12 */ int (*getPoEPowerInfo)(QV_PAL_NetControl* thiz, QV_PAL_PoeInfo* pPoe_info);

    /** Switches the power of ports on: bit n is port n. Works with a NULL object too. */
    /* 32, 16 */ int (*setPoEPowerOn)(QV_PAL_NetControl* thiz, uint32_t portMask);

    /** Switches the power of ports off: bit n is port n. Works with a NULL object too. */
    /* 40, 20 */ int (*setPoEPowerOff)(QV_PAL_NetControl* thiz, uint32_t portMask);

    /**
     * Lists one family's routes: over IPv4 those of the main table, over IPv6 those of all tables,
     * with the rows of the cards' own addresses. No memory, no table: Error.
     *
     * @param routes  `*num` records; `type` of the first tells the family
     * @param num     capacity on entry, number of routes on return
     */
    /* 48, 24 */ int (*getAllRouteInfo)(QV_PAL_NetControl* thiz, QV_PAL_RouteTableInfo* routes,
                                        int* num);

    /** Adds a route over a card that exists. The record is only read. */
    /* 56, 28 */ int (*addRoute)(QV_PAL_NetControl* thiz, QV_PAL_RouteTableInfo* cmd);

    /** Deletes a route. The record is only read. */
    /* 64, 32 */ int (*delRoute)(QV_PAL_NetControl* thiz, QV_PAL_RouteTableInfo* cmd);

    /** Adds a static ARP entry, which lasts until a restart. The record is only read. */
    /* 72, 36 */ int (*addArpStaticEntry)(QV_PAL_NetControl* thiz, QV_PAL_ARPEntry* arpInfo);

    /** Deletes a static ARP entry; `mac` plays no part. The record is only read. */
    /* 80, 40 */ int (*delArpStaticEntry)(QV_PAL_NetControl* thiz, QV_PAL_ARPEntry* arpInfo);

    /**
     * Lists the static ARP entries. No memory, no table: Error.
     *
     * @param arpInfo  `*num` records
     * @param num      capacity on entry, 1 at least; number of entries on return, which may be 0
     */
    /* 88, 44 */ int (*getAllArpStaticEntry)(QV_PAL_NetControl* thiz, QV_PAL_ARPEntry* arpInfo,
                                             int* num);

    /** The same for those of one address, one on each interface that has it. */
    /* 96, 48 */ int (*getArpStaticInfoByIp)(QV_PAL_NetControl* thiz, const char* ip,
                                             QV_PAL_ARPEntry* arpInfo, int* num);

    /** Sets the power that all ports share, in the driver's unit. Works with a NULL object too. */
    /* 104, 52 */ int (*setPoETotalPower)(QV_PAL_NetControl* thiz, uint32_t power);

    /** Empty. */
    /* 112, 56 */ int (*setPhyWolMode)(QV_PAL_NetControl* thiz, int mode);

    /* 120, 60 */ void* reserved[113]; /**< NULL */
};

/* ---- records of bridge objects ---- */

/** The bridge that an object is for; size 136, alignment 8 (32 bits: size 128, alignment 4). */
typedef struct NetBrDesc {
    /* 0 */ const char* name;       /**< "br" and a digit, and whatever follows; copied */
    /* 8, 4 */ const char** subDev; /**< `num` names, the first read even when 0; not kept */
    /* 16, 8 */ int num;
    /* 20, 12 */ int reserved[29];
} NetBrDesc;

/** A port of a bridge; size 128, alignment 1. */
typedef struct QV_PAL_NetBrDevice {
    /* 0 */ char name[128]; /**< at most 15 characters; zero behind them */
} QV_PAL_NetBrDevice;

/* ---- bridge objects ---- */

/**
 * A bridge; size 256, alignment 8 (32 bits: size 128, alignment 4).
 *
 * Each object is counted, and its last `release` ends the bridge and frees the object. Two objects
 * of one bridge count apart: the last release of either ends the bridge under the other, whose
 * operations then fail. The count is not guarded: callers keep `addRef` and `release` apart.
 * A NULL object is told by an Error.
 */
typedef struct NetBridge NetBridge;
struct NetBridge {
    /* 0 */ void* priv; /**< the library's own */

    /**
     * Adds a reference.
     *
     * @return 0, not the count; -1 for NULL
     */
    /* 8, 4 */ int (*addRef)(NetBridge* thiz);

    /**
     * Takes a reference off. At 0 the bridge is ended, in the system and in the settings, its cards
     * get their own settings back, and the object is freed.
     *
     * @return the new count, whatever became of the bridge; -1 for NULL
     */
    /* 16, 8 */ int (*release)(NetBridge* thiz);

    /**
     * Tells the bridge's cards as a bit mask, 0 for a bridge without any: bit n stands for eth<n>,
     * where n is one digit. A port that is no eth card: Warn, and it sets no bit.
     */
    /* 24, 12 */ int (*getBridgeDevicesInfo)(NetBridge* thiz, unsigned int* slave);

    /**
     * Tells whether a card is saved as an edge port of the bridge.
     *
     * @return 0 when it is, -1 when not
     */
    /* 32, 16 */ int (*isEdgePort)(NetBridge* thiz, const char* dev);

    /**
     * Makes a port an edge port (`ctrl` 0), which leads to no other bridge, or takes that off it
     * (1), and saves that; any other `ctrl` is refused with an Error.
     */
    /* 40, 20 */ int (*edgePortCtrl)(NetBridge* thiz, const char* dev, int ctrl);

    /** Tells the saved mode of spanning tree. `enable` is always 0. */
    /* 48, 24 */ int (*getInfo)(NetBridge* thiz, STPInfo* info);

    /** Turns spanning tree on or off, and saves its mode. */
    /* 56, 28 */ int (*bridgeCtrl)(NetBridge* thiz, const STPInfo* info);

    /**
     * Lists the ports.
     *
     * @param device  `*num` records
     * @param num     capacity on entry, 1 and more, of which 32 count; number of ports on return.
     *                -1 leaves 32 there when it was more
     */
    /* 64, 32 */ int (*getBridgeDevices)(NetBridge* thiz, QV_PAL_NetBrDevice* device, int* num);

    /* 72, 36 */ void* reserved[23]; /**< NULL */
};

/* ---- factories and what belongs to the module ---- */

/**
 * Finds the object of an interface, or makes it. Any thread may call it.
 *
 * At most 32 names can ever have had an object: an object is never given back.
 *
 * @param desc          `name` is the interface's
 * @param netInterface  where the object goes; written only on success
 * @return 0, or -1 with nothing left behind
 * @errors NULL: silent; no such interface, no memory, a 33rd name: Error
 */
VORLIX_API int createNetInterface(NetInterfaceDesc* desc, NetInterface** netInterface);

/**
 * Lists the interfaces of the device with medium, type and speed.
 *
 * @param list  `*num` records
 * @param num   capacity on entry, number of records on return
 */
VORLIX_API int getNetInterfaceList(NetInterfaceInfo* list, int* num);

/** Stores 32, the most interfaces that are known at a time. */
VORLIX_API int getNetInterfaceMaxNum(int* num);

/**
 * Names the default interface: that of the first default route, or else the saved one, whose
 * default route is then put back.
 *
 * @param name  `len` bytes; 16 hold every name
 * @return 0 when a name was obtained, whatever became of the route; -1 without one, and, with the
 *         saved name in `name`, when no gateway is saved for it
 */
VORLIX_API int getDefaultNetInterface(char* name, const int len);

/**
 * Saves the default interface and moves the default route to its saved gateway.
 *
 * @return 0; -1 for one that does not exist or has no saved gateway, with the route as it was; -1
 *         also when the kernel refuses the new route: no default route is left then
 */
VORLIX_API int setDefaultNetInterface(const char* name);

/**
 * 1 stops `setDefaultNetInterface` from moving routes, for the life of the process. Any other value
 * changes nothing.
 *
 * @return always 0
 */
VORLIX_API int disableRoute(int disable);

/**
 * Makes an IPVLAN or MACVLAN link on a card; any other kind is refused with an Error. The link
 * comes up at once. Nothing is saved: it is gone after a restart. Waits for the kernel's answer
 * without a limit. Each call is logged at Error.
 *
 * @return 0; -1 for another kind, and when the kernel refuses, the latter with a Warn
 */
VORLIX_API int addNetVirtInterface(NetVirtInterInfo* virtInterInfo);

/**
 * Deletes a link of these kinds by its name; otherwise as `addNetVirtInterface`. That it is of the
 * kind told is not tested.
 */
VORLIX_API int delNetVirtInterface(NetVirtInterName* virtInterName);

/**
 * Makes a control object with one reference. Each call makes another.
 *
 * @param desc     NULL, or what is kept with it
 * @param netCtrl  where the object goes; written only on success
 * @errors NULL for `netCtrl`: silent; no memory: Error
 */
VORLIX_API int createNetControl(QV_PAL_NetControlDesc* desc, QV_PAL_NetControl** netCtrl);

/**
 * Makes a bridge object with one reference, and the bridge itself when there is none. A bridge that
 * exists is taken as it is, with the ports that it has. Name and list are saved in either case.
 *
 * @param desc  name and cards of the bridge
 * @param nbr   where the object goes; written only on success
 * @return 0, also when the saving failed; -1 with no object
 * @errors NULL, no memory, a bridge that cannot be made: Error; a failed saving: Warn
 */
VORLIX_API int createNetBridge(NetBrDesc* desc, NetBridge** nbr);

#ifdef __cplusplus
}
#endif
#endif
