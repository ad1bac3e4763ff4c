/* SPDX-FileCopyrightText: 2026 the Vorlix network layer authors */
/* SPDX-License-Identifier: MIT */

/*
 * Version 2: what the device's network looks like, by functions that take the card's name.
 * Changes nothing, but that an address of eth0 which the backup memory alone has is saved by the
 * asking. The library's log goes to standard output too.
 */
#include <Pal/NetApi2_0.h>

#include <inttypes.h>
#include <stdio.h>

enum { kMost = 32 };

static void ShowCard(const NetDevice* device)
{
    char address[16] = "-";
    char mask[16] = "-";
    char mac[18] = "-";
    int32_t mtu = 0;
    struct NetStats stats = {0, 0};

    (void)NetGetHostIPEx(device->name, address, sizeof address, mask, sizeof mask);
    (void)NetGetMAC(device->name, mac, sizeof mac);
    (void)NetGetMTU(device->name, &mtu);
    (void)NetGetStats(device->name, &stats);
    printf("%-12s %-4s %-15s %-15s %-17s mtu %" PRId32 "  received %" PRIu64 "  sent %" PRIu64 "\n",
           device->name, NetGetLinkStatus(device->name) == 0 ? "link" : "-", address, mask, mac,
           mtu, stats.rx_bytes, stats.tx_bytes);
}

int main(void)
{
    uint32_t version = 0;
    NetCaps caps = {0, {0}};
    NetDevice devices[kMost];
    const int32_t number = NetGetAllEthDevice(devices, kMost);

    (void)LibvorlixGetVersion(&version);
    (void)NetGetCaps(&caps);
    printf("interface %" PRIu32 ", %" PRId32 " network cards\n", version, caps.cardNum);
    for (int32_t i = 0; i < number; i++) ShowCard(&devices[i]);

    char primary[16];
    char secondary[16];
    if (NetGetDNSAddress(primary, sizeof primary, secondary, sizeof secondary) == 0) {
        printf("name servers %s %s\n", primary, secondary);
    }
    return number > 0 ? 0 : 1;
}
