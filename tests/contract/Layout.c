/*
 * The layout of every record that crosses the library's border, as numbers: applications, drivers
 * and tools were built against them. Compiled as C11 and as C++17; to compile is to pass.
 */
#include "Backup.h"
#include "Route.h"
#include "Types.h"

#ifdef __cplusplus
#define LAYOUT_ASSERT(condition) static_assert(condition, #condition)
#else
#define LAYOUT_ASSERT(condition) _Static_assert(condition, #condition)
#endif

#define SIZE(record, size) LAYOUT_ASSERT(sizeof(record) == (size))
#define FIELD(record, field, offset) LAYOUT_ASSERT(offsetof(record, field) == (offset))

SIZE(NetWorkMode, 4);
SIZE(NICBondMode, 4);
SIZE(NetDeviceUsage, 4);
SIZE(NetMediumPrefer, 4);

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
