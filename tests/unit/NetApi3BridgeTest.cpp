// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Bridge objects: the bridge that comes and goes with them, and its ports.

#include "NetApi3_0.h"

#include "BridgeWorld.h"

#include <algorithm>
#include <cstring>
#include <functional>

using namespace fake;

namespace {

constexpr char kTold[] = "createNetBridge";

const Lines kBuilding = {"brctl addbr br0",
                         "brctl addif br0 eth1",
                         "ifconfig br0 hw ether 02:00:00:00:00:11",
                         "brctl addif br0 eth0",
                         "ifconfig eth1 down",
                         "ifconfig eth0 down",
                         "ifconfig eth1 0.0.0.0 up",
                         "ifconfig eth0 0.0.0.0 up",
                         "ifconfig br0 up"};
const Lines kEnding = {"ifconfig br0 down", "brctl delif br0 eth1", "brctl stp br0 off",
                       "brctl delbr br0"};

NetBridge* const kNone = reinterpret_cast<NetBridge*>(0x10);

class BridgeObjectTest : public BridgeWorld {
protected:
    void SetUp() override
    {
        BridgeWorld::SetUp();
        Put(kTreeFile, "");
    }

    int Create(const char* name, const char** ports, int count)
    {
        NetBrDesc desc{};
        desc.name = name;
        desc.subDev = ports;
        desc.num = count;
        bridge = kNone;
        return createNetBridge(&desc, &bridge);
    }

    /// An object of a bridge that exists already, with eth1 as its port.
    void CreateOfExisting()
    {
        Run();
        ASSERT_EQ(Create(kBridge, cards.Const(), cards.Count()), 0);
        Begin();
    }

    static LogLine CreatesNow(const std::string& name)
    {
        return Info(kTold, "bridge " + name + " is not created, now create it");
    }

    static LogLine Invalid(const char* operation) { return Error(operation, "invalid param"); }

