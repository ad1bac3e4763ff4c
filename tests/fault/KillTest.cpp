// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Ended at once, at every system call that a run makes: the program, or a tool that it has started.
// What the next boot makes of it must be what some clean boot makes.

#include "Scene.h"

#include <sstream>

using namespace device;
using namespace fault;

namespace {

constexpr int kUsualStride = 43;

/// What a run leaves that ends between giving a file its new name and keeping the old one as well.
Files WithoutOldName(const std::string& old)
{
    Files files = BeforeAnUpdate();
    const std::map<std::string, std::string> present = {{"network2", "networketh2"},
                                                        {"networkip62", "networkip6eth2"}};
    files[present.at(old)] = files.at(old);
    files.erase(old);
    return files;
}

/// The same files without one line.
Files Without(Files files, const std::string& name, const std::string& key)
{
    std::istringstream lines(files.at(name));
    std::string rest;
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind(key + " ", 0) != 0) rest += line + "\n";
    }
    files[name] = rest;
    return files;
}

class KillTest : public FaultTest {
protected:
    /// Which calls of a run are points at which it is killed, and who is killed there.
    struct Attack {
        Texts words;    // of the command line
        bool booted;    // the device has booted before
        bool toolOnly;  // the tool that makes the call is killed, and the program goes on
    };

    /// Starts again and again from the same files, and kills one call later each time.
    static void KillEverywhere(const Attack& attack, const Files& before, Outcomes outcomes)
    {
        const int stride = Stride(kUsualStride);
        int points = 0;
        std::map<std::string, int> reached;
        NextBoot next;
        for (int number = 1; !HasFailure(); number += stride) {
            ColdStart(before);
            if (attack.booted) Boot();
            const std::string where = KillAt(number, attack);
            if (where.empty()) break;

            ++points;
            ExpectWholeLines();
            const Files left = Saved();
            const auto [warm, cold] = next.Of(left, Look());
            for (const std::string& file : EmptyOnes(left)) {
                if (before.count(file) != 0) outcomes.AllowLossOf(file);
            }
            ++reached["started cold: " + NameIn(outcomes, cold, where)];
            ++reached["on the running kernel: " + NameIn(outcomes, warm, where)];
        }
        Tell(std::to_string(points) + " points, " + std::to_string(next.DistinctStates()) +
             " different states");
        for (const auto& [name, count] : reached) Tell(std::to_string(count) + " " + name);
        EXPECT_GT(points, 0);
    }

private:
    /// Text of the call at which somebody was killed; empty when there is no such call.
    static std::string KillAt(int number, const Attack& attack)
    {
        int seen = 0;
        std::string where;
        const Traced run = Trace(Command(attack.words), [&](const Call& call) {
            if (attack.toolOnly && !call.byChild) return Fate{};
            if (++seen != number) return Fate{};

            where = call.Text();
            return Fate{attack.toolOnly ? Fate::kKillCaller : Fate::kKillAll};
        });
        if (attack.toolOnly) {
            EXPECT_EQ(run.status, 0) << where;
        }
        return where;
    }

    static std::string NameIn(const Outcomes& outcomes, const State& state,
                              const std::string& where)
    {
        const std::string name = outcomes.NameOf(state);
        EXPECT_NE(name, "") << where << "\n" << outcomes.Nearest(state);
        return name;
    }
};

TEST_F(KillTest, ABootIsFollowedByOneThatReachesTheSame)
{
    Outcomes outcomes;
    outcomes.Allow("whole", BeforeAnUpdate());
    outcomes.Allow("whole, without the old name of a file", WithoutOldName("network2"));
    outcomes.Allow("whole, without the old name of a file", WithoutOldName("networkip62"));
    outcomes.Allow("whole, no card marked as default",
                   Without(BeforeAnUpdate(), "network1", "PRIO"));
    KillEverywhere({{}, false, false}, BeforeAnUpdate(), outcomes);
}

TEST_F(KillTest, AToolOfABootIsMadeUpForByTheNext)
{
    Outcomes outcomes;
    outcomes.Allow("whole", BeforeAnUpdate());
    KillEverywhere({{}, false, true}, BeforeAnUpdate(), outcomes);
}

TEST_F(KillTest, AChangeOfAnAddressLeavesTheOldOrTheNewOrTheFactoryOne)
{
    const Files before = Booted(BeforeAnUpdate());
    const Texts words = {"eth1", "10.7.0.9", "255.255.0.0", "10.7.0.1"};
    Outcomes outcomes;
    outcomes.Allow("old address", before);
    outcomes.Allow("new address", Booted(before, words));
    outcomes.Allow("factory address", Without(before, "network1", "HOSTIP"));
    KillEverywhere({words, true, false}, before, outcomes);
}

TEST_F(KillTest, AChangeOfTheDefaultCardLeavesTheOldOrTheNewOne)
{
    const Files before = Booted(BeforeAnUpdate());
    const Texts words = {"setdef", "eth2"};
    Outcomes outcomes;
    outcomes.Allow("old default card", before);
    const Files after = Booted(before, words);
    outcomes.Allow("new default card", after);
    outcomes.Allow("new default card, not yet marked", Without(after, "network2", "PRIO"));
    KillEverywhere({words, true, false}, before, outcomes);
}

}  // namespace
