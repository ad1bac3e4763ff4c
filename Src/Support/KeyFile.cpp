#include "Support/KeyFile.h"

#include "Support/Handles.h"
#include "Support/Log.h"
#include "Support/Text.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vorlix {

namespace {

// ---- texts and limits

constexpr char kIPv4Base[] = "/mnt/mtd/Config/network";
constexpr char kIPv6Base[] = "/mnt/mtd/Config/networkip6";
constexpr char kOldNameOfEth2[] = "network2";
constexpr char kSwitchModeFile[] = "/mnt/mtd/Config/poeMode.conf";

constexpr int kLinesLookedAt = 32;
constexpr int kLinesKept = 16;
constexpr int kFileNameSize = 64;
constexpr unsigned kLongestEntry = 62;  // of the directory record, not of the name alone
constexpr int kRegularPathSize = 256;
constexpr int kModeTextSize = 31;
constexpr unsigned kModes = 3;
constexpr mode_t kNewFileMode = 0644;

constexpr char keys[HOST_NET_END][16] = {
    "HOSTIP",      "SUBMASK",    "GATEWAYIP",  "PRIO",          "WORKMODE",     "BONDED",
    "BONDNAME",    "BONDMODE",   "ROUTE",      "BONDPRIMARY",   "MTU",          "ACTIVE_ETH",
    "DEFAULT_ETH", "BRIDGEEDED", "BRIDGENAME", "BONDMEMBERS",   "bridgeprefix", "stp_state",
    "BRIDGES",     "SSIF",       "SSIF_EDGE",  "BRIDGEMEMBERS", "LACP"};
static_assert(keys[HOST_BONDHASH_KEY][0] != '\0', "an empty key would be found in every line");

// ---- state

pthread_mutex_t net_config_Lock = PTHREAD_MUTEX_INITIALIZER;
// Both are about the file locked now, and guarded by net_config_Lock.
int fd = -1;
bool missing = false;

// ---- paths

bool FormPath(const char* base, const char* name, char* file, int len)
{
    if (name == nullptr || file == nullptr || len <= 0) return false;

    const auto size = static_cast<size_t>(len);
    if (Equal(name, "eth0")) {
        FormatText(file, size, "%s", base);
    } else if (Equal(name, "eth1")) {
        FormatText(file, size, "%s1", base);
    } else {
        FormatText(file, size, "%s%s", base, name);
    }
    return true;
}

// ---- locking

bool ControlFile(short type, int control)
{
    struct flock range {};
    range.l_type = type;
    range.l_whence = SEEK_SET;
    range.l_start = 0;
    range.l_len = 0;  // the whole file, however it grows
    range.l_pid = getpid();
    return fcntl(fd, control, &range) == 0;
}

void LockFile(const char* filename)
{
    pthread_mutex_lock(&net_config_Lock);
    fd = filename == nullptr ? -1 : open(filename, O_WRONLY | O_APPEND);
    missing = fd < 0 && errno == ENOENT;
    if (fd < 0 || ControlFile(F_WRLCK, F_SETLKW)) return;

    LOG_ERROR_AS("FileLock", "fcntl (F_SETLKW F_WRLCK) failed, pid:%d, [%s]", getpid(),
                 strerror(errno));
}

void UnlockFile()
{
    ReleaseLockedFile();
    pthread_mutex_unlock(&net_config_Lock);
}

// ---- reading

bool IsPadding(char character)
{
    return character == ' ' || character == '\t' || character == '\n';
}

/// Opens the locked file. One that was not there when it was locked is not asked for again.
int OpenLocked(const char* filename)
{
    return missing ? -1 : open(filename, O_RDONLY);
}

struct KeyLine {
    const char* key;
    bool found;
    char text[kLineSize];
};

/// Finds for each key the first line that holds it, among the first 32.
template <size_t count>
void FindLines(const char* filename, KeyLine (&wanted)[count])
{
    ConfigLock lock(filename);
    const Fd file(OpenLocked(filename));
    if (file.Ok()) {
        LineReader reader(file.Get());
        char line[kLineSize];
        size_t left = count;
        for (int i = 0; i < kLinesLookedAt && left > 0 && reader.Next(line); ++i) {
            for (KeyLine& entry : wanted) {
                if (entry.found || !Contains(line, entry.key)) continue;

                CopyText(entry.text, line);
                entry.found = true;
                --left;
            }
        }
    }
    lock.ReleaseFile();  // a reader unlocks first and closes then
}

/// Cuts the value out of its line, when there is one, and copies it out.
bool TakeValue(KeyLine& line, const char* filename, char* value, int len)
{
    if (!line.found) return false;

    char* text = strchr(line.text, '=');
    if (text == nullptr) {
        LOG_ERROR_AS("GetValueByKey", "file formate error![file:%s,context:%s]", filename,
                     line.text);
        return false;
    }
    do {
        ++text;
    } while (IsPadding(*text));
    size_t length = strlen(text);
    while (length > 0 && IsPadding(text[length - 1])) --length;
    text[length] = '\0';

    if (length == 0) {
        LOG_WARN_AS("GetValueByKey", "the %s from %s is empty.", line.key, filename);
        return false;
    }
    if (static_cast<int>(length) >= len) {
        LOG_ERROR_AS("GetValueByKey", "value len is too small.[len:%d,value:%s]",
                     static_cast<int>(length), text);
        return false;
    }
    CopyText(value, static_cast<size_t>(len), text);
    return true;
}

// ---- writing

struct Lines {
    int count = 0;
    char text[kLinesKept][kLineSize] = {};
};

bool HoldsKnownKey(const char* line)
{
    for (const auto& key : keys) {
        if (Contains(line, key)) return true;
    }
    return false;
}

/// A kept line that ends without newline (the end of a hand-edited file, a NUL byte) gets one, or
/// the line behind it would join it and two settings were lost.
void CloseLine(char (&line)[kLineSize])
{
    const size_t length = strlen(line);
    if (length < sizeof(line) - 1 && line[length - 1] != '\n') CopyText(line + length, 2, "\n");
}

void KeepKnownLines(FILE* scan, Lines* kept)
{
    char line[kLineSize];
    for (int i = 0; i < kLinesLookedAt && kept->count < kLinesKept; ++i) {
        if (fgets(line, sizeof(line), scan) == nullptr) return;
        if (!HoldsKnownKey(line)) continue;

        CloseLine(line);
        CopyText(kept->text[kept->count], line);
        ++kept->count;
    }
}

int PlaceOf(const char* key, const Lines& kept)
{
    for (int place = 0; place < kept.count; ++place) {
        if (Contains(kept.text[place], key)) return place;
    }
    return kept.count;
}

bool WriteLines(const char* filename, const Lines& lines)
{
    const Stream file(fopen(filename, "w+"));
    if (file == nullptr) {
        LOG_ERROR_AS("SetValueByKey", "cannot fopen [%s]", strerror(errno));
        return false;
    }
    for (int place = 0; place < lines.count; ++place) (void)fputs(lines.text[place], file.get());

    (void)fflush(file.get());
    const int descriptor = fileno(file.get());
    if (descriptor < 0) {
        LOG_WARN_AS("SetValueByKey", "fileno:%s\n", strerror(errno));
    } else if (fsync(descriptor) != 0) {
        LOG_WARN_AS("SetValueByKey", "fsync:%s\n", strerror(errno));
    }
    return true;
}

// ---- listing

/// A folder has no order. The old name of eth2's file is put last: who finds a card by the name of
/// its file finds it under the present name first, not a card "2" that is none.
void PutOldNameLast(char (*files)[kFileNameSize], int count)
{
    for (int i = 0; i < count - 1; ++i) {
        if (Equal(files[i], kOldNameOfEth2)) std::swap(files[i], files[count - 1]);
    }
}

// ---- switch modes

int32_t SwitchModeFromText(const char* text, int32_t* mode)
{
    const int value = atoi(text);
    if (static_cast<unsigned>(value) < kModes) {
        *mode = value;
        return 0;
    }
    LOG_ERROR_AS("NetSwitch_GetNetCardMode", "mode error %s %d", text, value);
    *mode = 0;
    return -1;
}

}  // namespace

