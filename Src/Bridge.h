// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

/// Kernel bridges, driven by the tools `brctl`, `ifconfig` and `rstpctl`, a command `bridge`, and
/// the files below /sys/class/net/<bridge>/.
///
/// Nothing is saved here and nothing is rolled back. A result that comes from a command says only
/// that a shell was run. Names go into commands as they stand, so the caller vouches for them.
/// Changes need the rights of root; the caller waits for the tools. NULL gives false, silently,
/// everywhere.

#include "Types.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Builds a bridge from cards and brings it up. The bridge takes over the hardware address of the
/// first card; the cards lose their IPv4 addresses. A bridge that exists already takes the same
/// steps.
///
/// @param ethList  `ethNum` names; none are needed
/// @return result of the last command, which brings the bridge up
/// @errors  every command is logged at Info
VORLIX_API bool Bridge_Bridge(const char* brName, char** ethList, int ethNum);

/// Takes a bridge down, releases the given cards and deletes it. The cards stay as that leaves
/// them.
///
/// @return result of the last command, which deletes the bridge
VORLIX_API bool Bridge_UnBridge(const char* brName, char** ethList, int ethNum);

/// Lists the ports of a bridge, in the directory's order.
///
/// @param ethList  `*ethNum` pointers to 16 bytes each; a NULL among them is refused before
///                 anything is done
/// @param ethNum   capacity on entry, number of ports on return
/// @return true when the bridge could be read, also when it has no ports
/// @errors  no such bridge: Error
/// @source  the directory `brif`
VORLIX_API bool Bridge_GetBridgeMembers(const char* brName, char** ethList, int* ethNum);

/// True when the interface is a bridge: it has the directory `brif`, and its `carrier` opens.
/// @errors  no bridge: Error, also where that is the normal case
VORLIX_API bool Bridge_IsBridgeExist(const char* brName);

/// Marks a port as one that leads to no other bridge.
VORLIX_API bool Bridge_AddEdgePort(const char* brName, const char* ethName);

/// Takes that mark off a port.
VORLIX_API bool Bridge_DelEdgePort(const char* brName, const char* ethName);

/// Turns spanning tree on or off: by the kernel (`mode` 0) or as rapid spanning tree (`mode` 1).
///
/// @return with `mode` 0 the result of the switch itself, with 1 that of the command `bridge`
/// @errors  any other mode: Error, and nothing is run
VORLIX_API bool Bridge_BridgeCtrl(const char* brName, const STPInfo* stp);

#ifdef __cplusplus
}  // extern "C"

#include "Support/NameList.h"

namespace vorlix {

/// The members of a bridge as a bit mask, for both generations of the public API: bit n stands for
/// "eth<n>", where n is what the fourth character's code is above that of "0". Only one digit of a
/// name is read, so eth12 sets the bit of eth1. A number outside 0 to 31 sets none.
///
/// @param operation  whose name the log lines carry
/// @errors  a member whose name does not start with "eth": Warn, and it sets no bit
uint32_t BridgeMemberMask(const char* operation, const NameList& members);

}  // namespace vorlix
#endif
