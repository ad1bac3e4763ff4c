// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Support/Text.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <arpa/inet.h>

namespace vorlix {

bool Contains(const char* text, const char* part)
{
    for (; *text != '\0'; ++text) {
        if (StartsWith(text, part)) return true;
    }
    return *part == '\0';
}

void CopyText(char* dest, size_t size, const char* src)
{
    if (size == 0) return;

    const size_t length = strnlen(src, size - 1);
    memcpy(dest, src, length);
    memset(dest + length, 0, size - length);
}

int FormatText(char* dest, size_t size, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int length = vsnprintf(dest, size, format, arguments);
    va_end(arguments);
    return length;
}

size_t JoinTexts(char* dest, size_t size, std::initializer_list<const char*> texts)
{
    size_t length = 0;
    for (const char* text : texts) {
        for (; *text != '\0' && length < size - 1; ++text) dest[length++] = *text;
    }
    dest[length] = '\0';
    return length;
}

bool ParseIPv4(const char* text, uint32_t* value)
{
    in_addr address{};
    if (inet_pton(AF_INET, text, &address) != 1) return false;

    *value = address.s_addr;
    return true;
}

int NumberOf(const char* text)
{
    return static_cast<int>(strtoll(text, nullptr, 10));
}

bool ParseLooseIPv4(const char* text, in_addr* value)
{
    char word[kIPv4TextSize * 4];  // leading zeros may make it long
    const size_t length = strcspn(text, " \t\n\v\f\r");
    if (length >= sizeof(word)) return inet_aton(text, value) != 0;

    memcpy(word, text, length);
    word[length] = '\0';
    return inet_aton(word, value) != 0;
}

bool ParseIPv6(const char* text, in6_addr* value)
{
    in6_addr address{};
    if (inet_pton(AF_INET6, text, &address) != 1) return false;

    *value = address;
    return true;
}

bool PrintIPv4(uint32_t value, char* text)
{
    in_addr address{};
    address.s_addr = value;
    return inet_ntop(AF_INET, &address, text, kIPv4TextSize) != nullptr;
}

bool PrintIPv6(const in6_addr& value, char* text, int size)
{
    return size > 0 && inet_ntop(AF_INET6, &value, text, static_cast<socklen_t>(size)) != nullptr;
}

bool ParseMac(const char* text, unsigned char (&mac)[kMacSize])
{
    return sscanf(text, "%02hhx:%02hhx:%02hhx:%02hhx:%02hhx:%02hhx", &mac[0], &mac[1], &mac[2],
                  &mac[3], &mac[4], &mac[5]) == kMacSize;
}

void PrintMac(const unsigned char* mac, char* text)
{
    FormatText(text, kMacTextSize, "%02x:%02x:%02x:%02x:%02x:%02x", mac[0], mac[1], mac[2], mac[3],
               mac[4], mac[5]);
}

}  // namespace vorlix

char* Strcat(char* dest, size_t destSize, const char* src, size_t* copiedLen)
{
    const size_t length = strlen(dest);
    size_t copied = 0;
    if (length + 1 < destSize) {
        copied = std::min(destSize - 1 - length, strlen(src));
        memcpy(dest + length, src, copied);
        dest[length + copied] = '\0';
    }
    if (copiedLen != nullptr) *copiedLen = copied;
    return dest;
}
