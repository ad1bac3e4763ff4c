// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Base.h"
#include "NetApi2_0.h"
#include "Support/KeyFile.h"

#include "Program.h"

#include <algorithm>
#include <csignal>
#include <cstring>
#include <thread>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace device;

namespace {

// What an application meets whose process is short of something: what Types.h says of it.

constexpr char kFile[] = "/mnt/mtd/Config/network1";

void Limit(__rlimit_resource_t resource, rlim_t most)
{
    const rlimit limit{most, most};
    ASSERT_EQ(setrlimit(resource, &limit), 0);
}

/// How a process ended in which the function ran: "status 0", "signal 25".
template <class Run>
std::string EndOf(const Run& run)
{
    fflush(nullptr);
    const pid_t process = fork();
    if (process == 0) {
        run();
        fflush(nullptr);
        _exit(testing::Test::HasFailure() ? EXIT_FAILURE : EXIT_SUCCESS);
    }
    int status = -1;
    EXPECT_EQ(waitpid(process, &status, 0), process);
    return WIFSIGNALED(status) ? "signal " + std::to_string(WTERMSIG(status))
                               : "status " + std::to_string(WEXITSTATUS(status));
}

const std::string kFine = "status 0";

/// Logs, and changes nothing.
bool IsThere(const char* card)
{
    return CheckEthExist(&card, 1);
}

// ---- sizes of files

class FileSizeTest : public Device {
protected:
    void SetUp() override
    {
        Device::SetUp();
        Put(kFile, text_);
    }

    const std::string text_ =
        Lines({"HOSTIP = 10.0.1.10", "SUBMASK = 255.255.255.0", "MTU = 1500"});
};

TEST_F(FileSizeTest, ALimitOfFourKilobytesCostsNoSetting)
{
    // The longest file: as many lines as are kept, each as long as a line may be.
    std::string full;
    for (int i = 0; i < 15; ++i) full += "ROUTE = " + std::string(246, 'r') + "\n";
    Put(kFile, full);
    for (auto* handler : {SIG_DFL, SIG_IGN}) {
        EXPECT_EQ(EndOf([handler] {
                      signal(SIGXFSZ, handler);
                      Limit(RLIMIT_FSIZE, 4096);
                      EXPECT_TRUE(SetValueByKey(kFile, "MTU", std::string(248, '1').c_str()));
                  }),
                  kFine);
        EXPECT_EQ(Get(kFile), full + "MTU = " + std::string(248, '1') + "\n");
    }
}

TEST_F(FileSizeTest, ASmallerLimitEndsTheProcessAndCutsTheFile)
{
    EXPECT_EQ(EndOf([] {
                  signal(SIGXFSZ, SIG_DFL);
                  Limit(RLIMIT_FSIZE, 30);
                  (void)SetValueByKey(kFile, "MTU", "1400");
              }),
              "signal " + std::to_string(SIGXFSZ));
    EXPECT_EQ(Get(kFile), text_.substr(0, 30));
}

TEST_F(FileSizeTest, ASmallerLimitCutsTheFileUnnoticedWhereItsSignalIsIgnored)
{
    EXPECT_EQ(EndOf([] {
                  signal(SIGXFSZ, SIG_IGN);
                  Limit(RLIMIT_FSIZE, 30);
                  EXPECT_TRUE(SetValueByKey(kFile, "MTU", "1400"));
              }),
              kFine);
    EXPECT_EQ(Get(kFile), text_.substr(0, 30));
}

TEST_F(FileSizeTest, ALogAtItsLimitIsLostAndTheSettingStands)
{
    EXPECT_EQ(EndOf([] {
                  signal(SIGXFSZ, SIG_IGN);
                  Limit(RLIMIT_FSIZE, 4096);
                  EXPECT_NE(freopen("/mnt/log", "w", stdout), nullptr);
                  for (int i = 0; i < 100; ++i) (void)IsThere("eth9");
                  EXPECT_TRUE(SetValueByKey(kFile, "MTU", "1400"));
              }),
              kFine);
    EXPECT_EQ(Get("/mnt/log").size(), 4096U);
    EXPECT_EQ(Saved("eth1", "MTU"), "1400");
    EXPECT_EQ(Saved("eth1", "HOSTIP"), "10.0.1.10");
}

// ---- descriptors

struct Setter {
    const char* name;
    int32_t (*run)();
};

const Setter kSetters[] = {
    {"NetSetHostIPEx", [] { return NetSetHostIPEx("eth1", "10.0.1.20", "255.255.0.0"); }},
    {"NetSetGatewayEx", [] { return NetSetGatewayEx("eth1", "10.0.1.2"); }},
    {"NetSetMTU", [] { return NetSetMTU("eth1", 1400); }},
    {"NetSetDefaultEth", [] { return NetSetDefaultEth("eth1"); }},
    {"NetSetDhcpIPRange", [] { return NetSetDhcpIPRange("eth1", "10.0.1.5", "10.0.1.9", "600"); }},
};

class DescriptorTest : public Device {
protected:
    void SetUp() override
    {
        Device::SetUp();
        AddCards(2);
        Must("ip link set eth0 up; ip link set eth1 up");
    }

