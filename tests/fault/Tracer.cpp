// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Tracer.h"

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <map>
#include <set>

#include <elf.h>
#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fault {

namespace {

// ---- the calls that tests ask for

/// Which argument tells the file.
enum class File { kNone, kPath0, kPath1, kDescriptor0, kDescriptor4 };

struct Known {
    const char* name;
    File file;
};

const std::map<long, Known>& KnownCalls()
{
    static const std::map<long, Known> kCalls = {
#ifdef SYS_access  // the older calls, which newer machines do not have
        {SYS_access, {"access", File::kPath0}},
        {SYS_open, {"open", File::kPath0}},
        {SYS_stat, {"stat", File::kPath0}},
        {SYS_lstat, {"lstat", File::kPath0}},
        {SYS_rename, {"rename", File::kPath0}},
        {SYS_link, {"link", File::kPath0}},
        {SYS_unlink, {"unlink", File::kPath0}},
        {SYS_rmdir, {"rmdir", File::kPath0}},
        {SYS_vfork, {"vfork", File::kNone}},
#endif
        {SYS_faccessat, {"access", File::kPath1}},
        {SYS_openat, {"openat", File::kPath1}},
        {SYS_newfstatat, {"newfstatat", File::kPath1}},
        {SYS_renameat2, {"rename", File::kPath1}},
        {SYS_renameat, {"rename", File::kPath1}},
        {SYS_linkat, {"link", File::kPath1}},
        {SYS_unlinkat, {"unlink", File::kPath1}},
        {SYS_execve, {"execve", File::kPath0}},
        {SYS_read, {"read", File::kDescriptor0}},
        {SYS_pread64, {"pread64", File::kDescriptor0}},
        {SYS_write, {"write", File::kDescriptor0}},
        {SYS_fsync, {"fsync", File::kDescriptor0}},
        {SYS_close, {"close", File::kDescriptor0}},
        {SYS_fcntl, {"fcntl", File::kDescriptor0}},
        {SYS_ioctl, {"ioctl", File::kDescriptor0}},
        {SYS_lseek, {"lseek", File::kDescriptor0}},
        {SYS_fstat, {"fstat", File::kDescriptor0}},
        {SYS_getdents64, {"getdents64", File::kDescriptor0}},
        {SYS_mmap, {"mmap", File::kDescriptor4}},
        {SYS_brk, {"brk", File::kNone}},
        {SYS_socket, {"socket", File::kNone}},
        {SYS_clone, {"clone", File::kNone}},
        {SYS_wait4, {"wait4", File::kNone}},
        {SYS_rt_sigaction, {"rt_sigaction", File::kNone}},
        {SYS_rt_sigprocmask, {"rt_sigprocmask", File::kNone}},
        {SYS_clock_nanosleep, {"clock_nanosleep", File::kNone}},
        {SYS_getpid, {"getpid", File::kNone}},
        {SYS_gettid, {"gettid", File::kNone}},
        {SYS_exit_group, {"exit_group", File::kNone}},
    };
    return kCalls;
}

// ---- the caller's registers and memory

#if defined(__x86_64__)

using Registers = user_regs_struct;

long NumberOf(const Registers& registers)
{
    return static_cast<long>(registers.orig_rax);
}

std::array<uint64_t, 6> ArgumentsOf(const Registers& registers)
{
    return {registers.rdi, registers.rsi, registers.rdx, registers.r10, registers.r8, registers.r9};
}

/// A call that is none returns what stands in the result's register.
void Skip(pid_t process, Registers registers, long result)
{
    registers.orig_rax = static_cast<unsigned long long>(-1);
    registers.rax = static_cast<unsigned long long>(result);
    iovec part{&registers, sizeof(registers)};
    ptrace(PTRACE_SETREGSET, process, NT_PRSTATUS, &part);
}

#elif defined(__aarch64__)

using Registers = user_regs_struct;

long NumberOf(const Registers& registers)
{
    return static_cast<long>(registers.regs[8]);
}

std::array<uint64_t, 6> ArgumentsOf(const Registers& registers)
{
    const auto& all = registers.regs;
    return {all[0], all[1], all[2], all[3], all[4], all[5]};
}

void Skip(pid_t process, Registers registers, long result)
{
    int none = -1;
    iovec number{&none, sizeof(none)};
    ptrace(PTRACE_SETREGSET, process, NT_ARM_SYSTEM_CALL, &number);
    registers.regs[0] = static_cast<unsigned long long>(result);
    iovec part{&registers, sizeof(registers)};
    ptrace(PTRACE_SETREGSET, process, NT_PRSTATUS, &part);
}

#endif

Registers RegistersOf(pid_t process)
{
    Registers registers{};
    iovec part{&registers, sizeof(registers)};
    ptrace(PTRACE_GETREGSET, process, NT_PRSTATUS, &part);
    return registers;
}

std::string TextAt(pid_t process, uint64_t address)
{
    char text[PATH_MAX] = {};
    // Up to the end of the page first: the next one may not be there.
    constexpr uint64_t kPage = 4096;
    const size_t here = kPage - address % kPage;
    const iovec to{text, sizeof(text) - 1};
    const iovec from[] = {{reinterpret_cast<void*>(address), here},
                          {reinterpret_cast<void*>(address + here), sizeof(text) - 1 - here}};
    (void)process_vm_readv(process, &to, 1, from, here < sizeof(text) - 1 ? 2 : 1, 0);
    return text;
}

std::string TargetOf(pid_t process, uint64_t descriptor)
{
    char path[PATH_MAX] = {};
    const std::string link =
        "/proc/" + std::to_string(process) + "/fd/" + std::to_string(static_cast<int>(descriptor));
    return readlink(link.c_str(), path, sizeof(path) - 1) > 0 ? path : "";
}

Call CallOf(pid_t process, const Registers& registers, int number, bool byChild)
{
    const long what = NumberOf(registers);
    const auto known = KnownCalls().find(what);
    const std::string name =
        known == KnownCalls().end() ? std::to_string(what) : known->second.name;
    return {process, number, byChild, name, what, ArgumentsOf(registers)};
}

/// Lets a call fail. One kind tells no error: the heap's end is what it is, however low.
void Refuse(pid_t process, const Registers& registers, int error)
{
    Skip(process, registers, NumberOf(registers) == SYS_brk ? 0 : -error);
}

// ---- the program

constexpr int kMostInherited = 256;  // descriptors that a test runner may have left open

void StopAtEveryCall()
{
    sock_filter code[] = {{BPF_RET | BPF_K, 0, 0, SECCOMP_RET_TRACE}};
    const sock_fprog filter{1, code};
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
        prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) != 0) {
        _exit(126);
    }
}

