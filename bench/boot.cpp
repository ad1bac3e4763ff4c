// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// How long a boot takes beside what else could bring the same cards up.
//
// In one set of namespaces and in the same rounds, one behind the other: lanrise with its settings
// in memory, a shell script around `ip -batch`, one around net-tools, and a program of bare
// requests; with a folder of bench/peers.sh also the network managers that a user would take in
// its place. Between two runs all cards are taken down and lose their addresses, outside of the
// measured time; after each run the end state is looked at, so that nobody is fast by doing less.
// A manager that stays is measured until that state is there, and ended then.
//
// The floor, bench/floor, makes the kernel calls that the boot's stated work is made of, and starts
// its shells, from a list taken down here of a boot of the same cards.
//
// usage: tests/netns/enter.sh build/release/bench/boot LANRISE [ROUNDS [PEERS [TABLE]]]
//        tests/netns/enter.sh build/release/bench/boot LANRISE [ROUNDS] growth
//
// TABLE is a file for the medians of cards, one line a contender, for bench/plot. The second form
// tells how calls and processor time grow with the cards.

#include "record.h"

#include <algorithm>
#include <chrono>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include <arpa/inet.h>
#include <fcntl.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

struct Taken {
    double wall;  // milliseconds
    double cpu;   // of the program and of all that it started and waited for
};

struct Contender {
    std::string name;
    std::vector<std::string> command;
    std::vector<Taken> rounds;
    bool stays = false;  // goes on running when its work is done; its processor time is not told
};

/// What is brought up, by whom, and how it is told whether it came up.
struct Device {
    std::string title;
    std::function<void()> takeDown;
    std::function<void(const std::string& who)> check;
    std::function<bool()> isUp;         // asked of contenders that stay
    std::vector<Contender> contenders;  // lanrise is the first
};

int control = -1;
FILE* medians = nullptr;

[[noreturn]] void Give(const std::string& reason)
{
    fprintf(stderr, "bench/boot: %s\n", reason.c_str());
    exit(1);
}

/// A program of this folder.
std::string Beside(const std::string& program)
{
    char path[PATH_MAX] = {};
    if (readlink("/proc/self/exe", path, sizeof(path) - 1) < 0) Give("where am I?");
    const std::string self = path;
    return self.substr(0, self.rfind('/') + 1) + program;
}

std::string CardName(int card)
{
    return "eth" + std::to_string(card);
}

std::string Net(int card, const char* host)
{
    return "10." + std::to_string(card) + ".0." + host;
}

void Write(const std::string& path, const std::string& text)
{
    std::ofstream(path) << text;
}

// ---- the device

void MakeCards(int from, int count)
{
    // The far ends are another machine's: they lie in a namespace of their own.
    if (from == 0 && system("ip netns add peer") != 0) Give("no peer");
    std::string cards;
    std::string peers;
    for (int card = from; card < count; ++card) {
        const std::string peer = "p" + std::to_string(card);
        cards += "link add " + CardName(card) + " type veth peer name " + peer + " netns peer\n";
        peers += "link set " + peer + " up\n";
    }
    Write("/mnt/cards", cards);
    Write("/mnt/peers", peers);
    if (system("ip -batch /mnt/cards && ip -n peer -batch /mnt/peers") != 0) Give("no cards");
}

void WriteSettings(int count)
{
    if (system("rm -rf /mnt/mtd/Config && mkdir -p /mnt/mtd/Config") != 0) Give("no settings");
    for (int card = 0; card < count; ++card) {
        const std::string suffix = card == 0 ? "" : card == 1 ? "1" : CardName(card);
        Write("/mnt/mtd/Config/network" + suffix,
              "HOSTIP = " + Net(card, "2") + "\nSUBMASK = 255.255.255.0\nGATEWAYIP = " +
                  Net(card, "1") + "\nMTU = 1500\nBONDED = 0\nBRIDGEEDED = 0\nWORKMODE = 0\n" +
                  (card == 0 ? "DEFAULT_ETH = eth0\n" : ""));
    }
    const std::string resolver6 =
        "nameserver 2001:4860:4860::8888\nnameserver 2001:4860:4860::8844\n";
    Write("/mnt/mtd/Config/resolv.conf", "nameserver 8.8.8.8\nnameserver 8.8.4.4\n" + resolver6);
    Write("/mnt/mtd/Config/resolvip6.conf", resolver6);
}

