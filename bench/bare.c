/* SPDX-FileCopyrightText: 2026 the Vorlix network layer authors */
/* SPDX-License-Identifier: MIT */

/*
 * The kernel changes of a boot and nothing else: each card up, with address, mask and MTU, its net
 * route taken away and put back, one default route. No file, no log, no question.
 *
 * usage: bare COUNT: cards eth0 to eth<COUNT-1>, 10.<n>.0.2/24, default gateway 10.0.0.1
 */
#include <arpa/inet.h>
#include <net/if.h>
#include <net/route.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

static int control;

static void Put(struct sockaddr* place, const char* text)
{
    struct sockaddr_in address = {.sin_family = AF_INET};
    inet_pton(AF_INET, text, &address.sin_addr);
    memcpy(place, &address, sizeof(address));
}

static void Request(unsigned long code, struct ifreq* record)
{
    if (ioctl(control, code, record) < 0) perror("request");
}

static void BringUp(const char* card, const char* address)
{
    struct ifreq record;
    memset(&record, 0, sizeof(record));
    snprintf(record.ifr_name, sizeof(record.ifr_name), "%s", card);
    Request(SIOCGIFFLAGS, &record);
    record.ifr_flags |= IFF_UP;
    Request(SIOCSIFFLAGS, &record);
    Put(&record.ifr_addr, address);
    Request(SIOCSIFADDR, &record);
    Put(&record.ifr_netmask, "255.255.255.0");
    Request(SIOCSIFNETMASK, &record);
    record.ifr_mtu = 1500;
    Request(SIOCSIFMTU, &record);
}

static void Route(unsigned long code, const char* net, const char* gateway, char* card)
{
    struct rtentry record;
    memset(&record, 0, sizeof(record));
    Put(&record.rt_dst, net);
    record.rt_flags = RTF_UP;
    record.rt_dev = card;
    if (gateway != NULL) {
        Put(&record.rt_gateway, gateway);
        record.rt_flags |= RTF_GATEWAY;
        Put(&record.rt_genmask, "0.0.0.0");
    } else {
        Put(&record.rt_genmask, "255.255.255.0");
    }
    if (ioctl(control, code, &record) < 0) perror("route");
}

int main(int argc, char** argv)
{
    const int count = argc > 1 ? atoi(argv[1]) : 1;
    char card[16];
    char text[32];
    control = socket(AF_INET, SOCK_DGRAM, 0);
    for (int i = 0; i < count; ++i) {
        snprintf(card, sizeof(card), "eth%d", i);
        snprintf(text, sizeof(text), "10.%d.0.2", i);
        BringUp(card, text);
    }
    for (int pass = 0; pass < 2; ++pass) {
        for (int i = 0; i < count; ++i) {
            snprintf(card, sizeof(card), "eth%d", i);
            snprintf(text, sizeof(text), "10.%d.0.0", i);
            Route(pass == 0 ? SIOCDELRT : SIOCADDRT, text, NULL, card);
        }
    }
    snprintf(card, sizeof(card), "eth0");
    Route(SIOCADDRT, "0.0.0.0", "10.0.0.1", card);
    return 0;
}
