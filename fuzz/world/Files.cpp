// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "world/State.h"
#include "world/World.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <string_view>

namespace fuzz {

namespace {

struct Name {
    std::string path;
    Node* node = nullptr;
};

constexpr ino_t kFirstNumber = 100;
constexpr std::string_view kCardTable = "/proc/net/dev";
constexpr std::string_view kTables[] = {kCardTable, "/proc/net/route", "/proc/net/ipv6_route",
                                        "/proc/net/if_inet6", "/proc/net/arp"};

// Names and nodes are kept from input to input for the memory of their texts.
std::vector<Name> names;
size_t nameCount = 0;
std::vector<std::unique_ptr<Node>> nodes;
size_t nodeCount = 0;

bool IsIn(const std::string& path, std::string_view folder)
{
    return path.size() > folder.size() && path[folder.size()] == '/' &&
           path.compare(0, folder.size(), folder) == 0;
}

bool IsFolder(std::string_view path)
{
    for (size_t i = 0; i < nameCount; ++i) {
        if (IsIn(names[i].path, path)) return true;
    }
    return false;
}

/// Paths of one length mostly differ at their end.
bool IsSame(const std::string& path, std::string_view other)
{
    return path.size() == other.size() && path.back() == other.back() && path == other;
}

Name* NameOf(std::string_view path)
{
    for (size_t i = 0; i < nameCount; ++i) {
        if (IsSame(names[i].path, path)) return &names[i];
    }
    return nullptr;
}

Node* NewNode()
{
    if (nodeCount == nodes.size()) nodes.push_back(std::make_unique<Node>());
    Node* node = nodes[nodeCount].get();
    node->text.clear();
    node->number = kFirstNumber + nodeCount++;
    node->links = 0;
    node->isFolder = false;
    node->isTable = false;
    return node;
}

Node* Enter(std::string_view path, Node* node)
{
    if (nameCount == names.size()) names.emplace_back();
    Name& name = names[nameCount++];
    name.path = path;
    name.node = node;
    ++node->links;
    return node;
}

/// The order of names is that of a folder: it may change when one goes.
void Drop(Name* name)
{
    --name->node->links;
    std::swap(*name, names[--nameCount]);
}

bool IsTable(std::string_view path)
{
    return std::find(std::begin(kTables), std::end(kTables), path) != std::end(kTables);
}

Node* NewTable(std::string_view path)
{
    Node* node = Enter(path, NewNode());
    node->isTable = true;
    return node;
}

bool FolderOfIsThere(std::string_view path)
{
    const size_t end = path.rfind('/');
    if (end == std::string_view::npos || end == 0) return false;
    return IsFolder(path.substr(0, end)) || NameOf(path.substr(0, end)) != nullptr;
}

/// The table of the cards, which is asked for most of all: printed when a card has changed.
const std::string& CardTable()
{
    struct Shown {
        std::string name;
        std::string counters;
    };
    static std::vector<Shown> shown;
    static std::string text;
    const auto same = [](const Shown& row, const fake::Card& card) {
        return row.name == card.name && row.counters == card.counters;
    };
    const auto& cards = fake::kernel.cards;
    if (!std::equal(shown.begin(), shown.end(), cards.begin(), cards.end(), same) || text.empty()) {
        shown.clear();
        for (const fake::Card& card : cards) shown.push_back({card.name, card.counters});
        text = *fake::TableText(std::string(kCardTable));
    }
    return text;
}

dirent EntryOf(std::string_view path, size_t from, const Node& node)
{
    dirent entry{};
    const size_t end = std::min(path.find('/', from), path.size());
    const size_t length = std::min(end - from, sizeof(entry.d_name) - 1);
    memcpy(entry.d_name, path.data() + from, length);
    entry.d_ino = node.number;
    entry.d_type = end < path.size() || node.isFolder ? DT_DIR : DT_REG;
    constexpr size_t kStep = 8;
    entry.d_reclen = static_cast<unsigned short>(
        (offsetof(dirent, d_name) + length + 1 + kStep - 1) / kStep * kStep);
    return entry;
}

/// Room for all entries that a folder may have.
size_t EntryRoom(std::string_view folder)
{
    return 2 + static_cast<size_t>(
                   std::count_if(names.begin(), names.begin() + static_cast<ptrdiff_t>(nameCount),
                                 [&](const Name& name) { return IsIn(name.path, folder); }));
}

}  // namespace

// ---- for the calls

Node* Find(std::string_view path)
{
    while (path.size() > 1 && path.back() == '/') path.remove_suffix(1);
    if (Name* name = NameOf(path)) return name->node;
    if (IsTable(path)) return NewTable(path);
    if (IsFolder(path)) {
        static Node folder;
        folder.isFolder = true;
        folder.number = 1;
        folder.links = 2;
        return &folder;
    }
    errno = ENOENT;
    return nullptr;
}

Node* FindOrMake(std::string_view path)
{
    if (Node* node = Find(path)) return node;
    if (!FolderOfIsThere(path)) return nullptr;
    return Enter(path, NewNode());
}

int LinkNode(const char* from, const char* to)
{
    Node* node = Find(from);
    if (node == nullptr) return -1;
    if (Find(to) != nullptr) {
        errno = EEXIST;
        return -1;
    }
    if (!FolderOfIsThere(to)) return -1;
    Enter(to, node);
    return 0;
}

int RenameNode(const char* from, const char* to)
{
    Node* node = Find(from);
    if (node == nullptr) return -1;
    if (!FolderOfIsThere(to)) return -1;
    if (Name* old = NameOf(to)) {
        if (old->node == node) return 0;  // two names of one file stay
        Drop(old);
    }
    NameOf(from)->path = to;
    return 0;
}

int UnlinkNode(const char* path)
{
    Name* name = NameOf(path);
    if (name == nullptr) {
        errno = ENOENT;
        return -1;
    }
    Drop(name);
    return 0;
}

std::vector<dirent> EntriesOf(std::string_view path)
{
    static const Node self;
    while (path.size() > 1 && path.back() == '/') path.remove_suffix(1);
    std::vector<dirent> entries;
    entries.reserve(EntryRoom(path));
    for (const char* name : {".", ".."}) {
        entries.push_back(EntryOf(name, 0, self));
        entries.back().d_type = DT_DIR;
    }
    for (size_t i = 0; i < nameCount; ++i) {
        if (!IsIn(names[i].path, path)) continue;

        const dirent entry = EntryOf(names[i].path, path.size() + 1, *names[i].node);
        const bool known = entry.d_type == DT_DIR &&
                           std::any_of(entries.begin(), entries.end(), [&](const dirent& other) {
                               return strcmp(other.d_name, entry.d_name) == 0;
                           });
        if (!known) entries.push_back(entry);
    }
    return entries;
}

void PrintTable(Node* node, const std::string& path)
{
    if (!node->isTable) return;
    node->text = path == kCardTable ? CardTable() : *fake::TableText(path);
}

void ResetFiles()
{
    nameCount = 0;
    nodeCount = 0;
    MakeFolder("/mnt/mtd/Config");
    MakeFolder("/tmp");
}

// ---- for the targets

void Put(std::string_view path, const std::string& text)
{
    Name* name = NameOf(path);
    Node* node = name != nullptr ? name->node : Enter(path, NewNode());
    node->isTable = false;
    node->text = text;
}

const std::string& Get(std::string_view path)
{
    static const std::string nothing = "(no file)";
    const Node* node = Find(path);
    return node == nullptr ? nothing : node->text;
}

bool Exists(std::string_view path)
{
    return Find(path) != nullptr;
}

void MakeFolder(std::string_view path)
{
    if (NameOf(path) == nullptr) Enter(path, NewNode())->isFolder = true;
}

void Link(const std::string& path, const std::string& name)
{
    (void)LinkNode(path.c_str(), name.c_str());
}

void Remove(std::string_view path)
{
    for (size_t i = nameCount; i-- > 0;) {
        if (names[i].path == path || IsIn(names[i].path, path)) {
            Drop(&names[i]);
        }
    }
}

std::vector<std::string> Files(std::string_view start)
{
    std::vector<std::string> paths;
    for (size_t i = 0; i < nameCount; ++i) {
        const Name& name = names[i];
        if (!name.node->isFolder && name.path.compare(0, start.size(), start) == 0) {
            paths.push_back(name.path);
        }
    }
    return paths;
}

}  // namespace fuzz
