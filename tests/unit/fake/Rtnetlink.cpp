// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "fake/Rtnetlink.h"

#include <algorithm>
#include <cstring>

namespace fake {

Rtnetlink rtnetlink;

void ResetRtnetlink()
{
    rtnetlink = Rtnetlink();
}

Datagram Acknowledgement(int error)
{
    struct {
        nlmsghdr header;
        nlmsgerr body;
    } message{};
    message.header.nlmsg_len = sizeof(message);
    message.header.nlmsg_type = NLMSG_ERROR;
    message.header.nlmsg_pid = rtnetlink.port;
    message.body.error = -error;
    if (!rtnetlink.requests.empty()) {
        memcpy(&message.body.msg, rtnetlink.requests.back().data(), sizeof(message.body.msg));
    }
    message.header.nlmsg_seq = message.body.msg.nlmsg_seq;

    Datagram datagram;
    datagram.bytes.resize(sizeof(message));
    memcpy(datagram.bytes.data(), &message, sizeof(message));
    return datagram;
}

ssize_t TakeRequest(const msghdr& message)
{
    Bytes request;
    for (size_t i = 0; i < message.msg_iovlen; ++i) {
        const auto* bytes = static_cast<const uint8_t*>(message.msg_iov[i].iov_base);
        request.insert(request.end(), bytes, bytes + message.msg_iov[i].iov_len);
    }
    sockaddr_nl peer{};
    memcpy(&peer, message.msg_name, std::min<size_t>(message.msg_namelen, sizeof(peer)));
    rtnetlink.requests.push_back(request);
    rtnetlink.peers.push_back(peer);
    return static_cast<ssize_t>(request.size());
}

ssize_t GiveAnswer(msghdr* message)
{
    Datagram datagram = Acknowledgement(rtnetlink.refusal);
    if (!rtnetlink.script.empty()) {
        datagram = rtnetlink.script.front();
        rtnetlink.script.pop_front();
    }
    const iovec& room = message->msg_iov[0];
    rtnetlink.rooms.push_back(room.iov_len);
    const size_t length = std::min(datagram.bytes.size(), room.iov_len);
    memcpy(room.iov_base, datagram.bytes.data(), length);

    sockaddr_nl sender{};
    sender.nl_family = AF_NETLINK;
    sender.nl_pid = datagram.sender;
    const socklen_t nameLength = std::min(
        {message->msg_namelen, datagram.senderLength, static_cast<socklen_t>(sizeof(sender))});
    memcpy(message->msg_name, &sender, nameLength);
    message->msg_namelen = datagram.senderLength;
    message->msg_flags = datagram.flags;
    return static_cast<ssize_t>(length);
}

}  // namespace fake
