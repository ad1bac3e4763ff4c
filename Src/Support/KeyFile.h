// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

/// The setting files of the device: small text files of lines `KEY = value` under one folder, one
/// for each card, one for its IPv6 settings, and a few shared ones.
///
/// The format is tiny on purpose, and its limits are part of it: lines of 255 characters, 32 lines
/// looked at, 16 lines kept by a write, keys found by substring, and only lines that hold one of
/// the known keys survive a write. A write rewrites the file in place and syncs it.

#include "Types.h"

#ifdef __cplusplus
#include "Support/Handles.h"
#include "Support/Lines.h"

#include <unistd.h>

extern "C" {
#endif

/// Index of the known keys.
// clang-format off
typedef VORLIX_ENUM(KEYENUM) {
    HOST_IP_KEY = 0,           ///< "HOSTIP": host address, IPv4 and IPv6 file
    HOST_SUBMASK_KEY = 1,      ///< "SUBMASK": IPv4 mask or IPv6 prefix length
    HOST_GATEWAY_KEY = 2,      ///< "GATEWAYIP"
    HOST_PRIO_KEY = 3,         ///< "PRIO": "0" for the default card, "1" for the others
    HOST_WORKMODE_KEY = 4,     ///< "WORKMODE": a NetWorkMode
    HOST_BONDED_KEY = 5,       ///< "BONDED": "1" or "0"
    HOST_BONDNAME_KEY = 6,     ///< "BONDNAME": bond of a member card
    HOST_BONDMODE_KEY = 7,     ///< "BONDMODE": a NICBondMode
    HOST_ROUTE_KEY = 8,        ///< "ROUTE": reserved, kept by a write
    HOST_BONDPRIMARY_KEY = 9,  ///< "BONDPRIMARY": primary member
    HOST_MTU_KEY = 10,         ///< "MTU": decimal
    HOST_ACTIVE_ETH_KEY = 11,  ///< "ACTIVE_ETH": reserved, kept by a write
    HOST_DEFAULT_ETH_KEY = 12, ///< "DEFAULT_ETH": default card, in the file of eth0 only
    HOST_BRIDGEEDED_KEY = 13,  ///< "BRIDGEEDED": "1" or "0"
    HOST_BRIDGENAME_KEY = 14,  ///< "BRIDGENAME": bridge of a member card
    HOST_BONDMEMBERS_KEY = 15, ///< "BONDMEMBERS": members of a bond, joined by commas
    HOST_BR_PREFIX_KEY = 16,   ///< "bridgeprefix": reserved, kept by a write
    HOST_BR_STATE_KEY = 17,    ///< "stp_state": spanning-tree mode
    HOST_BR_BRIDGE_KEY = 18,   ///< "BRIDGES": bridge letter
    HOST_BR_SSIF_KEY = 19,     ///< "SSIF": ports, joined by commas
    HOST_BR_EDGE_KEY = 20,     ///< "SSIF_EDGE": base of the edge-port keys
    HOST_BR_MEMBERS_KEY = 21,  ///< "BRIDGEMEMBERS": members of a bridge, joined by commas
    HOST_BONDHASH_KEY = 22,    ///< "LACP": hash policy of a bond
    HOST_NET_END = 23          ///< number of keys
} KEYENUM;
// clang-format on

/// Writes the path of a card's IPv4 setting file: eth0 and eth1 have old short names, every other
/// name stands behind the base path.
///
/// @param file  `len` bytes; 64 hold every path of an interface name
/// @return false for NULL or a `len` below 1; otherwise true, also when the path was cut
VORLIX_API bool GetFileByName(const char* name, char* file, int len);

/// The same for a card's IPv6 setting file.
VORLIX_API bool GetFileByName6(const char* name, char* file, int len);

/// Takes (`true`) or releases (`false`) a setting file for this thread: a mutex inside the process
/// and a whole-file write lock against other processes. Waits for both, however long they are held.
/// Not recursive; calls come in pairs on one thread, and nothing that asks a setting file may stand
/// between them.
///
/// A file that cannot be opened for writing, and NULL, are guarded by the mutex alone, silently.
///
/// @param filename  path of the file to take; not looked at by a release
/// @return always true
/// @errors a refused fcntl lock or unlock: an Error line, and the caller goes on
VORLIX_API bool FileLock(bool lockORunlock, const char* filename);

/// Reads the value of the first line that contains `key`, without the blanks, tabs and newlines
/// around it. Takes the file's lock.
///
/// @param value  `len` bytes, written only on success and zero-filled behind the value
/// @return true when a value that is not empty and fits was found
/// @errors NULL, no file, one that cannot be read, no such line within 32: silent; no "=" in the
///         line: Error; nothing behind it: Warn; a value of `len` characters or more: Error
VORLIX_API bool GetValueByKey(const char* filename, const char* key, char* value, int len);

/// Rewrites a setting file with `key` set to `value`: in the place of the first kept line that
/// contains `key`, or behind the last. Creates a missing file. Takes the file's lock, and syncs the
/// file before the lock is released.
///
/// @param value  what does not fit into the line of 255 characters is cut off, the newline first
/// @return true when the file was opened and written; that it came to the disk is not promised
/// @errors NULL: silent; no file yet: Error, and it is created; a file that cannot be read to the
///         end, or a 17th line: Error, file unchanged; a file that cannot be rewritten: Error; a
///         failed sync: Warn, still true
VORLIX_API bool SetValueByKey(const char* filename, const char* key, const char* value);

/// True when the card's IPv4 setting file exists.
VORLIX_API bool CheckConfigFile(const char* ethName);

/// Creates the card's IPv4 setting file, empty, when it is missing. What is in it stays. Waits for
/// the threads of this process that are at a setting file, so it may not stand between a
/// `FileLock(true, ...)` and its release.
/// @return false for NULL, and when the file can neither be opened nor created
VORLIX_API bool CreateConfigFile(const char* ethName);

/// Removes the card's IPv4 setting file.
/// @return always true
/// @errors a failed removal, and NULL: Warn
VORLIX_API bool DelConfigFile(const char* ethName);

/// Lists the base names of all IPv4 setting files in no order that is promised, but "network2", the
/// old name of the file of eth2, behind all others.
///
/// @param files  `*num` entries of 64 bytes
/// @param num    capacity on entry (32 by custom), number of names on return
/// @errors NULL: Error; a directory that cannot be opened: Error, and `*num` is 0; a name of more
///         than 36 characters (directory record above 62 bytes): Warn, and it is passed over
VORLIX_API bool GetAllNetworkFile(char (*files)[64], int* num);

/// Saves a card's switch mode (0 card, 1 switch interface, 2 both) in poeMode.conf, which keeps the
/// last card saved and no other. Any number is taken.
///
/// @return 0 or -1
/// @errors NULL or an empty name: Error
VORLIX_API int32_t NetSwitch_SetNetCardMode(const char* name, int32_t mode);

/// Reads a card's saved switch mode.
///
/// @param mode  0 to 2 on success; 0 with the result -1 when the saved number is out of range; else
///              untouched
/// @return 0, or -1 when none or a bad one is saved
/// @errors a NULL name: Error; a NULL `mode`: silent; a number out of range: Error
VORLIX_API int32_t NetSwitch_GetNetCardMode(const char* name, int32_t* mode);

// Not exported.

/// True when the name is that of a regular file in the settings folder.
bool checkIsRegFile(const char* fileName);

#ifdef __cplusplus
}  // extern "C"

