// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Program.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>

using namespace device;

namespace {

namespace fs = std::filesystem;

const std::string kFolder = std::string(kConfig) + "/";

const char kUsage[] = "-----------------------------------------------------------------\n"
                      "Usage:lanrise <ethname> <Ipaddress> <Netmask> <Gateway>\n"
                      "      lanrise setdef <ethname> -- change default card\n"
                      "Example:\n"
                      "eg.   lanrise eth0 192.168.1.100 255.255.0.0 192.168.1.1\n"
                      "eg.   lanrise setdef eth1 \n"
                      "-----------------------------------------------------------------\n";

const char kResolvers[] = "nameserver 8.8.8.8\n"
                          "nameserver 8.8.4.4\n"
                          "nameserver 2001:4860:4860::8888\n"
                          "nameserver 2001:4860:4860::8844\n";

const char kResolvers6[] = "nameserver 2001:4860:4860::8888\n"
                           "nameserver 2001:4860:4860::8844\n";

Texts Names(int count)
{
    Texts names;
    for (int i = 0; i < count; ++i) names.push_back("eth" + std::to_string(i));
    return names;
}

/// Eight cards, and settings that went through ten years.
class DamagedDeviceTest : public Device {
protected:
    void SetUp() override
    {
        Device::SetUp();
        AddCards(8);
        // Two default cards by mark, and a third by name, a VLAN that is gone.
        Save("eth0", 0, {"DEFAULT_ETH = eth1.100", "PRIO = 0"});
        Save("eth1", 1, {"PRIO = 0"});
        // The names that an old release gave to the files of eth2.
        Save("eth2", 2);
        fs::rename(CardFile("eth2"), kFolder + "network2");
        Put(kFolder + "networkip62", Lines({"HOSTIP = 2001:db8::2", "SUBMASK = 64"}));
        // Half a file, with what a cut left of it; eth4 has none at all.
        Put(CardFile("eth3"),
            "HOSTIP = 10.0.3.10\nSUBM\x01\xff" + std::string(40, '\0') + "TU = 15");
        // In a bond and in a bridge at once, neither of which is there.
        Save("eth5", 5,
             {"WORKMODE = 1", "BONDED = 1", "BONDNAME = bond0", "BRIDGEEDED = 1",
              "BRIDGENAME = br0"});
        Save("eth6", 6);
        Put(CardFile("eth6"), Lines({"HOSTIP = 10.0.6.10", "SUBMASK = 255.255.255.0",
                                     "GATEWAYIP = 10.9.9.1", "MTU = 1400"}));
        Save("eth7", 7);
        Put(CardFile("eth7"), Lines({"MTU = 0", "HOSTIP = 10.0.7.10", "SUBMASK = 255.255.255.0",
                                     "GATEWAYIP = 10.0.7.1"}));
        Put(kFolder + "resolv.conf", "# by hand\nnameserver 10.0.0.1\n");
        // Routes that nobody saved.
        Must("ip link set eth0 up; ip addr add 10.0.0.10/24 dev eth0;"
             " ip route add default via 10.0.0.99; ip route add 172.16.0.0/16 via 10.0.0.98;"
             " ip link set eth7 up; ip route add 172.17.0.0/16 dev eth7");
    }
};

TEST_F(DamagedDeviceTest, ComesBackOnTheNetwork)
{
    const Outcome boot = Lanrise();
    ExpectOnNetwork(boot, Names(8));
    EXPECT_EQ(boot.plain, kUsage);
    const char* const addresses[] = {"10.0.0.10/24",     "10.0.1.10/24",     "10.0.2.10/24",
                                     "192.168.0.111/24", "192.168.0.112/24", "10.0.5.10/24",
                                     "192.168.0.114/24", "10.0.7.10/24"};
    for (int i = 0; i < 8; ++i) {
        const std::string card = "eth" + std::to_string(i);
        EXPECT_EQ(Addresses(card), Texts{addresses[i]});
        EXPECT_EQ(Mtu(card), i == 6 ? 1400 : 1500) << card;
    }
    EXPECT_EQ(Routes(),
              (Texts{"10.0.0.0/24 dev eth0", "10.0.1.0/24 dev eth1", "10.0.2.0/24 dev eth2",
                     "10.0.5.0/24 dev eth5", "10.0.7.0/24 dev eth7", "192.168.0.0/24 dev eth3",
                     "192.168.0.0/24 dev eth4", "192.168.0.0/24 dev eth6",
                     "default via 10.0.1.1 dev eth1"}));
}

TEST_F(DamagedDeviceTest, SavesWhatItRepaired)
{
    EXPECT_EQ(Lanrise().status, 0);
    for (int i = 0; i < 8; ++i) {
        const std::string card = "eth" + std::to_string(i);
        EXPECT_EQ(Addresses(card), Texts{Saved(card, "HOSTIP") + "/24"});
        EXPECT_EQ(Saved(card, "SUBMASK"), "255.255.255.0") << card;
        EXPECT_EQ(Saved(card, "MTU"), std::to_string(Mtu(card))) << card;
        EXPECT_EQ(Saved(card, "PRIO"), i == 1 ? "0" : "1") << card;
        EXPECT_EQ(Saved(card, "WORKMODE"), "0") << card;
        EXPECT_EQ(Saved(card, "BONDED"), "0") << card;
        EXPECT_EQ(Saved(card, "BRIDGEEDED"), "0") << card;
    }
    EXPECT_EQ(Saved("eth0", "DEFAULT_ETH"), "eth1");
    for (const char* card : {"eth3", "eth4", "eth6"}) {
        EXPECT_EQ(Saved(card, "GATEWAYIP"), "192.168.0.1");
    }
    EXPECT_EQ(Get(kFolder + "resolv.conf"), kResolvers);
    EXPECT_EQ(Get(kFolder + "resolvip6.conf"), kResolvers6);
}

TEST_F(DamagedDeviceTest, KeepsBothNamesOfAFileFromAnOldRelease)
{
    EXPECT_EQ(Lanrise().status, 0);
    EXPECT_TRUE(fs::equivalent(kFolder + "network2", kFolder + "networketh2"));
    EXPECT_TRUE(fs::equivalent(kFolder + "networkip62", kFolder + "networkip6eth2"));
    EXPECT_EQ(Get(kFolder + "networkip6eth2"), Lines({"HOSTIP = 2001:db8::2", "SUBMASK = 64"}));
}

TEST_F(DamagedDeviceTest, ASecondBootChangesNeitherFilesNorNetwork)
{
    EXPECT_EQ(Lanrise().status, 0);
    const auto files = SavedFiles();
    const Texts network = KernelState();
    EXPECT_EQ(Lanrise().status, 0);
    EXPECT_EQ(SavedFiles(), files);
    EXPECT_EQ(KernelState(), network);
}

TEST_F(DamagedDeviceTest, ABootAfterAColdStartBringsTheSameNetwork)
{
    EXPECT_EQ(Lanrise().status, 0);
    const Texts network = KernelState();
    for (const std::string& card : Names(8)) {
        Must("ip link set " + card + " down; ip addr flush dev " + card);
    }
    ASSERT_EQ(Routes(), Texts{});
    EXPECT_EQ(Lanrise().status, 0);
    EXPECT_EQ(KernelState(), network);
}

class BootTest : public Device {};

TEST_F(BootTest, ABlankDeviceGetsItsFactoryAddresses)
{
    AddCards(3);
    ExpectOnNetwork(Lanrise(), Names(3));
    EXPECT_EQ(Addresses("eth0"), Texts{"192.168.0.108/24"});
    EXPECT_EQ(Addresses("eth1"), Texts{"192.168.0.109/24"});
    EXPECT_EQ(Addresses("eth2"), Texts{"192.168.0.110/24"});
    EXPECT_EQ(Routes().back(), "default via 192.168.0.1 dev eth0");
    EXPECT_EQ(Saved("eth0", "DEFAULT_ETH"), "eth0");
}

TEST_F(BootTest, ADeviceWithoutCardsRunsToTheEnd)
{
    const Outcome boot = Lanrise();
    EXPECT_EQ(boot.status, 0);
    EXPECT_TRUE(boot.Finished());
    EXPECT_EQ(Get(kFolder + "resolv.conf"), kResolvers);
}

TEST_F(BootTest, AGapInTheCardsDoesNotStopTheWalk)
{
    AddCard("eth0");
    AddCard("eth5");
    AddCard("eth31");
    ExpectOnNetwork(Lanrise(), {"eth0", "eth5", "eth31"});
    EXPECT_EQ(Addresses("eth31"), Texts{"192.168.0.139/24"});
}

TEST_F(BootTest, WirelessCardsHaveANetOfTheirOwn)
{
    AddCard("eth0");
    AddCard("wlan0");
    ExpectOnNetwork(Lanrise(), {"eth0", "wlan0"});
    EXPECT_EQ(Addresses("wlan0"), Texts{"192.168.1.108/24"});
}

TEST_F(BootTest, ADefaultCardThatIsGoneStaysSavedAndTheNetRoutesStand)
{
    AddCards(2);
    Save("eth0", 0, {"DEFAULT_ETH = eth9"});
    Save("eth1", 1);
    const Outcome boot = Lanrise();
    EXPECT_EQ(boot.status, 0);
    EXPECT_EQ(Routes(), (Texts{"10.0.0.0/24 dev eth0", "10.0.1.0/24 dev eth1"}));
    EXPECT_EQ(Saved("eth0", "DEFAULT_ETH"), "eth9");
    EXPECT_TRUE(boot.Says(Info("CheckDefaultEthConfig", "default eth is eth9.")));
    EXPECT_TRUE(boot.Says(Error("RouteAddDefIPv4", "Can not get eth9 default gw.")));
}

TEST_F(BootTest, WithoutASavedNameTheMarkTellsTheDefaultCard)
{
    AddCards(2);
    Save("eth0", 0, {"PRIO = 1"});
    Save("eth1", 1, {"PRIO = 0"});
    ExpectOnNetwork(Lanrise(), Names(2));
    EXPECT_EQ(Routes().back(), "default via 10.0.1.1 dev eth1");
    EXPECT_EQ(Saved("eth0", "DEFAULT_ETH"), "eth1");
}

TEST_F(BootTest, RoutesOverLoopbackAreLeftAlone)
{
    AddCard("eth0");
    Must("ip route add 172.16.0.0/16 dev lo");
    const Outcome boot = Lanrise();
    ExpectOnNetwork(boot, {"eth0"});
    EXPECT_EQ(Routes()[0], "172.16.0.0/16 dev lo");
    EXPECT_TRUE(boot.Says(Info("removeAllRoute", "ignore [lo] route\n")));
}

TEST_F(BootTest, OfMoreThanThirtyTwoRoutesTheRestStays)
{
    AddCard("eth0");
    Must("ip link set eth0 up; for i in $(seq 10 49); do"
         " ip route add 172.16.$i.0/24 dev eth0; done");
    EXPECT_EQ(Lanrise().status, 0);
    const Texts routes = Routes();
    EXPECT_EQ(routes.front(), "172.16.42.0/24 dev eth0");
    EXPECT_EQ(routes.size(), 8U + 2U);
}

TEST_F(BootTest, ThirtyTwoCardsComeUpAndThoseBeyondAreNotTouched)
{
    AddCards(36);
    const Texts all = InKernelOrder(Names(36));
    const Texts listed(all.begin(), all.begin() + 32);
    const Outcome boot = Lanrise();
    EXPECT_EQ(boot.status, 0);
    EXPECT_TRUE(boot.Finished());
    for (const std::string& card : all) {
        const bool known = std::find(listed.begin(), listed.end(), card) != listed.end();
        EXPECT_EQ(IsUp(card), known) << card;
        EXPECT_EQ(Addresses(card).size(), known ? 1U : 0U) << card;
        EXPECT_EQ(fs::exists(CardFile(card)), known) << card;
    }
    const Texts network = KernelState();
    const auto files = SavedFiles();
    EXPECT_EQ(Lanrise().status, 0);
    EXPECT_EQ(KernelState(), network);
    EXPECT_EQ(SavedFiles(), files);
}

TEST_F(BootTest, NamesAtTheLimitOfFifteenCharactersAreServed)
{
    Texts cards;
    for (int i = 0; i < 12; ++i) cards.push_back("eth-abcdefghi" + std::to_string(10 + i));
    for (int i = 0; i < 12; ++i) {
        AddCard(cards[i]);
        Save(cards[i], i, {"PRIO = " + std::string(i == 3 ? "0" : "1")});
    }
    ExpectOnNetwork(Lanrise(), cards);
    EXPECT_EQ(Addresses(cards[11]), Texts{"10.0.11.10/24"});
    EXPECT_EQ(Routes().back(), "default via 10.0.3.1 dev " + cards[3]);
    EXPECT_EQ(Saved("eth0", "DEFAULT_ETH"), cards[3]);
}

TEST_F(BootTest, AListOfNamesThatIsFullDoesNotStopIt)
{
    // Thirty-two names of fifteen characters: twice what the texts of names can hold.
    for (int i = 0; i < 32; ++i) AddCard("eth-abcdefghi" + std::to_string(10 + i));
    const Outcome boot = Lanrise();
    EXPECT_EQ(boot.status, 0);
    EXPECT_TRUE(boot.Finished());
    for (int i = 0; i < 32; ++i) EXPECT_TRUE(IsUp("eth-abcdefghi" + std::to_string(10 + i)));
}

TEST_F(BootTest, WithoutTheKernelsTableThereIsNothingToDo)
{
    AddCard("eth0");
    Must("mkdir /mnt/empty");
    const Result result = Try("mount --bind /mnt/empty /proc/$$/net && exec " VORLIX_LANRISE);
    EXPECT_EQ(result.status, 255);
    const output::Parts parts = output::TakeApart(result.output);
    EXPECT_EQ(parts.log,
              (LogLines{Error("GetAllInterfaceInfo", "Open file /proc/net/dev failed!\n"),
                        Error("CommonMain", "can not get eth Names")}));
    EXPECT_EQ(parts.plain, kUsage);
}

// ---- places that cannot be written or read

class BadFlashTest : public Device {
protected:
    void SetUp() override
    {
        Device::SetUp();
        AddCards(3);
        for (int i = 0; i < 3; ++i) Save("eth" + std::to_string(i), i, {"WORKMODE = 0"});
    }

