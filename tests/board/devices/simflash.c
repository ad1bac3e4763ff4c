// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: GPL-2.0-only
/*
 * A NOR flash and the memory of a battery, both in a file of the host that
 * QEMU shows as BAR 2 of an ivshmem-plain device, so that they outlive the
 * machine; and a cut of the power after a given number of flash bytes.
 *
 * A byte counts when it has been programmed. A sector is erased in slices of
 * ERASE_SLICE bytes, each of which counts as one byte, so that the power can
 * also fail in the middle of an erasure. Programming clears bits and never
 * sets them. No byte is ever half done.
 */
#include <linux/io.h>
#include <linux/irqflags.h>
#include <linux/math64.h>
#include <linux/module.h>
#include <linux/mtd/mtd.h>
#include <linux/pci.h>
#include <linux/reboot.h>
#include <linux/string.h>

#include "board.h"

#define IVSHMEM_VENDOR 0x1AF4
#define IVSHMEM_DEVICE 0x1110
#define IVSHMEM_BAR    2

#define BATTERY_SIZE (16 * 1024)
#define ERASE_SLICE  1024

static bool with_flash;
module_param(with_flash, bool, 0444);
MODULE_PARM_DESC(with_flash, "put in the flash");

static unsigned int flash_sector = 16 * 1024;
module_param(flash_sector, uint, 0444);
MODULE_PARM_DESC(flash_sector, "bytes that are erased together, whole KiB");

static unsigned int cut_after;
module_param(cut_after, uint, 0644);
MODULE_PARM_DESC(cut_after, "flash bytes until the power fails, 0 for never");

static unsigned int flash_bytes;
module_param(flash_bytes, uint, 0644);
MODULE_PARM_DESC(flash_bytes, "flash bytes so far");

static unsigned int flash_erasures;
module_param(flash_erasures, uint, 0644);
MODULE_PARM_DESC(flash_erasures, "sectors erased so far");

static struct pci_dev *shared;
static u8 *cells; /* the flash, and at the end what the battery keeps */
static u8 *battery;

static void count_byte(void)
{
	flash_bytes++;
	if (!cut_after || --cut_after)
		return;
	local_irq_disable();
	emergency_restart();
	for (;;)
		cpu_relax();
}

static int flash_read(struct mtd_info *mtd, loff_t from, size_t len,
		      size_t *retlen, u_char *buf)
{
	memcpy(buf, cells + from, len);
	*retlen = len;
	return 0;
}

static int flash_write(struct mtd_info *mtd, loff_t to, size_t len,
		       size_t *retlen, const u_char *buf)
{
	for (*retlen = 0; *retlen < len; ++*retlen) {
		WRITE_ONCE(cells[to + *retlen],
			   cells[to + *retlen] & buf[*retlen]);
		count_byte();
	}
	return 0;
}

static int flash_erase(struct mtd_info *mtd, struct erase_info *area)
{
	u64 done;

	for (done = 0; done < area->len; done += ERASE_SLICE) {
		memset(cells + area->addr + done, 0xFF, ERASE_SLICE);
		count_byte();
	}
	flash_erasures += div_u64(area->len, flash_sector);
	return 0;
}

static struct mtd_info flash = {
	.name = "simflash",
	.type = MTD_NORFLASH,
	.flags = MTD_CAP_NORFLASH,
	.writesize = 1,
	.writebufsize = 1,
	.owner = THIS_MODULE,
	._read = flash_read,
	._write = flash_write,
	._erase = flash_erase,
};

u8 *board_battery(size_t size)
{
	return cells && size <= BATTERY_SIZE ? battery : NULL;
}

void board_flash_exit(void)
{
	if (!cells)
		return;
	mtd_device_unregister(&flash);
	memunmap(cells);
	cells = NULL;
	pci_dev_put(shared);
}

int board_flash_init(void)
{
	int error = -ENODEV;
	u64 room;

	if (!with_flash)
		return 0;
	if (!flash_sector || flash_sector % ERASE_SLICE)
		return -EINVAL;
	shared = pci_get_device(IVSHMEM_VENDOR, IVSHMEM_DEVICE, NULL);
	if (!shared)
		return error;
	error = pci_enable_device_mem(shared);
	if (error)
		goto put;
	error = -ENOMEM;
	cells = memremap(pci_resource_start(shared, IVSHMEM_BAR),
			 pci_resource_len(shared, IVSHMEM_BAR), MEMREMAP_WB);
	if (!cells)
		goto put;
	room = pci_resource_len(shared, IVSHMEM_BAR) - BATTERY_SIZE;
	battery = cells + room;
	flash.erasesize = flash_sector;
	flash.size = div_u64(room, flash_sector) * flash_sector;
	error = mtd_device_register(&flash, NULL, 0);
	if (!error)
		return 0;
	memunmap(cells);
	cells = NULL;
put:
	pci_dev_put(shared);
	return error;
}
