#pragma once

#include <doctest/doctest.h>

#include <cstdint>
#include <vector>

#include "chalkpane/base/multi_processor.h"
#include "tests/chalkpane/filters/filter_pictures.h"

namespace chalkpane::test {

struct PictureCase {
    Rect bounds;
    std::int32_t type;
    std::int32_t depth;
    std::uint8_t flag;
};

// Formats and odd shapes that every filter must get right.
inline const std::vector<PictureCase>& PictureCases() {
    static const std::vector<PictureCase> cases{
        {{-3, 4, 40, 33}, Image::colourType, 0, 1}, {{-3, 4, 40, 33}, Image::colourType, 0, 0},
        {{-3, 4, 40, 33}, Image::colourType, 1, 1}, {{5, -20, 31, -1}, Image::maskType, 0, 0},
        {{5, -20, 31, -1}, Image::maskType, 1, 0},  {{0, 0, 0, 0}, Image::colourType, 0, 1},
        {{0, 0, 0, 17}, Image::colourType, 1, 0},   {{-9, 3, 9, 3}, Image::colourType, 0, 1},
    };
    return cases;
}

// Compares with the plain reference over formats, regions and expansion, with one worker and with several.
template <typename Reference>
void CompareWithReference(Filter& filter, Reference reference, bool bothDepths = true) {
    for (const PictureCase& picture : PictureCases()) {
        if (picture.depth != 0 && !bothDepths) continue;
        const Image source = NoisePicture(picture.bounds, picture.type, picture.depth, picture.flag, 7);
        Rect part = picture.bounds;
        part.x1 = part.x0 + part.Width() / 2;
        part.InflateY(2);
        for (const Rect* region : {static_cast<const Rect*>(nullptr), static_cast<const Rect*>(&part)}) {
            for (const bool expand : {false, true}) {
                const Image wanted = reference(source, region, expand);
                for (const int workers : {1, 3}) {
                    MultiProcessor::Restart(workers);
                    const auto result = Applied(filter, source, region, expand);
                    CAPTURE(picture.bounds.x0);
                    CAPTURE(picture.type);
                    CAPTURE(picture.depth);
                    CAPTURE(expand);
                    CAPTURE(region != nullptr);
                    CAPTURE(workers);
                    REQUIRE(result);
                    CHECK(SamePixels(*result, wanted));
                }
            }
        }
    }
    MultiProcessor::Restart(0);
}

}  // namespace chalkpane::test
