/* SPDX-FileCopyrightText: 2026 the Vorlix network layer authors */
/* SPDX-License-Identifier: MIT */

/**
 * Types shared by the library and its applications, and what the library asks of its process.
 *
 * Clean C11 and C++17: nothing of the kernel is included. All records have the same layout in both
 * languages and on every 64-bit little-endian target. Texts end in NUL within their size.
 */
#ifndef PAL_TYPES_H
#define PAL_TYPES_H

/**
 * @page process The process around the library
 *
 * The library works on the threads of an application, in its process. What it asks of that process,
 * and what it does to it:
 *
 * @par Standard streams
 * Descriptors 0, 1 and 2 are open, if only on /dev/null. Where standard output is closed, a setting
 * file may be opened in its place, and lines of the log stay in it.
 *
 * @par Log
 * Each line goes to standard output at once. A reader that takes nothing is waited for when its
 * pipe is full, and some lines are logged while a setting file is locked: other threads and the
 * boot program then wait for that reader too. A line that cannot be written is lost, and no
 * operation fails for it. The signal of such a write is the application's: with the default action
 * SIGPIPE ends it when the reader has gone, SIGXFSZ when the log has reached RLIMIT_FSIZE.
 *
 * @par Children
 * Operations on bonds, bridges, limits of bandwidth, blocked ports and remote login run tools
 * through the shell that PATH finds, and wait for each. Meanwhile SIGCHLD is not ignored, has no
 * SA_NOCLDWAIT, and no other thread waits for any child, as `wait` does. Otherwise the tools run,
 * but their end is not seen: Error "waitpid failed", and what needs the tool to have run fails.
 *
 * @par Signals
 * While a tool runs, SIGINT and SIGQUIT are ignored in the whole process, and SIGCHLD is blocked in
 * the calling thread. Each run puts back what it found: of two threads that run tools at once, the
 * later may leave both signals ignored for good. Nothing else of an application's signals is
 * changed. Tools inherit what the application ignores and blocks.
 *
 * @par Signal handlers
 * No operation may be called from a signal handler: all of them take locks or print.
 *
 * @par fork
 * The child of a process with one thread may go on calling. In the child of a process with several,
 * nothing may be called up to `exec`: a lock may be in the hands of a thread that is not there.
 *
 * @par Descriptors
 * The library keeps some open for the life of the process, all closed by `exec`: sockets, which
 * belong to the network namespace in which they were first used, and tables of /proc. Where
 * RLIMIT_NOFILE leaves too few, an operation fails with an Error and leaves what is saved, but for
 * the name servers: of their two files the first is empty when the second cannot be opened. Several
 * threads at that limit can lose a file: to a setter one that cannot be read is empty, and a
 * descriptor that comes free meanwhile lets it be written so.
 *
 * @par Sizes of files
 * Setting files are written anew in their place; a card's never has more than 4096 bytes. Under a
 * smaller RLIMIT_FSIZE it is cut where the limit is: SIGXFSZ ends the process where it has its
 * default action, and nobody notices where it is ignored.
 *
 * @par Names
 * The shared library never calls an application's functions, whatever their names, but for the six
 * CMOS operations of a board. With the static library the linker refuses a second function of a
 * name.
 *
 * @par Threads
 * No thread is made. Any operation may be called from any thread; which calls are to be kept apart
 * is told at the head of each interface.
 */

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

/** Opens an enumeration that holds any 32-bit value, in both languages. */
#ifdef __cplusplus
#define VORLIX_ENUM(tag) enum tag : int32_t
#else
#define VORLIX_ENUM(tag) enum tag
#endif

/** Marks what the shared library exports. */
#ifndef VORLIX_API
#define VORLIX_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- enumerations ---- */
/* clang-format off */

/** Work mode of a card, as saved under "WORKMODE". Only 0 to 3 can be saved. */
typedef VORLIX_ENUM(NetWorkMode) {
    netModeInvalid = -1, /**< none; in memory only */
    netModeMultiple = 0, /**< the card stands alone; the default */
    netModeBond = 1,     /**< member of a bond */
    netModeSwitch = 2,   /**< switch interface */
    netModeBridge = 3,   /**< member of a bridge */
    netModeVlan = 4,
    netModeVap = 5,
    netModePhysical = 6
} NetWorkMode;

