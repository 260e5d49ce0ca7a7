#pragma once

#include <array>
#include <cstdint>
#include <random>

#include "chalkpane/image/image.h"
#include "tests/reference/picture.h"

namespace chalkpane {

// Noise, with a good part of the channels at the ends of the range, where the rules change.
inline Image NoiseImage(const Rect& rect, PixelType type, Depth depth, std::uint32_t seed,
                        AlphaForm form = AlphaForm::Straight) {
    Image image(rect, type, depth, form);
    reference::FillWithNoise(image, seed);
    std::mt19937 random(seed + 1);
    const auto sharpen = [&](auto row, auto full) {
        for (auto& channel : row) {
            const auto choice = random() % 6;
            if (choice == 0) channel = 0;
            if (choice == 1) channel = full;
        }
    };
    for (std::int32_t y = image.y0; y <= image.y1; ++y) {
        if (depth == Depth::Eight)
            sharpen(image.Row8(y), std::uint8_t{255});
        else
            sharpen(image.Row14(y), std::uint16_t{16383});
    }
    return image;
}

// A rectangle that overlaps 0 .. 40 in most draws, and lies anywhere near it in all.
inline Rect RandomRect(std::mt19937& random) {
    const auto from = [&](int low, int count) {
        return low + static_cast<int>(random() % static_cast<unsigned>(count));
    };
    const int x = from(-15, 40);
    const int y = from(-15, 40);
    return {x, y, x + from(0, 40), y + from(0, 40)};
}

using ChannelValues = std::array<int, 4>;

// One colour everywhere, in the image's own scale; of a mask the first value.
inline Image FlatImage(const Rect& rect, PixelType type, Depth depth, const ChannelValues& values,
                       AlphaForm form = AlphaForm::Straight) {
    Image image(rect, type, depth, form);
    const std::size_t channels = image.IsMask() ? 1 : 4;
    for (std::int32_t y = image.y0; y <= image.y1; ++y)
        for (std::int32_t x = image.x0; x <= image.x1; ++x)
            for (std::size_t c = 0; c < channels; ++c) {
                if (depth == Depth::Eight)
                    reinterpret_cast<std::uint8_t*>(image.Address(x, y))[c] = static_cast<std::uint8_t>(values[c]);
                else
                    reinterpret_cast<std::uint16_t*>(image.Address(x, y))[c] = static_cast<std::uint16_t>(values[c]);
            }
    return image;
}

inline ChannelValues ValuesAt(const Image& image, std::int32_t x, std::int32_t y) {
    reference::Picture picture(image);
    ChannelValues values{};
    for (int c = 0; c < picture.channels; ++c) values[static_cast<std::size_t>(c)] = picture.At(x, y, c);
    return values;
}

inline bool SamePixels(const Image& image, const reference::Picture& wanted) {
    return reference::Same(reference::Picture(image), wanted);
}

constexpr Rect onePixel{0, 0, 0, 0};

}  // namespace chalkpane
