#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>
#include <thread>

#include "tests/kel/live/camera.h"

namespace kel::testing {

// Where cameras are asked for their pictures by RTSP; it stays while they come and go.
class RtspDoor {
public:
    RtspDoor() { REQUIRE_EQ(listen(m_port.Socket(), 4), 0); }
    [[nodiscard]] std::string Address() const {
        return "rtsp://127.0.0.1:" + std::to_string(m_port.Number()) + "/camera";
    }
    [[nodiscard]] int Socket() const { return m_port.Socket(); }

private:
    BoundPort m_port{SOCK_STREAM};
};

// A network camera that serves one viewer at a time: H.264 by RTP, within the viewer's connection or, where it refuses
// that, in datagrams. At its end the viewer is cut off.
class RtspCamera {
public:
    enum class Way : std::uint8_t { Tcp, Udp };
    RtspCamera(const RtspDoor& door, Way way, int grey)
        : m_door(door.Socket()), m_way(way), m_grey(grey), m_thread([this] { Serve(); }) {}
    ~RtspCamera();
    RtspCamera(const RtspCamera&) = delete;
    RtspCamera& operator=(const RtspCamera&) = delete;
    RtspCamera(RtspCamera&&) = delete;
    RtspCamera& operator=(RtspCamera&&) = delete;

private:
    void Serve();
    void AnswerAll(int viewer);
    [[nodiscard]] std::string Answer(const std::string& request);
    [[nodiscard]] std::string AnswerSetup(const std::string& request);
    void PassOnPackets(int viewer) const;
    [[nodiscard]] bool WaitFor(int socket) const;

    int m_door;
    Way m_way;
    int m_grey;
    // In front of the viewer's connection, where packets go within it.
    BoundPort m_packets{SOCK_DGRAM};
    BoundPort m_reports{SOCK_DGRAM};
    int m_viewerPort = 0;  // of datagrams
    std::optional<Camera> m_camera;
    std::atomic<bool> m_ends = false;
    std::thread m_thread;  // last: it uses all of the above
};

}  // namespace kel::testing
