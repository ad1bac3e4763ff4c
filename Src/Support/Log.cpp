// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Support/Log.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <ctime>

#include <sys/syscall.h>
#include <unistd.h>

namespace vorlix {

namespace {

struct LevelText {
    int colour;
    const char* name;  // always five characters
};

constexpr LevelText kLevels[] = {{32, "Info "}, {33, "Warn "}, {31, "Error"}};

tm LocalTime()
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    tm local{};
    localtime_r(&now.tv_sec, &local);
    return local;
}

}  // namespace

void LogWrite(unsigned place, const char* file, const char* operation, const char* format, ...)
{
    const int savedErrno = errno;
    const LevelText& text = kLevels[place & 3U];
    const tm local = LocalTime();

    // The stream stays locked over the three prints, so that lines of threads never mix; the flush
    // puts the line out before a command or a crash can come in between.
    flockfile(stdout);
    printf("\033[1;%d;40m%02d:%02d:%02d|Vorlix-111860|%s|%ld|", text.colour, local.tm_hour,
           local.tm_min, local.tm_sec, text.name, static_cast<long>(syscall(SYS_gettid)));
    va_list arguments;
    va_start(arguments, format);
    vprintf(format, arguments);
    va_end(arguments);
    printf("|%s:%u|%s()\033[0m\n", file, place >> 2U, operation);
    fflush(stdout);
    funlockfile(stdout);
    errno = savedErrno;
}

}  // namespace vorlix
