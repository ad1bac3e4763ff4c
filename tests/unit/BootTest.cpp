// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The program as its caller meets it: migration of old files, the common start, the command forms.

#include "LanriseWorld.h"

#include "Lanrise.h"

#include <cstring>

int LanriseEntry(int argc, char** argv);  // `main` of cmd/lanrise, under a name of its own

using namespace fake;

namespace {

constexpr char kUsage[] = "-----------------------------------------------------------------\n"
                          "Usage:lanrise <ethname> <Ipaddress> <Netmask> <Gateway>\n"
                          "      lanrise setdef <ethname> -- change default card\n"
                          "Example:\n"
                          "eg.   lanrise eth0 192.168.1.100 255.255.0.0 192.168.1.1\n"
                          "eg.   lanrise setdef eth1 \n"
                          "-----------------------------------------------------------------\n";

constexpr char kConfig[] = "/mnt/mtd/Config/";

/// What the common start says on a device without a switch, when no file is missing.
const LogLine kNoSwitch = Info("CommonMain", "no switch in this device");
const LogLine kNoForm = Warn("CommonMain", "Please check your command for lanrise.");

/// `eths` as the module holds it: the text that a search in it names on a miss.
std::string Eths()
{
    ClearLog();
    CheckWlanCardConfig();
    const LogLines said = LogOf("FindWordInLine");
    const std::string start = "can not find wlan0 in ";
    if (said.empty() || said[0].text.rfind(start, 0) != 0) return "(not told)";
    return said[0].text.substr(start.size());
}

/// Exit status of the program.
int Status(const std::vector<std::string>& words)
{
    std::vector<std::string> texts = {"lanrise"};
    texts.insert(texts.end(), words.begin(), words.end());
    std::vector<char*> arguments;
    for (std::string& text : texts) arguments.push_back(text.data());
    arguments.push_back(nullptr);
    return LanriseEntry(static_cast<int>(texts.size()), arguments.data()) & 0xff;
}

// ---- old file names

struct OldName {
    std::string old;
    std::string present;
};

class MigrationTest : public World, public testing::WithParamInterface<OldName> {
protected:
    void SetUp() override
    {
        World::SetUp();
        kernel.Add("eth0");
        Put(kOld(), "HOSTIP = 10.0.0.2\n");
    }

