/* SPDX-FileCopyrightText: 2026 the Vorlix network layer authors */
/* SPDX-License-Identifier: MIT */

/*
 * Version 3: an object for each interface, and one for a bridge.
 *
 *     interfaces                            lists the interfaces
 *     interfaces <card> <address> <mask>    sets and saves a card's address
 *     interfaces bridge <name> <card>...    makes a bridge, lists its ports, and ends it again
 *
 * The listing changes nothing, but that it saves the work mode of a card whose file has none, and
 * an address of eth0 which the backup memory alone has. The library's log goes to standard output
 * too.
 */
#include <Pal/Net3.h>

#include <inttypes.h>
#include <stdio.h>
#include <string.h>

enum { kMost = 32 };

/* The object of an interface, or NULL. It lives as long as the process, and nobody frees it. */
static NetInterface* Find(const char* name)
{
    NetInterfaceDesc desc = {.name = name};
    NetInterface* card = NULL;
    return createNetInterface(&desc, &card) == 0 ? card : NULL;
}

static void Show(const NetInterfaceInfo* info)
{
    NetInterface* card = Find(info->name);
    if (card == NULL) return; /* gone since the list was made */

    char address[16] = "-";
    char mask[16] = "-";
    NetDataStat counters = {0};
    (void)card->getHostIP(card, address, sizeof address, mask, sizeof mask);
    (void)card->getDataStat(card, &counters);
    printf("%-12s %-4s %-15s %-15s %5d Mbit/s  received %" PRIu64 "  sent %" PRIu64 "\n",
           info->name, card->miiDiag(card) == 0 ? "link" : "-", address, mask, info->speed,
           counters.receivedBytes, counters.transmittedBytes);
}

static int List(void)
{
    NetInterfaceInfo list[kMost];
    int number = kMost;
    if (getNetInterfaceList(list, &number) != 0) return 1;

    for (int i = 0; i < number; i++) Show(&list[i]);
    return 0;
}

static int SetAddress(const char* name, const char* address, const char* mask)
{
    NetInterface* card = Find(name);
    return card != NULL && card->setHostIP(card, address, mask) == 0 ? 0 : 1;
}

/* Unlike a card's, a bridge's object is counted: its last release ends the bridge itself. */
static int ShowBridge(const char* name, const char** cards, int number)
{
    NetBrDesc desc = {.name = name, .subDev = cards, .num = number};
    NetBridge* bridge = NULL;
    if (createNetBridge(&desc, &bridge) != 0) return 1;

    QV_PAL_NetBrDevice ports[kMost];
    int found = kMost;
    const int result = bridge->getBridgeDevices(bridge, ports, &found);
    for (int i = 0; result == 0 && i < found; i++) printf("%s has %s\n", name, ports[i].name);
    (void)bridge->release(bridge);
    return result == 0 ? 0 : 1;
}

int main(int argc, char** argv)
{
    if (argc == 1) return List();
    if (argc >= 4 && strcmp(argv[1], "bridge") == 0) {
        return ShowBridge(argv[2], (const char**)&argv[3], argc - 3);
    }
    if (argc == 4) return SetAddress(argv[1], argv[2], argv[3]);

    fprintf(stderr, "usage: %s [<card> <address> <mask> | bridge <name> <card>...]\n", argv[0]);
    return 2;
}
