#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "kel/scene/host.h"
#include "tests/kel/pixels.h"

namespace kel::testing {

// The overlay composited over an opaque picture of its size, by the arithmetic of docs/output.md, in real numbers:
//   premultiplied   picture * (1 - alpha) + overlay
//   straight        picture * (1 - alpha) + overlay * alpha
[[nodiscard]] inline picture_io::Picture Composited(const picture_io::Picture& overlay,
                                                    const picture_io::Picture& picture, bool isStraight) {
    picture_io::Picture result = picture;
    for (std::size_t pixel = 0; pixel < result.rgba.size(); pixel += 4) {
        const double alpha = overlay.rgba[pixel + 3] / 255.0;
        const double share = isStraight ? alpha : 1.0;
        for (std::size_t channel = pixel; channel < pixel + 3; ++channel) {
            const double value = picture.rgba[channel] * (1 - alpha) + overlay.rgba[channel] * share;
            result.rgba[channel] = static_cast<std::uint8_t>(std::clamp(std::lround(value), 0L, 255L));
        }
    }
    return result;
}

// The largest difference in any channel of two pictures of one size.
[[nodiscard]] inline int WorstDifference(const picture_io::Picture& a, const picture_io::Picture& b) {
    int worst = 0;
    for (std::size_t at = 0; at < a.rgba.size(); ++at) worst = std::max(worst, std::abs(a.rgba[at] - b.rgba[at]));
    return worst;
}

}  // namespace kel::testing
