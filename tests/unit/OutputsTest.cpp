// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// What a failure of the kernel access leaves of the caller's outputs: all of it.

#include "Base.h"
#include "Network.h"
#include "Network6.h"

#include "fake/World.h"

#include <cstddef>
#include <cstring>

using namespace fake;

namespace {

constexpr char kMarker = '#';

struct Outputs {
    alignas(std::max_align_t) char bytes[1024];

    Outputs() { memset(bytes, kMarker, sizeof(bytes)); }

    template <class Number>
    Number* As()
    {
        return reinterpret_cast<Number*>(bytes);
    }

    bool Untouched() const
    {
        return std::string(bytes, sizeof(bytes)) == std::string(sizeof(bytes), kMarker);
    }
};

struct Getter {
    const char* operation;
    bool (*get)(const char* card, Outputs& outputs);
};

void PrintTo(const Getter& getter, std::ostream* out)
{
    *out << getter.operation;
}

class OutputsOfAFailureTest : public World, public testing::WithParamInterface<Getter> {
protected:
    void SetUp() override
    {
        World::SetUp();
        Card& card = kernel.Add("eth0");
        card.address = "10.0.0.2";
        card.settings = ethtool_cmd{};
        card.driver = "sim Switch drv";
        card.addresses6 = {{"2001:db8::7", 64, 0}, {"fe80::7", 64, 32}};
        Put("/mnt/mtd/Config/poeMode.conf", "eth0 = 1\n");
    }
};

TEST_P(OutputsOfAFailureTest, AreWrittenByASuccess)
{
    Outputs outputs;
    EXPECT_TRUE(GetParam().get("eth0", outputs));
    EXPECT_FALSE(outputs.Untouched());
}

TEST_P(OutputsOfAFailureTest, AreAsTheyWereWhateverFails)
{
    static bool done = false;
    static Outputs outputs;
    FailEachCall(
        [] {
            outputs = Outputs();
            done = GetParam().get("eth0", outputs);
        },
        [](const std::string&) { EXPECT_NE(outputs.Untouched(), done); });
}

TEST_P(OutputsOfAFailureTest, AreAsTheyWereWithoutACard)
{
    kernel.cards.clear();
    Remove("/mnt/mtd/Config/poeMode.conf");
    Outputs outputs;
    EXPECT_FALSE(GetParam().get("eth9", outputs));
    EXPECT_FALSE(GetParam().get(nullptr, outputs));
    EXPECT_TRUE(outputs.Untouched());
}

// `Net_GetIPbyName` may have stored the address before it fails at the mask; `Net_GetEthtoolInfo`
// sets the command of the caller's record; the listings clear the caller's names first. They say
// so.
const Getter kGetters[] = {
    {"Net_GetIPbyName_mask",
     [](const char* card, Outputs& outputs) {
         char address[16];
         return Net_GetIPbyName(card, address, outputs.bytes);
     }},
    {"Net_GetMacbyName",
     [](const char* card, Outputs& outputs) { return Net_GetMacbyName(card, outputs.bytes); }},
    {"Net_GetMtubyName",
     [](const char* card, Outputs& outputs) { return Net_GetMtubyName(card, outputs.As<int>()); }},
    {"Net_GetLinkSpeed",
     [](const char* card, Outputs& outputs) { return Net_GetLinkSpeed(card, outputs.As<int>()); }},
    {"Net_GetDataStat",
     [](const char* card, Outputs& outputs) {
         return Net_GetDataStat(card, outputs.As<NetDataStat>());
     }},
    {"Net6_GetAddressInfo",
     [](const char* card, Outputs& outputs) {
         return Net6_GetAddressInfo(card, outputs.bytes, 40, outputs.bytes + 40, 8, 32);
     }},
    {"Net6_GetIPv6byName",
     [](const char* card, Outputs& outputs) {
         return Net6_GetIPv6byName(card, outputs.bytes, 40, outputs.bytes + 40, 8);
     }},
    {"Net6_GetLinkLocalAddressIpv6",
     [](const char* card, Outputs& outputs) {
         return Net6_GetLinkLocalAddressIpv6(card, outputs.bytes, 44);
     }},
    {"GetSwitchInterface",
     [](const char* card, Outputs& outputs) {
         return card != nullptr && GetSwitchInterface(outputs.bytes, 16);
     }},
};

INSTANTIATE_TEST_SUITE_P(Getters, OutputsOfAFailureTest, testing::ValuesIn(kGetters),
                         [](const auto& getter) { return std::string(getter.param.operation); });

TEST(OutputOfAMalformedAddress, IsAsItWas)
{
    Outputs outputs;
    EXPECT_FALSE(Net6_GetLinkLocalFromMac(outputs.bytes, 40, "00:11:22:33:44"));
    EXPECT_FALSE(Net6_GetLinkLocalFromMac(outputs.bytes, 40, nullptr));
    EXPECT_TRUE(outputs.Untouched());
}

}  // namespace
