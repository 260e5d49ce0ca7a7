#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

#include "kel/live/packet_ring.h"

namespace kel {

// A part of what a ring held, by the numbers of its frames in the order in which they are shown, both counted in.
struct ClipPart {
    std::int64_t first = 0;
    std::int64_t last = 0;
    std::int32_t width = 0;  // pixels, of the frames
    std::int32_t height = 0;
};

// When each frame is shown, in the ring's time, in that order.
[[nodiscard]] std::vector<std::int64_t> FrameTimes(const PacketRing::Held& held);

// Writes the part as it came, without coding it again, as a Matroska video; it appears whole or not at all. Returns the
// number that the part's first frame has there: those before it, from a key on, are what it is made from. Throws Error.
std::int64_t WriteClip(const PacketRing::Held& held, const ClipPart& part, const std::filesystem::path& file);

}  // namespace kel
