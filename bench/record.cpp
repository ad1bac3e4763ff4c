// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "record.h"

#include <cstring>
#include <fstream>
#include <map>
#include <set>

#include <fcntl.h>
#include <linux/ethtool.h>
#include <linux/sockios.h>
#include <net/if.h>
#include <net/route.h>
#include <sys/ioctl.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <unistd.h>

// <linux/ptrace.h> does not go together with <sys/ptrace.h>, which has these under glibc's names.
using CallInfo = __ptrace_syscall_info;

namespace record {

namespace {

constexpr size_t kLongestPath = 256;
constexpr size_t kSignalRecord = 32;  // the kernel's, not libc's

std::string Bytes(pid_t process, uint64_t address, size_t size)
{
    std::string bytes(size, '\0');
    const iovec here = {bytes.data(), size};
    const iovec there = {reinterpret_cast<void*>(address), size};
    const ssize_t count = process_vm_readv(process, &here, 1, &there, 1, 0);
    bytes.resize(count > 0 ? static_cast<size_t>(count) : 0);
    return bytes;
}

/// A path with its terminator. It may end just before memory that is not there.
std::string Path(pid_t process, uint64_t address)
{
    constexpr uint64_t kPage = 4096;
    const uint64_t left = kPage - address % kPage;
    std::string path = Bytes(process, address, left < kLongestPath ? left : kLongestPath);
    if (path.find('\0') == std::string::npos) path = Bytes(process, address, kLongestPath);
    return path.substr(0, path.find('\0') + 1);
}

void PutPath(pid_t process, int argument, Call* call, std::string* data)
{
    call->data = static_cast<int8_t>(argument);
    *data = Path(process, call->arguments[argument]);
}

/// The record of a request, with what it points to.
bool PutRequest(pid_t process, Call* call, std::string* data)
{
    const auto request = static_cast<unsigned>(call->arguments[1]);
    if (request == TCGETS) return false;  // the output's stream asks whether that is a terminal

    const bool isRoute = request == SIOCADDRT || request == SIOCDELRT;
    const size_t size = isRoute ? sizeof(rtentry) : sizeof(ifreq);
    *data = Bytes(process, call->arguments[2], size);
    call->data = 2;
    if (!isRoute && request != SIOCETHTOOL) return true;

    const size_t pointer = isRoute ? offsetof(rtentry, rt_dev) : offsetof(ifreq, ifr_data);
    uint64_t second = 0;
    memcpy(&second, data->data() + pointer, sizeof(second));
    call->pointer = static_cast<int16_t>(pointer);
    call->firstPart = static_cast<int16_t>(size);
    *data += Bytes(process, second, isRoute ? IFNAMSIZ : sizeof(ethtool_drvinfo));
    return true;
}

/// A call with a record that is read and one of the same kind that is written, where they are
/// given.
void PutExchange(pid_t process, size_t size, Call* call, std::string* data)
{
    call->descriptor = kNowhere;
    if (call->arguments[1] != 0) {
        call->data = 1;
        *data = Bytes(process, call->arguments[1], size);
    }
    if (call->arguments[2] != 0) call->room = 2;
}

/// Fills in what a call needs to be made again.
/// @return false for one that the task does not ask for: memory, buffers, what libc asks for itself
bool PutArguments(pid_t process, Call* call, std::string* data)
{
    call->descriptor = 0;  // of most calls below
    switch (call->number) {
    case SYS_gettid:
    case SYS_socket:
        call->descriptor = kNowhere;
        call->opens = call->number == SYS_socket;
        return true;
    case SYS_openat:
        call->descriptor = kNowhere;
        call->opens = 1;
        PutPath(process, 1, call, data);
        return true;
    case SYS_newfstatat:
        call->descriptor = kNowhere;
        PutPath(process, 1, call, data);
        call->room = 2;
        return data->size() > 1;  // a stream asks for its buffer's size by the empty path
#ifdef SYS_access
    case SYS_access:
    case SYS_unlink:
        call->descriptor = kNowhere;
        PutPath(process, 0, call, data);
        return true;
#endif
    case SYS_faccessat:
    case SYS_unlinkat:
        call->descriptor = kNowhere;
        PutPath(process, 1, call, data);
        return true;
    case SYS_close:
    case SYS_fsync: return true;
    case SYS_fcntl:
        if (call->arguments[1] == F_SETLKW) {
            call->data = 2;
            *data = Bytes(process, call->arguments[2], sizeof(struct flock));
        }
        return true;
    case SYS_read:
    case SYS_pread64:
    case SYS_getdents64: call->room = 1; return true;
    case SYS_write:
        call->data = 1;
        *data = Bytes(process, call->arguments[1], call->arguments[2]);
        return true;
    case SYS_ioctl: return PutRequest(process, call, data);
    case SYS_rt_sigaction: PutExchange(process, kSignalRecord, call, data); return true;
    case SYS_rt_sigprocmask: PutExchange(process, sizeof(uint64_t), call, data); return true;
    default: return false;
    }
}

/// The end of a file may be asked for by who does not know its length; the floor does.
bool AsksForEnd(const Call& call)
{
    return (call.number == SYS_read || call.number == SYS_pread64 ||
            call.number == SYS_getdents64) &&
           call.result == 0;
}

/// How many arguments a call has that is kept. What lies in the other registers says nothing.
int ArgumentsOf(const Call& call)
{
    switch (call.number) {
    case SYS_gettid: return 0;
    case SYS_close:
    case SYS_fsync: return 1;
    case SYS_pread64:
    case SYS_rt_sigaction:
    case SYS_rt_sigprocmask:
    case SYS_newfstatat: return 4;
    case SYS_openat: return (call.arguments[2] & O_CREAT) != 0 ? 4 : 3;
    default: return 3;
    }
}

/// Leaves nothing in a call that is different each time it is made, but makes no difference.
void Settle(Call* call, std::string* data)
{
    for (int i = 0; i < 4; ++i) {
        const bool isSet = i == call->data || i == call->room;
        if (isSet || i >= ArgumentsOf(*call)) call->arguments[i] = 0;
    }
    if (call->result >= 0 && call->opens == 0) call->result = 0;
    if (call->result < 0) call->result = -1;
    if (call->pointer >= 0) data->replace(static_cast<size_t>(call->pointer), 8, 8, '\0');
}

/// The calls that a list is made of.
class List {
public:
    void Add(const Call& call, const std::string& data)
    {
        std::string bytes(reinterpret_cast<const char*>(&call), sizeof(call));
        bytes += data;
        bytes.resize(sizeof(call) + Padded(data.size()));
        const auto [known, isNew] = known_.emplace(bytes, static_cast<uint32_t>(calls_.size()));
        if (isNew) calls_ += bytes;
        places_.push_back(known->second);
    }

