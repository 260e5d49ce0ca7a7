#pragma once

#include <string>

#include "kel/video/socket_handle.h"
#include "kel/video/stream_output.h"

namespace kel {

// Listens at a port over TCP; readers connect. A reader who waits takes the place of one that takes nothing any more.
class TcpOutput final : public StreamOutput {
public:
    //   port  0: any that is free
    // Throws Error when it cannot be listened at.
    TcpOutput(std::string host, int port);

    [[nodiscard]] std::string Address() const override;
    [[nodiscard]] std::size_t BytesAtOnce() const override { return std::size_t{1} << 18U; }
    [[nodiscard]] bool WaitForReader() override;
    [[nodiscard]] bool Send(std::span<const std::uint8_t> bytes) override;
    void Leave() override { m_reader = SocketHandle(); }

private:
    [[nodiscard]] bool WaitForRoom() const;

    std::string m_host;
    int m_port;
    SocketHandle m_door;
    SocketHandle m_reader;
};

}  // namespace kel
