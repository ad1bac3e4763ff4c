// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The control sockets, and what is asked and set on them.

#include "Base.h"

#include "fake/World.h"

#include <cerrno>
#include <cstring>
#include <unistd.h>

#include <linux/sockios.h>
#include <net/if.h>

using namespace fake;

namespace {

// ---- RequestFor

TEST(RequestFor, IsZeroedAndNamed)
{
    const ifreq request = vorlix::RequestFor("eth0");
    ifreq expected;
    memset(&expected, 0, sizeof(expected));
    memcpy(expected.ifr_name, "eth0", 4);
    EXPECT_EQ(memcmp(&request, &expected, sizeof(request)), 0);
}

TEST(RequestFor, Takes15CharactersOfTheName)
{
    EXPECT_STREQ(vorlix::RequestFor("eth-fifteen-abc").ifr_name, "eth-fifteen-abc");
    EXPECT_STREQ(vorlix::RequestFor("eth-fifteen-abcdefgh").ifr_name, "eth-fifteen-abc");
    EXPECT_STREQ(vorlix::RequestFor("").ifr_name, "");
}

// ---- NetIOCtrl, NetIOCtrlv6

struct Control {
    const char* operation;
    bool (*request)(int, void*);
    std::string family;
    std::string tail;  // what the message of a refusal tells of the record
};

void PrintTo(const Control& control, std::ostream* out)
{
    *out << control.operation;
}

class ControlSocketTest : public World, public testing::WithParamInterface<Control> {
protected:
    static bool Request(int cmd, ifreq& record) { return GetParam().request(cmd, &record); }

