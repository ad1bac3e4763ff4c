#pragma once

/// The setting files of the device: small text files of lines `KEY = value` under one folder, one
/// for each card, one for its IPv6 settings, and a few shared ones.
///
/// The format is tiny on purpose, and its limits are part of it: lines of 255 characters, 32 lines
/// looked at, 16 lines kept by a write, keys found by substring, and only lines that hold one of
/// the known keys survive a write. A write rewrites the file in place and syncs it.

#include "Types.h"

#ifdef __cplusplus
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
    HOST_DEFAULT_ETH_KEY = 12, ///< "DEFAULT_ETH": default card, in the file of eth0 alone
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
/// and a whole-file write lock against other processes. Not recursive; calls come in pairs on one
/// thread.
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
/// @errors NULL, no file, no such line within 32: silent; no "=" in the line: Error; nothing behind
///         it: Warn; a value of `len` characters or more: Error
VORLIX_API bool GetValueByKey(const char* filename, const char* key, char* value, int len);

/// Rewrites a setting file with `key` set to `value`: in the place of the first kept line that
/// contains `key`, or behind the last. Creates a missing file. The file is synced before the lock
/// is released.
///
/// @return true when the file was written
/// @errors NULL: silent; no file yet: Error, and it is created; a 17th line: Error, file unchanged;
///         a file that cannot be rewritten: Error; a failed sync: Warn, still true
VORLIX_API bool SetValueByKey(const char* filename, const char* key, const char* value);

/// True when the card's IPv4 setting file exists.
VORLIX_API bool CheckConfigFile(const char* ethName);

/// Creates the card's IPv4 setting file, empty, when it is missing. What is in it stays.
/// @return false when the file can neither be opened nor created
VORLIX_API bool CreateConfigFile(const char* ethName);

/// Removes the card's IPv4 setting file.
/// @return always true
/// @errors a failed removal, and NULL: Warn
VORLIX_API bool DelConfigFile(const char* ethName);

/// Lists the base names of all IPv4 setting files, in the directory's order, "network2" (the old
/// name of the file of eth2) last.
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

#include "Support/Lines.h"

namespace vorlix {

/// Folder of all setting files. Nothing here creates it.
constexpr char kConfigFolder[] = "/mnt/mtd/Config";

/// Bytes of a setting file's path in a caller's buffer.
constexpr int kPathSize = 64;

/// Text of a known key.
const char* KeyText(KEYENUM key);

/// The first half of `FileLock(false, ...)`: lets other processes at the file now locked, while the
/// threads of this one still wait. Does nothing when the file is not locked.
void ReleaseLockedFile();

/// The lock of one setting file, held to the end of the scope or to `Release`.
///
/// All that is opened of the file under the lock is closed before the threads are let in: a process
/// loses its lock on a file as soon as it closes any descriptor of that file, so a descriptor that
/// is closed later takes away the lock that the next thread has just got.
class ConfigLock {
public:
    explicit ConfigLock(const char* filename) : filename_(filename)
    {
        (void)FileLock(true, filename_);
    }
    ~ConfigLock() { Release(); }
    ConfigLock(const ConfigLock&) = delete;
    ConfigLock& operator=(const ConfigLock&) = delete;

    /// For readers, which let other processes in first and close then.
    void ReleaseFile() const
    {
        if (held_) ReleaseLockedFile();
    }

    void Release()
    {
        if (held_) (void)FileLock(false, filename_);
        held_ = false;
    }

private:
    const char* filename_;
    bool held_ = true;
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

    static constexpr int kCapacity = 32;  // as many lines as a read looks at
    bool read_ = false;
    int count_ = 0;
    char lines_[kCapacity][kLineSize];
};

}  // namespace vorlix
#endif
