// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Support/KeyFile.h"

#include "Device.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <memory>
#include <random>
#include <sstream>
#include <thread>

#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace device;

namespace {

/// Whether a thread is put off where that is worst: when it has just let the next one in. What it
/// should have done before, it then does too late.
std::atomic<bool> putOffBehindLocks{false};

}  // namespace

extern "C" {

int __real_pthread_mutex_unlock(pthread_mutex_t* mutex);

int __wrap_pthread_mutex_unlock(pthread_mutex_t* mutex)
{
    const int result = __real_pthread_mutex_unlock(mutex);
    if (putOffBehindLocks) usleep(1);
    return result;
}
}

namespace {

constexpr char kFile[] = "/mnt/mtd/Config/network1";

std::string Value(const char* key, const char* file = kFile)
{
    char value[256] = {};
    return GetValueByKey(file, key, value, sizeof(value)) ? value : "(no value)";
}

/// A pipe through which two processes wait for each other.
class Signal {
public:
    Signal() { EXPECT_EQ(pipe(ends_), 0); }
    void Give() { EXPECT_EQ(write(ends_[1], "x", 1), 1); }
    void Await()
    {
        char got = 0;
        EXPECT_EQ(read(ends_[0], &got, 1), 1);
    }

private:
    int ends_[2] = {-1, -1};
};

/// Waits until a process is held up by somebody else's lock on a file.
void AwaitBlocked(pid_t process)
{
    const std::string waiting = "-> POSIX ";
    for (;;) {
        std::istringstream locks(Get("/proc/locks"));
        for (std::string line; std::getline(locks, line);) {
            if (line.find(waiting) != std::string::npos &&
                line.find(" " + std::to_string(process) + " ") != std::string::npos) {
                return;
            }
        }
    }
}

/// A program of somebody else that keeps to the lock.
class OtherProgram {
public:
    explicit OtherProgram(const char* path) : file_(open(path, O_RDWR))
    {
        struct flock range {};
        range.l_type = F_WRLCK;
        EXPECT_EQ(fcntl(file_, F_SETLK, &range), 0);
    }

