// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The resolver files of any content: only addresses are given out, and a pair that is saved comes
// back beside the one of the other family.

#include "Fuzz.h"

#include "Dns.h"

#include <cstring>

#include <arpa/inet.h>

namespace {

bool IsAddress(int family, const fuzz::Buffer& text)
{
    in6_addr address;
    return text.IsText() && inet_pton(family, text.Get(), &address) == 1;
}

bool IsPair(int family, const fuzz::Buffer& primary, const fuzz::Buffer& secondary)
{
    return IsAddress(family, primary) && IsAddress(family, secondary);
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzz::Input input(data, size);
    const std::string primary = fuzz::Address(input);
    const std::string secondary = fuzz::Address(input);
    const std::string second = input.Bytes(200);
    fuzz::FreshWorld();
    fuzz::Put("/mnt/mtd/Config/resolvip6.conf", second);
    fuzz::Put("/mnt/mtd/Config/resolv.conf", input.Rest());

    const fuzz::Buffer four[2] = {fuzz::Buffer(16), fuzz::Buffer(16)};
    HOLDS(!GetIPv4DnsServer(four[0].Get(), four[1].Get()) || IsPair(AF_INET, four[0], four[1]));
    const fuzz::Buffer six[2] = {fuzz::Buffer(46), fuzz::Buffer(46)};
    const bool has6 = GetIPv6DnsServer(six[0].Get(), six[1].Get(), 46);
    HOLDS(!has6 || IsPair(AF_INET6, six[0], six[1]));

    HOLDS(SetIPv4DnsServer(primary.c_str(), secondary.c_str()));
    const fuzz::Buffer back[2] = {fuzz::Buffer(46), fuzz::Buffer(46)};
    HOLDS(GetIPv4DnsServer(back[0].Get(), back[1].Get()));
    HOLDS(back[0].Get() == primary && back[1].Get() == secondary);
    if (has6) {
        HOLDS(GetIPv6DnsServer(back[0].Get(), back[1].Get(), 46));
        HOLDS(strcmp(back[0].Get(), six[0].Get()) == 0);
        HOLDS(strcmp(back[1].Get(), six[1].Get()) == 0);
    }
    HOLDS(fuzz::OpenHandles() == 0);
    HOLDS(fuzz::HeapBlocks() == 0);
    return 0;
}
