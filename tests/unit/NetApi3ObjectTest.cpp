// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// How interface objects come about and are found again.

#include "NetApi3_0.h"

#include "fake/World.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

using namespace fake;

namespace {

class CreateNetInterfaceTest : public World {
protected:
    void SetUp() override
    {
        World::SetUp();
        kernel.Add("eth0");
        kernel.Add("eth1");
    }

    int Create(const char* name)
    {
        NetInterfaceDesc desc{};
        desc.name = name;
        return createNetInterface(&desc, &object);
    }

    static LogLine Invalid(const std::string& name)
    {
        return Error("createNetInterface", "invalid name: " + name + "\n");
    }

    /// What the registry does: its lock and its memory, behind the test of the name.
    static Texts RegistryCalls()
    {
        const Texts all = Trace();
        const auto listed = std::find_if(all.rbegin(), all.rend(), [](const std::string& call) {
            return call.rfind("mutex", 0) != 0 && call != "calloc";
        });
        return Texts(listed.base(), all.end());
    }

    static NetInterface* const kNone;
    NetInterface* object = kNone;
};

NetInterface* const CreateNetInterfaceTest::kNone = reinterpret_cast<NetInterface*>(0x10);

// ---- the object

TEST_F(CreateNetInterfaceTest, EachSlotHoldsItsOperationAndTheOthersNull)
{
    ASSERT_EQ(Create("eth0"), 0);
    NetInterface expected;
    memset(&expected, 0, sizeof(expected));
    expected.priv = object->priv;
    expected.addRef = API3_AddRef;
    expected.release = API3_DelRef;
    expected.up = API3_NetInterfaceUp;
    expected.down = API3_NetInterfaceDown;
    expected.setHostIP = API3_NetSetHostIP;
    expected.setGateway = API3_NetSetGateway;
    expected.getHostIP = API3_NetGetHostIP;
    expected.getGateway = API3_NetGetGateway;
    expected.getDataStat = API3_NetGetDataStat;
    expected.configBeenReset = API3_GetBeenReset;
    expected.getMAC = API3_GetMAC;
    expected.setMAC = API3_SetMAC;
    expected.getDNSAddress = API3_GetIPv4DNS;
    expected.setDNSAddress = API3_SetIPv4DNS;
    expected.miiDiag = API3_NetMiiDiag;
    expected.arpCheck = API3_ArpCheck;
    expected.getMTU = API3_NetGetMtu;
    expected.setMTU = API3_NetSetMtu;
    expected.getBondMembers = API3_GetBondMember;
    expected.bond = API3_Bond;
    expected.unbond = API3_UnBond;
    expected.addRoute = API3_AddIPv4Route;
    expected.delRoute = API3_DelIPv4Route;
    expected.setHostIpv6 = API3_NetSetIPv6Addr;
    expected.getHostIpv6 = API3_NetGetIPv6Addr;
    expected.setGatewayIpv6 = API3_NetSetIPv6Gateway;
    expected.getGatewayIpv6 = API3_NetGetIPv6Gateway;
    expected.setDNSAddressIpv6 = API3_SetIPv6DNS;
    expected.getDNSAddressIpv6 = API3_GetIPv6DNS;
    expected.getLinkLocalAddressIpv6 = API3_GetLinkLocalAddress;
    expected.ping = API3_Ping;
    expected.getSwitchPort = API3_GetSwitchPortByMAC;
    expected.getSwitchLinkMask = API3_GetSwitchMask;
    expected.setSTP = API3_setSTP;
    expected.addRouteIpv6 = API3_AddRouteIPv6;
    expected.delRouteIpv6 = API3_DelRouteIPv6;
    expected.getLinkSpeed = API3_NetGetLinkSpeed;
    expected.getSwitchPortNum = API3_GetSwitchPortNum;
    expected.getSwitchPortStatus = API3_GetSwitchStatus;
    expected.getBondMode = API3_GetBondMode;
    expected.getEthWorkMode = API3_GetEthWorkMode;
    expected.setBandWidth = API3_SetBandWidth;
    expected.getBandWidth = API3_GetBandWidth;
    expected.unsetBandWidth = API3_UnSetBandWidth;
    expected.ipPortCtrl = API3_IPPortControl;
    expected.setTelnet = API3_setTelnet;
    expected.ipToMac = API3_GetMacByIPWithARP;
    expected.getRealHostIP = API3_NetGetHostIP;
    expected.setMediumPrefer = API3_SetMediumPrefer;
    expected.delIPaddressIpv6 = API3_DelIPv6Address;
    expected.setSSH = API3_setSSH;
    expected.setBondParams = API3_setBondParams;
    expected.getBondParams = API3_getBondParams;
    expected.miiDiagEx = API3_miiDiagEx;
    expected.getSystemHostIpv6 = API3_NetGetSysIPv6Addr;
    void* const* slots = reinterpret_cast<void* const*>(object);
    void* const* wanted = reinterpret_cast<void* const*>(&expected);
    for (size_t i = 0; i < sizeof(expected) / sizeof(void*); ++i) {
        EXPECT_EQ(slots[i], wanted[i]) << "place " << i;
    }
    EXPECT_EQ(std::count(slots + 1, slots + 64, nullptr), 8);
}

TEST_F(CreateNetInterfaceTest, ThePrivatePartBeginsWithTheNameAndIsZeroBehindIt)
{
    kernel.Add("eth-long-name-5");
    ASSERT_EQ(Create("eth-long-name-5"), 0);
    const char* priv = static_cast<const char*>(object->priv);
    EXPECT_STREQ(priv, "eth-long-name-5");
    EXPECT_TRUE(std::all_of(priv + 16, priv + 24, [](char byte) { return byte == '\0'; }));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(CreateNetInterfaceTest, TheNameIsCopied)
{
    char name[] = "eth0";
    NetInterfaceDesc desc{};
    desc.name = name;
    ASSERT_EQ(createNetInterface(&desc, &object), 0);
    name[3] = '9';
    EXPECT_STREQ(static_cast<const char*>(object->priv), "eth0");
}

// ---- one object for one name

TEST_F(CreateNetInterfaceTest, AllCallersOfOneNameShareOneObject)
{
    ASSERT_EQ(Create("eth0"), 0);
    NetInterface* const first = object;
    NetInterface copy = *first;
    EXPECT_EQ(RegistryCalls(), (Texts{"mutex lock", "calloc", "calloc", "mutex unlock"}));
    ClearTrace();
    object = kNone;
    ASSERT_EQ(Create("eth0"), 0);
    EXPECT_EQ(object, first);
    EXPECT_EQ(memcmp(first, &copy, sizeof(copy)), 0);
    EXPECT_EQ(TraceOf({"calloc"}), Texts{});
    EXPECT_EQ(RegistryCalls(), (Texts{"mutex lock", "mutex unlock"}));
    EXPECT_EQ(HeldMutexes(), 0);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(CreateNetInterfaceTest, EachNameHasItsOwnObject)
{
    kernel.Add("eth10");
    ASSERT_EQ(Create("eth1"), 0);
    NetInterface* const first = object;
    ASSERT_EQ(Create("eth10"), 0);
    EXPECT_NE(object, first);
    ASSERT_EQ(Create("eth1:1"), 0);  // an alias is a name of its own
    EXPECT_NE(object, first);
    EXPECT_STREQ(static_cast<const char*>(object->priv), "eth1:1");
    ASSERT_EQ(Create("eth1"), 0);
    EXPECT_EQ(object, first);
}

TEST_F(CreateNetInterfaceTest, ANameThatIsTooLongIsNeverFoundAgain)
{
    constexpr char kAlias[] = "eth0:12345678901";
    ASSERT_EQ(Create(kAlias), 0);
    NetInterface* const first = object;
    EXPECT_STREQ(static_cast<const char*>(first->priv), "eth0:1234567890");
    ASSERT_EQ(Create(kAlias), 0);
    EXPECT_NE(object, first);
    EXPECT_EQ(findNode(kAlias, nullptr), -1);
}

TEST_F(CreateNetInterfaceTest, ReferencesAreNotCounted)
{
    ASSERT_EQ(Create("eth0"), 0);
    NetInterface* const first = object;
    for (int i = 0; i < 3; ++i) EXPECT_EQ(first->release(first), 1);
    EXPECT_EQ(first->addRef(first), 1);
    EXPECT_EQ(first->up(first), 0);
    ASSERT_EQ(Create("eth0"), 0);
    EXPECT_EQ(object, first);

    NetInterface nameless = *first;
    nameless.priv = nullptr;
    EXPECT_EQ(first->addRef(&nameless), -1);
    EXPECT_EQ(first->release(&nameless), 1);
}

TEST_F(CreateNetInterfaceTest, AnObjectOutlivesItsCardAndWorksAgainWhenItIsBack)
{
    ASSERT_EQ(Create("eth1"), 0);
    NetInterface* const card = object;
    kernel.cards.pop_back();
    EXPECT_EQ(card->up(card), -1);
    object = kNone;
    EXPECT_EQ(Create("eth1"), -1);
    EXPECT_EQ(object, kNone);
    EXPECT_EQ(LogOf("createNetInterface"), LogLines{Invalid("eth1")});

    kernel.Add("eth1");
    ASSERT_EQ(Create("eth1"), 0);
    EXPECT_EQ(object, card);
    EXPECT_EQ(card->up(card), 0);
}

// ---- what is refused

TEST_F(CreateNetInterfaceTest, NullIsRefusedInSilence)
{
    NetInterfaceDesc desc{};
    desc.name = "eth0";
    EXPECT_EQ(createNetInterface(nullptr, &object), -1);
    EXPECT_EQ(createNetInterface(&desc, nullptr), -1);
    EXPECT_EQ(object, kNone);
    EXPECT_EQ(Trace(), Texts{});
    EXPECT_EQ(Log(), LogLines{});
    EXPECT_EQ(findNode("eth0", nullptr), -1);
}

TEST_F(CreateNetInterfaceTest, AnUnknownNameIsRefusedBeforeTheRegistryIsAsked)
{
    EXPECT_EQ(Create("eth9"), -1);
    EXPECT_EQ(object, kNone);
    EXPECT_EQ(Log(), (LogLines{Info("FindWordInLine", "can not find eth9 in eth0,eth1,"),
                               Error("CheckEthExist", "can not find eth9 in eth0,eth1,."),
                               Invalid("eth9")}));
    EXPECT_EQ(TraceOf({"calloc"}), Texts{});
}

TEST_F(CreateNetInterfaceTest, AMissingNameIsRefusedAsSuch)
{
    EXPECT_EQ(Create(nullptr), -1);
    EXPECT_EQ(object, kNone);
    EXPECT_EQ(Log(), LogLines{Invalid("(null)")});
}

TEST_F(CreateNetInterfaceTest, TheThirtyThirdNameIsRefusedAndTheOthersStay)
{
    NetInterface* objects[32];
    for (int i = 0; i < 32; ++i) {
        const std::string name = "eth" + std::to_string(i);
        if (kernel.Find(name) == nullptr) kernel.Add(name);
        ASSERT_EQ(Create(name.c_str()), 0);
        objects[i] = object;
        EXPECT_EQ(findNode(name.c_str(), nullptr), i);
    }
    kernel.cards.clear();
    kernel.Add("eth32");
    object = kNone;
    for (int i = 0; i < 2; ++i) {
        ClearLog();
        ClearTrace();
        EXPECT_EQ(Create("eth32"), -1);
        EXPECT_EQ(object, kNone);
        EXPECT_EQ(RegistryCalls(), (Texts{"mutex lock", "calloc", "calloc", "mutex unlock"}));
        EXPECT_EQ(Log(),
                  (LogLines{Error("insertNode", "static ifNodeArray is full, support 32 items!"),
                            Error("createNetInterface", "createNetInterface for eth32 failed!")}));
        EXPECT_EQ(findNode("eth32", nullptr), -1);
    }
    kernel.Add("eth31");
    ASSERT_EQ(Create("eth31"), 0);
    EXPECT_EQ(object, objects[31]);
}

/// What was allocated goes under the registry's lock, and the last line comes behind it.
TEST_F(CreateNetInterfaceTest, AnObjectThatFindsNoPlaceIsFreedThenUnlockedThenTold)
{
    for (int i = 0; i < 32; ++i) {
        ASSERT_EQ(insertNode(("eth" + std::to_string(100 + i)).c_str(), kNone), i);
    }
    size_t blocks = 99;
    size_t lines = 99;
    OnCall("calloc", [&] {
        OnCall("mutex unlock", [&] {
            blocks = HeapBlocks();
            lines = Log().size();
        });
    });
    EXPECT_EQ(Create("eth0"), -1);
    EXPECT_EQ(blocks, 0U);
    EXPECT_EQ(lines, 1U);  // the registry's own
    EXPECT_EQ(Log().size(), 2U);
}

TEST_F(CreateNetInterfaceTest, WithoutMemoryNothingIsLeftBehind)
{
    const char* const messages[] = {"malloc NetInterface error", "malloc NetIfPri error"};
    for (int i = 0; i < 2; ++i) {
        ClearLog();
        ClearTrace();
        Fail("calloc", ENOMEM, i + 1);
        EXPECT_EQ(Create("eth0"), -1);
        EXPECT_EQ(object, kNone);
        EXPECT_EQ(HeldMutexes(), 0);
        EXPECT_EQ(findNode("eth0", nullptr), -1);
        EXPECT_EQ(Log(), LogLines{Error("createNetInterface", messages[i])});
    }
    ClearLog();
    EXPECT_EQ(Create("eth0"), 0);
    EXPECT_EQ(findNode("eth0", nullptr), 0);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(CreateNetInterfaceTest, EachFailureLeavesAWholeObjectOrNone)
{
    static int result;
    static NetInterface* made;
    FailEachCall(
        [] {
            made = nullptr;
            NetInterfaceDesc desc{};
            desc.name = "eth1";
            result = createNetInterface(&desc, &made);
        },
        [](const std::string&) {
            NetInterface* found = nullptr;
            EXPECT_EQ(findNode("eth1", &found), result);
            EXPECT_EQ(found, made);
            EXPECT_EQ(result == 0, made != nullptr);
            EXPECT_TRUE(result == 0 || LogOf("createNetInterface").size() == 1);
        });
}

// ---- the registry

class RegistryTest : public World {};

TEST_F(RegistryTest, FindsWhatWasEnteredInOrder)
{
    NetInterface first{};
    NetInterface second{};
    EXPECT_EQ(insertNode("eth0", &first), 0);
    EXPECT_EQ(insertNode("a-long-name-015", &second), 1);
    NetInterface* found = nullptr;
    EXPECT_EQ(findNode("a-long-name-015", &found), 1);
    EXPECT_EQ(found, &second);
    EXPECT_EQ(findNode("eth0", &found), 0);
    EXPECT_EQ(found, &first);
    EXPECT_EQ(findNode("eth0", nullptr), 0);
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(RegistryTest, TakesWholeNamesOnly)
{
    NetInterface object{};
    EXPECT_EQ(insertNode("eth1", &object), 0);
    NetInterface* found = &object;
    for (const char* other : {"eth", "eth10", "ETH1", ""}) EXPECT_EQ(findNode(other, &found), -1);
    EXPECT_EQ(found, &object);
}

TEST_F(RegistryTest, CutsALongNameToFifteenCharacters)
{
    NetInterface object{};
    EXPECT_EQ(insertNode("0123456789abcdefg", &object), 0);
    EXPECT_EQ(findNode("0123456789abcde", nullptr), 0);
    EXPECT_EQ(findNode("0123456789abcdef", nullptr), -1);
}

TEST_F(RegistryTest, RefusesNullInSilence)
{
    NetInterface object{};
    NetInterface* found = nullptr;
    EXPECT_EQ(insertNode(nullptr, &object), -1);
    EXPECT_EQ(insertNode("eth0", nullptr), -1);
    EXPECT_EQ(findNode(nullptr, &found), -1);
    EXPECT_EQ(findNode("eth0", &found), -1);
    EXPECT_EQ(insertNode("eth0", &object), 0);
    EXPECT_EQ(findNode(nullptr, &found), -1);
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(Log(), LogLines{});
}

// ---- records with bit-fields, whose places no offset can tell

/// The place of the one byte that is not zero.
template <class Record>
int ChangedByte(const Record& record)
{
    const auto* bytes = reinterpret_cast<const unsigned char*>(&record);
    int place = -1;
    for (size_t i = 0; i < sizeof(Record); ++i) {
        if (bytes[i] == 0) continue;
        EXPECT_EQ(place, -1) << "another one at " << i;
        place = static_cast<int>(i);
    }
    return place;
}

template <class Record, class Set>
int PlaceOf(Set set)
{
    Record record;
    memset(&record, 0, sizeof(record));
    set(&record);
    return ChangedByte(record);
}

TEST(PublicRecords, BitFieldsLieWhereApplicationsPutThem)
{
    EXPECT_EQ(PlaceOf<TelnetInfo>([](auto* r) { r->enable = 1; }), 0);
    EXPECT_EQ(PlaceOf<WLanConfig>([](auto* r) { r->enable = 1; }), 0);
    EXPECT_EQ(PlaceOf<WLanConfig>([](auto* r) { r->linkMode = -1; }), 1);
    EXPECT_EQ(PlaceOf<WLanConfig>([](auto* r) { r->encryption = wlanEncryptionAES; }), 2);
    EXPECT_EQ(PlaceOf<WLanConfig>([](auto* r) { r->ssid[0] = 1; }), 3);
    EXPECT_EQ(PlaceOf<WLanConfig>([](auto* r) { r->keyType = -1; }), 39);
    EXPECT_EQ(PlaceOf<WLanConfig>([](auto* r) { r->keyID = -1; }), 40);
    EXPECT_EQ(PlaceOf<WLanConfig>([](auto* r) { r->keyFlag = -1; }), 41);
    EXPECT_EQ(PlaceOf<WLanConfig>([](auto* r) { r->keys[0] = 1; }), 42);
    EXPECT_EQ(PlaceOf<WLanAccessPoint>([](auto* r) { r->linkMode = -1; }), 36);
    EXPECT_EQ(PlaceOf<WLanAccessPoint>([](auto* r) { r->encryption = wlanEncryptionOn; }), 37);
    TelnetInfo info{};
    info.enable = 1;
    EXPECT_EQ(*reinterpret_cast<unsigned char*>(&info), 1);
    SSHInfo ssh{};
    ssh.enable = 1;
    EXPECT_EQ(*reinterpret_cast<unsigned char*>(&ssh), 1);
    EXPECT_EQ(PlaceOf<SSHInfo>([](auto* r) { r->enable = 1; }), 0);
    EXPECT_EQ(PlaceOf<SSHInfo>([](auto* r) { r->rsd = 1; }), 0);
}

}  // namespace
