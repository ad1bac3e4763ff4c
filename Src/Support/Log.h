// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

/// The log: every line goes to standard output, whole and at once, in one frame, broken here only
/// for the page:
///
///     ESC[1;<colour>;40m<HH:MM:SS>|Vorlix-111860|<level>|<thread id>|<message>
///     |<file>:<line>|<operation>()ESC[0m
///
/// There is no level filter and no log file. The line carries the name of the documented operation;
/// bodies that twins share get that name handed in and use the _AS forms.
///
/// The arguments are formed before the clock is read, and `errno` is the same afterwards as before,
/// so `strerror(errno)` may stand in the arguments and the next line may read `errno` again.
///
/// A line waits for standard output: while a pipe or terminal is full and its reader sleeps, the
/// operation that logs waits, with every other thread that logs or prints and with every lock that
/// it holds. Where standard output takes nothing (a full disk, a closed descriptor, a full pipe
/// that does not block), the line is lost, or a part of it, and the operation goes on.

namespace vorlix {

enum class LogLevel : unsigned { Info, Warn, Error };

/// Level and line of a call as one number, which takes one register: there are hundreds of calls.
constexpr unsigned LogPlace(LogLevel level, unsigned line)
{
    return line << 2U | static_cast<unsigned>(level);
}

/// Writes one line. The macros below fill in where it comes from.
__attribute__((format(printf, 4, 5))) void LogWrite(unsigned place, const char* file,
                                                    const char* operation, const char* format, ...);

}  // namespace vorlix

#define LOG_AT(level, operation, ...)                                                              \
    ::vorlix::LogWrite(::vorlix::LogPlace(::vorlix::LogLevel::level, __LINE__), __FILE__,          \
                       operation, __VA_ARGS__)

#define LOG_INFO_AS(operation, ...) LOG_AT(Info, operation, __VA_ARGS__)
#define LOG_WARN_AS(operation, ...) LOG_AT(Warn, operation, __VA_ARGS__)
#define LOG_ERROR_AS(operation, ...) LOG_AT(Error, operation, __VA_ARGS__)

#define LOG_INFO(...) LOG_INFO_AS(__func__, __VA_ARGS__)
#define LOG_WARN(...) LOG_WARN_AS(__func__, __VA_ARGS__)
#define LOG_ERROR(...) LOG_ERROR_AS(__func__, __VA_ARGS__)
