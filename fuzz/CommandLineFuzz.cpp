// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The program's arguments, of any texts: a form that is refused changes no setting, and what is
// accepted leaves well-formed files.

#include "Fuzz.h"

#include "Lanrise.h"

#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

namespace fs = std::filesystem;

constexpr char kFolder[] = "/mnt/mtd/Config";
constexpr char kAddress[] =
    "HOSTIP = 192.168.1.20\nSUBMASK = 255.255.255.0\nGATEWAYIP = 192.168.1.1\nMTU = 1500\n";

std::string Everything()
{
    std::ostringstream text;
    for (const auto& entry : fs::directory_iterator(fake::Mapped(kFolder))) {
        text << entry.path().filename() << ":\n" << std::ifstream(entry.path()).rdbuf();
    }
    return text.str();
}

/// The words of an input, one a line; at most seven.
std::vector<std::string> Words(const std::string& text)
{
    std::vector<std::string> words = {"lanrise"};
    std::istringstream lines(text);
    std::string line;
    while (words.size() < 8 && std::getline(lines, line)) words.emplace_back(line.c_str());
    return words;
}

bool Run(std::vector<std::string> words)
{
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    return CommonMain(static_cast<int32_t>(words.size()), arguments.data());
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzz::Input input(data, size);
    const std::vector<std::string> words = Words(input.Rest());
    if (words.size() == 1) return 0;  // a boot, which other tests are about
    fuzz::FreshWorld();
    fake::Put("/mnt/mtd/Config/network", kAddress);
    fake::Put("/mnt/mtd/Config/network1", kAddress);
    (void)Run(
        {"lanrise", "list", "of", "a", "form", "that", "is", "none"});  // makes what is missing
    const std::string before = Everything();
    const bool done = Run(words);
    HOLDS(done || words.size() == 3 || words.size() == 5 || Everything() == before);
    for (const auto& entry : fs::directory_iterator(fake::Mapped(kFolder))) {
        std::ifstream file(entry.path());
        std::string line;
        while (std::getline(file, line)) {
            HOLDS(line.find(" = ") != std::string::npos || line.rfind("nameserver ", 0) == 0);
        }
    }
    HOLDS(fake::HeldMutexes() == 0);
    return 0;
}
