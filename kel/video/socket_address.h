#pragma once

#include <sys/socket.h>

#include <string>

namespace kel {

// The place of a host and a port as the system has it.
struct SocketAddress {
    sockaddr_storage place{};
    socklen_t size = 0;

    [[nodiscard]] const sockaddr* Get() const { return reinterpret_cast<const sockaddr*>(&place); }
};

// Of a host in numbers, such as "127.0.0.1" or "::1". Throws Error when those are none.
[[nodiscard]] SocketAddress SocketAddressOf(const std::string& numbers, int port);

// Where a program that begins listens; it does not wait long for who knows where a name is.
//   whole  the address as the operator gave it
// Throws Error with it when there is no such place, or nobody says where.
[[nodiscard]] SocketAddress PlaceToListenAt(const std::string& host, int port, const std::string& whole);

// "127.0.0.1:5000", or "[::1]:5000".
[[nodiscard]] std::string HostAndPort(const std::string& host, int port);

}  // namespace kel
