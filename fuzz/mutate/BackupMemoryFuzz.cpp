// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Memories whose check sums are right, or nothing behind the test for them would be seen.

#include "mutate/Mutate.h"

#include "Backup.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr size_t kHead = 8;  // device, reset, address, places of the CMOS
constexpr size_t kBlock = 16;

void RenewBlock(uint8_t* memory)
{
    const uint32_t sum = CRCCalcu(memory + RTC_SRAM_ETHIP, kBlock - sizeof(uint32_t));
    memcpy(memory + RTC_SRAM_ETHCRC, &sum, sizeof(sum));
}

void RenewRecord(uint8_t* record)
{
    record[9] = static_cast<uint8_t>(0xA0U | (record[9] & 0x0FU));
    record[8] %= 34;
    record[10] = crc8(record, 9);
}

}  // namespace

size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t room, unsigned seed)
{
    fuzz::Random random(seed + 1);
    size = fuzz::ChangeBytes(data, size, room);
    if (fuzz::OneIn(random, 4) || room < kHead + 64) return size;

    if (size < kHead + 64) {
        memset(data + size, 0, kHead + 64 - size);
        size = kHead + 64;
    }
    if (data[0] % 3 != 2) {
        RenewBlock(data + kHead);
        return size;
    }
    if (fuzz::OneIn(random, 3)) data[6] = static_cast<uint8_t>(fuzz::Below(random, 44));
    if (fuzz::OneIn(random, 3)) data[7] = static_cast<uint8_t>(data[6] + fuzz::Below(random, 16));
    if (data[6] + size_t{12} <= size - kHead) RenewRecord(data + kHead + data[6]);
    return size;
}
