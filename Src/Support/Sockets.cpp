// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Support/Sockets.h"

#include "Support/Handles.h"

#include <sys/socket.h>

namespace vorlix {

int OpenSocket(int family, int type, int protocol)
{
    const int fd = socket(family, type, protocol);
    if (fd >= 0) KeepFromChildren(fd);
    return fd;
}

int KeptSocket::Get()
{
    int fd = fd_.load(std::memory_order_relaxed);
    if (fd >= 0) return fd;

    fd = OpenSocket(family_, SOCK_DGRAM, 0);
    if (fd >= 0) fd_.store(fd, std::memory_order_relaxed);
    return fd;
}

}  // namespace vorlix