    static std::string kOld() { return kConfig + GetParam().old; }
    static std::string kPresent() { return kConfig + GetParam().present; }
};

INSTANTIATE_TEST_SUITE_P(CommonMain, MigrationTest,
                         testing::Values(OldName{"network2", "networketh2"},
                                         OldName{"networkip62", "networkip6eth2"}),
                         [](const auto& test) { return test.param.old; });

TEST_P(MigrationTest, TheOldNameBecomesASecondNameOfThePresentFile)
{
    Lanrise({"x"});
    EXPECT_TRUE(SameFile(kOld(), kPresent()));
    EXPECT_EQ(Get(kPresent()), "HOSTIP = 10.0.0.2\n");
    EXPECT_EQ(TraceOf({"rename", "link"}),
              (std::vector<std::string>{"rename " + kOld() + " " + kPresent(),
                                        "link " + kPresent() + " " + kOld()}));
    EXPECT_EQ(LogOf("CommonMain"),
              (LogLines{kNoSwitch, Warn("CommonMain", "eth0 config file is not exit."), kNoForm}));
}

TEST_P(MigrationTest, ASecondRunFindsNothingToDo)
{
    Lanrise({"x"});
    ClearTrace();
    Lanrise({"x"});
    EXPECT_EQ(TraceOf({"rename", "link"}), std::vector<std::string>{});
    EXPECT_TRUE(SameFile(kOld(), kPresent()));
}

TEST_P(MigrationTest, TwoFilesStaySeparate)
{
    Put(kPresent(), "HOSTIP = 10.0.0.3\n");
    Lanrise({"x"});
    EXPECT_EQ(TraceOf({"rename", "link"}), std::vector<std::string>{});
    EXPECT_EQ(Get(kOld()), "HOSTIP = 10.0.0.2\n");
    EXPECT_EQ(Get(kPresent()), "HOSTIP = 10.0.0.3\n");
}

TEST_P(MigrationTest, NoOldFileIsNothingToDo)
{
    Remove(kOld());
    Lanrise({"x"});
    EXPECT_EQ(TraceOf({"rename", "link"}), std::vector<std::string>{});
    EXPECT_FALSE(Exists(kPresent()));
}

TEST_P(MigrationTest, AfterAFailedRenameTheLinkIsTriedAllTheSame)
{
    Fail("rename", EROFS);
    EXPECT_TRUE(Lanrise({"x"}));
    const LogLines said = Log();
    ASSERT_GE(said.size(), 2U);
    EXPECT_EQ(said[0],
              Warn("CommonMain", "rename config file failed, (" + GetParam().old + " --> " +
                                     GetParam().present + "), [Read-only file system]"));
    EXPECT_EQ(said[1],
              Warn("CommonMain", "link config file failed, (" + GetParam().present + " --> " +
                                     GetParam().old + "), [No such file or directory]"));
    EXPECT_EQ(Get(kOld()), "HOSTIP = 10.0.0.2\n");
    EXPECT_EQ(said.back(), kNoForm);
}

TEST_P(MigrationTest, AFailedLinkLeavesThePresentName)
{
    Fail("link", EPERM);
    EXPECT_TRUE(Lanrise({"x"}));
    EXPECT_EQ(Log()[0],
              Warn("CommonMain", "link config file failed, (" + GetParam().present + " --> " +
                                     GetParam().old + "), [Operation not permitted]"));
    EXPECT_FALSE(Exists(kOld()));
    EXPECT_EQ(Get(kPresent()), "HOSTIP = 10.0.0.2\n");
}

TEST_P(MigrationTest, StandsBeforeEverythingElse)
{
    Fail("rename", EROFS);
    FailAll("open /proc/net/dev", EIO);
    EXPECT_FALSE(Lanrise({"x"}));
    const std::string output = RawOutput();
    EXPECT_LT(output.find("rename config"), output.find("Usage:"));
    EXPECT_LT(output.find("link config"), output.find("Usage:"));
    EXPECT_LT(output.find("Usage:"), output.find("can not get eth Names"));
}

// ---- the common start

class CommonMainTest : public World {};

TEST_F(CommonMainTest, MigratesTheSettingsBeforeTheIPv6Settings)
{
    kernel.Add("eth0");
    Put("/mnt/mtd/Config/network2", "");
    Put("/mnt/mtd/Config/networkip62", "");
    Lanrise({"x"});
    EXPECT_EQ(TraceOf({"rename"}),
              (std::vector<std::string>{
                  "rename /mnt/mtd/Config/network2 /mnt/mtd/Config/networketh2",
                  "rename /mnt/mtd/Config/networkip62 /mnt/mtd/Config/networkip6eth2"}));
}

TEST_F(CommonMainTest, CannotRunWithoutAListOfInterfaces)
{
    for (const auto& words : std::vector<std::vector<std::string>>{
             {}, {"x"}, {"setdef", "eth0"}, {"eth0", "10.0.0.2", "255.0.0.0", "10.0.0.1"}}) {
        ClearLog();
        FailNothing();
        FailAll("open /proc/net/dev", EACCES);
        EXPECT_FALSE(Lanrise(words));
        EXPECT_EQ(Log(),
                  (LogLines{Error("GetAllInterfaceInfo", "Open file /proc/net/dev failed!\n"),
                            Error("CommonMain", "can not get eth Names")}));
        EXPECT_EQ(PlainOutput(), kUsage);
        EXPECT_TRUE(SavedFiles().empty());
    }
}

TEST_F(CommonMainTest, EveryInterfaceGetsItsSettingFile)
{
    for (const char* name : {"eth0", "eth1", "eth2", "bond0", "br0"}) kernel.Add(name);
    Put(CardFile("eth1"), "MTU = 1400\n");
    Lanrise({"x"});
    EXPECT_EQ(Log(), (LogLines{Info("GetSwitchInterface", "can no find switch."), kNoSwitch,
                               Warn("CommonMain", "eth0 config file is not exit."),
                               Warn("CommonMain", "eth2 config file is not exit."),
                               Warn("CommonMain", "bond0 config file is not exit."),
                               Warn("CommonMain", "br0 config file is not exit."), kNoForm}));
    EXPECT_EQ(SavedFiles(), (std::map<std::string, std::string>{{"network", ""},
                                                                {"network1", "MTU = 1400\n"},
                                                                {"networketh2", ""},
                                                                {"networkbond0", ""},
                                                                {"networkbr0", ""}}));
    EXPECT_EQ(Eths(), "eth0,eth1,eth2,bond0,br0,");
}

TEST_F(CommonMainTest, AFileThatCannotBeCreatedStopsNothing)
{
    kernel.Add("eth0");
    kernel.Add("eth1");
    Fail("open /mnt/mtd/Config/network O_RDWR|O_CREAT", EROFS);
    EXPECT_TRUE(Lanrise({"x"}));
    EXPECT_EQ(SavedFiles(), (std::map<std::string, std::string>{{"network1", ""}}));
    EXPECT_EQ(Eths(), "eth0,eth1,");
}

TEST_F(CommonMainTest, TheSwitchInterfaceGetsAFileButIsNoCard)
{
    kernel.Add("eth0");
    kernel.Add("eth1").driver = "rt Switch";
    kernel.Add("eth10");
    Lanrise({"x"});
    EXPECT_EQ(LogOf("CommonMain"),
              (LogLines{Warn("CommonMain", "eth0 config file is not exit."),
                        Warn("CommonMain", "eth1 config file is not exit."),
                        Warn("CommonMain", "eth10 config file is not exit."), kNoForm}));
    EXPECT_TRUE(Exists(CardFile("eth1")));
    EXPECT_EQ(Eths(), "eth0,eth10,");
    // It is listed all the same: its saved work mode is settled with the others'.
    CheckWorkmodeConfig();
    EXPECT_EQ(Get(CardFile("eth1")), "BONDED = 0\nBRIDGEEDED = 0\nWORKMODE = 2\n");
}

TEST_F(CommonMainTest, TheListOfCardsIsCutAtItsSize)
{
    for (int i = 0; i < 20; ++i) kernel.Add("ethernetcard" + std::to_string(100 + i));
    Lanrise({"x"});
    std::string expected;
    for (int i = 0; i < 16; ++i) expected += "ethernetcard" + std::to_string(100 + i) + ",";
    expected.pop_back();  // 255 characters: the comma has no place any more, nor has what follows
    EXPECT_EQ(Eths(), expected);
    EXPECT_TRUE(Exists(CardFile("ethernetcard119")));
}

TEST_F(CommonMainTest, TheListOfCardsMayEndInACommaAtItsSize)
{
    std::string expected;
    for (int i = 0; i < 15; ++i) expected += "ethernetcard" + std::to_string(100 + i) + ",";
    expected += "ethernetcard99,";
    ASSERT_EQ(expected.size(), 255U);
    for (int i = 0; i < 15; ++i) kernel.Add("ethernetcard" + std::to_string(100 + i));
    for (const char* card : {"ethernetcard99", "eth0"}) kernel.Add(card);
    Lanrise({"x"});
    EXPECT_EQ(Eths(), expected);
}

TEST_F(CommonMainTest, ASecondRunOfAHostApplicationAppendsItsCards)
{
    kernel.Add("eth0");
    kernel.Add("eth1");
    Lanrise({"x"});
    Lanrise({"x"});
    EXPECT_EQ(Eths(), "eth0,eth1,eth0,eth1,");
}

TEST_F(CommonMainTest, ASecondRunOfAHostApplicationListsNoMoreCardsThanTheFirst)
{
    kernel.Add("eth0");
    kernel.Add("eth1");
    Lanrise({"x"});
    kernel.Add("eth2");
    Lanrise({"x"});
    EXPECT_FALSE(Exists(CardFile("eth2")));
}

TEST_F(CommonMainTest, ABootOfAHostApplicationFindsCardsThatCameSince)
{
    kernel.Add("eth0");
    kernel.Add("eth1");
    Lanrise({"x"});
    kernel.Add("eth2");
    ClearLog();
    Lanrise({});
    EXPECT_EQ(Get(CardFile("eth2")).substr(0, 9), "WORKMODE ");
    EXPECT_TRUE(Logged(Warn("CommonMain", "eth2 config file is not exit.")));
    EXPECT_EQ(Eths(), "eth2,");
}

// ---- usage

class PrintfHelpTest : public World {};

TEST_F(PrintfHelpTest, PrintsSevenLinesWithoutFrame)
{
    PrintfHelp();
    EXPECT_EQ(RawOutput(), kUsage);
}

TEST_F(PrintfHelpTest, IsPrintedOnceByEveryForm)
{
    kernel.Add("eth0");
    for (const auto& words :
         std::vector<std::vector<std::string>>{{},
                                               {"x"},
                                               {"setdef", "eth0"},
                                               {"setdef", "eth9"},
                                               {"eth0", "10.0.0.2", "255.0.0.0", "10.0.0.1"},
                                               {"eth0", "10.0.0.2", "255.0.0.0", "11.0.0.1"}}) {
        ClearLog();
        Lanrise(words);
        EXPECT_EQ(PlainOutput(), kUsage) << words.size();
    }
}

// ---- forms that are none

TEST_F(CommonMainTest, OtherNumbersOfWordsAreAWarningAndNoFailure)
{
    List({"eth0"});
    for (const auto& words : std::vector<std::vector<std::string>>{
             {"eth0"}, {"eth0", "10.0.0.2", "255.0.0.0"}, {"1", "2", "3", "4", "5"}}) {
        ClearLog();
        EXPECT_TRUE(Lanrise(words));
        EXPECT_EQ(LogOf("CommonMain"), (LogLines{kNoSwitch, kNoForm}));
    }
    ClearLog();
    EXPECT_TRUE(CommonMain(0, nullptr));
    EXPECT_EQ(LogOf("CommonMain"), (LogLines{kNoSwitch, kNoForm}));
    EXPECT_EQ(Get(CardFile("eth0")), "");
    EXPECT_TRUE(kernel.routes.empty());
}

// ---- setdef

class SetdefTest : public World {
protected:
    void SetUp() override
    {
        World::SetUp();
        Put(CardFile("eth0"), "DEFAULT_ETH = eth0\nPRIO = 0\n");
        Put(CardFile("eth1"), "PRIO = 1\nGATEWAYIP = 10.1.0.1\n");
        UseCmos("10.0.0.2", 8, "10.0.0.1");
        List({"eth0", "eth1", "eth2"});
        kernel.routes = {{"10.0.0.0", "0.0.0.0", "255.0.0.0", "eth0"},
                         {"0.0.0.0", "10.0.0.1", "0.0.0.0", "eth0"}};
    }
};

TEST_F(SetdefTest, MovesTheDefaultCardAndNothingElse)
{
    EXPECT_TRUE(Lanrise({"setdef", "eth1"}));
    EXPECT_EQ(Log().back(), Info("CommonMain", "set default card is eth1"));
    EXPECT_EQ(SavedFiles(),
              (std::map<std::string, std::string>{{"network", "DEFAULT_ETH = eth1\nPRIO = 1\n"},
                                                  {"network1", "PRIO = 0\nGATEWAYIP = 10.1.0.1\n"},
                                                  {"networketh2", "PRIO = 1\n"}}));
    EXPECT_EQ(kernel.routes, (std::vector<Route>{{"10.0.0.0", "0.0.0.0", "255.0.0.0", "eth0"},
                                                 {"0.0.0.0", "10.1.0.1", "0.0.0.0", "eth1"}}));
    EXPECT_EQ(TraceOf({"CMOS", "access /dev"}), std::vector<std::string>{});
}

TEST_F(SetdefTest, WantsExactlyThatWord)
{
    const auto before = SavedFiles();
    for (const char* word : {"setde", "setdeff", "Setdef", "", "eth1"}) {
        ClearLog();
        ClearTrace();
        EXPECT_FALSE(Lanrise({word, "eth1"}));
        EXPECT_EQ(LogOf("CommonMain"),
                  (LogLines{kNoSwitch, Error("CommonMain", "error command, please input again.")}));
        EXPECT_EQ(TraceOf({"ioctl SIOC", "fopen"}), std::vector<std::string>{});
    }
    EXPECT_EQ(SavedFiles(), before);
}

TEST_F(SetdefTest, RefusesACardThatDoesNotExist)
{
    const auto before = SavedFiles();
    EXPECT_FALSE(Lanrise({"setdef", "eth9"}));
    EXPECT_EQ(LogOf("CommonMain"), (LogLines{kNoSwitch, Error("CommonMain", "eth9 not exist")}));
    EXPECT_EQ(SavedFiles(), before);
    EXPECT_EQ(kernel.routes.size(), 2U);
}

TEST_F(SetdefTest, ACardThatCannotBeTheDefaultFailsOnlyInTheLog)
{
    EXPECT_TRUE(Lanrise({"setdef", "eth2"}));  // it has no saved gateway
    EXPECT_EQ(Log().back(), Error("CommonMain", "set eth2 default card failed!"));
    EXPECT_EQ(kernel.routes.back(), (Route{"0.0.0.0", "10.0.0.1", "0.0.0.0", "eth0"}));
}

// ---- address form

class AddressFormTest : public World {
protected:
    void SetUp() override
    {
        World::SetUp();
        UseCmos("10.0.0.2", 8, "10.0.0.1");
        CmosFlagByte() = 0;  // no verify flag: the board has just been updated
        Put(CardFile("eth0"), Settings({"DEFAULT_ETH = eth0", "HOSTIP = 10.0.0.2",
                                        "SUBMASK = 255.0.0.0", "GATEWAYIP = 10.0.0.1"}));
        Put(CardFile("eth1"), "MTU = 1400\n");
        List({"eth0", "eth1", "lo"});
        kernel.routes = {{"192.168.7.0", "0.0.0.0", "255.255.255.0", "eth1"},
                         {"0.0.0.0", "192.168.7.1", "0.0.0.0", "eth1"},
                         {"127.0.0.0", "0.0.0.0", "255.0.0.0", "lo"}};
        before = SavedFiles();
    }