ifreq RequestFor(int card)
{
    ifreq request{};
    snprintf(request.ifr_name, sizeof(request.ifr_name), "%s", CardName(card).c_str());
    return request;
}

void TakeDown(int count)
{
    for (int card = 0; card < count; ++card) {
        ifreq request = RequestFor(card);
        request.ifr_addr.sa_family = AF_INET;
        (void)ioctl(control, SIOCSIFADDR, &request);
        request = RequestFor(card);
        (void)ioctl(control, SIOCGIFFLAGS, &request);
        request.ifr_flags = static_cast<short>(request.ifr_flags & ~IFF_UP);
        (void)ioctl(control, SIOCSIFFLAGS, &request);
    }
}

bool IsCardUp(int card)
{
    ifreq request = RequestFor(card);
    return ioctl(control, SIOCGIFFLAGS, &request) == 0 && (request.ifr_flags & IFF_UP) != 0;
}

bool HasAddress(int card)
{
    ifreq request = RequestFor(card);
    sockaddr_in address{};
    if (ioctl(control, SIOCGIFADDR, &request) == 0) {
        memcpy(&address, &request.ifr_addr, sizeof(address));
    }
    return Net(card, "2") == inet_ntoa(address.sin_addr);
}

struct Routes {
    int rows;
    int defaults;
};

Routes ReadRoutes()
{
    std::ifstream table("/proc/net/route");
    std::string line;
    Routes routes = {-1, 0};  // the header is none
    while (std::getline(table, line)) {
        ++routes.rows;
        if (line.find("\t00000000\t0100000A\t") != std::string::npos) ++routes.defaults;
    }
    return routes;
}

/// Every card up and addressed, its net routed once, one default route.
void CheckEndState(const std::string& who, int count)
{
    for (int card = 0; card < count; ++card) {
        if (!IsCardUp(card)) Give(who + " left " + CardName(card) + " down");
        if (!HasAddress(card)) Give(who + " left " + CardName(card) + " without its address");
    }
    const Routes routes = ReadRoutes();
    // connman adds a route to the gateway itself.
    const int extra = who == "connman" ? 1 : 0;
    if (routes.rows != count + 1 + extra || routes.defaults != 1) {
        Give(who + " left the routes wrong");
    }
}

/// The last things to come, first: the default route, and each card's address.
bool CardsAreUp(int count)
{
    for (int card = count - 1; card >= 0; --card) {
        if (!HasAddress(card)) return false;
    }
    const Routes routes = ReadRoutes();
    return routes.rows > count && routes.defaults == 1;
}

// ---- running

std::vector<char*> Arguments(const std::vector<std::string>& command)
{
    std::vector<char*> arguments;
    for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    return arguments;
}

[[noreturn]] void Become(const std::vector<char*>& arguments)
{
    const int nowhere = open("/dev/null", O_RDWR);
    dup2(nowhere, STDOUT_FILENO);
    dup2(nowhere, STDERR_FILENO);
    execvp(arguments[0], arguments.data());
    _exit(127);
}

using Clock = std::chrono::steady_clock;

double Since(Clock::time_point begin)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
}

double Milliseconds(const timeval& time)
{
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
}

