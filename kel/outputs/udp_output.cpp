#include "kel/outputs/udp_output.h"

#include <netinet/in.h>
#include <poll.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>

#include "cli/error.h"
#include "kel/video/host_lookup.h"

namespace kel {
namespace {

SocketHandle OpenSocket(const SocketAddress& to, int hops, const std::string& whole) {
    SocketHandle handle(socket(to.place.ss_family, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (handle.Get() < 0) throw cli::Error(whole, {}, "cannot be sent to: " + std::generic_category().message(errno));
    const bool isSix = to.place.ss_family == AF_INET6;
    setsockopt(handle.Get(), isSix ? IPPROTO_IPV6 : IPPROTO_IP, isSix ? IPV6_MULTICAST_HOPS : IP_MULTICAST_TTL, &hops,
               sizeof hops);
    return handle;
}

}  // namespace

UdpOutput::UdpOutput(std::string host, int port, int hops) : m_host(std::move(host)), m_port(port), m_hops(hops) {
    const HostAnswer where = LookUpHostSoon(m_host);
    if (!where.isThere) return;
    if (where.numbers.empty()) throw cli::Error(Address(), {}, "there is no such place: " + where.reason);
    Open(where.numbers.front());
}

void UdpOutput::Open(const std::string& numbers) {
    m_to = SocketAddressOf(numbers, m_port);
    m_socket = OpenSocket(m_to, m_hops, Address());
}

std::string UdpOutput::Address() const { return "udp://" + HostAndPort(m_host, m_port); }

// A network that is down may come up again.
bool UdpOutput::WaitForReader() {
    if (Stopped().WaitFor(m_mustWait ? retryMilliseconds : 0)) return false;
    while (m_socket.Get() < 0) {
        const std::vector<std::string> numbers = LookUpHost(m_host, Stopped());
        if (!numbers.empty())
            Open(numbers.front());
        else if (Stopped().WaitFor(retryMilliseconds))
            return false;
    }
    return true;
}

// A key frame is hundreds of datagrams, more than what readers keep of them, so they get a moment now and then.
bool UdpOutput::Send(std::span<const std::uint8_t> bytes) {
    constexpr int mostAtOnce = 32;
    while (!bytes.empty()) {
        const std::size_t count = std::min(bytes.size(), datagramBytes);
        if (++m_burst >= mostAtOnce) {
            m_burst = 0;
            if (Stopped().WaitFor(1)) return false;
        }
        const ssize_t sent = sendto(m_socket.Get(), bytes.data(), count, MSG_NOSIGNAL, m_to.Get(), m_to.size);
        if (sent < 0 && (errno == EAGAIN || errno == ENOBUFS)) {
            std::array<pollfd, 2> waiting{{{m_socket.Get(), POLLOUT, 0}, {Stopped().Handle(), POLLIN, 0}}};
            if (poll(waiting.data(), waiting.size(), -1) > 0 && waiting[1].revents != 0) return false;
            continue;
        }
        // Nobody reads there now: that is told of some datagram before, and means nothing for the next.
        if (sent < 0 && errno != ECONNREFUSED && errno != EINTR) return false;
        bytes = bytes.subspan(count);
    }
    return true;
}

}  // namespace kel
