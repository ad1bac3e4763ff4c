// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// A whole boot over a settings folder of any content: it ends well, every card can be reached, and
// once it has settled a further boot changes nothing.

#include "Fuzz.h"

#include "Lanrise.h"
#include "world/Tools.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

constexpr char kFolder[] = "/mnt/mtd/Config/";

/// Files that a line of the input may begin, by the character behind its '@'.
constexpr const char* kFiles[] = {
    "network",      "network1",          "network2",     "networketh2", "networketh3",
    "networketh9",  "networkbond0",      "networkbond1", "networkbr0",  "networkbr1",
    "networkip6",   "networkip6eth2",    "networkip62",  "resolv.conf", "resolvip6.conf",
    "poeMode.conf", "rsbridgeinit.conf", "networkwlan0", "other.conf",  "networkbond0.1"};

constexpr char kForeign[] = "/mnt/mtd/Config/other.conf";

/// Puts the files of the input: a line "@a" begins the first of them, "@b" the next.
void PutFiles(const std::string& text)
{
    std::string file;
    std::string content;
    const auto put = [&] {
        if (!file.empty()) fuzz::Put(file, content);
        content.clear();
    };
    for (size_t at = 0; at < text.size();) {
        const size_t end = std::min(text.find('\n', at), text.size() - 1) + 1;
        if (text[at] == '@' && end - at >= 2) {
            put();
            const auto number = static_cast<unsigned char>(text[at + 1] - 'a');
            file = std::string(kFolder) + kFiles[number % std::size(kFiles)];
        } else {
            content.append(text, at, end - at);
        }
        at = end;
    }
    put();
}

void FitCards(uint8_t kinds)
{
    for (const char* name : {"eth2", "eth3"}) fake::kernel.Add(name);
    if ((kinds & 1U) != 0) fuzz::AddBond("bond0");
    if ((kinds & 2U) != 0) fuzz::AddBond("bond1");
    if ((kinds & 4U) != 0) fake::kernel.Add("wlan0");
    if ((kinds & 8U) != 0) fake::kernel.Add("bond0.1");
    if ((kinds & 16U) != 0) fuzz::Put("/dev/pdcRtc", "");
    if ((kinds & 32U) != 0) fuzz::Put("/dev/pdcSramFile", "");
    if ((kinds & 64U) != 0) fake::kernel.At("eth3").driver = "switch";
}

/// The kernel forgets all; the memories do not.
void PowerCut(uint8_t kinds)
{
    const fake::Kernel before = fake::kernel;
    fake::ResetKernel();
    fuzz::Remove("/sys");
    for (const char* name : {"eth0", "eth1"}) fake::kernel.Add(name);
    FitCards(kinds);
    fake::kernel.rtc = before.rtc;
    fake::kernel.sram = before.sram;
}

void Boot()
{
    char program[] = "lanrise";
    char* arguments[] = {program, nullptr};
    fuzz::NextProcess();
    HOLDS(CommonMain(1, arguments));
    HOLDS(fuzz::HeldMutexes() == 0);
    HOLDS(fuzz::HeapBlocks() == 0);
    HOLDS(fuzz::OpenHandles() - fuzz::OpenSockets() <= 2);  // the tables and the memory stay open
}

std::string FilesText()
{
    std::vector<std::string> files = fuzz::Files(kFolder);
    std::sort(files.begin(), files.end());
    std::string text;
    for (const std::string& file : files) text += file + ":\n" + fuzz::Get(file);
    return text;
}

/// True when a file has taken all lines that it may: one more key finds no room, and what it
/// belongs to may be without address.
bool AnyIsFull()
{
    const std::vector<std::string> files = fuzz::Files(kFolder);
    return std::any_of(files.begin(), files.end(), [](const std::string& file) {
        return fuzz::CountLines(fuzz::Get(file)) >= 16;
    });
}

/// A list that names a card twice counts as in order when one of its cards is claimed less: such a
/// card stays outside, without address. Only a hand can write one.
bool NamesTwice(std::string_view line)
{
    std::vector<std::string> names(1);
    for (const char character : line.substr(line.find('=') + 1)) {
        if (character == ',') {
            names.emplace_back();
        } else if (strchr(" \t\n", character) == nullptr) {
            names.back() += character;
        }
    }
    std::sort(names.begin(), names.end());
    return std::adjacent_find(names.begin(), names.end()) != names.end();
}

