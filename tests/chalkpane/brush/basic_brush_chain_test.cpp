#include <doctest/doctest.h>

#include "tests/chalkpane/brush/brush_fixture.h"
#include "tests/chalkpane/filters/test_filters.h"

using namespace chalkpane;
using namespace chalkpane::test;

namespace {

template <typename F>
F& Append(BasicBrush& brush) {
    auto filter = std::make_unique<F>();
    F& added = *filter;
    brush.Filters().push_back(std::move(filter));
    return added;
}

// The same stroke with and without a chain.
struct Strokes {
    explicit Strokes(Depth depth) : plain(NewCanvas(96, 64, depth)), filtered(NewCanvas(96, 64, depth)) {}
    void Paint() {
        for (auto [brush, canvas, changed] : {std::tuple(&without, &plain, &plainRect), {&with, &filtered, &rect}}) {
            brush->SetTarget(canvas);
            brush->SetSize(4);
            brush->SetColour({16383, 4096, 0});
            *changed = brush->BeginStroke(20.5, 20.5, 0.8);
            *changed = changed->Union(brush->ContinueStroke(30, 35, 1));
            *changed = changed->Union(brush->ContinueStroke(44, 31, 0.6));
            *changed = changed->Union(brush->EndStroke(50, 20, 1));
        }
    }
    BasicBrush without{"Plain"};
    BasicBrush with{"Chain"};
    Image plain;
    Image filtered;
    Rect plainRect;
    Rect rect;
};

}  // namespace

TEST_CASE("a stroke through a filter that moves pixels and mask is the stroke moved") {
    for (const Depth depth : {Depth::Eight, Depth::Fourteen}) {
        CAPTURE(static_cast<int>(depth));
        Strokes strokes(depth);
        Append<ShiftForTest>(strokes.with);
        strokes.Paint();
        Rect moved = strokes.plainRect;
        moved.Translate(10, 0);
        CHECK_EQ(strokes.rect, moved);
        for (std::int32_t y = 0; y < 64; ++y)
            for (std::int32_t x = 10; x < 96; ++x) {
                if (depth == Depth::Eight)
                    REQUIRE_EQ(strokes.filtered.GetPixel8(x, y), strokes.plain.GetPixel8(x - 10, y));
                else
                    REQUIRE_EQ(strokes.filtered.GetPixel14(x, y), strokes.plain.GetPixel14(x - 10, y));
            }
    }
}

// Where only the colour moves, no more of it is seen than the mask at the old place lets through.
TEST_CASE("a dab whose colour moved away from its mask covers what both have") {
    Strokes strokes(Depth::Eight);
    auto& shift = Append<ShiftForTest>(strokes.with);
    shift.m_filtersMask = false;
    shift.m_distance = 5;
    strokes.with.SetTarget(&strokes.filtered);
    strokes.with.SetSize(4);
    strokes.with.SetColour(whitePaint);
    // 9 pixels from 16 to 24; the colour from 21 to 29.
    CHECK_EQ(strokes.with.BeginStroke(20.5, 20.5, 1), Rect(21, 16, 24, 24));
    CHECK_EQ(strokes.filtered.GetPixel8(20, 20).alpha, 0);
    CHECK_NE(strokes.filtered.GetPixel8(21, 20).alpha, 0);
}

// Inverted in turn, the colour (255, 64, 0) is (0, 191, 255) and then itself again. The recorder changes nothing.
TEST_CASE("a stroke runs through all active filters of its chain in order") {
    Strokes strokes(Depth::Eight);
    InvertForTest& first = Append<InvertForTest>(strokes.with);
    InvertForTest& second = Append<InvertForTest>(strokes.with);
    Append<ShiftForTest>(strokes.with).m_distance = 0;
    DabRecorder& recorder = Record(strokes.with);
    strokes.Paint();
    CHECK_GT(recorder.dabs.size(), 10);
    for (std::int32_t y = 0; y < 64; ++y)
        for (std::int32_t x = 0; x < 96; ++x)
            REQUIRE_EQ(strokes.filtered.GetPixel8(x, y), strokes.plain.GetPixel8(x, y));
    second.m_active = false;
    strokes.with.BeginStroke(80, 50, 1);
    const Pixel8 inverted = strokes.filtered.GetPixel8(80, 50);
    CHECK_GT(inverted.blue, inverted.green);
    CHECK_GT(inverted.green, inverted.red);
    CHECK(first.m_active);
}

// The colour (255, 64, 0) inverted is (0, 191, 255), and 7 + 3 pixels are 10: what comes is the stroke of a pen of that
// colour, moved by 10 with its mask.
TEST_CASE("a chain of three inverts the stroke, and moves its pixels and its mask twice") {
    Strokes strokes(Depth::Eight);
    Append<InvertForTest>(strokes.with);
    Append<ShiftForTest>(strokes.with).m_distance = 7;
    Append<ShiftForTest>(strokes.with).m_distance = 3;
    strokes.Paint();
    strokes.plain.Clear();
    strokes.without.SetColour({0, 191 << 6, 16383});
    strokes.without.BeginStroke(20.5, 20.5, 0.8);
    strokes.without.ContinueStroke(30, 35, 1);
    strokes.without.ContinueStroke(44, 31, 0.6);
    strokes.without.EndStroke(50, 20, 1);
    CHECK_GT(strokes.plain.GetPixel8(30, 30).alpha, 0);
    for (std::int32_t y = 0; y < 64; ++y)
        for (std::int32_t x = 10; x < 96; ++x)
            REQUIRE_EQ(strokes.filtered.GetPixel8(x, y), strokes.plain.GetPixel8(x - 10, y));
}

TEST_CASE("a stroke of 14 bits goes through a filter that knows 8 bits alone") {
    Strokes strokes(Depth::Fourteen);
    auto& shift = Append<ShiftForTest>(strokes.with);
    shift.m_bytesOnly = true;
    strokes.Paint();
    CHECK_EQ(shift.depths.front(), 0);
    // 16383 narrows to 255 and widens to 255 * 64 + 63 = 16383.
    CHECK_GT(strokes.filtered.GetPixel14(32, 22).alpha, 8000);
}

TEST_CASE("a stroke's beginning is told to active filters, with the target and their frame") {
    Image canvas = NewCanvas();
    BasicBrush brush("Chalk");
    brush.SetTarget(&canvas);
    brush.SetColour(whitePaint);
    DabRecorder& recorder = Record(brush);
    recorder.Attach(nullptr, 12, 0, nullptr);
    brush.BeginStroke(10, 10, 1);
    brush.ContinueStroke(30, 10, 1);
    brush.EndStroke(30, 10, 1);
    CHECK_EQ(recorder.advances, 1);
    CHECK_EQ(recorder.advancedImage, &canvas);
    CHECK_EQ(recorder.advancedFrame, 12);
    recorder.m_active = false;
    brush.BeginStroke(10, 10, 1);
    CHECK_EQ(recorder.advances, 1);
}

// Size 4: 9 pixels, an area that the chain grows by 10 and moves by 10.
TEST_CASE("an update tells the source its dab's area and that behind the chain") {
    BasicBrush brush("Chalk");
    Append<ShiftForTest>(brush);
    brush.SetSize(4);
    const Rect area = brush.Source()->DabArea();
    CHECK_EQ(area.Width(), 9);
    CHECK_EQ(brush.Source()->TargetArea(), Rect(area.x0, area.y0 - 10, area.x1 + 20, area.y1 + 10));
}
