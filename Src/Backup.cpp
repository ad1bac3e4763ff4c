// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Contents:
//   Check sums
//   RTC and SRAM: one block behind a driver, two devices
//   Detection: which of the three memories this device has
//   CMOS: one record behind the board's provider
//   Values: address, mask and gateway, wherever they lie
//   Reset marks
//
// The operations follow in the order of the header.

#include "Backup.h"

#include "Support/Handles.h"
#include "Support/KeyFile.h"
#include "Support/Log.h"
#include "Support/Text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

#include <fcntl.h>
#include <netinet/in.h>
#include <sys/ioctl.h>

namespace vorlix {

namespace {

// ---- texts and limits

constexpr char kRtcNode[] = "/dev/pdcRtc";
constexpr char kSramNode[] = "/dev/pdcSramFile";
constexpr char kSramFile[] = "/mnt/mtd/RtcSramFile";

constexpr uint32_t kSramTotalLen = 251;

// The block that is transferred whole: check sum, address, mask, gateway.
constexpr uint32_t kBlockStart = RTC_SRAM_ETHCRC;
constexpr uint32_t kValuesStart = RTC_SRAM_ETHIP;
constexpr uint32_t kLastValue = RTC_SRAM_ETHGATEWAY;
constexpr uint32_t kBlockSize = 16;
constexpr uint32_t kBlockEnd = kBlockStart + kBlockSize;
constexpr uint32_t kMarkPlace = RTC_SRAM_IPRESET;

constexpr uint32_t kLeastCmosLen = 2;
constexpr unsigned kCmosCrcBytes = 9;
constexpr uint8_t kCmosFlag = 0xA;
constexpr unsigned char kNoReset = 0;
constexpr unsigned char kBeenReset = 0x66;
constexpr unsigned kMaskBits = 32;
constexpr uint8_t kModeBits = 7;

constexpr int kReadRefused = -1;
constexpr int kReadFailed = -2;
constexpr int kReadCorrupt = -3;

using Block = std::array<unsigned char, kBlockSize>;

// ---- records of the drivers

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__,
              "the bytes in a backup memory are those of a little-endian target");
// A pointer is as wide as the kernel's: the drivers' records shrink with it.
constexpr size_t kPointer = sizeof(void*);
static_assert(sizeof(SramFileParam) == 2 * kPointer + 16 &&
                  offsetof(SramFileParam, sramHandle) == 0 &&
                  offsetof(SramFileParam, fileName) == kPointer &&
                  offsetof(SramFileParam, period) == 2 * kPointer &&
                  offsetof(SramFileParam, mode) == 2 * kPointer + 4 &&
                  offsetof(SramFileParam, markLen) == 2 * kPointer + 8 &&
                  offsetof(SramFileParam, totalLen) == 2 * kPointer + 12,
              "layout of the SRAM driver");
static_assert(sizeof(SramFileData) == 3 * kPointer + 16 &&
                  offsetof(SramFileData, sramHandle) == 0 &&
                  offsetof(SramFileData, pDatabuf) == kPointer &&
                  offsetof(SramFileData, dataLen) == 2 * kPointer &&
                  offsetof(SramFileData, offset) == 2 * kPointer + 4 &&
                  offsetof(SramFileData, reserved) == 2 * kPointer + 8,
              "layout of the SRAM driver");
static_assert(sizeof(RTCData) == kPointer + 8 && offsetof(RTCData, addr) == 0 &&
                  offsetof(RTCData, len) == 4 && offsetof(RTCData, pBuf) == 8,
              "layout of the RTC driver");
static_assert(sizeof(CmosCaps) == 16 && offsetof(CmosCaps, UseTable) == 4 &&
                  offsetof(CmosCaps, resv) == 8,
              "layout of the CMOS provider");
static_assert(sizeof(CmosCaps_Sys_t) == 16 && offsetof(CmosCaps_Sys_t, UseTable) == 4 &&
                  offsetof(CmosCaps_Sys_t, resv) == 8,
              "layout of the CMOS provider");
static_assert(sizeof(CmosData) == 12 && offsetof(CmosData, uiGateway) == 4 &&
                  offsetof(CmosData, NetMask) == 8 && offsetof(CmosData, reserved) == 10,
              "layout of the record on CMOS");

// ---- state, decided by the first caller and then only read; callers keep the first call apart

DeviceType deviceType = DEVICETYPE_UNKNOW;
bool isRTCExist = false;
int32_t sramfd = -1;         // of the RTC or of the SRAM device; never closed
void* sramHandle = nullptr;  // the SRAM driver's; not used for the RTC
uint32_t cmosOffset = 0;     // 0: no CMOS is usable
uint32_t cmosLen = 0;        // at most the size of the record

// ---- check sums

constexpr std::array<uint32_t, 256> MakeCrc32Table()
{
    constexpr uint32_t kPolynomial = 0xEDB88320U;  // reflected
    std::array<uint32_t, 256> table{};
    for (uint32_t index = 0; index < table.size(); ++index) {
        uint32_t value = index;
        for (int bit = 0; bit < 8; ++bit) {
            value = (value & 1U) != 0 ? (value >> 1U) ^ kPolynomial : value >> 1U;
        }
        table[index] = value;
    }
    return table;
}

constexpr std::array<uint32_t, 256> crc32_table = MakeCrc32Table();

uint32_t SumOfValues(const Block& block)
{
    constexpr uint32_t kSumSize = kValuesStart - kBlockStart;
    return CRCCalcu(&block[kSumSize], kBlockSize - kSumSize);
}

bool HasRightSum(const Block& block)
{
    uint32_t stored = 0;
    memcpy(&stored, block.data(), sizeof(stored));
    return stored == SumOfValues(block);
}

void RenewSum(Block* block)
{
    const uint32_t sum = SumOfValues(*block);
    memcpy(block->data(), &sum, sizeof(sum));
}

unsigned char SumOfRecord(const CmosData& record)
{
    return crc8(reinterpret_cast<const unsigned char*>(&record), kCmosCrcBytes);
}

// ---- RTC and SRAM

int TransferRtc(uint32_t request, uint32_t place, unsigned char* bytes, uint32_t len)
{
    RTCData data{};
    data.addr = place;
    data.len = len;
    data.pBuf = bytes;
    return ioctl(sramfd, request, &data);
}

int TransferSram(uint32_t request, uint32_t place, unsigned char* bytes, uint32_t len)
{
    SramFileData data{};
    data.sramHandle = sramHandle;
    data.pDatabuf = bytes;
    data.dataLen = len;
    data.offset = place;
    return ioctl(sramfd, request, &data);
}

bool RtcIsReady()
{
    return sramfd >= 0;
}

bool SramIsReady()
{
    return sramfd >= 0 && sramHandle != nullptr;
}

/// What differs between the two devices: how they are asked, the operations that other operations
/// call by name, and messages whose wording differs in more than the device.
struct BlockDevice {
    const char* tag;
    bool (*isReady)();
    int (*transfer)(uint32_t request, uint32_t place, unsigned char* bytes, uint32_t len);
    uint32_t readRequest, writeRequest;

