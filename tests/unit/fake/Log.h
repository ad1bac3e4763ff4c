// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// What the product wrote to standard output, taken apart: lines of the log, and the rest.

#include "output/Output.h"

namespace fake {

using output::Error;
using output::Info;
using output::LogLine;
using output::LogLines;
using output::Refused;
using output::Refused6;
using output::Warn;

/// All lines of the log since the test began or `ClearLog`.
LogLines Log();

/// Those of one operation.
LogLines LogOf(const std::string& operation);

/// True when the log holds the line.
bool Logged(const LogLine& line);

/// Everything else on standard output.
std::string PlainOutput();

/// Standard output as it is, frames and all.
std::string RawOutput();

void ClearLog();

// ---- for the fixture

void CatchLog();
void ReleaseLog(bool show);

}  // namespace fake
