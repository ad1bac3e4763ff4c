// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

/// The kernel's routing netlink: a blocking client that sends one request and waits for its
/// acknowledgement, and the requests of the library over it (virtual links, policy rules, routes in
/// any table). A handle is opened for each request and does not outlive it; nothing is shared
/// between calls, so threads need no lock.
///
/// An exchange waits for the kernel's answer without a time limit. Links, rules and routes live in
/// the kernel only: nothing is saved, and none of it comes back after a restart. Changes need the
/// right to administer the network (CAP_NET_ADMIN).

#include "Types.h"

#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <linux/types.h>
#include <sys/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/// A netlink socket for one request.
typedef struct rtnl_handle {
    int32_t fd;                ///< keeps its number after a failed `rtnl_open`, closed by then
    struct sockaddr_nl local;  ///< our address; its `nl_pid` tells replies to us
    struct sockaddr_nl peer;   ///< zero
    uint32_t seq;              ///< last sequence number used; begins at the time in seconds
    uint32_t dump;             ///< zero
} rtnl_handle;

/// Opens a handle. The caller closes its `fd` after use; tools that the shell starts do not inherit
/// it.
///
/// A process that has closed its standard input may get descriptor 0, which is neither bound nor
/// asked for its address: no answer over it is ever taken for ours. The requests below step over
/// such a number by themselves.
///
/// @return 0, or -1: `fd` is closed or was never open then, and must not be used or closed again
/// @errors NULL: silent; no socket, no address: Error
VORLIX_API int rtnl_open(struct rtnl_handle* rth);

/// Sends one request and waits for its acknowledgement, however long that takes. What comes in
/// between from anyone else stalls the exchange: a handle that serves one request and joins no
/// group gets nothing else. Errors of the socket are tried again without end.
///
/// @param n       request, `nlmsg_len` bytes; gets its sequence number and NLM_F_ACK here
/// @param peer    port that answers; 0 is the kernel
/// @param groups  multicast groups to send to; 0 is none
/// @param answer  not used; NULL
/// @param junk    not used; NULL
/// @param jarg    not used; NULL
/// @return 0 when the kernel has done what was asked, otherwise -1; `errno` is the kernel's answer,
///         0 for a success
/// @errors NULL: silent; no memory, a failed send, a broken answer: Error; a refusal: Warn
VORLIX_API int rtnl_talk(struct rtnl_handle* rtnl, struct nlmsghdr* n, pid_t peer,
                         unsigned int groups, struct nlmsghdr* answer,
                         int (*junk)(struct sockaddr_nl*, struct nlmsghdr*, void*),
                         const void* jarg);

/// Appends an attribute to a request under construction.
///
/// @param n       request; `nlmsg_len` is moved behind the attribute
/// @param maxlen  most bytes that the request may have
/// @param type    number of the attribute
/// @param data    payload, copied as it is; NULL is allowed for 0 bytes
/// @param alen    bytes of the payload. Padding to a multiple of 4 is not written: requests begin
///                zeroed
/// @return 0, or -1 when the attribute does not fit, for NULL and for a negative size, with the
///         request unchanged
VORLIX_API int addattr_l(struct nlmsghdr* n, int32_t maxlen, int32_t type, const void* data,
                         int32_t alen);

/// Appends an attribute without payload; result as above.
VORLIX_API int addattr(struct nlmsghdr* n, int32_t maxlen, int32_t type);

/// Appends a number of 1, 2, 4 or 8 bytes, in the byte order of the machine; result as above.
VORLIX_API int addattr8(struct nlmsghdr* n, int32_t maxlen, int32_t type, __u8 data);
VORLIX_API int addattr16(struct nlmsghdr* n, int32_t maxlen, int32_t type, __u16 data);
VORLIX_API int addattr32(struct nlmsghdr* n, int32_t maxlen, int32_t type, __u32 data);
VORLIX_API int addattr64(struct nlmsghdr* n, int32_t maxlen, int32_t type, __u64 data);

