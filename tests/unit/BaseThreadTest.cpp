// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// What threads share in discovery: the control sockets and the names once found. Run under the
// thread sanitizer too.

#include "Base.h"

#include "fake/World.h"

#include <atomic>
#include <functional>
#include <thread>

#include <linux/sockios.h>
#include <net/if.h>

using namespace fake;

namespace {

constexpr int kThreads = 8;

class BaseThreadTest : public World {
protected:
    void SetUp() override
    {
        World::SetUp();
        kernel.Add("eth0");
        kernel.Add("eth1").driver = "sim Switch drv";
        kernel.Add("vnic0").driver = "pcit virt nic";
        Put("/proc/net/dev", "eth0: 0\neth1: 0\nra0: 0\nvnic0: 0\n");
        Put("/proc/net/wireless", "ra0: 1\nra1: 0\n");
    }

    /// Runs a check in many threads at once; true when it held in all of them.
    static bool HoldsInAll(const std::function<bool(int)>& check)
    {
        std::atomic<int> held{0};
        std::atomic<int> waiting{kThreads};
        std::vector<std::thread> threads;
        for (int i = 0; i < kThreads; ++i) {
            threads.emplace_back([&, i] {
                --waiting;
                while (waiting > 0) std::this_thread::yield();
                bool all = true;
                for (int round = 0; round < 20; ++round) all = check(i) && all;
                held += all ? 1 : 0;
            });
        }
        for (std::thread& thread : threads) thread.join();
        return held == kThreads;
    }
};

TEST_F(BaseThreadTest, RequestsRaceForTheSocketAndAllSucceed)
{
    EXPECT_TRUE(HoldsInAll([](int thread) {
        ifreq request = vorlix::RequestFor("eth0");
        return thread % 2 == 0 ? NetIOCtrl(SIOCGIFINDEX, &request)
                               : NetIOCtrlv6(SIOCGIFINDEX, &request);
    }));
    EXPECT_LE(TraceOf({"socket"}).size(), static_cast<size_t>(kThreads));
    ClearTrace();
    ifreq request = vorlix::RequestFor("eth0");
    EXPECT_TRUE(NetIOCtrl(SIOCGIFINDEX, &request));
    EXPECT_TRUE(NetIOCtrlv6(SIOCGIFINDEX, &request));
    EXPECT_EQ(TraceOf({"socket"}), Texts{});
}

TEST_F(BaseThreadTest, KeptNamesAreNeverSeenInHalves)
{
    EXPECT_TRUE(HoldsInAll([](int thread) {
        switch (thread % 4) {
        case 0: return IsSwitch("eth1") && !IsSwitch("eth0");
        case 1: return NetCardIsWifi("ra0", nullptr) && NetCardIsWifi("ra1", nullptr);
        case 2: return IsVirtPcie("vnic0");
        default: {
            char name[16] = {};
            return GetSwitchInterface(name, sizeof(name)) && std::string(name) == "eth1";
        }
        }
    }));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(BaseThreadTest, ListingsDoNotDisturbEachOther)
{
    EXPECT_TRUE(HoldsInAll([](int thread) {
        const char* name = thread % 2 == 0 ? "eth0" : "eth1";
        return vorlix::CardExists(name) && isSwitchByName(name) == thread % 2;
    }));
    EXPECT_EQ(HeldMutexes(), 0);
}

}  // namespace
