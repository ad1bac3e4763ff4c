// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// A recorder board with a provider for its CMOS, as the tests see it.

#include "Backup.h"

#include "BackupTwins.h"

#include "fake/Cmos.h"
#include "fake/World.h"

#include <cstring>
#include <string>

// Records: address, gateway, number of mask bits, flags, check byte, reset mark.
constexpr char kZeroRecord[] = "000000000000000000a00000";
constexpr char kFullRecord[] = "c0a8006cc0a8000118a0d500";  // 192.168.0.108/24, 192.168.0.1

/// What lies around the record is filled, so that a byte too many shows.
class RecorderTest : public fake::World {
protected:
    static constexpr uint8_t kStart = 10;

    void SetUp() override
    {
        World::SetUp();
        memset(fake::cmos.bytes, 0xee, sizeof(fake::cmos.bytes));
        PutRecord(kZeroRecord);
    }

    /// Gives the network that many bytes.
    static void PutLength(int length)
    {
        fake::cmos.networkEnd = static_cast<uint8_t>(kStart + length - 1);
    }

    static void PutRecord(const std::string& record) { PutHex(record, fake::cmos.bytes + kStart); }
    static std::string Record() { return Hex(fake::cmos.bytes + kStart, sizeof(CmosData)); }

    /// The whole CMOS with this record in it.
    static std::string Image(const std::string& record)
    {
        uint8_t bytes[256];
        memset(bytes, 0xee, sizeof(bytes));
        PutHex(record, bytes + kStart);
        return Hex(bytes, sizeof(bytes));
    }

    static std::string Image() { return Hex(fake::cmos.bytes, sizeof(fake::cmos.bytes)); }

    /// Asks the provider where the record lies, and forgets what that took.
    static void OpenDevice()
    {
        CheckDeviceType();
        fake::ClearTrace();
        fake::ClearLog();
    }
};
