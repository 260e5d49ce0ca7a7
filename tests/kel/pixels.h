#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "picture_io/picture.h"

namespace kel::testing {

using Pixel = std::array<std::uint8_t, 4>;

constexpr Pixel black{0, 0, 0, 255};
constexpr Pixel white{255, 255, 255, 255};
constexpr Pixel red{255, 0, 0, 255};
constexpr Pixel green{0, 255, 0, 255};
constexpr Pixel blue{0, 0, 255, 255};

inline std::string Text(const Pixel& pixel) {
    std::string text;
    for (const std::uint8_t channel : pixel) text += std::to_string(channel) + " ";
    return text;
}

// The largest difference in a channel.
inline int Difference(const Pixel& a, const Pixel& b) {
    int worst = 0;
    for (std::size_t channel = 0; channel < 4; ++channel) worst = std::max(worst, std::abs(a[channel] - b[channel]));
    return worst;
}

inline picture_io::Picture Plain(std::int32_t width, std::int32_t height, const Pixel& pixel) {
    picture_io::Picture picture(width, height);
    for (std::int32_t y = 0; y < height; ++y)
        for (std::int32_t x = 0; x < width; ++x) picture.Set(x, y, pixel);
    return picture;
}

// Something else at every pixel, in all channels but alpha, which is full.
inline picture_io::Picture Speckled(std::int32_t width, std::int32_t height) {
    picture_io::Picture picture(width, height);
    std::uint32_t state = 1;
    for (std::int32_t y = 0; y < height; ++y)
        for (std::int32_t x = 0; x < width; ++x) {
            state = state * 1664525U + 1013904223U;
            picture.Set(x, y,
                        {static_cast<std::uint8_t>(state >> 24U), static_cast<std::uint8_t>(state >> 16U),
                         static_cast<std::uint8_t>(state >> 8U), 255});
        }
    return picture;
}

}  // namespace kel::testing
