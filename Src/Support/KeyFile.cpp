// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Contents:
//   Names: the keys, the files of the cards
//   Locking: a mutex for the threads, a lock on the file for other processes
//   Reading: the first line that holds a key, and its value
//   Writing: what a rewrite keeps, in which place the new line goes
//   Listing, switch modes

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

constexpr char kSecondCard[] = "eth1";
constexpr char kFileStart[] = "network";
constexpr char kIPv6Base[] = "/mnt/mtd/Config/networkip6";
constexpr char kOldNameOfEth2[] = "network2";
constexpr char kSwitchModeFile[] = "/mnt/mtd/Config/poeMode.conf";

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
int fd = -1;            // of the file locked now; guarded by net_config_Lock
pid_t locker = 0;       // who locked it; guarded by net_config_Lock
bool lookOnly = false;  // set before the first call

// ---- paths

bool FormPath(const char* base, const char* name, char* file, int len)
{
    if (name == nullptr || file == nullptr || len <= 0) return false;

    const char* suffix = name;
    if (Equal(name, kFirstCard)) suffix = "";
    if (Equal(name, kSecondCard)) suffix = "1";
    JoinTexts(file, static_cast<size_t>(len), {base, suffix});
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
    range.l_pid = locker;
    return fcntl(fd, control, &range) == 0;
}

/// @return false when there is no such file
bool LockFile(const char* filename)
{
    pthread_mutex_lock(&net_config_Lock);
    if (filename == nullptr || lookOnly) return true;

    fd = open(filename, O_WRONLY | O_APPEND);
    if (fd < 0) return errno != ENOENT;

    locker = getpid();
    if (!ControlFile(F_WRLCK, F_SETLKW)) {
        LOG_ERROR_AS("FileLock", "fcntl (F_SETLKW F_WRLCK) failed, pid:%d, [%s]", locker,
                     strerror(errno));
    }
    return true;
}

/// Lets other processes at the file, while the threads of this one still wait.
void UnlockForProcesses()
{
    if (fd < 0) return;

    if (!ControlFile(F_UNLCK, F_SETLKW)) {
        LOG_ERROR_AS("FileLock", "fcntl (F_SETLKW F_UNLCK) failed, pid:%d, [%s]", locker,
                     strerror(errno));
    }
    close(fd);
    fd = -1;
}

void UnlockFile()
{
    UnlockForProcesses();
    pthread_mutex_unlock(&net_config_Lock);
}

// ---- reading

bool IsPadding(char character)
{
    return character == ' ' || character == '\t' || character == '\n';
}

/// True when the key stands anywhere in the line. Nearly always that is its start.
bool HoldsKey(const char* line, const char* key)
{
    return StartsWith(line, key) || Contains(line, key);
}

/// Finds the first line that holds the key.
bool FindLine(const char* filename, const char* key, char (&line)[kLineSize])
{
    LockedLines lines(filename);
    while (lines.Next(line)) {
        if (HoldsKey(line, key)) return true;
    }
    return false;
}

/// The same for one of several keys: the first of the lines offered that holds it.
struct KeyLine {
    const char* key;
    bool found;
    char text[kLineSize];

    void Offer(const char* line)
    {
        if (found || !HoldsKey(line, key)) return;

        CopyText(text, line);
        found = true;
    }
};

/// Copies out the value of a line.
bool TakeValue(const char* filename, const char* key, const char* line, char* value, int len)
{
    const char* text = strchr(line, '=');
    if (text == nullptr) {
        LOG_ERROR_AS("GetValueByKey", "file formate error![file:%s,context:%s]", filename, line);
        return false;
    }
    do {
        ++text;
    } while (IsPadding(*text));
    auto length = static_cast<int>(strlen(text));
    while (length > 0 && IsPadding(text[length - 1])) --length;

    if (length == 0) {
        LOG_WARN_AS("GetValueByKey", "the %s from %s is empty.", key, filename);
        return false;
    }
    if (length >= len) {
        LOG_ERROR_AS("GetValueByKey", "value len is too small.[len:%d,value:%.*s]", length, length,
                     text);
        return false;
    }
    memset(value, 0, static_cast<size_t>(len));
    memcpy(value, text, static_cast<size_t>(length));
    return true;
}

