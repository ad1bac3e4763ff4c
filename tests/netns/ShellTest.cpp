// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Base.h"

#include "Device.h"

#include <csignal>
#include <cstdlib>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace device;

namespace {

constexpr char kMark[] = "/mnt/mark";  // in the memory of this device alone

volatile sig_atomic_t interrupts = 0;
int answers = -1;  // where the handler says that it has run

void CountInterrupt(int /*signal*/)
{
    interrupts = interrupts + 1;
    if (answers >= 0) (void)!write(answers, "\n", 1);
}

void Handle(int signal, void (*handler)(int))
{
    struct sigaction action {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    ASSERT_EQ(sigaction(signal, &action, nullptr), 0);
}

struct sigaction ActionOf(int signal)
{
    struct sigaction action {};
    sigaction(signal, nullptr, &action);
    return action;
}

bool IsBlocked(int signal)
{
    sigset_t mask;
    sigprocmask(SIG_SETMASK, nullptr, &mask);
    return sigismember(&mask, signal) == 1;
}

class VorlixRunCmdTest : public Device {};

TEST_F(VorlixRunCmdTest, TheTextReachesARealShellAsItStands)
{
    EXPECT_TRUE(VorlixRunCmd("for word in a 'b  c' \"$((6 * 7))\"; do echo \"<$word>\"; done"
                             " | sort -r > /mnt/mark 2>/dev/null && echo end >> /mnt/mark"));
    EXPECT_EQ(Get(kMark), "<b  c>\n<a>\n<42>\nend\n");
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(VorlixRunCmdTest, ALongTextIsNotCut)
{
    const std::string text(5000, 'x');
    EXPECT_TRUE(VorlixRunCmd(("echo " + text + " > /mnt/mark").c_str()));
    EXPECT_EQ(Get(kMark), text + "\n");
}

TEST_F(VorlixRunCmdTest, EveryEndOfTheCommandCountsAsRun)
{
    for (const char* command : {"true", "false", "exit 3", "no-such-tool 2>/dev/null", "",
                                "kill -KILL $$", "kill -TERM $$", "if 2>/dev/null"}) {
        EXPECT_TRUE(VorlixRunCmd(command)) << command;
    }
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(VorlixRunCmdTest, AMissingShellCountsAsRun)
{
    ASSERT_EQ(setenv("PATH", "/nowhere", 1), 0);
    EXPECT_TRUE(VorlixRunCmd("echo x > /mnt/mark"));
    EXPECT_EQ(Get(kMark), "(no file)");
}

TEST_F(VorlixRunCmdTest, WaitsForTheCommandToEnd)
{
    EXPECT_TRUE(VorlixRunCmd("sleep 0.2; echo end > /mnt/mark"));
    EXPECT_EQ(Get(kMark), "end\n");
}

TEST_F(VorlixRunCmdTest, NoCommandChangesNoSignals)
{
    EXPECT_FALSE(VorlixRunCmd(nullptr));
    EXPECT_EQ(ActionOf(SIGINT).sa_handler, SIG_DFL);
    EXPECT_EQ(ActionOf(SIGQUIT).sa_handler, SIG_DFL);
    EXPECT_FALSE(IsBlocked(SIGCHLD));
    EXPECT_EQ(Log(), LogLines{Error("VorlixRunCmd", "command buffer is NULL.\n")});
}

TEST_F(VorlixRunCmdTest, AnInterruptFromTheKeyboardHitsTheCommandAlone)
{
    EXPECT_TRUE(VorlixRunCmd("kill -INT $PPID; kill -QUIT $PPID; echo alive > /mnt/mark;"
                             " kill -INT $$; echo too far > /mnt/mark"));
    EXPECT_EQ(Get(kMark), "alive\n");
}

TEST_F(VorlixRunCmdTest, TheCallersSignalStateComesBack)
{
    Handle(SIGINT, CountInterrupt);
    Handle(SIGQUIT, SIG_IGN);
    sigset_t mask;
    sigemptyset(&mask);
    sigaddset(&mask, SIGUSR2);
    sigprocmask(SIG_SETMASK, &mask, nullptr);

    EXPECT_TRUE(VorlixRunCmd("kill -INT $PPID; exit 1"));
    EXPECT_EQ(interrupts, 0);
    EXPECT_EQ(ActionOf(SIGINT).sa_handler, &CountInterrupt);
    EXPECT_EQ(ActionOf(SIGQUIT).sa_handler, SIG_IGN);
    EXPECT_TRUE(IsBlocked(SIGUSR2));
    EXPECT_FALSE(IsBlocked(SIGCHLD));
    raise(SIGINT);
    EXPECT_EQ(interrupts, 1);
}

TEST_F(VorlixRunCmdTest, TheCommandInheritsWhatTheCallerHadIgnored)
{
    Handle(SIGQUIT, SIG_IGN);
    EXPECT_TRUE(VorlixRunCmd("kill -QUIT $$; echo alive > /mnt/mark"));
    EXPECT_EQ(Get(kMark), "alive\n");
}

TEST_F(VorlixRunCmdTest, AnInterruptedWaitGoesOn)
{
    ASSERT_EQ(mkfifo("/mnt/answers", 0600), 0);
    answers = open("/mnt/answers", O_RDWR);
    ASSERT_GE(answers, 0);
    Handle(SIGUSR1, CountInterrupt);

    // The command goes on only when the handler has run, so that its end comes after all of them.
    EXPECT_TRUE(VorlixRunCmd("for i in 1 2 3 4 5; do kill -USR1 $PPID; read answer; done"
                             " < /mnt/answers; echo end > /mnt/mark"));
    EXPECT_EQ(interrupts, 5);
    EXPECT_EQ(Get(kMark), "end\n");
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(VorlixRunCmdTest, ACallerWhoseChildrenVanishLearnsThatItCannotBeWaitedFor)
{
    Handle(SIGCHLD, SIG_IGN);
    EXPECT_FALSE(VorlixRunCmd("echo end > /mnt/mark"));
    EXPECT_EQ(Get(kMark), "end\n");
    EXPECT_EQ(Log(),
              LogLines{Error("VorlixRunCmd", "waitpid failed, errno: 10, No child processes\n")});
    EXPECT_EQ(ActionOf(SIGINT).sa_handler, SIG_DFL);
    EXPECT_FALSE(IsBlocked(SIGCHLD));
}

TEST_F(VorlixRunCmdTest, OutputOfTheCommandStandsBetweenTheLinesAroundIt)
{
    (void)InterfaceUp("eth0");
    EXPECT_TRUE(VorlixRunCmd("echo from the tool"));
    (void)InterfaceDown("eth0");
    const std::string output = output::Caught();
    const size_t before = output.find("up eth0 failed");
    const size_t between = output.find("from the tool\n");
    const size_t behind = output.find("down eth0 failed");
    ASSERT_NE(behind, std::string::npos);
    EXPECT_LT(before, between);
    EXPECT_LT(between, behind);
}

TEST_F(VorlixRunCmdTest, ToolsDoNotInheritTheControlSockets)
{
    AddCard("eth0");
    ASSERT_TRUE(InterfaceUp("eth0"));
    ASSERT_NE(Must("ls -l /proc/" + std::to_string(getpid()) + "/fd").find("socket:"),
              std::string::npos);
    EXPECT_TRUE(VorlixRunCmd("ls -l /proc/$$/fd > /mnt/mark"));
    EXPECT_EQ(Get(kMark).find("socket:"), std::string::npos) << Get(kMark);
}

}  // namespace
