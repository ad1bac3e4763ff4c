// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Version 2: the route to a card's own network, and the style of routing.

#include "NetApi2_0.h"

#include "CommonApi.h"
#include "RouteWorld.h"

#include <functional>
#include <optional>

using namespace fake;

namespace {

Texts asked;
bool answer = true;

/// Address and mask that every card is told to have; none for the real ones.
std::optional<std::pair<std::string, std::string>> toldAddress;

std::string Call(const std::string& name, const char* dst, const char* gw, const char* mask,
                 const char* viaDev)
{
    return name + " " + dst + " " + gw + " " + mask + " " + viaDev;
}

bool routesAreReal = true;

}  // namespace

extern "C" {

bool __real_RouteAddIPv4(const char* dst, const char* gw, const char* mask, const char* viaDev);

bool __wrap_RouteAddIPv4(const char* dst, const char* gw, const char* mask, const char* viaDev)
{
    asked.push_back(Call("add", dst, gw, mask, viaDev));
    return routesAreReal ? __real_RouteAddIPv4(dst, gw, mask, viaDev) : answer;
}

bool __real_RouteDelIPv4(const char* dst, const char* gw, const char* mask, const char* viaDev);

bool __wrap_RouteDelIPv4(const char* dst, const char* gw, const char* mask, const char* viaDev)
{
    asked.push_back(Call("delete", dst, gw, mask, viaDev));
    return routesAreReal ? __real_RouteDelIPv4(dst, gw, mask, viaDev) : answer;
}

bool __real_NetGetIPbyName(const char* name, char* addr, char* mask);

bool __wrap_NetGetIPbyName(const char* name, char* addr, char* mask)
{
    if (!toldAddress.has_value()) return __real_NetGetIPbyName(name, addr, mask);
    strcpy(addr, toldAddress->first.c_str());
    strcpy(mask, toldAddress->second.c_str());
    return true;
}

bool __real_RouteControl(int disable);

bool __wrap_RouteControl(int disable)
{
    asked.push_back("control " + std::to_string(disable));
    return __real_RouteControl(disable);
}

}  // extern "C"

