// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// What single operations cost beside the bare calls that nobody can do without.
//
// Pairs run interleaved in random order; the table at the end gives medians and ratios, of
// processor time where nobody else works for the operation, which repeats also on a busy machine.
// The floor of an operation are its own kernel calls, taken down while a process of its own makes
// it once and made again here with nothing around them.
//
// usage: tests/netns/enter.sh build/release/bench/calls

#include "Base.h"
#include "CommonApi.h"
#include "Net3.h"
#include "Netlink.h"
#include "Other.h"
#include "Route.h"
#include "Support/KeyFile.h"
#include "record.h"
#include "replay.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <arpa/inet.h>
#include <fcntl.h>
#include <ifaddrs.h>
#include <linux/sockios.h>
#include <net/if_arp.h>
#include <spawn.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr char kSettings[] = "/mnt/mtd/Config/network";
constexpr char kCardTable[] = "/proc/net/dev";
constexpr char kNeighbourTable[] = "/proc/net/arp";

// ---- a key

void ReadKey(benchmark::State& state)
{
    char value[16];
    for (auto step : state) {
        (void)step;
        if (!GetValueByKey(kSettings, "GATEWAYIP", value, sizeof(value)))
            state.SkipWithError("no key");
    }
}

void ReadKeyBare(benchmark::State& state)
{
    char line[256];
    for (auto step : state) {
        (void)step;
        FILE* file = fopen(kSettings, "r");
        while (fgets(line, sizeof(line), file) != nullptr && strstr(line, "GATEWAYIP") == nullptr) {
        }
        benchmark::DoNotOptimize(line[0]);
        fclose(file);
    }
}

// ---- a card

void CardPresent(benchmark::State& state)
{
    const char* name = "eth7";
    for (auto step : state) {
        (void)step;
        if (!CheckEthExist(&name, 1)) state.SkipWithError("no card");
    }
}

template <const char* path>
void ReadTableBare(benchmark::State& state)
{
    static char text[65536];
    for (auto step : state) {
        (void)step;
        const int table = open(path, O_RDONLY);
        ssize_t length = 0;
        ssize_t count = 0;
        while ((count = read(table, text + length, sizeof(text) - static_cast<size_t>(length))) >
               0) {
            length += count;
        }
        benchmark::DoNotOptimize(text[0]);
        close(table);
    }
}

// ---- the floor

bool MakeOnce(const std::string& operation)
{
    char value[16];
    const char* name = "eth7";
    NetInterfaceInfo list[32];
    int count = 32;
    if (operation == "key") return GetValueByKey(kSettings, "GATEWAYIP", value, sizeof(value));
    if (operation == "present") return CheckEthExist(&name, 1);
    return operation == "list" && getNetInterfaceList(list, &count) == 0;
}

/// What the process does that is traced: once for the sockets that stay open, once for the list.
int MakeTraced(const std::string& operation)
{
    if (!MakeOnce(operation)) return 1;
    (void)access(record::kFromHere, F_OK);
    const bool isMade = MakeOnce(operation);
    _exit(isMade ? 0 : 1);
}

std::string floorList;

void TakeFloor(const std::string& operation)
{
    floorList = record::Take({"/proc/self/exe", "--once", operation}).replay;
}

void Floor(benchmark::State& state)
{
    const int control = socket(AF_INET, SOCK_DGRAM, 0);
    auto replay = std::make_unique<record::Replay>(floorList.data(), control);
    for (auto step : state) {
        (void)step;
        if (!replay->Run()) state.SkipWithError("another way than before");
    }
    close(control);
}

// ---- a neighbour

std::string lastNeighbour;  // of the table: the one that takes longest to find

void NeighbourByIP(benchmark::State& state)
{
    char mac[18];
    for (auto step : state) {
        (void)step;
        if (!Other_GetMacByIP(lastNeighbour.c_str(), mac)) state.SkipWithError("no neighbour");
    }
}

/// The kernel's own lookup, which wants to know the card as well.
void NeighbourByRequest(benchmark::State& state)
{
    arpreq request{};
    strcpy(request.arp_dev, "eth0");
    auto* address = reinterpret_cast<sockaddr_in*>(&request.arp_pa);
    address->sin_family = AF_INET;
    inet_pton(AF_INET, lastNeighbour.c_str(), &address->sin_addr);
    const int control = socket(AF_INET, SOCK_DGRAM, 0);
    for (auto step : state) {
        (void)step;
        if (ioctl(control, SIOCGARP, &request) != 0) state.SkipWithError("no neighbour");
    }
    close(control);
}