    /// Replaces the file's text and lets go of it.
    void Rewrite(const std::string& text)
    {
        EXPECT_EQ(ftruncate(file_, 0), 0);
        EXPECT_EQ(write(file_, text.data(), text.size()), static_cast<ssize_t>(text.size()));
        close(file_);
    }

private:
    int file_;
};

class TwoProcessesTest : public Device {};

TEST_F(TwoProcessesTest, LoseNoUpdateOfEachOthersKeys)
{
    constexpr int kWrites = 300;
    const char* const keys[] = {"HOSTIP", "MTU", "GATEWAYIP", "WORKMODE"};
    Put(kFile, "");
    std::vector<std::unique_ptr<Child>> writers;
    for (const char* key : keys) {
        writers.push_back(std::make_unique<Child>([key] {
            for (int i = 1; i <= kWrites; ++i) {
                const std::string value = std::to_string(i);
                EXPECT_TRUE(SetValueByKey(kFile, key, value.c_str()));
                ASSERT_EQ(Value(key), value) << key;
            }
        }));
    }
    for (const auto& writer : writers) EXPECT_TRUE(writer->Wait());

    for (const char* key : keys) EXPECT_EQ(Value(key), std::to_string(kWrites)) << key;
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(TwoProcessesTest, AReaderNeverSeesAFileHalfWritten)
{
    Put(kFile, Lines({"HOSTIP = 10.0.0.1", "MTU = 1"}));
    Child writer([] {
        for (int i = 1; i <= 300; ++i) SetValueByKey(kFile, "MTU", std::to_string(i).c_str());
    });
    for (int i = 0; i < 300; ++i) {
        ASSERT_EQ(Value("HOSTIP"), "10.0.0.1");
        ASSERT_NE(Value("MTU"), "(no value)");
    }
    EXPECT_TRUE(writer.Wait());
    EXPECT_EQ(Log(), LogLines{});
}

/// Writes a key again and again, and looks each time whether it is there.
void Write(const char* key, int times)
{
    for (int i = 1; i <= times; ++i) {
        const std::string value = std::to_string(i);
        EXPECT_TRUE(SetValueByKey(kFile, key, value.c_str()));
        ASSERT_EQ(Value(key), value) << key;
    }
}

/// A process loses its lock on a file when any of its threads closes a descriptor of that file.
TEST_F(TwoProcessesTest, AThreadThatReadsLeavesTheLockToTheOneThatWrites)
{
    constexpr int kWrites = 200;
    Put(kFile, Lines({"HOSTIP = 10.0.0.1", "MTU = 0", "PRIO = 0", "ROUTE = kept"}));
    putOffBehindLocks = true;
    Child other([] { Write("PRIO", kWrites); });
    std::atomic<bool> end{false};
    std::thread readers[2];
    for (std::thread& reader : readers) {
        reader = std::thread([&end] {
            while (!end) EXPECT_EQ(Value("ROUTE"), "kept");
        });
    }
    Write("MTU", kWrites);
    EXPECT_TRUE(other.Wait());
    end = true;
    for (std::thread& reader : readers) reader.join();

    const std::string last = std::to_string(kWrites);
    EXPECT_EQ(Get(kFile),
              Lines({"HOSTIP = 10.0.0.1", "MTU = " + last, "PRIO = " + last, "ROUTE = kept"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(TwoProcessesTest, TheLockIsAWholeFileWriteLockThatOthersSee)
{
    Put(kFile, "");
    Signal locked;
    Signal looked;
    Child holder([&] {
        FileLock(true, kFile);
        locked.Give();
        looked.Await();
        FileLock(false, kFile);
    });
    locked.Await();
    const int file = open(kFile, O_RDWR);
    struct flock range {};
    range.l_type = F_WRLCK;
    EXPECT_EQ(fcntl(file, F_GETLK, &range), 0);
    EXPECT_EQ(range.l_type, F_WRLCK);
    EXPECT_EQ(range.l_pid, holder.Id());
    EXPECT_EQ(range.l_start, 0);
    EXPECT_EQ(range.l_len, 0);  // to the end, wherever it is
    looked.Give();
    EXPECT_TRUE(holder.Wait());

    range = {};
    range.l_type = F_WRLCK;
    EXPECT_EQ(fcntl(file, F_SETLK, &range), 0) << "the lock outlived its release";
    close(file);
}

TEST_F(TwoProcessesTest, AWriterWaitsForTheLockAndKeepsWhatWasWrittenMeanwhile)
{
    Put(kFile, Lines({"MTU = 1500"}));
    OtherProgram other(kFile);
    Child writer([] { EXPECT_TRUE(SetValueByKey(kFile, "HOSTIP", "10.0.0.1")); });
    AwaitBlocked(writer.Id());
    other.Rewrite(Lines({"MTU = 1400"}));
    EXPECT_TRUE(writer.Wait());
    EXPECT_EQ(Get(kFile), Lines({"MTU = 1400", "HOSTIP = 10.0.0.1"}));
}

TEST_F(TwoProcessesTest, AReaderWaitsForTheLockToo)
{
    Put(kFile, Lines({"MTU = 1500"}));
    OtherProgram other(kFile);
    Child reader([] { EXPECT_EQ(Value("MTU"), "1400"); });
    AwaitBlocked(reader.Id());
    other.Rewrite(Lines({"MTU = 1400"}));
    EXPECT_TRUE(reader.Wait());
}

TEST_F(TwoProcessesTest, AKilledHolderLeavesNoLockBehind)
{
    Put(kFile, Lines({"MTU = 1500"}));
    Signal locked;
    Child holder([&] {
        FileLock(true, kFile);
        locked.Give();
        pause();
    });
    locked.Await();
    holder.Kill();
    EXPECT_TRUE(SetValueByKey(kFile, "MTU", "1400"));
    EXPECT_EQ(Get(kFile), Lines({"MTU = 1400"}));
}

class ReadOnlyTest : public Device {};

TEST_F(ReadOnlyTest, SettingsAreReadAndNothingIsWritten)
{
    Put(kFile, Lines({"MTU = 1500"}));
    SettingsReadOnly();
    EXPECT_EQ(Value("MTU"), "1500");
    EXPECT_FALSE(SetValueByKey(kFile, "MTU", "1400"));
    EXPECT_EQ(Get(kFile), Lines({"MTU = 1500"}));
    EXPECT_EQ(Log(),
              (LogLines{Error("SetValueByKey", "cannot fopen for read.[Read-only file system]"),
                        Error("SetValueByKey", "cannot fopen [Read-only file system]")}));
}

TEST_F(ReadOnlyTest, FilesAreNeitherCreatedNorRemoved)
{
    Put(kFile, "");
    SettingsReadOnly();
    EXPECT_FALSE(CreateConfigFile("eth2"));
    EXPECT_FALSE(CheckConfigFile("eth2"));
    EXPECT_TRUE(DelConfigFile("eth1"));
    EXPECT_TRUE(CheckConfigFile("eth1"));
    EXPECT_EQ(Log(), LogLines{Warn("DelConfigFile",
                                   "remove file /mnt/mtd/Config/network1 failed,[Read-only file "
                                   "system]")});
}

class FullTest : public Device {
protected:
    void SetUp() override
    {
        Device::SetUp();
        SettingsOfSize(4 * 4096);
    }

    static void Fill()
    {
        const std::string full = Try("cat /dev/zero > /mnt/mtd/Config/filler").output;
        EXPECT_NE(full.find("No space left"), std::string::npos) << full;
    }
};

TEST_F(FullTest, WhatIsThereCanStillBeRewritten)
{
    Put(kFile, Lines({"MTU = 1500", "HOSTIP = 10.0.0.1"}));
    Fill();
    EXPECT_TRUE(SetValueByKey(kFile, "MTU", "1400"));
    EXPECT_EQ(Get(kFile), Lines({"MTU = 1400", "HOSTIP = 10.0.0.1"}));
}

TEST_F(FullTest, ANewFileStaysEmptyAndTheOthersWhole)
{
    Put(CardFile("eth0"), Lines({"MTU = 1500"}));
    Fill();
    (void)SetValueByKey(kFile, "MTU", "1400");
    EXPECT_EQ(Get(kFile), "");
    EXPECT_EQ(Value("MTU"), "(no value)");
    EXPECT_EQ(Get(CardFile("eth0")), Lines({"MTU = 1500"}));

    Must("rm /mnt/mtd/Config/filler");
    EXPECT_TRUE(SetValueByKey(kFile, "MTU", "1400"));
    EXPECT_EQ(Get(kFile), Lines({"MTU = 1400"}));
}

class FolderTest : public Device {};

TEST_F(FolderTest, AMissingFolderReadsAsNoSettings)
{
    Must("rmdir /mnt/mtd/Config");
    EXPECT_EQ(Value("MTU"), "(no value)");
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_FALSE(SetValueByKey(kFile, "MTU", "1400"));
    char files[32][64];
    int count = 32;
    EXPECT_FALSE(GetAllNetworkFile(files, &count));
    EXPECT_EQ(count, 0);
    EXPECT_EQ(Log(),
              (LogLines{Error("SetValueByKey", "cannot fopen for read.[No such file or directory]"),
                        Error("SetValueByKey", "cannot fopen [No such file or directory]"),
                        Error("GetAllNetworkFile", "can not open /mnt/mtd/Config")}));
}

TEST_F(FolderTest, ARewriteKeepsBothNamesOfOneFile)
{
    Put(CardFile("eth2"), Lines({"MTU = 1500"}));
    ASSERT_EQ(link("/mnt/mtd/Config/networketh2", "/mnt/mtd/Config/network2"), 0);
    EXPECT_TRUE(SetValueByKey("/mnt/mtd/Config/network2", "MTU", "1400"));
    EXPECT_EQ(Get(CardFile("eth2")), Lines({"MTU = 1400"}));
}

TEST_F(FolderTest, TheListHoldsRegularSettingFilesWhoseDirectoryRecordIsShortEnough)
{
    const std::string longest = "networketh" + std::string(26, 'x');  // 36 characters
    Put(kFile, "");
    Put(CardFile("eth0"), "");
    Put(std::string(kConfig) + "/networkip6", "");
    Put(std::string(kConfig) + "/resolv.conf", "");
    Put(std::string(kConfig) + "/" + longest, "");
    Put(std::string(kConfig) + "/" + longest + "x", "");
    Must("mkdir /mnt/mtd/Config/networkbr0; ln -s nowhere /mnt/mtd/Config/networkbr1;"
         " mkfifo /mnt/mtd/Config/networkbr2; ln -s network /mnt/mtd/Config/networkbr3");
    char files[32][64];
    int count = 32;
    EXPECT_TRUE(GetAllNetworkFile(files, &count));
    Texts names(files, files + count);
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (Texts{"network", "network1", "networkbr3", longest}));
    EXPECT_EQ(Log(), LogLines{Warn("GetAllNetworkFile",
                                   "filename too long[" + longest + "x].max length is 63")});
}

class HostileFileTest : public Device {};

TEST_F(HostileFileTest, AFolderInPlaceOfAFileIsNoSetting)
{
    Must("mkdir /mnt/mtd/Config/network1");
    EXPECT_EQ(Value("MTU"), "(no value)");
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_FALSE(SetValueByKey(kFile, "MTU", "1400"));
    EXPECT_EQ(Log(), (LogLines{Error("SetValueByKey", "cannot fopen for read.[Is a directory]"),
                               Error("SetValueByKey", "cannot fopen [Is a directory]")}));
}

TEST_F(HostileFileTest, ALinkThatLeadsInACircleIsNoSetting)
{
    Must("ln -s network1 /mnt/mtd/Config/network1");
    EXPECT_EQ(Value("MTU"), "(no value)");
    EXPECT_FALSE(SetValueByKey(kFile, "MTU", "1400"));
    EXPECT_FALSE(CheckConfigFile("eth1"));
}

TEST_F(HostileFileTest, AMegabyteWithoutALineIsReplacedByTheSetting)
{
    Put(kFile, std::string(1 << 20, 'x'));
    EXPECT_EQ(Value("MTU"), "(no value)");
    EXPECT_TRUE(SetValueByKey(kFile, "MTU", "1400"));
    EXPECT_EQ(Get(kFile), Lines({"MTU = 1400"}));
}

/// Fragments that a torn, mixed or hand-edited file may be made of, joined at random.
std::string HostileText(std::mt19937& random)
{
    static const Texts pieces = {"MTU",
                                 "HOSTIP",
                                 " = ",
                                 "=",
                                 "\n",
                                 "\n",
                                 "\r\n",
                                 "\t",
                                 "1500",
                                 "-1",
                                 "MTU = ",
                                 "BONDMEMBERS = ",
                                 "SSIF_EDGE[0]",
                                 "\xff\xfe",
                                 "%s%n",
                                 "#",
                                 std::string(1, '\0'),
                                 std::string(250, 'y'),
                                 std::string(300, 'z')};
    std::string text;
    const auto length = random() % 120;
    for (unsigned i = 0; i < length; ++i) text += pieces[random() % pieces.size()];
    return text;
}

TEST_F(HostileFileTest, AWriteMakesAnyFileAnswerOrLeavesItAsItWas)
{
    std::mt19937 random(20);
    for (int i = 0; i < 500; ++i) {
        const std::string text = HostileText(random);
        Put(kFile, text);
        (void)Value("MTU");
        if (!SetValueByKey(kFile, "MTU", "1400")) {
            ASSERT_EQ(Get(kFile), text);
            continue;
        }
        ASSERT_EQ(Value("MTU"), "1400") << testing::PrintToString(text);
        const std::string written = Get(kFile);
        ASSERT_LE(std::count(written.begin(), written.end(), '\n'), 16);
        ASSERT_EQ(written.find('\0'), std::string::npos);

        // The next write finds a file that it keeps as it is.
        ASSERT_TRUE(SetValueByKey(kFile, "MTU", "1400"));
        ASSERT_EQ(Get(kFile), written) << testing::PrintToString(text);
    }
}

}  // namespace
