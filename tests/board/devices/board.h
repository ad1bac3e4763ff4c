/* SPDX-FileCopyrightText: 2026 the Vorlix network layer authors */
/* SPDX-License-Identifier: GPL-2.0-only */
/* The device's own hardware, simulated for the tests of the virtual board. */
#ifndef _BOARD_H
#define _BOARD_H

#include <linux/types.h>

/*
 * Each request to any of the devices passes here before it is carried out: it
 * is noted, and it may be its turn to be refused. Returns 0, or the negative
 * errno that the request ends with.
 */
int __printf(1, 2) board_request(const char *format, ...);

int board_trace_init(void);
void board_trace_exit(void);

int board_flash_init(void);
void board_flash_exit(void);

/*
 * What a battery keeps while the board is off, beside the flash; NULL without
 * a flash.
 */
u8 *board_battery(size_t size);

int board_memory_init(void);
void board_memory_exit(void);

int board_poe_init(void);
void board_poe_exit(void);

int board_cards_init(void);
void board_cards_exit(void);

int board_stp_init(void);
void board_stp_exit(void);

#endif
