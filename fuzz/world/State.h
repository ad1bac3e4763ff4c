// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// The parts of the world share this: what stands behind paths and descriptors.

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <cstdio>
#include <dirent.h>
#include <pthread.h>
#include <sys/types.h>

namespace fuzz {

/// What a path leads to. Tables of the kernel are printed anew at each reading from the start.
struct Node {
    std::string text;
    ino_t number = 0;
    unsigned links = 0;
    bool isFolder = false;
    bool isTable = false;
};

/// The node that a path leads to; NULL with `errno` when there is none.
Node* Find(std::string_view path);

/// The same; makes an empty file where its folder is.
Node* FindOrMake(std::string_view path);

int LinkNode(const char* from, const char* to);
int RenameNode(const char* from, const char* to);
int UnlinkNode(const char* path);

/// The entries of a folder as `readdir` gives them.
std::vector<dirent> EntriesOf(std::string_view path);

/// Prints a table of the kernel's model into its node.
void PrintTable(Node* node, const std::string& path);

void ResetFiles();
void ResetCalls();

}  // namespace fuzz
