// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Fuzz.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace fuzz {

std::string notes;

namespace {

/// Bytes of the first line, its newline with them.
size_t LineSize(std::string_view content)
{
    constexpr size_t kLongest = 255;
    const size_t end = content.find('\n');
    return std::min(end == std::string_view::npos ? content.size() : end + 1, kLongest);
}

}  // namespace

uint8_t Input::Byte()
{
    if (size_ == 0) return 0;
    --size_;
    return *data_++;
}

std::string Input::Bytes(size_t longest)
{
    const size_t length = std::min({static_cast<size_t>(Byte()), longest, size_});
    std::string taken(reinterpret_cast<const char*>(data_), length);
    data_ += length;
    size_ -= length;
    return taken;
}

std::string Input::Text(size_t longest, std::string_view alphabet)
{
    std::string text = Bytes(longest);
    for (char& character : text) {
        character = alphabet[static_cast<unsigned char>(character) % alphabet.size()];
    }
    return text;
}

std::string Input::Rest()
{
    std::string rest(reinterpret_cast<const char*>(data_), size_);
    size_ = 0;
    return rest;
}

std::string Address(Input& input)
{
    std::string text = std::to_string(1 + input.Below(223));
    for (int part = 0; part < 3; ++part) text += "." + std::to_string(input.Byte());
    return text;
}

void Broken(const char* property, const char* file, int line)
{
    fflush(stdout);  // the log so far
    fprintf(stderr, "%s%s:%d: does not hold: %s\n", notes.c_str(), file, line, property);
    abort();
}

std::vector<std::string_view> Lines(std::string_view content)
{
    std::vector<std::string_view> lines;
    lines.reserve(CountLines(content));
    while (!content.empty()) {
        const std::string_view line = content.substr(0, LineSize(content));
        lines.push_back(line.substr(0, line.find('\0')));
        content.remove_prefix(line.size());
    }
    return lines;
}

size_t CountLines(std::string_view content)
{
    size_t count = 0;
    for (; !content.empty(); ++count) content.remove_prefix(LineSize(content));
    return count;
}

bool Same(const std::string& now, const std::string& before)
{
    if (now == before) return true;
    fprintf(stderr, "---- before\n%s---- now\n%s----\n", before.c_str(), now.c_str());
    return false;
}

Buffer::Buffer(size_t size) : size_(size), bytes_(new char[size])
{
    memset(bytes_, 0x5a, size_);
}

Buffer::~Buffer()
{
    delete[] bytes_;
}

bool Buffer::IsText() const
{
    return memchr(bytes_, '\0', size_) != nullptr;
}

bool Buffer::IsUntouched() const
{
    return std::all_of(bytes_, bytes_ + size_, [](char byte) { return byte == 0x5a; });
}

}  // namespace fuzz
