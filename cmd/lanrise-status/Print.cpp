// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Print.h"

#include "Support/Text.h"

using namespace vorlix;

namespace status {

namespace {

constexpr const char* kColours[] = {"", "\033[1m", "\033[2m", "\033[32m", "\033[31m"};

/// The next word of a text, with its length.
const char* NextWord(const char* text, int* length)
{
    text += strspn(text, " ");
    *length = static_cast<int>(strcspn(text, " "));
    return text;
}

const char* NameOf(const Finding& finding)
{
    return finding.name[0] == '\0' ? "device" : finding.name;
}

}  // namespace

Shown::Shown(const char* from)
{
    CopyText(text, from);
    for (char& letter : text) {
        if (letter != '\0' && (letter < ' ' || letter > '~')) letter = '?';
    }
}

void Begin(const Screen& screen, Colour colour)
{
    if (screen.hasColour) (void)fputs(kColours[static_cast<int>(colour)], screen.out);
}

void End(const Screen& screen, Colour colour)
{
    if (screen.hasColour && colour != Colour::Plain) (void)fputs("\033[0m", screen.out);
}

void PrintLine(const Screen& screen, const char* label, int indent, const char* text, Colour colour)
{
    const Shown shown(text);
    const int width = static_cast<int>(strlen(label));
    Begin(screen, colour);
    (void)fputs(Shown(label).text, screen.out);
    End(screen, colour);
    int at = width < indent ? indent : width + 2;
    (void)fprintf(screen.out, "%*s", at - width, "");
    bool begins = true;
    int length = 0;
    for (const char* word = NextWord(shown.text, &length); length > 0;
         word = NextWord(word + length, &length)) {
        const int room = length + (begins ? 0 : 1);
        if (at > indent && at + room > screen.columns) {
            (void)fprintf(screen.out, "\n%*s%.*s", indent, "", length, word);
            at = indent + length;
        } else {
            (void)fprintf(screen.out, "%s%.*s", begins ? "" : " ", length, word);
            at += room;
        }
        begins = false;
    }
    (void)fputc('\n', screen.out);
}

void PrintFindings(const Screen& screen, const char* heading, const Findings& findings,
                   const char* name)
{
    bool begun = false;
    for (int i = 0; i < findings.count; ++i) {
        const Finding& finding = findings.list[i];
        if (name != nullptr && !Equal(finding.name, name)) continue;
        if (!begun) {
            (void)fputc('\n', screen.out);
            Begin(screen, Colour::Bold);
            (void)fputs(heading, screen.out);
            End(screen, Colour::Bold);
            (void)fputc('\n', screen.out);
            begun = true;
        }
        char label[kNameSize + 2];
        FormatText(label, sizeof(label), "  %s", NameOf(finding));
        PrintLine(screen, label, 10, finding.text);
    }
}

const char* StateOf(const Interface& entry)
{
    if (!entry.live.present) return entry.isCounted ? "gone" : "absent";
    if (!entry.live.up) return "down";
    return entry.live.link ? "up" : "no link";
}

bool IsDefault(const Device& device, const Interface& entry)
{
    return device.hasDefault && Equal(device.defaultCard, entry.name);
}

void PrintRole(const Device& device, const Interface& entry, char (&text)[kRoleSize])
{
    text[0] = '\0';
    const auto add = [&text](const char* word, const char* name) {
        FormatText(text + strlen(text), sizeof(text) - strlen(text), "%s%s%s",
                   text[0] == '\0' ? "" : ",", word, name);
    };
    if (IsDefault(device, entry)) add("default", "");
    if (entry.kind == Kind::Bond) add("bond", "");
    if (entry.kind == Kind::Bridge) add("bridge", "");
    if (entry.isSwitch) add("switch", "");
    const Interface* master = FindIndex(device, entry.live.master);
    if (master != nullptr) {
        add("in ", master->name);
    } else if (entry.saved.bond.isMarked && entry.saved.bond.hasName) {
        add("claims ", entry.saved.bond.name);
    } else if (entry.saved.bridge.isMarked && entry.saved.bridge.hasName) {
        add("claims ", entry.saved.bridge.name);
    }
}

void PrintAddressOf(const IPv4& ipv4, char (&text)[kAddressSize])
{
    CopyText(text, "-");
    if (ipv4.hasAddress) PrintAddress(ipv4.address, ipv4.mask, text);
}

void PrintGatewayOf(const IPv4& ipv4, char (&text)[kAddressSize])
{
    CopyText(text, "-");
    if (ipv4.hasGateway) (void)PrintIPv4(ipv4.gateway, text);
}

const char* TextOf(const Backup& backup)
{
    if (backup.kind == MemoryKind::None) return "none is found";
    switch (backup.state) {
    case MemoryState::Good: return backup.ipv4.hasAddress ? "holds an address" : "is empty";
    case MemoryState::Corrupt: return "has a wrong check sum";
    case MemoryState::Unflagged: return "was never written by this system";
    case MemoryState::Forbidden: return "may not be read by this user";
    case MemoryState::NotLookedAt: return "is not looked at";
    default: return "does not answer";
    }
}

void PrintCheck(const Report& report, FILE* out)
{
    const Findings* lists[] = {&report.differences, &report.repairs};
    for (const Findings* list : lists) {
        for (int i = 0; i < list->count; ++i) {
            const Finding& finding = list->list[i];
            (void)fprintf(out, "%s: %s%s\n", Shown(NameOf(finding)).text,
                          list == &report.repairs ? "next boot: " : "", Shown(finding.text).text);
        }
    }
}

}  // namespace status