Taken Run(const std::vector<std::string>& command)
{
    const std::vector<char*> arguments = Arguments(command);
    const auto begin = Clock::now();
    const pid_t child = vfork();
    if (child == 0) Become(arguments);
    int status = 0;
    rusage used{};
    wait4(child, &status, 0, &used);
    const double wall = Since(begin);
    if (status != 0) Give(command[0] + " failed");
    return {wall, Milliseconds(used.ru_utime) + Milliseconds(used.ru_stime)};
}

/// Runs what does not end by itself until the device is up, asked every half millisecond. The end
/// state is looked at before it is ended: some take it with them.
double RunUntilUp(const Contender& contender, const Device& device)
{
    constexpr double kLongest = 20000;
    const std::vector<char*> arguments = Arguments(contender.command);
    const auto begin = Clock::now();
    const pid_t child = vfork();
    if (child == 0) Become(arguments);
    while (!device.isUp() && Since(begin) < kLongest) usleep(500);
    const double taken = Since(begin);
    if (taken < kLongest) device.check(contender.name);
    kill(child, SIGTERM);
    waitpid(child, nullptr, 0);
    if (taken >= kLongest) Give(contender.name + " did not come up");
    return taken;
}

double Median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    const size_t middle = values.size() / 2;
    return values.size() % 2 != 0 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

/// The median of what `of` makes of each round.
double MedianOf(const Contender& contender, const std::function<double(size_t round)>& of)
{
    std::vector<double> values;
    for (size_t round = 0; round < contender.rounds.size(); ++round) values.push_back(of(round));
    return Median(values);
}

// ---- the contenders

std::string IpScript(int count)
{
    std::string batch;
    for (int card = 0; card < count; ++card) {
        batch += "link set " + CardName(card) + " mtu 1500 up\n";
        batch += "addr add " + Net(card, "2") + "/24 broadcast + dev " + CardName(card) + "\n";
    }
    batch += "route add default via 10.0.0.1 dev eth0\n";
    return "#!/bin/sh\nip -batch - <<END\n" + batch + "END\n";
}

std::string NetToolsScript(int count)
{
    std::string script = "#!/bin/sh\n";
    for (int card = 0; card < count; ++card) {
        script += "ifconfig " + CardName(card) + " " + Net(card, "2") +
                  " netmask 255.255.255.0 mtu 1500 up\n";
    }
    return script + "route add default gw 10.0.0.1 eth0\n";
}

void PrintRow(const Contender& ours, const Contender& contender, int calls)
{
    const auto& mine = ours.rounds;
    const auto& theirs = contender.rounds;
    const double wall = MedianOf(contender, [&](size_t i) { return theirs[i].wall; });
    printf("  %-16s %9.2f %9.2f", contender.name.c_str(), wall,
           MedianOf(contender, [&](size_t i) { return mine[i].wall / theirs[i].wall; }));
    if (contender.stays) {
        printf("\n");
        return;
    }
    printf(" %9.2f %9.3f", MedianOf(contender, [&](size_t i) { return theirs[i].cpu; }),
           MedianOf(contender, [&](size_t i) { return mine[i].cpu / theirs[i].cpu; }));
    if (calls > 0) printf(" %8d", calls);
    printf("\n");
}

/// One round of all. Who ran before decides what lies in the caches, so the order is another one
/// each time.
std::vector<Contender*> Shuffled(std::vector<Contender>& contenders)
{
    static std::mt19937 order;
    std::vector<Contender*> shuffled;
    for (Contender& contender : contenders) shuffled.push_back(&contender);
    std::shuffle(shuffled.begin(), shuffled.end(), order);
    return shuffled;
}

