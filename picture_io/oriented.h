#pragma once

#include "picture_io/exif.h"
#include "picture_io/picture.h"

namespace picture_io {

// The picture that is meant by pixels that stand like this.
//
// The numbers of EXIF say where the first row and column of the pixels lie in what is meant. With x, y of the upright
// picture and w, h the sides of the stored one, the pixel is taken from
//   2: w-1-x, y   3: w-1-x, h-1-y   4: x, h-1-y   5: y, x   6: y, h-1-x   7: w-1-y, h-1-x   8: w-1-y, x
template <typename Word>
[[nodiscard]] BasicPicture<Word> Oriented(BasicPicture<Word> stored, Orientation orientation) {
    if (orientation == Orientation::Upright) return stored;
    const bool exchangesSides = orientation >= Orientation::Transposed;
    BasicPicture<Word> upright(exchangesSides ? stored.height : stored.width,
                               exchangesSides ? stored.width : stored.height);
    const std::int32_t right = stored.width - 1;
    const std::int32_t bottom = stored.height - 1;
    const auto fill = [&](auto&& place) {
        for (std::int32_t y = 0; y < upright.height; ++y)
            for (std::int32_t x = 0; x < upright.width; ++x) {
                const auto [fromX, fromY] = place(x, y);
                upright.Set(x, y, stored.At(fromX, fromY));
            }
    };
    using Place = std::array<std::int32_t, 2>;
    switch (orientation) {
        case Orientation::Upright:
            break;
        case Orientation::Mirrored:
            fill([=](std::int32_t x, std::int32_t y) { return Place{right - x, y}; });
            break;
        case Orientation::UpsideDown:
            fill([=](std::int32_t x, std::int32_t y) { return Place{right - x, bottom - y}; });
            break;
        case Orientation::Flipped:
            fill([=](std::int32_t x, std::int32_t y) { return Place{x, bottom - y}; });
            break;
        case Orientation::Transposed:
            fill([](std::int32_t x, std::int32_t y) { return Place{y, x}; });
            break;
        case Orientation::FirstRowRight:
            fill([=](std::int32_t x, std::int32_t y) { return Place{y, bottom - x}; });
            break;
        case Orientation::Transversed:
            fill([=](std::int32_t x, std::int32_t y) { return Place{right - y, bottom - x}; });
            break;
        case Orientation::FirstRowLeft:
            fill([=](std::int32_t x, std::int32_t y) { return Place{right - y, x}; });
            break;
    }
    return upright;
}

}  // namespace picture_io
