// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

/// Ports of single addresses, blocked and freed by a TCP and a UDP rule in the firewall chain
/// PORTCHAIN. The rules are the only record; nothing is saved.
///
/// Something outside has to make the chain, in both families, and to hook it into INPUT. A result
/// says only that a shell was run: a rule that the tool refuses is not noticed. Addresses go into
/// commands as they stand, so the caller vouches for them. The tools need the rights of root; the
/// caller waits for them. NULL gives false, silently.
///
/// @threads two calls for one port can mix their steps; a rule may then stand twice

#include "Types.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Deletes the rules of one port of an IPv4 address.
/// @return whether the deletion could be run
VORLIX_API bool PortCtrl_EnableIPv4Port(const char* ipAddr, int port);

/// Adds the rules of one port of an IPv4 address, in the place of those that are there.
/// @return whether the addition could be run
VORLIX_API bool PortCtrl_DisableIPv4Port(const char* ipAddr, int port);

/// Deletes the TCP rule of one port of an IPv6 address. The UDP rule goes to the IPv4 tool, which
/// refuses the address.
/// @return whether the deletion could be run
VORLIX_API bool PortCtrl_EnableIPv6Port(const char* ipAddr, int port);

/// Adds the TCP rule of one port of an IPv6 address, in the place of the one that is there; the UDP
/// rule as above.
/// @return whether the addition could be run
VORLIX_API bool PortCtrl_DisableIPv6Port(const char* ipAddr, int port);

/// Deletes all rules of the chain, in both families.
/// @return whether the deletion could be run
VORLIX_API bool PortCtrl_EnableAllIPPort(void);

#ifdef __cplusplus
}
#endif
