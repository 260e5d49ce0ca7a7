#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

#include "chalkpane/image/pixel_format.h"

namespace chalkpane {

// How a row of source pixels and a row of destination pixels make a third: the modes, each in both pixel formats.
//
// Rows hold four channels a pixel, blue, green, red, alpha, and are borrowed for the call. A count of pixels below 1
// does nothing, and no function reads or writes past the end of a row that is shorter than the count says.
// All of it is without state and may run on several rows at once; mode 22 shares the engine's random numbers.

inline constexpr std::int32_t blendModeCount = 28;

// Display names, in index order. Empty for a mode that has none, as 22 .. 27: it is for internal use, reached by its
// number alone.
extern const std::array<std::string_view, blendModeCount> BlendModeNames;

// One mode over one row. `output` may be the same row as `destination`, no other overlap is allowed; a pixel is read
// wholly before it is written.
template <typename F>
using BlendKernel = void (*)(const typename F::Channel* source, const typename F::Channel* destination,
                             typename F::Channel* output, std::int32_t count);

// In index order: a brush holds the index.
extern const std::array<BlendKernel<PixelFormat8>, blendModeCount> BlendKernels8;
extern const std::array<BlendKernel<PixelFormat14>, blendModeCount> BlendKernels14;

// Runs the kernel of `mode` over `count` pixels. Callers keep the mode below `blendModeCount`; any other is mode 0.
void BlendRow8(std::int32_t count, std::int32_t mode, std::span<const std::uint8_t> source,
               std::span<const std::uint8_t> destination, std::span<std::uint8_t> output);
void BlendRow14(std::int32_t count, std::int32_t mode, std::span<const std::uint16_t> source,
                std::span<const std::uint16_t> destination, std::span<std::uint16_t> output);

// Colour from `colours`, alpha from `mask`, which advances by `maskStep` channels a pixel: 1 for a mask, 4 for the
// alpha of four-channel pixels (then `mask` begins at the first alpha).
void MergeMaskRow8(std::span<std::uint8_t> output, std::int32_t count, std::span<const std::uint8_t> colours,
                   std::span<const std::uint8_t> mask, std::int32_t maskStep);
void MergeMaskRow14(std::span<std::uint16_t> output, std::int32_t count, std::span<const std::uint16_t> colours,
                    std::span<const std::uint16_t> mask, std::int32_t maskStep);

// What pastes with a blend mode.
class BlendingModes : public ImageChannels {
public:
    std::uint8_t mode = 0;  // index into the kernel tables
};

}  // namespace chalkpane
