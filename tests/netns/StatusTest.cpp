// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// lanrise-status on the real kernel: what it shows of a device, before and after a boot, and what
// it does when it cannot look.

#include "Program.h"

#include <algorithm>
#include <fcntl.h>
#include <sstream>
#include <unistd.h>

using namespace device;

namespace {

const std::string kFolder = std::string(kConfig) + "/";
const std::string kStatus = VORLIX_STATUS;

/// Two resolvers of each kind, for a device that is in order.
const char kResolvers[] = "nameserver 10.0.0.1\nnameserver 10.0.0.2\n"
                          "nameserver 2001:db8::1\nnameserver 2001:db8::2\n";

Result Status(const std::string& words = "")
{
    return Try(kStatus + " " + words);
}

/// What python makes of the document: `expression` over `d`.
std::string Json(const std::string& expression, const std::string& program = kStatus)
{
    std::string text = Must(program +
                            " --json | python3 -c 'import json,sys; d=json.load(sys.stdin);"
                            " i={x[\"name\"]:x for x in d[\"interfaces\"]}; print(" +
                            expression + ")'");
    while (!text.empty() && text.back() == '\n') text.pop_back();
    return text;
}

bool Has(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

size_t Widest(const std::string& text)
{
    std::istringstream lines(text);
    size_t widest = 0;
    for (std::string line; std::getline(lines, line);) widest = std::max(widest, line.size());
    return widest;
}

class StatusTest : public Device {
protected:
    void SetUp() override
    {
        Device::SetUp();
        AddCards(2);
        Save("eth0", 0, {"DEFAULT_ETH = eth0"});
        Save("eth1", 1);
        Put(kFolder + "resolv.conf", kResolvers);
    }
};

TEST_F(StatusTest, SaysNothingOfADeviceThatHasBooted)
{
    Lanrise();
    const Result check = Status("--check");
    EXPECT_EQ(check.status, 0) << check.output;
    EXPECT_EQ(check.output, "");
    EXPECT_EQ(Json("d[\"complete\"], d[\"differences\"], d[\"repairs\"]"), "True [] []");
}

TEST_F(StatusTest, TellsEachDifferenceOfADeviceThatHasNot)
{
    Must("ip link set eth1 up; ip addr add 10.0.1.99/24 dev eth1");
    const Result check = Status("--check");
    EXPECT_EQ(check.status, 1);
    EXPECT_EQ(check.output, "eth0: it is down; the kernel has no address, the file 10.0.0.10/24\n"
                            "eth1: the kernel has 10.0.1.99/24, the file 10.0.1.10/24\n"
                            "device: there is no default route; the default card is eth0\n");
}

TEST_F(StatusTest, ShowsATableThatFitsATerminal)
{
    Lanrise();
    const Result table = Status();
    EXPECT_EQ(table.status, 0);
    EXPECT_TRUE(Has(table.output, "eth0  up     10000   default  all    10.0.0.10/24  10.0.0.1"))
        << table.output;
    EXPECT_TRUE(Has(table.output, "Default route  via 10.0.0.1 over eth0\n"));
    EXPECT_TRUE(Has(table.output, "Resolvers      10.0.0.1 10.0.0.2 2001:db8::1 2001:db8::2\n"));
    EXPECT_TRUE(Has(table.output, "Backup memory  none is found\n"));
    EXPECT_FALSE(Has(table.output, "\033")) << "no colour where there is no terminal";
    EXPECT_FALSE(Has(table.output, "|Vorlix-")) << "no line of the log";
    EXPECT_LE(Widest(table.output), 80U);
}

TEST_F(StatusTest, ShowsAllAboutOneCard)
{
    Lanrise();
    Must("ip -6 addr add 2001:db8::5/64 dev eth1 nodad");
    const Result card = Status("eth1");
    EXPECT_EQ(card.status, 0);
    EXPECT_TRUE(Has(card.output, "State          up, 10000 Mbit/s, full duplex\n")) << card.output;
    EXPECT_TRUE(Has(card.output, "Address        kernel  10.0.1.10/24\n"
                                 "               file    10.0.1.10/24\n"));
    EXPECT_TRUE(Has(card.output, "kernel  2001:db8::5/64\n"));
    EXPECT_TRUE(Has(card.output, "Hardware       " + Mac("eth1") + ", driver veth"));
    EXPECT_TRUE(Has(card.output, "Setting file   /mnt/mtd/Config/network1\n"));
    EXPECT_TRUE(Has(card.output, "Work mode      0, stands alone\n"));
}

TEST_F(StatusTest, ShowsTheSameInJson)
{
    Lanrise();
    EXPECT_EQ(Json("i[\"eth0\"][\"address\"]"),
              "{'kernel': '10.0.0.10/24', 'file': '10.0.0.10/24', 'backup': None}");
    EXPECT_EQ(Json("i[\"eth0\"][\"gateway\"]"),
              "{'kernel': '10.0.0.1', 'file': '10.0.0.1', 'backup': None}");
    EXPECT_EQ(Json("i[\"eth1\"][\"mac\"]"), Mac("eth1"));
    EXPECT_EQ(Json("d[\"default_card\"], i[\"eth0\"][\"default\"], i[\"eth1\"][\"default\"]"),
              "eth0 True False");
    EXPECT_EQ(Json("d[\"routes\"][0][\"net\"] in (\"0.0.0.0/0\", \"10.0.0.0/24\")"), "True");
    EXPECT_EQ(Json("d[\"backup_memory\"]"), "{'kind': 'none', 'state': None, 'mark': 0}");
}

TEST_F(StatusTest, ABridgeItsPortsAndAVlan)
{
    NEEDS_LINK("probe0 type bridge");
    Must("ip link add link eth0 name eth0.7 type vlan id 7 || true; ip link del probe0");
    AddCard("eth2");
    Save("eth1", 1, {"BRIDGEEDED = 1", "BRIDGENAME = br0"});
    Save("eth2", 2, {"BRIDGEEDED = 1", "BRIDGENAME = br0"});
    Save("br0", 5);
    EXPECT_TRUE(
        Has(Status("--check").output, "br0: next boot: the saved ports none become eth1,eth2"));
    Lanrise();
    const std::string table = Status().output;
    EXPECT_TRUE(Has(table, "Bridge br0     ports eth1,eth2; spanning tree ")) << table;
    EXPECT_TRUE(Has(table, "in br0")) << table;
    EXPECT_EQ(Json("d[\"bridges\"][0][\"ports\"]"),
              "{'kernel': ['eth1', 'eth2'], 'file': ['eth1', 'eth2']}");
    Must("ip link set eth2 nomaster");
    const std::string check = Status("--check").output;
    EXPECT_TRUE(Has(check, "eth2: its file says member of br0, the kernel has it alone\n"));
    EXPECT_TRUE(Has(check, "br0: the kernel has the ports eth1, the file eth1,eth2\n"));
}

TEST_F(StatusTest, ABackupMemoryBesideFileAndKernel)
{
    const std::string program = VORLIX_STATUS_WITH_BACKUP;
    Must("head -c 64 /dev/zero >/mnt/cmos");
    EXPECT_TRUE(Has(Try(program + " --check").output,
                    "device: next boot: the backup memory is wiped: no program of this layout"));
    LanriseWithBackup();
    EXPECT_TRUE(Has(Try(program + " --check").output,
                    "eth0: next boot: the backup memory is empty: it is filled from the file\n"));
    LanriseWithBackup();
    const Result check = Try(program + " --check");
    EXPECT_EQ(check.status, 0) << check.output;
    EXPECT_EQ(Json("i[\"eth0\"][\"address\"][\"backup\"], d[\"backup_memory\"][\"kind\"]", program),
              "10.0.0.10/24 CMOS");

    Save("eth0", 9, {"DEFAULT_ETH = eth0"});
    EXPECT_TRUE(Has(Try(program).output, "backup  10.0.0.10/24  10.0.0.1\n"));
    EXPECT_TRUE(Has(Try(program + " --check").output,
                    "eth0: next boot: the backup memory wins over the file: 10.0.0.10/24"));
}

TEST_F(StatusTest, ChangesNothingThatCanBeSeen)
{
    Must("rm " + CardFile("eth1"));
    Put(CardFile("eth2"), "WORKMODE = x\n");
    const auto files = SavedFiles();
    const Texts network = KernelState();
    const std::string times = Must("stat -c '%n %i %s %Y %Z' /mnt/mtd/Config/* /mnt/mtd/Config");
    for (const char* words : {"", "eth0", "--json", "--check", "--help", "--version"}) {
        Status(words);
    }
    EXPECT_EQ(SavedFiles(), files);
    EXPECT_EQ(KernelState(), network);
    EXPECT_EQ(Must("stat -c '%n %i %s %Y %Z' /mnt/mtd/Config/* /mnt/mtd/Config"), times);
}

TEST_F(StatusTest, DoesNotWaitForOneWhoHoldsALock)
{
    const Child holder([] {
        FILE* file = fopen(CardFile("eth0").c_str(), "r+");
        ASSERT_NE(file, nullptr);
        ASSERT_EQ(lockf(fileno(file), F_LOCK, 0), 0);
        Put("/run/held", "");
        for (;;) pause();
    });
    Must("until [ -e /run/held ]; do sleep 0.01; done");
    EXPECT_EQ(Try("timeout 600 " + kStatus + " --check").status, 1);
    const_cast<Child&>(holder).Kill();
}

// ---- what it is called with

TEST_F(StatusTest, Words)
{
    EXPECT_EQ(Status("--help").status, 0);
    EXPECT_TRUE(Has(Status("--help").output, "usage: lanrise-status"));
    EXPECT_TRUE(Has(Status("--version").output, "lanrise-status 3."));
    EXPECT_EQ(Status("--jsonn").status, 2);
    EXPECT_EQ(Status("eth0 eth1").status, 2);
    EXPECT_EQ(Status("''").status, 2);
    const Result unknown = Status("eth77");
    EXPECT_EQ(unknown.status, 2);
    EXPECT_EQ(unknown.output, "lanrise-status: no interface and no setting file: eth77\n");
}

TEST_F(StatusTest, OutputThatGoesNowhere)
{
    for (const char* words : {"", "--json", "--check", "--help", "eth0"}) {
        EXPECT_EQ(Status(std::string(words) + " >/dev/full").status, 2) << words;
        EXPECT_EQ(Status(std::string(words) + " >&-").status, 2) << words;
    }
    EXPECT_EQ(Status("--check <&- 2>&-").status, 1);
}

TEST_F(StatusTest, ATerminalOf40Columns)
{
    NEEDS_TOOL("script");
    const std::string text = Must("script -qec 'stty cols 40; " + kStatus + "' /dev/null");
    EXPECT_TRUE(Has(text, "\033[1meth0\033[0m down")) << text;
    std::string plain = Must("printf '%s' '" + text + "' | sed 's/\x1b\\[[0-9;]*m//g; s/\\r//'");
    EXPECT_LE(Widest(plain), 40U) << plain;
    EXPECT_FALSE(Has(Must("NO_COLOR=1 script -qec '" + kStatus + "' /dev/null"), "\033[3"));
}

// ---- what it may not see, and what is damaged

TEST_F(StatusTest, NoFolder)
{
    Must("rm -r /mnt/mtd/Config");
    EXPECT_EQ(Status().status, 0);
    const Result check = Status("--check");
    EXPECT_EQ(check.status, 2);
    EXPECT_EQ(check.output, "lanrise-status: the folder /mnt/mtd/Config is missing\n");
}

TEST_F(StatusTest, AnyUserSeesWhatTheKernelAndOpenFilesTell)
{
    NEEDS_TOOL("setpriv");
    Lanrise();
    Must("cp " + kStatus + " /mnt/status; chmod 755 /mnt/status");
    const std::string asNobody = "setpriv --reuid 65534 --regid 65534 --clear-groups /mnt/status ";
    EXPECT_EQ(Try(asNobody + "--check").status, 0);
    EXPECT_EQ(Must(asNobody), Must("/mnt/status")) << "nothing is for root alone";

    Must("chmod 600 " + CardFile("eth1"));
    const Result check = Try(asNobody + "--check");
    EXPECT_EQ(check.status, 2) << check.output;
    EXPECT_EQ(check.output, "lanrise-status: eth1: this user may not read its setting file\n");
    EXPECT_TRUE(Has(Must(asNobody), "file    not for this user"));

    Must("chmod 700 /mnt/mtd/Config");
    EXPECT_EQ(Try(asNobody + "--check").output,
              "lanrise-status: this user may not read the folder /mnt/mtd/Config\n");
}

TEST_F(StatusTest, DamagedFiles)
{
    Put(CardFile("eth0"), std::string(5000, '='));
    Put(CardFile("eth1"), "HOSTIP\n" + std::string(300, 'x') + "MTU = 99999999999\n\x01\xff");
    Put(kFolder + "resolv.conf", std::string(1000, '\xff'));
    Put(kFolder + "network" + std::string(60, 'z'), "HOSTIP = 1\n");
    Must("mkdir /mnt/mtd/Config/networketh5; ln -s /nowhere /mnt/mtd/Config/networketh6");
    EXPECT_EQ(Status().status, 0);
    EXPECT_EQ(Status("--check").status, 1);
    EXPECT_EQ(Json("i[\"eth0\"][\"address\"][\"file\"], i[\"eth1\"][\"mtu\"][\"file\"]"),
              "None None");
}

TEST_F(StatusTest, AFileOfANameThatIsNotTheCards)
{
    Put(kFolder + "networketh1", "HOSTIP = 10.9.0.1\n");
    EXPECT_EQ(Json("d[\"remarks\"][0]"),
              "{'interface': 'eth1', 'text': 'its settings stand in /mnt/mtd/Config/network1, not "
              "in networketh1'}");
    EXPECT_EQ(Json("i[\"eth1\"][\"address\"][\"file\"]"), "10.0.1.10/24");
}

TEST_F(StatusTest, EveryNameOfTheDocumentStandsOnThePage)
{
    Save("br0", 5, {"BRIDGEMEMBERS = eth2,eth3"});
    Save("bond0", 6, {"BONDMEMBERS = eth2,eth3"});
    Lanrise();
    const std::string names =
        Must(kStatus + " --json | python3 -c 'import json,sys\n"
                       "def walk(d):\n"
                       "  for k,v in d.items() if isinstance(d,dict) else enumerate(d):\n"
                       "    if isinstance(k,str): print(k)\n"
                       "    if isinstance(v,(dict,list)): walk(v)\n"
                       "walk(json.load(sys.stdin))' | sort -u");
    const std::string page =
        Must("sed -n '/^.SH JSON/,/^.SH FILES/p' " VORLIX_STATUS_PAGE " | tr -c 'a-z0-9_\n' ' '");
    std::istringstream lines(names);
    int count = 0;
    for (std::string name; std::getline(lines, name); ++count) {
        EXPECT_EQ(Try("printf '%s\n' '" + page + "' | grep -qw " + name).status, 0) << name;
    }
    EXPECT_GT(count, 40);
}

TEST_F(StatusTest, NamesOf15CharactersWithColonsAndBytesAbove127)
{
    AddCard("eth_of_15_chars");
    Must("ip link add name \"$(printf 'eth\\303\\244\\377')\" type veth peer name far0");
    Save("eth1", 1, {"BRIDGEEDED = 1", "BRIDGENAME = br0:1\"\\\xe4"});
    Must("ip addr add 10.7.0.1/24 dev eth1 label eth1:7");
    EXPECT_EQ(Json("i[\"eth1\"][\"master\"][\"file\"] == \"br0:1\\\"\\\\\\u00e4\""), "True");
    EXPECT_EQ(Json("i[\"eth1\"][\"address\"][\"kernel\"]"), "None") << "an alias is not the card";
    EXPECT_EQ(Json("\"eth_of_15_chars\" in i"), "True");
    EXPECT_EQ(Status().status, 0);
    for (const char letter : Status().output) EXPECT_GE(letter, '\n');
}

TEST_F(StatusTest, MoreInterfacesThanTheBootLooksAt)
{
    for (int i = 2; i < 33; ++i) AddCard("eth" + std::to_string(i));
    EXPECT_EQ(Json("sum(x[\"counted\"] for x in d[\"interfaces\"]), len(d[\"interfaces\"])"),
              "32 33");
    EXPECT_TRUE(Has(Status().output, "beyond the 32 interfaces that the boot looks at"));
    for (int i = 33; i < 90; ++i) AddCard("eth" + std::to_string(i));
    EXPECT_EQ(Status().status, 0);
    EXPECT_EQ(Status("--check").status, 1);
}

TEST_F(StatusTest, OtherInterfacesAreLeftOut)
{
    Must("ip link add name end0 type veth peer name lan1");
    EXPECT_EQ(Json("sorted(i)"), "['eth0', 'eth1']");
    EXPECT_EQ(Status("lo").status, 2);
}

TEST_F(StatusTest, AForeignNamespace)
{
    Must("ip netns add other; ip -n other link add eth0 type veth peer name far0");
    const std::string there = "ip netns exec other " + kStatus;
    EXPECT_EQ(Try(there + " --check").status, 1);
    EXPECT_EQ(Json("i[\"eth0\"][\"driver\"], i[\"eth1\"][\"present\"]", there), "veth False");
}

TEST_F(StatusTest, CardsThatComeAndGoMeanwhile)
{
    Child mover([] {
        for (;;) {
            Try("ip link add eth9 type veth peer name far0; ip addr add 10.9.0.1/24 dev eth9;"
                " ip link del eth9");
        }
    });
    for (int i = 0; i < 40; ++i) EXPECT_EQ(Status("--json >>/mnt/json").status, 0);
    mover.Kill();
    EXPECT_EQ(Must("python3 -c 'import json,sys; print(sum(len(json.loads(x)) > 10 for x in "
                   "open(\"/mnt/json\")))'"),
              "40\n");
}

TEST_F(StatusTest, NeverTellsOfHalfASetting)
{
    Lanrise();
    Child writer([] {
        for (int i = 0;; ++i)
            Lanrise("eth1 10.0.1." + std::string(i % 2 == 0 ? "10" : "11") +
                    " 255.255.255.0 10.0.1.1");
    });
    for (int i = 0; i < 40; ++i) {
        const Result check = Status("--check");
        EXPECT_FALSE(Has(check.output, "the file none")) << check.output;
        EXPECT_FALSE(Has(check.output, "no usable address")) << check.output;
    }
    writer.Kill();
}

/// Locks the file and empties it, as one does who saves a setting.
int BeginSaving(const std::string& file)
{
    const int descriptor = open(file.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
    struct flock whole {};
    whole.l_type = F_WRLCK;
    EXPECT_EQ(fcntl(descriptor, F_SETLKW, &whole), 0);
    EXPECT_EQ(ftruncate(descriptor, 0), 0);
    return descriptor;
}

TEST_F(StatusTest, WaitsForOneWhoIsSlowToSave)
{
    Lanrise();
    const std::string text = Get(kFolder + "network1");
    const int file = BeginSaving(kFolder + "network1");
    Child reader([] { EXPECT_EQ(Status("--check").output, ""); });
    usleep(300'000);
    EXPECT_EQ(write(file, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    close(file);
    EXPECT_TRUE(reader.Wait());
}

TEST_F(StatusTest, OneWhoNeverEndsToSaveIsNotWaitedFor)
{
    Lanrise();
    const int file = BeginSaving(kFolder + "network1");
    EXPECT_TRUE(Has(Status("--check").output, "eth1: next boot: no usable address is saved"));
    close(file);
}

}  // namespace
