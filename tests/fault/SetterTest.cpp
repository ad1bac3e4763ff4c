// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Whatever call of a setter fails: what was saved before is lost in no other file than
// the one that the call was about, and the next boot, which finds nothing wrong any more, reaches a
// state in which a boot after it changes nothing.
//
// The untouched library above the fake of the C calls that the unit ring has.

#include "LanriseWorld.h"

#include "Backup.h"
#include "CommonApi.h"
#include "Config.h"
#include "Dns.h"
#include "Lanrise.h"

#include <algorithm>
#include <memory>
#include <set>
#include <sstream>

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace fake;

namespace {

using Files = std::map<std::string, std::string>;

// ---- the device

std::string Card(int net, const Texts& more = {})
{
    const std::string prefix = "10.0." + std::to_string(net);
    return Settings({"HOSTIP = " + prefix + ".10", "SUBMASK = 255.255.255.0",
                     "GATEWAYIP = " + prefix + ".1", "MTU = 1500"}) +
           Settings(more);
}

/// A bond of two cards, a bridge of two, and two cards that stand alone.
void BuildDevice()
{
    UseRtc("10.0.0.10", "255.255.255.0", "10.0.0.1");
    const Texts bonded = {"BONDED = 1", "BONDNAME = bond0"};
    const Texts bridged = {"BRIDGEEDED = 1", "BRIDGENAME = br0"};
    Put(CardFile("eth0"), Card(0, {"DEFAULT_ETH = eth0", "PRIO = 0"}));
    Put(CardFile("eth1"), Card(1, {"PRIO = 1"}));
    Put(CardFile("eth2"), Card(2, bonded));
    Put(CardFile("eth3"), Card(3, bonded));
    Put(CardFile("eth4"), Card(4, bridged));
    Put(CardFile("eth5"), Card(5, bridged));
    Put(CardFile("bond0"), Card(8, {"BONDMODE = 1", "BONDMEMBERS = eth2,eth3"}));
    Put(CardFile("br0"), Card(9, {"BRIDGEMEMBERS = eth4,eth5"}));
    for (const char* card : {"eth0", "eth1", "eth2", "eth3", "eth4", "eth5", "bond0"}) {
        kernel.Add(card);
    }
    for (const char* attribute : {"slaves", "mode", "miimon", "xmit_hash_policy", "primary"}) {
        Put("/sys/class/net/bond0/bonding/" + std::string(attribute), "");
    }
    OnCommand("ifenslave bond0 eth2 eth3",
              [](const std::string&) { SetBondMembers("bond0", "eth2 eth3\n"); });
    OnCommand("brctl addbr br1", [](const std::string&) {
        if (kernel.Find("br1") == nullptr) kernel.Add("br1");
        SetBridgePorts("br1", {"eth0", "eth1"});
    });
    OnCommand("brctl addbr br0", [](const std::string&) {
        if (kernel.Find("br0") == nullptr) kernel.Add("br0");
        SetBridgePorts("br0", {"eth4", "eth5"});
    });
}

/// The lines of each file, as far as one setting does not follow from others.
std::map<std::string, std::set<std::string>> LinesOf(const Files& files)
{
    std::map<std::string, std::set<std::string>> lines;
    for (const auto& [name, text] : files) {
        std::istringstream stream(text);
        for (std::string line; std::getline(stream, line);) lines[name].insert(line);
    }
    return lines;
}

/// True when a file may suffer from what happened to the one that the call names. A bond or bridge
/// and its cards share one fate: it ends when only one of them claims it.
bool SharesFate(const std::string& name, const std::string& failedCall)
{
    static const std::vector<std::set<std::string>> kGroups = {
        {"networkbond0", "networketh2", "networketh3"},
        {"networkbr0", "networketh4", "networketh5"},
        {"networkbond1", "network", "network1"},
        {"networkbr1", "network", "network1"},
    };
    const std::string folder = "/mnt/mtd/Config/";
    const size_t begin = failedCall.find(folder);
    if (begin == std::string::npos) return false;

    const size_t start = begin + folder.size();
    const std::string file = failedCall.substr(start, failedCall.find(' ', start) - start);
    if (file == name) return true;
    return std::any_of(kGroups.begin(), kGroups.end(), [&](const std::set<std::string>& group) {
        return group.count(name) + group.count(file) == 2;
    });
}

// ---- the boot behind the failure

/// A process that is as this one was when it was made. It boots when it is told to, on a kernel
/// that was not touched since, and with the files and the backup memory as they are then.
class NextBoot {
public:
    explicit NextBoot(const std::function<void()>& check)
    {
        const OwnCalls own;  // the boot's are no part of the trace either
        shared_ = static_cast<Shared*>(mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE,
                                            MAP_SHARED | MAP_ANONYMOUS, -1, 0));
        EXPECT_EQ(pipe(gate_), 0);
        fflush(nullptr);
        boot_ = fork();
        if (boot_ != 0) return;

