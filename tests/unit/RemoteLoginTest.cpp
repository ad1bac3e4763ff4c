// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Starting and stopping the daemon for remote login.

#include "Other.h"

#include "fake/World.h"

#include <cerrno>
#include <cstring>

using namespace fake;

namespace {

constexpr char kStart[] = "start-stop-daemon --start --quiet --pidfile /var/run/sshd.pid --exec "
                          "/usr/sbin/sshd -- -f /etc/ssh/sshd_config";
constexpr char kStop[] = "start-stop-daemon --stop --quiet --oknodo --pidfile /var/run/sshd.pid";

int Set(int enable)
{
    SSHInfo info{};
    memset(static_cast<void*>(&info), 0xFF, sizeof(info));
    info.enable = enable & 1;
    return SetSSHStatus(&info);
}

class SetSSHStatusTest : public World {};

TEST_F(SetSSHStatusTest, StartsTheDaemon)
{
    EXPECT_EQ(Set(1), 0);
    EXPECT_EQ(Commands(), (Texts{kStart}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(SetSSHStatusTest, StopsTheDaemon)
{
    EXPECT_EQ(Set(0), 0);
    EXPECT_EQ(Commands(), (Texts{kStop}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(SetSSHStatusTest, NothingButTheFlagCounts)
{
    SSHInfo info{};
    info.rsd = 0x7F;
    info.port = 2222;
    info.openDuration = 60;
    EXPECT_EQ(SetSSHStatus(&info), 0);
    EXPECT_EQ(Commands(), (Texts{kStop}));
    info = SSHInfo{};  // no port, no duration
    info.enable = 1;
    EXPECT_EQ(SetSSHStatus(&info), 0);
    EXPECT_EQ(Commands(), (Texts{kStop, kStart}));
}

TEST_F(SetSSHStatusTest, WhatBecameOfTheDaemonIsNotAsked)
{
    for (const char* command : {kStart, kStop}) OnCommand(command, nullptr, 127 << 8);
    EXPECT_EQ(Set(1), 0);
    EXPECT_EQ(Set(0), 0);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(SetSSHStatusTest, WithoutAShellItFails)
{
    FailAll("vfork", ENOMEM);
    EXPECT_EQ(Set(1), -1);
    EXPECT_EQ(Set(0), -1);
    EXPECT_EQ(LogOf("SetSSHStatus"),
              (LogLines{Error("SetSSHStatus", "run cmd /etc/init.d/sshd start fail!\n"),
                        Error("SetSSHStatus", "run cmd /etc/init.d/sshd stop fail!\n")}));
    EXPECT_EQ(Commands(), Texts{});
}

TEST_F(SetSSHStatusTest, NullFails)
{
    EXPECT_EQ(SetSSHStatus(nullptr), -1);
    EXPECT_EQ(Log(), (LogLines{Error("SetSSHStatus", "Set SSH failed!\n")}));
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(SetSSHStatusTest, EveryFailureOfTheRunnerIsTold)
{
    static int result = 0;
    FailEachCall([] { result = Set(1); },
                 [](const std::string&) {
                     const LogLines own = LogOf("SetSSHStatus");
                     const LogLine line =
                         Error("SetSSHStatus", "run cmd /etc/init.d/sshd start fail!\n");
                     EXPECT_EQ(own, result == 0 ? LogLines{} : LogLines{line});
                 });
}

}  // namespace
