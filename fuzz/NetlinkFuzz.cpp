// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Answers of the routing netlink of any bytes. An answer of somebody else stalls an exchange for
// good, as designed, since nobody else can reach its socket; so all messages here carry our marks.

#include "Fuzz.h"

#include "Netlink.h"

#include <cstring>

namespace {

constexpr size_t kHeader = sizeof(nlmsghdr);
constexpr uint32_t kAligned = ~uint32_t{NLMSG_ALIGNTO - 1};

/// True for a length that ends the walk over a datagram: an answer does, whatever its length, and
/// one that leads behind the end.
bool EndsWalk(const nlmsghdr& header, size_t left)
{
    const auto length = static_cast<int32_t>(header.nlmsg_len);
    return header.nlmsg_type == NLMSG_ERROR || length > static_cast<int64_t>(left);
}

/// Puts our marks on each message as far as lengths lead. Where they lead to no whole message and
/// nothing would end the walk, the datagram is told to be cut, as the kernel tells it.
void Mark(fake::Datagram* answer, uint32_t sequence)
{
    fake::Bytes& bytes = answer->bytes;
    size_t at = 0;
    while (bytes.size() - at >= kHeader) {
        nlmsghdr header;
        memcpy(&header, bytes.data() + at, kHeader);
        header.nlmsg_pid = fake::rtnetlink.port;
        header.nlmsg_seq = sequence;
        memcpy(bytes.data() + at, &header, kHeader);
        if (header.nlmsg_len < kHeader || header.nlmsg_len > bytes.size() - at) {
            if (!EndsWalk(header, bytes.size() - at)) answer->flags |= MSG_TRUNC;
            return;
        }
        const size_t step = (header.nlmsg_len + NLMSG_ALIGNTO - 1) & kAligned;
        if (step > bytes.size() - at) return;
        at += step;
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzz::Input input(data, size);
    fuzz::FreshWorld();
    fuzz::SetClock(1000);
    while (true) {
        fake::Datagram answer;
        const uint8_t kind = input.Byte();
        if ((kind & 1) != 0) answer.flags = MSG_TRUNC;
        if ((kind & 4) != 0) answer.senderLength = 2;
        if ((kind & 16) != 0) {
            const auto before = static_cast<int>(fake::rtnetlink.script.size());
            fuzz::FailReceive(before, (kind & 32) != 0 ? EINTR : ENOBUFS);
        }
        const std::string bytes = input.Bytes(255);
        if (bytes.empty() && (kind & 8) != 0) {  // the other end is gone
            fake::rtnetlink.script.push_back(answer);
            continue;
        }
        if (bytes.empty()) break;
        answer.bytes.assign(bytes.begin(), bytes.end());
        Mark(&answer, 1001);
        fake::rtnetlink.script.push_back(answer);
    }

    rtnl_handle handle;
    (void)rtnl_open(&handle);
    struct {
        nlmsghdr header;
        char room[64];
    } request{};
    request.header.nlmsg_len = kHeader;
    errno = 0;
    const int result = rtnl_talk(&handle, &request.header, 0, 0, nullptr, nullptr, nullptr);
    HOLDS(result == 0 || result == -1);
    HOLDS(fake::rtnetlink.requests.size() == 1);
    fuzz::Close(handle.fd);
    HOLDS(fuzz::OpenHandles() == 0);
    HOLDS(fuzz::HeapBlocks() == 0);
    return 0;
}
