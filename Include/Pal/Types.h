/**
 * Types shared by the library and its applications.
 *
 * Clean C11 and C++17: nothing of the kernel is included. All records have the same layout in both
 * languages and on every 64-bit little-endian target. Texts end in NUL within their size.
 */
#ifndef PAL_TYPES_H
#define PAL_TYPES_H

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

/* clang-format on */
/* ---- records; the comment in front of a field is its offset in bytes ---- */

/** Counters of one interface, from its line in /proc/net/dev; size 128, alignment 8. */
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

/** One interface with its counters; size 144, alignment 8. */
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
    /* 32.0 */ int valid : 8; /**< 1 or 0: whether it is a card of its own */
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

#ifdef __cplusplus
}
#endif
#endif
