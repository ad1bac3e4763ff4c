// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Scene.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <sstream>

#include <sys/stat.h>

namespace fault {

namespace {

namespace fs = std::filesystem;

const std::string kFolder = std::string(device::kConfig) + "/";
constexpr char kSame[] = "the same file as ";

std::vector<std::string> LinesOf(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

Texts WordsOf(const std::string& line)
{
    Texts words;
    std::istringstream stream(line);
    for (std::string word; stream >> word;) words.push_back(word);
    return words;
}

std::string Sorted(const std::string& text)
{
    std::vector<std::string> lines = LinesOf(text);
    std::sort(lines.begin(), lines.end());
    return device::Lines(lines);
}

std::string Behind(const Texts& words, const std::string& word)
{
    const auto found = std::find(words.begin(), words.end(), word);
    return found == words.end() || found + 1 == words.end() ? "" : *(found + 1);
}

/// "eth3 up mtu 1500 in br0", from "5: eth3@if4: <BROADCAST,UP> mtu 1500 ... master br0".
std::string LinkText(const Texts& words)
{
    const std::string name = words[1].substr(0, words[1].find_first_of("@:"));
    const bool up = ("," + words[2].substr(1)).find(",UP") != std::string::npos;
    const std::string master = Behind(words, "master");
    return name + (up ? " up" : " down") + " mtu " + Behind(words, "mtu") +
           (master.empty() ? "" : " in " + master);
}

/// Cards, addresses and routes, in one run of iproute2, since it is asked thousands of times.
Texts Network()
{
    Texts network;
    const std::string told = device::Must("ip -o -batch - <<end\nlink show\naddr show\n"
                                          "route show\nend");
    for (const std::string& line : LinesOf(told)) {
        const Texts words = WordsOf(line);
        if (words.size() < 3 || words[1] == "lo" || words[1] == "lo:") continue;

        if (words[1].back() == ':') {
            network.push_back(LinkText(words));
        } else if (words[2] == "inet" || words[2] == "inet6") {
            if (Behind(words, "scope") != "link") network.push_back(words[1] + " " + words[3]);
        } else {
            const std::string gateway = Behind(words, "via");
            network.push_back("route " + words[0] + (gateway.empty() ? "" : " via " + gateway) +
                              " dev " + Behind(words, "dev"));
        }
    }
    std::sort(network.begin(), network.end());
    return network;
}

Texts TextsOf(const State& state)
{
    Texts texts = state.network;
    for (const auto& [name, text] : state.files) {
        texts.push_back("file " + name);
        for (const std::string& line : LinesOf(text)) texts.push_back(name + ": " + line);
    }
    std::sort(texts.begin(), texts.end());
    return texts;
}

/// What stands in one state alone.
Texts Without(const State& state, const State& other)
{
    const Texts left = TextsOf(state);
    const Texts right = TextsOf(other);
    Texts rest;
    std::set_difference(left.begin(), left.end(), right.begin(), right.end(),
                        std::back_inserter(rest));
    return rest;
}

/// Settings of a card that stands in the net 10.0.<net>.0.
std::string Card(int net, const Texts& more)
{
    const std::string prefix = "10.0." + std::to_string(net);
    return device::Lines({"HOSTIP = " + prefix + ".10", "SUBMASK = 255.255.255.0",
                          "GATEWAYIP = " + prefix + ".1"}) +
           device::Lines(more);
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const State& state)
{
    for (const std::string& text : TextsOf(state)) out << text << "\n";
    return out;
}

Files Saved()
{
    Files files = device::SavedFiles();
    std::map<ino_t, std::string> first;
    for (auto& [name, text] : files) {
        struct stat status {};
        if (stat((kFolder + name).c_str(), &status) != 0 || status.st_nlink < 2) continue;
        const auto [known, isNew] = first.emplace(status.st_ino, name);
        if (!isNew) text = kSame + known->second + "\n";
    }
    return files;
}

State Look()
{
    State state{Saved(), Network()};
    for (auto& [name, text] : state.files) text = Sorted(text);
    return state;
}

std::vector<std::string> EmptyOnes(const Files& files)
{
    std::vector<std::string> names;
    for (const auto& [name, text] : files) {
        if (text.empty()) names.push_back(name);
    }
    return names;
}

void ExpectWholeLines()
{
    for (const auto& [name, text] : device::SavedFiles()) {
        EXPECT_TRUE(text.empty() || text.back() == '\n') << name << ":\n" << text;
        for (const std::string& line : LinesOf(text)) {
            const bool isServer = line.rfind("nameserver ", 0) == 0;
            EXPECT_TRUE(isServer || line.find(" = ") != std::string::npos) << name << ": " << line;
        }
    }
}

void ColdStart(const Files& files)
{
    std::string words;
    for (const auto& entry : fs::directory_iterator("/sys/class/net")) {
        const std::string name = entry.path().filename();
        if (name == "br0") words += "link del br0\n";
        if (name.rfind("eth", 0) != 0) continue;
        words += "link set " + name + " nomaster down mtu 1500\naddr flush dev " + name + "\n";
    }
    (void)device::Must("ip -batch - <<end\n" + words + "end");
    Save(files);
}

void Save(const Files& files)
{
    for (const auto& entry : fs::directory_iterator(device::kConfig)) fs::remove(entry.path());
    for (const auto& [name, text] : files) {
        if (text.rfind(kSame, 0) == 0) {
            const std::string first = text.substr(sizeof(kSame) - 1, text.size() - sizeof(kSame));
            fs::create_hard_link(kFolder + first, kFolder + name);
        } else {
            device::Put(kFolder + name, text);
        }
    }
}

Files WithEmpty(Files files, const std::string& name)
{
    std::string& text = files[name];
    if (text.rfind(kSame, 0) == 0)
        return WithEmpty(files, text.substr(sizeof(kSame) - 1, text.size() - sizeof(kSame)));
    text.clear();
    return files;
}

void Boot()
{
    const device::Outcome boot = device::Lanrise();
    EXPECT_EQ(boot.status, 0);
    EXPECT_TRUE(boot.Finished());
}

void Outcomes::Allow(const std::string& name, const Files& files)
{
    starts_[name] = files;
    ColdStart(files);
    AllowNextBoot(name);
}

void Outcomes::AllowLossOf(const std::string& file)
{
    if (!lost_.insert(file).second) return;

    for (const auto& [name, files] : starts_) {
        ColdStart(WithEmpty(files, file));
        AllowNextBoot(name + ", without " + file);
        for (const bool halfBridge : {false, true}) {
            ColdStart(files);
            Boot();
            if (halfBridge) (void)device::Try("ip addr flush dev br0");
            Save(WithEmpty(Saved(), file));
            AllowNextBoot(name + ", without " + file +
                          (halfBridge ? " beside half a bridge" : " on a running device"));
        }
    }
}

void Outcomes::AllowNextBoot(const std::string& name)
{
    Boot();
    const State first = Look();
    Boot();
    EXPECT_EQ(Look(), first) << "a second boot changes what the first one reached: " << name;
    states_.emplace_back(name, first);
}

std::string Outcomes::NameOf(const State& state) const
{
    for (const auto& [name, reached] : states_) {
        if (reached == state) return name;
    }
    return "";
}

bool Outcomes::DiffersOnlyIn(const State& state, const Texts& words) const
{
    const auto isNamed = [&words](const std::string& text) {
        return std::any_of(words.begin(), words.end(), [&text](const std::string& word) {
            return text.find(word) != std::string::npos;
        });
    };
    return std::any_of(states_.begin(), states_.end(), [&](const auto& allowed) {
        const Texts missing = Without(allowed.second, state);
        const Texts added = Without(state, allowed.second);
        return std::all_of(missing.begin(), missing.end(), isNamed) &&
               std::all_of(added.begin(), added.end(), isNamed);
    });
}

std::string Outcomes::Nearest(const State& state) const
{
    std::string nearest;
    size_t least = ~size_t{0};
    for (const auto& [name, reached] : states_) {
        const Texts missing = Without(reached, state);
        const Texts added = Without(state, reached);
        if (missing.size() + added.size() >= least) continue;
        least = missing.size() + added.size();
        nearest = "nearest is \"" + name + "\"\n";
        for (const std::string& text : missing) nearest += "  - " + text + "\n";
        for (const std::string& text : added) nearest += "  + " + text + "\n";
    }
    return nearest;
}

NextBoot::Result NextBoot::Of(const Files& leftFiles, const State& left)
{
    auto warm = warm_.find(left);
    if (warm == warm_.end()) {
        Boot();
        warm = warm_.emplace(left, Look()).first;
    }
    auto cold = cold_.find(leftFiles);
    if (cold == cold_.end()) {
        ColdStart(leftFiles);
        Boot();
        cold = cold_.emplace(leftFiles, Look()).first;
    }
    return {warm->second, cold->second};
}

void FaultTest::SetUp()
{
    Device::SetUp();
    NEEDS_TOOL("brctl");
    NEEDS_TOOL("ifconfig");
    NEEDS_LINK("br0 type bridge");
    device::Must("ip link del br0");
    device::AddCards(6);
}

Files BeforeAnUpdate()
{
    const Texts bridged = {"BRIDGEEDED = 1", "BRIDGENAME = br0"};
    return {{"network", Card(0, {"MTU = 1500", "DEFAULT_ETH = eth1"})},
            {"network1", Card(1, {"PRIO = 0"})},
            {"network2", Card(2, {"MTU = 1400"})},
            {"networkip62", device::Lines({"HOSTIP = 2001:db8::2", "SUBMASK = 64"})},
            {"networketh3", Card(3, bridged)},
            {"networketh4", Card(4, bridged)},
            {"networkbr0", Card(9, {"BRIDGEMEMBERS = eth3,eth7"})}};
}

Files Booted(const Files& files, const Texts& words)
{
    ColdStart(files);
    Boot();
    if (!words.empty()) {
        std::string line;
        for (const std::string& word : words) line += word + " ";
        EXPECT_EQ(device::Lanrise(line).status, 0);
    }
    return Saved();
}

std::vector<std::string> Command(const Texts& words)
{
    std::vector<std::string> command = {VORLIX_LANRISE};
    command.insert(command.end(), words.begin(), words.end());
    return command;
}

void Tell(const std::string& text)
{
    fprintf(stderr, "    %s\n", text.c_str());
}

int Stride(int usual)
{
    const char* asked = getenv("VORLIX_FAULT_STRIDE");
    return asked == nullptr ? usual : std::max(1, atoi(asked));
}

}  // namespace fault
