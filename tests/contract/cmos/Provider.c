/* SPDX-FileCopyrightText: 2026 the Vorlix network layer authors */
/* SPDX-License-Identifier: MIT */

/* A board's CMOS: 32 bytes, of which the network has 10 to 21. Like a real board, it defines the
 * three operations that the library calls and leaves the alternative entries alone. */

#include "Backup.h"

#include <string.h>

static unsigned char bytes[32];

int32_t CMOSRead(int32_t offset, void* buffer, int32_t length)
{
    memcpy(buffer, bytes + offset, (size_t)length);
    return 0;
}

int32_t CMOSWrite(int32_t offset, void* buffer, int32_t length)
{
    memcpy(bytes + offset, buffer, (size_t)length);
    return 0;
}

int32_t CMOSGetCaps(struct CmosCaps* caps)
{
    caps->CmosSize = sizeof(bytes);
    caps->UseTable[CMOS_USE_NETWORK_START] = 10;
    caps->UseTable[CMOS_USE_NETWORK_END] = 21;
    return 0;
}
