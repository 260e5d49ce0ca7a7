#include "apps/chalkpane/filtering/filter_run.h"

#include <doctest/doctest.h>

#include <vector>

#include "apps/chalkpane/filtering/filter_texts.h"
#include "apps/chalkpane/filtering/picture_image.h"
#include "tests/apps/chalkpane/pictures.h"

namespace chalkpane::app {
namespace {

using testing::Plain;
using testing::Put;
using testing::Same;
using testing::Varied;

std::unique_ptr<Image> Run(const char* text, const Image& source, const FilterRun& run = {}) {
    std::vector<std::unique_ptr<Filter>> filters;
    filters.push_back(FilterFromText(text));
    auto result = RunFilters(filters, source, run);
    SetAlphaForm(*result, AlphaForm::Straight);
    return result;
}

bool Touches(const Rect& part, const Image& a, const Image& b) {
    for (std::int32_t y = a.y0; y <= a.y1; ++y)
        for (std::int32_t x = a.x0; x <= a.x1; ++x)
            if (part.Contains(x, y) && !(a.GetPixel8(x, y) == b.GetPixel8(x, y))) return true;
    return false;
}

}  // namespace

TEST_CASE("A filter of one pixel leaves hardly opaque pixels their colours") {
    const auto result = Run("Invert Color", *Plain(3, 2, Depth::Eight, {50, 100, 200, 1}));
    CHECK(result->GetPixel8(1, 1) == Pixel8{205, 155, 55, 1});
}

TEST_CASE("A blur takes no colour from where nothing is seen") {
    const auto picture = Plain(9, 9, Depth::Eight, {255, 0, 0, 255});
    Put(*picture, 4, 4, {0, 0, 255, 0});  // red, but transparent
    const auto result = Run("Blur:Softness=2", *picture);
    CHECK_LT(result->GetPixel8(4, 4).alpha, 255);
    CHECK_EQ(result->GetPixel8(4, 4).red, 0);
    CHECK_GE(result->GetPixel8(4, 4).blue, 254);
}

// 6425 is 100 widened; the 8 bits of 6426 are 100 too.
TEST_CASE("A filter that knows bytes only runs at bytes, and the picture keeps its depth") {
    const auto picture = Plain(5, 5, Depth::Fourteen, {100, 100, 100, 255});
    picture->Row14(2)[0] = 6426;
    const auto result = Run("Median:Radius=1", *picture);
    CHECK(result->GetDepth() == Depth::Fourteen);
    CHECK(result->GetPixel14(0, 2) == Pixel14{6425, 6425, 6425, 16383});
}

TEST_CASE("A region alone changes, at both depths") {
    const Rect region(1, 2, 3, 4);
    for (const Depth depth : {Depth::Eight, Depth::Fourteen}) {
        CAPTURE(depth);
        const auto picture = Varied(7, 6, depth);
        const auto whole = Run("Invert Color", *picture);
        const auto part = Run("Invert Color", *picture, {.region = region});
        REQUIRE(part->Bounds() == picture->Bounds());
        for (std::int32_t y = 0; y < 6; ++y)
            for (std::int32_t x = 0; x < 7; ++x) {
                const Image& wanted = region.Contains(x, y) ? *whole : *picture;
                if (depth == Depth::Eight)
                    CHECK(part->GetPixel8(x, y) == wanted.GetPixel8(x, y));
                else
                    CHECK(part->GetPixel14(x, y) == wanted.GetPixel14(x, y));
            }
    }
}

TEST_CASE("Outside a region even the finest bits stay when a filter knows bytes only") {
    const auto picture = Plain(5, 5, Depth::Fourteen, {100, 100, 100, 255});
    for (auto& channel : picture->Row14(2)) channel = channel == 6425 ? 6426 : channel;
    const auto result = Run("Median:Radius=1", *picture, {.region = Rect(0, 0, 1, 4)});
    CHECK_EQ(result->GetPixel14(1, 2).red, 6425);
    CHECK_EQ(result->GetPixel14(2, 2).red, 6426);
}

TEST_CASE("A blur in a region sees what is around it") {
    const auto picture = Plain(20, 20, Depth::Eight, {40, 50, 60, 255});
    CHECK(Same(*Run("Blur:Softness=3", *picture, {.region = Rect(6, 6, 13, 13)}), *picture));
}

TEST_CASE("A region of several filters holds for each") {
    const auto picture = Varied(8, 8, Depth::Eight);
    std::vector<std::unique_ptr<Filter>> filters;
    for (const char* text : {"Pixellate:Size=3", "Black & White"}) filters.push_back(FilterFromText(text));
    std::vector<std::int32_t> steps;
    const FilterRun run{.region = Rect(0, 0, 3, 7)};
    const auto result = RunFilters(filters, *picture, run, [&steps](std::int32_t done) { steps.push_back(done); });
    CHECK(steps == std::vector<std::int32_t>{1, 2});
    CHECK_FALSE(Touches(Rect(4, 0, 7, 7), *result, *picture));
    CHECK(Touches(run.region.value(), *result, *picture));
}

// A blur of softness 2 reaches ceil(2) pixels.
TEST_CASE("A picture grows only where it may") {
    const auto picture = Plain(6, 4, Depth::Eight, {40, 50, 60, 255});
    CHECK(Run("Blur:Softness=2", *picture)->Bounds() == Rect(0, 0, 5, 3));
    CHECK(Run("Blur:Softness=2", *picture, {.expand = true})->Bounds() == Rect(-2, -2, 7, 5));
    CHECK(Run("Invert Color", *picture, {.expand = true})->Bounds() == Rect(0, 0, 5, 3));
}

TEST_CASE("A picture that grows keeps what lies outside the region") {
    const auto picture = Plain(12, 4, Depth::Eight, {40, 50, 60, 255});
    const auto result = Run("Blur:Softness=2", *picture, {.expand = true, .region = Rect(0, 0, 3, 3)});
    CHECK_EQ(result->x0, -2);
    CHECK(result->GetPixel8(4, 0) == Pixel8{40, 50, 60, 255});
    CHECK_LT(result->GetPixel8(0, 0).alpha, 255);
    CHECK_GT(result->GetPixel8(-1, 1).alpha, 0);
}

// Within the picture the region is from the whole run and the rest from the picture; beyond it all is from that run.
// The jitter makes pictures that are wider, but not higher than the source, and the other way round.
TEST_CASE(
    "A jitter in a region, small or large, beside the picture or across its edge, changes the region and what grows") {
    const auto picture = Plain(40, 20, Depth::Eight, {40, 50, 60, 255});
    for (std::int32_t x = 0; x < 40; ++x) Put(*picture, x, x / 2, {static_cast<std::uint8_t>(6 * x), 9, 7, 255});
    for (const char* const filter : {"Random Jitter:Max Angle=25", "Random Jitter:Max Move X=9",
                                     "Random Jitter:Max Move Y=5:Max Zoom=30", "Random Jitter:Max Zoom=20"})
        for (const Rect& region :
             {Rect(2, 2, 5, 5), Rect(1, 1, 38, 19), Rect(0, 0, 39, 19), Rect(30, -5, 60, 12), Rect(50, 50, 60, 60)})
            for (std::int32_t frame = 0; frame < 6; ++frame) {
                CAPTURE(filter);
                CAPTURE(region);
                CAPTURE(frame);
                const auto whole = Run(filter, *picture, {.expand = true, .frame = frame});
                const auto result = Run(filter, *picture, {.expand = true, .region = region, .frame = frame});
                REQUIRE(result->Bounds() == whole->Bounds());
                int wrong = 0;
                for (std::int32_t y = result->y0; y <= result->y1; ++y)
                    for (std::int32_t x = result->x0; x <= result->x1; ++x) {
                        const bool stays = picture->Contains(x, y) && !region.Contains(x, y);
                        wrong += result->GetPixel8(x, y) == (stays ? *picture : *whole).GetPixel8(x, y) ? 0 : 1;
                    }
                CHECK_EQ(wrong, 0);
            }
}

TEST_CASE("A distortion that leaves part of the picture bare leaves it transparent") {
    const auto result = Run("Random Jitter:Max Angle=25:Max Zoom=0.1", *Plain(40, 20, Depth::Eight, {40, 50, 60, 255}));
    CHECK(result->Bounds() == Rect(0, 0, 39, 19));
    CHECK_EQ(result->GetPixel8(0, 0).alpha * result->GetPixel8(0, 19).alpha, 0);
    CHECK_EQ(result->GetPixel8(20, 10).alpha, 255);
}

TEST_CASE("Fast distortions take whole pixels, others mix them") {
    const auto picture = Plain(40, 40, Depth::Eight, {0, 0, 0, 255});
    for (std::int32_t y = 0; y < 40; ++y)
        for (std::int32_t x = y % 2; x < 40; x += 2) Put(*picture, x, y, {255, 255, 255, 255});
    const auto mixed = [&](bool fast) {
        const auto result = Run("Marble:Scale=0.3:Distance=0.3:Edges=Reflect", *picture, {.fast = fast});
        std::size_t count = 0;
        for (std::int32_t y = 0; y < 40; ++y)
            for (std::int32_t x = 0; x < 40; ++x) {
                const auto red = result->GetPixel8(x, y).red;
                count += red != 0 && red != 255 ? 1 : 0;
            }
        return count;
    };
    CHECK_EQ(mixed(true), 0);
    CHECK_GT(mixed(false), 100);
}

TEST_CASE("Smart blur leaves the picture as it is") {
    const auto picture = Varied(9, 9, Depth::Eight);
    CHECK(Same(*Run("Smart Blur:Softness=10", *picture), *picture));
    const auto faint = Plain(4, 4, Depth::Eight, {50, 100, 200, 1});
    CHECK(Same(*Run("Smart Blur:Softness=10", *faint), *faint));
}

TEST_CASE("Chance follows the frame, and nothing else") {
    const auto picture = Varied(24, 16, Depth::Eight);
    const FilterRun seventh{.frame = 7};
    for (const char* text : {"Film Grain:Red Level=1", "Colour Jitter:Hue Rotation=100"}) {
        CAPTURE(text);
        const auto first = Run(text, *picture);
        CHECK(Same(*Run(text, *picture), *first));
        CHECK_FALSE(Same(*Run(text, *picture, seventh), *first));
    }
    for (const char* text : {"Marble:Scale=0.5", "Turbulence:Amount=5", "Add Noise:Level=0.5"}) {
        CAPTURE(text);
        const auto first = Run(text, *picture);
        (void)Run("Turbulence:Amount=5", *picture);
        (void)Run("Marble:Scale=0.5", *picture);
        CHECK(Same(*Run(text, *picture, seventh), *first));
    }
}

// With full scale 255: (10 * 255 * 128 + 210 * 255 * 127) / (255 * 255) is 109.6.
TEST_CASE("A mask mixes by its coverage") {
    const auto before = Plain(3, 1, Depth::Eight, {210, 210, 210, 255});
    const auto after = Plain(3, 1, Depth::Eight, {10, 10, 10, 255});
    Image mask = Image::Mask(3, 1, Depth::Eight);
    mask.Row8(0)[0] = 0;
    mask.Row8(0)[1] = 128;
    mask.Row8(0)[2] = 255;
    const auto mixed = MixByMask(before->Clone(), *after, mask);
    CHECK_EQ(mixed->GetPixel8(0, 0).red, 210);
    CHECK_EQ(mixed->GetPixel8(1, 0).red, 110);
    CHECK_EQ(mixed->GetPixel8(2, 0).red, 10);
    CHECK_EQ(mixed->GetPixel8(1, 0).alpha, 255);
}

TEST_CASE("A mask takes no colour from transparent pixels, nor from beyond the result") {
    const auto before = Plain(2, 1, Depth::Eight, {200, 200, 200, 0});
    const auto after = Plain(1, 1, Depth::Eight, {10, 10, 10, 255});
    Image mask = Image::Mask(2, 1, Depth::Eight);
    mask.Row8(0)[0] = 128;
    mask.Row8(0)[1] = 128;
    const auto mixed = MixByMask(before->Clone(), *after, mask);
    CHECK(mixed->GetPixel8(0, 0) == Pixel8{10, 10, 10, 128});
    CHECK_EQ(mixed->GetPixel8(1, 0).alpha, 0);
}

// (2000 * 16383 * 8192 + 4000 * 16383 * 8191) / 16383^2 is 2999.94.
TEST_CASE("A mask mixes at 14 bits") {
    const auto before = Plain(1, 1, Depth::Fourteen, {0, 0, 0, 255});
    const auto after = Plain(1, 1, Depth::Fourteen, {0, 0, 0, 255});
    before->Row14(0)[2] = 4000;
    after->Row14(0)[2] = 2000;
    Image mask = Image::Mask(1, 1, Depth::Fourteen);
    mask.Row14(0)[0] = 8192;
    CHECK(MixByMask(before->Clone(), *after, mask)->GetPixel14(0, 0) == Pixel14{0, 0, 3000, 16383});
}

}  // namespace chalkpane::app