/** Mode of a bond, as the bonding driver numbers it; -1, which stands for none, is passed by a cast. */
typedef VORLIX_ENUM(NICBondMode) {
    nicBondBalanceRR = 0,
    nicBondActiveBackup = 1,
    nicBondBalanceXOR = 2,
    nicBondBroadcast = 3,
    nicBond802_3ad = 4,
    nicBondBalanceTLB = 5,
    nicBondBalanceALB = 6
} NICBondMode;

/** What a card is for on the device. */
typedef VORLIX_ENUM(NetDeviceUsage) {
    netDeviceUsageCommon = 0,
    netDeviceUsageDCFunc = 1,
    netDeviceUsageWeb = 2,
    netDeviceUsageMax = 255 /**< no name was given */
} NetDeviceUsage;

/** Medium that a card with a fibre and a copper port prefers. */
typedef VORLIX_ENUM(NetMediumPrefer) {
    netFiberMediumPrefer = 0,
    netCopperMediumPrefer = 1,
    netNoMediumPrefer = 2,
    netMediumPreferMax = 255
} NetMediumPrefer;

/** Transmission medium of an interface. */
typedef VORLIX_ENUM(NetInterfaceMedia) {
    NetInterfaceWired = 0,
    NetInterfaceWireless = 1,
    NetInterfaceFiber = 2,
    NetInterfaceFiberRJ45 = 3,
    NetInterfaceNr = 4
} NetInterfaceMedia;

/** Kind of a virtual link. Only IPVLAN and MACVLAN can be made; all others are refused. */
typedef VORLIX_ENUM(NetVirtInterfaceType) {
    virtTypeAlias = 0,
    virtTypeVlan = 1,
    virtTypeIpVlan = 2,
    virtTypeMacVlan = 3,
    virtTypeDummy = 4,
    virtTypeTun = 5,
    virtTypeTap = 6,
    virtTypeVeth = 7,
    virtTypeBut = 8
} NetVirtInterType;

/** Mode of an IPVLAN link, as the kernel numbers it. */
typedef VORLIX_ENUM(NetIpVlanMode) {
    ipVlanModeL2 = 0,
    ipVlanModeL3 = 1,
    ipVlanModeL3S = 2,
    ipVlanModeBut = 3
} NetIpVlanMode;

/** How the IPVLAN links of one card see each other, as the kernel numbers it. */
typedef VORLIX_ENUM(NetIpVlanFlag) {
    ipVlanBridge = 0,
    ipVlanPrivate = 1,
    ipVlanVepa = 2
} NetIpVlanFlag;

/** Mode of a MACVLAN link, as the kernel numbers it. */
typedef VORLIX_ENUM(NetMacVlanMode) {
    macVlanModePrivate = 1,
    macVlanModeVepa = 2,
    macVlanModeBridge = 4,
    macVlanModePassthru = 8,
    macVlanModeSource = 16 /**< takes frames of the listed senders only */
} NetMacVlanMode;

/** What becomes of `macAddr` in the list of senders of a MACVLAN link in source mode. */
typedef VORLIX_ENUM(NetMacVlanAddrMode) {
    macVlanAddrAdd = 0,
    macVlanAddrDel = 1,
    macVlanAddrFlush = 2, /**< the list is emptied, `macAddr` is not sent */
    macVlanAddrSet = 3    /**< the list is replaced */
} NetMacVlanAddrMode;

/** Flags of a MACVLAN link, as the kernel numbers them. */
typedef VORLIX_ENUM(NetMacVlanFlag) {
    macVlanNoPromisc = 1,
    macVlanNoDst = 2
} NetMacVlanFlag;

/** Result of LibvorlixGetVersion. */
typedef VORLIX_ENUM(QV_API_VERSION_RET_E) {
    QV_API_VERSION_RET_SUCCESS = 0,
    QV_API_VERSION_RET_NOT_IMPLET = -1,
    QV_API_VERSION_RET_ERROR = -2
} QV_API_VERSION_RET_E;

/** What NetRouteAddDelete does with the route to a card's own network. */
typedef VORLIX_ENUM(NetRouteOperate) {
    ADD_ROUTE = 0,
    DELETE_ROUTE = 1
} NetRouteOperate;

/** Argument of NetRouteSetStyle; both end with route changes disabled. */
typedef VORLIX_ENUM(NetRouteStyleType) {
    ROUTESTYLE_SYS = 0,
    ROUTESTYLE_USER = 1
} NetRouteStyleType;

