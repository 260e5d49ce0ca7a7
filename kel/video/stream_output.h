#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "kel/video/stop_signal.h"

namespace kel {

// MPEG-TS goes over networks in datagrams of seven packets of 188 bytes.
constexpr std::size_t datagramBytes = 1316;
// From one try to the next where a reader cannot be reached.
constexpr int retryMilliseconds = 1000;

// Where the bytes of a live stream go, to one reader after the other. One thread at a time, but for Stop.
class StreamOutput {
public:
    StreamOutput() = default;
    virtual ~StreamOutput() = default;
    StreamOutput(const StreamOutput&) = delete;
    StreamOutput& operator=(const StreamOutput&) = delete;
    StreamOutput(StreamOutput&&) = delete;
    StreamOutput& operator=(StreamOutput&&) = delete;

    // As a reader names it, with the port that the system chose where the operator left it open.
    [[nodiscard]] virtual std::string Address() const = 0;
    // How many bytes are best sent together.
    [[nodiscard]] virtual std::size_t BytesAtOnce() const { return datagramBytes; }
    // Returns when there is a reader, however long that takes; false: it was stopped.
    [[nodiscard]] virtual bool WaitForReader() = 0;
    // Returns when the reader has taken all bytes; false: it is gone, or it was stopped.
    [[nodiscard]] virtual bool Send(std::span<const std::uint8_t> bytes) = 0;
    // Lets the reader go.
    virtual void Leave() = 0;

    // From any thread: every wait ends, now and from now on.
    void Stop() const { m_stop.Raise(); }

protected:
    [[nodiscard]] const StopSignal& Stopped() const { return m_stop; }

private:
    StopSignal m_stop;
};

}  // namespace kel