    int (*read)(void* data, uint32_t offset, uint32_t len);
    bool (*write)(const void* data, uint32_t offset, uint32_t len);
    bool (*reset)();
    unsigned char (*getMark)();
    bool (*setMark)(unsigned char mark);

    const char *resetFailed, *resetError, *getMarkFailed, *setMarkFailed;
};

constexpr BlockDevice MakeRtc()
{
    BlockDevice device{};
    device.tag = "rtc";
    device.isReady = RtcIsReady;
    device.transfer = TransferRtc;
    device.readRequest = PDC_RTC_READSRAM;
    device.writeRequest = PDC_RTC_WRITESRAM;
    device.read = ReadFromRTC;
    device.write = WriteToRTC;
    device.reset = ResetRTC;
    device.getMark = GetRTCMark;
    device.setMark = SetRTCMark;
    device.resetFailed = "ResetRTC failed";
    device.resetError = "ResetRTC error .";
    device.getMarkFailed = "get mark from rtc error.";
    device.setMarkFailed = "set mark from rtc error.";
    return device;
}

constexpr BlockDevice MakeSram()
{
    BlockDevice device{};
    device.tag = "sram";
    device.isReady = SramIsReady;
    device.transfer = TransferSram;
    device.readRequest = PDC_SRAMFILE_READ;
    device.writeRequest = PDC_SRAMFILE_WRITE;
    device.read = ReadFromSram;
    device.write = WriteToSram;
    device.reset = ResetSram;
    device.getMark = GetSramMark;
    device.setMark = SetSramMark;
    device.resetFailed = "ResetSram failed.";
    device.resetError = "ResetSram error .";
    device.getMarkFailed = "get mark from sram error";
    device.setMarkFailed = "set mark from sram error";
    return device;
}

constexpr BlockDevice kRtc = MakeRtc();
constexpr BlockDevice kSram = MakeSram();

/// The device of a camera.
const BlockDevice& Device()
{
    return isRTCExist ? kRtc : kSram;
}

/// True when `len` bytes at `offset` lie inside the block and begin between `first` and the last
/// value. The sum is formed in 64 bits: a huge `len` must not wrap past the test.
bool LiesInBlock(uint32_t offset, uint32_t len, uint32_t first)
{
    return offset >= first && offset <= kLastValue && len != 0 &&
           uint64_t{offset} + len <= kBlockEnd;
}

int ReadBlock(const char* operation, const BlockDevice& device, void* data, uint32_t offset,
              uint32_t len)
{
    if (data == nullptr || !LiesInBlock(offset, len, kBlockStart)) return kReadRefused;
    if (!device.isReady()) return kReadRefused;

    Block block{};
    if (device.transfer(device.readRequest, kBlockStart, block.data(), kBlockSize) != 0) {
        LOG_ERROR_AS(operation, "%s read failed,[offset:%d,len:%d]", device.tag,
                     static_cast<int>(offset), static_cast<int>(len));
        return kReadFailed;
    }
    if (!HasRightSum(block)) {
        LOG_ERROR_AS(operation, "crc check failed!");
        return kReadCorrupt;
    }
    memcpy(data, &block[offset - kBlockStart], len);
    return 0;
}

bool WriteBlock(const BlockDevice& device, Block* block)
{
    RenewSum(block);
    return device.transfer(device.writeRequest, kBlockStart, block->data(), kBlockSize) == 0;
}

bool PatchBlock(const char* operation, const BlockDevice& device, const void* data, uint32_t offset,
                uint32_t len)
{
    if (data == nullptr || !LiesInBlock(offset, len, kValuesStart)) return false;
    if (!device.isReady()) return false;

    Block block{};
    if (device.read(block.data(), kBlockStart, kBlockSize) != 0) {
        LOG_ERROR_AS(operation, "read %s error.", device.tag);
        return false;
    }
    memcpy(&block[offset - kBlockStart], data, len);
    if (WriteBlock(device, &block)) return true;

    LOG_ERROR_AS(operation, "%s write failed,[offset:%d,len:%d]", device.tag,
                 static_cast<int>(offset), static_cast<int>(len));
    return false;
}

bool ResetBlock(const char* operation, const BlockDevice& device)
{
    if (!device.isReady()) return false;

    Block block{};
    if (WriteBlock(device, &block)) return true;

    LOG_ERROR_AS(operation, "%s", device.resetFailed);
    return false;
}

/// Whether the device is open is not asked here: the driver refuses then.
unsigned char GetMark(const char* operation, const BlockDevice& device)
{
    unsigned char mark = kNoReset;
    if (device.transfer(device.readRequest, kMarkPlace, &mark, sizeof(mark)) == 0) return mark;

    LOG_ERROR_AS(operation, "%s", device.getMarkFailed);
    return kNoReset;
}

bool SetMark(const char* operation, const BlockDevice& device, unsigned char mark)
{
    if (device.transfer(device.writeRequest, kMarkPlace, &mark, sizeof(mark)) == 0) return true;

    LOG_ERROR_AS(operation, "%s", device.setMarkFailed);
    return false;
}

// ---- detection

bool OpenDevice(const char* node)
{
    if (sramfd >= 0) return true;

    sramfd = open(node, O_RDWR);
    if (sramfd < 0) return false;

    KeepFromChildren(sramfd);
    return true;
}

void AskForCmos()
{
    CmosCaps caps{};
    if (CMOSGetCaps(&caps) < 0) {
        LOG_ERROR_AS("CheckDeviceType", "get cmos caps error!");
        return;
    }
    const uint32_t start = caps.UseTable[CMOS_USE_NETWORK_START];
    const uint32_t end = caps.UseTable[CMOS_USE_NETWORK_END];
    cmosOffset = start;
    // An end far below the start wraps round, and is limited like one far above it.
    cmosLen = std::min<uint32_t>(end - start + 1, sizeof(CmosData));
    LOG_INFO_AS("CheckDeviceType", "cmos offset is %d, len is %d", static_cast<int>(cmosOffset),
                static_cast<int>(cmosLen));
}

void CreateSramFile()
{
    SramFileParam param{};
    param.sramHandle = nullptr;
    param.fileName = kSramFile;
    param.period = RTC_SRAM_EXITTIME_WFREQ;
    param.mode = PDI_SRAM_FILE_DDR;
    param.markLen = RTC_SRAM_MARK_LEN;
    param.totalLen = kSramTotalLen;
    if (ioctl(sramfd, PDC_SRAMFILE_CREATE, &param) != 0) {
        LOG_ERROR_AS("CheckDeviceType", "creat sramfile failed");
        return;
    }
    sramHandle = param.sramHandle;
}

/// Every operation of the record begins here.
void KnowDevice()
{
    if (deviceType == DEVICETYPE_UNKNOW) CheckDeviceType();
}

// ---- CMOS

bool CmosIsUsable()
{
    return cmosOffset != 0 && cmosLen >= kLeastCmosLen;
}

int32_t ReadRecord(CmosData* record)
{
    return CMOSRead(static_cast<int32_t>(cmosOffset), record, static_cast<int32_t>(cmosLen));
}

int32_t WriteRecord(CmosData* record)
{
    return CMOSWrite(static_cast<int32_t>(cmosOffset), record, static_cast<int32_t>(cmosLen));
}

bool ReadCmosFor(const char* operation, CmosData* record)
{
    if (ReadFromCmos(record)) return true;

    LOG_ERROR_AS(operation, "read from cmoe error.");
    return false;
}

// ---- the three values of eth0

/// Where a value lies in each memory. On RTC and SRAM all of them travel whole.
struct Value {
    uint32_t place;
    void (*store)(CmosData* record, uint32_t value);
    uint32_t (*load)(const CmosData& record);
    bool isBitCount;  // on CMOS
    const char* isZero;
};

void StoreAddress(CmosData* record, uint32_t value)
{
    record->uiIP = value;
}

uint32_t LoadAddress(const CmosData& record)
{
    return record.uiIP;
}

void StoreGateway(CmosData* record, uint32_t value)
{
    record->uiGateway = value;
}

uint32_t LoadGateway(const CmosData& record)
{
    return record.uiGateway;
}

/// On CMOS a mask is a number of bits.
void StoreMask(CmosData* record, uint32_t value)
{
    record->NetMask = static_cast<uint8_t>(__builtin_popcount(value));
}

/// No bits give the same mask as 32: the count of the shift is taken modulo 32.
uint32_t LoadMask(const CmosData& record)
{
    return htonl(~uint32_t{0} << ((kMaskBits - record.NetMask) % kMaskBits));
}

constexpr Value kAddress = {RTC_SRAM_ETHIP, StoreAddress, LoadAddress, false, "ip is zero."};
constexpr Value kMask = {RTC_SRAM_ETHMASK, StoreMask, LoadMask, true, "mask is 0."};
constexpr Value kGateway = {RTC_SRAM_ETHGATEWAY, StoreGateway, LoadGateway, false, "gateway is 0."};

bool BackupOnCmos(const char* operation, const Value& which, uint32_t value)
{
    CmosData record{};
    if (!ReadCmosFor(operation, &record)) return false;

    which.store(&record, value);
    return WriteToCmos(&record);
}

bool RestoreFromCmos(const char* operation, const Value& which, uint32_t* value)
{
    CmosData record{};
    if (!ReadCmosFor(operation, &record)) return false;

    if (which.isBitCount && record.NetMask > kMaskBits) {
        LOG_ERROR_AS(operation, "NetMask > 32");
        return false;
    }
    *value = which.load(record);
    return true;
}

bool RestoreFromBlock(const char* operation, const Value& which, uint32_t* value)
{
    const BlockDevice& device = Device();
    if (device.read(value, which.place, sizeof(*value)) == 0) return true;

    LOG_ERROR_AS(operation, "read from %s error", device.tag);
    return false;
}

bool BackupValue(const char* operation, const Value& which, const char* name, const char* addr)
{
    KnowDevice();
    if (name == nullptr || addr == nullptr || !Equal(name, kFirstCard)) return false;

    in_addr address{};
    if (!ParseLooseIPv4(addr, &address)) {
        LOG_ERROR_AS(operation, "addr[%s] is not correct.", addr);
        return false;
    }
    if (deviceType == DEVICETYPE_DVR) return BackupOnCmos(operation, which, address.s_addr);

    return Device().write(&address.s_addr, which.place, sizeof(address.s_addr));
}

bool RestoreValue(const char* operation, const Value& which, const char* name, char* addr)
{
    KnowDevice();
    if (name == nullptr || addr == nullptr || !Equal(name, kFirstCard)) return false;

    uint32_t value = 0;
    const bool read = deviceType == DEVICETYPE_DVR ? RestoreFromCmos(operation, which, &value)
                                                   : RestoreFromBlock(operation, which, &value);
    if (!read) return false;

    if (value == 0) {
        LOG_ERROR_AS(operation, "%s", which.isZero);
        return false;
    }
    if (PrintIPv4(value, addr)) return true;

    LOG_ERROR_AS(operation, "inet_ntop error.");
    return false;
}

// ---- reset marks

bool CheckCmosMark()
{
    const unsigned char mark = GetCmosResetMark();
    if (mark != kBeenReset) return false;

    LOG_INFO_AS("CheckBeenReset", "read from cmos reset flag %x, reset net.", mark);
    (void)SetCmosResetMark(kNoReset);  // a mark that stays is told of once more
    return true;
}

/// Any other mark than the announced one says that the memory lost its contents. When the settings
/// stand, the network is as it was; when they do not, the flash is new.
bool MeansReset(unsigned char mark)
{
    if (mark == kBeenReset) return true;

    if (FileExists(kFirstCardFile)) {
        LOG_WARN_AS("CheckBeenReset", "CMOS has no electric");
        return false;
    }
    LOG_INFO_AS("CheckBeenReset", "May be the first burn flash");
    return true;
}

}  // namespace

}  // namespace vorlix

