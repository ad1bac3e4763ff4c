// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "TrafficControl.h"

#include "TrafficWorld.h"

#include <cerrno>
#include <climits>

using namespace fake;

namespace {

/// The limits in eth0's file, as far as `capacity` goes.
Texts Listed(int capacity = 40)
{
    std::vector<NetTc> limits(static_cast<size_t>(capacity) + 1);
    int count = capacity;
    if (!TC_GetFromConfig("eth0", limits.data(), &count)) return {"(failed)"};

    Texts texts;
    for (int i = 0; i < count; ++i) texts.push_back(TextOf(limits[static_cast<size_t>(i)]));
    return texts;
}

/// What a file of this one text lists.
Texts ListedFrom(const std::string& text)
{
    Put(kLimits0, text);
    return Listed();
}

std::string Call(const std::string& name, const std::string& behind = "")
{
    return name + " " + kLimits0 + behind;
}

// ---- TC_SaveToConfig

class TC_SaveToConfigTest : public World {};

TEST_F(TC_SaveToConfigTest, WritesOneLineOfPaddedColumns)
{
    EXPECT_TRUE(TC_SaveToConfig("eth0", Limit("10.0.0.2", 8)));
    EXPECT_EQ(Get(kLimits0), "dev            eth0, "
                             "ip                                        10.0.0.2, "
                             "type        4, bw        8, flag        0,\n");
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(TC_SaveToConfigTest, AppendsToWhatIsThere)
{
    Put(kLimits0, "by hand");
    EXPECT_TRUE(TC_SaveToConfig("eth0", Limit("10.0.0.2", 8)));
    EXPECT_TRUE(TC_SaveToConfig("eth0", Limit("fe80::2", 9, 3, 6)));
    EXPECT_TRUE(TC_SaveToConfig("eth0", Limit("10.0.0.2", 8)));
    const std::string first = Line("eth0", Limit("10.0.0.2", 8));
    EXPECT_EQ(Get(kLimits0), "by hand" + first + Line("eth0", Limit("fe80::2", 9, 3, 6)) + first);
}

TEST_F(TC_SaveToConfigTest, EachCardHasItsOwnFile)
{
    EXPECT_TRUE(TC_SaveToConfig("eth1", Limit("10.0.0.2", 8)));
    EXPECT_TRUE(TC_SaveToConfig("bond0", Limit("10.0.0.3", 9)));
    EXPECT_EQ(Get("/mnt/mtd/Config/nettc_eth1"), Line("eth1", Limit("10.0.0.2", 8)));
    EXPECT_EQ(Get("/mnt/mtd/Config/nettc_bond0"), Line("bond0", Limit("10.0.0.3", 9)));
    EXPECT_FALSE(Exists(kLimits0));
}

TEST_F(TC_SaveToConfigTest, ColumnsGrowAndAreNotCut)
{
    const std::string card = "a-name-beyond-16-characters";
    const NetTc limit = Limit(std::string(47, 'a'), INT_MIN, -1, INT_MAX);
    EXPECT_TRUE(TC_SaveToConfig(card.c_str(), limit));
    EXPECT_EQ(Get("/mnt/mtd/Config/nettc_" + card),
              "dev " + card + ", ip " + std::string(47, 'a') +
                  ", type 2147483647, bw -2147483648, flag       -1,\n");
}

TEST_F(TC_SaveToConfigTest, AnAddressWithoutEndCountsWith47Characters)
{
    EXPECT_TRUE(TC_SaveToConfig("eth0", Limit(std::string(48, 'a'), 8)));
    EXPECT_EQ(Get(kLimits0), Line("eth0", Limit(std::string(47, 'a'), 8)));
}

TEST_F(TC_SaveToConfigTest, LineAndPathAreCutAt255Characters)
{
    const std::string card(240, 'x');
    const NetTc limit = Limit("10.0.0.2", 8);
    const std::string path = ("/mnt/mtd/Config/nettc_" + card).substr(0, 255);
    EXPECT_TRUE(TC_SaveToConfig(card.c_str(), limit));
    EXPECT_EQ(Get(path), Line(card, limit).substr(0, 255));
}

TEST_F(TC_SaveToConfigTest, AFileThatCannotBeOpenedIsAnErrorUnderTheCardsName)
{
    Fail(Call("fopen", " a"), EROFS);
    EXPECT_FALSE(TC_SaveToConfig("eth0", Limit("10.0.0.2", 8)));
    EXPECT_EQ(Log(),
              LogLines{Error("TC_SaveToConfig", "open file eth0 error.[Read-only file system]")});
    EXPECT_FALSE(Exists(kLimits0));
    EXPECT_EQ(HeldMutexes(), 0);
}

TEST_F(TC_SaveToConfigTest, FailuresAreToldUnderTheLock)
{
    for (const std::string& call : {Call("fopen", " a"), Call("fwrite")}) {
        ClearLog();
        size_t told = 0;
        Fail(call, EIO);
        OnCall("mutex unlock", [&] { told = Log().size(); });
        EXPECT_FALSE(TC_SaveToConfig("eth0", Limit("10.0.0.2", 8)));
        EXPECT_EQ(told, 1U) << call;
    }
}

TEST_F(TC_SaveToConfigTest, AShortWriteIsAnErrorWhereverItShows)
{
    Put(kLimits0, "");
    for (const char* call : {"fwrite", "fflush"}) {
        ClearLog();
        Fail(Call(call), ENOSPC);
        EXPECT_FALSE(TC_SaveToConfig("eth0", Limit("10.0.0.2", 8)));
        EXPECT_EQ(Log(),
                  LogLines{Error("TC_SaveToConfig", "write error.[No space left on device]")});
        EXPECT_EQ(OpenHandles(), Texts{});
        EXPECT_EQ(HeldMutexes(), 0);
    }
    EXPECT_EQ(Get(kLimits0), "");
}

TEST_F(TC_SaveToConfigTest, WritesUnderTheLockAndClosesBeforeItIsReleased)
{
    Put(kLimits0, "");
    OnCall("fwrite", [] { EXPECT_TRUE(LockedForOthers(kLimits0)); });
    OnCall("fclose", [] { EXPECT_EQ(Get(kLimits0), Line("eth0", Limit("10.0.0.2", 8))); });
    EXPECT_TRUE(TC_SaveToConfig("eth0", Limit("10.0.0.2", 8)));
    EXPECT_EQ(Trace(), (Texts{"mutex lock", Call("open", " O_WRONLY|O_APPEND"),
                              Call("fcntl F_SETLKW F_WRLCK"), Call("fopen", " a"), Call("fwrite"),
                              Call("fflush"), Call("fclose"), Call("fcntl F_SETLKW F_UNLCK"),
                              Call("close"), "mutex unlock"}));
}

TEST_F(TC_SaveToConfigTest, NullIsRefusedInSilence)
{
    EXPECT_FALSE(TC_SaveToConfig(nullptr, Limit("10.0.0.2", 8)));
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(TC_SaveToConfigTest, AFailureOfAnyCallLeavesTheFileWhole)
{
    Put(kLimits0, Line("eth0", Limit("10.0.0.3", 9)));
    static bool done;
    FailEachCall([] { done = TC_SaveToConfig("eth0", Limit("10.0.0.2", 8)); },
                 [](const std::string&) {
                     EXPECT_EQ(done, LogOf("TC_SaveToConfig").empty());
                     EXPECT_EQ(Get(kLimits0), Line("eth0", Limit("10.0.0.3", 9)) +
                                                  (done ? Line("eth0", Limit("10.0.0.2", 8)) : ""));
                 });
}

// ---- TC_GetFromConfig

class TC_GetFromConfigTest : public World {};

TEST_F(TC_GetFromConfigTest, GivesBackWhatWasSavedWithoutItsPadding)
{
    const std::string longest(47, 'a');
    for (const NetTc& limit : {Limit("10.0.0.2", 8), Limit("fe80::2", -1234567, 0, 6),
                               Limit(longest, 99999999, -1, 0), Limit("1", 0)}) {
        EXPECT_TRUE(TC_SaveToConfig("eth0", limit));
    }
    EXPECT_EQ(Listed(), (Texts{"10.0.0.2 4 8 0", "fe80::2 6 -1234567 0", longest + " 0 99999999 -1",
                               "1 4 0 0"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(TC_GetFromConfigTest, WritesItsFourFieldsAndNoRecordBehindTheCount)
{
    Put(kLimits0, Line("eth0", Limit("10.0.0.2", 8)) + "dev eth0, ip 10.0.0.3, type 4,\n");
    NetTc limits[2];
    memset(limits, '#', sizeof(limits));
    const NetTc untouched = limits[1];
    int count = 2;
    EXPECT_TRUE(TC_GetFromConfig("eth0", limits, &count));
    EXPECT_EQ(count, 1);
    EXPECT_EQ(TextOf(limits[0]), "10.0.0.2 4 8 0");
    EXPECT_EQ(memcmp(limits[0].resv, untouched.resv, sizeof(untouched.resv)), 0);
    EXPECT_EQ(memcmp(&limits[1], &untouched, sizeof(untouched)), 0);
}

TEST_F(TC_GetFromConfigTest, StopsAtTheCapacity)
{
    Put(kLimits0, Line("eth0", Limit("10.0.0.2", 1)) + "no limit\n" +
                      Line("eth0", Limit("10.0.0.3", 2)) + Line("eth0", Limit("10.0.0.4", 3)));
    EXPECT_EQ(Listed(1), (Texts{"10.0.0.2 4 1 0"}));
    EXPECT_EQ(Listed(2), (Texts{"10.0.0.2 4 1 0", "10.0.0.3 4 2 0"}));
    EXPECT_EQ(Listed(3).size(), 3U);
    EXPECT_EQ(Listed(4).size(), 3U);
}

TEST_F(TC_GetFromConfigTest, WithoutRoomItListsNothing)
{
    Put(kLimits0, Line("eth0", Limit("10.0.0.2", 1)));
    NetTc limit;
    memset(&limit, '#', sizeof(limit));
    const NetTc untouched = limit;
    for (const int capacity : {0, -1, INT_MIN}) {
        int count = capacity;
        EXPECT_TRUE(TC_GetFromConfig("eth0", &limit, &count));
        EXPECT_EQ(count, 0);
    }
    EXPECT_EQ(memcmp(&limit, &untouched, sizeof(limit)), 0);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(TC_GetFromConfigTest, WithoutAFileItFailsAndTouchesNothing)
{
    NetTc limit;
    memset(&limit, '#', sizeof(limit));
    const NetTc untouched = limit;
    int count = 7;
    EXPECT_FALSE(TC_GetFromConfig("eth0", &limit, &count));
    EXPECT_EQ(count, 7);
    EXPECT_EQ(memcmp(&limit, &untouched, sizeof(limit)), 0);
    EXPECT_EQ(Log(),
              LogLines{Error("TC_GetFromConfig", "cannot fopen eth0.[No such file or directory]")});
    EXPECT_EQ(HeldMutexes(), 0);
    EXPECT_FALSE(Exists(kLimits0));
}

TEST_F(TC_GetFromConfigTest, AMissingFileIsToldUnderTheLock)
{
    size_t told = 0;
    OnCall("mutex unlock", [&] { told = Log().size(); });
    EXPECT_EQ(Listed(), Texts{"(failed)"});
    EXPECT_EQ(told, 1U);
}

TEST_F(TC_GetFromConfigTest, AnEmptyFileHasNoLimits)
{
    EXPECT_EQ(ListedFrom(""), Texts{});
    EXPECT_EQ(ListedFrom("\n\n"), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

/// A line and the limit that it is; empty for none.
struct HandMade {
    std::string line;
    std::string limit;
};

const std::string kFifteen(15, 'd');
const std::string kFortySeven(47, 'a');

const HandMade kHandMade[] = {
    {"dev eth0, ip 10.0.0.2, type 4, bw 8, flag 0,", "10.0.0.2 4 8 0"},
    {"dev eth0, ip 10.0.0.2, type 4, bw 8, flag 0", "10.0.0.2 4 8 0"},
    {"dev eth0, ip 10.0.0.2, type 4, bw 8, flag 0,\r", "10.0.0.2 4 8 0"},
    {"dev eth0, ip 10.0.0.2, type 4, bw 8, flag 0\r", "10.0.0.2 4 8 0"},
    {"dev eth0, ip 10.0.0.2, type 4, bw 8, flag 0, and a remark", "10.0.0.2 4 8 0"},
    {"dev\teth0,\tip\t10.0.0.2,\ttype\t4,\tbw\t8,\tflag\t0,", "10.0.0.2 4 8 0"},
    {"deveth0,ip10.0.0.2,type4,bw8,flag0,", "10.0.0.2 4 8 0"},
    {"dev another, ip 10.0.0.2, type 4, bw 8, flag 0,", "10.0.0.2 4 8 0"},
    {"dev eth0, ip 10.0.0.2 , type 4, bw 8, flag 0,", "10.0.0.2  4 8 0"},
    {"dev " + kFifteen + ", ip 10.0.0.2, type 4, bw 8, flag 0,", "10.0.0.2 4 8 0"},
    {"dev eth0, ip " + kFortySeven + ", type 4, bw 8, flag 0,", kFortySeven + " 4 8 0"},
    {"dev eth0, ip 1, type 12345678, bw -1234567, flag +1,", "1 12345678 -1234567 1"},
    {"dev eth0, ip 1, type 1, bw 2, flag 123456789,", "1 1 2 12345678"},
    {"dev eth0, ip 1, type 010, bw 0100, flag 08,", "1 10 100 8"},

    {"dev " + kFifteen + "d, ip 10.0.0.2, type 4, bw 8, flag 0,", ""},
    {"dev eth0, ip " + kFortySeven + "a, type 4, bw 8, flag 0,", ""},
    {"dev " + std::string(100, 'd') + ", ip " + std::string(100, 'a') + ", type 4,", ""},
    {"dev eth0, ip , type 4, bw 8, flag 0,", ""},
    {"dev , ip 10.0.0.2, type 4, bw 8, flag 0,", ""},
    {"dev eth0 ip 10.0.0.2 type 4 bw 8 flag 0", ""},
    {"dev eth0 ip 10.0.0.2, type 4, bw 8, flag 0,", ""},
    {"dev eth0, ip 10.0.0.2, type 4, bw 8,", ""},
    {"dev eth0, ip 10.0.0.2, type 4, bw 8, flag", ""},
    {"dev eth0, ip 10.0.0.2, type 4, bw 8 flag 0,", ""},
    {"dev eth0, ip 10.0.0.2, type four, bw 8, flag 0,", ""},
    {"dev eth0, ip 10.0.0.2, type 0x4, bw 8, flag 0,", ""},
    {"dev eth0, ip 10.0.0.2, type 123456789, bw 8, flag 0,", ""},
    {"dev eth0, ip 10.0.0.2, type 4, bw -12345678, flag 0,", ""},
    {"dev eth0, type 4, ip 10.0.0.2, bw 8, flag 0,", ""},
    {" dev eth0, ip 10.0.0.2, type 4, bw 8, flag 0,", ""},
    {"DEV eth0, ip 10.0.0.2, type 4, bw 8, flag 0,", ""},
    {"# dev eth0, ip 10.0.0.2, type 4, bw 8, flag 0,", ""},
    {"\xEF\xBB\xBF"
     "dev eth0, ip 10.0.0.2, type 4, bw 8, flag 0,",
     ""},
    {",,,,,", ""},
    {"%s%n", ""},
};

TEST_F(TC_GetFromConfigTest, ALineCountsWhenItsFiveFieldsCanBeRead)
{
    for (const HandMade& row : kHandMade) {
        const Texts wanted = row.limit.empty() ? Texts{} : Texts{row.limit};
        EXPECT_EQ(ListedFrom(row.line + "\n"), wanted) << row.line;
        EXPECT_EQ(ListedFrom(row.line), wanted) << row.line << ", without a newline";
    }
    EXPECT_EQ(Log(), LogLines{});
}

// What a full flash has taken of a line, with the next one behind it.
TEST_F(TC_GetFromConfigTest, OfALineThatIsJoinedToAHalfAtMostTheHalfIsListed)
{
    for (const std::string card : {"eth0", "abcdefghijklmno"}) {
        const std::string whole = Line(card, Limit("10.0.0.2", 8));
        const std::string next = Line(card, Limit("10.0.0.3", 9));
        for (size_t taken = 1; taken < whole.size(); ++taken) {
            const Texts listed = ListedFrom(whole.substr(0, taken) + next);
            const bool isRead = taken >= whole.size() - 2;  // only the comma and the newline lack
            EXPECT_EQ(listed, isRead ? Texts{"10.0.0.2 4 8 0"} : Texts{}) << taken;
        }
    }
}

TEST_F(TC_GetFromConfigTest, OtherLinesArePassedOver)
{
    std::string text;
    Texts wanted;
    for (const HandMade& row : kHandMade) {
        text += row.line + "\n";
        if (!row.limit.empty()) wanted.push_back(row.limit);
    }
    EXPECT_EQ(ListedFrom(text), wanted);
}

TEST_F(TC_GetFromConfigTest, ALongLineIsReadInPiecesOf255Characters)
{
    const std::string limit = "dev eth0, ip 10.0.0.2, type 4, bw 8, flag 0,";
    const std::string filler(255, '#');
    EXPECT_EQ(ListedFrom(limit + filler + "\n"), Texts{"10.0.0.2 4 8 0"});
    EXPECT_EQ(ListedFrom(filler + limit + "\n"), Texts{"10.0.0.2 4 8 0"});
    EXPECT_EQ(ListedFrom("#" + filler + limit + "\n"), Texts{});
    EXPECT_EQ(ListedFrom("dev " + std::string(1000000, 'x') + ",\n" + limit),
              Texts{"10.0.0.2 4 8 0"});
}

TEST_F(TC_GetFromConfigTest, ListsThousandsOfLines)
{
    std::string text;
    for (int i = 0; i < 5000; ++i) text += Line("eth0", Limit("10.0.0.2", i)) + "junk\n";
    Put(kLimits0, text);
    const Texts all = Listed(6000);
    EXPECT_EQ(all.size(), 5000U);
    EXPECT_EQ(all.back(), "10.0.0.2 4 4999 0");
    EXPECT_EQ(Listed(4999).back(), "10.0.0.2 4 4998 0");
}

TEST_F(TC_GetFromConfigTest, ReadsUnderTheLockAndClosesBehindIt)
{
    Put(kLimits0, Line("eth0", Limit("10.0.0.2", 8)));
    OnCall("fcntl F_SETLKW F_UNLCK", [] { EXPECT_TRUE(LockedForOthers(kLimits0)); });
    EXPECT_EQ(Listed().size(), 1U);
    EXPECT_EQ(Trace(), (Texts{"mutex lock", Call("open", " O_WRONLY|O_APPEND"),
                              Call("fcntl F_SETLKW F_WRLCK"), Call("fopen", " r"),
                              Call("fcntl F_SETLKW F_UNLCK"), Call("close"), Call("fclose"),
                              "mutex unlock"}));
}

TEST_F(TC_GetFromConfigTest, NullIsRefusedInSilence)
{
    Put(kLimits0, Line("eth0", Limit("10.0.0.2", 8)));
    NetTc limit{};
    int count = 1;
    EXPECT_FALSE(TC_GetFromConfig(nullptr, &limit, &count));
    EXPECT_FALSE(TC_GetFromConfig("eth0", nullptr, &count));
    EXPECT_FALSE(TC_GetFromConfig("eth0", &limit, nullptr));
    EXPECT_EQ(count, 1);
    EXPECT_EQ(TextOf(limit), " 0 0 0");
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(TC_GetFromConfigTest, AFailureOfAnyCallLosesNothingOrFails)
{
    Put(kLimits0, Line("eth0", Limit("10.0.0.2", 8)));
    static Texts listed;
    FailEachCall([] { listed = Listed(); },
                 [](const std::string&) {
                     const bool done = LogOf("TC_GetFromConfig").empty();
                     EXPECT_EQ(listed, Texts{done ? "10.0.0.2 4 8 0" : "(failed)"});
                 });
}

// ---- TC_DelConfig

class TC_DelConfigTest : public World {};

TEST_F(TC_DelConfigTest, EmptiesTheFileAndKeepsIt)
{
    Put(kLimits0, Line("eth0", Limit("10.0.0.2", 8)));
    Put("/mnt/mtd/Config/nettc_eth1", "stays");
    EXPECT_TRUE(TC_DelConfig("eth0"));
    EXPECT_EQ(Get(kLimits0), "");
    EXPECT_EQ(Get("/mnt/mtd/Config/nettc_eth1"), "stays");
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(TC_DelConfigTest, MakesAMissingFile)
{
    EXPECT_TRUE(TC_DelConfig("eth0"));
    EXPECT_EQ(Get(kLimits0), "");
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(TC_DelConfigTest, EmptiesUnderTheLock)
{
    Put(kLimits0, "text");
    OnCall("fopen", [] { EXPECT_TRUE(LockedForOthers(kLimits0)); });
    EXPECT_TRUE(TC_DelConfig("eth0"));
    EXPECT_EQ(Trace(), (Texts{"mutex lock", Call("open", " O_WRONLY|O_APPEND"),
                              Call("fcntl F_SETLKW F_WRLCK"), Call("fopen", " w+"), Call("fclose"),
                              Call("fcntl F_SETLKW F_UNLCK"), Call("close"), "mutex unlock"}));
}

TEST_F(TC_DelConfigTest, AFileThatCannotBeOpenedIsAnErrorUnderTheCardsName)
{
    Put(kLimits0, "text");
    Fail(Call("fopen", " w+"), EROFS);
    EXPECT_FALSE(TC_DelConfig("eth0"));
    EXPECT_EQ(Log(),
              LogLines{Error("TC_DelConfig", "open file eth0 error.[Read-only file system]")});
    EXPECT_EQ(Get(kLimits0), "text");
    EXPECT_EQ(HeldMutexes(), 0);
}

TEST_F(TC_DelConfigTest, NullIsRefusedInSilence)
{
    EXPECT_FALSE(TC_DelConfig(nullptr));
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(TC_DelConfigTest, AFailureOfAnyCallEmptiesTheFileOrFails)
{
    Put(kLimits0, "text");
    static bool done;
    FailEachCall([] { done = TC_DelConfig("eth0"); },
                 [](const std::string&) {
                     EXPECT_EQ(done, LogOf("TC_DelConfig").empty());
                     EXPECT_EQ(Get(kLimits0), done ? "" : "text");
                 });
}

// ---- what is seen under the lock

class LimitsLockTest : public World {
protected:
    /// Place of the first entry of the timeline that holds the text.
    static size_t PlaceOf(const std::string& text)
    {
        const Texts entries = Timeline();
        size_t place = 0;
        while (place < entries.size() && entries[place].find(text) == std::string::npos) ++place;
        EXPECT_LT(place, entries.size()) << text;
        return place;
    }
};

TEST_F(LimitsLockTest, AFileThatCannotBeOpenedIsToldBeforeTheLockIsGivenBack)
{
    NetTc limit = Limit("10.0.0.2", 8);
    int count = 1;
    const std::vector<std::function<bool()>> operations = {
        [&] { return TC_GetFromConfig("eth0", &limit, &count); },
        [&] { return TC_SaveToConfig("eth0", limit); }, [&] { return TC_DelConfig("eth0"); }};
    for (const auto& operation : operations) {
        Put(kLimits0, "");
        FailAll(std::string("fopen ") + kLimits0, EACCES);
        ClearTrace();
        EXPECT_FALSE(operation());
        EXPECT_LT(PlaceOf("Error|TC_"), PlaceOf("F_UNLCK"));
        EXPECT_LT(PlaceOf("F_UNLCK"), PlaceOf("mutex unlock net_config_Lock"));
    }
    EXPECT_EQ(count, 1);
}

TEST_F(LimitsLockTest, TheCountIsToldBeforeTheLockIsGivenBack)
{
    static int count;
    NetTc limits[4];
    EXPECT_TRUE(TC_SaveToConfig("eth0", Limit("10.0.0.2", 8)));
    count = 4;
    OnCall("fcntl F_SETLKW F_UNLCK", [] { EXPECT_EQ(count, 1); });
    EXPECT_TRUE(TC_GetFromConfig("eth0", limits, &count));
}

TEST_F(LimitsLockTest, ALineThatIsWrittenInPartIsAnError)
{
    for (const size_t part : {size_t{0}, size_t{1}, size_t{100}}) {
        ClearLog();
        Shorten(std::string("fwrite ") + kLimits0, part);
        EXPECT_FALSE(TC_SaveToConfig("eth0", Limit("10.0.0.2", 8))) << part;
        EXPECT_EQ(LogOf("TC_SaveToConfig").size(), 1U) << part;
    }
}

}  // namespace
