// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// An application of eight threads, on both generations of the interface: each thread has a duty,
// the settings of which no other one writes, and makes visits to whatever chance picks.

#include "Net3.h"
#include "NetApi2_0.h"

#include "Device.h"

#include <array>
#include <atomic>
#include <map>
#include <random>
#include <string>

#include <pthread.h>

namespace application {

constexpr int kThreads = 8;
constexpr int kRounds = 48;  // of each thread: one duty, and the visits
constexpr int kVisits = 5;

constexpr int kCards = 8;
constexpr int kShared = 5;         // eth0 to eth4: every thread changes their settings
constexpr char kQuiet[] = "eth5";  // neither address nor flags of it change
constexpr char kBridgeFile[] = "/mnt/mtd/Config/rsbridgeinit.conf";

/// "eth<card>". The last two are there to be bridged.
std::string NameOf(int card);

/// A card's IPv6 setting file.
std::string CardFile6(const std::string& card);

bool StartsWith(const std::string& text, const std::string& start);

/// The settings of one file, by key.
using Settings = std::map<std::string, std::string>;

/// A lock that the application's threads and the process that starts lanrise share: what has to
/// wait for a boot holds it, and a boot does.
class BootTime {
public:
    BootTime();
    void lock() { pthread_mutex_lock(mutex_); }
    void unlock() { pthread_mutex_unlock(mutex_); }

private:
    pthread_mutex_t* mutex_;
};

/// The first object that any thread got of each card, which all must get.
using Objects = std::array<std::atomic<NetInterface*>, kCards>;

/// One thread.
class Worker {
public:
    /// @param alone  no lanrise runs beside the application
    Worker(int number, Objects& objects, BootTime& bootTime, bool alone);

    /// Says what comes now, for who waits for it in vain.
    void Now(const char* what, int round);
    std::string Says() const;

    int Pick(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }

    /// The one object of a card, found or made.
    NetInterface* Object(const std::string& card);

    /// Notes a value that this thread alone writes, and looks whether it is there.
    void Owns(const std::string& path, const std::string& key, const std::string& value);

    BootTime& bootTime;
    const bool alone;
    const int number;
    int visits = 0;
    std::map<std::string, Settings> owned;  // the last values, by file

private:
    Objects& objects_;
    std::mt19937 random_;
    std::atomic<const char*> what_{"waits for the others"};
    std::atomic<int> round_{0};
};

/// What this thread does each round.
void DoDuty(Worker& worker, int round);

/// What anybody may do at any time.
void MakeVisit(Worker& worker, int round);

/// Makes a bridge of the last two cards, and ends it with its object. For one thread.
void UseABridge(Worker& worker, int round);

/// The two servers of one writer: the same but for "1" and "2" at their ends.
void ExpectOnePair(std::string primary, std::string secondary);

/// Writes the file of the DHCP server. `net` is "10.0.5." and the digit of the thread.
int WriteDhcpFile(const std::string& net);

}  // namespace application
