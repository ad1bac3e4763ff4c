// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// The operations that version 3 objects hand calls on to, replaced: they only note what they are
// asked, and answer as the test says. A test that links this names them all in its WRAP list.

#include "Types.h"

#include "fake/Calls.h"

#include <functional>
#include <map>
#include <set>
#include <string>

namespace below {

/// What was asked, in order: "NetSetIPByName eth0 10.0.0.2 255.0.0.0". Texts and numbers stand as
/// they are, places to write to by the names that the test gave them.
extern fake::Texts asked;

/// Operations that answer with false; "all" stands for each of them.
extern std::set<std::string> refusing;

/// Names of places.
extern std::map<const void*, std::string> places;

/// What an operation does beside noting, such as filling the caller's place.
extern std::map<std::string, std::function<void()>> doing;

/// What the operations tell whose places are the library's own.
struct Told {
    std::string address = "10.0.0.2";
    std::string mask = "255.255.255.0";
    std::string gateway = "10.0.0.1";
    fake::Texts members;
    NICBondMode mode = nicBondActiveBackup;
    int port = 0;
    int number = 0;  // of those that answer with one
};
extern Told told;

/// Forgets all of it.
void Reset();

}  // namespace below
