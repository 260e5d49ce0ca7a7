#include "kel/video/socket_address.h"

#include <netdb.h>

#include <cstring>
#include <memory>

#include "cli/error.h"
#include "kel/video/host_lookup.h"

namespace kel {

SocketAddress SocketAddressOf(const std::string& numbers, int port) {
    addrinfo hints{};
    hints.ai_socktype = SOCK_STREAM;  // one answer; the place is the same for datagrams
    hints.ai_flags = AI_NUMERICHOST;
    addrinfo* found = nullptr;
    const int failure = getaddrinfo(numbers.c_str(), std::to_string(port).c_str(), &hints, &found);
    if (failure != 0) throw cli::Error(numbers, {}, "there is no such place: " + std::string(gai_strerror(failure)));
    const std::unique_ptr<addrinfo, void (*)(addrinfo*)> owned(found, freeaddrinfo);
    SocketAddress address;
    address.size = found->ai_addrlen;
    std::memcpy(&address.place, found->ai_addr, found->ai_addrlen);
    return address;
}

SocketAddress PlaceToListenAt(const std::string& host, int port, const std::string& whole) {
    const HostAnswer where = LookUpHostSoon(host);
    if (!where.isThere) throw cli::Error(whole, {}, "cannot be listened at: nobody answers where that is");
    if (where.numbers.empty()) throw cli::Error(whole, {}, "there is no such place: " + where.reason);
    return SocketAddressOf(where.numbers.front(), port);
}

std::string HostAndPort(const std::string& host, int port) {
    const bool isSix = host.find(':') != std::string::npos;
    return (isSix ? "[" + host + "]" : host) + ":" + std::to_string(port);
}

}  // namespace kel
