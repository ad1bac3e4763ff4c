/*
 * The layout of every record that crosses the library's border, as numbers: applications, drivers
 * and tools were built against them. Compiled as C11 and as C++17; to compile is to pass.
 */
#include "Backup.h"
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

SIZE(NetDataStat, 128);
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
FIELD(struct InterfaceInfo, netDatastat, 16);

SIZE(union netAddr, 16);

SIZE(NetRouteTableInfo, 128);
FIELD(NetRouteTableInfo, userFlag, 1);
FIELD(NetRouteTableInfo, dst, 4);
FIELD(NetRouteTableInfo, gw, 20);
FIELD(NetRouteTableInfo, mask, 36);
FIELD(NetRouteTableInfo, viaDev, 40);
FIELD(NetRouteTableInfo, reserved, 56);

SIZE(STPInfo, 64);
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
ALIGNMENT(NetStats, 8);
FIELD(NetStats, tx_bytes, 8);

SIZE(PING_S, 104);
ALIGNMENT(PING_S, 8);
FIELD(PING_S, acTo, 40);
FIELD(PING_S, s32Len, 80);
FIELD(PING_S, s32Time, 84);
FIELD(PING_S, s32Ttl, 88);
FIELD(PING_S, pvoid, 96);

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
FIELD(IPv4Route, mask, 4);
FIELD(IPv4Route, gw, 8);
FIELD(IPv4Route, viaDev, 12);

SIZE(IPv6Route, 52);
FIELD(IPv6Route, perfix, 16);
FIELD(IPv6Route, gw, 20);
FIELD(IPv6Route, viaDev, 36);

SIZE(struct CmosCaps, 16);
FIELD(struct CmosCaps, UseTable, 4);
FIELD(struct CmosCaps, resv, 8);
SIZE(CmosCaps_Sys_t, 16);

SIZE(SramFileParam, 32);
FIELD(SramFileParam, fileName, 8);
FIELD(SramFileParam, period, 16);
FIELD(SramFileParam, totalLen, 28);

SIZE(SramFileData, 40);
FIELD(SramFileData, pDatabuf, 8);
FIELD(SramFileData, dataLen, 16);
FIELD(SramFileData, offset, 20);
FIELD(SramFileData, reserved, 24);

SIZE(RTCData, 16);
FIELD(RTCData, len, 4);
FIELD(RTCData, pBuf, 8);

SIZE(CmosData, 12);
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