    static void SaveAll()
    {
        for (int i = 0; i < 2; ++i) Save("eth" + std::to_string(i), i, {"WORKMODE = 0"});
        Put(kServers, "nameserver 8.8.8.8\nnameserver 8.8.4.4\n");
        Put(kServers6, "nameserver 2001:db8::8\nnameserver 2001:db8::9\n");
        Put("/mnt/mtd/Config/udhcpd.conf", "start 10.0.1.3\n");
    }

    /// Runs it with so many descriptors left. In a process of its own: kept sockets count too.
    static void RunWith(int left, int32_t (*run)())
    {
        EXPECT_EQ(EndOf([left, run] {
                      constexpr int kMost = 64;
                      Limit(RLIMIT_NOFILE, kMost);
                      while (dup(STDIN_FILENO) >= 0) {
                      }
                      for (int fd = 0; fd < left; ++fd) close(kMost - 1 - fd);
                      const bool done = run() == 0;
                      close(kMost / 2);  // for looking at the log
                      const LogLines log = Log();
                      EXPECT_TRUE(done ||
                                  std::any_of(log.begin(), log.end(), [](const LogLine& line) {
                                      return line.level == "Error";
                                  }));
                  }),
                  kFine);
    }

    static constexpr int kPlenty = 20;
    static constexpr char kServers[] = "/mnt/mtd/Config/resolv.conf";
    static constexpr char kServers6[] = "/mnt/mtd/Config/resolvip6.conf";
};

TEST_F(DescriptorTest, ASetterThatGetsNoneFailsWithAnErrorAndLosesNothing)
{
    for (const Setter& setter : kSetters) {
        SaveAll();
        const auto before = SavedFiles();
        RunWith(kPlenty, setter.run);
        const auto after = SavedFiles();
        EXPECT_NE(before, after) << setter.name;
        for (int left = 0; left < 8; ++left) {
            SCOPED_TRACE(std::string(setter.name) + " with " + std::to_string(left));
            SaveAll();
            RunWith(left, setter.run);
            for (const auto& [name, text] : SavedFiles()) {
                EXPECT_TRUE(text == before.at(name) || text == after.at(name)) << name << text;
            }
        }
    }
}

/// The two files of the name servers are emptied one behind the other.
TEST_F(DescriptorTest, TheNameServersAreLostWhereOnlyTheirFirstFileOpens)
{
    SaveAll();
    const std::string servers6 = Get(kServers6);
    RunWith(1, [] { return NetSetDNSAddress("9.9.9.9", "9.9.9.10"); });
    EXPECT_EQ(Get(kServers), "");
    EXPECT_EQ(Get(kServers6), servers6);
}

TEST_F(DescriptorTest, ABootThatGetsTooFewLosesNothing)
{
    constexpr int kEnough = 12;
    SaveAll();
    ASSERT_EQ(Lanrise().status, 0);
    const auto settled = SavedFiles();
    for (int most = 3; most <= kEnough; ++most) {
        Must("ip addr flush dev eth1");
        const Result boot = Try("exec 3>&- 4>&- 5>&- 6>&- 7>&- 8>&- 9>&-; ulimit -n " +
                                std::to_string(most) + "; exec " VORLIX_LANRISE);
        EXPECT_EQ(SavedFiles(), settled) << most << boot.output;
        EXPECT_TRUE(most < kEnough || boot.status == 0) << boot.output;
    }
    EXPECT_EQ(Addresses("eth1"), Texts{"10.0.1.10/24"});
}

// ---- the log

/// A full pipe as standard output. Its reader takes nothing before it is asked to.
class FullPipe {
public:
    FullPipe()
    {
        EXPECT_EQ(pipe2(ends_, O_CLOEXEC | O_NONBLOCK), 0);
        while (write(ends_[1], "x", 1) == 1) {
        }
        EXPECT_EQ(fcntl(ends_[1], F_SETFL, 0), 0);
    }

    void BecomeOutput() const { EXPECT_EQ(dup2(ends_[1], STDOUT_FILENO), STDOUT_FILENO); }