    /// Either file will do for the IPv6 servers.
    static void ExpectResolvers()
    {
        const std::string all = Get(kFolder + "resolv.conf");
        EXPECT_EQ(all.rfind("nameserver 8.8.8.8\nnameserver 8.8.4.4\n", 0), 0U) << all;
        EXPECT_TRUE(all == kResolvers || Get(kFolder + "resolvip6.conf") == kResolvers6) << all;
    }

    static void ExpectUp(const Outcome& boot)
    {
        EXPECT_EQ(boot.status, 0);
        EXPECT_TRUE(boot.Finished());
        for (const std::string& card : Names(3)) EXPECT_TRUE(IsUp(card)) << card;
    }
};

TEST_F(BadFlashTest, ReadOnlySettingsAreUsedAsTheyAre)
{
    Put(CardFile("eth0"), Get(CardFile("eth0")) + "DEFAULT_ETH = eth2\n");
    const auto files = SavedFiles();
    SettingsReadOnly();
    ExpectOnNetwork(Lanrise(), Names(3));
    EXPECT_EQ(Addresses("eth1"), Texts{"10.0.1.10/24"});
    EXPECT_EQ(Routes().back(), "default via 10.0.2.1 dev eth2");
    EXPECT_EQ(SavedFiles(), files);
}

TEST_F(BadFlashTest, AReadOnlyEmptyPlaceLeavesTheCardsUp)
{
    Must("rm /mnt/mtd/Config/*");
    SettingsReadOnly();
    ExpectUp(Lanrise());
    EXPECT_EQ(SavedFiles().size(), 0U);
}

TEST_F(BadFlashTest, AMissingPlaceLeavesTheCardsUp)
{
    fs::remove_all(kConfig);
    ExpectUp(Lanrise());
    EXPECT_FALSE(fs::exists(kConfig));
}

TEST_F(BadFlashTest, AFileInPlaceOfTheFolderLeavesTheCardsUp)
{
    fs::remove_all(kConfig);
    Put(kConfig, "not a folder");
    ExpectUp(Lanrise());
    EXPECT_EQ(Get(kConfig), "not a folder");
}

TEST_F(BadFlashTest, AFullPlaceLeavesTheCardsUpAndWhatIsSavedWhole)
{
    const auto files = SavedFiles();
    SettingsOfSize(12 * 4096);
    for (const auto& [name, text] : files) Put(kFolder + name, text);
    (void)Try("cat /dev/zero > /mnt/mtd/Config/filler");
    const Outcome boot = Lanrise();
    ExpectOnNetwork(boot, Names(3));
    EXPECT_EQ(Addresses("eth2"), Texts{"10.0.2.10/24"});
    for (const std::string& card : Names(3)) EXPECT_EQ(Saved(card, "MTU"), "1500") << card;
}

TEST_F(BadFlashTest, FoldersInPlaceOfFilesLeaveTheCardsUp)
{
    for (const std::string& card : Names(3)) {
        fs::remove(CardFile(card));
        fs::create_directory(CardFile(card));
    }
    fs::create_directory(kFolder + "resolv.conf");
    ExpectUp(Lanrise());
}

TEST_F(BadFlashTest, AnyOneFileLostEmptyOrCutIsRepaired)
{
    ExpectOnNetwork(Lanrise(), Names(3));
    const auto files = SavedFiles();
    for (const auto& [name, text] : files) {
        for (const size_t rest : {std::string::npos, size_t{0}, text.size() / 2}) {
            SCOPED_TRACE(name + " cut to " + std::to_string(rest));
            for (const auto& [each, whole] : files) Put(kFolder + each, whole);
            if (rest == std::string::npos) {
                fs::remove(kFolder + name);
            } else {
                Put(kFolder + name, text.substr(0, rest));
            }
            ExpectOnNetwork(Lanrise(), Names(3));
            ExpectResolvers();
        }
    }
}

/// A setting file as no release ever wrote it.
std::string HostileText(std::mt19937& random)
{
    static const Texts pieces = {"HOSTIP = ",
                                 "SUBMASK = ",
                                 "GATEWAYIP = ",
                                 "MTU = ",
                                 "PRIO = ",
                                 "WORKMODE = ",
                                 "BONDED = ",
                                 "BONDNAME = ",
                                 "BRIDGEEDED = ",
                                 "BRIDGENAME = ",
                                 "DEFAULT_ETH = ",
                                 "BONDMEMBERS = ",
                                 "10.0.0.2",
                                 "255.255.255.0",
                                 "0.0.0.0",
                                 "10.0.0.1",
                                 "1",
                                 "0",
                                 "-1",
                                 "6",
                                 "eth1",
                                 "bond0",
                                 "br0",
                                 "eth0,eth1",
                                 "99999999999",
                                 "%s%n%s",
                                 "\xff\xfe",
                                 std::string(1, '\0'),
                                 std::string(300, 'x'),
                                 "=",
                                 " ",
                                 "\t"};
    std::string text;
    const auto length = random() % 40;
    for (unsigned i = 0; i < length; ++i) {
        text += pieces[random() % pieces.size()];
        if (random() % 2 == 0) text += "\n";
    }
    return text;
}

TEST_F(BadFlashTest, HostileFilesOfAllKindsDoNotStopIt)
{
    std::mt19937 random(7);
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE(round);
        fs::remove_all(kConfig);
        fs::create_directory(kConfig);
        for (const char* name : {"network", "network1", "networketh2", "network2", "resolv.conf",
                                 "resolvip6.conf", "poeMode.conf", "networkbond0", "networkbr0"}) {
            Put(kFolder + name, HostileText(random));
        }
        const Outcome boot = Lanrise();
        ASSERT_EQ(boot.status, 0);
        ASSERT_TRUE(boot.Finished());
    }
}

