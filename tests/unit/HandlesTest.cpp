// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Support/Handles.h"
#include "Support/Sockets.h"

#include "fake/World.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

using namespace fake;
using namespace vorlix;

namespace {

constexpr char kPath[] = "/mnt/mtd/Config/network";

class HandlesTest : public World {
protected:
    void SetUp() override
    {
        World::SetUp();
        Put(kPath, "");
    }
};

TEST_F(HandlesTest, ADescriptorIsClosedAtTheEndOfItsScope)
{
    {
        const Fd file(open(kPath, O_RDONLY));
        EXPECT_TRUE(file.Ok());
        EXPECT_GE(file.Get(), 0);
        EXPECT_EQ(OpenHandles(), (Texts{"open /mnt/mtd/Config/network O_RDONLY"}));
    }
    EXPECT_EQ(OpenHandles(), Texts{});
}

TEST_F(HandlesTest, ADescriptorIsClosedOnce)
{
    {
        Fd file(open(kPath, O_RDONLY));
        file.Close();
        EXPECT_FALSE(file.Ok());
        file.Close();
    }
    EXPECT_EQ(TraceOf({"close"}), (Texts{"close /mnt/mtd/Config/network"}));
}

TEST_F(HandlesTest, ADescriptorGivenAwayStaysOpen)
{
    int taken = -1;
    {
        Fd file(open(kPath, O_RDONLY));
        taken = file.Take();
        EXPECT_FALSE(file.Ok());
    }
    EXPECT_EQ(TraceOf({"close"}), Texts{});
    EXPECT_EQ(close(taken), 0);
}

TEST_F(HandlesTest, AFailedOpenIsNotClosed)
{
    {
        const Fd file(open("/mnt/mtd/Config/none", O_RDONLY));
        EXPECT_FALSE(file.Ok());
    }
    EXPECT_EQ(TraceOf({"close"}), Texts{});
}

TEST_F(HandlesTest, ClosingKeepsTheReasonOfAFailure)
{
    Fd file(open(kPath, O_RDONLY));
    close(file.Get());  // so that the owner's close fails and sets errno
    errno = ENODEV;
    file.Close();
    EXPECT_EQ(errno, ENODEV);
}

TEST_F(HandlesTest, StreamsAndFoldersAreClosedAtTheEndOfTheirScope)
{
    {
        const Stream stream(fopen(kPath, "r+"));
        const Directory folder(opendir("/mnt/mtd/Config"));
        EXPECT_EQ(OpenHandles().size(), 2U);
    }
    EXPECT_EQ(OpenHandles(), Texts{});
    EXPECT_EQ(TraceOf({"closedir", "fclose"}),
              (Texts{"closedir /mnt/mtd/Config", "fclose /mnt/mtd/Config/network"}));
}

TEST_F(HandlesTest, AMutexIsHeldToTheEndOfTheScope)
{
    pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
    {
        const MutexGuard guard(mutex);
        EXPECT_EQ(HeldMutexes(), 1);
    }
    EXPECT_EQ(HeldMutexes(), 0);
}

TEST_F(HandlesTest, AMutexIsReleasedOnce)
{
    pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
    {
        MutexGuard guard(mutex);
        guard.Release();
        EXPECT_EQ(HeldMutexes(), 0);
        guard.Release();
    }
    EXPECT_EQ(HeldMutexes(), 0);
}

TEST_F(HandlesTest, AKeptDescriptorIsNotInherited)
{
    const Fd file(open(kPath, O_RDONLY));
    EXPECT_EQ(fcntl(file.Get(), F_GETFD) & FD_CLOEXEC, 0);
    KeepFromChildren(file.Get());
    EXPECT_EQ(fcntl(file.Get(), F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
}

// ---- sockets

TEST_F(HandlesTest, NoSocketIsInherited)
{
    const Fd control(OpenSocket(AF_INET, SOCK_DGRAM, 0));
    ASSERT_TRUE(control.Ok());
    EXPECT_EQ(fcntl(control.Get(), F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
    EXPECT_EQ(OpenHandles(), (Texts{"socket AF_INET 2 0"}));
}

TEST_F(HandlesTest, AFailedSocketTellsItsReason)
{
    Fail("socket", EMFILE);
    EXPECT_LT(OpenSocket(AF_INET, SOCK_DGRAM, 0), 0);
    EXPECT_EQ(errno, EMFILE);
    EXPECT_EQ(TraceOf({"fcntl"}), Texts{});
}

TEST_F(HandlesTest, AKeptSocketIsOpenedOnce)
{
    KeptSocket kept(AF_INET6);
    const int fd = kept.Get();
    EXPECT_GE(fd, 0);
    EXPECT_EQ(kept.Get(), fd);
    EXPECT_EQ(Trace(), (Texts{"socket AF_INET6", "fcntl F_SETFD"}));
    EXPECT_EQ(fcntl(fd, F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
}

TEST_F(HandlesTest, AKeptSocketMayHaveDescriptor0)
{
    close(STDIN_FILENO);  // a start script may have done so
    KeptSocket kept(AF_INET);
    EXPECT_EQ(kept.Get(), STDIN_FILENO);
    EXPECT_EQ(kept.Get(), STDIN_FILENO);
    EXPECT_EQ(TraceOf({"socket"}).size(), 1U);
}

TEST_F(HandlesTest, AKeptSocketThatFailedIsTriedAgain)
{
    KeptSocket kept(AF_INET);
    Fail("socket", ENFILE);
    EXPECT_LT(kept.Get(), 0);
    EXPECT_EQ(errno, ENFILE);
    EXPECT_GE(kept.Get(), 0);
}

}  // namespace
