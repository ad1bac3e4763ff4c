// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// A device in use: eight threads of one application on both generations of the interface, all at
// once on the same cards and the same setting files, and the boot program beside them.
//
// What callers must keep apart is kept apart here as well:
// - limits of bandwidth: nobody sets any, since the list of limited cards has no lock;
// - the backup memory: one thread sets eth0's address and gateway and asks for the marks, and what
//   kind of memory the device has is found out before the threads start;
// - lanrise's own state: it runs as a process, never as a call of the application;
// - the count of a bridge object: one thread makes, holds and releases it;
// - a bridge, which is built and saved in many steps, and a boot, which builds what is saved: one
//   waits for the other, see `BootTime`;
// - the resolver files, which have no lock between processes, and a boot, which fills in what it
//   cannot read: likewise;
// - a value that lanrise reads and writes back later (address, gateway, flags): the application's
//   last word on it is looked for only where no lanrise runs.
//
// Nothing but the library may open a setting file while the threads run: closing any descriptor of
// a file takes the whole process's lock off it.

#include "Backup.h"
#include "Config.h"

#include "Application.h"
#include "Program.h"

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <set>
#include <sstream>
#include <thread>

#include <unistd.h>

using namespace application;
using namespace device;

namespace {

constexpr int kRunsOfLanrise = 24;  // half of them boots
constexpr int kBridgeEvery = 16;    // rounds

/// Less than ctest's own, which would end the test without a word.
constexpr auto kPatience = std::chrono::minutes(50);

// ---- a setting file, read by eye

/// The settings in a file of whole lines `KEY = value`, each key once.
Settings WholeLines(const std::string& path)
{
    static const std::set<std::string> kKeys = {
        "HOSTIP",      "SUBMASK",    "GATEWAYIP",    "PRIO",          "WORKMODE", "BONDED",
        "BONDNAME",    "BONDMODE",   "ROUTE",        "BONDPRIMARY",   "MTU",      "ACTIVE_ETH",
        "DEFAULT_ETH", "BRIDGEEDED", "BRIDGENAME",   "BRIDGEMEMBERS", "LACP",     "stp_state",
        "BRIDGES",     "SSIF",       "bridgeprefix", "BONDMEMBERS"};
    const std::string text = Get(path);
    EXPECT_TRUE(text.empty() || text.back() == '\n') << path << "\n" << text;
    Settings settings;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        const size_t middle = line.find(" = ");
        const std::string key = line.substr(0, middle);
        EXPECT_TRUE(middle != std::string::npos && kKeys.count(key) != 0) << path << "\n" << text;
        if (middle == std::string::npos) continue;
        EXPECT_TRUE(settings.emplace(key, line.substr(middle + 3)).second) << path << "\n" << text;
    }
    return settings;
}

// ---- the soak

struct Course {
    bool besideLanrise;
    bool withBridges;
};

class SoakTest : public Device {
protected:
    void SetUp() override
    {
        Device::SetUp();
        AddCardWithGateway("eth0", "10.0.0.1/24");
        for (int card = 1; card < kCards; ++card) AddCard(NameOf(card));
        for (int card = 0; card < kCards; ++card) {
            const std::string name = NameOf(card);
            const std::string number = std::to_string(card);
            Must("ip link set " + name + " up; ip addr add 10.0." + number + ".10/24 dev " + name);
            Texts lines = {"PRIO = 1",     "WORKMODE = 0",      "BONDED = 0",
                           "BONDNAME = ",  "BRIDGEEDED = 0",    "BRIDGENAME = ",
                           "ROUTE = kept", "ACTIVE_ETH = kept", "BONDPRIMARY = none",
                           "LACP = 9",     "BONDMODE = 9"};
            if (card == 0) lines.emplace_back("DEFAULT_ETH = eth0");  // with it the file is full
            Save(name, card, lines);
            Put(CardFile6(name),
                Lines({"HOSTIP = 2001:db8::" + number, "ROUTE = kept", "SUBMASK = 64",
                       "ACTIVE_ETH = kept", "GATEWAYIP = 2001:db8::ff"}));
        }
        Put(kBridgeFile, Lines({"bridgeprefix = kept", "stp_state = 0d", "BRIDGES = 0",
                                "SSIF = eth6,eth7", "ROUTE = kept"}));
        const Texts servers = {"nameserver 9.0.0.1", "nameserver 9.0.0.2",
                               "nameserver 2001:db8:1::1", "nameserver 2001:db8:1::2"};
        Put(std::string(kConfig) + "/resolv.conf", Lines(servers));
        Put(std::string(kConfig) + "/resolvip6.conf", Lines({servers[2], servers[3]}));
        CheckDeviceType();
        AwaitLinkLocal(kQuiet);  // so that its link is seen
        for (const auto& file : SavedFiles()) {
            const std::string path = std::string(kConfig) + "/" + file.first;
            if (StartsWith(file.first, "resolv")) continue;
            before_[path] = WholeLines(path);
        }
    }

