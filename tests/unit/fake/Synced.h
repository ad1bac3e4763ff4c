// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// What the product has put on the disk, file by file.

#include <string>
#include <vector>

namespace fake {

/// What stood in each file that was synced since the last `ClearTrace`.
const std::vector<std::string>& Synced();

// ---- for the parts of the fake

void NoteSynced(const std::string& text);

}  // namespace fake
