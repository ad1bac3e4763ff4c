// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "fake/Cmos.h"

#include "fake/Calls.h"

#include <cstring>
#include <string>

namespace fake {

Cmos cmos;

namespace {

struct Caps {  // the library's CmosCaps, as a board was built with it
    uint32_t size;
    uint8_t applicationStart;
    uint8_t applicationEnd;
    uint8_t networkStart;
    uint8_t networkEnd;
    uint8_t reserved[8];
};

bool Allows(const char* operation, int32_t offset, int32_t length)
{
    return Note(std::string(operation) + " " + std::to_string(offset) + " " +
                std::to_string(length));
}

}  // namespace

}  // namespace fake

using namespace fake;

extern "C" {

int32_t CMOSGetCaps(void* caps)
{
    if (!Note("CMOSGetCaps")) return cmos.refusal;

    const Caps known = {sizeof(cmos.bytes), 1, 9, cmos.networkStart, cmos.networkEnd, {}};
    memcpy(caps, &known, sizeof(known));
    return cmos.capsResult;
}

int32_t CMOSRead(int32_t offset, void* buffer, int32_t length)
{
    if (!Allows("CMOSRead", offset, length)) return cmos.refusal;

    memcpy(buffer, cmos.bytes + offset, static_cast<size_t>(length));
    return 0;
}

int32_t CMOSWrite(int32_t offset, void* buffer, int32_t length)
{
    if (!Allows("CMOSWrite", offset, length)) return cmos.refusal;

    memcpy(cmos.bytes + offset, buffer, static_cast<size_t>(length));
    return 0;
}

// The alternative entries: nothing of the library may come here.

int32_t CMOSGetCaps_SYS(void*)
{
    NoteOnly("CMOSGetCaps_SYS");
    return 0;
}

int32_t CMOSRead_SYS(int32_t, void*, int32_t)
{
    NoteOnly("CMOSRead_SYS");
    return 0;
}

int32_t CMOSWrite_SYS(int32_t, void*, int32_t)
{
    NoteOnly("CMOSWrite_SYS");
    return 0;
}

}  // extern "C"
