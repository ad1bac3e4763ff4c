// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

#include "Types.h"

#include <cstring>
#include <initializer_list>

#include <netinet/in.h>

extern "C" {

/// Appends `src` to `dest`, as far as it fits.
///
/// With `len` the present length of `dest`: when `len` + 1 is below `destSize`, at most
/// `destSize` - 1 - `len` characters are appended and terminated; otherwise nothing is.
///
/// @param destSize   bytes of `dest`
/// @param copiedLen  NULL, or where the number of characters appended goes
/// @return `dest`
VORLIX_API char* Strcat(char* dest, size_t destSize, const char* src, size_t* copiedLen);

}  // extern "C"

namespace vorlix {

/// Nearly all answers fall at the first letter, so no call is made for them.
inline bool StartsWith(const char* text, const char* start)
{
    while (*start != '\0' && *text == *start) {
        ++text;
        ++start;
    }
    return *start == '\0';
}

/// True when `part` stands anywhere in `text`. Interface kinds are told this way; the loose match
/// is the behaviour.
bool Contains(const char* text, const char* part);

inline bool Equal(const char* left, const char* right)
{
    return strcmp(left, right) == 0;
}

inline bool IsDigit(char character)
{
    return character >= '0' && character <= '9';
}

/// A text for a message, where it may be missing.
inline const char* Shown(const char* text)
{
    return text != nullptr ? text : "(null)";
}

/// Copies at most `size` - 1 characters of `src` and zeroes the rest of `dest`. A size below 1
/// copies nothing.
void CopyText(char* dest, size_t size, const char* src);

template <size_t size>
void CopyText(char (&dest)[size], const char* src)
{
    CopyText(dest, size, src);
}

/// `snprintf` for texts that may be cut: the result of a bounded print is not an error here.
///
/// @return what `snprintf` returns: the length that the whole text would have
__attribute__((format(printf, 3, 4))) int FormatText(char* dest, size_t size, const char* format,
                                                     ...);

/// Writes texts behind each other, cut to what fits and terminated: `FormatText` with "%s%s", for
/// the places that a boot passes a thousand times.
///
/// @param size  at least 1
/// @return length of what was written
size_t JoinTexts(char* dest, size_t size, std::initializer_list<const char*> texts);

/// `atoi`, and digits beyond an int give the same number on every target: the lower 32 bits of the
/// number that 64 bits hold, or come nearest to.
int NumberOf(const char* text);

/// Dotted text of an IPv4 address, or of a mask, with its terminator.
constexpr int kIPv4TextSize = INET_ADDRSTRLEN;

/// Parses dotted text in its strict form, four decimal parts (`inet_pton`). `value` is in network
/// byte order and is written only on success.
bool ParseIPv4(const char* text, uint32_t* value);

/// Parses any form that `inet_aton` takes: one to four parts, decimal, octal or hexadecimal. White
/// space ends the text, with every C library: some take what stands before it, others refuse all.
/// `value` is written only on success.
bool ParseLooseIPv4(const char* text, in_addr* value);

/// Parses the strict form of an IPv6 address. `value` is written only on success.
bool ParseIPv6(const char* text, in6_addr* value);

/// Writes `value`, network byte order, as dotted text of at most 15 characters.
/// @return false when the text could not be formed, with `text` unchanged
bool PrintIPv4(uint32_t value, char* text);

/// Writes `value` in its canonical form into `size` bytes.
/// @return false when it does not fit, with `text` unchanged
bool PrintIPv6(const in6_addr& value, char* text, int size);

/// Bytes of a hardware address, and of its text with its terminator.
constexpr int kMacSize = 6;
constexpr int kMacTextSize = 18;

/// Reads six hexadecimal fields with colons between them, each of one or two digits. What stands
/// behind the sixth is not looked at.
/// @return false when fewer than six were read; `mac` may hold the first of them then
bool ParseMac(const char* text, unsigned char (&mac)[kMacSize]);

/// Writes a hardware address of six bytes in lower case, into `kMacTextSize` bytes.
void PrintMac(const unsigned char* mac, char* text);

}  // namespace vorlix
