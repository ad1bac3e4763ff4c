#include "output/Output.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <regex>

#include <sys/mman.h>
#include <unistd.h>

namespace output {

namespace {

int caught = -1;  // what stands for standard output
int realOutput = -1;
size_t cleared = 0;  // bytes that `Clear` put behind us

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

LogLines Parts::Of(const std::string& operation) const
{
    LogLines found;
    for (const LogLine& line : log) {
        if (line.operation == operation) found.push_back(line);
    }
    return found;
}

bool Parts::Holds(const LogLine& line) const
{
    return std::find(log.begin(), log.end(), line) != log.end();
}

Parts TakeApart(const std::string& text)
{
    static const std::regex kStart("\033\\[1;(31|32|33);40m\\d\\d:\\d\\d:\\d\\d\\|Vorlix-111860\\|("
                                   "Info |Warn |Error)\\|\\d+\\|");
    static const std::string kEnd = "()\033[0m\n";
    Parts parts;
    std::string rest = text;
    std::smatch start;
    while (std::regex_search(rest, start, kStart)) {
        parts.plain += start.prefix();
        const std::string behind = start.suffix();
        const size_t end = behind.find(kEnd);
        if (end == std::string::npos) break;

        const std::string body = behind.substr(0, end);
        const size_t operation = body.rfind('|');
        const size_t place = body.rfind('|', operation - 1);
        parts.log.push_back({start[2], body.substr(operation + 1), body.substr(0, place)});
        rest = behind.substr(end + kEnd.size());
    }
    parts.plain += rest;
    return parts;
}

void Catch()
{
    fflush(stdout);
    cleared = 0;
    realOutput = dup(STDOUT_FILENO);
    caught = memfd_create("output", MFD_CLOEXEC);
    dup2(caught, STDOUT_FILENO);
}

void Release(bool show)
{
    cleared = 0;
    const std::string text = Caught();
    dup2(realOutput, STDOUT_FILENO);
    close(realOutput);
    close(caught);
    if (show) fwrite(text.data(), 1, text.size(), stdout);
}

std::string Caught()
{
    fflush(stdout);
    std::string text;
    char buffer[4096];
    for (auto offset = static_cast<off_t>(cleared);;) {
        const ssize_t count = pread(caught, buffer, sizeof(buffer), offset);
        if (count <= 0) return text;
        text.append(buffer, static_cast<size_t>(count));
        offset += count;
    }
}

void Clear()
{
    fflush(stdout);
    cleared = static_cast<size_t>(lseek(caught, 0, SEEK_END));
}

}  // namespace output
