// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

#include "Support/Handles.h"

#include <cstddef>

#include <sys/types.h>

namespace vorlix {

/// Size of a line buffer: 255 characters and the terminator. A longer line is read as several.
constexpr int kLineSize = 256;

/// The kernel hands out its tables in pieces of one page.
constexpr size_t kPageSize = 4096;

/// Reads a descriptor line by line from offset 0, as `fgets` does, but without heap and afresh for
/// each reader: a kept stream would go on answering from its buffer after the table behind it has
/// changed.
class LineReader {
public:
    /// The descriptor stays the caller's; its own file position is not used.
    ///
    /// @param piece  most bytes asked for at a time; a table of the kernel is printed as far as it
    ///               is asked for, so a reader of a few rows asks for no more
    // cppcheck-suppress uninitMemberVar  ; the buffer is filled before it is read
    explicit LineReader(int fd, size_t piece = kPageSize) : fd_(fd), piece_(piece) {}

    /// Stores the next piece, newline included, with its terminator.
    ///
    /// @return false at the end of the file, with `line` as it was, and when the file cannot be
    ///         read on: half a line that the error cut off must not pass for a whole one. That half
    ///         then stands in `line`, terminated; without any, `line` is as it was.
    bool Next(char (&line)[kLineSize]);

    /// True when it was not the end of the file that ended the lines: what the caller has is a
    /// part.
    bool Failed() const { return failed_; }

    /// Goes back to the first line. What the buffer still holds of the beginning is not read again.
    void Rewind();

private:
    bool Refill();
    size_t Move(char* to, size_t room);

    int fd_;
    size_t piece_;
    off_t offset_ = 0;  // in the file, of what follows the buffer
    size_t begin_ = 0;  // of what the buffer still holds
    size_t end_ = 0;
    bool ended_ = false;
    bool failed_ = false;
    char buffer_[kPageSize];
};

/// A file that is read line by line, open as long as its owner lives.
class LineFile {
public:
    explicit LineFile(const char* path);

    bool Ok() const { return file_.Ok(); }
    LineReader& Lines() { return reader_; }
    const LineReader& Lines() const { return reader_; }

    /// Leaves the file open for good.
    void LeaveOpen() { (void)file_.Take(); }

private:
    Fd file_;
    LineReader reader_;
};

}  // namespace vorlix
