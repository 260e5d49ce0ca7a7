#include <doctest/doctest.h>

#include <random>
#include <string>

#include "chalkpane/image/image_rows.h"
#include "tests/chalkpane/brush/brush_fixture.h"

using namespace chalkpane;

namespace {

struct Settings {
    int sourceType;
    int blendMode;
    int radius;
    double opacity;
    double decay;
    std::string profile;
};

void SetUp(BasicBrush& brush, Image& canvas, const Settings& settings) {
    brush.SetTarget(&canvas);
    brush.SetSourceType(settings.sourceType);
    brush.SetBlendMode(settings.blendMode);
    ValueOf(brush, BrushParameter::Opacity).setDouble(settings.opacity);
    ValueOf(brush, BrushParameter::Decay).setDouble(settings.decay);
    SourceValueOf(brush, SourceParameter::ProfileName).setString(settings.profile);
    brush.SetColour({12000, 5000, 900});
    brush.SetSize(settings.radius);
}

bool AreEqual(const Image& a, const Image& b) {
    for (std::int32_t y = a.y0; y <= a.y1; ++y)
        for (std::int32_t x = a.x0; x <= a.x1; ++x)
            if (a.GetDepth() == Depth::Eight ? a.GetPixel8(x, y) != b.GetPixel8(x, y)
                                             : a.GetPixel14(x, y) != b.GetPixel14(x, y))
                return false;
    return true;
}

}  // namespace

// A filter in the chain has every dab made as images, also one that changes nothing.
TEST_CASE("dabs without images of their own paint what dabs with images paint") {
    constexpr unsigned seed = 20240613;
    CAPTURE(seed);
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> place(-20, 84);
    std::uniform_real_distribution<double> pressure(0, 1.2);
    for (int i = 0; i < 240; ++i) {
        const Settings settings{i % 3 == 0 ? 5 : 0,
                                i % 4 == 0 ? static_cast<int>(random() % 22) : 0,
                                static_cast<int>(random() % 9),
                                i % 5 == 0 ? 0.4 : 1.0,
                                i % 6 == 0 ? 0.1 : 0.0,
                                i % 7 == 0   ? "Texture"
                                : i % 7 == 1 ? "Feathered"
                                : i % 7 == 2 ? "OnePixel"
                                             : "Soft"};
        const Depth depth = i % 2 == 0 ? Depth::Eight : Depth::Fourteen;
        Image direct = Image::Colour(64, 64, depth, AlphaForm::Premultiplied);
        Image made = Image::Colour(64, 64, depth, AlphaForm::Premultiplied);
        direct.FillChannel(1.0);
        made.FillChannel(1.0);
        BasicBrush directBrush("Direct");
        BasicBrush madeBrush("Made");
        SetUp(directBrush, direct, settings);
        SetUp(madeBrush, made, settings);
        Record(madeBrush);
        CAPTURE(i);
        for (int sample = 0; sample < 6; ++sample) {
            const double x = place(random);
            const double y = place(random);
            const double p = pressure(random);
            const auto step = sample == 0   ? &BasicBrush::BeginStroke
                              : sample == 5 ? &BasicBrush::EndStroke
                                            : &BasicBrush::ContinueStroke;
            (directBrush.*step)(x, y, p);
            (madeBrush.*step)(x, y, p);
            REQUIRE(AreEqual(direct, made));
        }
    }
}
