// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: GPL-2.0-only
/*
 * /dev/pdcRtc and /dev/pdcSramFile: memory that outlives a wipe of the flash.
 * Programs reach it through requests; the tests read and write the nodes as
 * files, which is noted nowhere.
 */
#include <linux/fs.h>
#include <linux/miscdevice.h>
#include <linux/module.h>
#include <linux/uaccess.h>

#include "board.h"

#define MEMORY_SIZE 256

#define PDC_SRAMFILE_CREATE 0xC0085100
#define PDC_SRAMFILE_DELETE 0xC0085101
#define PDC_SRAMFILE_READ   0xC0085102
#define PDC_SRAMFILE_WRITE  0xC0085103
#define PDC_RTC_READSRAM    0xC0085200
#define PDC_RTC_WRITESRAM   0xC0085201

struct sram_param {
	unsigned long handle; /* a pointer, to the programs */
	const char __user *file_name;
	u32 period;
	u32 mode;
	u32 mark_len;
	u32 total_len;
};

struct sram_data {
	unsigned long handle; /* a pointer, to the programs */
	u8 __user *bytes;
	u32 len;
	u32 place;
	u32 reserved[3];
};

struct rtc_data {
	u32 place;
	u32 len;
	u8 __user *bytes;
};

struct board_memory {
	const char *tag;
	bool present;
	u32 size;
	u8 *bytes;
	struct miscdevice device;
};

static bool with_rtc;
module_param(with_rtc, bool, 0444);
MODULE_PARM_DESC(with_rtc, "put in the memory of the RTC chip");

static bool with_sram;
module_param(with_sram, bool, 0444);
MODULE_PARM_DESC(with_sram, "put in the memory behind a file");

/* Any word but 0 does: the handle of the one file there is. */
#define SRAM_HANDLE 0x5AFE

static struct board_memory *memory_of(struct file *file)
{
	return container_of(file->private_data, struct board_memory, device);
}

static int transfer(struct board_memory *memory, bool write, u32 place, u32 len,
		    u8 __user *bytes)
{
	int error = board_request("%s %s %u %u", memory->tag,
				  write ? "write" : "read", place, len);

	if (error)
		return error;
	if (place > memory->size || len > memory->size - place)
		return -EINVAL;
	if (write && copy_from_user(memory->bytes + place, bytes, len))
		return -EFAULT;
	if (!write && copy_to_user(bytes, memory->bytes + place, len))
		return -EFAULT;
	return 0;
}

static long rtc_ioctl(struct file *file, unsigned int cmd, unsigned long arg)
{
	struct rtc_data data;

	if (cmd != PDC_RTC_READSRAM && cmd != PDC_RTC_WRITESRAM)
		return -ENOTTY;
	if (copy_from_user(&data, (void __user *)arg, sizeof(data)))
		return -EFAULT;
	return transfer(memory_of(file), cmd == PDC_RTC_WRITESRAM, data.place,
			data.len, data.bytes);
}

static long sram_create(struct board_memory *memory, void __user *arg)
{
	struct sram_param param;
	char name[32] = "";
	int error;

	if (copy_from_user(&param, arg, sizeof(param)) ||
	    strncpy_from_user(name, param.file_name, sizeof(name) - 1) < 0)
		return -EFAULT;
	error = board_request("%s create %s %u %u %u %u", memory->tag, name,
			      param.period, param.mode, param.mark_len,
			      param.total_len);
	if (error)
		return error;
	if (param.handle || param.total_len > MEMORY_SIZE)
		return -EINVAL;
	memory->size = param.total_len;
	param.handle = SRAM_HANDLE;
	return copy_to_user(arg, &param, sizeof(param)) ? -EFAULT : 0;
}

static long sram_ioctl(struct file *file, unsigned int cmd, unsigned long arg)
{
	struct board_memory *memory = memory_of(file);
	struct sram_data data;

	if (cmd == PDC_SRAMFILE_CREATE)
		return sram_create(memory, (void __user *)arg);
	if (cmd != PDC_SRAMFILE_READ && cmd != PDC_SRAMFILE_WRITE)
		return -ENOTTY;
	if (copy_from_user(&data, (void __user *)arg, sizeof(data)))
		return -EFAULT;
	if (data.handle != SRAM_HANDLE || data.reserved[0] ||
	    data.reserved[1] || data.reserved[2])
		return -EINVAL;
	return transfer(memory, cmd == PDC_SRAMFILE_WRITE, data.place, data.len,
			data.bytes);
}

static ssize_t memory_read(struct file *file, char __user *text, size_t count,
			   loff_t *place)
{
	return simple_read_from_buffer(text, count, place,
				       memory_of(file)->bytes, MEMORY_SIZE);
}

static ssize_t memory_write(struct file *file, const char __user *text,
			    size_t count, loff_t *place)
{
	return simple_write_to_buffer(memory_of(file)->bytes, MEMORY_SIZE,
				      place, text, count);
}

static const struct file_operations rtc_ops = {
	.owner = THIS_MODULE,
	.read = memory_read,
	.write = memory_write,
	.llseek = default_llseek,
	.unlocked_ioctl = rtc_ioctl,
};

static const struct file_operations sram_ops = {
	.owner = THIS_MODULE,
	.read = memory_read,
	.write = memory_write,
	.llseek = default_llseek,
	.unlocked_ioctl = sram_ioctl,
};

static u8 rtc_bytes[MEMORY_SIZE];
static u8 sram_bytes[MEMORY_SIZE];

static struct board_memory rtc = {
	.tag = "rtc",
	.bytes = rtc_bytes,
	.size = MEMORY_SIZE,
	.device = { .minor = MISC_DYNAMIC_MINOR,
		    .name = "pdcRtc",
		    .fops = &rtc_ops },
};

static struct board_memory sram = {
	.tag = "sram",
	.bytes = sram_bytes,
	.device = { .minor = MISC_DYNAMIC_MINOR,
		    .name = "pdcSramFile",
		    .fops = &sram_ops },
};

static int put_in(struct board_memory *memory, bool wanted)
{
	int error = wanted ? misc_register(&memory->device) : 0;

	memory->present = wanted && !error;
	return error;
}

void board_memory_exit(void)
{
	if (rtc.present)
		misc_deregister(&rtc.device);
	if (sram.present)
		misc_deregister(&sram.device);
}

int board_memory_init(void)
{
	u8 *kept = board_battery(MEMORY_SIZE);
	int error;

	if (kept)
		rtc.bytes = kept;
	error = put_in(&rtc, with_rtc);

	if (!error)
		error = put_in(&sram, with_sram);
	if (error)
		board_memory_exit();
	return error;
}