    NetBridge* bridge = kNone;
};

/// Frees an object without touching its bridge, as no caller can: for tests that end before.
void Forget(NetBridge* bridge)
{
    free(bridge->priv);
    free(bridge);
}

// ---- creation

class CreateNetBridgeTest : public BridgeObjectTest {};

TEST_F(CreateNetBridgeTest, BuildsAMissingBridgeAndSavesNameAndPorts)
{
    ASSERT_EQ(Create(kBridge, cards.Const(), cards.Count()), 0);
    EXPECT_EQ(Commands(), kBuilding);
    EXPECT_EQ(Get(kTreeFile), "BRIDGES = 0\nSSIF = eth1,eth0\n");
    EXPECT_EQ(Get(kBridgeFile), Settings(kOwnSettings) + "BRIDGEMEMBERS = eth1,eth0\n");
    EXPECT_EQ(Changes().back(), kWritesTree);
    const LogLines log = Log();
    ASSERT_EQ(log.size(), 2 + kBuilding.size());
    EXPECT_EQ(log[0], NoBridge(kBridge));
    EXPECT_EQ(log[1], CreatesNow(kBridge));
    EXPECT_EQ(LogOf("Bridge_Bridge").size(), kBuilding.size());
    Forget(bridge);
}

TEST_F(CreateNetBridgeTest, TakesAnExistingBridgeAsItIsAndSavesTheListAllTheSame)
{
    Run();
    const std::string settings = Get(kBridgeFile);
    ASSERT_EQ(Create(kBridge, cards.Const(), cards.Count()), 0);
    EXPECT_EQ(Commands(), Lines{});
    EXPECT_EQ(Get(kTreeFile), "BRIDGES = 0\nSSIF = eth1,eth0\n");
    EXPECT_EQ(Get(kBridgeFile), settings);
    EXPECT_EQ(Changes(), (Lines{kWritesTree, kWritesTree}));
    EXPECT_EQ(Log(), LogLines{});
    Forget(bridge);
}

TEST_F(CreateNetBridgeTest, AnExistingBridgeNeedsNoList)
{
    Run();
    ASSERT_EQ(Create(kBridge, nullptr, 2), 0);
    EXPECT_EQ(Get(kTreeFile), "BRIDGES = 0\n");
    EXPECT_EQ(Log().back(), Warn(kTold, "save SSIF config failed"));
    Forget(bridge);
}

TEST_F(CreateNetBridgeTest, EachSlotHoldsItsOperationAndTheOthersNull)
{
    CreateOfExisting();
    NetBridge expected;
    memset(&expected, 0, sizeof(expected));
    expected.priv = bridge->priv;
    expected.addRef = BrAddRef;
    expected.release = BrDelRef;
    expected.getBridgeDevicesInfo = BrGetBridgeDevicesInfo;
    expected.isEdgePort = BrIsEdgePort;
    expected.edgePortCtrl = BrEdgePortCtrl;
    expected.getInfo = BrGetInfo;
    expected.bridgeCtrl = BridgeCtrl;
    expected.getBridgeDevices = BrGetBridgeDevices;
    void* const* slots = reinterpret_cast<void* const*>(bridge);
    void* const* wanted = reinterpret_cast<void* const*>(&expected);
    for (size_t i = 0; i < sizeof(expected) / sizeof(void*); ++i) {
        EXPECT_EQ(slots[i], wanted[i]) << "place " << i;
    }
    char priv[40] = "br0";
    priv[32] = 1;  // the count
    EXPECT_EQ(memcmp(bridge->priv, priv, sizeof(priv)), 0);
    Forget(bridge);
}

TEST_F(CreateNetBridgeTest, TheObjectKeepsThirtyOneCharactersOfItsName)
{
    const std::string name = "br0-that-has-a-name-of-forty-characters";
    Make(name);
    ASSERT_EQ(Create(name.c_str(), cards.Const(), cards.Count()), 0);
    EXPECT_STREQ(static_cast<const char*>(bridge->priv), name.substr(0, 31).c_str());
    Forget(bridge);
}

TEST_F(CreateNetBridgeTest, WhatCannotBeSavedIsToldAndUndoesNothing)
{
    Run();
    FailAll(kWritesTree, EROFS);
    ASSERT_EQ(Create(kBridge, cards.Const(), cards.Count()), 0);
    EXPECT_EQ(LogOf(kTold), (LogLines{Warn(kTold, "save BRIDGES config failed"),
                                      Warn(kTold, "save SSIF config failed")}));
    EXPECT_EQ(bridge->addRef(bridge), 0);
    Forget(bridge);
}

TEST_F(CreateNetBridgeTest, AnEmptyListIsNotSaved)
{
    Run();
    ASSERT_EQ(Create(kBridge, cards.Const(), 0), 0);
    EXPECT_EQ(Log(), LogLines{Warn(kTold, "save SSIF config failed")});
    EXPECT_EQ(Get(kTreeFile), "BRIDGES = 0\n");
    Forget(bridge);
}

TEST_F(CreateNetBridgeTest, ABridgeWithoutPortsIsBuiltAndItsListNotSaved)
{
    ASSERT_EQ(Create(kBridge, cards.Const(), 0), 0);
    EXPECT_EQ(Commands(), (Lines{"brctl addbr br0", "ifconfig br0 up"}));
    EXPECT_EQ(LogOf(kTold),
              (LogLines{CreatesNow(kBridge), Warn(kTold, "save SSIF config failed")}));
    EXPECT_EQ(Get(kTreeFile), "BRIDGES = 0\n");
    EXPECT_NE(Get(kBridgeFile).find("BRIDGEMEMBERS = \n"), std::string::npos);
    Forget(bridge);
}

TEST_F(CreateNetBridgeTest, ABadNameIsToldFromTopToBottom)
{
    EXPECT_EQ(Create("bra", cards.Const(), cards.Count()), -1);
    EXPECT_EQ(bridge, kNone);
    EXPECT_EQ(Log(), (LogLines{NoBridge("bra"), CreatesNow("bra"),
                               Error("Bridge", "Bridge name error.[bra]"),
                               Error(kTold, "create Bridge fail!")}));
    EXPECT_EQ(Get(kTreeFile), "");
    ExpectUntouched();
}

TEST_F(CreateNetBridgeTest, AMissingNameIsToldAsSuch)
{
    EXPECT_EQ(Create(nullptr, cards.Const(), cards.Count()), -1);
    EXPECT_EQ(bridge, kNone);
    EXPECT_EQ(Log(), (LogLines{CreatesNow("(null)"), Error(kTold, "create Bridge fail!")}));
    ExpectUntouched();
}

TEST_F(CreateNetBridgeTest, AMissingListIsRefusedForAMissingBridge)
{
    EXPECT_EQ(Create(kBridge, nullptr, 2), -1);
    EXPECT_EQ(Log(), (LogLines{NoBridge(kBridge), CreatesNow(kBridge),
                               Error(kTold, "create Bridge fail!")}));
    ExpectUntouched();
}

TEST_F(CreateNetBridgeTest, NullIsToldInTheLog)
{
    NetBrDesc desc{};
    desc.name = kBridge;
    EXPECT_EQ(createNetBridge(nullptr, &bridge), -1);
    EXPECT_EQ(createNetBridge(&desc, nullptr), -1);
    EXPECT_EQ(bridge, kNone);
    const LogLine said = Error(kTold, "invalid param!");
    EXPECT_EQ(Log(), (LogLines{said, said}));
    EXPECT_EQ(TraceOf({"calloc", "stat"}), Lines{});
}

TEST_F(CreateNetBridgeTest, WithoutMemoryNoBridgeIsTouched)
{
    const char* const messages[] = {"malloc NetBridge failed!", "malloc NetBrPriv failed!"};
    for (int i = 0; i < 2; ++i) {
        ClearLog();
        Fail("calloc", ENOMEM, i + 1);
        EXPECT_EQ(Create(kBridge, cards.Const(), cards.Count()), -1);
        EXPECT_EQ(bridge, kNone);
        EXPECT_EQ(Log(), LogLines{Error(kTold, messages[i])});
    }
    EXPECT_EQ(TraceOf({"stat"}), Lines{});
    ExpectUntouched();
}

TEST_F(CreateNetBridgeTest, EachFailureLeavesAWholeObjectOrNone)
{
    static int result;
    static NetBridge* made;
    Run();
    FailEachCall(
        [] {
            static const char* ports[] = {"eth1"};
            NetBrDesc desc{};
            desc.name = kBridge;
            desc.subDev = ports;
            desc.num = 1;
            made = kNone;
            result = createNetBridge(&desc, &made);
        },
        [](const std::string&) {
            EXPECT_EQ(result == 0, made != kNone);
            EXPECT_TRUE(result == 0 || !LogOf(kTold).empty());
            if (result != 0) return;
            EXPECT_EQ(made->addRef(made), 0);
            Forget(made);
        },
        kMayStayOpen);
}

// ---- references

class BridgeReferenceTest : public BridgeObjectTest {};

TEST_F(BridgeReferenceTest, TheLastReleaseEndsTheBridge)
{
    CreateOfExisting();
    EXPECT_EQ(bridge->addRef(bridge), 0);
    EXPECT_EQ(bridge->addRef(bridge), 0);
    EXPECT_EQ(bridge->release(bridge), 2);
    EXPECT_EQ(bridge->release(bridge), 1);
    EXPECT_EQ(Commands(), Lines{});
    EXPECT_EQ(bridge->release(bridge), 0);
    EXPECT_EQ(Commands(), kEnding);
    EXPECT_NE(Get(kBridgeFile).find("BRIDGEMEMBERS = \n"), std::string::npos);
    EXPECT_NE(Get(kFile1).find("BRIDGEEDED = 0\n"), std::string::npos);
}

TEST_F(BridgeReferenceTest, AnObjectGoesAlsoWhenItsBridgeStays)
{
    const size_t blocks = HeapBlocks();
    CreateOfExisting();
    FailAll("vfork", EAGAIN);
    EXPECT_EQ(HeapBlocks(), 2U);
    EXPECT_EQ(bridge->release(bridge), 0);
    EXPECT_EQ(HeapBlocks(), 0U);
    EXPECT_EQ(Log().back(), Error("UnBridge", "UnBridge failed.[br0]"));
    EXPECT_EQ(HeapBlocks(), blocks);
}

TEST_F(BridgeReferenceTest, TheLastReleaseOfOneObjectEndsTheBridgeUnderAnother)
{
    CreateOfExisting();
    NetBridge* const first = bridge;
    ASSERT_EQ(Create(kBridge, cards.Const(), cards.Count()), 0);
    NetBridge* const second = bridge;
    EXPECT_NE(first, second);
    EXPECT_EQ(first->addRef(first), 0);
    EXPECT_EQ(second->release(second), 0);
    EXPECT_EQ(Commands(), kEnding);

    ClearLog();
    STPInfo info{};
    EXPECT_EQ(first->getInfo(first, &info), -1);
    EXPECT_EQ(Log(),
              (LogLines{NoBridge(kBridge), Error("BrGetInfo", "Get Bridge StpInfo failed")}));
    EXPECT_EQ(first->release(first), 1);
    EXPECT_EQ(first->release(first), 0);
}

TEST_F(BridgeReferenceTest, AReleasedObjectIsLeftAlone)
{
    NetBridge released{};
    char priv[40] = "br0";
    released.priv = priv;
    Run();
    EXPECT_EQ(BrDelRef(&released), 0);
    EXPECT_EQ(Log(), LogLines{Warn("BrDelRef", "NetBridge has been released")});
    ExpectUntouched();
}

TEST_F(BridgeReferenceTest, ACountIsAnUnsignedNumber)
{
    CreateOfExisting();
    auto* const count = reinterpret_cast<uint32_t*>(static_cast<char*>(bridge->priv) + 32);
    *count = 0x80000001U;
    EXPECT_EQ(bridge->release(bridge), INT32_MIN);
    EXPECT_EQ(bridge->addRef(bridge), 0);
    EXPECT_EQ(*count, 0x80000001U);
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(Commands(), Lines{});
    Forget(bridge);
}

TEST_F(BridgeReferenceTest, NullIsToldInTheLog)
{
    NetBridge bare{};
    for (NetBridge* object : {static_cast<NetBridge*>(nullptr), &bare}) {
        ClearLog();
        EXPECT_EQ(BrAddRef(object), -1);
        EXPECT_EQ(BrDelRef(object), -1);
        EXPECT_EQ(Log(), (LogLines{Error("BrAddRef", "invalid param."),
                                   Error("BrDelRef", "invalid param.")}));
    }
    ExpectUntouched();
}

TEST_F(BridgeReferenceTest, EachFailureOfTheLastReleaseIsOnlyLogged)
{
    CreateOfExisting();
    Remove(PortsOf(kBridge) + "eth1");  // what becomes of cards is told where bridges are ended
    static NetBridge* object;
    static int result;
    object = bridge;
    FailEachCall([] { result = object->release(object); },
                 [](const std::string&) { EXPECT_EQ(result, 0); }, kMayStayOpen);
    Forget(bridge);
}

// ---- an object of br0, whose port is eth1

class BridgeSlotTest : public BridgeObjectTest {
protected:
    void SetUp() override
    {
        BridgeObjectTest::SetUp();
        CreateOfExisting();
    }

