// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Network.h"

#include "fake/World.h"

#include <arpa/inet.h>
#include <linux/sockios.h>
#include <net/if.h>

using namespace fake;

// ---- what stands between the operations and the layers below

namespace {

struct Sent {
    int cmd;
    ifreq record;
};

std::vector<Sent> sent;  // every record handed to NetIOCtrl, as it was then
int printsThatFail = 0;  // how many of the next address prints fail
int printsThatWork = 0;  // how many work before them

}  // namespace

extern "C" {

bool __real_NetIOCtrl(int cmd, void* ifr);
const char* __real_inet_ntop(int family, const void* address, char* text, socklen_t size);

bool __wrap_NetIOCtrl(int cmd, void* ifr)
{
    sent.push_back({cmd, *static_cast<ifreq*>(ifr)});
    return __real_NetIOCtrl(cmd, ifr);
}

const char* __wrap_inet_ntop(int family, const void* address, char* text, socklen_t size)
{
    if (printsThatFail > 0 && printsThatWork-- <= 0) {
        --printsThatFail;
        errno = ENOSPC;
        return nullptr;
    }
    return __real_inet_ntop(family, address, text, size);
}

}  // extern "C"

namespace {

using Calls = std::vector<std::string>;

constexpr char kLongName[] = "eth0123456789abcdef";
constexpr char kCutName[] = "eth0123456789ab";

class NetworkTest : public World {
protected:
    void SetUp() override
    {
        World::SetUp();
        sent.clear();
        printsThatFail = printsThatWork = 0;
        kernel.Add("eth0");
        kernel.Add("eth1");
    }

