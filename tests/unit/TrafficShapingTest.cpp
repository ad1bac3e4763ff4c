// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "CommonApi.h"
#include "TrafficControl.h"

#include "TrafficWorld.h"

#include <cerrno>

using namespace fake;

namespace {

const NetTc kFirst = Limit("10.0.0.2", 8);
const NetTc kSecond = Limit("10.0.0.3", 9);
const NetTc kThird = Limit("10.0.0.4", 10);
const NetTc kReceive = Limit("10.0.0.5", 11, 1);

LogLine NotSet(const std::string& operation, const std::string& direction, const NetTc& limit)
{
    return Error(operation, "set " + direction + " band faild.dev eth0,ip " +
                                std::string(limit.ipAddr) + ",band " +
                                std::to_string(limit.bandWidth));
}

std::string Saved(const std::vector<NetTc>& limits)
{
    std::string text;
    for (const NetTc& limit : limits) text += Line("eth0", limit);
    return text;
}

/// A device with the cards eth0 and eth1.
class ShapingWorld : public World {
protected:
    void SetUp() override
    {
        World::SetUp();
        kernel.Add("eth0");
        kernel.Add("eth1");
    }

    static bool Set(const std::vector<NetTc>& limits)
    {
        return TrafCtrlSetBand("eth0", limits.data(), static_cast<int>(limits.size()));
    }

    static Texts Listed()
    {
        NetTc limits[40] = {};
        int count = 40;
        if (!TrafCtrlGetBand("eth0", limits, &count)) return {"(failed)"};

        Texts texts;
        for (int i = 0; i < count; ++i) texts.push_back(TextOf(limits[i]));
        return texts;
    }

    /// Sets limits as an earlier call did.
    static void Prepare(const std::vector<NetTc>& limits)
    {
        EXPECT_TRUE(Set(limits));
        (void)NewCommands();
        ClearLog();
        ClearTrace();
    }

