// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// A backup memory of any content, as a dying battery leaves it: what is given out passed its check
// sum, and what is stored over it comes back.

#include "Fuzz.h"

#include "Backup.h"

#include <cerrno>
#include <cstring>

#include <arpa/inet.h>

namespace {

using Restore = bool (*)(const char*, char*);
using Store = bool (*)(const char*, const char*);

struct Value {
    Restore restore;
    Store store;
};

constexpr Value kValues[] = {
    {RestoreIP, BackupIP}, {RestoreMask, BackupMask}, {RestoreGateway, BackupGateway}};

bool IsAddress(const fuzz::Buffer& text)
{
    in_addr address;
    return text.IsText() && inet_pton(AF_INET, text.Get(), &address) == 1;
}

// ---- devices

enum Device { rtc, sram, cmos, devices };

constexpr size_t kMemorySize = 256;

// The recorder's memory behind its provider, which is defined below.
uint8_t cmosBytes[kMemorySize];
uint8_t cmosStart = 0;
uint8_t cmosEnd = 0;
bool hasCmos = false;

bool IsInCmos(int32_t offset, int32_t length)
{
    return offset >= 0 && length >= 0 &&
           static_cast<size_t>(offset) + static_cast<size_t>(length) <= kMemorySize;
}

void Fit(Device device, const std::string& bytes)
{
    fuzz::Remove("/dev/pdcRtc");
    fuzz::Remove("/dev/pdcSramFile");
    if (device == rtc) fuzz::Put("/dev/pdcRtc", "");
    if (device == sram) fuzz::Put("/dev/pdcSramFile", "");
    hasCmos = device == cmos;
    uint8_t* memory = device == rtc    ? fake::kernel.rtc.bytes
                      : device == sram ? fake::kernel.sram.bytes
                                       : cmosBytes;
    memset(memory, 0, kMemorySize);
    memcpy(memory, bytes.data(), std::min(bytes.size(), kMemorySize));
}

// ---- properties

void GivesOutAddresses()
{
    for (const Value& value : kValues) {
        const fuzz::Buffer text(16);
        HOLDS(value.restore("eth0", text.Get()) ? IsAddress(text) : text.IsUntouched());
    }
    unsigned char record[12];
    (void)GetSramMark();
    (void)GetRTCMark();
    (void)ReadFromRTC(record, RTC_SRAM_ETHIP, sizeof(record));
    (void)ReadFromSram(record, RTC_SRAM_ETHIP, sizeof(record));
}

/// Any part of a memory may be asked for: nothing behind the record is written.
void KeepsToTheRecord(uint32_t offset, uint32_t length)
{
    const fuzz::Buffer record(size_t{length});
    (void)ReadFromRTC(record.Get(), offset, length);
    (void)ReadFromSram(record.Get(), offset, length);
    HOLDS(ReadFromRTC(record.Get(), UINT32_MAX, length) <= 0);
    HOLDS(ReadFromRTC(record.Get(), offset, UINT32_MAX) <= 0);
}

void KeepsWhatIsStored(const std::string& address, bool mayStore)
{
    for (const Value& value : kValues) {
        const char* text = value.store == BackupMask ? "255.255.240.0" : address.c_str();
        const bool stored = value.store("eth0", text);
        HOLDS(stored == mayStore);
        if (!stored) continue;
        char back[16];
        HOLDS(value.restore("eth0", back) && strcmp(back, text) == 0);
    }
}

/// A caller's mistakes: each is refused. Asked once, by the empty input.
void RefusesMistakes()
{
    char text[16];
    unsigned char byte = 0;
    HOLDS(!RestoreIP(nullptr, text));
    HOLDS(!RestoreIP("eth0", nullptr));
    HOLDS(!RestoreIP("eth1", text));
    HOLDS(ReadFromRTC(nullptr, RTC_SRAM_ETHIP, 4) <= 0);
    HOLDS(crc8(nullptr, 1) == 0);
    HOLDS(CRCCalcu(nullptr, 1) == 0 && CRCCalcu(&byte, 0) == 0);
}

}  // namespace

// ---- the provider

extern "C" {

int32_t CMOSGetCaps(CmosCaps* caps)
{
    if (!hasCmos) return -1;
    *caps = {};
    caps->CmosSize = kMemorySize;
    caps->UseTable[CMOS_USE_NETWORK_START] = cmosStart;
    caps->UseTable[CMOS_USE_NETWORK_END] = cmosEnd;
    return 0;
}

int32_t CMOSRead(int32_t offset, void* buffer, int32_t length)
{
    if (!IsInCmos(offset, length)) return -1;
    memcpy(buffer, cmosBytes + offset, static_cast<size_t>(length));
    return 0;
}

int32_t CMOSWrite(int32_t offset, void* buffer, int32_t length)
{
    if (!IsInCmos(offset, length)) return -1;
    memcpy(cmosBytes + offset, buffer, static_cast<size_t>(length));
    return 0;
}

}  // extern "C"

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzz::Input input(data, size);
    const auto device = static_cast<Device>(input.Below(devices));
    const uint8_t choice = input.Byte();
    const bool reset = (choice & 1) != 0;
    const bool broken = choice >= 250;  // the driver refuses all
    const std::string address = fuzz::Address(input);
    cmosStart = input.Byte();
    cmosEnd = input.Byte();
    fuzz::FreshWorld();
    Fit(device, input.Rest());
    CheckDeviceType();
    if (size == 0) RefusesMistakes();

    if (broken) fuzz::FailRequests(EIO);
    GivesOutAddresses();
    KeepsToTheRecord(cmosStart, cmosEnd);
    if (broken) return 0;
    const bool intact = CheckCrc();
    const bool wasReset = reset && RestBackup();
    HOLDS(wasReset == reset || device == cmos);
    if (device != cmos) KeepsWhatIsStored(address, intact || reset);
    HOLDS(fuzz::HeldMutexes() == 0);
    return 0;
}
