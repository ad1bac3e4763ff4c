// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Devices whose files come from older releases and from hand edits, as tests/golden keeps them.

#include "Program.h"

#include <algorithm>
#include <filesystem>
#include <sstream>

using namespace device;

namespace {

namespace fs = std::filesystem;

/// Names of the devices; each is a folder.
Texts Devices()
{
    Texts names;
    for (const auto& entry : fs::directory_iterator(VORLIX_GOLDEN)) {
        if (entry.is_directory()) names.push_back(entry.path().filename());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::map<std::string, std::string> FilesIn(const fs::path& folder)
{
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::directory_iterator(folder)) {
        files[entry.path().filename()] = Get(entry.path());
    }
    return files;
}

/// Each card with its address and MTU, and the routes: one a line.
std::string Reached(const Texts& cards)
{
    std::string text;
    for (const std::string& card : cards) {
        text += card + (IsUp(card) ? " up" : " down");
        for (const std::string& address : Addresses(card)) text += " " + address;
        text += " mtu " + std::to_string(Mtu(card)) + "\n";
    }
    return text + Lines(Routes());
}

class UpgradeTest : public Device, public testing::WithParamInterface<std::string> {
protected:
    void SetUp() override
    {
        Device::SetUp();
        std::istringstream names(Get(golden_ / "cards"));
        for (std::string card; names >> card;) cards_.push_back(card);
        for (const std::string& card : cards_) {
            if (fs::exists("/sys/class/net/" + card)) {
                GTEST_SKIP() << "this kernel brings a " << card << " of its own";
            }
            AddCard(card);
        }
        for (const auto& [name, text] : FilesIn(golden_ / "before")) {
            Put(std::string(kConfig) + "/" + name, text);
        }
    }

    static void Boot()
    {
        const Outcome boot = Lanrise();
        EXPECT_EQ(boot.status, 0);
        EXPECT_TRUE(boot.Finished());
    }

    const fs::path golden_ = fs::path(VORLIX_GOLDEN) / GetParam();
    Texts cards_;
};

std::string TestName(const testing::TestParamInfo<std::string>& device)
{
    std::string name = device.param;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Golden, UpgradeTest, testing::ValuesIn(Devices()), TestName);

TEST_P(UpgradeTest, ABootReachesTheStateThatIsKeptWithTheFiles)
{
    Boot();
    EXPECT_EQ(SavedFiles(), FilesIn(golden_ / "after"));
    EXPECT_EQ(Reached(cards_), Get(golden_ / "reached"));

    const auto files = SavedFiles();
    const std::string reached = Reached(cards_);
    Boot();
    EXPECT_EQ(SavedFiles(), files);
    EXPECT_EQ(Reached(cards_), reached);
}

}  // namespace