// ---- routes

void SixteenRoutes(benchmark::State& state)
{
    IPv4Route routes[16];
    for (auto step : state) {
        (void)step;
        int count = 16;
        if (!Route_GetIPv4Route(routes, &count)) state.SkipWithError("no table");
        benchmark::DoNotOptimize(count);
    }
}

/// A prefix that is not there: all rows that count are looked at, and no line is logged.
void PrefixLookup(benchmark::State& state)
{
    for (auto step : state) {
        (void)step;
        if (Route_IsExistInSys("172.31.0.0", "0.0.0.0", "255.255.0.0", "eth0")) {
            state.SkipWithError("a route that nobody made");
        }
    }
}

/// The same rows as the kernel prints them, 128 bytes each behind a header of one row.
void ReadRowsBare(benchmark::State& state)
{
    const int table = open("/proc/net/route", O_RDONLY);
    char rows[17 * 128];
    for (auto step : state) {
        (void)step;
        if (pread(table, rows, sizeof(rows), 0) <= 0) state.SkipWithError("no table");
        benchmark::DoNotOptimize(rows);
    }
    close(table);
}

// ---- a rule, added and deleted

void RuleRoundTrip(benchmark::State& state)
{
    for (auto step : state) {
        (void)step;
        if (Netlink_IPv4Rule(RTM_NEWRULE, "10.0.0.2", 42, 1000) != 0 ||
            Netlink_IPv4Rule(RTM_DELRULE, "10.0.0.2", 42, 1000) != 0) {
            state.SkipWithError("no rule");
        }
    }
}

bool RunIpRule(const char* verb)
{
    const char* arguments[] = {"ip",    "rule", verb,       "from", "10.0.0.2",
                               "table", "42",   "priority", "1000", nullptr};
    pid_t child = -1;
    if (posix_spawnp(&child, "ip", nullptr, nullptr, const_cast<char**>(arguments), environ) != 0) {
        return false;
    }
    int status = -1;
    waitpid(child, &status, 0);
    return status == 0;
}

void RuleByTool(benchmark::State& state)
{
    for (auto step : state) {
        (void)step;
        if (!RunIpRule("add") || !RunIpRule("del")) state.SkipWithError("no ip rule");
    }
}

// ---- a command

bool SpawnBare()
{
    const char* arguments[] = {"sh", "-c", "true", nullptr};
    pid_t child = -1;
    if (posix_spawnp(&child, "sh", nullptr, nullptr, const_cast<char**>(arguments), environ) != 0) {
        return false;
    }
    int status = 0;
    return waitpid(child, &status, 0) == child;
}

bool RunCommand()
{
    return VorlixRunCmd("true");
}

double Microseconds(const timeval& time)
{
    return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_usec);
}

/// Processor time of this process and of all that it has waited for.
double ProcessorTime()
{
    double total = 0;
    for (const int who : {RUSAGE_SELF, RUSAGE_CHILDREN}) {
        rusage used{};
        getrusage(who, &used);
        total += Microseconds(used.ru_utime) + Microseconds(used.ru_stime);
    }
    return total;
}

struct Taken {
    double wall;  // microseconds
    double cpu;
};

Taken TimeOf(bool (*command)())
{
    const double used = ProcessorTime();
    const auto begin = std::chrono::steady_clock::now();
    if (!command()) exit(1);
    const std::chrono::duration<double, std::micro> wall = std::chrono::steady_clock::now() - begin;
    return {wall.count(), ProcessorTime() - used};
}

// ---- interface objects

constexpr int kObjects = 31;  // as many as there are cards

NetInterface* Object(int card)
{
    const std::string name = "eth" + std::to_string(card);
    NetInterfaceDesc desc{};
    desc.name = name.c_str();
    NetInterface* object = nullptr;
    if (createNetInterface(&desc, &object) != 0) exit(1);
    return object;
}

