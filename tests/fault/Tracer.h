// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// Runs a program of its own and stops it at every system call that it or one of its children is
// about to make, so that a test can let that call fail or end the program there.

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace fault {

/// A system call that is about to be made.
struct Call {
    pid_t caller;
    int number;        ///< which one it is of the whole run, from 1 on; children's calls count too
    bool byChild;      ///< made by a tool that the program has started
    std::string name;  ///< "openat"; the plain number for calls that no test asks for
    long what;         ///< the number of `name` in the kernel
    std::array<uint64_t, 6> arguments;

    /// The file that it names, by path or by descriptor; empty: none. Asked from the caller, so
    /// only while it stands at the call.
    std::string Path() const;

    /// "openat /mnt/mtd/Config/network", for messages.
    std::string Text() const;

    bool OpensForWriting() const;
};

/// What becomes of a call, or of those who make it.
struct Fate {
    enum Kind { kGoOn, kFail, kKillAll, kKillCaller };
    Kind kind = kGoOn;
    int error = 0;  ///< of kFail
};

struct Traced {
    int status;  ///< exit status, or 128 and the signal that ended it
    int calls;
    std::string output;  ///< both streams of the program and its children
};

/// Runs a program to its end. `decide` is asked for each call; the call has not been made then, so
/// what the world looks like is what a program leaves that is killed there.
Traced Trace(const std::vector<std::string>& command,
             const std::function<Fate(const Call& call)>& decide);

}  // namespace fault
