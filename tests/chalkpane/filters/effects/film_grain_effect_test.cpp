#include "chalkpane/filters/effects/film_grain_effect.h"

#include <limits>

#include "tests/chalkpane/filters/reference_comparison.h"
#include "tests/reference/effects.h"

using namespace chalkpane;
using namespace chalkpane::test;

namespace {

void Set(Filter& filter, const reference::GrainSettings& s) {
    const char* const colours[] = {"Red", "Green", "Blue"};
    for (std::size_t i = 0; i < 3; ++i) {
        SetNumber(filter, std::string(colours[i]) + " Level", s.levels[i]);
        SetNumber(filter, std::string(colours[i]) + " Size", s.sizes[i]);
    }
    SetNumber(filter, "RandomSeed", s.seed);
}

}  // namespace

TEST_CASE("Film grain is its plain reference") {
    const std::vector<reference::GrainSettings> settings{
        {{0.5F, 0.2F, 1.0F}, {1.0F, 1.0F, 1.0F}, 77},
        {{0.0F, 1.0F, 0.3F}, {1.0F, 3.5F, 2.0F}, -1},
        {{0.002F, 0.0005F, 0.9F}, {4.9F, 1.0F, 5.0F}, 10000},
    };
    for (const auto& s : settings) {
        for (const int frame : {0, 41}) {
            FilmGrainEffect filter;
            Set(filter, s);
            for (const PictureCase& picture : PictureCases()) {
                const Image source = NoisePicture(picture.bounds, picture.type, picture.depth, picture.form, 7);
                const Image wanted = reference::FilmGrain(source, s, frame);
                filter.Advance(&source, frame, 0, 0, 0, 0);
                for (const int workers : {1, 3}) {
                    CAPTURE(s.seed);
                    CAPTURE(frame);
                    CAPTURE(picture.depth);
                    CAPTURE(picture.type);
                    CAPTURE(workers);
                    MultiProcessor::Restart(workers);
                    CHECK(SamePixels(*Applied(filter, source), wanted));
                }
            }
        }
    }
    MultiProcessor::Restart(0);
}

// 105,000 pixels are 7 bands, and the tables of three channels 12.
TEST_CASE("Film grain is its plain reference whichever workers make it, in channels that are blurred and in others") {
    const std::vector<reference::GrainSettings> settings{
        {{0.5F, 0.9F, 1.0F}, {1.0F, 1.0F, 1.0F}, 77},
        {{0.7F, 1.0F, 0.3F}, {1.0F, 2.5F, 0.5F}, 9},
        {{2.5F, 0.0F, 0.6F}, {0.9F, 1.0F, 0.4F}, 5},
    };
    for (const auto& s : settings) {
        for (const Depth depth : {Depth::Eight, Depth::Fourteen}) {
            FilmGrainEffect filter;
            Set(filter, s);
            const Image source = NoisePicture({-5, 3, 294, 352}, PixelType::Colour, depth, AlphaForm::Premultiplied, 7);
            const Image wanted = reference::FilmGrain(source, s, 12);
            filter.Advance(&source, 12, 0, 0, 0, 0);
            for (const int workers : {1, 2, 5}) {
                CAPTURE(s.seed);
                CAPTURE(depth);
                CAPTURE(workers);
                MultiProcessor::Restart(workers);
                CHECK(SamePixels(*Applied(filter, source), wanted));
            }
        }
    }
    MultiProcessor::Restart(0);
}

TEST_CASE("Film grain with levels that add up to less than 0.001 is a plain copy") {
    const Image source = NoisePicture({0, 0, 8, 8}, PixelType::Colour, Depth::Eight, AlphaForm::Straight, 3);
    FilmGrainEffect filter;
    Set(filter, {{0.0003F, 0.0003F, 0.0003F}, {1.0F, 1.0F, 1.0F}, 5});
    filter.Advance(&source, 3, 0, 0, 0, 0);
    CHECK(SamePixels(*Applied(filter, source), source));
}

