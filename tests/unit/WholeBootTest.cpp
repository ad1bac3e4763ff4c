// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Whole boots, from the files that a device may find to the network that it makes of them.

#include "LanriseWorld.h"

#include "Lanrise.h"

#include <algorithm>
#include <sstream>

#include <net/if.h>
#include <unistd.h>

using namespace fake;

namespace {

constexpr char kDns[] = "nameserver 8.8.8.8\nnameserver 8.8.4.4\n"
                        "nameserver 2001:4860:4860::8888\nnameserver 2001:4860:4860::8844\n";
constexpr char kDns6[] = "nameserver 2001:4860:4860::8888\nnameserver 2001:4860:4860::8844\n";

using Files = std::map<std::string, std::string>;
using Texts = std::vector<std::string>;

/// "card address/mask mtu" of every card that is up.
Texts CardsUp()
{
    Texts cards;
    for (const Card& card : kernel.cards) {
        if ((card.flags & IFF_UP) == 0) continue;
        std::ostringstream text;
        text << card.name << " " << (card.address.empty() ? "-" : card.address) << "/" << card.mask
             << " " << card.mtu;
        cards.push_back(text.str());
    }
    return cards;
}

Texts Routes()
{
    Texts routes;
    for (const Route& route : kernel.routes) {
        std::ostringstream text;
        text << route;
        routes.push_back(text.str());
    }
    return routes;
}

class WholeBootTest : public World {
protected:
    static void AddCards(const Texts& names)
    {
        for (const std::string& name : names) kernel.Add(name);
    }

    /// One boot of the device, on a kernel as the test has set it up.
    static void Boot(const std::function<void()>& check = nullptr)
    {
        InNewProcess([&] {
            EXPECT_TRUE(Lanrise({}));
            EXPECT_EQ(Log().back(), Info("CommonMain", "lanrise is finished."));
            ExpectWellFormedFiles();
            if (check) check();
        });
    }

