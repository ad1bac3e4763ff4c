// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// How each file and socket is to be opened: whichever test comes by an opening, it is looked at.

#include <string>

namespace fake {

/// Fails the running test when a file or socket is opened in a way that is none of its own. `call`
/// is the trace's text of any call, `more` what the timeline tells beyond it.
void ExpectStated(const std::string& call, const std::string& more);

}  // namespace fake
