// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Where setting files lie, how they are guarded, made, removed and listed.

#include "Support/KeyFile.h"

#include "fake/World.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace fake;

namespace {

constexpr char kFolder[] = "/mnt/mtd/Config";
constexpr char kFile[] = "/mnt/mtd/Config/network1";

std::string In(const std::string& name)
{
    return std::string(kFolder) + "/" + name;
}

// ---- keys

TEST(KeyText, IsTheVocabularyOfTheFiles)
{
    const Texts expected = {
        "HOSTIP",      "SUBMASK",    "GATEWAYIP",  "PRIO",          "WORKMODE",     "BONDED",
        "BONDNAME",    "BONDMODE",   "ROUTE",      "BONDPRIMARY",   "MTU",          "ACTIVE_ETH",
        "DEFAULT_ETH", "BRIDGEEDED", "BRIDGENAME", "BONDMEMBERS",   "bridgeprefix", "stp_state",
        "BRIDGES",     "SSIF",       "SSIF_EDGE",  "BRIDGEMEMBERS", "LACP"};
    ASSERT_EQ(HOST_NET_END, 23);
    Texts keys;
    for (int key = 0; key < HOST_NET_END; ++key) {
        keys.emplace_back(vorlix::KeyText(static_cast<KEYENUM>(key)));
    }
    EXPECT_EQ(keys, expected);
}

// ---- paths

using Former = bool (*)(const char*, char*, int);

struct PathCase {
    Former form;
    const char* name;
    const char* path;
};

TEST(GetFileByName, FormsThePathOfEachCard)
{
    const PathCase cases[] = {
        {GetFileByName, "eth0", "/mnt/mtd/Config/network"},
        {GetFileByName, "eth1", "/mnt/mtd/Config/network1"},
        {GetFileByName, "eth2", "/mnt/mtd/Config/networketh2"},
        {GetFileByName, "eth10", "/mnt/mtd/Config/networketh10"},
        {GetFileByName, "bond0", "/mnt/mtd/Config/networkbond0"},
        {GetFileByName, "eth0.100", "/mnt/mtd/Config/networketh0.100"},
        {GetFileByName, "", "/mnt/mtd/Config/network"},
        {GetFileByName6, "eth0", "/mnt/mtd/Config/networkip6"},
        {GetFileByName6, "eth1", "/mnt/mtd/Config/networkip61"},
        {GetFileByName6, "eth2", "/mnt/mtd/Config/networkip6eth2"},
        {GetFileByName6, "br0", "/mnt/mtd/Config/networkip6br0"},
    };
    for (const PathCase& expected : cases) {
        char path[64] = {};
        EXPECT_TRUE(expected.form(expected.name, path, sizeof(path))) << expected.path;
        EXPECT_STREQ(path, expected.path);
    }
}

TEST(GetFileByName, CutsAPathThatDoesNotFitAndSaysNothing)
{
    for (const Former form : {GetFileByName, GetFileByName6}) {
        char path[12] = "###########";
        EXPECT_TRUE(form("eth2", path, 9));
        EXPECT_STREQ(path, "/mnt/mtd");
        EXPECT_EQ(path[9], '#');
        EXPECT_TRUE(form("eth2", path, 1));
        EXPECT_STREQ(path, "");
    }
}

TEST(GetFileByName, RefusesNullAndNoRoom)
{
    for (const Former form : {GetFileByName, GetFileByName6}) {
        char path[64] = "as it was";
        EXPECT_FALSE(form(nullptr, path, sizeof(path)));
        EXPECT_FALSE(form("eth0", nullptr, sizeof(path)));
        for (const int len : {0, -1, INT_MIN}) EXPECT_FALSE(form("eth0", path, len));
        EXPECT_STREQ(path, "as it was");
    }
}

TEST(CardOfFile, IsTheWayBackFromAFilesName)
{
    for (const char* card : {"eth0", "eth1", "eth2", "eth10", "bond0.5", "br0", "wlan0"}) {
        char path[vorlix::kPathSize] = {};
        ASSERT_TRUE(GetFileByName(card, path, sizeof(path)));
        const char* file = path + strlen(vorlix::kConfigFolder) + 1;
        EXPECT_STREQ(vorlix::CardOfFile(file), card);

        char listed[vorlix::kPathSize] = {};
        vorlix::FormListedPath(file, listed);
        EXPECT_STREQ(listed, path);
    }
}

// ---- FileLock

class FileLockTest : public World {};

TEST_F(FileLockTest, TakesTheMutexAndThenTheWholeFile)
{
    Put(kFile, "MTU = 1500\n");
    EXPECT_TRUE(FileLock(true, kFile));
    EXPECT_EQ(Trace(), (Texts{"mutex lock", "open /mnt/mtd/Config/network1 O_WRONLY|O_APPEND",
                              "fcntl F_SETLKW F_WRLCK /mnt/mtd/Config/network1"}));
    EXPECT_EQ(HeldMutexes(), 1);
    EXPECT_TRUE(LockedForOthers(kFile));

    ClearTrace();
    EXPECT_TRUE(FileLock(false, kFile));
    EXPECT_EQ(Trace(), (Texts{"fcntl F_SETLKW F_UNLCK /mnt/mtd/Config/network1",
                              "close /mnt/mtd/Config/network1", "mutex unlock"}));
    EXPECT_EQ(HeldMutexes(), 0);
    EXPECT_FALSE(LockedForOthers(kFile));
    EXPECT_EQ(OpenHandles(), Texts{});
    EXPECT_EQ(Get(kFile), "MTU = 1500\n");
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(FileLockTest, AFileThatIsNotThereIsGuardedByTheMutexAlone)
{
    EXPECT_TRUE(FileLock(true, kFile));
    EXPECT_EQ(HeldMutexes(), 1);
    EXPECT_FALSE(Exists(kFile));
    EXPECT_TRUE(FileLock(false, kFile));
    EXPECT_EQ(HeldMutexes(), 0);
    EXPECT_EQ(TraceOf({"fcntl", "close"}), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(FileLockTest, SoAreAReadOnlyPlaceAndAFolder)
{
    Put(kFile, "MTU = 1500\n");
    Fail("open /mnt/mtd/Config/network1 O_WRONLY", EROFS);
    EXPECT_TRUE(FileLock(true, kFile));
    EXPECT_TRUE(FileLock(false, kFile));
    EXPECT_TRUE(FileLock(true, kFolder));
    EXPECT_TRUE(FileLock(false, kFolder));
    EXPECT_EQ(HeldMutexes(), 0);
    EXPECT_EQ(TraceOf({"fcntl", "close"}), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(FileLockTest, SoIsNull)
{
    EXPECT_TRUE(FileLock(true, nullptr));
    EXPECT_EQ(HeldMutexes(), 1);
    EXPECT_TRUE(FileLock(false, nullptr));
    EXPECT_EQ(Trace(), (Texts{"mutex lock", "mutex unlock"}));
}

TEST_F(FileLockTest, ARefusedLockIsLoggedAndTheCallerGoesOn)
{
    Put(kFile, "");
    Fail("fcntl F_SETLKW F_WRLCK", ENOLCK);
    EXPECT_TRUE(FileLock(true, kFile));
    EXPECT_EQ(OpenHandles(), (Texts{"open /mnt/mtd/Config/network1 O_WRONLY|O_APPEND"}));
    EXPECT_TRUE(FileLock(false, kFile));
    EXPECT_EQ(TraceOf({"fcntl", "close"}), (Texts{"fcntl F_SETLKW F_WRLCK /mnt/mtd/Config/network1",
                                                  "fcntl F_SETLKW F_UNLCK /mnt/mtd/Config/network1",
                                                  "close /mnt/mtd/Config/network1"}));
    EXPECT_EQ(Log(), (LogLines{Error("FileLock", "fcntl (F_SETLKW F_WRLCK) failed, pid:" +
                                                     std::to_string(getpid()) +
                                                     ", [No locks available]")}));
}

TEST_F(FileLockTest, ARefusedUnlockIsLoggedAndTheFileIsClosed)
{
    Put(kFile, "");
    EXPECT_TRUE(FileLock(true, kFile));
    Fail("fcntl F_SETLKW F_UNLCK", EDEADLK);
    EXPECT_TRUE(FileLock(false, kFile));
    EXPECT_EQ(OpenHandles(), Texts{});
    EXPECT_EQ(HeldMutexes(), 0);
    EXPECT_EQ(Log(), (LogLines{Error("FileLock", "fcntl (F_SETLKW F_UNLCK) failed, pid:" +
                                                     std::to_string(getpid()) +
                                                     ", [Resource deadlock avoided]")}));
}

/// A signal's handler without SA_RESTART ends the wait: that is told, and the caller goes on.
TEST_F(FileLockTest, AnInterruptedWaitIsARefusal)
{
    Put(kFile, "");
    Fail("fcntl F_SETLKW F_WRLCK", EINTR);
    EXPECT_TRUE(FileLock(true, kFile));
    Fail("fcntl F_SETLKW F_UNLCK", EINTR);
    EXPECT_TRUE(FileLock(false, kFile));
    EXPECT_EQ(TraceOf({"fcntl"}).size(), 2U);
    const std::string rest =
        ") failed, pid:" + std::to_string(getpid()) + ", [Interrupted system call]";
    EXPECT_EQ(Log(), (LogLines{Error("FileLock", "fcntl (F_SETLKW F_WRLCK" + rest),
                               Error("FileLock", "fcntl (F_SETLKW F_UNLCK" + rest)}));
}

TEST_F(FileLockTest, AChildLocksInItsOwnName)
{
    Put(kFile, "");
    EXPECT_TRUE(FileLock(true, kFile));
    EXPECT_TRUE(FileLock(false, kFile));
    const pid_t child = fork();
    if (child == 0) {
        Fail("fcntl F_SETLKW F_WRLCK", ENOLCK);
        ClearLog();
        (void)FileLock(true, kFile);
        const LogLine own =
            Error("FileLock", "fcntl (F_SETLKW F_WRLCK) failed, pid:" + std::to_string(getpid()) +
                                  ", [No locks available]");
        _exit(Log() == LogLines{own} ? 0 : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
}

TEST_F(FileLockTest, TheNextFileStartsAfresh)
{
    Put(kFile, "");
    EXPECT_TRUE(FileLock(true, kFile));
    EXPECT_TRUE(FileLock(false, kFile));
    ClearTrace();
    EXPECT_TRUE(FileLock(true, "/mnt/mtd/Config/none"));
    EXPECT_TRUE(FileLock(false, "/mnt/mtd/Config/none"));
    EXPECT_EQ(TraceOf({"fcntl", "close"}), Texts{});
}

TEST_F(FileLockTest, ADescriptorOf0IsOneToo)
{
    Put(kFile, "");
    close(STDIN_FILENO);  // a start script may have done so
    ClearTrace();
    EXPECT_TRUE(FileLock(true, kFile));
    EXPECT_TRUE(LockedForOthers(kFile));
    EXPECT_TRUE(FileLock(false, kFile));
    EXPECT_EQ(TraceOf({"fcntl", "close"}), (Texts{"fcntl F_SETLKW F_WRLCK /mnt/mtd/Config/network1",
                                                  "fcntl F_SETLKW F_UNLCK /mnt/mtd/Config/network1",
                                                  "close /mnt/mtd/Config/network1"}));
    EXPECT_EQ(fcntl(STDIN_FILENO, F_GETFD), -1);
}

TEST_F(FileLockTest, NothingIsLeftHeldWhateverFails)
{
    Put(kFile, "");
    FailEachCall([] {
        FileLock(true, kFile);
        FileLock(false, kFile);
    });
}

TEST_F(FileLockTest, AGuardKnowsItsFileAndReleasesAtTheEndOfItsScope)
{
    Put(kFile, "");
    {
        const vorlix::ConfigLock lock(kFile);
        EXPECT_FALSE(lock.FileIsMissing());
        lock.ReleaseFile();
        EXPECT_FALSE(LockedForOthers(kFile));
        EXPECT_EQ(HeldMutexes(), 1);
    }
    {
        const vorlix::ConfigLock lock("/mnt/mtd/Config/none");
        EXPECT_TRUE(lock.FileIsMissing());
    }
    {
        const vorlix::ConfigLock lock(nullptr);
        EXPECT_FALSE(lock.FileIsMissing());
        EXPECT_EQ(HeldMutexes(), 1);
    }
    EXPECT_EQ(HeldMutexes(), 0);
}

// ---- a process that only looks

class LookOnlyTest : public World {};

TEST_F(LookOnlyTest, ReadsWithoutALockAndWritesNothing)
{
    Put(kFile, "MTU = 1500\n");
    vorlix::LookOnly();
    char value[8] = {};
    EXPECT_TRUE(GetValueByKey(kFile, "MTU", value, sizeof(value)));
    EXPECT_STREQ(value, "1500");
    EXPECT_FALSE(SetValueByKey(kFile, "MTU", "1400"));
    EXPECT_FALSE(SetValueByKey(In("network").c_str(), "MTU", "1400"));
    EXPECT_EQ(Get(kFile), "MTU = 1500\n");
    EXPECT_FALSE(Exists(In("network")));
    EXPECT_EQ(TraceOf({"open", "fopen", "fcntl"}),
              Texts{"open " + std::string(kFile) + " O_RDONLY"});
    EXPECT_EQ(HeldMutexes(), 0);
    EXPECT_EQ(Log(), LogLines{});
}

// ---- checkIsRegFile

class CheckIsRegFileTest : public World {};

TEST_F(CheckIsRegFileTest, IsTrueForAFileOfTheFolderAlone)
{
    Put(In("network"), "");
    MakeFolder(In("networkdir"));
    std::filesystem::create_symlink("network", Mapped(In("networklink").c_str()));
    std::filesystem::create_symlink("nowhere", Mapped(In("networkdangling").c_str()));
    ASSERT_EQ(mkfifo(Mapped(In("networkpipe").c_str()).c_str(), 0600), 0);
    EXPECT_FALSE(checkIsRegFile("networkpipe"));
    EXPECT_TRUE(checkIsRegFile("network"));
    EXPECT_TRUE(checkIsRegFile("networklink"));
    EXPECT_FALSE(checkIsRegFile("networkdangling"));
    EXPECT_FALSE(checkIsRegFile("networkdir"));
    EXPECT_FALSE(checkIsRegFile("network1"));
    EXPECT_FALSE(checkIsRegFile("."));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(CheckIsRegFileTest, IsFalseForNoName)
{
    EXPECT_FALSE(checkIsRegFile(""));
    EXPECT_FALSE(checkIsRegFile(nullptr));
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(CheckIsRegFileTest, APathOf255CharactersIsTheLongest)
{
    const std::string longest(239, 'n');  // behind the folder and its slash
    Put(In(longest), "");
    EXPECT_TRUE(checkIsRegFile(longest.c_str()));
    EXPECT_EQ(Log(), LogLines{});

    const std::string longer = longest + "n";
    Put(In(longer), "");
    EXPECT_FALSE(checkIsRegFile(longer.c_str()));
    EXPECT_EQ(Log(), (LogLines{Error("checkIsRegFile", "the file:" + longer + " is too long")}));
    EXPECT_EQ(TraceOf({"stat"}).size(), 1U);
}

// ---- files of a card

class ConfigFileTest : public World {};

TEST_F(ConfigFileTest, IsThereOnceItIsCreated)
{
    EXPECT_FALSE(CheckConfigFile("eth2"));
    EXPECT_TRUE(CreateConfigFile("eth2"));
    EXPECT_TRUE(CheckConfigFile("eth2"));
    EXPECT_EQ(Get(In("networketh2")), "");
    EXPECT_EQ(TraceOf({"open", "close"}), (Texts{"open /mnt/mtd/Config/networketh2 O_RDWR|O_CREAT",
                                                 "close /mnt/mtd/Config/networketh2"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(ConfigFileTest, IsReadableByAllWhenCreated)
{
    umask(0);
    EXPECT_TRUE(CreateConfigFile("eth1"));
    struct stat status {};
    ASSERT_EQ(stat(kFile, &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0644U);
}

TEST_F(ConfigFileTest, KeepsItsContentWhenCreatedAgain)
{
    Put(kFile, "MTU = 1500\n");
    EXPECT_TRUE(CreateConfigFile("eth1"));
    EXPECT_TRUE(CreateConfigFile("eth1"));
    EXPECT_EQ(Get(kFile), "MTU = 1500\n");
}

/// Its closing would take the process's lock off the file under the thread that writes it.
TEST_F(ConfigFileTest, WaitsForTheThreadThatHasTheFileWhenCreatedAgain)
{
    Put(kFile, "MTU = 1500\n");
    int held = 0;
    OnCall("open /mnt/mtd/Config/network1 O_RDWR", [&] { held = HeldMutexes(); });
    Texts open = {"never asked"};
    OnCall("mutex unlock", [&] { open = OpenHandles(); });
    EXPECT_TRUE(CreateConfigFile("eth1"));
    EXPECT_EQ(held, 1);
    EXPECT_EQ(open, Texts{});
    EXPECT_EQ(Trace(), (Texts{"mutex lock", "open /mnt/mtd/Config/network1 O_RDWR|O_CREAT",
                              "close /mnt/mtd/Config/network1", "mutex unlock"}));
    EXPECT_EQ(HeldMutexes(), 0);
}

TEST_F(ConfigFileTest, CannotBeCreatedWithoutTheFolder)
{
    Remove(kFolder);
    EXPECT_FALSE(CreateConfigFile("eth1"));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(ConfigFileTest, CannotBeCreatedInAReadOnlyPlace)
{
    Fail("open /mnt/mtd/Config/network1 O_RDWR", EROFS);
    EXPECT_FALSE(CreateConfigFile("eth1"));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(ConfigFileTest, ExistsAsWhateverBearsItsName)
{
    MakeFolder(kFile);
    EXPECT_TRUE(CheckConfigFile("eth1"));
    EXPECT_FALSE(CreateConfigFile("eth1"));
    std::filesystem::create_symlink("nowhere", Mapped(In("networketh2").c_str()));
    EXPECT_FALSE(CheckConfigFile("eth2"));
    EXPECT_EQ(TraceOf({"access"}),
              (Texts{"access /mnt/mtd/Config/network1", "access /mnt/mtd/Config/networketh2"}));
}

TEST_F(ConfigFileTest, IsRemovedWithoutAWord)
{
    Put(kFile, "MTU = 1500\n");
    EXPECT_TRUE(DelConfigFile("eth1"));
    EXPECT_FALSE(Exists(kFile));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(ConfigFileTest, AFailedRemovalIsLoggedAndTrueAllTheSame)
{
    EXPECT_TRUE(DelConfigFile("bond0"));
    EXPECT_EQ(Log(), (LogLines{Warn("DelConfigFile", "remove file /mnt/mtd/Config/networkbond0 "
                                                     "failed,[No such file or directory]")}));
    ClearLog();
    Put(kFile, "MTU = 1500\n");
    Fail("remove", EROFS);
    EXPECT_TRUE(DelConfigFile("eth1"));
    EXPECT_EQ(Log(), (LogLines{Warn("DelConfigFile", "remove file /mnt/mtd/Config/network1 "
                                                     "failed,[Read-only file system]")}));
    EXPECT_EQ(Get(kFile), "MTU = 1500\n");
}

TEST_F(ConfigFileTest, OfNoCardIsNotThere)
{
    EXPECT_FALSE(CheckConfigFile(nullptr));
    EXPECT_FALSE(CreateConfigFile(nullptr));
    EXPECT_EQ(Trace(), Texts{});
    EXPECT_TRUE(DelConfigFile(nullptr));
    EXPECT_EQ(Log(),
              (LogLines{Warn("DelConfigFile", "remove file  failed,[No such file or directory]")}));
}

TEST_F(ConfigFileTest, APathBeyond63CharactersIsCut)
{
    const std::string name(60, 'n');
    const std::string cut = (std::string(kFolder) + "/network" + name).substr(0, 63);
    EXPECT_TRUE(CreateConfigFile(name.c_str()));
    EXPECT_TRUE(Exists(cut));
    EXPECT_TRUE(CheckConfigFile(name.c_str()));
    EXPECT_TRUE(DelConfigFile(name.c_str()));
    EXPECT_FALSE(Exists(cut));
}

TEST_F(ConfigFileTest, NothingIsLeftOpenWhateverFails)
{
    FailEachCall([] { CreateConfigFile("eth2"); },
                 [](const std::string&) { EXPECT_EQ(Log(), LogLines{}); });
}

// ---- GetAllNetworkFile

class GetAllNetworkFileTest : public World {
protected:
    /// The names listed, sorted, since a folder has no order of its own.
    static Texts List(int capacity)
    {
        char files[40][64];
        memset(files, '#', sizeof(files));
        int count = capacity;
        EXPECT_TRUE(GetAllNetworkFile(files, &count));
        Texts names;
        for (int i = 0; i < count; ++i) names.emplace_back(files[i]);
        EXPECT_EQ(files[count][0], '#');  // nothing behind the count
        std::sort(names.begin(), names.end());
        return names;
    }
};

TEST_F(GetAllNetworkFileTest, ListsTheIPv4FilesOfAllCards)
{
    for (const char* name : {"network", "network1", "networketh2", "networkbond0", "networkip6",
                             "networkip61", "networkip6eth2", "poeMode.conf", "resolv.conf",
                             "rsbridgeinit.conf", "xnetwork", "Network", ".network", "..network",
                             "ip6network", "networkxip6", "networkip", "xnetworkip6"}) {
        Put(In(name), "");
    }
    EXPECT_EQ(List(32),
              (Texts{"..network", ".network", "ip6network", "network", "network1", "networkbond0",
                     "networketh2", "networkip", "networkxip6", "xnetwork"}));
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(OpenHandles(), Texts{});
}

TEST_F(GetAllNetworkFileTest, TheOldNameOfAFileComesLast)
{
    // In whatever order the folder tells them: one file is made before, one behind.
    for (const char* name : {"network", "network2", "networketh2"}) Put(In(name), "");
    char files[3][64] = {};
    int count = 3;
    EXPECT_TRUE(GetAllNetworkFile(files, &count));
    EXPECT_EQ(count, 3);
    EXPECT_STREQ(files[2], "network2");
    for (const char* name : {"network", "networketh2"}) Remove(In(name));
    for (const char* name : {"networketh2", "network"}) Put(In(name), "");
    EXPECT_TRUE(GetAllNetworkFile(files, &count));
    EXPECT_STREQ(files[2], "network2");
}

TEST_F(GetAllNetworkFileTest, TheOldNameIsMovedAmongTheFilesListedAlone)
{
    char files[4][64];
    for (auto& file : files) strcpy(file, "network2");
    Put(In("networketh3"), "");
    int count = 3;
    EXPECT_TRUE(GetAllNetworkFile(files, &count));
    EXPECT_EQ(count, 1);
    EXPECT_STREQ(files[0], "networketh3");
}

TEST_F(GetAllNetworkFileTest, AFileIsToldByItselfAndNotByTheTypeOfItsEntry)
{
    Put(In("network"), "");
    MakeFolder(In("networkdir"));
    TellNoEntryTypes();
    EXPECT_EQ(List(32), Texts{"network"});
}

TEST_F(GetAllNetworkFileTest, PassesOverWhatIsNoFile)
{
    Put(In("network"), "");
    MakeFolder(In("networkdir"));
    std::filesystem::create_symlink("nowhere", Mapped(In("networkdangling").c_str()));
    std::filesystem::create_symlink("network", Mapped(In("networklink").c_str()));
    EXPECT_EQ(List(32), (Texts{"network", "networklink"}));
}

TEST_F(GetAllNetworkFileTest, PassesOverANameWhoseEntryIsTooLong)
{
    const std::string longest = "network" + std::string(29, 'n');  // 36 characters
    Put(In(longest), "");
    Put(In(longest + "n"), "");
    EXPECT_EQ(List(32), (Texts{longest}));
    EXPECT_EQ(Log(), (LogLines{Warn("GetAllNetworkFile",
                                    "filename too long[" + longest + "n].max length is 63")}));
}

TEST_F(GetAllNetworkFileTest, ANameTooLongForAPathIsToldAndPassedOver)
{
    const std::string longest = "other" + std::string(240, 'n');
    Put(In(longest), "");
    EXPECT_EQ(List(32), Texts{});
    EXPECT_EQ(Log(), (LogLines{Error("checkIsRegFile", "the file:" + longest + " is too long")}));
}

TEST_F(GetAllNetworkFileTest, StopsAtTheCapacity)
{
    for (int i = 0; i < 40; ++i) Put(In("networketh" + std::to_string(i)), "");
    EXPECT_EQ(List(32).size(), 32U);
    EXPECT_EQ(List(2).size(), 2U);
    EXPECT_EQ(List(1).size(), 1U);
}

TEST_F(GetAllNetworkFileTest, NoRoomListsNothing)
{
    Put(In("network"), "");
    for (const int capacity : {0, -1, INT_MIN}) {
        char files[1][64] = {"as it was"};
        int count = capacity;
        EXPECT_TRUE(GetAllNetworkFile(files, &count));
        EXPECT_EQ(count, 0);
        EXPECT_STREQ(files[0], "as it was");
    }
}

TEST_F(GetAllNetworkFileTest, AnEmptyFolderIsAnEmptyList)
{
    EXPECT_EQ(List(32), Texts{});
}

TEST_F(GetAllNetworkFileTest, AFolderThatCannotBeOpenedIsAnError)
{
    Remove(kFolder);
    char files[32][64] = {"as it was"};
    int count = 32;
    EXPECT_FALSE(GetAllNetworkFile(files, &count));
    EXPECT_EQ(count, 0);
    EXPECT_STREQ(files[0], "as it was");
    EXPECT_EQ(Log(), (LogLines{Error("GetAllNetworkFile", "can not open /mnt/mtd/Config")}));
}

TEST_F(GetAllNetworkFileTest, RefusesNull)
{
    char files[32][64];
    int count = 32;
    EXPECT_FALSE(GetAllNetworkFile(nullptr, &count));
    EXPECT_FALSE(GetAllNetworkFile(files, nullptr));
    EXPECT_EQ(count, 32);
    EXPECT_EQ(Log(), (LogLines{Error("GetAllNetworkFile", "params is null"),
                               Error("GetAllNetworkFile", "params is null")}));
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(GetAllNetworkFileTest, NothingIsLeftOpenWhateverFails)
{
    Put(In("network"), "");
    Put(In("network1"), "");
    FailEachCall([] {
        char files[32][64];
        int count = 32;
        GetAllNetworkFile(files, &count);
    });
}

}  // namespace