    std::map<std::string, std::string> before;
};

TEST_F(AddressFormTest, SetsTheCardAndRebuildsTheRoutes)
{
    EXPECT_TRUE(Lanrise({"eth1", "172.16.0.9", "255.255.0.0", "172.16.0.1"}));
    EXPECT_EQ(LogOf("CommonMain"),
              (LogLines{kNoSwitch, Info("CommonMain", "lanrise for eth1 is finished.")}));
    EXPECT_EQ(kernel.At("eth1").address, "172.16.0.9");
    EXPECT_EQ(kernel.At("eth1").mask, "255.255.0.0");
    before["network1"] = Settings(
        {"MTU = 1400", "HOSTIP = 172.16.0.9", "SUBMASK = 255.255.0.0", "GATEWAYIP = 172.16.0.1"});
    EXPECT_EQ(SavedFiles(), before);
    EXPECT_EQ(kernel.routes, (std::vector<Route>{{"127.0.0.0", "0.0.0.0", "255.0.0.0", "lo"},
                                                 {"10.0.0.0", "0.0.0.0", "255.0.0.0", "eth0"},
                                                 {"172.16.0.0", "0.0.0.0", "255.255.0.0", "eth1"},
                                                 {"0.0.0.0", "10.0.0.1", "0.0.0.0", "eth0"}}));
    EXPECT_EQ(CmosRecord(), "10.0.0.2/8 10.0.0.1 flag 10 mark 0");
}

TEST_F(AddressFormTest, ChangesTheAddressBeforeTheRoutesAndTheVerifyFlagLast)
{
    ClearTrace();
    Lanrise({"eth1", "172.16.0.9", "255.255.0.0", "172.16.0.1"});
    const std::vector<std::string> expected = {
        "ioctl SIOCSIFADDR eth1",
        "ioctl SIOCSIFNETMASK eth1",
        "fopen /mnt/mtd/Config/network1 w+",  // address
        "fopen /mnt/mtd/Config/network1 w+",  // mask
        "fopen /mnt/mtd/Config/network1 w+",  // gateway
        "ioctl SIOCDELRT",
        "ioctl SIOCDELRT",
        "ioctl SIOCADDRT",  // eth0
        "ioctl SIOCADDRT",  // eth1
        "ioctl SIOCADDRT",  // default
        "CMOSRead 10 12",
        "CMOSWrite 10 12",
    };
    std::vector<std::string> seen;
    for (const std::string& call : TraceOf(
             {"ioctl SIOCS", "ioctl SIOCADD", "ioctl SIOCDEL", "fopen", "CMOSRead", "CMOSWrite"})) {
        if (call.substr(call.size() - 2) != "r+") seen.push_back(call);
    }
    EXPECT_EQ(seen, expected);
}

TEST_F(AddressFormTest, ACardThatDoesNotExistStopsNothing)
{
    EXPECT_TRUE(Lanrise({"eth9", "172.16.0.9", "255.255.0.0", "172.16.0.1"}));
    EXPECT_EQ(LogOf("CommonMain"),
              (LogLines{kNoSwitch, Error("CommonMain", "eth9 not exist"),
                        Warn("CommonMain", "set eth9's IP: 172.16.0.9, MASK: 255.255.0.0 failed"),
                        Warn("CommonMain", "set eth9's GATEWAY: 172.16.0.1 failed"),
                        Info("CommonMain", "lanrise for eth9 is finished.")}));
    EXPECT_EQ(kernel.routes, (std::vector<Route>{{"127.0.0.0", "0.0.0.0", "255.0.0.0", "lo"},
                                                 {"10.0.0.0", "0.0.0.0", "255.0.0.0", "eth0"},
                                                 {"0.0.0.0", "10.0.0.1", "0.0.0.0", "eth0"}}));
    EXPECT_EQ(CmosRecord(), "10.0.0.2/8 10.0.0.1 flag 10 mark 0");
    EXPECT_EQ(SavedFiles(), before);
}

TEST_F(AddressFormTest, ACardThatRefusesTheAddressStillGetsItsGateway)
{
    Fail("ioctl SIOCSIFADDR eth1", EPERM);
    EXPECT_TRUE(Lanrise({"eth1", "172.16.0.9", "255.255.0.0", "172.16.0.1"}));
    EXPECT_EQ(LogOf("CommonMain"),
              (LogLines{kNoSwitch,
                        Warn("CommonMain", "set eth1's IP: 172.16.0.9, MASK: 255.255.0.0 failed"),
                        Info("CommonMain", "lanrise for eth1 is finished.")}));
    EXPECT_EQ(Get(CardFile("eth1")), "MTU = 1400\nGATEWAYIP = 172.16.0.1\n");
}

TEST_F(AddressFormTest, AGatewayThatCannotBeSavedIsAWarning)
{
    Fail("fopen /mnt/mtd/Config/network1 w+", ENOSPC, 3);
    EXPECT_TRUE(Lanrise({"eth1", "172.16.0.9", "255.255.0.0", "172.16.0.1"}));
    EXPECT_EQ(LogOf("CommonMain"),
              (LogLines{kNoSwitch, Warn("CommonMain", "set eth1's GATEWAY: 172.16.0.1 failed"),
                        Info("CommonMain", "lanrise for eth1 is finished.")}));
}

struct Refusal {
    std::string name;
    std::vector<std::string> words;
    std::string message;
};

class AddressRefusalTest : public AddressFormTest, public testing::WithParamInterface<Refusal> {};

INSTANTIATE_TEST_SUITE_P(
    CommonMain, AddressRefusalTest,
    testing::Values(
        Refusal{"Address", {"10.0.0", "255.0.0.0", "10.0.0.1"}, "ip error 10.0.0"},
        Refusal{"AddressFirst", {"x", "y", "z"}, "ip error x"},
        Refusal{"EmptyAddress", {"", "255.0.0.0", "10.0.0.1"}, "ip error "},
        Refusal{"Mask", {"10.0.0.2", "255.0.0.256", "10.0.0.1"}, "mask error 255.0.0.256"},
        Refusal{"MaskBeforeGateway", {"10.0.0.2", "y", "z"}, "mask error y"},
        Refusal{"PrefixLength", {"10.0.0.2", "8", "10.0.0.1"}, "mask error 8"},
        Refusal{"Gateway", {"10.0.0.2", "255.0.0.0", "10.0.0.1x"}, "gateway error 10.0.0.1x"},
        Refusal{"OtherNet",
                {"10.0.0.2", "255.255.255.0", "10.0.1.1"},
                "ip 10.0.0.2 and gateway 10.0.1.1 is not in same net"},
        Refusal{"HostMask",
                {"10.0.0.2", "255.255.255.255", "10.0.0.1"},
                "ip 10.0.0.2 and gateway 10.0.0.1 is not in same net"}),
    [](const auto& test) { return test.param.name; });

TEST_P(AddressRefusalTest, ChangesNothing)
{
    const auto routes = kernel.routes;
    const std::string memory(reinterpret_cast<char*>(cmos.bytes), sizeof(cmos.bytes));
    std::vector<std::string> words = GetParam().words;
    words.insert(words.begin(), "eth1");
    ClearTrace();
    EXPECT_FALSE(Lanrise(words));
    EXPECT_EQ(LogOf("CommonMain"), (LogLines{kNoSwitch, Error("CommonMain", GetParam().message)}));
    EXPECT_EQ(SavedFiles(), before);
    EXPECT_EQ(kernel.routes, routes);
    EXPECT_EQ(kernel.At("eth1").address, "");
    EXPECT_EQ(memcmp(cmos.bytes, memory.data(), memory.size()), 0);
    EXPECT_EQ(TraceOf({"ioctl SIOCS", "fopen", "CMOS"}), std::vector<std::string>{});
}

TEST_F(AddressFormTest, ACardThatDoesNotExistIsSaidBeforeABadAddress)
{
    EXPECT_FALSE(Lanrise({"eth9", "x", "y", "z"}));
    EXPECT_EQ(LogOf("CommonMain"), (LogLines{kNoSwitch, Error("CommonMain", "eth9 not exist"),
                                             Error("CommonMain", "ip error x")}));
}

struct Acceptance {
    std::string name;
    std::string address, mask, gateway;
};

class AddressAcceptanceTest : public AddressFormTest,
                              public testing::WithParamInterface<Acceptance> {};

INSTANTIATE_TEST_SUITE_P(
    CommonMain, AddressAcceptanceTest,
    testing::Values(Acceptance{"NoMaskIsOneNet", "10.0.0.2", "0.0.0.0", "192.168.1.1"},
                    Acceptance{"NoAddress", "0.0.0.0", "255.0.0.0", "0.1.2.3"},
                    Acceptance{"MaskWithHoles", "10.1.0.2", "255.0.255.0", "10.9.0.1"},
                    Acceptance{"ItsOwnGateway", "10.0.0.2", "255.255.255.255", "10.0.0.2"}),
    [](const auto& test) { return test.param.name; });

TEST_P(AddressAcceptanceTest, IsSaved)
{
    const Acceptance& given = GetParam();
    EXPECT_TRUE(Lanrise({"eth1", given.address, given.mask, given.gateway}));
    EXPECT_EQ(LogOf("CommonMain"),
              (LogLines{kNoSwitch, Info("CommonMain", "lanrise for eth1 is finished.")}));
    EXPECT_EQ(Get(CardFile("eth1")),
              Settings({"MTU = 1400", "HOSTIP = " + given.address, "SUBMASK = " + given.mask,
                        "GATEWAYIP = " + given.gateway}));
}

// ---- entries

class MainTest : public AddressFormTest {};

TEST_F(MainTest, TheExitStatusTellsTheResult)
{
    EXPECT_EQ(Status({}), 0);
    EXPECT_EQ(Status({"eth1"}), 0);
    EXPECT_EQ(Status({"setdef", "eth0"}), 0);
    EXPECT_EQ(Status({"setdef", "eth1"}), 0);  // without gateway
    EXPECT_EQ(Status({"setdef", "eth9"}), 255);
    EXPECT_EQ(Status({"setdeff", "eth1"}), 255);
    EXPECT_EQ(Status({"eth9", "10.0.0.2", "255.0.0.0", "10.0.0.1"}), 0);
    EXPECT_EQ(Status({"eth1", "10.0.0.2", "255.255.255.0", "10.0.1.1"}), 255);
    FailAll("open /proc/net/dev", EIO);
    EXPECT_EQ(Status({}), 255);
}

TEST_F(MainTest, HostApplicationsAlwaysGetOne)
{
    for (const auto entry : {dvr_lanrise_main, PDI_lanriseMain}) {
        char name[] = "lanrise";
        char word[] = "setdef";
        char card[] = "eth0";
        char lost[] = "eth9";
        char* good[] = {name, word, card, nullptr};
        char* bad[] = {name, word, lost, nullptr};
        ClearLog();
        EXPECT_EQ(entry(3, good), 1);
        EXPECT_TRUE(Logged(Info("CommonMain", "set default card is eth0")));
        EXPECT_EQ(entry(3, bad), 1);
        EXPECT_EQ(Log().back(), Error("CommonMain", "eth9 not exist"));
    }
}

// ---- switch interface, with a search that a test can replace

bool (*replacedSearch)(char* name, int len) = nullptr;

}  // namespace

