#include "chalkpane/brush/settled_stretch.h"

#include <doctest/doctest.h>

#include <cmath>
#include <random>

#include "chalkpane/base/cpu_features.h"
#include "tests/chalkpane/brush/brush_fixture.h"
#include "tests/chalkpane/brush/dab_progress.h"

using namespace chalkpane;

namespace {

constexpr std::uint32_t paint = 0xff405060U;  // 96, 80, 64 and 255 in memory

// Step by step.
void PassInTurn(const SplineIterator& curve, double squaredLimit, const SettledTiles& tiles,
                const RoundBrushProfile& profile, DabProgress& progress) {
    const Rect& area = tiles.Area();
    for (; progress.step < SplineIterator::steps; ++progress.step) {
        const StrokePoint place = curve.PointAt(progress.step);
        const double dx = place.x - progress.lastX;
        const double dy = place.y - progress.lastY;
        if (!(dx * dx + dy * dy > squaredLimit)) continue;
        if (!(place.x >= area.x0 && place.x < area.x1 && place.y >= area.y0 && place.y < area.y1)) return;
        if (!tiles.HoldMiddle(static_cast<int>(std::floor(place.x)) - area.x0,
                              static_cast<int>(std::floor(place.y)) - area.y0))
            return;
        progress.changed = progress.changed.Union(profile.FindMask(place.x, place.y).rect);
        progress.lastX = static_cast<float>(place.x);
        progress.lastY = static_cast<float>(place.y);
        progress.lastStep = progress.step;
        ++progress.dabs;
    }
}

// The left half of the canvas has the colour; what is painted there settles.
Image HalfPainted() {
    Image canvas = NewCanvas(256, 128);
    canvas.Translate(-40, 30);
    for (std::int32_t y = canvas.y0; y <= canvas.y1; ++y) {
        std::size_t i = 0;
        for (auto& channel : canvas.Row8(y).first(512)) channel = static_cast<std::uint8_t>(paint >> (8 * (i++ % 4)));
    }
    return canvas;
}

void MarkAll(SettledTiles& tiles) {
    const Rect& area = tiles.Area();
    for (std::int32_t y = area.y0; y <= area.y1; y += 4)
        for (std::int32_t x = area.x0; x <= area.x1; ++x) {
            tiles.Look({x - 4, y - 4, x + 4, y + 4});
            tiles.MarkMiddle(x, y);
        }
}

}  // namespace

TEST_CASE("settled dabs are passed over one by one, plain and wide, up to the first that is not") {
    constexpr unsigned seed = 79;
    CAPTURE(seed);
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> unit(-1, 1);
    const Image canvas = HalfPainted();
    RoundBrushProfile profile{Matrix3(), Depth::Eight};
    profile.Prepare({.radius = 5}, Matrix3());
    CopyRects rects;
    rects.Take(profile);
    REQUIRE(rects.keepsPlaces);
    SettledTiles tiles;
    tiles.Serve(canvas, paint, rects.reach);
    CHECK_FALSE(SettledStretch(tiles, rects).HoldsAny());
    for (int i = 0; i < 8; ++i) MarkAll(tiles);
    const SettledStretch stretch(tiles, rects);
    REQUIRE(stretch.HoldsAny());
    CHECK(tiles.HoldMiddle(64, 64));
    CHECK_FALSE(tiles.HoldMiddle(124, 64));  // a dab of radius 5 there reaches column 129, which is not painted
    CHECK_FALSE(tiles.HoldMiddle(200, 64));
    std::int32_t dabs = 0;
    for (int round = 0; round < 600; ++round) {
        CAPTURE(round);
        const double scale = round % 3 == 0 ? 5 : 120;
        SplineIterator curve;
        for (int i = 0; i < 4; ++i) curve.Push({canvas.x0 + 60 + scale * unit(random), 94 + scale * unit(random), 1});
        const double spacing = round % 4 == 0 ? 0.05 : 1.65;
        const SplineSearch search(curve, spacing * spacing);
        DabProgress start;
        const StrokePoint first = curve.PointAt(0);
        start.lastX = static_cast<float>(first.x);
        start.lastY = static_cast<float>(first.y);
        DabProgress done[] = {start, start, start};
        PassInTurn(curve, spacing * spacing, tiles, profile, done[0]);
        stretch.PassPlain(search, done[1]);
        RequireSame(done[1], done[0]);
        dabs += done[0].dabs;
        if constexpr (builtWithAvx2) {
            if (!HasAvx2()) continue;
            stretch.PassAvx2(search, done[2]);
            RequireSame(done[2], done[0]);
        }
    }
    CHECK_GT(dabs, 5000);
}

TEST_CASE("nothing is passed over without tiles, or with a profile that has no mask or moves places") {
    const Image canvas = HalfPainted();
    SettledTiles tiles;
    CHECK_FALSE(SettledStretch().HoldsAny());
    RoundBrushProfile profile{Matrix3(), Depth::Eight};
    CopyRects rects;
    rects.Take(profile);
    CHECK_FALSE(rects.keepsPlaces);
    profile.Prepare({.radius = 5}, Matrix3::Translation(0.5, 0));
    rects.Take(profile);
    CHECK_FALSE(rects.keepsPlaces);
    tiles.Serve(canvas, paint, 8);
    for (int i = 0; i < 8; ++i) MarkAll(tiles);
    REQUIRE(tiles.HoldAnyMiddle());
    CHECK_FALSE(SettledStretch(tiles, rects).HoldsAny());
    tiles.Serve(canvas, paint, 9);
    CHECK_FALSE(tiles.HoldAnyMiddle());
}