using namespace vorlix;

// ==== Devices ====

// Weak here and not in the header, where it would make a provider's own definitions weak too.
#define STAND_IN __attribute__((weak))
#define STAND_IN_RESULT                                                                            \
    (LOG_ERROR("Linked in week function!!! __attribute__((weak)) %s", __func__), -1)

STAND_IN int32_t CMOSRead(int32_t, void*, int32_t)
{
    return STAND_IN_RESULT;
}

STAND_IN int32_t CMOSWrite(int32_t, void*, int32_t)
{
    return STAND_IN_RESULT;
}

STAND_IN int32_t CMOSGetCaps(struct CmosCaps*)
{
    return STAND_IN_RESULT;
}

STAND_IN int32_t CMOSRead_SYS(int32_t, void*, int32_t)
{
    return STAND_IN_RESULT;
}

STAND_IN int32_t CMOSWrite_SYS(int32_t, void*, int32_t)
{
    return STAND_IN_RESULT;
}

STAND_IN int32_t CMOSGetCaps_SYS(CmosCaps_Sys_t*)
{
    return STAND_IN_RESULT;
}

int32_t readCmos(int32_t offset, void* buffer, int32_t length)
{
    return CMOSRead(offset, buffer, length);
}

int32_t writeCmos(int32_t offset, void* buffer, int32_t length)
{
    return CMOSWrite(offset, buffer, length);
}