        FailNothing();
        close(gate_[1]);
        char go = 0;
        if (read(gate_[0], &go, 1) != 1) _exit(EXIT_SUCCESS);  // the last turn asks for no boot
        memcpy(kernel.rtc.bytes, shared_->rtc, sizeof(shared_->rtc));
        check();
        fflush(nullptr);
        _exit(testing::Test::HasFailure() ? EXIT_FAILURE : EXIT_SUCCESS);
    }

    bool Go() const
    {
        const OwnCalls own;
        memcpy(shared_->rtc, kernel.rtc.bytes, sizeof(shared_->rtc));
        EXPECT_EQ(write(gate_[1], "x", 1), 1);
        int status = 0;
        waitpid(boot_, &status, 0);
        return WIFEXITED(status) && WEXITSTATUS(status) == EXIT_SUCCESS;
    }

private:
    struct Shared {
        uint8_t rtc[256];
    };
    Shared* shared_ = nullptr;
    int gate_[2] = {-1, -1};
    pid_t boot_ = -1;
};

// ---- what fails

struct Change {
    const char* name;
    void (*run)();
};

void PrintTo(const Change& change, std::ostream* out)
{
    *out << change.name;
}

const char* kToBond[] = {"eth1", "eth0"};
const char* kOfBond[] = {"eth2", "eth3"};
const char* kOfBridge[] = {"eth4", "eth5"};
char oneCard[] = "eth0";
char otherCard[] = "eth1";
char* kToBridge[] = {oneCard, otherCard};
const STPInfo kRapidTree = {1, 1, {}};
const NetTc kLimit = {"10.0.1.7", 4, 8, 0, {}};

