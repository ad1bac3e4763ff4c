// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The program's arguments, of any texts: a form that is refused changes no setting, and what is
// accepted leaves well-formed files.

#include "Fuzz.h"

#include "Lanrise.h"

#include <algorithm>

namespace {

constexpr char kFolder[] = "/mnt/mtd/Config";
constexpr char kAddress[] =
    "HOSTIP = 192.168.1.20\nSUBMASK = 255.255.255.0\nGATEWAYIP = 192.168.1.1\nMTU = 1500\n";

std::string Everything()
{
    std::string text;
    for (const std::string& file : fuzz::Files(kFolder)) text += file + ":\n" + fuzz::Get(file);
    return text;
}

/// The words of an input, one a line; at most seven.
std::vector<std::string> Words(const std::string& text)
{
    std::vector<std::string> words = {"lanrise"};
    for (size_t at = 0; at < text.size() && words.size() < 8;) {
        const size_t end = std::min(text.find('\n', at), text.size());
        words.emplace_back(text.substr(at, end - at).c_str());
        at = end + 1;
    }
    return words;
}

bool Run(std::vector<std::string> words)
{
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    return CommonMain(static_cast<int32_t>(words.size()), arguments.data());
}

struct Folder {
    std::vector<std::pair<std::string, std::string>> files;
    std::string text;  // of all
};

/// Any run makes the files that are missing: what it leaves of two saved cards.
Folder AfterFirstRun()
{
    fuzz::FreshWorld();
    fuzz::Put("/mnt/mtd/Config/network", kAddress);
    fuzz::Put("/mnt/mtd/Config/network1", kAddress);
    HOLDS(Run({"lanrise", "list", "of", "a", "form", "that", "is", "none"}));
    Folder folder;
    for (const std::string& file : fuzz::Files(kFolder)) {
        folder.files.emplace_back(file, fuzz::Get(file));
    }
    folder.text = Everything();
    return folder;
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzz::Input input(data, size);
    const std::vector<std::string> words = Words(input.Rest());
    if (words.size() == 1) return 0;  // a boot, which other tests are about
    static const Folder start = AfterFirstRun();
    fuzz::FreshWorld();
    for (const auto& [file, text] : start.files) fuzz::Put(file, text);
    const bool done = Run(words);
    HOLDS(done || words.size() == 3 || words.size() == 5 || Everything() == start.text);
    for (const std::string& file : fuzz::Files(kFolder)) {
        for (const std::string_view line : fuzz::Lines(fuzz::Get(file))) {
            HOLDS(line.find(" = ") != std::string_view::npos || line.rfind("nameserver ", 0) == 0);
        }
    }
    HOLDS(fuzz::HeldMutexes() == 0);
    return 0;
}