    void Soak(const Course& course)
    {
        std::unique_ptr<Child> booting;
        if (course.besideLanrise) booting = std::make_unique<Child>([this] { RunLanrise(); });
        for (int i = 0; i < kThreads; ++i) {
            workers_[i] = std::make_unique<Worker>(i, objects_, bootTime_, !course.besideLanrise);
            threads_[i] = std::thread([this, i, course] { Work(*workers_[i], course); });
        }
        AwaitAll(booting == nullptr ? 0 : booting->Id());
        if (booting != nullptr) {
            EXPECT_TRUE(booting->Wait());
        }

        ExpectAllWorkDone(course);
        ExpectWholeLog();
        ExpectWholeSettings(course);
        ExpectWholeResolvers();
        ExpectWholeDhcpFile();
    }

private:
    /// Boots, and addresses for one card after the other, but not for eth0.
    void RunLanrise()
    {
        setpgid(0, 0);
        for (int run = 0; run < kRunsOfLanrise; ++run) {
            const std::string number = std::to_string(1 + run % (kShared - 1));
            Outcome outcome;
            if (run % 2 == 0) {
                const std::lock_guard<BootTime> boots(bootTime_);
                outcome = Lanrise();
            } else {
                outcome =
                    Lanrise("eth" + number + " 10.0." + number + "." + std::to_string(50 + run) +
                            " 255.255.255.0 10.0." + number + ".1");
            }
            EXPECT_EQ(outcome.status, 0);
            EXPECT_TRUE(outcome.Finished());
        }
    }

    void Work(Worker& worker, const Course& course)
    {
        ++started_;
        while (started_ < kThreads) std::this_thread::yield();
        for (int round = 0; round < kRounds; ++round) {
            DoDuty(worker, round);
            for (int i = 0; i < kVisits; ++i) MakeVisit(worker, round);
            if (course.withBridges && worker.number == 0 && round % kBridgeEvery == 0) {
                UseABridge(worker, round);
            }
        }
        worker.Now("has ended", kRounds);
        const std::lock_guard<std::mutex> guard(ending_);
        ++ended_;
        oneEnded_.notify_one();
    }

    /// Ends the test at once, with what each thread is at, when they hang.
    void AwaitAll(pid_t booting)
    {
        std::unique_lock<std::mutex> guard(ending_);
        const bool all =
            oneEnded_.wait_for(guard, kPatience, [this] { return ended_ == kThreads; });
        if (!all) {
            for (const auto& worker : workers_) fprintf(stderr, "%s\n", worker->Says().c_str());
            fprintf(stderr, "the threads hang\n");
            if (booting > 0) kill(-booting, SIGKILL);
            _exit(EXIT_FAILURE);
        }
        guard.unlock();
        for (std::thread& thread : threads_) thread.join();
    }

    void ExpectAllWorkDone(const Course& course) const
    {
        for (const auto& worker : workers_) {
            EXPECT_EQ(worker->visits, kRounds * kVisits);
            EXPECT_EQ(worker->owned.empty(), worker->number == 4 && course.besideLanrise);
        }
        for (const auto& object : objects_) EXPECT_NE(object, nullptr);
    }

