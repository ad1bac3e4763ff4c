#pragma once

// What the product wrote to standard output, taken apart: lines of the log, and the rest.

#include <ostream>
#include <string>
#include <vector>

namespace fake {

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

/// All lines of the log since the test began or `ClearLog`.
LogLines Log();

/// Those of one operation.
LogLines LogOf(const std::string& operation);

/// True when the log holds the line.
bool Logged(const LogLine& line);

/// Everything else on standard output.
std::string PlainOutput();

/// Standard output as it is, frames and all.
std::string RawOutput();

void ClearLog();

// ---- for the fixture

void CatchLog();
void ReleaseLog(bool show);

}  // namespace fake
