// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Both generations in one C++17 program: they share one saved state.
//
//     mixed                     lists the routes over IPv4 and changes nothing
//     mixed <card> <gateway>    saves a card's gateway by version 2, reads it back by version 3
//
// The library's log goes to standard output too.
#include <Pal/Net3.h>
#include <Pal/NetApi2_0.h>

#include <arpa/inet.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

namespace {

// A control object is counted: its owner takes one reference off.
struct Release {
    void operator()(QV_PAL_NetControl* control) const { control->release(control); }
};
using Control = std::unique_ptr<QV_PAL_NetControl, Release>;

Control MakeControl()
{
    QV_PAL_NetControl* control = nullptr;
    return Control(createNetControl(nullptr, &control) == 0 ? control : nullptr);
}

std::string Text(std::uint32_t address)
{
    std::array<char, INET_ADDRSTRLEN> text{};
    return inet_ntop(AF_INET, &address, text.data(), text.size());
}

int ListRoutes()
{
    const Control control = MakeControl();
    std::array<QV_PAL_RouteTableInfo, 64> routes{};  // `type` 0 asks for IPv4
    int number = routes.size();
    if (!control || control->getAllRouteInfo(control.get(), routes.data(), &number) != 0) return 1;

    for (int i = 0; i < number; i++) {
        const QV_PAL_RouteTableInfo& route = routes[i];
        std::printf("%s mask %s gateway %s over %s\n", Text(route.dst.IPv4addr).c_str(),
                    Text(route.mask).c_str(), Text(route.gw.IPv4addr).c_str(), route.viaDev);
    }
    return 0;
}

int SetGateway(const char* name, const char* gateway)
{
    if (NetSetGatewayEx(name, gateway) != 0) return 1;

    NetInterfaceDesc desc{};
    desc.name = name;
    NetInterface* card = nullptr;
    std::array<char, 16> saved{};
    if (createNetInterface(&desc, &card) != 0 ||
        card->getGateway(card, saved.data(), saved.size()) != 0) {
        return 1;
    }
    std::printf("the gateway of %s is %s\n", name, saved.data());
    return 0;
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc == 1) return ListRoutes();
    if (argc == 3) return SetGateway(argv[1], argv[2]);

    std::fprintf(stderr, "usage: %s [<card> <gateway>]\n", argv[0]);
    return 2;
}
