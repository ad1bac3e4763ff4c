// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "world/Tools.h"

#include "world/World.h"

#include <algorithm>
#include <sstream>

#include <net/if.h>

namespace fuzz {

namespace {

using Words = std::vector<std::string>;

constexpr char kCards[] = "/sys/class/net/";
constexpr char kSlaves[] = "/bonding/slaves";

Words WordsOf(const std::string& command)
{
    constexpr char kBlanks[] = " \t\n\v\f\r";
    Words words;
    for (size_t at = 0; (at = command.find_first_not_of(kBlanks, at)) != std::string::npos;) {
        const size_t end = std::min(command.find_first_of(kBlanks, at), command.size());
        words.emplace_back(command, at, end - at);
        at = end;
    }
    return words;
}

std::string Of(const std::string& master)
{
    return kCards + master;
}

std::string SlavesOf(const std::string& bond)
{
    return Of(bond) + kSlaves;
}

bool IsBridge(const std::string& name)
{
    return Exists(Of(name) + "/brif");
}

bool IsBond(const std::string& name)
{
    return Exists(SlavesOf(name));
}

void SetSlaves(const std::string& bond, const Words& slaves)
{
    std::string text;
    for (const std::string& slave : slaves) text += (text.empty() ? "" : " ") + slave;
    Put(SlavesOf(bond), text.empty() ? "" : text + "\n");
}

// ---- tools

void Ifconfig(const Words& words)
{
    fake::Card* card = fake::kernel.Find(words[1]);
    if (card == nullptr) return;
    for (size_t i = 2; i < words.size(); ++i) {
        if (words[i] == "up") card->flags = static_cast<short>(card->flags | IFF_UP);
        if (words[i] == "down") card->flags = static_cast<short>(card->flags & ~IFF_UP);
        if (words[i] == "0.0.0.0") card->address.clear();
        if (words[i] == "ether" && i + 1 < words.size()) card->mac = words[i + 1];
    }
}

void Ifenslave(const Words& words)
{
    const bool takesOut = words[1] == "-d";
    const size_t first = takesOut ? 2 : 1;
    if (words.size() <= first || !IsBond(words[first])) return;
    Words slaves = WordsOf(Get(SlavesOf(words[first])));
    for (size_t i = first + 1; i < words.size(); ++i) {
        const auto place = std::find(slaves.begin(), slaves.end(), words[i]);
        if (takesOut) {
            if (place != slaves.end()) slaves.erase(place);
        } else if (fake::kernel.Find(words[i]) != nullptr && MasterOf(words[i]).empty()) {
            slaves.push_back(words[i]);
        }
    }
    SetSlaves(words[first], slaves);
}

void AddBridge(const std::string& name)
{
    if (fake::kernel.Find(name) != nullptr || name.size() >= IFNAMSIZ) return;
    fake::kernel.Add(name);
    Put(Of(name) + "/carrier", "1\n");
    MakeFolder(Of(name) + "/brif");
}

void DeleteBridge(const std::string& name)
{
    const fake::Card* card = fake::kernel.Find(name);
    if (!IsBridge(name) || card == nullptr || (card->flags & IFF_UP) != 0) return;
    fake::kernel.cards.remove_if([&](const fake::Card& one) { return one.name == name; });
    auto& routes = fake::kernel.routes;
    routes.erase(std::remove_if(routes.begin(), routes.end(),
                                [&](const fake::Route& route) { return route.card == name; }),
                 routes.end());
    Remove(Of(name));
}

void Brctl(const Words& words)
{
    if (words.size() < 3) return;
    const std::string& bridge = words[2];
    if (words[1] == "addbr") AddBridge(bridge);
    if (words[1] == "delbr") DeleteBridge(bridge);
    if (words.size() < 4 || !IsBridge(bridge)) return;
    const std::string& port = words[3];
    if (words[1] == "delif") Remove(Of(bridge) + "/brif/" + port);
    if (words[1] == "addif" && fake::kernel.Find(port) != nullptr && MasterOf(port).empty()) {
        Put(Of(bridge) + "/brif/" + port, "");
    }
}

void CarryOut(const std::string& command)
{
    const Words words = WordsOf(command);
    if (words.size() < 2) return;
    if (words[0] == "ifconfig") Ifconfig(words);
    if (words[0] == "ifenslave") Ifenslave(words);
    if (words[0] == "brctl") Brctl(words);
}

}  // namespace

void HaveTools()
{
    OnCommand(CarryOut);
}

void AddBond(const std::string& name)
{
    fake::kernel.Add(name);
    for (const char* attribute :
         {"mode", "active_slave", "xmit_hash_policy", "primary", "miimon"}) {
        Put(Of(name) + "/bonding/" + attribute, "");
    }
    SetSlaves(name, {});
}

std::string MasterOf(const std::string& card)
{
    static std::string path;  // kept for its memory: this is asked for most of all
    for (const fake::Card& master : fake::kernel.cards) {
        path.assign(kCards).append(master.name).append("/brif/").append(card);
        if (Exists(path)) return master.name;
        path.assign(kCards).append(master.name).append(kSlaves);
        if (!Exists(path)) continue;
        const Words slaves = WordsOf(Get(path));
        if (std::find(slaves.begin(), slaves.end(), card) != slaves.end()) return master.name;
    }
    return "";
}

std::string KernelText()
{
    std::ostringstream text;
    for (const fake::Card& card : fake::kernel.cards) {
        text << card.name << " " << card.address << "/" << card.mask << " mtu " << card.mtu << " "
             << ((card.flags & IFF_UP) != 0 ? "up" : "down") << " in " << MasterOf(card.name)
             << "\n";
    }
    std::vector<std::string> routes;
    for (const fake::Route& route : fake::kernel.routes) {
        std::ostringstream line;
        line << route;
        routes.push_back(line.str());
    }
    std::sort(routes.begin(), routes.end());
    for (const std::string& route : routes) text << route << "\n";
    return text.str();
}

}  // namespace fuzz
