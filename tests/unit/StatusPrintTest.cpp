// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The faces of lanrise-status: what stands where, on which screen, with which letters.

#include "StatusWorld.h"

#include "Print.h"

#include <arpa/inet.h>

#include <sstream>

using namespace fake;

namespace {

class PrintTest : public World {
protected:
    void SetUp() override
    {
        World::SetUp();
        cmos.capsResult = -1;  // no backup memory, unless a test brings one
        PutHealthyResolvers();
        Put(CardFile("eth0"), Settings(Healthy(0, {"DEFAULT_ETH = eth0"})));
    }

    /// An address and a state as a boot leaves them.
    static void BringUp(status::Device* device, const std::string& name)
    {
        for (auto& entry : device->list) {
            if (name != entry.name) continue;
            entry.live.up = entry.live.link = true;
            entry.live.speed = 1000;
            entry.live.ipv4 = entry.saved.ipv4;
        }
    }

    static std::string Printed(const std::function<void(const status::Report&, FILE*)>& print,
                               const status::Device& device)
    {
        auto lists = std::make_unique<status::Findings[]>(3);
        status::Compare(device, &lists[0]);
        status::Foretell(device, &lists[1]);
        status::Remark(device, &lists[2]);
        char* text = nullptr;
        size_t size = 0;
        FILE* out = open_memstream(&text, &size);
        print({device, lists[0], lists[1], lists[2]}, out);
        fclose(out);
        const std::string printed(text, size);
        free(text);
        return printed;
    }

    static std::string Table(const status::Device& device, int columns = 80, bool colour = false)
    {
        return Printed(
            [columns, colour](const status::Report& report, FILE* out) {
                status::PrintTable(report, {out, columns, colour});
            },
            device);
    }

    static std::string Json(const status::Device& device)
    {
        return Printed([](const auto& report, FILE* out) { status::PrintJson(report, out); },
                       device);
    }

    static size_t Widest(const std::string& text)
    {
        std::istringstream lines(text);
        size_t widest = 0;
        for (std::string line; std::getline(lines, line);) widest = std::max(widest, line.size());
        return widest;
    }