bool TakeValue(const char* filename, const KeyLine& line, const Wanted& wanted)
{
    return line.found && TakeValue(filename, line.key, line.text, wanted.value, wanted.len);
}

// ---- writing

struct KeptLines {
    int count = 0;
    char text[kLinesKept][kLineSize];  // those behind the count are not set
};

/// A stream with a buffer of its own, which takes all lines that a file may keep: no memory is
/// asked for, and the file not for the size of its blocks.
class BufferedStream {
public:
    // cppcheck-suppress uninitMemberVar  ; the buffer is the stream's
    BufferedStream(const char* filename, const char* mode) : stream_(fopen(filename, mode))
    {
        if (stream_ != nullptr) (void)setvbuf(stream_.get(), buffer_, _IOFBF, sizeof(buffer_));
    }
    BufferedStream(const BufferedStream&) = delete;
    BufferedStream& operator=(const BufferedStream&) = delete;

    FILE* Get() const { return stream_.get(); }

private:
    char buffer_[kLinesKept * kLineSize];
    Stream stream_;  // closed before its buffer ends
};

bool HoldsKnownKey(const char* line)
{
    for (const auto& key : keys) {
        if (StartsWith(line, key)) return true;
    }
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

/// @return false when the file cannot be read to its end: emptied now, it would lose for good what
///         a bad read has hidden
bool KeepKnownLines(const char* filename, FILE* scan, KeptLines* kept)
{
    for (int i = 0; i < kLinesLookedAt && kept->count < kLinesKept; ++i) {
        auto& line = kept->text[kept->count];
        if (fgets(line, sizeof(line), scan) == nullptr) break;
        if (!HoldsKnownKey(line)) continue;

        CloseLine(line);
        ++kept->count;
    }
    if (ferror(scan) == 0) return true;

    LOG_ERROR_AS("SetValueByKey", "cannot read %s.[%s]", filename, strerror(errno));
    return false;
}

int PlaceOf(const char* key, const KeptLines& kept)
{
    for (int place = 0; place < kept.count; ++place) {
        if (HoldsKey(kept.text[place], key)) return place;
    }
    return kept.count;
}

/// @return false when there is no room for another line
bool PutLine(const char* key, const char* value, KeptLines* kept)
{
    const int place = PlaceOf(key, *kept);
    if (place >= kLinesKept) {
        LOG_ERROR_AS("SetValueByKey", "can not set %s = %s, too many lines [%d] max line num is %d",
                     key, value, place, kLinesKept);
        return false;
    }
    JoinTexts(kept->text[place], sizeof(kept->text[place]), {key, " = ", value, "\n"});
    if (place == kept->count) ++kept->count;
    return true;
}

bool WriteLines(const char* filename, const KeptLines& lines)
{
    const BufferedStream stream(filename, "w+");
    FILE* file = stream.Get();
    if (file == nullptr) {
        LOG_ERROR_AS("SetValueByKey", "cannot fopen [%s]", strerror(errno));
        return false;
    }
    for (int place = 0; place < lines.count; ++place) (void)fputs(lines.text[place], file);

    (void)fflush(file);
    const int descriptor = fileno(file);
    if (descriptor < 0) {
        LOG_WARN_AS("SetValueByKey", "fileno:%s\n", strerror(errno));
    } else if (fsync(descriptor) != 0) {
        LOG_WARN_AS("SetValueByKey", "fsync:%s\n", strerror(errno));
    }
    return true;
}

// ---- listing

bool IsIPv4SettingFile(const char* name)
{
    if (Equal(name, ".") || Equal(name, "..") || !checkIsRegFile(name)) return false;

    return Contains(name, kFileStart) && !Contains(name, "networkip6");
}

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
    const int value = NumberOf(text);
    if (static_cast<unsigned>(value) < kModes) {
        *mode = value;
        return 0;
    }
    LOG_ERROR_AS("NetSwitch_GetNetCardMode", "mode error %s %d", text, value);
    *mode = 0;
    return -1;
}

}  // namespace