    void TearDown() override
    {
        Forget(bridge);
        BridgeObjectTest::TearDown();
    }

    static LogLines Unreadable(const char* operation)
    {
        return {Error("Bridge_GetBridgeMembers", "Open " + PortsOf(kBridge) + " failed\n"),
                Error(operation, "get br0 bridge member failed.")};
    }
};

TEST_F(BridgeSlotTest, NullIsToldInTheLog)
{
    unsigned mask = 0;
    STPInfo info{};
    QV_PAL_NetBrDevice port{};
    int num = 1;
    NetBridge bare = *bridge;
    bare.priv = nullptr;
    const struct {
        const char* operation;
        std::function<int(NetBridge*)> call;
        std::function<int()> callWithNull;
    } rows[] = {
        {"BrGetBridgeDevicesInfo",
         [&](auto* object) { return bridge->getBridgeDevicesInfo(object, &mask); },
         [&] { return bridge->getBridgeDevicesInfo(bridge, nullptr); }},
        {"BrIsEdgePort", [&](auto* object) { return bridge->isEdgePort(object, "eth1"); },
         [&] { return bridge->isEdgePort(bridge, nullptr); }},
        {"BrEdgePortCtrl", [&](auto* object) { return bridge->edgePortCtrl(object, "eth1", 0); },
         [&] { return bridge->edgePortCtrl(bridge, nullptr, 0); }},
        {"BrGetInfo", [&](auto* object) { return bridge->getInfo(object, &info); },
         [&] { return bridge->getInfo(bridge, nullptr); }},
        {"BridgeCtrl", [&](auto* object) { return bridge->bridgeCtrl(object, &info); },
         [&] { return bridge->bridgeCtrl(bridge, nullptr); }},
        {"BrGetBridgeDevices",
         [&](auto* object) { return bridge->getBridgeDevices(object, &port, &num); },
         [&] { return bridge->getBridgeDevices(bridge, &port, nullptr); }},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.operation);
        ClearLog();
        EXPECT_EQ(row.call(nullptr), -1);
        EXPECT_EQ(row.call(&bare), -1);
        EXPECT_EQ(row.callWithNull(), -1);
        const LogLine said = Invalid(row.operation);
        EXPECT_EQ(Log(), (LogLines{said, said, said}));
    }
    ExpectUntouched();
}

