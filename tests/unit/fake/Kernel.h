// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// A model of the kernel's network state: cards, their addresses, routes, drivers, and the memory
// devices behind the backup. Requests change it, tables under /proc/net are printed from it at each
// opening, unless a test has put a table of its own there.

#include <cstdint>
#include <list>
#include <optional>
#include <string>
#include <vector>

#include <linux/ethtool.h>

namespace fake {

struct Address6 {
    std::string text;
    unsigned prefix;
    unsigned scope;
};

/// A port of a switch chip. The chip knows the hardware address of a device as that of its port.
struct SwitchPort {
    bool link = false;
    std::string mac = "00:00:00:00:00:00";
    bool enabled = false;
};

/// The switch chip behind a card.
struct SwitchChip {
    std::vector<SwitchPort> ports;
    int isolations = 0;  // requests for its port isolation
};

struct Card {
    std::string name;
    int index = 0;  // 0: the request for it leaves its record as it was
    short flags = 0;
    std::string address;  // empty: none
    std::string mask = "255.255.255.255";
    std::string mac = "02:00:00:00:00:01";
    int mtu = 1500;
    std::string driver = "sim";  // empty: a driver without ethtool
    std::string driverVersion;
    std::optional<uint32_t> link = 1;     // answer to ETHTOOL_GLINK
    std::optional<ethtool_cmd> settings;  // answer to ETHTOOL_GSET
    std::vector<Address6> addresses6;
    std::string counters = "0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0";
    bool refusesMtuWhileUp = false;
    std::optional<SwitchChip> chip;
};

struct Route {
    std::string destination;
    std::string gateway;
    std::string mask;
    std::string card;
    bool operator==(const Route& other) const
    {
        return destination == other.destination && gateway == other.gateway && mask == other.mask &&
               card == other.card;
    }
};

struct Route6 {
    std::string destination;
    unsigned prefix;
    std::string gateway;
    std::string card;
    unsigned flags = 1;
    bool operator==(const Route6& other) const
    {
        return destination == other.destination && prefix == other.prefix &&
               gateway == other.gateway && card == other.card;
    }
};

/// One line of /proc/net/arp; flags are the ATF_ bits. An unknown hardware address is all zero.
struct Neighbour {
    std::string ip;
    std::string mac;
    std::string card;
    unsigned flags = 2;
    bool operator==(const Neighbour& other) const
    {
        return ip == other.ip && mac == other.mac && card == other.card && flags == other.flags;
    }
};

/// Memory of a backup device: 256 bytes, read and written by its requests.
struct BackupMemory {
    uint8_t bytes[256] = {};
    std::vector<std::string> requests;  // "READ 40 16", "WRITE 40 16", "CREATE"
    std::string created;  // what CREATE asked for: "<file> <period> <mode> <markLen> <totalLen>"
    int result = 0;       // of a request that was carried out; 0 alone is a driver's success
};

/// The power supply of the ports behind /dev/qv_poe.
struct PowerSupply {
    uint8_t info[256] = {};  // answer to the request for its state
    uint32_t on = 0;         // ports, by their bits
    uint32_t total = 0;
    int result = 0;  // of a request that was carried out; any that is not negative is a success
};

struct Kernel {
    std::list<Card> cards;  // in the order of /proc/net/dev
    std::vector<Route> routes;
    std::vector<Route6> routes6;
    std::vector<Neighbour> neighbours;
    BackupMemory rtc;
    BackupMemory sram;
    PowerSupply power;

    /// Adds a card behind the others and returns it.
    Card& Add(const std::string& name);

    /// The card of that name; the test fails when there is none.
    Card& At(const std::string& name);

    Card* Find(const std::string& name);
};

extern Kernel kernel;

std::ostream& operator<<(std::ostream& out, const Route& route);
std::ostream& operator<<(std::ostream& out, const Route6& route);
std::ostream& operator<<(std::ostream& out, const Neighbour& neighbour);

// ---- for the parts of the fake

void ResetKernel();

/// Text of a table printed from the model; nothing for other paths.
std::optional<std::string> TableText(const std::string& path);

/// Name of a request for the trace, such as "SIOCSIFADDR eth1".
std::string RequestText(unsigned long request, const void* record, int family);

/// What a request is given beyond its name, for the timeline: "" or " up 0x1043", " 10.0.0.2".
std::string RequestDetail(unsigned long request, const void* record, int family);

/// Performs a request on the model: 0, or an errno.
int Perform(unsigned long request, void* record, int family);

/// What a request that was performed returns.
int ResultOf(unsigned long request);

}  // namespace fake
