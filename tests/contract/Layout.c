/* SPDX-FileCopyrightText: 2026 the Vorlix network layer authors */
/* SPDX-License-Identifier: MIT */

/*
 * The layout of every record that crosses the library's border, as numbers: applications, drivers
 * and tools were built against them. Compiled as C11 and as C++17; to compile is to pass.
 */
#include "Backup.h"
#include "Net3.h"
#include "Netlink.h"
#include "Route.h"
#include "Switch.h"
#include "Types.h"

#ifdef __cplusplus
#define LAYOUT_ASSERT(condition) static_assert(condition, #condition)
#define ALIGN_OF(record) alignof(record)
#else
#define LAYOUT_ASSERT(condition) _Static_assert(condition, #condition)
#define ALIGN_OF(record) _Alignof(record)
#endif

#define SIZE(record, size) LAYOUT_ASSERT(sizeof(record) == (size))
#define ALIGNMENT(record, bytes) LAYOUT_ASSERT(ALIGN_OF(record) == (bytes))
/* Pointers are 8 bytes wide or 4, and what is reserved keeps its number of elements. */
#define WIDTH(wide, narrow) (sizeof(void*) == 8 ? (wide) : (narrow))
/* 64-bit numbers of a record stand at multiples of 4 on 32-bit x86 alone. */
#ifdef __i386__
#define COUNTER_ALIGNMENT 4
#else
#define COUNTER_ALIGNMENT 8
#endif
#define VALUE(name, number) LAYOUT_ASSERT((name) == (number))
#define FIELD(record, field, offset) LAYOUT_ASSERT(offsetof(record, field) == (offset))

SIZE(NetWorkMode, 4);
SIZE(NICBondMode, 4);
SIZE(NetDeviceUsage, 4);
SIZE(NetMediumPrefer, 4);
SIZE(NetInterfaceMedia, 4);
SIZE(NetVirtInterType, 4);
SIZE(NetIpVlanMode, 4);
SIZE(NetIpVlanFlag, 4);
SIZE(NetMacVlanMode, 4);
SIZE(NetMacVlanAddrMode, 4);
SIZE(NetMacVlanFlag, 4);
SIZE(QV_API_VERSION_RET_E, 4);
SIZE(NetRouteOperate, 4);
SIZE(NetRouteStyleType, 4);
SIZE(NetWorkMode_E, 4);
SIZE(IPV6_ADDR_SCOPE_TYPE_E, 4);

VALUE(netModeInvalid, -1);
VALUE(netModeMultiple, 0);
VALUE(netModeBond, 1);
VALUE(netModeSwitch, 2);
VALUE(netModeBridge, 3);
VALUE(netModeVlan, 4);
VALUE(netModeVap, 5);
VALUE(netModePhysical, 6);
VALUE(nicBondBalanceRR, 0);
VALUE(nicBondActiveBackup, 1);
VALUE(nicBondBalanceXOR, 2);
VALUE(nicBondBroadcast, 3);
VALUE(nicBond802_3ad, 4);
VALUE(nicBondBalanceTLB, 5);
VALUE(nicBondBalanceALB, 6);
VALUE(netDeviceUsageCommon, 0);
VALUE(netDeviceUsageDCFunc, 1);
VALUE(netDeviceUsageWeb, 2);
VALUE(netDeviceUsageMax, 255);
VALUE(netFiberMediumPrefer, 0);
VALUE(netCopperMediumPrefer, 1);
VALUE(netNoMediumPrefer, 2);
VALUE(netMediumPreferMax, 255);
VALUE(NetInterfaceWired, 0);
VALUE(NetInterfaceWireless, 1);
VALUE(NetInterfaceFiber, 2);
VALUE(NetInterfaceFiberRJ45, 3);
VALUE(NetInterfaceNr, 4);
VALUE(QV_API_VERSION_RET_SUCCESS, 0);
VALUE(QV_API_VERSION_RET_NOT_IMPLET, -1);
VALUE(QV_API_VERSION_RET_ERROR, -2);
VALUE(ADD_ROUTE, 0);
VALUE(DELETE_ROUTE, 1);
VALUE(ROUTESTYLE_SYS, 0);
VALUE(ROUTESTYLE_USER, 1);
VALUE(En_Net_Invalid, -1);
VALUE(En_Net_Multiple, 0);
VALUE(En_Net_Tolerance, 1);
VALUE(En_Net_Balance, 2);
VALUE(En_Net_Bridge, 3);
VALUE(En_Net_Bond, 4);
VALUE(En_Net_LinkAgg, 5);
VALUE(VORLIX_IPV6_ADDR_SCOPE_NODELOCAL, 1);
VALUE(VORLIX_IPV6_ADDR_SCOPE_LINKLOCAL, 2);
VALUE(VORLIX_IPV6_ADDR_SCOPE_SITELOCAL, 5);
VALUE(VORLIX_IPV6_ADDR_SCOPE_ORGLOCAL, 8);
VALUE(VORLIX_IPV6_ADDR_SCOPE_GLOBAL, 14);

