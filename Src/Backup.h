// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

/// The second copy of eth0's address, mask and gateway, in a few bytes that survive a wipe of the
/// flash, and the marks that tell of a reset.
///
/// The memory is one of three: the RTC chip's, an SRAM file kept by a driver, or the CMOS of a
/// recorder board, which a provider linked in for the board reads and writes. RTC and SRAM hold
///
///     39      reset mark, not covered by the check sum
///     40..43  CRC-32 of the 12 bytes behind it, in the machine's byte order
///     44..55  address, mask and gateway, 4 bytes each, network byte order
///
/// and CMOS holds a `CmosData`. Nothing here is locked: callers keep changes of the memory apart.
/// The setting files and the kernel are not touched; what the memory holds counts at the next boot.

#include "Types.h"

#ifdef __cplusplus
extern "C" {
#endif

// ==== Devices ====

/// What the device is, decided once for the life of the process.
typedef VORLIX_ENUM(DeviceType){
    DEVICETYPE_UNKNOW = 0,  ///< not decided yet
    DEVICETYPE_IPC = 1,     ///< camera: RTC or SRAM behind a character device
    DEVICETYPE_DVR = 2      ///< recorder: CMOS behind the board's provider
} DeviceType;

/// Index of the use table in `struct CmosCaps`: first and last byte of each user.
typedef VORLIX_ENUM(ComsUse_e){CMOS_USE_APP_START = 0, CMOS_USE_APP_END = 1,
                               CMOS_USE_NETWORK_START = 2, CMOS_USE_NETWORK_END = 3,
                               CMOS_USE_BUT = 4} ComsUse_e;

/// The same for `CmosCaps_Sys_t`.
typedef VORLIX_ENUM(ComsUse_Sys_e){CMOS_USE_SYS_APP_START = 0, CMOS_USE_SYS_APP_END = 1,
                                   CMOS_USE_SYS_NETWORK_START = 2, CMOS_USE_SYS_NETWORK_END = 3,
                                   CMOS_USE_SYS_BUT = 4} ComsUse_Sys_e;

/// Places in the memory of RTC and SRAM, and what the SRAM driver is created with.
typedef VORLIX_ENUM(PARAMVALUE){
    RTC_SRAM_IPRESET = 39,             ///< reset mark, 1 byte
    RTC_SRAM_ETHCRC = 40,              ///< check sum of the three values
    RTC_SRAM_ETHIP = 44,               ///< address of eth0
    RTC_SRAM_ETHMASK = 48,             ///< mask of eth0, in full
    RTC_SRAM_ETHGATEWAY = 52,          ///< gateway of eth0
    RTC_SRAM_EXITTIME_WFREQ = 300000,  ///< period of the driver's writes
    RTC_SRAM_SIZE_MAX = 256,
    RTC_SRAM_MARK_LEN = 1,
    PDI_SRAM_FILE_DDR = 0  ///< mode of the SRAM file
} PARAMVALUE;

/// Type numbers of the requests to "/dev/pdcSramFile" and "/dev/pdcRtc".
#define PDC_SRAMFILE_BASE_CMD 81
#define PDC_RTC_BASE_CMD 82

#define PDC_SRAMFILE_CREATE 0xC0085100U  ///< `SramFileParam`
#define PDC_SRAMFILE_DELETE 0xC0085101U  ///< not sent
#define PDC_SRAMFILE_READ 0xC0085102U    ///< `SramFileData`
#define PDC_SRAMFILE_WRITE 0xC0085103U   ///< `SramFileData`
#define PDC_RTC_READSRAM 0xC0085200U     ///< `RTCData`
#define PDC_RTC_WRITESRAM 0xC0085201U    ///< `RTCData`

/// What a board's provider tells of its CMOS.
struct CmosCaps {
    uint32_t CmosSize;    ///< bytes; not read here
    uint8_t UseTable[4];  ///< by `ComsUse_e`
    uint8_t resv[8];
};

/// The same, for the provider's alternative entry.
typedef struct CmosCaps_Sys_t {
    uint32_t CmosSize;    ///< bytes; not read here
    uint8_t UseTable[4];  ///< by `ComsUse_Sys_e`
    uint8_t resv[8];
} CmosCaps_Sys_t;

/// Record of `PDC_SRAMFILE_CREATE`.
typedef struct SramFileParam {
    void* sramHandle;      ///< NULL going in; the driver returns its handle here
    const char* fileName;  ///< the file behind the memory
    uint32_t period;       ///< between the driver's writes of that file
    uint32_t mode;
    uint32_t markLen;   ///< bytes
    uint32_t totalLen;  ///< bytes
} SramFileParam;

/// Record of `PDC_SRAMFILE_READ` and `PDC_SRAMFILE_WRITE`.
typedef struct SramFileData {
    void* sramHandle;
    unsigned char* pDatabuf;
    uint32_t dataLen;      ///< bytes
    uint32_t offset;       ///< from the start of the memory
    uint32_t reserved[3];  ///< zero
} SramFileData;

/// Record of `PDC_RTC_READSRAM` and `PDC_RTC_WRITESRAM`.
typedef struct RTCData {
    uint32_t addr;  ///< from the start of the memory
    uint32_t len;   ///< bytes
    unsigned char* pBuf;
} RTCData;

/// The record on CMOS. A CMOS with less room has only its first bytes.
__extension__ typedef struct __attribute__((packed)) CmosData {
    uint32_t uiIP;        ///< address of eth0, network byte order
    uint32_t uiGateway;   ///< gateway of eth0, network byte order
    uint8_t NetMask;      ///< mask of eth0 as a number of set bits, 0 to 32
    uint8_t Prio : 1;     ///< priority flag
    uint8_t Mode : 3;     ///< mode digit
    uint8_t Flag : 4;     ///< 0xA when a program of this layout has written the record
    uint8_t reserved[2];  ///< [0] `crc8` of bytes 0 to 8, [1] reset mark
} CmosData;

/// Reads bytes of the board's CMOS.
///
/// This and the five operations below are stand-ins with weak linkage: each logs an Error and
/// returns -1. A board replaces them by linking an object file with its own definitions into the
/// program; an ordinary member of an archive is not taken for that.
///
/// @param offset  first byte
/// @param buffer  `length` bytes
/// @return 0 on success
VORLIX_API int32_t CMOSRead(int32_t offset, void* buffer, int32_t length);

/// Writes bytes of the board's CMOS.
/// @return 0 on success
VORLIX_API int32_t CMOSWrite(int32_t offset, void* buffer, int32_t length);

/// Tells which bytes of the CMOS belong to whom.
/// @return negative on failure
VORLIX_API int32_t CMOSGetCaps(struct CmosCaps* caps);

/// Alternative entries of a provider. Nothing here calls them.
VORLIX_API int32_t CMOSRead_SYS(int32_t offset, void* buffer, int32_t length);
VORLIX_API int32_t CMOSWrite_SYS(int32_t offset, void* buffer, int32_t length);
VORLIX_API int32_t CMOSGetCaps_SYS(CmosCaps_Sys_t* caps);

/// `CMOSRead`, for applications.
VORLIX_API int32_t readCmos(int32_t offset, void* buffer, int32_t length);

/// `CMOSWrite`, for applications.
VORLIX_API int32_t writeCmos(int32_t offset, void* buffer, int32_t length);

/// `CMOSGetCaps`, for applications.
VORLIX_API int32_t getCmosCaps(struct CmosCaps* caps);

/// Decides which memory this device has, and opens it: a camera when one of the two device nodes
/// exists, RTC before SRAM, otherwise a recorder with CMOS. What cannot be opened, or has no room
/// for the network, stays refused. The descriptor is never closed.
///
/// The operations of the record below call it once; called again, it runs again.
///
/// @errors a node that cannot be opened, an SRAM file or a use table that is refused: Error
/// @threads callers keep the first call apart
VORLIX_API void CheckDeviceType(void);

/// Reads bytes 40 to 55 of the SRAM, verifies their check sum, and copies out what is asked for.
///
/// @param data    `len` bytes, written only on success
/// @param offset  40 to 52
/// @param len     1 and more; must not lead past byte 55
/// @return 0; -1 argument refused or device not open, silent; -2 refused by the driver, Error;
///         -3 wrong check sum, Error
VORLIX_API int ReadFromSram(void* data, uint32_t offset, uint32_t len);

/// Changes bytes of the SRAM: reads the block, patches it, renews its check sum and writes it
/// back. A block with a wrong check sum is not patched: it must be reset first.
///
/// @param data    `len` bytes
/// @param offset  44 to 52: the check sum is not the caller's
/// @param len     1 and more; must not lead past byte 55
/// @return false for a refused argument or a device that is not open, silent; for a block that
///         cannot be read, that fails its check sum or cannot be written, Error
VORLIX_API bool WriteToSram(const void* data, uint32_t offset, uint32_t len);

/// Zeroes the three values on SRAM and sets their check sum. The reset mark stays.
/// @return false for a device that is not open, silent; for a block that cannot be written, Error
VORLIX_API bool ResetSram(void);

/// `ReadFromSram` for the RTC chip.
VORLIX_API int ReadFromRTC(void* data, uint32_t offset, uint32_t len);

/// `WriteToSram` for the RTC chip.
VORLIX_API bool WriteToRTC(const void* data, uint32_t offset, uint32_t len);

/// `ResetSram` for the RTC chip.
VORLIX_API bool ResetRTC(void);

/// Reads the record on CMOS and verifies it: flag first, then, when the CMOS has room for it, the
/// check byte.
///
/// @param cmosData  filled as far as the CMOS goes, also when the verification fails
/// @return false for NULL or a CMOS that is not usable, silent; for a failed read, a wrong flag or
///         check byte, Error
VORLIX_API bool ReadFromCmos(CmosData* cmosData);

/// Writes the record on CMOS. The flag is the caller's.
///
/// @param cmosData  its check byte is renewed in place
/// @return false for NULL, a CMOS that is not usable and a failed write, silent
VORLIX_API bool WriteToCmos(CmosData* cmosData);

// ==== Check sums ====

/// CRC-8 of the Dallas/Maxim kind.
/// @errors NULL: Error, and 0
VORLIX_API unsigned char crc8(const unsigned char* buf, unsigned int len);

/// CRC-32 of Ethernet and zlib. NULL or a `len` of 0 gives 0.
VORLIX_API uint32_t CRCCalcu(const void* data, uint32_t len);

// ==== Record ====
//
// Each operation below decides first which memory the device has, when that is not known yet.

/// Stores eth0's address. For any other name nothing is stored.
///
/// @param addr  dotted text; short forms pass
/// @return false for NULL or another name, silent; for a text that is no address, Error; for a
///         memory that cannot be read or fails its verification, with what it held left as it is,
///         Error; for one that cannot be written, on CMOS silent, else Error
VORLIX_API bool BackupIP(const char* name, const char* addr);

/// Gives eth0's stored address.
///
/// @param addr  16 bytes, written only on success
/// @return false for NULL or another name, silent; for a memory that cannot be read and for a
///         stored 0, Error
VORLIX_API bool RestoreIP(const char* name, char* addr);

/// Stores eth0's mask, as `BackupIP`. CMOS has room for the number of its set bits and no more.
VORLIX_API bool BackupMask(const char* name, const char* addr);

/// Gives eth0's stored mask, as `RestoreIP`. On CMOS it comes back contiguous, 0 bits come back as
/// 32, and more than 32 are refused with an Error.
VORLIX_API bool RestoreMask(const char* name, char* addr);

/// Stores eth0's gateway, as `BackupIP`.
VORLIX_API bool BackupGateway(const char* name, const char* addr);

/// Gives eth0's stored gateway, as `RestoreIP`.
VORLIX_API bool RestoreGateway(const char* name, char* addr);

/// Stores a mode digit, for any name, on CMOS only.
///
/// @param mode  '0' to '9'; the record keeps three bits, so '8' and '9' become '0' and '1'
/// @return false for NULL, another character or another memory, silent; for a record that cannot be
///         read or fails its verification, Error; for one that cannot be written, silent
VORLIX_API bool BackupMode(char* name, char mode);

/// Gives the stored mode digit, '0' to '7', for any name, on CMOS only.
/// @param mode  written only on success
VORLIX_API bool RestoreMode(char* name, char* mode);

/// Stores the priority flag, as `BackupMode`.
/// @param prio  0, or anything else for 1
VORLIX_API bool BackupPrio(char* name, char prio);

/// Gives the stored priority flag, 0 or 1 as a number, as `RestoreMode`.
VORLIX_API bool RestorePrio(char* name, char* prio);

// ==== Reset marks ====

/// The reset mark on CMOS, also of a record that fails its verification.
VORLIX_API unsigned char GetCmosResetMark(void);

/// Writes the reset mark on CMOS, and with it a new check byte. A record that fails its
/// verification is written too: with a wrong check byte it passes as good from then on, with a
/// wrong flag it goes on failing, and one that could not be read is overwritten with zeros.
/// @return false for a CMOS that is not usable or cannot be written, Error
/// @errors a failed verification or read: Error
VORLIX_API bool SetCmosResetMark(unsigned char mark);

/// Announces a reset of the network, on CMOS only and as `SetCmosResetMark` does; on RTC and SRAM
/// nothing is done, and the result is true.
VORLIX_API bool setBeenResetFlag(void);

/// The reset mark on SRAM; 0 when it cannot be read, with an Error.
VORLIX_API unsigned char GetSramMark(void);

/// The reset mark on RTC; 0 when it cannot be read, with an Error.
VORLIX_API unsigned char GetRTCMark(void);

/// Writes the reset mark on SRAM, which no check sum covers.
/// @return false when the driver refuses, or the device is not open, Error
VORLIX_API bool SetSramMark(unsigned char mark);

/// Writes the reset mark on RTC.
VORLIX_API bool SetRTCMark(unsigned char mark);

/// True when a reset was announced, or when a camera's memory is fresh and eth0 has no setting file
/// yet. Clears the mark, on CMOS as `SetCmosResetMark` does, so that one mark is told of once; one
/// that cannot be cleared is told of again. On CMOS any other mark stays.
/// @errors an announced reset on CMOS, a fresh memory without a setting file: Info; a memory that
///         has lost its contents beside one: Warn
VORLIX_API bool CheckBeenReset(void);

/// `CheckBeenReset`, for applications.
VORLIX_API bool NetCheckBeenReset(void);

/// True when the stored record passes its check sum. A camera's memory that cannot be read passes
/// too; on CMOS every failed read counts as a failed check.
VORLIX_API bool CheckCrc(void);

/// Wipes the stored values. On CMOS the flag goes too, and nothing can be read until
/// `setCmosVerifyFlag` has run; on RTC and SRAM the mark stays.
/// @return false when the memory cannot be written or is not open: on CMOS silent, else Error
/// @errors always: Warn
VORLIX_API bool RestBackup(void);

/// Sets the flag on CMOS by which records are told to be of this layout, and mends nothing else.
/// A wrong check byte stays wrong. True and nothing done on RTC and SRAM.
/// @return false when the record cannot be read or written, Error
VORLIX_API bool setCmosVerifyFlag(void);

#ifdef __cplusplus
}  // extern "C"
#endif
