// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// One call of the program fails, each in its turn and with each error that fits it. The run must
// still come to an end that is stated, and the next boot must bring the device back.

#include "Scene.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>

using namespace device;
using namespace fault;

namespace {

constexpr int kUsualStride = 211;

const std::string kFolder = std::string(kConfig) + "/";

using Errors = std::vector<int>;

/// What may befall a call. Those that are not named cannot fail, or are not the program's own.
Errors ErrorsOf(const Call& call)
{
    static const std::map<std::string, Errors> kErrors = {
        {"openat", {EIO, EMFILE, ENOMEM, EINTR}},
        {"access", {EIO, ENOMEM}},
        {"newfstatat", {EIO, ENOMEM}},
        {"rename", {EIO, ENOSPC, EROFS}},
        {"link", {EIO, ENOSPC, EROFS}},
        {"unlink", {EIO, EROFS}},
        {"read", {EIO, EINTR}},
        {"pread64", {EIO, EINTR}},
        {"write", {EIO, ENOSPC, EINTR}},
        {"fsync", {EIO, ENOSPC, EROFS, EINTR}},
        {"close", {EIO, EINTR}},
        {"fcntl", {EIO, ENOMEM, EINTR}},
        {"ioctl", {EIO, ENOMEM, EINTR}},
        {"lseek", {EIO}},
        {"getdents64", {EIO}},
        {"mmap", {ENOMEM}},
        {"brk", {ENOMEM}},
        {"socket", {EMFILE, ENOMEM}},
        {"vfork", {ENOMEM, EAGAIN}},
        {"clone", {ENOMEM, EAGAIN}},
        {"wait4", {EINTR, ECHILD}},
        {"rt_sigaction", {EIO}},
        {"rt_sigprocmask", {EIO}},
        {"clock_nanosleep", {EINTR}},
    };
    const auto known = kErrors.find(call.name);
    Errors errors = known == kErrors.end() ? Errors{} : known->second;
    if (call.OpensForWriting()) errors.insert(errors.end(), {ENOSPC, EROFS});
    return errors;
}

/// Descriptors that are open at the end of a run, without the three that every program has.
Texts OpenAtEnd(pid_t process)
{
    Texts open;
    const std::string folder = "/proc/" + std::to_string(process) + "/fd";
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (std::stoi(entry.path().filename()) <= 2) continue;
        const std::string target = std::filesystem::read_symlink(entry.path());
        open.push_back(target.substr(0, target.find(" (deleted)")));
    }
    return open;
}

/// Sockets and the table of routes serve until the process ends. A close that was made to fail was
/// not made.
bool MayStayOpen(const std::string& target, const std::string& failed)
{
    return target.rfind("socket:", 0) == 0 || target.find("/net/route") != std::string::npos ||
           failed.find(": close " + target) != std::string::npos;
}

/// What may be lost when something goes wrong with a file: the settings of its card. A bridge and
/// its cards share one fate, since the bridge ends when one of its cards does not claim it any
/// more.
Texts AtStakeWith(const std::string& file)
{
    const Texts bridge = {"networkbr0", "networketh3", "networketh4", "br0", "eth3", "eth4"};
    const std::map<std::string, Texts> kAtStake = {
        {"network", {"network: ", "eth0"}},
        {"network1", {"network1", "eth1"}},
        {"network2", {"network2", "networketh2", "eth2"}},
        {"networketh2", {"network2", "networketh2", "eth2"}},
        {"networkip62", {"networkip62", "networkip6eth2"}},
        {"networkip6eth2", {"networkip62", "networkip6eth2"}},
        {"networketh3", bridge},
        {"networketh4", bridge},
        {"networkbr0", bridge},
        {"networketh5", {"networketh5", "eth5"}},
    };
    const auto known = kAtStake.find(file);
    return known == kAtStake.end() ? Texts{} : known->second;
}

/// Every card is up, and has an address or serves a bridge.
void ExpectCardsServe(const State& state, const std::string& failed)
{
    for (int i = 0; i < 6; ++i) {
        const std::string card = "eth" + std::to_string(i) + " ";
        const auto count = [&](const std::string& start, const std::string& part) {
            return std::count_if(
                state.network.begin(), state.network.end(), [&](const std::string& text) {
                    return text.rfind(start, 0) == 0 && text.find(part) != std::string::npos;
                });
        };
        EXPECT_EQ(count(card + "up ", ""), 1) << card << failed;
        EXPECT_GE(count(card, "/") + count(card, " in br0"), 1) << card << failed << "\n" << state;
    }
}