const char* KeyText(KEYENUM key)
{
    return keys[key];
}

void ReleaseLockedFile()
{
    if (fd < 0) return;

    if (!ControlFile(F_UNLCK, F_SETLKW)) {
        LOG_ERROR_AS("FileLock", "fcntl (F_SETLKW F_UNLCK) failed, pid:%d, [%s]", getpid(),
                     strerror(errno));
    }
    close(fd);
    fd = -1;
}

bool ReadTwoKeys(const char* filename, const Wanted& first, const Wanted& second)
{
    KeyLine lines[] = {{KeyText(first.key), false, {}}, {KeyText(second.key), false, {}}};
    FindLines(filename, lines);
    return TakeValue(lines[0], filename, first.value, first.len) &&
           TakeValue(lines[1], filename, second.value, second.len);
}

void SwitchModes::Read()
{
    read_ = true;
    ConfigLock lock(kSwitchModeFile);
    const Fd file(OpenLocked(kSwitchModeFile));
    if (file.Ok()) {
        LineReader reader(file.Get());
        while (count_ < kCapacity && reader.Next(lines_[count_])) ++count_;
    }
    lock.ReleaseFile();
}

int32_t SwitchModes::Get(const char* name, int32_t* mode)
{
    if (!read_) Read();
    for (int i = 0; i < count_; ++i) {
        if (!Contains(lines_[i], name)) continue;

        KeyLine line = {name, true, {}};
        CopyText(line.text, lines_[i]);
        char text[kModeTextSize + 1] = {};
        if (!TakeValue(line, kSwitchModeFile, text, kModeTextSize)) return -1;
        return SwitchModeFromText(text, mode);
    }
    return -1;
}

}  // namespace vorlix

using namespace vorlix;

bool GetFileByName(const char* name, char* file, int len)
{
    return FormPath(kIPv4Base, name, file, len);
}

