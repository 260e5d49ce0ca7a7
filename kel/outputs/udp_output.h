#pragma once

#include <string>

#include "kel/video/socket_address.h"
#include "kel/video/socket_handle.h"
#include "kel/video/stream_output.h"

namespace kel {

// Sends datagrams to a place, whether anybody reads them there or not.
class UdpOutput final : public StreamOutput {
public:
    //   hops  how many networks datagrams to a group of readers may pass
    // Throws Error when there is no such place; where nobody says soon whether there is, it is waited for as a reader
    // is.
    UdpOutput(std::string host, int port, int hops);

    [[nodiscard]] std::string Address() const override;
    [[nodiscard]] bool WaitForReader() override;
    [[nodiscard]] bool Send(std::span<const std::uint8_t> bytes) override;
    void Leave() override { m_mustWait = true; }

private:
    void Open(const std::string& numbers);

    std::string m_host;
    int m_port;
    int m_hops;
    SocketAddress m_to;  // there once the socket is
    SocketHandle m_socket;
    int m_burst = 0;  // datagrams since the last pause
    bool m_mustWait = false;
};

}  // namespace kel
