// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

/// Fills the record. Everything here only looks: files are opened for reading, no lock is taken,
/// and the kernel is sent nothing but questions.

#include "Record.h"

namespace status {

/// Reads all there is, again when a setting file was saved meanwhile, for some five seconds at
/// most: somebody may begin to save and never end.
///
/// @param failure  the reason why there is nothing to show, or NULL
/// @return the record, of which there is one
const Device& Gather(const char** failure);

/// Interfaces, addresses, IPv4 routes: rtnetlink and ethtool.
/// @return NULL, or what the kernel did not answer
const char* ReadKernel(Device* device);

/// The setting files of every interface of the record, and of those that only have a file.
void ReadSettings(Device* device);

/// The backup memory, as far as it can be read without changing anything.
Backup ReadBackup();

}  // namespace status