int32_t getCmosCaps(struct CmosCaps* caps)
{
    return CMOSGetCaps(caps);
}

void CheckDeviceType()
{
    if (!FileExists(kSramNode) && !FileExists(kRtcNode)) {
        deviceType = DEVICETYPE_DVR;
        LOG_INFO(" not exist. this is DVR.");
        AskForCmos();
        return;
    }
    deviceType = DEVICETYPE_IPC;
    LOG_INFO("%s  or %s exist. this is IPC.", kSramNode, kRtcNode);

    isRTCExist = FileExists(kRtcNode);
    if (isRTCExist) {
        LOG_INFO("RTC exist, use RTC to backup.");
        if (OpenDevice(kRtcNode)) return;

        LOG_ERROR("can not open %s", kRtcNode);
        isRTCExist = false;
    }
    if (!OpenDevice(kSramNode)) {
        LOG_ERROR("can not open %s ", kSramNode);
        return;
    }
    CreateSramFile();
}

int ReadFromSram(void* data, uint32_t offset, uint32_t len)
{
    return ReadBlock(__func__, kSram, data, offset, len);
}

bool WriteToSram(const void* data, uint32_t offset, uint32_t len)
{
    return PatchBlock(__func__, kSram, data, offset, len);
}

bool ResetSram()
{
    return ResetBlock(__func__, kSram);
}

