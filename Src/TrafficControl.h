// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

/// Limits on what a card sends to single peers, set by the tool `tc`, and the file that lists them.
///
/// A card gets an HTB root when its first limit is set; each limited peer then gets a class of its
/// own, a filter that sends its packets there, and an SFQ leaf. The first class of the process has
/// the number that the roots name as their default: on the card of that limit, all traffic that no
/// filter matches shares its rate. On other cards such traffic has no limit.
///
/// A process can set 999 limits, of all cards together; removals, and the limits that a removal
/// sets anew, use numbers up too. The number of the next class no longer fits what `tc` reads,
/// which refuses it.
///
/// What the bookkeeping knows is what the shell runner said: a command that `tc` itself refuses
/// counts as done. Names and addresses go into commands as they stand, so the caller vouches for
/// them. The tool needs the rights of root; the caller waits for it. NULL gives false, silently,
/// everywhere. Of an `ipAddr` at most 47 characters take part.
///
/// State lives as long as the process and is not locked: callers keep apart. A new process knows
/// nothing of the roots of the one before it; its first limit on a card replaces them. The file is
/// not read at a start: no limit comes back by itself.

#include "Types.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Gives a card its HTB root, once in the life of the process. What an earlier process left there
/// is removed first.
///
/// @return true also for a card that has it already
/// @errors a card that no longer fits the list of cards (255 characters with a comma before each),
///         a root that could not be added: Error; a removal that could not be run: Warn
VORLIX_API bool TC_InitDev(const char* name);

/// Takes root and ingress away from a card that has a root from this process, and all its limits
/// with them. The card counts as without root afterwards, whatever happened.
///
/// @return true when both commands could be run, and for a card without root, where none is
/// @errors root: Warn; ingress: Error
VORLIX_API bool TC_DeinitDev(const char* name);

/// Limits what a card sends to `tc.ipAddr` to `tc.bandWidth` mbit: class, filter and leaf under the
/// next class number, which goes on by 10 for each limit of any card and is never used again.
/// Nothing is saved here.
///
/// @return true when all commands could be run, also when `tc` refused them
/// @errors a command that could not be run: Error; what was made before stays, and the next limit
///         takes the same number
VORLIX_API bool TC_SetSendBand(const char* name, const NetTc tc);

/// There are no limits in the receive direction.
///
/// @return always false; the card has got its root nevertheless, which stays
/// @errors Error
VORLIX_API bool TC_SetRcvBand(const char* name, const NetTc tc);

/// Appends a limit to the file of a card, as one line. No comma may stand in a field, and a number
/// of more than 8 characters is never listed again. The file is not synced: a power cut soon after
/// may lose the line.
///
/// @errors a file that cannot be opened or written: Error. What a full flash took of the line stays
///         at the end of the file, and the next line is joined to it
VORLIX_API bool TC_SaveToConfig(const char* name, const NetTc tc);

/// Lists the limits in the file of a card. Lines that are none are passed over: fields missing, no
/// address, an address of more than 47 characters, a number of more than 8.
///
/// @param tc     `*tcNum` records; `resv` is left as it is
/// @param tcNum  capacity on entry, number of limits on return; unchanged on failure
/// @errors no file: Error
VORLIX_API bool TC_GetFromConfig(const char* name, NetTc* tc, int* tcNum);

/// Empties the file of a card, or creates it empty. The file is not synced.
///
/// @errors a file that cannot be opened: Error
VORLIX_API bool TC_DelConfig(const char* name);

#ifdef __cplusplus
}
#endif
