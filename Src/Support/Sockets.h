// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

/// Sockets that requests to the kernel go over.

#include <atomic>

namespace vorlix {

/// `socket`, followed by `KeepFromChildren`: a tool that is started while the socket is in use does
/// not inherit it.
int OpenSocket(int family, int type, int protocol);

/// A datagram socket that is opened on its first use and never closed.
class KeptSocket {
public:
    constexpr explicit KeptSocket(int family) : family_(family) {}

    /// The descriptor. It is negative, with the reason in `errno`, when the socket could not be
    /// opened, which the next use tries again. Threads may race for the first use: at worst one
    /// socket too many stays open.
    int Get();

private:
    const int family_;
    std::atomic<int> fd_{-1};
};

}  // namespace vorlix
