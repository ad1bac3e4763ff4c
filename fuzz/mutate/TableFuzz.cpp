// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "mutate/Mutate.h"

size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t room, unsigned seed)
{
    // Which table, and the room for its rows.
    static const fuzz::LineFormat format = {
        [](const uint8_t* /*bytes*/, size_t /*count*/) { return size_t{2}; },
        {"Inter-|   Receive                                                |  Transmit",
         " face |bytes    packets errs drop fifo frame compressed multicast|bytes",
         "  eth0: 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16",
         "eth1:18446744073709551615 0 0 0 0 0 0 0 0 0",
         " bond0: 0 0 0",
         "   br0: 0",
         "  nbp0: 1 1",
         "vnic0: 1",
         "wlan0: 1 2",
         "eth0123456789abcdef: 1",
         "eth0:poe: 1",
         "veth1: 1",
         "docker0: 1",
         "br-abc: 1",
         "    lo: 1",
         "Iface\\tDestination\\tGateway "
         "\\tFlags\\tRefCnt\\tUse\\tMetric\\tMask\\t\\tMTU\\tWindow\\tIRTT",
         "eth0\\t0000000A\\t00000000\\t0001\\t0\\t0\\t0\\t000000FF\\t0\\t0\\t0",
         "eth0\\t00000000\\t010110AC\\t0003\\t0\\t0\\t100\\t00000000\\t0\\t0\\t0",
         "lo\\t0000007F\\t00000000\\t0001\\t0\\t0\\t0\\t000000FF",
         "20010db8000000000000000000000000 40 00000000000000000000000000000000 00 "
         "00000000000000000000000000000000 00000100 00000001 00000000 00000001     eth0",
         "00000000000000000000000000000000 00 00000000000000000000000000000000 00 "
         "fe800000000000000000000000000001 00000400 00000001 00000000 00000003     eth1",
         "00000000000000000000000000000000 00 00000000000000000000000000000000 00 "
         "00000000000000000000000000000000 ffffffff 00000001 00000000 00200200       lo",
         "20010db8000000000000000000000020 02 40 00 80     eth0",
         "fe80000000000000020000fffe000001 02 40 20 80     eth0",
         "00000000000000000000000000000001 01 80 10 80       lo",
         "IP address       HW type     Flags       HW address            Mask     Device",
         "10.0.0.1         0x1         0x6         02:00:00:00:00:07     *        eth0",
         "10.0.0.2         0x1         0x2         02:00:00:00:00:08     *        eth1",
         "10.0.0.3         0x1         0x0         00:00:00:00:00:00     *        eth0",
         "Inter-| sta-|   Quality        |   Discarded packets",
         " face | tus | link level noise |  nwid",
         " eth2: 0001   60.  -50.  -256",
         " eth2: 0000",
         "wlan0 0001",
         ""}};
    return fuzz::ChangeLines({data, size, room}, seed, format);
}
