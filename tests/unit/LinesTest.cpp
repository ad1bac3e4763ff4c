// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Support/Lines.h"

#include "Support/Handles.h"
#include "fake/World.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <random>

using namespace fake;
using vorlix::Fd;
using vorlix::kLineSize;
using vorlix::LineFile;
using vorlix::LineReader;

namespace {

constexpr char kPath[] = "/proc/net/table";
constexpr size_t kBuffer = 4096;  // what the reader takes in at once

class LineReaderTest : public World {
protected:
    /// Text of the next piece; bytes behind a NUL count too.
    static std::string Next(LineReader& reader)
    {
        char line[kLineSize];
        memset(line, '#', sizeof(line));
        if (!reader.Next(line)) return "(end)";
        size_t end = sizeof(line);
        while (line[end - 1] == '#') --end;
        EXPECT_EQ(line[end - 1], '\0');
        return std::string(line, end - 1);
    }

    static Texts Pieces(const std::string& text)
    {
        Put(kPath, text);
        const Fd file(open(kPath, O_RDONLY));
        LineReader reader(file.Get());
        Texts pieces;
        for (std::string piece = Next(reader); piece != "(end)"; piece = Next(reader)) {
            pieces.push_back(piece);
        }
        return pieces;
    }

    /// What a stream would hand out: up to a newline, at most 255 characters.
    static Texts Expected(const std::string& text)
    {
        Texts pieces;
        for (size_t at = 0; at < text.size(); at += pieces.back().size()) {
            const size_t newline = text.find('\n', at);
            const size_t end = newline == std::string::npos ? text.size() : newline + 1;
            pieces.push_back(text.substr(at, std::min<size_t>(end - at, kLineSize - 1)));
        }
        return pieces;
    }

