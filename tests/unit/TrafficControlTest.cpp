// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "TrafficControl.h"

#include "TrafficWorld.h"

#include <cerrno>
#include <climits>

using namespace fake;

namespace {

/// The list of cards that have a root, as the search for one that has none tells it.
std::string ListOfCards()
{
    ClearLog();
    EXPECT_TRUE(TC_DeinitDev("none"));
    const LogLines log = Log();
    const std::string start = "can not find none in ";
    if (log.size() != 1 || log[0].text.compare(0, start.size(), start) != 0) return "(not told)";

    ClearLog();
    return log[0].text.substr(start.size());
}

void Init(const Texts& cards)
{
    for (const std::string& card : cards) EXPECT_TRUE(TC_InitDev(card.c_str())) << card;
    (void)NewCommands();
    ClearLog();
}

/// Lets the nth command from now find no shell.
void FailCommand(int nth)
{
    Fail("vfork", EAGAIN, nth);
}

// ---- TC_InitDev

class TC_InitDevTest : public World {};

TEST_F(TC_InitDevTest, ClearsTheOldRootAndAddsItsOwn)
{
    EXPECT_TRUE(TC_InitDev("eth0"));
    EXPECT_EQ(Commands(),
              (Texts{"/usr/local/bin/tc qdisc del dev eth0 root",
                     "/usr/local/bin/tc qdisc add dev eth0 root handle 1: htb default 10"}));
    EXPECT_EQ(Log(), LogLines{Missing("eth0", "")});
    EXPECT_EQ(ListOfCards(), ",eth0");
}

TEST_F(TC_InitDevTest, IsDoneOnceForACard)
{
    Init({"eth0"});
    EXPECT_TRUE(TC_InitDev("eth0"));
    EXPECT_EQ(NewCommands(), Texts{});
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(ListOfCards(), ",eth0");
}

TEST_F(TC_InitDevTest, CardsAreKnownByTheirWholeNames)
{
    Init({"eth10"});
    for (const char* card : {"eth1", "th10", "0", "eth"}) {
        EXPECT_TRUE(TC_InitDev(card));
        EXPECT_EQ(NewCommands(), RootCommands(card));
    }
    EXPECT_EQ(ListOfCards(), ",eth10,eth1,th10,0,eth");
}

TEST_F(TC_InitDevTest, NullIsRefusedInSilence)
{
    EXPECT_FALSE(TC_InitDev(nullptr));
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(TC_InitDevTest, ARemovalThatCouldNotBeRunIsIgnored)
{
    FailCommand(1);
    EXPECT_TRUE(TC_InitDev("eth0"));
    EXPECT_EQ(Commands(), Texts{AddRoot("eth0")});
    EXPECT_EQ(LogOf("TC_InitDev"), LogLines{CommandIgnored("TC_InitDev", RemoveRoot("eth0"))});
    EXPECT_EQ(ListOfCards(), ",eth0");
}

TEST_F(TC_InitDevTest, ARootThatCouldNotBeRunLeavesTheCardWithout)
{
    FailCommand(2);
    EXPECT_FALSE(TC_InitDev("eth0"));
    EXPECT_EQ(LogOf("TC_InitDev"), LogLines{CommandFailed("TC_InitDev", AddRoot("eth0"))});
    EXPECT_EQ(NewCommands(), Texts{RemoveRoot("eth0")});
    EXPECT_EQ(ListOfCards(), "");

    EXPECT_TRUE(TC_InitDev("eth0"));
    EXPECT_EQ(NewCommands(), RootCommands("eth0"));
}

TEST_F(TC_InitDevTest, WhatTcRefusesIsNotNoticed)
{
    OnCommand("", nullptr, kRefused);
    EXPECT_TRUE(TC_InitDev("eth0"));
    EXPECT_EQ(Log(), LogLines{Missing("eth0", "")});
    EXPECT_EQ(ListOfCards(), ",eth0");
}

TEST_F(TC_InitDevTest, TheListTakes255Characters)
{
    const std::string first(249, 'a');
    const std::string before = "," + first;  // 250 characters
    Init({first});
    for (const char* card : {"eth10", "eth123"}) {
        EXPECT_FALSE(TC_InitDev(card));
        EXPECT_EQ(Log(),
                  (LogLines{Missing(card, before),
                            Error("TC_InitDev", "too many dev has been init.[" + std::string(card) +
                                                    "," + before + "]")}));
        EXPECT_EQ(NewCommands(), Texts{});
        EXPECT_EQ(ListOfCards(), before);
    }
    EXPECT_TRUE(TC_InitDev("eth0"));
    EXPECT_EQ(NewCommands(), RootCommands("eth0"));
    EXPECT_EQ(ListOfCards(), before + ",eth0");

    EXPECT_FALSE(TC_InitDev("e"));
    EXPECT_FALSE(TC_InitDev(""));
    EXPECT_EQ(ListOfCards(), before + ",eth0");
    EXPECT_TRUE(TC_InitDev("eth0"));
    EXPECT_EQ(NewCommands(), Texts{});
}

TEST_F(TC_InitDevTest, AListBelowTheLimitStillTakesTheNext)
{
    const std::string first(249, 'a');
    Init({first});
    EXPECT_TRUE(TC_InitDev("et"));
    EXPECT_EQ(ListOfCards().size(), 253U);
    EXPECT_FALSE(TC_InitDev("e1"));
    EXPECT_TRUE(TC_InitDev("e"));
    EXPECT_EQ(ListOfCards(), "," + first + ",et,e");
}

TEST_F(TC_InitDevTest, ANameOf254CharactersIsTheLongest)
{
    const std::string longest(254, 'x');
    EXPECT_FALSE(TC_InitDev((longest + "x").c_str()));
    EXPECT_EQ(Commands(), Texts{});
    EXPECT_TRUE(TC_InitDev(longest.c_str()));
    EXPECT_EQ(ListOfCards(), "," + longest);
}

TEST_F(TC_InitDevTest, ACommandIsCutAt254Characters)
{
    const std::string name(254, 'x');
    FailCommand(2);
    EXPECT_FALSE(TC_InitDev(name.c_str()));
    EXPECT_EQ(Commands(), Texts{RemoveRoot(name).substr(0, 254)});
    EXPECT_EQ(LogOf("TC_InitDev"),
              LogLines{CommandFailed("TC_InitDev", AddRoot(name).substr(0, 254))});
}

TEST_F(TC_InitDevTest, AFailureOfAnyCallIsToldByTheResult)
{
    static bool done;
    FailEachCall([] { done = TC_InitDev("eth0"); },
                 [](const std::string&) {
                     const LogLines told = LogOf("TC_InitDev");
                     const LogLine ignored = CommandIgnored("TC_InitDev", RemoveRoot("eth0"));
                     const LogLine failed = CommandFailed("TC_InitDev", AddRoot("eth0"));
                     EXPECT_EQ(Logged(failed), !done);
                     EXPECT_EQ(told.size(), (Logged(ignored) ? 1U : 0U) + (done ? 0U : 1U));
                     EXPECT_EQ(ListOfCards(), done ? ",eth0" : "");
                 });
}

// ---- TC_DeinitDev

class TC_DeinitDevTest : public World {};

TEST_F(TC_DeinitDevTest, RemovesRootAndIngress)
{
    Init({"eth0"});
    EXPECT_TRUE(TC_DeinitDev("eth0"));
    EXPECT_EQ(NewCommands(), (Texts{"/usr/local/bin/tc qdisc del dev eth0 root",
                                    "/usr/local/bin/tc qdisc del dev eth0 ingress"}));
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(ListOfCards(), "");
}

TEST_F(TC_DeinitDevTest, ACardWithoutRootNeedsNothing)
{
    Init({"eth10"});
    EXPECT_TRUE(TC_DeinitDev("eth1"));
    EXPECT_EQ(Log(), LogLines{Missing("eth1", ",eth10")});
    EXPECT_TRUE(TC_DeinitDev(""));
    EXPECT_EQ(NewCommands(), Texts{});
    EXPECT_EQ(ListOfCards(), ",eth10");
}

TEST_F(TC_DeinitDevTest, NullIsRefusedInSilence)
{
    EXPECT_FALSE(TC_DeinitDev(nullptr));
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(TC_DeinitDevTest, TakesItsCardAloneOffTheList)
{
    Init({"eth10", "eth1", "eth0"});
    EXPECT_TRUE(TC_DeinitDev("eth1"));
    EXPECT_EQ(ListOfCards(), ",eth10,eth0");
    Init({"eth1"});
    EXPECT_TRUE(TC_DeinitDev("eth10"));
    EXPECT_EQ(ListOfCards(), ",eth0,eth1");
    EXPECT_TRUE(TC_DeinitDev("eth1"));
    EXPECT_EQ(ListOfCards(), ",eth0");
    EXPECT_TRUE(TC_DeinitDev("eth0"));
    EXPECT_EQ(ListOfCards(), "");
}

TEST_F(TC_DeinitDevTest, GivesItsPlaceInAFullListBack)
{
    const std::string first(249, 'a');
    Init({first, "eth0"});
    EXPECT_FALSE(TC_InitDev("eth1"));
    EXPECT_TRUE(TC_DeinitDev("eth0"));
    EXPECT_TRUE(TC_InitDev("eth1"));
    EXPECT_EQ(ListOfCards(), "," + first + ",eth1");
}

TEST_F(TC_DeinitDevTest, ARootThatCouldNotBeRemovedIsAFailureAllTheSame)
{
    Init({"eth0"});
    FailCommand(1);
    EXPECT_FALSE(TC_DeinitDev("eth0"));
    EXPECT_EQ(LogOf("TC_DeinitDev"), LogLines{CommandIgnored("TC_DeinitDev", RemoveRoot("eth0"))});
    EXPECT_EQ(NewCommands(), Texts{RemoveIngress("eth0")});
    EXPECT_EQ(ListOfCards(), "");
}

TEST_F(TC_DeinitDevTest, SoIsAnIngressThatCouldNotBeRemoved)
{
    Init({"eth0"});
    FailCommand(2);
    EXPECT_FALSE(TC_DeinitDev("eth0"));
    EXPECT_EQ(LogOf("TC_DeinitDev"),
              LogLines{CommandFailed("TC_DeinitDev", RemoveIngress("eth0"))});
    EXPECT_EQ(NewCommands(), Texts{RemoveRoot("eth0")});
    EXPECT_EQ(ListOfCards(), "");
}

TEST_F(TC_DeinitDevTest, BothFailuresAreTold)
{
    Init({"eth0"});
    FailAll("vfork", EAGAIN);
    EXPECT_FALSE(TC_DeinitDev("eth0"));
    EXPECT_EQ(LogOf("TC_DeinitDev"),
              (LogLines{CommandIgnored("TC_DeinitDev", RemoveRoot("eth0")),
                        CommandFailed("TC_DeinitDev", RemoveIngress("eth0"))}));
    EXPECT_EQ(ListOfCards(), "");
}

TEST_F(TC_DeinitDevTest, AnIngressThatTcDoesNotFindIsNotNoticed)
{
    Init({"eth0"});
    OnCommand(RemoveIngress("eth0"), nullptr, kRefused);
    EXPECT_TRUE(TC_DeinitDev("eth0"));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(TC_DeinitDevTest, ANameWithACommaOfItsOwnStaysInsideTheList)
{
    Init({"eth0", "eth1"});
    EXPECT_TRUE(TC_DeinitDev(",eth0"));
    EXPECT_EQ(NewCommands(), ClearCommands(",eth0"));
    EXPECT_EQ(ListOfCards(), ",eth1");
    EXPECT_TRUE(TC_DeinitDev(",eth1"));
    EXPECT_EQ(ListOfCards(), "");
}

TEST_F(TC_DeinitDevTest, AFailureOfAnyCallIsToldByTheResult)
{
    static bool done;
    FailEachCall(
        [] {
            {
                const OwnCalls preparing;
                EXPECT_TRUE(TC_InitDev("eth0"));
            }
            done = TC_DeinitDev("eth0");
        },
        [](const std::string&) {
            EXPECT_EQ(done, LogOf("TC_DeinitDev").empty());
            EXPECT_EQ(ListOfCards(), "");
        });
}

TEST_F(TC_DeinitDevTest, ANameWithACommaTakesTheCommaOfTheListWithIt)
{
    Init({"eth0", ",eth1"});
    EXPECT_EQ(ListOfCards(), ",eth0,,eth1");
    EXPECT_TRUE(TC_DeinitDev(",eth1"));
    EXPECT_EQ(ListOfCards(), ",eth0");
}

// ---- TC_SetSendBand

class TC_SetSendBandTest : public World {};

TEST_F(TC_SetSendBandTest, AddsClassFilterAndLeafBelowTheRoot)
{
    EXPECT_TRUE(TC_SetSendBand("eth0", Limit("10.0.0.2", 8)));
    EXPECT_EQ(Commands(),
              (Texts{"/usr/local/bin/tc qdisc del dev eth0 root",
                     "/usr/local/bin/tc qdisc add dev eth0 root handle 1: htb default 10",
                     "/usr/local/bin/tc class add dev eth0 parent 1: classid 1:10 htb rate 8mbit",
                     "/usr/local/bin/tc filter add dev eth0 parent 1: protocol ip u32 match ip dst "
                     "10.0.0.2 flowid 1:10",
                     "/usr/local/bin/tc qdisc add dev eth0 parent 1:10 handle 10: sfq perturb 5"}));
    EXPECT_EQ(Log(), LogLines{Missing("eth0", "")});
    EXPECT_EQ(Get(kLimits0), "(no file)");
}

TEST_F(TC_SetSendBandTest, NumbersGoOnByTenOverAllCards)
{
    const NetTc limit = Limit("10.0.0.2", 8);
    EXPECT_TRUE(TC_SetSendBand("eth0", limit));
    EXPECT_EQ(NewCommands(), Join({RootCommands("eth0"), LimitCommands("eth0", limit, 10)}));
    EXPECT_TRUE(TC_SetSendBand("eth1", limit));
    EXPECT_EQ(NewCommands(), Join({RootCommands("eth1"), LimitCommands("eth1", limit, 20)}));
    EXPECT_TRUE(TC_SetSendBand("eth0", limit));
    EXPECT_EQ(NewCommands(), LimitCommands("eth0", limit, 30));
    EXPECT_TRUE(TC_DeinitDev("eth0"));
    (void)NewCommands();
    EXPECT_TRUE(TC_SetSendBand("eth0", limit));
    EXPECT_EQ(NewCommands(), Join({RootCommands("eth0"), LimitCommands("eth0", limit, 40)}));
}

TEST_F(TC_SetSendBandTest, NumbersGoOnBeyondAThousandLimitsAndBeyond16Bits)
{
    Init({"eth0"});
    const NetTc limit = Limit("10.0.0.2", 8);
    for (int number = 10; number <= 65560; number += 10) {
        ClearTrace();
        const bool isLookedAt = (number >= 9980 && number <= 10020) || number >= 65500;
        ReadCommands(isLookedAt);
        EXPECT_TRUE(TC_SetSendBand("eth0", limit));
        if (!isLookedAt) continue;
        const Texts commands = Commands();
        EXPECT_EQ(Texts(commands.end() - 3, commands.end()), LimitCommands("eth0", limit, number));
    }
}

TEST_F(TC_SetSendBandTest, TheRateGoesOutAsItStands)
{
    int number = 10;
    for (const int rate : {0, -1, INT_MAX, INT_MIN}) {
        const NetTc limit = Limit("10.0.0.2", rate);
        EXPECT_TRUE(TC_SetSendBand("eth0", limit));
        const Texts commands = NewCommands();
        EXPECT_EQ(Texts(commands.end() - 3, commands.end()), LimitCommands("eth0", limit, number));
        number += 10;
    }
}

TEST_F(TC_SetSendBandTest, NullIsRefusedInSilence)
{
    EXPECT_FALSE(TC_SetSendBand(nullptr, Limit("10.0.0.2", 8)));
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(TC_SetSendBandTest, WithoutARootNothingIsAdded)
{
    FailCommand(2);
    EXPECT_FALSE(TC_SetSendBand("eth0", Limit("10.0.0.2", 8)));
    EXPECT_EQ(NewCommands(), Texts{RemoveRoot("eth0")});
    EXPECT_EQ(LogOf("TC_SetSendBand"), LogLines{});
}

TEST_F(TC_SetSendBandTest, ACommandThatCouldNotBeRunEndsItUnderTheSameNumber)
{
    Init({"eth0"});
    const NetTc limit = Limit("10.0.0.2", 8);
    const Texts commands = LimitCommands("eth0", limit, 10);
    for (size_t done = 0; done < commands.size(); ++done) {
        FailCommand(static_cast<int>(done) + 1);
        ClearLog();
        EXPECT_FALSE(TC_SetSendBand("eth0", limit));
        EXPECT_EQ(LogOf("TC_SetSendBand"),
                  LogLines{CommandFailed("TC_SetSendBand", commands[done])});
        const auto ran = commands.begin() + static_cast<std::ptrdiff_t>(done);
        EXPECT_EQ(NewCommands(), Texts(commands.begin(), ran));
    }
    EXPECT_TRUE(TC_SetSendBand("eth0", limit));
    EXPECT_EQ(NewCommands(), commands);
}

TEST_F(TC_SetSendBandTest, WhatTcRefusesStopsNothing)
{
    OnCommand("", nullptr, kRefused);
    const NetTc bad = Limit("not-an-address", 8);
    EXPECT_TRUE(TC_SetSendBand("eth0", bad));
    EXPECT_EQ(NewCommands(), Join({RootCommands("eth0"), LimitCommands("eth0", bad, 10)}));
    const NetTc next = Limit("10.0.0.3", 9);
    EXPECT_TRUE(TC_SetSendBand("eth0", next));
    EXPECT_EQ(NewCommands(), LimitCommands("eth0", next, 20));
    EXPECT_EQ(Log(), LogLines{Missing("eth0", "")});
}

TEST_F(TC_SetSendBandTest, AnAddressWithoutEndCountsWith47Characters)
{
    Init({"eth0"});
    EXPECT_TRUE(TC_SetSendBand("eth0", Limit(std::string(48, 'a'), 8)));
    EXPECT_EQ(NewCommands(), LimitCommands("eth0", Limit(std::string(47, 'a'), 8), 10));
}

TEST_F(TC_SetSendBandTest, AFailureOfAnyCallIsToldByTheResult)
{
    static bool done;
    FailEachCall([] { done = TC_SetSendBand("eth0", Limit("10.0.0.2", 8)); },
                 [](const std::string&) {
                     const bool rooted = !Logged(CommandFailed("TC_InitDev", AddRoot("eth0")));
                     EXPECT_EQ(done, rooted && LogOf("TC_SetSendBand").empty());
                     (void)NewCommands();
                     FailNothing();
                     const NetTc next = Limit("10.0.0.3", 9);
                     EXPECT_TRUE(TC_SetSendBand("eth0", next));
                     const Texts commands = NewCommands();
                     EXPECT_EQ(Texts(commands.end() - 3, commands.end()),
                               LimitCommands("eth0", next, done ? 20 : 10));
                 });
}

// ---- TC_SetRcvBand

class TC_SetRcvBandTest : public World {};

TEST_F(TC_SetRcvBandTest, FailsBehindARoot)
{
    EXPECT_FALSE(TC_SetRcvBand("eth0", Limit("10.0.0.2", 8, 1)));
    EXPECT_EQ(Commands(), RootCommands("eth0"));
    EXPECT_EQ(Log(), (LogLines{Missing("eth0", ""), Error("TC_SetRcvBand", "mei shixian")}));
    EXPECT_EQ(ListOfCards(), ",eth0");
}

TEST_F(TC_SetRcvBandTest, TakesNoNumber)
{
    EXPECT_FALSE(TC_SetRcvBand("eth0", Limit("10.0.0.2", 8, 1)));
    (void)NewCommands();
    const NetTc limit = Limit("10.0.0.2", 8);
    EXPECT_TRUE(TC_SetSendBand("eth0", limit));
    EXPECT_EQ(NewCommands(), LimitCommands("eth0", limit, 10));
}

TEST_F(TC_SetRcvBandTest, WithoutARootItSaysNothingMore)
{
    FailCommand(2);
    EXPECT_FALSE(TC_SetRcvBand("eth0", Limit("10.0.0.2", 8, 1)));
    EXPECT_EQ(LogOf("TC_SetRcvBand"), LogLines{});
}

TEST_F(TC_SetRcvBandTest, NullIsRefusedInSilence)
{
    EXPECT_FALSE(TC_SetRcvBand(nullptr, Limit("10.0.0.2", 8, 1)));
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Trace(), Texts{});
}

}  // namespace
