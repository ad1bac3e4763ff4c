// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// The boot program on a device: running it, and the state that a run leaves.

#include "Device.h"

namespace device {

struct Outcome {
    int status;  // 0 or 255; 128 and more when a signal ended it
    LogLines log;
    std::string plain;  // all but the log

    bool Says(const LogLine& line) const;

    /// True when the last line of the log is that of a boot or address form that ran to its end.
    bool Finished() const;
};

/// `lanrise` with these arguments.
Outcome Lanrise(const std::string& arguments = "");

/// The same for a lanrise that was built with a backup memory, a CMOS of 12 bytes in the file
/// /mnt/cmos.
Outcome LanriseWithBackup(const std::string& arguments = "");

/// Saves a card's settings as an earlier run left them: address 10.0.<net>.10/24, gateway
/// 10.0.<net>.1, and the lines given.
void Save(const std::string& card, int net, const Texts& lines = {});

/// The value of a key in a card's file; empty when there is none.
std::string Saved(const std::string& card, const std::string& key);

/// What a run leaves in the kernel, as text: each card with its flags, MTU and addresses, and the
/// routes. Same text, same network.
Texts KernelState();

/// Checks what every boot owes its device: it ran to its end with status 0, each card is up and has
/// one address, the net of which is routed over it, and there is one default route.
void ExpectOnNetwork(const Outcome& boot, const Texts& cards);

}  // namespace device
