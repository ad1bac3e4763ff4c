// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Running commands through the shell.

#include "Base.h"

#include "fake/World.h"

#include <cerrno>
#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

using namespace fake;

namespace {

const Texts kQuiet = {"sigaction SIGINT ignore", "sigaction SIGQUIT ignore",
                      "sigprocmask SIG_BLOCK"};
const Texts kRestore = {"sigaction SIGINT restore", "sigaction SIGQUIT restore",
                        "sigprocmask SIG_SETMASK"};

Texts Joined(std::initializer_list<Texts> parts)
{
    Texts joined;
    for (const Texts& part : parts) joined.insert(joined.end(), part.begin(), part.end());
    return joined;
}

/// The child's way to the shell.
Texts ChildOf(const std::string& command)
{
    return {"vfork",
            "child sigaction SIGINT restore",
            "child sigaction SIGQUIT restore",
            "child sigprocmask SIG_SETMASK",
            "child execlp sh sh -c " + command,
            "waitpid",
            "command " + command};
}

LogLine Failed(const std::string& text)
{
    return Error("VorlixRunCmd", text);
}

void CallersHandler(int) {}

/// What becomes of a child that has not been waited for yet: its exit status.
int ExitOfChild()
{
    siginfo_t info{};
    waitid(P_ALL, 0, &info, WEXITED | WNOWAIT);
    return info.si_status;
}

/// The signal state of the process.
struct Signals {
    void (*interrupt)(int);
    void (*quit)(int);
    bool childBlocked;

    static Signals Now()
    {
        const OwnCalls looking;
        struct sigaction interrupt {};
        struct sigaction quit {};
        sigset_t mask;
        sigaction(SIGINT, nullptr, &interrupt);
        sigaction(SIGQUIT, nullptr, &quit);
        sigprocmask(SIG_SETMASK, nullptr, &mask);
        return {interrupt.sa_handler, quit.sa_handler, sigismember(&mask, SIGCHLD) == 1};
    }

