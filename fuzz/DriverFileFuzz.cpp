// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// What the drivers of bonds and bridges say of themselves in sysfs, of any content.

#include "Fuzz.h"

#include "Base.h"
#include "Bond.h"
#include "Bridge.h"
#include "CommonApi.h"

#include <cstring>
#include <memory>

namespace {

constexpr const char* kAttributes[] = {"slaves",           "mode",    "active_slave",
                                       "xmit_hash_policy", "primary", "miimon"};
constexpr int kRoom = 4;

using MemberReader = bool (*)(const char*, char**, int*);

/// Reads at most so many members into buffers of exactly 16 bytes.
void ReadMembers(MemberReader read, const char* name, int room)
{
    std::unique_ptr<fuzz::Buffer> buffers[kRoom];
    char* pointers[kRoom];
    for (int i = 0; i < kRoom; ++i) {
        buffers[i] = std::make_unique<fuzz::Buffer>(16);
        pointers[i] = buffers[i]->Get();
    }
    int count = room;
    if (!read(name, pointers, &count)) return;
    HOLDS(count >= 0 && count <= room);
    for (int i = 0; i < count; ++i) HOLDS(buffers[i]->IsText());
}

/// A word is found where it stands between separators, and nothing where there is none.
void FindsWords(std::string line)
{
    line.resize(strlen(line.c_str()));
    const char* found = FindWordInLine(line.data(), "eth0", ' ');
    HOLDS(found == nullptr || strncmp(found, "eth0", 4) == 0);
    HOLDS(found == nullptr || found == line.data() || found[-1] == ' ');
    HOLDS(FindWordInLine(line.data(), "", ' ') == nullptr);
    HOLDS(FindWordInLine(line.data(), nullptr, ' ') == nullptr);
    HOLDS(FindWordInLine(nullptr, "eth0", ' ') == nullptr);
}

/// A caller's mistakes: each is refused. Asked once, by the empty input.
void RefusesMistakes()
{
    char text[16];
    char* members[] = {text, nullptr};
    int count = 2;
    int one = 1;
    HOLDS(!Bond_HasMember(nullptr, "eth0"));
    HOLDS(!Bond_HasMember("bond0", nullptr));
    HOLDS(!Bond_GetActiveSlave(nullptr, text, 16));
    HOLDS(!Bond_GetActiveSlave("bond0", nullptr, 16));
    HOLDS(!Bond_GetActiveSlave("bond0", text, 0));
    HOLDS(!Bond_GetBondMembers(nullptr, members, &one));
    HOLDS(!Bond_GetBondMembers("bond0", members, &count));
    HOLDS(!Bond_GetBondMembers("bond0.1", members, &one));
    HOLDS(!Bond_GetBondMembers("bond0.1", nullptr, nullptr));
    fuzz::Put("/sys/class/net/bond0/bonding/slaves", "eth0\n");
    HOLDS(Bond_GetBondMembers("bond0", nullptr, nullptr));
    HOLDS(!Bond_GetBondMembers("bond0", members, nullptr));
    HOLDS(!Bridge_GetBridgeMembers(nullptr, members, &one));
    HOLDS(!Bridge_GetBridgeMembers("br0", nullptr, &one));
    HOLDS(!Bridge_GetBridgeMembers("br0", members, nullptr));
    HOLDS(!Bridge_GetBridgeMembers("br0", members, &count));
    HOLDS(!Bridge_IsBridgeExist(nullptr));
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzz::Input input(data, size);
    const std::string port = "p" + input.Text(40, "abcdefghij0123456789.-");
    const std::string content = input.Rest();
    fuzz::FreshWorld();
    if (size == 0) RefusesMistakes();
    fake::kernel.Add("bond0");
    fake::kernel.Add("br0");
    for (const char* attribute : kAttributes) {
        fuzz::Put(std::string("/sys/class/net/bond0/bonding/") + attribute, content);
    }
    fuzz::Remove("/sys/class/net/br0");
    fuzz::Put("/sys/class/net/br0/carrier", content);
    fuzz::Put("/sys/class/net/br0/brif/" + port, "");
    fuzz::Put("/sys/class/net/br0/brif/eth1", "");
    fuzz::Put("/sys/class/net/br0/brif/." + port, "");
    const int trouble = size > 0 ? data[0] : 0;
    if (trouble >= 240 && trouble < 250) fuzz::Remove("/sys/class/net/br0/carrier");
    if (trouble >= 250) fuzz::Remove("/sys");  // cards without drivers

    const int room = trouble >= 230 && trouble < 240 ? 1 : kRoom;
    ReadMembers(Bond_GetBondMembers, "bond0", room);
    ReadMembers(Bridge_GetBridgeMembers, "br0", room);
    const fuzz::Buffer active(16);
    HOLDS(!Bond_GetActiveSlave("bond0", active.Get(), 16) || active.IsText());
    (void)Bond_HasMember("bond0", "eth0");
    HOLDS(!Bond_HasMember("bond0", ""));
    (void)Bridge_IsBridgeExist("no0");
    FindsWords(content);
    NICBondMode mode{};
    (void)GetBondMode("bond0", &mode);
    (void)Bridge_IsBridgeExist("br0");
    STPInfo stp{};
    (void)BridgeGetStpInfo("br0", &stp);
    HOLDS(fuzz::HeldMutexes() == 0);
    return 0;
}