/// Opens a nest: what is appended next lies inside it, until `addattr_nest_end`.
///
/// @param n  its buffer must reach 4 bytes beyond `maxlen`: the end of a nest that did not fit is
///           written there all the same
/// @return the attribute that opens the nest, also when it did not fit; NULL for no request
VORLIX_API struct rtattr* addattr_nest(struct nlmsghdr* n, int32_t maxlen, int32_t type);

/// Closes a nest.
/// @return length of the request, or -1 for NULL
VORLIX_API int addattr_nest_end(struct nlmsghdr* n, struct rtattr* nest);

/// Asks the kernel for the index of an interface. What lies beyond 15 characters is cut off.
///
/// @return the index; 0 or below when there is none
/// @errors NULL: silent; no socket, no interface: Error
VORLIX_API int xll_name_to_index(const char* name);

// The requests. `cmd` is the kernel's message type; a deletion finds its link by name. An attribute
// that does not fit a request is missing from it, silently. Each request is logged at Info first.
// The failures of the three kinds differ: -2, 2 and -1 tell the same event.

/// Creates an IPVLAN link on `host`, up at once, or deletes one.
///
/// @param cmd   RTM_NEWLINK or RTM_DELLINK
/// @param host  interface that carries the link; an unknown one is an Error, and the kernel is
///              asked all the same
/// @param virt  name of the link
/// @param mode  a NetIpVlanMode, low 16 bits
/// @param flag  a NetIpVlanFlag, low 16 bits
/// @return 0; -1 for NULL; -2 when the kernel refuses
/// @errors  NULL: Error; a refusal: Warn
VORLIX_API int Netlink_Ipv4Link_IpVlan(int32_t cmd, char* host, char* virt, uint32_t mode,
                                       uint32_t flag);

/// Creates a MACVLAN link on `host`, up at once, or deletes one; in source mode also changes the
/// addresses that an existing link listens to.
///
/// @param cmd       RTM_NEWLINK or RTM_DELLINK
/// @param mode      a NetMacVlanMode
/// @param flag      NetMacVlanFlag bits, low 16 bits
/// @param addrMode  a NetMacVlanAddrMode, in source mode only
/// @param addr      six raw bytes, in source mode only; needed there whatever `addrMode` is
/// @return 0; -1 for NULL and for a source mode without an address; -2 when the kernel refuses
/// @errors  NULL, no address: Error; a refusal: Warn
VORLIX_API int Netlink_Ipv4Link_MacVlan(int32_t cmd, char* host, char* virt, uint32_t mode,
                                        uint32_t flag, uint32_t addrMode, char* addr);

/// Adds or deletes an IPv4 policy rule for one source address.
///
/// @param cmd     RTM_NEWRULE or RTM_DELRULE
/// @param from    source address, dotted text; NULL for any
/// @param table   route table, low byte; 0 is the main table for an addition, any for a deletion
/// @param prefer  priority; 0 leaves it to the kernel
/// @return 0; -1 for an address that does not parse; 2 (above 0!) when the kernel refuses
/// @errors  an address that does not parse: silent; a refusal: Warn
VORLIX_API int Netlink_IPv4Rule(int32_t cmd, const char* from, uint32_t table, uint32_t prefer);

/// Adds an IPv4 route to a table, in the place of one of the same key, or deletes it.
///
/// @param cmd     RTM_NEWROUTE or RTM_DELROUTE
/// @param table   route table, low byte; 0 is the main table
/// @param bitlen  prefix length of `route`, low byte; not used for the default destination
/// @param route   destination, dotted text; "default", "all", "any" or NULL for the default
/// @param src     preferred source address, dotted text; NULL for none
/// @param via     gateway, dotted text; NULL for a direct route
/// @param dev     card; NULL for none. With an unknown one the kernel is asked all the same
/// @param metric  0 for none
/// @return 0; -1 for an address that does not parse, and when the kernel refuses
/// @errors  an address that does not parse: silent; an unknown card: Error; a refusal: Warn
VORLIX_API int Netlink_IPv4Route(int32_t cmd, int32_t table, int32_t bitlen, const char* route,
                                 const char* src, const char* via, const char* dev,
                                 uint32_t metric);

#ifdef __cplusplus
}  // extern "C"
#endif
