// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// What the drivers of bonds and bridges say of themselves in sysfs, of any content.

#include "Fuzz.h"

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

/// Reads members into buffers of exactly 16 bytes.
void ReadMembers(MemberReader read, const char* name)
{
    std::unique_ptr<fuzz::Buffer> buffers[kRoom];
    char* pointers[kRoom];
    for (int i = 0; i < kRoom; ++i) {
        buffers[i] = std::make_unique<fuzz::Buffer>(16);
        pointers[i] = buffers[i]->Get();
    }
    int count = kRoom;
    if (!read(name, pointers, &count)) return;
    HOLDS(count >= 0 && count <= kRoom);
    for (int i = 0; i < count; ++i) HOLDS(buffers[i]->IsText());
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzz::Input input(data, size);
    const std::string port = "p" + input.Text(40, "abcdefghij0123456789.-");
    const std::string content = input.Rest();
    fuzz::FreshWorld();
    fake::kernel.Add("bond0");
    fake::kernel.Add("br0");
    for (const char* attribute : kAttributes) {
        fuzz::Put(std::string("/sys/class/net/bond0/bonding/") + attribute, content);
    }
    fuzz::Remove("/sys/class/net/br0");
    fuzz::Put("/sys/class/net/br0/carrier", content);
    fuzz::Put("/sys/class/net/br0/brif/" + port, "");
    fuzz::Put("/sys/class/net/br0/brif/eth1", "");
    if (size > 0 && data[0] >= 250) fuzz::Remove("/sys");  // cards without drivers

    ReadMembers(Bond_GetBondMembers, "bond0");
    ReadMembers(Bridge_GetBridgeMembers, "br0");
    const fuzz::Buffer active(16);
    HOLDS(!Bond_GetActiveSlave("bond0", active.Get(), 16) || active.IsText());
    (void)Bond_HasMember("bond0", "eth0");
    NICBondMode mode{};
    (void)GetBondMode("bond0", &mode);
    (void)Bridge_IsBridgeExist("br0");
    STPInfo stp{};
    (void)BridgeGetStpInfo("br0", &stp);
    HOLDS(fuzz::HeldMutexes() == 0);
    return 0;
}
