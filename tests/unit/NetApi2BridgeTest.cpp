// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Version 2: the cards of a bridge as a bit mask.

#include "NetApi2_0.h"

#include "BridgeWorld.h"

using namespace fake;

namespace {

class BridgeMaskWorld : public World {
protected:
    static void Build(const std::string& bridge, const Lines& ports)
    {
        MakeFolder(PortsOf(bridge));
        for (const std::string& port : ports) Put(PortsOf(bridge) + port, "");
        ClearTrace();
    }

    /// The lines of a bridge that cannot be read; both functions log under one name.
    static LogLines Unreadable(const std::string& bridge)
    {
        return {Error("Bridge_GetBridgeMembers", "Open " + PortsOf(bridge) + " failed\n"),
                Error("getBridgeDevicesInfo", "get " + bridge + " bridge menber failed.")};
    }
};

// ---- getBridgeDevicesInfo

class getBridgeDevicesInfoTest : public BridgeMaskWorld {};

TEST_F(getBridgeDevicesInfoTest, EachCardHasItsBit)
{
    Build("br3", {"eth2", "vnic0", "eth0"});
    EXPECT_EQ(getBridgeDevicesInfo("br3"), 5U);
    EXPECT_EQ(Log(),
              (LogLines{Warn("getBridgeDevicesInfo", "vnic0 is in Bridge.can not handle.")}));
}

TEST_F(getBridgeDevicesInfoTest, OnlyOneDigitIsRead)
{
    Build("br0", {"eth16"});
    EXPECT_EQ(getBridgeDevicesInfo("br0"), 2U);
    Build("br1", {"eth1", "eth12"});
    EXPECT_EQ(getBridgeDevicesInfo("br1"), 2U);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(getBridgeDevicesInfoTest, TheNameMustStartWithEth)
{
    Build("br0", {"veth1"});
    EXPECT_EQ(getBridgeDevicesInfo("br0"), 0U);
    EXPECT_EQ(Log(),
              (LogLines{Warn("getBridgeDevicesInfo", "veth1 is in Bridge.can not handle.")}));
}

TEST_F(getBridgeDevicesInfoTest, ThirtyTwoMembersAreRead)
{
    Lines ports;
    for (int i = 0; i < 40; ++i) ports.push_back("vnic" + std::to_string(i));
    Build("br0", ports);
    EXPECT_EQ(getBridgeDevicesInfo("br0"), 0U);
    EXPECT_EQ(Log().size(), 32U);
}

TEST_F(getBridgeDevicesInfoTest, AnEmptyBridgeHasNoBits)
{
    Build("br0", {});
    EXPECT_EQ(getBridgeDevicesInfo("br0"), 0U);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(getBridgeDevicesInfoTest, ABridgeThatCannotBeReadHasNoBitsEither)
{
    EXPECT_EQ(getBridgeDevicesInfo("br5"), 0U);
    EXPECT_EQ(Log(), Unreadable("br5"));
}

TEST_F(getBridgeDevicesInfoTest, NullHasNoBits)
{
    EXPECT_EQ(getBridgeDevicesInfo(nullptr), 0U);
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Trace(), Lines{});
}

TEST_F(getBridgeDevicesInfoTest, WithoutTheFolderThereIsNothing)
{
    Build("br0", {"eth1", "eth3"});
    static uint32_t mask;
    FailEachCall([] { mask = getBridgeDevicesInfo("br0"); },
                 [](const std::string& failed) {
                     EXPECT_TRUE(mask == 0 || failed.find("readdir") == 0) << failed;
                     EXPECT_EQ(mask & ~10U, 0U);  // nothing that is not there
                 });
}

// ---- NetWorkGetBridgeInfo

class NetWorkGetBridgeInfoTest : public BridgeMaskWorld {
protected:
    std::vector<uint32_t> Masks() const { return {masks, masks + 12}; }

    uint32_t masks[12] = {7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7};
};

TEST_F(NetWorkGetBridgeInfoTest, StopsAtTheFirstNumberWithoutABridge)
{
    Build("br0", {"eth0", "eth1"});
    Build("br2", {"eth2"});
    EXPECT_EQ(NetWorkGetBridgeInfo(masks, 12), 1);
    EXPECT_EQ(Masks(), (std::vector<uint32_t>{3, 0, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7}));
    EXPECT_EQ(Log(), Unreadable("br1"));
}

TEST_F(NetWorkGetBridgeInfoTest, AnEmptyBridgeEndsTheListToo)
{
    Build("br0", {"vnic0"});
    Build("br1", {"eth1"});
    EXPECT_EQ(NetWorkGetBridgeInfo(masks, 12), 0);
    EXPECT_EQ(masks[0], 0U);
    EXPECT_EQ(masks[1], 7U);
    EXPECT_EQ(Log(),
              (LogLines{Warn("getBridgeDevicesInfo", "vnic0 is in Bridge.can not handle.")}));
}

TEST_F(NetWorkGetBridgeInfoTest, AFullArrayIsTheWholeAnswer)
{
    Build("br0", {"eth0"});
    Build("br1", {"eth1"});
    Build("br2", {"eth2"});
    EXPECT_EQ(NetWorkGetBridgeInfo(masks, 2), 2);
    EXPECT_EQ(Masks(), (std::vector<uint32_t>{1, 2, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NetWorkGetBridgeInfoTest, NumbersRunOnBehindNineAsCharactersDo)
{
    for (int i = 0; i < 10; ++i) Build("br" + std::to_string(i), {"eth1"});
    Build("br:", {"eth2"});
    EXPECT_EQ(NetWorkGetBridgeInfo(masks, 12), 11);
    EXPECT_EQ(Masks(), (std::vector<uint32_t>{2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 4, 0}));
    EXPECT_EQ(Log(), Unreadable("br;"));
}

TEST_F(NetWorkGetBridgeInfoTest, NoRoomAsksForNone)
{
    for (const int32_t count : {0, -1, INT32_MIN}) EXPECT_EQ(NetWorkGetBridgeInfo(masks, count), 0);
    EXPECT_EQ(masks[0], 7U);
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Trace(), Lines{});
}

TEST_F(NetWorkGetBridgeInfoTest, NullIsRefusedInSilence)
{
    EXPECT_EQ(NetWorkGetBridgeInfo(nullptr, 4), -1);
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Trace(), Lines{});
}

// ---- building and ending

class CreateNetWorkBridgeTest : public BridgeWorld {};

TEST_F(CreateNetWorkBridgeTest, ABridgeReadsBackAsAMaskUntilItEnds)
{
    EXPECT_EQ(CreateNetWorkBridge(kBridge, cards.Const(), cards.Count()), 0);
    EXPECT_EQ(getBridgeDevicesInfo(kBridge), 3U);
    uint32_t masks[2] = {7, 7};
    EXPECT_EQ(NetWorkGetBridgeInfo(masks, 2), 1);
    EXPECT_EQ(masks[0], 3U);
    EXPECT_EQ(DestoryNetWorkBridge(kBridge), 0);
    EXPECT_EQ(getBridgeDevicesInfo(kBridge), 0U);
}

TEST_F(CreateNetWorkBridgeTest, EdgePortsAreThoseOfTheFirstBridge)
{
    Run();
    EXPECT_EQ(NetIsEdgePort("eth1"), -1);
    EXPECT_EQ(NetSetEdgePort("eth1"), 0);
    EXPECT_EQ(NetIsEdgePort("eth1"), 0);
    EXPECT_EQ(NetUnsetEdgePort("eth1"), 0);
    EXPECT_EQ(NetIsEdgePort("eth1"), -1);
    EXPECT_EQ(Commands(),
              (Lines{"rstpctl setportedge br0 eth1 yes", "rstpctl setportedge br0 eth1 no"}));
}

}  // namespace
