// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The order of what a boot does and says, pieces of the timeline whole: a settings file that is
// read before another one is written, a line of the log before the change that it tells of.

#include "LanriseWorld.h"
#include "Steps.h"

#include "Backup.h"
#include "Lanrise.h"

using namespace fake;

namespace {

using Cards = std::vector<std::string>;

void Save(const Cards& cards, const Texts& lines)
{
    for (const std::string& card : cards) Put(CardFile(card), Settings(lines));
}

// ---- the repair of bonds and bridges

class RepairOrderTest : public World {};

TEST_F(RepairOrderTest, TheSecondPassMendsBondsBeforeBridges)
{
    Save({"bond0"}, {"BONDMODE = 1", "BONDMEMBERS = eth1,eth2,eth3"});
    Save({"br0"}, {"BRIDGEMEMBERS = eth1,eth4,eth5"});
    Save({"eth1"}, {"BONDED = 1", "BONDNAME = bond0", "BRIDGEEDED = 1", "BRIDGENAME = br0"});
    Save({"eth2", "eth3"}, {"BONDED = 1", "BONDNAME = bond0"});
    Save({"eth4", "eth5"}, {"BRIDGEEDED = 1", "BRIDGENAME = br0"});
    for (const char* card : {"eth1", "eth2", "eth3", "eth4", "eth5", "bond0"}) kernel.Add(card);
    InNewProcess([] {
        EXPECT_TRUE(Lanrise({}));
        Texts steps = StepsOf(
            {"write networkbond0", "write networkbr0", "Error|CheckWorkmode", "Error|CheckBackup"});
        steps.resize(4);
        EXPECT_EQ(steps, (Texts{"Error|CheckWorkmodeConfig| cannot determine eth1 workmode.delete "
                                "from both bond and bridge.",
                                "write networkbond0", "write networkbr0",
                                "Error|CheckBackup|Backup crc check error!!!"}));
    });
}

TEST_F(RepairOrderTest, AFolderThatCannotBeListedEndsNoBoot)
{
    kernel.Add("eth0");
    FailAll("opendir", EACCES);
    EXPECT_TRUE(Lanrise({}));
    EXPECT_TRUE(Logged(Error("DoBridgeStuff", "can not open /mnt/mtd/Config")));
    EXPECT_TRUE(Logged(Warn("CheckDefaultEthConfig", "set def to config failed.")));
    EXPECT_EQ(TraceOf({"fopen /mnt/mtd/Config/resolv.conf w+"}).size(), 2U);  // one a family
    EXPECT_EQ(Log().back(), Info("CommonMain", "lanrise is finished."));
}

TEST_F(RepairOrderTest, ABondOfTooHighANumberIsToldBeforeItsCardIsTakenOut)
{
    Save({"eth1"}, {"BONDED = 1", "BONDNAME = bond32"});
    List({"eth1", "bond32"});
    EXPECT_TRUE(CheckBondConfig());
    EXPECT_EQ(Steps(), (Texts{"read network1", "read network1", "write network1",
                              "Error|CheckBondConfig|can not handle bond32", "write network1",
                              "write network1"}));
    EXPECT_EQ(Get(CardFile("eth1")), Settings({"BONDED = 0", "BONDNAME = ", "WORKMODE = 1"}));
}

TEST_F(RepairOrderTest, ABondOfOneIsBlankedThenItsCardTakenOutThenTold)
{
    Save({"eth1"}, {"BONDED = 1", "BONDNAME = bond0"});
    Save({"bond0"}, {"BONDMODE = 1", "BONDMEMBERS = eth1,eth2"});
    List({"eth1", "bond0"});
    EXPECT_TRUE(CheckBondConfig());
    EXPECT_EQ(Steps(),
              (Texts{"read network1", "read network1", "write network1", "write networkbond0",
                     "write networkbond0", "write network1", "write network1",
                     "Warn |CheckBondConfig|the bond0's member[eth1] from eth config is 1"}));
}

TEST_F(RepairOrderTest, ABondWithoutModeIsToldThenMendedThenItsListIsRead)
{
    Save({"eth1", "eth2"}, {"BONDED = 1", "BONDNAME = bond0", "WORKMODE = 1"});
    Save({"bond0"}, {"BONDMEMBERS = eth1"});
    List({"eth1", "eth2", "bond0"});
    EXPECT_TRUE(CheckBondConfig());
    EXPECT_EQ(StepsOf({"read networkbond0", "write networkbond0", "Warn "}),
              (Texts{"read networkbond0",
                     "Warn |CheckBondConfig|bond0 bond  mode is unknow, set default to "
                     "activebackup",
                     "write networkbond0", "read networkbond0",
                     "Warn |CheckBondConfig|config from bondmember is different from eth config",
                     "write networkbond0"}));
}

TEST_F(RepairOrderTest, AFlagThatIsMissingIsToldBeforeItIsSaved)
{
    Save({"eth1"}, {"MTU = 1500"});
    List({"eth1"});
    EXPECT_TRUE(CheckWorkmodeConfig());
    EXPECT_EQ(StepsOf({"read network1", "write network1", "Warn "}),
              (Texts{"read network1", "Warn |CheckWorkmodeConfig|Get eth1 IsBondedByConfig  failed",
                     "write network1", "read network1",
                     "Warn |CheckWorkmodeConfig|Get eth1 IsBridgedByConfig  failed",
                     "write network1", "write network1"}));
}

TEST_F(RepairOrderTest, ABridgeOfOneLosesItsFileThenItsCardThenIsTold)
{
    Save({"eth1"}, {"BRIDGEEDED = 1", "BRIDGENAME = br3"});
    Save({"br3"}, {"BRIDGEMEMBERS = eth1"});
    List({"eth1"});
    EXPECT_TRUE(CheckBridgeConfig());
    const Texts steps = StepsOf({"read", "write", "remove", "Warn"});
    EXPECT_EQ(steps,
              (Texts{"read network1", "read network1", "write network1", "remove networkbr3",
                     "write network1", "write network1",
                     "Warn |CheckBridgeConfig|the br3's member[eth1] from eth config is 1"}));
}

TEST_F(RepairOrderTest, ABridgeOfOneWithoutAFileIsRemovedAllTheSame)
{
    Save({"eth1"}, {"BRIDGEEDED = 1", "BRIDGENAME = br3"});
    List({"eth1"});
    EXPECT_TRUE(CheckBridgeConfig());
    EXPECT_EQ(StepsOf({"remove", "Warn "}),
              (Texts{"remove networkbr3",
                     "Warn |DelConfigFile|remove file networkbr3 failed,[No such file or "
                     "directory]",
                     "Warn |CheckBridgeConfig|the br3's member[eth1] from eth config is 1"}));
}

TEST_F(RepairOrderTest, ACardInBothLosesTheBridgeBeforeTheBond)
{
    Save({"eth1"}, {"BONDED = 1", "BONDNAME = bond0", "BRIDGEEDED = 1", "BRIDGENAME = br0"});
    List({"eth1"});
    Texts files;
    for (int i = 1; i <= 5; ++i) {
        OnCall("fopen " + CardFile("eth1") + " w+",
               [&files] { files.push_back(Get(CardFile("eth1"))); });
    }
    EXPECT_FALSE(CheckWorkmodeConfig());
    EXPECT_EQ(
        files,
        (Texts{Settings({"BONDED = 1", "BONDNAME = bond0", "BRIDGEEDED = 1", "BRIDGENAME = br0"}),
               Settings({"BONDED = 1", "BONDNAME = bond0", "BRIDGEEDED = 0", "BRIDGENAME = br0"}),
               Settings({"BONDED = 1", "BONDNAME = bond0", "BRIDGEEDED = 0", "BRIDGENAME = "}),
               Settings({"BONDED = 0", "BONDNAME = bond0", "BRIDGEEDED = 0", "BRIDGENAME = "}),
               Settings({"BONDED = 0", "BONDNAME = ", "BRIDGEEDED = 0", "BRIDGENAME = "})}));
    EXPECT_EQ(StepsOf({"write", "Error"}),
              (Texts{"Error|CheckWorkmodeConfig| cannot determine eth1 workmode.delete from both "
                     "bond and bridge.",
                     "write network1", "write network1", "write network1", "write network1",
                     "write network1"}));
}

// ---- the repair of addresses

const Texts kSoundAddress = {"HOSTIP = 10.0.0.2", "SUBMASK = 255.0.0.0", "GATEWAYIP = 10.0.0.1"};

class AddressOrderTest : public World {
protected:
    void SetUp() override
    {
        World::SetUp();
        UseRtc("10.0.0.3", "255.0.0.0", "10.0.0.1");
    }
};

TEST_F(AddressOrderTest, TheDeviceIsToldBeforeItIsLookedForWhichOneItIs)
{
    ClearTrace();
    CheckDeviceType();
    EXPECT_EQ(StepsOf({"access", "Info ", "open"}),
              (Texts{"access /dev/pdcSramFile 0", "access /dev/pdcRtc 0",
                     "Info |CheckDeviceType|/dev/pdcSramFile  or /dev/pdcRtc exist. this is IPC.",
                     "access /dev/pdcRtc 0", "Info |CheckDeviceType|RTC exist, use RTC to backup.",
                     "open /dev/pdcRtc O_RDWR"}));
}

TEST_F(AddressOrderTest, AMissingMtuIsMendedBeforeTheAddressIsRead)
{
    Save({"eth3"}, kSoundAddress);
    EXPECT_TRUE(CheckNetCardConfig("eth3"));
    EXPECT_EQ(Steps(), (Texts{"read networketh3", "write networketh3", "read networketh3",
                              "read networketh3"}));
}

TEST_F(AddressOrderTest, TheGatewayIsReadOnlyBehindAnAddress)
{
    Save({"eth3"}, {"GATEWAYIP = 10.0.0.1", "MTU = 1500"});
    EXPECT_FALSE(CheckNetCardConfig("eth3"));
    EXPECT_EQ(Steps(), (Texts{"read networketh3", "read networketh3"}));
}

TEST_F(AddressOrderTest, OfEth0TheMtuIsMendedFirstAndTheBackupIsReadBeforeTheFile)
{
    Save({"eth0"}, kSoundAddress);
    List({"eth0"});
    EXPECT_TRUE(CheckBackup());
    ClearTrace();
    EXPECT_TRUE(CheckEth0Config());
    EXPECT_EQ(
        StepsOf({"read network", "write network", "ioctl"}),
        (Texts{"read network", "write network", "ioctl PDC_RTC_READSRAM on /dev/pdcRtc",
               "ioctl PDC_RTC_READSRAM on /dev/pdcRtc", "ioctl PDC_RTC_READSRAM on /dev/pdcRtc",
               "read network", "read network", "write network", "write network", "write network"}));
}

TEST_F(AddressOrderTest, AnInvalidBackupIsFilledBehindBothReadings)
{
    UseRtc("0.0.0.0", "0.0.0.0", "0.0.0.0");
    Save({"eth0"}, kSoundAddress);
    List({"eth0"});
    EXPECT_TRUE(CheckBackup());
    Texts blocks;
    for (int i = 0; i < 3; ++i) {
        OnCall("ioctl PDC_RTC_WRITESRAM", [&blocks] { blocks.push_back(RtcBlock()); });
    }
    EXPECT_TRUE(CheckEth0Config());
    EXPECT_EQ(blocks, (Texts{"0.0.0.0 0.0.0.0 0.0.0.0", "10.0.0.2 0.0.0.0 0.0.0.0",
                             "10.0.0.2 0.0.0.0 10.0.0.1"}));
    EXPECT_EQ(RtcBlock(), "10.0.0.2 255.0.0.0 10.0.0.1");
}

TEST_F(AddressOrderTest, AResetIsToldThenMarkedOnceThenWritten)
{
    Remove("/dev/pdcRtc");
    UseCmos("0.0.0.0", 0, "0.0.0.0");
    Save({"eth0"}, {"MTU = 1500"});
    List({"eth0"});
    EXPECT_TRUE(CheckBackup());
    ClearTrace();
    EXPECT_FALSE(CheckEth0Config());
    EXPECT_EQ(StepsOf({"Warn |CheckEth0Config|eth0 in", "CMOSWrite", "write"}),
              (Texts{"Warn |CheckEth0Config|eth0 in config and backup is not correct! set been "
                     "reset flag, will reboot with user config",
                     "CMOSWrite 10 12", "write network", "write network", "write network",
                     "CMOSWrite 10 12", "CMOSWrite 10 12", "CMOSWrite 10 12"}));
}

TEST_F(AddressOrderTest, AResetMarkOfARecorderIsToldBeforeItIsTakenAway)
{
    Remove("/dev/pdcRtc");
    UseCmos("10.0.0.3", 8, "10.0.0.1");
    CheckDeviceType();
    EXPECT_TRUE(setBeenResetFlag());
    ClearTrace();
    EXPECT_TRUE(NetCheckBeenReset());
    EXPECT_EQ(StepsOf({"Info |CheckBeenReset", "CMOSWrite"}),
              (Texts{"Info |CheckBeenReset|read from cmos reset flag 66, reset net.",
                     "CMOSWrite 10 12"}));
}

TEST_F(AddressOrderTest, TheFlagOfARecorderIsSetBeforeTheEndIsTold)
{
    Remove("/dev/pdcRtc");
    UseCmos("10.0.0.3", 8, "10.0.0.1");
    kernel.Add("eth1");
    EXPECT_TRUE(Lanrise({"eth1", "10.0.0.2", "255.0.0.0", "10.0.0.1"}));
    EXPECT_EQ(StepsOf({"Info |CommonMain|lanrise", "CMOSWrite"}),
              (Texts{"CMOSWrite 10 12", "Info |CommonMain|lanrise for eth1 is finished."}));
}

TEST_F(AddressOrderTest, AnEmptyTextIsNone)
{
    const std::pair<Texts, std::string> rows[] = {
        {{"eth1", "", "255.0.0.0", "10.0.0.1"}, "ip error "},
        {{"eth1", "10.0.0.2", "", "10.0.0.1"}, "mask error "},
        {{"eth1", "10.0.0.2", "255.0.0.0", ""}, "gateway error "},
        {{"eth1", "", "", ""}, "ip error "},
        {{"eth1", "10.0.0.2", "", ""}, "mask error "}};
    kernel.Add("eth1");
    for (const auto& [words, said] : rows) {
        ClearLog();
        EXPECT_FALSE(Lanrise(words));
        EXPECT_EQ(LogOf("CommonMain").back(), Error("CommonMain", said));
    }
    EXPECT_EQ(StepsOf({"ioctl SIOCSIFADDR"}), Texts{});
}

}  // namespace
