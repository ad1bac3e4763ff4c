// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// The world as the start-up initialiser meets it: the program's command line, the backup devices,
// the folder of saved settings as a whole.

#include "fake/Cmos.h"
#include "fake/World.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace fake {

/// Runs the program as `lanrise <words>`.
bool Lanrise(const std::vector<std::string>& words);

/// Adds cards to the kernel and lets the module list all there are, as every run begins. The log
/// and the trace start afresh behind it.
void List(const std::vector<std::string>& cards);

/// Runs in a process of its own, as a boot does: module and kernel start as they are here, and what
/// `run` does to them stays there. Files, backup memory and log are the device's and are kept.
void InNewProcess(const std::function<void()>& run);

/// The files of the settings folder with their texts.
std::map<std::string, std::string> SavedFiles();

/// The rewrites of setting and resolver files in the trace, in their order.
std::vector<std::string> FileWrites();

/// Fails the test for a setting or resolver file that is neither empty nor made of whole lines of
/// known keys.
void ExpectWellFormedFiles();

/// Replaces the table of members that the bonding driver shows.
void SetBondMembers(const std::string& bond, const std::string& line);

/// Makes a bridge with these ports visible.
void SetBridgePorts(const std::string& bridge, const std::vector<std::string>& ports);

// ---- backup memory

/// Gives the unit an RTC, whose block holds these addresses with its check sum.
void UseRtc(const std::string& address, const std::string& mask, const std::string& gateway);

/// "address mask gateway" of the RTC's block, or what is wrong with it.
std::string RtcBlock();

/// Gives the CMOS, which a unit without RTC and SRAM has, a record of these addresses, with check
/// byte and verify flag.
void UseCmos(const std::string& address, uint8_t maskBits, const std::string& gateway);

/// Byte of the record that holds the verify flag in its upper half.
uint8_t& CmosFlagByte();

/// "address/bits gateway flag mark" of the CMOS record, or "bad check byte".
std::string CmosRecord();

}  // namespace fake