    static size_t Reads() { return TraceOf({"pread"}).size(); }
};

TEST_F(LineReaderTest, HandsOutLinesWithTheirNewline)
{
    EXPECT_EQ(Pieces("one\n\ntwo\n"), (Texts{"one\n", "\n", "two\n"}));
}

TEST_F(LineReaderTest, TheLastLineMayLackItsNewline)
{
    EXPECT_EQ(Pieces("one\ntwo"), (Texts{"one\n", "two"}));
}

TEST_F(LineReaderTest, AnEmptyFileHasNoLine)
{
    EXPECT_EQ(Pieces(""), Texts{});
}

TEST_F(LineReaderTest, ALongerLineIsSeveral)
{
    const std::string most(255, 'x');
    EXPECT_EQ(Pieces(most.substr(1) + "\nnext\n"), (Texts{most.substr(1) + "\n", "next\n"}));
    EXPECT_EQ(Pieces(most + "\nnext\n"), (Texts{most, "\n", "next\n"}));
    EXPECT_EQ(Pieces(most + "y\nnext\n"), (Texts{most, "y\n", "next\n"}));
    EXPECT_EQ(Pieces(most + most + "end"), (Texts{most, most, "end"}));
    EXPECT_EQ(Pieces(most), (Texts{most}));
}

TEST_F(LineReaderTest, NulBytesArePartOfALine)
{
    using namespace std::string_literals;
    EXPECT_EQ(Pieces("a\0b\n\0\nend"s), (Texts{"a\0b\n"s, "\0\n"s, "end"}));
}

TEST_F(LineReaderTest, LinesMayLieAcrossTheBuffersEnd)
{
    for (const size_t length : {kBuffer - 2, kBuffer - 1, kBuffer, kBuffer + 1, 2 * kBuffer}) {
        std::string text;
        while (text.size() + 100 < length) text += std::string(99, 'x') + "\n";
        text += std::string(length - text.size(), 'y') + "z\nlast\n";
        EXPECT_EQ(Pieces(text), Expected(text)) << length;
    }
}

TEST_F(LineReaderTest, ReadsAsAStreamDoes)
{
    std::mt19937 random(20231115);
    for (int round = 0; round < 200; ++round) {
        std::string text;
        const size_t length = random() % 3000;
        const unsigned newlines = 1 + random() % 400;
        while (text.size() < length) {
            text += random() % newlines == 0 ? '\n' : static_cast<char>('a' + random() % 26);
        }
        const Texts pieces = Pieces(text);
        FILE* stream = fmemopen(text.data(), text.size(), "r");
        Texts expected;
        char line[kLineSize];
        while (stream != nullptr && fgets(line, sizeof(line), stream) != nullptr) {
            expected.emplace_back(line);
        }
        if (stream != nullptr) fclose(stream);
        ASSERT_EQ(pieces, expected) << "round " << round;
    }
}

TEST_F(LineReaderTest, ReadsAMegabyteToItsEnd)
{
    std::string text;
    while (text.size() < 1024 * 1024) text += "line " + std::to_string(text.size()) + "\n";
    EXPECT_EQ(Pieces(text + "end"), Expected(text + "end"));
}

TEST_F(LineReaderTest, LeavesTheLineAtTheEnd)
{
    Put(kPath, "one\n");
    const Fd file(open(kPath, O_RDONLY));
    LineReader reader(file.Get());
    char line[kLineSize] = {};
    ASSERT_TRUE(reader.Next(line));
    EXPECT_FALSE(reader.Next(line));
    EXPECT_FALSE(reader.Next(line));
    EXPECT_STREQ(line, "one\n");
}

TEST_F(LineReaderTest, AsksForTheEndOnce)
{
    Put(kPath, "one\n");
    const Fd file(open(kPath, O_RDONLY));
    LineReader reader(file.Get());
    for (int i = 0; i < 5; ++i) Next(reader);
    EXPECT_EQ(Reads(), 2U);
}

TEST_F(LineReaderTest, AsksForNoMoreAtATimeThanWanted)
{
    const std::string text = "one\ntwo\n" + std::string(600, 'x') + "\nlast";
    Put(kPath, text);
    for (const size_t piece : {1U, 7U, 8U, 128U, 5000U}) {
        const Fd file(open(kPath, O_RDONLY));
        LineReader reader(file.Get(), piece);
        Texts pieces;
        for (std::string line = Next(reader); line != "(end)"; line = Next(reader)) {
            pieces.push_back(line);
        }
        EXPECT_EQ(pieces, Expected(text)) << piece;
    }
    ClearTrace();
    const Fd file(open(kPath, O_RDONLY));
    LineReader reader(file.Get(), 8);
    EXPECT_EQ(Next(reader), "one\n");
    EXPECT_EQ(Next(reader), "two\n");
    EXPECT_EQ(Reads(), 1U);
    EXPECT_EQ(Next(reader).size(), 255U);
    EXPECT_EQ(Reads(), 33U);
}

// ---- descriptors

TEST_F(LineReaderTest, ReadersOfOneDescriptorDoNotDisturbEachOther)
{
    Put(kPath, "one\ntwo\n");
    const Fd file(open(kPath, O_RDONLY));
    LineReader first(file.Get());
    LineReader second(file.Get());
    EXPECT_EQ(Next(first), "one\n");
    EXPECT_EQ(Next(second), "one\n");
    EXPECT_EQ(Next(first), "two\n");
    EXPECT_EQ(lseek(file.Get(), 0, SEEK_CUR), 0);
}

TEST_F(LineReaderTest, ANewReaderSeesWhatHasChanged)
{
    Put(kPath, "old\nold\n");
    const Fd file(open(kPath, O_RDONLY));
    LineReader before(file.Get());
    EXPECT_EQ(Next(before), "old\n");
    Put(kPath, "new\n");
    LineReader after(file.Get());
    EXPECT_EQ(Next(after), "new\n");
    EXPECT_EQ(Next(after), "(end)");
}

TEST_F(LineReaderTest, AClosedDescriptorHasNoLine)
{
    LineReader reader(-1);
    EXPECT_EQ(Next(reader), "(end)");
}

TEST_F(LineReaderTest, AFolderHasNoLine)
{
    MakeFolder(kPath);
    const Fd file(open(kPath, O_RDONLY));
    ASSERT_TRUE(file.Ok());
    LineReader reader(file.Get());
    EXPECT_EQ(Next(reader), "(end)");
}

// ---- failures

TEST_F(LineReaderTest, AnInterruptedReadIsRepeated)
{
    Put(kPath, "one\n");
    const Fd file(open(kPath, O_RDONLY));
    LineReader reader(file.Get());
    Fail("pread", EINTR);
    Fail("pread", EINTR);
    EXPECT_EQ(Next(reader), "one\n");
    EXPECT_EQ(Reads(), 3U);
    Fail("pread", EINTR);
    EXPECT_EQ(Next(reader), "(end)");
    EXPECT_EQ(Reads(), 5U);
}

TEST_F(LineReaderTest, AFailedReadIsNotRepeated)
{
    Put(kPath, "one\n");
    const Fd file(open(kPath, O_RDONLY));
    LineReader reader(file.Get());
    Fail("pread", EIO);
    EXPECT_EQ(Next(reader), "(end)");
    EXPECT_EQ(Next(reader), "(end)");
    EXPECT_EQ(Reads(), 1U);
}

TEST_F(LineReaderTest, HalfALineDoesNotPassForAWholeOne)
{
    std::string text;
    while (text.size() < kBuffer - 10) text += "x\n";
    Put(kPath, text + "HOSTIP = 192.168.0.108\n");
    const Fd file(open(kPath, O_RDONLY));
    LineReader reader(file.Get());
    Fail("pread", EIO, 2);
    for (size_t i = 0; i < text.size() / 2; ++i) ASSERT_EQ(Next(reader), "x\n");
    EXPECT_EQ(Next(reader), "(end)");
}

TEST_F(LineReaderTest, TheHalfLineOfAFailureIsTerminated)
{
    Put(kPath, "one and a half");
    const Fd file(open(kPath, O_RDONLY));
    LineReader reader(file.Get(), 7);
    char line[kLineSize];
    memset(line, '#', sizeof(line));
    Fail("pread", EIO, 2);
    EXPECT_FALSE(reader.Next(line));
    EXPECT_TRUE(reader.Failed());
    EXPECT_STREQ(line, "one and");
}

TEST_F(LineReaderTest, AFailureWithoutAnyLineLeavesTheLine)
{
    Put(kPath, "one\n");
    const Fd file(open(kPath, O_RDONLY));
    LineReader reader(file.Get());
    char line[kLineSize] = "before";
    Fail("pread", EIO);
    EXPECT_FALSE(reader.Next(line));
    EXPECT_STREQ(line, "before");
}

// ---- Rewind

TEST_F(LineReaderTest, RewindsToTheFirstLine)
{
    Put(kPath, "one\ntwo\nthree\n");
    const Fd file(open(kPath, O_RDONLY));
    LineReader reader(file.Get());
    reader.Rewind();
    EXPECT_EQ(Next(reader), "one\n");
    EXPECT_EQ(Next(reader), "two\n");
    reader.Rewind();
    EXPECT_EQ(Next(reader), "one\n");
    EXPECT_EQ(Next(reader), "two\n");
    EXPECT_EQ(Next(reader), "three\n");
    EXPECT_EQ(Next(reader), "(end)");
    reader.Rewind();
    EXPECT_EQ(Next(reader), "one\n");
}

TEST_F(LineReaderTest, AFileThatFitsIsReadOnceForManyWalks)
{
    Put(kPath, "one\ntwo\n");
    const Fd file(open(kPath, O_RDONLY));
    LineReader reader(file.Get());
    for (int walk = 0; walk < 10; ++walk) {
        reader.Rewind();
        EXPECT_EQ(Next(reader), "one\n");
        EXPECT_EQ(Next(reader), "two\n");
        EXPECT_EQ(Next(reader), "(end)");
    }
    EXPECT_EQ(Reads(), 2U);  // the text, and its end
}

TEST_F(LineReaderTest, ALargerFileIsReadAgain)
{
    std::string text;
    for (int i = 0; text.size() < 3 * kBuffer; ++i) text += std::to_string(i) + "\n";
    Put(kPath, text);
    const Fd file(open(kPath, O_RDONLY));
    LineReader reader(file.Get());
    for (int walk = 0; walk < 3; ++walk) {
        SCOPED_TRACE(walk);
        reader.Rewind();
        std::string walked;
        for (std::string line = Next(reader); line != "(end)"; line = Next(reader)) walked += line;
        EXPECT_EQ(walked, text);
    }
}

TEST_F(LineReaderTest, AFailedFileIsTriedAgain)
{
    Put(kPath, "one\n");
    const Fd file(open(kPath, O_RDONLY));
    LineReader reader(file.Get());
    Fail("pread", EIO);
    EXPECT_EQ(Next(reader), "(end)");
    reader.Rewind();
    EXPECT_EQ(Next(reader), "one\n");
    Fail("pread", EIO);
    EXPECT_EQ(Next(reader), "(end)");
    reader.Rewind();
    EXPECT_EQ(Next(reader), "one\n");
    EXPECT_EQ(Next(reader), "(end)");
}

// ---- LineFile

class LineFileTest : public LineReaderTest {};

TEST_F(LineFileTest, IsOpenAsLongAsItLives)
{
    Put(kPath, "one\n");
    {
        LineFile file(kPath);
        ASSERT_TRUE(file.Ok());
        EXPECT_EQ(Next(file.Lines()), "one\n");
        EXPECT_EQ(OpenHandles(), (Texts{"open /proc/net/table O_RDONLY"}));
    }
    EXPECT_EQ(OpenHandles(), Texts{});
}

TEST_F(LineFileTest, AMissingFileHasNoLine)
{
    LineFile file(kPath);
    EXPECT_FALSE(file.Ok());
    EXPECT_EQ(Next(file.Lines()), "(end)");
}

TEST_F(LineFileTest, MayBeLeftOpenForGood)
{
    Put(kPath, "one\n");
    {
        LineFile file(kPath);
        file.LeaveOpen();
    }
    EXPECT_EQ(OpenHandles(), (Texts{"open /proc/net/table O_RDONLY"}));
}

}  // namespace
