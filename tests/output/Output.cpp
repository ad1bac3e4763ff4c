// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "output/Output.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <regex>

#include <stdio_ext.h>
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

std::vector<Piece> PiecesOf(const std::string& text)
{
    static const std::regex kStart("\033\\[1;(31|32|33);40m\\d\\d:\\d\\d:\\d\\d\\|Vorlix-111860\\|("
                                   "Info |Warn |Error)\\|\\d+\\|");
    static const std::string kEnd = "()\033[0m\n";
    std::vector<Piece> pieces;
    size_t done = 0;
    const auto put = [&](const Piece& piece) {
        if (piece.framed || !piece.plain.empty()) pieces.push_back(piece);
        done = piece.end;
    };
    std::smatch start;
    while (
        std::regex_search(text.begin() + static_cast<ptrdiff_t>(done), text.end(), start, kStart)) {
        const size_t begin = done + static_cast<size_t>(start.position());
        const size_t body = begin + static_cast<size_t>(start.length());
        const size_t end = text.find(kEnd, body);
        put({false, {}, text.substr(done, begin - done), done, begin});
        if (end == std::string::npos) break;

        const size_t operation = text.rfind('|', end);
        const size_t place = text.rfind('|', operation - 1);
        put({true,
             {start[2], text.substr(operation + 1, end - operation - 1),
              text.substr(body, place - body)},
             "",
             begin,
             end + kEnd.size()});
    }
    put({false, {}, text.substr(done), done, text.size()});
    return pieces;
}

Parts TakeApart(const std::string& text)
{
    Parts parts;
    for (const Piece& piece : PiecesOf(text)) {
        if (piece.framed) parts.log.push_back(piece.line);
        parts.plain += piece.plain;
    }
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

size_t Flushed()
{
    // The descriptor shares its position with standard output, which stands at the end.
    return caught < 0 ? 0 : static_cast<size_t>(lseek(caught, 0, SEEK_END));
}

size_t Printed()
{
    return Flushed() + __fpending(stdout);
}

size_t Cleared()
{
    return cleared;
}

}  // namespace output
