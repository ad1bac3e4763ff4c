// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Support/Lines.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace vorlix {

bool LineReader::Refill()
{
    if (ended_) return false;

    ssize_t count = -1;
    do {
        count = pread(fd_, buffer_, std::min(piece_, sizeof(buffer_)), offset_);
    } while (count < 0 && errno == EINTR);
    failed_ = count < 0;
    ended_ = count <= 0;
    if (ended_) return false;

    offset_ += count;
    begin_ = 0;
    end_ = static_cast<size_t>(count);
    return true;
}

/// Hands out what the buffer holds, as far as its first newline and at most `room` characters.
size_t LineReader::Move(char* to, size_t room)
{
    const char* from = buffer_ + begin_;
    size_t count = std::min(room, end_ - begin_);
    const void* newline = memchr(from, '\n', count);
    if (newline != nullptr) {
        count = static_cast<size_t>(static_cast<const char*>(newline) - from) + 1;
    }
    memcpy(to, from, count);
    begin_ += count;
    return count;
}

bool LineReader::Next(char (&line)[kLineSize])
{
    constexpr size_t kMost = sizeof(line) - 1;
    size_t length = 0;
    while (length < kMost && (begin_ < end_ || Refill())) {
        length += Move(line + length, kMost - length);
        if (line[length - 1] == '\n') break;
    }
    if (length == 0) return false;

    line[length] = '\0';
    return !failed_;
}

void LineReader::Rewind()
{
    const bool holdsStart = offset_ == static_cast<off_t>(end_);
    if (!holdsStart || failed_) {
        offset_ = 0;
        end_ = 0;
        ended_ = false;
    }
    begin_ = 0;
}

LineFile::LineFile(const char* path) : file_(open(path, O_RDONLY)), reader_(file_.Get()) {}

}  // namespace vorlix
