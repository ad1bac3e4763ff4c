// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Both generations: what stands behind the pointers to results after a failure. Each row names an
// operation, what makes it fail, and what it leaves there; all that a row does not name must be as
// it was, byte for byte.

#include "NetApi2_0.h"
#include "NetApi3_0.h"

#include "InterfaceWorld.h"

#include <cerrno>
#include <cstring>
#include <functional>
#include <ostream>

using namespace fake;

namespace {

constexpr char kSlaves[] = "/sys/class/net/bond0/bonding/slaves";
constexpr char kBondFile[] = "/mnt/mtd/Config/networkbond0";
constexpr char kFile60[] = "/mnt/mtd/Config/networkip6";
constexpr char kResolvers[] = "/mnt/mtd/Config/resolv.conf";
constexpr char kResolvers6[] = "/mnt/mtd/Config/resolvip6.conf";
constexpr int kRecords = 4;

/// Where results go.
struct Places {
    char text[64];
    char other[64];
    int32_t number;
    int32_t count;  // capacity of what follows
    unsigned char bytes[kRecords];
    uint32_t masks[kRecords];
    char names[kRecords][16];
    char* pointers[kRecords];
    NetDataStat stat;
    NetStats stats;
    NetCaps caps;
    PING_S ping;
    NetDevice devices[kRecords];
    NetInterfaceInfo interfaces[kRecords];
    NetRouteTableInfo routes[kRecords];
    QV_PAL_RouteTableInfo routes3[kRecords];
    NetARPEntry neighbours[kRecords];
    QV_PAL_ARPEntry neighbours3[kRecords];
    NetTc limits[kRecords];
    NetTc_2 limits2[kRecords];
    SwitchPortInfo ports2[kRecords];
    SwitchPortStatus ports[kRecords];
    PoeInfo_t power;
    QV_PAL_PoeInfo power3;
    QV_PAL_NetBondParams params;
    QV_PAL_NetBrDevice bridgePorts[kRecords];
    STPInfo tree;
    NICBondMode bondMode;
    NetWorkMode workMode;
    NET_DDNS_CONFIG ddns;
    NetInterface* interface;
    QV_PAL_NetControl* control;
    NetBridge* bridge;
};

Places places;
Places expected;

/// The objects that version 3 asks.
NetInterface* card;
NetInterface* bond;
QV_PAL_NetControl* control;
NetBridge* bridge;

struct Row {
    const char* name;
    std::function<void()> spoil;
    std::function<int64_t(Places& at)> call;
    std::function<void(Places& at)> leaves = [](Places&) {};
    int64_t result = -1;
};

void PrintTo(const Row& row, std::ostream* out)
{
    *out << row.name;
}

// ---- what makes operations fail

void Nothing() {}

void ListingGone()
{
    Fail("open /proc/net/dev", EMFILE);
}

void CardGone()
{
    kernel.cards.pop_front();
}

/// An address in the file with no mask beside it, and no other source.
void AddressWithoutMask()
{
    Put(kFile0, "HOSTIP = 10.0.0.2\n");
}

void AddressesThatAreNone()
{
    Put(kFile0, "HOSTIP = here\nSUBMASK = there\nGATEWAYIP = nowhere\nMTU = 0\n");
}

void AddressesThatAreNone6()
{
    Put(kFile60, "HOSTIP = here\nSUBMASK = 64\nGATEWAYIP = nowhere\n");
}

void OneResolver()
{
    Put(kResolvers, "nameserver 10.0.0.5\n");
    Put(kResolvers6, "nameserver 2001:db8::5\n");
}

void SavedCardWithoutGateway()
{
    Put(kFile0, "DEFAULT_ETH = eth0\n");
}

void KernelWithoutMask()
{
    kernel.At("eth0").address = "10.0.0.2";
    Fail("ioctl SIOCGIFNETMASK", EADDRNOTAVAIL);
}

void ASwitchThatTellsItsPortsOnce()
{
    kernel.Add("eth3").driver = "sim Switch drv";
    kernel.At("eth3").chip = SwitchChip{std::vector<SwitchPort>(3)};
    Fail("ioctl 0x89F1", EIO, 2);
}

void APowerSupplyThatRefuses()
{
    Put("/dev/qv_poe", "");
    Fail("ioctl 0x", EIO);
}

// ---- what they leave

/// A text, with zeros behind it up to the end of its buffer.
template <size_t size>
void Text(char (&place)[size], const char* text, size_t buffer)
{
    memset(place, 0, buffer);
    memcpy(place, text, strlen(text));
}

const Row kVersion2[] = {
    {"NetGetCaps", ListingGone, [](auto& at) { return NetGetCaps(&at.caps); }},
    {"NetGetDDNSConfig", Nothing, [](auto& at) { return NetGetDDNSConfig(&at.ddns); }},
    {"NetGetHostIP", Nothing, [](auto& at) { return NetGetHostIP(at.text, 16, at.other, 16); }},
    {"NetGetHostIP_AddressWithoutMask", AddressWithoutMask,
     [](auto& at) { return NetGetHostIP(at.text, 16, at.other, 16); },
     [](auto& at) { Text(at.text, "10.0.0.2", 16); }},
    {"NetGetHostIPEx", CardGone,
     [](auto& at) { return NetGetHostIPEx("eth0", at.text, 16, at.other, 16); }},
    {"NetGetHostIPEx_TextsThatAreNone", AddressesThatAreNone,
     [](auto& at) { return NetGetHostIPEx("eth0", at.text, 16, at.other, 16); },
     [](auto& at) {
         Text(at.text, "here", 16);
         Text(at.other, "there", 16);
     }},
    {"NetGetHostIPEx_KernelWithoutMask", KernelWithoutMask,
     [](auto& at) { return NetGetHostIPEx("eth0", at.text, 16, at.other, 16); },
     [](auto& at) { strcpy(at.text, "10.0.0.2"); }},
    {"NetGetGateway", Nothing, [](auto& at) { return NetGetGateway(at.text, 16); }},
    {"NetGetGatewayEx_TextThatIsNone", AddressesThatAreNone,
     [](auto& at) { return NetGetGatewayEx("eth0", at.text, 16); },
     [](auto& at) { Text(at.text, "nowhere", 16); }},
    {"NetGetMAC", [] { Fail("ioctl SIOCGIFHWADDR", EIO); },
     [](auto& at) { return NetGetMAC("eth0", at.text, 18); }},
    {"NetGetMTU", [] { Fail("ioctl SIOCGIFMTU", EIO); },
     [](auto& at) { return NetGetMTU("eth0", &at.number); }},
    {"NetGetMTU_NumberThatIsNone",
     [] {
         AddressesThatAreNone();
         Fail("ioctl SIOCGIFMTU", EIO);
     },
     [](auto& at) { return NetGetMTU("eth0", &at.number); }, [](auto& at) { at.number = 0; }},
    {"NetWorkGetMac_NoAddress", Nothing, [](auto& at) { return NetWorkGetMac("here", at.text); }},
    {"NetWorkGetMac_NoTable", [] { Fail("open /proc/net/arp", EMFILE); },
     [](auto& at) { return NetWorkGetMac("10.0.0.9", at.text); }},
    {"NetWorkGetMac_Unknown", Nothing, [](auto& at) { return NetWorkGetMac("10.0.0.9", at.text); },
     [](auto& at) { memset(at.text, 0, 18); }},
    {"NetGetHostIPEx6", Nothing,
     [](auto& at) { return NetGetHostIPEx6("eth0", at.text, 46, at.other, 4); }},
    {"NetGetHostIPEx6_AddressWithoutPrefix", [] { Put(kFile60, "HOSTIP = 2001:db8::2\n"); },
     [](auto& at) { return NetGetHostIPEx6("eth0", at.text, 46, at.other, 4); },
     [](auto& at) { Text(at.text, "2001:db8::2", 46); }},
    {"NetGetHostIPEx6_TextsThatAreNone", AddressesThatAreNone6,
     [](auto& at) { return NetGetHostIPEx6("eth0", at.text, 46, at.other, 4); },
     [](auto& at) {
         Text(at.text, "here", 46);
         Text(at.other, "64", 4);
     }},
    {"NetGetGatewayEx6", Nothing, [](auto& at) { return NetGetGatewayEx6("eth0", at.text, 46); }},
    {"NetGetGatewayEx6_TextThatIsNone", AddressesThatAreNone6,
     [](auto& at) { return NetGetGatewayEx6("eth0", at.text, 46); },
     [](auto& at) { Text(at.text, "nowhere", 46); }},
    {"getScopeLinkAddr6", [] { Fail("ioctl SIOCGIFHWADDR", EIO); },
     [](auto& at) { return getScopeLinkAddr6("eth0", at.text, 46); }},
    {"NetGetDNSAddress", Nothing,
     [](auto& at) { return NetGetDNSAddress(at.text, 16, at.other, 16); }},
    {"NetGetDNSAddress_OneSaved", OneResolver,
     [](auto& at) { return NetGetDNSAddress(at.text, 16, at.other, 16); },
     [](auto& at) { strcpy(at.text, "10.0.0.5"); }},
    {"NetGetDNSAddressip6", Nothing,
     [](auto& at) { return NetGetDNSAddressip6(at.text, 46, at.other, 46); }},
    {"NetGetDNSAddressip6_OneSaved", OneResolver,
     [](auto& at) { return NetGetDNSAddressip6(at.text, 46, at.other, 46); },
     [](auto& at) { strcpy(at.text, "2001:db8::5"); }},
    {"NetWorkPing", [] { Fail("socket AF_INET 3", EPERM); },
     [](auto& at) { return NetWorkPing(&at.ping); }},
    {"NetGetEthName", ListingGone, [](auto& at) { return NetGetEthName(at.text, 64, &at.number); }},
    {"NetGetEthName_TooShort", Nothing,
     [](auto& at) { return NetGetEthName(at.text, 8, &at.number); },
     [](auto& at) { strcpy(at.text, "eth0::e"); }},
    {"NetGetDeviceName", ListingGone,
     [](auto& at) { return NetGetDeviceName(at.devices, kRecords); }},
    {"NetGetAllEthDevice", ListingGone,
     [](auto& at) { return NetGetAllEthDevice(at.devices, kRecords); },
     [](auto& at) { memset(at.devices, 0, sizeof(at.devices)); }, 0},
    {"NetGetEthDevice", ListingGone, [](auto& at) { return NetGetEthDevice(at.devices, kRecords); },
     [](auto& at) { memset(at.devices, 0, sizeof(at.devices)); }, 0},
    {"NetGetStats", ListingGone, [](auto& at) { return NetGetStats("eth0", &at.stats); }},
    {"NetGetDefaultEth", Nothing, [](auto& at) { return NetGetDefaultEth(at.text); }},
    {"NetGetDefaultEth_NoGateway", SavedCardWithoutGateway,
     [](auto& at) { return NetGetDefaultEth(at.text); },
     [](auto& at) { Text(at.text, "eth0", 16); }},
    {"NetRouteGetText", Nothing,
     [](auto& at) { return NetRouteGetText("eth0", at.text, &at.number); }},
    {"NetGetAllRoute", [] { Fail("open /proc/net/route", EMFILE); },
     [](auto& at) { return NetGetAllRoute(at.routes, &at.count); }},
    {"NetWorkGetBondModeEx", [] { Put(kBondFile, "BONDMODE = 9\n"); },
     [](auto& at) { return NetWorkGetBondModeEx("bond0", &at.number, at.text); }},
    {"NetWorkGetBondModeEx_DefaultCard",
     [] {
         Put(kBondFile, "BONDMODE = 9\n");
         SavedCardWithoutGateway();
     },
     [](auto& at) { return NetWorkGetBondModeEx("bond0", &at.number, at.text); },
     [](auto& at) { Text(at.text, "eth0", 16); }},
    {"NetWorkGetActiveSlaveEx", Nothing,
     [](auto& at) { return NetWorkGetActiveSlaveEx("bond0", at.text, 16) == nullptr ? -1 : 0; }},
    {"NetGetBondSlaves", [] { Remove(kSlaves); },
     [](auto& at) { return NetGetBondSlaves("bond0", at.pointers, &at.count); }},
    {"NetGetBondSlaves_NameWithPoint", [] { kernel.Add("bond0.5"); },
     [](auto& at) { return NetGetBondSlaves("bond0.5", at.pointers, &at.count); },
     [](auto& at) { at.count = 0; }},
    {"NetIsBondingSlave", Nothing, [](auto& at) { return NetIsBondingSlave("eth0", at.text, 16); },
     [](auto&) {}, 0},
    {"SwitchGetName", Nothing, [](auto& at) { return SwitchGetName(at.text); }},
    {"SwitchGetNameEx", Nothing, [](auto& at) { return SwitchGetNameEx(at.text, 16); }},
    {"SwitchGetPortStatus", Nothing,
     [](auto& at) { return SwitchGetPortStatus(at.ports2, kRecords); }},
    {"NetGetSwitchLinkStatus", Nothing,
     [](auto& at) { return NetGetSwitchLinkStatus("eth0", at.bytes, &at.count); },
     [](auto& at) { memset(at.bytes, 0, sizeof(at.bytes)); }},
    {"NetGetSwitchLinkStatus_NoLinks", ASwitchThatTellsItsPortsOnce,
     [](auto& at) { return NetGetSwitchLinkStatus("eth3", at.bytes, &at.count); },
     [](auto& at) {
         memset(at.bytes, 0, sizeof(at.bytes));
         at.count = 3;
     }},
    {"PoEGetPowerInfo", Nothing, [](auto& at) { return PoEGetPowerInfo(&at.power); }},
    {"PoEGetPowerInfo_Refused", APowerSupplyThatRefuses,
     [](auto& at) { return PoEGetPowerInfo(&at.power); },
     [](auto& at) { memset(&at.power, 0, sizeof(at.power)); }},
    {"NetGetAllStaticARPEntry", [] { Fail("open /proc/net/arp", EMFILE); },
     [](auto& at) { return NetGetAllStaticARPEntry(at.neighbours, &at.count); },
     [](auto& at) { memset(at.neighbours, 0, sizeof(at.neighbours)); }},
    {"NetGetStaticARPInfoByIP", [] { Fail("open /proc/net/arp", EMFILE); },
     [](auto& at) { return NetGetStaticARPInfoByIP("10.0.0.9", at.neighbours, &at.count); }},
    {"NetGetBandWidth", Nothing,
     [](auto& at) { return NetGetBandWidth("eth0", at.limits2, kRecords); }},
    {"NetGetBandWidth_NoSuchCard", Nothing,
     [](auto& at) { return NetGetBandWidth("eth9", at.limits2, kRecords); }},
    {"NetGetHostIP_TooShort", Nothing,
     [](auto& at) { return NetGetHostIP(at.text, 16, at.other, 15); }},
    {"NetGetHostIPEx_TooShort", AddressesThatAreNone,
     [](auto& at) { return NetGetHostIPEx("eth0", at.text, 15, at.other, 16); }},
    {"NetGetHostIPEx_AddressWithoutMask", AddressWithoutMask,
     [](auto& at) { return NetGetHostIPEx("eth0", at.text, 16, at.other, 16); },
     [](auto& at) { Text(at.text, "10.0.0.2", 16); }},
    {"NetGetGatewayEx", Nothing, [](auto& at) { return NetGetGatewayEx("eth0", at.text, 16); }},
    {"NetGetGatewayEx_TooShort", AddressesThatAreNone,
     [](auto& at) { return NetGetGatewayEx("eth0", at.text, 15); }},
    {"NetGetMAC_TooShort", Nothing, [](auto& at) { return NetGetMAC("eth0", at.text, 17); }},
    {"NetGetMAC_NoSuchCard", Nothing, [](auto& at) { return NetGetMAC("eth9", at.text, 18); }},
    {"NetGetMTU_NoSuchCard", Nothing, [](auto& at) { return NetGetMTU("eth9", &at.number); }},
    {"NetGetHostIPEx6_NoSuchCard", Nothing,
     [](auto& at) { return NetGetHostIPEx6("eth9", at.text, 46, at.other, 4); }},
    {"NetGetDNSAddress_TooShort", OneResolver,
     [](auto& at) { return NetGetDNSAddress(at.text, 15, at.other, 16); }},
    {"NetGetDNSAddressip6_TooShort", OneResolver,
     [](auto& at) { return NetGetDNSAddressip6(at.text, 8, at.other, 46); }},
    {"NetWorkPing_NoAnswer", [] { OnCall("poll", [] { SetClock(2000000); }); },
     [](auto& at) { return NetWorkPing(&at.ping); }},
    {"NetGetStats_NoSuchCard", Nothing, [](auto& at) { return NetGetStats("eth9", &at.stats); }},
    {"NetGetEthName_NoRoom", Nothing,
     [](auto& at) { return NetGetEthName(at.text, 0, &at.number); }},
    {"NetGetAllRoute6", [] { Fail("open /proc/net/ipv6_route", EMFILE); },
     [](auto& at) {
         at.routes[0].type = 1;
         return NetGetAllRoute(at.routes, &at.count);
     },
     [](auto& at) { at.routes[0].type = 1; }},
    {"NetGetAllRoute_AnotherFamily", Nothing,
     [](auto& at) {
         at.routes[0].type = 7;
         return NetGetAllRoute(at.routes, &at.count);
     },
     [](auto& at) { at.routes[0].type = 7; }},
    {"NetWorkGetBondMode", [] { Put(kBondFile, "BONDMODE = 9\n"); },
     [](auto& at) { return NetWorkGetBondMode(&at.number, at.text); }},
    {"NetWorkGetBondModeEx_NoSuchBond", Nothing,
     [](auto& at) { return NetWorkGetBondModeEx("bond7", &at.number, at.text); },
     [](auto& at) { at.number = 0; }, 0},
    {"NetWorkGetActiveSlaveEx_NoSuchBond", Nothing,
     [](auto& at) { return NetWorkGetActiveSlaveEx("bond7", at.text, 16) == nullptr ? -1 : 0; }},
    {"NetGetBondSlaves_NoSuchBond", Nothing,
     [](auto& at) { return NetGetBondSlaves("bond7", at.pointers, &at.count); }},
    {"NetIsBondingSlave_NoListing", ListingGone,
     [](auto& at) { return NetIsBondingSlave("eth0", at.text, 16); }, [](auto&) {}, 0},
    {"NetWorkGetBridgeInfo", [] { Remove("/sys/class/net/br0"); },
     [](auto& at) { return NetWorkGetBridgeInfo(at.masks, kRecords); },
     [](auto& at) { at.masks[0] = 0; }, 0},
    {"SwitchGetNameEx_TooShort", Nothing, [](auto& at) { return SwitchGetNameEx(at.text, 0); }},
    {"NetGetSwitchLinkStatus_NoRoom", ASwitchThatTellsItsPortsOnce,
     [](auto& at) {
         at.count = 0;
         return NetGetSwitchLinkStatus("eth3", at.bytes, &at.count);
     },
     [](auto& at) { at.count = 0; }},
    {"NetGetAllStaticARPEntry_NoRoom", Nothing,
     [](auto& at) {
         at.count = 0;
         return NetGetAllStaticARPEntry(at.neighbours, &at.count);
     },
     [](auto& at) { at.count = 0; }},
    {"NetGetDefaultEth_NoTable", [] { Fail("open /proc/net/route", EMFILE); },
     [](auto& at) { return NetGetDefaultEth(at.text); }},
};

const Row kVersion3[] = {
    {"getHostIP", Nothing,
     [](auto& at) { return card->getHostIP(card, at.text, 16, at.other, 16); }},
    {"getHostIP_AddressWithoutMask", AddressWithoutMask,
     [](auto& at) { return card->getHostIP(card, at.text, 16, at.other, 16); },
     [](auto& at) { Text(at.text, "10.0.0.2", 16); }},
    {"getRealHostIP_TextsThatAreNone", AddressesThatAreNone,
     [](auto& at) { return card->getRealHostIP(card, at.text, 16, at.other, 16); },
     [](auto& at) {
         Text(at.text, "here", 16);
         Text(at.other, "there", 16);
     }},
    {"getGateway", Nothing, [](auto& at) { return card->getGateway(card, at.text, 16); }},
    {"getGateway_TextThatIsNone", AddressesThatAreNone,
     [](auto& at) { return card->getGateway(card, at.text, 16); },
     [](auto& at) { Text(at.text, "nowhere", 16); }},
    {"getDataStat", ListingGone, [](auto& at) { return card->getDataStat(card, &at.stat); }},
    {"getMAC", [] { Fail("ioctl SIOCGIFHWADDR", EIO); },
     [](auto& at) { return card->getMAC(card, at.text, 18); }},
    {"getDNSAddress_OneSaved", OneResolver,
     [](auto& at) { return card->getDNSAddress(card, at.text, 16, at.other, 16); },
     [](auto& at) { strcpy(at.text, "10.0.0.5"); }},
    {"getMTU_NumberThatIsNone",
     [] {
         AddressesThatAreNone();
         Fail("ioctl SIOCGIFMTU", EIO);
     },
     [](auto& at) { return card->getMTU(card, &at.number); }, [](auto& at) { at.number = 0; }},
    {"getBondMembers", [] { Remove(kSlaves); },
     [](auto& at) { return bond->getBondMembers(bond, at.interfaces, &at.count); }},
    {"getHostIpv6", Nothing,
     [](auto& at) { return card->getHostIpv6(card, at.text, 46, at.other, 4); }},
    {"getHostIpv6_TextsThatAreNone", AddressesThatAreNone6,
     [](auto& at) { return card->getHostIpv6(card, at.text, 46, at.other, 4); },
     [](auto& at) {
         Text(at.text, "here", 46);
         Text(at.other, "64", 4);
     }},
    {"getSystemHostIpv6", AddressesThatAreNone6,
     [](auto& at) { return card->getSystemHostIpv6(card, at.text, 46, at.other, 4); }},
    {"getGatewayIpv6_TextThatIsNone", AddressesThatAreNone6,
     [](auto& at) { return card->getGatewayIpv6(card, at.text, 46); },
     [](auto& at) { Text(at.text, "nowhere", 46); }},
    {"getDNSAddressIpv6_OneSaved", OneResolver,
     [](auto& at) { return card->getDNSAddressIpv6(card, at.text, 46, at.other, 46); },
     [](auto& at) { strcpy(at.text, "2001:db8::5"); }},
    {"getLinkLocalAddressIpv6", [] { Fail("ioctl SIOCGIFHWADDR", EIO); },
     [](auto& at) { return card->getLinkLocalAddressIpv6(card, at.text, 46); }},
    {"getSwitchLinkMask", Nothing,
     [](auto& at) { return card->getSwitchLinkMask(card, &at.number); }},
    {"getLinkSpeed", [] { kernel.At("eth0").settings.reset(); },
     [](auto& at) { return card->getLinkSpeed(card, &at.number); }},
    {"getSwitchPortNum", Nothing,
     [](auto& at) { return card->getSwitchPortNum(card, &at.number); }},
    {"getSwitchPortStatus", Nothing,
     [](auto& at) { return card->getSwitchPortStatus(card, at.ports, &at.count); }},
    {"getBondMode", [] { Remove(kSlaves); },
     [](auto& at) { return bond->getBondMode(bond, &at.bondMode); }},
    {"getBondMode_NoNumber", [] { Put(kBondFile, "BONDMODE = none\n"); },
     [](auto& at) { return bond->getBondMode(bond, &at.bondMode); },
     [](auto& at) { at.bondMode = static_cast<NICBondMode>(-1); }},
    {"getEthWorkMode", Nothing, [](auto& at) { return bond->getEthWorkMode(bond, &at.workMode); }},
    {"getBandWidth", Nothing,
     [](auto& at) { return card->getBandWidth(card, at.limits, &at.count); }},
    {"ipToMac", Nothing, [](auto& at) { return card->ipToMac(card, "10.0.0.9", at.text, 18); },
     [](auto& at) { memset(at.text, 0, 18); }},
    {"getBondParams", Nothing, [](auto& at) { return bond->getBondParams(bond, &at.params); },
     [](auto&) {}, 0},
    {"getBondParams_NoPolicy", [] { Put(kBondFile, "LACP = 5\n"); },
     [](auto& at) { return bond->getBondParams(bond, &at.params); },
     [](auto& at) { at.params.lacp = 0; }, 0},
    {"getPoEPowerInfo", APowerSupplyThatRefuses,
     [](auto& at) { return control->getPoEPowerInfo(control, &at.power3); }},
    {"getAllRouteInfo", [] { Fail("open /proc/net/route", EMFILE); },
     [](auto& at) { return control->getAllRouteInfo(control, at.routes3, &at.count); }},
    {"getAllArpStaticEntry", [] { Fail("open /proc/net/arp", EMFILE); },
     [](auto& at) { return control->getAllArpStaticEntry(control, at.neighbours3, &at.count); }},
    {"getArpStaticInfoByIp", [] { Fail("open /proc/net/arp", EMFILE); },
     [](auto& at) {
         return control->getArpStaticInfoByIp(control, "10.0.0.9", at.neighbours3, &at.count);
     }},
    {"getBridgeDevicesInfo", [] { Remove("/sys/class/net/br0"); },
     [](auto& at) {
         auto* mask = reinterpret_cast<unsigned*>(&at.number);
         return bridge->getBridgeDevicesInfo(bridge, mask);
     }},
    {"getInfo", Nothing, [](auto& at) { return bridge->getInfo(bridge, &at.tree); }},
    {"getBridgeDevices", [] { Remove("/sys/class/net/br0"); },
     [](auto& at) { return bridge->getBridgeDevices(bridge, at.bridgePorts, &at.count); }},
    {"getBridgeDevices_MoreThan32", [] { Remove("/sys/class/net/br0"); },
     [](auto& at) {
         at.count = 100;
         return bridge->getBridgeDevices(bridge, at.bridgePorts, &at.count);
     },
     [](auto& at) { at.count = 32; }},
    {"createNetInterface", Nothing,
     [](auto& at) {
         NetInterfaceDesc desc{};
         desc.name = "eth9";
         return createNetInterface(&desc, &at.interface);
     }},
    {"createNetBridge", Nothing,
     [](auto& at) {
         const char* cards[] = {"eth0"};
         NetBrDesc desc{};
         desc.name = "bridge";
         desc.subDev = cards;
         desc.num = 1;
         return createNetBridge(&desc, &at.bridge);
     }},
    {"getNetInterfaceList", ListingGone,
     [](auto& at) { return getNetInterfaceList(at.interfaces, &at.count); }},
    {"getDefaultNetInterface", Nothing,
     [](auto& at) { return getDefaultNetInterface(at.text, 16); }},
    {"getDefaultNetInterface_NoGateway", SavedCardWithoutGateway,
     [](auto& at) { return getDefaultNetInterface(at.text, 16); },
     [](auto& at) { Text(at.text, "eth0", 16); }},
    {"getDefaultNetInterface_NoRoom", SavedCardWithoutGateway,
     [](auto& at) { return getDefaultNetInterface(at.text, 0); }},
    {"getHostIP_TooShort", AddressesThatAreNone,
     [](auto& at) { return card->getHostIP(card, at.text, 16, at.other, 15); }},
    {"getHostIP_KernelWithoutMask", KernelWithoutMask,
     [](auto& at) { return card->getHostIP(card, at.text, 16, at.other, 16); },
     [](auto& at) { strcpy(at.text, "10.0.0.2"); }},
    {"getRealHostIP_CardGone", CardGone,
     [](auto& at) { return card->getRealHostIP(card, at.text, 16, at.other, 16); }},
    {"getGateway_TooShort", AddressesThatAreNone,
     [](auto& at) { return card->getGateway(card, at.text, 15); }},
    {"getDataStat_CardGone", CardGone, [](auto& at) { return card->getDataStat(card, &at.stat); }},
    {"getMAC_TooShort", Nothing, [](auto& at) { return card->getMAC(card, at.text, 17); }},
    {"getMAC_CardGone", CardGone, [](auto& at) { return card->getMAC(card, at.text, 18); }},
    {"getDNSAddress", Nothing,
     [](auto& at) { return card->getDNSAddress(card, at.text, 16, at.other, 16); }},
    {"getDNSAddress_TooShort", OneResolver,
     [](auto& at) { return card->getDNSAddress(card, at.text, 16, at.other, 15); }},
    {"getMTU", CardGone, [](auto& at) { return card->getMTU(card, &at.number); }},
    {"getBondMembers_NoBond", Nothing,
     [](auto& at) { return card->getBondMembers(card, at.interfaces, &at.count); }},
    {"getHostIpv6_AddressWithoutPrefix", [] { Put(kFile60, "HOSTIP = 2001:db8::2\n"); },
     [](auto& at) { return card->getHostIpv6(card, at.text, 46, at.other, 4); },
     [](auto& at) { Text(at.text, "2001:db8::2", 46); }},
    {"getGatewayIpv6", Nothing, [](auto& at) { return card->getGatewayIpv6(card, at.text, 46); }},
    {"getDNSAddressIpv6", Nothing,
     [](auto& at) { return card->getDNSAddressIpv6(card, at.text, 46, at.other, 46); }},
    {"getDNSAddressIpv6_TooShort", OneResolver,
     [](auto& at) { return card->getDNSAddressIpv6(card, at.text, 46, at.other, 8); }},
    {"getLinkSpeed_CardGone", CardGone,
     [](auto& at) { return card->getLinkSpeed(card, &at.number); }},
    {"getBondMode_NoBond", Nothing, [](auto& at) { return card->getBondMode(card, &at.bondMode); }},
    {"ipToMac_NoAddress", Nothing,
     [](auto& at) { return card->ipToMac(card, "here", at.text, 18); }},
    {"ipToMac_NoTable", [] { Fail("open /proc/net/arp", EMFILE); },
     [](auto& at) { return card->ipToMac(card, "10.0.0.9", at.text, 18); }},
    {"ipToMac_TooShort", Nothing,
     [](auto& at) { return card->ipToMac(card, "10.0.0.9", at.text, 17); }},
    {"getPoEPowerInfo_NoDevice", Nothing,
     [](auto& at) { return control->getPoEPowerInfo(control, &at.power3); }},
    {"getAllRouteInfo6", [] { Fail("open /proc/net/ipv6_route", EMFILE); },
     [](auto& at) {
         at.routes3[0].type = 1;
         return control->getAllRouteInfo(control, at.routes3, &at.count);
     },
     [](auto& at) { at.routes3[0].type = 1; }},
    {"getAllRouteInfo_NoMemory", [] { Fail("calloc", ENOMEM); },
     [](auto& at) { return control->getAllRouteInfo(control, at.routes3, &at.count); }},
    {"getAllArpStaticEntry_NoMemory", [] { Fail("calloc", ENOMEM); },
     [](auto& at) { return control->getAllArpStaticEntry(control, at.neighbours3, &at.count); }},
    {"getBridgeDevices_NoList", [] { Remove("/sys/class/net/br0/brif"); },
     [](auto& at) { return bridge->getBridgeDevices(bridge, at.bridgePorts, &at.count); }},
    {"getInfo_BridgeGone", [] { Remove("/sys/class/net/br0"); },
     [](auto& at) { return bridge->getInfo(bridge, &at.tree); }},
    {"createNetInterface_NoMemory", [] { Fail("calloc", ENOMEM, 2); },
     [](auto& at) {
         NetInterfaceDesc desc{};
         desc.name = "eth1";
         return createNetInterface(&desc, &at.interface);
     }},
    {"createNetControl_NoMemory", [] { Fail("calloc", ENOMEM, 2); },
     [](auto& at) { return createNetControl(nullptr, &at.control); }},
    {"createNetBridge_NoMemory", [] { Fail("calloc", ENOMEM, 2); },
     [](auto& at) {
         NetBrDesc desc{};
         desc.name = "br0";
         return createNetBridge(&desc, &at.bridge);
     }},
};

/// A device on which nothing is saved, with the objects of a card, a bond and a bridge.
class PlacesAfterFailure : public InterfaceWorld, public testing::WithParamInterface<Row> {
protected:
    void SetUp() override
    {
        InterfaceWorld::SetUp();
        kernel.Add("bond0");
        kernel.Add("br0");
        Put(kSlaves, "eth1\n");
        Put("/sys/class/net/br0/brif/eth1", "");
        Put("/sys/class/net/br0/carrier", "1\n");
        card = Object("eth0");
        bond = Object("bond0");
        ASSERT_EQ(createNetControl(nullptr, &control), 0);
        const char* cards[] = {"eth1"};
        NetBrDesc desc{};
        desc.name = "br0";
        desc.subDev = cards;
        desc.num = 1;
        ASSERT_EQ(createNetBridge(&desc, &bridge), 0);
        Begin();
    }

