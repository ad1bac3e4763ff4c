// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

/// The switch chip behind an interface, asked through the private requests of its driver, and the
/// power supply of its ports, asked through a character device. No policy and no saved state here.
///
/// Names count with at most 15 characters. A NULL name or output gives failure in silence, unless
/// an operation says what it stands for. Outputs are written only on success, unless an operation
/// says so. Every refused request to the switch is also logged by `NetIOCtrl`.

#include "Types.h"

#ifdef __cplusplus
extern "C" {
#endif

/// What travels to the switch driver and back, in the request's record directly behind the name.
/// Each request uses some of the fields; the rest are 0 on the way out.
typedef struct SwitchToolInfo {
    uint16_t u16LinkMask;        ///< bit n: port n has a link
    uint8_t u8PortNum;           ///< number of ports
    uint8_t u8PortIndex;         ///< a port, counted from 0
    uint8_t u8MacAddr[6];        ///< of the device on a port
    uint16_t u16enable;          ///< 1 enables a port
    uint16_t u16port_isolation;  ///< never set here
} SwitchToolInfo;

/// Reads the number of ports and which of them have a link.
///
/// The number of the switch asked last is kept: when only that is wanted, and it is not 0, the
/// driver is not asked again.
///
/// @param num   NULL, or where the number of ports goes
/// @param mask  NULL, or where the links go: bit n is set when port n has one
/// @errors a refusal: Error
/// @source ioctl 0x89F1
VORLIX_API bool Switch_GetSwitchPortInfo(const char* name, int* num, unsigned int* mask);

/// Finds the ports behind which hardware addresses were seen.
///
/// @param mac   `num` addresses of six bytes
/// @param port  `num` entries: the port counted from 0, or -1 for an address that was not found
/// @return true also when none was found
/// @errors an address that was not found: Error
/// @source ioctl 0x89F3, once for each address
VORLIX_API bool Switch_GetPortBymac(const char* name, unsigned char (*mac)[6], int* port, int num);

/// Reads the hardware address of the device on a port.
///
/// @param port  counted from 0; the message counts from 1
/// @param mac   six bytes, not text
/// @errors a refusal: Error
/// @source ioctl 0x89F2
VORLIX_API bool Switch_GetMacByPort(const char* name, int port, char* mac);

/// Enables a port.
///
/// @param port  counted from 0
/// @errors a refusal: Error
/// @source ioctl 0x89F4
VORLIX_API bool Switch_PortIsOk(const char* name, int port);

/// Asks the driver for its port isolation.
///
/// @param enable  plays no part: the record goes out empty in any case
/// @return 0, or -1
/// @errors a refusal: Error
/// @source ioctl 0x89F8
VORLIX_API int32_t NetSwitch_SetPortIsolation(const char* name, int32_t enable);

// The power supply. The device is opened for each operation; a device that is not there and a
// refused request give false with an Error.

/// Reads the state of the power supply, in the driver's units.
///
/// @param poe_info  cleared once the device is open, whatever the driver answers then
/// @source /dev/qv_poe, request 0x81005001
VORLIX_API bool PoE_GetPowerInfo(PoeInfo_t* poe_info);

/// Switches the supply of ports on.
///
/// @param portMask  bit n: port n
/// @source /dev/qv_poe, request 0x40045003
VORLIX_API bool PoE_SetPowerOn(uint32_t portMask);

/// Switches the supply of ports off.
///
/// @param portMask  bit n: port n
/// @source /dev/qv_poe, request 0x40045002
VORLIX_API bool PoE_SetPowerOff(uint32_t portMask);

/// Sets the power that all ports together may draw.
///
/// @param power  in the driver's units
/// @source /dev/qv_poe, request 0x40045005
VORLIX_API bool PoE_SetTotalPower(uint32_t power);

#ifdef __cplusplus
}  // extern "C"
#endif