void Measure(Device device, int rounds)
{
    for (int round = -1; round < rounds; ++round) {  // the first is thrown away
        for (Contender* next : Shuffled(device.contenders)) {
            Contender& contender = *next;
            device.takeDown();
            const Taken taken =
                contender.stays ? Taken{RunUntilUp(contender, device), 0} : Run(contender.command);
            if (!contender.stays) device.check(contender.name);
            if (round >= 0) contender.rounds.push_back(taken);
        }
    }

    // Ratios are medians of what each round gives: its contenders run within one breath.
    printf("%s, %d rounds\n", device.title.c_str(), rounds);
    printf("  %-16s %9s %9s %9s %9s %8s\n", "", "wall ms", "lanrise/", "cpu ms", "lanrise/",
           "calls");
    record::Run ours;
    for (const Contender& contender : device.contenders) {
        int calls = 0;
        if (!contender.stays) {
            device.takeDown();
            const record::Run run = record::Take(contender.command);
            calls = run.children == 0 ? run.calls : 0;
            if (&contender == &device.contenders[0]) ours = run;
        }
        PrintRow(device.contenders[0], contender, calls);
        if (medians != nullptr) {
            const double wall =
                MedianOf(contender, [&](size_t i) { return contender.rounds[i].wall; });
            fprintf(medians, "%s\t%s\t%.2f\n", device.title.c_str(), contender.name.c_str(), wall);
        }
    }
    printf("  lanrise: peak memory %ld kB, %d child processes\n\n", ours.peakKb, ours.children);
}

// ---- the managers that a user would take

/// Lines of an interfaces file; `method` stands behind each card's name.
std::string InterfacesFile(int count, const std::string& method, const std::string& address)
{
    std::string text;
    for (int card = 0; card < count; ++card) {
        text += "auto " + CardName(card) + "\niface " + CardName(card) + method + "\n  address " +
                Net(card, "2") + address + "\n";
        if (card == 0) text += "  gateway 10.0.0.1\n";
    }
    return text;
}

void WriteNetworkdFiles(int count)
{
    (void)!system("rm -rf /run/systemd; mkdir -p /run/systemd/network /run/systemd/netif");
    for (int card = 0; card < count; ++card) {
        Write("/run/systemd/network/10-" + CardName(card) + ".network",
              "[Match]\nName=" + CardName(card) +
                  "\n[Network]\nLinkLocalAddressing=no\nIPv6AcceptRA=no\nAddress=" +
                  Net(card, "2") + "/24\n" + (card == 0 ? "Gateway=10.0.0.1\n" : ""));
    }
}

bool Has(const std::string& path)
{
    return access(path.c_str(), X_OK) == 0;
}

/// Those whose programs lie under `peers`, as bench/peers.sh fetches them.
std::vector<Contender> Managers(int count, const std::string& peers)
{
    std::vector<Contender> managers;
    if (peers.empty()) return managers;

    const std::string libraries = "LD_LIBRARY_PATH=" + peers +
                                  "/usr/lib/x86_64-linux-gnu/systemd:" + peers +
                                  "/usr/lib/x86_64-linux-gnu";
    Write("/mnt/interfaces-debian", InterfacesFile(count, " inet static", "/24"));
    Write("/mnt/interfaces-busybox",
          InterfacesFile(count, " inet static", "\n  netmask 255.255.255.0"));
    Write("/mnt/interfaces-ng", InterfacesFile(count, "", "/24"));
    WriteNetworkdFiles(count);
    if (Has(peers + "/ifupdown/sbin/ifup")) {
        managers.push_back({"ifupdown",
                            {peers + "/ifupdown/sbin/ifup", "-a", "-i", "/mnt/interfaces-debian"},
                            {}});
    }
    if (Has(peers + "/ifupdown-ng/sbin/ifup")) {
        const std::string root = peers + "/ifupdown-ng";
        managers.push_back({"ifupdown-ng",
                            {root + "/sbin/ifup", "-a", "-i", "/mnt/interfaces-ng", "-E",
                             root + "/usr/libexec/ifupdown-ng", "-S", "/run/ng-state"},
                            {}});
    }
    if (Has(peers + "/bin/busybox")) {
        managers.push_back({"busybox ifup",
                            {peers + "/bin/busybox", "ifup", "-a", "-i", "/mnt/interfaces-busybox"},
                            {}});
    }
    if (Has(peers + "/lib/systemd/systemd-networkd")) {
        managers.push_back({"systemd-networkd",
                            {"env", libraries, peers + "/lib/systemd/systemd-networkd"},
                            {},
                            true});
    }
    // It connects one card by itself and no more.
    if (count == 1 && Has(peers + "/usr/sbin/connmand")) {
        managers.push_back(
            {"connman", {peers + "/usr/sbin/connmand", "-n", "--config=/dev/null"}, {}, true});
    }
    return managers;
}

