// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

/// What lies in the slots of the version 3 objects. An application calls these through the object,
/// and Net3.h tells there what each does; they have names of their own for programs that were
/// linked against them. The factories are declared in Net3.h too.

#include "Net3.h"

#ifdef __cplusplus
extern "C" {
#endif

// ==== Interface objects ====

/// Slot `addRef`.
VORLIX_API int API3_AddRef(NetInterface* thiz);

/// Slot `release`.
VORLIX_API int API3_DelRef(NetInterface* thiz);

/// Slot `up`.
VORLIX_API int API3_NetInterfaceUp(NetInterface* thiz);

/// Slot `down`.
VORLIX_API int API3_NetInterfaceDown(NetInterface* thiz);

/// Slot `setHostIP`.
VORLIX_API int API3_NetSetHostIP(NetInterface* thiz, const char* hostIP, const char* netmask);

/// Slot `setGateway`.
VORLIX_API int API3_NetSetGateway(NetInterface* thiz, const char* gateway);

/// Slots `getHostIP` and `getRealHostIP`.
VORLIX_API int API3_NetGetHostIP(NetInterface* thiz, char* hostIP, const int hlen, char* netmask,
                                 const int nlen);

/// Slot `getGateway`.
VORLIX_API int API3_NetGetGateway(NetInterface* thiz, char* gateway, const int iGLen);

/// Slot `getDataStat`.
VORLIX_API int API3_NetGetDataStat(NetInterface* thiz, NetDataStat* state);

/// Slot `configBeenReset`.
VORLIX_API int API3_GetBeenReset(NetInterface* thiz);

/// Slot `getMAC`.
VORLIX_API int API3_GetMAC(NetInterface* thiz, char* mac, const int iEthMacLen);

/// Slot `setMAC`.
VORLIX_API int API3_SetMAC(NetInterface* thiz, const char* mac);

/// Slot `getDNSAddress`.
VORLIX_API int API3_GetIPv4DNS(NetInterface* thiz, char* primary, const int plen, char* secondary,
                               const int slen);

/// Slot `setDNSAddress`.
VORLIX_API int API3_SetIPv4DNS(NetInterface* thiz, const char* primary, const char* secondary);

/// Slot `miiDiag`.
VORLIX_API int API3_NetMiiDiag(NetInterface* thiz);

/// Slot `arpCheck`.
VORLIX_API int API3_ArpCheck(NetInterface* thiz);

/// Slot `getMTU`.
VORLIX_API int API3_NetGetMtu(NetInterface* thiz, int* size);

/// Slot `setMTU`.
VORLIX_API int API3_NetSetMtu(NetInterface* thiz, int size);

/// Slot `getBondMembers`.
VORLIX_API int API3_GetBondMember(NetInterface* thiz, NetInterfaceInfo* list, int* num);

/// Slot `bond`.
VORLIX_API int API3_Bond(NetInterface* thiz, const char** listname, const int number,
                         NICBondMode mode);

/// Slot `unbond`.
VORLIX_API int API3_UnBond(NetInterface* thiz);

/// Slot `addRoute`.
VORLIX_API int API3_AddIPv4Route(NetInterface* thiz, const char* address, const char* netmask);

/// Slot `delRoute`.
VORLIX_API int API3_DelIPv4Route(NetInterface* thiz, const char* address, const char* netmask);

/// Slot `setHostIpv6`.
VORLIX_API int API3_NetSetIPv6Addr(NetInterface* thiz, const char* hostip, const char* prefixLen);

/// Slot `getHostIpv6`.
VORLIX_API int API3_NetGetIPv6Addr(NetInterface* thiz, char* host, int hostLen, char* netmask,
                                   int maskLen);

/// Slot `setGatewayIpv6`.
VORLIX_API int API3_NetSetIPv6Gateway(NetInterface* thiz, const char* gateway);

/// Slot `getGatewayIpv6`.
VORLIX_API int API3_NetGetIPv6Gateway(NetInterface* thiz, char* gateway, int len);

/// Slot `setDNSAddressIpv6`.
VORLIX_API int API3_SetIPv6DNS(NetInterface* thiz, const char* primary, const char* secondary);

/// Slot `getDNSAddressIpv6`.
VORLIX_API int API3_GetIPv6DNS(NetInterface* thiz, char* primary, const int plen, char* secondary,
                               const int slen);

/// Slot `getLinkLocalAddressIpv6`.
VORLIX_API int API3_GetLinkLocalAddress(NetInterface* thiz, char* linklocal, int len);

/// Slot `ping`.
VORLIX_API int API3_Ping(NetInterface* thiz, const char* dstHost, int timeout, int IpType);

/// Slot `getSwitchPort`.
VORLIX_API int API3_GetSwitchPortByMAC(NetInterface* thiz, const char* ethMac, const int ethMacLen);

/// Slot `getSwitchLinkMask`.
VORLIX_API int API3_GetSwitchMask(NetInterface* thiz, int* linkMask);

/// Slot `setSTP`.
VORLIX_API int API3_setSTP(NetInterface* thiz, STPInfo* stpInfo);

/// Slot `addRouteIpv6`.
VORLIX_API int API3_AddRouteIPv6(NetInterface* thiz, const char* pAddress, const int preFixLen);

/// Slot `delRouteIpv6`.
VORLIX_API int API3_DelRouteIPv6(NetInterface* thiz, const char* pAddress, const int preFixLen);

/// Slot `getLinkSpeed`.
VORLIX_API int API3_NetGetLinkSpeed(NetInterface* thiz, int* speed);

/// Slot `getSwitchPortNum`.
VORLIX_API int API3_GetSwitchPortNum(NetInterface* thiz, int* portNum);

/// Slot `getSwitchPortStatus`.
VORLIX_API int API3_GetSwitchStatus(NetInterface* thiz, struct SwitchPortStatus* portStatus,
                                    int* len);

/// Slot `getBondMode`.
VORLIX_API int API3_GetBondMode(NetInterface* thiz, NICBondMode* mode);

/// Slot `getEthWorkMode`.
VORLIX_API int API3_GetEthWorkMode(NetInterface* thiz, NetWorkMode* mode);

/// Slot `setBandWidth`.
VORLIX_API int API3_SetBandWidth(NetInterface* thiz, const NetTc* pTc, int num);

/// Slot `getBandWidth`.
VORLIX_API int API3_GetBandWidth(NetInterface* thiz, NetTc* pTc, int* num);

/// Slot `unsetBandWidth`.
VORLIX_API int API3_UnSetBandWidth(NetInterface* thiz, const char* ipAddr);

/// Slot `ipPortCtrl`.
VORLIX_API int API3_IPPortControl(NetInterface* thiz, const char* ipAddr, int portNumber, int ctrl);

/// Slot `setTelnet`.
VORLIX_API int API3_setTelnet(NetInterface* thiz, TelnetInfo* telnetInfo);

/// Slot `ipToMac`.
VORLIX_API int API3_GetMacByIPWithARP(NetInterface* thiz, const char* ipAddr, char* mac,
                                      const int len);

/// The same as slot `getRealHostIP`. In no slot itself.
VORLIX_API int API3_GetRealIP(NetInterface* thiz, char* hostIP, const int hlen, char* netmask,
                              const int nlen);

/// Slot `setMediumPrefer`.
VORLIX_API int API3_SetMediumPrefer(NetInterface* thiz, NetMediumPrefer medium);

/// Refuses every mode, in no slot: `setNetModeAndSpeed` stays empty.
/// @return -1, with an Error unless `thiz` is NULL
VORLIX_API int API3_NetSetModeAndSpeed(NetInterface* thiz, int modeAndSpeed);

/// Slot `delIPaddressIpv6`.
VORLIX_API int API3_DelIPv6Address(NetInterface* thiz, const char* hostIP);

/// Slot `setSSH`.
VORLIX_API int API3_setSSH(NetInterface* thiz, SSHInfo* sshInfo);

/// Slot `setBondParams`.
VORLIX_API int API3_setBondParams(NetInterface* thiz, const QV_PAL_NetBondParams params);

/// Slot `getBondParams`.
VORLIX_API int API3_getBondParams(NetInterface* thiz, QV_PAL_NetBondParams* params);

/// Slot `miiDiagEx`.
VORLIX_API int API3_miiDiagEx(NetInterface* thiz);

/// Slot `getSystemHostIpv6`.
VORLIX_API int API3_NetGetSysIPv6Addr(NetInterface* thiz, char* host, int hostLen, char* netmask,
                                      int maskLen);

// ==== Control objects ====

/// Slot `addRef`.
VORLIX_API int NetCtrl_AddRef(QV_PAL_NetControl* thiz);

/// Slot `release`.
VORLIX_API int NetCtrl_DelRef(QV_PAL_NetControl* thiz);

/// Slot `getPoEPowerInfo`.
VORLIX_API int NetCtrl_GetPoEPowerInfo(QV_PAL_NetControl* thiz, QV_PAL_PoeInfo* pPoe_info);

/// Slot `setPoEPowerOn`.
VORLIX_API int NetCtrl_SetPoEPowerOn(QV_PAL_NetControl* thiz, uint32_t portMask);

/// Slot `setPoEPowerOff`.
VORLIX_API int NetCtrl_SetPoEPowerOff(QV_PAL_NetControl* thiz, uint32_t portMask);

/// Slot `getAllRouteInfo`.
VORLIX_API int NetCtrl_GetAllRouteInfo(QV_PAL_NetControl* thiz, QV_PAL_RouteTableInfo* routes,
                                       int* num);

/// Slot `addRoute`.
VORLIX_API int NetCtrl_AddRoute(QV_PAL_NetControl* thiz, QV_PAL_RouteTableInfo* cmd);

/// Slot `delRoute`.
VORLIX_API int NetCtrl_DelRoute(QV_PAL_NetControl* thiz, QV_PAL_RouteTableInfo* cmd);

/// Slot `addArpStaticEntry`.
VORLIX_API int NetCtrl_arpAddStaticEntry(QV_PAL_NetControl* thiz, QV_PAL_ARPEntry* arpInfo);

/// Slot `delArpStaticEntry`.
VORLIX_API int NetCtrl_arpDelStaticEntry(QV_PAL_NetControl* thiz, QV_PAL_ARPEntry* arpInfo);

/// Slot `getAllArpStaticEntry`.
VORLIX_API int NetCtrl_arpGetAllStaticEntry(QV_PAL_NetControl* thiz, QV_PAL_ARPEntry* arpInfo,
                                            int* num);

/// Slot `getArpStaticInfoByIp`.
VORLIX_API int NetCtrl_arpGetStaticInfoByIp(QV_PAL_NetControl* thiz, const char* ip,
                                            QV_PAL_ARPEntry* arpInfo, int* num);

/// Slot `setPoETotalPower`.
VORLIX_API int NetCtrl_SetPoETotalPower(QV_PAL_NetControl* thiz, uint32_t power);

// ==== Bridge objects ====

/// Slot `addRef`.
VORLIX_API int BrAddRef(NetBridge* thiz);

/// Slot `release`.
VORLIX_API int BrDelRef(NetBridge* thiz);

/// Slot `getBridgeDevicesInfo`.
VORLIX_API int BrGetBridgeDevicesInfo(NetBridge* thiz, unsigned int* slave);

/// Slot `isEdgePort`.
VORLIX_API int BrIsEdgePort(NetBridge* thiz, const char* dev);

/// Slot `edgePortCtrl`.
VORLIX_API int BrEdgePortCtrl(NetBridge* thiz, const char* dev, int ctrl);

/// Slot `getInfo`.
VORLIX_API int BrGetInfo(NetBridge* thiz, STPInfo* info);

/// Slot `bridgeCtrl`.
VORLIX_API int BridgeCtrl(NetBridge* thiz, const STPInfo* info);

/// Slot `getBridgeDevices`.
VORLIX_API int BrGetBridgeDevices(NetBridge* thiz, QV_PAL_NetBrDevice* device, int* num);

// ==== Registry of interface objects ====
//
// Not exported, and only called by `createNetInterface`, which holds the registry's lock.

/// Finds the object of a name.
///
/// @param pout  NULL, or where the object goes; written only on success
/// @return its place, or -1. An entry that has lost its object is freed on the way.
int findNode(const char* name, NetInterface** pout);

/// Enters an object under at most 15 characters of its name.
/// @return its place, or -1: for NULL silent, for a full registry with an Error
int insertNode(const char* name, NetInterface* pIf);

#ifdef __cplusplus
}  // extern "C"
#endif
