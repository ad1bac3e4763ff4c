// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: GPL-2.0-only
/*
 * Two cards that are known by the names of their drivers: the interface that a
 * switch chip stands behind, and the internal virtual card. Neither has a wire;
 * what they are given to send is gone.
 */
#include <linux/bits.h>
#include <linux/etherdevice.h>
#include <linux/ethtool.h>
#include <linux/module.h>
#include <linux/netdevice.h>
#include <linux/version.h>

#include "board.h"

#define SWITCH_INFO    0x89F1
#define SWITCH_MAC     0x89F2
#define SWITCH_PORT    0x89F3
#define SWITCH_ENABLE  0x89F4
#define SWITCH_ISOLATE 0x89F8

/* Lies in the request itself, behind the name. */
struct switch_info {
	u16 link_mask;
	u8 port_num;
	u8 port_index;
	u8 mac[ETH_ALEN];
	u16 enable;
	u16 isolation;
};

static_assert(sizeof(struct switch_info) == 14);
static_assert(offsetof(struct ifreq, ifr_ifru) == 16);

static bool with_switch;
module_param(with_switch, bool, 0444);
MODULE_PARM_DESC(with_switch, "put in a switch interface, the next free ethN");

static bool with_vnic;
module_param(with_vnic, bool, 0444);
MODULE_PARM_DESC(with_vnic, "put in the internal virtual card, vnic0");

static u8 port_num = 8;
module_param(port_num, byte, 0644);
MODULE_PARM_DESC(port_num, "ports of the switch");

static ushort link_mask = 0x05;
module_param(link_mask, ushort, 0644);
MODULE_PARM_DESC(link_mask, "ports with a link");

static uint nobody_mask;
module_param(nobody_mask, uint, 0644);
MODULE_PARM_DESC(nobody_mask, "ports whose hardware address reads as all ones");

/* The device on a port: its last byte is the port. */
static const u8 first_mac[ETH_ALEN] = { 0x02, 0, 0, 0, 0xf0, 0 };

static int mac_of_port(struct switch_info *info)
{
	if (info->port_index >= port_num)
		return -EINVAL;
	ether_addr_copy(info->mac, first_mac);
	info->mac[ETH_ALEN - 1] = info->port_index;
	if (info->port_index < 32 && nobody_mask & BIT(info->port_index))
		eth_broadcast_addr(info->mac);
	return 0;
}

static int port_of_mac(struct switch_info *info)
{
	if (memcmp(info->mac, first_mac, ETH_ALEN - 1) ||
	    info->mac[ETH_ALEN - 1] >= port_num)
		return -ENOENT;
	info->port_index = info->mac[ETH_ALEN - 1];
	return 0;
}

static int answer(int cmd, struct switch_info *info)
{
	switch (cmd) {
	case SWITCH_INFO:
		info->link_mask = link_mask;
		info->port_num = port_num;
		return 0;
	case SWITCH_MAC:
		return mac_of_port(info);
	case SWITCH_PORT:
		return port_of_mac(info);
	case SWITCH_ENABLE:
		return info->port_index < port_num ? 0 : -EINVAL;
	case SWITCH_ISOLATE:
		return 0;
	default:
		return -EOPNOTSUPP;
	}
}

static int switch_request(struct ifreq *request, int cmd)
{
	struct switch_info info;
	int error;

	memcpy(&info, &request->ifr_ifru, sizeof(info));
	error = board_request("switch %x %*phN", cmd, (int)sizeof(info), &info);
	if (!error)
		error = answer(cmd, &info);
	if (!error)
		memcpy(&request->ifr_ifru, &info, sizeof(info));
	return error;
}

#if LINUX_VERSION_CODE < KERNEL_VERSION(5, 15, 0)
static int switch_private(struct net_device *dev, struct ifreq *request,
			  int cmd)
{
	return switch_request(request, cmd);
}
#define ndo_siocdevprivate ndo_do_ioctl /* its name in older kernels */
#else
static int switch_private(struct net_device *dev, struct ifreq *request,
			  void __user *data, int cmd)
{
	return switch_request(request, cmd);
}
#endif

static netdev_tx_t card_send(struct sk_buff *skb, struct net_device *dev)
{
	dev_kfree_skb(skb);
	return NETDEV_TX_OK;
}

static const struct net_device_ops switch_ops = {
	.ndo_start_xmit = card_send,
	.ndo_set_mac_address = eth_mac_addr,
	.ndo_siocdevprivate = switch_private,
};

static const struct net_device_ops vnic_ops = {
	.ndo_start_xmit = card_send,
	.ndo_set_mac_address = eth_mac_addr,
};

static void switch_driver(struct net_device *dev, struct ethtool_drvinfo *info)
{
	strscpy(info->driver, "sim Switch drv", sizeof(info->driver));
}

static void vnic_driver(struct net_device *dev, struct ethtool_drvinfo *info)
{
	strscpy(info->driver, "pcit virt nic", sizeof(info->driver));
}

static int card_settings(struct net_device *dev,
			 struct ethtool_link_ksettings *settings)
{
	settings->base.speed = SPEED_1000;
	settings->base.duplex = DUPLEX_FULL;
	settings->base.port = PORT_TP;
	return 0;
}

static const struct ethtool_ops switch_ethtool = {
	.get_drvinfo = switch_driver,
	.get_link = ethtool_op_get_link,
	.get_link_ksettings = card_settings,
};

static const struct ethtool_ops vnic_ethtool = {
	.get_drvinfo = vnic_driver,
	.get_link = ethtool_op_get_link,
	.get_link_ksettings = card_settings,
};

static struct net_device *switch_card;
static struct net_device *vnic_card;

static int put_in(struct net_device **card, const char *name,
		  const struct net_device_ops *ops,
		  const struct ethtool_ops *ethtool)
{
	struct net_device *dev =
		alloc_netdev(0, name, NET_NAME_ENUM, ether_setup);
	int error;

	if (!dev)
		return -ENOMEM;
	dev->netdev_ops = ops;
	dev->ethtool_ops = ethtool;
	eth_hw_addr_random(dev);
	error = register_netdev(dev);
	if (error) {
		free_netdev(dev);
		return error;
	}
	*card = dev;
	return 0;
}

static void take_out(struct net_device *dev)
{
	if (!dev)
		return;
	unregister_netdev(dev);
	free_netdev(dev);
}

void board_cards_exit(void)
{
	take_out(vnic_card);
	take_out(switch_card);
}

int board_cards_init(void)
{
	int error = 0;

	if (with_switch)
		error = put_in(&switch_card, "eth%d", &switch_ops,
			       &switch_ethtool);
	if (!error && with_vnic)
		error = put_in(&vnic_card, "vnic%d", &vnic_ops, &vnic_ethtool);
	if (error)
		board_cards_exit();
	return error;
}
