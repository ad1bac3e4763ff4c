// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// Two cards without routes, and what the route requests log: for the tests of the operations above
// them.

#include "fake/World.h"

#include <cstring>

using Texts = std::vector<std::string>;
using Routes = std::vector<fake::Route>;
using Routes6 = std::vector<fake::Route6>;

constexpr char kTable4[] = "/proc/net/route";
constexpr char kTable6[] = "/proc/net/ipv6_route";
constexpr char kOpenTable4[] = "open /proc/net/route O_RDONLY";
constexpr char kOpenTable6[] = "open /proc/net/ipv6_route O_RDONLY";

/// What may stay open behind any of these operations.
inline const Texts kKept = {"socket", kOpenTable4, kOpenTable6};

/// The line of an attempt to add or to delete.
inline fake::LogLine Adds(const fake::Route& route)
{
    return fake::Info("Route_AddIPv4Route", route.destination + "," + route.gateway + "," +
                                                route.mask + "," + route.card +
                                                "##########Route_AddIPv4Route###########");
}

inline fake::LogLine Deletes(const fake::Route& route)
{
    return fake::Info("Route_DelIPv4Route", route.destination + "," + route.gateway + "," +
                                                route.mask + "," + route.card +
                                                "###########Route_DelIPv4Route##########");
}

/// The line of a route that is found in the table.
inline fake::LogLine Exists(const fake::Route& route)
{
    return fake::Info("Route_IsExistInSys", "this route st.[" + route.destination + "," +
                                                route.gateway + "," + route.mask + "," +
                                                route.card + "]");
}

/// The two lines of a refused request.
inline fake::LogLines Refused(const std::string& operation, int error, const std::string& step,
                              const Texts& texts)
{
    const bool six = operation.find("IPv6") != std::string::npos;
    return {fake::Error(six ? "Route_SetIPv6Route" : "Route_SetIPv4Route",
                        std::string("iotcl failed.[") + strerror(error) + "]"),
            fake::Error(operation, step + " error.dst:" + texts[0] + " gw:" + texts[1] +
                                       " mask:" + texts[2] + " dev:" + texts[3])};
}

inline fake::LogLines Refused(const std::string& operation, int error, const fake::Route& route)
{
    return Refused(operation, error, "Route_SetIPv4Route",
                   {route.destination, route.gateway, route.mask, route.card});
}

inline fake::LogLine CanNotOpen4()
{
    return fake::Error("Route_GetIPv4Route", "Can not open /proc/net/route");
}

inline fake::LogLine CanNotOpen6()
{
    return fake::Error("Route_GetIPv6Route", "Can not open /proc/net/ipv6_route");
}

/// The lines of a card that does not exist beside eth0 and eth1.
inline fake::LogLines UnknownCard(const std::string& name)
{
    return {fake::Info("FindWordInLine", "can not find " + name + " in eth0,eth1,"),
            fake::Error("CheckEthExist", "can not find " + name + " in eth0,eth1,.")};
}

inline fake::LogLines operator+(fake::LogLines left, const fake::LogLines& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

class RouteWorld : public fake::World {
protected:
    void SetUp() override
    {
        World::SetUp();
        fake::kernel.Add("eth0");
        fake::kernel.Add("eth1");
    }

    static Texts RouteRequests() { return fake::TraceOf({"ioctl SIOCADDRT", "ioctl SIOCDELRT"}); }
};