    static NetInterface* Object(const char* name)
    {
        NetInterfaceDesc desc{};
        desc.name = name;
        NetInterface* object = nullptr;
        EXPECT_EQ(createNetInterface(&desc, &object), 0);
        return object;
    }

    /// What stood in all places before.
    static void Fill(Places* at)
    {
        memset(static_cast<void*>(at), '#', sizeof(*at));
        at->count = kRecords;
        for (int i = 0; i < kRecords; ++i) at->pointers[i] = places.names[i];
        at->routes[0].type = 0;
        at->routes3[0].type = 0;
        strcpy(at->ping.acFrom, "eth0");
        strcpy(at->ping.acTo, "10.0.0.9");
    }
};

TEST_P(PlacesAfterFailure, HoldWhatTheOperationSays)
{
    const Row& row = GetParam();
    Fill(&places);
    Fill(&expected);
    row.spoil();
    EXPECT_EQ(row.call(places), row.result);
    row.leaves(expected);
    EXPECT_STREQ(places.text, expected.text);
    EXPECT_STREQ(places.other, expected.other);
    EXPECT_EQ(places.number, expected.number);
    EXPECT_EQ(places.count, expected.count);
    const auto* is = reinterpret_cast<const char*>(&places);
    const auto* should = reinterpret_cast<const char*>(&expected);
    const auto differs = std::mismatch(is, is + sizeof(Places), should);
    EXPECT_EQ(differs.first - is, std::ptrdiff_t{sizeof(Places)}) << "the first byte that differs";
}

std::string NameOf(const testing::TestParamInfo<Row>& row)
{
    return row.param.name;
}

INSTANTIATE_TEST_SUITE_P(Version2, PlacesAfterFailure, testing::ValuesIn(kVersion2), NameOf);
INSTANTIATE_TEST_SUITE_P(Version3, PlacesAfterFailure, testing::ValuesIn(kVersion3), NameOf);

}  // namespace
