// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Program.h"

#include <algorithm>

using namespace device;

namespace {

// What start scripts do to the standard streams and the signals of lanrise.

constexpr char kStatus[] = "/mnt/status";

/// What closes a stream, by its number.
constexpr const char* kClose[] = {"<&-", ">&-", "2>&-"};

/// Start scripts. LANRISE stands for the program and what keeps its status.
Texts Scripts()
{
    Texts scripts = {
        "LANRISE >/dev/full",
        "LANRISE 1</dev/null",  // cannot be written at all
        "{ read go </mnt/go; LANRISE; } | { exec <&-; echo go >/mnt/go; }",  // the reader has gone
    };
    for (unsigned closed = 0; closed < 8; ++closed) {
        std::string& script = scripts.emplace_back("LANRISE");
        for (unsigned stream = 0; stream < 3; ++stream) {
            if ((closed >> stream & 1U) != 0) script = script + " " + kClose[stream];
        }
    }
    return scripts;
}

constexpr char kSpare[] = "ROUTE = kept\n";  // a key that is kept and used by nothing

const Texts kPipeSignals = {"--default-signal=PIPE", "--ignore-signal=PIPE"};

/// The exit status of `lanrise <arguments>` under that script and with those signals.
std::string StatusOf(const std::string& arguments, std::string script, const std::string& signals)
{
    const std::string run = "{ " VORLIX_LANRISE " " + arguments + "; echo $? >/mnt/status; }";
    script.replace(script.find("LANRISE"), sizeof("LANRISE") - 1, run);
    Put("/mnt/script", script + "\n");
    Put(kStatus, "none");
    (void)Try("env " + signals + " sh /mnt/script");
    return Get(kStatus);
}

/// What a run leaves in the kernel, in few looks: it is asked for very often.
std::string Network()
{
    return Must("grep . /sys/class/net/*/flags /sys/class/net/*/mtu /sys/class/net/*/address;"
                " ip -4 -o addr | sed 's,^[0-9]*: ,,'; cat /proc/net/route");
}

class StartTest : public Device {
protected:
    void SetUp() override
    {
        Device::SetUp();
        AddCards(3);
        Must("mkfifo /mnt/go");
    }

    /// As before a power-on: no card runs, no bridge is there, and the settings are the saved ones.
    virtual void SwitchOff()
    {
        Must("for card in eth0 eth1 eth2; do echo link set $card down; echo addr flush dev $card;"
             " done | ip -batch -; rm -f /mnt/mtd/Config/*");
        for (int i = 0; i < 3; ++i) Save("eth" + std::to_string(i), i, {"WORKMODE = 0"});
        // A file that takes no more keys: a refusal is logged while its lock is held.
        for (int line = 0; line < 11; ++line) Put(CardFile("eth2"), Get(CardFile("eth2")) + kSpare);
    }

    /// Whatever the start script does, a form leaves the network and the files that it leaves when
    /// somebody reads along.
    template <class Before>
    void ExpectTheSameFromEveryScript(const std::string& arguments, const Before& before)
    {
        SwitchOff();
        before();
        ASSERT_EQ(StatusOf(arguments, "LANRISE | cat", kPipeSignals.front()), "0\n");
        const std::string network = Network();
        const auto files = SavedFiles();
        for (const char* card : {"eth0", "eth1", "eth2"}) EXPECT_TRUE(IsUp(card)) << card;

        for (const std::string& signals : kPipeSignals) {
            for (const std::string& script : Scripts()) {
                SCOPED_TRACE(signals + " " + script);
                SwitchOff();
                before();
                EXPECT_EQ(StatusOf(arguments, script, signals), "0\n");
                EXPECT_EQ(Network(), network);
                EXPECT_EQ(SavedFiles(), files);
            }
        }
    }