/// What the managers keep of a run before; a boot has none of it.
void ForgetManagers()
{
    (void)!system("rm -rf /run/network /run/ifstate /run/ng-state /run/systemd/netif; "
                  "mkdir -p /run/network /run/systemd/netif");
}

/// The folders of scripts that ifupdown's package makes, beside those that are here.
void PrepareIfup()
{
    if (system("mkdir -p /mnt/network && cp -r /etc/network/. /mnt/network && "
               "cd /mnt/network && mkdir -p if-pre-up.d if-up.d if-down.d if-post-down.d && "
               "mount --bind /mnt/network /etc/network") != 0) {
        Give("no place for ifup's scripts");
    }
}

/// What connman needs beside itself: a message bus, and its settings.
void PrepareConnman(const std::string& peers)
{
    Write("/mnt/bus.conf",
          "<busconfig><type>system</type><listen>unix:path=/run/dbus/system_bus_socket</listen>"
          "<auth>EXTERNAL</auth><policy context=\"default\"><allow user=\"*\"/><allow own=\"*\"/>"
          "<allow send_destination=\"*\"/><allow receive_sender=\"*\"/></policy></busconfig>");
    // It rewrites the resolver file: not that of the machine.
    if (system("touch /mnt/resolv.conf && mount --bind /mnt/resolv.conf /etc/resolv.conf && "
               "mount -t tmpfs tmpfs /var/lib && mkdir -p /var/lib/connman /run/dbus") != 0) {
        Give("no place for connman's files");
    }
    Write("/var/lib/connman/cards.config", "[service_eth0]\nType = ethernet\nDeviceName = eth0\n"
                                           "IPv4 = 10.0.0.2/255.255.255.0/10.0.0.1\nIPv6 = off\n");
    const std::string bus = peers + "/usr/bin/dbus-daemon --config-file=/mnt/bus.conf --fork "
                                    "--print-pid=1 >/mnt/bus.pid 2>/dev/null";
    if (system(bus.c_str()) != 0) Give("no message bus");
}

/// Takes down what a boot of the device is made of.
record::Run WriteFloor(const std::function<void()>& takeDown, const std::string& lanrise)
{
    takeDown();
    const record::Run run = record::Take({lanrise});
    Write("/mnt/calls", run.replay);
    Write("/mnt/shells", run.shells);
    return run;
}

Contender Floor()
{
    return {"floor", {Beside("floor"), "/mnt/calls"}, {}};
}

void MeasureCards(int count, int rounds, const std::string& lanrise, const std::string& peers)
{
    WriteSettings(count);
    (void)Run({lanrise});  // settled: no boot after this one writes what the one before did not
    const record::Run run = WriteFloor([=] { TakeDown(count); }, lanrise);
    printf("the floor makes %d calls of lanrise's %d\n", run.kept, run.calls);
    Write("/mnt/ip.sh", IpScript(count));
    Write("/mnt/net-tools.sh", NetToolsScript(count));
    Device device = {std::to_string(count) + (count == 1 ? " card" : " cards"),
                     [=] {
                         TakeDown(count);
                         ForgetManagers();
                     },
                     [=](const std::string& who) { CheckEndState(who, count); },
                     [=] { return CardsAreUp(count); },
                     {{"lanrise", {lanrise}, {}},
                      {"ip -batch", {"sh", "/mnt/ip.sh"}, {}},
                      {"net-tools", {"sh", "/mnt/net-tools.sh"}, {}},
                      {"bare requests", {Beside("bare"), std::to_string(count)}, {}},
                      Floor()}};
    for (const Contender& manager : Managers(count, peers)) device.contenders.push_back(manager);
    // Without udev networkd waits for no card when it may not write to /sys.
    if (!peers.empty()) (void)!system("mount -o remount,ro,bind /sys");
    Measure(device, rounds);
    if (!peers.empty()) (void)!system("mount -o remount,rw,bind /sys");
}