    int Length() const { return static_cast<int>(places_.size()); }

    std::string Text() const
    {
        const Head head = {static_cast<uint32_t>(places_.size()), 0};
        const size_t before = sizeof(head) + Padded(places_.size() * sizeof(uint32_t));
        std::string text(reinterpret_cast<const char*>(&head), sizeof(head));
        for (const uint32_t place : places_) {
            const auto counted = static_cast<uint32_t>(before) + place;
            text.append(reinterpret_cast<const char*>(&counted), sizeof(counted));
        }
        text.resize(before);
        return text + calls_;
    }

private:
    std::map<std::string, uint32_t> known_;  // where in `calls_` each of them stands
    std::vector<uint32_t> places_;
    std::string calls_;
};

class Taker {
public:
    explicit Taker(pid_t process) : process_(process) {}

    void Entered(const CallInfo& info)
    {
        ++run_.calls;
        call_ = {};
        call_.number = static_cast<int32_t>(info.entry.nr);
        call_.descriptor = call_.data = call_.room = kNowhere;
        call_.pointer = kNowhere;
        for (int i = 0; i < 4; ++i) call_.arguments[i] = info.entry.args[i];
        data_.clear();
        keeps_ = PutArguments(process_, &call_, &data_);
        // What is before is the dynamic linker's, which knows no signal and no setting.
        started_ =
            started_ ||
            (keeps_ && (call_.number == SYS_rt_sigaction || data_.find("/mnt/mtd/Config") == 0));
    }

