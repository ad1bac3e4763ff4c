// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "CommonApi.h"

#include "Program.h"

#include <algorithm>

using namespace device;

namespace {

/// Bridges are built by the outside tool brctl.
class BridgeTest : public Device {
protected:
    void SetUp() override
    {
        Device::SetUp();
        NEEDS_TOOL("brctl");
        NEEDS_TOOL("ifconfig");
        NEEDS_LINK("br31 type bridge");
        Must("ip link del br31");
        AddCards(4);
        for (int i = 0; i < 4; ++i) Save("eth" + std::to_string(i), i, {"WORKMODE = 0"});
        Save("br0", 9);
    }

    static bool Build(const char* bridge, Texts cards)
    {
        std::vector<char*> members;
        for (std::string& card : cards) members.push_back(card.data());
        return Bridge(bridge, members.data(), static_cast<int>(members.size()));
    }

    /// Members as the library lists them, sorted.
    static Texts Members(const char* bridge)
    {
        char names[32][16] = {};
        char* list[32];
        for (int i = 0; i < 32; ++i) list[i] = names[i];
        int count = 32;
        if (!GetBridgeMenbers(bridge, list, &count)) return {"(none)"};

        Texts members(list, list + count);
        std::sort(members.begin(), members.end());
        return members;
    }