void LookOnly()
{
    lookOnly = true;
}

void FormListedPath(const char* file, char (&path)[kPathSize])
{
    JoinTexts(path, sizeof(path), {kConfigFolder, "/", file});
}

const char* CardOfFile(const char* file)
{
    const char* card = file + sizeof(kFileStart) - 1;
    if (Equal(card, "")) return kFirstCard;
    if (Equal(card, "1")) return kSecondCard;
    return card;
}

const char* KeyText(KEYENUM key)
{
    return keys[key];
}

ConfigLock::ConfigLock(const char* filename) : missing_(!LockFile(filename)) {}

ConfigLock::~ConfigLock()
{
    UnlockFile();
}

void ConfigLock::ReleaseFile() const
{
    UnlockForProcesses();
}

LockedLines::LockedLines(const char* filename)
    : lock_(filename),
      file_(lock_.FileIsMissing() ? -1 : open(filename, O_RDONLY)),
      reader_(file_.Get())
{
}

bool LockedLines::Next(char (&line)[kLineSize])
{
    if (!Ok() || left_ == 0) return false;

    --left_;
    return reader_.Next(line);
}

bool ReadTwoKeys(const char* filename, const Wanted& first, const Wanted& second)
{
    KeyLine firstLine = {KeyText(first.key), false, {}};
    KeyLine secondLine = {KeyText(second.key), false, {}};
    {
        LockedLines lines(filename);
        char line[kLineSize];
        while (!(firstLine.found && secondLine.found) && lines.Next(line)) {
            firstLine.Offer(line);
            secondLine.Offer(line);
        }
    }
    return TakeValue(filename, firstLine, first) && TakeValue(filename, secondLine, second);
}

void SwitchModes::Read()
{
    read_ = true;
    LockedLines file(kSwitchModeFile);
    while (count_ < kLinesLookedAt && file.Next(lines_[count_])) ++count_;
}

int32_t SwitchModes::Get(const char* name, int32_t* mode)
{
    if (!read_) Read();
    for (int i = 0; i < count_; ++i) {
        if (!Contains(lines_[i], name)) continue;

        char text[kModeTextSize + 1] = {};
        if (!TakeValue(kSwitchModeFile, name, lines_[i], text, kModeTextSize)) return -1;
        return SwitchModeFromText(text, mode);
    }
    return -1;
}

}  // namespace vorlix

using namespace vorlix;

bool GetFileByName(const char* name, char* file, int len)
{
    return FormPath(kFirstCardFile, name, file, len);
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
        (void)LockFile(filename);
    } else {
        UnlockFile();
    }
    return true;
}

bool GetValueByKey(const char* filename, const char* key, char* value, int len)
{
    if (filename == nullptr || key == nullptr || value == nullptr) return false;

    char line[kLineSize];
    return FindLine(filename, key, line) && TakeValue(filename, key, line, value, len);
}

bool SetValueByKey(const char* filename, const char* key, const char* value)
{
    if (filename == nullptr || key == nullptr || value == nullptr || lookOnly) return false;

    const ConfigLock lock(filename);
    const BufferedStream scan(filename, "r+");
    KeptLines lines;
    if (scan.Get() == nullptr) {
        LOG_ERROR("cannot fopen for read.[%s]", strerror(errno));
    } else if (!KeepKnownLines(filename, scan.Get(), &lines)) {
        return false;
    }
    return PutLine(key, value, &lines) && WriteLines(filename, lines);
}

bool CheckConfigFile(const char* ethName)
{
    char path[kPathSize] = {};
    return GetFileByName(ethName, path, sizeof(path)) && FileExists(path);
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
        if (!IsIPv4SettingFile(name)) continue;

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
