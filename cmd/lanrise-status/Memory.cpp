// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The backup memory. Which one the device has is decided as the library does; then it is read
// without anything that its operations do besides: no SRAM file is made in the driver, no record is
// repaired, no mark is cleared.

#include "Backup.h"
#include "Read.h"
#include "Support/Handles.h"
#include "Support/KeyFile.h"
#include "Support/Text.h"

#include <algorithm>

#include <arpa/inet.h>
#include <sys/ioctl.h>

using namespace vorlix;

namespace status {

namespace {

constexpr char kRtcNode[] = "/dev/pdcRtc";
constexpr char kSramNode[] = "/dev/pdcSramFile";
constexpr char kSramFile[] = "/mnt/mtd/RtcSramFile";

constexpr unsigned kBlockSize = 1 + 16;  // the mark, and the block behind it
constexpr unsigned kSummed = 12;
constexpr unsigned kCmosCrcBytes = 9;
constexpr uint8_t kCmosFlag = 0xA;
constexpr uint32_t kLeastCmos = 2;
constexpr unsigned kMaskBits = 32;

// ---- the block of RTC and SRAM

uint32_t WordAt(const unsigned char* block, unsigned place)
{
    uint32_t word = 0;
    memcpy(&word, block + (place - RTC_SRAM_IPRESET), sizeof(word));
    return word;
}

IPv4 Known(uint32_t address, uint32_t mask, uint32_t gateway)
{
    IPv4 ipv4;
    ipv4.hasAddress = address != 0 && mask != 0;
    ipv4.hasGateway = gateway != 0;
    // A mask of 0 is not restored, nor what stands behind it: such an address is taken as it is.
    ipv4.isUsable = address != 0 && ((address ^ gateway) & mask) == 0;
    ipv4.address = address;
    ipv4.mask = mask;
    ipv4.gateway = gateway;
    return ipv4;
}

void TakeBlock(const unsigned char* block, Backup* backup)
{
    backup->mark = block[0];
    const unsigned char* values = block + (RTC_SRAM_ETHIP - RTC_SRAM_IPRESET);
    if (CRCCalcu(values, kSummed) != WordAt(block, RTC_SRAM_ETHCRC)) {
        backup->state = MemoryState::Corrupt;
        return;
    }
    backup->state = MemoryState::Good;
    backup->ipv4 = Known(WordAt(block, RTC_SRAM_ETHIP), WordAt(block, RTC_SRAM_ETHMASK),
                         WordAt(block, RTC_SRAM_ETHGATEWAY));
}

// ---- RTC

bool ReadRtc(int rtc, unsigned char* block)
{
    RTCData data{};
    data.addr = RTC_SRAM_IPRESET;
    data.len = 1;
    data.pBuf = block;
    if (ioctl(rtc, PDC_RTC_READSRAM, &data) != 0) return false;

    data.addr = RTC_SRAM_ETHCRC;
    data.len = kBlockSize - 1;
    data.pBuf = block + 1;
    return ioctl(rtc, PDC_RTC_READSRAM, &data) == 0;
}

/// @return false when there is no way to the clock: its place is taken by the SRAM then
bool ReadRtc(Backup* backup)
{
    backup->kind = MemoryKind::Rtc;
    const Fd rtc(open(kRtcNode, O_RDONLY | O_CLOEXEC));
    if (!rtc.Ok()) {
        const bool forbidden = errno == EACCES || errno == EPERM;
        if (forbidden) backup->state = MemoryState::Forbidden;
        return forbidden;
    }
    unsigned char block[kBlockSize] = {};
    if (ReadRtc(rtc.Get(), block)) TakeBlock(block, backup);
    return true;
}

// ---- SRAM

/// The driver gives its memory to who makes a file in it: that is left to those who may change
/// something. The file behind it, which the driver writes from time to time, is believed only when
/// its check sum is right.
void ReadSram(Backup* backup)
{
    backup->kind = MemoryKind::Sram;
    backup->state = MemoryState::NotLookedAt;
    const Fd file(open(kSramFile, O_RDONLY | O_CLOEXEC));
    unsigned char block[kBlockSize] = {};
    if (!file.Ok() || pread(file.Get(), block, sizeof(block), RTC_SRAM_IPRESET) != kBlockSize)
        return;

    TakeBlock(block, backup);
    if (backup->state != MemoryState::Good) backup->state = MemoryState::NotLookedAt;
}

// ---- CMOS

/// No bits mean all bits, as a restored mask has it.
uint32_t MaskOf(unsigned bits)
{
    return htonl(~uint32_t{0} << ((kMaskBits - bits) % kMaskBits));
}

void TakeRecord(const CmosData& record, uint32_t length, Backup* backup)
{
    backup->mark = record.reserved[1];
    if (record.Flag != kCmosFlag) {
        backup->state = MemoryState::Unflagged;
        return;
    }
    const auto* bytes = reinterpret_cast<const unsigned char*>(&record);
    if (length >= sizeof(record) && crc8(bytes, kCmosCrcBytes) != record.reserved[0]) {
        backup->state = MemoryState::Corrupt;
        return;
    }
    backup->state = MemoryState::Good;
    const uint32_t mask = record.NetMask > kMaskBits ? 0 : MaskOf(record.NetMask);
    backup->ipv4 = Known(record.uiIP, mask, record.uiGateway);
}

void ReadCmos(Backup* backup)
{
    CmosCaps caps{};
    if (CMOSGetCaps(&caps) < 0) return;

    const uint32_t start = caps.UseTable[CMOS_USE_NETWORK_START];
    const uint32_t end = caps.UseTable[CMOS_USE_NETWORK_END];
    const uint32_t length = std::min<uint32_t>(end - start + 1, sizeof(CmosData));
    if (start == 0 || length < kLeastCmos) return;

    backup->kind = MemoryKind::Cmos;
    CmosData record{};
    if (CMOSRead(static_cast<int32_t>(start), &record, static_cast<int32_t>(length)) == 0) {
        TakeRecord(record, length, backup);
    }
}

}  // namespace

Backup ReadBackup()
{
    Backup backup;
    const bool hasRtc = FileExists(kRtcNode);
    const bool hasSram = FileExists(kSramNode);
    if (!hasRtc && !hasSram) {
        ReadCmos(&backup);
        return backup;
    }
    const bool isRtc = hasRtc && ReadRtc(&backup);
    if (!isRtc && hasSram) ReadSram(&backup);
    return backup;
}

}  // namespace status
