#include "module/pointer_input.h"

#include <doctest/doctest.h>

#include <string>
#include <vector>

#include "module/container_mapping.h"
#include "telestrator/surface_pen.h"
#include "tests/module/module_fixture.h"

namespace chalkpane::testing {
namespace {

using Lines = std::vector<std::string>;

PluginParameters Recognising() {
    PluginParameters values = DefaultParameters();
    values.RecoShapes = 1;
    values.MaxUndos = 2;
    return values;
}

PluginParameters Freehand() {
    PluginParameters values = DefaultParameters();
    values.MaxUndos = 2;
    return values;
}

Lines MappingCalls(std::int32_t x, std::int32_t fromBottom) {
    const std::string position = std::to_string(x) + " " + std::to_string(fromBottom);
    return {"_api__get_sceneid_local SCENE 0",
            "_api__get_scene_current_camera 3",
            "_api__get_cameraid 4 RENDERCAMERA 62",
            "_api__get_camera_matrix 5",
            "_api__container_get_transformation_matrix 7",
            "gluUnProject " + position + " 0",
            "gluUnProject " + position + " 1"};
}

Lines Joined(std::initializer_list<Lines> parts) {
    Lines all;
    for (const Lines& part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
}

TEST_CASE("Without a canvas a pointer event does nothing") {
    ModuleFixture fixture;
    fixture.Press(10, 10);
    CHECK(fixture.host.calls.empty());
    CHECK_FALSE(fixture.plugin.pointerInsideStroke);
}

TEST_CASE("Other buttons and other states do nothing and return 1") {
    ModuleFixture fixture(Freehand());
    fixture.Field();
    fixture.host.TakeCalls();
    CHECK_EQ(PLUGIN_MOUSE_CALLBACK(&fixture.plugin, 0, 2, 1, 1, 10, 10, 0, 0), 1);
    CHECK_EQ(PLUGIN_MOUSE_CALLBACK(&fixture.plugin, 0, 1, 1, 0, 10, 10, 0, 0), 1);
    CHECK(fixture.host.calls.empty());
}

TEST_CASE("A press asks for the containers, reads the box, maps and redraws, in this order") {
    ModuleFixture fixture(Freehand());
    fixture.Field();
    fixture.host.TakeCalls();
    CHECK_EQ(fixture.Press(200, 300), fixture.host.redrawAnswer);
    CHECK_EQ(fixture.host.TakeCalls(), Joined({{"_api__get_objectid_local 0 2", "_api__container_get_drop 0 200 300",
                                                "_api__container_get_bounding_box 7"},
                                               MappingCalls(200, 723),
                                               {"_api__scene_redraw"}}));
    CHECK(fixture.plugin.pointerInsideStroke);
    CHECK(fixture.plugin.pointerDown);
    CHECK_EQ(fixture.plugin.lastPointerX, 200);
    CHECK_EQ(fixture.plugin.lastPointerY, 300);
    CHECK_EQ(fixture.plugin.telestrator.shapeCountdown, -1);
    CHECK(fixture.plugin.telestrator.dirtyRect.Contains(200, 300));
}

TEST_CASE("Any value but 0 is a press") {
    ModuleFixture fixture(Freehand());
    fixture.Field();
    PLUGIN_MOUSE_CALLBACK(&fixture.plugin, 0, 1, -7, 1, 10, 10, 0, 0);
    CHECK(fixture.plugin.pointerDown);
}

TEST_CASE("A release does not ask what lies under the pointer") {
    ModuleFixture fixture(Freehand());
    fixture.Field();
    fixture.Press(200, 300);
    fixture.host.TakeCalls();
    CHECK_EQ(fixture.Release(210, 300), fixture.host.redrawAnswer);
    CHECK_EQ(fixture.host.TakeCalls(), Joined({{"_api__get_objectid_local 0 2", "_api__container_get_bounding_box 7"},
                                               MappingCalls(210, 723),
                                               {"_api__scene_redraw"}}));
    CHECK_FALSE(fixture.plugin.pointerInsideStroke);
    CHECK_FALSE(fixture.plugin.pointerDown);
}

TEST_CASE("A press beside the container does nothing but redraw") {
    ModuleFixture fixture(Freehand());
    fixture.Field();
    fixture.host.containerUnderPointer = 8;
    fixture.host.TakeCalls();
    CHECK_EQ(fixture.Press(200, 300), fixture.host.redrawAnswer);
    CHECK_EQ(fixture.host.TakeCalls(),
             Lines{"_api__get_objectid_local 0 2", "_api__container_get_drop 0 200 300", "_api__scene_redraw"});
    CHECK_FALSE(fixture.plugin.pointerInsideStroke);
    CHECK_EQ(fixture.plugin.lastPointerX, -1);
    CHECK_EQ(fixture.plugin.lastPointerY, -1);
}

TEST_CASE("A release outside a stroke does nothing but redraw") {
    ModuleFixture fixture(Freehand());
    fixture.Field();
    fixture.Release(200, 300);
    CHECK(IsBlank(*fixture.plugin.telestrator.canvasSurface));
    CHECK_FALSE(fixture.plugin.pointerInsideStroke);
}

TEST_CASE("A release away from the container still ends the stroke there") {
    ModuleFixture fixture(Freehand());
    fixture.Field();
    fixture.Press(200, 300);
    fixture.host.containerUnderPointer = 8;
    fixture.Release(400, 300);
    CHECK_FALSE(fixture.plugin.pointerInsideStroke);
    CHECK_GT(AlphaAt(*fixture.plugin.telestrator.canvasSurface, 390, 300), 0);
}

TEST_CASE("A press while a stroke runs is honoured wherever the pointer is") {
    ModuleFixture fixture(Freehand());
    fixture.Field();
    fixture.Press(200, 300);
    fixture.host.containerUnderPointer = 8;
    fixture.Press(500, 500);
    CHECK(fixture.plugin.pointerInsideStroke);
    CHECK_GT(AlphaAt(*fixture.plugin.telestrator.canvasSurface, 500, 500), 0);
}

TEST_CASE("Clearing Active in a stroke: the next event cancels it and fields no longer poll") {
    ModuleFixture fixture(Freehand());
    fixture.Field();
    fixture.Press(200, 300);
    fixture.plugin.Active = 0;
    fixture.host.TakeCalls();
    fixture.Move(300, 300);
    CHECK_EQ(fixture.host.CountCalls("_api__tessmar_query_mouse_pos"), 0);
    fixture.host.TakeCalls();
    CHECK_EQ(fixture.Release(300, 300), -1);
    CHECK(fixture.host.calls.empty());
    CHECK_FALSE(fixture.plugin.pointerInsideStroke);
    CHECK_EQ(fixture.plugin.lastPointerX, -1);
    CHECK_EQ(fixture.plugin.lastPointerY, -1);
    CHECK(fixture.plugin.pointerDown);  // as it was
}

TEST_CASE("A degenerate box stops the event; the stroke keeps its state") {
    ModuleFixture fixture(Freehand());
    fixture.Field();
    fixture.host.box = {0, 0, 0, 0.00005F, 1, 0};
    CHECK_EQ(fixture.Press(200, 300), fixture.host.redrawAnswer);
    CHECK(fixture.plugin.pointerInsideStroke);
    CHECK_FALSE(fixture.plugin.pointerDown);
    CHECK(IsBlank(*fixture.plugin.telestrator.canvasSurface));
    CHECK_EQ(fixture.plugin.lastPointerX, -1);
}

TEST_CASE("Freehand strokes go to both surfaces; those to be recognised to the canvas alone") {
    for (const bool recognises : {false, true}) {
        ModuleFixture fixture(recognises ? Recognising() : Freehand());
        fixture.Field();
        fixture.Press(200, 300);
        fixture.Move(300, 320);
        fixture.Release(400, 300);
        CHECK_FALSE(IsBlank(*fixture.plugin.telestrator.canvasSurface));
        CHECK_EQ(IsBlank(*fixture.plugin.telestrator.shapeSurface), recognises);
        if (!recognises)
            CHECK_EQ(PixelsOf(*fixture.plugin.telestrator.canvasSurface),
                     PixelsOf(*fixture.plugin.telestrator.shapeSurface));
    }
}

TEST_CASE("The eraser's strokes go to both surfaces whether shapes are recognised or not") {
    PluginParameters values = Recognising();
    ModuleFixture fixture(values);
    fixture.Field();
    for (TelestratorSurface* surface :
         {fixture.plugin.telestrator.canvasSurface.get(), fixture.plugin.telestrator.shapeSurface.get()}) {
        surface->SetBrushWidth(40);
        surface->BeginStroke(300, 300, 1);
    }
    fixture.plugin.BrushType = 1;
    PLUGIN_CHANGED_CALLBACK(&fixture.plugin, 5);
    const int before = AlphaAt(*fixture.plugin.telestrator.shapeSurface, 300, 300);
    fixture.Press(300, 300);
    CHECK_LT(AlphaAt(*fixture.plugin.telestrator.canvasSurface, 300, 300), before / 2);
    CHECK_LT(AlphaAt(*fixture.plugin.telestrator.shapeSurface, 300, 300), before / 2);
}

TEST_CASE("The stroke's canvas positions reach the brush as doubles") {
    ModuleFixture fixture(Freehand());
    fixture.Field();
    fixture.plugin.windowWidth = 1023;
    fixture.Press(201, 303);
    fixture.Move(333, 299);
    fixture.Release(401, 303);
    const auto reference = ReferenceSurface(5);
    const auto at = [&](std::int32_t x, std::int32_t y) { return MapPointerToCanvas(fixture.plugin, {7}, x, y); };
    reference->BeginStroke(at(201, 303).x, at(201, 303).y, 1.0);
    reference->ContinueStroke(at(333, 299).x, at(333, 299).y, 1.0);
    const Rect changed = reference->EndStroke(at(401, 303).x, at(401, 303).y, 1.0);
    CHECK_EQ(PixelsOf(*fixture.plugin.telestrator.canvasSurface), PixelsOf(*reference));
    CHECK_EQ(fixture.plugin.telestrator.dirtyRect, changed);  // the last event's alone
}

TEST_CASE("A pointer at rest continues nothing and appends nothing") {
    ModuleFixture fixture(Recognising());
    fixture.Field();
    fixture.Press(200, 300);
    fixture.Move(250, 300);
    const std::int32_t points = fixture.plugin.telestrator.strokePointCount;
    fixture.host.TakeCalls();
    fixture.Move(250, 300);
    CHECK_EQ(fixture.host.CountCalls("_api__tessmar_query_mouse_pos"), 1);
    CHECK_EQ(fixture.host.CountCalls("_api__container_get_bounding_box"), 0);
    CHECK_EQ(fixture.plugin.telestrator.strokePointCount, points);
}

// KEEP: outside a stroke the same x alone means rest; inside, both have to be the same.
TEST_CASE("The poll's test of y looks at the stroke and that of x does not") {
    ModuleFixture fixture(Freehand());
    fixture.Field();
    fixture.Press(200, 300);
    fixture.host.TakeCalls();
    fixture.Move(200, 310);
    CHECK_EQ(fixture.host.CountCalls("_api__container_get_bounding_box"), 1);
    fixture.plugin.pointerInsideStroke = false;  // as after a cancelled stroke
    fixture.host.TakeCalls();
    fixture.Move(200, 320);
    CHECK_EQ(fixture.host.CountCalls("_api__container_get_bounding_box"), 0);
    CHECK_EQ(fixture.plugin.lastPointerY, 320);
    fixture.Move(201, 320);
    CHECK_EQ(fixture.host.CountCalls("_api__container_get_bounding_box"), 1);
}

TEST_CASE("A poll over a degenerate box remembers the position and paints nothing") {
    ModuleFixture fixture(Freehand());
    fixture.Field();
    fixture.Press(200, 300);
    const Pixels before = PixelsOf(*fixture.plugin.telestrator.canvasSurface);
    fixture.host.box = {0, 0, 0, 1, 0.00001F, 0};
    fixture.Move(300, 300);
    CHECK_EQ(PixelsOf(*fixture.plugin.telestrator.canvasSurface), before);
    CHECK_EQ(fixture.plugin.lastPointerX, 300);
}

TEST_CASE("A container seen edge-on paints at the middle of its plane") {
    ModuleFixture fixture(Freehand());
    fixture.Field();
    fixture.host.containerMatrix = {0, 0, 1, 0, 0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 0, 1};
    fixture.Press(10, 10);
    // (0, 0) of the plane: (0 + 50) * 1023 / 100 = 511.5, and 1023 - 511.5.
    CHECK_GT(AlphaAt(*fixture.plugin.telestrator.canvasSurface, 511, 511), 0);
}

TEST_CASE("A click without motion stores two points") {
    ModuleFixture fixture(Recognising());
    fixture.Field();
    fixture.Press(200, 300);
    fixture.Release(200, 300);
    CHECK_EQ(fixture.plugin.telestrator.strokePointCount, 2);
    CHECK_EQ(fixture.plugin.telestrator.shapeCountdown, 50);
}

TEST_CASE("A freehand release pushes an undo state at once and starts no countdown") {
    ModuleFixture fixture(Freehand());
    fixture.Field();
    fixture.Press(200, 300);
    fixture.Release(300, 300);
    CHECK_EQ(fixture.plugin.telestrator.undoIndex, 1);
    CHECK_EQ(fixture.plugin.telestrator.shapeCountdown, -1);
    const CanvasPixels pixels = fixture.plugin.telestrator.canvasSurface->GetPixels();
    CHECK_EQ(std::memcmp(fixture.plugin.telestrator.currentSnapshot.get(), pixels.bytes, pixels.byteSize), 0);
}

TEST_CASE("A press during the countdown keeps the points and joins without a line") {
    ModuleFixture fixture(Recognising());
    fixture.Field();
    fixture.Press(200, 300);
    fixture.Release(240, 300);
    fixture.Fields(10);
    CHECK_EQ(fixture.plugin.telestrator.shapeCountdown, 40);
    fixture.Press(600, 600);
    CHECK_EQ(fixture.plugin.telestrator.shapeCountdown, -1);
    CHECK_EQ(fixture.plugin.telestrator.strokePointCount, 3);  // two ends and the new beginning, nothing between
    fixture.Release(640, 600);
    CHECK_EQ(fixture.plugin.telestrator.strokePointCount, 4);
}

TEST_CASE("A press without a countdown begins anew") {
    ModuleFixture fixture(Recognising());
    fixture.Field();
    fixture.Press(200, 300);
    fixture.Release(240, 300);
    fixture.Fields(50);  // finished
    CHECK_LE(fixture.plugin.telestrator.shapeCountdown, 0);
    fixture.Field();
    CHECK_EQ(fixture.plugin.telestrator.shapeCountdown, -1);
    fixture.Field();
    CHECK_EQ(fixture.plugin.telestrator.shapeCountdown, -2);
    fixture.Field();
    CHECK_EQ(fixture.plugin.telestrator.shapeCountdown, -2);
    fixture.Press(600, 600);
    CHECK_EQ(fixture.plugin.telestrator.strokePointCount, 1);
}

}  // namespace
}  // namespace chalkpane::testing