int ReadFromRTC(void* data, uint32_t offset, uint32_t len)
{
    return ReadBlock(__func__, kRtc, data, offset, len);
}

bool WriteToRTC(const void* data, uint32_t offset, uint32_t len)
{
    return PatchBlock(__func__, kRtc, data, offset, len);
}

bool ResetRTC()
{
    return ResetBlock(__func__, kRtc);
}

bool ReadFromCmos(CmosData* cmosData)
{
    if (cmosData == nullptr || !CmosIsUsable()) return false;

    if (ReadRecord(cmosData) != 0) {
        LOG_ERROR("read from cmos error.");
        return false;
    }
    if (cmosData->Flag != kCmosFlag) {
        LOG_ERROR("cmos verify flag error. must update lanrise!!");
        return false;
    }
    if (cmosLen < sizeof(CmosData)) {
        LOG_INFO("Cmos size %d, no crc check and reset flag", static_cast<int>(cmosLen));
        return true;
    }
    if (SumOfRecord(*cmosData) != cmosData->reserved[0]) {
        LOG_ERROR("crc check error.");
        return false;
    }
    return true;
}

bool WriteToCmos(CmosData* cmosData)
{
    if (cmosData == nullptr || !CmosIsUsable()) return false;

    cmosData->reserved[0] = SumOfRecord(*cmosData);
    return WriteRecord(cmosData) == 0;
}

