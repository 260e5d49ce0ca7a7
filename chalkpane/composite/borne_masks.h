#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "chalkpane/composite/erase_row.h"

namespace chalkpane {

// By how far a channel is from the colour, or from nothing under an eraser: the greatest mask value that it bears.
using BorneMasks = std::array<std::int32_t, 256>;

// (s * w + d * (65536 - w)) >> 16 is d + ((s - d) * w >> 16) for d up to s.
inline constexpr BorneMasks borneByColour = [] {
    constexpr std::int32_t fullOpacity = 255;
    BorneMasks masks{};
    for (std::int32_t distance = 0; distance < 256; ++distance) {
        std::int32_t mask = 255;
        while (distance * (mask + (mask >> 7)) * fullOpacity >= 65536) --mask;
        masks[static_cast<std::size_t>(distance)] = mask;
    }
    return masks;
}();
static_assert(borneByColour[1] == 255, "1 * 256 * 255 is 65280");
static_assert(borneByColour[2] == 127, "2 * 129 * 255 is 65790, 2 * 127 * 255 is 64770; no weight is 128");
static_assert(borneByColour[255] == 1, "255 * 2 * 255 is 130050");

// Of a channel and all below it.
inline constexpr BorneMasks borneByEraser = [] {
    BorneMasks masks{};
    std::int32_t mask = 255;
    for (std::int32_t channel = 0; channel < 256; ++channel) {
        const auto stays = [&](std::int32_t m) {
            const double f = EraseFactor<PixelFormat8>(m, EraseArithmetic<PixelFormat8>::opacityLimit);
            return static_cast<std::int32_t>(f * channel + 0.5) == channel;
        };
        while (!stays(mask)) --mask;
        masks[static_cast<std::size_t>(channel)] = mask;
    }
    return masks;
}();
static_assert(borneByEraser[0] == 255);
static_assert(borneByEraser[1] == 127, "1 - 127 / 255 is 0.502, 1 - 128 / 255 is 0.498");
static_assert(borneByEraser[255] == 0, "254 under a mask of 1");

}  // namespace chalkpane