class FailTest : public FaultTest {
protected:
    /// A run in which one call failed.
    struct Point {
        std::string failed;  // the call and its error; empty: there was no such call any more
        std::string file;    // of the settings folder, that the call was about
        Texts open;          // at the end of the run
        Traced run;
    };

    static void FailEverywhere(const Texts& words, const Files& before, Outcomes outcomes,
                               const Texts& refusals)
    {
        const int stride = Stride(kUsualStride);
        int points = 0;
        std::map<std::string, int> reached;
        NextBoot next;
        for (int number = 1; !HasFailure(); number += stride) {
            ColdStart(before);
            if (!words.empty()) Boot();
            const Point point = FailAt(number, words);
            if (point.failed.empty()) break;

            ++points;
            ExpectEnd(point, refusals);
            ExpectWholeLines();
            const Files left = Saved();
            const auto [warm, cold] = next.Of(left, Look());
            if (before.count(point.file) != 0) outcomes.AllowLossOf(point.file);
            for (const State* state : {&warm, &cold}) {
                ++reached[NameIn(outcomes, *state, point)];
                ExpectCardsServe(*state, point.failed);
            }
        }
        Tell(std::to_string(points) + " points, " + std::to_string(next.DistinctStates()) +
             " different states");
        for (const auto& [name, count] : reached) Tell(std::to_string(count) + " " + name);
        EXPECT_GT(points, 0);
    }

private:
    /// Runs `lanrise <words>` with the `number`th of all failures.
    static Point FailAt(int number, const Texts& words)
    {
        Point point{"", "", {}, {}};
        bool begun = false;  // what the loader does before is not the program's
        int seen = 0;
        point.run = Trace(Command(words), [&](const Call& call) {
            if (call.byChild) return Fate{};
            begun = begun || call.Path() == kFolder + "network2";
            if (!begun) return Fate{};
            if (call.name == "exit_group") point.open = OpenAtEnd(call.caller);

            const Errors errors = ErrorsOf(call);
            const int before = seen;
            seen += static_cast<int>(errors.size());
            if (before >= number || seen < number) return Fate{};

            const int error = errors[static_cast<size_t>(number - before - 1)];
            point.failed = call.Text() + ": " + strerror(error);
            const std::string path = call.Path();
            if (path.rfind(kFolder, 0) == 0) point.file = path.substr(kFolder.size());
            return Fate{Fate::kFail, error};
        });
        return point;
    }

    /// The program ends by itself, with 0 or with a refusal that it states, and leaves nothing
    /// open.
    static void ExpectEnd(const Point& point, const Texts& refusals)
    {
        const auto says = [&point](const std::string& text) {
            return point.run.output.find(text) != std::string::npos;
        };
        // Later in a boot the same words are no refusal: it goes on to its end.
        const bool refused =
            std::any_of(refusals.begin(), refusals.end(), says) && !says("lanrise is finished.");
        EXPECT_EQ(point.run.status, refused ? 255 : 0) << point.failed << "\n" << point.run.output;
        for (const std::string& open : point.open) {
            EXPECT_TRUE(MayStayOpen(open, point.failed)) << point.failed << "\nopen: " << open;
        }
    }

    static std::string NameIn(const Outcomes& outcomes, const State& state, const Point& point)
    {
        const std::string name = outcomes.NameOf(state);
        if (!name.empty()) return name;

        const Texts atStake = AtStakeWith(point.file);
        EXPECT_TRUE(!atStake.empty() && outcomes.DiffersOnlyIn(state, atStake))
            << point.failed << "\n"
            << outcomes.Nearest(state);
        return "whole but for " + point.file;
    }
};

TEST_F(FailTest, OfABootEachCallAlone)
{
    Outcomes outcomes;
    outcomes.Allow("whole", BeforeAnUpdate());
    FailEverywhere({}, BeforeAnUpdate(), outcomes, {"can not get eth Names"});
}

TEST_F(FailTest, OfAChangeOfAnAddressEachCallAlone)
{
    const Files before = Booted(BeforeAnUpdate());
    const Texts words = {"eth1", "10.7.0.9", "255.255.0.0", "10.7.0.1"};
    Outcomes outcomes;
    outcomes.Allow("old address", before);
    outcomes.Allow("new address", Booted(before, words));
    FailEverywhere(words, before, outcomes, {"can not get eth Names"});
}

TEST_F(FailTest, OfAChangeOfTheDefaultCardEachCallAlone)
{
    const Files before = Booted(BeforeAnUpdate());
    const Texts words = {"setdef", "eth2"};
    Outcomes outcomes;
    outcomes.Allow("old default card", before);
    outcomes.Allow("new default card", Booted(before, words));
    FailEverywhere(words, before, outcomes, {"can not get eth Names", "eth2 not exist"});
}

}  // namespace
