// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "VirtInter.h"

#include "Netlink.h"

int VirtInter_IpVlanAdd(char* host, char* virt, uint32_t mode, uint32_t flag)
{
    return Netlink_Ipv4Link_IpVlan(RTM_NEWLINK, host, virt, mode, flag);
}

int VirtInter_IpVlanDel(char* host, char* virt)
{
    return Netlink_Ipv4Link_IpVlan(RTM_DELLINK, host, virt, 0, 0);
}

int VirtInter_MacVlanAdd(char* host, char* virt, uint32_t mode, uint32_t flag, uint32_t addrMode,
                         char* addr)
{
    return Netlink_Ipv4Link_MacVlan(RTM_NEWLINK, host, virt, mode, flag, addrMode, addr);
}

int VirtInter_MacVlanDel(char* host, char* virt)
{
    return Netlink_Ipv4Link_MacVlan(RTM_DELLINK, host, virt, 0, 0, 0, nullptr);
}
