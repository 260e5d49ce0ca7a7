#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "chalkpane/filters/noise/grain_lanes.h"

namespace chalkpane {

// How a sum of random numbers becomes a noise: (sum / divisor - middle) * amplitude, in floats.
struct NoiseScale {
    float divisor;
    float middle;
    float amplitude;
};

// Adds noise to whole blocks of eight pixels and returns how many channels it went through.
//
//   blue, green, red   the sums of each pixel
//
// Needs AVX2, and is there where `builtWithAvx2`.
struct NoiseSums {
    const std::int32_t* blue;
    const std::int32_t* green;
    const std::int32_t* red;
};
std::size_t AddNoiseAvx2(std::span<std::uint8_t> pixels, const NoiseSums& sums, const NoiseScale& scale);
std::size_t AddNoiseAvx2(std::span<std::uint16_t> pixels, const NoiseSums& sums, const NoiseScale& scale);

}  // namespace chalkpane
