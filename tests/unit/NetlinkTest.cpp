// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Netlink.h"

#include "NetlinkWorld.h"

#include <cerrno>

#include <unistd.h>

using namespace fake;

namespace {

// ---- handles

class RtnlOpenTest : public NetlinkWorld {
protected:
    static rtnl_handle Garbage()
    {
        rtnl_handle handle;
        memset(&handle, 0xa5, sizeof(handle));
        return handle;
    }

    /// The bytes behind the descriptor, which no test knows beforehand.
    static std::string BehindFd(const rtnl_handle& handle)
    {
        const auto* bytes = reinterpret_cast<const uint8_t*>(&handle);
        return Hex(Bytes(bytes + 4, bytes + sizeof(handle)));
    }
};

TEST_F(RtnlOpenTest, TheHandleHasTheAddressThatTheKernelChoseAndTheTime)
{
    rtnetlink.port = 0x11223344;
    rtnl_handle handle = Garbage();
    EXPECT_EQ(rtnl_open(&handle), 0);
    EXPECT_GT(handle.fd, 0);
    EXPECT_EQ(BehindFd(handle), Hex("1000 0000 44332211 00000000"  // own address: family, port
                                    "0000 0000 00000000 00000000"  // peer
                                    "03030201 00000000"));         // sequence number, dump
    EXPECT_EQ(Trace(), (Texts{"socket AF_NETLINK", "fcntl F_SETFD", "bind AF_NETLINK 0 0",
                              "getsockname AF_NETLINK 12"}));
    EXPECT_EQ(OpenHandles(), Texts{"socket AF_NETLINK 3 0"});  // SOCK_RAW, NETLINK_ROUTE
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(RtnlOpenTest, WithoutASocketNothingElseIsDone)
{
    Fail("socket", EMFILE);
    rtnl_handle handle = Garbage();
    EXPECT_EQ(rtnl_open(&handle), -1);
    EXPECT_EQ(handle.fd, -1);
    EXPECT_EQ(BehindFd(handle), Hex(Bytes(32, 0)));
    EXPECT_EQ(Trace(), Texts{"socket AF_NETLINK"});
    EXPECT_EQ(Log(), (LogLines{Error("rtnl_open", "socket failed")}));
}

TEST_F(RtnlOpenTest, AHandleThatCannotBeBoundIsClosedAndKeepsItsNumber)
{
    Fail("bind", EADDRINUSE);
    rtnl_handle handle = Garbage();
    EXPECT_EQ(rtnl_open(&handle), -1);
    EXPECT_GT(handle.fd, 0);
    EXPECT_EQ(handle.seq, 0U);
    EXPECT_EQ(Trace(), (Texts{"socket AF_NETLINK", "fcntl F_SETFD", "bind AF_NETLINK 0 0",
                              "close AF_NETLINK"}));
    EXPECT_EQ(OpenHandles(), Texts{});
    EXPECT_EQ(Log(), (LogLines{Error("rtnl_open", "bind failed")}));
}

TEST_F(RtnlOpenTest, AHandleWithoutAnAddressIsClosedAndKeepsItsNumber)
{
    Fail("getsockname", ENOBUFS);
    rtnl_handle handle = Garbage();
    EXPECT_EQ(rtnl_open(&handle), -1);
    EXPECT_GT(handle.fd, 0);
    EXPECT_EQ(handle.seq, 0U);
    EXPECT_EQ(Trace(), (Texts{"socket AF_NETLINK", "fcntl F_SETFD", "bind AF_NETLINK 0 0",
                              "getsockname AF_NETLINK 12", "close AF_NETLINK"}));
    EXPECT_EQ(Log(),
              (LogLines{Error("rtnl_open", "getsockname failed [No buffer space available]")}));
}

TEST_F(RtnlOpenTest, AFailureIsToldBeforeTheHandleIsClosed)
{
    for (const char* call : {"bind", "getsockname"}) {
        ClearLog();
        size_t told = 0;
        Fail(call, EIO);
        OnCall("close AF_NETLINK", [&] { told = Log().size(); });
        rtnl_handle handle = Garbage();
        EXPECT_EQ(rtnl_open(&handle), -1);
        EXPECT_EQ(told, 1U) << call;
    }
}

TEST_F(RtnlOpenTest, TheTimeIsTakenOnceTheAddressIsKnown)
{
    OnCall("getsockname", [] { SetClock(kNow + 9); });
    rtnl_handle handle = Garbage();
    EXPECT_EQ(rtnl_open(&handle), 0);
    EXPECT_EQ(handle.seq, static_cast<uint32_t>(kNow + 9));
}

TEST_F(RtnlOpenTest, DescriptorZeroIsNeitherBoundNorAsked)
{
    AnswerOddly(Odd::nothing);
    {
        const OwnCalls making;
        close(STDIN_FILENO);  // the next descriptor is this one
    }
    rtnl_handle handle = Garbage();
    EXPECT_EQ(rtnl_open(&handle), 0);
    EXPECT_EQ(handle.fd, 0);
    EXPECT_EQ(handle.local.nl_family, AF_NETLINK);
    EXPECT_EQ(handle.local.nl_pid, 0U);
    EXPECT_EQ(handle.seq, static_cast<uint32_t>(kNow));
    EXPECT_EQ(Trace(), (Texts{"socket AF_NETLINK", "fcntl F_SETFD"}));
}

TEST_F(RtnlOpenTest, NothingIsOpenedForNoHandle)
{
    EXPECT_EQ(rtnl_open(nullptr), -1);
    EXPECT_EQ(Trace(), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

// ---- attributes

/// A message of a header alone in a buffer of 64 bytes, in which all that is not written stays ee.
struct Message {
    alignas(nlmsghdr) uint8_t bytes[64];

    explicit Message(uint32_t length = 16)
    {
        memset(bytes, 0xee, sizeof(bytes));
        Header()->nlmsg_len = length;
    }
    nlmsghdr* Header() { return reinterpret_cast<nlmsghdr*>(bytes); }
    uint32_t Length() { return Header()->nlmsg_len; }

    /// All behind the header, to the end of the buffer.
    std::string Behind() const { return Hex(Bytes(bytes + 16, bytes + sizeof(bytes))); }
    std::string Whole() const { return Hex(Bytes(bytes, bytes + sizeof(bytes))); }
};

/// `text`, filled up with ee to the end of the buffer behind the header.
std::string Filled(const std::string& text)
{
    Bytes bytes = FromHex(text);
    bytes.resize(48, 0xee);
    return Hex(bytes);
}

TEST(Addattr, ThePayloadStandsBehindItsHeaderAndPaddingIsNotWritten)
{
    Message message;
    const uint8_t payload[] = {1, 2, 3, 4, 5};
    EXPECT_EQ(addattr_l(message.Header(), 64, 0x0102, payload, 5), 0);
    EXPECT_EQ(message.Length(), 28U);
    EXPECT_EQ(message.Behind(), Filled("0900 0201 0102030405"));
}

TEST(Addattr, NumbersKeepTheirWidthInTheOrderOfTheMachine)
{
    Message message;
    EXPECT_EQ(addattr8(message.Header(), 64, 1, 0x12), 0);
    EXPECT_EQ(message.Length(), 24U);
    EXPECT_EQ(addattr16(message.Header(), 64, 2, 0x1234), 0);
    EXPECT_EQ(message.Length(), 32U);
    EXPECT_EQ(addattr32(message.Header(), 64, 3, 0x12345678), 0);
    EXPECT_EQ(message.Length(), 40U);
    EXPECT_EQ(addattr64(message.Header(), 64, 4, 0x123456789abcdef0), 0);
    EXPECT_EQ(message.Length(), 52U);
    EXPECT_EQ(message.Behind(), Filled("0500 0100 12eeeeee"
                                       "0600 0200 3412eeee"
                                       "0800 0300 78563412"
                                       "0c00 0400 f0debc9a78563412"));
}

TEST(Addattr, WithoutAPayloadTheMessageGrowsByFour)
{
    Message message;
    EXPECT_EQ(addattr(message.Header(), 64, 7), 0);
    EXPECT_EQ(message.Length(), 20U);
    EXPECT_EQ(message.Behind(), Filled("0400 0700"));
}

TEST(Addattr, AnAttributeBeginsAtAMultipleOfFour)
{
    Message message(17);
    EXPECT_EQ(addattr(message.Header(), 64, 7), 0);
    EXPECT_EQ(message.Length(), 24U);
    EXPECT_EQ(message.Behind(), Filled("eeeeeeee 0400 0700"));
}

TEST(Addattr, WhatExactlyFillsTheMessageFitsAndOneByteMoreDoesNot)
{
    const uint8_t payload[21] = {};
    Message exact;
    EXPECT_EQ(addattr_l(exact.Header(), 40, 1, payload, 20), 0);
    EXPECT_EQ(exact.Length(), 40U);
    Message padded;
    EXPECT_EQ(addattr_l(padded.Header(), 40, 1, payload, 17), 0);
    EXPECT_EQ(padded.Length(), 40U);

    Message more;
    const std::string before = more.Whole();
    EXPECT_EQ(addattr_l(more.Header(), 40, 1, payload, 21), -1);
    EXPECT_EQ(addattr_l(more.Header(), 39, 1, payload, 20), -1);
    EXPECT_EQ(addattr_l(more.Header(), 39, 1, payload, 17), -1);  // its padding does not fit
    EXPECT_EQ(more.Whole(), before);
}

TEST(Addattr, EachNumberIsRefusedWhereItDoesNotFit)
{
    Message message(60);
    const std::string before = message.Whole();
    EXPECT_EQ(addattr(message.Header(), 63, 1), -1);
    EXPECT_EQ(addattr8(message.Header(), 64, 1, 1), -1);
    EXPECT_EQ(addattr16(message.Header(), 64, 1, 1), -1);
    EXPECT_EQ(addattr32(message.Header(), 64, 1, 1), -1);
    EXPECT_EQ(addattr64(message.Header(), 64, 1, 1), -1);
    EXPECT_EQ(message.Whole(), before);
}

TEST(Addattr, NoPayloadOfNegativeLengthAndNoneWithoutData)
{
    Message message;
    const std::string before = message.Whole();
    EXPECT_EQ(addattr_l(message.Header(), 64, 1, "text", -4), -1);
    EXPECT_EQ(addattr_l(message.Header(), 64, 1, nullptr, 4), -1);
    EXPECT_EQ(addattr_l(message.Header(), INT32_MAX, 1, "text", INT32_MIN), -1);
    EXPECT_EQ(addattr_l(message.Header(), -1, 1, "text", 4), -1);
    EXPECT_EQ(message.Whole(), before);
    EXPECT_EQ(addattr_l(nullptr, 64, 1, "text", 4), -1);
}

// ---- nests

TEST(AddattrNest, AnEmptyNestHasFourBytes)
{
    Message message;
    rtattr* nest = addattr_nest(message.Header(), 64, 18);
    EXPECT_EQ(reinterpret_cast<uint8_t*>(nest), message.bytes + 16);
    EXPECT_EQ(addattr_nest_end(message.Header(), nest), 20);
    EXPECT_EQ(message.Behind(), Filled("0400 1200"));
}

TEST(AddattrNest, ANestCoversThePaddingOfItsLastAttribute)
{
    Message message;
    rtattr* nest = addattr_nest(message.Header(), 64, 18);
    EXPECT_EQ(addattr8(message.Header(), 64, 1, 0x12), 0);
    EXPECT_EQ(addattr_nest_end(message.Header(), nest), 28);
    EXPECT_EQ(message.Behind(), Filled("0c00 1200 0500 0100 12eeeeee"));
}

TEST(AddattrNest, ANestMayHoldANest)
{
    Message message;
    rtattr* outer = addattr_nest(message.Header(), 64, 18);
    EXPECT_EQ(addattr16(message.Header(), 64, 1, 0x1234), 0);
    rtattr* inner = addattr_nest(message.Header(), 64, 2);
    EXPECT_EQ(addattr32(message.Header(), 64, 3, 5), 0);
    EXPECT_EQ(addattr_nest_end(message.Header(), inner), 40);
    EXPECT_EQ(addattr_nest_end(message.Header(), outer), 40);
    EXPECT_EQ(message.Behind(), Filled("1800 1200"
                                       "0600 0100 3412eeee"
                                       "0c00 0200 0800 0300 05000000"));
}

TEST(AddattrNest, ANestBeginsAndEndsAtAMultipleOfFour)
{
    Message message(18);
    rtattr* nest = addattr_nest(message.Header(), 64, 18);
    EXPECT_EQ(reinterpret_cast<uint8_t*>(nest), message.bytes + 20);
    message.Header()->nlmsg_len = 29;  // a caller's own bytes
    EXPECT_EQ(addattr_nest_end(message.Header(), nest), 29);
    EXPECT_EQ(message.Behind(), Filled("eeeeeeee 0c00 1200"));
}

TEST(AddattrNest, ANestThatDoesNotFitLeavesTheMessageAsItIs)
{
    Message message(32);
    rtattr* nest = addattr_nest(message.Header(), 32, 18);
    EXPECT_EQ(reinterpret_cast<uint8_t*>(nest), message.bytes + 32);
    EXPECT_EQ(addattr_nest_end(message.Header(), nest), 32);
    EXPECT_EQ(message.Length(), 32U);
    EXPECT_EQ(message.Behind(), Filled("eeeeeeee eeeeeeee eeeeeeee eeeeeeee 0000"));
}

TEST(AddattrNest, NothingHappensWithoutAMessage)
{
    Message message;
    const std::string before = message.Whole();
    EXPECT_EQ(addattr_nest(nullptr, 64, 18), nullptr);
    EXPECT_EQ(addattr_nest_end(nullptr, reinterpret_cast<rtattr*>(message.bytes)), -1);
    EXPECT_EQ(addattr_nest_end(message.Header(), nullptr), -1);
    EXPECT_EQ(message.Whole(), before);
}

// ---- names

class XllNameToIndexTest : public NetlinkWorld {};

TEST_F(XllNameToIndexTest, TheKernelIsAskedOverASocketOfItsOwn)
{
    Texts open;
    OnCall("ioctl", [&] { open = OpenHandles(); });
    EXPECT_EQ(xll_name_to_index("eth0"), 2);
    EXPECT_EQ(open, Texts{"socket AF_INET 2 0"});  // SOCK_DGRAM
    EXPECT_EQ(Trace(), (Texts{"socket AF_INET", "fcntl F_SETFD", "ioctl SIOCGIFINDEX eth0",
                              "close AF_INET"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(XllNameToIndexTest, AnUnknownInterfaceHasIndexZeroAndALine)
{
    EXPECT_EQ(xll_name_to_index("eth9"), 0);
    EXPECT_EQ(Trace(), (Texts{"socket AF_INET", "fcntl F_SETFD", "ioctl SIOCGIFINDEX eth9",
                              "close AF_INET"}));
    EXPECT_EQ(Log(), (LogLines{Error("xll_name_to_index", "can't find device 'eth9' ")}));
}

TEST_F(XllNameToIndexTest, TheSocketIsClosedBeforeTheLine)
{
    size_t told = 1;
    OnCall("close AF_INET", [&] { told = Log().size(); });
    EXPECT_EQ(xll_name_to_index("eth9"), 0);
    EXPECT_EQ(told, 0U);
    EXPECT_EQ(Log().size(), 1U);
}

TEST_F(XllNameToIndexTest, WithoutASocketTheIndexIsZero)
{
    Fail("socket", EMFILE);
    EXPECT_EQ(xll_name_to_index("eth0"), 0);
    EXPECT_EQ(Trace(), Texts{"socket AF_INET"});
    EXPECT_EQ(Log(), LogLines{NoDevice("eth0")});
}

TEST_F(XllNameToIndexTest, AnIndexThatIsNotAboveZeroIsHandedOutWithALine)
{
    kernel.At("eth0").index = -3;
    EXPECT_EQ(xll_name_to_index("eth0"), -3);
    kernel.At("eth0").index = 0;  // the record stays as it was handed in
    EXPECT_EQ(xll_name_to_index("eth0"), -1);
    EXPECT_EQ(Log(), (LogLines{NoDevice("eth0"), NoDevice("eth0")}));
}

TEST_F(XllNameToIndexTest, FifteenCharactersOfANameAreAskedFor)
{
    kernel.Add("abcdefghijklmno");
    EXPECT_EQ(xll_name_to_index("abcdefghijklmnop"), 3);
    EXPECT_EQ(TraceOf({"ioctl"}), Texts{"ioctl SIOCGIFINDEX abcdefghijklmno"});

    EXPECT_EQ(xll_name_to_index("bcdefghijklmnopqr"), 0);
    EXPECT_EQ(Log(), LogLines{NoDevice("bcdefghijklmnopqr")});
}

TEST_F(XllNameToIndexTest, NoNameIsRefusedInSilence)
{
    EXPECT_EQ(xll_name_to_index(nullptr), 0);
    EXPECT_EQ(Trace(), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(XllNameToIndexTest, EachFailureGivesZeroAndClosesTheSocket)
{
    static int index;
    FailEachCall([] { index = xll_name_to_index("eth0"); },
                 [](const std::string& failed) {
                     const bool harmless = failed == "fcntl F_SETFD";
                     EXPECT_EQ(index, harmless ? 2 : 0);
                     EXPECT_EQ(Log(), harmless ? LogLines{} : LogLines{NoDevice("eth0")});
                 },
                 {});
}

}  // namespace
