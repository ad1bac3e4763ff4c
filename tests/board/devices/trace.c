// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: GPL-2.0-only
/*
 * /proc/board_trace: the requests in order, one a line; writing anything
 * forgets them. A request that was refused by order has " refused" behind it.
 */
#include <linux/kernel.h>
#include <linux/module.h>
#include <linux/mutex.h>
#include <linux/proc_fs.h>
#include <linux/seq_file.h>

#include "board.h"

#define TRACE_LINES 512
#define LINE_SIZE   96

static int fail_next;
module_param(fail_next, int, 0644);
MODULE_PARM_DESC(fail_next, "errno of the next request; 0 lets it pass");

static unsigned int fail_after;
module_param(fail_after, uint, 0644);
MODULE_PARM_DESC(fail_after,
		 "requests that still pass before fail_next counts");

static DEFINE_MUTEX(trace_lock);
static char trace[TRACE_LINES][LINE_SIZE];
static unsigned int trace_count; /* of all requests, kept or not */

/* The errno that it is this request's turn for, once. */
static int take_failure(void)
{
	int error = fail_next;

	if (!error)
		return 0;
	if (fail_after > 0) {
		fail_after--;
		return 0;
	}
	fail_next = 0;
	return error;
}

int board_request(const char *format, ...)
{
	char text[LINE_SIZE - 16];
	va_list arguments;
	int error;

	va_start(arguments, format);
	vscnprintf(text, sizeof(text), format, arguments);
	va_end(arguments);

	mutex_lock(&trace_lock);
	error = take_failure();
	if (trace_count < TRACE_LINES)
		scnprintf(trace[trace_count], LINE_SIZE, "%s%s", text,
			  error ? " refused" : "");
	trace_count++;
	mutex_unlock(&trace_lock);
	return -error;
}

static int trace_show(struct seq_file *file, void *unused)
{
	unsigned int i;

	mutex_lock(&trace_lock);
	for (i = 0; i < min(trace_count, (unsigned int)TRACE_LINES); i++)
		seq_printf(file, "%s\n", trace[i]);
	mutex_unlock(&trace_lock);
	return 0;
}

static int trace_open(struct inode *inode, struct file *file)
{
	return single_open(file, trace_show, NULL);
}

static ssize_t trace_write(struct file *file, const char __user *text,
			   size_t count, loff_t *place)
{
	mutex_lock(&trace_lock);
	trace_count = 0;
	mutex_unlock(&trace_lock);
	return count;
}

static const struct proc_ops trace_ops = {
	.proc_open = trace_open,
	.proc_read = seq_read,
	.proc_write = trace_write,
	.proc_lseek = seq_lseek,
	.proc_release = single_release,
};

int board_trace_init(void)
{
	return proc_create("board_trace", 0600, NULL, &trace_ops) ? 0 : -ENOMEM;
}

void board_trace_exit(void)
{
	remove_proc_entry("board_trace", NULL);
}