// ---- a bridge of two cards

void WriteBridgeSettings()
{
    WriteSettings(2);
    const std::string claim =
        "MTU = 1500\nBONDED = 0\nBRIDGEEDED = 1\nBRIDGENAME = br0\nWORKMODE = 3\n";
    const std::string rest = "SUBMASK = 255.255.255.0\nGATEWAYIP = 10.0.0.1\nMTU = 1500\n";
    Write("/mnt/mtd/Config/network",
          "HOSTIP = 10.8.0.2\nSUBMASK = 255.255.255.0\nGATEWAYIP = 10.8.0.1\nDEFAULT_ETH = br0\n" +
              claim);
    Write("/mnt/mtd/Config/network1",
          "HOSTIP = 10.9.0.2\nSUBMASK = 255.255.255.0\nGATEWAYIP = 10.9.0.1\n" + claim);
    Write("/mnt/mtd/Config/networkbr0", "BRIDGEMEMBERS = eth0,eth1\nHOSTIP = 10.0.0.2\n" + rest);
}

constexpr char kBridgeScript[] = "#!/bin/sh\n"
                                 "ip link add br0 type bridge\n"
                                 "ip link set eth0 master br0\n"
                                 "ip link set eth1 master br0\n"
                                 "ip link set eth0 up\n"
                                 "ip link set eth1 up\n"
                                 "ip link set br0 up\n"
                                 "ip addr add 10.0.0.2/24 dev br0\n"
                                 "ip route add default via 10.0.0.1 dev br0\n";

constexpr char kInterfaces[] = "auto br0\n"
                               "iface br0 inet static\n"
                               "  bridge_ports eth0 eth1\n"
                               "  bridge_fd 0\n"
                               "  bridge_maxwait 0\n"
                               "  address 10.0.0.2/24\n"
                               "  gateway 10.0.0.1\n";

void TakeBridgeDown()
{
    // ifup keeps a note of what is up; a boot has none.
    (void)!system("ip link del br0 2>/dev/null; rm -rf /run/network; mkdir -p /run/network");
    TakeDown(2);
}

constexpr char kShellsAlone[] = "its shells alone";

void CheckBridge(const std::string& who)
{
    if (who == kShellsAlone) return;  // address and routes are lanrise's own work
    if (system("test -e /sys/class/net/br0/brif/eth0 -a -e /sys/class/net/br0/brif/eth1") != 0) {
        Give(who + " left the bridge without its cards");
    }
    if (system("ip -4 addr show dev br0 up | grep -q 'inet 10.0.0.2/24' && "
               "ip -4 route show default | grep -q 'via 10.0.0.1 dev br0'") != 0) {
        Give(who + " left the bridge without address or route");
    }
}

void MeasureBridge(int rounds, const std::string& lanrise)
{
    WriteBridgeSettings();
    (void)Run({lanrise});
    const record::Run run = WriteFloor(TakeBridgeDown, lanrise);
    printf("the floor makes %d calls of lanrise's %d, and its shells\n", run.kept, run.calls);
    Write("/mnt/bridge.sh", kBridgeScript);
    Write("/mnt/interfaces", kInterfaces);
    std::vector<Contender> contenders = {{"lanrise", {lanrise}, {}},
                                         {"script with ip", {"sh", "/mnt/bridge.sh"}, {}},
                                         Floor(),
                                         {kShellsAlone, {Beside("floor"), "/mnt/shells"}, {}}};
    if (system("command -v ifup >/dev/null") == 0) {
        contenders.push_back({"ifup -a", {"ifup", "-a", "-i", "/mnt/interfaces"}, {}});
    } else {
        printf("ifup is not here: Debian's ifupdown has it\n");
    }
    Measure({"a bridge of two cards", TakeBridgeDown, CheckBridge, nullptr, contenders}, rounds);
    TakeBridgeDown();
}

