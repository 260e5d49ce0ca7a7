#include "kel/outputs/socket_address.h"

#include <netdb.h>

#include <cstring>
#include <memory>

#include "cli/error.h"

namespace kel {

SocketAddress FindSocketAddress(const std::string& host, int port, int type, const std::string& whole) {
    addrinfo hints{};
    hints.ai_socktype = type;
    addrinfo* found = nullptr;
    const int failure = getaddrinfo(host.c_str(), std::to_string(port).c_str(), &hints, &found);
    if (failure != 0) throw cli::Error(whole, {}, "there is no such place: " + std::string(gai_strerror(failure)));
    const std::unique_ptr<addrinfo, void (*)(addrinfo*)> owned(found, freeaddrinfo);
    SocketAddress address;
    address.size = found->ai_addrlen;
    std::memcpy(&address.place, found->ai_addr, found->ai_addrlen);
    return address;
}

std::string HostAndPort(const std::string& host, int port) {
    const bool isSix = host.find(':') != std::string::npos;
    return (isSix ? "[" + host + "]" : host) + ":" + std::to_string(port);
}

}  // namespace kel