/** Work mode of the first card, as version 2 numbers it; only -1, 0, 3 and 4 are reported. */
typedef VORLIX_ENUM(NetWorkMode_E) {
    En_Net_Invalid = -1,
    En_Net_Multiple = 0,
    En_Net_Tolerance = 1,
    En_Net_Balance = 2,
    En_Net_Bridge = 3,
    En_Net_Bond = 4,
    En_Net_LinkAgg = 5
} NetWorkMode_E;

/** Scope of an IPv6 address. ORGLOCAL is never reported. */
typedef VORLIX_ENUM(IPV6_ADDR_SCOPE_TYPE_E) {
    VORLIX_IPV6_ADDR_SCOPE_NODELOCAL = 1,
    VORLIX_IPV6_ADDR_SCOPE_LINKLOCAL = 2,
    VORLIX_IPV6_ADDR_SCOPE_SITELOCAL = 5,
    VORLIX_IPV6_ADDR_SCOPE_ORGLOCAL = 8,
    VORLIX_IPV6_ADDR_SCOPE_GLOBAL = 14
} IPV6_ADDR_SCOPE_TYPE_E;

/* clang-format on */
/* ---- records; in front of a field stands its offset in bytes, that of 32 bits second ---- */

/**
 * Counters of one interface, from its line in /proc/net/dev; size 128, alignment 8 (32-bit x86:
 * alignment 4).
 */
typedef struct NetDataStat {
    /* 0 */ uint64_t transmittedBytes;
    /* 8 */ uint64_t receivedBytes;
    /* 16 */ uint64_t transmittedPackets;
    /* 24 */ uint64_t receivedPackets;
    /* 32 */ uint32_t transmittedErrors;
    /* 36 */ uint32_t receivedErrors;
    /* 40 */ uint32_t transmittedDroped;
    /* 44 */ uint32_t receivedDroped;
    /* 48 */ uint32_t transmittedOverruns;
    /* 52 */ uint32_t receivedOverruns;
    /* 56 */ uint32_t transmittedCarrier;
    /* 60 */ uint32_t receivedFrame;
    /* 64 */ uint32_t transmittedCollisions;
    /* 68 */ uint32_t transmittedTxqueuelens; /**< always 0 */
    /* 72 */ uint32_t interfaceSpeed;         /**< Mbit/s, as the driver reports it */
    /* 76 */ char reserved[52];
} NetDataStat;

/** One interface with its counters; size 144, alignment 8 (32-bit x86: alignment 4). */
typedef struct InterfaceInfo {
    /* 0 */ char name[16];
    /* 16 */ NetDataStat netDatastat;
} InterfaceInfo;

/** An address of either family, in network byte order; size 16, alignment 4. */
typedef union netAddr {
    /* 0 */ uint32_t addrIPv4;
    /* 0 */ uint32_t addrIPv6[4];
} netAddr;

/** One route of either family; size 128, alignment 4. */
typedef struct NetRouteTableInfo {
    /* 0 */ uint8_t type;     /**< 0 IPv4, 1 IPv6; any other value is refused */
    /* 1 */ uint8_t userFlag; /**< carried for the caller, never read or written here */
    /* 2 */ uint8_t resv[2];
    /* 4 */ union netAddr dst;
    /* 20 */ union netAddr gw;
    /* 36 */ uint32_t
        mask; /**< IPv4: netmask in network byte order; IPv6: prefix length, 0 to 128 */
    /* 40 */ char viaDev[16]; /**< interface name */
    /* 56 */ char reserved[72];
} NetRouteTableInfo;

/** Names of a virtual link and of its host; size 384, alignment 4. */
typedef struct NetVirtInterName {
    /* 0 */ NetVirtInterType eType;
    /* 4 */ char hostName[128];   /**< interface that the link rides on; may fill the field */
    /* 132 */ char virtName[128]; /**< the link's own name; may fill the field */
    /* 260 */ uint8_t enable;     /**< not read */
    /* 261 */ char reserve[3];
    /* 264 */ int rsd[30];
} NetVirtInterName;

/** What an IPVLAN link is made with; size 32, alignment 4. */
typedef struct NetIpVlanAttr {
    /* 0 */ NetIpVlanMode eMode;
    /* 4 */ NetIpVlanFlag eFlag;
    /* 8 */ int reserve[6];
} NetIpVlanAttr;