SIZE(NetDataStat, 128);
ALIGNMENT(NetDataStat, COUNTER_ALIGNMENT);
FIELD(NetDataStat, transmittedBytes, 0);
FIELD(NetDataStat, receivedBytes, 8);
FIELD(NetDataStat, transmittedPackets, 16);
FIELD(NetDataStat, receivedPackets, 24);
FIELD(NetDataStat, transmittedErrors, 32);
FIELD(NetDataStat, receivedErrors, 36);
FIELD(NetDataStat, transmittedDroped, 40);
FIELD(NetDataStat, receivedDroped, 44);
FIELD(NetDataStat, transmittedOverruns, 48);
FIELD(NetDataStat, receivedOverruns, 52);
FIELD(NetDataStat, transmittedCarrier, 56);
FIELD(NetDataStat, receivedFrame, 60);
FIELD(NetDataStat, transmittedCollisions, 64);
FIELD(NetDataStat, transmittedTxqueuelens, 68);
FIELD(NetDataStat, interfaceSpeed, 72);
FIELD(NetDataStat, reserved, 76);

SIZE(struct InterfaceInfo, 144);
ALIGNMENT(struct InterfaceInfo, COUNTER_ALIGNMENT);
FIELD(struct InterfaceInfo, netDatastat, 16);

SIZE(union netAddr, 16);
ALIGNMENT(union netAddr, 4);

SIZE(NetRouteTableInfo, 128);
ALIGNMENT(NetRouteTableInfo, 4);
FIELD(NetRouteTableInfo, userFlag, 1);
FIELD(NetRouteTableInfo, resv, 2);
FIELD(NetRouteTableInfo, dst, 4);
FIELD(NetRouteTableInfo, gw, 20);
FIELD(NetRouteTableInfo, mask, 36);
FIELD(NetRouteTableInfo, viaDev, 40);
FIELD(NetRouteTableInfo, reserved, 56);

SIZE(STPInfo, 64);
ALIGNMENT(STPInfo, 1);
FIELD(STPInfo, mode, 1);
FIELD(STPInfo, reserved, 2);

SIZE(NetVirtInterName, 384);
ALIGNMENT(NetVirtInterName, 4);
FIELD(NetVirtInterName, hostName, 4);
FIELD(NetVirtInterName, virtName, 132);
FIELD(NetVirtInterName, enable, 260);
FIELD(NetVirtInterName, reserve, 261);
FIELD(NetVirtInterName, rsd, 264);

SIZE(NetIpVlanAttr, 32);
ALIGNMENT(NetIpVlanAttr, 4);
FIELD(NetIpVlanAttr, eFlag, 4);
FIELD(NetIpVlanAttr, reserve, 8);

SIZE(NetMacVlanAttr, 384);
ALIGNMENT(NetMacVlanAttr, 4);
FIELD(NetMacVlanAttr, eFlag, 4);
FIELD(NetMacVlanAttr, eAddrMode, 8);
FIELD(NetMacVlanAttr, macAddr, 12);
FIELD(NetMacVlanAttr, rsd, 19);
FIELD(NetMacVlanAttr, rsd1, 20);

SIZE(NetInterParam, 384);
ALIGNMENT(NetInterParam, 4);

SIZE(NetVirtInterInfo, 1020);
ALIGNMENT(NetVirtInterInfo, 4);
FIELD(NetVirtInterInfo, interParam, 384);
FIELD(NetVirtInterInfo, rsd, 768);

