// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Words in lists kept as text, and the existence of the interfaces of a list.

#include "Base.h"

#include "BaseNames.h"
#include "fake/World.h"

#include <cerrno>
#include <climits>

using namespace fake;

namespace {

// ---- FindWordInLine

class FindWordInLineTest : public World {
protected:
    /// Where the word stands in the line; -1 when it is not found.
    static long Find(std::string line, const char* word, char separator = ',')
    {
        const char* found = FindWordInLine(line.data(), word, separator);
        return found == nullptr ? -1 : found - line.data();
    }
};

TEST_F(FindWordInLineTest, FindsAWholeWord)
{
    struct Case {
        const char* line;
        const char* word;
        long place;
    };
    const Case cases[] = {
        {"eth0,eth1", "eth1", 5},
        {"eth0,eth1", "eth0", 0},
        {"eth0", "eth0", 0},
        {"eth0,", "eth0", 0},
        {"eth0\n", "eth0", 0},
        {"eth0,eth1\n", "eth1", 5},
        {"eth1\neth2", "eth1", 0},
        {",eth0,,eth1", "eth1", 7},
        {"eth10,eth1", "eth1", 6},
        {"xeth1,eth1", "eth1", 6},
        {"eth1x,xeth1,eth1,eth1", "eth1", 12},
        {"eth0,eth1", "eth0,eth1", 0},
        {"a,eth0,eth1,b", "eth0,eth1", 2},
    };
    for (const Case& expected : cases) {
        EXPECT_EQ(Find(expected.line, expected.word), expected.place)
            << expected.word << " in " << expected.line;
    }
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(FindWordInLineTest, APartOfAWordIsToldAsMissing)
{
    EXPECT_EQ(Find("eth0,eth1", "eth"), -1);
    EXPECT_EQ(Log(), (LogLines{Info("FindWordInLine", "can not find eth in eth0,eth1")}));
    for (const char* line :
         {"", "eth10", "xeth1", "eth1 ", " eth1", "eth0;eth1", "\neth1", "ETH1", "eth1\t", "\teth1",
          "eth1\r", "eth1\r\n", "eth0\teth1", "eth1\v", "eth0, eth1", "eth0 ,eth1 ,"}) {
        ClearLog();
        EXPECT_EQ(Find(line, "eth1"), -1) << line;
        EXPECT_EQ(Log(),
                  (LogLines{Info("FindWordInLine", std::string("can not find eth1 in ") + line)}));
    }
}

TEST_F(FindWordInLineTest, TheSeparatorIsTheCallers)
{
    EXPECT_EQ(Find("eth0 eth1", "eth1", ' '), 5);
    EXPECT_EQ(Find("eth0,eth1", "eth1", ' '), -1);
    EXPECT_EQ(Find("eth0\neth1", "eth1", '\n'), 5);
    EXPECT_EQ(Find("eth0\teth1", "eth1", '\t'), 5);
    EXPECT_EQ(Find("eth0\teth1", "eth1", ' '), -1);
    EXPECT_EQ(Find("eth0 eth1\t", "eth1", ' '), -1);
    EXPECT_EQ(Find("eth1 eth2", "eth1", '\t'), -1);
}

TEST_F(FindWordInLineTest, GoesOnBehindTheWholeOccurrence)
{
    EXPECT_EQ(Find("xaa,aa", "aa"), 4);
    EXPECT_EQ(Find("aaa,b", "aa"), -1);
    EXPECT_EQ(Find("xa,a,a,b", "a,a"), -1);  // the second overlaps the first
    EXPECT_EQ(Find("xa,a,b,a,a", "a,a"), 7);
}

TEST_F(FindWordInLineTest, NoWordIsNotFoundInSilence)
{
    char line[] = "eth0,,eth1";
    EXPECT_EQ(FindWordInLine(nullptr, "eth0", ','), nullptr);
    EXPECT_EQ(FindWordInLine(line, nullptr, ','), nullptr);
    EXPECT_EQ(FindWordInLine(line, "", ','), nullptr);
    EXPECT_EQ(Log(), LogLines{});
}

// ---- CheckEthExist

class CheckEthExistTest : public World {
protected:
    static bool Exist(std::vector<const char*> names)
    {
        return CheckEthExist(names.data(), static_cast<int>(names.size()));
    }

    /// The lines about one entry that is not in the joined list.
    static LogLines Missing(const std::string& entry, const std::string& name,
                            const std::string& joined)
    {
        return {Info("FindWordInLine", "can not find " + name + " in " + joined),
                Error("CheckEthExist", "can not find " + entry + " in " + joined + ".")};
    }
};

TEST_F(CheckEthExistTest, PassesWhenAllAreListed)
{
    AddCards({"eth0", "eth1", "bond0", "lo"});
    EXPECT_TRUE(Exist({"eth0"}));
    EXPECT_TRUE(Exist({"bond0", "eth1", "eth0", "eth0"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(CheckEthExistTest, TheFirstThatIsMissingIsTold)
{
    AddCards({"eth0", "eth1"});
    EXPECT_FALSE(Exist({"eth0", "eth2", "eth3"}));
    EXPECT_EQ(Log(), Missing("eth2", "eth2", "eth0,eth1,"));
}

TEST_F(CheckEthExistTest, APartOfANameIsNotEnough)
{
    AddCards({"eth0", "eth10"});
    EXPECT_FALSE(Exist({"eth1"}));
    EXPECT_FALSE(Exist({"eth"}));
    EXPECT_FALSE(Exist({"th0"}));
}

TEST_F(CheckEthExistTest, ANameThatTheListsRefuseIsMissing)
{
    AddCards({"eth0", "lo", "vnic0", "veth0"});
    for (const char* name : {"lo", "vnic0", "veth0"}) {
        ClearLog();
        EXPECT_FALSE(Exist({name}));
        EXPECT_EQ(Log(), Missing(name, name, "eth0,"));
    }
}

TEST_F(CheckEthExistTest, AnAliasIsTestedByItsCard)
{
    AddCards({"eth0"});
    EXPECT_TRUE(Exist({"eth0:1"}));
    EXPECT_TRUE(Exist({"eth0:poe"}));
    EXPECT_TRUE(Exist({"eth0:"}));
    EXPECT_TRUE(Exist({"eth0:1:2 and much more"}));
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_FALSE(Exist({"eth1:poe"}));
    EXPECT_EQ(Log(), Missing("eth1:poe", "eth1", "eth0,"));
}

TEST_F(CheckEthExistTest, ABridgeMayBeAboutToBeMade)
{
    AddCards({"eth0"});
    EXPECT_TRUE(Exist({"br7"}));
    EXPECT_TRUE(Exist({"br"}));
    EXPECT_TRUE(Exist({"br-lan"}));
    EXPECT_TRUE(Exist({"bridge:1"}));
    EXPECT_TRUE(Exist({"eth0", "br0", "eth0"}));
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_FALSE(Exist({"xbr0"}));
    EXPECT_FALSE(Exist({"b:r0"}));
}

TEST_F(CheckEthExistTest, ABridgePassesOnADeviceWithoutCards)
{
    EXPECT_TRUE(Exist({"br0"}));
    EXPECT_FALSE(Exist({"eth0"}));
    EXPECT_EQ(Log(), Missing("eth0", "eth0", ""));
}

TEST_F(CheckEthExistTest, ANameOf15CharactersIsTheLongest)
{
    AddCards({"eth-fifteen-abc"});
    EXPECT_TRUE(Exist({"eth-fifteen-abc"}));
    EXPECT_TRUE(Exist({"eth-fifteen-abc:1"}));
    EXPECT_TRUE(Exist({"eth-fifteen-abcd"}));  // without a colon the rest is cut off
    EXPECT_TRUE(Exist({"eth-fifteen-abc and more"}));
    EXPECT_EQ(Log(), LogLines{});
    for (const char* name : {"eth-fifteen-abcd:1", "br-fifteen-abcde:1", "eth-sixteen-and-more:"}) {
        ClearLog();
        EXPECT_FALSE(Exist({name}));
        EXPECT_EQ(Log(),
                  (LogLines{Error("CheckEthExist", std::string("eth ") + name +
                                                       " name error, strlen larger than 16!")}));
    }
}

TEST_F(CheckEthExistTest, AnEmptyNameIsMissing)
{
    AddCards({"eth0"});
    for (const char* name : {"", ":1"}) {
        ClearLog();
        EXPECT_FALSE(Exist({name}));
        EXPECT_EQ(Log(), (LogLines{Error("CheckEthExist",
                                         std::string("can not find ") + name + " in eth0,.")}));
    }
}

TEST_F(CheckEthExistTest, AnInternalBridgeIsLookedForAmongItsKind)
{
    AddCards({"eth0", "nbp0", "nbp1"});
    EXPECT_TRUE(Exist({"nbp0"}));
    EXPECT_TRUE(Exist({"nbp1", "nbp0"}));
    EXPECT_FALSE(Exist({"nbp0", "eth0"}));
    EXPECT_EQ(Log(), Missing("eth0", "eth0", "nbp0,nbp1,"));
    ClearLog();
    EXPECT_FALSE(Exist({"eth0", "nbp0"}));  // the first entry chooses the list
    EXPECT_EQ(Log(), Missing("nbp0", "nbp0", "eth0,"));
}

TEST_F(CheckEthExistTest, WithoutInternalBridgesThereIsNoList)
{
    AddCards({"eth0"});
    EXPECT_FALSE(Exist({"nbp0"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(CheckEthExistTest, ASecondEntryIsInTheListButIsTestedByItsCard)
{
    AddCards({"eth0"});
    kernel.At("eth0").driver = "sim Switch drv";
    EXPECT_FALSE(Exist({"eth1"}));
    EXPECT_EQ(Log(), Missing("eth1", "eth1", "eth0,eth0:poe,"));
}

TEST_F(CheckEthExistTest, The254thCharacterEndsTheList)
{
    // 15 names of 15 characters and their commas make 240; the next name starts there.
    Texts cards;
    for (int i = 10; i < 25; ++i) cards.push_back("eth-fifteen-a" + std::to_string(i));
    AddCards(cards);
    AddCards({"eth-of-13-chr", "eth9"});  // 13 and a comma: exactly full
    EXPECT_TRUE(Exist({"eth-of-13-chr"}));
    EXPECT_FALSE(Exist({"eth9"}));
    kernel.At("eth-of-13-chr").name = "eth-of-14-char";  // its comma is cut off
    EXPECT_TRUE(Exist({"eth-of-14-char"}));
    kernel.At("eth-of-14-char").name = "eth-of-15-chars";  // its last letter too
    EXPECT_FALSE(Exist({"eth-of-15-chars"}));
    EXPECT_TRUE(Exist({"eth-of-15-char"}));
    kernel.At("eth-of-15-chars").name = "eth-of-12-cr";  // room for one letter behind it
    EXPECT_FALSE(Exist({"eth9"}));
    EXPECT_TRUE(Exist({"e"}));
}

TEST_F(CheckEthExistTest, Finds32Cards)
{
    AddCards(Many("eth", 33));
    EXPECT_TRUE(Exist({"eth0", "eth31"}));
    EXPECT_FALSE(Exist({"eth32"}));
}

TEST_F(CheckEthExistTest, ReadsTheFirstNameOfAnEmptyList)
{
    AddCards({"eth0"});
    const char* names[] = {"eth9"};
    for (const int count : {0, -1, INT_MIN}) {
        EXPECT_TRUE(CheckEthExist(names, count));
    }
    const char* internal[] = {"nbp0"};
    EXPECT_FALSE(CheckEthExist(internal, 0));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(CheckEthExistTest, NoListingIsAFailure)
{
    AddCards({"eth0"});
    Fail("open /proc/net/dev", ENOENT);
    EXPECT_FALSE(Exist({"eth0"}));
    EXPECT_EQ(Log(), (LogLines{Error("GetAllInterfaceInfo", "Open file /proc/net/dev failed!\n")}));
}

TEST_F(CheckEthExistTest, RefusesNull)
{
    AddCards({"eth0"});
    EXPECT_FALSE(CheckEthExist(nullptr, 1));
    EXPECT_FALSE(Exist({nullptr}));
    EXPECT_EQ(Trace(), Texts{});
    EXPECT_FALSE(Exist({"eth0", nullptr}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(CheckEthExistTest, NeverPassesACardThatIsNotThereWhateverFails)
{
    AddCards({"eth0", "eth1"});
    static bool there = false;
    static bool missing = false;
    FailEachCall(
        [] {
            there = Exist({"eth0", "eth1"});
            missing = Exist({"eth2"});
        },
        [](const std::string& failed) {
            EXPECT_FALSE(missing);
            if (failed.rfind("ioctl", 0) == 0) {
                EXPECT_TRUE(there);
            }
        });
}

TEST_F(CheckEthExistTest, OneCardIsAListOfOne)
{
    AddCards({"eth0"});
    EXPECT_TRUE(vorlix::CardExists("eth0"));
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_FALSE(vorlix::CardExists("eth1"));
    EXPECT_EQ(Log(), Missing("eth1", "eth1", "eth0,"));
    EXPECT_FALSE(vorlix::CardExists(nullptr));
}

}  // namespace
