/* SPDX-FileCopyrightText: 2026 the Vorlix network layer authors */
/* SPDX-License-Identifier: MIT */

/* Asks the library's CMOS operations who answers for the board, from outside and from inside.
 * Ends with 0 when it is always the one named: "provider" or "stand-in". */

#include "Backup.h"

#include <stdio.h>
#include <string.h>

static int failures;

static void Expect(bool right, const char* what)
{
    if (right) return;

    printf("wrong answer: %s\n", what);
    ++failures;
}

static void AskFromOutside(int32_t expected)
{
    struct CmosCaps caps = {0};
    CmosCaps_Sys_t systemCaps = {0};
    unsigned char byte = 0;
    Expect(CMOSGetCaps(&caps) == expected, "CMOSGetCaps");
    Expect(CMOSRead(12, &byte, 1) == expected, "CMOSRead");
    Expect(CMOSWrite(12, &byte, 1) == expected, "CMOSWrite");
    Expect(getCmosCaps(&caps) == expected, "getCmosCaps");
    Expect(readCmos(12, &byte, 1) == expected, "readCmos");
    Expect(writeCmos(12, &byte, 1) == expected, "writeCmos");

    /* No one replaces these. */
    Expect(CMOSGetCaps_SYS(&systemCaps) == -1, "CMOSGetCaps_SYS");
    Expect(CMOSRead_SYS(12, &byte, 1) == -1, "CMOSRead_SYS");
    Expect(CMOSWrite_SYS(12, &byte, 1) == -1, "CMOSWrite_SYS");
}

/* What the library does by itself: finding the record, and keeping a value in it. */
static void AskFromInside(bool expected)
{
    char text[16] = "";
    Expect(RestBackup() == expected, "RestBackup");
    Expect(setCmosVerifyFlag() == expected, "setCmosVerifyFlag");
    Expect(BackupIP("eth0", "192.168.0.108") == expected, "BackupIP");
    Expect(RestoreIP("eth0", text) == expected, "RestoreIP");
    Expect(strcmp(text, expected ? "192.168.0.108" : "") == 0, "the address restored");
}

int main(int argc, char** argv)
{
    const bool provided = argc == 2 && strcmp(argv[1], "provider") == 0;
    AskFromOutside(provided ? 0 : -1);
    AskFromInside(provided);
    return failures == 0 ? 0 : 1;
}