// ---- ports

class GetBridgeDevicesTest : public BridgeSlotTest {};

TEST_F(GetBridgeDevicesTest, EachPortIsNamedAndTheRestOfItsRecordZeroed)
{
    Put(PortsOf(kBridge) + "eth-long-name-5", "");
    QV_PAL_NetBrDevice ports[3];
    memset(ports, '#', sizeof(ports));
    int num = 3;
    EXPECT_EQ(bridge->getBridgeDevices(bridge, ports, &num), 0);
    ASSERT_EQ(num, 2);
    Lines names = {ports[0].name, ports[1].name};
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (Lines{"eth-long-name-5", "eth1"}));
    for (int i = 0; i < 2; ++i) {
        char* const begin = ports[i].name + strlen(ports[i].name);
        EXPECT_TRUE(std::all_of(begin, ports[i].name + 128, [](char c) { return c == '\0'; }));
    }
    EXPECT_EQ(std::string(ports[2].name, 128), std::string(128, '#'));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(GetBridgeDevicesTest, ThirtyTwoPortsAreTold)
{
    for (int i = 10; i < 49; ++i) Put(PortsOf(kBridge) + "eth" + std::to_string(i), "");
    static QV_PAL_NetBrDevice ports[100];
    memset(ports, '#', sizeof(ports));
    int num = 100;
    EXPECT_EQ(bridge->getBridgeDevices(bridge, ports, &num), 0);
    EXPECT_EQ(num, 32);
    for (int i = 0; i < 32; ++i) EXPECT_EQ(std::string(ports[i].name, 3), "eth") << i;
    EXPECT_EQ(ports[32].name[0], '#');
}

