// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Support/Text.h"

#include "Support/NameList.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

using namespace vorlix;

namespace {

constexpr char kMarker = '#';

/// A buffer whose bytes all tell whether they were written.
struct Buffer {
    char bytes[32];

    explicit Buffer(const char* text = nullptr)
    {
        memset(bytes, kMarker, sizeof(bytes));
        if (text != nullptr) memcpy(bytes, text, strlen(text) + 1);
    }

    /// All bytes as far as `count`, and that nothing behind was touched.
    std::string Written(size_t count) const
    {
        for (size_t i = count; i < sizeof(bytes); ++i) EXPECT_EQ(bytes[i], kMarker) << "byte " << i;
        return std::string(bytes, count);
    }
};

std::string Zeros(size_t count)
{
    return std::string(count, '\0');
}

// ---- Strcat

TEST(Strcat, AppendsWhatFits)
{
    struct Case {
        const char* dest;
        size_t destSize;
        const char* src;
        const char* joined;
        size_t copied;
    };
    const Case cases[] = {
        {"eth0", 16, ":poe", "eth0:poe", 4},
        {"", 16, "eth0", "eth0", 4},
        {"eth0", 16, "", "eth0", 0},
        {"abc", 8, "defg", "abcdefg", 4},  // to the last byte
        {"abc", 7, "defg", "abcdef", 3},   // one too many
        {"abc", 5, "defg", "abcd", 1},     // room for one
        {"abc", 4, "defg", "abc", 0},      // room for the terminator alone
        {"abc", 3, "defg", "abc", 0},      // said to be smaller than it is
        {"abc", 1, "defg", "abc", 0},
        {"abc", 0, "defg", "abc", 0},
        {"", 1, "defg", "", 0},
        {"", 2, "defg", "d", 1},
    };
    for (const Case& expected : cases) {
        SCOPED_TRACE(std::string(expected.dest) + " + " + expected.src + " in " +
                     std::to_string(expected.destSize));
        Buffer buffer(expected.dest);
        size_t copied = 99;
        EXPECT_EQ(Strcat(buffer.bytes, expected.destSize, expected.src, &copied), buffer.bytes);
        EXPECT_EQ(copied, expected.copied);
        const std::string joined = expected.joined;
        EXPECT_EQ(buffer.Written(joined.size() + 1), joined + Zeros(1));
    }
}

TEST(Strcat, TheCountMayBeLeftOut)
{
    Buffer buffer("eth");
    EXPECT_STREQ(Strcat(buffer.bytes, sizeof(buffer.bytes), "0", nullptr), "eth0");
}

// ---- copies and prints

TEST(CopyText, CopiesAndZeroesTheRest)
{
    Buffer buffer;
    CopyText(buffer.bytes, 8, "eth0");
    EXPECT_EQ(buffer.Written(8), "eth0" + Zeros(4));
}

TEST(CopyText, CutsAndTerminates)
{
    Buffer buffer;
    CopyText(buffer.bytes, 4, "eth0");
    EXPECT_EQ(buffer.Written(4), "eth" + Zeros(1));
}

TEST(CopyText, ASizeOfOneIsAnEmptyText)
{
    Buffer buffer;
    CopyText(buffer.bytes, 1, "eth0");
    EXPECT_EQ(buffer.Written(1), Zeros(1));
}

TEST(CopyText, ASizeOfZeroTouchesNothing)
{
    Buffer buffer;
    CopyText(buffer.bytes, 0, "eth0");
    EXPECT_EQ(buffer.Written(0), "");
}

TEST(CopyText, DoesNotReadBehindWhatItCopies)
{
    const std::vector<char> unterminated = {'e', 't', 'h'};  // the sanitizer watches its end
    Buffer buffer;
    CopyText(buffer.bytes, 4, unterminated.data());
    EXPECT_EQ(buffer.Written(4), "eth" + Zeros(1));
}

TEST(CopyText, TakesTheSizeOfAnArray)
{
    char name[4];
    CopyText(name, "eth0");
    EXPECT_STREQ(name, "eth");
}

TEST(FormatText, CutsAndTellsTheWholeLength)
{
    Buffer buffer;
    EXPECT_EQ(FormatText(buffer.bytes, 6, "%s%d", "bond", 123), 7);
    EXPECT_EQ(buffer.Written(6), "bond1" + Zeros(1));
}

TEST(JoinTexts, WritesTextsBehindEachOther)
{
    Buffer buffer;
    EXPECT_EQ(JoinTexts(buffer.bytes, 16, {"MTU", " = ", "", "1500"}), 10U);
    EXPECT_EQ(buffer.Written(11), "MTU = 1500" + Zeros(1));
}

TEST(JoinTexts, CutsWithinAnyOfThem)
{
    Buffer buffer;
    EXPECT_EQ(JoinTexts(buffer.bytes, 6, {"bond", "0123", "x"}), 5U);
    EXPECT_EQ(buffer.Written(6), "bond0" + Zeros(1));
    EXPECT_EQ(JoinTexts(buffer.bytes, 1, {"bond"}), 0U);
    EXPECT_STREQ(buffer.bytes, "");
}

// ---- tests on names

TEST(Contains, FindsAPartAnywhere)
{
    EXPECT_TRUE(Contains("bond0", "bond"));
    EXPECT_TRUE(Contains("mybond0", "bond"));
    EXPECT_TRUE(Contains("bond", "bond"));
    EXPECT_TRUE(Contains("bond", ""));
    EXPECT_TRUE(Contains("", ""));
    EXPECT_FALSE(Contains("bon", "bond"));
    EXPECT_FALSE(Contains("BOND", "bond"));
    EXPECT_FALSE(Contains("", "bond"));
}

TEST(Equal, ComparesTheWholeName)
{
    EXPECT_TRUE(Equal("eth1", "eth1"));
    EXPECT_FALSE(Equal("eth1", "eth10"));
    EXPECT_FALSE(Equal("eth10", "eth1"));
    EXPECT_FALSE(Equal("eth1", "Eth1"));
}

TEST(StartsWith, LooksAtTheBeginningAlone)
{
    EXPECT_TRUE(StartsWith("wlan0", "wlan"));
    EXPECT_TRUE(StartsWith("wlan", "wlan"));
    EXPECT_FALSE(StartsWith("wla", "wlan"));
    EXPECT_FALSE(StartsWith("xwlan0", "wlan"));
}

TEST(IsDigit, IsDecimalAlone)
{
    for (int character = -128; character < 128; ++character) {
        EXPECT_EQ(IsDigit(static_cast<char>(character)), character >= 48 && character <= 57)
            << character;
    }
}

// ---- addresses

TEST(ParseIPv4, TakesTheStrictFormIntoNetworkOrder)
{
    uint32_t value = 0;
    ASSERT_TRUE(ParseIPv4("192.168.0.108", &value));
    EXPECT_EQ(value, htonl(0xC0A8006CU));
}

TEST(ParseIPv4, RefusesOtherFormsAndLeavesTheValue)
{
    for (const char* text : {"", "1.2.3", "255.255", "1.2.3.4.5", "1.2.3.256", " 1.2.3.4",
                             "1.2.3.4 ", "1.2.3.4\n", "0x1.2.3.4", "eth0"}) {
        uint32_t value = 77;
        EXPECT_FALSE(ParseIPv4(text, &value)) << text;
        EXPECT_EQ(value, 77U);
    }
}

TEST(NumberOf, IsTheSameOnEveryTarget)
{
    const std::pair<const char*, int> numbers[] = {{"", 0},
                                                   {" 48x", 48},
                                                   {"-1", -1},
                                                   {"2147483648", INT_MIN},
                                                   {"4294967360", 64},
                                                   {"0x10", 0},
                                                   {"+7", 7},
                                                   {"99999999999999999999", -1},
                                                   {"-99999999999999999999", 0}};
    for (const auto& [text, number] : numbers) EXPECT_EQ(NumberOf(text), number) << text;
}

TEST(ParseLooseIPv4, TakesEachFormThatAHandMayWrite)
{
    const std::string zeros(60, '0');
    for (const std::string& text :
         {std::string("10.1.2.3"), std::string("10.1.515"), std::string("0xa.0x01.02.3"),
          std::string("10.1.2.3\r"), std::string("10.1.2.3 # the gate"), "10.1.2." + zeros + "3"}) {
        in_addr value{};
        EXPECT_TRUE(ParseLooseIPv4(text.c_str(), &value)) << text;
        EXPECT_EQ(value.s_addr, htonl(0x0A010203)) << text;
    }
}

TEST(ParseLooseIPv4, TakesAnyLength)
{
    for (const size_t length : {62, 63, 64, 65, 66, 1000, 100000}) {
        const std::string text = std::string(length - 8, '0') + "12.1.2.3";  // octal
        in_addr value{};
        EXPECT_TRUE(ParseLooseIPv4(text.c_str(), &value)) << length;
        EXPECT_EQ(value.s_addr, htonl(0x0A010203)) << length;
    }
}

TEST(ParseLooseIPv4, RefusesOtherTextsAndLeavesTheValue)
{
    for (const char* text : {"", " 10.1.2.3", "10.1.2.3.4", "10.1.2.256", "10.1.2.3,", "10.1.2.x",
                             "10.1.2.3/24", "10.1.2.3;", "10.1.2.3\x01", "10.1.2.3:80"}) {
        in_addr value{77};
        EXPECT_FALSE(ParseLooseIPv4(text, &value)) << text;
        EXPECT_EQ(value.s_addr, 77U) << text;
    }
}

TEST(ParseIPv6, TakesShortenedForms)
{
    in6_addr value{};
    ASSERT_TRUE(ParseIPv6("2001:4860:4860::8888", &value));
    EXPECT_EQ(value.s6_addr[0], 0x20);
    EXPECT_EQ(value.s6_addr[14], 0x88);
    EXPECT_EQ(value.s6_addr[15], 0x88);
}

TEST(ParseIPv6, RefusesOtherFormsAndLeavesTheValue)
{
    for (const char* text : {"", "1.2.3.4", "2001:::1", "fe80::1%eth0", "fe80::1/64", "g::1"}) {
        in6_addr value = IN6ADDR_LOOPBACK_INIT;
        EXPECT_FALSE(ParseIPv6(text, &value)) << text;
        EXPECT_EQ(value.s6_addr[15], 1);
    }
}

TEST(PrintIPv4, WritesDottedText)
{
    Buffer buffer;
    EXPECT_TRUE(PrintIPv4(htonl(0xC0A8006CU), buffer.bytes));
    EXPECT_STREQ(buffer.bytes, "192.168.0.108");
    EXPECT_TRUE(PrintIPv4(0xFFFFFFFFU, buffer.bytes));
    EXPECT_EQ(buffer.Written(kIPv4TextSize), "255.255.255.255" + Zeros(1));
}

TEST(PrintIPv6, WritesTheShortForm)
{
    const in6_addr loopback = IN6ADDR_LOOPBACK_INIT;
    Buffer buffer;
    EXPECT_TRUE(PrintIPv6(loopback, buffer.bytes, 4));
    EXPECT_EQ(buffer.Written(4), "::1" + Zeros(1));
}

TEST(PrintIPv6, RefusesABufferThatIsTooSmall)
{
    const in6_addr loopback = IN6ADDR_LOOPBACK_INIT;
    for (const int size : {3, 1, 0, -1, INT32_MIN}) {
        Buffer buffer;
        EXPECT_FALSE(PrintIPv6(loopback, buffer.bytes, size)) << size;
        EXPECT_EQ(buffer.Written(0), "");
    }
}

TEST(ParseMac, TakesOneOrTwoDigitsAField)
{
    unsigned char mac[kMacSize] = {};
    EXPECT_TRUE(ParseMac("00:1A:b:ff:5:06", mac));
    EXPECT_EQ(std::vector<unsigned char>(mac, mac + kMacSize),
              (std::vector<unsigned char>{0x00, 0x1a, 0x0b, 0xff, 0x05, 0x06}));
}

TEST(ParseMac, DoesNotLookBehindTheSixthField)
{
    unsigned char mac[kMacSize] = {};
    EXPECT_TRUE(ParseMac("00:11:22:33:44:55:66 and more", mac));
    EXPECT_EQ(mac[5], 0x55);
}

TEST(ParseMac, RefusesFewerThanSixFields)
{
    for (const char* text :
         {"", "00:11:22:33:44", "00:11:22:33:44:", "00-11-22-33-44-55", "00:11:22:33:xx:55"}) {
        unsigned char mac[kMacSize] = {};
        EXPECT_FALSE(ParseMac(text, mac)) << text;
    }
}

TEST(PrintMac, WritesLowerCase)
{
    const unsigned char mac[kMacSize] = {0x00, 0x1A, 0x0B, 0xFF, 0x05, 0xC6};
    Buffer buffer;
    PrintMac(mac, buffer.bytes);
    EXPECT_EQ(buffer.Written(kMacTextSize), "00:1a:0b:ff:05:c6" + Zeros(1));
}

// ---- lists of names

TEST(NameList, IsWalkedInItsOrder)
{
    const char* names[] = {"eth2", "eth0", "eth1"};
    std::vector<std::string> walked;
    for (const char* name : NameList(names, 2)) walked.emplace_back(name);
    EXPECT_EQ(walked, (std::vector<std::string>{"eth2", "eth0"}));
}

TEST(NameList, ACountBelowOneIsEmpty)
{
    const char* names[] = {"eth0"};
    for (const int count : {0, -1, INT32_MIN}) {
        for (const char* name : NameList(names, count)) ADD_FAILURE() << name;
    }
}

TEST(NameTable, HandsOutZeroedBuffersOfItsOwn)
{
    NameTable<3, 16> table;
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(std::string(table.Pointers()[i], 16), Zeros(16));
        EXPECT_EQ(table.Pointers()[i] - table.Pointers()[0], i * 16);
    }
    CopyText(table.Pointers()[1], 16, "eth1");
    std::vector<std::string> walked;
    for (const char* name : table.First(2)) walked.emplace_back(name);
    EXPECT_EQ(walked, (std::vector<std::string>{"", "eth1"}));
}

}  // namespace
