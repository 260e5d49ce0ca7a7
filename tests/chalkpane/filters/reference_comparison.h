#pragma once

#include <doctest/doctest.h>

#include <cstdint>
#include <vector>

#include "chalkpane/base/multi_processor.h"
#include "tests/chalkpane/filters/filter_pictures.h"

namespace chalkpane::test {

struct PictureCase {
    Rect bounds;
    PixelType type;
    Depth depth;
    AlphaForm form;
};

// Formats and odd shapes that every filter must get right.
inline const std::vector<PictureCase>& PictureCases() {
    static const std::vector<PictureCase> cases{
        {{-3, 4, 40, 33}, PixelType::Colour, Depth::Eight, AlphaForm::Premultiplied},
        {{-3, 4, 40, 33}, PixelType::Colour, Depth::Eight, AlphaForm::Straight},
        {{-3, 4, 40, 33}, PixelType::Colour, Depth::Fourteen, AlphaForm::Premultiplied},
        {{5, -20, 31, -1}, PixelType::Mask, Depth::Eight, AlphaForm::Straight},
        {{5, -20, 31, -1}, PixelType::Mask, Depth::Fourteen, AlphaForm::Straight},
        {{0, 0, 0, 0}, PixelType::Colour, Depth::Eight, AlphaForm::Premultiplied},
        {{0, 0, 0, 17}, PixelType::Colour, Depth::Fourteen, AlphaForm::Straight},
        {{-9, 3, 9, 3}, PixelType::Colour, Depth::Eight, AlphaForm::Premultiplied},
    };
    return cases;
}

// Compares with the plain reference over formats, regions and expansion, with one worker and with several.
template <typename Reference>
void CompareWithReference(Filter& filter, Reference reference, bool bothDepths = true) {
    for (const PictureCase& picture : PictureCases()) {
        if (picture.depth == Depth::Fourteen && !bothDepths) continue;
        const Image source = NoisePicture(picture.bounds, picture.type, picture.depth, picture.form, 7);
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
