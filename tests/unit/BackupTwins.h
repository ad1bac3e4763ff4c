// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// The two memories of a camera, as one set of tests sees them: what differs between the RTC and the
// SRAM, and images of their bytes.

#include "Backup.h"

#include "fake/World.h"

#include <string>

/// Hexadecimal text of bytes, two digits each.
inline std::string Hex(const void* bytes, size_t count)
{
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    for (size_t i = 0; i < count; ++i) {
        const auto byte = static_cast<const uint8_t*>(bytes)[i];
        text += kDigits[byte / 16];
        text += kDigits[byte % 16];
    }
    return text;
}

inline void PutHex(const std::string& text, uint8_t* bytes)
{
    for (size_t i = 0; i < text.size() / 2; ++i) {
        bytes[i] = static_cast<uint8_t>(std::stoi(text.substr(2 * i, 2), nullptr, 16));
    }
}

// Blocks: check sum, address, mask, gateway.
constexpr char kZeroBlock[] = "6fc6d57b000000000000000000000000";
constexpr char kFullBlock[] = "9002005cc0a8006cffffff00c0a80001";  // 192.168.0.108/24, 192.168.0.1

struct Twin {
    const char* name;  // in the names of its operations
    const char* tag;   // in its messages
    const char* node;
    fake::BackupMemory fake::Kernel::*memory;
    const char* readRequest;  // in the trace
    const char* writeRequest;

    int (*read)(void* data, uint32_t offset, uint32_t len);
    bool (*write)(const void* data, uint32_t offset, uint32_t len);
    bool (*reset)();
    unsigned char (*getMark)();
    bool (*setMark)(unsigned char mark);

    const char* resetFailed;
    const char* getMarkFailed;
    const char* setMarkFailed;

    std::string Operation(const std::string& start) const { return start + name; }
};

inline void PrintTo(const Twin& twin, std::ostream* out)
{
    *out << twin.name;
}

constexpr Twin kRtcTwin = {"RTC",
                           "rtc",
                           "/dev/pdcRtc",
                           &fake::Kernel::rtc,
                           "ioctl PDC_RTC_READSRAM",
                           "ioctl PDC_RTC_WRITESRAM",
                           ReadFromRTC,
                           WriteToRTC,
                           ResetRTC,
                           GetRTCMark,
                           SetRTCMark,
                           "ResetRTC failed",
                           "get mark from rtc error.",
                           "set mark from rtc error."};

constexpr Twin kSramTwin = {"Sram",
                            "sram",
                            "/dev/pdcSramFile",
                            &fake::Kernel::sram,
                            "ioctl PDC_SRAMFILE_READ",
                            "ioctl PDC_SRAMFILE_WRITE",
                            ReadFromSram,
                            WriteToSram,
                            ResetSram,
                            GetSramMark,
                            SetSramMark,
                            "ResetSram failed.",
                            "get mark from sram error",
                            "set mark from sram error"};

/// A camera with the one memory or the other. What lies around mark and block is filled, so that a
/// byte too many shows.
class TwinTest : public fake::World, public testing::WithParamInterface<Twin> {
protected:
    void SetUp() override
    {
        World::SetUp();
        fake::Put(GetParam().node, "");
        memset(Memory().bytes, 0xee, sizeof(Memory().bytes));
        PutMark(0);
        PutBlock(kZeroBlock);
    }

    static fake::BackupMemory& Memory() { return fake::kernel.*GetParam().memory; }

    static void PutBlock(const std::string& block) { PutHex(block, Memory().bytes + 40); }
    static void PutMark(uint8_t mark) { Memory().bytes[39] = mark; }
    static std::string Block() { return Hex(Memory().bytes + 40, 16); }

    /// The whole memory with this mark and this block in it.
    static std::string Image(uint8_t mark, const std::string& block)
    {
        uint8_t bytes[256];
        memset(bytes, 0xee, sizeof(bytes));
        bytes[39] = mark;
        PutHex(block, bytes + 40);
        return Hex(bytes, sizeof(bytes));
    }

    static std::string Image() { return Hex(Memory().bytes, sizeof(Memory().bytes)); }

    /// Opens the device and forgets what that took.
    static void OpenDevice()
    {
        CheckDeviceType();
        Memory().requests.clear();
        fake::ClearTrace();
        fake::ClearLog();
    }

    static std::vector<std::string> Requests() { return Memory().requests; }
};

#define EACH_TWIN(suite)                                                                           \
    INSTANTIATE_TEST_SUITE_P(On, suite, testing::Values(kRtcTwin, kSramTwin),                      \
                             [](const auto& test) { return std::string(test.param.name); })