    static void ExpectNextBootSavesTheSame()
    {
        const Files files = SavedFiles();
        const std::string rtc = RtcBlock();
        const std::string record = CmosRecord();
        Boot();
        EXPECT_EQ(SavedFiles(), files);
        EXPECT_EQ(RtcBlock(), rtc);
        EXPECT_EQ(CmosRecord(), record);
    }
};

/// What a card's file holds once its roles are settled and it stands alone.
const Texts kAlone = {"BONDED = 0", "BONDNAME = ", "BRIDGEEDED = 0",
                      "BRIDGENAME = ", "WORKMODE = 0"};

Texts Address(const std::string& address, const std::string& mask, const std::string& gateway)
{
    return {"HOSTIP = " + address, "SUBMASK = " + mask, "GATEWAYIP = " + gateway};
}

std::string Joined(const std::vector<Texts>& parts)
{
    std::string text;
    for (const Texts& part : parts) text += Settings(part);
    return text;
}

/// A card that had no file before.
std::string NewCard(const std::string& address, const std::string& gateway, int prio)
{
    return Joined({kAlone,
                   {"MTU = 1500"},
                   Address(address, "255.255.255.0", gateway),
                   {"PRIO = " + std::to_string(prio)}});
}

TEST_F(WholeBootTest, ANewDeviceGetsItsFactoryNetwork)
{
    Put("/dev/pdcRtc", "");
    kernel.rtc.bytes[44] = 1;  // whatever the memory holds at first
    AddCards({"lo", "eth0", "eth1", "wlan0"});
    kernel.routes = {{"127.0.0.0", "0.0.0.0", "255.0.0.0", "lo"}};
    Boot([] {
        EXPECT_EQ(CardsUp(), (Texts{"eth0 192.168.0.108/255.255.255.0 1500",
                                    "eth1 192.168.0.109/255.255.255.0 1500",
                                    "wlan0 192.168.1.108/255.255.255.0 1500"}));
        EXPECT_EQ(Routes(), (Texts{"127.0.0.0/255.0.0.0 via 0.0.0.0 dev lo",
                                   "192.168.0.0/255.255.255.0 via 0.0.0.0 dev eth0",
                                   "192.168.0.0/255.255.255.0 via 0.0.0.0 dev eth1",
                                   "192.168.1.0/255.255.255.0 via 0.0.0.0 dev wlan0",
                                   "0.0.0.0/0.0.0.0 via 192.168.0.1 dev eth0"}));
    });
    EXPECT_EQ(SavedFiles(),
              (Files{{"network", Joined({kAlone,
                                         {"MTU = 1500"},
                                         Address("192.168.0.108", "255.255.255.0", "192.168.0.1"),
                                         {"DEFAULT_ETH = eth0", "PRIO = 0"}})},
                     {"network1", NewCard("192.168.0.109", "192.168.0.1", 1)},
                     {"networkwlan0", NewCard("192.168.1.108", "192.168.1.1", 1)},
                     {"resolv.conf", kDns},
                     {"resolvip6.conf", kDns6}}));
    EXPECT_EQ(RtcBlock(), "192.168.0.108 255.255.255.0 192.168.0.1");
    ExpectNextBootSavesTheSame();
}

TEST_F(WholeBootTest, ALostFirstFileComesBackFromTheBackup)
{
    UseRtc("172.16.0.9", "255.255.0.0", "172.16.0.1");
    Put(CardFile("eth1"),
        Joined({Address("10.0.0.2", "255.0.0.0", "10.0.0.1"), {"MTU = 1400", "PRIO = 0"}}));
    AddCards({"eth0", "eth1"});
    Boot([] {
        EXPECT_EQ(CardsUp(),
                  (Texts{"eth0 172.16.0.9/255.255.0.0 1500", "eth1 10.0.0.2/255.0.0.0 1400"}));
        EXPECT_EQ(Routes(), (Texts{"172.16.0.0/255.255.0.0 via 0.0.0.0 dev eth0",
                                   "10.0.0.0/255.0.0.0 via 0.0.0.0 dev eth1",
                                   "0.0.0.0/0.0.0.0 via 10.0.0.1 dev eth1"}));
    });
    EXPECT_EQ(SavedFiles(),
              (Files{{"network", Joined({kAlone,
                                         {"MTU = 1500"},
                                         Address("172.16.0.9", "255.255.0.0", "172.16.0.1"),
                                         {"DEFAULT_ETH = eth1", "PRIO = 1"}})},
                     {"network1", Joined({Address("10.0.0.2", "255.0.0.0", "10.0.0.1"),
                                          {"MTU = 1400", "PRIO = 0"},
                                          kAlone})},
                     {"resolv.conf", kDns},
                     {"resolvip6.conf", kDns6}}));
    EXPECT_EQ(RtcBlock(), "172.16.0.9 255.255.0.0 172.16.0.1");
    ExpectNextBootSavesTheSame();
}

TEST_F(WholeBootTest, ANewBoardHasItsBackupFromTheSecondBootOn)
{
    const Texts own = Address("10.0.0.2", "255.0.0.0", "10.0.0.1");
    Put(CardFile("eth0"), Joined({own, {"MTU = 1500"}}));
    AddCards({"eth0"});
    Boot();
    EXPECT_EQ(CmosRecord(), "0.0.0.0/0 0.0.0.0 flag 10 mark 0");
    Boot();
    EXPECT_EQ(CmosRecord(), "10.0.0.2/8 10.0.0.1 flag 10 mark 0");
    EXPECT_EQ(SavedFiles()["network"],
              Joined({own, {"MTU = 1500"}, kAlone, {"DEFAULT_ETH = eth0", "PRIO = 0"}}));
    ExpectNextBootSavesTheSame();
}

TEST_F(WholeBootTest, FilesOfAnOldReleaseAreTakenOver)
{
    const Texts own0 = Address("10.0.0.2", "255.255.0.0", "10.0.0.1");
    const Texts own1 = Address("10.1.0.2", "255.255.0.0", "10.1.0.1");
    const Texts own2 = Address("10.2.0.2", "255.255.0.0", "10.2.0.1");
    const Texts ownBond = Address("10.3.0.2", "255.255.0.0", "10.3.0.1");
    const std::string own6 = Settings({"HOSTIP = fd00::2", "SUBMASK = 64"});
    Put(CardFile("eth0"), Joined({own0, {"DEFAULT_ETH = bond0"}}));
    Put(CardFile("eth1"), Joined({{"BONDED = 1"}, own1, {"MTU = 1500"}}));
    Put("/mnt/mtd/Config/network2",
        Joined({own2, {"MTU = 1500", "BONDED = 1", "BONDNAME = bond0"}}));
    Put("/mnt/mtd/Config/networkip62", own6);
    Put(CardFile("bond0"), Joined({{"BONDMODE = 2"}, ownBond}));
    UseRtc("10.0.0.2", "255.255.0.0", "10.0.0.1");
    AddCards({"eth0", "eth1", "eth2", "bond0"});
    for (const char* attribute : {"slaves", "mode", "miimon", "xmit_hash_policy"}) {
        Put("/sys/class/net/bond0/bonding/" + std::string(attribute), "");
    }
    OnCommand("ifenslave bond0 eth1 eth2",
              [](const std::string&) { SetBondMembers("bond0", "eth1 eth2\n"); });
    Boot([] {
        EXPECT_EQ(CardsUp(),
                  (Texts{"eth0 10.0.0.2/255.255.0.0 1500", "bond0 10.3.0.2/255.255.0.0 1500"}));
        EXPECT_EQ(Routes(), (Texts{"10.0.0.0/255.255.0.0 via 0.0.0.0 dev eth0",
                                   "10.3.0.0/255.255.0.0 via 0.0.0.0 dev bond0",
                                   "0.0.0.0/0.0.0.0 via 10.3.0.1 dev bond0"}));
        EXPECT_EQ(Commands(),
                  (Texts{"ifconfig eth1 down", "ifconfig eth2 down", "ifconfig eth1 0.0.0.0 up",
                         "ifconfig eth2 0.0.0.0 up", "ifenslave bond0 eth1 eth2"}));
    });
    const std::string card2 =
        Joined({own2,
                {"MTU = 1500", "BONDED = 1", "BONDNAME = bond0", "WORKMODE = 1", "BRIDGEEDED = 0",
                 "BRIDGENAME = ", "PRIO = 1"}});
    EXPECT_EQ(
        SavedFiles(),
        (Files{{"network",
                Joined({own0, {"DEFAULT_ETH = bond0"}, kAlone, {"MTU = 1500", "PRIO = 1"}})},
               {"network1", Joined({{"BONDED = 1"},
                                    own1,
                                    {"MTU = 1500", "BONDNAME = bond0", "WORKMODE = 1",
                                     "BRIDGEEDED = 0", "BRIDGENAME = ", "PRIO = 1"}})},
               {"network2", card2},
               {"networketh2", card2},
               {"networkip62", own6},
               {"networkip6eth2", own6},
               {"networkbond0", Joined({{"BONDMODE = 0"},
                                        ownBond,
                                        {"BONDMEMBERS = eth1,eth2", "MTU = 1500", "PRIO = 0"}})},
               {"resolv.conf", kDns},
               {"resolvip6.conf", kDns6}}));
    EXPECT_TRUE(SameFile("/mnt/mtd/Config/network2", CardFile("eth2")));
    SetBondMembers("bond0", "");
    ExpectNextBootSavesTheSame();
}

class BridgedBootTest : public WholeBootTest {
protected:
    void SetUp() override
    {
        WholeBootTest::SetUp();
        UseRtc("10.0.0.2", "255.255.0.0", "10.0.0.1");
        Put(CardFile("eth0"),
            Joined({Address("10.0.0.2", "255.255.0.0", "10.0.0.1"), {"MTU = 1500"}}));
        for (const char* card : {"eth1", "eth2"}) {
            Put(CardFile(card), Settings({"BRIDGEEDED = 1", "BRIDGENAME = br0", "BONDED = 0"}));
        }
        AddCards({"eth0", "eth1", "eth2"});
        OnCommand("brctl addbr br0", [](const std::string&) {
            kernel.Add("br0");
            SetBridgePorts("br0", {"eth1", "eth2"});
        });
    }

