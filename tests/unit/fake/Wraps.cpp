// The C calls as the product meets them in a unit test. The linker sends each call of the list in
// Wraps.txt here; what is not modelled goes on to libc.

#include "fake/Rtnetlink.h"
#include "fake/World.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <map>
#include <mutex>
#include <sstream>

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
int __real_pthread_mutex_lock(pthread_mutex_t*);
int __real_pthread_mutex_unlock(pthread_mutex_t*);
}

namespace fake {

namespace {

std::atomic<int> heldMutexes{0};
long clockSeconds = 1000000;
long clockMicroseconds = 0;
unsigned slept = 0;
std::vector<std::string> commands;

struct CommandRule {
    std::string start;
    std::function<void(const std::string&)> action;
    int waitStatus;
};
std::vector<CommandRule> rules;

/// Where a child leaves the calls it made and the command it would have become.
struct Mailbox {
    char calls[4096];  // one a line
    bool started;
    char command[4096];
};
Mailbox* mailbox = nullptr;
pid_t shell = -1;

std::string Flags(int flags)
{
    std::string text = (flags & O_ACCMODE) == O_RDONLY   ? "O_RDONLY"
                       : (flags & O_ACCMODE) == O_WRONLY ? "O_WRONLY"
                                                         : "O_RDWR";
    if ((flags & O_CREAT) != 0) text += "|O_CREAT";
    if ((flags & O_TRUNC) != 0) text += "|O_TRUNC";
    if ((flags & O_APPEND) != 0) text += "|O_APPEND";
    return text;
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
    return signal == SIGINT ? "SIGINT" : "SIGQUIT";
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

void LeaveCall(const std::string& call)
{
    const size_t length = strlen(mailbox->calls);
    snprintf(mailbox->calls + length, sizeof(mailbox->calls) - length, "%s\n", call.c_str());
}

std::vector<std::string> CallsLeft()
{
    std::vector<std::string> calls;
    std::istringstream lines(mailbox->calls);
    for (std::string line; std::getline(lines, line);) calls.push_back(line);
    return calls;
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
void SetClock(long seconds, long microseconds)
{
    clockSeconds = seconds;
    clockMicroseconds = microseconds;
}
unsigned Slept()
{
    return slept;
}

void OnCommand(const std::string& start, std::function<void(const std::string&)> action,
               int waitStatus)
{
    rules.push_back({start, std::move(action), waitStatus});
}

void ResetTools()
{
    heldMutexes = 0;
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
    if (!Note(call)) return -1;
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
    if (!Note("pread " + path)) return -1;
    if (offset == 0) PrintTable(path);
    return __real_pread(fd, buffer, size, offset);
}

ssize_t __wrap_read(int fd, void* buffer, size_t size)
{
    if (!Note("read " + PathOf(fd))) return -1;
    return __real_read(fd, buffer, size);
}

ssize_t __wrap_write(int fd, const void* buffer, size_t size)
{
    if (!Note("write " + PathOf(fd))) return -1;
    return __real_write(fd, buffer, size);
}

size_t __wrap_fwrite(const void* items, size_t size, size_t count, FILE* stream)
{
    const int known = Known(stream);
    if (known >= 0 && !Note("fwrite " + PathOf(known))) return 0;
    return __real_fwrite(items, size, count, stream);
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
    if (Known(stream) >= 0 && !Note("fileno")) return -1;
    return __real_fileno(stream);
}

int __wrap_fsync(int fd)
{
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
        const char* type = range->l_type == F_WRLCK ? "F_WRLCK" : "F_UNLCK";
        if (!Note("fcntl F_SETLKW " + std::string(type) + " " + PathOf(fd))) return -1;
    } else if (control == F_SETFD) {
        if (!Note("fcntl F_SETFD")) return -1;
    }
    return __real_fcntl(fd, control, argument);
}

int __wrap_access(const char* path, int mode)
{
    if (!Note(std::string("access ") + path)) return -1;
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
    if (Known(folder) >= 0 && !Note("readdir")) return nullptr;
    return __real_readdir(folder);
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
    if (!Note(call)) return -1;
    // A descriptor with nothing behind it: all requests go to the model.
    const int fd = __real_open("/dev/null", O_RDWR);
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
    if (!Note("ioctl " + RequestText(request, record, family))) return -1;
    const int error = fd < 0 ? EBADF : Perform(request, record, family);
    if (error == 0) return ResultOf(request);
    errno = error;
    return -1;
}

// ---- netlink

int __wrap_bind(int, const sockaddr* address, socklen_t length)
{
    if (address->sa_family == AF_INET) return BindIPv4(address, length);

    return Note("bind " + AddressText(address, length)) ? 0 : -1;
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
    if (!Note("sendmsg " + std::to_string(flags))) return -1;
    return IsNetlink(fd) ? TakeRequest(*message) : -1;
}

ssize_t __wrap_recvmsg(int fd, msghdr* message, int flags)
{
    if (!Note("recvmsg " + std::to_string(flags))) return -1;
    return IsNetlink(fd) ? GiveAnswer(message) : -1;
}

// ---- processes and signals

int __wrap_sigaction(int signal, const struct sigaction* action, struct sigaction* old)
{
    const bool ignores = action != nullptr && action->sa_handler == SIG_IGN;
    if (!Note("sigaction " + SignalText(signal) + (ignores ? " ignore" : " restore"))) return -1;
    return __real_sigaction(signal, action, old);
}

int __wrap_sigprocmask(int how, const sigset_t* mask, sigset_t* old)
{
    if (!Note(how == SIG_BLOCK ? "sigprocmask SIG_BLOCK" : "sigprocmask SIG_SETMASK")) return -1;
    return __real_sigprocmask(how, mask, old);
}

/// A function cannot stand in for vfork, which returns twice: the child is a copy here, and leaves
/// its calls and its command in the mailbox. As with vfork, the parent waits until it is gone.
pid_t __wrap_vfork()
{
    if (!Note("vfork")) return -1;
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
    if (pid != shell) return __real_waitpid(pid, status, options);
    if (!Note("waitpid")) return -1;

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
    return Note("calloc") ? __real_calloc(count, size) : nullptr;
}

void* __wrap_malloc(size_t size)
{
    return Note("malloc") ? __real_malloc(size) : nullptr;
}

int __wrap_pthread_mutex_lock(pthread_mutex_t* mutex)
{
    NoteOnly("mutex lock");
    ++heldMutexes;
    return __real_pthread_mutex_lock(mutex);
}

int __wrap_pthread_mutex_unlock(pthread_mutex_t* mutex)
{
    NoteOnly("mutex unlock");
    --heldMutexes;
    return __real_pthread_mutex_unlock(mutex);
}

}  // extern "C"
