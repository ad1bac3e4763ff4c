// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// What the probes ask of a socket.

#include "Arp_Ping.h"

#include "ProbeWorld.h"

#include <cerrno>
#include <climits>

#include <unistd.h>

using namespace fake;

namespace {

constexpr int kSocket = 7;

// ---- CreatAFRawSock, CreatPFRawSock

class CreatRawSockTest : public World {};

TEST_F(CreatRawSockTest, OpensARawIPv4SocketOfAProtocol)
{
    const int fd = CreatAFRawSock(1);
    EXPECT_GE(fd, 0);
    EXPECT_EQ(OpenHandles(), (Texts{"socket AF_INET 3 1"}));
    close(fd);
}

TEST_F(CreatRawSockTest, OpensASocketForWholeFramesOfAProtocol)
{
    const int fd = CreatPFRawSock(0x0608);
    EXPECT_GE(fd, 0);
    EXPECT_EQ(OpenHandles(), (Texts{"socket AF_INET 10 1544"}));
    close(fd);
}

TEST_F(CreatRawSockTest, BothTellOfAFailureInTheSameWords)
{
    FailAll("socket", EPERM);
    EXPECT_LT(CreatAFRawSock(1), 0);
    EXPECT_LT(CreatPFRawSock(0x0608), 0);
    const char* text = "can not creat AF raw socket[Operation not permitted].";
    EXPECT_EQ(Log(), (LogLines{Error("CreatAFRawSock", text), Error("CreatPFRawSock", text)}));
}

// ---- BindToDevice

class BindToDeviceTest : public ProbeWorld {};

TEST_F(BindToDeviceTest, HandsTheNameOverInAWholeRecord)
{
    EXPECT_TRUE(BindToDevice(kSocket, "eth0"));
    EXPECT_EQ(Trace(), (Texts{BindsTo("eth0")}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(BindToDeviceTest, CutsALongName)
{
    kernel.Add("abcdefghijklmno");
    EXPECT_TRUE(BindToDevice(kSocket, "abcdefghijklmnopqrstuvwxyz"));
    EXPECT_EQ(Trace(), (Texts{BindsTo("abcdefghijklmno")}));
}

/// To the kernel that means no card: a socket that was bound is free again.
TEST_F(BindToDeviceTest, AnEmptyNameIsHandedOverToo)
{
    (void)BindToDevice(kSocket, "");
    EXPECT_EQ(Trace(), (Texts{BindsTo("")}));
}

TEST_F(BindToDeviceTest, ARefusalIsLogged)
{
    EXPECT_FALSE(BindToDevice(kSocket, "eth9"));
    EXPECT_EQ(Log(), (LogLines{Error("BindToDevice", "set socket SO_BINDTODEVICE failed")}));
}

TEST_F(BindToDeviceTest, NullAndNoSocketAreSilent)
{
    EXPECT_FALSE(BindToDevice(kSocket, nullptr));
    EXPECT_FALSE(BindToDevice(-1, "eth0"));
    EXPECT_EQ(Trace(), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

// ---- BindIPPort

class BindIPPortTest : public ProbeWorld {};

TEST_F(BindIPPortTest, StoresThePortAsItIsGiven)
{
    EXPECT_TRUE(BindIPPort(kSocket, kOurIP, 0x1234));
    EXPECT_TRUE(BindIPPort(0, "0.0.0.0", 0));
    EXPECT_EQ(Trace(), (Texts{"bind 10.0.0.1 4660 16", "bind 0.0.0.0 0 16"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(BindIPPortTest, RefusesATextThatDoesNotParse)
{
    for (const char* text : {"", "10.0.0", "10.0.0.256", "10.0.0.1 ", "eth0"}) {
        errno = 0;
        EXPECT_FALSE(BindIPPort(kSocket, text, 0)) << text;
        EXPECT_EQ(Log(), (LogLines{Error("BindIPPort", "inet_pton failed:Success")})) << text;
        ClearLog();
    }
    EXPECT_EQ(TraceOf({"bind"}), Texts{});
}

TEST_F(BindIPPortTest, ARefusalTellsItsReason)
{
    EXPECT_FALSE(BindIPPort(kSocket, "10.0.0.99", 0));
    EXPECT_EQ(Log(),
              (LogLines{Error("BindIPPort", "bind failed:Cannot assign requested address")}));
}

TEST_F(BindIPPortTest, NullAndNoSocketAreSilent)
{
    EXPECT_FALSE(BindIPPort(kSocket, nullptr, 0));
    EXPECT_FALSE(BindIPPort(-1, kOurIP, 0));
    EXPECT_EQ(Trace(), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

// ---- ListenToSocket

class ListenToSocketTest : public World {};

TEST_F(ListenToSocketTest, TrueWhenDataIsReady)
{
    wire.arrivals = {{{1, 2, 3}, "10.0.0.2", 3}};
    EXPECT_TRUE(ListenToSocket(kSocket, 3));
    EXPECT_EQ(Trace(), (Texts{"poll 1 3000"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(ListenToSocketTest, AWaitInVainIsAWarning)
{
    wire.arrivals = {{{1, 2, 3}, "10.0.0.2", 4}};
    EXPECT_FALSE(ListenToSocket(kSocket, 3));
    EXPECT_EQ(Log(),
              (LogLines{Warn("ListenToSocket", "socket 7 do not recive any data in 3 second")}));
}

TEST_F(ListenToSocketTest, ATimeBelowZeroDoesNotWait)
{
    for (const int timeout : {0, -1, INT_MIN}) {
        ClearTrace();
        ClearLog();
        EXPECT_FALSE(ListenToSocket(kSocket, timeout));
        EXPECT_EQ(Trace(), (Texts{"poll 1 0"})) << timeout;
        EXPECT_EQ(Log(),
                  (LogLines{Warn("ListenToSocket", "socket 7 do not recive any data in " +
                                                       std::to_string(timeout) + " second")}));
    }
}

TEST_F(ListenToSocketTest, ATimeTooLongToCountWaitsAsLongAsItCan)
{
    for (const int timeout : {2147484, INT_MAX}) {
        ClearTrace();
        ClearLog();
        EXPECT_FALSE(ListenToSocket(kSocket, timeout));
        EXPECT_EQ(Trace(), (Texts{"poll 1 2147483647"})) << timeout;
        EXPECT_EQ(Log(),
                  (LogLines{Warn("ListenToSocket", "socket 7 do not recive any data in " +
                                                       std::to_string(timeout) + " second")}));
    }
    ClearTrace();
    EXPECT_FALSE(ListenToSocket(kSocket, 2147483));
    EXPECT_EQ(Trace(), (Texts{"poll 1 2147483000"}));
}

TEST_F(ListenToSocketTest, AFailedWaitTellsItsReason)
{
    Fail("poll", EINTR);
    EXPECT_FALSE(ListenToSocket(kSocket, 3));
    EXPECT_EQ(Log(),
              (LogLines{Error("ListenToSocket", "poll socket 7 error[Interrupted system call]")}));
}

TEST_F(ListenToSocketTest, AnyOtherEventIsAnError)
{
    for (const int events : {POLLERR, POLLHUP, POLLNVAL, POLLIN | POLLERR, POLLIN | POLLHUP}) {
        ClearLog();
        wire.arrivals = {{{1}, "10.0.0.2", 0, static_cast<short>(events)}};
        EXPECT_FALSE(ListenToSocket(kSocket, 3)) << events;
        EXPECT_EQ(Log(), (LogLines{Error("ListenToSocket", "Not in event")})) << events;
    }
}

TEST_F(ListenToSocketTest, NoSocketIsSilent)
{
    EXPECT_FALSE(ListenToSocket(-1, 3));
    EXPECT_FALSE(ListenToSocket(INT_MIN, 3));
    EXPECT_EQ(Trace(), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

}  // namespace
