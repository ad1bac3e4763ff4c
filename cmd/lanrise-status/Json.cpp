// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// One JSON document. Its names are an interface: they are kept, and new ones join them.

#include "Print.h"
#include "Support/Text.h"

using namespace vorlix;

namespace status {

namespace {

/// Writes values and the commas between them.
class Json {
public:
    explicit Json(FILE* out) : out_(out) {}

    void Open(const char* name, char bracket)
    {
        Name(name);
        Put(bracket);
        isFirst_ = true;
    }

    void Close(char bracket)
    {
        Put(bracket);
        isFirst_ = false;
    }

    void Text(const char* name, const char* text)
    {
        Name(name);
        Quote(text);
    }

    /// An empty text stands for none.
    void TextOrNull(const char* name, const char* text)
    {
        if (text[0] == '\0') {
            Word(name, "null");
        } else {
            Text(name, text);
        }
    }

    void Bool(const char* name, bool value) { Word(name, value ? "true" : "false"); }

    void Number(const char* name, long value)
    {
        Name(name);
        (void)fprintf(out_, "%ld", value);
    }

    void NumberOrNull(const char* name, long value, bool known)
    {
        if (known) {
            Number(name, value);
        } else {
            Word(name, "null");
        }
    }

private:
    void Put(char letter) { (void)fputc(letter, out_); }

    void Name(const char* name)
    {
        if (!isFirst_) Put(',');
        isFirst_ = false;
        if (name == nullptr) return;
        Quote(name);
        Put(':');
    }

    void Word(const char* name, const char* word)
    {
        Name(name);
        (void)fputs(word, out_);
    }

    /// Each byte beyond plain letters by its number: the document is ASCII whatever a name holds.
    void Quote(const char* text)
    {
        Put('"');
        for (const char* at = text; *at != '\0'; ++at) {
            const auto byte = static_cast<unsigned char>(*at);
            if (byte < ' ' || byte > '~') {
                (void)fprintf(out_, "\\u%04x", static_cast<unsigned>(byte));
                continue;
            }
            if (byte == '"' || byte == '\\') Put('\\');
            Put(*at);
        }
        Put('"');
    }

