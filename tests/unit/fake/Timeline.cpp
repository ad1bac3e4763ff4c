// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "fake/Timeline.h"

#include "fake/Calls.h"
#include "output/Output.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <map>

#include <cxxabi.h>
#include <link.h>

namespace fake {

namespace {

std::vector<Noted> noted;
size_t begun = 0;  // bytes that had been printed when it began

bool StartsWith(const std::string& text, const std::string& start)
{
    return text.compare(0, start.size(), start) == 0;
}

// ---- names of objects

struct Symbol {
    uintptr_t begin;
    size_t size;
    std::string name;
};

/// "vorlix::(anonymous namespace)::DnsLock" without its scope.
std::string ShortName(const char* mangled)
{
    int status = 0;
    char* whole = abi::__cxa_demangle(mangled, nullptr, nullptr, &status);
    std::string name = whole == nullptr ? mangled : whole;
    free(whole);
    const size_t scope = name.rfind("::");
    return scope == std::string::npos ? name : name.substr(scope + 2);
}

/// The objects that the symbol table of an ELF file names.
std::vector<Symbol> SymbolsOf(const std::string& file)
{
    std::ifstream stream(file, std::ios::binary);
    const std::string image((std::istreambuf_iterator<char>(stream)),
                            std::istreambuf_iterator<char>());
    std::vector<Symbol> symbols;
    if (image.size() < sizeof(ElfW(Ehdr))) return symbols;

    const auto* header = reinterpret_cast<const ElfW(Ehdr)*>(image.data());
    const auto* sections = reinterpret_cast<const ElfW(Shdr)*>(image.data() + header->e_shoff);
    for (int i = 0; i < header->e_shnum; ++i) {
        if (sections[i].sh_type != SHT_SYMTAB) continue;
        const char* texts = image.data() + sections[sections[i].sh_link].sh_offset;
        const auto* table =
            reinterpret_cast<const ElfW(Sym)*>(image.data() + sections[i].sh_offset);
        for (size_t k = 0; k < sections[i].sh_size / sizeof(*table); ++k) {
            if ((table[k].st_info & 0xF) != STT_OBJECT || table[k].st_size == 0) continue;
            symbols.push_back({table[k].st_value, table[k].st_size, texts + table[k].st_name});
        }
    }
    return symbols;
}

struct Search {
    uintptr_t address;
    std::string file;
    uintptr_t base;
};

int FindFile(dl_phdr_info* info, size_t, void* argument)
{
    auto* search = static_cast<Search*>(argument);
    for (int i = 0; i < info->dlpi_phnum; ++i) {
        const auto& segment = info->dlpi_phdr[i];
        const uintptr_t begin = info->dlpi_addr + segment.p_vaddr;
        if (segment.p_type != PT_LOAD || search->address < begin ||
            search->address >= begin + segment.p_memsz) {
            continue;
        }
        search->file = info->dlpi_name[0] == '\0' ? "/proc/self/exe" : info->dlpi_name;
        search->base = info->dlpi_addr;
        return 1;
    }
    return 0;
}

/// Name of an object of the program or of a library, without its scope; "heap" when it is in none.
std::string NameOf(const void* object)
{
    static std::map<std::string, std::vector<Symbol>> known;
    Search search = {reinterpret_cast<uintptr_t>(object), "", 0};
    if (dl_iterate_phdr(FindFile, &search) == 0) return "heap";

    auto file = known.find(search.file);
    if (file == known.end()) file = known.emplace(search.file, SymbolsOf(search.file)).first;
    const uintptr_t place = search.address - search.base;
    for (const Symbol& symbol : file->second) {
        if (place >= symbol.begin && place < symbol.begin + symbol.size) {
            return ShortName(symbol.name.c_str());
        }
    }
    return "unnamed";
}

// ---- output between the calls

using Lock =
    std::pair<size_t, size_t>;  // bytes printed when it was taken and when it was given back

std::vector<Lock> OutputLocks()
{
    std::vector<Lock> locks;
    for (const Noted& call : noted) {
        if (call.call.find(kOutputUnlock) != std::string::npos) {
            if (!locks.empty()) locks.back().second = call.printed;
        } else if (call.call.find(kOutputLock) != std::string::npos) {
            locks.emplace_back(call.printed, SIZE_MAX);
        }
    }
    return locks;
}

bool IsInOne(const output::Piece& piece, const std::vector<Lock>& locks)
{
    return std::any_of(locks.begin(), locks.end(), [&](const Lock& lock) {
        return lock.first <= piece.begin && piece.end <= lock.second;
    });
}

class Merger {
public:
    explicit Merger(const std::string& text, size_t offset) : pieces_(output::PiecesOf(text))
    {
        for (output::Piece& piece : pieces_) {
            piece.begin += offset;
            piece.end += offset;
        }
    }