namespace vorlix {

// ---- names

/// The first card of a device: its file names the default card, and it alone has a backup.
constexpr char kFirstCard[] = "eth0";

/// Its IPv4 setting file. The paths of the others' begin with it.
constexpr char kFirstCardFile[] = "/mnt/mtd/Config/network";

/// Folder of all setting files. Nothing here creates it.
constexpr char kConfigFolder[] = "/mnt/mtd/Config";

/// Bytes of a setting file's path in a caller's buffer.
constexpr int kPathSize = 64;

/// Forms the path of a file in the settings folder from its base name.
void FormListedPath(const char* file, char (&path)[kPathSize]);

/// The card that an IPv4 setting file belongs to, by its base name: the reverse of `GetFileByName`.
const char* CardOfFile(const char* file);

/// True when the path leads to something, whatever it is.
inline bool FileExists(const char* path)
{
    return access(path, F_OK) == 0;
}

/// Text of a known key.
const char* KeyText(KEYENUM key);

// ---- access

/// From now on this process only looks at setting files: it takes no lock on them, which needs the
/// right to write, and a write is refused. For a program that anybody may run, before its first
/// call.
void LookOnly();

/// The lock of one setting file, held to the end of the scope.
///
/// A process loses its lock on a file as soon as it closes any descriptor of that file. So what is
/// opened of the file under the lock is closed neither while this thread still needs the lock nor
/// when the next thread has it: it is declared behind the lock, and the scope closes it just before
/// the threads are let in. A writer, who opens twice, closes what was read behind what was written.
class ConfigLock {
public:
    explicit ConfigLock(const char* filename);
    ~ConfigLock();
    ConfigLock(const ConfigLock&) = delete;
    ConfigLock& operator=(const ConfigLock&) = delete;

    /// True when there was no such file: a reader need not ask for it again.
    bool FileIsMissing() const { return missing_; }

    /// For readers, which let other processes in before they close.
    void ReleaseFile() const;

private:
    bool missing_;
};

/// Lines of a setting file that are looked at.
constexpr int kLinesLookedAt = 32;

/// The lines of a setting file as a reader sees them, under its lock to the end of the scope. Then
/// other processes are let in, the file is closed, and the threads of this process are let in.
class LockedLines {
public:
    explicit LockedLines(const char* filename);
    ~LockedLines() { lock_.ReleaseFile(); }
    LockedLines(const LockedLines&) = delete;
    LockedLines& operator=(const LockedLines&) = delete;

    /// False when the file cannot be opened; `errno` tells why.
    bool Ok() const { return file_.Ok(); }

    /// Stores the next line, as `LineReader` does.
    /// @return false behind the last line, or behind the 32nd, and without a file
    bool Next(char (&line)[kLineSize]);

private:
    ConfigLock lock_;
    Fd file_;
    LineReader reader_;
    int left_ = kLinesLookedAt;
};

/// Where the value of a key goes: `len` bytes.
struct Wanted {
    KEYENUM key;
    char* value;
    int len;
};

/// Reads two values of one file in one pass: the same answers and messages as two calls of
/// `GetValueByKey`, the second only after the first has succeeded. No pointer may be NULL.
bool ReadTwoKeys(const char* filename, const Wanted& first, const Wanted& second);

/// The saved switch modes for a walk over many cards: read when the first is asked for, and once.
class SwitchModes {
public:
    /// Answers as `NetSwitch_GetNetCardMode` does, messages included. Neither may be NULL.
    int32_t Get(const char* name, int32_t* mode);

private:
    void Read();

    bool read_ = false;
    int count_ = 0;
    char lines_[kLinesLookedAt][kLineSize];
};

}  // namespace vorlix
#endif
