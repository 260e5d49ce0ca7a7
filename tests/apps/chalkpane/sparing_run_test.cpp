#include "apps/chalkpane/filtering/sparing_run.h"

#include <doctest/doctest.h>

#include <string>

#include "apps/chalkpane/filtering/filter_texts.h"
#include "tests/address_checks.h"
#include "tests/apps/chalkpane/pictures.h"

namespace chalkpane::app {
namespace {

// As wide as makes several bands; every third stretch of it shows through.
std::unique_ptr<Image> TallForBands(Depth depth) {
    auto image = testing::Varied(2000, 400, Depth::Eight);
    for (std::int32_t y = 0; y <= image->y1; ++y)
        for (std::int32_t x = 0; x <= image->x1; ++x)
            if (x / 40 % 3 == 0) image->SetAlpha8(x, y, static_cast<std::uint8_t>(x * y));
    return image->Convert(Rect(), depth);
}

}  // namespace

TEST_CASE("Filters that run over bands in place make what they make at once, with a region or without") {
    const FilterRun runs[] = {
        {}, {.expand = true}, {.region = Rect(100, 90, 1500, 310)}, {.expand = true, .region = Rect(0, 0, 1500, 310)}};
    for (const std::string text : {"Median:Radius=3", "Median:Radius=20", "Oil:Radius=4", "Blur:Softness=3"})
        for (const FilterRun& run : runs)
            for (const Depth depth : {Depth::Eight, Depth::Fourteen}) {
                if (tests::hasAddressChecks && depth == Depth::Fourteen) continue;  // takes long, there
                CAPTURE(text);
                CAPTURE(depth);
                const auto filter = FilterFromText(text);
                const auto atOnce = RunFilter(*filter, TallForBands(depth), run);
                CHECK(testing::Same(*RunSparingly(*filter, TallForBands(depth), run), *atOnce));
            }
}

TEST_CASE("Pixels that somebody else has are left as they are") {
    const auto source = TallForBands(Depth::Eight);
    const auto before = source->Clone();
    for (const std::string text : {"Median:Radius=3", "Invert Color", "Blur:Softness=3"}) {
        CAPTURE(text);
        const auto filter = FilterFromText(text);
        const FilterRun region{.region = Rect(100, 90, 1500, 310)};
        (void)RunSparingly(*filter, std::make_unique<Image>(*source), {});
        (void)RunSparingly(*filter, std::make_unique<Image>(*source), region);
        CHECK(testing::Same(*source, *before));
    }
}

}  // namespace chalkpane::app