SIZE(NetInterfaceInfo, 128);
ALIGNMENT(NetInterfaceInfo, 4);
FIELD(NetInterfaceInfo, speed, 36);
FIELD(NetInterfaceInfo, stpcap, 44);
FIELD(NetInterfaceInfo, usage, 48);
FIELD(NetInterfaceInfo, reserved, 52);

SIZE(NetARPEntry, 64);
ALIGNMENT(NetARPEntry, 1);
FIELD(NetARPEntry, ip, 16);
FIELD(NetARPEntry, mac, 32);
FIELD(NetARPEntry, reserved, 50);

SIZE(NetTc, 124);
ALIGNMENT(NetTc, 4);
FIELD(NetTc, ipType, 48);
FIELD(NetTc, bandWidth, 52);
FIELD(NetTc, flags, 56);
FIELD(NetTc, resv, 60);

SIZE(SSHInfo, 64);
ALIGNMENT(SSHInfo, 4);
FIELD(SSHInfo, reserved1, 1);
FIELD(SSHInfo, port, 2);
FIELD(SSHInfo, openDuration, 4);
FIELD(SSHInfo, reserved, 8);

SIZE(PoeInfo_t, 256);
ALIGNMENT(PoeInfo_t, 4);
FIELD(PoeInfo_t, powerFlag, 4);
FIELD(PoeInfo_t, totalPower, 8);
FIELD(PoeInfo_t, power, 12);
FIELD(PoeInfo_t, powerOff, 76);
FIELD(PoeInfo_t, powerFail, 80);
FIELD(PoeInfo_t, powerOnMask, 84);
FIELD(PoeInfo_t, powerOffMask, 88);
FIELD(PoeInfo_t, ratePower, 92);
FIELD(PoeInfo_t, availablePower, 96);
FIELD(PoeInfo_t, averagePower, 100);
FIELD(PoeInfo_t, reserved, 104);

SIZE(SwitchPortStatus, 128);
ALIGNMENT(SwitchPortStatus, 1);
FIELD(SwitchPortStatus, mac, 48);
FIELD(SwitchPortStatus, link, 72);
FIELD(SwitchPortStatus, port, 73);
FIELD(SwitchPortStatus, ipType, 74);
FIELD(SwitchPortStatus, resv, 75);

SIZE(NetCaps, 64);
ALIGNMENT(NetCaps, 4);
FIELD(NetCaps, Reverse, 4);

SIZE(NET_DDNS_CONFIG, 136);
ALIGNMENT(NET_DDNS_CONFIG, 4);
FIELD(NET_DDNS_CONFIG, hostname, 4);
FIELD(NET_DDNS_CONFIG, username, 36);
FIELD(NET_DDNS_CONFIG, password, 68);
FIELD(NET_DDNS_CONFIG, serverip, 100);
FIELD(NET_DDNS_CONFIG, serverport, 132);

SIZE(NetDevice, 40);
ALIGNMENT(NetDevice, 4);
FIELD(NetDevice, trans_media, 1);
FIELD(NetDevice, usage, 2);
FIELD(NetDevice, reserved, 3);
FIELD(NetDevice, speed, 4);
FIELD(NetDevice, name, 8);
FIELD(NetDevice, max_speed, 24);
FIELD(NetDevice, resv, 28);

SIZE(NetStats, 16);
ALIGNMENT(NetStats, COUNTER_ALIGNMENT);
FIELD(NetStats, tx_bytes, 8);

SIZE(PING_S, WIDTH(104, 96));
ALIGNMENT(PING_S, WIDTH(8, 4));
FIELD(PING_S, acTo, 40);
FIELD(PING_S, s32Len, 80);
FIELD(PING_S, s32Time, 84);
FIELD(PING_S, s32Ttl, 88);
FIELD(PING_S, pvoid, WIDTH(96, 92));

SIZE(SwitchPortInfo, 32);
ALIGNMENT(SwitchPortInfo, 4);
FIELD(SwitchPortInfo, port, 2);
FIELD(SwitchPortInfo, ip, 4);
FIELD(SwitchPortInfo, mac, 8);

SIZE(NetTc_2, 76);
ALIGNMENT(NetTc_2, 4);
FIELD(NetTc_2, bandWidth, 48);
FIELD(NetTc_2, flags, 52);
FIELD(NetTc_2, prio, 56);
FIELD(NetTc_2, resv, 60);

