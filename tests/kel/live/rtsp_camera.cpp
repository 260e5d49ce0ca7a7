#include "tests/kel/live/rtsp_camera.h"

#include <poll.h>

#include <array>
#include <cstring>

namespace kel::testing {
namespace {

constexpr const char* description =
    "v=0\r\no=- 0 0 IN IP4 127.0.0.1\r\ns=camera\r\nc=IN IP4 0.0.0.0\r\nt=0 0\r\n"
    "m=video 0 RTP/AVP 96\r\na=rtpmap:96 H264/90000\r\na=fmtp:96 packetization-mode=1\r\na=framerate:50\r\n"
    "a=control:pictures\r\n";

// What stands behind the name, up to the end of the line.
std::string HeaderOf(const std::string& request, const std::string& name) {
    const std::size_t begin = request.find("\r\n" + name + ": ");
    if (begin == std::string::npos) return {};
    const std::size_t value = begin + name.size() + 4;
    return request.substr(value, request.find("\r\n", value) - value);
}

bool SendAll(int socket, const std::string& bytes) {
    return send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(bytes.size());
}

}  // namespace

RtspCamera::~RtspCamera() {
    m_ends = true;
    m_thread.join();
}

// False: it ends.
bool RtspCamera::WaitFor(int socket) const {
    pollfd waiting{socket, POLLIN, 0};
    while (!m_ends)
        if (poll(&waiting, 1, 10) > 0) return true;
    return false;
}

// One viewer after the other, since one that has waited for too long asks anew.
void RtspCamera::Serve() {
    while (WaitFor(m_door)) {
        const int viewer = accept(m_door, nullptr, nullptr);
        AnswerAll(viewer);
        if (m_camera) PassOnPackets(viewer);
        m_camera.reset();
        close(viewer);
    }
}

// Until pictures are wanted, or the viewer is gone.
void RtspCamera::AnswerAll(int viewer) {
    std::string requests;
    std::array<char, 2048> part{};
    while (!m_camera && WaitFor(viewer)) {
        const ssize_t length = recv(viewer, part.data(), part.size(), 0);
        if (length <= 0) return;
        requests.append(part.data(), static_cast<std::size_t>(length));
        for (std::size_t end = 0; !m_camera && (end = requests.find("\r\n\r\n")) != std::string::npos;
             requests.erase(0, end + 4))
            if (!SendAll(viewer, Answer(requests.substr(0, end + 4)))) return;
    }
}

std::string RtspCamera::Answer(const std::string& request) {
    const std::string about = "CSeq: " + HeaderOf(request, "CSeq") + "\r\n";
    const std::string yes = "RTSP/1.0 200 OK\r\n" + about;
    const std::string method = request.substr(0, request.find(' '));
    if (method == "OPTIONS") return yes + "Public: OPTIONS, DESCRIBE, SETUP, PLAY, TEARDOWN\r\n\r\n";
    if (method == "DESCRIBE")
        return yes + "Content-Type: application/sdp\r\nContent-Length: " + std::to_string(std::strlen(description)) +
               "\r\n\r\n" + description;
    if (method == "SETUP") {
        const std::string transport = AnswerSetup(request);
        if (transport.empty()) return "RTSP/1.0 461 Unsupported transport\r\n" + about + "\r\n";
        return yes + "Session: 1\r\nTransport: " + transport + "\r\n\r\n";
    }
    if (method == "PLAY") {
        const std::string to =
            m_way == Way::Tcp ? std::to_string(m_packets.Number()) + "?rtcpport=" + std::to_string(m_reports.Number())
                              : std::to_string(m_viewerPort);
        m_camera.emplace(
            Camera::Settings{.address = "rtp://127.0.0.1:" + to, .format = "rtp", .codec = "libx264", .grey = m_grey});
        return yes + "Session: 1\r\n\r\n";
    }
    return "RTSP/1.0 501 Not implemented\r\n" + about + "\r\n";
}

// How packets go; empty: not as the viewer would have it.
std::string RtspCamera::AnswerSetup(const std::string& request) {
    const std::string asked = HeaderOf(request, "Transport");
    const bool isWithin = asked.find("RTP/AVP/TCP") != std::string::npos;
    if (isWithin != (m_way == Way::Tcp)) return {};
    if (isWithin) return "RTP/AVP/TCP;unicast;interleaved=0-1";
    const std::string name = "client_port=";
    const std::size_t begin = asked.find(name);
    if (begin == std::string::npos) return {};
    m_viewerPort = std::stoi(asked.substr(begin + name.size()));
    return "RTP/AVP;unicast;client_port=" + std::to_string(m_viewerPort) + "-" + std::to_string(m_viewerPort + 1);
}

// Until it ends, or the viewer is gone. What the viewer says meanwhile needs no answer.
void RtspCamera::PassOnPackets(int viewer) const {
    std::array<pollfd, 2> waiting{{{viewer, POLLIN, 0}, {m_packets.Socket(), POLLIN, 0}}};
    std::array<char, 2048> part{};
    while (!m_ends) {
        if (poll(waiting.data(), waiting.size(), 10) <= 0) continue;
        if (waiting[0].revents != 0 && recv(viewer, part.data(), part.size(), 0) <= 0) return;
        if (waiting[1].revents == 0) continue;
        const ssize_t length = recv(m_packets.Socket(), part.data(), part.size(), 0);
        if (length <= 0) continue;
        std::string packet{'$', 0, static_cast<char>(length >> 8), static_cast<char>(length & 0xFF)};
        packet.append(part.data(), static_cast<std::size_t>(length));
        if (!SendAll(viewer, packet)) return;
    }
}

}  // namespace kel::testing
