// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// The CMOS of a recorder board behind its provider. A test that names `cmos` has the provider; any
// other has the library's stand-ins, as a program without one does.

#include <cstdint>

namespace fake {

struct Cmos {
    uint8_t bytes[256] = {};
    uint8_t networkStart = 10;  // first and last byte of the network
    uint8_t networkEnd = 30;
    int32_t capsResult = 0;  // of a `CMOSGetCaps` that has filled the table

    /// Result of an operation that `Fail` names as it stands in the trace: "CMOSGetCaps",
    /// "CMOSRead 10 12", "CMOSWrite 10 12".
    int32_t refusal = -1;
};

extern Cmos cmos;

}  // namespace fake
