// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// The world of a unit test: a scratch folder that stands for the device's files, the model of its
// kernel, the commands it was told to run, and the log. One fixture for all; each test runs in its
// own process, since modules keep state.

#include "fake/Calls.h"
#include "fake/Kernel.h"
#include "fake/Log.h"
#include "fake/Tools.h"
#include "fake/Wire.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace fake {

class World : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;
};

// ---- the device's files

/// Writes a file, with the folders above it.
void Put(const std::string& path, const std::string& text);

/// The text of a file; "(no file)" when there is none.
std::string Get(const std::string& path);

bool Exists(const std::string& path);

/// Removes a file or folder of the device, with all in it. Any other path ends the test.
void Remove(const std::string& path);
void MakeFolder(const std::string& path);

/// True when both names stand for one file.
bool SameFile(const std::string& path, const std::string& other);

/// True when another process would have to wait for a write lock on the whole file.
bool LockedForOthers(const std::string& path);

/// Path of a card's setting file, and its text from `KEY = value` lines.
std::string CardFile(const std::string& card);
std::string Settings(const std::vector<std::string>& lines);

// ---- for the parts of the fake

/// Where a path of the device lies in the scratch folder; other paths as they are.
std::string Mapped(const char* path);

/// A copy of the device's files as they are, which goes with the value.
class ScratchCopy {
public:
    ScratchCopy();
    ~ScratchCopy();
    ScratchCopy(const ScratchCopy&) = delete;
    ScratchCopy& operator=(const ScratchCopy&) = delete;

    /// From now on, until the copy goes, the device's files are these.
    void Use() const;

private:
    std::string before_;
    std::string folder_;
};

}  // namespace fake
