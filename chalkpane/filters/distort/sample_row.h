#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "chalkpane/image/image.h"

namespace chalkpane {

// Samples of a four-channel image between its pixels, one for each of `pixels`, exactly as SampleBilinear8 and
// SampleBilinear14 take them.
//
//   x, y  plane coordinates, as many as pixels; any floats
//
// `pixels` is no part of the image.
void SampleRow8(const Image& image, std::span<const float> x, std::span<const float> y, std::int32_t edgeMode,
                std::span<Pixel8> pixels);
void SampleRow14(const Image& image, std::span<const float> x, std::span<const float> y, std::int32_t edgeMode,
                 std::span<Pixel14> pixels);

// Need AVX2, and are there where `builtWithAvx2`. They return how many pixels, from the left, they did: whole fours.
std::size_t SampleRow8Avx2(const Image& image, std::span<const float> x, std::span<const float> y,
                           std::int32_t edgeMode, std::span<Pixel8> pixels);
std::size_t SampleRow14Avx2(const Image& image, std::span<const float> x, std::span<const float> y,
                            std::int32_t edgeMode, std::span<Pixel14> pixels);

}  // namespace chalkpane
