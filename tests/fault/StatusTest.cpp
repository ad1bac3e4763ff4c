// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// lanrise-status changes nothing: every system call that it makes is one that only looks, whatever
// it is asked for, and any of them may fail.

#include "Tracer.h"

#include "Program.h"

#include <cerrno>
#include <set>

#include <fcntl.h>
#include <linux/ethtool.h>
#include <linux/rtnetlink.h>
#include <linux/sockios.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/uio.h>

using namespace device;
using namespace fault;

namespace {

/// Calls that change nothing but the program itself.
const std::set<long>& HarmlessCalls()
{
    static const std::set<long> kCalls = {
#ifdef SYS_access
        SYS_access,
        SYS_arch_prctl,
        SYS_readlink,
        SYS_open,
        SYS_stat,
        SYS_lstat,
#endif
        SYS_faccessat,
        SYS_newfstatat,
        SYS_fstat,
        SYS_read,
        SYS_pread64,
        SYS_close,
        SYS_brk,
        SYS_mmap,
        SYS_munmap,
        SYS_mprotect,
        SYS_getdents64,
        SYS_recvfrom,
        SYS_getpid,
        SYS_gettid,
        SYS_readlinkat,
        SYS_exit_group,
        SYS_getrandom,
        SYS_prlimit64,
        SYS_rseq,
        SYS_set_robust_list,
        SYS_set_tid_address,
        SYS_execve,
        SYS_clock_nanosleep,
        SYS_lseek,
        SYS_futex};
    return kCalls;
}

/// Bytes of the caller's memory.
template <class Record>
Record Peek(const Call& call, uint64_t at)
{
    Record record{};
    iovec here = {&record, sizeof(record)};
    iovec there = {reinterpret_cast<void*>(at), sizeof(record)};
    (void)process_vm_readv(call.caller, &here, 1, &there, 1, 0);
    return record;
}

bool IsQuestion(const Call& call)
{
    const auto message = Peek<nlmsghdr>(call, call.arguments[1]);
    return message.nlmsg_flags == (NLM_F_REQUEST | NLM_F_DUMP) &&
           (message.nlmsg_type == RTM_GETLINK || message.nlmsg_type == RTM_GETADDR ||
            message.nlmsg_type == RTM_GETROUTE);
}

bool IsHarmlessRequest(const Call& call)
{
    constexpr uint64_t kRtcRead = 0xC0085200U;
    const uint64_t request = call.arguments[1];
    if (request == TCGETS || request == TIOCGWINSZ || request == kRtcRead) return true;
    if (request != SIOCETHTOOL) return false;

    struct {
        char name[16];
        uint64_t record;
    } wanted = Peek<decltype(wanted)>(call, call.arguments[2]);
    const auto command = Peek<uint32_t>(call, wanted.record);
    return command == ETHTOOL_GDRVINFO || command == ETHTOOL_GSET;
}

bool IsHarmless(const Call& call)
{
    if (HarmlessCalls().count(call.what) != 0) return !call.OpensForWriting();
    switch (call.what) {
    case SYS_openat: return (call.arguments[2] & (O_ACCMODE | O_CREAT | O_TRUNC)) == O_RDONLY;
    case SYS_socket: return call.arguments[0] == AF_INET || call.arguments[0] == AF_NETLINK;
    case SYS_fcntl:
        return call.arguments[1] == F_GETFD || call.arguments[1] == F_SETFD ||
               call.arguments[1] == F_GETLK;
    case SYS_write: return call.arguments[0] == 1 || call.arguments[0] == 2;
    case SYS_sendto: return IsQuestion(call);
    case SYS_ioctl: return IsHarmlessRequest(call);
    default: return false;
    }
}

class StatusCallsTest : public Device, public testing::WithParamInterface<const char*> {
protected:
    /// A device in which there is much to repair.
    void SetUp() override
    {
        Device::SetUp();
        AddCards(4);
        Save("eth0", 0, {"DEFAULT_ETH = eth1.100"});
        Put(std::string(kConfig) + "/network2", Lines({"HOSTIP = 10.0.2.10"}));
        Save("eth1", 1, {"WORKMODE = x", "BONDED = 1"});
        Save("eth3", 3, {"BRIDGEEDED = 1", "BRIDGENAME = br0"});
        Save("br0", 5, {"BRIDGEMEMBERS = eth3,eth9"});
        Put(std::string(kConfig) + "/poeMode.conf", "eth1 = 2\n");
        Must("ip link set eth0 up; ip addr add 10.0.0.10/24 dev eth0;"
             " ip route add 172.16.0.0/16 via 10.0.0.9");
        Must("head -c 64 /dev/zero >/mnt/cmos");
    }

    static std::vector<std::string> Command(const char* program)
    {
        std::vector<std::string> command = {program};
        if (*GetParam() != '\0') command.emplace_back(GetParam());
        return command;
    }
};

INSTANTIATE_TEST_SUITE_P(Faces, StatusCallsTest,
                         testing::Values("", "eth0", "--json", "--check", "--help", "--version"));

TEST_P(StatusCallsTest, EveryCallOnlyLooks)
{
    for (const char* program : {VORLIX_STATUS, VORLIX_STATUS_WITH_BACKUP}) {
        int asked = 0;
        const Traced traced = Trace(Command(program), [&asked](const Call& call) {
            ++asked;
            EXPECT_FALSE(call.byChild) << "it starts nobody";
            EXPECT_TRUE(IsHarmless(call)) << call.what << " " << call.Text();
            return Fate{};
        });
        EXPECT_GT(asked, 20);
        EXPECT_LE(traced.status, 1) << traced.output;
    }
}

TEST_P(StatusCallsTest, AnyCallMayFail)
{
    const auto files = SavedFiles();
    const Texts network = KernelState();
    const int calls = Trace(Command(VORLIX_STATUS), [](const Call&) { return Fate{}; }).calls;
    // Each call once over the faces that look; the others make but a few.
    const int step = calls > 100 ? 3 : 1;
    const int first = calls > 100 ? (*GetParam() == '\0' ? 1 : GetParam()[2] == 'j' ? 2 : 3) : 1;
    for (int number = first; number <= calls; number += step) {
        std::string failed;
        const Traced traced = Trace(Command(VORLIX_STATUS), [number, &failed](const Call& call) {
            if (call.number != number || call.what == SYS_exit_group || call.what == SYS_execve) {
                return Fate{};
            }
            failed = call.Text();
            return Fate{Fate::kFail, EIO};
        });
        const bool isLoader = traced.status == 127 || traced.status >= 128;
        EXPECT_TRUE(traced.status <= 2 || (isLoader && number < 30))
            << number << " " << failed << ": " << traced.status << "\n"
            << traced.output;
    }
    EXPECT_EQ(SavedFiles(), files);
    EXPECT_EQ(KernelState(), network);
}

}  // namespace
