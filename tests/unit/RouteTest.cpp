// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The records of the route requests, and the requests themselves.

#include "Route.h"

#include "fake/World.h"

#include <cstring>
#include <functional>
#include <thread>

#include <arpa/inet.h>
#include <linux/sockios.h>
#include <sys/resource.h>

using namespace fake;

namespace {

using Texts = std::vector<std::string>;
using Routes = std::vector<fake::Route>;
using Routes6 = std::vector<fake::Route6>;

constexpr char kFlush[] = "/proc/sys/net/ipv4/route/flush";

sockaddr Address4(const char* text)
{
    sockaddr_in in{};
    in.sin_family = AF_INET;
    in.sin_addr.s_addr = inet_addr(text);
    sockaddr address{};
    memcpy(&address, &in, sizeof(address));
    return address;
}

bool Same(const sockaddr& left, const sockaddr& right)
{
    return memcmp(&left, &right, sizeof(left)) == 0;
}

std::string Text6(const in6_addr& address)
{
    char text[INET6_ADDRSTRLEN];
    return inet_ntop(AF_INET6, &address, text, sizeof(text));
}

// ---- records

class Route_FillRtentryTest : public World {
protected:
    Route_FillRtentryTest() { memset(&record, 0xEE, sizeof(record)); }

    rtentry record;
};

TEST_F(Route_FillRtentryTest, FillsTheFieldsAndZeroesTheRest)
{
    EXPECT_TRUE(Route_FillRtentry("10.1.0.0", "192.168.1.1", "255.255.0.0", "eth1", &record));
    EXPECT_STREQ(record.rt_dev, "eth1");

    rtentry expected;
    memset(&expected, 0, sizeof(expected));
    expected.rt_dst = Address4("10.1.0.0");
    expected.rt_gateway = Address4("192.168.1.1");
    expected.rt_genmask = Address4("255.255.0.0");
    expected.rt_flags = RTF_UP | RTF_GATEWAY;
    expected.rt_dev = record.rt_dev;
    EXPECT_TRUE(Same(record.rt_dst, expected.rt_dst));
    EXPECT_TRUE(Same(record.rt_gateway, expected.rt_gateway));
    EXPECT_TRUE(Same(record.rt_genmask, expected.rt_genmask));
    EXPECT_EQ(record.rt_flags, expected.rt_flags);
    EXPECT_EQ(record.rt_metric, 0);
    EXPECT_EQ(record.rt_mtu, 0U);
    EXPECT_EQ(record.rt_window, 0U);
    EXPECT_EQ(record.rt_irtt, 0);
    EXPECT_EQ(record.rt_tos, 0);
    EXPECT_EQ(Trace(), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Route_FillRtentryTest, ARefusedDestinationLeavesARecordOfNothingButItsFlag)
{
    EXPECT_FALSE(Route_FillRtentry("10.1", "0.0.0.0", "0.0.0.0.0", "eth1", &record));
    EXPECT_FALSE(Route_FillRtentry("here", "10.1.0.1", "255.0.0.0", "eth1", &record));
    rtentry expected;
    memset(&expected, 0, sizeof(expected));
    expected.rt_flags = RTF_UP;
    EXPECT_EQ(memcmp(&record, &expected, sizeof(record)), 0);
}

TEST_F(Route_FillRtentryTest, NoGatewayLeavesItsFieldEmpty)
{
    EXPECT_TRUE(Route_FillRtentry("10.1.0.0", "0.0.0.0", "255.255.255.0", "eth1", &record));
    EXPECT_EQ(record.rt_flags, RTF_UP);
    EXPECT_TRUE(Same(record.rt_gateway, sockaddr{}));
}

TEST_F(Route_FillRtentryTest, MaskOfAllBitsMakesAHostRoute)
{
    EXPECT_TRUE(Route_FillRtentry("10.1.0.9", "0.0.0.0", "255.255.255.255", "eth1", &record));
    EXPECT_EQ(record.rt_flags, RTF_UP | RTF_HOST);
    EXPECT_TRUE(Same(record.rt_genmask, Address4("255.255.255.255")));

    EXPECT_TRUE(Route_FillRtentry("10.1.0.9", "10.1.0.1", "255.255.255.255", "eth1", &record));
    EXPECT_EQ(record.rt_flags, RTF_UP | RTF_HOST | RTF_GATEWAY);

    EXPECT_TRUE(Route_FillRtentry("10.1.0.9", "0.0.0.0", "255.255.255.254", "eth1", &record));
    EXPECT_EQ(record.rt_flags, RTF_UP);
}

TEST_F(Route_FillRtentryTest, NoMaskLeavesItsFieldEmpty)
{
    EXPECT_TRUE(Route_FillRtentry("0.0.0.0", "10.1.0.1", "0.0.0.0", "eth1", &record));
    EXPECT_EQ(record.rt_flags, RTF_UP | RTF_GATEWAY);
    EXPECT_TRUE(Same(record.rt_dst, Address4("0.0.0.0")));
    EXPECT_TRUE(Same(record.rt_genmask, sockaddr{}));
}

TEST_F(Route_FillRtentryTest, OtherFormsOfZeroAreAddresses)
{
    EXPECT_TRUE(Route_FillRtentry("0", "0", "0", "eth1", &record));
    EXPECT_EQ(record.rt_flags, RTF_UP | RTF_GATEWAY);
    EXPECT_TRUE(Same(record.rt_dst, Address4("0.0.0.0")));
    EXPECT_TRUE(Same(record.rt_gateway, Address4("0.0.0.0")));
    EXPECT_TRUE(Same(record.rt_genmask, Address4("0.0.0.0")));
}

TEST_F(Route_FillRtentryTest, ShortFormsOfAnAddressAreTaken)
{
    EXPECT_TRUE(Route_FillRtentry("10.1", "0x0a000002", "255.255", "eth1", &record));
    EXPECT_TRUE(Same(record.rt_dst, Address4("10.0.0.1")));
    EXPECT_TRUE(Same(record.rt_gateway, Address4("10.0.0.2")));
    EXPECT_TRUE(Same(record.rt_genmask, Address4("255.0.0.255")));
}

TEST_F(Route_FillRtentryTest, TextThatIsNoAddressIsNamed)
{
    EXPECT_FALSE(Route_FillRtentry("10.1.0.256", "x", "y", "eth1", &record));
    EXPECT_FALSE(Route_FillRtentry("10.1.0.0", "x", "y", "eth1", &record));
    EXPECT_FALSE(Route_FillRtentry("10.1.0.0", "0.0.0.0", "y", "eth1", &record));
    EXPECT_FALSE(Route_FillRtentry("", "0.0.0.0", "0.0.0.0", "eth1", &record));
    EXPECT_EQ(Log(), (LogLines{Error("Route_FillRtentry", "incorrect addr.[10.1.0.256]"),
                               Error("Route_FillRtentry", "incorrect gw.[x]"),
                               Error("Route_FillRtentry", "incorrect mask.[y]"),
                               Error("Route_FillRtentry", "incorrect addr.[]")}));
}

TEST_F(Route_FillRtentryTest, NullIsRefusedInSilence)
{
    rtentry before = record;
    EXPECT_FALSE(Route_FillRtentry(nullptr, "0.0.0.0", "0.0.0.0", "eth1", &record));
    EXPECT_FALSE(Route_FillRtentry("0.0.0.0", nullptr, "0.0.0.0", "eth1", &record));
    EXPECT_FALSE(Route_FillRtentry("0.0.0.0", "0.0.0.0", nullptr, "eth1", &record));
    EXPECT_FALSE(Route_FillRtentry("0.0.0.0", "0.0.0.0", "0.0.0.0", nullptr, &record));
    EXPECT_FALSE(Route_FillRtentry("0.0.0.0", "0.0.0.0", "0.0.0.0", "eth1", nullptr));
    EXPECT_EQ(memcmp(&record, &before, sizeof(record)), 0);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Route_FillRtentryTest, NameIsCutToFifteenCharacters)
{
    EXPECT_TRUE(Route_FillRtentry("0.0.0.0", "0.0.0.0", "0.0.0.0", "abcdefghijklmnop", &record));
    EXPECT_STREQ(record.rt_dev, "abcdefghijklmno");
    EXPECT_TRUE(Route_FillRtentry("0.0.0.0", "0.0.0.0", "0.0.0.0", "abcdefghijklmno", &record));
    EXPECT_STREQ(record.rt_dev, "abcdefghijklmno");
    EXPECT_TRUE(Route_FillRtentry("0.0.0.0", "0.0.0.0", "0.0.0.0", "eth1", &record));
    EXPECT_STREQ(record.rt_dev, "eth1");
}

TEST_F(Route_FillRtentryTest, ThreadsDoNotOverwriteEachOthersName)
{
    EXPECT_TRUE(Route_FillRtentry("0.0.0.0", "0.0.0.0", "0.0.0.0", "eth1", &record));
    std::string other;
    std::thread thread([&other] {
        rtentry theirs{};
        Route_FillRtentry("0.0.0.0", "0.0.0.0", "0.0.0.0", "eth2", &theirs);
        other = theirs.rt_dev;
    });
    thread.join();
    EXPECT_EQ(other, "eth2");
    EXPECT_STREQ(record.rt_dev, "eth1");
}

class Route_FillIn6_rtmsgTest : public World {
protected:
    Route_FillIn6_rtmsgTest() { memset(&record, 0xEE, sizeof(record)); }

    void SetUp() override
    {
        World::SetUp();
        kernel.Add("eth0").index = 2;
        kernel.Add("eth1").index = 7;
    }

    in6_rtmsg record;
};

TEST_F(Route_FillIn6_rtmsgTest, FillsTheFieldsAndZeroesTheRest)
{
    EXPECT_TRUE(Route_FillIn6_rtmsg("2001:db8::", "fe80::1", 64, "eth1", &record));
    EXPECT_EQ(Text6(record.rtmsg_dst), "2001:db8::");
    EXPECT_EQ(Text6(record.rtmsg_gateway), "fe80::1");
    EXPECT_EQ(record.rtmsg_dst_len, 64);
    EXPECT_EQ(record.rtmsg_flags, static_cast<uint32_t>(RTF_UP | RTF_GATEWAY));
    EXPECT_EQ(record.rtmsg_ifindex, 7);
    EXPECT_EQ(Text6(record.rtmsg_src), "::");
    EXPECT_EQ(record.rtmsg_src_len, 0);
    EXPECT_EQ(record.rtmsg_type, 0U);
    EXPECT_EQ(record.rtmsg_metric, 0U);
    EXPECT_EQ(record.rtmsg_info, 0U);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Route_FillIn6_rtmsgTest, NoGatewayIsToldByItsText)
{
    EXPECT_TRUE(Route_FillIn6_rtmsg("2001:db8::", "::", 64, "eth1", &record));
    EXPECT_EQ(record.rtmsg_flags, static_cast<uint32_t>(RTF_UP));
    EXPECT_EQ(Text6(record.rtmsg_gateway), "::");

    EXPECT_TRUE(Route_FillIn6_rtmsg("2001:db8::", "0::0", 64, "eth1", &record));
    EXPECT_EQ(record.rtmsg_flags, static_cast<uint32_t>(RTF_UP | RTF_GATEWAY));
}

TEST_F(Route_FillIn6_rtmsgTest, FullPrefixMakesAHostRoute)
{
    EXPECT_TRUE(Route_FillIn6_rtmsg("2001:db8::1", "::", 128, "eth1", &record));
    EXPECT_EQ(record.rtmsg_flags, static_cast<uint32_t>(RTF_UP | RTF_HOST));
    EXPECT_EQ(record.rtmsg_dst_len, 128);

    EXPECT_TRUE(Route_FillIn6_rtmsg("2001:db8::1", "fe80::1", 128, "eth1", &record));
    EXPECT_EQ(record.rtmsg_flags, static_cast<uint32_t>(RTF_UP | RTF_HOST | RTF_GATEWAY));

    EXPECT_TRUE(Route_FillIn6_rtmsg("2001:db8::1", "::", 127, "eth1", &record));
    EXPECT_EQ(record.rtmsg_flags, static_cast<uint32_t>(RTF_UP));

    EXPECT_TRUE(Route_FillIn6_rtmsg("::", "::", 0, "eth1", &record));
    EXPECT_EQ(record.rtmsg_dst_len, 0);
}

TEST_F(Route_FillIn6_rtmsgTest, PrefixOutOfRangeIsRefusedInSilence)
{
    const in6_rtmsg before = record;
    for (const int prefix : {129, -1, 65536, INT32_MIN}) {
        EXPECT_FALSE(Route_FillIn6_rtmsg("2001:db8::", "::", prefix, "eth1", &record)) << prefix;
    }
    EXPECT_EQ(memcmp(&record, &before, sizeof(record)), 0);
    EXPECT_EQ(Trace(), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Route_FillIn6_rtmsgTest, NullIsRefusedInSilence)
{
    EXPECT_FALSE(Route_FillIn6_rtmsg(nullptr, "::", 64, "eth1", &record));
    EXPECT_FALSE(Route_FillIn6_rtmsg("::", nullptr, 64, "eth1", &record));
    EXPECT_FALSE(Route_FillIn6_rtmsg("::", "::", 64, nullptr, &record));
    EXPECT_FALSE(Route_FillIn6_rtmsg("::", "::", 64, "eth1", nullptr));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Route_FillIn6_rtmsgTest, TextThatIsNoAddressIsNamed)
{
    EXPECT_FALSE(Route_FillIn6_rtmsg("10.0.0.0", "x", 64, "eth1", &record));
    EXPECT_FALSE(Route_FillIn6_rtmsg("2001:db8::", "x", 64, "eth1", &record));
    EXPECT_EQ(Log(), (LogLines{Error("Route_FillIn6_rtmsg", "incorrect addr.[10.0.0.0]"),
                               Error("Route_FillIn6_rtmsg", "incorrect gw.[x]")}));
}

TEST_F(Route_FillIn6_rtmsgTest, IndexOfAnUnknownCardIsLeftToTheKernel)
{
    EXPECT_TRUE(Route_FillIn6_rtmsg("2001:db8::", "::", 64, "eth9", &record));
    EXPECT_EQ(record.rtmsg_ifindex, -1);
    EXPECT_EQ(LogOf("Route_FillIn6_rtmsg"), LogLines{});
}

// ---- requests on the control sockets

struct Setter {
    const char* operation;
    const char* socket;
    const char* open;
    std::function<bool(int cmd)> request;  // of a route that the kernel does not have yet
    std::function<bool()> requestNull;
};

std::ostream& operator<<(std::ostream& out, const Setter& setter)
{
    return out << setter.operation;
}

const Setter kSetter4 = {"Route_SetIPv4Route", "socket AF_INET", "socket AF_INET 2 0",
                         [](int cmd) {
                             rtentry record;
                             Route_FillRtentry("10.1.0.0", "0.0.0.0", "255.255.0.0", "eth0",
                                               &record);
                             return Route_SetIPv4Route(cmd, &record);
                         },
                         [] { return Route_SetIPv4Route(SIOCADDRT, nullptr); }};
const Setter kSetter6 = {"Route_SetIPv6Route", "socket AF_INET6", "socket AF_INET6 2 0",
                         [](int cmd) {
                             in6_rtmsg record{};
                             record.rtmsg_ifindex = 2;
                             record.rtmsg_dst_len = 64;
                             return Route_SetIPv6Route(cmd, &record);
                         },
                         [] { return Route_SetIPv6Route(SIOCADDRT, nullptr); }};

class RouteSetterTest : public World, public testing::WithParamInterface<Setter> {
protected:
    void SetUp() override
    {
        World::SetUp();
        kernel.Add("eth0");
    }

    size_t RoutesInTheKernel() const { return kernel.routes.size() + kernel.routes6.size(); }
};

TEST_P(RouteSetterTest, AddsAndDeletesOnOneSocketThatStaysOpen)
{
    EXPECT_TRUE(GetParam().request(SIOCADDRT));
    EXPECT_EQ(Trace(), (Texts{GetParam().socket, "fcntl F_SETFD", "ioctl SIOCADDRT"}));
    EXPECT_EQ(RoutesInTheKernel(), 1U);

    ClearTrace();
    EXPECT_TRUE(GetParam().request(SIOCDELRT));
    EXPECT_EQ(Trace(), Texts{"ioctl SIOCDELRT"});
    EXPECT_EQ(RoutesInTheKernel(), 0U);
    EXPECT_EQ(OpenHandles(), Texts{GetParam().open});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_P(RouteSetterTest, AnyOtherRequestIsRefusedBeforeASocketIsMade)
{
    for (const int cmd : {0, -1, SIOCADDRT - 1, SIOCDELRT + 1, SIOCSIFADDR}) {
        EXPECT_FALSE(GetParam().request(cmd)) << cmd;
    }
    EXPECT_FALSE(GetParam().requestNull());
    EXPECT_EQ(Trace(), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_P(RouteSetterTest, SocketThatCannotBeMadeIsTriedAgain)
{
    Fail("socket", EMFILE);
    EXPECT_FALSE(GetParam().request(SIOCADDRT));
    EXPECT_EQ(TraceOf({"ioctl"}), Texts{});
    EXPECT_EQ(Log(),
              LogLines{Error(GetParam().operation, "open socket error.[Too many open files]")});
    EXPECT_TRUE(GetParam().request(SIOCADDRT));
}

TEST_P(RouteSetterTest, RefusalIsLoggedWithItsReason)
{
    EXPECT_FALSE(GetParam().request(SIOCDELRT));
    EXPECT_EQ(Log(), LogLines{Error(GetParam().operation, "iotcl failed.[No such process]")});
    ClearLog();
    EXPECT_TRUE(GetParam().request(SIOCADDRT));
    EXPECT_FALSE(GetParam().request(SIOCADDRT));
    EXPECT_EQ(Log(), LogLines{Error(GetParam().operation, "iotcl failed.[File exists]")});
    EXPECT_EQ(RoutesInTheKernel(), 1U);
}

INSTANTIATE_TEST_SUITE_P(Families, RouteSetterTest, testing::Values(kSetter4, kSetter6),
                         [](const auto& setter) { return setter.param.operation; });

class Route_SetIPv6RouteTest : public World {};

TEST_F(Route_SetIPv6RouteTest, NeverUsesTheSocketOfIPv4)
{
    kernel.Add("eth0");
    EXPECT_TRUE(kSetter4.request(SIOCADDRT));
    EXPECT_TRUE(kSetter6.request(SIOCADDRT));
    EXPECT_EQ(kernel.routes.size(), 1U);
    EXPECT_EQ(kernel.routes6.size(), 1U);
    EXPECT_EQ(TraceOf({"socket"}), (Texts{"socket AF_INET", "socket AF_INET6"}));
}

// ---- one route

using Change = bool (*)(const char* dst, const char* gw, const char* mask, const char* viaDev);

struct Changer {
    const char* operation;
    Change change;
    const char* info;  // behind the four texts; NULL: no such line
    const char* refused;
    const char* texts[4];  // of a route that can be added, or deleted
};

std::ostream& operator<<(std::ostream& out, const Changer& changer)
{
    return out << changer.operation;
}

constexpr Changer kChangers[] = {
    {"Route_AddIPv4Route",
     Route_AddIPv4Route,
     "##########Route_AddIPv4Route###########",
     "Route_SetIPv4Route",
     {"10.1.0.0", "192.168.1.1", "255.255.0.0", "eth1"}},
    {"Route_DelIPv4Route",
     Route_DelIPv4Route,
     "###########Route_DelIPv4Route##########",
     "Route_SetIPv4Route",
     {"10.9.0.0", "192.168.1.1", "255.255.0.0", "eth1"}},
    {"Route_AddIPv6Route",
     Route_AddIPv6Route,
     nullptr,
     "Route_SetIPv4Route",
     {"2001:db8:1::", "fe80::1", "48", "eth1"}},
    {"Route_DelIPv6Route",
     Route_DelIPv6Route,
     nullptr,
     "Route_SetIPv6Route",
     {"2001:db8:9::", "fe80::1", "48", "eth1"}},
};

class RouteChangerTest : public World, public testing::WithParamInterface<Changer> {
protected:
    void SetUp() override
    {
        World::SetUp();
        kernel.Add("eth0");
        kernel.Add("eth1");
        kernel.routes = {kDirect, kOld};
        kernel.routes6 = {kOld6};
    }

    bool Run(const char* const (&texts)[4]) const
    {
        return GetParam().change(texts[0], texts[1], texts[2], texts[3]);
    }

    /// The lines before the outcome.
    LogLines Start(const char* const (&texts)[4]) const
    {
        if (GetParam().info == nullptr) return {};
        return {Info(GetParam().operation, std::string(texts[0]) + "," + texts[1] + "," + texts[2] +
                                               "," + texts[3] + GetParam().info)};
    }

    LogLine Failed(const std::string& step, const char* const (&texts)[4]) const
    {
        return Error(GetParam().operation, step + " error.dst:" + texts[0] + " gw:" + texts[1] +
                                               " mask:" + texts[2] + " dev:" + texts[3]);
    }

    bool Adds() const { return strstr(GetParam().operation, "Add") != nullptr; }
    bool IsIPv6() const { return strstr(GetParam().operation, "IPv6") != nullptr; }

    const fake::Route kDirect{"192.168.1.0", "0.0.0.0", "255.255.255.0", "eth1"};
    const fake::Route kOld{"10.9.0.0", "192.168.1.1", "255.255.0.0", "eth1"};
    const fake::Route6 kOld6{"2001:db8:9::", 48, "fe80::1", "eth1"};
};

TEST_P(RouteChangerTest, ChangesThatRouteAlone)
{
    EXPECT_TRUE(Run(GetParam().texts));
    Routes routes = {kDirect, kOld};
    Routes6 routes6 = {kOld6};
    if (IsIPv6()) {
        Adds() ? routes6.push_back({"2001:db8:1::", 48, "fe80::1", "eth1"}) : routes6.pop_back();
    } else {
        Adds() ? routes.push_back({"10.1.0.0", "192.168.1.1", "255.255.0.0", "eth1"})
               : routes.pop_back();
    }
    EXPECT_EQ(kernel.routes, routes);
    EXPECT_EQ(kernel.routes6, routes6);
    EXPECT_EQ(Log(), Start(GetParam().texts));
}

TEST_P(RouteChangerTest, DoesNotLookAtTheTable)
{
    EXPECT_TRUE(Run(GetParam().texts));
    EXPECT_EQ(TraceOf({"open", "pread"}), Texts{});
}

TEST_P(RouteChangerTest, NullIsRefusedInSilence)
{
    for (int missing = 0; missing < 4; ++missing) {
        const char* texts[4];
        for (int i = 0; i < 4; ++i) texts[i] = i == missing ? nullptr : GetParam().texts[i];
        EXPECT_FALSE(Run(texts)) << missing;
    }
    EXPECT_EQ(Trace(), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_P(RouteChangerTest, TextThatDoesNotParseNeverReachesTheKernel)
{
    const auto& good = GetParam().texts;
    const char* const texts[4] = {"nowhere", good[1], good[2], good[3]};
    EXPECT_FALSE(Run(texts));
    EXPECT_EQ(Trace(), Texts{});
    LogLines lines = Start(texts);
    lines.push_back(
        Error(IsIPv6() ? "Route_FillIn6_rtmsg" : "Route_FillRtentry", "incorrect addr.[nowhere]"));
    lines.push_back(Failed("Route_FillRtentry", texts));
    EXPECT_EQ(Log(), lines);
}

TEST_P(RouteChangerTest, RefusalOfTheKernelIsTold)
{
    EXPECT_TRUE(Run(GetParam().texts));
    ClearLog();
    const Routes routes = kernel.routes;
    const Routes6 routes6 = kernel.routes6;
    EXPECT_FALSE(Run(GetParam().texts));
    EXPECT_EQ(kernel.routes, routes);
    EXPECT_EQ(kernel.routes6, routes6);
    LogLines lines = Start(GetParam().texts);
    lines.push_back(
        Error(IsIPv6() ? "Route_SetIPv6Route" : "Route_SetIPv4Route",
              Adds() ? "iotcl failed.[File exists]" : "iotcl failed.[No such process]"));
    lines.push_back(Failed(GetParam().refused, GetParam().texts));
    EXPECT_EQ(Log(), lines);
}

TEST_P(RouteChangerTest, FailedCallLeavesTheTableAlone)
{
    bool result = true;
    FailEachCall([&] { result = Run(GetParam().texts); },
                 [&](const std::string& failed) {
                     const bool harmless = failed == "fcntl F_SETFD";
                     const bool noIndex = failed.rfind("ioctl SIOCGIFINDEX", 0) == 0;
                     EXPECT_EQ(result, harmless);
                     if (harmless) return;
                     EXPECT_EQ(kernel.routes, (Routes{kDirect, kOld}));
                     EXPECT_EQ(kernel.routes6, Routes6{kOld6});
                     EXPECT_EQ(Log().back(), Failed(GetParam().refused, GetParam().texts));
                     if (noIndex) {
                         EXPECT_TRUE(
                             Logged(Error("Route_SetIPv6Route", "iotcl failed.[No such device]")));
                     }
                 });
}

INSTANTIATE_TEST_SUITE_P(Routes, RouteChangerTest, testing::ValuesIn(kChangers),
                         [](const auto& changer) { return changer.param.operation; });

class Route_AddIPv6RouteTest : public World {
protected:
    void SetUp() override
    {
        World::SetUp();
        kernel.Add("eth0");
    }
};

TEST_F(Route_AddIPv6RouteTest, PrefixIsReadAsADecimalNumber)
{
    EXPECT_TRUE(Route_AddIPv6Route("0:0:0::0", "fe80::1", "0:0:0::0", "eth0"));
    EXPECT_TRUE(Route_AddIPv6Route("2001:db8:1::", "::", "64/x", "eth0"));
    EXPECT_TRUE(Route_AddIPv6Route("2001:db8:2::", "::", "none", "eth0"));
    EXPECT_TRUE(Route_AddIPv6Route("2001:db8:3::1", "::", "128", "eth0"));
    EXPECT_EQ(kernel.routes6, (Routes6{{"::", 0, "fe80::1", "eth0"},
                                       {"2001:db8:1::", 64, "::", "eth0"},
                                       {"2001:db8:2::", 0, "::", "eth0"},
                                       {"2001:db8:3::1", 128, "::", "eth0"}}));
    EXPECT_EQ(kernel.routes6.back().flags, static_cast<unsigned>(RTF_UP | RTF_HOST));
}

TEST_F(Route_AddIPv6RouteTest, PrefixOutOfRangeFailsTheRecord)
{
    EXPECT_FALSE(Route_AddIPv6Route("2001:db8::", "::", "129", "eth0"));
    EXPECT_FALSE(Route_DelIPv6Route("2001:db8::", "::", "-1", "eth0"));
    EXPECT_EQ(Log(), (LogLines{Error("Route_AddIPv6Route", "Route_FillRtentry error.dst:2001:db8:: "
                                                           "gw::: mask:129 dev:eth0"),
                               Error("Route_DelIPv6Route", "Route_FillRtentry error.dst:2001:db8:: "
                                                           "gw::: mask:-1 dev:eth0")}));
    EXPECT_EQ(kernel.routes6, Routes6{});
}

// ---- the route cache

class Route_Flush_CacheTest : public World {};

TEST_F(Route_Flush_CacheTest, WritesItsTwoBytesAndCloses)
{
    Put(kFlush, "");
    Route_Flush_Cache();
    EXPECT_EQ(Trace(), (Texts{std::string("open ") + kFlush + " O_WRONLY",
                              std::string("write ") + kFlush, std::string("close ") + kFlush}));
    EXPECT_EQ(Get(kFlush), "-1");
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Route_Flush_CacheTest, FileThatCannotBeOpenedIsSilent)
{
    Route_Flush_Cache();
    EXPECT_EQ(Trace(), Texts{std::string("open ") + kFlush + " O_WRONLY"});
    EXPECT_FALSE(Exists(kFlush));
    EXPECT_EQ(Log(), LogLines{});
}

/// Lets a file grow to so many bytes at most.
void LimitFiles(rlim_t bytes)
{
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = bytes;
    setrlimit(RLIMIT_FSIZE, &limit);
}

TEST_F(Route_Flush_CacheTest, ShortWriteIsToldBehindTheClose)
{
    Put(kFlush, "");
    OnCall(std::string("write ") + kFlush, [] { LimitFiles(1); });
    OnCall(std::string("close ") + kFlush, [] { LimitFiles(RLIM_INFINITY); });
    Route_Flush_Cache();
    EXPECT_EQ(Get(kFlush), "-");
    EXPECT_EQ(OpenHandles(), Texts{});
    EXPECT_EQ(Log(), LogLines{Error("Route_Flush_Cache", "can't flush routing cache")});
}

TEST_F(Route_Flush_CacheTest, FailedWriteIsTold)
{
    Put(kFlush, "");
    FailEachCall([] { Route_Flush_Cache(); },
                 [](const std::string& failed) {
                     LogLines lines;
                     if (failed.rfind("write", 0) == 0) {
                         lines = {Error("Route_Flush_Cache", "can't flush routing cache")};
                     }
                     EXPECT_EQ(Log(), lines);
                 },
                 {});
}

}  // namespace
