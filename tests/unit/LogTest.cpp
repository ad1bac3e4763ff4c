// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Support/Log.h"

#include "Base.h"
#include "fake/World.h"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <regex>
#include <stdio_ext.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

using namespace fake;

namespace {

constexpr time_t kFiveSecondsPastMidnight = 1700006405;  // 2023-11-15 00:00:05 UTC
time_t now = kFiveSecondsPastMidnight;
bool watching = false;
Texts whatHappened;

const char* NoteArgument(const char* text)
{
    whatHappened.emplace_back("argument");
    return text;
}

}  // namespace

extern "C" int __wrap_clock_gettime(clockid_t, struct timespec* time)
{
    if (watching) whatHappened.emplace_back("clock");
    errno = EINVAL;  // whatever a clock leaves there is not the caller's
    *time = {now, 0};
    return 0;
}

namespace {

class LogTest : public World {
protected:
    void SetUp() override
    {
        World::SetUp();
        SetZone("UTC0");
    }

    static void SetZone(const char* zone)
    {
        setenv("TZ", zone, 1);
        tzset();
    }

    static std::string Tid() { return std::to_string(syscall(SYS_gettid)); }

    /// The raw line, with the number of the source line taken out.
    static std::string Raw()
    {
        return std::regex_replace(RawOutput(), std::regex("\\.cpp:\\d+\\|"), ".cpp:N|");
    }
};

TEST_F(LogTest, TellsTheWholePathAndOperationHoweverLongTheyAre)
{
    const std::string path(200, 'p');
    const std::string operation(200, 'o');
    vorlix::LogWrite(7U << 2U, path.c_str(), operation.c_str(), "%s", "short");
    EXPECT_EQ(RawOutput(), "\033[1;32;40m00:00:05|Vorlix-111860|Info |" + Tid() + "|short|" + path +
                               ":7|" + operation + "()\033[0m\n");
}

TEST_F(LogTest, PutsEachLevelIntoTheFrameOfItsColour)
{
    const std::string source = std::string("|") + __FILE__ + ":N|";
    LOG_INFO("can no find switch.");
    EXPECT_EQ(Raw(), "\033[1;32;40m00:00:05|Vorlix-111860|Info |" + Tid() + "|can no find switch." +
                         source + "TestBody()\033[0m\n");
    ClearLog();
    LOG_WARN("fsync:%s\n", "No space left on device");
    EXPECT_EQ(Raw(), "\033[1;33;40m00:00:05|Vorlix-111860|Warn |" + Tid() +
                         "|fsync:No space left on device\n" + source + "TestBody()\033[0m\n");
    ClearLog();
    LOG_ERROR("cmd %d error.[%s] %s ", 35091, "No such device", "eth9");
    EXPECT_EQ(Raw(), "\033[1;31;40m00:00:05|Vorlix-111860|Error|" + Tid() +
                         "|cmd 35091 error.[No such device] eth9 " + source +
                         "TestBody()\033[0m\n");
}

TEST_F(LogTest, ATwinLogsUnderTheNameHandedIn)
{
    LOG_INFO_AS("InterfaceUp", "one");
    LOG_WARN_AS("InterfaceDown", "two");
    LOG_ERROR_AS("GetValueByKey", "three");
    EXPECT_EQ(Log(), (LogLines{Info("InterfaceUp", "one"), Warn("InterfaceDown", "two"),
                               Error("GetValueByKey", "three")}));
}

TEST_F(LogTest, NamesTheSourceByItsPathInTheProject)
{
    char list[] = "eth0";
    EXPECT_EQ(FindWordInLine(list, "eth1", ','), nullptr);
    EXPECT_TRUE(std::regex_search(
        RawOutput(), std::regex("\\|Src/Base\\.cpp:[1-9][0-9]*\\|FindWordInLine\\(\\)\033")))
        << RawOutput();
}

TEST_F(LogTest, NamesItsOwnLine)
{
    const int line = __LINE__ + 1;
    LOG_INFO("here");
    EXPECT_NE(RawOutput().find(":" + std::to_string(line) + "|"), std::string::npos);
}

TEST_F(LogTest, TellsTheLocalTimeInTwoDigits)
{
    SetZone("XXX-05:30");  // five and a half hours east
    LOG_INFO("east");
    EXPECT_EQ(Raw().substr(10, 9), "05:30:05|");
}

TEST_F(LogTest, TellsTheLastSecondOfADay)
{
    now = kFiveSecondsPastMidnight - 6;
    LOG_INFO("late");
    EXPECT_EQ(Raw().substr(10, 9), "23:59:59|");
}

TEST_F(LogTest, NamesTheThreadThatLogs)
{
    std::string other;
    std::thread([&] {
        other = Tid();
        LOG_INFO("from a thread");
    }).join();
    EXPECT_NE(other, Tid());
    EXPECT_NE(RawOutput().find("|Info |" + other + "|from a thread|"), std::string::npos);
}

TEST_F(LogTest, HasNoLimitOfLength)
{
    const std::string text(100000, 'x');
    LOG_ERROR_AS("Operation", "%s", text.c_str());
    EXPECT_EQ(Log(), (LogLines{Error("Operation", text)}));
}

TEST_F(LogTest, PrintsArgumentsAsTheyAre)
{
    LOG_INFO_AS("Operation", "%s", "100% |of| %s\n");
    EXPECT_EQ(Log(), (LogLines{Info("Operation", "100% |of| %s\n")}));
}

TEST_F(LogTest, FormsTheMessageBeforeItReadsTheClock)
{
    watching = true;
    LOG_INFO("%s", NoteArgument("text"));
    watching = false;
    EXPECT_EQ(whatHappened, (Texts{"argument", "clock"}));
}

TEST_F(LogTest, LeavesErrnoToTheNextLine)
{
    errno = ENODEV;
    LOG_ERROR_AS("One", "%s", strerror(errno));
    LOG_ERROR_AS("Two", "%s", strerror(errno));
    EXPECT_EQ(errno, ENODEV);
    EXPECT_EQ(Log(), (LogLines{Error("One", "No such device"), Error("Two", "No such device")}));
}

TEST_F(LogTest, IsOutBeforeTheNextThingHappens)
{
    LOG_INFO_AS("Operation", "before");
    ASSERT_EQ(write(STDOUT_FILENO, "tool output\n", 12), 12);
    LOG_INFO_AS("Operation", "after");
    const std::string output = RawOutput();
    EXPECT_LT(output.find("before"), output.find("tool output\n"));
    EXPECT_LT(output.find("tool output\n"), output.find("after"));
}

TEST_F(LogTest, KeepsItsPlaceBehindPlainOutput)
{
    printf("Usage:");  // still in the stream's buffer
    LOG_INFO_AS("Operation", "text");
    EXPECT_EQ(RawOutput().substr(0, 8), "Usage:\033[");
    EXPECT_EQ(PlainOutput(), "Usage:");
}

TEST_F(LogTest, AnOutputThatTakesNothingStopsNobody)
{
    const int caught = dup(STDOUT_FILENO);
    const int full = open("/dev/full", O_WRONLY);
    dup2(full, STDOUT_FILENO);
    errno = ENODEV;
    LOG_INFO("lost");
    EXPECT_EQ(errno, ENODEV);
    __fpurge(stdout);
    dup2(caught, STDOUT_FILENO);
    close(full);
    close(caught);
    clearerr(stdout);
    LOG_INFO_AS("Operation", "seen");
    EXPECT_EQ(Log(), (LogLines{Info("Operation", "seen")}));
}

TEST_F(LogTest, ALineWaitsForAReaderThatSleeps)
{
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const int caught = dup(STDOUT_FILENO);
    dup2(ends[1], STDOUT_FILENO);
    fcntl(ends[1], F_SETFL, O_NONBLOCK);
    const std::string filling(4096, 'x');
    while (write(ends[1], filling.data(), filling.size()) > 0) continue;
    fcntl(ends[1], F_SETFL, 0);

    std::atomic<bool> isOut{false};
    std::thread logger([&] {
        LOG_INFO_AS("Operation", "late");
        isOut = true;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_FALSE(isOut);
    std::string read;
    while (read.find("late") == std::string::npos) {  // the reader wakes up
        char piece[4096];
        const ssize_t size = ::read(ends[0], piece, sizeof(piece));
        ASSERT_GT(size, 0);
        read.append(piece, static_cast<size_t>(size));
    }
    logger.join();
    dup2(caught, STDOUT_FILENO);
}

TEST_F(LogTest, LinesOfThreadsNeverMix)
{
    constexpr int kThreads = 8;
    constexpr int kLines = 200;
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([i] {
            for (int line = 0; line < kLines; ++line) LOG_INFO_AS("Operation", "thread %d", i);
        });
    }
    for (std::thread& thread : threads) thread.join();

    EXPECT_EQ(PlainOutput(), "");
    std::vector<int> lines(kThreads);
    for (const LogLine& line : Log()) ++lines.at(static_cast<size_t>(line.text.back() - '0'));
    EXPECT_EQ(lines, std::vector<int>(kThreads, kLines));
}

}  // namespace
