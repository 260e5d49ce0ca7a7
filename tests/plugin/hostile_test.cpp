#include <doctest/doctest.h>

#include <array>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "plugin/stroke_finish.h"
#include "tests/plugin/stage.h"
#include "tests/plugin/stroke_shapes.h"

namespace chalkpane::testing {
namespace {

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr std::int32_t greatest = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();

PluginParameters Recognising() {
    PluginParameters values = DefaultParameters();
    values.RecoShapes = 1;
    values.RecoCircle = 1;
    values.MaxUndos = 2;
    values.ShapeDelay = 1;
    return values;
}

// A stroke with everything that follows it.
void DrawAndRender(Stage& stage) {
    stage.Press(300, 300);
    stage.Move(400, 350);
    stage.Move(500, 300);
    stage.Release(520, 300);
    for (int i = 0; i < 3; ++i) {
        stage.Field();
        stage.PreRender();
        stage.PostRender();
    }
}

TEST_CASE("A container matrix of nothing, of infinities or of no numbers paints nothing") {
    for (const float value : {0.0F, nan, infinity, -infinity, 1e38F}) {
        for (std::size_t element = 0; element <= 16; ++element) {
            if (element < 16 && value == 0.0F) continue;  // a single zero is an ordinary matrix
            Stage stage(Recognising());
            stage.Field();
            if (element == 16)
                stage.host.containerMatrix.fill(value);
            else
                stage.host.containerMatrix[element] = value;
            DrawAndRender(stage);
            if (element == 16) CHECK(IsBlank(*stage.plugin.canvasSurface));
            CHECK_FALSE(stage.plugin.pointerInsideStroke);
        }
    }
}

TEST_CASE("A camera matrix of no numbers paints nothing") {
    for (const float value : {0.0F, nan, infinity}) {
        Stage stage(Recognising());
        stage.Field();
        stage.host.cameraMatrix.fill(value);
        DrawAndRender(stage);
        CHECK_FALSE(stage.plugin.pointerInsideStroke);
    }
}

TEST_CASE("Box sides just above 0.0001 throw positions far off and are survived") {
    Stage stage(Recognising());
    stage.plugin.ShapeDelay = 100;  // no finish here: a line of a million points takes its time
    stage.Field();
    for (const auto& [width, height] : {std::pair{0.00011F, 0.00011F}, std::pair{0.00011F, 1e30F},
                                        std::pair{1e30F, 0.00011F}, std::pair{3e38F, 3e38F}}) {
        stage.host.box = {0, 0, 0, width, height, 0};
        DrawAndRender(stage);
        CHECK_FALSE(stage.plugin.pointerInsideStroke);
    }
}

TEST_CASE("A line far beyond the canvas is smoothed and drawn nowhere") {
    Stage stage(Recognising());
    stage.Field();
    Points points;
    for (int i = 0; i < 3000; ++i) points.emplace_back(1e8 + 100.0 * i, -2e9 + 500.0 * i, 0.0);
    StoreStroke(stage.plugin, points);
    FinishStroke(stage.plugin);
    CHECK_EQ(stage.plugin.strokePointCount, 752);  // the first, 750 of the fourths (1 .. 2997), and the last
    CHECK(IsBlank(*stage.plugin.shapeSurface));
}

TEST_CASE("Windows of no size, and of sizes beyond reason, are survived") {
    for (const std::int32_t size : {0, -1, 1, greatest, least}) {
        Stage stage(Recognising());
        stage.host.windowWidth = size;
        stage.host.windowHeight = size;
        stage.Field();
        DrawAndRender(stage);
        CHECK_FALSE(stage.plugin.pointerInsideStroke);
    }
}

TEST_CASE("Pointers anywhere are survived") {
    Stage stage(Recognising());
    stage.Field();
    constexpr std::array<std::int32_t, 4> ends{greatest, least, 0, -70000};
    for (const std::int32_t x : ends) {
        for (const std::int32_t y : ends) {
            stage.Press(x, y);
            stage.Move(y, x);
            stage.Release(y, y);
            stage.Field();
            stage.PreRender();
        }
    }
    CHECK_FALSE(stage.plugin.pointerInsideStroke);
}

TEST_CASE("A press over a degenerate box while a shape waits makes the aspect infinite and draws nothing") {
    Stage stage(Recognising());
    stage.plugin.ShapeDelay = 3;
    stage.Field();
    stage.Press(300, 300);
    stage.Move(500, 400);
    stage.Release(600, 300);
    stage.host.box = {-50, 5, 0, 50, 5, 0};
    stage.Press(300, 300);
    CHECK(std::isinf(stage.plugin.aspect));
    stage.Fields(4);
    CHECK(stage.plugin.shapeCommitPending);
    CHECK(IsBlank(*stage.plugin.shapeSurface));
    stage.PreRender();
    CHECK(IsBlank(*stage.plugin.canvasSurface));
}

TEST_CASE("Two far jumps at width 1 fill the buffer and the recognisers decline") {
    PluginParameters values = Recognising();
    values.BrushWidth = 1;
    values.Arrow = 0;
    Stage stage(values);
    stage.Field();
    stage.host.box = {0, 0, 0, 0.01F, 0.01F, 0};
    stage.Press(300, 300);
    stage.Move(900, 900);
    stage.Move(100, 900);
    stage.Release(100, 100);
    CHECK_EQ(stage.plugin.strokePointCount, 1024 * 1024);
    CHECK_FALSE(stage.plugin.pointerInsideStroke);
}

TEST_CASE("Widths of 0, below and far above are survived") {
    for (const std::int32_t width : {0, -1, least, 2000}) {
        PluginParameters values = Recognising();
        values.BrushWidth = width;
        values.EraserWidth = width;
        Stage stage(values);
        stage.Field();
        DrawAndRender(stage);
        stage.plugin.BrushType = 1;
        PLUGIN_CHANGED_CALLBACK(&stage.plugin, 5);
        DrawAndRender(stage);
        CHECK_FALSE(stage.plugin.pointerInsideStroke);
    }
}

TEST_CASE("Recognition cleared inside a stroke gives the shape surface an end without a beginning") {
    Stage stage(Recognising());
    stage.Field();
    stage.Press(300, 300);
    stage.Move(400, 300);
    stage.plugin.RecoShapes = 0;
    stage.Move(500, 300);
    stage.Release(600, 300);
    stage.Field();
    stage.PreRender();
    CHECK_FALSE(stage.plugin.pointerInsideStroke);
    CHECK_FALSE(stage.plugin.shapeCommitPending);
}

TEST_CASE("Recognition set inside a stroke joins what is stored") {
    PluginParameters values = Recognising();
    values.RecoShapes = 0;
    Stage stage(values);
    stage.Field();
    stage.Press(300, 300);
    stage.plugin.RecoShapes = 1;
    stage.Move(500, 300);
    stage.Release(600, 300);
    CHECK_EQ(stage.plugin.strokePointCount, 1);
    stage.Fields(2);
    stage.PreRender();
    CHECK_FALSE(stage.plugin.shapeCommitPending);
}

TEST_CASE("Brush pictures of no size, below none, beyond all memory or without data are no pictures") {
    struct Picture {
        std::int32_t width, height;
        bool hasData;
    };
    for (const std::int32_t format : {6406, 6407, 6408, 0}) {
        for (const Picture& picture :
             {Picture{0, 0, true}, Picture{-1, 5, true}, Picture{5, least, true}, Picture{40000, 40000, true},
              Picture{greatest, greatest, true}, Picture{16, 16, false}}) {
            Stage stage(Recognising());
            stage.host.imageIds["ball"] = 60;
            stage.host.brushImageWidth = picture.width;
            stage.host.brushImageHeight = picture.height;
            stage.host.brushImageHasData = picture.hasData;
            stage.host.brushImageFormat = format;
            stage.host.brushImagePixels.assign(16, 1);
            stage.plugin.BrushImage = "ball";
            stage.Field();
            CHECK_EQ(stage.plugin.canvasSurface->brushImage, nullptr);
            DrawAndRender(stage);
        }
    }
}

TEST_CASE("A failed unprojection is survived") {
    Stage stage(Recognising());
    stage.Field();
    stage.host.unprojects = false;
    DrawAndRender(stage);
    CHECK_FALSE(stage.plugin.pointerInsideStroke);
}

TEST_CASE("A host that answers every question with an invalid id is survived") {
    Stage stage(Recognising());
    stage.host.allIdsInvalid = true;
    stage.host.ownContainer = -1;
    stage.host.containerUnderPointer = -1;
    stage.host.createdImage = -1;
    stage.host.createdTexture = -1;
    stage.plugin.BrushImage = "no such picture";
    stage.Field();
    DrawAndRender(stage);
    PLUGIN_EXEC_ACTION(&stage.plugin, 1);
    PLUGIN_EXEC_ACTION(&stage.plugin, 0);
    stage.CleanUp();
    CHECK_EQ(stage.host.CountCalls("_api__image_subtexload"), 0);
    CHECK_EQ(stage.host.CountCalls("_api__texture_delete_texture"), 0);
}

TEST_CASE("Parameters of any value are survived") {
    constexpr std::uint32_t seed = 77;
    CAPTURE(seed);
    std::mt19937 random(seed);
    constexpr std::array<std::int32_t, 9> values{0, 1, -1, 2, 5, 100, greatest, least, 70000};
    const auto any = [&] { return values[random() % values.size()]; };
    for (int round = 0; round < 40; ++round) {
        Stage stage(Recognising());
        PluginInstance& plugin = stage.plugin;
        stage.Field();
        for (int step = 0; step < 12; ++step) {
            plugin.TexUnit = any();
            plugin.Transparent = any();
            plugin.BrushType = static_cast<std::int32_t>(random() % 3);
            plugin.BrushWidth = static_cast<std::int32_t>(random() % 40) - 3;
            plugin.EraserWidth = static_cast<std::int32_t>(random() % 70) - 3;
            plugin.BrushColor = static_cast<std::uint32_t>(random());
            plugin.RecoShapes = any();
            plugin.RecoEllipse = any();
            plugin.RecoCircle = any();
            plugin.RecoCross = any();
            plugin.ShapeDelay = any() % 5;
            plugin.Arrow = any();
            plugin.ArrowLength = any();
            plugin.ArrowWidth = any();
            plugin.CrossDia = any();
            plugin.MaxUndos = static_cast<std::int32_t>(random() % 4) - 1;
            PLUGIN_CHANGED_CALLBACK(&plugin, 5);
            switch (random() % 5) {
                case 0:
                    stage.Press(static_cast<int>(random() % 1200), static_cast<int>(random() % 1200));
                    break;
                case 1:
                    stage.Release(static_cast<int>(random() % 1200), static_cast<int>(random() % 1200));
                    break;
                case 2:
                    PLUGIN_EXEC_ACTION(&plugin, static_cast<std::int32_t>(random() % 3));
                    break;
                default:
                    stage.Move(static_cast<int>(random() % 1200), static_cast<int>(random() % 1200));
                    break;
            }
            stage.PreRender();
            stage.PostRender();
        }
        CHECK_NE(plugin.canvasSurface, nullptr);
    }
}

}  // namespace
}  // namespace chalkpane::testing
