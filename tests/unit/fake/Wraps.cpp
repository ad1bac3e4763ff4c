// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The C calls as the product meets them in a unit test. The linker sends each call of the list in
// Wraps.txt here; what is not modelled goes on to libc.

#include "fake/Odd.h"
#include "fake/Rtnetlink.h"
#include "fake/Synced.h"
#include "fake/World.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <map>
#include <mutex>
#include <sstream>

#include <arpa/inet.h>
#include <csignal>
#include <dirent.h>
#include <fcntl.h>
#include <pthread.h>
#include <stdio_ext.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

extern "C" {
int __real_open(const char*, int, ...);
FILE* __real_fopen(const char*, const char*);
int __real_fclose(FILE*);
int __real_close(int);
ssize_t __real_pread(int, void*, size_t, off_t);
ssize_t __real_read(int, void*, size_t);
ssize_t __real_write(int, const void*, size_t);
size_t __real_fwrite(const void*, size_t, size_t, FILE*);
int __real_fflush(FILE*);
int __real_fileno(FILE*);
int __real_fcntl(int, int, ...);
int __real_access(const char*, int);
int __real_stat(const char*, struct stat*);
int __real_fstat(int, struct stat*);
int __real_lstat(const char*, struct stat*);
DIR* __real_opendir(const char*);
dirent* __real_readdir(DIR*);
int __real_closedir(DIR*);
int __real_rename(const char*, const char*);
int __real_link(const char*, const char*);
int __real_unlink(const char*);
int __real_remove(const char*);
int __real_sigaction(int, const struct sigaction*, struct sigaction*);
int __real_sigprocmask(int, const sigset_t*, sigset_t*);
pid_t __real_waitpid(pid_t, int*, int);
void* __real_calloc(size_t, size_t);
void* __real_malloc(size_t);
void __real_free(void*);
int __real_pthread_mutex_lock(pthread_mutex_t*);
int __real_pthread_mutex_unlock(pthread_mutex_t*);
void __real_flockfile(FILE*);
void __real_funlockfile(FILE*);
pid_t __real_setsid();
int __real_clock_gettime(clockid_t, struct timespec*);
const char* __real_inet_ntop(int, const void*, char*, socklen_t);
int __real_inet_pton(int, const char*, void*);
int __real_sched_yield();
}