SIZE(IPv4Route, 28);
ALIGNMENT(IPv4Route, 4);
FIELD(IPv4Route, mask, 4);
FIELD(IPv4Route, gw, 8);
FIELD(IPv4Route, viaDev, 12);

SIZE(IPv6Route, 52);
ALIGNMENT(IPv6Route, 4);
FIELD(IPv6Route, perfix, 16);
FIELD(IPv6Route, gw, 20);
FIELD(IPv6Route, viaDev, 36);

SIZE(rtnl_handle, 36);
ALIGNMENT(rtnl_handle, 4);
FIELD(rtnl_handle, fd, 0);
FIELD(rtnl_handle, local, 4);
FIELD(rtnl_handle, peer, 16);
FIELD(rtnl_handle, seq, 28);
FIELD(rtnl_handle, dump, 32);

/* Two requests, with room for 1024 bytes of attributes. */
LAYOUT_ASSERT(sizeof(struct nlmsghdr) + sizeof(struct ifinfomsg) + 1024 == 1056);
LAYOUT_ASSERT(sizeof(struct nlmsghdr) + sizeof(struct rtmsg) + 1024 == 1052);

VALUE(virtTypeAlias, 0);
VALUE(virtTypeVlan, 1);
VALUE(virtTypeIpVlan, 2);
VALUE(virtTypeMacVlan, 3);
VALUE(virtTypeDummy, 4);
VALUE(virtTypeTun, 5);
VALUE(virtTypeTap, 6);
VALUE(virtTypeVeth, 7);
VALUE(virtTypeBut, 8);

/* These go into the requests unchanged: they are the kernel's numbers. */
VALUE(ipVlanModeL2, 0);
VALUE(ipVlanModeL3, 1);
VALUE(ipVlanModeL3S, 2);
VALUE(ipVlanModeBut, 3);
VALUE(ipVlanBridge, 0);
VALUE(ipVlanPrivate, 1);
VALUE(ipVlanVepa, 2);
VALUE(macVlanModePrivate, 1);
VALUE(macVlanModeVepa, 2);
VALUE(macVlanModeBridge, 4);
VALUE(macVlanModePassthru, 8);
VALUE(macVlanModeSource, 16);
VALUE(macVlanAddrAdd, 0);
VALUE(macVlanAddrDel, 1);
VALUE(macVlanAddrFlush, 2);
VALUE(macVlanAddrSet, 3);
VALUE(macVlanNoPromisc, 1);
VALUE(macVlanNoDst, 2);

SIZE(struct CmosCaps, 16);
ALIGNMENT(struct CmosCaps, 4);
FIELD(struct CmosCaps, UseTable, 4);
FIELD(struct CmosCaps, resv, 8);
SIZE(CmosCaps_Sys_t, 16);
ALIGNMENT(CmosCaps_Sys_t, 4);
FIELD(CmosCaps_Sys_t, UseTable, 4);
FIELD(CmosCaps_Sys_t, resv, 8);

SIZE(SramFileParam, WIDTH(32, 24));
ALIGNMENT(SramFileParam, WIDTH(8, 4));
FIELD(SramFileParam, fileName, WIDTH(8, 4));
FIELD(SramFileParam, period, WIDTH(16, 8));
FIELD(SramFileParam, mode, WIDTH(20, 12));
FIELD(SramFileParam, markLen, WIDTH(24, 16));
FIELD(SramFileParam, totalLen, WIDTH(28, 20));

SIZE(SramFileData, WIDTH(40, 28));
ALIGNMENT(SramFileData, WIDTH(8, 4));
FIELD(SramFileData, pDatabuf, WIDTH(8, 4));
FIELD(SramFileData, dataLen, WIDTH(16, 8));
FIELD(SramFileData, offset, WIDTH(20, 12));
FIELD(SramFileData, reserved, WIDTH(24, 16));

SIZE(RTCData, WIDTH(16, 12));
ALIGNMENT(RTCData, WIDTH(8, 4));
FIELD(RTCData, len, 4);
FIELD(RTCData, pBuf, 8);

