// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Program.h"

#include <algorithm>
#include <sstream>

namespace device {

namespace {

Outcome Start(const std::string& program, const std::string& arguments)
{
    const Result result = Try(program + " " + arguments);
    output::Parts parts = output::TakeApart(result.output);
    return {result.status, std::move(parts.log), std::move(parts.plain)};
}

size_t Count(const Texts& texts, const std::string& part)
{
    return std::count_if(texts.begin(), texts.end(), [&part](const std::string& text) {
        return text.find(part) != std::string::npos;
    });
}

}  // namespace

bool Outcome::Says(const LogLine& line) const
{
    return std::find(log.begin(), log.end(), line) != log.end();
}

bool Outcome::Finished() const
{
    return !log.empty() && log.back().operation == "CommonMain" &&
           log.back().text.find("is finished.") != std::string::npos;
}

Outcome Lanrise(const std::string& arguments)
{
    return Start(VORLIX_LANRISE, arguments);
}

Outcome LanriseWithBackup(const std::string& arguments)
{
    return Start(VORLIX_LANRISE_WITH_BACKUP, arguments);
}

void Save(const std::string& card, int net, const Texts& lines)
{
    const std::string prefix = "10.0." + std::to_string(net);
    Put(CardFile(card), Lines({"HOSTIP = " + prefix + ".10", "SUBMASK = 255.255.255.0",
                               "GATEWAYIP = " + prefix + ".1", "MTU = 1500"}) +
                            Lines(lines));
}

std::string Saved(const std::string& card, const std::string& key)
{
    std::istringstream file(Get(CardFile(card)));
    const std::string start = key + " = ";
    for (std::string line; std::getline(file, line);) {
        if (line.rfind(start, 0) == 0) return line.substr(start.size());
    }
    return "";
}

Texts KernelState()
{
    Texts state = Routes();
    for (const auto& record : Ip("link show")) {
        const auto name = record.find("ifname");
        if (name == record.end() || name->second == "lo") continue;

        const std::string& card = name->second;
        std::string text = card + (IsUp(card) ? " up" : " down") + " mtu " + record.at("mtu");
        text += " " + record.at("address");
        for (const std::string& address : Addresses(card)) text += " " + address;
        for (const std::string& address : Addresses6(card)) text += " " + address;
        state.push_back(text);
    }
    return state;
}

void ExpectOnNetwork(const Outcome& boot, const Texts& cards)
{
    EXPECT_EQ(boot.status, 0);
    EXPECT_TRUE(boot.Finished());
    const Texts routes = Routes();
    for (const std::string& card : cards) {
        EXPECT_TRUE(IsUp(card)) << card;
        EXPECT_EQ(Addresses(card).size(), 1U) << card;
        const std::string over = "/24 dev " + card;
        EXPECT_EQ(std::count_if(routes.begin(), routes.end(),
                                [&over](const std::string& route) {
                                    return route.size() > over.size() &&
                                           route.substr(route.size() - over.size()) == over;
                                }),
                  1)
            << "routes over " << card;
    }
    EXPECT_EQ(Count(routes, "default via "), 1U) << testing::PrintToString(routes);
}

}  // namespace device
