#include "plugin/pointer_input.h"

#include <doctest/doctest.h>

#include <string>
#include <vector>

#include "plugin/container_mapping.h"
#include "plugin/surface_pen.h"
#include "tests/plugin/stage.h"

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
    Stage stage;
    stage.Press(10, 10);
    CHECK(stage.host.calls.empty());
    CHECK_FALSE(stage.plugin.pointerInsideStroke);
}

TEST_CASE("Other buttons and other states do nothing and return 1") {
    Stage stage(Freehand());
    stage.Field();
    stage.host.TakeCalls();
    CHECK_EQ(PLUGIN_MOUSE_CALLBACK(&stage.plugin, 0, 2, 1, 1, 10, 10, 0, 0), 1);
    CHECK_EQ(PLUGIN_MOUSE_CALLBACK(&stage.plugin, 0, 1, 1, 0, 10, 10, 0, 0), 1);
    CHECK(stage.host.calls.empty());
}

TEST_CASE("A press asks for the containers, reads the box, maps and redraws, in this order") {
    Stage stage(Freehand());
    stage.Field();
    stage.host.TakeCalls();
    CHECK_EQ(stage.Press(200, 300), stage.host.redrawAnswer);
    CHECK_EQ(stage.host.TakeCalls(), Joined({{"_api__get_objectid_local 0 2", "_api__container_get_drop 0 200 300",
                                              "_api__container_get_bounding_box 7"},
                                             MappingCalls(200, 723),
                                             {"_api__scene_redraw"}}));
    CHECK(stage.plugin.pointerInsideStroke);
    CHECK(stage.plugin.pointerDown);
    CHECK_EQ(stage.plugin.lastPointerX, 200);
    CHECK_EQ(stage.plugin.lastPointerY, 300);
    CHECK_EQ(stage.plugin.shapeCountdown, -1);
    CHECK(stage.plugin.dirtyRect.Contains(200, 300));
}

TEST_CASE("Any value but 0 is a press") {
    Stage stage(Freehand());
    stage.Field();
    PLUGIN_MOUSE_CALLBACK(&stage.plugin, 0, 1, -7, 1, 10, 10, 0, 0);
    CHECK(stage.plugin.pointerDown);
}

TEST_CASE("A release does not ask what lies under the pointer") {
    Stage stage(Freehand());
    stage.Field();
    stage.Press(200, 300);
    stage.host.TakeCalls();
    CHECK_EQ(stage.Release(210, 300), stage.host.redrawAnswer);
    CHECK_EQ(stage.host.TakeCalls(), Joined({{"_api__get_objectid_local 0 2", "_api__container_get_bounding_box 7"},
                                             MappingCalls(210, 723),
                                             {"_api__scene_redraw"}}));
    CHECK_FALSE(stage.plugin.pointerInsideStroke);
    CHECK_FALSE(stage.plugin.pointerDown);
}

TEST_CASE("A press beside the container does nothing but redraw") {
    Stage stage(Freehand());
    stage.Field();
    stage.host.containerUnderPointer = 8;
    stage.host.TakeCalls();
    CHECK_EQ(stage.Press(200, 300), stage.host.redrawAnswer);
    CHECK_EQ(stage.host.TakeCalls(),
             Lines{"_api__get_objectid_local 0 2", "_api__container_get_drop 0 200 300", "_api__scene_redraw"});
    CHECK_FALSE(stage.plugin.pointerInsideStroke);
    CHECK_EQ(stage.plugin.lastPointerX, -1);
    CHECK_EQ(stage.plugin.lastPointerY, -1);
}

TEST_CASE("A release outside a stroke does nothing but redraw") {
    Stage stage(Freehand());
    stage.Field();
    stage.Release(200, 300);
    CHECK(IsBlank(*stage.plugin.canvasSurface));
    CHECK_FALSE(stage.plugin.pointerInsideStroke);
}

TEST_CASE("A release away from the container still ends the stroke there") {
    Stage stage(Freehand());
    stage.Field();
    stage.Press(200, 300);
    stage.host.containerUnderPointer = 8;
    stage.Release(400, 300);
    CHECK_FALSE(stage.plugin.pointerInsideStroke);
    CHECK_GT(AlphaAt(*stage.plugin.canvasSurface, 390, 300), 0);
}

TEST_CASE("A press while a stroke runs is honoured wherever the pointer is") {
    Stage stage(Freehand());
    stage.Field();
    stage.Press(200, 300);
    stage.host.containerUnderPointer = 8;
    stage.Press(500, 500);
    CHECK(stage.plugin.pointerInsideStroke);
    CHECK_GT(AlphaAt(*stage.plugin.canvasSurface, 500, 500), 0);
}

