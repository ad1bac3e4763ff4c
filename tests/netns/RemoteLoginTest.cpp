// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Other.h"

#include "Device.h"

#include <cstdlib>
#include <filesystem>

#include <arpa/inet.h>
#include <csignal>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace device;

namespace {

namespace fs = std::filesystem;

constexpr uint16_t kPort = 2222;
constexpr char kPidFile[] = "/var/run/sshd.pid";

/// Where fetch-sshd.sh leaves the server for machines that have none installed.
std::string FetchedTree()
{
    const char* cache = getenv("XDG_CACHE_HOME");
    const char* home = getenv("HOME");
    return (cache != nullptr ? std::string(cache)
                             : std::string(home == nullptr ? "" : home) + "/.cache") +
           "/vorlix-sshd/root";
}

/// A folder of the machine in which this test alone sees changes.
void MakeOwn(const std::string& folder)
{
    const std::string real = "/mnt/real" + folder;
    Must("mkdir -p " + real + " && mount --bind " + folder + " " + real +
         " && mount -t tmpfs -o mode=755 tmpfs " + folder);
    Must("cp -rs " + real + "/. " + folder + "/ 2>/dev/null || true");
}

int Connect()
{
    const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in place{};
    place.sin_family = AF_INET;
    place.sin_port = htons(kPort);
    place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (connect(fd, reinterpret_cast<const sockaddr*>(&place), sizeof(place)) == 0) return fd;
    close(fd);
    return -1;
}

/// The first bytes that a server sends to whoever connects; empty when nobody listens.
std::string Greeting()
{
    const int fd = Connect();
    if (fd < 0) return "";
    char text[8] = "";
    const ssize_t size = recv(fd, text, sizeof(text), MSG_WAITALL);
    close(fd);
    return std::string(text, size > 0 ? static_cast<size_t>(size) : 0);
}

int Set(unsigned char enable)
{
    SSHInfo info{};
    info.enable = enable & 1U;
    return SetSSHStatus(&info);
}

/// The daemon goes its own way once the tool has started or stopped it.
void Await(bool running)
{
    while (fs::exists(kPidFile) != running || Greeting().empty() == running) {
    }
}

class RemoteLoginTest : public Device {
protected:
    void SetUp() override
    {
        Device::SetUp();
        NEEDS_TOOL("start-stop-daemon");
        prctl(PR_SET_CHILD_SUBREAPER, 1);  // the daemon leaves its parent and becomes our child
        const std::string tree = fs::exists("/usr/sbin/sshd") ? "" : FetchedTree();
        const std::string server = tree + "/usr/sbin/sshd";
        if (!fs::exists(server)) {
            GTEST_SKIP() << "not installed and not fetched: sshd (tests/netns/fetch-sshd.sh)";
        }
        std::string keygen = tree + "/usr/bin/ssh-keygen";
        if (!fs::exists(keygen)) keygen = "ssh-keygen";
        UseLibraries(tree);
        MakeOwn("/usr/sbin");
        Must("cp --remove-destination " + (tree.empty() ? "/mnt/real" + server : server) +
             " /usr/sbin/sshd");
        MakeOwn("/etc");
        Must("cp --remove-destination /mnt/real/etc/passwd /etc/passwd; mkdir -p /run/sshd");
        Must("grep -q ^sshd: /etc/passwd || "
             "echo 'sshd:x:65533:65534::/run/sshd:/usr/sbin/nologin' >>/etc/passwd");
        Must("rm -rf /etc/ssh && mkdir /etc/ssh && " + keygen +
             " -q -t ed25519 -N '' -f /etc/ssh/host_key");
        Put("/etc/ssh/sshd_config",
            Lines({"Port 2222", "ListenAddress 127.0.0.1", "HostKey /etc/ssh/host_key",
                   std::string("PidFile ") + kPidFile, "UsePAM no"}) +
                PartsOf(tree));
    }

    void TearDown() override
    {
        const int daemon = atoi(Get(kPidFile).c_str());
        if (daemon > 0) kill(daemon, SIGKILL);
        while (waitpid(-1, nullptr, 0) > 0) {
        }
        Device::TearDown();
    }

    /// Since OpenSSH 9.8 the server is made of several programs, and does not start without them.
    static std::string PartsOf(const std::string& tree)
    {
        const std::string folder = tree + "/usr/lib/openssh/";
        std::string lines;
        if (fs::exists(folder + "sshd-session")) {
            lines += "SshdSessionPath " + folder + "sshd-session\n";
        }
        if (fs::exists(folder + "sshd-auth")) lines += "SshdAuthPath " + folder + "sshd-auth\n";
        return lines;
    }

    /// What the fetched server needs and the machine lacks lies beside it.
    static void UseLibraries(const std::string& tree)
    {
        std::string path;
        for (const char* folder : {"/lib", "/usr/lib"}) {
            if (tree.empty() || !fs::exists(tree + folder)) continue;
            for (const auto& entry : fs::directory_iterator(tree + folder)) {
                if (entry.path().string().find("-linux-") != std::string::npos) {
                    path += entry.path().string() + ":";
                }
            }
        }
        if (!path.empty()) setenv("LD_LIBRARY_PATH", path.c_str(), 1);
    }
};

TEST_F(RemoteLoginTest, TheDaemonIsStartedAndStopped)
{
    EXPECT_EQ(Greeting(), "");
    EXPECT_EQ(Set(1), 0);
    Await(true);
    EXPECT_EQ(Greeting(), "SSH-2.0-");
    EXPECT_EQ(Set(0), 0);
    Await(false);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(RemoteLoginTest, AskingTwiceChangesNothing)
{
    EXPECT_EQ(Set(0), 0);
    EXPECT_EQ(Set(1), 0);
    Await(true);
    const std::string daemon = Get(kPidFile);
    EXPECT_EQ(Set(1), 0);
    EXPECT_EQ(Get(kPidFile), daemon);
    EXPECT_EQ(Greeting(), "SSH-2.0-");
    EXPECT_EQ(Set(0), 0);
    Await(false);
    EXPECT_EQ(Set(0), 0);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(RemoteLoginTest, ADaemonThatRefusesItsSettingsIsNotNoticed)
{
    Put("/etc/ssh/sshd_config", "Nonsense yes\n");
    EXPECT_EQ(Set(1), 0);
    EXPECT_FALSE(fs::exists(kPidFile));
    EXPECT_EQ(Log(), LogLines{});
}

}  // namespace