// ---- growth

/// What a boot of `cards` costs.
struct Cost {
    int cards;
    int calls;
    double cpu;  // milliseconds
    double overFloor;
};

/// Least squares of a + b n + c n^2, each point weighed by its size: what counts is how far a point
/// is off for its own size.
struct Fit {
    double a, b, c;
};

double Determinant(const double (&m)[3][3])
{
    return m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) -
           m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) +
           m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
}

Fit FitOf(const std::vector<Cost>& costs, const std::function<double(const Cost&)>& of)
{
    double sums[3][3] = {};
    double right[3] = {};
    for (const Cost& cost : costs) {
        const double n = cost.cards;
        const double powers[] = {1, n, n * n};
        const double weight = 1 / (of(cost) * of(cost));
        for (int row = 0; row < 3; ++row) {
            right[row] += weight * powers[row] * of(cost);
            for (int column = 0; column < 3; ++column) {
                sums[row][column] += weight * powers[row] * powers[column];
            }
        }
    }
    double solved[3];
    for (int term = 0; term < 3; ++term) {  // Cramer's rule
        double replaced[3][3];
        memcpy(replaced, sums, sizeof(sums));
        for (int row = 0; row < 3; ++row) replaced[row][term] = right[row];
        solved[term] = Determinant(replaced) / Determinant(sums);
    }
    return {solved[0], solved[1], solved[2]};
}

void PrintGrowth(const std::string& title, const std::vector<Cost>& costs)
{
    printf("%s\n  %8s %8s %9s %9s\n", title.c_str(), "cards", "calls", "cpu ms", "/ floor");
    for (const Cost& cost : costs) {
        printf("  %8d %8d %9.2f %9.3f\n", cost.cards, cost.calls, cost.cpu, cost.overFloor);
    }
    const Fit calls = FitOf(costs, [](const Cost& cost) { return cost.calls; });
    const Fit cpu = FitOf(costs, [](const Cost& cost) { return cost.cpu; });
    printf("  calls  %.0f + %.1f n + %.2f n^2\n", calls.a, calls.b, calls.c);
    printf("  cpu    %.2f + %.3f n + %.4f n^2 ms\n\n", cpu.a, cpu.b, cpu.c);
}

Cost CostOf(int count, int rounds, const std::function<void()>& takeDown,
            const std::string& lanrise)
{
    const Contender floor = Floor();
    std::vector<double> cpu;
    std::vector<double> ratios;
    takeDown();
    (void)Run({lanrise});  // settled
    const record::Run run = WriteFloor(takeDown, lanrise);
    for (int round = -1; round < rounds; ++round) {
        double taken[2] = {};
        for (int turn = 0; turn < 2; ++turn) {  // each is the first in turn
            const bool isFloor = (turn + round) % 2 != 0;
            takeDown();
            taken[isFloor] = Run(isFloor ? floor.command : std::vector<std::string>{lanrise}).cpu;
        }
        if (round < 0) continue;
        cpu.push_back(taken[0]);
        ratios.push_back(taken[0] / taken[1]);
    }
    return {count, run.calls, Median(cpu), Median(ratios)};
}

