// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// What cannot be saved on the way keeps nothing behind it from its turn: each rewrite of a setting
// file fails once, and all the others are tried as if it had not.

#include "LanriseWorld.h"

#include "InterfaceWorld.h"

#include "CommonApi.h"
#include "Config.h"
#include "Lanrise.h"

#include <algorithm>

using namespace fake;

namespace {

/// An operation that saves in several places. Where it saves an address, the mask is not saved
/// without it: these rewrites have the next one on their conscience.
struct Saving {
    const char* name;
    std::function<void()> prepare;
    std::function<bool()> run;
    std::vector<size_t> addresses;
};

void PrintTo(const Saving& saving, std::ostream* out)
{
    *out << saving.name;
}

class GoesOnTest : public InterfaceWorld, public testing::WithParamInterface<Saving> {
protected:
    void SetUp() override
    {
        InterfaceWorld::SetUp();
        for (const char* card : {"bond0", "bond1", "usb0", "lte0", "ppp0"}) kernel.Add(card);
        kernel.Add("vnic0").driver = "pcit virt nic";
        OnCommand("brctl addbr ", [](const std::string& text) {
            const std::string bridge = text.substr(12);
            if (kernel.Find(bridge) == nullptr) kernel.Add(bridge);
        });
        List({});
    }

    /// The rewrites that a run tries.
    static Texts Tried()
    {
        for (const auto& [file, text] : SavedFiles()) Remove("/mnt/mtd/Config/" + file);
        GetParam().prepare();
        ClearTrace();
        EXPECT_TRUE(GetParam().run());  // also when something could not be saved
        return FileWrites();
    }
};

TEST_P(GoesOnTest, BehindARewriteThatFails)
{
    const Texts all = Tried();
    ASSERT_GE(all.size(), 2U);
    for (size_t i = 0; i < all.size(); ++i) {
        const auto failing = all.begin() + static_cast<std::ptrdiff_t>(i);
        Fail(*failing, EROFS, static_cast<int>(std::count(all.begin(), failing + 1, *failing)));
        const Texts tried = Tried();
        FailNothing();
        const auto& addresses = GetParam().addresses;
        Texts wanted = all;
        if (std::find(addresses.begin(), addresses.end(), i) != addresses.end()) {
            wanted.erase(wanted.begin() + static_cast<std::ptrdiff_t>(i) + 1);
        }
        EXPECT_EQ(tried, wanted) << "rewrite " << i << " of " << *failing;
    }
}

void Save(const std::vector<std::string>& cards, const Texts& lines)
{
    for (const std::string& card : cards) Put(CardFile(card), Settings(lines));
}

const Texts kAddress = {"HOSTIP = 10.0.0.2", "SUBMASK = 255.0.0.0", "GATEWAYIP = 10.0.0.1",
                        "MTU = 1500"};

void PutBond(const std::string& members)
{
    for (const char* attribute : {"mode", "miimon", "primary", "xmit_hash_policy"}) {
        Put(std::string("/sys/class/net/bond0/bonding/") + attribute, "");
    }
    Put("/sys/class/net/bond0/bonding/slaves", members);
}

void PutBridge(const std::string& bridge)
{
    Put("/sys/class/net/" + bridge + "/carrier", "1\n");
    for (const char* port : {"eth0", "eth1"}) Put("/sys/class/net/" + bridge + "/brif/" + port, "");
}

Members& Cards()
{
    static Members cards({"eth1", "eth0"});
    return cards;
}

void PutClaimless()
{
    Save({"eth0", "eth1"}, kAddress);
    Save({"bond0"}, {"BONDMODE = 1", "BONDMEMBERS = eth0,eth1"});
    Save({"br1"}, {"BRIDGEMEMBERS = eth0,eth1"});
}

/// Two cards in a bond that nobody has named, one in another, two in a bridge, one in another.
void PutClaims()
{
    Save({"eth0", "eth1"}, {"BONDED = 1"});
    Save({"ppp0"}, {"BONDED = 1", "BONDNAME = bond1"});
    Save({"wlan0", "usb0"}, {"BRIDGEEDED = 1", "BRIDGENAME = br1"});
    Save({"lte0"}, {"BRIDGEEDED = 1", "BRIDGENAME = br2"});
}

INSTANTIATE_TEST_SUITE_P(
    Operations, GoesOnTest,
    testing::Values(
        Saving{"Bond",
               [] {
                   Save({"eth0", "eth1", "bond0"}, kAddress);
                   PutBond("");
               },
               [] { return Bond("bond0", Cards().Const(), 2, nicBondActiveBackup); },
               {8}},
        Saving{"UnBond",
               [] {
                   Save({"eth0", "eth1", "bond0"}, kAddress);
                   PutBond("eth0 eth1\n");
               },
               [] { return UnBond("bond0"); },
               {5, 11}},
        Saving{"Bridge",
               [] {
                   Save({"eth0", "eth1", "br0"}, kAddress);
               },
               [] { return Bridge("br0", Cards().Get(), 2); },
               {7}},
        Saving{"UnBridge",
               [] {
                   Save({"eth0", "eth1", "br0"}, kAddress);
                   PutBridge("br0");
               },
               [] { return UnBridge("br0"); },
               {4, 10}},
        Saving{"BridgeByInterNic", [] {}, [] { return BridgeByInterNic(nullptr); }, {2, 4}},
        Saving{"DefaultCard",
               [] {
                   Save({"eth0", "eth1", "eth3"}, kAddress);
               },
               [] { return SetDefaultEthByConfig("eth1"); },
               {}},
        Saving{"BondsWithoutClaims", PutClaimless, CheckBondConfig, {}},
        Saving{"BridgesWithoutClaims", PutClaimless, CheckBridgeConfig, {}},
        Saving{"BondsOfClaims", PutClaims, CheckBondConfig, {}},
        Saving{"BridgesOfClaims", PutClaims, CheckBridgeConfig, {}},
        Saving{"WorkModes",
               [] {
                   Save({"eth0", "eth1"}, kAddress);
               },
               CheckWorkmodeConfig,
               {}},
        Saving{"MarkedBothWays",
               [] {
                   Save({"eth0", "eth1"}, {"BONDED = 1", "BRIDGEEDED = 1"});
               },
               [] { return !CheckWorkmodeConfig(); },
               {}},
        Saving{"OldModes",
               [] {
                   Save({"bond0", "bond1"}, {"BONDMODE = 5"});
               },
               CheckTrunkBondConfig,
               {}},
        Saving{
            "Addresses",
            [] {
                Save({"eth0", "eth1", "bond0"}, {"WORKMODE = 0"});
            },
            [] { return CheckEthCardConfig() && CheckBondCardConfig() && CheckWlanCardConfig(); },
            {1, 5, 9, 13}}),
    [](const auto& info) { return info.param.name; });

}  // namespace