namespace {

const Route kOwnNetwork = {"10.1.2.0", "0.0.0.0", "255.255.255.128", "eth1"};

/// Two cards, the second with a saved address.
class NetworkWorld : public RouteWorld {
protected:
    void SetUp() override
    {
        RouteWorld::SetUp();
        asked.clear();
        answer = true;
        routesAreReal = true;
        toldAddress.reset();
        Put(CardFile("eth1"), Settings({"HOSTIP = 10.1.2.99", "SUBMASK = 255.255.255.128"}));
        ClearLog();
        ClearTrace();
    }
};

/// One of the two functions, which have the same steps and other messages.
struct Switch {
    std::string name;
    std::function<int32_t(const char*, int32_t)> call;  // card, 0 for adding
    std::string addFails;
    std::string deleteFails;
};

class NetWorkSetEthStatusTest : public NetworkWorld, public testing::WithParamInterface<Switch> {
protected:
    static int32_t Add(const char* card) { return GetParam().call(card, 0); }
    static int32_t Delete(const char* card) { return GetParam().call(card, 1); }
};

TEST_P(NetWorkSetEthStatusTest, AddsAndDeletesTheCardsOwnNetwork)
{
    EXPECT_EQ(Add("eth1"), 0);
    EXPECT_EQ(kernel.routes, Routes{kOwnNetwork});
    EXPECT_EQ(Delete("eth1"), 0);
    EXPECT_EQ(kernel.routes, Routes{});
    EXPECT_EQ(asked, (Texts{"add 10.1.2.0 0.0.0.0 255.255.255.128 eth1",
                            "delete 10.1.2.0 0.0.0.0 255.255.255.128 eth1"}));
    EXPECT_EQ(LogOf(GetParam().name), LogLines{});
}

TEST_P(NetWorkSetEthStatusTest, LeavesTheCardItselfAlone)
{
    kernel.At("eth1").flags = 0;
    EXPECT_EQ(Add("eth1"), 0);
    EXPECT_EQ(Delete("eth1"), 0);
    EXPECT_EQ(kernel.At("eth1").flags, 0);
    EXPECT_EQ(TraceOf({"ioctl SIOCS"}), Texts{});
}

TEST_P(NetWorkSetEthStatusTest, EveryOtherValueDeletes)
{
    routesAreReal = false;
    for (const int32_t value : {1, 2, -1, INT32_MAX, INT32_MIN}) {
        asked.clear();
        EXPECT_EQ(GetParam().call("eth1", value), 0);
        EXPECT_EQ(asked, Texts{"delete 10.1.2.0 0.0.0.0 255.255.255.128 eth1"});
    }
}

TEST_P(NetWorkSetEthStatusTest, AFailureHasItsMessage)
{
    routesAreReal = false;
    answer = false;
    EXPECT_EQ(Add("eth1"), -1);
    EXPECT_EQ(Delete("eth1"), -1);
    EXPECT_EQ(Log(), (LogLines{Error(GetParam().name, GetParam().addFails),
                               Error(GetParam().name, GetParam().deleteFails)}));
}

TEST_P(NetWorkSetEthStatusTest, ARouteThatIsThereCannotBeAdded)
{
    EXPECT_EQ(Add("eth1"), 0);
    EXPECT_EQ(Add("eth1"), -1);
    EXPECT_EQ(kernel.routes, Routes{kOwnNetwork});
}

TEST_P(NetWorkSetEthStatusTest, ACardWithoutAddressHasNoNetwork)
{
    Put(CardFile("eth0"), "");
    EXPECT_EQ(Add("eth0"), -1);
    EXPECT_EQ(Delete("eth0"), -1);
    const LogLine message = Error(GetParam().name, "get eth0 ip mask failed.");
    EXPECT_EQ(LogOf(GetParam().name), (LogLines{message, message}));
    EXPECT_EQ(asked, Texts{});
}

TEST_P(NetWorkSetEthStatusTest, ATextThatIsNoAddressCountsAsZero)
{
    routesAreReal = false;
    const std::pair<std::pair<std::string, std::string>, std::string> rows[] = {
        {{"10.1.2.3", "nonsense"}, "add 0.0.0.0 0.0.0.0 nonsense eth1"},
        {{"nonsense", "255.0.0.0"}, "add 0.0.0.0 0.0.0.0 255.0.0.0 eth1"},
        {{"10.1", "255.255"}, "add 10.0.0.1 0.0.0.0 255.255 eth1"},  // the short forms count
        {{"255.255.255.255", "255.255.255.255"},
         "add 255.255.255.255 0.0.0.0 255.255.255.255 eth1"},
        {{"10.1.2.3", "0.0.0.0"}, "add 0.0.0.0 0.0.0.0 0.0.0.0 eth1"},
    };
    for (const auto& [address, call] : rows) {
        asked.clear();
        toldAddress = address;
        EXPECT_EQ(Add("eth1"), 0);
        EXPECT_EQ(asked, Texts{call});
    }
}

TEST_P(NetWorkSetEthStatusTest, NullIsRefusedInSilence)
{
    EXPECT_EQ(Add(nullptr), -1);
    EXPECT_EQ(Delete(nullptr), -1);
    EXPECT_EQ(asked, Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_P(NetWorkSetEthStatusTest, OnlyTheRequestToTheKernelDecides)
{
    static const Switch* tested;
    static int32_t result;
    static size_t routes;
    tested = &GetParam();
    FailEachCall(
        [] {
            result = tested->call("eth1", 0);
            routes = kernel.routes.size();
        },
        [](const std::string& failed) {
            EXPECT_EQ(routes, result == 0 ? 1U : 0U) << failed;
            EXPECT_EQ(LogOf(tested->name).size(), result == 0 ? 0U : 1U) << failed;
        },
        kKept);
}

const Switch kSwitches[] = {
    {"NetWorkSetEthStatus",
     [](const char* card, int32_t value) { return NetWorkSetEthStatus(card, value); },
     "route error.[eth1,0]", "route error.[eth1,1]"},
    {"NetRouteAddDelete",
     [](const char* card, int32_t value) {
         return NetRouteAddDelete(static_cast<NetRouteOperate>(value), card);
     },
     "RouteAddIPv4 failed.", "RouteDelIPv4 failed."},
};

INSTANTIATE_TEST_SUITE_P(Each, NetWorkSetEthStatusTest, testing::ValuesIn(kSwitches),
                         [](const auto& row) { return row.param.name; });

// ---- NetRouteSetStyle

class NetRouteSetStyleTest : public NetworkWorld {
protected:
    /// Whether a new default card still moves the default route.
    static bool RouteFollows()
    {
        kernel.routes = {{"0.0.0.0", "10.0.0.1", "0.0.0.0", "eth0"}};
        Put(CardFile("eth1"), Settings({"GATEWAYIP = 10.1.2.1"}));
        EXPECT_EQ(NetSetDefaultEth("eth1"), 0);
        return kernel.routes.front().card == "eth1";
    }
};

TEST_F(NetRouteSetStyleTest, BothStylesEndWithRouteChangesLatched)
{
    EXPECT_EQ(NetRouteSetStyle(ROUTESTYLE_SYS), 0);
    EXPECT_EQ(NetRouteSetStyle(ROUTESTYLE_USER), 0);
    EXPECT_EQ(NetRouteSetStyle(static_cast<NetRouteStyleType>(7)), 0);
    EXPECT_EQ(asked, (Texts{"control 0", "control 1", "control 1", "control 1"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NetRouteSetStyleTest, WithoutAStyleTheRouteFollowsTheDefaultCard)
{
    EXPECT_TRUE(RouteFollows());
}

TEST_F(NetRouteSetStyleTest, TheSystemsStyleLeavesTheRouteAlone)
{
    EXPECT_EQ(NetRouteSetStyle(ROUTESTYLE_SYS), 0);
    EXPECT_FALSE(RouteFollows());
}

TEST_F(NetRouteSetStyleTest, TheUsersStyleLeavesTheRouteAlone)
{
    EXPECT_EQ(NetRouteSetStyle(ROUTESTYLE_USER), 0);
    EXPECT_FALSE(RouteFollows());
}

}  // namespace