TEST_CASE("Clearing Active in a stroke: the next event cancels it and fields no longer poll") {
    Stage stage(Freehand());
    stage.Field();
    stage.Press(200, 300);
    stage.plugin.Active = 0;
    stage.host.TakeCalls();
    stage.Move(300, 300);
    CHECK_EQ(stage.host.CountCalls("_api__tessmar_query_mouse_pos"), 0);
    stage.host.TakeCalls();
    CHECK_EQ(stage.Release(300, 300), -1);
    CHECK(stage.host.calls.empty());
    CHECK_FALSE(stage.plugin.pointerInsideStroke);
    CHECK_EQ(stage.plugin.lastPointerX, -1);
    CHECK_EQ(stage.plugin.lastPointerY, -1);
    CHECK(stage.plugin.pointerDown);  // as it was
}

TEST_CASE("A degenerate box stops the event; the stroke keeps its state") {
    Stage stage(Freehand());
    stage.Field();
    stage.host.box = {0, 0, 0, 0.00005F, 1, 0};
    CHECK_EQ(stage.Press(200, 300), stage.host.redrawAnswer);
    CHECK(stage.plugin.pointerInsideStroke);
    CHECK_FALSE(stage.plugin.pointerDown);
    CHECK(IsBlank(*stage.plugin.canvasSurface));
    CHECK_EQ(stage.plugin.lastPointerX, -1);
}

TEST_CASE("Freehand strokes go to both surfaces; those to be recognised to the canvas alone") {
    for (const bool recognises : {false, true}) {
        Stage stage(recognises ? Recognising() : Freehand());
        stage.Field();
        stage.Press(200, 300);
        stage.Move(300, 320);
        stage.Release(400, 300);
        CHECK_FALSE(IsBlank(*stage.plugin.canvasSurface));
        CHECK_EQ(IsBlank(*stage.plugin.shapeSurface), recognises);
        if (!recognises) CHECK_EQ(PixelsOf(*stage.plugin.canvasSurface), PixelsOf(*stage.plugin.shapeSurface));
    }
}

TEST_CASE("The eraser's strokes go to both surfaces whether shapes are recognised or not") {
    PluginParameters values = Recognising();
    Stage stage(values);
    stage.Field();
    for (TelestratorSurface* surface : {stage.plugin.canvasSurface.get(), stage.plugin.shapeSurface.get()}) {
        surface->SetBrushWidth(40);
        surface->BeginStroke(300, 300, 1);
    }
    stage.plugin.BrushType = 1;
    PLUGIN_CHANGED_CALLBACK(&stage.plugin, 5);
    const int before = AlphaAt(*stage.plugin.shapeSurface, 300, 300);
    stage.Press(300, 300);
    CHECK_LT(AlphaAt(*stage.plugin.canvasSurface, 300, 300), before / 2);
    CHECK_LT(AlphaAt(*stage.plugin.shapeSurface, 300, 300), before / 2);
}

TEST_CASE("The stroke's canvas positions reach the brush as doubles") {
    Stage stage(Freehand());
    stage.Field();
    stage.plugin.windowWidth = 1023;
    stage.Press(201, 303);
    stage.Move(333, 299);
    stage.Release(401, 303);
    const auto twin = TwinSurface(5);
    const auto at = [&](std::int32_t x, std::int32_t y) { return MapPointerToCanvas(stage.plugin, {7}, x, y); };
    twin->BeginStroke(at(201, 303).x, at(201, 303).y, 1.0);
    twin->ContinueStroke(at(333, 299).x, at(333, 299).y, 1.0);
    const Rect changed = twin->EndStroke(at(401, 303).x, at(401, 303).y, 1.0);
    CHECK_EQ(PixelsOf(*stage.plugin.canvasSurface), PixelsOf(*twin));
    CHECK_EQ(stage.plugin.dirtyRect, changed);  // the last event's alone
}

TEST_CASE("A pointer at rest continues nothing and appends nothing") {
    Stage stage(Recognising());
    stage.Field();
    stage.Press(200, 300);
    stage.Move(250, 300);
    const std::int32_t points = stage.plugin.strokePointCount;
    stage.host.TakeCalls();
    stage.Move(250, 300);
    CHECK_EQ(stage.host.CountCalls("_api__tessmar_query_mouse_pos"), 1);
    CHECK_EQ(stage.host.CountCalls("_api__container_get_bounding_box"), 0);
    CHECK_EQ(stage.plugin.strokePointCount, points);
}

