/* SPDX-FileCopyrightText: 2026 the Vorlix network layer authors */
/* SPDX-License-Identifier: MIT */

// A board's CMOS for the tests: 12 bytes for the network at offset 16 of a file, which outlives the
// program as the chip does.

#include "Backup.h"

#include <fcntl.h>
#include <unistd.h>

static const char kChip[] = "/mnt/cmos";

enum { kStart = 16, kEnd = 27 };

int32_t CMOSGetCaps(struct CmosCaps* caps)
{
    caps->CmosSize = 64;
    caps->UseTable[CMOS_USE_NETWORK_START] = kStart;
    caps->UseTable[CMOS_USE_NETWORK_END] = kEnd;
    return 0;
}

int32_t CMOSRead(int32_t offset, void* buffer, int32_t length)
{
    const int chip = open(kChip, O_RDONLY);
    const ssize_t count = pread(chip, buffer, (size_t)length, offset);
    close(chip);
    return count == length ? 0 : -1;
}

int32_t CMOSWrite(int32_t offset, void* buffer, int32_t length)
{
    const int chip = open(kChip, O_RDWR);
    const ssize_t count = pwrite(chip, buffer, (size_t)length, offset);
    close(chip);
    return count == length ? 0 : -1;
}
