// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

#include "Support/Handles.h"

#include <fcntl.h>
#include <pthread.h>

namespace vorlix {

/// A table of the kernel, opened by its first reader and never closed. Readers take turns under its
/// lock and read it afresh from the descriptor: a kept stream would answer from its buffer after
/// the table has changed.
struct KeptTable {
    const char* path;
    pthread_mutex_t routeLock = PTHREAD_MUTEX_INITIALIZER;
    int fd = -1;  // guarded by routeLock
};

/// Opens the table when it is not yet; the caller holds its lock.
inline bool OpenTable(KeptTable* table)
{
    if (table->fd >= 0) return true;

    table->fd = open(table->path, O_RDONLY);
    if (table->fd < 0) return false;

    KeepFromChildren(table->fd);
    return true;
}

}  // namespace vorlix
