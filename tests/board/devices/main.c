// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: GPL-2.0-only
/* What is put in and taken out: each device only when its parameter asks. */
#include <linux/kernel.h>
#include <linux/module.h>

#include "board.h"

static const struct {
	int (*init)(void);
	void (*exit)(void);
} parts[] = {
	{ board_trace_init, board_trace_exit },
	{ board_flash_init, board_flash_exit },
	{ board_memory_init, board_memory_exit },
	{ board_poe_init, board_poe_exit },
	{ board_cards_init, board_cards_exit },
	{ board_stp_init, board_stp_exit },
};

static void take_out(size_t count)
{
	while (count > 0)
		parts[--count].exit();
}

static int __init board_init(void)
{
	size_t i;
	int error;

	for (i = 0; i < ARRAY_SIZE(parts); i++) {
		error = parts[i].init();
		if (error) {
			take_out(i);
			return error;
		}
	}
	return 0;
}

static void __exit board_exit(void)
{
	take_out(ARRAY_SIZE(parts));
}

module_init(board_init);
module_exit(board_exit);
MODULE_DESCRIPTION("Simulated hardware of the device");
MODULE_LICENSE("GPL");
