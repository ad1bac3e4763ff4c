// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// What is true of every setting alike. A row says how one is saved or read and what its file holds
// then; a test file lists its rows and instantiates the two suites with them.

#include "fake/World.h"

#include <functional>

namespace fake {

struct SavedSetting {
    std::string name;  // of the test
    std::function<bool()> save;
    std::string file;
    std::vector<std::string> lines;  // that it leaves in the file
};

struct ReadSetting {
    std::string name;
    std::function<std::string()> read;  // the result as "1" or "0", and what the caller got
    std::string file;
    std::vector<std::string> lines;
    std::string found;    // what `read` gives with the lines, and without
    std::string missing;  // them
};

inline void PrintTo(const SavedSetting& row, std::ostream* out)
{
    *out << row.name;
}
inline void PrintTo(const ReadSetting& row, std::ostream* out)
{
    *out << row.name;
}

template <typename Row>
std::string RowName(const testing::TestParamInfo<Row>& info)
{
    return info.param.name;
}

class EverySavedSettingTest : public World, public testing::WithParamInterface<SavedSetting> {};

TEST_P(EverySavedSettingTest, StandsBehindWhatTheFileHeld)
{
    Put(GetParam().file, "ROUTE = kept\n");
    EXPECT_TRUE(GetParam().save());
    EXPECT_EQ(Get(GetParam().file), "ROUTE = kept\n" + Settings(GetParam().lines));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_P(EverySavedSettingTest, FailsWithItsWrite)
{
    Put(GetParam().file, "ROUTE = kept\n");
    Fail("fopen " + GetParam().file + " w+", EROFS);
    EXPECT_FALSE(GetParam().save());
    EXPECT_EQ(Get(GetParam().file), "ROUTE = kept\n");
    EXPECT_EQ(Log(), (LogLines{Error("SetValueByKey", "cannot fopen [Read-only file system]")}));
}

TEST_P(EverySavedSettingTest, SurvivesEveryFailedCallButThatOfItsWrite)
{
    const std::string& file = GetParam().file;
    Put(file, Settings(GetParam().lines));
    bool saved = false;
    FailEachCall([&] { saved = GetParam().save(); },
                 [&](const std::string& failed) {
                     EXPECT_EQ(saved, failed != "fopen " + file + " w+");
                     // The text of the file was never read, or never came to the disk.
                     if (failed == "fopen " + file + " r+" || failed == "fflush " + file) return;
                     EXPECT_EQ(Get(file), Settings(GetParam().lines));
                 });
}

class EveryReadSettingTest : public World, public testing::WithParamInterface<ReadSetting> {};

TEST_P(EveryReadSettingTest, ComesFromItsFile)
{
    Put(GetParam().file, "ROUTE = other\n" + Settings(GetParam().lines));
    EXPECT_EQ(GetParam().read(), GetParam().found);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_P(EveryReadSettingTest, IsAnOrdinaryNoWithoutItsFile)
{
    EXPECT_EQ(GetParam().read(), GetParam().missing);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_P(EveryReadSettingTest, IsAnOrdinaryNoWithoutItsKey)
{
    Put(GetParam().file, "ROUTE = other\n");
    EXPECT_EQ(GetParam().read(), GetParam().missing);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_P(EveryReadSettingTest, LeavesTheFileAlone)
{
    Put(GetParam().file, Settings(GetParam().lines));
    GetParam().read();
    EXPECT_EQ(TraceOf({"fopen", "fsync"}), std::vector<std::string>{});
    EXPECT_EQ(Get(GetParam().file), Settings(GetParam().lines));
}

TEST_P(EveryReadSettingTest, FailsOnlyWithItsRead)
{
    const std::string& file = GetParam().file;
    Put(file, Settings(GetParam().lines));
    std::string got;
    FailEachCall([&] { got = GetParam().read(); },
                 [&](const std::string& failed) {
                     const bool unread =
                         failed == "open " + file + " O_RDONLY" || failed == "pread " + file;
                     EXPECT_EQ(got[0], unread ? '0' : '1');
                     if (unread) return;
                     EXPECT_EQ(got, GetParam().found);
                 });
}

}  // namespace fake
