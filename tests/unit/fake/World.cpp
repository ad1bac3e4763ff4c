// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "fake/World.h"

#include "fake/Odd.h"
#include "fake/Rtnetlink.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fake {

namespace {

namespace fs = std::filesystem;

std::string scratch;
std::string startFolder;

constexpr const char* kDevicePlaces[] = {"/mnt/mtd",       "/proc/net/",  "/sys/class/net/",
                                         "/dev/pdc",       "/dev/qv_poe", "/proc/sys/",
                                         "/proc/stp_ctrl", "/tmp/telnet"};

/// A folder in memory where there is one: a disk makes each rewrite of a setting file wait. Who
/// ends tests by force says where, and clears up behind them.
std::string MakeScratch()
{
    const char* asked = getenv("VORLIX_SCRATCH");
    for (const char* place : {asked == nullptr ? "/dev/shm" : asked, "/dev/shm", "/tmp"}) {
        std::string folder = std::string(place) + "/vorlix-unit-XXXXXX";
        if (mkdtemp(folder.data()) != nullptr) return folder;
    }
    return "";
}

}  // namespace

std::string Mapped(const char* path)
{
    for (const char* place : kDevicePlaces) {
        if (std::string(path).rfind(place, 0) == 0) return scratch + path;
    }
    return path;
}

void Put(const std::string& path, const std::string& text)
{
    const fs::path real = Mapped(path.c_str());
    fs::create_directories(real.parent_path());
    std::ofstream(real, std::ios::binary) << text;
}

std::string Get(const std::string& path)
{
    std::ifstream file(Mapped(path.c_str()), std::ios::binary);
    if (!file) return "(no file)";
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

bool Exists(const std::string& path)
{
    return fs::exists(Mapped(path.c_str()));
}

void Remove(const std::string& path)
{
    const std::string mapped = Mapped(path.c_str());
    if (mapped == path) abort();  // a path of this machine, not of the device
    fs::remove_all(mapped);
}

void MakeFolder(const std::string& path)
{
    fs::create_directories(Mapped(path.c_str()));
}

bool SameFile(const std::string& path, const std::string& other)
{
    return fs::equivalent(Mapped(path.c_str()), Mapped(other.c_str()));
}

bool LockedForOthers(const std::string& path)
{
    const OwnCalls looking;
    const pid_t other = fork();
    if (other == 0) {
        const int file = open(Mapped(path.c_str()).c_str(), O_RDWR);
        bool locked = file >= 0;
        for (const off_t start : {off_t{0}, off_t{1} << 30}) {  // as far as the file may grow
            struct flock range {};
            range.l_type = F_WRLCK;
            range.l_whence = SEEK_SET;
            range.l_start = start;
            range.l_len = 1;
            locked = locked && fcntl(file, F_GETLK, &range) == 0 && range.l_type == F_WRLCK;
        }
        _exit(locked ? 1 : 0);
    }
    int status = 0;
    waitpid(other, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 1;
}

std::string CardFile(const std::string& card)
{
    const std::string base = "/mnt/mtd/Config/network";
    if (card == "eth0") return base;
    if (card == "eth1") return base + "1";
    return base + card;
}

std::string Settings(const std::vector<std::string>& lines)
{
    std::string text;
    for (const std::string& line : lines) text += line + "\n";
    return text;
}

ScratchCopy::ScratchCopy() : before_(scratch)
{
    static int number = 0;
    folder_ = scratch + "." + std::to_string(++number);
    fs::copy(scratch, folder_, fs::copy_options::recursive | fs::copy_options::copy_symlinks);
}

ScratchCopy::~ScratchCopy()
{
    scratch = before_;
    fs::remove_all(folder_);
}

void ScratchCopy::Use() const
{
    scratch = folder_;
}

void World::SetUp()
{
    startFolder = fs::current_path();
    scratch = MakeScratch();
    ASSERT_NE(scratch, "");
    ResetCalls();
    ResetKernel();
    ResetRtnetlink();
    ResetTools();
    ResetWire();
    MakeFolder("/mnt/mtd/Config");
    CatchLog();
    FreeLowDescriptors();
}

void World::TearDown()
{
    ReleaseLog(HasFailure());
    fs::current_path(startFolder);
    fs::remove_all(scratch);
}

}  // namespace fake
