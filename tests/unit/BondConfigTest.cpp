// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The saved settings of a bond: mode, hash policy, primary member.

#include "Config.h"

#include "SettingLog.h"
#include "SettingRows.h"

#include <climits>

using namespace fake;

namespace {

constexpr char kBondFile[] = "/mnt/mtd/Config/networkbond0";

std::string ReadBondMode()
{
    auto mode = static_cast<NICBondMode>(77);
    const bool result = GetBondModeByConfig("bond0", &mode);
    return (result ? "1 " : "0 ") + std::to_string(static_cast<int>(mode));
}

std::string ReadHashPolicy()
{
    unsigned char lacp = 77;
    const bool result = GetBondHashPolicyByConfig("bond0", &lacp);
    return (result ? "1 " : "0 ") + std::to_string(lacp);
}

std::string ReadPrimary(int len = 16)
{
    char name[16] = "before";
    const bool result = GetPrimaryEthByConfig("bond0", name, len);
    return (result ? "1 " : "0 ") + std::string(name);
}

// ---- what all settings have in common

INSTANTIATE_TEST_SUITE_P(
    OfABond, EverySavedSettingTest,
    testing::Values(SavedSetting{"BondMode",
                                 [] { return SetBondModeByConfig("bond0", nicBond802_3ad); },
                                 kBondFile,
                                 {"BONDMODE = 4"}},
                    SavedSetting{
                        "NoBondMode",
                        [] { return SetBondModeByConfig("bond0", static_cast<NICBondMode>(-1)); },
                        kBondFile,
                        {"BONDMODE = "}},
                    SavedSetting{"HashPolicy",
                                 [] { return SetBondHashPolicyByConfig("bond0", 2); },
                                 kBondFile,
                                 {"LACP = 2"}},
                    SavedSetting{"Primary",
                                 [] { return SetPrimaryEthByConfig("bond0", "eth1"); },
                                 kBondFile,
                                 {"BONDPRIMARY = eth1"}}),
    RowName<SavedSetting>);

INSTANTIATE_TEST_SUITE_P(
    OfABond, EveryReadSettingTest,
    testing::Values(
        ReadSetting{"BondMode", ReadBondMode, kBondFile, {"BONDMODE = 4"}, "1 4", "0 77"},
        ReadSetting{"HashPolicy", ReadHashPolicy, kBondFile, {"LACP = 2"}, "1 2", "0 77"},
        ReadSetting{"Primary",
                    [] { return ReadPrimary(); },
                    kBondFile,
                    {"BONDPRIMARY = eth1"},
                    "1 eth1",
                    "0 before"}),
    RowName<ReadSetting>);

class BondSettingsTest : public World {};

TEST_F(BondSettingsTest, NullIsRefusedBeforeAnythingIsTouched)
{
    NICBondMode mode = nicBondBalanceRR;
    unsigned char byte = 0;
    char name[16] = "eth0";

    EXPECT_FALSE(GetBondModeByConfig(nullptr, &mode));
    EXPECT_FALSE(GetBondModeByConfig("bond0", nullptr));
    EXPECT_FALSE(SetBondModeByConfig(nullptr, nicBondBalanceRR));
    EXPECT_FALSE(SetBondModeByConfig(nullptr, static_cast<NICBondMode>(-1)));
    EXPECT_FALSE(GetBondHashPolicyByConfig(nullptr, &byte));
    EXPECT_FALSE(GetBondHashPolicyByConfig("bond0", nullptr));
    EXPECT_FALSE(SetBondHashPolicyByConfig(nullptr, 1));
    EXPECT_FALSE(SetPrimaryEthByConfig(nullptr, "eth0"));
    EXPECT_FALSE(SetPrimaryEthByConfig("bond0", nullptr));
    EXPECT_FALSE(GetPrimaryEthByConfig(nullptr, name, 16));
    EXPECT_FALSE(GetPrimaryEthByConfig("bond0", nullptr, 16));
    EXPECT_EQ(Trace(), kNothing);
    EXPECT_EQ(Log(), kSilence);
}

// ---- bond mode

class GetBondModeByConfigTest : public World {};

TEST_F(GetBondModeByConfigTest, EveryNumberOfTheFileIsHandedOut)
{
    const std::vector<std::pair<std::string, int>> numbers = {
        {"0", 0}, {"6", 6}, {"7", 7}, {"4d", 4}, {"012", 12}, {"999999999", 999999999}};
    for (const auto& [text, number] : numbers) {
        Put(kBondFile, "BONDMODE = " + text + "\n");
        EXPECT_EQ(ReadBondMode(), "1 " + std::to_string(number));
    }
    EXPECT_EQ(Log(), kSilence);
}

TEST_F(GetBondModeByConfigTest, WhatIsNoNumberIsNone)
{
    for (const char* text : {"x", "-1", "-4", "balance-rr"}) {
        Put(kBondFile, std::string("BONDMODE = ") + text + "\n");
        EXPECT_EQ(ReadBondMode(), "0 -1") << text;
    }
    EXPECT_EQ(Log(), kSilence);
}

TEST_F(GetBondModeByConfigTest, HasAtMostFifteenCharacters)
{
    Put(kBondFile, "BONDMODE = 000000000000004\n");
    EXPECT_EQ(ReadBondMode(), "1 4");
    Put(kBondFile, "BONDMODE = 0000000000000004\n");
    EXPECT_EQ(ReadBondMode(), "0 77");
    EXPECT_EQ(Log(), LogLines{TooLong("0000000000000004")});
}

class SetBondModeByConfigTest : public World {};

TEST_F(SetBondModeByConfigTest, NoneIsAnEmptyValueThatReadsAsAFailure)
{
    Put(kBondFile, "BONDMODE = 1\n");
    EXPECT_TRUE(SetBondModeByConfig("bond0", static_cast<NICBondMode>(-1)));
    EXPECT_EQ(Get(kBondFile), "BONDMODE = \n");
    EXPECT_EQ(Log(), kSilence);
    EXPECT_EQ(ReadBondMode(), "0 77");
    EXPECT_EQ(Log(), LogLines{EmptyValue("BONDMODE", kBondFile)});
}

TEST_F(SetBondModeByConfigTest, EveryOtherNumberIsSavedWhole)
{
    Put(kBondFile, "");
    for (const int mode : {0, 1, 2, 3, 4, 5, 6, 7, -2, INT_MAX, INT_MIN}) {
        EXPECT_TRUE(SetBondModeByConfig("bond0", static_cast<NICBondMode>(mode)));
        EXPECT_EQ(Get(kBondFile), "BONDMODE = " + std::to_string(mode) + "\n");
    }
    EXPECT_EQ(Log(), kSilence);
}

// ---- hash policy

class BondHashPolicyByConfigTest : public World {};

TEST_F(BondHashPolicyByConfigTest, WhatBeginsWithZeroToFourIsRead)
{
    const std::vector<std::pair<std::string, int>> numbers = {{"0", 0},  {"1", 1},   {"4", 4},
                                                              {"4x", 4}, {"47", 47}, {"300", 44}};
    for (const auto& [text, number] : numbers) {
        Put(kBondFile, "LACP = " + text + "\n");
        EXPECT_EQ(ReadHashPolicy(), "1 " + std::to_string(number));
    }
    EXPECT_EQ(Log(), kSilence);
}

TEST_F(BondHashPolicyByConfigTest, WhatDoesNotIsZero)
{
    for (const char* text : {"5", "7", "9", "/", "-1", "x"}) {
        Put(kBondFile, std::string("LACP = ") + text + "\n");
        EXPECT_EQ(ReadHashPolicy(), "0 0") << text;
    }
    EXPECT_EQ(Log(), kSilence);
}

TEST_F(BondHashPolicyByConfigTest, HasAtMostFifteenCharacters)
{
    Put(kBondFile, "LACP = 000000000000002\n");
    EXPECT_EQ(ReadHashPolicy(), "1 2");
    Put(kBondFile, "LACP = 0000000000000002\n");
    EXPECT_EQ(ReadHashPolicy(), "0 77");
    EXPECT_EQ(Log(), LogLines{TooLong("0000000000000002")});
}

TEST_F(BondHashPolicyByConfigTest, EveryByteIsSaved)
{
    Put(kBondFile, "");
    for (const int lacp : {0, 4, 7, 128, 255}) {
        EXPECT_TRUE(SetBondHashPolicyByConfig("bond0", static_cast<unsigned char>(lacp)));
        EXPECT_EQ(Get(kBondFile), "LACP = " + std::to_string(lacp) + "\n");
    }
}

// ---- primary member

class PrimaryEthByConfigTest : public World {};

TEST_F(PrimaryEthByConfigTest, FillsItsBufferToTheLastByte)
{
    Put(kBondFile, "BONDPRIMARY = eth1\n");
    EXPECT_EQ(ReadPrimary(5), "1 eth1");
    EXPECT_EQ(Log(), kSilence);
    EXPECT_EQ(ReadPrimary(4), "0 before");
    EXPECT_EQ(ReadPrimary(0), "0 before");
    EXPECT_EQ(ReadPrimary(INT_MIN), "0 before");
    EXPECT_EQ(Log(), (LogLines{TooLong("eth1"), TooLong("eth1"), TooLong("eth1")}));
}

}  // namespace
