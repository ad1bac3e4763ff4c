// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

/// Virtual links on a host interface: one operation for each kind and verb, in front of the
/// requests of `Netlink`, whose results and messages they have. A new link is up at once, with no
/// address; nothing is saved, so it is gone after a restart. Each waits for the kernel's answer
/// without a time limit.

#include "Types.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Creates an IPVLAN link; arguments and result as `Netlink_Ipv4Link_IpVlan`.
VORLIX_API int VirtInter_IpVlanAdd(char* host, char* virt, uint32_t mode, uint32_t flag);

/// Deletes an IPVLAN link; results and errors as above.
VORLIX_API int VirtInter_IpVlanDel(char* host, char* virt);

/// Creates a MACVLAN link; arguments and result as `Netlink_Ipv4Link_MacVlan`.
VORLIX_API int VirtInter_MacVlanAdd(char* host, char* virt, uint32_t mode, uint32_t flag,
                                    uint32_t addrMode, char* addr);

/// Deletes a MACVLAN link; results and errors as above.
VORLIX_API int VirtInter_MacVlanDel(char* host, char* virt);

#ifdef __cplusplus
}  // extern "C"
#endif
