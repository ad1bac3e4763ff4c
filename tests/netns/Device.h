// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// A device for one test: cards with a cable to another machine, setting files, and a view of the
// kernel's state through iproute2, which shares no code with what is tested.
//
// Every test is a process in namespaces of its own (see enter.sh), so nothing is cleaned up.

#include "output/Output.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace device {

using Texts = std::vector<std::string>;

using output::Error;
using output::Info;
using output::LogLine;
using output::LogLines;
using output::Warn;

/// Catches standard output for the length of the test.
class Device : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;
};

/// The log since the test began.
LogLines Log();

/// What one operation logged.
LogLines LogOf(const std::string& operation);

// ---- other processes

struct Result {
    int status;  // exit status, or 128 and the signal that ended it
    std::string output;
};

/// Runs a shell command and waits for it. What it prints on both streams is the output.
Result Try(const std::string& command);

/// The same for a command that must succeed. Gives its output.
std::string Must(const std::string& command);

/// Runs the function in a child process. A check that fails in there fails the test.
class Child {
public:
    explicit Child(const std::function<void()>& run);
    ~Child() { Wait(); }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    pid_t Id() const { return id_; }

    /// Waits for it. True when it ended by itself with every check passed.
    bool Wait();

    /// Ends it at once, as a power cut would.
    void Kill();

private:
    pid_t id_;
    bool passed_ = false;
    bool reaped_ = false;
};

// ---- cards

/// Plugs in a card whose cable ends in another machine (the namespace "peer"), up at that end.
void AddCard(const std::string& name);

/// Plugs in eth0, eth1, ... `count` of them.
void AddCards(int count);

/// Plugs in a card whose cable ends in a machine of its own, which has `address` ("10.0.0.1/24")
/// and routes for nobody. The machine is the namespace "gw-<name>".
void AddCardWithGateway(const std::string& name, const std::string& address);

/// This thread as part of another machine, for the length of a scope. Sockets and files of
/// /proc/thread-self/net that are opened meanwhile stay there.
class AtMachine {
public:
    explicit AtMachine(const std::string& name);
    ~AtMachine();
    AtMachine(const AtMachine&) = delete;
    AtMachine& operator=(const AtMachine&) = delete;

private:
    int home_;
};

/// Tries to make a link of a kind that a kernel may be built without, by the words behind
/// "ip link add". False when the kernel has no such kind.
bool TryLink(const std::string& words);

/// Leaves the test as skipped, by name, where the kernel has no such kind of link.
#define NEEDS_LINK(words)                                                                          \
    do {                                                                                           \
        if (!device::TryLink(words))                                                               \
            GTEST_SKIP() << "this kernel cannot make: ip link add " words;                         \
    } while (false)

/// The same where an outside tool is not installed.
#define NEEDS_TOOL(name)                                                                           \
    do {                                                                                           \
        if (device::Try("command -v " name).status != 0) GTEST_SKIP() << "not installed: " name;   \
    } while (false)

// ---- the kernel's state, as iproute2 tells it

/// The records of `ip -j <words>`: the innermost ones, each a map of its plain fields.
std::vector<std::map<std::string, std::string>> Ip(const std::string& words);

/// The names in the order in which /proc/net/dev lists them: by age on newer kernels, by a hash of
/// the name on older ones.
Texts InKernelOrder(const Texts& names);

/// "10.0.0.2/24", in the kernel's order.
Texts Addresses(const std::string& card);

/// The same for IPv6, without link-local addresses.
Texts Addresses6(const std::string& card);

/// The link-local address of a running card, "fe80::1/64": waits until the kernel has given it one,
/// which it does as soon as it sees the link.
std::string AwaitLinkLocal(const std::string& card);

bool IsUp(const std::string& card);
std::string Mac(const std::string& card);
int Mtu(const std::string& card);

/// All flags of a card, as iproute2 prints them.
std::string Flags(const std::string& card);

/// The main table, sorted: "default via 10.0.0.1 dev eth0", "10.0.0.0/24 dev eth0".
Texts Routes();

/// The IPv6 main table, sorted, without what the kernel keeps for itself (fe80::/64, multicast).
Texts Routes6();

// ---- files

constexpr char kConfig[] = "/mnt/mtd/Config";

/// Path of a card's setting file.
std::string CardFile(const std::string& card);

void Put(const std::string& path, const std::string& text);

/// The text of a file; "(no file)" when there is none.
std::string Get(const std::string& path);

/// Text of a setting file from `KEY = value` lines.
std::string Lines(const Texts& lines);

/// The settings folder as it lies there: every name with its content.
std::map<std::string, std::string> SavedFiles();

/// Puts a file system of its own over the settings folder, of that size in bytes, and empty.
void SettingsOfSize(int bytes);

/// Makes the settings folder read-only, with what is in it.
void SettingsReadOnly();

}  // namespace device
