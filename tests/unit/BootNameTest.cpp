// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// What a boot makes of interfaces by their names, and of bonds, bridges and routes that run
// already.

#include "LanriseWorld.h"
#include "Steps.h"

#include "Lanrise.h"

#include <algorithm>
#include <cstring>

#include <arpa/inet.h>

using namespace fake;

namespace {

// Addresses that cannot be turned into text.
std::vector<uint32_t> unprintable;

}  // namespace

extern "C" {

const char* __real_inet_ntop(int, const void*, char*, socklen_t);

const char* __wrap_inet_ntop(int family, const void* address, char* text, socklen_t size)
{
    uint32_t value = 0;
    memcpy(&value, address, sizeof(value));
    const bool fails =
        std::find(unprintable.begin(), unprintable.end(), value) != unprintable.end();
    return fails ? nullptr : __real_inet_ntop(family, address, text, size);
}

}  // extern "C"

namespace {

void Save(const std::vector<std::string>& cards, const Texts& lines)
{
    for (const std::string& card : cards) Put(CardFile(card), Settings(lines));
}

// ---- old bond modes

class BootNameTest : public World {};

TEST_F(BootNameTest, OldModesAreConvertedForEveryNameThatHoldsBond)
{
    const std::vector<std::string> bonds = {"bond0", "bond0.5", "xbond1", "bond", "brbond2"};
    const std::vector<std::string> others = {"eth1", "br0", "bon0"};
    Save(bonds, {"BONDMODE = 3"});
    Save(others, {"BONDMODE = 3"});
    std::vector<std::string> all = bonds;
    all.insert(all.end(), others.begin(), others.end());
    List(all);
    EXPECT_TRUE(CheckTrunkBondConfig());
    for (const std::string& bond : bonds) EXPECT_EQ(Get(CardFile(bond)), "BONDMODE = 6\n") << bond;
    for (const std::string& other : others) {
        EXPECT_EQ(Get(CardFile(other)), "BONDMODE = 3\n") << other;
    }
}

// ---- claims

TEST_F(BootNameTest, TheNumberOfABondIsReadFromItsFifthCharacter)
{
    const std::vector<std::pair<std::string, bool>> rows = {
        {"bond0", true},  {"bond7x", true},  {"bond15", true},  {"bond", true},
        {"bond31", true}, {"bond32", false}, {"bond-1", false}, {"xbond99", true}};
    for (const auto& [bond, taken] : rows) {
        kernel.cards.clear();
        Remove("/proc/net/dev");  // what the process before has left
        Save({"eth1"}, {"BONDED = 1", "BONDNAME = " + bond});
        InNewProcess([bond = bond, taken = taken] {
            List({"eth1", bond});
            EXPECT_TRUE(CheckBondConfig());
            EXPECT_EQ(Logged(Error("CheckBondConfig", "can not handle " + bond)), !taken) << bond;
        });
    }
}

TEST_F(BootNameTest, ABondFromSixteenOnIsNotSettled)
{
    for (const char* bond : {"bond14", "bond15", "bond16", "bond31"}) {
        kernel.cards.clear();
        Remove("/proc/net/dev");  // what the process before has left
        Save({"eth1", "eth2"}, {"BONDED = 1", "BONDNAME = " + std::string(bond)});
        Save({bond}, {"BONDMODE = 1", "BONDMEMBERS = eth9"});
        InNewProcess([bond] {
            List({"eth1", "eth2", bond});
            EXPECT_TRUE(CheckBondConfig());
        });
        const bool settled = std::string(bond) < "bond16";
        EXPECT_EQ(Get(CardFile(bond)), Settings({"BONDMODE = 1", settled ? "BONDMEMBERS = eth1,eth2"
                                                                         : "BONDMEMBERS = eth9"}))
            << bond;
    }
}

TEST_F(BootNameTest, ABondThatIsNoneIsNotLookedForAmongTheInterfaces)
{
    Save({"eth1"}, {"BONDED = 1", "BONDNAME = lan0"});
    List({"eth1", "lan0"});
    EXPECT_TRUE(CheckBondConfig());
    EXPECT_EQ(LogOf("FindWordInLine"), LogLines{});
    EXPECT_NE(Get(CardFile("eth1")).find("BONDED = 0"), std::string::npos);
}

TEST_F(BootNameTest, BridgesWithoutAClaimGoAlsoWhereTheFolderCannotBeListed)
{
    for (const char* bridge : {"br0", "br3", "br31"}) Save({bridge}, {"BRIDGEMEMBERS = eth1,eth2"});
    List({"eth1", "eth2"});
    FailAll("opendir /mnt/mtd/Config", EACCES);
    EXPECT_TRUE(CheckBridgeConfig());
    FailNothing();
    for (const char* bridge : {"br0", "br3", "br31"}) EXPECT_FALSE(Exists(CardFile(bridge)));
}

TEST_F(BootNameTest, AFileThatIsNoBridgesByItsStartStandsForNone)
{
    // Where a bridge's number stands this name has one, too.
    Put("/mnt/mtd/Config/abcdefghi7networkbr0", "");
    Save({"br3"}, {"BRIDGEMEMBERS = eth1,eth2"});
    List({"eth1", "eth2"});
    EXPECT_TRUE(CheckBridgeConfig());
    EXPECT_FALSE(Exists(CardFile("br3")));
    for (const std::string& call : Trace()) {
        EXPECT_EQ(call.find("networkbr7"), std::string::npos) << call;
    }
}

// ---- building

class BuiltBondTest : public World {
protected:
    static std::string Attribute(const char* name)
    {
        return std::string("/sys/class/net/bond0/bonding/") + name;
    }

