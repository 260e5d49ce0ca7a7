#include "module/field_step.h"

#include <doctest/doctest.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

#include "tests/module/module_fixture.h"

namespace chalkpane::testing {
namespace {

using Lines = std::vector<std::string>;

PluginParameters FewUndos() {
    PluginParameters values = DefaultParameters();
    values.MaxUndos = 1;
    return values;
}

TEST_CASE("The first field makes the canvas, binds it and asks for a redraw") {
    ModuleFixture fixture(FewUndos());
    fixture.Field();
    const Lines calls = fixture.host.TakeCalls();
    REQUIRE_GE(calls.size(), 5);
    CHECK_EQ(calls.front(), "_api__tessmar_get_window_size");
    CHECK_EQ(calls.back(), "_api__scene_redraw");
    CHECK_NE(fixture.plugin.telestrator.canvasSurface, nullptr);
    CHECK_NE(fixture.plugin.telestrator.shapeSurface, nullptr);
    CHECK_EQ(fixture.plugin.windowWidth, 1023);
    CHECK_EQ(fixture.plugin.lastTexUnit, 1);
    CHECK_EQ(fixture.plugin.telestrator.lastBrushWidth, 5);
    CHECK_EQ(fixture.plugin.telestrator.lastBrushColor, 0xF0000000U);
}

TEST_CASE("A field in which nothing changed asks only for the window and a redraw") {
    ModuleFixture fixture(FewUndos());
    fixture.Field();
    fixture.host.TakeCalls();
    fixture.Field();
    CHECK_EQ(fixture.host.TakeCalls(), Lines{"_api__tessmar_get_window_size", "_api__scene_redraw"});
}

TEST_CASE("The window's size is read every field") {
    ModuleFixture fixture(FewUndos());
    fixture.Field();
    fixture.host.windowWidth = 640;
    fixture.host.windowHeight = 360;
    fixture.Field();
    CHECK_EQ(fixture.plugin.windowWidth, 640);
    CHECK_EQ(fixture.plugin.windowHeight, 360);
}

TEST_CASE("The brush width reaches both surfaces in colour mode, the eraser's in erase mode") {
    ModuleFixture fixture(FewUndos());
    fixture.plugin.BrushWidth = 12;
    fixture.plugin.EraserWidth = 33;
    fixture.Field();
    CHECK_EQ(fixture.plugin.telestrator.canvasSurface->width, 12);
    CHECK_EQ(fixture.plugin.telestrator.shapeSurface->width, 12);
    CHECK_EQ(fixture.plugin.telestrator.lastEraserWidth, -1);
    fixture.plugin.BrushType = 1;
    fixture.plugin.BrushWidth = 13;
    fixture.Field();
    CHECK_EQ(fixture.plugin.telestrator.canvasSurface->width, 33);
    CHECK_EQ(fixture.plugin.telestrator.shapeSurface->width, 33);
    CHECK_EQ(fixture.plugin.telestrator.lastBrushWidth, 12);
    fixture.plugin.BrushType = 2;  // no such type: nothing follows
    fixture.plugin.EraserWidth = 34;
    fixture.Field();
    CHECK_EQ(fixture.plugin.telestrator.canvasSurface->width, 33);
}

// The colour's bytes in memory are red 0x11, green 0x22, blue 0x33. b * 64 + b / 4: 17 -> 1088 + 4 = 1092;
// 34 -> 2176 + 8 = 2184; 51 -> 3264 + 12 = 3276. The canvas is blue first, OpenGL reads red first: hence in reverse.
TEST_CASE("The colour goes to both surfaces in reverse, widened to 14 bits") {
    ModuleFixture fixture(FewUndos());
    fixture.plugin.BrushColor = 0xFF332211;
    fixture.Field();
    for (const TelestratorSurface* surface :
         {fixture.plugin.telestrator.canvasSurface.get(), fixture.plugin.telestrator.shapeSurface.get()}) {
        CHECK_EQ(surface->colour, Colour{3276, 2184, 1092});
    }
    for (int i = 0; i < 50; ++i) fixture.plugin.telestrator.canvasSurface->BeginStroke(300, 300, 1);
    // In memory: red, green, blue, alpha for OpenGL. Soft dabs approach the full colour from below.
    const std::byte* pixel = fixture.plugin.telestrator.canvasSurface->canvas->Address(300, 300);
    const std::array<int, 4> wanted{0x11, 0x22, 0x33, 255};
    for (std::size_t i = 0; i < 4; ++i) CHECK_LE(std::abs(static_cast<int>(pixel[i]) - wanted[i]), 2);
}

TEST_CASE("A colour of 0 is what the brush starts with") {
    ModuleFixture fixture(FewUndos());
    fixture.plugin.BrushColor = 0;
    fixture.Field();
    CHECK_EQ(fixture.plugin.telestrator.canvasSurface->colour, Colour{0, 0, 0});
}

TEST_CASE("An empty image name or none looks nothing up") {
    ModuleFixture fixture(FewUndos());
    fixture.Fields(2);
    CHECK_EQ(fixture.host.CountCalls("_api__get_image_objectid"), 0);
    fixture.plugin.BrushImage = nullptr;
    fixture.Fields(2);
    CHECK_EQ(fixture.host.CountCalls("_api__get_image_objectid"), 0);
}

TEST_CASE("A new image name takes effect at the next field, once") {
    ModuleFixture fixture(FewUndos());
    fixture.host.imageIds["ball"] = 60;
    fixture.host.brushImageWidth = 2;
    fixture.host.brushImageHeight = 1;
    fixture.host.brushImagePixels = {1, 2, 3, 4, 5, 6, 7, 8};
    fixture.Field();
    fixture.plugin.BrushImage = "ball";
    fixture.host.TakeCalls();
    fixture.Fields(3);
    CHECK_EQ(fixture.host.CountCalls("_api__get_image_objectid"), 1);
    CHECK_EQ(fixture.plugin.brushImageHandle.id, 60);
    CHECK_EQ(std::string(fixture.plugin.lastBrushImageName.data()), "ball");
    REQUIRE_NE(fixture.plugin.telestrator.canvasSurface->brushImage, nullptr);
    CHECK_EQ(fixture.plugin.telestrator.canvasSurface->brushImage->GetPixel8(1, 0), Pixel8{5, 6, 7, 8});
    CHECK_EQ(fixture.plugin.telestrator.shapeSurface->brushImage, nullptr);  // shapes are not drawn with it
}

TEST_CASE("The image is fetched data first, then size, then format") {
    ModuleFixture fixture(FewUndos());
    fixture.host.imageIds["ball"] = 60;
    fixture.host.brushImageFormat = 1;  // unknown: no picture, no failure
    fixture.Field();
    fixture.plugin.BrushImage = "ball";
    fixture.host.TakeCalls();
    fixture.Field();
    CHECK_EQ(
        fixture.host.TakeCalls(),
        Lines{"_api__tessmar_get_window_size", "_api__get_image_objectid ball", "_api__object_valid 60",
              "_api__get_image_data 60", "_api__get_image_size 60", "_api__get_image_format 60", "_api__scene_redraw"});
    CHECK_EQ(fixture.plugin.telestrator.canvasSurface->brushImage, nullptr);
}

TEST_CASE("An image that is gone again resets both surfaces") {
    ModuleFixture fixture(FewUndos());
    fixture.host.imageIds["ball"] = 60;
    fixture.host.brushImageWidth = 1;
    fixture.host.brushImageHeight = 1;
    fixture.host.brushImagePixels = {1, 2, 3, 4};
    fixture.plugin.BrushImage = "ball";
    fixture.Field();
    REQUIRE_NE(fixture.plugin.telestrator.canvasSurface->brushImage, nullptr);
    fixture.plugin.BrushImage = "";
    fixture.Field();
    CHECK_EQ(fixture.plugin.brushImageHandle.id, -1);
    CHECK_EQ(fixture.plugin.telestrator.canvasSurface->brushImage, nullptr);
}

// The buffer holds 1000 bytes, the last of them a zero: 999 of the name.
TEST_CASE("Names longer than the buffer are compared and kept cut to it") {
    for (const std::size_t length : {999U, 1000U, 5000U}) {
        ModuleFixture fixture(FewUndos());
        const std::string name(length, 'x');
        const std::string other = std::string(999, 'x') + "tail";
        fixture.Field();
        fixture.plugin.BrushImage = name.c_str();
        fixture.Fields(2);
        CHECK_EQ(fixture.host.CountCalls("_api__get_image_objectid"), 1);
        CHECK_EQ(std::string(fixture.plugin.lastBrushImageName.data()), std::string(999, 'x'));
        fixture.plugin.BrushImage = other.c_str();  // the same as far as the buffer goes
        fixture.Field();
        CHECK_EQ(fixture.host.CountCalls("_api__get_image_objectid"), 1);
        fixture.plugin.BrushImage = "short";
        fixture.Field();
        CHECK_EQ(fixture.host.CountCalls("_api__get_image_objectid"), 2);
        CHECK_EQ(std::string(fixture.plugin.lastBrushImageName.data()), "short");
    }
}

TEST_CASE("Only parameter 5 reconfigures at once") {
    ModuleFixture fixture(FewUndos());
    fixture.Field();
    fixture.plugin.BrushType = 1;
    for (const std::int32_t number : {0, 1, 4, 6, 20, -5}) PLUGIN_CHANGED_CALLBACK(&fixture.plugin, number);
    CHECK_EQ(fixture.plugin.telestrator.canvasSurface->sourceMode, 0);
    PLUGIN_CHANGED_CALLBACK(&fixture.plugin, 5);
    for (const TelestratorSurface* surface :
         {fixture.plugin.telestrator.canvasSurface.get(), fixture.plugin.telestrator.shapeSurface.get()}) {
        CHECK_EQ(surface->sourceMode, 1);
        CHECK_EQ(surface->width, 10);
        CHECK_EQ(surface->spacing, 0.15);
        CHECK_EQ(surface->spacingMode, 2);
    }
}

TEST_CASE("A changed brush type before the first field does nothing") {
    ModuleFixture fixture(FewUndos());
    PLUGIN_CHANGED_CALLBACK(&fixture.plugin, 5);
    CHECK(fixture.host.calls.empty());
}

TEST_CASE("An unknown brush type leaves the brushes as they are") {
    ModuleFixture fixture(FewUndos());
    fixture.Field();
    fixture.plugin.BrushType = 1;
    PLUGIN_CHANGED_CALLBACK(&fixture.plugin, 5);
    fixture.plugin.BrushType = 7;
    PLUGIN_CHANGED_CALLBACK(&fixture.plugin, 5);
    CHECK_EQ(fixture.plugin.telestrator.canvasSurface->sourceMode, 1);
}

TEST_CASE("The circle radius has no effect on anything") {
    const auto strokeWith = [](std::int32_t radius) {
        PluginParameters values = FewUndos();
        values.RecoShapes = 1;
        values.RecoEllipse = 0;
        values.RecoCircle = 1;
        values.ShapeDelay = 1;
        values.CircleRadius = radius;
        ModuleFixture fixture(values);
        fixture.Field();
        fixture.Press(500, 400);
        for (int i = 1; i < 60; ++i) {
            const double t = i * 6.2831853 / 60;
            fixture.Move(static_cast<int>(400 + 100 * std::cos(t)), static_cast<int>(400 + 100 * std::sin(t)));
        }
        fixture.Release(500, 400);
        fixture.Field();
        fixture.PreRender();
        return PixelsOf(*fixture.plugin.telestrator.canvasSurface);
    };
    CHECK_EQ(strokeWith(0), strokeWith(777));
}

TEST_CASE("Actions before the first field and unknown actions do nothing") {
    PluginParameters values = DefaultParameters();
    values.MaxUndos = 2;
    ModuleFixture fixture(values);
    PLUGIN_EXEC_ACTION(&fixture.plugin, 0);
    PLUGIN_EXEC_ACTION(&fixture.plugin, 1);
    CHECK(fixture.host.calls.empty());
    CHECK_FALSE(fixture.plugin.telestrator.fullUploadPending);
    fixture.Field();
    fixture.Press(100, 100);
    fixture.Release(150, 100);
    const Pixels drawn = PixelsOf(*fixture.plugin.telestrator.canvasSurface);
    PLUGIN_EXEC_ACTION(&fixture.plugin, 2);
    PLUGIN_EXEC_ACTION(&fixture.plugin, -1);
    CHECK(PixelsOf(*fixture.plugin.telestrator.canvasSurface) == drawn);
    PLUGIN_EXEC_ACTION(&fixture.plugin, 0);
    CHECK(IsBlank(*fixture.plugin.telestrator.canvasSurface));
    PLUGIN_EXEC_ACTION(&fixture.plugin, 1);
    CHECK(PixelsOf(*fixture.plugin.telestrator.canvasSurface) == drawn);
}

TEST_CASE("The ring follows MaxUndos in a field that has other changes to follow") {
    ModuleFixture fixture;
    fixture.Field();
    fixture.plugin.MaxUndos = 5;
    fixture.plugin.TexUnit = 2;
    fixture.Field();
    CHECK_EQ(fixture.plugin.telestrator.undoRing->size(), 5);
    CHECK_EQ(fixture.plugin.lastTexUnit, 2);
}

}  // namespace
}  // namespace chalkpane::testing
