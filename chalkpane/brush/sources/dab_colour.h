#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

#include "chalkpane/image/image.h"

namespace chalkpane {

// A pixel of either depth in memory order: blue, green, red, alpha.
using DabPixel = std::array<std::uint16_t, 4>;

// Makes every pixel of a four-channel image `pixel`, the low byte of each channel at 8 bits.
inline void FillWithPixel(Image& image, const DabPixel& pixel) {
    const auto fill = [&](auto row) {
        for (std::size_t i = 0; i + 3 < row.size(); i += 4)
            for (std::size_t channel = 0; channel < 4; ++channel)
                row[i + channel] = static_cast<typename decltype(row)::value_type>(pixel[channel]);
    };
    for (std::int64_t y = image.y0; y <= image.y1; ++y) {
        const auto line = static_cast<std::int32_t>(y);
        if (image.GetDepth() == Depth::Eight)
            fill(image.Row8(line));
        else
            fill(image.Row14(line));
    }
}

}  // namespace chalkpane
