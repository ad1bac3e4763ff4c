// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "fake/Wire.h"

#include "fake/Odd.h"

#include "fake/World.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <iomanip>

#include <arpa/inet.h>
#include <net/if.h>
#include <sys/socket.h>

namespace fake {

Wire wire;

namespace {

std::string TextOf(const in_addr& address)
{
    char text[INET_ADDRSTRLEN];
    return inet_ntop(AF_INET, &address, text, sizeof(text));
}

/// A packet socket is told the card's name in the place of an address.
std::string TextOf(const sockaddr* address)
{
    if (address->sa_family == AF_INET) {
        return TextOf(reinterpret_cast<const sockaddr_in*>(address)->sin_addr);
    }
    return std::string(address->sa_data, strnlen(address->sa_data, sizeof(address->sa_data)));
}

bool IsAddressOfCard(const std::string& address)
{
    return std::any_of(kernel.cards.begin(), kernel.cards.end(),
                       [&](const Card& card) { return card.address == address; });
}

/// Waits for the first arrival, at most so long: the seconds that have passed go by on the clock.
bool ComesWithin(int seconds)
{
    const bool comes = !wire.arrivals.empty() && wire.arrivals.front().after <= seconds;
    const int passed = comes ? wire.arrivals.front().after : seconds;
    SetClock(time(nullptr) + passed);
    if (!wire.arrivals.empty()) wire.arrivals.front().after -= passed;
    return comes;
}

/// Takes the next packet in, as far as there is room.
ssize_t Take(void* buffer, size_t size, std::string* from)
{
    if (wire.arrivals.empty()) {
        errno = EAGAIN;
        return -1;
    }
    const Arrival arrival = wire.arrivals.front();
    wire.arrivals.pop_front();
    const size_t count = std::min(size, arrival.packet.size());
    std::copy_n(arrival.packet.begin(), count, static_cast<uint8_t*>(buffer));
    *from = arrival.from;
    return static_cast<ssize_t>(count);
}

int Result(int error)
{
    errno = error;
    if (error != 0) return -1;
    return OddAnswers() == Odd::results ? 1 : 0;
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const Sent& sent)
{
    out << std::hex << std::setfill('0');
    for (const uint8_t byte : sent.packet) out << std::setw(2) << int{byte} << ' ';
    out << "to";
    for (const uint8_t byte : sent.address) out << ' ' << std::setw(2) << int{byte};
    return out << std::dec;
}

void ResetWire()
{
    wire = Wire();
}

int BindIPv4(const sockaddr* address, socklen_t size)
{
    const auto* place = reinterpret_cast<const sockaddr_in*>(address);
    const std::string text = TextOf(place->sin_addr);
    if (!Note("bind " + text + " " + std::to_string(place->sin_port) + " " +
              std::to_string(size))) {
        return -1;
    }
    return Result(text == "0.0.0.0" || IsAddressOfCard(text) ? 0 : EADDRNOTAVAIL);
}

}  // namespace fake

using namespace fake;

extern "C" {

int __wrap_setsockopt(int fd, int level, int option, const void* value, socklen_t size)
{
    const bool binds = level == SOL_SOCKET && option == SO_BINDTODEVICE;
    const auto* name = static_cast<const char*>(value);
    const std::string card = binds ? std::string(name, strnlen(name, IFNAMSIZ)) : "";
    const std::string call = binds ? "SO_BINDTODEVICE " + card : std::to_string(option);
    if (!Note("setsockopt " + call + " " + std::to_string(size),
              " level " + std::to_string(level) + " on " + PathOf(fd))) {
        return -1;
    }
    return Result(binds && kernel.Find(card) == nullptr ? ENODEV : 0);
}

ssize_t __wrap_sendto(int, const void* packet, size_t size, int flags, const sockaddr* address,
                      socklen_t addressSize)
{
    const std::string to = TextOf(address);
    if (!Note("sendto " + to + " " + std::to_string(size) + " " + std::to_string(flags))) return -1;
    if (address->sa_family == 0 && kernel.Find(to) == nullptr) return Result(ENODEV);

    const auto* bytes = static_cast<const uint8_t*>(packet);
    const auto* place = reinterpret_cast<const uint8_t*>(address);
    const size_t taken = std::min(size, wire.room);
    wire.sent.push_back({Bytes(bytes, bytes + taken), Bytes(place, place + addressSize)});
    return static_cast<ssize_t>(taken);
}

ssize_t __wrap_recv(int, void* buffer, size_t size, int flags)
{
    if (!Note("recv " + std::to_string(size) + " " + std::to_string(flags))) return -1;
    std::string from;
    return Take(buffer, size, &from);
}

ssize_t __wrap_recvfrom(int, void* buffer, size_t size, int flags, sockaddr* address,
                        socklen_t* addressSize)
{
    if (!Note("recvfrom " + std::to_string(size) + " " + std::to_string(flags) + " " +
              std::to_string(*addressSize))) {
        return -1;
    }
    std::string from;
    const ssize_t count = Take(buffer, size, &from);
    if (count < 0) return count;
    if (from.empty()) {
        *addressSize = 0;
        return count;
    }

    sockaddr_in sender{};
    sender.sin_family = AF_INET;
    inet_pton(AF_INET, from.c_str(), &sender.sin_addr);
    memcpy(address, &sender, std::min<size_t>(*addressSize, sizeof(sender)));
    *addressSize = sizeof(sender);
    return count;
}

int __wrap_poll(pollfd* sockets, nfds_t count, int milliseconds)
{
    constexpr int kMsPerSecond = 1000;
    if (!Note("poll " + std::to_string(sockets->events) + " " + std::to_string(milliseconds))) {
        return -1;
    }
    sockets->revents = 0;
    if (count != 1 || !ComesWithin(milliseconds / kMsPerSecond)) return 0;

    sockets->revents = wire.arrivals.front().events;
    if (sockets->revents != POLLIN) wire.arrivals.pop_front();
    return 1;
}

}  // extern "C"