    /// Takes what is there, and then what comes, up to the end.
    std::string Drain()
    {
        close(ends_[1]);
        EXPECT_EQ(fcntl(ends_[0], F_SETFL, 0), 0);
        std::string all;
        char buffer[4096];
        for (ssize_t count = 0; (count = read(ends_[0], buffer, sizeof(buffer))) > 0;) {
            all.append(buffer, static_cast<size_t>(count));
        }
        return all;
    }

private:
    int ends_[2] = {-1, -1};
};

/// Waits until a process sleeps in a write to its standard output.
void AwaitWriter(pid_t process)
{
    const std::string call = std::to_string(SYS_write) + " 0x1 ";
    while (Get("/proc/" + std::to_string(process) + "/syscall").rfind(call, 0) != 0) {
    }
}

class LogTest : public Device {};

TEST_F(LogTest, AFullPipeIsWaitedForAndNothingOfTheLineIsLost)
{
    Put(kFile, Lines({"MTU = 1500"}));
    FullPipe pipe;
    Child writer([&pipe] {
        pipe.BecomeOutput();
        EXPECT_FALSE(IsThere("eth9"));
        EXPECT_TRUE(SetValueByKey(kFile, "MTU", "1400"));
    });
    AwaitWriter(writer.Id());
    EXPECT_EQ(Saved("eth1", "MTU"), "1500");
    const std::string drained = pipe.Drain();
    EXPECT_TRUE(writer.Wait());
    EXPECT_EQ(Saved("eth1", "MTU"), "1400");
    const std::string text = drained.substr(drained.find_first_not_of('x'));
    EXPECT_EQ(output::TakeApart(text).log.back().operation, "CheckEthExist") << text;
}

TEST_F(LogTest, AReaderWhoHasGoneEndsTheProcessUnlessItTakesCareOfTheSignal)
{
    const auto run = [](sighandler_t handler) {
        return EndOf([handler] {
            int ends[2];
            ASSERT_EQ(pipe(ends), 0);
            close(ends[0]);
            dup2(ends[1], STDOUT_FILENO);
            signal(SIGPIPE, handler);
            EXPECT_FALSE(IsThere("eth9"));
        });
    };
    EXPECT_EQ(run(SIG_DFL), "signal " + std::to_string(SIGPIPE));
    EXPECT_EQ(run(SIG_IGN), kFine);
    EXPECT_EQ(run([](int) {}), kFine);
}

// ---- children

const char* cards[] = {"eth0", "eth1"};

/// Operations that run tools.
const Setter kRunTools[] = {
    {"NetDisableIpPort", [] { return NetDisableIpPort("10.0.0.1", 80); }},
    {"NetEnableIpPort", [] { return NetEnableIpPort("10.0.0.1", 80); }},
    {"NetSetBandWidth",
     [] {
         NetTc_2 limit{};
         strcpy(limit.ipAddr, "10.0.0.9");
         limit.bandWidth = 1000;
         return NetSetBandWidth("eth0", &limit, 1);
     }},
    {"CreateNetWorkBridge", [] { return CreateNetWorkBridge("br0", cards, 2); }},
};

class ChildrenTest : public Device {
protected:
    void SetUp() override
    {
        Device::SetUp();
        AddCards(2);
        for (int i = 0; i < 2; ++i) Save("eth" + std::to_string(i), i, {"WORKMODE = 0"});
        Save("br0", 9);
    }

    static void ExpectFailures()
    {
        const LogLine unwaited =
            Error("VorlixRunCmd", "waitpid failed, errno: 10, No child processes\n");
        const auto saved = SavedFiles();
        for (const Setter& operation : kRunTools) {
            const size_t before = Log().size();
            EXPECT_EQ(operation.run(), -1) << operation.name;
            const LogLines log = Log();
            EXPECT_NE(std::find(log.begin() + static_cast<long>(before), log.end(), unwaited),
                      log.end())
                << operation.name;
            EXPECT_EQ(SavedFiles(), saved) << operation.name;
        }
    }
};

TEST_F(ChildrenTest, AreNotWaitedForWhereTheirSignalIsIgnoredAndTheirOperationsFail)
{
    EXPECT_EQ(EndOf([] {
                  signal(SIGCHLD, SIG_IGN);
                  ExpectFailures();
              }),
              kFine);
}

TEST_F(ChildrenTest, AreNotWaitedForWhereTheKernelReapsThem)
{
    struct sigaction action {};
    action.sa_handler = SIG_DFL;
    action.sa_flags = SA_NOCLDWAIT;
    EXPECT_EQ(EndOf([&action] {
                  ASSERT_EQ(sigaction(SIGCHLD, &action, nullptr), 0);
                  ExpectFailures();
              }),
              kFine);
}

/// Each puts back what it found. Who started second found the first one's.
TEST_F(ChildrenTest, OfTwoThreadsAtOnceMayLeaveInterruptsIgnored)
{
    Must("mkfifo /mnt/first /mnt/second /mnt/started");
    std::thread first([] { VorlixRunCmd("echo >/mnt/started; read end </mnt/first"); });
    Must("read started </mnt/started");
    std::thread second([] { VorlixRunCmd("echo >/mnt/started; read end </mnt/second"); });
    Must("read started </mnt/started; echo >/mnt/first");
    first.join();
    Must("echo >/mnt/second");
    second.join();

    struct sigaction action {};
    EXPECT_EQ(sigaction(SIGINT, nullptr, &action), 0);
    EXPECT_EQ(action.sa_handler, SIG_IGN);
}

}  // namespace
