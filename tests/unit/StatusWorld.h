// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// What lanrise-status sees of a device in the unit ring: interfaces that a test names, and the
// files and backup memory of the fake.

#include "Findings.h"
#include "LanriseWorld.h"
#include "Read.h"

#include "Base.h"

#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace fake {

using Sentences = std::vector<std::string>;

/// The record of a device with these interfaces, which the kernel knows and has down.
inline std::unique_ptr<status::Device> Look(const std::vector<std::string>& names)
{
    auto device = std::make_unique<status::Device>();
    int index = 1;
    for (const std::string& name : names) {
        if (kernel.Find(name) == nullptr) kernel.Add(name);
        status::Interface* entry = status::Enter(device.get(), name.c_str());
        entry->isCounted = true;
        entry->switchMode = isSwitchByName(name.c_str());
        entry->live.present = true;
        entry->live.index = ++index;
        entry->live.mtu = 1500;
        strcat(device->present, (name + ",").c_str());
    }
    status::ReadSettings(device.get());
    device->backup = status::ReadBackup();
    return device;
}

inline Sentences Said(const status::Findings& findings)
{
    Sentences texts;
    for (int i = 0; i < findings.count; ++i) {
        const std::string name = findings.list[i].name;
        texts.push_back((name.empty() ? "device" : name) + ": " + findings.list[i].text);
    }
    return texts;
}

inline Sentences Repairs(const status::Device& device)
{
    auto findings = std::make_unique<status::Findings>();
    status::Foretell(device, findings.get());
    return Said(*findings);
}

inline Sentences Differences(const status::Device& device)
{
    auto findings = std::make_unique<status::Findings>();
    status::Compare(device, findings.get());
    return Said(*findings);
}

/// Settings of a card that a boot leaves as they are.
inline std::vector<std::string> Healthy(int net, const std::vector<std::string>& more = {})
{
    const std::string start = "10.0." + std::to_string(net);
    std::vector<std::string> lines = {"HOSTIP = " + start + ".10", "SUBMASK = 255.255.255.0",
                                      "GATEWAYIP = " + start + ".1", "MTU = 1500"};
    lines.insert(lines.end(), more.begin(), more.end());
    return lines;
}

inline void PutHealthyResolvers()
{
    Put("/mnt/mtd/Config/resolv.conf", "nameserver 8.8.8.8\nnameserver 8.8.4.4\n"
                                       "nameserver 2001:db8::1\nnameserver 2001:db8::2\n");
}

}  // namespace fake