const Change kChanges[] = {
    {"NetSetIPByName", [] { (void)NetSetIPByName("eth0", "10.0.0.20", "255.255.0.0"); }},
    {"NetSetGatewaybyName", [] { (void)NetSetGatewaybyName("eth0", "10.0.0.2"); }},
    {"NetSetMtubyName", [] { (void)NetSetMtubyName("eth1", 1400); }},
    {"NetSetDefEth", [] { (void)NetSetDefEth("eth1"); }},
    {"NetCardRecover", [] { (void)NetCardRecover("eth1"); }},
    {"NetSetIPv6byName", [] { (void)NetSetIPv6byName("eth1", "2001:db8::2", "64"); }},
    {"NetSetGatewayIPv6byName", [] { (void)NetSetGatewayIPv6byName("eth1", "2001:db8::1"); }},
    {"Bond", [] { (void)Bond("bond1", kToBond, 2, nicBondActiveBackup); }},
    {"UnBond", [] { (void)UnBond("bond0"); }},
    {"UnBridge", [] { (void)UnBridge("br0"); }},
    {"BridgeAddEdgePort", [] { (void)BridgeAddEdgePort("br0", "eth4"); }},
    {"NetSetMacbyName", [] { (void)NetSetMacbyName("eth1", "02:00:00:00:00:21"); }},
    {"NetDelIPAddressIpv6", [] { (void)NetDelIPAddressIpv6("eth1", "2001:db8::1"); }},
    {"NetSwitch_SetNetCardMode", [] { (void)NetSwitch_SetNetCardMode("eth1", 0); }},
    {"SetBondHashPolicy", [] { (void)SetBondHashPolicy("bond0", 1); }},
    {"SetMtubyBondName", [] { (void)SetMtubyBondName("bond0", 1400); }},
    {"SetIPv4DnsServer", [] { (void)SetIPv4DnsServer("10.0.0.53", "10.0.0.54"); }},
    {"SetIPv6DnsServer", [] { (void)SetIPv6DnsServer("2001:db8::53", "2001:db8::54"); }},
    {"Bridge", [] { (void)Bridge("br1", kToBridge, 2); }},
    {"BridgeDelEdgePort", [] { (void)BridgeDelEdgePort("br0", "eth4"); }},
    {"BridgeControl", [] { (void)BridgeControl("br0", &kRapidTree); }},
    {"BridgeUpdateBrIDByConfig", [] { (void)BridgeUpdateBrIDByConfig("br0"); }},
    {"BridgeUpdatePortListByConfig", [] { (void)BridgeUpdatePortListByConfig("br0", kToBond, 2); }},
    {"TrafCtrlSetBand", [] { (void)TrafCtrlSetBand("eth1", &kLimit, 1); }},
    {"TrafCtrlUnSetBand", [] { (void)TrafCtrlUnSetBand("eth1", "0.0.0.0"); }},
    {"BackupIP", [] { (void)BackupIP("eth0", "10.0.0.30"); }},
    {"RestBackup", [] { (void)RestBackup(); }},
    {"SetIPByConfig", [] { (void)SetIPByConfig("eth1", "10.0.1.20", "255.255.0.0"); }},
    {"SetGatewayByConfig", [] { (void)SetGatewayByConfig("eth1", "10.0.1.2"); }},
    {"SetMtuByConfig", [] { (void)SetMtuByConfig("eth1", 1400); }},
    {"SetIPv6ByConfig", [] { (void)SetIPv6ByConfig("eth1", "2001:db8::3", "64"); }},
    {"SetGatewayv6ByConfig", [] { (void)SetGatewayv6ByConfig("eth1", "2001:db8::4"); }},
    {"SetWorkModeByConfig", [] { (void)SetWorkModeByConfig("eth1", netModeSwitch); }},
    {"SetDefaultEthByConfig", [] { (void)SetDefaultEthByConfig("eth1"); }},
    {"SetEthIsBondedByConfig", [] { (void)SetEthIsBondedByConfig("eth1", false); }},
    {"SetEthBondNameByConfig", [] { (void)SetEthBondNameByConfig("eth1", "bond0"); }},
    {"SetEthIsBridgedByConfig", [] { (void)SetEthIsBridgedByConfig("eth1", false); }},
    {"SetEthBridgeNameByConfig", [] { (void)SetEthBridgeNameByConfig("eth1", "br0"); }},
    {"SetBondModeByConfig", [] { (void)SetBondModeByConfig("bond0", nicBondBroadcast); }},
    {"SetBondMemberByConfig", [] { (void)SetBondMemberByConfig("bond0", kOfBond, 2); }},
    {"SetBondHashPolicyByConfig", [] { (void)SetBondHashPolicyByConfig("bond0", 2); }},
    {"SetPrimaryEthByConfig", [] { (void)SetPrimaryEthByConfig("bond0", "eth3"); }},
    {"SetBridgeMemberByConfig", [] { (void)SetBridgeMemberByConfig("br0", kOfBridge, 2); }},
    {"SetBridgeStpModeByConfig", [] { (void)SetBridgeStpModeByConfig("br0", 1); }},
};

class SetterTest : public World, public testing::WithParamInterface<Change> {
protected:
    void SetUp() override
    {
        World::SetUp();
        BuildDevice();
        InNewProcess([] { (void)Lanrise({}); });
        SetBondMembers("bond0", "eth2 eth3\n");
    }

    /// The files after a boot, or after the change and then a boot.
    static Files Reached(bool changed)
    {
        const ScratchCopy copy;
        copy.Use();
        if (changed) InNewProcess(GetParam().run);
        InNewProcess([] { (void)Lanrise({}); });
        return SavedFiles();
    }
};

INSTANTIATE_TEST_SUITE_P(Changes, SetterTest, testing::ValuesIn(kChanges),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_P(SetterTest, EachCallAloneCostsNoMoreThanItsFile)
{
    static std::map<std::string, std::set<std::string>> old;
    static std::map<std::string, std::set<std::string>> changed;
    static std::unique_ptr<NextBoot> next;
    static std::string failedCall;
    old = LinesOf(Reached(false));
    changed = LinesOf(Reached(true));
    FailEachCall(
        [] {
            next = std::make_unique<NextBoot>([] {
                EXPECT_TRUE(Lanrise({}));
                ExpectWellFormedFiles();
            });
            GetParam().run();
        },
        [](const std::string& failed) {
            ExpectWellFormedFiles();
            EXPECT_TRUE(next->Go());
            for (const auto& [name, lines] : LinesOf(SavedFiles())) {
                if (SharesFate(name, failed)) continue;
                for (const std::string& line : lines) {
                    EXPECT_TRUE(old[name].count(line) + changed[name].count(line) > 0)
                        << name << ": " << line << " after " << failed;
                }
            }
        },
        {"socket", "open /proc/net/", "open /dev/pdcRtc"});
}

}  // namespace
