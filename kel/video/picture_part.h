#pragma once

#include <algorithm>
#include <cstdint>

namespace kel {

// A rectangle of a picture's pixels; of no width or no height: none of them.
struct PicturePart {
    std::int32_t x = 0;
    std::int32_t y = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;

    [[nodiscard]] bool IsEmpty() const { return width <= 0 || height <= 0; }
    // The least rectangle that has all pixels of both.
    [[nodiscard]] PicturePart With(const PicturePart& other) const {
        if (IsEmpty()) return other;
        if (other.IsEmpty()) return *this;
        const std::int32_t left = std::min(x, other.x);
        const std::int32_t top = std::min(y, other.y);
        return {left, top, std::max(x + width, other.x + other.width) - left,
                std::max(y + height, other.y + other.height) - top};
    }
    [[nodiscard]] PicturePart Within(std::int32_t pictureWidth, std::int32_t pictureHeight) const {
        const std::int32_t left = std::max(x, 0);
        const std::int32_t top = std::max(y, 0);
        return {left, top, std::min(x + width, pictureWidth) - left, std::min(y + height, pictureHeight) - top};
    }
};

}  // namespace kel