namespace fake {

namespace {

std::atomic<int> heldMutexes{0};
time_t clockSeconds = 1000000;
long clockMicroseconds = 0;
unsigned slept = 0;
std::vector<std::string> commands;
bool entryTypesAreTold = true;
bool commandsAreRead = true;

struct CommandRule {
    std::string start;
    std::function<void(const std::string&)> action;
    int waitStatus;
};
std::vector<CommandRule> rules;

/// Where a child leaves the calls it made and the command it would have become.
struct Mailbox {
    char calls[32768];  // four lines each
    bool started;
    char command[4096];
};
Mailbox* mailbox = nullptr;
pid_t shell = -1;
constexpr pid_t kNobody = INT_MAX;

struct Flag {
    int bit;
    const char* name;
};

/// "|NAME" for each flag that is set, then what has no name here.
std::string NamesOf(int flags, const std::vector<Flag>& known)
{
    std::string text;
    for (const Flag& flag : known) {
        if ((flags & flag.bit) != flag.bit) continue;
        text += std::string("|") + flag.name;
        flags &= ~flag.bit;
    }
    if (flags == 0) return text;

    char rest[16];
    snprintf(rest, sizeof(rest), "|0x%x", static_cast<unsigned>(flags));
    return text + rest;
}

std::string Flags(int flags)
{
    const std::string text = (flags & O_ACCMODE) == O_RDONLY   ? "O_RDONLY"
                             : (flags & O_ACCMODE) == O_WRONLY ? "O_WRONLY"
                                                               : "O_RDWR";
    return text + NamesOf(flags & (O_CREAT | O_TRUNC | O_APPEND),
                          {{O_CREAT, "O_CREAT"}, {O_TRUNC, "O_TRUNC"}, {O_APPEND, "O_APPEND"}});
}

/// What `Flags` leaves out: the other flags, and the mode of a file that is to be created.
std::string MoreFlags(int flags, mode_t mode)
{
    std::string text =
        NamesOf(flags & ~(O_ACCMODE | O_CREAT | O_TRUNC | O_APPEND), {{O_CLOEXEC, "O_CLOEXEC"},
                                                                      {O_NONBLOCK, "O_NONBLOCK"},
                                                                      {O_EXCL, "O_EXCL"},
                                                                      {O_SYNC, "O_SYNC"},
                                                                      {O_NOFOLLOW, "O_NOFOLLOW"}});
    if ((flags & O_CREAT) == 0) return text;

    char octal[16];
    snprintf(octal, sizeof(octal), " %04o", mode);
    return text + octal;
}

std::string TypeText(int type)
{
    const int kind = type & ~(SOCK_CLOEXEC | SOCK_NONBLOCK);
    const std::string text = kind == SOCK_DGRAM    ? "SOCK_DGRAM"
                             : kind == SOCK_RAW    ? "SOCK_RAW"
                             : kind == SOCK_PACKET ? "SOCK_PACKET"
                                                   : std::to_string(kind);
    return text + NamesOf(type & (SOCK_CLOEXEC | SOCK_NONBLOCK),
                          {{SOCK_CLOEXEC, "SOCK_CLOEXEC"}, {SOCK_NONBLOCK, "SOCK_NONBLOCK"}});
}

/// Prints a table of the model into its file when it has changed, unless a test has put one there.
/// The descriptors that stand for one table are open in many threads: one prints at a time.
void PrintTable(const std::string& path)
{
    static std::mutex printing;
    static std::map<std::string, std::string> printed;
    const auto text = TableText(path);
    if (!text) return;

    const OwnCalls own;
    const std::lock_guard<std::mutex> guard(printing);
    if (Exists(path) && (printed.count(path) == 0 || Get(path) != printed[path])) return;
    if (Exists(path) && printed[path] == *text) return;
    Put(path, *text);
    printed[path] = *text;
}

/// The descriptor of a stream or folder that the product has opened; -1 for any other.
int Known(FILE* stream)
{
    const int fd = __real_fileno(stream);
    return IsOpen(fd, "fopen ") ? fd : -1;
}

int Known(DIR* folder)
{
    const int fd = dirfd(folder);
    return IsOpen(fd, "opendir ") ? fd : -1;
}

std::string SignalText(int signal)
{
    const char* name = sigabbrev_np(signal);
    return name == nullptr ? std::to_string(signal) : std::string("SIG") + name;
}

/// " SIGINT SIGQUIT" for a set; "" for an empty one.
std::string SetText(const sigset_t& set)
{
    constexpr int kSignals = 64;
    std::string text;
    for (int signal = 1; signal <= kSignals; ++signal) {
        if (sigismember(&set, signal) == 1) text += " " + SignalText(signal);
    }
    return text;
}

std::string ActionText(const struct sigaction* action)
{
    constexpr int kOfLibc = 0x04000000;  // SA_RESTORER, which it sets itself
    if (action == nullptr) return ", no record";

    const std::string handler = action->sa_handler == SIG_IGN   ? "SIG_IGN"
                                : action->sa_handler == SIG_DFL ? "SIG_DFL"
                                                                : "handler";
    char flags[16];
    snprintf(flags, sizeof(flags), "0x%x", static_cast<unsigned>(action->sa_flags & ~kOfLibc));
    return ", " + handler + " flags " + flags + " mask" + SetText(action->sa_mask);
}

/// "F_WRLCK" of a lock record.
std::string LockText(const struct flock& range)
{
    return range.l_type == F_WRLCK ? "F_WRLCK" : range.l_type == F_RDLCK ? "F_RDLCK" : "F_UNLCK";
}

std::string FamilyText(int family)
{
    switch (family) {
    case AF_INET: return "AF_INET";
    case AF_INET6: return "AF_INET6";
    case AF_NETLINK: return "AF_NETLINK";
    default: return "other";
    }
}

/// "AF_NETLINK 0 0": family, port and groups.
std::string AddressText(const sockaddr* address, socklen_t length)
{
    if (address->sa_family != AF_NETLINK || length != sizeof(sockaddr_nl)) return "other";

    sockaddr_nl netlink{};
    memcpy(&netlink, address, sizeof(netlink));
    return "AF_NETLINK " + std::to_string(netlink.nl_pid) + " " + std::to_string(netlink.nl_groups);
}

bool IsNetlink(int fd)
{
    if (FamilyOf(fd) == AF_NETLINK) return true;
    errno = EBADF;
    return false;
}

/// " 1 40": sizes, offsets, counts.
std::string Sizes(const std::vector<size_t>& numbers)
{
    std::string text;
    for (const size_t number : numbers) text += " " + std::to_string(number);
    return text;
}

/// What a request is made on: " on AF_INET", " on /dev/pdcRtc".
std::string On(int fd)
{
    const std::string path = PathOf(fd);
    return path.empty() ? " on nothing" : " on " + path;
}

std::string ProcessText(pid_t process)
{
    return process == getpid() ? " own process" : " process " + std::to_string(process);
}

/// Another number for the same thing, which is open twice from here on.
int Duplicate(int fd, int control, void* lowest)
{
    NoteAside("fcntl F_DUPFD " + PathOf(fd));
    const int copy = __real_fcntl(fd, control, lowest);
    if (copy >= 0) CopyHandle(fd, copy);
    return copy;
}

void LeaveCall(const Noted& call)
{
    const size_t length = strlen(mailbox->calls);
    snprintf(mailbox->calls + length, sizeof(mailbox->calls) - length, "%s\n%s\n%zu %zu %d\n",
             call.call.c_str(), call.more.c_str(), call.printed, call.flushed, call.inTrace);
}

std::vector<Noted> CallsLeft()
{
    std::vector<Noted> calls;
    std::istringstream lines(mailbox->calls);
    Noted call;
    for (std::string place; std::getline(lines, call.call);) {
        std::getline(lines, call.more);
        std::getline(lines, place);
        int inTrace = 0;
        sscanf(place.c_str(), "%zu %zu %d", &call.printed, &call.flushed, &inTrace);
        call.inTrace = inTrace != 0;
        calls.push_back(call);
    }
    return calls;
}

/// What stands in an open file. The file is not opened for it: its close would take the process's
/// lock off the file.
std::string TextOf(int fd)
{
    std::string text(1U << 16U, '\0');
    const ssize_t length = __real_pread(fd, text.data(), text.size(), 0);
    text.resize(length > 0 ? static_cast<size_t>(length) : 0);
    return text;
}

}  // namespace

int HeldMutexes()
{
    return heldMutexes;
}
const std::vector<std::string>& Commands()
{
    return commands;
}
void SetClock(time_t seconds, long microseconds)
{
    clockSeconds = seconds;
    clockMicroseconds = microseconds;
}
unsigned Slept()
{
    return slept;
}

void ReadCommands(bool read)
{
    commandsAreRead = read;
}

void TellNoEntryTypes()
{
    entryTypesAreTold = false;
}

void OnCommand(const std::string& start, std::function<void(const std::string&)> action,
               int waitStatus)
{
    rules.push_back({start, std::move(action), waitStatus});
}

void ResetTools()
{
    heldMutexes = 0;
    entryTypesAreTold = true;
    commandsAreRead = true;
    slept = 0;
    commands.clear();
    rules.clear();
    if (mailbox == nullptr) {
        mailbox = static_cast<Mailbox*>(mmap(nullptr, sizeof(Mailbox), PROT_READ | PROT_WRITE,
                                             MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    }
}

}  // namespace fake

using namespace fake;

extern "C" {

// ---- files

int __wrap_open(const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    const std::string call = std::string("open ") + path + " " + Flags(flags);
    if (!Note(call, MoreFlags(flags, mode))) return -1;
    PrintTable(path);
    const int fd = __real_open(Mapped(path).c_str(), flags, mode);
    Opened(fd, call);
    return fd;
}

FILE* __wrap_fopen(const char* path, const char* mode)
{
    const std::string call = std::string("fopen ") + path + " " + mode;
    if (!Note(call)) return nullptr;
    PrintTable(path);
    FILE* stream = __real_fopen(Mapped(path).c_str(), mode);
    if (stream != nullptr) Opened(__real_fileno(stream), call);
    return stream;
}

int __wrap_fclose(FILE* stream)
{
    const int known = Known(stream);
    if (known >= 0) {
        NoteOnly("fclose " + PathOf(known));
        Closed(known);
    }
    return __real_fclose(stream);
}

int __wrap_close(int fd)
{
    NoteOnly("close " + PathOf(fd));
    Closed(fd);
    return __real_close(fd);
}

ssize_t __wrap_pread(int fd, void* buffer, size_t size, off_t offset)
{
    const std::string path = PathOf(fd);
    const std::string call = "pread " + path;
    if (!GoesOn(fd, offset)) {
        if (!Note(call, Sizes({size, static_cast<size_t>(offset)}))) return -1;
        if (offset == 0) PrintTable(path);
    }
    return __real_pread(fd, buffer, PieceOf(fd, Room(call, size), offset), offset);
}

ssize_t __wrap_read(int fd, void* buffer, size_t size)
{
    const std::string call = "read " + PathOf(fd);
    if (!Note(call, Sizes({size}))) return -1;
    return __real_read(fd, buffer, Room(call, size));
}

ssize_t __wrap_write(int fd, const void* buffer, size_t size)
{
    const std::string call = "write " + PathOf(fd);
    if (!Note(call, Sizes({size}))) return -1;
    return __real_write(fd, buffer, Room(call, size));
}

size_t __wrap_fwrite(const void* items, size_t size, size_t count, FILE* stream)
{
    const int known = Known(stream);
    if (known < 0) return __real_fwrite(items, size, count, stream);

    const std::string call = "fwrite " + PathOf(known);
    if (!Note(call, Sizes({size, count}))) return 0;
    return __real_fwrite(items, size, Room(call, count), stream);
}

int __wrap_fflush(FILE* stream)
{
    const int known = stream == nullptr ? -1 : Known(stream);
    if (known >= 0 && !Note("fflush " + PathOf(known))) {
        __fpurge(stream);  // what a full disk did not take is gone
        return EOF;
    }
    return __real_fflush(stream);
}

int __wrap_fileno(FILE* stream)
{
    const int known = Known(stream);
    if (known >= 0 && !Note("fileno", " " + PathOf(known))) return -1;
    return __real_fileno(stream);
}

int __wrap_fsync(int fd)
{
    NoteSynced(TextOf(fd));
    return Note("fsync " + PathOf(fd)) ? 0 : -1;  // the scratch folder needs no disk
}

int __wrap_fcntl(int fd, int control, ...)
{
    va_list arguments;
    va_start(arguments, control);
    void* argument = va_arg(arguments, void*);
    va_end(arguments);
    if (control == F_SETLKW) {
        const auto* range = static_cast<struct flock*>(argument);
        if (!Note("fcntl F_SETLKW " + LockText(*range) + " " + PathOf(fd),
                  Sizes({static_cast<size_t>(range->l_whence), static_cast<size_t>(range->l_start),
                         static_cast<size_t>(range->l_len)}) +
                      ProcessText(range->l_pid))) {
            return -1;
        }
    } else if (control == F_SETFD) {
        const auto value = reinterpret_cast<intptr_t>(argument);
        const std::string flags = value == FD_CLOEXEC ? "FD_CLOEXEC" : std::to_string(value);
        if (!Note("fcntl F_SETFD", " " + flags + " " + PathOf(fd))) return -1;
    } else if (control == F_DUPFD || control == F_DUPFD_CLOEXEC) {
        return Duplicate(fd, control, argument);
    } else {
        NoteAside("fcntl " + std::to_string(control) + " " + PathOf(fd));
    }
    return __real_fcntl(fd, control, argument);
}

int __wrap_access(const char* path, int mode)
{
    if (!Note(std::string("access ") + path, " " + std::to_string(mode))) return -1;
    return __real_access(Mapped(path).c_str(), mode);
}

int __wrap_stat(const char* path, struct stat* status)
{
    if (!Note(std::string("stat ") + path)) return -1;
    return __real_stat(Mapped(path).c_str(), status);
}

int __wrap_fstat(int fd, struct stat* status)
{
    if (!Note("fstat " + PathOf(fd))) return -1;
    return __real_fstat(fd, status);
}

int __wrap_lstat(const char* path, struct stat* status)
{
    if (!Note(std::string("lstat ") + path)) return -1;
    return __real_lstat(Mapped(path).c_str(), status);
}

DIR* __wrap_opendir(const char* path)
{
    const std::string call = std::string("opendir ") + path;
    if (!Note(call)) return nullptr;
    DIR* folder = __real_opendir(Mapped(path).c_str());
    if (folder != nullptr) Opened(dirfd(folder), call);
    return folder;
}

dirent* __wrap_readdir(DIR* folder)
{
    const int known = Known(folder);
    if (known >= 0 && !Note("readdir", " " + PathOf(known))) return nullptr;
    dirent* entry = __real_readdir(folder);
    if (entry != nullptr && known >= 0 && !entryTypesAreTold) entry->d_type = DT_UNKNOWN;
    return entry;
}

int __wrap_closedir(DIR* folder)
{
    const int known = Known(folder);
    if (known >= 0) {
        NoteOnly("closedir " + PathOf(known));
        Closed(known);
    }
    return __real_closedir(folder);
}

int __wrap_rename(const char* from, const char* to)
{
    if (!Note(std::string("rename ") + from + " " + to)) return -1;
    return __real_rename(Mapped(from).c_str(), Mapped(to).c_str());
}

int __wrap_link(const char* from, const char* to)
{
    if (!Note(std::string("link ") + from + " " + to)) return -1;
    return __real_link(Mapped(from).c_str(), Mapped(to).c_str());
}

int __wrap_unlink(const char* path)
{
    if (!Note(std::string("unlink ") + path)) return -1;
    return __real_unlink(Mapped(path).c_str());
}

int __wrap_remove(const char* path)
{
    if (!Note(std::string("remove ") + path)) return -1;
    return __real_remove(Mapped(path).c_str());
}

// ---- kernel requests

int __wrap_socket(int family, int type, int protocol)
{
    const std::string call = "socket " + FamilyText(family);
    if (!Note(call, " " + TypeText(type) + " " + std::to_string(protocol))) return -1;
    // A descriptor with nothing behind it: all requests go to the model.
    const int fd = Numbered(__real_open("/dev/null", O_RDWR), family);
    Opened(fd, call + " " + std::to_string(type) + " " + std::to_string(protocol), family);
    return fd;
}

int __wrap_ioctl(int fd, unsigned long request, ...)
{
    va_list arguments;
    va_start(arguments, request);
    void* record = va_arg(arguments, void*);
    va_end(arguments);
    const int family = FamilyOf(fd);
    if (!Note("ioctl " + RequestText(request, record, family),
              RequestDetail(request, record, family) + On(fd))) {
        return -1;
    }
    const int error = fd < 0 ? EBADF : Perform(request, record, family);
    if (error == 0) return ResultOf(request);
    errno = error;
    return -1;
}

// ---- netlink

int __wrap_bind(int fd, const sockaddr* address, socklen_t length)
{
    if (address->sa_family == AF_INET) return BindIPv4(address, length);

    return Note("bind " + AddressText(address, length), On(fd)) ? 0 : -1;
}

int __wrap_getsockname(int fd, sockaddr* address, socklen_t* length)
{
    if (!Note("getsockname " + PathOf(fd) + " " + std::to_string(*length))) return -1;
    sockaddr_nl own{};
    own.nl_family = AF_NETLINK;
    own.nl_pid = rtnetlink.port;
    memcpy(address, &own, std::min<size_t>(*length, sizeof(own)));
    *length = sizeof(own);
    return 0;
}

ssize_t __wrap_sendmsg(int fd, const msghdr* message, int flags)
{
    const std::string call = "sendmsg " + std::to_string(flags);
    if (!Note(call, On(fd))) return -1;
    if (!IsNetlink(fd)) return -1;
    const ssize_t taken = TakeRequest(*message);
    return static_cast<ssize_t>(Room(call, static_cast<size_t>(taken)));
}

ssize_t __wrap_recvmsg(int fd, msghdr* message, int flags)
{
    if (!Note("recvmsg " + std::to_string(flags), On(fd))) return -1;
    return IsNetlink(fd) ? GiveAnswer(message) : -1;
}

// ---- processes and signals

int __wrap_sigaction(int signal, const struct sigaction* action, struct sigaction* old)
{
    const bool ignores = action != nullptr && action->sa_handler == SIG_IGN;
    if (!Note("sigaction " + SignalText(signal) + (ignores ? " ignore" : " restore"),
              ActionText(action))) {
        return -1;
    }
    return __real_sigaction(signal, action, old);
}

int __wrap_sigprocmask(int how, const sigset_t* mask, sigset_t* old)
{
    const char* call = how == SIG_BLOCK ? "sigprocmask SIG_BLOCK" : "sigprocmask SIG_SETMASK";
    if (!Note(call, mask == nullptr ? " no set" : SetText(*mask))) return -1;
    return __real_sigprocmask(how, mask, old);
}

/// A function cannot stand in for vfork, which returns twice: the child is a copy here, and leaves
/// its calls and its command in the mailbox. As with vfork, the parent waits until it is gone.
pid_t __wrap_vfork()
{
    if (!Note("vfork")) return -1;
    if (!commandsAreRead) return kNobody;
    *mailbox = Mailbox();
    fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
        BecomeChild(LeaveCall);
        return 0;
    }
    if (child < 0) return child;

    siginfo_t info{};
    while (waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOWAIT) != 0) {
    }
    NoteChild(CallsLeft());
    shell = child;
    return child;
}

int __wrap_execlp(const char* file, const char* zero, ...)
{
    va_list arguments;
    va_start(arguments, zero);
    const char* option = va_arg(arguments, const char*);
    const char* command = va_arg(arguments, const char*);
    va_end(arguments);
    if (!Note(std::string("execlp ") + file + " " + zero + " " + option + " " + command)) return -1;

    mailbox->started = true;
    snprintf(mailbox->command, sizeof(mailbox->command), "%s", command);
    fflush(stdout);
    _exit(0);
}

pid_t __wrap_waitpid(pid_t pid, int* status, int options)
{
    if (pid == kNobody) {
        *status = 0;
        return pid;
    }
    if (pid != shell) return __real_waitpid(pid, status, options);
    if (!Note("waitpid", " the child, options " + std::to_string(options))) return -1;

    const pid_t ended = __real_waitpid(pid, status, options);
    shell = -1;
    if (!mailbox->started) return ended;

    const std::string command = mailbox->command;
    NoteOnly("command " + command);
    commands.push_back(command);
    for (const auto& rule : rules) {
        if (command.rfind(rule.start, 0) != 0) continue;
        *status = rule.waitStatus;
        if (rule.action) rule.action(command);
        break;
    }
    return ended;
}

// ---- clock

unsigned __wrap_sleep(unsigned seconds)
{
    NoteOnly("sleep " + std::to_string(seconds));
    slept += seconds;
    clockSeconds += seconds;
    return 0;
}

time_t __wrap_time(time_t* now)
{
    if (now != nullptr) *now = clockSeconds;
    return clockSeconds;
}

int __wrap_gettimeofday(struct timeval* now, void*)
{
    *now = {clockSeconds, clockMicroseconds};
    return 0;
}

// ---- heap and locks

void* __wrap_calloc(size_t count, size_t size)
{
    return Note("calloc", Sizes({count, size})) ? Taken(__real_calloc(count, size)) : nullptr;
}

void* __wrap_malloc(size_t size)
{
    return Note("malloc", Sizes({size})) ? Taken(__real_malloc(size)) : nullptr;
}

void __wrap_free(void* block)
{
    GivenBack(block);
    __real_free(block);
}

int __wrap_pthread_mutex_lock(pthread_mutex_t* mutex)
{
    NoteLock("mutex lock", mutex);
    ++heldMutexes;
    return __real_pthread_mutex_lock(mutex);
}

int __wrap_pthread_mutex_unlock(pthread_mutex_t* mutex)
{
    NoteLock("mutex unlock", mutex);
    --heldMutexes;
    return __real_pthread_mutex_unlock(mutex);
}

// ---- streams locked, sessions

void __wrap_flockfile(FILE* stream)
{
    __real_flockfile(stream);
    const int known = stream == stdout ? -1 : Known(stream);
    if (stream == stdout || known >= 0) {
        NoteAside(stream == stdout ? kOutputLock : "flockfile " + PathOf(known));
    }
}

void __wrap_funlockfile(FILE* stream)
{
    const int known = stream == stdout ? -1 : Known(stream);
    if (stream == stdout || known >= 0) {
        NoteAside(stream == stdout ? kOutputUnlock : "funlockfile " + PathOf(known));
    }
    __real_funlockfile(stream);
}

pid_t __wrap_setsid()
{
    NoteAside("setsid");
    return __real_setsid();
}

// ---- calls that a test may have of its own; for all others they go on to libc

[[gnu::weak]] int __wrap_clock_gettime(clockid_t clock, struct timespec* now)
{
    return __real_clock_gettime(clock, now);
}

[[gnu::weak]] const char* __wrap_inet_ntop(int family, const void* address, char* text,
                                           socklen_t size)
{
    return __real_inet_ntop(family, address, text, size);
}

[[gnu::weak]] int __wrap_inet_pton(int family, const char* text, void* address)
{
    return __real_inet_pton(family, text, address);
}

[[gnu::weak]] int __wrap_sched_yield()
{
    return __real_sched_yield();
}

}  // extern "C"
