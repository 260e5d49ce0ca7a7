#pragma once

#include <doctest/doctest.h>

#include <cstdint>
#include <random>

#include "tests/chalkpane/filters/filter_pictures.h"
#include "tests/chalkpane/scoped_cpu_features.h"

namespace chalkpane::test {

// Words of all 16 bits, above full scale too, as a stranger's picture may hold them.
inline Image WordPicture(const Rect& bounds, std::int32_t type, std::uint8_t flag, unsigned seed) {
    Image image(bounds, type, 1, flag);
    std::mt19937 random(seed);
    for (std::int32_t y = image.y0; y <= image.y1; ++y)
        for (auto& word : image.Row14(y)) word = static_cast<std::uint16_t>(random());
    return image;
}

// Compares with the filter's own plain forms on pictures of many widths, which the wide ones divide in their own ways.
inline void CompareWithPlainForms(Filter& filter) {
    const auto compare = [&filter](const Image& source) {
        CAPTURE(source.Width());
        CAPTURE(source.type);
        CAPTURE(source.depth);
        CAPTURE(source.flag);
        const auto wide = Applied(filter, source);
        const ScopedCpuFeatures plain(CpuFeatures::Plain);
        CHECK(SamePixels(*wide, *Applied(filter, source)));
    };
    for (const std::int32_t width : {1, 2, 5, 6, 8, 9, 16, 17, 31, 33, 64, 100}) {
        const Rect bounds(-2, 3, width - 3, 11);
        for (const auto type : {Image::colourType, Image::maskType}) {
            for (const auto flag : {std::uint8_t{0}, std::uint8_t{1}}) {
                for (const std::int32_t depth : {0, 1}) compare(NoisePicture(bounds, type, depth, flag, 11));
                compare(WordPicture(bounds, type, flag, 12));
            }
        }
    }
}

}  // namespace chalkpane::test
