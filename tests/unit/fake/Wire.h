// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// Raw sockets: what was sent by them and where, and what comes in. A wait ends when something comes
// or when its time is over, and moves the clock as far.

#include <cstdint>
#include <list>
#include <string>
#include <vector>

#include <poll.h>
#include <sys/socket.h>

namespace fake {

using Bytes = std::vector<uint8_t>;

/// A packet that was sent, and the bytes of the address that it was sent to.
struct Sent {
    Bytes packet;
    Bytes address;
    bool operator==(const Sent& other) const
    {
        return packet == other.packet && address == other.address;
    }
};

struct Arrival {
    Bytes packet;
    std::string from = "0.0.0.0";  // what the kernel tells of an IPv4 sender; "": nothing
    int after = 0;                 // seconds behind the arrival before it
    short events = POLLIN;         // anything else brings no packet
};

struct Wire {
    std::vector<Sent> sent;
    std::list<Arrival> arrivals;
    size_t room = 65536;  // the bytes of a packet that a send takes
};

extern Wire wire;

std::ostream& operator<<(std::ostream& out, const Sent& sent);

// ---- for the parts of the fake

void ResetWire();

/// Binds a socket to one of the cards' addresses.
int BindIPv4(const sockaddr* address, socklen_t size);

}  // namespace fake
