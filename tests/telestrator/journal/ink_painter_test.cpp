#include "telestrator/journal/ink_painter.h"

#include <doctest/doctest.h>

#include <cstring>

#include "telestrator/journal/ink_drawing.h"
#include "tests/telestrator/journal/random_session.h"

namespace chalkpane {
namespace {

using testing::Pixels;
using testing::SessionMaker;

Image BlankCanvas() { return Image::Colour(canvasSize, canvasSize, Depth::Eight, AlphaForm::Premultiplied); }

// Ink, half clear and not even, so that each dab shows.
Image InkedCanvas(SessionMaker& maker) {
    Image canvas = BlankCanvas();
    for (std::int32_t y = 0; y < canvasSize; ++y) {
        const auto shade = static_cast<std::uint8_t>(maker.Number(0, 255));
        for (std::uint8_t& channel : canvas.Row8(y)) channel = static_cast<std::uint8_t>(channel + shade);
    }
    return canvas;
}

InkStroke StrokeThrough(const std::vector<CanvasPosition>& places, const InkBrush& brush) {
    InkStroke stroke;
    stroke.brushes = {brush};
    for (const CanvasPosition& place : places) stroke.steps.push_back({StrokeStage::Continue, place, 1.0, 0});
    stroke.steps.front().stage = StrokeStage::Begin;
    stroke.steps.back().stage = StrokeStage::End;
    stroke.finishedFrom = stroke.steps.size();
    return stroke;
}

bool AreEqual(const Image& left, const Image& right) {
    return std::memcmp(left.origin, right.origin, left.ByteSize()) == 0;
}

// Painted whole, then only what lies in the region taken from it.
Image WholeInRegion(const InkStroke& stroke, const Image& canvas, const Rect& region) {
    const auto whole = canvas.Clone();
    InkPainter().Paint(stroke, *whole, *whole);
    Image wanted = BlankCanvas();
    wanted.CopyRegion(canvas, canvas);
    wanted.CopyRegion(*whole, region);
    return wanted;
}

void CheckInRegion(const InkStroke& stroke, const Image& canvas, const Rect& region) {
    const auto part = canvas.Clone();
    InkPainter painter;
    painter.Paint(stroke, *part, region);
    CAPTURE(region.x0);
    CAPTURE(region.y0);
    CAPTURE(region.x1);
    CAPTURE(region.y1);
    CHECK(AreEqual(*part, WholeInRegion(stroke, canvas, region)));
}

TEST_CASE("a stroke painted within a region has there the bytes of the whole stroke, and leaves the rest") {
    SessionMaker maker(61);
    const Image canvas = InkedCanvas(maker);
    for (int i = 0; i < 30; ++i) {
        std::vector<CanvasPosition> places;
        for (int count = maker.Number(2, 30); count > 0; --count) places.push_back(maker.Place());
        const bool erases = maker.Number(0, 2) == 0;
        const InkStroke stroke = StrokeThrough(places, {erases, maker.Number(0, 40), Colour::fromIndex(i % 4)});
        const int x = maker.Number(0, 900);
        const int y = maker.Number(0, 900);
        CheckInRegion(stroke, canvas, Rect(x, y, x + maker.Number(0, 200), y + maker.Number(0, 200)));
    }
}

TEST_CASE("a brush that changes in the middle of a stroke changes there in a region too") {
    SessionMaker maker(62);
    const Image canvas = InkedCanvas(maker);
    for (int i = 0; i < 20; ++i) {
        std::vector<CanvasPosition> places;
        for (int count = 12; count > 0; --count) places.push_back(maker.Place());
        InkStroke stroke = StrokeThrough(places, {false, 12, Colour::fromIndex(0)});
        stroke.brushes.push_back({maker.Number(0, 1) == 1, maker.Number(1, 60), Colour::fromIndex(1)});
        for (std::size_t step = 5; step < stroke.steps.size(); ++step) stroke.steps[step].brush = 1;
        CheckInRegion(stroke, canvas, Rect(300, 300, 600, 500));
    }
}

// Such a stroke takes more steps beside the region than a brush follows there to the letter.
TEST_CASE("a stroke of thousands of samples beside the region is exact in it") {
    SessionMaker maker(63);
    const Image canvas = InkedCanvas(maker);
    std::vector<CanvasPosition> places;
    places.reserve(2001);
    for (int i = 0; i < 2000; ++i) places.push_back({400 + 300 * std::cos(i * 0.9), 600 + 300 * std::sin(i * 1.3)});
    places.push_back({20, 20});
    CheckInRegion(StrokeThrough(places, {false, 1, Colour::fromIndex(3)}), canvas, Rect(0, 0, 60, 60));
}

TEST_CASE("a stroke changes nothing outside its bounds") {
    SessionMaker maker(64);
    const Image canvas = InkedCanvas(maker);
    for (int i = 0; i < 20; ++i) {
        std::vector<CanvasPosition> places;
        for (int count = maker.Number(2, 9); count > 0; --count)
            places.push_back({maker.Real(200, 800), maker.Real(200, 800)});
        const InkStroke stroke = StrokeThrough(places, {maker.Number(0, 1) == 1, maker.Number(0, 90), {}});
        const auto painted = canvas.Clone();
        InkPainter().Paint(stroke, *painted, *painted);
        CHECK(AreEqual(*painted, WholeInRegion(stroke, canvas, InkBounds(stroke, canvas))));
    }
}

TEST_CASE("steps where a brush paints nothing do not stretch the bounds") {
    InkStroke stroke = StrokeThrough({{100, 100}, {1.5e9, 100}, {120, 100}}, {false, 5, {}});
    // 100 and 120 with 5 pixels of radius and 4 for roundings on each side.
    CHECK_EQ(InkBounds(stroke, BlankCanvas()), Rect(91, 91, 129, 109));
    stroke.steps.clear();
    CHECK_FALSE(InkBounds(stroke, BlankCanvas()).IsValid());
}

// Edits among hundreds of strokes, past where checkpoints are thinned out, against painting everything again.
TEST_CASE("a drawing of a thousand strokes has the bytes of all its strokes after any edit") {
    SessionMaker maker(65);
    Image canvas = BlankCanvas();
    InkDrawing drawing(canvas);
    const auto randomStroke = [&] {
        std::vector<CanvasPosition> places = {maker.Place()};
        for (int count = maker.Number(1, 6); count > 0; --count)
            places.push_back({places.back().x + maker.Real(-50, 50), places.back().y + maker.Real(-50, 50)});
        const bool erases = maker.Number(0, 5) == 0;
        return std::make_shared<const InkStroke>(
            StrokeThrough(places, {erases, maker.Number(1, 12), Colour::fromIndex(maker.Number(0, 3))}));
    };
    for (int i = 0; i < 1200; ++i) drawing.Add(randomStroke(), InkDrawing::OnCanvas::NotYet);
    for (int i = 0; i < 25; ++i) {
        const auto number = static_cast<std::uint32_t>(maker.Number(1, 1200));
        switch (maker.Number(0, 4)) {
            case 0:
                drawing.Remove(number);
                break;
            case 1:
                drawing.Undo();
                break;
            case 2:
                drawing.Redo();
                break;
            case 3:
                drawing.Add(randomStroke(), InkDrawing::OnCanvas::NotYet);
                break;
            default:
                drawing.Replace(number, randomStroke());
                break;
        }
        if (i % 5 != 4) continue;
        Image wanted = BlankCanvas();
        InkPainter painter;
        for (const InkDrawing::Stroke& stroke : drawing.Strokes()) painter.Paint(*stroke.ink, wanted, wanted);
        CAPTURE(i);
        REQUIRE(AreEqual(canvas, wanted));
    }
    // Of 256 tiles each.
    CHECK(drawing.Checkpoints().Tiles() <= InkCheckpoints::most * 256);
}

}  // namespace
}  // namespace chalkpane