TEST_F(GetBridgeDevicesTest, AListThatIsTooShortIsFilled)
{
    Put(PortsOf(kBridge) + "eth0", "");
    QV_PAL_NetBrDevice ports[2];
    memset(ports, '#', sizeof(ports));
    int num = 1;
    EXPECT_EQ(bridge->getBridgeDevices(bridge, ports, &num), 0);
    EXPECT_EQ(num, 1);
    EXPECT_EQ(ports[1].name[0], '#');
}

TEST_F(GetBridgeDevicesTest, AnEmptyListIsRefusedByName)
{
    QV_PAL_NetBrDevice port{};
    for (const int count : {0, -1}) {
        ClearLog();
        int num = count;
        EXPECT_EQ(bridge->getBridgeDevices(bridge, &port, &num), -1);
        EXPECT_EQ(num, count);
        EXPECT_EQ(Log(), LogLines{Invalid("BrGetBridgeDevices")});
    }
}

TEST_F(GetBridgeDevicesTest, AMissingPlaceIsRefusedInSilenceWhenItIsNeeded)
{
    int num = 4;
    EXPECT_EQ(bridge->getBridgeDevices(bridge, nullptr, &num), -1);
    Remove(PortsOf(kBridge) + "eth1");
    num = 4;
    EXPECT_EQ(bridge->getBridgeDevices(bridge, nullptr, &num), 0);
    EXPECT_EQ(num, 0);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(GetBridgeDevicesTest, ABridgeThatIsGoneIsTold)
{
    Remove(PortsOf(kBridge));
    QV_PAL_NetBrDevice port;
    memset(&port, '#', sizeof(port));
    int num = 1;
    EXPECT_EQ(bridge->getBridgeDevices(bridge, &port, &num), -1);
    EXPECT_EQ(port.name[0], '#');
    EXPECT_EQ(Log(), Unreadable("BrGetBridgeDevices"));
    num = 100;
    EXPECT_EQ(bridge->getBridgeDevices(bridge, &port, &num), -1);
    EXPECT_EQ(num, 32);
}

class GetBridgeDevicesInfoTest : public BridgeSlotTest {};

TEST_F(GetBridgeDevicesInfoTest, EachCardIsABitByOneDigit)
{
    for (const char* port : {"eth0", "eth9", "eth12"}) Put(PortsOf(kBridge) + port, "");
    unsigned mask = 0;
    EXPECT_EQ(bridge->getBridgeDevicesInfo(bridge, &mask), 0);
    EXPECT_EQ(mask, 0x203U);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(GetBridgeDevicesInfoTest, APortThatIsNoCardIsTold)
{
    Put(PortsOf(kBridge) + "wlan0", "");
    unsigned mask = 0;
    EXPECT_EQ(bridge->getBridgeDevicesInfo(bridge, &mask), 0);
    EXPECT_EQ(mask, 2U);
    EXPECT_EQ(Log(),
              LogLines{Warn("BrGetBridgeDevicesInfo", "wlan0 is in Bridge.can not handle.")});
}

TEST_F(GetBridgeDevicesInfoTest, ThirtyTwoPortsAreRead)
{
    for (int i = 0; i < 40; ++i) Put(PortsOf(kBridge) + "vnic" + std::to_string(i), "");
    Remove(PortsOf(kBridge) + "eth1");
    unsigned mask = 7;
    EXPECT_EQ(bridge->getBridgeDevicesInfo(bridge, &mask), 0);
    EXPECT_EQ(mask, 0U);
    EXPECT_EQ(Log().size(), 32U);
}

TEST_F(GetBridgeDevicesInfoTest, AnEmptyBridgeIsNoFailure)
{
    Remove(PortsOf(kBridge) + "eth1");
    unsigned mask = 7;
    EXPECT_EQ(bridge->getBridgeDevicesInfo(bridge, &mask), 0);
    EXPECT_EQ(mask, 0U);
}

TEST_F(GetBridgeDevicesInfoTest, ABridgeThatIsGoneIsTold)
{
    Remove(PortsOf(kBridge));
    unsigned mask = 7;
    EXPECT_EQ(bridge->getBridgeDevicesInfo(bridge, &mask), -1);
    EXPECT_EQ(mask, 7U);
    EXPECT_EQ(Log(), Unreadable("BrGetBridgeDevicesInfo"));
}

// ---- edge ports

class EdgePortSlotTest : public BridgeSlotTest {};

TEST_F(EdgePortSlotTest, AMarkIsSetToldAndTakenAway)
{
    EXPECT_EQ(bridge->isEdgePort(bridge, "eth1"), -1);
    EXPECT_EQ(bridge->edgePortCtrl(bridge, "eth1", 0), 0);
    EXPECT_EQ(bridge->isEdgePort(bridge, "eth1"), 0);
    EXPECT_EQ(bridge->edgePortCtrl(bridge, "eth1", 1), 0);
    EXPECT_EQ(bridge->isEdgePort(bridge, "eth1"), -1);
    EXPECT_EQ(Commands(),
              (Lines{"rstpctl setportedge br0 eth1 yes", "rstpctl setportedge br0 eth1 no"}));
}

TEST_F(EdgePortSlotTest, ARefusalIsHandedOn)
{
    EXPECT_EQ(bridge->edgePortCtrl(bridge, "eth5", 0), -1);
    EXPECT_EQ(bridge->edgePortCtrl(bridge, "eth5", 1), -1);
    EXPECT_EQ(Log(), (LogLines{Error("BridgeAddEdgePort", "eth5 is not a membe of br0."),
                               Error("BridgeDelEdgePort", "eth5 is not a membe of br0.")}));
}

TEST_F(EdgePortSlotTest, AnotherWishIsRefusedByName)
{
    for (const int ctrl : {2, -1}) {
        ClearLog();
        EXPECT_EQ(bridge->edgePortCtrl(bridge, "eth1", ctrl), -1);
        EXPECT_EQ(Log(), LogLines{Error("BrEdgePortCtrl", "invalid option for Edge Port Ctrl")});
    }
    ExpectUntouched();
}

// ---- spanning tree

class BridgeTreeSlotTest : public BridgeSlotTest {};

TEST_F(BridgeTreeSlotTest, ATreeThatIsOnIsToldAsOffWithItsSavedMode)
{
    STPInfo info{};
    info.enable = 1;
    info.mode = 1;
    EXPECT_EQ(bridge->bridgeCtrl(bridge, &info), 0);
    EXPECT_EQ(Commands().back(), "bridge start");

    memset(&info, '#', sizeof(info));
    EXPECT_EQ(bridge->getInfo(bridge, &info), 0);
    EXPECT_EQ(info.enable, 0);
    EXPECT_EQ(info.mode, 1);
    EXPECT_EQ(std::string(info.reserved, sizeof(info.reserved)),
              std::string(sizeof(info.reserved), '#'));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(BridgeTreeSlotTest, ARefusedControlIsHandedOn)
{
    STPInfo info{};
    info.mode = 2;
    EXPECT_EQ(bridge->bridgeCtrl(bridge, &info), -1);
    EXPECT_EQ(Log().back(), Error("BridgeControl", "br0 Bridge_BridgeCtrl error."));
}

TEST_F(BridgeTreeSlotTest, AModeThatIsNotSavedIsToldAndChangesNothing)
{
    STPInfo info{};
    info.enable = 1;
    EXPECT_EQ(bridge->getInfo(bridge, &info), -1);
    EXPECT_EQ(info.enable, 1);
    EXPECT_EQ(Log(), (LogLines{Error("GetBridgeStpModeByConfig", "get stp_state faild."),
                               Error("BrGetInfo", "Get Bridge StpInfo failed")}));
}

}  // namespace