SIZE(CmosData, 12);
ALIGNMENT(CmosData, 1);
FIELD(CmosData, uiGateway, 4);
FIELD(CmosData, NetMask, 8);
FIELD(CmosData, reserved, 10);

SIZE(SwitchToolInfo, 14);
ALIGNMENT(SwitchToolInfo, 2);
FIELD(SwitchToolInfo, u16LinkMask, 0);
FIELD(SwitchToolInfo, u8PortNum, 2);
FIELD(SwitchToolInfo, u8PortIndex, 3);
FIELD(SwitchToolInfo, u8MacAddr, 4);
FIELD(SwitchToolInfo, u16enable, 10);
FIELD(SwitchToolInfo, u16port_isolation, 12);

SIZE(WLanEncryption, 4);
VALUE(wlanEncryptionOff, 0);
VALUE(wlanEncryptionOn, 1);
VALUE(wlanEncryptionWEB64, 2);
VALUE(wlanEncryptionWEB128, 3);
VALUE(wlanEncryptionTKIP, 4);
VALUE(wlanEncryptionAES, 5);

SIZE(NetInterfaceDesc, WIDTH(136, 128));
ALIGNMENT(NetInterfaceDesc, WIDTH(8, 4));
FIELD(NetInterfaceDesc, reserved, WIDTH(8, 4));

SIZE(TelnetInfo, 64);
ALIGNMENT(TelnetInfo, 1);
FIELD(TelnetInfo, reserved, 1);

SIZE(QV_PAL_NetBondParams, 64);
ALIGNMENT(QV_PAL_NetBondParams, 1);
FIELD(QV_PAL_NetBondParams, reserved, 1);

SIZE(WLanConfig, 256);
ALIGNMENT(WLanConfig, 4);
FIELD(WLanConfig, ssid, 3);
FIELD(WLanConfig, keys, 42);
FIELD(WLanConfig, reserved, 172);

SIZE(WLanAccessPoint, 124);
ALIGNMENT(WLanAccessPoint, 4);
FIELD(WLanAccessPoint, reserved, 40);

SIZE(QV_PAL_NetIPv6InfoFilter, 128);
ALIGNMENT(QV_PAL_NetIPv6InfoFilter, 1);
FIELD(QV_PAL_NetIPv6InfoFilter, reserved, 40);

SIZE(QV_PAL_NetIPv6Info, 128);
ALIGNMENT(QV_PAL_NetIPv6Info, 1);
FIELD(QV_PAL_NetIPv6Info, ethName, 40);
FIELD(QV_PAL_NetIPv6Info, macAddr, 56);
FIELD(QV_PAL_NetIPv6Info, reserved, 74);

SIZE(union QV_PAL_RouteAddr, 16);
ALIGNMENT(union QV_PAL_RouteAddr, 4);

SIZE(QV_PAL_RouteTableInfo, 128);
ALIGNMENT(QV_PAL_RouteTableInfo, 4);
FIELD(QV_PAL_RouteTableInfo, userFlag, 1);
FIELD(QV_PAL_RouteTableInfo, resv, 2);
FIELD(QV_PAL_RouteTableInfo, dst, 4);
FIELD(QV_PAL_RouteTableInfo, gw, 20);
FIELD(QV_PAL_RouteTableInfo, mask, 36);
FIELD(QV_PAL_RouteTableInfo, viaDev, 40);
FIELD(QV_PAL_RouteTableInfo, reserved, 56);

SIZE(QV_PAL_ARPEntry, 64);
ALIGNMENT(QV_PAL_ARPEntry, 1);
FIELD(QV_PAL_ARPEntry, ip, 16);
FIELD(QV_PAL_ARPEntry, mac, 32);
FIELD(QV_PAL_ARPEntry, reserved, 50);

SIZE(QV_PAL_PoeInfo, 256);
ALIGNMENT(QV_PAL_PoeInfo, 4);
FIELD(QV_PAL_PoeInfo, powerFlag, 4);
FIELD(QV_PAL_PoeInfo, totalPower, 8);
FIELD(QV_PAL_PoeInfo, power, 12);
FIELD(QV_PAL_PoeInfo, powerOff, 76);
FIELD(QV_PAL_PoeInfo, powerFail, 80);
FIELD(QV_PAL_PoeInfo, powerOnMask, 84);
FIELD(QV_PAL_PoeInfo, powerOffMask, 88);
FIELD(QV_PAL_PoeInfo, ratePower, 92);
FIELD(QV_PAL_PoeInfo, availablePower, 96);
FIELD(QV_PAL_PoeInfo, averagePower, 100);
FIELD(QV_PAL_PoeInfo, reserved, 104);

