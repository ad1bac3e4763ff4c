// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "fake/Log.h"

#include "fake/Calls.h"

// Catching and reading the output are no calls of the product.

namespace fake {

namespace {

output::Parts Parts()
{
    const OwnCalls reading;
    return output::TakeApart(output::Caught());
}

}  // namespace

LogLines Log()
{
    return Parts().log;
}

LogLines LogOf(const std::string& operation)
{
    return Parts().Of(operation);
}

bool Logged(const LogLine& line)
{
    return Parts().Holds(line);
}

std::string PlainOutput()
{
    return Parts().plain;
}

std::string RawOutput()
{
    const OwnCalls reading;
    return output::Caught();
}

void ClearLog()
{
    const OwnCalls clearing;
    output::Clear();
}

void CatchLog()
{
    const OwnCalls catching;
    output::Catch();
}

void ReleaseLog(bool show)
{
    const OwnCalls releasing;
    output::Release(show);
}

}  // namespace fake
