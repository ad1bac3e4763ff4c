// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The typed settings over a file of any content: what is given out is what it says to be, and what
// is saved over it comes back.

#include "Fuzz.h"

#include "Config.h"
#include "Support/KeyFile.h"

#include <cstdlib>
#include <cstring>

#include <arpa/inet.h>

namespace {

constexpr char kCard[] = "eth2";

bool IsIPv4(const char* text)
{
    in_addr address;
    return inet_aton(text, &address) != 0;
}

bool IsIPv6(const char* text)
{
    in6_addr address;
    return inet_pton(AF_INET6, text, &address) == 1;
}

void ReadAddresses()
{
    const fuzz::Buffer ip(16);
    const fuzz::Buffer mask(16);
    if (GetIPByConfig(kCard, ip.Get(), mask.Get())) {
        HOLDS(ip.IsText() && IsIPv4(ip.Get()));
        HOLDS(mask.IsText() && IsIPv4(mask.Get()));
    }
    const fuzz::Buffer gateway(16);
    if (GetGatewayByConfig(kCard, gateway.Get())) {
        HOLDS(gateway.IsText() && IsIPv4(gateway.Get()));
    }
    const fuzz::Buffer ip6(46);
    const fuzz::Buffer prefix(16);
    if (GetIPv6ByConfig(kCard, ip6.Get(), 46, prefix.Get(), 16)) {
        HOLDS(ip6.IsText() && IsIPv6(ip6.Get()));
        HOLDS(prefix.IsText());
        HOLDS(prefix.Get() == std::to_string(atoi(prefix.Get())));  // -1 for too many digits
    }
    const fuzz::Buffer gateway6(46);
    if (GetGatewayv6ByConfig(kCard, gateway6.Get(), 46)) {
        HOLDS(gateway6.IsText() && IsIPv6(gateway6.Get()));
    }
}

void ReadRoles()
{
    int mtu = 0;
    HOLDS(!GetMtuByConfig(kCard, &mtu) || mtu > 0);
    NetWorkMode mode = netModeInvalid;
    HOLDS(GetWorkModeByConfig(kCard, &mode));
    bool flag = false;
    unsigned char policy = 0;
    (void)GetBondHashPolicyByConfig(kCard, &policy);
    unsigned char tree = 0;
    (void)GetBridgeStpModeByConfig(kCard, &tree);
    const fuzz::Buffer primary(16);
    HOLDS(!GetPrimaryEthByConfig(kCard, primary.Get(), 16) || primary.IsText());
    (void)GetEthIsBondedByConfig(kCard, &flag);
    (void)GetEthIsBridgedByConfig(kCard, &flag);
    const fuzz::Buffer name(16);
    HOLDS(!GetEthBondNameByConfig(kCard, name.Get(), 16) || name.IsText());
    HOLDS(!GetEthBridgeNameByConfig(kCard, name.Get(), 16) || name.IsText());
    HOLDS(!GetDefaultEthByConfig(name.Get(), 16) || name.IsText());
}

/// All names of files, at most so many, and no name of a folder or of nothing.
void ListFiles()
{
    constexpr int kRooms[] = {1, 16};
    for (const int room : kRooms) {
        char files[16][64];
        int count = room;
        if (!GetAllNetworkFile(files, &count)) continue;
        HOLDS(count >= 0 && count <= room);
        for (int i = 0; i < count; ++i) HOLDS(strcmp(files[i], "networks") != 0);
    }
}

/// True when every line of the file may stay: one more key has room.
bool HasRoom(const std::string& content)
{
    return fuzz::CountLines(content) <= 8;
}

void SaveOver(const std::string& address, const std::string& gateway)
{
    HOLDS(SetIPByConfig(kCard, address.c_str(), "255.255.255.0"));
    HOLDS(SetGatewayByConfig(kCard, gateway.c_str()));
    HOLDS(SetMtuByConfig(kCard, 1400));
    HOLDS(SetWorkModeByConfig(kCard, netModeBridge));
    HOLDS(SetEthBondNameByConfig(kCard, "bond3"));

    char ip[16];
    char mask[16];
    HOLDS(GetIPByConfig(kCard, ip, mask) && ip == address && strcmp(mask, "255.255.255.0") == 0);
    HOLDS(GetGatewayByConfig(kCard, ip) && ip == gateway);
    int mtu = 0;
    HOLDS(GetMtuByConfig(kCard, &mtu) && mtu == 1400);
    NetWorkMode mode = netModeInvalid;
    HOLDS(GetWorkModeByConfig(kCard, &mode) && mode == netModeBridge);
    HOLDS(GetEthBondNameByConfig(kCard, ip, 16) && strcmp(ip, "bond3") == 0);
}

/// A caller's mistakes: each is refused. Asked once, by the empty input.
void RefusesMistakes()
{
    char text[46];
    char other[46];
    bool flag = false;
    NetWorkMode mode = netModeInvalid;
    NICBondMode bondMode{};
    int count = 1;
    char files[1][64];
    HOLDS(!GetIPByConfig(nullptr, text, other));
    HOLDS(!GetIPByConfig(kCard, nullptr, other));
    HOLDS(!GetIPByConfig(kCard, text, nullptr));
    HOLDS(!GetGatewayByConfig(nullptr, text));
    HOLDS(!GetMtuByConfig(kCard, nullptr));
    HOLDS(!GetIPv6ByConfig(nullptr, text, 46, other, 16));
    HOLDS(!GetIPv6ByConfig(kCard, nullptr, 46, other, 16));
    HOLDS(!GetIPv6ByConfig(kCard, text, 46, nullptr, 16));
    HOLDS(!GetDefaultEthByConfig(nullptr, 16));
    fuzz::Put("/mnt/mtd/Config/networketh2", "PRIO = 0\n");
    HOLDS(!GetDefaultEthByConfig(text, 0));
    HOLDS(!GetWorkModeByConfig(nullptr, &mode));
    HOLDS(!GetWorkModeByConfig(kCard, nullptr));
    HOLDS(!GetEthIsBondedByConfig(kCard, nullptr));
    HOLDS(!GetEthIsBondedByConfig(nullptr, &flag));
    HOLDS(!GetEthBondNameByConfig(nullptr, text, 16));
    HOLDS(!GetBondModeByConfig(kCard, nullptr));
    HOLDS(!GetBondModeByConfig(nullptr, &bondMode));
    HOLDS(!GetBondHashPolicyByConfig(kCard, nullptr));
    HOLDS(!GetAllNetworkFile(nullptr, &count));
    HOLDS(!GetAllNetworkFile(files, nullptr));
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzz::Input input(data, size);
    const uint8_t choice = input.Byte();
    const int part = choice % 3;
    const int trouble =
        choice / 3;  // from 60 on, where it only reads: a read fails, no files; 59: a folder
    const std::string address = fuzz::Address(input);
    const std::string gateway = fuzz::Address(input);
    const std::string content = input.Rest();
    fuzz::FreshWorld();
    if (size == 0) RefusesMistakes();
    for (const char* file : {"/mnt/mtd/Config/networketh2", "/mnt/mtd/Config/networkip6eth2",
                             "/mnt/mtd/Config/network"}) {
        fuzz::Put(file, content);
    }
    if (part != 2 && trouble >= 60 && trouble < 84) fuzz::FailRead(trouble - 60, EIO);
    const bool lists = part == 1 && (trouble == 59 || trouble == 84);
    if (lists) fuzz::Put("/mnt/mtd/Config/networks/file", content);
    if (part != 2 && trouble == 84) fuzz::Remove("/mnt/mtd");
    if (part == 0) ReadAddresses();
    if (part == 1) {
        ReadRoles();
        if (lists) ListFiles();
    }
    if (part == 2 && HasRoom(content)) SaveOver(address, gateway);
    HOLDS(fuzz::OpenHandles() == 0);
    HOLDS(fuzz::HeapBlocks() == 0);
    return 0;
}
