// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// The device of the tests of single cards, and what changes its stores.

#include "Backup.h"

#include "MemberNames.h"
#include "fake/World.h"

#include <algorithm>

namespace fake {

constexpr char kFile0[] = "/mnt/mtd/Config/network";
constexpr char kFile1[] = "/mnt/mtd/Config/network1";

/// A camera with two cards, a wireless one and an RTC that keeps the backup.
class InterfaceWorld : public World {
protected:
    void SetUp() override
    {
        World::SetUp();
        kernel.Add("eth0");
        kernel.Add("eth1");
        kernel.Add("wlan0");
        Put("/dev/pdcRtc", "");
        CheckDeviceType();
        EXPECT_TRUE(ResetRTC());
        Begin();
    }

    /// Forgets what the preparation left in the records.
    static void Begin()
    {
        kernel.rtc.requests.clear();
        ClearTrace();
        ClearLog();
    }

    static void KeepInBackup(const char* address, const char* mask, const char* gateway)
    {
        EXPECT_TRUE(address == nullptr || BackupIP("eth0", address));
        EXPECT_TRUE(mask == nullptr || BackupMask("eth0", mask));
        EXPECT_TRUE(gateway == nullptr || BackupGateway("eth0", gateway));
        Begin();
    }

    static std::string Backed(bool (*restore)(const char*, char*))
    {
        char text[16] = "";
        return restore("eth0", text) ? text : "(none)";
    }
};

/// What changes a store: requests to the kernel, rewritten files, writes to the backup.
inline Lines Changes()
{
    Lines changes;
    for (const std::string& call : TraceOf({"ioctl", "fopen"})) {
        const bool writes =
            call.find("SIOCS") != std::string::npos || call.find(" w+") != std::string::npos ||
            call.find("WRITE") != std::string::npos || call.find("0x89F2") != std::string::npos ||
            call.find("RT") == call.size() - 2;
        if (writes) changes.push_back(call);
    }
    return changes;
}

/// The same with the two writes from `place` on in the order of their names: a folder lists its
/// files in no order of its own, and the default card's mark is written in all of them.
inline Lines ChangesSortedAt(size_t place)
{
    Lines changes = Changes();
    if (changes.size() >= place + 2) {
        const auto first = changes.begin() + static_cast<std::ptrdiff_t>(place);
        std::sort(first, first + 2);
    }
    return changes;
}

inline const std::string kWrites0 = std::string("fopen ") + kFile0 + " w+";
inline const std::string kWrites1 = std::string("fopen ") + kFile1 + " w+";
inline const std::string kBacksUp = "ioctl PDC_RTC_WRITESRAM";

inline const std::vector<std::string> kMayStayOpen = {"socket", "open /dev/pdc",
                                                      "open /proc/net/route"};

}  // namespace fake
