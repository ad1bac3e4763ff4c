// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// A setting file of any content: what a write makes of it, and that it reads back.

#include "Fuzz.h"

#include "Support/KeyFile.h"

#include <algorithm>
#include <cerrno>

namespace {

constexpr char kFile[] = "/mnt/mtd/Config/network1";
constexpr char kValueCharacters[] = "0123456789.:,abcefh/-_ ";
constexpr size_t kLookedAt = 32;
constexpr size_t kKept = 16;

bool HoldsKnownKey(std::string_view line)
{
    for (int key = 0; key < HOST_NET_END; ++key) {
        if (line.find(vorlix::KeyText(static_cast<KEYENUM>(key))) != std::string_view::npos)
            return true;
    }
    return false;
}

/// The lines that a write keeps, ended as it ends them.
std::vector<std::string> KeptLines(const std::string& content)
{
    std::vector<std::string_view> lines = fuzz::Lines(content);
    lines.resize(std::min(lines.size(), kLookedAt));
    std::vector<std::string> kept;
    for (const std::string_view line : lines) {
        if (kept.size() == kKept) break;
        if (!HoldsKnownKey(line)) continue;
        kept.emplace_back(line);
        if (line.size() < 255 && line.back() != '\n') kept.back() += '\n';
    }
    return kept;
}

/// What the file holds after the write; nothing when it must be refused.
std::string Foretold(const std::string& content, const std::string& key, const std::string& value,
                     bool* refused)
{
    std::vector<std::string> lines = KeptLines(content);
    const auto holds = [&](const std::string& line) { return line.find(key) != std::string::npos; };
    const auto place = std::find_if(lines.begin(), lines.end(), holds);
    *refused = place == lines.end() && lines.size() == kKept;
    if (*refused) return content;

    const std::string written = key + " = " + value + "\n";
    if (place != lines.end()) {
        *place = written;
    } else {
        lines.push_back(written);
    }
    std::string text;
    for (const std::string& line : lines) text += line;
    return text;
}

/// A value comes back without the blanks around it; an empty one does not come back.
std::string Stripped(const std::string& value)
{
    const size_t first = value.find_first_not_of(' ');
    if (first == std::string::npos) return "";
    return value.substr(first, value.find_last_not_of(' ') - first + 1);
}

/// A file that cannot be read to its end is not written.
void LosesNothing(const std::string& content, const std::string& key, const std::string& value,
                  int reads)
{
    fuzz::FailRead(reads, EINTR);
    const fuzz::Buffer small(16);
    HOLDS(!GetValueByKey(kFile, key.c_str(), small.Get(), 16) || small.IsText());
    fuzz::FailRead(reads, EIO);
    if (!SetValueByKey(kFile, key.c_str(), value.c_str())) HOLDS(fuzz::Get(kFile) == content);
    fuzz::FailRead(0, 0);
    HOLDS(fuzz::OpenHandles() == 0);
}

/// A caller's mistakes: each is refused. Asked once, by the empty input.
void RefusesMistakes()
{
    char text[16];
    HOLDS(!GetValueByKey(nullptr, "a", text, 16));
    HOLDS(!GetValueByKey(kFile, nullptr, text, 16));
    HOLDS(!GetValueByKey(kFile, "a", nullptr, 16));
    HOLDS(!SetValueByKey(nullptr, "a", "b"));
    HOLDS(!SetValueByKey(kFile, nullptr, "b"));
    HOLDS(!SetValueByKey(kFile, "a", nullptr));
    HOLDS(!fuzz::Exists(kFile));
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzz::Input input(data, size);
    const uint8_t choice = input.Byte();
    const std::string key = vorlix::KeyText(static_cast<KEYENUM>(choice % HOST_NET_END));
    const int trouble = choice / HOST_NET_END;  // 1 and 2: a read fails, 3: there is no file
    const std::string value = input.Text(60, kValueCharacters);
    const std::string content = input.Rest();
    fuzz::FreshWorld();
    if (size == 0) RefusesMistakes();
    if (trouble != 3) fuzz::Put(kFile, content);
    if (trouble == 3) {
        HOLDS(SetValueByKey(kFile, key.c_str(), value.c_str()));
        HOLDS(fuzz::Get(kFile) == key + " = " + value + "\n");
        return 0;
    }
    if (trouble == 1 || trouble == 2) {
        LosesNothing(content, key, value, trouble - 1);
        return 0;
    }

    // Any reader of any key keeps to its buffer.
    const fuzz::Buffer small(16);
    const bool found = GetValueByKey(kFile, key.c_str(), small.Get(), 16);
    HOLDS(found ? small.IsText() : small.IsUntouched());
    HOLDS(fuzz::Get(kFile) == content);

    bool refused = false;
    const std::string foretold = Foretold(content, key, value, &refused);
    HOLDS(SetValueByKey(kFile, key.c_str(), value.c_str()) == !refused);
    HOLDS(fuzz::Get(kFile) == foretold);

    if (!refused) {
        const fuzz::Buffer back(256);
        HOLDS(GetValueByKey(kFile, key.c_str(), back.Get(), 256) == !Stripped(value).empty());
        HOLDS(Stripped(value).empty() || back.Get() == Stripped(value));
        HOLDS(SetValueByKey(kFile, key.c_str(), value.c_str()));
        HOLDS(fuzz::Get(kFile) == foretold);
    }
    const std::string last = fuzz::Get(kFile);
    vorlix::LookOnly();
    HOLDS(!SetValueByKey(kFile, key.c_str(), "1"));
    HOLDS(fuzz::Get(kFile) == last);
    HOLDS(fuzz::OpenHandles() == 0);
    HOLDS(fuzz::HeapBlocks() == 0);
    HOLDS(fuzz::HeldMutexes() == 0);
    return 0;
}
