// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Other.h"

#include "Device.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

using namespace device;

namespace {

constexpr int kAddRequest = 0x8955;
constexpr int kDeleteRequest = 0x8953;

NetARPEntry Entry(const char* ip, const char* mac, const char* card = "")
{
    NetARPEntry entry{};
    strcpy(entry.ip, ip);
    strcpy(entry.mac, mac);
    strcpy(entry.dev, card);
    return entry;
}

bool Set(const char* ip, const char* mac, const char* card = "")
{
    const NetARPEntry entry = Entry(ip, mac, card);
    return arpSetStaticEntry(&entry);
}

bool Delete(const char* ip, const char* card = "")
{
    const NetARPEntry entry = Entry(ip, "", card);
    return arpDelStaticEntry(&entry);
}

std::string TextOf(const NetARPEntry& entry)
{
    return std::string(entry.ip) + " " + entry.mac + " " + entry.dev;
}

/// Sorted: the kernel lists its entries by a hash.
Texts Listed(bool (*list)(NetARPEntry*, int*), int capacity = 16)
{
    NetARPEntry entries[16];
    int num = capacity;
    if (!list(entries, &num)) return {"(failed)"};

    Texts texts;
    for (int i = 0; i < num; ++i) texts.push_back(TextOf(entries[i]));
    std::sort(texts.begin(), texts.end());
    return texts;
}

Texts All()
{
    return Listed(arpGetAllStaticEntry);
}

std::string MacOf(const char* ip)
{
    char mac[18] = "";
    return Other_GetMacByIP(ip, mac) ? mac : "(none)";
}

std::string IPOf(const char* mac)
{
    char ip[16] = "";
    return Other_GetIPByMac(mac, ip) ? ip : "(none)";
}

/// The kernel's own table: "10.0.0.7 02:00:00:00:00:07 eth0 [\"PERMANENT\"]".
Texts InKernel()
{
    Texts entries;
    for (const auto& record : Ip("-4 neigh show nud all")) {
        if (record.count("dst") == 0 || record.count("lladdr") == 0) continue;
        entries.push_back(record.at("dst") + " " + record.at("lladdr") + " " + record.at("dev") +
                          " " + record.at("state"));
    }
    std::sort(entries.begin(), entries.end());
    return entries;
}

class NeighbourTest : public Device {
protected:
    void SetUp() override
    {
        Device::SetUp();
        AddCards(2);
        Must("ip addr add 10.0.0.1/24 dev eth0; ip link set eth0 up");
        Must("ip addr add 10.0.1.1/24 dev eth1; ip link set eth1 up");
    }
};

TEST_F(NeighbourTest, AStaticEntryReachesTheKernelAndComesBack)
{
    EXPECT_TRUE(Set("10.0.0.7", "02:00:00:00:00:07", "eth0"));
    EXPECT_EQ(InKernel(), (Texts{R"(10.0.0.7 02:00:00:00:00:07 eth0 ["PERMANENT"])"}));
    EXPECT_EQ(All(), (Texts{"10.0.0.7 02:00:00:00:00:07 eth0"}));
    EXPECT_EQ(MacOf("10.0.0.7"), "02:00:00:00:00:07");
    EXPECT_EQ(IPOf("02:00:00:00:00:07"), "10.0.0.7");
    EXPECT_EQ(Log(), (LogLines{Warn("arpSetStaticEntry", "add with dev name:[eth0]")}));
}

TEST_F(NeighbourTest, WithoutACardTheRoutesNameIt)
{
    EXPECT_TRUE(Set("10.0.1.7", "02:00:00:00:00:17"));
    EXPECT_EQ(All(), (Texts{"10.0.1.7 02:00:00:00:00:17 eth1"}));
    EXPECT_TRUE(Delete("10.0.1.7"));
    EXPECT_EQ(All(), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NeighbourTest, AnEntryIsReplaced)
{
    Must("ip neigh replace 10.0.0.7 lladdr 02:00:00:00:00:99 dev eth0 nud reachable");
    EXPECT_EQ(All(), Texts{});
    EXPECT_TRUE(Set("10.0.0.7", "02:00:00:00:00:07", "eth0"));
    EXPECT_TRUE(Set("10.0.0.7", "02:00:00:00:00:08", "eth0"));
    EXPECT_EQ(InKernel(), (Texts{R"(10.0.0.7 02:00:00:00:00:08 eth0 ["PERMANENT"])"}));
}

TEST_F(NeighbourTest, DynamicAndPublishedEntriesAreFoundButNotListed)
{
    Must("ip neigh add 10.0.0.5 lladdr 02:00:00:00:00:05 dev eth0 nud reachable");
    Must("ip neigh add proxy 10.0.0.6 dev eth0");
    EXPECT_TRUE(Set("10.0.0.7", "02:00:00:00:00:07", "eth0"));
    EXPECT_EQ(All(), (Texts{"10.0.0.7 02:00:00:00:00:07 eth0"}));
    EXPECT_EQ(MacOf("10.0.0.5"), "02:00:00:00:00:05");
    EXPECT_EQ(IPOf("02:00:00:00:00:05"), "10.0.0.5");
    EXPECT_EQ(MacOf("10.0.0.6"), "00:00:00:00:00:00");
    EXPECT_EQ(IPOf("00:00:00:00:00:00"), "10.0.0.6");
}

TEST_F(NeighbourTest, OneAddressOnTwoCards)
{
    EXPECT_TRUE(Set("10.0.0.7", "02:00:00:00:00:07", "eth0"));
    EXPECT_TRUE(Set("10.0.0.7", "02:00:00:00:00:17", "eth1"));
    EXPECT_TRUE(Set("10.0.0.70", "02:00:00:00:00:70", "eth1"));
    const auto ofAddress = [](NetARPEntry* entries, int* num) {
        return arpGetARPStaticInfoByIP("10.0.0.7", entries, num);
    };
    EXPECT_EQ(Listed(ofAddress),
              (Texts{"10.0.0.7 02:00:00:00:00:07 eth0", "10.0.0.7 02:00:00:00:00:17 eth1"}));
    EXPECT_EQ(Listed(ofAddress, 1).size(), 1U);
    EXPECT_EQ(Listed(arpGetAllStaticEntry, 2).size(), 2U);
    EXPECT_EQ(All().size(), 3U);
    EXPECT_TRUE(Delete("10.0.0.7", "eth1"));
    EXPECT_EQ(Listed(ofAddress), (Texts{"10.0.0.7 02:00:00:00:00:07 eth0"}));
}

TEST_F(NeighbourTest, WhatTheKernelRefusesIsTold)
{
    EXPECT_FALSE(Set("10.0.0.7", "02:00:00:00:00:07", "eth9"));
    EXPECT_FALSE(Set("192.0.2.1", "02:00:00:00:00:07"));
    EXPECT_FALSE(Delete("10.0.0.7", "eth0"));
    const std::string entry = "Static ARPEntry failed ";
    EXPECT_EQ(
        Log(),
        (LogLines{Warn("arpSetStaticEntry", "add with dev name:[eth9]"),
                  output::Refused(kAddRequest, ENODEV, "\x02"),
                  Error("arpSetStaticEntry", "Add " + entry + "[10.0.0.7][02:00:00:00:00:07]"),
                  output::Refused(kAddRequest, ENETUNREACH, "\x02"),
                  Error("arpSetStaticEntry", "Add " + entry + "[192.0.2.1][02:00:00:00:00:07]"),
                  Warn("arpDelStaticEntry", "del with dev name:[eth0]"),
                  output::Refused(kDeleteRequest, ENXIO, "\x02"),
                  Error("arpDelStaticEntry", "del " + entry + "[10.0.0.7][]")}));
    EXPECT_EQ(InKernel(), Texts{});
}

TEST_F(NeighbourTest, EveryLookupSeesTheTableOfNow)
{
    EXPECT_EQ(MacOf("10.0.0.7"), "(none)");
    EXPECT_EQ(IPOf("02:00:00:00:00:07"), "(none)");
    EXPECT_TRUE(Set("10.0.0.7", "02:00:00:00:00:07"));
    EXPECT_EQ(MacOf("10.0.0.7"), "02:00:00:00:00:07");
    EXPECT_EQ(IPOf("02:00:00:00:00:07"), "10.0.0.7");
    EXPECT_TRUE(Set("10.0.0.7", "02:00:00:00:00:08"));
    EXPECT_EQ(MacOf("10.0.0.7"), "02:00:00:00:00:08");
    EXPECT_EQ(IPOf("02:00:00:00:00:07"), "(none)");
    EXPECT_TRUE(Delete("10.0.0.7"));
    EXPECT_EQ(IPOf("02:00:00:00:00:08"), "(none)");
}

TEST_F(NeighbourTest, EachOfTwoHundredIsFound)
{
    std::string batch;
    for (int i = 2; i <= 201; ++i) {
        const std::string number = std::to_string(i);
        char mac[18];
        snprintf(mac, sizeof(mac), "02:00:00:00:01:%02x", i);
        batch += "neigh add 10.0.0." + number + " lladdr " + mac + " dev eth0 nud permanent\n";
    }
    Put("/mnt/batch", batch);
    Must("ip -batch /mnt/batch");
    for (int i = 2; i <= 201; ++i) {
        const std::string ip = "10.0.0." + std::to_string(i);
        char mac[18];
        snprintf(mac, sizeof(mac), "02:00:00:00:01:%02x", i);
        EXPECT_EQ(MacOf(ip.c_str()), mac);
        EXPECT_EQ(IPOf(mac), ip);
    }
    EXPECT_EQ(All().size(), 16U);
}

}  // namespace
