// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: GPL-2.0-only
/* /proc/stp_ctrl: the last word written to it is read back. */
#include <linux/module.h>
#include <linux/proc_fs.h>
#include <linux/uaccess.h>

#include "board.h"

static bool with_stp;
module_param(with_stp, bool, 0444);
MODULE_PARM_DESC(with_stp, "put in the spanning tree switch");

static char word[32];
static size_t word_size;

static ssize_t stp_read(struct file *file, char __user *text, size_t count,
			loff_t *place)
{
	return simple_read_from_buffer(text, count, place, word, word_size);
}

static ssize_t stp_write(struct file *file, const char __user *text,
			 size_t count, loff_t *place)
{
	char taken[sizeof(word)] = "";
	int error;

	if (count >= sizeof(taken))
		return -EINVAL;
	if (copy_from_user(taken, text, count))
		return -EFAULT;
	error = board_request("stp %s", taken);
	if (error)
		return error;
	memcpy(word, taken, sizeof(word));
	word_size = count;
	return count;
}

static const struct proc_ops stp_ops = {
	.proc_read = stp_read,
	.proc_write = stp_write,
	.proc_lseek = default_llseek,
};

int board_stp_init(void)
{
	if (!with_stp)
		return 0;
	return proc_create("stp_ctrl", 0600, NULL, &stp_ops) ? 0 : -ENOMEM;
}

void board_stp_exit(void)
{
	if (with_stp)
		remove_proc_entry("stp_ctrl", NULL);
}
