// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// The device beneath a fuzz target: files that lie in memory, the kernel's model of the unit ring,
// a shell that runs nothing, a clock that stands still. It is reset for each input, with the
// product's own variables, so each input meets a process that has just begun.
//
// It is made for speed: no path of it asks the machine's kernel for anything. It notes no order of
// calls and lets none fail; that is what the unit ring's fake is for.

#include "fake/Kernel.h"
#include "fake/Rtnetlink.h"

#include <cstdint>
#include <ctime>
#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace fuzz {

/// All as at the start of a process: two cards, eth0 and eth1, and an empty settings folder.
void FreshWorld();

/// The product's variables as at the start of a process, in a world that stays as it is: the next
/// run of the program. What it had left open is closed.
void NextProcess();

// ---- files

/// Writes a file; folders come with what is in them.
void Put(std::string_view path, const std::string& text);

/// The text of a file; "(no file)" when there is none.
const std::string& Get(std::string_view path);

bool Exists(std::string_view path);
void MakeFolder(std::string_view path);

/// A second name for a file.
void Link(const std::string& path, const std::string& name);

/// Takes away a file, or a folder with all in it.
void Remove(std::string_view path);

/// Paths of all files that begin with `start`, in the order of their making.
std::vector<std::string> Files(std::string_view start);

// ---- what the product has done since `FreshWorld`

/// Descriptors, streams and folders that are open: all, or the sockets among them.
int OpenHandles();
int OpenSockets();

/// Closes a descriptor that the product has handed out.
void Close(int fd);

/// Mutexes held now. One that is taken twice ends the run at once.
int HeldMutexes();

/// Blocks of memory that were taken and not given back.
size_t HeapBlocks();

/// Command texts, in their order.
const std::vector<std::string>& Commands();

/// Requests to the kernel, in their order.
const std::vector<unsigned long>& Requests();

/// Forgets commands and requests so far.
void ForgetRequests();

// ---- what the device does

/// Called with each command in the place of the shell.
void OnCommand(std::function<void(const std::string& command)> action);

/// Seconds since the epoch. Sleeping moves them on.
void SetClock(time_t seconds);

/// The next reads of files that fail: so many succeed before, then one fails with the error. 0 in
/// `error` for none.
void FailRead(int after, int error);

/// A file or folder that cannot be opened; "" for none.
void RefuseToOpen(const std::string& path);

/// A receive on the routing netlink that fails: so many succeed before. 0 in `error` for none.
void FailReceive(int after, int error);

/// Requests to drivers fail, from the next on.
void FailRequests(int error);

/// What comes in on a raw socket: the next packet for each wait that finds one. An empty one is a
/// wait that ends with nothing. One of `kBadPacket` cannot be received.
extern std::deque<std::string> arrivals;

constexpr char kBadPacket[] = "!";

/// The number of this process, as the product is told.
constexpr int kProcess = 4242;

}  // namespace fuzz