/// Objects are never given back, so each round has a process of its own, which tells its time.
void CreateObjects(benchmark::State& state)
{
    for (auto step : state) {
        (void)step;
        int ends[2];
        if (pipe(ends) != 0) state.SkipWithError("no pipe");
        const pid_t child = fork();
        if (child == 0) {
            const auto start = std::chrono::steady_clock::now();
            for (int card = 0; card < kObjects; ++card) Object(card);
            const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
            const double each = taken.count() / kObjects;
            _exit(write(ends[1], &each, sizeof(each)) == sizeof(each) ? 0 : 1);
        }
        close(ends[1]);
        double each = 0;
        if (read(ends[0], &each, sizeof(each)) != sizeof(each)) state.SkipWithError("no objects");
        close(ends[0]);
        waitpid(child, nullptr, 0);
        state.SetIterationTime(each);
    }
}

void FindObject(benchmark::State& state)
{
    for (auto step : state) {
        (void)step;
        benchmark::DoNotOptimize(Object(7));
    }
}

void ReadMtu(benchmark::State& state)
{
    NetInterface* const card = Object(7);
    int mtu = 0;
    for (auto step : state) {
        (void)step;
        if (card->getMTU(card, &mtu) != 0) state.SkipWithError("no MTU");
    }
}

void ReadMtuBelow(benchmark::State& state)
{
    int mtu = 0;
    for (auto step : state) {
        (void)step;
        if (!NetGetMtubyName("eth7", &mtu)) state.SkipWithError("no MTU");
    }
}

// ---- the list of interfaces

void ListInterfaces(benchmark::State& state)
{
    NetInterfaceInfo list[32];
    for (auto step : state) {
        (void)step;
        int count = 32;
        if (getNetInterfaceList(list, &count) != 0) state.SkipWithError("no list");
        benchmark::DoNotOptimize(count);
    }
}

void ListAddressesBare(benchmark::State& state)
{
    for (auto step : state) {
        (void)step;
        ifaddrs* list = nullptr;
        if (getifaddrs(&list) != 0) state.SkipWithError("no list");
        benchmark::DoNotOptimize(list);
        freeifaddrs(list);
    }
}

void ListByTool(benchmark::State& state)
{
    posix_spawn_file_actions_t quiet;
    posix_spawn_file_actions_init(&quiet);
    posix_spawn_file_actions_addopen(&quiet, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    for (auto step : state) {
        (void)step;
        const char* arguments[] = {"ip", "-s", "link", nullptr};
        pid_t child = -1;
        if (posix_spawnp(&child, "ip", &quiet, nullptr, const_cast<char**>(arguments), environ) !=
            0) {
            state.SkipWithError("no ip");
            break;
        }
        int status = 0;
        waitpid(child, &status, 0);
    }
    posix_spawn_file_actions_destroy(&quiet);
}

// ---- running

/// Keeps the medians by name and prints nothing.
class Medians : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs) {
            if (run.error_occurred) {
                fprintf(stderr, "bench/calls: %s: %s\n", run.benchmark_name().c_str(),
                        run.error_message.c_str());
                exit(1);
            }
            if (run.aggregate_name != "median") continue;
            cpu_[run.run_name.function_name] = run.GetAdjustedCPUTime();
            wall_[run.run_name.function_name] = run.GetAdjustedRealTime();
        }
    }
    double Of(const std::string& name) const { return cpu_.at(name); }
    double WallOf(const std::string& name) const { return wall_.at(name); }

private:
    std::map<std::string, double> cpu_;  // nanoseconds
    std::map<std::string, double> wall_;
};

struct Named {
    const char* name;
    void (*body)(benchmark::State&);
    bool tellsItsTime = false;
};

Medians RunAll(const std::vector<Named>& bodies)
{
    benchmark::ClearRegisteredBenchmarks();
    for (const Named& body : bodies) {
        auto* bench = benchmark::RegisterBenchmark(body.name, body.body);
        bench->Repetitions(15)->MinTime(0.05);
        if (body.tellsItsTime) bench->UseManualTime();
    }
    Medians medians;
    benchmark::RunSpecifiedBenchmarks(&medians);
    return medians;
}

void PrintRatio(const char* what, double ours, double peer, const char* peerName)
{
    printf("%-44s %9.2f us %9.2f us  %-22s %5.2f\n", what, ours / 1000, peer / 1000, peerName,
           ours / peer);
}

void PrintRatio(const char* what, double ours, double peer, const char* peerName, double aim)
{
    printf("%-44s %9.2f us %9.2f us  %-22s %5.2f  (aim %.2f)\n", what, ours / 1000, peer / 1000,
           peerName, ours / peer, aim);
}

