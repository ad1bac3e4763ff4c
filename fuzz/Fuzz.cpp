// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Fuzz.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace fuzz {

std::string notes;

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

std::string Input::Text(size_t longest, const std::string& alphabet)
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

std::vector<std::string> Lines(const std::string& content, size_t size)
{
    std::vector<std::string> lines;
    for (size_t at = 0; at < content.size();) {
        size_t end = content.find('\n', at);
        end = end == std::string::npos ? content.size() : end + 1;
        end = std::min(end, at + size - 1);
        lines.emplace_back(content.substr(at, end - at).c_str());
        at = end;
    }
    return lines;
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
