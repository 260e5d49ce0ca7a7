#include "tests/kel/control/raw_connection.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <utility>

namespace kel::testing {

RawConnection::RawConnection(int port) : m_handle(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (connect(m_handle, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) return;
    close(m_handle);
    m_handle = -1;
}

RawConnection::RawConnection(RawConnection&& other) noexcept : m_handle(std::exchange(other.m_handle, -1)) {}

RawConnection::~RawConnection() {
    if (m_handle >= 0) close(m_handle);
}

bool RawConnection::Send(const std::string& bytes) const {
    for (std::size_t sent = 0; sent < bytes.size();) {
        const ssize_t count = send(m_handle, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        if (count <= 0) return false;
        sent += static_cast<std::size_t>(count);
    }
    return true;
}

std::string RawConnection::ReadUntil(const std::string& end) {
    std::string bytes;
    std::array<char, 4096> piece{};
    while (end.empty() || bytes.find(end) == std::string::npos) {
        const ssize_t count = recv(m_handle, piece.data(), piece.size(), 0);
        if (count <= 0) break;
        bytes.append(piece.data(), static_cast<std::size_t>(count));
    }
    return bytes;
}

int StatusOf(int port, const std::string& request, std::string* body) {
    RawConnection connection(port);
    (void)connection.Send(request);
    const std::string answer = connection.ReadToTheEnd();
    if (const std::size_t blank = answer.find("\r\n\r\n"); body != nullptr && blank != std::string::npos)
        *body = answer.substr(blank + 4);
    return answer.starts_with("HTTP/1.") ? std::atoi(answer.c_str() + 9) : 0;
}

}  // namespace kel::testing
