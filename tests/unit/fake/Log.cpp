#include "fake/Log.h"

#include "fake/Calls.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <regex>

#include <sys/mman.h>
#include <unistd.h>

// Reading the log is no call of the product.
extern "C" ssize_t __real_pread(int, void*, size_t, off_t);

namespace fake {

namespace {

int caught = -1;  // what stands for standard output
int realOutput = -1;
size_t cleared = 0;  // bytes that `ClearLog` put behind us

struct Split {
    LogLines lines;
    std::string plain;
};

Split SplitOutput()
{
    const OwnCalls reading;
    static const std::regex kStart("\033\\[1;(31|32|33);40m\\d\\d:\\d\\d:\\d\\d\\|Vorlix-111860\\|("
                                   "Info |Warn |Error)\\|\\d+\\|");
    static const std::string kEnd = "()\033[0m\n";
    Split split;
    std::string rest = RawOutput();
    std::smatch start;
    while (std::regex_search(rest, start, kStart)) {
        split.plain += start.prefix();
        const std::string behind = start.suffix();
        const size_t end = behind.find(kEnd);
        if (end == std::string::npos) break;

        const std::string body = behind.substr(0, end);
        const size_t operation = body.rfind('|');
        const size_t place = body.rfind('|', operation - 1);
        split.lines.push_back({start[2], body.substr(operation + 1), body.substr(0, place)});
        rest = behind.substr(end + kEnd.size());
    }
    split.plain += rest;
    return split;
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const LogLine& line)
{
    return out << line.level << "|" << line.operation << "|" << line.text;
}

LogLine Refused(int request, int error, const std::string& name)
{
    return Error("NetIOCtrl", "cmd " + std::to_string(request) + " error.[" + strerror(error) +
                                  "] " + name + " ");
}

LogLine Refused6(int request, int error)
{
    return Error("NetIOCtrlv6",
                 "cmd " + std::to_string(request) + " error.[" + strerror(error) + "]");
}

LogLines Log()
{
    return SplitOutput().lines;
}

LogLines LogOf(const std::string& operation)
{
    LogLines found;
    for (const LogLine& line : Log()) {
        if (line.operation == operation) found.push_back(line);
    }
    return found;
}

bool Logged(const LogLine& line)
{
    const LogLines lines = Log();
    return std::find(lines.begin(), lines.end(), line) != lines.end();
}

std::string PlainOutput()
{
    return SplitOutput().plain;
}

std::string RawOutput()
{
    const OwnCalls reading;
    fflush(stdout);
    std::string text;
    char buffer[4096];
    for (auto offset = static_cast<off_t>(cleared);;) {
        const ssize_t count = __real_pread(caught, buffer, sizeof(buffer), offset);
        if (count <= 0) return text;
        text.append(buffer, static_cast<size_t>(count));
        offset += count;
    }
}

void ClearLog()
{
    fflush(stdout);
    cleared = static_cast<size_t>(lseek(caught, 0, SEEK_END));
}

void CatchLog()
{
    fflush(stdout);
    cleared = 0;
    realOutput = dup(STDOUT_FILENO);
    caught = memfd_create("output", MFD_CLOEXEC);
    dup2(caught, STDOUT_FILENO);
}

void ReleaseLog(bool show)
{
    cleared = 0;
    const std::string text = RawOutput();
    dup2(realOutput, STDOUT_FILENO);
    close(realOutput);
    close(caught);
    if (show) fwrite(text.data(), 1, text.size(), stdout);
}

}  // namespace fake
