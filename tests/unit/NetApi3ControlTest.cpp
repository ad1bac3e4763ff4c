// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Control objects: their count, and what they hand on and list.

#include "NetApi3_0.h"

#include "fake/World.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include <arpa/inet.h>

using namespace fake;

namespace {

// ---- the operations below that get a record: they note its bytes and spoil their copy

bool answer = true;
Texts asked;
std::vector<unsigned char> record;
const void* recordPlace = nullptr;
PoeInfo_t power;

template <class Record>
bool Ask(const char* operation, Record* given)
{
    asked.emplace_back(operation);
    recordPlace = given;
    record.resize(sizeof(Record));
    memcpy(record.data(), given, sizeof(Record));
    return answer;
}

bool Ask(const char* operation, uint32_t number)
{
    asked.push_back(std::string(operation) + " " + std::to_string(number));
    return answer;
}

}  // namespace

extern "C" {

bool __real_RouteGetAllInfo(NetRouteTableInfo* routes, int* num);

bool __wrap_RouteGetAllInfo(NetRouteTableInfo* routes, int* num)
{
    std::string call = "RouteGetAllInfo";
    for (int i = 0; i < *num; ++i) {
        NetRouteTableInfo expected{};
        expected.type = routes[i].type;
        EXPECT_EQ(memcmp(&routes[i], &expected, sizeof(expected)), 0) << i;
        call += " " + std::to_string(routes[i].type);
    }
    asked.push_back(call);
    return __real_RouteGetAllInfo(routes, num);
}

bool __wrap_RouteAdd(NetRouteTableInfo* cmd)
{
    const bool done = Ask("RouteAdd", cmd);
    memset(cmd, 0, sizeof(*cmd));
    return done;
}

bool __wrap_RouteDel(NetRouteTableInfo* cmd)
{
    const bool done = Ask("RouteDel", cmd);
    memset(cmd, 0, sizeof(*cmd));
    return done;
}

bool __wrap_arpSetStaticEntry(const NetARPEntry* entry)
{
    return Ask("arpSetStaticEntry", entry);
}

bool __wrap_arpDelStaticEntry(const NetARPEntry* entry)
{
    return Ask("arpDelStaticEntry", entry);
}

bool __wrap_GetPoEPowerInfo(PoeInfo_t* info)
{
    const bool done = Ask("GetPoEPowerInfo", info);
    if (done) *info = power;
    return done;
}

bool __wrap_SetPoEPowerOn(uint32_t ports)
{
    return Ask("SetPoEPowerOn", ports);
}

bool __wrap_SetPoEPowerOff(uint32_t ports)
{
    return Ask("SetPoEPowerOff", ports);
}

bool __wrap_SetPoETotalPower(uint32_t total)
{
    return Ask("SetPoETotalPower", total);
}

}  // extern "C"

namespace {

class ControlTest : public World {
protected:
    void SetUp() override
    {
        World::SetUp();
        answer = true;
        asked.clear();
        ASSERT_EQ(createNetControl(nullptr, &control), 0);
        Begin();
    }

    void TearDown() override
    {
        EXPECT_TRUE(control == nullptr || control->release(control) == 0);
        World::TearDown();
    }

    static void Begin()
    {
        asked.clear();
        ClearTrace();
        ClearLog();
    }

