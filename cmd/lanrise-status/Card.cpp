// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// All about one interface.

#include "Print.h"
#include "Support/KeyFile.h"
#include "Support/Text.h"

#include <cstdarg>

using namespace vorlix;

namespace status {

namespace {

constexpr int kLabel = 15;
constexpr int kStore = 8;
constexpr const char* kWorkModes[] = {"stands alone", "in a bond", "switch",  "in a bridge",
                                      "VLAN",         "VAP",       "physical"};

__attribute__((format(printf, 3, 4))) void Print(const Screen& screen, const char* label,
                                                 const char* format, ...)
{
    char text[kFindingSize];
    va_list arguments;
    va_start(arguments, format);
    (void)vsnprintf(text, sizeof(text), format, arguments);
    va_end(arguments);
    PrintLine(screen, label, kLabel, text);
}

/// What one store says, beside what the others say.
void PrintStore(const Screen& screen, const char* label, const char* store, const char* text)
{
    char both[kLabel + kStore + 1];
    FormatText(both, sizeof(both), "%-*s%-*s", kLabel, label, kStore - 1, store);
    PrintLine(screen, both, kLabel + kStore, text);
}

void PrintState(const Interface& entry, const Screen& screen)
{
    const Live& live = entry.live;
    if (live.speed > 0) {
        Print(screen, "State", "%s, %d Mbit/s, %s duplex", StateOf(entry), live.speed,
              live.fullDuplex ? "full" : "half");
    } else {
        Print(screen, "State", "%s", StateOf(entry));
    }
    if (!live.present) return;
    Print(screen, "Hardware", "%s, driver %s%s%s", live.mac[0] == '\0' ? "no address" : live.mac,
          live.driver[0] == '\0' ? "not known" : live.driver, live.kind[0] == '\0' ? "" : ", kind ",
          live.kind);
}

void PrintIPv4(const Device& device, const Interface& entry, const Screen& screen)
{
    const bool hasBackup = Equal(entry.name, "eth0") && device.backup.kind != MemoryKind::None;
    char text[kAddressSize];
    PrintAddressOf(entry.live.ipv4, text);
    PrintStore(screen, "Address", "kernel", text);
    if (entry.live.ipv4Count > 1) Print(screen, "", "and %d more", entry.live.ipv4Count - 1);
    PrintAddressOf(entry.saved.ipv4, text);
    PrintStore(screen, "", "file", text);
    PrintAddressOf(device.backup.ipv4, text);
    if (hasBackup) PrintStore(screen, "", "backup", text);

    PrintGatewayOf(entry.live.ipv4, text);
    PrintStore(screen, "Gateway", "kernel", text);
    PrintGatewayOf(entry.saved.ipv4, text);
    PrintStore(screen, "", "file", text);
    PrintGatewayOf(device.backup.ipv4, text);
    if (hasBackup) PrintStore(screen, "", "backup", text);
}

const char* OrDash(const char* text)
{
    return text[0] == '\0' ? "-" : text;
}

void PrintIPv6(const Interface& entry, const Screen& screen)
{
    for (int i = 0; i < entry.live.ipv6Count; ++i) {
        PrintStore(screen, i == 0 ? "IPv6" : "", "kernel", entry.live.ipv6[i]);
    }
    char text[kFindingSize];
    FormatText(text, sizeof(text), "%s, gateway %s", OrDash(entry.saved.ipv6),
               OrDash(entry.saved.gateway6));
    PrintStore(screen, entry.live.ipv6Count == 0 ? "IPv6" : "", "file", text);
}

void PrintMtu(const Interface& entry, const Screen& screen)
{
    char text[kAddressSize];
    FormatText(text, sizeof(text), "%d", entry.live.mtu);
    if (entry.live.present) PrintStore(screen, "MTU", "kernel", text);
    CopyText(text, "-");
    if (entry.saved.mtu > 0) FormatText(text, sizeof(text), "%d", entry.saved.mtu);
    PrintStore(screen, entry.live.present ? "" : "MTU", "file", text);
}

void PrintFile(const Interface& entry, const Screen& screen)
{
    char path[kPathSize] = {};
    (void)GetFileByName(entry.saved.hasOldName ? "2" : entry.name, path, sizeof(path));
    const char* state = "";
    if (entry.saved.file == FileState::Missing) state = ", which is missing";
    if (entry.saved.file == FileState::Unreadable) state = ", which this user may not read";
    Print(screen, "Setting file", "%s%s", path, state);
    const int mode = entry.saved.workMode;
    if (mode >= 0 && mode <= netModePhysical) {
        Print(screen, "Work mode", "%d, %s", mode, kWorkModes[mode]);
    }
}

void PrintMembers(const Device& device, const Interface& entry, const Screen& screen)
{
    char text[kJoinedSize];
    Join(LiveMembers(device, entry), text);
    const char* label = entry.kind == Kind::Bond ? "Members" : "Ports";
    if (entry.live.present) PrintStore(screen, label, "kernel", text);
    Join(entry.saved.members, text);
    PrintStore(screen, entry.live.present ? "" : label, "file", text);
    if (entry.kind == Kind::Bridge) {
        Print(screen, "Spanning tree", "%s", entry.live.spanningTree > 0 ? "on" : "off");
        return;
    }
    char mode[kModeSize];
    PrintMode(entry.live.bondMode, mode);
    if (entry.live.present) PrintStore(screen, "Mode", "kernel", mode);
    PrintMode(entry.saved.bondMode, mode);
    PrintStore(screen, entry.live.present ? "" : "Mode", "file",
               entry.saved.bondMode < 0 ? "-" : mode);
    const Interface* active = FindIndex(device, entry.live.activeSlave);
    Print(screen, "Active link", "%s", active == nullptr ? "none" : active->name);
}

}  // namespace

void PrintCard(const Report& report, const Interface& entry, const Screen& screen)
{
    Begin(screen, Colour::Bold);
    (void)fputs(Shown(entry.name).text, screen.out);
    End(screen, Colour::Bold);
    (void)fputc('\n', screen.out);

    PrintState(entry, screen);
    char role[kRoleSize];
    PrintRole(report.device, entry, role);
    if (role[0] != '\0') Print(screen, "Role", "%s", role);
    PrintIPv4(report.device, entry, screen);
    PrintIPv6(entry, screen);
    PrintMtu(entry, screen);
    if (entry.kind != Kind::Card) PrintMembers(report.device, entry, screen);
    PrintFile(entry, screen);
    if (Equal(entry.name, "eth0")) {
        Print(screen, "Backup memory", "%s", TextOf(report.device.backup));
    }
    PrintFindings(screen, "Differences", report.differences, entry.name);
    PrintFindings(screen, "The next boot repairs", report.repairs, entry.name);
    PrintFindings(screen, "Remarks", report.remarks, entry.name);
}

}  // namespace status
