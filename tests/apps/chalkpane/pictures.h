#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>

#include "chalkpane/image/image.h"
#include "chalkpane/image/image_rows.h"

namespace chalkpane::app::testing {

// A picture at a depth with straight alpha, every pixel the same; the pixel as bytes, widened at 14 bits.
inline std::unique_ptr<Image> Plain(std::int32_t width, std::int32_t height, Depth depth, const Pixel8& pixel) {
    Image bytes = Image::Colour(width, height, Depth::Eight, AlphaForm::Straight);
    for (std::int32_t y = 0; y < height; ++y) {
        const auto row = bytes.Row8(y);
        for (std::size_t i = 0; i < row.size(); i += 4) {
            row[i] = pixel.blue;
            row[i + 1] = pixel.green;
            row[i + 2] = pixel.red;
            row[i + 3] = pixel.alpha;
        }
    }
    return bytes.Convert(Rect(), depth);
}

inline void Put(Image& image, std::int32_t x, std::int32_t y, const Pixel8& pixel) {
    const auto row = image.Row8(y).subspan(4 * static_cast<std::size_t>(x - image.x0), 4);
    row[0] = pixel.blue;
    row[1] = pixel.green;
    row[2] = pixel.red;
    row[3] = pixel.alpha;
}

// Opaque pixels, no two alike for the first 65536, of all colours.
inline std::unique_ptr<Image> Varied(std::int32_t width, std::int32_t height, Depth depth) {
    auto image = Plain(width, height, Depth::Eight, {0, 0, 0, 255});
    for (std::int32_t y = 0; y < height; ++y)
        for (std::int32_t x = 0; x < width; ++x) {
            const auto n = static_cast<std::uint32_t>(y * width + x);
            Put(*image, x, y,
                {static_cast<std::uint8_t>(n), static_cast<std::uint8_t>(n >> 8),
                 static_cast<std::uint8_t>(n * 2654435761U >> 24), 255});
        }
    return image->Convert(Rect(), depth);
}

// Same bounds, format and channels.
inline bool Same(const Image& a, const Image& b) {
    if (a.Bounds() != b.Bounds() || a.depth != b.depth || a.pixelBytes != b.pixelBytes || a.flag != b.flag)
        return false;
    for (std::int32_t y = a.y0; y <= a.y1; ++y) {
        const bool same = WithFormatOf(a, [&]<typename F>(F) {
            const auto left = ImageRow<F>(a, y);
            const auto right = ImageRow<F>(b, y);
            return std::equal(left.begin(), left.end(), right.begin(), right.end());
        });
        if (!same) return false;
    }
    return true;
}

}  // namespace chalkpane::app::testing
