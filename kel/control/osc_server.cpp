#include "kel/control/osc_server.h"

#include <netinet/in.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <utility>
#include <vector>

#include "cli/error.h"
#include "kel/control/control_words.h"
#include "kel/control/osc_message.h"
#include "kel/control/osc_place.h"

namespace kel {
namespace {

int PortOf(int handle) {
    sockaddr_in address{};
    socklen_t length = sizeof address;
    getsockname(handle, reinterpret_cast<sockaddr*>(&address), &length);
    return ntohs(address.sin_port);
}

}  // namespace

OscServer::OscServer(ControlAddress address, ControlMailbox& mailbox)
    : m_address(std::move(address)), m_mailbox(mailbox) {
    const sockaddr_in place = OscPlaceOf(m_address);
    m_socket = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    m_end = eventfd(0, EFD_CLOEXEC);
    const bool isOpen =
        m_socket >= 0 && m_end >= 0 && bind(m_socket, reinterpret_cast<const sockaddr*>(&place), sizeof place) == 0;
    if (!isOpen) {
        const std::string reason = std::strerror(errno);
        if (m_socket >= 0) close(m_socket);
        if (m_end >= 0) close(m_end);
        throw cli::Error(m_address.host + ":" + std::to_string(m_address.port) +
                         ": the port cannot be opened for OSC: " + reason);
    }
    m_address.port = PortOf(m_socket);
    m_thread = std::thread([this] { Listen(); });
}

OscServer::~OscServer() {
    (void)eventfd_write(m_end, 1);
    m_thread.join();
    close(m_socket);
    close(m_end);
}

void OscServer::Listen() {
    std::vector<std::byte> packet(longestControlLine);
    std::array<pollfd, 2> waited{{{m_socket, POLLIN, 0}, {m_end, POLLIN, 0}}};
    while (true) {
        if (poll(waited.data(), waited.size(), -1) < 0 && errno != EINTR) return;
        if (waited[1].revents != 0) return;
        const ssize_t length = recv(m_socket, packet.data(), packet.size(), MSG_DONTWAIT);
        if (length <= 0) continue;
        try {
            Take(std::span(packet).first(static_cast<std::size_t>(length)));
        } catch (const std::exception&) {  // no packet, or no memory for it: nobody could be told
            continue;
        }
    }
}

void OscServer::Take(std::span<const std::byte> packet) {
    for (OscMessage& message : ParseOscPacket(packet)) {
        if (!IsLoopback(m_address.host)) {
            const auto* token = message.arguments.empty() ? nullptr : std::get_if<std::string>(&message.arguments[0]);
            if (token == nullptr || !SameToken(*token, m_address.token)) continue;
            message.arguments.erase(message.arguments.begin());
        }
        std::string line = ControlLineOf(message);
        if (!line.empty() && m_mailbox.Waiting() < mostWaiting)
            m_mailbox.Put({nobody, std::move(line), ControlNumbers::OfFaders});
    }
}

}  // namespace kel
