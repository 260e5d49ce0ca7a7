#include <doctest/doctest.h>

#include <array>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "telestrator/telestrator.h"
#include "tests/module/module_fixture.h"
#include "tests/telestrator/stroke_shapes.h"

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
void DrawAndRender(ModuleFixture& fixture) {
    fixture.Press(300, 300);
    fixture.Move(400, 350);
    fixture.Move(500, 300);
    fixture.Release(520, 300);
    for (int i = 0; i < 3; ++i) {
        fixture.Field();
        fixture.PreRender();
        fixture.PostRender();
    }
}

TEST_CASE("A container matrix of nothing, of infinities or of NaN paints nothing") {
    for (const float value : {0.0F, nan, infinity, -infinity, 1e38F}) {
        for (std::size_t element = 0; element <= 16; ++element) {
            if (element < 16 && value == 0.0F) continue;  // a single zero is an ordinary matrix
            ModuleFixture fixture(Recognising());
            fixture.Field();
            if (element == 16)
                fixture.host.containerMatrix.fill(value);
            else
                fixture.host.containerMatrix[element] = value;
            DrawAndRender(fixture);
            if (element == 16) CHECK(IsBlank(*fixture.plugin.telestrator.canvasSurface));
            CHECK_FALSE(fixture.plugin.pointerInsideStroke);
        }
    }
}

TEST_CASE("A camera matrix of NaN paints nothing") {
    for (const float value : {0.0F, nan, infinity}) {
        ModuleFixture fixture(Recognising());
        fixture.Field();
        fixture.host.cameraMatrix.fill(value);
        DrawAndRender(fixture);
        CHECK_FALSE(fixture.plugin.pointerInsideStroke);
    }
}

TEST_CASE("Box sides just above 0.0001 throw positions far off and are survived") {
    ModuleFixture fixture(Recognising());
    fixture.plugin.ShapeDelay = 100;  // no finish here: a line of a million points takes its time
    fixture.Field();
    for (const auto& [width, height] : {std::pair{0.00011F, 0.00011F}, std::pair{0.00011F, 1e30F},
                                        std::pair{1e30F, 0.00011F}, std::pair{3e38F, 3e38F}}) {
        fixture.host.box = {0, 0, 0, width, height, 0};
        DrawAndRender(fixture);
        CHECK_FALSE(fixture.plugin.pointerInsideStroke);
    }
}

TEST_CASE("A line far beyond the canvas is smoothed and drawn nowhere") {
    ModuleFixture fixture(Recognising());
    fixture.Field();
    Points points;
    for (int i = 0; i < 3000; ++i) points.emplace_back(1e8 + 100.0 * i, -2e9 + 500.0 * i, 0.0);
    StoreStroke(fixture.plugin.telestrator, points);
    FinishStroke(fixture.plugin);
    CHECK_EQ(fixture.plugin.telestrator.strokePointCount,
             752);  // the first, 750 of the fourths (1 .. 2997), and the last
    CHECK(IsBlank(*fixture.plugin.telestrator.shapeSurface));
}

TEST_CASE("Windows of no size, and of sizes beyond reason, are survived") {
    for (const std::int32_t size : {0, -1, 1, greatest, least}) {
        ModuleFixture fixture(Recognising());
        fixture.host.windowWidth = size;
        fixture.host.windowHeight = size;
        fixture.Field();
        DrawAndRender(fixture);
        CHECK_FALSE(fixture.plugin.pointerInsideStroke);
    }
}

TEST_CASE("Pointers anywhere are survived") {
    ModuleFixture fixture(Recognising());
    fixture.Field();
    constexpr std::array<std::int32_t, 4> ends{greatest, least, 0, -70000};
    for (const std::int32_t x : ends) {
        for (const std::int32_t y : ends) {
            fixture.Press(x, y);
            fixture.Move(y, x);
            fixture.Release(y, y);
            fixture.Field();
            fixture.PreRender();
        }
    }
    CHECK_FALSE(fixture.plugin.pointerInsideStroke);
}

TEST_CASE("A press over a degenerate box while a shape waits makes the aspect infinite and draws nothing") {
    ModuleFixture fixture(Recognising());
    fixture.plugin.ShapeDelay = 3;
    fixture.Field();
    fixture.Press(300, 300);
    fixture.Move(500, 400);
    fixture.Release(600, 300);
    fixture.host.box = {-50, 5, 0, 50, 5, 0};
    fixture.Press(300, 300);
    CHECK(std::isinf(fixture.plugin.telestrator.aspect));
    fixture.Fields(4);
    CHECK(fixture.plugin.telestrator.shapeCommitPending);
    CHECK(IsBlank(*fixture.plugin.telestrator.shapeSurface));
    fixture.PreRender();
    CHECK(IsBlank(*fixture.plugin.telestrator.canvasSurface));
}