    static Card& Eth1() { return kernel.At("eth1"); }
};

/// A record as an operation has to hand it in: zeroed, with the name.
ifreq RecordFor(const std::string& name)
{
    ifreq record{};
    name.copy(record.ifr_name, IFNAMSIZ - 1);
    return record;
}

ifreq AddressRecord(const std::string& name, const char* address)
{
    ifreq record = RecordFor(name);
    sockaddr_in place{};
    place.sin_family = AF_INET;
    inet_pton(AF_INET, address, &place.sin_addr);
    memcpy(&record.ifr_addr, &place, sizeof(place));
    return record;
}

void ExpectSent(size_t place, int cmd, const ifreq& record)
{
    ASSERT_LT(place, sent.size());
    EXPECT_EQ(sent[place].cmd, cmd);
    EXPECT_EQ(memcmp(&sent[place].record, &record, sizeof(record)), 0) << "record " << place;
}

void ExpectSilentAndUntouched()
{
    EXPECT_EQ(Trace(), Calls{});
    EXPECT_EQ(Log(), LogLines{});
}

// ==== Link state

class Net_InterfaceUpTest : public NetworkTest {};

TEST_F(Net_InterfaceUpTest, TakesTheInterfaceUp)
{
    Eth1().flags = IFF_BROADCAST;
    EXPECT_TRUE(Net_InterfaceUp("eth1"));
    EXPECT_EQ(Eth1().flags, IFF_BROADCAST | IFF_UP);
}

TEST_F(Net_InterfaceUpTest, FailsForAnUnknownInterface)
{
    EXPECT_FALSE(Net_InterfaceUp("eth7"));
    EXPECT_EQ(Log(), (LogLines{Refused(SIOCGIFFLAGS, ENODEV, "eth7"),
                               Error("InterfaceUp", "up eth7 failed,getflags error.")}));
}

TEST_F(Net_InterfaceUpTest, ANullNameIsSilent)
{
    EXPECT_FALSE(Net_InterfaceUp(nullptr));
    ExpectSilentAndUntouched();
}

class Net_InterfaceDownTest : public NetworkTest {};

TEST_F(Net_InterfaceDownTest, TakesTheInterfaceDown)
{
    Eth1().flags = IFF_BROADCAST | IFF_UP;
    EXPECT_TRUE(Net_InterfaceDown("eth1"));
    EXPECT_EQ(Eth1().flags, IFF_BROADCAST);
}

TEST_F(Net_InterfaceDownTest, FailsForAnUnknownInterface)
{
    EXPECT_FALSE(Net_InterfaceDown("eth7"));
    EXPECT_EQ(Log(), (LogLines{Refused(SIOCGIFFLAGS, ENODEV, "eth7"),
                               Error("InterfaceDown", "down eth7 failed,getflags error.")}));
}

TEST_F(Net_InterfaceDownTest, ANullNameIsSilent)
{
    EXPECT_FALSE(Net_InterfaceDown(nullptr));
    ExpectSilentAndUntouched();
}

// ==== Address and mask

class Net_SetIPbyNameTest : public NetworkTest {};

TEST_F(Net_SetIPbyNameTest, SetsTheAddressAndThenTheMask)
{
    EXPECT_TRUE(Net_SetIPbyName("eth1", "10.0.0.2", "255.255.254.0"));
    EXPECT_EQ(TraceOf({"ioctl"}), (Calls{"ioctl SIOCSIFADDR eth1", "ioctl SIOCSIFNETMASK eth1"}));
    EXPECT_EQ(Eth1().address, "10.0.0.2");
    EXPECT_EQ(Eth1().mask, "255.255.254.0");
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Net_SetIPbyNameTest, SendsInternetAddressesWithPortZeroInZeroedRecords)
{
    EXPECT_TRUE(Net_SetIPbyName("eth1", "10.0.0.2", "255.255.254.0"));
    ASSERT_EQ(sent.size(), 2U);
    ExpectSent(0, SIOCSIFADDR, AddressRecord("eth1", "10.0.0.2"));
    ExpectSent(1, SIOCSIFNETMASK, AddressRecord("eth1", "255.255.254.0"));
}

TEST_F(Net_SetIPbyNameTest, CutsALongNameAtFifteenCharacters)
{
    kernel.Add(kCutName);
    EXPECT_TRUE(Net_SetIPbyName(kLongName, "10.0.0.2", "255.0.0.0"));
    EXPECT_EQ(kernel.At(kCutName).address, "10.0.0.2");
}

TEST_F(Net_SetIPbyNameTest, RefusesATextThatIsNoAddressBeforeTheKernelIsAsked)
{
    for (const char* text : {"", "10.0.0", "10.0.0.256", "10.0.0.2 ", " 10.0.0.2", "10.0.0.2/24",
                             "0x0a.0.0.2", "10.0.0.2.3", "fe80::1", "eth1"}) {
        SCOPED_TRACE(text);
        ClearLog();
        ClearTrace();
        EXPECT_FALSE(Net_SetIPbyName("eth1", text, "255.255.255.0"));
        EXPECT_EQ(Trace(), Calls{});
        EXPECT_EQ(Log(),
                  (LogLines{Error("Net_SetIPbyName", "addr " + std::string(text) + " error")}));
    }
}

TEST_F(Net_SetIPbyNameTest, StopsWhenTheKernelRefusesTheAddress)
{
    Fail("ioctl SIOCSIFADDR", EPERM);
    EXPECT_FALSE(Net_SetIPbyName("eth1", "10.0.0.2", "255.255.255.0"));
    EXPECT_EQ(TraceOf({"ioctl"}), (Calls{"ioctl SIOCSIFADDR eth1"}));
    EXPECT_EQ(Log(), (LogLines{Refused(SIOCSIFADDR, EPERM, "eth1"),
                               Error("Net_SetIPbyName", "set eth1 ip 10.0.0.2 error")}));
}

TEST_F(Net_SetIPbyNameTest, TheZeroAddressTakesTheAddressAwayAndNeverLooksAtTheMask)
{
    Eth1().address = "10.0.0.2";
    EXPECT_TRUE(Net_SetIPbyName("eth1", "0.0.0.0", "no mask"));
    EXPECT_EQ(TraceOf({"ioctl"}), (Calls{"ioctl SIOCSIFADDR eth1"}));
    EXPECT_EQ(Eth1().address, "");
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Net_SetIPbyNameTest, TheZeroAddressCanBeRefusedToo)
{
    EXPECT_FALSE(Net_SetIPbyName("eth7", "0.0.0.0", "255.255.255.0"));
    EXPECT_EQ(Log(), (LogLines{Refused(SIOCSIFADDR, ENODEV, "eth7"),
                               Error("Net_SetIPbyName", "set eth7 ip 0.0.0.0 error")}));
}

TEST_F(Net_SetIPbyNameTest, AMalformedMaskLeavesTheAddressSet)
{
    for (const char* text : {"", "255.255.255", "255.255.255.0x", "24"}) {
        SCOPED_TRACE(text);
        ClearLog();
        ClearTrace();
        Eth1().address = "";
        EXPECT_FALSE(Net_SetIPbyName("eth1", "10.0.0.2", text));
        EXPECT_EQ(TraceOf({"ioctl"}), (Calls{"ioctl SIOCSIFADDR eth1"}));
        EXPECT_EQ(Eth1().address, "10.0.0.2");
        EXPECT_EQ(Log(),
                  (LogLines{Error("Net_SetIPbyName", "mask " + std::string(text) + " error")}));
    }
}

TEST_F(Net_SetIPbyNameTest, FailsWhenTheKernelRefusesTheMask)
{
    Fail("ioctl SIOCSIFNETMASK", EINVAL);
    EXPECT_FALSE(Net_SetIPbyName("eth1", "10.0.0.2", "255.0.255.0"));
    EXPECT_EQ(Eth1().address, "10.0.0.2");
    EXPECT_EQ(Log(), (LogLines{Refused(SIOCSIFNETMASK, EINVAL, "eth1"),
                               Error("Net_SetIPbyName", "set eth1 mask 255.0.255.0 error")}));
}

TEST_F(Net_SetIPbyNameTest, ANullIsSilentEvenAMaskThatWouldNotBeLookedAt)
{
    EXPECT_FALSE(Net_SetIPbyName(nullptr, "10.0.0.2", "255.255.255.0"));
    EXPECT_FALSE(Net_SetIPbyName("eth1", nullptr, "255.255.255.0"));
    EXPECT_FALSE(Net_SetIPbyName("eth1", "10.0.0.2", nullptr));
    EXPECT_FALSE(Net_SetIPbyName("eth1", "0.0.0.0", nullptr));
    ExpectSilentAndUntouched();
}

TEST_F(Net_SetIPbyNameTest, EveryFailedRequestIsAFailure)
{
    FailEachCall(
        [] {
            const bool set = Net_SetIPbyName("eth1", "10.0.0.2", "255.255.255.0");
            EXPECT_EQ(set, kernel.At("eth1").mask == "255.255.255.0");
        },
        [](const std::string& failed) {
            const bool harmless = failed == "fcntl F_SETFD";
            EXPECT_EQ(kernel.At("eth1").mask == "255.255.255.0", harmless);
            EXPECT_EQ(LogOf("Net_SetIPbyName").empty(), harmless);
        });
}

class Net_GetIPbyNameTest : public NetworkTest {
protected:
    char addr_[16] = "before";
    char mask_[16] = "before";
};

TEST_F(Net_GetIPbyNameTest, ReadsTheAddressAndThenTheMask)
{
    Eth1().address = "192.168.100.108";
    Eth1().mask = "255.255.255.255";
    EXPECT_TRUE(Net_GetIPbyName("eth1", addr_, mask_));
    EXPECT_STREQ(addr_, "192.168.100.108");
    EXPECT_STREQ(mask_, "255.255.255.255");
    EXPECT_EQ(TraceOf({"ioctl"}), (Calls{"ioctl SIOCGIFADDR eth1", "ioctl SIOCGIFNETMASK eth1"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Net_GetIPbyNameTest, AsksForInternetAddresses)
{
    Eth1().address = "10.0.0.2";
    EXPECT_TRUE(Net_GetIPbyName("eth1", addr_, mask_));
    ASSERT_EQ(sent.size(), 2U);
    ExpectSent(0, SIOCGIFADDR, AddressRecord("eth1", "0.0.0.0"));
    EXPECT_EQ(sent[1].cmd, SIOCGIFNETMASK);
    EXPECT_EQ(sent[1].record.ifr_addr.sa_family, AF_INET);
}

TEST_F(Net_GetIPbyNameTest, ACardWithoutAddressGivesNone)
{
    EXPECT_FALSE(Net_GetIPbyName("eth1", addr_, mask_));
    EXPECT_STREQ(addr_, "before");
    EXPECT_STREQ(mask_, "before");
    EXPECT_EQ(TraceOf({"ioctl"}), (Calls{"ioctl SIOCGIFADDR eth1"}));
    EXPECT_EQ(Log(), (LogLines{Refused(SIOCGIFADDR, EADDRNOTAVAIL, "eth1"),
                               Warn("Net_GetIPbyName", "get IP from system failed.[eth1]")}));
}

TEST_F(Net_GetIPbyNameTest, AFailedMaskLeavesTheAddressFilled)
{
    Eth1().address = "10.0.0.2";
    Fail("ioctl SIOCGIFNETMASK", EIO);
    EXPECT_FALSE(Net_GetIPbyName("eth1", addr_, mask_));
    EXPECT_STREQ(addr_, "10.0.0.2");
    EXPECT_STREQ(mask_, "before");
    EXPECT_EQ(Log(), (LogLines{Refused(SIOCGIFNETMASK, EIO, "eth1"),
                               Warn("Net_GetIPbyName", "get Mask from system failed.[eth1]")}));
}

TEST_F(Net_GetIPbyNameTest, AnAddressThatCannotBePrintedEndsIt)
{
    Eth1().address = "10.0.0.2";
    printsThatFail = 1;
    EXPECT_FALSE(Net_GetIPbyName("eth1", addr_, mask_));
    EXPECT_EQ(TraceOf({"ioctl"}), (Calls{"ioctl SIOCGIFADDR eth1"}));
    EXPECT_STREQ(mask_, "before");
    EXPECT_EQ(Log(), (LogLines{Error("Net_GetIPbyName", "inet_ntop error.")}));
}

TEST_F(Net_GetIPbyNameTest, SoDoesAMaskThatCannotBePrinted)
{
    Eth1().address = "10.0.0.2";
    printsThatWork = printsThatFail = 1;
    EXPECT_FALSE(Net_GetIPbyName("eth1", addr_, mask_));
    EXPECT_STREQ(addr_, "10.0.0.2");
    EXPECT_STREQ(mask_, "before");
    EXPECT_EQ(Log(), (LogLines{Error("Net_GetIPbyName", "inet_ntop error.")}));
}

TEST_F(Net_GetIPbyNameTest, ANullIsSilent)
{
    Eth1().address = "10.0.0.2";
    EXPECT_FALSE(Net_GetIPbyName(nullptr, addr_, mask_));
    EXPECT_FALSE(Net_GetIPbyName("eth1", nullptr, mask_));
    EXPECT_FALSE(Net_GetIPbyName("eth1", addr_, nullptr));
    EXPECT_STREQ(addr_, "before");
    EXPECT_STREQ(mask_, "before");
    ExpectSilentAndUntouched();
}

TEST_F(Net_GetIPbyNameTest, EveryFailedRequestIsAFailure)
{
    Eth1().address = "10.0.0.2";
    bool read = false;
    FailEachCall([&] { read = Net_GetIPbyName("eth1", addr_, mask_); },
                 [&](const std::string& failed) { EXPECT_EQ(read, failed == "fcntl F_SETFD"); });
}

// ==== Hardware address

const Calls kMacChangeCalls = {"ioctl SIOCGIFFLAGS eth1", "ioctl SIOCSIFFLAGS eth1",
                               "ioctl SIOCSIFHWADDR eth1", "ioctl SIOCGIFFLAGS eth1",
                               "ioctl SIOCSIFFLAGS eth1"};

class Net_SetMacbyNameTest : public NetworkTest {
protected:
    void SetUp() override
    {
        NetworkTest::SetUp();
        Eth1().flags = IFF_UP;
    }

    static LogLine Announced()
    {
        return Warn("Net_SetMacbyName", "mac addr will be modifyed![eth1]");
    }
};

TEST_F(Net_SetMacbyNameTest, TakesTheCardDownSetsTheAddressAndTakesItUp)
{
    EXPECT_TRUE(Net_SetMacbyName("eth1", "02:0a:1B:ff:00:7f"));
    EXPECT_EQ(TraceOf({"ioctl", "mutex"}), kMacChangeCalls);
    EXPECT_EQ(Eth1().mac, "02:0a:1b:ff:00:7f");
    EXPECT_EQ(Eth1().flags, IFF_UP);
    EXPECT_EQ(Log(), (LogLines{Announced()}));
}

TEST_F(Net_SetMacbyNameTest, TheCardIsDownWhileItsAddressChanges)
{
    Fail("ioctl SIOCSIFFLAGS", EIO, 2);  // the one that takes it up again
    EXPECT_TRUE(Net_SetMacbyName("eth1", "02:00:00:00:00:09"));
    EXPECT_EQ(Eth1().flags & IFF_UP, 0);
    EXPECT_EQ(Log(), (LogLines{Announced(), Refused(SIOCSIFFLAGS, EIO, "eth1"),
                               Error("InterfaceUp", "up eth1 failed,setflags error.")}));
}

TEST_F(Net_SetMacbyNameTest, SendsAnEthernetAddressInAZeroedRecord)
{
    EXPECT_TRUE(Net_SetMacbyName("eth1", "02:0a:1b:ff:00:7f"));
    ifreq record = RecordFor("eth1");
    record.ifr_hwaddr.sa_family = 1;
    memcpy(record.ifr_hwaddr.sa_data, "\x02\x0a\x1b\xff\x00\x7f", 6);
    ASSERT_EQ(sent.size(), 1U);
    ExpectSent(0, SIOCSIFHWADDR, record);
}

TEST_F(Net_SetMacbyNameTest, ReadsShortFieldsAndIgnoresWhatStandsBehindTheSixth)
{
    for (const char* text : {"2:3:4:5:6:7", "02:03:04:05:06:07:08", "02:03:04:05:06:07 eth1",
                             "02:03:04:05:06:0789", " 02: 03:04:05:06:07"}) {
        SCOPED_TRACE(text);
        Eth1().mac = "";
        EXPECT_TRUE(Net_SetMacbyName("eth1", text));
        EXPECT_EQ(Eth1().mac, "02:03:04:05:06:07");
    }
}

TEST_F(Net_SetMacbyNameTest, AMalformedAddressDoesNotTouchTheCard)
{
    for (const char* text :
         {"", "eth1", "02:03:04:05:06", "02:03:04:05:06:", "02:03:04:05:06:zz", "02-03-04-05-06-07",
          "020304050607", "002:03:04:05:06:07", "02 :03:04:05:06:07"}) {
        SCOPED_TRACE(text);
        ClearLog();
        ClearTrace();
        EXPECT_FALSE(Net_SetMacbyName("eth1", text));
        EXPECT_EQ(Trace(), Calls{});
        EXPECT_EQ(Log(), (LogLines{Announced(), Error("Net_SetMacbyName",
                                                      "mac " + std::string(text) + " error")}));
    }
}

TEST_F(Net_SetMacbyNameTest, ACardThatRefusesTheAddressComesUpAgain)
{
    Fail("ioctl SIOCSIFHWADDR", EBUSY);
    EXPECT_FALSE(Net_SetMacbyName("eth1", "02:00:00:00:00:09"));
    EXPECT_EQ(TraceOf({"ioctl"}), kMacChangeCalls);
    EXPECT_EQ(Eth1().flags, IFF_UP);
    EXPECT_EQ(Log(), (LogLines{Announced(), Refused(SIOCSIFHWADDR, EBUSY, "eth1"),
                               Error("Net_SetMacbyName",
                                     "set mac failed.[eth1:Device or resource busy]")}));
}

TEST_F(Net_SetMacbyNameTest, ACardThatStaysUpMayStillTakeTheAddress)
{
    Fail("ioctl SIOCGIFFLAGS", EIO);
    EXPECT_TRUE(Net_SetMacbyName("eth1", "02:00:00:00:00:09"));
    EXPECT_EQ(Eth1().mac, "02:00:00:00:00:09");
    EXPECT_EQ(Log(), (LogLines{Announced(), Refused(SIOCGIFFLAGS, EIO, "eth1"),
                               Error("InterfaceDown", "down eth1 failed,getflags error.")}));
}

TEST_F(Net_SetMacbyNameTest, ANullIsNotEvenAnnounced)
{
    EXPECT_FALSE(Net_SetMacbyName(nullptr, "02:00:00:00:00:09"));
    EXPECT_FALSE(Net_SetMacbyName("eth1", nullptr));
    ExpectSilentAndUntouched();
}

TEST_F(Net_SetMacbyNameTest, OnlyTheAddressRequestDecides)
{
    bool changed = false;
    FailEachCall([&] { changed = Net_SetMacbyName("eth1", "02:00:00:00:00:09"); },
                 [&](const std::string& failed) {
                     EXPECT_EQ(changed, failed != "ioctl SIOCSIFHWADDR eth1");
                     EXPECT_EQ(changed, kernel.At("eth1").mac == "02:00:00:00:00:09");
                 });
}

class Net_GetMacbyNameTest : public NetworkTest {
protected:
    char addr_[18] = "before";
};

TEST_F(Net_GetMacbyNameTest, ReadsTheAddressInLowerCase)
{
    Eth1().mac = "AC:DE:48:00:0F:80";
    EXPECT_TRUE(Net_GetMacbyName("eth1", addr_));
    EXPECT_STREQ(addr_, "ac:de:48:00:0f:80");
    ASSERT_EQ(sent.size(), 1U);
    ExpectSent(0, SIOCGIFHWADDR, RecordFor("eth1"));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Net_GetMacbyNameTest, AFailureLeavesTheBufferAsItWas)
{
    EXPECT_FALSE(Net_GetMacbyName("eth7", addr_));
    EXPECT_STREQ(addr_, "before");
    EXPECT_EQ(Log(), (LogLines{Refused(SIOCGIFHWADDR, ENODEV, "eth7"),
                               Error("Net_GetMacbyName", "get eth7 mac error.")}));
}

TEST_F(Net_GetMacbyNameTest, ANullIsSilent)
{
    EXPECT_FALSE(Net_GetMacbyName(nullptr, addr_));
    EXPECT_FALSE(Net_GetMacbyName("eth1", nullptr));
    EXPECT_STREQ(addr_, "before");
    ExpectSilentAndUntouched();
}

TEST_F(Net_GetMacbyNameTest, EveryFailedRequestIsAFailure)
{
    bool read = false;
    FailEachCall([&] { read = Net_GetMacbyName("eth1", addr_); },
                 [&](const std::string& failed) { EXPECT_EQ(read, failed == "fcntl F_SETFD"); });
}

// ==== MTU

const Calls kOpening = {"socket AF_INET", "fcntl F_SETFD"};

class Net_SetMtubyNameTest : public NetworkTest {
protected:
    void SetUp() override
    {
        NetworkTest::SetUp();
        Eth1().flags = IFF_UP;
    }

    static Calls Opened(Calls calls)
    {
        calls.insert(calls.begin(), kOpening.begin(), kOpening.end());
        return calls;
    }
};

TEST_F(Net_SetMtubyNameTest, ARunningCardThatTakesItIsNotTakenDown)
{
    EXPECT_TRUE(Net_SetMtubyName("eth1", 1400));
    EXPECT_EQ(Eth1().mtu, 1400);
    EXPECT_EQ(Trace(), Opened({"ioctl SIOCSIFMTU eth1"}));
    ifreq record = RecordFor("eth1");
    record.ifr_mtu = 1400;
    ExpectSent(0, SIOCSIFMTU, record);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Net_SetMtubyNameTest, TheMtuInForceNeedsNoSecondTry)
{
    Eth1().refusesMtuWhileUp = true;
    EXPECT_TRUE(Net_SetMtubyName("eth1", 1500));
    EXPECT_EQ(Trace(), Opened({"ioctl SIOCSIFMTU eth1", "ioctl SIOCGIFMTU eth1"}));
    EXPECT_EQ(Log(), (LogLines{Refused(SIOCSIFMTU, EBUSY, "eth1")}));
}

TEST_F(Net_SetMtubyNameTest, TheSecondTryTakesTheCardDownUnderTheLockAndUpOutsideIt)
{
    Eth1().refusesMtuWhileUp = true;
    EXPECT_TRUE(Net_SetMtubyName("eth1", 1400));
    EXPECT_EQ(Trace(),
              Opened({"ioctl SIOCSIFMTU eth1", "ioctl SIOCGIFMTU eth1", "mutex lock",
                      "ioctl SIOCGIFFLAGS eth1", "ioctl SIOCSIFFLAGS eth1", "ioctl SIOCSIFMTU eth1",
                      "mutex unlock", "ioctl SIOCGIFFLAGS eth1", "ioctl SIOCSIFFLAGS eth1"}));
    EXPECT_EQ(Eth1().mtu, 1400);
    EXPECT_EQ(Eth1().flags, IFF_UP);
    EXPECT_EQ(Log(), (LogLines{Refused(SIOCSIFMTU, EBUSY, "eth1")}));
    ifreq record = RecordFor("eth1");
    record.ifr_mtu = 1400;
    ExpectSent(2, SIOCSIFMTU, record);
}

TEST_F(Net_SetMtubyNameTest, ASecondRefusalIsAFailureWithTheCardUpAgain)
{
    EXPECT_FALSE(Net_SetMtubyName("eth1", 60));
    EXPECT_EQ(Eth1().mtu, 1500);
    EXPECT_EQ(Eth1().flags, IFF_UP);
    EXPECT_EQ(TraceOf({"ioctl SIOCSIF", "mutex"}),
              (Calls{"ioctl SIOCSIFMTU eth1", "mutex lock", "ioctl SIOCSIFFLAGS eth1",
                     "ioctl SIOCSIFMTU eth1", "mutex unlock", "ioctl SIOCSIFFLAGS eth1"}));
    EXPECT_EQ(Log(),
              (LogLines{Refused(SIOCSIFMTU, EINVAL, "eth1"), Refused(SIOCSIFMTU, EINVAL, "eth1"),
                        Error("Net_SetMtubyName", "set MTU failed.[eth1,60]")}));
}

TEST_F(Net_SetMtubyNameTest, TheFailureIsToldAfterTheCardWasTakenUp)
{
    FailAll("ioctl SIOCSIFMTU", EINVAL);
    Fail("ioctl SIOCSIFFLAGS", EIO, 2);
    EXPECT_FALSE(Net_SetMtubyName("eth1", 1400));
    EXPECT_EQ(Log(),
              (LogLines{Refused(SIOCSIFMTU, EINVAL, "eth1"), Refused(SIOCSIFMTU, EINVAL, "eth1"),
                        Refused(SIOCSIFFLAGS, EIO, "eth1"),
                        Error("InterfaceUp", "up eth1 failed,setflags error."),
                        Error("Net_SetMtubyName", "set MTU failed.[eth1,1400]")}));
}

TEST_F(Net_SetMtubyNameTest, AnMtuThatCannotBeReadIsTakenForAnother)
{
    Fail("ioctl SIOCSIFMTU", EBUSY);
    Fail("ioctl SIOCGIFMTU", EIO);
    EXPECT_TRUE(Net_SetMtubyName("eth1", 1400));
    EXPECT_EQ(Eth1().mtu, 1400);
    EXPECT_EQ(Log(), (LogLines{Refused(SIOCSIFMTU, EBUSY, "eth1"), Refused(SIOCGIFMTU, EIO, "eth1"),
                               Error("Net_GetMtubyName", "get mtu from system failed.[eth1]")}));
}

TEST_F(Net_SetMtubyNameTest, AnUnreadMtuIsNotZero)
{
    Fail("ioctl SIOCGIFMTU", EIO);
    EXPECT_FALSE(Net_SetMtubyName("eth1", 0));
    EXPECT_TRUE(Logged(Error("Net_SetMtubyName", "set MTU failed.[eth1,0]")));
}

TEST_F(Net_SetMtubyNameTest, TheLinkStepsDoNotDecide)
{
    Eth1().flags = 0;
    Fail("ioctl SIOCSIFMTU", EBUSY);
    FailAll("ioctl SIOCGIFFLAGS", EIO);
    EXPECT_TRUE(Net_SetMtubyName("eth1", 1400));
    EXPECT_EQ(Eth1().mtu, 1400);
    EXPECT_EQ(Log(),
              (LogLines{Refused(SIOCSIFMTU, EBUSY, "eth1"), Refused(SIOCGIFFLAGS, EIO, "eth1"),
                        Error("InterfaceDown", "down eth1 failed,getflags error."),
                        Refused(SIOCGIFFLAGS, EIO, "eth1"),
                        Error("InterfaceUp", "up eth1 failed,getflags error.")}));
}

TEST_F(Net_SetMtubyNameTest, ANullNameIsSilent)
{
    EXPECT_FALSE(Net_SetMtubyName(nullptr, 1400));
    ExpectSilentAndUntouched();
}

TEST_F(Net_SetMtubyNameTest, TheResultIsTheMtuWhateverFails)
{
    Eth1().refusesMtuWhileUp = true;
    bool changed = false;
    FailEachCall([&] { changed = Net_SetMtubyName("eth1", 1400); },
                 [&](const std::string&) { EXPECT_EQ(changed, kernel.At("eth1").mtu == 1400); });
}

class Net_GetMtubyNameTest : public NetworkTest {
protected:
    int mtu_ = -7;
};

TEST_F(Net_GetMtubyNameTest, ReadsTheMtu)
{
    Eth1().mtu = 9000;
    EXPECT_TRUE(Net_GetMtubyName("eth1", &mtu_));
    EXPECT_EQ(mtu_, 9000);
    ASSERT_EQ(sent.size(), 1U);
    ExpectSent(0, SIOCGIFMTU, RecordFor("eth1"));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Net_GetMtubyNameTest, AFailureLeavesTheNumberAsItWas)
{
    EXPECT_FALSE(Net_GetMtubyName("eth7", &mtu_));
    EXPECT_EQ(mtu_, -7);
    EXPECT_EQ(Log(), (LogLines{Refused(SIOCGIFMTU, ENODEV, "eth7"),
                               Error("Net_GetMtubyName", "get mtu from system failed.[eth7]")}));
}

TEST_F(Net_GetMtubyNameTest, ANullNameIsSilent)
{
    EXPECT_FALSE(Net_GetMtubyName(nullptr, &mtu_));
    EXPECT_EQ(mtu_, -7);
    ExpectSilentAndUntouched();
}

TEST_F(Net_GetMtubyNameTest, ANullResultIsSilentAndNoticedWhereItWouldBeStored)
{
    EXPECT_FALSE(Net_GetMtubyName("eth1", nullptr));
    EXPECT_EQ(TraceOf({"ioctl"}), (Calls{"ioctl SIOCGIFMTU eth1"}));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(Net_GetMtubyNameTest, EveryFailedRequestIsAFailure)
{
    bool read = false;
    FailEachCall([&] { read = Net_GetMtubyName("eth1", &mtu_); },
                 [&](const std::string& failed) { EXPECT_EQ(read, failed == "fcntl F_SETFD"); });
}

}  // namespace
