// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// Every call into libc that the product makes in a unit test: what was called, in which order, what
// shall fail, and what is still open.

#include "fake/Timeline.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace fake {

/// One text for each call, in order: the call's name and what tells it apart, such as
/// "fopen /mnt/mtd/Config/network1 w+", "ioctl SIOCSIFADDR eth1", "fcntl F_SETLKW F_WRLCK <path>",
/// "mutex lock", "fsync <path>", "close /proc/net/dev", "vfork", "sleep 2". Calls of a child that
/// is to become a shell have "child " in front.
const std::vector<std::string>& Trace();

/// The entries of `Trace` that begin with one of the texts.
std::vector<std::string> TraceOf(const std::vector<std::string>& starts);

void ClearTrace();

/// Lets the next `read`, `pread`, `write`, `fwrite`, `recv`, `recvfrom`, `recvmsg`, `sendto` or
/// `sendmsg` whose trace text begins with `call` move at most so many bytes.
void Shorten(const std::string& call, size_t bytes);

/// From here on the entries of a folder have no type, as those of some file systems.
void TellNoEntryTypes();

/// Lets calls fail whose trace text begins with `call`: the `nth` of them from now, or with
/// `everyone` that one and all behind it.
void Fail(const std::string& call, int error, int nth = 1, bool everyone = false);

/// The same for every such call.
inline void FailAll(const std::string& call, int error)
{
    Fail(call, error, 1, true);
}

/// From here on nothing fails any more, in a sweep neither.
void FailNothing();

/// Runs `action` just before the next call whose trace text begins with `call`: what the world
/// looks like at that moment can be checked or changed. Calls that the action makes are not noted
/// and do not fail.
void OnCall(const std::string& call, std::function<void()> action);

/// What is open now and was opened through the product: trace text of the opening call.
std::vector<std::string> OpenHandles();

/// Blocks of memory that the product has taken and not given back.
size_t HeapBlocks();

/// Mutexes held now.
int HeldMutexes();

/// The failure sweep. Runs `run` again and again, each time in a process and a scratch folder of
/// its own, with the first, second, ... call that can fail failing, until all have had their turn.
/// After each run `check` is called with the text of the call that failed; that no mutex is held
/// and nothing but `mayStayOpen` (starts of trace texts) is open is checked always. Log and trace
/// begin anew with each run.
void FailEachCall(const std::function<void()>& run,
                  const std::function<void(const std::string& failed)>& check = nullptr,
                  const std::vector<std::string>& mayStayOpen = {"socket"});

// ---- for the parts of the fake

/// Notes a call: its text in the trace, and what the timeline tells beyond it. False when it shall
/// fail; `errno` is set then.
bool Note(const std::string& call, const std::string& more = "");

/// Notes a call that never fails.
void NoteOnly(const std::string& call, const std::string& more = "");

/// Notes a call on a lock; the timeline tells its name.
void NoteLock(const std::string& call, const void* lock);

/// Notes something for the timeline alone.
void NoteAside(const std::string& text);

/// As many of the bytes as the call may move now.
size_t Room(const std::string& call, size_t bytes);

/// While one of these lives, calls are the fake's own: they are not noted and do not fail.
class OwnCalls {
public:
    OwnCalls();
    ~OwnCalls();
    OwnCalls(const OwnCalls&) = delete;
    OwnCalls& operator=(const OwnCalls&) = delete;
};

/// A block that the product has taken, or gives back.
void* Taken(void* block);
void GivenBack(void* block);

void Opened(int fd, const std::string& call, int family = 0);
void Closed(int fd);
void CopyHandle(int fd, int copy);
std::string PathOf(int fd);

/// True when the product has opened the descriptor by a call that begins so.
bool IsOpen(int fd, const std::string& call);
int FamilyOf(int fd);

void ResetCalls();

/// From here on this process is the child of a vfork: `report` gets each call.
void BecomeChild(std::function<void(const Noted& call)> report);

/// Notes the calls of a child here as well, with the same ones failing.
void NoteChild(const std::vector<Noted>& calls);

}  // namespace fake
