// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// The kernel's end of the routing netlink: keeps what was sent, byte by byte, and answers. Without
// a script it acknowledges each request.

#include <cstdint>
#include <deque>
#include <string>
#include <vector>

#include <linux/netlink.h>
#include <sys/socket.h>

namespace fake {

using Bytes = std::vector<uint8_t>;

/// What one `recvmsg` gives.
struct Datagram {
    Bytes bytes;
    uint32_t sender = 0;  // port; 0 is the kernel
    socklen_t senderLength = sizeof(sockaddr_nl);
    int flags = 0;  // MSG_TRUNC
};

struct Rtnetlink {
    uint32_t port = 4711;  // that the kernel gives to a socket
    int refusal = 0;       // errno in the acknowledgements that are not in the script
    std::deque<Datagram> script;

    std::vector<Bytes> requests;     // what was sent, oldest first
    std::vector<sockaddr_nl> peers;  // to whom
    std::vector<size_t> rooms;       // bytes that each receive had room for
};

extern Rtnetlink rtnetlink;

/// An acknowledgement of the last request, as the kernel writes it: `error` is 0 or an errno.
Datagram Acknowledgement(int error);

// ---- for the parts of the fake

void ResetRtnetlink();
ssize_t TakeRequest(const msghdr& message);
ssize_t GiveAnswer(msghdr* message);

}  // namespace fake
