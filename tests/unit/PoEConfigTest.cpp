// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The two names of a PoE card's setting file.

#include "fake/World.h"

#include "Lanrise.h"

#include <cerrno>
#include <filesystem>
#include <set>
#include <sstream>
#include <sys/stat.h>
#include <tuple>

using namespace fake;

namespace {

namespace fs = std::filesystem;

constexpr char kFolder[] = "/mnt/mtd/Config/";

class BackupPoEConfigTest : public World {
protected:
    void SetUp() override
    {
        World::SetUp();
        Enter();
    }

    /// The current directory is where the operation works.
    static void Enter() { fs::current_path(Mapped(kFolder)); }

    static void PutFile(const std::string& name) { Put(kFolder + name, name); }

    static bool AreOneFile(const std::string& name, const std::string& other)
    {
        return Exists(kFolder + name) && Exists(kFolder + other) &&
               SameFile(kFolder + name, kFolder + other);
    }

    static std::set<std::string> Names()
    {
        std::set<std::string> names;
        for (const auto& entry : fs::directory_iterator(Mapped(kFolder))) {
            names.insert(entry.path().filename());
        }
        return names;
    }

    /// The lines printed, in any order: directories have none. A directory may or may not show the
    /// link that was made while it was walked.
    static std::multiset<std::string> Printed()
    {
        std::multiset<std::string> lines;
        std::istringstream text(PlainOutput());
        for (std::string line; std::getline(text, line);) lines.insert(line);
        return lines;
    }
};

using Lines = std::multiset<std::string>;
using NameSet = std::set<std::string>;

TEST_F(BackupPoEConfigTest, ACardsPoEFileGetsItsPoEName)
{
    PutFile("networketh0:poe");
    EXPECT_EQ(BackupPoEConfig(), 0);
    EXPECT_TRUE(AreOneFile("networketh0:poe", "networkpoe0"));
    EXPECT_EQ(Names(), (NameSet{"networketh0:poe", "networkpoe0"}));
    EXPECT_EQ(PlainOutput().rfind("backupName2: networkpoe0\n", 0), 0U);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(BackupPoEConfigTest, APoENameGetsItsCardsName)
{
    PutFile("networkpoe0");
    EXPECT_EQ(BackupPoEConfig(), 0);
    EXPECT_TRUE(AreOneFile("networkpoe0", "networketh0:poe"));
    EXPECT_EQ(PlainOutput().rfind("backupName: networketh0:poe\n", 0), 0U);
}

TEST_F(BackupPoEConfigTest, ATargetThatIsThereIsLeftAlone)
{
    PutFile("networketh0:poe");
    PutFile("networkpoe0");
    EXPECT_EQ(BackupPoEConfig(), 0);
    EXPECT_EQ(Printed(), (Lines{"backupName2: networkpoe0", "networkpoe0 exit at[1419]!",
                                "backupName: networketh0:poe", "networketh0:poe exit at[1441]!"}));
    for (const char* both : {"backupName2: networkpoe0\nnetworkpoe0 exit at[1419]!\n",
                             "backupName: networketh0:poe\nnetworketh0:poe exit at[1441]!\n"}) {
        EXPECT_NE(PlainOutput().find(both), std::string::npos) << both;
    }
    EXPECT_EQ(Get(std::string(kFolder) + "networketh0:poe"), "networketh0:poe");
    EXPECT_EQ(Get(std::string(kFolder) + "networkpoe0"), "networkpoe0");
    EXPECT_EQ(TraceOf({"link"}), std::vector<std::string>{});
}

TEST_F(BackupPoEConfigTest, ALinkThatFailsIsPrintedAndTheWalkGoesOn)
{
    PutFile("networketh0:poe");
    PutFile("networkpoe1");
    FailAll("link", EPERM);
    EXPECT_EQ(BackupPoEConfig(), 0);
    EXPECT_EQ(Printed(),
              (Lines{"backupName2: networkpoe0",
                     "link config file failed, (networketh0:poe --> networkpoe0), [Operation not "
                     "permitted]",
                     "backupName: networketh1:poe",
                     "link config file failed, (networkpoe1 --> networketh1:poe), [Operation not "
                     "permitted]"}));
    EXPECT_EQ(Names(), (NameSet{"networketh0:poe", "networkpoe1"}));
}

TEST_F(BackupPoEConfigTest, ANameIsPrintedBeforeItIsLookedForAndLinked)
{
    for (const auto& [name, target, printed] :
         {std::tuple{"networketh0:poe", "networkpoe0", "backupName2: networkpoe0\n"},
          std::tuple{"networkpoe7", "networketh7:poe", "backupName: networketh7:poe\n"}}) {
        PutFile(name);
        Texts before;
        OnCall("access " + std::string(target), [&] { before.push_back(PlainOutput()); });
        OnCall("link", [&] { before.push_back(PlainOutput()); });
        Fail("link", EPERM);
        EXPECT_EQ(BackupPoEConfig(), 0);
        EXPECT_EQ(before, (Texts{printed, printed}));
        EXPECT_EQ(PlainOutput(), printed + ("link config file failed, (" + std::string(name)) +
                                     " --> " + target + "), [Operation not permitted]\n");
        Remove(std::string(kFolder) + name);
        ClearLog();
    }
}

TEST_F(BackupPoEConfigTest, OfSeveralMarksTheFirstEndsTheCard)
{
    for (const auto& [name, target] : {std::pair{"networketh0:poe:poe", "networkpoe0"},
                                       std::pair{"networketh1:poe.old", "networkpoe1"},
                                       std::pair{"networketh:poe2:poe", "networkpoe"}}) {
        PutFile(name);
        EXPECT_EQ(BackupPoEConfig(), 0);
        EXPECT_TRUE(AreOneFile(name, target)) << name;
        Remove(std::string(kFolder) + name);
        Remove(std::string(kFolder) + target);
    }
}

TEST_F(BackupPoEConfigTest, ANameThatIsThereIsToldBehindIt)
{
    MakeFolder(std::string(kFolder) + "networkpoe0");  // no file, but the name is taken
    PutFile("networketh0:poe");
    EXPECT_EQ(BackupPoEConfig(), 0);
    EXPECT_EQ(PlainOutput(), "backupName2: networkpoe0\nnetworkpoe0 exit at[1419]!\n");
    ClearLog();
    Remove(std::string(kFolder) + "networketh0:poe");
    MakeFolder(std::string(kFolder) + "networketh5:poe");
    PutFile("networkpoe5");
    EXPECT_EQ(BackupPoEConfig(), 0);
    EXPECT_EQ(PlainOutput(), "backupName: networketh5:poe\nnetworketh5:poe exit at[1441]!\n");
}

TEST_F(BackupPoEConfigTest, FilesAreTakenInTheFoldersOrder)
{
    for (const char* name : {"networketh0:poe", "networkpoe1", "networketh2:poe", "network",
                             "networkpoe3", "networketh9:poe", "networkpoe4"}) {
        PutFile(name);
    }
    FailAll("link", EPERM);  // the folder stays as it is
    std::string wanted;
    for (const auto& entry : fs::directory_iterator(Mapped(kFolder))) {
        const std::string name = entry.path().filename();
        if (name == "network") continue;

        const bool isCards = name.rfind("networketh", 0) == 0;
        const std::string target =
            isCards ? "networkpoe" + name.substr(10, 1) : "networketh" + name.substr(10) + ":poe";
        wanted += (isCards ? "backupName2: " : "backupName: ") + target +
                  "\nlink config file failed, (" + name + " --> " + target +
                  "), [Operation not permitted]\n";
    }
    EXPECT_EQ(BackupPoEConfig(), 0);
    EXPECT_EQ(PlainOutput(), wanted);
}

TEST_F(BackupPoEConfigTest, OtherFilesArePassedOver)
{
    const NameSet names = {
        "network",        "network1",         "networketh2",     "networkpoe",
        "networkip6",     "xnetworkpoe0",     "eth0:poe",        "networkbond0:poe",
        "poeMode.conf",   "xnetworketh0:poe", "networketh0:POE", "networketh0poe",
        ":poe",           "networketh0.poe",  "Networkpoe0",     "networkpo0",
        "networkpo:eth0", "networkpo0e0",     "networketh0:po"};
    for (const std::string& name : names) PutFile(name);
    EXPECT_EQ(BackupPoEConfig(), 0);
    EXPECT_EQ(PlainOutput(), "");
    EXPECT_EQ(Names(), names);
}

TEST_F(BackupPoEConfigTest, OtherKindsOfEntriesArePassedOver)
{
    MakeFolder(std::string(kFolder) + "networketh0:poe");
    MakeFolder(std::string(kFolder) + "networkpoe1");
    fs::create_symlink("nowhere", Mapped((std::string(kFolder) + "networkpoe2").c_str()));
    PutFile("network");
    fs::create_symlink("network", Mapped((std::string(kFolder) + "networkpoe3").c_str()));
    fs::create_symlink("network", Mapped((std::string(kFolder) + "networketh4:poe").c_str()));
    ASSERT_EQ(mkfifo(Mapped((std::string(kFolder) + "networkpoe5").c_str()).c_str(), 0600), 0);
    EXPECT_EQ(BackupPoEConfig(), 0);
    EXPECT_EQ(PlainOutput(), "");
}

TEST_F(BackupPoEConfigTest, EntriesWithoutATypeArePassedOver)
{
    for (const char* name : {"networketh0:poe", "networkpoe1"}) PutFile(name);
    TellNoEntryTypes();
    EXPECT_EQ(BackupPoEConfig(), 0);
    EXPECT_EQ(PlainOutput(), "");
    EXPECT_EQ(Names(), (NameSet{"networketh0:poe", "networkpoe1"}));
}

TEST_F(BackupPoEConfigTest, WhatStandsBehindTheMarkIsNotLookedAt)
{
    PutFile("networketh0:poe.bak");
    Fail("link", EPERM);
    EXPECT_EQ(BackupPoEConfig(), 0);
    EXPECT_EQ(Printed(),
              (Lines{"backupName2: networkpoe0",
                     "link config file failed, (networketh0:poe.bak --> networkpoe0), [Operation "
                     "not permitted]"}));
}

TEST_F(BackupPoEConfigTest, APoENameWithTheMarkGetsTheMarkTwice)
{
    PutFile("networkpoe0:poe");
    Fail("link", EPERM);
    EXPECT_EQ(BackupPoEConfig(), 0);
    EXPECT_EQ(*Printed().begin(), "backupName: networketh0:poe:poe");
}

TEST_F(BackupPoEConfigTest, ACardWithoutNameHasAPoENameWithout)
{
    PutFile("networketh:poe");
    Fail("link", EPERM);
    EXPECT_EQ(BackupPoEConfig(), 0);
    EXPECT_EQ(*Printed().begin(), "backupName2: networkpoe");
}

TEST_F(BackupPoEConfigTest, LongNamesAreCut)
{
    const std::string card(80, 'x');
    PutFile("networketh" + card + ":poe");
    Fail("link", EPERM);
    EXPECT_EQ(BackupPoEConfig(), 0);
    // 63 characters of the front, 53 of them the card's; a target has 62 at most.
    EXPECT_EQ(*Printed().begin(), "backupName2: networkpoe" + card.substr(0, 52));

    Remove(std::string(kFolder) + "networketh" + card + ":poe");
    ClearLog();
    PutFile("networkpoe" + card);
    Fail("link", EPERM);
    EXPECT_EQ(BackupPoEConfig(), 0);
    EXPECT_EQ(*Printed().begin(), "backupName: networketh" + card.substr(0, 52));
}

TEST_F(BackupPoEConfigTest, SixtyTwoCharactersAreTheLongestTarget)
{
    for (const size_t length : {51U, 52U, 53U, 54U}) {
        const std::string card(length, 'x');
        const std::string name = "networketh" + card + ":poe";
        PutFile(name);
        ClearLog();
        Fail("link", EPERM);
        EXPECT_EQ(BackupPoEConfig(), 0);
        EXPECT_EQ(*Printed().begin(), "backupName2: networkpoe" + card.substr(0, 52));
        Remove(std::string(kFolder) + name);
    }
    for (const size_t length : {47U, 48U, 49U, 51U, 52U, 53U}) {
        const std::string card(length, 'x');
        PutFile("networkpoe" + card);
        ClearLog();
        Fail("link", EPERM);
        EXPECT_EQ(BackupPoEConfig(), 0);
        EXPECT_EQ(*Printed().begin(),
                  "backupName: " + ("networketh" + card + ":poe").substr(0, 62));
        Remove(std::string(kFolder) + "networkpoe" + card);
    }
}

TEST_F(BackupPoEConfigTest, AFolderThatCannotBeOpenedIsAFailure)
{
    Fail("opendir ./", EACCES);
    PutFile("networkpoe0");
    EXPECT_EQ(BackupPoEConfig(), -1);
    EXPECT_EQ(Log(), LogLines{Warn("BackupPoEConfig", "Can not opendir!")});
    EXPECT_EQ(Names(), NameSet{"networkpoe0"});
}

TEST_F(BackupPoEConfigTest, WhateverFailsNothingIsLost)
{
    PutFile("networketh0:poe");
    PutFile("networkpoe1");
    FailEachCall(
        [] {
            Enter();
            BackupPoEConfig();
        },
        [](const std::string&) {
            EXPECT_EQ(Get(std::string(kFolder) + "networketh0:poe"), "networketh0:poe");
            EXPECT_EQ(Get(std::string(kFolder) + "networkpoe1"), "networkpoe1");
        },
        {});
}

}  // namespace
