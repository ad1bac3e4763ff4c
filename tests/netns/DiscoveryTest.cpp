// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Base.h"
#include "Network.h"
#include "Network6.h"

#include "Device.h"

#include <cstring>

#include <arpa/inet.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace device;

namespace {

/// What a listing gave: its names, its count, its result.
struct Listing {
    explicit Listing(int wanted = 32) : count(wanted)
    {
        memset(names, '#', sizeof(names));  // a listing clears all entries
        found = GetAllInterfaceInfo(names, &count);
    }

    Texts Names() const
    {
        Texts texts;
        for (int i = 0; i < count; ++i) texts.emplace_back(names[i]);
        return texts;
    }

    char names[32][16];
    int count;
    bool found;
};

bool Exists(const char* name)
{
    return CheckEthExist(&name, 1);
}

class GetAllInterfaceInfoTest : public Device {};

TEST_F(GetAllInterfaceInfoTest, ListsCardsInTheKernelsOrderWithoutLoopback)
{
    AddCards(3);
    const Listing listing;
    EXPECT_TRUE(listing.found);
    EXPECT_EQ(listing.Names(), InKernelOrder({"eth0", "eth1", "eth2"}));
}

TEST_F(GetAllInterfaceInfoTest, ADeviceWithoutCardsHasAnEmptyList)
{
    const Listing listing;
    EXPECT_TRUE(listing.found);
    EXPECT_EQ(listing.count, 0);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(GetAllInterfaceInfoTest, KindsAreToldByTheirNames)
{
    for (const char* name : {"veth0", "docker0", "br-12", "tun0", "eth0", "wlan0", "bond0", "usb0",
                             "lte0", "ppp0", "apra0", "vnic0", "nbp0", "mybridge"}) {
        AddCard(name);
    }
    EXPECT_EQ(Listing().Names(), InKernelOrder({"eth0", "wlan0", "bond0", "usb0", "lte0", "ppp0",
                                                "apra0", "mybridge"}));
}

TEST_F(GetAllInterfaceInfoTest, SeesACardThatIsPluggedInLaterAndMissesOneThatIsGone)
{
    AddCards(2);
    EXPECT_EQ(Listing().Names(), InKernelOrder({"eth0", "eth1"}));
    AddCard("eth7");
    Must("ip link del eth0");
    EXPECT_EQ(Listing().Names(), InKernelOrder({"eth1", "eth7"}));
}

TEST_F(GetAllInterfaceInfoTest, SeesACardUnderItsNewName)
{
    AddCard("eth0");
    Must("ip link set eth0 name usb3");
    EXPECT_EQ(Listing().Names(), Texts{"usb3"});
}

TEST_F(GetAllInterfaceInfoTest, NamesAtTheKernelsLimitOfFifteenCharactersAreWhole)
{
    AddCard("eth012345678901");
    AddCard("wlan-abcdefghij");
    EXPECT_EQ(Listing().Names(), InKernelOrder({"eth012345678901", "wlan-abcdefghij"}));
    EXPECT_EQ(LogOf("getNetIfNameNoFilter"), LogLines{});
}

TEST_F(GetAllInterfaceInfoTest, ThirtyTwoCardsAreListedAndAThirtyThirdIsNot)
{
    AddCards(31);
    EXPECT_EQ(Listing().count, 31);
    AddCard("eth31");
    EXPECT_EQ(Listing().count, 32);
    AddCard("eth32");
    const Listing over;
    EXPECT_TRUE(over.found);
    Texts first;
    for (int i = 0; i <= 32; ++i) first.push_back("eth" + std::to_string(i));
    first = InKernelOrder(first);
    first.pop_back();
    EXPECT_EQ(over.Names(), first);
}

TEST_F(GetAllInterfaceInfoTest, GivesNoMoreThanAskedForAndClearsTheRest)
{
    AddCards(3);
    const Listing one(1);
    EXPECT_EQ(one.count, 1);
    EXPECT_EQ(one.names[0], InKernelOrder({"eth0", "eth1", "eth2"})[0]);
    // The next name that was looked at stands behind it; all others are cleared.
    const std::string rest(one.names[2], sizeof(one.names) - 2 * sizeof(one.names[0]));
    EXPECT_EQ(rest, std::string(rest.size(), '\0'));
}

TEST_F(GetAllInterfaceInfoTest, ACardSavedAsBothIsFollowedByItsSwitchEntry)
{
    AddCard("eth0");
    Put(std::string(kConfig) + "/poeMode.conf", "eth0 = 2\n");
    EXPECT_EQ(Listing().Names(), (Texts{"eth0", "eth0:poe"}));
}

class ListsByNameTest : public Device {};

TEST_F(ListsByNameTest, FindBridgesTheKernelMadeAndWhateverIsCalledLikeOne)
{
    AddCard("eth0");
    NEEDS_LINK("br0 type bridge");
    AddCard("br-1234");
    char names[32][16];
    int count = 32;
    ASSERT_TRUE(GetBridgeInterfaceInfo(names, &count));
    ASSERT_EQ(count, 2);
    EXPECT_EQ((Texts{names[0], names[1]}), InKernelOrder({"br0", "br-1234"}));
}

TEST_F(ListsByNameTest, ReachTheInternalKinds)
{
    for (const char* name : {"eth0", "nbp0", "vnic0", "vnic1"}) AddCard(name);
    char names[32][16];
    int count = 32;
    ASSERT_TRUE(GetNbpInterfaceInfo(names, &count));
    EXPECT_EQ(count, 1);
    EXPECT_STREQ(names[0], "nbp0");
    count = 32;
    ASSERT_TRUE(GetVnicInterfaceInfo(names, &count));
    ASSERT_EQ(count, 2);
    EXPECT_EQ((Texts{names[0], names[1]}), InKernelOrder({"vnic0", "vnic1"}));
}

TEST_F(ListsByNameTest, NoneLeavesTheCountAlone)
{
    AddCard("eth0");
    char names[32][16];
    int count = 32;
    EXPECT_FALSE(GetVnicInterfaceInfo(names, &count));
    EXPECT_EQ(count, 32);
}

class GetNormalInterfaceInfoTest : public Device {};

/// A counter of a card, as /sys tells it.
uint64_t Counter(const std::string& card, const std::string& counter)
{
    return std::stoull(Get("/sys/class/net/" + card + "/statistics/" + counter));
}

void SendDatagrams(const char* address, int count)
{
    const int sender = socket(AF_INET, SOCK_DGRAM, 0);
    sockaddr_in discard{};
    discard.sin_family = AF_INET;
    discard.sin_port = htons(9);
    ASSERT_EQ(inet_pton(AF_INET, address, &discard.sin_addr), 1);
    for (int i = 0; i < count; ++i) {
        EXPECT_EQ(sendto(sender, "x", 1, 0, reinterpret_cast<sockaddr*>(&discard), sizeof(discard)),
                  1);
    }
    close(sender);
}

TEST_F(GetNormalInterfaceInfoTest, CountersAreThoseOfTheKernel)
{
    AddCardWithGateway("eth0", "10.0.0.1/24");
    Must("ip addr add 10.0.0.2/24 dev eth0 && ip link set eth0 up");
    Must("ip neigh add 10.0.0.1 lladdr 02:00:00:00:00:99 dev eth0");
    SendDatagrams("10.0.0.1", 5);

    const uint64_t packets = Counter("eth0", "tx_packets");
    const uint64_t bytes = Counter("eth0", "tx_bytes");
    InterfaceInfo info[4] = {};
    int count = 4;
    ASSERT_TRUE(GetNormalInterfaceInfo(info, &count));
    ASSERT_EQ(count, 1);
    EXPECT_STREQ(info[0].name, "eth0");
    // The card may say something by itself meanwhile.
    EXPECT_GE(packets, 5U);
    EXPECT_GE(info[0].netDatastat.transmittedPackets, packets);
    EXPECT_LE(info[0].netDatastat.transmittedPackets, Counter("eth0", "tx_packets"));
    EXPECT_GE(info[0].netDatastat.transmittedBytes, bytes);
    EXPECT_LE(info[0].netDatastat.transmittedBytes, Counter("eth0", "tx_bytes"));
}

class CheckEthExistTest : public Device {};

TEST_F(CheckEthExistTest, KnowsRealCardsAliasesAndFutureBridges)
{
    AddCards(2);
    EXPECT_TRUE(Exists("eth1"));
    EXPECT_TRUE(Exists("eth1:1"));
    EXPECT_TRUE(Exists("eth0:poe"));
    EXPECT_TRUE(Exists("br7"));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(CheckEthExistTest, RefusesACardThatIsNotThereAndPartsOfNames)
{
    AddCard("eth0");
    EXPECT_FALSE(Exists("eth2"));
    EXPECT_FALSE(Exists("eth"));
    EXPECT_FALSE(Exists("lo"));
    EXPECT_EQ(LogOf("CheckEthExist"),
              (LogLines{Error("CheckEthExist", "can not find eth2 in eth0,."),
                        Error("CheckEthExist", "can not find eth in eth0,."),
                        Error("CheckEthExist", "can not find lo in eth0,.")}));
}

TEST_F(CheckEthExistTest, AsksForInternalBridgesAmongThese)
{
    for (const char* name : {"eth0", "nbp0"}) AddCard(name);
    EXPECT_TRUE(Exists("nbp0"));
    EXPECT_FALSE(Exists("nbp1"));
}

class SwitchTest : public Device {};

TEST_F(SwitchTest, OrdinaryDriversMakeNoSwitch)
{
    AddCards(2);
    char name[16] = {};
    EXPECT_FALSE(GetSwitchInterface(name, sizeof(name)));
    EXPECT_FALSE(IsSwitch("eth0"));
    EXPECT_EQ(isSwitchByName("eth1"), 0);
    EXPECT_EQ(LogOf("GetSwitchInterface"),
              LogLines{Info("GetSwitchInterface", "can no find switch.")});
}

TEST_F(SwitchTest, ASavedModeMakesOne)
{
    AddCards(2);
    Put(std::string(kConfig) + "/poeMode.conf", "eth1 = 1\n");
    char name[16] = {};
    EXPECT_TRUE(GetSwitchInterface(name, sizeof(name)));
    EXPECT_STREQ(name, "eth1");
}

TEST_F(SwitchTest, TheDriversRealNameIsAsked)
{
    AddCard("eth0");
    EXPECT_TRUE(CheckNetCardByDrvName("eth0", "veth"));
    EXPECT_FALSE(CheckNetCardByDrvName("eth0", "Switch"));
    EXPECT_FALSE(CheckNetCardByDrvName("eth9", "veth"));
    EXPECT_EQ(Log(), (LogLines{Error("NetIOCtrl", "cmd 35142 error.[No such device] eth9 ")}));
}

class WirelessTest : public Device {};

TEST_F(WirelessTest, WithoutAWirelessTableTheNameDecides)
{
    bool connected = true;
    EXPECT_TRUE(NetCardIsWifi("wlan0", &connected));
    EXPECT_FALSE(connected);
    EXPECT_FALSE(NetCardIsWifi("eth0", &connected));
}

class FlagsTest : public Device {};

TEST_F(FlagsTest, UpAndDownChangeTheUpFlagAlone)
{
    AddCard("eth0");
    Must("ip link set eth0 multicast off promisc on");
    const std::string before = Flags("eth0");
    EXPECT_FALSE(IsUp("eth0"));

    EXPECT_TRUE(InterfaceUp("eth0"));
    EXPECT_TRUE(IsUp("eth0"));
    EXPECT_EQ(Get("/sys/class/net/eth0/flags"), "0x103\n");

    EXPECT_TRUE(InterfaceDown("eth0"));
    EXPECT_EQ(Flags("eth0"), before);
    EXPECT_EQ(Get("/sys/class/net/eth0/flags"), "0x102\n");
}

TEST_F(FlagsTest, ACardThatIsGoneIsAnErrorWithTheKernelsReason)
{
    EXPECT_FALSE(InterfaceUp("eth0"));
    EXPECT_FALSE(InterfaceDown("eth0"));
    EXPECT_EQ(Log(), (LogLines{Error("NetIOCtrl", "cmd 35091 error.[No such device] eth0 "),
                               Error("InterfaceUp", "up eth0 failed,getflags error."),
                               Error("NetIOCtrl", "cmd 35091 error.[No such device] eth0 "),
                               Error("InterfaceDown", "down eth0 failed,getflags error.")}));
}

TEST_F(FlagsTest, LinkFollowsTheCable)
{
    AddCard("eth0");
    EXPECT_FALSE(InterfaceIsLink("eth0"));
    Must("ip link set eth0 up");
    EXPECT_TRUE(InterfaceIsLink("eth0"));
    Must("ip -n peer link set eth0 down");
    EXPECT_FALSE(InterfaceIsLink("eth0"));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(FlagsTest, ADriverWithoutLinkQueryReadsAsNoLink)
{
    EXPECT_FALSE(InterfaceIsLink("eth0"));
    EXPECT_EQ(Log(), LogLines{Error("InterfaceIsLink", "ioctl eth0 failed,.")});
}

TEST_F(FlagsTest, AnAddressIsSeenWhenTheKernelHasOne)
{
    AddCard("eth0");
    EXPECT_FALSE(InterfaceIpIsExist("eth0"));
    Must("ip addr add 10.0.0.2/24 dev eth0");
    EXPECT_TRUE(InterfaceIpIsExist("eth0"));
    EXPECT_FALSE(InterfaceIpIsExist("eth1"));
    EXPECT_EQ(Log(), LogLines{});
}

// ---- a process that has used up its descriptors

/// Leaves this process no free descriptor for the length of a scope.
class NoFreeDescriptor {
public:
    NoFreeDescriptor()
    {
        getrlimit(RLIMIT_NOFILE, &before_);
        rlimit few = before_;
        for (few.rlim_cur = 0; fcntl(static_cast<int>(few.rlim_cur), F_GETFD) >= 0;) ++few.rlim_cur;
        setrlimit(RLIMIT_NOFILE, &few);
    }
    ~NoFreeDescriptor() { setrlimit(RLIMIT_NOFILE, &before_); }
    NoFreeDescriptor(const NoFreeDescriptor&) = delete;
    NoFreeDescriptor& operator=(const NoFreeDescriptor&) = delete;

private:
    rlimit before_{};
};

class NoDescriptorTest : public Device {
protected:
    void SetUp() override
    {
        Device::SetUp();
        AddCards(2);
    }
};

TEST_F(NoDescriptorTest, ListingsFailAndSaySo)
{
    char names[32][16];
    int count = 32;
    InterfaceInfo info[4] = {};
    int records = 4;
    char part[] = "eth";
    {
        const NoFreeDescriptor none;
        EXPECT_FALSE(GetAllInterfaceInfo(names, &count));
        EXPECT_FALSE(GetSpecifiedInterfaceInfo(part, names, &count));
        EXPECT_FALSE(GetNormalInterfaceInfo(info, &records));
    }
    EXPECT_EQ(count, 32);
    EXPECT_EQ(records, 4);
    EXPECT_EQ(Log(),
              (LogLines{Error("GetAllInterfaceInfo", "Open file /proc/net/dev failed!\n"),
                        Error("GetSpecifiedInterfaceInfo", "Open file /proc/net/dev failed!"),
                        Error("GetNormalInterfaceInfo", "Open file /proc/net/dev failed!\n")}));
    EXPECT_TRUE(GetAllInterfaceInfo(names, &count));
    EXPECT_EQ(count, 2);
}

TEST_F(NoDescriptorTest, ASocketIsTriedAgainWhenOneIsFree)
{
    {
        const NoFreeDescriptor none;
        EXPECT_FALSE(InterfaceUp("eth0"));
        EXPECT_FALSE(InterfaceIsLink("eth0"));
        EXPECT_LT(Net6_GetInterfaceIndex("eth0"), 0);
    }
    EXPECT_EQ(Log(),
              (LogLines{Error("NetIOCtrl", "open commonSocketfd error.[Too many open files]"),
                        Error("InterfaceUp", "up eth0 failed,getflags error."),
                        Error("InterfaceIsLink", "socket eth0 failed."),
                        Error("NetIOCtrlv6", "open commonSocketfd error.[Too many open files]"),
                        Error("Net6_GetInterfaceIndex", "get eth0 index failed.")}));
    EXPECT_FALSE(IsUp("eth0"));
    EXPECT_TRUE(InterfaceUp("eth0"));
    EXPECT_GT(Net6_GetInterfaceIndex("eth0"), 0);
    EXPECT_TRUE(IsUp("eth0"));
}

TEST_F(NoDescriptorTest, AKeptSocketGoesOnServing)
{
    ASSERT_TRUE(InterfaceUp("eth0"));
    const NoFreeDescriptor none;
    EXPECT_TRUE(InterfaceDown("eth0"));
    EXPECT_TRUE(Net_SetIPbyName("eth0", "10.0.0.2", "255.255.255.0"));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NoDescriptorTest, ACommandRunsAllTheSame)
{
    {
        const NoFreeDescriptor none;
        EXPECT_TRUE(VorlixRunCmd("exit 3"));
    }
    EXPECT_EQ(Log(), LogLines{});
}

}  // namespace