[[noreturn]] void Become(const std::vector<std::string>& command, int output)
{
    std::vector<char*> arguments;
    for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    dup2(output, STDOUT_FILENO);
    dup2(output, STDERR_FILENO);
    for (int inherited = STDERR_FILENO + 1; inherited < kMostInherited; ++inherited) {
        close(inherited);
    }
    ptrace(PTRACE_TRACEME, 0, 0, 0);
    raise(SIGSTOP);
    StopAtEveryCall();
    execv(arguments[0], arguments.data());
    _exit(127);
}

std::string TextOf(int file)
{
    std::string text(static_cast<size_t>(lseek(file, 0, SEEK_END)), '\0');
    if (pread(file, text.data(), text.size(), 0) != static_cast<ssize_t>(text.size())) text.clear();
    return text;
}

/// The program and its children, while they live.
class Family {
public:
    explicit Family(pid_t program) : program_(program), members_{program} {}

    Traced Follow(const std::function<Fate(const Call&)>& decide)
    {
        int status = 0;
        for (pid_t member; (member = waitpid(-1, &status, __WALL)) > 0;) {
            if (WIFSTOPPED(status)) {
                Stopped(member, status, decide);
            } else {
                members_.erase(member);
                if (member == program_) Ended(status);
            }
        }
        return run_;
    }

private:
    void Ended(int status)
    {
        constexpr int kSignalled = 128;
        run_.status = WIFSIGNALED(status) ? kSignalled + WTERMSIG(status) : WEXITSTATUS(status);
    }

    void Stopped(pid_t member, int status, const std::function<Fate(const Call&)>& decide)
    {
        const bool isNew = members_.insert(member).second;
        if (killed_) {
            kill(member, SIGKILL);
            return;
        }
        int signal = 0;
        if (status >> 8 == (SIGTRAP | PTRACE_EVENT_SECCOMP << 8)) {
            AtCall(member, decide);
        } else if (status >> 16 == 0 && !isNew) {
            signal = WSTOPSIG(status);  // meant for the member; a new one begins with a stop
        }
        ptrace(PTRACE_CONT, member, 0, signal);
    }

    void AtCall(pid_t member, const std::function<Fate(const Call&)>& decide)
    {
        const Registers registers = RegistersOf(member);
        const Fate fate = decide(CallOf(member, registers, ++run_.calls, member != program_));
        switch (fate.kind) {
        case Fate::kGoOn: break;
        case Fate::kFail: Refuse(member, registers, fate.error); break;
        case Fate::kKillCaller: kill(member, SIGKILL); break;
        case Fate::kKillAll:
            killed_ = true;
            for (const pid_t each : members_) kill(each, SIGKILL);
            break;
        }
    }

    pid_t program_;
    std::set<pid_t> members_;
    bool killed_ = false;
    Traced run_{-1, 0, ""};
};

}  // namespace

std::string Call::Path() const
{
    const auto known = KnownCalls().find(what);
    switch (known == KnownCalls().end() ? File::kNone : known->second.file) {
    case File::kNone: return "";
    case File::kPath0: return TextAt(caller, arguments[0]);
    case File::kPath1: break;
    case File::kDescriptor0: return TargetOf(caller, arguments[0]);
    case File::kDescriptor4: return TargetOf(caller, arguments[4]);
    }
    // A file that is open is asked for by an empty path.
    const std::string path = TextAt(caller, arguments[1]);
    return path.empty() ? TargetOf(caller, arguments[0]) : path;
}

std::string Call::Text() const
{
    const std::string path = Path();
    return "call " + std::to_string(number) + (byChild ? " of a tool: " : ": ") + name +
           (path.empty() ? "" : " " + path);
}

bool Call::OpensForWriting() const
{
    return name == "openat" && (arguments[2] & O_ACCMODE) != O_RDONLY;
}

Traced Trace(const std::vector<std::string>& command,
             const std::function<Fate(const Call& call)>& decide)
{
    const int output = memfd_create("output", MFD_CLOEXEC);
    const pid_t program = fork();
    if (program == 0) Become(command, output);

    int status = 0;
    waitpid(program, &status, 0);  // stopped, before its first call
    constexpr long kEvents = PTRACE_O_TRACESECCOMP | PTRACE_O_TRACEFORK | PTRACE_O_TRACEVFORK |
                             PTRACE_O_TRACECLONE | PTRACE_O_TRACEEXEC | PTRACE_O_EXITKILL;
    ptrace(PTRACE_SETOPTIONS, program, 0, kEvents);
    ptrace(PTRACE_CONT, program, 0, 0);
    Traced run = Family(program).Follow(decide);
    run.output = TextOf(output);
    close(output);
    return run;
}

}  // namespace fault