/** What a MACVLAN link is made with; size 384, alignment 4. */
typedef struct NetMacVlanAttr {
    /* 0 */ NetMacVlanMode eMode;
    /* 4 */ NetMacVlanFlag eFlag;
    /* 8 */ NetMacVlanAddrMode eAddrMode; /**< read in source mode only */
    /* 12 */ char macAddr[7];             /**< six raw bytes, not text; read in source mode only */
    /* 19 */ char rsd;
    /* 20 */ int rsd1[91];
} NetMacVlanAttr;

/** Attributes of a virtual link, by its kind; size 384, alignment 4. */
typedef union NetInterParam {
    /* 0 */ NetIpVlanAttr ipVlAttr;
    /* 0 */ NetMacVlanAttr macVlAttr;
    /* 0 */ int placeholder[96];
} NetInterParam;

/** A virtual link; size 1020, alignment 4. */
typedef struct NetVirtInterInfo {
    /* 0 */ NetVirtInterName interName;
    /* 384 */ NetInterParam interParam;
    /* 768 */ int rsd[63];
} NetVirtInterInfo;

/** Spanning tree of a bridge; size 64, alignment 1. */
typedef struct STPInfo {
    /* 0 */ uint8_t enable; /**< 1 turns spanning tree on, any other value off */
    /* 1 */ uint8_t mode; /**< 0 kernel spanning tree, 1 rapid spanning tree; others are refused */
    /* 2 */ char reserved[62];
} STPInfo;

/**
 * One interface as the device shows it; size 128, alignment 4. Behind a bit-field's offset stands
 * its first bit.
 */
__extension__ typedef struct NetInterfaceInfo {
    /* 0 */ char name[32];    /**< at most 31 characters */
    /* 32.0 */ int valid : 8; /**< 0 for "wlan" and "apra" names and a Wi-Fi eth2, else 1 */
    /* 33.0 */ NetInterfaceMedia media : 8;
    /* 34.0 */ int type : 8;         /**< a NetWorkMode value */
    /* 35.0 */ NICBondMode bond : 8; /**< left 0 in a list */
    /* 36 */ int speed;              /**< now, in Mbit/s */
    /* 40.0 */ int working : 8;      /**< left 0 in a list */
    /* 41.0 */ int hasWps : 8;       /**< left 0 in a list */
    /* 42.0 */ int longPOE : 8;      /**< left 0 in a list */
    /* 43.0 */ int reserved_bits : 8;
    /* 44 */ int stpcap;       /**< left 0 in a list */
    /* 48 */ int usage;        /**< a NetDeviceUsage value */
    /* 52 */ int reserved[19]; /**< [0]: top speed that the card supports, in Mbit/s */
} NetInterfaceInfo;

/** One entry of the kernel's IPv4 neighbour table; size 64, alignment 1. All texts end in NUL. */
typedef struct NetARPEntry {
    /* 0 */ char dev[16];  /**< interface; empty leaves the choice to the kernel's routes */
    /* 16 */ char ip[16];  /**< dotted address */
    /* 32 */ char mac[18]; /**< with colons; read back in lower case */
    /* 50 */ char reserved[14];
} NetARPEntry;

/** One bandwidth limit; size 124, alignment 4. */
typedef struct tagNetTc {
    /* 0 */ char ipAddr[48]; /**< the peer's address; must hold no comma */
    /* 48 */ int ipType;     /**< saved and listed for the caller: 4 or 6 */
    /* 52 */ int bandWidth;  /**< Mbit/s */
    /* 56 */ int flags;      /**< 0 limits what is sent; anything else is refused */
    /* 60 */ int resv[16];
} NetTc;

/** Remote login; size 64, alignment 4. */
__extension__ typedef struct SSHInfo {
    /* 0.0 */ unsigned char enable : 1; /**< 1 starts the daemon, 0 stops it */
    /* 0.1 */ unsigned char rsd : 7;
    /* 1 */ unsigned char reserved1;
    /* 2 */ uint16_t port;         /**< not read */
    /* 4 */ uint32_t openDuration; /**< not read */
    /* 8 */ char reserved[56];
} SSHInfo;

/**
 * State of the power over the ports, as the PoE driver fills it and in its units; size 256,
 * alignment 4. In masks bit n stands for port n.
 */
