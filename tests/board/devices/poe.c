// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: GPL-2.0-only
/*
 * /dev/qv_poe: the power supply of the ports. A port that is fed draws 70 and
 * its number; all numbers of the record are different, so that a field in the
 * wrong place shows.
 */
#include <linux/bits.h>
#include <linux/fs.h>
#include <linux/miscdevice.h>
#include <linux/module.h>
#include <linux/uaccess.h>

#include "board.h"

#define POE_PORTS 32

#define POE_GET_INFO  0x81005001
#define POE_POWER_OFF 0x40045002
#define POE_POWER_ON  0x40045003
#define POE_TOTAL     0x40045005

struct poe_info {
	u32 det_flag;
	u32 power_flag;
	u32 total_power;
	u16 power[POE_PORTS];
	u32 power_off;
	u32 power_fail;
	u32 power_on_mask;
	u32 power_off_mask;
	u32 rate_power;
	u32 available_power;
	u32 average_power;
	u32 reserved[38];
};

static_assert(sizeof(struct poe_info) == 256);

static bool with_poe;
module_param(with_poe, bool, 0444);
MODULE_PARM_DESC(with_poe, "put in the power supply of the ports");

static struct poe_info info = {
	.det_flag = 0x0f,
	.total_power = 1200,
	.power_off = 31,
	.power_fail = 32,
	.rate_power = 33,
	.available_power = 34,
	.average_power = 35,
	.reserved = { [0] = 36, [37] = 37 },
};

static void feed(u32 ports)
{
	int port;

	info.power_flag = ports;
	for (port = 0; port < POE_PORTS; port++)
		info.power[port] = ports & BIT(port) ? 70 + port : 0;
}

static long tell_info(void __user *arg)
{
	int error = board_request("poe info");

	if (error)
		return error;
	return copy_to_user(arg, &info, sizeof(info)) ? -EFAULT : 0;
}

/* The value is the argument itself. */
static long change(unsigned int cmd, const char *verb, unsigned long value)
{
	int error = board_request("poe %s 0x%lx", verb, value);

	if (error)
		return error;
	if (upper_32_bits(value))
		return -EINVAL;
	if (cmd == POE_TOTAL) {
		info.total_power = value;
	} else if (cmd == POE_POWER_ON) {
		info.power_on_mask = value;
		feed(info.power_flag | value);
	} else {
		info.power_off_mask = value;
		feed(info.power_flag & ~value);
	}
	return 0;
}

static long poe_ioctl(struct file *file, unsigned int cmd, unsigned long arg)
{
	switch (cmd) {
	case POE_GET_INFO:
		return tell_info((void __user *)arg);
	case POE_POWER_OFF:
		return change(cmd, "off", arg);
	case POE_POWER_ON:
		return change(cmd, "on", arg);
	case POE_TOTAL:
		return change(cmd, "total", arg);
	default:
		return -ENOTTY;
	}
}

static const struct file_operations poe_ops = {
	.owner = THIS_MODULE,
	.unlocked_ioctl = poe_ioctl,
};

static struct miscdevice poe_device = {
	.minor = MISC_DYNAMIC_MINOR,
	.name = "qv_poe",
	.fops = &poe_ops,
};

int board_poe_init(void)
{
	return with_poe ? misc_register(&poe_device) : 0;
}

void board_poe_exit(void)
{
	if (with_poe)
		misc_deregister(&poe_device);
}
