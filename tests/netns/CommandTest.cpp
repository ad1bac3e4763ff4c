// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Config.h"

#include "Program.h"

#include <filesystem>

using namespace device;

namespace {

namespace fs = std::filesystem;

/// A device that has booted and is on the network: three cards, eth0 the default one.
class CommandTest : public Device {
protected:
    void SetUp() override
    {
        Device::SetUp();
        AddCards(3);
        for (int i = 0; i < 3; ++i) Save("eth" + std::to_string(i), i);
        ASSERT_EQ(Lanrise().status, 0);
        files_ = SavedFiles();
        network_ = KernelState();
    }

    void ExpectNothingChanged() const
    {
        EXPECT_EQ(SavedFiles(), files_);
        EXPECT_EQ(KernelState(), network_);
    }

    std::map<std::string, std::string> files_;
    Texts network_;
};

// ---- lanrise <ethname> <Ipaddress> <Netmask> <Gateway>

class AddressFormTest : public CommandTest {};

TEST_F(AddressFormTest, ChangesTheCardItsFileAndItsRoutes)
{
    const Outcome run = Lanrise("eth1 10.5.0.9 255.255.0.0 10.5.0.1");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.log.back(), Info("CommonMain", "lanrise for eth1 is finished."));
    EXPECT_EQ(Addresses("eth1"), Texts{"10.5.0.9/16"});
    EXPECT_EQ(Routes(), (Texts{"10.0.0.0/24 dev eth0", "10.0.2.0/24 dev eth2",
                               "10.5.0.0/16 dev eth1", "default via 10.0.0.1 dev eth0"}));
    EXPECT_EQ(Saved("eth1", "HOSTIP"), "10.5.0.9");
    EXPECT_EQ(Saved("eth1", "SUBMASK"), "255.255.0.0");
    EXPECT_EQ(Saved("eth1", "GATEWAYIP"), "10.5.0.1");

    auto expected = files_;
    expected["network1"] = Get(CardFile("eth1"));
    EXPECT_EQ(SavedFiles(), expected) << "only the card's own file is written";
}

TEST_F(AddressFormTest, ANewGatewayOfTheDefaultCardMovesTheDefaultRoute)
{
    EXPECT_EQ(Lanrise("eth0 10.0.0.10 255.255.255.0 10.0.0.254").status, 0);
    EXPECT_EQ(Routes().back(), "default via 10.0.0.254 dev eth0");
}

TEST_F(AddressFormTest, TheAddressItAlreadyHasChangesNothing)
{
    EXPECT_EQ(Lanrise("eth1 10.0.1.10 255.255.255.0 10.0.1.1").status, 0);
    ExpectNothingChanged();
}

TEST_F(AddressFormTest, StaysOverTheNextBoot)
{
    EXPECT_EQ(Lanrise("eth1 10.5.0.9 255.255.0.0 10.5.0.1").status, 0);
    const Texts network = KernelState();
    EXPECT_EQ(Lanrise().status, 0);
    EXPECT_EQ(KernelState(), network);
}

TEST_F(AddressFormTest, WhatIsNoAddressIsRefusedAndChangesNothing)
{
    const std::pair<const char*, const char*> forms[] = {
        {"eth1 10.5.0 255.255.0.0 10.5.0.1", "ip error 10.5.0"},
        {"eth1 10.5.0.256 255.255.0.0 10.5.0.1", "ip error 10.5.0.256"},
        {"eth1 '' 255.255.0.0 10.5.0.1", "ip error "},
        {"eth1 10.5.0.9 255.255 10.5.0.1", "mask error 255.255"},
        {"eth1 10.5.0.9 255.255.0.0 gateway", "gateway error gateway"},
        {"eth1 10.0.0.2 255.255.255.0 10.0.1.1",
         "ip 10.0.0.2 and gateway 10.0.1.1 is not in same net"},
        {"eth1 2001:db8::1 64 2001:db8::2", "ip error 2001:db8::1"},
    };
    for (const auto& [form, reason] : forms) {
        SCOPED_TRACE(form);
        const Outcome run = Lanrise(form);
        EXPECT_EQ(run.status, 255);
        EXPECT_EQ(run.log.back(), Error("CommonMain", reason));
        ExpectNothingChanged();
    }
}

