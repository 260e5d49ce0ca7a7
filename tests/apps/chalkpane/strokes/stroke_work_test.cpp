#include <doctest/doctest.h>

#include <sstream>

#include "apps/chalkpane/strokes/stroke_work.h"
#include "tests/apps/chalkpane/strokes/painting.h"
#include "tests/cli/temporary_folder.h"
#include "tests/cli/thrown.h"

namespace chalkpane::app {
namespace {

using cli::testing::Thrown;
using testing::FileOf;
using testing::Painted;

const std::string smallSheet = R"({"width": 16, "height": 16})";

std::string ManyPoints(int count, double step) {
    std::ostringstream text;
    text << "[[0, 0.5]";
    for (int i = 1; i < count; ++i) text << ",[" << (i % 2 == 0 ? 0.0 : step) << ",0.5]";
    text << ']';
    return text.str();
}

std::string StrokeWith(const std::string& settings, const std::string& points) {
    return R"({"brush": {"Profile Name": "OnePixel")" + settings + R"(}, "points": )" + points + "}";
}

constexpr const char* tooMuch =
    "s.json: /strokes/0: up to here the file asks for more dabs than can be painted; take a wider Spacing, a smaller "
    "Size, or "
    "fewer points";

}  // namespace

// A segment of 10 pixels at a spacing of 2: 10 / 2 + 1 dabs, then the curve's end four times the same; and the first.
TEST_CASE("The bound of a stroke's dabs follows the length of its segments") {
    const StrokePoint from{0, 0, 1};
    const StrokePoint to{10, 0, 1};
    const std::array<StrokePoint, 2> line{from, to};
    const BrushPace pace{2.0, false, 1.0, 0.0};
    // Steps: 6; the end: 6, 6, then the edge has left the last four samples: 1, 1.
    CHECK_EQ(MostDabs(line, pace), 1 + 6 + 6 + 6 + 1 + 1);
    CHECK_EQ(MostDabs(line, {0.0, false, 1.0, 0.0}), 1 + 5 * 1001);
    CHECK_EQ(MostDabs({&from, 1}, pace), 1 + 4);
    // A short segment brings the spacing down with it, to as many dabs as there are steps: 6, 1001, and the end: 6,
    // then one and what 0.5 is of the spacing, 1, 1.
    CHECK_EQ(MostDabs(std::array<StrokePoint, 3>{from, to, StrokePoint{10, 0.001, 1}}, {0.002, true, 1.0, 0.0}),
             1 + 1001 + 1001 + 1001 + (1 + 0.001 / 0.002) + 1 + 1);
}

TEST_CASE("Many points are painted, and no more than a million are read") {
    const auto painted = Painted(FileOf(smallSheet, StrokeWith(R"(, "Spacing": 5)", ManyPoints(50'000, 0.5))));
    CHECK_GE(testing::PaintedPixels(*painted), 1);
    CHECK_EQ(Thrown([] {
                 (void)ParseStrokes(FileOf(smallSheet, R"({"points": )" + ManyPoints(1'000'001, 1) + "}"), "s.json");
             }),
             "s.json: /strokes/0/points: the file has more than 1000000 points up to here");
}

TEST_CASE("Spacing 0 paints wherever a dab can fall") {
    const auto painted = Painted(FileOf(smallSheet, StrokeWith(R"(, "Spacing": 0)", "[[0.5, 0.5], [15.5, 15.5]]")));
    CHECK_GE(testing::PaintedPixels(*painted), 16);
}

TEST_CASE("What would take hours is refused") {
    CHECK_EQ(Thrown([] { (void)Painted(FileOf(smallSheet, StrokeWith(R"(, "Spacing": 0)", ManyPoints(100'000, 5)))); }),
             tooMuch);
    CHECK_EQ(Thrown([] {
                 (void)Painted(
                     FileOf(smallSheet, R"({"brush": {"Size": 1024, "Profile Type": "One Pixel", "Profile Name": "Soft",
                                                  "Spacing": 1e-300}, "points": )" +
                                            ManyPoints(20'000, 5) + "}"));
             }),
             tooMuch);
    CHECK_EQ(Thrown([] {
                 (void)Painted(FileOf(smallSheet,
                                      R"({"brush": {"Size": 200, "filters": [{"filter": "Median"}, {"filter": "Oil"}]},
                                                  "points": )" +
                                          ManyPoints(100'000, 1000) + "}"));
             }),
             tooMuch);
}

// 1001 dabs for each of 3000 segments, of some 20,000 pixels: 6e10, and 2e10 are possible.
TEST_CASE("What a dab costs besides its pixels is counted") {
    const auto refusal = [](const std::string& settings, int points) {
        return Thrown([&] {
            (void)Painted(FileOf(smallSheet, R"({"brush": {"Size": 64, "Profile Name": "Soft", "Spacing": 0)" +
                                                 settings + R"(}, "points": )" + ManyPoints(points, 5) + "}"));
        });
    };
    CHECK_EQ(refusal("", 3000), tooMuch);
    // Of a tenth of the segments only those are too many whose dabs are rotated, or take the canvas along.
    CHECK_EQ(refusal(R"(, "Match Path": true)", 300), tooMuch);
    CHECK_EQ(refusal(R"(, "Pickup": "Every Dab")", 300), tooMuch);
    CHECK_EQ(refusal(R"(, "Blend Mode": "Multiply")", 300), tooMuch);
}

// The same 300 segments are 6e9 at 8 bits, and four times as much at 14.
TEST_CASE("Dabs of 14 bits count four times") {
    const std::string file =
        FileOf(smallSheet,
               R"({"brush": {"Size": 64, "Profile Name": "Soft", "Spacing": 0}, "points": )" + ManyPoints(300, 5) + "}",
               testing::in14Bits);
    CHECK_EQ(Thrown([&] { (void)Painted(file); }), tooMuch);
}

TEST_CASE("Numbers at the edge of what a file may say paint without harm") {
    for (const char* settings :
         {R"(, "Flatness": 1e300, "Adjust Spacing": true)", R"(, "Flatness": 0)",
          R"(, "Flatness": -5, "Rotation": 1e30)",
          R"(, "Offset": [1e300, -1e300], "Source Type": "Clone", "picture": "canvas")", R"(, "Spacing": -1e300)",
          R"(, "Feather": 1e300, "Profile Type": "Feathered", "Profile Name": "Soft")",
          R"(, "Spacing": 1e308, "Size": 3)", R"(, "Rows": 2147483647, "Columns": -2147483648)",
          R"(, "Decay": 1, "Build Up": true)",
          R"(, "Pickup": "Every Dab", "Match Path": true, "Profile Name": "Texture")",
          R"(, "Size": 0, "Profile Name": "Soft")"}) {
        CAPTURE(settings);
        // The last "Profile Name" of the settings stands alone: a key may stand only once.
        std::string brush = std::string(settings).substr(2);
        const std::string stroke =
            R"({"brush": {)" + brush + R"(}, "points": [[-1e6, 1e6], [1e6, -1e6, 0], [3, 3], [3, 3]]})";
        for (const std::string& depth : {std::string(), testing::in14Bits})
            CHECK_EQ(Painted(FileOf(smallSheet, stroke, depth))->Width(), 16);
    }
}

}  // namespace chalkpane::app
