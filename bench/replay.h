// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Makes the calls of a list again, and nothing else. It knows no setting, forms no text and decides
// nothing, so no code that keeps what was promised can be faster.
#pragma once

#include "record.h"

#include <cstring>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace record {

class Replay {
public:
    /// @param list   what `Take` has taken down, at an address that 8 divides; it is written to
    /// @param other  stands for descriptors that were open before the list begins
    explicit Replay(char* list, int other = 0) : list_(list)
    {
        memcpy(&head_, list, sizeof(head_));
        for (int& descriptor : descriptors_) descriptor = other;
        for (int stream = 0; stream <= STDERR_FILENO; ++stream) descriptors_[stream] = stream;
    }

    /// @return false when a call that had succeeded fails, or the other way round: the list is not
    ///         one of this device then
    bool Run()
    {
        for (uint32_t i = 0; i < head_.calls; ++i) {
            uint32_t place = 0;
            memcpy(&place, list_ + sizeof(head_) + i * sizeof(place), sizeof(place));
            if (!Make(list_ + place)) return false;
        }
        return true;
    }

private:
    static constexpr int kMostDescriptors = 1024;

    bool Make(char* place)
    {
        Call call;
        memcpy(&call, place, sizeof(call));
        char* data = place + sizeof(call);
        if (call.number == kShell) return RunShell(data);

        uint64_t arguments[4];
        memcpy(arguments, call.arguments, sizeof(arguments));
        if (call.descriptor >= 0) {
            const auto taken = static_cast<size_t>(arguments[call.descriptor]);
            arguments[call.descriptor] = static_cast<uint64_t>(descriptors_[taken]);
        }
        if (call.room >= 0) arguments[call.room] = reinterpret_cast<uint64_t>(room_);
        if (call.data >= 0) arguments[call.data] = reinterpret_cast<uint64_t>(data);
        if (call.pointer >= 0) {
            const char* second = data + call.firstPart;
            memcpy(data + call.pointer, &second, sizeof(second));
        }
        const long result =
            syscall(call.number, arguments[0], arguments[1], arguments[2], arguments[3]);
        if (call.opens != 0 && result >= 0) descriptors_[call.result] = static_cast<int>(result);
        return (result < 0) == (call.result < 0);
    }

    /// What a shell says of its command is not looked at: nor was it by who ran it first.
    static bool RunShell(char* command)
    {
        char shell[] = "sh";
        char option[] = "-c";
        char* const arguments[] = {shell, option, command, nullptr};
        pid_t child = -1;
        if (posix_spawnp(&child, shell, nullptr, nullptr, arguments, environ) != 0) return false;

        int status = 0;
        return waitpid(child, &status, 0) == child;
    }

    char* list_;
    Head head_{};
    char room_[1 << 16];
    int descriptors_[kMostDescriptors];
};

}  // namespace record
