#include "Support/Lines.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <unistd.h>

namespace vorlix {

bool LineReader::Refill()
{
    ssize_t count = -1;
    do {
        count = pread(fd_, buffer_, sizeof(buffer_), offset_);
    } while (count < 0 && errno == EINTR);
    if (count <= 0) return false;

    offset_ += count;
    begin_ = 0;
    end_ = static_cast<size_t>(count);
    return true;
}

bool LineReader::Next(char (&line)[kLineSize])
{
    size_t length = 0;
    while (length < sizeof(line) - 1) {
        if (begin_ == end_ && !Refill()) break;

        const size_t room = std::min(sizeof(line) - 1 - length, end_ - begin_);
        const char* from = buffer_ + begin_;
        const void* newline = memchr(from, '\n', room);
        const size_t count =
            newline == nullptr ? room
                               : static_cast<size_t>(static_cast<const char*>(newline) - from) + 1;
        memcpy(line + length, from, count);
        length += count;
        begin_ += count;
        if (newline != nullptr) break;
    }
    if (length == 0) return false;

    line[length] = '\0';
    return true;
}

}  // namespace vorlix
