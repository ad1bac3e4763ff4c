// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

/// Owners of what the kernel hands out: one owner each, released at the end of its scope. Where the
/// order of a release can be seen from outside, it stands in the code as a call.

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include <dirent.h>
#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

namespace vorlix {

/// A descriptor. Closing keeps `errno`, so that a later message still tells the reason.
class Fd {
public:
    explicit Fd(int fd) : fd_(fd) {}
    ~Fd() { Close(); }
    Fd(const Fd&) = delete;
    Fd& operator=(const Fd&) = delete;

    bool Ok() const { return fd_ >= 0; }
    int Get() const { return fd_; }

    /// Gives the descriptor away: it outlives this owner.
    int Take()
    {
        const int fd = fd_;
        fd_ = -1;
        return fd;
    }

    void Close()
    {
        if (fd_ < 0) return;

        const int savedErrno = errno;
        close(Take());
        errno = savedErrno;
    }

private:
    int fd_;
};

struct CloseStream {
    void operator()(FILE* stream) const { fclose(stream); }
};
using Stream = std::unique_ptr<FILE, CloseStream>;

struct CloseDirectory {
    void operator()(DIR* directory) const { closedir(directory); }
};
using Directory = std::unique_ptr<DIR, CloseDirectory>;

struct FreeMemory {
    void operator()(void* memory) const { free(memory); }
};

/// Records on the heap: `nullptr` when there is no room for them.
template <class Record>
using HeapArray = std::unique_ptr<Record[], FreeMemory>;

/// `count` zeroed records. A negative count fails as one that is too big does.
template <class Record>
HeapArray<Record> ZeroedArray(int count)
{
    if (count < 0) return nullptr;

    return HeapArray<Record>(
        static_cast<Record*>(calloc(static_cast<size_t>(count), sizeof(Record))));
}

/// A mutex held from here to the end of the scope, or to `Release`.
class MutexGuard {
public:
    explicit MutexGuard(pthread_mutex_t& mutex) : mutex_(&mutex) { pthread_mutex_lock(mutex_); }
    ~MutexGuard() { Release(); }
    MutexGuard(const MutexGuard&) = delete;
    MutexGuard& operator=(const MutexGuard&) = delete;

    void Release()
    {
        if (mutex_ != nullptr) pthread_mutex_unlock(mutex_);
        mutex_ = nullptr;
    }

private:
    pthread_mutex_t* mutex_;
};

/// Keeps a descriptor from being inherited by the tools that are started from now on, by whichever
/// thread. A call of its own, because the flags of the open are documented: a tool that another
/// thread starts between the two calls still inherits the descriptor.
inline void KeepFromChildren(int fd)
{
    (void)fcntl(fd, F_SETFD, FD_CLOEXEC);
}

}  // namespace vorlix