SIZE(QV_PAL_NetControlDesc, 128);
ALIGNMENT(QV_PAL_NetControlDesc, 4);

SIZE(NetBrDesc, WIDTH(136, 128));
ALIGNMENT(NetBrDesc, WIDTH(8, 4));
FIELD(NetBrDesc, subDev, WIDTH(8, 4));
FIELD(NetBrDesc, num, WIDTH(16, 8));
FIELD(NetBrDesc, reserved, WIDTH(20, 12));

SIZE(QV_PAL_NetBrDevice, 128);
ALIGNMENT(QV_PAL_NetBrDevice, 1);

SIZE(NetInterface, WIDTH(1024, 512));
ALIGNMENT(NetInterface, WIDTH(8, 4));
FIELD(NetInterface, priv, 0);
FIELD(NetInterface, addRef, WIDTH(8, 4));
FIELD(NetInterface, release, WIDTH(16, 8));
FIELD(NetInterface, up, WIDTH(24, 12));
FIELD(NetInterface, down, WIDTH(32, 16));
FIELD(NetInterface, setHostIP, WIDTH(40, 20));
FIELD(NetInterface, setGateway, WIDTH(48, 24));
FIELD(NetInterface, getHostIP, WIDTH(56, 28));
FIELD(NetInterface, getGateway, WIDTH(64, 32));
FIELD(NetInterface, getDataStat, WIDTH(72, 36));
FIELD(NetInterface, configBeenReset, WIDTH(80, 40));
FIELD(NetInterface, getMAC, WIDTH(88, 44));
FIELD(NetInterface, setMAC, WIDTH(96, 48));
FIELD(NetInterface, getDNSAddress, WIDTH(104, 52));
FIELD(NetInterface, setDNSAddress, WIDTH(112, 56));
FIELD(NetInterface, getWLanConfig, WIDTH(120, 60));
FIELD(NetInterface, setWLanConfig, WIDTH(128, 64));
FIELD(NetInterface, scanWLanAccessPoint, WIDTH(136, 68));
FIELD(NetInterface, miiDiag, WIDTH(144, 72));
FIELD(NetInterface, arpCheck, WIDTH(152, 76));
FIELD(NetInterface, getMTU, WIDTH(160, 80));
FIELD(NetInterface, setMTU, WIDTH(168, 84));
FIELD(NetInterface, getBondMembers, WIDTH(176, 88));
FIELD(NetInterface, bond, WIDTH(184, 92));
FIELD(NetInterface, unbond, WIDTH(192, 96));
FIELD(NetInterface, addRoute, WIDTH(200, 100));
FIELD(NetInterface, delRoute, WIDTH(208, 104));
FIELD(NetInterface, setHostIpv6, WIDTH(216, 108));
FIELD(NetInterface, getHostIpv6, WIDTH(224, 112));
FIELD(NetInterface, setGatewayIpv6, WIDTH(232, 116));
FIELD(NetInterface, getGatewayIpv6, WIDTH(240, 120));
FIELD(NetInterface, setDNSAddressIpv6, WIDTH(248, 124));
FIELD(NetInterface, getDNSAddressIpv6, WIDTH(256, 128));
FIELD(NetInterface, getLinkLocalAddressIpv6, WIDTH(264, 132));
FIELD(NetInterface, ping, WIDTH(272, 136));
FIELD(NetInterface, getSwitchPort, WIDTH(280, 140));
FIELD(NetInterface, getSwitchLinkMask, WIDTH(288, 144));
FIELD(NetInterface, setSTP, WIDTH(296, 148));
FIELD(NetInterface, addRouteIpv6, WIDTH(304, 152));
FIELD(NetInterface, delRouteIpv6, WIDTH(312, 156));
FIELD(NetInterface, getLinkSpeed, WIDTH(320, 160));
FIELD(NetInterface, getSwitchPortNum, WIDTH(328, 164));
FIELD(NetInterface, getSwitchPortStatus, WIDTH(336, 168));
FIELD(NetInterface, getBondMode, WIDTH(344, 172));
FIELD(NetInterface, getEthWorkMode, WIDTH(352, 176));
FIELD(NetInterface, setBandWidth, WIDTH(360, 180));
FIELD(NetInterface, getBandWidth, WIDTH(368, 184));
FIELD(NetInterface, unsetBandWidth, WIDTH(376, 188));
FIELD(NetInterface, ipPortCtrl, WIDTH(384, 192));
FIELD(NetInterface, setTelnet, WIDTH(392, 196));
FIELD(NetInterface, ipToMac, WIDTH(400, 200));
FIELD(NetInterface, getRealHostIP, WIDTH(408, 204));
FIELD(NetInterface, setMediumPrefer, WIDTH(416, 208));
FIELD(NetInterface, setNetModeAndSpeed, WIDTH(424, 212));
FIELD(NetInterface, delIPaddressIpv6, WIDTH(432, 216));
FIELD(NetInterface, getIPv6NeighborTableInfo, WIDTH(440, 220));
FIELD(NetInterface, setSSH, WIDTH(448, 224));
FIELD(NetInterface, getNetLinkCaps, WIDTH(456, 228));
FIELD(NetInterface, setBondParams, WIDTH(464, 232));
FIELD(NetInterface, getBondParams, WIDTH(472, 236));
FIELD(NetInterface, miiDiagEx, WIDTH(480, 240));
FIELD(NetInterface, getSystemHostIpv6, WIDTH(488, 244));
FIELD(NetInterface, getNetPortState, WIDTH(496, 248));
FIELD(NetInterface, getPhyExceptionInfo, WIDTH(504, 252));
FIELD(NetInterface, reserved, WIDTH(512, 256));