TEST_F(AddressFormTest, AMaskOfZeroLetsEveryGatewayPass)
{
    EXPECT_EQ(Lanrise("eth1 10.5.0.2 0.0.0.0 192.168.1.1").status, 0);
    EXPECT_EQ(Addresses("eth1"), Texts{"10.5.0.2/0"});
    EXPECT_EQ(Saved("eth1", "GATEWAYIP"), "192.168.1.1");
}

TEST_F(AddressFormTest, ACardThatIsNotThereIsSaidAndStopsNothing)
{
    const Outcome run = Lanrise("eth9 10.5.0.9 255.255.0.0 10.5.0.1");
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(run.Says(Error("CommonMain", "eth9 not exist")));
    EXPECT_TRUE(run.Says(Warn("CommonMain", "set eth9's IP: 10.5.0.9, MASK: 255.255.0.0 failed")));
    EXPECT_TRUE(run.Says(Warn("CommonMain", "set eth9's GATEWAY: 10.5.0.1 failed")));
    EXPECT_TRUE(run.Finished());
    ExpectNothingChanged();
}

TEST_F(AddressFormTest, RebuildsTheRoutesFromWhatIsSaved)
{
    Must("ip route add 172.16.0.0/16 dev eth2; ip route del 10.0.2.0/24; ip route del default");
    EXPECT_EQ(Lanrise("eth1 10.0.1.10 255.255.255.0 10.0.1.1").status, 0);
    ExpectNothingChanged();
}

TEST_F(AddressFormTest, TextsAreNotGivenToTheShell)
{
    EXPECT_EQ(Lanrise("'eth1;touch /mnt/mark' '1.2.3.4;touch /mnt/mark' 255.0.0.0 1.0.0.1").status,
              255);
    EXPECT_EQ(Lanrise("'$(touch /mnt/mark)' 1.2.3.4 255.0.0.0 1.0.0.1").status, 0);
    EXPECT_FALSE(fs::exists("/mnt/mark"));
    ExpectNothingChanged();
}

TEST_F(AddressFormTest, ANameOfAnyLengthIsTaken)
{
    EXPECT_EQ(Lanrise(std::string(3000, 'x') + " 1.2.3.4 255.0.0.0 1.0.0.1").status, 0);
    EXPECT_EQ(Lanrise(std::string(3000, 'x') + ":1 1.2.3.4 255.0.0.0 1.0.0.1").status, 0);
    EXPECT_EQ(Lanrise("eth1 " + std::string(3000, '1') + " 255.0.0.0 1.0.0.1").status, 255);
    ExpectNothingChanged();
}

TEST_F(AddressFormTest, BesideTheApplicationNeitherLosesASetting)
{
    constexpr int kRuns = 25;
    Child application([] {
        for (int mtu = 1300; mtu < 1300 + 4 * kRuns; ++mtu) {
            EXPECT_TRUE(SetMtuByConfig("eth1", mtu));
            int read = 0;
            EXPECT_TRUE(GetMtuByConfig("eth1", &read));
            ASSERT_EQ(read, mtu);
        }
    });
    for (int i = 1; i <= kRuns; ++i) {
        const std::string address = "10.5.0." + std::to_string(i);
        ASSERT_EQ(Lanrise("eth1 " + address + " 255.255.0.0 10.5.0.254").status, 0);
        ASSERT_EQ(Addresses("eth1"), Texts{address + "/16"});
    }
    EXPECT_TRUE(application.Wait());
    EXPECT_EQ(Saved("eth1", "HOSTIP"), "10.5.0.25");
    EXPECT_EQ(Saved("eth1", "MTU"), "1399");
    EXPECT_EQ(Saved("eth1", "WORKMODE"), "0");
}

// ---- lanrise setdef <ethname>

class SetdefFormTest : public CommandTest {};