// ---- the backup memory

class BackupTest : public Device {
protected:
    void SetUp() override
    {
        Device::SetUp();
        AddCards(2);
        Put("/mnt/cmos", std::string(64, '\0'));
        Save("eth0", 0);
        Save("eth1", 1);
        // The first boot of a board marks its memory as valid, the second fills it.
        EXPECT_EQ(LanriseWithBackup().status, 0);
        EXPECT_EQ(LanriseWithBackup().status, 0);
    }
};

TEST_F(BackupTest, BringsTheFirstCardBackWhenItsFileIsLost)
{
    fs::remove(CardFile("eth0"));
    ExpectOnNetwork(LanriseWithBackup(), Names(2));
    EXPECT_EQ(Addresses("eth0"), Texts{"10.0.0.10/24"});
    EXPECT_EQ(Saved("eth0", "HOSTIP"), "10.0.0.10");
    EXPECT_EQ(Saved("eth0", "GATEWAYIP"), "10.0.0.1");
}

TEST_F(BackupTest, FollowsTheAddressForm)
{
    EXPECT_EQ(LanriseWithBackup("eth0 10.7.0.9 255.255.0.0 10.7.0.1").status, 0);
    fs::remove_all(kConfig);
    fs::create_directory(kConfig);
    EXPECT_EQ(LanriseWithBackup().status, 0);
    EXPECT_EQ(Addresses("eth0"), Texts{"10.7.0.9/16"});
    EXPECT_EQ(Addresses("eth1"), Texts{"192.168.0.109/24"});
}

TEST_F(BackupTest, OneThatLostItsPowerIsFilledFromTheFile)
{
    const std::string chip = Get("/mnt/cmos");
    Put("/mnt/cmos", std::string(64, '\xff'));
    for (int boot = 0; boot < 2; ++boot) {
        ExpectOnNetwork(LanriseWithBackup(), Names(2));
        EXPECT_EQ(Addresses("eth0"), Texts{"10.0.0.10/24"});
    }
    EXPECT_EQ(Get("/mnt/cmos").substr(16, 11), chip.substr(16, 11));
}

TEST_F(BackupTest, ASecondBootChangesNoByteOfIt)
{
    const std::string chip = Get("/mnt/cmos");
    const auto files = SavedFiles();
    EXPECT_EQ(LanriseWithBackup().status, 0);
    EXPECT_EQ(Get("/mnt/cmos"), chip);
    EXPECT_EQ(SavedFiles(), files);
}

}  // namespace
