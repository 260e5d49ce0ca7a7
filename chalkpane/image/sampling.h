#pragma once

#include <cstdint>

#include "chalkpane/image/image.h"

namespace chalkpane {

// Samples of an image at a position in plane coordinates, pixel (x, y) lying at exactly (x, y). What lies outside is
// read by the edge mode. A position beyond the 32-bit range is clamped to it, and NaN to its lower end.

// Four channels, in 16.16 fixed point.
[[nodiscard]] Pixel8 SampleBilinear8(const Image& image, double x, double y, std::int32_t edgeMode);
[[nodiscard]] Pixel14 SampleBilinear14(const Image& image, double x, double y, std::int32_t edgeMode);

// One channel. DIFFERS: 8 bits interpolate and round, 14 bits take the nearest pixel below.
[[nodiscard]] std::uint8_t SampleMaskBilinear8(const Image& image, double x, double y, std::int32_t edgeMode);
[[nodiscard]] std::uint16_t SampleMask14(const Image& image, double x, double y, std::int32_t edgeMode);

}  // namespace chalkpane
