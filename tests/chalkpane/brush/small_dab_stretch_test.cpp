#include "chalkpane/brush/small_dab_stretch.h"

#include <doctest/doctest.h>

#include <limits>
#include <random>
#include <utility>

#include "chalkpane/brush/profiles/round_brush_profile.h"
#include "tests/chalkpane/brush/brush_fixture.h"
#include "tests/chalkpane/brush/dab_progress.h"
#include "tests/chalkpane/scoped_cpu_features.h"
#include "tests/reference/picture.h"

using namespace chalkpane;

namespace {

class SmallProfile {
public:
    explicit SmallProfile(std::int32_t radius) {
        profile_.Prepare({.radius = radius}, Matrix3());
        for (std::size_t copy = 0; copy < masks_.ofCopy.size(); ++copy)
            REQUIRE(masks_.ofCopy[copy].Take(*profile_.Shifted(copy / 8, copy % 8)));
        masks_.MeasureRects(profile_.Offset(), profile_.KeepsPlaces());
    }

    [[nodiscard]] const SmallMasks& Masks() const { return masks_; }
    [[nodiscard]] RoundBrushProfile::CopyPlace FindCopy(const StrokePoint& at) const {
        return profile_.FindCopy(at.x, at.y);
    }

private:
    RoundBrushProfile profile_{Matrix3(), Depth::Eight};
    SmallMasks masks_;
};

// Step by step and dab by dab.
void PaintInTurn(const SmallProfile& profile, const SmallDabTarget& canvas, const SplineIterator& curve,
                 double squaredLimit, std::int32_t opacity, const SmallDabStretch& stretch, DabProgress& progress) {
    for (; progress.step < SplineIterator::steps; ++progress.step) {
        const StrokePoint place = curve.PointAt(progress.step);
        const double dx = place.x - progress.lastX;
        const double dy = place.y - progress.lastY;
        if (!(dx * dx + dy * dy > squaredLimit)) continue;
        if (!stretch.Holds(place.x, place.y)) return;
        const auto [copy, moveX, moveY] = profile.FindCopy(place);
        const SmallMask8& mask = profile.Masks().ofCopy[static_cast<std::size_t>(copy)];
        Rect rect = mask.rect;
        rect.Translate(moveX, moveY);
        REQUIRE(canvas.Holds(rect));
        SmallColourOver8Plain(canvas, mask, rect.x0, rect.y1, opacity);
        progress.changed = progress.changed.Union(rect);
        progress.lastX = static_cast<float>(place.x);
        progress.lastY = static_cast<float>(place.y);
        progress.lastStep = progress.step;
        ++progress.dabs;
    }
}

}  // namespace

// Curves from a hundredth of a pixel to far beyond the canvas, over canvases that begin anywhere.
TEST_CASE("a stretch of small dabs leaves the pixels of painting them one by one, plain and wide") {
    constexpr unsigned seed = 77;
    CAPTURE(seed);
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> unit(-1, 1);
    const double scales[] = {0.0, 0.01, 0.4, 3, 30, 200, 1e5};
    const double spacings[] = {-1.0, 0.0, 0.001, 0.02, 0.15, 0.45, 5.0};
    const SmallProfile profiles[] = {SmallProfile(0), SmallProfile(1)};
    std::int32_t dabs = 0;
    for (int round = 0; round < 400; ++round) {
        CAPTURE(round);
        const SmallProfile& profile = profiles[round % 2];
        Image turn = NewCanvas(37 + round % 5, 33);
        turn.Translate(round % 3 == 0 ? -20 : round % 3, round % 4 == 0 ? -11 : 0);
        reference::FillWithNoise(turn, static_cast<unsigned>(round));
        const auto plain = turn.Clone();
        const auto wide = turn.Clone();
        const double scale = scales[random() % std::size(scales)];
        SplineIterator curve;
        for (int i = 0; i < 4; ++i) {
            const double x = turn.x0 + 18 + scale * unit(random);
            curve.Push({x, turn.y0 + 16 + scale * unit(random), 1});
        }
        const double spacing = spacings[random() % std::size(spacings)];
        const double limit = spacing < 0 ? -1.0 : spacing * spacing;
        const auto pixel = static_cast<std::uint32_t>(random() | 0xff000000U);
        const auto opacity = static_cast<std::int32_t>(round % 3 == 0 ? 255 : random() % 256);
        const SplineSearch search(curve, limit);
        DabProgress start;
        start.followsDab = round % 2 == 0;
        start.step = start.followsDab ? 1 + static_cast<std::int32_t>(random() % 900) : 0;
        const StrokePoint last = curve.PointAt(std::max(start.step - 1, 0));
        start.lastX = static_cast<float>(last.x + (start.followsDab ? 0.0 : unit(random)));
        start.lastY = static_cast<float>(last.y);
        DabProgress done[] = {start, start, start};
        const auto target = SmallDabTarget::Of(turn, pixel);
        const SmallDabStretch stretch(target, profile.Masks());
        REQUIRE(stretch.HoldsAny());
        PaintInTurn(profile, target, curve, limit, opacity, stretch, done[0]);
        SmallDabStretch(SmallDabTarget::Of(*plain, pixel), profile.Masks()).PaintPlain(search, opacity, done[1]);
        RequireSame(done[1], done[0]);
        REQUIRE(reference::Same(reference::Picture(*plain), reference::Picture(turn)));
        dabs += done[0].dabs;
        if constexpr (builtWithAvx2) {
            if (!HasAvx2()) continue;
            SmallDabStretch(SmallDabTarget::Of(*wide, pixel), profile.Masks()).PaintAvx2(search, opacity, done[2]);
            RequireSame(done[2], done[0]);
            REQUIRE(reference::Same(reference::Picture(*wide), reference::Picture(turn)));
        }
    }
    CHECK_GT(dabs, 10000);
}

