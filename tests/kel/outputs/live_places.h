#pragma once

#include <arpa/inet.h>
#include <doctest/doctest.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <string>
#include <string_view>

#include "kel/video/socket_handle.h"

namespace kel::testing {

// A port of this machine that was free a moment ago.
inline int FreeUdpPort() {
    const SocketHandle handle(socket(AF_INET, SOCK_DGRAM, 0));
    sockaddr_in place{};
    place.sin_family = AF_INET;
    place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof place;
    REQUIRE_EQ(bind(handle.Get(), reinterpret_cast<const sockaddr*>(&place), sizeof place), 0);
    REQUIRE_EQ(getsockname(handle.Get(), reinterpret_cast<sockaddr*>(&place), &length), 0);
    return ntohs(place.sin_port);
}

// As a reader of that scheme finds it, and as the sink is told.
struct LivePlaces {
    std::string sink;
    std::string reader;  // empty: the sink says it
};
inline LivePlaces LivePlacesOf(std::string_view scheme) {
    if (scheme == "tcp://") return {"tcp://:0", ""};
    const std::string place = "127.0.0.1:" + std::to_string(FreeUdpPort());
    if (scheme == "udp://") return {"udp://" + place, "udp://" + place};
    return {"srt://" + place + "?mode=listener&latency=20", "srt://" + place};
}

}  // namespace kel::testing