typedef struct PoeInfo_t {
    /* 0 */ uint32_t detFlag;
    /* 4 */ uint32_t powerFlag;
    /* 8 */ uint32_t totalPower;
    /* 12 */ uint16_t power[32]; /**< one for each port */
    /* 76 */ uint32_t powerOff;
    /* 80 */ uint32_t powerFail;
    /* 84 */ uint32_t powerOnMask;
    /* 88 */ uint32_t powerOffMask;
    /* 92 */ uint32_t ratePower;
    /* 96 */ uint32_t availablePower;
    /* 100 */ uint32_t averagePower;
    /* 104 */ uint32_t reserved[38];
} PoeInfo_t;

/**
 * One port of a switch; size 128, alignment 1. Plain char is unsigned on some targets: `link` is
 * read through signed char.
 */
typedef struct SwitchPortStatus {
    /* 0 */ char ip[48];         /**< always "0.0.0.0" */
    /* 48 */ char mac[24];       /**< of the device on the port, with colons, or empty */
    /* 72 */ char link;          /**< 1 with link, 0 without */
    /* 73 */ unsigned char port; /**< counted from 0 */
    /* 74 */ char ipType;        /**< always 4 */
    /* 75 */ char resv[53];
} SwitchPortStatus;

/* ---- records of version 2 ---- */

/** What the device has; size 64, alignment 4. */
typedef struct tagNetCaps_s {
    /* 0 */ int32_t cardNum;     /**< network cards, switch interfaces and alias names apart */
    /* 4 */ int32_t Reverse[15]; /**< left as they were */
} NetCaps;

/** Dynamic DNS, which is not supported any more; size 136, alignment 4. */
typedef struct NET_DDNS_CONFIG {
    /* 0 */ int32_t enable;
    /* 4 */ char hostname[32];
    /* 36 */ char username[32];
    /* 68 */ char password[32];
    /* 100 */ char serverip[32];
    /* 132 */ int32_t serverport;
} NET_DDNS_CONFIG;

/** One interface as version 2 shows it; size 40, alignment 4. */
typedef struct tagNetDevice {
    /* 0 */ char valid;       /**< as in NetInterfaceInfo */
    /* 1 */ char trans_media; /**< a NetInterfaceMedia value */
    /* 2 */ uint8_t usage;    /**< a NetDeviceUsage value, cut to a byte */
    /* 3 */ char reserved[1];
    /* 4 */ int32_t speed;       /**< now, in Mbit/s */
    /* 8 */ char name[16];       /**< at most 15 characters */
    /* 24 */ uint32_t max_speed; /**< top speed that the card supports, in Mbit/s */
    /* 28 */ uint32_t resv[3];
} NetDevice;

/**
 * Bytes of one interface since the kernel made it; size 16, alignment 8 (32-bit x86: alignment 4).
 */
typedef struct NetStats {
    /* 0 */ uint64_t rx_bytes;
    /* 8 */ uint64_t tx_bytes;
} NetStats;

/** A ping and its answer; size 104, alignment 8 (32 bits: size 96, alignment 4). */
typedef struct tagPING {
    /* 0 */ char acFrom[40];  /**< name of the source card */
    /* 40 */ char acTo[40];   /**< dotted address of the destination */
    /* 80 */ int32_t s32Len;  /**< not read */
    /* 84 */ int32_t s32Time; /**< answer: elapsed time in microseconds */
    /* 88 */ int32_t s32Ttl;  /**< not read */
    /* 96, 92 */ void* pvoid; /**< not read */
} PING_S;

/** One port of the switch as version 2 shows it; size 32, alignment 4. */
typedef struct SwitchPortInfo {
    /* 0 */ int16_t link; /**< 1 with link, 0 without */
    /* 2 */ int16_t port; /**< counted from 1 */
    /* 4 */ uint32_t ip;  /**< network byte order */
    /* 8 */ char mac[24]; /**< of the device on the port, with colons, or empty */
} SwitchPortInfo;

/** One bandwidth limit as version 2 shows it; size 76, alignment 4. */
typedef struct tagNetTc_2 {
    /* 0 */ char ipAddr[48];    /**< the peer's address; must hold no comma */
    /* 48 */ int32_t bandWidth; /**< Mbit/s */
    /* 52 */ int32_t flags;     /**< 0 limits what is sent; anything else is refused */
    /* 56 */ int32_t prio;      /**< not kept, read back as 0 */
    /* 60 */ char resv[16];
} NetTc_2;

#ifdef __cplusplus
}
#endif
#endif
