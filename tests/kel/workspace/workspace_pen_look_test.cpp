#include <doctest/doctest.h>

#include <nlohmann/json.hpp>

#include "kel/workspace/brush_look.h"
#include "tests/kel/workspace/grey_place.h"

namespace kel {
namespace {

using cli::testing::WriteText;
using nlohmann::json;
using testing::Draw;
using testing::GreyPlace;
using testing::IndexOf;

}  // namespace

TEST_CASE("Over a picture that is not square dabs are round on the screen") {
    GreyPlace place;
    place.options.recording.clear();
    Workspace workspace(place.folder / "grey.png", place.options);
    CHECK_EQ(workspace.TheHost().Window().width, 320);
    CHECK_EQ(workspace.TheHost().Window().height, 240);
    workspace.Set(IndexOf(workspace, "BrushWidth"), std::int32_t{30});
    workspace.RunFields(2);
    Draw(workspace, {160, 120, 160, 120});
    workspace.RunFields(1);
    const picture_io::Picture seen = workspace.TheHost().ReadFrame();
    const auto isDrawn = [&](std::int32_t x, std::int32_t y) {
        return seen.At(x, y) != testing::Pixel{90, 90, 90, 255};
    };
    const auto reach = [&](std::int32_t stepX, std::int32_t stepY) {
        std::int32_t steps = 0;
        while (isDrawn(160 + stepX * steps, 120 + stepY * steps)) ++steps;
        return steps;
    };
    // 30 of 1024 canvas pixels on 320 window pixels are 9.4.
    for (const std::int32_t steps : {reach(1, 0), reach(-1, 0), reach(0, 1), reach(0, -1)}) {
        CHECK_GE(steps, 8);
        CHECK_LE(steps, 12);
    }
    CHECK_EQ(seen.At(2, 2), testing::Pixel{90, 90, 90, 255});
    CHECK_EQ(seen.At(317, 237), testing::Pixel{90, 90, 90, 255});
}

// 5 canvas pixels on a pane as wide as the picture's 320 pixels, from whose first to whose last there are 1023.
TEST_CASE("The workspace knows how large the pen is on the picture, and that shapes are recognised over one") {
    GreyPlace place;
    place.options.recording.clear();
    Workspace workspace(place.folder / "grey.png", place.options);
    workspace.RunFields(1);
    const auto brush = BrushLookOf(workspace, {100, 60});
    REQUIRE(brush);
    CHECK_EQ(brush->dab.across[0], doctest::Approx(5.0 * 320 / 1023));
    CHECK_EQ(brush->dab.down[1], doctest::Approx(5.0 * 320 / 1023));
    CHECK_EQ(brush->dab.across[1], doctest::Approx(0));
    CHECK_EQ(brush->dab.down[0], doctest::Approx(0));
    CHECK(brush->hasColour);
    CHECK_FALSE(brush->isEraser);
    CHECK_EQ(brush->colour[0], 0xFF);
    CHECK_EQ(RecognisesShapes(workspace), true);
    workspace.Set(IndexOf(workspace, "RecoShapes"), std::int32_t{0});
    CHECK_EQ(RecognisesShapes(workspace), false);
    workspace.Set(IndexOf(workspace, "BrushType"), std::int32_t{1});
    workspace.RunFields(2);
    CHECK(BrushLookOf(workspace, {0, 0})->isEraser);
    CHECK_FALSE(BrushLookOf(workspace, {0, 0})->hasColour);
}

// 500 in front of a pane of 200 x 200 that leans back by 60 degrees, its upper edge towards the camera. In its middle
// the 120 pixels above it show 500 * tan 20 = 181.985 of the scene, so a canvas pixel is 200 / 1023 * 120 / 181.985 =
// 0.12891 wide and, since cos 60 is a half, half as high.
TEST_CASE("The pen is as wide and as high as it is seen on a pane that leans, and larger where that is nearer") {
    GreyPlace place;
    place.options.recording.clear();
    WriteText(place.folder / "leaning.json",
              R"({"window": {"width": 320, "height": 240}, "fieldsPerSecond": 50, "fields": 1,
                  "camera": {"position": [0, 0, 500], "target": [0, 0, 0], "fieldOfView": 40},
                  "containers": [{"size": [200, 200], "rotation": [60, 0, 0],
                                  "plugin": {"parameters": {"BrushWidth": 10}}}]})");
    Workspace workspace(place.folder / "leaning.json", place.options);
    workspace.RunFields(1);
    const auto dabAt = [&](std::int32_t y) {
        const auto brush = BrushLookOf(workspace, {160, y});
        REQUIRE(brush);
        return brush->dab;
    };
    const SeenDab middle = dabAt(120);
    CHECK_EQ(middle.across[0], doctest::Approx(1.2891).epsilon(0.001));
    CHECK_EQ(middle.across[1], doctest::Approx(0));
    CHECK_EQ(middle.down[0], doctest::Approx(0));
    CHECK_EQ(middle.down[1], doctest::Approx(0.6445).epsilon(0.001));
    CHECK_GT(dabAt(90).across[0], middle.across[0]);
    CHECK_LT(dabAt(140).across[0], middle.across[0]);
}

}  // namespace kel
