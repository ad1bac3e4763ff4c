// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Bridge.h"

#include "MemberNames.h"
#include "fake/World.h"

#include <algorithm>
#include <filesystem>

using namespace fake;

namespace {

constexpr char kBridge[] = "br0";

std::string Path(const std::string& name, const std::string& bridge = kBridge)
{
    return "/sys/class/net/" + bridge + "/" + name;
}

/// What the operation did outside: files, requests, commands.
Lines Touched()
{
    return TraceOf({"open", "stat", "socket", "ioctl", "vfork"});
}

/// A bridge with its folder of ports.
class BridgeWorld : public World {
protected:
    void SetUp() override
    {
        World::SetUp();
        MakeFolder(Path("brif"));
        Put(Path("carrier"), "1\n");
    }

    static void AddPort(const std::string& name) { Put(Path("brif/" + name), ""); }
};

// ---- Bridge_Bridge

class Bridge_BridgeTest : public BridgeWorld {
protected:
    void SetUp() override
    {
        BridgeWorld::SetUp();
        kernel.Add("eth0").mac = "02:00:00:00:00:aa";
        kernel.Add("eth1").mac = "02:00:00:00:00:bb";
        kernel.Add("eth2").mac = "02:00:00:00:00:cc";
    }

    static LogLine Logs(const std::string& command)
    {
        return Info("Bridge_Bridge", command + "\n");
    }
};

const Lines kBuilding = {"brctl addbr br0",
                         "brctl addif br0 eth1",
                         "ifconfig br0 hw ether 02:00:00:00:00:bb",
                         "brctl addif br0 eth0",
                         "brctl addif br0 eth2",
                         "ifconfig eth1 down",
                         "ifconfig eth0 down",
                         "ifconfig eth2 down",
                         "ifconfig eth1 0.0.0.0 up",
                         "ifconfig eth0 0.0.0.0 up",
                         "ifconfig eth2 0.0.0.0 up",
                         "ifconfig br0 up"};

TEST_F(Bridge_BridgeTest, BuildsTheBridgeUnderItsFirstCardsAddress)
{
    Members members({"eth1", "eth0", "eth2"});
    EXPECT_TRUE(Bridge_Bridge(kBridge, members.Get(), members.Count()));
    EXPECT_EQ(Commands(), kBuilding);
    EXPECT_EQ(TraceOf({"ioctl"}), Lines{"ioctl SIOCGIFHWADDR eth1"});
}

TEST_F(Bridge_BridgeTest, ReadsTheAddressBehindTheFirstCardsJoining)
{
    Members members({"eth1"});
    EXPECT_TRUE(Bridge_Bridge(kBridge, members.Get(), members.Count()));
    EXPECT_EQ(TraceOf({"command", "ioctl"}),
              (Lines{"command brctl addbr br0", "command brctl addif br0 eth1",
                     "ioctl SIOCGIFHWADDR eth1", "command ifconfig br0 hw ether 02:00:00:00:00:bb",
                     "command ifconfig eth1 down", "command ifconfig eth1 0.0.0.0 up",
                     "command ifconfig br0 up"}));
}

TEST_F(Bridge_BridgeTest, LogsEachCommandBeforeItRunsButTheAddressBehind)
{
    static std::vector<size_t> logged;
    OnCommand("", [](const std::string&) { logged.push_back(Log().size()); });
    Members members({"eth1", "eth0", "eth2"});
    EXPECT_TRUE(Bridge_Bridge(kBridge, members.Get(), members.Count()));

    LogLines lines;
    std::transform(kBuilding.begin(), kBuilding.end(), std::back_inserter(lines), Logs);
    EXPECT_EQ(Log(), lines);
    EXPECT_EQ(logged, (std::vector<size_t>{1, 2, 2, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
}

TEST_F(Bridge_BridgeTest, TakesTheFirstAddressAlsoWhenThatCardDidNotJoin)
{
    OnCommand("brctl addif br0 eth1", nullptr, 1 << 8);
    Fail("vfork", EAGAIN, 2);
    Members members({"eth1", "eth0", "eth2"});
    EXPECT_TRUE(Bridge_Bridge(kBridge, members.Get(), members.Count()));
    Lines expected = kBuilding;
    expected.erase(expected.begin() + 1);
    EXPECT_EQ(Commands(), expected);
}

TEST_F(Bridge_BridgeTest, AnAddressIsNotThatOfTheBridgeBefore)
{
    Members first({"eth1"});
    EXPECT_TRUE(Bridge_Bridge(kBridge, first.Get(), first.Count()));
    Members second({"eth9"});
    EXPECT_TRUE(Bridge_Bridge("br1", second.Get(), second.Count()));
    EXPECT_EQ(LogOf("Bridge_Bridge").back(), Logs("ifconfig br1 up"));
    EXPECT_TRUE(Logged(Logs("ifconfig br1 hw ether ")));
}

TEST_F(Bridge_BridgeTest, ACardWithoutAddressLeavesItEmpty)
{
    Members members({"eth9"});
    EXPECT_TRUE(Bridge_Bridge(kBridge, members.Get(), members.Count()));
    EXPECT_EQ(Commands()[2], "ifconfig br0 hw ether ");
    EXPECT_EQ(LogOf("Bridge_Bridge")[2], Logs("ifconfig br0 hw ether "));
    EXPECT_TRUE(Logged(Error("Net_GetMacbyName", "get eth9 mac error.")));
}

TEST_F(Bridge_BridgeTest, ABridgeOfNoMembersStillComesUp)
{
    Members members({"eth0"});
    for (const int count : {0, -1}) EXPECT_TRUE(Bridge_Bridge(kBridge, members.Get(), count));
    EXPECT_EQ(Commands(),
              (Lines{"brctl addbr br0", "ifconfig br0 up", "brctl addbr br0", "ifconfig br0 up"}));
}

TEST_F(Bridge_BridgeTest, OnlyTheLastCommandDecides)
{
    Members members({"eth1"});
    for (int number = 1; number <= 5; ++number) {
        Fail("vfork", EAGAIN, number);
        EXPECT_TRUE(Bridge_Bridge(kBridge, members.Get(), members.Count())) << number;
        FailNothing();
    }
    Fail("vfork", EAGAIN, 6);
    EXPECT_FALSE(Bridge_Bridge(kBridge, members.Get(), members.Count()));
}

TEST_F(Bridge_BridgeTest, ACommandIsCutAt255Characters)
{
    const std::string name(300, 'x');
    Members members({});
    char* none = nullptr;
    EXPECT_TRUE(Bridge_Bridge(name.c_str(), &none, 0));
    EXPECT_EQ(Commands()[0], ("brctl addbr " + name).substr(0, 255));
}

TEST_F(Bridge_BridgeTest, NullIsRefusedInSilence)
{
    Members members({"eth0"});
    EXPECT_FALSE(Bridge_Bridge(nullptr, members.Get(), 1));
    EXPECT_FALSE(Bridge_Bridge(kBridge, nullptr, 1));
    members.Get()[0] = nullptr;
    EXPECT_FALSE(Bridge_Bridge(kBridge, members.Get(), 1));
    EXPECT_EQ(Touched(), Lines{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Bridge_BridgeTest, NothingStopsTheSequence)
{
    FailEachCall(
        [] {
            Members members({"eth1"});
            Bridge_Bridge(kBridge, members.Get(), members.Count());
        },
        [](const std::string&) { EXPECT_EQ(LogOf("Bridge_Bridge").size(), 6U); });
}

// ---- Bridge_UnBridge

class Bridge_UnBridgeTest : public BridgeWorld {};

TEST_F(Bridge_UnBridgeTest, ReleasesTheCardsAndDeletesTheBridgeInSilence)
{
    Members members({"eth2", "eth0"});
    EXPECT_TRUE(Bridge_UnBridge(kBridge, members.Get(), members.Count()));
    EXPECT_EQ(Commands(), (Lines{"ifconfig br0 down", "brctl delif br0 eth2",
                                 "brctl delif br0 eth0", "brctl stp br0 off", "brctl delbr br0"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Bridge_UnBridgeTest, OnlyTheLastCommandDecides)
{
    Members members({"eth0"});
    for (int number = 1; number <= 3; ++number) {
        Fail("vfork", EAGAIN, number);
        EXPECT_TRUE(Bridge_UnBridge(kBridge, members.Get(), members.Count())) << number;
        FailNothing();
    }
    Fail("vfork", EAGAIN, 4);
    EXPECT_FALSE(Bridge_UnBridge(kBridge, members.Get(), members.Count()));
}

TEST_F(Bridge_UnBridgeTest, ABridgeOfNoMembersIsDeletedToo)
{
    Members members({"eth0"});
    EXPECT_TRUE(Bridge_UnBridge(kBridge, members.Get(), -1));
    EXPECT_EQ(Commands(), (Lines{"ifconfig br0 down", "brctl stp br0 off", "brctl delbr br0"}));
}

TEST_F(Bridge_UnBridgeTest, NullIsRefusedInSilence)
{
    Members members({"eth0"});
    EXPECT_FALSE(Bridge_UnBridge(nullptr, members.Get(), 1));
    EXPECT_FALSE(Bridge_UnBridge(kBridge, nullptr, 1));
    members.Get()[0] = nullptr;
    EXPECT_FALSE(Bridge_UnBridge(kBridge, members.Get(), 1));
    EXPECT_EQ(Touched(), Lines{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Bridge_UnBridgeTest, NothingStopsTheSequence)
{
    FailEachCall(
        [] {
            Members members({"eth0"});
            Bridge_UnBridge(kBridge, members.Get(), members.Count());
        },
        [](const std::string&) { EXPECT_GE(Commands().size(), 3U); });
}

// ---- Bridge_GetBridgeMembers

class Bridge_GetBridgeMembersTest : public BridgeWorld {};

TEST_F(Bridge_GetBridgeMembersTest, ListsThePortsInTheDirectorysOrder)
{
    for (const char* name : {"eth2", "eth0", "wlan0", "eth1"}) AddPort(name);
    Table table;
    int count = 32;
    EXPECT_TRUE(Bridge_GetBridgeMembers(kBridge, table.pointers, &count));

    Lines expected;
    for (const auto& entry : std::filesystem::directory_iterator(Mapped(Path("brif").c_str()))) {
        expected.push_back(entry.path().filename());
    }
    EXPECT_EQ(expected.size(), 4U);
    EXPECT_EQ(table.First(count), expected);
    EXPECT_EQ(table.names[4][0], '#');
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(OpenHandles(), Lines{});
}

TEST_F(Bridge_GetBridgeMembersTest, PassesOverNamesThatBeginWithTwoPoints)
{
    for (const char* name : {"..eth0", "...", ".eth1", "eth2"}) AddPort(name);
    Table table;
    int count = 32;
    EXPECT_TRUE(Bridge_GetBridgeMembers(kBridge, table.pointers, &count));
    Lines found = table.First(count);
    std::sort(found.begin(), found.end());
    EXPECT_EQ(found, (Lines{".eth1", "eth2"}));
}

TEST_F(Bridge_GetBridgeMembersTest, PortsAboveTheCapacityAreLeftOut)
{
    for (const char* name : {"eth0", "eth1", "eth2", "eth3", "eth4"}) AddPort(name);
    Table table;
    int count = 2;
    EXPECT_TRUE(Bridge_GetBridgeMembers(kBridge, table.pointers, &count));
    EXPECT_EQ(count, 2);
    EXPECT_EQ(table.names[2][0], '#');
}

TEST_F(Bridge_GetBridgeMembersTest, ACapacityOfNoneOrLessGivesNone)
{
    AddPort("eth0");
    for (int capacity : {0, -1}) {
        Table table;
        EXPECT_TRUE(Bridge_GetBridgeMembers(kBridge, table.pointers, &capacity));
        EXPECT_EQ(capacity, 0);
        EXPECT_EQ(table.names[0][0], '#');
    }
}

TEST_F(Bridge_GetBridgeMembersTest, AnEmptyBridgeIsASuccess)
{
    Table table;
    int count = 32;
    EXPECT_TRUE(Bridge_GetBridgeMembers(kBridge, table.pointers, &count));
    EXPECT_EQ(count, 0);
}

TEST_F(Bridge_GetBridgeMembersTest, KeepsFifteenCharactersOfAName)
{
    AddPort("eth-abcdefghijklmn");
    Table table;
    int count = 32;
    EXPECT_TRUE(Bridge_GetBridgeMembers(kBridge, table.pointers, &count));
    ASSERT_EQ(count, 1);
    EXPECT_STREQ(table.names[0], "eth-abcdefghijk");
}

TEST_F(Bridge_GetBridgeMembersTest, ReportsABridgeThatIsNotThere)
{
    Table table;
    int count = 32;
    EXPECT_FALSE(Bridge_GetBridgeMembers("br9", table.pointers, &count));
    EXPECT_EQ(count, 32);
    EXPECT_EQ(Log(), (LogLines{Error("Bridge_GetBridgeMembers",
                                     "Open /sys/class/net/br9/brif/ failed\n")}));
}

TEST_F(Bridge_GetBridgeMembersTest, NullIsRefusedInSilence)
{
    Table table;
    int count = 32;
    EXPECT_FALSE(Bridge_GetBridgeMembers(nullptr, table.pointers, &count));
    EXPECT_FALSE(Bridge_GetBridgeMembers(kBridge, nullptr, &count));
    EXPECT_FALSE(Bridge_GetBridgeMembers(kBridge, table.pointers, nullptr));
    table.pointers[1] = nullptr;
    EXPECT_FALSE(Bridge_GetBridgeMembers(kBridge, table.pointers, &count));
    EXPECT_EQ(table.names[0][0], '#');
    EXPECT_EQ(count, 32);
    EXPECT_EQ(Touched(), Lines{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Bridge_GetBridgeMembersTest, ADirectoryThatEndsEarlyGivesWhatItHad)
{
    static Table table;
    static int count;
    static bool done;
    AddPort("eth0");
    FailEachCall(
        [] {
            count = 32;
            done = Bridge_GetBridgeMembers(kBridge, table.pointers, &count);
        },
        [](const std::string& failed) {
            const bool opened = failed == "readdir";
            EXPECT_EQ(done, opened);
            EXPECT_LE(count, opened ? 1 : 32);
        });
}

// ---- Bridge_IsBridgeExist

class Bridge_IsBridgeExistTest : public BridgeWorld {};

TEST_F(Bridge_IsBridgeExistTest, ABridgeHasPortsAndACarrierThatOpens)
{
    EXPECT_TRUE(Bridge_IsBridgeExist(kBridge));
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(OpenHandles(), Lines{});
}

TEST_F(Bridge_IsBridgeExistTest, TheCarrierIsOpenedAndNotRead)
{
    Put(Path("carrier"), "0\n");
    EXPECT_TRUE(Bridge_IsBridgeExist(kBridge));
    EXPECT_EQ(TraceOf({"open", "fopen", "read", "pread /", "close"}),
              (Lines{"open " + Path("carrier") + " O_RDONLY", "close " + Path("carrier")}));
}

TEST_F(Bridge_IsBridgeExistTest, APlainCardIsNone)
{
    Put("/sys/class/net/eth0/carrier", "1\n");
    EXPECT_FALSE(Bridge_IsBridgeExist("eth0"));
    EXPECT_EQ(Log(), (LogLines{Error("Bridge_IsBridgeExist", "bridge eth0 is not exist.")}));
}

TEST_F(Bridge_IsBridgeExistTest, AFileInThePlaceOfThePortsIsNone)
{
    Put("/sys/class/net/br1/carrier", "1\n");
    Put("/sys/class/net/br1/brif", "");
    EXPECT_FALSE(Bridge_IsBridgeExist("br1"));
    EXPECT_EQ(Log(), (LogLines{Error("Bridge_IsBridgeExist", "bridge br1 is not exist.")}));
}

TEST_F(Bridge_IsBridgeExistTest, WithoutACarrierThereIsNone)
{
    Remove(Path("carrier"));
    EXPECT_FALSE(Bridge_IsBridgeExist(kBridge));
    EXPECT_EQ(Log(), (LogLines{Error("Bridge_IsBridgeExist", "bridge br0 is not exist.")}));
}

TEST_F(Bridge_IsBridgeExistTest, NullIsRefusedInSilence)
{
    EXPECT_FALSE(Bridge_IsBridgeExist(nullptr));
    EXPECT_EQ(Touched(), Lines{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Bridge_IsBridgeExistTest, AnyFailureSaysThereIsNone)
{
    static bool exists;
    FailEachCall(
        [] { exists = Bridge_IsBridgeExist(kBridge); },
        [](const std::string&) {
            EXPECT_FALSE(exists);
            EXPECT_EQ(Log(), (LogLines{Error("Bridge_IsBridgeExist", "bridge br0 is not exist.")}));
        });
}

// ---- edge ports

class EdgePortTest : public BridgeWorld {};

TEST_F(EdgePortTest, IsSetAndUnsetByOneCommand)
{
    EXPECT_TRUE(Bridge_AddEdgePort(kBridge, "eth1"));
    EXPECT_TRUE(Bridge_DelEdgePort(kBridge, "eth1"));
    EXPECT_EQ(Commands(),
              (Lines{"rstpctl setportedge br0 eth1 yes", "rstpctl setportedge br0 eth1 no"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(EdgePortTest, AShellThatDoesNotStartIsAFailure)
{
    FailAll("vfork", EAGAIN);
    EXPECT_FALSE(Bridge_AddEdgePort(kBridge, "eth1"));
    EXPECT_FALSE(Bridge_DelEdgePort(kBridge, "eth1"));
}

TEST_F(EdgePortTest, AToolThatRefusesCountsAsDone)
{
    OnCommand("rstpctl", nullptr, 1 << 8);
    EXPECT_TRUE(Bridge_AddEdgePort(kBridge, "eth1"));
    EXPECT_TRUE(Bridge_DelEdgePort(kBridge, "eth1"));
}

TEST_F(EdgePortTest, NullIsRefusedInSilence)
{
    EXPECT_FALSE(Bridge_AddEdgePort(nullptr, "eth1"));
    EXPECT_FALSE(Bridge_AddEdgePort(kBridge, nullptr));
    EXPECT_FALSE(Bridge_DelEdgePort(nullptr, "eth1"));
    EXPECT_FALSE(Bridge_DelEdgePort(kBridge, nullptr));
    EXPECT_EQ(Touched(), Lines{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(EdgePortTest, OnlyTheShellDecides)
{
    static bool done;
    // What fails inside the child is not seen from outside.
    const auto check = [](const std::string& failed) {
        EXPECT_EQ(done, failed.rfind("child", 0) == 0);
    };
    FailEachCall([] { done = Bridge_AddEdgePort(kBridge, "eth1"); }, check);
    FailEachCall([] { done = Bridge_DelEdgePort(kBridge, "eth1"); }, check);
}

// ---- Bridge_BridgeCtrl

class Bridge_BridgeCtrlTest : public BridgeWorld {};

TEST_F(Bridge_BridgeCtrlTest, RunsTheCommandsOfModeAndState)
{
    struct Case {
        uint8_t mode;
        uint8_t enable;
        Lines commands;
    };
    const Lines kernelOff = {"brctl stp br0 off"};
    const Lines rapidOff = {"echo 0 > /sys/class/net/br0/bridge/stp_state", "bridge stop"};
    for (const Case& test : {
             Case{0, 1, {"brctl stp br0 on", "brctl setfd br0 2"}},
             Case{0, 0, kernelOff},
             Case{0, 2, kernelOff},
             Case{0, 255, kernelOff},
             Case{1,
                  1,
                  {"echo 2 > /sys/class/net/br0/bridge/stp_state", "ifconfig br0 up",
                   "bridge start"}},
             Case{1, 0, rapidOff},
             Case{1, 2, rapidOff},
         }) {
        SCOPED_TRACE(testing::Message() << "mode " << +test.mode << " enable " << +test.enable);
        const size_t before = Commands().size();
        const STPInfo info{test.enable, test.mode, {}};
        EXPECT_TRUE(Bridge_BridgeCtrl(kBridge, &info));
        EXPECT_EQ(Lines(Commands().begin() + static_cast<long>(before), Commands().end()),
                  test.commands);
    }
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Bridge_BridgeCtrlTest, TheSwitchDecidesWithTheKernelsTree)
{
    const STPInfo on{1, 0, {}};
    Fail("vfork", EAGAIN, 2);
    EXPECT_TRUE(Bridge_BridgeCtrl(kBridge, &on));
    Fail("vfork", EAGAIN, 1);
    EXPECT_FALSE(Bridge_BridgeCtrl(kBridge, &on));
    EXPECT_EQ(Commands().back(), "brctl setfd br0 2");
}

TEST_F(Bridge_BridgeCtrlTest, TheLastCommandDecidesWithTheRapidTree)
{
    for (const uint8_t enable : {1, 0}) {
        const STPInfo info{enable, 1, {}};
        const int commands = enable == 1 ? 3 : 2;
        for (int number = 1; number < commands; ++number) {
            Fail("vfork", EAGAIN, number);
            EXPECT_TRUE(Bridge_BridgeCtrl(kBridge, &info));
            FailNothing();
        }
        Fail("vfork", EAGAIN, commands);
        EXPECT_FALSE(Bridge_BridgeCtrl(kBridge, &info));
    }
}

TEST_F(Bridge_BridgeCtrlTest, OtherModesRunNothing)
{
    for (const uint8_t enable : {0, 1}) {
        for (const int mode : {2, 3, 255}) {
            ClearLog();
            const STPInfo info{enable, static_cast<uint8_t>(mode), {}};
            EXPECT_FALSE(Bridge_BridgeCtrl(kBridge, &info));
            const std::string text =
                mode == 2 ? "NOT SUPPORT mode 2\n" : "unknonw mode " + std::to_string(mode) + "\n";
            EXPECT_EQ(Log(), (LogLines{Error("Bridge_BridgeCtrl", text)}));
        }
    }
    EXPECT_EQ(Touched(), Lines{});
}

TEST_F(Bridge_BridgeCtrlTest, NullIsRefusedInSilence)
{
    const STPInfo info{1, 0, {}};
    EXPECT_FALSE(Bridge_BridgeCtrl(nullptr, &info));
    EXPECT_FALSE(Bridge_BridgeCtrl(kBridge, nullptr));
    EXPECT_EQ(Touched(), Lines{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Bridge_BridgeCtrlTest, RunsAllItsCommandsWhateverFails)
{
    FailEachCall(
        [] {
            const STPInfo info{1, 1, {}};
            Bridge_BridgeCtrl(kBridge, &info);
        },
        [](const std::string&) { EXPECT_GE(Commands().size(), 2U); });
}

// ---- BridgeMemberMask

class BridgeMemberMaskTest : public World {
protected:
    static uint32_t Mask(const Lines& names)
    {
        Members members(names);
        return vorlix::BridgeMemberMask("BrGetBridgeDevicesInfo", {members.Get(), members.Count()});
    }
};

TEST_F(BridgeMemberMaskTest, EachCardHasTheBitOfItsDigit)
{
    EXPECT_EQ(Mask({}), 0U);
    EXPECT_EQ(Mask({"eth0"}), 1U);
    EXPECT_EQ(Mask({"eth9", "eth0", "eth2"}), 0x205U);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(BridgeMemberMaskTest, OneCharacterTellsTheNumber)
{
    EXPECT_EQ(Mask({"eth12"}), 2U);
    EXPECT_EQ(Mask({"eth1", "eth16"}), 2U);
    EXPECT_EQ(Mask({"ethA", "ethO"}), 1U << ('A' - '0') | 1U << 31);
}

TEST_F(BridgeMemberMaskTest, NumbersWithoutABitSetNone)
{
    EXPECT_EQ(Mask({"eth", "eth/", "ethP", "eth~", "eth\xff"}), 0U);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(BridgeMemberMaskTest, OtherMembersAreNamedAndPassedOver)
{
    EXPECT_EQ(Mask({"vnic0", "eth3", "xeth1", "wlan0"}), 8U);
    EXPECT_EQ(Log(),
              (LogLines{Warn("BrGetBridgeDevicesInfo", "vnic0 is in Bridge.can not handle."),
                        Warn("BrGetBridgeDevicesInfo", "xeth1 is in Bridge.can not handle."),
                        Warn("BrGetBridgeDevicesInfo", "wlan0 is in Bridge.can not handle.")}));
}

}  // namespace