bool GetFileByName6(const char* name, char* file, int len)
{
    return FormPath(kIPv6Base, name, file, len);
}

bool checkIsRegFile(const char* fileName)
{
    if (fileName == nullptr || fileName[0] == '\0') return false;

    char path[kRegularPathSize];
    const int length = FormatText(path, sizeof(path), "%s/%s", kConfigFolder, fileName);
    if (length < 1 || length >= kRegularPathSize) {
        LOG_ERROR("the file:%s is too long", fileName);
        return false;
    }
    struct stat status {};
    return stat(path, &status) == 0 && S_ISREG(status.st_mode);
}

bool FileLock(bool lockORunlock, const char* filename)
{
    if (lockORunlock) {
        LockFile(filename);
    } else {
        UnlockFile();
    }
    return true;
}

bool GetValueByKey(const char* filename, const char* key, char* value, int len)
{
    if (filename == nullptr || key == nullptr || value == nullptr) return false;

    KeyLine line[] = {{key, false, {}}};
    FindLines(filename, line);
    return TakeValue(line[0], filename, value, len);
}

bool SetValueByKey(const char* filename, const char* key, const char* value)
{
    if (filename == nullptr || key == nullptr || value == nullptr) return false;

    ConfigLock lock(filename);
    // The stream of the scan is closed last: a process loses its lock on a file as soon as it
    // closes any descriptor of that file.
    const Stream scan(fopen(filename, "r+"));
    Lines lines;
    if (scan == nullptr) {
        LOG_ERROR("cannot fopen for read.[%s]", strerror(errno));
    } else {
        KeepKnownLines(scan.get(), &lines);
        // Emptied now, the file would lose for good what a bad read has hidden.
        if (ferror(scan.get()) != 0) {
            LOG_ERROR("cannot read %s.[%s]", filename, strerror(errno));
            return false;
        }
    }

    const int place = PlaceOf(key, lines);
    if (place >= kLinesKept) {
        LOG_ERROR("can not set %s = %s, too many lines [%d] max line num is %d", key, value, place,
                  kLinesKept);
        return false;
    }
    FormatText(lines.text[place], sizeof(lines.text[place]), "%s = %s\n", key, value);
    if (place == lines.count) ++lines.count;
    return WriteLines(filename, lines);
}

bool CheckConfigFile(const char* ethName)
{
    char path[kPathSize] = {};
    return GetFileByName(ethName, path, sizeof(path)) && access(path, F_OK) == 0;
}

bool CreateConfigFile(const char* ethName)
{
    char path[kPathSize] = {};
    if (!GetFileByName(ethName, path, sizeof(path))) return false;

    // The threads of this process alone: closing takes away a lock that one of them may have.
    const ConfigLock lock(nullptr);
    const Fd file(open(path, O_RDWR | O_CREAT, kNewFileMode));
    return file.Ok();
}

bool DelConfigFile(const char* ethName)
{
    char path[kPathSize] = {};
    (void)GetFileByName(ethName, path, sizeof(path));  // NULL: no path, whose removal fails
    if (remove(path) != 0) LOG_WARN("remove file %s failed,[%s]", path, strerror(errno));
    return true;
}

bool GetAllNetworkFile(char (*files)[64], int* num)
{
    if (files == nullptr || num == nullptr) {
        LOG_ERROR("params is null");
        return false;
    }
    const Directory folder(opendir(kConfigFolder));
    if (folder == nullptr) {
        *num = 0;
        LOG_ERROR("can not open %s", kConfigFolder);
        return false;
    }
    int count = 0;
    while (count < *num) {
        const dirent* entry = readdir(folder.get());
        if (entry == nullptr) break;
        const char* name = entry->d_name;
        if (Equal(name, ".") || Equal(name, "..") || !checkIsRegFile(name)) continue;
        if (!Contains(name, "network") || Contains(name, "networkip6")) continue;

        if (entry->d_reclen > kLongestEntry) {
            LOG_WARN("filename too long[%s].max length is %d", name, kFileNameSize - 1);
            continue;
        }
        CopyText(files[count], name);
        ++count;
    }
    PutOldNameLast(files, count);
    *num = count;
    return true;
}

int32_t NetSwitch_SetNetCardMode(const char* name, int32_t mode)
{
    if (name == nullptr || name[0] == '\0') {
        LOG_ERROR("eth name  is null");
        return -1;
    }
    char text[kModeTextSize + 1] = {};
    FormatText(text, kModeTextSize, "%d", mode);
    return SetValueByKey(kSwitchModeFile, name, text) ? 0 : -1;
}

int32_t NetSwitch_GetNetCardMode(const char* name, int32_t* mode)
{
    if (name == nullptr) {
        LOG_ERROR("eth name  is null");
        return -1;
    }
    if (mode == nullptr) return -1;

    char text[kModeTextSize + 1] = {};
    if (!GetValueByKey(kSwitchModeFile, name, text, kModeTextSize)) return -1;
    return SwitchModeFromText(text, mode);
}
