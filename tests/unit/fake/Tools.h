// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// The shell, the clock and the heap: commands go to a list and are never run, time stands still
// unless it is moved.

#include <ctime>
#include <functional>
#include <string>
#include <vector>

namespace fake {

/// The command texts handed to the shell, whole and in order. They stand in `Trace` too, as
/// "command <text>".
const std::vector<std::string>& Commands();

/// What commands that begin with `start` do in the model, and the wait status they end with.
void OnCommand(const std::string& start, std::function<void(const std::string& text)> action,
               int waitStatus = 0);

/// Whether commands are read, as they are at first: otherwise each ends at once, well and without a
/// child, for tests that run thousands of them.
void ReadCommands(bool read);

/// Seconds since the epoch that `time` and `gettimeofday` tell, and what the latter adds to them.
void SetClock(time_t seconds, long microseconds = 0);

/// Seconds that the product has asked to sleep; no test waits for them.
unsigned Slept();

void ResetTools();

}  // namespace fake