    static void ExpectWholeLog()
    {
        const std::string log = output::Caught();
        const std::string end = "()\033[0m\n";
        size_t place = 0;
        while (place < log.size()) {
            const size_t behind = log.find(end, place);
            const size_t colour = log.find('\033', place + 1);
            ASSERT_TRUE(StartsWith(log.substr(place, 4), "\033[1;") &&
                        behind != std::string::npos && colour == behind + 2)
                << log.substr(place, 512);
            place = behind + end.size();
        }
    }

    /// Each key holds the last word of the thread that owns it, or what it held before.
    void ExpectWholeSettings(const Course& course) const
    {
        std::map<std::string, Settings> expected = before_;
        for (const auto& worker : workers_) {
            for (const auto& [path, settings] : worker->owned) {
                for (const auto& [key, value] : settings) expected[path][key] = value;
            }
        }
        expected[CardFile("eth0")]["PRIO"] = "0";
        for (auto& [path, settings] : expected) {
            Settings now = WholeLines(path);
            for (int card = 0; course.besideLanrise && card < kShared; ++card) {
                if (path == CardFile(NameOf(card))) LeaveOutAddress(card, &settings, &now);
            }
            EXPECT_EQ(now, settings) << path;
        }
        // The bridge's own file is gone when the last boot came behind the last bridge.
        if (CheckConfigFile("br0")) (void)WholeLines(CardFile("br0"));
    }

    /// lanrise reads and writes these too: they hold what one of the writers has written.
    static void LeaveOutAddress(int card, Settings* expected, Settings* now)
    {
        const std::string net = "10.0." + std::to_string(card) + ".";
        EXPECT_TRUE(StartsWith((*now)["HOSTIP"], net)) << (*now)["HOSTIP"];
        EXPECT_TRUE(StartsWith((*now)["GATEWAYIP"], net)) << (*now)["GATEWAYIP"];
        EXPECT_TRUE((*now)["SUBMASK"] == "255.255.255.0" || (*now)["SUBMASK"] == "255.255.0.0");
        for (const char* key : {"HOSTIP", "SUBMASK", "GATEWAYIP"}) {
            expected->erase(key);
            now->erase(key);
        }
    }

    static void ExpectWholeResolvers()
    {
        std::istringstream file(Get(std::string(kConfig) + "/resolv.conf"));
        Texts lines;
        for (std::string line; std::getline(file, line);) lines.push_back(line);
        ASSERT_EQ(lines.size(), 4U);
        EXPECT_TRUE(StartsWith(lines[0], "nameserver 9.")) << lines[0];
        EXPECT_TRUE(StartsWith(lines[2], "nameserver 2001:db8:")) << lines[2];
        ExpectOnePair(lines[0], lines[1]);
        ExpectOnePair(lines[2], lines[3]);
        EXPECT_EQ(Get(std::string(kConfig) + "/resolvip6.conf"), Lines({lines[2], lines[3]}));
    }

    /// The file of one writer: the same as when that one writes it again.
    static void ExpectWholeDhcpFile()
    {
        const std::string path = std::string(kConfig) + "/udhcpd.conf";
        const std::string text = Get(path);
        const std::string start = "10.0.5.";
        const std::string net = text.substr(text.find(start), start.size() + 1);
        ASSERT_EQ(WriteDhcpFile(net), 0);
        EXPECT_EQ(text, Get(path));
    }

    BootTime bootTime_;
    Objects objects_{};
    std::array<std::unique_ptr<Worker>, kThreads> workers_;
    std::array<std::thread, kThreads> threads_;
    std::map<std::string, Settings> before_;
    std::atomic<int> started_{0};
    std::mutex ending_;
    std::condition_variable oneEnded_;
    int ended_ = 0;
};

TEST_F(SoakTest, ThreadsOfAnApplicationLoseNothingOfEachOther)
{
    Soak({false, false});
}

TEST_F(SoakTest, NorDoTheyWithTheBootProgramBesideThem)
{
    Soak({true, false});
}

TEST_F(SoakTest, NorWithBridgesThatComeAndGo)
{
    NEEDS_TOOL("brctl");
    NEEDS_TOOL("ifconfig");
    NEEDS_LINK("br31 type bridge");
    Must("ip link del br31");
    Soak({true, true});
}

}  // namespace
