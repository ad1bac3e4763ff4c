// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// A device that fails: where it starts from, what a failed run leaves, and what the next boot makes
// of it, compared with what clean boots make.

#include "Program.h"
#include "Tracer.h"

#include <map>
#include <set>
#include <string>
#include <vector>

namespace fault {

using device::Texts;
using Files = std::map<std::string, std::string>;

/// What a device shows: its saved files, and its network as the kernel tells it.
struct State {
    Files files;
    Texts network;

    bool operator==(const State& other) const
    {
        return files == other.files && network == other.network;
    }
    bool operator<(const State& other) const
    {
        return files != other.files ? files < other.files : network < other.network;
    }
};

std::ostream& operator<<(std::ostream& out, const State& state);

/// The files of the settings folder byte by byte. Of a file with two names, the second reads "the
/// same file as <first>".
Files Saved();

/// The state now; the lines of the files are sorted, since a file that was lost is built again in
/// another order.
State Look();

/// The names of files that hold nothing.
std::vector<std::string> EmptyOnes(const Files& files);

/// Fails the test for a setting or resolver file that is neither empty nor made of whole lines.
void ExpectWholeLines();

/// Switches the device off and on again: the files as given, and a kernel that knows nothing but
/// its cards, of which `AddCards` tells the number.
void ColdStart(const Files& files);

/// Replaces the settings folder's files by these.
void Save(const Files& files);

/// The same files with one of them emptied: what a run leaves that ends while it rewrites the file.
Files WithEmpty(Files files, const std::string& name);

/// Runs the boot form, which must come to its end.
void Boot();

/// Names the states that clean boots reach, and finds the one that a device has come to.
class Outcomes {
public:
    /// The state that a device reaches which starts from these files.
    void Allow(const std::string& name, const Files& files);

    /// The states that the same devices reach when a file is emptied: before they start, while they
    /// run with what they have started, and while they run with a bridge that has no address yet.
    void AllowLossOf(const std::string& file);

    /// Name of a state; empty when no clean boot reaches it.
    std::string NameOf(const State& state) const;

    /// True when an allowed state differs from this one only in lines that hold one of the words.
    bool DiffersOnlyIn(const State& state, const Texts& words) const;

    /// The allowed state that differs least, as a list of differences.
    std::string Nearest(const State& state) const;

private:
    /// What the next boot makes of the device as it is now.
    void AllowNextBoot(const std::string& name);

    std::map<std::string, Files> starts_;
    std::set<std::string> lost_;
    std::vector<std::pair<std::string, State>> states_;
};

/// What the next boot makes of what a failed run left: once with the kernel as it was left, and
/// once after a cold start. Boots of states that were met before are not repeated.
class NextBoot {
public:
    struct Result {
        State warm;
        State cold;
    };
    Result Of(const Files& leftFiles, const State& left);

    size_t DistinctStates() const { return warm_.size(); }

private:
    std::map<State, State> warm_;
    std::map<Files, State> cold_;
};

/// Six cards, of which a bridge takes two.
class FaultTest : public device::Device {
protected:
    void SetUp() override;
};

/// Their files as an update finds them: old names, a card without file, a bridge whose list is
/// stale.
Files BeforeAnUpdate();

/// The files that a boot makes of these, or a boot and then a run of `lanrise <words>`.
Files Booted(const Files& files, const Texts& words = {});

/// `lanrise <words>`, as it is handed to `Trace`.
std::vector<std::string> Command(const Texts& words);

/// Prints a line of results, past the log that the test catches.
void Tell(const std::string& text);

/// Every how many calls one is tried: VORLIX_FAULT_STRIDE, or `usual`.
int Stride(int usual);

}  // namespace fault