    /// The bridge that a card is in, as the kernel tells it.
    static std::string MasterOf(const std::string& card)
    {
        for (const auto& record : Ip("link show dev " + card)) {
            if (record.count("master") != 0) return record.at("master");
        }
        return "";
    }
};

TEST_F(BridgeTest, IsBuiltUnderTheAddressOfItsFirstCardAndSaved)
{
    Must("ip link set eth1 up; ip addr add 10.0.1.10/24 dev eth1");
    ASSERT_TRUE(Build("br0", {"eth1", "eth2"}));
    EXPECT_EQ(MasterOf("eth1"), "br0");
    EXPECT_EQ(MasterOf("eth2"), "br0");
    EXPECT_EQ(Members("br0"), (Texts{"eth1", "eth2"}));
    EXPECT_EQ(Mac("br0"), Mac("eth1"));
    for (const char* card : {"br0", "eth1", "eth2"}) EXPECT_TRUE(IsUp(card)) << card;
    EXPECT_EQ(Addresses("br0"), Texts{"10.0.9.10/24"});
    EXPECT_EQ(Addresses("eth1"), Texts{});

    EXPECT_EQ(Saved("br0", "BRIDGEMEMBERS"), "eth1,eth2");
    for (const char* card : {"eth1", "eth2"}) {
        EXPECT_EQ(Saved(card, "BRIDGEEDED"), "1");
        EXPECT_EQ(Saved(card, "BRIDGENAME"), "br0");
        EXPECT_EQ(Saved(card, "WORKMODE"), "3");
    }
    EXPECT_EQ(Saved("eth0", "BRIDGEEDED"), "");
}

TEST_F(BridgeTest, FramesPassThroughIt)
{
    ASSERT_TRUE(Build("br0", {"eth1", "eth2"}));
    Must("ip netns add left; ip -n peer link set eth1 netns left; ip -n left link set eth1 up");
    Must("ip -n left addr add 10.0.9.1/24 dev eth1; ip -n peer addr add 10.0.9.2/24 dev eth2");
    // Each probe of the neighbour is a frame there and a frame back.
    const std::string mac = Must("ip netns exec peer cat /sys/class/net/eth2/address");
    while (Must("ip -n left neigh show 10.0.9.2").find("REACHABLE") == std::string::npos) {
        Must("ip -n left neigh replace 10.0.9.2 dev eth1 nud probe lladdr " + mac);
    }
}

TEST_F(BridgeTest, EndsWithItsCardsBackAtTheirOwnAddresses)
{
    ASSERT_TRUE(Build("br0", {"eth1", "eth2"}));
    ASSERT_TRUE(UnBridge("br0"));
    EXPECT_NE(Try("ip link show dev br0").status, 0);
    EXPECT_EQ(Addresses("eth1"), Texts{"10.0.1.10/24"});
    EXPECT_EQ(Addresses("eth2"), Texts{"10.0.2.10/24"});
    EXPECT_EQ(Saved("br0", "BRIDGEMEMBERS"), "");
    for (const char* card : {"eth1", "eth2"}) {
        EXPECT_TRUE(IsUp(card));
        EXPECT_EQ(Saved(card, "BRIDGEEDED"), "0");
        EXPECT_EQ(Saved(card, "WORKMODE"), "0");
    }
    EXPECT_FALSE(UnBridge("br0"));
}

TEST_F(BridgeTest, ACardThatIsNotThereLeavesNothingBehind)
{
    EXPECT_FALSE(Build("br0", {"eth1", "eth9"}));
    EXPECT_NE(Try("ip link show dev br0").status, 0);
    EXPECT_EQ(Saved("eth1", "BRIDGEEDED"), "");
    EXPECT_EQ(Members("br0"), Texts{"(none)"});
}

TEST_F(BridgeTest, SpanningTreeGoesOnAndOff)
{
    ASSERT_TRUE(Build("br0", {"eth1", "eth2"}));
    STPInfo stp{};
    stp.enable = 1;
    EXPECT_TRUE(BridgeControl("br0", &stp));
    EXPECT_EQ(Get("/sys/class/net/br0/bridge/stp_state"), "1\n");
    EXPECT_EQ(Get("/sys/class/net/br0/bridge/forward_delay"), "200\n");
    stp.enable = 0;
    EXPECT_TRUE(BridgeControl("br0", &stp));
    EXPECT_EQ(Get("/sys/class/net/br0/bridge/stp_state"), "0\n");
}

TEST_F(BridgeTest, ABootBuildsWhatIsSaved)
{
    Put(CardFile("br0"), Get(CardFile("br0")) + "BRIDGEMEMBERS = eth1,eth2\n");
    for (const char* card : {"eth1", "eth2"}) {
        Put(CardFile(card), Lines({"BRIDGEEDED = 1", "BRIDGENAME = br0", "WORKMODE = 3"}));
    }
    ExpectOnNetwork(Lanrise(), {"eth0", "eth3", "br0"});
    EXPECT_EQ(Members("br0"), (Texts{"eth1", "eth2"}));
    EXPECT_EQ(Routes(), (Texts{"10.0.0.0/24 dev eth0", "10.0.3.0/24 dev eth3",
                               "10.0.9.0/24 dev br0", "default via 10.0.0.1 dev eth0"}));

    const auto files = SavedFiles();
    const Texts network = KernelState();
    EXPECT_EQ(Lanrise().status, 0);
    EXPECT_EQ(SavedFiles(), files);
    EXPECT_EQ(KernelState(), network);
}

TEST_F(BridgeTest, ABootFollowsTheCardsWhereTheListIsStale)
{
    Put(CardFile("br0"), Get(CardFile("br0")) + "BRIDGEMEMBERS = eth1,eth2\n");
    for (const char* card : {"eth2", "eth3"}) {
        Put(CardFile(card), Lines({"BRIDGEEDED = 1", "BRIDGENAME = br0", "WORKMODE = 3"}));
    }
    ExpectOnNetwork(Lanrise(), {"eth0", "eth1", "br0"});
    EXPECT_EQ(Members("br0"), (Texts{"eth2", "eth3"}));
    EXPECT_EQ(Saved("br0", "BRIDGEMEMBERS"), "eth2,eth3");
}

TEST_F(BridgeTest, ABootDropsABridgeOfOneCard)
{
    Put(CardFile("br0"), Get(CardFile("br0")) + "BRIDGEMEMBERS = eth1,eth2\n");
    Put(CardFile("eth1"), Get(CardFile("eth1")) + Lines({"BRIDGEEDED = 1", "BRIDGENAME = br0"}));
    ExpectOnNetwork(Lanrise(), {"eth0", "eth1", "eth2", "eth3"});
    EXPECT_EQ(Addresses("eth1"), Texts{"10.0.1.10/24"});
    EXPECT_EQ(Saved("eth1", "BRIDGEEDED"), "0");
    EXPECT_EQ(Get(CardFile("br0")), "(no file)");
}

}  // namespace
