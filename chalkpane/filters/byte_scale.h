#pragma once

#include <cstdint>

#include "chalkpane/image/pixel_format.h"

namespace chalkpane {

// Channels as floats of 0 to 255, whatever their depth. The two factors of 14 bits are chosen so that an untouched
// channel comes back the same.
template <typename F>
[[nodiscard]] inline float ToByteScale(std::int32_t channel) {
    return static_cast<float>(channel) * (F::bits == 8 ? 1.0F : 0.015564915F);
}

// Truncated, limited to the channel; NaN is 0.
template <typename F>
[[nodiscard]] inline std::int32_t FromByteScale(float value) {
    constexpr auto fullScale = static_cast<float>(F::fullScale);
    const float scaled = value * (F::bits == 8 ? 1.0F : 64.24706F);
    const float positive = scaled > 0.0F ? scaled : 0.0F;
    return static_cast<std::int32_t>(positive < fullScale ? positive : fullScale);
}

}  // namespace chalkpane
