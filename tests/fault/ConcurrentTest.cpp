// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Several programs on the same files at once: the boot program and applications with the library,
// left alone, and killed at any moment.

#include "Scene.h"

#include "Config.h"

#include <cerrno>
#include <memory>
#include <random>

#include <fcntl.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

using namespace device;
using namespace fault;

namespace {

/// Holds processes back until all of them are there.
class Gate {
public:
    Gate() { EXPECT_EQ(pipe(ends_), 0); }

    void Await() const
    {
        close(ends_[1]);
        char nothing = 0;
        while (read(ends_[0], &nothing, 1) < 0 && errno == EINTR) {
        }
    }

    /// Called once, when all wait or are on their way.
    void Open() const { close(ends_[1]); }

private:
    int ends_[2] = {-1, -1};
};

/// Fails the test for a file that another process still holds the lock of.
void ExpectNoLockLeft()
{
    for (const auto& [name, text] : SavedFiles()) {
        const std::string path = std::string(kConfig) + "/" + name;
        const int file = open(path.c_str(), O_RDWR | O_CLOEXEC);
        struct flock range {};
        range.l_type = F_WRLCK;
        EXPECT_EQ(fcntl(file, F_GETLK, &range), 0) << name;
        EXPECT_EQ(range.l_type, F_UNLCK) << name << " is locked by process " << range.l_pid;
        close(file);
    }
}

/// Each key of the file of eth2 belongs to one writer, who finds in it what he wrote, always.
class SharedFileTest : public FaultTest {
protected:
    static constexpr char kCard[] = "eth2";
    static constexpr int kRounds = 60;

    void SetUp() override
    {
        FaultTest::SetUp();
        if (!IsSkipped()) ColdStart(Booted(BeforeAnUpdate()));
    }

    static void WritePolicies()
    {
        for (int round = 0; round < kRounds; ++round) {
            const auto policy = static_cast<unsigned char>(round % 5);
            ASSERT_TRUE(SetBondHashPolicyByConfig(kCard, policy));
            unsigned char found = 255;
            ASSERT_TRUE(GetBondHashPolicyByConfig(kCard, &found));
            ASSERT_EQ(found, policy);
        }
    }

    static void WritePrimaries()
    {
        for (int round = 0; round < kRounds; ++round) {
            const std::string primary = "eth" + std::to_string(round);
            ASSERT_TRUE(SetPrimaryEthByConfig(kCard, primary.c_str()));
            char found[16] = {};
            ASSERT_TRUE(GetPrimaryEthByConfig(kCard, found, sizeof(found)));
            ASSERT_EQ(found, primary);
        }
    }

    static void WriteMtus()
    {
        for (int round = 0; round < kRounds; ++round) {
            ASSERT_TRUE(SetMtuByConfig(kCard, 1000 + round));
            int found = 0;
            ASSERT_TRUE(GetMtuByConfig(kCard, &found));
            ASSERT_EQ(found, 1000 + round);
        }
    }

    static void ChangeAddresses()
    {
        for (int round = 0; round < kRounds / 10; ++round) {
            const std::string address = "10.0.2." + std::to_string(20 + round);
            ASSERT_EQ(Lanrise("eth2 " + address + " 255.255.255.0 10.0.2.1").status, 0);
            char found[16] = {};
            char mask[16] = {};
            ASSERT_TRUE(GetIPByConfig(kCard, found, mask));  // under the lock, as the others
            ASSERT_EQ(found, address);
        }
    }

