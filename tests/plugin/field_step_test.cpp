#include "plugin/field_step.h"

#include <doctest/doctest.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

#include "tests/plugin/stage.h"

namespace chalkpane::testing {
namespace {

using Lines = std::vector<std::string>;

PluginParameters FewUndos() {
    PluginParameters values = DefaultParameters();
    values.MaxUndos = 1;
    return values;
}

TEST_CASE("The first field makes the canvas, binds it and asks for a redraw") {
    Stage stage(FewUndos());
    stage.Field();
    const Lines calls = stage.host.TakeCalls();
    REQUIRE_GE(calls.size(), 5);
    CHECK_EQ(calls.front(), "_api__tessmar_get_window_size");
    CHECK_EQ(calls.back(), "_api__scene_redraw");
    CHECK_NE(stage.plugin.canvasSurface, nullptr);
    CHECK_NE(stage.plugin.shapeSurface, nullptr);
    CHECK_EQ(stage.plugin.windowWidth, 1023);
    CHECK_EQ(stage.plugin.lastTexUnit, 1);
    CHECK_EQ(stage.plugin.lastBrushWidth, 5);
    CHECK_EQ(stage.plugin.lastBrushColor, 0xF0000000U);
}

TEST_CASE("A field in which nothing changed asks only for the window and a redraw") {
    Stage stage(FewUndos());
    stage.Field();
    stage.host.TakeCalls();
    stage.Field();
    CHECK_EQ(stage.host.TakeCalls(), Lines{"_api__tessmar_get_window_size", "_api__scene_redraw"});
}

TEST_CASE("The window's size is read every field") {
    Stage stage(FewUndos());
    stage.Field();
    stage.host.windowWidth = 640;
    stage.host.windowHeight = 360;
    stage.Field();
    CHECK_EQ(stage.plugin.windowWidth, 640);
    CHECK_EQ(stage.plugin.windowHeight, 360);
}

TEST_CASE("The brush width reaches both surfaces in colour mode, the eraser's in erase mode") {
    Stage stage(FewUndos());
    stage.plugin.BrushWidth = 12;
    stage.plugin.EraserWidth = 33;
    stage.Field();
    CHECK_EQ(stage.plugin.canvasSurface->width, 12);
    CHECK_EQ(stage.plugin.shapeSurface->width, 12);
    CHECK_EQ(stage.plugin.lastEraserWidth, -1);
    stage.plugin.BrushType = 1;
    stage.plugin.BrushWidth = 13;
    stage.Field();
    CHECK_EQ(stage.plugin.canvasSurface->width, 33);
    CHECK_EQ(stage.plugin.shapeSurface->width, 33);
    CHECK_EQ(stage.plugin.lastBrushWidth, 12);
    stage.plugin.BrushType = 2;  // no such type: nothing follows
    stage.plugin.EraserWidth = 34;
    stage.Field();
    CHECK_EQ(stage.plugin.canvasSurface->width, 33);
}

// The colour's bytes in memory are red 0x11, green 0x22, blue 0x33. b * 64 + b / 4: 17 -> 1088 + 4 = 1092;
// 34 -> 2176 + 8 = 2184; 51 -> 3264 + 12 = 3276. The canvas is blue first, OpenGL reads red first: hence in reverse.
TEST_CASE("The colour goes to both surfaces in reverse, widened to 14 bits") {
    Stage stage(FewUndos());
    stage.plugin.BrushColor = 0xFF332211;
    stage.Field();
    for (const TelestratorSurface* surface : {stage.plugin.canvasSurface.get(), stage.plugin.shapeSurface.get()}) {
        CHECK_EQ(surface->colour, Colour{3276, 2184, 1092});
    }
    for (int i = 0; i < 50; ++i) stage.plugin.canvasSurface->BeginStroke(300, 300, 1);
    // In memory: red, green, blue, alpha for OpenGL. Soft dabs approach the full colour from below.
    const std::byte* pixel = stage.plugin.canvasSurface->canvas->Address(300, 300);
    const std::array<int, 4> wanted{0x11, 0x22, 0x33, 255};
    for (std::size_t i = 0; i < 4; ++i) CHECK_LE(std::abs(static_cast<int>(pixel[i]) - wanted[i]), 2);
}

TEST_CASE("A colour of 0 is what the brush starts with") {
    Stage stage(FewUndos());
    stage.plugin.BrushColor = 0;
    stage.Field();
    CHECK_EQ(stage.plugin.canvasSurface->colour, Colour{0, 0, 0});
}

TEST_CASE("An empty image name or none looks nothing up") {
    Stage stage(FewUndos());
    stage.Fields(2);
    CHECK_EQ(stage.host.CountCalls("_api__get_image_objectid"), 0);
    stage.plugin.BrushImage = nullptr;
    stage.Fields(2);
    CHECK_EQ(stage.host.CountCalls("_api__get_image_objectid"), 0);
}

TEST_CASE("A new image name takes effect at the next field, once") {
    Stage stage(FewUndos());
    stage.host.imageIds["ball"] = 60;
    stage.host.brushImageWidth = 2;
    stage.host.brushImageHeight = 1;
    stage.host.brushImagePixels = {1, 2, 3, 4, 5, 6, 7, 8};
    stage.Field();
    stage.plugin.BrushImage = "ball";
    stage.host.TakeCalls();
    stage.Fields(3);
    CHECK_EQ(stage.host.CountCalls("_api__get_image_objectid"), 1);
    CHECK_EQ(stage.plugin.brushImageHandle.id, 60);
    CHECK_EQ(std::string(stage.plugin.lastBrushImageName.data()), "ball");
    REQUIRE_NE(stage.plugin.canvasSurface->brushImage, nullptr);
    CHECK_EQ(stage.plugin.canvasSurface->brushImage->GetPixel8(1, 0), Pixel8{5, 6, 7, 8});
    CHECK_EQ(stage.plugin.shapeSurface->brushImage, nullptr);  // shapes are not drawn with it
}

TEST_CASE("The image is fetched data first, then size, then format") {
    Stage stage(FewUndos());
    stage.host.imageIds["ball"] = 60;
    stage.host.brushImageFormat = 1;  // unknown: no picture, no failure
    stage.Field();
    stage.plugin.BrushImage = "ball";
    stage.host.TakeCalls();
    stage.Field();
    CHECK_EQ(
        stage.host.TakeCalls(),
        Lines{"_api__tessmar_get_window_size", "_api__get_image_objectid ball", "_api__object_valid 60",
              "_api__get_image_data 60", "_api__get_image_size 60", "_api__get_image_format 60", "_api__scene_redraw"});
    CHECK_EQ(stage.plugin.canvasSurface->brushImage, nullptr);
}

TEST_CASE("An image that is gone again resets both surfaces") {
    Stage stage(FewUndos());
    stage.host.imageIds["ball"] = 60;
    stage.host.brushImageWidth = 1;
    stage.host.brushImageHeight = 1;
    stage.host.brushImagePixels = {1, 2, 3, 4};
    stage.plugin.BrushImage = "ball";
    stage.Field();
    REQUIRE_NE(stage.plugin.canvasSurface->brushImage, nullptr);
    stage.plugin.BrushImage = "";
    stage.Field();
    CHECK_EQ(stage.plugin.brushImageHandle.id, -1);
    CHECK_EQ(stage.plugin.canvasSurface->brushImage, nullptr);
}

// The buffer holds 1000 bytes, the last of them a zero: 999 of the name.
TEST_CASE("Names longer than the buffer are compared and kept cut to it") {
    for (const std::size_t length : {999U, 1000U, 5000U}) {
        Stage stage(FewUndos());
        const std::string name(length, 'x');
        const std::string other = std::string(999, 'x') + "tail";
        stage.Field();
        stage.plugin.BrushImage = name.c_str();
        stage.Fields(2);
        CHECK_EQ(stage.host.CountCalls("_api__get_image_objectid"), 1);
        CHECK_EQ(std::string(stage.plugin.lastBrushImageName.data()), std::string(999, 'x'));
        stage.plugin.BrushImage = other.c_str();  // the same as far as the buffer goes
        stage.Field();
        CHECK_EQ(stage.host.CountCalls("_api__get_image_objectid"), 1);
        stage.plugin.BrushImage = "short";
        stage.Field();
        CHECK_EQ(stage.host.CountCalls("_api__get_image_objectid"), 2);
        CHECK_EQ(std::string(stage.plugin.lastBrushImageName.data()), "short");
    }
}

TEST_CASE("Only parameter 5 reconfigures at once") {
    Stage stage(FewUndos());
    stage.Field();
    stage.plugin.BrushType = 1;
    for (const std::int32_t number : {0, 1, 4, 6, 20, -5}) PLUGIN_CHANGED_CALLBACK(&stage.plugin, number);
    CHECK_EQ(stage.plugin.canvasSurface->sourceMode, 0);
    PLUGIN_CHANGED_CALLBACK(&stage.plugin, 5);
    for (const TelestratorSurface* surface : {stage.plugin.canvasSurface.get(), stage.plugin.shapeSurface.get()}) {
        CHECK_EQ(surface->sourceMode, 1);
        CHECK_EQ(surface->width, 10);
        CHECK_EQ(surface->spacing, 0.15);
        CHECK_EQ(surface->spacingMode, 2);
    }
}

TEST_CASE("A changed brush type before the first field does nothing") {
    Stage stage(FewUndos());
    PLUGIN_CHANGED_CALLBACK(&stage.plugin, 5);
    CHECK(stage.host.calls.empty());
}

TEST_CASE("An unknown brush type leaves the brushes as they are") {
    Stage stage(FewUndos());
    stage.Field();
    stage.plugin.BrushType = 1;
    PLUGIN_CHANGED_CALLBACK(&stage.plugin, 5);
    stage.plugin.BrushType = 7;
    PLUGIN_CHANGED_CALLBACK(&stage.plugin, 5);
    CHECK_EQ(stage.plugin.canvasSurface->sourceMode, 1);
}

TEST_CASE("The circle radius has no effect on anything") {
    const auto strokeWith = [](std::int32_t radius) {
        PluginParameters values = FewUndos();
        values.RecoShapes = 1;
        values.RecoEllipse = 0;
        values.RecoCircle = 1;
        values.ShapeDelay = 1;
        values.CircleRadius = radius;
        Stage stage(values);
        stage.Field();
        stage.Press(500, 400);
        for (int i = 1; i < 60; ++i) {
            const double t = i * 6.2831853 / 60;
            stage.Move(static_cast<int>(400 + 100 * std::cos(t)), static_cast<int>(400 + 100 * std::sin(t)));
        }
        stage.Release(500, 400);
        stage.Field();
        stage.PreRender();
        return PixelsOf(*stage.plugin.canvasSurface);
    };
    CHECK_EQ(strokeWith(0), strokeWith(777));
}

}  // namespace
}  // namespace chalkpane::testing