    static bool Has(const std::string& text, const std::string& part)
    {
        return text.find(part) != std::string::npos;
    }
};

TEST_F(PrintTest, OneRowForACardWhoseStoresAgree)
{
    const auto device = Look({"eth0"});
    BringUp(device.get(), "eth0");
    device->list[0].live.ipv4.hasGateway = true;
    EXPECT_EQ(Table(*device).substr(0, 150),
              std::string("Card  State  Mbit/s  Role     Store  Address       Gateway   MTU\n"
                          "eth0  up     1000    default  all    10.0.0.10/24  10.0.0.1  1500\n"
                          "\nDefault card   eth0\n")
                  .substr(0, 150));
}

TEST_F(PrintTest, ARowForEachStoreWhereTheyDiffer)
{
    UseRtc("10.0.0.77", "255.255.255.0", "10.0.0.1");
    const auto device = Look({"eth0"});
    const std::string table = Table(*device);
    EXPECT_TRUE(Has(table, "eth0  down   -       default  kernel  -             -         1500\n"));
    EXPECT_TRUE(Has(table, "file    10.0.0.10/24  10.0.0.1  1500\n"));
    EXPECT_TRUE(Has(table, "backup  10.0.0.77/24  10.0.0.1\n"));
    EXPECT_TRUE(Has(table, "\nDifferences\n"));
    EXPECT_TRUE(Has(table, "Backup memory  RTC, holds an address\n"));
}

TEST_F(PrintTest, ColourOnlyWhereItIsWanted)
{
    const auto device = Look({"eth0"});
    EXPECT_TRUE(Has(Table(*device, 80, true), "\033[31mdown\033[0m"));
    EXPECT_FALSE(Has(Table(*device, 80, false), "\033"));
}

TEST_F(PrintTest, EveryWidthFrom40On)
{
    const std::string name = "eth_of_15_chars";
    Put(CardFile(name), Settings({"HOSTIP = 192.168.100.100", "SUBMASK = 255.255.255.0",
                                  "GATEWAYIP = 192.168.100.101", "MTU = 1500", "BRIDGEEDED = 1",
                                  "BRIDGENAME = br_of_15_chars_"}));
    const auto device = Look({"eth0", name});
    for (int columns = 40; columns <= 120; ++columns) {
        EXPECT_LE(Widest(Table(*device, columns)), static_cast<size_t>(columns));
    }
}

TEST_F(PrintTest, LettersThatATerminalMightTakeForOrders)
{
    const std::string name = "eth\x1b[2J\xc3\xa4";
    const auto device = Look({"eth0", name});
    EXPECT_TRUE(Has(Table(*device), "eth?[2J??"));
    EXPECT_FALSE(Has(Table(*device), "\x1b"));
    const std::string json = Json(*device);
    EXPECT_TRUE(Has(json, "\"name\":\"eth\\u001b[2J\\u00c3\\u00a4\""));
    for (const char letter : json) EXPECT_TRUE(letter == '\n' || (letter >= ' ' && letter <= '~'));
}

TEST_F(PrintTest, QuotesAndBackslashesInJson)
{
    const auto device = Look({"eth0", R"(eth"\)"});
    EXPECT_TRUE(Has(Json(*device), R"("name":"eth\"\\")"));
}

TEST_F(PrintTest, NamesThatDoNotCountAsCards)
{
    const auto device = Look({"eth0"});
    strcpy(device->ignored[0], "enp3s0");
    device->ignoredCount = 1;
    EXPECT_TRUE(Has(Table(*device), "enp3s0  a name that does not count as a card of the device"));
}

TEST_F(PrintTest, MoreInterfacesThanThereIsRoomFor)
{
    std::vector<std::string> names = {"eth0"};
    const auto device = Look(names);
    for (int i = 1; i < 100; ++i) {
        const std::string name = "usb" + std::to_string(i);
        status::Interface* entry = status::Enter(device.get(), name.c_str());
        if (entry != nullptr) entry->live.present = true;
    }
    const std::string table = Table(*device);
    EXPECT_TRUE(Has(table, "usb63   beyond the 32 interfaces that the boot looks at"));
    EXPECT_TRUE(Has(table, "device  36 more interfaces have no room here"));
}

TEST_F(PrintTest, ABondAndItsMembers)
{
    Put(CardFile("bond0"), Settings(Healthy(5, {"BONDMODE = 1", "BONDMEMBERS = eth0,eth1"})));
    const auto device = Look({"eth0", "eth1", "bond0"});
    auto& bond = device->list[2];
    bond.live.bondMode = 1;
    bond.live.activeSlave = device->list[1].live.index;
    device->list[0].live.master = device->list[1].live.master = bond.live.index;
    const std::string table = Table(*device);
    EXPECT_TRUE(Has(table, "Bond bond0     active-backup; members eth0,eth1; active link eth1\n"));
    EXPECT_TRUE(Has(table, "in bond0"));
    EXPECT_TRUE(Has(Json(*device), "\"bonds\":[{\"name\":\"bond0\",\"members\":{\"kernel\":"
                                   "[\"eth0\",\"eth1\"],\"file\":[\"eth0\",\"eth1\"]},\"mode\":{"
                                   "\"kernel\":\"active-backup\",\"file\":\"active-backup\"},"
                                   "\"active\":\"eth1\"}]"));
}

TEST_F(PrintTest, ARouteOverAMemberGoesWithTheNextBoot)
{
    Put(CardFile("eth1"), Settings(Healthy(1, {"BONDED = 1", "BONDNAME = bond0"})));
    Put(CardFile("eth2"), Settings(Healthy(2, {"BONDED = 1", "BONDNAME = bond0"})));
    Put(CardFile("bond0"), Settings(Healthy(5, {"BONDMODE = 1", "BONDMEMBERS = eth1,eth2"})));
    const auto device = Look({"eth0", "eth1", "eth2", "bond0"});
    device->list[1].live.master = device->list[3].live.index;
    device->routes[0].net = inet_addr("10.0.1.0");
    device->routes[0].mask = inet_addr("255.255.255.0");
    device->routes[0].index = device->list[1].live.index;
    device->routeCount = 1;
    EXPECT_EQ(Repairs(*device),
              Sentences{"eth1: the route to 10.0.1.0/24 is not saved: it is removed"});
    device->list[1].live.master = 0;
    EXPECT_EQ(Repairs(*device), Sentences{});
}

// ---- differences

class CompareTest : public PrintTest {};

TEST_F(CompareTest, NoneWhenAllAgree)
{
    const auto device = Look({"eth0"});
    BringUp(device.get(), "eth0");
    device->routes[0].gateway = device->list[0].saved.ipv4.gateway;
    device->routes[0].index = device->list[0].live.index;
    device->routeCount = 1;
    EXPECT_EQ(Differences(*device), Sentences{});
}

TEST_F(CompareTest, AddressMtuAndState)
{
    Put(CardFile("eth1"), Settings(Healthy(1)));
    const auto device = Look({"eth0", "eth1"});
    BringUp(device.get(), "eth0");
    device->list[0].live.ipv4.address = htonl(0x0a000063);
    device->list[0].live.mtu = 1400;
    EXPECT_EQ(Differences(*device),
              (Sentences{"eth0: the kernel has 10.0.0.99/24, the file 10.0.0.10/24",
                         "eth0: the kernel has an MTU of 1400, the file 1500",
                         "eth1: it is down; the kernel has no address, the file 10.0.1.10/24",
                         "device: there is no default route; the default card is eth0"}));
}

TEST_F(CompareTest, AMemberOfAnotherMaster)
{
    Put(CardFile("eth1"), Settings(Healthy(1, {"BRIDGEEDED = 1", "BRIDGENAME = br0"})));
    Put(CardFile("br1"), Settings(Healthy(2)));
    const auto device = Look({"eth1", "br1"});
    BringUp(device.get(), "br1");
    device->list[0].live.master = device->list[1].live.index;
    EXPECT_EQ(Differences(*device)[0], "eth1: the kernel has it in br1, its file says br0");
}

TEST_F(CompareTest, TheDefaultRouteOverAnotherCard)
{
    Put(CardFile("eth1"), Settings(Healthy(1)));
    const auto device = Look({"eth0", "eth1"});
    BringUp(device.get(), "eth0");
    BringUp(device.get(), "eth1");
    device->routes[0].index = device->list[1].live.index;
    device->routeCount = 1;
    EXPECT_EQ(Differences(*device),
              Sentences{"device: the default route leads over eth1, the default card is eth0"});
}

TEST_F(CompareTest, AnAddressThatTheBackupMemoryHasNot)
{
    UseRtc("10.0.0.77", "255.255.255.0", "10.0.0.2");
    const auto device = Look({"eth0"});
    BringUp(device.get(), "eth0");
    device->routes[0].gateway = device->list[0].saved.ipv4.gateway;
    device->routes[0].index = device->list[0].live.index;
    device->routeCount = 1;
    EXPECT_EQ(Differences(*device),
              (Sentences{"eth0: the file has 10.0.0.10/24, the backup memory 10.0.0.77/24",
                         "eth0: the file has the gateway 10.0.0.1, the backup memory 10.0.0.2"}));
}

}  // namespace
