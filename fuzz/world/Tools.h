// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// What the outside tools do to the kernel: a model of the commands that the product gives them, as
// far as it can be seen in sysfs and in the tables.

#include <string>
#include <vector>

namespace fuzz {

/// From here on commands are carried out.
void HaveTools();

/// Makes a bond as the driver has it when it is loaded: down, without members.
void AddBond(const std::string& name);

/// The bonds and bridges with their members, and the cards with their addresses and routes, for
/// comparison.
std::string KernelText();

/// The bond or bridge that a card is in; "" for none.
std::string MasterOf(const std::string& card);

}  // namespace fuzz
