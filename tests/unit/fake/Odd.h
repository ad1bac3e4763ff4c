// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// Answers that a kernel may give and rarely does. The variable VORLIX_ODD_ANSWERS turns one kind on
// for a whole run of the unit ring, where nothing may change by it:
//   descriptors  the first descriptor that the product opens is 0, save a routing socket's
//   files        sockets are numbered from 100 on, the first other descriptor is 0
//   results      a request that was carried out returns 1, where 0 alone is not a success
//   pieces       a read of a file or table gives a few bytes at a time

#include <cstddef>

#include <sys/types.h>

namespace fake {

enum class Odd { nothing, descriptors, files, results, pieces };

/// What the variable says, or the test.
Odd OddAnswers();

/// For the rest of this test, whatever the variable says. To be asked for before anything is
/// opened.
void AnswerOddly(Odd kind);

/// The number that the next socket of a family gets.
int NextSocket(int family);

// ---- for the parts of the fake

/// Gives the descriptor 0 free where the product shall get it.
void FreeLowDescriptors();

/// A new socket, under a higher number where the others shall get the low ones.
int Numbered(int socket, int family);

/// Whether a read at this place goes on with one that has been noted and was given a part, and how
/// many bytes it gives of `size`.
bool GoesOn(int fd, off_t offset);
size_t PieceOf(int fd, size_t size, off_t offset);

}  // namespace fake
