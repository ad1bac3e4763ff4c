// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Device.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>

#include <fcntl.h>
#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

namespace device {

namespace {

namespace fs = std::filesystem;

bool Contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

int StatusOf(int waitStatus)
{
    constexpr int kSignalled = 128;  // the shell's own way of telling
    return WIFSIGNALED(waitStatus) ? kSignalled + WTERMSIG(waitStatus) : WEXITSTATUS(waitStatus);
}

/// Another machine: a network namespace with a name. Made when the first cable leads to it.
void NeedMachine(const std::string& name)
{
    if (!fs::exists("/run/netns/" + name)) Must("ip netns add " + name);
}

/// The one record that `ip -j <words>` prints about a card.
std::map<std::string, std::string> Link(const std::string& card)
{
    for (const auto& record : Ip("link show dev " + card)) {
        if (record.count("ifname") != 0) return record;
    }
    ADD_FAILURE() << "no card " << card;
    return {};
}

Texts AddressesOf(const std::string& words)
{
    Texts addresses;
    for (const auto& record : Ip(words)) {
        const auto local = record.find("local");
        if (local == record.end()) continue;
        addresses.push_back(local->second + "/" + record.at("prefixlen"));
    }
    return addresses;
}

std::string RouteText(const std::map<std::string, std::string>& row)
{
    std::string text = row.at("dst");
    if (row.count("gateway") != 0) text += " via " + row.at("gateway");
    text += " dev " + row.at("dev");
    return text;
}

Texts RoutesOf(const std::string& family)
{
    Texts routes;
    for (const auto& row : Ip(family + " route show table main")) {
        if (row.count("dst") != 0 && row.at("dst") != "fe80::/64") routes.push_back(RouteText(row));
    }
    std::sort(routes.begin(), routes.end());
    return routes;
}

}  // namespace

void Device::SetUp()
{
    ASSERT_NE(getenv("VORLIX_NETNS"), nullptr) << "not inside namespaces of its own";
    output::Catch();
}

void Device::TearDown()
{
    output::Release(HasFailure());
}

LogLines Log()
{
    return output::TakeApart(output::Caught()).log;
}

LogLines LogOf(const std::string& operation)
{
    return output::TakeApart(output::Caught()).Of(operation);
}

// ---- other processes

Result Try(const std::string& command)
{
    fflush(nullptr);
    FILE* pipe = popen(("{ " + command + "\n} 2>&1").c_str(), "re");
    if (pipe == nullptr) return {-1, "cannot start a shell"};

    Result result{0, ""};
    char buffer[4096];
    size_t count = 0;
    while ((count = fread(buffer, 1, sizeof(buffer), pipe)) > 0)
        result.output.append(buffer, count);
    result.status = StatusOf(pclose(pipe));
    return result;
}

std::string Must(const std::string& command)
{
    const Result result = Try(command);
    EXPECT_EQ(result.status, 0) << command << "\n" << result.output;
    return result.output;
}

Child::Child(const std::function<void()>& run)
{
    fflush(nullptr);
    id_ = fork();
    if (id_ != 0) return;

    run();
    fflush(nullptr);
    _exit(testing::Test::HasFailure() ? EXIT_FAILURE : EXIT_SUCCESS);
}

bool Child::Wait()
{
    if (reaped_) return passed_;

    int status = -1;
    while (waitpid(id_, &status, 0) < 0 && errno == EINTR) {
    }
    reaped_ = true;
    passed_ = StatusOf(status) == EXIT_SUCCESS;
    return passed_;
}

void Child::Kill()
{
    kill(id_, SIGKILL);
    Wait();
}

// ---- cards

void AddCard(const std::string& name)
{
    NeedMachine("peer");
    Must("ip link add " + name + " type veth peer name " + name + " netns peer");
    Must("ip -n peer link set " + name + " up");
}

void AddCards(int count)
{
    for (int i = 0; i < count; ++i) AddCard("eth" + std::to_string(i));
}

void AddCardWithGateway(const std::string& name, const std::string& address)
{
    const std::string machine = "gw-" + name;
    NeedMachine(machine);
    Must("ip link add " + name + " type veth peer name eth0 netns " + machine);
    Must("ip -n " + machine + " addr add " + address + " dev eth0");
    Must("ip -n " + machine + " link set eth0 up");
}

AtMachine::AtMachine(const std::string& name)
    : home_(open("/proc/thread-self/ns/net", O_RDONLY | O_CLOEXEC))
{
    const int there = open(("/run/netns/" + name).c_str(), O_RDONLY | O_CLOEXEC);
    EXPECT_EQ(setns(there, CLONE_NEWNET), 0) << name;
    close(there);
}

AtMachine::~AtMachine()
{
    EXPECT_EQ(setns(home_, CLONE_NEWNET), 0);
    close(home_);
}

bool TryLink(const std::string& words)
{
    const Result made = Try("ip link add " + words);
    const bool unknown =
        Contains(made.output, "Unknown device type") || Contains(made.output, "not supported");
    EXPECT_TRUE(made.status == 0 || unknown) << made.output;
    return made.status == 0;
}

// ---- the kernel's state

std::vector<std::map<std::string, std::string>> Ip(const std::string& words)
{
    static const std::regex kRecord("\\{[^{}]*\\}");
    static const std::regex kField("\"([a-z_]+)\":(\"([^\"]*)\"|\\[[^\\]]*\\]|[^,{}\\[\\]]+)");
    const std::string text = Must("ip -j " + words);
    std::vector<std::map<std::string, std::string>> records;
    for (std::sregex_iterator record(text.begin(), text.end(), kRecord), end; record != end;
         ++record) {
        const std::string body = record->str();
        auto& fields = records.emplace_back();
        for (std::sregex_iterator field(body.begin(), body.end(), kField); field != end; ++field) {
            fields[(*field)[1]] = (*field)[3].matched ? (*field)[3] : (*field)[2];
        }
    }
    return records;
}

Texts InKernelOrder(const Texts& names)
{
    std::istringstream listed(Must("sed -n 's/^ *\\([^ ]*\\): .*/\\1/p' /proc/net/dev"));
    Texts ordered;
    for (std::string name; std::getline(listed, name);) {
        if (std::find(names.begin(), names.end(), name) != names.end()) ordered.push_back(name);
    }
    EXPECT_EQ(ordered.size(), names.size());
    return ordered;
}

Texts Addresses(const std::string& card)
{
    return AddressesOf("-4 addr show dev " + card);
}

Texts Addresses6(const std::string& card)
{
    return AddressesOf("-6 addr show scope global dev " + card);
}

std::string AwaitLinkLocal(const std::string& card)
{
    for (;;) {
        for (const auto& record : Ip("-6 addr show scope link dev " + card)) {
            if (record.count("local") != 0) {
                return record.at("local") + "/" + record.at("prefixlen");
            }
        }
    }
}

bool IsUp(const std::string& card)
{
    return Contains(Link(card)["flags"], "\"UP\"");
}

std::string Mac(const std::string& card)
{
    return Link(card)["address"];
}

int Mtu(const std::string& card)
{
    return atoi(Link(card)["mtu"].c_str());
}

std::string Flags(const std::string& card)
{
    return Link(card)["flags"];
}

Texts Routes()
{
    return RoutesOf("-4");
}

Texts Routes6()
{
    return RoutesOf("-6");
}

// ---- files

std::string CardFile(const std::string& card)
{
    std::string base = std::string(kConfig) + "/network";
    if (card == "eth0") return base;
    if (card == "eth1") return base + "1";
    return base + card;
}

void Put(const std::string& path, const std::string& text)
{
    std::ofstream file(path, std::ios::binary);
    file << text;
    file.close();
    EXPECT_TRUE(file.good()) << path;
}

std::string Get(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file) return "(no file)";
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

std::string Lines(const Texts& lines)
{
    std::string text;
    for (const std::string& line : lines) text += line + "\n";
    return text;
}

std::map<std::string, std::string> SavedFiles()
{
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::directory_iterator(kConfig)) {
        files[entry.path().filename()] = Get(entry.path());
    }
    return files;
}

void SettingsOfSize(int bytes)
{
    Must("mount -t tmpfs -o size=" + std::to_string(bytes) + " tmpfs " + kConfig);
}

void SettingsReadOnly()
{
    const std::string folder = kConfig;
    Must("mount --bind " + folder + " " + folder + " && mount -o remount,bind,ro " + folder);
}

}  // namespace device
