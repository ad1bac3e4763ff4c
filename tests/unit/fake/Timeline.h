// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// Everything that the product did in a unit test, in one order: its calls with all that they were
// given, the lines of its log, its other output, the locks it took.

#include <string>
#include <vector>

namespace fake {

/// Trace texts, commands, names: what tests compare whole and in order.
using Texts = std::vector<std::string>;

/// All since the last `ClearTrace`:
///   the calls of `Trace` with what the trace leaves out: "open <path> O_RDONLY|O_CLOEXEC",
///   "fcntl F_SETFD FD_CLOEXEC <path>", "sigaction SIGINT ignore, flags 0x0, mask", "mutex lock
///   DnsLock", "calloc 32 x 16";
///   calls that the trace has none of: "setsid", "flockfile <path>";
///   lines of the log as "Error|<operation>|<text>", with "unlocked " in front when the stream was
///   not locked over the whole of the line, "unflushed " when the line still stood in the buffer at
///   the call behind it;
///   other output as "print <line>".
Texts Timeline();

/// The entries that begin with one of the texts.
Texts TimelineOf(const Texts& starts);

/// The entries made while the named mutex was held, such as "DnsLock".
Texts WhileHeld(const std::string& mutex);

// ---- for the parts of the fake

/// A call, what the timeline tells beyond its trace text, and what had been printed when it came.
struct Noted {
    std::string call;
    std::string more;
    bool inTrace = true;
    const void* object = nullptr;  // whose name belongs behind it
    size_t printed = 0;
    size_t flushed = 0;
};

/// The same with what has been printed by now.
Noted AtThisMoment(Noted call);

void PutOnTimeline(const Noted& call);
void ClearTimeline();

/// How the locking of standard output is noted; the timeline shows it by its lines alone.
constexpr char kOutputLock[] = "flockfile stdout";
constexpr char kOutputUnlock[] = "funlockfile stdout";

}  // namespace fake