    static void Nothing() {}
    static void Boot() { ASSERT_EQ(Lanrise().status, 0); }
};

TEST_F(StartTest, ABootEndsWhateverBecomesOfItsOutput)
{
    ExpectTheSameFromEveryScript("", Nothing);
    EXPECT_EQ(Addresses("eth2"), Texts{"10.0.2.10/24"});
}

TEST_F(StartTest, AnAddressIsSetWhateverBecomesOfTheOutput)
{
    ExpectTheSameFromEveryScript("eth0 10.0.7.20 255.255.255.0 10.0.7.1", Boot);
    EXPECT_EQ(Addresses("eth0"), Texts{"10.0.7.20/24"});
    EXPECT_EQ(Saved("eth0", "GATEWAYIP"), "10.0.7.1");
}

TEST_F(StartTest, TheDefaultCardIsSetWhateverBecomesOfTheOutput)
{
    ExpectTheSameFromEveryScript("setdef eth1", Boot);
    EXPECT_EQ(Saved("eth0", "DEFAULT_ETH"), "eth1");
    EXPECT_EQ(Routes().back(), "default via 10.0.1.1 dev eth1");
}

TEST_F(StartTest, ARefusalKeepsItsStatusWhateverBecomesOfTheOutput)
{
    for (const std::string& signals : kPipeSignals) {
        for (const std::string& script : Scripts()) {
            EXPECT_EQ(StatusOf("setdef eth9", script, signals), "255\n") << signals << script;
        }
    }
}

TEST_F(StartTest, ABootEndsWhenItsLogMayNotGrow)
{
    for (const char* signals : {"--default-signal=XFSZ", "--ignore-signal=XFSZ"}) {
        SwitchOff();
        // The limit counts for each file; the settings are far smaller.
        EXPECT_EQ(StatusOf("", "ulimit -f 8; LANRISE >/mnt/log", signals), "0\n") << signals;
        EXPECT_EQ(Get("/mnt/log").size(), 8U * 512U);
        for (int i = 0; i < 3; ++i) {
            const std::string card = "eth" + std::to_string(i);
            EXPECT_EQ(Addresses(card), Texts{"10.0." + std::to_string(i) + ".10/24"});
            EXPECT_EQ(Saved(card, "HOSTIP"), "10.0." + std::to_string(i) + ".10");
        }
    }
}

TEST_F(StartTest, ABootWithoutANullDeviceKeepsItsLogOutOfTheSettings)
{
    Must("mount -t tmpfs tmpfs /dev");
    for (const char* script : {"LANRISE >&-", "LANRISE <&- >&- 2>&-"}) {
        SwitchOff();
        EXPECT_EQ(StatusOf("", script, "--default-signal=PIPE"), "0\n") << script;
        EXPECT_EQ(Addresses("eth2"), Texts{"10.0.2.10/24"});
        for (const auto& file : SavedFiles()) {
            EXPECT_EQ(file.second.find("Vorlix"), std::string::npos) << file.first << file.second;
        }
    }
}

/// A bridge is built by tools: what they inherit.
class StartWithToolsTest : public StartTest {
protected:
    void SetUp() override
    {
        StartTest::SetUp();
        NEEDS_TOOL("brctl");
        NEEDS_TOOL("ifconfig");
        NEEDS_LINK("br0 type bridge");
    }

    void SwitchOff() override
    {
        (void)Try("ip link del br0");
        StartTest::SwitchOff();
        Save("br0", 9, {"BRIDGEMEMBERS = eth1,eth2"});
        for (const char* card : {"eth1", "eth2"}) {
            Put(CardFile(card), Lines({"BRIDGEEDED = 1", "BRIDGENAME = br0", "WORKMODE = 3"}));
        }
    }

    /// Lays an `ifconfig` over the real one that keeps what the command finds out.
    static void Ask(const std::string& command)
    {
        Must("mkdir -p /mnt/bin; rm -f /mnt/seen");
        Put("/mnt/bin/ifconfig",
            "#!/bin/sh\n" + command + " >>/mnt/seen\nPATH=${PATH#*:}\n" + "exec ifconfig \"$@\"\n");
        Must("chmod +x /mnt/bin/ifconfig");
    }
};

constexpr char kTools[] = "PATH=/mnt/bin:$PATH";

/// What a process inherits of its parent's signals and a shell between them leaves alone.
constexpr char kSignals[] = "grep ^SigIgn: /proc/self/status";

TEST_F(StartWithToolsTest, ABootBuildsItsBridgeWhateverBecomesOfItsOutput)
{
    ExpectTheSameFromEveryScript("", Nothing);
    EXPECT_EQ(Addresses("br0"), Texts{"10.0.9.10/24"});
}

TEST_F(StartWithToolsTest, ToolsSeeTheSignalsThatTheProgramWasStartedWith)
{
    for (const char* signals : {"--default-signal", "--ignore-signal=PIPE", "--ignore-signal=XFSZ",
                                "--ignore-signal=INT,QUIT,HUP,PIPE,XFSZ"}) {
        SCOPED_TRACE(signals);
        SwitchOff();
        Ask(kSignals);
        const std::string started = Must(std::string("env ") + signals + " " + kSignals);
        EXPECT_EQ(StatusOf("", std::string(kTools) + "; LANRISE | true", signals), "0\n");
        EXPECT_EQ(Must("sort -u /mnt/seen"), started);
        EXPECT_TRUE(IsUp("br0"));
    }
}

TEST_F(StartWithToolsTest, AParentThatIgnoresItsChildrenGetsItsBridgeToo)
{
    SwitchOff();
    EXPECT_EQ(Try("env --ignore-signal=CHLD " VORLIX_LANRISE).status, 0);
    EXPECT_EQ(Addresses("br0"), Texts{"10.0.9.10/24"});
    for (const char* card : {"eth1", "eth2"}) {
        EXPECT_NE(Must(std::string("ip link show dev ") + card).find("master br0"),
                  std::string::npos);
    }
}

TEST_F(StartWithToolsTest, ToolsHaveStandardStreamsThatLeadToNoSetting)
{
    SwitchOff();
    Ask("(for stream in 0 1 2; do readlink /proc/$$/fd/$stream; done)");
    EXPECT_EQ(StatusOf("", std::string(kTools) + "; LANRISE <&- >&- 2>&-", "--default-signal"),
              "0\n");
    EXPECT_EQ(Must("sort -u /mnt/seen"), "/dev/null\n");
}

}  // namespace