    void Left(const CallInfo& info)
    {
        call_.result = static_cast<int32_t>(info.exit.rval);
        if (keeps_ && data_ == std::string(kFromHere, sizeof(kFromHere))) {
            list_ = {};
            started_ = true;
            return;
        }
        if (!keeps_ || !started_ || AsksForEnd(call_)) return;

        call_.size = static_cast<uint32_t>(data_.size());
        Settle(&call_, &data_);
        list_.Add(call_, data_);
    }

    void Shelled(const std::string& command)
    {
        Call call{};
        call.number = kShell;
        call.size = static_cast<uint32_t>(command.size() + 1);
        const std::string data(command.c_str(), command.size() + 1);
        list_.Add(call, data);
        shells_.Add(call, data);
    }

    Run Taken()
    {
        run_.shells = shells_.Text();
        run_.kept = list_.Length();
        run_.replay = list_.Text();
        return run_;
    }

    Run run_;

private:
    pid_t process_;
    List list_;
    List shells_;
    Call call_{};
    std::string data_;
    bool keeps_ = false;
    bool started_ = false;
};

long PeakOf(pid_t process)
{
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    std::string word;
    while (status >> word) {
        long value = 0;
        if (word == "VmHWM:" && status >> value) return value;
    }
    return 0;
}

pid_t StartTraced(const std::vector<std::string>& command)
{
    const pid_t child = fork();
    if (child != 0) return child;

    std::vector<char*> arguments;
    for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
    const int nowhere = open("/dev/null", O_RDWR);
    dup2(nowhere, STDOUT_FILENO);
    dup2(nowhere, STDERR_FILENO);
    execvp(arguments[0], arguments.data());
    _exit(127);
}

/// The command of a shell, from its arguments "sh", "-c" and the command.
std::string CommandOf(pid_t shell)
{
    std::ifstream arguments("/proc/" + std::to_string(shell) + "/cmdline");
    std::string word;
    for (int i = 0; i < 3; ++i) std::getline(arguments, word, '\0');
    return word;
}

/// What a stop of the program is: the entry of a call, its end, or something else.
void LookAt(pid_t process, Taker* taker)
{
    CallInfo info{};
    if (ptrace(PTRACE_GET_SYSCALL_INFO, process, sizeof(info), &info) <= 0) return;

    if (info.op == PTRACE_SYSCALL_INFO_ENTRY) taker->Entered(info);
    if (info.op == PTRACE_SYSCALL_INFO_EXIT) taker->Left(info);
}

}  // namespace

Run Take(const std::vector<std::string>& command)
{
    constexpr int kCallStop = SIGTRAP | 0x80;
    const pid_t child = StartTraced(command);
    int status = 0;
    waitpid(child, &status, 0);
    ptrace(PTRACE_SETOPTIONS, child, nullptr,
           PTRACE_O_TRACESYSGOOD | PTRACE_O_TRACEEXIT | PTRACE_O_TRACEFORK | PTRACE_O_TRACEVFORK |
               PTRACE_O_TRACECLONE | PTRACE_O_TRACEEXEC);
    Taker taker(child);
    std::set<pid_t> shells;  // started by the program itself, and not yet become one
    for (pid_t stopped = child; stopped > 0; stopped = waitpid(-1, &status, __WALL)) {
        if (WIFEXITED(status) || WIFSIGNALED(status)) {
            if (stopped == child) break;
            continue;
        }
        const int event = status >> 16;
        if (stopped == child && WSTOPSIG(status) == kCallStop) LookAt(child, &taker);
        if (event == PTRACE_EVENT_EXIT && stopped == child) taker.run_.peakKb = PeakOf(child);
        if (event == PTRACE_EVENT_FORK || event == PTRACE_EVENT_VFORK ||
            event == PTRACE_EVENT_CLONE) {
            ++taker.run_.children;
            unsigned long started = 0;
            ptrace(PTRACE_GETEVENTMSG, stopped, nullptr, &started);
            if (stopped == child) shells.insert(static_cast<pid_t>(started));
        }
        if (event == PTRACE_EVENT_EXEC && shells.erase(stopped) != 0) {
            taker.Shelled(CommandOf(stopped));
        }
        // Only the program's own calls are counted, not those of the shells that it starts.
        const bool isOwn = stopped == child;
        ptrace(isOwn ? PTRACE_SYSCALL : PTRACE_CONT, stopped, nullptr, nullptr);
    }
    return taker.Taken();
}

}  // namespace record