/// All cards in bridges of two.
void WritePairSettings(int count)
{
    WriteSettings(0);
    for (int card = 0; card < count; ++card) {
        const std::string bridge = "br" + std::to_string(card / 2);
        const std::string suffix = card == 0 ? "" : card == 1 ? "1" : CardName(card);
        Write("/mnt/mtd/Config/network" + suffix,
              "HOSTIP = " + Net(100 + card, "2") +
                  "\nSUBMASK = 255.255.255.0\nGATEWAYIP = " + Net(100 + card, "1") +
                  "\nMTU = 1500\nBONDED = 0\nBRIDGEEDED = 1\nBRIDGENAME = " + bridge +
                  "\nWORKMODE = 3\n" + (card == 0 ? "DEFAULT_ETH = br0\n" : ""));
        if (card % 2 != 0) continue;
        Write("/mnt/mtd/Config/network" + bridge,
              "BRIDGEMEMBERS = " + CardName(card) + "," + CardName(card + 1) +
                  "\nHOSTIP = " + Net(card, "2") +
                  "\nSUBMASK = 255.255.255.0\nGATEWAYIP = " + Net(card, "1") + "\nMTU = 1500\n");
    }
}

void TakePairsDown(int count)
{
    std::string batch;
    for (int bridge = 0; bridge < count / 2; ++bridge) {
        batch += "link del br" + std::to_string(bridge) + "\n";
    }
    Write("/mnt/bridges", batch);
    (void)!system("ip -force -batch /mnt/bridges 2>/dev/null");
    TakeDown(count);
}

/// Thirty-two interfaces are what a device may have, bridges among them.
void MeasureGrowth(int rounds, const std::string& lanrise)
{
    std::vector<Cost> alone;
    std::vector<Cost> paired;
    int made = 0;
    for (const int count : {1, 2, 4, 8, 16, 32}) {
        MakeCards(made, count);
        made = count;
        WriteSettings(count);
        alone.push_back(CostOf(
            count, rounds, [=] { TakeDown(count); }, lanrise));
        if (count < 2 || count > 16) continue;
        WritePairSettings(count);
        paired.push_back(CostOf(
            count, rounds, [=] { TakePairsDown(count); }, lanrise));
        TakePairsDown(count);
    }
    PrintGrowth("cards alone", alone);
    PrintGrowth("all cards in bridges of two, their shells included", paired);
}

/// The size on a device: packages strip what the build leaves whole.
void PrintSize(const std::string& path)
{
    const std::string stripped = "/mnt/stripped";
    struct stat status {};
    if (system(("strip -o " + stripped + " " + path).c_str()) == 0 &&
        stat(stripped.c_str(), &status) == 0) {
        printf("%-60s %7ld bytes, stripped\n", path.c_str(), static_cast<long>(status.st_size));
    }
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc < 2) Give("usage: boot LANRISE [ROUNDS [PEERS [TABLE]]]");
    const std::string lanrise = argv[1];
    const int rounds = argc > 2 ? atoi(argv[2]) : 31;
    const std::string peers = argc > 3 ? argv[3] : "";
    const bool isGrowth = peers == "growth";
    if (argc > 4) medians = fopen(argv[4], "w");
    // Cards here may only be those of a namespace made for this run.
    if (if_nametoindex("eth0") != 0) Give("run me through tests/netns/enter.sh");

    control = socket(AF_INET, SOCK_DGRAM, 0);
    if (isGrowth) {
        MeasureGrowth(rounds, lanrise);
        return 0;
    }
    PrepareIfup();
    if (Has(peers + "/usr/sbin/connmand")) PrepareConnman(peers);
    int made = 0;
    for (const int count : {1, 2, 8, 31}) {
        MakeCards(made, count);
        made = count;
        if (count == 2) {
            MeasureBridge(rounds, lanrise);
        } else {
            MeasureCards(count, rounds, lanrise, peers);
        }
    }
    PrintSize(lanrise);
    if (medians != nullptr) fclose(medians);
    (void)!system("[ ! -s /mnt/bus.pid ] || kill $(cat /mnt/bus.pid)");
    return 0;
}