TEST_CASE("There is no grain before a step was announced, nor beyond the rows it was announced for") {
    const Image source = NoisePicture({0, 0, 20, 20}, PixelType::Colour, Depth::Eight, AlphaForm::Straight, 3);
    FilmGrainEffect filter;
    Set(filter, {{1.0F, 1.0F, 1.0F}, {1.0F, 1.0F, 1.0F}, 5});
    CHECK(SamePixels(*Applied(filter, source), source));
    filter.Advance(nullptr, 3, 0, 0, 0, 0);
    CHECK(SamePixels(*Applied(filter, source), source));
    const Image part = Image::Colour(Rect(0, 5, 0, 9), Depth::Eight, AlphaForm::Straight);
    filter.Advance(&part, 3, 0, 0, 0, 0);
    const auto result = Applied(filter, source);
    CHECK(std::equal(source.Row8(3).begin(), source.Row8(3).end(), result->Row8(3).begin()));
    CHECK_FALSE(std::equal(source.Row8(4).begin(), source.Row8(4).end(), result->Row8(4).begin()));  // grown by 1
    CHECK_FALSE(std::equal(source.Row8(10).begin(), source.Row8(10).end(), result->Row8(10).begin()));
    CHECK(std::equal(source.Row8(11).begin(), source.Row8(11).end(), result->Row8(11).begin()));
}

TEST_CASE("Grain changes from frame to frame, and a frame always has the same") {
    const Image source = NoisePicture({0, 0, 8, 8}, PixelType::Colour, Depth::Fourteen, AlphaForm::Straight, 3);
    FilmGrainEffect filter;
    Set(filter, {{1.0F, 1.0F, 1.0F}, {1.0F, 2.0F, 1.0F}, 5});
    const auto frame = [&](int number) {
        filter.Advance(&source, number, 0, 0, 0, 0);
        return Applied(filter, source);
    };
    const auto first = frame(1);
    CHECK_FALSE(SamePixels(*first, *frame(2)));
    CHECK(SamePixels(*first, *frame(1)));
}

TEST_CASE("A set of grain values comes with a seed from the clock") {
    FilmGrainEffect filter;
    filter.MakeValues(false, nullptr, nullptr);
    std::int32_t seed = -1;
    SetParameter(filter, "RandomSeed", [&seed](ParameterValue& value) { value.getInteger(seed); });
    CHECK(seed >= 0);
    CHECK(seed < 10000);
    FilmGrainEffect same;
    SetNumber(same, "RandomSeed", seed);
    CHECK(filter.Equals(same));
}

TEST_CASE("A copy of film grain has its settings and no grain") {
    const Image source = NoisePicture({0, 0, 8, 8}, PixelType::Colour, Depth::Eight, AlphaForm::Straight, 3);
    FilmGrainEffect filter;
    Set(filter, {{1.0F, 1.0F, 1.0F}, {1.0F, 2.0F, 1.0F}, 5});
    filter.Advance(&source, 1, 0, 0, 0, 0);
    const auto copy = filter.Clone();
    CHECK(copy->Equals(filter));
    CHECK(SamePixels(*Applied(*copy, source), source));
}

TEST_CASE("Film grain takes any setting") {
    const double infinity = std::numeric_limits<double>::infinity();
    const Image source = NoisePicture({0, 0, 8, 8}, PixelType::Colour, Depth::Fourteen, AlphaForm::Premultiplied, 3);
    for (const double value : {-1e30, -1.0, 0.0, 1e30, infinity, -infinity, std::nan("")})
        for (const char* label : {"Red Level", "Red Size"}) {
            FilmGrainEffect filter;
            SetNumber(filter, "Red Level", 0.5);
            SetNumber(filter, label, value);
            filter.Advance(&source, -2147483647, 0, 0, 0, 0);
            CHECK(Applied(filter, source));
        }
}
