// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "world/State.h"
#include "world/World.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>

namespace fuzz {

namespace {

struct Name {
    std::string path;
    Node* node = nullptr;
};

constexpr ino_t kFirstNumber = 100;
constexpr char kCardTable[] = "/proc/net/dev";
constexpr const char* kTables[] = {kCardTable, "/proc/net/route", "/proc/net/ipv6_route",
                                   "/proc/net/if_inet6", "/proc/net/arp"};

// Names and nodes are kept from input to input for the memory of their texts.
std::vector<Name> names;
size_t nameCount = 0;
std::vector<std::unique_ptr<Node>> nodes;
size_t nodeCount = 0;

bool IsIn(const std::string& path, const char* folder, size_t length)
{
    return path.size() > length && path[length] == '/' &&
           path.compare(0, length, folder, length) == 0;
}

bool IsFolder(const char* path, size_t length)
{
    for (size_t i = 0; i < nameCount; ++i) {
        if (IsIn(names[i].path, path, length)) return true;
    }
    return false;
}

Name* NameOf(const char* path)
{
    const size_t length = strlen(path);
    for (size_t i = 0; i < nameCount; ++i) {
        Name& name = names[i];
        if (name.path.size() == length && memcmp(name.path.data(), path, length) == 0) return &name;
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

Node* Enter(const char* path, Node* node)
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

bool IsTable(const char* path)
{
    return std::any_of(std::begin(kTables), std::end(kTables),
                       [&](const char* table) { return strcmp(table, path) == 0; });
}

Node* NewTable(const char* path)
{
    Node* node = Enter(path, NewNode());
    node->isTable = true;
    return node;
}

bool FolderOfIsThere(const char* path)
{
    const char* end = strrchr(path, '/');
    return end != nullptr && end != path &&
           (IsFolder(path, static_cast<size_t>(end - path)) ||
            NameOf(std::string(path, end).c_str()) != nullptr);
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
        text = *fake::TableText(kCardTable);
    }
    return text;
}

dirent EntryOf(const std::string& path, size_t from, const Node& node)
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

}  // namespace

// ---- for the calls

Node* Find(const char* path)
{
    const size_t length = strlen(path);
    if (length > 1 && path[length - 1] == '/') return Find(std::string(path, length - 1).c_str());
    if (Name* name = NameOf(path)) return name->node;
    if (IsTable(path)) return NewTable(path);
    if (IsFolder(path, length)) {
        static Node folder;
        folder.isFolder = true;
        folder.number = 1;
        folder.links = 2;
        return &folder;
    }
    errno = ENOENT;
    return nullptr;
}

Node* FindOrMake(const char* path)
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

std::vector<dirent> EntriesOf(const char* path)
{
    static const Node self;
    std::vector<dirent> entries = {EntryOf(".", 0, self), EntryOf("..", 0, self)};
    entries[0].d_type = entries[1].d_type = DT_DIR;
    size_t length = strlen(path);
    while (length > 1 && path[length - 1] == '/') --length;
    for (size_t i = 0; i < nameCount; ++i) {
        if (!IsIn(names[i].path, path, length)) continue;

        const dirent entry = EntryOf(names[i].path, length + 1, *names[i].node);
        const bool known = entry.d_type == DT_DIR &&
                           std::any_of(entries.begin(), entries.end(), [&](const dirent& other) {
                               return strcmp(other.d_name, entry.d_name) == 0;
                           });
        if (!known) entries.push_back(entry);
    }
    return entries;
}

void PrintTable(Node* node, const char* path)
{
    if (!node->isTable) return;
    node->text = strcmp(path, kCardTable) == 0 ? CardTable() : *fake::TableText(path);
}

void ResetFiles()
{
    nameCount = 0;
    nodeCount = 0;
    MakeFolder("/mnt/mtd/Config");
    MakeFolder("/tmp");
}

// ---- for the targets

void Put(const std::string& path, const std::string& text)
{
    Name* name = NameOf(path.c_str());
    Node* node = name != nullptr ? name->node : Enter(path.c_str(), NewNode());
    node->isTable = false;
    node->text = text;
}

const std::string& Get(const std::string& path)
{
    static const std::string nothing = "(no file)";
    const Node* node = Find(path.c_str());
    return node == nullptr ? nothing : node->text;
}

bool Exists(const std::string& path)
{
    return Find(path.c_str()) != nullptr;
}

void MakeFolder(const std::string& path)
{
    if (NameOf(path.c_str()) == nullptr) Enter(path.c_str(), NewNode())->isFolder = true;
}

void Link(const std::string& path, const std::string& name)
{
    (void)LinkNode(path.c_str(), name.c_str());
}

void Remove(const std::string& path)
{
    for (size_t i = nameCount; i-- > 0;) {
        if (names[i].path == path || IsIn(names[i].path, path.c_str(), path.size())) {
            Drop(&names[i]);
        }
    }
}

std::vector<std::string> Files(const std::string& start)
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