    static std::string Member(const std::string& address)
    {
        return Joined({{"BRIDGEEDED = 1", "BRIDGENAME = br0", "BONDED = 0",
                        "BONDNAME = ", "WORKMODE = 3", "MTU = 1500"},
                       Address(address, "255.255.255.0", "192.168.0.1"),
                       {"PRIO = 1"}});
    }
};

TEST_F(BridgedBootTest, ABridgeIsBuiltFromAMendedList)
{
    const Texts ownBridge = Address("10.3.0.2", "255.255.0.0", "10.3.0.1");
    Put(CardFile("br0"), Joined({{"BRIDGEMEMBERS = eth1"}, ownBridge, {"MTU = 1500"}}));
    Boot([] {
        EXPECT_EQ(CardsUp(),
                  (Texts{"eth0 10.0.0.2/255.255.0.0 1500", "br0 10.3.0.2/255.255.0.0 1500"}));
        EXPECT_EQ(Routes(), (Texts{"10.0.0.0/255.255.0.0 via 0.0.0.0 dev eth0",
                                   "10.3.0.0/255.255.0.0 via 0.0.0.0 dev br0",
                                   "0.0.0.0/0.0.0.0 via 10.0.0.1 dev eth0"}));
        EXPECT_EQ(TraceOf({"command brctl"}),
                  (Texts{"command brctl addbr br0", "command brctl addif br0 eth1",
                         "command brctl addif br0 eth2"}));
    });
    EXPECT_EQ(
        SavedFiles(),
        (Files{{"network", Joined({Address("10.0.0.2", "255.255.0.0", "10.0.0.1"),
                                   {"MTU = 1500"},
                                   kAlone,
                                   {"DEFAULT_ETH = eth0", "PRIO = 0"}})},
               {"network1", Member("192.168.0.109")},
               {"networketh2", Member("192.168.0.110")},
               {"networkbr0",
                Joined({{"BRIDGEMEMBERS = eth1,eth2"}, ownBridge, {"MTU = 1500", "PRIO = 1"}})},
               {"resolv.conf", kDns},
               {"resolvip6.conf", kDns6}}));
    Remove("/sys/class/net/br0");
    ExpectNextBootSavesTheSame();
}

TEST_F(BridgedBootTest, TheDefaultCardIsLookedForAmongWhatTheBootHasBrought)
{
    Put(CardFile("br0"), "BRIDGEMEMBERS = eth1,eth2\n");
    Lanrise({});
    // Eth0 was listed before the bridge was there, so it is not found, nor are the others.
    LogLines misses;
    for (const char* card : {"eth0", "eth0", "eth1", "eth2"}) {
        misses.push_back(Info("FindWordInLine", "can not find " + std::string(card) + " in br0,"));
    }
    LogLines said = LogOf("FindWordInLine");
    said.erase(said.begin(), said.end() - 4);
    EXPECT_EQ(said, misses);
    EXPECT_TRUE(Logged(Info("CheckDefaultEthConfig", "default eth is eth0.")));
}

TEST_F(BridgedBootTest, AnInterfaceThatTheBootHasBroughtGetsItsFile)
{
    Put(CardFile("br0"), "BRIDGEMEMBERS = eth1,eth2\n");
    OnCommand("brctl addif br0 eth2", [](const std::string&) { kernel.Add("usb0"); });
    Lanrise({});
    EXPECT_TRUE(Logged(Warn("CommonMain", "usb0 config file is not exit.")));
    EXPECT_TRUE(Exists(CardFile("usb0")));
    EXPECT_EQ(LogOf("FindWordInLine").back().text, "can not find eth2 in br0,usb0,");
}

TEST_F(WholeBootTest, ACardInBothABondAndABridgeStandsAlone)
{
    UseCmos("10.0.0.2", 16, "10.0.0.1");
    const Texts own0 = Address("10.0.0.2", "255.255.0.0", "10.0.0.1");
    Put(CardFile("eth0"), Joined({own0, {"MTU = 1500"}}));
    Put(CardFile("eth1"),
        Settings({"BONDED = 1", "BONDNAME = bond0", "BRIDGEEDED = 1", "BRIDGENAME = br0"}));
    Put(CardFile("eth2"), Settings({"BONDED = 1", "BONDNAME = bond0"}));
    Put(CardFile("eth3"), Settings({"BRIDGEEDED = 1", "BRIDGENAME = br0"}));
    Put(CardFile("bond0"), "BONDMODE = 1\nBONDMEMBERS = eth1,eth2\n");
    Put(CardFile("br0"), "BRIDGEMEMBERS = eth1,eth3\n");
    AddCards({"eth0", "eth1", "eth2", "eth3", "bond0"});
    Boot([] {
        EXPECT_EQ(LogOf("CheckWorkmodeConfig").size(), 1U);
        EXPECT_EQ(
            LogOf("CheckBondConfig"),
            LogLines{Warn("CheckBondConfig", "the bond0's member[eth2] from eth config is 1")});
        EXPECT_EQ(
            LogOf("CheckBridgeConfig"),
            LogLines{Warn("CheckBridgeConfig", "the br0's member[eth3] from eth config is 1")});
        EXPECT_EQ(CardsUp(),
                  (Texts{"eth0 10.0.0.2/255.255.0.0 1500", "eth1 192.168.0.109/255.255.255.0 1500",
                         "eth2 192.168.0.110/255.255.255.0 1500",
                         "eth3 192.168.0.111/255.255.255.0 1500"}));
        EXPECT_EQ(Commands(), Texts{});
    });
    EXPECT_EQ(
        SavedFiles(),
        (Files{
            {"network", Joined({own0, {"MTU = 1500"}, kAlone, {"DEFAULT_ETH = eth0", "PRIO = 0"}})},
            {"network1", NewCard("192.168.0.109", "192.168.0.1", 1)},
            {"networketh2", Joined({{"BONDED = 0", "BONDNAME = ", "WORKMODE = 0", "BRIDGEEDED = 0",
                                     "BRIDGENAME = ", "MTU = 1500"},
                                    Address("192.168.0.110", "255.255.255.0", "192.168.0.1"),
                                    {"PRIO = 1"}})},
            {"networketh3", Joined({{"BRIDGEEDED = 0", "BRIDGENAME = ", "BONDED = 0",
                                     "BONDNAME = ", "WORKMODE = 0", "MTU = 1500"},
                                    Address("192.168.0.111", "255.255.255.0", "192.168.0.1"),
                                    {"PRIO = 1"}})},
            {"networkbond0", Joined({{"BONDMODE = ", "BONDMEMBERS = ", "MTU = 1500"},
                                     Address("192.168.2.108", "255.255.255.0", "192.168.2.1"),
                                     {"PRIO = 1"}})},
            {"resolv.conf", kDns},
            {"resolvip6.conf", kDns6}}));
    ExpectNextBootSavesTheSame();
}

TEST_F(WholeBootTest, DamagedFilesAreMended)
{
    UseCmos("10.0.0.2", 16, "10.0.0.1");
    const std::string noise("\0\xff\xfe\n", 4);
    Put(CardFile("eth0"), noise + "garbage\nHOSTIP = 10.0.0.300\nSUBMASK\nFOO = bar\n");
    Put(CardFile("eth1"),
        Joined({Address("10.1.0.2", "255.255.0.0", "10.1.0.1"), {"MTU = 99999999999"}}) +
            "BONDED = 1");  // cut by a power failure
    Put(CardFile("eth2"), std::string(5000, 'x'));
    Put(CardFile("eth3"), "HOSTIP=\nHOSTIP = 10.3.0.2\nWORKMODE = x\n");
    Put("/mnt/mtd/Config/resolv.conf", "# by hand\nnameserver 10.0.0.53\n");
    AddCards({"eth0", "eth1", "eth2", "eth3"});
    Boot([] {
        EXPECT_EQ(CardsUp(),
                  (Texts{"eth0 10.0.0.2/255.255.0.0 1500", "eth1 10.1.0.2/255.255.0.0 1500",
                         "eth2 192.168.0.110/255.255.255.0 1500",
                         "eth3 192.168.0.111/255.255.255.0 1500"}));
        EXPECT_EQ(Routes(), (Texts{"10.0.0.0/255.255.0.0 via 0.0.0.0 dev eth0",
                                   "10.1.0.0/255.255.0.0 via 0.0.0.0 dev eth1",
                                   "192.168.0.0/255.255.255.0 via 0.0.0.0 dev eth2",
                                   "192.168.0.0/255.255.255.0 via 0.0.0.0 dev eth3",
                                   "0.0.0.0/0.0.0.0 via 10.0.0.1 dev eth0"}));
    });
    EXPECT_EQ(
        SavedFiles(),
        (Files{
            {"network",
             Joined({{"HOSTIP = 10.0.0.2", "SUBMASK = 255.255.0.0"},
                     kAlone,
                     {"MTU = 1500", "GATEWAYIP = 10.0.0.1", "DEFAULT_ETH = eth0", "PRIO = 0"}})},
            {"network1", Joined({Address("10.1.0.2", "255.255.0.0", "10.1.0.1"),
                                 {"MTU = 1500"},
                                 kAlone,
                                 {"PRIO = 1"}})},
            {"networketh2", NewCard("192.168.0.110", "192.168.0.1", 1)},
            {"networketh3",
             Joined({{"HOSTIP = 192.168.0.111", "HOSTIP = 10.3.0.2", "WORKMODE = 0", "BONDED = 0",
                      "BONDNAME = ", "BRIDGEEDED = 0", "BRIDGENAME = ", "MTU = 1500",
                      "SUBMASK = 255.255.255.0", "GATEWAYIP = 192.168.0.1", "PRIO = 1"}})},
            {"resolv.conf", kDns},
            {"resolvip6.conf", kDns6}}));
    ExpectNextBootSavesTheSame();
}

TEST_F(WholeBootTest, ASwitchInterfaceIsBroughtUpBesideTheCards)
{
    UseRtc("10.0.0.2", "255.255.0.0", "10.0.0.1");
    const Texts own0 = Address("10.0.0.2", "255.255.0.0", "10.0.0.1");
    Put(CardFile("eth0"), Joined({own0, {"MTU = 1500"}}));
    AddCards({"eth0", "eth1"});
    kernel.At("eth1").driver = "rt Switch";
    Boot([] {
        EXPECT_EQ(CardsUp(),
                  (Texts{"eth0 10.0.0.2/255.255.0.0 1500", "eth1 10.1.1.1/255.255.255.0 1500"}));
        EXPECT_EQ(Routes(), (Texts{"10.0.0.0/255.255.0.0 via 0.0.0.0 dev eth0",
                                   "10.1.1.0/255.255.255.0 via 0.0.0.0 dev eth1",
                                   "0.0.0.0/0.0.0.0 via 10.0.0.1 dev eth0"}));
    });
    EXPECT_EQ(SavedFiles()["network1"], Joined({{"BONDED = 0", "BONDNAME = ", "BRIDGEEDED = 0",
                                                 "BRIDGENAME = ", "WORKMODE = 2", "MTU = 1500"},
                                                Address("10.1.1.1", "255.255.255.0", "10.1.1.1"),
                                                {"PRIO = 1"}}));
    ExpectNextBootSavesTheSame();
}

// ---- order

TEST_F(WholeBootTest, EachPhaseInItsPlace)
{
    // A device on which every phase has something to say. The short addresses tell the cards apart
    // in the one message that does not name them.
    UseCmos("10.0.0.9", 8, "10.0.0.1");
    cmos.bytes[cmos.networkStart] ^= 1;
    FailAll("CMOSWrite", EIO);
    const Texts both = {"BONDED = 1", "BONDNAME = bond0", "BRIDGEEDED = 1", "BRIDGENAME = br0",
                        "MTU = 1500"};
    Put(CardFile("eth0"), Joined({Address("10.0.0.2", "255.0.0.0", "10.0.0.1"), {"MTU = 1500"}}));
    Put(CardFile("eth1"), Joined({both, Address("10.1", "255.0.0.0", "10.0.0.1")}));
    Put(CardFile("eth2"), Joined({both, Address("10.0.0.5", "255.0.0.0", "10.0.0.1")}));
    Put(CardFile("bond0"),
        Joined({{"BONDMODE = 9", "MTU = 1500"}, Address("10.2", "255.0.0.0", "10.0.0.1")}));
    Put(CardFile("wlan0"), Joined({{"MTU = 1500"}, Address("10.3", "255.0.0.0", "10.0.0.1")}));
    Put(CardFile("eth9"), Joined({{"MTU = 1500"}, Address("10.4", "255.0.0.0", "10.0.0.1")}));
    AddCards({"lo", "eth0", "eth1", "eth2", "bond0", "wlan0", "eth9"});
    kernel.At("eth9").driver = "rt Switch";
    kernel.routes = {{"127.0.0.0", "0.0.0.0", "255.0.0.0", "lo"}};
    Fail("ioctl SIOCSIFFLAGS wlan0", EPERM);
    EXPECT_TRUE(Lanrise({}));

    const std::string list = "eth0,eth1,eth2,bond0,wlan0,";
    const LogLine corrupt = Error("ReadFromCmos", "crc check error.");
    const auto emptyBridge = [](const std::string& file) {
        return Warn("GetValueByKey", "the BRIDGENAME from /mnt/mtd/Config/" + file + " is empty.");
    };
    const auto refused = [](const std::string& operation) {
        return Error(operation, "read from cmoe error.");
    };
    const auto unusable = [](const std::string& address) {
        return Error("CheckNetCardConfig",
                     "inet_pton failed! add: " + address + ", mask: 255.0.0.0, gateway: 10.0.0.1");
    };
    const auto lost = [](const std::string& word, const std::string& line) {
        return Info("FindWordInLine", "can not find " + word + " in " + line);
    };
    const auto added = [](const std::string& route) {
        return Info("Route_AddIPv4Route", route + "##########Route_AddIPv4Route###########");
    };
    LogLines expected = {
        Info("CheckTrunkBondConfig", "CheckTrunkBondConfig"),
        Info("IsTrunkBondConfig", "IsTrunkBondConfig ifName: bond0"),
        Info("IsTrunkBondConfig", "Is Trunk config"),
        Info("CheckTrunkBondConfig", "ifName: bond0, oldBondMode: 9"),
        Warn("CheckTrunkBondConfig", "Unknown mode: 9"),
        Warn("CheckBondConfig", "can not get bond member from config."),
        Error("SetValueByKey", "cannot fopen for read.[No such file or directory]"),  // br0's list
        Error("CheckWorkmodeConfig",
              " cannot determine eth1 workmode.delete from both bond and bridge."),
        Error("CheckWorkmodeConfig",
              " cannot determine eth2 workmode.delete from both bond and bridge."),
        // Bonds and bridges again, now that nobody claims them.
        emptyBridge("network"),
        emptyBridge("network1"),
        emptyBridge("networketh2"),
        emptyBridge("networkwlan0"),
        emptyBridge("networketh9"),
        // The backup, and eth0 beside it.
        Info("CheckDeviceType", " not exist. this is DVR."),
        Info("CheckDeviceType", "cmos offset is 10, len is 12"),
        corrupt,
        Error("CheckBackup", "Backup crc check error!!!"),
        Warn("RestBackup", "try to reset the backup memory! All the backup info will lost."),
        corrupt,
        refused("RestoreIP"),
        Warn("CheckEth0Config", "Restore eth0's IP failed"),
        corrupt,
        refused("RestoreMask"),
        Warn("CheckEth0Config", "Restore eht0's mask failed"),
        corrupt,
        refused("RestoreGateway"),
        Warn("CheckEth0Config", "Restore eth0's gateway failed"),
        Error("CheckEth0Config", "addr[] or mask[] or gateway[] invalid!"),
        corrupt,
        refused("BackupIP"),
        corrupt,
        refused("BackupGateway"),
        corrupt,
        refused("BackupMask"),
        // The other cards.
        unusable("10.1"),
    };
    for (int i = 3; i < 32; ++i) expected.push_back(lost("eth" + std::to_string(i), list));
    const LogLines rest = {
        unusable("10.2"),
        lost("bond1", list),
        unusable("10.3"),
        lost("wlan1", list),
        unusable("10.4"),
        // Bonds, bridges, cards.
        Warn("GetValueByKey", "the BONDMODE from /mnt/mtd/Config/networkbond0 is empty."),
        Error("Bridge_IsBridgeExist", "bridge nbp0 is not exist."),
        Warn("Bridge_needBridgeByInterNic", "get vnic interface failed"),
        corrupt,
        refused("BackupIP"),
        corrupt,
        refused("BackupMask"),
        corrupt,
        refused("BackupGateway"),
        Error("NetIOCtrl", "cmd 35092 error.[Operation not permitted] wlan0 "),
        Error("InterfaceUp", "up wlan0 failed,setflags error."),
        // The default card, among the interfaces that came since, which are none.
        Error("GetDefaultEthByConfig", "can not find default eth in config"),
        Warn("CheckDefaultEthConfig", "get default eth failed."),
        lost("eth0", ""),
        lost("eth0", ""),
        lost("eth1", ""),
        lost("eth2", ""),
        Info("CheckDefaultEthConfig", "default eth is eth0."),
        // The resolvers.
        Error("Dns_GetDnsFileInfo", "open /mnt/mtd/Config/resolv.conf failed"),
        Error("Dns_GetDnsFileInfo", "open /mnt/mtd/Config/resolv.conf failed"),
        Error("Dns_SetDnsAddress", "primary_6 addr.[]"),
        Error("Dns_SetDnsAddress", "srimary_6 addr.[]"),
        // The routes.
        Info("removeAllRoute", "ignore [lo] route\n"),
        Error("Bond_GetBondMembers", "open /sys/class/net/bond0/bonding/slaves failed\n"),
        added("10.0.0.0,0.0.0.0,255.0.0.0,eth0"),
        added("192.168.0.0,0.0.0.0,255.255.255.0,eth1"),
        added("10.0.0.0,0.0.0.0,255.0.0.0,eth2"),
        Error("Bond_GetBondMembers", "open /sys/class/net/bond0/bonding/slaves failed\n"),
        added("192.168.1.0,0.0.0.0,255.255.255.0,wlan0"),
        added("10.1.1.0,0.0.0.0,255.255.255.0,eth9"),
        Info("Route_IsExistInSys", "this route st.[10.0.0.0,0.0.0.0,255.0.0.0,eth0]"),
        added("0.0.0.0,10.0.0.1,0.0.0.0,eth0"),
        Error("setCmosVerifyFlag", "write cmos reset flag failed!"),
        Info("CommonMain", "lanrise is finished."),
    };
    expected.insert(expected.end(), rest.begin(), rest.end());
    EXPECT_EQ(Log(), expected);
}

TEST_F(WholeBootTest, ASecondListingThatFailsDoesNotEndTheBoot)
{
    UseRtc("10.0.0.2", "255.0.0.0", "10.0.0.1");
    Put(CardFile("eth0"), Joined({Address("10.0.0.2", "255.0.0.0", "10.0.0.1"),
                                  {"MTU = 1500", "DEFAULT_ETH = eth0"}}));
    AddCards({"eth0", "eth1"});
    // Behind the bridges: the search for virtual cards, then the listing.
    OnCall("closedir /mnt/mtd/Config", [] { Fail("open /proc/net/dev", EIO, 2); });
    Boot([] {
        EXPECT_EQ(LogOf("CommonMain"),
                  (LogLines{Info("CommonMain", "no switch in this device"),
                            Warn("CommonMain", "eth1 config file is not exit."),
                            Error("CommonMain", "can not get eth Names"),
                            Info("CommonMain", "lanrise is finished.")}));
        // There are 32 names now, all of them empty.
        EXPECT_EQ(LogOf("NetCardRecover").size() % 32, 0U);
        EXPECT_EQ(CardsUp(), Texts{});
        EXPECT_EQ(Routes(), (Texts{"10.0.0.0/255.0.0.0 via 0.0.0.0 dev eth0",
                                   "0.0.0.0/0.0.0.0 via 10.0.0.1 dev eth0"}));
    });
}

TEST_F(WholeBootTest, ACardThatCannotBeClearedIsTriedTwice)
{
    UseRtc("10.0.0.2", "255.0.0.0", "10.0.0.1");
    Put(CardFile("eth1"),
        Settings({"BONDED = 1", "BONDNAME = bond0", "BRIDGEEDED = 1", "BRIDGENAME = br0"}));
    AddCards({"eth0", "eth1", "bond0"});
    FailAll("fopen /mnt/mtd/Config/network1 w+", EROFS);
    Boot([] {
        const LogLine both =
            Error("CheckWorkmodeConfig",
                  " cannot determine eth1 workmode.delete from both bond and bridge.");
        EXPECT_EQ(LogOf("CheckWorkmodeConfig"), (LogLines{both, both}));
    });
}

// ---- power cuts

/// The files with their lines sorted: a file that was lost is built again in another order.
Files Sorted(Files files)
{
    for (auto& [name, text] : files) {
        std::istringstream stream(text);
        Texts lines;
        for (std::string line; std::getline(stream, line);) lines.push_back(line);
        std::sort(lines.begin(), lines.end());
        text = Settings(lines);
    }
    return files;
}

/// Ends the process at the `number`th call that begins with `call`.
void CutPowerAt(const std::string& call, int number)
{
    OnCall(call, [call, number] {
        if (number == 1) _exit(0);
        CutPowerAt(call, number - 1);
    });
}

/// Cut with the file emptied, with the file written, and between the two resolver files.
class PowerCutTest : public WholeBootTest, public testing::WithParamInterface<std::string> {};

INSTANTIATE_TEST_SUITE_P(CommonMain, PowerCutTest,
                         testing::Values("fflush", "fsync", "fclose /mnt/mtd/Config/resolv"),
                         [](const auto& test) {
                             return test.param.substr(0, test.param.find(' '));
                         });

TEST_P(PowerCutTest, IsMendedByTheNextBoot)
{
    static constexpr char kEnd[] = "/mnt/mtd/end";
    UseRtc("10.0.0.2", "255.0.0.0", "10.0.0.1");
    const std::string own = Settings(
        {"HOSTIP = 10.0.0.2", "SUBMASK = 255.0.0.0", "GATEWAYIP = 10.0.0.1", "MTU = 1500"});
    AddCards({"eth0", "eth1"});
    Put(CardFile("eth0"), own);
    Boot();
    const Files whole = Sorted(SavedFiles());
    for (int cut = 1; !Exists(kEnd); ++cut) {
        for (const auto& [name, text] : whole) Remove("/mnt/mtd/Config/" + name);
        Put(CardFile("eth0"), own);
        InNewProcess([cut] {
            CutPowerAt(GetParam(), cut);
            Lanrise({});
            Put(kEnd, "");
        });
        Boot([] {
            EXPECT_EQ(CardsUp(), (Texts{"eth0 10.0.0.2/255.0.0.0 1500",
                                        "eth1 192.168.0.109/255.255.255.0 1500"}));
        });
        EXPECT_EQ(Sorted(SavedFiles()), whole) << cut;
        EXPECT_EQ(RtcBlock(), "10.0.0.2 255.0.0.0 10.0.0.1") << cut;
        if (HasFailure()) break;
    }
}

// ---- whatever fails

TEST_F(WholeBootTest, WhateverFailsTheFilesStayWhole)
{
    UseRtc("10.0.0.2", "255.0.0.0", "10.0.0.1");
    Put("/mnt/mtd/Config/network2", "MTU = 1400\n");
    Put(CardFile("eth0"), Joined({Address("10.0.0.3", "255.0.0.0", "10.0.0.1"), {"MTU = 1500"}}));
    AddCards({"eth0"});
    kernel.routes = {{"10.0.0.0", "0.0.0.0", "255.0.0.0", "eth0"}};
    FailEachCall([] { Lanrise({}); }, [](const std::string&) { ExpectWellFormedFiles(); },
                 {"socket", "open /proc/net/route", "open /dev/pdcRtc"});
}

}  // namespace