void Shell(const std::string& command)
{
    if (system(command.c_str()) != 0) {
        fprintf(stderr, "bench/calls: failed: %s\n", command.c_str());
        exit(1);
    }
}

void MakeCards(int from, int count)
{
    // The far ends are another machine's: they lie in a namespace of their own.
    if (from == 0) Shell("ip netns add peer");
    for (int card = from; card < count; ++card) {
        const std::string number = std::to_string(card);
        Shell("ip link add eth" + number + " type veth peer name p" + number + " netns peer");
    }
}

void WriteSettings()
{
    Shell("mkdir -p /mnt/mtd/Config");
    std::ofstream(kSettings) << "HOSTIP = 10.0.0.2\nSUBMASK = 255.255.255.0\nPRIO = 0\nMTU = 1500\n"
                                "WORKMODE = 0\nBONDED = 0\nGATEWAYIP = 10.0.0.1\n";
}

void GrowRoutes(int from, int to)
{
    std::ofstream batch("/mnt/routes");
    for (int route = from; route < to; ++route) {
        batch << "route add 100." << route / 65536 << "." << route / 256 % 256 << "." << route % 256
              << "/32 dev eth0\n";
    }
    batch.close();
    Shell("ip -batch /mnt/routes");
}

constexpr char kFloor[] = "its calls alone";
constexpr double kAboveFloor = 1.1;

void MeasureKey()
{
    TakeFloor("key");
    const Medians medians = RunAll({{"key", ReadKey}, {"floor", Floor}, {"bare", ReadKeyBare}});
    const char* what = "one key of a setting file";
    PrintRatio(what, medians.Of("key"), medians.Of("floor"), kFloor, kAboveFloor);
    PrintRatio(what, medians.Of("key"), medians.Of("bare"), "fopen, fgets");
}

void MeasureCards(int count)
{
    TakeFloor("present");
    const Medians medians =
        RunAll({{"present", CardPresent}, {"floor", Floor}, {"bare", ReadTableBare<kCardTable>}});
    const std::string what = "card present, " + std::to_string(count) + " cards";
    PrintRatio(what.c_str(), medians.Of("present"), medians.Of("floor"), kFloor, kAboveFloor);
    PrintRatio(what.c_str(), medians.Of("present"), medians.Of("bare"), "read /proc/net/dev");
}

void GrowNeighbours(int from, int to)
{
    std::ofstream batch("/mnt/neighbours");
    for (int i = from; i < to; ++i) {
        char mac[18];
        snprintf(mac, sizeof(mac), "02:00:00:00:%02x:%02x", i / 256, i % 256);
        batch << "neigh add 10.9." << i / 256 << "." << i % 256 << " lladdr " << mac
              << " dev eth0 nud permanent\n";
    }
    batch.close();
    Shell("ip -batch /mnt/neighbours");

    std::ifstream table(kNeighbourTable);
    for (std::string line; std::getline(table, line);) {
        lastNeighbour = line.substr(0, line.find(' '));
    }
}

void MeasureNeighbours()
{
    Shell("ip link set eth0 up");
    int made = 0;
    for (const int count : {10, 500}) {
        GrowNeighbours(made, count);
        made = count;
        const Medians medians = RunAll({{"lookup", NeighbourByIP},
                                        {"bare", ReadTableBare<kNeighbourTable>},
                                        {"request", NeighbourByRequest}});
        const std::string what = "last of " + std::to_string(count) + " neighbours";
        PrintRatio(what.c_str(), medians.Of("lookup"), medians.Of("bare"), "read /proc/net/arp",
                   1.2);
        printf("%-44s %9.2f us\n", "  the same by SIOCGARP", medians.Of("request") / 1000);
    }
}

void MeasureObjects()
{
    // Before any object is found: a child inherits those of its parent.
    const Medians made = RunAll({{"create", CreateObjects, true}, {"present", CardPresent}});
    PrintRatio("interface object created", made.WallOf("create"), made.WallOf("present"),
               "card present", 1.1);
    const Medians found = RunAll({{"find", FindObject},
                                  {"present", CardPresent},
                                  {"slot", ReadMtu},
                                  {"below", ReadMtuBelow}});
    PrintRatio("interface object found", found.Of("find"), found.Of("present"), "card present",
               1.1);
    PrintRatio("MTU through an object", found.Of("slot"), found.Of("below"), "NetGetMtubyName",
               1.1);
}

