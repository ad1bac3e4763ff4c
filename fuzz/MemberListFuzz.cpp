// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Saved members of bonds and bridges and saved edge ports: any list is read within its buffers, and
// what is saved over it comes back.

#include "Fuzz.h"

#include "Config.h"
#include "Support/KeyFile.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>

namespace {

constexpr size_t kNames = 8;
constexpr char kNameCharacters[] = "abcdefghijklmnopqrstuvwxyz0123456789.";

/// Buffers of exactly `nameSize` bytes on the heap, kept from input to input.
struct Names {
    explicit Names(size_t nameSize) : size(nameSize)
    {
        for (size_t i = 0; i < kNames; ++i) {
            buffers[i] = std::make_unique<char[]>(size);
            pointers[i] = buffers[i].get();
        }
    }

    /// For a reading: a bridge's list is read into zeroed buffers.
    char** Zeroed()
    {
        for (char* buffer : pointers) memset(buffer, 0, size);
        return pointers;
    }

    std::vector<std::string> Texts(int count) const
    {
        std::vector<std::string> texts;
        for (int i = 0; i < count; ++i) texts.emplace_back(pointers[i]);
        return texts;
    }

    size_t size;
    std::unique_ptr<char[]> buffers[kNames];
    char* pointers[kNames];
};

bool AreNames(const std::vector<std::string>& names, size_t longest)
{
    return std::all_of(names.begin(), names.end(), [&](const std::string& name) {
        return !name.empty() && name.size() <= longest && name.find(',') == std::string::npos;
    });
}

std::vector<std::string> BondMembers(bool* found)
{
    static Names names(16);
    int count = kNames;
    *found = GetBondMemberByConfig("bond0", names.Zeroed(), &count);
    HOLDS(count >= 0 && count <= static_cast<int>(kNames));
    return *found ? names.Texts(count) : std::vector<std::string>{};
}

std::vector<std::string> BridgeMembers(bool* found)
{
    static Names names(33);
    int count = kNames;
    *found = GetBridgeMemberByConfig("br0", names.Zeroed(), &count);
    HOLDS(count >= 0 && count <= static_cast<int>(kNames));
    return *found ? names.Texts(count) : std::vector<std::string>{};
}

void ReadAll(const std::string& port)
{
    bool found = false;
    HOLDS(AreNames(BondMembers(&found), 15));
    HOLDS(AreNames(BridgeMembers(&found), 32));
    bool trunk = false;
    char bond[] = "bond0";
    (void)IsTrunkBondConfig(bond, &trunk);
    (void)IsEdgePortByconfig("br0", port.c_str());
}

void ReadTree(const std::string& port)
{
    (void)IsEdgePortByconfig("b", port.c_str());
    unsigned char tree = 0;
    HOLDS(!GetBridgeStpModeByConfig("br0", nullptr));
    (void)GetBridgeStpModeByConfig("br0", &tree);
}

void SaveOver(const std::vector<std::string>& members)
{
    const char* pointers[kNames];
    for (size_t i = 0; i < members.size(); ++i) pointers[i] = members[i].c_str();
    const int count = static_cast<int>(members.size());
    bool found = false;

    HOLDS(SetBondMemberByConfig("bond0", pointers, count));
    HOLDS(BondMembers(&found) == members && found);
    HOLDS(SetBridgeMemberByConfig("br0", pointers, count));
    HOLDS(BridgeMembers(&found) == members && found);
}

/// Characters of the saved list of edge ports.
size_t EdgePortsSize()
{
    char list[256] = {};
    (void)GetValueByKey("/mnt/mtd/Config/rsbridgeinit.conf", "SSIF_EDGE[0]", list, sizeof(list));
    return strlen(list);
}

void ChangeEdgePorts(const std::string& port)
{
    constexpr size_t kLineRoom = 239;  // behind "SSIF_EDGE[0] = ": what is longer is cut, as stated
    if (EdgePortsSize() + 1 + port.size() > kLineRoom) {
        (void)AddEdgePortByconfig("br0", port.c_str());
        return;
    }
    if (!IsEdgePortByconfig("br0", port.c_str())) {
        (void)DelEdgePortByconfig("br0", port.c_str());  // nothing to take away
    }
    if (!AddEdgePortByconfig("br0", port.c_str())) return;  // no room

    HOLDS(IsEdgePortByconfig("br0", port.c_str()));
    HOLDS(AddEdgePortByconfig("br0", port.c_str()));
    (void)DelEdgePortByconfig("br0", port.c_str());
}

/// A caller's mistakes: each is refused. Asked once, by the empty input.
void RefusesMistakes()
{
    char name[33] = {};
    char bond[] = "bond0";
    char* names[] = {name, nullptr};
    int count = 2;
    bool flag = false;
    unsigned char tree = 0;
    fuzz::Put("/mnt/mtd/Config/networkbond0", "BONDMEMBERS = eth0,eth1\n");
    HOLDS(!GetBondMemberByConfig("bond0", nullptr, &count));
    HOLDS(!GetBondMemberByConfig("bond0", names, nullptr));
    HOLDS(!GetBondMemberByConfig("bond0", names, &count));
    HOLDS(!IsTrunkBondConfig(nullptr, &flag));
    HOLDS(!IsTrunkBondConfig(bond, nullptr));
    HOLDS(!AddEdgePortByconfig(nullptr, "eth0"));
    HOLDS(!AddEdgePortByconfig("br0", nullptr));
    HOLDS(!DelEdgePortByconfig(nullptr, "eth0"));
    HOLDS(!DelEdgePortByconfig("br0", nullptr));
    HOLDS(!IsEdgePortByconfig(nullptr, "eth0"));
    HOLDS(!IsEdgePortByconfig("br0", nullptr));
    HOLDS(!GetBridgeStpModeByConfig(nullptr, &tree));
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzz::Input input(data, size);
    const uint8_t choice = input.Byte();
    const bool saves = (choice & 1) != 0;
    const int trouble = choice / 2;  // from 120 on, where it only reads: a read fails, no files
    std::vector<std::string> members(static_cast<size_t>(1 + input.Below(kNames)));
    for (std::string& name : members) name = "e" + input.Text(14, kNameCharacters);
    const std::string content = input.Rest();
    fuzz::FreshWorld();
    if (size == 0) RefusesMistakes();
    for (const char* file : {"/mnt/mtd/Config/networkbond0", "/mnt/mtd/Config/networkbr0",
                             "/mnt/mtd/Config/rsbridgeinit.conf"}) {
        fuzz::Put(file, content);
    }
    if (!saves) {
        if (trouble >= 120 && trouble < 127) fuzz::FailRead(trouble - 120, EIO);
        if (trouble == 127) fuzz::Remove("/mnt/mtd/Config");
        ReadAll(members[0]);
        if (trouble >= 100 && trouble < 120) ReadTree(members[0]);
    } else if (fuzz::CountLines(content) <= 8) {
        SaveOver(members);
        ChangeEdgePorts(members[0]);
    }
    HOLDS(fuzz::OpenHandles() == 0);
    HOLDS(fuzz::HeapBlocks() == 0);
    return 0;
}
