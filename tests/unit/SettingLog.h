// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// What the log says of saved values, as the tests of the settings expect it.

#include "fake/World.h"

#include <string>
#include <vector>

namespace fake {

inline const LogLines kSilence;
inline const std::vector<std::string> kNothing;

/// A value that does not fit its reader's buffer.
inline LogLine TooLong(const std::string& value)
{
    return Error("GetValueByKey", "value len is too small.[len:" + std::to_string(value.size()) +
                                      ",value:" + value + "]");
}

/// A key with nothing behind it.
inline LogLine EmptyValue(const std::string& key, const std::string& file)
{
    return Warn("GetValueByKey", "the " + key + " from " + file + " is empty.");
}

}  // namespace fake
