#include "kel/outputs/tcp_output.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>

#include <array>
#include <cerrno>
#include <system_error>

#include "cli/error.h"
#include "kel/video/socket_address.h"

namespace kel {
namespace {

constexpr int socketOptionOn = 1;

// Of a socket that listens.
int PortOf(int door, int asked) {
    sockaddr_storage place{};
    socklen_t size = sizeof place;
    if (getsockname(door, reinterpret_cast<sockaddr*>(&place), &size) != 0) return asked;
    const void* at = &place;
    return ntohs(place.ss_family == AF_INET6 ? static_cast<const sockaddr_in6*>(at)->sin6_port
                                             : static_cast<const sockaddr_in*>(at)->sin_port);
}

SocketHandle OpenDoor(const std::string& host, int port) {
    const std::string whole = "tcp://" + HostAndPort(host, port);
    const SocketAddress address = PlaceToListenAt(host, port, whole);
    SocketHandle door(socket(address.place.ss_family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    constexpr int backlog = 4;
    if (door.Get() >= 0) setsockopt(door.Get(), SOL_SOCKET, SO_REUSEADDR, &socketOptionOn, sizeof socketOptionOn);
    if (door.Get() < 0 || bind(door.Get(), address.Get(), address.size) != 0 || listen(door.Get(), backlog) != 0)
        throw cli::Error(whole, {}, "cannot be listened at: " + std::generic_category().message(errno));
    return door;
}

}  // namespace

TcpOutput::TcpOutput(std::string host, int port)
    : m_host(std::move(host)), m_port(port), m_door(OpenDoor(m_host, port)) {
    m_port = PortOf(m_door.Get(), port);
}

std::string TcpOutput::Address() const { return "tcp://" + HostAndPort(m_host, m_port); }

bool TcpOutput::WaitForReader() {
    for (;;) {
        std::array<pollfd, 2> waiting{{{m_door.Get(), POLLIN, 0}, {Stopped().Handle(), POLLIN, 0}}};
        if (poll(waiting.data(), waiting.size(), -1) < 0 && errno != EINTR) return false;
        if (Stopped().IsRaised()) return false;
        SocketHandle reader(accept4(m_door.Get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
        if (reader.Get() >= 0) {
            setsockopt(reader.Get(), IPPROTO_TCP, TCP_NODELAY, &socketOptionOn, sizeof socketOptionOn);
            m_reader = std::move(reader);
            return true;
        }
        // Out of handles, for example: they may come back.
        if (errno != EAGAIN && errno != EINTR && Stopped().WaitFor(retryMilliseconds)) return false;
    }
}

// A reader may stand still as long as it likes; but one whose machine has gone would keep all others out.
bool TcpOutput::WaitForRoom() const {
    constexpr int longest = 5000;  // milliseconds
    std::array<pollfd, 2> waiting{{{m_reader.Get(), POLLOUT, 0}, {Stopped().Handle(), POLLIN, 0}}};
    for (;;) {
        const int ready = poll(waiting.data(), waiting.size(), longest);
        if (ready < 0 && errno != EINTR) return false;
        if (ready > 0) return waiting[1].revents == 0;
        pollfd next{m_door.Get(), POLLIN, 0};
        if (ready == 0 && poll(&next, 1, 0) > 0) return false;
    }
}

bool TcpOutput::Send(std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        const ssize_t sent = send(m_reader.Get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent >= 0)
            bytes = bytes.subspan(static_cast<std::size_t>(sent));
        else if (errno == EAGAIN) {
            if (!WaitForRoom()) return false;
        } else if (errno != EINTR)
            return false;
    }
    return true;
}

}  // namespace kel
