#pragma once

#include <cstdint>
#include <vector>

#include "kel/video/video_packets.h"

namespace kel {

// When each frame of a video is shown, and from which of them decoding can start.
//
// Containers count packets, some of which are never shown, and some of them only guess; so the index comes from passing
// through the whole video once, without decoding it.
struct VideoIndex {
    std::vector<std::int64_t> times;  // of the frames that are shown, ascending, no two alike, at least one
    std::vector<std::int64_t> keys;   // of the packets that decoding can start with, ascending

    // The last time in `keys` that is not after `time`; the first one when there is none.
    [[nodiscard]] std::int64_t KeyBefore(std::int64_t time) const;
};

// Leaves the packets at their end. Throws Error when it breaks off, shows nothing, or gives no times.
[[nodiscard]] VideoIndex IndexVideo(VideoPackets& packets);

}  // namespace kel