    static LogLine Refused(const std::string& cmd, const std::string& reason,
                           const std::string& record)
    {
        return Error(GetParam().operation, "cmd " + cmd + " error.[" + reason + "]" +
                                               (GetParam().tail.empty() ? "" : " " + record + " "));
    }
};

TEST_P(ControlSocketTest, PerformsTheRequest)
{
    kernel.Add("eth0").index = 7;
    ifreq request = vorlix::RequestFor("eth0");
    EXPECT_TRUE(Request(SIOCGIFINDEX, request));
    EXPECT_EQ(request.ifr_ifindex, 7);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_P(ControlSocketTest, OpensItsSocketOnceAndKeepsIt)
{
    kernel.Add("eth0");
    ifreq request = vorlix::RequestFor("eth0");
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(Request(SIOCGIFINDEX, request));
    EXPECT_EQ(Trace(),
              (Texts{"socket " + GetParam().family, "fcntl F_SETFD", "ioctl SIOCGIFINDEX eth0",
                     "ioctl SIOCGIFINDEX eth0", "ioctl SIOCGIFINDEX eth0"}));
    EXPECT_EQ(OpenHandles(), (Texts{"socket " + GetParam().family + " 2 0"}));  // SOCK_DGRAM
}

TEST_P(ControlSocketTest, ADescriptorOf0IsASocketToo)
{
    close(STDIN_FILENO);  // a start script may have done so
    kernel.Add("eth0");
    ifreq request = vorlix::RequestFor("eth0");
    for (int i = 0; i < 2; ++i) EXPECT_TRUE(Request(SIOCGIFINDEX, request));
    EXPECT_EQ(TraceOf({"socket"}).size(), 1U);
}

TEST_P(ControlSocketTest, TriesASocketThatFailedAgain)
{
    kernel.Add("eth0");
    ifreq request = vorlix::RequestFor("eth0");
    Fail("socket", EMFILE);
    Fail("socket", ENFILE);
    EXPECT_FALSE(Request(SIOCGIFINDEX, request));
    EXPECT_FALSE(Request(SIOCGIFINDEX, request));
    EXPECT_EQ(TraceOf({"socket"}).size(), 2U);
    EXPECT_EQ(TraceOf({"ioctl"}), Texts{});
    EXPECT_EQ(
        Log(),
        (LogLines{Error(GetParam().operation, "open commonSocketfd error.[Too many open files]"),
                  Error(GetParam().operation,
                        "open commonSocketfd error.[Too many open files in system]")}));
    EXPECT_TRUE(Request(SIOCGIFINDEX, request));
}

TEST_P(ControlSocketTest, DoesNotRepeatARefusedRequest)
{
    ifreq request = vorlix::RequestFor("eth9");
    EXPECT_FALSE(Request(SIOCGIFINDEX, request));
    EXPECT_EQ(TraceOf({"ioctl"}).size(), 1U);
    EXPECT_EQ(OpenHandles().size(), 1U);
    EXPECT_EQ(Log(), (LogLines{Refused("35123", "No such device", "eth9")}));
    Fail("ioctl", EINTR);
    EXPECT_FALSE(Request(SIOCGIFINDEX, request));
    EXPECT_EQ(TraceOf({"ioctl"}).size(), 2U);
}

TEST_P(ControlSocketTest, TellsTheRequestAsASignedNumber)
{
    ifreq request = vorlix::RequestFor("eth0");
    FailAll("ioctl", EINVAL);
    EXPECT_FALSE(Request(-1, request));
    EXPECT_FALSE(Request(static_cast<int>(0xC0085100U), request));
    EXPECT_EQ(Log(), (LogLines{Refused("-1", "Invalid argument", "eth0"),
                               Refused("-1073196800", "Invalid argument", "eth0")}));
    // It reaches the kernel as 32 bits, not with its sign.
    EXPECT_EQ(TraceOf({"ioctl"}).front(), "ioctl 4294967295");
}

TEST_P(ControlSocketTest, TellsAtMost16BytesOfARecord)
{
    char record[sizeof(ifreq)];
    memset(record, 'x', sizeof(record));
    Fail("ioctl", EINVAL);
    EXPECT_FALSE(GetParam().request(SIOCGIFINDEX, record));
    EXPECT_EQ(Log(), (LogLines{Refused("35123", "Invalid argument", std::string(16, 'x'))}));
}

TEST_P(ControlSocketTest, NoRecordIsRefusedInSilence)
{
    EXPECT_FALSE(GetParam().request(SIOCGIFINDEX, nullptr));
    EXPECT_EQ(Trace(), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_P(ControlSocketTest, EachFailureIsOneLine)
{
    kernel.Add("eth0");
    static bool done = false;
    FailEachCall(
        [] {
            ifreq request = vorlix::RequestFor("eth0");
            done = Request(SIOCGIFINDEX, request);
        },
        [](const std::string& failed) {
            const bool harmless = failed == "fcntl F_SETFD";
            EXPECT_EQ(done, harmless);
            EXPECT_EQ(Log().size(), harmless ? 0U : 1U);
        });
}

INSTANTIATE_TEST_SUITE_P(Families, ControlSocketTest,
                         testing::Values(Control{"NetIOCtrl", NetIOCtrl, "AF_INET", "name"},
                                         Control{"NetIOCtrlv6", NetIOCtrlv6, "AF_INET6", ""}),
                         [](const auto& control) { return std::string(control.param.operation); });

class BothSocketsTest : public World {};

TEST_F(BothSocketsTest, AreApart)
{
    kernel.Add("eth0");
    ifreq request = vorlix::RequestFor("eth0");
    EXPECT_TRUE(NetIOCtrl(SIOCGIFINDEX, &request));
    EXPECT_TRUE(NetIOCtrlv6(SIOCGIFINDEX, &request));
    EXPECT_EQ(TraceOf({"socket"}), (Texts{"socket AF_INET", "socket AF_INET6"}));
}

// ---- InterfaceIpIsExist

class InterfaceIpIsExistTest : public World {
protected:
    /// Asks for eth0, which shall fail, and returns what is printed to standard error.
    static std::string ErrorOutput()
    {
        FILE* file = tmpfile();
        const int saved = dup(STDERR_FILENO);
        dup2(fileno(file), STDERR_FILENO);
        EXPECT_FALSE(InterfaceIpIsExist("eth0"));
        dup2(saved, STDERR_FILENO);
        char text[256] = {};
        EXPECT_GE(pread(fileno(file), text, sizeof(text) - 1, 0), 0);
        fclose(file);
        return text;
    }
};

TEST_F(InterfaceIpIsExistTest, IsTrueForACardWithAnAddress)
{
    kernel.Add("eth0").address = "10.0.0.2";
    kernel.Add("eth1");
    kernel.Add("eth3").address = "0.0.0.0";
    EXPECT_TRUE(InterfaceIpIsExist("eth0"));
    EXPECT_FALSE(InterfaceIpIsExist("eth1"));
    EXPECT_FALSE(InterfaceIpIsExist("eth2"));
    EXPECT_TRUE(InterfaceIpIsExist("eth3"));  // whatever it is, the kernel tells one
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(PlainOutput(), "");
}

TEST_F(InterfaceIpIsExistTest, UsesASocketOfItsOwn)
{
    kernel.Add("eth0").address = "10.0.0.2";
    ifreq request = vorlix::RequestFor("eth0");
    EXPECT_TRUE(NetIOCtrl(SIOCGIFINDEX, &request));
    ClearTrace();
    EXPECT_TRUE(InterfaceIpIsExist("eth0"));
    EXPECT_TRUE(InterfaceIpIsExist("eth0"));
    EXPECT_EQ(Trace(), (Texts{"socket AF_INET", "fcntl F_SETFD", "ioctl SIOCGIFADDR eth0",
                              "close AF_INET", "socket AF_INET", "fcntl F_SETFD",
                              "ioctl SIOCGIFADDR eth0", "close AF_INET"}));
    EXPECT_EQ(OpenHandles().size(), 1U);
}

TEST_F(InterfaceIpIsExistTest, TheSocketIsAnOrdinaryOne)
{
    Texts open;
    OnCall("ioctl", [&] { open = OpenHandles(); });
    EXPECT_FALSE(InterfaceIpIsExist("eth0"));
    EXPECT_EQ(open, (Texts{"socket AF_INET 2 0"}));
}

TEST_F(InterfaceIpIsExistTest, AMissingSocketIsPrintedPlainly)
{
    kernel.Add("eth0").address = "10.0.0.2";
    Fail("socket", EMFILE);
    EXPECT_EQ(ErrorOutput(), "socket failed: Too many open files\n");
    EXPECT_EQ(TraceOf({"ioctl"}), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(InterfaceIpIsExistTest, ARefusalIsSilent)
{
    EXPECT_EQ(ErrorOutput(), "");
    EXPECT_EQ(TraceOf({"ioctl"}), (Texts{"ioctl SIOCGIFADDR eth0"}));
}

TEST_F(InterfaceIpIsExistTest, AsksFor15CharactersOfTheName)
{
    kernel.Add("eth-fifteen-abc").address = "10.0.0.2";
    EXPECT_TRUE(InterfaceIpIsExist("eth-fifteen-abcde"));
}

TEST_F(InterfaceIpIsExistTest, RefusesNull)
{
    EXPECT_FALSE(InterfaceIpIsExist(nullptr));
    EXPECT_EQ(Trace(), Texts{});
}

TEST_F(InterfaceIpIsExistTest, NothingIsLeftOpenWhateverFails)
{
    kernel.Add("eth0").address = "10.0.0.2";
    static bool found = false;
    FailEachCall([] { found = InterfaceIpIsExist("eth0"); },
                 [](const std::string& failed) {
                     EXPECT_EQ(found, failed == "fcntl F_SETFD");
                     EXPECT_EQ(OpenHandles(), Texts{});
                     EXPECT_EQ(Log(), LogLines{});
                 });
}

// ---- InterfaceIsLink

class InterfaceIsLinkTest : public World {};

TEST_F(InterfaceIsLinkTest, IsWhatTheDriverReports)
{
    kernel.Add("eth0").link = 1;
    kernel.Add("eth1").link = 0;
    kernel.Add("eth2").link = 0x80000000U;
    EXPECT_TRUE(InterfaceIsLink("eth0"));
    EXPECT_FALSE(InterfaceIsLink("eth1"));
    EXPECT_TRUE(InterfaceIsLink("eth2"));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(InterfaceIsLinkTest, UsesASocketOfItsOwn)
{
    kernel.Add("eth0");
    EXPECT_TRUE(InterfaceIsLink("eth0"));
    EXPECT_EQ(Trace(), (Texts{"socket AF_INET", "fcntl F_SETFD", "ioctl ETHTOOL_GLINK eth0",
                              "close AF_INET"}));
    EXPECT_EQ(OpenHandles(), Texts{});
}

TEST_F(InterfaceIsLinkTest, TheSocketIsAnOrdinaryOne)
{
    Texts open;
    OnCall("ioctl", [&] { open = OpenHandles(); });
    EXPECT_FALSE(InterfaceIsLink("eth0"));
    EXPECT_EQ(open, (Texts{"socket AF_INET 2 0"}));
}

TEST_F(InterfaceIsLinkTest, ADescriptorOf0IsASocketToo)
{
    kernel.Add("eth0");
    close(STDIN_FILENO);
    ClearTrace();
    EXPECT_TRUE(InterfaceIsLink("eth0"));
    EXPECT_EQ(Trace(), (Texts{"socket AF_INET", "fcntl F_SETFD", "ioctl ETHTOOL_GLINK eth0",
                              "close AF_INET"}));
}

TEST_F(InterfaceIsLinkTest, ADriverWithoutEthtoolHasNoLink)
{
    kernel.Add("eth0").link = std::nullopt;
    EXPECT_FALSE(InterfaceIsLink("eth0"));
    EXPECT_EQ(Log(), (LogLines{Error("InterfaceIsLink", "ioctl eth0 failed,.")}));
    EXPECT_EQ(OpenHandles(), Texts{});
}

TEST_F(InterfaceIsLinkTest, WhatTheCardBeforeHadIsNotToldOfTheNext)
{
    kernel.Add("eth0").link = 1;
    kernel.Add("eth1").link = std::nullopt;
    EXPECT_TRUE(InterfaceIsLink("eth0"));
    EXPECT_FALSE(InterfaceIsLink("eth1"));
    Fail("ioctl ETHTOOL_GLINK eth0", EIO);
    EXPECT_FALSE(InterfaceIsLink("eth0"));
}

TEST_F(InterfaceIsLinkTest, TheWholeNameIsToldAnd15CharactersAreAsked)
{
    EXPECT_FALSE(InterfaceIsLink("eth-fifteen-abcde"));
    EXPECT_EQ(Log(), (LogLines{Error("InterfaceIsLink", "ioctl eth-fifteen-abcde failed,.")}));
    EXPECT_EQ(TraceOf({"ioctl"}), (Texts{"ioctl ETHTOOL_GLINK eth-fifteen-abc"}));
}

TEST_F(InterfaceIsLinkTest, AMissingSocketIsAnError)
{
    kernel.Add("eth0");
    Fail("socket", EMFILE);
    EXPECT_FALSE(InterfaceIsLink("eth0"));
    EXPECT_EQ(Log(), (LogLines{Error("InterfaceIsLink", "socket eth0 failed.")}));
    EXPECT_EQ(Trace(), (Texts{"socket AF_INET"}));
}

TEST_F(InterfaceIsLinkTest, RefusesNull)
{
    EXPECT_FALSE(InterfaceIsLink(nullptr));
    EXPECT_EQ(Trace(), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(InterfaceIsLinkTest, EachFailureIsOneLineAndNoLink)
{
    kernel.Add("eth0");
    static bool link = false;
    FailEachCall([] { link = InterfaceIsLink("eth0"); },
                 [](const std::string& failed) {
                     const bool harmless = failed == "fcntl F_SETFD";
                     EXPECT_EQ(link, harmless);
                     EXPECT_EQ(Log().size(), harmless ? 0U : 1U);
                     EXPECT_EQ(OpenHandles(), Texts{});
                 });
}

// ---- InterfaceUp, InterfaceDown

struct Change {
    const char* operation;
    bool (*change)(const char*);
    const char* verb;
};

void PrintTo(const Change& change, std::ostream* out)
{
    *out << change.operation;
}

class InterfaceFlagsTest : public World, public testing::WithParamInterface<Change> {
protected:
    static bool Run(const char* name) { return GetParam().change(name); }
    static bool Up() { return std::string(GetParam().verb) == "up"; }

    static LogLine Failed(const std::string& step)
    {
        return Error(GetParam().operation,
                     std::string(GetParam().verb) + " eth1 failed," + step + " error.");
    }
};

TEST_P(InterfaceFlagsTest, ChangesNoOtherFlag)
{
    Card& card = kernel.Add("eth1");
    for (const unsigned before : {0x0000U, 0x0001U, 0x1002U, 0x1043U, 0x8001U, 0xfffeU, 0xffffU}) {
        card.flags = static_cast<short>(before);
        EXPECT_TRUE(Run("eth1"));
        EXPECT_EQ(static_cast<unsigned short>(card.flags),
                  Up() ? before | IFF_UP : before & ~static_cast<unsigned>(IFF_UP));
    }
    EXPECT_EQ(Log(), LogLines{});
}

TEST_P(InterfaceFlagsTest, ReadsAndThenWritesOnTheSharedSocket)
{
    kernel.Add("eth1");
    EXPECT_TRUE(Run("eth1"));
    EXPECT_EQ(Trace(), (Texts{"socket AF_INET", "fcntl F_SETFD", "ioctl SIOCGIFFLAGS eth1",
                              "ioctl SIOCSIFFLAGS eth1"}));  // and no lock
}

TEST_P(InterfaceFlagsTest, WritesAlsoWhatIsSoAlready)
{
    kernel.Add("eth1").flags = Up() ? IFF_UP : 0;
    EXPECT_TRUE(Run("eth1"));
    EXPECT_EQ(TraceOf({"ioctl SIOCSIFFLAGS"}).size(), 1U);
}

TEST_P(InterfaceFlagsTest, AnUnknownNameFailsAtTheRead)
{
    EXPECT_FALSE(Run("eth1"));
    EXPECT_EQ(Log(), (LogLines{Error("NetIOCtrl", "cmd 35091 error.[No such device] eth1 "),
                               Failed("getflags")}));
    EXPECT_EQ(TraceOf({"ioctl"}).size(), 1U);
}

TEST_P(InterfaceFlagsTest, ARefusedChangeIsTold)
{
    kernel.Add("eth1").flags = IFF_BROADCAST;
    Fail("ioctl SIOCSIFFLAGS", EPERM);
    EXPECT_FALSE(Run("eth1"));
    EXPECT_EQ(Log(),
              (LogLines{Error("NetIOCtrl", "cmd 35092 error.[Operation not permitted] eth1 "),
                        Failed("setflags")}));
    EXPECT_EQ(kernel.At("eth1").flags, IFF_BROADCAST);
}

TEST_P(InterfaceFlagsTest, Takes15CharactersOfTheName)
{
    kernel.Add("eth-fifteen-abc").flags = Up() ? 0 : IFF_UP;
    EXPECT_TRUE(Run("eth-fifteen-abcde"));
    EXPECT_EQ(kernel.At("eth-fifteen-abc").flags, Up() ? IFF_UP : 0);
}

TEST_P(InterfaceFlagsTest, RefusesNull)
{
    EXPECT_FALSE(Run(nullptr));
    EXPECT_EQ(Trace(), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_P(InterfaceFlagsTest, AFailureLeavesTheFlags)
{
    kernel.Add("eth1").flags = IFF_BROADCAST;
    static bool done = false;
    FailEachCall([] { done = Run("eth1"); },
                 [](const std::string& failed) {
                     const bool harmless = failed == "fcntl F_SETFD";
                     EXPECT_EQ(done, harmless);
                     EXPECT_EQ(Log().size(), harmless ? 0U : 2U);
                     if (!harmless) {
                         EXPECT_EQ(kernel.At("eth1").flags, IFF_BROADCAST);
                     }
                 });
}

INSTANTIATE_TEST_SUITE_P(Changes, InterfaceFlagsTest,
                         testing::Values(Change{"InterfaceUp", InterfaceUp, "up"},
                                         Change{"InterfaceDown", InterfaceDown, "down"}),
                         [](const auto& change) { return std::string(change.param.operation); });

}  // namespace
