// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// Two refusals at once, in every pair: the one that is stated first is told, and nothing behind it
// is done, asked or said. An operation's refusals stand in their order; what it does and says when
// two of them hold must be the same as when only the first does.

#include "LanriseWorld.h"
#include "MemberNames.h"
#include "Steps.h"

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fake {

/// What an operation is called with. A refusal changes it, or the world that it is called in.
struct Call {
    std::string name = "eth0";
    bool named = true;    // false: NULL
    bool present = true;  // the name is an interface
    std::string address = "10.0.0.9";
    bool addressed = true;
    std::string mask = "255.0.0.0";
    std::string gateway = "10.0.0.1";
    Lines cards = {"eth1", "eth2"};
    int number = 1;
    uint8_t type = 0;

    const char* Name() const { return named ? name.c_str() : nullptr; }
    const char* Address() const { return addressed ? address.c_str() : nullptr; }
};

struct Refusal {
    std::string name;
    std::function<void(Call&)> apply;
};

struct Operation {
    std::string name;
    std::function<void(Call&)> prepare;  // a call that is not refused
    std::function<bool(Call&)> run;
    std::vector<Refusal> refusals;  // in the order in which they are looked at
};

inline void PrintTo(const Operation& operation, std::ostream* out)
{
    *out << operation.name;
}

/// Text that a process of its own leaves here.
inline char* Mail()
{
    constexpr size_t kSize = 1 << 20;
    static char* mail = static_cast<char*>(
        mmap(nullptr, kSize, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    return mail;
}

inline void MakeWorld()
{
    for (const char* card : {"eth0", "eth1", "eth2", "wlan0"}) {
        Card& made = kernel.Add(card);
        made.address = "10.0.0.2";
        made.mask = "255.0.0.0";
    }
    kernel.At("eth0").settings = ethtool_cmd{};
    for (const char* attribute : {"slaves", "mode", "miimon", "primary", "xmit_hash_policy"}) {
        Put("/sys/class/net/bond0/bonding/" + std::string(attribute), "");
    }
    Put(CardFile("eth0"), Settings({"HOSTIP = 10.0.0.2", "SUBMASK = 255.0.0.0",
                                    "GATEWAYIP = 10.0.0.1", "MTU = 1500"}));
}

/// What the call gives, does and says in a world of its own.
inline std::string Outcome(const Operation& operation, const std::vector<Refusal>& refusals)
{
    const ScratchCopy copy;
    char* mail = Mail();
    fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
        copy.Use();
        MakeWorld();
        Call call;
        if (operation.prepare) operation.prepare(call);
        for (const Refusal& refusal : refusals) refusal.apply(call);
        if (call.present && kernel.Find(call.name) == nullptr) kernel.Add(call.name);
        if (!call.present)
            kernel.cards.remove_if([&](const Card& c) { return c.name == call.name; });
        ClearTrace();
        const Call given = call;
        std::string text = operation.run(call) ? "true\n" : "false\n";
        for (const std::string& step : Steps()) text += step + "\n";
        text = Replaced(text, given.name, "<name>");
        text = Replaced(text, given.address, "<address>");
        for (const char* before : {":", ",", " "}) {
            text = Replaced(text, before + given.mask, before + std::string("<mask>"));
            text = Replaced(text, before + given.gateway, before + std::string("<gateway>"));
        }
        snprintf(mail, 1 << 20, "%s", text.c_str());
        fflush(nullptr);
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    Remove("/mnt/mtd/Config");
    MakeFolder("/mnt/mtd/Config");
    return mail;
}

class RefusalOrderTest : public World, public testing::WithParamInterface<Operation> {};

TEST_P(RefusalOrderTest, TheFirstOfTwoIsTold)
{
    const Operation& operation = GetParam();
    const std::vector<Refusal>& refusals = operation.refusals;
    EXPECT_EQ(Outcome(operation, {}).substr(0, 4), "true");
    std::vector<std::string> alone;
    for (const Refusal& refusal : refusals) {
        alone.push_back(Outcome(operation, {refusal}));
        EXPECT_EQ(alone.back().substr(0, 5), "false") << refusal.name;
    }
    for (size_t first = 0; first < refusals.size(); ++first) {
        for (size_t second = first + 1; second < refusals.size(); ++second) {
            EXPECT_EQ(Outcome(operation, {refusals[first], refusals[second]}), alone[first])
                << refusals[first].name << " and " << refusals[second].name;
            EXPECT_EQ(Outcome(operation, {refusals[second], refusals[first]}), alone[first])
                << refusals[second].name << " and " << refusals[first].name;
        }
    }
}

// ---- refusals that many operations share

inline const Refusal kNoName = {"no name", [](Call& call) { call.named = false; }};
inline const Refusal kNoAddress = {"no address", [](Call& call) { call.addressed = false; }};
inline const Refusal kMissing = {"no such interface", [](Call& call) { call.present = false; }};
inline const Refusal kMissingCard = {"a card of the list is missing", [](Call& call) {
                                         call.cards = {"eth1", "eth7"};
                                     }};

inline Refusal Failing(const std::string& call)
{
    return {"failing " + call, [call](Call&) { FailAll(call, EIO); }};
}

inline std::string Name(const testing::TestParamInfo<Operation>& info)
{
    return info.param.name;
}

}  // namespace fake