TEST_CASE("Two far jumps at width 1 fill the buffer and the recognisers decline") {
    PluginParameters values = Recognising();
    values.BrushWidth = 1;
    values.Arrow = 0;
    ModuleFixture fixture(values);
    fixture.Field();
    fixture.host.box = {0, 0, 0, 0.01F, 0.01F, 0};
    fixture.Press(300, 300);
    fixture.Move(900, 900);
    fixture.Move(100, 900);
    fixture.Release(100, 100);
    CHECK_EQ(fixture.plugin.telestrator.strokePointCount, 1024 * 1024);
    CHECK_FALSE(fixture.plugin.pointerInsideStroke);
}

TEST_CASE("Widths of 0, below and far above are survived") {
    for (const std::int32_t width : {0, -1, least, 2000}) {
        PluginParameters values = Recognising();
        values.BrushWidth = width;
        values.EraserWidth = width;
        ModuleFixture fixture(values);
        fixture.Field();
        DrawAndRender(fixture);
        fixture.plugin.BrushType = 1;
        PLUGIN_CHANGED_CALLBACK(&fixture.plugin, 5);
        DrawAndRender(fixture);
        CHECK_FALSE(fixture.plugin.pointerInsideStroke);
    }
}

TEST_CASE("Recognition cleared inside a stroke gives the shape surface an end without a beginning") {
    ModuleFixture fixture(Recognising());
    fixture.Field();
    fixture.Press(300, 300);
    fixture.Move(400, 300);
    fixture.plugin.RecoShapes = 0;
    fixture.Move(500, 300);
    fixture.Release(600, 300);
    fixture.Field();
    fixture.PreRender();
    CHECK_FALSE(fixture.plugin.pointerInsideStroke);
    CHECK_FALSE(fixture.plugin.telestrator.shapeCommitPending);
}

TEST_CASE("Recognition set inside a stroke joins what is stored") {
    PluginParameters values = Recognising();
    values.RecoShapes = 0;
    ModuleFixture fixture(values);
    fixture.Field();
    fixture.Press(300, 300);
    fixture.plugin.RecoShapes = 1;
    fixture.Move(500, 300);
    fixture.Release(600, 300);
    CHECK_EQ(fixture.plugin.telestrator.strokePointCount, 1);
    fixture.Fields(2);
    fixture.PreRender();
    CHECK_FALSE(fixture.plugin.telestrator.shapeCommitPending);
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
            ModuleFixture fixture(Recognising());
            fixture.host.imageIds["ball"] = 60;
            fixture.host.brushImageWidth = picture.width;
            fixture.host.brushImageHeight = picture.height;
            fixture.host.brushImageHasData = picture.hasData;
            fixture.host.brushImageFormat = format;
            fixture.host.brushImagePixels.assign(16, 1);
            fixture.plugin.BrushImage = "ball";
            fixture.Field();
            CHECK_EQ(fixture.plugin.telestrator.canvasSurface->brushImage, nullptr);
            DrawAndRender(fixture);
        }
    }
}

TEST_CASE("A failed unprojection is survived") {
    ModuleFixture fixture(Recognising());
    fixture.Field();
    fixture.host.unprojects = false;
    DrawAndRender(fixture);
    CHECK_FALSE(fixture.plugin.pointerInsideStroke);
}

TEST_CASE("A host that answers every question with an invalid id is survived") {
    ModuleFixture fixture(Recognising());
    fixture.host.allIdsInvalid = true;
    fixture.host.ownContainer = -1;
    fixture.host.containerUnderPointer = -1;
    fixture.host.createdImage = -1;
    fixture.host.createdTexture = -1;
    fixture.plugin.BrushImage = "no such picture";
    fixture.Field();
    DrawAndRender(fixture);
    PLUGIN_EXEC_ACTION(&fixture.plugin, 1);
    PLUGIN_EXEC_ACTION(&fixture.plugin, 0);
    fixture.CleanUp();
    CHECK_EQ(fixture.host.CountCalls("_api__image_subtexload"), 0);
    CHECK_EQ(fixture.host.CountCalls("_api__texture_delete_texture"), 0);
}

TEST_CASE("Parameters of any value are survived") {
    constexpr std::uint32_t seed = 77;
    CAPTURE(seed);
    std::mt19937 random(seed);
    constexpr std::array<std::int32_t, 9> values{0, 1, -1, 2, 5, 100, greatest, least, 70000};
    const auto any = [&] { return values[random() % values.size()]; };
    for (int round = 0; round < 40; ++round) {
        ModuleFixture fixture(Recognising());
        PluginInstance& plugin = fixture.plugin;
        fixture.Field();
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
                    fixture.Press(static_cast<int>(random() % 1200), static_cast<int>(random() % 1200));
                    break;
                case 1:
                    fixture.Release(static_cast<int>(random() % 1200), static_cast<int>(random() % 1200));
                    break;
                case 2:
                    PLUGIN_EXEC_ACTION(&plugin, static_cast<std::int32_t>(random() % 3));
                    break;
                default:
                    fixture.Move(static_cast<int>(random() % 1200), static_cast<int>(random() % 1200));
                    break;
            }
            fixture.PreRender();
            fixture.PostRender();
        }
        CHECK_NE(plugin.telestrator.canvasSurface, nullptr);
    }
}

}  // namespace
}  // namespace chalkpane::testing