    static void ExpectUntouched()
    {
        EXPECT_EQ(Commands(), Texts{});
        EXPECT_EQ(TraceOf({"fopen", "vfork"}), Texts{});
    }
};

// ---- TrafCtrlSetBand

class TrafCtrlSetBandTest : public ShapingWorld {};

TEST_F(TrafCtrlSetBandTest, AppliesEachLimitInOrderAndSavesIt)
{
    EXPECT_TRUE(Set({kFirst, kSecond}));
    EXPECT_EQ(Commands(), Join({RootCommands("eth0"), LimitCommands("eth0", kFirst, 10),
                                LimitCommands("eth0", kSecond, 20)}));
    EXPECT_EQ(Get(kLimits0), Saved({kFirst, kSecond}));
    EXPECT_EQ(Log(), LogLines{Missing("eth0", "")});
}

TEST_F(TrafCtrlSetBandTest, SavesALimitBeforeTheNextIsApplied)
{
    OnCall("command " + LimitCommands("eth0", kSecond, 20)[0],
           [] { EXPECT_EQ(Get(kLimits0), Saved({kFirst})); });
    EXPECT_TRUE(Set({kFirst, kSecond}));
    EXPECT_EQ(TraceOf({"fopen"}), Texts(2, std::string("fopen ") + kLimits0 + " a"));
}

TEST_F(TrafCtrlSetBandTest, AddsToTheLimitsOfEarlierCalls)
{
    Prepare({kFirst});
    EXPECT_TRUE(Set({kFirst}));
    EXPECT_EQ(NewCommands(), LimitCommands("eth0", kFirst, 20));
    EXPECT_EQ(Get(kLimits0), Saved({kFirst, kFirst}));
}

TEST_F(TrafCtrlSetBandTest, AReceiveLimitFailsAndTheOthersAreSet)
{
    EXPECT_FALSE(Set({kFirst, kReceive, kSecond}));
    EXPECT_EQ(Commands(), Join({RootCommands("eth0"), LimitCommands("eth0", kFirst, 10),
                                LimitCommands("eth0", kSecond, 20)}));
    EXPECT_EQ(Get(kLimits0), Saved({kFirst, kSecond}));
    EXPECT_EQ(Log(), (LogLines{Missing("eth0", ""), Error("TC_SetRcvBand", "mei shixian"),
                               NotSet("TrafCtrlSetBand", "rcv", kReceive)}));
}

TEST_F(TrafCtrlSetBandTest, AReceiveLimitAloneLeavesARoot)
{
    for (const int flags : {1, -1, 2}) {
        ClearLog();
        const NetTc limit = Limit("10.0.0.5", 11, flags);
        EXPECT_FALSE(Set({limit}));
        EXPECT_EQ(NewCommands(), flags == 1 ? RootCommands("eth0") : Texts{});
        EXPECT_TRUE(Logged(NotSet("TrafCtrlSetBand", "rcv", limit)));
    }
    EXPECT_FALSE(Exists(kLimits0));
}

TEST_F(TrafCtrlSetBandTest, ALimitThatCouldNotBeAppliedIsNotSaved)
{
    Prepare({kFirst});
    Fail("vfork", EAGAIN, 2);
    EXPECT_FALSE(Set({kSecond, kThird}));
    const Texts second = LimitCommands("eth0", kSecond, 20);
    EXPECT_EQ(NewCommands(), Join({{second[0]}, LimitCommands("eth0", kThird, 20)}));
    EXPECT_EQ(Get(kLimits0), Saved({kFirst, kThird}));
    EXPECT_EQ(LogOf("TrafCtrlSetBand"), LogLines{NotSet("TrafCtrlSetBand", "send", kSecond)});
    EXPECT_EQ(LogOf("TC_SetSendBand"), LogLines{CommandFailed("TC_SetSendBand", second[1])});
}

TEST_F(TrafCtrlSetBandTest, WithoutAShellEachLimitIsTold)
{
    FailAll("vfork", EAGAIN);
    EXPECT_FALSE(Set({kFirst, kReceive, kSecond}));
    EXPECT_EQ(LogOf("TrafCtrlSetBand"), (LogLines{NotSet("TrafCtrlSetBand", "send", kFirst),
                                                  NotSet("TrafCtrlSetBand", "rcv", kReceive),
                                                  NotSet("TrafCtrlSetBand", "send", kSecond)}));
    EXPECT_FALSE(Exists(kLimits0));
}

TEST_F(TrafCtrlSetBandTest, WhatTcRefusesIsSavedAndTakesItsNumber)
{
    OnCommand("", nullptr, kRefused);
    const NetTc bad = Limit("nowhere", 8);
    EXPECT_TRUE(Set({bad, kFirst}));
    EXPECT_EQ(Commands(), Join({RootCommands("eth0"), LimitCommands("eth0", bad, 10),
                                LimitCommands("eth0", kFirst, 20)}));
    EXPECT_EQ(Get(kLimits0), Saved({bad, kFirst}));
}

TEST_F(TrafCtrlSetBandTest, AFileThatCannotBeWrittenChangesNoResult)
{
    FailAll("fopen", EROFS);
    EXPECT_TRUE(Set({kFirst, kSecond}));
    EXPECT_EQ(Commands().size(), 8U);
    EXPECT_EQ(LogOf("TC_SaveToConfig").size(), 2U);
    EXPECT_FALSE(Exists(kLimits0));
}

TEST_F(TrafCtrlSetBandTest, AnAddressWithoutEndIsToldWith47Characters)
{
    const std::string full(48, 'a');
    EXPECT_FALSE(Set({Limit(full, 8, 1)}));
    EXPECT_EQ(LogOf("TrafCtrlSetBand"),
              LogLines{NotSet("TrafCtrlSetBand", "rcv", Limit(full.substr(1), 8))});
    EXPECT_TRUE(Set({Limit(full, 8)}));
    EXPECT_EQ(Get(kLimits0), Saved({Limit(full.substr(1), 8)}));
}

TEST_F(TrafCtrlSetBandTest, AnyNumberOfRecordsIsSet)
{
    const std::vector<NetTc> limits(40, kFirst);
    EXPECT_TRUE(Set(limits));
    EXPECT_EQ(Get(kLimits0), Saved(limits));
}

TEST_F(TrafCtrlSetBandTest, NoRecordsAreNoFailure)
{
    EXPECT_TRUE(TrafCtrlSetBand("eth0", &kFirst, 0));
    EXPECT_TRUE(TrafCtrlSetBand("eth0", &kFirst, -1));
    EXPECT_EQ(Log(), LogLines{});
    ExpectUntouched();
}

TEST_F(TrafCtrlSetBandTest, ACardThatIsNotThereIsRefused)
{
    EXPECT_FALSE(TrafCtrlSetBand("eth9", &kFirst, 1));
    EXPECT_EQ(LogOf("CheckEthExist").size(), 1U);
    ExpectUntouched();
}

TEST_F(TrafCtrlSetBandTest, NullIsRefusedInSilence)
{
    EXPECT_FALSE(TrafCtrlSetBand(nullptr, &kFirst, 1));
    EXPECT_FALSE(TrafCtrlSetBand("eth0", nullptr, 1));
    EXPECT_FALSE(TrafCtrlSetBand("eth0", nullptr, 0));
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(TrafCtrlSetBandTest, AFailureOfAnyCallIsToldByTheResult)
{
    static bool done;
    FailEachCall([] { done = Set({kFirst}); },
                 [](const std::string& failed) {
                     const bool file = failed.find(kLimits0) != std::string::npos;
                     const bool listed =
                         LogOf("CheckEthExist").empty() && LogOf("GetAllInterfaceInfo").empty();
                     const bool applied = LogOf("TrafCtrlSetBand").empty();
                     EXPECT_EQ(done, listed && applied);
                     EXPECT_TRUE(file || Exists(kLimits0) == done);
                     if (Exists(kLimits0) && LogOf("TC_SaveToConfig").empty()) {
                         EXPECT_EQ(Get(kLimits0), Saved({kFirst}));
                     }
                 });
}

// ---- TrafCtrlGetBand

class TrafCtrlGetBandTest : public ShapingWorld {};

TEST_F(TrafCtrlGetBandTest, ListsTheSavedLimits)
{
    Prepare({kFirst, kSecond});
    EXPECT_EQ(Listed(), (Texts{"10.0.0.2 4 8 0", "10.0.0.3 4 9 0"}));
    NetTc limit{};
    int count = 1;
    EXPECT_TRUE(TrafCtrlGetBand("eth0", &limit, &count));
    EXPECT_EQ(count, 1);
    EXPECT_EQ(TextOf(limit), "10.0.0.2 4 8 0");
    EXPECT_EQ(NewCommands(), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(TrafCtrlGetBandTest, ACardWithoutLimitsHasNoFile)
{
    NetTc limit{};
    int count = 1;
    EXPECT_FALSE(TrafCtrlGetBand("eth1", &limit, &count));
    EXPECT_EQ(count, 1);
    EXPECT_EQ(Log(),
              LogLines{Error("TC_GetFromConfig", "cannot fopen eth1.[No such file or directory]")});
}

TEST_F(TrafCtrlGetBandTest, ACardThatIsNotThereIsRefusedWithItsFile)
{
    Put("/mnt/mtd/Config/nettc_eth9", Line("eth9", kFirst));
    NetTc limit{};
    int count = 1;
    EXPECT_FALSE(TrafCtrlGetBand("eth9", &limit, &count));
    EXPECT_EQ(count, 1);
    EXPECT_EQ(TraceOf({"fopen"}), Texts{});
}

TEST_F(TrafCtrlGetBandTest, NullIsRefusedInSilence)
{
    NetTc limit{};
    int count = 1;
    EXPECT_FALSE(TrafCtrlGetBand(nullptr, &limit, &count));
    EXPECT_FALSE(TrafCtrlGetBand("eth0", nullptr, &count));
    EXPECT_FALSE(TrafCtrlGetBand("eth0", &limit, nullptr));
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Trace(), Texts{});
}

// ---- TrafCtrlUnSetBand

class TrafCtrlUnSetBandTest : public ShapingWorld {};

TEST_F(TrafCtrlUnSetBandTest, BuildsTheSetAgainWithoutThePeer)
{
    Prepare({kFirst, kSecond, kThird});
    EXPECT_TRUE(TrafCtrlUnSetBand("eth0", "10.0.0.3"));
    EXPECT_EQ(NewCommands(),
              Join({ClearCommands("eth0"), RootCommands("eth0"), LimitCommands("eth0", kFirst, 40),
                    LimitCommands("eth0", kThird, 50)}));
    EXPECT_EQ(Get(kLimits0), Saved({kFirst, kThird}));
    EXPECT_EQ(Log(), LogLines{Missing("eth0", "")});
}

TEST_F(TrafCtrlUnSetBandTest, ReadsThenClearsThenAppliesAndSavesOneByOne)
{
    Prepare({kFirst, kSecond});
    const std::string file = std::string("fopen ") + kLimits0;
    EXPECT_TRUE(TrafCtrlUnSetBand("eth0", "10.0.0.3"));
    const auto command = [](const std::string& text) { return "command " + text; };
    const Texts limit = LimitCommands("eth0", kFirst, 30);
    EXPECT_EQ(TraceOf({"fopen", "command"}),
              (Texts{file + " r", command(RemoveRoot("eth0")), command(RemoveIngress("eth0")),
                     file + " w+", command(RemoveRoot("eth0")), command(AddRoot("eth0")),
                     command(limit[0]), command(limit[1]), command(limit[2]), file + " a"}));
}

TEST_F(TrafCtrlUnSetBandTest, EveryLimitOfThePeerGoes)
{
    Prepare({kFirst, kSecond, kFirst});
    EXPECT_TRUE(TrafCtrlUnSetBand("eth0", "10.0.0.2"));
    EXPECT_EQ(Get(kLimits0), Saved({kSecond}));
}

TEST_F(TrafCtrlUnSetBandTest, ThePeerIsComparedAsText)
{
    Prepare({kFirst, Limit("10.0.0.20", 8)});
    for (const char* address : {"10.0.0", "10.0.0.02", "10.0.0.2 ", "", "0.0.0.00"}) {
        (void)NewCommands();
        EXPECT_TRUE(TrafCtrlUnSetBand("eth0", address));
        EXPECT_EQ(NewCommands().size(), 10U) << address;
        EXPECT_EQ(Listed(), (Texts{"10.0.0.2 4 8 0", "10.0.0.20 4 8 0"})) << address;
    }
}

TEST_F(TrafCtrlUnSetBandTest, TheLastPeersRemovalLeavesNoRoot)
{
    Prepare({kFirst});
    EXPECT_TRUE(TrafCtrlUnSetBand("eth0", "10.0.0.2"));
    EXPECT_EQ(NewCommands(), ClearCommands("eth0"));
    EXPECT_EQ(Get(kLimits0), "");
    EXPECT_EQ(Listed(), Texts{});
}

TEST_F(TrafCtrlUnSetBandTest, OtherCardsKeepTheirs)
{
    Prepare({kFirst});
    EXPECT_TRUE(TrafCtrlSetBand("eth1", &kFirst, 1));
    (void)NewCommands();
    EXPECT_TRUE(TrafCtrlUnSetBand("eth0", "0.0.0.0"));
    EXPECT_EQ(NewCommands(), ClearCommands("eth0"));
    EXPECT_EQ(Get("/mnt/mtd/Config/nettc_eth1"), Line("eth1", kFirst));
    EXPECT_TRUE(TrafCtrlSetBand("eth1", &kSecond, 1));
    EXPECT_EQ(NewCommands(), LimitCommands("eth1", kSecond, 30));
}

TEST_F(TrafCtrlUnSetBandTest, AllPeersAreRemovedAtOnce)
{
    Prepare({kFirst, kSecond});
    EXPECT_TRUE(TrafCtrlUnSetBand("eth0", "0.0.0.0"));
    EXPECT_EQ(NewCommands(), ClearCommands("eth0"));
    EXPECT_EQ(Get(kLimits0), "");
    EXPECT_EQ(TraceOf({"fopen"}), Texts{std::string("fopen ") + kLimits0 + " w+"});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(TrafCtrlUnSetBandTest, AllPeersAreRemovedWhateverFails)
{
    Prepare({kFirst});
    FailAll("vfork", EAGAIN);
    FailAll("fopen", EROFS);
    EXPECT_TRUE(TrafCtrlUnSetBand("eth0", "0.0.0.0"));
    EXPECT_EQ(LogOf("TC_DeinitDev").size(), 2U);
    EXPECT_EQ(LogOf("TC_DelConfig").size(), 1U);
    EXPECT_EQ(Get(kLimits0), Saved({kFirst}));
}

TEST_F(TrafCtrlUnSetBandTest, AllPeersOfACardWithoutLimitsNeedAnEmptyFile)
{
    EXPECT_TRUE(TrafCtrlUnSetBand("eth0", "0.0.0.0"));
    EXPECT_EQ(Commands(), Texts{});
    EXPECT_EQ(Get(kLimits0), "");
}

TEST_F(TrafCtrlUnSetBandTest, ACardWithoutAFileGets32LimitsWithoutAnAddress)
{
    EXPECT_TRUE(TrafCtrlUnSetBand("eth0", "10.0.0.2"));
    const NetTc blank{};
    Texts commands = RootCommands("eth0");
    std::string file;
    for (int i = 1; i <= 32; ++i) {
        commands = Join({commands, LimitCommands("eth0", blank, 10 * i)});
        file += "dev            eth0, ip                                                , "
                "type        0, bw        0, flag        0,\n";
    }
    EXPECT_EQ(NewCommands(), commands);
    EXPECT_EQ(Get(kLimits0), file);
    EXPECT_EQ(Log(),
              (LogLines{Error("TC_GetFromConfig", "cannot fopen eth0.[No such file or directory]"),
                        Missing("eth0", ""), Missing("eth0", "")}));
    EXPECT_EQ(Listed(), Texts{});

    EXPECT_TRUE(Set({kFirst}));
    EXPECT_EQ(NewCommands(), LimitCommands("eth0", kFirst, 330));
    EXPECT_EQ(Listed(), Texts{"10.0.0.2 4 8 0"});
}

TEST_F(TrafCtrlUnSetBandTest, WithoutAFileTheEmptyAddressMatchesThemAll)
{
    EXPECT_TRUE(TrafCtrlUnSetBand("eth0", ""));
    EXPECT_EQ(Commands(), Texts{});
    EXPECT_EQ(Get(kLimits0), "");
}

TEST_F(TrafCtrlUnSetBandTest, LinesBehindTheThirtySecondLimitAreLost)
{
    std::vector<NetTc> limits;
    for (int i = 1; i <= 33; ++i) limits.push_back(Limit("10.0.0." + std::to_string(i), i));
    Put(kLimits0, "# by hand\n" + Saved(limits));
    EXPECT_TRUE(TrafCtrlUnSetBand("eth0", "10.0.0.33"));
    limits.pop_back();
    EXPECT_EQ(Get(kLimits0), Saved(limits));
    EXPECT_TRUE(TrafCtrlUnSetBand("eth0", "10.0.0.1"));
    limits.erase(limits.begin());
    EXPECT_EQ(Get(kLimits0), Saved(limits));
}

TEST_F(TrafCtrlUnSetBandTest, ANewProcessReplacesTheRootOfTheOneBefore)
{
    Put(kLimits0, Saved({kFirst, kSecond}));
    EXPECT_TRUE(TrafCtrlUnSetBand("eth0", "10.0.0.2"));
    EXPECT_EQ(Commands(), Join({RootCommands("eth0"), LimitCommands("eth0", kSecond, 10)}));
    EXPECT_EQ(Get(kLimits0), Saved({kSecond}));
    EXPECT_EQ(Log(), LogLines(2, Missing("eth0", "")));
}

TEST_F(TrafCtrlUnSetBandTest, ALimitThatCouldNotBeAppliedAgainIsLost)
{
    Prepare({kFirst, kSecond, kThird});
    Fail("vfork", EAGAIN, 5);  // behind the clearing and the new root
    EXPECT_TRUE(TrafCtrlUnSetBand("eth0", "10.0.0.3"));
    EXPECT_EQ(NewCommands(), Join({ClearCommands("eth0"), RootCommands("eth0"),
                                   LimitCommands("eth0", kThird, 40)}));
    EXPECT_EQ(Get(kLimits0), Saved({kThird}));
    EXPECT_EQ(LogOf("TrafCtrlUnSetBand"), LogLines{NotSet("TrafCtrlUnSetBand", "send", kFirst)});
}

TEST_F(TrafCtrlUnSetBandTest, AClearingThatFailedDoesNotEndTheRebuild)
{
    Prepare({kFirst, kSecond});
    Fail("vfork", EAGAIN, 1);
    Fail(std::string("fopen ") + kLimits0 + " w+", EROFS);
    EXPECT_TRUE(TrafCtrlUnSetBand("eth0", "10.0.0.3"));
    EXPECT_EQ(
        NewCommands(),
        Join({{RemoveIngress("eth0")}, RootCommands("eth0"), LimitCommands("eth0", kFirst, 30)}));
    EXPECT_EQ(Get(kLimits0), Saved({kFirst, kSecond, kFirst}));
}

TEST_F(TrafCtrlUnSetBandTest, AReceiveLimitFromAHandEditedFileIsLost)
{
    Put(kLimits0, Saved({kReceive, kFirst}));
    EXPECT_TRUE(TrafCtrlUnSetBand("eth0", "10.0.0.9"));
    EXPECT_EQ(Get(kLimits0), Saved({kFirst}));
    EXPECT_EQ(LogOf("TC_SetRcvBand"), LogLines{Error("TC_SetRcvBand", "mei shixian")});
    EXPECT_EQ(LogOf("TrafCtrlUnSetBand"), LogLines{NotSet("TrafCtrlUnSetBand", "rcv", kReceive)});
}

TEST_F(TrafCtrlUnSetBandTest, HandEditedLinesAreSavedInTheirOwnForm)
{
    Put(kLimits0, "dev x, ip 10.0.0.2, type 4, bw 8, flag 0\r\n\r\ndev eth0, ip 10.0.0.3, type 4");
    EXPECT_TRUE(TrafCtrlUnSetBand("eth0", "10.0.0.9"));
    EXPECT_EQ(Get(kLimits0), Saved({kFirst}));
}

TEST_F(TrafCtrlUnSetBandTest, ACardThatIsNotThereIsRefused)
{
    EXPECT_FALSE(TrafCtrlUnSetBand("eth9", "10.0.0.2"));
    EXPECT_FALSE(TrafCtrlUnSetBand("eth9", "0.0.0.0"));
    EXPECT_EQ(LogOf("CheckEthExist").size(), 2U);
    ExpectUntouched();
}

TEST_F(TrafCtrlUnSetBandTest, NullIsRefusedInSilence)
{
    EXPECT_FALSE(TrafCtrlUnSetBand(nullptr, "0.0.0.0"));
    EXPECT_FALSE(TrafCtrlUnSetBand("eth0", nullptr));
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(TrafCtrlUnSetBandTest, AFailureOfAnyCallLeavesLinesThatCanBeRead)
{
    Put(kLimits0, Saved({kFirst, kSecond}));
    static bool done;
    FailEachCall([] { done = TrafCtrlUnSetBand("eth0", "10.0.0.2"); },
                 [](const std::string& failed) {
                     const bool listed =
                         LogOf("CheckEthExist").empty() && LogOf("GetAllInterfaceInfo").empty();
                     EXPECT_EQ(done, listed);
                     if (failed.find(kLimits0) != std::string::npos) return;

                     const bool applied = LogOf("TrafCtrlUnSetBand").empty();
                     EXPECT_EQ(Get(kLimits0), !done     ? Saved({kFirst, kSecond})
                                              : applied ? Saved({kSecond})
                                                        : "");
                 });
}

}  // namespace