    /// Tells what was printed before a call.
    void PrintUpTo(const Noted& call)
    {
        for (; next_ < pieces_.size() && pieces_[next_].begin < call.printed; ++next_) {
            Tell(pieces_[next_], pieces_[next_].end > call.flushed);
        }
    }

    void Call(const Noted& call)
    {
        const bool silent = call.call.find(kOutputLock) != std::string::npos ||
                            call.call.find(kOutputUnlock) != std::string::npos;
        if (silent) return;
        told_.push_back(call.call + call.more);
        if (call.object != nullptr) told_.back() += " " + NameOf(call.object);
    }

    Texts Rest()
    {
        for (; next_ < pieces_.size(); ++next_) Tell(pieces_[next_], false);
        return told_;
    }

private:
    void Tell(const output::Piece& piece, bool buffered)
    {
        if (piece.end <= begun) return;
        if (!piece.framed) {
            TellLines(piece.plain);
            return;
        }
        told_.push_back((buffered ? "unflushed " : "") +
                        std::string(IsInOne(piece, locks_) ? "" : "unlocked ") + piece.line.level +
                        "|" + piece.line.operation + "|" + piece.line.text);
    }

    void TellLines(const std::string& plain)
    {
        for (size_t begin = 0; begin < plain.size();) {
            const size_t end = std::min(plain.find('\n', begin), plain.size());
            told_.push_back("print " + plain.substr(begin, end - begin));
            begin = end + 1;
        }
    }

    std::vector<output::Piece> pieces_;
    std::vector<Lock> locks_ = OutputLocks();
    size_t next_ = 0;
    Texts told_;
};

}  // namespace

Noted AtThisMoment(Noted call)
{
    call.printed = output::Printed();
    call.flushed = output::Flushed();
    return call;
}

void PutOnTimeline(const Noted& call)
{
    noted.push_back(call);
}

void ClearTimeline()
{
    noted.clear();
    begun = output::Printed();
}

Texts Timeline()
{
    const OwnCalls reading;
    const Noted now = AtThisMoment({});
    Merger merger(output::Caught(), output::Cleared());
    for (const Noted& call : noted) {
        merger.PrintUpTo(call);
        merger.Call(call);
    }
    merger.PrintUpTo(now);
    return merger.Rest();
}

Texts TimelineOf(const Texts& starts)
{
    Texts found;
    for (const std::string& entry : Timeline()) {
        if (std::any_of(starts.begin(), starts.end(),
                        [&](const std::string& start) { return StartsWith(entry, start); })) {
            found.push_back(entry);
        }
    }
    return found;
}

Texts WhileHeld(const std::string& mutex)
{
    Texts made;
    bool held = false;
    for (const std::string& entry : Timeline()) {
        if (entry == "mutex unlock " + mutex) held = false;
        if (held) made.push_back(entry);
        if (entry == "mutex lock " + mutex) held = true;
    }
    return made;
}

}  // namespace fake