bool AnyNamesTwice()
{
    for (const std::string& file : fuzz::Files(kFolder)) {
        for (const std::string_view line : fuzz::Lines(fuzz::Get(file))) {
            if (line.find("MEMBERS") != std::string_view::npos && NamesTwice(line)) return true;
        }
    }
    return false;
}

/// True when a line with the key has a number of `limit` or above behind `start`.
bool AnyNumberReaches(unsigned long limit, const char* key, const char* start)
{
    for (const std::string& file : fuzz::Files(kFolder)) {
        for (const std::string_view line : fuzz::Lines(fuzz::Get(file))) {
            const size_t place = line.find(start);
            if (line.find(key) == std::string_view::npos || place == std::string_view::npos)
                continue;
            const std::string number(line.substr(place + strlen(start)));
            if (strtoul(number.c_str(), nullptr, 10) >= limit) return true;
        }
    }
    return false;
}

/// A mode that no bond has stays as it is, and such a bond is not built; nor is a bridge whose
/// number is too high, and its card keeps its claim. The cards stay without address. Only a hand
/// can write either.
bool AnyNumberIsNone()
{
    return AnyNumberReaches(7, "BONDMODE", "=") || AnyNumberReaches(32, "BRIDGENAME", "br");
}

/// Two bridges whose files name the same card: the boot saves its claim for the one that the folder
/// names last, and the next one takes away the file that has lost it. Only a hand can write them.
bool BridgesShare()
{
    std::string names = "=";
    for (const std::string& file : fuzz::Files(std::string(kFolder) + "networkbr")) {
        for (const std::string_view line : fuzz::Lines(fuzz::Get(file))) {
            if (line.find("BRIDGEMEMBERS") == std::string_view::npos) continue;
            names += names.size() > 1 ? "," : "";
            names += line.substr(line.find('=') + 1);
        }
    }
    return NamesTwice(names);
}

void CardsCanBeReached()
{
    if (AnyNumberIsNone()) return;
    for (const fake::Card& card : fake::kernel.cards) {
        if (card.name.compare(0, 3, "eth") != 0) continue;
        if (!card.address.empty() || !fuzz::MasterOf(card.name).empty()) continue;
        HOLDS(fuzz::Same(FilesText() + fuzz::KernelText(), card.name + " has an address\n"));
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzz::Input input(data, size);
    const uint8_t kinds = input.Byte();
    const bool refuses = size > 1 && data[1] == 255;  // a bond's file, for one boot
    const std::string memory = input.Bytes(16);
    fuzz::FreshWorld();
    fuzz::HaveTools();
    FitCards(kinds);
    memory.copy(reinterpret_cast<char*>(fake::kernel.rtc.bytes) + 40, 16);
    memory.copy(reinterpret_cast<char*>(fake::kernel.sram.bytes) + 40, 16);
    PutFiles(input.Rest());
    const std::string foreign = fuzz::Get(kForeign);

    if (refuses) {
        fuzz::RefuseToOpen(std::string(kFolder) + "networkbond0");
        Boot();
        fuzz::RefuseToOpen("");
    }
    Boot();
    HOLDS(fuzz::Get(kForeign) == foreign);
    if (AnyIsFull() || AnyNamesTwice()) return 0;
    CardsCanBeReached();

    const bool cold = (kinds & 128U) != 0;
    // Two boots settle: the second one saves the primary card of a bond that stands, and takes away
    // the file of a bridge whose cards the first one has given to another bridge's file. When the
    // folder has changed its order in between, they are given away by the second one only.
    for (int boots = BridgesShare() ? 2 : 1; boots > 0; --boots) {
        if (cold) PowerCut(kinds);
        Boot();
    }
    const std::string files = FilesText();
    const std::string kernel = fuzz::KernelText();
    if (cold) PowerCut(kinds);
    Boot();
    CardsCanBeReached();
    HOLDS(fuzz::Same(FilesText(), files));
    HOLDS(fuzz::Same(fuzz::KernelText(), kernel));
    return 0;
}
