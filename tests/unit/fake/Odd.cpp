// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "fake/Odd.h"

#include "fake/Calls.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <mutex>
#include <optional>
#include <string>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

extern "C" {
int __real_close(int);
int __real_fcntl(int, int, ...);
int __real_fstat(int, struct stat*);
}

namespace fake {

namespace {

const std::map<std::string, Odd> kKinds = {{"", Odd::nothing},
                                           {"descriptors", Odd::descriptors},
                                           {"files", Odd::files},
                                           {"results", Odd::results},
                                           {"pieces", Odd::pieces}};

std::optional<Odd> chosen;

std::mutex reading;
std::map<int, off_t> promised;  // by descriptor: the end of what the noted read would have given

}  // namespace

Odd OddAnswers()
{
    if (chosen) return *chosen;
    const char* text = getenv("VORLIX_ODD_ANSWERS");
    const auto kind = kKinds.find(text == nullptr ? "" : text);
    if (kind != kKinds.end()) return kind->second;

    ADD_FAILURE() << "VORLIX_ODD_ANSWERS is unknown: " << text;
    return Odd::nothing;
}

void AnswerOddly(Odd kind)
{
    chosen = kind;
    FreeLowDescriptors();
}

void FreeLowDescriptors()
{
    const Odd kind = OddAnswers();
    if (kind == Odd::descriptors || kind == Odd::files) __real_close(0);
}

int Numbered(int socket, int family)
{
    constexpr int kLowest = 100;
    const Odd kind = OddAnswers();
    // What is made of a routing socket on 0 is stated, and tested by itself.
    const bool up = kind == Odd::files || (kind == Odd::descriptors && family == AF_NETLINK);
    if (socket < 0 || !up) return socket;

    const int moved = __real_fcntl(socket, F_DUPFD, kLowest);
    __real_close(socket);
    return moved;
}

int NextSocket(int family)
{
    const OwnCalls looking;
    const int number = Numbered(__real_fcntl(STDOUT_FILENO, F_DUPFD, 0), family);
    __real_close(number);
    return number;
}

bool GoesOn(int fd, off_t offset)
{
    if (OddAnswers() != Odd::pieces) return false;

    const OwnCalls own;
    const std::lock_guard<std::mutex> guard(reading);
    const auto end = promised.find(fd);
    return end != promised.end() && offset > 0 && offset < end->second;
}

size_t PieceOf(int fd, size_t size, off_t offset)
{
    constexpr size_t kMost = 23;
    if (OddAnswers() != Odd::pieces) return size;

    const bool goesOn = GoesOn(fd, offset);
    const OwnCalls own;
    const std::lock_guard<std::mutex> guard(reading);
    struct stat status {};
    if (!goesOn) {
        (void)__real_fstat(fd, &status);
        promised[fd] = std::min<off_t>(offset + static_cast<off_t>(size), status.st_size);
    }
    const auto left = static_cast<size_t>(std::max<off_t>(promised[fd] - offset, 0));
    return std::min({size, left, 1 + static_cast<size_t>(offset) * 7 % kMost});
}

}  // namespace fake
