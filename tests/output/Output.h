// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// What the product writes to standard output: caught, and taken apart into the lines of its log and
// the rest. Shared by all rings; knows neither the fake world nor the kernel's.

#include <ostream>
#include <string>
#include <vector>

namespace output {

struct LogLine {
    std::string level;      // "Info ", "Warn ", "Error"
    std::string operation;  // as in the frame, without the brackets
    std::string text;

    bool operator==(const LogLine& other) const
    {
        return level == other.level && operation == other.operation && text == other.text;
    }
};

using LogLines = std::vector<LogLine>;

std::ostream& operator<<(std::ostream& out, const LogLine& line);

inline LogLine Info(const std::string& operation, const std::string& text)
{
    return {"Info ", operation, text};
}
inline LogLine Warn(const std::string& operation, const std::string& text)
{
    return {"Warn ", operation, text};
}
inline LogLine Error(const std::string& operation, const std::string& text)
{
    return {"Error", operation, text};
}

/// What the control sockets log for a request that the kernel refuses with an `errno` value.
LogLine Refused(int request, int error, const std::string& name);
LogLine Refused6(int request, int error);

/// Output, taken apart.
struct Parts {
    LogLines log;
    std::string plain;  // what stands in no frame

    /// The lines of one operation.
    LogLines Of(const std::string& operation) const;
    bool Holds(const LogLine& line) const;
};

Parts TakeApart(const std::string& text);

/// A line of the log, or what stands between two of them, and where it begins and ends.
struct Piece {
    bool framed;
    LogLine line;       // when framed
    std::string plain;  // otherwise
    size_t begin;
    size_t end;
};

/// Output in its order.
std::vector<Piece> PiecesOf(const std::string& text);

// ---- standard output of this process

/// From here on, standard output goes to memory.
void Catch();

/// Puts the real one back, with all that was caught when `show` is set.
void Release(bool show);

/// What was caught since `Catch` or `Clear`, frames and all.
std::string Caught();
void Clear();

/// Bytes printed since `Catch`, whatever was cleared: all of them, and those that have left the
/// stream's buffer.
size_t Printed();
size_t Flushed();

/// Bytes that `Clear` has put behind us.
size_t Cleared();

}  // namespace output
