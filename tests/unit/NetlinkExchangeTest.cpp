// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Netlink.h"

#include "NetlinkWorld.h"

#include <cerrno>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace fake;

extern "C" int __wrap_sched_yield()
{
    NoteOnly("sched_yield");
    return 0;
}

namespace {

// Messages as they arrive. The handle's port is 4711 (67 12 00 00), its sequence number that of the
// world's clock and one more.
constexpr char kOurs[] = "04030201 67120000";
constexpr char kRequestBack[] = "10000000 1000 0504 04030201 00000000";

/// A message with its header as told and bytes behind it.
std::string Told(const std::string& lengthAndType, const std::string& behind = "",
                 const std::string& whose = kOurs)
{
    return lengthAndType + " 0000" + whose + behind;
}

/// The acknowledgement with an error word.
std::string Word(const std::string& error)
{
    return Told("24000000 0200", error + kRequestBack);
}

std::string Done()
{
    return Word("00000000");
}

/// A message of a kind that answers nothing.
std::string Other()
{
    return Told("10000000 0300");
}

Datagram Arrives(const std::string& messages, int flags = 0)
{
    Datagram datagram;
    datagram.bytes = FromHex(messages);
    datagram.flags = flags;
    return datagram;
}

LogLine Says(const std::string& text)
{
    return Error("rtnl_talk", text);
}

class RtnlTalkTest : public NetlinkWorld {
protected:
    void SetUp() override
    {
        NetlinkWorld::SetUp();
        ASSERT_EQ(rtnl_open(&handle), 0);
        ClearTrace();
        request.nlmsg_len = sizeof(request);
        request.nlmsg_type = RTM_NEWLINK;
        request.nlmsg_flags = NLM_F_REQUEST | NLM_F_CREATE;
    }
    void TearDown() override
    {
        close(handle.fd);
        NetlinkWorld::TearDown();
    }

    int Talk() { return rtnl_talk(&handle, &request, 0, 0, nullptr, nullptr, nullptr); }

    /// Talks to a kernel that sends these, and gives what was logged.
    LogLines After(const std::deque<Datagram>& script, int result)
    {
        rtnetlink.script = script;
        ClearLog();
        EXPECT_EQ(Talk(), result);
        EXPECT_TRUE(rtnetlink.script.empty()) << "not waited for";
        return Log();
    }

    /// Talks in a child that is ended as it makes its `turns`-th call of that name: what was logged
    /// until then. The child tells when the exchange has ended by itself.
    LogLines StalledUntil(const std::string& call, int turns)
    {
        const int status = InChild([&] {
            for (int turn = 1; turn < turns; ++turn) OnCall(call, [] {});
            OnCall(call, [] { _exit(0); });
        });
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "the exchange has ended";
        return Log();
    }

    /// Talks in a child after `prepare`. The status of the child: 1 when the exchange has ended.
    int InChild(const std::function<void()>& prepare)
    {
        ClearLog();
        const pid_t child = fork();
        if (child == 0) {
            prepare();
            (void)Talk();
            _exit(1);
        }
        int status = 0;
        waitpid(child, &status, 0);
        return status;
    }

