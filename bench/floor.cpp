// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The floor of a boot: makes the kernel calls that a boot is made of, from the list that bench/boot
// has taken down, and nothing else. It knows no setting, forms no text and decides nothing, so no
// program that keeps what the boot promises can be faster.
//
// usage: floor LIST
//
// The exit status is 1 when a call that had succeeded fails, or the other way round: the list is
// not one of this device then.

#include "record.h"

#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr size_t kMostBytes = size_t{8} << 20;
constexpr int kMostDescriptors = 1024;

alignas(8) char list[kMostBytes];
char room[1 << 16];
int descriptors[kMostDescriptors] = {0, 1, 2};

/// Makes the call that stands there.
/// @return false when it went another way than the one that was taken down
bool MakeNext(char* place)
{
    record::Call call;
    memcpy(&call, place, sizeof(call));
    char* data = place + sizeof(call);

    uint64_t arguments[4];
    memcpy(arguments, call.arguments, sizeof(arguments));
    if (call.descriptor >= 0) {
        const auto taken = static_cast<size_t>(arguments[call.descriptor]);
        arguments[call.descriptor] = static_cast<uint64_t>(descriptors[taken]);
    }
    if (call.room >= 0) arguments[call.room] = reinterpret_cast<uint64_t>(room);
    if (call.data >= 0) arguments[call.data] = reinterpret_cast<uint64_t>(data);
    if (call.pointer >= 0) {
        const char* second = data + call.firstPart;
        memcpy(data + call.pointer, &second, sizeof(second));
    }
    const long result =
        syscall(call.number, arguments[0], arguments[1], arguments[2], arguments[3]);
    if (call.opens != 0 && result >= 0) descriptors[call.result] = static_cast<int>(result);
    return (result < 0) == (call.result < 0);
}

}  // namespace

int main(int argc, char** argv)
{
    const int file = argc == 2 ? open(argv[1], O_RDONLY) : -1;
    const ssize_t size = file >= 0 ? read(file, list, sizeof(list)) : -1;
    if (size <= 0) return 2;
    close(file);

    record::Head head{};
    memcpy(&head, list, sizeof(head));
    const char* places = list + sizeof(head);
    for (uint32_t i = 0; i < head.calls; ++i) {
        uint32_t place = 0;
        memcpy(&place, places + i * sizeof(place), sizeof(place));
        if (!MakeNext(list + place)) return 1;
    }
    return 0;
}
