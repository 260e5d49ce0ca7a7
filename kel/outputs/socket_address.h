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

//   type  SOCK_STREAM or SOCK_DGRAM
// Throws Error with `whole`, the address as the operator gave it, when there is no such host.
[[nodiscard]] SocketAddress FindSocketAddress(const std::string& host, int port, int type, const std::string& whole);

// "127.0.0.1:5000", or "[::1]:5000".
[[nodiscard]] std::string HostAndPort(const std::string& host, int port);

}  // namespace kel
