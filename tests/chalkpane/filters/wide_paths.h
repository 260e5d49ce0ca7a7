#pragma once

#include <doctest/doctest.h>

#include <cstdint>
#include <random>

#include "tests/chalkpane/filters/filter_pictures.h"
#include "tests/chalkpane/scoped_cpu_features.h"

namespace chalkpane::test {

// Words of all 16 bits, above full scale too, as a stranger's picture may hold them.
inline Image WordPicture(const Rect& bounds, PixelType type, AlphaForm form, unsigned seed) {
    Image image(bounds, type, Depth::Fourteen, form);
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
        const auto made = [&](CpuFeatures features) {
            const ScopedCpuFeatures used(features);
            return Applied(filter, source);
        };
        const auto plain = made(CpuFeatures::Plain);
        CHECK(SamePixels(*made(CpuFeatures::Avx2), *plain));
        CHECK(SamePixels(*made(CpuFeatures::All), *plain));
    };
    for (const std::int32_t width : {1, 2, 5, 6, 8, 9, 16, 17, 31, 33, 64, 100}) {
        const Rect bounds(-2, 3, width - 3, 11);
        for (const PixelType type : {PixelType::Colour, PixelType::Mask}) {
            for (const AlphaForm form : {AlphaForm::Straight, AlphaForm::Premultiplied}) {
                for (const Depth depth : {Depth::Eight, Depth::Fourteen})
                    compare(NoisePicture(bounds, type, depth, form, 11));
                compare(WordPicture(bounds, type, form, 12));
            }
        }
    }
}

}  // namespace chalkpane::test