    void SetUp() override
    {
        World::SetUp();
        for (const char* name : {"slaves", "mode", "miimon", "xmit_hash_policy", "primary"}) {
            Put(Attribute(name), "");
        }
    }
};

TEST_F(BuiltBondTest, ThatRunsIsHandedOnAndPausedForAllTheSame)
{
    Put(Attribute("slaves"), "eth1 eth2\n");
    Save({"bond0"}, {"BONDMODE = 1", "BONDMEMBERS = eth2,eth1"});
    List({"eth1", "eth2", "bond0"});
    EXPECT_TRUE(DoBondStuff());
    EXPECT_EQ(
        StepsOf({"write ", "open /sys/class/net/bond0/bonding/primary", "sleep", "Warn"}),
        (Texts{"open /sys/class/net/bond0/bonding/primary O_RDWR|O_TRUNC",
               "write /sys/class/net/bond0/bonding/primary 5", "write networkbond0", "sleep 2"}));
}

TEST_F(BuiltBondTest, ThatRunsInAnotherModeIsRefusedAndPausedFor)
{
    Put(Attribute("slaves"), "eth1 eth2\n");
    Save({"bond0"}, {"BONDMODE = 0", "BONDMEMBERS = eth2,eth1"});
    List({"eth1", "eth2", "bond0"});
    EXPECT_TRUE(DoBondStuff());
    EXPECT_EQ(StepsOf({"Error|Bond", "sleep", "Warn"}),
              (Texts{"Error|Bond|need unbond first.[bond0]", "Warn |DoBondStuff|bond failed!",
                     "sleep 2"}));
}

TEST_F(BuiltBondTest, WithoutAListGetsItsHashPolicyBeforeTheErrorAndNoPause)
{
    Save({"bond0"}, {"BONDMODE = 4", "LACP = 2"});
    List({"bond0"});
    EXPECT_TRUE(DoBondStuff());
    EXPECT_EQ(Steps(),
              (Texts{"read networkbond0", "read networkbond0",
                     "open /sys/class/net/bond0/bonding/xmit_hash_policy O_RDWR|O_TRUNC",
                     "write /sys/class/net/bond0/bonding/xmit_hash_policy 2",
                     "close /sys/class/net/bond0/bonding/xmit_hash_policy", "read networkbond0",
                     "Error|DoBondStuff|GetBondMemberByConfig failed.[bond0]"}));
}

TEST_F(BootNameTest, ABridgeThatIsThereIsBuiltAgain)
{
    SetBridgePorts("br0", {"eth1", "eth2"});
    Save({"br0"}, {"BRIDGEMEMBERS = eth1,eth2"});
    List({"eth1", "eth2", "br0"});
    EXPECT_TRUE(DoBridgeStuff());
    EXPECT_EQ(TraceOf({"command brctl"}).size(), 3U);
}

// ---- routes

class BootRouteTest : public World {
protected:
    const Texts address = {"HOSTIP = 10.0.0.2", "SUBMASK = 255.0.0.0", "GATEWAYIP = 10.0.0.1"};