void MeasureList(int count)
{
    TakeFloor("list");
    const Medians medians = RunAll({{"list", ListInterfaces},
                                    {"floor", Floor},
                                    {"addresses", ListAddressesBare},
                                    {"tool", ListByTool}});
    const std::string what = "list of interfaces, " + std::to_string(count) + " cards";
    PrintRatio(what.c_str(), medians.Of("list"), medians.Of("floor"), kFloor, kAboveFloor);
    PrintRatio(what.c_str(), medians.Of("list"), medians.Of("addresses"), "getifaddrs");
    PrintRatio(what.c_str(), medians.WallOf("list"), medians.WallOf("tool"), "ip -s link");
}

void MeasureRoutes()
{
    Shell("ip link set eth0 up");
    int made = 0;
    for (const int count : {10, 1000, 100000}) {
        GrowRoutes(made, count);
        made = count;
        const Medians medians =
            RunAll({{"routes", SixteenRoutes}, {"lookup", PrefixLookup}, {"bare", ReadRowsBare}});
        const std::string behind = std::to_string(count) + " routes";
        PrintRatio(("sixteen rows of " + behind).c_str(), medians.Of("routes"), medians.Of("bare"),
                   "read of sixteen rows", 1.2);
        PrintRatio(("one prefix in " + behind).c_str(), medians.Of("lookup"), medians.Of("bare"),
                   "read of sixteen rows", 1.2);
    }
}

/// Standard output goes nowhere in the meantime: each request logs a line, which is part of it.
void MeasureRules()
{
    fflush(stdout);
    const int output = dup(STDOUT_FILENO);
    const int nowhere = open("/dev/null", O_WRONLY);
    dup2(nowhere, STDOUT_FILENO);
    const Medians medians = RunAll({{"rule", RuleRoundTrip}, {"tool", RuleByTool}});
    fflush(stdout);
    dup2(output, STDOUT_FILENO);
    close(nowhere);
    close(output);
    PrintRatio("a rule added and deleted", medians.WallOf("rule"), medians.WallOf("tool"),
               "ip rule add, del", 0.1);
}

double Median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// A shell takes a millisecond, and what else the machine does swings by more than the difference:
/// both run one behind the other, each first in turn, and the medians are those of the pairs'
/// ratios.
void MeasureCommands(size_t megabytes)
{
    constexpr int kPairs = 401;
    const size_t size = megabytes << 20;
    void* ballast = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    memset(ballast, 1, size);
    std::vector<double> ours, peer, wall, cpu;
    for (int pair = 0; pair < kPairs; ++pair) {
        const bool isFirst = pair % 2 == 0;
        const Taken first = TimeOf(isFirst ? RunCommand : SpawnBare);
        const Taken second = TimeOf(isFirst ? SpawnBare : RunCommand);
        const Taken& mine = isFirst ? first : second;
        const Taken& bare = isFirst ? second : first;
        ours.push_back(mine.cpu);
        peer.push_back(bare.cpu);
        wall.push_back(mine.wall / bare.wall);
        cpu.push_back(mine.cpu / bare.cpu);
    }
    printf("%-44s %9.2f us %9.2f us  %-22s %5.3f  (aim 1.02; wall %.3f)\n",
           ("shell command, parent of " + std::to_string(megabytes) + " MB").c_str(), Median(ours),
           Median(peer), "posix_spawn, CPU", Median(cpu), Median(wall));
    munmap(ballast, size);
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc == 3 && strcmp(argv[1], "--once") == 0) return MakeTraced(argv[2]);
    const char* flags[] = {"calls", "--benchmark_enable_random_interleaving=true", nullptr};
    int count = 2;
    benchmark::Initialize(&count, const_cast<char**>(flags));

    WriteSettings();
    MeasureKey();
    MakeCards(0, 8);
    MeasureCards(8);
    MeasureList(8);
    MakeCards(8, kObjects);
    MeasureCards(kObjects);
    MeasureList(kObjects);
    MeasureObjects();
    MeasureRules();
    MeasureNeighbours();
    MeasureRoutes();
    MeasureCommands(10);
    MeasureCommands(2048);
    return 0;
}
