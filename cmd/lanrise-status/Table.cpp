// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The table: one row for an interface whose stores agree, one for each store where they do not.

#include "Print.h"
#include "Support/Text.h"

#include <algorithm>

#include <arpa/inet.h>

using namespace vorlix;

namespace status {

namespace {

enum Column { kCard, kState, kSpeed, kRole, kStore, kAddress, kGateway, kMtu, kColumns };

constexpr const char* kHeads[kColumns] = {"Card",  "State",   "Mbit/s",  "Role",
                                          "Store", "Address", "Gateway", "MTU"};

enum class Store : unsigned char { All, Kernel, File, Backup };

constexpr const char* kStores[] = {"all", "kernel", "file", "backup"};

struct Row {
    char cells[kColumns][kRoleSize] = {};
    Colour colours[kColumns] = {};
};

struct Rows {
    int count = 0;
    Store stores[3] = {};

    void Add(Store store) { stores[count++] = store; }
};

// ---- which rows an interface has

bool SameAddress(const IPv4& left, const IPv4& right)
{
    return left.hasAddress == right.hasAddress && left.address == right.address &&
           left.mask == right.mask;
}

bool HasBackup(const Device& device, const Interface& entry)
{
    return Equal(entry.name, "eth0") && device.backup.kind != MemoryKind::None &&
           device.backup.state == MemoryState::Good;
}

bool AgreesWithBackup(const Device& device, const Interface& entry)
{
    return !HasBackup(device, entry) || (SameAddress(entry.saved.ipv4, device.backup.ipv4) &&
                                         entry.saved.ipv4.gateway == device.backup.ipv4.gateway);
}

bool AgreesWithKernel(const Device& device, const Interface& entry)
{
    const Saved& saved = entry.saved;
    if (!entry.live.present || saved.file != FileState::Read) return false;
    if (!SameAddress(entry.live.ipv4, saved.ipv4)) return false;
    if (saved.mtu > 0 && saved.mtu != entry.live.mtu) return false;
    if (!saved.ipv4.hasAddress) return false;
    return !IsDefault(device, entry) || entry.live.ipv4.gateway == saved.ipv4.gateway;
}

Rows RowsOf(const Device& device, const Interface& entry)
{
    Rows rows;
    if (entry.live.master != 0) {
        rows.Add(Store::Kernel);  // what is saved of a member rests
    } else if (AgreesWithKernel(device, entry) && AgreesWithBackup(device, entry)) {
        rows.Add(Store::All);
    } else {
        if (entry.live.present) rows.Add(Store::Kernel);
        rows.Add(Store::File);
        if (HasBackup(device, entry)) rows.Add(Store::Backup);
    }
    return rows;
}

// ---- what stands in a row

void FillAddress(const IPv4& ipv4, Row* row)
{
    char text[kAddressSize];
    PrintAddressOf(ipv4, text);
    CopyText(row->cells[kAddress], text);
    PrintGatewayOf(ipv4, text);
    CopyText(row->cells[kGateway], text);
}

void FillMtu(int mtu, Row* row)
{
    FormatText(row->cells[kMtu], kRoleSize, "%d", mtu);
    if (mtu <= 0) CopyText(row->cells[kMtu], "-");
}

void FillFile(const Interface& entry, Row* row)
{
    const Saved& saved = entry.saved;
    FillAddress(saved.ipv4, row);
    FillMtu(saved.mtu, row);
    if (saved.file == FileState::Missing) CopyText(row->cells[kAddress], "no file");
    if (saved.file == FileState::Unreadable) CopyText(row->cells[kAddress], "not for this user");
    if (!SameAddress(entry.live.ipv4, saved.ipv4)) row->colours[kAddress] = Colour::Bad;
    if (saved.mtu != entry.live.mtu) row->colours[kMtu] = Colour::Bad;
}

void FillStore(const Device& device, const Interface& entry, Store store, Row* row)
{
    CopyText(row->cells[kStore], kStores[static_cast<int>(store)]);
    switch (store) {
    case Store::Kernel:
        FillAddress(entry.live.ipv4, row);
        FillMtu(entry.live.mtu, row);
        break;
    case Store::Backup:
        FillAddress(device.backup.ipv4, row);
        if (!AgreesWithBackup(device, entry)) row->colours[kAddress] = Colour::Bad;
        break;
    case Store::All:
        FillAddress(entry.saved.ipv4, row);
        FillMtu(entry.live.mtu, row);
        break;
    default: FillFile(entry, row); break;
    }
}

void FillInterface(const Device& device, const Interface& entry, Row* row)
{
    CopyText(row->cells[kCard], Shown(entry.name).text);
    CopyText(row->cells[kState], StateOf(entry));
    const bool isUp = entry.live.up && entry.live.link;
    row->colours[kState] = isUp ? Colour::Good : Colour::Bad;
    CopyText(row->cells[kSpeed], "-");
    if (entry.live.speed > 0) {
        FormatText(row->cells[kSpeed], kRoleSize, "%d", entry.live.speed);
    }
    char role[kRoleSize];
    PrintRole(device, entry, role);
    CopyText(row->cells[kRole], Shown(role).text);
}

Row MakeRow(const Device& device, const Interface& entry, const Rows& rows, int place)
{
    Row row;
    if (place == 0) FillInterface(device, entry, &row);
    FillStore(device, entry, rows.stores[place], &row);
    return row;
}

/// Calls `use` for each row of the table.
template <class Use>
void ForEachRow(const Device& device, Use use)
{
    for (int i = 0; i < device.count; ++i) {
        const Interface& entry = device.list[i];
        const Rows rows = RowsOf(device, entry);
        for (int place = 0; place < rows.count; ++place) {
            use(entry, place, MakeRow(device, entry, rows, place));
        }
    }
}

// ---- columns

struct Widths {
    int columns[kColumns];
    int gap = 2;
};

int WidthOf(const char* text)
{
    return static_cast<int>(strlen(text));
}

/// @return false when the rows are wider than the screen
bool Measure(const Device& device, const Screen& screen, Widths* widths)
{
    for (int column = 0; column < kColumns; ++column) {
        widths->columns[column] = WidthOf(kHeads[column]);
    }
    ForEachRow(device, [widths](const Interface&, int, const Row& row) {
        for (int column = 0; column < kColumns; ++column) {
            int& width = widths->columns[column];
            width = std::max(width, WidthOf(row.cells[column]));
        }
    });
    int sum = 0;
    for (const int width : widths->columns) sum += width;
    widths->gap = sum + 2 * (kColumns - 1) <= screen.columns ? 2 : 1;
    return sum + widths->gap * (kColumns - 1) <= screen.columns;
}

void PrintCells(const Screen& screen, const Widths& widths, const Row& row)
{
    int last = kColumns - 1;
    while (last > 0 && row.cells[last][0] == '\0') --last;
    for (int column = 0; column <= last; ++column) {
        const char* cell = row.cells[column];
        const int rest = widths.columns[column] - WidthOf(cell) + widths.gap;
        Begin(screen, row.colours[column]);
        (void)fputs(cell, screen.out);
        End(screen, row.colours[column]);
        if (column < last) (void)fprintf(screen.out, "%*s", rest, "");
    }
    (void)fputc('\n', screen.out);
}

void PrintWide(const Device& device, const Screen& screen, const Widths& widths)
{
    Row head;
    for (int column = 0; column < kColumns; ++column) {
        CopyText(head.cells[column], kHeads[column]);
        head.colours[column] = Colour::Bold;
    }
    PrintCells(screen, widths, head);
    ForEachRow(device, [&screen, &widths](const Interface&, int, const Row& row) {
        PrintCells(screen, widths, row);
    });
}

void PrintHeadOf(const Screen& screen, const Row& row)
{
    char text[2 * kRoleSize];
    const bool hasSpeed = !Equal(row.cells[kSpeed], "-");
    FormatText(text, sizeof(text), "%s%s%s %s", row.cells[kState], hasSpeed ? " " : "",
               hasSpeed ? row.cells[kSpeed] : "", row.cells[kRole]);
    PrintLine(screen, row.cells[kCard], WidthOf(row.cells[kCard]) + 1, text, Colour::Bold);
}

/// For a narrow screen: the interface on a line of its own, its stores below.
void PrintNarrow(const Device& device, const Screen& screen)
{
    ForEachRow(device, [&screen](const Interface&, int place, const Row& row) {
        if (place == 0) PrintHeadOf(screen, row);
        (void)fprintf(screen.out, "  %-6s ", row.cells[kStore]);
        Begin(screen, row.colours[kAddress]);
        (void)fputs(row.cells[kAddress], screen.out);
        End(screen, row.colours[kAddress]);
        if (row.cells[kMtu][0] != '\0') (void)fprintf(screen.out, " MTU %s", row.cells[kMtu]);
        if (!Equal(row.cells[kGateway], "-")) {
            (void)fprintf(screen.out, "\n  %-6s gateway %s", "", row.cells[kGateway]);
        }
        (void)fputc('\n', screen.out);
    });
}

// ---- below the table

constexpr int kLabel = 15;

void PrintDefaultRoute(const Device& device, const Screen& screen)
{
    for (int i = 0; i < device.routeCount; ++i) {
        const Route& route = device.routes[i];
        const Interface* over = FindIndex(device, route.index);
        if (route.mask != 0 || over == nullptr) continue;
        char gateway[kIPv4TextSize] = {};
        char text[64];
        (void)PrintIPv4(route.gateway, gateway);
        FormatText(text, sizeof(text), "via %s over %s", gateway, over->name);
        PrintLine(screen, "Default route", kLabel, text);
        return;
    }
    PrintLine(screen, "Default route", kLabel, "none");
}

void PrintResolvers(const Resolvers& resolvers, const Screen& screen)
{
    char text[kFindingSize] = {};
    for (const auto& server : resolvers.servers) {
        if (server[0] == '\0') continue;
        if (text[0] != '\0') Strcat(text, sizeof(text), " ", nullptr);
        Strcat(text, sizeof(text), server, nullptr);
    }
    const char* none = resolvers.file == FileState::Missing ? "no file" : "none";
    if (resolvers.file == FileState::Unreadable) none = "not for this user";
    PrintLine(screen, "Resolvers", kLabel, text[0] == '\0' ? none : text);
}

void PrintMaster(const Device& device, const Interface& entry, const Screen& screen)
{
    char label[kNameSize + 8];
    FormatText(label, sizeof(label), "%s %s", entry.kind == Kind::Bond ? "Bond" : "Bridge",
               entry.name);
    char text[kFindingSize];
    char members[kJoinedSize];
    Join(LiveMembers(device, entry), members);
    if (entry.kind == Kind::Bridge) {
        FormatText(text, sizeof(text), "ports %s; spanning tree %s", members,
                   entry.live.spanningTree > 0 ? "on" : "off");
    } else {
        char mode[kModeSize];
        PrintMode(entry.live.bondMode, mode);
        const Interface* active = FindIndex(device, entry.live.activeSlave);
        FormatText(text, sizeof(text), "%s; members %s; active link %s", mode, members,
                   active == nullptr ? "none" : active->name);
    }
    PrintLine(screen, label, kLabel, text);
}

void PrintMasters(const Device& device, const Screen& screen)
{
    for (int i = 0; i < device.count; ++i) {
        const Interface& entry = device.list[i];
        if (entry.kind != Kind::Card && entry.live.present) PrintMaster(device, entry, screen);
    }
}

void PrintBackup(const Backup& backup, const Screen& screen)
{
    char text[kFindingSize];
    FormatText(text, sizeof(text), "%s%s%s",
               backup.kind == MemoryKind::None ? "" : TextOf(backup.kind),
               backup.kind == MemoryKind::None ? "" : ", ", TextOf(backup));
    PrintLine(screen, "Backup memory", kLabel, text);
}

}  // namespace

void PrintTable(const Report& report, const Screen& screen)
{
    const Device& device = report.device;
    Widths widths;
    if (Measure(device, screen, &widths)) {
        PrintWide(device, screen, widths);
    } else {
        PrintNarrow(device, screen);
    }
    (void)fputc('\n', screen.out);
    PrintLine(screen, "Default card", kLabel, device.hasDefault ? device.defaultCard : "not saved");
    PrintDefaultRoute(device, screen);
    PrintResolvers(device.resolvers, screen);
    PrintBackup(device.backup, screen);
    PrintMasters(device, screen);
    PrintFindings(screen, "Differences", report.differences, nullptr);
    PrintFindings(screen, "The next boot repairs", report.repairs, nullptr);
    PrintFindings(screen, "Remarks", report.remarks, nullptr);
}

}  // namespace status