// KEEP: outside a stroke the same x alone means rest; inside, both have to be the same.
TEST_CASE("The poll's test of y looks at the stroke and that of x does not") {
    Stage stage(Freehand());
    stage.Field();
    stage.Press(200, 300);
    stage.host.TakeCalls();
    stage.Move(200, 310);
    CHECK_EQ(stage.host.CountCalls("_api__container_get_bounding_box"), 1);
    stage.plugin.pointerInsideStroke = false;  // as after a cancelled stroke
    stage.host.TakeCalls();
    stage.Move(200, 320);
    CHECK_EQ(stage.host.CountCalls("_api__container_get_bounding_box"), 0);
    CHECK_EQ(stage.plugin.lastPointerY, 320);
    stage.Move(201, 320);
    CHECK_EQ(stage.host.CountCalls("_api__container_get_bounding_box"), 1);
}

TEST_CASE("A poll over a degenerate box remembers the position and paints nothing") {
    Stage stage(Freehand());
    stage.Field();
    stage.Press(200, 300);
    const Pixels before = PixelsOf(*stage.plugin.canvasSurface);
    stage.host.box = {0, 0, 0, 1, 0.00001F, 0};
    stage.Move(300, 300);
    CHECK_EQ(PixelsOf(*stage.plugin.canvasSurface), before);
    CHECK_EQ(stage.plugin.lastPointerX, 300);
}

TEST_CASE("A container seen edge-on paints at the middle of its plane") {
    Stage stage(Freehand());
    stage.Field();
    stage.host.containerMatrix = {0, 0, 1, 0, 0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 0, 1};
    stage.Press(10, 10);
    // (0, 0) of the plane: (0 + 50) * 1023 / 100 = 511.5, and 1023 - 511.5.
    CHECK_GT(AlphaAt(*stage.plugin.canvasSurface, 511, 511), 0);
}

TEST_CASE("A click without motion stores two points") {
    Stage stage(Recognising());
    stage.Field();
    stage.Press(200, 300);
    stage.Release(200, 300);
    CHECK_EQ(stage.plugin.strokePointCount, 2);
    CHECK_EQ(stage.plugin.shapeCountdown, 50);
}

TEST_CASE("A freehand release pushes an undo state at once and starts no countdown") {
    Stage stage(Freehand());
    stage.Field();
    stage.Press(200, 300);
    stage.Release(300, 300);
    CHECK_EQ(stage.plugin.undoIndex, 1);
    CHECK_EQ(stage.plugin.shapeCountdown, -1);
    const CanvasPixels pixels = stage.plugin.canvasSurface->GetPixels();
    CHECK_EQ(std::memcmp(stage.plugin.currentSnapshot.get(), pixels.bytes, pixels.byteSize), 0);
}

TEST_CASE("A press during the countdown keeps the points and joins without a line") {
    Stage stage(Recognising());
    stage.Field();
    stage.Press(200, 300);
    stage.Release(240, 300);
    stage.Fields(10);
    CHECK_EQ(stage.plugin.shapeCountdown, 40);
    stage.Press(600, 600);
    CHECK_EQ(stage.plugin.shapeCountdown, -1);
    CHECK_EQ(stage.plugin.strokePointCount, 3);  // two ends and the new beginning, nothing between
    stage.Release(640, 600);
    CHECK_EQ(stage.plugin.strokePointCount, 4);
}

TEST_CASE("A press without a countdown begins anew") {
    Stage stage(Recognising());
    stage.Field();
    stage.Press(200, 300);
    stage.Release(240, 300);
    stage.Fields(50);  // finished
    CHECK_LE(stage.plugin.shapeCountdown, 0);
    stage.Field();
    CHECK_EQ(stage.plugin.shapeCountdown, -1);
    stage.Field();
    CHECK_EQ(stage.plugin.shapeCountdown, -2);
    stage.Field();
    CHECK_EQ(stage.plugin.shapeCountdown, -2);
    stage.Press(600, 600);
    CHECK_EQ(stage.plugin.strokePointCount, 1);
}

TEST_CASE("A position that no int holds paints nothing and appends nothing") {
    CHECK(IsPaintable(-2147483648.0, 2147483647.0));
    CHECK_FALSE(IsPaintable(2147483648.0, 0));
    CHECK_FALSE(IsPaintable(0, -2147483649.0));
    CHECK_FALSE(IsPaintable(std::numeric_limits<double>::quiet_NaN(), 0));
    CHECK_FALSE(IsPaintable(0, std::numeric_limits<double>::infinity()));
    const auto twin = TwinSurface(5);
    CHECK_EQ(Paint(twin.get(), StrokeStage::Begin, 1e300, 5), Rect());
    CHECK(IsBlank(*twin));
    CHECK_EQ(Paint(nullptr, StrokeStage::Begin, 5, 5), Rect());
}

}  // namespace
}  // namespace chalkpane::testing
