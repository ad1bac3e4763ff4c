// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Texts of addresses and hardware addresses: whatever parses prints as a text that parses to the
// same, and a change of the kernel is asked for with no other text.

#include "Fuzz.h"

#include "Network.h"
#include "Network6.h"
#include "Other.h"
#include "Support/Text.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include <arpa/inet.h>
#include <linux/sockios.h>

namespace {

void RoundTrips(const char* text)
{
    uint32_t value = 0;
    char printed[vorlix::kIPv4TextSize];
    if (vorlix::ParseIPv4(text, &value)) {
        HOLDS(vorlix::PrintIPv4(value, printed));
        uint32_t again = 0;
        HOLDS(vorlix::ParseIPv4(printed, &again) && again == value);
    }
    in_addr loose{};
    in_addr libc{};
    HOLDS(vorlix::ParseLooseIPv4(text, &loose) == (inet_aton(text, &libc) != 0));
    HOLDS(loose.s_addr == libc.s_addr);
    in6_addr value6{};
    char printed6[INET6_ADDRSTRLEN];
    if (vorlix::ParseIPv6(text, &value6)) {
        HOLDS(!vorlix::PrintIPv6(value6, printed6, 0));
        HOLDS(!vorlix::PrintIPv6(value6, printed6, 2));
        HOLDS(vorlix::PrintIPv6(value6, printed6, sizeof(printed6)));
        in6_addr again{};
        HOLDS(vorlix::ParseIPv6(printed6, &again) && memcmp(&again, &value6, sizeof(again)) == 0);
    }
    unsigned char mac[vorlix::kMacSize] = {};
    if (vorlix::ParseMac(text, mac)) {
        char macText[vorlix::kMacTextSize];
        vorlix::PrintMac(mac, macText);
        unsigned char again[vorlix::kMacSize] = {};
        HOLDS(vorlix::ParseMac(macText, again) && memcmp(again, mac, sizeof(mac)) == 0);
    }
}

bool Asked()
{
    constexpr unsigned long kChanges[] = {SIOCSIFADDR, SIOCSIFHWADDR, SIOCSARP};
    const std::vector<unsigned long>& asked = fuzz::Requests();
    return std::find_first_of(asked.begin(), asked.end(), std::begin(kChanges),
                              std::end(kChanges)) != asked.end();
}

void ChangesNothingByOtherTexts(const char* text)
{
    uint32_t value = 0;
    in_addr loose{};
    unsigned char mac[vorlix::kMacSize] = {};

    fuzz::ForgetRequests();
    (void)Net_SetIPbyName("eth0", text, "255.255.255.0");
    HOLDS(!Asked() || inet_aton(text, &loose) != 0);

    fuzz::ForgetRequests();
    (void)Net_SetMacbyName("eth0", text);
    HOLDS(!Asked() || vorlix::ParseMac(text, mac));

    NetARPEntry entry{};
    vorlix::CopyText(entry.ip, text);
    vorlix::CopyText(entry.mac, "02:00:00:00:00:07");
    fuzz::ForgetRequests();
    (void)arpSetStaticEntry(&entry);
    HOLDS(!Asked() || vorlix::ParseIPv4(entry.ip, &value));
    vorlix::CopyText(entry.ip, "10.0.0.1");
    vorlix::CopyText(entry.mac, text);
    fuzz::ForgetRequests();
    (void)arpSetStaticEntry(&entry);
    HOLDS(!Asked() || vorlix::ParseMac(entry.mac, mac));
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzz::Input input(data, size);
    fuzz::FreshWorld();
    const std::string text = input.Rest();
    RoundTrips(text.c_str());
    ChangesNothingByOtherTexts(text.c_str());

    const fuzz::Buffer linkLocal(static_cast<size_t>(46));
    HOLDS(!Net6_GetLinkLocalFromMac(linkLocal.Get(), 46, text.c_str()) || linkLocal.IsText());
    return 0;
}