TEST_F(SetdefFormTest, MovesTheDefaultRouteAndSavesTheName)
{
    const Outcome run = Lanrise("setdef eth2");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.log.back(), Info("CommonMain", "set default card is eth2"));
    EXPECT_EQ(Routes(), (Texts{"10.0.0.0/24 dev eth0", "10.0.1.0/24 dev eth1",
                               "10.0.2.0/24 dev eth2", "default via 10.0.2.1 dev eth2"}));
    EXPECT_EQ(Saved("eth0", "DEFAULT_ETH"), "eth2");
    EXPECT_EQ(Saved("eth0", "PRIO"), "1");
    EXPECT_EQ(Saved("eth1", "PRIO"), "1");
    EXPECT_EQ(Saved("eth2", "PRIO"), "0");
}

TEST_F(SetdefFormTest, StaysOverTheNextBoot)
{
    EXPECT_EQ(Lanrise("setdef eth2").status, 0);
    const auto files = SavedFiles();
    const Texts network = KernelState();
    EXPECT_EQ(Lanrise().status, 0);
    EXPECT_EQ(SavedFiles(), files);
    EXPECT_EQ(KernelState(), network);
}

TEST_F(SetdefFormTest, ThePresentDefaultCardChangesNothing)
{
    EXPECT_EQ(Lanrise("setdef eth0").status, 0);
    ExpectNothingChanged();
}

TEST_F(SetdefFormTest, RebuildsNoOtherRoutes)
{
    Must("ip route add 172.16.0.0/16 dev eth1; ip route del 10.0.2.0/24");
    EXPECT_EQ(Lanrise("setdef eth1").status, 0);
    EXPECT_EQ(Routes(), (Texts{"10.0.0.0/24 dev eth0", "10.0.1.0/24 dev eth1",
                               "172.16.0.0/16 dev eth1", "default via 10.0.1.1 dev eth1"}));
}

TEST_F(SetdefFormTest, ACardThatIsNotThereIsRefused)
{
    const Outcome run = Lanrise("setdef eth9");
    EXPECT_EQ(run.status, 255);
    EXPECT_EQ(run.log.back(), Error("CommonMain", "eth9 not exist"));
    ExpectNothingChanged();
}

TEST_F(SetdefFormTest, ACardWithoutAGatewayIsSavedButKeepsTheRouteAndTheStatus)
{
    Put(CardFile("eth2"), Lines({"HOSTIP = 10.0.2.10", "SUBMASK = 255.255.255.0"}));
    const Outcome run = Lanrise("setdef eth2");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.log.back(), Error("CommonMain", "set eth2 default card failed!"));
    EXPECT_EQ(KernelState(), network_);
    EXPECT_EQ(Saved("eth0", "DEFAULT_ETH"), "eth2");
}

TEST_F(SetdefFormTest, AnotherWordIsRefused)
{
    for (const char* words : {"SETDEF eth1", "setdefault eth1", "'' eth1", "eth1 setdef"}) {
        const Outcome run = Lanrise(words);
        EXPECT_EQ(run.status, 255) << words;
        EXPECT_EQ(run.log.back(), Error("CommonMain", "error command, please input again."));
    }
    ExpectNothingChanged();
}

// ---- anything else

TEST_F(CommandTest, AnyOtherNumberOfWordsIsSaidAndChangesNothing)
{
    for (const char* words :
         {"eth0", "setdef", "--help", "a b c", "a b c d e", "a b c d e f g h"}) {
        const Outcome run = Lanrise(words);
        EXPECT_EQ(run.status, 0) << words;
        EXPECT_EQ(run.log.back(), Warn("CommonMain", "Please check your command for lanrise."));
        EXPECT_EQ(run.plain.rfind("----", 0), 0U) << "the usage text comes first";
    }
    ExpectNothingChanged();
}

TEST_F(CommandTest, EveryFormCreatesMissingSettingFiles)
{
    AddCard("eth3");
    const Outcome run = Lanrise("one word too few");
    EXPECT_TRUE(run.Says(Warn("CommonMain", "eth3 config file is not exit.")));
    EXPECT_EQ(Get(CardFile("eth3")), "");
}

}  // namespace