SIZE(QV_PAL_NetControl, WIDTH(1024, 512));
ALIGNMENT(QV_PAL_NetControl, WIDTH(8, 4));
FIELD(QV_PAL_NetControl, priv, 0);
FIELD(QV_PAL_NetControl, addRef, WIDTH(8, 4));
FIELD(QV_PAL_NetControl, release, WIDTH(16, 8));
FIELD(QV_PAL_NetControl, getPoEPowerInfo, WIDTH(24, 12));
FIELD(QV_PAL_NetControl, setPoEPowerOn, WIDTH(32, 16));
FIELD(QV_PAL_NetControl, setPoEPowerOff, WIDTH(40, 20));
FIELD(QV_PAL_NetControl, getAllRouteInfo, WIDTH(48, 24));
FIELD(QV_PAL_NetControl, addRoute, WIDTH(56, 28));
FIELD(QV_PAL_NetControl, delRoute, WIDTH(64, 32));
FIELD(QV_PAL_NetControl, addArpStaticEntry, WIDTH(72, 36));
FIELD(QV_PAL_NetControl, delArpStaticEntry, WIDTH(80, 40));
FIELD(QV_PAL_NetControl, getAllArpStaticEntry, WIDTH(88, 44));
FIELD(QV_PAL_NetControl, getArpStaticInfoByIp, WIDTH(96, 48));
FIELD(QV_PAL_NetControl, setPoETotalPower, WIDTH(104, 52));
FIELD(QV_PAL_NetControl, setPhyWolMode, WIDTH(112, 56));
FIELD(QV_PAL_NetControl, reserved, WIDTH(120, 60));

SIZE(NetBridge, WIDTH(256, 128));
ALIGNMENT(NetBridge, WIDTH(8, 4));
FIELD(NetBridge, priv, 0);
FIELD(NetBridge, addRef, WIDTH(8, 4));
FIELD(NetBridge, release, WIDTH(16, 8));
FIELD(NetBridge, getBridgeDevicesInfo, WIDTH(24, 12));
FIELD(NetBridge, isEdgePort, WIDTH(32, 16));
FIELD(NetBridge, edgePortCtrl, WIDTH(40, 20));
FIELD(NetBridge, getInfo, WIDTH(48, 24));
FIELD(NetBridge, bridgeCtrl, WIDTH(56, 28));
FIELD(NetBridge, getBridgeDevices, WIDTH(64, 32));
FIELD(NetBridge, reserved, WIDTH(72, 36));
