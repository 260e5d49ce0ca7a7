#include <doctest/doctest.h>

#include "apps/chalkpane/strokes/brush_builder.h"
#include "chalkpane/base/random.h"
#include "chalkpane/brush/sources/brush_source.h"
#include "chalkpane/filters/blurs/softener.h"
#include "chalkpane/filters/neighbourhood/median_filter.h"
#include "picture_io/picture.h"
#include "tests/apps/chalkpane/strokes/painting.h"
#include "tests/cli/temporary_folder.h"

// Strokes from a file against the same strokes by the engine's own operations.

namespace chalkpane::app {
namespace {

using testing::FileOf;
using testing::Painted;
using testing::SamePixels;

constexpr Colour teal{0, 8224, 8224};  // #008080

ParameterValue& ValueOf(BasicBrush& brush, const char* name) {
    for (const auto* values : {&brush.Values(), &brush.SourceValues()})
        for (const auto& value : *values)
            if (value->getParameter()->name == name) return *value;
    FAIL("no value " << name);
    std::abort();
}

// From (5, 30) to (50, 10) to (60, 40) as files count, on a canvas of 64 x 48: y turns round.
void PaintThreePoints(BasicBrush& brush) {
    brush.BeginStroke(5, 48 - 30, 1.0);
    brush.ContinueStroke(50, 48 - 10, 0.5);
    brush.ContinueStroke(60, 48 - 40, 0.75);
    brush.EndStroke(60, 48 - 40, 0.75);
}
const std::string threePoints = R"("points": [[5, 30], [50, 10, 0.5], [60, 40, 0.75]])";
const std::string canvasText = R"({"width": 64, "height": 48})";

Image NewCanvas(Depth depth) { return Image::Colour(64, 48, depth, AlphaForm::Premultiplied); }

template <typename FilterClass>
std::unique_ptr<Filter> Radius(std::uint8_t code, double radius) {
    auto filter = std::make_unique<FilterClass>();
    DataSet& values = *filter->MakeValues(false, nullptr, nullptr);
    ParameterValue& value = *values.findValue(filter->getParameters().find(code));
    value.setInteger(static_cast<std::int32_t>(radius));
    value.setDouble(radius);
    for (const auto& each : values) filter->setParameter(each.get());
    return filter;
}

}  // namespace

TEST_CASE("A stroke of a file is the stroke that the engine paints, with every kind of setting") {
    for (const Depth depth : {Depth::Eight, Depth::Fourteen}) {
        CAPTURE(depth);
        Image canvas = NewCanvas(depth);
        BasicBrush brush("by hand");
        ShapePointList graph;
        graph.clear();
        graph.append().setPoint(0, 0);
        graph.append().setPoint(0.25, 1);
        graph.append().setPoint(1, 0.5);
        ValueOf(brush, "Brush Opacity").setDouble(0.9);
        ValueOf(brush, "Brush Decay").setDouble(0.05);
        ValueOf(brush, "Brush Spacing").setDouble(0.4);
        ValueOf(brush, "Brush Adjust Spacing").setBoolean(true);
        ValueOf(brush, "Brush Space Type").setEnumeration(1);
        ValueOf(brush, "Brush Match Path").setBoolean(true);
        ValueOf(brush, "Profile Graph").setGraph(graph);
        ValueOf(brush, "Brush Blend Mode").setEnumeration(8);
        ValueOf(brush, "Brush Size").setInteger(7);
        ValueOf(brush, "Brush Flatness").setDouble(2.5);
        ValueOf(brush, "Brush Rotation").setFloat(30.0F);
        ValueOf(brush, "Brush Roundness").setFloat(1.5F);
        ValueOf(brush, "Brush Pickup").setEnumeration(1);
        brush.SetTarget(&canvas);
        brush.Update();
        brush.SetColour(teal);
        PaintThreePoints(brush);

        const auto painted = Painted(FileOf(canvasText,
                                            R"({"brush": {"color": "#008080", "Opacity": 0.9, "Decay": 0.05,
            "Spacing": 0.4, "Adjust Spacing": true, "Spacing Type": "Shorten and Thin", "Match Path": true,
            "Profile Graph": [[0, 0], [0.25, 1], [1, 0.5]], "Blend Mode": "Screen", "Size": 7, "Flatness": 2.5,
            "Rotation": 30, "Roundness": 1.5, "Pickup": "Once"}, )" +
                                                threePoints + "}",
                                            depth == Depth::Eight ? "" : testing::in14Bits));
        CHECK_GT(testing::PaintedPixels(canvas), 100);
        CHECK(SamePixels(*painted, canvas));
    }
}