    static void ChangeDefaultCards()
    {
        for (int round = 0; round < kRounds / 10; ++round) {
            ASSERT_EQ(Lanrise("setdef eth" + std::to_string(round % 2)).status, 0);
        }
    }
};

TEST_F(SharedFileTest, LosesNoChangeOfAnyKey)
{
    const Gate gate;
    std::vector<std::unique_ptr<Child>> writers;
    for (void (*write)() :
         {WritePolicies, WritePrimaries, WriteMtus, ChangeAddresses, ChangeDefaultCards}) {
        writers.push_back(std::make_unique<Child>([&gate, write] {
            gate.Await();
            write();
        }));
    }
    gate.Open();
    for (const auto& writer : writers) EXPECT_TRUE(writer->Wait());

    EXPECT_EQ(device::Saved(kCard, "LACP"), std::to_string((kRounds - 1) % 5));
    EXPECT_EQ(device::Saved(kCard, "BONDPRIMARY"), "eth" + std::to_string(kRounds - 1));
    EXPECT_EQ(device::Saved(kCard, "MTU"), std::to_string(1000 + kRounds - 1));
    EXPECT_EQ(device::Saved(kCard, "HOSTIP"), "10.0.2." + std::to_string(20 + kRounds / 10 - 1));
    EXPECT_EQ(device::Saved(kCard, "GATEWAYIP"), "10.0.2.1");
    EXPECT_EQ(device::Saved("eth0", "DEFAULT_ETH"), "eth1");
    EXPECT_EQ(device::Saved("eth3", "BRIDGENAME"), "br0");
    ExpectNoLockLeft();
    ExpectWholeLines();
}

/// The same crowd, with boots among it, and death at random.
class KilledCrowdTest : public FaultTest {
protected:
    static void WriteForEver()
    {
        for (int round = 0;; ++round) {
            (void)SetMtuByConfig("eth2", 1000 + round % 500);
            (void)SetIPByConfig("eth5", "10.0.5.10", "255.255.255.0");
            (void)SetBondHashPolicyByConfig("eth1", static_cast<unsigned char>(round % 5));
        }
    }

    static pid_t Start(const Gate& gate, const std::function<void()>& run)
    {
        fflush(nullptr);
        const pid_t child = fork();
        if (child != 0) {
            setpgid(child, child);  // dies with the tools that it starts
            return child;
        }
        gate.Await();
        run();
        _exit(EXIT_SUCCESS);
    }

    static std::function<void()> Program(const Texts& words)
    {
        return [words] {
            for (;;) {
                std::string line;
                for (const std::string& word : words) line += word + " ";
                (void)Lanrise(line);
            }
        };
    }
};

TEST_F(KilledCrowdTest, LeavesFilesAndLocksWithWhichTheNextBootWorks)
{
    const Files before = Booted(BeforeAnUpdate());
    std::mt19937 random(20);
    const int rounds = 200 / Stride(20);
    for (int round = 0; round < rounds && !HasFailure(); ++round) {
        ColdStart(before);
        const Gate gate;
        std::vector<pid_t> crowd = {
            Start(gate, WriteForEver),
            Start(gate, WriteForEver),
            Start(gate, Program({})),
            Start(gate, Program({"eth1", "10.0.1.77", "255.255.255.0", "10.0.1.1"})),
            Start(gate, Program({"setdef", "eth2"})),
        };
        gate.Open();
        while (!crowd.empty()) {
            const timespec pause{0, static_cast<long>(random() % 30) * 1000 * 1000};
            nanosleep(&pause, nullptr);
            const size_t victim = random() % crowd.size();
            kill(-crowd[victim], SIGKILL);
            waitpid(crowd[victim], nullptr, 0);
            crowd.erase(crowd.begin() + static_cast<long>(victim));
        }
        ExpectNoLockLeft();
        ExpectWholeLines();
        Boot();
        const State first = Look();
        for (int i = 0; i < 6; ++i) {
            const std::string card = "eth" + std::to_string(i);
            EXPECT_TRUE(IsUp(card)) << card << " in round " << round;
            EXPECT_NE(device::Saved(card, "HOSTIP"), "") << card << " in round " << round;
        }
        Boot();
        EXPECT_EQ(Look(), first) << "in round " << round;
    }
    Tell(std::to_string(rounds) + " crowds killed");
}

}  // namespace
