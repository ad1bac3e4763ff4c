// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Support/Log.h"

#include "Support/Text.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <ctime>

#include <sys/syscall.h>
#include <unistd.h>

namespace vorlix {

namespace {

struct LevelText {
    char colour;
    char name[6];  // always five characters
};

constexpr LevelText kLevels[] = {{'2', "Info "}, {'3', "Warn "}, {'1', "Error"}};

// What each line begins with, and where the colour, the time and the level go.
constexpr char kHead[] = "\033[1;3x;40mHH:MM:SS|Vorlix-111860|level|";
constexpr size_t kColour = 5;
constexpr size_t kTime = 10;
constexpr size_t kLevel = 33;
static_assert(kHead[kColour] == 'x' && kHead[kTime] == 'H' && kHead[kLevel] == 'l');

constexpr size_t kTailSize = 512;  // a path within the project and a function's name

tm LocalTime()
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    tm local{};
    localtime_r(&now.tv_sec, &local);
    return local;
}

void PutTwoDigits(char* place, int number)
{
    place[0] = static_cast<char>('0' + number / 10);
    place[1] = static_cast<char>('0' + number % 10);
}

using Digits = char[24];

/// Writes a number to the end of `digits` and tells where it begins.
const char* Decimal(unsigned long number, Digits& digits)
{
    char* first = digits + sizeof(digits) - 1;
    *first = '\0';
    do {
        --first;
        *first = static_cast<char>('0' + number % 10);
        number /= 10;
    } while (number > 0);
    return first;
}

void PrintHead(const LevelText& level, const tm& local)
{
    char head[sizeof(kHead) + sizeof(Digits)];
    memcpy(head, kHead, sizeof(kHead) - 1);
    head[kColour] = level.colour;
    PutTwoDigits(head + kTime, local.tm_hour);
    PutTwoDigits(head + kTime + 3, local.tm_min);
    PutTwoDigits(head + kTime + 6, local.tm_sec);
    memcpy(head + kLevel, level.name, sizeof(level.name) - 1);
    Digits thread;
    const auto id = static_cast<unsigned long>(syscall(SYS_gettid));
    char* behind = head + sizeof(kHead) - 1;
    JoinTexts(behind, sizeof(head) - sizeof(kHead) + 1, {Decimal(id, thread), "|"});
    (void)fputs(head, stdout);
}

void PrintTail(const char* file, unsigned line, const char* operation)
{
    char tail[kTailSize];
    Digits number;
    JoinTexts(tail, sizeof(tail),
              {"|", file, ":", Decimal(line, number), "|", operation, "()\033[0m\n"});
    (void)fputs(tail, stdout);
}

}  // namespace

void LogWrite(unsigned place, const char* file, const char* operation, const char* format, ...)
{
    const int savedErrno = errno;
    const tm local = LocalTime();

    // The stream stays locked over the three prints, so that lines of threads never mix; the flush
    // puts the line out before a command or a crash can come in between. Only the message is read
    // as a format: the frame, too, would double what a line costs, and a boot writes a hundred.
    flockfile(stdout);
    PrintHead(kLevels[place & 3U], local);
    va_list arguments;
    va_start(arguments, format);
    vprintf(format, arguments);
    va_end(arguments);
    PrintTail(file, place >> 2U, operation);
    fflush(stdout);
    funlockfile(stdout);
    errno = savedErrno;
}

}  // namespace vorlix