TEST_CASE("A stroke through a chain of filters is the one that the engine paints through it") {
    for (const Depth depth : {Depth::Eight, Depth::Fourteen}) {
        CAPTURE(depth);
        Image canvas = NewCanvas(depth);
        Image plain = NewCanvas(depth);
        for (Image* target : {&canvas, &plain}) {
            BasicBrush brush("by hand");
            ValueOf(brush, "Brush Preset Type").setEnumeration(3);  // speckle, so that filters have something to do
            if (target == &canvas) {
                brush.Filters().push_back(Radius<MedianFilter>(MedianFilter::Parameters()[0].code, 2));
                brush.Filters().push_back(Radius<Softener>(Softener::Parameters()[0].code, 6));
            }
            brush.SetTarget(target);
            SeedRandom(1);
            brush.Update();
            brush.SetColour(teal);
            PaintThreePoints(brush);
        }
        const std::string first = MedianFilter::Parameters()[0].label;
        const std::string second = Softener::Parameters()[0].label;
        std::string stroke = R"({"brush": {"color": "#008080", "Profile Type": "Texture", "filters": [)";
        stroke += R"({"filter": "Median", ")" + first + R"(": 2}, )";
        stroke += R"({"filter": "Blur", ")" + second + R"(": 6}]}, )";
        stroke += threePoints;
        const auto painted = Painted(FileOf(canvasText, stroke + "}", depth == Depth::Eight ? "" : testing::in14Bits));
        CHECK_FALSE(SamePixels(canvas, plain));
        CHECK(SamePixels(*painted, canvas));
    }
}

TEST_CASE("A brush of the caller's paints with its own settings, in the colors of the file") {
    Image canvas = NewCanvas(Depth::Eight);
    BasicBrush brush("the caller's");
    ValueOf(brush, "Brush Size").setInteger(3);
    PaintOptions options;
    options.brush = &brush;
    const auto painted = Painted(
        FileOf(canvasText, R"({"brush": {"color": "#008080", "Size": 20}, )" + threePoints + "}"), "s.json", options);
    BasicBrush reference("by hand");
    ValueOf(reference, "Brush Size").setInteger(3);
    reference.SetTarget(&canvas);
    reference.Update();
    reference.SetColour(teal);
    PaintThreePoints(reference);
    CHECK(SamePixels(*painted, canvas));
}

TEST_CASE("A file gives the same pixels every time, and others with another seed") {
    const cli::testing::TemporaryFolder folder;
    picture_io::Picture frames(64, 1);  // from transparent to white
    for (std::int32_t x = 0; x < 64; ++x) frames.Set(x, 0, {255, 255, 255, static_cast<std::uint8_t>(4 * x)});
    picture_io::WritePicture(frames, folder / "frames.png");
    const std::string stroke =
        R"({"brush": {"Source Type": "Cutout", "File": "frames.png", "Columns": 64}, )" + threePoints + "}";
    const auto paint = [&](const std::string& seed) {
        SeedRandom(4711);
        return Painted(FileOf(canvasText, stroke, seed), folder / "s.json");
    };
    const auto first = paint("");
    CHECK(SamePixels(*first, *paint(R"(, "seed": 1)")));
    CHECK_FALSE(SamePixels(*first, *paint(R"(, "seed": 2)")));
}

TEST_CASE("Progress counts the points of all strokes") {
    std::vector<std::int64_t> told;
    PaintOptions options;
    options.progress = [&told](std::int64_t points) { told.push_back(points); };
    (void)Painted(FileOf(canvasText, R"({"points": [[1, 1], [2, 2]]}, {"points": [[3, 3]]})"), "s.json", options);
    CHECK_EQ(told, std::vector<std::int64_t>{1, 2, 3});
}

}  // namespace chalkpane::app
