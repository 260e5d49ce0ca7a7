#include <doctest/doctest.h>

#include <random>

#include "chalkpane/brush/sources/source_types.h"
#include "tests/chalkpane/brush/brush_fixture.h"
#include "tests/reference/picture.h"
#include "tests/reference/stroke_engine.h"

using namespace chalkpane;

namespace {

struct Draw {
    std::mt19937 random;

    int Below(int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); }
    bool OneIn(int count) { return Below(count) == 0; }
    double Between(double low, double high) { return std::uniform_real_distribution<double>(low, high)(random); }
};

reference::StrokeSettings RandomSettings(Draw& draw) {
    reference::StrokeSettings settings;
    const double spacings[] = {0.15, 0.05, 0.6, 1.5, 0.0};
    settings.spacing = spacings[draw.Below(5)];
    settings.adjustSpacing = draw.OneIn(4);
    settings.spacingType = static_cast<SpacingType>(draw.Below(3));
    settings.buildUp = draw.OneIn(2);
    settings.matchPath = draw.OneIn(3);
    settings.blendMode = draw.OneIn(3) ? draw.Below(22) : 0;
    const SourceType sourceTypes[] = {SourceType::Colour, SourceType::Colour,  SourceType::Colour,
                                      SourceType::Eraser, SourceType::Replace, SourceType::Image};
    settings.sourceType = sourceTypes[draw.Below(6)];
    settings.opacity = draw.Between(0.1, 1.0);
    settings.decay = draw.OneIn(3) ? draw.Between(0.0, 0.3) : 0.0;
    return settings;
}

void Give(BasicBrush& brush, const reference::StrokeSettings& settings) {
    ValueOf(brush, BrushParameter::SourceType).setEnumeration(static_cast<std::uint8_t>(settings.sourceType));
    ValueOf(brush, BrushParameter::Opacity).setDouble(settings.opacity);
    ValueOf(brush, BrushParameter::Decay).setDouble(settings.decay);
    ValueOf(brush, BrushParameter::Spacing).setDouble(settings.spacing);
    ValueOf(brush, BrushParameter::AdjustSpacing).setBoolean(settings.adjustSpacing);
    ValueOf(brush, BrushParameter::SpacingType).setEnumeration(static_cast<std::uint8_t>(settings.spacingType));
    ValueOf(brush, BrushParameter::MatchPath).setBoolean(settings.matchPath);
    ValueOf(brush, BrushParameter::BuildUp).setBoolean(settings.buildUp);
    ValueOf(brush, BrushParameter::BlendMode).setEnumeration(static_cast<std::uint8_t>(settings.blendMode));
}

std::unique_ptr<BrushSource> ReferenceSource(BasicBrush& brush, const reference::StrokeSettings& settings,
                                             const Colour& paint, Depth depth) {
    auto source = MakeBrushSource(settings.sourceType, FileName(), depth);
    for (const auto& value : brush.SourceValues()) source->setParameter(value.get());
    source->SetColour(paint);
    source->Prepare(0, dynamic_cast<GraphValue*>(&ValueOf(brush, BrushParameter::ProfileGraph)), Matrix3());
    return source;
}

}  // namespace