// ==== Check sums ====

unsigned char crc8(const unsigned char* buf, unsigned int len)
{
    constexpr unsigned kPolynomial = 0x8C;  // reflected
    if (buf == nullptr) {
        LOG_ERROR("crc8 nvalid parameters\n");
        return 0;
    }
    unsigned value = 0;
    for (unsigned i = 0; i < len; ++i) {
        value ^= buf[i];
        for (int bit = 0; bit < 8; ++bit) {
            value = (value & 1U) != 0 ? (value >> 1U) ^ kPolynomial : value >> 1U;
        }
    }
    return static_cast<unsigned char>(value);
}

uint32_t CRCCalcu(const void* data, uint32_t len)
{
    if (data == nullptr || len == 0) return 0;

    const auto* bytes = static_cast<const unsigned char*>(data);
    uint32_t value = ~uint32_t{0};
    for (uint32_t i = 0; i < len; ++i) {
        value = crc32_table[(value ^ bytes[i]) & 0xFFU] ^ (value >> 8U);
    }
    return ~value;
}

// ==== Record ====

bool BackupIP(const char* name, const char* addr)
{
    return BackupValue(__func__, kAddress, name, addr);
}

bool RestoreIP(const char* name, char* addr)
{
    return RestoreValue(__func__, kAddress, name, addr);
}

bool BackupMask(const char* name, const char* addr)
{
    return BackupValue(__func__, kMask, name, addr);
}

bool RestoreMask(const char* name, char* addr)
{
    return RestoreValue(__func__, kMask, name, addr);
}

bool BackupGateway(const char* name, const char* addr)
{
    return BackupValue(__func__, kGateway, name, addr);
}

bool RestoreGateway(const char* name, char* addr)
{
    return RestoreValue(__func__, kGateway, name, addr);
}

bool BackupMode(char* name, char mode)
{
    KnowDevice();
    if (name == nullptr || !IsDigit(mode) || deviceType != DEVICETYPE_DVR) return false;

    CmosData record{};
    if (!ReadCmosFor(__func__, &record)) return false;

    record.Mode = (mode - '0') & kModeBits;
    return WriteToCmos(&record);
}

