// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// A backup memory of any content, as a dying battery leaves it: what is given out passed its check
// sum, and what is stored over it comes back.

#include "Fuzz.h"

#include "Backup.h"

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

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzz::Input input(data, size);
    const bool rtc = (input.Byte() & 1) != 0;
    const bool reset = (input.Byte() & 1) != 0;
    const std::string address = fuzz::Address(input);
    const std::string bytes = input.Rest();
    fuzz::FreshWorld();
    fuzz::Remove("/dev/pdcRtc");
    fuzz::Remove("/dev/pdcSramFile");
    fuzz::Put(rtc ? "/dev/pdcRtc" : "/dev/pdcSramFile", "");
    fake::BackupMemory& memory = rtc ? fake::kernel.rtc : fake::kernel.sram;
    memcpy(memory.bytes, bytes.data(), std::min(bytes.size(), sizeof(memory.bytes)));
    CheckDeviceType();

    for (const Value& value : kValues) {
        const fuzz::Buffer text(16);
        HOLDS(value.restore("eth0", text.Get()) ? IsAddress(text) : text.IsUntouched());
    }
    const bool intact = CheckCrc();
    (void)GetSramMark();
    (void)GetRTCMark();

    if (reset) HOLDS(RestBackup());
    for (const Value& value : kValues) {
        const bool stored = value.store("eth0", address.c_str());
        HOLDS(stored == (intact || reset));
        if (!stored) continue;
        char text[16];
        HOLDS(value.restore("eth0", text) && text == address);
    }
    HOLDS(fuzz::HeldMutexes() == 0);
    return 0;
}
