// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "mutate/Mutate.h"

#include <algorithm>
#include <cstring>
#include <list>
#include <utility>

namespace fuzz {

namespace {

/// Lines without their newline: places in the input, and what a change has made.
struct Text {
    std::vector<std::string_view> lines;
    std::list<std::string> made;

    std::string_view Keep(std::string line) { return made.emplace_back(std::move(line)); }
};

/// A text that ends in a newline has an empty last line.
std::vector<std::string_view> Split(std::string_view text)
{
    std::vector<std::string_view> lines;
    lines.reserve(static_cast<size_t>(std::count(text.begin(), text.end(), '\n')) + 1);
    for (size_t end; (end = text.find('\n')) != std::string_view::npos;) {
        lines.push_back(text.substr(0, end));
        text.remove_prefix(end + 1);
    }
    lines.push_back(text);
    return lines;
}

std::string Joined(const std::vector<std::string_view>& lines)
{
    size_t size = 0;
    for (const std::string_view line : lines) size += line.size() + 1;
    std::string text;
    text.reserve(size);
    for (size_t i = 0; i < lines.size(); ++i) text.append(i == 0 ? "" : "\n").append(lines[i]);
    return text;
}

/// To a length about that of a reader's buffer.
std::string Stretched(std::string_view line, Random& random)
{
    constexpr size_t kLengths[] = {15, 16, 17, 31, 32, 33, 45, 46, 63, 64, 253, 254, 255, 256, 257};
    const size_t length = kLengths[Below(random, std::size(kLengths))];
    std::string longer(line);
    longer.resize(length, line.empty() ? ' ' : line.back());
    return longer;
}

/// What stands behind the last blank, or behind all of them, is another.
std::string WithOtherValue(std::string_view line)
{
    const size_t blank = line.find_last_of(" \t=,");
    const size_t from = blank == std::string_view::npos ? 0 : blank + 1;
    return std::string(line.substr(0, from)) + Changed(line.substr(from), 64);
}

void ChangeOne(Text* text, Random& random, const std::vector<const char*>& known)
{
    auto& lines = text->lines;
    const size_t place = Below(random, lines.size());
    const auto at = lines.begin() + static_cast<ptrdiff_t>(place);
    switch (Below(random, 9)) {
    case 0: *at = known[Below(random, known.size())]; break;
    case 1: lines.erase(at); break;
    case 2: {
        const std::string_view copy = *at;
        lines.insert(at, 1 + Below(random, 17), copy);
        break;
    }
    case 3: std::swap(*at, lines[Below(random, lines.size())]); break;
    case 4: *at = text->Keep(Changed(*at, 300)); break;
    case 5: *at = text->Keep(Stretched(*at, random)); break;
    case 6: *at = text->Keep(WithOtherValue(*at)); break;
    default: lines.insert(at, known[Below(random, known.size())]);
    }
}

}  // namespace

size_t ChangeBytes(uint8_t* data, size_t size, size_t room)
{
    return LLVMFuzzerMutate(data, size, room);
}

std::string Changed(std::string_view text, size_t longest)
{
    const size_t size = std::min(text.size(), longest);
    std::string bytes(longest, '\0');
    text.copy(bytes.data(), size);
    bytes.resize(ChangeBytes(reinterpret_cast<uint8_t*>(bytes.data()), size, longest));
    return bytes;
}

bool OneIn(Random& random, unsigned times)
{
    return Below(random, times) == 0;
}

size_t Below(Random& random, size_t count)
{
    return random() / 7 % count;  // its lowest bits repeat
}

size_t Store(const Draft& draft, size_t head, std::string_view text)
{
    const size_t count = std::min(text.size(), draft.room - std::min(head, draft.room));
    memcpy(draft.data + head, text.data(), count);
    return head + count;
}

size_t ChangeLines(const Draft& draft, unsigned seed, const LineFormat& format)
{
    Random random(seed + 1);
    const size_t head = std::min(format.head(draft.data, draft.size), draft.size);
    if (OneIn(random, 4) || draft.size == 0) {
        return ChangeBytes(draft.data, draft.size, draft.room);
    }
    if (head > 0 && OneIn(random, 5)) {
        draft.data[Below(random, head)] = static_cast<uint8_t>(random() >> 4U);
        return draft.size;
    }
    Text text;
    text.lines = Split(
        std::string_view(reinterpret_cast<const char*>(draft.data) + head, draft.size - head));
    for (size_t times = 1 + Below(random, 3); times > 0; --times) {
        if (text.lines.empty()) text.lines.emplace_back();
        ChangeOne(&text, random, format.lines);
    }
    return Store(draft, head, Joined(text.lines));
}

const std::vector<const char*> kSettingLines = {
    "HOSTIP = 192.168.1.20",
    "HOSTIP = 10.0.0.1",
    "HOSTIP = 0.0.0.0",
    "HOSTIP = 256.1.1.1",
    "HOSTIP = 10.1",
    "HOSTIP = 2001:db8::2",
    "HOSTIP = fe80::1%eth0",
    "HOSTIP =",
    "HOSTIP",
    "HOSTIP= \t 1.2.3.4 \t",
    "# HOSTIP = 1.2.3.4",
    "SUBMASK = 255.255.255.0",
    "SUBMASK = 255.0.255.0",
    "SUBMASK = 0.0.0.0",
    "SUBMASK = 64",
    "SUBMASK = 129",
    "SUBMASK = -1",
    "GATEWAYIP = 192.168.1.1",
    "GATEWAYIP = 0.0.0.0",
    "GATEWAYIP = fe80::1",
    "PRIO = 1",
    "PRIO = 0",
    "WORKMODE = 0",
    "WORKMODE = 1",
    "WORKMODE = 2",
    "WORKMODE = 3",
    "WORKMODE = 9",
    "WORKMODE = x",
    "BONDED = 1",
    "BONDED = 0",
    "BONDED = yes",
    "BONDNAME = bond0",
    "BONDNAME = bond15",
    "BONDNAME = bond4294967295",
    "BONDNAME =",
    "BONDMODE = 1",
    "BONDMODE = 7",
    "BONDMODE = -1",
    "BONDMODE =",
    "BONDPRIMARY = eth0",
    "BONDMEMBERS = eth0,eth1",
    "BONDMEMBERS = ,eth1,,eth0,",
    "BONDMEMBERS = eth0123456789abcdef,eth1",
    "BONDMEMBERS =",
    "LACP = 1",
    "LACP = 300",
    "ROUTE = x",
    "MTU = 1500",
    "MTU = 0",
    "MTU = -5",
    "MTU = 99999999999",
    "ACTIVE_ETH = eth1",
    "DEFAULT_ETH = eth0",
    "DEFAULT_ETH = eth0123456789abcdef",
    "BRIDGEEDED = 1",
    "BRIDGEEDED = 0",
    "BRIDGENAME = br0",
    "BRIDGENAME = br31",
    "bridgeprefix = br",
    "stp_state = 1d",
    "stp_state = 300",
    "BRIDGES = 0",
    "SSIF = eth0,eth1,",
    "SSIF_EDGE[0] = eth0,eth1",
    "SSIF_EDGE[0] = eth1",
    "SSIF_EDGE[1] =",
    "BRIDGEMEMBERS = eth2,eth3",
    "BRIDGEMEMBERS = a-name-of-thirty-three-characters,eth3",
    "COLOUR = red",
    "",
};

}  // namespace fuzz
