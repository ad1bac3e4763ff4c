#pragma once

#include <cstddef>

#include <sys/types.h>

namespace vorlix {

/// Size of a line buffer: 255 characters and the terminator. A longer line is read as several.
constexpr int kLineSize = 256;

/// Reads a descriptor line by line from offset 0, as `fgets` does, but without heap and always
/// afresh: a kept stream would go on answering from its buffer after the table behind it has
/// changed.
class LineReader {
public:
    /// The descriptor stays the caller's; its own file position is not used.
    explicit LineReader(int fd) : fd_(fd) {}

    /// Stores the next piece, newline included, with its terminator. False at end of file or when
    /// the file cannot be read; `line` then keeps what it had.
    bool Next(char (&line)[kLineSize]);

private:
    bool Refill();

    int fd_;
    off_t offset_ = 0;
    size_t begin_ = 0;
    size_t end_ = 0;
    char buffer_[4096];  // the kernel hands out its tables in pieces of one page
};

}  // namespace vorlix
