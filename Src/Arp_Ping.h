// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

/// Two probes on the wire, built by hand on raw sockets: does anybody else on the segment use our
/// address, and does a host answer an echo request.
///
/// A probe opens its socket, sends three equal packets at once, listens for a budget of whole
/// seconds and closes the socket. Nothing is kept between calls. The budget follows the wall clock:
/// it may end up to a second early or late, and grows when the clock is set back. The calling
/// thread waits meanwhile. Both probes need the right to open raw sockets (CAP_NET_RAW).

#include "Types.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Asks by ARP who else uses `srcIP` or `srcMac`, and listens for all of `timeout`, whatever is
/// heard: a later reply may add the other kind of conflict.
///
/// @param name     card to send from; what lies beyond 13 characters is cut off
/// @param srcIP    our address, any form that `inet_aton` takes
/// @param srcMac   our hardware address, six hexadecimal fields with colons
/// @param dstIP    address asked for
/// @param dstMac   hardware address of the frame's receiver
/// @param timeout  seconds; 0 or below sends and does not listen
/// @return -1 when the check could not be run; otherwise 0 (no conflict was heard, also where
///         nothing could be sent or no such card is there), or a sum of 1 (our hardware address is
///         used with another address) and 2 (our address is used by another card)
/// @errors  NULL: silent; no socket, a text that does not parse: Error, -1; a packet that could not
///          be sent: Error, and the probe goes on; nothing heard: Warn
/// @threads any; replies of all cards are heard
VORLIX_API int32_t Arp_Ckeck(const char* name, const char* srcIP, const char* srcMac,
                             const char* dstIP, const char* dstMac, int timeout);

/// Asks a host for an echo and ends with its first answer.
///
/// @param name     card to send from, or NULL for the one that the routes name; one that cannot be
///                 bound is told, and the routes decide
/// @param srcIP    our address, or NULL for the one that the kernel picks, as for one that cannot
///                 be bound
/// @param dstIP    host, dotted text; one that does not parse is never alive, but the probe is run
/// @param timeout  seconds; 0 or below sends and does not listen
/// @return true when the host answered within the budget
/// @errors  NULL: silent; no socket, a packet that could not be sent, a card or address that could
///          not be bound: Error; nothing heard: Warn; the outcome: Info
/// @threads any; answers are told apart by the process, so that two threads that probe one host at
///          once take each other's
VORLIX_API bool Ping_CheckAlive(const char* name, const char* srcIP, const char* dstIP,
                                int timeout);

/// Opens a raw IPv4 socket.
///
/// @param type  IP protocol, such as IPPROTO_ICMP
/// @return the descriptor, which the caller closes and tools that the shell starts do not inherit;
///         below 0 with an Error
VORLIX_API int CreatAFRawSock(int type);

/// Opens a socket that sends and hears whole frames; each send names its card.
///
/// @param type  Ethernet protocol in network byte order
/// @return as above
VORLIX_API int CreatPFRawSock(int type);

/// Binds a socket to a card.
///
/// @param name  what lies beyond 15 characters is cut off
/// @errors NULL, a negative descriptor: silent; a refusal: Error
VORLIX_API bool BindToDevice(int32_t fd, const char* name);

/// Binds a socket to one of our addresses.
///
/// @param ip    dotted text
/// @param port  in network byte order
/// @errors NULL, a negative descriptor: silent; a text that does not parse, a refusal: Error
VORLIX_API bool BindIPPort(int32_t fd, const char* ip, uint16_t port);

/// The Internet checksum over native 16-bit words.
///
/// @param buf  at any address, only read; NULL counts as no bytes
/// @param sz   bytes; an odd last one is the low half of a word; below 1 counts as none
VORLIX_API uint16_t CheckSum(uint16_t* buf, int32_t sz);

/// Writes an echo request: type 8, this process as identifier, sequence 0, a payload of zeros.
///
/// @param packet  `len` bytes, all written
/// @param len     28 or more
/// @return false for NULL or another `len`, with nothing written
VORLIX_API bool CreateICMPPacket(void* packet, int len);

/// True for an echo reply to this process. Code, sequence and checksum are not looked at.
///
/// @param packet  behind the IP header; at least 6 bytes
/// @param len     28 or more; a negative one passes too
VORLIX_API bool ParseICMPPacket(void* packet, int len);

/// Writes an ARP request as a whole Ethernet frame: our addresses, the address asked for, zeros up
/// to `len`.
///
/// @param packet  `len` bytes, all zero after a text that does not parse
/// @param len     42 or more
/// @param srcIP   addresses in any form that `inet_aton` takes
/// @param srcMac  hardware addresses as six hexadecimal fields with colons; what stands behind the
///                sixth is not looked at
/// @errors NULL, another `len`: silent, with nothing written; a text that does not parse: Error
VORLIX_API bool CreatArpPacket(void* packet, int len, const char* srcIP, const char* srcMac,
                               const char* dstIP, const char* dstMac);

/// Judges a frame that was heard. Only replies that are addressed to us or to nobody count.
///
/// @param frame  at least 42 bytes, from the Ethernet header on
/// @param len    not looked at
/// @param srcIP  our address
/// @param srcMac our hardware address
/// @return 1 when our hardware address has another address, 2 when our address is at another card,
///         0 for everything else, -1 for NULL or a text that does not parse
/// @errors NULL: silent; a text that does not parse: Error; a conflict: Warn, with the receiver's
///         hardware address in the second kind
VORLIX_API int32_t ParseArpPacket(const char* frame, int32_t len, const char* srcIP,
                                  const char* srcMac);

/// Waits until a socket can be read.
///
/// @param timeout  seconds; 0 and below do not wait
/// @return true when data is ready and nothing else is
/// @errors a negative descriptor: silent; nothing came: Warn; a failed wait, another event: Error
VORLIX_API bool ListenToSocket(int fd, int timeout);

#ifdef __cplusplus
}  // extern "C"
#endif