TEST_CASE("random strokes leave the pixels and rectangles of the plain reference, bit by bit") {
    std::size_t dabs = 0;
    for (unsigned seed = 1; seed <= 160; ++seed) {
        CAPTURE(seed);
        Draw draw{std::mt19937(seed)};
        const reference::StrokeSettings settings = RandomSettings(draw);
        const Depth depth = DepthOf(draw.Below(2));
        Image canvas = NewCanvas(48, 48, depth);
        reference::FillWithNoise(canvas, seed);
        canvas.Premultiply(canvas);
        const auto expected = canvas.Clone();

        BasicBrush brush("Reference");
        brush.SetTarget(&canvas);
        Give(brush, settings);
        SourceValueOf(brush, SourceParameter::Flatness).setDouble(draw.OneIn(2) ? 1.0 : draw.Between(0.3, 3.0));
        SourceValueOf(brush, SourceParameter::Rotation).setFloat(static_cast<float>(draw.Between(0, 90)));
        SourceValueOf(brush, SourceParameter::Pickup)
            .setEnumeration(static_cast<std::uint8_t>(draw.OneIn(3) ? draw.Below(3) : 0));
        brush.SetSize(draw.Below(6));
        const Colour paint{static_cast<std::uint16_t>(draw.Below(16384)), static_cast<std::uint16_t>(draw.Below(16384)),
                           static_cast<std::uint16_t>(draw.Below(16384))};
        brush.SetColour(paint);
        const auto source = ReferenceSource(brush, settings, paint, depth);
        reference::StrokeEngine reference(settings, *source, *expected);

        double x = draw.Between(-5, 53);
        double y = draw.Between(-5, 53);
        double pressure = draw.Between(0.3, 1.0);
        REQUIRE_EQ(brush.BeginStroke(x, y, pressure), reference.Begin(x, y, pressure));
        const double stride = draw.OneIn(2) ? 2.0 : 15.0;
        for (int i = 0; i < 12; ++i) {
            if (!draw.OneIn(3) && i < 6) {
                x += draw.Between(-stride, stride);
                y += draw.Between(-stride, stride);
                pressure = draw.Between(0.0, 1.0);
            }
            CAPTURE(i);
            REQUIRE_EQ(brush.ContinueStroke(x, y, pressure), reference.Continue(x, y, pressure));
        }
        REQUIRE_EQ(brush.EndStroke(x, y, pressure), reference.End(x, y, pressure));
        REQUIRE(reference::Same(reference::Picture(canvas), reference::Picture(*expected)));
        dabs += reference.dabs.size();
    }
    CHECK_GT(dabs, 5000);
}

// The dabs out there are not made; that their places are kept shows in the pixels when the stroke comes back.
TEST_CASE("strokes that leave the canvas and come back leave the pixels and rectangles of the plain reference") {
    const double distances[] = {30, 200, 5000, 1e5, 1e6, 2e7, 1e8, 5e8};  // none gets beyond `farthest`
    std::size_t dabs = 0;
    for (unsigned seed = 1; seed <= 320; ++seed) {
        CAPTURE(seed);
        Draw draw{std::mt19937(seed)};
        reference::StrokeSettings settings = RandomSettings(draw);
        settings.sourceType = draw.OneIn(2) ? SourceType::Colour : SourceType::Eraser;
        if (!draw.OneIn(8)) settings.decay = 0.0;
        if (!draw.OneIn(8)) settings.matchPath = settings.adjustSpacing = false;
        const Depth depth = DepthOf(draw.Below(2));
        Image canvas = NewCanvas(48, 48, depth);
        reference::FillWithNoise(canvas, seed);
        canvas.Premultiply(canvas);
        const auto expected = canvas.Clone();
        BasicBrush brush("Reference");
        brush.SetTarget(&canvas);
        Give(brush, settings);
        SourceValueOf(brush, SourceParameter::Flatness).setDouble(draw.OneIn(2) ? 1.0 : draw.Between(0.3, 3.0));
        brush.SetSize(draw.Below(6));
        const Colour paint{16000, 2000, 9000};
        brush.SetColour(paint);
        const auto source = ReferenceSource(brush, settings, paint, depth);
        reference::StrokeEngine reference(settings, *source, *expected);

        REQUIRE_EQ(brush.BeginStroke(24, 24, 1), reference.Begin(24, 24, 1));
        const double far = distances[draw.Below(8)];
        const double stride = draw.OneIn(2) ? far / 20 : 6.0;
        const bool aside = draw.OneIn(2);
        const bool across = draw.OneIn(2);  // from one side far away to the other, over the canvas or past it
        double x = 24;
        double y = 24;
        for (int i = 0; i < 24; ++i) {
            const bool out = i >= 4 && i < 16;
            if (i == 4) (aside ? x : y) += draw.OneIn(2) ? far : -far;
            if (i == 16) x = y = 20;
            x += draw.Between(-1, 1) * (out ? stride : 8);
            y += draw.Between(-1, 1) * (out ? stride : 8);
            if (out && across) {
                x = 24 + draw.Between(-far, far);
                y = draw.OneIn(2) ? 24 + (x - 24) * draw.Between(-1, 1) : draw.Between(-200, 200);
            }
            const double pressure = draw.Between(0.3, 1.0);
            CAPTURE(i);
            REQUIRE_EQ(brush.ContinueStroke(x, y, pressure), reference.Continue(x, y, pressure));
        }
        REQUIRE_EQ(brush.EndStroke(x, y, 1), reference.End(x, y, 1));
        REQUIRE(reference::Same(reference::Picture(canvas), reference::Picture(*expected)));
        dabs += reference.dabs.size();
    }
    CHECK_GT(dabs, 50000);
}
