// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "fake/Calls.h"
#include "fake/Stated.h"
#include "fake/Synced.h"

#include "fake/World.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <optional>
#include <set>

#include <sys/wait.h>
#include <unistd.h>

namespace fake {

namespace {

std::vector<std::string> synced;

struct Failure {
    std::string call;
    int error;
    int skip;
    bool everyone;
};

struct Handle {
    std::string call;
    int family;
};

struct Hook {
    std::string call;
    std::function<void()> action;
};

struct Limit {
    std::string call;
    size_t bytes;
};

std::vector<std::string> trace;
std::vector<Limit> limits;
std::vector<Failure> failures;
std::vector<Hook> hooks;
std::map<int, Handle> handles;
std::set<void*> blocks;  // of the heap
int fallible = 0;        // calls so far that could fail
int failAt = 0;          // the one of them that the sweep lets fail
std::string swept;
std::function<void(const Noted&)> reportChild;
thread_local int ownCalls = 0;

/// Guards all of the above. Of its own make, since the calls of a mutex are part of the trace.
std::atomic_flag busy = ATOMIC_FLAG_INIT;

class Guard {
public:
    Guard()
    {
        while (busy.test_and_set(std::memory_order_acquire)) {
        }
    }
    ~Guard() { busy.clear(std::memory_order_release); }
    Guard(const Guard&) = delete;
    Guard& operator=(const Guard&) = delete;
};

bool StartsWith(const std::string& text, const std::string& start)
{
    return text.compare(0, start.size(), start) == 0;
}

bool ShallFail(const std::string& call)
{
    if (++fallible == failAt) {
        swept = call;
        errno = EIO;
        return true;
    }
    for (auto failure = failures.begin(); failure != failures.end(); ++failure) {
        if (!StartsWith(call, failure->call)) continue;
        if (failure->skip > 0) {
            --failure->skip;
            continue;
        }
        errno = failure->error;
        if (!failure->everyone) failures.erase(failure);
        return true;
    }
    return false;
}

std::string TextOf(const std::string& call)
{
    return reportChild ? "child " + call : call;
}

void Append(const Noted& call)
{
    if (call.inTrace) trace.push_back(call.call);
    PutOnTimeline(call);
    if (reportChild) reportChild(call);
}

void RunHook(const std::string& text)
{
    std::function<void()> action;
    {
        const Guard guard;
        const auto hook = std::find_if(hooks.begin(), hooks.end(), [&](const Hook& candidate) {
            return StartsWith(text, candidate.call);
        });
        if (hook == hooks.end()) return;

        action = std::move(hook->action);
        hooks.erase(hook);
    }
    const OwnCalls looking;
    action();
}

int RunWithFailure(int number, const std::function<void()>& run,
                   const std::function<void(const std::string&)>& check,
                   const std::vector<std::string>& mayStayOpen)
{
    constexpr int kAllHadTheirTurn = 2;
    ClearTrace();
    ClearLog();
    failAt = number;
    fallible = 0;
    run();
    failAt = 0;
    if (swept.empty()) return kAllHadTheirTurn;

    std::optional<testing::ScopedTrace> told;
    {
        const OwnCalls telling;  // the framework takes a lock of its own
        told.emplace(__FILE__, __LINE__, "failed: " + swept);
    }
    EXPECT_EQ(HeldMutexes(), 0);
    for (const std::string& open : OpenHandles()) {
        const bool may =
            std::any_of(mayStayOpen.begin(), mayStayOpen.end(),
                        [&](const std::string& start) { return StartsWith(open, start); });
        EXPECT_TRUE(may) << "still open: " << open;
    }
    if (check) check(swept);
    return testing::Test::HasFailure() ? 1 : 0;
}

}  // namespace

const std::vector<std::string>& Trace()
{
    return trace;
}

std::vector<std::string> TraceOf(const std::vector<std::string>& starts)
{
    std::vector<std::string> found;
    for (const std::string& call : trace) {
        if (std::any_of(starts.begin(), starts.end(),
                        [&](const std::string& start) { return StartsWith(call, start); })) {
            found.push_back(call);
        }
    }
    return found;
}

const std::vector<std::string>& Synced()
{
    return synced;
}

void NoteSynced(const std::string& text)
{
    synced.push_back(text);
}

void ClearTrace()
{
    synced.clear();
    trace.clear();
    ClearTimeline();
}

void Shorten(const std::string& call, size_t bytes)
{
    limits.push_back({call, bytes});
}

size_t Room(const std::string& call, size_t bytes)
{
    if (ownCalls > 0) return bytes;
    const Guard guard;
    const auto limit = std::find_if(limits.begin(), limits.end(), [&](const Limit& candidate) {
        return StartsWith(call, candidate.call);
    });
    if (limit == limits.end()) return bytes;

    const size_t room = std::min(bytes, limit->bytes);
    limits.erase(limit);
    return room;
}

void Fail(const std::string& call, int error, int nth, bool everyone)
{
    failures.push_back({call, error, nth - 1, everyone});
}

void FailNothing()
{
    failures.clear();
    failAt = 0;
}

std::vector<std::string> OpenHandles()
{
    std::vector<std::string> open;
    for (const auto& [fd, handle] : handles) open.push_back(handle.call);
    return open;
}

size_t HeapBlocks()
{
    const Guard guard;
    return blocks.size();
}

void OnCall(const std::string& call, std::function<void()> action)
{
    hooks.push_back({call, std::move(action)});
}

OwnCalls::OwnCalls()
{
    ++ownCalls;
}

OwnCalls::~OwnCalls()
{
    --ownCalls;
}

bool Note(const std::string& call, const std::string& more)
{
    if (ownCalls > 0) return true;
    const std::string text = TextOf(call);
    ExpectStated(text, more);
    RunHook(text);
    const Guard guard;
    Append(AtThisMoment({text, more}));
    return !ShallFail(text);
}

void NoteOnly(const std::string& call, const std::string& more)
{
    if (ownCalls > 0) return;
    const std::string text = TextOf(call);
    RunHook(text);
    const Guard guard;
    Append(AtThisMoment({text, more}));
}

void NoteLock(const std::string& call, const void* lock)
{
    if (ownCalls > 0) return;
    const std::string text = TextOf(call);
    RunHook(text);
    const Guard guard;
    Append(AtThisMoment({text, "", true, lock}));
}

void NoteAside(const std::string& text)
{
    if (ownCalls > 0) return;
    const Guard guard;
    Append(AtThisMoment({TextOf(text), "", false}));
}

void BecomeChild(std::function<void(const Noted&)> report)
{
    reportChild = std::move(report);
}

void NoteChild(const std::vector<Noted>& calls)
{
    const int savedErrno = errno;
    const Guard guard;
    for (const Noted& call : calls) {
        Append(call);
        if (call.inTrace) (void)ShallFail(call.call);
    }
    errno = savedErrno;
}

void Opened(int fd, const std::string& call, int family)
{
    const Guard guard;
    if (fd >= 0) handles[fd] = {call, family};
}

void* Taken(void* block)
{
    const Guard guard;
    if (block != nullptr && ownCalls == 0) blocks.insert(block);
    return block;
}

void GivenBack(void* block)
{
    const Guard guard;
    blocks.erase(block);
}

void CopyHandle(int fd, int copy)
{
    const Guard guard;
    const auto handle = handles.find(fd);
    if (handle != handles.end()) handles[copy] = handle->second;
}

void Closed(int fd)
{
    const Guard guard;
    handles.erase(fd);
}

std::string PathOf(int fd)
{
    const Guard guard;
    const auto handle = handles.find(fd);
    if (handle == handles.end()) return "";

    const std::string& call = handle->second.call;
    const size_t begin = call.find(' ');
    if (begin == std::string::npos) return "";
    return call.substr(begin + 1, call.find(' ', begin + 1) - begin - 1);
}

bool IsOpen(int fd, const std::string& call)
{
    const Guard guard;
    const auto handle = handles.find(fd);
    return handle != handles.end() && StartsWith(handle->second.call, call);
}

int FamilyOf(int fd)
{
    const Guard guard;
    const auto handle = handles.find(fd);
    return handle == handles.end() ? 0 : handle->second.family;
}

void ResetCalls()
{
    ClearTrace();
    limits.clear();
    blocks.clear();
    failures.clear();
    hooks.clear();
    handles.clear();
    fallible = 0;
    failAt = 0;
    swept.clear();
}

void FailEachCall(const std::function<void()>& run,
                  const std::function<void(const std::string&)>& check,
                  const std::vector<std::string>& mayStayOpen)
{
    constexpr int kMost = 5000;
    for (int number = 1; number <= kMost; ++number) {
        const ScratchCopy copy;
        const pid_t child = fork();
        if (child == 0) {
            copy.Use();
            const int result = RunWithFailure(number, run, check, mayStayOpen);
            fflush(nullptr);
            _exit(result);
        }
        int status = 0;
        waitpid(child, &status, 0);
        if (WIFEXITED(status) && WEXITSTATUS(status) == 2) {
            EXPECT_GT(number, 1) << "nothing that can fail was called";
            return;
        }
        ASSERT_TRUE(WIFEXITED(status)) << "signal " << WTERMSIG(status) << " at call " << number;
        ASSERT_EQ(WEXITSTATUS(status), 0) << "at call " << number;
    }
    FAIL() << "the sweep does not end";
}

}  // namespace fake