extern "C" {

bool __real_GetSwitchInterface(char* name, int len);

bool __wrap_GetSwitchInterface(char* name, int len)
{
    return replacedSearch != nullptr ? replacedSearch(name, len)
                                     : __real_GetSwitchInterface(name, len);
}

}  // extern "C"

namespace {

TEST_F(CommonMainTest, WhatAFailedSearchForTheSwitchLeftIsNotASwitch)
{
    replacedSearch = [](char* name, int len) {
        EXPECT_EQ(len, 16);
        memset(name, 'x', 16);
        return false;
    };
    Lanrise({"x"});
    kernel.Add("xxxxxxxxxxxxxxx");
    kernel.Add("eth0");
    Lanrise({"x"});
    ClearTrace();
    EXPECT_TRUE(CheckDefSwitchConfig());
    EXPECT_EQ(Trace(), std::vector<std::string>{});
}

// ---- whatever fails

TEST_F(SetdefTest, WhateverFailsTheFilesStayWhole)
{
    FailEachCall(
        [] {
            Lanrise({"setdef", "eth1"});
        },
        [](const std::string&) { ExpectWellFormedFiles(); }, {"socket", "open /proc/net/route"});
}

TEST_F(AddressFormTest, WhateverFailsTheFilesStayWhole)
{
    FailEachCall(
        [] {
            Lanrise({"eth1", "172.16.0.9", "255.255.0.0", "172.16.0.1"});
        },
        [](const std::string&) { ExpectWellFormedFiles(); }, {"socket", "open /proc/net/route"});
}

}  // namespace