bool RestoreMode(char* name, char* mode)
{
    KnowDevice();
    if (name == nullptr || mode == nullptr || deviceType != DEVICETYPE_DVR) return false;

    CmosData record{};
    if (!ReadCmosFor(__func__, &record)) return false;

    *mode = static_cast<char>('0' + record.Mode);
    return true;
}

bool BackupPrio(char* name, char prio)
{
    KnowDevice();
    if (name == nullptr || deviceType != DEVICETYPE_DVR) return false;

    CmosData record{};
    if (!ReadCmosFor(__func__, &record)) return false;

    record.Prio = prio != 0 ? 1 : 0;
    return WriteToCmos(&record);
}

bool RestorePrio(char* name, char* prio)
{
    KnowDevice();
    if (name == nullptr || prio == nullptr || deviceType != DEVICETYPE_DVR) return false;

    CmosData record{};
    if (!ReadCmosFor(__func__, &record)) return false;

    *prio = static_cast<char>(record.Prio);
    return true;
}

// ==== Reset marks ====

unsigned char GetCmosResetMark()
{
    KnowDevice();
    CmosData record{};
    (void)ReadFromCmos(&record);  // the mark lies outside what is verified
    return record.reserved[1];
}

bool SetCmosResetMark(unsigned char mark)
{
    KnowDevice();
    CmosData record{};
    if (!ReadFromCmos(&record)) LOG_ERROR("read from cmos for reset flag failed.");

    record.reserved[1] = mark;
    if (WriteToCmos(&record)) return true;

    LOG_ERROR("write cmos reset flag failed!");
    return false;
}

bool setBeenResetFlag()
{
    KnowDevice();
    if (deviceType != DEVICETYPE_DVR) return true;
    if (SetCmosResetMark(kBeenReset)) return true;

    LOG_ERROR("set been reset flag failed.");
    return false;
}

unsigned char GetSramMark()
{
    KnowDevice();
    return GetMark(__func__, kSram);
}

unsigned char GetRTCMark()
{
    KnowDevice();
    return GetMark(__func__, kRtc);
}

bool SetSramMark(unsigned char mark)
{
    KnowDevice();
    return SetMark(__func__, kSram, mark);
}

bool SetRTCMark(unsigned char mark)
{
    KnowDevice();
    return SetMark(__func__, kRtc, mark);
}

bool CheckBeenReset()
{
    KnowDevice();
    if (deviceType == DEVICETYPE_DVR) return CheckCmosMark();

    const BlockDevice& device = Device();
    const unsigned char mark = device.getMark();
    if (mark == kNoReset) return false;

    const bool reset = MeansReset(mark);
    (void)device.setMark(kNoReset);  // a mark that stays is told of once more
    return reset;
}

bool NetCheckBeenReset()
{
    return CheckBeenReset();
}

bool CheckCrc()
{
    KnowDevice();
    CmosData record{};
    if (deviceType == DEVICETYPE_DVR) return ReadFromCmos(&record);

    uint32_t gateway = 0;
    if (Device().read(&gateway, kLastValue, sizeof(gateway)) != kReadCorrupt) return true;

    LOG_ERROR("crc error .");
    return false;
}

bool RestBackup()
{
    KnowDevice();
    LOG_WARN("try to reset the backup memory! All the backup info will lost.");
    CmosData record{};
    if (deviceType == DEVICETYPE_DVR) return WriteToCmos(&record);

    const BlockDevice& device = Device();
    if (device.reset()) return true;

    LOG_ERROR("%s", device.resetError);
    return false;
}

bool setCmosVerifyFlag()
{
    KnowDevice();
    if (deviceType != DEVICETYPE_DVR) return true;

    CmosData record{};
    // Not `ReadFromCmos`: the flag that it asks for may be wrong just now.
    if (ReadRecord(&record) != 0) {
        LOG_ERROR("read original cmos massage failed.");
        return false;
    }
    record.Flag = kCmosFlag;
    // Not `WriteToCmos`: a wrong check byte must stay wrong.
    if (WriteRecord(&record) != 0) {
        LOG_ERROR("write cmos reset flag failed!");
        return false;
    }
    return true;
}