TEST_CASE("a stretch on no canvas, or with masks that move places, holds no place") {
    const SmallProfile profile(1);
    CHECK_FALSE(SmallDabStretch().HoldsAny());
    CHECK_FALSE(SmallDabStretch(SmallDabTarget(), profile.Masks()).HoldsAny());
    const Image canvas = NewCanvas();
    SmallMasks moving = profile.Masks();
    CHECK(SmallDabStretch(SmallDabTarget::Of(canvas, 0), moving).HoldsAny());
    moving.MeasureRects(moving.offset, false);
    CHECK_FALSE(SmallDabStretch(SmallDabTarget::Of(canvas, 0), moving).HoldsAny());
    const Image narrow = NewCanvas(5, 5);
    CHECK_FALSE(SmallDabStretch(SmallDabTarget::Of(narrow, 0), profile.Masks()).HoldsAny());
}

// A filter in the chain has every dab made as images, also one that changes nothing.
TEST_CASE("a stroke of small dabs at one pressure paints what dabs with images paint") {
    constexpr unsigned seed = 78;
    CAPTURE(seed);
    std::mt19937 random(seed);
    for (int i = 0; i < 60; ++i) {
        CAPTURE(i);
        const test::ScopedCpuFeatures features(i % 3 == 0 ? CpuFeatures::Plain : CpuFeatures::All);
        const bool isFarFlung = i % 5 == 0;
        std::uniform_real_distribution<double> place(isFarFlung ? -60 : 4, isFarFlung ? 120 : 60);
        Image direct = NewCanvas();
        Image made = NewCanvas();
        BasicBrush directBrush("Direct");
        BasicBrush madeBrush("Made");
        for (BasicBrush* brush : {&directBrush, &madeBrush}) {
            brush->SetTarget(brush == &directBrush ? &direct : &made);
            ValueOf(*brush, BrushParameter::Opacity).setDouble(i % 4 == 0 ? 0.3 : 1.0);
            brush->SetColour({12000, 5000, 900});
            brush->SetSize(i % 2);
        }
        Record(madeBrush);
        const double pressure = i % 7 == 0 ? 0.5 : 1.0;
        for (int sample = 0; sample < 8; ++sample) {
            const double x = place(random);
            const double y = place(random);
            const auto step = sample == 0   ? &BasicBrush::BeginStroke
                              : sample == 7 ? &BasicBrush::EndStroke
                                            : &BasicBrush::ContinueStroke;
            REQUIRE_EQ((directBrush.*step)(x, y, pressure), (madeBrush.*step)(x, y, pressure));
            REQUIRE(reference::Same(reference::Picture(direct), reference::Picture(made)));
        }
    }
}

// No sample brings such a pressure, but a stroke that is gone on with may hold one. A mean of numbers with NaN among
// them is NaN wherever on the curve; the opacity of every dab has to be asked for.
TEST_CASE("a stroke of small dabs that holds a pressure of NaN, below 0 or without end paints dabs with images") {
    for (const double pressure :
         {std::numeric_limits<double>::quiet_NaN(), -0.5, std::numeric_limits<double>::infinity()}) {
        for (int place = 0; place < 4; ++place) {
            CAPTURE(pressure);
            CAPTURE(place);
            Image direct = NewCanvas();
            Image made = NewCanvas();
            BasicBrush directBrush("Direct");
            BasicBrush madeBrush("Made");
            Record(madeBrush);
            for (const auto& [brush, canvas] : {std::pair(&directBrush, &direct), std::pair(&madeBrush, &made)}) {
                brush->SetTarget(canvas);
                brush->SetColour({12000, 5000, 900});
                brush->SetSize(1);
                brush->BeginStroke(10, 10, 1);
                BasicBrush::StrokeState state = brush->Stroke();
                for (int i = 0; i < 4; ++i) state.history.Push({10.0 + i, 10, i == place ? pressure : 1.0});
                brush->GoOnWith(state);
            }
            for (const double x : {18.0, 30.0, 34.0, 50.0, 51.0}) {
                REQUIRE_EQ(directBrush.ContinueStroke(x, 20, 1), madeBrush.ContinueStroke(x, 20, 1));
                REQUIRE(reference::Same(reference::Picture(direct), reference::Picture(made)));
            }
        }
    }
}