    bool operator==(const Signals& other) const
    {
        return interrupt == other.interrupt && quit == other.quit &&
               childBlocked == other.childBlocked;
    }
};

constexpr Signals kCallers = {CallersHandler, SIG_DFL, false};

class VorlixRunCmdTest : public World {
protected:
    void SetUp() override
    {
        World::SetUp();
        const OwnCalls preparing;
        struct sigaction action {};
        action.sa_handler = CallersHandler;
        sigaction(SIGINT, &action, nullptr);
        action.sa_handler = SIG_DFL;
        sigaction(SIGQUIT, &action, nullptr);
        sigset_t none;
        sigemptyset(&none);
        sigprocmask(SIG_SETMASK, &none, nullptr);
    }
};

// ---- the ordinary way

TEST_F(VorlixRunCmdTest, TakesItsStepsInOrder)
{
    EXPECT_TRUE(VorlixRunCmd("ifconfig eth1 down"));
    EXPECT_EQ(Trace(), Joined({kQuiet, ChildOf("ifconfig eth1 down"), kRestore}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(VorlixRunCmdTest, HandsTheTextToTheShellAsItStands)
{
    const Texts commands = {"", "a 'b' \"c\" $d; e & f | g > h\n\ti \\", std::string(3000, 'x')};
    for (const std::string& command : commands) EXPECT_TRUE(VorlixRunCmd(command.c_str()));
    EXPECT_EQ(Commands(), commands);
}

TEST_F(VorlixRunCmdTest, QuietsTheSignalsWhileTheCommandRuns)
{
    Signals during = kCallers;
    OnCommand("brctl", [&](const std::string&) { during = Signals::Now(); });
    EXPECT_TRUE(VorlixRunCmd("brctl addbr br0"));
    EXPECT_TRUE(during == (Signals{SIG_IGN, SIG_IGN, true}));
    EXPECT_TRUE(Signals::Now() == kCallers);
}

TEST_F(VorlixRunCmdTest, KeepsTheMaskThatTheCallerHad)
{
    sigset_t mask;
    sigemptyset(&mask);
    sigaddset(&mask, SIGCHLD);
    sigaddset(&mask, SIGUSR1);
    sigprocmask(SIG_SETMASK, &mask, nullptr);
    EXPECT_TRUE(VorlixRunCmd("true"));
    sigset_t after;
    sigprocmask(SIG_SETMASK, nullptr, &after);
    EXPECT_EQ(sigismember(&after, SIGCHLD), 1);
    EXPECT_EQ(sigismember(&after, SIGUSR1), 1);
    EXPECT_EQ(sigismember(&after, SIGUSR2), 0);
}

TEST_F(VorlixRunCmdTest, TheShellStartsWithTheCallersSignals)
{
    // The child has memory of its own in this world: it tells by its exit.
    OnCall("child execlp", [] { _exit(Signals::Now() == kCallers ? 40 : 41); });
    int status = 0;
    OnCall("waitpid", [&] { status = ExitOfChild(); });
    EXPECT_TRUE(VorlixRunCmd("true"));
    EXPECT_EQ(status, 40);
}

TEST_F(VorlixRunCmdTest, ACommandsOwnResultIsNotLookedAt)
{
    constexpr int kExit3 = 3 << 8;
    constexpr int kExit127 = 127 << 8;
    constexpr int kExit255 = 255 << 8;
    for (const int status : {kExit3, kExit127, kExit255, SIGKILL, SIGSEGV | 0x80}) {
        ResetTools();
        OnCommand("false", nullptr, status);
        EXPECT_TRUE(VorlixRunCmd("false")) << status;
    }
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(VorlixRunCmdTest, RunsOneCommandBehindAnother)
{
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(VorlixRunCmd("true"));
    const Texts once = Joined({kQuiet, ChildOf("true"), kRestore});
    EXPECT_EQ(Trace(), Joined({once, once, once}));
}

// ---- failures before the child

TEST_F(VorlixRunCmdTest, NoCommandChangesNoSignal)
{
    EXPECT_FALSE(VorlixRunCmd(nullptr));
    EXPECT_EQ(Log(), (LogLines{Failed("command buffer is NULL.\n")}));
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(VorlixRunCmdTest, AFailureToIgnoreSigintEndsIt)
{
    Fail("sigaction SIGINT ignore", EINVAL);
    EXPECT_FALSE(VorlixRunCmd("true"));
    EXPECT_EQ(Log(), (LogLines{Failed("sigaction(SIGINT, &ignore, &saveintr) failed.\n")}));
    EXPECT_EQ(Trace(), (Texts{kQuiet[0]}));
    EXPECT_TRUE(Signals::Now() == kCallers);
}

TEST_F(VorlixRunCmdTest, AFailureToIgnoreSigquitLeavesSigintIgnored)
{
    Fail("sigaction SIGQUIT ignore", EINVAL);
    EXPECT_FALSE(VorlixRunCmd("true"));
    EXPECT_EQ(Log(), (LogLines{Failed("sigaction(SIGQUIT, &ignore, &saveintr) failed.\n")}));
    EXPECT_EQ(Trace(), (Texts{kQuiet[0], kQuiet[1]}));
    EXPECT_TRUE(Signals::Now() == (Signals{SIG_IGN, SIG_DFL, false}));
}

TEST_F(VorlixRunCmdTest, AFailureToBlockLeavesBothIgnored)
{
    Fail("sigprocmask SIG_BLOCK", EINVAL);
    EXPECT_FALSE(VorlixRunCmd("true"));
    EXPECT_EQ(Log(), (LogLines{Failed("sigprocmask(SIG_BLOCK, &ignore, &saveintr) failed.\n")}));
    EXPECT_EQ(Trace(), kQuiet);
    EXPECT_TRUE(Signals::Now() == (Signals{SIG_IGN, SIG_IGN, false}));
}

TEST_F(VorlixRunCmdTest, WithoutAChildTheSignalsAreRestored)
{
    Fail("vfork", EAGAIN);
    EXPECT_FALSE(VorlixRunCmd("true"));
    EXPECT_EQ(Log(), (LogLines{Failed("vfork failed, ret = -1.\n")}));
    EXPECT_EQ(Trace(), Joined({kQuiet, {"vfork"}, kRestore}));
    EXPECT_TRUE(Signals::Now() == kCallers);
}

// ---- failures in the child

TEST_F(VorlixRunCmdTest, AChildThatCannotRestoreItsSignalsWarnsAndGoesOn)
{
    Fail("child sigaction SIGINT", EINVAL);
    Fail("child sigaction SIGQUIT", EINVAL);
    Fail("child sigprocmask", EINVAL);
    EXPECT_TRUE(VorlixRunCmd("true"));
    EXPECT_EQ(Log(),
              (LogLines{Warn("VorlixRunCmd", "sigaction(SIGINT, &saveintr, NULL) failed"),
                        Warn("VorlixRunCmd", "sigaction(SIGQUIT, &savequit, NULL) failed")}));
    EXPECT_EQ(Trace(), Joined({kQuiet, ChildOf("true"), kRestore}));
}

TEST_F(VorlixRunCmdTest, AMissingShellIsAChildThatWasWaitedFor)
{
    Fail("child execlp", ENOENT);
    EXPECT_TRUE(VorlixRunCmd("true"));
    EXPECT_EQ(Commands(), Texts{});
    EXPECT_EQ(Trace().size(), Joined({kQuiet, ChildOf("true"), kRestore}).size() - 1);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(VorlixRunCmdTest, AMissingShellEndsWith127)
{
    Fail("child execlp", ENOENT);
    int status = 0;
    OnCall("waitpid", [&] { status = ExitOfChild(); });
    EXPECT_TRUE(VorlixRunCmd("true"));
    EXPECT_EQ(status, 127);
}

TEST_F(VorlixRunCmdTest, AMissingShellEndsWithoutTheParentsOwnEnding)
{
    // What a program does at its end (flushing, removing its files) is not the child's.
    static int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    static const pid_t parent = getpid();
    atexit([] {
        if (getpid() != parent && write(ends[1], "x", 1) != 1) abort();
    });
    Fail("child execlp", ENOENT);
    EXPECT_TRUE(VorlixRunCmd("true"));
    close(ends[1]);
    char byte = 0;
    EXPECT_EQ(read(ends[0], &byte, 1), 0);
    close(ends[0]);
}

// ---- failures behind the child

TEST_F(VorlixRunCmdTest, AnInterruptedWaitIsRepeated)
{
    for (int i = 0; i < 3; ++i) Fail("waitpid", EINTR);
    EXPECT_TRUE(VorlixRunCmd("true"));
    EXPECT_EQ(TraceOf({"waitpid"}).size(), 4U);
    EXPECT_EQ(Commands(), (Texts{"true"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(VorlixRunCmdTest, AFailedWaitIsAFailureAndTheSignalsAreRestored)
{
    Fail("waitpid", EINTR);
    Fail("waitpid", ECHILD);
    EXPECT_FALSE(VorlixRunCmd("true"));
    EXPECT_EQ(Log(), (LogLines{Failed("waitpid failed, errno: 10, No child processes\n")}));
    EXPECT_EQ(TraceOf({"waitpid"}).size(), 2U);
    EXPECT_EQ(TraceOf({"sigaction", "sigprocmask"}), Joined({kQuiet, kRestore}));
    EXPECT_TRUE(Signals::Now() == kCallers);
}

TEST_F(VorlixRunCmdTest, AFailureToRestoreSigintLeavesTheRest)
{
    Fail("sigaction SIGINT restore", EINVAL);
    EXPECT_FALSE(VorlixRunCmd("true"));
    EXPECT_EQ(Log(), (LogLines{Failed("sigaction(SIGINT, &ignore, &saveintr) failed.\n")}));
    EXPECT_EQ(Trace(), Joined({kQuiet, ChildOf("true"), {kRestore[0]}}));
    EXPECT_TRUE(Signals::Now() == (Signals{SIG_IGN, SIG_IGN, true}));
}

TEST_F(VorlixRunCmdTest, AFailureToRestoreSigquitLeavesTheMask)
{
    Fail("sigaction SIGQUIT restore", EINVAL);
    EXPECT_FALSE(VorlixRunCmd("true"));
    EXPECT_EQ(Log(), (LogLines{Failed("sigaction(SIGQUIT, &ignore, &saveintr) failed.\n")}));
    EXPECT_EQ(Trace(), Joined({kQuiet, ChildOf("true"), {kRestore[0], kRestore[1]}}));
    EXPECT_TRUE(Signals::Now() == (Signals{CallersHandler, SIG_IGN, true}));
}

TEST_F(VorlixRunCmdTest, AFailureToRestoreTheMaskIsAFailure)
{
    Fail("sigprocmask SIG_SETMASK", EINVAL);
    EXPECT_FALSE(VorlixRunCmd("true"));
    EXPECT_EQ(Log(), (LogLines{Failed("sigprocmask  failed.\n")}));
    EXPECT_EQ(Trace(), Joined({kQuiet, ChildOf("true"), kRestore}));
    EXPECT_TRUE(Signals::Now() == (Signals{CallersHandler, SIG_DFL, true}));
}

TEST_F(VorlixRunCmdTest, AFailedChildAndAFailedRestoreAreTwoLines)
{
    Fail("vfork", EAGAIN);
    Fail("sigaction SIGINT restore", EINVAL);
    EXPECT_FALSE(VorlixRunCmd("true"));
    EXPECT_EQ(Log(), (LogLines{Failed("vfork failed, ret = -1.\n"),
                               Failed("sigaction(SIGINT, &ignore, &saveintr) failed.\n")}));
}

TEST_F(VorlixRunCmdTest, IsTrueWhenAShellWasReapedAndTheSignalsAreBackWhateverFails)
{
    static bool done = false;
    FailEachCall([] { done = VorlixRunCmd("true"); },
                 [](const std::string& failed) {
                     const bool inChild = failed.rfind("child", 0) == 0;
                     const bool shown = failed.rfind("child execlp", 0) != 0 &&
                                        failed.rfind("child sigprocmask", 0) != 0;
                     EXPECT_EQ(done, inChild);
                     EXPECT_EQ(Log().size(), shown ? 1U : 0U);
                 },
                 {});
}

// ---- RunCommand

class RunCommandTest : public World {};

TEST_F(RunCommandTest, FormsTheText)
{
    EXPECT_TRUE(vorlix::RunCommand("ifconfig %s mtu %d", "eth0", 1500));
    EXPECT_TRUE(vorlix::RunCommand("true"));
    EXPECT_EQ(Commands(), (Texts{"ifconfig eth0 mtu 1500", "true"}));
}

TEST_F(RunCommandTest, CutsWhatLiesBeyond255Characters)
{
    EXPECT_TRUE(vorlix::RunCommand("%s", std::string(255, 'a').c_str()));
    EXPECT_TRUE(vorlix::RunCommand("%s", std::string(256, 'b').c_str()));
    EXPECT_TRUE(vorlix::RunCommand("x%s", std::string(5000, 'c').c_str()));
    EXPECT_EQ(Commands(),
              (Texts{std::string(255, 'a'), std::string(255, 'b'), "x" + std::string(254, 'c')}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(RunCommandTest, HandsBackTheRunnersResult)
{
    Fail("vfork", EAGAIN);
    EXPECT_FALSE(vorlix::RunCommand("true"));
}

TEST_F(RunCommandTest, ALoggedCommandIsToldAsItRunsAndBeforeIt)
{
    LogLines before;
    OnCommand("brctl", [&](const std::string&) { before = Log(); });
    const std::string name(300, 'b');
    const std::string told = ("brctl addbr " + name).substr(0, 255);
    EXPECT_TRUE(vorlix::RunLogged("Bridge_Bridge", "brctl addbr %s", name.c_str()));
    EXPECT_EQ(before, (LogLines{Info("Bridge_Bridge", told + "\n")}));
    EXPECT_EQ(Commands(), (Texts{told}));
    Fail("vfork", EAGAIN);
    EXPECT_FALSE(vorlix::RunLogged("Bridge_Bridge", "true"));
}

}  // namespace
