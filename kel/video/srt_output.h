#pragma once

#include <memory>
#include <string>

#include "kel/video/stream_output.h"

namespace kel {

struct SrtSettings {
    std::string host;
    int port = 0;
    bool isListener = false;  // false: it calls the reader
    std::string latency;      // milliseconds; empty: the protocol's usual one, here and below
    std::string passphrase;
    std::string streamId;
};

// SRT, which sends again what networks lose.
class SrtOutput final : public StreamOutput {
public:
    // Throws Error when a listener's port is taken.
    explicit SrtOutput(SrtSettings settings);
    ~SrtOutput() override;

    [[nodiscard]] std::string Address() const override;
    [[nodiscard]] bool WaitForReader() override;
    [[nodiscard]] bool Send(std::span<const std::uint8_t> bytes) override;
    void Leave() override;

private:
    struct Connection;
    [[nodiscard]] std::string AddressOf(const std::string& host) const;
    [[nodiscard]] bool Connect(const std::string& host);

    SrtSettings m_settings;
    std::unique_ptr<Connection> m_connection;  // null: there is no reader
};

}  // namespace kel