    rtnl_handle handle{};
    nlmsghdr request{};
};

// ---- the request

TEST_F(RtnlTalkTest, TheRequestGoesToTheKernelWithItsNumberAndAsksForAnAnswer)
{
    EXPECT_EQ(Talk(), 0);
    EXPECT_EQ(errno, 0);
    EXPECT_EQ(SentBytes(), Hex("10000000 1000 0504 04030201 00000000"));
    EXPECT_EQ(handle.seq, 0x01020304U);
    EXPECT_EQ(request.nlmsg_seq, 0x01020304U);
    EXPECT_EQ(rtnetlink.peers[0].nl_family, AF_NETLINK);
    EXPECT_EQ(rtnetlink.peers[0].nl_pid, 0U);
    EXPECT_EQ(rtnetlink.peers[0].nl_groups, 0U);
    EXPECT_EQ(rtnetlink.rooms, std::vector<size_t>{8192});
    EXPECT_EQ(Trace(), (Texts{"malloc", "sendmsg 0", "recvmsg 0"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(RtnlTalkTest, EachRequestOfAHandleHasTheNextNumber)
{
    EXPECT_EQ(Talk(), 0);
    EXPECT_EQ(Talk(), 0);
    EXPECT_EQ(Hex(rtnetlink.requests[1]), Hex("10000000 1000 0504 05030201 00000000"));
}

TEST_F(RtnlTalkTest, AsManyBytesAreSentAsTheHeaderTells)
{
    struct {
        nlmsghdr header;
        char behind[8];
    } longer = {request, {1, 2, 3, 4, 5, 6, 7, 8}};
    longer.header.nlmsg_len = 19;
    EXPECT_EQ(rtnl_talk(&handle, &longer.header, 0, 0, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(SentBytes(), Hex("13000000 1000 0504 04030201 00000000 010203"));
}

TEST_F(RtnlTalkTest, AnotherPeerIsSpokenToAndAnswers)
{
    // The widest is what a process id of the kernel's largest `pid_max` takes.
    const uint32_t number = handle.seq;
    for (const pid_t peer : {77, 0x10000 + 77, 0x400000 - 1}) {
        rtnetlink.peers.clear();
        handle.seq = number;
        Datagram answer = Arrives(Done());
        answer.sender = static_cast<uint32_t>(peer);
        rtnetlink.script = {answer};
        EXPECT_EQ(rtnl_talk(&handle, &request, peer, 0x10005, nullptr, nullptr, nullptr), 0);
        EXPECT_EQ(rtnetlink.peers[0].nl_pid, static_cast<uint32_t>(peer));
        EXPECT_EQ(rtnetlink.peers[0].nl_groups, 0x10005U);
    }
}

TEST_F(RtnlTalkTest, WithoutMemoryNothingIsSent)
{
    Fail("malloc", ENOMEM);
    EXPECT_EQ(Talk(), -1);
    EXPECT_EQ(Trace(), Texts{"malloc"});
    EXPECT_EQ(handle.seq, static_cast<uint32_t>(kNow));
    EXPECT_EQ(request.nlmsg_seq, 0U);
    EXPECT_EQ(request.nlmsg_flags, NLM_F_REQUEST | NLM_F_CREATE);
    EXPECT_EQ(Log(), LogLines{Says("malloc faliled!")});
}

TEST_F(RtnlTalkTest, ARequestThatCannotBeSentIsNotWaitedFor)
{
    Fail("sendmsg", EPERM);
    EXPECT_EQ(Talk(), -1);
    EXPECT_EQ(errno, EPERM);
    EXPECT_EQ(Trace(), (Texts{"malloc", "sendmsg 0"}));
    EXPECT_EQ(Log(), LogLines{Says("can't talk to rtnetlink")});
}

TEST_F(RtnlTalkTest, NoHandleAndNoRequestAreRefusedInSilence)
{
    EXPECT_EQ(rtnl_talk(nullptr, &request, 0, 0, nullptr, nullptr, nullptr), -1);
    EXPECT_EQ(rtnl_talk(&handle, nullptr, 0, 0, nullptr, nullptr, nullptr), -1);
    EXPECT_EQ(Trace(), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(RtnlTalkTest, TheSocketStaysOpen)
{
    EXPECT_EQ(Talk(), 0);
    rtnetlink.refusal = EPERM;
    EXPECT_EQ(Talk(), -1);
    EXPECT_EQ(OpenHandles(), Texts{"socket AF_NETLINK 3 0"});
}

// ---- the answer

TEST_F(RtnlTalkTest, AnAcknowledgementWithoutErrorIsASuccess)
{
    errno = EPERM;
    EXPECT_EQ(After({Arrives(Done())}, 0), LogLines{});
    EXPECT_EQ(errno, 0);
}

TEST_F(RtnlTalkTest, ARefusalIsToldAndItsReasonIsLeft)
{
    EXPECT_EQ(After({Arrives(Word("efffffff"))}, -1),
              (LogLines{Warn("rtnl_talk", "RTNETLINK answers: File exists")}));
    EXPECT_EQ(errno, 17);
}

TEST_F(RtnlTalkTest, AnErrorWordOfAnySizeIsTurnedRound)
{
    EXPECT_EQ(After({Arrives(Word("05000000"))}, -1),
              (LogLines{Warn("rtnl_talk", "RTNETLINK answers: Unknown error -5")}));
    EXPECT_EQ(errno, -5);
}

TEST_F(RtnlTalkTest, TheAnswerMayStandBehindOtherMessages)
{
    // 18 bytes, padded to 20.
    const std::string padded = Told("12000000 0300", "aabb 0000");
    EXPECT_EQ(After({Arrives(Other() + padded + Done())}, 0),
              (LogLines{Says("unexpected reply!"), Says("unexpected reply!")}));
}

TEST_F(RtnlTalkTest, EveryMessageButTheAnswerIsUnexpected)
{
    // Nothing, the end of a listing, an overrun, a link.
    for (const char* type : {"0100", "0300", "0400", "1000"}) {
        EXPECT_EQ(After({Arrives(Told("10000000 " + std::string(type), "") + Done())}, 0),
                  LogLines{Says("unexpected reply!")})
            << type;
        handle.seq = static_cast<uint32_t>(kNow);
    }
}

TEST_F(RtnlTalkTest, OnlyAPieceThatWasCutIsATruncatedOne)
{
    Datagram piece = Arrives("0000 0000 0000 0000 0000 0000");
    piece.flags = MSG_CTRUNC | MSG_EOR;
    EXPECT_EQ(After({piece, Arrives(Done())}, 0), LogLines{Says("remnant of size 12!")});
}

TEST_F(RtnlTalkTest, NothingBehindTheAnswerIsLookedAt)
{
    EXPECT_EQ(After({Arrives(Done() + Word("efffffff") + "aabbcc")}, 0), LogLines{});
}

TEST_F(RtnlTalkTest, TheAnswerMayComeInALaterPiece)
{
    EXPECT_EQ(After({Arrives(Other()), Arrives(Other()), Arrives(Done())}, 0),
              (LogLines{Says("unexpected reply!"), Says("unexpected reply!")}));
    EXPECT_EQ(rtnetlink.rooms, (std::vector<size_t>{8192, 8192, 8192}));
}

TEST_F(RtnlTalkTest, APieceMayFillTheWholeBuffer)
{
    std::string messages;
    for (int i = 0; i < 8192 / 16; ++i) messages += Other();
    EXPECT_EQ(After({Arrives(messages), Arrives(Done())}, 0),
              LogLines(8192 / 16, Says("unexpected reply!")));
}

// ---- the wait

TEST_F(RtnlTalkTest, AnInterruptedWaitGoesOnInSilence)
{
    Fail("recvmsg", EINTR);
    Fail("recvmsg", EINTR);
    EXPECT_EQ(Talk(), 0);
    EXPECT_EQ(Trace(), (Texts{"malloc", "sendmsg 0", "recvmsg 0", "recvmsg 0", "recvmsg 0"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(RtnlTalkTest, AnErrorOfTheSocketIsToldAndTheWaitGoesOn)
{
    Fail("recvmsg", ENOBUFS);
    Fail("recvmsg", EINTR);
    Fail("recvmsg", EIO);
    EXPECT_EQ(Talk(), 0);
    EXPECT_EQ(TraceOf({"recvmsg"}).size(), 4U);
    EXPECT_EQ(Log(), (LogLines{Says("OVERRUN"), Says("OVERRUN")}));
}

TEST_F(RtnlTalkTest, AnErrorThatPersistsIsToldWithoutEnd)
{
    FailAll("recvmsg", ENOTCONN);
    EXPECT_EQ(StalledUntil("recvmsg", 200), LogLines(199, Says("OVERRUN")));
}

TEST_F(RtnlTalkTest, TheEndOfTheConnectionEndsTheExchange)
{
    EXPECT_EQ(After({Arrives("")}, -1), LogLines{Says("EOF on netlink")});
    EXPECT_EQ(TraceOf({"recvmsg"}).size(), 1U);
}

TEST_F(RtnlTalkTest, ASenderAddressOfAnotherLengthIsToldAndNothingMore)
{
    for (const socklen_t length : {0U, 8U, 11U, 13U, 16U}) {
        Datagram other = Arrives(Other());
        other.senderLength = length;
        EXPECT_EQ(After({other, Arrives(Word("efffffff"))}, -1),
                  (LogLines{Says("sender address length == " + std::to_string(length)),
                            Says("unexpected reply!"), Answers(EEXIST)}));
        --handle.seq;  // the answers above have the first number
    }
}

// ---- broken messages

TEST_F(RtnlTalkTest, AMessageCutOffByTheBufferEndsTheExchange)
{
    // Longer than what came, or too short for its own header.
    for (const char* broken :
         {"24000000 0200", "11000000 0300", "0f000000 0300", "00000000 0300"}) {
        EXPECT_EQ(After({Arrives(Told(broken), MSG_TRUNC)}, -1),
                  LogLines{Says("truncated message")});
        --handle.seq;
    }
}

TEST_F(RtnlTalkTest, ACutOffPieceIsToldAtItsEndAndTheNextIsWaitedFor)
{
    EXPECT_EQ(After({Arrives(Other() + "aabbcc", MSG_TRUNC), Arrives(Done())}, 0),
              (LogLines{Says("unexpected reply!"), Says("message truncated")}));
    --handle.seq;
    EXPECT_EQ(After({Arrives("aabbcc", MSG_TRUNC), Arrives(Done())}, 0),
              LogLines{Says("message truncated")});
    --handle.seq;
    EXPECT_EQ(After({Arrives(Done(), MSG_TRUNC)}, 0), LogLines{});
}

TEST_F(RtnlTalkTest, BytesThatMakeNoHeaderAreTold)
{
    EXPECT_EQ(After({Arrives(Other() + "aabbcc"), Arrives(Done())}, 0),
              (LogLines{Says("unexpected reply!"), Says("remnant of size 3!")}));
    --handle.seq;
    const std::string fifteen = "000102030405060708090a0b0c0d0e";
    EXPECT_EQ(After({Arrives(fifteen), Arrives(Done())}, 0), LogLines{Says("remnant of size 15!")});
}

TEST_F(RtnlTalkTest, AMessageLongerThanWhatCameIsToldAndThenJudgedByItsType)
{
    EXPECT_EQ(After({Arrives(Told("64000000 0200", std::string("00000000") + kRequestBack))}, 0),
              LogLines{Says("malformed message: len=100!")});
    --handle.seq;
    EXPECT_EQ(After({Arrives(Told("64000000 0200", "efffffff"))}, -1),
              (LogLines{Says("malformed message: len=100!"), Answers(EEXIST)}));
    --handle.seq;
    // Stepping over it leaves nothing.
    EXPECT_EQ(After({Arrives(Told("64000000 0300", Done())), Arrives(Done())}, 0),
              (LogLines{Says("malformed message: len=100!"), Says("unexpected reply!")}));
    --handle.seq;
    EXPECT_EQ(After({Arrives(Told("ffffff7f 0300")), Arrives(Done())}, 0),
              (LogLines{Says("malformed message: len=2147483647!"), Says("unexpected reply!")}));
}

TEST_F(RtnlTalkTest, AMessageTooShortForItsHeaderIsToldAndThenJudgedByItsType)
{
    // 5 bytes, padded to 8: what follows them is taken for the next header.
    EXPECT_EQ(After({Arrives(Told("05000000 0300")), Arrives(Done())}, 0),
              (LogLines{Says("malformed message: len=5!"), Says("unexpected reply!"),
                        Says("remnant of size 8!")}));
}

TEST_F(RtnlTalkTest, AnErrorMessageThatIsTooShortEndsTheExchange)
{
    const struct {
        std::string message;
        LogLines before;
    } rows[] = {
        {Told("23000000 0200", "00000000 10000000 1000 0504 04030201 000000"), {}},
        {Told("10000000 0200"), {}},
        // Shorter than the header, or below zero.
        {Told("08000000 0200", Done()), {Says("malformed message: len=8!")}},
        {Told("00000000 0200", Done()), {Says("malformed message: len=0!")}},
        {Told("ffffffff 0200", Done()), {Says("malformed message: len=-1!")}},
        // Said to be long enough, but the word itself has not come.
        {Told("64000000 0200", "000000"), {Says("malformed message: len=100!")}},
        {Told("64000000 0200"), {Says("malformed message: len=100!")}},
    };
    for (const auto& row : rows) {
        LogLines lines = row.before;
        lines.push_back(Says("ERROR truncated"));
        EXPECT_EQ(After({Arrives(row.message)}, -1), lines) << row.message;
        --handle.seq;
    }
}

// ---- stalls

/// A stray message is looked at again without end, in silence; nothing more is received.
TEST_F(RtnlTalkTest, AStrayMessageStallsTheExchange)
{
    Datagram foreign = Arrives(Done());
    foreign.sender = 1;
    const Datagram strays[] = {
        foreign,
        Arrives(Told("24000000 0200", std::string("00000000") + kRequestBack, "04030201 68120000")),
        Arrives(Told("24000000 0200", std::string("00000000") + kRequestBack, "05030201 67120000")),
        Arrives(Told("10000000 0300", Done(), "03030201 67120000")),  // the answer lies behind it
    };
    for (const Datagram& stray : strays) {
        rtnetlink.script = {stray};
        EXPECT_EQ(StalledUntil("sched_yield", 500), LogLines{});
    }
}

TEST_F(RtnlTalkTest, AStrayThatIsMalformedIsToldAtEachTurn)
{
    rtnetlink.script = {Arrives(Told("64000000 0200", "", "04030201 68120000"))};
    EXPECT_EQ(StalledUntil("sched_yield", 200), LogLines(200, Says("malformed message: len=100!")));
}

/// Nothing is called in this stall but the log, so the child is ended by the size of its output.
TEST_F(RtnlTalkTest, AMessageThatNoStepLeadsOverStallsTheExchange)
{
    const struct {
        const char* header;
        const char* told;
    } rows[] = {{"00000000 0300", "0"},
                {"fcffffff 0300", "-4"},
                {"f0ffffff 0300", "-16"},
                {"00000080 0300", "-2147483648"}};
    for (const auto& row : rows) {
        rtnetlink.script = {Arrives(Other() + Told(row.header))};
        const int status = InChild([] {
            constexpr rlim_t kRoom = 1 << 16;
            const auto written = static_cast<rlim_t>(lseek(STDOUT_FILENO, 0, SEEK_END));
            const rlimit limit = {written + kRoom, written + kRoom};
            setrlimit(RLIMIT_FSIZE, &limit);
        });
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGXFSZ) << row.told;

        const LogLine turn[] = {Says("unexpected reply!"),
                                Says(std::string("malformed message: len=") + row.told + "!")};
        const LogLines lines = Log();
        ASSERT_GT(lines.size(), 100U);
        for (size_t i = 0; i < lines.size(); ++i) EXPECT_EQ(lines[i], turn[i % 2]) << i;
    }
}

// ---- failures

TEST_F(RtnlTalkTest, EachFailureIsToldAndLeavesNothingOpen)
{
    static int result;
    const auto talk = [this] {
        rtnl_handle own;
        (void)rtnl_open(&own);
        result = rtnl_talk(&own, &request, 0, 0, nullptr, nullptr, nullptr);
        if (IsOpen(own.fd, "socket AF_NETLINK")) close(own.fd);
    };
    close(handle.fd);
    FailEachCall(talk,
                 [](const std::string& failed) {
                     const bool received = failed.rfind("recvmsg", 0) == 0;
                     const bool harmless = failed == "fcntl F_SETFD";
                     EXPECT_EQ(result, received || harmless ? 0 : -1);
                     if (harmless) return;

                     EXPECT_EQ(LogOf("rtnl_talk"),
                               LogLines{Says(failed == "malloc" ? "malloc faliled!"
                                             : received         ? "OVERRUN"
                                                                : "can't talk to rtnetlink")});
                 },
                 {});
}

}  // namespace