    static Texts Routes()
    {
        Texts routes;
        for (const Route& route : kernel.routes) {
            routes.push_back(route.destination + "/" + route.mask + " " + route.card);
        }
        return routes;
    }
};

TEST_F(BootRouteTest, ABondThatIsAPortOfABridgeHasNone)
{
    Save({"bond0", "br0"}, address);
    SetBondMembers("bond0", "eth1 eth2\n");
    SetBridgePorts("br0", {"bond0", "eth3"});
    List({"eth1", "eth2", "eth3", "bond0", "br0"});
    addAllCardNetRoute();
    EXPECT_EQ(Routes(), Texts{"10.0.0.0/255.0.0.0 br0"});
    // Whether it runs is not asked any more.
    EXPECT_EQ(TraceOf({"open /sys/class/net/bond0/bonding/slaves"}).size(), 1U);
}

TEST_F(BootRouteTest, TheSecondEntryOfACardThatIsASwitchTooHasItsOwn)
{
    Put("/mnt/mtd/Config/poeMode.conf", "eth3 = 2\n");
    Save({"eth3:poe"}, address);
    List({"eth3"});
    addAllCardNetRoute();
    EXPECT_EQ(TraceOf({"ioctl SIOCADDRT"}).size(), 1U);
    EXPECT_TRUE(Logged(Info("Route_AddIPv4Route",
                            "10.0.0.0,0.0.0.0,255.0.0.0,eth3:poe##########Route_AddIPv4Route####"
                            "#######")));
}

TEST_F(BootRouteTest, ABridgeThatIsAMemberOfABondHasNone)
{
    Save({"bond0", "br0"}, address);
    SetBondMembers("bond0", "eth1 br0\n");
    SetBridgePorts("br0", {"eth3"});
    List({"eth1", "eth3", "bond0", "br0"});
    addAllCardNetRoute();
    EXPECT_EQ(Routes(), Texts{"10.0.0.0/255.0.0.0 bond0"});
}

TEST_F(BootRouteTest, AMemberThatHasLeftItsBondHasItsOwnAgain)
{
    Save({"eth1"}, address);
    SetBondMembers("bond0", "eth1\n");
    List({"eth1", "bond0"});
    addAllCardNetRoute();
    kernel.routes.clear();
    SetBondMembers("bond0", "");
    addAllCardNetRoute();
    const Texts routes = Routes();
    EXPECT_EQ(std::count(routes.begin(), routes.end(), "10.0.0.0/255.0.0.0 eth1"), 1);
}

TEST_F(BootRouteTest, AMemberIsToldByItsWholeName)
{
    Save({"eth1", "eth10", "eth2", "eth20"}, address);
    SetBondMembers("bond0", "eth10 eth2\n");
    List({"eth1", "eth10", "eth2", "eth20", "bond0"});
    addAllCardNetRoute();
    const Texts routes = Routes();
    for (const std::string card : {"eth1", "eth10", "eth2", "eth20"}) {
        const bool stands = card == "eth1" || card == "eth20";
        EXPECT_EQ(std::count(routes.begin(), routes.end(), "10.0.0.0/255.0.0.0 " + card),
                  stands ? 1 : 0)
            << card;
    }
}

TEST_F(BootRouteTest, BondsAndBridgesHaveThirtyTwoMembersEach)
{
    std::string bonded;
    std::vector<std::string> bridged;
    for (int i = 0; i < 20; ++i) {
        bonded += "eth" + std::to_string(i) + " ";
        bridged.push_back("lan" + std::to_string(i));
    }
    SetBondMembers("bond0", bonded + "\n");
    SetBridgePorts("br0", bridged);
    Save({"eth19", "lan19", "bond0", "br0"}, address);
    List({"eth19", "lan19", "bond0", "br0"});
    addAllCardNetRoute();
    EXPECT_EQ(TraceOf({"ioctl SIOCADDRT"}).size(), 2U);  // of the bond and the bridge
}

TEST_F(BootRouteTest, ThePartsAreTurnedIntoTextInTheirOrderUpToAFailure)
{
    kernel.Add("eth0");
    const std::vector<std::pair<const char*, uint32_t>> parts = {
        {"addr", inet_addr("10.9.0.0")},
        {"mask", inet_addr("255.255.0.0")},
        {"gateway", inet_addr("10.0.0.1")}};
    for (size_t part = 0; part < parts.size(); ++part) {
        kernel.routes = {{"10.9.0.0", "10.0.0.1", "255.255.0.0", "eth0"}};
        unprintable = {};
        for (size_t other = part; other < parts.size(); ++other) {
            unprintable.push_back(parts[other].second);
        }
        ClearLog();
        removeAllRoute();
        unprintable = {};
        EXPECT_EQ(Log(),
                  LogLines{Info("removeAllRoute",
                                std::string(parts[part].first) + " inet_ntop error[" +
                                    std::to_string(static_cast<int>(parts[part].second)) + "]\n")});
        EXPECT_EQ(kernel.routes.size(), 1U);
    }
}

TEST_F(BootRouteTest, AMaskOfZeroIsANetOfAll)
{
    Save({"eth1"}, {"HOSTIP = 10.0.0.2", "SUBMASK = 0.0.0.0", "GATEWAYIP = 10.0.0.1"});
    List({"eth1"});
    addRouteByName("eth1");
    EXPECT_EQ(Routes(), Texts{"0.0.0.0/0.0.0.0 eth1"});
}

TEST_F(BootRouteTest, TheFirst31Or32RoutesAreTakenAndNoMore)
{
    for (const size_t count : {size_t{31}, size_t{32}, size_t{33}}) {
        kernel.cards.clear();
        kernel.routes.clear();
        kernel.Add("eth0");
        for (size_t i = 0; i < count; ++i) {
            kernel.routes.push_back(
                {"10.0." + std::to_string(i) + ".0", "0.0.0.0", "255.255.255.0", "eth0"});
        }
        removeAllRoute();
        EXPECT_EQ(kernel.routes.size(), count - std::min<size_t>(count, 32)) << count;
    }
}

}  // namespace
