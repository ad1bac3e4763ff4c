// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "CommonApi.h"

#include "BridgeWorld.h"

#include <functional>

using namespace fake;

namespace {

// ---- what all operations on an existing bridge share

class ExistingBridgeTest : public BridgeWorld {};

TEST_F(ExistingBridgeTest, ABridgeThatDoesNotExistIsRefused)
{
    Table table;
    int count = 32;
    STPInfo info{1, 0, {}};
    const char* ports[] = {"eth1"};
    const std::function<bool()> operations[] = {
        [] { return BridgeCheckExist("br9"); },
        [] { return UnBridge("br9"); },
        [] { return UnBridgeByInterNic("br9"); },
        [&] { return GetBridgeMenbers("br9", table.pointers, &count); },
        [] { return BridgeAddEdgePort("br9", "eth1"); },
        [] { return BridgeDelEdgePort("br9", "eth1"); },
        [] { return BridgeIsEdgePort("br9", "eth1"); },
        [&] { return BridgeControl("br9", &info); },
        [&] { return BridgeGetStpInfo("br9", &info); },
        [&] { return BridgeUpdatePortListByConfig("br9", ports, 1); },
        [] { return BridgeUpdateBrIDByConfig("br9"); },
    };
    for (const auto& operation : operations) {
        SCOPED_TRACE(&operation - operations);
        ClearLog();
        EXPECT_FALSE(operation());
        EXPECT_EQ(Log(), LogLines{NoBridge("br9")});
    }
    EXPECT_EQ(TraceOf({"open /mnt"}), Lines{});
    ExpectUntouched();
}

TEST_F(ExistingBridgeTest, NullIsRefusedInSilence)
{
    Run();
    Table table;
    int count = 32;
    STPInfo info{1, 0, {}};
    const char* ports[] = {"eth1"};
    EXPECT_FALSE(BridgeCheckExist(nullptr));
    EXPECT_FALSE(UnBridge(nullptr));
    EXPECT_FALSE(UnBridgeByInterNic(nullptr));
    EXPECT_FALSE(GetBridgeMenbers(nullptr, table.pointers, &count));
    EXPECT_FALSE(GetBridgeMenbers(kBridge, nullptr, &count));
    EXPECT_FALSE(GetBridgeMenbers(kBridge, table.pointers, nullptr));
    table.pointers[1] = nullptr;
    EXPECT_FALSE(GetBridgeMenbers(kBridge, table.pointers, &count));
    EXPECT_EQ(table.names[0][0], '#');
    EXPECT_FALSE(BridgeAddEdgePort(nullptr, "eth1"));
    EXPECT_FALSE(BridgeAddEdgePort(kBridge, nullptr));
    EXPECT_FALSE(BridgeDelEdgePort(nullptr, "eth1"));
    EXPECT_FALSE(BridgeDelEdgePort(kBridge, nullptr));
    EXPECT_FALSE(BridgeIsEdgePort(nullptr, "eth1"));
    EXPECT_FALSE(BridgeIsEdgePort(kBridge, nullptr));
    EXPECT_FALSE(BridgeControl(nullptr, &info));
    EXPECT_FALSE(BridgeControl(kBridge, nullptr));
    EXPECT_FALSE(BridgeGetStpInfo(nullptr, &info));
    EXPECT_FALSE(BridgeGetStpInfo(kBridge, nullptr));
    EXPECT_FALSE(BridgeUpdatePortListByConfig(nullptr, ports, 1));
    EXPECT_FALSE(BridgeUpdatePortListByConfig(kBridge, nullptr, 1));
    EXPECT_FALSE(BridgeUpdateBrIDByConfig(nullptr));
    EXPECT_FALSE(Bridge(nullptr, cards.Get(), 2));
    EXPECT_FALSE(Bridge(kBridge, nullptr, 2));
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(TraceOf({"open", "stat"}), Lines{});
    ExpectUntouched();
}

TEST_F(ExistingBridgeTest, IsFoundAndItsMembersAreListed)
{
    Run();
    Put(PortsOf(kBridge) + "eth0", "");
    EXPECT_TRUE(BridgeCheckExist(kBridge));
    Table table;
    int count = 32;
    EXPECT_TRUE(GetBridgeMenbers(kBridge, table.pointers, &count));
    EXPECT_EQ(count, 2);
    count = 1;
    EXPECT_TRUE(GetBridgeMenbers(kBridge, table.pointers, &count));
    EXPECT_EQ(count, 1);
    EXPECT_EQ(Log(), LogLines{});
}

// ---- Bridge

class BridgeTest : public BridgeWorld {};

const Lines kBuilding = {"brctl addbr br0",
                         "brctl addif br0 eth1",
                         "ifconfig br0 hw ether 02:00:00:00:00:11",
                         "brctl addif br0 eth0",
                         "ifconfig eth1 down",
                         "ifconfig eth0 down",
                         "ifconfig eth1 0.0.0.0 up",
                         "ifconfig eth0 0.0.0.0 up",
                         "ifconfig br0 up"};

TEST_F(BridgeTest, BuildsThenSavesTheBridgeThenMembersThenRecoversIt)
{
    OnCall(kWritesBridge, [] { EXPECT_EQ(Commands(), kBuilding); });
    EXPECT_TRUE(Bridge(kBridge, cards.Get(), 2));
    EXPECT_EQ(Commands(), kBuilding);
    EXPECT_EQ(Changes(),
              (Lines{kWritesBridge, kWrites1, kWrites1, kWrites1, kWrites0, kWrites0, kWrites0,
                     "ioctl SIOCSIFFLAGS br0", "ioctl SIOCSIFADDR br0", "ioctl SIOCSIFNETMASK br0",
                     kWritesBridge, kWritesBridge, kWritesBridge, "ioctl SIOCSIFMTU br0"}));
    EXPECT_EQ(kernel.At(kBridge).address, "10.2.0.2");
    EXPECT_EQ(kernel.At(kBridge).mtu, 1400);
    EXPECT_EQ(LogOf("Bridge_Bridge").size(), kBuilding.size());
    EXPECT_EQ(Log().size(), kBuilding.size());
}

TEST_F(BridgeTest, SavesMembershipBesideTheCardsOwnSettings)
{
    const Lines before = {Get(kFile0), Get(kFile1)};
    EXPECT_TRUE(Bridge(kBridge, cards.Get(), 2));
    const std::string membership = "BRIDGEEDED = 1\nBRIDGENAME = br0\nWORKMODE = 3\n";
    EXPECT_EQ(Get(kFile0), before[0] + membership);
    EXPECT_EQ(Get(kFile1), before[1] + membership);
    EXPECT_EQ(Get(kBridgeFile), Settings(kOwnSettings) + "BRIDGEMEMBERS = eth1,eth0\n");
    EXPECT_FALSE(Exists(kTreeFile));
}

TEST_F(BridgeTest, TheNameBeginsWithBrAndADigit)
{
    for (const std::string name :
         {"br", "bra", "br:", "br/", "xbr0", "xx0br", "b0", "BR0", "", "br-0", "bond0"}) {
        Begin();
        EXPECT_FALSE(Bridge(name.c_str(), cards.Get(), 2)) << name;
        EXPECT_EQ(Log(), (LogLines{Error("Bridge", "Bridge name error.[" + name + "]")}));
    }
    ExpectUntouched();
    for (const char* name : {"br0", "br1x", "br9-anything"}) {
        EXPECT_TRUE(Bridge(name, cards.Get(), 2)) << name;
    }
}

TEST_F(BridgeTest, TheNameIsLookedAtBeforeTheCards)
{
    Members unknown({"eth0", "eth7"});
    EXPECT_FALSE(Bridge("bra", unknown.Get(), 2));
    EXPECT_EQ(Log(), (LogLines{Error("Bridge", "Bridge name error.[bra]")}));
}

TEST_F(BridgeTest, ANullAmongTheCardsIsRefusedBeforeAnythingIsDone)
{
    for (const int place : {0, 1, 2}) {
        Members listed({"eth1", "eth0", "br7"});  // the last is taken as it is
        listed.Get()[place] = nullptr;
        EXPECT_FALSE(Bridge(kBridge, listed.Get(), 3)) << place;
    }
    EXPECT_EQ(LogOf("Bridge"), LogLines{});
    ExpectUntouched();
}

TEST_F(BridgeTest, EachMemberMustExist)
{
    Members unknown({"eth0", "eth7"});
    EXPECT_FALSE(Bridge(kBridge, unknown.Get(), 2));
    EXPECT_EQ(Log().back(), Error("CheckEthExist", "can not find eth7 in eth0,eth1,wlan0,."));
    Members none({"eth0", "eth1"});
    none.Get()[1] = nullptr;
    EXPECT_FALSE(Bridge(kBridge, none.Get(), 2));
    ExpectUntouched();
}

TEST_F(BridgeTest, AFailedBuildingSavesAndRecoversNothing)
{
    const Lines before = {Get(kFile0), Get(kFile1), Get(kBridgeFile)};
    Fail("vfork", EAGAIN, 9);
    EXPECT_FALSE(Bridge(kBridge, cards.Get(), 2));
    EXPECT_EQ(Log().back(), Error("Bridge", "Bridge failed.[br0]"));
    EXPECT_EQ((Lines{Get(kFile0), Get(kFile1), Get(kBridgeFile)}), before);
    EXPECT_EQ(Changes(), Lines{});
}

TEST_F(BridgeTest, ASecondTimeRunsAllCommandsAgain)
{
    EXPECT_TRUE(Bridge(kBridge, cards.Get(), 2));
    EXPECT_TRUE(Bridge(kBridge, cards.Get(), 2));
    Lines twice = kBuilding;
    twice.insert(twice.end(), kBuilding.begin(), kBuilding.end());
    EXPECT_EQ(Commands(), twice);
}

TEST_F(BridgeTest, WhatCannotBeSavedOrRecoveredIsNotReported)
{
    for (const std::string& file : {kWrites0, kWrites1, kWritesBridge}) FailAll(file, EROFS);
    FailAll("ioctl SIOCSIFADDR", EPERM);
    EXPECT_TRUE(Bridge(kBridge, cards.Get(), 2));
}

TEST_F(BridgeTest, NothingIsSavedUnlessItWasBuilt)
{
    static bool done;
    FailEachCall(
        [] {
            done = Bridge(kBridge, Members({"eth1", "eth0"}).Get(), 2);
        },
        [](const std::string& failed) {
            const bool saved = Get(kFile1).find("BRIDGEEDED = 1\n") != std::string::npos ||
                               Get(kFile0).find("BRIDGEEDED = 1\n") != std::string::npos;
            EXPECT_EQ(saved, done) << failed;
        },
        kMayStayOpen);
}

// ---- UnBridge

class UnBridgeTest : public BridgeWorld {
protected:
    void SetUp() override
    {
        BridgeWorld::SetUp();
        Run();
    }
};

const Lines kEnding = {"ifconfig br0 down", "brctl delif br0 eth1", "brctl stp br0 off",
                       "brctl delbr br0"};

TEST_F(UnBridgeTest, EndsThenSavesTheBridgeThenEachMemberInTurn)
{
    OnCall(kWritesBridge, [] { EXPECT_EQ(Commands(), kEnding); });
    EXPECT_TRUE(UnBridge(kBridge));
    EXPECT_EQ(Commands(), kEnding);
    EXPECT_EQ(Changes(),
              (Lines{kWritesBridge, kWrites1, kWrites1, kWrites1, "ioctl SIOCSIFFLAGS eth1",
                     "ioctl SIOCSIFADDR eth1", "ioctl SIOCSIFNETMASK eth1", kWrites1, kWrites1,
                     kWrites1, "ioctl SIOCSIFMTU eth1"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(UnBridgeTest, CompletesEachMemberBeforeTheNext)
{
    Put(PortsOf(kBridge) + "eth0", "");
    EXPECT_TRUE(UnBridge(kBridge));
    const Lines changes = TraceOf({kWrites0, kWrites1, "ioctl SIOCSIFMTU"});
    ASSERT_EQ(changes.size(), 14U);
    const std::string first = changes[0];  // the directory's order tells which card it is
    const Lines ofTheFirst(changes.begin(), changes.begin() + 6);
    EXPECT_EQ(ofTheFirst, Lines(6, first));
    EXPECT_EQ(changes[6], first == kWrites0 ? "ioctl SIOCSIFMTU eth0" : "ioctl SIOCSIFMTU eth1");
}

TEST_F(UnBridgeTest, SavesThatNoneIsAMemberAndKeepsTheBridgesAddress)
{
    const std::string other = Get(kFile0);
    EXPECT_TRUE(UnBridge(kBridge));
    EXPECT_EQ(Get(kFile1).substr(Get(kFile1).find("BRIDGEEDED")),
              "BRIDGEEDED = 0\nBRIDGENAME = \nWORKMODE = 0\n");
    EXPECT_EQ(Get(kFile0), other);
    EXPECT_EQ(Get(kBridgeFile), Settings(kOwnSettings) + "BRIDGEMEMBERS = \n");
    EXPECT_EQ(kernel.At("eth1").address, "10.1.0.2");
}

TEST_F(UnBridgeTest, ReportsMembersThatCannotBeRead)
{
    Fail("opendir", EMFILE);
    EXPECT_FALSE(UnBridge(kBridge));
    EXPECT_EQ(Log(),
              (LogLines{Error("Bridge_GetBridgeMembers", "Open " + PortsOf(kBridge) + " failed\n"),
                        Error("UnBridge", "get br0 bridge menber failed.")}));
    ExpectUntouched();
}

TEST_F(UnBridgeTest, ReportsToolsThatCannotBeRun)
{
    Fail("vfork", EAGAIN, 4);
    EXPECT_FALSE(UnBridge(kBridge));
    EXPECT_EQ(Log().back(), Error("UnBridge", "UnBridge failed.[br0]"));
    EXPECT_EQ(Changes(), Lines{});
}

TEST_F(UnBridgeTest, SettingsThatCannotBeSavedAreNotReported)
{
    for (const std::string& file : {kWrites1, kWritesBridge}) FailAll(file, EROFS);
    EXPECT_TRUE(UnBridge(kBridge));
    EXPECT_EQ(kernel.At("eth1").address, "10.1.0.2");
}

TEST_F(UnBridgeTest, NothingIsSavedUnlessItWasEnded)
{
    static bool done;
    FailEachCall([] { done = UnBridge(kBridge); },
                 [](const std::string& failed) {
                     const std::string member = Get(kFile1);
                     EXPECT_TRUE(done || member.find("BRIDGEEDED = 1\n") != std::string::npos)
                         << failed;
                 },
                 kMayStayOpen);
}

// ---- UnBridgeByInterNic

class UnBridgeByInterNicTest : public UnBridgeTest {};

TEST_F(UnBridgeByInterNicTest, EndsTheBridgeAndLeavesTheCardsAsTheyAre)
{
    const Lines before = {Get(kFile0), Get(kFile1)};
    EXPECT_TRUE(UnBridgeByInterNic(kBridge));
    EXPECT_EQ(Commands(), kEnding);
    EXPECT_EQ(Changes(), Lines{kWritesBridge});
    EXPECT_EQ(Get(kBridgeFile), Settings(kOwnSettings) + "BRIDGEMEMBERS = \n");
    EXPECT_EQ((Lines{Get(kFile0), Get(kFile1)}), before);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(UnBridgeByInterNicTest, ReportsUnderItsOwnName)
{
    Fail("opendir", EMFILE);
    EXPECT_FALSE(UnBridgeByInterNic(kBridge));
    EXPECT_EQ(Log().back(), Error("UnBridgeByInterNic", "get br0 bridge menber failed."));
    Fail("vfork", EAGAIN, 4);
    EXPECT_FALSE(UnBridgeByInterNic(kBridge));
    EXPECT_EQ(Log().back(), Error("UnBridgeByInterNic", "UnBridge failed.[br0]"));
    EXPECT_EQ(Changes(), Lines{});
}

// ---- edge ports

class EdgePortManagementTest : public BridgeWorld {
protected:
    void SetUp() override
    {
        BridgeWorld::SetUp();
        Run();
        Put(kTreeFile, "SSIF_EDGE[0] = eth5\n");
    }
};

TEST_F(EdgePortManagementTest, IsSetByTheToolAndThenSaved)
{
    OnCall(kWritesTree, [] { EXPECT_EQ(Commands(), Lines{"rstpctl setportedge br0 eth1 yes"}); });
    EXPECT_TRUE(BridgeAddEdgePort(kBridge, "eth1"));
    EXPECT_EQ(Get(kTreeFile), "SSIF_EDGE[0] = eth5,eth1\n");
    EXPECT_TRUE(BridgeIsEdgePort(kBridge, "eth1"));
}

TEST_F(EdgePortManagementTest, IsUnsetByTheToolAndThenSaved)
{
    Put(kTreeFile, "SSIF_EDGE[0] = eth5,eth1\n");
    OnCall(kWritesTree, [] { EXPECT_EQ(Commands(), Lines{"rstpctl setportedge br0 eth1 no"}); });
    EXPECT_TRUE(BridgeDelEdgePort(kBridge, "eth1"));
    EXPECT_EQ(Get(kTreeFile), "SSIF_EDGE[0] = eth5\n");
    EXPECT_FALSE(BridgeIsEdgePort(kBridge, "eth1"));
}

TEST_F(EdgePortManagementTest, OnlyAMemberIsChanged)
{
    EXPECT_FALSE(BridgeAddEdgePort(kBridge, "eth"));
    EXPECT_FALSE(BridgeDelEdgePort(kBridge, "eth5"));
    EXPECT_EQ(Log(), (LogLines{Error("BridgeAddEdgePort", "eth is not a membe of br0."),
                               Error("BridgeDelEdgePort", "eth5 is not a membe of br0.")}));
    EXPECT_EQ(Get(kTreeFile), "SSIF_EDGE[0] = eth5\n");
    ExpectUntouched();
}

TEST_F(EdgePortManagementTest, MembersThatCannotBeReadAreAFailureWithoutAnotherLine)
{
    FailAll("opendir", EMFILE);
    EXPECT_FALSE(BridgeAddEdgePort(kBridge, "eth1"));
    EXPECT_FALSE(BridgeDelEdgePort(kBridge, "eth1"));
    const LogLine line = Error("Bridge_GetBridgeMembers", "Open " + PortsOf(kBridge) + " failed\n");
    EXPECT_EQ(Log(), (LogLines{line, line}));
    ExpectUntouched();
}

TEST_F(EdgePortManagementTest, AToolThatCannotBeRunIsReportedAndNotSaved)
{
    FailAll("vfork", EAGAIN);
    EXPECT_FALSE(BridgeAddEdgePort(kBridge, "eth1"));
    EXPECT_EQ(Log().back(), Error("BridgeAddEdgePort", "can not set eth1 to br0's edge port."));
    EXPECT_FALSE(BridgeDelEdgePort(kBridge, "eth1"));
    EXPECT_EQ(Log().back(), Error("BridgeDelEdgePort", "can not del eth1 from br0's edge port."));
    EXPECT_EQ(Get(kTreeFile), "SSIF_EDGE[0] = eth5\n");
}

TEST_F(EdgePortManagementTest, AMarkThatCannotBeSavedIsNotReported)
{
    FailAll(kWritesTree, EROFS);
    EXPECT_TRUE(BridgeAddEdgePort(kBridge, "eth1"));
    Put(kTreeFile, "SSIF_EDGE[0] = eth1\n");
    EXPECT_TRUE(BridgeDelEdgePort(kBridge, "eth1"));
}

TEST_F(EdgePortManagementTest, TheAnswerIsTheSavedOne)
{
    EXPECT_TRUE(BridgeIsEdgePort(kBridge, "eth5"));
    EXPECT_FALSE(BridgeIsEdgePort(kBridge, "eth1"));
    EXPECT_EQ(Commands(), Lines{});
    EXPECT_EQ(TraceOf({"opendir"}), Lines{});
}

TEST_F(EdgePortManagementTest, IsSavedOnlyWhenTheToolWasRunWhateverFails)
{
    static bool done;
    FailEachCall([] { done = BridgeAddEdgePort(kBridge, "eth1"); },
                 [](const std::string& failed) {
                     EXPECT_TRUE(done || Get(kTreeFile) == "SSIF_EDGE[0] = eth5\n") << failed;
                 },
                 kMayStayOpen);
}

// ---- spanning tree

class SpanningTreeTest : public BridgeWorld {
protected:
    void SetUp() override
    {
        BridgeWorld::SetUp();
        Run();
        Put(kTreeFile, "stp_state = 0d\n");
    }
};

TEST_F(SpanningTreeTest, IsControlledAndThenItsModeIsSaved)
{
    const STPInfo info{0, 1, {}};
    OnCall(kWritesTree, [] { EXPECT_EQ(Commands().back(), "bridge stop"); });
    EXPECT_TRUE(BridgeControl(kBridge, &info));
    EXPECT_EQ(Get(kTreeFile), "stp_state = 1d\n");
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(SpanningTreeTest, AModeThatIsNotSupportedIsReportedTwiceAndNotSaved)
{
    const STPInfo info{1, 2, {}};
    EXPECT_FALSE(BridgeControl(kBridge, &info));
    EXPECT_EQ(Log(), (LogLines{Error("Bridge_BridgeCtrl", "NOT SUPPORT mode 2\n"),
                               Error("BridgeControl", "br0 Bridge_BridgeCtrl error.")}));
    EXPECT_EQ(Get(kTreeFile), "stp_state = 0d\n");
    ExpectUntouched();
}

TEST_F(SpanningTreeTest, AToolThatCannotBeRunIsReportedAndTheModeIsNotSaved)
{
    const STPInfo info{1, 1, {}};
    FailAll("vfork", EAGAIN);
    EXPECT_FALSE(BridgeControl(kBridge, &info));
    EXPECT_EQ(Log().back(), Error("BridgeControl", "br0 Bridge_BridgeCtrl error."));
    EXPECT_EQ(Get(kTreeFile), "stp_state = 0d\n");
}

TEST_F(SpanningTreeTest, AModeThatCannotBeSavedIsNotReported)
{
    const STPInfo info{1, 0, {}};
    FailAll(kWritesTree, EROFS);
    EXPECT_TRUE(BridgeControl(kBridge, &info));
}

TEST_F(SpanningTreeTest, OnlyTheModeOfTheRecordIsTold)
{
    Put(kTreeFile, "stp_state = 1d\n");
    STPInfo info;
    memset(&info, '#', sizeof(info));
    info.enable = 1;
    STPInfo expected = info;
    expected.mode = 1;
    EXPECT_TRUE(BridgeGetStpInfo(kBridge, &info));
    EXPECT_EQ(memcmp(&info, &expected, sizeof(info)), 0);
    EXPECT_EQ(Commands(), Lines{});
}

TEST_F(SpanningTreeTest, AModeThatIsNotSavedIsAFailure)
{
    Put(kTreeFile, "");
    STPInfo info{1, 7, {}};
    EXPECT_FALSE(BridgeGetStpInfo(kBridge, &info));
    EXPECT_EQ(info.mode, 7);
    EXPECT_EQ(Log(), (LogLines{Error("GetBridgeStpModeByConfig", "get stp_state faild.")}));
}

// ---- ports and identification in the shared file

class BridgeUpdateTest : public BridgeWorld {};

TEST_F(BridgeUpdateTest, SavesPortsAndIdentification)
{
    Run();
    const char* ports[] = {"eth1", "eth0"};
    Put(kTreeFile, "");
    EXPECT_TRUE(BridgeUpdatePortListByConfig(kBridge, ports, 2));
    EXPECT_TRUE(BridgeUpdateBrIDByConfig(kBridge));
    EXPECT_EQ(Get(kTreeFile), "SSIF = eth1,eth0\nBRIDGES = 0\n");
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(BridgeUpdateTest, NoPortsAreRefusedInSilence)
{
    Run();
    const char* ports[] = {"eth1"};
    EXPECT_FALSE(BridgeUpdatePortListByConfig(kBridge, ports, 0));
    EXPECT_FALSE(BridgeUpdatePortListByConfig("br9", ports, 0));  // before the bridge is looked at
    EXPECT_EQ(Log(), LogLines{});
    ExpectUntouched();
}

TEST_F(BridgeUpdateTest, TheResultIsThatOfTheSaving)
{
    Run();
    const char* ports[] = {"eth1"};
    FailAll(kWritesTree, EROFS);
    EXPECT_FALSE(BridgeUpdatePortListByConfig(kBridge, ports, 1));
    EXPECT_FALSE(BridgeUpdateBrIDByConfig(kBridge));
}

}  // namespace