    static QV_PAL_NetControl* control;
};

QV_PAL_NetControl* ControlTest::control = nullptr;

/// Each byte another one, so that a field in the wrong place shows.
template <class Record>
void FillWithPattern(Record* place)
{
    auto* bytes = reinterpret_cast<unsigned char*>(place);
    for (size_t i = 0; i < sizeof(Record); ++i) bytes[i] = static_cast<unsigned char>(i * 7 + 1);
}

template <class Record>
bool IsAll(const Record& place, unsigned char byte)
{
    const auto* bytes = reinterpret_cast<const unsigned char*>(&place);
    return std::all_of(bytes, bytes + sizeof(Record),
                       [byte](unsigned char value) { return value == byte; });
}

// ---- the object

class CreateNetControlTest : public ControlTest {};

TEST_F(CreateNetControlTest, EachSlotHoldsItsOperationAndTheOthersNull)
{
    QV_PAL_NetControl expected;
    memset(&expected, 0, sizeof(expected));
    expected.priv = control->priv;
    expected.addRef = NetCtrl_AddRef;
    expected.release = NetCtrl_DelRef;
    expected.getPoEPowerInfo = NetCtrl_GetPoEPowerInfo;
    expected.setPoEPowerOn = NetCtrl_SetPoEPowerOn;
    expected.setPoEPowerOff = NetCtrl_SetPoEPowerOff;
    expected.getAllRouteInfo = NetCtrl_GetAllRouteInfo;
    expected.addRoute = NetCtrl_AddRoute;
    expected.delRoute = NetCtrl_DelRoute;
    expected.addArpStaticEntry = NetCtrl_arpAddStaticEntry;
    expected.delArpStaticEntry = NetCtrl_arpDelStaticEntry;
    expected.getAllArpStaticEntry = NetCtrl_arpGetAllStaticEntry;
    expected.getArpStaticInfoByIp = NetCtrl_arpGetStaticInfoByIp;
    expected.setPoETotalPower = NetCtrl_SetPoETotalPower;
    void* const* slots = reinterpret_cast<void* const*>(control);
    void* const* wanted = reinterpret_cast<void* const*>(&expected);
    for (size_t i = 0; i < sizeof(expected) / sizeof(void*); ++i) {
        EXPECT_EQ(slots[i], wanted[i]) << "place " << i;
    }
    EXPECT_EQ(control->setPhyWolMode, nullptr);
}

TEST_F(CreateNetControlTest, TheDescriptorIsKept)
{
    QV_PAL_NetControlDesc desc;
    FillWithPattern(&desc);
    const QV_PAL_NetControlDesc given = desc;
    QV_PAL_NetControl* other = nullptr;
    ASSERT_EQ(createNetControl(&desc, &other), 0);
    memset(&desc, 0, sizeof(desc));
    EXPECT_EQ(memcmp(other->priv, &given, sizeof(given)), 0);
    EXPECT_TRUE(IsAll(*static_cast<QV_PAL_NetControlDesc*>(control->priv), 0));
    EXPECT_EQ(other->release(other), 0);
}

TEST_F(CreateNetControlTest, EachCallMakesAnotherObject)
{
    QV_PAL_NetControl* other = nullptr;
    ASSERT_EQ(createNetControl(nullptr, &other), 0);
    EXPECT_NE(other, control);
    EXPECT_NE(other->priv, control->priv);
    EXPECT_EQ(other->addRef(other), 2);
    EXPECT_EQ(control->addRef(control), 2);
    EXPECT_EQ(control->release(control), 1);
    EXPECT_EQ(other->release(other), 1);
    EXPECT_EQ(other->release(other), 0);
}

TEST_F(CreateNetControlTest, ReferencesAreCountedUnderTheLock)
{
    EXPECT_EQ(control->addRef(control), 2);
    EXPECT_EQ(control->addRef(control), 3);
    EXPECT_EQ(control->release(control), 2);
    EXPECT_EQ(control->release(control), 1);
    EXPECT_EQ(control->release(control), 0);
    control = nullptr;
    Texts pairs;
    for (int i = 0; i < 5; ++i) pairs.insert(pairs.end(), {"mutex lock", "mutex unlock"});
    EXPECT_EQ(TraceOf({"mutex"}), pairs);
    EXPECT_EQ(HeldMutexes(), 0);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(CreateNetControlTest, TheLastReleaseGivesAllMemoryBack)
{
    const size_t blocks = HeapBlocks();
    QV_PAL_NetControl* other = nullptr;
    ASSERT_EQ(createNetControl(nullptr, &other), 0);
    EXPECT_EQ(HeapBlocks(), blocks + 2);
    EXPECT_EQ(other->release(other), 0);
    EXPECT_EQ(HeapBlocks(), blocks);
}

/// What an application has released too often is still whole: an object goes at the count of 0,
/// and at no other.
TEST_F(CreateNetControlTest, ACountBelowZeroFreesNothing)
{
    // As the private part lies: the descriptor's copy, the count, the lock.
    auto* const count =
        reinterpret_cast<int*>(static_cast<char*>(control->priv) + sizeof(QV_PAL_NetControlDesc));
    ASSERT_EQ(*count, 1);
    const size_t blocks = HeapBlocks();
    for (const int before : {0, -1, -5}) {
        *count = before;
        EXPECT_EQ(control->release(control), before - 1);
        EXPECT_EQ(*count, before - 1);
        EXPECT_EQ(control->addRef(control), before);
        EXPECT_EQ(HeapBlocks(), blocks);
    }
    *count = 1;
}

TEST_F(CreateNetControlTest, NullIsRefusedInSilence)
{
    QV_PAL_NetControlDesc desc{};
    EXPECT_EQ(createNetControl(&desc, nullptr), -1);
    EXPECT_EQ(control->addRef(nullptr), -1);
    EXPECT_EQ(control->release(nullptr), -1);
    QV_PAL_NetControl bare = *control;
    bare.priv = nullptr;
    EXPECT_EQ(control->addRef(&bare), -1);
    EXPECT_EQ(control->release(&bare), -1);
    EXPECT_EQ(TraceOf({"calloc", "mutex"}), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(CreateNetControlTest, WithoutMemoryThereIsNoObject)
{
    auto* const none = reinterpret_cast<QV_PAL_NetControl*>(0x10);
    const char* const messages[] = {"malloc QV_PAL_NetControl error!", "malloc netPri error!"};
    for (int i = 0; i < 2; ++i) {
        ClearLog();
        Fail("calloc", ENOMEM, i + 1);
        QV_PAL_NetControl* other = none;
        EXPECT_EQ(createNetControl(nullptr, &other), -1);
        EXPECT_EQ(other, none);
        EXPECT_EQ(Log(), LogLines{Error("createNetControl", messages[i])});
    }
}

// ---- records that are handed on

class ControlRecordTest : public ControlTest {};

template <class Record>
void ExpectHandedOn(const char* operation, int (*call)(Record*))
{
    SCOPED_TRACE(operation);
    for (const bool done : {true, false}) {
        Record given;
        FillWithPattern(&given);
        const Record before = given;
        answer = done;
        asked.clear();
        EXPECT_EQ(call(&given), done ? 0 : -1);
        EXPECT_EQ(asked, Texts{operation});
        ASSERT_EQ(record.size(), sizeof(before));
        EXPECT_EQ(memcmp(record.data(), &before, sizeof(before)), 0);
        EXPECT_NE(recordPlace, &given);
        EXPECT_EQ(memcmp(&given, &before, sizeof(before)), 0);
    }
}

TEST_F(ControlRecordTest, ACopyIsHandedOnByteForByte)
{
    ExpectHandedOn<QV_PAL_RouteTableInfo>(
        "RouteAdd", [](auto* given) { return control->addRoute(control, given); });
    ExpectHandedOn<QV_PAL_RouteTableInfo>(
        "RouteDel", [](auto* given) { return control->delRoute(control, given); });
    ExpectHandedOn<QV_PAL_ARPEntry>("arpSetStaticEntry", [](auto* given) {
        return control->addArpStaticEntry(control, given);
    });
    ExpectHandedOn<QV_PAL_ARPEntry>("arpDelStaticEntry", [](auto* given) {
        return control->delArpStaticEntry(control, given);
    });
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(ControlRecordTest, NullIsRefusedInSilence)
{
    QV_PAL_RouteTableInfo route{};
    QV_PAL_ARPEntry entry{};
    EXPECT_EQ(control->addRoute(control, nullptr), -1);
    EXPECT_EQ(control->delRoute(control, nullptr), -1);
    EXPECT_EQ(control->addArpStaticEntry(control, nullptr), -1);
    EXPECT_EQ(control->delArpStaticEntry(control, nullptr), -1);
    EXPECT_EQ(control->addRoute(nullptr, &route), -1);
    EXPECT_EQ(control->delRoute(nullptr, &route), -1);
    EXPECT_EQ(control->addArpStaticEntry(nullptr, &entry), -1);
    EXPECT_EQ(control->delArpStaticEntry(nullptr, &entry), -1);
    EXPECT_EQ(asked, Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

// ---- power over Ethernet

class ControlPowerTest : public ControlTest {};

TEST_F(ControlPowerTest, TheStateIsCopiedByteForByte)
{
    FillWithPattern(&power);
    QV_PAL_PoeInfo info;
    memset(&info, '#', sizeof(info));
    EXPECT_EQ(control->getPoEPowerInfo(control, &info), 0);
    EXPECT_EQ(memcmp(&info, &power, sizeof(info)), 0);
    EXPECT_EQ(asked, Texts{"GetPoEPowerInfo"});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(ControlPowerTest, AStateThatCannotBeReadIsToldAndChangesNothing)
{
    answer = false;
    QV_PAL_PoeInfo info;
    memset(&info, '#', sizeof(info));
    EXPECT_EQ(control->getPoEPowerInfo(control, &info), -1);
    EXPECT_TRUE(IsAll(info, '#'));
    EXPECT_EQ(Log(), LogLines{Error("NetCtrl_GetPoEPowerInfo", "Get PoE Power info error!")});
}

TEST_F(ControlPowerTest, NoPlaceAndNoObjectAreRefusedInSilence)
{
    QV_PAL_PoeInfo info;
    EXPECT_EQ(control->getPoEPowerInfo(nullptr, &info), -1);
    EXPECT_EQ(asked, Texts{});
    EXPECT_EQ(control->getPoEPowerInfo(control, nullptr), -1);
    EXPECT_EQ(asked, Texts{"GetPoEPowerInfo"});  // the device is asked first
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(ControlPowerTest, PortsAndTotalAreSetEvenWithoutAnObject)
{
    for (QV_PAL_NetControl* object : {control, static_cast<QV_PAL_NetControl*>(nullptr)}) {
        for (const bool done : {true, false}) {
            answer = done;
            asked.clear();
            const int result = done ? 0 : -1;
            EXPECT_EQ(control->setPoEPowerOn(object, 0xFFFFFFFFU), result);
            EXPECT_EQ(control->setPoEPowerOff(object, 6), result);
            EXPECT_EQ(control->setPoETotalPower(object, 0), result);
            EXPECT_EQ(control->setPoEPowerOn(object, 0), result);
            EXPECT_EQ(control->setPoEPowerOff(object, 0), result);
            EXPECT_EQ(asked, (Texts{"SetPoEPowerOn 4294967295", "SetPoEPowerOff 6",
                                    "SetPoETotalPower 0", "SetPoEPowerOn 0", "SetPoEPowerOff 0"}));
        }
    }
    EXPECT_EQ(Log(), LogLines{});
}

// ---- lists of routes

class GetAllRouteInfoTest : public ControlTest {
protected:
    void SetUp() override
    {
        ControlTest::SetUp();
        kernel.Add("eth0");
        kernel.routes = {{"10.0.0.0", "0.0.0.0", "255.255.255.0", "eth0"},
                         {"0.0.0.0", "10.0.0.1", "0.0.0.0", "eth0"}};
        kernel.routes6 = {{"2001:db8:7::", 48, "::", "eth0"}};
        memset(routes, '#', sizeof(routes));
        routes[0].type = 0;
    }

    static uint32_t Address(const char* text)
    {
        in_addr address{};
        EXPECT_EQ(inet_pton(AF_INET, text, &address), 1);
        return address.s_addr;
    }

    QV_PAL_RouteTableInfo routes[4];
    int num = 4;
};

TEST_F(GetAllRouteInfoTest, ListsTheTableAndLeavesTheRestOfTheRecords)
{
    EXPECT_EQ(control->getAllRouteInfo(control, routes, &num), 0);
    EXPECT_EQ(num, 2);
    QV_PAL_RouteTableInfo expected[2] = {};
    expected[0].dst.IPv4addr = Address("10.0.0.0");
    expected[0].mask = Address("255.255.255.0");
    expected[1].gw.IPv4addr = Address("10.0.0.1");
    for (QV_PAL_RouteTableInfo& route : expected) strcpy(route.viaDev, "eth0");
    EXPECT_EQ(memcmp(routes, expected, sizeof(expected)), 0);
    EXPECT_TRUE(IsAll(routes[2], '#'));
    EXPECT_TRUE(IsAll(routes[3], '#'));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(GetAllRouteInfoTest, TheFirstRecordTellsTheFamily)
{
    routes[0].type = 1;
    EXPECT_EQ(control->getAllRouteInfo(control, routes, &num), 0);
    ASSERT_EQ(num, 1);
    EXPECT_EQ(routes[0].type, 1);
    EXPECT_EQ(routes[0].mask, 48U);
    EXPECT_STREQ(routes[0].viaDev, "eth0");
    in6_addr wanted{};
    EXPECT_EQ(inet_pton(AF_INET6, "2001:db8:7::", &wanted), 1);
    EXPECT_EQ(memcmp(routes[0].dst.IPv6addr, &wanted, sizeof(wanted)), 0);
}

TEST_F(GetAllRouteInfoTest, EveryRecordIsAskedForInThatFamilyAndIsZeroElsewhere)
{
    EXPECT_EQ(control->getAllRouteInfo(control, routes, &num), 0);
    memset(routes, '#', sizeof(routes));
    routes[0].type = 1;
    num = 3;
    EXPECT_EQ(control->getAllRouteInfo(control, routes, &num), 0);
    EXPECT_EQ(asked, (Texts{"RouteGetAllInfo 0 0 0 0", "RouteGetAllInfo 1 1 1"}));
}

TEST_F(GetAllRouteInfoTest, AFullListEnds)
{
    num = 1;
    EXPECT_EQ(control->getAllRouteInfo(control, routes, &num), 0);
    EXPECT_EQ(num, 1);
    EXPECT_EQ(routes[0].mask, Address("255.255.255.0"));
    EXPECT_TRUE(IsAll(routes[1], '#'));
}

TEST_F(GetAllRouteInfoTest, AnotherFamilyIsRefused)
{
    routes[0].type = 2;
    EXPECT_EQ(control->getAllRouteInfo(control, routes, &num), -1);
    EXPECT_EQ(Log(),
              (LogLines{Error("RouteGetAllInfo", "invalid param, need fill type, IPv4 or IPv6"),
                        Error("NetCtrl_GetAllRouteInfo", "get all IPv4 route fail!")}));
    EXPECT_EQ(num, 4);
}

TEST_F(GetAllRouteInfoTest, NullAndAnEmptyListAreRefusedInSilence)
{
    EXPECT_EQ(control->getAllRouteInfo(nullptr, routes, &num), -1);
    EXPECT_EQ(control->getAllRouteInfo(control, nullptr, &num), -1);
    EXPECT_EQ(control->getAllRouteInfo(control, routes, nullptr), -1);
    num = 0;
    EXPECT_EQ(control->getAllRouteInfo(control, routes, &num), -1);
    EXPECT_EQ(TraceOf({"calloc", "open"}), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(GetAllRouteInfoTest, ListsThatCannotBeHadAreToldAsSuch)
{
    const LogLines said = {Error("NetCtrl_GetAllRouteInfo", "malloc NetRouteTableInfo failed")};
    for (const int count : {-1, INT32_MIN}) {
        ClearLog();
        num = count;
        EXPECT_EQ(control->getAllRouteInfo(control, routes, &num), -1);
        EXPECT_EQ(num, count);
        EXPECT_EQ(Log(), said);
    }
    ClearLog();
    num = 4;
    Fail("calloc", ENOMEM);
    EXPECT_EQ(control->getAllRouteInfo(control, routes, &num), -1);
    EXPECT_EQ(Log(), said);
    EXPECT_EQ(num, 4);
}

TEST_F(GetAllRouteInfoTest, EachFailureLeavesTheRecordsAsTheyWere)
{
    static QV_PAL_RouteTableInfo list[2];
    static int result;
    FailEachCall(
        [] {
            memset(list, '#', sizeof(list));
            list[0].type = 0;
            int count = 2;
            result = control->getAllRouteInfo(control, list, &count);
        },
        [](const std::string&) {
            list[0].type = '#';
            EXPECT_TRUE(result == 0 || (IsAll(list, '#') && !Log().empty()));
        },
        {"open /proc/net/route"});
}

// ---- lists of static ARP entries

constexpr char kArpTable[] = "/proc/net/arp";
constexpr char kArpHeader[] =
    "IP address       HW type     Flags       HW address            Mask     Device\n";

std::string ArpLine(const std::string& ip, const std::string& flags, const std::string& card)
{
    return ip + " 0x1 " + flags + " 02:00:00:00:00:09 * " + card + "\n";
}

class GetStaticEntriesTest : public ControlTest {
protected:
    void SetUp() override
    {
        ControlTest::SetUp();
        Put(kArpTable, kArpHeader + ArpLine("10.0.0.8", "0x6", "eth0") +
                           ArpLine("10.0.0.7", "0x2", "eth0") + ArpLine("10.0.0.9", "0x6", "eth0") +
                           ArpLine("10.0.0.9", "0x6", "eth1"));
        memset(entries, '#', sizeof(entries));
    }

    static bool Is(const QV_PAL_ARPEntry& entry, const char* ip, const char* card)
    {
        QV_PAL_ARPEntry expected;
        memset(&expected, 0, sizeof(expected));
        strcpy(expected.ip, ip);
        strcpy(expected.dev, card);
        strcpy(expected.mac, "02:00:00:00:00:09");
        return memcmp(&entry, &expected, sizeof(entry)) == 0;
    }

    static QV_PAL_ARPEntry entries[4];
    int num = 4;
};

QV_PAL_ARPEntry GetStaticEntriesTest::entries[4];

/// The two lists; `ip` plays a part in the second alone.
struct ArpList {
    const char* operation;
    const char* failure;
    int (*list)(QV_PAL_NetControl* object, QV_PAL_ARPEntry* entries, int* num);
};

const ArpList kArpLists[] = {
    {"NetCtrl_arpGetAllStaticEntry", "get all ARP info failed",
     [](auto* object, auto* entries, int* num) {
         return NetCtrl_arpGetAllStaticEntry(object, entries, num);
     }},
    {"NetCtrl_arpGetStaticInfoByIp", "get ARP info by IP failed",
     [](auto* object, auto* entries, int* num) {
         return NetCtrl_arpGetStaticInfoByIp(object, "10.0.0.9", entries, num);
     }},
};

TEST_F(GetStaticEntriesTest, AllAreListed)
{
    EXPECT_EQ(control->getAllArpStaticEntry(control, entries, &num), 0);
    EXPECT_EQ(num, 3);
    EXPECT_TRUE(Is(entries[0], "10.0.0.8", "eth0"));
    EXPECT_TRUE(Is(entries[1], "10.0.0.9", "eth0"));
    EXPECT_TRUE(Is(entries[2], "10.0.0.9", "eth1"));
    EXPECT_TRUE(IsAll(entries[3], '#'));
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(OpenHandles(), Texts{});
}

TEST_F(GetStaticEntriesTest, ThoseOfOneAddressAreListed)
{
    EXPECT_EQ(control->getArpStaticInfoByIp(control, "10.0.0.9", entries, &num), 0);
    EXPECT_EQ(num, 2);
    EXPECT_TRUE(Is(entries[0], "10.0.0.9", "eth0"));
    EXPECT_TRUE(Is(entries[1], "10.0.0.9", "eth1"));
    EXPECT_TRUE(IsAll(entries[2], '#'));
    num = 4;
    EXPECT_EQ(control->getArpStaticInfoByIp(control, "10.0.0.7", entries, &num), 0);
    EXPECT_EQ(num, 0);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(GetStaticEntriesTest, AFullListEnds)
{
    for (const ArpList& row : kArpLists) {
        SCOPED_TRACE(row.operation);
        memset(entries, '#', sizeof(entries));
        num = 1;
        EXPECT_EQ(row.list(control, entries, &num), 0);
        EXPECT_EQ(num, 1);
        EXPECT_TRUE(IsAll(entries[1], '#'));
    }
}

TEST_F(GetStaticEntriesTest, NullAndAnEmptyListAreRefusedInSilence)
{
    for (const ArpList& row : kArpLists) {
        SCOPED_TRACE(row.operation);
        num = 4;
        EXPECT_EQ(row.list(nullptr, entries, &num), -1);
        EXPECT_EQ(row.list(control, nullptr, &num), -1);
        EXPECT_EQ(row.list(control, entries, nullptr), -1);
        for (const int count : {0, -1}) {
            num = count;
            EXPECT_EQ(row.list(control, entries, &num), -1);
            EXPECT_EQ(num, count);
        }
    }
    num = 4;
    EXPECT_EQ(control->getArpStaticInfoByIp(control, nullptr, entries, &num), -1);
    EXPECT_TRUE(IsAll(entries, '#'));
    EXPECT_EQ(TraceOf({"calloc", "fopen"}), Texts{});
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(GetStaticEntriesTest, WithoutMemoryTheTableIsNotAsked)
{
    for (const ArpList& row : kArpLists) {
        SCOPED_TRACE(row.operation);
        ClearLog();
        Fail("calloc", ENOMEM);
        EXPECT_EQ(row.list(control, entries, &num), -1);
        EXPECT_EQ(num, 4);
        EXPECT_EQ(Log(), LogLines{Error(row.operation, "malloc NetARPEntry failed")});
    }
    EXPECT_TRUE(IsAll(entries, '#'));
    EXPECT_EQ(TraceOf({"fopen"}), Texts{});
}

TEST_F(GetStaticEntriesTest, ATableThatCannotBeReadIsToldAndChangesNothing)
{
    Remove(kArpTable);
    FailAll("fopen /proc/net/arp", EACCES);
    FailAll("open /proc/net/arp", EACCES);
    for (const ArpList& row : kArpLists) {
        SCOPED_TRACE(row.operation);
        ClearLog();
        EXPECT_EQ(row.list(control, entries, &num), -1);
        EXPECT_EQ(Log().back(), Error(row.operation, row.failure));
        EXPECT_EQ(Log().size(), 2U);
    }
    EXPECT_TRUE(IsAll(entries, '#'));
}

TEST_F(GetStaticEntriesTest, EachFailureLeavesTheRecordsAsTheyWere)
{
    static const ArpList* row;
    static int result;
    for (const ArpList& candidate : kArpLists) {
        row = &candidate;
        FailEachCall(
            [] {
                memset(entries, '#', sizeof(entries));
                int count = 4;
                result = row->list(control, entries, &count);
            },
            [](const std::string&) {
                EXPECT_TRUE(result == 0 || (IsAll(entries, '#') && !Log().empty()));
            },
            {});
    }
}

}  // namespace