    FILE* out_;
    bool isFirst_ = true;
};

void PutAddress(Json* json, const char* name, const IPv4& ipv4)
{
    char text[kAddressSize] = {};
    if (ipv4.hasAddress) PrintAddress(ipv4.address, ipv4.mask, text);
    json->TextOrNull(name, text);
}

void PutGateway(Json* json, const char* name, const IPv4& ipv4)
{
    char text[kIPv4TextSize] = {};
    if (ipv4.hasGateway) (void)PrintIPv4(ipv4.gateway, text);
    json->TextOrNull(name, text);
}

void PutStores(Json* json, const char* name, const Report& report, const Interface& entry,
               void (*put)(Json* json, const char* name, const IPv4& ipv4))
{
    json->Open(name, '{');
    put(json, "kernel", entry.live.ipv4);
    put(json, "file", entry.saved.ipv4);
    put(json, "backup", Equal(entry.name, "eth0") ? report.device.backup.ipv4 : IPv4{});
    json->Close('}');
}

const char* TextOf(FileState state)
{
    switch (state) {
    case FileState::Missing: return "missing";
    case FileState::Unreadable: return "unreadable";
    default: return "read";
    }
}

const char* TextOf(Kind kind)
{
    if (kind == Kind::Bond) return "bond";
    return kind == Kind::Bridge ? "bridge" : "card";
}

const char* ClaimOf(const Claim& claim)
{
    return claim.isMarked && claim.hasName ? claim.name : "";
}

const char* SavedMaster(const Saved& saved)
{
    const char* bond = ClaimOf(saved.bond);
    return bond[0] != '\0' ? bond : ClaimOf(saved.bridge);
}

void PutLink(Json* json, const Live& live)
{
    json->Bool("present", live.present);
    json->Bool("up", live.up);
    json->Bool("link", live.link);
    json->NumberOrNull("speed", live.speed, live.speed > 0);
    json->Bool("full_duplex", live.speed > 0 && live.fullDuplex);
    json->TextOrNull("mac", live.mac);
    json->TextOrNull("driver", live.driver);
}

void PutIPv6(Json* json, const Interface& entry)
{
    json->Open("ipv6", '{');
    json->Open("kernel", '[');
    for (int i = 0; i < entry.live.ipv6Count; ++i) json->Text(nullptr, entry.live.ipv6[i]);
    json->Close(']');
    json->TextOrNull("file", entry.saved.ipv6);
    json->TextOrNull("gateway", entry.saved.gateway6);
    json->Close('}');
}

void PutInterface(Json* json, const Report& report, const Interface& entry)
{
    json->Open(nullptr, '{');
    json->Text("name", entry.name);
    json->Text("kind", TextOf(entry.kind));
    json->Bool("counted", entry.isCounted);
    json->Bool("default", IsDefault(report.device, entry));
    json->Bool("switch", entry.isSwitch);
    PutLink(json, entry.live);
    PutStores(json, "address", report, entry, PutAddress);
    PutStores(json, "gateway", report, entry, PutGateway);
    PutIPv6(json, entry);
    json->Open("mtu", '{');
    json->NumberOrNull("kernel", entry.live.mtu, entry.live.present);
    json->NumberOrNull("file", entry.saved.mtu, entry.saved.mtu > 0);
    json->Close('}');
    const Interface* master = FindIndex(report.device, entry.live.master);
    json->Open("master", '{');
    json->TextOrNull("kernel", master == nullptr ? "" : master->name);
    json->TextOrNull("file", SavedMaster(entry.saved));
    json->Close('}');
    json->NumberOrNull("work_mode", entry.saved.workMode, entry.saved.workMode >= 0);
    json->Text("setting_file", TextOf(entry.saved.file));
    json->Close('}');
}

void PutMembers(Json* json, const char* name, const Members& members)
{
    json->Open(name, '[');
    for (int i = 0; i < members.count; ++i) json->Text(nullptr, members.names[i]);
    json->Close(']');
}

void PutMode(Json* json, const char* name, int mode)
{
    char text[kModeSize] = {};
    if (mode >= 0) PrintMode(mode, text);
    json->TextOrNull(name, text);
}

void PutMaster(Json* json, const Device& device, const Interface& entry)
{
    json->Open(nullptr, '{');
    json->Text("name", entry.name);
    json->Open(entry.kind == Kind::Bond ? "members" : "ports", '{');
    PutMembers(json, "kernel", LiveMembers(device, entry));
    PutMembers(json, "file", entry.saved.members);
    json->Close('}');
    if (entry.kind == Kind::Bridge) {
        json->NumberOrNull("spanning_tree", entry.live.spanningTree, entry.live.spanningTree >= 0);
    } else {
        const Interface* active = FindIndex(device, entry.live.activeSlave);
        json->Open("mode", '{');
        PutMode(json, "kernel", entry.live.bondMode);
        PutMode(json, "file", entry.saved.bondMode);
        json->Close('}');
        json->TextOrNull("active", active == nullptr ? "" : active->name);
    }
    json->Close('}');
}

void PutMasters(Json* json, const char* name, const Device& device, Kind kind)
{
    json->Open(name, '[');
    for (int i = 0; i < device.count; ++i) {
        if (device.list[i].kind == kind) PutMaster(json, device, device.list[i]);
    }
    json->Close(']');
}

void PutRoutes(Json* json, const Device& device)
{
    json->Open("routes", '[');
    for (int i = 0; i < device.routeCount; ++i) {
        const Route& route = device.routes[i];
        const Interface* over = FindIndex(device, route.index);
        char text[kAddressSize];
        char gateway[kIPv4TextSize] = {};
        PrintAddress(route.net, route.mask, text);
        if (route.gateway != 0) (void)PrintIPv4(route.gateway, gateway);
        json->Open(nullptr, '{');
        json->Text("net", text);
        json->TextOrNull("gateway", gateway);
        json->Text("interface", over == nullptr ? "" : over->name);
        json->Number("metric", static_cast<long>(route.metric));
        json->Close('}');
    }
    json->Close(']');
}

void PutResolvers(Json* json, const Resolvers& resolvers)
{
    json->Open("resolvers", '{');
    json->Open("saved", '[');
    for (const auto& server : resolvers.servers) {
        if (server[0] != '\0') json->Text(nullptr, server);
    }
    json->Close(']');
    json->Text("file", TextOf(resolvers.file));
    json->Bool("used_by_system", resolvers.isSystems);
    json->Close('}');
}

const char* TextOf(MemoryState state)
{
    switch (state) {
    case MemoryState::Good: return "good";
    case MemoryState::Corrupt: return "corrupt";
    case MemoryState::Unflagged: return "unflagged";
    case MemoryState::Forbidden: return "forbidden";
    case MemoryState::NotLookedAt: return "not looked at";
    default: return "failed";
    }
}

void PutBackup(Json* json, const Backup& backup)
{
    json->Open("backup_memory", '{');
    json->Text("kind", TextOf(backup.kind));
    json->TextOrNull("state", backup.kind == MemoryKind::None ? "" : TextOf(backup.state));
    json->Number("mark", backup.mark);
    json->Close('}');
}

void PutFindings(Json* json, const char* name, const Findings& findings)
{
    json->Open(name, '[');
    for (int i = 0; i < findings.count; ++i) {
        json->Open(nullptr, '{');
        json->TextOrNull("interface", findings.list[i].name);
        json->Text("text", findings.list[i].text);
        json->Close('}');
    }
    json->Close(']');
}

}  // namespace

void PrintJson(const Report& report, FILE* out)
{
    const Device& device = report.device;
    Json json(out);
    json.Open(nullptr, '{');
    json.Text("version", VORLIX_STATUS_VERSION);
    json.Bool("complete", IsWholeRead(device));
    json.Open("interfaces", '[');
    for (int i = 0; i < device.count; ++i) PutInterface(&json, report, device.list[i]);
    json.Close(']');
    PutMasters(&json, "bonds", device, Kind::Bond);
    PutMasters(&json, "bridges", device, Kind::Bridge);
    json.TextOrNull("default_card", device.hasDefault ? device.defaultCard : "");
    PutRoutes(&json, device);
    PutResolvers(&json, device.resolvers);
    PutBackup(&json, device.backup);
    PutFindings(&json, "differences", report.differences);
    PutFindings(&json, "repairs", report.repairs);
    PutFindings(&json, "remarks", report.remarks);
    json.Close('}');
    (void)fputc('\n', out);
}

}  // namespace status
